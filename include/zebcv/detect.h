/* SPDX-License-Identifier: Apache-2.0 */
/* Object detection: integral images, rectangle standard deviations and
 * Haar cascade classifiers.
 *
 * ---- Integral images ----
 *
 * The source is a one-channel image of w x h pixels (roiSize).
 *
 * Upright integral I: (w + 1) x (h + 1) entries,
 *   I(x, y) = val + sum of S(i, j) over 0 <= i < x, 0 <= j < y,
 * so row 0 and column 0 hold val. Each row is built from the row above:
 * a running row sum s starts at 0 and for x = 0 .. w-1, s += S(x, y) and
 * I(x+1, y+1) = I(x+1, y) + s.
 *   8u32s   s and every entry are 32-bit integers that wrap modulo 2^32.
 *   8u32f   s is a 32-bit integer; each entry is float(s) + the entry above,
 *           in single precision.
 *   32f     s is a single-precision sum taken left to right; each entry is
 *           the entry above + s; the start value is 0.
 * The square integral Q is the same with S*S and valSqr: 32-bit wrapping
 * integers, or doubles (the row sum of squares is exact; each entry is the
 * double above + the row sum).
 *
 * Tilted integral T: (w + 2) x (h + 2) entries, rows 0 and 1 hold val.
 * Row y + 2 (source row y) from rows y + 1 and y:
 *   T(0, y+2)   = T(1, y+1)
 *   T(X, y+2)   = S(X-1, y) + S(X, y) + T(X-1, y+1) + T(X+1, y+1) - T(X, y),
 *                 X = 1 .. w-1
 *   T(w, y+2)   = S(w-1, y) + T(w-1, y+1) + T(w+1, y+1) - T(w, y)
 *   T(w+1, y+2) = T(w, y+1)
 * Integer tables wrap. Float tables add in this order:
 * (((S(X-1) + S(X)) + T(X-1, y+1)) + T(X+1, y+1)) - T(X, y), the two source
 * values (or their squares) summed exactly first; double square tables the
 * same in double precision. Away from the left edge (X >= r - 1) T(X, r) is
 * the sum of the pixels with i - j >= X - r + 1 and i + j <= X + r - 2: a
 * wedge opening upwards whose apex sits between rows r - 2 and r - 1.
 *
 * Checks, first failure returned, nothing written on failure: a null
 * source, destination or square destination (zebStsNullPtrErr); width or
 * height below 1 (zebStsSizeErr); a step below its minimum in the order
 * source, destination, square (zebStsStepErr); a table step that is not a
 * multiple of its element size, 4 or 8 (zebStsNotEvenStepErr; the 8-bit
 * source step is not checked for this). Minimum steps: source w (4w for
 * 32f); upright tables (w + 1) elements, tilted tables (w + 2) elements.
 * The caller supplies h + 1 (upright) or h + 2 (tilted) table rows.
 *
 * ---- Rectangle standard deviations ----
 *
 * roiSize is the destination size (w, h); for every output (x, y) the
 * standard deviation of the pixels under a rectangle read from an integral
 * table and its square table.
 *
 * Upright (zebiRectStdDev_*): corners TL = (x + rect.x, y + rect.y),
 * TR = TL + (rect.width, 0), BL = TL + (0, rect.height), BR = TL +
 * (rect.width, rect.height), A = rect.width * rect.height.
 *   sum = I(BR) - I(BL) - I(TR) + I(TL), sq likewise from Q, left to right.
 *   32f, 32s32f: sum in single precision (the 32s table's corners are
 *     combined in wrapping 32-bit integers first); r = 1 / (double)(float)A;
 *     mean = sum * r, var = sq * r - mean * mean in double precision,
 *     converted to float; dst = sqrtf(var) when that float is above 0,
 *     else 0.
 *   32s Sfs: sum and sq in wrapping 32-bit integers, converted to float;
 *     mean = sum / A, var = sq / A - mean * mean in single precision,
 *     clamped at 0; dst = (int)(sqrt((double)var) * scale + 0.5) with scale
 *     the float 2^-scaleFactor. A result of 2^31 or more, or a NaN (an
 *     infinite scale times 0), is stored as 2147483647 and 0.
 * Minimum steps, u = w + rect.x + rect.width: integral 4u, destination 4w,
 * square 8u (64f) or 4u (32s).
 *
 * Tilted (zebiTiltedRectStdDev_*): for output (X, Y), r = Y + rect.x +
 * rect.y, c = X + rect.x - rect.y, a = rect.width, b = rect.height,
 * A = 2ab:
 *   sum = T(c, r) - T(c+a, r+a) + T(c+a-b, r+a+b) - T(c-b, r+b), left to
 *   right in double precision (the 32s tables combine the corners in
 *   wrapping 32-bit integers first); mean = sum / A, var = sq / A - mean^2
 *   in double, clamped at 0; dst = sqrtf((float)var), or for Sfs
 *   (int)(sqrt(var) * scale + 0.5) as above.
 * Column c - b may be -1 or less; such entries are read from memory before
 * the row (rect.x >= rect.y + rect.height keeps every read inside the
 * row). Minimum steps, v = w + rect.x + rect.y + rect.width + rect.height
 * - 1: integral 4v, destination 4w, square 8v or 4v.
 *
 * Checks: a null integral, destination or square table (zebStsNullPtrErr);
 * width or height below 1 (zebStsSizeErr); a step below its minimum in the
 * order integral, destination, square (zebStsStepErr); a step that is not
 * a multiple of its element size (zebStsNotEvenStepErr); then rect.x < 0,
 * rect.y < 0, rect.width < 1, rect.height < 1 (zebStsBadArgErr). The
 * tables must hold h + rect.y + rect.height rows (upright) or
 * h + rect.x + rect.y + rect.width + rect.height rows (tilted); their
 * heights are not checked.
 *
 * ---- Haar classifiers ----
 *
 * One stage of a cascade: classifiers made of weighted rectangle sums,
 * evaluated at every pixel whose mask byte is non-zero.
 *
 * Object layout (one zebMalloc block of 32 * classifiers + 36 * rectangles
 * + 56 bytes):
 *   int32 number of classifiers; int32 number of rectangles;
 *   pointer to the classifier records;
 *   int32 window[4]: left, top, right-or-width, bottom-or-height;
 *   int32 state word (0 when built);
 *   int32 number of two-rectangle classifiers, int32 number of two- and
 *   three-rectangle classifiers (both 0 from the tilted builder);
 *   int32 number of rectangles laid out; int32 flag (1 while the first
 *   weight of every classifier truncates to -1); 4 bytes of padding;
 *   then the classifier records, then the rectangle records.
 * Classifier record (32 bytes): int32 rectangle count, 4 bytes padding,
 * pointer to its first rectangle record, threshold, val1, val2 (Zeb32f or
 * Zeb32s), int32 identity word = index in the caller's arrays * 256, + 1
 * when tilted.
 * Rectangle record (36 bytes): four corner points (int32 x, y) and the
 * weight. Upright rectangle (x, y, w, h): (x+w, y+h), (x, y+h), (x+w, y),
 * (x, y). Tilted rectangle: (x+w-h, y+w+h), (x-h, y+h), (x+w, y+w), (x, y).
 * Feature value: weight * (P0 - P1 - P2 + P3).
 *
 * The upright builder lays out the classifiers with exactly two rectangles
 * first, then those with exactly three, then the rest, each group in input
 * order. The window record starts as the first input rectangle (x, y,
 * width, height), or zeros without classifiers; then for every rectangle
 * in layout order: left = min(left, x); top = min(top, y); if left + third
 * < x + w the third field becomes x + w; if top + fourth < y + h the fourth
 * field becomes y + h.
 */
#ifndef ZEBCV_DETECT_H
#define ZEBCV_DETECT_H

#include "zebcv/types.h"

ZEB_EXTERN_C_BEGIN

/* ---- Upright and square integrals ---- */

ZEB_API ZebStatus zebiIntegral_8u32s_C1R(const Zeb8u* pSrc, int srcStep, Zeb32s* pDst, int dstStep, ZebiSize roiSize,
                                         Zeb32s val);
ZEB_API ZebStatus zebiIntegral_8u32f_C1R(const Zeb8u* pSrc, int srcStep, Zeb32f* pDst, int dstStep, ZebiSize roiSize,
                                         Zeb32f val);
/* Both steps must be multiples of 4. */
ZEB_API ZebStatus zebiIntegral_32f_C1R(const Zeb32f* pSrc, int srcStep, Zeb32f* pDst, int dstStep, ZebiSize roiSize);
ZEB_API ZebStatus zebiSqrIntegral_8u32s_C1R(const Zeb8u* pSrc, int srcStep, Zeb32s* pDst, int dstStep, Zeb32s* pSqr,
                                            int sqrStep, ZebiSize roiSize, Zeb32s val, Zeb32s valSqr);
ZEB_API ZebStatus zebiSqrIntegral_8u32s64f_C1R(const Zeb8u* pSrc, int srcStep, Zeb32s* pDst, int dstStep, Zeb64f* pSqr,
                                               int sqrStep, ZebiSize roiSize, Zeb32s val, Zeb64f valSqr);
ZEB_API ZebStatus zebiSqrIntegral_8u32f64f_C1R(const Zeb8u* pSrc, int srcStep, Zeb32f* pDst, int dstStep, Zeb64f* pSqr,
                                               int sqrStep, ZebiSize roiSize, Zeb32f val, Zeb64f valSqr);

/* ---- Tilted integrals ---- */

ZEB_API ZebStatus zebiTiltedIntegral_8u32s_C1R(const Zeb8u* pSrc, int srcStep, Zeb32s* pDst, int dstStep,
                                               ZebiSize roiSize, Zeb32s val);
ZEB_API ZebStatus zebiTiltedIntegral_8u32f_C1R(const Zeb8u* pSrc, int srcStep, Zeb32f* pDst, int dstStep,
                                               ZebiSize roiSize, Zeb32f val);
ZEB_API ZebStatus zebiTiltedSqrIntegral_8u32s_C1R(const Zeb8u* pSrc, int srcStep, Zeb32s* pDst, int dstStep,
                                                  Zeb32s* pSqr, int sqrStep, ZebiSize roiSize, Zeb32s val,
                                                  Zeb32s valSqr);
ZEB_API ZebStatus zebiTiltedSqrIntegral_8u32s64f_C1R(const Zeb8u* pSrc, int srcStep, Zeb32s* pDst, int dstStep,
                                                     Zeb64f* pSqr, int sqrStep, ZebiSize roiSize, Zeb32s val,
                                                     Zeb64f valSqr);
ZEB_API ZebStatus zebiTiltedSqrIntegral_8u32f64f_C1R(const Zeb8u* pSrc, int srcStep, Zeb32f* pDst, int dstStep,
                                                     Zeb64f* pSqr, int sqrStep, ZebiSize roiSize, Zeb32f val,
                                                     Zeb64f valSqr);

/* ---- Rectangle standard deviations ---- */

ZEB_API ZebStatus zebiRectStdDev_32f_C1R(const Zeb32f* pSrc, int srcStep, const Zeb64f* pSqr, int sqrStep,
                                         Zeb32f* pDst, int dstStep, ZebiSize roiSize, ZebiRect rect);
ZEB_API ZebStatus zebiRectStdDev_32s32f_C1R(const Zeb32s* pSrc, int srcStep, const Zeb64f* pSqr, int sqrStep,
                                            Zeb32f* pDst, int dstStep, ZebiSize roiSize, ZebiRect rect);
ZEB_API ZebStatus zebiRectStdDev_32s_C1RSfs(const Zeb32s* pSrc, int srcStep, const Zeb32s* pSqr, int sqrStep,
                                            Zeb32s* pDst, int dstStep, ZebiSize roiSize, ZebiRect rect,
                                            int scaleFactor);
ZEB_API ZebStatus zebiTiltedRectStdDev_32f_C1R(const Zeb32f* pSrc, int srcStep, const Zeb64f* pSqr, int sqrStep,
                                               Zeb32f* pDst, int dstStep, ZebiSize roiSize, ZebiRect rect);
ZEB_API ZebStatus zebiTiltedRectStdDev_32s32f_C1R(const Zeb32s* pSrc, int srcStep, const Zeb64f* pSqr, int sqrStep,
                                                  Zeb32f* pDst, int dstStep, ZebiSize roiSize, ZebiRect rect);
ZEB_API ZebStatus zebiTiltedRectStdDev_32s_C1RSfs(const Zeb32s* pSrc, int srcStep, const Zeb32s* pSqr, int sqrStep,
                                                  Zeb32s* pDst, int dstStep, ZebiSize roiSize, ZebiRect rect,
                                                  int scaleFactor);

/* ---- Haar classifiers ---- */

typedef struct ZebiHaarClassifier_32f ZebiHaarClassifier_32f;
typedef struct ZebiHaarClassifier_32s ZebiHaarClassifier_32s;

/* Builds a classifier object from `length` classifiers: classifier i has
 * pNum[i] rectangles, taken in turn from pFeature and pWeight, and the
 * threshold pThreshold[i] and outputs pVal1[i], pVal2[i]. *ppState
 * receives the object (release it with the matching Free).
 * Checks: any pointer null (zebStsNullPtrErr); length < 0 (zebStsSizeErr);
 * any pNum[i] < 1 (zebStsSizeErr); a rectangle with x < 0, y < 0,
 * width < 1 or height < 1 (zebStsBadArgErr); the object larger than 2^31
 * - 1 bytes or the allocation failing (zebStsMemAllocErr). *ppState is
 * written only on success. */
ZEB_API ZebStatus zebiHaarClassifierInitAlloc_32f(ZebiHaarClassifier_32f** ppState, const ZebiRect* pFeature,
                                                  const Zeb32f* pWeight, const Zeb32f* pThreshold,
                                                  const Zeb32f* pVal1, const Zeb32f* pVal2, const int* pNum,
                                                  int length);
ZEB_API ZebStatus zebiHaarClassifierInitAlloc_32s(ZebiHaarClassifier_32s** ppState, const ZebiRect* pFeature,
                                                  const Zeb32s* pWeight, const Zeb32s* pThreshold,
                                                  const Zeb32s* pVal1, const Zeb32s* pVal2, const int* pNum,
                                                  int length);

/* As above with every classifier tilted, laid out in input order.
 * Checks: null pointers, length < 0, any pNum[i] < 1, then the allocation
 * (zebStsMemAllocErr); then a rectangle with x < 0, y < 0, width < 1,
 * height < 1 or x + 1 < height releases the object, sets *ppState to null
 * and returns zebStsBadArgErr. */
ZEB_API ZebStatus zebiTiltedHaarClassifierInitAlloc_32f(ZebiHaarClassifier_32f** ppState, const ZebiRect* pFeature,
                                                        const Zeb32f* pWeight, const Zeb32f* pThreshold,
                                                        const Zeb32f* pVal1, const Zeb32f* pVal2, const int* pNum,
                                                        int length);
ZEB_API ZebStatus zebiTiltedHaarClassifierInitAlloc_32s(ZebiHaarClassifier_32s** ppState, const ZebiRect* pFeature,
                                                        const Zeb32s* pWeight, const Zeb32s* pThreshold,
                                                        const Zeb32s* pVal1, const Zeb32s* pVal2, const int* pNum,
                                                        int length);

/* The detection window the stage needs: width = the largest x of corner 2,
 * height = the largest y of corner 0 over all rectangle records, both
 * starting from 0. A null argument gives zebStsNullPtrErr. */
ZEB_API ZebStatus zebiGetHaarClassifierSize_32f(const ZebiHaarClassifier_32f* pState, ZebiSize* pSize);
ZEB_API ZebStatus zebiGetHaarClassifierSize_32s(const ZebiHaarClassifier_32s* pState, ZebiSize* pSize);

/* Null: zebStsNullPtrErr; otherwise releases the object. */
ZEB_API ZebStatus zebiHaarClassifierFree_32f(ZebiHaarClassifier_32f* pState);
ZEB_API ZebStatus zebiHaarClassifierFree_32s(ZebiHaarClassifier_32s* pState);

/* Marks classifiers as tilted after building: for every i with pMask[i]
 * non-zero (i from 0 to the number of classifiers - 1), the first
 * classifier in object order whose identity word / 256 equals i gets the
 * identity word 1 and its rectangles rewritten to tilted corner points;
 * an i that matches nothing is passed over. Each rectangle (x, y, w, h) is
 * read back from its corners P3 = (x, y) and P0 = (x + w, y + h) and
 * becomes the tilted rectangle (x, y, w, h) when flag is 0, or (x, y, h, w)
 * (turned along the other diagonal) otherwise.
 * Checks: pMask or pState null (zebStsNullPtrErr); the state word's lowest
 * bit set (zebStsBadArgErr). */
ZEB_API ZebStatus zebiTiltHaarFeatures_32f(const Zeb8u* pMask, int flag, ZebiHaarClassifier_32f* pState);
ZEB_API ZebStatus zebiTiltHaarFeatures_32s(const Zeb8u* pMask, int flag, ZebiHaarClassifier_32s* pState);

/* Applies one stage at every pixel (x, y) of roiSize whose mask byte is
 * non-zero, with pSrc the upright integral table at the window's origin
 * for that pixel and pNorm the pixel's normalisation (a standard
 * deviation). For each classifier in object order the feature sum s of its
 * rectangles (corners combined in the table's type, then weighted and
 * added in single precision; the Sfs form in wrapping 32-bit integers) is
 * compared with threshold_c * norm: val1 when threshold_c * norm > s, val2
 * otherwise (ties give val2). The stage value is the sum of these outputs
 * in object order; when threshold > stage value the mask byte is set to
 * 0, otherwise the pixel passes. *pPositive receives the number of passing
 * pixels; pixels with mask 0 on entry are not evaluated or counted. This
 * form reads every classifier from the upright table.
 * Sfs: threshold_c * norm is formed in 64 bits and scaled by
 * 2^-scaleFactor, rounding half up (a left shift for negative factors),
 * before the comparison with s.
 * Checks: pSrc, pNorm, pMask, pPositive or pState null (zebStsNullPtrErr);
 * width or height below 1 (zebStsSizeErr); srcStep < 4w, normStep < 4w or
 * maskStep < w (zebStsStepErr); srcStep or normStep not a multiple of 4
 * (zebStsNotEvenStepErr); the temporary corner table not allocated
 * (zebStsMemAllocErr, nothing changed). */
ZEB_API ZebStatus zebiApplyHaarClassifier_32f_C1R(const Zeb32f* pSrc, int srcStep, const Zeb32f* pNorm, int normStep,
                                                  Zeb8u* pMask, int maskStep, ZebiSize roiSize, int* pPositive,
                                                  Zeb32f threshold, ZebiHaarClassifier_32f* pState);
ZEB_API ZebStatus zebiApplyHaarClassifier_32s32f_C1R(const Zeb32s* pSrc, int srcStep, const Zeb32f* pNorm,
                                                     int normStep, Zeb8u* pMask, int maskStep, ZebiSize roiSize,
                                                     int* pPositive, Zeb32f threshold,
                                                     ZebiHaarClassifier_32f* pState);
ZEB_API ZebStatus zebiApplyHaarClassifier_32s_C1RSfs(const Zeb32s* pSrc, int srcStep, const Zeb32s* pNorm,
                                                     int normStep, Zeb8u* pMask, int maskStep, ZebiSize roiSize,
                                                     int* pPositive, Zeb32s threshold,
                                                     ZebiHaarClassifier_32s* pState, int scaleFactor);

/* As above with tilted classifiers (identity word odd) read from the tilted
 * table pTilt, whose origin for a pixel is one row down and one column
 * right of the pixel's position. Step checks in the order src, tilt, norm,
 * mask; parity checks src, tilt, norm. */
ZEB_API ZebStatus zebiApplyMixedHaarClassifier_32f_C1R(const Zeb32f* pSrc, int srcStep, const Zeb32f* pTilt,
                                                       int tiltStep, const Zeb32f* pNorm, int normStep, Zeb8u* pMask,
                                                       int maskStep, ZebiSize roiSize, int* pPositive,
                                                       Zeb32f threshold, ZebiHaarClassifier_32f* pState);
ZEB_API ZebStatus zebiApplyMixedHaarClassifier_32s32f_C1R(const Zeb32s* pSrc, int srcStep, const Zeb32s* pTilt,
                                                          int tiltStep, const Zeb32f* pNorm, int normStep,
                                                          Zeb8u* pMask, int maskStep, ZebiSize roiSize,
                                                          int* pPositive, Zeb32f threshold,
                                                          ZebiHaarClassifier_32f* pState);
ZEB_API ZebStatus zebiApplyMixedHaarClassifier_32s_C1RSfs(const Zeb32s* pSrc, int srcStep, const Zeb32s* pTilt,
                                                          int tiltStep, const Zeb32s* pNorm, int normStep,
                                                          Zeb8u* pMask, int maskStep, ZebiSize roiSize,
                                                          int* pPositive, Zeb32s threshold,
                                                          ZebiHaarClassifier_32s* pState, int scaleFactor);

ZEB_EXTERN_C_END

#endif /* ZEBCV_DETECT_H */
