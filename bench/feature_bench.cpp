// SPDX-License-Identifier: Apache-2.0
// Edge detection and corner response against OpenCV's Canny and
// cornerHarris on a photograph scaled to 1920x1080 (edge maps depend on the
// content: random pixels would make nearly every pixel a candidate); work
// buffers are allocated once, outside the timed loop.
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

#include <cstdio>
#include <cstdlib>

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wmissing-field-initializers"
#pragma GCC diagnostic ignored "-Wunused-function"
#pragma GCC diagnostic ignored "-Wsign-compare"
#pragma GCC diagnostic ignored "-Wunused-but-set-variable"
#pragma GCC diagnostic ignored "-Wimplicit-fallthrough"
#pragma GCC diagnostic pop

#include "bench.h"
#include "zebcv.h"

namespace {

using zb::kPx;
using zb::kRoi;
using zb::px;
using zb::step;

constexpr float kLow = 50.f, kHigh = 150.f;

struct Buffers {
    cv::Mat src = zb::photograph("building.jpg"), edges = zb::random_mat(CV_8U), resp = zb::random_mat(CV_32F);
    cv::Mat dx, dy;
    zb::Work canny{zebiCannyBorderGetSize, kRoi, 2, 33, zeb8u};
    zb::Work cannyDeriv{zebiCannyGetSize, kRoi};
    zb::Work harris{zebiHarrisCornerGetBufferSize, kRoi, 33, 3, zeb8u, 1};
    Buffers() {
        cv::Sobel(src, dx, CV_16S, 1, 0, 3, 1, 0, cv::BORDER_REPLICATE);
        cv::Sobel(src, dy, CV_16S, 0, 1, 3, 1, 0, cv::BORDER_REPLICATE);
    }
};

void canny_border(int norm) {
    auto& b = zb::buffers<Buffers>();
    ZB_CHECK(zebiCannyBorder_8u_C1R(px<Zeb8u>(b.src), step(b.src), px<Zeb8u>(b.edges), step(b.edges), kRoi, 2, 33, 1,
                                    0, kLow, kHigh, norm, b.canny.data()));
}

ZB_PAIR("CannyBorder_8u_C1R 3x3 L1", [] { canny_border(2); },
        [] { auto& b = zb::buffers<Buffers>(); cv::Canny(b.src, b.edges, kLow, kHigh, 3, false); }, 2 * kPx);
ZB_PAIR("CannyBorder_8u_C1R 3x3 L2", [] { canny_border(4); },
        [] { auto& b = zb::buffers<Buffers>(); cv::Canny(b.src, b.edges, kLow, kHigh, 3, true); }, 2 * kPx);
ZB_PAIR("Canny_16s8u_C1R",
        [] {
            auto& b = zb::buffers<Buffers>();
            ZB_CHECK(zebiCanny_16s8u_C1R(px<Zeb16s>(b.dx), step(b.dx), px<Zeb16s>(b.dy), step(b.dy), px<Zeb8u>(b.edges),
                                         step(b.edges), kRoi, kLow, kHigh, b.cannyDeriv.data()));
        },
        [] { auto& b = zb::buffers<Buffers>(); cv::Canny(b.dx, b.dy, b.edges, kLow, kHigh, false); }, 5 * kPx);
ZB_PAIR("HarrisCorner_8u32f_C1R Sobel 3x3 window 3",
        [] {
            auto& b = zb::buffers<Buffers>();
            ZB_CHECK(zebiHarrisCorner_8u32f_C1R(px<Zeb8u>(b.src), step(b.src), px<Zeb32f>(b.resp), step(b.resp), kRoi, 2,
                                                33, 3, 0.04f, 1.f, 1, 0, b.harris.data()));
        },
        [] { auto& b = zb::buffers<Buffers>(); cv::cornerHarris(b.src, b.resp, 3, 3, 0.04, cv::BORDER_REPLICATE); },
        5 * kPx);

}  // namespace
