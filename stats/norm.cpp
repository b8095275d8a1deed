// Norms of the selected pixels: the largest |d| (Inf), the sum of |d| (L1), the root of the sum of d * d (L2), d being
// the pixel. Pixels that are not selected are not read; no pixel at all gives 0. How sums are formed stands in folds.h.
#include "stats/norm.h"

namespace n0::stats {
namespace {

// Of floats the source's multiple is tested before the mask's length.
KprStatus floatStepsHold(KprSize roi, int channels, int maskStep, int srcStep) {
    return firstFailure(rowsFit<Kpr32f>(Kpr64s{channels} * roi.width, srcStep), stepsAlign<Kpr32f>(srcStep),
                        rowsFit<Kpr8u>(roi.width, maskStep));
}

}  // namespace
}  // namespace n0::stats

using namespace n0;
using namespace n0::stats;

KprStatus kpriNorm_Inf_8u_C1MR(const Kpr8u* src, int srcStep, const Kpr8u* mask, int maskStep, KprSize roiSize,
                               Kpr64f* value) {
    return firstFailure(notNull(src, mask, value), roiHolds(roiSize), stepsHold<Kpr8u, 1>(roiSize, maskStep, srcStep))
               ?: norm<Largest>(roiSize, Masked{{mask, maskStep}}, value, Plane<Kpr8u>{{src, srcStep}});
}

KprStatus kpriNorm_Inf_16u_C1MR(const Kpr16u* src, int srcStep, const Kpr8u* mask, int maskStep, KprSize roiSize,
                                Kpr64f* value) {
    return firstFailure(notNull(src, mask, value), roiHolds(roiSize), stepsHold<Kpr16u, 1>(roiSize, maskStep, srcStep))
               ?: norm<Largest>(roiSize, Masked{{mask, maskStep}}, value, Plane<Kpr16u>{{src, srcStep}});
}

KprStatus kpriNorm_Inf_32f_C1MR(const Kpr32f* src, int srcStep, const Kpr8u* mask, int maskStep, KprSize roiSize,
                                Kpr64f* value) {
    return firstFailure(notNull(src, mask, value), roiHolds(roiSize), floatStepsHold(roiSize, 1, maskStep, srcStep))
               ?: norm<Largest>(roiSize, Masked{{mask, maskStep}}, value, Plane<Kpr32f>{{src, srcStep}});
}

KprStatus kpriNorm_Inf_8u_C3CMR(const Kpr8u* src, int srcStep, const Kpr8u* mask, int maskStep, KprSize roiSize,
                                int coi, Kpr64f* value) {
    return firstFailure(notNull(src, mask, value), roiHolds(roiSize), stepsHold<Kpr8u, 3>(roiSize, maskStep, srcStep),
                        coiHolds(coi))
               ?: norm<Largest>(roiSize, Masked{{mask, maskStep}}, value, PlaneOfThree<Kpr8u>(src, srcStep, coi));
}

KprStatus kpriNorm_Inf_16u_C3CMR(const Kpr16u* src, int srcStep, const Kpr8u* mask, int maskStep, KprSize roiSize,
                                 int coi, Kpr64f* value) {
    return firstFailure(notNull(src, mask, value), roiHolds(roiSize), stepsHold<Kpr16u, 3>(roiSize, maskStep, srcStep),
                        coiHolds(coi))
               ?: norm<Largest>(roiSize, Masked{{mask, maskStep}}, value, PlaneOfThree<Kpr16u>(src, srcStep, coi));
}

KprStatus kpriNorm_Inf_32f_C3CMR(const Kpr32f* src, int srcStep, const Kpr8u* mask, int maskStep, KprSize roiSize,
                                 int coi, Kpr64f* value) {
    return firstFailure(notNull(src, mask, value), roiHolds(roiSize), floatStepsHold(roiSize, 3, maskStep, srcStep),
                        coiHolds(coi))
               ?: norm<Largest>(roiSize, Masked{{mask, maskStep}}, value, PlaneOfThree<Kpr32f>(src, srcStep, coi));
}

KprStatus kpriNorm_L1_8u_C1MR(const Kpr8u* src, int srcStep, const Kpr8u* mask, int maskStep, KprSize roiSize,
                              Kpr64f* value) {
    return firstFailure(notNull(src, mask, value), roiHolds(roiSize), stepsHold<Kpr8u, 1>(roiSize, maskStep, srcStep))
               ?: norm<Sum>(roiSize, Masked{{mask, maskStep}}, value, Plane<Kpr8u>{{src, srcStep}});
}

KprStatus kpriNorm_L1_16u_C1MR(const Kpr16u* src, int srcStep, const Kpr8u* mask, int maskStep, KprSize roiSize,
                               Kpr64f* value) {
    return firstFailure(notNull(src, mask, value), roiHolds(roiSize), stepsHold<Kpr16u, 1>(roiSize, maskStep, srcStep))
               ?: norm<Sum>(roiSize, Masked{{mask, maskStep}}, value, Plane<Kpr16u>{{src, srcStep}});
}

KprStatus kpriNorm_L1_32f_C1MR(const Kpr32f* src, int srcStep, const Kpr8u* mask, int maskStep, KprSize roiSize,
                               Kpr64f* value) {
    return firstFailure(notNull(src, mask, value), roiHolds(roiSize), floatStepsHold(roiSize, 1, maskStep, srcStep))
               ?: norm<Sum>(roiSize, Masked{{mask, maskStep}}, value, Plane<Kpr32f>{{src, srcStep}});
}

KprStatus kpriNorm_L1_8u_C3CMR(const Kpr8u* src, int srcStep, const Kpr8u* mask, int maskStep, KprSize roiSize, int coi,
                               Kpr64f* value) {
    return firstFailure(notNull(src, mask, value), roiHolds(roiSize), stepsHold<Kpr8u, 3>(roiSize, maskStep, srcStep),
                        coiHolds(coi))
               ?: norm<Sum>(roiSize, Masked{{mask, maskStep}}, value, PlaneOfThree<Kpr8u>(src, srcStep, coi));
}

KprStatus kpriNorm_L1_16u_C3CMR(const Kpr16u* src, int srcStep, const Kpr8u* mask, int maskStep, KprSize roiSize,
                                int coi, Kpr64f* value) {
    return firstFailure(notNull(src, mask, value), roiHolds(roiSize), stepsHold<Kpr16u, 3>(roiSize, maskStep, srcStep),
                        coiHolds(coi))
               ?: norm<Sum>(roiSize, Masked{{mask, maskStep}}, value, PlaneOfThree<Kpr16u>(src, srcStep, coi));
}

KprStatus kpriNorm_L1_32f_C3CMR(const Kpr32f* src, int srcStep, const Kpr8u* mask, int maskStep, KprSize roiSize,
                                int coi, Kpr64f* value) {
    return firstFailure(notNull(src, mask, value), roiHolds(roiSize), floatStepsHold(roiSize, 3, maskStep, srcStep),
                        coiHolds(coi))
               ?: norm<Sum>(roiSize, Masked{{mask, maskStep}}, value, PlaneOfThree<Kpr32f>(src, srcStep, coi));
}

KprStatus kpriNorm_L2_8u_C1MR(const Kpr8u* src, int srcStep, const Kpr8u* mask, int maskStep, KprSize roiSize,
                              Kpr64f* value) {
    return firstFailure(notNull(src, mask, value), roiHolds(roiSize), stepsHold<Kpr8u, 1>(roiSize, maskStep, srcStep))
               ?: norm<Squares>(roiSize, Masked{{mask, maskStep}}, value, Plane<Kpr8u>{{src, srcStep}});
}

KprStatus kpriNorm_L2_16u_C1MR(const Kpr16u* src, int srcStep, const Kpr8u* mask, int maskStep, KprSize roiSize,
                               Kpr64f* value) {
    return firstFailure(notNull(src, mask, value), roiHolds(roiSize), stepsHold<Kpr16u, 1>(roiSize, maskStep, srcStep))
               ?: norm<Squares>(roiSize, Masked{{mask, maskStep}}, value, Plane<Kpr16u>{{src, srcStep}});
}

KprStatus kpriNorm_L2_32f_C1MR(const Kpr32f* src, int srcStep, const Kpr8u* mask, int maskStep, KprSize roiSize,
                               Kpr64f* value) {
    return firstFailure(notNull(src, mask, value), roiHolds(roiSize), floatStepsHold(roiSize, 1, maskStep, srcStep))
               ?: norm<Squares>(roiSize, Masked{{mask, maskStep}}, value, Plane<Kpr32f>{{src, srcStep}});
}

KprStatus kpriNorm_L2_8u_C3CMR(const Kpr8u* src, int srcStep, const Kpr8u* mask, int maskStep, KprSize roiSize, int coi,
                               Kpr64f* value) {
    return firstFailure(notNull(src, mask, value), roiHolds(roiSize), stepsHold<Kpr8u, 3>(roiSize, maskStep, srcStep),
                        coiHolds(coi))
               ?: norm<Squares>(roiSize, Masked{{mask, maskStep}}, value, PlaneOfThree<Kpr8u>(src, srcStep, coi));
}

KprStatus kpriNorm_L2_16u_C3CMR(const Kpr16u* src, int srcStep, const Kpr8u* mask, int maskStep, KprSize roiSize,
                                int coi, Kpr64f* value) {
    return firstFailure(notNull(src, mask, value), roiHolds(roiSize), stepsHold<Kpr16u, 3>(roiSize, maskStep, srcStep),
                        coiHolds(coi))
               ?: norm<Squares>(roiSize, Masked{{mask, maskStep}}, value, PlaneOfThree<Kpr16u>(src, srcStep, coi));
}

KprStatus kpriNorm_L2_32f_C3CMR(const Kpr32f* src, int srcStep, const Kpr8u* mask, int maskStep, KprSize roiSize,
                                int coi, Kpr64f* value) {
    return firstFailure(notNull(src, mask, value), roiHolds(roiSize), floatStepsHold(roiSize, 3, maskStep, srcStep),
                        coiHolds(coi))
               ?: norm<Squares>(roiSize, Masked{{mask, maskStep}}, value, PlaneOfThree<Kpr32f>(src, srcStep, coi));
}
