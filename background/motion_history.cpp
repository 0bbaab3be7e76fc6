// SPDX-License-Identifier: Apache-2.0
// Motion-history update: every pixel of a float image keeps the time of
// the last motion its silhouette showed, forgotten after a duration.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "background/motion_history_kernels.inl"
#include <hwy/foreach_target.h>  // IWYU pragma: keep
#include <hwy/highway.h>

#include "background/motion_history_kernels.inl"

#if HWY_ONCE
#include "core/checks.h"
#include "core/dispatch.h"
#include "core/simd_dispatch.h"

namespace zeb::impl {
namespace {

template <class S>
ZebStatus update_mhi(const S* sil, int ss, Zeb32f* m, int ms, ZebiSize roi, Zeb32f ts, Zeb32f duration) {
    if (any_null(sil, m)) return zebStsNullPtrErr;
    if (bad_roi(roi)) return zebStsSizeErr;
    const StepReq rs = req<S>(ss, roi.width), rm = req<Zeb32f>(ms, roi.width);
    if (ZebStatus s = first_error({min_steps({rs, rm}), even_steps({rs, rm})})) return s;
    if (duration < 0.f) return zebStsNotSupportedModeErr;
    const float limit = ts - duration;
    ZEB_DISPATCH(mhi::update<S>)(sil, ss, m, ms, roi.width, roi.height, ts, limit);
    return zebStsNoErr;
}

}  // namespace

ZebStatus zebiUpdateMotionHistory_8u32f_C1IR(const Zeb8u* pSilhouette, int silhStep, Zeb32f* pMHI, int mhiStep,
                                            ZebiSize roiSize, Zeb32f timestamp, Zeb32f mhiDuration) {
    return update_mhi(pSilhouette, silhStep, pMHI, mhiStep, roiSize, timestamp, mhiDuration);
}
ZebStatus zebiUpdateMotionHistory_16u32f_C1IR(const Zeb16u* pSilhouette, int silhStep, Zeb32f* pMHI, int mhiStep,
                                             ZebiSize roiSize, Zeb32f timestamp, Zeb32f mhiDuration) {
    return update_mhi(pSilhouette, silhStep, pMHI, mhiStep, roiSize, timestamp, mhiDuration);
}
ZebStatus zebiUpdateMotionHistory_32f_C1IR(const Zeb32f* pSilhouette, int silhStep, Zeb32f* pMHI, int mhiStep,
                                          ZebiSize roiSize, Zeb32f timestamp, Zeb32f mhiDuration) {
    return update_mhi(pSilhouette, silhStep, pMHI, mhiStep, roiSize, timestamp, mhiDuration);
}

}  // namespace zeb::impl

ZEB_EXPORT(zebiUpdateMotionHistory_8u32f_C1IR);
ZEB_EXPORT(zebiUpdateMotionHistory_16u32f_C1IR);
ZEB_EXPORT(zebiUpdateMotionHistory_32f_C1IR);
#endif  // HWY_ONCE
