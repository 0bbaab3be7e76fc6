/* SPDX-License-Identifier: Apache-2.0 */
/* zebcore: the support library zebcv runs on. It allocates, releases and
 * reports what the processor offers. This header compiles as C99 and C++. */
#ifndef ZEBCORE_H
#define ZEBCORE_H

#include <stdint.h>

#if defined(ZEBCORE_BUILDING)
#  define ZEBCORE_API __attribute__((visibility("default")))
#else
#  define ZEBCORE_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* Feature bits of zebGetEnabledCpuFeatures. A bit is set when the processor
 * has the feature and, for the AVX family, the operating system saves the
 * wider registers. */
#define ZEB_CPU_MMX      0x1ULL
#define ZEB_CPU_SSE      0x2ULL
#define ZEB_CPU_SSE2     0x4ULL
#define ZEB_CPU_SSE3     0x8ULL
#define ZEB_CPU_SSSE3    0x10ULL
#define ZEB_CPU_MOVBE    0x20ULL
#define ZEB_CPU_SSE41    0x40ULL
#define ZEB_CPU_SSE42    0x80ULL
#define ZEB_CPU_AVX      0x100ULL
#define ZEB_CPU_AES      0x200ULL
#define ZEB_CPU_CLMUL    0x400ULL
#define ZEB_CPU_F16C     0x800ULL
#define ZEB_CPU_AVX2     0x1000ULL
#define ZEB_CPU_FMA      0x2000ULL
#define ZEB_CPU_POPCNT   0x4000ULL
#define ZEB_CPU_BMI1     0x8000ULL
#define ZEB_CPU_BMI2     0x10000ULL
#define ZEB_CPU_AVX512F  0x20000ULL
#define ZEB_CPU_AVX512BW 0x40000ULL
#define ZEB_CPU_AVX512DQ 0x80000ULL
#define ZEB_CPU_AVX512VL 0x100000ULL

/* Allocates length bytes aligned to 64. Returns null for length <= 0 or on
 * failure. */
ZEBCORE_API void* zebMalloc(int32_t length);
/* Releases a block from zebMalloc; null is ignored. */
ZEBCORE_API void zebFree(void* ptr);
/* The feature mask of this processor (ZEB_CPU_* bits). */
ZEBCORE_API uint64_t zebGetEnabledCpuFeatures(void);
/* Stores the size in bytes of the largest data cache. Returns 0, -8 for a
 * null pointer, or -11 when the processor does not report its caches (the
 * result is then left untouched). */
ZEBCORE_API int32_t zebGetMaxCacheSizeB(int32_t* pSizeByte);

#ifdef __cplusplus
}
#endif
#endif /* ZEBCORE_H */
