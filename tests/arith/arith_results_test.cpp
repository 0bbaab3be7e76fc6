// Results of the difference and accumulation exports: every member, both
// variants and every vector target against the per-pixel definitions, bit
// for bit, over widths that exercise heads, bodies and tails, padded and
// unpadded steps and guard pages, with special accumulator values (signed
// zeros, infinities, NaN, subnormals) and zero sources mixed in; OpenCV as
// the independent oracle on generated images and on photographs.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <opencv2/core.hpp>
#include <opencv2/imgcodecs.hpp>
#include <opencv2/imgproc.hpp>

#include "arith/arith_ref.h"
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

// Element x of the result, from the library's per-pixel definitions.
template <Kind K, class T>
auto definition(T s1, T s2, float a, float alpha, double c) {
    if constexpr (K <= Kind::AbsDiffC) {
        return zeb::ref::abs_diff(s1, K == Kind::AbsDiffC ? clamp_const<T>(c) : s2);
    } else {
        const float f1 = zeb::ref::to_f(s1), f2 = zeb::ref::to_f(s2);
        switch (K) {
            case Kind::Add: return zeb::ref::Add::apply(a, f1, f2, alpha);
            case Kind::Square: return zeb::ref::Square::apply(a, f1, f2, alpha);
            case Kind::Product: return zeb::ref::Product::apply(a, f1, f2, alpha);
            case Kind::Weighted: return zeb::ref::Weighted::apply(a, f1, f2, alpha);
            default: return zeb::ref::Weighted::apply(f2, f1, f2, alpha);  // the second source in A's place
        }
    }
}

template <class O>
bool same(O a, O b) {
    return std::memcmp(&a, &b, sizeof(O)) == 0;
}

ZT_TARGET_SUITE(ArithResults);
ZT_TARGET_SUITE(ArithOpenCV);

// One member through both variants over every width and pad, for each
// parameter value. Pad 0 leaves every image unpadded, so that the rows of
// the whole image form one run.
template <Kind K, class T, bool kTwo, bool kMask, class Fn>
void check_member(const char* name, Fn* const* tbl) {
    constexpr bool kAcc = K >= Kind::Add && K != Kind::Weighted2;
    using O = std::conditional_t<(K >= Kind::Add), float, T>;
    const int ch = K == Kind::AbsDiff3 ? 3 : 1, h = 3;
    std::vector<double> params = {0.375};
    if (K == Kind::Weighted || K == Kind::Weighted2) params = {0.375, 0.0, 2.0, -0.5};
    if (K == Kind::AbsDiffC) params = {77, -5, 300, 31000, 70000, -12.25};
    for (int v = 0; v < 2; ++v) {
        for (double param : params)
            for (int w : zt::test_widths())
                for (int pad : zt::test_pads(sizeof(T))) {
                    Image<T> s1(w, h, ch, pad), s2(w, h, ch, pad ? pad + int(sizeof(T)) : 0);
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
                    ASSERT_EQ(zt::call(tbl[v], a), 0) << name;
                    for (int y = 0; y < h; ++y)
                        for (int x = 0; x < w * ch; ++x) {
                            const O old = before[std::size_t(y) * w * ch + x];
                            const O want = kMask && m.at(x, y) == 0
                                               ? old
                                               : O(definition<K>(s1.row(y)[x], s2.row(y)[x], float(old), float(param), param));
                            ASSERT_TRUE(same(want, out.row(y)[x])) << name << " variant " << v << " w=" << w << " pad="
                                                                   << pad << " param=" << param << " x=" << x << " y=" << y;
                        }
                }
    }
}

TEST_P(ArithResults, EveryMemberMatchesItsDefinition) {
#define ZEB_CHECK(name, kind, T, two, mask, elems, order) \
    check_member<Kind::kind, T, bool(two), bool(mask)>(#name, zeb_tbl_##name);
    ZEB_ARITH_MEMBERS(ZEB_CHECK)
}

// An all-zero mask leaves every accumulator bit alone, special values
// included; alpha 0 leaves finite values alone (not -0, infinities or NaN,
// which the difference form turns into +0 and NaN); alpha 1 gives the
// source exactly and alpha 2 gives 2s - A (exact with integral values,
// since s - A is).
TEST_P(ArithResults, WeightedEdgesAndEmptyMask) {
    const int w = 77, h = 5;
    Image<uint8_t> s(w, h), zero(w, h);
    zero.fill(0);
    for (int v = 0; v < 2; ++v) {
        Image<float> acc(w, h, 1, 8);
        fill_acc(acc);
        const auto before = acc.bytes();
        ASSERT_EQ(zeb_tbl_zebiAddSquare_8u32f_C1IMR[v](s.ptr(), s.step(), zero.ptr(), zero.step(), acc.ptr(),
                                                       acc.step(), s.size()), 0);
        ASSERT_EQ(zeb_tbl_zebiAddWeighted_32f_C1IMR[v](acc.ptr(), acc.step(), zero.ptr(), zero.step(), acc.ptr(),
                                                       acc.step(), s.size(), 0.5f), 0);
        EXPECT_EQ(acc.bytes(), before) << "variant " << v;

        std::uniform_real_distribution<float> d(-3000.f, 3000.f);
        for (int y = 0; y < h; ++y)
            for (int x = 0; x < w; ++x) acc.at(x, y) = x % 5 == 0 ? 0.f : d(zt::rng()) * (x % 3 == 0 ? 1e-30f : 1.f);
        const auto finite = acc.bytes();
        ASSERT_EQ(zeb_tbl_zebiAddWeighted_8u32f_C1IR[v](s.ptr(), s.step(), acc.ptr(), acc.step(), s.size(), 0.f), 0);
        EXPECT_EQ(acc.bytes(), finite) << "variant " << v;

        auto integral = [&] {
            for (int y = 0; y < h; ++y)
                for (int x = 0; x < w; ++x) acc.at(x, y) = float(x * 37 - y * 1000);
        };
        integral();
        ASSERT_EQ(zeb_tbl_zebiAddWeighted_8u32f_C1IR[v](s.ptr(), s.step(), acc.ptr(), acc.step(), s.size(), 1.f), 0);
        for (int y = 0; y < h; ++y)
            for (int x = 0; x < w; ++x) ASSERT_EQ(acc.at(x, y), float(s.at(x, y))) << x << "," << y;
        integral();
        ASSERT_EQ(zeb_tbl_zebiAddWeighted_8u32f_C1IR[v](s.ptr(), s.step(), acc.ptr(), acc.step(), s.size(), 2.f), 0);
        for (int y = 0; y < h; ++y)
            for (int x = 0; x < w; ++x)
                ASSERT_EQ(acc.at(x, y), 2.f * s.at(x, y) - float(x * 37 - y * 1000)) << x << "," << y;
    }
}

// Streaming and cached kernels give the same bits: a failing cache query
// makes every member with a working-set figure stream.
TEST_P(ArithResults, StreamingStoresChangeNothing) {
    const int w = 1000, h = 40;
    Image<uint16_t> s1(w, h), s2(w, h);
    Image<uint8_t> m(w, h), s8(w, h);
    fill_mask(m);
    Image<float> a(w, h), b(w, h), fa(w, h), fb(w, h);
    fill_acc(a);
    for (int y = 0; y < h; ++y) std::memcpy(b.row(y), a.row(y), std::size_t(w) * 4);
    for (int v = 0; v < 2; ++v) {
        Image<uint16_t> d1(w, h), d2(w, h);
        for (int fail : {0, 1}) {
            zebTestFailCacheQuery(fail);
            Image<float>& acc = fail ? b : a;
            Image<uint16_t>& d = fail ? d2 : d1;
            ASSERT_EQ(zeb_tbl_zebiAddProduct_16u32f_C1IMR[v](s1.ptr(), s1.step(), s2.ptr(), s2.step(), m.ptr(),
                                                             m.step(), acc.ptr(), acc.step(), acc.size()), 0);
            ASSERT_EQ(zeb_tbl_zebiAddWeighted_8u32f_C1IMR[v](s8.ptr(), s8.step(), m.ptr(), m.step(), acc.ptr(),
                                                             acc.step(), acc.size(), 0.25f), 0);
            ASSERT_EQ(zeb_tbl_zebiAbsDiff_16u_C1R[v](s1.ptr(), s1.step(), s2.ptr(), s2.step(), d.ptr(), d.step(),
                                                     d.size()), 0);
        }
        zebTestFailCacheQuery(0);
        EXPECT_EQ(a.bytes(), b.bytes()) << "variant " << v;
        EXPECT_EQ(d1.pixels(), d2.pixels()) << "variant " << v;
    }
}

// ---- OpenCV as the independent oracle ----

// A copy of m in a guarded image, its rows padded by pad bytes.
template <class T>
Image<T> guarded_copy(const cv::Mat& m, int pad = 0) {
    Image<T> im(m.cols, m.rows, m.channels(), pad);
    for (int y = 0; y < m.rows; ++y) std::memcpy(im.row(y), m.ptr(y), m.cols * m.elemSize());
    return im;
}

cv::Mat photo(const char* file, int mode) {
    cv::Mat m = cv::imread(std::string("/usr/share/doc/opencv-doc/examples/data/") + file, mode);
    EXPECT_FALSE(m.empty()) << file;
    return m;
}

// The sources of one comparison: a 1-channel first source, a second
// source, a mask and the accumulator's starting values.
struct Scene {
    Image<uint8_t> s8, t8, m;
    Image<uint16_t> s16;
    Image<float> sf, acc0;
};

// Sums, and squares and products of 8-bit values, agree bit for bit
// (OpenCV forms the same single roundings); float squares and products
// within one ulp, as OpenCV may fuse them into the sum; the weighted update
// within a few ulps, as OpenCV computes A*(1-alpha) + s*alpha.
void accumulations_agree(const Scene& sc, int v, const std::string& where) {
    const ZebiSize roi = sc.s8.size();
    Image<float> acc(roi.width, roi.height, 1, 4);
    auto check = [&](const char* what, auto&& ours, auto&& theirs, double tol) {
        for (int y = 0; y < roi.height; ++y) std::memcpy(acc.row(y), sc.acc0.row(y), std::size_t(roi.width) * 4);
        cv::Mat ref = acc.mat().clone();
        ASSERT_EQ(ours(), 0) << what;
        theirs(ref);
        EXPECT_LE(cv::norm(ref, acc.mat(), cv::NORM_INF), tol) << what << " variant " << v << " " << where;
    };
    const double kOneUlpOfSquares = 0.125;  // |s| <= 1000: squares below 2^20
    const double kWeighted = 1e-3;          // |A|, |s| <= 3000: a few ulps
    const Image<uint8_t>&s8 = sc.s8, &t8 = sc.t8, &m = sc.m;
    const Image<float>& sf = sc.sf;
    const int ss8 = s8.step(), ms = m.step(), as = acc.step(), sfs = sf.step();
    check("accumulate 8u", [&] { return zeb_tbl_zebiAdd_8u32f_C1IR[v](s8.ptr(), ss8, acc.ptr(), as, roi); },
          [&](cv::Mat& r) { cv::accumulate(s8.mat(), r); }, 0.0);
    check("accumulate 8u masked",
          [&] { return zeb_tbl_zebiAdd_8u32f_C1IMR[v](s8.ptr(), ss8, m.ptr(), ms, acc.ptr(), as, roi); },
          [&](cv::Mat& r) { cv::accumulate(s8.mat(), r, m.mat()); }, 0.0);
    check("accumulate 16u",
          [&] { return zeb_tbl_zebiAdd_16u32f_C1IR[v](sc.s16.ptr(), sc.s16.step(), acc.ptr(), as, roi); },
          [&](cv::Mat& r) { cv::accumulate(sc.s16.mat(), r); }, 0.0);
    check("accumulate 32f masked",
          [&] { return zeb_tbl_zebiAdd_32f_C1IMR[v](sf.ptr(), sfs, m.ptr(), ms, acc.ptr(), as, roi); },
          [&](cv::Mat& r) { cv::accumulate(sf.mat(), r, m.mat()); }, 0.0);
    check("square 8u", [&] { return zeb_tbl_zebiAddSquare_8u32f_C1IR[v](s8.ptr(), ss8, acc.ptr(), as, roi); },
          [&](cv::Mat& r) { cv::accumulateSquare(s8.mat(), r); }, 0.0);
    check("square 8u masked",
          [&] { return zeb_tbl_zebiAddSquare_8u32f_C1IMR[v](s8.ptr(), ss8, m.ptr(), ms, acc.ptr(), as, roi); },
          [&](cv::Mat& r) { cv::accumulateSquare(s8.mat(), r, m.mat()); }, 0.0);
    check("square 32f", [&] { return zeb_tbl_zebiAddSquare_32f_C1IR[v](sf.ptr(), sfs, acc.ptr(), as, roi); },
          [&](cv::Mat& r) { cv::accumulateSquare(sf.mat(), r); }, kOneUlpOfSquares);
    check("product 8u",
          [&] { return zeb_tbl_zebiAddProduct_8u32f_C1IR[v](s8.ptr(), ss8, t8.ptr(), t8.step(), acc.ptr(), as, roi); },
          [&](cv::Mat& r) { cv::accumulateProduct(s8.mat(), t8.mat(), r); }, 0.0);
    check("product 8u masked",
          [&] {
              return zeb_tbl_zebiAddProduct_8u32f_C1IMR[v](s8.ptr(), ss8, t8.ptr(), t8.step(), m.ptr(), ms, acc.ptr(),
                                                           as, roi);
          },
          [&](cv::Mat& r) { cv::accumulateProduct(s8.mat(), t8.mat(), r, m.mat()); }, 0.0);
    check("product 32f masked",
          [&] {
              return zeb_tbl_zebiAddProduct_32f_C1IMR[v](sf.ptr(), sfs, sf.ptr(), sfs, m.ptr(), ms, acc.ptr(), as, roi);
          },
          [&](cv::Mat& r) { cv::accumulateProduct(sf.mat(), sf.mat(), r, m.mat()); }, kOneUlpOfSquares);
    check("weighted 8u", [&] { return zeb_tbl_zebiAddWeighted_8u32f_C1IR[v](s8.ptr(), ss8, acc.ptr(), as, roi, 0.05f); },
          [&](cv::Mat& r) { cv::accumulateWeighted(s8.mat(), r, 0.05); }, kWeighted);
    check("weighted 8u masked",
          [&] { return zeb_tbl_zebiAddWeighted_8u32f_C1IMR[v](s8.ptr(), ss8, m.ptr(), ms, acc.ptr(), as, roi, 0.25f); },
          [&](cv::Mat& r) { cv::accumulateWeighted(s8.mat(), r, 0.25, m.mat()); }, kWeighted);
    check("weighted 32f", [&] { return zeb_tbl_zebiAddWeighted_32f_C1IR[v](sf.ptr(), sfs, acc.ptr(), as, roi, 0.7f); },
          [&](cv::Mat& r) { cv::accumulateWeighted(sf.mat(), r, 0.7); }, kWeighted);
}

TEST_P(ArithOpenCV, AccumulationsAgreeOnNoise) {
    const int w = 1023, h = 61;
    Scene sc{Image<uint8_t>(w, h, 1, 1), Image<uint8_t>(w, h), Image<uint8_t>(w, h), Image<uint16_t>(w, h),
             Image<float>(w, h), Image<float>(w, h)};
    fill_mask(sc.m);
    std::uniform_real_distribution<float> d(-3000.f, 3000.f);
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) sc.acc0.at(x, y) = d(zt::rng());
    for (int v = 0; v < 2; ++v) accumulations_agree(sc, v, "noise");
}

// Photographs: grey levels as sources (the 16-bit source scaled to the full
// range), the mask from thresholding a third photograph, an accumulator
// holding a scaled fourth; unpadded images, and the same cut out of the
// photographs at an odd offset with padded steps.
TEST_P(ArithOpenCV, AccumulationsAgreeOnPhotographs) {
    const cv::Mat a = photo("baboon.jpg", cv::IMREAD_GRAYSCALE), b = photo("fruits.jpg", cv::IMREAD_GRAYSCALE),
                  c = photo("building.jpg", cv::IMREAD_GRAYSCALE);
    ASSERT_FALSE(a.empty() || b.empty() || c.empty());
    const cv::Size size(std::min({a.cols, b.cols, c.cols}), std::min({a.rows, b.rows, c.rows}));
    for (const cv::Rect r : {cv::Rect(cv::Point(0, 0), size), cv::Rect(3, 5, size.width - 10, size.height - 7)}) {
        const int pad = r.x ? 4 : 0;
        cv::Mat a16, af, mask, acc;
        a(r).convertTo(a16, CV_16U, 257.0);
        a(r).convertTo(af, CV_32F, 1.0 / 7.0);
        cv::compare(c(r), 128, mask, cv::CMP_GT);
        b(r).convertTo(acc, CV_32F, 11.75, -1000.0);
        const Scene sc{guarded_copy<uint8_t>(a(r), pad), guarded_copy<uint8_t>(b(r), pad), guarded_copy<uint8_t>(mask),
                       guarded_copy<uint16_t>(a16, 2 * pad), guarded_copy<float>(af, pad), guarded_copy<float>(acc)};
        for (int v = 0; v < 2; ++v) accumulations_agree(sc, v, r.x ? "photo cut" : "photo");
    }
}

// The two-image difference of x and y through both variants, the first
// source and the destination padded by pad bytes.
template <class T, class Fn>
void absdiff_agrees(const cv::Mat& x, const cv::Mat& y, Fn* const* tbl, int pad, const char* what) {
    cv::Mat ref;
    cv::absdiff(x, y, ref);
    for (int v = 0; v < 2; ++v) {
        Image<T> a = guarded_copy<T>(x, pad), b = guarded_copy<T>(y), d(x.cols, x.rows, x.channels(), pad);
        ASSERT_EQ(tbl[v](a.ptr(), a.step(), b.ptr(), b.step(), d.ptr(), d.step(), a.size()), 0);
        EXPECT_EQ(cv::norm(ref, d.mat(), cv::NORM_INF), 0.0) << what << " variant " << v;
    }
}

TEST_P(ArithOpenCV, AbsDiffAgreesExactly) {
    const Image<uint16_t> n1(641, 97), n2(641, 97);
    const Image<float> f1(641, 97), f2(641, 97);
    absdiff_agrees<Zeb16u>(n1.mat(), n2.mat(), zeb_tbl_zebiAbsDiff_16u_C1R, 6, "noise 16u");
    absdiff_agrees<Zeb32f>(f1.mat(), f2.mat(), zeb_tbl_zebiAbsDiff_32f_C1R, 4, "noise 32f");

    const cv::Mat a = photo("baboon.jpg", cv::IMREAD_COLOR), b = photo("fruits.jpg", cv::IMREAD_COLOR);
    ASSERT_FALSE(a.empty() || b.empty());
    const cv::Rect r(7, 3, std::min(a.cols, b.cols) - 9, std::min(a.rows, b.rows) - 4);
    absdiff_agrees<Zeb8u>(a(r), b(r), zeb_tbl_zebiAbsDiff_8u_C3R, 5, "photos, colour");
    cv::Mat ga, gb;
    cv::cvtColor(a(r), ga, cv::COLOR_BGR2GRAY);
    cv::cvtColor(b(r), gb, cv::COLOR_BGR2GRAY);
    absdiff_agrees<Zeb8u>(ga, gb, zeb_tbl_zebiAbsDiff_8u_C1R, 0, "photos, grey");
    for (int v = 0; v < 2; ++v) {
        const Image<uint8_t> g = guarded_copy<uint8_t>(ga, 3);
        Image<uint8_t> d(g.width(), g.height());
        ASSERT_EQ(zeb_tbl_zebiAbsDiffC_8u_C1R[v](g.ptr(), g.step(), d.ptr(), d.step(), g.size(), 100), 0);
        cv::Mat ref;
        cv::absdiff(ga, cv::Scalar(100), ref);
        EXPECT_EQ(cv::norm(ref, d.mat(), cv::NORM_INF), 0.0) << "constant, variant " << v;
    }
}

}  // namespace
