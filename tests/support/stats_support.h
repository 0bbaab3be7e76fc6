// Helpers shared by the statistics suites: every export reachable by name,
// masks, channel values, sweeps over every path and shape, bit comparison.
#pragma once

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <functional>
#include <map>
#include <opencv2/core.hpp>
#include <string>
#include <vector>

#include "call.h"
#include "harness.h"

// Every export of one type: X(name, family, element size, channels, masked).
#define ZT_TYPE_MEMBERS(X, c, e)                                                                            \
    X(zebiMean_##c##_C1MR, Mean, e, 1, 1) X(zebiMean_##c##_C3CMR, Mean, e, 3, 1)                            \
    X(zebiMean_StdDev_##c##_C1R, MeanStdDev, e, 1, 0) X(zebiMean_StdDev_##c##_C1MR, MeanStdDev, e, 1, 1)    \
    X(zebiMean_StdDev_##c##_C3CR, MeanStdDev, e, 3, 0) X(zebiMean_StdDev_##c##_C3CMR, MeanStdDev, e, 3, 1)  \
    X(zebiMinMaxIndx_##c##_C1R, MinMax, e, 1, 0) X(zebiMinMaxIndx_##c##_C1MR, MinMax, e, 1, 1)              \
    X(zebiMinMaxIndx_##c##_C3CR, MinMax, e, 3, 0) X(zebiMinMaxIndx_##c##_C3CMR, MinMax, e, 3, 1)            \
    ZT_NORM_MEMBERS(X, c, e, Inf) ZT_NORM_MEMBERS(X, c, e, L1) ZT_NORM_MEMBERS(X, c, e, L2)
#define ZT_NORM_MEMBERS(X, c, e, k)                                                                           \
    X(zebiNorm_##k##_##c##_C1MR, Norm, e, 1, 1) X(zebiNorm_##k##_##c##_C3CMR, Norm, e, 3, 1)                  \
    X(zebiNormDiff_##k##_##c##_C1MR, NormDiff, e, 1, 1) X(zebiNormDiff_##k##_##c##_C3CMR, NormDiff, e, 3, 1)  \
    X(zebiNormRel_##k##_##c##_C1MR, NormRel, e, 1, 1) X(zebiNormRel_##k##_##c##_C3CMR, NormRel, e, 3, 1)
#define ZT_STATS_MEMBERS(X) \
    ZT_TYPE_MEMBERS(X, 8u, 1) ZT_TYPE_MEMBERS(X, 8s, 1) ZT_TYPE_MEMBERS(X, 16u, 2) ZT_TYPE_MEMBERS(X, 32f, 4)

#define ZT_DECLARE(name, fam, elem, ch, masked) ZEB_TEST_TABLE(name);
ZT_STATS_MEMBERS(ZT_DECLARE)
#undef ZT_DECLARE

namespace zst {

using zt::Image;
using Fn = std::function<ZebStatus(int, const zt::CallArgs&)>;

// Every export by name, called through variant v's table entry.
inline const std::map<std::string, Fn>& exports() {
    static const std::map<std::string, Fn> t = [] {
        std::map<std::string, Fn> m;
#define ZT_ENTRY(name, fam, elem, ch, masked) \
    m[#name] = [](int v, const zt::CallArgs& a) { return zt::call(zeb_tbl_##name[v], a); };
        ZT_STATS_MEMBERS(ZT_ENTRY)
#undef ZT_ENTRY
        return m;
    }();
    return t;
}

template <class T>
const char* tag() {
    return std::is_same_v<T, uint8_t>    ? "8u"
           : std::is_same_v<T, int8_t>   ? "8s"
           : std::is_same_v<T, uint16_t> ? "16u"
                                         : "32f";
}

// Calls prefix<type>_C1(M)R / _C3C(M)R on source a, second source b and
// mask m (each skipped when null), then the outputs, with channel coi.
template <class T>
ZebStatus run(const std::string& prefix, int v, const Image<T>& a, const Image<T>* b, const Image<uint8_t>* m,
              std::vector<void*> outs, int coi = 1) {
    zt::CallArgs args;
    auto add = [&](const auto* im) {
        if (im) args.ptrs.push_back((void*)im->ptr()), args.steps.push_back(im->step());
    };
    add(&a), add(b), add(m);
    args.ptrs.insert(args.ptrs.end(), outs.begin(), outs.end());
    args.roi = a.size();
    args.param = coi;
    const std::string form = std::string(a.channels() == 3 ? "_C3C" : "_C1") + (m ? "MR" : "R");
    return exports().at(prefix + tag<T>() + form)(v, args);
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

// Channel c of row y, and the matching mask row (null without a mask).
template <class T>
std::vector<T> channel_row(const Image<T>& img, int y, int c) {
    std::vector<T> v(img.width());
    for (int x = 0; x < img.width(); ++x) v[x] = img.at(x, y, c);
    return v;
}
inline const uint8_t* mask_row(const Image<uint8_t>* m, int y) { return m ? m->row(y) : nullptr; }

// One channel as a continuous cv::Mat copy.
template <class T>
cv::Mat channel_mat(const Image<T>& img, int c) {
    cv::Mat out;
    cv::extractChannel(img.mat(), out, c);
    return out;
}

inline bool same_bits(double a, double b) { return std::memcmp(&a, &b, 8) == 0; }

// Calls f(path) on every path, with its instruction set selected.
template <class F>
void each_path(F&& f) {
    for (const zt::Path& p : zt::all_paths()) {
        zt::TargetScope target(p.target);
        f(p);
    }
}

// Calls f(path, image, mask, description) for every path, width, pad, one
// and three channels and a few heights, on random images with a mask.
template <class T, class F>
void sweep_images(F&& f) {
    each_path([&](const zt::Path& p) {
        for (int w : zt::test_widths())
            for (int pad : zt::test_pads(sizeof(T)))
                for (int ch : {1, 3})
                    for (int h : {1, 2, 5}) {
                        Image<T> s(w, h, ch, pad);
                        Image<uint8_t> m(w, h, 1, pad % 3 + 1);
                        fill_mask(m);
                        f(p, s, m, "w=" + std::to_string(w) + " h=" + std::to_string(h) +
                                       " pad=" + std::to_string(pad) + " ch=" + std::to_string(ch));
                    }
    });
}

}  // namespace zst
