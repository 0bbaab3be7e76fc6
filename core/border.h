// SPDX-License-Identifier: Apache-2.0
// The shared border engine. Filters read pixels around the ROI either from
// memory (when the caller says they exist there) or synthesise them by a
// rule: constant, replicate, wrap, mirror without and with the edge pixel.
// Everything a filter needs is here: decoding of the border argument,
// index mapping, row extension into a scratch row, and the choice of source
// row for each output row, so no family writes its own edge handling.
#pragma once

#include <cstdint>
#include <cstring>

#include "core/frame.h"

namespace zeb::border {

// Modes (the low four bits of a border argument).
inline constexpr int32_t kConst = 0;
inline constexpr int32_t kRepl = 1;
inline constexpr int32_t kWrap = 2;
inline constexpr int32_t kMirror = 3;      // ... 2 1 | 0 1 2 ...   (edge pixel once)
inline constexpr int32_t kMirrorEdge = 4;  // ... 1 0 | 0 1 2 ...   (edge pixel repeated)
inline constexpr int32_t kInMem = 6;
// Sides whose neighbouring pixels are in memory.
inline constexpr int32_t kTop = 16, kBottom = 32, kLeft = 64, kRight = 128, kAllSides = 240;

// A decoded border argument: the rule for the sides not in memory, and
// which sides are in memory.
struct Spec {
    int32_t mode = kRepl;
    bool top = false, bottom = false, left = false, right = false;
};

// Decodes a border argument as the filters with the full set of modes take
// it: low four bits the mode (6 turns into all four flags over replicate),
// bits 16..128 the sides in memory. Validation is the family's business.
inline Spec decode(int32_t borderType) {
    Spec s;
    int32_t mode = borderType & 0xf;
    int32_t flags = borderType & kAllSides;
    if (mode == kInMem) {
        flags = kAllSides;
        mode = kRepl;  // never consulted: every side is in memory
    }
    s.mode = mode;
    s.top = flags & kTop;
    s.bottom = flags & kBottom;
    s.left = flags & kLeft;
    s.right = flags & kRight;
    return s;
}

// Index of the pixel that stands for position i of a line of n pixels
// (0 <= result < n), or -1 when the constant border value stands there.
inline int map_index(int i, int n, int32_t mode) {
    if (i >= 0 && i < n) return i;
    switch (mode) {
        case kConst:
            return -1;
        case kRepl:
            return i < 0 ? 0 : n - 1;
        case kWrap: {
            const int r = i % n;
            return r < 0 ? r + n : r;
        }
        case kMirror: {
            if (n == 1) return 0;
            const int period = 2 * (n - 1);
            int r = i % period;
            if (r < 0) r += period;
            return r < n ? r : period - r;
        }
        case kMirrorEdge: {
            const int period = 2 * n;
            int r = i % period;
            if (r < 0) r += period;
            return r < n ? r : period - 1 - r;
        }
        default:
            return i < 0 ? 0 : n - 1;
    }
}

// Writes the row of n pixels (ch channels each) extended by `left` pixels
// before and `right` after into dst (n + left + right pixels). In-memory
// sides are read from the source row itself; the others follow the rule,
// with value[c] standing for channel c of a constant border.
template <class T>
inline void extend_row(const T* src, int n, int ch, int left, int right, const Spec& s, const T* value, T* dst) {
    std::memcpy(dst + std::ptrdiff_t(left) * ch, src, sizeof(T) * std::size_t(n) * ch);
    auto side = [&](int from, int to, bool inMem) {
        for (int i = from; i < to; ++i) {
            T* d = dst + std::ptrdiff_t(i + left) * ch;
            if (inMem) {
                std::memcpy(d, src + std::ptrdiff_t(i) * ch, sizeof(T) * ch);
                continue;
            }
            const int j = map_index(i, n, s.mode);
            for (int c = 0; c < ch; ++c) d[c] = j < 0 ? value[c] : src[std::ptrdiff_t(j) * ch + c];
        }
    };
    side(-left, 0, s.left);
    side(n, n + right, s.right);
}

// The source row for output-space row y (which may lie above or below the
// ROI of h rows), or nullptr when the row is wholly constant border.
template <class T>
inline T* source_row(T* base, int32_t step, int y, int h, const Spec& s) {
    if ((y < 0 && s.top) || (y >= h && s.bottom)) return row(base, step, y);
    const int j = map_index(y, h, s.mode);
    return j < 0 ? nullptr : row(base, step, j);
}

}  // namespace zeb::border
