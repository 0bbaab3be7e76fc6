// SPDX-License-Identifier: Apache-2.0
// The images of one accumulation call, shared by the entries and the
// per-target kernels.
#pragma once

#include <cstdint>

namespace zeb::accum {

// For the in-place forms in and out are both the accumulator; the two-source
// weighted sum reads in from its second source and writes a separate out.
// s2 is the second source of the products, mask the optional 8-bit mask.
template <class T>
struct Images {
    const T* s1;
    int s1Step;
    const T* s2;
    int s2Step;
    const uint8_t* mask;
    int maskStep;
    const float* in;
    int inStep;
    float* out;
    int outStep;
};

}  // namespace zeb::accum
