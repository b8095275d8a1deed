// Thresholds: pixels beyond a bound are replaced, all others are copied. A NaN lies beyond no bound.
#include "frame/checks.h"
#include "primitives/kit.h"
#include "primitives/rows.h"

namespace n0 {
namespace {

template <typename T>
KprStatus raise(const T* src, Kpr64s srcStep, T* dst, Kpr64s dstStep, KprSize roi, T threshold) {
    return firstFailure(notNull(src, dst), roiHolds(roi))
               ?: walkRoi<kLanes<T>>(
                      roi,
                      [bound = broadcast(threshold)](auto part, const T* s, T* d) {
                          store(d, max(bound, load(s, part)), part);  // in this order max copies a NaN and a -0
                      },
                      Rows{src, srcStep}, Rows{dst, dstStep});
}

template <typename T>
KprStatus replaceAbove(const T* src, int srcStep, T* dst, int dstStep, KprSize roi, T threshold, T value) {
    return firstFailure(notNull(src, dst), roiHolds(roi))
               ?: walkRoi<kLanes<T>>(
                      roi,
                      [bound = broadcast(threshold), other = broadcast(value)](auto part, const T* s, T* d) {
                          const auto pixels = load(s, part);
                          store(d, select<T>(less(bound, pixels), other, pixels), part);
                      },
                      Rows{src, srcStep}, Rows{dst, dstStep});
}

}  // namespace
}  // namespace n0

using namespace n0;

KprStatus kpriThreshold_LT_16s_C1R(const Kpr16s* src, int srcStep, Kpr16s* dst, int dstStep, KprSize roiSize,
                                   Kpr16s threshold) {
    return raise(src, srcStep, dst, dstStep, roiSize, threshold);
}

KprStatus kpriThreshold_LT_32f_C1R(const Kpr32f* src, int srcStep, Kpr32f* dst, int dstStep, KprSize roiSize,
                                   Kpr32f threshold) {
    return raise(src, srcStep, dst, dstStep, roiSize, threshold);
}

KprStatus kprsThreshold_LT_32f(const Kpr32f* src, Kpr32f* dst, int len, Kpr32f threshold) {
    return raise(src, 0, dst, 0, {len, 1}, threshold);
}

KprStatus kpriThreshold_GTVal_8u_C1R(const Kpr8u* src, int srcStep, Kpr8u* dst, int dstStep, KprSize roiSize,
                                     Kpr8u threshold, Kpr8u value) {
    return replaceAbove(src, srcStep, dst, dstStep, roiSize, threshold, value);
}

KprStatus kpriThreshold_GTVal_16u_C1R(const Kpr16u* src, int srcStep, Kpr16u* dst, int dstStep, KprSize roiSize,
                                      Kpr16u threshold, Kpr16u value) {
    return replaceAbove(src, srcStep, dst, dstStep, roiSize, threshold, value);
}
