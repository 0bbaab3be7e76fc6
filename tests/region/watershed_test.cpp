// SPDX-License-Identifier: Apache-2.0
// Watershed and gradient segmentation: argument checks with canaries; the
// neighbour-difference flood against OpenCV's watershed on photographs
// (OpenCV frames the image with boundary pixels, so our ROI is its
// interior); the source-ordered flood on reliefs whose basins are known;
// barriers, the boundary switch, both marker types; gradient segmentation
// of colour against grey.
#include <gtest/gtest.h>

#include <opencv2/imgproc.hpp>

#include "check_table.h"
#include "harness.h"

ZEB_TEST_TABLE(zebiSegmentWatershedGetBufferSize_8u_C1R);
ZEB_TEST_TABLE(zebiSegmentWatershedGetBufferSize_8u16u_C1R);
ZEB_TEST_TABLE(zebiSegmentWatershed_8u_C1IR);
ZEB_TEST_TABLE(zebiSegmentWatershed_8u16u_C1IR);
ZEB_TEST_TABLE(zebiSegmentGradientGetBufferSize_8u_C1R);
ZEB_TEST_TABLE(zebiSegmentGradientGetBufferSize_8u_C3R);
ZEB_TEST_TABLE(zebiSegmentGradient_8u_C1IR);
ZEB_TEST_TABLE(zebiSegmentGradient_8u_C3IR);

namespace {

using zt::Image;
using zt::checks::Arena;

ZT_TARGET_SUITE(Watershed);

// Runs a watershed on a guarded copy; markers come back as 32-bit values.
cv::Mat run_ws(int v, bool wide, const cv::Mat& src, const cv::Mat& markers32, int norm, int flag) {
    Image<Zeb8u> s = zt::image_of<Zeb8u>(src, 5);
    int bytes = 0;
    EXPECT_EQ((wide ? zebiSegmentWatershedGetBufferSize_8u16u_C1R : zebiSegmentWatershedGetBufferSize_8u_C1R)(
                  s.size(), &bytes),
              zebStsNoErr);
    zt::Guarded buf = zt::work_buffer(bytes);
    cv::Mat out;
    if (wide) {
        Image<Zeb16u> m = zt::image_of<Zeb16u>(markers32, 4);
        EXPECT_EQ(zeb_tbl_zebiSegmentWatershed_8u16u_C1IR[v](s.ptr(), s.step(), m.ptr(), m.step(), s.size(), norm, flag,
                                                             buf.data()),
                  zebStsNoErr);
        m.mat().convertTo(out, CV_32S);
    } else {
        Image<Zeb8u> m = zt::image_of<Zeb8u>(markers32, 1);
        EXPECT_EQ(zeb_tbl_zebiSegmentWatershed_8u_C1IR[v](s.ptr(), s.step(), m.ptr(), m.step(), s.size(), norm, flag,
                                                          buf.data()),
                  zebStsNoErr);
        m.mat().convertTo(out, CV_32S);
        out.setTo(65535, out == 255);  // one boundary value for the comparisons
    }
    EXPECT_EQ(cv::norm(s.mat(), src, cv::NORM_INF), 0) << "the source changed";
    return out;
}

// Seeds: small squares on a grid, labels 1, 2, ...
cv::Mat grid_markers(int w, int h, int spacing) {
    cv::Mat m = cv::Mat::zeros(h, w, CV_32S);
    int label = 1;
    for (int y = spacing / 2; y + 1 < h - 1; y += spacing)
        for (int x = spacing / 2; x + 1 < w - 1; x += spacing) m(cv::Rect(x - 1, y - 1, 3, 3)).setTo(label++ % 200 + 1);
    return m;
}

// The fraction of interior pixels where ours equals OpenCV's (its boundary
// -1 taken as 65535).
double agreement_with_opencv(int v, bool wide, const cv::Mat& grey, const cv::Mat& markers) {
    cv::Mat colour, theirs = markers.clone();
    cv::cvtColor(grey, colour, cv::COLOR_GRAY2BGR);
    cv::watershed(colour, theirs);
    const cv::Rect in(1, 1, grey.cols - 2, grey.rows - 2);
    const cv::Mat ours = run_ws(v, wide, grey(in), markers(in), 1, zebSegmentDiff);
    cv::Mat t = theirs(in).clone();
    t.setTo(65535, t == -1);
    return 1.0 - double(cv::countNonZero(ours != t)) / double(in.area());
}

TEST_P(Watershed, NeighbourDifferenceFloodMatchesOpenCV) {
    for (const char* file : {"fruits.jpg", "baboon.jpg", "building.jpg"}) {
        cv::Mat grey = zt::photo(file, cv::IMREAD_GRAYSCALE);
        ASSERT_FALSE(grey.empty()) << file;
        cv::resize(grey, grey, {256, 192}, 0, 0, cv::INTER_AREA);
        const cv::Mat markers = grid_markers(grey.cols, grey.rows, 37);
        for (int v = 0; v < 2; ++v)
            for (bool wide : {true, false}) EXPECT_EQ(agreement_with_opencv(v, wide, grey, markers), 1.0) << file;
    }
    // Small images queue without level lists: every size from 3x3 up.
    for (int h = 3; h <= 12; h += 3)
        for (int w = 3; w <= 14; ++w) {
            cv::Mat grey(h, w, CV_8U), m = cv::Mat::zeros(h, w, CV_32S);
            cv::randu(grey, 0, 256);
            m.at<int>(1, 1) = 1;
            m.at<int>(h - 2, w - 2) = 2;
            if (w > 6) m.at<int>(1, w - 2) = 3;
            EXPECT_EQ(agreement_with_opencv(0, true, grey, m), 1.0) << w << 'x' << h;
        }
}

// Two cone-shaped basins: flooding in order of the source value splits them
// along the ridge between the two minima.
TEST_P(Watershed, SourceOrderFindsTheBasins) {
    const int w = 90, h = 60;
    const cv::Point a(25, 30), b(70, 25);
    cv::Mat relief(h, w, CV_8U), seeds = cv::Mat::zeros(h, w, CV_32S);
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x)
            relief.at<uchar>(y, x) = uchar(std::min(cv::norm(cv::Point(x, y) - a), cv::norm(cv::Point(x, y) - b)) * 2);
    seeds.at<int>(a) = 3, seeds.at<int>(b) = 9;
    for (int norm : {0, 1})
        for (int v = 0; v < 2; ++v)
            for (bool wide : {true, false}) {
                const cv::Mat out = run_ws(v, wide, relief, seeds, norm, zebSegmentSource);
                int wrong = 0;
                for (int y = 0; y < h; ++y)
                    for (int x = 0; x < w; ++x) {
                        const double da = cv::norm(cv::Point(x, y) - a), db = cv::norm(cv::Point(x, y) - b);
                        const int got = out.at<int>(y, x);
                        if (std::abs(da - db) > 2.5) wrong += got != (da < db ? 3 : 9);
                        else wrong += got != 3 && got != 9 && got != 65535;
                    }
                EXPECT_EQ(wrong, 0) << "norm " << norm;
                EXPECT_GT(cv::countNonZero(out == 65535), h / 2) << "a boundary along the ridge";
                // Without boundaries every pixel gets one of the two labels.
                const cv::Mat all = run_ws(v, wide, relief, seeds, norm, zebSegmentSource | zebSegmentNoBoundary);
                EXPECT_EQ(cv::countNonZero(all == 3) + cv::countNonZero(all == 9), w * h);
            }
}

// Two flat regions with noise and a soft seam: growing against the seed's
// value (norms 2, 3) and against the neighbour (norms 0, 1) both keep each
// region to its own seed. Barriers (the boundary value) stop the flood and
// enclose an unseeded pocket that stays 0.
TEST_P(Watershed, RegionsBarriersAndNorms) {
    const int w = 64, h = 40;
    cv::Mat img(h, w, CV_8U), noise(h, w, CV_8U);
    cv::randu(noise, 0, 5);
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) img.at<uchar>(y, x) = uchar((x < 30 ? 60 : 160) + noise.at<uchar>(y, x));
    cv::Mat seeds = cv::Mat::zeros(h, w, CV_32S);
    seeds.at<int>(20, 5) = 1, seeds.at<int>(20, 60) = 2;
    cv::rectangle(seeds, cv::Rect(40, 5, 10, 10), cv::Scalar(65535));  // a closed wall
    for (int norm : {0, 1, 2, 3})
        for (int v = 0; v < 2; ++v) {
            const cv::Mat out = run_ws(v, true, img, seeds, norm, zebSegmentDiff);
            EXPECT_EQ(cv::countNonZero(out.colRange(0, 29) != 1), 0) << "norm " << norm;
            cv::Mat right = out.colRange(31, w).clone();
            right(cv::Rect(9, 5, 10, 10)).setTo(2);  // the wall and its pocket
            EXPECT_EQ(cv::countNonZero(right != 2), 0) << "norm " << norm;
            EXPECT_EQ(cv::countNonZero(out(cv::Rect(41, 6, 8, 8))), 0) << "the pocket was flooded";
            EXPECT_EQ(cv::countNonZero(out(cv::Rect(40, 5, 10, 10)) == 65535), 36) << "the wall moved";
        }
}

TEST_P(Watershed, GradientSegmentationColourAndGrey) {
    cv::Mat photo = zt::photo("fruits.jpg", cv::IMREAD_COLOR);
    ASSERT_FALSE(photo.empty());
    cv::resize(photo, photo, {200, 150}, 0, 0, cv::INTER_AREA);
    cv::Mat grey, grey3;
    cv::cvtColor(photo, grey, cv::COLOR_BGR2GRAY);
    cv::cvtColor(grey, grey3, cv::COLOR_GRAY2BGR);
    cv::Mat seeds;
    grid_markers(200, 150, 40).convertTo(seeds, CV_8U);
    auto run = [&](int v, const cv::Mat& src, int flag) {
        Image<Zeb8u> s = zt::image_of<Zeb8u>(src, 3), m = zt::image_of<Zeb8u>(seeds, 2);
        int bytes = 0;
        EXPECT_EQ((src.channels() == 3 ? zebiSegmentGradientGetBufferSize_8u_C3R : zebiSegmentGradientGetBufferSize_8u_C1R)(
                      s.size(), &bytes),
                  zebStsNoErr);
        EXPECT_EQ(bytes, 17 * s.width() * s.height() + 115);
        zt::Guarded buf = zt::work_buffer(bytes);
        const ZebStatus st = src.channels() == 3
                                 ? zeb_tbl_zebiSegmentGradient_8u_C3IR[v](s.ptr(), s.step(), m.ptr(), m.step(), s.size(),
                                                                          flag, buf.data())
                                 : zeb_tbl_zebiSegmentGradient_8u_C1IR[v](s.ptr(), s.step(), m.ptr(), m.step(), s.size(),
                                                                          flag, buf.data());
        EXPECT_EQ(st, zebStsNoErr);
        return m.mat().clone();
    };
    for (int v = 0; v < 2; ++v) {
        const cv::Mat g0 = run(v, grey, 0), g1 = run(v, grey, 1);
        EXPECT_EQ(cv::countNonZero(g0 == 0), 0) << "flag 0 labels every pixel";
        EXPECT_EQ(cv::countNonZero(g0 == 255), 0);
        EXPECT_GT(cv::countNonZero(g1 == 255), 500) << "flag 1 draws boundaries";
        EXPECT_EQ(cv::countNonZero(g1 == 0), 0);
        // The seeds themselves never change.
        EXPECT_EQ(cv::countNonZero((g0 != seeds) & (seeds != 0)), 0);
        // A colour image of three equal channels is its grey image.
        EXPECT_EQ(cv::norm(run(v, grey3, 1), g1, cv::NORM_INF), 0);
        // The colour form labels every pixel too.
        EXPECT_EQ(cv::countNonZero(run(v, photo, 0) == 0), 0);
    }
    // A step edge: two seeds on either side meet at the edge.
    cv::Mat step = cv::Mat::zeros(30, 40, CV_8U);
    step.colRange(20, 40).setTo(200);
    seeds = cv::Mat::zeros(30, 40, CV_8U);
    seeds.at<uchar>(15, 2) = 1, seeds.at<uchar>(15, 37) = 2;
    const cv::Mat cut = run(0, step, 0);
    EXPECT_EQ(cv::countNonZero(cut.colRange(0, 19) != 1), 0);
    EXPECT_EQ(cv::countNonZero(cut.colRange(21, 40) != 2), 0);
}

TEST_P(Watershed, ChecksInOrderAndWriteNothingOnFailure) {
    struct A {
        const Zeb8u* src;
        void* mk;
        int ss, ms;
        ZebiSize roi;
        int norm, flag;
        Zeb8u* buf;
    };
    int bytes = 0;
    ASSERT_EQ(zebiSegmentWatershedGetBufferSize_8u16u_C1R({9, 4}, &bytes), zebStsNoErr);
    const int r = (2 * 9 + 31) & ~31;
    EXPECT_EQ(bytes, std::max(16 * 36 + 2 * 11 * 6 + 48, 2 * r * 5 + 4 + 4 * 4 * r + 66));
    for (bool wide : {true, false}) {
        const int me = wide ? 2 : 1;
        zt::checks::Table<A> t{
            wide ? "zebiSegmentWatershed_8u16u_C1IR" : "zebiSegmentWatershed_8u_C1IR",
            [&](Arena& a) {
                auto s = a.image<Zeb8u>("source", 9, 4, 1, 8);
                auto m = a.image<Zeb8u>("markers", 9 * me, 4, 1, 8);
                return A{s.ptr, m.ptr, s.step, m.step, {9, 4}, 1, zebSegmentSource, a.block("buffer", bytes)};
            },
            [wide](int v, A& x) {
                return wide ? zeb_tbl_zebiSegmentWatershed_8u16u_C1IR[v](x.src, x.ss, static_cast<Zeb16u*>(x.mk), x.ms,
                                                                         x.roi, x.norm, x.flag, x.buf)
                            : zeb_tbl_zebiSegmentWatershed_8u_C1IR[v](x.src, x.ss, static_cast<Zeb8u*>(x.mk), x.ms,
                                                                      x.roi, x.norm, x.flag, x.buf);
            },
            {{"null source, width 0", [](A& x) { x.src = nullptr, x.roi.width = 0; }, zebStsNullPtrErr},
             {"null markers", [](A& x) { x.mk = nullptr; }, zebStsNullPtrErr},
             {"null buffer, flag 0", [](A& x) { x.buf = nullptr, x.flag = 0; }, zebStsNullPtrErr},
             {"height 0, short step", [](A& x) { x.roi.height = 0, x.ss -= 1; }, zebStsSizeErr},
             {"short source step, flag 0", [](A& x) { x.ss -= 1, x.flag = 0; }, zebStsStepErr},
             {"short marker step, flag 0", [me](A& x) { x.ms -= me, x.flag = 0; }, zebStsStepErr},
             {"flag 0", [](A& x) { x.flag = 0; }, zebStsBadArgErr},
             {"flag 128", [](A& x) { x.flag = zebSegmentNoBoundary; }, zebStsBadArgErr},
             {"bit 0, norm 2", [](A& x) { x.norm = 2; }, zebStsBadArgErr},
             {"bit 0 and 1, norm 3", [](A& x) { x.norm = 3, x.flag = 3; }, zebStsBadArgErr},
             {"bit 1, norm 4", [](A& x) { x.norm = 4, x.flag = zebSegmentDiff; }, zebStsBadArgErr},
             {"bit 1, norm -1", [](A& x) { x.norm = -1, x.flag = zebSegmentDiff; }, zebStsBadArgErr}}};
        if (wide)
            t.cases.push_back({"uneven marker step, flag 0", [](A& x) { x.ms += 1, x.flag = 0; }, zebStsNotEvenStepErr});
        zt::checks::run(t);
        // Norm 3 is valid with bit 1 alone.
        Arena a(false);
        A x = t.valid(a);
        x.norm = 3, x.flag = zebSegmentDiff;
        EXPECT_EQ(t.call(0, x), zebStsNoErr);
    }
    int gb = 0;
    ASSERT_EQ(zebiSegmentGradientGetBufferSize_8u_C3R({9, 4}, &gb), zebStsNoErr);
    for (int ch : {1, 3}) {
        zt::checks::Table<A> t{
            ch == 3 ? "zebiSegmentGradient_8u_C3IR" : "zebiSegmentGradient_8u_C1IR",
            [&](Arena& a) {
                auto s = a.image<Zeb8u>("source", 9 * ch, 4, 1, 8);
                auto m = a.image<Zeb8u>("markers", 9, 4, 1, 8);
                return A{s.ptr, m.ptr, s.step, m.step, {9, 4}, 0, 1, a.block("buffer", gb)};
            },
            [ch](int v, A& x) {
                return (ch == 3 ? zeb_tbl_zebiSegmentGradient_8u_C3IR : zeb_tbl_zebiSegmentGradient_8u_C1IR)[v](
                    x.src, x.ss, static_cast<Zeb8u*>(x.mk), x.ms, x.roi, x.flag, x.buf);
            },
            {{"null source, width 0", [](A& x) { x.src = nullptr, x.roi.width = 0; }, zebStsNullPtrErr},
             {"null markers", [](A& x) { x.mk = nullptr; }, zebStsNullPtrErr},
             {"null buffer", [](A& x) { x.buf = nullptr; }, zebStsNullPtrErr},
             {"width 0, flag 2", [](A& x) { x.roi.width = 0, x.flag = 2; }, zebStsSizeErr},
             {"short source step, flag 2", [](A& x) { x.ss -= 1, x.flag = 2; }, zebStsStepErr},
             {"short marker step, flag 2", [](A& x) { x.ms -= 1, x.flag = 2; }, zebStsStepErr},
             {"flag 2", [](A& x) { x.flag = 2; }, zebStsBadArgErr},
             {"flag -1", [](A& x) { x.flag = -1; }, zebStsBadArgErr}}};
        zt::checks::run(t);
    }
    for (auto* f : {zeb_tbl_zebiSegmentWatershedGetBufferSize_8u_C1R, zeb_tbl_zebiSegmentWatershedGetBufferSize_8u16u_C1R,
                    zeb_tbl_zebiSegmentGradientGetBufferSize_8u_C1R, zeb_tbl_zebiSegmentGradientGetBufferSize_8u_C3R}) {
        int n = 4;
        EXPECT_EQ(f[0](ZebiSize{3, 3}, nullptr), zebStsNullPtrErr);
        EXPECT_EQ(f[1](ZebiSize{3, 0}, &n), zebStsSizeErr);
        EXPECT_EQ(f[1](ZebiSize{20000, 20000}, &n), zebStsSizeErr);
        EXPECT_EQ(n, 4);
    }
}

}  // namespace
