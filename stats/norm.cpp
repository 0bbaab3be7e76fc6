// SPDX-License-Identifier: Apache-2.0
// Masked norms of an image, of the difference of two images and of that
// difference relative to the second image (Inf, L1, L2), of one channel:
// one- or three-channel images of 8u, 8s, 16u and 32f.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "stats/norm_kernels.inl"
#include <hwy/foreach_target.h>  // IWYU pragma: keep
#include <hwy/highway.h>

#include "stats/norm_kernels.inl"

#if HWY_ONCE
#include <cmath>
#include <type_traits>

#include "core/dispatch.h"
#include "core/simd_dispatch.h"
#include "stats/stats_common.h"

namespace zeb::impl {
namespace {

using namespace zeb::stats;

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
                           ZEB_DISPATCH(norm::int_run<T, K, F>)(p, q, m + x0, len, &n, &d);
                       });
    }
    num = double(n);
    den = double(d);
}

// L1 and L2 of a float image: four rows at a time for one-channel images
// (four independent chains of additions), row by row in chunks for three.
// Each row's four lanes fold to two double totals per family side.
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
            ZEB_DISPATCH(norm::float_rows<K, F, R>)(pa, pb, pm, g.roi.width, ln, ld);
            fold(R);
        }
    }
    for (; y < g.roi.height; ++y) {
        for (int j = 0; j < 4; ++j) ln[0][j] = ld[0][j] = 0.f;
        const uint8_t* m = row(g.m, g.ms, y);
        for_channel<float>(rowp(g.a, g.as, y), rowp(g.b, g.bs, y), g.ch, g.c, g.roi.width,
                           [&](const float* p, const float* q, int x0, int len) {
                               const uint8_t* mm = m + x0;
                               ZEB_DISPATCH(norm::float_rows<K, F, 1>)(&p, &q, &mm, len, ln, ld);
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
                               ZEB_DISPATCH(norm::float_max_run<F>)(p, q, m + x0, len, &n, &d);
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

// The two shapes of the exports: one source, or two sources (difference
// and relative norms). ch is 1 or 3; coi is ignored for one channel.
template <Kind K, class T>
ZebStatus one(const T* s, int ss, const Zeb8u* m, int ms, ZebiSize r, int ch, int coi, Zeb64f* v) {
    return norm<T, K, Fam::Norm>({s, ss, nullptr, 0, m, ms, r, ch, 0}, coi, v);
}
template <Kind K, Fam F, class T>
ZebStatus two(const T* a, int as, const T* b, int bs, const Zeb8u* m, int ms, ZebiSize r, int ch, int coi,
              Zeb64f* v) {
    return norm<T, K, F>({a, as, b, bs, m, ms, r, ch, 0}, coi, v);
}

}  // namespace

ZebStatus zebiNorm_Inf_8u_C1MR(const Zeb8u* s, int ss, const Zeb8u* m, int ms, ZebiSize r, Zeb64f* v) {
    return one<Kind::Inf>(s, ss, m, ms, r, 1, 1, v);
}
ZebStatus zebiNorm_Inf_8u_C3CMR(const Zeb8u* s, int ss, const Zeb8u* m, int ms, ZebiSize r, int coi, Zeb64f* v) {
    return one<Kind::Inf>(s, ss, m, ms, r, 3, coi, v);
}
ZebStatus zebiNormDiff_Inf_8u_C1MR(const Zeb8u* a, int as, const Zeb8u* b, int bs, const Zeb8u* m, int ms, ZebiSize r,
                                   Zeb64f* v) {
    return two<Kind::Inf, Fam::Diff>(a, as, b, bs, m, ms, r, 1, 1, v);
}
ZebStatus zebiNormDiff_Inf_8u_C3CMR(const Zeb8u* a, int as, const Zeb8u* b, int bs, const Zeb8u* m, int ms,
                                    ZebiSize r, int coi, Zeb64f* v) {
    return two<Kind::Inf, Fam::Diff>(a, as, b, bs, m, ms, r, 3, coi, v);
}
ZebStatus zebiNormRel_Inf_8u_C1MR(const Zeb8u* a, int as, const Zeb8u* b, int bs, const Zeb8u* m, int ms, ZebiSize r,
                                  Zeb64f* v) {
    return two<Kind::Inf, Fam::Rel>(a, as, b, bs, m, ms, r, 1, 1, v);
}
ZebStatus zebiNormRel_Inf_8u_C3CMR(const Zeb8u* a, int as, const Zeb8u* b, int bs, const Zeb8u* m, int ms, ZebiSize r,
                                   int coi, Zeb64f* v) {
    return two<Kind::Inf, Fam::Rel>(a, as, b, bs, m, ms, r, 3, coi, v);
}
ZebStatus zebiNorm_L1_8u_C1MR(const Zeb8u* s, int ss, const Zeb8u* m, int ms, ZebiSize r, Zeb64f* v) {
    return one<Kind::L1>(s, ss, m, ms, r, 1, 1, v);
}
ZebStatus zebiNorm_L1_8u_C3CMR(const Zeb8u* s, int ss, const Zeb8u* m, int ms, ZebiSize r, int coi, Zeb64f* v) {
    return one<Kind::L1>(s, ss, m, ms, r, 3, coi, v);
}
ZebStatus zebiNormDiff_L1_8u_C1MR(const Zeb8u* a, int as, const Zeb8u* b, int bs, const Zeb8u* m, int ms, ZebiSize r,
                                  Zeb64f* v) {
    return two<Kind::L1, Fam::Diff>(a, as, b, bs, m, ms, r, 1, 1, v);
}
ZebStatus zebiNormDiff_L1_8u_C3CMR(const Zeb8u* a, int as, const Zeb8u* b, int bs, const Zeb8u* m, int ms, ZebiSize r,
                                   int coi, Zeb64f* v) {
    return two<Kind::L1, Fam::Diff>(a, as, b, bs, m, ms, r, 3, coi, v);
}
ZebStatus zebiNormRel_L1_8u_C1MR(const Zeb8u* a, int as, const Zeb8u* b, int bs, const Zeb8u* m, int ms, ZebiSize r,
                                 Zeb64f* v) {
    return two<Kind::L1, Fam::Rel>(a, as, b, bs, m, ms, r, 1, 1, v);
}
ZebStatus zebiNormRel_L1_8u_C3CMR(const Zeb8u* a, int as, const Zeb8u* b, int bs, const Zeb8u* m, int ms, ZebiSize r,
                                  int coi, Zeb64f* v) {
    return two<Kind::L1, Fam::Rel>(a, as, b, bs, m, ms, r, 3, coi, v);
}
ZebStatus zebiNorm_L2_8u_C1MR(const Zeb8u* s, int ss, const Zeb8u* m, int ms, ZebiSize r, Zeb64f* v) {
    return one<Kind::L2>(s, ss, m, ms, r, 1, 1, v);
}
ZebStatus zebiNorm_L2_8u_C3CMR(const Zeb8u* s, int ss, const Zeb8u* m, int ms, ZebiSize r, int coi, Zeb64f* v) {
    return one<Kind::L2>(s, ss, m, ms, r, 3, coi, v);
}
ZebStatus zebiNormDiff_L2_8u_C1MR(const Zeb8u* a, int as, const Zeb8u* b, int bs, const Zeb8u* m, int ms, ZebiSize r,
                                  Zeb64f* v) {
    return two<Kind::L2, Fam::Diff>(a, as, b, bs, m, ms, r, 1, 1, v);
}
ZebStatus zebiNormDiff_L2_8u_C3CMR(const Zeb8u* a, int as, const Zeb8u* b, int bs, const Zeb8u* m, int ms, ZebiSize r,
                                   int coi, Zeb64f* v) {
    return two<Kind::L2, Fam::Diff>(a, as, b, bs, m, ms, r, 3, coi, v);
}
ZebStatus zebiNormRel_L2_8u_C1MR(const Zeb8u* a, int as, const Zeb8u* b, int bs, const Zeb8u* m, int ms, ZebiSize r,
                                 Zeb64f* v) {
    return two<Kind::L2, Fam::Rel>(a, as, b, bs, m, ms, r, 1, 1, v);
}
ZebStatus zebiNormRel_L2_8u_C3CMR(const Zeb8u* a, int as, const Zeb8u* b, int bs, const Zeb8u* m, int ms, ZebiSize r,
                                  int coi, Zeb64f* v) {
    return two<Kind::L2, Fam::Rel>(a, as, b, bs, m, ms, r, 3, coi, v);
}
ZebStatus zebiNorm_Inf_8s_C1MR(const Zeb8s* s, int ss, const Zeb8u* m, int ms, ZebiSize r, Zeb64f* v) {
    return one<Kind::Inf>(s, ss, m, ms, r, 1, 1, v);
}
ZebStatus zebiNorm_Inf_8s_C3CMR(const Zeb8s* s, int ss, const Zeb8u* m, int ms, ZebiSize r, int coi, Zeb64f* v) {
    return one<Kind::Inf>(s, ss, m, ms, r, 3, coi, v);
}
ZebStatus zebiNormDiff_Inf_8s_C1MR(const Zeb8s* a, int as, const Zeb8s* b, int bs, const Zeb8u* m, int ms, ZebiSize r,
                                   Zeb64f* v) {
    return two<Kind::Inf, Fam::Diff>(a, as, b, bs, m, ms, r, 1, 1, v);
}
ZebStatus zebiNormDiff_Inf_8s_C3CMR(const Zeb8s* a, int as, const Zeb8s* b, int bs, const Zeb8u* m, int ms,
                                    ZebiSize r, int coi, Zeb64f* v) {
    return two<Kind::Inf, Fam::Diff>(a, as, b, bs, m, ms, r, 3, coi, v);
}
ZebStatus zebiNormRel_Inf_8s_C1MR(const Zeb8s* a, int as, const Zeb8s* b, int bs, const Zeb8u* m, int ms, ZebiSize r,
                                  Zeb64f* v) {
    return two<Kind::Inf, Fam::Rel>(a, as, b, bs, m, ms, r, 1, 1, v);
}
ZebStatus zebiNormRel_Inf_8s_C3CMR(const Zeb8s* a, int as, const Zeb8s* b, int bs, const Zeb8u* m, int ms, ZebiSize r,
                                   int coi, Zeb64f* v) {
    return two<Kind::Inf, Fam::Rel>(a, as, b, bs, m, ms, r, 3, coi, v);
}
ZebStatus zebiNorm_L1_8s_C1MR(const Zeb8s* s, int ss, const Zeb8u* m, int ms, ZebiSize r, Zeb64f* v) {
    return one<Kind::L1>(s, ss, m, ms, r, 1, 1, v);
}
ZebStatus zebiNorm_L1_8s_C3CMR(const Zeb8s* s, int ss, const Zeb8u* m, int ms, ZebiSize r, int coi, Zeb64f* v) {
    return one<Kind::L1>(s, ss, m, ms, r, 3, coi, v);
}
ZebStatus zebiNormDiff_L1_8s_C1MR(const Zeb8s* a, int as, const Zeb8s* b, int bs, const Zeb8u* m, int ms, ZebiSize r,
                                  Zeb64f* v) {
    return two<Kind::L1, Fam::Diff>(a, as, b, bs, m, ms, r, 1, 1, v);
}
ZebStatus zebiNormDiff_L1_8s_C3CMR(const Zeb8s* a, int as, const Zeb8s* b, int bs, const Zeb8u* m, int ms, ZebiSize r,
                                   int coi, Zeb64f* v) {
    return two<Kind::L1, Fam::Diff>(a, as, b, bs, m, ms, r, 3, coi, v);
}
ZebStatus zebiNormRel_L1_8s_C1MR(const Zeb8s* a, int as, const Zeb8s* b, int bs, const Zeb8u* m, int ms, ZebiSize r,
                                 Zeb64f* v) {
    return two<Kind::L1, Fam::Rel>(a, as, b, bs, m, ms, r, 1, 1, v);
}
ZebStatus zebiNormRel_L1_8s_C3CMR(const Zeb8s* a, int as, const Zeb8s* b, int bs, const Zeb8u* m, int ms, ZebiSize r,
                                  int coi, Zeb64f* v) {
    return two<Kind::L1, Fam::Rel>(a, as, b, bs, m, ms, r, 3, coi, v);
}
ZebStatus zebiNorm_L2_8s_C1MR(const Zeb8s* s, int ss, const Zeb8u* m, int ms, ZebiSize r, Zeb64f* v) {
    return one<Kind::L2>(s, ss, m, ms, r, 1, 1, v);
}
ZebStatus zebiNorm_L2_8s_C3CMR(const Zeb8s* s, int ss, const Zeb8u* m, int ms, ZebiSize r, int coi, Zeb64f* v) {
    return one<Kind::L2>(s, ss, m, ms, r, 3, coi, v);
}
ZebStatus zebiNormDiff_L2_8s_C1MR(const Zeb8s* a, int as, const Zeb8s* b, int bs, const Zeb8u* m, int ms, ZebiSize r,
                                  Zeb64f* v) {
    return two<Kind::L2, Fam::Diff>(a, as, b, bs, m, ms, r, 1, 1, v);
}
ZebStatus zebiNormDiff_L2_8s_C3CMR(const Zeb8s* a, int as, const Zeb8s* b, int bs, const Zeb8u* m, int ms, ZebiSize r,
                                   int coi, Zeb64f* v) {
    return two<Kind::L2, Fam::Diff>(a, as, b, bs, m, ms, r, 3, coi, v);
}
ZebStatus zebiNormRel_L2_8s_C1MR(const Zeb8s* a, int as, const Zeb8s* b, int bs, const Zeb8u* m, int ms, ZebiSize r,
                                 Zeb64f* v) {
    return two<Kind::L2, Fam::Rel>(a, as, b, bs, m, ms, r, 1, 1, v);
}
ZebStatus zebiNormRel_L2_8s_C3CMR(const Zeb8s* a, int as, const Zeb8s* b, int bs, const Zeb8u* m, int ms, ZebiSize r,
                                  int coi, Zeb64f* v) {
    return two<Kind::L2, Fam::Rel>(a, as, b, bs, m, ms, r, 3, coi, v);
}
ZebStatus zebiNorm_Inf_16u_C1MR(const Zeb16u* s, int ss, const Zeb8u* m, int ms, ZebiSize r, Zeb64f* v) {
    return one<Kind::Inf>(s, ss, m, ms, r, 1, 1, v);
}
ZebStatus zebiNorm_Inf_16u_C3CMR(const Zeb16u* s, int ss, const Zeb8u* m, int ms, ZebiSize r, int coi, Zeb64f* v) {
    return one<Kind::Inf>(s, ss, m, ms, r, 3, coi, v);
}
ZebStatus zebiNormDiff_Inf_16u_C1MR(const Zeb16u* a, int as, const Zeb16u* b, int bs, const Zeb8u* m, int ms,
                                    ZebiSize r, Zeb64f* v) {
    return two<Kind::Inf, Fam::Diff>(a, as, b, bs, m, ms, r, 1, 1, v);
}
ZebStatus zebiNormDiff_Inf_16u_C3CMR(const Zeb16u* a, int as, const Zeb16u* b, int bs, const Zeb8u* m, int ms,
                                     ZebiSize r, int coi, Zeb64f* v) {
    return two<Kind::Inf, Fam::Diff>(a, as, b, bs, m, ms, r, 3, coi, v);
}
ZebStatus zebiNormRel_Inf_16u_C1MR(const Zeb16u* a, int as, const Zeb16u* b, int bs, const Zeb8u* m, int ms,
                                   ZebiSize r, Zeb64f* v) {
    return two<Kind::Inf, Fam::Rel>(a, as, b, bs, m, ms, r, 1, 1, v);
}
ZebStatus zebiNormRel_Inf_16u_C3CMR(const Zeb16u* a, int as, const Zeb16u* b, int bs, const Zeb8u* m, int ms,
                                    ZebiSize r, int coi, Zeb64f* v) {
    return two<Kind::Inf, Fam::Rel>(a, as, b, bs, m, ms, r, 3, coi, v);
}
ZebStatus zebiNorm_L1_16u_C1MR(const Zeb16u* s, int ss, const Zeb8u* m, int ms, ZebiSize r, Zeb64f* v) {
    return one<Kind::L1>(s, ss, m, ms, r, 1, 1, v);
}
ZebStatus zebiNorm_L1_16u_C3CMR(const Zeb16u* s, int ss, const Zeb8u* m, int ms, ZebiSize r, int coi, Zeb64f* v) {
    return one<Kind::L1>(s, ss, m, ms, r, 3, coi, v);
}
ZebStatus zebiNormDiff_L1_16u_C1MR(const Zeb16u* a, int as, const Zeb16u* b, int bs, const Zeb8u* m, int ms,
                                   ZebiSize r, Zeb64f* v) {
    return two<Kind::L1, Fam::Diff>(a, as, b, bs, m, ms, r, 1, 1, v);
}
ZebStatus zebiNormDiff_L1_16u_C3CMR(const Zeb16u* a, int as, const Zeb16u* b, int bs, const Zeb8u* m, int ms,
                                    ZebiSize r, int coi, Zeb64f* v) {
    return two<Kind::L1, Fam::Diff>(a, as, b, bs, m, ms, r, 3, coi, v);
}
ZebStatus zebiNormRel_L1_16u_C1MR(const Zeb16u* a, int as, const Zeb16u* b, int bs, const Zeb8u* m, int ms,
                                  ZebiSize r, Zeb64f* v) {
    return two<Kind::L1, Fam::Rel>(a, as, b, bs, m, ms, r, 1, 1, v);
}
ZebStatus zebiNormRel_L1_16u_C3CMR(const Zeb16u* a, int as, const Zeb16u* b, int bs, const Zeb8u* m, int ms,
                                   ZebiSize r, int coi, Zeb64f* v) {
    return two<Kind::L1, Fam::Rel>(a, as, b, bs, m, ms, r, 3, coi, v);
}
ZebStatus zebiNorm_L2_16u_C1MR(const Zeb16u* s, int ss, const Zeb8u* m, int ms, ZebiSize r, Zeb64f* v) {
    return one<Kind::L2>(s, ss, m, ms, r, 1, 1, v);
}
ZebStatus zebiNorm_L2_16u_C3CMR(const Zeb16u* s, int ss, const Zeb8u* m, int ms, ZebiSize r, int coi, Zeb64f* v) {
    return one<Kind::L2>(s, ss, m, ms, r, 3, coi, v);
}
ZebStatus zebiNormDiff_L2_16u_C1MR(const Zeb16u* a, int as, const Zeb16u* b, int bs, const Zeb8u* m, int ms,
                                   ZebiSize r, Zeb64f* v) {
    return two<Kind::L2, Fam::Diff>(a, as, b, bs, m, ms, r, 1, 1, v);
}
ZebStatus zebiNormDiff_L2_16u_C3CMR(const Zeb16u* a, int as, const Zeb16u* b, int bs, const Zeb8u* m, int ms,
                                    ZebiSize r, int coi, Zeb64f* v) {
    return two<Kind::L2, Fam::Diff>(a, as, b, bs, m, ms, r, 3, coi, v);
}
ZebStatus zebiNormRel_L2_16u_C1MR(const Zeb16u* a, int as, const Zeb16u* b, int bs, const Zeb8u* m, int ms,
                                  ZebiSize r, Zeb64f* v) {
    return two<Kind::L2, Fam::Rel>(a, as, b, bs, m, ms, r, 1, 1, v);
}
ZebStatus zebiNormRel_L2_16u_C3CMR(const Zeb16u* a, int as, const Zeb16u* b, int bs, const Zeb8u* m, int ms,
                                   ZebiSize r, int coi, Zeb64f* v) {
    return two<Kind::L2, Fam::Rel>(a, as, b, bs, m, ms, r, 3, coi, v);
}
ZebStatus zebiNorm_Inf_32f_C1MR(const Zeb32f* s, int ss, const Zeb8u* m, int ms, ZebiSize r, Zeb64f* v) {
    return one<Kind::Inf>(s, ss, m, ms, r, 1, 1, v);
}
ZebStatus zebiNorm_Inf_32f_C3CMR(const Zeb32f* s, int ss, const Zeb8u* m, int ms, ZebiSize r, int coi, Zeb64f* v) {
    return one<Kind::Inf>(s, ss, m, ms, r, 3, coi, v);
}
ZebStatus zebiNormDiff_Inf_32f_C1MR(const Zeb32f* a, int as, const Zeb32f* b, int bs, const Zeb8u* m, int ms,
                                    ZebiSize r, Zeb64f* v) {
    return two<Kind::Inf, Fam::Diff>(a, as, b, bs, m, ms, r, 1, 1, v);
}
ZebStatus zebiNormDiff_Inf_32f_C3CMR(const Zeb32f* a, int as, const Zeb32f* b, int bs, const Zeb8u* m, int ms,
                                     ZebiSize r, int coi, Zeb64f* v) {
    return two<Kind::Inf, Fam::Diff>(a, as, b, bs, m, ms, r, 3, coi, v);
}
ZebStatus zebiNormRel_Inf_32f_C1MR(const Zeb32f* a, int as, const Zeb32f* b, int bs, const Zeb8u* m, int ms,
                                   ZebiSize r, Zeb64f* v) {
    return two<Kind::Inf, Fam::Rel>(a, as, b, bs, m, ms, r, 1, 1, v);
}
ZebStatus zebiNormRel_Inf_32f_C3CMR(const Zeb32f* a, int as, const Zeb32f* b, int bs, const Zeb8u* m, int ms,
                                    ZebiSize r, int coi, Zeb64f* v) {
    return two<Kind::Inf, Fam::Rel>(a, as, b, bs, m, ms, r, 3, coi, v);
}
ZebStatus zebiNorm_L1_32f_C1MR(const Zeb32f* s, int ss, const Zeb8u* m, int ms, ZebiSize r, Zeb64f* v) {
    return one<Kind::L1>(s, ss, m, ms, r, 1, 1, v);
}
ZebStatus zebiNorm_L1_32f_C3CMR(const Zeb32f* s, int ss, const Zeb8u* m, int ms, ZebiSize r, int coi, Zeb64f* v) {
    return one<Kind::L1>(s, ss, m, ms, r, 3, coi, v);
}
ZebStatus zebiNormDiff_L1_32f_C1MR(const Zeb32f* a, int as, const Zeb32f* b, int bs, const Zeb8u* m, int ms,
                                   ZebiSize r, Zeb64f* v) {
    return two<Kind::L1, Fam::Diff>(a, as, b, bs, m, ms, r, 1, 1, v);
}
ZebStatus zebiNormDiff_L1_32f_C3CMR(const Zeb32f* a, int as, const Zeb32f* b, int bs, const Zeb8u* m, int ms,
                                    ZebiSize r, int coi, Zeb64f* v) {
    return two<Kind::L1, Fam::Diff>(a, as, b, bs, m, ms, r, 3, coi, v);
}
ZebStatus zebiNormRel_L1_32f_C1MR(const Zeb32f* a, int as, const Zeb32f* b, int bs, const Zeb8u* m, int ms,
                                  ZebiSize r, Zeb64f* v) {
    return two<Kind::L1, Fam::Rel>(a, as, b, bs, m, ms, r, 1, 1, v);
}
ZebStatus zebiNormRel_L1_32f_C3CMR(const Zeb32f* a, int as, const Zeb32f* b, int bs, const Zeb8u* m, int ms,
                                   ZebiSize r, int coi, Zeb64f* v) {
    return two<Kind::L1, Fam::Rel>(a, as, b, bs, m, ms, r, 3, coi, v);
}
ZebStatus zebiNorm_L2_32f_C1MR(const Zeb32f* s, int ss, const Zeb8u* m, int ms, ZebiSize r, Zeb64f* v) {
    return one<Kind::L2>(s, ss, m, ms, r, 1, 1, v);
}
ZebStatus zebiNorm_L2_32f_C3CMR(const Zeb32f* s, int ss, const Zeb8u* m, int ms, ZebiSize r, int coi, Zeb64f* v) {
    return one<Kind::L2>(s, ss, m, ms, r, 3, coi, v);
}
ZebStatus zebiNormDiff_L2_32f_C1MR(const Zeb32f* a, int as, const Zeb32f* b, int bs, const Zeb8u* m, int ms,
                                   ZebiSize r, Zeb64f* v) {
    return two<Kind::L2, Fam::Diff>(a, as, b, bs, m, ms, r, 1, 1, v);
}
ZebStatus zebiNormDiff_L2_32f_C3CMR(const Zeb32f* a, int as, const Zeb32f* b, int bs, const Zeb8u* m, int ms,
                                    ZebiSize r, int coi, Zeb64f* v) {
    return two<Kind::L2, Fam::Diff>(a, as, b, bs, m, ms, r, 3, coi, v);
}
ZebStatus zebiNormRel_L2_32f_C1MR(const Zeb32f* a, int as, const Zeb32f* b, int bs, const Zeb8u* m, int ms,
                                  ZebiSize r, Zeb64f* v) {
    return two<Kind::L2, Fam::Rel>(a, as, b, bs, m, ms, r, 1, 1, v);
}
ZebStatus zebiNormRel_L2_32f_C3CMR(const Zeb32f* a, int as, const Zeb32f* b, int bs, const Zeb8u* m, int ms,
                                   ZebiSize r, int coi, Zeb64f* v) {
    return two<Kind::L2, Fam::Rel>(a, as, b, bs, m, ms, r, 3, coi, v);
}

}  // namespace zeb::impl

ZEB_EXPORT(zebiNorm_Inf_8u_C1MR);
ZEB_EXPORT(zebiNorm_Inf_8u_C3CMR);
ZEB_EXPORT(zebiNormDiff_Inf_8u_C1MR);
ZEB_EXPORT(zebiNormDiff_Inf_8u_C3CMR);
ZEB_EXPORT(zebiNormRel_Inf_8u_C1MR);
ZEB_EXPORT(zebiNormRel_Inf_8u_C3CMR);
ZEB_EXPORT(zebiNorm_L1_8u_C1MR);
ZEB_EXPORT(zebiNorm_L1_8u_C3CMR);
ZEB_EXPORT(zebiNormDiff_L1_8u_C1MR);
ZEB_EXPORT(zebiNormDiff_L1_8u_C3CMR);
ZEB_EXPORT(zebiNormRel_L1_8u_C1MR);
ZEB_EXPORT(zebiNormRel_L1_8u_C3CMR);
ZEB_EXPORT(zebiNorm_L2_8u_C1MR);
ZEB_EXPORT(zebiNorm_L2_8u_C3CMR);
ZEB_EXPORT(zebiNormDiff_L2_8u_C1MR);
ZEB_EXPORT(zebiNormDiff_L2_8u_C3CMR);
ZEB_EXPORT(zebiNormRel_L2_8u_C1MR);
ZEB_EXPORT(zebiNormRel_L2_8u_C3CMR);
ZEB_EXPORT(zebiNorm_Inf_8s_C1MR);
ZEB_EXPORT(zebiNorm_Inf_8s_C3CMR);
ZEB_EXPORT(zebiNormDiff_Inf_8s_C1MR);
ZEB_EXPORT(zebiNormDiff_Inf_8s_C3CMR);
ZEB_EXPORT(zebiNormRel_Inf_8s_C1MR);
ZEB_EXPORT(zebiNormRel_Inf_8s_C3CMR);
ZEB_EXPORT(zebiNorm_L1_8s_C1MR);
ZEB_EXPORT(zebiNorm_L1_8s_C3CMR);
ZEB_EXPORT(zebiNormDiff_L1_8s_C1MR);
ZEB_EXPORT(zebiNormDiff_L1_8s_C3CMR);
ZEB_EXPORT(zebiNormRel_L1_8s_C1MR);
ZEB_EXPORT(zebiNormRel_L1_8s_C3CMR);
ZEB_EXPORT(zebiNorm_L2_8s_C1MR);
ZEB_EXPORT(zebiNorm_L2_8s_C3CMR);
ZEB_EXPORT(zebiNormDiff_L2_8s_C1MR);
ZEB_EXPORT(zebiNormDiff_L2_8s_C3CMR);
ZEB_EXPORT(zebiNormRel_L2_8s_C1MR);
ZEB_EXPORT(zebiNormRel_L2_8s_C3CMR);
ZEB_EXPORT(zebiNorm_Inf_16u_C1MR);
ZEB_EXPORT(zebiNorm_Inf_16u_C3CMR);
ZEB_EXPORT(zebiNormDiff_Inf_16u_C1MR);
ZEB_EXPORT(zebiNormDiff_Inf_16u_C3CMR);
ZEB_EXPORT(zebiNormRel_Inf_16u_C1MR);
ZEB_EXPORT(zebiNormRel_Inf_16u_C3CMR);
ZEB_EXPORT(zebiNorm_L1_16u_C1MR);
ZEB_EXPORT(zebiNorm_L1_16u_C3CMR);
ZEB_EXPORT(zebiNormDiff_L1_16u_C1MR);
ZEB_EXPORT(zebiNormDiff_L1_16u_C3CMR);
ZEB_EXPORT(zebiNormRel_L1_16u_C1MR);
ZEB_EXPORT(zebiNormRel_L1_16u_C3CMR);
ZEB_EXPORT(zebiNorm_L2_16u_C1MR);
ZEB_EXPORT(zebiNorm_L2_16u_C3CMR);
ZEB_EXPORT(zebiNormDiff_L2_16u_C1MR);
ZEB_EXPORT(zebiNormDiff_L2_16u_C3CMR);
ZEB_EXPORT(zebiNormRel_L2_16u_C1MR);
ZEB_EXPORT(zebiNormRel_L2_16u_C3CMR);
ZEB_EXPORT(zebiNorm_Inf_32f_C1MR);
ZEB_EXPORT(zebiNorm_Inf_32f_C3CMR);
ZEB_EXPORT(zebiNormDiff_Inf_32f_C1MR);
ZEB_EXPORT(zebiNormDiff_Inf_32f_C3CMR);
ZEB_EXPORT(zebiNormRel_Inf_32f_C1MR);
ZEB_EXPORT(zebiNormRel_Inf_32f_C3CMR);
ZEB_EXPORT(zebiNorm_L1_32f_C1MR);
ZEB_EXPORT(zebiNorm_L1_32f_C3CMR);
ZEB_EXPORT(zebiNormDiff_L1_32f_C1MR);
ZEB_EXPORT(zebiNormDiff_L1_32f_C3CMR);
ZEB_EXPORT(zebiNormRel_L1_32f_C1MR);
ZEB_EXPORT(zebiNormRel_L1_32f_C3CMR);
ZEB_EXPORT(zebiNorm_L2_32f_C1MR);
ZEB_EXPORT(zebiNorm_L2_32f_C3CMR);
ZEB_EXPORT(zebiNormDiff_L2_32f_C1MR);
ZEB_EXPORT(zebiNormDiff_L2_32f_C3CMR);
ZEB_EXPORT(zebiNormRel_L2_32f_C1MR);
ZEB_EXPORT(zebiNormRel_L2_32f_C3CMR);
#endif  // HWY_ONCE
