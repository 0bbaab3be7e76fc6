// SPDX-License-Identifier: Apache-2.0
// Corner response: argument checks and the size query (check tables with
// canaries), results on every vector target through both variant tables
// against the definition built on the library's own derivative filters,
// for every kernel, window, border and tiling, and OpenCV's response on
// photographs.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <opencv2/imgproc.hpp>
#include <string>
#include <vector>

#include "check_table.h"
#include "harness.h"

ZEB_TEST_TABLE(zebiHarrisCornerGetBufferSize);
ZEB_TEST_TABLE(zebiHarrisCorner_32f_C1R);
ZEB_TEST_TABLE(zebiHarrisCorner_8u32f_C1R);

namespace {

using zt::checks::Arena;
using zt::checks::Table;

enum Kind { kSobel3, kSobel5, kScharr, kCentral };
struct KernelCase {
    Kind kind;
    int filterType, mask;
};
const KernelCase kKernels[] = {{kSobel3, 2, 33}, {kSobel5, 2, 55}, {kScharr, 5, 33}, {kCentral, 8, 33}};

// ---- the definition ----

// The source of an ROI extended by `before` pixels left and above and
// `after` right and below under a border argument, as floats.
template <class T>
cv::Mat extended(const zt::Image<T>& img, int before, int after, int borderType, double value) {
    const bool all = (borderType & 7) == 6;
    const int t = all || (borderType & 16) ? before : 0, b = all || (borderType & 32) ? after : 0;
    const int l = all || (borderType & 64) ? before : 0, r = all || (borderType & 128) ? after : 0;
    const cv::Mat inMem = img.outer_mat()(
        cv::Rect(img.margin().x - l, img.margin().y - t, img.width() + l + r, img.height() + t + b));
    cv::Mat e, f;
    cv::copyMakeBorder(inMem, e, before - t, after - b, before - l, after - r,
                       ((borderType & 7) == 0 ? cv::BORDER_CONSTANT : cv::BORDER_REPLICATE) | cv::BORDER_ISOLATED,
                       cv::Scalar(value));
    e.convertTo(f, CV_32F);
    return f;
}

ZEB_TEST_TABLE(zebiFilterSobelVertBorder_32f_C1R);
ZEB_TEST_TABLE(zebiFilterSobelHorizBorder_32f_C1R);
ZEB_TEST_TABLE(zebiFilterSobelVertGetBufferSize_32f_C1R);
ZEB_TEST_TABLE(zebiFilterScharrVertBorder_32f_C1R);
ZEB_TEST_TABLE(zebiFilterScharrHorizBorder_32f_C1R);
ZEB_TEST_TABLE(zebiFilterScharrVertGetBufferSize_32f_C1R);

// d/dx and d/dy of the interior of e (r pixels inside each edge), by the
// library's derivative filters reading the rest from memory, or by central
// differences.
void derivatives(const cv::Mat& e, Kind kind, cv::Mat& ix, cv::Mat& iy) {
    const int r = kind == kSobel5 ? 2 : 1;
    const ZebiSize roi{e.cols - 2 * r, e.rows - 2 * r};
    ix.create(roi.height, roi.width, CV_32F);
    iy.create(roi.height, roi.width, CV_32F);
    const float* in = e.ptr<float>(r) + r;
    const int step = int(e.step);
    if (kind == kCentral) {
        for (int y = 0; y < roi.height; ++y)
            for (int x = 0; x < roi.width; ++x) {
                ix.at<float>(y, x) = e.at<float>(y + 1, x + 2) - e.at<float>(y + 1, x);
                iy.at<float>(y, x) = e.at<float>(y, x + 1) - e.at<float>(y + 2, x + 1);
            }
        return;
    }
    int bytes = 0;
    if (kind == kScharr) {
        ASSERT_EQ(zeb_tbl_zebiFilterScharrVertGetBufferSize_32f_C1R[0](roi, &bytes), 0);
        std::vector<uint8_t> buf(static_cast<std::size_t>(bytes));
        ASSERT_EQ(zeb_tbl_zebiFilterScharrVertBorder_32f_C1R[0](in, step, ix.ptr<float>(), int(ix.step), roi, 6, 0,
                                                                 buf.data()), 0);
        ASSERT_EQ(zeb_tbl_zebiFilterScharrHorizBorder_32f_C1R[0](in, step, iy.ptr<float>(), int(iy.step), roi, 6, 0,
                                                                  buf.data()), 0);
    } else {
        const int mask = kind == kSobel5 ? 55 : 33;
        ASSERT_EQ(zeb_tbl_zebiFilterSobelVertGetBufferSize_32f_C1R[0](roi, mask, &bytes), 0);
        std::vector<uint8_t> buf(static_cast<std::size_t>(bytes));
        ASSERT_EQ(zeb_tbl_zebiFilterSobelVertBorder_32f_C1R[0](in, step, ix.ptr<float>(), int(ix.step), roi, mask, 6,
                                                                0, buf.data()), 0);
        ASSERT_EQ(zeb_tbl_zebiFilterSobelHorizBorder_32f_C1R[0](in, step, iy.ptr<float>(), int(iy.step), roi, mask, 6,
                                                                 0, buf.data()), 0);
    }
}

// The responses of the ROI: window sums column by column, means, formula.
template <class T>
std::vector<float> definition(const zt::Image<T>& img, Kind kind, int aw, float k, float scale, int borderType,
                              double value) {
    const int r = kind == kSobel5 ? 2 : 1, lo = aw / 2 - (aw % 2 == 0), hi = aw / 2;
    cv::Mat ix, iy;
    derivatives(extended(img, r + lo, r + hi, borderType, value), kind, ix, iy);
    const uint32_t a4 = uint32_t(aw) * uint32_t(aw) * uint32_t(aw) * uint32_t(aw);
    const float s = float(double(a4) * double(scale)), n = float(aw) * float(aw);
    std::vector<float> out;
    for (int y = 0; y < img.height(); ++y)
        for (int x = 0; x < img.width(); ++x) {
            float m[3];
            for (int p = 0; p < 3; ++p) {
                auto prod = [&](int yy, int xx) {
                    const float gx = ix.at<float>(yy, xx), gy = iy.at<float>(yy, xx);
                    return p == 0 ? gx * gx : p == 1 ? gy * gy : gx * gy;
                };
                float sum = 0;
                for (int i = 0; i < aw; ++i) {
                    float col = prod(y, x + i);
                    for (int j = 1; j < aw; ++j) col += prod(y + j, x + i);
                    sum = i == 0 ? col : sum + col;
                }
                m[p] = aw == 1 ? sum : sum / n;
            }
            const float t = m[0] + m[1];
            out.push_back((m[0] * m[1] - t * (k * t) - m[2] * m[2]) * s);
        }
    return out;
}

template <class T>
ZebStatus call(int v, const T* src, int ss, float* dst, int ds, ZebiSize roi, int filter, int mask, int aw, float k,
               float scale, int border, double value, uint8_t* buf) {
    if constexpr (std::is_same_v<T, float>)
        return zeb_tbl_zebiHarrisCorner_32f_C1R[v](src, ss, dst, ds, roi, filter, mask, aw, k, scale, border,
                                                   float(value), buf);
    else
        return zeb_tbl_zebiHarrisCorner_8u32f_C1R[v](src, ss, dst, ds, roi, filter, mask, aw, k, scale, border,
                                                     uint8_t(value), buf);
}

template <class T>
std::vector<float> run(int v, const zt::Image<T>& img, const KernelCase& kc, int aw, float k, float scale, int border,
                       double value) {
    int bytes = 0;
    EXPECT_EQ(zeb_tbl_zebiHarrisCornerGetBufferSize[v](img.size(), kc.mask, aw, std::is_same_v<T, float> ? zeb32f : zeb8u,
                                                       1, &bytes),
              0);
    zt::Guarded buf = zt::work_buffer(bytes);
    zt::Image<float> out(img.width(), img.height(), 1, 4 * (aw % 3));
    EXPECT_EQ(call(v, img.ptr(), img.step(), out.ptr(), out.step(), img.size(), kc.filterType, kc.mask, aw, k, scale,
                   border, value, buf.data()),
              0);
    return out.pixels();
}

// First position where two float arrays differ in their bits, or -1.
int first_difference(const std::vector<float>& a, const std::vector<float>& b) {
    for (std::size_t i = 0; i < a.size(); ++i)
        if (!zt::same_bits(a[i], b[i])) return int(i);
    return a.size() == b.size() ? -1 : int(std::min(a.size(), b.size()));
}

ZT_TARGET_SUITE(Harris);

// ---- argument checks ----

struct Args {
    const void* src;
    int ss;
    float* dst;
    int ds;
    ZebiSize roi;
    int filter, mask, aw, border;
    uint8_t* buf;
};

template <class T>
Table<Args> table(const char* name) {
    constexpr bool f = std::is_same_v<T, float>;
    auto later = [](Args& a) { a.filter = 3, a.mask = 0, a.border = 2, a.aw = 0; };
    std::vector<zt::checks::Case<Args>> cases = {
        {"null source, width 0", [=](Args& a) { a.src = nullptr, a.roi.width = 0, later(a); }, -8},
        {"null destination", [=](Args& a) { a.dst = nullptr, later(a); }, -8},
        {"null buffer", [=](Args& a) { a.buf = nullptr, later(a); }, -8},
        {"height 0", [=](Args& a) { a.roi.height = 0, a.ss = -3, later(a); }, -6},
        {"destination step 6", [=](Args& a) { a.ds = 6, later(a); }, -108},
        {"source step +2", [=](Args& a) { a.ss += 2, later(a); }, f ? -108 : -230},
        {"filter 3", [](Args& a) { a.filter = 3, a.mask = 0, a.border = 2; }, -230},
        {"mask 0", [](Args& a) { a.mask = 0, a.border = 2; }, -33},
        {"Scharr 5x5", [](Args& a) { a.filter = 5, a.mask = 55; }, -33},
        {"central 5x5", [](Args& a) { a.filter = 8, a.mask = 55; }, -33},
        {"mode 2", [](Args& a) { a.border = 2, a.aw = 0; }, -225},
        {"mode 5 with flags", [](Args& a) { a.border = 5 | 16; }, -225},
        {"window 0", [](Args& a) { a.aw = 0, a.ss = -a.ss; }, -6},
        {"negative source step", [](Args& a) { a.ss = -a.ss; }, -14},
        {"negative destination step", [](Args& a) { a.ds = -a.ds; }, -14},
        {"short source step accepted", [](Args& a) { a.ss = 4; }, 0},
        {"low three bits 1 of 9", [](Args& a) { a.border = 9; }, 0},
        {"mode 6, Sobel 5x5", [](Args& a) { a.border = 6, a.mask = 55; }, 0},
        {"central differences", [](Args& a) { a.filter = 8; }, 0},
        {"flags over mode 0", [](Args& a) { a.border = 16 | 64; }, 0}};
    if (f) cases.push_back({"in place", [](Args& a) { a.dst = const_cast<float*>(static_cast<const float*>(a.src)); }, -9997});
    return {name,
            [](Arena& m) {
                int bytes = 0;
                EXPECT_EQ(zeb_tbl_zebiHarrisCornerGetBufferSize[0]({9, 6}, 55, 3, f ? zeb32f : zeb8u, 1, &bytes), 0);
                const auto s = m.image<T>("src", 9 + 6, 6 + 6);  // three pixels of margin for mode 6
                const auto d = m.image<float>("dst", 9, 6);
                return Args{reinterpret_cast<const char*>(s.ptr) + 3 * s.step + 3 * sizeof(T), s.step, d.ptr, d.step,
                            {9, 6}, 2, 33, 3, 1, m.block("buffer", std::size_t(bytes))};
            },
            [](int v, Args& a) {
                return call(v, static_cast<const T*>(a.src), a.ss, a.dst, a.ds, a.roi, a.filter, a.mask, a.aw, 0.04f,
                            1.f, a.border, 1, a.buf);
            },
            cases};
}

TEST_P(Harris, ExportsCheckInOrder) {
    zt::checks::run(table<float>("zebiHarrisCorner_32f_C1R"));
    zt::checks::run(table<uint8_t>("zebiHarrisCorner_8u32f_C1R"));
    struct Q {
        ZebiSize roi;
        int mask, aw, type, ch;
        int* out;
    };
    zt::checks::run(Table<Q>{
        "zebiHarrisCornerGetBufferSize", [](Arena& m) { return Q{{20, 20}, 33, 3, zeb8u, 1, m.array<int>("size", 1)}; },
        [](int v, Q& q) { return zeb_tbl_zebiHarrisCornerGetBufferSize[v](q.roi, q.mask, q.aw, q.type, q.ch, q.out); },
        {{"null output, width 0", [](Q& q) { q.out = nullptr, q.roi.width = 0, q.mask = 1; }, -8},
         {"width 0, mask 1", [](Q& q) { q.roi.width = 0, q.mask = 1; }, -6},
         {"mask 53, type 7", [](Q& q) { q.mask = 53, q.type = 7; }, -33},
         {"type 7, 3 channels", [](Q& q) { q.type = zeb16s, q.ch = 3; }, -12},
         {"3 channels, window 0", [](Q& q) { q.ch = 3, q.aw = 0; }, -53},
         {"window 0", [](Q& q) { q.aw = 0; }, -6},
         {"window beyond an int", [](Q& q) { q.aw = 60000, q.roi = {100000, 100000}; }, -6},
         {"32f, 5x5", [](Q& q) { q.type = zeb32f, q.mask = 55; }, 0}}});
}

// ---- results against the definition ----

template <class T>
void sweep(const std::vector<std::pair<int, int>>& sizes, const std::vector<int>& windows, const std::vector<int>& borders) {
    for (auto [w, h] : sizes)
        for (int aw : windows) {
            zt::Image<T> img(w, h, 1, 4 * (w % 2), zt::Margin{2 + aw / 2, 2 + aw / 2});
            if constexpr (std::is_same_v<T, float>) {
                cv::Mat o = img.outer_mat();
                cv::randu(o, 0.f, 255.f);
                img.remember_padding();
            }
            for (const KernelCase& kc : kKernels)
                for (int b : borders) {
                    const auto want = definition(img, kc.kind, aw, 0.04f, 0.5f, b, 77);
                    for (int v = 0; v < 2; ++v) {
                        const int at = first_difference(run(v, img, kc, aw, 0.04f, 0.5f, b, 77), want);
                        ASSERT_EQ(at, -1) << (std::is_same_v<T, float> ? "32f " : "8u ") << w << "x" << h
                                          << " kernel " << kc.kind << " window " << aw << " border " << b
                                          << " at pixel " << at;
                    }
                }
        }
}

// Sizes cover images no larger than the margins (one border pass), strips
// and a single tile, and several tiles in both directions.
TEST_P(Harris, SmallImagesMatchTheDefinition) {
    sweep<float>({{1, 1}, {3, 2}, {6, 7}, {23, 9}}, {1, 2, 3, 4, 7}, {0, 1, 6, 16 | 1, 32 | 64, 128, 240 | 1});
    sweep<uint8_t>({{1, 1}, {5, 4}, {23, 9}}, {1, 2, 3, 5}, {0, 1, 6, 64 | 16, 32 | 128 | 1});
}

TEST_P(Harris, TiledImagesMatchTheDefinition) {
    sweep<float>({{150, 110}}, {3, 4}, {1, 6, 16});
    sweep<uint8_t>({{211, 190}}, {2, 3}, {0, 6, 128 | 1});
}

// With a window of 1 the products themselves enter the formula.
TEST_P(Harris, WindowOfOneUsesTheProducts) {
    zt::Image<uint8_t> img(1, 1, 1, 0, zt::Margin{1, 1});
    // Ix = 2*(right - left) over the middle row weights: a single bright
    // pixel to the right of centre and one below it.
    for (int y = -1; y <= 1; ++y)
        for (int x = -1; x <= 1; ++x) img.at(x, y) = 0;
    img.at(1, 0) = 10;  // Ix = 20, Iy = 0 (Sobel)
    img.at(0, 1) = 5;   // Iy = 10, Ix = 0 (below: y grows downward)
    img.remember_padding();
    const float ix = 20, iy = 10, k = 0.05f, scale = 2.f;
    const float want = (ix * ix * (iy * iy) - k * (ix * ix + iy * iy) * (ix * ix + iy * iy) - (ix * iy) * (ix * iy)) * scale;
    for (int v = 0; v < 2; ++v) EXPECT_FLOAT_EQ(run(v, img, kKernels[0], 1, k, scale, 6, 0)[0], want);
}

// ---- OpenCV ----

// Local maxima over 3x3 above a fraction of the largest response.
std::vector<cv::Point> peaks(const cv::Mat& r, double fraction) {
    double mx = 0;
    cv::minMaxLoc(r, nullptr, &mx);
    cv::Mat dil;
    cv::dilate(r, dil, cv::Mat());
    std::vector<cv::Point> p;
    for (int y = 1; y < r.rows - 1; ++y)
        for (int x = 1; x < r.cols - 1; ++x)
            if (r.at<float>(y, x) > fraction * mx && r.at<float>(y, x) == dil.at<float>(y, x)) p.emplace_back(x, y);
    return p;
}

TEST_P(Harris, SameCornersAsOpenCV) {
    for (const char* file : {"building.jpg", "box.png"}) {
        const cv::Mat g = zt::photo(file, cv::IMREAD_GRAYSCALE);
        if (g.empty()) GTEST_SKIP() << file << " missing";
        const auto img = zt::image_of<uint8_t>(g);
        for (auto [ksize, block] : {std::pair{3, 3}, {3, 2}, {5, 5}}) {
                cv::Mat ref;
                cv::cornerHarris(g, ref, block, ksize, 0.04, cv::BORDER_REPLICATE);
                // OpenCV scales each derivative by 1 / (2^(ksize-1) * block * 255)
                // and sums the window: our means times block^4 times scale.
                const double sc = 1.0 / ((1 << (ksize - 1)) * block * 255.0);
                const KernelCase kc{ksize == 3 ? kSobel3 : kSobel5, 2, ksize == 3 ? 33 : 55};
                const auto got = run(1, img, kc, block, 0.04f, float(std::pow(sc, 4)), 1, 0);
                cv::Mat ours(g.rows, g.cols, CV_32F, const_cast<float*>(got.data()));
                // An even window reaches further right and down here, while
                // OpenCV's box filter centres it on block / 2: its response at
                // (x + 1, y + 1) sums our window of (x, y). Near the edges the
                // two differ by design: OpenCV extends the products by the
                // border rule, we extend the image and differentiate it. Both
                // are compared where the windows stay inside the image.
                const int m = block / 2 + 1, shift = block % 2 == 0 ? 1 : 0;
                const cv::Rect inner(m, m, g.cols - 2 * m, g.rows - 2 * m);
                ours = ours(inner);
                ref = ref(inner + cv::Point(shift, shift));
                double mx = 0, diff = 0;
                cv::minMaxLoc(cv::abs(ref), nullptr, &mx);
                cv::minMaxLoc(cv::abs(ours - ref), nullptr, &diff);
                EXPECT_LT(diff, 1e-4 * mx) << file << " ksize " << ksize << " block " << block;
                const auto a = peaks(ref, 0.01), b = peaks(ours, 0.01);
                std::size_t same = 0;
                for (const cv::Point& p : a) same += std::find(b.begin(), b.end(), p) != b.end();
                EXPECT_GE(double(same), 0.99 * double(a.size())) << file << " ksize " << ksize << " block " << block;
                EXPECT_GE(double(same), 0.99 * double(b.size())) << file << " ksize " << ksize << " block " << block;
                EXPECT_GT(a.size(), 10u) << file;
                std::printf("  %s Sobel %d window %d: %zu of %zu maxima shared, max |diff| / max = %.2e\n", file, ksize,
                            block, same, a.size(), diff / mx);
            }
    }
}

}  // namespace
