// The row loop every per-pixel kernel shares: a scalar head until the output
// reaches a vector boundary, a vector body of whole blocks with aligned
// (cached or streaming) stores, a scalar tail. Pixel pointers are aligned to
// their element size, as the C types require, so the boundary is always
// reachable.
#pragma once

#include <immintrin.h>

#include <cstdint>

namespace zeb {

enum class Store { Cached, Stream };

// scalar(x) computes element x; block(x) computes elements x .. x+kBlock-1
// with out+x on a kVecBytes boundary. The caller fences after streaming.
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
