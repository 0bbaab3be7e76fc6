/* SPDX-License-Identifier: Apache-2.0 */
/* Feature detection: edge maps and corner responses.
 *
 * ---- Edge detection ----
 *
 * Call sequence (derivatives computed by the caller):
 *   int bytes;
 *   zebiCannyGetSize(roi, &bytes);
 *   buf = malloc(bytes);
 *   zebiCanny_16s8u_C1R(dx, dxStep, dy, dyStep, edges, edgesStep, roi, low, high, buf);
 * or, from an 8-bit image:
 *   zebiCannyBorderGetSize(roi, zebFilterSobel, zebMskSize3x3, zeb8u, &bytes);
 *   zebiCannyBorder_8u_C1R(src, srcStep, edges, edgesStep, roi, zebFilterSobel, zebMskSize3x3,
 *                          zebBorderRepl, 0, low, high, zebNormL2, buf);
 * Every destination pixel of the ROI becomes 255 (edge) or 0.
 *
 * Stages, per pixel with horizontal derivative dx and vertical dy:
 *  1. Magnitude m and low cut.
 *     32f:    m = |dx| + |dy| in single precision; m is kept when m >= low,
 *             else m = 0.
 *     16s:    m = min(|dx| + |dy|, 65535) with |-32768| = 32768; the
 *             thresholds are truncated toward zero to integers lowI, highI;
 *             m is kept when m > lowI (strictly), else m = 0.
 *     Border: gx, gy from the source (Sobel 3x3 or 5x5, Scharr 3x3; x grows
 *             to the right, y downward), ax = |gx|, ay = |gy| as floats,
 *             m = ax + ay (L1) or sqrt(ax*ax + ay*ay) (L2, the sum in single
 *             precision, the root correctly rounded to single); m is kept
 *             when m > low (strictly), else m = 0.
 *  2. Non-maximum suppression of pixels with m != 0, neighbour magnitudes
 *     M(row offset, column offset), 0 outside the image:
 *       vertical   (ay > 2.4142136f * ax):  M(-1,0) <  m and M(+1,0) <= m
 *       horizontal (ay < 0.41421357f * ax): M(0,-1) <  m and M(0,+1) <= m
 *       diagonal, dx and dy with equal sign bits: M(-1,-1) < m and M(+1,+1) < m
 *       diagonal, different sign bits:            M(-1,+1) < m and M(+1,-1) < m
 *     (of two equal maxima side by side along the gradient the first in
 *     reading order survives). The border detector tests the vertical
 *     sector as ay > (ax + ax) + 0.41421357f * ax and the horizontal one as
 *     0.41421357f * ax > ay, in single precision, the sign bits being those
 *     of the integer gx and gy.
 *  3. A kept pixel with m > high (strictly; highI for 16s) is strong.
 *  4. Hysteresis: the edges are the kept pixels 8-connected, through kept
 *     pixels, to a strong pixel.
 *
 * Work buffer: one byte per pixel of a framed edge map, an edge stack of
 * (row, column) pairs (16-bit coordinates when both dimensions are below
 * 65533 in the derivative detectors, otherwise 32-bit), rows of
 * magnitudes. The functions align the buffer's start to 32 bytes. The
 * buffer is not checked against the size the query returned: it must be at
 * least that size for the same ROI (and mask).
 *
 * Border types of zebiCannyBorder_8u_C1R: the low four bits 0 (constant:
 * outside pixels take borderValue), 1 (replicate) or 6 (all neighbours in
 * memory), with any of the flags 16 (rows above the ROI in memory), 32
 * (rows below), 64 (columns left), 128 (columns right). Pixels read from
 * memory must be readable.
 *
 * ---- Corner response ----
 *
 * Call sequence:
 *   zebiHarrisCornerGetBufferSize(roi, zebMskSize3x3, 3, zeb8u, 1, &bytes);
 *   zebiHarrisCorner_8u32f_C1R(src, srcStep, dst, dstStep, roi, zebFilterSobel, zebMskSize3x3,
 *                              3, 0.04f, 1.0f, zebBorderRepl, 0, buf);
 *
 * Per pixel, all in single precision with every operation rounded:
 *  1. Ix, Iy: Sobel (filterType 2, 3x3 or 5x5), Scharr (5, 3x3) or central
 *     differences (8, 3x3: Ix = I(x+1,y) - I(x-1,y), Iy = I(x,y-1) -
 *     I(x,y+1)), unnormalised; Sobel and Scharr are formed as the
 *     derivative filters form them (a column sum, then a row sum, terms in
 *     order of increasing offset; Iy grows downward).
 *  2. Products Ix*Ix, Iy*Iy, Ix*Iy.
 *  3. Window means over aw x aw pixels (aw = avgWndSize): with h = aw / 2
 *     and e = 1 for even aw, columns x-(h-e) .. x+h and rows y-(h-e) .. y+h.
 *     Each window is summed column by column (down each column, then the
 *     column sums from left to right) and divided by aw*aw, giving A (from
 *     Ix*Ix), B (Iy*Iy), C (Ix*Iy). For aw = 1 the products themselves.
 *  4. t = A + B; s = (float)((double)(uint32)(aw^4) * (double)scale);
 *     dst = (A*B - t*(k*t) - C*C) * s, in that order.
 * Derivatives outside the ROI, which the windows near its edges reach, are
 * formed from source pixels given by the border rule: low three bits 0
 * (constant borderValue), 1 (replicate) or 6 (every neighbour in memory:
 * r + aw/2 pixels on each side, r = 1 for 3x3, 2 for 5x5), with the flags
 * 16, 32, 64, 128 as above. The image is computed in border strips and
 * cache-sized interior tiles; the split does not change any value.
 */
#ifndef ZEBCV_FEATURE_H
#define ZEBCV_FEATURE_H

#include "zebcv/types.h"

ZEB_EXTERN_C_BEGIN

/* Buffer bytes of the derivative detectors: 16*width + 160 + 5*(width+2)*
 * (height+2) when width and height are below 65533, else with 9 in place
 * of 5. Checks: pBufferSize null (-8); width or height below 1 (-6); a
 * size that does not fit an int (-6, nothing stored). */
ZEB_API ZebStatus zebiCannyGetSize(ZebiSize roiSize, int* pBufferSize);

/* Edge map from 16-bit derivatives. Checks in order: any pointer null (-8);
 * width or height below 1 (-6); srcDxStep or srcDyStep below 2*width, or
 * dstEdgeStep below width (-14); srcDxStep or srcDyStep odd (-108);
 * lowThresh < 0 or lowThresh > highThresh (-5). */
ZEB_API ZebStatus zebiCanny_16s8u_C1R(const Zeb16s* pSrcDx, int srcDxStep, const Zeb16s* pSrcDy, int srcDyStep,
                                      Zeb8u* pDstEdges, int dstEdgeStep, ZebiSize roiSize, Zeb32f lowThresh,
                                      Zeb32f highThresh, Zeb8u* pBuffer);

/* Edge map from float derivatives: the checks of the 16-bit form with
 * 4*width for the source steps and multiples of 4 for -108. */
ZEB_API ZebStatus zebiCanny_32f8u_C1R(const Zeb32f* pSrcDx, int srcDxStep, const Zeb32f* pSrcDy, int srcDyStep,
                                      Zeb8u* pDstEdges, int dstEdgeStep, ZebiSize roiSize, Zeb32f lowThresh,
                                      Zeb32f highThresh, Zeb8u* pBuffer);

/* Buffer bytes of zebiCannyBorder_8u_C1R: with k = 3 (mask 33) or 5 (55),
 * W = width + k - 1, H = height + k - 1 and A(x) = x rounded up to a
 * multiple of 32: A(16*W) + A(W*H) + A(4*W*H) + (k > min(width, height) ?
 * A(W*H) : 0) + 64. Checks: pBufferSize null (-8); width or height below 1
 * (-6); mask not 33 or 55 (-33); a size that does not fit an int (-6).
 * filterType and dataType are not examined. */
ZEB_API ZebStatus zebiCannyBorderGetSize(ZebiSize roiSize, ZebiDifferentialKernel filterType, ZebiMaskSize mask,
                                         ZebDataType dataType, int* pBufferSize);

/* Edge map of an 8-bit image. Checks in order: mask not 33 or 55, or
 * Scharr (5) with mask 55 (-33, before the pointers); pSrc, pDst or pBuffer
 * null (-8); width or height below 1 (-6); filterType not 2 or 5, or norm
 * not 2 (L1) or 4 (L2) (-5); lowThresh < 0 or lowThresh > highThresh (-5);
 * borderType's low four bits not 0, 1 or 6 (-225). Steps are not checked. */
ZEB_API ZebStatus zebiCannyBorder_8u_C1R(const Zeb8u* pSrc, int srcStep, Zeb8u* pDst, int dstStep, ZebiSize roiSize,
                                         ZebiDifferentialKernel filterType, ZebiMaskSize mask,
                                         ZebiBorderType borderType, Zeb8u borderValue, Zeb32f lowThresh,
                                         Zeb32f highThresh, ZebNormType norm, Zeb8u* pBuffer);

/* Buffer bytes of the corner response for this ROI, mask, window, data type
 * (1 for 8u, 13 for 32f) and channel count. Checks in order: pBufferSize
 * null (-8); width or height below 1 (-6); filterMask not 33 or 55 (-33);
 * dataType not 1 or 13 (-12); numChannels not 1 (-53); avgWndSize below 1
 * (-6); a size that does not fit an int (-6). */
ZEB_API ZebStatus zebiHarrisCornerGetBufferSize(ZebiSize roiSize, ZebiMaskSize filterMask, int avgWndSize,
                                                ZebDataType dataType, int numChannels, int* pBufferSize);

/* Corner response of a float image. Checks in order: pSrc, pDst or pBuffer
 * null (-8); width or height below 1 (-6); srcStep or dstStep not a
 * multiple of 4 (-108); filterType not 2, 5 or 8 (-230); filterMask not 33
 * and not 55 with Sobel (-33); borderType's low three bits not 0, 1 or 6
 * (-225); avgWndSize below 1 (-6); a negative step (-14); pSrc == pDst
 * (-9997). Steps are not compared with the row length. */
ZEB_API ZebStatus zebiHarrisCorner_32f_C1R(const Zeb32f* pSrc, int srcStep, Zeb32f* pDst, int dstStep,
                                           ZebiSize roiSize, ZebiDifferentialKernel filterType,
                                           ZebiMaskSize filterMask, int avgWndSize, float k, float scale,
                                           ZebiBorderType borderType, Zeb32f borderValue, Zeb8u* pBuffer);

/* Corner response of an 8-bit image: the checks of the float form, except
 * that only dstStep must be a multiple of 4 and there is no in-place test. */
ZEB_API ZebStatus zebiHarrisCorner_8u32f_C1R(const Zeb8u* pSrc, int srcStep, Zeb32f* pDst, int dstStep,
                                             ZebiSize roiSize, ZebiDifferentialKernel filterType,
                                             ZebiMaskSize filterMask, int avgWndSize, float k, float scale,
                                             ZebiBorderType borderType, Zeb8u borderValue, Zeb8u* pBuffer);

ZEB_EXTERN_C_END

#endif /* ZEBCV_FEATURE_H */
