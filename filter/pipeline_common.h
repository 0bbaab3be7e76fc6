// SPDX-License-Identifier: Apache-2.0
// Pieces of the separable-filter kernels that do not depend on the
// instruction set: conversion rules, coefficient sources and the layout of
// the Gaussian filter's strip buffers.
#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <type_traits>

#include "core/frame.h"

namespace zeb::pipe {

// The data-type code of a sample type (8u, 16u, 16s, 32f).
template <class T>
constexpr ZebDataType data_type() {
    static_assert(std::is_same_v<T, uint8_t> || std::is_same_v<T, uint16_t> || std::is_same_v<T, int16_t> ||
                  std::is_same_v<T, float>);
    return std::is_same_v<T, uint8_t>    ? zeb8u
           : std::is_same_v<T, uint16_t> ? zeb16u
           : std::is_same_v<T, int16_t>  ? zeb16s
                                         : zeb32f;
}

// Conversion of a finished single-precision value to the destination.
enum class Cvt { None, Trunc, Nearest };

template <class D>
struct Range {
    static constexpr float lo = float(std::numeric_limits<D>::lowest());
    static constexpr float hi = float(std::numeric_limits<D>::max());
};

// Clamps to D's range, then truncates or rounds to nearest (ties to even,
// the rounding mode every thread runs in); the vector stores do the same.
template <class D, Cvt C>
inline D cvt_scalar(float v) {
    if constexpr (std::is_same_v<D, float>) {
        return v;
    } else {
        v = v < Range<D>::lo ? Range<D>::lo : (v > Range<D>::hi ? Range<D>::hi : v);
        return D(int32_t(C == Cvt::Trunc ? v : std::nearbyint(v)));
    }
}

template <class D, Cvt C, bool kPost>
inline D finish_scalar(float acc, float post) {
    if constexpr (kPost) acc = acc * post;
    return cvt_scalar<D, C>(acc);
}

// Coefficient sources for the float kernels: a float array, or 16-bit
// integers times a scale (the reciprocal of a divisor, or 1).
struct FloatCoefs {
    const float* c;
    float operator()(int i) const { return c[i]; }
};
struct ScaledCoefs {
    const int16_t* k;
    float scale;
    float operator()(int i) const { return float(k[i]) * scale; }
};
struct TableCoefs {  // unsigned fixed-point table of a Gaussian kernel setup
    const unsigned char* t;
    float operator()(int i) const { return float(load_u<uint16_t>(t + 2 * i)); }
};

// A whole separable filter with borders on all four sides, strip by strip:
// filtered rows live in a ring of `ring` rows (at least strip + k - 1), the
// pointer array names the rows each strip's column pass reads, and rows
// wholly in a constant border share one precomputed filtered row.
struct StripBuffers {
    unsigned char* ring;  // ring rows, `pitch` bytes apart
    std::ptrdiff_t pitch;
    int ringRows;
    int strip;          // output rows per strip
    void* constSrc;     // one source row of border values
    void* constRow;     // its filtered row
    void* edge;         // border-extended row ends of the row pass
    const void** ptrs;  // strip + k - 1 row pointers
};

}  // namespace zeb::pipe
