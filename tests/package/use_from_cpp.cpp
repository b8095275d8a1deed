#include <kprcv.h>

#include <iostream>
#include <vector>

int main() {
    const std::vector<Kpr8u> frame(100, 7);
    std::vector<Kpr32f> sum(100, 0.5F);
    const KprSize roi = {10, 10};
    if (kpriAdd_8u32f_C1IR(frame.data(), 10, sum.data(), 40, roi) != kprStatusOk || sum.back() != 7.5F) return 1;
    std::cout << kprcvGetLibVersion()->libraryName << '\n';
    return 0;
}
