// SPDX-License-Identifier: Apache-2.0
// Distance transforms against OpenCV's distanceTransform on a binary image
// of a photograph's edges (the zero pixels are the Canny edges of a
// 1920x1080 photograph); work buffers are allocated once, outside the
// timed loop. Fast marching has no OpenCV counterpart; its pair runs
// against OpenCV's exact Euclidean transform of the same image.
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

#include "bench.h"
#include "zebcv.h"

namespace {

using zb::kPx;
using zb::kRoi;
using zb::px;
using zb::step;

cv::Mat edge_sites() {
    const cv::Mat g = zb::photograph("building.jpg");
    cv::Mat e;
    cv::Canny(g, e, 80, 160);
    return 255 - e;
}

struct Buffers {
    cv::Mat src = edge_sites();
    cv::Mat df = zb::random_mat(CV_32F), d8 = zb::random_mat(CV_8U);
    zb::Work exact{zebiTrueDistanceTransformGetBufferSize_8u32f_C1R, kRoi};
    zb::Work march{zebiFastMarchingGetBufferSize_8u32f_C1R, kRoi};
    Zeb32f mask3[3]{}, mask5[3]{}, maskC[3]{};
    Zeb32s maskL1[3]{};
    Buffers() {
        zebiGetDistanceTransformMask_32f(3, zebiNormL2, mask3);
        zebiGetDistanceTransformMask_32f(5, zebiNormL2, mask5);
        zebiGetDistanceTransformMask_32f(3, zebiNormInf, maskC);
        zebiGetDistanceTransformMask_32s(3, zebiNormL1, maskL1);
    }
};

ZB_PAIR("DistanceTransform_5x5_8u32f_C1R L2",
        [] {
            auto& b = zb::buffers<Buffers>();
            ZB_CHECK(zebiDistanceTransform_5x5_8u32f_C1R(px<Zeb8u>(b.src), step(b.src), px<Zeb32f>(b.df), step(b.df),
                                                         kRoi, b.mask5));
        },
        [] { auto& b = zb::buffers<Buffers>(); cv::distanceTransform(b.src, b.df, cv::DIST_L2, 5, CV_32F); }, 5 * kPx);
ZB_PAIR("DistanceTransform_3x3_8u32f_C1R L2",
        [] {
            auto& b = zb::buffers<Buffers>();
            ZB_CHECK(zebiDistanceTransform_3x3_8u32f_C1R(px<Zeb8u>(b.src), step(b.src), px<Zeb32f>(b.df), step(b.df),
                                                         kRoi, b.mask3));
        },
        [] { auto& b = zb::buffers<Buffers>(); cv::distanceTransform(b.src, b.df, cv::DIST_L2, 3, CV_32F); }, 5 * kPx);
ZB_PAIR("DistanceTransform_3x3_8u32f_C1R max norm",
        [] {
            auto& b = zb::buffers<Buffers>();
            ZB_CHECK(zebiDistanceTransform_3x3_8u32f_C1R(px<Zeb8u>(b.src), step(b.src), px<Zeb32f>(b.df), step(b.df),
                                                         kRoi, b.maskC));
        },
        [] { auto& b = zb::buffers<Buffers>(); cv::distanceTransform(b.src, b.df, cv::DIST_C, 3, CV_32F); }, 5 * kPx);
ZB_PAIR("DistanceTransform_3x3_8u_C1R sum norm",
        [] {
            auto& b = zb::buffers<Buffers>();
            ZB_CHECK(zebiDistanceTransform_3x3_8u_C1R(px<Zeb8u>(b.src), step(b.src), px<Zeb8u>(b.d8), step(b.d8), kRoi,
                                                      b.maskL1));
        },
        [] { auto& b = zb::buffers<Buffers>(); cv::distanceTransform(b.src, b.d8, cv::DIST_L1, 3, CV_8U); }, 2 * kPx);
ZB_PAIR("TrueDistanceTransform_8u32f_C1R",
        [] {
            auto& b = zb::buffers<Buffers>();
            ZB_CHECK(zebiTrueDistanceTransform_8u32f_C1R(px<Zeb8u>(b.src), step(b.src), px<Zeb32f>(b.df), step(b.df),
                                                         kRoi, b.exact.data()));
        },
        [] {
            auto& b = zb::buffers<Buffers>();
            cv::distanceTransform(b.src, b.df, cv::DIST_L2, cv::DIST_MASK_PRECISE, CV_32F);
        },
        5 * kPx);
ZB_PAIR("FastMarching_8u32f_C1R (vs exact L2)",
        [] {
            auto& b = zb::buffers<Buffers>();
            ZB_CHECK(zebiFastMarching_8u32f_C1R(px<Zeb8u>(b.src), step(b.src), px<Zeb32f>(b.df), step(b.df), kRoi,
                                                1e9f, b.march.data()));
        },
        [] {
            auto& b = zb::buffers<Buffers>();
            cv::distanceTransform(b.src, b.df, cv::DIST_L2, cv::DIST_MASK_PRECISE, CV_32F);
        },
        0);

}  // namespace
