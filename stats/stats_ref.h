// SPDX-License-Identifier: Apache-2.0
// Scalar definitions of the statistics families. The vector kernels use
// these for their remainders and repeat them operation for operation in
// their bodies, so every instruction-set path gives the same bits.
//
// Orders of floating-point additions:
// - Moments of 32f sources (mean, sum of squares), general kernel: sixteen
//   single-precision lanes per row, lane x % 16 taking the value of column
//   x; unselected pixels add +0. At the end of each row every lane is
//   converted to double and added to its own double lane (the blocked
//   kernel), or only once after the last row (the aligned kernel). The
//   sixteen double lanes are added in lane order at the end.
// - The small-image kernel of the unmasked one-channel form: four
//   single-precision lanes, two rows at a time, column x of both rows into
//   lane x % 4 (first row first), remainder columns into lane 0; the four
//   lanes are converted to double and added in lane order.
// - The deviation pass of 32f sources: sixteen double lanes over the whole
//   image, lane x % 16 taking (x - mean)^2, added in lane order.
// - Norms of 32f sources: per row four single-precision lanes, columns of
//   whole groups of four into lane x % 4, remainder columns into lane 0;
//   the row's lanes fold to two (lane 0 + lane 2, lane 1 + lane 3), which
//   are converted to double and added to two totals; the totals are added
//   at the end.
#pragma once

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <type_traits>

#include "zebcv.h"

namespace zeb::stats {

inline constexpr int kMomentLanes = 16;
inline constexpr int kNormLanes = 4;
// Values of one channel of a three-channel row are copied out in chunks of
// this many pixels (a multiple of every lane count above).
inline constexpr int kChunk = 512;

enum class Kind { Inf, L1, L2 };
enum class Fam { Norm, Diff, Rel };

inline bool selected(const uint8_t* m, int x) { return m == nullptr || m[x] != 0; }

// ---- moments ----

// Exact count, sum and sum of squares of integer values.
struct IntMoments {
    int64_t n = 0;
    int64_t s = 0;
    uint64_t q = 0;
};

template <class T>
inline void int_moments(const T* p, const uint8_t* m, int n, IntMoments& r) {
    for (int x = 0; x < n; ++x) {
        if (!selected(m, x)) continue;
        const int64_t v = p[x];
        ++r.n;
        r.s += v;
        r.q += uint64_t(v * v);
    }
}

// Single-precision moment lanes of a run of columns starting at a column
// that is a multiple of kMomentLanes.
inline void float_moments(const float* p, const uint8_t* m, int n, float* s, float* q) {
    for (int x = 0; x < n; ++x) {
        const float v = selected(m, x) ? p[x] : 0.f;
        s[x % kMomentLanes] += v;
        q[x % kMomentLanes] += v * v;
    }
}

inline double lane_total(const double* d, int lanes) {
    double t = 0;
    for (int j = 0; j < lanes; ++j) t += d[j];
    return t;
}

// The small-image kernel of the unmasked one-channel 32f form.
inline void plain_moments(const float* src, int step, int w, int h, double& S, double& Q) {
    float s[4] = {0, 0, 0, 0}, q[4] = {0, 0, 0, 0};
    auto at = [&](int y, int x) {
        float v;
        std::memcpy(&v, reinterpret_cast<const char*>(src) + std::ptrdiff_t(y) * step + std::ptrdiff_t(x) * 4, 4);
        return v;
    };
    for (int y = 0; y < h; y += 2) {
        const bool two = y + 1 < h;
        int x = 0;
        for (; x + 4 <= w; x += 4)
            for (int j = 0; j < 4; ++j) {
                const float a = at(y, x + j);
                s[j] += a;
                q[j] += a * a;
                if (two) {
                    const float b = at(y + 1, x + j);
                    s[j] += b;
                    q[j] += b * b;
                }
            }
        for (; x < w; ++x) {
            const float a = at(y, x);
            s[0] += a;
            q[0] += a * a;
            if (two) {
                const float b = at(y + 1, x);
                s[0] += b;
                q[0] += b * b;
            }
        }
    }
    S = double(s[0]) + double(s[1]) + double(s[2]) + double(s[3]);
    Q = double(q[0]) + double(q[1]) + double(q[2]) + double(q[3]);
}

// Deviation lanes of a run of columns starting at a multiple of
// kMomentLanes.
inline void deviation(const float* p, const uint8_t* m, int n, double mean, double* d) {
    for (int x = 0; x < n; ++x) {
        const double v = selected(m, x) ? double(p[x]) - mean : 0.0;
        d[x % kMomentLanes] += v * v;
    }
}

// mean and stdDev from a count and the sums S and Q.
inline void finish_moments(double n, double S, double Q, double& mean, double& sd) {
    if (n == 0) {
        mean = sd = 0.0;
        return;
    }
    mean = S / n;
    sd = std::sqrt(std::fabs(Q / n - mean * mean));
}

// The one-pass deviation loses precision when the variance is small beside
// the squared mean; the 32f forms then take a second pass.
inline bool needs_second_pass(double mean, double sd) { return 0.05 * mean * mean > sd * sd; }

// ---- extrema ----

// Order-preserving keys: unsigned bytes as they are, signed bytes with the
// sign bit flipped, 16-bit unsigned values with the sign bit flipped to a
// signed key, floats as they are.
template <class T>
struct Key;
template <>
struct Key<uint8_t> {
    using K = uint8_t;
    static K of(uint8_t v) { return v; }
    static uint8_t value(K k) { return k; }
    static constexpr K lo = 0, hi = 0xff;
};
template <>
struct Key<int8_t> {
    using K = uint8_t;
    static K of(int8_t v) { return uint8_t(uint8_t(v) ^ 0x80u); }
    static int8_t value(K k) { return int8_t(uint8_t(k ^ 0x80u)); }
    static constexpr K lo = 0, hi = 0xff;
};
template <>
struct Key<uint16_t> {
    using K = int16_t;
    static K of(uint16_t v) { return int16_t(uint16_t(v ^ 0x8000u)); }
    static uint16_t value(K k) { return uint16_t(uint16_t(k) ^ 0x8000u); }
    static constexpr K lo = -32768, hi = 32767;
};
template <>
struct Key<float> {
    using K = float;
    static K of(float v) { return v; }
    static float value(K k) { return k; }
    static constexpr K lo = -std::numeric_limits<float>::infinity(), hi = std::numeric_limits<float>::infinity();
};

// Running extrema of a row in key order. For floats NaN never compares, so
// NaN pixels are skipped; an untouched state has mn > mx.
template <class T>
struct Extrema {
    using K = typename Key<T>::K;
    K mn = Key<T>::hi;
    K mx = Key<T>::lo;
    bool any = false;
};

template <class T>
inline void extrema(const T* p, const uint8_t* m, int n, Extrema<T>& e) {
    for (int x = 0; x < n; ++x) {
        if (!selected(m, x)) continue;
        const auto k = Key<T>::of(p[x]);
        e.any = true;
        if (k < e.mn) e.mn = k;
        if (k > e.mx) e.mx = k;
    }
}

// ---- norms ----

// |v| in the unsigned type of the same width (|-128| = 128 fits a byte).
inline uint8_t magnitude(uint8_t v) { return v; }
inline uint8_t magnitude(int8_t v) { return uint8_t(v < 0 ? -int(v) : int(v)); }
inline uint16_t magnitude(uint16_t v) { return v; }
inline uint8_t abs_diff(uint8_t a, uint8_t b) { return uint8_t(a > b ? a - b : b - a); }
inline uint8_t abs_diff(int8_t a, int8_t b) { return uint8_t(a > b ? int(a) - int(b) : int(b) - int(a)); }
inline uint16_t abs_diff(uint16_t a, uint16_t b) { return uint16_t(a > b ? a - b : b - a); }

// The bits of |v|: for non-negative floats integer order is float order,
// and NaN ranks above infinity, so a maximum over these propagates NaN.
inline int32_t abs_bits(float v) {
    int32_t b;
    std::memcpy(&b, &v, 4);
    return b & 0x7fffffff;
}
inline float from_bits(int32_t b) {
    float v;
    std::memcpy(&v, &b, 4);
    return v;
}

// The value a norm accumulates for one pixel: the source (Norm) or the
// difference (Diff, Rel), as a magnitude, square or single-precision
// value.
template <Kind K, Fam F, class T>
inline uint64_t int_term(T a, T b) {
    const uint64_t v = F == Fam::Norm ? magnitude(a) : abs_diff(a, b);
    return K == Kind::L2 ? v * v : v;
}
template <Kind K, class T>
inline uint64_t int_ref_term(T b) {
    const uint64_t v = magnitude(b);
    return K == Kind::L2 ? v * v : v;
}

// Exact integer norm totals of a run of pixels.
template <Kind K, Fam F, class T>
inline void int_norm(const T* a, const T* b, const uint8_t* m, int n, uint64_t& num, uint64_t& den) {
    for (int x = 0; x < n; ++x) {
        if (!selected(m, x)) continue;
        const uint64_t t = int_term<K, F>(a[x], F == Fam::Norm ? a[x] : b[x]);
        num = K == Kind::Inf ? (t > num ? t : num) : num + t;
        if (F == Fam::Rel) {
            const uint64_t r = int_ref_term<K>(b[x]);
            den = K == Kind::Inf ? (r > den ? r : den) : den + r;
        }
    }
}

template <Kind K, Fam F>
inline float f_term(float a, float b) {
    const float v = F == Fam::Norm ? a : a - b;
    return K == Kind::L2 ? v * v : from_bits(abs_bits(v));
}

// Lanes of one 32f row (L1 and L2); num and den hold kNormLanes floats
// each. The run starts at a multiple of kNormLanes; a run that ends the row
// sends its remainder columns to lane 0 (runs in the middle of a row are
// whole groups of four).
template <Kind K, Fam F>
inline void float_norm_lanes(const float* a, const float* b, const uint8_t* m, int n, float* num, float* den) {
    const int body = n - n % kNormLanes;
    for (int x = 0; x < n; ++x) {
        const int lane = x < body ? x % kNormLanes : 0;
        const bool sel = selected(m, x);
        num[lane] += sel ? f_term<K, F>(a[x], F == Fam::Norm ? a[x] : b[x]) : 0.f;
        if (F == Fam::Rel) den[lane] += sel ? f_term<K, Fam::Norm>(b[x], b[x]) : 0.f;
    }
}

// Folds a row's lanes into the two double totals.
inline void fold_row(const float* l, double& t0, double& t1) {
    t0 += double(l[0] + l[2]);
    t1 += double(l[1] + l[3]);
}

// Largest |value| bits of a 32f run (Inf).
template <Fam F>
inline void float_norm_max(const float* a, const float* b, const uint8_t* m, int n, int32_t& num, int32_t& den) {
    for (int x = 0; x < n; ++x) {
        if (!selected(m, x)) continue;
        const int32_t t = abs_bits(F == Fam::Norm ? a[x] : a[x] - b[x]);
        num = t > num ? t : num;
        if (F == Fam::Rel) {
            const int32_t r = abs_bits(b[x]);
            den = r > den ? r : den;
        }
    }
}

// num / den for the relative norms, with the zero-denominator rule: NaN
// (bits 0xFFF8000000000000) for 0/0, an infinity of the numerator's sign
// otherwise, and the warning status.
inline ZebStatus relative(double num, double den, bool root, double& out) {
    if (den == 0.0) {
        if (num == 0.0) {
            const uint64_t nanBits = 0xFFF8000000000000ull;
            std::memcpy(&out, &nanBits, 8);
        } else {
            out = num < 0 ? -std::numeric_limits<double>::infinity() : std::numeric_limits<double>::infinity();
        }
        return zebStsDivByZero;
    }
    out = root ? std::sqrt(num / den) : num / den;
    return zebStsNoErr;
}

}  // namespace zeb::stats
