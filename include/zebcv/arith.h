/* SPDX-License-Identifier: Apache-2.0 */
/* Pixel difference and accumulation.
 *
 * Accumulators are one-channel Zeb32f images updated in place; masked forms
 * (IMR) change only the elements whose mask byte is non-zero. Every float
 * operation rounds to nearest in single precision in the order written:
 *   Add          A = A + s
 *   AddSquare    A = A + s*s
 *   AddProduct   A = A + s1*s2
 *   AddWeighted  A = (s - A)*alpha + A     (difference form, no fused ops)
 */
#ifndef ZEBCV_ARITH_H
#define ZEBCV_ARITH_H

#include "zebcv/types.h"

/* Store kind. Members with a working-set figure use streaming
 * (cache-bypassing) stores when height * width * figure, a 32-bit product,
 * reaches the largest data cache (zebGetMaxCacheSizeB; a failed query
 * counts as 0, so such members then always stream). Results never depend
 * on it. Figures, in bytes per pixel: AbsDiff 16u 6, 32f 12; AbsDiffC 16u 6,
 * 32f 8; masked AddSquare 32f 12; masked AddProduct 8u and 8s 7, 16u 9,
 * 32f 13; masked AddWeighted 8u and 8s 5, 16u 7, 32f 9. Every other member
 * always uses ordinary stores. */

ZEB_EXTERN_C_BEGIN

/* dst = |src1 - src2| */
ZEB_API ZebStatus zebiAbsDiff_8u_C1R(const Zeb8u* pSrc1, int src1Step, const Zeb8u* pSrc2, int src2Step,
                                     Zeb8u* pDst, int dstStep, ZebiSize roiSize);
ZEB_API ZebStatus zebiAbsDiff_8u_C3R(const Zeb8u* pSrc1, int src1Step, const Zeb8u* pSrc2, int src2Step,
                                     Zeb8u* pDst, int dstStep, ZebiSize roiSize);
ZEB_API ZebStatus zebiAbsDiff_16u_C1R(const Zeb16u* pSrc1, int src1Step, const Zeb16u* pSrc2, int src2Step,
                                      Zeb16u* pDst, int dstStep, ZebiSize roiSize);
ZEB_API ZebStatus zebiAbsDiff_32f_C1R(const Zeb32f* pSrc1, int src1Step, const Zeb32f* pSrc2, int src2Step,
                                      Zeb32f* pDst, int dstStep, ZebiSize roiSize);

/* dst = |src - value|; integer values are first clamped to the type's range. */
ZEB_API ZebStatus zebiAbsDiffC_8u_C1R(const Zeb8u* pSrc, int srcStep, Zeb8u* pDst, int dstStep,
                                      ZebiSize roiSize, int value);
ZEB_API ZebStatus zebiAbsDiffC_16u_C1R(const Zeb16u* pSrc, int srcStep, Zeb16u* pDst, int dstStep,
                                       ZebiSize roiSize, int value);
ZEB_API ZebStatus zebiAbsDiffC_32f_C1R(const Zeb32f* pSrc, int srcStep, Zeb32f* pDst, int dstStep,
                                       ZebiSize roiSize, Zeb32f value);

/* A = A + s */
ZEB_API ZebStatus zebiAdd_8u32f_C1IR(const Zeb8u* pSrc, int srcStep, Zeb32f* pSrcDst, int srcDstStep,
                                     ZebiSize roiSize);
ZEB_API ZebStatus zebiAdd_8s32f_C1IR(const Zeb8s* pSrc, int srcStep, Zeb32f* pSrcDst, int srcDstStep,
                                     ZebiSize roiSize);
ZEB_API ZebStatus zebiAdd_16u32f_C1IR(const Zeb16u* pSrc, int srcStep, Zeb32f* pSrcDst, int srcDstStep,
                                      ZebiSize roiSize);
ZEB_API ZebStatus zebiAdd_8u32f_C1IMR(const Zeb8u* pSrc, int srcStep, const Zeb8u* pMask, int maskStep,
                                      Zeb32f* pSrcDst, int srcDstStep, ZebiSize roiSize);
ZEB_API ZebStatus zebiAdd_8s32f_C1IMR(const Zeb8s* pSrc, int srcStep, const Zeb8u* pMask, int maskStep,
                                      Zeb32f* pSrcDst, int srcDstStep, ZebiSize roiSize);
ZEB_API ZebStatus zebiAdd_16u32f_C1IMR(const Zeb16u* pSrc, int srcStep, const Zeb8u* pMask, int maskStep,
                                       Zeb32f* pSrcDst, int srcDstStep, ZebiSize roiSize);
ZEB_API ZebStatus zebiAdd_32f_C1IMR(const Zeb32f* pSrc, int srcStep, const Zeb8u* pMask, int maskStep,
                                    Zeb32f* pSrcDst, int srcDstStep, ZebiSize roiSize);

/* A = A + s*s */
ZEB_API ZebStatus zebiAddSquare_8u32f_C1IR(const Zeb8u* pSrc, int srcStep, Zeb32f* pSrcDst, int srcDstStep,
                                           ZebiSize roiSize);
ZEB_API ZebStatus zebiAddSquare_8s32f_C1IR(const Zeb8s* pSrc, int srcStep, Zeb32f* pSrcDst, int srcDstStep,
                                           ZebiSize roiSize);
ZEB_API ZebStatus zebiAddSquare_16u32f_C1IR(const Zeb16u* pSrc, int srcStep, Zeb32f* pSrcDst, int srcDstStep,
                                            ZebiSize roiSize);
ZEB_API ZebStatus zebiAddSquare_32f_C1IR(const Zeb32f* pSrc, int srcStep, Zeb32f* pSrcDst, int srcDstStep,
                                         ZebiSize roiSize);
ZEB_API ZebStatus zebiAddSquare_8u32f_C1IMR(const Zeb8u* pSrc, int srcStep, const Zeb8u* pMask, int maskStep,
                                            Zeb32f* pSrcDst, int srcDstStep, ZebiSize roiSize);
ZEB_API ZebStatus zebiAddSquare_8s32f_C1IMR(const Zeb8s* pSrc, int srcStep, const Zeb8u* pMask, int maskStep,
                                            Zeb32f* pSrcDst, int srcDstStep, ZebiSize roiSize);
ZEB_API ZebStatus zebiAddSquare_16u32f_C1IMR(const Zeb16u* pSrc, int srcStep, const Zeb8u* pMask, int maskStep,
                                             Zeb32f* pSrcDst, int srcDstStep, ZebiSize roiSize);
ZEB_API ZebStatus zebiAddSquare_32f_C1IMR(const Zeb32f* pSrc, int srcStep, const Zeb8u* pMask, int maskStep,
                                          Zeb32f* pSrcDst, int srcDstStep, ZebiSize roiSize);

/* A = A + s1*s2 */
ZEB_API ZebStatus zebiAddProduct_8u32f_C1IR(const Zeb8u* pSrc1, int src1Step, const Zeb8u* pSrc2, int src2Step,
                                            Zeb32f* pSrcDst, int srcDstStep, ZebiSize roiSize);
ZEB_API ZebStatus zebiAddProduct_8s32f_C1IR(const Zeb8s* pSrc1, int src1Step, const Zeb8s* pSrc2, int src2Step,
                                            Zeb32f* pSrcDst, int srcDstStep, ZebiSize roiSize);
ZEB_API ZebStatus zebiAddProduct_16u32f_C1IR(const Zeb16u* pSrc1, int src1Step, const Zeb16u* pSrc2,
                                             int src2Step, Zeb32f* pSrcDst, int srcDstStep, ZebiSize roiSize);
ZEB_API ZebStatus zebiAddProduct_32f_C1IR(const Zeb32f* pSrc1, int src1Step, const Zeb32f* pSrc2, int src2Step,
                                          Zeb32f* pSrcDst, int srcDstStep, ZebiSize roiSize);
ZEB_API ZebStatus zebiAddProduct_8u32f_C1IMR(const Zeb8u* pSrc1, int src1Step, const Zeb8u* pSrc2, int src2Step,
                                             const Zeb8u* pMask, int maskStep, Zeb32f* pSrcDst, int srcDstStep,
                                             ZebiSize roiSize);
ZEB_API ZebStatus zebiAddProduct_8s32f_C1IMR(const Zeb8s* pSrc1, int src1Step, const Zeb8s* pSrc2, int src2Step,
                                             const Zeb8u* pMask, int maskStep, Zeb32f* pSrcDst, int srcDstStep,
                                             ZebiSize roiSize);
ZEB_API ZebStatus zebiAddProduct_16u32f_C1IMR(const Zeb16u* pSrc1, int src1Step, const Zeb16u* pSrc2,
                                              int src2Step, const Zeb8u* pMask, int maskStep, Zeb32f* pSrcDst,
                                              int srcDstStep, ZebiSize roiSize);
ZEB_API ZebStatus zebiAddProduct_32f_C1IMR(const Zeb32f* pSrc1, int src1Step, const Zeb32f* pSrc2, int src2Step,
                                           const Zeb8u* pMask, int maskStep, Zeb32f* pSrcDst, int srcDstStep,
                                           ZebiSize roiSize);

/* A = (s - A)*alpha + A; alpha is not checked. */
ZEB_API ZebStatus zebiAddWeighted_8u32f_C1IR(const Zeb8u* pSrc, int srcStep, Zeb32f* pSrcDst, int srcDstStep,
                                             ZebiSize roiSize, Zeb32f alpha);
ZEB_API ZebStatus zebiAddWeighted_8s32f_C1IR(const Zeb8s* pSrc, int srcStep, Zeb32f* pSrcDst, int srcDstStep,
                                             ZebiSize roiSize, Zeb32f alpha);
ZEB_API ZebStatus zebiAddWeighted_16u32f_C1IR(const Zeb16u* pSrc, int srcStep, Zeb32f* pSrcDst, int srcDstStep,
                                              ZebiSize roiSize, Zeb32f alpha);
ZEB_API ZebStatus zebiAddWeighted_32f_C1IR(const Zeb32f* pSrc, int srcStep, Zeb32f* pSrcDst, int srcDstStep,
                                           ZebiSize roiSize, Zeb32f alpha);
ZEB_API ZebStatus zebiAddWeighted_8u32f_C1IMR(const Zeb8u* pSrc, int srcStep, const Zeb8u* pMask, int maskStep,
                                              Zeb32f* pSrcDst, int srcDstStep, ZebiSize roiSize, Zeb32f alpha);
ZEB_API ZebStatus zebiAddWeighted_8s32f_C1IMR(const Zeb8s* pSrc, int srcStep, const Zeb8u* pMask, int maskStep,
                                              Zeb32f* pSrcDst, int srcDstStep, ZebiSize roiSize, Zeb32f alpha);
ZEB_API ZebStatus zebiAddWeighted_16u32f_C1IMR(const Zeb16u* pSrc, int srcStep, const Zeb8u* pMask, int maskStep,
                                               Zeb32f* pSrcDst, int srcDstStep, ZebiSize roiSize, Zeb32f alpha);
ZEB_API ZebStatus zebiAddWeighted_32f_C1IMR(const Zeb32f* pSrc, int srcStep, const Zeb8u* pMask, int maskStep,
                                            Zeb32f* pSrcDst, int srcDstStep, ZebiSize roiSize, Zeb32f alpha);
/* dst = (src1 - src2)*alpha + src2 */
ZEB_API ZebStatus zebiAddWeighted_32f_C1R(const Zeb32f* pSrc1, int src1Step, const Zeb32f* pSrc2, int src2Step,
                                          Zeb32f* pDst, int dstStep, ZebiSize roiSize, Zeb32f alpha);

ZEB_EXTERN_C_END

#endif /* ZEBCV_ARITH_H */
