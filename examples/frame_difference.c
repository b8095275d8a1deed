/* The README's example: what changed between two frames, and by how much at the most. */
#include <kprcv.h>
#include <stdio.h>

int main(void) {
    enum { width = 64, height = 48 };
    static Kpr8u before[height][width], after[height][width], change[height][width];
    const KprSize roi = {width, height};
    after[20][30] = 200;

    const KprStatus status = kpriAbsDiff_8u_C1R(before[0], width, after[0], width, change[0], width, roi);
    if (status != kprStatusOk) return 1;
    printf("pixel (30, 20) changed by %d\n", change[20][30]);
    return 0;
}
