// SPDX-License-Identifier: Apache-2.0
// The per-pixel definition shared by the filter suites: a source image
// extended by a border rule (OpenCV's borderInterpolate for the modes, the
// caller's memory for the sides flagged as readable), and the in-order sum
// of coefficients times samples that the row pass, the column pass, the
// Gaussian and the derivative filters all state their results in.
#pragma once

#include <opencv2/core.hpp>

#include <algorithm>
#include <cstdint>

namespace zt::filter {

// Border argument: mode in the low four bits (0 constant, 1 replicate,
// 2..4 mirror variants, 6 every side in memory) and the side flags
// 16 top, 32 bottom, 64 left, 128 right.
inline bool in_memory(int border, int flag) { return (border & 15) == 6 || (border & flag) != 0; }

// Index of position i on a line of n under mode 0..4 (6 acts as
// replicate where no side is in memory); -1 where the border value stands.
inline int border_index(int i, int n, int mode) {
    if (i >= 0 && i < n) return i;
    if (mode == 6) mode = 1;
    if (mode == 0) return -1;
    if (mode == 3 && n == 1) return 0;
    static const int cv[] = {cv::BORDER_CONSTANT, cv::BORDER_REPLICATE, cv::BORDER_WRAP, cv::BORDER_REFLECT_101,
                             cv::BORDER_REFLECT};
    return cv::borderInterpolate(i, n, cv[mode]);
}

// Sample (x, y, c) of a w x h ROI with ch channels, anywhere around it:
// sides in memory are read past the ROI, the others follow the mode. A row
// outside the ROI that is not in memory is wholly border.
template <class T>
struct Bordered {
    const T* roi;
    int step;  // bytes
    int w, h, ch, border;
    const T* value;  // one per channel

    T at(int x, int y, int c) const {
        const int mode = border & 15;
        const bool memRow = (y < 0 && in_memory(border, 16)) || (y >= h && in_memory(border, 32));
        const bool memCol = (x < 0 && in_memory(border, 64)) || (x >= w && in_memory(border, 128));
        const int ry = memRow ? y : border_index(y, h, mode), rx = memCol ? x : border_index(x, w, mode);
        if (ry < 0 && !memRow) return value[c];
        if (rx < 0 && !memCol) return value[c];
        return reinterpret_cast<const T*>(reinterpret_cast<const char*>(roi) + std::ptrdiff_t(step) * ry)[rx * ch + c];
    }
};

// sum over i of c[i] * ld(i) in accumulator type A, in index order, the
// first product starting the sum; with skipZero the zero coefficients
// take no part (the fixed filters skip them).
template <class A, class C, class Ld>
A dot(const C* c, int n, const Ld& ld, bool skipZero = false) {
    A acc{};
    bool started = false;
    for (int i = 0; i < n; ++i) {
        if (skipZero && c[i] == 0) continue;
        const A p = A(A(c[i]) * A(ld(i)));
        acc = started ? A(acc + p) : p;
        started = true;
    }
    return acc;
}

}  // namespace zt::filter
