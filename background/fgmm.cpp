// SPDX-License-Identifier: Apache-2.0
// Adaptive Gaussian mixture with a variable number of components per
// pixel, on 8-bit colour frames, with its state in the caller's buffer.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "background/fgmm_kernels.inl"
#include <hwy/foreach_target.h>  // IWYU pragma: keep
#include <hwy/highway.h>

#include "background/fgmm_kernels.inl"

#if HWY_ONCE
#include <climits>
#include <cmath>
#include <cstring>
#include <new>

#include "core/checks.h"
#include "core/dispatch.h"
#include "core/simd_dispatch.h"

namespace zeb::impl {
namespace {

using fgmm_state::Areas;
using fgmm_state::Header;

bool bad_count(int n) { return n < 1 || n > fgmm_state::kMaxComponents; }

}  // namespace

ZebStatus zebiFGMMGetBufferSize_8u_C3R(ZebiSize roiSize, int maxNGauss, int* pBufSize) {
    if (any_null(pBufSize)) return zebStsNullPtrErr;
    if (bad_roi(roiSize)) return zebStsSizeErr;
    if (bad_count(maxNGauss)) return zebStsBadArgErr;
    return put_size(Areas(roiSize.width, roiSize.height, maxNGauss).total(), pBufSize);
}

ZebStatus zebiFGMMInit_8u_C3R(ZebiSize roiSize, int maxNGauss, const ZebFGMMModel* pModel,
                              ZebFGMMState_8u_C3R* pState) {
    if (any_null(pModel, pState)) return zebStsNullPtrErr;
    if (bad_roi(roiSize)) return zebStsSizeErr;
    if (bad_count(maxNGauss)) return zebStsBadArgErr;
    const Areas a(roiSize.width, roiSize.height, maxNGauss);
    int bytes = 0;
    if (put_size(a.total(), &bytes) != zebStsNoErr) return zebStsSizeErr;
    const ZebFGMMModel model = *pModel;  // the record may lie inside the buffer
    std::memset(pState, 0, std::size_t(bytes));
    unsigned char* base = fgmm_state::aligned_start(pState);
    Header* h = new (base) Header{};
    unsigned char* p = base + fgmm_state::kHeaderBytes;
    h->frames = 0;
    h->row = reinterpret_cast<float*>(p);
    p += a.row;
    h->means = reinterpret_cast<float*>(p);
    p += a.means;
    h->wv = reinterpret_cast<float*>(p);
    p += a.wv;
    h->counts = p;
    h->model = model;
    h->n = h->n2 = maxNGauss;
    h->width = roiSize.width;
    h->height = roiSize.height;
    return zebStsNoErr;
}

ZebStatus zebiFGMMForeground_8u_C3R(const Zeb8u* pSrc, int srcStep, Zeb8u* pDst, int dstStep, ZebiSize roiSize,
                                    ZebFGMMState_8u_C3R* pState, const ZebFGMMModel* pModel, Zeb32f learningRate) {
    if (any_null(pSrc, pDst, pState)) return zebStsNullPtrErr;
    if (bad_roi(roiSize)) return zebStsSizeErr;
    if (ZebStatus s = min_steps({req<Zeb8u>(srcStep, roiSize.width, 3), req<Zeb8u>(dstStep, roiSize.width)})) return s;
    Header* h = fgmm_state::header(pState);
    if (h->width != roiSize.width || h->height != roiSize.height) return zebStsSizeErr;
    if (std::isnan(learningRate) || learningRate > 1.f) return zebStsBadArgErr;
    if (pModel) h->model = *pModel;
    if (h->frames < INT_MAX) ++h->frames;
    float alpha = learningRate;
    if (alpha < 0.f || h->frames == 1) {
        const int history = h->model.history < 1 ? 1 : h->model.history;
        const int64_t frames2 = 2 * int64_t(h->frames);
        alpha = float(1.0 / double(frames2 < history ? frames2 : history));
    }
    ZEB_DISPATCH(fgmm::foreground)(pSrc, srcStep, pDst, dstStep, h, alpha);
    return zebStsNoErr;
}

ZebStatus zebiFGMMBackground_8u_C3R(Zeb8u* pDst, int dstStep, ZebiSize roiSize, const ZebFGMMState_8u_C3R* pState) {
    if (any_null(pDst, pState)) return zebStsNullPtrErr;
    if (dstStep < 1) return zebStsStepErr;
    if (roiSize.width < 1) return zebStsSizeErr;
    if (roiSize.height < 1) return zebStsSizeErr;
    const Header* h = fgmm_state::header(pState);
    if (h->width != roiSize.width || h->height != roiSize.height) return zebStsSizeErr;
    ZEB_DISPATCH(fgmm::background)(pDst, dstStep, h);
    return zebStsNoErr;
}

}  // namespace zeb::impl

ZEB_EXPORT(zebiFGMMGetBufferSize_8u_C3R);
ZEB_EXPORT(zebiFGMMInit_8u_C3R);
ZEB_EXPORT(zebiFGMMForeground_8u_C3R);
ZEB_EXPORT(zebiFGMMBackground_8u_C3R);
#endif  // HWY_ONCE
