// SPDX-License-Identifier: Apache-2.0
// zebcore: allocation, processor features and cache size. Compiled with
// ZEBCORE_TEST_HOOKS it also carries the failure injection of
// zebcore_test_hooks.h (the test suite's build only).
#include "zebcore.h"

#include <cpuid.h>
#include <cstdlib>
#include <initializer_list>
#include <unistd.h>

#if defined(ZEBCORE_TEST_HOOKS)
#include <atomic>

#include "zebcore_test_hooks.h"
#endif

namespace {

#if defined(ZEBCORE_TEST_HOOKS)
std::atomic<int64_t> g_calls{0};
std::atomic<int64_t> g_fail_at{0};
std::atomic<int64_t> g_live{0};
std::atomic<int> g_fail_cache{0};
#endif

bool cpuid(unsigned leaf, unsigned sub, unsigned r[4]) {
    return __get_cpuid_count(leaf, sub, &r[0], &r[1], &r[2], &r[3]) != 0;
}

uint64_t xgetbv0() {
    unsigned lo, hi;
    __asm__ volatile("xgetbv" : "=a"(lo), "=d"(hi) : "c"(0));
    return (uint64_t(hi) << 32) | lo;
}

uint64_t detect_features() {
    unsigned r[4] = {};
    if (!cpuid(1, 0, r)) return 0;
    const unsigned c = r[2], d = r[3];
    uint64_t f = 0;
    if (d & (1u << 23)) f |= ZEB_CPU_MMX;
    if (d & (1u << 25)) f |= ZEB_CPU_SSE;
    if (d & (1u << 26)) f |= ZEB_CPU_SSE2;
    if (c & (1u << 0)) f |= ZEB_CPU_SSE3;
    if (c & (1u << 9)) f |= ZEB_CPU_SSSE3;
    if (c & (1u << 22)) f |= ZEB_CPU_MOVBE;
    if (c & (1u << 19)) f |= ZEB_CPU_SSE41;
    if (c & (1u << 20)) f |= ZEB_CPU_SSE42;
    if (c & (1u << 23)) f |= ZEB_CPU_POPCNT;
    if (c & (1u << 25)) f |= ZEB_CPU_AES;
    if (c & (1u << 1)) f |= ZEB_CPU_CLMUL;
    // The AVX family counts only when the OS saves the YMM (and ZMM) state.
    const bool osxsave = (c & (1u << 27)) != 0;
    const uint64_t xcr0 = osxsave ? xgetbv0() : 0;
    const bool ymm = (xcr0 & 0x6) == 0x6;
    const bool zmm = (xcr0 & 0xe6) == 0xe6;
    if (ymm && (c & (1u << 28))) f |= ZEB_CPU_AVX;
    if (ymm && (c & (1u << 29))) f |= ZEB_CPU_F16C;
    if (ymm && (c & (1u << 12))) f |= ZEB_CPU_FMA;
    unsigned e[4] = {};
    if (cpuid(7, 0, e)) {
        if (e[1] & (1u << 3)) f |= ZEB_CPU_BMI1;
        if (e[1] & (1u << 8)) f |= ZEB_CPU_BMI2;
        if (ymm && (e[1] & (1u << 5))) f |= ZEB_CPU_AVX2;
        if (zmm && (e[1] & (1u << 16))) f |= ZEB_CPU_AVX512F;
        if (zmm && (e[1] & (1u << 17))) f |= ZEB_CPU_AVX512DQ;
        if (zmm && (e[1] & (1u << 30))) f |= ZEB_CPU_AVX512BW;
        if (zmm && (e[1] & (1u << 31))) f |= ZEB_CPU_AVX512VL;
    }
    return f;
}

// Largest data or unified cache described by one of the deterministic
// cache-parameter leaves (4, or 0x8000001D): each sub-leaf describes one
// cache until a sub-leaf of type 0. 0 if the leaf is beyond the processor's
// highest leaf or describes no cache.
int64_t largest_cache_in_leaf(unsigned leaf) {
    unsigned r[4] = {};
    int64_t best = 0;
    for (unsigned i = 0; i < 16; ++i) {
        if (!cpuid(leaf, i, r)) break;
        const unsigned type = r[0] & 0x1f;
        if (type == 0) break;
        if (type != 1 && type != 3) continue;  // data or unified
        const int64_t ways = ((r[1] >> 22) & 0x3ff) + 1;
        const int64_t parts = ((r[1] >> 12) & 0x3ff) + 1;
        const int64_t line = (r[1] & 0xfff) + 1;
        const int64_t sets = int64_t(r[2]) + 1;
        const int64_t size = ways * parts * line * sets;
        if (size > best) best = size;
    }
    return best;
}

// The largest data or unified cache, 0 if none is reported. A processor
// describes its caches through leaf 4 or through extended leaf 0x8000001D
// (valid when leaf 0x80000001 sets ECX bit 22, topology extensions); where
// leaf 4 is reserved it reads as zeros, that is no cache. Both leaves that
// are present are read and the larger answer kept; the operating system's
// figures serve when neither describes a cache.
int64_t largest_data_cache() {
    unsigned r[4] = {};
    int64_t best = largest_cache_in_leaf(4);
    if (cpuid(0x80000001u, 0, r) && (r[2] & (1u << 22))) {
        const int64_t ext = largest_cache_in_leaf(0x8000001Du);
        if (ext > best) best = ext;
    }
    if (best == 0) {
        for (int name : {_SC_LEVEL3_CACHE_SIZE, _SC_LEVEL2_CACHE_SIZE, _SC_LEVEL1_DCACHE_SIZE}) {
            const long s = sysconf(name);
            if (s > best) best = s;
        }
    }
    return best;
}

}  // namespace

extern "C" {

void* zebMalloc(int32_t length) {
    if (length <= 0) return nullptr;
#if defined(ZEBCORE_TEST_HOOKS)
    const int64_t n = ++g_calls;
    const int64_t at = g_fail_at.load();
    if (at > 0 && n == at) return nullptr;
#endif
    const size_t rounded = (size_t(length) + 63) & ~size_t(63);
    void* p = std::aligned_alloc(64, rounded);
#if defined(ZEBCORE_TEST_HOOKS)
    if (p) ++g_live;
#endif
    return p;
}

void zebFree(void* ptr) {
    if (!ptr) return;
#if defined(ZEBCORE_TEST_HOOKS)
    --g_live;
#endif
    std::free(ptr);
}

uint64_t zebGetEnabledCpuFeatures(void) {
    static const uint64_t features = detect_features();
    return features;
}

int32_t zebGetMaxCacheSizeB(int32_t* pSizeByte) {
    if (!pSizeByte) return -8;
    static const int64_t size = largest_data_cache();
#if defined(ZEBCORE_TEST_HOOKS)
    if (g_fail_cache.load()) return -11;
#endif
    if (size <= 0) return -11;
    *pSizeByte = size > INT32_MAX ? INT32_MAX : int32_t(size);
    return 0;
}

#if defined(ZEBCORE_TEST_HOOKS)
void zebTestFailMallocAt(int32_t n) {
    g_calls = 0;
    g_fail_at = n > 0 ? n : 0;
}

int64_t zebTestLiveBlocks(void) { return g_live.load(); }

void zebTestFailCacheQuery(int32_t fail) { g_fail_cache = fail ? 1 : 0; }
#endif

}  // extern "C"
