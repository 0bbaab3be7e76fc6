// SPDX-License-Identifier: Apache-2.0
// Per-pixel definitions of the fixed filters. The kernels use these for
// the scalar heads and tails of every row and for the columns beyond the
// ROI; the vector bodies repeat them operation for operation, so every
// target gives the same bits.
#pragma once

#include <cstdint>

#include "filter/fixed_filter.h"

namespace zeb::fixed::ref {

// A coefficient times a value: no rounding for 1 and -1.
template <class A>
inline A times(A v, int c) {
    return c == 1 ? v : c == -1 ? A(-v) : A(v * A(c));
}

// Sum of Taps::c[i] * ld(i) over the non-zero coefficients in index order;
// the first product starts the sum. A is int (8-bit sources, exact) or
// float.
template <class Taps, class A, class Ld>
inline A taps_sum(const Ld& ld) {
    A acc{};
    bool started = false;
    for (int i = 0; i < Taps::n; ++i) {
        if (Taps::c[i] == 0) continue;
        const A p = times(A(ld(i)), Taps::c[i]);
        acc = started ? A(acc + p) : p;
        started = true;
    }
    return acc;
}

// 8u8s result: sum / divisor rounded half away from zero, saturated
// symmetrically so that negating the sum negates the result.
inline int8_t div_round_8s(int32_t s, int32_t d) {
    const int64_t a = s < 0 ? -int64_t(s) : int64_t(s);
    const int64_t ad = d < 0 ? -int64_t(d) : int64_t(d);
    int64_t q = (a + ad / 2) / ad;
    if (q > 127) q = 127;
    return int8_t(((s < 0) != (d < 0)) ? -q : q);
}

// The result of output rule O for the row sum of filter D. The 8u8s rules
// go through a 16-bit line first (put for S16 / S16Neg, then div_round_8s).
template <Out O, class D>
inline void put(int16_t* p, int v) {
    *p = int16_t(O == Out::S16Neg ? -v : v);
}
template <Out O, class D>
inline void put(float* p, float v) {
    if constexpr (O == Out::F32Neg) v = -v;
    if constexpr (O == Out::F32Mean) v = v * (1.0f / float(cell_count<D>()));
    *p = v;
}
template <Out O, class D>
inline void put(uint8_t* p, int v) {
    *p = uint8_t((v + cell_count<D>() / 2) / cell_count<D>());
}

}  // namespace zeb::fixed::ref
