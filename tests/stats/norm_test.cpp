// SPDX-License-Identifier: Apache-2.0
// Masked norms, on every vector target and both variants: the definitions
// (exact integer totals; the documented four-lane row order of the 32f
// sums, bit for bit), the zero-denominator rule of the relative norms,
// long-double sums within the error bound of single-precision lanes, and
// OpenCV's masked norm on random images and photographs.
#include <limits>

#include "stats/stats_ref.h"
#include "stats_support.h"

namespace {

using zst::Image;
namespace ref = zeb::stats;
using ref::Fam;
using ref::Kind;

const Fam kFams[] = {Fam::Norm, Fam::Diff, Fam::Rel};
const Kind kKinds[] = {Kind::Inf, Kind::L1, Kind::L2};
constexpr double kInf = std::numeric_limits<double>::infinity();

ZT_TARGET_SUITE(Norm);

template <class T>
ZebStatus call(int v, Fam f, Kind k, const Image<T>& a, const Image<T>& b, const Image<uint8_t>& m, int coi,
               double* out) {
    static const char *const fams[] = {"zebiNorm_", "zebiNormDiff_", "zebiNormRel_"}, *const kinds[] = {"Inf", "L1",
                                                                                                        "L2"};
    return zst::run<T>(std::string(fams[int(f)]) + kinds[int(k)], v, a, f == Fam::Norm ? nullptr : &b, &m, {out}, coi);
}

double nan_bits() {
    const uint64_t bits = 0xFFF8000000000000ull;
    double nan;
    std::memcpy(&nan, &bits, 8);
    return nan;
}

struct Want {
    double value;
    ZebStatus status;
};

Want finish(Fam f, Kind k, double num, double den) {
    if (f == Fam::Rel && den == 0) return {num == 0 ? nan_bits() : kInf, zebStsDivByZero};
    const double v = f == Fam::Rel ? num / den : num;
    return {k == Kind::L2 ? std::sqrt(v) : v, zebStsNoErr};
}

// 32f definition: the documented row lanes over rows of channel c.
template <Kind K, Fam F>
Want expected_float(const cv::Mat& a, const cv::Mat& b, const Image<uint8_t>& m) {
    double t0 = 0, t1 = 0, u0 = 0, u1 = 0;
    int32_t mn = 0, md = 0;
    for (int y = 0; y < a.rows; ++y) {
        if constexpr (K == Kind::Inf) {
            ref::float_norm_max<F>(a.ptr<float>(y), b.ptr<float>(y), m.row(y), a.cols, mn, md);
        } else {
            float ln[4] = {}, ld[4] = {};
            ref::float_norm_lanes<K, F>(a.ptr<float>(y), b.ptr<float>(y), m.row(y), a.cols, ln, ld);
            ref::fold_row(ln, t0, t1);
            ref::fold_row(ld, u0, u1);
        }
    }
    if constexpr (K == Kind::Inf) return finish(F, K, double(ref::from_bits(mn)), double(ref::from_bits(md)));
    return finish(F, K, t0 + t1, u0 + u1);
}

// The definition: exact totals over the selected pixels for integers.
template <class T>
Want expected(Fam f, Kind k, const Image<T>& a, const Image<T>& b, const Image<uint8_t>& m, int c) {
    if constexpr (std::is_same_v<T, float>) {
        using E = Want (*)(const cv::Mat&, const cv::Mat&, const Image<uint8_t>&);
#define ZT_ROW(K) \
    { expected_float<K, Fam::Norm>, expected_float<K, Fam::Diff>, expected_float<K, Fam::Rel> }
        static const E table[3][3] = {ZT_ROW(Kind::Inf), ZT_ROW(Kind::L1), ZT_ROW(Kind::L2)};
#undef ZT_ROW
        return table[int(k)][int(f)](zst::channel_mat(a, c), zst::channel_mat(b, c), m);
    }
    uint64_t num = 0, den = 0;
    for (int y = 0; y < a.height(); ++y)
        for (int x = 0; x < a.width(); ++x) {
            if (!m.at(x, y)) continue;
            const int64_t va = a.at(x, y, c), vb = b.at(x, y, c);
            const uint64_t t = uint64_t(std::llabs(f == Fam::Norm ? va : va - vb)), r = uint64_t(std::llabs(vb));
            if (k == Kind::Inf)
                num = std::max(num, t), den = std::max(den, r);
            else
                num += k == Kind::L2 ? t * t : t, den += k == Kind::L2 ? r * r : r;
        }
    return finish(f, k, double(num), double(den));
}

template <class T>
void check_all(int v, const Image<T>& a, const Image<T>& b, const Image<uint8_t>& m, const std::string& what) {
    for (int coi = 1; coi <= a.channels(); ++coi)
        for (Fam f : kFams)
            for (Kind k : kKinds) {
                double got = -3;
                const ZebStatus st = call(v, f, k, a, b, m, coi, &got);
                const Want want = expected(f, k, a, b, m, coi - 1);
                ASSERT_TRUE(st == want.status && zst::same_bits(got, want.value))
                    << what << " coi " << coi << " fam " << int(f) << " kind " << int(k) << ": got " << got << " ("
                    << st << ") want " << want.value << " (" << want.status << ")";
            }
}

// Every shape; rows longer than a block of 32-bit lane sums; images of the
// extremes of the type.
template <class T>
void sweep_type() {
    zst::sweep_images<T>([](int v, Image<T>& a, Image<uint8_t>& m, const std::string& what) {
        const int pad = a.step() - a.width() * a.channels() * int(sizeof(T));
        check_all(v, a, Image<T>(a.width(), a.height(), a.channels(), pad + int(sizeof(T))), m, what);
    });
    for (int ch : {1, 3}) {
        Image<T> a(9001, 3, ch), b(9001, 3, ch, int(sizeof(T)));
        Image<uint8_t> m(9001, 3);
        zst::fill_mask(m, 95);
        for (int v = 0; v < 2; ++v) {
            check_all(v, a, b, m, "wide");
            if constexpr (!std::is_same_v<T, float>) {
                Image<T> lo(9001, 3, ch), hi(9001, 3, ch, int(sizeof(T)));
                lo.fill(std::numeric_limits<T>::min()), hi.fill(std::numeric_limits<T>::max());
                check_all(v, lo, hi, m, "extremes");
                check_all(v, hi, lo, m, "extremes swapped");
            }
        }
    }
}

TEST_P(Norm, MatchesDefinition8u) { sweep_type<uint8_t>(); }
TEST_P(Norm, MatchesDefinition8s) { sweep_type<int8_t>(); }
TEST_P(Norm, MatchesDefinition16u) { sweep_type<uint16_t>(); }
TEST_P(Norm, MatchesDefinition32f) { sweep_type<float>(); }

// Non-finite floats: NaN reaches every kind unless masked out, infinity
// the maximum. A zero denominator: NaN (bits 0xFFF8000000000000) for 0/0,
// +infinity otherwise, with the warning; empty masks give 0 for the other
// families.
TEST_P(Norm, NonFiniteValuesAndZeroDenominator) {
    for (int var = 0; var < 2; ++var) {
        Image<float> a(37, 5), b(37, 5);
        Image<uint8_t> m(37, 5);
        m.fill(1);
        for (float bad : {std::numeric_limits<float>::quiet_NaN(), std::numeric_limits<float>::infinity()}) {
            a.at(20, 3) = bad;
            for (int selected : {1, 0})
                for (Kind k : kKinds) {
                    m.at(20, 3) = uint8_t(selected);
                    double v = 0;
                    ASSERT_EQ(call(var, selected ? Fam::Norm : Fam::Diff, k, a, b, m, 1, &v), 0);
                    EXPECT_TRUE(selected ? (std::isnan(bad) ? std::isnan(v) : v == kInf) : std::isfinite(v))
                        << bad << " " << int(k) << " " << var;
                }
        }
        zst::fill_mask(m);
        b.fill(0.f);
        for (float av : {0.f, 2.5f}) {
            a.fill(av);
            for (Kind k : kKinds) {
                double v = 0;
                ASSERT_EQ(call(var, Fam::Rel, k, a, b, m, 1, &v), zebStsDivByZero);
                EXPECT_TRUE(zst::same_bits(v, av == 0 ? nan_bits() : kInf)) << int(k) << " " << v;
            }
        }
        Image<uint16_t> c(45, 6, 3), d(45, 6, 3);
        Image<uint8_t> none(45, 6);
        none.fill(0);
        for (Fam f : kFams)
            for (Kind k : kKinds) {
                double v = 7;
                ASSERT_EQ(call(var, f, k, c, d, none, 2, &v), f == Fam::Rel ? zebStsDivByZero : zebStsNoErr);
                EXPECT_TRUE(zst::same_bits(v, f == Fam::Rel ? nan_bits() : 0.0)) << v;
            }
    }
}

// OpenCV, one channel taken out with extractChannel, each image against
// itself shifted by one column (a difference of neighbours). Integer norms
// agree to double rounding (OpenCV's relative L2 divides two square roots,
// we take one root of the quotient); OpenCV sums floats in double
// precision, so 32f agrees to a relative 1e-5.
template <class T>
void against_opencv(double lo, double hi, double tol) {
    const int types[] = {cv::NORM_INF, cv::NORM_L1, cv::NORM_L2};
    int v = 0;
    zst::for_opencv_images<T>(lo, hi, [&](const Image<T>& a, const Image<uint8_t>& m, const std::string& what) {
        Image<T> b(a.width(), a.height(), a.channels(), 2 * int(sizeof(T)));
        cv::Mat sb = b.mat();
        a.mat().colRange(1, a.width()).copyTo(sb.colRange(0, a.width() - 1));
        a.mat().col(a.width() - 1).copyTo(sb.col(a.width() - 1));
        v ^= 1;
        for (int coi = 1; coi <= a.channels(); ++coi) {
            const cv::Mat ca = zst::channel_mat(a, coi - 1), cb = zst::channel_mat(b, coi - 1);
            for (int k = 0; k < 3; ++k) {
                const double want[3] = {cv::norm(ca, types[k], m.mat()), cv::norm(ca, cb, types[k], m.mat()),
                                        cv::norm(ca, cb, types[k] | cv::NORM_RELATIVE, m.mat())};
                for (int f = 0; f < 3; ++f) {
                    double got;
                    ASSERT_GE(call(v, kFams[f], kKinds[k], a, b, m, coi, &got), 0);
                    EXPECT_NEAR(got, want[f], tol * std::fabs(want[f]))
                        << what << " coi " << coi << " fam " << f << " kind " << k;
                }
            }
        }
    });
}

TEST_P(Norm, AgreesWithOpenCV) {
    against_opencv<uint8_t>(0, 255, 1e-13);
    against_opencv<int8_t>(-128, 127, 1e-13);
    against_opencv<uint16_t>(0, 65535, 1e-13);
    against_opencv<float>(-1000, 1000, 1e-5);
}

// 32f against sums taken in long double over the exact differences,
// independent of any lane order. Tolerances are the forward error bounds of
// the documented single-precision row lanes: a lane chains at most w/4 + 3
// additions, each term carries one rounding of the difference and one of
// its square (L2), the fold adds one more; the double totals add nothing
// measurable. Inf is within one rounding of the exact maximum; for the
// relative norms the relative errors of numerator and denominator add.
TEST_P(Norm, FloatSumsWithinSinglePrecisionBound) {
    for (int ch : {1, 3}) {
        const int w = ch == 1 ? 1920 : 97, h = ch == 1 ? 1080 : 501;
        Image<float> a(w, h, ch, 4), b(w, h, ch, 12);
        zst::fill_range(a, -1000, 1000);
        zst::fill_range(b, -400, 900);
        Image<uint8_t> m(w, h, 1, 3);
        zst::fill_mask(m, 80);
        for (int coi = 1; coi <= ch; ++coi) {
            // Maximum, sum of magnitudes and of squares of x, x - y and y.
            long double mx[3] = {}, l1[3] = {}, l2[3] = {}, e1[3], e2[3];
            for (int y = 0; y < h; ++y)
                for (int x = 0; x < w; ++x) {
                    const long double va = a.at(x, y, coi - 1), vb = b.at(x, y, coi - 1), t[3] = {va, va - vb, vb};
                    for (int g = 0; m.at(x, y) && g < 3; ++g)
                        mx[g] = std::max(mx[g], std::fabs(t[g])), l1[g] += std::fabs(t[g]), l2[g] += t[g] * t[g];
                }
            for (int g = 0; g < 3; ++g)
                e1[g] = zst::float_sum_bound(w / 4 + 3, 3, l1[g]) / l1[g],
                e2[g] = zst::float_sum_bound(w / 4 + 3, 4, l2[g]) / l2[g];
            for (int var = 0; var < 2; ++var)
                for (int f = 0; f < 3; ++f) {
                    const int g = f == 0 ? 0 : 1;
                    const long double want[3] = {f == 2 ? mx[1] / mx[2] : mx[g], f == 2 ? l1[1] / l1[2] : l1[g],
                                                 std::sqrt(f == 2 ? l2[1] / l2[2] : l2[g])};
                    const long double rel[3] = {(f == 2 ? 2 : 1) * zst::kUnitF, e1[g] + (f == 2 ? e1[2] : 0),
                                                (e2[g] + (f == 2 ? e2[2] : 0)) / 2};
                    for (int k = 0; k < 3; ++k) {
                        double got;
                        ASSERT_EQ(call(var, kFams[f], kKinds[k], a, b, m, coi, &got), 0);
                        EXPECT_NEAR(got, double(want[k]), double(want[k] * rel[k]) * 1.0001 + 1e-300)
                            << "ch " << ch << " coi " << coi << " variant " << var << " fam " << f << " kind " << k;
                    }
                }
        }
    }
}

}  // namespace
