// Image files for the command-line program: PNG, JPEG, PGM and PPM in,
// PNG, JPEG, PGM and PPM out, 8-bit (and 16-bit PNG/PGM in).
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
// Writes an 8-bit image, format by extension (.png .jpg .jpeg .pgm .ppm).
bool write_image(const std::string& path, const Image& img, std::string& err);
// A one-channel 8-bit copy (luma of colour input).
Image to_gray8(const Image& img);
// Linear map of a 16s/32f single-channel result to 8-bit for viewing:
// |v| scaled so that the largest magnitude becomes 255.
Image to_view8(const float* values, int width, int height);

}  // namespace zcli
