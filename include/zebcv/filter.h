/* SPDX-License-Identifier: Apache-2.0 */
/* Linear filtering with borders. */
#ifndef ZEBCV_FILTER_H
#define ZEBCV_FILTER_H

#include "zebcv/filter_pipeline.h"
#include "zebcv/filter_derivative.h"
#include "zebcv/filter_gaussian.h"

#endif /* ZEBCV_FILTER_H */
