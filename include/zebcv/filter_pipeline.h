/* Separable filter pipelines: the row pass with borders and the column pass. */
#ifndef ZEBCV_FILTER_PIPELINE_H
#define ZEBCV_FILTER_PIPELINE_H

#include "zebcv/types.h"

ZEB_EXTERN_C_BEGIN

ZEB_EXTERN_C_END

#endif /* ZEBCV_FILTER_PIPELINE_H */
