// SPDX-License-Identifier: Apache-2.0
// Mean (masked) and mean with standard deviation (plain and masked) of one
// channel: one- or three-channel images of 8u, 8s, 16u and 32f.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "stats/mean_stddev_kernels.inl"
#include <hwy/foreach_target.h>  // IWYU pragma: keep
#include <hwy/highway.h>

#include "stats/mean_stddev_kernels.inl"

#if HWY_ONCE
#include <cmath>
#include <type_traits>

#include "core/dispatch.h"
#include "core/simd_dispatch.h"
#include "stats/stats_common.h"

namespace zeb::impl {
namespace {

using namespace zeb::stats;

// The image: first pixel, step, channel count and the channel's offset;
// mask null for the unmasked forms.
template <class T>
struct Src {
    const T* p;
    int step;
    const uint8_t* mask;
    int maskStep;
    ZebiSize roi;
    int ch;
    int c;
};

template <class T>
const uint8_t* mask_row(const Src<T>& s, int y) {
    return s.mask ? row(s.mask, s.maskStep, y) : nullptr;
}

// Count, sum and sum of squares, as doubles.
struct Totals {
    double n, S, Q;
};

// Integer sources: exact totals. Byte sums stay in 32 bits while the image
// is too small for them to wrap; each row's sum of squares is a 64-bit
// integer, the rows of masked byte images are added in double precision,
// the others in a 128-bit integer.
template <class T, bool kMask>
Totals int_totals(const Src<T>& s) {
    const bool narrow = sizeof(T) == 1 && int64_t(s.roi.width) * s.roi.height < 0x800000;
    int32_t s32 = 0;
    int64_t s64 = 0, n = 0;
    unsigned __int128 q = 0;  // 16-bit squares of four billion pixels overflow 64 bits
    double qd = 0;
    for (int y = 0; y < s.roi.height; ++y) {
        const uint8_t* m = mask_row(s, y);
        IntMoments r;
        // Three-channel rows are read in place, the channel picked by a
        // deinterleaving load.
        if (s.ch == 1)
            ZEB_DISPATCH(moments::int_run<T, kMask, 1>)(row(s.p, s.step, y), m, s.roi.width, 0, &r);
        else
            ZEB_DISPATCH(moments::int_run<T, kMask, 3>)(row(s.p, s.step, y), m, s.roi.width, s.c, &r);
        n += r.n;
        if (narrow)
            s32 += int32_t(r.s);
        else
            s64 += r.s;
        if (kMask && sizeof(T) == 1)
            qd += double(r.q);
        else
            q += r.q;
    }
    const double S = narrow ? double(s32) : double(s64);
    return {double(n), S, kMask && sizeof(T) == 1 ? qd : double(q)};
}

// Float sources, sixteen-lane kernel: the single-precision lanes go into
// the double lanes after every row (blocked) or once at the end (aligned).
template <bool kMask>
Totals float_totals(const Src<float>& s, bool foldEachRow) {
    double ds[kMomentLanes] = {}, dq[kMomentLanes] = {};
    float ls[kMomentLanes] = {}, lq[kMomentLanes] = {};
    auto fold = [&] {
        for (int j = 0; j < kMomentLanes; ++j) {
            ds[j] += double(ls[j]);
            dq[j] += double(lq[j]);
            ls[j] = lq[j] = 0.f;
        }
    };
    int64_t n = kMask ? 0 : int64_t(s.roi.width) * s.roi.height;
    for (int y = 0; y < s.roi.height; ++y) {
        const uint8_t* m = mask_row(s, y);
        if (kMask) n += ZEB_DISPATCH(moments::count_selected)(m, s.roi.width);
        for_channel<float>(row(s.p, s.step, y), nullptr, s.ch, s.c, s.roi.width,
                           [&](const float* p, const float*, int x0, int len) {
                               ZEB_DISPATCH(moments::float_run<kMask>)(p, m + (kMask ? x0 : 0), len, ls, lq);
                           });
        if (foldEachRow) fold();
    }
    if (!foldEachRow) fold();
    return {double(n), lane_total(ds, kMomentLanes), lane_total(dq, kMomentLanes)};
}

// Sum of (x - mean)^2 over the selected pixels, in double precision.
template <bool kMask>
double float_deviation(const Src<float>& s, double mean) {
    double ld[kMomentLanes] = {};
    for (int y = 0; y < s.roi.height; ++y) {
        const uint8_t* m = mask_row(s, y);
        for_channel<float>(row(s.p, s.step, y), nullptr, s.ch, s.c, s.roi.width,
                           [&](const float* p, const float*, int x0, int len) {
                               ZEB_DISPATCH(moments::deviation_run<kMask>)(p, m + (kMask ? x0 : 0), len, mean, ld);
                           });
    }
    return lane_total(ld, kMomentLanes);
}

// The unmasked one-channel float form: small images and narrow rows take
// the two-row four-lane kernel, mid-sized images with 16-byte row steps the
// aligned one, the rest the blocked one (stats::float_c1_kernel).
Totals float_c1_totals(const Src<float>& s) {
    const auto kernel = stats::float_c1_kernel(s.roi.width, s.roi.height, s.p, s.step);
    if (kernel == stats::FloatC1Kernel::Plain) {
        double S, Q;
        ZEB_DISPATCH(moments::plain_run)(s.p, s.step, s.roi.width, s.roi.height, &S, &Q);
        return {double(int64_t(s.roi.width) * s.roi.height), S, Q};
    }
    return float_totals<false>(s, kernel == stats::FloatC1Kernel::Blocked);
}

// Checks, then mean and (unless meanOnly) standard deviation; a null
// output is not written.
template <class T, bool kMask>
ZebStatus mean_stddev(const Src<T>& s, int coi, double* mean, double* sd, bool meanOnly) {
    if (any_null(s.p) || (kMask && !s.mask) || (meanOnly && !mean)) return zebStsNullPtrErr;
    if (bad_roi(s.roi)) return zebStsSizeErr;
    const int ms = s.maskStep;
    if (ZebStatus st = moment_steps<T>(s.step, kMask ? &ms : nullptr, s.roi.width, s.ch)) return st;
    if (s.ch == 3 && bad_coi(coi)) return zebStsCOIErr;
    if (!mean && !sd) return zebStsNoErr;
    Src<T> src = s;
    src.c = s.ch == 3 ? coi - 1 : 0;
    Totals t;
    if constexpr (std::is_same_v<T, float>) {
        t = (!kMask && s.ch == 1) ? float_c1_totals(src) : float_totals<kMask>(src, true);
    } else {
        t = int_totals<T, kMask>(src);
    }
    double mv, sv;
    finish_moments(t.n, t.S, t.Q, mv, sv);
    if constexpr (std::is_same_v<T, float>) {
        if (!meanOnly && t.n > 0 && needs_second_pass(mv, sv)) sv = std::sqrt(float_deviation<kMask>(src, mv) / t.n);
    }
    if (mean) *mean = mv;
    if (sd && !meanOnly) *sd = sv;
    return zebStsNoErr;
}

// The three shapes of the exports: masked mean, mean and deviation without
// and with a mask. ch is 1 or 3; coi is ignored for one channel.
template <class T>
ZebStatus mean_m(const T* p, int ps, const Zeb8u* m, int ms, ZebiSize roi, int ch, int coi, Zeb64f* mean) {
    return mean_stddev<T, true>({p, ps, m, ms, roi, ch, 0}, coi, mean, nullptr, true);
}
template <class T>
ZebStatus sd_r(const T* p, int ps, ZebiSize roi, int ch, int coi, Zeb64f* mean, Zeb64f* sd) {
    return mean_stddev<T, false>({p, ps, nullptr, 0, roi, ch, 0}, coi, mean, sd, false);
}
template <class T>
ZebStatus sd_m(const T* p, int ps, const Zeb8u* m, int ms, ZebiSize roi, int ch, int coi, Zeb64f* mean, Zeb64f* sd) {
    return mean_stddev<T, true>({p, ps, m, ms, roi, ch, 0}, coi, mean, sd, false);
}

}  // namespace

ZebStatus zebiMean_8u_C1MR(const Zeb8u* p, int ps, const Zeb8u* m, int ms, ZebiSize r, Zeb64f* mean) {
    return mean_m(p, ps, m, ms, r, 1, 1, mean);
}
ZebStatus zebiMean_8u_C3CMR(const Zeb8u* p, int ps, const Zeb8u* m, int ms, ZebiSize r, int coi, Zeb64f* mean) {
    return mean_m(p, ps, m, ms, r, 3, coi, mean);
}
ZebStatus zebiMean_StdDev_8u_C1R(const Zeb8u* p, int ps, ZebiSize r, Zeb64f* mean, Zeb64f* sd) {
    return sd_r(p, ps, r, 1, 1, mean, sd);
}
ZebStatus zebiMean_StdDev_8u_C1MR(const Zeb8u* p, int ps, const Zeb8u* m, int ms, ZebiSize r, Zeb64f* mean,
                                  Zeb64f* sd) {
    return sd_m(p, ps, m, ms, r, 1, 1, mean, sd);
}
ZebStatus zebiMean_StdDev_8u_C3CR(const Zeb8u* p, int ps, ZebiSize r, int coi, Zeb64f* mean, Zeb64f* sd) {
    return sd_r(p, ps, r, 3, coi, mean, sd);
}
ZebStatus zebiMean_StdDev_8u_C3CMR(const Zeb8u* p, int ps, const Zeb8u* m, int ms, ZebiSize r, int coi, Zeb64f* mean,
                                   Zeb64f* sd) {
    return sd_m(p, ps, m, ms, r, 3, coi, mean, sd);
}
ZebStatus zebiMean_8s_C1MR(const Zeb8s* p, int ps, const Zeb8u* m, int ms, ZebiSize r, Zeb64f* mean) {
    return mean_m(p, ps, m, ms, r, 1, 1, mean);
}
ZebStatus zebiMean_8s_C3CMR(const Zeb8s* p, int ps, const Zeb8u* m, int ms, ZebiSize r, int coi, Zeb64f* mean) {
    return mean_m(p, ps, m, ms, r, 3, coi, mean);
}
ZebStatus zebiMean_StdDev_8s_C1R(const Zeb8s* p, int ps, ZebiSize r, Zeb64f* mean, Zeb64f* sd) {
    return sd_r(p, ps, r, 1, 1, mean, sd);
}
ZebStatus zebiMean_StdDev_8s_C1MR(const Zeb8s* p, int ps, const Zeb8u* m, int ms, ZebiSize r, Zeb64f* mean,
                                  Zeb64f* sd) {
    return sd_m(p, ps, m, ms, r, 1, 1, mean, sd);
}
ZebStatus zebiMean_StdDev_8s_C3CR(const Zeb8s* p, int ps, ZebiSize r, int coi, Zeb64f* mean, Zeb64f* sd) {
    return sd_r(p, ps, r, 3, coi, mean, sd);
}
ZebStatus zebiMean_StdDev_8s_C3CMR(const Zeb8s* p, int ps, const Zeb8u* m, int ms, ZebiSize r, int coi, Zeb64f* mean,
                                   Zeb64f* sd) {
    return sd_m(p, ps, m, ms, r, 3, coi, mean, sd);
}
ZebStatus zebiMean_16u_C1MR(const Zeb16u* p, int ps, const Zeb8u* m, int ms, ZebiSize r, Zeb64f* mean) {
    return mean_m(p, ps, m, ms, r, 1, 1, mean);
}
ZebStatus zebiMean_16u_C3CMR(const Zeb16u* p, int ps, const Zeb8u* m, int ms, ZebiSize r, int coi, Zeb64f* mean) {
    return mean_m(p, ps, m, ms, r, 3, coi, mean);
}
ZebStatus zebiMean_StdDev_16u_C1R(const Zeb16u* p, int ps, ZebiSize r, Zeb64f* mean, Zeb64f* sd) {
    return sd_r(p, ps, r, 1, 1, mean, sd);
}
ZebStatus zebiMean_StdDev_16u_C1MR(const Zeb16u* p, int ps, const Zeb8u* m, int ms, ZebiSize r, Zeb64f* mean,
                                   Zeb64f* sd) {
    return sd_m(p, ps, m, ms, r, 1, 1, mean, sd);
}
ZebStatus zebiMean_StdDev_16u_C3CR(const Zeb16u* p, int ps, ZebiSize r, int coi, Zeb64f* mean, Zeb64f* sd) {
    return sd_r(p, ps, r, 3, coi, mean, sd);
}
ZebStatus zebiMean_StdDev_16u_C3CMR(const Zeb16u* p, int ps, const Zeb8u* m, int ms, ZebiSize r, int coi,
                                    Zeb64f* mean, Zeb64f* sd) {
    return sd_m(p, ps, m, ms, r, 3, coi, mean, sd);
}
ZebStatus zebiMean_32f_C1MR(const Zeb32f* p, int ps, const Zeb8u* m, int ms, ZebiSize r, Zeb64f* mean) {
    return mean_m(p, ps, m, ms, r, 1, 1, mean);
}
ZebStatus zebiMean_32f_C3CMR(const Zeb32f* p, int ps, const Zeb8u* m, int ms, ZebiSize r, int coi, Zeb64f* mean) {
    return mean_m(p, ps, m, ms, r, 3, coi, mean);
}
ZebStatus zebiMean_StdDev_32f_C1R(const Zeb32f* p, int ps, ZebiSize r, Zeb64f* mean, Zeb64f* sd) {
    return sd_r(p, ps, r, 1, 1, mean, sd);
}
ZebStatus zebiMean_StdDev_32f_C1MR(const Zeb32f* p, int ps, const Zeb8u* m, int ms, ZebiSize r, Zeb64f* mean,
                                   Zeb64f* sd) {
    return sd_m(p, ps, m, ms, r, 1, 1, mean, sd);
}
ZebStatus zebiMean_StdDev_32f_C3CR(const Zeb32f* p, int ps, ZebiSize r, int coi, Zeb64f* mean, Zeb64f* sd) {
    return sd_r(p, ps, r, 3, coi, mean, sd);
}
ZebStatus zebiMean_StdDev_32f_C3CMR(const Zeb32f* p, int ps, const Zeb8u* m, int ms, ZebiSize r, int coi,
                                    Zeb64f* mean, Zeb64f* sd) {
    return sd_m(p, ps, m, ms, r, 3, coi, mean, sd);
}

}  // namespace zeb::impl

ZEB_EXPORT(zebiMean_8u_C1MR);
ZEB_EXPORT(zebiMean_8u_C3CMR);
ZEB_EXPORT(zebiMean_StdDev_8u_C1R);
ZEB_EXPORT(zebiMean_StdDev_8u_C1MR);
ZEB_EXPORT(zebiMean_StdDev_8u_C3CR);
ZEB_EXPORT(zebiMean_StdDev_8u_C3CMR);
ZEB_EXPORT(zebiMean_8s_C1MR);
ZEB_EXPORT(zebiMean_8s_C3CMR);
ZEB_EXPORT(zebiMean_StdDev_8s_C1R);
ZEB_EXPORT(zebiMean_StdDev_8s_C1MR);
ZEB_EXPORT(zebiMean_StdDev_8s_C3CR);
ZEB_EXPORT(zebiMean_StdDev_8s_C3CMR);
ZEB_EXPORT(zebiMean_16u_C1MR);
ZEB_EXPORT(zebiMean_16u_C3CMR);
ZEB_EXPORT(zebiMean_StdDev_16u_C1R);
ZEB_EXPORT(zebiMean_StdDev_16u_C1MR);
ZEB_EXPORT(zebiMean_StdDev_16u_C3CR);
ZEB_EXPORT(zebiMean_StdDev_16u_C3CMR);
ZEB_EXPORT(zebiMean_32f_C1MR);
ZEB_EXPORT(zebiMean_32f_C3CMR);
ZEB_EXPORT(zebiMean_StdDev_32f_C1R);
ZEB_EXPORT(zebiMean_StdDev_32f_C1MR);
ZEB_EXPORT(zebiMean_StdDev_32f_C3CR);
ZEB_EXPORT(zebiMean_StdDev_32f_C3CMR);
#endif  // HWY_ONCE
