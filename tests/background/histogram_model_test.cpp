// SPDX-License-Identifier: Apache-2.0
// The colour and co-occurrence statistics model: detection of a new
// object, removal of small regions, classification that leaves the state
// alone, absorption of an object that stays, learning of a flickering
// background through co-occurrences, and a sanity comparison with
// OpenCV's adaptive mixture on street video.
#include <gtest/gtest.h>

#include <opencv2/video/background_segm.hpp>

#include "background_members.h"
#include "video.h"

namespace {

template <int C>
struct Forms;
template <>
struct Forms<1> {
    using S = ZebForegroundHistogramState_8u_C1R;
    static constexpr auto init = zeb_tbl_zebiForegroundHistogramInitAlloc_8u_C1R;
    static constexpr auto classify = zeb_tbl_zebiForegroundHistogram_8u_C1R;
    static constexpr auto update = zeb_tbl_zebiForegroundHistogramUpdate_8u_C1R;
    static constexpr auto free = zeb_tbl_zebiForegroundHistogramFree_8u_C1R;
};
template <>
struct Forms<3> {
    using S = ZebForegroundHistogramState_8u_C3R;
    static constexpr auto init = zeb_tbl_zebiForegroundHistogramInitAlloc_8u_C3R;
    static constexpr auto classify = zeb_tbl_zebiForegroundHistogram_8u_C3R;
    static constexpr auto update = zeb_tbl_zebiForegroundHistogramUpdate_8u_C3R;
    static constexpr auto free = zeb_tbl_zebiForegroundHistogramFree_8u_C3R;
};

// A model in use: classify then learn each frame.
template <int C>
class Model {
public:
    using F = Forms<C>;
    Model(const cv::Mat& first, const ZebForegroundHistogramModel& m, int v) : v_(v), roi_{first.cols, first.rows} {
        EXPECT_EQ(F::init[v](first.data, int(first.step), roi_, &m, &st_), zebStsNoErr);
    }
    ~Model() {
        if (st_) {
            EXPECT_EQ(F::free[v_](st_), zebStsNoErr);
        }
    }
    cv::Mat classify(const cv::Mat& f) const {
        cv::Mat mask(roi_.height, roi_.width, CV_8U);
        EXPECT_EQ(F::classify[v_](f.data, int(f.step), mask.data, int(mask.step), roi_, st_), zebStsNoErr);
        return mask;
    }
    void learn(const cv::Mat& f, const cv::Mat& mask) {
        EXPECT_EQ(F::update[v_](f.data, int(f.step), mask.data, int(mask.step), roi_, st_), zebStsNoErr);
    }
    cv::Mat step(const cv::Mat& f) {
        cv::Mat m = classify(f);
        learn(f, m);
        return m;
    }

private:
    int v_;
    ZebiSize roi_;
    typename F::S* st_ = nullptr;
};

cv::Mat scene(int C, cv::RNG& rng, const cv::Rect& object = {}, cv::Scalar colour = {}) {
    cv::Mat f(30, 40, CV_8UC(C), cv::Scalar(90, 110, 130)), noise(f.size(), f.type());
    rng.fill(noise, cv::RNG::UNIFORM, 0, 4);
    f += noise;
    if (object.area()) f(object).setTo(colour);
    return f;
}

template <int C>
void new_object_and_small_regions(int v) {
    cv::RNG rng(5);
    const cv::Rect big(5, 5, 8, 6), small(30, 20, 3, 3);
    const cv::Scalar red(20, 30, 240);
    ZebForegroundHistogramModel m{};
    Model<C> model(scene(C, rng), m, v);
    for (int i = 0; i < 10; ++i) model.step(scene(C, rng));
    cv::Mat f = scene(C, rng, big, red);
    f(small).setTo(red);
    const cv::Mat mask = model.classify(f);
    cv::Mat want = cv::Mat::zeros(f.size(), CV_8U);
    want(big).setTo(255);
    EXPECT_EQ(cv::countNonZero(mask != want), 0) << C << " channels: the object, without the 9-pixel one";
    // Classification leaves the state alone: the same answer again.
    EXPECT_EQ(cv::countNonZero(model.classify(f) != mask), 0);
    // Without the area limit the small region stays.
    m.minArea = 0.5f;
    Model<C> keep(scene(C, rng), m, v);
    want(small).setTo(255);
    EXPECT_EQ(cv::countNonZero(keep.classify(f) != want), 0) << C << " channels, no area limit";
}

TEST(HistogramModel, NewObjectAndSmallRegions) {
    for (int v = 0; v < 2; ++v) {
        new_object_and_small_regions<1>(v);
        new_object_and_small_regions<3>(v);
    }
}

// An object that stays joins the background once its colour's
// probability reaches the absorb level; a faster rate gets there sooner.
TEST(HistogramModel, StayingObjectIsAbsorbed) {
    cv::RNG rng(9);
    const cv::Rect box(10, 10, 8, 8);
    ZebForegroundHistogramModel m{};
    m.statRate = 0.05f;  // P(v) passes 0.5 after 14 frames
    Model<3> model(scene(3, rng), m, 1);
    int firstClear = -1;
    for (int i = 0; i < 40 && firstClear < 0; ++i)
        if (cv::countNonZero(model.step(scene(3, rng, box, cv::Scalar(200, 40, 40)))) == 0) firstClear = i;
    EXPECT_GE(firstClear, 12);
    EXPECT_LE(firstClear, 16);
    // And it stays background.
    EXPECT_EQ(cv::countNonZero(model.step(scene(3, rng, box, cv::Scalar(200, 40, 40)))), 0);
}

// Pixels flickering between two colours every frame are foreground at
// first and are learned as background through their co-occurrences.
TEST(HistogramModel, FlickerLearnedByCooccurrence) {
    cv::RNG rng(11);
    const cv::Rect patch(4, 4, 10, 10);
    ZebForegroundHistogramModel m{};
    m.statRate = 0.05f, m.absorbLevel = 0.3f;
    Model<1> model(scene(1, rng), m, 0);
    std::vector<int> fg;
    for (int i = 0; i < 60; ++i) fg.push_back(cv::countNonZero(model.step(scene(1, rng, patch, cv::Scalar(i % 2 ? 250 : 10)))));
    EXPECT_EQ(fg[1], patch.area());
    EXPECT_EQ(fg.back(), 0);
    EXPECT_EQ(fg[58], 0);
}

// On the street scene the model finds the walkers: most of what OpenCV's
// mixture calls foreground (outside shadows) is foreground here too, and
// the foreground stays a small share of the frame.
TEST(HistogramModel, StreetAgainstOpenCV) {
    const auto& frames = zt::bg::street_frames(100);
    ASSERT_GE(frames.size(), 100u);
    auto mog2 = cv::createBackgroundSubtractorMOG2();
    Model<3> model(frames[0], ZebForegroundHistogramModel{}, 1);
    cv::Mat first;
    mog2->apply(frames[0], first);
    double covered = 0, share = 0;
    int n = 0;
    for (std::size_t i = 1; i < frames.size(); ++i) {
        cv::Mat theirs, ours = model.step(frames[i]);
        mog2->apply(frames[i], theirs);
        if (i < 50) continue;
        const cv::Mat fg = theirs == 255;
        covered += double(cv::countNonZero(fg & ours)) / std::max(1, cv::countNonZero(fg));
        share += double(cv::countNonZero(ours)) / double(ours.total());
        ++n;
    }
    std::printf("histogram model on the street: %.3f of OpenCV's foreground found, foreground share %.3f\n",
                covered / n, share / n);
    EXPECT_GT(covered / n, 0.5);
    EXPECT_LT(share / n, 0.1);
}

}  // namespace
