// SPDX-License-Identifier: Apache-2.0
#include "image_io.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <memory>

#define STB_IMAGE_IMPLEMENTATION
#define STBI_ONLY_PNG
#define STBI_ONLY_JPEG
#define STBI_ONLY_PNM
#include <stb/stb_image.h>
#define STB_IMAGE_WRITE_IMPLEMENTATION
#include <stb/stb_image_write.h>

namespace zcli {

namespace {

std::string lower_ext(const std::string& path) {
    const auto dot = path.find_last_of('.');
    std::string e = dot == std::string::npos ? "" : path.substr(dot + 1);
    std::transform(e.begin(), e.end(), e.begin(), [](unsigned char c) { return char(std::tolower(c)); });
    return e;
}

bool write_file(const std::string& path, const std::vector<uint8_t>& bytes, std::string& err) {
    std::unique_ptr<FILE, int (*)(FILE*)> f(std::fopen(path.c_str(), "wb"), std::fclose);
    if (!f) {
        err = "cannot open " + path + " for writing";
        return false;
    }
    if (std::fwrite(bytes.data(), 1, bytes.size(), f.get()) != bytes.size() || std::fflush(f.get()) != 0) {
        err = "short write to " + path;
        return false;
    }
    return true;
}

void put_be32(std::vector<uint8_t>& out, uint32_t v) {
    for (int s = 24; s >= 0; s -= 8) out.push_back(uint8_t(v >> s));
}

// Binary PGM/PPM; 16-bit samples with maximum 65535, most significant
// byte first.
bool write_pnm(const std::string& path, const Image& img, std::string& err) {
    const std::string head = "P" + std::to_string(img.channels == 1 ? 5 : 6) + "\n" + std::to_string(img.width) +
                             " " + std::to_string(img.height) + "\n" +
                             (img.bytesPerSample == 2 ? "65535" : "255") + "\n";
    std::vector<uint8_t> bytes(head.begin(), head.end());
    const std::size_t n = std::size_t(img.width) * img.height * img.channels;
    bytes.reserve(bytes.size() + n * img.bytesPerSample);
    for (std::size_t i = 0; i < n; ++i) {
        const unsigned v = sample(img, i);
        if (img.bytesPerSample == 2) bytes.push_back(uint8_t(v >> 8));
        bytes.push_back(uint8_t(v));
    }
    return write_file(path, bytes, err);
}

// A 16-bit PNG: grey, grey + alpha, RGB or RGBA, rows unfiltered, samples
// most significant byte first, compressed with stb's zlib writer.
bool write_png16(const std::string& path, const Image& img, std::string& err) {
    const std::size_t rowBytes = 1 + std::size_t(img.width) * img.channels * 2;
    if (rowBytes * img.height > std::size_t(INT32_MAX)) {
        err = path + ": image too large for a 16-bit PNG";
        return false;
    }
    std::vector<uint8_t> raw;
    raw.reserve(rowBytes * img.height);
    const uint16_t* p = img.ptr<uint16_t>();
    for (int y = 0; y < img.height; ++y) {
        raw.push_back(0);  // filter type: none
        for (int i = 0; i < img.width * img.channels; ++i, ++p) {
            raw.push_back(uint8_t(*p >> 8));
            raw.push_back(uint8_t(*p));
        }
    }
    int zlen = 0;
    unsigned char* z = stbi_zlib_compress(raw.data(), int(raw.size()), &zlen, 8);
    if (!z) {
        err = path + ": compression failed";
        return false;
    }
    std::vector<uint8_t> png = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1a, '\n'};
    auto chunk = [&png](const char* type, const uint8_t* data, std::size_t n) {
        put_be32(png, uint32_t(n));
        const std::size_t start = png.size();
        png.insert(png.end(), type, type + 4);
        png.insert(png.end(), data, data + n);
        put_be32(png, stbiw__crc32(&png[start], int(n + 4)));
    };
    static const uint8_t kColourType[5] = {0, 0, 4, 2, 6};  // by channel count
    std::vector<uint8_t> ihdr;
    put_be32(ihdr, uint32_t(img.width));
    put_be32(ihdr, uint32_t(img.height));
    ihdr.insert(ihdr.end(), {16, kColourType[img.channels], 0, 0, 0});
    chunk("IHDR", ihdr.data(), ihdr.size());
    chunk("IDAT", z, std::size_t(zlen));
    STBIW_FREE(z);
    chunk("IEND", nullptr, 0);
    return write_file(path, png, err);
}

enum class Pnm16 { Read, Broken, Other };

// Binary PGM/PPM with a maximum above 255 hold two bytes per sample, most
// significant first; stb hands those bytes over unswapped, so they are
// read here. Any other file is left where it was for stb (Other).
Pnm16 read_pnm16(FILE* f, const std::string& path, Image& out, std::string& err) {
    const long start = std::ftell(f);
    auto other = [&] {
        std::fseek(f, start, SEEK_SET);
        return Pnm16::Other;
    };
    const int p = std::fgetc(f), kind = std::fgetc(f);
    if (p != 'P' || (kind != '5' && kind != '6')) return other();
    // Width, height and maximum: decimal fields separated by white space,
    // '#' comments running to the end of their line.
    long hdr[3] = {};
    int c = std::fgetc(f);
    for (long& v : hdr) {
        for (;;) {
            while (c != EOF && std::isspace(c)) c = std::fgetc(f);
            if (c != '#') break;
            while (c != EOF && c != '\n') c = std::fgetc(f);
        }
        if (c == EOF || !std::isdigit(c)) return other();
        for (v = 0; c != EOF && std::isdigit(c) && v <= 1000000000L; c = std::fgetc(f)) v = v * 10 + (c - '0');
    }
    if (hdr[2] <= 255) return other();
    // One white-space byte (already read into c) ends the header.
    if (c == EOF || !std::isspace(c) || hdr[2] > 65535 || hdr[0] < 1 || hdr[1] < 1 || hdr[0] > 1000000 ||
        hdr[1] > 1000000 || hdr[0] * hdr[1] > (long(1) << 28)) {
        err = path + ": not a readable 16-bit PGM or PPM image (bad header)";
        return Pnm16::Broken;
    }
    const int ch = kind == '5' ? 1 : 3;
    Image img(static_cast<int>(hdr[0]), static_cast<int>(hdr[1]), ch, 2);
    if (std::fread(img.data.data(), 1, img.data.size(), f) != img.data.size()) {
        err = path + ": not a readable 16-bit PGM or PPM image (truncated)";
        return Pnm16::Broken;
    }
    uint16_t* s = img.ptr<uint16_t>();
    for (std::size_t i = 0; i < img.data.size() / 2; ++i)
        s[i] = uint16_t(img.data[2 * i] << 8 | img.data[2 * i + 1]);
    out = std::move(img);
    return Pnm16::Read;
}

}  // namespace

bool read_image(const std::string& path, Image& out, std::string& err) {
    std::unique_ptr<FILE, int (*)(FILE*)> f(std::fopen(path.c_str(), "rb"), std::fclose);
    if (!f) {
        err = "cannot open " + path;
        return false;
    }
    switch (read_pnm16(f.get(), path, out, err)) {
        case Pnm16::Read: return true;
        case Pnm16::Broken: return false;
        case Pnm16::Other: break;
    }
    int w = 0, h = 0, ch = 0;
    if (stbi_is_16_bit_from_file(f.get())) {
        stbi_us* p = stbi_load_from_file_16(f.get(), &w, &h, &ch, 0);
        if (!p) {
            err = path + ": " + stbi_failure_reason();
            return false;
        }
        out = Image(w, h, ch, 2);
        std::memcpy(out.data.data(), p, out.data.size());
        stbi_image_free(p);
        return true;
    }
    stbi_uc* p = stbi_load_from_file(f.get(), &w, &h, &ch, 0);
    if (!p) {
        err = path + ": not a readable PNG, JPEG, PGM or PPM image (" + stbi_failure_reason() + ")";
        return false;
    }
    out = Image(w, h, ch, 1);
    std::memcpy(out.data.data(), p, out.data.size());
    stbi_image_free(p);
    return true;
}

bool write_image(const std::string& path, const Image& img, std::string& err) {
    if (img.bytesPerSample != 1 && img.bytesPerSample != 2) {
        err = "only 8-bit and 16-bit images are written";
        return false;
    }
    if (img.channels < 1 || img.channels > 4) {
        err = path + ": cannot write " + std::to_string(img.channels) + " channels";
        return false;
    }
    const std::string e = lower_ext(path);
    bool ok = false;
    if (e == "png") {
        if (img.bytesPerSample == 2) return write_png16(path, img, err);
        ok = stbi_write_png(path.c_str(), img.width, img.height, img.channels, img.data.data(), img.step()) != 0;
    } else if (e == "jpg" || e == "jpeg") {
        if (img.bytesPerSample == 2) {
            err = path + ": JPEG holds 8-bit samples only; write this 16-bit result as .png, .pgm or .ppm";
            return false;
        }
        ok = stbi_write_jpg(path.c_str(), img.width, img.height, img.channels, img.data.data(), 95) != 0;
    } else if (e == "pgm" || e == "ppm") {
        if ((e == "pgm") != (img.channels == 1) || (img.channels != 1 && img.channels != 3)) {
            err = path + ": ." + e + " needs " + (e == "pgm" ? "one channel" : "three channels");
            return false;
        }
        return write_pnm(path, img, err);
    } else {
        err = path + ": unknown output format (use .png, .jpg, .pgm or .ppm)";
        return false;
    }
    if (!ok) err = "cannot write " + path;
    return ok;
}

Image to_gray(const Image& img) {
    Image g(img.width, img.height, 1, img.bytesPerSample);
    const std::size_t n = std::size_t(img.width) * img.height;
    for (std::size_t i = 0; i < n; ++i) {
        const std::size_t k = i * img.channels;
        const unsigned v = img.channels >= 3 ? (299 * sample(img, k) + 587 * sample(img, k + 1) +
                                                114 * sample(img, k + 2) + 500) / 1000
                                             : sample(img, k);
        if (g.bytesPerSample == 2)
            g.ptr<uint16_t>()[i] = uint16_t(v);
        else
            g.data[i] = uint8_t(v);
    }
    return g;
}

Image drop_alpha(const Image& img) {
    if (img.channels == 1 || img.channels == 3) return img;
    const int keep = img.channels == 2 ? 1 : 3;
    Image out(img.width, img.height, keep, img.bytesPerSample);
    const std::size_t n = std::size_t(img.width) * img.height, b = std::size_t(img.bytesPerSample);
    for (std::size_t i = 0; i < n; ++i)
        std::memcpy(&out.data[i * keep * b], &img.data[i * img.channels * b], keep * b);
    return out;
}

Image to_mask8(const Image& img) {
    const Image c = drop_alpha(img);
    Image m(c.width, c.height, 1, 1);
    for (std::size_t i = 0; i < m.data.size(); ++i) {
        bool on = false;
        for (int k = 0; k < c.channels; ++k) on = on || sample(c, i * c.channels + k) != 0;
        m.data[i] = on ? 255 : 0;
    }
    return m;
}

Image to_view8(const float* v, int width, int height) {
    Image out(width, height, 1, 1);
    const std::size_t n = std::size_t(width) * height;
    float peak = 0;
    for (std::size_t i = 0; i < n; ++i) peak = std::max(peak, std::fabs(v[i]));
    const float k = peak > 0 ? 255.f / peak : 0.f;
    for (std::size_t i = 0; i < n; ++i) out.data[i] = uint8_t(std::lround(std::fabs(v[i]) * k));
    return out;
}

}  // namespace zcli
