/* SPDX-License-Identifier: Apache-2.0 */
/* Distance maps of binary 8-bit images: for every pixel, the distance to the
 * nearest pixel whose source value is 0 (a "site").
 *
 * Chamfer masks. A 3x3 mask is {a, b}: a weights a horizontal or vertical
 * step, b a diagonal step. A 5x5 mask is {a, b, c}: c weights a knight step
 * (one row and two columns, or two rows and one column). Integer masks
 * (Zeb32s) serve the 8u and 16u outputs, float masks the 32f output. The
 * standard masks come from zebiGetDistanceTransformMask_32s/_32f:
 *
 *   kerSize norm        32s          32f
 *   3       0 (max)     1 1          1.0 1.0
 *   3       1 (sum)     1 2          1.0 2.0
 *   3       2 (L2)      2 3          0.955 1.3693
 *   5       0 (max)     1 1 2        1.0 1.0 2.0
 *   5       1 (sum)     1 2 3        1.0 2.0 3.0
 *   5       2 (L2)      5 7 11       1.0 1.4 2.1969
 *
 * Chamfer transform. Sites start at 0, every other pixel at the largest
 * value (255 for 8u, 65535 for 16u, 3.4028235e38 for 32f). A forward pass
 * visits rows top to bottom, each left to right, and replaces a pixel's
 * value by the minimum of itself and (neighbour + weight) over the visited
 * half of the mask: left (a); up-left (b), up (a), up-right (b); for 5x5
 * also (x-2, y-1), (x+2, y-1), (x-1, y-2), (x+1, y-2) with c. A backward
 * pass visits rows bottom to top, right to left, with the mirrored half.
 * Neighbours outside the ROI do not take part. Integer sums saturate at
 * the output's largest value (the same as summing in 32 bits and clamping
 * the result); float sums are single-precision additions.
 * Weight settling: when a > b and both width and height are at least 2,
 * the straight-step weight used is b (a diagonal step is never dearer than
 * a straight one); a 5x5 knight weight is kept as given. Weights above the
 * integer output's largest value act as that value.
 *
 * Checks of every chamfer transform, in order: pSrc, pDst or pMetrics null
 * (-8); width or height below 1 (-6); srcStep below width or dstStep below
 * width times the destination element size (-14); 16u dstStep odd, 32f
 * dstStep not a multiple of 4 (-108); a mask weight not positive (for
 * integers below 1, for floats not above 0, NaN included) (-56).
 */
#ifndef ZEBCV_REGION_DISTANCE_H
#define ZEBCV_REGION_DISTANCE_H

#include "zebcv/types.h"

ZEB_EXTERN_C_BEGIN

/* The standard mask of kerSize (3 or 5) and norm (0, 1, 2) in pMetrics (2
 * values for 3, 3 values for 5). Checks: pMetrics null (-8); kerSize not 3
 * or 5 (-6); norm not 0, 1 or 2 (-5). */
ZEB_API ZebStatus zebiGetDistanceTransformMask_32s(int kerSize, ZebiNorm norm, Zeb32s* pMetrics);
ZEB_API ZebStatus zebiGetDistanceTransformMask_32f(int kerSize, ZebiNorm norm, Zeb32f* pMetrics);
/* The older float form: maskType = kerSize * 10 + norm. Checks: maskType %
 * 10 not 0, 1 or 2 (-5, even with pMetrics null); then as
 * zebiGetDistanceTransformMask_32f(maskType / 10, maskType % 10, pMetrics). */
ZEB_API ZebStatus zebiGetDistanceTransformMask(int maskType, Zeb32f* pMetrics);

/* 3x3 chamfer transforms (pMetrics = {a, b}). */
ZEB_API ZebStatus zebiDistanceTransform_3x3_8u_C1R(const Zeb8u* pSrc, int srcStep, Zeb8u* pDst, int dstStep,
                                                   ZebiSize roiSize, const Zeb32s* pMetrics);
ZEB_API ZebStatus zebiDistanceTransform_3x3_8u16u_C1R(const Zeb8u* pSrc, int srcStep, Zeb16u* pDst, int dstStep,
                                                      ZebiSize roiSize, const Zeb32s* pMetrics);
ZEB_API ZebStatus zebiDistanceTransform_3x3_8u32f_C1R(const Zeb8u* pSrc, int srcStep, Zeb32f* pDst, int dstStep,
                                                      ZebiSize roiSize, const Zeb32f* pMetrics);
/* In place: the _8u_C1R form with pSrcDst as source and destination. */
ZEB_API ZebStatus zebiDistanceTransform_3x3_8u_C1IR(Zeb8u* pSrcDst, int srcDstStep, ZebiSize roiSize,
                                                    const Zeb32s* pMetrics);

/* 5x5 chamfer transforms (pMetrics = {a, b, c}). */
ZEB_API ZebStatus zebiDistanceTransform_5x5_8u_C1R(const Zeb8u* pSrc, int srcStep, Zeb8u* pDst, int dstStep,
                                                   ZebiSize roiSize, const Zeb32s* pMetrics);
ZEB_API ZebStatus zebiDistanceTransform_5x5_8u16u_C1R(const Zeb8u* pSrc, int srcStep, Zeb16u* pDst, int dstStep,
                                                      ZebiSize roiSize, const Zeb32s* pMetrics);
ZEB_API ZebStatus zebiDistanceTransform_5x5_8u32f_C1R(const Zeb8u* pSrc, int srcStep, Zeb32f* pDst, int dstStep,
                                                      ZebiSize roiSize, const Zeb32f* pMetrics);
ZEB_API ZebStatus zebiDistanceTransform_5x5_8u_C1IR(Zeb8u* pSrcDst, int srcDstStep, ZebiSize roiSize,
                                                    const Zeb32s* pMetrics);

/* Exact Euclidean transform.
 * Buffer: max(round4(width), round4(height)) * 24 + 56 bytes, round4(n) =
 * (n + 3) & ~3. Size query checks: pBufferSize null (-8); width or height
 * below 1 (-6); a size that does not fit an int (-6, nothing stored).
 * The squared distance is computed separably: a pass down and up every
 * column gives the squared distance to the nearest site of the column
 * (3.4028235e38 when it has none); a pass along every row takes the lower
 * envelope of the parabolas f(v) + (q - v)^2 over the row's columns v
 * that have a site. The buffer holds the table of squares i * i (single
 * precision), the table of reciprocals 0.5 / k for the intersection
 * abscissas ((f(q) + q^2) - (f(v) + v^2)) * (0.5 / (q - v)), the envelope's
 * vertex indices and boundaries, and one row of values. Every result is the
 * single-precision square root of the squared distance; an image without
 * sites gives sqrt(3.4028235e38) = 1.8446743e19 everywhere.
 * Checks: pSrc, pDst or pBuffer null (-8); width or height below 1 (-6);
 * srcStep below width or dstStep below 4 * width (-14); dstStep not a
 * multiple of 4 (-108). */
ZEB_API ZebStatus zebiTrueDistanceTransformGetBufferSize_8u32f_C1R(ZebiSize roiSize, int* pBufferSize);
ZEB_API ZebStatus zebiTrueDistanceTransform_8u32f_C1R(const Zeb8u* pSrc, int srcStep, Zeb32f* pDst, int dstStep,
                                                      ZebiSize roiSize, Zeb8u* pBuffer);

/* Fast marching: the solution of the unit-speed eikonal equation |grad T| = 1
 * with T = 0 at the sites. Pixels are fixed in order of increasing T; a
 * pixel's tentative value comes from its fixed 4-neighbours: with a the
 * smaller fixed value of the left and right neighbours and b that of the
 * upper and lower ones (a missing side counts as infinite), T = min(a, b) + 1
 * when |a - b| >= 1, else 0.5 * (a + b + sqrt(2 - (a - b)^2)), in single
 * precision.
 * radius bounds the march: a pixel enters the narrow band (the candidates
 * waiting to be fixed) only with a tentative value <= radius, so the march
 * fixes exactly the pixels whose value is <= radius. Sites are written as 0,
 * pixels the march does not fix as 3.4028235e38. With radius 0 (no march)
 * sites are 0 and every other pixel 3.4028235e38.
 * The band is a binary heap of (value, pixel) pairs inside the work buffer;
 * while marching, the destination holds the pixel states (fixed values, and
 * negated tentative values). If a band ever outgrows the heap, the smallest
 * candidates are gathered again from the destination, so results never
 * depend on the buffer, only the time.
 * Buffer: (round32(width) + 5) * (height + 34) + 40 bytes, round32(n) =
 * (n + 31) & ~31. Size query checks: pBufferSize null (-8); width or height
 * below 1 (-6); a size that does not fit an int (-6, nothing stored).
 * Checks: pSrc, pDst or pBuffer null (-8); width or height below 1 (-6);
 * srcStep below width or dstStep below 4 * width (-14); dstStep not a
 * multiple of 4 (-108); radius below 0 or NaN (-5). */
ZEB_API ZebStatus zebiFastMarchingGetBufferSize_8u32f_C1R(ZebiSize roiSize, int* pBufferSize);
ZEB_API ZebStatus zebiFastMarching_8u32f_C1R(const Zeb8u* pSrc, int srcStep, Zeb32f* pDst, int dstStep,
                                             ZebiSize roiSize, Zeb32f radius, Zeb8u* pBuffer);

ZEB_EXTERN_C_END

#endif /* ZEBCV_REGION_DISTANCE_H */
