// SPDX-License-Identifier: Apache-2.0
// The header of the adaptive-mixture state that lives in the caller's
// buffer, and the sizes of the areas that follow it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <new>

#include "zebcv.h"

namespace zeb::fgmm_state {

inline constexpr int kHeaderBytes = 128;
inline constexpr int kMaxComponents = 255;  // the per-pixel count is a byte

inline int64_t round32(int64_t k) { return (k + 31) & ~int64_t(31); }

// Bytes of each area for a frame of w x h pixels and n components.
struct Areas {
    int64_t row, means, wv, counts;
    Areas(int w, int h, int n) {
        const int64_t px = int64_t(w) * h;
        row = round32(int64_t(w) * 12 * n);
        means = round32(px * 12 * n);
        wv = round32(px * 8 * n);
        counts = round32(px);
    }
    // The whole buffer: the header, the areas and the slack that aligns
    // the state's start to 32 bytes.
    int64_t total() const { return kHeaderBytes + 32 + row + means + wv + counts; }
};

struct Header {
    int32_t frames;           // frames seen since Init
    int32_t reserved0;
    float* row;               // row scratch: one frame row as floats
    float* means;             // n x 3 floats per pixel
    float* wv;                // n x (weight, variance) per pixel
    uint8_t* counts;          // active components per pixel
    ZebFGMMModel model;
    int32_t n, n2;            // maxNGauss, stored twice
    int32_t width, height;    // the frame size the areas were laid out for
};
static_assert(offsetof(Header, row) == 8 && offsetof(Header, model) == 40 && offsetof(Header, n) == 80);
static_assert(sizeof(ZebFGMMModel) == 40 && sizeof(Header) <= kHeaderBytes);

inline unsigned char* aligned_start(void* p) {
    const auto a = reinterpret_cast<std::uintptr_t>(p);
    return static_cast<unsigned char*>(p) + ((32 - a % 32) % 32);
}

// The header Init placed at the state's first 32-byte boundary.
inline Header* header(void* p) { return std::launder(reinterpret_cast<Header*>(aligned_start(p))); }
inline const Header* header(const void* p) { return header(const_cast<void*>(p)); }

}  // namespace zeb::fgmm_state
