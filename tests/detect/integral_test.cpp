// SPDX-License-Identifier: Apache-2.0
// Integral images: the argument checks in their order with canaries, every
// table bit for bit against its recurrence (written out here) on every
// vector target and both variants, the upright tables against OpenCV, and
// the tilted tables against sums over rotated regions of the pixels.
#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <opencv2/imgproc.hpp>
#include <type_traits>
#include <vector>

#include "check_table.h"
#include "harness.h"

#define ZEB_INTEGRAL_MEMBERS(X)            \
    X(zebiIntegral_8u32s_C1R)              \
    X(zebiIntegral_8u32f_C1R)              \
    X(zebiIntegral_32f_C1R)                \
    X(zebiSqrIntegral_8u32s_C1R)           \
    X(zebiSqrIntegral_8u32s64f_C1R)        \
    X(zebiSqrIntegral_8u32f64f_C1R)        \
    X(zebiTiltedIntegral_8u32s_C1R)        \
    X(zebiTiltedIntegral_8u32f_C1R)        \
    X(zebiTiltedSqrIntegral_8u32s_C1R)     \
    X(zebiTiltedSqrIntegral_8u32s64f_C1R)  \
    X(zebiTiltedSqrIntegral_8u32f64f_C1R)

#define ZEB_DECLARE(name) ZEB_TEST_TABLE(name);
ZEB_INTEGRAL_MEMBERS(ZEB_DECLARE)
#undef ZEB_DECLARE

namespace {

using zt::Image;

// One member seen through a uniform call: source, table, square table
// (null when the member has none), ROI, start values.
struct Member {
    const char* name;
    bool tilted;
    int srcElem, dstElem, sqrElem;  // sqrElem 0: no square table
    bool floatSrc, floatDst;
    std::function<ZebStatus(int v, const void*, int, void*, int, void*, int, ZebiSize, double, double)> call;
};

template <class S, class O, class V>
Member adapt(const char* name, ZebStatus (*const* tbl)(const S*, int, O*, int, ZebiSize, V)) {
    return {name, std::string(name).find("Tilted") != std::string::npos, int(sizeof(S)), int(sizeof(O)), 0, false,
            std::is_floating_point_v<O>,
            [tbl](int v, const void* s, int ss, void* d, int ds, void*, int, ZebiSize roi, double val, double) {
                return tbl[v](static_cast<const S*>(s), ss, static_cast<O*>(d), ds, roi, V(val));
            }};
}
template <class S, class O>
Member adapt(const char* name, ZebStatus (*const* tbl)(const S*, int, O*, int, ZebiSize)) {
    return {name, false, int(sizeof(S)), int(sizeof(O)), 0, true, true,
            [tbl](int v, const void* s, int ss, void* d, int ds, void*, int, ZebiSize roi, double, double) {
                return tbl[v](static_cast<const S*>(s), ss, static_cast<O*>(d), ds, roi);
            }};
}
template <class S, class O, class Q, class V, class VQ>
Member adapt(const char* name, ZebStatus (*const* tbl)(const S*, int, O*, int, Q*, int, ZebiSize, V, VQ)) {
    return {name, std::string(name).find("Tilted") != std::string::npos, int(sizeof(S)), int(sizeof(O)),
            int(sizeof(Q)), false, std::is_floating_point_v<O>,
            [tbl](int v, const void* s, int ss, void* d, int ds, void* q, int qs, ZebiSize roi, double val,
                  double valSqr) {
                return tbl[v](static_cast<const S*>(s), ss, static_cast<O*>(d), ds, static_cast<Q*>(q), qs, roi,
                              V(val), VQ(valSqr));
            }};
}

const std::vector<Member>& members() {
    static const std::vector<Member> m = {
#define ZEB_ADAPT(name) adapt(#name, zeb_tbl_##name),
        ZEB_INTEGRAL_MEMBERS(ZEB_ADAPT)
#undef ZEB_ADAPT
    };
    return m;
}

ZT_TARGET_SUITE(IntegralChecks);
ZT_TARGET_SUITE(IntegralResults);
ZT_TARGET_SUITE(IntegralOpenCV);

// ---- Argument checks ----

struct Args {
    const void* src;
    void *dst, *sqr;
    int ss, ds, qs;
    ZebiSize roi;
};

TEST_P(IntegralChecks, EveryMemberChecksInOrderAndWritesNothingOnFailure) {
    constexpr int w = 9, h = 4;
    for (const Member& m : members()) {
        const int extra = m.tilted ? 2 : 1;
        const bool sq = m.sqrElem != 0;
        zt::checks::Table<Args> t{m.name,
                                  [&](zt::checks::Arena& a) {
                                      auto s = a.image<Zeb8u>("src", w * m.srcElem, h, 1, 8);
                                      auto d = a.image<Zeb8u>("dst", (w + extra) * m.dstElem, h + extra, 1, 8);
                                      Args x{s.ptr, d.ptr, nullptr, s.step, d.step, 0, {w, h}};
                                      if (sq) {
                                          auto q = a.image<Zeb8u>("sqr", (w + extra) * m.sqrElem, h + extra, 1, 8);
                                          x.sqr = q.ptr, x.qs = q.step;
                                      }
                                      return x;
                                  },
                                  [&](int v, Args& x) {
                                      return m.call(v, x.src, x.ss, x.dst, x.ds, x.sqr, x.qs, x.roi, 3, 5);
                                  },
                                  {}};
        auto add = [&](const char* what, std::function<void(Args&)> f, ZebStatus want) {
            t.cases.push_back({what, std::move(f), want});
        };
        const ZebStatus srcOdd = m.srcElem > 1 ? zebStsNotEvenStepErr : zebStsNoErr;
        add("null src, width 0", [](Args& x) { x.src = nullptr, x.roi.width = 0; }, zebStsNullPtrErr);
        add("null dst, short step", [](Args& x) { x.dst = nullptr, x.ds = 1; }, zebStsNullPtrErr);
        if (sq) add("null sqr, height 0", [](Args& x) { x.sqr = nullptr, x.roi.height = 0; }, zebStsNullPtrErr);
        add("width 0, short steps", [](Args& x) { x.roi.width = 0, x.ss = 0, x.ds = 0; }, zebStsSizeErr);
        add("height -1", [](Args& x) { x.roi.height = -1; }, zebStsSizeErr);
        add("1x1", [](Args& x) { x.roi = {1, 1}; }, zebStsNoErr);
        add("src step 1 short", [](Args& x) { x.ss -= 1; }, zebStsStepErr);
        add("src step 1 long", [](Args& x) { x.ss += 1; }, srcOdd);
        add("dst step 1 short", [](Args& x) { x.ds -= 1; }, zebStsStepErr);
        add("dst step 1 long", [](Args& x) { x.ds += 1; }, zebStsNotEvenStepErr);
        add("dst step 4 long", [](Args& x) { x.ds += 4; }, zebStsNoErr);
        add("uneven dst, short src", [](Args& x) { x.ds += 2, x.ss -= 1; }, zebStsStepErr);
        if (m.srcElem > 1) add("uneven src, uneven dst", [](Args& x) { x.ss += 2, x.ds += 2; }, zebStsNotEvenStepErr);
        if (sq) {
            add("sqr step short", [&m](Args& x) { x.qs -= m.sqrElem; }, zebStsStepErr);
            add("sqr step 4 long", [](Args& x) { x.qs += 4; },
                m.sqrElem == 8 ? zebStsNotEvenStepErr : zebStsNoErr);
            add("uneven dst, short sqr", [](Args& x) { x.ds += 1, x.qs -= 1; }, zebStsStepErr);
        }
        zt::checks::run(t);
    }
}

// ---- Results against the recurrences ----

// The documented recurrences, entry by entry, in the table's arithmetic:
// T is uint32_t for integer tables (wrapping), float or double.
template <class T>
T value_of(uint32_t pixelSum) {
    if constexpr (std::is_same_v<T, uint32_t>)
        return pixelSum;
    else
        return T(int32_t(pixelSum));
}

template <class T, class S>
std::vector<T> upright_def(const Image<S>& s, bool sq, T val) {
    const int w = s.width(), h = s.height(), W = w + 1;
    std::vector<T> t(std::size_t(W) * (h + 1), val);
    for (int y = 0; y < h; ++y) {
        if constexpr (std::is_same_v<S, float>) {
            float run = 0;
            for (int x = 0; x < w; ++x) {
                run += s.at(x, y);
                t[(y + 1) * W + x + 1] = t[y * W + x + 1] + run;
            }
        } else {
            uint32_t run = 0;
            double runD = 0;
            for (int x = 0; x < w; ++x) {
                const uint32_t p = sq ? uint32_t(s.at(x, y)) * s.at(x, y) : s.at(x, y);
                run += p, runD += p;
                if constexpr (std::is_same_v<T, double>)
                    t[(y + 1) * W + x + 1] = t[y * W + x + 1] + runD;
                else
                    t[(y + 1) * W + x + 1] = t[y * W + x + 1] + value_of<T>(run);
            }
        }
    }
    return t;
}

template <class T>
std::vector<T> tilted_def(const Image<Zeb8u>& s, bool sq, T val) {
    const int w = s.width(), h = s.height(), W = w + 2;
    std::vector<T> t(std::size_t(W) * (h + 2), val);
    auto S = [&](int x, int y) { return sq ? uint32_t(s.at(x, y)) * s.at(x, y) : uint32_t(s.at(x, y)); };
    auto T_ = [&](int x, int r) -> T& { return t[std::size_t(r) * W + x]; };
    for (int y = 0; y < h; ++y) {
        const int r = y + 2;
        T_(0, r) = T_(1, r - 1);
        for (int X = 1; X < w; ++X)
            T_(X, r) = value_of<T>(S(X - 1, y) + S(X, y)) + T_(X - 1, r - 1) + T_(X + 1, r - 1) - T_(X, r - 2);
        T_(w, r) = value_of<T>(S(w - 1, y)) + T_(w - 1, r - 1) + T_(w + 1, r - 1) - T_(w, r - 2);
        T_(w + 1, r) = T_(w, r - 1);
    }
    return t;
}

// The table's entries as T (its bits: int32 entries read as uint32_t).
template <class T, class Img>
::testing::AssertionResult table_equals(const Img& img, const std::vector<T>& want, const char* what) {
    const int W = img.width();
    for (int y = 0; y < img.height(); ++y)
        for (int x = 0; x < W; ++x) {
            T got;
            std::memcpy(&got, &img.at(x, y), sizeof got);
            if (std::memcmp(&got, &want[std::size_t(y) * W + x], sizeof got) != 0)
                return ::testing::AssertionFailure() << what << ": entry (" << x << ", " << y << ") is " << got
                                                     << ", the recurrence gives " << want[std::size_t(y) * W + x];
        }
    return ::testing::AssertionSuccess();
}

template <class D>
using Lane = std::conditional_t<std::is_same_v<D, Zeb32s>, uint32_t, D>;

// One member (8-bit source) over widths, pads and both variants. Pixels
// run up to 255, so square rows reach past 2^24 at the larger widths and
// float start values with a fraction make every float addition round.
template <class O, class Q>
void check_8u(const Member& m) {
    const int extra = m.tilted ? 2 : 1;
    for (int v = 0; v < 2; ++v)
        for (int w : zt::test_widths())
            for (int pad : zt::test_pads(1)) {
                const int h = 5;
                Image<Zeb8u> s(w, h, 1, pad);
                Image<O> d(w + extra, h + extra, 1, int(sizeof(O)) * (pad % 3));
                Image<Q> q(w + extra, h + extra, 1, int(sizeof(Q)) * (pad % 2));
                const double val = std::is_floating_point_v<O> ? 1000.375 : -7, valSqr = std::is_floating_point_v<Q> ? 0.625 : 2147483000.0;
                ASSERT_EQ(m.call(v, s.ptr(), s.step(), d.ptr(), d.step(), m.sqrElem ? q.ptr() : nullptr, q.step(),
                                 s.size(), val, valSqr),
                          zebStsNoErr)
                    << m.name;
                const std::string what = std::string(m.name) + " variant " + std::to_string(v) + " w=" +
                                         std::to_string(w) + " pad=" + std::to_string(pad);
                using LO = Lane<O>;
                using LQ = Lane<Q>;
                const LO v0 = std::is_same_v<O, Zeb32s> ? LO(uint32_t(int32_t(val))) : LO(val);
                const LQ q0 = std::is_same_v<Q, Zeb32s> ? LQ(uint32_t(int32_t(valSqr))) : LQ(valSqr);
                if (m.tilted) {
                    ASSERT_TRUE(table_equals(d, tilted_def<LO>(s, false, v0), what.c_str()));
                    if (m.sqrElem) {
                        ASSERT_TRUE(table_equals(q, tilted_def<LQ>(s, true, q0), (what + " squares").c_str()));
                    }
                } else {
                    ASSERT_TRUE(table_equals(d, upright_def<LO>(s, false, v0), what.c_str()));
                    if (m.sqrElem) {
                        ASSERT_TRUE(table_equals(q, upright_def<LQ>(s, true, q0), (what + " squares").c_str()));
                    }
                }
            }
}

TEST_P(IntegralResults, EveryMemberFollowsItsRecurrence) {
    for (const Member& m : members()) {
        if (m.floatSrc) continue;
        const bool f = m.floatDst;
        if (m.sqrElem == 0 || m.sqrElem == 4)
            f ? check_8u<float, float>(m) : check_8u<Zeb32s, Zeb32s>(m);
        else
            f ? check_8u<float, double>(m) : check_8u<Zeb32s, double>(m);
    }
    // The float source: a left-to-right single-precision running sum.
    for (int v = 0; v < 2; ++v)
        for (int w : {1, 7, 33}) {
            Image<float> s(w, 3, 1, 4);
            Image<float> d(w + 1, 4, 1, 8);
            ASSERT_EQ(zeb_tbl_zebiIntegral_32f_C1R[v](s.ptr(), s.step(), d.ptr(), d.step(), s.size()), 0);
            ASSERT_TRUE(table_equals(d, upright_def<float>(s, false, 0.0f), "zebiIntegral_32f_C1R"));
        }
}

// The documented small cases: a 1x1 source, wrap-around of the integer
// tables at 2^32 (not saturated), and the width-1 tilted row.
TEST_P(IntegralResults, SmallCasesAndWrapAround) {
    for (int v = 0; v < 2; ++v) {
        Image<Zeb8u> one(1, 1);
        one.at(0, 0) = 200;
        Image<Zeb32s> t(2, 2), q(2, 2);
        ASSERT_EQ(zeb_tbl_zebiSqrIntegral_8u32s_C1R[v](one.ptr(), one.step(), t.ptr(), t.step(), q.ptr(), q.step(),
                                                        {1, 1}, 2147483600, -5),
                  0);
        EXPECT_EQ(t.at(0, 0), 2147483600);
        EXPECT_EQ(t.at(1, 0), 2147483600);
        EXPECT_EQ(t.at(0, 1), 2147483600);
        EXPECT_EQ(t.at(1, 1), int32_t(2147483600u + 200u));  // wrapped below zero
        EXPECT_EQ(q.at(1, 1), 40000 - 5);

        // Width 1: columns 0, 1, 2 of row y + 2 are T(1, y+1),
        // S(0, y) + T(0, y+1) + T(2, y+1) - T(1, y) and T(1, y+1).
        Image<Zeb8u> col(1, 3);
        col.at(0, 0) = 10, col.at(0, 1) = 20, col.at(0, 2) = 40;
        Image<Zeb32s> tt(3, 5);
        ASSERT_EQ(zeb_tbl_zebiTiltedIntegral_8u32s_C1R[v](col.ptr(), col.step(), tt.ptr(), tt.step(), {1, 3}, 1), 0);
        const int want[5][3] = {{1, 1, 1}, {1, 1, 1}, {1, 11, 1}, {11, 21, 11}, {21, 51, 21}};
        for (int r = 0; r < 5; ++r)
            for (int c = 0; c < 3; ++c) EXPECT_EQ(tt.at(c, r), want[r][c]) << "row " << r << " col " << c;
    }
}

// Away from the left edge, a tilted entry T(X, r) is the sum over the
// wedge i - j >= X - r + 1, i + j <= X + r - 2; a rotated rectangle's four
// corners then give exactly its 2ab pixels.
TEST_P(IntegralResults, TiltedTablesSumRotatedRegions) {
    const int w = 61, h = 23;
    Image<Zeb8u> s(w, h, 1, 3);
    Image<Zeb32s> t(w + 2, h + 2);
    Image<double> q(w + 2, h + 2);
    for (int v = 0; v < 2; ++v) {
        ASSERT_EQ(zeb_tbl_zebiTiltedSqrIntegral_8u32s64f_C1R[v](s.ptr(), s.step(), t.ptr(), t.step(), q.ptr(),
                                                                 q.step(), s.size(), 0, 0.0),
                  0);
        auto wedge = [&](int X, int r, bool sq) {
            double sum = 0;
            for (int j = 0; j < h; ++j)
                for (int i = 0; i < w; ++i)
                    if (i - j >= X - r + 1 && i + j <= X + r - 2) sum += sq ? double(s.at(i, j)) * s.at(i, j) : s.at(i, j);
            return sum;
        };
        for (int r = 0; r < h + 2; ++r)
            for (int X = std::max(0, r - 1); X < w + 2; X += 3) {
                ASSERT_EQ(double(t.at(X, r)), wedge(X, r, false)) << "T(" << X << ", " << r << ")";
                ASSERT_EQ(q.at(X, r), wedge(X, r, true)) << "Q(" << X << ", " << r << ")";
            }
        // Rectangles (a, b) at (c, r) with c - r + 1 - 2b >= 0 (clean corners).
        int checked = 0;
        for (int a = 1; a <= 6; ++a)
            for (int b = 1; b <= 5; ++b)
                for (int r = 0; r + a + b <= h + 1; r += 4)
                    for (int c = r - 1 + 2 * b; c + a <= w + 1; c += 7) {
                        int64_t brute = 0;
                        for (int j = 0; j < h; ++j)
                            for (int i = 0; i < w; ++i) {
                                const int p = i - j, u = i + j;
                                if (p >= c - r + 1 - 2 * b && p <= c - r && u >= c + r - 1 && u <= c + r - 2 + 2 * a)
                                    brute += s.at(i, j);
                            }
                        const int64_t corners = int64_t(t.at(c, r)) - t.at(c + a, r + a) + t.at(c + a - b, r + a + b) -
                                                t.at(c - b, r + b);
                        ASSERT_EQ(corners, brute) << "a=" << a << " b=" << b << " c=" << c << " r=" << r;
                        ++checked;
                    }
        EXPECT_GT(checked, 200);
    }
}

// ---- OpenCV ----

// cv::integral with the same depths, start values 0: bit for bit on noise
// and on a photograph (row sums stay below 2^24, where the float tables
// must agree).
TEST_P(IntegralOpenCV, UprightTablesAgree) {
    cv::Mat noise(45, 203, CV_8U);
    cv::randu(noise, 0, 256);
    cv::Mat photo = zt::photo("fruits.jpg", cv::IMREAD_GRAYSCALE);
    ASSERT_FALSE(photo.empty());
    for (const cv::Mat& src : {noise, photo(cv::Rect(3, 1, 250, 61))}) {
        const auto s = zt::image_of<Zeb8u>(src, 5);
        const ZebiSize roi = s.size();
        auto same = [](const cv::Mat& a, const cv::Mat& b) {
            return a.size() == b.size() && cv::norm(a, b, cv::NORM_INF) == 0;
        };
        for (int v = 0; v < 2; ++v) {
            cv::Mat sum, sq;
            Image<Zeb32s> d(roi.width + 1, roi.height + 1, 1, 4);
            Image<float> df(roi.width + 1, roi.height + 1);
            Image<double> q(roi.width + 1, roi.height + 1, 1, 8);
            Image<Zeb32s> qi(roi.width + 1, roi.height + 1);
            cv::integral(src, sum, sq, CV_32S, CV_64F);
            ASSERT_EQ(zeb_tbl_zebiSqrIntegral_8u32s64f_C1R[v](s.ptr(), s.step(), d.ptr(), d.step(), q.ptr(), q.step(),
                                                               roi, 0, 0.0),
                      0);
            EXPECT_TRUE(same(sum, d.mat()) && same(sq, q.mat())) << "8u32s64f";
            cv::integral(src, sum, sq, CV_32S, CV_32S);
            ASSERT_EQ(zeb_tbl_zebiSqrIntegral_8u32s_C1R[v](s.ptr(), s.step(), d.ptr(), d.step(), qi.ptr(),
                                                            qi.step(), roi, 0, 0),
                      0);
            EXPECT_TRUE(same(sum, d.mat()) && same(sq, qi.mat())) << "8u32s with 32s squares";
            cv::integral(src, sum, sq, CV_32F, CV_64F);
            ASSERT_EQ(zeb_tbl_zebiSqrIntegral_8u32f64f_C1R[v](s.ptr(), s.step(), df.ptr(), df.step(), q.ptr(),
                                                               q.step(), roi, 0.0f, 0.0),
                      0);
            EXPECT_TRUE(same(sum, df.mat()) && same(sq, q.mat())) << "8u32f64f";
            cv::integral(src, sum, CV_32S);
            ASSERT_EQ(zeb_tbl_zebiIntegral_8u32s_C1R[v](s.ptr(), s.step(), d.ptr(), d.step(), roi, 0), 0);
            EXPECT_TRUE(same(sum, d.mat())) << "8u32s";
            cv::integral(src, sum, CV_32F);
            ASSERT_EQ(zeb_tbl_zebiIntegral_8u32f_C1R[v](s.ptr(), s.step(), df.ptr(), df.step(), roi, 0.0f), 0);
            EXPECT_TRUE(same(sum, df.mat())) << "8u32f";
            cv::Mat fsrc;
            src.convertTo(fsrc, CV_32F, 0.37);
            const auto sf = zt::image_of<float>(fsrc, 4);
            cv::integral(fsrc, sum, CV_32F);
            ASSERT_EQ(zeb_tbl_zebiIntegral_32f_C1R[v](sf.ptr(), sf.step(), df.ptr(), df.step(), roi), 0);
            EXPECT_TRUE(same(sum, df.mat())) << "32f";
        }
    }
}

}  // namespace
