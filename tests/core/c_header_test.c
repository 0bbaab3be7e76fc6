/* SPDX-License-Identifier: Apache-2.0 */
/* The public header compiles as C99; this unit also calls through it. */
#include "zebcv.h"

int c_header_compiles(void) {
    ZebiSize roi = {1, 1};
    Zeb8u a = 9, b = 4, d = 0;
    if (zebiAbsDiff_8u_C1R(&a, 1, &b, 1, &d, 1, roi) != zebStsNoErr || d != 5) return -1;
    return zebcvGetLibVersion()->major;
}
