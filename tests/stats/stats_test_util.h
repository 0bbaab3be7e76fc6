// Helpers shared by the statistics suites: masks, channel values, sweeps
// over every path and shape, bit comparison of results.
#pragma once

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <opencv2/core.hpp>
#include <vector>

#include "harness.h"

namespace zst {

using zt::Image;

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
    if (img.channels() == 1)
        img.mat().copyTo(out);
    else
        cv::extractChannel(img.mat(), out, c);
    return out;
}

inline bool same_bits(double a, double b) { return std::memcmp(&a, &b, 8) == 0; }

// Calls f(path, w, pad) for every path, width and pad.
template <class F>
void sweep(int elem, F&& f) {
    for (const zt::Path& p : zt::all_paths()) {
        zt::IsaScope isa(p.isa);
        for (int w : zt::test_widths())
            for (int pad : zt::test_pads(elem)) f(p, w, pad);
    }
}

}  // namespace zst
