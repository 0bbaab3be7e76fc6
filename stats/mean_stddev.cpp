// Mean (masked) and mean with standard deviation (plain and masked) of one
// channel: one- or three-channel images of 8u, 8s, 16u and 32f.
#include <algorithm>
#include <cmath>
#include <type_traits>

#include "core/dispatch.h"
#include "core/row_driver.h"
#include "stats/stats_common.h"

namespace zeb::ZEB_VNS {
namespace {

using namespace zeb::stats;

#define ZEB_KERNELS "stats/mean_stddev_kernels.inl"
#include "core/isa_expand.h"

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

template <class T, bool kMask>
void int_run(const T* p, const uint8_t* m, int n, IntMoments& r) {
    if (use_avx2())
        avx2::int_moments_run<T, kMask>(p, m, n, r);
    else
        ssse3::int_moments_run<T, kMask>(p, m, n, r);
}

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
        for_channel<T>(row(s.p, s.step, y), nullptr, s.ch, s.c, s.roi.width,
                       [&](const T* p, const T*, int x0, int len) { int_run<T, kMask>(p, m + (kMask ? x0 : 0), len, r); });
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

template <bool kMask>
void float_run(const float* p, const uint8_t* m, int n, float* ls, float* lq) {
    if (use_avx2())
        avx2::float_moments_run<kMask>(p, m, n, ls, lq);
    else
        ssse3::float_moments_run<kMask>(p, m, n, ls, lq);
}

int64_t selected_in(const uint8_t* m, int n) {
    return use_avx2() ? avx2::count_selected(m, n) : ssse3::count_selected(m, n);
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
        if (kMask) n += selected_in(m, s.roi.width);
        for_channel<float>(row(s.p, s.step, y), nullptr, s.ch, s.c, s.roi.width,
                           [&](const float* p, const float*, int x0, int len) {
                               float_run<kMask>(p, m + (kMask ? x0 : 0), len, ls, lq);
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
                               const uint8_t* mm = m + (kMask ? x0 : 0);
                               if (use_avx2())
                                   avx2::deviation_run<kMask>(p, mm, len, mean, ld);
                               else
                                   ssse3::deviation_run<kMask>(p, mm, len, mean, ld);
                           });
    }
    return lane_total(ld, kMomentLanes);
}

// Kernel choice of the unmasked one-channel float form: small images and
// narrow rows take the two-row four-lane kernel, mid-sized images with
// 16-byte row steps the aligned one, the rest the blocked one.
Totals float_c1_totals(const Src<float>& s) {
    const int32_t n = int32_t(uint32_t(s.roi.width) * uint32_t(s.roi.height));
    if (n <= 5000 || s.roi.width < 4) {
        double S, Q;
        plain_moments(s.p, s.step, s.roi.width, s.roi.height, S, Q);
        return {double(int64_t(s.roi.width) * s.roi.height), S, Q};
    }
    const bool aligned = n < 100000 && reinterpret_cast<uintptr_t>(s.p) % 4 == 0 && s.step % 16 == 0;
    return float_totals<false>(s, !aligned);
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

template <class T>
Src<T> plain(const T* p, int ss, ZebiSize roi, int ch) {
    return {p, ss, nullptr, 0, roi, ch, 0};
}
template <class T>
Src<T> masked(const T* p, int ss, const Zeb8u* m, int ms, ZebiSize roi, int ch) {
    return {p, ss, m, ms, roi, ch, 0};
}

}  // namespace

#define ZEB_MEAN(T, c)                                                                                         \
    ZebStatus zebiMean_##c##_C1MR(const T* p, int ss, const Zeb8u* m, int ms, ZebiSize roi, Zeb64f* mean) {  \
        return mean_stddev<T, true>(masked(p, ss, m, ms, roi, 1), 1, mean, nullptr, true);                   \
    }                                                                                                          \
    ZebStatus zebiMean_##c##_C3CMR(const T* p, int ss, const Zeb8u* m, int ms, ZebiSize roi, int coi,        \
                                   Zeb64f* mean) {                                                             \
        return mean_stddev<T, true>(masked(p, ss, m, ms, roi, 3), coi, mean, nullptr, true);                 \
    }                                                                                                          \
    ZebStatus zebiMean_StdDev_##c##_C1R(const T* p, int ss, ZebiSize roi, Zeb64f* mean, Zeb64f* sd) {        \
        return mean_stddev<T, false>(plain(p, ss, roi, 1), 1, mean, sd, false);                              \
    }                                                                                                          \
    ZebStatus zebiMean_StdDev_##c##_C1MR(const T* p, int ss, const Zeb8u* m, int ms, ZebiSize roi,           \
                                         Zeb64f* mean, Zeb64f* sd) {                                           \
        return mean_stddev<T, true>(masked(p, ss, m, ms, roi, 1), 1, mean, sd, false);                       \
    }                                                                                                          \
    ZebStatus zebiMean_StdDev_##c##_C3CR(const T* p, int ss, ZebiSize roi, int coi, Zeb64f* mean,            \
                                         Zeb64f* sd) {                                                         \
        return mean_stddev<T, false>(plain(p, ss, roi, 3), coi, mean, sd, false);                            \
    }                                                                                                          \
    ZebStatus zebiMean_StdDev_##c##_C3CMR(const T* p, int ss, const Zeb8u* m, int ms, ZebiSize roi, int coi, \
                                          Zeb64f* mean, Zeb64f* sd) {                                          \
        return mean_stddev<T, true>(masked(p, ss, m, ms, roi, 3), coi, mean, sd, false);                     \
    }

ZEB_MEAN(Zeb8u, 8u)
ZEB_MEAN(Zeb8s, 8s)
ZEB_MEAN(Zeb16u, 16u)
ZEB_MEAN(Zeb32f, 32f)

}  // namespace zeb::ZEB_VNS

#define ZEB_MEAN_EXPORTS(c)                  \
    ZEB_EXPORT(zebiMean_##c##_C1MR);         \
    ZEB_EXPORT(zebiMean_##c##_C3CMR);        \
    ZEB_EXPORT(zebiMean_StdDev_##c##_C1R);   \
    ZEB_EXPORT(zebiMean_StdDev_##c##_C1MR);  \
    ZEB_EXPORT(zebiMean_StdDev_##c##_C3CR);  \
    ZEB_EXPORT(zebiMean_StdDev_##c##_C3CMR)

ZEB_MEAN_EXPORTS(8u);
ZEB_MEAN_EXPORTS(8s);
ZEB_MEAN_EXPORTS(16u);
ZEB_MEAN_EXPORTS(32f);
