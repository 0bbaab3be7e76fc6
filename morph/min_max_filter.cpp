// SPDX-License-Identifier: Apache-2.0
// Rectangular min/max filters with replicated borders: the mask is cropped
// to what replication can reach and run as a separable rectangle.
#include "core/checks.h"
#include "core/dispatch.h"
#include "morph/morph_run.h"
#include "morph/morph_state.h"

namespace zeb::impl {
namespace {

using morph::Kind;

ZebStatus buffer_size(Kind k, int ch, int roiWidth, ZebiSize m, int* pSize) {
    if (any_null(pSize)) return zebStsNullPtrErr;
    if (roiWidth < 1) return zebStsSizeErr;
    if (bad_roi(m)) return zebStsMaskSizeErr;
    return put_size(morph::minmax_buffer_size(roiWidth, morph::pixel_bytes(k, ch), m.height), pSize);
}

// The mask side that reaches no farther than replication can, and its anchor.
void crop(int n, int& side, int& anchor) {
    if (anchor >= n) side -= anchor - n + 1, anchor = n - 1;
    if (n < side - anchor) side = n + anchor;
}

template <class T>
ZebStatus filter(bool kMax, Kind k, const T* s, int ss, T* d, int ds, ZebiSize roi, ZebiSize m, ZebiPoint a, Zeb8u* buf,
                 int ch) {
    if (any_null(s, d, buf)) return zebStsNullPtrErr;
    if (bad_roi(roi)) return zebStsSizeErr;
    if (bad_roi(m)) return zebStsMaskSizeErr;
    if (a.x < 0 || a.x >= m.width || a.y < 0 || a.y >= m.height) return zebStsAnchorErr;
    const StepReq rs = req<T>(ss, roi.width, ch), rd = req<T>(ds, roi.width, ch);
    if (ZebStatus st = first_error({min_steps({rs, rd}), even_steps({rs, rd})})) return st;
    crop(roi.width, m.width, a.x);
    crop(roi.height, m.height, a.y);
    morph::Header h{};
    h.kind = int32_t(k);
    h.channels = ch;
    h.maxWidth = roi.width;
    h.mW = m.width, h.mH = m.height, h.ax = a.x, h.ay = a.y;
    h.klass = morph::kRect;
    h.path = morph::kPathRect;
    h.rx = -a.x, h.ry = -a.y, h.rw = m.width, h.rh = m.height;
    morph::run<T>(kMax, s, ss, d, ds, roi.width, roi.height, &h, false, buf);
    return zebStsNoErr;
}

}  // namespace

ZebStatus zebiFilterMaxGetBufferSize_8u_C1R(int w, ZebiSize m, int* p) { return buffer_size(Kind::k8u, 1, w, m, p); }
ZebStatus zebiFilterMaxGetBufferSize_8u_C3R(int w, ZebiSize m, int* p) { return buffer_size(Kind::k8u, 3, w, m, p); }
ZebStatus zebiFilterMaxGetBufferSize_8u_C4R(int w, ZebiSize m, int* p) { return buffer_size(Kind::k8u, 4, w, m, p); }
ZebStatus zebiFilterMaxGetBufferSize_32f_C1R(int w, ZebiSize m, int* p) { return buffer_size(Kind::k32f, 1, w, m, p); }
ZebStatus zebiFilterMaxGetBufferSize_32f_C3R(int w, ZebiSize m, int* p) { return buffer_size(Kind::k32f, 3, w, m, p); }
ZebStatus zebiFilterMaxGetBufferSize_32f_C4R(int w, ZebiSize m, int* p) { return buffer_size(Kind::k32f, 4, w, m, p); }
ZebStatus zebiFilterMinGetBufferSize_8u_C1R(int w, ZebiSize m, int* p) { return buffer_size(Kind::k8u, 1, w, m, p); }
ZebStatus zebiFilterMinGetBufferSize_8u_C3R(int w, ZebiSize m, int* p) { return buffer_size(Kind::k8u, 3, w, m, p); }
ZebStatus zebiFilterMinGetBufferSize_8u_C4R(int w, ZebiSize m, int* p) { return buffer_size(Kind::k8u, 4, w, m, p); }
ZebStatus zebiFilterMinGetBufferSize_32f_C1R(int w, ZebiSize m, int* p) { return buffer_size(Kind::k32f, 1, w, m, p); }
ZebStatus zebiFilterMinGetBufferSize_32f_C3R(int w, ZebiSize m, int* p) { return buffer_size(Kind::k32f, 3, w, m, p); }
ZebStatus zebiFilterMinGetBufferSize_32f_C4R(int w, ZebiSize m, int* p) { return buffer_size(Kind::k32f, 4, w, m, p); }

ZebStatus zebiFilterMaxBorderReplicate_8u_C1R(const Zeb8u* s, int ss, Zeb8u* d, int ds, ZebiSize r, ZebiSize m, ZebiPoint a, Zeb8u* b) { return filter(true, Kind::k8u, s, ss, d, ds, r, m, a, b, 1); }
ZebStatus zebiFilterMaxBorderReplicate_8u_C3R(const Zeb8u* s, int ss, Zeb8u* d, int ds, ZebiSize r, ZebiSize m, ZebiPoint a, Zeb8u* b) { return filter(true, Kind::k8u, s, ss, d, ds, r, m, a, b, 3); }
ZebStatus zebiFilterMaxBorderReplicate_8u_C4R(const Zeb8u* s, int ss, Zeb8u* d, int ds, ZebiSize r, ZebiSize m, ZebiPoint a, Zeb8u* b) { return filter(true, Kind::k8u, s, ss, d, ds, r, m, a, b, 4); }
ZebStatus zebiFilterMaxBorderReplicate_32f_C1R(const Zeb32f* s, int ss, Zeb32f* d, int ds, ZebiSize r, ZebiSize m, ZebiPoint a, Zeb8u* b) { return filter(true, Kind::k32f, s, ss, d, ds, r, m, a, b, 1); }
ZebStatus zebiFilterMaxBorderReplicate_32f_C3R(const Zeb32f* s, int ss, Zeb32f* d, int ds, ZebiSize r, ZebiSize m, ZebiPoint a, Zeb8u* b) { return filter(true, Kind::k32f, s, ss, d, ds, r, m, a, b, 3); }
ZebStatus zebiFilterMaxBorderReplicate_32f_C4R(const Zeb32f* s, int ss, Zeb32f* d, int ds, ZebiSize r, ZebiSize m, ZebiPoint a, Zeb8u* b) { return filter(true, Kind::k32f, s, ss, d, ds, r, m, a, b, 4); }
ZebStatus zebiFilterMinBorderReplicate_8u_C1R(const Zeb8u* s, int ss, Zeb8u* d, int ds, ZebiSize r, ZebiSize m, ZebiPoint a, Zeb8u* b) { return filter(false, Kind::k8u, s, ss, d, ds, r, m, a, b, 1); }
ZebStatus zebiFilterMinBorderReplicate_8u_C3R(const Zeb8u* s, int ss, Zeb8u* d, int ds, ZebiSize r, ZebiSize m, ZebiPoint a, Zeb8u* b) { return filter(false, Kind::k8u, s, ss, d, ds, r, m, a, b, 3); }
ZebStatus zebiFilterMinBorderReplicate_8u_C4R(const Zeb8u* s, int ss, Zeb8u* d, int ds, ZebiSize r, ZebiSize m, ZebiPoint a, Zeb8u* b) { return filter(false, Kind::k8u, s, ss, d, ds, r, m, a, b, 4); }
ZebStatus zebiFilterMinBorderReplicate_32f_C1R(const Zeb32f* s, int ss, Zeb32f* d, int ds, ZebiSize r, ZebiSize m, ZebiPoint a, Zeb8u* b) { return filter(false, Kind::k32f, s, ss, d, ds, r, m, a, b, 1); }
ZebStatus zebiFilterMinBorderReplicate_32f_C3R(const Zeb32f* s, int ss, Zeb32f* d, int ds, ZebiSize r, ZebiSize m, ZebiPoint a, Zeb8u* b) { return filter(false, Kind::k32f, s, ss, d, ds, r, m, a, b, 3); }
ZebStatus zebiFilterMinBorderReplicate_32f_C4R(const Zeb32f* s, int ss, Zeb32f* d, int ds, ZebiSize r, ZebiSize m, ZebiPoint a, Zeb8u* b) { return filter(false, Kind::k32f, s, ss, d, ds, r, m, a, b, 4); }

}  // namespace zeb::impl

ZEB_EXPORT(zebiFilterMaxGetBufferSize_8u_C1R);
ZEB_EXPORT(zebiFilterMaxGetBufferSize_8u_C3R);
ZEB_EXPORT(zebiFilterMaxGetBufferSize_8u_C4R);
ZEB_EXPORT(zebiFilterMaxGetBufferSize_32f_C1R);
ZEB_EXPORT(zebiFilterMaxGetBufferSize_32f_C3R);
ZEB_EXPORT(zebiFilterMaxGetBufferSize_32f_C4R);
ZEB_EXPORT(zebiFilterMinGetBufferSize_8u_C1R);
ZEB_EXPORT(zebiFilterMinGetBufferSize_8u_C3R);
ZEB_EXPORT(zebiFilterMinGetBufferSize_8u_C4R);
ZEB_EXPORT(zebiFilterMinGetBufferSize_32f_C1R);
ZEB_EXPORT(zebiFilterMinGetBufferSize_32f_C3R);
ZEB_EXPORT(zebiFilterMinGetBufferSize_32f_C4R);
ZEB_EXPORT(zebiFilterMaxBorderReplicate_8u_C1R);
ZEB_EXPORT(zebiFilterMaxBorderReplicate_8u_C3R);
ZEB_EXPORT(zebiFilterMaxBorderReplicate_8u_C4R);
ZEB_EXPORT(zebiFilterMaxBorderReplicate_32f_C1R);
ZEB_EXPORT(zebiFilterMaxBorderReplicate_32f_C3R);
ZEB_EXPORT(zebiFilterMaxBorderReplicate_32f_C4R);
ZEB_EXPORT(zebiFilterMinBorderReplicate_8u_C1R);
ZEB_EXPORT(zebiFilterMinBorderReplicate_8u_C3R);
ZEB_EXPORT(zebiFilterMinBorderReplicate_8u_C4R);
ZEB_EXPORT(zebiFilterMinBorderReplicate_32f_C1R);
ZEB_EXPORT(zebiFilterMinBorderReplicate_32f_C3R);
ZEB_EXPORT(zebiFilterMinBorderReplicate_32f_C4R);
