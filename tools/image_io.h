// SPDX-License-Identifier: Apache-2.0
// Image files for the command-line program: PNG, JPEG, PGM and PPM in and
// out; 8-bit throughout, 16-bit PNG, PGM and PPM as well (JPEG holds
// 8-bit samples only).
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace zcli {

struct Image {
    int width = 0, height = 0, channels = 0;
    int bytesPerSample = 1;  // 1: 8-bit, 2: 16-bit, 4: float
    std::vector<uint8_t> data;

    Image() = default;
    Image(int w, int h, int ch, int bytes = 1)
        : width(w), height(h), channels(ch), bytesPerSample(bytes), data(std::size_t(w) * h * ch * bytes) {}
    int step() const { return width * channels * bytesPerSample; }
    template <class T>
    T* ptr() { return reinterpret_cast<T*>(data.data()); }
    template <class T>
    const T* ptr() const { return reinterpret_cast<const T*>(data.data()); }
};

// Reads an image; on failure returns false with a message in err.
bool read_image(const std::string& path, Image& out, std::string& err);
// Writes an 8-bit or 16-bit image, format by extension (.png .jpg .jpeg
// .pgm .ppm); 16-bit samples go to PNG, PGM or PPM only.
bool write_image(const std::string& path, const Image& img, std::string& err);
// A one-channel copy at the same depth (rounded luma of colour input,
// 299 R + 587 G + 114 B over 1000; alpha is ignored).
Image to_gray(const Image& img);
// Grey plus alpha keeps the grey channel, RGBA the colour channels; one
// and three channels are returned as they are.
Image drop_alpha(const Image& img);
// An 8-bit mask: 255 where any colour channel (alpha ignored) is non-zero,
// 0 elsewhere, at any depth.
Image to_mask8(const Image& img);
// A sample of an 8-bit or 16-bit image as an unsigned value.
inline unsigned sample(const Image& img, std::size_t i) {
    return img.bytesPerSample == 2 ? img.ptr<uint16_t>()[i] : img.data[i];
}
// Linear map of a 16s/32f single-channel result to 8-bit for viewing:
// |v| scaled so that the largest magnitude becomes 255.
Image to_view8(const float* values, int width, int height);

}  // namespace zcli
