// SPDX-License-Identifier: Apache-2.0
// Per-pixel definitions of the difference and accumulation families. The
// kernels use these for their scalar heads and tails and the vector bodies
// repeat them operation for operation, so results agree bit for bit.
#pragma once

#include <cstdint>
#include <cstring>

namespace zeb::ref {

inline float to_f(uint8_t v) { return float(v); }
inline float to_f(int8_t v) { return float(v); }
inline float to_f(uint16_t v) { return float(v); }
inline float to_f(float v) { return v; }

// The accumulation operations; V is float or a float vector.
struct Add {
    template <class V>
    static V apply(V a, V s1, V, V) { return a + s1; }
};
struct Square {
    template <class V>
    static V apply(V a, V s1, V, V) { return a + s1 * s1; }
};
struct Product {
    template <class V>
    static V apply(V a, V s1, V s2, V) { return a + s1 * s2; }
};
// Difference form: (s - A) * alpha + A, three roundings.
struct Weighted {
    template <class V>
    static V apply(V a, V s1, V, V alpha) { return (s1 - a) * alpha + a; }
};

inline uint8_t abs_diff(uint8_t a, uint8_t b) { return uint8_t(a > b ? a - b : b - a); }
inline uint16_t abs_diff(uint16_t a, uint16_t b) { return uint16_t(a > b ? a - b : b - a); }
// The single-precision difference with its sign bit cleared.
inline float abs_diff(float a, float b) {
    const float d = a - b;
    uint32_t u;
    std::memcpy(&u, &d, 4);
    u &= 0x7fffffffu;
    float r;
    std::memcpy(&r, &u, 4);
    return r;
}

}  // namespace zeb::ref
