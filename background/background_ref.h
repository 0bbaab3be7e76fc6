// SPDX-License-Identifier: Apache-2.0
// Per-pixel definitions of the background-modelling families that have
// vector kernels: the vector bodies repeat them operation for operation.
#pragma once

#include <cmath>
#include <cstdint>

namespace zeb::ref {

// Motion history: the timestamp where the silhouette is set, else the old
// value unless it is below the limit (a NaN is not below it).
template <class S>
inline float mhi(S silhouette, float old, float timestamp, float limit) {
    if (silhouette != S(0)) return timestamp;
    return old < limit ? 0.f : old;
}

// A background channel: sum x (1 / W) clamped to [0, 255], rounded to
// nearest with ties to even.
inline uint8_t bg_channel(float sum, float invW) {
    float v = sum * invW;
    v = v < 0.f ? 0.f : (v > 255.f ? 255.f : v);
    return uint8_t(std::nearbyint(v));
}

}  // namespace zeb::ref
