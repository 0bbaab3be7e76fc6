// Mean and standard deviation: every variant and instruction-set path
// against the definitions (exact integer sums; the documented lane orders
// of the 32f kernels, bit for bit), the 32f refinement pass, the edge
// cases, and OpenCV's meanStdDev as the independent oracle.
#include <gtest/gtest.h>

#include <cmath>
#include <opencv2/core.hpp>

#include "harness.h"
#include "stats/stats_ref.h"
#include "stats_test_util.h"

#define ZT_MEAN_TABLES(c)                      \
    ZEB_TEST_TABLE(zebiMean_##c##_C1MR);       \
    ZEB_TEST_TABLE(zebiMean_##c##_C3CMR);      \
    ZEB_TEST_TABLE(zebiMean_StdDev_##c##_C1R); \
    ZEB_TEST_TABLE(zebiMean_StdDev_##c##_C1MR); \
    ZEB_TEST_TABLE(zebiMean_StdDev_##c##_C3CR); \
    ZEB_TEST_TABLE(zebiMean_StdDev_##c##_C3CMR)
ZT_MEAN_TABLES(8u);
ZT_MEAN_TABLES(8s);
ZT_MEAN_TABLES(16u);
ZT_MEAN_TABLES(32f);

namespace {

using zst::Image;
namespace ref = zeb::stats;

// The six forms of one type behind one call: mean-only or mean and
// deviation, one or three channels, with or without a mask.
template <class T>
struct Fns;
#define ZT_FNS(T, c)                                                                                            \
    template <>                                                                                                 \
    struct Fns<T> {                                                                                             \
        static ZebStatus call(int v, bool meanOnly, const Image<T>& s, const Image<uint8_t>* m, int coi,        \
                              double* mean, double* sd) {                                                       \
            const bool three = s.channels() == 3;                                                               \
            if (meanOnly)                                                                                       \
                return three ? zeb_tbl_zebiMean_##c##_C3CMR[v](s.ptr(), s.step(), m->ptr(), m->step(), s.size(), \
                                                               coi, mean)                                       \
                             : zeb_tbl_zebiMean_##c##_C1MR[v](s.ptr(), s.step(), m->ptr(), m->step(), s.size(),  \
                                                              mean);                                            \
            if (m)                                                                                              \
                return three ? zeb_tbl_zebiMean_StdDev_##c##_C3CMR[v](s.ptr(), s.step(), m->ptr(), m->step(),   \
                                                                      s.size(), coi, mean, sd)                  \
                             : zeb_tbl_zebiMean_StdDev_##c##_C1MR[v](s.ptr(), s.step(), m->ptr(), m->step(),    \
                                                                     s.size(), mean, sd);                       \
            return three ? zeb_tbl_zebiMean_StdDev_##c##_C3CR[v](s.ptr(), s.step(), s.size(), coi, mean, sd)    \
                         : zeb_tbl_zebiMean_StdDev_##c##_C1R[v](s.ptr(), s.step(), s.size(), mean, sd);         \
        }                                                                                                       \
    };
ZT_FNS(uint8_t, 8u)
ZT_FNS(int8_t, 8s)
ZT_FNS(uint16_t, 16u)
ZT_FNS(float, 32f)

struct Result {
    double mean, sd;
};

double finish_sd(double n, double Q, double mean) {
    return n == 0 ? 0.0 : std::sqrt(std::fabs(Q / n - mean * mean));
}

// Integer definition: exact count, sum and sum of squares.
template <class T>
Result expected_int(const Image<T>& s, const Image<uint8_t>* m, int c) {
    int64_t n = 0, S = 0;
    uint64_t Q = 0;
    for (int y = 0; y < s.height(); ++y)
        for (int x = 0; x < s.width(); ++x)
            if (!m || m->at(x, y)) {
                const int64_t v = s.at(x, y, c);
                ++n, S += v, Q += uint64_t(v * v);
            }
    const double mean = n ? double(S) / double(n) : 0.0;
    return {mean, finish_sd(double(n), double(Q), mean)};
}

enum class FloatKernel { Plain, Aligned, Blocked };

// 32f definition: the documented lane orders, then the refinement.
Result expected_float(const Image<float>& s, const Image<uint8_t>* m, int c, FloatKernel k, bool meanOnly) {
    double n = 0, S = 0, Q = 0;
    if (k == FloatKernel::Plain) {
        ref::plain_moments(s.ptr(), s.step(), s.width(), s.height(), S, Q);
        n = double(s.width()) * s.height();
    } else {
        float ls[16] = {}, lq[16] = {};
        double ds[16] = {}, dq[16] = {};
        auto fold = [&] {
            for (int j = 0; j < 16; ++j) ds[j] += double(ls[j]), dq[j] += double(lq[j]), ls[j] = lq[j] = 0;
        };
        for (int y = 0; y < s.height(); ++y) {
            const std::vector<float> v = zst::channel_row(s, y, c);
            ref::float_moments(v.data(), zst::mask_row(m, y), s.width(), ls, lq);
            for (int x = 0; x < s.width(); ++x) n += (!m || m->at(x, y)) ? 1 : 0;
            if (k == FloatKernel::Blocked) fold();
        }
        fold();
        S = ref::lane_total(ds, 16);
        Q = ref::lane_total(dq, 16);
    }
    if (n == 0) return {0, 0};
    const double mean = S / n;
    double sd = finish_sd(n, Q, mean);
    if (!meanOnly && 0.05 * mean * mean > sd * sd) {
        double d[16] = {};
        for (int y = 0; y < s.height(); ++y) {
            const std::vector<float> v = zst::channel_row(s, y, c);
            ref::deviation(v.data(), zst::mask_row(m, y), s.width(), mean, d);
        }
        sd = std::sqrt(ref::lane_total(d, 16) / n);
    }
    return {mean, sd};
}

FloatKernel kernel_for(const Image<float>& s, bool c1r) {
    if (!c1r) return FloatKernel::Blocked;
    const int64_t n = int64_t(s.width()) * s.height();
    if (n <= 5000 || s.width() < 4) return FloatKernel::Plain;
    if (n < 100000 && s.step() % 16 == 0) return FloatKernel::Aligned;
    return FloatKernel::Blocked;
}

template <class T>
Result expected(const Image<T>& s, const Image<uint8_t>* m, int c, bool meanOnly) {
    if constexpr (std::is_same_v<T, float>)
        return expected_float(s, m, c, kernel_for(s, !m && s.channels() == 1), meanOnly);
    else
        return expected_int(s, m, c);
}

// Every form of type T on one image: all paths, all channels, with and
// without a mask, bit for bit against the definition.
template <class T>
void check_forms(const zt::Path& p, const Image<T>& s, const Image<uint8_t>& m, const std::string& what) {
    for (int coi = 1; coi <= s.channels(); ++coi)
        for (int form = 0; form < 3; ++form) {  // 0 mean only, 1 unmasked, 2 masked
            const Image<uint8_t>* mk = form == 1 ? nullptr : &m;
            double mean = -1, sd = -1;
            ASSERT_EQ(Fns<T>::call(p.variant, form == 0, s, mk, coi, &mean, &sd), zebStsNoErr);
            const Result want = expected(s, mk, coi - 1, form == 0);
            ASSERT_TRUE(zst::same_bits(mean, want.mean))
                << p.name() << " " << what << " coi " << coi << " form " << form << ": mean " << mean << " want "
                << want.mean;
            if (form == 0) {
                ASSERT_EQ(sd, -1) << "mean-only form wrote a deviation";
            } else {
                ASSERT_TRUE(zst::same_bits(sd, want.sd))
                    << p.name() << " " << what << " coi " << coi << " form " << form << ": sd " << sd << " want "
                    << want.sd;
            }
        }
}

template <class T>
void sweep_type() {
    zst::sweep(sizeof(T), [&](const zt::Path& p, int w, int pad) {
        for (int ch : {1, 3})
            for (int h : {1, 2, 5}) {
                Image<T> s(w, h, ch, pad);
                Image<uint8_t> m(w, h, 1, pad / int(sizeof(T)) + 3);
                zst::fill_mask(m);
                check_forms(p, s, m, "w=" + std::to_string(w) + " h=" + std::to_string(h) + " pad=" +
                                         std::to_string(pad) + " ch=" + std::to_string(ch));
            }
    });
    // Rows longer than a block of lane sums and than a chunk of copied
    // channel values.
    for (const zt::Path& p : zt::all_paths()) {
        zt::IsaScope isa(p.isa);
        for (int ch : {1, 3}) {
            Image<T> s(9011, 3, ch, int(sizeof(T)));
            Image<uint8_t> m(9011, 3);
            zst::fill_mask(m, 90);
            check_forms(p, s, m, "wide ch=" + std::to_string(ch));
        }
    }
}

TEST(MeanStdDev, AllPathsMatchDefinition8u) { sweep_type<uint8_t>(); }
TEST(MeanStdDev, AllPathsMatchDefinition8s) { sweep_type<int8_t>(); }
TEST(MeanStdDev, AllPathsMatchDefinition16u) { sweep_type<uint16_t>(); }
TEST(MeanStdDev, AllPathsMatchDefinition32f) { sweep_type<float>(); }

// The three kernels of the unmasked one-channel 32f form, each on an image
// that selects it, and the neighbours of the size thresholds.
TEST(MeanStdDev, FloatKernelChoice) {
    struct Case {
        int w, h, pad;
    };
    const Case cases[] = {{3, 2000, 0},  {70, 71, 0},  {100, 50, 0},  {100, 51, 0},  {130, 60, 8},
                          {130, 60, 4},  {333, 300, 0}, {400, 250, 0}, {399, 250, 4}, {1000, 101, 0}};
    for (const zt::Path& p : zt::all_paths()) {
        zt::IsaScope isa(p.isa);
        for (const Case& k : cases) {
            Image<float> s(k.w, k.h, 1, k.pad);
            Image<uint8_t> m(k.w, k.h);
            zst::fill_mask(m);
            check_forms(p, s, m, "w=" + std::to_string(k.w) + " h=" + std::to_string(k.h));
        }
    }
}

// Near-constant images, where the single-precision lanes alone would lose
// the deviation: the second pass makes it accurate.
TEST(MeanStdDev, FloatRefinementPass) {
    for (const zt::Path& p : zt::all_paths()) {
        zt::IsaScope isa(p.isa);
        for (int masked = 0; masked < 2; ++masked) {
            Image<float> s(317, 211);
            Image<uint8_t> m(317, 211);
            zst::fill_mask(m);
            zst::fill_range(s, 1000.0 - 0.001, 1000.0 + 0.001);
            long double n = 0, S = 0;
            for (int y = 0; y < s.height(); ++y)
                for (int x = 0; x < s.width(); ++x)
                    if (!masked || m.at(x, y)) n += 1, S += s.at(x, y);
            const long double mu = S / n;
            double mean, sd;
            ASSERT_EQ(Fns<float>::call(p.variant, false, s, masked ? &m : nullptr, 1, &mean, &sd), zebStsNoErr);
            // The second pass measures the deviation about the mean as
            // computed; its own rounding is all that separates it from the
            // extended-precision sum about that mean.
            long double D = 0, Dtrue = 0;
            for (int y = 0; y < s.height(); ++y)
                for (int x = 0; x < s.width(); ++x)
                    if (!masked || m.at(x, y)) {
                        const long double v = s.at(x, y);
                        D += (v - mean) * (v - mean);
                        Dtrue += (v - mu) * (v - mu);
                    }
            EXPECT_NEAR(sd, double(std::sqrt(D / n)), 1e-15) << p.name();
            // The deviation is about 5.8e-4 while single-precision sums of
            // squares near 1e6 carry errors of about 0.06: without the
            // second pass not one digit would be right.
            EXPECT_NEAR(sd, double(std::sqrt(Dtrue / n)), 1e-8) << p.name();
            EXPECT_NEAR(mean, double(mu), 1e-4) << p.name();
        }
    }
}

TEST(MeanStdDev, EmptyMaskConstantImageAndNullOutputs) {
    for (const zt::Path& p : zt::all_paths()) {
        zt::IsaScope isa(p.isa);
        Image<uint8_t> m(77, 9);
        m.fill(0);
        Image<float> f(77, 9, 3);
        double mean = 5, sd = 5;
        ASSERT_EQ(Fns<float>::call(p.variant, false, f, &m, 2, &mean, &sd), zebStsNoErr);
        EXPECT_EQ(mean, 0.0);
        EXPECT_EQ(sd, 0.0);
        mean = 5;
        ASSERT_EQ(Fns<float>::call(p.variant, true, f, &m, 2, &mean, nullptr), zebStsNoErr);
        EXPECT_EQ(mean, 0.0);
        // Constant images: an exact zero, never NaN.
        Image<uint16_t> c16(77, 9);
        c16.fill(54321);
        ASSERT_EQ(Fns<uint16_t>::call(p.variant, false, c16, nullptr, 1, &mean, &sd), zebStsNoErr);
        EXPECT_EQ(mean, 54321.0);
        EXPECT_EQ(sd, 0.0);
        // A float constant whose sums are exact gives an exact mean, and the
        // second pass then an exact zero.
        Image<float> cf(1000, 120);
        cf.fill(3.0f);
        ASSERT_EQ(Fns<float>::call(p.variant, false, cf, nullptr, 1, &mean, &sd), zebStsNoErr);
        EXPECT_EQ(sd, 0.0);
        // Each output alone.
        Image<int8_t> s(50, 3);
        const Result want = expected_int(s, nullptr, 0);
        mean = sd = -1;
        ASSERT_EQ(zeb_tbl_zebiMean_StdDev_8s_C1R[p.variant](s.ptr(), s.step(), s.size(), &mean, nullptr), 0);
        EXPECT_EQ(mean, want.mean);
        ASSERT_EQ(zeb_tbl_zebiMean_StdDev_8s_C1R[p.variant](s.ptr(), s.step(), s.size(), nullptr, &sd), 0);
        EXPECT_EQ(sd, want.sd);
    }
}

// Byte images of 0x800000 pixels and more keep their sums in 64 bits; the
// results stay exact on both sides of the threshold.
TEST(MeanStdDev, ByteSumsAcrossTheWideThreshold) {
    for (int h : {2047, 2048, 2049}) {
        Image<uint8_t> s(4096, h);
        Image<uint8_t> m(4096, h);
        zst::fill_range(s, 200, 255);
        m.fill(1);
        for (const zt::Path& p : zt::all_paths()) {
            zt::IsaScope isa(p.isa);
            double mean, sd;
            ASSERT_EQ(Fns<uint8_t>::call(p.variant, false, s, &m, 1, &mean, &sd), 0);
            const Result want = expected_int(s, &m, 0);
            EXPECT_TRUE(zst::same_bits(mean, want.mean)) << h << " " << p.name();
            EXPECT_TRUE(zst::same_bits(sd, want.sd)) << h << " " << p.name();
            ASSERT_EQ(Fns<uint8_t>::call(p.variant, false, s, nullptr, 1, &mean, &sd), 0);
            EXPECT_TRUE(zst::same_bits(mean, want.mean)) << h << " " << p.name();
        }
    }
}

// OpenCV on a full-size image. Integer sums are exact on both sides, so the
// results agree to double rounding; OpenCV sums floats in double precision
// while we use single-precision row lanes, hence a relative 1e-6 of the
// values' root mean square for 32f.
template <class T>
void against_opencv(double lo, double hi, double relTol) {
    for (int ch : {1, 3}) {
        Image<T> s(1920, 1080, ch, 4 * int(sizeof(T)));
        zst::fill_range(s, lo, hi);
        Image<uint8_t> m(1920, 1080, 1, 7);
        zst::fill_mask(m, 70);
        cv::Scalar cm, cs, um, us;
        cv::meanStdDev(s.mat(), cm, cs, m.mat());
        cv::meanStdDev(s.mat(), um, us);
        const double scale = std::max(std::fabs(lo), std::fabs(hi));
        for (int coi = 1; coi <= ch; ++coi) {
            double mean, sd;
            ASSERT_EQ(Fns<T>::call(zeb_cpu_variant, false, s, &m, coi, &mean, &sd), 0);
            EXPECT_NEAR(mean, cm[coi - 1], relTol * scale) << "masked ch=" << ch << " coi=" << coi;
            EXPECT_NEAR(sd, cs[coi - 1], relTol * scale) << "masked ch=" << ch << " coi=" << coi;
            ASSERT_EQ(Fns<T>::call(zeb_cpu_variant, false, s, nullptr, coi, &mean, &sd), 0);
            EXPECT_NEAR(mean, um[coi - 1], relTol * scale) << "ch=" << ch << " coi=" << coi;
            EXPECT_NEAR(sd, us[coi - 1], relTol * scale) << "ch=" << ch << " coi=" << coi;
            ASSERT_EQ(Fns<T>::call(zeb_cpu_variant, true, s, &m, coi, &mean, nullptr), 0);
            EXPECT_NEAR(mean, cm[coi - 1], relTol * scale) << "mean ch=" << ch << " coi=" << coi;
        }
    }
}

TEST(MeanStdDev, AgreesWithOpenCV) {
    against_opencv<uint8_t>(0, 255, 1e-12);
    against_opencv<int8_t>(-128, 127, 1e-12);
    against_opencv<uint16_t>(0, 65535, 1e-12);
    against_opencv<float>(-1000, 1000, 1e-6);
    against_opencv<float>(50, 51, 1e-6);
}

}  // namespace
