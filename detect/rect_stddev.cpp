// SPDX-License-Identifier: Apache-2.0
// Standard deviation of the pixels under an upright or tilted rectangle at
// every output position, from an integral table and its square table.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "detect/rect_stddev_kernels.inl"
#include <hwy/foreach_target.h>  // IWYU pragma: keep
#include <hwy/highway.h>

#include "detect/rect_stddev_kernels.inl"

#if HWY_ONCE
#include <cmath>

#include "core/checks.h"
#include "core/dispatch.h"
#include "core/simd_dispatch.h"

namespace zeb::impl {
namespace {

using ref::CornerRows;

template <class T>
auto u32(const T* p) {
    if constexpr (std::is_same_v<T, Zeb32s>)
        return reinterpret_cast<const uint32_t*>(p);
    else
        return p;
}
template <class T>
using Lane = std::conditional_t<std::is_same_v<T, Zeb32s>, uint32_t, T>;

// The float 2^-scaleFactor: 1 / 2^f for positive, 2^|f| for negative f
// (0 and infinity where float runs out).
float scale_of(int scaleFactor) { return std::ldexp(1.0f, -scaleFactor); }

template <bool kTilted, class TI, class TQ, class TO>
ZebStatus run(const TI* I, int is, const TQ* Q, int qs, TO* dst, int ds, ZebiSize roi, ZebiRect rect,
              int scaleFactor) {
    if (any_null(I, dst, Q)) return zebStsNullPtrErr;
    if (bad_roi(roi)) return zebStsSizeErr;
    // Table columns the rectangle reaches from the last output column.
    const int64_t cols = kTilted ? int64_t(roi.width) + rect.x + rect.y + rect.width + rect.height - 1
                                 : int64_t(roi.width) + rect.x + rect.width;
    const StepReq ri{is, cols * int64_t(sizeof(TI)), int32_t(sizeof(TI))}, rd = req<TO>(ds, roi.width),
                  rq{qs, cols * int64_t(sizeof(TQ)), int32_t(sizeof(TQ))};
    if (ZebStatus s = first_error({min_steps({ri, rd, rq}), even_steps({ri, rd, rq})})) return s;
    if (rect.x < 0 || rect.y < 0 || rect.width < 1 || rect.height < 1) return zebStsBadArgErr;
    const int a = rect.width, b = rect.height;
    CornerRows c;
    int64_t area;
    if constexpr (kTilted) {
        const int r = rect.x + rect.y, x0 = rect.x - rect.y;
        c = {{r, r + a, r + a + b, r + b}, {x0, x0 + a, x0 + a - b, x0 - b}};
        area = 2 * int64_t(a) * b;
    } else {
        c = {{rect.y + b, rect.y + b, rect.y, rect.y}, {rect.x + a, rect.x, rect.x + a, rect.x}};
        area = int64_t(a) * b;
    }
    ZEB_DISPATCH(stddev::rows<kTilted, Lane<TI>, Lane<TQ>, TO>)(u32(I), is, u32(Q), qs, dst, ds, roi.width,
                                                                roi.height, c, area, scale_of(scaleFactor));
    return zebStsNoErr;
}

}  // namespace

ZebStatus zebiRectStdDev_32f_C1R(const Zeb32f* pSrc, int srcStep, const Zeb64f* pSqr, int sqrStep, Zeb32f* pDst,
                                 int dstStep, ZebiSize roiSize, ZebiRect rect) {
    return run<false>(pSrc, srcStep, pSqr, sqrStep, pDst, dstStep, roiSize, rect, 0);
}
ZebStatus zebiRectStdDev_32s32f_C1R(const Zeb32s* pSrc, int srcStep, const Zeb64f* pSqr, int sqrStep, Zeb32f* pDst,
                                    int dstStep, ZebiSize roiSize, ZebiRect rect) {
    return run<false>(pSrc, srcStep, pSqr, sqrStep, pDst, dstStep, roiSize, rect, 0);
}
ZebStatus zebiRectStdDev_32s_C1RSfs(const Zeb32s* pSrc, int srcStep, const Zeb32s* pSqr, int sqrStep, Zeb32s* pDst,
                                    int dstStep, ZebiSize roiSize, ZebiRect rect, int scaleFactor) {
    return run<false>(pSrc, srcStep, pSqr, sqrStep, pDst, dstStep, roiSize, rect, scaleFactor);
}
ZebStatus zebiTiltedRectStdDev_32f_C1R(const Zeb32f* pSrc, int srcStep, const Zeb64f* pSqr, int sqrStep,
                                       Zeb32f* pDst, int dstStep, ZebiSize roiSize, ZebiRect rect) {
    return run<true>(pSrc, srcStep, pSqr, sqrStep, pDst, dstStep, roiSize, rect, 0);
}
ZebStatus zebiTiltedRectStdDev_32s32f_C1R(const Zeb32s* pSrc, int srcStep, const Zeb64f* pSqr, int sqrStep,
                                          Zeb32f* pDst, int dstStep, ZebiSize roiSize, ZebiRect rect) {
    return run<true>(pSrc, srcStep, pSqr, sqrStep, pDst, dstStep, roiSize, rect, 0);
}
ZebStatus zebiTiltedRectStdDev_32s_C1RSfs(const Zeb32s* pSrc, int srcStep, const Zeb32s* pSqr, int sqrStep,
                                          Zeb32s* pDst, int dstStep, ZebiSize roiSize, ZebiRect rect,
                                          int scaleFactor) {
    return run<true>(pSrc, srcStep, pSqr, sqrStep, pDst, dstStep, roiSize, rect, scaleFactor);
}

}  // namespace zeb::impl

ZEB_EXPORT(zebiRectStdDev_32f_C1R);
ZEB_EXPORT(zebiRectStdDev_32s32f_C1R);
ZEB_EXPORT(zebiRectStdDev_32s_C1RSfs);
ZEB_EXPORT(zebiTiltedRectStdDev_32f_C1R);
ZEB_EXPORT(zebiTiltedRectStdDev_32s32f_C1R);
ZEB_EXPORT(zebiTiltedRectStdDev_32s_C1RSfs);
#endif  // HWY_ONCE
