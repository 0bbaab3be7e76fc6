// SPDX-License-Identifier: Apache-2.0
// Derivative and smoothing filters against OpenCV's Sobel, Scharr,
// Laplacian and blur with the replicate border, on the same 1920x1080
// buffers; work buffers are allocated once, outside the timed loop.
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
    cv::Mat s8 = zb::random_mat(CV_8U), sf = zb::random_mat(CV_32F);
    cv::Mat d16 = zb::random_mat(CV_16S, 0, 1), df = zb::random_mat(CV_32F), d8 = zb::random_mat(CV_8U);
    // One buffer, grown to the largest size any pair's query gives.
    zb::Work work = [] {
        zb::Work w;
        for (int mask : {33, 55}) {
            w.fit(zebiFilterLaplacianGetBufferSize_32f_C1R, kRoi, mask);
            w.fit(zebiFilterSobelVertGetBufferSize_32f_C1R, kRoi, mask);
            w.fit(zebiFilterLowpassGetBufferSize_8u_C1R, kRoi, mask);
        }
        w.fit(zebiFilterScharrVertGetBufferSize_8u16s_C1R, kRoi);
        return w;
    }();
};

ZB_PAIR("FilterSobelHorizBorder_8u16s_C1R 3x3",
        [] {
            auto& b = zb::buffers<Buffers>();
            ZB_CHECK(zebiFilterSobelHorizBorder_8u16s_C1R(px<Zeb8u>(b.s8), step(b.s8), px<Zeb16s>(b.d16), step(b.d16), kRoi,
                     33, 1, 0, b.work.data()));
        },
        [] { auto& b = zb::buffers<Buffers>(); cv::Sobel(b.s8, b.d16, CV_16S, 0, 1, 3, 1, 0, cv::BORDER_REPLICATE); }, 3 * kPx);
ZB_PAIR("FilterSobelVertBorder_8u16s_C1R 3x3",
        [] {
            auto& b = zb::buffers<Buffers>();
            ZB_CHECK(zebiFilterSobelVertBorder_8u16s_C1R(px<Zeb8u>(b.s8), step(b.s8), px<Zeb16s>(b.d16), step(b.d16), kRoi,
                     33, 1, 0, b.work.data()));
        },
        [] { auto& b = zb::buffers<Buffers>(); cv::Sobel(b.s8, b.d16, CV_16S, 1, 0, 3, 1, 0, cv::BORDER_REPLICATE); }, 3 * kPx);
ZB_PAIR("FilterScharrVertBorder_8u16s_C1R",
        [] {
            auto& b = zb::buffers<Buffers>();
            ZB_CHECK(zebiFilterScharrVertBorder_8u16s_C1R(px<Zeb8u>(b.s8), step(b.s8), px<Zeb16s>(b.d16), step(b.d16), kRoi,
                     1, 0, b.work.data()));
        },
        [] { auto& b = zb::buffers<Buffers>(); cv::Scharr(b.s8, b.d16, CV_16S, 1, 0, 1, 0, cv::BORDER_REPLICATE); }, 3 * kPx);
ZB_PAIR("FilterScharrHorizBorder_8u16s_C1R",
        [] {
            auto& b = zb::buffers<Buffers>();
            ZB_CHECK(zebiFilterScharrHorizBorder_8u16s_C1R(px<Zeb8u>(b.s8), step(b.s8), px<Zeb16s>(b.d16), step(b.d16),
                     kRoi, 1, 0, b.work.data()));
        },
        [] { auto& b = zb::buffers<Buffers>(); cv::Scharr(b.s8, b.d16, CV_16S, 0, 1, 1, 0, cv::BORDER_REPLICATE); }, 3 * kPx);
ZB_PAIR("FilterSobelVertBorder_32f_C1R 5x5",
        [] {
            auto& b = zb::buffers<Buffers>();
            ZB_CHECK(zebiFilterSobelVertBorder_32f_C1R(px<Zeb32f>(b.sf), step(b.sf), px<Zeb32f>(b.df), step(b.df),
                     kRoi, 55, 1, 0.f, b.work.data()));
        },
        [] { auto& b = zb::buffers<Buffers>(); cv::Sobel(b.sf, b.df, CV_32F, 1, 0, 5, 1, 0, cv::BORDER_REPLICATE); }, 8 * kPx);
ZB_PAIR("FilterSobelHorizBorder_32f_C1R 5x5",
        [] {
            auto& b = zb::buffers<Buffers>();
            ZB_CHECK(zebiFilterSobelHorizBorder_32f_C1R(px<Zeb32f>(b.sf), step(b.sf), px<Zeb32f>(b.df), step(b.df),
                     kRoi, 55, 1, 0.f, b.work.data()));
        },
        [] { auto& b = zb::buffers<Buffers>(); cv::Sobel(b.sf, b.df, CV_32F, 0, 1, 5, 1, 0, cv::BORDER_REPLICATE); }, 8 * kPx);
ZB_PAIR("FilterLaplacianBorder_32f_C1R 3x3",
        [] {
            auto& b = zb::buffers<Buffers>();
            ZB_CHECK(zebiFilterLaplacianBorder_32f_C1R(px<Zeb32f>(b.sf), step(b.sf), px<Zeb32f>(b.df), step(b.df),
                     kRoi, 33, 1, 0.f, b.work.data()));
        },
        [] { auto& b = zb::buffers<Buffers>(); cv::Laplacian(b.sf, b.df, CV_32F, 3, 1, 0, cv::BORDER_REPLICATE); }, 8 * kPx);
ZB_PAIR("FilterLowpassBorder_8u_C1R 5x5",
        [] {
            auto& b = zb::buffers<Buffers>();
            ZB_CHECK(zebiFilterLowpassBorder_8u_C1R(px<Zeb8u>(b.s8), step(b.s8), px<Zeb8u>(b.d8), step(b.d8), kRoi,
                     55, 1, 0, b.work.data()));
        },
        [] { auto& b = zb::buffers<Buffers>(); cv::blur(b.s8, b.d8, {5, 5}, {-1, -1}, cv::BORDER_REPLICATE); }, 2 * kPx);
ZB_PAIR("FilterLowpassBorder_8u_C1R 3x3",
        [] {
            auto& b = zb::buffers<Buffers>();
            ZB_CHECK(zebiFilterLowpassBorder_8u_C1R(px<Zeb8u>(b.s8), step(b.s8), px<Zeb8u>(b.d8), step(b.d8), kRoi,
                     33, 1, 0, b.work.data()));
        },
        [] { auto& b = zb::buffers<Buffers>(); cv::blur(b.s8, b.d8, {3, 3}, {-1, -1}, cv::BORDER_REPLICATE); }, 2 * kPx);

}  // namespace
