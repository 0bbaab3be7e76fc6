// SPDX-License-Identifier: Apache-2.0
// The adaptive mixture in caller memory: its buffer size and layout, the
// background-image rule on hand-made components, identical results on
// every vector target and variant, and agreement with OpenCV's adaptive
// mixture on real street video.
#include <gtest/gtest.h>

#include <cstring>
#include <opencv2/video/background_segm.hpp>

#include "background_members.h"
#include "video.h"

namespace {

using zt::Guarded;
using zt::bg::default_fgmm;

ZT_TARGET_SUITE(FGMM);

int64_t r32(int64_t k) { return (k + 31) & ~int64_t(31); }

// The state's documented header, read back from the buffer.
struct Header {
    int32_t frames;
    float* row;
    float* means;
    float* wv;
    uint8_t* counts;
    ZebFGMMModel model;
    int32_t n1, n2;
};

unsigned char* state_start(void* buf) {
    const auto a = reinterpret_cast<std::uintptr_t>(buf);
    return static_cast<unsigned char*>(buf) + (32 - a % 32) % 32;
}

Header read_header(void* buf) {
    const unsigned char* p = state_start(buf);
    Header h{};
    std::memcpy(&h.frames, p, 4);
    std::memcpy(&h.row, p + 8, 8);
    std::memcpy(&h.means, p + 16, 8);
    std::memcpy(&h.wv, p + 24, 8);
    std::memcpy(&h.counts, p + 32, 8);
    std::memcpy(&h.model, p + 40, sizeof(ZebFGMMModel));
    std::memcpy(&h.n1, p + 80, 4);
    std::memcpy(&h.n2, p + 84, 4);
    return h;
}

// A state of exactly its queried size against a guard page.
struct State {
    Guarded buf;
    ZebFGMMState_8u_C3R* st() const { return reinterpret_cast<ZebFGMMState_8u_C3R*>(buf.data()); }
    State(ZebiSize roi, int n, const ZebFGMMModel& m, int variant = 0) : buf(query(roi, n)) {
        std::memset(buf.data(), 0xab, buf.size());
        EXPECT_EQ(zeb_tbl_zebiFGMMInit_8u_C3R[variant](roi, n, &m, st()), zebStsNoErr);
    }
    static std::size_t query(ZebiSize roi, int n) {
        int bytes = 0;
        EXPECT_EQ(zebiFGMMGetBufferSize_8u_C3R(roi, n, &bytes), zebStsNoErr);
        return std::size_t(bytes);
    }
};

TEST(FGMMLayout, BufferSizeAndInit) {
    int bytes = 0;
    ASSERT_EQ(zebiFGMMGetBufferSize_8u_C3R({1, 1}, 1, &bytes), zebStsNoErr);
    EXPECT_EQ(bytes, 288);
    for (ZebiSize roi : {ZebiSize{1, 1}, ZebiSize{7, 3}, ZebiSize{33, 17}, ZebiSize{640, 480}})
        for (int n : {1, 3, 5, 8}) {
            const int64_t N = int64_t(roi.width) * roi.height;
            for (int v = 0; v < 2; ++v) {
                ASSERT_EQ(zeb_tbl_zebiFGMMGetBufferSize_8u_C3R[v](roi, n, &bytes), zebStsNoErr);
                EXPECT_EQ(bytes, r32(8 * N * n) + r32(12 * N * n) + r32(12 * roi.width * n) + r32(N) + 160);
            }
            if (N > 5000) continue;
            ZebFGMMModel m = default_fgmm();
            m.history = 77, m.shadowRatio = 0.25f, m.detectShadows = 0;
            State s(roi, n, m, 1);
            const Header h = read_header(s.buf.data());
            unsigned char* base = state_start(s.buf.data());
            EXPECT_EQ(h.frames, 0);
            EXPECT_EQ(reinterpret_cast<unsigned char*>(h.row), base + 128);
            EXPECT_EQ(reinterpret_cast<unsigned char*>(h.means), base + 128 + r32(12 * roi.width * n));
            EXPECT_EQ(reinterpret_cast<unsigned char*>(h.wv), reinterpret_cast<unsigned char*>(h.means) + r32(12 * N * n));
            EXPECT_EQ(h.counts, reinterpret_cast<unsigned char*>(h.wv) + r32(8 * N * n));
            EXPECT_EQ(std::memcmp(&h.model, &m, sizeof m), 0);
            EXPECT_EQ(h.n1, n);
            EXPECT_EQ(h.n2, n);
            // The areas and the end of the buffer are zero.
            const unsigned char* end = s.buf.data() + s.buf.size();
            for (const unsigned char* p = reinterpret_cast<unsigned char*>(h.row); p < end; ++p)
                ASSERT_EQ(*p, 0) << "byte " << (p - s.buf.data()) << " of " << roi.width << 'x' << roi.height;
        }
}

// The background image from components written into the documented
// layout: the running total stops after the component that passes the
// ratio, means are weighted, rounding is to nearest even, values clamp.
TEST_P(FGMM, BackgroundRule) {
    const int n = 3;
    const ZebiSize roi{5, 1};
    ZebFGMMModel m = default_fgmm();
    m.backgroundRatio = 0.5f;
    State s(roi, n, m);
    const Header h = read_header(s.buf.data());
    struct C {
        float w, r, g, b;
    };
    const std::vector<std::vector<C>> px = {
        {{0.4f, 10, 20, 30}, {0.2f, 100, 110, 120}, {0.4f, 250, 250, 250}},  // stops after the second
        {{1.0f, 2.5f, 3.5f, 254.5f}},                                        // ties to even
        {{0.25f, 300, -7, 128}, {0.25f, 300, -7, 128}, {0.5f, 0, 0, 0}},     // clamps; 0.5 is not above 0.5
        {},                                                                  // no components
        {{0.1f, 40, 50, 60}},                                                // total below the ratio
    };
    for (std::size_t x = 0; x < px.size(); ++x) {
        h.counts[x] = uint8_t(px[x].size());
        for (std::size_t k = 0; k < px[x].size(); ++k) {
            const C& c = px[x][k];
            h.wv[(x * n + k) * 2] = c.w, h.wv[(x * n + k) * 2 + 1] = 9.f;
            float* mu = h.means + (x * n + k) * 3;
            mu[0] = c.r, mu[1] = c.g, mu[2] = c.b;
        }
    }
    const std::vector<uint8_t> want = {uint8_t(std::nearbyint((10 * 0.4f + 100 * 0.2f) * (1 / 0.6f))),
                                       uint8_t(std::nearbyint((20 * 0.4f + 110 * 0.2f) * (1 / 0.6f))),
                                       uint8_t(std::nearbyint((30 * 0.4f + 120 * 0.2f) * (1 / 0.6f))),
                                       2, 4, 254, 150, 0, 64, 0, 0, 0, 40, 50, 60};
    for (int v = 0; v < 2; ++v)
        for (int step : {15, 16, 1}) {  // any positive step: with 1 the row is written once anyway
            std::vector<uint8_t> dst(15 + 16, 0x5a);
            ASSERT_EQ(zeb_tbl_zebiFGMMBackground_8u_C3R[v](dst.data(), step, roi, s.st()), zebStsNoErr);
            EXPECT_EQ(std::vector<uint8_t>(dst.begin(), dst.begin() + 15), want) << "step " << step;
            EXPECT_EQ(dst[15], 0x5a);
        }
}

// One run over frames: masks of every frame and the final background.
struct Sequence {
    std::vector<cv::Mat> masks;
    cv::Mat background;
};

Sequence run_frames(const std::vector<cv::Mat>& frames, const ZebFGMMModel& m, int n, int variant, float rate = -1.f) {
    const ZebiSize roi{frames[0].cols, frames[0].rows};
    State s(roi, n, m, variant);
    Sequence r;
    for (const cv::Mat& f : frames) {
        cv::Mat mask(f.rows, f.cols, CV_8U);
        EXPECT_EQ(zeb_tbl_zebiFGMMForeground_8u_C3R[variant](f.data, int(f.step), mask.data, int(mask.step), roi,
                                                                s.st(), nullptr, rate),
                  zebStsNoErr);
        r.masks.push_back(mask);
    }
    r.background.create(roi.height, roi.width, CV_8UC3);
    EXPECT_EQ(zeb_tbl_zebiFGMMBackground_8u_C3R[variant](r.background.data, int(r.background.step), roi, s.st()),
              zebStsNoErr);
    return r;
}

bool same(const cv::Mat& a, const cv::Mat& b) { return cv::countNonZero(a.reshape(1) != b.reshape(1)) == 0; }

// Every target and variant gives the same masks and background as the
// SSSE3 target: street frames with noise of every width (row tails).
TEST_P(FGMM, SameOnEveryTarget) {
    const auto& all = zt::bg::street_frames(24);
    ASSERT_FALSE(all.empty());
    for (int w : {1, 7, 33, 130}) {
        std::vector<cv::Mat> frames;
        cv::RNG rng(w);
        for (const cv::Mat& f : all) {
            cv::Mat c = f(cv::Rect(0, 0, w, 9)).clone(), noise(c.size(), CV_8UC3);
            rng.fill(noise, cv::RNG::NORMAL, 0, 6);
            frames.push_back(c + noise);
        }
        Sequence base;
        {
            zt::TargetScope t(0);
            base = run_frames(frames, default_fgmm(), 4, 0);
        }
        for (int v = 0; v < 2; ++v) {
            const Sequence r = run_frames(frames, default_fgmm(), 4, v);
            for (std::size_t i = 0; i < frames.size(); ++i)
                ASSERT_TRUE(same(r.masks[i], base.masks[i])) << "frame " << i << " width " << w;
            EXPECT_TRUE(same(r.background, base.background));
        }
    }
}

// OpenCV's adaptive mixture with the same parameters on the street scene:
// after 40 frames of warm-up, at least 99% of the mask pixels are equal
// (foreground, shadow and background alike) frame by frame, and the
// background images differ by at most one level in 99% of the samples.
TEST_P(FGMM, AgreesWithOpenCV) {
    const auto& frames = zt::bg::street_frames(120);
    ASSERT_GE(frames.size(), 120u);
    const ZebFGMMModel m = default_fgmm();
    for (bool shadows : {true, false}) {
        ZebFGMMModel mm = m;
        mm.detectShadows = shadows;
        auto cv2 = cv::createBackgroundSubtractorMOG2(m.history, m.varThreshold, shadows);
        cv2->setNMixtures(5);
        cv2->setBackgroundRatio(m.backgroundRatio);
        cv2->setVarThresholdGen(m.varThresholdGen);
        cv2->setVarInit(m.varInit);
        cv2->setVarMin(m.varMin);
        cv2->setVarMax(m.varMax);
        cv2->setComplexityReductionThreshold(m.complexityPrior);
        cv2->setShadowValue(m.shadowValue);
        cv2->setShadowThreshold(m.shadowRatio);
        const Sequence ours = run_frames(frames, mm, 5, 1);
        double worst = 1.0, sum = 0.0;
        int counted = 0;
        for (std::size_t i = 0; i < frames.size(); ++i) {
            cv::Mat theirs;
            cv2->apply(frames[i], theirs);
            if (i < 40) continue;
            cv::Mat eq = theirs == ours.masks[i];
            const double a = double(cv::countNonZero(eq)) / double(eq.total());
            worst = std::min(worst, a), sum += a, ++counted;
        }
        RecordProperty(shadows ? "mog2_agreement_worst_shadows" : "mog2_agreement_worst", std::to_string(worst));
        std::printf("FGMM vs OpenCV (shadows %d): worst frame %.5f, mean %.5f\n", int(shadows), worst, sum / counted);
        EXPECT_GE(worst, 0.99);
        cv::Mat bg;
        cv2->getBackgroundImage(bg);
        cv::Mat d;
        cv::absdiff(bg, ours.background, d);
        EXPECT_GE(double(cv::countNonZero(d.reshape(1) <= 1)) / double(d.total() * 3), 0.99);
    }
}

// A model given with a frame replaces the stored one: a rate of 0 learns
// nothing, so the same frame twice gives the same mask, and a new
// threshold takes effect at once.
TEST_P(FGMM, ModelAndRate) {
    const ZebiSize roi{16, 4};
    State s(roi, 3, default_fgmm());
    cv::Mat grey(roi.height, roi.width, CV_8UC3, cv::Scalar(80, 80, 80)), mask(roi.height, roi.width, CV_8U);
    auto run = [&](const cv::Mat& f, const ZebFGMMModel* m, float rate) {
        EXPECT_EQ(zebiFGMMForeground_8u_C3R(f.data, int(f.step), mask.data, int(mask.step), roi, s.st(), m, rate),
                  zebStsNoErr);
        return mask.clone();
    };
    EXPECT_EQ(cv::countNonZero(run(grey, nullptr, -1)), roi.width * roi.height);  // nothing known yet
    for (int i = 0; i < 30; ++i) run(grey, nullptr, -1);
    EXPECT_EQ(cv::countNonZero(run(grey, nullptr, -1)), 0);
    cv::Mat bright = grey + cv::Scalar(12, 12, 12);  // 432 = 3 x 12^2 from the mean
    const cv::Mat a = run(bright, nullptr, 0.f);
    EXPECT_EQ(cv::countNonZero(a), roi.width * roi.height) << "far outside the learned variance";
    EXPECT_TRUE(same(run(bright, nullptr, 0.f), a)) << "a rate of 0 learned";
    ZebFGMMModel wide = default_fgmm();
    wide.varThreshold = 1000.f;
    EXPECT_EQ(cv::countNonZero(run(bright, &wide, 0.f)), 0) << "the new threshold took no effect";
}

}  // namespace
