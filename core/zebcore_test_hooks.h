// SPDX-License-Identifier: Apache-2.0
/* Failure injection for the test suite. Only the test build of zebcore
 * (target zebcore_test_hooks) defines these; the shipped libzebcore does
 * not, and its public header does not declare them. */
#ifndef ZEBCORE_TEST_HOOKS_H
#define ZEBCORE_TEST_HOOKS_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* zebMalloc fails on its nth call from now (n >= 1); n <= 0 switches the
 * failure off. */
void zebTestFailMallocAt(int32_t n);
/* Blocks from zebMalloc not yet released. */
int64_t zebTestLiveBlocks(void);
/* Makes zebGetMaxCacheSizeB report failure (1) or work again (0). */
void zebTestFailCacheQuery(int32_t fail);

#ifdef __cplusplus
}
#endif
#endif /* ZEBCORE_TEST_HOOKS_H */
