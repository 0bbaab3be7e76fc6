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
    static const zst::Family fams[] = {zst::Family::Norm, zst::Family::NormDiff, zst::Family::NormRel};
    static const zst::Kind kinds[] = {zst::Kind::Inf, zst::Kind::L1, zst::Kind::L2};
    return zst::run<T>(fams[int(f)], kinds[int(k)], v, a, f == Fam::Norm ? nullptr : &b, &m, {out}, coi);
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

// Integer definition: exact totals over the selected pixels.
template <class T>
Want expected_int(Fam f, Kind k, const Image<T>& a, const Image<T>& b, const Image<uint8_t>& m, int c) {
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

// 32f definition: the documented row lanes.
template <Kind K, Fam F>
Want expected_float(const Image<float>& a, const Image<float>& b, const Image<uint8_t>& m, int c) {
    double t0 = 0, t1 = 0, u0 = 0, u1 = 0;
    int32_t mn = 0, md = 0;
    for (int y = 0; y < a.height(); ++y) {
        const std::vector<float> ra = zst::channel_row(a, y, c), rb = zst::channel_row(b, y, c);
        if constexpr (K == Kind::Inf) {
            ref::float_norm_max<F>(ra.data(), rb.data(), m.row(y), a.width(), mn, md);
        } else {
            float ln[4] = {}, ld[4] = {};
            ref::float_norm_lanes<K, F>(ra.data(), rb.data(), m.row(y), a.width(), ln, ld);
            ref::fold_row(ln, t0, t1);
            ref::fold_row(ld, u0, u1);
        }
    }
    if constexpr (K == Kind::Inf) return finish(F, K, double(ref::from_bits(mn)), double(ref::from_bits(md)));
    return finish(F, K, t0 + t1, u0 + u1);
}

template <class T>
Want expected(Fam f, Kind k, const Image<T>& a, const Image<T>& b, const Image<uint8_t>& m, int c) {
    if constexpr (std::is_same_v<T, float>) {
        using E = Want (*)(const Image<float>&, const Image<float>&, const Image<uint8_t>&, int);
#define ZT_ROW(K) \
    { expected_float<K, Fam::Norm>, expected_float<K, Fam::Diff>, expected_float<K, Fam::Rel> }
        static const E table[3][3] = {ZT_ROW(Kind::Inf), ZT_ROW(Kind::L1), ZT_ROW(Kind::L2)};
#undef ZT_ROW
        return table[int(k)][int(f)](a, b, m, c);
    } else {
        return expected_int(f, k, a, b, m, c);
    }
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

// Every shape; rows longer than a block of 32-bit lane sums and than a
// chunk of one channel; images of the extremes of the type.
template <class T>
void sweep_type() {
    zst::sweep_images<T>([](int v, Image<T>& a, Image<uint8_t>& m, const std::string& what) {
        const int pad = a.step() - a.width() * a.channels() * int(sizeof(T));
        Image<T> b(a.width(), a.height(), a.channels(), pad + int(sizeof(T)));
        check_all(v, a, b, m, what);
    });
    for (int ch : {1, 3}) {
        Image<T> a(9001, 3, ch), b(9001, 3, ch, int(sizeof(T)));
        Image<uint8_t> m(9001, 3);
        zst::fill_mask(m, 95);
        for (int v = 0; v < 2; ++v) {
            check_all(v, a, b, m, "wide");
            if constexpr (!std::is_same_v<T, float>) {
                a.fill(std::numeric_limits<T>::min());
                b.fill(std::numeric_limits<T>::max());
                check_all(v, a, b, m, "extremes");
                check_all(v, b, a, m, "extremes swapped");
                a.fill_random(), b.fill_random();
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

// OpenCV, one channel taken out with extractChannel, on random images and on
// photographs against themselves shifted by one column, under a mask cut
// from another photograph. Integer norms agree to double rounding (OpenCV's
// relative L2 divides two square roots, we take one root of the quotient);
// OpenCV sums floats in double precision, so 32f agrees to a relative 1e-5.
template <class T>
void expect_opencv(int v, const Image<T>& a, const Image<T>& b, const Image<uint8_t>& m, double tol,
                   const std::string& what) {
    const int types[] = {cv::NORM_INF, cv::NORM_L1, cv::NORM_L2};
    for (int coi = 1; coi <= a.channels(); ++coi) {
        const cv::Mat ca = zst::channel_mat(a, coi - 1), cb = zst::channel_mat(b, coi - 1);
        for (int k = 0; k < 3; ++k) {
            const double want[3] = {cv::norm(ca, types[k], m.mat()), cv::norm(ca, cb, types[k], m.mat()),
                                    cv::norm(ca, cb, types[k] | cv::NORM_RELATIVE, m.mat())};
            for (int f = 0; f < 3; ++f) {
                double got;
                ASSERT_GE(call(v, kFams[f], kKinds[k], a, b, m, coi, &got), 0);
                EXPECT_NEAR(got, want[f], tol * std::fabs(want[f]))
                    << what << " ch " << a.channels() << " coi " << coi << " fam " << f << " kind " << k;
            }
        }
    }
}

template <class T>
void against_opencv(double lo, double hi, double tol) {
    const auto& names = zst::photo_names();
    for (int ch : {1, 3}) {
        Image<T> a(640, 480, ch, 8), b(640, 480, ch, 4 * int(sizeof(T)));
        zst::fill_range(a, lo, hi);
        zst::fill_range(b, lo, hi);
        Image<uint8_t> m(640, 480, 1, 5);
        zst::fill_mask(m, 65);
        expect_opencv(0, a, b, m, tol, "random");
        for (std::size_t i = 0; i < names.size(); ++i) {
            const Image<T> p = zst::photo<T>(names[i], ch);
            Image<T> q(p.width(), p.height(), ch, 2 * int(sizeof(T)));
            p.mat()(cv::Rect(1, 0, p.width() - 1, p.height()))
                .copyTo(q.mat()(cv::Rect(0, 0, p.width() - 1, p.height())));
            p.mat().col(p.width() - 1).copyTo(q.mat().col(p.width() - 1));
            expect_opencv(1, p, q, zst::photo_mask(names[(i + 2) % names.size()], p.width(), p.height()), tol,
                          names[i]);
        }
    }
}

TEST_P(Norm, AgreesWithOpenCV) {
    against_opencv<uint8_t>(0, 255, 1e-13);
    against_opencv<int8_t>(-128, 127, 1e-13);
    against_opencv<uint16_t>(0, 65535, 1e-13);
    against_opencv<float>(-1000, 1000, 1e-5);
}

// 32f against sums taken in long double over the exact differences,
// independent of any lane order. Tolerances are the forward error bounds of
// the documented single-precision row lanes: a lane chains at most
// w/4 + 3 additions, each term carries one rounding of the difference and
// one of its square (L2), and the fold adds one more; the double totals add
// nothing measurable. Inf is the largest single-precision difference,
// within one rounding of the exact one.
TEST_P(Norm, FloatSumsWithinSinglePrecisionBound) {
    for (int ch : {1, 3})
        for (int w : {ch == 1 ? 1920 : 97}) {
            const int h = w == 97 ? 501 : 1080;
            Image<float> a(w, h, ch, 4), b(w, h, ch, 12);
            zst::fill_range(a, -1000, 1000);
            zst::fill_range(b, -400, 900);
            Image<uint8_t> m(w, h, 1, 3);
            zst::fill_mask(m, 80);
            const long double chain = w / 4 + 3;
            for (int coi = 1; coi <= ch; ++coi) {
                // [family][kind]: numerator sums (or maxima) and their magnitude sums.
                long double mx[2] = {0, 0}, l1[2] = {0, 0}, l2[2] = {0, 0}, rmx = 0, rl1 = 0, rl2 = 0;
                for (int y = 0; y < h; ++y)
                    for (int x = 0; x < w; ++x) {
                        if (!m.at(x, y)) continue;
                        const long double va = a.at(x, y, coi - 1), vb = b.at(x, y, coi - 1);
                        const long double t[2] = {va, va - vb};
                        for (int f = 0; f < 2; ++f) {
                            mx[f] = std::max(mx[f], std::fabs(t[f]));
                            l1[f] += std::fabs(t[f]);
                            l2[f] += t[f] * t[f];
                        }
                        rmx = std::max(rmx, std::fabs(vb)), rl1 += std::fabs(vb), rl2 += vb * vb;
                    }
                const long double eL1[2] = {zst::float_sum_bound(chain, 3, l1[0]),
                                            zst::float_sum_bound(chain, 3, l1[1])};
                const long double eL2[2] = {zst::float_sum_bound(chain, 4, l2[0]),
                                            zst::float_sum_bound(chain, 4, l2[1])};
                const long double eR1 = zst::float_sum_bound(chain, 3, rl1), eR2 = zst::float_sum_bound(chain, 4, rl2);
                for (int var = 0; var < 2; ++var) {
                    const std::string what = "w " + std::to_string(w) + " ch " + std::to_string(ch) + " coi " +
                                             std::to_string(coi) + " variant " + std::to_string(var);
                    for (int f = 0; f < 3; ++f) {
                        const int g = f == 0 ? 0 : 1;
                        double got[3];
                        for (int k = 0; k < 3; ++k) ASSERT_EQ(call(var, kFams[f], kKinds[k], a, b, m, coi, &got[k]), 0);
                        long double want[3] = {mx[g], l1[g], std::sqrt(l2[g])};
                        long double tol[3] = {mx[g] * zst::kUnitF, eL1[g], eL2[g] / (2 * std::sqrt(l2[g]))};
                        if (f == 2) {
                            // Relative errors of numerator and denominator add.
                            want[0] /= rmx, want[1] /= rl1, want[2] = std::sqrt(l2[1] / rl2);
                            tol[0] = want[0] * 2 * zst::kUnitF;
                            tol[1] = want[1] * (eL1[1] / l1[1] + eR1 / rl1);
                            tol[2] = want[2] * (eL2[1] / l2[1] + eR2 / rl2) / 2;
                        }
                        for (int k = 0; k < 3; ++k)
                            EXPECT_NEAR(got[k], double(want[k]), double(tol[k]) * 1.0001 + 1e-300)
                                << what << " fam " << f << " kind " << k;
                    }
                }
            }
        }
}

}  // namespace
