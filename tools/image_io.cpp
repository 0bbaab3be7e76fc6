#include "image_io.h"

#include <algorithm>
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

bool write_pnm(const std::string& path, const Image& img, std::string& err) {
    std::unique_ptr<FILE, int (*)(FILE*)> f(std::fopen(path.c_str(), "wb"), std::fclose);
    if (!f) {
        err = "cannot open " + path + " for writing";
        return false;
    }
    std::fprintf(f.get(), "P%d\n%d %d\n255\n", img.channels == 1 ? 5 : 6, img.width, img.height);
    if (std::fwrite(img.data.data(), 1, img.data.size(), f.get()) != img.data.size()) {
        err = "short write to " + path;
        return false;
    }
    return true;
}

}  // namespace

bool read_image(const std::string& path, Image& out, std::string& err) {
    std::unique_ptr<FILE, int (*)(FILE*)> f(std::fopen(path.c_str(), "rb"), std::fclose);
    if (!f) {
        err = "cannot open " + path;
        return false;
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
    if (img.bytesPerSample != 1) {
        err = "only 8-bit images are written";
        return false;
    }
    const std::string e = lower_ext(path);
    bool ok = false;
    if (e == "png") {
        ok = stbi_write_png(path.c_str(), img.width, img.height, img.channels, img.data.data(), img.step()) != 0;
    } else if (e == "jpg" || e == "jpeg") {
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

Image to_gray8(const Image& img) {
    Image g(img.width, img.height, 1, 1);
    const std::size_t n = std::size_t(img.width) * img.height;
    for (std::size_t i = 0; i < n; ++i) {
        auto sample = [&](int c) -> int {
            const std::size_t k = i * img.channels + c;
            return img.bytesPerSample == 2 ? img.ptr<uint16_t>()[k] >> 8 : img.data[k];
        };
        if (img.channels >= 3)
            g.data[i] = uint8_t((299 * sample(0) + 587 * sample(1) + 114 * sample(2) + 500) / 1000);
        else
            g.data[i] = uint8_t(sample(0));
    }
    return g;
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
