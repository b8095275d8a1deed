#include <kprcv.h>
#include <stdio.h>
#include <string.h>

int main(void) {
    const KprLibraryVersion* version = kprcvGetLibVersion();
    const Kpr8u a[6] = {10, 20, 30, 40, 50, 60};
    const Kpr8u b[6] = {60, 50, 40, 30, 20, 10};
    const Kpr8u expected[6] = {50, 30, 10, 10, 30, 50};
    Kpr8u dst[6] = {0};
    KprSize roi = {3, 2};
    if (kpriAbsDiff_8u_C1R(a, 3, b, 3, dst, 3, roi) != kprStatusOk || memcmp(dst, expected, 6) != 0) return 1;
    if (version != kprcvGetLibVersion() || version->major != 2018 || memcmp(version->target, "n0\0", 4) != 0) return 1;
    printf("%s, %s\n", version->libraryName, version->versionText);
    return 0;
}
