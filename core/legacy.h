// Transitional support for kernel files not yet written on Highway; removed
// once every family dispatches through core/simd_dispatch.h.
#pragma once

#include <immintrin.h>

#include <cstdint>

#include "core/row_driver.h"

extern "C" int32_t zeb_simd_target;

#define ZEB_VNS impl

namespace zeb {

inline bool use_avx2() { return zeb_simd_target >= 1; }

template <int kVecBytes, int kBlock, class O, class Scalar, class Block>
inline __attribute__((always_inline)) void drive_row(O* out, int n, Scalar&& scalar, Block&& block) {
    const auto addr = reinterpret_cast<std::uintptr_t>(out);
    const int head = int(((kVecBytes - addr % kVecBytes) % kVecBytes) / sizeof(O));
    int x = 0;
    for (const int e = head < n ? head : n; x < e; ++x) scalar(x);
    for (; x + kBlock <= n; x += kBlock) block(x);
    for (; x < n; ++x) scalar(x);
}

}  // namespace zeb

namespace zeb::impl {
inline constexpr int kUnroll = 4;
}
