// SPDX-License-Identifier: Apache-2.0
// The Gaussian filter: its kernel table against OpenCV's, the argument
// checks of every export (check tables with canaries on every block),
// results of every type, channel count and border through both variants on
// every vector target against the per-pixel definitions (bit for bit,
// every buffer ending at a guard page), the older one-call interface, and
// OpenCV's GaussianBlur on photographs.
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <limits>
#include <opencv2/imgproc.hpp>

#include "check_table.h"
#include "filter/pipeline_common.h"
#include "harness.h"
#include "separable_ref.h"

// One line per filter member: export, pixel type, channels.
#define ZT_MEMBERS(X)                                   \
    X(zebiFilterGaussianBorder_8u_C1R, Zeb8u, 1)         \
    X(zebiFilterGaussianBorder_8u_C3R, Zeb8u, 3)         \
    X(zebiFilterGaussianBorder_16u_C1R, Zeb16u, 1)       \
    X(zebiFilterGaussianBorder_16u_C3R, Zeb16u, 3)       \
    X(zebiFilterGaussianBorder_16s_C1R, Zeb16s, 1)       \
    X(zebiFilterGaussianBorder_16s_C3R, Zeb16s, 3)       \
    X(zebiFilterGaussianBorder_32f_C1R, Zeb32f, 1)       \
    X(zebiFilterGaussianBorder_32f_C3R, Zeb32f, 3)

#define ZT_DECLARE(fn, T, ch) ZEB_TEST_TABLE(fn);
ZT_MEMBERS(ZT_DECLARE)
#undef ZT_DECLARE
ZEB_TEST_TABLE(zebiFilterGaussianGetBufferSize);
ZEB_TEST_TABLE(zebiFilterGaussianInit);
ZEB_TEST_TABLE(zebiFilterGaussGetBufferSize_32f_C1R);
ZEB_TEST_TABLE(zebiFilterGaussBorder_32f_C1R);

namespace {

using zeb::pipe::data_type;
using zt::Image;
using zt::checks::Arena;
using zt::checks::Table;

// A kernel setup and work buffer sized exactly by the query.
struct Prepared {
    zt::Guarded spec, buf;
    Prepared(int specBytes, int bufBytes) : spec(zt::work_buffer(specBytes)), buf(zt::work_buffer(bufBytes)) {}
    const ZebFilterGaussianSpec* s() const { return reinterpret_cast<const ZebFilterGaussianSpec*>(spec.data()); }
    template <class C>
    C coef(int i) const {  // the table starts at the first 16-byte boundary after the 20-byte header
        const auto t = (reinterpret_cast<std::uintptr_t>(spec.data()) + 20 + 15) & ~std::uintptr_t(15);
        C v;
        std::memcpy(&v, reinterpret_cast<const unsigned char*>(t) + sizeof(C) * i, sizeof(C));
        return v;
    }
    uint16_t fixed(int i) const { return coef<uint16_t>(i); }
    float real(int i) const { return coef<float>(i); }
};

std::unique_ptr<Prepared> prepare(ZebiSize roi, int k, float sigma, int bt, ZebDataType type, int ch) {
    int specBytes = 0, bufBytes = 0;
    EXPECT_EQ(zebiFilterGaussianGetBufferSize(roi, Zeb32u(k), type, ch, &specBytes, &bufBytes), 0);
    auto p = std::make_unique<Prepared>(specBytes, bufBytes);
    EXPECT_EQ(zebiFilterGaussianInit(roi, Zeb32u(k), sigma, bt, type, ch,
                                     reinterpret_cast<ZebFilterGaussianSpec*>(p->spec.data()), p->buf.data()),
              0);
    return p;
}

// Calls a member through variant v's table entry; one-channel members take
// their border value by value (0 for a null array).
template <class T, class Fn>
ZebStatus call(Fn* const* tbl, int variant, const T* src, int ss, T* dst, int ds, ZebiSize roi, const T* value,
               const ZebFilterGaussianSpec* spec, Zeb8u* buf) {
    if constexpr (std::is_invocable_v<Fn*, const T*, int, T*, int, ZebiSize, T, const ZebFilterGaussianSpec*, Zeb8u*>)
        return tbl[variant](src, ss, dst, ds, roi, value ? value[0] : T(0), spec, buf);
    else
        return tbl[variant](src, ss, dst, ds, roi, value, spec, buf);
}

// The table against OpenCV's Gaussian kernel (computed in double): each
// fixed-point coefficient within half a unit plus rounding of the single-
// precision weights, symmetric; a tiny sigma puts the whole weight in the
// centre (4096 for 8u, 32768 for 16 bits).
TEST(GaussianKernel, TableAgreesWithOpenCV) {
    for (ZebDataType type : {zeb8u, zeb16u, zeb16s, zeb32f})
        for (int k : {3, 5, 9, 31}) {
            auto p = prepare({40, 10}, k, 1.7f, zebBorderRepl | zebBorderInMemTop, type, 3);
            int32_t length = 0;  // the header's first field
            std::memcpy(&length, p->spec.data(), 4);
            EXPECT_EQ(length, k);
            const cv::Mat ref = cv::getGaussianKernel(k, 1.7, CV_64F);
            const double one = type == zeb8u ? 4096 : 32768;
            for (int i = 0; i < k; ++i) {
                const double got = type == zeb32f ? p->real(i) : p->fixed(i) / one;
                EXPECT_NEAR(got, ref.at<double>(i), type == zeb32f ? 1e-6 : (0.5 + 1e-3) / one) << k << " " << i;
                EXPECT_EQ(type == zeb32f ? p->real(k - 1 - i) : p->fixed(k - 1 - i) / one, got);
            }
        }
    auto p8 = prepare({8, 8}, 3, 0.05f, 0, zeb8u, 1);
    EXPECT_EQ(std::vector<int>({p8->fixed(0), p8->fixed(1), p8->fixed(2)}), std::vector<int>({0, 4096, 0}));
    EXPECT_EQ(prepare({8, 8}, 3, 0.05f, 0, zeb16s, 1)->fixed(1), 32768);
}

// ---- argument checks ----

constexpr ZebiSize kRoi{13, 6};

// Sizes that do not fit an int give zebStsSizeErr with nothing stored;
// heights beyond the kernel length do not matter.
TEST(GaussianChecks, BufferSizeQueries) {
    struct S {
        ZebiSize roi;
        Zeb32u k;
        int type, ch;
        int *spec, *buf;
    };
    zt::checks::run(Table<S>{
        "zebiFilterGaussianGetBufferSize",
        [](Arena& m) { return S{kRoi, 5, zeb8u, 1, m.array<int>("spec size", 1), m.array<int>("buffer size", 1)}; },
        [](int v, S& a) { return zeb_tbl_zebiFilterGaussianGetBufferSize[v](a.roi, a.k, a.type, a.ch, a.spec, a.buf); },
        {{"null spec size, width 0, length 4", [](S& a) { a.spec = nullptr, a.roi.width = 0, a.k = 4; }, -8},
         {"null buffer size", [](S& a) { a.buf = nullptr; }, -8},
         {"width 0, length 4, type 3", [](S& a) { a.roi.width = 0, a.k = 4, a.type = 3; }, -6},
         {"length 4, type 3", [](S& a) { a.k = 4, a.type = 3; }, -5},
         {"length 1", [](S& a) { a.k = 1; }, -5},
         {"type 8s, four channels", [](S& a) { a.type = zeb8s, a.ch = 4; }, -12},
         {"two channels, 32f", [](S& a) { a.ch = 2, a.type = zeb32f; }, -47},
         {"height INT_MAX", [](S& a) { a.roi.height = INT_MAX; }, 0},
         {"width INT_MAX", [](S& a) { a.roi.width = INT_MAX; }, -6},
         {"width 2^26, 16s, three channels", [](S& a) { a.roi.width = 1 << 26, a.type = zeb16s, a.ch = 3; }, -6},
         {"length 2^25 + 1, 32f", [](S& a) { a.k = (1u << 25) + 1, a.type = zeb32f; }, -6},
         {"length 2^32 - 3", [](S& a) { a.k = Zeb32u(-3); }, -6}}});
    struct A {
        ZebiSize roi;
        int k;
        int* size;
    };
    zt::checks::run(Table<A>{
        "zebiFilterGaussGetBufferSize_32f_C1R", [](Arena& m) { return A{kRoi, 5, m.array<int>("size", 1)}; },
        [](int v, A& a) { return zeb_tbl_zebiFilterGaussGetBufferSize_32f_C1R[v](a.roi, a.k, a.size); },
        {{"null size, width 0", [](A& a) { a.size = nullptr, a.roi.width = 0; }, -8},
         {"width 0, length 4", [](A& a) { a.roi.width = 0, a.k = 4; }, -6},
         {"length 4", [](A& a) { a.k = 4; }, -5},
         {"length -3", [](A& a) { a.k = -3; }, -5},
         {"height INT_MAX", [](A& a) { a.roi.height = INT_MAX; }, 0},
         {"width INT_MAX", [](A& a) { a.roi.width = INT_MAX; }, -6},
         {"length 20000001", [](A& a) { a.k = 20000001; }, -6}}});
}

TEST(GaussianChecks, InitOrder) {
    struct I {
        ZebiSize roi;
        Zeb32u k;
        float sigma;
        int bt, type, ch;
        ZebFilterGaussianSpec* spec;
        Zeb8u* buf;
    };
    const float nan = std::numeric_limits<float>::quiet_NaN();
    zt::checks::run(Table<I>{
        "zebiFilterGaussianInit",
        [](Arena& m) {
            int specBytes = 0, bufBytes = 0;
            EXPECT_EQ(zebiFilterGaussianGetBufferSize(kRoi, 9, zeb32f, 3, &specBytes, &bufBytes), 0);
            return I{kRoi, 5, 1.f, 1, zeb8u, 1, reinterpret_cast<ZebFilterGaussianSpec*>(m.block("spec", specBytes)),
                     m.block("buffer", bufBytes)};
        },
        [](int v, I& a) { return zeb_tbl_zebiFilterGaussianInit[v](a.roi, a.k, a.sigma, a.bt, a.type, a.ch, a.spec, a.buf); },
        {{"null spec, width 0, length 4", [](I& a) { a.spec = nullptr, a.roi = {0, 0}, a.k = 4; }, -8},
         {"null buffer", [](I& a) { a.buf = nullptr; }, -8},
         {"width 0, length 4, sigma -1", [](I& a) { a.roi.width = 0, a.k = 4, a.sigma = -1; }, -6},
         {"length 4, type 3, border 9", [](I& a) { a.k = 4, a.type = 3, a.bt = 9; }, -5},
         {"length 1", [](I& a) { a.k = 1; }, -5},
         {"type 8s, four channels", [](I& a) { a.type = zeb8s, a.ch = 4; }, -12},
         {"four channels, sigma 0", [](I& a) { a.ch = 4, a.sigma = 0; }, -47},
         {"sigma 0, border 9", [](I& a) { a.sigma = 0, a.bt = 9; }, -5},
         {"sigma NaN", [nan](I& a) { a.sigma = nan; }, -5},
         {"border 2", [](I& a) { a.bt = 2; }, -225},
         {"border 256 + 1", [](I& a) { a.bt = 257; }, -225},
         {"border 16 + 1", [](I& a) { a.bt = 17; }, 0},
         {"border 240 + 6, 16s", [](I& a) { a.bt = 246, a.type = zeb16s; }, 0},
         {"border 32, 32f C3 length 9", [](I& a) { a.bt = 32, a.type = zeb32f, a.ch = 3, a.k = 9; }, 0},
         // A negative odd length passes as unsigned and builds no table.
         {"length -3", [](I& a) { a.k = Zeb32u(-3); }, 0},
         {"length 2^31 + 1", [](I& a) { a.k = (1u << 31) + 1; }, 0}}});
}

template <class T>
struct FilterArgs {
    const T* src;
    int ss;
    T* dst;
    int ds;
    ZebiSize roi;
    const T* value;
    unsigned char* spec;
    Zeb8u* buf;
};

// One table per member; the kernel setup is built in the valid call and
// corrupted by some cases (the filters check its length, border and type).
template <class T, int ch, class Fn>
void filter_checks(const char* name, Fn* const* tbl) {
    using F = FilterArgs<T>;
    const int row = kRoi.width * ch * int(sizeof(T));
    auto field = [](int index, int32_t value) {
        return [index, value](F& a) { std::memcpy(a.spec + 4 * index, &value, 4); };
    };
    std::vector<zt::checks::Case<F>> cases = {
        {"null src, width 0", [](F& a) { a.src = nullptr, a.roi.width = 0; }, -8},
        {"null dst", [](F& a) { a.dst = nullptr; }, -8},
        {"null buffer", [](F& a) { a.buf = nullptr; }, -8},
        {"null spec", [](F& a) { a.spec = nullptr; }, -8},
        {"src step one short, height 0", [row](F& a) { a.ss = row - 1, a.roi.height = 0; }, -14},
        {"dst step one sample short", [row](F& a) { a.ds = row - int(sizeof(T)); }, -14},
        {"height -1", [](F& a) { a.roi.height = -1; }, -6},
        {"odd step, spec length 4", [](F& a) { a.ss += 1, std::memset(a.spec, 0, 4), a.spec[0] = 4; },
         sizeof(T) == 1 ? -5 : -108},
        {"spec length 4, border 2", [](F& a) { a.spec[0] = 4, a.spec[12] = 2; }, -5},
        {"spec length -3", field(0, -3), -5},
        {"spec border 3, type 8s", [](F& a) { a.spec[12] = 3, a.spec[8] = zeb8s; }, -225},
        {"spec of another type", field(2, std::is_same_v<T, float> ? zeb8u : zeb32f), -12},
        {"1x1", [](F& a) { a.roi = {1, 1}; }, 0},
    };
    if (ch == 3) cases.push_back({"null border values", [](F& a) { a.value = nullptr; }, -8});
    zt::checks::run(Table<F>{
        name,
        [](Arena& m) {
            int specBytes = 0, bufBytes = 0;
            EXPECT_EQ(zebiFilterGaussianGetBufferSize(kRoi, 5, data_type<T>(), ch, &specBytes, &bufBytes), 0);
            auto src = m.image<T>("src", kRoi.width, kRoi.height, ch, 8);
            auto dst = m.image<T>("dst", kRoi.width, kRoi.height, ch, 8);
            F a{src.ptr, src.step, dst.ptr, dst.step, kRoi, m.array<T>("border values", 3), m.block("spec", specBytes),
                m.block("buffer", bufBytes)};
            EXPECT_EQ(zebiFilterGaussianInit(kRoi, 5, 1.2f, 1, data_type<T>(), ch,
                                             reinterpret_cast<ZebFilterGaussianSpec*>(a.spec), a.buf),
                      0);
            return a;
        },
        [tbl](int v, F& a) {
            return call<T>(tbl, v, a.src, a.ss, a.dst, a.ds, a.roi, a.value,
                           reinterpret_cast<const ZebFilterGaussianSpec*>(a.spec), a.buf);
        },
        cases});
}

ZT_TARGET_SUITE(GaussianFilter);

TEST_P(GaussianFilter, EveryFilterChecksInOrder) {
#define ZT_CHECKS(fn, T, ch) filter_checks<T, ch>(#fn, zeb_tbl_##fn);
    ZT_MEMBERS(ZT_CHECKS)
#undef ZT_CHECKS
    struct A {
        const float* src;
        int ss;
        float* dst;
        int ds;
        ZebiSize roi;
        int k;
        float sigma;
        int bt;
        Zeb8u* buf;
    };
    const int row = kRoi.width * 4;
    zt::checks::run(Table<A>{
        "zebiFilterGaussBorder_32f_C1R",
        [](Arena& m) {
            int bytes = 0;
            EXPECT_EQ(zebiFilterGaussGetBufferSize_32f_C1R(kRoi, 5, &bytes), 0);
            auto src = m.image<float>("src", kRoi.width, kRoi.height, 1, 8);
            auto dst = m.image<float>("dst", kRoi.width, kRoi.height, 1, 8);
            return A{src.ptr, src.step, dst.ptr, dst.step, kRoi, 5, 1.f, 1, m.block("buffer", bytes)};
        },
        [](int v, A& a) {
            return zeb_tbl_zebiFilterGaussBorder_32f_C1R[v](a.src, a.ss, a.dst, a.ds, a.roi, a.k, a.sigma, a.bt, 0.f,
                                                            a.buf);
        },
        {{"null src, width 0, length 4", [](A& a) { a.src = nullptr, a.roi.width = 0, a.k = 4; }, -8},
         {"null dst", [](A& a) { a.dst = nullptr; }, -8},
         {"null buffer", [](A& a) { a.buf = nullptr; }, -8},
         {"short step, height 0", [row](A& a) { a.ss = row - 1, a.roi.height = 0; }, -14},
         {"height -1, length 4", [](A& a) { a.roi.height = -1, a.k = 4; }, -6},
         {"step not a multiple of 4, length 4", [](A& a) { a.ds += 2, a.k = 4; }, -108},
         {"length 4, border 3", [](A& a) { a.k = 4, a.bt = 3; }, -5},
         {"sigma 0, border 3", [](A& a) { a.sigma = 0, a.bt = 3; }, -5},
         {"border 3", [](A& a) { a.bt = 3; }, -225},
         {"border 16 + 8", [](A& a) { a.bt = 24; }, -225},
         {"border 0", [](A& a) { a.bt = 0; }, 0}}});
}

// ---- definitions ----

// Row pass then column pass with the anchor at the centre. 32f: the
// in-order single-precision sums of the table. 16-bit: the same sums of
// the fixed-point coefficients, scaled by 2^-15, clamped and rounded to
// nearest in each pass. 8u: unsigned fixed point, symmetric pairs added
// first; the row pass keeps 7 fraction bits, the column pass halves each
// pair and rounds once at the end.
template <class T>
std::vector<T> definition(const zt::filter::Bordered<T>& s, const Prepared& p, int k) {
    const int a = k / 2, w = s.w, h = s.h, ch = s.ch;
    using M = std::conditional_t<std::is_same_v<T, uint8_t>, uint32_t, T>;
    std::vector<float> c(k);
    for (int i = 0; i < k; ++i) c[i] = std::is_same_v<T, float> ? p.real(i) : float(p.fixed(i));
    auto finish = [](float acc) {
        if constexpr (std::is_same_v<T, float>) return acc;
        return T(std::nearbyint(std::clamp(acc * (1.0f / 32768.0f), float(std::numeric_limits<T>::lowest()),
                                           float(std::numeric_limits<T>::max()))));
    };
    std::vector<M> mid(std::size_t(h + k - 1) * w * ch);  // filtered rows -a .. h-1+a
    auto midAt = [&](int x, int y, int c) -> M& { return mid[(std::size_t(y + a) * w + x) * ch + c]; };
    for (int y = -a; y < h + a; ++y)
        for (int x = 0; x < w; ++x)
            for (int e = 0; e < ch; ++e) {
                auto v = [&](int i) { return s.at(x - a + i, y, e); };
                if constexpr (std::is_same_v<T, uint8_t>) {
                    uint32_t acc = (uint32_t(v(a)) * p.fixed(a)) >> 5;
                    for (int i = 0; i < a; ++i) acc += ((uint32_t(v(i)) + v(k - 1 - i)) * p.fixed(i)) >> 5;
                    midAt(x, y, e) = acc;
                } else {
                    midAt(x, y, e) = finish(zt::filter::dot<float>(c.data(), k, v));
                }
            }
    std::vector<T> out(std::size_t(h) * w * ch);
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x)
            for (int e = 0; e < ch; ++e) {
                auto m = [&](int j) { return midAt(x, y - a + j, e); };
                T& o = out[(std::size_t(y) * w + x) * ch + e];
                if constexpr (std::is_same_v<T, uint8_t>) {
                    uint32_t acc = (m(a) * p.fixed(a)) >> 13;
                    for (int j = 0; j < a; ++j) acc += (((m(j) + m(k - 1 - j) + 1) >> 1) * p.fixed(j)) >> 12;
                    o = T(std::min<uint32_t>((acc + 32) >> 6, 255));
                } else {
                    o = finish(zt::filter::dot<float>(c.data(), k, m));
                }
            }
    return out;
}

template <class T, class Fn>
void check_gauss(Fn* const* tbl, int ch, int variant, int w, int h, int k, float sigma, int bt) {
    const int a = k / 2;
    // Margins of a pixels hold readable noise for the sides in memory; the
    // guard page follows the bottom-right margin.
    Image<T> src(w + 2 * a, h + 2 * a, ch, int(sizeof(T)) * ((w + h) % 3));
    Image<T> dst(w, h, ch, int(sizeof(T)) * (w % 2));
    const T value[3] = {zt::random_value<T>(), zt::random_value<T>(), zt::random_value<T>()};
    auto p = prepare({w, h}, k, sigma, bt, data_type<T>(), ch);
    const T* roi = &src.at(a, a);
    ASSERT_EQ(call<T>(tbl, variant, roi, src.step(), dst.ptr(), dst.step(), {w, h}, value, p->s(), p->buf.data()), 0);
    const std::vector<T> want = definition(zt::filter::Bordered<T>{roi, src.step(), w, h, ch, bt, value}, *p, k);
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w * ch; ++x) {
            const T got = dst.row(y)[x], exp = want[std::size_t(y) * w * ch + x];
            ASSERT_EQ(std::memcmp(&got, &exp, sizeof(T)), 0)
                << "variant " << variant << " w=" << w << " h=" << h << " k=" << k << " bt=" << bt << " x=" << x
                << " y=" << y << " want " << +exp << " got " << +got;
        }
}

// Widths around the vector blocks, heights around the strips, borders with
// sides in memory, short and long kernels (a kernel of 15 over 61 rows
// runs many strips through the ring).
template <class T, int ch, class Fn>
void sweep_gauss(const char*, Fn* const* tbl) {
    const int borders[] = {0, 1, 6, 16 | 1, 32, 64 | 1, 128, 16 | 64, 240 | 1};
    int turn = 0;
    for (int v = 0; v < 2; ++v) {
        for (int w : {1, 2, 7, 16, 17, 33, 67, 130})
            for (int h : {1, 2, 6, 23})
                for (int k : {3, 5, 9})
                    check_gauss<T>(tbl, ch, v, w, h, k, 0.6f + 0.4f * float(k), borders[turn++ % 9]);
        check_gauss<T>(tbl, ch, v, 45, 61, 15, 4.f, borders[turn++ % 9]);
    }
}

TEST_P(GaussianFilter, EveryMemberMatchesTheDefinition) {
#define ZT_SWEEP(fn, T, ch) sweep_gauss<T, ch>(#fn, zeb_tbl_##fn);
    ZT_MEMBERS(ZT_SWEEP)
#undef ZT_SWEEP
}

// The older interface gives the prepared 32f filter's results.
TEST_P(GaussianFilter, OlderInterfaceMatchesPreparedFilter) {
    for (int v = 0; v < 2; ++v)
        for (int bt : {0, 1, 6, 32 | 1})
            for (int k : {3, 7}) {
                const int w = 53, h = 19, a = k / 2;
                Image<float> src(w + 2 * a, h + 2 * a), d1(w, h), d2(w, h);
                auto prep = prepare({w, h}, k, 1.3f, bt, zeb32f, 1);
                const float* roi = &src.at(a, a);
                ASSERT_EQ(zeb_tbl_zebiFilterGaussianBorder_32f_C1R[v](roi, src.step(), d1.ptr(), d1.step(), {w, h},
                                                                      7.5f, prep->s(), prep->buf.data()),
                          0);
                int size = 0;
                ASSERT_EQ(zeb_tbl_zebiFilterGaussGetBufferSize_32f_C1R[v]({w, h}, k, &size), 0);
                zt::Guarded buf = zt::work_buffer(size);
                ASSERT_EQ(zeb_tbl_zebiFilterGaussBorder_32f_C1R[v](roi, src.step(), d2.ptr(), d2.step(), {w, h}, k,
                                                                   1.3f, bt, 7.5f, buf.data()),
                          0);
                EXPECT_EQ(d1.pixels(), d2.pixels()) << "variant " << v << " bt=" << bt << " k=" << k;
            }
}

// ---- OpenCV ----

// Differences from OpenCV's GaussianBlur on photographs (same length, sigma
// and border, border value 0), both on the same type and on the image
// converted to double (OpenCV then filters in double precision, our
// accuracy yardstick). Allowed: one unit, plus for the 15-bit fixed-point
// coefficients of the 16-bit types their quantisation times the largest
// sample in each of the two passes (OpenCV filters 16-bit data with exact
// float coefficients); 2e-4 for floats (pixels up to 255; single- against
// double-precision kernels). Against OpenCV's own 8u filter, whose kernels
// carry 8 fraction bits, long kernels (k > 7) may differ by two.
template <class T, int ch, class Fn>
void expect_near_opencv(const char* name, Fn* const* tbl, int k, float sigma, int bt) {
    const cv::Mat m = zt::photo(ch == 1 ? "baboon.jpg" : "fruits.jpg", ch == 1 ? cv::IMREAD_GRAYSCALE : cv::IMREAD_COLOR);
    ASSERT_FALSE(m.empty());
    // Scaled to use the 16-bit ranges.
    cv::Mat scaled;
    m.convertTo(scaled, CV_32F, std::is_same_v<T, uint16_t> ? 257 : std::is_same_v<T, int16_t> ? 128 : 1,
                std::is_same_v<T, int16_t> ? -16384 : 0);
    const Image<T> src = zt::image_of<T>(scaled, 4 * int(sizeof(T)));
    const int w = src.width(), h = src.height();
    Image<T> dst(w, h, ch);
    const T zero[3] = {0, 0, 0};
    auto p = prepare({w, h}, k, sigma, bt, data_type<T>(), ch);
    ASSERT_EQ(call<T>(tbl, 0, src.ptr(), src.step(), dst.ptr(), dst.step(), {w, h}, zero, p->s(), p->buf.data()), 0);
    const int cvBorder = bt == 1 ? cv::BORDER_REPLICATE : cv::BORDER_CONSTANT;
    cv::Mat want, src64, want64, dst64;
    cv::GaussianBlur(src.mat(), want, cv::Size(k, k), sigma, sigma, cvBorder);
    src.mat().convertTo(src64, CV_64F);
    cv::GaussianBlur(src64, want64, cv::Size(k, k), sigma, sigma, cvBorder);
    if constexpr (!std::is_same_v<T, float>)
        want64.forEach<double>([](double& v, const int*) { v = std::nearbyint(v); });
    dst.mat().convertTo(dst64, CV_64F);
    double allowed = 1, peak = 0;
    cv::minMaxLoc(cv::abs(src64), nullptr, &peak);
    if constexpr (std::is_same_v<T, float>) {
        allowed = 2e-4;
    } else if constexpr (sizeof(T) == 2) {
        const cv::Mat g = cv::getGaussianKernel(k, sigma, CV_64F);
        double quant = 0;
        for (int i = 0; i < k; ++i) quant += std::fabs(p->fixed(i) - 32768.0 * g.at<double>(i));
        allowed = 1 + 2 * quant / 32768.0 * peak;
    }
    EXPECT_LE(cv::norm(want64, dst64, cv::NORM_INF), allowed) << name << " vs double: k=" << k << " bt=" << bt;
    if (std::is_same_v<T, uint8_t> && k > 7) allowed = 2;
    EXPECT_LE(cv::norm(want, dst.mat(), cv::NORM_INF), allowed) << name << " k=" << k << " bt=" << bt;
}

ZT_TARGET_SUITE(GaussianOpenCV);

TEST_P(GaussianOpenCV, EveryMemberOnPhotographs) {
    for (int bt : {0, 1})
        for (int k : {3, 5, 7, 13}) {
            const float sigma = 0.3f * ((k - 1) * 0.5f - 1) + 0.8f + 0.37f;
#define ZT_OPENCV(fn, T, ch) expect_near_opencv<T, ch>(#fn, zeb_tbl_##fn, k, std::is_same_v<T, float> ? 1.1f * ch : sigma, bt);
            ZT_MEMBERS(ZT_OPENCV)
#undef ZT_OPENCV
        }
}

}  // namespace
