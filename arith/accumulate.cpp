// Accumulation into a single-precision image: Add, AddSquare, AddProduct,
// AddWeighted, each plain (IR) and masked (IMR), plus the two-source
// weighted sum AddWeighted_32f_C1R.
#include <type_traits>

#include "arith/arith_ref.h"
#include "core/checks.h"
#include "core/dispatch.h"
#include "core/row_driver.h"

namespace zeb::ZEB_VNS {
namespace {

// The images of one call. For the in-place forms in and out are the
// accumulator; the two-source weighted sum reads in from its second source.
template <class T>
struct AccumArgs {
    const T* s1;
    int s1Step;
    const T* s2;
    int s2Step;
    const uint8_t* mask;
    int maskStep;
    const float* in;
    int inStep;
    float* out;
    int outStep;
};

#define ZEB_KERNELS "arith/accumulate_kernels.inl"
#include "core/isa_expand.h"

// Step checks. For 16-bit sources each group of images is checked
// completely (length, then multiple of 2) before the mask and accumulator;
// otherwise every length is checked before any multiple.
template <class T, bool kTwo, bool kMask>
ZebStatus check_steps(const AccumArgs<T>& a, int w) {
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

// Checks, then runs the cached or streaming kernel of the fastest path.
// workingSet is the member's bytes-per-pixel figure; 0 means the member
// always uses cached stores.
template <class Op, class T, bool kTwo, bool kMask>
ZebStatus accumulate(const AccumArgs<T>& a, ZebiSize roi, float alpha, int workingSet) {
    if (any_null(a.s1, a.out) || (kTwo && !a.s2) || (kMask && !a.mask)) return zebStsNullPtrErr;
    if (bad_roi(roi)) return zebStsSizeErr;
    if (ZebStatus s = check_steps<T, kTwo, kMask>(a, roi.width)) return s;
    const bool stream = workingSet > 0 && use_streaming(roi, workingSet);
    if (use_avx2()) {
        if (stream)
            avx2::accumulate_image<Op, T, kTwo, kMask, Store::Stream>(a, roi, alpha);
        else
            avx2::accumulate_image<Op, T, kTwo, kMask, Store::Cached>(a, roi, alpha);
    } else {
        if (stream)
            ssse3::accumulate_image<Op, T, kTwo, kMask, Store::Stream>(a, roi, alpha);
        else
            ssse3::accumulate_image<Op, T, kTwo, kMask, Store::Cached>(a, roi, alpha);
    }
    return zebStsNoErr;
}

// Argument packing of the export forms.
template <class T>
AccumArgs<T> one(const T* s, int ss, Zeb32f* acc, int as) {
    return {s, ss, nullptr, 0, nullptr, 0, acc, as, acc, as};
}
template <class T>
AccumArgs<T> one_m(const T* s, int ss, const Zeb8u* m, int ms, Zeb32f* acc, int as) {
    return {s, ss, nullptr, 0, m, ms, acc, as, acc, as};
}
template <class T>
AccumArgs<T> two(const T* s1, int st1, const T* s2, int st2, Zeb32f* acc, int as) {
    return {s1, st1, s2, st2, nullptr, 0, acc, as, acc, as};
}
template <class T>
AccumArgs<T> two_m(const T* s1, int st1, const T* s2, int st2, const Zeb8u* m, int ms, Zeb32f* acc, int as) {
    return {s1, st1, s2, st2, m, ms, acc, as, acc, as};
}

}  // namespace

// The exports: one line each, naming the operation, source type, the
// images taking part and the member's working-set figure.
#define ZEB_ACC_IR(name, Op, T)                                                      \
    ZebStatus name(const T* s, int ss, Zeb32f* acc, int as, ZebiSize roi) {          \
        return accumulate<ref::Op, T, false, false>(one(s, ss, acc, as), roi, 0.f, 0); \
    }
#define ZEB_ACC_IMR(name, Op, T, ws)                                                               \
    ZebStatus name(const T* s, int ss, const Zeb8u* m, int ms, Zeb32f* acc, int as, ZebiSize roi) { \
        return accumulate<ref::Op, T, false, true>(one_m(s, ss, m, ms, acc, as), roi, 0.f, ws);    \
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
        return accumulate<ref::Product, T, true, false>(two(s1, st1, s2, st2, acc, as), roi, 0.f, 0); \
    }
#define ZEB_PROD_IMR(name, T, ws)                                                                 \
    ZebStatus name(const T* s1, int st1, const T* s2, int st2, const Zeb8u* m, int ms, Zeb32f* acc, \
                   int as, ZebiSize roi) {                                                         \
        return accumulate<ref::Product, T, true, true>(two_m(s1, st1, s2, st2, m, ms, acc, as), roi, 0.f, ws); \
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
        return accumulate<ref::Weighted, T, false, false>(one(s, ss, acc, as), roi, alpha, 0); \
    }
#define ZEB_WEIGHTED_IMR(name, T, ws)                                                            \
    ZebStatus name(const T* s, int ss, const Zeb8u* m, int ms, Zeb32f* acc, int as, ZebiSize roi, \
                   Zeb32f alpha) {                                                               \
        return accumulate<ref::Weighted, T, false, true>(one_m(s, ss, m, ms, acc, as), roi, alpha, ws); \
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
    const AccumArgs<Zeb32f> a{s1, st1, nullptr, 0, nullptr, 0, s2, st2, dst, ds};
    if (use_avx2())
        avx2::accumulate_image<ref::Weighted, Zeb32f, false, false, Store::Cached>(a, roi, alpha);
    else
        ssse3::accumulate_image<ref::Weighted, Zeb32f, false, false, Store::Cached>(a, roi, alpha);
    return zebStsNoErr;
}

}  // namespace zeb::ZEB_VNS

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
