// SPDX-License-Identifier: Apache-2.0
// Morphological reconstruction by dilation and by erosion, in place on the
// marker, with its buffer-size queries.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "morph/reconstruct_kernels.inl"
#include <hwy/foreach_target.h>  // IWYU pragma: keep
#include <hwy/highway.h>

#include "morph/reconstruct_kernels.inl"

#if HWY_ONCE
#include "core/checks.h"
#include "core/dispatch.h"
#include "core/simd_dispatch.h"

namespace zeb::impl {
namespace {

constexpr int32_t kType64f = 19;

// Four rows of w samples, each starting on a 32-byte boundary, then one
// flag byte per row. The totals are the documented ones: for 8u
// 4w + h + 161, 16u 2(4w + h) + 322, 32f 16w + h + 164, 64f 32w + h + 168.
int64_t buffer_bytes(int32_t type, int64_t w, int64_t h) {
    switch (type) {
        case zeb8u: return 4 * w + h + 161;
        case zeb16u: return 2 * (4 * w + h) + 322;
        case zeb32f: return 16 * w + h + 164;
        default: return 32 * w + h + 168;
    }
}

ZebStatus typed_size(ZebiSize roi, int32_t type, int* size) {
    if (any_null(size)) return zebStsNullPtrErr;
    if (bad_roi(roi)) return zebStsSizeErr;
    return put_size(buffer_bytes(type, roi.width, roi.height), size);
}

template <class T, bool kDil>
ZebStatus reconstruct(const T* mask, int ms, T* marker, int js, ZebiSize roi, Zeb8u* buffer, ZebiNorm norm) {
    if (any_null(mask, marker, buffer)) return zebStsNullPtrErr;
    if (bad_roi(roi)) return zebStsSizeErr;
    const StepReq rm = req<T>(ms, roi.width), rj = req<T>(js, roi.width);
    if (ZebStatus s = first_error({min_steps({rm, rj}), even_steps({rm, rj})})) return s;
    if (norm != 0 && norm != 1) return zebStsBadArgErr;
    // Row 0 of the four is the scratch row; the flags follow row 3.
    const std::size_t rowBytes = (std::size_t(roi.width) * sizeof(T) + 31) & ~std::size_t(31);
    unsigned char* base = align_up(buffer, 32);
    T* tmp = reinterpret_cast<T*>(base);
    uint8_t* flags = base + 4 * rowBytes;
    if (norm == 0)
        ZEB_DISPATCH(recon::reconstruct<T, kDil, false>)(mask, ms, marker, js, roi.width, roi.height, tmp, flags);
    else
        ZEB_DISPATCH(recon::reconstruct<T, kDil, true>)(mask, ms, marker, js, roi.width, roi.height, tmp, flags);
    return zebStsNoErr;
}

}  // namespace

ZebStatus zebiMorphReconstructGetBufferSize(ZebiSize roi, ZebDataType type, int channels, int* size) {
    if (any_null(size)) return zebStsNullPtrErr;
    if (bad_roi(roi)) return zebStsSizeErr;
    if (type != zeb8u && type != zeb16u && type != zeb32f && type != kType64f) return zebStsDataTypeErr;
    if (channels != 1) return zebStsNumChannelsErr;
    return put_size(buffer_bytes(type, roi.width, roi.height), size);
}
ZebStatus zebiMorphReconstructGetBufferSize_8u_C1(ZebiSize roi, int* size) { return typed_size(roi, zeb8u, size); }
ZebStatus zebiMorphReconstructGetBufferSize_16u_C1(ZebiSize roi, int* size) { return typed_size(roi, zeb16u, size); }
ZebStatus zebiMorphReconstructGetBufferSize_32f_C1(ZebiSize roi, int* size) { return typed_size(roi, zeb32f, size); }
ZebStatus zebiMorphReconstructGetBufferSize_64f_C1(ZebiSize roi, int* size) { return typed_size(roi, kType64f, size); }

ZebStatus zebiMorphReconstructDilate_8u_C1IR(const Zeb8u* src, int ss, Zeb8u* sd, int sds, ZebiSize roi,
                                             Zeb8u* buffer, ZebiNorm norm) {
    return reconstruct<Zeb8u, true>(src, ss, sd, sds, roi, buffer, norm);
}
ZebStatus zebiMorphReconstructDilate_16u_C1IR(const Zeb16u* src, int ss, Zeb16u* sd, int sds, ZebiSize roi,
                                              Zeb8u* buffer, ZebiNorm norm) {
    return reconstruct<Zeb16u, true>(src, ss, sd, sds, roi, buffer, norm);
}
ZebStatus zebiMorphReconstructDilate_32f_C1IR(const Zeb32f* src, int ss, Zeb32f* sd, int sds, ZebiSize roi,
                                              Zeb8u* buffer, ZebiNorm norm) {
    return reconstruct<Zeb32f, true>(src, ss, sd, sds, roi, buffer, norm);
}
ZebStatus zebiMorphReconstructDilate_64f_C1IR(const Zeb64f* src, int ss, Zeb64f* sd, int sds, ZebiSize roi,
                                              Zeb8u* buffer, ZebiNorm norm) {
    return reconstruct<Zeb64f, true>(src, ss, sd, sds, roi, buffer, norm);
}
ZebStatus zebiMorphReconstructErode_8u_C1IR(const Zeb8u* src, int ss, Zeb8u* sd, int sds, ZebiSize roi,
                                            Zeb8u* buffer, ZebiNorm norm) {
    return reconstruct<Zeb8u, false>(src, ss, sd, sds, roi, buffer, norm);
}
ZebStatus zebiMorphReconstructErode_16u_C1IR(const Zeb16u* src, int ss, Zeb16u* sd, int sds, ZebiSize roi,
                                             Zeb8u* buffer, ZebiNorm norm) {
    return reconstruct<Zeb16u, false>(src, ss, sd, sds, roi, buffer, norm);
}
ZebStatus zebiMorphReconstructErode_32f_C1IR(const Zeb32f* src, int ss, Zeb32f* sd, int sds, ZebiSize roi,
                                             Zeb8u* buffer, ZebiNorm norm) {
    return reconstruct<Zeb32f, false>(src, ss, sd, sds, roi, buffer, norm);
}
ZebStatus zebiMorphReconstructErode_64f_C1IR(const Zeb64f* src, int ss, Zeb64f* sd, int sds, ZebiSize roi,
                                             Zeb8u* buffer, ZebiNorm norm) {
    return reconstruct<Zeb64f, false>(src, ss, sd, sds, roi, buffer, norm);
}

}  // namespace zeb::impl

ZEB_EXPORT(zebiMorphReconstructGetBufferSize);
ZEB_EXPORT(zebiMorphReconstructGetBufferSize_8u_C1);
ZEB_EXPORT(zebiMorphReconstructGetBufferSize_16u_C1);
ZEB_EXPORT(zebiMorphReconstructGetBufferSize_32f_C1);
ZEB_EXPORT(zebiMorphReconstructGetBufferSize_64f_C1);
ZEB_EXPORT(zebiMorphReconstructDilate_8u_C1IR);
ZEB_EXPORT(zebiMorphReconstructDilate_16u_C1IR);
ZEB_EXPORT(zebiMorphReconstructDilate_32f_C1IR);
ZEB_EXPORT(zebiMorphReconstructDilate_64f_C1IR);
ZEB_EXPORT(zebiMorphReconstructErode_8u_C1IR);
ZEB_EXPORT(zebiMorphReconstructErode_16u_C1IR);
ZEB_EXPORT(zebiMorphReconstructErode_32f_C1IR);
ZEB_EXPORT(zebiMorphReconstructErode_64f_C1IR);
#endif  // HWY_ONCE
