/* SPDX-License-Identifier: Apache-2.0 */
/* Background modelling: the motion-history update and three per-pixel
 * foreground models that classify every pixel of a video frame as
 * foreground or background and adapt to the scene as frames arrive.
 *
 *   zebiUpdateMotionHistory_*      time of the last motion of every pixel
 *   zebiFGMM*                      adaptive Gaussian mixture with a variable
 *                                  number of components per pixel, 8-bit
 *                                  colour frames, state in caller memory
 *   zebiForegroundGaussian*        mixture of a fixed number of Gaussians per
 *                                  pixel, state made by ...InitAlloc
 *   zebiForegroundHistogram*       colour and colour co-occurrence statistics
 *                                  per pixel, state made by ...InitAlloc
 *
 * Foreground masks are 8-bit images of the frame size: 255 foreground,
 * 0 background (and, for zebiFGMMForeground_8u_C3R with shadow detection,
 * the model's shadow value for shadows).
 *
 * The models keep their per-pixel statistics for the frame size they were
 * made for. A call with another size is refused with zebStsSizeErr (-6)
 * where the state records its size (all three models do). Source and mask
 * steps are checked against the row lengths.
 */
#ifndef ZEBCV_BACKGROUND_H
#define ZEBCV_BACKGROUND_H

#include "zebcv/types.h"

ZEB_EXTERN_C_BEGIN

/* ---- Motion history ----
 *
 * Every pixel of the single-precision motion-history image pMHI becomes,
 * with limit = timestamp - mhiDuration (computed in single precision):
 *   timestamp   where the silhouette is non-zero;
 *   its value   where it is not less than limit;
 *   0           otherwise.
 * Checks in order: pSilhouette or pMHI null (-8); width or height below 1
 * (-6); silhStep below the silhouette's row length (width x 1, 2 or 4
 * bytes) or mhiStep below 4 x width (-14); a step not a multiple of its
 * element size (the 16-bit silhouette's step of 2, the float steps of 4)
 * (-108); mhiDuration below 0 (-11). */
ZEB_API ZebStatus zebiUpdateMotionHistory_8u32f_C1IR(const Zeb8u* pSilhouette, int silhStep, Zeb32f* pMHI,
                                                     int mhiStep, ZebiSize roiSize, Zeb32f timestamp,
                                                     Zeb32f mhiDuration);
ZEB_API ZebStatus zebiUpdateMotionHistory_16u32f_C1IR(const Zeb16u* pSilhouette, int silhStep, Zeb32f* pMHI,
                                                      int mhiStep, ZebiSize roiSize, Zeb32f timestamp,
                                                      Zeb32f mhiDuration);
ZEB_API ZebStatus zebiUpdateMotionHistory_32f_C1IR(const Zeb32f* pSilhouette, int silhStep, Zeb32f* pMHI,
                                                   int mhiStep, ZebiSize roiSize, Zeb32f timestamp,
                                                   Zeb32f mhiDuration);

/* ---- Adaptive Gaussian mixture on 8-bit colour frames (FGMM) ----
 *
 * Call sequence:
 *   int bytes;
 *   zebiFGMMGetBufferSize_8u_C3R(roi, maxNGauss, &bytes);
 *   state = malloc(bytes);                            (any allocator)
 *   zebiFGMMInit_8u_C3R(roi, maxNGauss, &model, state);
 *   for every frame:
 *     zebiFGMMForeground_8u_C3R(frame, frameStep, mask, maskStep, roi, state, NULL, -1);
 *   zebiFGMMBackground_8u_C3R(bg, bgStep, roi, state);
 *
 * Every pixel holds up to maxNGauss Gaussian components with a weight, a
 * colour mean and one variance shared by the three channels, sorted by
 * decreasing weight. For each frame, with learning rate a:
 *   - every weight w becomes (1 - a) w - a ct (ct the complexity-reduction
 *     prior); a component whose weight falls below 0 is dropped;
 *   - d2 = |pixel - mean|^2 is compared with the components in order: the
 *     first component with d2 < varThresholdGen x var absorbs the pixel
 *     (w += a; mean and variance move towards the pixel by a / w; the
 *     variance is kept in [varMin, varMax]) and moves up past lighter
 *     components;
 *   - the pixel is background when, before the weights of the components
 *     ahead of it add up to backgroundRatio, a component has
 *     d2 < varThreshold x var;
 *   - a pixel that no component absorbs starts a new one (weight a, mean
 *     the pixel, variance varInit), replacing the lightest when all
 *     maxNGauss slots are used; the first frame starts every pixel's first
 *     component with weight 1; weights are normalised to sum 1.
 * Shadows (when detectShadows is non-zero): a foreground pixel that is a
 * darker copy of one of the background components, pixel = s x mean with
 * shadowRatio <= s <= 1 and |s x mean - pixel|^2 < varThreshold x var x s^2,
 * gets shadowValue in the mask instead of 255.
 * Learning rate: learningRate when it is in [0, 1] and the model has seen a
 * frame before; otherwise 1 / min(2 x frames, history) with frames the
 * number of frames seen including this one (so the first frame has rate
 * 1/2 at most and the model settles over `history` frames). */
typedef struct ZebFGMMModel {
    int32_t history;         /* frames over which the automatic learning rate settles */
    Zeb32f varInit;          /* variance of a new component */
    Zeb32f varMin;           /* smallest variance */
    Zeb32f varMax;           /* largest variance */
    Zeb32f varThreshold;     /* squared Mahalanobis distance of the background test */
    Zeb32f backgroundRatio;  /* weight share of the components that form the background */
    Zeb32f varThresholdGen;  /* squared Mahalanobis distance under which a component absorbs the pixel */
    Zeb32f complexityPrior;  /* complexity-reduction prior: weight lost by every component per unit of rate */
    Zeb8u shadowValue;       /* mask value of shadow pixels */
    Zeb8u detectShadows;     /* non-zero: mark shadows */
    Zeb32f shadowRatio;      /* darkest shadow as a fraction of the background */
} ZebFGMMModel;

/* Model state, laid out in the caller's buffer (see zebiFGMMInit_8u_C3R). */
typedef struct ZebFGMMState_8u_C3R ZebFGMMState_8u_C3R;

/* Bytes of the state for a frame size and maxNGauss components per pixel:
 * with N = width x height, n = maxNGauss and r32(k) = (k + 31) & ~31,
 * r32(8 N n) + r32(12 N n) + r32(12 width n) + r32(N) + 160.
 * Checks in order: pBufSize null (-8); width or height below 1 (-6);
 * maxNGauss below 1 or above 255 (a byte counts each pixel's components)
 * (-5); a size that does not fit an int (-6). */
ZEB_API ZebStatus zebiFGMMGetBufferSize_8u_C3R(ZebiSize roiSize, int maxNGauss, int* pBufSize);

/* Lays the state out in pState, a buffer of the size above; the state
 * starts at the buffer's first 32-byte boundary. Layout: a 128-byte header
 * (a 32-bit frame counter, 0; four pointers to the areas that follow it:
 * a row scratch of r32(12 width n) bytes, the component means of
 * r32(12 N n) bytes (three floats per component), the component weights
 * and variances of r32(8 N n) bytes (two floats per component, weight
 * first), the count of active components of N bytes; the model's fields
 * in the record's order; n twice; the frame width and height), then those
 * areas. Each pixel's components take n slots; slot order is weight order.
 * The model's values are used as given (nothing in it is refused). The
 * header points into the buffer itself: a state cannot be moved or copied
 * to other memory, only made again with Init.
 * Checks in order: pModel or pState null (-8); width or height below 1
 * (-6); maxNGauss below 1 or above 255 (-5); a size that does not fit an
 * int (-6). Zeroes the whole buffer before writing the header. */
ZEB_API ZebStatus zebiFGMMInit_8u_C3R(ZebiSize roiSize, int maxNGauss, const ZebFGMMModel* pModel,
                                      ZebFGMMState_8u_C3R* pState);

/* Classifies a frame into pDst (255 foreground, the shadow value, 0
 * background) and updates the model. pModel, when not null, replaces the
 * state's model fields from this frame on; learningRate as described
 * above (a negative value selects the automatic rate).
 * Checks in order: pSrc, pDst or pState null (-8); width or height below 1
 * (-6); srcStep below 3 x width or dstStep below width (-14); a size other
 * than the state's (-6); learningRate above 1 or not a number (-5). */
ZEB_API ZebStatus zebiFGMMForeground_8u_C3R(const Zeb8u* pSrc, int srcStep, Zeb8u* pDst, int dstStep,
                                            ZebiSize roiSize, ZebFGMMState_8u_C3R* pState,
                                            const ZebFGMMModel* pModel, Zeb32f learningRate);

/* The background image: for every pixel, over its active components in
 * stored order, the running weight total W and per channel the sum of
 * mean x weight, stopping after the component at which W exceeds the
 * model's backgroundRatio; each channel is sum x (1 / W) clamped to
 * [0, 255] and rounded to nearest (ties to even). A pixel without
 * components (W = 0) is 0.
 * Checks in order: pDst or pState null (-8); dstStep below 1 (-14; the
 * step is not compared with the row length); width below 1 (-6); height
 * below 1 (-6); a size other than the state's (-6). */
ZEB_API ZebStatus zebiFGMMBackground_8u_C3R(Zeb8u* pDst, int dstStep, ZebiSize roiSize,
                                            const ZebFGMMState_8u_C3R* pState);

/* ---- Gaussian mixture with a fixed number of components ----
 *
 * Every pixel holds numGauss components (weight, mean per channel, one
 * variance per component; colour distances are summed over the three
 * channels), ordered by weight / standard deviation. InitAlloc takes the
 * first frame: each pixel's first component is that pixel with weight 1
 * and the initial variance. Each later frame, with rate
 * a = learningRate when in [0, 1], else 1 / min(frames, history):
 *   - the first component (in order) with d2 < matchThreshold^2 x var
 *     (x 3 for colour) is matched: w += a (1 - w), mean += a (pixel - mean),
 *     var += a (d2 - var) (d2 per channel over 3 for colour), at least
 *     noiseSigma^2, and the component moves up the order;
 *   - without a match the next free slot, or the last slot when all are
 *     in use, becomes the pixel with initialWeight and initialVariance;
 *   - weights are normalised to sum 1; the components that come first and
 *     whose weights first exceed backgroundRatio form the background; the
 *     pixel is foreground (255) unless it matched one of them (0).
 * Model record: a field of 0 (or below) takes the stored default given in
 * brackets. */
typedef struct ZebForegroundGaussianModel {
    int32_t history;         /* [200] frames over which the automatic rate settles */
    int32_t numGauss;        /* [5] components per pixel, at most 5 */
    Zeb64f backgroundRatio;  /* [0.7] weight share of the background components */
    Zeb64f matchThreshold;   /* [2.5] match distance in standard deviations */
    Zeb64f noiseSigma;       /* [15] smallest standard deviation */
    Zeb64f initialWeight;    /* [0.05] weight of a new component */
    Zeb64f initialVariance;  /* [900] variance of a new component */
} ZebForegroundGaussianModel;

typedef struct ZebForegroundGaussianState_8u_C1R ZebForegroundGaussianState_8u_C1R;
typedef struct ZebForegroundGaussianState_8u_C3R ZebForegroundGaussianState_8u_C3R;

/* Makes the state from the first frame pSrc.
 * Checks in order: pSrc, pModel or ppState null (-8); width or height
 * below 1 (-6); srcStep below width (C3: 3 x width) (-14); numGauss above
 * 5 (-5); a failed allocation (-9, nothing left allocated, *ppState not
 * written). */
ZEB_API ZebStatus zebiForegroundGaussianInitAlloc_8u_C1R(const Zeb8u* pSrc, int srcStep, ZebiSize roiSize,
                                                         const ZebForegroundGaussianModel* pModel,
                                                         ZebForegroundGaussianState_8u_C1R** ppState);
ZEB_API ZebStatus zebiForegroundGaussianInitAlloc_8u_C3R(const Zeb8u* pSrc, int srcStep, ZebiSize roiSize,
                                                         const ZebForegroundGaussianModel* pModel,
                                                         ZebForegroundGaussianState_8u_C3R** ppState);

/* Classifies a frame into pDst (255 foreground, 0 background) and updates
 * the model. Checks in order: pSrc, pDst or pState null (-8); width or
 * height below 1 (-6); srcStep below width (C3: 3 x width) or dstStep
 * below width (-14); a size other than the state's (-6); learningRate
 * above 1 or not a number (-5). */
ZEB_API ZebStatus zebiForegroundGaussian_8u_C1R(const Zeb8u* pSrc, int srcStep, Zeb8u* pDst, int dstStep,
                                                ZebiSize roiSize, ZebForegroundGaussianState_8u_C1R* pState,
                                                Zeb64f learningRate);
ZEB_API ZebStatus zebiForegroundGaussian_8u_C3R(const Zeb8u* pSrc, int srcStep, Zeb8u* pDst, int dstStep,
                                                ZebiSize roiSize, ZebForegroundGaussianState_8u_C3R* pState,
                                                Zeb64f learningRate);

/* Releases a state: null (-8), otherwise 0. */
ZEB_API ZebStatus zebiForegroundGaussianFree_8u_C1R(ZebForegroundGaussianState_8u_C1R* pState);
ZEB_API ZebStatus zebiForegroundGaussianFree_8u_C3R(ZebForegroundGaussianState_8u_C3R* pState);

/* ---- Colour and co-occurrence statistics ----
 *
 * Every pixel keeps a reference background colour B, the previous frame,
 * and two tables of (feature, P(v), P(v and background)) entries sorted by
 * P(v): colour features (the pixel quantised to valueLevels levels per
 * channel) for pixels that did not change since the previous frame, and
 * colour co-occurrence features (previous and current pixel quantised to
 * coocLevels levels) for pixels that did.
 *
 * Classification (zebiForegroundHistogram_*): a pixel whose channels all
 * lie within tolerance x 256 / valueLevels of B is background. Otherwise
 * its feature (co-occurrence when a channel moved more than that distance
 * since the previous frame, colour otherwise) is looked up: entries whose
 * components all lie within `tolerance` quantisation steps are summed into
 * P(v) and P(v, b); the pixel is background when 2 P(v, b) > P(v), else
 * foreground. Foreground regions (8-connected) smaller than minArea pixels
 * are then cleared. The mask is written to pDst (255 / 0).
 *
 * Update (zebiForegroundHistogramUpdate_*), from a frame and its mask
 * (non-zero foreground; normally the classification's result): the table
 * of the pixel's feature decays by (1 - statRate); the matching entry, or
 * a new one in place of the least probable, gains statRate in P(v) and,
 * for background pixels, in P(v, b); the entry then moves up past less
 * probable ones. B moves towards background pixels by refRate. A
 * foreground pixel whose entry has reached P(v) >= absorbLevel is taken
 * into the background: P(v, b) = P(v), and, when the pixel has not moved,
 * B = pixel. The frame becomes the previous frame.
 *
 * Model record: a field of 0 (or below) takes the stored default given in
 * brackets. */
typedef struct ZebForegroundHistogramModel {
    int32_t valueLevels;   /* [64] colour quantisation levels per channel, 2 to 256 */
    int32_t coocLevels;    /* [32] co-occurrence quantisation levels, 2 to 256 */
    int32_t valueEntries;  /* [4] colour table entries per pixel, at most 64 */
    int32_t coocEntries;   /* [4] co-occurrence table entries per pixel, at most 64 */
    Zeb32f statRate;       /* [0.005] learning rate of the statistics */
    Zeb32f refRate;        /* [0.1] learning rate of the reference background */
    Zeb32f absorbLevel;    /* [0.5] P(v) at which a still foreground colour joins the background */
    Zeb32f tolerance;      /* [2.0] quantisation tolerance in steps */
    Zeb32f minArea;        /* [15.0] smallest foreground region in pixels */
} ZebForegroundHistogramModel;

typedef struct ZebForegroundHistogramState_8u_C1R ZebForegroundHistogramState_8u_C1R;
typedef struct ZebForegroundHistogramState_8u_C3R ZebForegroundHistogramState_8u_C3R;

/* Makes the state from the first frame (which becomes the reference
 * background and the previous frame). Checks in order: pSrc, pModel or
 * ppState null (-8); width or height below 1 (-6); srcStep below width
 * (C3: 3 x width) (-14); a level count above 256 or a table length above
 * 64 (-5); a failed allocation (-9, nothing left allocated, *ppState not
 * written). The state takes 32 bytes per table entry per pixel. */
ZEB_API ZebStatus zebiForegroundHistogramInitAlloc_8u_C1R(const Zeb8u* pSrc, int srcStep, ZebiSize roiSize,
                                                          const ZebForegroundHistogramModel* pModel,
                                                          ZebForegroundHistogramState_8u_C1R** ppState);
ZEB_API ZebStatus zebiForegroundHistogramInitAlloc_8u_C3R(const Zeb8u* pSrc, int srcStep, ZebiSize roiSize,
                                                          const ZebForegroundHistogramModel* pModel,
                                                          ZebForegroundHistogramState_8u_C3R** ppState);

/* Classifies a frame into pDst without changing the state.
 * Checks in order: pSrc, pDst or pState null (-8); width or height below 1
 * (-6); srcStep below width (C3: 3 x width) or dstStep below width (-14);
 * a size other than the state's (-6). */
ZEB_API ZebStatus zebiForegroundHistogram_8u_C1R(const Zeb8u* pSrc, int srcStep, Zeb8u* pDst, int dstStep,
                                                 ZebiSize roiSize, const ZebForegroundHistogramState_8u_C1R* pState);
ZEB_API ZebStatus zebiForegroundHistogram_8u_C3R(const Zeb8u* pSrc, int srcStep, Zeb8u* pDst, int dstStep,
                                                 ZebiSize roiSize, const ZebForegroundHistogramState_8u_C3R* pState);

/* Updates the state with a frame and its foreground mask.
 * Checks in order: pSrc, pMask or pState null (-8); width or height below
 * 1 (-6); srcStep below width (C3: 3 x width) or maskStep below width
 * (-14); a size other than the state's (-6). */
ZEB_API ZebStatus zebiForegroundHistogramUpdate_8u_C1R(const Zeb8u* pSrc, int srcStep, const Zeb8u* pMask,
                                                       int maskStep, ZebiSize roiSize,
                                                       ZebForegroundHistogramState_8u_C1R* pState);
ZEB_API ZebStatus zebiForegroundHistogramUpdate_8u_C3R(const Zeb8u* pSrc, int srcStep, const Zeb8u* pMask,
                                                       int maskStep, ZebiSize roiSize,
                                                       ZebForegroundHistogramState_8u_C3R* pState);

/* Releases a state: null (-8), otherwise 0. */
ZEB_API ZebStatus zebiForegroundHistogramFree_8u_C1R(ZebForegroundHistogramState_8u_C1R* pState);
ZEB_API ZebStatus zebiForegroundHistogramFree_8u_C3R(ZebForegroundHistogramState_8u_C3R* pState);

ZEB_EXTERN_C_END

#endif /* ZEBCV_BACKGROUND_H */
