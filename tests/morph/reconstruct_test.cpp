// SPDX-License-Identifier: Apache-2.0
// Morphological reconstruction: argument checks with canaries, and every
// member through both variants on every vector target against the plain
// definition (repeat marker = shrink(grow over the neighbourhood, mask)
// until nothing changes) on random scenes and photographs.
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <opencv2/imgproc.hpp>

#include "check_table.h"
#include "harness.h"

// One line per member: export, pixel type, dilation (1) or erosion (0),
// and its typed buffer-size query.
#define ZT_MEMBERS(X)                                                                   \
    X(zebiMorphReconstructDilate_8u_C1IR, Zeb8u, 1, zebiMorphReconstructGetBufferSize_8u_C1)    \
    X(zebiMorphReconstructDilate_16u_C1IR, Zeb16u, 1, zebiMorphReconstructGetBufferSize_16u_C1) \
    X(zebiMorphReconstructDilate_32f_C1IR, Zeb32f, 1, zebiMorphReconstructGetBufferSize_32f_C1) \
    X(zebiMorphReconstructDilate_64f_C1IR, Zeb64f, 1, zebiMorphReconstructGetBufferSize_64f_C1) \
    X(zebiMorphReconstructErode_8u_C1IR, Zeb8u, 0, zebiMorphReconstructGetBufferSize_8u_C1)     \
    X(zebiMorphReconstructErode_16u_C1IR, Zeb16u, 0, zebiMorphReconstructGetBufferSize_16u_C1)  \
    X(zebiMorphReconstructErode_32f_C1IR, Zeb32f, 0, zebiMorphReconstructGetBufferSize_32f_C1)  \
    X(zebiMorphReconstructErode_64f_C1IR, Zeb64f, 0, zebiMorphReconstructGetBufferSize_64f_C1)

#define ZT_DECLARE(fn, T, dil, size) ZEB_TEST_TABLE(fn);
ZT_MEMBERS(ZT_DECLARE)
#undef ZT_DECLARE
ZEB_TEST_TABLE(zebiMorphReconstructGetBufferSize);
ZEB_TEST_TABLE(zebiMorphReconstructGetBufferSize_8u_C1);
ZEB_TEST_TABLE(zebiMorphReconstructGetBufferSize_16u_C1);
ZEB_TEST_TABLE(zebiMorphReconstructGetBufferSize_32f_C1);
ZEB_TEST_TABLE(zebiMorphReconstructGetBufferSize_64f_C1);

namespace {

using zt::Image;
using zt::checks::Arena;
using zt::checks::Table;

// The documented sizes, independently: per type the bytes of the four rows
// and the fixed slack.
TEST(ReconstructSizes, QueriesGiveTheDocumentedSizes) {
    struct S {
        ZebiSize roi;
        int type, ch;
        int* size;
    };
    zt::checks::run(Table<S>{
        "zebiMorphReconstructGetBufferSize",
        [](Arena& m) { return S{{17, 5}, zeb8u, 1, m.array<int>("size", 1)}; },
        [](int v, S& a) { return zeb_tbl_zebiMorphReconstructGetBufferSize[v](a.roi, a.type, a.ch, a.size); },
        {{"null size, width 0, type 3", [](S& a) { a.size = nullptr, a.roi.width = 0, a.type = 3; }, -8},
         {"height 0, three channels", [](S& a) { a.roi.height = 0, a.ch = 3; }, -6},
         {"type 8s, three channels", [](S& a) { a.type = zeb8s, a.ch = 3; }, -12},
         {"type 16s", [](S& a) { a.type = zeb16s; }, -12},
         {"three channels", [](S& a) { a.ch = 3; }, -53},
         {"64f", [](S& a) { a.type = 19; }, 0},
         {"width 2^26, 64f", [](S& a) { a.roi.width = 1 << 26, a.type = 19; }, -6}}});
    struct Q {
        ZebiSize roi;
        int* size;
    };
    using Query = ZebStatus (*const*)(ZebiSize, int*);
    const struct {
        const char* name;
        Query tbl;
        int type, perW, perH, fixed;
    } typed[] = {{"_8u_C1", zeb_tbl_zebiMorphReconstructGetBufferSize_8u_C1, zeb8u, 4, 1, 161},
                 {"_16u_C1", zeb_tbl_zebiMorphReconstructGetBufferSize_16u_C1, zeb16u, 8, 2, 322},
                 {"_32f_C1", zeb_tbl_zebiMorphReconstructGetBufferSize_32f_C1, zeb32f, 16, 1, 164},
                 {"_64f_C1", zeb_tbl_zebiMorphReconstructGetBufferSize_64f_C1, 19, 32, 1, 168}};
    for (const auto& t : typed) {
        zt::checks::run(Table<Q>{
            t.name, [](Arena& m) { return Q{{17, 5}, m.array<int>("size", 1)}; },
            [&t](int v, Q& a) { return t.tbl[v](a.roi, a.size); },
            {{"null size, width 0", [](Q& a) { a.size = nullptr, a.roi.width = 0; }, -8},
             {"height -1", [](Q& a) { a.roi.height = -1; }, -6},
             {"width INT_MAX", [](Q& a) { a.roi.width = INT_MAX; }, -6}}});
        for (ZebiSize roi : {ZebiSize{1, 1}, ZebiSize{1920, 1080}, ZebiSize{33, 7}}) {
            int a = 0, b = 0;
            ASSERT_EQ(t.tbl[0](roi, &a), 0);
            ASSERT_EQ(zebiMorphReconstructGetBufferSize(roi, t.type, 1, &b), 0);
            EXPECT_EQ(a, t.perW * roi.width + t.perH * roi.height + t.fixed) << t.name;
            EXPECT_EQ(a, b) << t.name;
        }
    }
}

template <class T>
struct RArgs {
    const T* mask;
    int ms;
    T* marker;
    int js;
    ZebiSize roi;
    Zeb8u* buf;
    int norm;
};

template <class T, class Fn, class Query>
void reconstruct_checks(const char* name, Fn* const* tbl, Query query) {
    using A = RArgs<T>;
    static constexpr ZebiSize roi{11, 6};
    const int row = roi.width * int(sizeof(T));
    zt::checks::run(Table<A>{
        name,
        [query](Arena& m) {
            int bytes = 0;
            EXPECT_EQ(query(roi, &bytes), 0);
            auto mask = m.image<T>("mask", roi.width, roi.height, 1, 8);
            auto marker = m.image<T>("marker", roi.width, roi.height, 1, 8);
            return A{mask.ptr, mask.step, marker.ptr, marker.step, roi, m.block("buffer", bytes), 1};
        },
        [tbl](int v, A& a) { return tbl[v](a.mask, a.ms, a.marker, a.js, a.roi, a.buf, a.norm); },
        {{"null mask, width 0, norm 2", [](A& a) { a.mask = nullptr, a.roi.width = 0, a.norm = 2; }, -8},
         {"null marker", [](A& a) { a.marker = nullptr; }, -8},
         {"null buffer", [](A& a) { a.buf = nullptr; }, -8},
         {"height 0, short step, norm 2", [row](A& a) { a.roi.height = 0, a.ms = row - 1, a.norm = 2; }, -6},
         {"marker step one sample short, norm -1", [row](A& a) { a.js = row - int(sizeof(T)), a.norm = -1; }, -14},
         {"odd step, norm 2", [](A& a) { a.ms += 1, a.norm = 2; }, sizeof(T) == 1 ? -5 : -108},
         {"norm 2", [](A& a) { a.norm = 2; }, -5},
         {"norm 0", [](A& a) { a.norm = 0; }, 0},
         {"1x1", [](A& a) { a.roi = {1, 1}; }, 0}}});
}

TEST(ReconstructChecks, EveryMemberInOrder) {
#define ZT_CHECKS(fn, T, dil, size) reconstruct_checks<T>(#fn, zeb_tbl_##fn, size);
    ZT_MEMBERS(ZT_CHECKS)
#undef ZT_CHECKS
}

// ---- the definition ----

template <bool kDil, class T>
T grow(T a, T b) {
    return kDil ? std::max(a, b) : std::min(a, b);
}

// Marker and mask as row-major vectors; the reconstruction by repeating
// J = shrink(grow of J over the point and its neighbours, I) from
// shrink(J, I) until nothing changes.
template <class T, bool kDil>
std::vector<T> definition(const std::vector<T>& I, std::vector<T> J, int w, int h, bool eight) {
    for (std::size_t i = 0; i < J.size(); ++i) J[i] = grow<!kDil>(J[i], I[i]);
    for (std::vector<T> K(J.size());; J.swap(K)) {
        for (int y = 0; y < h; ++y)
            for (int x = 0; x < w; ++x) {
                T v = J[std::size_t(y) * w + x];
                for (int dy = -1; dy <= 1; ++dy)
                    for (int dx = -1; dx <= 1; ++dx) {
                        const int xx = x + dx, yy = y + dy;
                        if (xx < 0 || yy < 0 || xx >= w || yy >= h || (!eight && dx && dy)) continue;
                        v = grow<kDil>(v, J[std::size_t(yy) * w + xx]);
                    }
                K[std::size_t(y) * w + x] = grow<!kDil>(v, I[std::size_t(y) * w + x]);
            }
        if (K == J) return J;
    }
}

// Runs a member on guarded copies of mask and marker and compares with the
// definition, bit for bit.
template <class T, bool kDil, class Fn, class Query>
void expect_definition(const char* name, Fn* const* tbl, Query query, const Image<T>& mask,
                       const std::vector<T>& marker0, int variant, int norm, const char* scene) {
    const int w = mask.width(), h = mask.height();
    Image<T> marker(w, h, 1, int(sizeof(T)) * ((w + norm) % 3));
    for (int y = 0; y < h; ++y) std::copy_n(&marker0[std::size_t(y) * w], w, marker.row(y));
    int bytes = 0;
    ASSERT_EQ(query(ZebiSize{w, h}, &bytes), 0);
    zt::Guarded buf = zt::work_buffer(bytes);
    ASSERT_EQ(tbl[variant](mask.ptr(), mask.step(), marker.ptr(), marker.step(), {w, h}, buf.data(), norm), 0);
    const std::vector<T> want = definition<T, kDil>(mask.pixels(), marker0, w, h, norm == 1);
    const std::vector<T> got = marker.pixels();
    for (std::size_t i = 0; i < want.size(); ++i)
        ASSERT_EQ(std::memcmp(&want[i], &got[i], sizeof(T)), 0)
            << name << " " << scene << " variant " << variant << " norm " << norm << " " << w << "x" << h
            << " at x=" << i % w << " y=" << i / w << ": want " << +want[i] << " got " << +got[i];
}

// Scenes: a random mask with a few seeds (long propagation paths through
// the random mask), the mask itself as marker (nothing to do), a marker
// of the mask shifted by a constant with random values above the mask
// (clamped first), and a photograph with the usual dome setup.
template <class T, bool kDil, class Fn, class Query>
void sweep(const char* name, Fn* const* tbl, Query query) {
    const T lo = std::is_floating_point_v<T> ? T(-1000) : T(0);
    const T hi = std::is_floating_point_v<T> ? T(1000) : std::numeric_limits<T>::max();
    const T far = kDil ? lo : hi;  // the value that never spreads
    const cv::Mat photo = zt::photo("baboon.jpg", cv::IMREAD_GRAYSCALE);
    ASSERT_FALSE(photo.empty());
    cv::Mat small;
    cv::resize(photo, small, cv::Size(96, 80), 0, 0, cv::INTER_AREA);
    const double scale = sizeof(T) == 1 ? 1 : std::is_same_v<T, Zeb16u> ? 257 : 3.5;
    for (int v = 0; v < 2; ++v)
        for (int norm = 0; norm < 2; ++norm) {
            for (auto [w, h] : {std::pair{1, 1}, {1, 9}, {17, 1}, {7, 5}, {33, 23}, {67, 19}}) {
                Image<T> mask(w, h, 1, int(sizeof(T)) * (w % 4));
                std::vector<T> seeds(std::size_t(w) * h, far);
                for (int k = 0; k < 1 + w * h / 40; ++k) seeds[zt::rng()() % seeds.size()] = zt::random_value<T>();
                expect_definition<T, kDil>(name, tbl, query, mask, seeds, v, norm, "seeds");
                expect_definition<T, kDil>(name, tbl, query, mask, mask.pixels(), v, norm, "marker = mask");
                std::vector<T> shifted = mask.pixels();
                for (T& s : shifted) s = zt::rng()() % 5 == 0 ? zt::random_value<T>() : grow<!kDil>(s, T(s - (kDil ? 1 : -1) * T(3)));
                expect_definition<T, kDil>(name, tbl, query, mask, shifted, v, norm, "shifted, some above");
            }
            cv::Mat scaled;
            small.convertTo(scaled, CV_64F, scale);
            const Image<T> mask = zt::image_of<T>(scaled, 3 * int(sizeof(T)));
            std::vector<T> dome = mask.pixels();
            const double hdome = 20 * scale;
            for (T& s : dome) s = T(kDil ? std::max<double>(double(s) - hdome, 0) : std::min<double>(double(s) + hdome, double(hi)));
            expect_definition<T, kDil>(name, tbl, query, mask, dome, v, norm, "photograph dome");
        }
}

ZT_TARGET_SUITE(Reconstruct);

TEST_P(Reconstruct, EveryMemberMatchesTheDefinition) {
#define ZT_SWEEP(fn, T, dil, size) sweep<T, dil>(#fn, zeb_tbl_##fn, size);
    ZT_MEMBERS(ZT_SWEEP)
#undef ZT_SWEEP
}

// A single seed under a constant mask floods the whole image; a diagonal
// chain of mask pixels carries a seed only through the 8-neighbourhood.
TEST_P(Reconstruct, FloodAndDiagonalChain) {
    const int w = 41, h = 29;
    Image<Zeb8u> mask(w, h);
    mask.fill(255);
    int bytes = 0;
    ASSERT_EQ(zebiMorphReconstructGetBufferSize_8u_C1({w, h}, &bytes), 0);
    zt::Guarded buf = zt::work_buffer(bytes);
    for (int v = 0; v < 2; ++v) {
        Image<Zeb8u> marker(w, h, 1, 3);
        marker.fill(0);
        marker.at(w - 2, h - 3) = 255;
        ASSERT_EQ(zeb_tbl_zebiMorphReconstructDilate_8u_C1IR[v](mask.ptr(), mask.step(), marker.ptr(), marker.step(),
                                                                 {w, h}, buf.data(), 0), 0);
        EXPECT_EQ(marker.pixels(), std::vector<Zeb8u>(std::size_t(w) * h, 255));
    }
    Image<Zeb8u> chain(w, h);
    chain.fill(0);
    for (int i = 0; i < h; ++i) chain.at(i, i) = 200;
    for (int norm = 0; norm < 2; ++norm) {
        Image<Zeb8u> marker(w, h);
        marker.fill(0);
        marker.at(0, 0) = 255;
        ASSERT_EQ(zebiMorphReconstructDilate_8u_C1IR(chain.ptr(), chain.step(), marker.ptr(), marker.step(), {w, h},
                                                      buf.data(), norm), 0);
        EXPECT_EQ(int(marker.at(h - 1, h - 1)), norm == 1 ? 200 : 0) << "norm " << norm;
        EXPECT_EQ(int(marker.at(0, 0)), 200);
    }
}

}  // namespace
