// SPDX-License-Identifier: Apache-2.0
// Absolute difference of two images (AbsDiff) and of an image and a
// constant (AbsDiffC).
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "arith/abs_diff_kernels.inl"
#include <hwy/foreach_target.h>  // IWYU pragma: keep
#include <hwy/highway.h>

#include "arith/abs_diff_kernels.inl"

#if HWY_ONCE
#include <algorithm>

#include "core/checks.h"
#include "core/dispatch.h"
#include "core/simd_dispatch.h"

namespace zeb::impl {
namespace {

template <class T, bool kConst>
void run(const T* a, int as, const T* b, int bs, T c, T* d, int ds, int w, int h, bool stream) {
    if (stream)
        ZEB_DISPATCH(absdiff::image<T, kConst, Store::Stream>)(a, as, b, bs, c, d, ds, w, h);
    else
        ZEB_DISPATCH(absdiff::image<T, kConst, Store::Cached>)(a, as, b, bs, c, d, ds, w, h);
}

// Two-image form over `channels` interleaved values per pixel. workingSet
// is the member's bytes-per-pixel figure, 0 when it never streams.
template <class T>
ZebStatus abs_diff(const T* a, int as, const T* b, int bs, T* d, int ds, ZebiSize roi, int channels,
                   int workingSet) {
    if (any_null(a, b, d)) return zebStsNullPtrErr;
    if (bad_roi(roi)) return zebStsSizeErr;
    const StepReq ra = req<T>(as, roi.width, channels), rb = req<T>(bs, roi.width, channels),
                  rd = req<T>(ds, roi.width, channels);
    if (ZebStatus s = first_error({min_steps({ra, rb, rd}), even_steps({ra, rb, rd})})) return s;
    const int n = roi.width * channels;  // fits: the steps hold a whole row
    run<T, false>(a, as, b, bs, T{}, d, ds, n, roi.height, workingSet > 0 && use_streaming(roi, workingSet));
    return zebStsNoErr;
}

template <class T>
ZebStatus abs_diff_c(const T* a, int as, T* d, int ds, ZebiSize roi, T c, int workingSet) {
    if (any_null(a, d)) return zebStsNullPtrErr;
    if (bad_roi(roi)) return zebStsSizeErr;
    const StepReq ra = req<T>(as, roi.width), rd = req<T>(ds, roi.width);
    if (ZebStatus s = first_error({min_steps({ra, rd}), even_steps({ra, rd})})) return s;
    run<T, true>(a, as, nullptr, 0, c, d, ds, roi.width, roi.height,
                 workingSet > 0 && use_streaming(roi, workingSet));
    return zebStsNoErr;
}

}  // namespace

ZebStatus zebiAbsDiff_8u_C1R(const Zeb8u* a, int as, const Zeb8u* b, int bs, Zeb8u* d, int ds, ZebiSize roi) {
    return abs_diff(a, as, b, bs, d, ds, roi, 1, 0);
}
// Working-set figures (bytes per pixel for the streaming choice, 0 for a
// member that never streams) are the documented per-member figures listed
// in zebcv/arith.h: the bytes per pixel of all images of the call, except
// where a comment says otherwise.

// Three interleaved channels are one channel of three times the width.
ZebStatus zebiAbsDiff_8u_C3R(const Zeb8u* a, int as, const Zeb8u* b, int bs, Zeb8u* d, int ds, ZebiSize roi) {
    return abs_diff(a, as, b, bs, d, ds, roi, 3, 0);
}
ZebStatus zebiAbsDiff_16u_C1R(const Zeb16u* a, int as, const Zeb16u* b, int bs, Zeb16u* d, int ds,
                              ZebiSize roi) {
    return abs_diff(a, as, b, bs, d, ds, roi, 1, 6);
}
ZebStatus zebiAbsDiff_32f_C1R(const Zeb32f* a, int as, const Zeb32f* b, int bs, Zeb32f* d, int ds,
                              ZebiSize roi) {
    return abs_diff(a, as, b, bs, d, ds, roi, 1, 12);
}

// Integer constants are clamped to the type's range first.
ZebStatus zebiAbsDiffC_8u_C1R(const Zeb8u* a, int as, Zeb8u* d, int ds, ZebiSize roi, int value) {
    return abs_diff_c(a, as, d, ds, roi, Zeb8u(std::clamp(value, 0, 255)), 0);
}
ZebStatus zebiAbsDiffC_16u_C1R(const Zeb16u* a, int as, Zeb16u* d, int ds, ZebiSize roi, int value) {
    // Documented figure 6, not the 4 bytes per pixel the call touches:
    // the figure only steers the store kind.
    return abs_diff_c(a, as, d, ds, roi, Zeb16u(std::clamp(value, 0, 65535)), 6);
}
ZebStatus zebiAbsDiffC_32f_C1R(const Zeb32f* a, int as, Zeb32f* d, int ds, ZebiSize roi, Zeb32f value) {
    return abs_diff_c(a, as, d, ds, roi, value, 8);
}

}  // namespace zeb::impl

ZEB_EXPORT(zebiAbsDiff_8u_C1R);
ZEB_EXPORT(zebiAbsDiff_8u_C3R);
ZEB_EXPORT(zebiAbsDiff_16u_C1R);
ZEB_EXPORT(zebiAbsDiff_32f_C1R);
ZEB_EXPORT(zebiAbsDiffC_8u_C1R);
ZEB_EXPORT(zebiAbsDiffC_16u_C1R);
ZEB_EXPORT(zebiAbsDiffC_32f_C1R);
#endif  // HWY_ONCE
