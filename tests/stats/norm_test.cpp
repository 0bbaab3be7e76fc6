// Masked norms: every variant and instruction-set path against the
// definitions (exact integer totals; the documented four-lane row order of
// the 32f sums, bit for bit), the zero-denominator rule of the relative
// norms, and OpenCV's norm with masks as the independent oracle.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <opencv2/core.hpp>

#include "harness.h"
#include "stats/stats_ref.h"
#include "stats_test_util.h"

#define ZT_NORM_TABLES_KIND(k, c)                   \
    ZEB_TEST_TABLE(zebiNorm_##k##_##c##_C1MR);      \
    ZEB_TEST_TABLE(zebiNorm_##k##_##c##_C3CMR);     \
    ZEB_TEST_TABLE(zebiNormDiff_##k##_##c##_C1MR);  \
    ZEB_TEST_TABLE(zebiNormDiff_##k##_##c##_C3CMR); \
    ZEB_TEST_TABLE(zebiNormRel_##k##_##c##_C1MR);   \
    ZEB_TEST_TABLE(zebiNormRel_##k##_##c##_C3CMR)
#define ZT_NORM_TABLES(c)         \
    ZT_NORM_TABLES_KIND(Inf, c);  \
    ZT_NORM_TABLES_KIND(L1, c);   \
    ZT_NORM_TABLES_KIND(L2, c)
ZT_NORM_TABLES(8u);
ZT_NORM_TABLES(8s);
ZT_NORM_TABLES(16u);
ZT_NORM_TABLES(32f);

namespace {

using zst::Image;
namespace ref = zeb::stats;
using ref::Fam;
using ref::Kind;

// One call of any member: family, kind, type and layout chosen at run
// time.
template <class T>
struct Fns;
#define ZT_FAM_CALL(fam, k, c)                                                                                       \
    if (three)                                                                                                       \
        return zeb_tbl_zebi##fam##_##k##_##c##_C3CMR[v](a.ptr(), a.step(), b.ptr(), b.step(), m.ptr(), m.step(),    \
                                                        a.size(), coi, out);                                         \
    return zeb_tbl_zebi##fam##_##k##_##c##_C1MR[v](a.ptr(), a.step(), b.ptr(), b.step(), m.ptr(), m.step(),         \
                                                   a.size(), out);
#define ZT_KIND_CALL(k, c)                                                                                           \
    if (f == Fam::Norm) {                                                                                            \
        if (three)                                                                                                   \
            return zeb_tbl_zebiNorm_##k##_##c##_C3CMR[v](a.ptr(), a.step(), m.ptr(), m.step(), a.size(), coi, out);  \
        return zeb_tbl_zebiNorm_##k##_##c##_C1MR[v](a.ptr(), a.step(), m.ptr(), m.step(), a.size(), out);            \
    }                                                                                                                \
    if (f == Fam::Diff) {                                                                                            \
        ZT_FAM_CALL(NormDiff, k, c)                                                                                  \
    }                                                                                                                \
    ZT_FAM_CALL(NormRel, k, c)
#define ZT_FNS(T, c)                                                                                                 \
    template <>                                                                                                      \
    struct Fns<T> {                                                                                                  \
        static ZebStatus call(int v, Fam f, Kind k, const Image<T>& a, const Image<T>& b, const Image<uint8_t>& m,  \
                              int coi, double* out) {                                                                \
            const bool three = a.channels() == 3;                                                                    \
            if (k == Kind::Inf) {                                                                                    \
                ZT_KIND_CALL(Inf, c)                                                                                 \
            }                                                                                                        \
            if (k == Kind::L1) {                                                                                     \
                ZT_KIND_CALL(L1, c)                                                                                  \
            }                                                                                                        \
            ZT_KIND_CALL(L2, c)                                                                                      \
        }                                                                                                            \
    };
ZT_FNS(uint8_t, 8u)
ZT_FNS(int8_t, 8s)
ZT_FNS(uint16_t, 16u)
ZT_FNS(float, 32f)

struct Want {
    double value;
    ZebStatus status;
};

Want finish(Fam f, Kind k, double num, double den) {
    if (f == Fam::Rel) {
        if (den == 0) {
            if (num == 0) {
                const uint64_t bits = 0xFFF8000000000000ull;
                double nan;
                std::memcpy(&nan, &bits, 8);
                return {nan, zebStsDivByZero};
            }
            return {std::numeric_limits<double>::infinity(), zebStsDivByZero};
        }
        return {k == Kind::L2 ? std::sqrt(num / den) : num / den, zebStsNoErr};
    }
    return {k == Kind::L2 ? std::sqrt(num) : num, zebStsNoErr};
}

// Integer definition: exact totals over the selected pixels.
template <class T>
Want expected_int(Fam f, Kind k, const Image<T>& a, const Image<T>& b, const Image<uint8_t>& m, int c) {
    uint64_t num = 0, den = 0;
    for (int y = 0; y < a.height(); ++y)
        for (int x = 0; x < a.width(); ++x) {
            if (!m.at(x, y)) continue;
            const int64_t va = a.at(x, y, c), vb = b.at(x, y, c);
            const uint64_t t = uint64_t(std::llabs(f == Fam::Norm ? va : va - vb));
            const uint64_t r = uint64_t(std::llabs(vb));
            if (k == Kind::Inf) {
                num = std::max(num, t);
                den = std::max(den, r);
            } else {
                num += k == Kind::L2 ? t * t : t;
                den += k == Kind::L2 ? r * r : r;
            }
        }
    return finish(f, k, double(num), double(den));
}

// 32f definition: the documented row lanes.
template <Kind K, Fam F>
Want expected_float_k(const Image<float>& a, const Image<float>& b, const Image<uint8_t>& m, int c) {
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

template <Kind K>
Want expected_float_f(Fam f, const Image<float>& a, const Image<float>& b, const Image<uint8_t>& m, int c) {
    if (f == Fam::Norm) return expected_float_k<K, Fam::Norm>(a, b, m, c);
    if (f == Fam::Diff) return expected_float_k<K, Fam::Diff>(a, b, m, c);
    return expected_float_k<K, Fam::Rel>(a, b, m, c);
}

template <class T>
Want expected(Fam f, Kind k, const Image<T>& a, const Image<T>& b, const Image<uint8_t>& m, int c) {
    if constexpr (std::is_same_v<T, float>) {
        if (k == Kind::Inf) return expected_float_f<Kind::Inf>(f, a, b, m, c);
        if (k == Kind::L1) return expected_float_f<Kind::L1>(f, a, b, m, c);
        return expected_float_f<Kind::L2>(f, a, b, m, c);
    } else {
        return expected_int(f, k, a, b, m, c);
    }
}

const Fam kFams[] = {Fam::Norm, Fam::Diff, Fam::Rel};
const Kind kKinds[] = {Kind::Inf, Kind::L1, Kind::L2};

template <class T>
void check_all(const zt::Path& p, const Image<T>& a, const Image<T>& b, const Image<uint8_t>& m,
               const std::string& what) {
    for (int coi = 1; coi <= a.channels(); ++coi)
        for (Fam f : kFams)
            for (Kind k : kKinds) {
                double got = -3;
                const ZebStatus st = Fns<T>::call(p.variant, f, k, a, b, m, coi, &got);
                const Want want = expected(f, k, a, b, m, coi - 1);
                ASSERT_EQ(st, want.status) << p.name() << " " << what;
                ASSERT_TRUE(zst::same_bits(got, want.value))
                    << p.name() << " " << what << " coi " << coi << " fam " << int(f) << " kind " << int(k)
                    << ": got " << got << " want " << want.value;
            }
}

template <class T>
void sweep_type() {
    zst::sweep(sizeof(T), [&](const zt::Path& p, int w, int pad) {
        for (int ch : {1, 3})
            for (int h : {1, 2, 7}) {
                Image<T> a(w, h, ch, pad), b(w, h, ch, pad + int(sizeof(T)));
                Image<uint8_t> m(w, h, 1, pad % 3);
                zst::fill_mask(m);
                check_all(p, a, b, m,
                          "w=" + std::to_string(w) + " h=" + std::to_string(h) + " ch=" + std::to_string(ch));
            }
    });
    // Rows longer than a block of 32-bit lane sums and than a chunk of
    // copied channel values; images of the extremes of the type.
    for (const zt::Path& p : zt::all_paths()) {
        zt::IsaScope isa(p.isa);
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
    }
}

TEST(Norm, AllPathsMatchDefinition8u) { sweep_type<uint8_t>(); }
TEST(Norm, AllPathsMatchDefinition8s) { sweep_type<int8_t>(); }
TEST(Norm, AllPathsMatchDefinition16u) { sweep_type<uint16_t>(); }
TEST(Norm, AllPathsMatchDefinition32f) { sweep_type<float>(); }

// Non-finite floats: NaN reaches every kind, infinities the sums.
TEST(Norm, FloatNonFiniteValuesPropagate) {
    for (const zt::Path& p : zt::all_paths()) {
        zt::IsaScope isa(p.isa);
        Image<float> a(37, 5), b(37, 5);
        Image<uint8_t> m(37, 5);
        m.fill(1);
        a.at(20, 3) = std::numeric_limits<float>::quiet_NaN();
        for (Kind k : kKinds) {
            double v = 0;
            ASSERT_EQ(Fns<float>::call(p.variant, Fam::Norm, k, a, b, m, 1, &v), 0);
            EXPECT_TRUE(std::isnan(v)) << int(k) << " " << p.name();
        }
        // A masked-out NaN does not count.
        m.at(20, 3) = 0;
        for (Kind k : kKinds) {
            double v = 0;
            ASSERT_EQ(Fns<float>::call(p.variant, Fam::Diff, k, a, b, m, 1, &v), 0);
            EXPECT_TRUE(std::isfinite(v)) << int(k) << " " << p.name();
        }
        a.at(20, 3) = std::numeric_limits<float>::infinity();
        m.at(20, 3) = 1;
        double v = 0;
        ASSERT_EQ(Fns<float>::call(p.variant, Fam::Norm, Kind::Inf, a, b, m, 1, &v), 0);
        EXPECT_EQ(v, std::numeric_limits<double>::infinity());
    }
}

// A zero denominator: NaN (bits 0xFFF8000000000000) for 0/0, +infinity
// otherwise, with the warning; empty masks give 0 for the other families.
TEST(Norm, RelativeZeroDenominator) {
    double nan;
    const uint64_t bits = 0xFFF8000000000000ull;
    std::memcpy(&nan, &bits, 8);
    for (const zt::Path& p : zt::all_paths()) {
        zt::IsaScope isa(p.isa);
        Image<float> a(45, 6), b(45, 6);
        Image<uint8_t> m(45, 6);
        zst::fill_mask(m);
        b.fill(0.f);
        a.fill(0.f);
        for (Kind k : kKinds) {
            double v = 0;
            ASSERT_EQ(Fns<float>::call(p.variant, Fam::Rel, k, a, b, m, 1, &v), zebStsDivByZero);
            EXPECT_TRUE(zst::same_bits(v, nan)) << int(k);
        }
        a.fill(2.5f);
        for (Kind k : kKinds) {
            double v = 0;
            ASSERT_EQ(Fns<float>::call(p.variant, Fam::Rel, k, a, b, m, 1, &v), zebStsDivByZero);
            EXPECT_EQ(v, std::numeric_limits<double>::infinity()) << int(k);
        }
        Image<uint16_t> c(45, 6, 3), d(45, 6, 3);
        m.fill(0);
        for (Kind k : kKinds) {
            double v = 7;
            ASSERT_EQ(Fns<uint16_t>::call(p.variant, Fam::Rel, k, c, d, m, 2, &v), zebStsDivByZero);
            EXPECT_TRUE(zst::same_bits(v, nan));
            v = 7;
            ASSERT_EQ(Fns<uint16_t>::call(p.variant, Fam::Norm, k, c, d, m, 2, &v), zebStsNoErr);
            EXPECT_EQ(v, 0.0);
            v = 7;
            ASSERT_EQ(Fns<uint16_t>::call(p.variant, Fam::Diff, k, c, d, m, 2, &v), zebStsNoErr);
            EXPECT_EQ(v, 0.0);
        }
    }
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
                    ASSERT_GE(Fns<T>::call(zeb_cpu_variant, kFams[f], kKinds[k], a, b, m, coi, &got), 0);
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
