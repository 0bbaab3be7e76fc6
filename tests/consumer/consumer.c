/* SPDX-License-Identifier: Apache-2.0 */
/* Calls one function and the version query through the installed library. */
#include <stdio.h>

#include "zebcv.h"

int main(void) {
    const Zeb8u a[4] = {10, 20, 30, 40}, b[4] = {12, 18, 30, 45};
    Zeb8u d[4] = {0, 0, 0, 0};
    const ZebiSize roi = {4, 1};
    if (zebiAbsDiff_8u_C1R(a, 4, b, 4, d, 4, roi) != zebStsNoErr) return 1;
    const ZebLibraryVersion* v = zebcvGetLibVersion();
    printf("consumer: %d %d %d %d, zebcv %d.%d\n", d[0], d[1], d[2], d[3], v->major, v->minor);
    return 0;
}
