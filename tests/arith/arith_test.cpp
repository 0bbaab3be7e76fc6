// SPDX-License-Identifier: Apache-2.0
// The difference and accumulation exports, driven by the member list: the
// argument checks in their order with canaries, results bit for bit
// against the per-pixel definitions (written out here, not taken from the
// library) on every vector target, both variants, cached and streaming
// stores, and OpenCV as the independent oracle on noise and photographs.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <opencv2/imgproc.hpp>

#include "arith_members.h"
#include "call.h"
#include "check_table.h"
#include "core/zebcore_test_hooks.h"

namespace {

using zt::Image;

enum class Kind { AbsDiff, AbsDiff3, AbsDiffC, Add, Square, Product, Weighted, Weighted2 };

ZT_TARGET_SUITE(ArithChecks);
ZT_TARGET_SUITE(ArithResults);
ZT_TARGET_SUITE(ArithOpenCV);

// ---- Argument checks ----

constexpr int kW = 9, kH = 4;

struct Member {
    std::string name, elems, order;
    int channels;
    ZebStatus (*call[2])(const zt::CallArgs&);
    int elem(std::size_t i) const { return elems[i] - '0'; }
    int row(std::size_t i) const { return kW * channels * elem(i); }
};

// The status the member's documented order gives for these steps.
ZebStatus expected_for(const Member& m, const std::vector<int>& steps) {
    char kind = 0;
    for (char c : m.order) {
        if (c == '>' || c == 'e') kind = c;
        if (c < '0' || c > '9') continue;
        const std::size_t i = std::size_t(c - '0');
        if (kind == '>' && steps[i] < m.row(i)) return zebStsStepErr;
        if (kind == 'e' && steps[i] % m.elem(i) != 0) return zebStsNotEvenStepErr;
    }
    return zebStsNoErr;
}

// Null pointers (with a bad size and step, which they take precedence
// over), bad sizes (over a short step), every step one byte short and one
// long, and every pair of a short step with an uneven one: the pairs pin
// down the order of the groups.
zt::checks::Table<zt::CallArgs> check_table(const Member& m) {
    using Mut = std::function<void(zt::CallArgs&)>;
    zt::checks::Table<zt::CallArgs> t{m.name,
                                      [m](zt::checks::Arena& a) {
                                          zt::CallArgs x;
                                          for (std::size_t i = 0; i < m.elems.size(); ++i) {
                                              auto img = a.image<Zeb8u>("image " + std::to_string(i), m.row(i), kH,
                                                                        1, 8);
                                              x.ptrs.push_back(img.ptr), x.steps.push_back(img.step);
                                          }
                                          x.roi = {kW, kH};
                                          return x;
                                      },
                                      [m](int v, zt::CallArgs& x) { return m.call[v](x); },
                                      {}};
    auto add = [&](std::string what, Mut f, ZebStatus want = 1) {
        if (want == 1) {  // from the documented step order
            zt::CallArgs x;
            for (std::size_t i = 0; i < m.elems.size(); ++i) x.steps.push_back(m.row(i));
            f(x);
            want = expected_for(m, x.steps);
        }
        t.cases.push_back({std::move(what), std::move(f), want});
    };
    const std::size_t n = m.elems.size();
    for (std::size_t i = 0; i < n; ++i)
        add("null " + std::to_string(i), [i](zt::CallArgs& x) { x.ptrs[i] = nullptr, x.steps[i] = 0, x.roi.width = 0; },
            zebStsNullPtrErr);
    for (ZebiSize bad : {ZebiSize{0, kH}, ZebiSize{kW, 0}, ZebiSize{-1, -5}})
        add("bad size", [bad](zt::CallArgs& x) { x.roi = bad, x.steps[0] = 1; }, zebStsSizeErr);
    add("1x1", [](zt::CallArgs& x) { x.roi = {1, 1}; }, zebStsNoErr);
    for (std::size_t i = 0; i < n; ++i) {
        for (int d : {-1, 1})
            add("step " + std::to_string(i) + " off by " + std::to_string(d),
                [i, d](zt::CallArgs& x) { x.steps[i] += d; });
        for (std::size_t j = 0; j < n; ++j)
            if (i != j && m.elem(j) > 1)
                add("short " + std::to_string(i) + ", uneven " + std::to_string(j),
                    [i, j, e = m.elem(i)](zt::CallArgs& x) { x.steps[i] -= e, x.steps[j] += 1; });
    }
    return t;
}

TEST_P(ArithChecks, EveryMemberChecksInOrderAndWritesNothingOnFailure) {
#define ZEB_MEMBER(name, kind, T, two, mask, elems, order)                                           \
    zt::checks::run(check_table({#name, elems, order, Kind::kind == Kind::AbsDiff3 ? 3 : 1,          \
                                 {[](const zt::CallArgs& a) { return zt::call(zeb_tbl_##name[0], a); }, \
                                  [](const zt::CallArgs& a) { return zt::call(zeb_tbl_##name[1], a); }}}));
    ZEB_ARITH_MEMBERS(ZEB_MEMBER)
#undef ZEB_MEMBER
}

// ---- Results against the per-pixel definitions ----

template <class T>
T clamp_const(double v) {
    if constexpr (std::is_floating_point_v<T>)
        return T(v);
    else
        return T(std::clamp(std::trunc(v), 0.0, double(std::numeric_limits<T>::max())));
}

// Element x of the result; a is the accumulator, p the trailing parameter.
template <Kind K, class T>
auto definition(T s1, T s2, float a, double p) {
    if constexpr (K <= Kind::AbsDiffC) {
        const T b = K == Kind::AbsDiffC ? clamp_const<T>(p) : s2;
        if constexpr (std::is_floating_point_v<T>) {
            return std::fabs(s1 - b);  // the single-precision difference, sign cleared
        } else {
            return T(s1 > b ? s1 - b : b - s1);
        }
    } else {
        const float f1 = float(s1), f2 = float(s2), alpha = float(p);
        if constexpr (K == Kind::Add) return a + f1;
        if constexpr (K == Kind::Square) return a + f1 * f1;
        if constexpr (K == Kind::Product) return a + f1 * f2;
        if constexpr (K == Kind::Weighted) return (f1 - a) * alpha + a;
        if constexpr (K == Kind::Weighted2) return (f1 - f2) * alpha + f2;
    }
}

// Accumulator contents with small and large magnitudes, so that the
// rounding of every operation shows, and every seventh element special.
void fill_acc(Image<float>& a) {
    const float specials[] = {-0.0f, 0.0f, INFINITY, -INFINITY, std::numeric_limits<float>::quiet_NaN(), -1e-40f};
    std::uniform_real_distribution<float> d(-3000.f, 3000.f);
    for (int y = 0; y < a.height(); ++y)
        for (int x = 0; x < a.width(); ++x)
            a.at(x, y) = x % 7 == 3 ? specials[(x / 7 + y) % 6] : d(zt::rng()) * (x % 3 == 0 ? 1e-3f : 1.f);
}

// Calls a member on its sources, mask (where it has them) and output.
template <bool kTwo, bool kMask, class Fn, class A, class M, class O>
ZebStatus call(Fn* f, const A& s1, const A& s2, const M& m, const O& out, double param) {
    zt::CallArgs a{{s1.ptr()}, {s1.step()}, {s1.width(), s1.height()}, param};
    if (kTwo) a.ptrs.push_back(s2.ptr()), a.steps.push_back(s2.step());
    if (kMask) a.ptrs.push_back(m.ptr()), a.steps.push_back(m.step());
    a.ptrs.push_back(out.ptr()), a.steps.push_back(out.step());
    return zt::call(f, a);
}

// One member through both variants, with cached and (the cache query
// failing) streaming stores, over widths that give empty and full vector
// bodies, heads and tails on every target. Pad 0 leaves every image
// unpadded, so that the rows of the whole image form one run.
template <Kind K, class T, bool kTwo, bool kMask, class Fn>
void check_member(const char* name, Fn* const* tbl) {
    using O = std::conditional_t<(K >= Kind::Add), float, T>;
    const int ch = K == Kind::AbsDiff3 ? 3 : 1, h = 4;
    std::vector<double> params = {0.375};
    if (K == Kind::Weighted || K == Kind::Weighted2) params = {0.375, 0.0, 1.0, 2.0};
    if (K == Kind::AbsDiffC) params = {77, -5, 300, 31000, 70000, -12.25};
    for (int v = 0; v < 2; ++v)
        for (int stream = 0; stream < 2; ++stream) {
            zebTestFailCacheQuery(stream);
            for (double param : params)
                for (int w : {1, 7, 33, 259})
                    for (int pad : {0, 5 * int(sizeof(T))}) {
                        Image<T> s1(w, h, ch, pad), s2(w, h, ch, pad ? pad + int(sizeof(T)) : 0);
                        Image<uint8_t> m(w, h, 1, pad / 2);
                        Image<O> out(w, h, ch, int(sizeof(O)) * (pad % 3));
                        for (int y = 0; y < h; ++y)
                            for (int x = 0; x < w * ch; ++x) {
                                if (x % 3 == 0) s1.row(y)[x] = T(0);
                                if (x < w && (y == 1 || zt::rng()() % 3 == 0)) m.at(x, y) = 0;  // a row left out
                            }
                        if constexpr (std::is_same_v<O, float>) fill_acc(out);
                        const auto before = out.pixels();
                        ASSERT_EQ((call<kTwo, kMask>(tbl[v], s1, s2, m, out, param)), 0) << name;
                        for (int y = 0; y < h; ++y)
                            for (int x = 0; x < w * ch; ++x) {
                                const O old = before[std::size_t(y) * w * ch + x];
                                const O want = kMask && m.at(x, y) == 0
                                                   ? old
                                                   : O(definition<K>(s1.row(y)[x], s2.row(y)[x], float(old), param));
                                ASSERT_EQ(0, std::memcmp(&want, &out.row(y)[x], sizeof(O)))
                                    << name << " variant " << v << " streaming " << stream << " w=" << w
                                    << " pad=" << pad << " param=" << param << " x=" << x << " y=" << y;
                            }
                    }
        }
    zebTestFailCacheQuery(0);
}

TEST_P(ArithResults, EveryMemberMatchesItsDefinition) {
#define ZEB_MEMBER(name, kind, T, two, mask, ...) \
    check_member<Kind::kind, T, bool(two), bool(mask)>(#name, zeb_tbl_##name);
    ZEB_ARITH_MEMBERS(ZEB_MEMBER)
#undef ZEB_MEMBER
}

// ---- OpenCV as the independent oracle ----

// Two sources of each type, two colour images, a mask and the
// accumulator's starting values.
struct Scene {
    cv::Mat s8[2], s16[2], sf[2], c3[2], mask, acc;
};

// One member against OpenCV through variant v, the images padded by pad
// elements (the definition sweep shows that the variants agree). Integer
// differences, sums, and 8-bit squares and products agree bit for bit
// (the same single roundings); 16-bit and float squares and products
// within a few ulps, as OpenCV may widen or fuse them; the weighted
// updates too, as OpenCV computes A*(1-alpha) + s*alpha. OpenCV takes no
// signed 8-bit source, so those members have no oracle here.
template <Kind K, class T, bool kTwo, bool kMask, class Fn>
void agrees_with_opencv(const char* name, Fn* const* tbl, const Scene& sc, int v, int pad, const char* where) {
    if constexpr (!std::is_same_v<T, Zeb8s>) {
        const cv::Mat* src = K == Kind::AbsDiff3 ? sc.c3 : sizeof(T) == 1 ? sc.s8 : sizeof(T) == 2 ? sc.s16 : sc.sf;
        const cv::Mat mask = kMask ? sc.mask : cv::Mat();
        const double p = K == Kind::AbsDiffC ? (sizeof(T) == 1 ? 99 : sizeof(T) == 2 ? 40000 : -3.25) : 0.25;
        const bool exact = K <= Kind::Add || (sizeof(T) == 1 && K <= Kind::Product);
        cv::Mat ref = sc.acc.clone();
        if (K <= Kind::AbsDiff3) cv::absdiff(src[0], src[1], ref);
        if (K == Kind::AbsDiffC) cv::absdiff(src[0], cv::Scalar(p), ref);
        if (K == Kind::Add) cv::accumulate(src[0], ref, mask);
        if (K == Kind::Square) cv::accumulateSquare(src[0], ref, mask);
        if (K == Kind::Product) cv::accumulateProduct(src[0], src[1], ref, mask);
        if (K == Kind::Weighted) cv::accumulateWeighted(src[0], ref, p, mask);
        if (K == Kind::Weighted2) cv::addWeighted(src[0], p, src[1], 1 - p, 0, ref, CV_32F);
        const int e = int(sizeof(T));
        const auto a = zt::image_of<T>(src[0], pad * e), b = zt::image_of<T>(src[1]);
        const auto m = zt::image_of<Zeb8u>(sc.mask, pad);
        using O = std::conditional_t<(K >= Kind::Add), float, T>;
        auto out = [&] {
            if constexpr (K >= Kind::Add && K != Kind::Weighted2)
                return zt::image_of<float>(sc.acc, 4 * pad);
            else
                return Image<O>(a.width(), a.height(), a.channels(), pad * e);
        }();
        ASSERT_EQ((call<kTwo, kMask>(tbl[v], a, b, m, out, p)), 0) << name;
        const double tol = exact ? 0.0 : 1e-6 * cv::norm(ref, cv::NORM_INF);
        EXPECT_LE(cv::norm(ref, out.mat(), cv::NORM_INF), tol) << name << " variant " << v << " on " << where;
    }
}

void all_agree(const Scene& sc, int v, int pad, const char* where) {
#define ZEB_MEMBER(name, kind, T, two, mask, ...) \
    agrees_with_opencv<Kind::kind, T, bool(two), bool(mask)>(#name, zeb_tbl_##name, sc, v, pad, where);
    ZEB_ARITH_MEMBERS(ZEB_MEMBER)
#undef ZEB_MEMBER
}

TEST_P(ArithOpenCV, EveryMemberAgreesOnNoise) {
    auto noise = [](int type, double lo, double hi) {
        cv::Mat m(37, 517, type);
        cv::randu(m, lo, hi);
        return m;
    };
    Scene sc;
    for (int i = 0; i < 2; ++i)
        sc.s8[i] = noise(CV_8U, 0, 256), sc.s16[i] = noise(CV_16U, 0, 65536), sc.sf[i] = noise(CV_32F, -1e3, 1e3),
        sc.c3[i] = noise(CV_8UC3, 0, 256);
    sc.mask = noise(CV_8U, 0, 3), sc.acc = noise(CV_32F, -3000, 3000);  // a third of the mask zero
    for (int v = 0; v < 2; ++v) all_agree(sc, v, 1, "noise");
}

// Grey levels of two photographs as sources (16-bit scaled to the full
// range), the mask from thresholding a third, an accumulator holding a
// scaled one; whole and unpadded through u8, and a cut at an odd offset
// with padded steps through n8.
TEST_P(ArithOpenCV, EveryMemberAgreesOnPhotographs) {
    const char* files[] = {"baboon.jpg", "fruits.jpg", "building.jpg"};
    cv::Mat grey[3], colour[3];
    for (int i = 0; i < 3; ++i) {
        colour[i] = zt::photo(files[i], cv::IMREAD_COLOR);
        ASSERT_FALSE(colour[i].empty()) << files[i];
        cv::cvtColor(colour[i], grey[i], cv::COLOR_BGR2GRAY);
    }
    const int w = std::min({grey[0].cols, grey[1].cols, grey[2].cols}),
              h = std::min({grey[0].rows, grey[1].rows, grey[2].rows});
    for (int v = 0; v < 2; ++v) {
        const cv::Rect r = v ? cv::Rect(3, 5, w / 2 + 1, h / 2 + 3) : cv::Rect(0, 0, w, h);
        Scene sc;
        for (int i = 0; i < 2; ++i) {
            sc.s8[i] = grey[i](r), sc.c3[i] = colour[i](r);
            grey[i](r).convertTo(sc.s16[i], CV_16U, i ? 250.0 : 257.0);
            grey[i](r).convertTo(sc.sf[i], CV_32F, 1.0 / (7 - 4 * i));
        }
        cv::compare(grey[2](r), 128, sc.mask, cv::CMP_GT);
        grey[1](r).convertTo(sc.acc, CV_32F, 11.75, -1000.0);
        all_agree(sc, v, v ? 3 : 0, v ? "a cut of the photographs" : "photographs");
    }
}

}  // namespace
