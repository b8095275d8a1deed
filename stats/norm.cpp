// Norms of the selected pixels: the largest |d| (Inf), the sum of |d| (L1), the root of the sum of d * d (L2), d being
// the pixel. Pixels that are not selected are not read; no pixel at all gives 0. How sums are formed stands in folds.h.
#include "stats/norm.h"

using namespace n0;
using namespace n0::stats;

KprStatus kpriNorm_Inf_8u_C1MR(const Kpr8u* src, int srcStep, const Kpr8u* mask, int maskStep, KprSize roiSize,
                               Kpr64f* value) {
    return norm<Largest>(roiSize, Masked{{mask, maskStep}}, value, Single{src, srcStep});
}

KprStatus kpriNorm_Inf_16u_C1MR(const Kpr16u* src, int srcStep, const Kpr8u* mask, int maskStep, KprSize roiSize,
                                Kpr64f* value) {
    return norm<Largest>(roiSize, Masked{{mask, maskStep}}, value, Single{src, srcStep});
}

KprStatus kpriNorm_Inf_32f_C1MR(const Kpr32f* src, int srcStep, const Kpr8u* mask, int maskStep, KprSize roiSize,
                                Kpr64f* value) {
    return norm<Largest>(roiSize, Masked{{mask, maskStep}}, value, Single{src, srcStep});
}

KprStatus kpriNorm_Inf_8u_C3CMR(const Kpr8u* src, int srcStep, const Kpr8u* mask, int maskStep, KprSize roiSize,
                                int coi, Kpr64f* value) {
    return norm<Largest>(roiSize, Masked{{mask, maskStep}}, value, OfThree{src, srcStep, coi});
}

KprStatus kpriNorm_Inf_16u_C3CMR(const Kpr16u* src, int srcStep, const Kpr8u* mask, int maskStep, KprSize roiSize,
                                 int coi, Kpr64f* value) {
    return norm<Largest>(roiSize, Masked{{mask, maskStep}}, value, OfThree{src, srcStep, coi});
}

KprStatus kpriNorm_Inf_32f_C3CMR(const Kpr32f* src, int srcStep, const Kpr8u* mask, int maskStep, KprSize roiSize,
                                 int coi, Kpr64f* value) {
    return norm<Largest>(roiSize, Masked{{mask, maskStep}}, value, OfThree{src, srcStep, coi});
}

KprStatus kpriNorm_L1_8u_C1MR(const Kpr8u* src, int srcStep, const Kpr8u* mask, int maskStep, KprSize roiSize,
                              Kpr64f* value) {
    return norm<Sum>(roiSize, Masked{{mask, maskStep}}, value, Single{src, srcStep});
}

KprStatus kpriNorm_L1_16u_C1MR(const Kpr16u* src, int srcStep, const Kpr8u* mask, int maskStep, KprSize roiSize,
                               Kpr64f* value) {
    return norm<Sum>(roiSize, Masked{{mask, maskStep}}, value, Single{src, srcStep});
}

KprStatus kpriNorm_L1_32f_C1MR(const Kpr32f* src, int srcStep, const Kpr8u* mask, int maskStep, KprSize roiSize,
                               Kpr64f* value) {
    return norm<Sum>(roiSize, Masked{{mask, maskStep}}, value, Single{src, srcStep});
}

KprStatus kpriNorm_L1_8u_C3CMR(const Kpr8u* src, int srcStep, const Kpr8u* mask, int maskStep, KprSize roiSize, int coi,
                               Kpr64f* value) {
    return norm<Sum>(roiSize, Masked{{mask, maskStep}}, value, OfThree{src, srcStep, coi});
}

KprStatus kpriNorm_L1_16u_C3CMR(const Kpr16u* src, int srcStep, const Kpr8u* mask, int maskStep, KprSize roiSize,
                                int coi, Kpr64f* value) {
    return norm<Sum>(roiSize, Masked{{mask, maskStep}}, value, OfThree{src, srcStep, coi});
}

KprStatus kpriNorm_L1_32f_C3CMR(const Kpr32f* src, int srcStep, const Kpr8u* mask, int maskStep, KprSize roiSize,
                                int coi, Kpr64f* value) {
    return norm<Sum>(roiSize, Masked{{mask, maskStep}}, value, OfThree{src, srcStep, coi});
}

KprStatus kpriNorm_L2_8u_C1MR(const Kpr8u* src, int srcStep, const Kpr8u* mask, int maskStep, KprSize roiSize,
                              Kpr64f* value) {
    return norm<Squares>(roiSize, Masked{{mask, maskStep}}, value, Single{src, srcStep});
}

KprStatus kpriNorm_L2_16u_C1MR(const Kpr16u* src, int srcStep, const Kpr8u* mask, int maskStep, KprSize roiSize,
                               Kpr64f* value) {
    return norm<Squares>(roiSize, Masked{{mask, maskStep}}, value, Single{src, srcStep});
}

KprStatus kpriNorm_L2_32f_C1MR(const Kpr32f* src, int srcStep, const Kpr8u* mask, int maskStep, KprSize roiSize,
                               Kpr64f* value) {
    return norm<Squares>(roiSize, Masked{{mask, maskStep}}, value, Single{src, srcStep});
}

KprStatus kpriNorm_L2_8u_C3CMR(const Kpr8u* src, int srcStep, const Kpr8u* mask, int maskStep, KprSize roiSize, int coi,
                               Kpr64f* value) {
    return norm<Squares>(roiSize, Masked{{mask, maskStep}}, value, OfThree{src, srcStep, coi});
}

KprStatus kpriNorm_L2_16u_C3CMR(const Kpr16u* src, int srcStep, const Kpr8u* mask, int maskStep, KprSize roiSize,
                                int coi, Kpr64f* value) {
    return norm<Squares>(roiSize, Masked{{mask, maskStep}}, value, OfThree{src, srcStep, coi});
}

KprStatus kpriNorm_L2_32f_C3CMR(const Kpr32f* src, int srcStep, const Kpr8u* mask, int maskStep, KprSize roiSize,
                                int coi, Kpr64f* value) {
    return norm<Squares>(roiSize, Masked{{mask, maskStep}}, value, OfThree{src, srcStep, coi});
}
