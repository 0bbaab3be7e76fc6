// SPDX-License-Identifier: Apache-2.0
// Reconstruction, grey-scale and compound morphology against OpenCV on the
// same 1920x1080 buffers. Reconstruction runs the dome setup on a
// photograph (marker = image - 40) against OpenCV's iterate-until-stable
// loop of dilate and min; both sides start from a fresh copy of the marker.
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

#include <cstring>

#include "bench.h"
#include "zebcv.h"

namespace {

using zb::kPx;
using zb::kRoi;
using zb::px;
using zb::step;

struct Recon {
    cv::Mat mask = zb::photograph("fruits.jpg");
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

namespace {

// Compound operations on 8u noise, a 3x3 rectangle and a 5x5 ellipse.
struct Compound {
    cv::Mat s8 = zb::random_mat(CV_8U), d8 = zb::random_mat(CV_8U);
    cv::Mat rect = cv::getStructuringElement(cv::MORPH_RECT, {3, 3});
    cv::Mat ellipse = cv::getStructuringElement(cv::MORPH_ELLIPSE, {5, 5});
    struct Prepared {
        std::vector<Zeb8u> spec, buf;
        const ZebiMorphAdvState* s() const { return reinterpret_cast<const ZebiMorphAdvState*>(spec.data()); }
    };
    static Prepared prepare(const cv::Mat& m) {
        int sb = 0, bb = 0;
        Prepared p;
        if (zebiMorphAdvGetSize_8u_C1R(kRoi, {m.cols, m.rows}, &sb, &bb) != 0) std::abort();
        p.spec.resize(static_cast<std::size_t>(sb));
        p.buf.resize(static_cast<std::size_t>(bb));
        if (zebiMorphAdvInit_8u_C1R(kRoi, m.data, {m.cols, m.rows}, reinterpret_cast<ZebiMorphAdvState*>(p.spec.data()),
                                    p.buf.data()) != 0)
            std::abort();
        return p;
    }
    Prepared r3 = prepare(rect), e5 = prepare(ellipse);
};

using AdvOp = ZebStatus (*)(const Zeb8u*, int, Zeb8u*, int, ZebiSize, ZebiBorderType, Zeb8u, const ZebiMorphAdvState*,
                            Zeb8u*);

void zeb_compound(AdvOp op, bool ellipse) {
    auto& b = zb::buffers<Compound>();
    auto& p = ellipse ? b.e5 : b.r3;
    ZB_CHECK(op(px<Zeb8u>(b.s8), step(b.s8), px<Zeb8u>(b.d8), step(b.d8), kRoi, 1, 0, p.s(), p.buf.data()));
}
void ocv_compound(int op, bool ellipse) {
    auto& b = zb::buffers<Compound>();
    cv::morphologyEx(b.s8, b.d8, op, ellipse ? b.ellipse : b.rect, {-1, -1}, 1, cv::BORDER_REPLICATE);
}

ZB_PAIR("MorphGradientBorder_8u_C1R 3x3 rect", [] { zeb_compound(zebiMorphGradientBorder_8u_C1R, false); },
        [] { ocv_compound(cv::MORPH_GRADIENT, false); }, 2 * kPx);
ZB_PAIR("MorphOpenBorder_8u_C1R 3x3 rect", [] { zeb_compound(zebiMorphOpenBorder_8u_C1R, false); },
        [] { ocv_compound(cv::MORPH_OPEN, false); }, 2 * kPx);
ZB_PAIR("MorphCloseBorder_8u_C1R 5x5 ellipse", [] { zeb_compound(zebiMorphCloseBorder_8u_C1R, true); },
        [] { ocv_compound(cv::MORPH_CLOSE, true); }, 2 * kPx);
ZB_PAIR("MorphTophatBorder_8u_C1R 3x3 rect", [] { zeb_compound(zebiMorphTophatBorder_8u_C1R, false); },
        [] { ocv_compound(cv::MORPH_TOPHAT, false); }, 2 * kPx);
ZB_PAIR("MorphBlackhatBorder_8u_C1R 5x5 ellipse", [] { zeb_compound(zebiMorphBlackhatBorder_8u_C1R, true); },
        [] { ocv_compound(cv::MORPH_BLACKHAT, true); }, 2 * kPx);

}  // namespace
