// SPDX-License-Identifier: Apache-2.0
// Scalar definitions of dilation and erosion: the extremum of two values as
// every kernel forms it, and the plain per-pixel extremum over the selected
// mask elements with replicated or in-memory borders.
#pragma once

#include <algorithm>
#include <cstdint>

#include "core/frame.h"

namespace zeb::morph::ref {

// The larger (kMax) or smaller of two values; for floats a is returned
// unless b is strictly beyond it, as the vector instructions do.
template <bool kMax, class T>
inline T ext(T a, T b) {
    if constexpr (kMax)
        return a > b ? a : b;
    else
        return a < b ? a : b;
}

// dst(x, y) = extremum over the selected (i, j) of src(x - ax + j, y - ay + i),
// each of ch channels on its own; coordinates outside the ROI are clamped
// (replicate) or read from memory (inMem). An empty mask copies.
template <bool kMax, class T>
void morph(const T* src, int ss, T* dst, int ds, int W, int H, int ch, const uint8_t* mask, int mW, int mH, int ax,
           int ay, bool inMem) {
    bool any = false;
    for (int k = 0; k < mW * mH; ++k) any |= mask[k] != 0;
    for (int y = 0; y < H; ++y)
        for (int x = 0; x < W; ++x)
            for (int c = 0; c < ch; ++c) {
                T acc{};
                bool have = false;
                if (!any) acc = row(src, ss, y)[x * ch + c], have = true;
                for (int i = 0; i < mH; ++i)
                    for (int j = 0; j < mW; ++j) {
                        if (!mask[i * mW + j]) continue;
                        int sy = y - ay + i, sx = x - ax + j;
                        if (!inMem) sy = std::clamp(sy, 0, H - 1), sx = std::clamp(sx, 0, W - 1);
                        const T v = row(src, ss, sy)[std::ptrdiff_t(sx) * ch + c];
                        acc = have ? ext<kMax>(acc, v) : v;
                        have = true;
                    }
                row(dst, ds, y)[x * ch + c] = acc;
            }
}

}  // namespace zeb::morph::ref
