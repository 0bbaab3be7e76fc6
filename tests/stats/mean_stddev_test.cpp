// SPDX-License-Identifier: Apache-2.0
// Mean and standard deviation, on every vector target and both variants:
// the definitions (exact integer sums; the documented lane orders of the
// 32f kernels and the refinement pass, bit for bit), the edge cases,
// long-double sums within the error bound of single-precision lanes, and
// OpenCV's meanStdDev on random images and photographs.
#include "stats/stats_common.h"
#include "stats/stats_ref.h"
#include "stats_support.h"

namespace {

using zst::Image;
namespace ref = zeb::stats;

ZT_TARGET_SUITE(MeanStdDev);

// Mean only (masked forms) or mean and deviation, with or without a mask.
template <class T>
ZebStatus call(int v, bool meanOnly, const Image<T>& s, const Image<uint8_t>* m, int coi, double* mean, double* sd) {
    return zst::run<T>(meanOnly ? "zebiMean" : "zebiMean_StdDev", v, s, nullptr, m, {mean, sd}, coi);
}

struct Result {
    double mean, sd;
};

double finish_sd(double n, double Q, double mean) { return n == 0 ? 0.0 : std::sqrt(std::fabs(Q / n - mean * mean)); }

// The definition: exact integer totals; for 32f the lane order of the
// kernel the form chooses (the plain one for small images and narrow
// rows, sixteen lanes folded once at the end for mid-sized images with
// 16-byte steps, after every row otherwise), then the refinement pass.
template <class T>
Result expected(const Image<T>& s, const Image<uint8_t>* m, int c, bool meanOnly) {
    if constexpr (!std::is_same_v<T, float>) {
        int64_t n = 0, S = 0;
        uint64_t Q = 0;
        for (int y = 0; y < s.height(); ++y)
            for (int x = 0; x < s.width(); ++x)
                if (!m || m->at(x, y)) ++n, S += s.at(x, y, c), Q += uint64_t(int64_t(s.at(x, y, c)) * s.at(x, y, c));
        const double mean = n ? double(S) / double(n) : 0.0;
        return {mean, finish_sd(double(n), double(Q), mean)};
    }
    const int64_t px = int64_t(s.width()) * s.height();
    const bool c1 = !m && s.channels() == 1, plain = c1 && (px <= 5000 || s.width() < 4);
    const bool foldEachRow = !(c1 && px < 100000 && s.step() % 16 == 0);
    const cv::Mat ch = zst::channel_mat(s, c);
    double n = 0, S = 0, Q = 0, ds[16] = {}, dq[16] = {};
    float ls[16] = {}, lq[16] = {};
    auto fold = [&] {
        for (int j = 0; j < 16; ++j) ds[j] += double(ls[j]), dq[j] += double(lq[j]), ls[j] = lq[j] = 0;
    };
    for (int y = 0; !plain && y < s.height(); ++y) {
        ref::float_moments(ch.ptr<float>(y), m ? m->row(y) : nullptr, s.width(), ls, lq);
        n += m ? cv::countNonZero(m->mat().row(y)) : s.width();
        if (foldEachRow) fold();
    }
    fold();
    S = ref::lane_total(ds, 16), Q = ref::lane_total(dq, 16);
    if (plain) ref::plain_moments((const float*)s.ptr(), s.step(), s.width(), s.height(), S, Q), n = double(px);
    if (n == 0) return {0, 0};
    const double mean = S / n;
    double sd = finish_sd(n, Q, mean), d[16] = {};
    if (meanOnly || !(0.05 * mean * mean > sd * sd)) return {mean, sd};
    for (int y = 0; y < s.height(); ++y) ref::deviation(ch.ptr<float>(y), m ? m->row(y) : nullptr, s.width(), mean, d);
    return {mean, std::sqrt(ref::lane_total(d, 16) / n)};
}

// Every form of type T on one image, every channel, bit for bit against
// the definition; the mean-only form leaves the deviation alone.
template <class T>
void check_forms(int v, const Image<T>& s, const Image<uint8_t>& m, const std::string& what) {
    for (int coi = 1; coi <= s.channels(); ++coi)
        for (int form = 0; form < 3; ++form) {  // 0 mean only, 1 unmasked, 2 masked
            const Image<uint8_t>* mk = form == 1 ? nullptr : &m;
            double mean = -1, sd = -1;
            ASSERT_EQ(call(v, form == 0, s, mk, coi, &mean, form == 0 ? nullptr : &sd), zebStsNoErr);
            const Result want = expected(s, mk, coi - 1, form == 0);
            ASSERT_TRUE(zst::same_bits(mean, want.mean) && zst::same_bits(sd, form == 0 ? -1 : want.sd))
                << "variant " << v << " " << what << " coi " << coi << " form " << form << ": " << mean << " " << sd
                << " want " << want.mean << " " << want.sd;
        }
}

// Every shape; rows longer than a block of lane sums and than a chunk of
// one channel; for 32f the three kernels of the unmasked one-channel form,
// each on an image that selects it, and the neighbours of the thresholds.
template <class T>
void sweep_type() {
    zst::sweep_images<T>(
        [](int v, Image<T>& s, Image<uint8_t>& m, const std::string& what) { check_forms(v, s, m, what); });
    const int shapes[][4] = {{9011, 3, 1, 1}, {9011, 3, 3, 1}, {3, 2000, 1, 0},  {100, 50, 1, 0},
                             {100, 51, 1, 0}, {130, 60, 1, 1}, {399, 250, 1, 1}, {400, 250, 1, 0}};
    for (const auto& k : shapes) {
        if (k[1] > 3 && !std::is_same_v<T, float>) continue;
        Image<T> s(k[0], k[1], k[2], k[3] * int(sizeof(T)));
        Image<uint8_t> m(k[0], k[1]);
        zst::fill_mask(m, 90);
        for (int v = 0; v < 2; ++v) check_forms(v, s, m, "w=" + std::to_string(k[0]) + " h=" + std::to_string(k[1]));
    }
}

TEST_P(MeanStdDev, MatchesDefinition8u) { sweep_type<uint8_t>(); }
TEST_P(MeanStdDev, MatchesDefinition8s) { sweep_type<int8_t>(); }
TEST_P(MeanStdDev, MatchesDefinition16u) { sweep_type<uint16_t>(); }
TEST_P(MeanStdDev, MatchesDefinition32f) { sweep_type<float>(); }

// Byte images of 0x800000 pixels and more keep their sums in 64 bits: this
// one's sum passes 2^31, so a 32-bit sum would wrap.
TEST_P(MeanStdDev, ByteSumsPastTheWideThreshold) {
    Image<uint8_t> s(4096, 2100), m(4096, 2100);
    zst::fill_range(s, 254, 255);
    m.fill(1);
    for (int v = 0; v < 2; ++v) check_forms(v, s, m, "wide");
}

// Empty masks give zeros; constant images an exact zero deviation, never
// NaN; each output may be requested alone.
TEST_P(MeanStdDev, EmptyMaskConstantImageAndNullOutputs) {
    Image<uint8_t> none(77, 9);
    none.fill(0);
    Image<float> f(77, 9, 3), cf(1000, 120);
    Image<uint16_t> c16(77, 9);
    c16.fill(54321), cf.fill(3.0f);
    Image<int8_t> s(50, 3);
    const Result want = expected(s, nullptr, 0, false);
    for (int v = 0; v < 2; ++v) {
        double mean = 5, sd = 5;
        for (bool meanOnly : {false, true}) {
            ASSERT_EQ(call(v, meanOnly, f, &none, 2, &mean, meanOnly ? nullptr : &sd), zebStsNoErr);
            EXPECT_TRUE(mean == 0.0 && sd == 0.0) << mean << " " << sd;
        }
        ASSERT_EQ(call(v, false, c16, nullptr, 1, &mean, &sd), zebStsNoErr);
        EXPECT_TRUE(mean == 54321.0 && sd == 0.0) << mean << " " << sd;
        ASSERT_EQ(call(v, false, cf, nullptr, 1, &mean, &sd), zebStsNoErr);
        EXPECT_TRUE(mean == 3.0 && sd == 0.0) << mean << " " << sd;
        ASSERT_EQ(call(v, false, s, nullptr, 1, &mean, nullptr), 0);
        ASSERT_EQ(call(v, false, s, nullptr, 1, nullptr, &sd), 0);
        EXPECT_TRUE(mean == want.mean && sd == want.sd);
    }
}

// OpenCV's meanStdDev over all channels at once, masked and not. Integer
// sums are exact on both sides, so the results agree to double rounding;
// OpenCV sums floats in double precision while we use single-precision
// lanes, hence a relative 2e-6 for 32f.
template <class T>
void against_opencv(double lo, double hi, double relTol) {
    int v = 0;
    zst::for_opencv_images<T>(lo, hi, [&](const Image<T>& s, const Image<uint8_t>& m, const std::string& what) {
        cv::Scalar cv[4];
        cv::meanStdDev(s.mat(), cv[0], cv[1]);
        cv::meanStdDev(s.mat(), cv[2], cv[3], m.mat());
        v ^= 1;
        for (int coi = 1; coi <= s.channels(); ++coi)
            for (int masked : {0, 1}) {
                double mean = -1, sd = -1, mo = -1;
                ASSERT_EQ(call(v, false, s, masked ? &m : nullptr, coi, &mean, &sd), 0);
                const double wm = cv[2 * masked][coi - 1], ws = cv[2 * masked + 1][coi - 1];
                const double tol = relTol * (std::fabs(wm) + ws);
                EXPECT_NEAR(mean, wm, tol) << what << " coi " << coi << " masked " << masked;
                EXPECT_NEAR(sd, ws, tol) << what << " coi " << coi << " masked " << masked;
                if (masked) {
                    ASSERT_EQ(call(v, true, s, &m, coi, &mo, nullptr), 0);
                    EXPECT_EQ(mo, mean) << what;
                }
            }
    });
}

TEST_P(MeanStdDev, AgreesWithOpenCV) {
    against_opencv<uint8_t>(0, 255, 1e-12);
    against_opencv<int8_t>(-128, 127, 1e-12);
    against_opencv<uint16_t>(0, 65535, 1e-12);
    against_opencv<float>(-1000, 1000, 2e-6);
}

// 32f against sums taken in long double (two passes: the mean, then the
// squared deviations), independent of any lane order. The tolerance is the
// forward error bound of the documented single-precision lanes: the plain
// kernel chains up to n/4 + 2(w + h) additions per lane, the aligned one
// n/16 + 1, the blocked one w/16 + 1 per row; S and Q then err by at most
// (chain + 3) u sum|x| and (chain + 4) u sum x^2. The variance Q/n - mean^2
// errs by at most eQ/n + (2|mean| + eS/n) eS/n, the deviation by that over
// the true deviation (or its square root, whichever is smaller).
// Near-constant images (1000 +- 0.001, the last shapes) take the second
// pass in double precision: their deviation, about 5.8e-4, would be lost
// in single-precision sums of squares near 1e6 (errors of about 0.06), and
// comes out within 1e-8.
TEST_P(MeanStdDev, FloatAgainstLongDouble) {
    struct Shape {
        int w, h, ch, pad;
        bool masked, flat;
    };
    const Shape shapes[] = {{1920, 1080, 1, 4, false, false}, {200, 300, 1, 0, false, false},
                            {61, 80, 1, 4, false, false},     {777, 333, 3, 0, true, false},
                            {317, 211, 1, 0, true, true},     {317, 211, 1, 0, false, true}};
    for (const Shape& sh : shapes) {
        Image<float> s(sh.w, sh.h, sh.ch, sh.pad);
        zst::fill_range(s, sh.flat ? 1000.0 - 0.001 : -300, sh.flat ? 1000.0 + 0.001 : 1000);
        Image<uint8_t> m(sh.w, sh.h);
        zst::fill_mask(m, 70);
        const Image<uint8_t>* mk = sh.masked ? &m : nullptr;
        const long double n = (long double)sh.w * sh.h;
        long double chain = sh.w / 16 + 1;
        if (!sh.masked && sh.ch == 1) {
            if (n <= 5000 || sh.w < 4)
                chain = n / 4 + 2 * (sh.w + sh.h);
            else if (n < 100000 && s.step() % 16 == 0)
                chain = n / 16 + 1;
        }
        for (int v = 0; sh.flat && v < 2; ++v) check_forms(v, s, m, "near-constant");
        for (int coi = 1; coi <= sh.ch; ++coi) {
            long double cnt = 0, S = 0, A = 0, Q = 0, D = 0;
            for (int pass = 0; pass < 2; ++pass)
                for (int y = 0; y < sh.h; ++y)
                    for (int x = 0; x < sh.w; ++x) {
                        const long double e = s.at(x, y, coi - 1);
                        if (mk && !m.at(x, y)) continue;
                        if (pass == 0)
                            cnt += 1, S += e, A += std::fabs(e), Q += e * e;
                        else
                            D += (e - S / cnt) * (e - S / cnt);
                    }
            const long double mean = S / cnt;
            const long double sd = std::sqrt(D / cnt);
            const long double eS = zst::float_sum_bound(chain, 3, A), eQ = zst::float_sum_bound(chain, 4, Q);
            const long double eVar = eQ / cnt + (2 * std::fabs(mean) + eS / cnt) * eS / cnt;
            const long double eSd = sh.flat ? 1e-8L : std::min(eVar / sd, std::sqrt(eVar));
            for (int v = 0; v < 2; ++v) {
                double gm, gs;
                ASSERT_EQ(call(v, false, s, mk, coi, &gm, &gs), 0);
                const std::string what = std::to_string(sh.w) + "x" + std::to_string(sh.h) + " ch " +
                                         std::to_string(sh.ch) + " coi " + std::to_string(coi);
                EXPECT_NEAR(gm, double(mean), double(eS / cnt) + 1e-12) << what;
                EXPECT_NEAR(gs, double(sd), double(eSd) + 1e-12) << what;
            }
        }
    }
}

}  // namespace

// The float kernel choice counts pixels in 64 bits: sizes around the
// thresholds and around 2^31 and 2^32 pixels, where a 32-bit count would
// wrap to a small or negative number and pick the plain kernel.
TEST(MeanStdDevKernelChoice, CountsPixelsIn64Bits) {
    using zeb::stats::float_c1_kernel;
    using K = zeb::stats::FloatC1Kernel;
    alignas(16) static const float px[4] = {};
    const struct {
        int32_t w, h, step;
        K want;
    } cases[] = {{100, 50, 400, K::Plain},       {5001, 1, 20016, K::Aligned},   {3, 100000, 16, K::Plain},
                 {1000, 99, 4000, K::Aligned},   {1000, 100, 4000, K::Blocked},  {1000, 99, 4004, K::Blocked},
                 {65536, 32768, 262144, K::Blocked}, {65536, 32769, 262144, K::Blocked},
                 {65536, 65536, 262144, K::Blocked}, {65537, 65536, 262148, K::Blocked}};
    for (const auto& c : cases)
        EXPECT_EQ(float_c1_kernel(c.w, c.h, px, c.step), c.want) << c.w << "x" << c.h;
    // The same image with an unaligned first pixel is never aligned.
    EXPECT_EQ(float_c1_kernel(1000, 99, reinterpret_cast<const char*>(px) + 2, 4000), K::Blocked);
}
