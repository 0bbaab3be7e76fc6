// SPDX-License-Identifier: Apache-2.0
// Sobel second and cross derivatives with borders: HorizSecond (d2/dy2),
// VertSecond (d2/dx2) and Cross (d2/dxdy), 3x3 and 5x5, for 8u16s, 8u8s and
// 32f, with their buffer-size queries.
#include "core/dispatch.h"
#include "filter/fixed_filter.h"

namespace zeb::impl {

using namespace fixed;

ZebStatus zebiFilterSobelHorizSecondBorder_8u16s_C1R(const Zeb8u* pSrc, int srcStep, Zeb16s* pDst, int dstStep,
                                                     ZebiSize roi, ZebiMaskSize mask, ZebiBorderType border,
                                                     Zeb8u value, Zeb8u* pBuffer) {
    return run<SobelHorizSecond3, SobelHorizSecond5, Out::S16, false>(pSrc, srcStep, pDst, dstStep, roi, mask, border,
                                                                      value, 1, pBuffer);
}
ZebStatus zebiFilterSobelHorizSecondBorder_8u8s_C1R(const Zeb8u* pSrc, int srcStep, Zeb8s* pDst, int dstStep,
                                                    ZebiSize roi, ZebiMaskSize mask, ZebiBorderType border, Zeb8u value,
                                                    int divisor, Zeb8u* pBuffer) {
    return run<SobelHorizSecond3, SobelHorizSecond5, Out::S8, true>(pSrc, srcStep, pDst, dstStep, roi, mask, border,
                                                                    value, divisor, pBuffer);
}
ZebStatus zebiFilterSobelHorizSecondBorder_32f_C1R(const Zeb32f* pSrc, int srcStep, Zeb32f* pDst, int dstStep,
                                                   ZebiSize roi, ZebiMaskSize mask, ZebiBorderType border, Zeb32f value,
                                                   Zeb8u* pBuffer) {
    return run<SobelHorizSecond3, SobelHorizSecond5, Out::F32, false>(pSrc, srcStep, pDst, dstStep, roi, mask, border,
                                                                      value, 1, pBuffer);
}
ZebStatus zebiFilterSobelHorizSecondGetBufferSize_8u16s_C1R(ZebiSize roi, ZebiMaskSize mask, int* pSize) {
    return query(roi, mask, pSize, SizeKind::Sobel8u16s);
}
ZebStatus zebiFilterSobelHorizSecondGetBufferSize_8u8s_C1R(ZebiSize roi, ZebiMaskSize mask, int* pSize) {
    return query(roi, mask, pSize, SizeKind::Sobel8u8s);
}
ZebStatus zebiFilterSobelHorizSecondGetBufferSize_32f_C1R(ZebiSize roi, ZebiMaskSize mask, int* pSize) {
    return query(roi, mask, pSize, SizeKind::Sobel32f);
}

ZebStatus zebiFilterSobelVertSecondBorder_8u16s_C1R(const Zeb8u* pSrc, int srcStep, Zeb16s* pDst, int dstStep,
                                                    ZebiSize roi, ZebiMaskSize mask, ZebiBorderType border, Zeb8u value,
                                                    Zeb8u* pBuffer) {
    return run<SobelVertSecond3, SobelVertSecond5, Out::S16, false>(pSrc, srcStep, pDst, dstStep, roi, mask, border,
                                                                    value, 1, pBuffer);
}
ZebStatus zebiFilterSobelVertSecondBorder_8u8s_C1R(const Zeb8u* pSrc, int srcStep, Zeb8s* pDst, int dstStep,
                                                   ZebiSize roi, ZebiMaskSize mask, ZebiBorderType border, Zeb8u value,
                                                   int divisor, Zeb8u* pBuffer) {
    return run<SobelVertSecond3, SobelVertSecond5, Out::S8, true>(pSrc, srcStep, pDst, dstStep, roi, mask, border,
                                                                  value, divisor, pBuffer);
}
ZebStatus zebiFilterSobelVertSecondBorder_32f_C1R(const Zeb32f* pSrc, int srcStep, Zeb32f* pDst, int dstStep,
                                                  ZebiSize roi, ZebiMaskSize mask, ZebiBorderType border, Zeb32f value,
                                                  Zeb8u* pBuffer) {
    return run<SobelVertSecond3, SobelVertSecond5, Out::F32, false>(pSrc, srcStep, pDst, dstStep, roi, mask, border,
                                                                    value, 1, pBuffer);
}
ZebStatus zebiFilterSobelVertSecondGetBufferSize_8u16s_C1R(ZebiSize roi, ZebiMaskSize mask, int* pSize) {
    return query(roi, mask, pSize, SizeKind::Sobel8u16s);
}
ZebStatus zebiFilterSobelVertSecondGetBufferSize_8u8s_C1R(ZebiSize roi, ZebiMaskSize mask, int* pSize) {
    return query(roi, mask, pSize, SizeKind::Sobel8u8s);
}
ZebStatus zebiFilterSobelVertSecondGetBufferSize_32f_C1R(ZebiSize roi, ZebiMaskSize mask, int* pSize) {
    return query(roi, mask, pSize, SizeKind::Sobel32f);
}

ZebStatus zebiFilterSobelCrossBorder_8u16s_C1R(const Zeb8u* pSrc, int srcStep, Zeb16s* pDst, int dstStep, ZebiSize roi,
                                               ZebiMaskSize mask, ZebiBorderType border, Zeb8u value, Zeb8u* pBuffer) {
    return run<SobelCross3, SobelCross5, Out::S16, false>(pSrc, srcStep, pDst, dstStep, roi, mask, border, value, 1,
                                                          pBuffer);
}
ZebStatus zebiFilterSobelCrossBorder_8u8s_C1R(const Zeb8u* pSrc, int srcStep, Zeb8s* pDst, int dstStep, ZebiSize roi,
                                              ZebiMaskSize mask, ZebiBorderType border, Zeb8u value, int divisor,
                                              Zeb8u* pBuffer) {
    return run<SobelCross3, SobelCross5, Out::S8, true>(pSrc, srcStep, pDst, dstStep, roi, mask, border, value, divisor,
                                                        pBuffer);
}
ZebStatus zebiFilterSobelCrossBorder_32f_C1R(const Zeb32f* pSrc, int srcStep, Zeb32f* pDst, int dstStep, ZebiSize roi,
                                             ZebiMaskSize mask, ZebiBorderType border, Zeb32f value, Zeb8u* pBuffer) {
    return run<SobelCross3, SobelCross5, Out::F32, false>(pSrc, srcStep, pDst, dstStep, roi, mask, border, value, 1,
                                                          pBuffer);
}
ZebStatus zebiFilterSobelCrossGetBufferSize_8u16s_C1R(ZebiSize roi, ZebiMaskSize mask, int* pSize) {
    return query(roi, mask, pSize, SizeKind::Sobel8u16s);
}
ZebStatus zebiFilterSobelCrossGetBufferSize_8u8s_C1R(ZebiSize roi, ZebiMaskSize mask, int* pSize) {
    return query(roi, mask, pSize, SizeKind::Sobel8u8s);
}
ZebStatus zebiFilterSobelCrossGetBufferSize_32f_C1R(ZebiSize roi, ZebiMaskSize mask, int* pSize) {
    return query(roi, mask, pSize, SizeKind::Sobel32f);
}

}  // namespace zeb::impl

ZEB_EXPORT(zebiFilterSobelHorizSecondBorder_8u16s_C1R);
ZEB_EXPORT(zebiFilterSobelHorizSecondBorder_8u8s_C1R);
ZEB_EXPORT(zebiFilterSobelHorizSecondBorder_32f_C1R);
ZEB_EXPORT(zebiFilterSobelHorizSecondGetBufferSize_8u16s_C1R);
ZEB_EXPORT(zebiFilterSobelHorizSecondGetBufferSize_8u8s_C1R);
ZEB_EXPORT(zebiFilterSobelHorizSecondGetBufferSize_32f_C1R);
ZEB_EXPORT(zebiFilterSobelVertSecondBorder_8u16s_C1R);
ZEB_EXPORT(zebiFilterSobelVertSecondBorder_8u8s_C1R);
ZEB_EXPORT(zebiFilterSobelVertSecondBorder_32f_C1R);
ZEB_EXPORT(zebiFilterSobelVertSecondGetBufferSize_8u16s_C1R);
ZEB_EXPORT(zebiFilterSobelVertSecondGetBufferSize_8u8s_C1R);
ZEB_EXPORT(zebiFilterSobelVertSecondGetBufferSize_32f_C1R);
ZEB_EXPORT(zebiFilterSobelCrossBorder_8u16s_C1R);
ZEB_EXPORT(zebiFilterSobelCrossBorder_8u8s_C1R);
ZEB_EXPORT(zebiFilterSobelCrossBorder_32f_C1R);
ZEB_EXPORT(zebiFilterSobelCrossGetBufferSize_8u16s_C1R);
ZEB_EXPORT(zebiFilterSobelCrossGetBufferSize_8u8s_C1R);
ZEB_EXPORT(zebiFilterSobelCrossGetBufferSize_32f_C1R);
