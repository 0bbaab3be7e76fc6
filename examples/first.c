/* SPDX-License-Identifier: Apache-2.0 */
/* The README's first program. */
#include <stdio.h>

#include "zebcv.h"

int main(void) {
    Zeb8u a[2][4] = {{10, 20, 30, 40}, {50, 60, 70, 80}};
    Zeb8u b[2][4] = {{12, 18, 30, 45}, {50, 66, 71, 79}};
    Zeb8u d[2][4];
    ZebiSize roi = {4, 2};
    ZebStatus st = zebiAbsDiff_8u_C1R(&a[0][0], 4, &b[0][0], 4, &d[0][0], 4, roi);
    if (st != zebStsNoErr) return 1;
    printf("%d %d %d %d\n", d[0][0], d[0][1], d[0][3], d[1][1]);
    return 0;
}
