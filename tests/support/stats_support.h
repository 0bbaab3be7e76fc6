// SPDX-License-Identifier: Apache-2.0
// Helpers shared by the statistics suites: the member list (every export
// reachable through its table entries), masks, channel values, the shape
// sweep, the images compared with OpenCV and the error bound of
// single-precision sums.
#pragma once

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <functional>
#include <map>
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>
#include <string>
#include <vector>

#include "call.h"
#include "harness.h"

// Every statistics export, one per line.
#define ZT_STATS_MEMBERS(X)       \
    X(zebiMean_8u_C1MR)           \
    X(zebiMean_8u_C3CMR)          \
    X(zebiMean_StdDev_8u_C1R)     \
    X(zebiMean_StdDev_8u_C1MR)    \
    X(zebiMean_StdDev_8u_C3CR)    \
    X(zebiMean_StdDev_8u_C3CMR)   \
    X(zebiMinMaxIndx_8u_C1R)      \
    X(zebiMinMaxIndx_8u_C1MR)     \
    X(zebiMinMaxIndx_8u_C3CR)     \
    X(zebiMinMaxIndx_8u_C3CMR)    \
    X(zebiNorm_Inf_8u_C1MR)       \
    X(zebiNorm_Inf_8u_C3CMR)      \
    X(zebiNormDiff_Inf_8u_C1MR)   \
    X(zebiNormDiff_Inf_8u_C3CMR)  \
    X(zebiNormRel_Inf_8u_C1MR)    \
    X(zebiNormRel_Inf_8u_C3CMR)   \
    X(zebiNorm_L1_8u_C1MR)        \
    X(zebiNorm_L1_8u_C3CMR)       \
    X(zebiNormDiff_L1_8u_C1MR)    \
    X(zebiNormDiff_L1_8u_C3CMR)   \
    X(zebiNormRel_L1_8u_C1MR)     \
    X(zebiNormRel_L1_8u_C3CMR)    \
    X(zebiNorm_L2_8u_C1MR)        \
    X(zebiNorm_L2_8u_C3CMR)       \
    X(zebiNormDiff_L2_8u_C1MR)    \
    X(zebiNormDiff_L2_8u_C3CMR)   \
    X(zebiNormRel_L2_8u_C1MR)     \
    X(zebiNormRel_L2_8u_C3CMR)    \
    X(zebiMean_8s_C1MR)           \
    X(zebiMean_8s_C3CMR)          \
    X(zebiMean_StdDev_8s_C1R)     \
    X(zebiMean_StdDev_8s_C1MR)    \
    X(zebiMean_StdDev_8s_C3CR)    \
    X(zebiMean_StdDev_8s_C3CMR)   \
    X(zebiMinMaxIndx_8s_C1R)      \
    X(zebiMinMaxIndx_8s_C1MR)     \
    X(zebiMinMaxIndx_8s_C3CR)     \
    X(zebiMinMaxIndx_8s_C3CMR)    \
    X(zebiNorm_Inf_8s_C1MR)       \
    X(zebiNorm_Inf_8s_C3CMR)      \
    X(zebiNormDiff_Inf_8s_C1MR)   \
    X(zebiNormDiff_Inf_8s_C3CMR)  \
    X(zebiNormRel_Inf_8s_C1MR)    \
    X(zebiNormRel_Inf_8s_C3CMR)   \
    X(zebiNorm_L1_8s_C1MR)        \
    X(zebiNorm_L1_8s_C3CMR)       \
    X(zebiNormDiff_L1_8s_C1MR)    \
    X(zebiNormDiff_L1_8s_C3CMR)   \
    X(zebiNormRel_L1_8s_C1MR)     \
    X(zebiNormRel_L1_8s_C3CMR)    \
    X(zebiNorm_L2_8s_C1MR)        \
    X(zebiNorm_L2_8s_C3CMR)       \
    X(zebiNormDiff_L2_8s_C1MR)    \
    X(zebiNormDiff_L2_8s_C3CMR)   \
    X(zebiNormRel_L2_8s_C1MR)     \
    X(zebiNormRel_L2_8s_C3CMR)    \
    X(zebiMean_16u_C1MR)          \
    X(zebiMean_16u_C3CMR)         \
    X(zebiMean_StdDev_16u_C1R)    \
    X(zebiMean_StdDev_16u_C1MR)   \
    X(zebiMean_StdDev_16u_C3CR)   \
    X(zebiMean_StdDev_16u_C3CMR)  \
    X(zebiMinMaxIndx_16u_C1R)     \
    X(zebiMinMaxIndx_16u_C1MR)    \
    X(zebiMinMaxIndx_16u_C3CR)    \
    X(zebiMinMaxIndx_16u_C3CMR)   \
    X(zebiNorm_Inf_16u_C1MR)      \
    X(zebiNorm_Inf_16u_C3CMR)     \
    X(zebiNormDiff_Inf_16u_C1MR)  \
    X(zebiNormDiff_Inf_16u_C3CMR) \
    X(zebiNormRel_Inf_16u_C1MR)   \
    X(zebiNormRel_Inf_16u_C3CMR)  \
    X(zebiNorm_L1_16u_C1MR)       \
    X(zebiNorm_L1_16u_C3CMR)      \
    X(zebiNormDiff_L1_16u_C1MR)   \
    X(zebiNormDiff_L1_16u_C3CMR)  \
    X(zebiNormRel_L1_16u_C1MR)    \
    X(zebiNormRel_L1_16u_C3CMR)   \
    X(zebiNorm_L2_16u_C1MR)       \
    X(zebiNorm_L2_16u_C3CMR)      \
    X(zebiNormDiff_L2_16u_C1MR)   \
    X(zebiNormDiff_L2_16u_C3CMR)  \
    X(zebiNormRel_L2_16u_C1MR)    \
    X(zebiNormRel_L2_16u_C3CMR)   \
    X(zebiMean_32f_C1MR)          \
    X(zebiMean_32f_C3CMR)         \
    X(zebiMean_StdDev_32f_C1R)    \
    X(zebiMean_StdDev_32f_C1MR)   \
    X(zebiMean_StdDev_32f_C3CR)   \
    X(zebiMean_StdDev_32f_C3CMR)  \
    X(zebiMinMaxIndx_32f_C1R)     \
    X(zebiMinMaxIndx_32f_C1MR)    \
    X(zebiMinMaxIndx_32f_C3CR)    \
    X(zebiMinMaxIndx_32f_C3CMR)   \
    X(zebiNorm_Inf_32f_C1MR)      \
    X(zebiNorm_Inf_32f_C3CMR)     \
    X(zebiNormDiff_Inf_32f_C1MR)  \
    X(zebiNormDiff_Inf_32f_C3CMR) \
    X(zebiNormRel_Inf_32f_C1MR)   \
    X(zebiNormRel_Inf_32f_C3CMR)  \
    X(zebiNorm_L1_32f_C1MR)       \
    X(zebiNorm_L1_32f_C3CMR)      \
    X(zebiNormDiff_L1_32f_C1MR)   \
    X(zebiNormDiff_L1_32f_C3CMR)  \
    X(zebiNormRel_L1_32f_C1MR)    \
    X(zebiNormRel_L1_32f_C3CMR)   \
    X(zebiNorm_L2_32f_C1MR)       \
    X(zebiNorm_L2_32f_C3CMR)      \
    X(zebiNormDiff_L2_32f_C1MR)   \
    X(zebiNormDiff_L2_32f_C3CMR)  \
    X(zebiNormRel_L2_32f_C1MR)    \
    X(zebiNormRel_L2_32f_C3CMR)

#define ZT_DECLARE(name) ZEB_TEST_TABLE(name);
ZT_STATS_MEMBERS(ZT_DECLARE)
#undef ZT_DECLARE

namespace zst {

using zt::Image;
using Fn = std::function<ZebStatus(int, const zt::CallArgs&)>;

// Every member by name, calling variant v's table entry.
inline const std::map<std::string, Fn>& members() {
    static const std::map<std::string, Fn> t = {
#define ZT_ENTRY(name) {#name, [](int v, const zt::CallArgs& a) { return zt::call(zeb_tbl_##name[v], a); }},
        ZT_STATS_MEMBERS(ZT_ENTRY)
#undef ZT_ENTRY
    };
    return t;
}

// Calls the member named op ("zebiMean_StdDev", "zebiNormRel_L2", ...) for
// T and the layout of the images: source a, second source b and mask m
// (each skipped when null), then the outputs, with channel coi, through
// variant v.
template <class T>
ZebStatus run(const std::string& op, int v, const Image<T>& a, const Image<T>* b, const Image<uint8_t>* m,
              std::vector<void*> outs, int coi = 1) {
    const char* type = sizeof(T) == 4 ? "_32f" : sizeof(T) == 2 ? "_16u" : std::is_signed_v<T> ? "_8s" : "_8u";
    zt::CallArgs args;
    auto add = [&](const auto* im) {
        if (im) args.ptrs.push_back((void*)im->ptr()), args.steps.push_back(im->step());
    };
    add(&a), add(b), add(m);
    args.ptrs.insert(args.ptrs.end(), outs.begin(), outs.end());
    args.roi = a.size();
    args.param = coi;
    return members().at(op + type + (a.channels() == 3 ? "_C3C" : "_C1") + (m ? "MR" : "R"))(v, args);
}

// A mask with runs of zeros and of non-zero values of every length; density
// is the share of selected pixels in percent.
inline void fill_mask(Image<uint8_t>& m, int density = 60) {
    for (int y = 0; y < m.height(); ++y)
        for (int x = 0; x < m.width(); ++x)
            m.at(x, y) = int(zt::rng()() % 100) < density ? uint8_t(1 + zt::rng()() % 255) : 0;
}

// Pixel values drawn from [lo, hi] (for ties and extremes).
template <class T>
void fill_range(Image<T>& img, double lo, double hi) {
    std::uniform_real_distribution<double> d(lo, hi);
    for (int y = 0; y < img.height(); ++y)
        for (int x = 0; x < img.width() * img.channels(); ++x) {
            const double v = d(zt::rng());
            img.row(y)[x] = std::is_floating_point_v<T> ? T(v) : T(std::lround(v));
        }
}

// One channel as a continuous cv::Mat copy.
template <class T>
cv::Mat channel_mat(const Image<T>& img, int c) {
    cv::Mat out;
    cv::extractChannel(img.mat(), out, c);
    return out;
}

inline bool same_bits(double a, double b) { return std::memcmp(&a, &b, 8) == 0; }

// Calls f(variant, image, mask, description) for both variants on random
// images with a mask: every test width (empty vector bodies, heads, tails,
// several vectors) with every pad (row starts against the vector
// boundaries), one and three channels, heights 1 to 4 (odd and even row
// pairs). The fixture has selected the vector target.
template <class T, class F>
void sweep_images(F&& f) {
    for (int w : zt::test_widths())
        for (int pad : zt::test_pads(sizeof(T)))
            for (int ch : {1, 3}) {
                const int h = 1 + (w + pad + ch) % 4;
                Image<T> s(w, h, ch, pad);
                Image<uint8_t> m(w, h, 1, pad % 3 + 1);
                fill_mask(m);
                const std::string what = "w=" + std::to_string(w) + " h=" + std::to_string(h) +
                                         " pad=" + std::to_string(pad) + " ch=" + std::to_string(ch);
                for (int v = 0; v < 2; ++v) f(v, s, m, what + " variant " + std::to_string(v));
            }
}

// The images compared with OpenCV, one and three channels: a random one
// (values in [lo, hi]) with a random mask, and the sample photographs (8s
// shifted by -128, 16u scaled by 257, 32f scaled to [-1, 1]), each with
// the grey values above 110 of the next one as its mask (irregular
// regions, as masks are in practice). Calls f(image, mask, description).
template <class T, class F>
void for_opencv_images(double lo, double hi, F&& f) {
    const char* const names[] = {"baboon.jpg", "fruits.jpg", "building.jpg"};
    for (int ch : {1, 3}) {
        Image<T> s(640, 480, ch, 4 * int(sizeof(T)));
        fill_range(s, lo, hi);
        Image<uint8_t> m(640, 480, 1, 7);
        fill_mask(m, 65);
        f(s, m, "random ch " + std::to_string(ch));
        for (int i = 0; i < 3; ++i) {
            const cv::Mat p = zt::photo(names[i], ch == 3 ? cv::IMREAD_COLOR : cv::IMREAD_GRAYSCALE);
            cv::Mat g = zt::photo(names[(i + 1) % 3], cv::IMREAD_GRAYSCALE), conv;
            ASSERT_FALSE(p.empty() || g.empty()) << "cannot read " << names[i] << " or the next photograph";
            const bool u16 = std::is_same_v<T, uint16_t>, f32 = std::is_same_v<T, float>;
            p.convertTo(conv, zt::CvDepth<T>::v,
                        u16   ? 257
                        : f32 ? 1 / 127.5
                              : 1,
                        std::is_same_v<T, int8_t> ? -128
                        : f32                     ? -1
                                                  : 0);
            cv::resize(g, g, p.size(), 0, 0, cv::INTER_NEAREST);
            cv::threshold(g, g, 110, 0, cv::THRESH_TOZERO);
            f(zt::image_of<T>(conv, 3 * int(sizeof(T))), zt::image_of<uint8_t>(g, 5),
              names[i] + std::string(" ch ") + std::to_string(ch));
        }
    }
}

// Forward error bound of a sum of terms whose absolute values add up to
// sumAbs, accumulated in single precision (unit roundoff u = 2^-24) in
// chains of at most chain additions each, plus `extra` further roundings
// on every term (forming the term, folding lanes): (chain + extra) u sumAbs.
inline constexpr long double kUnitF = 1.0L / 16777216.0L;
inline long double float_sum_bound(long double chain, long double extra, long double sumAbs) {
    return (chain + extra) * kUnitF * sumAbs;
}

}  // namespace zst
