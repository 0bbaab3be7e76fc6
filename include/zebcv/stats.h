/* SPDX-License-Identifier: Apache-2.0 */
/* Image statistics: masked mean, standard deviation, extrema and norms.
 *
 * Every function reads one channel: a one-channel image (C1) or the channel
 * coi (1, 2 or 3; 1 is the first in memory) of a three-channel interleaved
 * image (C3C). Masked forms (M) take an 8-bit mask of the ROI's size; a
 * pixel counts when its mask byte is non-zero. Results are Zeb64f (mean,
 * standard deviation, norms) or Zeb32f (extrema) with ZebiPoint positions
 * (x column, y row within the ROI).
 *
 * Argument checks, first failure returned: a null required pointer
 * (zebStsNullPtrErr); width or height below 1 (zebStsSizeErr); steps
 * (zebStsStepErr, zebStsNotEvenStepErr); then coi outside 1..3
 * (zebStsCOIErr). Nothing is written on failure.
 */
#ifndef ZEBCV_STATS_H
#define ZEBCV_STATS_H

#include "zebcv/types.h"

ZEB_EXTERN_C_BEGIN

/* Mean of the selected pixels: sum / count, 0.0 when the mask selects
 * nothing. All pointers are required.
 *
 * Integer sums (and sums of squares below) are exact. 32f values are added
 * in sixteen single-precision lanes (lane x % 16 takes column x), which go
 * into sixteen double-precision lanes at the end of every row; the double
 * lanes are added in order at the end. The unmasked one-channel 32f form
 * chooses by size: up to 5000 pixels (or narrower than 4) four
 * single-precision lanes taking two rows at a time, remainder columns into
 * the first lane; below 100000 pixels with a row step that is a multiple of
 * 16 the sixteen lanes over the whole image, converted once at the end;
 * otherwise the row-by-row form above. */
ZEB_API ZebStatus zebiMean_8u_C1MR(const Zeb8u* pSrc, int srcStep, const Zeb8u* pMask, int maskStep,
                                   ZebiSize roiSize, Zeb64f* pMean);
ZEB_API ZebStatus zebiMean_8u_C3CMR(const Zeb8u* pSrc, int srcStep, const Zeb8u* pMask, int maskStep,
                                    ZebiSize roiSize, int coi, Zeb64f* pMean);
ZEB_API ZebStatus zebiMean_8s_C1MR(const Zeb8s* pSrc, int srcStep, const Zeb8u* pMask, int maskStep,
                                   ZebiSize roiSize, Zeb64f* pMean);
ZEB_API ZebStatus zebiMean_8s_C3CMR(const Zeb8s* pSrc, int srcStep, const Zeb8u* pMask, int maskStep,
                                    ZebiSize roiSize, int coi, Zeb64f* pMean);
ZEB_API ZebStatus zebiMean_16u_C1MR(const Zeb16u* pSrc, int srcStep, const Zeb8u* pMask, int maskStep,
                                    ZebiSize roiSize, Zeb64f* pMean);
ZEB_API ZebStatus zebiMean_16u_C3CMR(const Zeb16u* pSrc, int srcStep, const Zeb8u* pMask, int maskStep,
                                     ZebiSize roiSize, int coi, Zeb64f* pMean);
ZEB_API ZebStatus zebiMean_32f_C1MR(const Zeb32f* pSrc, int srcStep, const Zeb8u* pMask, int maskStep,
                                    ZebiSize roiSize, Zeb64f* pMean);
ZEB_API ZebStatus zebiMean_32f_C3CMR(const Zeb32f* pSrc, int srcStep, const Zeb8u* pMask, int maskStep,
                                     ZebiSize roiSize, int coi, Zeb64f* pMean);

/* Mean and population standard deviation sqrt(|Q/n - mean*mean|), with Q
 * the sum of squares and n the number of selected pixels; both 0.0 when n
 * is 0. Either output pointer may be null (it is then not written). For 32f
 * sources, when 0.05*mean*mean > stdDev*stdDev the deviation is computed
 * again as sqrt(sum (x - mean)^2 / n), summed in sixteen double-precision
 * lanes. */
ZEB_API ZebStatus zebiMean_StdDev_8u_C1R(const Zeb8u* pSrc, int srcStep, ZebiSize roiSize, Zeb64f* pMean,
                                         Zeb64f* pStdDev);
ZEB_API ZebStatus zebiMean_StdDev_8u_C1MR(const Zeb8u* pSrc, int srcStep, const Zeb8u* pMask, int maskStep,
                                          ZebiSize roiSize, Zeb64f* pMean, Zeb64f* pStdDev);
ZEB_API ZebStatus zebiMean_StdDev_8u_C3CR(const Zeb8u* pSrc, int srcStep, ZebiSize roiSize, int coi,
                                          Zeb64f* pMean, Zeb64f* pStdDev);
ZEB_API ZebStatus zebiMean_StdDev_8u_C3CMR(const Zeb8u* pSrc, int srcStep, const Zeb8u* pMask, int maskStep,
                                           ZebiSize roiSize, int coi, Zeb64f* pMean, Zeb64f* pStdDev);
ZEB_API ZebStatus zebiMean_StdDev_8s_C1R(const Zeb8s* pSrc, int srcStep, ZebiSize roiSize, Zeb64f* pMean,
                                         Zeb64f* pStdDev);
ZEB_API ZebStatus zebiMean_StdDev_8s_C1MR(const Zeb8s* pSrc, int srcStep, const Zeb8u* pMask, int maskStep,
                                          ZebiSize roiSize, Zeb64f* pMean, Zeb64f* pStdDev);
ZEB_API ZebStatus zebiMean_StdDev_8s_C3CR(const Zeb8s* pSrc, int srcStep, ZebiSize roiSize, int coi,
                                          Zeb64f* pMean, Zeb64f* pStdDev);
ZEB_API ZebStatus zebiMean_StdDev_8s_C3CMR(const Zeb8s* pSrc, int srcStep, const Zeb8u* pMask, int maskStep,
                                           ZebiSize roiSize, int coi, Zeb64f* pMean, Zeb64f* pStdDev);
ZEB_API ZebStatus zebiMean_StdDev_16u_C1R(const Zeb16u* pSrc, int srcStep, ZebiSize roiSize, Zeb64f* pMean,
                                          Zeb64f* pStdDev);
ZEB_API ZebStatus zebiMean_StdDev_16u_C1MR(const Zeb16u* pSrc, int srcStep, const Zeb8u* pMask, int maskStep,
                                           ZebiSize roiSize, Zeb64f* pMean, Zeb64f* pStdDev);
ZEB_API ZebStatus zebiMean_StdDev_16u_C3CR(const Zeb16u* pSrc, int srcStep, ZebiSize roiSize, int coi,
                                           Zeb64f* pMean, Zeb64f* pStdDev);
ZEB_API ZebStatus zebiMean_StdDev_16u_C3CMR(const Zeb16u* pSrc, int srcStep, const Zeb8u* pMask, int maskStep,
                                            ZebiSize roiSize, int coi, Zeb64f* pMean, Zeb64f* pStdDev);
ZEB_API ZebStatus zebiMean_StdDev_32f_C1R(const Zeb32f* pSrc, int srcStep, ZebiSize roiSize, Zeb64f* pMean,
                                          Zeb64f* pStdDev);
ZEB_API ZebStatus zebiMean_StdDev_32f_C1MR(const Zeb32f* pSrc, int srcStep, const Zeb8u* pMask, int maskStep,
                                           ZebiSize roiSize, Zeb64f* pMean, Zeb64f* pStdDev);
ZEB_API ZebStatus zebiMean_StdDev_32f_C3CR(const Zeb32f* pSrc, int srcStep, ZebiSize roiSize, int coi,
                                           Zeb64f* pMean, Zeb64f* pStdDev);
ZEB_API ZebStatus zebiMean_StdDev_32f_C3CMR(const Zeb32f* pSrc, int srcStep, const Zeb8u* pMask, int maskStep,
                                            ZebiSize roiSize, int coi, Zeb64f* pMean, Zeb64f* pStdDev);

/* Minimum and maximum with the positions of their first occurrence in row
 * order (topmost row, then leftmost pixel). Every output pointer may be
 * null. With nothing selected all outputs are 0. NaN pixels of 32f sources
 * are skipped like unselected ones. */
ZEB_API ZebStatus zebiMinMaxIndx_8u_C1R(const Zeb8u* pSrc, int srcStep, ZebiSize roiSize, Zeb32f* pMin,
                                        Zeb32f* pMax, ZebiPoint* pMinIndex, ZebiPoint* pMaxIndex);
ZEB_API ZebStatus zebiMinMaxIndx_8u_C1MR(const Zeb8u* pSrc, int srcStep, const Zeb8u* pMask, int maskStep,
                                         ZebiSize roiSize, Zeb32f* pMin, Zeb32f* pMax, ZebiPoint* pMinIndex,
                                         ZebiPoint* pMaxIndex);
ZEB_API ZebStatus zebiMinMaxIndx_8u_C3CR(const Zeb8u* pSrc, int srcStep, ZebiSize roiSize, int coi,
                                         Zeb32f* pMin, Zeb32f* pMax, ZebiPoint* pMinIndex,
                                         ZebiPoint* pMaxIndex);
ZEB_API ZebStatus zebiMinMaxIndx_8u_C3CMR(const Zeb8u* pSrc, int srcStep, const Zeb8u* pMask, int maskStep,
                                          ZebiSize roiSize, int coi, Zeb32f* pMin, Zeb32f* pMax,
                                          ZebiPoint* pMinIndex, ZebiPoint* pMaxIndex);
ZEB_API ZebStatus zebiMinMaxIndx_8s_C1R(const Zeb8s* pSrc, int srcStep, ZebiSize roiSize, Zeb32f* pMin,
                                        Zeb32f* pMax, ZebiPoint* pMinIndex, ZebiPoint* pMaxIndex);
ZEB_API ZebStatus zebiMinMaxIndx_8s_C1MR(const Zeb8s* pSrc, int srcStep, const Zeb8u* pMask, int maskStep,
                                         ZebiSize roiSize, Zeb32f* pMin, Zeb32f* pMax, ZebiPoint* pMinIndex,
                                         ZebiPoint* pMaxIndex);
ZEB_API ZebStatus zebiMinMaxIndx_8s_C3CR(const Zeb8s* pSrc, int srcStep, ZebiSize roiSize, int coi,
                                         Zeb32f* pMin, Zeb32f* pMax, ZebiPoint* pMinIndex,
                                         ZebiPoint* pMaxIndex);
ZEB_API ZebStatus zebiMinMaxIndx_8s_C3CMR(const Zeb8s* pSrc, int srcStep, const Zeb8u* pMask, int maskStep,
                                          ZebiSize roiSize, int coi, Zeb32f* pMin, Zeb32f* pMax,
                                          ZebiPoint* pMinIndex, ZebiPoint* pMaxIndex);
ZEB_API ZebStatus zebiMinMaxIndx_16u_C1R(const Zeb16u* pSrc, int srcStep, ZebiSize roiSize, Zeb32f* pMin,
                                         Zeb32f* pMax, ZebiPoint* pMinIndex, ZebiPoint* pMaxIndex);
ZEB_API ZebStatus zebiMinMaxIndx_16u_C1MR(const Zeb16u* pSrc, int srcStep, const Zeb8u* pMask, int maskStep,
                                          ZebiSize roiSize, Zeb32f* pMin, Zeb32f* pMax, ZebiPoint* pMinIndex,
                                          ZebiPoint* pMaxIndex);
ZEB_API ZebStatus zebiMinMaxIndx_16u_C3CR(const Zeb16u* pSrc, int srcStep, ZebiSize roiSize, int coi,
                                          Zeb32f* pMin, Zeb32f* pMax, ZebiPoint* pMinIndex,
                                          ZebiPoint* pMaxIndex);
ZEB_API ZebStatus zebiMinMaxIndx_16u_C3CMR(const Zeb16u* pSrc, int srcStep, const Zeb8u* pMask, int maskStep,
                                           ZebiSize roiSize, int coi, Zeb32f* pMin, Zeb32f* pMax,
                                           ZebiPoint* pMinIndex, ZebiPoint* pMaxIndex);
ZEB_API ZebStatus zebiMinMaxIndx_32f_C1R(const Zeb32f* pSrc, int srcStep, ZebiSize roiSize, Zeb32f* pMin,
                                         Zeb32f* pMax, ZebiPoint* pMinIndex, ZebiPoint* pMaxIndex);
ZEB_API ZebStatus zebiMinMaxIndx_32f_C1MR(const Zeb32f* pSrc, int srcStep, const Zeb8u* pMask, int maskStep,
                                          ZebiSize roiSize, Zeb32f* pMin, Zeb32f* pMax, ZebiPoint* pMinIndex,
                                          ZebiPoint* pMaxIndex);
ZEB_API ZebStatus zebiMinMaxIndx_32f_C3CR(const Zeb32f* pSrc, int srcStep, ZebiSize roiSize, int coi,
                                          Zeb32f* pMin, Zeb32f* pMax, ZebiPoint* pMinIndex,
                                          ZebiPoint* pMaxIndex);
ZEB_API ZebStatus zebiMinMaxIndx_32f_C3CMR(const Zeb32f* pSrc, int srcStep, const Zeb8u* pMask, int maskStep,
                                           ZebiSize roiSize, int coi, Zeb32f* pMin, Zeb32f* pMax,
                                           ZebiPoint* pMinIndex, ZebiPoint* pMaxIndex);

/* Masked norms over the selected pixels, d = src1 - src2:
 *   Inf  max|x|      max|d|      max|d| / max|src2|
 *   L1   sum|x|      sum|d|      sum|d| / sum|src2|
 *   L2   sqrt(sum x^2) sqrt(sum d^2) sqrt(sum d^2 / sum src2^2)
 * Integer sums are exact. 32f rows are summed in four single-precision
 * lanes (remainder into the first), folded to two and added to two
 * double-precision totals. A zero denominator of a relative norm writes NaN
 * (0/0) or +infinity and returns the warning zebStsDivByZero. */
ZEB_API ZebStatus zebiNorm_Inf_8u_C1MR(const Zeb8u* pSrc, int srcStep, const Zeb8u* pMask, int maskStep,
                                       ZebiSize roiSize, Zeb64f* pValue);
ZEB_API ZebStatus zebiNorm_Inf_8u_C3CMR(const Zeb8u* pSrc, int srcStep, const Zeb8u* pMask, int maskStep,
                                        ZebiSize roiSize, int coi, Zeb64f* pValue);
ZEB_API ZebStatus zebiNorm_Inf_8s_C1MR(const Zeb8s* pSrc, int srcStep, const Zeb8u* pMask, int maskStep,
                                       ZebiSize roiSize, Zeb64f* pValue);
ZEB_API ZebStatus zebiNorm_Inf_8s_C3CMR(const Zeb8s* pSrc, int srcStep, const Zeb8u* pMask, int maskStep,
                                        ZebiSize roiSize, int coi, Zeb64f* pValue);
ZEB_API ZebStatus zebiNorm_Inf_16u_C1MR(const Zeb16u* pSrc, int srcStep, const Zeb8u* pMask, int maskStep,
                                        ZebiSize roiSize, Zeb64f* pValue);
ZEB_API ZebStatus zebiNorm_Inf_16u_C3CMR(const Zeb16u* pSrc, int srcStep, const Zeb8u* pMask, int maskStep,
                                         ZebiSize roiSize, int coi, Zeb64f* pValue);
ZEB_API ZebStatus zebiNorm_Inf_32f_C1MR(const Zeb32f* pSrc, int srcStep, const Zeb8u* pMask, int maskStep,
                                        ZebiSize roiSize, Zeb64f* pValue);
ZEB_API ZebStatus zebiNorm_Inf_32f_C3CMR(const Zeb32f* pSrc, int srcStep, const Zeb8u* pMask, int maskStep,
                                         ZebiSize roiSize, int coi, Zeb64f* pValue);
ZEB_API ZebStatus zebiNorm_L1_8u_C1MR(const Zeb8u* pSrc, int srcStep, const Zeb8u* pMask, int maskStep,
                                      ZebiSize roiSize, Zeb64f* pValue);
ZEB_API ZebStatus zebiNorm_L1_8u_C3CMR(const Zeb8u* pSrc, int srcStep, const Zeb8u* pMask, int maskStep,
                                       ZebiSize roiSize, int coi, Zeb64f* pValue);
ZEB_API ZebStatus zebiNorm_L1_8s_C1MR(const Zeb8s* pSrc, int srcStep, const Zeb8u* pMask, int maskStep,
                                      ZebiSize roiSize, Zeb64f* pValue);
ZEB_API ZebStatus zebiNorm_L1_8s_C3CMR(const Zeb8s* pSrc, int srcStep, const Zeb8u* pMask, int maskStep,
                                       ZebiSize roiSize, int coi, Zeb64f* pValue);
ZEB_API ZebStatus zebiNorm_L1_16u_C1MR(const Zeb16u* pSrc, int srcStep, const Zeb8u* pMask, int maskStep,
                                       ZebiSize roiSize, Zeb64f* pValue);
ZEB_API ZebStatus zebiNorm_L1_16u_C3CMR(const Zeb16u* pSrc, int srcStep, const Zeb8u* pMask, int maskStep,
                                        ZebiSize roiSize, int coi, Zeb64f* pValue);
ZEB_API ZebStatus zebiNorm_L1_32f_C1MR(const Zeb32f* pSrc, int srcStep, const Zeb8u* pMask, int maskStep,
                                       ZebiSize roiSize, Zeb64f* pValue);
ZEB_API ZebStatus zebiNorm_L1_32f_C3CMR(const Zeb32f* pSrc, int srcStep, const Zeb8u* pMask, int maskStep,
                                        ZebiSize roiSize, int coi, Zeb64f* pValue);
ZEB_API ZebStatus zebiNorm_L2_8u_C1MR(const Zeb8u* pSrc, int srcStep, const Zeb8u* pMask, int maskStep,
                                      ZebiSize roiSize, Zeb64f* pValue);
ZEB_API ZebStatus zebiNorm_L2_8u_C3CMR(const Zeb8u* pSrc, int srcStep, const Zeb8u* pMask, int maskStep,
                                       ZebiSize roiSize, int coi, Zeb64f* pValue);
ZEB_API ZebStatus zebiNorm_L2_8s_C1MR(const Zeb8s* pSrc, int srcStep, const Zeb8u* pMask, int maskStep,
                                      ZebiSize roiSize, Zeb64f* pValue);
ZEB_API ZebStatus zebiNorm_L2_8s_C3CMR(const Zeb8s* pSrc, int srcStep, const Zeb8u* pMask, int maskStep,
                                       ZebiSize roiSize, int coi, Zeb64f* pValue);
ZEB_API ZebStatus zebiNorm_L2_16u_C1MR(const Zeb16u* pSrc, int srcStep, const Zeb8u* pMask, int maskStep,
                                       ZebiSize roiSize, Zeb64f* pValue);
ZEB_API ZebStatus zebiNorm_L2_16u_C3CMR(const Zeb16u* pSrc, int srcStep, const Zeb8u* pMask, int maskStep,
                                        ZebiSize roiSize, int coi, Zeb64f* pValue);
ZEB_API ZebStatus zebiNorm_L2_32f_C1MR(const Zeb32f* pSrc, int srcStep, const Zeb8u* pMask, int maskStep,
                                       ZebiSize roiSize, Zeb64f* pValue);
ZEB_API ZebStatus zebiNorm_L2_32f_C3CMR(const Zeb32f* pSrc, int srcStep, const Zeb8u* pMask, int maskStep,
                                        ZebiSize roiSize, int coi, Zeb64f* pValue);
ZEB_API ZebStatus zebiNormDiff_Inf_8u_C1MR(const Zeb8u* pSrc1, int src1Step, const Zeb8u* pSrc2, int src2Step,
                                           const Zeb8u* pMask, int maskStep, ZebiSize roiSize, Zeb64f* pValue);
ZEB_API ZebStatus zebiNormDiff_Inf_8u_C3CMR(const Zeb8u* pSrc1, int src1Step, const Zeb8u* pSrc2, int src2Step,
                                            const Zeb8u* pMask, int maskStep, ZebiSize roiSize, int coi,
                                            Zeb64f* pValue);
ZEB_API ZebStatus zebiNormDiff_Inf_8s_C1MR(const Zeb8s* pSrc1, int src1Step, const Zeb8s* pSrc2, int src2Step,
                                           const Zeb8u* pMask, int maskStep, ZebiSize roiSize, Zeb64f* pValue);
ZEB_API ZebStatus zebiNormDiff_Inf_8s_C3CMR(const Zeb8s* pSrc1, int src1Step, const Zeb8s* pSrc2, int src2Step,
                                            const Zeb8u* pMask, int maskStep, ZebiSize roiSize, int coi,
                                            Zeb64f* pValue);
ZEB_API ZebStatus zebiNormDiff_Inf_16u_C1MR(const Zeb16u* pSrc1, int src1Step, const Zeb16u* pSrc2,
                                            int src2Step, const Zeb8u* pMask, int maskStep, ZebiSize roiSize,
                                            Zeb64f* pValue);
ZEB_API ZebStatus zebiNormDiff_Inf_16u_C3CMR(const Zeb16u* pSrc1, int src1Step, const Zeb16u* pSrc2,
                                             int src2Step, const Zeb8u* pMask, int maskStep, ZebiSize roiSize,
                                             int coi, Zeb64f* pValue);
ZEB_API ZebStatus zebiNormDiff_Inf_32f_C1MR(const Zeb32f* pSrc1, int src1Step, const Zeb32f* pSrc2,
                                            int src2Step, const Zeb8u* pMask, int maskStep, ZebiSize roiSize,
                                            Zeb64f* pValue);
ZEB_API ZebStatus zebiNormDiff_Inf_32f_C3CMR(const Zeb32f* pSrc1, int src1Step, const Zeb32f* pSrc2,
                                             int src2Step, const Zeb8u* pMask, int maskStep, ZebiSize roiSize,
                                             int coi, Zeb64f* pValue);
ZEB_API ZebStatus zebiNormDiff_L1_8u_C1MR(const Zeb8u* pSrc1, int src1Step, const Zeb8u* pSrc2, int src2Step,
                                          const Zeb8u* pMask, int maskStep, ZebiSize roiSize, Zeb64f* pValue);
ZEB_API ZebStatus zebiNormDiff_L1_8u_C3CMR(const Zeb8u* pSrc1, int src1Step, const Zeb8u* pSrc2, int src2Step,
                                           const Zeb8u* pMask, int maskStep, ZebiSize roiSize, int coi,
                                           Zeb64f* pValue);
ZEB_API ZebStatus zebiNormDiff_L1_8s_C1MR(const Zeb8s* pSrc1, int src1Step, const Zeb8s* pSrc2, int src2Step,
                                          const Zeb8u* pMask, int maskStep, ZebiSize roiSize, Zeb64f* pValue);
ZEB_API ZebStatus zebiNormDiff_L1_8s_C3CMR(const Zeb8s* pSrc1, int src1Step, const Zeb8s* pSrc2, int src2Step,
                                           const Zeb8u* pMask, int maskStep, ZebiSize roiSize, int coi,
                                           Zeb64f* pValue);
ZEB_API ZebStatus zebiNormDiff_L1_16u_C1MR(const Zeb16u* pSrc1, int src1Step, const Zeb16u* pSrc2, int src2Step,
                                           const Zeb8u* pMask, int maskStep, ZebiSize roiSize, Zeb64f* pValue);
ZEB_API ZebStatus zebiNormDiff_L1_16u_C3CMR(const Zeb16u* pSrc1, int src1Step, const Zeb16u* pSrc2,
                                            int src2Step, const Zeb8u* pMask, int maskStep, ZebiSize roiSize,
                                            int coi, Zeb64f* pValue);
ZEB_API ZebStatus zebiNormDiff_L1_32f_C1MR(const Zeb32f* pSrc1, int src1Step, const Zeb32f* pSrc2, int src2Step,
                                           const Zeb8u* pMask, int maskStep, ZebiSize roiSize, Zeb64f* pValue);
ZEB_API ZebStatus zebiNormDiff_L1_32f_C3CMR(const Zeb32f* pSrc1, int src1Step, const Zeb32f* pSrc2,
                                            int src2Step, const Zeb8u* pMask, int maskStep, ZebiSize roiSize,
                                            int coi, Zeb64f* pValue);
ZEB_API ZebStatus zebiNormDiff_L2_8u_C1MR(const Zeb8u* pSrc1, int src1Step, const Zeb8u* pSrc2, int src2Step,
                                          const Zeb8u* pMask, int maskStep, ZebiSize roiSize, Zeb64f* pValue);
ZEB_API ZebStatus zebiNormDiff_L2_8u_C3CMR(const Zeb8u* pSrc1, int src1Step, const Zeb8u* pSrc2, int src2Step,
                                           const Zeb8u* pMask, int maskStep, ZebiSize roiSize, int coi,
                                           Zeb64f* pValue);
ZEB_API ZebStatus zebiNormDiff_L2_8s_C1MR(const Zeb8s* pSrc1, int src1Step, const Zeb8s* pSrc2, int src2Step,
                                          const Zeb8u* pMask, int maskStep, ZebiSize roiSize, Zeb64f* pValue);
ZEB_API ZebStatus zebiNormDiff_L2_8s_C3CMR(const Zeb8s* pSrc1, int src1Step, const Zeb8s* pSrc2, int src2Step,
                                           const Zeb8u* pMask, int maskStep, ZebiSize roiSize, int coi,
                                           Zeb64f* pValue);
ZEB_API ZebStatus zebiNormDiff_L2_16u_C1MR(const Zeb16u* pSrc1, int src1Step, const Zeb16u* pSrc2, int src2Step,
                                           const Zeb8u* pMask, int maskStep, ZebiSize roiSize, Zeb64f* pValue);
ZEB_API ZebStatus zebiNormDiff_L2_16u_C3CMR(const Zeb16u* pSrc1, int src1Step, const Zeb16u* pSrc2,
                                            int src2Step, const Zeb8u* pMask, int maskStep, ZebiSize roiSize,
                                            int coi, Zeb64f* pValue);
ZEB_API ZebStatus zebiNormDiff_L2_32f_C1MR(const Zeb32f* pSrc1, int src1Step, const Zeb32f* pSrc2, int src2Step,
                                           const Zeb8u* pMask, int maskStep, ZebiSize roiSize, Zeb64f* pValue);
ZEB_API ZebStatus zebiNormDiff_L2_32f_C3CMR(const Zeb32f* pSrc1, int src1Step, const Zeb32f* pSrc2,
                                            int src2Step, const Zeb8u* pMask, int maskStep, ZebiSize roiSize,
                                            int coi, Zeb64f* pValue);
ZEB_API ZebStatus zebiNormRel_Inf_8u_C1MR(const Zeb8u* pSrc1, int src1Step, const Zeb8u* pSrc2, int src2Step,
                                          const Zeb8u* pMask, int maskStep, ZebiSize roiSize, Zeb64f* pValue);
ZEB_API ZebStatus zebiNormRel_Inf_8u_C3CMR(const Zeb8u* pSrc1, int src1Step, const Zeb8u* pSrc2, int src2Step,
                                           const Zeb8u* pMask, int maskStep, ZebiSize roiSize, int coi,
                                           Zeb64f* pValue);
ZEB_API ZebStatus zebiNormRel_Inf_8s_C1MR(const Zeb8s* pSrc1, int src1Step, const Zeb8s* pSrc2, int src2Step,
                                          const Zeb8u* pMask, int maskStep, ZebiSize roiSize, Zeb64f* pValue);
ZEB_API ZebStatus zebiNormRel_Inf_8s_C3CMR(const Zeb8s* pSrc1, int src1Step, const Zeb8s* pSrc2, int src2Step,
                                           const Zeb8u* pMask, int maskStep, ZebiSize roiSize, int coi,
                                           Zeb64f* pValue);
ZEB_API ZebStatus zebiNormRel_Inf_16u_C1MR(const Zeb16u* pSrc1, int src1Step, const Zeb16u* pSrc2, int src2Step,
                                           const Zeb8u* pMask, int maskStep, ZebiSize roiSize, Zeb64f* pValue);
ZEB_API ZebStatus zebiNormRel_Inf_16u_C3CMR(const Zeb16u* pSrc1, int src1Step, const Zeb16u* pSrc2,
                                            int src2Step, const Zeb8u* pMask, int maskStep, ZebiSize roiSize,
                                            int coi, Zeb64f* pValue);
ZEB_API ZebStatus zebiNormRel_Inf_32f_C1MR(const Zeb32f* pSrc1, int src1Step, const Zeb32f* pSrc2, int src2Step,
                                           const Zeb8u* pMask, int maskStep, ZebiSize roiSize, Zeb64f* pValue);
ZEB_API ZebStatus zebiNormRel_Inf_32f_C3CMR(const Zeb32f* pSrc1, int src1Step, const Zeb32f* pSrc2,
                                            int src2Step, const Zeb8u* pMask, int maskStep, ZebiSize roiSize,
                                            int coi, Zeb64f* pValue);
ZEB_API ZebStatus zebiNormRel_L1_8u_C1MR(const Zeb8u* pSrc1, int src1Step, const Zeb8u* pSrc2, int src2Step,
                                         const Zeb8u* pMask, int maskStep, ZebiSize roiSize, Zeb64f* pValue);
ZEB_API ZebStatus zebiNormRel_L1_8u_C3CMR(const Zeb8u* pSrc1, int src1Step, const Zeb8u* pSrc2, int src2Step,
                                          const Zeb8u* pMask, int maskStep, ZebiSize roiSize, int coi,
                                          Zeb64f* pValue);
ZEB_API ZebStatus zebiNormRel_L1_8s_C1MR(const Zeb8s* pSrc1, int src1Step, const Zeb8s* pSrc2, int src2Step,
                                         const Zeb8u* pMask, int maskStep, ZebiSize roiSize, Zeb64f* pValue);
ZEB_API ZebStatus zebiNormRel_L1_8s_C3CMR(const Zeb8s* pSrc1, int src1Step, const Zeb8s* pSrc2, int src2Step,
                                          const Zeb8u* pMask, int maskStep, ZebiSize roiSize, int coi,
                                          Zeb64f* pValue);
ZEB_API ZebStatus zebiNormRel_L1_16u_C1MR(const Zeb16u* pSrc1, int src1Step, const Zeb16u* pSrc2, int src2Step,
                                          const Zeb8u* pMask, int maskStep, ZebiSize roiSize, Zeb64f* pValue);
ZEB_API ZebStatus zebiNormRel_L1_16u_C3CMR(const Zeb16u* pSrc1, int src1Step, const Zeb16u* pSrc2, int src2Step,
                                           const Zeb8u* pMask, int maskStep, ZebiSize roiSize, int coi,
                                           Zeb64f* pValue);
ZEB_API ZebStatus zebiNormRel_L1_32f_C1MR(const Zeb32f* pSrc1, int src1Step, const Zeb32f* pSrc2, int src2Step,
                                          const Zeb8u* pMask, int maskStep, ZebiSize roiSize, Zeb64f* pValue);
ZEB_API ZebStatus zebiNormRel_L1_32f_C3CMR(const Zeb32f* pSrc1, int src1Step, const Zeb32f* pSrc2, int src2Step,
                                           const Zeb8u* pMask, int maskStep, ZebiSize roiSize, int coi,
                                           Zeb64f* pValue);
ZEB_API ZebStatus zebiNormRel_L2_8u_C1MR(const Zeb8u* pSrc1, int src1Step, const Zeb8u* pSrc2, int src2Step,
                                         const Zeb8u* pMask, int maskStep, ZebiSize roiSize, Zeb64f* pValue);
ZEB_API ZebStatus zebiNormRel_L2_8u_C3CMR(const Zeb8u* pSrc1, int src1Step, const Zeb8u* pSrc2, int src2Step,
                                          const Zeb8u* pMask, int maskStep, ZebiSize roiSize, int coi,
                                          Zeb64f* pValue);
ZEB_API ZebStatus zebiNormRel_L2_8s_C1MR(const Zeb8s* pSrc1, int src1Step, const Zeb8s* pSrc2, int src2Step,
                                         const Zeb8u* pMask, int maskStep, ZebiSize roiSize, Zeb64f* pValue);
ZEB_API ZebStatus zebiNormRel_L2_8s_C3CMR(const Zeb8s* pSrc1, int src1Step, const Zeb8s* pSrc2, int src2Step,
                                          const Zeb8u* pMask, int maskStep, ZebiSize roiSize, int coi,
                                          Zeb64f* pValue);
ZEB_API ZebStatus zebiNormRel_L2_16u_C1MR(const Zeb16u* pSrc1, int src1Step, const Zeb16u* pSrc2, int src2Step,
                                          const Zeb8u* pMask, int maskStep, ZebiSize roiSize, Zeb64f* pValue);
ZEB_API ZebStatus zebiNormRel_L2_16u_C3CMR(const Zeb16u* pSrc1, int src1Step, const Zeb16u* pSrc2, int src2Step,
                                           const Zeb8u* pMask, int maskStep, ZebiSize roiSize, int coi,
                                           Zeb64f* pValue);
ZEB_API ZebStatus zebiNormRel_L2_32f_C1MR(const Zeb32f* pSrc1, int src1Step, const Zeb32f* pSrc2, int src2Step,
                                          const Zeb8u* pMask, int maskStep, ZebiSize roiSize, Zeb64f* pValue);
ZEB_API ZebStatus zebiNormRel_L2_32f_C3CMR(const Zeb32f* pSrc1, int src1Step, const Zeb32f* pSrc2, int src2Step,
                                           const Zeb8u* pMask, int maskStep, ZebiSize roiSize, int coi,
                                           Zeb64f* pValue);

ZEB_EXTERN_C_END

#endif /* ZEBCV_STATS_H */
