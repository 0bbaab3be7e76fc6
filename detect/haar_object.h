// SPDX-License-Identifier: Apache-2.0
// The Haar classifier object: a header, the classifier records and the
// rectangle records in one allocation. The layout is part of the interface
// (documented in zebcv/detect.h) and pinned by the static_asserts below.
#pragma once

#include <cstddef>
#include <cstdint>

#include "zebcv.h"

namespace zeb::haar {

// Four corner points and a weight. Feature value:
// weight * (P0 - P1 - P2 + P3).
template <class V>
struct Rect {
    ZebiPoint p[4];
    V weight;
};

template <class V>
struct Classifier {
    int32_t nRects;
    Rect<V>* rects;
    V threshold;
    V val1;
    V val2;
    int32_t identity;  // index in the caller's arrays * 256, + 1 when tilted
};

template <class V>
struct Object {
    int32_t nClassifiers;
    int32_t nRects;
    Classifier<V>* classifiers;
    int32_t window[4];  // left, top, right-or-width, bottom-or-height
    int32_t state;      // lowest bit set: features may not be tilted
    int32_t nTwo;       // classifiers with two rectangles, at the front
    int32_t nTwoThree;  // ... followed by those with three
    int32_t nLaid;      // rectangles laid out
    int32_t flag;       // every classifier's first weight truncates to -1
};

static_assert(sizeof(Rect<float>) == 36 && sizeof(Rect<int32_t>) == 36);
static_assert(sizeof(Classifier<float>) == 32 && offsetof(Classifier<float>, rects) == 8 &&
              offsetof(Classifier<float>, identity) == 28);
static_assert(sizeof(Object<float>) == 56 && offsetof(Object<float>, window) == 16 &&
              offsetof(Object<float>, state) == 32 && offsetof(Object<float>, flag) == 48);

}  // namespace zeb::haar

struct ZebiHaarClassifier_32f : zeb::haar::Object<Zeb32f> {};
struct ZebiHaarClassifier_32s : zeb::haar::Object<Zeb32s> {};
