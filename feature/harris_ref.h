// SPDX-License-Identifier: Apache-2.0
// The per-pixel definition of the corner response: the derivative kernels
// as column and row taps, window sums in their fixed order, the response
// formula. The vector kernels' scalar tails call these.
#pragma once

#include <cstddef>

namespace zeb::harris {

// A derivative kernel pair as the derivative filters apply it: a column
// pass (taps over rows, top to bottom) into a line, then a row pass (taps
// over the line, left to right). X is d/dx, Y is d/dy.
struct Sobel3 {
    static constexpr int n = 3;
    static constexpr int colX[3] = {1, 2, 1}, rowX[3] = {-1, 0, 1};
    static constexpr int colY[3] = {-1, 0, 1}, rowY[3] = {1, 2, 1};
};
struct Sobel5 {
    static constexpr int n = 5;
    static constexpr int colX[5] = {1, 4, 6, 4, 1}, rowX[5] = {-1, -2, 0, 2, 1};
    static constexpr int colY[5] = {-1, -2, 0, 2, 1}, rowY[5] = {1, 4, 6, 4, 1};
};
struct Scharr3 {
    static constexpr int n = 3;
    static constexpr int colX[3] = {3, 10, 3}, rowX[3] = {-1, 0, 1};
    static constexpr int colY[3] = {-1, 0, 1}, rowY[3] = {3, 10, 3};
};
// Central differences: Ix = I(x+1) - I(x-1), Iy = I(y-1) - I(y+1).
struct Central3 {
    static constexpr int n = 3;
    static constexpr int colX[3] = {0, 1, 0}, rowX[3] = {-1, 0, 1};
    static constexpr int colY[3] = {1, 0, -1}, rowY[3] = {0, 1, 0};
};

namespace ref {

// Sum of c[i] * v(i) over the non-zero taps, the first product starting it.
template <int n, const int* c, class Get>
inline float taps(Get&& v) {
    float s = 0.f;
    bool first = true;
    for (int i = 0; i < n; ++i) {
        if (c[i] == 0) continue;
        const float t = float(c[i]) * v(i);
        s = first ? t : s + t;
        first = false;
    }
    return s;
}

// aw values down a column of stride `stride`, top to bottom.
inline float column_sum(const float* p, int stride, int aw) {
    float s = p[0];
    for (int j = 1; j < aw; ++j) s += p[std::ptrdiff_t(j) * stride];
    return s;
}

// aw consecutive values, left to right.
inline float row_sum(const float* p, int aw) {
    float s = p[0];
    for (int i = 1; i < aw; ++i) s += p[i];
    return s;
}

// The response of window means A, B, C.
inline float corner(float a, float b, float c, float k, float s) {
    const float t = a + b;
    return (a * b - t * (k * t) - c * c) * s;
}

}  // namespace ref
}  // namespace zeb::harris
