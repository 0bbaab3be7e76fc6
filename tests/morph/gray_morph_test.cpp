// SPDX-License-Identifier: Apache-2.0
// Grey-scale dilation and erosion: argument checks with canaries, every
// filter through both variants on every vector target against the plain
// definition with weighted elements (replicated and in-memory borders),
// flat elements against OpenCV's dilate and erode, and allocated states.
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <limits>
#include <opencv2/imgproc.hpp>

#include "check_table.h"
#include "core/zebcore_test_hooks.h"
#include "harness.h"

// One line per filter: export, pixel type, element value type, dilation.
#define ZT_MEMBERS(X)                                       \
    X(zebiGrayDilateBorder_8u_C1R, Zeb8u, Zeb32s, true)     \
    X(zebiGrayErodeBorder_8u_C1R, Zeb8u, Zeb32s, false)     \
    X(zebiGrayDilateBorder_32f_C1R, Zeb32f, Zeb32f, true)   \
    X(zebiGrayErodeBorder_32f_C1R, Zeb32f, Zeb32f, false)

#define ZT_DECLARE(fn, T, V, dil) ZEB_TEST_TABLE(fn);
ZT_MEMBERS(ZT_DECLARE)
#undef ZT_DECLARE
ZEB_TEST_TABLE(zebiMorphGrayGetSize_8u_C1R);
ZEB_TEST_TABLE(zebiMorphGrayGetSize_32f_C1R);
ZEB_TEST_TABLE(zebiMorphGrayInit_8u_C1R);
ZEB_TEST_TABLE(zebiMorphGrayInit_32f_C1R);

namespace {

using zt::Image;
using zt::checks::Arena;
using zt::checks::Table;

template <class V>
ZebStatus gray_size(int w, const V* mask, ZebiSize ms, int* size) {
    if constexpr (std::is_same_v<V, Zeb32s>) return zebiMorphGrayGetSize_8u_C1R(w, mask, ms, size);
    else return zebiMorphGrayGetSize_32f_C1R(w, mask, ms, size);
}
template <class V>
ZebStatus gray_init(int w, const V* mask, ZebiSize ms, ZebiPoint a, ZebiMorphGrayState* s) {
    if constexpr (std::is_same_v<V, Zeb32s>) return zebiMorphGrayInit_8u_C1R(w, mask, ms, a, s);
    else return zebiMorphGrayInit_32f_C1R(w, mask, ms, a, s);
}

// A state in a guarded block of exactly the queried size.
template <class V>
zt::Guarded make_state(int w, const std::vector<V>& mask, ZebiSize ms, ZebiPoint anchor) {
    int bytes = 0;
    EXPECT_EQ(gray_size(w, mask.data(), ms, &bytes), 0);
    zt::Guarded g = zt::work_buffer(bytes);
    EXPECT_EQ(gray_init(w, mask.data(), ms, anchor, reinterpret_cast<ZebiMorphGrayState*>(g.data())), 0);
    return g;
}

constexpr ZebiSize kRoi{12, 5};

TEST(GrayMorphChecks, SizeAndInit) {
    struct S {
        int w;
        const Zeb32s* mask;
        ZebiSize ms;
        ZebiPoint anchor;
        int* size;
        unsigned char* state;
    };
    auto valid = [](Arena& m) {
        return S{12, m.array<Zeb32s>("mask", 6), {3, 2}, {2, 1}, m.array<int>("size", 1), nullptr};
    };
    zt::checks::run(Table<S>{
        "zebiMorphGrayGetSize_8u_C1R", valid,
        [](int v, S& a) { return zeb_tbl_zebiMorphGrayGetSize_8u_C1R[v](a.w, a.mask, a.ms, a.size); },
        {{"null mask, width 0", [](S& a) { a.mask = nullptr, a.w = 0; }, -8},
         {"null size", [](S& a) { a.size = nullptr; }, -8},
         {"width 0", [](S& a) { a.w = 0; }, -6},
         {"mask height 0", [](S& a) { a.ms.height = 0; }, -6},
         {"mask 2^16 x 2^16", [](S& a) { a.ms = {1 << 16, 1 << 16}; }, -6}}});
    zt::checks::run(Table<S>{
        "zebiMorphGrayInit_8u_C1R",
        [valid](Arena& m) {
            S a = valid(m);
            int bytes = 0;
            EXPECT_EQ(zebiMorphGrayGetSize_8u_C1R(a.w, a.mask, a.ms, &bytes), 0);
            a.state = m.block("state", bytes);
            return a;
        },
        [](int v, S& a) {
            return zeb_tbl_zebiMorphGrayInit_8u_C1R[v](a.w, a.mask, a.ms, a.anchor,
                                                       reinterpret_cast<ZebiMorphGrayState*>(a.state));
        },
        {{"null mask, width 0", [](S& a) { a.mask = nullptr, a.w = 0; }, -8},
         {"null state", [](S& a) { a.state = nullptr; }, -8},
         {"mask width 0, anchor -1", [](S& a) { a.ms.width = 0, a.anchor.x = -1; }, -6},
         {"anchor x 3", [](S& a) { a.anchor.x = 3; }, -34},
         {"anchor y -1", [](S& a) { a.anchor.y = -1; }, -34},
         {"narrower", [](S& a) { a.w = 5; }, 0}}});
    struct F {
        int w;
        const Zeb32f* mask;
        ZebiSize ms;
        int* size;
    };
    zt::checks::run(Table<F>{
        "zebiMorphGrayGetSize_32f_C1R",
        [](Arena& m) { return F{7, m.array<Zeb32f>("mask", 9), {3, 3}, m.array<int>("size", 1)}; },
        [](int v, F& a) { return zeb_tbl_zebiMorphGrayGetSize_32f_C1R[v](a.w, a.mask, a.ms, a.size); },
        {{"null mask", [](F& a) { a.mask = nullptr; }, -8}, {"width -1", [](F& a) { a.w = -1; }, -6}}});
    int bytes = 0;
    const Zeb32f one = 1;
    EXPECT_EQ(zeb_tbl_zebiMorphGrayInit_32f_C1R[1](4, &one, {1, 1}, {1, 0}, nullptr), -8);
    EXPECT_EQ(zebiMorphGrayGetSize_32f_C1R(4, &one, {1, 1}, &bytes), 0);
    std::vector<unsigned char> st(std::size_t(bytes) + 1);
    EXPECT_EQ(zeb_tbl_zebiMorphGrayInit_32f_C1R[0](4, &one, {1, 1}, {1, 0}, reinterpret_cast<ZebiMorphGrayState*>(st.data())), -34);
}

template <class T>
struct FArgs {
    const T* src;
    int ss;
    T* dst;
    int ds;
    ZebiSize roi;
    int bt;
    unsigned char* state;
};

template <class T, class V, class Fn>
void filter_checks(const char* name, Fn* const* tbl) {
    using A = FArgs<T>;
    const int row = kRoi.width * int(sizeof(T));
    zt::checks::run(Table<A>{
        name,
        [](Arena& m) {
            const std::vector<V> mask(6, V(2));
            int bytes = 0;
            EXPECT_EQ(gray_size(kRoi.width, mask.data(), {3, 2}, &bytes), 0);
            A a{nullptr, 0, nullptr, 0, kRoi, 1, m.block("state", bytes)};
            EXPECT_EQ(gray_init(kRoi.width, mask.data(), {3, 2}, {1, 1}, reinterpret_cast<ZebiMorphGrayState*>(a.state)), 0);
            auto src = m.image<T>("src", kRoi.width, kRoi.height, 1, 8);
            auto dst = m.image<T>("dst", kRoi.width, kRoi.height, 1, 8);
            a.src = src.ptr, a.ss = src.step, a.dst = dst.ptr, a.ds = dst.step;
            return a;
        },
        [tbl](int v, A& a) {
            return tbl[v](a.src, a.ss, a.dst, a.ds, a.roi, a.bt, reinterpret_cast<ZebiMorphGrayState*>(a.state));
        },
        {{"null src, width 0, border 0", [](A& a) { a.src = nullptr, a.roi.width = 0, a.bt = 0; }, -8},
         {"null dst", [](A& a) { a.dst = nullptr; }, -8},
         {"null state", [](A& a) { a.state = nullptr; }, -8},
         {"height 0, short step", [row](A& a) { a.roi.height = 0, a.ss = row - 1; }, -6},
         {"dst step one sample short, border 0", [row](A& a) { a.ds = row - int(sizeof(T)), a.bt = 0; }, -14},
         {"odd step, border 2", [](A& a) { a.ss += 1, a.bt = 2; }, sizeof(T) == 1 ? -225 : -108},
         {"border 0, wider", [](A& a) { a.bt = 0, a.roi.width += 1, a.ss += int(sizeof(T)), a.ds += int(sizeof(T)); }, -225},
         {"wider than the state", [](A& a) { a.roi.width += 1, a.ss += int(sizeof(T)), a.ds += int(sizeof(T)); }, -5},
         {"border 1 with flags", [](A& a) { a.bt = 1 | 16; }, 0}}});
}

TEST(GrayMorphChecks, FiltersInOrder) {
#define ZT_CHECKS(fn, T, V, dil) filter_checks<T, V>(#fn, zeb_tbl_##fn);
    ZT_MEMBERS(ZT_CHECKS)
#undef ZT_CHECKS
}

// ---- the definition ----

// dst(x, y) = max (min) over the elements of src(x - ax + i, y - ay + j)
// +- b(i, j), saturated for 8u; src read with the border rule (clamped
// coordinates, or the pixel in memory).
template <class T, class V, bool kDil>
T definition(const Image<T>& src, bool inMem, int x, int y, const std::vector<V>& b, ZebiSize ms, ZebiPoint a) {
    double acc = kDil ? -INFINITY : INFINITY;
    for (int j = 0; j < ms.height; ++j)
        for (int i = 0; i < ms.width; ++i) {
            int xx = x - a.x + i, yy = y - a.y + j;
            if (!inMem) xx = std::clamp(xx, 0, src.width() - 1), yy = std::clamp(yy, 0, src.height() - 1);
            const double s = double(src.row(yy)[xx]), v = double(b[std::size_t(j) * ms.width + i]);
            double r;
            if constexpr (std::is_same_v<T, float>) r = double(kDil ? float(s) + float(v) : float(s) - float(v));
            else r = std::clamp(kDil ? s + v : s - v, 0.0, 255.0);
            acc = kDil ? std::max(acc, r) : std::min(acc, r);
        }
    return T(acc);
}

// Random elements (some positions left out with the lowest value), random
// anchors, widths around the vector blocks, both borders, ROIs narrower
// than the state's.
template <class T, class V, bool kDil, class Fn>
void sweep(const char* name, Fn* const* tbl) {
    const V off = std::is_same_v<V, float> ? V(-INFINITY) : V(-300);
    for (int v = 0; v < 2; ++v)
        for (int w : {1, 3, 16, 31, 33, 70})
            for (auto ms : {ZebiSize{1, 1}, ZebiSize{3, 3}, ZebiSize{5, 2}, ZebiSize{2, 7}}) {
                std::vector<V> b(std::size_t(ms.width) * ms.height);
                for (V& e : b) {
                    const int r = int(zt::rng()() % 9);
                    e = r == 0 ? off : std::is_same_v<V, float> ? V(zt::random_value<float>() / 10) : V(r * 37 - 150);
                }
                // Half the elements repeat their first row (rows reduced together).
                if (w % 2)
                    for (std::size_t i = std::size_t(ms.width); i < b.size(); ++i) b[i] = b[i % std::size_t(ms.width)];
                const ZebiPoint a{int(zt::rng()() % ms.width), int(zt::rng()() % ms.height)};
                const int h = 1 + int(zt::rng()() % 9);
                for (bool inMem : {false, true}) {
                    const zt::Margin mg = inMem ? zt::Margin{ms.width, ms.height} : zt::Margin{};
                    Image<T> src(w, h, 1, int(sizeof(T)) * (w % 3), mg), dst(w, h, 1, int(sizeof(T)) * ((w + 1) % 2));
                    zt::Guarded st = make_state(w + 2, b, ms, a);
                    ASSERT_EQ(tbl[v](src.ptr(), src.step(), dst.ptr(), dst.step(), {w, h}, inMem ? 6 : 1,
                                     reinterpret_cast<ZebiMorphGrayState*>(st.data())), 0);
                    for (int y = 0; y < h; ++y)
                        for (int x = 0; x < w; ++x) {
                            const T want = definition<T, V, kDil>(src, inMem, x, y, b, ms, a);
                            ASSERT_EQ(std::memcmp(&want, &dst.row(y)[x], sizeof(T)), 0)
                                << name << " variant " << v << " " << w << "x" << h << " mask " << ms.width << "x"
                                << ms.height << " anchor " << a.x << "," << a.y << (inMem ? " in memory" : "")
                                << " at " << x << "," << y << ": want " << +want << " got " << +dst.row(y)[x];
                        }
                }
            }
}

ZT_TARGET_SUITE(GrayMorph);

TEST_P(GrayMorph, EveryFilterMatchesTheDefinition) {
#define ZT_SWEEP(fn, T, V, dil) sweep<T, V, dil>(#fn, zeb_tbl_##fn);
    ZT_MEMBERS(ZT_SWEEP)
#undef ZT_SWEEP
}

// A flat element is OpenCV's dilation and erosion with a replicated border,
// on a photograph and a float copy of it, for an ellipse with its centre
// anchor and an off-centre rectangle.
TEST_P(GrayMorph, FlatElementIsOpenCVsDilateAndErode) {
    const cv::Mat grey = zt::photo("fruits.jpg", cv::IMREAD_GRAYSCALE);
    ASSERT_FALSE(grey.empty());
    const Image<Zeb8u> s8 = zt::image_of<Zeb8u>(grey, 3);
    const Image<Zeb32f> sf = zt::image_of<Zeb32f>(grey, 4);
    const int w = grey.cols, h = grey.rows;
    const cv::Mat shapes[] = {cv::getStructuringElement(cv::MORPH_ELLIPSE, {7, 5}),
                              cv::getStructuringElement(cv::MORPH_RECT, {4, 3})};
    const cv::Point anchors[] = {{3, 2}, {0, 2}};
    for (int k = 0; k < 2; ++k) {
        const cv::Mat& e = shapes[k];
        const ZebiSize ms{e.cols, e.rows};
        std::vector<Zeb32s> b8;
        std::vector<Zeb32f> bf;
        for (int j = 0; j < e.rows; ++j)
            for (int i = 0; i < e.cols; ++i) {
                b8.push_back(e.at<uchar>(j, i) ? 0 : -255);
                bf.push_back(e.at<uchar>(j, i) ? 0.f : -INFINITY);
            }
        const ZebiPoint a{anchors[k].x, anchors[k].y};
        zt::Guarded st8 = make_state(w, b8, ms, a), stf = make_state(w, bf, ms, a);
        auto* g8 = reinterpret_cast<ZebiMorphGrayState*>(st8.data());
        auto* gf = reinterpret_cast<ZebiMorphGrayState*>(stf.data());
        for (int v = 0; v < 2; ++v) {
            Image<Zeb8u> d8(w, h);
            Image<Zeb32f> df(w, h);
            cv::Mat want;
            ASSERT_EQ(zeb_tbl_zebiGrayDilateBorder_8u_C1R[v](s8.ptr(), s8.step(), d8.ptr(), d8.step(), {w, h}, 1, g8), 0);
            cv::dilate(s8.mat(), want, e, anchors[k], 1, cv::BORDER_REPLICATE);
            EXPECT_EQ(cv::norm(want, d8.mat(), cv::NORM_INF), 0) << "dilate 8u shape " << k;
            ASSERT_EQ(zeb_tbl_zebiGrayErodeBorder_8u_C1R[v](s8.ptr(), s8.step(), d8.ptr(), d8.step(), {w, h}, 1, g8), 0);
            cv::erode(s8.mat(), want, e, anchors[k], 1, cv::BORDER_REPLICATE);
            EXPECT_EQ(cv::norm(want, d8.mat(), cv::NORM_INF), 0) << "erode 8u shape " << k;
            ASSERT_EQ(zeb_tbl_zebiGrayDilateBorder_32f_C1R[v](sf.ptr(), sf.step(), df.ptr(), df.step(), {w, h}, 1, gf), 0);
            cv::dilate(sf.mat(), want, e, anchors[k], 1, cv::BORDER_REPLICATE);
            EXPECT_EQ(cv::norm(want, df.mat(), cv::NORM_INF), 0) << "dilate 32f shape " << k;
            ASSERT_EQ(zeb_tbl_zebiGrayErodeBorder_32f_C1R[v](sf.ptr(), sf.step(), df.ptr(), df.step(), {w, h}, 1, gf), 0);
            cv::erode(sf.mat(), want, e, anchors[k], 1, cv::BORDER_REPLICATE);
            EXPECT_EQ(cv::norm(want, df.mat(), cv::NORM_INF), 0) << "erode 32f shape " << k;
        }
    }
}

// An allocated state filters as one built in caller memory; a failed
// allocation returns -9 and leaves nothing allocated; Free refuses null.
TEST_P(GrayMorph, AllocatedStates) {
    const std::vector<Zeb32s> b = {3, -20, 400, 0, -255, 7};
    const std::vector<Zeb32f> bf = {3.5f, -20.f, 40.f, 0.f, -INFINITY, 7.f};
    Image<Zeb8u> src(29, 11), d1(29, 11), d2(29, 11);
    Image<Zeb32f> sf(29, 11), e1(29, 11), e2(29, 11);
    ZebiMorphGrayState *s8 = nullptr, *s32 = nullptr;
    ASSERT_EQ(zebiMorphGrayInitAlloc_8u_C1R(29, b.data(), {3, 2}, {1, 0}, &s8), 0);
    ASSERT_EQ(zebiMorphGrayInitAlloc_32f_C1R(29, bf.data(), {2, 3}, {0, 2}, &s32), 0);
    zt::Guarded m8 = make_state(40, b, {3, 2}, {1, 0}), m32 = make_state(40, bf, {2, 3}, {0, 2});
    EXPECT_EQ(zebiGrayErodeBorder_8u_C1R(src.ptr(), src.step(), d1.ptr(), d1.step(), src.size(), 1, s8), 0);
    EXPECT_EQ(zebiGrayErodeBorder_8u_C1R(src.ptr(), src.step(), d2.ptr(), d2.step(), src.size(), 1,
                                         reinterpret_cast<ZebiMorphGrayState*>(m8.data())), 0);
    EXPECT_EQ(d1.pixels(), d2.pixels());
    EXPECT_EQ(zebiGrayDilateBorder_32f_C1R(sf.ptr(), sf.step(), e1.ptr(), e1.step(), sf.size(), 1, s32), 0);
    EXPECT_EQ(zebiGrayDilateBorder_32f_C1R(sf.ptr(), sf.step(), e2.ptr(), e2.step(), sf.size(), 1,
                                           reinterpret_cast<ZebiMorphGrayState*>(m32.data())), 0);
    EXPECT_EQ(e1.pixels(), e2.pixels());
    EXPECT_EQ(zebiMorphGrayFree_8u_C1R(s8), 0);
    EXPECT_EQ(zebiMorphGrayFree_32f_C1R(s32), 0);
    EXPECT_EQ(zebiMorphGrayFree_8u_C1R(nullptr), -8);
    EXPECT_EQ(zebiMorphGrayFree_32f_C1R(nullptr), -8);
    const int64_t live = zebTestLiveBlocks();
    zebTestFailMallocAt(1);
    ZebiMorphGrayState* none = nullptr;
    EXPECT_EQ(zebiMorphGrayInitAlloc_8u_C1R(29, b.data(), {3, 2}, {1, 0}, &none), -9);
    zebTestFailMallocAt(0);
    EXPECT_EQ(none, nullptr);
    EXPECT_EQ(zebTestLiveBlocks(), live);
    EXPECT_EQ(zebiMorphGrayInitAlloc_8u_C1R(29, b.data(), {3, 2}, {3, 0}, &none), -34);
}

}  // namespace
