// SPDX-License-Identifier: Apache-2.0
// Distance masks, chamfer distance transforms (3x3 and 5x5, to 8u, 16u and
// 32f) and the exact Euclidean distance transform.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "region/distance_kernels.inl"
#include <hwy/foreach_target.h>  // IWYU pragma: keep
#include <hwy/highway.h>

#include "region/distance_kernels.inl"

#if HWY_ONCE
#include <algorithm>
#include <cstdint>

#include "core/checks.h"
#include "core/dispatch.h"
#include "core/simd_dispatch.h"

namespace zeb::impl {
namespace {

// ---- standard masks ----

// Row kerSize * 10 + norm of the mask table.
struct MaskRow {
    int key;
    Zeb32s i[3];
    Zeb32f f[3];
};
constexpr MaskRow kMasks[] = {
    {30, {1, 1, 0}, {1.0f, 1.0f, 0.0f}},       {31, {1, 2, 0}, {1.0f, 2.0f, 0.0f}},
    {32, {2, 3, 0}, {0.955f, 1.3693f, 0.0f}},  {50, {1, 1, 2}, {1.0f, 1.0f, 2.0f}},
    {51, {1, 2, 3}, {1.0f, 2.0f, 3.0f}},       {52, {5, 7, 11}, {1.0f, 1.4f, 2.1969f}},
};

template <class T>
ZebStatus get_mask(int kerSize, ZebiNorm norm, T* out) {
    if (out == nullptr) return zebStsNullPtrErr;
    if (kerSize != 3 && kerSize != 5) return zebStsSizeErr;
    if (norm < 0 || norm > 2) return zebStsBadArgErr;
    for (const MaskRow& r : kMasks)
        if (r.key == kerSize * 10 + norm) {
            for (int k = 0; k < (kerSize == 5 ? 3 : 2); ++k) {
                if constexpr (std::is_same_v<T, Zeb32f>)
                    out[k] = r.f[k];
                else
                    out[k] = r.i[k];
            }
            return zebStsNoErr;
        }
    return zebStsNotSupportedModeErr;
}

// ---- chamfer transforms ----

template <class T, int K, dist::Mix kMix>
void run_chamfer(const Zeb8u* s, int ss, T* d, int ds, ZebiSize roi, ref::Weights<T> m) {
    ZEB_DISPATCH(dist::chamfer<T, K, kMix>)(s, ss, d, ds, roi.width, roi.height, m);
}

// M is the mask's element type (Zeb32s or Zeb32f), T the output's.
template <int K, class T, class M>
ZebStatus chamfer(const Zeb8u* s, int ss, T* d, int ds, ZebiSize roi, const M* metrics) {
    if (any_null(s, d, metrics)) return zebStsNullPtrErr;
    if (bad_roi(roi)) return zebStsSizeErr;
    const StepReq rs = req<Zeb8u>(ss, roi.width), rd = req<T>(ds, roi.width);
    if (ZebStatus st = first_error({min_steps({rs, rd}), even_steps({rd})})) return st;
    for (int k = 0; k < (K == 5 ? 3 : 2); ++k) {
        if constexpr (std::is_floating_point_v<M>) {
            if (!(metrics[k] > 0)) return zebStsMetricErr;
        } else {
            if (metrics[k] < 1) return zebStsMetricErr;
        }
    }
    const ref::Weights<T> m = ref::settle<T>(metrics, K, roi.width, roi.height);
    using dist::Mix;
    // Dropping the diagonals is exact for integer sums only; float masks
    // with b >= 2a keep them.
    if (m.a == m.b)
        run_chamfer<T, K, Mix::kEqual>(s, ss, d, ds, roi, m);
    else if (K == 3 && !std::is_floating_point_v<T> && m.b / 2 >= m.a)
        run_chamfer<T, K, Mix::kNoDiag>(s, ss, d, ds, roi, m);
    else
        run_chamfer<T, K, Mix::kAll>(s, ss, d, ds, roi, m);
    return zebStsNoErr;
}

// ---- exact Euclidean transform ----

int64_t round4(int n) { return (int64_t(n) + 3) & ~int64_t(3); }
int64_t envelope_len(ZebiSize roi) { return std::max(round4(roi.width), round4(roi.height)); }

}  // namespace

ZebStatus zebiGetDistanceTransformMask_32s(int kerSize, ZebiNorm norm, Zeb32s* pMetrics) {
    return get_mask(kerSize, norm, pMetrics);
}
ZebStatus zebiGetDistanceTransformMask_32f(int kerSize, ZebiNorm norm, Zeb32f* pMetrics) {
    return get_mask(kerSize, norm, pMetrics);
}
// The norm digit is checked before anything else, the pointer included.
ZebStatus zebiGetDistanceTransformMask(int maskType, Zeb32f* pMetrics) {
    const int norm = maskType % 10;
    if (norm < 0 || norm > 2) return zebStsBadArgErr;
    return get_mask(maskType / 10, norm, pMetrics);
}

ZebStatus zebiDistanceTransform_3x3_8u_C1R(const Zeb8u* pSrc, int srcStep, Zeb8u* pDst, int dstStep, ZebiSize roi,
                                           const Zeb32s* pMetrics) {
    return chamfer<3>(pSrc, srcStep, pDst, dstStep, roi, pMetrics);
}
ZebStatus zebiDistanceTransform_3x3_8u16u_C1R(const Zeb8u* pSrc, int srcStep, Zeb16u* pDst, int dstStep,
                                              ZebiSize roi, const Zeb32s* pMetrics) {
    return chamfer<3>(pSrc, srcStep, pDst, dstStep, roi, pMetrics);
}
ZebStatus zebiDistanceTransform_3x3_8u32f_C1R(const Zeb8u* pSrc, int srcStep, Zeb32f* pDst, int dstStep,
                                              ZebiSize roi, const Zeb32f* pMetrics) {
    return chamfer<3>(pSrc, srcStep, pDst, dstStep, roi, pMetrics);
}
ZebStatus zebiDistanceTransform_3x3_8u_C1IR(Zeb8u* pSrcDst, int srcDstStep, ZebiSize roi, const Zeb32s* pMetrics) {
    return chamfer<3>(pSrcDst, srcDstStep, pSrcDst, srcDstStep, roi, pMetrics);
}
ZebStatus zebiDistanceTransform_5x5_8u_C1R(const Zeb8u* pSrc, int srcStep, Zeb8u* pDst, int dstStep, ZebiSize roi,
                                           const Zeb32s* pMetrics) {
    return chamfer<5>(pSrc, srcStep, pDst, dstStep, roi, pMetrics);
}
ZebStatus zebiDistanceTransform_5x5_8u16u_C1R(const Zeb8u* pSrc, int srcStep, Zeb16u* pDst, int dstStep,
                                              ZebiSize roi, const Zeb32s* pMetrics) {
    return chamfer<5>(pSrc, srcStep, pDst, dstStep, roi, pMetrics);
}
ZebStatus zebiDistanceTransform_5x5_8u32f_C1R(const Zeb8u* pSrc, int srcStep, Zeb32f* pDst, int dstStep,
                                              ZebiSize roi, const Zeb32f* pMetrics) {
    return chamfer<5>(pSrc, srcStep, pDst, dstStep, roi, pMetrics);
}
ZebStatus zebiDistanceTransform_5x5_8u_C1IR(Zeb8u* pSrcDst, int srcDstStep, ZebiSize roi, const Zeb32s* pMetrics) {
    return chamfer<5>(pSrcDst, srcDstStep, pSrcDst, srcDstStep, roi, pMetrics);
}

// Six arrays of n floats (squares, reciprocals, vertices, boundaries,
// vertex heights, one row of values) after up to 31 bytes of alignment.
ZebStatus zebiTrueDistanceTransformGetBufferSize_8u32f_C1R(ZebiSize roi, int* pBufferSize) {
    if (pBufferSize == nullptr) return zebStsNullPtrErr;
    if (bad_roi(roi)) return zebStsSizeErr;
    return put_size(envelope_len(roi) * 24 + 56, pBufferSize);
}

ZebStatus zebiTrueDistanceTransform_8u32f_C1R(const Zeb8u* pSrc, int srcStep, Zeb32f* pDst, int dstStep,
                                              ZebiSize roi, Zeb8u* pBuffer) {
    if (any_null(pSrc, pDst, pBuffer)) return zebStsNullPtrErr;
    if (bad_roi(roi)) return zebStsSizeErr;
    const StepReq rs = req<Zeb8u>(srcStep, roi.width), rd = req<Zeb32f>(dstStep, roi.width);
    if (ZebStatus st = first_error({min_steps({rs, rd}), even_steps({rd})})) return st;
    const std::size_t n = std::size_t(envelope_len(roi));
    float* base = reinterpret_cast<float*>(align_up(pBuffer, 32));
    float* sq = base;
    float* rcp = base + n;
    const dist::Envelope e{sq, rcp, reinterpret_cast<int32_t*>(base + 2 * n), base + 3 * n, base + 4 * n,
                           base + 5 * n};
    for (std::size_t i = 0; i < n; ++i) {
        sq[i] = float(i) * float(i);
        rcp[i] = i == 0 ? 0.0f : 0.5f / float(i);
    }
    ZEB_DISPATCH(dist::exact)(pSrc, srcStep, pDst, dstStep, roi.width, roi.height, e);
    return zebStsNoErr;
}

}  // namespace zeb::impl

ZEB_EXPORT(zebiGetDistanceTransformMask_32s);
ZEB_EXPORT(zebiGetDistanceTransformMask_32f);
ZEB_EXPORT(zebiGetDistanceTransformMask);
ZEB_EXPORT(zebiDistanceTransform_3x3_8u_C1R);
ZEB_EXPORT(zebiDistanceTransform_3x3_8u16u_C1R);
ZEB_EXPORT(zebiDistanceTransform_3x3_8u32f_C1R);
ZEB_EXPORT(zebiDistanceTransform_3x3_8u_C1IR);
ZEB_EXPORT(zebiDistanceTransform_5x5_8u_C1R);
ZEB_EXPORT(zebiDistanceTransform_5x5_8u16u_C1R);
ZEB_EXPORT(zebiDistanceTransform_5x5_8u32f_C1R);
ZEB_EXPORT(zebiDistanceTransform_5x5_8u_C1IR);
ZEB_EXPORT(zebiTrueDistanceTransformGetBufferSize_8u32f_C1R);
ZEB_EXPORT(zebiTrueDistanceTransform_8u32f_C1R);
#endif  // HWY_ONCE
