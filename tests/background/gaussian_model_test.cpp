// SPDX-License-Identifier: Apache-2.0
// The fixed-size Gaussian mixture: agreement with OpenCV's mixture of
// Gaussians on street video (grey and colour), the behaviour on a scene
// with a new object, the caller's record over the defaults, and identical
// results on every target and variant.
#include <gtest/gtest.h>

#include <opencv2/bgsegm.hpp>

#include "background_members.h"
#include "video.h"

namespace {

ZT_TARGET_SUITE(GaussianModel);

// The grey and colour forms behind one interface.
template <int C>
struct Forms;
template <>
struct Forms<1> {
    using S = ZebForegroundGaussianState_8u_C1R;
    static constexpr auto init = zeb_tbl_zebiForegroundGaussianInitAlloc_8u_C1R;
    static constexpr auto run = zeb_tbl_zebiForegroundGaussian_8u_C1R;
    static constexpr auto free = zeb_tbl_zebiForegroundGaussianFree_8u_C1R;
};
template <>
struct Forms<3> {
    using S = ZebForegroundGaussianState_8u_C3R;
    static constexpr auto init = zeb_tbl_zebiForegroundGaussianInitAlloc_8u_C3R;
    static constexpr auto run = zeb_tbl_zebiForegroundGaussian_8u_C3R;
    static constexpr auto free = zeb_tbl_zebiForegroundGaussianFree_8u_C3R;
};

// Masks of frames 1.. (frame 0 makes the state).
template <int C>
std::vector<cv::Mat> masks_of(const std::vector<cv::Mat>& frames, const ZebForegroundGaussianModel& m, int v,
                              double rate = -1) {
    using F = Forms<C>;
    const ZebiSize roi{frames[0].cols, frames[0].rows};
    typename F::S* st = nullptr;
    EXPECT_EQ(F::init[v](frames[0].data, int(frames[0].step), roi, &m, &st), zebStsNoErr);
    std::vector<cv::Mat> out;
    for (std::size_t i = 1; i < frames.size() && st; ++i) {
        cv::Mat mask(roi.height, roi.width, CV_8U);
        EXPECT_EQ(F::run[v](frames[i].data, int(frames[i].step), mask.data, int(mask.step), roi, st, rate),
                  zebStsNoErr);
        out.push_back(mask);
    }
    if (st) {
        EXPECT_EQ(F::free[v](st), zebStsNoErr);
    }
    return out;
}

std::vector<cv::Mat> grey(const std::vector<cv::Mat>& frames) {
    std::vector<cv::Mat> g;
    for (const cv::Mat& f : frames) {
        cv::Mat x;
        cv::cvtColor(f, x, cv::COLOR_BGR2GRAY);
        g.push_back(x);
    }
    return g;
}

// OpenCV's mixture with its defaults (200 frames, 5 components, ratio
// 0.7, 2.5 deviations, noise 15) against ours with a zeroed record (the
// same defaults): after 30 frames, each frame's masks agree on at least
// 95% of the pixels; the mean agreement is printed.
template <int C>
void compare_with_opencv(const std::vector<cv::Mat>& frames) {
    const ZebForegroundGaussianModel defaults{};
    const std::vector<cv::Mat> ours = masks_of<C>(frames, defaults, 1);
    auto mog = cv::bgsegm::createBackgroundSubtractorMOG();
    double worst = 1.0, sum = 0.0, fg = 0.0;
    int counted = 0;
    for (std::size_t i = 0; i < frames.size(); ++i) {
        cv::Mat theirs;
        mog->apply(frames[i], theirs);
        if (i < 30) continue;
        const double a = zt::bg::agreement(theirs, ours[i - 1]);
        worst = std::min(worst, a), sum += a, ++counted;
        fg += double(cv::countNonZero(theirs)) / double(theirs.total());
    }
    std::printf("Gaussian model vs OpenCV (%d channel%s): worst frame %.4f, mean %.4f; OpenCV foreground %.3f\n", C,
                C > 1 ? "s" : "", worst, sum / counted, fg / counted);
    EXPECT_GE(worst, 0.95);
    EXPECT_GT(fg / counted, 0.01) << "hardly any foreground: the agreement proves little";
}

TEST_P(GaussianModel, AgreesWithOpenCV) {
    const auto& frames = zt::bg::street_frames(100);
    ASSERT_GE(frames.size(), 100u);
    compare_with_opencv<3>(frames);
    compare_with_opencv<1>(grey(frames));
}

// A still, slightly noisy scene learns to background; a square that
// appears is foreground exactly where it is, and the record's numbers
// override the defaults (a huge match threshold hides the square).
TEST_P(GaussianModel, NewObjectAndRecord) {
    const int w = 40, h = 30;
    cv::RNG rng(3);
    std::vector<cv::Mat> frames;
    for (int i = 0; i < 40; ++i) {
        cv::Mat f(h, w, CV_8UC3, cv::Scalar(100, 120, 140)), noise(h, w, CV_8UC3);
        rng.fill(noise, cv::RNG::UNIFORM, 0, 4);
        f += noise;
        if (i >= 35) f(cv::Rect(10, 8, 6, 5)).setTo(cv::Scalar(250, 250, 250));
        frames.push_back(f);
    }
    cv::Mat square = cv::Mat::zeros(h, w, CV_8U);
    square(cv::Rect(10, 8, 6, 5)).setTo(255);
    for (int v = 0; v < 2; ++v) {
        const auto masks = masks_of<3>(frames, ZebForegroundGaussianModel{}, v);
        EXPECT_EQ(cv::countNonZero(masks[30]), 0) << "the still scene is not background";
        EXPECT_EQ(cv::countNonZero(masks[34] != square), 0) << "the square is not exactly the foreground";
        ZebForegroundGaussianModel loose{};
        loose.matchThreshold = 100;
        EXPECT_EQ(cv::countNonZero(masks_of<3>(frames, loose, v)[34]), 0);
        const auto g = masks_of<1>(grey(frames), ZebForegroundGaussianModel{}, v);
        EXPECT_EQ(cv::countNonZero(g[34] != square), 0) << "grey";
    }
}

// Every target and variant gives the masks of the SSSE3 target, on street
// frames cut to widths that end rows anywhere, with a fixed rate too.
TEST_P(GaussianModel, SameOnEveryTarget) {
    const auto& all = zt::bg::street_frames(20);
    ASSERT_FALSE(all.empty());
    for (int w : {1, 9, 67}) {
        std::vector<cv::Mat> frames;
        for (const cv::Mat& f : all) frames.push_back(f(cv::Rect(100, 100, w, 7)).clone());
        for (double rate : {-1.0, 0.1}) {
            std::vector<cv::Mat> base;
            {
                zt::TargetScope t(0);
                base = masks_of<3>(frames, ZebForegroundGaussianModel{}, 0, rate);
            }
            for (int v = 0; v < 2; ++v) {
                const auto m = masks_of<3>(frames, ZebForegroundGaussianModel{}, v, rate);
                for (std::size_t i = 0; i < m.size(); ++i)
                    ASSERT_EQ(cv::countNonZero(m[i] != base[i]), 0) << "width " << w << " frame " << i;
            }
        }
    }
}

}  // namespace
