/* SPDX-License-Identifier: Apache-2.0 */
/* zebcv: computer-vision image primitives with a flat C interface.
 *
 * Conventions: every function takes, per image, a pointer to the first
 * pixel of the region of interest (ROI) and the row step in bytes; sources
 * first, then the mask, then destinations, then the ROI size, parameters and
 * last any work buffer or state. Every function returns a ZebStatus: 0 on
 * success, a negative error (nothing written) or a positive warning (the
 * result was written). This header compiles as C99 and as C++. */
#ifndef ZEBCV_H
#define ZEBCV_H

#include "zebcore.h"
#include "zebcv/types.h"
#include "zebcv/core.h"
#include "zebcv/arith.h"
#include "zebcv/stats.h"
#include "zebcv/filter.h"
#include "zebcv/feature.h"
#include "zebcv/detect.h"
#include "zebcv/morph.h"
#include "zebcv/morph_advanced.h"
#include "zebcv/region_segment.h"
#include "zebcv/region_distance.h"
#include "zebcv/background.h"

#endif /* ZEBCV_H */
