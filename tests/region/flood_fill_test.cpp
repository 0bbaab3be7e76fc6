// SPDX-License-Identifier: Apache-2.0
// Flood fills: the argument checks of every export with canaries, and the
// filled pixels, area and rectangle against OpenCV's floodFill (fixed range
// for the equality and range modes, floating range for the gradient mode)
// on patchy noise at and above the percolation threshold and on quantised
// photographs, through both variants, with every work buffer at its exact
// queried size against a guard page. The smallest images overflow the span
// stack, so the same comparisons cover the rescan that takes over then.
#include <gtest/gtest.h>

#include <opencv2/imgproc.hpp>

#include "check_table.h"
#include "harness.h"

enum class Mode { Eq, Range, Grad };

// One line per export: name, pixel type, channels, mode, 8-connectivity.
#define ZT_FILL_MEMBERS(X)                                              \
    X(zebiFloodFill_4Con_8u_C1IR, Zeb8u, 1, Mode::Eq, false)            \
    X(zebiFloodFill_4Con_8u_C3IR, Zeb8u, 3, Mode::Eq, false)            \
    X(zebiFloodFill_4Con_16u_C1IR, Zeb16u, 1, Mode::Eq, false)          \
    X(zebiFloodFill_4Con_16u_C3IR, Zeb16u, 3, Mode::Eq, false)          \
    X(zebiFloodFill_4Con_32s_C1IR, Zeb32s, 1, Mode::Eq, false)          \
    X(zebiFloodFill_4Con_32f_C1IR, Zeb32f, 1, Mode::Eq, false)          \
    X(zebiFloodFill_4Con_32f_C3IR, Zeb32f, 3, Mode::Eq, false)          \
    X(zebiFloodFill_8Con_8u_C1IR, Zeb8u, 1, Mode::Eq, true)             \
    X(zebiFloodFill_8Con_8u_C3IR, Zeb8u, 3, Mode::Eq, true)             \
    X(zebiFloodFill_8Con_16u_C1IR, Zeb16u, 1, Mode::Eq, true)           \
    X(zebiFloodFill_8Con_16u_C3IR, Zeb16u, 3, Mode::Eq, true)           \
    X(zebiFloodFill_8Con_32s_C1IR, Zeb32s, 1, Mode::Eq, true)           \
    X(zebiFloodFill_8Con_32f_C1IR, Zeb32f, 1, Mode::Eq, true)           \
    X(zebiFloodFill_8Con_32f_C3IR, Zeb32f, 3, Mode::Eq, true)           \
    X(zebiFloodFill_Range4Con_8u_C1IR, Zeb8u, 1, Mode::Range, false)    \
    X(zebiFloodFill_Range4Con_8u_C3IR, Zeb8u, 3, Mode::Range, false)    \
    X(zebiFloodFill_Range4Con_16u_C1IR, Zeb16u, 1, Mode::Range, false)  \
    X(zebiFloodFill_Range4Con_16u_C3IR, Zeb16u, 3, Mode::Range, false)  \
    X(zebiFloodFill_Range4Con_32f_C1IR, Zeb32f, 1, Mode::Range, false)  \
    X(zebiFloodFill_Range4Con_32f_C3IR, Zeb32f, 3, Mode::Range, false)  \
    X(zebiFloodFill_Range8Con_8u_C1IR, Zeb8u, 1, Mode::Range, true)     \
    X(zebiFloodFill_Range8Con_8u_C3IR, Zeb8u, 3, Mode::Range, true)     \
    X(zebiFloodFill_Range8Con_16u_C1IR, Zeb16u, 1, Mode::Range, true)   \
    X(zebiFloodFill_Range8Con_16u_C3IR, Zeb16u, 3, Mode::Range, true)   \
    X(zebiFloodFill_Range8Con_32f_C1IR, Zeb32f, 1, Mode::Range, true)   \
    X(zebiFloodFill_Range8Con_32f_C3IR, Zeb32f, 3, Mode::Range, true)   \
    X(zebiFloodFill_Grad4Con_8u_C1IR, Zeb8u, 1, Mode::Grad, false)      \
    X(zebiFloodFill_Grad4Con_8u_C3IR, Zeb8u, 3, Mode::Grad, false)      \
    X(zebiFloodFill_Grad4Con_16u_C1IR, Zeb16u, 1, Mode::Grad, false)    \
    X(zebiFloodFill_Grad4Con_16u_C3IR, Zeb16u, 3, Mode::Grad, false)    \
    X(zebiFloodFill_Grad4Con_32f_C1IR, Zeb32f, 1, Mode::Grad, false)    \
    X(zebiFloodFill_Grad4Con_32f_C3IR, Zeb32f, 3, Mode::Grad, false)    \
    X(zebiFloodFill_Grad8Con_8u_C1IR, Zeb8u, 1, Mode::Grad, true)       \
    X(zebiFloodFill_Grad8Con_8u_C3IR, Zeb8u, 3, Mode::Grad, true)       \
    X(zebiFloodFill_Grad8Con_16u_C1IR, Zeb16u, 1, Mode::Grad, true)     \
    X(zebiFloodFill_Grad8Con_16u_C3IR, Zeb16u, 3, Mode::Grad, true)     \
    X(zebiFloodFill_Grad8Con_32f_C1IR, Zeb32f, 1, Mode::Grad, true)     \
    X(zebiFloodFill_Grad8Con_32f_C3IR, Zeb32f, 3, Mode::Grad, true)

#define ZT_DECLARE(fn, T, C, M, K8) ZEB_TEST_TABLE(fn);
ZT_FILL_MEMBERS(ZT_DECLARE)
#undef ZT_DECLARE
ZEB_TEST_TABLE(zebiFloodFillGetSize);
ZEB_TEST_TABLE(zebiFloodFillGetSize_Grad);

namespace {

using zt::Image;

// Values for one call; the C3 forms read three of each.
struct Vals {
    double nv[3], lo[3], hi[3];
};

using Caller = std::function<ZebStatus(int, void*, int, ZebiSize, ZebiPoint, const Vals&, ZebConnectedComp*, Zeb8u*)>;

template <class T, int C, Mode M, class F>
Caller caller(F const* tbl) {
    return [tbl](int v, void* img, int step, ZebiSize roi, ZebiPoint seed, const Vals& x, ZebConnectedComp* rc,
                 Zeb8u* buf) -> ZebStatus {
        T n[3], l[3], h[3];
        for (int c = 0; c < 3; ++c) n[c] = T(x.nv[c]), l[c] = T(x.lo[c]), h[c] = T(x.hi[c]);
        T* p = static_cast<T*>(img);
        if constexpr (C == 1 && M == Mode::Eq) return tbl[v](p, step, roi, seed, n[0], rc, buf);
        else if constexpr (C == 3 && M == Mode::Eq) return tbl[v](p, step, roi, seed, n, rc, buf);
        else if constexpr (C == 1) return tbl[v](p, step, roi, seed, n[0], l[0], h[0], rc, buf);
        else return tbl[v](p, step, roi, seed, n, l, h, rc, buf);
    };
}

struct Member {
    std::string name;
    int elem, channels, depth;
    Mode mode;
    bool k8;
    Caller call;
    int buffer(ZebiSize roi) const {
        int n = -1;
        EXPECT_EQ((mode == Mode::Grad ? zebiFloodFillGetSize_Grad : zebiFloodFillGetSize)(roi, &n), zebStsNoErr);
        return n;
    }
};

const std::vector<Member>& members() {
    static const std::vector<Member> m = {
#define ZT_MEMBER(fn, T, C, M, K8) \
    {#fn, int(sizeof(T)), C, zt::CvDepth<T>::v, M, K8, caller<T, C, M>(zeb_tbl_##fn)},
        ZT_FILL_MEMBERS(ZT_MEMBER)
#undef ZT_MEMBER
    };
    return m;
}

ZT_TARGET_SUITE(FloodFill);

// ---- Argument checks ----

struct Args {
    void* img;
    int step;
    ZebiSize roi;
    ZebiPoint seed;
    ZebConnectedComp* rc;
    Zeb8u* buf;
};

TEST_P(FloodFill, ChecksInOrderAndWriteNothingOnFailure) {
    constexpr int kW = 9, kH = 4;
    for (const Member& m : members()) {
        const int bytes = m.buffer({kW, kH});
        const bool wide = m.elem > 1;
        zt::checks::Table<Args> t{m.name,
                                  [&](zt::checks::Arena& a) {
                                      auto img = a.image<Zeb8u>("image", kW * m.elem * m.channels, kH, 1, 8);
                                      return Args{img.ptr, img.step, {kW, kH}, {3, 2},
                                                  a.array<ZebConnectedComp>("region", 1), a.block("buffer", bytes)};
                                  },
                                  [&](int v, Args& x) {
                                      // newVal 1: the canary pattern's seed value differs from it
                                      // in at least one of the two passes.
                                      return m.call(v, x.img, x.step, x.roi, x.seed, Vals{{1, 1, 1}, {0, 0, 0}, {0, 0, 0}},
                                                    x.rc, x.buf);
                                  },
                                  {}};
        const ZebiPoint out[] = {{kW, 0}, {-1, 0}, {0, kH}, {0, -1}};
        t.cases = {
            {"null image, width 0", [](Args& x) { x.img = nullptr, x.roi.width = 0; }, zebStsNullPtrErr},
            {"null region", [](Args& x) { x.rc = nullptr; }, zebStsNullPtrErr},
            {"null buffer, seed out", [](Args& x) { x.buf = nullptr, x.seed = {-1, 0}; }, zebStsNullPtrErr},
            {"width 0, short step", [](Args& x) { x.roi.width = 0, x.step -= 1; }, zebStsSizeErr},
            {"height -1, seed out", [](Args& x) { x.roi.height = -1, x.seed = {kW, 0}; }, zebStsSizeErr},
            {"short step, seed out", [&m](Args& x) { x.step -= m.elem, x.seed = {kW, 0}; }, zebStsStepErr},
        };
        if (wide)
            t.cases.push_back({"uneven step, seed out", [](Args& x) { x.step += 1, x.seed = {0, -1}; },
                               zebStsNotEvenStepErr});
        for (ZebiPoint s : out)
            t.cases.push_back({"seed " + std::to_string(s.x) + "," + std::to_string(s.y),
                               [s](Args& x) { x.seed = s; }, zebStsNotSupportedModeErr});
        zt::checks::run(t);
    }
}

TEST_P(FloodFill, BufferSizes) {
    for (auto* f : {zeb_tbl_zebiFloodFillGetSize, zeb_tbl_zebiFloodFillGetSize_Grad})
        for (int v = 0; v < 2; ++v) {
            int n = 7;
            EXPECT_EQ(f[v](ZebiSize{0, 5}, &n), zebStsSizeErr);
            EXPECT_EQ(f[v](ZebiSize{5, 5}, nullptr), zebStsNullPtrErr);
            EXPECT_EQ(f[v](ZebiSize{40000, 40000}, &n), zebStsSizeErr);
            EXPECT_EQ(n, 7);
        }
    int a = 0, b = 0;
    EXPECT_EQ(zeb_tbl_zebiFloodFillGetSize[1](ZebiSize{7, 3}, &a), zebStsNoErr);
    EXPECT_EQ(zeb_tbl_zebiFloodFillGetSize_Grad[0](ZebiSize{7, 3}, &b), zebStsNoErr);
    EXPECT_EQ(a, 6 * 21 + 32);
    EXPECT_EQ(b, 9 * 5 + 16 * 21 + 64);
}

// ---- Against OpenCV ----

// OpenCV fills 8u, 32s and 32f; 16u images go through 32f (exact for
// integers up to 2^24).
cv::Mat oracle_copy(const cv::Mat& m) {
    cv::Mat c;
    if (m.depth() == CV_16U)
        m.convertTo(c, CV_32F);
    else
        c = m.clone();
    return c;
}

struct Outcome {
    ZebStatus status;
    ZebConnectedComp rc;
    cv::Mat pixels;
};

// One fill through variant v on a guarded copy of `src`.
template <class T>
Outcome run_ours(const Member& m, int v, const cv::Mat& src, ZebiPoint seed, const Vals& x) {
    Image<T> img = zt::image_of<T>(src, 3 * m.elem);
    zt::Guarded buf = zt::work_buffer(m.buffer(img.size()));
    Outcome o{};
    o.rc.area = -1;
    o.status = m.call(v, img.ptr(), img.step(), img.size(), seed, x, &o.rc, buf.data());
    o.pixels = oracle_copy(img.mat());
    return o;
}

Outcome run_any(const Member& m, int v, const cv::Mat& src, ZebiPoint seed, const Vals& x) {
    switch (m.elem * 10 + (m.depth == CV_32F)) {
        case 10: return run_ours<Zeb8u>(m, v, src, seed, x);
        case 20: return run_ours<Zeb16u>(m, v, src, seed, x);
        case 40: return run_ours<Zeb32s>(m, v, src, seed, x);
        default: return run_ours<Zeb32f>(m, v, src, seed, x);
    }
}

// Compares one fill with OpenCV's; returns false (with the failures
// recorded) when they differ.
bool agrees(const Member& m, const cv::Mat& src, ZebiPoint seed, const Vals& x, const std::string& what) {
    cv::Mat ref = oracle_copy(src);
    cv::Rect rect;
    const int flags = (m.k8 ? 8 : 4) | (m.mode == Mode::Grad ? 0 : cv::FLOODFILL_FIXED_RANGE);
    const cv::Scalar lo = m.mode == Mode::Eq ? cv::Scalar::all(0) : cv::Scalar(x.lo[0], x.lo[1], x.lo[2]);
    const cv::Scalar hi = m.mode == Mode::Eq ? cv::Scalar::all(0) : cv::Scalar(x.hi[0], x.hi[1], x.hi[2]);
    const int area = cv::floodFill(ref, cv::Point(seed.x, seed.y), cv::Scalar(x.nv[0], x.nv[1], x.nv[2]), &rect,
                                   lo, hi, flags);
    bool ok = true;
    for (int v = 0; v < 2; ++v) {
        const Outcome o = run_any(m, v, src, seed, x);
        const std::string at = m.name + " variant " + std::to_string(v) + " " + what + " seed " +
                               std::to_string(seed.x) + "," + std::to_string(seed.y);
        EXPECT_EQ(o.status, zebStsNoErr) << at;
        const bool same = o.rc.area == double(area) && o.rc.rect.x == rect.x && o.rc.rect.y == rect.y &&
                          o.rc.rect.width == rect.width && o.rc.rect.height == rect.height &&
                          cv::norm(o.pixels, ref, cv::NORM_INF) == 0;
        EXPECT_TRUE(same) << at << ": area " << o.rc.area << " vs " << area << ", rect " << o.rc.rect.x << ','
                          << o.rc.rect.y << ' ' << o.rc.rect.width << 'x' << o.rc.rect.height << " vs " << rect.x
                          << ',' << rect.y << ' ' << rect.width << 'x' << rect.height << ", "
                          << cv::countNonZero(cv::Mat(o.pixels != ref).reshape(1)) << " pixel values differ";
        EXPECT_EQ(o.rc.value[0], x.nv[0]) << at;
        EXPECT_EQ(o.rc.value[2], m.channels == 3 ? x.nv[2] : 0.0) << at;
        ok = ok && same;
    }
    return ok;
}

// Patchy noise: palette[0] with probability p, the others evenly; the
// palette steps are 10 apart so that the ranges below join some of them.
cv::Mat patchy(const Member& m, int w, int h, double p, double base) {
    cv::Mat out(h, w, CV_MAKETYPE(m.depth, m.channels));
    std::uniform_real_distribution<double> u(0, 1);
    cv::Mat f(h, w, CV_64FC(m.channels));
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) {
            const double r = u(zt::rng());
            const double v = r < p ? base : base + 10 * (1 + int((r - p) / (1 - p) * 3));
            for (int c = 0; c < m.channels; ++c) f.ptr<double>(y)[x * m.channels + c] = v + c;
        }
    f.convertTo(out, out.type());
    return out;
}

Vals vals_for(const Member& m, double base) {
    if (m.mode == Mode::Eq) return {{base + 5, base + 6, base + 7}, {}, {}};
    if (m.mode == Mode::Range) return {{base + 200, base + 201, base + 202}, {10, 10, 10}, {12, 12, 12}};
    return {{base + 200, base + 201, base + 202}, {10, 10, 10}, {10, 10, 10}};
}

TEST_P(FloodFill, MatchesOpenCVOnPatchyNoise) {
    for (const Member& m : members()) {
        for (double p : {0.55, 0.7}) {
            const cv::Mat src = patchy(m, 61, 37, p, 20);
            for (ZebiPoint seed : {ZebiPoint{0, 0}, ZebiPoint{30, 18}, ZebiPoint{60, 36}, ZebiPoint{7, 36}})
                if (!agrees(m, src, seed, vals_for(m, 20), "p " + std::to_string(p))) break;
        }
    }
}

// The smallest images: the span stack holds few entries, so fills lean on
// the rescan; every size up to 6x6 and every seed.
TEST_P(FloodFill, MatchesOpenCVOnTinyImages) {
    for (const Member& m : members()) {
        if (m.channels == 3) continue;
        for (int h = 1; h <= 6; ++h)
            for (int w = 1; w <= 6; ++w) {
                const cv::Mat src = patchy(m, w, h, 0.75, 20);
                bool ok = true;
                for (int y = 0; y < h && ok; ++y)
                    for (int x = 0; x < w && ok; ++x) ok = agrees(m, src, {x, y}, vals_for(m, 20), "tiny");
            }
    }
}

// A photograph quantised to 16 levels: large regions with long borders.
TEST_P(FloodFill, MatchesOpenCVOnPhotographs) {
    const cv::Mat photo = zt::photo("fruits.jpg", cv::IMREAD_COLOR);
    ASSERT_FALSE(photo.empty());
    cv::Mat small, grey;
    cv::resize(photo, small, {320, 240}, 0, 0, cv::INTER_AREA);
    small = small / 16 * 16;
    cv::cvtColor(small, grey, cv::COLOR_BGR2GRAY);
    grey = grey / 16 * 16;
    for (const Member& m : members()) {
        cv::Mat src;
        (m.channels == 3 ? small : grey).convertTo(src, CV_MAKETYPE(m.depth, m.channels));
        Vals x = m.mode == Mode::Eq ? Vals{{7, 7, 7}, {}, {}} : Vals{{7, 7, 7}, {16, 16, 16}, {16, 16, 16}};
        if (m.mode == Mode::Grad) x = Vals{{7, 7, 7}, {3, 3, 3}, {3, 3, 3}};  // quantised steps are 16 or 0
        for (ZebiPoint seed : {ZebiPoint{160, 120}, ZebiPoint{10, 200}}) agrees(m, src, seed, x, "photo");
    }
}

// Floating ranges on smooth data, where they matter: blurred noise, so
// that regions end where the accumulated drift meets a steeper step.
TEST_P(FloodFill, GradientMatchesOpenCVOnSmoothNoise) {
    for (const Member& m : members()) {
        if (m.mode != Mode::Grad) continue;
        for (int k = 0; k < 6; ++k) {
            cv::Mat f(45, 70, CV_64FC(m.channels)), src;
            cv::randu(f, 0, 255);
            cv::GaussianBlur(f, f, {0, 0}, 1.0 + k % 3);
            cv::Mat(cv::max(cv::min(f, 255), 0)).convertTo(src, CV_MAKETYPE(m.depth, m.channels));
            if (m.depth == CV_32F) src.convertTo(src, src.type());  // whole values, exact in both
            const double d = 1 + k / 2;
            agrees(m, src, {7 * k + 3, 5 * k + 4}, {{7, 8, 9}, {d, d, d}, {d + 1, d + 1, d + 1}}, "smooth");
        }
    }
}

TEST_P(FloodFill, SeedHoldingNewValueWritesNothing) {
    for (const Member& m : members()) {
        cv::Mat src = patchy(m, 13, 7, 0.6, 20);
        src(cv::Rect(0, 0, 1, 1)).setTo(cv::Scalar(20, 21, 22));
        Vals x = vals_for(m, 20);
        for (int c = 0; c < 3; ++c) x.nv[c] = 20 + c;  // the seed's own value
        for (int v = 0; v < 2; ++v) {
            const Outcome o = run_any(m, v, src, {0, 0}, x);
            EXPECT_EQ(o.status, zebStsNoErr);
            if (m.mode == Mode::Grad) {
                EXPECT_GE(o.rc.area, 1) << m.name;  // filled normally
            } else {
                EXPECT_EQ(o.rc.area, -1) << m.name << ": the record was written";
                EXPECT_EQ(cv::norm(o.pixels, oracle_copy(src), cv::NORM_INF), 0) << m.name;
            }
        }
    }
}

// Range clamping: a 16u seed of 10 with minDelta 20 accepts 0 (no wrap to
// a lower end near 65535), and maxDelta past the top accepts 65535.
TEST_P(FloodFill, RangeEndsClampAtTheTypeLimits) {
    Image<Zeb16u> img(5, 1);
    const Zeb16u px[5] = {0, 10, 30, 31, 65535};
    for (int x = 0; x < 5; ++x) img.at(x, 0) = px[x];
    int n = 0;
    ASSERT_EQ(zebiFloodFillGetSize({5, 1}, &n), zebStsNoErr);
    zt::Guarded buf = zt::work_buffer(n);
    ZebConnectedComp rc{};
    ASSERT_EQ(zeb_tbl_zebiFloodFill_Range4Con_16u_C1IR[0](img.ptr(), img.step(), {5, 1}, {1, 0}, 7, 20, 20, &rc,
                                                          buf.data()),
              zebStsNoErr);
    EXPECT_EQ(rc.area, 3);
    EXPECT_EQ(img.at(0, 0), 7);
    EXPECT_EQ(img.at(3, 0), 31);
    img.at(0, 0) = 65535, img.at(1, 0) = 65000, img.at(2, 0) = 65530;
    ASSERT_EQ(zeb_tbl_zebiFloodFill_Range4Con_16u_C1IR[1](img.ptr(), img.step(), {5, 1}, {2, 0}, 7, 1000, 60000,
                                                          &rc, buf.data()),
              zebStsNoErr);
    EXPECT_EQ(rc.area, 3);
    EXPECT_EQ(img.at(0, 0), 7);
}

// Large fills on a photograph-sized checkerboard: 4-connectivity fills the
// seed alone, 8-connectivity every pixel of its colour.
TEST_P(FloodFill, Checkerboard) {
    Image<Zeb8u> img(101, 77, 1, 5);
    int n = 0;
    ASSERT_EQ(zebiFloodFillGetSize(img.size(), &n), zebStsNoErr);
    zt::Guarded buf = zt::work_buffer(n);
    for (int v = 0; v < 2; ++v) {
        for (int y = 0; y < 77; ++y)
            for (int x = 0; x < 101; ++x) img.at(x, y) = Zeb8u((x + y) % 2 ? 200 : 100);
        ZebConnectedComp rc{};
        ASSERT_EQ(zeb_tbl_zebiFloodFill_4Con_8u_C1IR[v](img.ptr(), img.step(), img.size(), {50, 40}, 1, &rc,
                                                        buf.data()),
                  zebStsNoErr);
        EXPECT_EQ(rc.area, 1);
        ASSERT_EQ(zeb_tbl_zebiFloodFill_8Con_8u_C1IR[v](img.ptr(), img.step(), img.size(), {51, 40}, 2, &rc,
                                                        buf.data()),
                  zebStsNoErr);
        EXPECT_EQ(rc.area, (101 * 77) / 2);
        EXPECT_EQ(rc.rect.width, 101);
        EXPECT_EQ(rc.rect.height, 77);
    }
}

}  // namespace
