/* SPDX-License-Identifier: Apache-2.0 */
/* Flood fill, marker labelling, speckle marking, segment bounds, watershed
 * and gradient segmentation.
 *
 * Flood fill
 * ----------
 * Fills, in place, the connected region around a seed pixel with newVal and
 * describes the region in a ZebConnectedComp record. Three acceptance modes
 * (for three channels every channel must pass; values are those before the
 * call):
 *   equality   (_4Con, _8Con)           p == s, s the seed's value;
 *   range      (_Range4Con, _Range8Con) s - minDelta <= p <= s + maxDelta,
 *              both ends inclusive; for integer types the lower end is
 *              clamped at 0 and the upper at the type's maximum;
 *   gradient   (_Grad4Con, _Grad8Con)   a pixel q next to an accepted pixel
 *              p is accepted when p - minDelta <= q <= p + maxDelta (for
 *              integer types (q - p + minDelta) <= (minDelta + maxDelta) in
 *              unsigned 32-bit arithmetic), so the range floats along the
 *              region. Along a row p is the accepted horizontal neighbour;
 *              between rows p is the pixel of the accepted span in the same
 *              column, and with 8-connectivity q also passes against either
 *              accepted diagonal neighbour in that span. The region is every
 *              pixel reached through such steps.
 * 4Con regions connect through the 4 edge neighbours, 8Con through all 8.
 * Every pixel is filled at most once, also when newVal passes the range
 * test.
 *
 * Checks, in order: pImage, pRegion or pBuffer (C3: also newVal, minDelta,
 * maxDelta) null (-8); width or height below 1 (-6); imageStep below
 * width x channels x element size (-14); for 16-bit and 32-bit types an
 * imageStep that is not a multiple of the element size (-108); a seed
 * outside the ROI (-11). Nothing is written on failure.
 *
 * The equality and range modes return 0 at once, writing nothing (not even
 * the record), when the seed's value already equals newVal in every
 * channel. The gradient mode fills such a seed normally.
 *
 * Work buffer: zebiFloodFillGetSize (equality, range) or
 * zebiFloodFillGetSize_Grad (gradient) bytes. Its start is rounded up to an
 * 8-byte boundary; it holds a visited map (one byte per pixel; the
 * gradient map has a one-pixel frame) and the span stack: entries of six
 * signed 32-bit integers {y, xLeft, xRight, parentLeft, parentRight, dir}.
 * The stack is bounded by the buffer: a fill whose pending spans would
 * outgrow it continues with a rescan of the filled region, so the result is
 * the same and nothing outside the buffer is ever written.
 *
 * Labelling, speckles, bounds, segmentation
 * -----------------------------------------
 * Norm codes (ZebiNorm): 0 = 8-neighbourhood, 1 = 4-neighbourhood.
 * All work in place on the marker image; see each function for its checks.
 */
#ifndef ZEBCV_REGION_SEGMENT_H
#define ZEBCV_REGION_SEGMENT_H

#include "zebcv/types.h"

ZEB_EXTERN_C_BEGIN

/* The region a flood fill filled. */
typedef struct ZebConnectedComp {
    Zeb64f   area;      /* number of filled pixels */
    Zeb64f   value[3];  /* newVal; for one channel value[0], then 0.0, 0.0 */
    ZebiRect rect;      /* bounding rectangle of the filled pixels */
} ZebConnectedComp;

/* Flags of the watershed (zebiSegmentWatershed_*). Bit 0 or bit 1 must be
 * set; bit 0 takes precedence.
 *   zebSegmentSource (1): pixels are flooded in increasing order of their
 *     source value (the source is a relief, e.g. a gradient magnitude).
 *     Norm 0: 8-neighbourhood, 1: 4-neighbourhood.
 *   zebSegmentDiff (2): a pixel's priority is the absolute difference
 *     between its source value and that of the labelled pixel that reaches
 *     it first, so regions grow across small steps first. Norm 0:
 *     8-neighbourhood, 1: 4-neighbourhood; norms 2 (8-neighbourhood) and 3
 *     (4-neighbourhood) measure the difference against the source value of
 *     the region's seed pixel instead, which grows regions of homogeneous
 *     value.
 *   zebSegmentNoBoundary (128): pixels where regions meet take the label
 *     of the first labelled neighbour instead of the boundary value.
 * Gradient segmentation (zebiSegmentGradient_*) takes flag 0 (every pixel
 * labelled) or 1 (boundaries marked). */
enum { zebSegmentSource = 1, zebSegmentDiff = 2, zebSegmentNoBoundary = 128 };

/* Buffer sizes of the flood fills, for ROIs of w x h pixels. Checks:
 * pBufferSize null (-8); width or height below 1 (-6); a size that does not
 * fit an int (-6, nothing stored).
 *   zebiFloodFillGetSize:      6 w h + 32 bytes;
 *   zebiFloodFillGetSize_Grad: (w + 2)(h + 2) + 16 w h + 64 bytes. */
ZEB_API ZebStatus zebiFloodFillGetSize(ZebiSize roiSize, int* pBufferSize);
ZEB_API ZebStatus zebiFloodFillGetSize_Grad(ZebiSize roiSize, int* pBufferSize);

ZEB_API ZebStatus zebiFloodFill_4Con_8u_C1IR(Zeb8u* pImage, int imageStep, ZebiSize roiSize, ZebiPoint seed, Zeb8u newVal,
        ZebConnectedComp* pRegion, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiFloodFill_4Con_8u_C3IR(Zeb8u* pImage, int imageStep, ZebiSize roiSize, ZebiPoint seed, const Zeb8u pNewVal[3],
        ZebConnectedComp* pRegion, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiFloodFill_4Con_16u_C1IR(Zeb16u* pImage, int imageStep, ZebiSize roiSize, ZebiPoint seed, Zeb16u newVal,
        ZebConnectedComp* pRegion, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiFloodFill_4Con_16u_C3IR(Zeb16u* pImage, int imageStep, ZebiSize roiSize, ZebiPoint seed, const Zeb16u pNewVal[3],
        ZebConnectedComp* pRegion, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiFloodFill_4Con_32s_C1IR(Zeb32s* pImage, int imageStep, ZebiSize roiSize, ZebiPoint seed, Zeb32s newVal,
        ZebConnectedComp* pRegion, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiFloodFill_4Con_32f_C1IR(Zeb32f* pImage, int imageStep, ZebiSize roiSize, ZebiPoint seed, Zeb32f newVal,
        ZebConnectedComp* pRegion, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiFloodFill_4Con_32f_C3IR(Zeb32f* pImage, int imageStep, ZebiSize roiSize, ZebiPoint seed, const Zeb32f pNewVal[3],
        ZebConnectedComp* pRegion, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiFloodFill_8Con_8u_C1IR(Zeb8u* pImage, int imageStep, ZebiSize roiSize, ZebiPoint seed, Zeb8u newVal,
        ZebConnectedComp* pRegion, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiFloodFill_8Con_8u_C3IR(Zeb8u* pImage, int imageStep, ZebiSize roiSize, ZebiPoint seed, const Zeb8u pNewVal[3],
        ZebConnectedComp* pRegion, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiFloodFill_8Con_16u_C1IR(Zeb16u* pImage, int imageStep, ZebiSize roiSize, ZebiPoint seed, Zeb16u newVal,
        ZebConnectedComp* pRegion, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiFloodFill_8Con_16u_C3IR(Zeb16u* pImage, int imageStep, ZebiSize roiSize, ZebiPoint seed, const Zeb16u pNewVal[3],
        ZebConnectedComp* pRegion, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiFloodFill_8Con_32s_C1IR(Zeb32s* pImage, int imageStep, ZebiSize roiSize, ZebiPoint seed, Zeb32s newVal,
        ZebConnectedComp* pRegion, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiFloodFill_8Con_32f_C1IR(Zeb32f* pImage, int imageStep, ZebiSize roiSize, ZebiPoint seed, Zeb32f newVal,
        ZebConnectedComp* pRegion, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiFloodFill_8Con_32f_C3IR(Zeb32f* pImage, int imageStep, ZebiSize roiSize, ZebiPoint seed, const Zeb32f pNewVal[3],
        ZebConnectedComp* pRegion, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiFloodFill_Range4Con_8u_C1IR(Zeb8u* pImage, int imageStep, ZebiSize roiSize, ZebiPoint seed, Zeb8u newVal,
        Zeb8u minDelta, Zeb8u maxDelta, ZebConnectedComp* pRegion, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiFloodFill_Range4Con_8u_C3IR(Zeb8u* pImage, int imageStep, ZebiSize roiSize, ZebiPoint seed, const Zeb8u pNewVal[3],
        const Zeb8u pMinDelta[3], const Zeb8u pMaxDelta[3], ZebConnectedComp* pRegion, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiFloodFill_Range4Con_16u_C1IR(Zeb16u* pImage, int imageStep, ZebiSize roiSize, ZebiPoint seed, Zeb16u newVal,
        Zeb16u minDelta, Zeb16u maxDelta, ZebConnectedComp* pRegion, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiFloodFill_Range4Con_16u_C3IR(Zeb16u* pImage, int imageStep, ZebiSize roiSize, ZebiPoint seed, const Zeb16u pNewVal[3],
        const Zeb16u pMinDelta[3], const Zeb16u pMaxDelta[3], ZebConnectedComp* pRegion, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiFloodFill_Range4Con_32f_C1IR(Zeb32f* pImage, int imageStep, ZebiSize roiSize, ZebiPoint seed, Zeb32f newVal,
        Zeb32f minDelta, Zeb32f maxDelta, ZebConnectedComp* pRegion, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiFloodFill_Range4Con_32f_C3IR(Zeb32f* pImage, int imageStep, ZebiSize roiSize, ZebiPoint seed, const Zeb32f pNewVal[3],
        const Zeb32f pMinDelta[3], const Zeb32f pMaxDelta[3], ZebConnectedComp* pRegion, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiFloodFill_Range8Con_8u_C1IR(Zeb8u* pImage, int imageStep, ZebiSize roiSize, ZebiPoint seed, Zeb8u newVal,
        Zeb8u minDelta, Zeb8u maxDelta, ZebConnectedComp* pRegion, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiFloodFill_Range8Con_8u_C3IR(Zeb8u* pImage, int imageStep, ZebiSize roiSize, ZebiPoint seed, const Zeb8u pNewVal[3],
        const Zeb8u pMinDelta[3], const Zeb8u pMaxDelta[3], ZebConnectedComp* pRegion, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiFloodFill_Range8Con_16u_C1IR(Zeb16u* pImage, int imageStep, ZebiSize roiSize, ZebiPoint seed, Zeb16u newVal,
        Zeb16u minDelta, Zeb16u maxDelta, ZebConnectedComp* pRegion, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiFloodFill_Range8Con_16u_C3IR(Zeb16u* pImage, int imageStep, ZebiSize roiSize, ZebiPoint seed, const Zeb16u pNewVal[3],
        const Zeb16u pMinDelta[3], const Zeb16u pMaxDelta[3], ZebConnectedComp* pRegion, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiFloodFill_Range8Con_32f_C1IR(Zeb32f* pImage, int imageStep, ZebiSize roiSize, ZebiPoint seed, Zeb32f newVal,
        Zeb32f minDelta, Zeb32f maxDelta, ZebConnectedComp* pRegion, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiFloodFill_Range8Con_32f_C3IR(Zeb32f* pImage, int imageStep, ZebiSize roiSize, ZebiPoint seed, const Zeb32f pNewVal[3],
        const Zeb32f pMinDelta[3], const Zeb32f pMaxDelta[3], ZebConnectedComp* pRegion, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiFloodFill_Grad4Con_8u_C1IR(Zeb8u* pImage, int imageStep, ZebiSize roiSize, ZebiPoint seed, Zeb8u newVal,
        Zeb8u minDelta, Zeb8u maxDelta, ZebConnectedComp* pRegion, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiFloodFill_Grad4Con_8u_C3IR(Zeb8u* pImage, int imageStep, ZebiSize roiSize, ZebiPoint seed, const Zeb8u pNewVal[3],
        const Zeb8u pMinDelta[3], const Zeb8u pMaxDelta[3], ZebConnectedComp* pRegion, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiFloodFill_Grad4Con_16u_C1IR(Zeb16u* pImage, int imageStep, ZebiSize roiSize, ZebiPoint seed, Zeb16u newVal,
        Zeb16u minDelta, Zeb16u maxDelta, ZebConnectedComp* pRegion, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiFloodFill_Grad4Con_16u_C3IR(Zeb16u* pImage, int imageStep, ZebiSize roiSize, ZebiPoint seed, const Zeb16u pNewVal[3],
        const Zeb16u pMinDelta[3], const Zeb16u pMaxDelta[3], ZebConnectedComp* pRegion, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiFloodFill_Grad4Con_32f_C1IR(Zeb32f* pImage, int imageStep, ZebiSize roiSize, ZebiPoint seed, Zeb32f newVal,
        Zeb32f minDelta, Zeb32f maxDelta, ZebConnectedComp* pRegion, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiFloodFill_Grad4Con_32f_C3IR(Zeb32f* pImage, int imageStep, ZebiSize roiSize, ZebiPoint seed, const Zeb32f pNewVal[3],
        const Zeb32f pMinDelta[3], const Zeb32f pMaxDelta[3], ZebConnectedComp* pRegion, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiFloodFill_Grad8Con_8u_C1IR(Zeb8u* pImage, int imageStep, ZebiSize roiSize, ZebiPoint seed, Zeb8u newVal,
        Zeb8u minDelta, Zeb8u maxDelta, ZebConnectedComp* pRegion, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiFloodFill_Grad8Con_8u_C3IR(Zeb8u* pImage, int imageStep, ZebiSize roiSize, ZebiPoint seed, const Zeb8u pNewVal[3],
        const Zeb8u pMinDelta[3], const Zeb8u pMaxDelta[3], ZebConnectedComp* pRegion, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiFloodFill_Grad8Con_16u_C1IR(Zeb16u* pImage, int imageStep, ZebiSize roiSize, ZebiPoint seed, Zeb16u newVal,
        Zeb16u minDelta, Zeb16u maxDelta, ZebConnectedComp* pRegion, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiFloodFill_Grad8Con_16u_C3IR(Zeb16u* pImage, int imageStep, ZebiSize roiSize, ZebiPoint seed, const Zeb16u pNewVal[3],
        const Zeb16u pMinDelta[3], const Zeb16u pMaxDelta[3], ZebConnectedComp* pRegion, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiFloodFill_Grad8Con_32f_C1IR(Zeb32f* pImage, int imageStep, ZebiSize roiSize, ZebiPoint seed, Zeb32f newVal,
        Zeb32f minDelta, Zeb32f maxDelta, ZebConnectedComp* pRegion, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiFloodFill_Grad8Con_32f_C3IR(Zeb32f* pImage, int imageStep, ZebiSize roiSize, ZebiPoint seed, const Zeb32f pNewVal[3],
        const Zeb32f pMinDelta[3], const Zeb32f pMaxDelta[3], ZebConnectedComp* pRegion, Zeb8u* pBuffer);

/* Marker labelling. Every non-zero marker pixel is set to the "unlabelled"
 * value (65535 for 16u, 255 for 8u, -1 for the 32-bit labels); the image is
 * scanned in rows, and each pixel still unlabelled starts a span flood fill
 * (4-connectivity for norm 1, 8-connectivity for norm 0) that gives its
 * connected region the next label. Labels run from minLabel, advance by
 * one per region and wrap from maxLabel back to minLabel. *pNumber gets
 * the number of regions (not capped by the label range).
 * _8u32s_C1R reads 8-bit markers and writes 32-bit labels to pDst (zero
 * where the marker is zero); it leaves pSrc unchanged.
 * Checks, in order: pMarker (pSrc, pDst), pNumber or pBuffer null (-8);
 * width or height below 1 (-6); a step below a row (-14); a step that is
 * not a multiple of the element size (-108); minLabel < 1, maxLabel not
 * below the unlabelled value (255, 65535, 2^31 - 1) or minLabel > maxLabel
 * (-5); norm not 0 or 1 (-5).
 * Buffer: zebiLabelMarkersGetBufferSize_* bytes, the flood fill's size
 * (checks: pBufSize null -8, width or height below 1 -6). */
ZEB_API ZebStatus zebiLabelMarkersGetBufferSize_8u_C1R(ZebiSize roiSize, int* pBufSize);
ZEB_API ZebStatus zebiLabelMarkersGetBufferSize_16u_C1R(ZebiSize roiSize, int* pBufSize);
ZEB_API ZebStatus zebiLabelMarkersGetBufferSize_8u32s_C1R(ZebiSize roiSize, int* pBufSize);
ZEB_API ZebStatus zebiLabelMarkers_8u_C1IR(Zeb8u* pMarker, int markerStep, ZebiSize roiSize, int minLabel,
                                           int maxLabel, ZebiNorm norm, int* pNumber, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiLabelMarkers_16u_C1IR(Zeb16u* pMarker, int markerStep, ZebiSize roiSize, int minLabel,
                                            int maxLabel, ZebiNorm norm, int* pNumber, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiLabelMarkers_8u32s_C1R(const Zeb8u* pSrc, int srcStep, Zeb32s* pDst, int dstStep,
                                             ZebiSize roiSize, int minLabel, int maxLabel, ZebiNorm norm,
                                             int* pNumber, Zeb8u* pBuffer);

/* Speckle marking. Regions of 4-connected pixels whose neighbouring values
 * differ by at most maxPixDiff (|a - b| in 32-bit integers, in float for
 * 32f), never crossing a pixel equal to newVal, are set to newVal when they
 * have at most maxSpeckleSize pixels. Rows are scanned top to bottom; each
 * unlabelled pixel grows its region depth first (right, left, upper, lower
 * neighbour of each popped pixel).
 * Buffer (zebiMarkSpecklesGetBufferSize, 13 w h + 64 bytes from a 64-byte
 * boundary): a 32-bit label per pixel, a stack of {x, y} 32-bit pairs, one
 * flag byte per label. Size checks: pBufSize null (-8); size below 1 (-6);
 * dataType not 1, 5, 7 or 13 (-12); channels not 1 (-53); too large (-6).
 * Checks: pSrcDst or pBuffer null (-8); width or height below 1 (-6); a
 * step below a row (-14) or, for 16-bit and 32-bit types, not a multiple of
 * the element size (-108); norm not 1 (-229). */
ZEB_API ZebStatus zebiMarkSpecklesGetBufferSize(ZebiSize roiSize, ZebDataType dataType, int channels, int* pBufSize);
ZEB_API ZebStatus zebiMarkSpeckles_8u_C1IR(Zeb8u* pSrcDst, int srcDstStep, ZebiSize roiSize, Zeb8u newVal,
                                           int maxSpeckleSize, Zeb8u maxPixDiff, ZebiNorm norm, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiMarkSpeckles_16u_C1IR(Zeb16u* pSrcDst, int srcDstStep, ZebiSize roiSize, Zeb16u newVal,
                                            int maxSpeckleSize, Zeb16u maxPixDiff, ZebiNorm norm, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiMarkSpeckles_16s_C1IR(Zeb16s* pSrcDst, int srcDstStep, ZebiSize roiSize, Zeb16s newVal,
                                            int maxSpeckleSize, Zeb16s maxPixDiff, ZebiNorm norm, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiMarkSpeckles_32f_C1IR(Zeb32f* pSrcDst, int srcDstStep, ZebiSize roiSize, Zeb32f newVal,
                                            int maxSpeckleSize, Zeb32f maxPixDiff, ZebiNorm norm, Zeb8u* pBuffer);

/* Segment bounds, in place and in raster order: a pixel becomes val when a
 * neighbour already visited (norm 1: left and upper; norm 0: left,
 * upper-left, upper, upper-right) holds a value different from the pixel's
 * and from val. Boundaries come out one pixel wide; a one-pixel-wide image
 * uses the norm-1 neighbours. Checks: pMarker null (-8); width or height
 * below 1 (-6); markerStep below a row (-14); 16u: an odd step (-108);
 * norm not 0 or 1 (-5). */
ZEB_API ZebStatus zebiBoundSegments_8u_C1IR(Zeb8u* pMarker, int markerStep, ZebiSize roiSize, Zeb8u val,
                                            ZebiNorm norm);
ZEB_API ZebStatus zebiBoundSegments_16u_C1IR(Zeb16u* pMarker, int markerStep, ZebiSize roiSize, Zeb16u val,
                                             ZebiNorm norm);

/* Gradient segmentation: the labelled (non-zero) marker pixels grow over
 * the unlabelled (0) ones in increasing order of the source's gradient,
 * max - min of the 3x3 neighbourhood (edge pixels repeated; for C3 the
 * largest of the three channels' values), first in first out among equal
 * gradients, through the 4 edge neighbours. With flag 1 a pixel reached by
 * two different labels becomes 255 (a boundary, which does not grow) and
 * marker pixels of value 255 are barriers; with flag 0 it takes the label
 * that reached it first.
 * Buffer: 17 w h + 115 bytes. Size checks: pBufSize null (-8), size below
 * 1 (-6), too large (-6). Checks: pSrc, pMarker or pBuffer null (-8); width
 * or height below 1 (-6); srcStep below width x channels or markerStep
 * below width (-14); flag not 0 or 1 (-5). */
ZEB_API ZebStatus zebiSegmentGradientGetBufferSize_8u_C1R(ZebiSize roiSize, int* pBufSize);
ZEB_API ZebStatus zebiSegmentGradientGetBufferSize_8u_C3R(ZebiSize roiSize, int* pBufSize);
ZEB_API ZebStatus zebiSegmentGradient_8u_C1IR(const Zeb8u* pSrc, int srcStep, Zeb8u* pMarker, int markerStep,
                                              ZebiSize roiSize, int flag, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiSegmentGradient_8u_C3IR(const Zeb8u* pSrc, int srcStep, Zeb8u* pMarker, int markerStep,
                                              ZebiSize roiSize, int flag, Zeb8u* pBuffer);

/* Watershed: a priority flood from the labelled (non-zero) marker pixels
 * over the unlabelled (0) ones, one first-in-first-out queue per priority
 * level, always served from the lowest non-empty level. A pixel leaves the
 * queue with the label of its labelled neighbours; where different labels
 * meet it becomes the boundary value (255 for 8-bit markers, 65535 for
 * 16-bit ones) unless the flag holds zebSegmentNoBoundary. Only labelled
 * pixels spread their label. Marker pixels equal to the boundary value are
 * barriers: never flooded, never spreading. Flags and norms: see
 * zebSegmentSource above.
 * Buffer, with r = (2 w + 31) & ~31: max(16 w h + 2 (w + 2)(h + 2) + 48,
 * 2 r (h + 1) + h + 4 h r + 66) bytes for both marker types. Size checks:
 * pBufSize null (-8); size below 1 (-6); too large (-6).
 * Checks: pSrc, pMarker or pBuffer null (-8); width or height below 1
 * (-6); srcStep below width or markerStep below a marker row (-14); 16u: an
 * odd markerStep (-108); bit 0 set and norm not 0 or 1, bit 0 clear and
 * bit 1 set and norm not 0 to 3, or neither bit set (-5). */
ZEB_API ZebStatus zebiSegmentWatershedGetBufferSize_8u_C1R(ZebiSize roiSize, int* pBufSize);
ZEB_API ZebStatus zebiSegmentWatershedGetBufferSize_8u16u_C1R(ZebiSize roiSize, int* pBufSize);
ZEB_API ZebStatus zebiSegmentWatershed_8u_C1IR(const Zeb8u* pSrc, int srcStep, Zeb8u* pMarker, int markerStep,
                                               ZebiSize roiSize, ZebiNorm norm, int flag, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiSegmentWatershed_8u16u_C1IR(const Zeb8u* pSrc, int srcStep, Zeb16u* pMarker, int markerStep,
                                                  ZebiSize roiSize, ZebiNorm norm, int flag, Zeb8u* pBuffer);

ZEB_EXTERN_C_END

#endif /* ZEBCV_REGION_SEGMENT_H */
