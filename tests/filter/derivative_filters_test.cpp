// SPDX-License-Identifier: Apache-2.0
// Sobel, Scharr, Laplacian and lowpass filters with borders and the Sobel
// kernel generator: argument checks and size queries (check tables with
// canaries), results on every vector target through both variant tables,
// with cached and streaming stores, against the separable definition over
// OpenCV's derivative kernels, and OpenCV's own filters on photographs.
#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <functional>
#include <opencv2/imgproc.hpp>
#include <string>
#include <vector>

#include "check_table.h"
#include "core/zebcore_test_hooks.h"
#include "harness.h"
#include "separable_ref.h"

// One line per member: the filter it runs, the export, its size query.
#define ZT_MEMBERS(X)                                                                                                \
    X(SobelHoriz, zebiFilterSobelHorizBorder_8u16s_C1R, zebiFilterSobelHorizGetBufferSize_8u16s_C1R)                  \
    X(SobelHoriz, zebiFilterSobelHorizBorder_8u8s_C1R, zebiFilterSobelHorizGetBufferSize_8u8s_C1R)                    \
    X(SobelHoriz, zebiFilterSobelHorizBorder_32f_C1R, zebiFilterSobelHorizGetBufferSize_32f_C1R)                      \
    X(SobelVert, zebiFilterSobelVertBorder_8u16s_C1R, zebiFilterSobelVertGetBufferSize_8u16s_C1R)                     \
    X(SobelVert, zebiFilterSobelVertBorder_8u8s_C1R, zebiFilterSobelVertGetBufferSize_8u8s_C1R)                       \
    X(SobelVert, zebiFilterSobelVertBorder_32f_C1R, zebiFilterSobelVertGetBufferSize_32f_C1R)                         \
    X(SobelNegVert, zebiFilterSobelNegVertBorder_8u16s_C1R, zebiFilterSobelNegVertGetBufferSize_8u16s_C1R)            \
    X(SobelNegVert, zebiFilterSobelNegVertBorder_8u8s_C1R, zebiFilterSobelNegVertGetBufferSize_8u8s_C1R)              \
    X(SobelNegVert, zebiFilterSobelNegVertBorder_32f_C1R, zebiFilterSobelNegVertGetBufferSize_32f_C1R)                \
    X(SobelHorizSecond, zebiFilterSobelHorizSecondBorder_8u16s_C1R, zebiFilterSobelHorizSecondGetBufferSize_8u16s_C1R) \
    X(SobelHorizSecond, zebiFilterSobelHorizSecondBorder_8u8s_C1R, zebiFilterSobelHorizSecondGetBufferSize_8u8s_C1R)   \
    X(SobelHorizSecond, zebiFilterSobelHorizSecondBorder_32f_C1R, zebiFilterSobelHorizSecondGetBufferSize_32f_C1R)     \
    X(SobelVertSecond, zebiFilterSobelVertSecondBorder_8u16s_C1R, zebiFilterSobelVertSecondGetBufferSize_8u16s_C1R)    \
    X(SobelVertSecond, zebiFilterSobelVertSecondBorder_8u8s_C1R, zebiFilterSobelVertSecondGetBufferSize_8u8s_C1R)      \
    X(SobelVertSecond, zebiFilterSobelVertSecondBorder_32f_C1R, zebiFilterSobelVertSecondGetBufferSize_32f_C1R)        \
    X(SobelCross, zebiFilterSobelCrossBorder_8u16s_C1R, zebiFilterSobelCrossGetBufferSize_8u16s_C1R)                  \
    X(SobelCross, zebiFilterSobelCrossBorder_8u8s_C1R, zebiFilterSobelCrossGetBufferSize_8u8s_C1R)                    \
    X(SobelCross, zebiFilterSobelCrossBorder_32f_C1R, zebiFilterSobelCrossGetBufferSize_32f_C1R)                      \
    X(ScharrHoriz, zebiFilterScharrHorizBorder_8u16s_C1R, zebiFilterScharrHorizGetBufferSize_8u16s_C1R)               \
    X(ScharrHoriz, zebiFilterScharrHorizBorder_8u8s_C1R, zebiFilterScharrHorizGetBufferSize_8u8s_C1R)                 \
    X(ScharrHoriz, zebiFilterScharrHorizBorder_32f_C1R, zebiFilterScharrHorizGetBufferSize_32f_C1R)                   \
    X(ScharrVert, zebiFilterScharrVertBorder_8u16s_C1R, zebiFilterScharrVertGetBufferSize_8u16s_C1R)                  \
    X(ScharrVert, zebiFilterScharrVertBorder_8u8s_C1R, zebiFilterScharrVertGetBufferSize_8u8s_C1R)                    \
    X(ScharrVert, zebiFilterScharrVertBorder_32f_C1R, zebiFilterScharrVertGetBufferSize_32f_C1R)                      \
    X(Laplacian, zebiFilterLaplacianBorder_8u16s_C1R, zebiFilterLaplacianGetBufferSize_8u16s_C1R)                     \
    X(Laplacian, zebiFilterLaplacianBorder_8u8s_C1R, zebiFilterLaplacianGetBufferSize_8u8s_C1R)                       \
    X(Laplacian, zebiFilterLaplacianBorder_32f_C1R, zebiFilterLaplacianGetBufferSize_32f_C1R)                         \
    X(Lowpass, zebiFilterLowpassBorder_8u_C1R, zebiFilterLowpassGetBufferSize_8u_C1R)                                 \
    X(Lowpass, zebiFilterLowpassBorder_32f_C1R, zebiFilterLowpassGetBufferSize_32f_C1R)

#define ZT_DECLARE(f, fn, q) ZEB_TEST_TABLE(fn); ZEB_TEST_TABLE(q);
ZT_MEMBERS(ZT_DECLARE)
#undef ZT_DECLARE
ZEB_TEST_TABLE(zebiGenSobelKernel_16s);
ZEB_TEST_TABLE(zebiGenSobelKernel_32f);

namespace {

using zt::checks::Arena;
using zt::checks::Table;

// Every argument a member may take; each member reads what it has.
struct Args {
    const void* src;
    int srcStep;
    void* dst;
    int dstStep;
    ZebiSize roi;
    int mask, border;
    double value;
    int divisor;
    Zeb8u* buf;
};

enum class F { SobelHoriz, SobelVert, SobelNegVert, SobelHorizSecond, SobelVertSecond, SobelCross, ScharrHoriz,
               ScharrVert, Laplacian, Lowpass };

struct Member {
    std::string name;
    F f;
    int srcElem, dstElem;
    bool signed8, hasMask, hasDivisor;
    std::function<ZebStatus(int variant, const Args&)> call;
    std::function<ZebStatus(int variant, ZebiSize, int mask, int*)> query;
};

// A member from its two tables; the forms differ in what follows the ROI:
// (mask, border, value, buffer), with a divisor before the buffer, or
// (border, value, buffer) without a mask size.
template <class S, class D, class... R, class... Q>
Member member(const char* name, F f, ZebStatus (*const* tbl)(const S*, int, D*, int, ZebiSize, R...),
              ZebStatus (*const* qtbl)(ZebiSize, Q...)) {
    constexpr int n = sizeof...(R);
    Member m{name, f, int(sizeof(S)), int(sizeof(D)), std::is_same_v<D, Zeb8s>, n != 3, n == 5, {}, {}};
    m.call = [tbl](int v, const Args& a) {
        const S* s = static_cast<const S*>(a.src);
        D* d = static_cast<D*>(a.dst);
        if constexpr (n == 3)
            return tbl[v](s, a.srcStep, d, a.dstStep, a.roi, a.border, S(a.value), a.buf);
        else if constexpr (n == 4)
            return tbl[v](s, a.srcStep, d, a.dstStep, a.roi, a.mask, a.border, S(a.value), a.buf);
        else
            return tbl[v](s, a.srcStep, d, a.dstStep, a.roi, a.mask, a.border, S(a.value), a.divisor, a.buf);
    };
    m.query = [qtbl](int v, ZebiSize roi, int mask, int* out) {
        if constexpr (sizeof...(Q) == 1)
            return qtbl[v](roi, out);
        else
            return qtbl[v](roi, mask, out);
    };
    return m;
}

const std::vector<Member>& members() {
#define ZT_MEMBER(f, fn, q) member(#fn, F::f, zeb_tbl_##fn, zeb_tbl_##q),
    static const std::vector<Member> m = {ZT_MEMBERS(ZT_MEMBER)};
#undef ZT_MEMBER
    return m;
}

// Makes the cache-size query fail (so the fixed filters stream their
// stores) for the life of the scope.
struct Streaming {
    explicit Streaming(bool on) { zebTestFailCacheQuery(on); }
    ~Streaming() { zebTestFailCacheQuery(0); }
};

// ---- argument checks ----

constexpr int kW = 20, kH = 6;

// A valid call: the ROI two rows and two pixels inside its source block,
// so that every in-memory border flag has the pixels it promises.
Args valid_call(Arena& m, const Member& mb) {
    const auto src = m.image<Zeb8u>("src", (kW + 4) * mb.srcElem, kH + 4);
    const auto dst = m.image<Zeb8u>("dst", kW * mb.dstElem, kH, 1, 4);
    int size = 0;
    EXPECT_EQ(mb.query(0, {kW, kH}, 55, &size), 0);
    return {src.ptr + 2 * src.step + 2 * mb.srcElem, kW * mb.srcElem, dst.ptr, dst.step, {kW, kH}, 33, 1, 0, 2,
            m.block("work buffer", size)};
}

std::vector<zt::checks::Case<Args>> cases(const Member& m) {
    // Later checks broken too, so that the order shows.
    auto later = [](Args& a) { a.border = 5, a.mask = 7, a.divisor = 0; };
    std::vector<zt::checks::Case<Args>> c = {
        {"null source", [=](Args& a) { a.src = nullptr, a.roi = {0, 0}, later(a); }, -8},
        {"null destination", [=](Args& a) { a.dst = nullptr, a.srcStep = 0, later(a); }, -8},
        {"null buffer", [=](Args& a) { a.buf = nullptr, a.roi = {-1, 0}, later(a); }, -8},
        {"zero width", [=](Args& a) { a.roi.width = 0, a.srcStep = 0, later(a); }, -6},
        {"negative height", [=](Args& a) { a.roi.height = -4, a.dstStep = 1, later(a); }, -6},
        {"short source step", [=](Args& a) { a.srcStep -= 1, later(a); }, -14},
        {"short destination step", [=](Args& a) { a.dstStep -= 1, later(a); }, -14},
        {"uneven destination, short source", [](Args& a) { a.dstStep += 1, a.srcStep -= 1; }, -14},
        {"uneven destination step", [=](Args& a) { a.dstStep += 1, later(a); }, m.dstElem > 1 ? -108 : -5},
        {"uneven source step", [=](Args& a) { a.srcStep += 2, later(a); }, m.srcElem > 1 ? -108 : -5},
        {"mode 5, mask 0", [](Args& a) { a.border = 5, a.mask = 0, a.divisor = 0; }, -5},
        {"mode 7", [](Args& a) { a.border = 7; }, -5},
        {"border -1", [](Args& a) { a.border = -1; }, -5},
        {"flag 256 alone", [](Args& a) { a.border = 256 | 1; }, -5},
        {"divisor 0, mask 0", [](Args& a) { a.divisor = 0, a.mask = 0; }, m.hasDivisor ? -5 : m.hasMask ? -33 : 0},
        {"negative divisor", [](Args& a) { a.divisor = -3; }, 0},
        {"mask 35", [](Args& a) { a.mask = 35; }, m.hasMask ? -33 : 0},
        {"mask 53", [](Args& a) { a.mask = 53; }, m.hasMask ? -33 : 0},
        {"5x5", [](Args& a) { a.mask = 55; }, 0},
    };
    for (int ok : {0, 2, 3, 4, 6, 16, 32, 64 | 2, 128 | 3, 256 | 16 | 1, 240, 0x8000 | 64})
        c.push_back({"border " + std::to_string(ok), [ok](Args& a) { a.border = ok; }, 0});
    return c;
}

ZT_TARGET_SUITE(DerivativeFilters);

TEST_P(DerivativeFilters, EveryMemberChecksInOrder) {
    for (const Member& m : members())
        zt::checks::run(Table<Args>{m.name, [&m](Arena& a) { return valid_call(a, m); }, m.call, cases(m)});
}

// Every query: null pointer, then size, then mask size, nothing written on
// failure; sizes that do not fit an int are refused, not wrapped, while the
// largest widths that fit are still answered.
TEST(DerivativeFilterSizes, QueriesCheckInOrderAndRefuseSizesBeyondInt) {
    struct Q {
        ZebiSize roi;
        int mask;
        int* out;
    };
    for (const Member& m : members()) {
        const int badMask = m.hasMask ? -33 : 0;
        zt::checks::run(Table<Q>{m.name + " size query", [](Arena& a) { return Q{{10, 10}, 55, a.array<int>("size", 1)}; },
                                 [&m](int v, Q& q) { return m.query(v, q.roi, q.mask, q.out); },
                                 {{"null output, width 0, mask 99", [](Q& q) { q.out = nullptr, q.roi.width = 0, q.mask = 99; }, -8},
                                  {"height -1, mask 99", [](Q& q) { q.roi.height = -1, q.mask = 99; }, -6},
                                  {"mask 35", [](Q& q) { q.mask = 35; }, badMask},
                                  {"mask INT_MAX", [](Q& q) { q.mask = INT_MAX; }, badMask},
                                  {"width INT_MAX", [](Q& q) { q.roi.width = INT_MAX; }, -6},
                                  {"width 2^30", [](Q& q) { q.roi.width = 1 << 30; }, -6},
                                  {"width 60000000", [](Q& q) { q.roi.width = 60000000; }, -6},
                                  {"width 5000000, height INT_MAX", [](Q& q) { q.roi = {5000000, INT_MAX}; }, 0}}});
        int narrow = 0, wide = 0;
        ASSERT_EQ(m.query(1, {16, 1}, 55, &narrow), 0);
        ASSERT_EQ(m.query(1, {5000000, 1}, 55, &wide), 0);
        EXPECT_GT(wide, narrow) << m.name;
    }
}

// Length n, order dx, any sign: OpenCV's derivative kernel, negated for a
// negative sign; nothing written past n; bad lengths and orders refused
// with nothing written.
TEST(DerivativeKernel, GeneratedKernelsAndChecks) {
    for (int n = 1; n <= 25; n += 2)  // binomials stay exact in single precision
        for (int dx = 0; dx < n && dx <= 8; ++dx) {
            cv::Mat kx, ky;
            if (n > 1) cv::getDerivKernels(kx, ky, dx, 1, n, false, CV_32F);  // kx has order dx
            for (int sign : {1, 0, -7})
                for (int v = 0; v < 2; ++v) {
                    std::vector<float> f(n + 1, 99.f);
                    ASSERT_EQ(zeb_tbl_zebiGenSobelKernel_32f[v](f.data(), n, dx, sign), 0);
                    EXPECT_EQ(f[n], 99.f) << "wrote past the kernel";
                    for (int i = 0; i < n; ++i)
                        ASSERT_EQ(f[i], (sign < 0 ? -1 : 1) * (n > 1 ? kx.at<float>(i) : 1.f)) << n << " " << dx;
                    if (n > 15) continue;  // 16-bit coefficients overflow beyond length 15
                    std::vector<Zeb16s> s(n + 1, 99);
                    ASSERT_EQ(zeb_tbl_zebiGenSobelKernel_16s[v](s.data(), n, dx, sign), 0);
                    EXPECT_EQ(s[n], 99);
                    for (int i = 0; i < n; ++i) ASSERT_EQ(s[i], int(f[i])) << "n=" << n << " dx=" << dx;
                }
        }
    struct K {
        void* p;
        int n, dx;
    };
    for (bool f32 : {false, true})
        zt::checks::run(Table<K>{f32 ? "zebiGenSobelKernel_32f" : "zebiGenSobelKernel_16s",
                                 [](Arena& a) { return K{a.block("kernel", 4 * 5), 5, 1}; },
                                 [f32](int v, K& k) {
                                     return f32 ? zeb_tbl_zebiGenSobelKernel_32f[v](static_cast<Zeb32f*>(k.p), k.n, k.dx, 1)
                                                : zeb_tbl_zebiGenSobelKernel_16s[v](static_cast<Zeb16s*>(k.p), k.n, k.dx, 1);
                                 },
                                 {{"null, even length", [](K& k) { k.p = nullptr, k.n = 4; }, -8},
                                  {"length 0", [](K& k) { k.n = 0, k.dx = 0; }, -6},
                                  {"length -3", [](K& k) { k.n = -3, k.dx = 0; }, -6},
                                  {"length 4", [](K& k) { k.n = 4; }, -6},
                                  {"order = length", [](K& k) { k.dx = 5; }, -6},
                                  {"order -1", [](K& k) { k.dx = -1; }, -6}}});
}

// ---- the definition ----

// One separable term: kx along the row (offsets -r..r), ky down the column.
struct Term {
    std::vector<int> kx, ky;
};

Term deriv(int dx, int dy, int ksize) {  // ksize -1: Scharr
    cv::Mat kx, ky;
    cv::getDerivKernels(kx, ky, dx, dy, ksize, false, CV_32F);
    Term t;
    for (int i = 0; i < int(kx.total()); ++i) t.kx.push_back(int(std::lround(kx.at<float>(i))));
    for (int i = 0; i < int(ky.total()); ++i) t.ky.push_back(int(std::lround(ky.at<float>(i))));
    return t;
}

// The derivative orders (dx, dy) of the Sobel members.
std::pair<int, int> sobel_order(F f) {
    switch (f) {
        case F::SobelHoriz: return {0, 1};
        case F::SobelHorizSecond: return {0, 2};
        case F::SobelVertSecond: return {2, 0};
        case F::SobelCross: return {1, 1};
        default: return {1, 0};  // Vert, NegVert
    }
}

// The filter as separable terms, in the order the 32f forms add them.
std::vector<Term> terms(F f, int k) {
    switch (f) {
        case F::ScharrHoriz: return {deriv(0, 1, -1)};
        case F::ScharrVert: return {deriv(1, 0, -1)};
        case F::Laplacian:  // 3x3: [2 0 2; 0 -8 0; 2 0 2] as diagonals plus centre
            if (k == 3) return {{{2, 0, 2}, {1, 0, 1}}, {{0, -8, 0}, {0, 1, 0}}};
            return {deriv(0, 2, 5), deriv(2, 0, 5)};
        case F::Lowpass: return {{std::vector<int>(k, 1), std::vector<int>(k, 1)}};
        default: return {deriv(sobel_order(f).first, sobel_order(f).second, k)};
    }
}

// The sum of the terms at (x, y): down each column, then along the row,
// zero taps skipped, in single precision for floats (in the order the
// filters fix), exact for 8-bit data; then the member's output rule.
template <class S, class D>
D expected(const Member& m, const zt::filter::Bordered<S>& src, const std::vector<Term>& ts, int k, int divisor,
           int x, int y) {
    using A = std::conditional_t<std::is_same_v<S, float>, float, double>;
    const int r = k / 2;
    A s = 0;
    for (std::size_t n = 0; n < ts.size(); ++n) {
        auto column = [&](int j) {
            return zt::filter::dot<A>(ts[n].ky.data(), k, [&](int i) { return src.at(x - r + j, y - r + i, 0); }, true);
        };
        const A t = zt::filter::dot<A>(ts[n].kx.data(), k, column, true);
        s = n == 0 ? t : A(s + t);
    }
    if (m.f == F::SobelNegVert) s = -s;
    if constexpr (std::is_same_v<D, float>) {
        return m.f == F::Lowpass ? s * (1.0f / float(k * k)) : s;
    } else if (m.f == F::Lowpass) {
        return D(std::floor((s + (k * k) / 2) / (k * k)));
    } else if (m.signed8) {  // half away from zero, saturated to +-127
        const double q = std::min(std::floor(std::fabs(s) / std::abs(divisor) + 0.5), 127.0);
        return D((s < 0) != (divisor < 0) ? -q : q);
    } else {
        return D(s);
    }
}

const int kBorders[] = {0, 1, 2, 3, 4, 6, 16, 32 | 1, 64 | 3, 128 | 4, 16 | 128 | 2, 240 | 3};

// Over widths that reach the head, the sliding body and the tail of every
// target and heights of one, two and an odd number of rows, every border:
// variant 0 with cached stores, variant 1 with streaming stores. The
// source has pixels beyond exactly the sides the border puts in memory, so
// any other read past the ROI hits a guard page.
template <class S, class D>
void sweep(const Member& m, int k) {
    const int r = k / 2;
    const std::vector<Term> ts = terms(m.f, k);
    for (int w : {1, 2, 7, 33, 67, 131, 203})
        for (int h : {1, 2, 5})
            for (int border : kBorders) {
                using zt::filter::in_memory;
                const int mL = in_memory(border, 64) ? r : 0, mT = in_memory(border, 16) ? r : 0;
                zt::Image<S> img(w + mL + (in_memory(border, 128) ? r : 0), h + mT + (in_memory(border, 32) ? r : 0),
                                 1, (w % 3) * int(sizeof(S)));
                const S value = sizeof(S) == 1 ? S(zt::rng()() % 256) : S(-37.25);
                const int divisor = (1 + int(zt::rng()() % 9)) * (w % 2 ? 1 : -1);
                const zt::filter::Bordered<S> src{img.row(mT) + mL, img.step(), w, h, 1, border, &value};
                int size = 0;
                ASSERT_EQ(m.query(0, {w, h}, k * 11, &size), 0) << m.name;
                for (int v = 0; v < 2; ++v) {
                    const Streaming streaming(v == 1);
                    zt::Image<D> dst(w, h, 1, int(sizeof(D)) * ((w + v) % 2));
                    zt::Guarded buf = zt::work_buffer(size);
                    const Args a{src.roi, img.step(), dst.ptr(), dst.step(), {w, h}, k * 11, border, double(value),
                                 divisor, buf.data()};
                    ASSERT_EQ(m.call(v, a), 0) << m.name;
                    for (int y = 0; y < h; ++y)
                        for (int x = 0; x < w; ++x) {
                            const D want = expected<S, D>(m, src, ts, k, m.hasDivisor ? divisor : 1, x, y);
                            const D got = dst.at(x, y);
                            ASSERT_EQ(0, std::memcmp(&want, &got, sizeof(D)))
                                << m.name << " k=" << k << " border=" << border << " w=" << w << " h=" << h
                                << " variant " << v << " at " << x << "," << y << ": " << double(got) << " vs "
                                << double(want);
                        }
                }
            }
}

TEST_P(DerivativeFilters, EveryMemberMatchesTheDefinitionCachedAndStreaming) {
    for (const Member& m : members())
        for (int k : {3, 5}) {
            if (!m.hasMask && k == 5) continue;
            if (m.srcElem == 4)
                sweep<float, float>(m, k);
            else if (m.dstElem == 2)
                sweep<uint8_t, int16_t>(m, k);
            else if (m.signed8)
                sweep<uint8_t, int8_t>(m, k);
            else
                sweep<uint8_t, uint8_t>(m, k);
            if (HasFatalFailure()) return;
        }
}

// ---- OpenCV's own filters on photographs ----

// Runs member m over a whole image and returns the output.
template <class S, class D>
cv::Mat run(const Member& m, const cv::Mat& src, int k, int border) {
    const zt::Image<S> in = zt::image_of<S>(src, 3 * int(sizeof(S)));
    zt::Image<D> out(src.cols, src.rows, 1, int(sizeof(D)));
    int size = 0;
    EXPECT_EQ(m.query(0, in.size(), k * 11, &size), 0);
    zt::Guarded buf = zt::work_buffer(size);
    EXPECT_EQ(m.call(1, {in.ptr(), in.step(), out.ptr(), out.step(), in.size(), k * 11, border, 0, 1, buf.data()}), 0)
        << m.name;
    return out.mat().clone();
}

// 8u16s and 8u lowpass bit for bit; 32f within a relative 1e-5 of the
// largest magnitude (OpenCV sums rows first). OpenCV's constant border is
// zero here. The 8u8s forms have no counterpart.
TEST_P(DerivativeFilters, AgreeWithOpenCVOnPhotographs) {
    const std::pair<int, int> borders[] = {
        {1, cv::BORDER_REPLICATE}, {3, cv::BORDER_REFLECT_101}, {4, cv::BORDER_REFLECT}, {0, cv::BORDER_CONSTANT}};
    for (const char* name : {"baboon.jpg", "building.jpg", "fruits.jpg"}) {
        const cv::Mat full = zt::photo(name, cv::IMREAD_GRAYSCALE);
        ASSERT_FALSE(full.empty()) << name;
        // A band of full rows keeps the test short; odd width and height keep
        // the row ends off the vector boundaries.
        const cv::Mat g8 = full(cv::Rect(0, 100, full.cols - 1 + full.cols % 2, 201)).clone();
        cv::Mat gf;
        g8.convertTo(gf, CV_32F, 1.0 / 255);
        for (const Member& m : members())
            for (int k : {3, 5})
                for (auto [ours, theirs] : borders) {
                    if ((!m.hasMask && k == 5) || m.signed8 || (m.f == F::Lowpass && ours == 0)) continue;
                    const cv::Mat& src = m.srcElem == 4 ? gf : g8;
                    const int ddepth = m.srcElem == 4 ? CV_32F : m.dstElem == 2 ? CV_16S : CV_8U;
                    cv::Mat want;
                    if (m.f == F::Laplacian) {
                        cv::Laplacian(src, want, ddepth, k, 1, 0, theirs);
                    } else if (m.f == F::Lowpass) {
                        cv::blur(src, want, {k, k}, {-1, -1}, theirs);
                    } else if (m.f == F::ScharrHoriz || m.f == F::ScharrVert) {
                        cv::Scharr(src, want, ddepth, m.f == F::ScharrVert, m.f == F::ScharrHoriz, 1, 0, theirs);
                    } else {
                        const auto [dx, dy] = sobel_order(m.f);
                        cv::Sobel(src, want, ddepth, dx, dy, k, m.f == F::SobelNegVert ? -1 : 1, 0, theirs);
                    }
                    const cv::Mat got = m.srcElem == 4 ? run<float, float>(m, src, k, ours)
                                        : m.dstElem == 2 ? run<uint8_t, int16_t>(m, src, k, ours)
                                                         : run<uint8_t, uint8_t>(m, src, k, ours);
                    const double tol = m.srcElem == 4 ? 1e-5 * std::max(1.0, cv::norm(want, cv::NORM_INF)) : 0;
                    EXPECT_LE(cv::norm(got, want, cv::NORM_INF), tol) << m.name << " on " << name << " k=" << k
                                                                      << " border=" << ours;
                }
    }
}

}  // namespace
