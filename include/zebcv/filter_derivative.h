/* Derivative and smoothing filters with borders: Sobel, Scharr, Laplacian, lowpass. */
#ifndef ZEBCV_FILTER_DERIVATIVE_H
#define ZEBCV_FILTER_DERIVATIVE_H

#include "zebcv/types.h"

ZEB_EXTERN_C_BEGIN

ZEB_EXTERN_C_END

#endif /* ZEBCV_FILTER_DERIVATIVE_H */
