// SPDX-License-Identifier: Apache-2.0
// Edge detectors: argument checks and size queries (check tables with
// canaries), results on every vector target through both variant tables
// against an independent whole-image definition, the rules that decide
// single pixels, and OpenCV's detector on the same derivatives and on
// photographs.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <deque>
#include <opencv2/imgproc.hpp>
#include <string>
#include <vector>

#include "check_table.h"
#include "harness.h"

ZEB_TEST_TABLE(zebiCannyGetSize);
ZEB_TEST_TABLE(zebiCanny_16s8u_C1R);
ZEB_TEST_TABLE(zebiCanny_32f8u_C1R);
ZEB_TEST_TABLE(zebiCannyBorderGetSize);
ZEB_TEST_TABLE(zebiCannyBorder_8u_C1R);

namespace {

using zt::checks::Arena;
using zt::checks::Table;

// ---- the definition, written out over whole images ----

constexpr float kTanHigh = 2.4142136f, kTanLow = 0.41421357f;

// Candidates (1) and strong pixels (2) from magnitudes m (0 where cut) and
// the sector of each pixel: 'v', 'h', '+' (diagonal, equal signs), '-'.
std::vector<uint8_t> hysteresis(int w, int h, const std::vector<uint8_t>& cls) {
    std::vector<uint8_t> out(std::size_t(w) * h, 0);
    std::deque<int> todo;
    for (int i = 0; i < w * h; ++i)
        if (cls[i] == 2) out[i] = 255, todo.push_back(i);
    while (!todo.empty()) {
        const int i = todo.front();
        todo.pop_front();
        const int y = i / w, x = i % w;
        for (int dy = -1; dy <= 1; ++dy)
            for (int dx = -1; dx <= 1; ++dx) {
                const int yy = y + dy, xx = x + dx;
                if (yy < 0 || yy >= h || xx < 0 || xx >= w) continue;
                const int j = yy * w + xx;
                if (cls[j] && !out[j]) out[j] = 255, todo.push_back(j);
            }
    }
    return out;
}

template <class M>
std::vector<uint8_t> edges(int w, int h, const std::vector<M>& m, const std::vector<char>& sector, M high) {
    auto at = [&](int y, int x) { return y < 0 || y >= h || x < 0 || x >= w ? M(0) : m[std::size_t(y) * w + x]; };
    std::vector<uint8_t> cls(std::size_t(w) * h, 0);
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) {
            const M v = at(y, x);
            if (v == M(0)) continue;
            bool keep = false;
            switch (sector[std::size_t(y) * w + x]) {
                case 'v': keep = at(y - 1, x) < v && at(y + 1, x) <= v; break;
                case 'h': keep = at(y, x - 1) < v && at(y, x + 1) <= v; break;
                case '+': keep = at(y - 1, x - 1) < v && at(y + 1, x + 1) < v; break;
                default: keep = at(y - 1, x + 1) < v && at(y + 1, x - 1) < v; break;
            }
            if (keep) cls[std::size_t(y) * w + x] = v > high ? 2 : 1;
        }
    return hysteresis(w, h, cls);
}

bool negative(float v) { return std::signbit(v); }

char sector(float ax, float ay, bool same) {
    if (ay > kTanHigh * ax) return 'v';
    if (ay < kTanLow * ax) return 'h';
    return same ? '+' : '-';
}

// The derivative detectors' edges.
template <class S>
std::vector<uint8_t> derivative_edges(const zt::Image<S>& dx, const zt::Image<S>& dy, float low, float high) {
    const int w = dx.width(), h = dx.height();
    using M = std::conditional_t<std::is_same_v<S, float>, float, long>;
    std::vector<M> m(std::size_t(w) * h);
    std::vector<char> sec(m.size());
    const long lowI = long(low), highI = long(high);
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) {
            const S a = dx.at(x, y), b = dy.at(x, y);
            M v;
            if constexpr (std::is_same_v<S, float>) {
                v = std::fabs(a) + std::fabs(b);
                if (!(v >= low)) v = 0;
            } else {
                v = std::min(std::labs(long(a)) + std::labs(long(b)), 65535L);
                if (!(v > lowI)) v = 0;
            }
            m[std::size_t(y) * w + x] = v;
            sec[std::size_t(y) * w + x] =
                sector(std::fabs(float(a)), std::fabs(float(b)), negative(float(a)) == negative(float(b)));
        }
    if constexpr (std::is_same_v<S, float>)
        return edges<M>(w, h, m, sec, high);
    else
        return edges<M>(w, h, m, sec, highI);
}

// The border detector's edges from the bordered image e (k/2 extra pixels
// on every side).
std::vector<uint8_t> border_edges(const cv::Mat& e, int kind, bool l2, float low, float high) {
    const int r = kind == 2 ? 2 : 1, w = e.cols - 2 * r, h = e.rows - 2 * r;
    cv::Mat gx, gy;
    if (kind == 1) {
        cv::Scharr(e, gx, CV_32F, 1, 0);
        cv::Scharr(e, gy, CV_32F, 0, 1);
    } else {
        cv::Sobel(e, gx, CV_32F, 1, 0, 2 * r + 1);
        cv::Sobel(e, gy, CV_32F, 0, 1, 2 * r + 1);
    }
    gx.convertTo(gx, CV_32S);  // integer sums, exact in single precision
    gy.convertTo(gy, CV_32S);
    std::vector<float> m(std::size_t(w) * h);
    std::vector<char> sec(m.size());
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) {
            const int a = gx.at<int>(y + r, x + r), b = gy.at<int>(y + r, x + r);
            const float ax = float(std::abs(a)), ay = float(std::abs(b));
            float v = l2 ? float(std::sqrt(double(ax * ax + ay * ay))) : ax + ay;
            if (!(v > low)) v = 0;
            char s = (a ^ b) >= 0 ? '+' : '-';
            if (ay > (ax + ax) + kTanLow * ax) s = 'v';
            else if (kTanLow * ax > ay) s = 'h';
            m[std::size_t(y) * w + x] = v;
            sec[std::size_t(y) * w + x] = s;
        }
    return edges<float>(w, h, m, sec, high);
}

// The bordered image of an ROI (with margin r around it in memory) under a
// border argument: the in-memory sides come from memory, the others from
// the rule, applied to what memory gives.
cv::Mat bordered(const zt::Image<uint8_t>& img, int r, int borderType, uint8_t value) {
    const int mode = borderType & 15;
    const bool all = mode == 6;
    const int t = all || (borderType & 16) ? r : 0, b = all || (borderType & 32) ? r : 0;
    const int l = all || (borderType & 64) ? r : 0, rt = all || (borderType & 128) ? r : 0;
    const cv::Mat inMem = img.outer_mat()(cv::Rect(img.margin().x - l, img.margin().y - t, img.width() + l + rt,
                                                   img.height() + t + b));
    cv::Mat e;
    cv::copyMakeBorder(inMem, e, r - t, r - b, r - l, r - rt, (mode == 0 ? cv::BORDER_CONSTANT : cv::BORDER_REPLICATE) | cv::BORDER_ISOLATED,
                       cv::Scalar(value));
    return e;
}

std::vector<uint8_t> pixels(const cv::Mat& m) {
    std::vector<uint8_t> v;
    for (int y = 0; y < m.rows; ++y) v.insert(v.end(), m.ptr<uint8_t>(y), m.ptr<uint8_t>(y) + m.cols);
    return v;
}

// Derivative images with long edges and noise: a blurred random image's
// Sobel derivatives, scaled.
template <class S>
void smooth_derivatives(zt::Image<S>& dx, zt::Image<S>& dy, double scale) {
    cv::Mat base(dx.height() + 8, dx.width() + 8, CV_8U);
    cv::randu(base, 0, 256);
    cv::GaussianBlur(base, base, cv::Size(7, 7), 2.0);
    cv::Mat gx, gy;
    cv::Sobel(base, gx, CV_32F, 1, 0);
    cv::Sobel(base, gy, CV_32F, 0, 1);
    const cv::Rect roi(4, 4, dx.width(), dx.height());
    gx(roi).convertTo(dx.mat(), zt::CvDepth<S>::v, scale);
    gy(roi).convertTo(dy.mat(), zt::CvDepth<S>::v, scale);
}

template <class S>
ZebStatus call_derivative(int v, const zt::Image<S>& dx, const zt::Image<S>& dy, uint8_t* d, int ds, ZebiSize roi,
                          float low, float high, uint8_t* buf) {
    if constexpr (std::is_same_v<S, float>)
        return zeb_tbl_zebiCanny_32f8u_C1R[v](dx.ptr(), dx.step(), dy.ptr(), dy.step(), d, ds, roi, low, high, buf);
    else
        return zeb_tbl_zebiCanny_16s8u_C1R[v](dx.ptr(), dx.step(), dy.ptr(), dy.step(), d, ds, roi, low, high, buf);
}

// Edges of a derivative detector through variant v, buffer at the query's size.
template <class S>
std::vector<uint8_t> run_derivative(int v, const zt::Image<S>& dx, const zt::Image<S>& dy, float low, float high,
                                    int pad = 0) {
    int bytes = 0;
    EXPECT_EQ(zeb_tbl_zebiCannyGetSize[v](dx.size(), &bytes), 0);
    zt::Guarded buf = zt::work_buffer(bytes);
    zt::Image<uint8_t> out(dx.width(), dx.height(), 1, pad);
    EXPECT_EQ(call_derivative(v, dx, dy, out.ptr(), out.step(), dx.size(), low, high, buf.data()), 0);
    return out.pixels();
}

std::vector<uint8_t> run_border(int v, const zt::Image<uint8_t>& src, int filter, int mask, int borderType,
                                uint8_t value, float low, float high, int norm, int pad = 0) {
    int bytes = 0;
    EXPECT_EQ(zeb_tbl_zebiCannyBorderGetSize[v](src.size(), filter, mask, zeb8u, &bytes), 0);
    zt::Guarded buf = zt::work_buffer(bytes);
    zt::Image<uint8_t> out(src.width(), src.height(), 1, pad);
    EXPECT_EQ(zeb_tbl_zebiCannyBorder_8u_C1R[v](src.ptr(), src.step(), out.ptr(), out.step(), src.size(), filter, mask,
                                               borderType, value, low, high, norm, buf.data()),
              0);
    return out.pixels();
}

int differing(const std::vector<uint8_t>& a, const std::vector<uint8_t>& b) {
    int n = 0;
    for (std::size_t i = 0; i < a.size(); ++i) n += a[i] != b[i];
    return n;
}

ZT_TARGET_SUITE(Canny);

// ---- argument checks ----

struct DArgs {
    const void *dx, *dy;
    int dxs, dys;
    uint8_t* d;
    int ds;
    ZebiSize roi;
    float low, high;
    uint8_t* buf;
};

template <class S>
Table<DArgs> derivative_table(const char* name) {
    constexpr int e = int(sizeof(S));
    auto later = [](DArgs& a) { a.low = -1, a.high = -2; };
    return {name,
            [](Arena& m) {
                int bytes = 0;
                EXPECT_EQ(zeb_tbl_zebiCannyGetSize[0]({9, 5}, &bytes), 0);
                const auto dx = m.image<S>("dx", 9, 5, 1, 8), dy = m.image<S>("dy", 9, 5, 1, 8);
                const auto d = m.image<uint8_t>("edges", 9, 5, 1, 8);
                return DArgs{dx.ptr, dy.ptr, dx.step, dy.step, d.ptr, d.step, {9, 5}, 1.f, 2.f,
                             m.block("buffer", std::size_t(bytes))};
            },
            [](int v, DArgs& a) {
                if constexpr (std::is_same_v<S, float>)
                    return zeb_tbl_zebiCanny_32f8u_C1R[v](static_cast<const float*>(a.dx), a.dxs,
                                                          static_cast<const float*>(a.dy), a.dys, a.d, a.ds, a.roi,
                                                          a.low, a.high, a.buf);
                else
                    return zeb_tbl_zebiCanny_16s8u_C1R[v](static_cast<const int16_t*>(a.dx), a.dxs,
                                                          static_cast<const int16_t*>(a.dy), a.dys, a.d, a.ds, a.roi,
                                                          a.low, a.high, a.buf);
            },
            {{"null dx, width 0", [=](DArgs& a) { a.dx = nullptr, a.roi.width = 0, later(a); }, -8},
             {"null dy", [=](DArgs& a) { a.dy = nullptr, later(a); }, -8},
             {"null edges", [=](DArgs& a) { a.d = nullptr, later(a); }, -8},
             {"null buffer", [=](DArgs& a) { a.buf = nullptr, a.dxs = 0; }, -8},
             {"height 0, short step", [=](DArgs& a) { a.roi.height = 0, a.dxs = 1; }, -6},
             {"short dx step, odd dy step", [=](DArgs& a) { a.dxs -= e, a.dys += 1, later(a); }, -14},
             {"short dy step", [=](DArgs& a) { a.dys -= 1; }, -14},
             {"short edge step", [=](DArgs& a) { a.ds -= 1, later(a); }, -14},
             {"uneven dx step", [=](DArgs& a) { a.dxs += 1, later(a); }, -108},
             {"uneven dy step", [=](DArgs& a) { a.dys += e - 1, later(a); }, -108},
             {"odd edge step", [=](DArgs& a) { a.ds += 1; }, 0},
             {"negative low", [](DArgs& a) { a.low = -0.5f; }, -5},
             {"low above high", [](DArgs& a) { a.low = 3.f; }, -5},
             {"low = high = 0", [](DArgs& a) { a.low = a.high = 0.f; }, 0},
             {"1x1", [](DArgs& a) { a.roi = {1, 1}; }, 0}}};
}

TEST_P(Canny, ExportsCheckInOrder) {
    zt::checks::run(derivative_table<int16_t>("zebiCanny_16s8u_C1R"));
    zt::checks::run(derivative_table<float>("zebiCanny_32f8u_C1R"));

    struct B {
        const uint8_t* src;
        int ss;
        uint8_t* d;
        int ds;
        ZebiSize roi;
        int filter, mask, border;
        float low, high;
        int norm;
        uint8_t* buf;
    };
    auto later = [](B& a) { a.filter = 7, a.low = -1, a.border = 9; };
    zt::checks::run(Table<B>{
        "zebiCannyBorder_8u_C1R",
        [](Arena& m) {
            int bytes = 0;
            EXPECT_EQ(zeb_tbl_zebiCannyBorderGetSize[0]({9, 5}, 2, 55, zeb8u, &bytes), 0);
            const auto s = m.image<uint8_t>("src", 13, 9);  // two pixels of margin for mode 6
            const auto d = m.image<uint8_t>("edges", 9, 5);
            return B{s.ptr + 2 * s.step + 2, s.step, d.ptr, d.step, {9, 5}, 2, 33, 1, 1.f, 2.f, 2,
                     m.block("buffer", std::size_t(bytes))};
        },
        [](int v, B& a) {
            return zeb_tbl_zebiCannyBorder_8u_C1R[v](a.src, a.ss, a.d, a.ds, a.roi, a.filter, a.mask, a.border, 7,
                                                      a.low, a.high, a.norm, a.buf);
        },
        {{"mask 35 before null source", [=](B& a) { a.mask = 35, a.src = nullptr, later(a); }, -33},
         {"Scharr 5x5 before null source", [=](B& a) { a.filter = 5, a.mask = 55, a.src = nullptr; }, -33},
         {"null source", [=](B& a) { a.src = nullptr, a.roi.width = 0, later(a); }, -8},
         {"null edges", [=](B& a) { a.d = nullptr, later(a); }, -8},
         {"null buffer", [=](B& a) { a.buf = nullptr, later(a); }, -8},
         {"width -1", [=](B& a) { a.roi.width = -1, later(a); }, -6},
         {"filter 8", [=](B& a) { a.filter = 8, a.border = 9; }, -5},
         {"norm 1", [=](B& a) { a.norm = 1, a.border = 9; }, -5},
         {"low above high", [=](B& a) { a.low = 3.f, a.border = 9; }, -5},
         {"negative low", [=](B& a) { a.low = -1.f, a.border = 9; }, -5},
         {"mode 2", [](B& a) { a.border = 2; }, -225},
         {"mode 4 with flags", [](B& a) { a.border = 4 | 16; }, -225},
         {"short steps unchecked", [](B& a) { a.ss = 1; a.ds = 0; }, 0},
         {"mode 0", [](B& a) { a.border = 0; }, 0},
         {"mode 6, 5x5", [](B& a) { a.border = 6, a.mask = 55; }, 0},
         {"flags 16|128 over mode 0", [](B& a) { a.border = 16 | 128; }, 0},
         {"Scharr L2", [](B& a) { a.filter = 5, a.norm = 4; }, 0}}});

    struct Q {
        ZebiSize roi;
        int mask;
        int* out;
    };
    zt::checks::run(Table<Q>{"zebiCannyGetSize", [](Arena& m) { return Q{{5, 5}, 0, m.array<int>("size", 1)}; },
                             [](int v, Q& q) { return zeb_tbl_zebiCannyGetSize[v](q.roi, q.out); },
                             {{"null output, width 0", [](Q& q) { q.out = nullptr, q.roi.width = 0; }, -8},
                              {"height 0", [](Q& q) { q.roi.height = 0; }, -6},
                              {"beyond an int", [](Q& q) { q.roi = {30000, 30000}; }, -6}}});
    zt::checks::run(Table<Q>{"zebiCannyBorderGetSize", [](Arena& m) { return Q{{5, 5}, 33, m.array<int>("size", 1)}; },
                             [](int v, Q& q) { return zeb_tbl_zebiCannyBorderGetSize[v](q.roi, 99, q.mask, 99, q.out); },
                             {{"null output, mask 0", [](Q& q) { q.out = nullptr, q.mask = 0; }, -8},
                              {"width 0, mask 0", [](Q& q) { q.roi.width = 0, q.mask = 0; }, -6},
                              {"mask 53", [](Q& q) { q.mask = 53; }, -33},
                              {"beyond an int", [](Q& q) { q.roi = {21000, 21000}; }, -6}}});
}

TEST(CannySizes, FormulasAndStackLayout) {
    auto framed = [](long w, long h) { return (w + 2) * (h + 2); };
    auto a32 = [](long v) { return (v + 31) / 32 * 32; };
    for (auto [w, h] : {std::pair{1, 1}, {640, 480}, {65532, 3}, {65533, 3}, {3, 65533}})
        for (int v = 0; v < 2; ++v) {
            int got = 0;
            ASSERT_EQ(zeb_tbl_zebiCannyGetSize[v]({w, h}, &got), 0);
            const long perPixel = w < 65533 && h < 65533 ? 5 : 9;
            EXPECT_EQ(got, 16L * w + 160 + perPixel * framed(w, h)) << w << "x" << h;
            for (int k : {3, 5}) {
                ASSERT_EQ(zeb_tbl_zebiCannyBorderGetSize[v]({w, h}, 2, k == 3 ? 33 : 55, zeb8u, &got), 0);
                const long W = w + k - 1, H = h + k - 1;
                EXPECT_EQ(got, a32(16 * W) + a32(W * H) + a32(4 * W * H) + (k > std::min(w, h) ? a32(W * H) : 0) + 64)
                    << w << "x" << h << " k " << k;
            }
        }
}

// ---- results against the definition ----

TEST_P(Canny, DerivativeDetectorsMatchTheDefinition) {
    const std::vector<std::pair<int, int>> sizes = {{1, 1}, {1, 9}, {7, 1}, {2, 2}, {17, 5}, {33, 9}, {70, 31}};
    for (auto [w, h] : sizes)
        for (int pad : {0, 6}) {
            zt::Image<int16_t> dx(w, h, 1, pad), dy(w, h, 1, pad);
            zt::Image<float> fx(w, h, 1, pad * 2), fy(w, h, 1, pad * 2);
            smooth_derivatives(dx, dy, 8.0);
            smooth_derivatives(fx, fy, 8.0);
            for (auto [low, high] : {std::pair{40.f, 120.f}, {0.f, 0.f}, {99.9f, 99.9f}, {10.5f, 400.7f}}) {
                const auto want16 = derivative_edges(dx, dy, low, high);
                const auto want32 = derivative_edges(fx, fy, low, high);
                for (int v = 0; v < 2; ++v) {
                    ASSERT_EQ(run_derivative(v, dx, dy, low, high, pad), want16) << w << "x" << h << " " << low;
                    ASSERT_EQ(run_derivative(v, fx, fy, low, high, pad), want32) << w << "x" << h << " " << low;
                }
            }
        }
    // Full-range 16-bit noise: saturated magnitudes and every sector.
    zt::Image<int16_t> dx(45, 12), dy(45, 12);
    const auto want = derivative_edges(dx, dy, 20000.f, 50000.f);
    for (int v = 0; v < 2; ++v) EXPECT_EQ(run_derivative(v, dx, dy, 20000.f, 50000.f), want);
}

// Dimensions of 65533 switch the stack to 32-bit coordinates.
TEST_P(Canny, WideImagesUseTheLargeStack) {
    zt::Image<int16_t> dx(65533, 3), dy(65533, 3);
    smooth_derivatives(dx, dy, 4.0);
    const auto want = derivative_edges(dx, dy, 30.f, 90.f);
    EXPECT_EQ(run_derivative(1, dx, dy, 30.f, 90.f), want);
}

TEST_P(Canny, BorderDetectorMatchesTheDefinition) {
    struct K {
        int filter, mask, kind;
    };
    const K kernels[] = {{2, 33, 0}, {5, 33, 1}, {2, 55, 2}};
    const std::vector<std::pair<int, int>> sizes = {{1, 1}, {2, 2}, {4, 3}, {19, 7}, {40, 23}};
    const int borders[] = {0, 1, 6, 16, 32 | 1, 64 | 128, 16 | 64 | 1, 240};
    for (auto [w, h] : sizes)
        for (const K& k : kernels) {
            zt::Image<uint8_t> src(w, h, 1, 3, zt::Margin{2, 2});
            cv::GaussianBlur(src.outer_mat(), src.outer_mat(), cv::Size(3, 3), 0.8);
            src.remember_padding();
            for (int b : borders)
                for (int norm : {2, 4}) {
                    const float low = k.kind == 0 ? 60.f : 300.f, high = 3 * low;
                    const auto want = border_edges(bordered(src, k.kind == 2 ? 2 : 1, b, 37), k.kind, norm == 4, low,
                                                   high);
                    for (int v = 0; v < 2; ++v)
                        ASSERT_EQ(run_border(v, src, k.filter, k.mask, b, 37, low, high, norm, w % 3), want)
                            << w << "x" << h << " kernel " << k.kind << " border " << b << " norm " << norm;
                }
        }
}

// ---- single-pixel rules ----

// A w x h derivative pair from row strings of values.
template <class S>
struct Pair {
    zt::Image<S> dx, dy;
    Pair(int w, int h, std::vector<S> x, std::vector<S> y) : dx(w, h), dy(w, h) {
        for (int i = 0; i < w * h; ++i) dx.at(i % w, i / w) = x[i], dy.at(i % w, i / w) = y[i];
    }
};

TEST_P(Canny, ThresholdTiesAndSaturation) {
    for (int v = 0; v < 2; ++v) {
        // A strong pixel and a weak neighbour at exactly the low threshold:
        // kept by the float detector, dropped by the 16-bit one.
        Pair<float> f(3, 1, {0, 100, 10}, {0, 0, 0});
        f.dx.at(2, 0) = 0, f.dy.at(2, 0) = 60;  // vertical sector: no row neighbour to compare
        EXPECT_EQ(run_derivative(v, f.dx, f.dy, 60.f, 90.f), (std::vector<uint8_t>{0, 255, 255}));
        Pair<int16_t> s(3, 1, {0, 100, 0}, {0, 0, 60});
        EXPECT_EQ(run_derivative(v, s.dx, s.dy, 60.9f, 90.f), (std::vector<uint8_t>{0, 255, 0}));
        EXPECT_EQ(run_derivative(v, s.dx, s.dy, 59.9f, 90.f), (std::vector<uint8_t>{0, 255, 255}));
        // Magnitude equal to the high threshold is not strong.
        EXPECT_EQ(run_derivative(v, f.dx, f.dy, 1.f, 100.f), (std::vector<uint8_t>{0, 0, 0}));
        // 16-bit magnitudes saturate: |-32768| + |-32768| is 65535, strong above 65534.
        Pair<int16_t> sat(1, 1, {-32768}, {-32768});
        EXPECT_EQ(run_derivative(v, sat.dx, sat.dy, 0.f, 65534.9f), (std::vector<uint8_t>{255}));
        EXPECT_EQ(run_derivative(v, sat.dx, sat.dy, 0.f, 65535.f), (std::vector<uint8_t>{0}));
        // Magnitude 0 is never an edge, even with both thresholds 0.
        Pair<float> z(2, 1, {0, -0.f}, {0, 0});
        EXPECT_EQ(run_derivative(v, z.dx, z.dy, 0.f, 0.f), (std::vector<uint8_t>{0, 0}));
    }
}

TEST_P(Canny, EqualMaximaAndSectorBounds) {
    for (int v = 0; v < 2; ++v) {
        // Two equal maxima side by side in a horizontal gradient: the left one.
        Pair<int16_t> h(4, 1, {0, 50, 50, 0}, {0, 0, 0, 0});
        EXPECT_EQ(run_derivative(v, h.dx, h.dy, 1.f, 10.f), (std::vector<uint8_t>{0, 255, 0, 0}));
        // One above the other in a vertical gradient: the upper one.
        Pair<float> u(1, 4, {0, 0, 0, 0}, {0, 50, 50, 0});
        EXPECT_EQ(run_derivative(v, u.dx, u.dy, 1.f, 10.f), (std::vector<uint8_t>{0, 255, 0, 0}));
        // On a diagonal both neighbours must be smaller: neither survives.
        Pair<float> d(2, 2, {30, 0, 0, 30}, {30, 0, 0, 30});
        EXPECT_EQ(run_derivative(v, d.dx, d.dy, 1.f, 10.f), (std::vector<uint8_t>{0, 0, 0, 0}));
        // The same pixels with opposite signs use the other diagonal, where
        // both are maxima.
        Pair<float> o(2, 2, {30, 0, 0, 30}, {-30, 0, 0, -30});
        EXPECT_EQ(run_derivative(v, o.dx, o.dy, 1.f, 10.f), (std::vector<uint8_t>{255, 0, 0, 255}));
        // The vertical bound: ay = 2.4142136 * ax exactly is diagonal (the
        // larger neighbour below-right suppresses it); one step above it is
        // vertical (no neighbour above or below).
        const float ax = 1.f, ay = 2.4142136f, above = std::nextafter(ay, 10.f);
        Pair<float> b(2, 2, {ax, 0, 0, 9}, {ay, 0, 0, 9});
        EXPECT_EQ(run_derivative(v, b.dx, b.dy, 0.5f, 1.f)[0], 0);
        b.dy.at(0, 0) = above;
        EXPECT_EQ(run_derivative(v, b.dx, b.dy, 0.5f, 1.f)[0], 255);
        // The horizontal bound: ay = 0.41421357 * ax is diagonal (again
        // suppressed below-right), just below it horizontal.
        const float hx = 10.f, hy = 0.41421357f * hx;
        Pair<float> c(2, 2, {hx, 0, 0, 20}, {hy, 0, 0, 20});
        EXPECT_EQ(run_derivative(v, c.dx, c.dy, 0.5f, 1.f)[0], 0);
        c.dy.at(0, 0) = std::nextafter(hy, 0.f);
        EXPECT_EQ(run_derivative(v, c.dx, c.dy, 0.5f, 1.f)[0], 255);
    }
}

TEST_P(Canny, BorderDetectorStrictLowAndSmallImages) {
    // A vertical step: Sobel gx = 4 * 10 on the two columns beside it.
    zt::Image<uint8_t> step(4, 3, 1, 0, zt::Margin{2, 2});
    for (int y = -2; y < 5; ++y)
        for (int x = -2; x < 6; ++x) step.at(x, y) = x < 2 ? 0 : 10;
    step.remember_padding();
    for (int v = 0; v < 2; ++v) {
        // Magnitude 40 equal to the low threshold is cut in this detector.
        EXPECT_EQ(run_border(v, step, 2, 33, 6, 0, 40.f, 40.f, 2), std::vector<uint8_t>(12, 0));
        // Just below it, the left of the two equal maxima per row survives.
        const std::vector<uint8_t> left = {0, 255, 0, 0, 0, 255, 0, 0, 0, 255, 0, 0};
        EXPECT_EQ(run_border(v, step, 2, 33, 6, 0, 39.9f, 39.9f, 2), left);
        // A 2x2 image with a 5x5 kernel and a constant border of 200.
        zt::Image<uint8_t> tiny(2, 2);
        tiny.at(0, 0) = 0, tiny.at(1, 0) = 60, tiny.at(0, 1) = 20, tiny.at(1, 1) = 140;
        const auto want = border_edges(bordered(tiny, 2, 0, 200), 2, true, 100.f, 200.f);
        EXPECT_EQ(run_border(v, tiny, 2, 55, 0, 200, 100.f, 200.f, 4), want);
        EXPECT_NE(std::count(want.begin(), want.end(), 255), 0);
    }
}

// ---- OpenCV ----

double agreement(const std::vector<uint8_t>& a, const std::vector<uint8_t>& b) {
    return 1.0 - double(differing(a, b)) / double(a.size());
}

TEST_P(Canny, AgreesWithOpenCV) {
    for (const char* file : {"building.jpg", "fruits.jpg", "baboon.jpg"}) {
        const cv::Mat g = zt::photo(file, cv::IMREAD_GRAYSCALE);
        if (g.empty()) GTEST_SKIP() << file << " missing";
        const auto src = zt::image_of<uint8_t>(g);
        // The same 16-bit derivatives.
        zt::Image<int16_t> dx(g.cols, g.rows), dy(g.cols, g.rows);
        cv::Sobel(g, dx.mat(), CV_16S, 1, 0, 3, 1, 0, cv::BORDER_REPLICATE);
        cv::Sobel(g, dy.mat(), CV_16S, 0, 1, 3, 1, 0, cv::BORDER_REPLICATE);
        cv::Mat cvEdges;
        cv::Canny(dx.mat(), dy.mat(), cvEdges, 50, 150, false);
        const double d16 = agreement(run_derivative(1, dx, dy, 50.f, 150.f), pixels(cvEdges));
        EXPECT_GE(d16, 0.995) << file;
        std::printf("  %s derivatives 16s L1: %.4f%% agree\n", file, 100 * d16);
        // From the image, 3x3 and 5x5, L1 and L2.
        for (int aperture : {3, 5})
            for (bool l2 : {false, true}) {
                const float low = aperture == 3 ? 50.f : 400.f, high = 3 * low;
                cv::Canny(g, cvEdges, low, high, aperture, l2);
                const double a = agreement(run_border(1, src, 2, aperture == 3 ? 33 : 55, 1, 0, low, high, l2 ? 4 : 2),
                                           pixels(cvEdges));
                EXPECT_GE(a, 0.995) << file << " aperture " << aperture << " L2 " << l2;
                std::printf("  %s image %dx%d %s: %.4f%% agree\n", file, aperture, aperture, l2 ? "L2" : "L1", 100 * a);
            }
    }
}

}  // namespace
