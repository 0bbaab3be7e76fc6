// SPDX-License-Identifier: Apache-2.0
// Fast marching: the buffer query and argument checks with canaries, radius
// 0, marching against an unbounded-heap march written here (dense site
// patterns make the band outgrow the work buffer's heap), the radius bound,
// exact values for a straight front, and closeness to the Euclidean
// distance on photograph edges.
#include <gtest/gtest.h>

#include <cfloat>
#include <climits>
#include <cmath>
#include <limits>
#include <opencv2/imgproc.hpp>
#include <queue>

#include "check_table.h"
#include "harness.h"
#include "region/distance_ref.h"

ZEB_TEST_TABLE(zebiFastMarchingGetBufferSize_8u32f_C1R);
ZEB_TEST_TABLE(zebiFastMarching_8u32f_C1R);

namespace {

using zt::Image;
using zt::checks::Arena;
using zt::checks::Table;

// The march with an unbounded priority queue, fixing pixels in order of
// value; pixels beyond the radius stay at FLT_MAX.
std::vector<float> march(const Image<Zeb8u>& src, float radius) {
    const int w = src.width(), h = src.height();
    const float inf = std::numeric_limits<float>::infinity();
    std::vector<float> t(std::size_t(w) * h, inf);
    std::vector<bool> fixed(t.size(), false);
    using E = std::pair<float, int>;
    std::priority_queue<E, std::vector<E>, std::greater<E>> q;
    for (int i = 0; i < w * h; ++i)
        if (src.at(i % w, i / w) == 0) t[std::size_t(i)] = 0, fixed[std::size_t(i)] = true;
    auto val = [&](int x, int y) { return x < 0 || y < 0 || x >= w || y >= h || !fixed[std::size_t(y * w + x)] ? inf : t[std::size_t(y * w + x)]; };
    auto relax = [&](int x, int y) {
        if (x < 0 || y < 0 || x >= w || y >= h || fixed[std::size_t(y * w + x)]) return;
        const float u = zeb::ref::eikonal(std::min(val(x - 1, y), val(x + 1, y)), std::min(val(x, y - 1), val(x, y + 1)));
        if (u < t[std::size_t(y * w + x)]) {
            t[std::size_t(y * w + x)] = u;
            if (u <= radius) q.push({u, y * w + x});
        }
    };
    auto around = [&](int i) { relax(i % w - 1, i / w), relax(i % w + 1, i / w), relax(i % w, i / w - 1), relax(i % w, i / w + 1); };
    if (radius > 0)
        for (int i = 0; i < w * h; ++i)
            if (fixed[std::size_t(i)]) around(i);
    while (!q.empty()) {
        auto [u, i] = q.top();
        q.pop();
        if (fixed[std::size_t(i)] || u != t[std::size_t(i)]) continue;
        fixed[std::size_t(i)] = true;
        around(i);
    }
    for (std::size_t i = 0; i < t.size(); ++i)
        if (!fixed[i]) t[i] = FLT_MAX;
    return t;
}

void binarise(Image<Zeb8u>& img, int percent) {
    for (int y = 0; y < img.height(); ++y)
        for (int x = 0; x < img.width(); ++x) img.at(x, y) = Zeb8u(int(zt::rng()() % 100) < percent ? 0 : 200);
}

std::vector<float> run(const Image<Zeb8u>& src, float radius, int variant, int pad = 0) {
    int n = 0;
    EXPECT_EQ(zeb_tbl_zebiFastMarchingGetBufferSize_8u32f_C1R[variant](src.size(), &n), 0);
    zt::Guarded buf = zt::work_buffer(n);
    Image<Zeb32f> dst(src.width(), src.height(), 1, pad);
    EXPECT_EQ(zeb_tbl_zebiFastMarching_8u32f_C1R[variant](src.ptr(), src.step(), dst.ptr(), dst.step(), src.size(),
                                                          radius, buf.data()),
              0);
    return dst.pixels();
}

TEST(FastMarchingChecks, QueryAndOrder) {
    for (int v = 0; v < 2; ++v) {
        int n = -1;
        ASSERT_EQ(zeb_tbl_zebiFastMarchingGetBufferSize_8u32f_C1R[v]({33, 10}, &n), 0);
        EXPECT_EQ(n, (64 + 5) * 44 + 40);
        n = -1;
        EXPECT_EQ(zeb_tbl_zebiFastMarchingGetBufferSize_8u32f_C1R[v]({1 << 20, 1 << 12}, &n), -6);
        EXPECT_EQ(zeb_tbl_zebiFastMarchingGetBufferSize_8u32f_C1R[v]({5, 0}, &n), -6);
        EXPECT_EQ(zeb_tbl_zebiFastMarchingGetBufferSize_8u32f_C1R[v]({5, 5}, nullptr), -8);
        EXPECT_EQ(n, -1);
    }
    struct A {
        const Zeb8u* s;
        int ss;
        Zeb32f* d;
        int ds;
        ZebiSize roi;
        float radius;
        Zeb8u* buf;
    };
    zt::checks::run(Table<A>{
        "zebiFastMarching_8u32f_C1R",
        [](Arena& m) {
            auto s = m.image<Zeb8u>("src", 9, 5, 1, 8);
            auto d = m.image<Zeb32f>("dst", 9, 5, 1, 8);
            int n = 0;
            EXPECT_EQ(zebiFastMarchingGetBufferSize_8u32f_C1R({9, 5}, &n), 0);
            s.ptr[3] = 0;
            return A{s.ptr, s.step, d.ptr, d.step, {9, 5}, 4.0f, m.block("buffer", std::size_t(n))};
        },
        [](int v, A& a) { return zeb_tbl_zebiFastMarching_8u32f_C1R[v](a.s, a.ss, a.d, a.ds, a.roi, a.radius, a.buf); },
        {{"null src, width 0", [](A& a) { a.s = nullptr, a.roi.width = 0; }, -8},
         {"null dst", [](A& a) { a.d = nullptr; }, -8},
         {"null buffer, radius -1", [](A& a) { a.buf = nullptr, a.radius = -1; }, -8},
         {"width -1, short step", [](A& a) { a.roi.width = -1, a.ds -= 4; }, -6},
         {"src step short, radius -1", [](A& a) { a.ss -= 1, a.radius = -1; }, -14},
         {"dst step short", [](A& a) { a.ds -= 1; }, -14},
         {"dst step 1 more, radius -1", [](A& a) { a.ds += 1, a.radius = -1; }, -108},
         {"radius -0.5", [](A& a) { a.radius = -0.5f; }, -5},
         {"radius NaN", [](A& a) { a.radius = std::nanf(""); }, -5},
         {"radius 0", [](A& a) { a.radius = 0; }, 0},
         {"radius infinite", [](A& a) { a.radius = std::numeric_limits<float>::infinity(); }, 0}}});
}

// The march has no vector kernels: one run serves every target.
// Sparse and dense sites (the dense ones overflow the heap), unbounded and
// bounded radii, radius 0, every variant: the same values as the march
// with an unbounded queue.
TEST(FastMarching, AgainstUnboundedMarch) {
    const std::vector<std::pair<int, int>> sizes = {{1, 1}, {1, 20}, {23, 1}, {9, 7}, {64, 48}, {130, 97}};
    for (auto [w, h] : sizes)
        for (int percent : {0, 1, 20, 50})
            for (float radius : {0.0f, 2.5f, FLT_MAX}) {
                Image<Zeb8u> src(w, h, 1, 2);
                binarise(src, percent);
                const std::vector<float> want = march(src, radius);
                for (int v = 0; v < 2; ++v)
                    ASSERT_EQ(run(src, radius, v, 4 * v), want) << w << "x" << h << " sites " << percent
                                                                << "% radius " << radius << " variant " << v;
                for (int i = 0; i < w * h && radius == 0.0f; ++i)  // sites 0, everything else far
                    ASSERT_EQ(want[std::size_t(i)], src.at(i % w, i / w) == 0 ? 0.0f : FLT_MAX);
            }
}

// A straight front marches exactly one unit per row; around photograph
// edges the march stays close to the Euclidean distance (first-order
// scheme: within a pixel, and on average much closer).
TEST(FastMarching, FrontAndEuclidean) {
    Image<Zeb8u> line(37, 12);
    line.fill(1);
    for (int x = 0; x < 37; ++x) line.at(x, 0) = 0;
    const std::vector<float> got = run(line, 100.0f, 0);
    for (int y = 0; y < 12; ++y)
        for (int x = 0; x < 37; ++x) ASSERT_EQ(got[std::size_t(y) * 37 + x], float(y)) << x << "," << y;

    cv::Mat g = zt::photo("fruits.jpg", cv::IMREAD_GRAYSCALE), e, exact;
    ASSERT_FALSE(g.empty());
    cv::resize(g, g, {160, 120});
    cv::Canny(g, e, 80, 160);
    Image<Zeb8u> src = zt::image_of<Zeb8u>(255 - e);
    cv::distanceTransform(src.mat(), exact, cv::DIST_L2, cv::DIST_MASK_PRECISE, CV_32F);
    const std::vector<float> t = run(src, 1e9f, 1);
    double worst = 0, sum = 0;
    for (int i = 0; i < 160 * 120; ++i) {
        const double d = std::fabs(t[std::size_t(i)] - exact.at<float>(i / 160, i % 160));
        worst = std::max(worst, d), sum += d;
    }
    EXPECT_LT(worst, 1.0);
    EXPECT_LT(sum / (160 * 120), 0.2);
}

}  // namespace
