/* Image statistics: masked mean, standard deviation, extrema and norms. */
#ifndef ZEBCV_STATS_H
#define ZEBCV_STATS_H

#include "zebcv/types.h"

ZEB_EXTERN_C_BEGIN

ZEB_EXTERN_C_END

#endif /* ZEBCV_STATS_H */
