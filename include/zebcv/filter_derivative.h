/* SPDX-License-Identifier: Apache-2.0 */
/* Derivative and smoothing filters with borders: Sobel, Scharr, Laplacian, lowpass.
 *
 * Every filter reads a 3x3 or 5x5 neighbourhood (maskSize zebMskSize3x3 or
 * zebMskSize5x5; the Scharr filters are 3x3 only) and supplies the pixels
 * outside the image by the border argument: the low four bits are the mode
 * (zebBorderConst with borderValue, zebBorderRepl, zebBorderWrap,
 * zebBorderMirror, zebBorderMirrorEdge, or zebBorderInMem for all sides in
 * memory), the flags zebBorderInMemTop/Bottom/Left/Right say that the pixels
 * beyond that side of the ROI are readable in the caller's image. Rows above
 * and below come from memory or from the mode; each of those rows is then
 * extended to the left and right from memory or by the mode, so the corners
 * follow the left/right rule. A filter reads at most 1 (3x3) or 2 (5x5)
 * pixels beyond a side in memory.
 *
 * Orientation (x grows to the right, y downwards):
 *   SobelHoriz       d/dy: 3x3 [-1 -2 -1; 0 0 0; 1 2 1] (row below minus row above)
 *   SobelVert        d/dx: 3x3 [-1 0 1; -2 0 2; -1 0 1] (right minus left)
 *   SobelNegVert     exactly -SobelVert
 *   SobelHorizSecond d2/dy2, SobelVertSecond d2/dx2, SobelCross d2/dxdy
 *                    (3x3 [1 0 -1; 0 0 0; -1 0 1])
 *   ScharrHoriz      [-3 -10 -3; 0 0 0; 3 10 3], ScharrVert its transpose
 *   Laplacian        3x3 [2 0 2; 0 -8 0; 2 0 2]; 5x5 d2/dx2 + d2/dy2 of the
 *                    5x5 Sobel second derivatives
 *   Lowpass          mean of the 3x3 or 5x5 neighbourhood
 * The 5x5 Sobel kernels are the outer products of 1 4 6 4 1 (smoothing),
 * -1 -2 0 2 1 (first derivative) and 1 0 -2 0 1 (second derivative).
 *
 * Results: 8u16s forms store the exact integer sum. 8u8s forms store the
 * sum divided by `divisor` (Sobel) or the sum itself (Scharr, Laplacian),
 * rounded half away from zero and saturated to -127..127, so that a negated
 * filter stays the exact negation. 32f forms sum in single precision: first
 * down each column of the neighbourhood, then along the row, coefficients in
 * order of increasing coordinate. The lowpass 8u result is the sum divided by
 * 9 or 25 rounded to nearest; the 32f result is the sum times 1/9 or 1/25.
 *
 * Each filter needs a work buffer of the size its GetBufferSize query gives.
 * A query checks pBufferSize (zebStsNullPtrErr), the ROI size
 * (zebStsSizeErr) and the mask size (zebStsMaskSizeErr) in that order; a
 * width whose buffer would not fit an int gives zebStsSizeErr, with nothing
 * written. */
#ifndef ZEBCV_FILTER_DERIVATIVE_H
#define ZEBCV_FILTER_DERIVATIVE_H

#include "zebcv/types.h"

ZEB_EXTERN_C_BEGIN

/* ---- Sobel ---- */
ZEB_API ZebStatus zebiFilterSobelHorizBorder_8u16s_C1R(const Zeb8u* pSrc, int srcStep, Zeb16s* pDst, int dstStep,
                                                       ZebiSize roiSize, ZebiMaskSize maskSize,
                                                       ZebiBorderType borderType, Zeb8u borderValue, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiFilterSobelVertBorder_8u16s_C1R(const Zeb8u* pSrc, int srcStep, Zeb16s* pDst, int dstStep,
                                                      ZebiSize roiSize, ZebiMaskSize maskSize,
                                                      ZebiBorderType borderType, Zeb8u borderValue, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiFilterSobelNegVertBorder_8u16s_C1R(const Zeb8u* pSrc, int srcStep, Zeb16s* pDst, int dstStep,
                                                         ZebiSize roiSize, ZebiMaskSize maskSize,
                                                         ZebiBorderType borderType, Zeb8u borderValue,
                                                         Zeb8u* pBuffer);
ZEB_API ZebStatus zebiFilterSobelHorizSecondBorder_8u16s_C1R(const Zeb8u* pSrc, int srcStep, Zeb16s* pDst,
                                                             int dstStep, ZebiSize roiSize, ZebiMaskSize maskSize,
                                                             ZebiBorderType borderType, Zeb8u borderValue,
                                                             Zeb8u* pBuffer);
ZEB_API ZebStatus zebiFilterSobelVertSecondBorder_8u16s_C1R(const Zeb8u* pSrc, int srcStep, Zeb16s* pDst,
                                                            int dstStep, ZebiSize roiSize, ZebiMaskSize maskSize,
                                                            ZebiBorderType borderType, Zeb8u borderValue,
                                                            Zeb8u* pBuffer);
ZEB_API ZebStatus zebiFilterSobelCrossBorder_8u16s_C1R(const Zeb8u* pSrc, int srcStep, Zeb16s* pDst, int dstStep,
                                                       ZebiSize roiSize, ZebiMaskSize maskSize,
                                                       ZebiBorderType borderType, Zeb8u borderValue, Zeb8u* pBuffer);

ZEB_API ZebStatus zebiFilterSobelHorizBorder_8u8s_C1R(const Zeb8u* pSrc, int srcStep, Zeb8s* pDst, int dstStep,
                                                      ZebiSize roiSize, ZebiMaskSize maskSize,
                                                      ZebiBorderType borderType, Zeb8u borderValue, int divisor,
                                                      Zeb8u* pBuffer);
ZEB_API ZebStatus zebiFilterSobelVertBorder_8u8s_C1R(const Zeb8u* pSrc, int srcStep, Zeb8s* pDst, int dstStep,
                                                     ZebiSize roiSize, ZebiMaskSize maskSize,
                                                     ZebiBorderType borderType, Zeb8u borderValue, int divisor,
                                                     Zeb8u* pBuffer);
ZEB_API ZebStatus zebiFilterSobelNegVertBorder_8u8s_C1R(const Zeb8u* pSrc, int srcStep, Zeb8s* pDst, int dstStep,
                                                        ZebiSize roiSize, ZebiMaskSize maskSize,
                                                        ZebiBorderType borderType, Zeb8u borderValue, int divisor,
                                                        Zeb8u* pBuffer);
ZEB_API ZebStatus zebiFilterSobelHorizSecondBorder_8u8s_C1R(const Zeb8u* pSrc, int srcStep, Zeb8s* pDst,
                                                            int dstStep, ZebiSize roiSize, ZebiMaskSize maskSize,
                                                            ZebiBorderType borderType, Zeb8u borderValue,
                                                            int divisor, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiFilterSobelVertSecondBorder_8u8s_C1R(const Zeb8u* pSrc, int srcStep, Zeb8s* pDst,
                                                           int dstStep, ZebiSize roiSize, ZebiMaskSize maskSize,
                                                           ZebiBorderType borderType, Zeb8u borderValue,
                                                           int divisor, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiFilterSobelCrossBorder_8u8s_C1R(const Zeb8u* pSrc, int srcStep, Zeb8s* pDst, int dstStep,
                                                      ZebiSize roiSize, ZebiMaskSize maskSize,
                                                      ZebiBorderType borderType, Zeb8u borderValue, int divisor,
                                                      Zeb8u* pBuffer);

ZEB_API ZebStatus zebiFilterSobelHorizBorder_32f_C1R(const Zeb32f* pSrc, int srcStep, Zeb32f* pDst, int dstStep,
                                                     ZebiSize roiSize, ZebiMaskSize maskSize,
                                                     ZebiBorderType borderType, Zeb32f borderValue, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiFilterSobelVertBorder_32f_C1R(const Zeb32f* pSrc, int srcStep, Zeb32f* pDst, int dstStep,
                                                    ZebiSize roiSize, ZebiMaskSize maskSize,
                                                    ZebiBorderType borderType, Zeb32f borderValue, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiFilterSobelNegVertBorder_32f_C1R(const Zeb32f* pSrc, int srcStep, Zeb32f* pDst, int dstStep,
                                                       ZebiSize roiSize, ZebiMaskSize maskSize,
                                                       ZebiBorderType borderType, Zeb32f borderValue,
                                                       Zeb8u* pBuffer);
ZEB_API ZebStatus zebiFilterSobelHorizSecondBorder_32f_C1R(const Zeb32f* pSrc, int srcStep, Zeb32f* pDst,
                                                           int dstStep, ZebiSize roiSize, ZebiMaskSize maskSize,
                                                           ZebiBorderType borderType, Zeb32f borderValue,
                                                           Zeb8u* pBuffer);
ZEB_API ZebStatus zebiFilterSobelVertSecondBorder_32f_C1R(const Zeb32f* pSrc, int srcStep, Zeb32f* pDst,
                                                          int dstStep, ZebiSize roiSize, ZebiMaskSize maskSize,
                                                          ZebiBorderType borderType, Zeb32f borderValue,
                                                          Zeb8u* pBuffer);
ZEB_API ZebStatus zebiFilterSobelCrossBorder_32f_C1R(const Zeb32f* pSrc, int srcStep, Zeb32f* pDst, int dstStep,
                                                     ZebiSize roiSize, ZebiMaskSize maskSize,
                                                     ZebiBorderType borderType, Zeb32f borderValue, Zeb8u* pBuffer);

ZEB_API ZebStatus zebiFilterSobelHorizGetBufferSize_8u16s_C1R(ZebiSize roiSize, ZebiMaskSize maskSize,
                                                              int* pBufferSize);
ZEB_API ZebStatus zebiFilterSobelVertGetBufferSize_8u16s_C1R(ZebiSize roiSize, ZebiMaskSize maskSize,
                                                             int* pBufferSize);
ZEB_API ZebStatus zebiFilterSobelNegVertGetBufferSize_8u16s_C1R(ZebiSize roiSize, ZebiMaskSize maskSize,
                                                                int* pBufferSize);
ZEB_API ZebStatus zebiFilterSobelHorizSecondGetBufferSize_8u16s_C1R(ZebiSize roiSize, ZebiMaskSize maskSize,
                                                                    int* pBufferSize);
ZEB_API ZebStatus zebiFilterSobelVertSecondGetBufferSize_8u16s_C1R(ZebiSize roiSize, ZebiMaskSize maskSize,
                                                                   int* pBufferSize);
ZEB_API ZebStatus zebiFilterSobelCrossGetBufferSize_8u16s_C1R(ZebiSize roiSize, ZebiMaskSize maskSize,
                                                              int* pBufferSize);
ZEB_API ZebStatus zebiFilterSobelHorizGetBufferSize_8u8s_C1R(ZebiSize roiSize, ZebiMaskSize maskSize,
                                                             int* pBufferSize);
ZEB_API ZebStatus zebiFilterSobelVertGetBufferSize_8u8s_C1R(ZebiSize roiSize, ZebiMaskSize maskSize,
                                                            int* pBufferSize);
ZEB_API ZebStatus zebiFilterSobelNegVertGetBufferSize_8u8s_C1R(ZebiSize roiSize, ZebiMaskSize maskSize,
                                                               int* pBufferSize);
ZEB_API ZebStatus zebiFilterSobelHorizSecondGetBufferSize_8u8s_C1R(ZebiSize roiSize, ZebiMaskSize maskSize,
                                                                   int* pBufferSize);
ZEB_API ZebStatus zebiFilterSobelVertSecondGetBufferSize_8u8s_C1R(ZebiSize roiSize, ZebiMaskSize maskSize,
                                                                  int* pBufferSize);
ZEB_API ZebStatus zebiFilterSobelCrossGetBufferSize_8u8s_C1R(ZebiSize roiSize, ZebiMaskSize maskSize,
                                                             int* pBufferSize);
ZEB_API ZebStatus zebiFilterSobelHorizGetBufferSize_32f_C1R(ZebiSize roiSize, ZebiMaskSize maskSize,
                                                            int* pBufferSize);
ZEB_API ZebStatus zebiFilterSobelVertGetBufferSize_32f_C1R(ZebiSize roiSize, ZebiMaskSize maskSize,
                                                           int* pBufferSize);
ZEB_API ZebStatus zebiFilterSobelNegVertGetBufferSize_32f_C1R(ZebiSize roiSize, ZebiMaskSize maskSize,
                                                              int* pBufferSize);
ZEB_API ZebStatus zebiFilterSobelHorizSecondGetBufferSize_32f_C1R(ZebiSize roiSize, ZebiMaskSize maskSize,
                                                                  int* pBufferSize);
ZEB_API ZebStatus zebiFilterSobelVertSecondGetBufferSize_32f_C1R(ZebiSize roiSize, ZebiMaskSize maskSize,
                                                                 int* pBufferSize);
ZEB_API ZebStatus zebiFilterSobelCrossGetBufferSize_32f_C1R(ZebiSize roiSize, ZebiMaskSize maskSize,
                                                            int* pBufferSize);

/* One-dimensional Sobel kernel of odd length kernelSize and derivative
 * order dx (0 <= dx < kernelSize): binomial smoothing of length
 * kernelSize - dx differenced dx times; negated when sign < 0. */
ZEB_API ZebStatus zebiGenSobelKernel_16s(Zeb16s* pDst, int kernelSize, int dx, int sign);
ZEB_API ZebStatus zebiGenSobelKernel_32f(Zeb32f* pDst, int kernelSize, int dx, int sign);

/* ---- Scharr (3x3) ---- */
ZEB_API ZebStatus zebiFilterScharrHorizBorder_8u16s_C1R(const Zeb8u* pSrc, int srcStep, Zeb16s* pDst, int dstStep,
                                                        ZebiSize roiSize, ZebiBorderType borderType,
                                                        Zeb8u borderValue, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiFilterScharrVertBorder_8u16s_C1R(const Zeb8u* pSrc, int srcStep, Zeb16s* pDst, int dstStep,
                                                       ZebiSize roiSize, ZebiBorderType borderType,
                                                       Zeb8u borderValue, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiFilterScharrHorizBorder_8u8s_C1R(const Zeb8u* pSrc, int srcStep, Zeb8s* pDst, int dstStep,
                                                       ZebiSize roiSize, ZebiBorderType borderType,
                                                       Zeb8u borderValue, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiFilterScharrVertBorder_8u8s_C1R(const Zeb8u* pSrc, int srcStep, Zeb8s* pDst, int dstStep,
                                                      ZebiSize roiSize, ZebiBorderType borderType,
                                                      Zeb8u borderValue, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiFilterScharrHorizBorder_32f_C1R(const Zeb32f* pSrc, int srcStep, Zeb32f* pDst, int dstStep,
                                                      ZebiSize roiSize, ZebiBorderType borderType,
                                                      Zeb32f borderValue, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiFilterScharrVertBorder_32f_C1R(const Zeb32f* pSrc, int srcStep, Zeb32f* pDst, int dstStep,
                                                     ZebiSize roiSize, ZebiBorderType borderType,
                                                     Zeb32f borderValue, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiFilterScharrHorizGetBufferSize_8u16s_C1R(ZebiSize roiSize, int* pBufferSize);
ZEB_API ZebStatus zebiFilterScharrVertGetBufferSize_8u16s_C1R(ZebiSize roiSize, int* pBufferSize);
ZEB_API ZebStatus zebiFilterScharrHorizGetBufferSize_8u8s_C1R(ZebiSize roiSize, int* pBufferSize);
ZEB_API ZebStatus zebiFilterScharrVertGetBufferSize_8u8s_C1R(ZebiSize roiSize, int* pBufferSize);
ZEB_API ZebStatus zebiFilterScharrHorizGetBufferSize_32f_C1R(ZebiSize roiSize, int* pBufferSize);
ZEB_API ZebStatus zebiFilterScharrVertGetBufferSize_32f_C1R(ZebiSize roiSize, int* pBufferSize);

/* ---- Laplacian ---- */
ZEB_API ZebStatus zebiFilterLaplacianBorder_8u16s_C1R(const Zeb8u* pSrc, int srcStep, Zeb16s* pDst, int dstStep,
                                                      ZebiSize roiSize, ZebiMaskSize maskSize,
                                                      ZebiBorderType borderType, Zeb8u borderValue, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiFilterLaplacianBorder_8u8s_C1R(const Zeb8u* pSrc, int srcStep, Zeb8s* pDst, int dstStep,
                                                     ZebiSize roiSize, ZebiMaskSize maskSize,
                                                     ZebiBorderType borderType, Zeb8u borderValue, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiFilterLaplacianBorder_32f_C1R(const Zeb32f* pSrc, int srcStep, Zeb32f* pDst, int dstStep,
                                                    ZebiSize roiSize, ZebiMaskSize maskSize,
                                                    ZebiBorderType borderType, Zeb32f borderValue, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiFilterLaplacianGetBufferSize_8u16s_C1R(ZebiSize roiSize, ZebiMaskSize maskSize,
                                                             int* pBufferSize);
ZEB_API ZebStatus zebiFilterLaplacianGetBufferSize_8u8s_C1R(ZebiSize roiSize, ZebiMaskSize maskSize,
                                                            int* pBufferSize);
ZEB_API ZebStatus zebiFilterLaplacianGetBufferSize_32f_C1R(ZebiSize roiSize, ZebiMaskSize maskSize,
                                                           int* pBufferSize);

/* ---- Lowpass (box mean) ---- */
ZEB_API ZebStatus zebiFilterLowpassBorder_8u_C1R(const Zeb8u* pSrc, int srcStep, Zeb8u* pDst, int dstStep,
                                                 ZebiSize roiSize, ZebiMaskSize maskSize,
                                                 ZebiBorderType borderType, Zeb8u borderValue, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiFilterLowpassBorder_32f_C1R(const Zeb32f* pSrc, int srcStep, Zeb32f* pDst, int dstStep,
                                                  ZebiSize roiSize, ZebiMaskSize maskSize,
                                                  ZebiBorderType borderType, Zeb32f borderValue, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiFilterLowpassGetBufferSize_8u_C1R(ZebiSize roiSize, ZebiMaskSize maskSize, int* pBufferSize);
ZEB_API ZebStatus zebiFilterLowpassGetBufferSize_32f_C1R(ZebiSize roiSize, ZebiMaskSize maskSize, int* pBufferSize);

ZEB_EXTERN_C_END

#endif /* ZEBCV_FILTER_DERIVATIVE_H */
