// The norm of the difference of two images relative to that of the second, over the selected pixels and in one pass:
// the norm of a - b divided by the norm of b, in double precision. A zero divisor is a warning; the quotient is then
// NaN or infinite.
#include "stats/norm.h"

using namespace n0;
using namespace n0::stats;

KprStatus kpriNormRel_Inf_8u_C1MR(const Kpr8u* src1, int src1Step, const Kpr8u* src2, int src2Step, const Kpr8u* mask,
                                  int maskStep, KprSize roiSize, Kpr64f* value) {
    return firstFailure(notNull(src1, src2, mask, value), roiHolds(roiSize),
                        stepsHold<Kpr8u, 1>(roiSize, maskStep, src1Step, src2Step))
               ?: normRel<Largest>(roiSize, Masked{{mask, maskStep}}, value, Plane<Kpr8u>{{src1, src1Step}},
                                   Plane<Kpr8u>{{src2, src2Step}});
}

KprStatus kpriNormRel_Inf_16u_C1MR(const Kpr16u* src1, int src1Step, const Kpr16u* src2, int src2Step,
                                   const Kpr8u* mask, int maskStep, KprSize roiSize, Kpr64f* value) {
    return firstFailure(notNull(src1, src2, mask, value), roiHolds(roiSize),
                        stepsHold<Kpr16u, 1>(roiSize, maskStep, src1Step, src2Step))
               ?: normRel<Largest>(roiSize, Masked{{mask, maskStep}}, value, Plane<Kpr16u>{{src1, src1Step}},
                                   Plane<Kpr16u>{{src2, src2Step}});
}

KprStatus kpriNormRel_Inf_32f_C1MR(const Kpr32f* src1, int src1Step, const Kpr32f* src2, int src2Step,
                                   const Kpr8u* mask, int maskStep, KprSize roiSize, Kpr64f* value) {
    return firstFailure(notNull(src1, src2, mask, value), roiHolds(roiSize),
                        stepsHold<Kpr32f, 1>(roiSize, maskStep, src1Step, src2Step))
               ?: normRel<Largest>(roiSize, Masked{{mask, maskStep}}, value, Plane<Kpr32f>{{src1, src1Step}},
                                   Plane<Kpr32f>{{src2, src2Step}});
}

KprStatus kpriNormRel_Inf_8u_C3CMR(const Kpr8u* src1, int src1Step, const Kpr8u* src2, int src2Step, const Kpr8u* mask,
                                   int maskStep, KprSize roiSize, int coi, Kpr64f* value) {
    return firstFailure(notNull(src1, src2, mask, value), roiHolds(roiSize),
                        stepsHold<Kpr8u, 3>(roiSize, maskStep, src1Step, src2Step), coiHolds(coi))
               ?: normRel<Largest>(roiSize, Masked{{mask, maskStep}}, value, PlaneOfThree<Kpr8u>(src1, src1Step, coi),
                                   PlaneOfThree<Kpr8u>(src2, src2Step, coi));
}

KprStatus kpriNormRel_Inf_16u_C3CMR(const Kpr16u* src1, int src1Step, const Kpr16u* src2, int src2Step,
                                    const Kpr8u* mask, int maskStep, KprSize roiSize, int coi, Kpr64f* value) {
    return firstFailure(notNull(src1, src2, mask, value), roiHolds(roiSize),
                        stepsHold<Kpr16u, 3>(roiSize, maskStep, src1Step, src2Step), coiHolds(coi))
               ?: normRel<Largest>(roiSize, Masked{{mask, maskStep}}, value, PlaneOfThree<Kpr16u>(src1, src1Step, coi),
                                   PlaneOfThree<Kpr16u>(src2, src2Step, coi));
}

KprStatus kpriNormRel_Inf_32f_C3CMR(const Kpr32f* src1, int src1Step, const Kpr32f* src2, int src2Step,
                                    const Kpr8u* mask, int maskStep, KprSize roiSize, int coi, Kpr64f* value) {
    return firstFailure(notNull(src1, src2, mask, value), roiHolds(roiSize),
                        stepsHold<Kpr32f, 3>(roiSize, maskStep, src1Step, src2Step), coiHolds(coi))
               ?: normRel<Largest>(roiSize, Masked{{mask, maskStep}}, value, PlaneOfThree<Kpr32f>(src1, src1Step, coi),
                                   PlaneOfThree<Kpr32f>(src2, src2Step, coi));
}

KprStatus kpriNormRel_L1_8u_C1MR(const Kpr8u* src1, int src1Step, const Kpr8u* src2, int src2Step, const Kpr8u* mask,
                                 int maskStep, KprSize roiSize, Kpr64f* value) {
    return firstFailure(notNull(src1, src2, mask, value), roiHolds(roiSize),
                        stepsHold<Kpr8u, 1>(roiSize, maskStep, src1Step, src2Step))
               ?: normRel<Sum>(roiSize, Masked{{mask, maskStep}}, value, Plane<Kpr8u>{{src1, src1Step}},
                               Plane<Kpr8u>{{src2, src2Step}});
}

KprStatus kpriNormRel_L1_16u_C1MR(const Kpr16u* src1, int src1Step, const Kpr16u* src2, int src2Step, const Kpr8u* mask,
                                  int maskStep, KprSize roiSize, Kpr64f* value) {
    return firstFailure(notNull(src1, src2, mask, value), roiHolds(roiSize),
                        stepsHold<Kpr16u, 1>(roiSize, maskStep, src1Step, src2Step))
               ?: normRel<Sum>(roiSize, Masked{{mask, maskStep}}, value, Plane<Kpr16u>{{src1, src1Step}},
                               Plane<Kpr16u>{{src2, src2Step}});
}

KprStatus kpriNormRel_L1_32f_C1MR(const Kpr32f* src1, int src1Step, const Kpr32f* src2, int src2Step, const Kpr8u* mask,
                                  int maskStep, KprSize roiSize, Kpr64f* value) {
    return firstFailure(notNull(src1, src2, mask, value), roiHolds(roiSize),
                        stepsHold<Kpr32f, 1>(roiSize, maskStep, src1Step, src2Step))
               ?: normRel<Sum>(roiSize, Masked{{mask, maskStep}}, value, Plane<Kpr32f>{{src1, src1Step}},
                               Plane<Kpr32f>{{src2, src2Step}});
}

KprStatus kpriNormRel_L1_8u_C3CMR(const Kpr8u* src1, int src1Step, const Kpr8u* src2, int src2Step, const Kpr8u* mask,
                                  int maskStep, KprSize roiSize, int coi, Kpr64f* value) {
    return firstFailure(notNull(src1, src2, mask, value), roiHolds(roiSize),
                        stepsHold<Kpr8u, 3>(roiSize, maskStep, src1Step, src2Step), coiHolds(coi))
               ?: normRel<Sum>(roiSize, Masked{{mask, maskStep}}, value, PlaneOfThree<Kpr8u>(src1, src1Step, coi),
                               PlaneOfThree<Kpr8u>(src2, src2Step, coi));
}

KprStatus kpriNormRel_L1_16u_C3CMR(const Kpr16u* src1, int src1Step, const Kpr16u* src2, int src2Step,
                                   const Kpr8u* mask, int maskStep, KprSize roiSize, int coi, Kpr64f* value) {
    return firstFailure(notNull(src1, src2, mask, value), roiHolds(roiSize),
                        stepsHold<Kpr16u, 3>(roiSize, maskStep, src1Step, src2Step), coiHolds(coi))
               ?: normRel<Sum>(roiSize, Masked{{mask, maskStep}}, value, PlaneOfThree<Kpr16u>(src1, src1Step, coi),
                               PlaneOfThree<Kpr16u>(src2, src2Step, coi));
}

KprStatus kpriNormRel_L1_32f_C3CMR(const Kpr32f* src1, int src1Step, const Kpr32f* src2, int src2Step,
                                   const Kpr8u* mask, int maskStep, KprSize roiSize, int coi, Kpr64f* value) {
    return firstFailure(notNull(src1, src2, mask, value), roiHolds(roiSize),
                        stepsHold<Kpr32f, 3>(roiSize, maskStep, src1Step, src2Step), coiHolds(coi))
               ?: normRel<Sum>(roiSize, Masked{{mask, maskStep}}, value, PlaneOfThree<Kpr32f>(src1, src1Step, coi),
                               PlaneOfThree<Kpr32f>(src2, src2Step, coi));
}

KprStatus kpriNormRel_L2_8u_C1MR(const Kpr8u* src1, int src1Step, const Kpr8u* src2, int src2Step, const Kpr8u* mask,
                                 int maskStep, KprSize roiSize, Kpr64f* value) {
    return firstFailure(notNull(src1, src2, mask, value), roiHolds(roiSize),
                        stepsHold<Kpr8u, 1>(roiSize, maskStep, src1Step, src2Step))
               ?: normRel<Squares>(roiSize, Masked{{mask, maskStep}}, value, Plane<Kpr8u>{{src1, src1Step}},
                                   Plane<Kpr8u>{{src2, src2Step}});
}

KprStatus kpriNormRel_L2_16u_C1MR(const Kpr16u* src1, int src1Step, const Kpr16u* src2, int src2Step, const Kpr8u* mask,
                                  int maskStep, KprSize roiSize, Kpr64f* value) {
    return firstFailure(notNull(src1, src2, mask, value), roiHolds(roiSize),
                        stepsHold<Kpr16u, 1>(roiSize, maskStep, src1Step, src2Step))
               ?: normRel<Squares>(roiSize, Masked{{mask, maskStep}}, value, Plane<Kpr16u>{{src1, src1Step}},
                                   Plane<Kpr16u>{{src2, src2Step}});
}

KprStatus kpriNormRel_L2_32f_C1MR(const Kpr32f* src1, int src1Step, const Kpr32f* src2, int src2Step, const Kpr8u* mask,
                                  int maskStep, KprSize roiSize, Kpr64f* value) {
    return firstFailure(notNull(src1, src2, mask, value), roiHolds(roiSize),
                        stepsHold<Kpr32f, 1>(roiSize, maskStep, src1Step, src2Step))
               ?: normRel<Squares>(roiSize, Masked{{mask, maskStep}}, value, Plane<Kpr32f>{{src1, src1Step}},
                                   Plane<Kpr32f>{{src2, src2Step}});
}

KprStatus kpriNormRel_L2_8u_C3CMR(const Kpr8u* src1, int src1Step, const Kpr8u* src2, int src2Step, const Kpr8u* mask,
                                  int maskStep, KprSize roiSize, int coi, Kpr64f* value) {
    return firstFailure(notNull(src1, src2, mask, value), roiHolds(roiSize),
                        stepsHold<Kpr8u, 3>(roiSize, maskStep, src1Step, src2Step), coiHolds(coi))
               ?: normRel<Squares>(roiSize, Masked{{mask, maskStep}}, value, PlaneOfThree<Kpr8u>(src1, src1Step, coi),
                                   PlaneOfThree<Kpr8u>(src2, src2Step, coi));
}

KprStatus kpriNormRel_L2_16u_C3CMR(const Kpr16u* src1, int src1Step, const Kpr16u* src2, int src2Step,
                                   const Kpr8u* mask, int maskStep, KprSize roiSize, int coi, Kpr64f* value) {
    return firstFailure(notNull(src1, src2, mask, value), roiHolds(roiSize),
                        stepsHold<Kpr16u, 3>(roiSize, maskStep, src1Step, src2Step), coiHolds(coi))
               ?: normRel<Squares>(roiSize, Masked{{mask, maskStep}}, value, PlaneOfThree<Kpr16u>(src1, src1Step, coi),
                                   PlaneOfThree<Kpr16u>(src2, src2Step, coi));
}

KprStatus kpriNormRel_L2_32f_C3CMR(const Kpr32f* src1, int src1Step, const Kpr32f* src2, int src2Step,
                                   const Kpr8u* mask, int maskStep, KprSize roiSize, int coi, Kpr64f* value) {
    return firstFailure(notNull(src1, src2, mask, value), roiHolds(roiSize),
                        stepsHold<Kpr32f, 3>(roiSize, maskStep, src1Step, src2Step), coiHolds(coi))
               ?: normRel<Squares>(roiSize, Masked{{mask, maskStep}}, value, PlaneOfThree<Kpr32f>(src1, src1Step, coi),
                                   PlaneOfThree<Kpr32f>(src2, src2Step, coi));
}
