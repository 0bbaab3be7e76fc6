// Results of the difference and accumulation exports: every variant and
// instruction-set path against the per-pixel definitions, over widths that
// exercise heads, bodies and tails, padded steps and guard pages; OpenCV as
// the independent oracle on a full-size image.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

#include "harness.h"

ZEB_TEST_TABLE(zebiAbsDiff_8u_C1R);
ZEB_TEST_TABLE(zebiAbsDiff_8u_C3R);
ZEB_TEST_TABLE(zebiAbsDiff_16u_C1R);
ZEB_TEST_TABLE(zebiAbsDiff_32f_C1R);
ZEB_TEST_TABLE(zebiAbsDiffC_8u_C1R);
ZEB_TEST_TABLE(zebiAbsDiffC_16u_C1R);
ZEB_TEST_TABLE(zebiAbsDiffC_32f_C1R);
ZEB_TEST_TABLE(zebiAdd_8u32f_C1IR);
ZEB_TEST_TABLE(zebiAdd_8s32f_C1IR);
ZEB_TEST_TABLE(zebiAdd_16u32f_C1IR);
ZEB_TEST_TABLE(zebiAdd_8u32f_C1IMR);
ZEB_TEST_TABLE(zebiAdd_8s32f_C1IMR);
ZEB_TEST_TABLE(zebiAdd_16u32f_C1IMR);
ZEB_TEST_TABLE(zebiAdd_32f_C1IMR);
ZEB_TEST_TABLE(zebiAddSquare_8u32f_C1IR);
ZEB_TEST_TABLE(zebiAddSquare_8s32f_C1IR);
ZEB_TEST_TABLE(zebiAddSquare_16u32f_C1IR);
ZEB_TEST_TABLE(zebiAddSquare_32f_C1IR);
ZEB_TEST_TABLE(zebiAddSquare_8u32f_C1IMR);
ZEB_TEST_TABLE(zebiAddSquare_8s32f_C1IMR);
ZEB_TEST_TABLE(zebiAddSquare_16u32f_C1IMR);
ZEB_TEST_TABLE(zebiAddSquare_32f_C1IMR);
ZEB_TEST_TABLE(zebiAddProduct_8u32f_C1IR);
ZEB_TEST_TABLE(zebiAddProduct_8s32f_C1IR);
ZEB_TEST_TABLE(zebiAddProduct_16u32f_C1IR);
ZEB_TEST_TABLE(zebiAddProduct_32f_C1IR);
ZEB_TEST_TABLE(zebiAddProduct_8u32f_C1IMR);
ZEB_TEST_TABLE(zebiAddProduct_8s32f_C1IMR);
ZEB_TEST_TABLE(zebiAddProduct_16u32f_C1IMR);
ZEB_TEST_TABLE(zebiAddProduct_32f_C1IMR);
ZEB_TEST_TABLE(zebiAddWeighted_8u32f_C1IR);
ZEB_TEST_TABLE(zebiAddWeighted_8s32f_C1IR);
ZEB_TEST_TABLE(zebiAddWeighted_16u32f_C1IR);
ZEB_TEST_TABLE(zebiAddWeighted_32f_C1IR);
ZEB_TEST_TABLE(zebiAddWeighted_8u32f_C1IMR);
ZEB_TEST_TABLE(zebiAddWeighted_8s32f_C1IMR);
ZEB_TEST_TABLE(zebiAddWeighted_16u32f_C1IMR);
ZEB_TEST_TABLE(zebiAddWeighted_32f_C1IMR);
ZEB_TEST_TABLE(zebiAddWeighted_32f_C1R);

namespace {

using zt::Image;

// Accumulator contents with small and large magnitudes, so that rounding
// of every operation shows.
void fill_acc(Image<float>& a) {
    std::uniform_real_distribution<float> d(-3000.f, 3000.f);
    for (int y = 0; y < a.height(); ++y)
        for (int x = 0; x < a.width(); ++x) a.at(x, y) = d(zt::rng()) * (x % 3 == 0 ? 1e-3f : 1.f);
}

// Mask with runs of zeros and non-zeros of every length.
void fill_mask(Image<uint8_t>& m) {
    for (int y = 0; y < m.height(); ++y)
        for (int x = 0; x < m.width(); ++x) m.at(x, y) = (zt::rng()() % 3 == 0) ? 0 : uint8_t(1 + zt::rng()() % 255);
}

// Calls f(path, w, pad) over every path, width and pad.
template <class F>
void sweep(int elem, F&& f) {
    for (const zt::Path& p : zt::all_paths()) {
        zt::IsaScope isa(p.isa);
        for (int w : zt::test_widths())
            for (int pad : zt::test_pads(elem)) f(p, w, pad);
    }
}

// ---- absolute difference ----

template <class T, class Fn>
void check_abs_diff(Fn* const* tbl, int ch) {
    sweep(sizeof(T), [&](const zt::Path& p, int w, int pad) {
        Image<T> a(w, 3, ch, pad), b(w, 3, ch, pad * 2), d(w, 3, ch, pad);
        // Equal pixels and extremes occur too.
        a.at(0, 0) = b.at(0, 0);
        ASSERT_EQ(tbl[p.variant](a.ptr(), a.step(), b.ptr(), b.step(), d.ptr(), d.step(), a.size()), 0);
        for (int y = 0; y < 3; ++y)
            for (int x = 0; x < w * ch; ++x) {
                const T u = a.row(y)[x], v = b.row(y)[x];
                const T want = T(u > v ? u - v : v - u);
                ASSERT_TRUE(std::memcmp(&want, &d.row(y)[x], sizeof(T)) == 0)
                    << p.name() << " w=" << w << " pad=" << pad << " x=" << x;
            }
    });
}

TEST(AbsDiff, AllPathsMatchDefinition) {
    check_abs_diff<uint8_t>(zeb_tbl_zebiAbsDiff_8u_C1R, 1);
    check_abs_diff<uint8_t>(zeb_tbl_zebiAbsDiff_8u_C3R, 3);
    check_abs_diff<uint16_t>(zeb_tbl_zebiAbsDiff_16u_C1R, 1);
    check_abs_diff<float>(zeb_tbl_zebiAbsDiff_32f_C1R, 1);
}

template <class T, class V, class Fn>
void check_abs_diff_c(Fn* const* tbl, V value, T clamped) {
    sweep(sizeof(T), [&](const zt::Path& p, int w, int pad) {
        Image<T> a(w, 2, 1, pad), d(w, 2, 1, 0);
        ASSERT_EQ(tbl[p.variant](a.ptr(), a.step(), d.ptr(), d.step(), a.size(), value), 0);
        for (int y = 0; y < 2; ++y)
            for (int x = 0; x < w; ++x) {
                const T u = a.at(x, y);
                const T want = T(u > clamped ? u - clamped : clamped - u);
                ASSERT_TRUE(std::memcmp(&want, &d.at(x, y), sizeof(T)) == 0) << p.name() << " w=" << w;
            }
    });
}

TEST(AbsDiffC, ConstantsClampToTheTypeRange) {
    check_abs_diff_c<uint8_t>(zeb_tbl_zebiAbsDiffC_8u_C1R, 77, uint8_t(77));
    check_abs_diff_c<uint8_t>(zeb_tbl_zebiAbsDiffC_8u_C1R, -5, uint8_t(0));
    check_abs_diff_c<uint8_t>(zeb_tbl_zebiAbsDiffC_8u_C1R, 300, uint8_t(255));
    check_abs_diff_c<uint16_t>(zeb_tbl_zebiAbsDiffC_16u_C1R, 70000, uint16_t(65535));
    check_abs_diff_c<uint16_t>(zeb_tbl_zebiAbsDiffC_16u_C1R, -1, uint16_t(0));
    check_abs_diff_c<uint16_t>(zeb_tbl_zebiAbsDiffC_16u_C1R, 31000, uint16_t(31000));
    check_abs_diff_c<float>(zeb_tbl_zebiAbsDiffC_32f_C1R, -12.25f, -12.25f);
}

// ---- accumulation ----

enum class Op { Add, Square, Product, Weighted };

float definition(Op op, float a, float s1, float s2, float alpha) {
    switch (op) {
        case Op::Add: return a + s1;
        case Op::Square: return a + s1 * s1;
        case Op::Product: return a + s1 * s2;
        case Op::Weighted: return (s1 - a) * alpha + a;
    }
    return 0;
}

// Runs one accumulation member through every path and compares every
// accumulator element with the definition, bit for bit; masked-out
// elements keep their exact bits.
template <class T, bool kTwo, bool kMask, class Fn>
void check_accumulate(Op op, Fn* const* tbl, float alpha = 0.375f) {
    sweep(sizeof(T), [&](const zt::Path& p, int w, int pad) {
        const int h = 3;
        Image<T> s1(w, h, 1, pad), s2(w, h, 1, pad + int(sizeof(T)));
        Image<uint8_t> m(w, h, 1, pad / 2);
        Image<float> acc(w, h, 1, pad * 4 % 64);
        fill_acc(acc);
        fill_mask(m);
        const Image<float> before = [&] {
            Image<float> c(w, h);
            for (int y = 0; y < h; ++y) std::memcpy(c.row(y), acc.row(y), w * 4);
            return c;
        }();
        ZebStatus st;
        if constexpr (kTwo && kMask)
            st = tbl[p.variant](s1.ptr(), s1.step(), s2.ptr(), s2.step(), m.ptr(), m.step(), acc.ptr(), acc.step(),
                                acc.size());
        else if constexpr (kTwo)
            st = tbl[p.variant](s1.ptr(), s1.step(), s2.ptr(), s2.step(), acc.ptr(), acc.step(), acc.size());
        else if constexpr (kMask) {
            if constexpr (std::is_invocable_v<Fn*, const T*, int, const uint8_t*, int, float*, int, ZebiSize, float>)
                st = tbl[p.variant](s1.ptr(), s1.step(), m.ptr(), m.step(), acc.ptr(), acc.step(), acc.size(), alpha);
            else
                st = tbl[p.variant](s1.ptr(), s1.step(), m.ptr(), m.step(), acc.ptr(), acc.step(), acc.size());
        } else {
            if constexpr (std::is_invocable_v<Fn*, const T*, int, float*, int, ZebiSize, float>)
                st = tbl[p.variant](s1.ptr(), s1.step(), acc.ptr(), acc.step(), acc.size(), alpha);
            else
                st = tbl[p.variant](s1.ptr(), s1.step(), acc.ptr(), acc.step(), acc.size());
        }
        ASSERT_EQ(st, 0);
        for (int y = 0; y < h; ++y)
            for (int x = 0; x < w; ++x) {
                const float a0 = before.at(x, y);
                float want = a0;
                if (!kMask || m.at(x, y) != 0)
                    want = definition(op, a0, float(s1.at(x, y)), kTwo ? float(s2.at(x, y)) : 0.f, alpha);
                ASSERT_TRUE(zt::same_bits(want, acc.at(x, y)))
                    << p.name() << " w=" << w << " pad=" << pad << " x=" << x << " y=" << y << " want " << want
                    << " got " << acc.at(x, y);
            }
    });
}

TEST(Accumulate, AddMatchesDefinition) {
    check_accumulate<uint8_t, false, false>(Op::Add, zeb_tbl_zebiAdd_8u32f_C1IR);
    check_accumulate<int8_t, false, false>(Op::Add, zeb_tbl_zebiAdd_8s32f_C1IR);
    check_accumulate<uint16_t, false, false>(Op::Add, zeb_tbl_zebiAdd_16u32f_C1IR);
    check_accumulate<uint8_t, false, true>(Op::Add, zeb_tbl_zebiAdd_8u32f_C1IMR);
    check_accumulate<int8_t, false, true>(Op::Add, zeb_tbl_zebiAdd_8s32f_C1IMR);
    check_accumulate<uint16_t, false, true>(Op::Add, zeb_tbl_zebiAdd_16u32f_C1IMR);
    check_accumulate<float, false, true>(Op::Add, zeb_tbl_zebiAdd_32f_C1IMR);
}

TEST(Accumulate, SquareMatchesDefinition) {
    check_accumulate<uint8_t, false, false>(Op::Square, zeb_tbl_zebiAddSquare_8u32f_C1IR);
    check_accumulate<int8_t, false, false>(Op::Square, zeb_tbl_zebiAddSquare_8s32f_C1IR);
    check_accumulate<uint16_t, false, false>(Op::Square, zeb_tbl_zebiAddSquare_16u32f_C1IR);
    check_accumulate<float, false, false>(Op::Square, zeb_tbl_zebiAddSquare_32f_C1IR);
    check_accumulate<uint8_t, false, true>(Op::Square, zeb_tbl_zebiAddSquare_8u32f_C1IMR);
    check_accumulate<int8_t, false, true>(Op::Square, zeb_tbl_zebiAddSquare_8s32f_C1IMR);
    check_accumulate<uint16_t, false, true>(Op::Square, zeb_tbl_zebiAddSquare_16u32f_C1IMR);
    check_accumulate<float, false, true>(Op::Square, zeb_tbl_zebiAddSquare_32f_C1IMR);
}

TEST(Accumulate, ProductMatchesDefinition) {
    check_accumulate<uint8_t, true, false>(Op::Product, zeb_tbl_zebiAddProduct_8u32f_C1IR);
    check_accumulate<int8_t, true, false>(Op::Product, zeb_tbl_zebiAddProduct_8s32f_C1IR);
    check_accumulate<uint16_t, true, false>(Op::Product, zeb_tbl_zebiAddProduct_16u32f_C1IR);
    check_accumulate<float, true, false>(Op::Product, zeb_tbl_zebiAddProduct_32f_C1IR);
    check_accumulate<uint8_t, true, true>(Op::Product, zeb_tbl_zebiAddProduct_8u32f_C1IMR);
    check_accumulate<int8_t, true, true>(Op::Product, zeb_tbl_zebiAddProduct_8s32f_C1IMR);
    check_accumulate<uint16_t, true, true>(Op::Product, zeb_tbl_zebiAddProduct_16u32f_C1IMR);
    check_accumulate<float, true, true>(Op::Product, zeb_tbl_zebiAddProduct_32f_C1IMR);
}

TEST(Accumulate, WeightedMatchesDifferenceForm) {
    for (float alpha : {0.375f, 0.1f, 2.0f, -0.5f}) {
        check_accumulate<uint8_t, false, false>(Op::Weighted, zeb_tbl_zebiAddWeighted_8u32f_C1IR, alpha);
        check_accumulate<int8_t, false, false>(Op::Weighted, zeb_tbl_zebiAddWeighted_8s32f_C1IR, alpha);
        check_accumulate<uint16_t, false, false>(Op::Weighted, zeb_tbl_zebiAddWeighted_16u32f_C1IR, alpha);
        check_accumulate<float, false, false>(Op::Weighted, zeb_tbl_zebiAddWeighted_32f_C1IR, alpha);
        check_accumulate<uint8_t, false, true>(Op::Weighted, zeb_tbl_zebiAddWeighted_8u32f_C1IMR, alpha);
        check_accumulate<int8_t, false, true>(Op::Weighted, zeb_tbl_zebiAddWeighted_8s32f_C1IMR, alpha);
        check_accumulate<uint16_t, false, true>(Op::Weighted, zeb_tbl_zebiAddWeighted_16u32f_C1IMR, alpha);
        check_accumulate<float, false, true>(Op::Weighted, zeb_tbl_zebiAddWeighted_32f_C1IMR, alpha);
    }
}

TEST(Accumulate, WeightedTwoSourceForm) {
    sweep(4, [&](const zt::Path& p, int w, int pad) {
        Image<float> a(w, 2, 1, pad), b(w, 2, 1, 0), d(w, 2, 1, pad);
        ASSERT_EQ(zeb_tbl_zebiAddWeighted_32f_C1R[p.variant](a.ptr(), a.step(), b.ptr(), b.step(), d.ptr(), d.step(),
                                                            a.size(), 0.3f),
                  0);
        for (int y = 0; y < 2; ++y)
            for (int x = 0; x < w; ++x)
                ASSERT_TRUE(zt::same_bits(d.at(x, y), (a.at(x, y) - b.at(x, y)) * 0.3f + b.at(x, y))) << p.name();
    });
}

// Alpha 0 keeps the accumulator, alpha 1 gives the source exactly, and an
// all-zero mask leaves everything alone.
TEST(Accumulate, WeightedLimitsAndEmptyMask) {
    for (const zt::Path& p : zt::all_paths()) {
        zt::IsaScope isa(p.isa);
        Image<uint8_t> s(37, 5);
        Image<float> acc(37, 5, 1, 8);
        fill_acc(acc);
        const auto before = acc.bytes();
        ASSERT_EQ(zeb_tbl_zebiAddWeighted_8u32f_C1IR[p.variant](s.ptr(), s.step(), acc.ptr(), acc.step(), s.size(), 0.f), 0);
        EXPECT_EQ(acc.bytes(), before);
        Image<uint8_t> zero(37, 5);
        zero.fill(0);
        ASSERT_EQ(zeb_tbl_zebiAddSquare_8u32f_C1IMR[p.variant](s.ptr(), s.step(), zero.ptr(), zero.step(), acc.ptr(),
                                                              acc.step(), s.size()),
                  0);
        EXPECT_EQ(acc.bytes(), before);
        // With integral accumulator values s - A is exact, so alpha 1 gives
        // the source exactly.
        for (int y = 0; y < 5; ++y)
            for (int x = 0; x < 37; ++x) acc.at(x, y) = std::round(acc.at(x, y));
        ASSERT_EQ(zeb_tbl_zebiAddWeighted_8u32f_C1IR[p.variant](s.ptr(), s.step(), acc.ptr(), acc.step(), s.size(), 1.f), 0);
        for (int y = 0; y < 5; ++y)
            for (int x = 0; x < 37; ++x) ASSERT_EQ(acc.at(x, y), float(s.at(x, y)));
    }
}

// Special accumulator values (signed zeros, infinities, quiet NaNs, a
// subnormal) against zero and non-zero sources, masked in and out: every
// element must match the definition bit for bit, masked-out ones unchanged.
template <class T, bool kTwo, class Fn>
void check_masked_specials(Op op, Fn* const* tbl) {
    const float specials[] = {-0.0f, 0.0f, INFINITY, -INFINITY, std::numeric_limits<float>::quiet_NaN(), -1e-40f};
    for (const zt::Path& p : zt::all_paths()) {
        zt::IsaScope isa(p.isa);
        const int w = 67, h = 2;
        Image<T> s1(w, h), s2(w, h);
        Image<uint8_t> m(w, h);
        Image<float> acc(w, h);
        for (int y = 0; y < h; ++y)
            for (int x = 0; x < w; ++x) {
                acc.at(x, y) = specials[(x + y) % 6];
                m.at(x, y) = (x % 5 == 0) ? 0 : uint8_t(x);
                if (x % 3 == 0) s1.at(x, y) = T(0);
                if (x % 7 == 0) s2.at(x, y) = T(0);
            }
        const auto before = acc.pixels();
        ZebStatus st;
        if constexpr (kTwo)
            st = tbl[p.variant](s1.ptr(), s1.step(), s2.ptr(), s2.step(), m.ptr(), m.step(), acc.ptr(), acc.step(),
                                acc.size());
        else if constexpr (std::is_invocable_v<Fn*, const T*, int, const uint8_t*, int, float*, int, ZebiSize, float>)
            st = tbl[p.variant](s1.ptr(), s1.step(), m.ptr(), m.step(), acc.ptr(), acc.step(), acc.size(), 0.5f);
        else
            st = tbl[p.variant](s1.ptr(), s1.step(), m.ptr(), m.step(), acc.ptr(), acc.step(), acc.size());
        ASSERT_EQ(st, 0);
        for (int y = 0; y < h; ++y)
            for (int x = 0; x < w; ++x) {
                const float a0 = before[std::size_t(y) * w + x];
                const float want = m.at(x, y) == 0 ? a0
                                                   : definition(op, a0, float(s1.at(x, y)),
                                                                kTwo ? float(s2.at(x, y)) : 0.f, 0.5f);
                ASSERT_TRUE(zt::same_bits(want, acc.at(x, y)))
                    << p.name() << " x=" << x << " y=" << y << " want " << want << " got " << acc.at(x, y) << " op "
                    << int(op) << " elem " << sizeof(T);
            }
    }
}

TEST(Accumulate, SpecialAccumulatorValues) {
    check_masked_specials<uint8_t, false>(Op::Add, zeb_tbl_zebiAdd_8u32f_C1IMR);
    check_masked_specials<int8_t, false>(Op::Add, zeb_tbl_zebiAdd_8s32f_C1IMR);
    check_masked_specials<uint16_t, false>(Op::Add, zeb_tbl_zebiAdd_16u32f_C1IMR);
    check_masked_specials<float, false>(Op::Add, zeb_tbl_zebiAdd_32f_C1IMR);
    check_masked_specials<uint8_t, false>(Op::Square, zeb_tbl_zebiAddSquare_8u32f_C1IMR);
    check_masked_specials<int8_t, false>(Op::Square, zeb_tbl_zebiAddSquare_8s32f_C1IMR);
    check_masked_specials<uint16_t, false>(Op::Square, zeb_tbl_zebiAddSquare_16u32f_C1IMR);
    check_masked_specials<uint8_t, true>(Op::Product, zeb_tbl_zebiAddProduct_8u32f_C1IMR);
    check_masked_specials<int8_t, true>(Op::Product, zeb_tbl_zebiAddProduct_8s32f_C1IMR);
    check_masked_specials<uint16_t, true>(Op::Product, zeb_tbl_zebiAddProduct_16u32f_C1IMR);
    check_masked_specials<float, true>(Op::Product, zeb_tbl_zebiAddProduct_32f_C1IMR);
    check_masked_specials<uint8_t, false>(Op::Weighted, zeb_tbl_zebiAddWeighted_8u32f_C1IMR);
    check_masked_specials<float, false>(Op::Weighted, zeb_tbl_zebiAddWeighted_32f_C1IMR);
}

// Streaming and cached kernels give the same bits: a failing cache query
// makes every member with a working-set figure stream.
TEST(Accumulate, StreamingStoresChangeNothing) {
    Image<uint16_t> s1(1000, 40), s2(1000, 40);
    Image<uint8_t> m(1000, 40);
    fill_mask(m);
    Image<float> a(1000, 40), b(1000, 40);
    fill_acc(a);
    for (int y = 0; y < 40; ++y) std::memcpy(b.row(y), a.row(y), 4000);
    ASSERT_EQ(zebiAddProduct_16u32f_C1IMR(s1.ptr(), s1.step(), s2.ptr(), s2.step(), m.ptr(), m.step(), a.ptr(),
                                          a.step(), a.size()),
              0);
    zebTestFailCacheQuery(1);
    ASSERT_EQ(zebiAddProduct_16u32f_C1IMR(s1.ptr(), s1.step(), s2.ptr(), s2.step(), m.ptr(), m.step(), b.ptr(),
                                          b.step(), b.size()),
              0);
    Image<uint16_t> d1(1000, 40), d2(1000, 40);
    ASSERT_EQ(zebiAbsDiff_16u_C1R(s1.ptr(), s1.step(), s2.ptr(), s2.step(), d1.ptr(), d1.step(), d1.size()), 0);
    zebTestFailCacheQuery(0);
    ASSERT_EQ(zebiAbsDiff_16u_C1R(s1.ptr(), s1.step(), s2.ptr(), s2.step(), d2.ptr(), d2.step(), d2.size()), 0);
    EXPECT_EQ(a.pixels(), b.pixels());
    EXPECT_EQ(d1.pixels(), d2.pixels());
}

// ---- OpenCV as the independent oracle ----

TEST(ArithOpenCV, AbsDiffAgreesExactly) {
    Image<uint8_t> a8(641, 97, 3, 3), b8(641, 97, 3, 0), d8(641, 97, 3, 5);
    ASSERT_EQ(zebiAbsDiff_8u_C3R(a8.ptr(), a8.step(), b8.ptr(), b8.step(), d8.ptr(), d8.step(), a8.size()), 0);
    cv::Mat ref8;
    cv::absdiff(a8.mat(), b8.mat(), ref8);
    EXPECT_EQ(cv::norm(ref8, d8.mat(), cv::NORM_INF), 0.0);

    Image<uint16_t> a16(641, 97), b16(641, 97), d16(641, 97);
    ASSERT_EQ(zebiAbsDiff_16u_C1R(a16.ptr(), a16.step(), b16.ptr(), b16.step(), d16.ptr(), d16.step(), a16.size()), 0);
    cv::Mat ref16;
    cv::absdiff(a16.mat(), b16.mat(), ref16);
    EXPECT_EQ(cv::norm(ref16, d16.mat(), cv::NORM_INF), 0.0);

    Image<float> af(641, 97), bf(641, 97), df(641, 97);
    ASSERT_EQ(zebiAbsDiff_32f_C1R(af.ptr(), af.step(), bf.ptr(), bf.step(), df.ptr(), df.step(), af.size()), 0);
    cv::Mat reff;
    cv::absdiff(af.mat(), bf.mat(), reff);
    EXPECT_EQ(cv::norm(reff, df.mat(), cv::NORM_INF), 0.0);

    ASSERT_EQ(zebiAbsDiffC_8u_C1R(a8.ptr(), a8.step(), d8.ptr(), d8.step(), {641 * 3, 97}, 100), 0);
    cv::Mat refc;
    cv::absdiff(a8.mat().reshape(1), cv::Scalar(100), refc);
    EXPECT_EQ(cv::norm(refc, d8.mat().reshape(1), cv::NORM_INF), 0.0);
}

// Sums, and squares and products of integers, agree bit for bit (OpenCV
// forms the same single roundings); float squares and products within one
// ulp, as OpenCV may fuse them; the weighted update differs because OpenCV computes
// A*(1-alpha) + s*alpha, so it agrees within a few units in the last place
// of the operands' magnitude.
TEST(ArithOpenCV, AccumulationsAgree) {
    // OpenCV's vector paths may fuse the float product into the sum; with
    // |s| <= 1000 the squares stay below 2^20, where one ulp is 0.125.
    const double kOneUlpOfSquares = 0.125;
    const int w = 1023, h = 61;
    Image<uint8_t> s8(w, h, 1, 1), t8(w, h), m(w, h);
    Image<uint16_t> s16(w, h);
    Image<float> sf(w, h), acc(w, h, 1, 4);
    fill_mask(m);
    auto check = [&](const char* what, auto&& ours, auto&& theirs, double tol) {
        fill_acc(acc);
        cv::Mat ref = acc.mat().clone();
        ASSERT_EQ(ours(), 0) << what;
        theirs(ref);
        EXPECT_LE(cv::norm(ref, acc.mat(), cv::NORM_INF), tol) << what;
    };
    check("accumulate 8u masked",
          [&] { return zebiAdd_8u32f_C1IMR(s8.ptr(), s8.step(), m.ptr(), m.step(), acc.ptr(), acc.step(), acc.size()); },
          [&](cv::Mat& r) { cv::accumulate(s8.mat(), r, m.mat()); }, 0.0);
    check("accumulate 16u",
          [&] { return zebiAdd_16u32f_C1IR(s16.ptr(), s16.step(), acc.ptr(), acc.step(), acc.size()); },
          [&](cv::Mat& r) { cv::accumulate(s16.mat(), r); }, 0.0);
    check("accumulate 32f masked",
          [&] { return zebiAdd_32f_C1IMR(sf.ptr(), sf.step(), m.ptr(), m.step(), acc.ptr(), acc.step(), acc.size()); },
          [&](cv::Mat& r) { cv::accumulate(sf.mat(), r, m.mat()); }, 0.0);
    check("square 8u masked",
          [&] {
              return zebiAddSquare_8u32f_C1IMR(s8.ptr(), s8.step(), m.ptr(), m.step(), acc.ptr(), acc.step(), acc.size());
          },
          [&](cv::Mat& r) { cv::accumulateSquare(s8.mat(), r, m.mat()); }, 0.0);
    check("square 32f",
          [&] { return zebiAddSquare_32f_C1IR(sf.ptr(), sf.step(), acc.ptr(), acc.step(), acc.size()); },
          [&](cv::Mat& r) { cv::accumulateSquare(sf.mat(), r); }, kOneUlpOfSquares);
    check("product 8u masked",
          [&] {
              return zebiAddProduct_8u32f_C1IMR(s8.ptr(), s8.step(), t8.ptr(), t8.step(), m.ptr(), m.step(), acc.ptr(),
                                                acc.step(), acc.size());
          },
          [&](cv::Mat& r) { cv::accumulateProduct(s8.mat(), t8.mat(), r, m.mat()); }, 0.0);
    check("product 32f masked",
          [&] {
              return zebiAddProduct_32f_C1IMR(sf.ptr(), sf.step(), sf.ptr(), sf.step(), m.ptr(), m.step(), acc.ptr(),
                                              acc.step(), acc.size());
          },
          [&](cv::Mat& r) { cv::accumulateProduct(sf.mat(), sf.mat(), r, m.mat()); }, kOneUlpOfSquares);
    // |A|, |s| <= 3000: a few ulps of 3000 (2.4e-4 each).
    check("weighted 8u masked",
          [&] {
              return zebiAddWeighted_8u32f_C1IMR(s8.ptr(), s8.step(), m.ptr(), m.step(), acc.ptr(), acc.step(),
                                                 acc.size(), 0.25f);
          },
          [&](cv::Mat& r) { cv::accumulateWeighted(s8.mat(), r, 0.25, m.mat()); }, 1e-3);
    check("weighted 32f",
          [&] { return zebiAddWeighted_32f_C1IR(sf.ptr(), sf.step(), acc.ptr(), acc.step(), acc.size(), 0.7f); },
          [&](cv::Mat& r) { cv::accumulateWeighted(sf.mat(), r, 0.7); }, 1e-3);
}

}  // namespace
