/* SPDX-License-Identifier: Apache-2.0 */
/* Gaussian smoothing with borders.
 *
 * Call sequence:
 *   int specBytes, bufBytes;
 *   zebiFilterGaussianGetBufferSize(roi, kernelSize, zeb8u, 1, &specBytes, &bufBytes);
 *   spec = malloc(specBytes); buf = malloc(bufBytes);          (any allocator)
 *   zebiFilterGaussianInit(roi, kernelSize, sigma, zebBorderRepl, zeb8u, 1, spec, buf);
 *   zebiFilterGaussianBorder_8u_C1R(src, srcStep, dst, dstStep, roi, 0, spec, buf);
 * The buffer and kernel setup may serve any number of calls whose ROI is
 * not larger than the one they were sized for, with the same kernel length,
 * data type and channel count.
 *
 * Kernel: odd length k >= 3, anchor k/2; g[i] = exp(-(x*x) / (sigma * (sigma
 * + sigma))) with x = i - k/2, sum = g[0] + ... + g[k-1] (single precision,
 * in index order). Coefficients: 32f g[i] / sum; 8u floor(g[i] / sum * 4096
 * + 0.5); 16u and 16s floor(g[i] / sum * 32768 + 0.5) (each rounded on its
 * own, so their sum may differ from 4096 or 32768 by a few units).
 *
 * Border types: the value without the flags 16 (rows above the ROI are in
 * memory), 32 (rows below), 64 (columns left), 128 (columns right) must be
 * 0 (constant: outside pixels take the border value), 1 (replicate) or 6
 * (all neighbours in memory). Pixels read from memory must be readable.
 *
 * Arithmetic: a row pass and a column pass with the same coefficients c[i].
 *   32f      single-precision products summed in index order, per pass.
 *   8u       with a = k/2 (the table is symmetric; its first half and centre
 *            are read):
 *            row     R = floor(s[a]*c[a] / 32)
 *                        + sum over i < a of floor((s[i] + s[k-1-i]) * c[i] / 32)
 *            column  C = floor(R[a]*c[a] / 8192)
 *                        + sum over j < a of floor(((R[j] + R[k-1-j] + 1) >> 1) * c[j] / 4096)
 *            result  min((C + 32) >> 6, 255).
 *   16u, 16s each pass sums c[i]*value in single precision in index order,
 *            scales the sum by 2^-15, clamps it to the type's range and rounds
 *            to nearest (ties to even); the row pass keeps 16-bit values.
 *
 * Kernel setup block: five signed 32-bit fields (kernel length; the value
 * 20; data-type code; border type; fixed-point shift 12 (8u), 15 (16u, 16s)
 * or 0 (32f)), then the coefficient table at the first 16-byte boundary at
 * or after byte 20 of the block: Zeb16u fixed-point values for the integer
 * types, Zeb32f for 32f.
 */
#ifndef ZEBCV_FILTER_GAUSSIAN_H
#define ZEBCV_FILTER_GAUSSIAN_H

#include "zebcv/types.h"

ZEB_EXTERN_C_BEGIN

/* Prepared Gaussian filter, built by zebiFilterGaussianInit in caller memory. */
typedef struct ZebFilterGaussianSpec ZebFilterGaussianSpec;

/* Checks: a null output (-8); width or height below 1 (-6); kernelSize below
 * 3 or even (-5); dataType not 1, 5, 7 or 13 (-12); numChannels not 1 or 3
 * (-47); a size that does not fit an int (-6, neither size stored). */
ZEB_API ZebStatus zebiFilterGaussianGetBufferSize(ZebiSize roiSize, Zeb32u kernelSize, ZebDataType dataType,
                                                  int numChannels, int* pSpecSize, int* pBufferSize);

/* Checks: pSpec or pBuffer null (-8); width or height below 1 (-6);
 * kernelSize below 3 or even (-5); dataType (-12); numChannels (-47);
 * sigma not above 0 (-5); border type (-225). Writes only the kernel setup.
 * kernelSize is compared as an unsigned number: an odd value of 2^31 or
 * more (a negative length passed through a signed int) passes the check
 * and is kept as a negative length with no coefficients; Init returns 0
 * and every filter refuses that setup with -5 before writing anything.
 * The size query refuses such a length, as it has no buffer size. */
ZEB_API ZebStatus zebiFilterGaussianInit(ZebiSize roiSize, Zeb32u kernelSize, Zeb32f sigma, ZebiBorderType borderType,
                                         ZebDataType dataType, int numChannels, ZebFilterGaussianSpec* pSpec,
                                         Zeb8u* pBuffer);

/* Checks: pSrc, pDst, pBuffer, pSpec (and for C3 borderValue) null (-8);
 * a step below the row length (-14); width or height below 1 (-6); a step
 * not a multiple of the sample size (-108); the kernel setup's kernel
 * length below 3 or even (-5); its border type (-225); its data type not
 * the function's (-12). */
ZEB_API ZebStatus zebiFilterGaussianBorder_8u_C1R(const Zeb8u* pSrc, int srcStep, Zeb8u* pDst, int dstStep,
                                                  ZebiSize roiSize, Zeb8u borderValue,
                                                  const ZebFilterGaussianSpec* pSpec, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiFilterGaussianBorder_8u_C3R(const Zeb8u* pSrc, int srcStep, Zeb8u* pDst, int dstStep,
                                                  ZebiSize roiSize, const Zeb8u borderValue[3],
                                                  const ZebFilterGaussianSpec* pSpec, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiFilterGaussianBorder_16u_C1R(const Zeb16u* pSrc, int srcStep, Zeb16u* pDst, int dstStep,
                                                   ZebiSize roiSize, Zeb16u borderValue,
                                                   const ZebFilterGaussianSpec* pSpec, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiFilterGaussianBorder_16u_C3R(const Zeb16u* pSrc, int srcStep, Zeb16u* pDst, int dstStep,
                                                   ZebiSize roiSize, const Zeb16u borderValue[3],
                                                   const ZebFilterGaussianSpec* pSpec, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiFilterGaussianBorder_16s_C1R(const Zeb16s* pSrc, int srcStep, Zeb16s* pDst, int dstStep,
                                                   ZebiSize roiSize, Zeb16s borderValue,
                                                   const ZebFilterGaussianSpec* pSpec, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiFilterGaussianBorder_16s_C3R(const Zeb16s* pSrc, int srcStep, Zeb16s* pDst, int dstStep,
                                                   ZebiSize roiSize, const Zeb16s borderValue[3],
                                                   const ZebFilterGaussianSpec* pSpec, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiFilterGaussianBorder_32f_C1R(const Zeb32f* pSrc, int srcStep, Zeb32f* pDst, int dstStep,
                                                   ZebiSize roiSize, Zeb32f borderValue,
                                                   const ZebFilterGaussianSpec* pSpec, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiFilterGaussianBorder_32f_C3R(const Zeb32f* pSrc, int srcStep, Zeb32f* pDst, int dstStep,
                                                   ZebiSize roiSize, const Zeb32f borderValue[3],
                                                   const ZebFilterGaussianSpec* pSpec, Zeb8u* pBuffer);

/* Older one-call interface, 32f one channel: the kernel is built on every
 * call as for zebiFilterGaussianInit. Checks: kernelSize below 3 or even
 * (-5) after -8/-6 for the query, then -6 for a size that does not fit an
 * int; the filter checks pSrc, pDst, pBuffer (-8),
 * steps (-14), size (-6), step multiples (-108), kernelSize (-5), sigma not
 * above 0 (-5), border type (-225). */
ZEB_API ZebStatus zebiFilterGaussGetBufferSize_32f_C1R(ZebiSize roiSize, int kernelSize, int* pBufferSize);
ZEB_API ZebStatus zebiFilterGaussBorder_32f_C1R(const Zeb32f* pSrc, int srcStep, Zeb32f* pDst, int dstStep,
                                                ZebiSize roiSize, int kernelSize, Zeb32f sigma,
                                                ZebiBorderType borderType, Zeb32f borderValue, Zeb8u* pBuffer);

ZEB_EXTERN_C_END

#endif /* ZEBCV_FILTER_GAUSSIAN_H */
