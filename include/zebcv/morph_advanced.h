/* SPDX-License-Identifier: Apache-2.0 */
/* Compound, grey-scale and reconstruction morphology.
 *
 * Reconstruction (zebiMorphReconstructDilate_*, zebiMorphReconstructErode_*)
 *   pSrc is the mask image I, pSrcDst holds the marker J on entry and the
 *   reconstruction on return. By dilation: the largest image R <= I that
 *   is reachable from min(J, I) by neighbour-wise propagation, i.e. the
 *   fixed point of R = min(max over the neighbourhood of R, I) reached from
 *   min(J, I). By erosion: the dual (the smallest R >= I reachable from
 *   max(J, I), R = max(min over the neighbourhood of R, I)).
 *   norm 0 propagates through the 4-neighbourhood (left, right, up, down),
 *   norm 1 through the 8-neighbourhood (diagonals too); any other value is
 *   refused. The work runs by forward and backward raster scans over the
 *   rows that may still change, repeated until a pass changes nothing; the
 *   buffer holds no queue and nothing is allocated.
 *   Checks in order: pSrc, pSrcDst or pBuffer null (-8); width or height
 *   below 1 (-6); a step below the row length (-14); for 16u, 32f and 64f
 *   a step that is not a multiple of the sample size (-108); norm other
 *   than 0 or 1 (-5). Float images must hold no NaN (results with NaN are
 *   unspecified).
 *   Work buffer (W, H = ROI width and height), from the GetBufferSize
 *   queries: 8u 4W + H + 161 bytes, 16u 2(4W + H) + 322, 32f 16W + H + 164,
 *   64f 32W + H + 168 (four rows aligned to 32 bytes and one flag byte per
 *   row; the functions align the start themselves). The generic query
 *   takes the data type 1 (8u), 5 (16u), 13 (32f) or 19 (64f) and one
 *   channel; checks: null output (-8), width or height below 1 (-6), data
 *   type (-12), channel count (-53). Sizes that do not fit an int give -6.
 *
 * Grey-scale dilation and erosion (zebiGrayDilateBorder_*, zebiGrayErodeBorder_*)
 *   The structuring element is a maskSize.width x maskSize.height array of
 *   values b(i, j), row by row, with a caller-chosen anchor (ax, ay):
 *     dilation  dst(x, y) = max over (i, j) of src(x - ax + i, y - ay + j) + b(i, j)
 *     erosion   dst(x, y) = min over (i, j) of src(x - ax + i, y - ay + j) - b(i, j)
 *   (the element is not reflected: a flat element, all values 0, gives
 *   the plain dilation and erosion of the same mask).
 *   8u: the element values are Zeb32s and every sum or difference is
 *   saturated to 0..255; an element value of -255 or less never changes a
 *   result, so it leaves that position out of the element. With no value
 *   above -255, dilation gives 0 and erosion 255 everywhere.
 *   32f: the element values are Zeb32f, sums in single precision; a value
 *   of -INFINITY leaves the position out (dilation gives -INFINITY and
 *   erosion +INFINITY where no position remains).
 *   Borders: 1 (replicate: coordinates outside the image are clamped to
 *   the nearest edge pixel) or 6 (the pixels around the ROI, as far as the
 *   element reaches, are read from the caller's image); anything else
 *   -225.
 *   The state (ZebiMorphGrayState) holds the element, the anchor, the
 *   largest ROI width it serves and its own scratch rows: zebiMorphGrayInit_*
 *   builds it in caller memory of zebiMorphGrayGetSize_* bytes (the start is
 *   aligned by the functions), zebiMorphGrayInitAlloc_* allocates it with
 *   zebMalloc (-9 when that fails) and zebiMorphGrayFree_* releases it
 *   (-8 for a null pointer). Since the scratch rows live in the state, a
 *   state serves one call at a time. Using a state with another pixel type
 *   than it was made for is the caller's error and is not detected.
 *   GetSize checks: pMask or pSize null (-8); roiWidth, maskSize.width or
 *   maskSize.height below 1 (-6). Init checks: pMask or the state pointer
 *   null (-8); sizes (-6); anchor outside the element (-34).
 *   Filter checks: pSrc, pDst or pState null (-8); width or height below 1
 *   (-6); a step below the row length (-14); for 32f a step that is not a
 *   multiple of 4 (-108); border type (-225); ROI width larger than the
 *   state's (-5).
 *
 * Compound operations (zebiMorph{Open,Close,Tophat,Blackhat,Gradient}Border_*)
 *   Run the dilation and erosion of zebcv/morph.h with the state's mask
 *   (anchored at its centre), the call's border type and border value:
 *     opening   erosion, then dilation of the result
 *     closing   dilation, then erosion of the result
 *     top-hat   src - opening          black-hat  closing - src
 *     gradient  dilation - erosion
 *   Differences saturate to the pixel type (8u, 16u, 16s; 32f is a plain
 *   single-precision difference); for 1u images a - b is a AND NOT b.
 *   1u images: eight pixels to a byte, most significant bit first, each
 *   row starting at bit 7 of its first byte, (width + 7) / 8 bytes a row;
 *   the destination bits past the ROI width keep their value.
 *   Border 1 replicates the edge pixels of the source for the first
 *   operation and of the intermediate image for the second one. Border 6
 *   reads the pixels around the ROI from memory: the first operation is
 *   made over the ROI widened by the mask's reach on every side, so the
 *   source must be readable twice the reach around the ROI (mask.width - 1
 *   columns left and right and mask.height - 1 rows above and below, about
 *   the centre anchor; for 1u up to seven more columns on the left, in
 *   whole bytes). Other border modes give -225.
 *   State (ZebiMorphAdvState): the mask prepared twice, for dilation and
 *   erosion, and the largest ROI it serves; built by zebiMorphAdvInit_* in
 *   caller memory or allocated by zebiMorphAdvInitAlloc_* (8u and 32f;
 *   -9 when the allocation fails) and released by zebiMorphAdvFree (-8
 *   for a null pointer). With S and B the state and buffer sizes of
 *   zebiMorphologyBorderGetSize_* for the ROI width and mask (for 1u with
 *   the width raised to at least 8), GetSize gives the state size 2S + 32
 *   and the buffer size 2B + R32(row bytes of W + mW - 1 pixels, for 1u
 *   W + mW + 6 pixels) * (H + mH - 1), R32 rounding up to a multiple of
 *   32. A state serves calls whose ROI is no wider and no taller than the
 *   one it was made for, one call at a time.
 *   GetSize checks: a null output (-8); ROI or mask width or height below 1
 *   (-6); sizes that do not fit an int (-6). Init checks: pMask, pSpec or
 *   pBuffer null (-8); the same sizes (-6); nothing else (the buffer is not
 *   written).
 *   Operation checks, in order: pSrc, pDst, pSpec, pBuffer (and an array
 *   borderValue) null (-8); width or height below 1 (-6); a step below the
 *   row length in bytes (-14); for 16-bit and float images a step that is
 *   not a multiple of the sample size (-108); the border mode (low four
 *   bits) not 1 or 6 (-225); the ROI wider or taller than the state's (-5).
 *   Nothing is written on failure. Source and destination must not overlap.
 */
#ifndef ZEBCV_MORPH_ADVANCED_H
#define ZEBCV_MORPH_ADVANCED_H

#include "zebcv/morph.h"
#include "zebcv/types.h"

ZEB_EXTERN_C_BEGIN

/* ---- Reconstruction ---- */

ZEB_API ZebStatus zebiMorphReconstructGetBufferSize(ZebiSize roiSize, ZebDataType dataType, int numChannels,
                                                    int* pBufferSize);
ZEB_API ZebStatus zebiMorphReconstructGetBufferSize_8u_C1(ZebiSize roiSize, int* pBufferSize);
ZEB_API ZebStatus zebiMorphReconstructGetBufferSize_16u_C1(ZebiSize roiSize, int* pBufferSize);
ZEB_API ZebStatus zebiMorphReconstructGetBufferSize_32f_C1(ZebiSize roiSize, int* pBufferSize);
ZEB_API ZebStatus zebiMorphReconstructGetBufferSize_64f_C1(ZebiSize roiSize, int* pBufferSize);

ZEB_API ZebStatus zebiMorphReconstructDilate_8u_C1IR(const Zeb8u* pSrc, int srcStep, Zeb8u* pSrcDst, int srcDstStep,
                                                     ZebiSize roiSize, Zeb8u* pBuffer, ZebiNorm norm);
ZEB_API ZebStatus zebiMorphReconstructDilate_16u_C1IR(const Zeb16u* pSrc, int srcStep, Zeb16u* pSrcDst,
                                                      int srcDstStep, ZebiSize roiSize, Zeb8u* pBuffer, ZebiNorm norm);
ZEB_API ZebStatus zebiMorphReconstructDilate_32f_C1IR(const Zeb32f* pSrc, int srcStep, Zeb32f* pSrcDst,
                                                      int srcDstStep, ZebiSize roiSize, Zeb8u* pBuffer, ZebiNorm norm);
ZEB_API ZebStatus zebiMorphReconstructDilate_64f_C1IR(const Zeb64f* pSrc, int srcStep, Zeb64f* pSrcDst,
                                                      int srcDstStep, ZebiSize roiSize, Zeb8u* pBuffer, ZebiNorm norm);
ZEB_API ZebStatus zebiMorphReconstructErode_8u_C1IR(const Zeb8u* pSrc, int srcStep, Zeb8u* pSrcDst, int srcDstStep,
                                                    ZebiSize roiSize, Zeb8u* pBuffer, ZebiNorm norm);
ZEB_API ZebStatus zebiMorphReconstructErode_16u_C1IR(const Zeb16u* pSrc, int srcStep, Zeb16u* pSrcDst, int srcDstStep,
                                                     ZebiSize roiSize, Zeb8u* pBuffer, ZebiNorm norm);
ZEB_API ZebStatus zebiMorphReconstructErode_32f_C1IR(const Zeb32f* pSrc, int srcStep, Zeb32f* pSrcDst, int srcDstStep,
                                                     ZebiSize roiSize, Zeb8u* pBuffer, ZebiNorm norm);
ZEB_API ZebStatus zebiMorphReconstructErode_64f_C1IR(const Zeb64f* pSrc, int srcStep, Zeb64f* pSrcDst, int srcDstStep,
                                                     ZebiSize roiSize, Zeb8u* pBuffer, ZebiNorm norm);

/* ---- Grey-scale dilation and erosion ---- */

typedef struct ZebiMorphGrayState ZebiMorphGrayState;

ZEB_API ZebStatus zebiMorphGrayGetSize_8u_C1R(int roiWidth, const Zeb32s* pMask, ZebiSize maskSize, int* pSize);
ZEB_API ZebStatus zebiMorphGrayGetSize_32f_C1R(int roiWidth, const Zeb32f* pMask, ZebiSize maskSize, int* pSize);
ZEB_API ZebStatus zebiMorphGrayInit_8u_C1R(int roiWidth, const Zeb32s* pMask, ZebiSize maskSize, ZebiPoint anchor,
                                           ZebiMorphGrayState* pState);
ZEB_API ZebStatus zebiMorphGrayInit_32f_C1R(int roiWidth, const Zeb32f* pMask, ZebiSize maskSize, ZebiPoint anchor,
                                            ZebiMorphGrayState* pState);
ZEB_API ZebStatus zebiMorphGrayInitAlloc_8u_C1R(int roiWidth, const Zeb32s* pMask, ZebiSize maskSize,
                                                ZebiPoint anchor, ZebiMorphGrayState** ppState);
ZEB_API ZebStatus zebiMorphGrayInitAlloc_32f_C1R(int roiWidth, const Zeb32f* pMask, ZebiSize maskSize,
                                                 ZebiPoint anchor, ZebiMorphGrayState** ppState);
ZEB_API ZebStatus zebiMorphGrayFree_8u_C1R(ZebiMorphGrayState* pState);
ZEB_API ZebStatus zebiMorphGrayFree_32f_C1R(ZebiMorphGrayState* pState);

ZEB_API ZebStatus zebiGrayDilateBorder_8u_C1R(const Zeb8u* pSrc, int srcStep, Zeb8u* pDst, int dstStep,
                                              ZebiSize roiSize, ZebiBorderType borderType, ZebiMorphGrayState* pState);
ZEB_API ZebStatus zebiGrayDilateBorder_32f_C1R(const Zeb32f* pSrc, int srcStep, Zeb32f* pDst, int dstStep,
                                               ZebiSize roiSize, ZebiBorderType borderType, ZebiMorphGrayState* pState);
ZEB_API ZebStatus zebiGrayErodeBorder_8u_C1R(const Zeb8u* pSrc, int srcStep, Zeb8u* pDst, int dstStep,
                                             ZebiSize roiSize, ZebiBorderType borderType, ZebiMorphGrayState* pState);
ZEB_API ZebStatus zebiGrayErodeBorder_32f_C1R(const Zeb32f* pSrc, int srcStep, Zeb32f* pDst, int dstStep,
                                              ZebiSize roiSize, ZebiBorderType borderType, ZebiMorphGrayState* pState);

/* ---- Compound operations ---- */

typedef struct ZebiMorphAdvState ZebiMorphAdvState;

ZEB_API ZebStatus zebiMorphAdvGetSize_1u_C1R(ZebiSize roiSize, ZebiSize maskSize, int* pSpecSize, int* pBufferSize);
ZEB_API ZebStatus zebiMorphAdvInit_1u_C1R(ZebiSize roiSize, const Zeb8u* pMask, ZebiSize maskSize,
                                          ZebiMorphAdvState* pSpec, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiMorphOpenBorder_1u_C1R(const Zeb8u* pSrc, int srcStep, Zeb8u* pDst, int dstStep,
                                             ZebiSize roiSize, ZebiBorderType borderType, Zeb8u borderValue,
                                             const ZebiMorphAdvState* pSpec, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiMorphCloseBorder_1u_C1R(const Zeb8u* pSrc, int srcStep, Zeb8u* pDst, int dstStep,
                                              ZebiSize roiSize, ZebiBorderType borderType, Zeb8u borderValue,
                                              const ZebiMorphAdvState* pSpec, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiMorphTophatBorder_1u_C1R(const Zeb8u* pSrc, int srcStep, Zeb8u* pDst, int dstStep,
                                               ZebiSize roiSize, ZebiBorderType borderType, Zeb8u borderValue,
                                               const ZebiMorphAdvState* pSpec, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiMorphBlackhatBorder_1u_C1R(const Zeb8u* pSrc, int srcStep, Zeb8u* pDst, int dstStep,
                                                 ZebiSize roiSize, ZebiBorderType borderType, Zeb8u borderValue,
                                                 const ZebiMorphAdvState* pSpec, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiMorphGradientBorder_1u_C1R(const Zeb8u* pSrc, int srcStep, Zeb8u* pDst, int dstStep,
                                                 ZebiSize roiSize, ZebiBorderType borderType, Zeb8u borderValue,
                                                 const ZebiMorphAdvState* pSpec, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiMorphAdvGetSize_8u_C1R(ZebiSize roiSize, ZebiSize maskSize, int* pSpecSize, int* pBufferSize);
ZEB_API ZebStatus zebiMorphAdvInit_8u_C1R(ZebiSize roiSize, const Zeb8u* pMask, ZebiSize maskSize,
                                          ZebiMorphAdvState* pSpec, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiMorphAdvInitAlloc_8u_C1R(ZebiSize roiSize, const Zeb8u* pMask, ZebiSize maskSize,
                                               ZebiMorphAdvState** ppSpec);
ZEB_API ZebStatus zebiMorphOpenBorder_8u_C1R(const Zeb8u* pSrc, int srcStep, Zeb8u* pDst, int dstStep,
                                             ZebiSize roiSize, ZebiBorderType borderType, Zeb8u borderValue,
                                             const ZebiMorphAdvState* pSpec, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiMorphCloseBorder_8u_C1R(const Zeb8u* pSrc, int srcStep, Zeb8u* pDst, int dstStep,
                                              ZebiSize roiSize, ZebiBorderType borderType, Zeb8u borderValue,
                                              const ZebiMorphAdvState* pSpec, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiMorphTophatBorder_8u_C1R(const Zeb8u* pSrc, int srcStep, Zeb8u* pDst, int dstStep,
                                               ZebiSize roiSize, ZebiBorderType borderType, Zeb8u borderValue,
                                               const ZebiMorphAdvState* pSpec, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiMorphBlackhatBorder_8u_C1R(const Zeb8u* pSrc, int srcStep, Zeb8u* pDst, int dstStep,
                                                 ZebiSize roiSize, ZebiBorderType borderType, Zeb8u borderValue,
                                                 const ZebiMorphAdvState* pSpec, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiMorphGradientBorder_8u_C1R(const Zeb8u* pSrc, int srcStep, Zeb8u* pDst, int dstStep,
                                                 ZebiSize roiSize, ZebiBorderType borderType, Zeb8u borderValue,
                                                 const ZebiMorphAdvState* pSpec, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiMorphAdvGetSize_8u_C3R(ZebiSize roiSize, ZebiSize maskSize, int* pSpecSize, int* pBufferSize);
ZEB_API ZebStatus zebiMorphAdvInit_8u_C3R(ZebiSize roiSize, const Zeb8u* pMask, ZebiSize maskSize,
                                          ZebiMorphAdvState* pSpec, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiMorphAdvInitAlloc_8u_C3R(ZebiSize roiSize, const Zeb8u* pMask, ZebiSize maskSize,
                                               ZebiMorphAdvState** ppSpec);
ZEB_API ZebStatus zebiMorphOpenBorder_8u_C3R(const Zeb8u* pSrc, int srcStep, Zeb8u* pDst, int dstStep,
                                             ZebiSize roiSize, ZebiBorderType borderType, const Zeb8u borderValue[3],
                                             const ZebiMorphAdvState* pSpec, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiMorphCloseBorder_8u_C3R(const Zeb8u* pSrc, int srcStep, Zeb8u* pDst, int dstStep,
                                              ZebiSize roiSize, ZebiBorderType borderType,
                                              const Zeb8u borderValue[3], const ZebiMorphAdvState* pSpec,
                                              Zeb8u* pBuffer);
ZEB_API ZebStatus zebiMorphTophatBorder_8u_C3R(const Zeb8u* pSrc, int srcStep, Zeb8u* pDst, int dstStep,
                                               ZebiSize roiSize, ZebiBorderType borderType,
                                               const Zeb8u borderValue[3], const ZebiMorphAdvState* pSpec,
                                               Zeb8u* pBuffer);
ZEB_API ZebStatus zebiMorphBlackhatBorder_8u_C3R(const Zeb8u* pSrc, int srcStep, Zeb8u* pDst, int dstStep,
                                                 ZebiSize roiSize, ZebiBorderType borderType,
                                                 const Zeb8u borderValue[3], const ZebiMorphAdvState* pSpec,
                                                 Zeb8u* pBuffer);
ZEB_API ZebStatus zebiMorphGradientBorder_8u_C3R(const Zeb8u* pSrc, int srcStep, Zeb8u* pDst, int dstStep,
                                                 ZebiSize roiSize, ZebiBorderType borderType,
                                                 const Zeb8u borderValue[3], const ZebiMorphAdvState* pSpec,
                                                 Zeb8u* pBuffer);
ZEB_API ZebStatus zebiMorphAdvGetSize_8u_C4R(ZebiSize roiSize, ZebiSize maskSize, int* pSpecSize, int* pBufferSize);
ZEB_API ZebStatus zebiMorphAdvInit_8u_C4R(ZebiSize roiSize, const Zeb8u* pMask, ZebiSize maskSize,
                                          ZebiMorphAdvState* pSpec, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiMorphAdvInitAlloc_8u_C4R(ZebiSize roiSize, const Zeb8u* pMask, ZebiSize maskSize,
                                               ZebiMorphAdvState** ppSpec);
ZEB_API ZebStatus zebiMorphOpenBorder_8u_C4R(const Zeb8u* pSrc, int srcStep, Zeb8u* pDst, int dstStep,
                                             ZebiSize roiSize, ZebiBorderType borderType, const Zeb8u borderValue[4],
                                             const ZebiMorphAdvState* pSpec, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiMorphCloseBorder_8u_C4R(const Zeb8u* pSrc, int srcStep, Zeb8u* pDst, int dstStep,
                                              ZebiSize roiSize, ZebiBorderType borderType,
                                              const Zeb8u borderValue[4], const ZebiMorphAdvState* pSpec,
                                              Zeb8u* pBuffer);
ZEB_API ZebStatus zebiMorphTophatBorder_8u_C4R(const Zeb8u* pSrc, int srcStep, Zeb8u* pDst, int dstStep,
                                               ZebiSize roiSize, ZebiBorderType borderType,
                                               const Zeb8u borderValue[4], const ZebiMorphAdvState* pSpec,
                                               Zeb8u* pBuffer);
ZEB_API ZebStatus zebiMorphBlackhatBorder_8u_C4R(const Zeb8u* pSrc, int srcStep, Zeb8u* pDst, int dstStep,
                                                 ZebiSize roiSize, ZebiBorderType borderType,
                                                 const Zeb8u borderValue[4], const ZebiMorphAdvState* pSpec,
                                                 Zeb8u* pBuffer);
ZEB_API ZebStatus zebiMorphGradientBorder_8u_C4R(const Zeb8u* pSrc, int srcStep, Zeb8u* pDst, int dstStep,
                                                 ZebiSize roiSize, ZebiBorderType borderType,
                                                 const Zeb8u borderValue[4], const ZebiMorphAdvState* pSpec,
                                                 Zeb8u* pBuffer);
ZEB_API ZebStatus zebiMorphAdvGetSize_16u_C1R(ZebiSize roiSize, ZebiSize maskSize, int* pSpecSize, int* pBufferSize);
ZEB_API ZebStatus zebiMorphAdvInit_16u_C1R(ZebiSize roiSize, const Zeb8u* pMask, ZebiSize maskSize,
                                           ZebiMorphAdvState* pSpec, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiMorphOpenBorder_16u_C1R(const Zeb16u* pSrc, int srcStep, Zeb16u* pDst, int dstStep,
                                              ZebiSize roiSize, ZebiBorderType borderType, Zeb16u borderValue,
                                              const ZebiMorphAdvState* pSpec, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiMorphCloseBorder_16u_C1R(const Zeb16u* pSrc, int srcStep, Zeb16u* pDst, int dstStep,
                                               ZebiSize roiSize, ZebiBorderType borderType, Zeb16u borderValue,
                                               const ZebiMorphAdvState* pSpec, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiMorphTophatBorder_16u_C1R(const Zeb16u* pSrc, int srcStep, Zeb16u* pDst, int dstStep,
                                                ZebiSize roiSize, ZebiBorderType borderType, Zeb16u borderValue,
                                                const ZebiMorphAdvState* pSpec, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiMorphBlackhatBorder_16u_C1R(const Zeb16u* pSrc, int srcStep, Zeb16u* pDst, int dstStep,
                                                  ZebiSize roiSize, ZebiBorderType borderType, Zeb16u borderValue,
                                                  const ZebiMorphAdvState* pSpec, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiMorphGradientBorder_16u_C1R(const Zeb16u* pSrc, int srcStep, Zeb16u* pDst, int dstStep,
                                                  ZebiSize roiSize, ZebiBorderType borderType, Zeb16u borderValue,
                                                  const ZebiMorphAdvState* pSpec, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiMorphAdvGetSize_16s_C1R(ZebiSize roiSize, ZebiSize maskSize, int* pSpecSize, int* pBufferSize);
ZEB_API ZebStatus zebiMorphAdvInit_16s_C1R(ZebiSize roiSize, const Zeb8u* pMask, ZebiSize maskSize,
                                           ZebiMorphAdvState* pSpec, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiMorphOpenBorder_16s_C1R(const Zeb16s* pSrc, int srcStep, Zeb16s* pDst, int dstStep,
                                              ZebiSize roiSize, ZebiBorderType borderType, Zeb16s borderValue,
                                              const ZebiMorphAdvState* pSpec, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiMorphCloseBorder_16s_C1R(const Zeb16s* pSrc, int srcStep, Zeb16s* pDst, int dstStep,
                                               ZebiSize roiSize, ZebiBorderType borderType, Zeb16s borderValue,
                                               const ZebiMorphAdvState* pSpec, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiMorphTophatBorder_16s_C1R(const Zeb16s* pSrc, int srcStep, Zeb16s* pDst, int dstStep,
                                                ZebiSize roiSize, ZebiBorderType borderType, Zeb16s borderValue,
                                                const ZebiMorphAdvState* pSpec, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiMorphBlackhatBorder_16s_C1R(const Zeb16s* pSrc, int srcStep, Zeb16s* pDst, int dstStep,
                                                  ZebiSize roiSize, ZebiBorderType borderType, Zeb16s borderValue,
                                                  const ZebiMorphAdvState* pSpec, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiMorphGradientBorder_16s_C1R(const Zeb16s* pSrc, int srcStep, Zeb16s* pDst, int dstStep,
                                                  ZebiSize roiSize, ZebiBorderType borderType, Zeb16s borderValue,
                                                  const ZebiMorphAdvState* pSpec, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiMorphAdvGetSize_32f_C1R(ZebiSize roiSize, ZebiSize maskSize, int* pSpecSize, int* pBufferSize);
ZEB_API ZebStatus zebiMorphAdvInit_32f_C1R(ZebiSize roiSize, const Zeb8u* pMask, ZebiSize maskSize,
                                           ZebiMorphAdvState* pSpec, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiMorphAdvInitAlloc_32f_C1R(ZebiSize roiSize, const Zeb8u* pMask, ZebiSize maskSize,
                                                ZebiMorphAdvState** ppSpec);
ZEB_API ZebStatus zebiMorphOpenBorder_32f_C1R(const Zeb32f* pSrc, int srcStep, Zeb32f* pDst, int dstStep,
                                              ZebiSize roiSize, ZebiBorderType borderType, Zeb32f borderValue,
                                              const ZebiMorphAdvState* pSpec, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiMorphCloseBorder_32f_C1R(const Zeb32f* pSrc, int srcStep, Zeb32f* pDst, int dstStep,
                                               ZebiSize roiSize, ZebiBorderType borderType, Zeb32f borderValue,
                                               const ZebiMorphAdvState* pSpec, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiMorphTophatBorder_32f_C1R(const Zeb32f* pSrc, int srcStep, Zeb32f* pDst, int dstStep,
                                                ZebiSize roiSize, ZebiBorderType borderType, Zeb32f borderValue,
                                                const ZebiMorphAdvState* pSpec, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiMorphBlackhatBorder_32f_C1R(const Zeb32f* pSrc, int srcStep, Zeb32f* pDst, int dstStep,
                                                  ZebiSize roiSize, ZebiBorderType borderType, Zeb32f borderValue,
                                                  const ZebiMorphAdvState* pSpec, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiMorphGradientBorder_32f_C1R(const Zeb32f* pSrc, int srcStep, Zeb32f* pDst, int dstStep,
                                                  ZebiSize roiSize, ZebiBorderType borderType, Zeb32f borderValue,
                                                  const ZebiMorphAdvState* pSpec, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiMorphAdvGetSize_32f_C3R(ZebiSize roiSize, ZebiSize maskSize, int* pSpecSize, int* pBufferSize);
ZEB_API ZebStatus zebiMorphAdvInit_32f_C3R(ZebiSize roiSize, const Zeb8u* pMask, ZebiSize maskSize,
                                           ZebiMorphAdvState* pSpec, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiMorphAdvInitAlloc_32f_C3R(ZebiSize roiSize, const Zeb8u* pMask, ZebiSize maskSize,
                                                ZebiMorphAdvState** ppSpec);
ZEB_API ZebStatus zebiMorphOpenBorder_32f_C3R(const Zeb32f* pSrc, int srcStep, Zeb32f* pDst, int dstStep,
                                              ZebiSize roiSize, ZebiBorderType borderType,
                                              const Zeb32f borderValue[3], const ZebiMorphAdvState* pSpec,
                                              Zeb8u* pBuffer);
ZEB_API ZebStatus zebiMorphCloseBorder_32f_C3R(const Zeb32f* pSrc, int srcStep, Zeb32f* pDst, int dstStep,
                                               ZebiSize roiSize, ZebiBorderType borderType,
                                               const Zeb32f borderValue[3], const ZebiMorphAdvState* pSpec,
                                               Zeb8u* pBuffer);
ZEB_API ZebStatus zebiMorphTophatBorder_32f_C3R(const Zeb32f* pSrc, int srcStep, Zeb32f* pDst, int dstStep,
                                                ZebiSize roiSize, ZebiBorderType borderType,
                                                const Zeb32f borderValue[3], const ZebiMorphAdvState* pSpec,
                                                Zeb8u* pBuffer);
ZEB_API ZebStatus zebiMorphBlackhatBorder_32f_C3R(const Zeb32f* pSrc, int srcStep, Zeb32f* pDst, int dstStep,
                                                  ZebiSize roiSize, ZebiBorderType borderType,
                                                  const Zeb32f borderValue[3], const ZebiMorphAdvState* pSpec,
                                                  Zeb8u* pBuffer);
ZEB_API ZebStatus zebiMorphGradientBorder_32f_C3R(const Zeb32f* pSrc, int srcStep, Zeb32f* pDst, int dstStep,
                                                  ZebiSize roiSize, ZebiBorderType borderType,
                                                  const Zeb32f borderValue[3], const ZebiMorphAdvState* pSpec,
                                                  Zeb8u* pBuffer);
ZEB_API ZebStatus zebiMorphAdvGetSize_32f_C4R(ZebiSize roiSize, ZebiSize maskSize, int* pSpecSize, int* pBufferSize);
ZEB_API ZebStatus zebiMorphAdvInit_32f_C4R(ZebiSize roiSize, const Zeb8u* pMask, ZebiSize maskSize,
                                           ZebiMorphAdvState* pSpec, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiMorphAdvInitAlloc_32f_C4R(ZebiSize roiSize, const Zeb8u* pMask, ZebiSize maskSize,
                                                ZebiMorphAdvState** ppSpec);
ZEB_API ZebStatus zebiMorphOpenBorder_32f_C4R(const Zeb32f* pSrc, int srcStep, Zeb32f* pDst, int dstStep,
                                              ZebiSize roiSize, ZebiBorderType borderType,
                                              const Zeb32f borderValue[4], const ZebiMorphAdvState* pSpec,
                                              Zeb8u* pBuffer);
ZEB_API ZebStatus zebiMorphCloseBorder_32f_C4R(const Zeb32f* pSrc, int srcStep, Zeb32f* pDst, int dstStep,
                                               ZebiSize roiSize, ZebiBorderType borderType,
                                               const Zeb32f borderValue[4], const ZebiMorphAdvState* pSpec,
                                               Zeb8u* pBuffer);
ZEB_API ZebStatus zebiMorphTophatBorder_32f_C4R(const Zeb32f* pSrc, int srcStep, Zeb32f* pDst, int dstStep,
                                                ZebiSize roiSize, ZebiBorderType borderType,
                                                const Zeb32f borderValue[4], const ZebiMorphAdvState* pSpec,
                                                Zeb8u* pBuffer);
ZEB_API ZebStatus zebiMorphBlackhatBorder_32f_C4R(const Zeb32f* pSrc, int srcStep, Zeb32f* pDst, int dstStep,
                                                  ZebiSize roiSize, ZebiBorderType borderType,
                                                  const Zeb32f borderValue[4], const ZebiMorphAdvState* pSpec,
                                                  Zeb8u* pBuffer);
ZEB_API ZebStatus zebiMorphGradientBorder_32f_C4R(const Zeb32f* pSrc, int srcStep, Zeb32f* pDst, int dstStep,
                                                  ZebiSize roiSize, ZebiBorderType borderType,
                                                  const Zeb32f borderValue[4], const ZebiMorphAdvState* pSpec,
                                                  Zeb8u* pBuffer);
ZEB_API ZebStatus zebiMorphAdvFree(ZebiMorphAdvState* pSpec);

ZEB_EXTERN_C_END

#endif /* ZEBCV_MORPH_ADVANCED_H */
