// SPDX-License-Identifier: Apache-2.0
// Per-pixel definitions of the distance transforms: the weight settling,
// the saturating step sums, a plain two-pass chamfer transform over the
// whole mask and the eikonal update. The kernels use the step sums for
// their scalar parts; the tests hold the kernels to the plain transform.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <type_traits>

namespace zeb::ref {

// The value of a pixel with no site in reach.
template <class T>
constexpr T far_value() {
    if constexpr (std::is_floating_point_v<T>)
        return std::numeric_limits<float>::max();
    else
        return std::numeric_limits<T>::max();
}

// A distance plus a weight: saturating for integer outputs, a single-
// precision sum for floats.
template <class T>
inline T step_sum(T d, T w) {
    if constexpr (std::is_floating_point_v<T>)
        return d + w;
    else
        return T(std::min<uint32_t>(uint32_t(d) + w, far_value<T>()));
}

// The weights a transform runs with: integers clamped into the output
// type, and the straight-step weight lowered to the diagonal one when the
// diagonal is cheaper and the image has room for diagonal steps.
template <class T>
struct Weights {
    T a, b, c;
};
template <class T, class M>
Weights<T> settle(const M* m, int kernel, int width, int height) {
    auto conv = [](M v) {
        if constexpr (std::is_floating_point_v<T>)
            return T(v);
        else
            return T(std::min<M>(v, M(far_value<T>())));
    };
    Weights<T> w{conv(m[0]), conv(m[1]), kernel == 5 ? conv(m[2]) : T(0)};
    if (w.a > w.b && width >= 2 && height >= 2) w.a = w.b;
    return w;
}

// The two-pass chamfer transform as defined: every neighbour of the mask
// half, one pixel at a time. d holds w x h values with row stride `stride`.
template <class T>
void chamfer(const uint8_t* src, int ss, T* d, int stride, int w, int h, int kernel, Weights<T> m) {
    struct N {
        int dx, dy;
        T wt;
    };
    const N half3[] = {{-1, 0, m.a}, {-1, -1, m.b}, {0, -1, m.a}, {1, -1, m.b}};
    const N half5[] = {{-1, 0, m.a}, {-1, -1, m.b}, {0, -1, m.a}, {1, -1, m.b},
                       {-2, -1, m.c}, {2, -1, m.c}, {-1, -2, m.c}, {1, -2, m.c}};
    const N* nb = kernel == 5 ? half5 : half3;
    const int nn = kernel == 5 ? 8 : 4;
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) d[y * stride + x] = src[y * ss + x] == 0 ? T(0) : far_value<T>();
    auto relax = [&](int x, int y, int sign) {
        T v = d[y * stride + x];
        for (int i = 0; i < nn; ++i) {
            const int nx = x + sign * nb[i].dx, ny = y + sign * nb[i].dy;
            if (nx < 0 || ny < 0 || nx >= w || ny >= h) continue;
            v = std::min(v, step_sum(d[ny * stride + nx], nb[i].wt));
        }
        d[y * stride + x] = v;
    };
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) relax(x, y, 1);
    for (int y = h - 1; y >= 0; --y)
        for (int x = w - 1; x >= 0; --x) relax(x, y, -1);
}

// The eikonal update from the smaller fixed horizontal neighbour a and the
// smaller fixed vertical neighbour b (infinity for none; not both).
inline float eikonal(float a, float b) {
    const float diff = a - b;
    if (!(std::fabs(diff) < 1.0f)) return std::min(a, b) + 1.0f;
    return 0.5f * (a + b + std::sqrt(2.0f - diff * diff));
}

}  // namespace zeb::ref
