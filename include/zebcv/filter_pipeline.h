/* SPDX-License-Identifier: Apache-2.0 */
/* Separable filter pipelines: the row pass with borders and the column pass.
 *
 * A separable 2-D filter runs as two 1-D passes that the caller chains:
 *
 *   1. zebiFilterRowBorderPipelineGetBufferSize_<t>(roi, kernelSize, &rowBytes)
 *      and zebiFilterColumnPipelineGetBufferSize_<t>(roi, kernelSize, &colBytes);
 *      allocate both buffers (any allocator; the functions align them).
 *   2. Row pass: zebiFilterRowBorderPipeline_<t>(pSrc, srcStep, ppRows, roi, ...)
 *      filters roi.height source rows horizontally into the caller's row
 *      buffers ppRows[0 .. roi.height-1] (each roi.width * channels values).
 *      Pixels left and right of the ROI come from the border type: 0 constant
 *      (the border value), 1 replicate, 6 read from memory (xAnchor pixels
 *      left of the ROI, kernelSize-1-xAnchor right of it must be readable).
 *   3. Column pass: zebiFilterColumnPipeline_<t>(ppRows, pDst, dstStep, roi, ...)
 *      combines ppRows[y .. y+kernelSize-1] into destination row y, so it
 *      needs roi.height + kernelSize - 1 row pointers. Vertical borders are
 *      the caller's: for a replicated top border, repeat the pointer of the
 *      first filtered row; for a constant border, point at a row filtered
 *      from a constant source row. A ring of row buffers lets the two passes
 *      run strip by strip over an image of any height.
 *
 * Kernels are applied in the order given (no reversal): row output x is
 *   sum_i pKernel[i] * src[x - xAnchor + i],
 * column output row y is sum_i pKernel[i] * ppSrc[y + i].
 *
 * Arithmetic (every path, vector or scalar, gives the same bits):
 *   32f      single-precision products summed in index order, nothing else.
 *   integer  coefficients c[i] = pKernel[i] * (1.0f / divisor) in single
 *            precision, products summed in index order in single precision,
 *            the sum clamped to the destination range and converted:
 *            - row passes truncate toward zero;
 *            - the 16s, 16s8u and 16s8s column passes round to nearest (ties
 *              to even), except the last (n mod 16) values of each row,
 *              n = width * channels, which are truncated toward zero
 *              (values are processed in blocks of 16; the partial block at
 *              the right end of a row truncates);
 *            - the 16u column pass rounds to nearest (ties to even) everywhere.
 *   Row 16s and 8u16s: when no coefficient is -32768 and the sum of the
 *            coefficient magnitudes times the largest source magnitude
 *            (32768 for 16s, 255 for 8u) stays below 2^31, the pass sums the
 *            exact integer products S instead and writes S * (1.0f / divisor)
 *            (S converted to single precision first), clamped and truncated.
 *   _Low_16s give exactly the 16s results.
 *
 * Buffer-size queries return -8 for a null output, then -6 for a width,
 * height or kernelSize below 1, and -6 (nothing stored) when the byte count
 * does not fit an int (very long kernels for the row pass, very wide rows
 * for the 16s, 16s8u, 16s8s and Low_16s column passes). A work buffer may be
 * reused by any call whose query gave a size not larger than it.
 */
#ifndef ZEBCV_FILTER_PIPELINE_H
#define ZEBCV_FILTER_PIPELINE_H

#include "zebcv/types.h"

ZEB_EXTERN_C_BEGIN

/* ---- row pass ---- */

ZEB_API ZebStatus zebiFilterRowBorderPipelineGetBufferSize_16s_C1R(ZebiSize roiSize, int kernelSize, int* pBufferSize);
ZEB_API ZebStatus zebiFilterRowBorderPipelineGetBufferSize_16s_C3R(ZebiSize roiSize, int kernelSize, int* pBufferSize);
ZEB_API ZebStatus zebiFilterRowBorderPipelineGetBufferSize_16u_C1R(ZebiSize roiSize, int kernelSize, int* pBufferSize);
ZEB_API ZebStatus zebiFilterRowBorderPipelineGetBufferSize_16u_C3R(ZebiSize roiSize, int kernelSize, int* pBufferSize);
ZEB_API ZebStatus zebiFilterRowBorderPipelineGetBufferSize_32f_C1R(ZebiSize roiSize, int kernelSize, int* pBufferSize);
ZEB_API ZebStatus zebiFilterRowBorderPipelineGetBufferSize_32f_C3R(ZebiSize roiSize, int kernelSize, int* pBufferSize);
ZEB_API ZebStatus zebiFilterRowBorderPipelineGetBufferSize_8u16s_C1R(ZebiSize roiSize, int kernelSize,
                                                                     int* pBufferSize);
ZEB_API ZebStatus zebiFilterRowBorderPipelineGetBufferSize_8u16s_C3R(ZebiSize roiSize, int kernelSize,
                                                                     int* pBufferSize);
ZEB_API ZebStatus zebiFilterRowBorderPipelineGetBufferSize_Low_16s_C1R(ZebiSize roiSize, int kernelSize,
                                                                       int* pBufferSize);
ZEB_API ZebStatus zebiFilterRowBorderPipelineGetBufferSize_Low_16s_C3R(ZebiSize roiSize, int kernelSize,
                                                                       int* pBufferSize);

/* Checks, in order: pSrc, ppDst, pKernel, pBuffer null (-8); width or height
 * below 1 (-6); a null ppDst[y] (-8); C3: null borderValue (-8);
 * kernelSize < 1 (-6); xAnchor outside 0..kernelSize-1 (-34); srcStep below
 * the row length (-14); srcStep not a multiple of the sample size (-108, not
 * for 8u16s); borderType not 0, 1 or 6, and in the same test divisor 0 (16s,
 * Low_16s) or below 1 (16u) (-5); 8u16s: divisor 0 (-5) last. */
ZEB_API ZebStatus zebiFilterRowBorderPipeline_16s_C1R(const Zeb16s* pSrc, int srcStep, Zeb16s* const* ppDst,
                                                      ZebiSize roiSize, const Zeb16s* pKernel, int kernelSize,
                                                      int xAnchor, ZebiBorderType borderType, Zeb16s borderValue,
                                                      int divisor, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiFilterRowBorderPipeline_16s_C3R(const Zeb16s* pSrc, int srcStep, Zeb16s* const* ppDst,
                                                      ZebiSize roiSize, const Zeb16s* pKernel, int kernelSize,
                                                      int xAnchor, ZebiBorderType borderType,
                                                      const Zeb16s borderValue[3], int divisor, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiFilterRowBorderPipeline_16u_C1R(const Zeb16u* pSrc, int srcStep, Zeb16u* const* ppDst,
                                                      ZebiSize roiSize, const Zeb16s* pKernel, int kernelSize,
                                                      int xAnchor, ZebiBorderType borderType, Zeb16u borderValue,
                                                      int divisor, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiFilterRowBorderPipeline_16u_C3R(const Zeb16u* pSrc, int srcStep, Zeb16u* const* ppDst,
                                                      ZebiSize roiSize, const Zeb16s* pKernel, int kernelSize,
                                                      int xAnchor, ZebiBorderType borderType,
                                                      const Zeb16u borderValue[3], int divisor, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiFilterRowBorderPipeline_32f_C1R(const Zeb32f* pSrc, int srcStep, Zeb32f* const* ppDst,
                                                      ZebiSize roiSize, const Zeb32f* pKernel, int kernelSize,
                                                      int xAnchor, ZebiBorderType borderType, Zeb32f borderValue,
                                                      Zeb8u* pBuffer);
ZEB_API ZebStatus zebiFilterRowBorderPipeline_32f_C3R(const Zeb32f* pSrc, int srcStep, Zeb32f* const* ppDst,
                                                      ZebiSize roiSize, const Zeb32f* pKernel, int kernelSize,
                                                      int xAnchor, ZebiBorderType borderType,
                                                      const Zeb32f borderValue[3], Zeb8u* pBuffer);
ZEB_API ZebStatus zebiFilterRowBorderPipeline_8u16s_C1R(const Zeb8u* pSrc, int srcStep, Zeb16s* const* ppDst,
                                                        ZebiSize roiSize, const Zeb16s* pKernel, int kernelSize,
                                                        int xAnchor, ZebiBorderType borderType, Zeb8u borderValue,
                                                        int divisor, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiFilterRowBorderPipeline_8u16s_C3R(const Zeb8u* pSrc, int srcStep, Zeb16s* const* ppDst,
                                                        ZebiSize roiSize, const Zeb16s* pKernel, int kernelSize,
                                                        int xAnchor, ZebiBorderType borderType,
                                                        const Zeb8u borderValue[3], int divisor, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiFilterRowBorderPipeline_Low_16s_C1R(const Zeb16s* pSrc, int srcStep, Zeb16s* const* ppDst,
                                                          ZebiSize roiSize, const Zeb16s* pKernel, int kernelSize,
                                                          int xAnchor, ZebiBorderType borderType,
                                                          Zeb16s borderValue, int divisor, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiFilterRowBorderPipeline_Low_16s_C3R(const Zeb16s* pSrc, int srcStep, Zeb16s* const* ppDst,
                                                          ZebiSize roiSize, const Zeb16s* pKernel, int kernelSize,
                                                          int xAnchor, ZebiBorderType borderType,
                                                          const Zeb16s borderValue[3], int divisor,
                                                          Zeb8u* pBuffer);

/* ---- column pass ---- */

ZEB_API ZebStatus zebiFilterColumnPipelineGetBufferSize_16s_C1R(ZebiSize roiSize, int kernelSize, int* pBufferSize);
ZEB_API ZebStatus zebiFilterColumnPipelineGetBufferSize_16s_C3R(ZebiSize roiSize, int kernelSize, int* pBufferSize);
ZEB_API ZebStatus zebiFilterColumnPipelineGetBufferSize_16s8u_C1R(ZebiSize roiSize, int kernelSize,
                                                                  int* pBufferSize);
ZEB_API ZebStatus zebiFilterColumnPipelineGetBufferSize_16s8u_C3R(ZebiSize roiSize, int kernelSize,
                                                                  int* pBufferSize);
ZEB_API ZebStatus zebiFilterColumnPipelineGetBufferSize_16s8s_C1R(ZebiSize roiSize, int kernelSize,
                                                                  int* pBufferSize);
ZEB_API ZebStatus zebiFilterColumnPipelineGetBufferSize_16s8s_C3R(ZebiSize roiSize, int kernelSize,
                                                                  int* pBufferSize);
ZEB_API ZebStatus zebiFilterColumnPipelineGetBufferSize_16u_C1R(ZebiSize roiSize, int kernelSize, int* pBufferSize);
ZEB_API ZebStatus zebiFilterColumnPipelineGetBufferSize_16u_C3R(ZebiSize roiSize, int kernelSize, int* pBufferSize);
ZEB_API ZebStatus zebiFilterColumnPipelineGetBufferSize_32f_C1R(ZebiSize roiSize, int kernelSize, int* pBufferSize);
ZEB_API ZebStatus zebiFilterColumnPipelineGetBufferSize_32f_C3R(ZebiSize roiSize, int kernelSize, int* pBufferSize);
ZEB_API ZebStatus zebiFilterColumnPipelineGetBufferSize_Low_16s_C1R(ZebiSize roiSize, int kernelSize,
                                                                    int* pBufferSize);
ZEB_API ZebStatus zebiFilterColumnPipelineGetBufferSize_Low_16s_C3R(ZebiSize roiSize, int kernelSize,
                                                                    int* pBufferSize);

/* Checks, in order: ppSrc, pDst, pKernel null (-8); width or height below 1
 * (-6); a null ppSrc[0 .. height+kernelSize-2] (-8, before the kernel size);
 * kernelSize < 1 (-6); dstStep below the row length (-14) or not a multiple
 * of the sample size (-108); pBuffer null (-8); integer forms: divisor 0 (-5). */
ZEB_API ZebStatus zebiFilterColumnPipeline_16s_C1R(const Zeb16s* const* ppSrc, Zeb16s* pDst, int dstStep,
                                                   ZebiSize dstRoiSize, const Zeb16s* pKernel, int kernelSize,
                                                   int divisor, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiFilterColumnPipeline_16s_C3R(const Zeb16s* const* ppSrc, Zeb16s* pDst, int dstStep,
                                                   ZebiSize dstRoiSize, const Zeb16s* pKernel, int kernelSize,
                                                   int divisor, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiFilterColumnPipeline_16s8u_C1R(const Zeb16s* const* ppSrc, Zeb8u* pDst, int dstStep,
                                                     ZebiSize dstRoiSize, const Zeb16s* pKernel, int kernelSize,
                                                     int divisor, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiFilterColumnPipeline_16s8u_C3R(const Zeb16s* const* ppSrc, Zeb8u* pDst, int dstStep,
                                                     ZebiSize dstRoiSize, const Zeb16s* pKernel, int kernelSize,
                                                     int divisor, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiFilterColumnPipeline_16s8s_C1R(const Zeb16s* const* ppSrc, Zeb8s* pDst, int dstStep,
                                                     ZebiSize dstRoiSize, const Zeb16s* pKernel, int kernelSize,
                                                     int divisor, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiFilterColumnPipeline_16s8s_C3R(const Zeb16s* const* ppSrc, Zeb8s* pDst, int dstStep,
                                                     ZebiSize dstRoiSize, const Zeb16s* pKernel, int kernelSize,
                                                     int divisor, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiFilterColumnPipeline_16u_C1R(const Zeb16u* const* ppSrc, Zeb16u* pDst, int dstStep,
                                                   ZebiSize dstRoiSize, const Zeb16s* pKernel, int kernelSize,
                                                   int divisor, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiFilterColumnPipeline_16u_C3R(const Zeb16u* const* ppSrc, Zeb16u* pDst, int dstStep,
                                                   ZebiSize dstRoiSize, const Zeb16s* pKernel, int kernelSize,
                                                   int divisor, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiFilterColumnPipeline_32f_C1R(const Zeb32f* const* ppSrc, Zeb32f* pDst, int dstStep,
                                                   ZebiSize dstRoiSize, const Zeb32f* pKernel, int kernelSize,
                                                   Zeb8u* pBuffer);
ZEB_API ZebStatus zebiFilterColumnPipeline_32f_C3R(const Zeb32f* const* ppSrc, Zeb32f* pDst, int dstStep,
                                                   ZebiSize dstRoiSize, const Zeb32f* pKernel, int kernelSize,
                                                   Zeb8u* pBuffer);
ZEB_API ZebStatus zebiFilterColumnPipeline_Low_16s_C1R(const Zeb16s* const* ppSrc, Zeb16s* pDst, int dstStep,
                                                       ZebiSize dstRoiSize, const Zeb16s* pKernel, int kernelSize,
                                                       int divisor, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiFilterColumnPipeline_Low_16s_C3R(const Zeb16s* const* ppSrc, Zeb16s* pDst, int dstStep,
                                                       ZebiSize dstRoiSize, const Zeb16s* pKernel, int kernelSize,
                                                       int divisor, Zeb8u* pBuffer);

ZEB_EXTERN_C_END

#endif /* ZEBCV_FILTER_PIPELINE_H */
