// Sobel, Scharr, Laplacian and lowpass filters with borders, on every
// vector target and through both variant tables. One reference set:
// OpenCV's derivative kernels (getDerivKernels) summed exactly over an image
// extended by OpenCV's border interpolation, and the single-precision order
// the header documents for 32f; then OpenCV's own Sobel, Scharr, Laplacian
// and blur on photographs. Argument checks and size queries are table
// driven with canaries.
#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <functional>
#include <opencv2/imgcodecs.hpp>
#include <opencv2/imgproc.hpp>
#include <string>
#include <vector>

#include "harness.h"
#include "core/zebcore_test_hooks.h"

ZEB_TEST_TABLE(zebiFilterSobelHorizBorder_8u16s_C1R);
ZEB_TEST_TABLE(zebiFilterSobelHorizBorder_8u8s_C1R);
ZEB_TEST_TABLE(zebiFilterSobelHorizBorder_32f_C1R);
ZEB_TEST_TABLE(zebiFilterSobelVertBorder_8u16s_C1R);
ZEB_TEST_TABLE(zebiFilterSobelVertBorder_8u8s_C1R);
ZEB_TEST_TABLE(zebiFilterSobelVertBorder_32f_C1R);
ZEB_TEST_TABLE(zebiFilterSobelNegVertBorder_8u16s_C1R);
ZEB_TEST_TABLE(zebiFilterSobelNegVertBorder_8u8s_C1R);
ZEB_TEST_TABLE(zebiFilterSobelNegVertBorder_32f_C1R);
ZEB_TEST_TABLE(zebiFilterSobelHorizSecondBorder_8u16s_C1R);
ZEB_TEST_TABLE(zebiFilterSobelHorizSecondBorder_8u8s_C1R);
ZEB_TEST_TABLE(zebiFilterSobelHorizSecondBorder_32f_C1R);
ZEB_TEST_TABLE(zebiFilterSobelVertSecondBorder_8u16s_C1R);
ZEB_TEST_TABLE(zebiFilterSobelVertSecondBorder_8u8s_C1R);
ZEB_TEST_TABLE(zebiFilterSobelVertSecondBorder_32f_C1R);
ZEB_TEST_TABLE(zebiFilterSobelCrossBorder_8u16s_C1R);
ZEB_TEST_TABLE(zebiFilterSobelCrossBorder_8u8s_C1R);
ZEB_TEST_TABLE(zebiFilterSobelCrossBorder_32f_C1R);
ZEB_TEST_TABLE(zebiFilterScharrHorizBorder_8u16s_C1R);
ZEB_TEST_TABLE(zebiFilterScharrHorizBorder_8u8s_C1R);
ZEB_TEST_TABLE(zebiFilterScharrHorizBorder_32f_C1R);
ZEB_TEST_TABLE(zebiFilterScharrVertBorder_8u16s_C1R);
ZEB_TEST_TABLE(zebiFilterScharrVertBorder_8u8s_C1R);
ZEB_TEST_TABLE(zebiFilterScharrVertBorder_32f_C1R);
ZEB_TEST_TABLE(zebiFilterLaplacianBorder_8u16s_C1R);
ZEB_TEST_TABLE(zebiFilterLaplacianBorder_8u8s_C1R);
ZEB_TEST_TABLE(zebiFilterLaplacianBorder_32f_C1R);
ZEB_TEST_TABLE(zebiFilterLowpassBorder_8u_C1R);
ZEB_TEST_TABLE(zebiFilterLowpassBorder_32f_C1R);
ZEB_TEST_TABLE(zebiFilterSobelHorizGetBufferSize_8u16s_C1R);
ZEB_TEST_TABLE(zebiFilterSobelHorizGetBufferSize_8u8s_C1R);
ZEB_TEST_TABLE(zebiFilterSobelHorizGetBufferSize_32f_C1R);
ZEB_TEST_TABLE(zebiFilterSobelVertGetBufferSize_8u16s_C1R);
ZEB_TEST_TABLE(zebiFilterSobelVertGetBufferSize_8u8s_C1R);
ZEB_TEST_TABLE(zebiFilterSobelVertGetBufferSize_32f_C1R);
ZEB_TEST_TABLE(zebiFilterSobelNegVertGetBufferSize_8u16s_C1R);
ZEB_TEST_TABLE(zebiFilterSobelNegVertGetBufferSize_8u8s_C1R);
ZEB_TEST_TABLE(zebiFilterSobelNegVertGetBufferSize_32f_C1R);
ZEB_TEST_TABLE(zebiFilterSobelHorizSecondGetBufferSize_8u16s_C1R);
ZEB_TEST_TABLE(zebiFilterSobelHorizSecondGetBufferSize_8u8s_C1R);
ZEB_TEST_TABLE(zebiFilterSobelHorizSecondGetBufferSize_32f_C1R);
ZEB_TEST_TABLE(zebiFilterSobelVertSecondGetBufferSize_8u16s_C1R);
ZEB_TEST_TABLE(zebiFilterSobelVertSecondGetBufferSize_8u8s_C1R);
ZEB_TEST_TABLE(zebiFilterSobelVertSecondGetBufferSize_32f_C1R);
ZEB_TEST_TABLE(zebiFilterSobelCrossGetBufferSize_8u16s_C1R);
ZEB_TEST_TABLE(zebiFilterSobelCrossGetBufferSize_8u8s_C1R);
ZEB_TEST_TABLE(zebiFilterSobelCrossGetBufferSize_32f_C1R);
ZEB_TEST_TABLE(zebiFilterScharrHorizGetBufferSize_8u16s_C1R);
ZEB_TEST_TABLE(zebiFilterScharrHorizGetBufferSize_8u8s_C1R);
ZEB_TEST_TABLE(zebiFilterScharrHorizGetBufferSize_32f_C1R);
ZEB_TEST_TABLE(zebiFilterScharrVertGetBufferSize_8u16s_C1R);
ZEB_TEST_TABLE(zebiFilterScharrVertGetBufferSize_8u8s_C1R);
ZEB_TEST_TABLE(zebiFilterScharrVertGetBufferSize_32f_C1R);
ZEB_TEST_TABLE(zebiFilterLaplacianGetBufferSize_8u16s_C1R);
ZEB_TEST_TABLE(zebiFilterLaplacianGetBufferSize_8u8s_C1R);
ZEB_TEST_TABLE(zebiFilterLaplacianGetBufferSize_32f_C1R);
ZEB_TEST_TABLE(zebiFilterLowpassGetBufferSize_8u_C1R);
ZEB_TEST_TABLE(zebiFilterLowpassGetBufferSize_32f_C1R);

namespace {

// Every argument a member may take; each member reads what it has.
struct Args {
    const void* src;
    int srcStep;
    void* dst;
    int dstStep;
    ZebiSize roi;
    int mask, border;
    double value;
    int divisor;
    Zeb8u* buf;
};

enum class F { SobelHoriz, SobelVert, SobelNegVert, SobelHorizSecond, SobelVertSecond, SobelCross, ScharrHoriz,
               ScharrVert, Laplacian, Lowpass };

struct Member {
    std::string name;
    F f;
    int srcElem, dstElem;
    bool signed8, hasMask, hasDivisor;
    std::function<ZebStatus(int variant, const Args&)> call;
    std::function<ZebStatus(int variant, ZebiSize, int mask, int*)> query;
};

// A member from its two tables; the forms differ in what follows the ROI:
// (mask, border, value, buffer), with a divisor before the buffer, or
// (border, value, buffer) without a mask size.
template <class S, class D, class... R, class... Q>
Member member(const char* name, F f, ZebStatus (*const* tbl)(const S*, int, D*, int, ZebiSize, R...),
              ZebStatus (*const* qtbl)(ZebiSize, Q...)) {
    constexpr int n = sizeof...(R);
    Member m{name, f, int(sizeof(S)), int(sizeof(D)), std::is_same_v<D, Zeb8s>, n != 3, n == 5, {}, {}};
    m.call = [tbl](int v, const Args& a) {
        const S* s = static_cast<const S*>(a.src);
        D* d = static_cast<D*>(a.dst);
        if constexpr (n == 3)
            return tbl[v](s, a.srcStep, d, a.dstStep, a.roi, a.border, S(a.value), a.buf);
        else if constexpr (n == 4)
            return tbl[v](s, a.srcStep, d, a.dstStep, a.roi, a.mask, a.border, S(a.value), a.buf);
        else
            return tbl[v](s, a.srcStep, d, a.dstStep, a.roi, a.mask, a.border, S(a.value), a.divisor, a.buf);
    };
    m.query = [qtbl](int v, ZebiSize roi, int mask, int* out) {
        if constexpr (sizeof...(Q) == 1)
            return qtbl[v](roi, out);
        else
            return qtbl[v](roi, mask, out);
    };
    return m;
}

#define ZT_MEMBER(f, fn, q) member(#fn, F::f, zeb_tbl_##fn, zeb_tbl_##q)

const std::vector<Member>& members() {
    static const std::vector<Member> m = {
        ZT_MEMBER(SobelHoriz, zebiFilterSobelHorizBorder_8u16s_C1R, zebiFilterSobelHorizGetBufferSize_8u16s_C1R),
        ZT_MEMBER(SobelHoriz, zebiFilterSobelHorizBorder_8u8s_C1R, zebiFilterSobelHorizGetBufferSize_8u8s_C1R),
        ZT_MEMBER(SobelHoriz, zebiFilterSobelHorizBorder_32f_C1R, zebiFilterSobelHorizGetBufferSize_32f_C1R),
        ZT_MEMBER(SobelVert, zebiFilterSobelVertBorder_8u16s_C1R, zebiFilterSobelVertGetBufferSize_8u16s_C1R),
        ZT_MEMBER(SobelVert, zebiFilterSobelVertBorder_8u8s_C1R, zebiFilterSobelVertGetBufferSize_8u8s_C1R),
        ZT_MEMBER(SobelVert, zebiFilterSobelVertBorder_32f_C1R, zebiFilterSobelVertGetBufferSize_32f_C1R),
        ZT_MEMBER(SobelNegVert, zebiFilterSobelNegVertBorder_8u16s_C1R, zebiFilterSobelNegVertGetBufferSize_8u16s_C1R),
        ZT_MEMBER(SobelNegVert, zebiFilterSobelNegVertBorder_8u8s_C1R, zebiFilterSobelNegVertGetBufferSize_8u8s_C1R),
        ZT_MEMBER(SobelNegVert, zebiFilterSobelNegVertBorder_32f_C1R, zebiFilterSobelNegVertGetBufferSize_32f_C1R),
        ZT_MEMBER(SobelHorizSecond, zebiFilterSobelHorizSecondBorder_8u16s_C1R,
                  zebiFilterSobelHorizSecondGetBufferSize_8u16s_C1R),
        ZT_MEMBER(SobelHorizSecond, zebiFilterSobelHorizSecondBorder_8u8s_C1R,
                  zebiFilterSobelHorizSecondGetBufferSize_8u8s_C1R),
        ZT_MEMBER(SobelHorizSecond, zebiFilterSobelHorizSecondBorder_32f_C1R,
                  zebiFilterSobelHorizSecondGetBufferSize_32f_C1R),
        ZT_MEMBER(SobelVertSecond, zebiFilterSobelVertSecondBorder_8u16s_C1R,
                  zebiFilterSobelVertSecondGetBufferSize_8u16s_C1R),
        ZT_MEMBER(SobelVertSecond, zebiFilterSobelVertSecondBorder_8u8s_C1R,
                  zebiFilterSobelVertSecondGetBufferSize_8u8s_C1R),
        ZT_MEMBER(SobelVertSecond, zebiFilterSobelVertSecondBorder_32f_C1R,
                  zebiFilterSobelVertSecondGetBufferSize_32f_C1R),
        ZT_MEMBER(SobelCross, zebiFilterSobelCrossBorder_8u16s_C1R, zebiFilterSobelCrossGetBufferSize_8u16s_C1R),
        ZT_MEMBER(SobelCross, zebiFilterSobelCrossBorder_8u8s_C1R, zebiFilterSobelCrossGetBufferSize_8u8s_C1R),
        ZT_MEMBER(SobelCross, zebiFilterSobelCrossBorder_32f_C1R, zebiFilterSobelCrossGetBufferSize_32f_C1R),
        ZT_MEMBER(ScharrHoriz, zebiFilterScharrHorizBorder_8u16s_C1R, zebiFilterScharrHorizGetBufferSize_8u16s_C1R),
        ZT_MEMBER(ScharrHoriz, zebiFilterScharrHorizBorder_8u8s_C1R, zebiFilterScharrHorizGetBufferSize_8u8s_C1R),
        ZT_MEMBER(ScharrHoriz, zebiFilterScharrHorizBorder_32f_C1R, zebiFilterScharrHorizGetBufferSize_32f_C1R),
        ZT_MEMBER(ScharrVert, zebiFilterScharrVertBorder_8u16s_C1R, zebiFilterScharrVertGetBufferSize_8u16s_C1R),
        ZT_MEMBER(ScharrVert, zebiFilterScharrVertBorder_8u8s_C1R, zebiFilterScharrVertGetBufferSize_8u8s_C1R),
        ZT_MEMBER(ScharrVert, zebiFilterScharrVertBorder_32f_C1R, zebiFilterScharrVertGetBufferSize_32f_C1R),
        ZT_MEMBER(Laplacian, zebiFilterLaplacianBorder_8u16s_C1R, zebiFilterLaplacianGetBufferSize_8u16s_C1R),
        ZT_MEMBER(Laplacian, zebiFilterLaplacianBorder_8u8s_C1R, zebiFilterLaplacianGetBufferSize_8u8s_C1R),
        ZT_MEMBER(Laplacian, zebiFilterLaplacianBorder_32f_C1R, zebiFilterLaplacianGetBufferSize_32f_C1R),
        ZT_MEMBER(Lowpass, zebiFilterLowpassBorder_8u_C1R, zebiFilterLowpassGetBufferSize_8u_C1R),
        ZT_MEMBER(Lowpass, zebiFilterLowpassBorder_32f_C1R, zebiFilterLowpassGetBufferSize_32f_C1R),
    };
    return m;
}

// ---- the reference ----

// One separable term: kx along the row (left to right, offsets -r..r), ky
// down the column (top to bottom).
struct Term {
    std::vector<int> kx, ky;
};

Term deriv(int dx, int dy, int ksize) {  // ksize -1: Scharr
    cv::Mat kx, ky;
    cv::getDerivKernels(kx, ky, dx, dy, ksize, false, CV_32F);
    Term t;
    for (int i = 0; i < int(kx.total()); ++i) t.kx.push_back(int(std::lround(kx.at<float>(i))));
    for (int i = 0; i < int(ky.total()); ++i) t.ky.push_back(int(std::lround(ky.at<float>(i))));
    return t;
}

// The filter as separable terms, in the order the 32f forms add them.
std::vector<Term> terms(F f, int k) {
    switch (f) {
        case F::SobelHoriz: return {deriv(0, 1, k)};
        case F::SobelVert:
        case F::SobelNegVert: return {deriv(1, 0, k)};
        case F::SobelHorizSecond: return {deriv(0, 2, k)};
        case F::SobelVertSecond: return {deriv(2, 0, k)};
        case F::SobelCross: return {deriv(1, 1, k)};
        case F::ScharrHoriz: return {deriv(0, 1, -1)};
        case F::ScharrVert: return {deriv(1, 0, -1)};
        case F::Laplacian:  // 3x3: [2 0 2; 0 -8 0; 2 0 2] as diagonals plus centre
            if (k == 3) return {{{2, 0, 2}, {1, 0, 1}}, {{0, -8, 0}, {0, 1, 0}}};
            return {deriv(0, 2, 5), deriv(2, 0, 5)};
        case F::Lowpass: return {{std::vector<int>(k, 1), std::vector<int>(k, 1)}};
    }
    return {};
}

int cv_mode(int mode) {
    const int modes[] = {cv::BORDER_CONSTANT, cv::BORDER_REPLICATE, cv::BORDER_WRAP, cv::BORDER_REFLECT_101,
                         cv::BORDER_REFLECT};
    return modes[mode];
}

// Index standing at i on a line of n under a border mode, -1 for the value.
int interp(int i, int n, int mode) {
    if (i >= 0 && i < n) return i;
    if (mode == 0) return -1;
    if (mode == 3 && n == 1) return 0;
    return cv::borderInterpolate(i, n, cv_mode(mode));
}

// A ROI inside an image that has r pixels of memory beyond exactly the
// sides the border argument puts in memory, so that any other read past
// the ROI hits a guard page.
template <class S>
struct Source {
    int w, h, r, border, mL, mT;
    zt::Image<S> img;
    Source(int w_, int h_, int r_, int b, int pad)
        : w(w_), h(h_), r(r_), border(b), mL(side(b, 64) ? r_ : 0), mT(side(b, 16) ? r_ : 0),
          img(w_ + mL + (side(b, 128) ? r_ : 0), h_ + mT + (side(b, 32) ? r_ : 0), 1, pad) {}
    static bool side(int b, int flag) { return (b & 15) == 6 || (b & flag); }
    const S* roi() const { return img.row(mT) + mL; }

    // The border-extended image, (w + 2r) x (h + 2r): each row from memory
    // or the rule, then extended left and right from memory or the rule.
    cv::Mat extended(double value) const {
        const int mode = (border & 15) == 6 ? 1 : (border & 15);
        cv::Mat e(h + 2 * r, w + 2 * r, CV_64F);
        for (int y = -r; y < h + r; ++y) {
            const bool memRow = (y < 0 && side(border, 16)) || (y >= h && side(border, 32));
            const int ry = memRow ? y : interp(y, h, mode);
            for (int x = -r; x < w + r; ++x) {
                const bool memCol = (x < 0 && side(border, 64)) || (x >= w && side(border, 128)) || (x >= 0 && x < w);
                const int rx = memCol ? x : interp(x, w, mode);
                const bool constant = (!memRow && ry == -1) || (!memCol && rx == -1);
                e.at<double>(y + r, x + r) = constant ? value : double(img.at(rx + mL, ry + mT));
            }
        }
        return e;
    }
};

// Exact sum at (x, y) of the ROI.
double exact_sum(const cv::Mat& e, const std::vector<Term>& ts, int x, int y) {
    double s = 0;
    for (const Term& t : ts)
        for (int i = 0; i < int(t.ky.size()); ++i)
            for (int j = 0; j < int(t.kx.size()); ++j) s += double(t.ky[i]) * t.kx[j] * e.at<double>(y + i, x + j);
    return s;
}

// The 32f result in the documented order: down each column, then along the
// row, zero taps skipped, the first product starting each sum, terms added
// in order.
float documented_float(const cv::Mat& e, const std::vector<Term>& ts, int x, int y) {
    auto prod = [](float v, int c) { return c == 1 ? v : c == -1 ? -v : v * float(c); };
    float total = 0;
    for (std::size_t n = 0; n < ts.size(); ++n) {
        float acc = 0;
        bool rowStarted = false;
        for (int j = 0; j < int(ts[n].kx.size()); ++j) {
            if (ts[n].kx[j] == 0) continue;
            float col = 0;
            bool started = false;
            for (int i = 0; i < int(ts[n].ky.size()); ++i) {
                if (ts[n].ky[i] == 0) continue;
                const float p = prod(float(e.at<double>(y + i, x + j)), ts[n].ky[i]);
                col = started ? col + p : p;
                started = true;
            }
            acc = rowStarted ? acc + prod(col, ts[n].kx[j]) : prod(col, ts[n].kx[j]);
            rowStarted = true;
        }
        total = n == 0 ? acc : total + acc;
    }
    return total;
}

// The expected output at (x, y): exact integer results, bit patterns of
// the documented single-precision order for 32f.
template <class D>
D expected(const Member& m, const cv::Mat& e, const std::vector<Term>& ts, int k, int divisor, int x, int y) {
    const double s = (m.f == F::SobelNegVert ? -1 : 1) * exact_sum(e, ts, x, y);
    if constexpr (std::is_same_v<D, float>) {
        float v = documented_float(e, ts, x, y);
        if (m.f == F::Lowpass) v = v * (1.0f / float(k * k));
        return m.f == F::SobelNegVert ? -v : v;
    } else if (m.f == F::Lowpass) {
        return D(std::floor((s + (k * k) / 2) / (k * k)));
    } else if (m.signed8) {  // half away from zero, saturated to +-127
        const double q = std::min(std::floor(std::fabs(s) / std::abs(divisor) + 0.5), 127.0);
        return D((s < 0) != (divisor < 0) ? -q : q);
    } else {
        return D(s);
    }
}

const int kBorders[] = {0, 1, 2, 3, 4, 6, 16, 32 | 1, 64 | 3, 128 | 4, 16 | 128 | 2, 32 | 64, 240 | 3};

ZT_TARGET_SUITE(DerivativeFilters);

template <class S, class D>
void sweep(const Member& m, int k) {
    const int r = k / 2;
    // Widths past three vectors of 16-bit lanes on the widest target reach
    // the sliding row body; pads move each row against the vector boundary.
    for (int w : {1, 2, 7, 33, 67, 131, 203})
        for (int h : {1, 2, 5})
            for (int border : kBorders) {
                Source<S> src(w, h, r, border, (w % 3) * int(sizeof(S)));
                const double value = sizeof(S) == 1 ? double(zt::rng()() % 256) : -37.25;
                const int divisor = (1 + int(zt::rng()() % 9)) * (w % 2 ? 1 : -1);
                const cv::Mat e = src.extended(value);
                const std::vector<Term> ts = terms(m.f, k);
                int size = 0;
                ASSERT_EQ(m.query(0, {w, h}, k * 11, &size), 0) << m.name;
                for (int v = 0; v < 2; ++v) {
                    zt::Image<D> dst(w, h, 1, int(sizeof(D)) * ((w + v) % 2));
                    zt::Guarded buf{std::size_t(size)};
                    const Args a{src.roi(), src.img.step(), dst.ptr(), dst.step(), {w, h}, k * 11, border, value,
                                 divisor, buf.data()};
                    ASSERT_EQ(m.call(v, a), 0) << m.name;
                    for (int y = 0; y < h; ++y)
                        for (int x = 0; x < w; ++x) {
                            const D want = expected<D>(m, e, ts, k, m.hasDivisor ? divisor : 1, x, y), got = dst.at(x, y);
                            ASSERT_EQ(0, std::memcmp(&want, &got, sizeof(D)))
                                << m.name << " k=" << k << " border=" << border << " w=" << w << " h=" << h
                                << " variant " << v << " at " << x << "," << y << ": " << double(got) << " vs "
                                << double(want);
                        }
                }
            }
}

TEST_P(DerivativeFilters, EveryMemberMatchesTheDefinitionForEveryBorder) {
    for (const Member& m : members())
        for (int k : {3, 5}) {
            if (!m.hasMask && k == 5) continue;
            if (m.srcElem == 4)
                sweep<float, float>(m, k);
            else if (m.dstElem == 2)
                sweep<uint8_t, int16_t>(m, k);
            else if (m.signed8)
                sweep<uint8_t, int8_t>(m, k);
            else
                sweep<uint8_t, uint8_t>(m, k);
            if (HasFatalFailure()) return;
        }
}

// ---- OpenCV's own filters on photographs ----

cv::Mat photo(const char* name) {
    const std::string path = std::string("/usr/share/doc/opencv-doc/examples/data/") + name;
    cv::Mat m = cv::imread(path, cv::IMREAD_GRAYSCALE);
    if (m.empty()) {
        ADD_FAILURE() << "cannot read " << path;
        return m;
    }
    // A band of full rows keeps the test short; odd width and height keep
    // the row ends off the vector boundaries.
    return m(cv::Rect(0, 100, m.cols - 1 + m.cols % 2, 201)).clone();
}

// The derivative orders (dx, dy) of the Sobel members.
std::pair<int, int> sobel_order(F f) {
    switch (f) {
        case F::SobelHoriz: return {0, 1};
        case F::SobelHorizSecond: return {0, 2};
        case F::SobelVertSecond: return {2, 0};
        case F::SobelCross: return {1, 1};
        default: return {1, 0};  // Vert, NegVert
    }
}

// Runs member m over a whole image and returns the output.
template <class S, class D>
cv::Mat run(const Member& m, const cv::Mat& src, int k, int border) {
    zt::Image<S> in(src.cols, src.rows, 1, 3 * int(sizeof(S)));
    cv::Mat view = in.mat();
    src.copyTo(view);
    zt::Image<D> out(src.cols, src.rows, 1, int(sizeof(D)));
    int size = 0;
    EXPECT_EQ(m.query(0, in.size(), k * 11, &size), 0);
    zt::Guarded buf{std::size_t(size)};
    EXPECT_EQ(m.call(1, {in.ptr(), in.step(), out.ptr(), out.step(), in.size(), k * 11, border, 0, 1, buf.data()}), 0)
        << m.name;
    return out.mat().clone();
}

// 8u16s and 8u lowpass bit for bit; 32f within a relative 1e-5 of the
// largest magnitude (OpenCV sums rows first). OpenCV's constant border is
// zero here. With the cache query failing the filters stream their stores
// (checked with the replicate border); the results do not change.
TEST_P(DerivativeFilters, AgreeWithOpenCVOnPhotographs) {
    const std::pair<int, int> borders[] = {
        {1, cv::BORDER_REPLICATE}, {3, cv::BORDER_REFLECT_101}, {4, cv::BORDER_REFLECT}, {0, cv::BORDER_CONSTANT}};
    for (const char* name : {"baboon.jpg", "building.jpg", "fruits.jpg"}) {
        const cv::Mat g8 = photo(name);
        if (g8.empty()) continue;
        cv::Mat gf;
        g8.convertTo(gf, CV_32F, 1.0 / 255);
        for (const Member& m : members())
            for (int k : {3, 5})
                for (auto [ours, theirs] : borders) {
                    if (!m.hasMask && k == 5) continue;
                    if (m.signed8 || (m.f == F::Lowpass && ours == 0)) continue;  // no OpenCV counterpart
                    const cv::Mat& src = m.srcElem == 4 ? gf : g8;
                    const int ddepth = m.srcElem == 4 ? CV_32F : m.dstElem == 2 ? CV_16S : CV_8U;
                    cv::Mat want;
                    switch (m.f) {
                        case F::Laplacian: cv::Laplacian(src, want, ddepth, k, 1, 0, theirs); break;
                        case F::Lowpass: cv::blur(src, want, {k, k}, {-1, -1}, theirs); break;
                        case F::ScharrHoriz:
                        case F::ScharrVert:
                            cv::Scharr(src, want, ddepth, m.f == F::ScharrVert, m.f == F::ScharrHoriz, 1, 0, theirs);
                            break;
                        default: {
                            const auto [dx, dy] = sobel_order(m.f);
                            cv::Sobel(src, want, ddepth, dx, dy, k, m.f == F::SobelNegVert ? -1 : 1, 0, theirs);
                        }
                    }
                    for (int fail : {0, 1}) {
                        if (fail && ours != 1) continue;
                        zebTestFailCacheQuery(fail);
                        const cv::Mat got = m.srcElem == 4 ? run<float, float>(m, src, k, ours)
                                            : m.dstElem == 2 ? run<uint8_t, int16_t>(m, src, k, ours)
                                                             : run<uint8_t, uint8_t>(m, src, k, ours);
                        zebTestFailCacheQuery(0);
                        const double diff = cv::norm(got, want, cv::NORM_INF);
                        const double tol = m.srcElem == 4 ? 1e-5 * std::max(1.0, cv::norm(want, cv::NORM_INF)) : 0;
                        EXPECT_LE(diff, tol) << m.name << " on " << name << " k=" << k << " border=" << ours
                                             << " streaming=" << fail;
                    }
                }
    }
}

// ---- argument checks ----

// Good arguments on a 20 x 6 image with exact steps; a failing call must
// leave destination and work buffer byte for byte unchanged.
struct CheckBed {
    const Member& m;
    static constexpr int kW = 20, kH = 6;
    zt::Guarded src{std::size_t(kW * 4 + 16) * kH}, dst{std::size_t(kW * 4 + 16) * kH}, buf{1 << 16};
    explicit CheckBed(const Member& mm) : m(mm) {
        for (std::size_t i = 0; i < src.size(); ++i) src.data()[i] = uint8_t(i);
    }
    Args good() const {
        return {src.data(), kW * m.srcElem, dst.data(), kW * m.dstElem, {kW, kH}, 33, 1, 0, 2, buf.data()};
    }
    void expect(const Args& a, ZebStatus want, const std::string& what) {
        for (int v = 0; v < 2; ++v) {
            for (std::size_t i = 0; i < dst.size(); ++i) dst.data()[i] = uint8_t(i * 13 + 1);
            for (std::size_t i = 0; i < buf.size(); ++i) buf.data()[i] = uint8_t(i * 7 + 5);
            const std::vector<uint8_t> d0(dst.data(), dst.data() + dst.size()), b0(buf.data(), buf.data() + buf.size());
            EXPECT_EQ(m.call(v, a), want) << m.name << " variant " << v << ": " << what;
            if (want < 0) {
                EXPECT_TRUE(std::equal(d0.begin(), d0.end(), dst.data())) << m.name << " wrote: " << what;
                EXPECT_TRUE(std::equal(b0.begin(), b0.end(), buf.data())) << m.name << " wrote: " << what;
            }
        }
    }
};

// One row per case: what changes from the good arguments, and the status.
struct CheckCase {
    const char* what;
    std::function<bool(const Member&)> applies;
    std::function<void(Args&, const Member&)> change;
    ZebStatus want;
};

const std::vector<CheckCase>& check_cases() {
    auto all = [](const Member&) { return true; };
    // Later checks broken too, so that the order shows.
    auto later = [](Args& a) { a.border = 99, a.mask = 7, a.divisor = 0; };
    static const std::vector<CheckCase> c = {
        {"good arguments", all, [](Args&, const Member&) {}, zebStsNoErr},
        {"null source", all, [=](Args& a, const Member&) { a.src = nullptr, a.roi = {0, 0}, later(a); }, zebStsNullPtrErr},
        {"null destination", all, [=](Args& a, const Member&) { a.dst = nullptr, a.srcStep = 0, later(a); },
         zebStsNullPtrErr},
        {"null buffer", all, [=](Args& a, const Member&) { a.buf = nullptr, a.roi = {-1, 0}, later(a); },
         zebStsNullPtrErr},
        {"zero width", all, [=](Args& a, const Member&) { a.roi.width = 0, a.srcStep = 0, later(a); }, zebStsSizeErr},
        {"negative height", all, [=](Args& a, const Member&) { a.roi.height = -4, a.dstStep = 1, later(a); },
         zebStsSizeErr},
        {"short source step", all, [=](Args& a, const Member&) { a.srcStep -= 1, later(a); }, zebStsStepErr},
        {"short destination step", all, [=](Args& a, const Member&) { a.dstStep -= 1, later(a); }, zebStsStepErr},
        {"uneven destination, short source", [](const Member& m) { return m.dstElem > 1; },
         [](Args& a, const Member&) { a.dstStep += 1, a.srcStep -= 1; }, zebStsStepErr},
        {"uneven destination step", [](const Member& m) { return m.dstElem > 1; },
         [=](Args& a, const Member&) { a.dstStep += 1, later(a); }, zebStsNotEvenStepErr},
        {"uneven source step", [](const Member& m) { return m.srcElem > 1; },
         [=](Args& a, const Member&) { a.srcStep += 2, later(a); }, zebStsNotEvenStepErr},
        {"8-bit steps of any length", [](const Member& m) { return m.srcElem == 1; },
         [](Args& a, const Member& m) { a.srcStep += 1, a.dstStep += m.dstElem == 1 ? 3 : 0; }, zebStsNoErr},
        {"mode 5", all, [](Args& a, const Member&) { a.border = 5, a.mask = 0, a.divisor = 0; }, zebStsBadArgErr},
        {"mode 7", all, [](Args& a, const Member&) { a.border = 7; }, zebStsBadArgErr},
        {"mode 15", all, [](Args& a, const Member&) { a.border = 15; }, zebStsBadArgErr},
        {"border -1", all, [](Args& a, const Member&) { a.border = -1; }, zebStsBadArgErr},
        {"flag 256 alone", all, [](Args& a, const Member&) { a.border = 256 | 1; }, zebStsBadArgErr},
        {"flag 0x4000 alone", all, [](Args& a, const Member&) { a.border = 0x4000; }, zebStsBadArgErr},
        {"divisor 0 before the mask size", [](const Member& m) { return m.hasDivisor; },
         [](Args& a, const Member&) { a.divisor = 0, a.mask = 0; }, zebStsBadArgErr},
        {"negative divisor", [](const Member& m) { return m.hasDivisor; }, [](Args& a, const Member&) { a.divisor = -3; },
         zebStsNoErr},
        {"mask 35", [](const Member& m) { return m.hasMask; }, [](Args& a, const Member&) { a.mask = 35; },
         zebStsMaskSizeErr},
        {"mask 53", [](const Member& m) { return m.hasMask; }, [](Args& a, const Member&) { a.mask = 53; },
         zebStsMaskSizeErr},
        {"mask 3", [](const Member& m) { return m.hasMask; }, [](Args& a, const Member&) { a.mask = 3; },
         zebStsMaskSizeErr},
        {"5x5", [](const Member& m) { return m.hasMask; }, [](Args& a, const Member&) { a.mask = 55; }, zebStsNoErr},
        {"no mask-size argument", [](const Member& m) { return !m.hasMask; },
         [](Args& a, const Member&) { a.mask = 12345; }, zebStsNoErr},
    };
    return c;
}

TEST_P(DerivativeFilters, OrderOfTheChecks) {
    for (const Member& m : members()) {
        CheckBed bed(m);
        for (const CheckCase& c : check_cases()) {
            if (!c.applies(m)) continue;
            Args a = bed.good();
            c.change(a, m);
            bed.expect(a, c.want, c.what);
        }
        // Every accepted border value, with the memory its flags promise: the
        // ROI starts two rows and two pixels into the block.
        for (int ok : {0, 2, 3, 4, 6, 16, 32, 64 | 2, 128 | 3, 256 | 16 | 1, 240, 0x8000 | 64}) {
            Args a = bed.good();
            a.border = ok;
            a.src = static_cast<const uint8_t*>(a.src) + 2 * a.srcStep + 2 * m.srcElem;
            a.roi = {CheckBed::kW - 4, CheckBed::kH - 4};
            bed.expect(a, zebStsNoErr, "border " + std::to_string(ok));
        }
    }
}

// Every query: null pointer, then size, then mask size, nothing written on
// failure; sizes that do not fit an int are refused, not wrapped, while the
// largest widths that fit are still answered.
TEST(DerivativeFilterSizes, QueriesCheckInOrderAndRefuseSizesBeyondInt) {
    for (const Member& m : members())
        for (int v = 0; v < 2; ++v) {
            const int mask = m.hasMask ? 55 : 33;
            int size = -1;
            EXPECT_EQ(m.query(v, {10, 10}, 99, nullptr), zebStsNullPtrErr) << m.name;
            EXPECT_EQ(m.query(v, {0, 10}, 99, &size), zebStsSizeErr) << m.name;
            EXPECT_EQ(m.query(v, {10, -1}, 33, &size), zebStsSizeErr) << m.name;
            if (m.hasMask) {
                for (int bad : {35, 53, 0, INT_MAX}) EXPECT_EQ(m.query(v, {10, 10}, bad, &size), zebStsMaskSizeErr);
            }
            for (int w : {INT_MAX, INT_MAX - 15, 1 << 30, 60000000})
                EXPECT_EQ(m.query(v, {w, 1}, mask, &size), zebStsSizeErr) << m.name << " width " << w;
            EXPECT_EQ(size, -1) << m.name << " wrote on failure";
            // Sizes grow with the width: the widest ROI still answered needs
            // more than a narrow one and less than INT_MAX.
            int narrow = 0, wide = 0;
            ASSERT_EQ(m.query(v, {16, 1}, mask, &narrow), zebStsNoErr) << m.name;
            ASSERT_EQ(m.query(v, {5000000, INT_MAX}, mask, &wide), zebStsNoErr) << m.name;
            EXPECT_GT(wide, narrow) << m.name;
        }
}

}  // namespace
