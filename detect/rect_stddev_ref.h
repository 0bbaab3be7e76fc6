// SPDX-License-Identifier: Apache-2.0
// Per-output definition of the rectangle standard deviations, used by the
// scalar tails of the vector kernels. Integer tables are read as uint32_t so
// that corner sums wrap; the wrapped sum is then read as signed.
#pragma once

#include <cmath>
#include <cstdint>
#include <type_traits>

namespace zeb::ref {

// The four corners of both tables relative to an output position (x, y):
// corner j is read at row y + dy[j], column x + dx[j].
struct CornerRows {
    int dy[4];
    int dx[4];
};

// What every output of one call shares.
struct StdDevConsts {
    double recip;  // 1 / (double)(float)A, upright float forms
    float areaF;   // A, upright scaled form
    double areaD;  // A, tilted forms
    double scale;  // the float 2^-scaleFactor, widened
};

inline StdDevConsts consts(int64_t area, float scale) {
    return {1.0 / double(float(area)), float(area), double(area), double(scale)};
}

// (int) of x >= 0, 2^31 and more saturated, NaN as 0.
inline int32_t saturated_trunc(double x) {
    if (x != x) return 0;
    if (x >= 2147483648.0) return INT32_MAX;
    return int32_t(x);
}

template <class T>
inline double as_double(T v) {
    if constexpr (std::is_same_v<T, uint32_t>)
        return double(int32_t(v));
    else
        return double(v);
}

// The corner combination of one table at output x, in the table's type.
template <bool kTilted, class T>
inline T corners(const T* const* p, int x) {
    if constexpr (kTilted)
        return T(T(T(p[0][x] - p[1][x]) + p[2][x]) - p[3][x]);
    else
        return T(T(T(p[0][x] - p[1][x]) - p[2][x]) + p[3][x]);
}

template <bool kTilted, class TO, class TI, class TQ>
inline TO stddev(const TI* const* pi, const TQ* const* pq, int x, const StdDevConsts& k) {
    const double sq = as_double(corners<kTilted>(pq, x));
    if constexpr (!kTilted && std::is_same_v<TO, float>) {
        float sum;
        if constexpr (std::is_same_v<TI, float>)
            sum = corners<false>(pi, x);
        else
            sum = float(int32_t(corners<false>(pi, x)));
        const double mean = double(sum) * k.recip;
        const float var = float(sq * k.recip - mean * mean);
        return var > 0.0f ? std::sqrt(var) : 0.0f;
    } else if constexpr (!kTilted) {
        const float mean = float(int32_t(corners<false>(pi, x))) / k.areaF;
        float var = float(sq) / k.areaF - mean * mean;
        if (!(var > 0.0f)) var = 0.0f;
        return saturated_trunc(std::sqrt(double(var)) * k.scale + 0.5);
    } else {
        double sum;
        if constexpr (std::is_same_v<TI, float>)
            sum = double(pi[0][x]) - double(pi[1][x]) + double(pi[2][x]) - double(pi[3][x]);
        else
            sum = as_double(corners<true>(pi, x));
        const double mean = sum / k.areaD;
        double var = sq / k.areaD - mean * mean;
        if (!(var > 0.0)) var = 0.0;
        if constexpr (std::is_same_v<TO, float>)
            return std::sqrt(float(var));
        else
            return saturated_trunc(std::sqrt(var) * k.scale + 0.5);
    }
}

}  // namespace zeb::ref
