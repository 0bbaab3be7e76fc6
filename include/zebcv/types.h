/* SPDX-License-Identifier: Apache-2.0 */
/* zebcv shared types, status codes and codes used across the library.
 * This header compiles as C99 and as C++. */
#ifndef ZEBCV_TYPES_H
#define ZEBCV_TYPES_H

#include <stdint.h>

#if defined(ZEBCV_BUILDING)
#  define ZEB_API __attribute__((visibility("default")))
#else
#  define ZEB_API
#endif

#ifdef __cplusplus
#  define ZEB_EXTERN_C_BEGIN extern "C" {
#  define ZEB_EXTERN_C_END }
#else
#  define ZEB_EXTERN_C_BEGIN
#  define ZEB_EXTERN_C_END
#endif

/* Scalar types. */
typedef uint8_t  Zeb8u;
typedef int8_t   Zeb8s;
typedef uint16_t Zeb16u;
typedef int16_t  Zeb16s;
typedef int32_t  Zeb32s;
typedef uint32_t Zeb32u;
typedef int64_t  Zeb64s;
typedef uint64_t Zeb64u;
typedef float    Zeb32f;
typedef double   Zeb64f;

/* 0 success, negative error, positive warning (the call did its work). */
typedef int32_t ZebStatus;

typedef struct ZebiSize  { int32_t width; int32_t height; } ZebiSize;
typedef struct ZebiPoint { int32_t x; int32_t y; } ZebiPoint;
typedef struct ZebiRect  { int32_t x; int32_t y; int32_t width; int32_t height; } ZebiRect;

/* The version record returned by zebcvGetLibVersion. */
typedef struct ZebLibraryVersion {
    int32_t     major;
    int32_t     minor;
    int32_t     majorBuild;
    int32_t     build;
    char        targetCpu[4];  /* "u8" or "n8", zero padded */
    const char* name;
    const char* version;
    const char* buildDate;
} ZebLibraryVersion;

/* Status values. */
enum {
    zebStsNoErr                      = 0,
    zebStsBadArgErr                  = -5,
    zebStsSizeErr                    = -6,
    zebStsNullPtrErr                 = -8,
    zebStsMemAllocErr                = -9,
    zebStsNotSupportedModeErr        = -11,
    zebStsDataTypeErr                = -12,
    zebStsStepErr                    = -14,
    zebStsContextMatchErr            = -17,
    zebStsMaskSizeErr                = -33,
    zebStsAnchorErr                  = -34,
    zebStsChannelErr                 = -47,
    zebStsCOIErr                     = -52,
    zebStsNumChannelsErr             = -53,
    zebStsMetricErr                  = -56,
    zebStsNotEvenStepErr             = -108,
    zebStsBorderErr                  = -225,
    zebStsBadNormErr                 = -229,
    zebStsBadFilterTypeErr           = -230,
    zebStsInplaceModeNotSupportedErr = -9997,
    zebStsDivByZero                  = 6
};

/* Border handling: the low four bits select the mode, the bits above say
 * which sides of the ROI have their neighbouring pixels in memory. */
typedef int32_t ZebiBorderType;
enum {
    zebBorderConst      = 0,   /* outside pixels take the border value        */
    zebBorderRepl       = 1,   /* the nearest edge pixel is repeated          */
    zebBorderWrap       = 2,   /* the image repeats periodically              */
    zebBorderMirror     = 3,   /* mirror, the edge pixel is not repeated      */
    zebBorderMirrorEdge = 4,   /* mirror, the edge pixel is repeated          */
    zebBorderInMem      = 6,   /* all neighbours are read from memory         */
    zebBorderInMemTop    = 16,
    zebBorderInMemBottom = 32,
    zebBorderInMemLeft   = 64,
    zebBorderInMemRight  = 128
};

/* Mask sizes. */
typedef int32_t ZebiMaskSize;
enum { zebMskSize3x3 = 33, zebMskSize5x5 = 55 };

/* Derivative kernels. */
typedef int32_t ZebiDifferentialKernel;
enum { zebFilterSobel = 2, zebFilterScharr = 5, zebFilterCentralDiff = 8 };

/* Norm of a gradient magnitude. */
typedef int32_t ZebNormType;
enum { zebNormL1 = 2, zebNormL2 = 4 };

/* Norm of the distance and region functions. */
typedef int32_t ZebiNorm;
enum { zebiNormInf = 0, zebiNormL1 = 1, zebiNormL2 = 2 };

/* Data-type codes for size and state-creation functions. */
typedef int32_t ZebDataType;
enum { zeb8u = 1, zeb8s = 3, zeb16u = 5, zeb16s = 7, zeb32f = 13 };

#endif /* ZEBCV_TYPES_H */
