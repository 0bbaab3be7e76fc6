// SPDX-License-Identifier: Apache-2.0
// Integral images and rectangle deviations against OpenCV.
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

#include "bench.h"
#include "zebcv.h"

namespace {

using zb::kH;
using zb::kPx;
using zb::kRoi;
using zb::kW;

constexpr int kWin = 24;
// Deviation maps: one output per window position inside the image.
constexpr ZebiSize kDev{kW - kWin + 1, kH - kWin + 1};

struct Buffers {
    cv::Mat src = zb::random_mat(CV_8U);
    cv::Mat sum = cv::Mat(kH + 1, kW + 1, CV_32S), sq = cv::Mat(kH + 1, kW + 1, CV_64F);
    cv::Mat ocvSum = cv::Mat(kH + 1, kW + 1, CV_32S), ocvSq = cv::Mat(kH + 1, kW + 1, CV_64F);
    cv::Mat dev = cv::Mat(kH, kW, CV_32F);
    // OpenCV's box-filter formulation: E[x], E[x^2], then sqrt(E[x^2] - E[x]^2).
    cv::Mat mean = cv::Mat(kH, kW, CV_32F), meanSq = cv::Mat(kH, kW, CV_32F), ocvDev = cv::Mat(kH, kW, CV_32F);
    Buffers() {
        // Tables for the deviation pairs that start from them.
        zebiSqrIntegral_8u32s64f_C1R(src.ptr<Zeb8u>(), zb::step(src), sum.ptr<Zeb32s>(), zb::step(sum),
                                     sq.ptr<Zeb64f>(), zb::step(sq), kRoi, 0, 0.0);
    }
};

void ocv_box_stddev(Buffers& b) {
    const cv::Size k(kWin, kWin);
    cv::boxFilter(b.src, b.mean, CV_32F, k, cv::Point(0, 0), true, cv::BORDER_REPLICATE);
    cv::sqrBoxFilter(b.src, b.meanSq, CV_32F, k, cv::Point(0, 0), true, cv::BORDER_REPLICATE);
    cv::multiply(b.mean, b.mean, b.mean);
    cv::subtract(b.meanSq, b.mean, b.meanSq);
    cv::sqrt(b.meanSq, b.ocvDev);
}

ZB_PAIR(
    "Integral_8u32s_C1R",
    [] {
        auto& b = zb::buffers<Buffers>();
        ZB_CHECK(zebiIntegral_8u32s_C1R(zb::px<Zeb8u>(b.src), zb::step(b.src), zb::px<Zeb32s>(b.sum), zb::step(b.sum),
                                        kRoi, 0));
    },
    [] {
        auto& b = zb::buffers<Buffers>();
        cv::integral(b.src, b.ocvSum, CV_32S);
    },
    5 * kPx);
ZB_PAIR(
    "SqrIntegral_8u32s64f_C1R",
    [] {
        auto& b = zb::buffers<Buffers>();
        ZB_CHECK(zebiSqrIntegral_8u32s64f_C1R(zb::px<Zeb8u>(b.src), zb::step(b.src), zb::px<Zeb32s>(b.sum),
                                              zb::step(b.sum), zb::px<Zeb64f>(b.sq), zb::step(b.sq), kRoi, 0, 0.0));
    },
    [] {
        auto& b = zb::buffers<Buffers>();
        cv::integral(b.src, b.ocvSum, b.ocvSq, CV_32S, CV_64F);
    },
    13 * kPx);
ZB_PAIR(
    "RectStdDev_32s32f_C1R 24x24",
    [] {
        auto& b = zb::buffers<Buffers>();
        ZB_CHECK(zebiRectStdDev_32s32f_C1R(zb::px<Zeb32s>(b.sum), zb::step(b.sum), zb::px<Zeb64f>(b.sq),
                                           zb::step(b.sq), zb::px<Zeb32f>(b.dev), zb::step(b.dev), kDev,
                                           {0, 0, kWin, kWin}));
    },
    [] { ocv_box_stddev(zb::buffers<Buffers>()); }, 0);
// The same from the pixels: both tables built, then the map.
ZB_PAIR(
    "SqrIntegral + RectStdDev 24x24",
    [] {
        auto& b = zb::buffers<Buffers>();
        ZB_CHECK(zebiSqrIntegral_8u32s64f_C1R(zb::px<Zeb8u>(b.src), zb::step(b.src), zb::px<Zeb32s>(b.sum),
                                              zb::step(b.sum), zb::px<Zeb64f>(b.sq), zb::step(b.sq), kRoi, 0, 0.0));
        ZB_CHECK(zebiRectStdDev_32s32f_C1R(zb::px<Zeb32s>(b.sum), zb::step(b.sum), zb::px<Zeb64f>(b.sq),
                                           zb::step(b.sq), zb::px<Zeb32f>(b.dev), zb::step(b.dev), kDev,
                                           {0, 0, kWin, kWin}));
    },
    [] { ocv_box_stddev(zb::buffers<Buffers>()); }, 0);

}  // namespace
