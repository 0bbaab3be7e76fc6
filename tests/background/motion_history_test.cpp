// SPDX-License-Identifier: Apache-2.0
// Motion-history update: every silhouette type, width and row alignment
// against the per-pixel definition (written out here) on every target and
// variant, and bit for bit against OpenCV on real frame differences.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <opencv2/optflow/motempl.hpp>

#include "background_members.h"
#include "video.h"

namespace {

using zt::Image;

ZT_TARGET_SUITE(MotionHistory);

template <class S>
using Fn = ZebStatus (*)(const S*, int, Zeb32f*, int, ZebiSize, Zeb32f, Zeb32f);

template <class S>
void sweep(const Fn<S>* tbl) {
    const float ts = 10.f;
    cv::RNG rng(7);
    for (float dur : {3.f, 0.f})
        for (int w : zt::test_widths())
            for (int pad : zt::test_pads(4)) {
                const int h = 3;
                Image<S> sil(w, h, 1, pad / 4 * int(sizeof(S)));
                Image<Zeb32f> mhi(w, h, 1, pad);
                const float limit = ts - dur;
                for (int y = 0; y < h; ++y)
                    for (int x = 0; x < w; ++x) {
                        // Half the silhouette set (-0.0 counts as unset),
                        // histories below, at and above the limit.
                        const int r = rng.uniform(0, 8);
                        sil.at(x, y) = r < 4 ? S(0) : S(rng.uniform(1, 200));
                        if (std::is_same_v<S, float> && r == 0) sil.at(x, y) = S(-0.0);
                        const int k = rng.uniform(0, 5);
                        mhi.at(x, y) = k == 0   ? limit
                                       : k == 1 ? std::nextafter(limit, 0.f)
                                       : k == 2 ? std::numeric_limits<float>::quiet_NaN()
                                                : rng.uniform(0.f, 12.f);
                    }
                std::vector<float> want = mhi.pixels();
                const std::vector<S> s = sil.pixels();
                for (std::size_t i = 0; i < want.size(); ++i)
                    want[i] = s[i] != S(0) ? ts : (want[i] < limit ? 0.f : want[i]);
                const std::vector<float> start = mhi.pixels();
                for (int v = 0; v < 2; ++v) {
                    for (int y = 0; y < h; ++y)
                        for (int x = 0; x < w; ++x) mhi.at(x, y) = start[std::size_t(y * w + x)];
                    ASSERT_EQ(tbl[v](sil.ptr(), sil.step(), mhi.ptr(), mhi.step(), mhi.size(), ts, dur), zebStsNoErr);
                    const std::vector<float> got = mhi.pixels();
                    for (std::size_t i = 0; i < got.size(); ++i)
                        ASSERT_TRUE(zt::same_bits(got[i], want[i]))
                            << "width " << w << " pad " << pad << " element " << i << ": " << got[i] << " vs "
                            << want[i] << " (duration " << dur << ")";
                }
            }
}

TEST_P(MotionHistory, MatchesDefinition) {
    sweep<Zeb8u>(zeb_tbl_zebiUpdateMotionHistory_8u32f_C1IR);
    sweep<Zeb16u>(zeb_tbl_zebiUpdateMotionHistory_16u32f_C1IR);
    sweep<Zeb32f>(zeb_tbl_zebiUpdateMotionHistory_32f_C1IR);
}

// Silhouettes from thresholded differences of consecutive street frames,
// one timestamp per frame: the history equals OpenCV's bit for bit after
// every frame, for all three silhouette types.
TEST_P(MotionHistory, MatchesOpenCV) {
    const auto& frames = zt::bg::street_frames(30);
    ASSERT_GE(frames.size(), 30u);
    Image<Zeb32f> m8(frames[0].cols, frames[0].rows, 1, 4), m16(m8.width(), m8.height()), m32(m8.width(), m8.height());
    m8.fill(0.f), m16.fill(0.f), m32.fill(0.f);
    cv::Mat theirs = cv::Mat::zeros(m8.height(), m8.width(), CV_32F);
    for (std::size_t i = 1; i < frames.size(); ++i) {
        cv::Mat a, b, d, sil;
        cv::cvtColor(frames[i - 1], a, cv::COLOR_BGR2GRAY);
        cv::cvtColor(frames[i], b, cv::COLOR_BGR2GRAY);
        cv::absdiff(a, b, d);
        cv::threshold(d, sil, 20, 1, cv::THRESH_BINARY);
        const double ts = 0.04 * double(i);  // seconds, as a camera clock gives them
        cv::motempl::updateMotionHistory(sil, theirs, ts, 0.5);
        cv::Mat s16, s32;
        sil.convertTo(s16, CV_16U);
        sil.convertTo(s32, CV_32F);
        const ZebiSize roi = m8.size();
        const int v = int(i % 2);
        ASSERT_EQ(zeb_tbl_zebiUpdateMotionHistory_8u32f_C1IR[v](sil.data, int(sil.step), m8.ptr(), m8.step(), roi,
                                                                 float(ts), 0.5f),
                  zebStsNoErr);
        ASSERT_EQ(zeb_tbl_zebiUpdateMotionHistory_16u32f_C1IR[v](reinterpret_cast<Zeb16u*>(s16.data), int(s16.step),
                                                                  m16.ptr(), m16.step(), roi, float(ts), 0.5f),
                  zebStsNoErr);
        ASSERT_EQ(zeb_tbl_zebiUpdateMotionHistory_32f_C1IR[v](reinterpret_cast<Zeb32f*>(s32.data), int(s32.step),
                                                               m32.ptr(), m32.step(), roi, float(ts), 0.5f),
                  zebStsNoErr);
        cv::Mat diff8 = theirs != m8.mat(), diff16 = theirs != m16.mat(), diff32 = theirs != m32.mat();
        ASSERT_EQ(cv::countNonZero(diff8) + cv::countNonZero(diff16) + cv::countNonZero(diff32), 0) << "frame " << i;
    }
    EXPECT_GT(cv::countNonZero(theirs), 100) << "the sequence shows no motion: the comparison proves little";
}

}  // namespace
