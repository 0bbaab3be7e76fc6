// SPDX-License-Identifier: Apache-2.0
// Accumulation into a single-precision image: Add, AddSquare, AddProduct,
// AddWeighted, each plain (IR) and masked (IMR), plus the two-source
// weighted sum AddWeighted_32f_C1R.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "arith/accumulate_kernels.inl"
#include <hwy/foreach_target.h>  // IWYU pragma: keep
#include <hwy/highway.h>

#include "arith/accumulate_kernels.inl"

#if HWY_ONCE
#include "arith/accumulate_args.h"
#include "arith/arith_ref.h"
#include "core/checks.h"
#include "core/dispatch.h"
#include "core/simd_dispatch.h"

namespace zeb::impl {
namespace {

using accum::Images;

// The longest run of pixels processed as one row; far from the int limit,
// so no index of the row loop can overflow.
constexpr int64_t kMaxRun = int64_t(1) << 30;

// Step checks. For 16-bit sources each group of images is checked
// completely (length, then multiple of 2) before the mask and accumulator;
// otherwise every length is checked before any multiple.
template <class T, bool kTwo, bool kMask>
ZebStatus check_steps(const Images<T>& a, int w) {
    const StepReq s1 = req<T>(a.s1Step, w);
    const StepReq s2 = kTwo ? req<T>(a.s2Step, w) : s1;
    const StepReq m = kMask ? req<uint8_t>(a.maskStep, w) : s1;
    const StepReq acc = req<float>(a.outStep, w);
    if constexpr (sizeof(T) == 2) {
        return first_error({min_steps({s1, s2}), even_steps({s1, s2}), min_steps({m, acc}), even_steps({acc})});
    } else {
        return first_error({min_steps({s1, s2, m, acc}), even_steps({s1, s2, acc})});
    }
}

// Images whose rows follow one another without padding are processed as
// one long row: one row loop, one head and one tail for the whole image.
// Results do not depend on how the pixels are split into rows.
template <class T, bool kTwo, bool kMask>
ZebiSize as_run(const Images<T>& a, ZebiSize roi) {
    const int64_t n = int64_t(roi.width) * roi.height;
    const int32_t w = roi.width, tb = int32_t(sizeof(T)) * w;
    const bool packed = a.s1Step == tb && (!kTwo || a.s2Step == tb) && (!kMask || a.maskStep == w) &&
                        a.inStep == 4 * w && a.outStep == 4 * w;
    return packed && n <= kMaxRun ? ZebiSize{int32_t(n), 1} : roi;
}

// Checks, then runs the cached or streaming kernel. kWorkingSet is the
// member's bytes-per-pixel figure; 0 means the member always uses cached
// stores (and has no streaming kernel).
template <class Op, class T, bool kTwo, bool kMask, int kWorkingSet>
ZebStatus accumulate(const Images<T>& a, ZebiSize roi, float alpha) {
    if (any_null(a.s1, a.out) || (kTwo && !a.s2) || (kMask && !a.mask)) return zebStsNullPtrErr;
    if (bad_roi(roi)) return zebStsSizeErr;
    if (ZebStatus s = check_steps<T, kTwo, kMask>(a, roi.width)) return s;
    const ZebiSize run = as_run<T, kTwo, kMask>(a, roi);
    if constexpr (kWorkingSet > 0) {
        if (use_streaming(roi, kWorkingSet)) {
            ZEB_DISPATCH(accum::image<Op, T, kTwo, kMask, Store::Stream>)(a, run.width, run.height, alpha);
            return zebStsNoErr;
        }
    }
    ZEB_DISPATCH(accum::image<Op, T, kTwo, kMask, Store::Cached>)(a, run.width, run.height, alpha);
    return zebStsNoErr;
}

// Argument packing of the export forms.
template <class T>
Images<T> one(const T* s, int ss, Zeb32f* acc, int as) {
    return {s, ss, nullptr, 0, nullptr, 0, acc, as, acc, as};
}
template <class T>
Images<T> one_m(const T* s, int ss, const Zeb8u* m, int ms, Zeb32f* acc, int as) {
    return {s, ss, nullptr, 0, m, ms, acc, as, acc, as};
}
template <class T>
Images<T> two(const T* s1, int st1, const T* s2, int st2, Zeb32f* acc, int as) {
    return {s1, st1, s2, st2, nullptr, 0, acc, as, acc, as};
}
template <class T>
Images<T> two_m(const T* s1, int st1, const T* s2, int st2, const Zeb8u* m, int ms, Zeb32f* acc, int as) {
    return {s1, st1, s2, st2, m, ms, acc, as, acc, as};
}

}  // namespace

// The exports: one line each, naming the operation, source type, the
// images taking part and the member's working-set figure.
//
// Working-set figures are the documented per-member figures listed in
// zebcv/arith.h (0: the member never streams). Each is the bytes per pixel
// of the images of the call, the accumulator counted once (source, mask,
// accumulator: AddProduct 8u 1+1+1+4 = 7, 16u 2+2+1+4 = 9, 32f 4+4+1+4 = 13;
// masked AddWeighted 16u 2+1+4 = 7, 32f 4+1+4 = 9), except two documented
// figures that differ and are kept as documented, since they only steer the
// store kind: 12 for the masked 32f AddSquare (9 bytes) and 5 for the masked
// 8-bit AddWeighted forms (6 bytes).
#define ZEB_ACC_IR(name, Op, T)                                                      \
    ZebStatus name(const T* s, int ss, Zeb32f* acc, int as, ZebiSize roi) {          \
        return accumulate<ref::Op, T, false, false, 0>(one(s, ss, acc, as), roi, 0.f); \
    }
#define ZEB_ACC_IMR(name, Op, T, ws)                                                               \
    ZebStatus name(const T* s, int ss, const Zeb8u* m, int ms, Zeb32f* acc, int as, ZebiSize roi) { \
        return accumulate<ref::Op, T, false, true, ws>(one_m(s, ss, m, ms, acc, as), roi, 0.f);    \
    }

ZEB_ACC_IR(zebiAdd_8u32f_C1IR, Add, Zeb8u)
ZEB_ACC_IR(zebiAdd_8s32f_C1IR, Add, Zeb8s)
ZEB_ACC_IR(zebiAdd_16u32f_C1IR, Add, Zeb16u)
ZEB_ACC_IMR(zebiAdd_8u32f_C1IMR, Add, Zeb8u, 0)
ZEB_ACC_IMR(zebiAdd_8s32f_C1IMR, Add, Zeb8s, 0)
ZEB_ACC_IMR(zebiAdd_16u32f_C1IMR, Add, Zeb16u, 0)
ZEB_ACC_IMR(zebiAdd_32f_C1IMR, Add, Zeb32f, 0)

ZEB_ACC_IR(zebiAddSquare_8u32f_C1IR, Square, Zeb8u)
ZEB_ACC_IR(zebiAddSquare_8s32f_C1IR, Square, Zeb8s)
ZEB_ACC_IR(zebiAddSquare_16u32f_C1IR, Square, Zeb16u)
ZEB_ACC_IR(zebiAddSquare_32f_C1IR, Square, Zeb32f)
ZEB_ACC_IMR(zebiAddSquare_8u32f_C1IMR, Square, Zeb8u, 0)
ZEB_ACC_IMR(zebiAddSquare_8s32f_C1IMR, Square, Zeb8s, 0)
ZEB_ACC_IMR(zebiAddSquare_16u32f_C1IMR, Square, Zeb16u, 0)
ZEB_ACC_IMR(zebiAddSquare_32f_C1IMR, Square, Zeb32f, 12)

#define ZEB_PROD_IR(name, T)                                                                     \
    ZebStatus name(const T* s1, int st1, const T* s2, int st2, Zeb32f* acc, int as, ZebiSize roi) { \
        return accumulate<ref::Product, T, true, false, 0>(two(s1, st1, s2, st2, acc, as), roi, 0.f); \
    }
#define ZEB_PROD_IMR(name, T, ws)                                                                 \
    ZebStatus name(const T* s1, int st1, const T* s2, int st2, const Zeb8u* m, int ms, Zeb32f* acc, \
                   int as, ZebiSize roi) {                                                         \
        return accumulate<ref::Product, T, true, true, ws>(two_m(s1, st1, s2, st2, m, ms, acc, as), roi, 0.f); \
    }

ZEB_PROD_IR(zebiAddProduct_8u32f_C1IR, Zeb8u)
ZEB_PROD_IR(zebiAddProduct_8s32f_C1IR, Zeb8s)
ZEB_PROD_IR(zebiAddProduct_16u32f_C1IR, Zeb16u)
ZEB_PROD_IR(zebiAddProduct_32f_C1IR, Zeb32f)
ZEB_PROD_IMR(zebiAddProduct_8u32f_C1IMR, Zeb8u, 7)
ZEB_PROD_IMR(zebiAddProduct_8s32f_C1IMR, Zeb8s, 7)
ZEB_PROD_IMR(zebiAddProduct_16u32f_C1IMR, Zeb16u, 9)
ZEB_PROD_IMR(zebiAddProduct_32f_C1IMR, Zeb32f, 13)

#define ZEB_WEIGHTED_IR(name, T)                                                               \
    ZebStatus name(const T* s, int ss, Zeb32f* acc, int as, ZebiSize roi, Zeb32f alpha) {      \
        return accumulate<ref::Weighted, T, false, false, 0>(one(s, ss, acc, as), roi, alpha); \
    }
#define ZEB_WEIGHTED_IMR(name, T, ws)                                                            \
    ZebStatus name(const T* s, int ss, const Zeb8u* m, int ms, Zeb32f* acc, int as, ZebiSize roi, \
                   Zeb32f alpha) {                                                               \
        return accumulate<ref::Weighted, T, false, true, ws>(one_m(s, ss, m, ms, acc, as), roi, alpha); \
    }

ZEB_WEIGHTED_IR(zebiAddWeighted_8u32f_C1IR, Zeb8u)
ZEB_WEIGHTED_IR(zebiAddWeighted_8s32f_C1IR, Zeb8s)
ZEB_WEIGHTED_IR(zebiAddWeighted_16u32f_C1IR, Zeb16u)
ZEB_WEIGHTED_IR(zebiAddWeighted_32f_C1IR, Zeb32f)
ZEB_WEIGHTED_IMR(zebiAddWeighted_8u32f_C1IMR, Zeb8u, 5)
ZEB_WEIGHTED_IMR(zebiAddWeighted_8s32f_C1IMR, Zeb8s, 5)
ZEB_WEIGHTED_IMR(zebiAddWeighted_16u32f_C1IMR, Zeb16u, 7)
ZEB_WEIGHTED_IMR(zebiAddWeighted_32f_C1IMR, Zeb32f, 9)

// dst = (src1 - src2) * alpha + src2: the weighted update with the second
// source in the accumulator's place and a separate destination.
ZebStatus zebiAddWeighted_32f_C1R(const Zeb32f* s1, int st1, const Zeb32f* s2, int st2, Zeb32f* dst, int ds,
                                  ZebiSize roi, Zeb32f alpha) {
    if (any_null(s1, s2, dst)) return zebStsNullPtrErr;
    if (bad_roi(roi)) return zebStsSizeErr;
    const StepReq r1 = req<float>(st1, roi.width), r2 = req<float>(st2, roi.width), rd = req<float>(ds, roi.width);
    if (ZebStatus s = first_error({min_steps({r1, r2, rd}), even_steps({r1, r2, rd})})) return s;
    const Images<Zeb32f> a{s1, st1, nullptr, 0, nullptr, 0, s2, st2, dst, ds};
    const ZebiSize run = as_run<Zeb32f, false, false>(a, roi);
    ZEB_DISPATCH(accum::image<ref::Weighted, Zeb32f, false, false, Store::Cached>)(a, run.width, run.height, alpha);
    return zebStsNoErr;
}

}  // namespace zeb::impl

ZEB_EXPORT(zebiAdd_8u32f_C1IR);
ZEB_EXPORT(zebiAdd_8s32f_C1IR);
ZEB_EXPORT(zebiAdd_16u32f_C1IR);
ZEB_EXPORT(zebiAdd_8u32f_C1IMR);
ZEB_EXPORT(zebiAdd_8s32f_C1IMR);
ZEB_EXPORT(zebiAdd_16u32f_C1IMR);
ZEB_EXPORT(zebiAdd_32f_C1IMR);
ZEB_EXPORT(zebiAddSquare_8u32f_C1IR);
ZEB_EXPORT(zebiAddSquare_8s32f_C1IR);
ZEB_EXPORT(zebiAddSquare_16u32f_C1IR);
ZEB_EXPORT(zebiAddSquare_32f_C1IR);
ZEB_EXPORT(zebiAddSquare_8u32f_C1IMR);
ZEB_EXPORT(zebiAddSquare_8s32f_C1IMR);
ZEB_EXPORT(zebiAddSquare_16u32f_C1IMR);
ZEB_EXPORT(zebiAddSquare_32f_C1IMR);
ZEB_EXPORT(zebiAddProduct_8u32f_C1IR);
ZEB_EXPORT(zebiAddProduct_8s32f_C1IR);
ZEB_EXPORT(zebiAddProduct_16u32f_C1IR);
ZEB_EXPORT(zebiAddProduct_32f_C1IR);
ZEB_EXPORT(zebiAddProduct_8u32f_C1IMR);
ZEB_EXPORT(zebiAddProduct_8s32f_C1IMR);
ZEB_EXPORT(zebiAddProduct_16u32f_C1IMR);
ZEB_EXPORT(zebiAddProduct_32f_C1IMR);
ZEB_EXPORT(zebiAddWeighted_8u32f_C1IR);
ZEB_EXPORT(zebiAddWeighted_8s32f_C1IR);
ZEB_EXPORT(zebiAddWeighted_16u32f_C1IR);
ZEB_EXPORT(zebiAddWeighted_32f_C1IR);
ZEB_EXPORT(zebiAddWeighted_8u32f_C1IMR);
ZEB_EXPORT(zebiAddWeighted_8s32f_C1IMR);
ZEB_EXPORT(zebiAddWeighted_16u32f_C1IMR);
ZEB_EXPORT(zebiAddWeighted_32f_C1IMR);
ZEB_EXPORT(zebiAddWeighted_32f_C1R);
#endif  // HWY_ONCE
