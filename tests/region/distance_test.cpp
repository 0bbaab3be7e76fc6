// SPDX-License-Identifier: Apache-2.0
// Distance masks, chamfer transforms and the exact Euclidean transform:
// argument checks in order with canaries, results of every member through
// both variants on every vector target against the pixel-by-pixel chamfer
// definition and a brute-force Euclidean distance, the weight settling by
// its values, and OpenCV's distanceTransform on noise and photograph edges.
#include <gtest/gtest.h>

#include <algorithm>
#include <cfloat>
#include <climits>
#include <cmath>
#include <limits>
#include <opencv2/imgproc.hpp>

#include "check_table.h"
#include "harness.h"
#include "region/distance_ref.h"

// One line per chamfer member: export, output type, mask size, mask type,
// in place.
#define ZT_MEMBERS(X)                                                   \
    X(zebiDistanceTransform_3x3_8u_C1R, Zeb8u, 3, Zeb32s, false)        \
    X(zebiDistanceTransform_3x3_8u16u_C1R, Zeb16u, 3, Zeb32s, false)    \
    X(zebiDistanceTransform_3x3_8u32f_C1R, Zeb32f, 3, Zeb32f, false)    \
    X(zebiDistanceTransform_3x3_8u_C1IR, Zeb8u, 3, Zeb32s, true)        \
    X(zebiDistanceTransform_5x5_8u_C1R, Zeb8u, 5, Zeb32s, false)        \
    X(zebiDistanceTransform_5x5_8u16u_C1R, Zeb16u, 5, Zeb32s, false)    \
    X(zebiDistanceTransform_5x5_8u32f_C1R, Zeb32f, 5, Zeb32f, false)    \
    X(zebiDistanceTransform_5x5_8u_C1IR, Zeb8u, 5, Zeb32s, true)

#define ZT_DECLARE(fn, T, K, M, inplace) ZEB_TEST_TABLE(fn);
ZT_MEMBERS(ZT_DECLARE)
#undef ZT_DECLARE
ZEB_TEST_TABLE(zebiGetDistanceTransformMask_32s);
ZEB_TEST_TABLE(zebiGetDistanceTransformMask_32f);
ZEB_TEST_TABLE(zebiGetDistanceTransformMask);
ZEB_TEST_TABLE(zebiTrueDistanceTransformGetBufferSize_8u32f_C1R);
ZEB_TEST_TABLE(zebiTrueDistanceTransform_8u32f_C1R);

namespace {

using zt::Image;
namespace ref = zeb::ref;
using zt::checks::Arena;
using zt::checks::Table;

ZT_TARGET_SUITE(ChamferResults);
ZT_TARGET_SUITE(ExactResults);
ZT_TARGET_SUITE(DistanceOpenCV);

// A chamfer member behind one call shape: (variant, src, srcStep, dst,
// dstStep, roi, metrics); in-place members run on dst after src is copied
// into it by the caller.
template <class T, class M>
struct Chamfer {
    const char* name;
    int kernel;
    bool inplace;
    ZebStatus (*call)(int, const Zeb8u*, int, T*, int, ZebiSize, const M*);
};

#define ZT_CALL_false(fn) zeb_tbl_##fn[v](s, ss, d, ds, roi, m)
#define ZT_CALL_true(fn) ((void)s, (void)ss, zeb_tbl_##fn[v](d, ds, roi, m))
#define ZT_CALLER(fn, T, M, inplace) \
    [](int v, const Zeb8u* s, int ss, T* d, int ds, ZebiSize roi, const M* m) -> ZebStatus { return ZT_CALL_##inplace(fn); }

template <class F>
void for_each_member(F&& f) {
#define ZT_VISIT(fn, T, K, M, inplace) f(Chamfer<T, M>{#fn, K, inplace, ZT_CALLER(fn, T, M, inplace)});
    ZT_MEMBERS(ZT_VISIT)
#undef ZT_VISIT
}

// ---- masks ----

TEST(DistanceMasks, TableAndChecks) {
    const struct {
        int k, norm;
        std::vector<int> i;
        std::vector<float> f;
    } rows[] = {{3, 0, {1, 1}, {1.f, 1.f}},          {3, 1, {1, 2}, {1.f, 2.f}},
                {3, 2, {2, 3}, {0.955f, 1.3693f}},   {5, 0, {1, 1, 2}, {1.f, 1.f, 2.f}},
                {5, 1, {1, 2, 3}, {1.f, 2.f, 3.f}},  {5, 2, {5, 7, 11}, {1.f, 1.4f, 2.1969f}}};
    for (int v = 0; v < 2; ++v)
        for (const auto& r : rows) {
            Zeb32s mi[3] = {-1, -1, -1};
            Zeb32f mf[3] = {-1, -1, -1}, mo[3] = {-1, -1, -1};
            ASSERT_EQ(zeb_tbl_zebiGetDistanceTransformMask_32s[v](r.k, r.norm, mi), 0);
            ASSERT_EQ(zeb_tbl_zebiGetDistanceTransformMask_32f[v](r.k, r.norm, mf), 0);
            ASSERT_EQ(zeb_tbl_zebiGetDistanceTransformMask[v](r.k * 10 + r.norm, mo), 0);
            EXPECT_EQ(std::vector<int>(mi, mi + r.k / 2 + 1), r.i) << r.k << " " << r.norm;
            EXPECT_EQ(std::vector<float>(mf, mf + r.k / 2 + 1), r.f) << r.k << " " << r.norm;
            EXPECT_EQ(std::vector<float>(mo, mo + r.k / 2 + 1), r.f) << r.k << " " << r.norm;
            if (r.k == 3) {
                EXPECT_EQ(mi[2], -1) << "a 3x3 mask has two values";
            }
        }
    struct A {
        int k, norm;
        Zeb32f* m;
    };
    zt::checks::run(Table<A>{"zebiGetDistanceTransformMask_32f", [](Arena& m) { return A{5, 2, m.array<Zeb32f>("mask", 3)}; },
                             [](int v, A& a) { return zeb_tbl_zebiGetDistanceTransformMask_32f[v](a.k, a.norm, a.m); },
                             {{"null, size 4, norm 3", [](A& a) { a.m = nullptr, a.k = 4, a.norm = 3; }, -8},
                              {"size 4, norm 3", [](A& a) { a.k = 4, a.norm = 3; }, -6},
                              {"norm -1", [](A& a) { a.norm = -1; }, -5}}});
    struct I {
        int k, norm;
        Zeb32s* m;
    };
    zt::checks::run(Table<I>{"zebiGetDistanceTransformMask_32s", [](Arena& m) { return I{3, 1, m.array<Zeb32s>("mask", 2)}; },
                             [](int v, I& a) { return zeb_tbl_zebiGetDistanceTransformMask_32s[v](a.k, a.norm, a.m); },
                             {{"null, size 7", [](I& a) { a.m = nullptr, a.k = 7; }, -8},
                              {"size 0, norm 9", [](I& a) { a.k = 0, a.norm = 9; }, -6},
                              {"norm 3", [](I& a) { a.norm = 3; }, -5}}});
    struct O {
        int type;
        Zeb32f* m;
    };
    zt::checks::run(Table<O>{"zebiGetDistanceTransformMask", [](Arena& m) { return O{32, m.array<Zeb32f>("mask", 3)}; },
                             [](int v, O& a) { return zeb_tbl_zebiGetDistanceTransformMask[v](a.type, a.m); },
                             {{"null, type 34 (the norm digit comes first)", [](O& a) { a.m = nullptr, a.type = 34; }, -5},
                              {"null, type 42", [](O& a) { a.m = nullptr, a.type = 42; }, -8},
                              {"type 34", [](O& a) { a.type = 34; }, -5},
                              {"type 49", [](O& a) { a.type = 49; }, -5},
                              {"type -32", [](O& a) { a.type = -32; }, -5},
                              {"type 42", [](O& a) { a.type = 42; }, -6}}});
}

// ---- chamfer argument checks ----

template <class T, class M>
void chamfer_checks(const Chamfer<T, M>& c) {
    struct A {
        const Zeb8u* s;
        int ss;
        T* d;
        int ds;
        ZebiSize roi;
        M* m;
    };
    const int k = c.kernel;
    Table<A> t{c.name,
               [c](Arena& m) {
                   auto s = m.image<Zeb8u>("src", 9, 5, 1, 8);
                   auto d = m.image<T>("dst", 9, 5, 1, 8);
                   M* mask = m.array<M>("mask", 3);
                   mask[0] = 2, mask[1] = 3, mask[2] = 4;
                   std::fill(s.ptr, s.ptr + 9, Zeb8u(0));  // a few sites
                   return A{c.inplace ? reinterpret_cast<Zeb8u*>(d.ptr) : s.ptr, c.inplace ? d.step : s.step,
                            d.ptr, d.step, {9, 5}, mask};
               },
               [c](int v, A& a) { return c.call(v, a.s, a.ss, a.d, a.ds, a.roi, a.m); },
               {}};
    auto add = [&](std::string what, std::function<void(A&)> f, ZebStatus want) {
        t.cases.push_back({std::move(what), std::move(f), want});
    };
    if (!c.inplace) add("null src, width 0", [](A& a) { a.s = nullptr, a.roi.width = 0; }, -8);
    add("null dst, height -1", [](A& a) { a.d = nullptr, a.roi.height = -1; }, -8);
    add("null mask", [](A& a) { a.m = nullptr; }, -8);
    add("width 0, short step", [](A& a) { a.roi.width = 0, a.ds -= 1; }, -6);
    add("dst step short by one, mask 0", [](A& a) { a.ds -= 1, a.m[0] = 0; }, -14);
    if (!c.inplace) add("src step short by one", [](A& a) { a.ss -= 1; }, -14);
    if (sizeof(T) > 1) add("dst step odd, mask 0", [](A& a) { a.ds += 1, a.m[0] = 0; }, -108);
    if (sizeof(T) == 4) add("dst step 2 more", [](A& a) { a.ds += 2; }, -108);
    add("dst step longer", [](A& a) { a.ds += int(sizeof(T)) * 2; }, 0);
    add("a = 0", [](A& a) { a.m[0] = 0; }, -56);
    add("b negative", [](A& a) { a.m[1] = M(-1); }, -56);
    if (k == 5) add("c = 0", [](A& a) { a.m[2] = 0; }, -56);
    if (k == 3) add("third value 0 is not read", [](A& a) { a.m[2] = 0; }, 0);
    if (std::is_floating_point_v<M>) {
        add("a NaN", [](A& a) { a.m[0] = M(std::nan("")); }, -56);
        add("b tiny", [](A& a) { a.m[1] = M(1e-30); }, 0);
    }
    zt::checks::run(t);
}

TEST(ChamferChecks, EveryMember) {
    for_each_member([](auto c) { chamfer_checks(c); });
}

// ---- chamfer results ----

// A binary image with sites at the given density (percent).
template <class T>
void binarise(Image<T>& img, int percent) {
    for (int y = 0; y < img.height(); ++y)
        for (int x = 0; x < img.width(); ++x)
            img.at(x, y) = T(int(zt::rng()() % 100) < percent ? 0 : 1 + zt::rng()() % 255);
}

template <class T, class M>
void check_against_definition(const Chamfer<T, M>& c, const std::vector<std::vector<M>>& masks) {
    const std::vector<std::pair<int, int>> sizes = {{1, 1}, {1, 9}, {11, 1}, {2, 2}, {7, 5},
                                                    {17, 6}, {33, 9}, {67, 4}, {130, 7}, {261, 3}};
    for (auto [w, h] : sizes)
        for (int percent : {0, 1, 10, 60})
            for (const auto& mask : masks) {
                const int pad = zt::test_pads(sizeof(T))[std::size_t(w + h + percent) % 4];
                Image<Zeb8u> src(w, h, 1, 1 + w % 3);
                binarise(src, percent);
                ref::Weights<T> m = ref::settle<T>(mask.data(), c.kernel, w, h);
                std::vector<T> want(std::size_t(w) * h);
                ref::chamfer(src.ptr(), src.step(), want.data(), w, w, h, c.kernel, m);
                for (int v = 0; v < 2; ++v) {
                    Image<T> dst(w, h, 1, pad);
                    if (c.inplace)
                        for (int y = 0; y < h; ++y)
                            for (int x = 0; x < w; ++x) dst.at(x, y) = T(src.at(x, y));
                    ASSERT_EQ(c.call(v, src.ptr(), src.step(), dst.ptr(), dst.step(), {w, h}, mask.data()), 0);
                    ASSERT_EQ(dst.pixels(), want) << c.name << " " << w << "x" << h << " sites " << percent
                                                  << "% mask " << mask[0] << "," << mask[1] << " variant " << v;
                }
            }
}

TEST_P(ChamferResults, EveryMemberAgainstDefinition) {
    // Masks covering the three loop choices (a == b, b >= 2a, the rest),
    // a > b (settled), the standard masks and weights past 8-bit range.
    const std::vector<std::vector<Zeb32s>> im = {{1, 1, 2}, {1, 2, 3}, {5, 7, 11}, {2, 3, 4},
                                                 {3, 2, 5}, {2, 9, 1}, {40, 70, 300}, {300, 200, 900}};
    const std::vector<std::vector<Zeb32f>> fm = {{1, 1, 2},         {1, 2, 3},          {0.955f, 1.3693f, 2},
                                                 {1, 1.4f, 2.1969f}, {1.5f, 0.75f, 2.5f}, {0.3f, 0.9f, 0.1f},
                                                 {1e37f, 3e38f, 1}};
    for_each_member([&](auto c) {
        if constexpr (std::is_same_v<decltype(c), Chamfer<Zeb32f, Zeb32f>>)
            check_against_definition(c, fm);
        else
            check_against_definition(c, im);
    });
}

// Settling by its values: on a one-pixel-wide column a > b is kept, so a
// straight step costs a; with room for diagonals it costs b. No site:
// every pixel stays at the far value.
TEST_P(ChamferResults, SettlingAndNoSite) {
    const Zeb32s mask[3] = {3, 2, 9};
    Image<Zeb8u> col(1, 5), dst(1, 5);
    col.fill(7), col.at(0, 0) = 0;
    ASSERT_EQ(zebiDistanceTransform_3x3_8u_C1R(col.ptr(), col.step(), dst.ptr(), dst.step(), {1, 5}, mask), 0);
    EXPECT_EQ(dst.pixels(), std::vector<Zeb8u>({0, 3, 6, 9, 12}));
    Image<Zeb8u> sq(5, 2), out(5, 2);
    sq.fill(7), sq.at(0, 0) = 0;
    ASSERT_EQ(zebiDistanceTransform_3x3_8u_C1R(sq.ptr(), sq.step(), out.ptr(), out.step(), {5, 2}, mask), 0);
    EXPECT_EQ(out.pixels(), std::vector<Zeb8u>({0, 2, 4, 6, 8, 2, 2, 4, 6, 8}));

    Image<Zeb8u> none(40, 3);
    none.fill(1);
    const Zeb32f fmask[3] = {1, 1.4f, 2.2f};
    Image<Zeb16u> d16(40, 3);
    Image<Zeb32f> d32(40, 3);
    ASSERT_EQ(zebiDistanceTransform_5x5_8u16u_C1R(none.ptr(), none.step(), d16.ptr(), d16.step(), {40, 3}, mask), 0);
    ASSERT_EQ(zebiDistanceTransform_5x5_8u32f_C1R(none.ptr(), none.step(), d32.ptr(), d32.step(), {40, 3}, fmask), 0);
    EXPECT_EQ(d16.pixels(), std::vector<Zeb16u>(120, 65535));
    EXPECT_EQ(d32.pixels(), std::vector<Zeb32f>(120, FLT_MAX));
    ASSERT_EQ(zebiDistanceTransform_3x3_8u_C1IR(none.ptr(), none.step(), {40, 3}, mask), 0);
    EXPECT_EQ(none.pixels(), std::vector<Zeb8u>(120, 255));
}

// ---- exact transform ----

TEST(ExactChecks, QueryAndOrder) {
    for (int v = 0; v < 2; ++v) {
        int n = -1;
        ASSERT_EQ(zeb_tbl_zebiTrueDistanceTransformGetBufferSize_8u32f_C1R[v]({5, 9}, &n), 0);
        EXPECT_EQ(n, 12 * 24 + 56);
        ASSERT_EQ(zeb_tbl_zebiTrueDistanceTransformGetBufferSize_8u32f_C1R[v]({1920, 1080}, &n), 0);
        EXPECT_EQ(n, 1920 * 24 + 56);
        n = -1;
        EXPECT_EQ(zeb_tbl_zebiTrueDistanceTransformGetBufferSize_8u32f_C1R[v]({INT_MAX - 2, 1}, &n), -6);
        EXPECT_EQ(zeb_tbl_zebiTrueDistanceTransformGetBufferSize_8u32f_C1R[v]({0, 1}, &n), -6);
        EXPECT_EQ(zeb_tbl_zebiTrueDistanceTransformGetBufferSize_8u32f_C1R[v]({3, 3}, nullptr), -8);
        EXPECT_EQ(n, -1);
    }
    struct A {
        const Zeb8u* s;
        int ss;
        Zeb32f* d;
        int ds;
        ZebiSize roi;
        Zeb8u* buf;
    };
    zt::checks::run(Table<A>{
        "zebiTrueDistanceTransform_8u32f_C1R",
        [](Arena& m) {
            auto s = m.image<Zeb8u>("src", 9, 5, 1, 8);
            auto d = m.image<Zeb32f>("dst", 9, 5, 1, 8);
            int n = 0;
            EXPECT_EQ(zebiTrueDistanceTransformGetBufferSize_8u32f_C1R({9, 5}, &n), 0);
            return A{s.ptr, s.step, d.ptr, d.step, {9, 5}, m.block("buffer", std::size_t(n))};
        },
        [](int v, A& a) { return zeb_tbl_zebiTrueDistanceTransform_8u32f_C1R[v](a.s, a.ss, a.d, a.ds, a.roi, a.buf); },
        {{"null src, width 0", [](A& a) { a.s = nullptr, a.roi.width = 0; }, -8},
         {"null dst", [](A& a) { a.d = nullptr; }, -8},
         {"null buffer", [](A& a) { a.buf = nullptr; }, -8},
         {"height 0, short step", [](A& a) { a.roi.height = 0, a.ss -= 1; }, -6},
         {"src step short, dst step odd", [](A& a) { a.ss -= 1, a.ds += 1; }, -14},
         {"dst step short", [](A& a) { a.ds -= 4; }, -14},
         {"dst step 2 more", [](A& a) { a.ds += 2; }, -108},
         {"dst step 4 more", [](A& a) { a.ds += 4; }, 0}}});
}

// Against the nearest site by brute force: the squared distances are
// integers, so every result is the rounded square root exactly.
TEST_P(ExactResults, AgainstBruteForce) {
    const std::vector<std::pair<int, int>> sizes = {{1, 1}, {1, 13}, {19, 1}, {7, 5}, {33, 17}, {70, 9}, {16, 40}};
    for (auto [w, h] : sizes)
        for (int percent : {0, 1, 5, 50}) {
            Image<Zeb8u> src(w, h, 1, 3);
            binarise(src, percent);
            std::vector<Zeb32f> want(std::size_t(w) * h, std::sqrt(FLT_MAX));
            for (int y = 0; y < h; ++y)
                for (int x = 0; x < w; ++x)
                    for (int sy = 0; sy < h; ++sy)
                        for (int sx = 0; sx < w; ++sx)
                            if (src.at(sx, sy) == 0)
                                want[std::size_t(y) * w + x] = std::min(
                                    want[std::size_t(y) * w + x],
                                    std::sqrt(float((x - sx) * (x - sx) + (y - sy) * (y - sy))));
            int n = 0;
            ASSERT_EQ(zebiTrueDistanceTransformGetBufferSize_8u32f_C1R({w, h}, &n), 0);
            for (int v = 0; v < 2; ++v) {
                zt::Guarded buf = zt::work_buffer(n);
                Image<Zeb32f> dst(w, h, 1, 4 * (v + 1));
                ASSERT_EQ(zeb_tbl_zebiTrueDistanceTransform_8u32f_C1R[v](src.ptr(), src.step(), dst.ptr(), dst.step(),
                                                                         {w, h}, buf.data()),
                          0);
                ASSERT_EQ(dst.pixels(), want) << w << "x" << h << " sites " << percent << "% variant " << v;
            }
        }
}

// ---- OpenCV ----

// Binary images: sites where a photograph has Canny edges, and noise.
std::vector<cv::Mat> binary_scenes() {
    std::vector<cv::Mat> out;
    for (const char* f : {"building.jpg", "fruits.jpg"}) {
        cv::Mat g = zt::photo(f, cv::IMREAD_GRAYSCALE), e;
        if (g.empty()) continue;
        cv::Canny(g, e, 80, 160);
        out.push_back(255 - e);  // edges become the zero pixels
    }
    cv::Mat noise(97, 131, CV_8U);
    cv::randu(noise, 0, 256);
    out.push_back(noise > 8);
    return out;
}

TEST_P(DistanceOpenCV, ChamferAndExact) {
    const auto scenes = binary_scenes();
    ASSERT_GE(scenes.size(), 2u);
    for (const cv::Mat& scene : scenes) {
        Image<Zeb8u> src = zt::image_of<Zeb8u>(scene, 7);
        const ZebiSize roi = src.size();
        Image<Zeb32f> d(roi.width, roi.height, 1, 8);
        cv::Mat want;
        // Max and sum norms: the sums are small integers, exact both ways.
        for (int norm : {0, 1})
            for (int k : {3, 5}) {
                Zeb32f m[3];
                ASSERT_EQ(zebiGetDistanceTransformMask_32f(k, norm, m), 0);
                auto fn = k == 3 ? zebiDistanceTransform_3x3_8u32f_C1R : zebiDistanceTransform_5x5_8u32f_C1R;
                ASSERT_EQ(fn(src.ptr(), src.step(), d.ptr(), d.step(), roi, m), 0);
                cv::distanceTransform(src.mat(), want, norm == 0 ? cv::DIST_C : cv::DIST_L1, k, CV_32F);
                EXPECT_EQ(cv::norm(d.mat(), want, cv::NORM_INF), 0) << "norm " << norm << " mask " << k;
            }
        // The Euclidean masks: OpenCV sums the same weights in 16.16 fixed
        // point, single-precision sums differ by rounding only.
        for (int k : {3, 5}) {
            Zeb32f m[3];
            ASSERT_EQ(zebiGetDistanceTransformMask_32f(k, 2, m), 0);
            auto fn = k == 3 ? zebiDistanceTransform_3x3_8u32f_C1R : zebiDistanceTransform_5x5_8u32f_C1R;
            ASSERT_EQ(fn(src.ptr(), src.step(), d.ptr(), d.step(), roi, m), 0);
            cv::distanceTransform(src.mat(), want, cv::DIST_L2, k, CV_32F);
            cv::Mat rel = cv::abs(d.mat() - want) / (want + 1);
            EXPECT_LT(cv::norm(rel, cv::NORM_INF), 2e-5) << "L2 mask " << k;
        }
        int n = 0;
        ASSERT_EQ(zebiTrueDistanceTransformGetBufferSize_8u32f_C1R(roi, &n), 0);
        zt::Guarded buf = zt::work_buffer(n);
        ASSERT_EQ(zebiTrueDistanceTransform_8u32f_C1R(src.ptr(), src.step(), d.ptr(), d.step(), roi, buf.data()), 0);
        cv::distanceTransform(src.mat(), want, cv::DIST_L2, cv::DIST_MASK_PRECISE, CV_32F);
        cv::Mat rel = cv::abs(d.mat() - want) / (want + 1);
        EXPECT_LT(cv::norm(rel, cv::NORM_INF), 1e-4) << "exact";
    }
}

}  // namespace
