// The Gaussian filter: the kernel setup block and its kernel, results of
// every type, channel count and border on every variant and instruction-set
// path against the per-pixel definitions (bit for bit), with the source,
// destination, kernel setup and work buffer all ending at guard pages;
// OpenCV's GaussianBlur as the independent oracle; the older interface.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

#include "harness.h"

ZEB_TEST_TABLE(zebiFilterGaussianBorder_8u_C1R);
ZEB_TEST_TABLE(zebiFilterGaussianBorder_8u_C3R);
ZEB_TEST_TABLE(zebiFilterGaussianBorder_16u_C1R);
ZEB_TEST_TABLE(zebiFilterGaussianBorder_16u_C3R);
ZEB_TEST_TABLE(zebiFilterGaussianBorder_16s_C1R);
ZEB_TEST_TABLE(zebiFilterGaussianBorder_16s_C3R);
ZEB_TEST_TABLE(zebiFilterGaussianBorder_32f_C1R);
ZEB_TEST_TABLE(zebiFilterGaussianBorder_32f_C3R);
ZEB_TEST_TABLE(zebiFilterGaussBorder_32f_C1R);

namespace {

using zt::Image;

template <class T>
constexpr ZebDataType type_of() {
    return std::is_same_v<T, uint8_t> ? zeb8u : std::is_same_v<T, uint16_t> ? zeb16u
                                            : std::is_same_v<T, int16_t>    ? zeb16s
                                                                            : zeb32f;
}

// A kernel setup and work buffer sized exactly by the query.
struct Prepared {
    zt::Guarded spec, buf;
    Prepared(int specBytes, int bufBytes) : spec(specBytes), buf(bufBytes) {}
    const ZebFilterGaussianSpec* s() const { return reinterpret_cast<const ZebFilterGaussianSpec*>(spec.data()); }
    int32_t header(int i) const {
        int32_t v;
        std::memcpy(&v, spec.data() + 4 * i, 4);
        return v;
    }
    const unsigned char* table() const {
        return reinterpret_cast<const unsigned char*>((reinterpret_cast<std::uintptr_t>(spec.data()) + 20 + 15) &
                                                      ~std::uintptr_t(15));
    }
    uint16_t fixed(int i) const {
        uint16_t v;
        std::memcpy(&v, table() + 2 * i, 2);
        return v;
    }
    float real(int i) const {
        float v;
        std::memcpy(&v, table() + 4 * i, 4);
        return v;
    }
};

std::unique_ptr<Prepared> prepare(ZebiSize roi, int k, float sigma, int bt, ZebDataType type, int ch) {
    int specBytes = 0, bufBytes = 0;
    EXPECT_EQ(zebiFilterGaussianGetBufferSize(roi, Zeb32u(k), type, ch, &specBytes, &bufBytes), 0);
    auto p = std::make_unique<Prepared>(specBytes, bufBytes);
    EXPECT_EQ(zebiFilterGaussianInit(roi, Zeb32u(k), sigma, bt, type, ch,
                                     reinterpret_cast<ZebFilterGaussianSpec*>(p->spec.data()), p->buf.data()),
              0);
    return p;
}

// ---- kernel setup ----

TEST(GaussianSpec, HeaderAndTableLayout) {
    for (ZebDataType type : {zeb8u, zeb16u, zeb16s, zeb32f})
        for (int k : {3, 5, 9, 31}) {
            auto p = prepare({40, 10}, k, 1.7f, zebBorderRepl | zebBorderInMemTop, type, 3);
            EXPECT_EQ(p->header(0), k);
            EXPECT_EQ(p->header(1), 20);
            EXPECT_EQ(p->header(2), type);
            EXPECT_EQ(p->header(3), zebBorderRepl | zebBorderInMemTop);
            EXPECT_EQ(p->header(4), type == zeb8u ? 12 : type == zeb32f ? 0 : 15);
            // The table agrees with OpenCV's Gaussian kernel (computed in double).
            const cv::Mat ref = cv::getGaussianKernel(k, 1.7, CV_64F);
            const double one = type == zeb8u ? 4096 : 32768;
            double sum = 0;
            for (int i = 0; i < k; ++i) {
                const double want = ref.at<double>(i);
                if (type == zeb32f) {
                    EXPECT_NEAR(p->real(i), want, 1e-6) << "k=" << k << " i=" << i;
                    EXPECT_EQ(p->real(i), p->real(k - 1 - i));
                    continue;
                }
                EXPECT_NEAR(p->fixed(i), want * one, 0.5 + 1e-3) << "k=" << k << " i=" << i;
                EXPECT_EQ(p->fixed(i), p->fixed(k - 1 - i));
                sum += p->fixed(i);
            }
            if (type != zeb32f) {
                EXPECT_NEAR(sum, one, k / 2.0);
            }
        }
}

TEST(GaussianSpec, TinySigmaGivesAUnitCentre) {
    auto p = prepare({8, 8}, 3, 0.05f, 0, zeb8u, 1);
    EXPECT_EQ(p->fixed(0), 0);
    EXPECT_EQ(p->fixed(1), 4096);
    EXPECT_EQ(p->fixed(2), 0);
    auto q = prepare({8, 8}, 3, 0.05f, 0, zeb16s, 1);
    EXPECT_EQ(q->fixed(1), 32768);
}

// ---- definitions ----

// Source pixel (x, y, c) of the ROI under the border: sides in memory are
// read from the image, the others take the border value (mode 0) or the
// nearest edge pixel (mode 1); a row outside the ROI that is not in memory
// is wholly border.
template <class T>
struct Source {
    const Image<T>* img;
    int mx, my, w, h, ch, bt;
    const T* value;
    T at(int x, int y, int c) const {
        const int mode = (bt & 0xf) == 6 ? 1 : bt & 0xf;
        const bool all = (bt & 0xf) == 6;
        const bool top = all || (bt & 16), bottom = all || (bt & 32), left = all || (bt & 64), right = all || (bt & 128);
        if ((y < 0 && !top) || (y >= h && !bottom)) {
            if (mode == 0) return value[c];
            y = std::clamp(y, 0, h - 1);
        }
        if ((x < 0 && !left) || (x >= w && !right)) {
            if (mode == 0) return value[c];
            x = std::clamp(x, 0, w - 1);
        }
        return img->at(x + mx, y + my, c);
    }
};

template <class T>
std::vector<T> definition(const Source<T>& s, const Prepared& p, int k) {
    const int a = k / 2, w = s.w, h = s.h, ch = s.ch;
    using M = std::conditional_t<std::is_same_v<T, uint8_t>, uint32_t, T>;
    // Filtered rows y - a .. y + a of every output row.
    std::vector<M> mid(std::size_t(h + k - 1) * w * ch);
    auto midAt = [&](int x, int y, int c) -> M& { return mid[(std::size_t(y + a) * w + x) * ch + c]; };
    for (int y = -a; y < h + k - 1 - a; ++y)
        for (int x = 0; x < w; ++x)
            for (int c = 0; c < ch; ++c) {
                auto v = [&](int i) { return s.at(x - a + i, y, c); };
                if constexpr (std::is_same_v<T, float>) {
                    float acc = p.real(0) * v(0);
                    for (int i = 1; i < k; ++i) acc = acc + p.real(i) * v(i);
                    midAt(x, y, c) = acc;
                } else if constexpr (std::is_same_v<T, uint8_t>) {
                    uint32_t acc = (uint32_t(v(a)) * p.fixed(a)) >> 5;
                    for (int i = 0; i < a; ++i) acc += ((uint32_t(v(i)) + v(k - 1 - i)) * p.fixed(i)) >> 5;
                    midAt(x, y, c) = acc;
                } else {
                    float acc = float(p.fixed(0)) * float(v(0));
                    for (int i = 1; i < k; ++i) acc = acc + float(p.fixed(i)) * float(v(i));
                    acc = std::clamp(acc * (1.0f / 32768.0f), float(std::numeric_limits<T>::lowest()),
                                     float(std::numeric_limits<T>::max()));
                    midAt(x, y, c) = T(std::nearbyint(acc));
                }
            }
    std::vector<T> out(std::size_t(h) * w * ch);
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x)
            for (int c = 0; c < ch; ++c) {
                auto m = [&](int j) { return midAt(x, y - a + j, c); };
                T& o = out[(std::size_t(y) * w + x) * ch + c];
                if constexpr (std::is_same_v<T, float>) {
                    float acc = p.real(0) * m(0);
                    for (int j = 1; j < k; ++j) acc = acc + p.real(j) * m(j);
                    o = acc;
                } else if constexpr (std::is_same_v<T, uint8_t>) {
                    uint32_t acc = (m(a) * p.fixed(a)) >> 13;
                    for (int j = 0; j < a; ++j) acc += (((m(j) + m(k - 1 - j) + 1) >> 1) * p.fixed(j)) >> 12;
                    o = T(std::min<uint32_t>((acc + 32) >> 6, 255));
                } else {
                    float acc = float(p.fixed(0)) * float(m(0));
                    for (int j = 1; j < k; ++j) acc = acc + float(p.fixed(j)) * float(m(j));
                    acc = std::clamp(acc * (1.0f / 32768.0f), float(std::numeric_limits<T>::lowest()),
                                     float(std::numeric_limits<T>::max()));
                    o = T(std::nearbyint(acc));
                }
            }
    return out;
}

template <class T, class Fn>
ZebStatus call(Fn* const* tbl, int variant, int ch, const T* src, int ss, T* dst, int ds, ZebiSize roi,
               const T* value, const ZebFilterGaussianSpec* spec, Zeb8u* buf) {
    if constexpr (std::is_invocable_v<Fn*, const T*, int, T*, int, ZebiSize, T, const ZebFilterGaussianSpec*, Zeb8u*>) {
        (void)ch;
        return tbl[variant](src, ss, dst, ds, roi, value[0], spec, buf);
    } else {
        return tbl[variant](src, ss, dst, ds, roi, value, spec, buf);
    }
}

template <class T, class Fn>
void check_gauss(Fn* const* tbl, int ch, const zt::Path& path, int w, int h, int k, float sigma, int bt) {
    const int a = k / 2;
    // Margins of a pixels hold readable noise for the sides in memory; the
    // guard page follows the bottom-right margin.
    Image<T> src(w + 2 * a, h + 2 * a, ch, int(sizeof(T)) * ((w + h) % 3));
    Image<T> dst(w, h, ch, int(sizeof(T)) * (w % 2));
    const T value[3] = {zt::random_value<T>(), zt::random_value<T>(), zt::random_value<T>()};
    auto p = prepare({w, h}, k, sigma, bt, type_of<T>(), ch);
    const T* roi = &src.at(a, a);
    ASSERT_EQ(call<T>(tbl, path.variant, ch, roi, src.step(), dst.ptr(), dst.step(), {w, h}, value, p->s(),
                      p->buf.data()),
              0);
    const std::vector<T> want = definition(Source<T>{&src, a, a, w, h, ch, bt, value}, *p, k);
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w * ch; ++x) {
            const T got = dst.row(y)[x], exp = want[std::size_t(y) * w * ch + x];
            ASSERT_EQ(std::memcmp(&got, &exp, sizeof(T)), 0)
                << path.name() << " w=" << w << " h=" << h << " k=" << k << " bt=" << bt << " x=" << x << " y=" << y
                << " want " << +exp << " got " << +got;
        }
}

template <class T, class Fn>
void sweep_gauss(Fn* const* tbl, int ch) {
    const int borders[] = {0, 1, 6, 16 | 1, 32, 64 | 1, 128, 16 | 64, 240 | 1};
    int turn = 0;
    for (const zt::Path& p : zt::all_paths()) {
        zt::TargetScope target(p.target);
        for (int w : zt::test_widths())
            for (int h : {1, 2, 6, 23})
                for (int k : {3, 5, 9}) {
                    const int bt = borders[turn++ % 9];
                    check_gauss<T>(tbl, ch, p, w, h, k, 0.6f + 0.4f * float(k), bt);
                }
    }
}

TEST(GaussianFilter, EightBitMatchesDefinition) {
    sweep_gauss<uint8_t>(zeb_tbl_zebiFilterGaussianBorder_8u_C1R, 1);
    sweep_gauss<uint8_t>(zeb_tbl_zebiFilterGaussianBorder_8u_C3R, 3);
}
TEST(GaussianFilter, SixteenBitMatchesDefinition) {
    sweep_gauss<uint16_t>(zeb_tbl_zebiFilterGaussianBorder_16u_C1R, 1);
    sweep_gauss<uint16_t>(zeb_tbl_zebiFilterGaussianBorder_16u_C3R, 3);
    sweep_gauss<int16_t>(zeb_tbl_zebiFilterGaussianBorder_16s_C1R, 1);
    sweep_gauss<int16_t>(zeb_tbl_zebiFilterGaussianBorder_16s_C3R, 3);
}
TEST(GaussianFilter, FloatMatchesDefinition) {
    sweep_gauss<float>(zeb_tbl_zebiFilterGaussianBorder_32f_C1R, 1);
    sweep_gauss<float>(zeb_tbl_zebiFilterGaussianBorder_32f_C3R, 3);
}

// Long kernels and tall images: many strips through the ring.
TEST(GaussianFilter, LongKernelsOverManyStrips) {
    for (const zt::Path& p : zt::all_paths()) {
        zt::TargetScope target(p.target);
        check_gauss<uint8_t>(zeb_tbl_zebiFilterGaussianBorder_8u_C1R, 1, p, 45, 61, 15, 4.f, 1);
        check_gauss<float>(zeb_tbl_zebiFilterGaussianBorder_32f_C3R, 3, p, 37, 50, 21, 5.f, 0);
        check_gauss<int16_t>(zeb_tbl_zebiFilterGaussianBorder_16s_C1R, 1, p, 70, 44, 11, 2.f, 6);
    }
}

// ---- OpenCV ----

// Differences from OpenCV's GaussianBlur (same length, sigma and border,
// border value 0), both on the same type and on the image converted to
// double (OpenCV then filters in double precision, our accuracy yardstick).
// Allowed: one unit, plus for the 15-bit fixed-point coefficients of the
// 16-bit types their quantisation times the largest sample in each of the
// two passes (OpenCV filters 16-bit data with exact float coefficients).
// Against OpenCV's own 8u filter, whose kernels carry 8 fraction bits, long
// kernels (k > 7) may differ by two.
template <class T, class Fn>
void expect_near_opencv(Fn* const* tbl, int ch, int k, float sigma, int bt) {
    const int w = 157, h = 83;
    Image<T> src(w, h, ch, 4 * int(sizeof(T))), dst(w, h, ch);
    if constexpr (std::is_same_v<T, float>)
        for (int y = 0; y < h; ++y)
            for (int x = 0; x < w * ch; ++x) src.row(y)[x] = std::fabs(src.row(y)[x]) * 0.25f;
    const T zero[3] = {0, 0, 0};
    auto p = prepare({w, h}, k, sigma, bt, type_of<T>(), ch);
    ASSERT_EQ(call<T>(tbl, 0, ch, src.ptr(), src.step(), dst.ptr(), dst.step(), {w, h}, zero, p->s(), p->buf.data()), 0);
    const int cvBorder = bt == 1 ? cv::BORDER_REPLICATE : cv::BORDER_CONSTANT;
    cv::Mat want, src64, want64;
    cv::GaussianBlur(src.mat(), want, cv::Size(k, k), sigma, sigma, cvBorder);
    src.mat().convertTo(src64, CV_64F);
    cv::GaussianBlur(src64, want64, cv::Size(k, k), sigma, sigma, cvBorder);
    double worst = 0, worst64 = 0, peak = 0;
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w * ch; ++x) {
            worst = std::max(worst, std::fabs(double(want.ptr<T>(y)[x]) - double(dst.row(y)[x])));
            double exact = want64.ptr<double>(y)[x];
            if constexpr (!std::is_same_v<T, float>) exact = std::nearbyint(exact);
            worst64 = std::max(worst64, std::fabs(exact - double(dst.row(y)[x])));
            peak = std::max(peak, std::fabs(double(src.row(y)[x])));
        }
    double allowed = 1;
    if constexpr (std::is_same_v<T, float>) {
        allowed = 2e-4;
    } else if constexpr (sizeof(T) == 2) {
        const cv::Mat g = cv::getGaussianKernel(k, sigma, CV_64F);
        double quant = 0;
        for (int i = 0; i < k; ++i) quant += std::fabs(p->fixed(i) - 32768.0 * g.at<double>(i));
        allowed = 1 + 2 * quant / 32768.0 * peak;
    }
    EXPECT_LE(worst64, allowed) << "vs double: k=" << k << " sigma=" << sigma << " bt=" << bt << " ch=" << ch;
    if (std::is_same_v<T, uint8_t> && k > 7) allowed = 2;
    EXPECT_LE(worst, allowed) << "k=" << k << " sigma=" << sigma << " bt=" << bt << " ch=" << ch;
}

TEST(GaussianOpenCV, IntegerTypesWithinOneUnitPlusCoefficientQuantisation) {
    for (int bt : {0, 1})
        for (int k : {3, 5, 7, 13}) {
            const float sigma = 0.3f * ((k - 1) * 0.5f - 1) + 0.8f + 0.37f;
            expect_near_opencv<uint8_t>(zeb_tbl_zebiFilterGaussianBorder_8u_C1R, 1, k, sigma, bt);
            expect_near_opencv<uint8_t>(zeb_tbl_zebiFilterGaussianBorder_8u_C3R, 3, k, sigma, bt);
            expect_near_opencv<uint16_t>(zeb_tbl_zebiFilterGaussianBorder_16u_C1R, 1, k, sigma, bt);
            expect_near_opencv<uint16_t>(zeb_tbl_zebiFilterGaussianBorder_16u_C3R, 3, k, sigma, bt);
            expect_near_opencv<int16_t>(zeb_tbl_zebiFilterGaussianBorder_16s_C1R, 1, k, sigma, bt);
            expect_near_opencv<int16_t>(zeb_tbl_zebiFilterGaussianBorder_16s_C3R, 3, k, sigma, bt);
        }
}

// Values in 0..250: the kernels differ in the last float bit (single vs
// double precision construction), sums of k*k terms differ in order.
TEST(GaussianOpenCV, FloatWithinTolerance) {
    for (int bt : {0, 1})
        for (int k : {3, 5, 11}) {
            expect_near_opencv<float>(zeb_tbl_zebiFilterGaussianBorder_32f_C1R, 1, k, 2.5f, bt);
            expect_near_opencv<float>(zeb_tbl_zebiFilterGaussianBorder_32f_C3R, 3, k, 1.1f, bt);
        }
}

// ---- the older interface ----

TEST(GaussianOlder, SameResultsAsThePreparedFilter) {
    for (const zt::Path& p : zt::all_paths()) {
        zt::TargetScope target(p.target);
        for (int bt : {0, 1, 6, 32 | 1})
            for (int k : {3, 7}) {
                const int w = 53, h = 19, a = k / 2;
                Image<float> src(w + 2 * a, h + 2 * a), d1(w, h), d2(w, h);
                auto prep = prepare({w, h}, k, 1.3f, bt, zeb32f, 1);
                const float* roi = &src.at(a, a);
                ASSERT_EQ(zeb_tbl_zebiFilterGaussianBorder_32f_C1R[p.variant](roi, src.step(), d1.ptr(), d1.step(),
                                                                               {w, h}, 7.5f, prep->s(),
                                                                               prep->buf.data()),
                          0);
                int size = 0;
                ASSERT_EQ(zebiFilterGaussGetBufferSize_32f_C1R({w, h}, k, &size), 0);
                zt::Guarded buf(size);
                ASSERT_EQ(zeb_tbl_zebiFilterGaussBorder_32f_C1R[p.variant](roi, src.step(), d2.ptr(), d2.step(), {w, h},
                                                                            k, 1.3f, bt, 7.5f, buf.data()),
                          0);
                EXPECT_EQ(d1.pixels(), d2.pixels()) << p.name() << " bt=" << bt << " k=" << k;
            }
    }
}

}  // namespace
