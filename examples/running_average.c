/* SPDX-License-Identifier: Apache-2.0 */
/* A running average of frames, the way a background model keeps one:
 * acc = (frame - acc) * alpha + acc, then |frame - round(acc)| shows what
 * moved. Build: cc running_average.c $(pkg-config --cflags --libs zebcv) */
#include <stdio.h>
#include <stdlib.h>

#include "zebcv.h"

int main(void) {
    enum { W = 64, H = 48 };
    static Zeb8u frame[H][W], background[H][W], moved[H][W];
    static Zeb32f acc[H][W];
    const ZebiSize roi = {W, H};

    for (int t = 0; t < 30; ++t) {
        /* A dark scene with a bright 8x8 block walking to the right. */
        for (int y = 0; y < H; ++y)
            for (int x = 0; x < W; ++x) frame[y][x] = (Zeb8u)((x >= 2 * t && x < 2 * t + 8 && y >= 20 && y < 28) ? 250 : 30);
        ZebStatus st = t == 0 ? zebiAdd_8u32f_C1IR(&frame[0][0], W, &acc[0][0], W * 4, roi)
                              : zebiAddWeighted_8u32f_C1IR(&frame[0][0], W, &acc[0][0], W * 4, roi, 0.1f);
        if (st != zebStsNoErr) {
            fprintf(stderr, "accumulation failed: %s (%d)\n", zebcvGetStatusString(st), st);
            return 1;
        }
    }
    for (int y = 0; y < H; ++y)
        for (int x = 0; x < W; ++x) background[y][x] = (Zeb8u)(acc[y][x] + 0.5f);
    if (zebiAbsDiff_8u_C1R(&frame[0][0], W, &background[0][0], W, &moved[0][0], W, roi) != zebStsNoErr) return 1;
    int count = 0;
    for (int y = 0; y < H; ++y)
        for (int x = 0; x < W; ++x) count += moved[y][x] > 40;
    printf("%s: %d pixels differ from the running average\n", zebcvGetLibVersion()->name, count);
    return 0;
}
