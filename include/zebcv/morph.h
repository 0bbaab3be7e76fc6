/* Dilation, erosion and rectangular min/max filters.
 *
 * Dilation writes at each pixel the maximum, erosion the minimum, of the
 * source pixels that a structuring element (a mask) selects around it:
 *   dst(x, y) = max (or min) of src(x - anchor.x + i, y - anchor.y + j)
 *               over every mask element (i, j) whose byte is non-zero,
 * each channel on its own. Mask bytes are row-major, maskSize.width bytes a
 * row, no padding; zero means "not selected", any other value "selected".
 *
 * Call sequence (border interface):
 *   int specBytes, bufBytes;
 *   zebiMorphologyBorderGetSize_8u_C1R(roiWidth, maskSize, &specBytes, &bufBytes);
 *   spec = malloc(specBytes); buf = malloc(bufBytes);          (any allocator)
 *   zebiMorphologyBorderInit_8u_C1R(roiWidth, mask, maskSize, spec, buf);
 *   zebiDilateBorder_8u_C1R(src, srcStep, dst, dstStep, roi, zebBorderRepl, 0, spec, buf);
 * The prepared state copies the mask; it serves any number of calls (one at
 * a time) whose ROI width is at most the width it was made for. Using a
 * state with another pixel type or channel count than the one it was made
 * for, or a buffer smaller than the query reported, is outside the
 * contract and not detected. The state and the buffer need no alignment.
 *
 * Anchor: the border interface always anchors the mask at its centre,
 * ((maskSize.width - 1) / 2, (maskSize.height - 1) / 2), integer division;
 * the older interface and the min/max filters take a caller-chosen anchor.
 *
 * Borders: the low four bits of borderType choose the mode, higher bits are
 * ignored. 1 replicates the nearest edge pixel for positions outside the
 * ROI; 6 reads the pixels around the ROI from the caller's image (mask
 * height - 1 - anchor.y rows below, anchor.y rows above, anchor.x columns
 * left and width - 1 - anchor.x columns right must be readable). Other modes
 * are refused with -225 by the border interface; the older interface takes
 * exactly 1 and refuses anything else with -5. borderValue is not used by
 * modes 1 and 6; where it is an array it must still not be null.
 *
 * 1u images: eight pixels to a byte, the most significant bit first; every
 * row starts at bit 7 of its first byte and holds (width + 7) / 8 bytes; the
 * steps are in bytes. The destination bits past the ROI width in the last
 * byte of a row keep their value. borderValue is a Zeb8u (0 or 1).
 *
 * Mask classes (found at state preparation): empty (no element selected:
 * dilation and erosion copy the source); rectangle (the selected elements
 * form one solid rectangle: a separable running extremum whose cost per
 * pixel hardly grows with the side); row runs (other masks whose rows are
 * cheaper as runs); general (the extremum over the selected elements).
 * Every class gives the exact extremum of the definition above.
 *
 * Sizes, with R16(n) = n rounded up to a multiple of 16, W = roiWidth,
 * mW x mH = maskSize, P = bytes of one pixel (1u: 1, 8u C3: 3, 32f C4: 16),
 * E = R32((W + mW - 1) * P), L = floor(log2(mW)) + 1:
 *   work   = mH * L * E + R32(W * P) + 8 * mW * mH + 32
 *   buffer = work + R16(24 * mH) + R16(mW * mH) + R16(16 * mH + 64)
 *   spec   = 33 * R16(mW * mH) + 16 * mH + 160 + buffer
 *   older state = 16 * mH + 160 + 33 * R16(mW * mH) + F + R16(24 * mH)
 *                 + R16(mW * mH) + R16(16 * mH + 64),
 *           with F the min/max filter buffer size of the same width and mask
 *   min/max buffer = 32 * mH + 2 * mH * (W * P + 32) + 32
 * The older dilation and erosion use the state's own memory as scratch
 * when it is large enough and otherwise allocate it for the call.
 */
#ifndef ZEBCV_MORPH_H
#define ZEBCV_MORPH_H

#include "zebcv/types.h"

ZEB_EXTERN_C_BEGIN

/* Prepared dilation/erosion state: mask copy, anchor, class, chosen kernel
 * and the largest ROI width served. Built in caller memory by an ...Init or
 * allocated by an ...InitAlloc. */
typedef struct ZebiMorphState ZebiMorphState;

/* Border interface.
 *
 * GetSize checks: pSpecSize or pBufferSize null (-8); roiWidth, mask width
 * or mask height below 1 (-6); a size that does not fit an int (-6, nothing
 * stored). Both sizes are stored on success.
 *
 * Init checks: pMask, pSpec or pBuffer null (-8); roiWidth, mask width or
 * mask height below 1 (-6). The anchor is the mask centre. An all-zero mask
 * is accepted (the operations then copy). Writes only the state.
 *
 * Dilate/Erode checks, in order: pSrc, pDst, pSpec, pBuffer (and an array
 * borderValue) null (-8); width or height below 1 (-6); a step below the
 * row length in bytes (-14); for 16-bit and float images a step that is not
 * a multiple of the sample size (-108); the border mode not 1 or 6 (-225);
 * the ROI wider than the state's width (-5). Nothing is written on failure.
 * Source and destination must not overlap. */
/* ---- Border interface: sizes and prepared states ---- */
ZEB_API ZebStatus zebiMorphologyBorderGetSize_1u_C1R(int roiWidth, ZebiSize maskSize, int* pSpecSize, int* pBufferSize);
ZEB_API ZebStatus zebiMorphologyBorderGetSize_8u_C1R(int roiWidth, ZebiSize maskSize, int* pSpecSize, int* pBufferSize);
ZEB_API ZebStatus zebiMorphologyBorderGetSize_8u_C3R(int roiWidth, ZebiSize maskSize, int* pSpecSize, int* pBufferSize);
ZEB_API ZebStatus zebiMorphologyBorderGetSize_8u_C4R(int roiWidth, ZebiSize maskSize, int* pSpecSize, int* pBufferSize);
ZEB_API ZebStatus zebiMorphologyBorderGetSize_16u_C1R(int roiWidth, ZebiSize maskSize, int* pSpecSize, int* pBufferSize);
ZEB_API ZebStatus zebiMorphologyBorderGetSize_16s_C1R(int roiWidth, ZebiSize maskSize, int* pSpecSize, int* pBufferSize);
ZEB_API ZebStatus zebiMorphologyBorderGetSize_32f_C1R(int roiWidth, ZebiSize maskSize, int* pSpecSize, int* pBufferSize);
ZEB_API ZebStatus zebiMorphologyBorderGetSize_32f_C3R(int roiWidth, ZebiSize maskSize, int* pSpecSize, int* pBufferSize);
ZEB_API ZebStatus zebiMorphologyBorderGetSize_32f_C4R(int roiWidth, ZebiSize maskSize, int* pSpecSize, int* pBufferSize);

ZEB_API ZebStatus zebiMorphologyBorderInit_1u_C1R(int roiWidth, const Zeb8u* pMask, ZebiSize maskSize,
                                               ZebiMorphState* pSpec, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiMorphologyBorderInit_8u_C1R(int roiWidth, const Zeb8u* pMask, ZebiSize maskSize,
                                               ZebiMorphState* pSpec, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiMorphologyBorderInit_8u_C3R(int roiWidth, const Zeb8u* pMask, ZebiSize maskSize,
                                               ZebiMorphState* pSpec, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiMorphologyBorderInit_8u_C4R(int roiWidth, const Zeb8u* pMask, ZebiSize maskSize,
                                               ZebiMorphState* pSpec, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiMorphologyBorderInit_16u_C1R(int roiWidth, const Zeb8u* pMask, ZebiSize maskSize,
                                               ZebiMorphState* pSpec, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiMorphologyBorderInit_16s_C1R(int roiWidth, const Zeb8u* pMask, ZebiSize maskSize,
                                               ZebiMorphState* pSpec, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiMorphologyBorderInit_32f_C1R(int roiWidth, const Zeb8u* pMask, ZebiSize maskSize,
                                               ZebiMorphState* pSpec, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiMorphologyBorderInit_32f_C3R(int roiWidth, const Zeb8u* pMask, ZebiSize maskSize,
                                               ZebiMorphState* pSpec, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiMorphologyBorderInit_32f_C4R(int roiWidth, const Zeb8u* pMask, ZebiSize maskSize,
                                               ZebiMorphState* pSpec, Zeb8u* pBuffer);

/* ---- Border interface: dilation and erosion ---- */
ZEB_API ZebStatus zebiDilateBorder_1u_C1R(const Zeb8u* pSrc, int srcStep, Zeb8u* pDst, int dstStep, ZebiSize roiSize,
                                      ZebiBorderType borderType, Zeb8u borderValue, const ZebiMorphState* pSpec,
                                      Zeb8u* pBuffer);
ZEB_API ZebStatus zebiDilateBorder_8u_C1R(const Zeb8u* pSrc, int srcStep, Zeb8u* pDst, int dstStep, ZebiSize roiSize,
                                      ZebiBorderType borderType, Zeb8u borderValue, const ZebiMorphState* pSpec,
                                      Zeb8u* pBuffer);
ZEB_API ZebStatus zebiDilateBorder_8u_C3R(const Zeb8u* pSrc, int srcStep, Zeb8u* pDst, int dstStep, ZebiSize roiSize,
                                      ZebiBorderType borderType, const Zeb8u borderValue[3], const ZebiMorphState* pSpec,
                                      Zeb8u* pBuffer);
ZEB_API ZebStatus zebiDilateBorder_8u_C4R(const Zeb8u* pSrc, int srcStep, Zeb8u* pDst, int dstStep, ZebiSize roiSize,
                                      ZebiBorderType borderType, const Zeb8u borderValue[4], const ZebiMorphState* pSpec,
                                      Zeb8u* pBuffer);
ZEB_API ZebStatus zebiDilateBorder_16u_C1R(const Zeb16u* pSrc, int srcStep, Zeb16u* pDst, int dstStep, ZebiSize roiSize,
                                      ZebiBorderType borderType, Zeb16u borderValue, const ZebiMorphState* pSpec,
                                      Zeb8u* pBuffer);
ZEB_API ZebStatus zebiDilateBorder_16s_C1R(const Zeb16s* pSrc, int srcStep, Zeb16s* pDst, int dstStep, ZebiSize roiSize,
                                      ZebiBorderType borderType, Zeb16s borderValue, const ZebiMorphState* pSpec,
                                      Zeb8u* pBuffer);
ZEB_API ZebStatus zebiDilateBorder_32f_C1R(const Zeb32f* pSrc, int srcStep, Zeb32f* pDst, int dstStep, ZebiSize roiSize,
                                      ZebiBorderType borderType, Zeb32f borderValue, const ZebiMorphState* pSpec,
                                      Zeb8u* pBuffer);
ZEB_API ZebStatus zebiDilateBorder_32f_C3R(const Zeb32f* pSrc, int srcStep, Zeb32f* pDst, int dstStep, ZebiSize roiSize,
                                      ZebiBorderType borderType, const Zeb32f borderValue[3], const ZebiMorphState* pSpec,
                                      Zeb8u* pBuffer);
ZEB_API ZebStatus zebiDilateBorder_32f_C4R(const Zeb32f* pSrc, int srcStep, Zeb32f* pDst, int dstStep, ZebiSize roiSize,
                                      ZebiBorderType borderType, const Zeb32f borderValue[4], const ZebiMorphState* pSpec,
                                      Zeb8u* pBuffer);

ZEB_API ZebStatus zebiErodeBorder_1u_C1R(const Zeb8u* pSrc, int srcStep, Zeb8u* pDst, int dstStep, ZebiSize roiSize,
                                      ZebiBorderType borderType, Zeb8u borderValue, const ZebiMorphState* pSpec,
                                      Zeb8u* pBuffer);
ZEB_API ZebStatus zebiErodeBorder_8u_C1R(const Zeb8u* pSrc, int srcStep, Zeb8u* pDst, int dstStep, ZebiSize roiSize,
                                      ZebiBorderType borderType, Zeb8u borderValue, const ZebiMorphState* pSpec,
                                      Zeb8u* pBuffer);
ZEB_API ZebStatus zebiErodeBorder_8u_C3R(const Zeb8u* pSrc, int srcStep, Zeb8u* pDst, int dstStep, ZebiSize roiSize,
                                      ZebiBorderType borderType, const Zeb8u borderValue[3], const ZebiMorphState* pSpec,
                                      Zeb8u* pBuffer);
ZEB_API ZebStatus zebiErodeBorder_8u_C4R(const Zeb8u* pSrc, int srcStep, Zeb8u* pDst, int dstStep, ZebiSize roiSize,
                                      ZebiBorderType borderType, const Zeb8u borderValue[4], const ZebiMorphState* pSpec,
                                      Zeb8u* pBuffer);
ZEB_API ZebStatus zebiErodeBorder_16u_C1R(const Zeb16u* pSrc, int srcStep, Zeb16u* pDst, int dstStep, ZebiSize roiSize,
                                      ZebiBorderType borderType, Zeb16u borderValue, const ZebiMorphState* pSpec,
                                      Zeb8u* pBuffer);
ZEB_API ZebStatus zebiErodeBorder_16s_C1R(const Zeb16s* pSrc, int srcStep, Zeb16s* pDst, int dstStep, ZebiSize roiSize,
                                      ZebiBorderType borderType, Zeb16s borderValue, const ZebiMorphState* pSpec,
                                      Zeb8u* pBuffer);
ZEB_API ZebStatus zebiErodeBorder_32f_C1R(const Zeb32f* pSrc, int srcStep, Zeb32f* pDst, int dstStep, ZebiSize roiSize,
                                      ZebiBorderType borderType, Zeb32f borderValue, const ZebiMorphState* pSpec,
                                      Zeb8u* pBuffer);
ZEB_API ZebStatus zebiErodeBorder_32f_C3R(const Zeb32f* pSrc, int srcStep, Zeb32f* pDst, int dstStep, ZebiSize roiSize,
                                      ZebiBorderType borderType, const Zeb32f borderValue[3], const ZebiMorphState* pSpec,
                                      Zeb8u* pBuffer);
ZEB_API ZebStatus zebiErodeBorder_32f_C4R(const Zeb32f* pSrc, int srcStep, Zeb32f* pDst, int dstStep, ZebiSize roiSize,
                                      ZebiBorderType borderType, const Zeb32f borderValue[4], const ZebiMorphState* pSpec,
                                      Zeb8u* pBuffer);

/* Older interface: caller-chosen anchor, replicated border only.
 *
 * GetSize checks: pMask or pSize null (-8); roiWidth, mask width or height
 * below 1 (-6); a size that does not fit an int (-6). The size depends only
 * on the width and the mask size.
 *
 * Init (state in caller memory of the GetSize size) and InitAlloc (state
 * allocated with zebMalloc, released by zebiMorphologyFree) check: pMask
 * and pState / ppState null (-8); roiWidth, mask width or height below 1
 * (-6); anchor outside the mask (-34); InitAlloc returns -9 when the
 * allocation fails (nothing allocated stays behind).
 *
 * zebiMorphologyFree: -8 for a null pointer, else releases and returns 0.
 *
 * DilateBorderReplicate/ErodeBorderReplicate check: pSrc, pDst, pState null
 * (-8); width or height below 1 (-6); a step below the row length (-14);
 * for float images a step that is not a multiple of 4 (-108); borderType
 * other than exactly 1 (-5); the ROI wider than the state's width (-5); -9
 * when scratch memory beyond the state's own cannot be allocated. */
ZEB_API ZebStatus zebiMorphologyGetSize_8u_C1R(int roiWidth, const Zeb8u* pMask, ZebiSize maskSize, int* pSize);
ZEB_API ZebStatus zebiMorphologyGetSize_8u_C3R(int roiWidth, const Zeb8u* pMask, ZebiSize maskSize, int* pSize);
ZEB_API ZebStatus zebiMorphologyGetSize_8u_C4R(int roiWidth, const Zeb8u* pMask, ZebiSize maskSize, int* pSize);
ZEB_API ZebStatus zebiMorphologyGetSize_32f_C1R(int roiWidth, const Zeb8u* pMask, ZebiSize maskSize, int* pSize);
ZEB_API ZebStatus zebiMorphologyGetSize_32f_C3R(int roiWidth, const Zeb8u* pMask, ZebiSize maskSize, int* pSize);
ZEB_API ZebStatus zebiMorphologyGetSize_32f_C4R(int roiWidth, const Zeb8u* pMask, ZebiSize maskSize, int* pSize);

ZEB_API ZebStatus zebiMorphologyInit_8u_C1R(int roiWidth, const Zeb8u* pMask, ZebiSize maskSize, ZebiPoint anchor,
                                         ZebiMorphState* pState);
ZEB_API ZebStatus zebiMorphologyInit_8u_C3R(int roiWidth, const Zeb8u* pMask, ZebiSize maskSize, ZebiPoint anchor,
                                         ZebiMorphState* pState);
ZEB_API ZebStatus zebiMorphologyInit_8u_C4R(int roiWidth, const Zeb8u* pMask, ZebiSize maskSize, ZebiPoint anchor,
                                         ZebiMorphState* pState);
ZEB_API ZebStatus zebiMorphologyInit_32f_C1R(int roiWidth, const Zeb8u* pMask, ZebiSize maskSize, ZebiPoint anchor,
                                         ZebiMorphState* pState);
ZEB_API ZebStatus zebiMorphologyInit_32f_C3R(int roiWidth, const Zeb8u* pMask, ZebiSize maskSize, ZebiPoint anchor,
                                         ZebiMorphState* pState);
ZEB_API ZebStatus zebiMorphologyInit_32f_C4R(int roiWidth, const Zeb8u* pMask, ZebiSize maskSize, ZebiPoint anchor,
                                         ZebiMorphState* pState);

ZEB_API ZebStatus zebiMorphologyInitAlloc_8u_C1R(int roiWidth, const Zeb8u* pMask, ZebiSize maskSize,
                                              ZebiPoint anchor, ZebiMorphState** ppState);
ZEB_API ZebStatus zebiMorphologyInitAlloc_8u_C3R(int roiWidth, const Zeb8u* pMask, ZebiSize maskSize,
                                              ZebiPoint anchor, ZebiMorphState** ppState);
ZEB_API ZebStatus zebiMorphologyInitAlloc_8u_C4R(int roiWidth, const Zeb8u* pMask, ZebiSize maskSize,
                                              ZebiPoint anchor, ZebiMorphState** ppState);
ZEB_API ZebStatus zebiMorphologyInitAlloc_32f_C1R(int roiWidth, const Zeb8u* pMask, ZebiSize maskSize,
                                              ZebiPoint anchor, ZebiMorphState** ppState);
ZEB_API ZebStatus zebiMorphologyInitAlloc_32f_C3R(int roiWidth, const Zeb8u* pMask, ZebiSize maskSize,
                                              ZebiPoint anchor, ZebiMorphState** ppState);
ZEB_API ZebStatus zebiMorphologyInitAlloc_32f_C4R(int roiWidth, const Zeb8u* pMask, ZebiSize maskSize,
                                              ZebiPoint anchor, ZebiMorphState** ppState);

ZEB_API ZebStatus zebiMorphologyFree(ZebiMorphState* pState);

ZEB_API ZebStatus zebiDilateBorderReplicate_8u_C1R(const Zeb8u* pSrc, int srcStep, Zeb8u* pDst, int dstStep,
                                               ZebiSize roiSize, ZebiBorderType borderType, ZebiMorphState* pState);
ZEB_API ZebStatus zebiDilateBorderReplicate_8u_C3R(const Zeb8u* pSrc, int srcStep, Zeb8u* pDst, int dstStep,
                                               ZebiSize roiSize, ZebiBorderType borderType, ZebiMorphState* pState);
ZEB_API ZebStatus zebiDilateBorderReplicate_8u_C4R(const Zeb8u* pSrc, int srcStep, Zeb8u* pDst, int dstStep,
                                               ZebiSize roiSize, ZebiBorderType borderType, ZebiMorphState* pState);
ZEB_API ZebStatus zebiDilateBorderReplicate_32f_C1R(const Zeb32f* pSrc, int srcStep, Zeb32f* pDst, int dstStep,
                                               ZebiSize roiSize, ZebiBorderType borderType, ZebiMorphState* pState);
ZEB_API ZebStatus zebiDilateBorderReplicate_32f_C3R(const Zeb32f* pSrc, int srcStep, Zeb32f* pDst, int dstStep,
                                               ZebiSize roiSize, ZebiBorderType borderType, ZebiMorphState* pState);
ZEB_API ZebStatus zebiDilateBorderReplicate_32f_C4R(const Zeb32f* pSrc, int srcStep, Zeb32f* pDst, int dstStep,
                                               ZebiSize roiSize, ZebiBorderType borderType, ZebiMorphState* pState);

ZEB_API ZebStatus zebiErodeBorderReplicate_8u_C1R(const Zeb8u* pSrc, int srcStep, Zeb8u* pDst, int dstStep,
                                               ZebiSize roiSize, ZebiBorderType borderType, ZebiMorphState* pState);
ZEB_API ZebStatus zebiErodeBorderReplicate_8u_C3R(const Zeb8u* pSrc, int srcStep, Zeb8u* pDst, int dstStep,
                                               ZebiSize roiSize, ZebiBorderType borderType, ZebiMorphState* pState);
ZEB_API ZebStatus zebiErodeBorderReplicate_8u_C4R(const Zeb8u* pSrc, int srcStep, Zeb8u* pDst, int dstStep,
                                               ZebiSize roiSize, ZebiBorderType borderType, ZebiMorphState* pState);
ZEB_API ZebStatus zebiErodeBorderReplicate_32f_C1R(const Zeb32f* pSrc, int srcStep, Zeb32f* pDst, int dstStep,
                                               ZebiSize roiSize, ZebiBorderType borderType, ZebiMorphState* pState);
ZEB_API ZebStatus zebiErodeBorderReplicate_32f_C3R(const Zeb32f* pSrc, int srcStep, Zeb32f* pDst, int dstStep,
                                               ZebiSize roiSize, ZebiBorderType borderType, ZebiMorphState* pState);
ZEB_API ZebStatus zebiErodeBorderReplicate_32f_C4R(const Zeb32f* pSrc, int srcStep, Zeb32f* pDst, int dstStep,
                                               ZebiSize roiSize, ZebiBorderType borderType, ZebiMorphState* pState);

/* Rectangular min/max filters: the maximum (or minimum) over the
 * maskSize rectangle placed with its anchor on each pixel, with the border
 * replicated. The mask is first cropped to what replication can reach:
 * when anchor.x >= width, the mask width shrinks by anchor.x - width + 1
 * and anchor.x becomes width - 1; when width < mask width - anchor.x the
 * mask width becomes width + anchor.x; the same vertically.
 *
 * GetBufferSize (one per type, shared by Min and Max) checks: pBufferSize
 * null (-8); roiWidth below 1 (-6); a mask side below 1 (-33); a size that
 * does not fit an int (-6).
 *
 * Filter checks, in order: pSrc, pDst, pBuffer null (-8); width or height
 * below 1 (-6); a mask side below 1 (-33); anchor outside the mask (-34);
 * a step below the row length (-14); for float images a step that is not a
 * multiple of 4 (-108). The buffer is the size the query gave for this ROI
 * width and mask size. Source and destination must not overlap. */
ZEB_API ZebStatus zebiFilterMaxGetBufferSize_8u_C1R(int roiWidth, ZebiSize maskSize, int* pBufferSize);
ZEB_API ZebStatus zebiFilterMaxGetBufferSize_8u_C3R(int roiWidth, ZebiSize maskSize, int* pBufferSize);
ZEB_API ZebStatus zebiFilterMaxGetBufferSize_8u_C4R(int roiWidth, ZebiSize maskSize, int* pBufferSize);
ZEB_API ZebStatus zebiFilterMaxGetBufferSize_32f_C1R(int roiWidth, ZebiSize maskSize, int* pBufferSize);
ZEB_API ZebStatus zebiFilterMaxGetBufferSize_32f_C3R(int roiWidth, ZebiSize maskSize, int* pBufferSize);
ZEB_API ZebStatus zebiFilterMaxGetBufferSize_32f_C4R(int roiWidth, ZebiSize maskSize, int* pBufferSize);

ZEB_API ZebStatus zebiFilterMinGetBufferSize_8u_C1R(int roiWidth, ZebiSize maskSize, int* pBufferSize);
ZEB_API ZebStatus zebiFilterMinGetBufferSize_8u_C3R(int roiWidth, ZebiSize maskSize, int* pBufferSize);
ZEB_API ZebStatus zebiFilterMinGetBufferSize_8u_C4R(int roiWidth, ZebiSize maskSize, int* pBufferSize);
ZEB_API ZebStatus zebiFilterMinGetBufferSize_32f_C1R(int roiWidth, ZebiSize maskSize, int* pBufferSize);
ZEB_API ZebStatus zebiFilterMinGetBufferSize_32f_C3R(int roiWidth, ZebiSize maskSize, int* pBufferSize);
ZEB_API ZebStatus zebiFilterMinGetBufferSize_32f_C4R(int roiWidth, ZebiSize maskSize, int* pBufferSize);

ZEB_API ZebStatus zebiFilterMaxBorderReplicate_8u_C1R(const Zeb8u* pSrc, int srcStep, Zeb8u* pDst, int dstStep,
                                               ZebiSize roiSize, ZebiSize maskSize, ZebiPoint anchor, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiFilterMaxBorderReplicate_8u_C3R(const Zeb8u* pSrc, int srcStep, Zeb8u* pDst, int dstStep,
                                               ZebiSize roiSize, ZebiSize maskSize, ZebiPoint anchor, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiFilterMaxBorderReplicate_8u_C4R(const Zeb8u* pSrc, int srcStep, Zeb8u* pDst, int dstStep,
                                               ZebiSize roiSize, ZebiSize maskSize, ZebiPoint anchor, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiFilterMaxBorderReplicate_32f_C1R(const Zeb32f* pSrc, int srcStep, Zeb32f* pDst, int dstStep,
                                               ZebiSize roiSize, ZebiSize maskSize, ZebiPoint anchor, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiFilterMaxBorderReplicate_32f_C3R(const Zeb32f* pSrc, int srcStep, Zeb32f* pDst, int dstStep,
                                               ZebiSize roiSize, ZebiSize maskSize, ZebiPoint anchor, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiFilterMaxBorderReplicate_32f_C4R(const Zeb32f* pSrc, int srcStep, Zeb32f* pDst, int dstStep,
                                               ZebiSize roiSize, ZebiSize maskSize, ZebiPoint anchor, Zeb8u* pBuffer);

ZEB_API ZebStatus zebiFilterMinBorderReplicate_8u_C1R(const Zeb8u* pSrc, int srcStep, Zeb8u* pDst, int dstStep,
                                               ZebiSize roiSize, ZebiSize maskSize, ZebiPoint anchor, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiFilterMinBorderReplicate_8u_C3R(const Zeb8u* pSrc, int srcStep, Zeb8u* pDst, int dstStep,
                                               ZebiSize roiSize, ZebiSize maskSize, ZebiPoint anchor, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiFilterMinBorderReplicate_8u_C4R(const Zeb8u* pSrc, int srcStep, Zeb8u* pDst, int dstStep,
                                               ZebiSize roiSize, ZebiSize maskSize, ZebiPoint anchor, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiFilterMinBorderReplicate_32f_C1R(const Zeb32f* pSrc, int srcStep, Zeb32f* pDst, int dstStep,
                                               ZebiSize roiSize, ZebiSize maskSize, ZebiPoint anchor, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiFilterMinBorderReplicate_32f_C3R(const Zeb32f* pSrc, int srcStep, Zeb32f* pDst, int dstStep,
                                               ZebiSize roiSize, ZebiSize maskSize, ZebiPoint anchor, Zeb8u* pBuffer);
ZEB_API ZebStatus zebiFilterMinBorderReplicate_32f_C4R(const Zeb32f* pSrc, int srcStep, Zeb32f* pDst, int dstStep,
                                               ZebiSize roiSize, ZebiSize maskSize, ZebiPoint anchor, Zeb8u* pBuffer);

ZEB_EXTERN_C_END

#endif /* ZEBCV_MORPH_H */
