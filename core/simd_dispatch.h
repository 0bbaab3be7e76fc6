// SPDX-License-Identifier: Apache-2.0
// Instruction-set targets of the vector kernels. Kernel sources are
// compiled once per target with Highway's foreach_target mechanism; each
// target's kernels live in namespace zeb::N_<TARGET>. One process-wide
// index, written once at load (the best target this processor runs), picks
// the target for every kernel call:
//
//     ZEB_DISPATCH(absdiff::image<uint8_t, Store::Cached>)(args...);
//
// names the kernel by its path below the target namespace and yields the
// function pointer of the chosen target. The table behind it is constant;
// a target this build did not compile falls back to the next lower one.
// Include after <hwy/highway.h>, outside any target namespace.
#pragma once

#include <hwy/highway.h>

#include <cstdint>

extern "C" {
// 0 SSSE3, 1 AVX2, 2 AVX-512 (see zeb::SimdTarget). Written once at load;
// tests and benchmarks lower it to run every target.
extern int32_t zeb_simd_target;
}

namespace zeb {

enum SimdTarget : int32_t { kSimdSsse3 = 0, kSimdAvx2 = 1, kSimdAvx512 = 2, kSimdTargets = 3 };

// The best target that this processor runs and this build compiled.
int32_t max_simd_target();

// "SSSE3", "AVX2" or "AVX-512".
const char* simd_target_name(int32_t target);

}  // namespace zeb

#if HWY_TARGETS & HWY_AVX2
#define ZEB_SIMD_AVX2(...) &::zeb::N_AVX2::__VA_ARGS__
#else
#define ZEB_SIMD_AVX2(...) &::zeb::N_SSSE3::__VA_ARGS__
#endif
#if HWY_TARGETS & HWY_AVX3
#define ZEB_SIMD_AVX3(...) &::zeb::N_AVX3::__VA_ARGS__
#else
#define ZEB_SIMD_AVX3(...) ZEB_SIMD_AVX2(__VA_ARGS__)
#endif

#define ZEB_DISPATCH(...)                                                                  \
    ([]() noexcept {                                                                       \
        using Fn = decltype(&::zeb::N_SSSE3::__VA_ARGS__);                                 \
        static constexpr Fn table[::zeb::kSimdTargets] = {                                 \
            &::zeb::N_SSSE3::__VA_ARGS__, ZEB_SIMD_AVX2(__VA_ARGS__), ZEB_SIMD_AVX3(__VA_ARGS__)}; \
        return table[zeb_simd_target];                                                    \
    }())
