// SPDX-License-Identifier: Apache-2.0
// Dilation, erosion and min/max filters: every member against the scalar
// definition (every mask class, both border modes, odd widths and steps),
// against OpenCV's dilate/erode on generated data and photographs, the
// older interface and the filters' mask cropping, and the argument checks.
#include <gtest/gtest.h>

#include <opencv2/imgproc.hpp>
#include <array>
#include <vector>

#include "check_table.h"
#include "harness.h"
#include "core/zebcore_test_hooks.h"
#include "morph/morph_ref.h"

// One line per state-based member: export, pixel type, channels, dilation?,
// size query and preparation of its state.
#define ZT_BORDER_MEMBERS(X)                         \
    X(zebiDilateBorder_8u_C1R, Zeb8u, 1, true, zebiMorphologyBorderGetSize_8u_C1R, zebiMorphologyBorderInit_8u_C1R)      \
    X(zebiDilateBorder_8u_C3R, Zeb8u, 3, true, zebiMorphologyBorderGetSize_8u_C3R, zebiMorphologyBorderInit_8u_C3R)      \
    X(zebiDilateBorder_8u_C4R, Zeb8u, 4, true, zebiMorphologyBorderGetSize_8u_C4R, zebiMorphologyBorderInit_8u_C4R)      \
    X(zebiDilateBorder_16u_C1R, Zeb16u, 1, true, zebiMorphologyBorderGetSize_16u_C1R, zebiMorphologyBorderInit_16u_C1R)    \
    X(zebiDilateBorder_16s_C1R, Zeb16s, 1, true, zebiMorphologyBorderGetSize_16s_C1R, zebiMorphologyBorderInit_16s_C1R)    \
    X(zebiDilateBorder_32f_C1R, Zeb32f, 1, true, zebiMorphologyBorderGetSize_32f_C1R, zebiMorphologyBorderInit_32f_C1R)    \
    X(zebiDilateBorder_32f_C3R, Zeb32f, 3, true, zebiMorphologyBorderGetSize_32f_C3R, zebiMorphologyBorderInit_32f_C3R)    \
    X(zebiDilateBorder_32f_C4R, Zeb32f, 4, true, zebiMorphologyBorderGetSize_32f_C4R, zebiMorphologyBorderInit_32f_C4R)    \
    X(zebiErodeBorder_8u_C1R, Zeb8u, 1, false, zebiMorphologyBorderGetSize_8u_C1R, zebiMorphologyBorderInit_8u_C1R)      \
    X(zebiErodeBorder_8u_C3R, Zeb8u, 3, false, zebiMorphologyBorderGetSize_8u_C3R, zebiMorphologyBorderInit_8u_C3R)      \
    X(zebiErodeBorder_8u_C4R, Zeb8u, 4, false, zebiMorphologyBorderGetSize_8u_C4R, zebiMorphologyBorderInit_8u_C4R)      \
    X(zebiErodeBorder_16u_C1R, Zeb16u, 1, false, zebiMorphologyBorderGetSize_16u_C1R, zebiMorphologyBorderInit_16u_C1R)    \
    X(zebiErodeBorder_16s_C1R, Zeb16s, 1, false, zebiMorphologyBorderGetSize_16s_C1R, zebiMorphologyBorderInit_16s_C1R)    \
    X(zebiErodeBorder_32f_C1R, Zeb32f, 1, false, zebiMorphologyBorderGetSize_32f_C1R, zebiMorphologyBorderInit_32f_C1R)    \
    X(zebiErodeBorder_32f_C3R, Zeb32f, 3, false, zebiMorphologyBorderGetSize_32f_C3R, zebiMorphologyBorderInit_32f_C3R)    \
    X(zebiErodeBorder_32f_C4R, Zeb32f, 4, false, zebiMorphologyBorderGetSize_32f_C4R, zebiMorphologyBorderInit_32f_C4R)
// Older interface: size, in-memory and allocated preparation, dilation, erosion.
#define ZT_OLDER_MEMBERS(X)                                                                                    \
    X(zebiMorphologyGetSize_8u_C1R, zebiMorphologyInit_8u_C1R, zebiMorphologyInitAlloc_8u_C1R,                 \
      zebiDilateBorderReplicate_8u_C1R, zebiErodeBorderReplicate_8u_C1R, Zeb8u, 1)                             \
    X(zebiMorphologyGetSize_8u_C3R, zebiMorphologyInit_8u_C3R, zebiMorphologyInitAlloc_8u_C3R,                 \
      zebiDilateBorderReplicate_8u_C3R, zebiErodeBorderReplicate_8u_C3R, Zeb8u, 3)                             \
    X(zebiMorphologyGetSize_8u_C4R, zebiMorphologyInit_8u_C4R, zebiMorphologyInitAlloc_8u_C4R,                 \
      zebiDilateBorderReplicate_8u_C4R, zebiErodeBorderReplicate_8u_C4R, Zeb8u, 4)                             \
    X(zebiMorphologyGetSize_32f_C1R, zebiMorphologyInit_32f_C1R, zebiMorphologyInitAlloc_32f_C1R,              \
      zebiDilateBorderReplicate_32f_C1R, zebiErodeBorderReplicate_32f_C1R, Zeb32f, 1)                          \
    X(zebiMorphologyGetSize_32f_C3R, zebiMorphologyInit_32f_C3R, zebiMorphologyInitAlloc_32f_C3R,              \
      zebiDilateBorderReplicate_32f_C3R, zebiErodeBorderReplicate_32f_C3R, Zeb32f, 3)                          \
    X(zebiMorphologyGetSize_32f_C4R, zebiMorphologyInit_32f_C4R, zebiMorphologyInitAlloc_32f_C4R,              \
      zebiDilateBorderReplicate_32f_C4R, zebiErodeBorderReplicate_32f_C4R, Zeb32f, 4)
// Min/max filters: size query, max filter, min filter.
#define ZT_FILTER_MEMBERS(X)                                                                                        \
    X(zebiFilterMaxGetBufferSize_8u_C1R, zebiFilterMinGetBufferSize_8u_C1R, zebiFilterMaxBorderReplicate_8u_C1R,    \
      zebiFilterMinBorderReplicate_8u_C1R, Zeb8u, 1)                                                               \
    X(zebiFilterMaxGetBufferSize_8u_C3R, zebiFilterMinGetBufferSize_8u_C3R, zebiFilterMaxBorderReplicate_8u_C3R,    \
      zebiFilterMinBorderReplicate_8u_C3R, Zeb8u, 3)                                                               \
    X(zebiFilterMaxGetBufferSize_8u_C4R, zebiFilterMinGetBufferSize_8u_C4R, zebiFilterMaxBorderReplicate_8u_C4R,    \
      zebiFilterMinBorderReplicate_8u_C4R, Zeb8u, 4)                                                               \
    X(zebiFilterMaxGetBufferSize_32f_C1R, zebiFilterMinGetBufferSize_32f_C1R, zebiFilterMaxBorderReplicate_32f_C1R, \
      zebiFilterMinBorderReplicate_32f_C1R, Zeb32f, 1)                                                             \
    X(zebiFilterMaxGetBufferSize_32f_C3R, zebiFilterMinGetBufferSize_32f_C3R, zebiFilterMaxBorderReplicate_32f_C3R, \
      zebiFilterMinBorderReplicate_32f_C3R, Zeb32f, 3)                                                             \
    X(zebiFilterMaxGetBufferSize_32f_C4R, zebiFilterMinGetBufferSize_32f_C4R, zebiFilterMaxBorderReplicate_32f_C4R, \
      zebiFilterMinBorderReplicate_32f_C4R, Zeb32f, 4)

#define ZT_DECL1(fn, T, ch, mx, gs, in) ZEB_TEST_TABLE(fn); ZEB_TEST_TABLE(gs); ZEB_TEST_TABLE(in);
#define ZT_DECL5(a, b, c, d, e, ...) ZEB_TEST_TABLE(a); ZEB_TEST_TABLE(b); ZEB_TEST_TABLE(c); ZEB_TEST_TABLE(d); ZEB_TEST_TABLE(e);
#define ZT_DECL4(a, b, c, d, ...) ZEB_TEST_TABLE(a); ZEB_TEST_TABLE(b); ZEB_TEST_TABLE(c); ZEB_TEST_TABLE(d);
ZT_BORDER_MEMBERS(ZT_DECL1)
ZT_OLDER_MEMBERS(ZT_DECL5)
ZT_FILTER_MEMBERS(ZT_DECL4)
ZEB_TEST_TABLE(zebiDilateBorder_1u_C1R);
ZEB_TEST_TABLE(zebiErodeBorder_1u_C1R);
ZEB_TEST_TABLE(zebiMorphologyBorderGetSize_1u_C1R);
ZEB_TEST_TABLE(zebiMorphologyBorderInit_1u_C1R);
ZEB_TEST_TABLE(zebiMorphologyFree);

namespace {

using zt::Image;
using zt::checks::Arena;
using zt::checks::Case;
using zt::checks::Table;

struct Mask {
    const char* name;
    int w, h;
    std::vector<uint8_t> m;
    ZebiSize size() const { return {w, h}; }
};

Mask solid(const char* name, int w, int h) { return {name, w, h, std::vector<uint8_t>(std::size_t(w) * h, 1)}; }
Mask from_cv(const char* name, const cv::Mat& k) {
    Mask r{name, k.cols, k.rows, {}};
    for (int y = 0; y < k.rows; ++y)
        for (int x = 0; x < k.cols; ++x) r.m.push_back(k.at<uint8_t>(y, x) ? uint8_t(7 + x) : 0);
    return r;
}

// Every class: rectangles short and long in each direction (direct,
// doubling and block paths), a rectangle away from the anchor, crosses and
// ellipses (runs), a scattered mask (general), the empty and 1x1 masks.
const std::vector<Mask>& masks() {
    static const std::vector<Mask> all = [] {
        std::vector<Mask> v = {solid("rect 3x3", 3, 3),   solid("rect 5x1", 5, 1),  solid("rect 1x7", 1, 7),
                               solid("rect 9x11", 9, 11), solid("rect 17x8", 17, 8), solid("1x1", 1, 1)};
        Mask off{"rect off the anchor", 6, 5, std::vector<uint8_t>(30, 0)};
        for (int y = 3; y < 5; ++y)
            for (int x = 3; x < 6; ++x) off.m[y * 6 + x] = 255;
        v.push_back(off);
        v.push_back(from_cv("cross 5x5", cv::getStructuringElement(cv::MORPH_CROSS, {5, 5})));
        v.push_back(from_cv("ellipse 7x9", cv::getStructuringElement(cv::MORPH_ELLIPSE, {7, 9})));
        v.push_back(from_cv("ellipse 15x15", cv::getStructuringElement(cv::MORPH_ELLIPSE, {15, 15})));
        v.push_back(Mask{"scattered 4x3", 4, 3, {1, 0, 0, 1, 0, 0, 1, 0, 0, 1, 0, 1}});
        v.push_back(Mask{"empty 3x2", 3, 2, std::vector<uint8_t>(6, 0)});
        return v;
    }();
    return all;
}

// A state and buffer prepared through the query, each exactly its size.
struct State {
    zt::Guarded spec, buf;
    const ZebiMorphState* s() const { return reinterpret_cast<const ZebiMorphState*>(spec.data()); }
};
template <class GetSize, class Init>
State prepare(GetSize gs, Init init, int width, const Mask& m) {
    int sb = 0, bb = 0;
    EXPECT_EQ(gs(width, m.size(), &sb, &bb), 0);
    State st{zt::work_buffer(sb), zt::work_buffer(bb)};
    EXPECT_EQ(init(width, m.m.data(), m.size(), reinterpret_cast<ZebiMorphState*>(st.spec.data()), st.buf.data()), 0);
    return st;
}

template <class T>
bool same(const Image<T>& a, const Image<T>& b, std::string* where) {
    for (int y = 0; y < a.height(); ++y)
        for (int x = 0; x < a.width() * a.channels(); ++x)
            if (std::memcmp(&a.row(y)[x], &b.row(y)[x], sizeof(T)) != 0) {
                *where = "row " + std::to_string(y) + " element " + std::to_string(x);
                return false;
            }
    return true;
}

// Calls a border member whatever the form of its border value.
template <class T, int CH, class Fn>
ZebStatus call_border(Fn fn, const T* s, int ss, T* d, int ds, ZebiSize roi, int bt, const ZebiMorphState* st,
                      Zeb8u* buf) {
    static const T bv[4] = {};
    if constexpr (CH == 1)
        return fn(s, ss, d, ds, roi, bt, T{}, st, buf);
    else
        return fn(s, ss, d, ds, roi, bt, bv, st, buf);
}

// ---- the definition ----

template <class T, int CH, bool kMax, class Fn, class GetSize, class Init>
void border_member_matches(const char* name, const Fn* tbl, GetSize gs, Init init) {
    SCOPED_TRACE(name);
    const std::vector<std::pair<int, int>> sizes = {{1, 1}, {2, 5}, {7, 3}, {33, 17}, {67, 9}, {130, 4}};
    int pad = 0;
    for (const Mask& m : masks())
        for (auto [w, h] : sizes)
            for (int mode : {1, 6}) {
                SCOPED_TRACE(::testing::Message() << m.name << ", " << w << "x" << h << ", border " << mode);
                const zt::Margin mg = mode == 6 ? zt::Margin{m.w, m.h} : zt::Margin{};
                const int p = zt::test_pads(sizeof(T))[pad++ % 4];
                Image<T> src(w, h, CH, p, mg);
                Image<T> want(w, h, CH);
                zeb::morph::ref::morph<kMax>(src.ptr(), src.step(), want.ptr(), want.step(), w, h, CH, m.m.data(),
                                             m.w, m.h, (m.w - 1) / 2, (m.h - 1) / 2, mode == 6);
                const State st = prepare(gs, init, w + (pad % 3), m);  // states wider than the ROI serve it
                for (int v = 0; v < 2; ++v) {
                    Image<T> dst(w, h, CH, zt::test_pads(sizeof(T))[(pad + 1) % 4]);
                    ASSERT_EQ((call_border<T, CH>(tbl[v], src.ptr(), src.step(), dst.ptr(), dst.step(), {w, h},
                                                  mode, st.s(), st.buf.data())),
                              0);
                    std::string where;
                    ASSERT_TRUE(same(dst, want, &where)) << "variant " << v << ": " << where;
                }
            }
}

ZT_TARGET_SUITE(DilateErode);

TEST_P(DilateErode, EveryMemberMatchesTheDefinition) {
#define ZT_RUN(fn, T, ch, mx, gs, in) \
    border_member_matches<T, ch, mx>(#fn, zeb_tbl_##fn, zeb_tbl_##gs[0], zeb_tbl_##in[0]);
    ZT_BORDER_MEMBERS(ZT_RUN)
#undef ZT_RUN
}


// ---- 1-bit images ----

// The definition on packed rows: pixel (x, y) is bit 7 - x % 8 of byte x / 8.
int bit_at(const uint8_t* base, int step, int x, int y) {
    const uint8_t* r = base + std::ptrdiff_t(y) * step;
    return (r[x >> 3] >> (7 - (x & 7))) & 1;
}

TEST_P(DilateErode, OneBitFormsFollowTheDefinitionAndKeepTrailingBits) {
    for (const Mask& m : masks())
        for (auto [w, h] : std::vector<std::pair<int, int>>{{1, 3}, {7, 2}, {9, 5}, {33, 17}, {70, 6}})
            for (int mode : {1, 6})
                for (bool dilate : {true, false}) {
                    SCOPED_TRACE(::testing::Message() << m.name << ", " << w << "x" << h << ", border " << mode
                                                      << (dilate ? ", dilate" : ", erode"));
                    const int bytes = (w + 7) / 8, ax = (m.w - 1) / 2, ay = (m.h - 1) / 2;
                    const zt::Margin mg = mode == 6 ? zt::Margin{(m.w + 7) / 8 + 1, m.h} : zt::Margin{};
                    Image<Zeb8u> src(bytes, h, 1, 3, mg);
                    const State st =
                        prepare(zeb_tbl_zebiMorphologyBorderGetSize_1u_C1R[0], zeb_tbl_zebiMorphologyBorderInit_1u_C1R[0], w, m);
                    bool any = false;
                    for (uint8_t b : m.m) any |= b != 0;
                    for (int v = 0; v < 2; ++v) {
                        Image<Zeb8u> dst(bytes, h, 1, 1);
                        const Image<Zeb8u> before = zt::image_of<Zeb8u>(dst.mat().clone());
                        auto fn = dilate ? zeb_tbl_zebiDilateBorder_1u_C1R[v] : zeb_tbl_zebiErodeBorder_1u_C1R[v];
                        ASSERT_EQ(fn(src.ptr(), src.step(), dst.ptr(), dst.step(), {w, h}, mode, 0, st.s(), st.buf.data()), 0);
                        for (int y = 0; y < h; ++y)
                            for (int x = 0; x < bytes * 8; ++x) {
                                int want = x < w ? (dilate ? 0 : 1) : bit_at(before.ptr(), before.step(), x, y);
                                if (x < w && !any) want = bit_at(src.ptr(), src.step(), x, y);
                                for (int i = 0; x < w && i < m.h; ++i)
                                    for (int j = 0; j < m.w; ++j) {
                                        if (!m.m[i * m.w + j]) continue;
                                        int sx = x - ax + j, sy = y - ay + i;
                                        if (mode == 1) sx = std::clamp(sx, 0, w - 1), sy = std::clamp(sy, 0, h - 1);
                                        const int b = bit_at(src.ptr(), src.step(), sx, sy);
                                        want = dilate ? std::max(want, b) : std::min(want, b);
                                    }
                                ASSERT_EQ(bit_at(dst.ptr(), dst.step(), x, y), want) << "variant " << v << " at " << x << "," << y;
                            }
                    }
                }
}

// ---- older interface ----

template <class T, int CH, class GS, class In, class IA, class Dil, class Ero>
void older_member(const char* name, GS gs, In init, IA initAlloc, const Dil* dil, const Ero* ero) {
    SCOPED_TRACE(name);
    const int w = 37, h = 13;
    Image<T> src(w, h, CH, zt::test_pads(sizeof(T))[1]);
    for (const Mask& m : masks())
        for (ZebiPoint a : {ZebiPoint{0, 0}, ZebiPoint{m.w - 1, m.h - 1}, ZebiPoint{m.w / 3, m.h - 1 - m.h / 3}}) {
            SCOPED_TRACE(::testing::Message() << m.name << ", anchor " << a.x << "," << a.y);
            int bytes = 0;
            ASSERT_EQ(gs(w + 3, m.m.data(), m.size(), &bytes), 0);
            zt::Guarded mem = zt::work_buffer(bytes);
            auto* inMem = reinterpret_cast<ZebiMorphState*>(mem.data());
            ASSERT_EQ(init(w + 3, m.m.data(), m.size(), a, inMem), 0);
            ZebiMorphState* alloc = nullptr;
            ASSERT_EQ(initAlloc(w + 3, m.m.data(), m.size(), a, &alloc), 0);
            for (bool dilate : {true, false}) {
                Image<T> want(w, h, CH);
                if (dilate)
                    zeb::morph::ref::morph<true>(src.ptr(), src.step(), want.ptr(), want.step(), w, h, CH, m.m.data(), m.w,
                                                 m.h, a.x, a.y, false);
                else
                    zeb::morph::ref::morph<false>(src.ptr(), src.step(), want.ptr(), want.step(), w, h, CH, m.m.data(),
                                                  m.w, m.h, a.x, a.y, false);
                for (int v = 0; v < 2; ++v)
                    for (ZebiMorphState* st : {inMem, alloc}) {
                        Image<T> dst(w, h, CH);
                        const ZebStatus r = dilate ? dil[v](src.ptr(), src.step(), dst.ptr(), dst.step(), {w, h}, 1, st)
                                                   : ero[v](src.ptr(), src.step(), dst.ptr(), dst.step(), {w, h}, 1, st);
                        ASSERT_EQ(r, 0);
                        std::string where;
                        ASSERT_TRUE(same(dst, want, &where)) << "variant " << v << ": " << where;
                    }
            }
            // The state serves ROIs up to its width, not wider.
            Image<T> wide(w + 4, h, CH), out(w + 4, h, CH);
            EXPECT_EQ(dil[0](wide.ptr(), wide.step(), out.ptr(), out.step(), {w + 3, h}, 1, alloc), 0);
            EXPECT_EQ(dil[0](wide.ptr(), wide.step(), out.ptr(), out.step(), {w + 4, h}, 1, alloc), zebStsBadArgErr);
            EXPECT_EQ(zeb_tbl_zebiMorphologyFree[0](alloc), 0);
        }
    EXPECT_EQ(zeb_tbl_zebiMorphologyFree[1](nullptr), zebStsNullPtrErr);
}

TEST_P(DilateErode, OlderInterfaceTakesAnyAnchor) {
#define ZT_RUN(gs, in, ia, dil, ero, T, ch) \
    older_member<T, ch>(#dil, zeb_tbl_##gs[0], zeb_tbl_##in[0], zeb_tbl_##ia[0], zeb_tbl_##dil, zeb_tbl_##ero);
    ZT_OLDER_MEMBERS(ZT_RUN)
#undef ZT_RUN
}

// ---- min/max filters ----

template <class T, int CH, class GS, class Fn>
void filter_member(const char* name, GS gsMax, GS gsMin, const Fn* fmax, const Fn* fmin) {
    SCOPED_TRACE(name);
    struct C {
        int w, h, mw, mh, ax, ay;
    };
    // Anchors inside, at the far corner and beyond the image; masks wider
    // and taller than the image.
    const C cases[] = {{33, 9, 3, 3, 1, 1},  {67, 20, 5, 5, 2, 2},  {40, 30, 15, 13, 7, 6}, {19, 23, 31, 2, 30, 0},
                       {5, 4, 9, 1, 8, 0},   {3, 7, 12, 11, 1, 10}, {130, 3, 1, 17, 0, 16}, {1, 1, 4, 4, 2, 1},
                       {70, 40, 20, 20, 3, 17}};
    for (const C& c : cases) {
        SCOPED_TRACE(::testing::Message() << c.w << "x" << c.h << " mask " << c.mw << "x" << c.mh << " anchor " << c.ax
                                          << "," << c.ay);
        Image<T> src(c.w, c.h, CH, zt::test_pads(sizeof(T))[2]);
        const std::vector<uint8_t> ones(std::size_t(c.mw) * c.mh, 1);
        int bmax = 0, bmin = 0;
        ASSERT_EQ(gsMax(c.w, {c.mw, c.mh}, &bmax), 0);
        ASSERT_EQ(gsMin(c.w, {c.mw, c.mh}, &bmin), 0);
        ASSERT_EQ(bmax, bmin);
        for (bool isMax : {true, false}) {
            Image<T> want(c.w, c.h, CH);
            if (isMax)
                zeb::morph::ref::morph<true>(src.ptr(), src.step(), want.ptr(), want.step(), c.w, c.h, CH, ones.data(),
                                             c.mw, c.mh, c.ax, c.ay, false);
            else
                zeb::morph::ref::morph<false>(src.ptr(), src.step(), want.ptr(), want.step(), c.w, c.h, CH, ones.data(),
                                              c.mw, c.mh, c.ax, c.ay, false);
            for (int v = 0; v < 2; ++v) {
                zt::Guarded buf = zt::work_buffer(bmax);
                Image<T> dst(c.w, c.h, CH, zt::test_pads(sizeof(T))[3]);
                ASSERT_EQ((isMax ? fmax : fmin)[v](src.ptr(), src.step(), dst.ptr(), dst.step(), {c.w, c.h}, {c.mw, c.mh},
                                                   {c.ax, c.ay}, buf.data()),
                          0);
                std::string where;
                ASSERT_TRUE(same(dst, want, &where)) << "variant " << v << ": " << where;
            }
        }
    }
}

TEST_P(DilateErode, FiltersCropTheMaskToWhatReplicationReaches) {
#define ZT_RUN(gmax, gmin, fmax, fmin, T, ch) \
    filter_member<T, ch>(#fmax, zeb_tbl_##gmax[0], zeb_tbl_##gmin[0], zeb_tbl_##fmax, zeb_tbl_##fmin);
    ZT_FILTER_MEMBERS(ZT_RUN)
#undef ZT_RUN
}

// The sizes the queries must give for 8u one channel, worked by hand.
TEST(MorphSizes, EightBitOneChannelFormulas) {
    int n = 0, spec = 0, buf = 0;
    EXPECT_EQ(zebiFilterMaxGetBufferSize_8u_C1R(100, {3, 5}, &n), 0);
    EXPECT_EQ(n, 32 * 5 + 2 * 5 * 132 + 32);
    EXPECT_EQ(zebiFilterMinGetBufferSize_32f_C1R(100, {3, 5}, &n), 0);
    EXPECT_EQ(n, 32 * 5 + 2 * 5 * 432 + 32);
    // 3x5 mask, width 100: R16(15) = 16, tables R16(120) + 16 + R16(144) = 288.
    EXPECT_EQ(zebiMorphologyBorderGetSize_8u_C1R(100, {3, 5}, &spec, &buf), 0);
    EXPECT_EQ(spec - buf, 33 * 16 + 16 * 5 + 160);
    const std::vector<uint8_t> mask(15, 1);
    EXPECT_EQ(zebiMorphologyGetSize_8u_C1R(100, mask.data(), {3, 5}, &n), 0);
    EXPECT_EQ(n, 16 * 5 + 160 + 33 * 16 + (32 * 5 + 2 * 5 * 132 + 32) + 288);
    EXPECT_EQ(zebiMorphologyBorderGetSize_8u_C1R(1 << 30, {3, 5}, &spec, &buf), zebStsSizeErr);
}


// ---- OpenCV ----

// The photograph as pixels of T with CH channels (16-bit types spread over
// their range, a fourth channel from a shifted copy).
template <class T, int CH>
cv::Mat photo_as() {
    cv::Mat m = zt::photo(CH == 1 ? "baboon.jpg" : "fruits.jpg", CH == 1 ? cv::IMREAD_GRAYSCALE : cv::IMREAD_COLOR);
    if (m.empty()) return m;
    m = m(cv::Rect(0, 0, std::min(m.cols, 301), std::min(m.rows, 203))).clone();
    if (CH == 4) {
        cv::Mat a;
        cv::extractChannel(m, a, 1);
        cv::Mat four;
        cv::merge(std::vector<cv::Mat>{m, 255 - a}, four);
        m = four;
    }
    cv::Mat out;
    if (std::is_same_v<T, Zeb16u>) m.convertTo(out, CV_MAKETYPE(CV_16U, CH), 251, 3);
    else if (std::is_same_v<T, Zeb16s>) m.convertTo(out, CV_MAKETYPE(CV_16S, CH), 211, -26000);
    else if (std::is_same_v<T, Zeb32f>) m.convertTo(out, CV_MAKETYPE(CV_32F, CH), 0.37, -11.5);
    else out = m;
    return out;
}

template <class T, int CH, bool kMax, class Fn, class GS, class In>
void opencv_member(const char* name, const Fn* tbl, GS gs, In init) {
    SCOPED_TRACE(name);
    const cv::Mat ph = photo_as<T, CH>();
    if (ph.empty()) GTEST_SKIP() << "sample photographs missing";
    for (const Mask& m : masks()) {
        SCOPED_TRACE(m.name);
        cv::Mat k(m.h, m.w, CV_8U, const_cast<uint8_t*>(m.m.data()));
        const cv::Point anchor((m.w - 1) / 2, (m.h - 1) / 2);
        bool any = false;
        for (uint8_t b : m.m) any |= b != 0;
        if (!any) continue;  // OpenCV reads an empty kernel as 3x3
        for (int mode : {1, 6}) {
            // Border 6: the ROI sits inside the photograph, OpenCV reads the
            // pixels around it as they are.
            const cv::Rect r = mode == 1 ? cv::Rect(0, 0, ph.cols, ph.rows)
                                         : cv::Rect(m.w + 3, m.h + 2, ph.cols - 2 * m.w - 7, ph.rows - 2 * m.h - 5);
            const cv::Mat roi = ph(r);
            cv::Mat want;
            if (kMax)
                cv::dilate(roi, want, k, anchor, 1, cv::BORDER_REPLICATE);
            else
                cv::erode(roi, want, k, anchor, 1, cv::BORDER_REPLICATE);
            const State st = prepare(gs, init, r.width, m);
            Image<T> dst(r.width, r.height, CH, 7 * int(sizeof(T)));
            const T* src = reinterpret_cast<const T*>(roi.data);
            ASSERT_EQ((call_border<T, CH>(tbl[1], src, int(roi.step), dst.ptr(), dst.step(), {r.width, r.height}, mode,
                                          st.s(), st.buf.data())),
                      0);
            ASSERT_EQ(cv::norm(dst.mat(), want, cv::NORM_INF), 0.0) << "border " << mode;
        }
    }
}

ZT_TARGET_SUITE(DilateErodeOpenCV);

TEST_P(DilateErodeOpenCV, EveryMemberOnPhotographs) {
#define ZT_RUN(fn, T, ch, mx, gs, in) \
    opencv_member<T, ch, mx>(#fn, zeb_tbl_##fn, zeb_tbl_##gs[0], zeb_tbl_##in[0]);
    ZT_BORDER_MEMBERS(ZT_RUN)
#undef ZT_RUN
}

// Min/max filters are OpenCV's rectangular dilation and erosion with the
// same anchor; the older interface its dilation with a non-centred anchor.
TEST_P(DilateErodeOpenCV, FiltersAndOlderAnchorsOnPhotographs) {
    const cv::Mat ph = photo_as<Zeb8u, 3>();
    if (ph.empty()) GTEST_SKIP() << "sample photographs missing";
    const Image<Zeb8u> src = zt::image_of<Zeb8u>(ph, 5);
    const int w = ph.cols, h = ph.rows;
    for (auto [mw, mh, ax, ay] : std::vector<std::array<int, 4>>{{3, 3, 0, 2}, {21, 1, 15, 0}, {1, 9, 0, 1}, {11, 17, 10, 3}}) {
        SCOPED_TRACE(::testing::Message() << mw << "x" << mh << " anchor " << ax << "," << ay);
        const cv::Mat k = cv::Mat::ones(mh, mw, CV_8U);
        cv::Mat wantMax, wantMin;
        cv::dilate(ph, wantMax, k, {ax, ay}, 1, cv::BORDER_REPLICATE);
        cv::erode(ph, wantMin, k, {ax, ay}, 1, cv::BORDER_REPLICATE);
        int bytes = 0;
        ASSERT_EQ(zebiFilterMaxGetBufferSize_8u_C3R(w, {mw, mh}, &bytes), 0);
        zt::Guarded buf = zt::work_buffer(bytes);
        Image<Zeb8u> dst(w, h, 3);
        ASSERT_EQ(zebiFilterMaxBorderReplicate_8u_C3R(src.ptr(), src.step(), dst.ptr(), dst.step(), {w, h}, {mw, mh},
                                                      {ax, ay}, buf.data()),
                  0);
        EXPECT_EQ(cv::norm(dst.mat(), wantMax, cv::NORM_INF), 0.0);
        ASSERT_EQ(zebiFilterMinBorderReplicate_8u_C3R(src.ptr(), src.step(), dst.ptr(), dst.step(), {w, h}, {mw, mh},
                                                      {ax, ay}, buf.data()),
                  0);
        EXPECT_EQ(cv::norm(dst.mat(), wantMin, cv::NORM_INF), 0.0);
        // A cross with the same anchor through the older interface.
        cv::Mat cross = cv::getStructuringElement(cv::MORPH_CROSS, {mw, mh}, {ax, ay});
        ZebiMorphState* st = nullptr;
        ASSERT_EQ(zebiMorphologyInitAlloc_8u_C3R(w, cross.ptr<Zeb8u>(), {mw, mh}, {ax, ay}, &st), 0);
        cv::dilate(ph, wantMax, cross, {ax, ay}, 1, cv::BORDER_REPLICATE);
        ASSERT_EQ(zebiDilateBorderReplicate_8u_C3R(src.ptr(), src.step(), dst.ptr(), dst.step(), {w, h}, 1, st), 0);
        EXPECT_EQ(cv::norm(dst.mat(), wantMax, cv::NORM_INF), 0.0);
        EXPECT_EQ(zebiMorphologyFree(st), 0);
    }
}


// ---- argument checks ----

template <class T, int CH, class Fn, class GS, class In>
void border_checks(const char* name, const Fn* tbl, GS gs, In init) {
    struct A {
        const T* s;
        int ss;
        T* d;
        int ds;
        ZebiSize roi;
        int bt;
        const T* bv;
        const ZebiMorphState* st;
        Zeb8u* buf;
    };
    const int row = 8 * CH * int(sizeof(T));
    std::vector<Case<A>> cases = {
        {"null src, width 0", [](A& a) { a.s = nullptr, a.roi.width = 0; }, zebStsNullPtrErr},
        {"null dst", [](A& a) { a.d = nullptr; }, zebStsNullPtrErr},
        {"null state, border 0", [](A& a) { a.st = nullptr, a.bt = 0; }, zebStsNullPtrErr},
        {"null buffer", [](A& a) { a.buf = nullptr; }, zebStsNullPtrErr},
        {"height 0, short step", [row](A& a) { a.roi.height = 0, a.ss = row - 1; }, zebStsSizeErr},
        {"width -1, border 0", [](A& a) { a.roi.width = -1, a.bt = 0; }, zebStsSizeErr},
        {"short destination step, border 0", [row](A& a) { a.ds = row - int(sizeof(T)), a.bt = 0; }, zebStsStepErr},
        {"border 0, width 9", [](A& a) { a.bt = 0, a.roi.width = 9; }, zebStsBorderErr},
        {"border 2", [](A& a) { a.bt = 2; }, zebStsBorderErr},
        {"border 16 + 1 (flags ignored)", [](A& a) { a.bt = 17; }, zebStsNoErr},
        {"width 9 for a state of width 8", [](A& a) { a.roi.width = 9; }, zebStsBadArgErr}};
    if (CH > 1) cases.push_back({"null border value, border 0", [](A& a) { a.bv = nullptr, a.bt = 0; }, zebStsNullPtrErr});
    if (sizeof(T) > 1)
        cases.push_back({"step not a multiple of the sample, border 0", [](A& a) { a.ss += 1, a.bt = 0; }, zebStsNotEvenStepErr});
    zt::checks::run(Table<A>{
        name,
        [gs, init](Arena& m) {
            auto src = m.image<T>("src", 9, 4, CH, 8), dst = m.image<T>("dst", 9, 4, CH, 8);
            const Mask& k = masks()[0];
            int sb = 0, bb = 0;
            EXPECT_EQ(gs(8, k.size(), &sb, &bb), 0);
            auto* st = reinterpret_cast<ZebiMorphState*>(m.block("state", std::size_t(sb)));
            Zeb8u* buf = m.block("buffer", std::size_t(bb));
            EXPECT_EQ(init(8, k.m.data(), k.size(), st, buf), 0);
            return A{src.ptr, src.step, dst.ptr, dst.step, {8, 4}, 1, m.array<T>("border value", 4), st, buf};
        },
        [tbl](int v, A& a) {
            if constexpr (CH == 1)
                return tbl[v](a.s, a.ss, a.d, a.ds, a.roi, a.bt, T{}, a.st, a.buf);
            else
                return tbl[v](a.s, a.ss, a.d, a.ds, a.roi, a.bt, a.bv, a.st, a.buf);
        },
        cases});
}

template <class T, int CH, class GS, class In, class IA, class Dil>
void older_checks(const char* name, GS gs, In init, IA initAlloc, const Dil* dil) {
    struct A {
        const T* s;
        int ss;
        T* d;
        int ds;
        ZebiSize roi;
        int bt;
        ZebiMorphState* st;
    };
    const int row = 8 * CH * int(sizeof(T));
    std::vector<Case<A>> cases = {
        {"null src, width 0", [](A& a) { a.s = nullptr, a.roi.width = 0; }, zebStsNullPtrErr},
        {"null dst", [](A& a) { a.d = nullptr; }, zebStsNullPtrErr},
        {"null state, border 6", [](A& a) { a.st = nullptr, a.bt = 6; }, zebStsNullPtrErr},
        {"height 0, short step", [row](A& a) { a.roi.height = 0, a.ss = row - 1; }, zebStsSizeErr},
        {"short step, border 0", [row](A& a) { a.ds = row - int(sizeof(T)), a.bt = 0; }, zebStsStepErr},
        {"border 6", [](A& a) { a.bt = 6; }, zebStsBadArgErr},
        {"border 17", [](A& a) { a.bt = 17; }, zebStsBadArgErr},
        {"width 9 for a state of width 8", [](A& a) { a.roi.width = 9; }, zebStsBadArgErr}};
    if (sizeof(T) > 1)
        cases.push_back({"step not a multiple of 4, border 0", [](A& a) { a.ss += 2, a.bt = 0; }, zebStsNotEvenStepErr});
    zt::checks::run(Table<A>{
        name,
        [gs, init](Arena& m) {
            auto src = m.image<T>("src", 9, 4, CH, 8), dst = m.image<T>("dst", 9, 4, CH, 8);
            const Mask& k = masks()[7];  // cross: the state's own scratch
            int n = 0;
            EXPECT_EQ(gs(8, k.m.data(), k.size(), &n), 0);
            auto* st = reinterpret_cast<ZebiMorphState*>(m.block("state", std::size_t(n)));
            EXPECT_EQ(init(8, k.m.data(), k.size(), ZebiPoint{1, 3}, st), 0);
            return A{src.ptr, src.step, dst.ptr, dst.step, {8, 4}, 1, st};
        },
        [dil](int v, A& a) { return dil[v](a.s, a.ss, a.d, a.ds, a.roi, a.bt, a.st); }, cases});

    // Size query and preparations.
    const std::vector<uint8_t> mask(6, 1);
    int n = -1;
    EXPECT_EQ(gs(8, nullptr, {3, 2}, &n), zebStsNullPtrErr);
    EXPECT_EQ(gs(0, mask.data(), {3, 2}, &n), zebStsSizeErr);
    EXPECT_EQ(gs(8, mask.data(), {3, 0}, &n), zebStsSizeErr);
    EXPECT_EQ(n, -1);
    ASSERT_EQ(gs(8, mask.data(), {3, 2}, &n), 0);
    zt::Guarded mem = zt::work_buffer(n);
    auto* st = reinterpret_cast<ZebiMorphState*>(mem.data());
    EXPECT_EQ(init(8, mask.data(), {3, 2}, {0, 0}, nullptr), zebStsNullPtrErr);
    EXPECT_EQ(init(-1, mask.data(), {3, 2}, {3, 0}, st), zebStsSizeErr);
    EXPECT_EQ(init(8, mask.data(), {3, 2}, {3, 0}, st), zebStsAnchorErr);
    EXPECT_EQ(init(8, mask.data(), {3, 2}, {0, -1}, st), zebStsAnchorErr);
    ZebiMorphState* p = nullptr;
    EXPECT_EQ(initAlloc(8, mask.data(), {3, 2}, {1, 2}, &p), zebStsAnchorErr);
    EXPECT_EQ(initAlloc(8, nullptr, {3, 2}, {1, 1}, &p), zebStsNullPtrErr);
    EXPECT_EQ(p, nullptr);
}

template <class T, int CH, class GS, class Fn>
void filter_checks(const char* name, GS gsz, const Fn* tbl) {
    struct A {
        const T* s;
        int ss;
        T* d;
        int ds;
        ZebiSize roi, mask;
        ZebiPoint anchor;
        Zeb8u* buf;
    };
    const int row = 8 * CH * int(sizeof(T));
    std::vector<Case<A>> cases = {
        {"null src, width 0", [](A& a) { a.s = nullptr, a.roi.width = 0; }, zebStsNullPtrErr},
        {"null dst", [](A& a) { a.d = nullptr; }, zebStsNullPtrErr},
        {"null buffer, mask 0", [](A& a) { a.buf = nullptr, a.mask.width = 0; }, zebStsNullPtrErr},
        {"height 0, mask 0", [](A& a) { a.roi.height = 0, a.mask.width = 0; }, zebStsSizeErr},
        {"mask height 0, anchor -1", [](A& a) { a.mask.height = 0, a.anchor.x = -1; }, zebStsMaskSizeErr},
        {"anchor 3, short step", [row](A& a) { a.anchor.x = 3, a.ss = row - 1; }, zebStsAnchorErr},
        {"anchor y 3", [](A& a) { a.anchor.y = 3; }, zebStsAnchorErr},
        {"short step", [row](A& a) { a.ds = row - int(sizeof(T)); }, zebStsStepErr}};
    if (sizeof(T) > 1) cases.push_back({"step not a multiple of 4", [](A& a) { a.ds += 1; }, zebStsNotEvenStepErr});
    zt::checks::run(Table<A>{
        name,
        [gsz](Arena& m) {
            auto src = m.image<T>("src", 8, 5, CH, 8), dst = m.image<T>("dst", 8, 5, CH, 8);
            int n = 0;
            EXPECT_EQ(gsz(8, ZebiSize{3, 3}, &n), 0);
            return A{src.ptr, src.step, dst.ptr, dst.step, {8, 5}, {3, 3}, {1, 2}, m.block("buffer", std::size_t(n))};
        },
        [tbl](int v, A& a) { return tbl[v](a.s, a.ss, a.d, a.ds, a.roi, a.mask, a.anchor, a.buf); }, cases});
    int n = -1;
    EXPECT_EQ(gsz(8, {3, 3}, nullptr), zebStsNullPtrErr);
    EXPECT_EQ(gsz(0, {0, 3}, &n), zebStsSizeErr);
    EXPECT_EQ(gsz(8, {3, 0}, &n), zebStsMaskSizeErr);
    EXPECT_EQ(n, -1);
}

TEST(MorphChecks, EveryMemberChecksInOrder) {
#define ZT_RUN(fn, T, ch, mx, gs, in) border_checks<T, ch>(#fn, zeb_tbl_##fn, zeb_tbl_##gs[0], zeb_tbl_##in[0]);
    ZT_BORDER_MEMBERS(ZT_RUN)
#undef ZT_RUN
#define ZT_RUN(gs, in, ia, dil, ero, T, ch)                                                   \
    older_checks<T, ch>(#dil, zeb_tbl_##gs[0], zeb_tbl_##in[0], zeb_tbl_##ia[0], zeb_tbl_##dil); \
    older_checks<T, ch>(#ero, zeb_tbl_##gs[0], zeb_tbl_##in[0], zeb_tbl_##ia[0], zeb_tbl_##ero);
    ZT_OLDER_MEMBERS(ZT_RUN)
#undef ZT_RUN
#define ZT_RUN(gmax, gmin, fmax, fmin, T, ch)                       \
    filter_checks<T, ch>(#fmax, zeb_tbl_##gmax[1], zeb_tbl_##fmax); \
    filter_checks<T, ch>(#fmin, zeb_tbl_##gmin[1], zeb_tbl_##fmin);
    ZT_FILTER_MEMBERS(ZT_RUN)
#undef ZT_RUN
}

// The state queries and preparations of the border interface, 1-bit
// images included.
TEST(MorphChecks, BorderStatesAndOneBitChecksInOrder) {
    const std::vector<uint8_t> mask(6, 0);  // empty: accepted
    int s = -1, b = -1;
    Zeb8u buf[64];
    alignas(8) Zeb8u spec[2048];
    auto* st = reinterpret_cast<ZebiMorphState*>(spec);
#define ZT_RUN(fn, T, ch, mx, gs, in)                                                         \
    EXPECT_EQ(zeb_tbl_##gs[0](8, {3, 2}, nullptr, &b), zebStsNullPtrErr);                    \
    EXPECT_EQ(zeb_tbl_##gs[1](8, {3, 2}, &s, nullptr), zebStsNullPtrErr);                    \
    EXPECT_EQ(zeb_tbl_##gs[0](0, {3, 2}, &s, &b), zebStsSizeErr);                            \
    EXPECT_EQ(zeb_tbl_##gs[1](8, {3, 0}, &s, &b), zebStsSizeErr);                            \
    EXPECT_EQ(zeb_tbl_##in[0](8, nullptr, {3, 2}, st, buf), zebStsNullPtrErr);               \
    EXPECT_EQ(zeb_tbl_##in[1](8, mask.data(), {3, 2}, st, nullptr), zebStsNullPtrErr);       \
    EXPECT_EQ(zeb_tbl_##in[0](8, mask.data(), {0, 2}, st, buf), zebStsSizeErr);              \
    EXPECT_EQ(zeb_tbl_##in[1](8, mask.data(), {3, 2}, st, buf), zebStsNoErr);
    ZT_BORDER_MEMBERS(ZT_RUN)
    ZT_RUN(x, Zeb8u, 1, true, zebiMorphologyBorderGetSize_1u_C1R, zebiMorphologyBorderInit_1u_C1R)
#undef ZT_RUN
    EXPECT_EQ(s, -1);
    EXPECT_EQ(b, -1);

    struct A {
        const Zeb8u* s;
        int ss;
        Zeb8u* d;
        int ds;
        ZebiSize roi;
        int bt;
        const ZebiMorphState* st;
        Zeb8u* buf;
    };
    for (bool dilate : {true, false})
        zt::checks::run(Table<A>{
            dilate ? "zebiDilateBorder_1u_C1R" : "zebiErodeBorder_1u_C1R",
            [](Arena& m) {
                auto src = m.image<Zeb8u>("src", 2, 4, 1, 2), dst = m.image<Zeb8u>("dst", 2, 4, 1, 2);
                const Mask& k = masks()[8];  // ellipse
                int sb = 0, bb = 0;
                EXPECT_EQ(zebiMorphologyBorderGetSize_1u_C1R(12, k.size(), &sb, &bb), 0);
                auto* st = reinterpret_cast<ZebiMorphState*>(m.block("state", std::size_t(sb)));
                Zeb8u* buf = m.block("buffer", std::size_t(bb));
                EXPECT_EQ(zebiMorphologyBorderInit_1u_C1R(12, k.m.data(), k.size(), st, buf), 0);
                return A{src.ptr, src.step, dst.ptr, dst.step, {12, 4}, 1, st, buf};
            },
            [dilate](int v, A& a) {
                return (dilate ? zeb_tbl_zebiDilateBorder_1u_C1R : zeb_tbl_zebiErodeBorder_1u_C1R)[v](
                    a.s, a.ss, a.d, a.ds, a.roi, a.bt, 0, a.st, a.buf);
            },
            {{"null src, width 0", [](A& a) { a.s = nullptr, a.roi.width = 0; }, zebStsNullPtrErr},
             {"null buffer", [](A& a) { a.buf = nullptr; }, zebStsNullPtrErr},
             {"height 0, step 1", [](A& a) { a.roi.height = 0, a.ss = 1; }, zebStsSizeErr},
             {"step 1 for 12 pixels, border 0", [](A& a) { a.ds = 1, a.bt = 0; }, zebStsStepErr},
             {"width 16, border 0", [](A& a) { a.roi.width = 16, a.bt = 0; }, zebStsBorderErr},
             {"width 13 for a state of width 12", [](A& a) { a.roi.width = 13; }, zebStsBadArgErr},
             {"step 1 for 8 pixels", [](A& a) { a.roi.width = 8, a.ss = 1, a.ds = 1; }, zebStsNoErr}}});
}


// Allocation failures: InitAlloc leaves nothing behind; an older call whose
// mask needs more scratch than its state holds allocates it for the call,
// returns -9 with the destination untouched when it cannot, and releases it.
TEST(MorphChecks, AllocationFailuresLeaveNothingBehind) {
    const Mask& m = masks()[9];  // ellipse 15x15: run tables beyond the state's own scratch
    const int64_t live = zebTestLiveBlocks();
    int marker = 0;
    ZebiMorphState* st = reinterpret_cast<ZebiMorphState*>(&marker);  // a value that must survive
    ZebiMorphState* const before = st;
    zebTestFailMallocAt(1);
    EXPECT_EQ(zebiMorphologyInitAlloc_8u_C1R(64, m.m.data(), m.size(), {7, 7}, &st), zebStsMemAllocErr);
    EXPECT_EQ(st, before);
    EXPECT_EQ(zebTestLiveBlocks(), live);
    ASSERT_EQ(zebiMorphologyInitAlloc_8u_C1R(64, m.m.data(), m.size(), {7, 7}, &st), 0);
    Image<Zeb8u> src(64, 20), dst(64, 20);
    const std::vector<Zeb8u> old = dst.pixels();
    zebTestFailMallocAt(1);
    EXPECT_EQ(zebiErodeBorderReplicate_8u_C1R(src.ptr(), src.step(), dst.ptr(), dst.step(), {64, 20}, 1, st),
              zebStsMemAllocErr);
    zebTestFailMallocAt(0);
    EXPECT_EQ(dst.pixels(), old);
    EXPECT_EQ(zebiErodeBorderReplicate_8u_C1R(src.ptr(), src.step(), dst.ptr(), dst.step(), {64, 20}, 1, st), 0);
    EXPECT_EQ(zebTestLiveBlocks(), live + 1);
    EXPECT_EQ(zebiMorphologyFree(st), 0);
    EXPECT_EQ(zebTestLiveBlocks(), live);
}

}  // namespace
