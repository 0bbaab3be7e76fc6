// SPDX-License-Identifier: Apache-2.0
// The store kinds of the per-pixel kernels (the row loop that uses them is
// drive_row in core/simd-inl.h).
#pragma once

#include <cstdint>

namespace zeb {

enum class Store { Cached, Stream };

}  // namespace zeb
