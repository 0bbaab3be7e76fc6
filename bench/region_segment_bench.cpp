// SPDX-License-Identifier: Apache-2.0
// Flood fill, marker labelling, speckles and watershed against OpenCV, on
// a photograph scaled to 1920x1080 (its edge map for the binary inputs).
#include <opencv2/calib3d.hpp>
#include <opencv2/core.hpp>
#include <opencv2/imgcodecs.hpp>
#include <opencv2/imgproc.hpp>

#include "bench.h"
#include "zebcv.h"

namespace {

using zb::kPx;
using zb::kRoi;
using zb::px;
using zb::step;

struct Buffers {
    cv::Mat grey = zb::photograph("fruits.jpg");
    cv::Mat edges;  // 255 on edges, 0 elsewhere
    cv::Mat fillZeb, fillCv;
    cv::Mat labels = cv::Mat(zb::kH, zb::kW, CV_32S), labelsCv;
    cv::Mat disp, dispZeb, dispCv;
    cv::Mat colour, markers16, markers32, wsZeb, wsCv;
    zb::Work fillWork{zebiFloodFillGetSize, kRoi}, gradWork{zebiFloodFillGetSize_Grad, kRoi};
    zb::Work speckWork{zebiMarkSpecklesGetBufferSize, kRoi, zeb16s, 1};
    zb::Work wsWork{zebiSegmentWatershedGetBufferSize_8u16u_C1R, kRoi};
    int toggle = 0;
    Buffers() {
        cv::Canny(grey, edges, 60, 140);
        cv::dilate(edges, edges, cv::Mat());  // closed contours: regions of many shapes
        fillZeb = edges.clone(), fillCv = edges.clone();
        // Disparity-like: the photograph's levels / 8 with specks of noise.
        grey.convertTo(disp, CV_16S, 1.0 / 8);
        cv::Mat speck = zb::random_mat(CV_8U), noise = zb::random_mat(CV_16S, 0, 64);
        noise.copyTo(disp, speck < 20);
        dispZeb = disp.clone(), dispCv = disp.clone();
        cv::cvtColor(grey, colour, cv::COLOR_GRAY2BGR);
        markers32 = cv::Mat::zeros(zb::kH, zb::kW, CV_32S);
        int label = 1;
        for (int y = 20; y < zb::kH - 20; y += 40)
            for (int x = 20; x < zb::kW - 20; x += 40) markers32.at<int>(y, x) = label++;
        markers32.convertTo(markers16, CV_16U);
        wsZeb = markers16.clone(), wsCv = markers32.clone();
    }
    // Every fill alternates between the values 1 and 2, so every call fills
    // the same region anew.
    Zeb8u next() { return Zeb8u(1 + (toggle++ & 1)); }
};

const ZebiPoint kSeed{960, 540};

Buffers& bufs() {
    auto& b = zb::buffers<Buffers>();
    return b;
}

ZB_PAIR("FloodFill_4Con_8u_C1IR",
        [] {
            auto& b = bufs();
            ZebConnectedComp rc;
            ZB_CHECK(zebiFloodFill_4Con_8u_C1IR(px<Zeb8u>(b.fillZeb), step(b.fillZeb), kRoi, kSeed, b.next(), &rc,
                                                b.fillWork.data()));
        },
        [] {
            auto& b = bufs();
            cv::floodFill(b.fillCv, cv::Point(kSeed.x, kSeed.y), b.next(), nullptr, 0, 0, 4);
        },
        0);
ZB_PAIR("FloodFill_8Con_8u_C1IR",
        [] {
            auto& b = bufs();
            ZebConnectedComp rc;
            ZB_CHECK(zebiFloodFill_8Con_8u_C1IR(px<Zeb8u>(b.fillZeb), step(b.fillZeb), kRoi, kSeed, b.next(), &rc,
                                                b.fillWork.data()));
        },
        [] {
            auto& b = bufs();
            cv::floodFill(b.fillCv, cv::Point(kSeed.x, kSeed.y), b.next(), nullptr, 0, 0, 8);
        },
        0);
ZB_PAIR("FloodFill_Range4Con_8u_C1IR",
        [] {
            auto& b = bufs();
            ZebConnectedComp rc;
            ZB_CHECK(zebiFloodFill_Range4Con_8u_C1IR(px<Zeb8u>(b.fillZeb), step(b.fillZeb), kRoi, kSeed, b.next(), 5,
                                                     5, &rc, b.fillWork.data()));
        },
        [] {
            auto& b = bufs();
            cv::floodFill(b.fillCv, cv::Point(kSeed.x, kSeed.y), b.next(), nullptr, 5, 5,
                          4 | cv::FLOODFILL_FIXED_RANGE);
        },
        0);
ZB_PAIR("FloodFill_Grad4Con_8u_C1IR",
        [] {
            auto& b = bufs();
            ZebConnectedComp rc;
            ZB_CHECK(zebiFloodFill_Grad4Con_8u_C1IR(px<Zeb8u>(b.fillZeb), step(b.fillZeb), kRoi, kSeed, b.next(), 5, 5,
                                                    &rc, b.gradWork.data()));
        },
        [] {
            auto& b = bufs();
            cv::floodFill(b.fillCv, cv::Point(kSeed.x, kSeed.y), b.next(), nullptr, 5, 5, 4);
        },
        0);
ZB_PAIR("LabelMarkers_8u32s_C1R",
        [] {
            auto& b = bufs();
            int n = 0;
            ZB_CHECK(zebiLabelMarkers_8u32s_C1R(px<Zeb8u>(b.edges), step(b.edges), px<Zeb32s>(b.labels),
                                                step(b.labels), kRoi, 1, 1 << 30, 0, &n, b.fillWork.data()));
        },
        [] {
            auto& b = bufs();
            cv::connectedComponents(b.edges, b.labelsCv, 8, CV_32S);
        },
        5 * kPx);
ZB_PAIR("MarkSpeckles_16s_C1IR",
        [] {
            auto& b = bufs();
            ZB_CHECK(zebiMarkSpeckles_16s_C1IR(px<Zeb16s>(b.dispZeb), step(b.dispZeb), kRoi, 0, 100, 1, 1,
                                               b.speckWork.data()));
        },
        [] {
            auto& b = bufs();
            cv::filterSpeckles(b.dispCv, 0, 100, 1);
        },
        4 * kPx);
// The markers are restored before every call on both sides.
ZB_PAIR("SegmentWatershed_8u16u_C1IR",
        [] {
            auto& b = bufs();
            b.markers16.copyTo(b.wsZeb);
            ZB_CHECK(zebiSegmentWatershed_8u16u_C1IR(px<Zeb8u>(b.grey), step(b.grey), px<Zeb16u>(b.wsZeb),
                                                     step(b.wsZeb), kRoi, 1, zebSegmentDiff, b.wsWork.data()));
        },
        [] {
            auto& b = bufs();
            b.markers32.copyTo(b.wsCv);
            cv::watershed(b.colour, b.wsCv);
        },
        0);

}  // namespace
