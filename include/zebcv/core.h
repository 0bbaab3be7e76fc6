/* SPDX-License-Identifier: Apache-2.0 */
/* zebcv frame: version query and the shared release of state objects. */
#ifndef ZEBCV_CORE_H
#define ZEBCV_CORE_H

#include "zebcv/types.h"

ZEB_EXTERN_C_BEGIN

/* The constant version record of the variant chosen at load. Never fails;
 * the record must not be written or freed. */
ZEB_API const ZebLibraryVersion* zebcvGetLibVersion(void);

/* The vector instruction set the kernels use in this process, chosen once
 * at load as the best one the processor runs: "SSSE3", "AVX2" or "AVX-512".
 * Every target gives identical results; only speed differs. */
ZEB_API const char* zebcvGetSimdTarget(void);

/* The name of a status value, spelled as its enumerator: "zebStsNoErr",
 * "zebStsSizeErr", "zebStsDivByZero", ... A value the library never returns
 * gives "unknown status". Never fails and never returns null; the string is
 * constant and must not be written or freed. */
ZEB_API const char* zebcvGetStatusString(ZebStatus status);

/* Inpainting states (the inpainting family itself is separate). */
typedef struct ZebiInpaintState_8u_C1R ZebiInpaintState_8u_C1R;
typedef struct ZebiInpaintState_8u_C3R ZebiInpaintState_8u_C3R;

/* Release a state made by its ...InitAlloc: zebStsNullPtrErr for null,
 * otherwise zebStsNoErr. */
ZEB_API ZebStatus zebiInpaintFree_8u_C1R(ZebiInpaintState_8u_C1R* pState);
ZEB_API ZebStatus zebiInpaintFree_8u_C3R(ZebiInpaintState_8u_C3R* pState);

ZEB_EXTERN_C_END

#endif /* ZEBCV_CORE_H */
