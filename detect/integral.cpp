// SPDX-License-Identifier: Apache-2.0
// Upright and tilted integral images of pixel values and of their squares.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "detect/integral_kernels.inl"
#include <hwy/foreach_target.h>  // IWYU pragma: keep
#include <hwy/highway.h>

#include "detect/integral_kernels.inl"

#if HWY_ONCE
#include <algorithm>

#include "core/checks.h"
#include "core/dispatch.h"
#include "core/simd_dispatch.h"

namespace zeb::impl {
namespace {

// Integer tables are filled as uint32_t: the same bits, wrapping sums.
inline uint32_t* u32(Zeb32s* p) { return reinterpret_cast<uint32_t*>(p); }
inline uint32_t u32(Zeb32s v) { return uint32_t(v); }

// Source step, then the table steps (minimum, then parity). extra is the
// number of table columns beyond the source width: 1 upright, 2 tilted.
template <class S, class O, class Q = O>
ZebStatus check(const S* src, int ss, const O* dst, int ds, const Q* sqr, int qs, ZebiSize roi, int extra,
                bool hasSqr) {
    if (any_null(src, dst) || (hasSqr && sqr == nullptr)) return zebStsNullPtrErr;
    if (bad_roi(roi)) return zebStsSizeErr;
    const StepReq rs = req<S>(ss, roi.width), rd = req<O>(ds, roi.width + extra),
                  rq = hasSqr ? req<Q>(qs, roi.width + extra) : rd;
    if (ZebStatus s = min_steps({rs, rd, rq})) return s;
    // The 8-bit source step has no parity requirement.
    if (sizeof(S) > 1)
        return even_steps({rs, rd, rq});
    return even_steps({rd, rq});
}

template <class O>
ZebStatus integral(const Zeb8u* src, int ss, O* dst, int ds, ZebiSize roi, O val) {
    if (ZebStatus s = check(src, ss, dst, ds, dst, ds, roi, 1, false)) return s;
    ZEB_DISPATCH(integral::upright<false, O>)(src, ss, dst, ds, roi.width, roi.height, val);
    return zebStsNoErr;
}

template <class O, class Q>
ZebStatus sqr_integral(const Zeb8u* src, int ss, O* dst, int ds, Q* sqr, int qs, ZebiSize roi, O val, Q valSqr) {
    if (ZebStatus s = check(src, ss, dst, ds, sqr, qs, roi, 1, true)) return s;
    ZEB_DISPATCH(integral::upright<false, O>)(src, ss, dst, ds, roi.width, roi.height, val);
    ZEB_DISPATCH(integral::upright<true, Q>)(src, ss, sqr, qs, roi.width, roi.height, valSqr);
    return zebStsNoErr;
}

template <class O>
ZebStatus tilted(const Zeb8u* src, int ss, O* dst, int ds, ZebiSize roi, O val) {
    if (ZebStatus s = check(src, ss, dst, ds, dst, ds, roi, 2, false)) return s;
    ZEB_DISPATCH(integral::tilted<false, O>)(src, ss, dst, ds, roi.width, roi.height, val);
    return zebStsNoErr;
}

template <class O, class Q>
ZebStatus tilted_sqr(const Zeb8u* src, int ss, O* dst, int ds, Q* sqr, int qs, ZebiSize roi, O val, Q valSqr) {
    if (ZebStatus s = check(src, ss, dst, ds, sqr, qs, roi, 2, true)) return s;
    ZEB_DISPATCH(integral::tilted<false, O>)(src, ss, dst, ds, roi.width, roi.height, val);
    ZEB_DISPATCH(integral::tilted<true, Q>)(src, ss, sqr, qs, roi.width, roi.height, valSqr);
    return zebStsNoErr;
}

}  // namespace

ZebStatus zebiIntegral_8u32s_C1R(const Zeb8u* pSrc, int srcStep, Zeb32s* pDst, int dstStep, ZebiSize roiSize,
                                 Zeb32s val) {
    return integral(pSrc, srcStep, u32(pDst), dstStep, roiSize, u32(val));
}
ZebStatus zebiIntegral_8u32f_C1R(const Zeb8u* pSrc, int srcStep, Zeb32f* pDst, int dstStep, ZebiSize roiSize,
                                 Zeb32f val) {
    return integral(pSrc, srcStep, pDst, dstStep, roiSize, val);
}

// The running sum of a float source is taken left to right in single
// precision, so the row is scalar; the start value is 0.
ZebStatus zebiIntegral_32f_C1R(const Zeb32f* pSrc, int srcStep, Zeb32f* pDst, int dstStep, ZebiSize roiSize) {
    if (ZebStatus s = check(pSrc, srcStep, pDst, dstStep, pDst, dstStep, roiSize, 1, false)) return s;
    const int w = roiSize.width;
    std::fill(pDst, pDst + w + 1, 0.0f);
    for (int y = 0; y < roiSize.height; ++y) {
        const Zeb32f* s = row(pSrc, srcStep, y);
        const Zeb32f* above = row(pDst, dstStep, y);
        Zeb32f* out = row(pDst, dstStep, y + 1);
        out[0] = 0.0f;
        float sum = 0.0f;
        for (int x = 0; x < w; ++x) {
            sum += s[x];
            out[x + 1] = above[x + 1] + sum;
        }
    }
    return zebStsNoErr;
}

ZebStatus zebiSqrIntegral_8u32s_C1R(const Zeb8u* pSrc, int srcStep, Zeb32s* pDst, int dstStep, Zeb32s* pSqr,
                                    int sqrStep, ZebiSize roiSize, Zeb32s val, Zeb32s valSqr) {
    return sqr_integral(pSrc, srcStep, u32(pDst), dstStep, u32(pSqr), sqrStep, roiSize, u32(val), u32(valSqr));
}
ZebStatus zebiSqrIntegral_8u32s64f_C1R(const Zeb8u* pSrc, int srcStep, Zeb32s* pDst, int dstStep, Zeb64f* pSqr,
                                       int sqrStep, ZebiSize roiSize, Zeb32s val, Zeb64f valSqr) {
    return sqr_integral(pSrc, srcStep, u32(pDst), dstStep, pSqr, sqrStep, roiSize, u32(val), valSqr);
}
ZebStatus zebiSqrIntegral_8u32f64f_C1R(const Zeb8u* pSrc, int srcStep, Zeb32f* pDst, int dstStep, Zeb64f* pSqr,
                                       int sqrStep, ZebiSize roiSize, Zeb32f val, Zeb64f valSqr) {
    return sqr_integral(pSrc, srcStep, pDst, dstStep, pSqr, sqrStep, roiSize, val, valSqr);
}

ZebStatus zebiTiltedIntegral_8u32s_C1R(const Zeb8u* pSrc, int srcStep, Zeb32s* pDst, int dstStep, ZebiSize roiSize,
                                       Zeb32s val) {
    return tilted(pSrc, srcStep, u32(pDst), dstStep, roiSize, u32(val));
}
ZebStatus zebiTiltedIntegral_8u32f_C1R(const Zeb8u* pSrc, int srcStep, Zeb32f* pDst, int dstStep, ZebiSize roiSize,
                                       Zeb32f val) {
    return tilted(pSrc, srcStep, pDst, dstStep, roiSize, val);
}
ZebStatus zebiTiltedSqrIntegral_8u32s_C1R(const Zeb8u* pSrc, int srcStep, Zeb32s* pDst, int dstStep, Zeb32s* pSqr,
                                          int sqrStep, ZebiSize roiSize, Zeb32s val, Zeb32s valSqr) {
    return tilted_sqr(pSrc, srcStep, u32(pDst), dstStep, u32(pSqr), sqrStep, roiSize, u32(val), u32(valSqr));
}
ZebStatus zebiTiltedSqrIntegral_8u32s64f_C1R(const Zeb8u* pSrc, int srcStep, Zeb32s* pDst, int dstStep, Zeb64f* pSqr,
                                             int sqrStep, ZebiSize roiSize, Zeb32s val, Zeb64f valSqr) {
    return tilted_sqr(pSrc, srcStep, u32(pDst), dstStep, pSqr, sqrStep, roiSize, u32(val), valSqr);
}
ZebStatus zebiTiltedSqrIntegral_8u32f64f_C1R(const Zeb8u* pSrc, int srcStep, Zeb32f* pDst, int dstStep, Zeb64f* pSqr,
                                             int sqrStep, ZebiSize roiSize, Zeb32f val, Zeb64f valSqr) {
    return tilted_sqr(pSrc, srcStep, pDst, dstStep, pSqr, sqrStep, roiSize, val, valSqr);
}

}  // namespace zeb::impl

ZEB_EXPORT(zebiIntegral_8u32s_C1R);
ZEB_EXPORT(zebiIntegral_8u32f_C1R);
ZEB_EXPORT(zebiIntegral_32f_C1R);
ZEB_EXPORT(zebiSqrIntegral_8u32s_C1R);
ZEB_EXPORT(zebiSqrIntegral_8u32s64f_C1R);
ZEB_EXPORT(zebiSqrIntegral_8u32f64f_C1R);
ZEB_EXPORT(zebiTiltedIntegral_8u32s_C1R);
ZEB_EXPORT(zebiTiltedIntegral_8u32f_C1R);
ZEB_EXPORT(zebiTiltedSqrIntegral_8u32s_C1R);
ZEB_EXPORT(zebiTiltedSqrIntegral_8u32s64f_C1R);
ZEB_EXPORT(zebiTiltedSqrIntegral_8u32f64f_C1R);
#endif  // HWY_ONCE
