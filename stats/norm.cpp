// Masked norms of an image, of the difference of two images and of that
// difference relative to the second image (Inf, L1, L2), of one channel:
// one- or three-channel images of 8u, 8s, 16u and 32f.
#include <cmath>
#include <type_traits>

#include "core/dispatch.h"
#include "core/row_driver.h"
#include "stats/stats_common.h"

namespace zeb::ZEB_VNS {
namespace {

using namespace zeb::stats;

#define ZEB_KERNELS "stats/norm_kernels.inl"
#include "core/isa_expand.h"

struct Args {
    const void* a;
    int as;
    const void* b;
    int bs;
    const uint8_t* m;
    int ms;
    ZebiSize roi;
    int ch;
    int c;
};

// Numerator and denominator totals of an integer image.
template <class T, Kind K, Fam F>
void int_totals(const Args& g, double& num, double& den) {
    uint64_t n = 0, d = 0;
    for (int y = 0; y < g.roi.height; ++y) {
        const uint8_t* m = row(g.m, g.ms, y);
        const T* rb = F == Fam::Norm ? nullptr : row(static_cast<const T*>(g.b), g.bs, y);
        for_channel<T>(row(static_cast<const T*>(g.a), g.as, y), rb, g.ch, g.c, g.roi.width,
                       [&](const T* p, const T* q, int x0, int len) {
                           if (use_avx2())
                               avx2::int_norm_run<T, K, F>(p, q, m + x0, len, n, d);
                           else
                               ssse3::int_norm_run<T, K, F>(p, q, m + x0, len, n, d);
                       });
    }
    num = double(n);
    den = double(d);
}

template <Kind K, Fam F, int R>
void rows_run(const float* const* a, const float* const* b, const uint8_t* const* m, int n, float (*num)[4],
              float (*den)[4]) {
    if (use_avx2())
        avx2::float_norm_rows<K, F, R>(a, b, m, n, num, den);
    else
        ssse3::float_norm_rows<K, F, R>(a, b, m, n, num, den);
}

// L1 and L2 of a float image: four rows at a time for one-channel images
// (four chains of additions hide the adder's latency on both kinds of
// core), row by row in chunks for three.
template <Kind K, Fam F>
void float_sums(const Args& g, double& num, double& den) {
    constexpr int R = 4;
    double t0 = 0, t1 = 0, u0 = 0, u1 = 0;
    float ln[R][4], ld[R][4];
    const float* pa[R];
    const float* pb[R];
    const uint8_t* pm[R];
    auto fold = [&](int rows) {
        for (int r = 0; r < rows; ++r) {
            fold_row(ln[r], t0, t1);
            fold_row(ld[r], u0, u1);
        }
    };
    auto rowp = [&](const void* base, int step, int y) {
        return base ? row(static_cast<const float*>(base), step, y) : nullptr;
    };
    int y = 0;
    if (g.ch == 1) {
        for (; y + R <= g.roi.height; y += R) {
            for (int r = 0; r < R; ++r) {
                pa[r] = rowp(g.a, g.as, y + r);
                pb[r] = rowp(g.b, g.bs, y + r);
                pm[r] = row(g.m, g.ms, y + r);
                for (int j = 0; j < 4; ++j) ln[r][j] = ld[r][j] = 0.f;
            }
            rows_run<K, F, R>(pa, pb, pm, g.roi.width, ln, ld);
            fold(R);
        }
    }
    for (; y < g.roi.height; ++y) {
        for (int j = 0; j < 4; ++j) ln[0][j] = ld[0][j] = 0.f;
        const uint8_t* m = row(g.m, g.ms, y);
        for_channel<float>(rowp(g.a, g.as, y), rowp(g.b, g.bs, y), g.ch, g.c, g.roi.width,
                           [&](const float* p, const float* q, int x0, int len) {
                               const uint8_t* mm = m + x0;
                               rows_run<K, F, 1>(&p, &q, &mm, len, ln, ld);
                           });
        fold(1);
    }
    num = t0 + t1;
    den = u0 + u1;
}

// Inf of a float image.
template <Fam F>
void float_max(const Args& g, double& num, double& den) {
    int32_t n = 0, d = 0;
    for (int y = 0; y < g.roi.height; ++y) {
        const uint8_t* m = row(g.m, g.ms, y);
        const float* rb = F == Fam::Norm ? nullptr : row(static_cast<const float*>(g.b), g.bs, y);
        for_channel<float>(row(static_cast<const float*>(g.a), g.as, y), rb, g.ch, g.c, g.roi.width,
                           [&](const float* p, const float* q, int x0, int len) {
                               if (use_avx2())
                                   avx2::float_max_run<F>(p, q, m + x0, len, n, d);
                               else
                                   ssse3::float_max_run<F>(p, q, m + x0, len, n, d);
                           });
    }
    num = double(from_bits(n));
    den = double(from_bits(d));
}

template <class T, Kind K, Fam F>
ZebStatus norm(const Args& g, int coi, Zeb64f* value) {
    if (any_null(g.a, g.m, value) || (F != Fam::Norm && !g.b)) return zebStsNullPtrErr;
    if (bad_roi(g.roi)) return zebStsSizeErr;
    const int bs = g.bs;
    if (ZebStatus s = norm_steps<T>(g.as, F == Fam::Norm ? nullptr : &bs, g.ms, g.roi.width, g.ch)) return s;
    if (g.ch == 3 && bad_coi(coi)) return zebStsCOIErr;
    Args a = g;
    a.c = g.ch == 3 ? coi - 1 : 0;
    double num = 0, den = 0;
    if constexpr (!std::is_same_v<T, float>)
        int_totals<T, K, F>(a, num, den);
    else if constexpr (K == Kind::Inf)
        float_max<F>(a, num, den);
    else
        float_sums<K, F>(a, num, den);
    if constexpr (F == Fam::Rel) {
        return relative(num, den, K == Kind::L2, *value);
    } else {
        *value = K == Kind::L2 ? std::sqrt(num) : num;
        return zebStsNoErr;
    }
}

}  // namespace

#define ZEB_NORM_ONE(kind, T, c)                                                                                  \
    ZebStatus zebiNorm_##kind##_##c##_C1MR(const T* p, int ps, const Zeb8u* m, int ms, ZebiSize roi, Zeb64f* v) { \
        return norm<T, Kind::kind, Fam::Norm>({p, ps, nullptr, 0, m, ms, roi, 1, 0}, 1, v);                       \
    }                                                                                                             \
    ZebStatus zebiNorm_##kind##_##c##_C3CMR(const T* p, int ps, const Zeb8u* m, int ms, ZebiSize roi, int coi,   \
                                            Zeb64f* v) {                                                          \
        return norm<T, Kind::kind, Fam::Norm>({p, ps, nullptr, 0, m, ms, roi, 3, 0}, coi, v);                     \
    }
#define ZEB_NORM_TWO(fam, F, kind, T, c)                                                                          \
    ZebStatus zebi##fam##_##kind##_##c##_C1MR(const T* p, int ps, const T* q, int qs, const Zeb8u* m, int ms,    \
                                              ZebiSize roi, Zeb64f* v) {                                          \
        return norm<T, Kind::kind, Fam::F>({p, ps, q, qs, m, ms, roi, 1, 0}, 1, v);                               \
    }                                                                                                             \
    ZebStatus zebi##fam##_##kind##_##c##_C3CMR(const T* p, int ps, const T* q, int qs, const Zeb8u* m, int ms,   \
                                               ZebiSize roi, int coi, Zeb64f* v) {                                \
        return norm<T, Kind::kind, Fam::F>({p, ps, q, qs, m, ms, roi, 3, 0}, coi, v);                             \
    }
#define ZEB_NORM_KIND(kind, T, c)      \
    ZEB_NORM_ONE(kind, T, c)           \
    ZEB_NORM_TWO(NormDiff, Diff, kind, T, c) \
    ZEB_NORM_TWO(NormRel, Rel, kind, T, c)
#define ZEB_NORM_TYPE(T, c)   \
    ZEB_NORM_KIND(Inf, T, c)  \
    ZEB_NORM_KIND(L1, T, c)   \
    ZEB_NORM_KIND(L2, T, c)

ZEB_NORM_TYPE(Zeb8u, 8u)
ZEB_NORM_TYPE(Zeb8s, 8s)
ZEB_NORM_TYPE(Zeb16u, 16u)
ZEB_NORM_TYPE(Zeb32f, 32f)

}  // namespace zeb::ZEB_VNS

#define ZEB_NORM_EXPORTS_KIND(kind, c)         \
    ZEB_EXPORT(zebiNorm_##kind##_##c##_C1MR);     \
    ZEB_EXPORT(zebiNorm_##kind##_##c##_C3CMR);    \
    ZEB_EXPORT(zebiNormDiff_##kind##_##c##_C1MR); \
    ZEB_EXPORT(zebiNormDiff_##kind##_##c##_C3CMR); \
    ZEB_EXPORT(zebiNormRel_##kind##_##c##_C1MR);  \
    ZEB_EXPORT(zebiNormRel_##kind##_##c##_C3CMR)
#define ZEB_NORM_EXPORTS(c)            \
    ZEB_NORM_EXPORTS_KIND(Inf, c);     \
    ZEB_NORM_EXPORTS_KIND(L1, c);      \
    ZEB_NORM_EXPORTS_KIND(L2, c)

ZEB_NORM_EXPORTS(8u);
ZEB_NORM_EXPORTS(8s);
ZEB_NORM_EXPORTS(16u);
ZEB_NORM_EXPORTS(32f);
