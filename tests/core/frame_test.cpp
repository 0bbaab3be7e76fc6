// The frame: version records, variant choice, dispatch, zebcore and the
// shared release of state objects.
#include <gtest/gtest.h>

#include <cstring>
#include <limits>
#include <opencv2/imgproc.hpp>

#include "harness.h"
#include "core/zebcore_test_hooks.h"

ZEB_TEST_TABLE(zebcvGetLibVersion);
ZEB_TEST_TABLE(zebiInpaintFree_8u_C1R);
ZEB_TEST_TABLE(zebiAbsDiff_8u_C1R);
ZEB_TEST_TABLE(zebiAbsDiffC_32f_C1R);
ZEB_TEST_TABLE(zebiMean_StdDev_16u_C3CMR);
ZEB_TEST_TABLE(zebiFilterRowBorderPipeline_32f_C3R);
ZEB_TEST_TABLE(zebcvGetSimdTarget);

extern "C" int c_header_compiles(void);

namespace {

TEST(Frame, VersionRecordsOfBothVariants) {
    const ZebLibraryVersion* u8 = zeb_tbl_zebcvGetLibVersion[0]();
    const ZebLibraryVersion* n8 = zeb_tbl_zebcvGetLibVersion[1]();
    for (const ZebLibraryVersion* v : {u8, n8}) {
        EXPECT_EQ(v->major, 8);
        EXPECT_EQ(v->minor, 2);
        EXPECT_EQ(v->majorBuild, 3);
        EXPECT_EQ(v->build, 48108);
        EXPECT_STREQ(v->version, "8.2.3 (r48108)");
        EXPECT_STREQ(v->buildDate, "Jul 23 2015");
    }
    EXPECT_EQ(std::memcmp(u8->targetCpu, "u8\0\0", 4), 0);
    EXPECT_EQ(std::memcmp(n8->targetCpu, "n8\0\0", 4), 0);
    EXPECT_STREQ(u8->name, "zebCV SSSE3 (u8)");
    EXPECT_STREQ(n8->name, "zebCV Tavo (n8)");
    // The two variants share the version and date strings.
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

ZT_TARGET_SUITE(FrameDispatch);

// The stub jumps to the entry the variant index names: switching the
// index switches the record the export returns.
TEST_P(FrameDispatch, StubJumpsThroughTheVariantIndex) {
    const int saved = zeb_cpu_variant;
    for (int v = 0; v < 2; ++v) {
        zeb_cpu_variant = v;
        EXPECT_EQ(zebcvGetLibVersion(), zeb_tbl_zebcvGetLibVersion[v]());
    }
    zeb_cpu_variant = saved;
    // Arguments pass through untouched: a seven-argument export gives the
    // same pixels through the stub as through its table entry.
    zt::Image<uint8_t> a(33, 2), b(33, 2), d1(33, 2), d2(33, 2);
    ASSERT_EQ(zebiAbsDiff_8u_C1R(a.ptr(), a.step(), b.ptr(), b.step(), d1.ptr(), d1.step(), a.size()), 0);
    ASSERT_EQ(zeb_tbl_zebiAbsDiff_8u_C1R[saved](a.ptr(), a.step(), b.ptr(), b.step(), d2.ptr(), d2.step(), a.size()),
              0);
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

// Every ported export gives, on each lower target, exactly the bytes it
// gives on the target chosen at load: on photographs and on noise, with
// cached stores and (the cache-size query failing) streaming stores.
TEST_P(FrameDispatch, LoweringTheTargetChangesNoResult) {
    const cv::Mat fruits = zt::photo("fruits.jpg", cv::IMREAD_COLOR), baboon = zt::photo("baboon.jpg", cv::IMREAD_COLOR);
    ASSERT_FALSE(fruits.empty());
    ASSERT_FALSE(baboon.empty());
    const int w = std::min(fruits.cols, baboon.cols) - 3, h = std::min(fruits.rows, baboon.rows) - 1;
    const cv::Mat a = fruits(cv::Rect(3, 1, w, h)), b = baboon(cv::Rect(0, 0, w, h));
    cv::Mat a1, b1;
    cv::cvtColor(a, a1, cv::COLOR_BGR2GRAY);
    cv::cvtColor(b, b1, cv::COLOR_BGR2GRAY);
    const int best = zeb::max_simd_target();
    // Runs f on the given target and returns the destination's bytes.
    auto on = [](int target, auto f) {
        zt::TargetScope scope(target);
        return f();
    };
    auto both = [&](const char* what, auto f) {
        for (int stream = 0; stream < 2; ++stream) {
            zebTestFailCacheQuery(stream);
            EXPECT_EQ(on(target(), f), on(best, f)) << what << (stream ? " streaming" : " cached");
        }
        zebTestFailCacheQuery(0);
    };
    const auto ua = zt::image_of<uint8_t>(a, 3), ub = zt::image_of<uint8_t>(b, 1);
    const auto ga = zt::image_of<uint8_t>(a1, 5), gb = zt::image_of<uint8_t>(b1);
    const auto wa = zt::image_of<uint16_t>(a1 * 257, 2), wb = zt::image_of<uint16_t>(b1 * 250, 6);
    zt::Image<float> fa(509, 7, 1, 4), fb(509, 7, 1, 12);
    for (int y = 0; y < 7; ++y) fa.at(y, y) = -0.f, fb.at(y + 1, y) = std::numeric_limits<float>::infinity();
    const ZebiSize roi = ga.size();
    both("AbsDiff_8u_C3R", [&] {
        zt::Image<uint8_t> d(roi.width, roi.height, 3, 7);
        EXPECT_EQ(zebiAbsDiff_8u_C3R(ua.ptr(), ua.step(), ub.ptr(), ub.step(), d.ptr(), d.step(), roi), 0);
        return d.pixels();
    });
    both("AbsDiff_8u_C1R", [&] {
        zt::Image<uint8_t> d(roi.width, roi.height, 1, 1);
        EXPECT_EQ(zebiAbsDiff_8u_C1R(ga.ptr(), ga.step(), gb.ptr(), gb.step(), d.ptr(), d.step(), roi), 0);
        return d.pixels();
    });
    both("AbsDiff_16u_C1R", [&] {
        zt::Image<uint16_t> d(roi.width, roi.height);
        EXPECT_EQ(zebiAbsDiff_16u_C1R(wa.ptr(), wa.step(), wb.ptr(), wb.step(), d.ptr(), d.step(), roi), 0);
        return d.pixels();
    });
    both("AbsDiffC_8u_C1R", [&] {
        zt::Image<uint8_t> d(roi.width, roi.height, 1, 3);
        EXPECT_EQ(zebiAbsDiffC_8u_C1R(ga.ptr(), ga.step(), d.ptr(), d.step(), roi, 99), 0);
        return d.pixels();
    });
    both("AbsDiffC_16u_C1R", [&] {
        zt::Image<uint16_t> d(roi.width, roi.height, 1, 2);
        EXPECT_EQ(zebiAbsDiffC_16u_C1R(wa.ptr(), wa.step(), d.ptr(), d.step(), roi, 40000), 0);
        return d.pixels();
    });
    // Floats compared by their bytes: signed zeros, infinities and NaNs too.
    auto float_bytes = [](const zt::Image<float>& d) {
        std::vector<uint8_t> v;
        for (int y = 0; y < d.height(); ++y) {
            auto* r = reinterpret_cast<const uint8_t*>(d.row(y));
            v.insert(v.end(), r, r + d.width() * 4);
        }
        return v;
    };
    both("AbsDiff_32f_C1R", [&] {
        zt::Image<float> d(509, 7, 1, 8);
        EXPECT_EQ(zebiAbsDiff_32f_C1R(fa.ptr(), fa.step(), fb.ptr(), fb.step(), d.ptr(), d.step(), fa.size()), 0);
        return float_bytes(d);
    });
    both("AbsDiffC_32f_C1R", [&] {
        zt::Image<float> d(509, 7);
        EXPECT_EQ(zebiAbsDiffC_32f_C1R(fb.ptr(), fb.step(), d.ptr(), d.step(), fa.size(), -3.25f), 0);
        return float_bytes(d);
    });
}

// An ordinary export's two table entries are one function; only the
// exports whose variants differ (the version query) have two.
TEST(Frame, OrdinaryExportsHoldOneImplementation) {
    EXPECT_EQ(zeb_tbl_zebiAbsDiff_8u_C1R[0], zeb_tbl_zebiAbsDiff_8u_C1R[1]);
    EXPECT_EQ(zeb_tbl_zebiAbsDiffC_32f_C1R[0], zeb_tbl_zebiAbsDiffC_32f_C1R[1]);
    EXPECT_EQ(zeb_tbl_zebiMean_StdDev_16u_C3CMR[0], zeb_tbl_zebiMean_StdDev_16u_C3CMR[1]);
    EXPECT_EQ(zeb_tbl_zebiFilterRowBorderPipeline_32f_C3R[0], zeb_tbl_zebiFilterRowBorderPipeline_32f_C3R[1]);
    EXPECT_EQ(zeb_tbl_zebiInpaintFree_8u_C1R[0], zeb_tbl_zebiInpaintFree_8u_C1R[1]);
    EXPECT_EQ(zeb_tbl_zebcvGetSimdTarget[0], zeb_tbl_zebcvGetSimdTarget[1]);
    EXPECT_NE(zeb_tbl_zebcvGetLibVersion[0], zeb_tbl_zebcvGetLibVersion[1]);
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
