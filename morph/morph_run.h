// SPDX-License-Identifier: Apache-2.0
// The image drivers of dilation and erosion, shared by the state-based
// operations and the min/max filters.
#pragma once

#include <cstdint>

#include "morph/morph_state.h"

namespace zeb::morph {

// Dilation (kMax) or erosion of a W x H image of ch-channel pixels of T
// with the prepared header h. Border pixels are replicated or, with inMem,
// read from memory around the ROI. work holds state_work(h, W, inMem)
// bytes (any alignment). Source and destination do not overlap.
template <class T>
void run(bool kMax, const T* src, int ss, T* dst, int ds, int W, int H, const Header* h, bool inMem, void* work);

// The same for packed 1-bit images (eight pixels a byte, most significant
// bit first); bits past W in the last byte of a destination row are kept.
void run_bits(bool kMax, const uint8_t* src, int ss, uint8_t* dst, int ds, int W, int H, const Header* h, bool inMem,
              void* work);

}  // namespace zeb::morph
