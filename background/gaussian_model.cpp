// SPDX-License-Identifier: Apache-2.0
// Per-pixel mixture of a fixed number of Gaussians, with its state made by
// InitAlloc from the first frame.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "background/gaussian_kernels.inl"
#include <hwy/foreach_target.h>  // IWYU pragma: keep
#include <hwy/highway.h>

#include "background/gaussian_kernels.inl"

#if HWY_ONCE
#include <climits>
#include <cmath>
#include <cstring>

#include "core/checks.h"
#include "core/dispatch.h"
#include "core/simd_dispatch.h"

namespace zeb::impl {
namespace {

using gauss_state::Component;
using gauss_state::kSlots;
using gauss_state::State;

// Slack after the component array, part of its documented size.
constexpr int64_t kComponentSlack = 20480;

template <class T>
T or_default(T v, T d) {
    return v > T(0) ? v : d;
}

template <int C, class S>
ZebStatus init_alloc(const Zeb8u* src, int ss, ZebiSize roi, const ZebForegroundGaussianModel* model, S** out) {
    if (any_null(src, model, out)) return zebStsNullPtrErr;
    if (bad_roi(roi)) return zebStsSizeErr;
    if (ZebStatus s = min_steps({req<Zeb8u>(ss, roi.width, C)})) return s;
    if (model->numGauss > kSlots) return zebStsBadArgErr;

    const int64_t px = int64_t(roi.width) * roi.height;
    const int64_t compBytes = px * kSlots * int64_t(sizeof(Component)) + kComponentSlack;
    const int64_t planeBytes = 2 * px;
    State* st = nullptr;
    void* comps = nullptr;
    void* planes = nullptr;
    if (compBytes <= INT_MAX && planeBytes <= INT_MAX) {
        st = static_cast<State*>(alloc(int32_t(sizeof(State))));
        comps = st ? alloc(int32_t(compBytes)) : nullptr;
        planes = comps ? alloc(int32_t(planeBytes)) : nullptr;
    }
    if (!planes) {
        release(comps);
        release(st);
        return zebStsMemAllocErr;
    }
    std::memset(static_cast<void*>(st), 0, sizeof(State));
    std::memset(comps, 0, std::size_t(compBytes));
    std::memset(planes, 0, std::size_t(planeBytes));
    st->comps = static_cast<Component*>(comps);
    st->used = static_cast<uint8_t*>(planes);
    st->lastMask = st->used + px;
    st->width = roi.width;
    st->height = roi.height;
    st->channels = C;
    st->frames = 1;
    st->history = or_default(model->history, 200);
    st->numGauss = or_default(model->numGauss, 5);
    st->backgroundRatio = or_default(model->backgroundRatio, 0.7);
    st->matchThreshold = or_default(model->matchThreshold, 2.5);
    st->noiseSigma = or_default(model->noiseSigma, 15.0);
    st->initialWeight = or_default(model->initialWeight, 0.05);
    st->initialVariance = or_default(model->initialVariance, 900.0);

    // The first frame: one component per pixel, the pixel itself.
    for (int y = 0; y < roi.height; ++y) {
        const Zeb8u* in = row(src, ss, y);
        for (int x = 0; x < roi.width; ++x) {
            const std::size_t p = std::size_t(y) * std::size_t(roi.width) + std::size_t(x);
            Component& c = st->comps[p * kSlots];
            c.weight = 1.0;
            c.count = 1;
            c.var = float(st->initialVariance);
            for (int ch = 0; ch < C; ++ch) c.mean[ch] = float(in[C * x + ch]);
            c.key = float(1.0 / std::sqrt(double(c.var)));
            st->used[p] = 1;
        }
    }
    *out = reinterpret_cast<S*>(st);
    return zebStsNoErr;
}

template <int C, class S>
ZebStatus classify(const Zeb8u* src, int ss, Zeb8u* dst, int ds, ZebiSize roi, S* state, double rate) {
    if (any_null(src, dst, state)) return zebStsNullPtrErr;
    if (bad_roi(roi)) return zebStsSizeErr;
    if (ZebStatus s = min_steps({req<Zeb8u>(ss, roi.width, C), req<Zeb8u>(ds, roi.width)})) return s;
    State* st = reinterpret_cast<State*>(state);
    if (st->width != roi.width || st->height != roi.height) return zebStsSizeErr;
    if (std::isnan(rate) || rate > 1.0) return zebStsBadArgErr;
    if (st->frames < INT_MAX) ++st->frames;
    if (rate < 0.0) rate = 1.0 / double(st->frames < st->history ? st->frames : st->history);
    ZEB_DISPATCH(gmm::update<C>)(src, ss, dst, ds, st, rate);
    return zebStsNoErr;
}

template <class S>
ZebStatus free_state(S* state) {
    if (!state) return zebStsNullPtrErr;
    State* st = reinterpret_cast<State*>(state);
    release(st->comps);
    release(st->used);
    release(st);
    return zebStsNoErr;
}

}  // namespace

ZebStatus zebiForegroundGaussianInitAlloc_8u_C1R(const Zeb8u* pSrc, int srcStep, ZebiSize roiSize,
                                                 const ZebForegroundGaussianModel* pModel,
                                                 ZebForegroundGaussianState_8u_C1R** ppState) {
    return init_alloc<1>(pSrc, srcStep, roiSize, pModel, ppState);
}
ZebStatus zebiForegroundGaussianInitAlloc_8u_C3R(const Zeb8u* pSrc, int srcStep, ZebiSize roiSize,
                                                 const ZebForegroundGaussianModel* pModel,
                                                 ZebForegroundGaussianState_8u_C3R** ppState) {
    return init_alloc<3>(pSrc, srcStep, roiSize, pModel, ppState);
}
ZebStatus zebiForegroundGaussian_8u_C1R(const Zeb8u* pSrc, int srcStep, Zeb8u* pDst, int dstStep, ZebiSize roiSize,
                                        ZebForegroundGaussianState_8u_C1R* pState, Zeb64f learningRate) {
    return classify<1>(pSrc, srcStep, pDst, dstStep, roiSize, pState, learningRate);
}
ZebStatus zebiForegroundGaussian_8u_C3R(const Zeb8u* pSrc, int srcStep, Zeb8u* pDst, int dstStep, ZebiSize roiSize,
                                        ZebForegroundGaussianState_8u_C3R* pState, Zeb64f learningRate) {
    return classify<3>(pSrc, srcStep, pDst, dstStep, roiSize, pState, learningRate);
}
// One operation for both layouts: the state records its channel count.
ZebStatus zebiForegroundGaussianFree_8u_C1R(ZebForegroundGaussianState_8u_C1R* pState) { return free_state(pState); }
ZebStatus zebiForegroundGaussianFree_8u_C3R(ZebForegroundGaussianState_8u_C3R* pState) { return free_state(pState); }

}  // namespace zeb::impl

ZEB_EXPORT(zebiForegroundGaussianInitAlloc_8u_C1R);
ZEB_EXPORT(zebiForegroundGaussianInitAlloc_8u_C3R);
ZEB_EXPORT(zebiForegroundGaussian_8u_C1R);
ZEB_EXPORT(zebiForegroundGaussian_8u_C3R);
ZEB_EXPORT(zebiForegroundGaussianFree_8u_C1R);
ZEB_EXPORT(zebiForegroundGaussianFree_8u_C3R);
#endif  // HWY_ONCE
