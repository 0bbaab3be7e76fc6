// SPDX-License-Identifier: Apache-2.0
// Scharr first derivatives with borders (3x3): Horiz (d/dy) and Vert
// (d/dx), oriented like the Sobel derivatives of the same direction, for
// 8u16s, 8u8s and 32f, with their buffer-size queries. The 8u8s forms
// store the sum itself, rounded and saturated as the Sobel 8u8s forms do.
#include "core/dispatch.h"
#include "filter/fixed_filter.h"

namespace zeb::impl {

using namespace fixed;

ZebStatus zebiFilterScharrHorizBorder_8u16s_C1R(const Zeb8u* pSrc, int srcStep, Zeb16s* pDst, int dstStep, ZebiSize roi,
                                                ZebiBorderType border, Zeb8u value, Zeb8u* pBuffer) {
    return run<ScharrHoriz3, ScharrHoriz3, Out::S16, false>(pSrc, srcStep, pDst, dstStep, roi, 0, border, value, 1,
                                                            pBuffer, false);
}
ZebStatus zebiFilterScharrHorizBorder_8u8s_C1R(const Zeb8u* pSrc, int srcStep, Zeb8s* pDst, int dstStep, ZebiSize roi,
                                               ZebiBorderType border, Zeb8u value, Zeb8u* pBuffer) {
    return run<ScharrHoriz3, ScharrHoriz3, Out::S8, false>(pSrc, srcStep, pDst, dstStep, roi, 0, border, value, 1,
                                                           pBuffer, false);
}
ZebStatus zebiFilterScharrHorizBorder_32f_C1R(const Zeb32f* pSrc, int srcStep, Zeb32f* pDst, int dstStep, ZebiSize roi,
                                              ZebiBorderType border, Zeb32f value, Zeb8u* pBuffer) {
    return run<ScharrHoriz3, ScharrHoriz3, Out::F32, false>(pSrc, srcStep, pDst, dstStep, roi, 0, border, value, 1,
                                                            pBuffer, false);
}
ZebStatus zebiFilterScharrHorizGetBufferSize_8u16s_C1R(ZebiSize roi, int* pSize) {
    return query_scharr(roi, pSize, ScharrKind::Small8u);
}
ZebStatus zebiFilterScharrHorizGetBufferSize_8u8s_C1R(ZebiSize roi, int* pSize) {
    return query_scharr(roi, pSize, ScharrKind::Small8u);
}
ZebStatus zebiFilterScharrHorizGetBufferSize_32f_C1R(ZebiSize roi, int* pSize) {
    return query_scharr(roi, pSize, ScharrKind::Float);
}

ZebStatus zebiFilterScharrVertBorder_8u16s_C1R(const Zeb8u* pSrc, int srcStep, Zeb16s* pDst, int dstStep, ZebiSize roi,
                                               ZebiBorderType border, Zeb8u value, Zeb8u* pBuffer) {
    return run<ScharrVert3, ScharrVert3, Out::S16, false>(pSrc, srcStep, pDst, dstStep, roi, 0, border, value, 1,
                                                          pBuffer, false);
}
ZebStatus zebiFilterScharrVertBorder_8u8s_C1R(const Zeb8u* pSrc, int srcStep, Zeb8s* pDst, int dstStep, ZebiSize roi,
                                              ZebiBorderType border, Zeb8u value, Zeb8u* pBuffer) {
    return run<ScharrVert3, ScharrVert3, Out::S8, false>(pSrc, srcStep, pDst, dstStep, roi, 0, border, value, 1,
                                                         pBuffer, false);
}
ZebStatus zebiFilterScharrVertBorder_32f_C1R(const Zeb32f* pSrc, int srcStep, Zeb32f* pDst, int dstStep, ZebiSize roi,
                                             ZebiBorderType border, Zeb32f value, Zeb8u* pBuffer) {
    return run<ScharrVert3, ScharrVert3, Out::F32, false>(pSrc, srcStep, pDst, dstStep, roi, 0, border, value, 1,
                                                          pBuffer, false);
}
ZebStatus zebiFilterScharrVertGetBufferSize_8u16s_C1R(ZebiSize roi, int* pSize) {
    return query_scharr(roi, pSize, ScharrKind::Vert8u16s);
}
ZebStatus zebiFilterScharrVertGetBufferSize_8u8s_C1R(ZebiSize roi, int* pSize) {
    return query_scharr(roi, pSize, ScharrKind::Small8u);
}
ZebStatus zebiFilterScharrVertGetBufferSize_32f_C1R(ZebiSize roi, int* pSize) {
    return query_scharr(roi, pSize, ScharrKind::Float);
}

}  // namespace zeb::impl

ZEB_EXPORT(zebiFilterScharrHorizBorder_8u16s_C1R);
ZEB_EXPORT(zebiFilterScharrHorizBorder_8u8s_C1R);
ZEB_EXPORT(zebiFilterScharrHorizBorder_32f_C1R);
ZEB_EXPORT(zebiFilterScharrHorizGetBufferSize_8u16s_C1R);
ZEB_EXPORT(zebiFilterScharrHorizGetBufferSize_8u8s_C1R);
ZEB_EXPORT(zebiFilterScharrHorizGetBufferSize_32f_C1R);
ZEB_EXPORT(zebiFilterScharrVertBorder_8u16s_C1R);
ZEB_EXPORT(zebiFilterScharrVertBorder_8u8s_C1R);
ZEB_EXPORT(zebiFilterScharrVertBorder_32f_C1R);
ZEB_EXPORT(zebiFilterScharrVertGetBufferSize_8u16s_C1R);
ZEB_EXPORT(zebiFilterScharrVertGetBufferSize_8u8s_C1R);
ZEB_EXPORT(zebiFilterScharrVertGetBufferSize_32f_C1R);
