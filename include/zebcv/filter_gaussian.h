/* Gaussian smoothing with borders. */
#ifndef ZEBCV_FILTER_GAUSSIAN_H
#define ZEBCV_FILTER_GAUSSIAN_H

#include "zebcv/types.h"

ZEB_EXTERN_C_BEGIN

ZEB_EXTERN_C_END

#endif /* ZEBCV_FILTER_GAUSSIAN_H */
