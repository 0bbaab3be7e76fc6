// Results of the difference and accumulation exports: every member, every
// variant and instruction-set path against the per-pixel definitions, bit
// for bit, over widths that exercise heads, bodies and tails, padded steps
// and guard pages, with special accumulator values (signed zeros,
// infinities, NaN, subnormals) and zero sources mixed in; OpenCV as the
// independent oracle on larger images.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

#include "arith_members.h"
#include "call.h"
#include "core/zebcore_test_hooks.h"

namespace {

using zt::Image;

enum class Kind { AbsDiff, AbsDiff3, AbsDiffC, Add, Square, Product, Weighted, Weighted2 };

// Accumulator contents with small and large magnitudes, so that the
// rounding of every operation shows, and every seventh element special.
void fill_acc(Image<float>& a) {
    const float specials[] = {-0.0f, 0.0f, INFINITY, -INFINITY, std::numeric_limits<float>::quiet_NaN(), -1e-40f};
    std::uniform_real_distribution<float> d(-3000.f, 3000.f);
    for (int y = 0; y < a.height(); ++y)
        for (int x = 0; x < a.width(); ++x)
            a.at(x, y) = x % 7 == 3 ? specials[(x / 7 + y) % 6] : d(zt::rng()) * (x % 3 == 0 ? 1e-3f : 1.f);
}

// Runs of zeros and non-zeros of every length.
void fill_mask(Image<uint8_t>& m) {
    for (int y = 0; y < m.height(); ++y)
        for (int x = 0; x < m.width(); ++x) m.at(x, y) = (zt::rng()() % 3 == 0) ? 0 : uint8_t(1 + zt::rng()() % 255);
}

template <class T>
T clamp_const(double v) {
    if constexpr (std::is_floating_point_v<T>)
        return T(v);
    else
        return T(std::clamp(v, 0.0, double(std::numeric_limits<T>::max())));
}

// Element x of the result, as the definitions state it.
template <Kind K, class T>
auto definition(T s1, T s2, float a, float alpha, double c) {
    if constexpr (K <= Kind::AbsDiffC) {
        const T b = K == Kind::AbsDiffC ? clamp_const<T>(c) : s2;
        if constexpr (std::is_floating_point_v<T>)
            return std::fabs(s1 - b);
        else
            return T(s1 > b ? s1 - b : b - s1);
    } else {
        const float f1 = float(s1), f2 = float(s2);
        switch (K) {
            case Kind::Add: return a + f1;
            case Kind::Square: return a + f1 * f1;
            case Kind::Product: return a + f1 * f2;
            case Kind::Weighted: return (f1 - a) * alpha + a;
            default: return (f1 - f2) * alpha + f2;  // Weighted2: the second source in A's place
        }
    }
}

template <class O>
bool same(O a, O b) {
    return std::memcmp(&a, &b, sizeof(O)) == 0;
}

// One member over every path, width and pad, for each parameter value.
template <Kind K, class T, bool kTwo, bool kMask, class Fn>
void check_member(const char* name, Fn* const* tbl) {
    constexpr bool kAcc = K >= Kind::Add && K != Kind::Weighted2;
    using O = std::conditional_t<(K >= Kind::Add), float, T>;
    const int ch = K == Kind::AbsDiff3 ? 3 : 1, h = 3;
    std::vector<double> params = {0.375};
    if (K == Kind::Weighted || K == Kind::Weighted2) params = {0.375, 0.0, 2.0, -0.5};
    if (K == Kind::AbsDiffC) params = {77, -5, 300, 31000, 70000, -12.25};
    for (const zt::Path& p : zt::all_paths()) {
        zt::TargetScope target(p.target);
        for (double param : params)
            for (int w : zt::test_widths())
                for (int pad : zt::test_pads(sizeof(T))) {
                    Image<T> s1(w, h, ch, pad), s2(w, h, ch, pad + int(sizeof(T)));
                    Image<uint8_t> m(w, h, 1, pad / 2);
                    Image<O> out(w, h, ch, int(sizeof(O)) * (pad % 3));
                    for (int y = 0; y < h; ++y)
                        for (int x = 0; x < w * ch; x += 3) s1.row(y)[x] = T(0);
                    if constexpr (kAcc) fill_acc(out);
                    fill_mask(m);
                    const auto before = out.pixels();
                    zt::CallArgs a;
                    a.ptrs = {s1.ptr()};
                    a.steps = {s1.step()};
                    if (kTwo) a.ptrs.push_back(s2.ptr()), a.steps.push_back(s2.step());
                    if (kMask) a.ptrs.push_back(m.ptr()), a.steps.push_back(m.step());
                    a.ptrs.push_back(out.ptr());
                    a.steps.push_back(out.step());
                    a.roi = {w, h};
                    a.param = param;
                    ASSERT_EQ(zt::call(tbl[p.variant], a), 0) << name;
                    for (int y = 0; y < h; ++y)
                        for (int x = 0; x < w * ch; ++x) {
                            const O old = before[std::size_t(y) * w * ch + x];
                            const O want = kMask && m.at(x, y) == 0
                                               ? old
                                               : O(definition<K>(s1.row(y)[x], s2.row(y)[x], float(old), float(param), param));
                            ASSERT_TRUE(same(want, out.row(y)[x])) << name << " " << p.name() << " w=" << w << " pad="
                                                                   << pad << " param=" << param << " x=" << x << " y=" << y;
                        }
                }
    }
}

TEST(Arith, EveryMemberOnEveryPathMatchesItsDefinition) {
#define ZEB_CHECK(name, kind, T, two, mask, elems, order) \
    check_member<Kind::kind, T, bool(two), bool(mask)>(#name, zeb_tbl_##name);
    ZEB_ARITH_MEMBERS(ZEB_CHECK)
}

// With integral accumulator values s - A is exact, so alpha 1 gives the
// source exactly; an all-zero mask leaves every bit alone.
TEST(Arith, WeightedOneAndEmptyMask) {
    Image<uint8_t> s(37, 5), zero(37, 5);
    zero.fill(0);
    Image<float> acc(37, 5, 1, 8);
    fill_acc(acc);
    const auto before = acc.bytes();
    ASSERT_EQ(zebiAddSquare_8u32f_C1IMR(s.ptr(), s.step(), zero.ptr(), zero.step(), acc.ptr(), acc.step(), s.size()), 0);
    EXPECT_EQ(acc.bytes(), before);
    for (int y = 0; y < 5; ++y)
        for (int x = 0; x < 37; ++x) acc.at(x, y) = float(int(x * 37 - y * 1000));
    ASSERT_EQ(zebiAddWeighted_8u32f_C1IR(s.ptr(), s.step(), acc.ptr(), acc.step(), s.size(), 1.f), 0);
    for (int y = 0; y < 5; ++y)
        for (int x = 0; x < 37; ++x) ASSERT_EQ(acc.at(x, y), float(s.at(x, y)));
}

// Streaming and cached kernels give the same bits: a failing cache query
// makes every member with a working-set figure stream.
TEST(Arith, StreamingStoresChangeNothing) {
    Image<uint16_t> s1(1000, 40), s2(1000, 40), d1(1000, 40), d2(1000, 40);
    Image<uint8_t> m(1000, 40);
    fill_mask(m);
    Image<float> a(1000, 40), b(1000, 40);
    fill_acc(a);
    for (int y = 0; y < 40; ++y) std::memcpy(b.row(y), a.row(y), 4000);
    for (int fail : {0, 1}) {
        zebTestFailCacheQuery(fail);
        Image<float>& acc = fail ? b : a;
        Image<uint16_t>& d = fail ? d2 : d1;
        ASSERT_EQ(zebiAddProduct_16u32f_C1IMR(s1.ptr(), s1.step(), s2.ptr(), s2.step(), m.ptr(), m.step(), acc.ptr(),
                                              acc.step(), acc.size()), 0);
        ASSERT_EQ(zebiAbsDiff_16u_C1R(s1.ptr(), s1.step(), s2.ptr(), s2.step(), d.ptr(), d.step(), d.size()), 0);
    }
    zebTestFailCacheQuery(0);
    EXPECT_EQ(a.bytes(), b.bytes());
    EXPECT_EQ(d1.pixels(), d2.pixels());
}

// ---- OpenCV as the independent oracle ----

TEST(ArithOpenCV, AbsDiffAgreesExactly) {
    auto check = [](auto sample, int ch, auto fn) {
        using T = decltype(sample);
        Image<T> a(641, 97, ch, 3 * int(sizeof(T))), b(641, 97, ch), d(641, 97, ch, int(sizeof(T)));
        ASSERT_EQ(fn(a.ptr(), a.step(), b.ptr(), b.step(), d.ptr(), d.step(), a.size()), 0);
        cv::Mat ref;
        cv::absdiff(a.mat(), b.mat(), ref);
        EXPECT_EQ(cv::norm(ref, d.mat(), cv::NORM_INF), 0.0);
    };
    check(Zeb8u{}, 3, zebiAbsDiff_8u_C3R);
    check(Zeb16u{}, 1, zebiAbsDiff_16u_C1R);
    check(Zeb32f{}, 1, zebiAbsDiff_32f_C1R);
    Image<uint8_t> a(641, 97), d(641, 97);
    ASSERT_EQ(zebiAbsDiffC_8u_C1R(a.ptr(), a.step(), d.ptr(), d.step(), a.size(), 100), 0);
    cv::Mat ref;
    cv::absdiff(a.mat(), cv::Scalar(100), ref);
    EXPECT_EQ(cv::norm(ref, d.mat(), cv::NORM_INF), 0.0);
}

// Sums, and squares and products of integers, agree bit for bit (OpenCV
// forms the same single roundings); float squares and products within one
// ulp, as OpenCV may fuse them into the sum; the weighted update within a
// few ulps, as OpenCV computes A*(1-alpha) + s*alpha.
TEST(ArithOpenCV, AccumulationsAgree) {
    const int w = 1023, h = 61;
    const double kOneUlpOfSquares = 0.125;  // |s| <= 1000: squares below 2^20
    const double kWeighted = 1e-3;          // |A|, |s| <= 3000: a few ulps
    Image<uint8_t> s8(w, h, 1, 1), t8(w, h), m(w, h);
    Image<uint16_t> s16(w, h);
    Image<float> sf(w, h), acc(w, h, 1, 4);
    fill_mask(m);
    std::uniform_real_distribution<float> d(-3000.f, 3000.f);
    auto check = [&](const char* what, auto&& ours, auto&& theirs, double tol) {
        for (int y = 0; y < h; ++y)
            for (int x = 0; x < w; ++x) acc.at(x, y) = d(zt::rng());
        cv::Mat ref = acc.mat().clone();
        ASSERT_EQ(ours(), 0) << what;
        theirs(ref);
        EXPECT_LE(cv::norm(ref, acc.mat(), cv::NORM_INF), tol) << what;
    };
    const int ss8 = s8.step(), ms = m.step(), as = acc.step(), sfs = sf.step();
    check("accumulate 8u masked", [&] { return zebiAdd_8u32f_C1IMR(s8.ptr(), ss8, m.ptr(), ms, acc.ptr(), as, acc.size()); },
          [&](cv::Mat& r) { cv::accumulate(s8.mat(), r, m.mat()); }, 0.0);
    check("accumulate 16u", [&] { return zebiAdd_16u32f_C1IR(s16.ptr(), s16.step(), acc.ptr(), as, acc.size()); },
          [&](cv::Mat& r) { cv::accumulate(s16.mat(), r); }, 0.0);
    check("accumulate 32f masked", [&] { return zebiAdd_32f_C1IMR(sf.ptr(), sfs, m.ptr(), ms, acc.ptr(), as, acc.size()); },
          [&](cv::Mat& r) { cv::accumulate(sf.mat(), r, m.mat()); }, 0.0);
    check("square 8u masked",
          [&] { return zebiAddSquare_8u32f_C1IMR(s8.ptr(), ss8, m.ptr(), ms, acc.ptr(), as, acc.size()); },
          [&](cv::Mat& r) { cv::accumulateSquare(s8.mat(), r, m.mat()); }, 0.0);
    check("square 32f", [&] { return zebiAddSquare_32f_C1IR(sf.ptr(), sfs, acc.ptr(), as, acc.size()); },
          [&](cv::Mat& r) { cv::accumulateSquare(sf.mat(), r); }, kOneUlpOfSquares);
    check("product 8u masked",
          [&] {
              return zebiAddProduct_8u32f_C1IMR(s8.ptr(), ss8, t8.ptr(), t8.step(), m.ptr(), ms, acc.ptr(), as, acc.size());
          },
          [&](cv::Mat& r) { cv::accumulateProduct(s8.mat(), t8.mat(), r, m.mat()); }, 0.0);
    check("product 32f masked",
          [&] { return zebiAddProduct_32f_C1IMR(sf.ptr(), sfs, sf.ptr(), sfs, m.ptr(), ms, acc.ptr(), as, acc.size()); },
          [&](cv::Mat& r) { cv::accumulateProduct(sf.mat(), sf.mat(), r, m.mat()); }, kOneUlpOfSquares);
    check("weighted 8u masked",
          [&] { return zebiAddWeighted_8u32f_C1IMR(s8.ptr(), ss8, m.ptr(), ms, acc.ptr(), as, acc.size(), 0.25f); },
          [&](cv::Mat& r) { cv::accumulateWeighted(s8.mat(), r, 0.25, m.mat()); }, kWeighted);
    check("weighted 32f", [&] { return zebiAddWeighted_32f_C1IR(sf.ptr(), sfs, acc.ptr(), as, acc.size(), 0.7f); },
          [&](cv::Mat& r) { cv::accumulateWeighted(sf.mat(), r, 0.7); }, kWeighted);
}

}  // namespace
