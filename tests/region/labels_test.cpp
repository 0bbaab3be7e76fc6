// SPDX-License-Identifier: Apache-2.0
// Marker labelling, speckle marking and segment bounds: argument checks
// with canaries; labels against OpenCV's connectedComponents (the same
// partition and count, labels in raster order of the regions' first
// pixels, wrapping); speckles bit for bit against OpenCV's filterSpeckles
// (16s, and the other types through the same values); bounds on the cases
// whose answer is plain.
#include <gtest/gtest.h>

#include <map>
#include <opencv2/calib3d.hpp>
#include <opencv2/imgproc.hpp>

#include "check_table.h"
#include "harness.h"

ZEB_TEST_TABLE(zebiLabelMarkersGetBufferSize_8u_C1R);
ZEB_TEST_TABLE(zebiLabelMarkersGetBufferSize_16u_C1R);
ZEB_TEST_TABLE(zebiLabelMarkersGetBufferSize_8u32s_C1R);
ZEB_TEST_TABLE(zebiLabelMarkers_8u_C1IR);
ZEB_TEST_TABLE(zebiLabelMarkers_16u_C1IR);
ZEB_TEST_TABLE(zebiLabelMarkers_8u32s_C1R);
ZEB_TEST_TABLE(zebiMarkSpecklesGetBufferSize);
ZEB_TEST_TABLE(zebiMarkSpeckles_8u_C1IR);
ZEB_TEST_TABLE(zebiMarkSpeckles_16u_C1IR);
ZEB_TEST_TABLE(zebiMarkSpeckles_16s_C1IR);
ZEB_TEST_TABLE(zebiMarkSpeckles_32f_C1IR);
ZEB_TEST_TABLE(zebiBoundSegments_8u_C1IR);
ZEB_TEST_TABLE(zebiBoundSegments_16u_C1IR);

namespace {

using zt::Image;
using zt::checks::Arena;

ZT_TARGET_SUITE(Labels);
ZT_TARGET_SUITE(Speckles);
ZT_TARGET_SUITE(Bounds);

// ---- Labelling ----

// One labelling call on one image: src (8-bit markers) in, labels out as
// 32-bit values.
using LabelCall = std::function<ZebStatus(int v, const cv::Mat& src, cv::Mat& labels, int lo, int hi, int norm,
                                          int* n)>;

template <class M>
LabelCall in_place(decltype(&zebiLabelMarkers_16u_C1IR) const* tbl16, decltype(&zebiLabelMarkers_8u_C1IR) const* tbl8) {
    return [=](int v, const cv::Mat& src, cv::Mat& labels, int lo, int hi, int norm, int* n) {
        Image<M> img = zt::image_of<M>(src, 2 * sizeof(M));
        int bytes = 0;
        EXPECT_EQ(zebiLabelMarkersGetBufferSize_16u_C1R(img.size(), &bytes), zebStsNoErr);
        zt::Guarded buf = zt::work_buffer(bytes);
        ZebStatus s;
        if constexpr (sizeof(M) == 2)
            s = tbl16[v](img.ptr(), img.step(), img.size(), lo, hi, norm, n, buf.data());
        else
            s = tbl8[v](img.ptr(), img.step(), img.size(), lo, hi, norm, n, buf.data());
        img.mat().convertTo(labels, CV_32S);
        return s;
    };
}

const std::vector<std::pair<std::string, LabelCall>>& label_members() {
    static const std::vector<std::pair<std::string, LabelCall>> m = {
        {"zebiLabelMarkers_16u_C1IR", in_place<Zeb16u>(zeb_tbl_zebiLabelMarkers_16u_C1IR, nullptr)},
        {"zebiLabelMarkers_8u_C1IR", in_place<Zeb8u>(nullptr, zeb_tbl_zebiLabelMarkers_8u_C1IR)},
        {"zebiLabelMarkers_8u32s_C1R",
         [](int v, const cv::Mat& src, cv::Mat& labels, int lo, int hi, int norm, int* n) {
             Image<Zeb8u> s = zt::image_of<Zeb8u>(src, 3);
             Image<Zeb32s> d(src.cols, src.rows, 1, 8);
             int bytes = 0;
             EXPECT_EQ(zebiLabelMarkersGetBufferSize_8u32s_C1R(s.size(), &bytes), zebStsNoErr);
             zt::Guarded buf = zt::work_buffer(bytes);
             const ZebStatus st = zeb_tbl_zebiLabelMarkers_8u32s_C1R[v](s.ptr(), s.step(), d.ptr(), d.step(),
                                                                         s.size(), lo, hi, norm, n, buf.data());
             EXPECT_EQ(cv::norm(s.mat(), src, cv::NORM_INF), 0) << "the source changed";
             labels = d.mat().clone();
             return st;
         }},
    };
    return m;
}

// Whether `ours` is `theirs` up to renaming, with labels numbered from
// `first` in raster order of each region's first pixel.
void expect_same_partition(const cv::Mat& ours, const cv::Mat& theirs, int first, const std::string& what) {
    std::map<int, int> fwd, back;
    int next = first, bad = 0;
    for (int y = 0; y < ours.rows; ++y)
        for (int x = 0; x < ours.cols; ++x) {
            const int a = ours.at<int>(y, x), b = theirs.at<int>(y, x);
            if ((a == 0) != (b == 0)) {
                ++bad;
                continue;
            }
            if (b == 0) continue;
            if (!back.count(b)) {
                back[b] = a;
                if (a != next) ++bad;
                ++next;
            }
            if (back[b] != a || (fwd.count(a) && fwd[a] != b)) ++bad;
            fwd[a] = b;
        }
    EXPECT_EQ(bad, 0) << what;
}

TEST_P(Labels, SamePartitionAsOpenCV) {
    const cv::Mat photo = zt::photo("building.jpg", cv::IMREAD_GRAYSCALE);
    ASSERT_FALSE(photo.empty());
    cv::Mat edges;
    cv::Canny(photo, edges, 80, 160);
    std::vector<cv::Mat> images = {edges, 255 - edges};
    for (double p : {0.45, 0.6}) {
        cv::Mat noise(83, 97, CV_8U);
        cv::randu(noise, 0, 100);
        images.push_back(noise < p * 100);
    }
    for (const auto& [name, call] : label_members())
        for (const cv::Mat& img : images)
            for (int norm : {0, 1}) {
                cv::Mat theirs;
                const int want = cv::connectedComponents(img, theirs, norm == 0 ? 8 : 4, CV_32S) - 1;
                // 8-bit labels hold 254 regions: larger images check the count only.
                const bool fits = name != "zebiLabelMarkers_8u_C1IR" || want <= 254;
                for (int v = 0; v < 2; ++v) {
                    cv::Mat ours;
                    int n = -1;
                    ASSERT_EQ(call(v, img, ours, 1, name == "zebiLabelMarkers_8u_C1IR" ? 254 : 65534, norm, &n),
                              zebStsNoErr);
                    EXPECT_EQ(n, want) << name;
                    if (fits)
                        expect_same_partition(ours, theirs, 1, name + " " + std::to_string(img.cols) + " norm " +
                                                                   std::to_string(norm));
                }
            }
}

TEST_P(Labels, LabelsWrapAndStillCount) {
    cv::Mat img(40, 50, CV_8U);
    cv::randu(img, 0, 100);
    img = img < 40;
    cv::Mat theirs;
    const int want = cv::connectedComponents(img, theirs, 4, CV_32S) - 1;
    ASSERT_GT(want, 20);
    for (const auto& [name, call] : label_members())
        for (int v = 0; v < 2; ++v) {
            cv::Mat ours;
            int n = -1;
            // One label for all regions.
            ASSERT_EQ(call(v, img, ours, 7, 7, 1, &n), zebStsNoErr);
            EXPECT_EQ(n, want) << name;
            EXPECT_EQ(cv::countNonZero(ours == 7), cv::countNonZero(img)) << name;
            // Labels 3..5 repeat every three regions in raster order.
            ASSERT_EQ(call(v, img, ours, 3, 5, 1, &n), zebStsNoErr);
            std::map<int, int> seen;
            int bad = 0;
            for (int y = 0; y < img.rows; ++y)
                for (int x = 0; x < img.cols; ++x) {
                    const int t = theirs.at<int>(y, x);
                    if (t && !seen.count(t)) seen[t] = int(seen.size());
                    if (t) bad += ours.at<int>(y, x) != 3 + seen[t] % 3;
                }
            EXPECT_EQ(bad, 0) << name;
            EXPECT_EQ(cv::countNonZero(ours), cv::countNonZero(img)) << name;
        }
}

struct LabelArgs {
    void *src, *dst;
    int ss, ds;
    ZebiSize roi;
    int lo, hi, norm;
    int* n;
    Zeb8u* buf;
};

TEST_P(Labels, ChecksInOrderAndWriteNothingOnFailure) {
    constexpr int kW = 9, kH = 4;
    struct M {
        std::string name;
        int elem, top;
        bool twoImages;
        std::function<ZebStatus(int, LabelArgs&)> call;
    };
    const std::vector<M> ms = {
        {"zebiLabelMarkers_8u_C1IR", 1, 255, false,
         [](int v, LabelArgs& x) {
             return zeb_tbl_zebiLabelMarkers_8u_C1IR[v](static_cast<Zeb8u*>(x.src), x.ss, x.roi, x.lo, x.hi, x.norm,
                                                        x.n, x.buf);
         }},
        {"zebiLabelMarkers_16u_C1IR", 2, 65535, false,
         [](int v, LabelArgs& x) {
             return zeb_tbl_zebiLabelMarkers_16u_C1IR[v](static_cast<Zeb16u*>(x.src), x.ss, x.roi, x.lo, x.hi,
                                                         x.norm, x.n, x.buf);
         }},
        {"zebiLabelMarkers_8u32s_C1R", 4, 2147483647, true,
         [](int v, LabelArgs& x) {
             return zeb_tbl_zebiLabelMarkers_8u32s_C1R[v](static_cast<Zeb8u*>(x.src), x.ss,
                                                          static_cast<Zeb32s*>(x.dst), x.ds, x.roi, x.lo, x.hi,
                                                          x.norm, x.n, x.buf);
         }},
    };
    int bytes = 0;
    ASSERT_EQ(zebiLabelMarkersGetBufferSize_8u_C1R({kW, kH}, &bytes), zebStsNoErr);
    for (const M& m : ms) {
        zt::checks::Table<LabelArgs> t{
            m.name,
            [&](Arena& a) {
                auto s = a.image<Zeb8u>("markers", kW * (m.twoImages ? 1 : m.elem), kH, 1, 8);
                auto d = a.image<Zeb8u>("labels", kW * 4, kH, 1, 8);
                return LabelArgs{s.ptr, d.ptr, s.step, d.step, {kW, kH}, 1, m.top - 1, 0,
                                 a.array<int>("count", 1), a.block("buffer", bytes)};
            },
            [&](int v, LabelArgs& x) { return m.call(v, x); },
            {{"null markers, width 0", [](LabelArgs& x) { x.src = nullptr, x.roi.width = 0; }, zebStsNullPtrErr},
             {"null count", [](LabelArgs& x) { x.n = nullptr; }, zebStsNullPtrErr},
             {"null buffer, norm 2", [](LabelArgs& x) { x.buf = nullptr, x.norm = 2; }, zebStsNullPtrErr},
             {"height 0, short step", [](LabelArgs& x) { x.roi.height = 0, x.ss -= 1; }, zebStsSizeErr},
             {"short step, min label 0", [](LabelArgs& x) { x.ss -= 1, x.lo = 0; }, zebStsStepErr},
             {"min label 0", [](LabelArgs& x) { x.lo = 0; }, zebStsBadArgErr},
             {"max label at the top", [&m](LabelArgs& x) { x.hi = m.top; }, zebStsBadArgErr},
             {"min above max", [](LabelArgs& x) { x.lo = 9, x.hi = 8; }, zebStsBadArgErr},
             {"norm 2", [](LabelArgs& x) { x.norm = 2; }, zebStsBadArgErr},
             {"norm -1", [](LabelArgs& x) { x.norm = -1; }, zebStsBadArgErr}}};
        if (m.twoImages) {
            t.cases.push_back({"null labels", [](LabelArgs& x) { x.dst = nullptr; }, zebStsNullPtrErr});
            t.cases.push_back({"short label step, uneven", [](LabelArgs& x) { x.ds -= 3; }, zebStsStepErr});
            t.cases.push_back({"uneven label step, min 0", [](LabelArgs& x) { x.ds += 2, x.lo = 0; },
                               zebStsNotEvenStepErr});
        } else if (m.elem == 2) {
            t.cases.push_back({"uneven step, min 0", [](LabelArgs& x) { x.ss += 1, x.lo = 0; },
                               zebStsNotEvenStepErr});
        }
        zt::checks::run(t);
    }
    for (auto* f : {zeb_tbl_zebiLabelMarkersGetBufferSize_8u_C1R, zeb_tbl_zebiLabelMarkersGetBufferSize_16u_C1R,
                    zeb_tbl_zebiLabelMarkersGetBufferSize_8u32s_C1R}) {
        int n = 3;
        EXPECT_EQ(f[1](ZebiSize{5, 0}, &n), zebStsSizeErr);
        EXPECT_EQ(f[0](ZebiSize{5, 5}, nullptr), zebStsNullPtrErr);
        EXPECT_EQ(n, 3);
        EXPECT_EQ(f[0](ZebiSize{5, 6}, &n), zebStsNoErr);
        EXPECT_EQ(n, 6 * 30 + 32);
    }
}

// ---- Speckles ----

// Disparity-like data: flat patches with small steps, specks of outliers.
cv::Mat disparity(int w, int h) {
    cv::Mat coarse(h / 8 + 1, w / 8 + 1, CV_16S), img;
    cv::randu(coarse, 10, 60);
    cv::resize(coarse, img, {w, h}, 0, 0, cv::INTER_NEAREST);
    cv::Mat noise(h, w, CV_16S);
    cv::randu(noise, -1, 2);
    img += noise;
    cv::Mat speck(h, w, CV_8U);
    cv::randu(speck, 0, 100);
    cv::Mat outl(h, w, CV_16S);
    cv::randu(outl, 100, 200);
    outl.copyTo(img, speck < 8);
    return img;
}

template <class T, class F>
cv::Mat our_speckles(F const* tbl, int v, const cv::Mat& src16s, T newVal, int maxSize, T maxDiff, ZebStatus* st) {
    Image<T> img = zt::image_of<T>(src16s, 3 * sizeof(T));
    int bytes = 0;
    EXPECT_EQ(zebiMarkSpecklesGetBufferSize(img.size(), zt::CvDepth<T>::v == CV_32F ? zeb32f : zeb8u, 1, &bytes),
              zebStsNoErr);
    zt::Guarded buf = zt::work_buffer(bytes);
    *st = tbl[v](img.ptr(), img.step(), img.size(), newVal, maxSize, maxDiff, 1, buf.data());
    cv::Mat out;
    img.mat().convertTo(out, CV_16S);
    return out;
}

TEST_P(Speckles, BitExactWithOpenCV) {
    const cv::Mat base = disparity(157, 91);
    for (int maxSize : {0, 1, 4, 20, 200})
        for (int maxDiff : {0, 1, 2}) {
            cv::Mat ref = base.clone();
            cv::filterSpeckles(ref, 0, maxSize, maxDiff);
            for (int v = 0; v < 2; ++v) {
                ZebStatus st[4];
                const cv::Mat got[4] = {
                    our_speckles<Zeb16s>(zeb_tbl_zebiMarkSpeckles_16s_C1IR, v, base, 0, maxSize, Zeb16s(maxDiff), &st[0]),
                    our_speckles<Zeb8u>(zeb_tbl_zebiMarkSpeckles_8u_C1IR, v, base, 0, maxSize, Zeb8u(maxDiff), &st[1]),
                    our_speckles<Zeb16u>(zeb_tbl_zebiMarkSpeckles_16u_C1IR, v, base, 0, maxSize, Zeb16u(maxDiff), &st[2]),
                    our_speckles<Zeb32f>(zeb_tbl_zebiMarkSpeckles_32f_C1IR, v, base, 0, maxSize, Zeb32f(maxDiff), &st[3])};
                for (int k = 0; k < 4; ++k) {
                    EXPECT_EQ(st[k], zebStsNoErr);
                    EXPECT_EQ(cv::norm(got[k], ref, cv::NORM_INF), 0)
                        << "type " << k << " maxSize " << maxSize << " maxDiff " << maxDiff << ": "
                        << cv::countNonZero(got[k] != ref) << " pixels differ";
                }
            }
        }
    // A newVal other than 0 also splits regions where it already stands.
    cv::Mat ref = base.clone();
    ref.row(40).setTo(-16);
    const cv::Mat split = ref.clone();
    cv::filterSpeckles(ref, -16, 30, 1);
    ZebStatus st;
    const cv::Mat got = our_speckles<Zeb16s>(zeb_tbl_zebiMarkSpeckles_16s_C1IR, 1, split, -16, 30, 1, &st);
    EXPECT_EQ(cv::norm(got, ref, cv::NORM_INF), 0);
}

TEST_P(Speckles, ChecksInOrderAndWriteNothingOnFailure) {
    struct A {
        Zeb16s* img;
        int step;
        ZebiSize roi;
        int norm;
        Zeb8u* buf;
    };
    int bytes = 0;
    ASSERT_EQ(zebiMarkSpecklesGetBufferSize({9, 4}, zeb16s, 1, &bytes), zebStsNoErr);
    EXPECT_EQ(bytes, 13 * 36 + 64);
    zt::checks::Table<A> t{"zebiMarkSpeckles_16s_C1IR",
                           [&](Arena& a) {
                               auto i = a.image<Zeb16s>("image", 9, 4, 1, 8);
                               return A{i.ptr, i.step, {9, 4}, 1, a.block("buffer", bytes)};
                           },
                           [](int v, A& x) {
                               return zeb_tbl_zebiMarkSpeckles_16s_C1IR[v](x.img, x.step, x.roi, 0, 5, 2, x.norm, x.buf);
                           },
                           {{"null image, norm 0", [](A& x) { x.img = nullptr, x.norm = 0; }, zebStsNullPtrErr},
                            {"null buffer", [](A& x) { x.buf = nullptr; }, zebStsNullPtrErr},
                            {"width 0, norm 0", [](A& x) { x.roi.width = 0, x.norm = 0; }, zebStsSizeErr},
                            {"short step, norm 0", [](A& x) { x.step -= 2, x.norm = 0; }, zebStsStepErr},
                            {"uneven step, norm 0", [](A& x) { x.step += 1, x.norm = 0; }, zebStsNotEvenStepErr},
                            {"norm 0", [](A& x) { x.norm = 0; }, zebStsBadNormErr},
                            {"norm 2", [](A& x) { x.norm = 2; }, zebStsBadNormErr}}};
    zt::checks::run(t);
    for (int v = 0; v < 2; ++v) {
        int n = 5;
        EXPECT_EQ(zeb_tbl_zebiMarkSpecklesGetBufferSize[v]({9, 4}, zeb16s, 1, nullptr), zebStsNullPtrErr);
        EXPECT_EQ(zeb_tbl_zebiMarkSpecklesGetBufferSize[v]({0, 4}, 99, 2, &n), zebStsSizeErr);
        EXPECT_EQ(zeb_tbl_zebiMarkSpecklesGetBufferSize[v]({9, 4}, zeb8s, 2, &n), zebStsDataTypeErr);
        EXPECT_EQ(zeb_tbl_zebiMarkSpecklesGetBufferSize[v]({9, 4}, zeb32f, 3, &n), zebStsNumChannelsErr);
        EXPECT_EQ(zeb_tbl_zebiMarkSpecklesGetBufferSize[v]({20000, 20000}, zeb8u, 1, &n), zebStsSizeErr);
        EXPECT_EQ(n, 5);
    }
}

// ---- Bounds ----

TEST_P(Bounds, MarksOnePixelWideBoundaries) {
    for (int v = 0; v < 2; ++v)
        for (int norm : {0, 1}) {
            // One label: nothing changes.
            Image<Zeb8u> one(11, 6, 1, 3);
            one.fill(4);
            ASSERT_EQ(zeb_tbl_zebiBoundSegments_8u_C1IR[v](one.ptr(), one.step(), one.size(), 9, norm), zebStsNoErr);
            EXPECT_EQ(cv::countNonZero(one.mat() != 4), 0);
            // A vertical edge between 1 and 2 marks the first 2 of each row.
            Image<Zeb16u> edge(11, 6, 1, 4);
            for (int y = 0; y < 6; ++y)
                for (int x = 0; x < 11; ++x) edge.at(x, y) = x < 5 ? 1 : 2;
            ASSERT_EQ(zeb_tbl_zebiBoundSegments_16u_C1IR[v](edge.ptr(), edge.step(), edge.size(), 1000, norm),
                      zebStsNoErr);
            for (int y = 0; y < 6; ++y)
                for (int x = 0; x < 11; ++x) EXPECT_EQ(edge.at(x, y), x == 5 ? 1000 : (x < 5 ? 1 : 2)) << x << ',' << y;
            // A horizontal edge: the first row of label 2 is marked, with
            // either norm (a marked pixel no longer marks its neighbours).
            Image<Zeb8u> hor(7, 6, 1, 1);
            for (int y = 0; y < 6; ++y)
                for (int x = 0; x < 7; ++x) hor.at(x, y) = y < 3 ? 1 : 2;
            ASSERT_EQ(zeb_tbl_zebiBoundSegments_8u_C1IR[v](hor.ptr(), hor.step(), hor.size(), 0, norm), zebStsNoErr);
            for (int y = 0; y < 6; ++y)
                for (int x = 0; x < 7; ++x) EXPECT_EQ(hor.at(x, y), y == 3 ? 0 : (y < 3 ? 1 : 2)) << x << ',' << y;
            // Rows {1 2 2} over {1 1 1}: the upper-right neighbour counts for
            // norm 0 only; the first row marks the first 2 alone.
            Image<Zeb8u> small(3, 2);
            const Zeb8u in[6] = {1, 2, 2, 1, 1, 1};
            for (int k = 0; k < 6; ++k) small.at(k % 3, k / 3) = in[k];
            ASSERT_EQ(zeb_tbl_zebiBoundSegments_8u_C1IR[v](small.ptr(), small.step(), small.size(), 9, norm),
                      zebStsNoErr);
            const Zeb8u want0[6] = {1, 9, 2, 1, 9, 9}, want1[6] = {1, 9, 2, 1, 1, 9};
            for (int k = 0; k < 6; ++k)
                EXPECT_EQ(small.at(k % 3, k / 3), norm == 0 ? want0[k] : want1[k]) << norm << ' ' << k;
        }
}

TEST_P(Bounds, ChecksInOrderAndWriteNothingOnFailure) {
    struct A {
        Zeb16u* img;
        int step;
        ZebiSize roi;
        int norm;
    };
    zt::checks::Table<A> t{"zebiBoundSegments_16u_C1IR",
                           [](Arena& a) {
                               auto i = a.image<Zeb16u>("markers", 9, 4, 1, 8);
                               return A{i.ptr, i.step, {9, 4}, 0};
                           },
                           [](int v, A& x) { return zeb_tbl_zebiBoundSegments_16u_C1IR[v](x.img, x.step, x.roi, 7, x.norm); },
                           {{"null, height 0", [](A& x) { x.img = nullptr, x.roi.height = 0; }, zebStsNullPtrErr},
                            {"height 0, short step", [](A& x) { x.roi.height = 0, x.step = 2; }, zebStsSizeErr},
                            {"short step, norm 3", [](A& x) { x.step -= 2, x.norm = 3; }, zebStsStepErr},
                            {"uneven step, norm 3", [](A& x) { x.step += 1, x.norm = 3; }, zebStsNotEvenStepErr},
                            {"norm 2", [](A& x) { x.norm = 2; }, zebStsBadArgErr}}};
    zt::checks::run(t);
}

}  // namespace
