// SPDX-License-Identifier: Apache-2.0
// Dilation, erosion and min/max filters against OpenCV's dilate and erode
// with replicated borders.
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>
#include <vector>

#include "bench.h"
#include "zebcv.h"

namespace {

using zb::kRoi;
using zb::kW;
using zb::px;
using zb::step;

// A prepared state and its buffer for a mask given as an OpenCV kernel.
struct Morph {
    cv::Mat kernel;
    std::vector<Zeb8u> spec, buf;
    template <class GetSize, class Init>
    Morph(cv::Mat k, GetSize gs, Init init) : kernel(k) {
        int s = 0, b = 0;
        const ZebiSize m{k.cols, k.rows};
        ZB_CHECK(gs(kW, m, &s, &b));
        spec.resize(std::size_t(s));
        buf.resize(std::size_t(b));
        ZB_CHECK(init(kW, k.ptr<Zeb8u>(), m, this->s(), buf.data()));
    }
    ZebiMorphState* s() { return reinterpret_cast<ZebiMorphState*>(spec.data()); }
};

cv::Mat rect(int n) { return cv::getStructuringElement(cv::MORPH_RECT, {n, n}); }
cv::Mat ellipse(int n) { return cv::getStructuringElement(cv::MORPH_ELLIPSE, {n, n}); }

struct Buffers {
    cv::Mat a8 = zb::random_mat(CV_8U), d8 = zb::random_mat(CV_8U);
    cv::Mat a8c3 = zb::random_mat(CV_8UC3), d8c3 = zb::random_mat(CV_8UC3);
    cv::Mat afc1 = zb::random_mat(CV_32F), dfc1 = zb::random_mat(CV_32F);
    cv::Mat afc3 = zb::random_mat(CV_32FC3), dfc3 = zb::random_mat(CV_32FC3);
    Morph r3{rect(3), zebiMorphologyBorderGetSize_8u_C1R, zebiMorphologyBorderInit_8u_C1R};
    Morph e5{ellipse(5), zebiMorphologyBorderGetSize_8u_C1R, zebiMorphologyBorderInit_8u_C1R};
    Morph r15{rect(15), zebiMorphologyBorderGetSize_8u_C1R, zebiMorphologyBorderInit_8u_C1R};
    Morph r31{rect(31), zebiMorphologyBorderGetSize_8u_C1R, zebiMorphologyBorderInit_8u_C1R};
    Morph r3c3{rect(3), zebiMorphologyBorderGetSize_8u_C3R, zebiMorphologyBorderInit_8u_C3R};
    Morph r3f{rect(3), zebiMorphologyBorderGetSize_32f_C1R, zebiMorphologyBorderInit_32f_C1R};
    Morph r3fc3{rect(3), zebiMorphologyBorderGetSize_32f_C3R, zebiMorphologyBorderInit_32f_C3R};
    zb::Work f5{zebiFilterMaxGetBufferSize_8u_C1R, kW, ZebiSize{5, 5}};
    zb::Work f5f{zebiFilterMaxGetBufferSize_32f_C1R, kW, ZebiSize{5, 5}};
};

void cv_morph(bool dilate, const cv::Mat& a, cv::Mat& d, const cv::Mat& k) {
    if (dilate)
        cv::dilate(a, d, k, {-1, -1}, 1, cv::BORDER_REPLICATE);
    else
        cv::erode(a, d, k, {-1, -1}, 1, cv::BORDER_REPLICATE);
}

#define ZB_MORPH_8U(name, fn, dilate, m)                                                                         \
    ZB_PAIR(name,                                                                                                 \
            [] {                                                                                                  \
                auto& b = zb::buffers<Buffers>();                                                                 \
                ZB_CHECK(fn(px<Zeb8u>(b.a8), step(b.a8), px<Zeb8u>(b.d8), step(b.d8), kRoi, zebBorderRepl, 0,     \
                            b.m.s(), b.m.buf.data()));                                                            \
            },                                                                                                    \
            [] {                                                                                                  \
                auto& b = zb::buffers<Buffers>();                                                                 \
                cv_morph(dilate, b.a8, b.d8, b.m.kernel);                                                         \
            },                                                                                                    \
            2 * zb::kPx)

ZB_MORPH_8U("Dilate_8u_C1R rect 3x3", zebiDilateBorder_8u_C1R, true, r3);
ZB_MORPH_8U("Erode_8u_C1R rect 3x3", zebiErodeBorder_8u_C1R, false, r3);
ZB_MORPH_8U("Erode_8u_C1R ellipse 5x5", zebiErodeBorder_8u_C1R, false, e5);
ZB_MORPH_8U("Dilate_8u_C1R rect 15x15", zebiDilateBorder_8u_C1R, true, r15);
ZB_MORPH_8U("Dilate_8u_C1R rect 31x31", zebiDilateBorder_8u_C1R, true, r31);

ZB_PAIR("Dilate_8u_C3R rect 3x3",
        [] {
            auto& b = zb::buffers<Buffers>();
            const Zeb8u bv[3] = {};
            ZB_CHECK(zebiDilateBorder_8u_C3R(px<Zeb8u>(b.a8c3), step(b.a8c3), px<Zeb8u>(b.d8c3), step(b.d8c3), kRoi,
                                             zebBorderRepl, bv, b.r3c3.s(), b.r3c3.buf.data()));
        },
        [] {
            auto& b = zb::buffers<Buffers>();
            cv_morph(true, b.a8c3, b.d8c3, b.r3c3.kernel);
        },
        6 * zb::kPx);
ZB_PAIR("Erode_32f_C1R rect 3x3",
        [] {
            auto& b = zb::buffers<Buffers>();
            ZB_CHECK(zebiErodeBorder_32f_C1R(px<Zeb32f>(b.afc1), step(b.afc1), px<Zeb32f>(b.dfc1), step(b.dfc1), kRoi,
                                             zebBorderRepl, 0.f, b.r3f.s(), b.r3f.buf.data()));
        },
        [] {
            auto& b = zb::buffers<Buffers>();
            cv_morph(false, b.afc1, b.dfc1, b.r3f.kernel);
        },
        8 * zb::kPx);
ZB_PAIR("Erode_32f_C3R rect 3x3",
        [] {
            auto& b = zb::buffers<Buffers>();
            const Zeb32f bv[3] = {};
            ZB_CHECK(zebiErodeBorder_32f_C3R(px<Zeb32f>(b.afc3), step(b.afc3), px<Zeb32f>(b.dfc3), step(b.dfc3), kRoi,
                                             zebBorderRepl, bv, b.r3fc3.s(), b.r3fc3.buf.data()));
        },
        [] {
            auto& b = zb::buffers<Buffers>();
            cv_morph(false, b.afc3, b.dfc3, b.r3fc3.kernel);
        },
        24 * zb::kPx);
ZB_PAIR("FilterMax_8u_C1R 5x5",
        [] {
            auto& b = zb::buffers<Buffers>();
            ZB_CHECK(zebiFilterMaxBorderReplicate_8u_C1R(px<Zeb8u>(b.a8), step(b.a8), px<Zeb8u>(b.d8), step(b.d8),
                                                         kRoi, {5, 5}, {2, 2}, b.f5.data()));
        },
        [] {
            auto& b = zb::buffers<Buffers>();
            cv_morph(true, b.a8, b.d8, rect(5));
        },
        2 * zb::kPx);
ZB_PAIR("FilterMin_32f_C1R 5x5",
        [] {
            auto& b = zb::buffers<Buffers>();
            ZB_CHECK(zebiFilterMinBorderReplicate_32f_C1R(px<Zeb32f>(b.afc1), step(b.afc1), px<Zeb32f>(b.dfc1),
                                                          step(b.dfc1), kRoi, {5, 5}, {2, 2}, b.f5f.data()));
        },
        [] {
            auto& b = zb::buffers<Buffers>();
            cv_morph(false, b.afc1, b.dfc1, rect(5));
        },
        8 * zb::kPx);

}  // namespace
