// SPDX-License-Identifier: Apache-2.0
// Image statistics against OpenCV: mean and deviation, extrema, norms.
#include <opencv2/core.hpp>

#include "bench.h"
#include "zebcv.h"

namespace {

using zb::kPx;
using zb::kRoi;

struct Buffers {
    cv::Mat a8 = zb::random_mat(CV_8U), b8 = zb::random_mat(CV_8U);
    cv::Mat a16 = zb::random_mat(CV_16U, 0, 65536);
    cv::Mat af = zb::random_mat(CV_32F, -100, 100), bf = zb::random_mat(CV_32F, -100, 100);
    cv::Mat c8 = zb::random_mat(CV_8UC3);
    // A random mask makes OpenCV's per-pixel branch unpredictable; the
    // full mask shows its best case.
    cv::Mat mask = zb::random_mat(CV_8U, 0, 2);
    cv::Mat full = cv::Mat(zb::kH, zb::kW, CV_8U, cv::Scalar(255));
    // Results, kept where the compiler cannot drop the calls.
    cv::Scalar m, s;
    double mean = 0, sd = 0, value = 0, lo = 0, hi = 0;
    float fmin = 0, fmax = 0;
    ZebiPoint pmin{}, pmax{};
    cv::Point qmin, qmax;
};

ZB_PAIR(
    "Mean_8u_C1MR",
    [] {
        auto& b = zb::buffers<Buffers>();
        ZB_CHECK(zebiMean_8u_C1MR(zb::px<Zeb8u>(b.a8), zb::step(b.a8), zb::px<Zeb8u>(b.mask), zb::step(b.mask), kRoi,
                                  &b.mean));
    },
    [] {
        auto& b = zb::buffers<Buffers>();
        b.m = cv::mean(b.a8, b.mask);
    },
    2 * kPx);
ZB_PAIR(
    "Mean_StdDev_8u_C1R",
    [] {
        auto& b = zb::buffers<Buffers>();
        ZB_CHECK(zebiMean_StdDev_8u_C1R(zb::px<Zeb8u>(b.a8), zb::step(b.a8), kRoi, &b.mean, &b.sd));
    },
    [] {
        auto& b = zb::buffers<Buffers>();
        cv::meanStdDev(b.a8, b.m, b.s);
    },
    kPx);
ZB_PAIR(
    "Mean_StdDev_8u_C1MR",
    [] {
        auto& b = zb::buffers<Buffers>();
        ZB_CHECK(zebiMean_StdDev_8u_C1MR(zb::px<Zeb8u>(b.a8), zb::step(b.a8), zb::px<Zeb8u>(b.mask), zb::step(b.mask),
                                         kRoi, &b.mean, &b.sd));
    },
    [] {
        auto& b = zb::buffers<Buffers>();
        cv::meanStdDev(b.a8, b.m, b.s, b.mask);
    },
    2 * kPx);
ZB_PAIR(
    "Mean_StdDev_8u_C1MR full mask",
    [] {
        auto& b = zb::buffers<Buffers>();
        ZB_CHECK(zebiMean_StdDev_8u_C1MR(zb::px<Zeb8u>(b.a8), zb::step(b.a8), zb::px<Zeb8u>(b.full), zb::step(b.full),
                                         kRoi, &b.mean, &b.sd));
    },
    [] {
        auto& b = zb::buffers<Buffers>();
        cv::meanStdDev(b.a8, b.m, b.s, b.full);
    },
    2 * kPx);
ZB_PAIR(
    "Mean_StdDev_16u_C1MR",
    [] {
        auto& b = zb::buffers<Buffers>();
        ZB_CHECK(zebiMean_StdDev_16u_C1MR(zb::px<Zeb16u>(b.a16), zb::step(b.a16), zb::px<Zeb8u>(b.mask),
                                          zb::step(b.mask), kRoi, &b.mean, &b.sd));
    },
    [] {
        auto& b = zb::buffers<Buffers>();
        cv::meanStdDev(b.a16, b.m, b.s, b.mask);
    },
    3 * kPx);
ZB_PAIR(
    "Mean_StdDev_32f_C1R",
    [] {
        auto& b = zb::buffers<Buffers>();
        ZB_CHECK(zebiMean_StdDev_32f_C1R(zb::px<Zeb32f>(b.af), zb::step(b.af), kRoi, &b.mean, &b.sd));
    },
    [] {
        auto& b = zb::buffers<Buffers>();
        cv::meanStdDev(b.af, b.m, b.s);
    },
    4 * kPx);
ZB_PAIR(
    "Mean_StdDev_32f_C1MR",
    [] {
        auto& b = zb::buffers<Buffers>();
        ZB_CHECK(zebiMean_StdDev_32f_C1MR(zb::px<Zeb32f>(b.af), zb::step(b.af), zb::px<Zeb8u>(b.mask), zb::step(b.mask),
                                          kRoi, &b.mean, &b.sd));
    },
    [] {
        auto& b = zb::buffers<Buffers>();
        cv::meanStdDev(b.af, b.m, b.s, b.mask);
    },
    5 * kPx);
// OpenCV has no single-channel-of-three form: it gives all three channels.
ZB_PAIR(
    "Mean_StdDev_8u_C3CR",
    [] {
        auto& b = zb::buffers<Buffers>();
        ZB_CHECK(zebiMean_StdDev_8u_C3CR(zb::px<Zeb8u>(b.c8), zb::step(b.c8), kRoi, 2, &b.mean, &b.sd));
    },
    [] {
        auto& b = zb::buffers<Buffers>();
        cv::meanStdDev(b.c8, b.m, b.s);
    },
    3 * kPx);
ZB_PAIR(
    "MinMaxIndx_8u_C1R",
    [] {
        auto& b = zb::buffers<Buffers>();
        ZB_CHECK(zebiMinMaxIndx_8u_C1R(zb::px<Zeb8u>(b.a8), zb::step(b.a8), kRoi, &b.fmin, &b.fmax, &b.pmin, &b.pmax));
    },
    [] {
        auto& b = zb::buffers<Buffers>();
        cv::minMaxLoc(b.a8, &b.lo, &b.hi, &b.qmin, &b.qmax);
    },
    kPx);
ZB_PAIR(
    "MinMaxIndx_8u_C1MR",
    [] {
        auto& b = zb::buffers<Buffers>();
        ZB_CHECK(zebiMinMaxIndx_8u_C1MR(zb::px<Zeb8u>(b.a8), zb::step(b.a8), zb::px<Zeb8u>(b.mask), zb::step(b.mask),
                                        kRoi, &b.fmin, &b.fmax, &b.pmin, &b.pmax));
    },
    [] {
        auto& b = zb::buffers<Buffers>();
        cv::minMaxLoc(b.a8, &b.lo, &b.hi, &b.qmin, &b.qmax, b.mask);
    },
    2 * kPx);
ZB_PAIR(
    "MinMaxIndx_32f_C1R",
    [] {
        auto& b = zb::buffers<Buffers>();
        ZB_CHECK(
            zebiMinMaxIndx_32f_C1R(zb::px<Zeb32f>(b.af), zb::step(b.af), kRoi, &b.fmin, &b.fmax, &b.pmin, &b.pmax));
    },
    [] {
        auto& b = zb::buffers<Buffers>();
        cv::minMaxLoc(b.af, &b.lo, &b.hi, &b.qmin, &b.qmax);
    },
    4 * kPx);
ZB_PAIR(
    "Norm_Inf_8u_C1MR",
    [] {
        auto& b = zb::buffers<Buffers>();
        ZB_CHECK(zebiNorm_Inf_8u_C1MR(zb::px<Zeb8u>(b.a8), zb::step(b.a8), zb::px<Zeb8u>(b.mask), zb::step(b.mask),
                                      kRoi, &b.value));
    },
    [] {
        auto& b = zb::buffers<Buffers>();
        b.value = cv::norm(b.a8, cv::NORM_INF, b.mask);
    },
    2 * kPx);
ZB_PAIR(
    "NormDiff_L1_8u_C1MR",
    [] {
        auto& b = zb::buffers<Buffers>();
        ZB_CHECK(zebiNormDiff_L1_8u_C1MR(zb::px<Zeb8u>(b.a8), zb::step(b.a8), zb::px<Zeb8u>(b.b8), zb::step(b.b8),
                                         zb::px<Zeb8u>(b.mask), zb::step(b.mask), kRoi, &b.value));
    },
    [] {
        auto& b = zb::buffers<Buffers>();
        b.value = cv::norm(b.a8, b.b8, cv::NORM_L1, b.mask);
    },
    3 * kPx);
ZB_PAIR(
    "NormDiff_L2_8u_C1MR",
    [] {
        auto& b = zb::buffers<Buffers>();
        ZB_CHECK(zebiNormDiff_L2_8u_C1MR(zb::px<Zeb8u>(b.a8), zb::step(b.a8), zb::px<Zeb8u>(b.b8), zb::step(b.b8),
                                         zb::px<Zeb8u>(b.mask), zb::step(b.mask), kRoi, &b.value));
    },
    [] {
        auto& b = zb::buffers<Buffers>();
        b.value = cv::norm(b.a8, b.b8, cv::NORM_L2, b.mask);
    },
    3 * kPx);
ZB_PAIR(
    "NormDiff_L2_8u_C1MR full mask",
    [] {
        auto& b = zb::buffers<Buffers>();
        ZB_CHECK(zebiNormDiff_L2_8u_C1MR(zb::px<Zeb8u>(b.a8), zb::step(b.a8), zb::px<Zeb8u>(b.b8), zb::step(b.b8),
                                         zb::px<Zeb8u>(b.full), zb::step(b.full), kRoi, &b.value));
    },
    [] {
        auto& b = zb::buffers<Buffers>();
        b.value = cv::norm(b.a8, b.b8, cv::NORM_L2, b.full);
    },
    3 * kPx);
ZB_PAIR(
    "Norm_L2_32f_C1MR full mask",
    [] {
        auto& b = zb::buffers<Buffers>();
        ZB_CHECK(zebiNorm_L2_32f_C1MR(zb::px<Zeb32f>(b.af), zb::step(b.af), zb::px<Zeb8u>(b.full), zb::step(b.full),
                                      kRoi, &b.value));
    },
    [] {
        auto& b = zb::buffers<Buffers>();
        b.value = cv::norm(b.af, cv::NORM_L2, b.full);
    },
    5 * kPx);
ZB_PAIR(
    "Norm_L2_32f_C1MR",
    [] {
        auto& b = zb::buffers<Buffers>();
        ZB_CHECK(zebiNorm_L2_32f_C1MR(zb::px<Zeb32f>(b.af), zb::step(b.af), zb::px<Zeb8u>(b.mask), zb::step(b.mask),
                                      kRoi, &b.value));
    },
    [] {
        auto& b = zb::buffers<Buffers>();
        b.value = cv::norm(b.af, cv::NORM_L2, b.mask);
    },
    5 * kPx);
ZB_PAIR(
    "NormDiff_Inf_32f_C1MR",
    [] {
        auto& b = zb::buffers<Buffers>();
        ZB_CHECK(zebiNormDiff_Inf_32f_C1MR(zb::px<Zeb32f>(b.af), zb::step(b.af), zb::px<Zeb32f>(b.bf), zb::step(b.bf),
                                           zb::px<Zeb8u>(b.mask), zb::step(b.mask), kRoi, &b.value));
    },
    [] {
        auto& b = zb::buffers<Buffers>();
        b.value = cv::norm(b.af, b.bf, cv::NORM_INF, b.mask);
    },
    9 * kPx);
ZB_PAIR(
    "NormRel_L1_32f_C1MR",
    [] {
        auto& b = zb::buffers<Buffers>();
        ZB_CHECK(zebiNormRel_L1_32f_C1MR(zb::px<Zeb32f>(b.af), zb::step(b.af), zb::px<Zeb32f>(b.bf), zb::step(b.bf),
                                         zb::px<Zeb8u>(b.mask), zb::step(b.mask), kRoi, &b.value));
    },
    [] {
        auto& b = zb::buffers<Buffers>();
        b.value = cv::norm(b.af, b.bf, cv::NORM_L1 | cv::NORM_RELATIVE, b.mask);
    },
    9 * kPx);
ZB_PAIR(
    "NormDiff_L2_16u_C1MR",
    [] {
        auto& b = zb::buffers<Buffers>();
        ZB_CHECK(zebiNormDiff_L2_16u_C1MR(zb::px<Zeb16u>(b.a16), zb::step(b.a16), zb::px<Zeb16u>(b.a16),
                                          zb::step(b.a16), zb::px<Zeb8u>(b.mask), zb::step(b.mask), kRoi, &b.value));
    },
    [] {
        auto& b = zb::buffers<Buffers>();
        b.value = cv::norm(b.a16, b.a16, cv::NORM_L2, b.mask);
    },
    5 * kPx);

}  // namespace
