// Sobel, Scharr, Laplacian and lowpass filters with borders. Every member
// runs through both variants and every instruction-set path over widths
// that exercise vector bodies and scalar tails, every border mode and
// in-memory side, with exact-size work buffers and guarded images, against
// a reference built from OpenCV's kernels (getDerivKernels), its border
// interpolation and filter2D; then against OpenCV's own Sobel, Scharr,
// Laplacian and blur. Argument checks are table driven with canaries.
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <opencv2/imgproc.hpp>
#include <string>
#include <vector>

#include "harness.h"

#define ZEB_DECL3(N)                                        \
    ZEB_TEST_TABLE(zebiFilter##N##Border_8u16s_C1R);        \
    ZEB_TEST_TABLE(zebiFilter##N##Border_8u8s_C1R);         \
    ZEB_TEST_TABLE(zebiFilter##N##Border_32f_C1R);          \
    ZEB_TEST_TABLE(zebiFilter##N##GetBufferSize_8u16s_C1R); \
    ZEB_TEST_TABLE(zebiFilter##N##GetBufferSize_8u8s_C1R);  \
    ZEB_TEST_TABLE(zebiFilter##N##GetBufferSize_32f_C1R);
ZEB_DECL3(SobelHoriz)
ZEB_DECL3(SobelVert)
ZEB_DECL3(SobelNegVert)
ZEB_DECL3(SobelHorizSecond)
ZEB_DECL3(SobelVertSecond)
ZEB_DECL3(SobelCross)
ZEB_DECL3(ScharrHoriz)
ZEB_DECL3(ScharrVert)
ZEB_DECL3(Laplacian)
ZEB_TEST_TABLE(zebiFilterLowpassBorder_8u_C1R);
ZEB_TEST_TABLE(zebiFilterLowpassBorder_32f_C1R);
ZEB_TEST_TABLE(zebiFilterLowpassGetBufferSize_8u_C1R);
ZEB_TEST_TABLE(zebiFilterLowpassGetBufferSize_32f_C1R);

namespace {

enum class Src { U8, F32 };
enum class Dst { S16, S8, F32, U8 };

// One separable term: kx along the row (left to right, offsets -r..r), ky
// down the column (top to bottom).
struct Term {
    std::vector<int> kx, ky;
};

struct Args {
    const void* src;
    int srcStep;
    void* dst;
    int dstStep;
    ZebiSize roi;
    int mask;
    int border;
    double value;
    int divisor;
    Zeb8u* buf;
};

struct Member {
    std::string name;
    Src src;
    Dst dst;
    bool hasMask;
    bool hasDivisor;
    std::function<std::vector<Term>(int k)> terms;
    std::function<ZebStatus(int variant, const Args&)> call;
    std::function<ZebStatus(int variant, ZebiSize, int mask, int*)> query;
    int srcElem() const { return src == Src::U8 ? 1 : 4; }
    int dstElem() const { return dst == Dst::S16 ? 2 : dst == Dst::F32 ? 4 : 1; }
    bool lowpass() const { return name.find("Lowpass") != std::string::npos; }
    bool negated() const { return name.find("NegVert") != std::string::npos; }
};

std::vector<int> to_vec(const cv::Mat& m) {
    std::vector<int> v;
    for (int i = 0; i < int(m.total()); ++i) v.push_back(int(std::lround(m.at<float>(i))));
    return v;
}

// The derivative of order (dx, dy) as OpenCV defines it (ksize -1: Scharr),
// times sign.
Term deriv(int dx, int dy, int ksize, int sign = 1) {
    cv::Mat kx, ky;
    cv::getDerivKernels(kx, ky, dx, dy, ksize, false, CV_32F);
    Term t{to_vec(kx), to_vec(ky)};
    for (int& c : t.kx) c *= sign;
    return t;
}

std::vector<Term> laplacian(int k) {
    if (k == 3) return {{{2, 0, 2}, {1, 0, 1}}, {{0, -8, 0}, {0, 1, 0}}};
    return {deriv(0, 2, 5), deriv(2, 0, 5)};
}

#define ZEB_CALL_MASK(fn, ST, DT)                                                                                \
    [](int v, const Args& a) {                                                                                   \
        return zeb_tbl_##fn[v](static_cast<const ST*>(a.src), a.srcStep, static_cast<DT*>(a.dst), a.dstStep,    \
                               a.roi, a.mask, a.border, ST(a.value), a.buf);                                     \
    }
#define ZEB_CALL_DIV(fn)                                                                                         \
    [](int v, const Args& a) {                                                                                   \
        return zeb_tbl_##fn[v](static_cast<const Zeb8u*>(a.src), a.srcStep, static_cast<Zeb8s*>(a.dst),         \
                               a.dstStep, a.roi, a.mask, a.border, Zeb8u(a.value), a.divisor, a.buf);           \
    }
#define ZEB_CALL_NOMASK(fn, ST, DT)                                                                              \
    [](int v, const Args& a) {                                                                                   \
        return zeb_tbl_##fn[v](static_cast<const ST*>(a.src), a.srcStep, static_cast<DT*>(a.dst), a.dstStep,    \
                               a.roi, a.border, ST(a.value), a.buf);                                             \
    }
#define ZEB_Q_MASK(fn) [](int v, ZebiSize r, int m, int* o) { return zeb_tbl_##fn[v](r, m, o); }
#define ZEB_Q_NOMASK(fn) [](int v, ZebiSize r, int, int* o) { return zeb_tbl_##fn[v](r, o); }

std::vector<Member> members() {
    std::vector<Member> m;
#define ZEB_SOBEL(N, dx, dy)                                                                                    \
    {                                                                                                            \
        auto t = [](int k) { return std::vector<Term>{deriv(dx, dy, k)}; };                                    \
        m.push_back({#N "_8u16s", Src::U8, Dst::S16, true, false, t,                                             \
                     ZEB_CALL_MASK(zebiFilter##N##Border_8u16s_C1R, Zeb8u, Zeb16s),                              \
                     ZEB_Q_MASK(zebiFilter##N##GetBufferSize_8u16s_C1R)});                          \
        m.push_back({#N "_8u8s", Src::U8, Dst::S8, true, true, t, ZEB_CALL_DIV(zebiFilter##N##Border_8u8s_C1R), \
                     ZEB_Q_MASK(zebiFilter##N##GetBufferSize_8u8s_C1R)});                            \
        m.push_back({#N "_32f", Src::F32, Dst::F32, true, false, t,                                              \
                     ZEB_CALL_MASK(zebiFilter##N##Border_32f_C1R, Zeb32f, Zeb32f),                               \
                     ZEB_Q_MASK(zebiFilter##N##GetBufferSize_32f_C1R)});                              \
    }
    ZEB_SOBEL(SobelHoriz, 0, 1)
    ZEB_SOBEL(SobelVert, 1, 0)
    ZEB_SOBEL(SobelNegVert, 1, 0)  // the Vert kernel, result negated
    ZEB_SOBEL(SobelHorizSecond, 0, 2)
    ZEB_SOBEL(SobelVertSecond, 2, 0)
    ZEB_SOBEL(SobelCross, 1, 1)
#undef ZEB_SOBEL
#define ZEB_SCHARR(N, dx, dy)                                                                           \
    {                                                                                                            \
        auto t = [](int) { return std::vector<Term>{deriv(dx, dy, -1)}; };                                      \
        m.push_back({#N "_8u16s", Src::U8, Dst::S16, false, false, t,                                            \
                     ZEB_CALL_NOMASK(zebiFilter##N##Border_8u16s_C1R, Zeb8u, Zeb16s),                            \
                     ZEB_Q_NOMASK(zebiFilter##N##GetBufferSize_8u16s_C1R)});                            \
        m.push_back({#N "_8u8s", Src::U8, Dst::S8, false, false, t,                                              \
                     ZEB_CALL_NOMASK(zebiFilter##N##Border_8u8s_C1R, Zeb8u, Zeb8s),                              \
                     ZEB_Q_NOMASK(zebiFilter##N##GetBufferSize_8u8s_C1R)});                              \
        m.push_back({#N "_32f", Src::F32, Dst::F32, false, false, t,                                             \
                     ZEB_CALL_NOMASK(zebiFilter##N##Border_32f_C1R, Zeb32f, Zeb32f),                             \
                     ZEB_Q_NOMASK(zebiFilter##N##GetBufferSize_32f_C1R)});                             \
    }
    ZEB_SCHARR(ScharrHoriz, 0, 1)
    ZEB_SCHARR(ScharrVert, 1, 0)
#undef ZEB_SCHARR
    m.push_back({"Laplacian_8u16s", Src::U8, Dst::S16, true, false, laplacian,
                 ZEB_CALL_MASK(zebiFilterLaplacianBorder_8u16s_C1R, Zeb8u, Zeb16s),
                 ZEB_Q_MASK(zebiFilterLaplacianGetBufferSize_8u16s_C1R)});
    m.push_back({"Laplacian_8u8s", Src::U8, Dst::S8, true, false, laplacian,
                 ZEB_CALL_MASK(zebiFilterLaplacianBorder_8u8s_C1R, Zeb8u, Zeb8s),
                 ZEB_Q_MASK(zebiFilterLaplacianGetBufferSize_8u8s_C1R)});
    m.push_back({"Laplacian_32f", Src::F32, Dst::F32, true, false, laplacian,
                 ZEB_CALL_MASK(zebiFilterLaplacianBorder_32f_C1R, Zeb32f, Zeb32f),
                 ZEB_Q_MASK(zebiFilterLaplacianGetBufferSize_32f_C1R)});
    auto box = [](int k) { return std::vector<Term>{{std::vector<int>(k, 1), std::vector<int>(k, 1)}}; };
    m.push_back({"Lowpass_8u", Src::U8, Dst::U8, true, false, box,
                 ZEB_CALL_MASK(zebiFilterLowpassBorder_8u_C1R, Zeb8u, Zeb8u),
                 ZEB_Q_MASK(zebiFilterLowpassGetBufferSize_8u_C1R)});
    m.push_back({"Lowpass_32f", Src::F32, Dst::F32, true, false, box,
                 ZEB_CALL_MASK(zebiFilterLowpassBorder_32f_C1R, Zeb32f, Zeb32f),
                 ZEB_Q_MASK(zebiFilterLowpassGetBufferSize_32f_C1R)});
    return m;
}

const std::vector<Member>& all_members() {
    static const std::vector<Member> m = members();
    return m;
}

int cv_mode(int mode) {
    switch (mode) {
        case 0: return cv::BORDER_CONSTANT;
        case 1: return cv::BORDER_REPLICATE;
        case 2: return cv::BORDER_WRAP;
        case 3: return cv::BORDER_REFLECT_101;
        default: return cv::BORDER_REFLECT;
    }
}

// Index of the pixel standing at i on a line of n, -1 for the constant.
int interp(int i, int n, int mode) {
    if (i >= 0 && i < n) return i;
    if (mode == 0) return -1;
    if (mode == 3 && n == 1) return 0;
    return cv::borderInterpolate(i, n, cv_mode(mode));
}

// A source with the ROI inside an image that holds r pixels of memory
// beyond each side the border argument says is in memory, and nothing
// beyond the others, so that a read past them hits the guard page.
template <class S>
struct Source {
    int w, h, r, mL, mT;
    zt::Image<S> img;
    Source(int w_, int h_, int r_, int border, int pad)
        : w(w_), h(h_), r(r_), mL(left(border) ? r_ : 0), mT(top(border) ? r_ : 0),
          img(w_ + mL + (right(border) ? r_ : 0), h_ + mT + (bottom(border) ? r_ : 0), 1, pad) {}
    static bool all(int b) { return (b & 15) == 6; }
    static bool top(int b) { return all(b) || (b & 16); }
    static bool bottom(int b) { return all(b) || (b & 32); }
    static bool left(int b) { return all(b) || (b & 64); }
    static bool right(int b) { return all(b) || (b & 128); }
    const S* roi() const { return img.row(mT) + mL; }
    S mem(int x, int y) const { return img.at(x + mL, y + mT); }

    // The border-extended image, (w + 2r) x (h + 2r), as doubles: rows come
    // from memory or the rule, then each row is extended from memory or by
    // the rule.
    cv::Mat extended(int border, double value) const {
        const int mode = all(border) ? 1 : (border & 15);
        cv::Mat e(h + 2 * r, w + 2 * r, CV_64F);
        for (int y = -r; y < h + r; ++y) {
            int ry;
            if ((y < 0 && top(border)) || (y >= h && bottom(border)))
                ry = y;
            else
                ry = interp(y, h, mode);
            for (int x = -r; x < w + r; ++x) {
                double v;
                if (ry == -1 && !(y < 0 && top(border)) && !(y >= h && bottom(border))) {
                    v = value;
                } else if ((x < 0 && left(border)) || (x >= w && right(border)) || (x >= 0 && x < w)) {
                    v = double(mem(x, ry));
                } else {
                    const int rx = interp(x, w, mode);
                    v = rx < 0 ? value : double(mem(rx, ry));
                }
                e.at<double>(y + r, x + r) = v;
            }
        }
        return e;
    }
};

// The exact filter sums over the ROI, via OpenCV's correlation.
cv::Mat exact_sums(const cv::Mat& e, const std::vector<Term>& terms, int r, int w, int h) {
    const int k = 2 * r + 1;
    cv::Mat kern = cv::Mat::zeros(k, k, CV_64F);
    for (const Term& t : terms)
        for (int i = 0; i < k; ++i)
            for (int j = 0; j < k; ++j) kern.at<double>(i, j) += double(t.ky[i]) * t.kx[j];
    cv::Mat out;
    cv::filter2D(e, out, CV_64F, kern, cv::Point(-1, -1), 0, cv::BORDER_CONSTANT);
    return out(cv::Rect(r, r, w, h)).clone();
}

// The single-precision result in the documented order: down each column,
// then along the row, zero taps skipped, the first product starting each
// sum, terms added in order.
float documented_float(const cv::Mat& e, const std::vector<Term>& terms, int r, int x, int y) {
    auto prod = [](float v, int c) { return c == 1 ? v : c == -1 ? -v : v * float(c); };
    float total = 0;
    for (std::size_t n = 0; n < terms.size(); ++n) {
        const Term& t = terms[n];
        float acc = 0;
        bool startedRow = false;
        for (int j = 0; j < 2 * r + 1; ++j) {
            if (t.kx[j] == 0) continue;
            float col = 0;
            bool started = false;
            for (int i = 0; i < 2 * r + 1; ++i) {
                if (t.ky[i] == 0) continue;
                const float p = prod(float(e.at<double>(y + i, x + j)), t.ky[i]);
                col = started ? col + p : p;
                started = true;
            }
            const float p = prod(col, t.kx[j]);
            acc = startedRow ? acc + p : p;
            startedRow = true;
        }
        total = n == 0 ? acc : total + acc;
    }
    return total;
}

int8_t div8s(double s, int d) {
    const double q = std::floor(std::fabs(s) / std::abs(double(d)) + 0.5);
    const double v = std::min(q, 127.0);
    return int8_t((s < 0) != (d < 0) ? -v : v);
}

const int kBorders[] = {0, 1, 2, 3, 4, 6, 16, 32 | 1, 64 | 3, 128 | 4, 16 | 128 | 2, 32 | 64, 240 | 3};

template <class S, class D>
void sweep_member(const Member& m, int k) {
    const int r = k / 2;
    const int widths[] = {1, 2, 3, 7, 16, 17, 33, 67};
    const int heights[] = {1, 2, 5};
    for (int border : kBorders)
        for (int w : widths)
            for (int h : heights) {
                const int pad = (w % 3) * int(sizeof(S));
                Source<S> src(w, h, r, border, pad);
                const double value = sizeof(S) == 1 ? double(zt::rng()() % 256) : -37.25;
                const int divisor = (1 + int(zt::rng()() % 9)) * (w % 2 ? 1 : -1);
                const cv::Mat e = src.extended(border, value);
                const std::vector<Term> terms = m.terms(k);
                const cv::Mat exact = exact_sums(e, terms, r, w, h);
                int size = 0;
                ASSERT_EQ(m.query(0, {w, h}, k * 11, &size), 0);
                std::vector<D> first;
                for (const zt::Path& p : zt::all_paths()) {
                    zt::TargetScope target(p.target);
                    zt::Image<D> dst(w, h, 1, int(sizeof(D)) * (w % 2));
                    zt::Guarded buf{std::size_t(size)};
                    const std::vector<uint8_t> before = dst.bytes();
                    const Args a{src.roi(), src.img.step(), dst.ptr(), dst.step(), {w, h}, k * 11, border,
                                 value,     divisor,        buf.data()};
                    ASSERT_EQ(m.call(p.variant, a), 0) << m.name;
                    const std::string where = m.name + " " + p.name() + " k=" + std::to_string(k) +
                                              " border=" + std::to_string(border) + " w=" + std::to_string(w) +
                                              " h=" + std::to_string(h);
                    // Padding between rows stays as it was.
                    const std::vector<uint8_t> after = dst.bytes();
                    for (int y = 0; y + 1 < h; ++y)
                        for (int b = w * int(sizeof(D)); b < dst.step(); ++b)
                            ASSERT_EQ(after[std::size_t(y) * dst.step() + b], before[std::size_t(y) * dst.step() + b])
                                << where;
                    for (int y = 0; y < h; ++y)
                        for (int x = 0; x < w; ++x) {
                            const double s = (m.negated() ? -1 : 1) * exact.at<double>(y, x);
                            const D got = dst.at(x, y);
                            if constexpr (std::is_same_v<D, float>) {
                                float want = documented_float(e, terms, r, x, y);
                                if (m.lowpass()) want = want * (1.0f / float(k * k));
                                if (m.negated()) want = -want;
                                ASSERT_TRUE(zt::same_bits(got, want)) << where << " x=" << x << " y=" << y;
                                const double expect = m.lowpass() ? s / (k * k) : s;
                                ASSERT_NEAR(got, expect, 1e-4 * (1 + std::fabs(expect)) + 0.05) << where;
                            } else if (m.dst == Dst::S8) {
                                ASSERT_EQ(int(got), int(div8s(s, m.hasDivisor ? divisor : 1))) << where;
                            } else if (m.dst == Dst::U8) {
                                ASSERT_EQ(int(got), int(std::floor((s + (k * k) / 2) / (k * k)))) << where;
                            } else {
                                ASSERT_EQ(int(got), int(s)) << where << " x=" << x << " y=" << y;
                            }
                        }
                    const std::vector<D> px = dst.pixels();
                    if (first.empty())
                        first = px;
                    else
                        ASSERT_EQ(0, std::memcmp(first.data(), px.data(), px.size() * sizeof(D))) << where;
                }
            }
}

TEST(DerivativeFilters, AllPathsMatchTheDefinitionForEveryBorder) {
    for (const Member& m : all_members())
        for (int k : {3, 5}) {
            if (!m.hasMask && k == 5) continue;
            if (m.src == Src::F32)
                sweep_member<float, float>(m, k);
            else if (m.dst == Dst::S16)
                sweep_member<uint8_t, int16_t>(m, k);
            else if (m.dst == Dst::S8)
                sweep_member<uint8_t, int8_t>(m, k);
            else
                sweep_member<uint8_t, uint8_t>(m, k);
            if (HasFatalFailure()) return;
        }
}

// Runs member m on a plain (no memory around) image and returns the output.
template <class S, class D>
zt::Image<D> run_plain(const Member& m, const zt::Image<S>& src, int k, int border, double value, int divisor = 1) {
    zt::Image<D> dst(src.width(), src.height());
    int size = 0;
    EXPECT_EQ(m.query(0, src.size(), k * 11, &size), 0);
    zt::Guarded buf{std::size_t(size)};
    EXPECT_EQ(m.call(0, {src.ptr(), src.step(), dst.ptr(), dst.step(), src.size(), k * 11, border, value, divisor,
                         buf.data()}),
              0)
        << m.name;
    return dst;
}

const Member& member(const std::string& name) {
    for (const Member& m : all_members())
        if (m.name == name) return m;
    throw std::runtime_error(name);
}

// OpenCV's own filters on the same buffers, 8u16s bit for bit, 32f within
// a relative 1e-5 of the largest magnitude (OpenCV sums rows first).
TEST(DerivativeFilters, AgreeWithOpenCV) {
    struct Case {
        const char* name;
        int dx, dy, sign;  // Sobel / Scharr order; dx = -1 Laplacian, -2 blur
        bool scharr;
    };
    const Case cases[] = {{"SobelHoriz", 0, 1, 1, false},       {"SobelVert", 1, 0, 1, false},
                          {"SobelNegVert", 1, 0, -1, false},    {"SobelHorizSecond", 0, 2, 1, false},
                          {"SobelVertSecond", 2, 0, 1, false},  {"SobelCross", 1, 1, 1, false},
                          {"ScharrHoriz", 0, 1, 1, true},       {"ScharrVert", 1, 0, 1, true},
                          {"Laplacian", -1, 0, 1, false}};
    const std::pair<int, int> borders[] = {{1, cv::BORDER_REPLICATE},
                                           {3, cv::BORDER_REFLECT_101},
                                           {4, cv::BORDER_REFLECT},
                                           {0, cv::BORDER_CONSTANT}};
    zt::Image<uint8_t> s8(203, 61, 1, 5);
    zt::Image<float> sf(203, 61, 1, 8);
    double worst = 0;
    for (const Case& c : cases)
        for (int k : {3, 5}) {
            if (c.scharr && k == 5) continue;
            for (auto [ours, theirs] : borders) {
                cv::Mat w16, wf;
                if (c.dx == -1) {
                    cv::Laplacian(s8.mat(), w16, CV_16S, k, 1, 0, theirs);
                    cv::Laplacian(sf.mat(), wf, CV_32F, k, 1, 0, theirs);
                } else {
                    const int ks = c.scharr ? -1 : k;
                    cv::Sobel(s8.mat(), w16, CV_16S, c.dx, c.dy, ks, c.sign, 0, theirs);
                    cv::Sobel(sf.mat(), wf, CV_32F, c.dx, c.dy, ks, c.sign, 0, theirs);
                }
                // OpenCV's constant border is zero for these filters.
                const zt::Image<int16_t> o16 = run_plain<uint8_t, int16_t>(member(std::string(c.name) + "_8u16s"),
                                                                           s8, k, ours, 0);
                const zt::Image<float> of = run_plain<float, float>(member(std::string(c.name) + "_32f"), sf, k,
                                                                    ours, 0);
                const std::string where = std::string(c.name) + " k=" + std::to_string(k) + " border=" +
                                          std::to_string(ours);
                EXPECT_EQ(cv::norm(o16.mat(), w16, cv::NORM_INF), 0) << where;
                const double scale = cv::norm(wf, cv::NORM_INF);
                const double diff = cv::norm(of.mat(), wf, cv::NORM_INF) / scale;
                worst = std::max(worst, diff);
                EXPECT_LE(diff, 1e-5) << where;
            }
        }
    std::printf("largest 32f difference relative to the largest magnitude: %.3g\n", worst);
}

TEST(DerivativeFilters, LowpassAgreesWithBlur) {
    zt::Image<uint8_t> s8(301, 47, 1, 3);
    zt::Image<float> sf(301, 47, 1, 4);
    for (int k : {3, 5})
        for (auto [ours, theirs] : {std::pair{1, cv::BORDER_REPLICATE}, std::pair{3, cv::BORDER_REFLECT_101},
                                    std::pair{4, cv::BORDER_REFLECT}, std::pair{2, cv::BORDER_WRAP}}) {
            cv::Mat w8, wf;
            if (theirs == cv::BORDER_WRAP) {  // blur has no wrap: pad, then filter the interior
                cv::Mat p8, pf;
                cv::copyMakeBorder(s8.mat(), p8, k / 2, k / 2, k / 2, k / 2, theirs);
                cv::copyMakeBorder(sf.mat(), pf, k / 2, k / 2, k / 2, k / 2, theirs);
                cv::blur(p8, w8, {k, k});
                cv::blur(pf, wf, {k, k});
                w8 = w8(cv::Rect(k / 2, k / 2, s8.width(), s8.height())).clone();
                wf = wf(cv::Rect(k / 2, k / 2, s8.width(), s8.height())).clone();
            } else {
                cv::blur(s8.mat(), w8, {k, k}, {-1, -1}, theirs);
                cv::blur(sf.mat(), wf, {k, k}, {-1, -1}, theirs);
            }
            const zt::Image<uint8_t> o8 = run_plain<uint8_t, uint8_t>(member("Lowpass_8u"), s8, k, ours, 0);
            const zt::Image<float> of = run_plain<float, float>(member("Lowpass_32f"), sf, k, ours, 0);
            EXPECT_EQ(cv::norm(o8.mat(), w8, cv::NORM_INF), 0) << "k=" << k << " border=" << ours;
            EXPECT_LE(cv::norm(of.mat(), wf, cv::NORM_INF), 1e-3) << "k=" << k << " border=" << ours;
        }
}

// Images whose working set reaches the largest cache take the streaming
// stores; the results stay those of OpenCV.
TEST(DerivativeFilters, LargeImagesGiveTheSameResults) {
    int32_t cache = 0;
    (void)zebGetMaxCacheSizeB(&cache);
    const int64_t pixels = std::max<int64_t>(int64_t(cache) / 3 + 4096, 1 << 16);
    if (pixels > (int64_t(1) << 26)) GTEST_SKIP() << "cache too large to fill in a test";
    const int w = 2051, h = int(pixels / w + 1);
    zt::Image<uint8_t> s8(w, h, 1, 3);
    cv::Mat want16, want8;
    cv::Sobel(s8.mat(), want16, CV_16S, 1, 0, 3, 1, 0, cv::BORDER_REFLECT_101);
    cv::blur(s8.mat(), want8, {5, 5}, {-1, -1}, cv::BORDER_REPLICATE);
    for (const zt::Path& p : zt::all_paths()) {
        zt::TargetScope target(p.target);
        const Member& sobel = member("SobelVert_8u16s");
        const Member& low = member("Lowpass_8u");
        zt::Image<int16_t> d16(w, h, 1, 2);
        zt::Image<uint8_t> d8(w, h, 1, 1);
        int size = 0;
        ASSERT_EQ(sobel.query(p.variant, {w, h}, 33, &size), 0);
        zt::Guarded b1{std::size_t(size)};
        ASSERT_EQ(sobel.call(p.variant, {s8.ptr(), s8.step(), d16.ptr(), d16.step(), {w, h}, 33, 3, 0, 1, b1.data()}), 0);
        ASSERT_EQ(low.query(p.variant, {w, h}, 55, &size), 0);
        zt::Guarded b2{std::size_t(size)};
        ASSERT_EQ(low.call(p.variant, {s8.ptr(), s8.step(), d8.ptr(), d8.step(), {w, h}, 55, 1, 0, 1, b2.data()}), 0);
        EXPECT_EQ(cv::norm(d16.mat(), want16, cv::NORM_INF), 0) << p.name();
        EXPECT_EQ(cv::norm(d8.mat(), want8, cv::NORM_INF), 0) << p.name();
    }
}

// ---- argument checks ----

// A failing call leaves destination and work buffer untouched.
struct CheckBed {
    const Member& m;
    static constexpr int kW = 20, kH = 6;
    zt::Guarded src{std::size_t(kW * 4 + 16) * kH}, dst{std::size_t(kW * 4 + 16) * kH}, buf{1 << 16};
    std::vector<uint8_t> dstBefore, bufBefore;
    explicit CheckBed(const Member& mm) : m(mm) {
        for (std::size_t i = 0; i < dst.size(); ++i) dst.data()[i] = uint8_t(i * 13 + 1);
        for (std::size_t i = 0; i < buf.size(); ++i) buf.data()[i] = uint8_t(i * 7 + 5);
        for (std::size_t i = 0; i < src.size(); ++i) src.data()[i] = uint8_t(i);
        dstBefore.assign(dst.data(), dst.data() + dst.size());
        bufBefore.assign(buf.data(), buf.data() + buf.size());
    }
    Args good() const {
        return {src.data(), kW * m.srcElem(), dst.data(), kW * m.dstElem(), {kW, kH}, 33, 1, 0, 2, buf.data()};
    }
    void expect(const Args& a, ZebStatus want, const std::string& what) {
        for (int v = 0; v < 2; ++v) {
            std::memcpy(dst.data(), dstBefore.data(), dst.size());
            std::memcpy(buf.data(), bufBefore.data(), buf.size());
            EXPECT_EQ(m.call(v, a), want) << m.name << " variant " << v << ": " << what;
            if (want < 0) {
                EXPECT_EQ(0, std::memcmp(dst.data(), dstBefore.data(), dst.size())) << m.name << " wrote: " << what;
                EXPECT_EQ(0, std::memcmp(buf.data(), bufBefore.data(), buf.size())) << m.name << " wrote: " << what;
            }
        }
    }
};

TEST(DerivativeChecks, OrderOfTheChecks) {
    for (const Member& m : all_members()) {
        CheckBed t(m);
        Args a = t.good();
        t.expect(a, zebStsNoErr, "good arguments");
        // Null pointers come before everything else.
        for (int which = 0; which < 3; ++which) {
            a = t.good();
            if (which == 0) a.src = nullptr;
            if (which == 1) a.dst = nullptr;
            if (which == 2) a.buf = nullptr;
            a.roi = {0, 0};
            a.mask = 7;
            a.border = 99;
            t.expect(a, zebStsNullPtrErr, "null pointer " + std::to_string(which));
        }
        // Size before steps, steps before the border, mask and divisor.
        for (ZebiSize bad : {ZebiSize{0, 3}, ZebiSize{3, 0}, ZebiSize{-4, 3}}) {
            a = t.good();
            a.roi = bad;
            a.srcStep = 0;
            a.border = 99;
            t.expect(a, zebStsSizeErr, "bad size");
        }
        a = t.good();
        a.srcStep -= 1;
        a.border = 99;
        a.mask = 0;
        t.expect(a, zebStsStepErr, "short source step");
        a = t.good();
        a.dstStep -= 1;
        t.expect(a, zebStsStepErr, "short destination step");
        // Every length is checked before any multiple of the element size.
        if (m.dstElem() > 1) {
            a = t.good();
            a.dstStep += 1;
            a.border = 99;
            t.expect(a, zebStsNotEvenStepErr, "uneven destination step");
            a.srcStep -= 1;
            t.expect(a, zebStsStepErr, "uneven destination, short source");
        }
        if (m.srcElem() > 1) {
            a = t.good();
            a.srcStep += 2;
            t.expect(a, zebStsNotEvenStepErr, "uneven source step");
        } else {
            a = t.good();
            a.srcStep += 1;
            if (m.dstElem() == 1) a.dstStep += 3;
            t.expect(a, zebStsNoErr, "8-bit steps of any length");
        }
        // Border: modes 0..4 and 6, flags only with a side flag among them.
        for (int bad : {5, 7, 8, 15, -1, 256, 256 | 1, 0x8000 | 6, 0x4000}) {
            a = t.good();
            a.border = bad;
            a.mask = 0;
            a.divisor = 0;
            t.expect(a, zebStsBadArgErr, "border " + std::to_string(bad));
        }
        for (int ok : {0, 2, 3, 4, 6, 16, 32, 64 | 2, 128 | 3, 256 | 16 | 1, 240}) {
            a = t.good();
            a.border = ok;
            // In-memory sides need memory: the source starts one row and two
            // pixels in and the ROI is smaller than the block.
            a.src = t.src.data() + 2 * a.srcStep + 2 * m.srcElem();
            a.roi = {CheckBed::kW - 4, CheckBed::kH - 4};
            t.expect(a, zebStsNoErr, "border " + std::to_string(ok));
        }
        if (m.hasDivisor) {
            a = t.good();
            a.divisor = 0;
            a.mask = 0;
            t.expect(a, zebStsBadArgErr, "divisor 0 before the mask size");
            a.divisor = -3;
            a.mask = 33;
            t.expect(a, zebStsNoErr, "negative divisor");
        }
        if (m.hasMask) {
            for (int bad : {0, 3, 35, 53, 34, 5}) {
                a = t.good();
                a.mask = bad;
                t.expect(a, zebStsMaskSizeErr, "mask " + std::to_string(bad));
            }
            a = t.good();
            a.mask = 55;
            t.expect(a, zebStsNoErr, "5x5");
        } else {
            a = t.good();
            a.mask = 12345;  // not an argument of these members
            t.expect(a, zebStsNoErr, "no mask size");
        }
    }
}

TEST(DerivativeChecks, BufferSizeQueries) {
    for (const Member& m : all_members())
        for (int v = 0; v < 2; ++v) {
            int size = -1;
            EXPECT_EQ(m.query(v, {10, 10}, 33, nullptr), zebStsNullPtrErr) << m.name;
            EXPECT_EQ(m.query(v, {0, 10}, 99, &size), zebStsSizeErr) << m.name;
            EXPECT_EQ(m.query(v, {10, -1}, 33, &size), zebStsSizeErr) << m.name;
            EXPECT_EQ(size, -1) << m.name << " wrote on failure";
            if (m.hasMask) {
                EXPECT_EQ(m.query(v, {10, 10}, 35, &size), zebStsMaskSizeErr) << m.name;
            }
            EXPECT_EQ(size, -1) << m.name << " wrote on failure";
            ASSERT_EQ(m.query(v, {1920, 3}, m.hasMask ? 55 : 33, &size), 0) << m.name;
            EXPECT_GT(size, 0) << m.name;
        }
}

}  // namespace
