// Masked norms: every variant and instruction-set path against the
// definitions (exact integer totals; the documented four-lane row order of
// the 32f sums, bit for bit), the zero-denominator rule of the relative
// norms, and OpenCV's norm with masks as the independent oracle.
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

template <class T>
ZebStatus call(int v, Fam f, Kind k, const Image<T>& a, const Image<T>& b, const Image<uint8_t>& m, int coi,
               double* out) {
    static const char* fams[] = {"zebiNorm_", "zebiNormDiff_", "zebiNormRel_"};
    static const char* kinds[] = {"Inf_", "L1_", "L2_"};
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

// Integer definition: exact totals over the selected pixels.
template <class T>
Want expected_int(Fam f, Kind k, const Image<T>& a, const Image<T>& b, const Image<uint8_t>& m, int c) {
    uint64_t num = 0, den = 0;
    for (int y = 0; y < a.height(); ++y)
        for (int x = 0; x < a.width(); ++x) {
            if (!m.at(x, y)) continue;
            const int64_t va = a.at(x, y, c), vb = b.at(x, y, c);
            const uint64_t t = uint64_t(std::llabs(f == Fam::Norm ? va : va - vb)), r = uint64_t(std::llabs(vb));
            if (k == Kind::Inf) num = std::max(num, t), den = std::max(den, r);
            else num += k == Kind::L2 ? t * t : t, den += k == Kind::L2 ? r * r : r;
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
#define ZT_ROW(K) {expected_float<K, Fam::Norm>, expected_float<K, Fam::Diff>, expected_float<K, Fam::Rel>}
        static const E table[3][3] = {ZT_ROW(Kind::Inf), ZT_ROW(Kind::L1), ZT_ROW(Kind::L2)};
#undef ZT_ROW
        return table[int(k)][int(f)](a, b, m, c);
    } else {
        return expected_int(f, k, a, b, m, c);
    }
}

template <class T>
void check_all(const zt::Path& p, const Image<T>& a, const Image<T>& b, const Image<uint8_t>& m,
               const std::string& what) {
    for (int coi = 1; coi <= a.channels(); ++coi)
        for (Fam f : kFams)
            for (Kind k : kKinds) {
                double got = -3;
                const ZebStatus st = call(p.variant, f, k, a, b, m, coi, &got);
                const Want want = expected(f, k, a, b, m, coi - 1);
                ASSERT_TRUE(st == want.status && zst::same_bits(got, want.value))
                    << p.name() << " " << what << " coi " << coi << " fam " << int(f) << " kind " << int(k)
                    << ": got " << got << " (" << st << ") want " << want.value << " (" << want.status << ")";
            }
}

// Every shape; rows longer than a block of 32-bit lane sums and than a
// chunk of copied channel values; images of the extremes of the type.
template <class T>
void sweep_type() {
    zst::sweep_images<T>([](const zt::Path& p, Image<T>& a, Image<uint8_t>& m, const std::string& what) {
        const int pad = a.step() - a.width() * a.channels() * int(sizeof(T));
        Image<T> b(a.width(), a.height(), a.channels(), pad + int(sizeof(T)));
        check_all(p, a, b, m, what);
    });
    zst::each_path([](const zt::Path& p) {
        for (int ch : {1, 3}) {
            Image<T> a(9001, 3, ch), b(9001, 3, ch, int(sizeof(T)));
            Image<uint8_t> m(9001, 3);
            zst::fill_mask(m, 95);
            check_all(p, a, b, m, "wide");
            if constexpr (!std::is_same_v<T, float>) {
                a.fill(std::numeric_limits<T>::min());
                b.fill(std::numeric_limits<T>::max());
                check_all(p, a, b, m, "extremes");
                check_all(p, b, a, m, "extremes swapped");
            }
        }
    });
}

TEST(Norm, AllPathsMatchDefinition8u) { sweep_type<uint8_t>(); }
TEST(Norm, AllPathsMatchDefinition8s) { sweep_type<int8_t>(); }
TEST(Norm, AllPathsMatchDefinition16u) { sweep_type<uint16_t>(); }
TEST(Norm, AllPathsMatchDefinition32f) { sweep_type<float>(); }

// Non-finite floats: NaN reaches every kind unless masked out, infinity
// the maximum. A zero denominator: NaN (bits 0xFFF8000000000000) for 0/0,
// +infinity otherwise, with the warning; empty masks give 0 for the other
// families.
TEST(Norm, NonFiniteValuesAndZeroDenominator) {
    zst::each_path([](const zt::Path& p) {
        Image<float> a(37, 5), b(37, 5);
        Image<uint8_t> m(37, 5);
        m.fill(1);
        for (float bad : {std::numeric_limits<float>::quiet_NaN(), std::numeric_limits<float>::infinity()}) {
            a.at(20, 3) = bad;
            for (int selected : {1, 0})
                for (Kind k : kKinds) {
                    m.at(20, 3) = uint8_t(selected);
                    double v = 0;
                    ASSERT_EQ(call(p.variant, selected ? Fam::Norm : Fam::Diff, k, a, b, m, 1, &v), 0);
                    EXPECT_TRUE(selected ? (std::isnan(bad) ? std::isnan(v) : v == kInf) : std::isfinite(v))
                        << bad << " " << int(k) << " " << p.name();
                }
        }
        zst::fill_mask(m);
        b.fill(0.f);
        for (float av : {0.f, 2.5f}) {
            a.fill(av);
            for (Kind k : kKinds) {
                double v = 0;
                ASSERT_EQ(call(p.variant, Fam::Rel, k, a, b, m, 1, &v), zebStsDivByZero);
                EXPECT_TRUE(zst::same_bits(v, av == 0 ? nan_bits() : kInf)) << int(k) << " " << v;
            }
        }
        Image<uint16_t> c(45, 6, 3), d(45, 6, 3);
        Image<uint8_t> none(45, 6);
        none.fill(0);
        for (Fam f : kFams)
            for (Kind k : kKinds) {
                double v = 7;
                ASSERT_EQ(call(p.variant, f, k, c, d, none, 2, &v), f == Fam::Rel ? zebStsDivByZero : zebStsNoErr);
                EXPECT_TRUE(zst::same_bits(v, f == Fam::Rel ? nan_bits() : 0.0)) << v;
            }
    });
}

// OpenCV on full-size images, one channel taken out with extractChannel.
// Integer norms agree to double rounding (OpenCV's relative L2 divides two
// square roots, we take one root of the quotient); OpenCV sums floats in
// double precision, so 32f sums agree to a relative 1e-5.
template <class T>
void against_opencv(double lo, double hi, double tol) {
    const int types[] = {cv::NORM_INF, cv::NORM_L1, cv::NORM_L2};
    for (int ch : {1, 3}) {
        Image<T> a(1920, 1080, ch, 8), b(1920, 1080, ch, 4 * int(sizeof(T)));
        zst::fill_range(a, lo, hi);
        zst::fill_range(b, lo, hi);
        Image<uint8_t> m(1920, 1080, 1, 5);
        zst::fill_mask(m, 65);
        for (int coi = 1; coi <= ch; ++coi) {
            const cv::Mat ca = zst::channel_mat(a, coi - 1), cb = zst::channel_mat(b, coi - 1);
            for (int k = 0; k < 3; ++k) {
                const double want[3] = {cv::norm(ca, types[k], m.mat()), cv::norm(ca, cb, types[k], m.mat()),
                                        cv::norm(ca, cb, types[k] | cv::NORM_RELATIVE, m.mat())};
                for (int f = 0; f < 3; ++f) {
                    double got;
                    ASSERT_GE(call(zeb_cpu_variant, kFams[f], kKinds[k], a, b, m, coi, &got), 0);
                    EXPECT_NEAR(got, want[f], tol * std::fabs(want[f]))
                        << "ch " << ch << " coi " << coi << " fam " << f << " kind " << k;
                }
            }
        }
    }
}

TEST(Norm, AgreesWithOpenCV) {
    against_opencv<uint8_t>(0, 255, 1e-13);
    against_opencv<int8_t>(-128, 127, 1e-13);
    against_opencv<uint16_t>(0, 65535, 1e-13);
    against_opencv<float>(-1000, 1000, 1e-5);
}

}  // namespace
