// SPDX-License-Identifier: Apache-2.0
// Background models against OpenCV: the adaptive mixture and the
// fixed-size mixture per 768x576 street frame (both models warmed up on the
// first frames, then fed the next frame of a looping clip on every call),
// and the motion-history update on 1920x1080 buffers.
#include <opencv2/bgsegm.hpp>
#include <opencv2/imgproc.hpp>
#include <opencv2/optflow/motempl.hpp>
#include <opencv2/video/background_segm.hpp>
#include <opencv2/videoio.hpp>

#include <cstdio>
#include <cstdlib>
#include <vector>

#include "bench.h"
#include "zebcv.h"

namespace {

using zb::kPx;
using zb::kRoi;
using zb::px;
using zb::step;

constexpr int kClip = 60, kWarm = 40;

const std::vector<cv::Mat>& clip() {
    static std::vector<cv::Mat> frames = [] {
        std::vector<cv::Mat> f;
        cv::VideoCapture cap("/usr/share/doc/opencv-doc/examples/data/vtest.avi");
        cv::Mat m;
        while (int(f.size()) < kClip && cap.read(m)) f.push_back(m.clone());
        if (f.size() < 2) {
            std::fprintf(stderr, "background bench: cannot decode the street clip\n");
            std::abort();
        }
        return f;
    }();
    return frames;
}

const std::vector<cv::Mat>& grey_clip() {
    static std::vector<cv::Mat> g = [] {
        std::vector<cv::Mat> out;
        for (const cv::Mat& f : clip()) {
            cv::Mat x;
            cv::cvtColor(f, x, cv::COLOR_BGR2GRAY);
            out.push_back(x);
        }
        return out;
    }();
    return g;
}

ZebFGMMModel fgmm_model() {
    return ZebFGMMModel{500, 15.f, 4.f, 75.f, 16.f, 0.9f, 9.f, 0.05f, 127, 1, 0.5f};
}

struct Fgmm {
    ZebiSize roi{clip()[0].cols, clip()[0].rows};
    zb::Work work{zebiFGMMGetBufferSize_8u_C3R, roi, 5};
    cv::Mat ours = cv::Mat(roi.height, roi.width, CV_8U), theirs;
    cv::Ptr<cv::BackgroundSubtractorMOG2> mog2 = cv::createBackgroundSubtractorMOG2(500, 16, true);
    std::size_t zi = 0, ci = 0;
    ZebFGMMState_8u_C3R* st() { return reinterpret_cast<ZebFGMMState_8u_C3R*>(work.data()); }
    Fgmm() {
        const ZebFGMMModel m = fgmm_model();
        if (zebiFGMMInit_8u_C3R(roi, 5, &m, st()) != 0) std::abort();
        for (int i = 0; i < kWarm; ++i) zeb(), cv();
    }
    int zeb() {
        const cv::Mat& f = clip()[zi++ % clip().size()];
        return zebiFGMMForeground_8u_C3R(f.data, int(f.step), ours.data, int(ours.step), roi, st(), nullptr, -1.f);
    }
    void cv() { mog2->apply(clip()[ci++ % clip().size()], theirs); }
};

template <int C>
struct Gauss {
    using S = std::conditional_t<C == 1, ZebForegroundGaussianState_8u_C1R, ZebForegroundGaussianState_8u_C3R>;
    const std::vector<cv::Mat>& frames = C == 1 ? grey_clip() : clip();
    ZebiSize roi{frames[0].cols, frames[0].rows};
    cv::Mat ours = cv::Mat(roi.height, roi.width, CV_8U), theirs;
    cv::Ptr<cv::BackgroundSubtractor> mog = cv::bgsegm::createBackgroundSubtractorMOG();
    S* st = nullptr;
    std::size_t zi = 1, ci = 0;
    Gauss() {
        const ZebForegroundGaussianModel m{};
        ZebStatus s;
        if constexpr (C == 1) s = zebiForegroundGaussianInitAlloc_8u_C1R(frames[0].data, int(frames[0].step), roi, &m, &st);
        else s = zebiForegroundGaussianInitAlloc_8u_C3R(frames[0].data, int(frames[0].step), roi, &m, &st);
        if (s != 0) std::abort();
        for (int i = 0; i < kWarm; ++i) zeb(), cv();
    }
    int zeb() {
        const cv::Mat& f = frames[zi++ % frames.size()];
        if constexpr (C == 1)
            return zebiForegroundGaussian_8u_C1R(f.data, int(f.step), ours.data, int(ours.step), roi, st, -1.0);
        else
            return zebiForegroundGaussian_8u_C3R(f.data, int(f.step), ours.data, int(ours.step), roi, st, -1.0);
    }
    void cv() { mog->apply(frames[ci++ % frames.size()], theirs); }
};

ZB_PAIR("FGMMForeground_8u_C3R 768x576", [] { ZB_CHECK(zb::buffers<Fgmm>().zeb()); },
        [] { zb::buffers<Fgmm>().cv(); }, 0);
ZB_PAIR("ForegroundGaussian_8u_C3R 768x576", [] { ZB_CHECK(zb::buffers<Gauss<3>>().zeb()); },
        [] { zb::buffers<Gauss<3>>().cv(); }, 0);
ZB_PAIR("ForegroundGaussian_8u_C1R 768x576", [] { ZB_CHECK(zb::buffers<Gauss<1>>().zeb()); },
        [] { zb::buffers<Gauss<1>>().cv(); }, 0);

struct Mhi {
    // A silhouette of blobs and noise, about a third of it set, and a
    // history spread over the last two seconds.
    cv::Mat sil = zb::random_mat(CV_8U, 0, 3) == 2;
    cv::Mat ours = zb::random_mat(CV_32F, 0, 2), theirs = ours.clone();
    float zt = 2.f;
    double ct = 2.0;
};

ZB_PAIR("UpdateMotionHistory_8u32f_C1IR",
        [] {
            auto& b = zb::buffers<Mhi>();
            b.zt += 0.04f;
            ZB_CHECK(zebiUpdateMotionHistory_8u32f_C1IR(px<Zeb8u>(b.sil), step(b.sil), px<Zeb32f>(b.ours),
                                                        step(b.ours), kRoi, b.zt, 1.0f));
        },
        [] {
            auto& b = zb::buffers<Mhi>();
            b.ct += 0.04;
            cv::motempl::updateMotionHistory(b.sil, b.theirs, b.ct, 1.0);
        },
        9 * kPx);

}  // namespace
