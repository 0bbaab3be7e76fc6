// SPDX-License-Identifier: Apache-2.0
// Sobel first derivatives with borders: Horiz (d/dy), Vert (d/dx) and
// NegVert (-d/dx), 3x3 and 5x5, for 8u16s, 8u8s and 32f, with their
// buffer-size queries.
#include "core/dispatch.h"
#include "filter/fixed_filter.h"

namespace zeb::impl {

using namespace fixed;

ZebStatus zebiFilterSobelHorizBorder_8u16s_C1R(const Zeb8u* pSrc, int srcStep, Zeb16s* pDst, int dstStep, ZebiSize roi,
                                               ZebiMaskSize mask, ZebiBorderType border, Zeb8u value, Zeb8u* pBuffer) {
    return run<SobelHoriz3, SobelHoriz5, Out::S16, false>(pSrc, srcStep, pDst, dstStep, roi, mask, border, value, 1,
                                                          pBuffer);
}
ZebStatus zebiFilterSobelHorizBorder_8u8s_C1R(const Zeb8u* pSrc, int srcStep, Zeb8s* pDst, int dstStep, ZebiSize roi,
                                              ZebiMaskSize mask, ZebiBorderType border, Zeb8u value, int divisor,
                                              Zeb8u* pBuffer) {
    return run<SobelHoriz3, SobelHoriz5, Out::S8, true>(pSrc, srcStep, pDst, dstStep, roi, mask, border, value, divisor,
                                                        pBuffer);
}
ZebStatus zebiFilterSobelHorizBorder_32f_C1R(const Zeb32f* pSrc, int srcStep, Zeb32f* pDst, int dstStep, ZebiSize roi,
                                             ZebiMaskSize mask, ZebiBorderType border, Zeb32f value, Zeb8u* pBuffer) {
    return run<SobelHoriz3, SobelHoriz5, Out::F32, false>(pSrc, srcStep, pDst, dstStep, roi, mask, border, value, 1,
                                                          pBuffer);
}
ZebStatus zebiFilterSobelHorizGetBufferSize_8u16s_C1R(ZebiSize roi, ZebiMaskSize mask, int* pSize) {
    return query(roi, mask, pSize, SizeKind::Sobel8u16s);
}
ZebStatus zebiFilterSobelHorizGetBufferSize_8u8s_C1R(ZebiSize roi, ZebiMaskSize mask, int* pSize) {
    return query(roi, mask, pSize, SizeKind::Sobel8u8s);
}
ZebStatus zebiFilterSobelHorizGetBufferSize_32f_C1R(ZebiSize roi, ZebiMaskSize mask, int* pSize) {
    return query(roi, mask, pSize, SizeKind::Sobel32f);
}

ZebStatus zebiFilterSobelVertBorder_8u16s_C1R(const Zeb8u* pSrc, int srcStep, Zeb16s* pDst, int dstStep, ZebiSize roi,
                                              ZebiMaskSize mask, ZebiBorderType border, Zeb8u value, Zeb8u* pBuffer) {
    return run<SobelVert3, SobelVert5, Out::S16, false>(pSrc, srcStep, pDst, dstStep, roi, mask, border, value, 1,
                                                        pBuffer);
}
ZebStatus zebiFilterSobelVertBorder_8u8s_C1R(const Zeb8u* pSrc, int srcStep, Zeb8s* pDst, int dstStep, ZebiSize roi,
                                             ZebiMaskSize mask, ZebiBorderType border, Zeb8u value, int divisor,
                                             Zeb8u* pBuffer) {
    return run<SobelVert3, SobelVert5, Out::S8, true>(pSrc, srcStep, pDst, dstStep, roi, mask, border, value, divisor,
                                                      pBuffer);
}
ZebStatus zebiFilterSobelVertBorder_32f_C1R(const Zeb32f* pSrc, int srcStep, Zeb32f* pDst, int dstStep, ZebiSize roi,
                                            ZebiMaskSize mask, ZebiBorderType border, Zeb32f value, Zeb8u* pBuffer) {
    return run<SobelVert3, SobelVert5, Out::F32, false>(pSrc, srcStep, pDst, dstStep, roi, mask, border, value, 1,
                                                        pBuffer);
}
ZebStatus zebiFilterSobelVertGetBufferSize_8u16s_C1R(ZebiSize roi, ZebiMaskSize mask, int* pSize) {
    return query(roi, mask, pSize, SizeKind::Sobel8u16s);
}
ZebStatus zebiFilterSobelVertGetBufferSize_8u8s_C1R(ZebiSize roi, ZebiMaskSize mask, int* pSize) {
    return query(roi, mask, pSize, SizeKind::Sobel8u8s);
}
ZebStatus zebiFilterSobelVertGetBufferSize_32f_C1R(ZebiSize roi, ZebiMaskSize mask, int* pSize) {
    return query(roi, mask, pSize, SizeKind::Sobel32f);
}

// NegVert runs the Vert tables and negates the exact (or correctly
// rounded) sum, so it is the exact negation of Vert.
ZebStatus zebiFilterSobelNegVertBorder_8u16s_C1R(const Zeb8u* pSrc, int srcStep, Zeb16s* pDst, int dstStep,
                                                 ZebiSize roi, ZebiMaskSize mask, ZebiBorderType border, Zeb8u value,
                                                 Zeb8u* pBuffer) {
    return run<SobelVert3, SobelVert5, Out::S16Neg, false>(pSrc, srcStep, pDst, dstStep, roi, mask, border, value, 1,
                                                           pBuffer);
}
ZebStatus zebiFilterSobelNegVertBorder_8u8s_C1R(const Zeb8u* pSrc, int srcStep, Zeb8s* pDst, int dstStep, ZebiSize roi,
                                                ZebiMaskSize mask, ZebiBorderType border, Zeb8u value, int divisor,
                                                Zeb8u* pBuffer) {
    return run<SobelVert3, SobelVert5, Out::S8Neg, true>(pSrc, srcStep, pDst, dstStep, roi, mask, border, value,
                                                         divisor, pBuffer);
}
ZebStatus zebiFilterSobelNegVertBorder_32f_C1R(const Zeb32f* pSrc, int srcStep, Zeb32f* pDst, int dstStep, ZebiSize roi,
                                               ZebiMaskSize mask, ZebiBorderType border, Zeb32f value, Zeb8u* pBuffer) {
    return run<SobelVert3, SobelVert5, Out::F32Neg, false>(pSrc, srcStep, pDst, dstStep, roi, mask, border, value, 1,
                                                           pBuffer);
}
ZebStatus zebiFilterSobelNegVertGetBufferSize_8u16s_C1R(ZebiSize roi, ZebiMaskSize mask, int* pSize) {
    return query(roi, mask, pSize, SizeKind::Sobel8u16s);
}
ZebStatus zebiFilterSobelNegVertGetBufferSize_8u8s_C1R(ZebiSize roi, ZebiMaskSize mask, int* pSize) {
    return query(roi, mask, pSize, SizeKind::Sobel8u8s);
}
ZebStatus zebiFilterSobelNegVertGetBufferSize_32f_C1R(ZebiSize roi, ZebiMaskSize mask, int* pSize) {
    return query(roi, mask, pSize, SizeKind::Sobel32f);
}

}  // namespace zeb::impl

ZEB_EXPORT(zebiFilterSobelHorizBorder_8u16s_C1R);
ZEB_EXPORT(zebiFilterSobelHorizBorder_8u8s_C1R);
ZEB_EXPORT(zebiFilterSobelHorizBorder_32f_C1R);
ZEB_EXPORT(zebiFilterSobelHorizGetBufferSize_8u16s_C1R);
ZEB_EXPORT(zebiFilterSobelHorizGetBufferSize_8u8s_C1R);
ZEB_EXPORT(zebiFilterSobelHorizGetBufferSize_32f_C1R);
ZEB_EXPORT(zebiFilterSobelVertBorder_8u16s_C1R);
ZEB_EXPORT(zebiFilterSobelVertBorder_8u8s_C1R);
ZEB_EXPORT(zebiFilterSobelVertBorder_32f_C1R);
ZEB_EXPORT(zebiFilterSobelVertGetBufferSize_8u16s_C1R);
ZEB_EXPORT(zebiFilterSobelVertGetBufferSize_8u8s_C1R);
ZEB_EXPORT(zebiFilterSobelVertGetBufferSize_32f_C1R);
ZEB_EXPORT(zebiFilterSobelNegVertBorder_8u16s_C1R);
ZEB_EXPORT(zebiFilterSobelNegVertBorder_8u8s_C1R);
ZEB_EXPORT(zebiFilterSobelNegVertBorder_32f_C1R);
ZEB_EXPORT(zebiFilterSobelNegVertGetBufferSize_8u16s_C1R);
ZEB_EXPORT(zebiFilterSobelNegVertGetBufferSize_8u8s_C1R);
ZEB_EXPORT(zebiFilterSobelNegVertGetBufferSize_32f_C1R);
