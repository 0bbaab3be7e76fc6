// SPDX-License-Identifier: Apache-2.0
// Entry points of the separable-filter kernels. The kernels are compiled
// once, for every vector target, in filter/pipeline_kernels.cpp; each entry
// below runs the target chosen at load. Arguments are checked by the
// exports before they get here.
#pragma once

#include <cstdint>

#include "core/border.h"
#include "filter/pipeline_common.h"

namespace zeb::pipe {

// A row pass over a whole ROI into the caller's row buffers. The integer
// forms carry both the coefficients pre-scaled to single precision (c) and
// the raw kernel with its scale (for the exact integer shortcuts).
template <class S, class D>
struct RowPass {
    const S* src;
    int srcStep;
    D* const* dst;
    int width, height, channels, k, anchor;
    border::Spec border;
    const S* value;  // one border value per channel
    S* edge;         // scratch of 2 * (2k - 2) * channels samples
    const float* c;  // k coefficients in single precision
    const int16_t* kern = nullptr;
    float scale = 1.f;    // 1 / divisor
    bool exact = false;   // integer sums of kern stay in 32 bits
    int pairShift = -1;   // 8u: byte-pair shortcut with |divisor| == 2^pairShift
    bool negate = false;  // the divisor is negative
};

// A column pass over a whole ROI: rows[y .. y + k - 1] into destination
// row y. Float forms read c; integer forms kern and scale, with exact
// marking sums that single precision holds without rounding.
template <class S, class D>
struct ColumnPass {
    const S* const* rows;
    D* dst;
    int dstStep, width, height, channels, k;
    const float* c = nullptr;
    const int16_t* kern = nullptr;
    float scale = 1.f;
    bool exact = false;
};

// A whole Gaussian filter over a ROI with the coefficient table of its
// kernel setup (float for 32f, unsigned fixed point otherwise).
template <class T>
struct GaussImage {
    const T* src;
    int srcStep;
    T* dst;
    int dstStep, width, height, channels, k;
    border::Spec border;
    const T* value;
    StripBuffers buffers;
    const unsigned char* table;
};

// Instantiated for (16s,16s), (16u,16u), (8u,16s), (32f,32f).
template <class S, class D>
void run_row_pass(const RowPass<S, D>& job);
// Instantiated for (32f,32f), (16s,16s), (16s,8u), (16s,8s), (16u,16u).
template <class S, class D>
void run_column_pass(const ColumnPass<S, D>& job);
// Instantiated for 8u, 16u, 16s, 32f.
template <class T>
void run_gauss(const GaussImage<T>& job);

}  // namespace zeb::pipe
