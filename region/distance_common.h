// SPDX-License-Identifier: Apache-2.0
// What the distance-transform entries and their per-target kernels share.
#pragma once

#include <cstdint>

namespace zeb::dist {

// Which neighbours of the rows above or below a chamfer pass combines:
// kEqual when a == b (the three neighbours share one weight: one sum of
// their minimum), kNoDiag when b >= 2a on a 3x3 mask with integer sums
// (two straight steps never cost more than a diagonal, so the transform
// equals the one without diagonals), else kAll.
enum class Mix { kAll, kEqual, kNoDiag };

// The work arrays of the exact transform's row pass, each n floats (n not
// below the width or the height), carved from the caller's buffer.
struct Envelope {
    const float* sq;   // i * i
    const float* rcp;  // 0.5 / k (entry 0 unused)
    int32_t* v;        // vertex columns
    float* z;          // left boundary of each vertex's parabola
    float* hv;         // f(v) + v^2 of each vertex
    float* f;          // the row's column-pass values; the column pass's running counts
};

}  // namespace zeb::dist
