// SPDX-License-Identifier: Apache-2.0
// Opening, closing, top-hat, black-hat and gradient: sizes, argument checks
// with canaries, every member through both variants on every vector target
// against OpenCV's morphologyEx (replicated border, bit for bit) on noise
// and photographs, in-memory borders against OpenCV on a larger crop, bit
// images against the 8-bit forms on 0/255 images, allocated states.
#include <gtest/gtest.h>

#include <opencv2/imgproc.hpp>

#include "check_table.h"
#include "core/zebcore_test_hooks.h"
#include "harness.h"

// Each member layout: its five operations, size query and state preparation.
#define ZT_ADV_8u_C1R(X) \
    X(zebiMorphOpenBorder_8u_C1R,\
      zebiMorphCloseBorder_8u_C1R,\
      zebiMorphTophatBorder_8u_C1R,\
      zebiMorphBlackhatBorder_8u_C1R,\
      zebiMorphGradientBorder_8u_C1R,\
      zebiMorphAdvGetSize_8u_C1R,\
      zebiMorphAdvInit_8u_C1R)
#define ZT_ADV_8u_C3R(X) \
    X(zebiMorphOpenBorder_8u_C3R,\
      zebiMorphCloseBorder_8u_C3R,\
      zebiMorphTophatBorder_8u_C3R,\
      zebiMorphBlackhatBorder_8u_C3R,\
      zebiMorphGradientBorder_8u_C3R,\
      zebiMorphAdvGetSize_8u_C3R,\
      zebiMorphAdvInit_8u_C3R)
#define ZT_ADV_8u_C4R(X) \
    X(zebiMorphOpenBorder_8u_C4R,\
      zebiMorphCloseBorder_8u_C4R,\
      zebiMorphTophatBorder_8u_C4R,\
      zebiMorphBlackhatBorder_8u_C4R,\
      zebiMorphGradientBorder_8u_C4R,\
      zebiMorphAdvGetSize_8u_C4R,\
      zebiMorphAdvInit_8u_C4R)
#define ZT_ADV_16u_C1R(X) \
    X(zebiMorphOpenBorder_16u_C1R,\
      zebiMorphCloseBorder_16u_C1R,\
      zebiMorphTophatBorder_16u_C1R,\
      zebiMorphBlackhatBorder_16u_C1R,\
      zebiMorphGradientBorder_16u_C1R,\
      zebiMorphAdvGetSize_16u_C1R,\
      zebiMorphAdvInit_16u_C1R)
#define ZT_ADV_16s_C1R(X) \
    X(zebiMorphOpenBorder_16s_C1R,\
      zebiMorphCloseBorder_16s_C1R,\
      zebiMorphTophatBorder_16s_C1R,\
      zebiMorphBlackhatBorder_16s_C1R,\
      zebiMorphGradientBorder_16s_C1R,\
      zebiMorphAdvGetSize_16s_C1R,\
      zebiMorphAdvInit_16s_C1R)
#define ZT_ADV_32f_C1R(X) \
    X(zebiMorphOpenBorder_32f_C1R,\
      zebiMorphCloseBorder_32f_C1R,\
      zebiMorphTophatBorder_32f_C1R,\
      zebiMorphBlackhatBorder_32f_C1R,\
      zebiMorphGradientBorder_32f_C1R,\
      zebiMorphAdvGetSize_32f_C1R,\
      zebiMorphAdvInit_32f_C1R)
#define ZT_ADV_32f_C3R(X) \
    X(zebiMorphOpenBorder_32f_C3R,\
      zebiMorphCloseBorder_32f_C3R,\
      zebiMorphTophatBorder_32f_C3R,\
      zebiMorphBlackhatBorder_32f_C3R,\
      zebiMorphGradientBorder_32f_C3R,\
      zebiMorphAdvGetSize_32f_C3R,\
      zebiMorphAdvInit_32f_C3R)
#define ZT_ADV_32f_C4R(X) \
    X(zebiMorphOpenBorder_32f_C4R,\
      zebiMorphCloseBorder_32f_C4R,\
      zebiMorphTophatBorder_32f_C4R,\
      zebiMorphBlackhatBorder_32f_C4R,\
      zebiMorphGradientBorder_32f_C4R,\
      zebiMorphAdvGetSize_32f_C4R,\
      zebiMorphAdvInit_32f_C4R)
#define ZT_ADV_1u_C1R(X) \
    X(zebiMorphOpenBorder_1u_C1R,\
      zebiMorphCloseBorder_1u_C1R,\
      zebiMorphTophatBorder_1u_C1R,\
      zebiMorphBlackhatBorder_1u_C1R,\
      zebiMorphGradientBorder_1u_C1R,\
      zebiMorphAdvGetSize_1u_C1R,\
      zebiMorphAdvInit_1u_C1R)
// The multi-byte layouts: suffix, sample type, channels (the bit layout is
// tested beside the byte one).
#define ZT_LAYOUTS(X)      \
    X(8u_C1R, Zeb8u, 1)    \
    X(8u_C3R, Zeb8u, 3)    \
    X(8u_C4R, Zeb8u, 4)    \
    X(16u_C1R, Zeb16u, 1)  \
    X(16s_C1R, Zeb16s, 1)  \
    X(32f_C1R, Zeb32f, 1)  \
    X(32f_C3R, Zeb32f, 3)  \
    X(32f_C4R, Zeb32f, 4)
#define ZT_DECLARE(o, c, t, b, g, size, init) \
    ZEB_TEST_TABLE(o);                        \
    ZEB_TEST_TABLE(c);                        \
    ZEB_TEST_TABLE(t);                        \
    ZEB_TEST_TABLE(b);                        \
    ZEB_TEST_TABLE(g);                        \
    ZEB_TEST_TABLE(size);                     \
    ZEB_TEST_TABLE(init);
ZT_ADV_8u_C1R(ZT_DECLARE)
ZT_ADV_8u_C3R(ZT_DECLARE)
ZT_ADV_8u_C4R(ZT_DECLARE)
ZT_ADV_16u_C1R(ZT_DECLARE)
ZT_ADV_16s_C1R(ZT_DECLARE)
ZT_ADV_32f_C1R(ZT_DECLARE)
ZT_ADV_32f_C3R(ZT_DECLARE)
ZT_ADV_32f_C4R(ZT_DECLARE)
ZT_ADV_1u_C1R(ZT_DECLARE)
#undef ZT_DECLARE

namespace {

using zt::Image;
using zt::checks::Arena;
using zt::checks::Table;

const int kOps[] = {cv::MORPH_OPEN, cv::MORPH_CLOSE, cv::MORPH_TOPHAT, cv::MORPH_BLACKHAT, cv::MORPH_GRADIENT};
const char* const kOpNames[] = {"open", "close", "tophat", "blackhat", "gradient"};

// The five operations of one layout, through variant tables; BV is the
// border-value argument (a value, or an array for C3/C4).
template <class T, class BV>
using OpFn = ZebStatus(const T*, int, T*, int, ZebiSize, ZebiBorderType, BV, const ZebiMorphAdvState*, Zeb8u*);
template <class T, class BV>
struct Layout {
    const char* name;
    OpFn<T, BV>* const* ops[5];
    ZebStatus (*const* size)(ZebiSize, ZebiSize, int*, int*);
    ZebStatus (*const* init)(ZebiSize, const Zeb8u*, ZebiSize, ZebiMorphAdvState*, Zeb8u*);
};
#define ZT_LAYOUT7(o, c, t, b, g, size, init)                                                      \
    Layout<std::remove_const_t<std::remove_pointer_t<std::tuple_element_t<0, std::tuple<decltype(zt_first_arg(o))>>>>, \
           decltype(zt_border_arg(o))> {                                                                \
        #o, {zeb_tbl_##o, zeb_tbl_##c, zeb_tbl_##t, zeb_tbl_##b, zeb_tbl_##g}, zeb_tbl_##size, zeb_tbl_##init \
    }
#define ZT_LAYOUT(suf) ZT_ADV_##suf(ZT_LAYOUT7)
template <class T, class BV>
T* zt_first_arg(OpFn<T, BV>*);
template <class T, class BV>
BV zt_border_arg(OpFn<T, BV>*);

// A prepared state and buffer, each of exactly the queried size.
struct Prepared {
    zt::Guarded spec, buf;
    const ZebiMorphAdvState* s() const { return reinterpret_cast<const ZebiMorphAdvState*>(spec.data()); }
};
template <class L>
Prepared prepare(const L& l, ZebiSize roi, const cv::Mat& mask) {
    int sb = 0, bb = 0;
    EXPECT_EQ(l.size[0](roi, {mask.cols, mask.rows}, &sb, &bb), 0);
    Prepared p{zt::work_buffer(sb), zt::work_buffer(bb)};
    EXPECT_EQ(l.init[1](roi, mask.data, {mask.cols, mask.rows}, reinterpret_cast<ZebiMorphAdvState*>(p.spec.data()),
                        p.buf.data()),
              0);
    return p;
}

template <class BV, class T>
BV border_value(const T* values) {
    if constexpr (std::is_pointer_v<BV>) return values;
    else return values[0];
}

// ---- sizes and checks ----

TEST(MorphAdvChecks, SizesFollowTheDilationState) {
    for (ZebiSize roi : {ZebiSize{1, 1}, ZebiSize{640, 480}, ZebiSize{37, 5}})
        for (ZebiSize m : {ZebiSize{1, 1}, ZebiSize{3, 3}, ZebiSize{7, 2}}) {
            int s = 0, b = 0, spec = 0, buf = 0;
            ASSERT_EQ(zebiMorphologyBorderGetSize_8u_C1R(roi.width, m, &s, &b), 0);
            ASSERT_EQ(zebiMorphAdvGetSize_8u_C1R(roi, m, &spec, &buf), 0);
            EXPECT_EQ(spec, 2 * s + 32);
            EXPECT_EQ(buf, 2 * b + (roi.width + m.width - 1 + 31) / 32 * 32 * (roi.height + m.height - 1));
        }
    struct S {
        ZebiSize roi, mask;
        int *spec, *buf;
    };
    zt::checks::run(Table<S>{
        "zebiMorphAdvGetSize_16s_C1R",
        [](Arena& m) { return S{{9, 4}, {3, 3}, m.array<int>("spec size", 1), m.array<int>("buffer size", 1)}; },
        [](int v, S& a) { return zeb_tbl_zebiMorphAdvGetSize_16s_C1R[v](a.roi, a.mask, a.spec, a.buf); },
        {{"null spec size, height 0", [](S& a) { a.spec = nullptr, a.roi.height = 0; }, -8},
         {"null buffer size", [](S& a) { a.buf = nullptr; }, -8},
         {"height 0", [](S& a) { a.roi.height = 0; }, -6},
         {"mask width 0", [](S& a) { a.mask.width = 0; }, -6},
         {"40000 x 40000", [](S& a) { a.roi = {40000, 40000}; }, -6}}});
    struct I {
        ZebiSize roi;
        const Zeb8u* mask;
        ZebiSize ms;
        unsigned char *spec, *buf;
    };
    zt::checks::run(Table<I>{
        "zebiMorphAdvInit_32f_C3R",
        [](Arena& m) {
            int sb = 0, bb = 0;
            EXPECT_EQ(zebiMorphAdvGetSize_32f_C3R({9, 4}, {3, 2}, &sb, &bb), 0);
            return I{{9, 4}, m.array<Zeb8u>("mask", 6), {3, 2}, m.block("spec", sb), m.block("buffer", bb)};
        },
        [](int v, I& a) {
            return zeb_tbl_zebiMorphAdvInit_32f_C3R[v](a.roi, a.mask, a.ms, reinterpret_cast<ZebiMorphAdvState*>(a.spec),
                                                       a.buf);
        },
        {{"null mask, width 0", [](I& a) { a.mask = nullptr, a.roi.width = 0; }, -8},
         {"null spec", [](I& a) { a.spec = nullptr; }, -8},
         {"null buffer", [](I& a) { a.buf = nullptr; }, -8},
         {"width 0", [](I& a) { a.roi.width = 0; }, -6},
         {"mask height -1", [](I& a) { a.ms.height = -1; }, -6}}});
}

template <class T, class BV>
struct OArgs {
    const T* src;
    int ss;
    T* dst;
    int ds;
    ZebiSize roi;
    int bt;
    const T* value;
    unsigned char *spec, *buf;
};

template <class T, class BV, class L>
void op_checks(const L& l, int ch, bool bits) {
    static constexpr ZebiSize roi{13, 5};
    const int row = bits ? 2 : roi.width * ch * int(sizeof(T));
    for (int k = 0; k < 5; ++k) {
        using A = OArgs<T, BV>;
        std::vector<zt::checks::Case<A>> cases = {
            {"null src, width 0, border 0", [](A& a) { a.src = nullptr, a.roi.width = 0, a.bt = 0; }, -8},
            {"null dst", [](A& a) { a.dst = nullptr; }, -8},
            {"null spec", [](A& a) { a.spec = nullptr; }, -8},
            {"null buffer", [](A& a) { a.buf = nullptr; }, -8},
            {"height 0, short step", [row](A& a) { a.roi.height = 0, a.ss = row - 1; }, -6},
            {"dst step short, border 0", [row](A& a) { a.ds = row - 1, a.bt = 0; }, -14},
            {"odd step, border 2", [](A& a) { a.ss += 1, a.bt = 2; }, sizeof(T) == 1 ? -225 : -108},
            {"border 0, taller", [](A& a) { a.bt = 0, a.roi.height += 1; }, -225},
            {"taller than the state", [](A& a) { a.roi.height += 1; }, -5},
            {"wider than the state", [bits](A& a) { a.roi.width += bits ? 8 : 1, a.ss += 16, a.ds += 16; }, -5},
            {"border 1 with flags", [](A& a) { a.bt = 1 | 64; }, 0},
            {"narrower", [](A& a) { a.roi.width -= 4; }, 0}};
        if (std::is_pointer_v<BV>) cases.push_back({"null border values", [](A& a) { a.value = nullptr; }, -8});
        zt::checks::run(Table<A>{
            std::string(kOpNames[k]) + " " + l.name,
            [&l, ch, bits](Arena& m) {
                int sb = 0, bb = 0;
                EXPECT_EQ(l.size[0](roi, {3, 3}, &sb, &bb), 0);
                const int w = bits ? 2 : roi.width;
                auto src = m.image<T>("src", w, roi.height + 1, bits ? 1 : ch, 16);
                auto dst = m.image<T>("dst", w, roi.height + 1, bits ? 1 : ch, 16);
                A a{src.ptr, src.step, dst.ptr, dst.step, roi, 1, m.array<T>("border values", 4),
                    m.block("spec", sb), m.block("buffer", bb)};
                const Zeb8u mask[9] = {1, 1, 0, 1, 1, 1, 0, 1, 1};
                EXPECT_EQ(l.init[0](roi, mask, {3, 3}, reinterpret_cast<ZebiMorphAdvState*>(a.spec), a.buf), 0);
                return a;
            },
            [&l, k](int v, A& a) {
                BV bv{};
                if constexpr (std::is_pointer_v<BV>) bv = a.value;
                return l.ops[k][v](a.src, a.ss, a.dst, a.ds, a.roi, a.bt, bv,
                                   reinterpret_cast<const ZebiMorphAdvState*>(a.spec), a.buf);
            },
            cases});
    }
}

TEST(MorphAdvChecks, EveryOperationInOrder) {
#define ZT_CHECKS(suf, T, ch) op_checks<T, decltype(zt_border_arg(zebiMorphOpenBorder_##suf))>(ZT_LAYOUT(suf), ch, false);
    ZT_LAYOUTS(ZT_CHECKS)
#undef ZT_CHECKS
    op_checks<Zeb8u, Zeb8u>(ZT_LAYOUT(1u_C1R), 1, true);
}

// ---- results ----

std::vector<cv::Mat> masks() {
    cv::Mat odd = (cv::Mat_<uchar>(3, 4) << 1, 0, 0, 1, 0, 1, 1, 0, 1, 1, 0, 1);
    return {cv::getStructuringElement(cv::MORPH_RECT, {3, 3}), cv::getStructuringElement(cv::MORPH_ELLIPSE, {5, 5}),
            cv::getStructuringElement(cv::MORPH_CROSS, {3, 3}), odd, cv::Mat::ones(1, 2, CV_8U)};
}

// Every operation of one layout on src with a replicated border against
// OpenCV, and with the border in memory against OpenCV on the ROI
// widened by the mask on every side (whose centre no border reaches).
template <class T, class BV, class L>
void expect_opencv(const L& l, const Image<T>& src, const std::string& what) {
    const int w = src.width(), h = src.height(), ch = src.channels();
    const T values[4] = {};
    for (const cv::Mat& m : masks()) {
        const cv::Point anchor((m.cols - 1) / 2, (m.rows - 1) / 2);
        Prepared p = prepare(l, {w, h}, m);
        for (int k = 0; k < 5; ++k)
            for (int v = 0; v < 2; ++v) {
                Image<T> dst(w, h, ch, int(sizeof(T)) * (w % 3));
                ASSERT_EQ(l.ops[k][v](src.ptr(), src.step(), dst.ptr(), dst.step(), {w, h}, 1, border_value<BV>(values),
                                      p.s(), p.buf.data()),
                          0);
                cv::Mat want;
                cv::morphologyEx(src.mat(), want, kOps[k], m, anchor, 1, cv::BORDER_REPLICATE);
                EXPECT_EQ(cv::norm(want, dst.mat(), cv::NORM_INF), 0)
                    << l.name << " " << kOpNames[k] << " " << what << " mask " << m.cols << "x" << m.rows << " variant " << v;
            }
        // In memory: the ROI sits inside src with a margin of the mask size.
        const zt::Margin mg = src.margin();
        if (mg.x < m.cols || mg.y < m.rows) continue;
        for (int k = 0; k < 5; ++k) {
            Image<T> dst(w, h, ch);
            ASSERT_EQ(l.ops[k][0](src.ptr(), src.step(), dst.ptr(), dst.step(), {w, h}, 6, border_value<BV>(values),
                                  p.s(), p.buf.data()),
                      0);
            const cv::Mat crop = src.outer_mat()(cv::Rect(mg.x - m.cols, mg.y - m.rows, w + 2 * m.cols, h + 2 * m.rows));
            cv::Mat want;
            cv::morphologyEx(crop, want, kOps[k], m, anchor, 1, cv::BORDER_REPLICATE);
            EXPECT_EQ(cv::norm(want(cv::Rect(m.cols, m.rows, w, h)), dst.mat(), cv::NORM_INF), 0)
                << l.name << " " << kOpNames[k] << " in memory, " << what << " mask " << m.cols << "x" << m.rows;
        }
    }
}

template <class T, class BV, class L>
void sweep(const L& l, int ch) {
    for (auto [w, h] : {std::pair{1, 1}, {2, 7}, {17, 3}, {40, 13}, {131, 9}}) {
        Image<T> src(w, h, ch, int(sizeof(T)) * (h % 2), zt::Margin{6, 6});
        if constexpr (std::is_floating_point_v<T>)  // finite values in a range where differences stay exact
            src.outer_mat().template forEach<T>([](T& x, const int*) { x = T(std::nearbyint(x)); });
        src.remember_padding();
        expect_opencv<T, BV>(l, src, "noise " + std::to_string(w) + "x" + std::to_string(h));
    }
    const cv::Mat photo = zt::photo(ch == 1 ? "building.jpg" : "baboon.jpg", ch == 1 ? cv::IMREAD_GRAYSCALE : cv::IMREAD_COLOR);
    ASSERT_FALSE(photo.empty());
    cv::Mat small, scaled;
    cv::resize(photo, small, {160, 120}, 0, 0, cv::INTER_AREA);
    if (ch == 4) cv::cvtColor(small, small, cv::COLOR_BGR2BGRA);
    small.convertTo(scaled, CV_MAKETYPE(CV_64F, ch), std::is_same_v<T, Zeb8u> || std::is_floating_point_v<T> ? 1 : 200,
                    std::is_same_v<T, Zeb16s> ? -25000 : 0);
    expect_opencv<T, BV>(l, zt::image_of<T>(scaled, 2 * int(sizeof(T))), "photograph");
}

ZT_TARGET_SUITE(MorphAdv);

TEST_P(MorphAdv, EveryMemberMatchesOpenCV) {
#define ZT_SWEEP(suf, T, ch) sweep<T, decltype(zt_border_arg(zebiMorphOpenBorder_##suf))>(ZT_LAYOUT(suf), ch);
    ZT_LAYOUTS(ZT_SWEEP)
#undef ZT_SWEEP
}

// Bit images against the 8-bit forms on the same 0/255 image: every
// operation, both borders; the bits past the ROI width keep their value.
TEST_P(MorphAdv, BitImagesMatchTheByteForms) {
    const auto bits = ZT_LAYOUT(1u_C1R);
    const auto bytes = ZT_LAYOUT(8u_C1R);
    for (int w : {1, 9, 30, 77})
        for (const cv::Mat& m : masks()) {
            const int h = 11, mx = (2 * m.cols + 15) / 8 * 8, my = m.rows;
            // The byte image with its margin, and its packed copy; the ROI
            // starts at a byte of the packed image.
            const int ow = w + 2 * mx, oh = h + 2 * my, bstep = (ow + 7) / 8 + 3;
            std::vector<Zeb8u> packed(std::size_t(bstep) * oh);
            Image<Zeb8u> big(w, h, 1, 0, zt::Margin{mx, my});
            cv::Mat outer = big.outer_mat();
            for (int y = 0; y < oh; ++y)
                for (int x = 0; x < ow; ++x) {
                    const bool on = (zt::rng()() % 3) != 0;
                    outer.at<uchar>(y, x) = on ? 255 : 0;
                    if (on) packed[std::size_t(y) * bstep + x / 8] |= uint8_t(0x80 >> (x % 8));
                }
            big.remember_padding();
            const Zeb8u* bsrc = packed.data() + std::size_t(my) * bstep + mx / 8;
            Prepared pb = prepare(bits, {w, h}, m), p8 = prepare(bytes, {w, h}, m);
            for (int k = 0; k < 5; ++k)
                for (int bt : {1, 6}) {
                    Image<Zeb8u> d8(w, h);
                    std::vector<Zeb8u> d1(std::size_t(bstep) * h, 0x5a);
                    ASSERT_EQ(bytes.ops[k][0](big.ptr(), big.step(), d8.ptr(), d8.step(), {w, h}, bt, 0, p8.s(), p8.buf.data()), 0);
                    ASSERT_EQ(bits.ops[k][1](bsrc, bstep, d1.data(), bstep, {w, h}, bt, 0, pb.s(), pb.buf.data()), 0);
                    for (int y = 0; y < h; ++y)
                        for (int x = 0; x < bstep * 8; ++x) {
                            const int bit = (d1[std::size_t(y) * bstep + x / 8] >> (7 - x % 8)) & 1;
                            const int want = x < w ? d8.at(x, y) != 0 : (0x5a >> (7 - x % 8)) & 1;
                            ASSERT_EQ(bit, want) << kOpNames[k] << " border " << bt << " w=" << w << " mask " << m.cols
                                                 << "x" << m.rows << " at " << x << "," << y;
                        }
                }
        }
}

// A state from InitAlloc gives the results of one built in caller memory;
// a failed allocation gives -9 and leaves nothing allocated.
TEST_P(MorphAdv, AllocatedStates) {
    const cv::Mat m = masks()[1];
    Image<Zeb8u> src(45, 17, 3), d1(45, 17, 3), d2(45, 17, 3);
    ZebiMorphAdvState* s = nullptr;
    ASSERT_EQ(zebiMorphAdvInitAlloc_8u_C3R({45, 17}, m.data, {m.cols, m.rows}, &s), 0);
    Prepared p = prepare(ZT_LAYOUT(8u_C3R), {45, 17}, m);
    const Zeb8u value[3] = {};
    EXPECT_EQ(zebiMorphTophatBorder_8u_C3R(src.ptr(), src.step(), d1.ptr(), d1.step(), {45, 17}, 1, value, s, p.buf.data()), 0);
    EXPECT_EQ(zebiMorphTophatBorder_8u_C3R(src.ptr(), src.step(), d2.ptr(), d2.step(), {45, 17}, 1, value, p.s(), p.buf.data()), 0);
    EXPECT_EQ(d1.pixels(), d2.pixels());
    EXPECT_EQ(zebiMorphAdvFree(s), 0);
    EXPECT_EQ(zebiMorphAdvFree(nullptr), -8);
    const int64_t live = zebTestLiveBlocks();
    zebTestFailMallocAt(1);
    ZebiMorphAdvState* none = nullptr;
    EXPECT_EQ(zebiMorphAdvInitAlloc_32f_C1R({45, 17}, m.data, {m.cols, m.rows}, &none), -9);
    zebTestFailMallocAt(0);
    EXPECT_EQ(none, nullptr);
    EXPECT_EQ(zebTestLiveBlocks(), live);
    // Every allocating member makes a state that frees.
    for (auto f : {zebiMorphAdvInitAlloc_8u_C1R, zebiMorphAdvInitAlloc_8u_C4R, zebiMorphAdvInitAlloc_32f_C3R,
                   zebiMorphAdvInitAlloc_32f_C4R}) {
        ZebiMorphAdvState* t = nullptr;
        ASSERT_EQ(f({8, 8}, m.data, {m.cols, m.rows}, &t), 0);
        EXPECT_EQ(zebiMorphAdvFree(t), 0);
    }
}

}  // namespace
