// SPDX-License-Identifier: Apache-2.0
// Rectangle standard deviations: checks in their order with canaries,
// every member bit for bit against its formulas (written out here) on every
// vector target, and against deviations taken directly from the pixels
// under upright and rotated rectangles.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <cstdint>
#include <functional>
#include <string>
#include <type_traits>
#include <vector>

#include "check_table.h"
#include "harness.h"

#define ZEB_RECT_STDDEV_MEMBERS(X)       \
    X(zebiRectStdDev_32f_C1R)            \
    X(zebiRectStdDev_32s32f_C1R)         \
    X(zebiRectStdDev_32s_C1RSfs)         \
    X(zebiTiltedRectStdDev_32f_C1R)      \
    X(zebiTiltedRectStdDev_32s32f_C1R)   \
    X(zebiTiltedRectStdDev_32s_C1RSfs)

#define ZEB_DECLARE(name) ZEB_TEST_TABLE(name);
ZEB_RECT_STDDEV_MEMBERS(ZEB_DECLARE)
ZEB_TEST_TABLE(zebiSqrIntegral_8u32s64f_C1R);
ZEB_TEST_TABLE(zebiSqrIntegral_8u32f64f_C1R);
ZEB_TEST_TABLE(zebiSqrIntegral_8u32s_C1R);
ZEB_TEST_TABLE(zebiTiltedSqrIntegral_8u32s64f_C1R);
ZEB_TEST_TABLE(zebiTiltedSqrIntegral_8u32f64f_C1R);
ZEB_TEST_TABLE(zebiTiltedSqrIntegral_8u32s_C1R);
#undef ZEB_DECLARE

namespace {

using zt::Image;

ZT_TARGET_SUITE(RectStdDevChecks);
ZT_TARGET_SUITE(RectStdDevResults);

struct Call {
    const void *I, *Q;
    void* dst;
    int is, qs, ds;
    ZebiSize roi;
    ZebiRect rect;
    int sf;
};

// A member through a uniform call; the scale factor reaches the Sfs forms.
struct Member {
    std::string name;
    bool tilted;
    int iElem, qElem, oElem;
    std::function<ZebStatus(int, const Call&)> call;
};

template <class TI, class TQ, class TO, class... Sf>
Member adapt(const char* name, ZebStatus (*const* tbl)(const TI*, int, const TQ*, int, TO*, int, ZebiSize, ZebiRect,
                                                        Sf...)) {
    return {name, std::string(name).find("Tilted") != std::string::npos, int(sizeof(TI)), int(sizeof(TQ)),
            int(sizeof(TO)), [tbl](int v, const Call& c) {
                return tbl[v](static_cast<const TI*>(c.I), c.is, static_cast<const TQ*>(c.Q), c.qs,
                              static_cast<TO*>(c.dst), c.ds, c.roi, c.rect, Sf(c.sf)...);
            }};
}

const std::vector<Member>& members() {
    static const std::vector<Member> m = {
#define ZEB_ADAPT(name) adapt(#name, zeb_tbl_##name),
        ZEB_RECT_STDDEV_MEMBERS(ZEB_ADAPT)
#undef ZEB_ADAPT
    };
    return m;
}

// Table columns and rows that a w x h output with this rectangle reads.
int table_cols(bool tilted, int w, ZebiRect r) {
    return tilted ? w + r.x + r.y + r.width + r.height - 1 : w + r.x + r.width;
}
int table_rows(bool tilted, int h, ZebiRect r) {
    return tilted ? h + r.x + r.y + r.width + r.height : h + r.y + r.height;
}

TEST_P(RectStdDevChecks, EveryMemberChecksInOrderAndWritesNothingOnFailure) {
    const int w = 7, h = 3;
    const ZebiRect rect{3, 1, 3, 2};
    for (const Member& m : members()) {
        const int cols = table_cols(m.tilted, w, rect), rows = table_rows(m.tilted, h, rect);
        zt::checks::Table<Call> t{m.name,
                                  [&](zt::checks::Arena& a) {
                                      auto I = a.image<Zeb8u>("integral", cols * m.iElem, rows, 1, 8);
                                      auto Q = a.image<Zeb8u>("square", cols * m.qElem, rows, 1, 8);
                                      auto d = a.image<Zeb8u>("dst", w * m.oElem, h, 1, 8);
                                      return Call{I.ptr, Q.ptr, d.ptr, I.step, Q.step, d.step, {w, h}, rect, 2};
                                  },
                                  [&](int v, Call& c) { return m.call(v, c); },
                                  {}};
        auto add = [&](const char* what, std::function<void(Call&)> f, ZebStatus want) {
            t.cases.push_back({what, std::move(f), want});
        };
        add("null integral, width 0", [](Call& c) { c.I = nullptr, c.roi.width = 0; }, zebStsNullPtrErr);
        add("null square, bad rect", [](Call& c) { c.Q = nullptr, c.rect.x = -1; }, zebStsNullPtrErr);
        add("null dst", [](Call& c) { c.dst = nullptr; }, zebStsNullPtrErr);
        add("height 0, short steps", [](Call& c) { c.roi.height = 0, c.is = 0; }, zebStsSizeErr);
        add("width -3", [](Call& c) { c.roi.width = -3; }, zebStsSizeErr);
        add("integral step short", [&](Call& c) { c.is -= m.iElem; }, zebStsStepErr);
        add("square step short", [&](Call& c) { c.qs -= m.qElem; }, zebStsStepErr);
        add("dst step short", [&](Call& c) { c.ds -= 1; }, zebStsStepErr);
        add("integral step uneven", [](Call& c) { c.is += 2; }, zebStsNotEvenStepErr);
        add("square step 4 long", [](Call& c) { c.qs += 4; }, m.qElem == 8 ? zebStsNotEvenStepErr : zebStsNoErr);
        add("dst step uneven", [](Call& c) { c.ds += 1; }, zebStsNotEvenStepErr);
        add("uneven integral, short square", [&](Call& c) { c.is += 1, c.qs -= m.qElem; }, zebStsStepErr);
        // The rectangle widens the required steps before it is checked.
        add("wider rectangle, short steps", [](Call& c) { c.rect.width += 1; }, zebStsStepErr);
        add("uneven dst, rect.x -1", [](Call& c) { c.ds += 2, c.rect.x = -1; }, zebStsNotEvenStepErr);
        add("rect.x -1", [](Call& c) { c.rect.x = -1; }, zebStsBadArgErr);
        add("rect.y -1", [](Call& c) { c.rect.y = -1; }, zebStsBadArgErr);
        add("rect.width 0", [](Call& c) { c.rect.width = 0, c.rect.x += 1; }, zebStsBadArgErr);
        add("rect.height 0", [](Call& c) { c.rect.height = 0; }, zebStsBadArgErr);
        add("1x1", [](Call& c) { c.roi = {1, 1}; }, zebStsNoErr);
        zt::checks::run(t);
    }
}

// ---- The formulas, written out ----

template <class T>
double wide(T v) {
    return double(v);
}

int32_t sat_trunc(double x) {
    if (std::isnan(x)) return 0;
    return x >= 2147483647.0 ? INT32_MAX : int32_t(x);
}

// Output (x, y) of a member, read from the tables as the documentation
// states: upright 32f/32s32f, upright Sfs, tilted float, tilted Sfs.
template <class TI, class TQ, class TO>
TO expected(const Image<TI>& I, const Image<TQ>& Q, int x, int y, ZebiRect r, bool tilted, int sf) {
    const float scale = std::ldexp(1.0f, -sf);
    if (!tilted) {
        const int x0 = x + r.x, y0 = y + r.y, x1 = x0 + r.width, y1 = y0 + r.height;
        auto comb = [&](const auto& t) {
            using T = std::remove_cvref_t<decltype(t.at(0, 0))>;
            if constexpr (std::is_same_v<T, int32_t>)
                return int32_t(uint32_t(t.at(x1, y1)) - uint32_t(t.at(x0, y1)) - uint32_t(t.at(x1, y0)) +
                               uint32_t(t.at(x0, y0)));
            else
                return t.at(x1, y1) - t.at(x0, y1) - t.at(x1, y0) + t.at(x0, y0);
        };
        const double area = double(r.width) * r.height;
        if constexpr (std::is_same_v<TO, float>) {
            const float sum = float(comb(I));
            const double rc = 1.0 / double(float(area));
            const double mean = double(sum) * rc;
            const float var = float(wide(comb(Q)) * rc - mean * mean);
            return var > 0 ? std::sqrt(var) : 0.0f;
        } else {
            const float mean = float(comb(I)) / float(area);
            float var = float(comb(Q)) / float(area) - mean * mean;
            if (!(var > 0)) var = 0;
            return sat_trunc(std::sqrt(double(var)) * double(scale) + 0.5);
        }
    }
    const int rr = y + r.x + r.y, c = x + r.x - r.y, a = r.width, b = r.height;
    auto at = [&](const auto& t, int cx, int ry) { return t.row(ry)[cx]; };
    auto comb = [&](const auto& t) {
        using T = std::remove_cvref_t<decltype(t.at(0, 0))>;
        if constexpr (std::is_same_v<T, int32_t>)
            return double(int32_t(uint32_t(at(t, c, rr)) - uint32_t(at(t, c + a, rr + a)) +
                                  uint32_t(at(t, c + a - b, rr + a + b)) - uint32_t(at(t, c - b, rr + b))));
        else
            return double(at(t, c, rr)) - double(at(t, c + a, rr + a)) + double(at(t, c + a - b, rr + a + b)) -
                   double(at(t, c - b, rr + b));
    };
    const double area = 2.0 * a * b, mean = comb(I) / area;
    double var = comb(Q) / area - mean * mean;
    if (!(var > 0)) var = 0;
    if constexpr (std::is_same_v<TO, float>)
        return std::sqrt(float(var));
    else
        return sat_trunc(std::sqrt(var) * double(scale) + 0.5);
}

// Tables of a source made by the library's integral functions (their own
// tests pin them down).
template <class TI, class TQ>
void make_tables(int v, const Image<Zeb8u>& s, Image<TI>& I, Image<TQ>& Q, bool tilted) {
    ZebStatus st;
    if constexpr (std::is_same_v<TI, float>) {
        st = tilted ? zeb_tbl_zebiTiltedSqrIntegral_8u32f64f_C1R[v](s.ptr(), s.step(), I.ptr(), I.step(), Q.ptr(),
                                                                     Q.step(), s.size(), 0.5f, 0.25)
                    : zeb_tbl_zebiSqrIntegral_8u32f64f_C1R[v](s.ptr(), s.step(), I.ptr(), I.step(), Q.ptr(),
                                                               Q.step(), s.size(), 0.5f, 0.25);
    } else if constexpr (std::is_same_v<TQ, double>) {
        st = tilted ? zeb_tbl_zebiTiltedSqrIntegral_8u32s64f_C1R[v](s.ptr(), s.step(), I.ptr(), I.step(), Q.ptr(),
                                                                     Q.step(), s.size(), -3, 7.0)
                    : zeb_tbl_zebiSqrIntegral_8u32s64f_C1R[v](s.ptr(), s.step(), I.ptr(), I.step(), Q.ptr(),
                                                               Q.step(), s.size(), -3, 7.0);
    } else {
        st = tilted ? zeb_tbl_zebiTiltedSqrIntegral_8u32s_C1R[v](s.ptr(), s.step(), I.ptr(), I.step(), Q.ptr(),
                                                                  Q.step(), s.size(), 9, 2147483000)
                    : zeb_tbl_zebiSqrIntegral_8u32s_C1R[v](s.ptr(), s.step(), I.ptr(), I.step(), Q.ptr(), Q.step(),
                                                            s.size(), 9, 2147483000);
    }
    ASSERT_EQ(st, zebStsNoErr);
}

// Deviation of the pixels under the rectangle, from the pixels: upright, or
// the rotated region of the tilted corner formula.
double brute(const Image<Zeb8u>& s, int x, int y, ZebiRect r, bool tilted) {
    double n = 0, sum = 0, sq = 0;
    auto take = [&](int i, int j) { n += 1, sum += s.at(i, j), sq += double(s.at(i, j)) * s.at(i, j); };
    if (!tilted) {
        for (int j = y + r.y; j < y + r.y + r.height; ++j)
            for (int i = x + r.x; i < x + r.x + r.width; ++i) take(i, j);
    } else {
        const int rr = y + r.x + r.y, c = x + r.x - r.y, a = r.width, b = r.height;
        for (int j = 0; j < s.height(); ++j)
            for (int i = 0; i < s.width(); ++i) {
                const int p = i - j, u = i + j;
                if (p >= c - rr + 1 - 2 * b && p <= c - rr && u >= c + rr - 1 && u <= c + rr - 2 + 2 * a) take(i, j);
            }
    }
    // A rotated region reaching past the image is not a whole rectangle.
    if (tilted && n != 2.0 * r.width * r.height) return -1;
    const double mean = sum / n;
    return std::sqrt(std::max(0.0, sq / n - mean * mean));
}

template <class TI, class TQ, class TO>
void check_member(const Member& m, bool constant) {
    int checkedAgainstPixels = 0;
    const ZebiRect rects[] = {{0, 0, 1, 1}, {5, 1, 4, 3}, {6, 2, 3, 4}, {4, 3, 7, 1}};
    for (int v = 0; v < 2; ++v)
        for (const ZebiRect& r : rects)
            for (int w : {1, 3, 8, 19, 37})
                for (int sf : std::is_same_v<TO, int32_t> ? std::vector<int>{0, -1, 1, 3} : std::vector<int>{0}) {
                    const int h = 4, cols = table_cols(m.tilted, w, r), rows = table_rows(m.tilted, h, r);
                    // A source as large as the tables cover.
                    Image<Zeb8u> s(std::max(1, cols - (m.tilted ? 2 : 1)), rows - (m.tilted ? 2 : 1), 1, 3);
                    if (constant) s.fill(251);
                    Image<TI> I(s.width() + (m.tilted ? 2 : 1), s.height() + (m.tilted ? 2 : 1), 1, 4 * (w % 3));
                    Image<TQ> Q(I.width(), I.height(), 1, int(sizeof(TQ)) * (w % 2));
                    make_tables(v, s, I, Q, m.tilted);
                    Image<TO> d(w, h, 1, 4 * (w % 4));
                    const Call c{I.ptr(), Q.ptr(), d.ptr(), I.step(), Q.step(), d.step(), {w, h}, r, sf};
                    ASSERT_EQ(m.call(v, c), zebStsNoErr) << m.name;
                    for (int y = 0; y < h; ++y)
                        for (int x = 0; x < w; ++x) {
                            const TO want = expected<TI, TQ, TO>(I, Q, x, y, r, m.tilted, sf), got = d.at(x, y);
                            ASSERT_EQ(0, std::memcmp(&want, &got, sizeof want))
                                << m.name << " variant " << v << " w=" << w << " rect " << r.x << ',' << r.y << ','
                                << r.width << ',' << r.height << " sf=" << sf << " at (" << x << ", " << y
                                << "): " << got << ", want " << want;
                            // Tilted corners clear of the table's left edge.
                            const bool clean = !m.tilted || x - y - 2 * r.y - 2 * r.height + 1 >= 0;
                            if constexpr (std::is_same_v<TO, float>) {
                                ASSERT_FALSE(std::isnan(got));
                            }
                            const double sd = clean ? brute(s, x, y, r, m.tilted) * std::ldexp(1.0, -sf) : -1;
                            if (sd < 0) continue;
                            ++checkedAgainstPixels;
                            if (constant) {
                                ASSERT_EQ(got, TO(0)) << m.name << " on a constant image";
                            } else {
                                const double tol = std::is_same_v<TO, float> ? 1e-3 + 1e-5 * sd : 0.5 + 1e-9;
                                ASSERT_NEAR(double(got), sd, tol)
                                    << m.name << " against the pixels at (" << x << ", " << y << ")";
                            }
                        }
                }
    EXPECT_GT(checkedAgainstPixels, 100) << m.name;
}

TEST_P(RectStdDevResults, EveryMemberFollowsItsFormulasAndTheDeviationOfThePixels) {
    for (bool constant : {false, true}) {
        const auto& m = members();
        check_member<float, double, float>(m[0], constant);
        check_member<int32_t, double, float>(m[1], constant);
        check_member<int32_t, int32_t, int32_t>(m[2], constant);
        check_member<float, double, float>(m[3], constant);
        check_member<int32_t, double, float>(m[4], constant);
        check_member<int32_t, int32_t, int32_t>(m[5], constant);
    }
}

// Two pixels 0 and 10 under a 2x1 rectangle: deviation 5, doubled with
// scale factor -1, halved and rounded half up (2.5 -> 3) with 1.
TEST_P(RectStdDevResults, ScaleFactorScalesThenRoundsHalfUp) {
    Image<Zeb8u> s(2, 1);
    s.at(0, 0) = 0, s.at(1, 0) = 10;
    Image<Zeb32s> I(3, 2), Q(3, 2), d(1, 1);
    for (int v = 0; v < 2; ++v) {
        ASSERT_EQ(zeb_tbl_zebiSqrIntegral_8u32s_C1R[v](s.ptr(), s.step(), I.ptr(), I.step(), Q.ptr(), Q.step(),
                                                        s.size(), 0, 0),
                  0);
        for (auto [sf, want] : {std::pair{0, 5}, {-1, 10}, {1, 3}, {2, 1}, {-3, 40}}) {
            ASSERT_EQ(zeb_tbl_zebiRectStdDev_32s_C1RSfs[v](I.ptr(), I.step(), Q.ptr(), Q.step(), d.ptr(), d.step(),
                                                           {1, 1}, {0, 0, 2, 1}, sf),
                      0);
            EXPECT_EQ(d.at(0, 0), want) << "scale factor " << sf;
        }
    }
}

}  // namespace
