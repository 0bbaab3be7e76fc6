// SPDX-License-Identifier: Apache-2.0
// The state of the fixed-size Gaussian mixture model.
#pragma once

#include <cstdint>

namespace zeb::gauss_state {

inline constexpr int kSlots = 5;  // component slots per pixel

// One mixture component; the mean's unused channels stay 0 in grey frames.
struct Component {
    double weight;
    int32_t count;   // frames this component has matched, saturating
    float var;       // variance per channel
    float mean[3];
    float key;       // weight / standard deviation: the order of the components
};
static_assert(sizeof(Component) == 32);

struct State {
    Component* comps;    // kSlots per pixel, row-major pixels
    uint8_t* used;       // plane: components in use per pixel
    uint8_t* lastMask;   // plane: the last classification
    int32_t width, height, channels;
    int32_t frames;      // frames seen, the first (InitAlloc's) included
    // The model, defaults overridden by the caller's record.
    int32_t history, numGauss;
    double backgroundRatio, matchThreshold, noiseSigma, initialWeight, initialVariance;
};

}  // namespace zeb::gauss_state
