// SPDX-License-Identifier: Apache-2.0
// Reconstruction, grey-scale and compound morphology against OpenCV on the
// same 1920x1080 buffers. Reconstruction runs the dome setup on a
// photograph (marker = image - 40) against OpenCV's iterate-until-stable
// loop of dilate and min; both sides start from a fresh copy of the marker.
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

#include <cstring>

// The photograph is decoded with the header-only image reader, private to
// this file.
#define STB_IMAGE_IMPLEMENTATION
#define STB_IMAGE_STATIC
#define STBI_ONLY_JPEG
#include <stb/stb_image.h>

#include "bench.h"
#include "zebcv.h"

namespace {

using zb::kPx;
using zb::kRoi;
using zb::px;
using zb::step;

cv::Mat photograph() {
    int w = 0, h = 0, n = 0;
    unsigned char* p = stbi_load("/usr/share/doc/opencv-doc/examples/data/fruits.jpg", &w, &h, &n, 1);
    if (!p) {
        std::fprintf(stderr, "the sample photograph fruits.jpg is missing (Debian's opencv-doc)\n");
        std::abort();
    }
    cv::Mat big;
    cv::resize(cv::Mat(h, w, CV_8U, p), big, cv::Size(zb::kW, zb::kH), 0, 0, cv::INTER_LINEAR);
    stbi_image_free(p);
    return big;
}

struct Recon {
    cv::Mat mask = photograph();
    cv::Mat marker = [this] {
        cv::Mat m;
        cv::subtract(mask, cv::Scalar(40), m);
        return m;
    }();
    cv::Mat j = marker.clone(), k = marker.clone(), diff;
    zb::Work work{zebiMorphReconstructGetBufferSize_8u_C1, kRoi};
    cv::Mat kernel = cv::getStructuringElement(cv::MORPH_RECT, {3, 3});
};

ZB_PAIR("MorphReconstructDilate_8u_C1IR photograph dome, 8-neighbourhood",
        [] {
            auto& b = zb::buffers<Recon>();
            b.marker.copyTo(b.j);
            ZB_CHECK(zebiMorphReconstructDilate_8u_C1IR(px<Zeb8u>(b.mask), step(b.mask), px<Zeb8u>(b.j), step(b.j),
                                                        kRoi, b.work.data(), 1));
        },
        [] {
            auto& b = zb::buffers<Recon>();
            b.marker.copyTo(b.j);
            for (;;) {
                cv::dilate(b.j, b.k, b.kernel, {-1, -1}, 1, cv::BORDER_REPLICATE);
                cv::min(b.k, b.mask, b.k);
                cv::compare(b.k, b.j, b.diff, cv::CMP_NE);
                std::swap(b.j, b.k);
                if (cv::countNonZero(b.diff) == 0) break;
            }
        },
        0);

struct Gray {
    cv::Mat s8 = zb::random_mat(CV_8U), d8 = zb::random_mat(CV_8U);
    std::vector<Zeb8u> state = [] {
        const Zeb32s flat[9] = {};
        int n = 0;
        if (zebiMorphGrayGetSize_8u_C1R(zb::kW, flat, {3, 3}, &n) != 0) std::abort();
        std::vector<Zeb8u> s(static_cast<std::size_t>(n));
        if (zebiMorphGrayInit_8u_C1R(zb::kW, flat, {3, 3}, {1, 1}, reinterpret_cast<ZebiMorphGrayState*>(s.data())))
            std::abort();
        return s;
    }();
    cv::Mat kernel = cv::getStructuringElement(cv::MORPH_RECT, {3, 3});
};

ZB_PAIR("GrayDilateBorder_8u_C1R flat 3x3",
        [] {
            auto& b = zb::buffers<Gray>();
            ZB_CHECK(zebiGrayDilateBorder_8u_C1R(px<Zeb8u>(b.s8), step(b.s8), px<Zeb8u>(b.d8), step(b.d8), kRoi, 1,
                                                 reinterpret_cast<ZebiMorphGrayState*>(b.state.data())));
        },
        [] {
            auto& b = zb::buffers<Gray>();
            cv::dilate(b.s8, b.d8, b.kernel, {-1, -1}, 1, cv::BORDER_REPLICATE);
        },
        2 * kPx);

}  // namespace
