// SPDX-License-Identifier: Apache-2.0
// The frame: version records, variant choice, dispatch, zebcore and the
// shared release of state objects.
#include <gtest/gtest.h>

#include <cstring>

#include "harness.h"
#include "core/zebcore_test_hooks.h"

ZEB_TEST_TABLE(zebcvGetLibVersion);
ZEB_TEST_TABLE(zebiInpaintFree_8u_C1R);
ZEB_TEST_TABLE(zebiAddWeighted_32f_C1R);

extern "C" int c_header_compiles(void);

namespace {

// Each variant has its own record; the version string is shared.
TEST(Frame, VersionRecordsOfBothVariants) {
    const ZebLibraryVersion* u8 = zeb_tbl_zebcvGetLibVersion[0]();
    const ZebLibraryVersion* n8 = zeb_tbl_zebcvGetLibVersion[1]();
    EXPECT_EQ(std::memcmp(u8->targetCpu, "u8\0\0", 4), 0);
    EXPECT_EQ(std::memcmp(n8->targetCpu, "n8\0\0", 4), 0);
    EXPECT_STREQ(u8->version, "8.2.3 (r48108)");
    EXPECT_EQ(u8->version, n8->version);
    EXPECT_EQ(u8->buildDate, n8->buildDate);
}

TEST(Frame, VariantFollowsTheFeatureMask) {
    const uint64_t f = zebGetEnabledCpuFeatures();
    const bool n8 = (f & 0x10) && (f & 0x20);
    EXPECT_EQ(zeb_cpu_variant, n8 ? 1 : 0);
    const ZebLibraryVersion* v = zebcvGetLibVersion();
    EXPECT_EQ(v, zebcvGetLibVersion());
    EXPECT_EQ(std::memcmp(v->targetCpu, n8 ? "n8" : "u8", 3), 0);
}

// The stub jumps to the entry the variant index names: switching the
// index switches the record the export returns. Arguments pass through
// untouched: an export with a stack argument (the ROI) and a float gives
// the same pixels through the stub as through its table entry.
TEST(Frame, StubJumpsThroughTheVariantIndex) {
    const int saved = zeb_cpu_variant;
    for (int v = 0; v < 2; ++v) {
        zeb_cpu_variant = v;
        EXPECT_EQ(zebcvGetLibVersion(), zeb_tbl_zebcvGetLibVersion[v]());
    }
    zeb_cpu_variant = saved;
    zt::Image<float> a(33, 2), b(33, 2), d1(33, 2), d2(33, 2);
    ASSERT_EQ(zebiAddWeighted_32f_C1R(a.ptr(), a.step(), b.ptr(), b.step(), d1.ptr(), d1.step(), a.size(), 0.3f), 0);
    ASSERT_EQ(zeb_tbl_zebiAddWeighted_32f_C1R[saved](a.ptr(), a.step(), b.ptr(), b.step(), d2.ptr(), d2.step(),
                                                     a.size(), 0.3f), 0);
    EXPECT_EQ(d1.pixels(), d2.pixels());
}

// The target chosen at load is the best one the processor runs, as the
// compiler's own feature probe sees it; the query follows the index.
TEST(Frame, SimdTargetChosenAtLoad) {
    __builtin_cpu_init();
    const bool avx2 = __builtin_cpu_supports("avx2") && __builtin_cpu_supports("fma") &&
                      __builtin_cpu_supports("bmi2") && __builtin_cpu_supports("f16c");
    const bool avx512 = avx2 && __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512bw") &&
                        __builtin_cpu_supports("avx512dq") && __builtin_cpu_supports("avx512vl");
    const char* const want = avx512 ? "AVX-512" : avx2 ? "AVX2" : "SSSE3";
    EXPECT_STREQ(zebcvGetSimdTarget(), want);
    EXPECT_EQ(zeb_simd_target, zeb::max_simd_target());
    const char* const names[] = {"SSSE3", "AVX2", "AVX-512"};
    for (int t = 0; t <= zeb::max_simd_target(); ++t) {
        zt::TargetScope scope(t);
        EXPECT_STREQ(zebcvGetSimdTarget(), names[t]);
    }
    EXPECT_STREQ(zebcvGetSimdTarget(), want);
}

TEST(Frame, SharedFreeReleasesAndRefusesNull) {
    for (int v = 0; v < 2; ++v) {
        EXPECT_EQ(zeb_tbl_zebiInpaintFree_8u_C1R[v](nullptr), zebStsNullPtrErr);
        const int64_t live = zebTestLiveBlocks();
        void* p = zebMalloc(100);
        ASSERT_NE(p, nullptr);
        EXPECT_EQ(zebTestLiveBlocks(), live + 1);
        EXPECT_EQ(zeb_tbl_zebiInpaintFree_8u_C1R[v](static_cast<ZebiInpaintState_8u_C1R*>(p)), zebStsNoErr);
        EXPECT_EQ(zebTestLiveBlocks(), live);
    }
    EXPECT_EQ(zebiInpaintFree_8u_C3R(nullptr), zebStsNullPtrErr);
}

TEST(Core, MallocAlignsAndFailsOnRequest) {
    EXPECT_EQ(zebMalloc(0), nullptr);
    EXPECT_EQ(zebMalloc(-3), nullptr);
    void* p = zebMalloc(1);
    ASSERT_NE(p, nullptr);
    EXPECT_EQ(reinterpret_cast<uintptr_t>(p) % 64, 0u);
    zebFree(p);
    zebTestFailMallocAt(2);
    void* a = zebMalloc(10);
    void* b = zebMalloc(10);
    void* c = zebMalloc(10);
    EXPECT_NE(a, nullptr);
    EXPECT_EQ(b, nullptr);
    EXPECT_NE(c, nullptr);
    zebTestFailMallocAt(0);
    zebFree(a);
    zebFree(c);
    zebFree(nullptr);
}

TEST(Core, FeaturesAndCacheSize) {
    const uint64_t f = zebGetEnabledCpuFeatures();
    EXPECT_TRUE(f & ZEB_CPU_SSE2);
    EXPECT_TRUE(f & ZEB_CPU_SSSE3);  // the library's baseline
    EXPECT_EQ(f, zebGetEnabledCpuFeatures());
    int32_t size = 0;
    EXPECT_EQ(zebGetMaxCacheSizeB(nullptr), -8);
    ASSERT_EQ(zebGetMaxCacheSizeB(&size), 0);
    EXPECT_GE(size, 32 * 1024);
    zebTestFailCacheQuery(1);
    int32_t untouched = 7;
    EXPECT_NE(zebGetMaxCacheSizeB(&untouched), 0);
    EXPECT_EQ(untouched, 7);
    zebTestFailCacheQuery(0);
}

TEST(Frame, PublicHeaderCompilesAsC) { EXPECT_EQ(c_header_compiles(), 8); }

}  // namespace
