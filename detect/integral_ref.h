// SPDX-License-Identifier: Apache-2.0
// Per-entry definitions of the integral tables, shared by the scalar heads
// and tails of the vector kernels. Integer tables are handled as uint32_t so
// that their sums wrap without undefined behaviour.
#pragma once

#include <cstdint>
#include <type_traits>

namespace zeb::ref {

// A source value or its square.
template <bool kSq>
inline uint32_t pixel(uint8_t v) {
    return kSq ? uint32_t(v) * v : v;
}

// An upright entry from the entry above and the 32-bit running row sum.
inline uint32_t add_row_sum(uint32_t above, uint32_t s) { return above + s; }
inline float add_row_sum(float above, uint32_t s) { return above + float(int32_t(s)); }

// A tilted entry: the source values (pair, already summed exactly) plus the
// two diagonal neighbours in the row above, minus the entry two rows above.
template <class O>
inline O tilted_entry(uint32_t pair, O left, O right, O up) {
    if constexpr (std::is_same_v<O, uint32_t>)
        return pair + left + right - up;
    else
        return O(int32_t(pair)) + left + right - up;
}

}  // namespace zeb::ref
