// Chamfer distances. Down, then up, with M the destination's largest value:
//
//     d(x, y) = 0 where src(x, y) = 0, else min(M, d(x', y') + weight) over the neighbours visited before
//     d(x, y) = min(d(x, y), d(x', y') + weight) over the neighbours visited before
//
// The weight is `a` along rows and columns, `b` along diagonals and `c` for a knight's step.
#include <algorithm>

#include "distance/chamfer_float.h"
#include "distance/chamfer_integer.h"
#include "frame/checks.h"

namespace n0::distance {
namespace {

template <int size, typename Weight>
KprStatus weightsServe(const Weight* metric) {
    bool positive = true;
    for (int i = 0; i < size / 2 + 1; ++i) positive &= std::is_integral_v<Weight> ? metric[i] >= 1 : metric[i] > 0;
    return failIf(!positive, kprStatusBadMetric);
}

template <int size, typename T, typename Weight>
KprStatus chamfer(Rows<const Kpr8u> src, Rows<T> dst, KprSize roi, const Weight* metric) {
    Weight weights[3] = {metric[0], metric[1], size == 5 ? metric[2] : metric[0]};
    // Where there are diagonals, a step that weighs more than one is taken at its weight.
    if (roi.width >= 2 && roi.height >= 2) weights[0] = std::min(weights[0], weights[1]);
    if constexpr (std::is_integral_v<T>) return IntegerChamfer<size, T>(src, dst, roi, weights).run();
    if constexpr (!std::is_integral_v<T>) return FloatChamfer<size>(src, dst, roi, weights).run();
}

template <int size, typename T, typename Weight>
KprStatus checkedChamfer(const Kpr8u* src, int srcStep, T* dst, int dstStep, KprSize roi, const Weight* metric) {
    return firstFailure(notNull(src, dst, metric), roiHolds(roi), rowsFit<Kpr8u>(roi.width, srcStep),
                        rowsFit<T>(roi.width, dstStep), stepsAlign<T>(dstStep))
               ?: weightsServe<size>(metric)
               ?: chamfer<size>({src, srcStep}, Rows<T>{dst, dstStep}, roi, metric);
}

constexpr int kNorms = 3;
constexpr KprStatus codesServe(int kerSize, int norm) {
    return firstFailure(failIf(kerSize != 3 && kerSize != 5, kprStatusBadSize),
                        failIf(norm < 0 || norm >= kNorms, kprStatusBadArg));
}

template <typename Weight>
KprStatus copyWeights(int kerSize, const Weight (&three)[2], const Weight (&five)[3], Weight* metric) {
    for (int i = 0; i < kerSize / 2 + 1; ++i) metric[i] = kerSize == 3 ? three[i] : five[i];
    return kprStatusOk;
}

KprStatus putWeights(int kerSize, int norm, Kpr32s* metric) {
    constexpr Kpr32s three[kNorms][2] = {{1, 1}, {1, 2}, {2, 3}};
    constexpr Kpr32s five[kNorms][3] = {{1, 1, 2}, {1, 2, 3}, {5, 7, 11}};
    return copyWeights(kerSize, three[norm], five[norm], metric);
}

KprStatus putWeights(int kerSize, int norm, Kpr32f* metric) {
    constexpr Kpr32f three[kNorms][2] = {{1, 1}, {1, 2}, {0.955F, 1.3693F}};
    constexpr Kpr32f five[kNorms][3] = {{1, 1, 2}, {1, 2, 3}, {1, 1.4F, 2.1969F}};
    return copyWeights(kerSize, three[norm], five[norm], metric);
}

}  // namespace
}  // namespace n0::distance

using namespace n0;
using namespace n0::distance;

KprStatus kpriDistanceTransform_3x3_8u_C1R(const Kpr8u* src, int srcStep, Kpr8u* dst, int dstStep, KprSize roiSize,
                                           const Kpr32s* metric) {
    return checkedChamfer<3>(src, srcStep, dst, dstStep, roiSize, metric);
}

KprStatus kpriDistanceTransform_5x5_8u_C1R(const Kpr8u* src, int srcStep, Kpr8u* dst, int dstStep, KprSize roiSize,
                                           const Kpr32s* metric) {
    return checkedChamfer<5>(src, srcStep, dst, dstStep, roiSize, metric);
}

KprStatus kpriDistanceTransform_3x3_8u16u_C1R(const Kpr8u* src, int srcStep, Kpr16u* dst, int dstStep, KprSize roiSize,
                                              const Kpr32s* metric) {
    return checkedChamfer<3>(src, srcStep, dst, dstStep, roiSize, metric);
}

KprStatus kpriDistanceTransform_5x5_8u16u_C1R(const Kpr8u* src, int srcStep, Kpr16u* dst, int dstStep, KprSize roiSize,
                                              const Kpr32s* metric) {
    return checkedChamfer<5>(src, srcStep, dst, dstStep, roiSize, metric);
}

KprStatus kpriDistanceTransform_3x3_8u32f_C1R(const Kpr8u* src, int srcStep, Kpr32f* dst, int dstStep, KprSize roiSize,
                                              const Kpr32f* metric) {
    return checkedChamfer<3>(src, srcStep, dst, dstStep, roiSize, metric);
}

KprStatus kpriDistanceTransform_5x5_8u32f_C1R(const Kpr8u* src, int srcStep, Kpr32f* dst, int dstStep, KprSize roiSize,
                                              const Kpr32f* metric) {
    return checkedChamfer<5>(src, srcStep, dst, dstStep, roiSize, metric);
}

KprStatus kpriDistanceTransform_3x3_8u_C1IR(Kpr8u* srcDst, int srcDstStep, KprSize roiSize, const Kpr32s* metric) {
    return kpriDistanceTransform_3x3_8u_C1R(srcDst, srcDstStep, srcDst, srcDstStep, roiSize, metric);
}

KprStatus kpriDistanceTransform_5x5_8u_C1IR(Kpr8u* srcDst, int srcDstStep, KprSize roiSize, const Kpr32s* metric) {
    return kpriDistanceTransform_5x5_8u_C1R(srcDst, srcDstStep, srcDst, srcDstStep, roiSize, metric);
}

KprStatus kpriGetDistanceTransformMask_32s(int kerSize, int norm, Kpr32s* metric) {
    return firstFailure(notNull(metric), codesServe(kerSize, norm)) ?: putWeights(kerSize, norm, metric);
}

KprStatus kpriGetDistanceTransformMask_32f(int kerSize, int norm, Kpr32f* metric) {
    return firstFailure(notNull(metric), codesServe(kerSize, norm)) ?: putWeights(kerSize, norm, metric);
}

KprStatus kpriGetDistanceTransformMask(int maskType, Kpr32f* metric) {
    return failIf(maskType % 10 > 2, kprStatusBadArg)
               ?: kpriGetDistanceTransformMask_32f(maskType / 10, maskType % 10, metric);
}
