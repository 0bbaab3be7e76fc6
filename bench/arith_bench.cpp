// SPDX-License-Identifier: Apache-2.0
// Pixel difference and accumulation against OpenCV.
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

#include "bench.h"
#include "zebcv.h"

namespace {

using zb::kPx;
using zb::kRoi;
using zb::px;
using zb::step;

struct Buffers {
    // Sources start at 1: thousands of weighted updates of the same pixels
    // drive the accumulator towards the source, and towards zero where it is
    // 0, into subnormal floats whose processor assists would then be timed
    // instead of either library.
    cv::Mat a8 = zb::random_mat(CV_8U, 1, 256), b8 = zb::random_mat(CV_8U), d8 = zb::random_mat(CV_8U);
    cv::Mat a8c3 = zb::random_mat(CV_8UC3), b8c3 = zb::random_mat(CV_8UC3), d8c3 = zb::random_mat(CV_8UC3);
    cv::Mat a16 = zb::random_mat(CV_16U, 0, 65536), b16 = zb::random_mat(CV_16U, 0, 65536),
            d16 = zb::random_mat(CV_16U);
    cv::Mat af = zb::random_mat(CV_32F, 1, 256), bf = zb::random_mat(CV_32F), df = zb::random_mat(CV_32F);
    cv::Mat mask = zb::random_mat(CV_8U, 0, 2);
    cv::Mat acc = zb::random_mat(CV_32F);
};

ZB_PAIR("AbsDiff_8u_C1R",
        [] {
            auto& b = zb::buffers<Buffers>();
            ZB_CHECK(zebiAbsDiff_8u_C1R(px<Zeb8u>(b.a8), step(b.a8), px<Zeb8u>(b.b8), step(b.b8), px<Zeb8u>(b.d8),
                                        step(b.d8), kRoi));
        },
        [] { auto& b = zb::buffers<Buffers>(); cv::absdiff(b.a8, b.b8, b.d8); }, 3 * kPx);
ZB_PAIR("AbsDiff_8u_C3R",
        [] {
            auto& b = zb::buffers<Buffers>();
            ZB_CHECK(zebiAbsDiff_8u_C3R(px<Zeb8u>(b.a8c3), step(b.a8c3), px<Zeb8u>(b.b8c3), step(b.b8c3),
                                        px<Zeb8u>(b.d8c3), step(b.d8c3), kRoi));
        },
        [] { auto& b = zb::buffers<Buffers>(); cv::absdiff(b.a8c3, b.b8c3, b.d8c3); }, 9 * kPx);
ZB_PAIR("AbsDiff_16u_C1R",
        [] {
            auto& b = zb::buffers<Buffers>();
            ZB_CHECK(zebiAbsDiff_16u_C1R(px<Zeb16u>(b.a16), step(b.a16), px<Zeb16u>(b.b16), step(b.b16),
                                         px<Zeb16u>(b.d16), step(b.d16), kRoi));
        },
        [] { auto& b = zb::buffers<Buffers>(); cv::absdiff(b.a16, b.b16, b.d16); }, 6 * kPx);
ZB_PAIR("AbsDiff_32f_C1R",
        [] {
            auto& b = zb::buffers<Buffers>();
            ZB_CHECK(zebiAbsDiff_32f_C1R(px<Zeb32f>(b.af), step(b.af), px<Zeb32f>(b.bf), step(b.bf), px<Zeb32f>(b.df),
                                         step(b.df), kRoi));
        },
        [] { auto& b = zb::buffers<Buffers>(); cv::absdiff(b.af, b.bf, b.df); }, 12 * kPx);
ZB_PAIR("AbsDiffC_8u_C1R",
        [] {
            auto& b = zb::buffers<Buffers>();
            ZB_CHECK(zebiAbsDiffC_8u_C1R(px<Zeb8u>(b.a8), step(b.a8), px<Zeb8u>(b.d8), step(b.d8), kRoi, 77));
        },
        [] { auto& b = zb::buffers<Buffers>(); cv::absdiff(b.a8, cv::Scalar(77), b.d8); }, 2 * kPx);
ZB_PAIR("AbsDiffC_32f_C1R",
        [] {
            auto& b = zb::buffers<Buffers>();
            ZB_CHECK(zebiAbsDiffC_32f_C1R(px<Zeb32f>(b.af), step(b.af), px<Zeb32f>(b.df), step(b.df), kRoi, 7.5f));
        },
        [] { auto& b = zb::buffers<Buffers>(); cv::absdiff(b.af, cv::Scalar(7.5), b.df); }, 8 * kPx);
ZB_PAIR("Add_8u32f_C1IR",
        [] {
            auto& b = zb::buffers<Buffers>();
            ZB_CHECK(zebiAdd_8u32f_C1IR(px<Zeb8u>(b.a8), step(b.a8), px<Zeb32f>(b.acc), step(b.acc), kRoi));
        },
        [] { auto& b = zb::buffers<Buffers>(); cv::accumulate(b.a8, b.acc); }, 9 * kPx);
ZB_PAIR("Add_8u32f_C1IMR",
        [] {
            auto& b = zb::buffers<Buffers>();
            ZB_CHECK(zebiAdd_8u32f_C1IMR(px<Zeb8u>(b.a8), step(b.a8), px<Zeb8u>(b.mask), step(b.mask),
                                         px<Zeb32f>(b.acc), step(b.acc), kRoi));
        },
        [] { auto& b = zb::buffers<Buffers>(); cv::accumulate(b.a8, b.acc, b.mask); }, 10 * kPx);
ZB_PAIR("Add_16u32f_C1IR",
        [] {
            auto& b = zb::buffers<Buffers>();
            ZB_CHECK(zebiAdd_16u32f_C1IR(px<Zeb16u>(b.a16), step(b.a16), px<Zeb32f>(b.acc), step(b.acc), kRoi));
        },
        [] { auto& b = zb::buffers<Buffers>(); cv::accumulate(b.a16, b.acc); }, 10 * kPx);
ZB_PAIR("AddSquare_8u32f_C1IR",
        [] {
            auto& b = zb::buffers<Buffers>();
            ZB_CHECK(zebiAddSquare_8u32f_C1IR(px<Zeb8u>(b.a8), step(b.a8), px<Zeb32f>(b.acc), step(b.acc), kRoi));
        },
        [] { auto& b = zb::buffers<Buffers>(); cv::accumulateSquare(b.a8, b.acc); }, 9 * kPx);
ZB_PAIR("AddSquare_8u32f_C1IMR",
        [] {
            auto& b = zb::buffers<Buffers>();
            ZB_CHECK(zebiAddSquare_8u32f_C1IMR(px<Zeb8u>(b.a8), step(b.a8), px<Zeb8u>(b.mask), step(b.mask),
                                               px<Zeb32f>(b.acc),
                                               step(b.acc), kRoi));
        },
        [] { auto& b = zb::buffers<Buffers>(); cv::accumulateSquare(b.a8, b.acc, b.mask); }, 10 * kPx);
ZB_PAIR("AddSquare_32f_C1IR",
        [] {
            auto& b = zb::buffers<Buffers>();
            ZB_CHECK(zebiAddSquare_32f_C1IR(px<Zeb32f>(b.af), step(b.af), px<Zeb32f>(b.acc), step(b.acc), kRoi));
        },
        [] { auto& b = zb::buffers<Buffers>(); cv::accumulateSquare(b.af, b.acc); }, 12 * kPx);
ZB_PAIR("AddProduct_8u32f_C1IR",
        [] {
            auto& b = zb::buffers<Buffers>();
            ZB_CHECK(zebiAddProduct_8u32f_C1IR(px<Zeb8u>(b.a8), step(b.a8), px<Zeb8u>(b.b8), step(b.b8),
                                               px<Zeb32f>(b.acc), step(b.acc), kRoi));
        },
        [] { auto& b = zb::buffers<Buffers>(); cv::accumulateProduct(b.a8, b.b8, b.acc); }, 10 * kPx);
ZB_PAIR("AddProduct_32f_C1IMR",
        [] {
            auto& b = zb::buffers<Buffers>();
            ZB_CHECK(zebiAddProduct_32f_C1IMR(px<Zeb32f>(b.af), step(b.af), px<Zeb32f>(b.bf), step(b.bf),
                                              px<Zeb8u>(b.mask),
                                              step(b.mask), px<Zeb32f>(b.acc), step(b.acc), kRoi));
        },
        [] { auto& b = zb::buffers<Buffers>(); cv::accumulateProduct(b.af, b.bf, b.acc, b.mask); }, 17 * kPx);
ZB_PAIR("AddWeighted_8u32f_C1IR",
        [] {
            auto& b = zb::buffers<Buffers>();
            ZB_CHECK(zebiAddWeighted_8u32f_C1IR(px<Zeb8u>(b.a8), step(b.a8), px<Zeb32f>(b.acc), step(b.acc), kRoi,
                                                0.05f));
        },
        [] { auto& b = zb::buffers<Buffers>(); cv::accumulateWeighted(b.a8, b.acc, 0.05); }, 9 * kPx);
ZB_PAIR("AddWeighted_8u32f_C1IMR",
        [] {
            auto& b = zb::buffers<Buffers>();
            ZB_CHECK(zebiAddWeighted_8u32f_C1IMR(px<Zeb8u>(b.a8), step(b.a8), px<Zeb8u>(b.mask), step(b.mask),
                                                 px<Zeb32f>(b.acc),
                                                 step(b.acc), kRoi, 0.05f));
        },
        [] { auto& b = zb::buffers<Buffers>(); cv::accumulateWeighted(b.a8, b.acc, 0.05, b.mask); }, 10 * kPx);
ZB_PAIR("AddWeighted_32f_C1IR",
        [] {
            auto& b = zb::buffers<Buffers>();
            ZB_CHECK(zebiAddWeighted_32f_C1IR(px<Zeb32f>(b.af), step(b.af), px<Zeb32f>(b.acc), step(b.acc), kRoi,
                                              0.05f));
        },
        [] { auto& b = zb::buffers<Buffers>(); cv::accumulateWeighted(b.af, b.acc, 0.05); }, 12 * kPx);

}  // namespace
