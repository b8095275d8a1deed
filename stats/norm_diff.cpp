// Norms of the difference of two images over the selected pixels: as in norm.cpp, d being a - b. A difference of
// integers is exact, one of floats is rounded to single precision.
#include "stats/norm.h"

using namespace n0;
using namespace n0::stats;

KprStatus kpriNormDiff_Inf_8u_C1MR(const Kpr8u* src1, int src1Step, const Kpr8u* src2, int src2Step, const Kpr8u* mask,
                                   int maskStep, KprSize roiSize, Kpr64f* value) {
    return normDiff<Largest>(roiSize, Masked{{mask, maskStep}}, value, Single{src1, src1Step}, Single{src2, src2Step});
}

KprStatus kpriNormDiff_Inf_16u_C1MR(const Kpr16u* src1, int src1Step, const Kpr16u* src2, int src2Step,
                                    const Kpr8u* mask, int maskStep, KprSize roiSize, Kpr64f* value) {
    return normDiff<Largest>(roiSize, Masked{{mask, maskStep}}, value, Single{src1, src1Step}, Single{src2, src2Step});
}

KprStatus kpriNormDiff_Inf_32f_C1MR(const Kpr32f* src1, int src1Step, const Kpr32f* src2, int src2Step,
                                    const Kpr8u* mask, int maskStep, KprSize roiSize, Kpr64f* value) {
    return normDiff<Largest>(roiSize, Masked{{mask, maskStep}}, value, Single{src1, src1Step}, Single{src2, src2Step});
}

KprStatus kpriNormDiff_Inf_8u_C3CMR(const Kpr8u* src1, int src1Step, const Kpr8u* src2, int src2Step, const Kpr8u* mask,
                                    int maskStep, KprSize roiSize, int coi, Kpr64f* value) {
    return normDiff<Largest>(roiSize, Masked{{mask, maskStep}}, value, OfThree{src1, src1Step, coi},
                             OfThree{src2, src2Step, coi});
}

KprStatus kpriNormDiff_Inf_16u_C3CMR(const Kpr16u* src1, int src1Step, const Kpr16u* src2, int src2Step,
                                     const Kpr8u* mask, int maskStep, KprSize roiSize, int coi, Kpr64f* value) {
    return normDiff<Largest>(roiSize, Masked{{mask, maskStep}}, value, OfThree{src1, src1Step, coi},
                             OfThree{src2, src2Step, coi});
}

KprStatus kpriNormDiff_Inf_32f_C3CMR(const Kpr32f* src1, int src1Step, const Kpr32f* src2, int src2Step,
                                     const Kpr8u* mask, int maskStep, KprSize roiSize, int coi, Kpr64f* value) {
    return normDiff<Largest>(roiSize, Masked{{mask, maskStep}}, value, OfThree{src1, src1Step, coi},
                             OfThree{src2, src2Step, coi});
}

KprStatus kpriNormDiff_L1_8u_C1MR(const Kpr8u* src1, int src1Step, const Kpr8u* src2, int src2Step, const Kpr8u* mask,
                                  int maskStep, KprSize roiSize, Kpr64f* value) {
    return normDiff<Sum>(roiSize, Masked{{mask, maskStep}}, value, Single{src1, src1Step}, Single{src2, src2Step});
}

KprStatus kpriNormDiff_L1_16u_C1MR(const Kpr16u* src1, int src1Step, const Kpr16u* src2, int src2Step,
                                   const Kpr8u* mask, int maskStep, KprSize roiSize, Kpr64f* value) {
    return normDiff<Sum>(roiSize, Masked{{mask, maskStep}}, value, Single{src1, src1Step}, Single{src2, src2Step});
}

KprStatus kpriNormDiff_L1_32f_C1MR(const Kpr32f* src1, int src1Step, const Kpr32f* src2, int src2Step,
                                   const Kpr8u* mask, int maskStep, KprSize roiSize, Kpr64f* value) {
    return normDiff<Sum>(roiSize, Masked{{mask, maskStep}}, value, Single{src1, src1Step}, Single{src2, src2Step});
}

KprStatus kpriNormDiff_L1_8u_C3CMR(const Kpr8u* src1, int src1Step, const Kpr8u* src2, int src2Step, const Kpr8u* mask,
                                   int maskStep, KprSize roiSize, int coi, Kpr64f* value) {
    return normDiff<Sum>(roiSize, Masked{{mask, maskStep}}, value, OfThree{src1, src1Step, coi},
                         OfThree{src2, src2Step, coi});
}

KprStatus kpriNormDiff_L1_16u_C3CMR(const Kpr16u* src1, int src1Step, const Kpr16u* src2, int src2Step,
                                    const Kpr8u* mask, int maskStep, KprSize roiSize, int coi, Kpr64f* value) {
    return normDiff<Sum>(roiSize, Masked{{mask, maskStep}}, value, OfThree{src1, src1Step, coi},
                         OfThree{src2, src2Step, coi});
}

KprStatus kpriNormDiff_L1_32f_C3CMR(const Kpr32f* src1, int src1Step, const Kpr32f* src2, int src2Step,
                                    const Kpr8u* mask, int maskStep, KprSize roiSize, int coi, Kpr64f* value) {
    return normDiff<Sum>(roiSize, Masked{{mask, maskStep}}, value, OfThree{src1, src1Step, coi},
                         OfThree{src2, src2Step, coi});
}

KprStatus kpriNormDiff_L2_8u_C1MR(const Kpr8u* src1, int src1Step, const Kpr8u* src2, int src2Step, const Kpr8u* mask,
                                  int maskStep, KprSize roiSize, Kpr64f* value) {
    return normDiff<Squares>(roiSize, Masked{{mask, maskStep}}, value, Single{src1, src1Step}, Single{src2, src2Step});
}

KprStatus kpriNormDiff_L2_16u_C1MR(const Kpr16u* src1, int src1Step, const Kpr16u* src2, int src2Step,
                                   const Kpr8u* mask, int maskStep, KprSize roiSize, Kpr64f* value) {
    return normDiff<Squares>(roiSize, Masked{{mask, maskStep}}, value, Single{src1, src1Step}, Single{src2, src2Step});
}

KprStatus kpriNormDiff_L2_32f_C1MR(const Kpr32f* src1, int src1Step, const Kpr32f* src2, int src2Step,
                                   const Kpr8u* mask, int maskStep, KprSize roiSize, Kpr64f* value) {
    return normDiff<Squares>(roiSize, Masked{{mask, maskStep}}, value, Single{src1, src1Step}, Single{src2, src2Step});
}

KprStatus kpriNormDiff_L2_8u_C3CMR(const Kpr8u* src1, int src1Step, const Kpr8u* src2, int src2Step, const Kpr8u* mask,
                                   int maskStep, KprSize roiSize, int coi, Kpr64f* value) {
    return normDiff<Squares>(roiSize, Masked{{mask, maskStep}}, value, OfThree{src1, src1Step, coi},
                             OfThree{src2, src2Step, coi});
}

KprStatus kpriNormDiff_L2_16u_C3CMR(const Kpr16u* src1, int src1Step, const Kpr16u* src2, int src2Step,
                                    const Kpr8u* mask, int maskStep, KprSize roiSize, int coi, Kpr64f* value) {
    return normDiff<Squares>(roiSize, Masked{{mask, maskStep}}, value, OfThree{src1, src1Step, coi},
                             OfThree{src2, src2Step, coi});
}

KprStatus kpriNormDiff_L2_32f_C3CMR(const Kpr32f* src1, int src1Step, const Kpr32f* src2, int src2Step,
                                    const Kpr8u* mask, int maskStep, KprSize roiSize, int coi, Kpr64f* value) {
    return normDiff<Squares>(roiSize, Masked{{mask, maskStep}}, value, OfThree{src1, src1Step, coi},
                             OfThree{src2, src2Step, coi});
}
