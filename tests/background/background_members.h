// SPDX-License-Identifier: Apache-2.0
// Every background-modelling export, one per line: the check tables and
// the sweep that each export has one are driven by this list.
#pragma once

#include "harness.h"

#define ZEB_BACKGROUND_MEMBERS(X)                 \
    X(zebiUpdateMotionHistory_8u32f_C1IR)         \
    X(zebiUpdateMotionHistory_16u32f_C1IR)        \
    X(zebiUpdateMotionHistory_32f_C1IR)           \
    X(zebiFGMMGetBufferSize_8u_C3R)               \
    X(zebiFGMMInit_8u_C3R)                        \
    X(zebiFGMMForeground_8u_C3R)                  \
    X(zebiFGMMBackground_8u_C3R)                  \
    X(zebiForegroundGaussianInitAlloc_8u_C1R)     \
    X(zebiForegroundGaussianInitAlloc_8u_C3R)     \
    X(zebiForegroundGaussian_8u_C1R)              \
    X(zebiForegroundGaussian_8u_C3R)              \
    X(zebiForegroundGaussianFree_8u_C1R)          \
    X(zebiForegroundGaussianFree_8u_C3R)          \
    X(zebiForegroundHistogramInitAlloc_8u_C1R)    \
    X(zebiForegroundHistogramInitAlloc_8u_C3R)    \
    X(zebiForegroundHistogram_8u_C1R)             \
    X(zebiForegroundHistogram_8u_C3R)             \
    X(zebiForegroundHistogramUpdate_8u_C1R)       \
    X(zebiForegroundHistogramUpdate_8u_C3R)       \
    X(zebiForegroundHistogramFree_8u_C1R)         \
    X(zebiForegroundHistogramFree_8u_C3R)

#define ZEB_BACKGROUND_TABLE(name) ZEB_TEST_TABLE(name);
ZEB_BACKGROUND_MEMBERS(ZEB_BACKGROUND_TABLE)
#undef ZEB_BACKGROUND_TABLE

namespace zt::bg {

// The MOG2-compatible FGMM parameters used across the tests.
inline ZebFGMMModel default_fgmm() {
    ZebFGMMModel m{};
    m.history = 500;
    m.varInit = 15.f;
    m.varMin = 4.f;
    m.varMax = 75.f;
    m.varThreshold = 16.f;
    m.backgroundRatio = 0.9f;
    m.varThresholdGen = 9.f;
    m.complexityPrior = 0.05f;
    m.shadowValue = 127;
    m.detectShadows = 1;
    m.shadowRatio = 0.5f;
    return m;
}

}  // namespace zt::bg
