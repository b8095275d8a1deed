// Absolute differences of two images, or of an image and a constant.
//
//     AbsDiff    dst = |src1 - src2|
//     AbsDiffC   dst = |value - src|, an integer value first brought into the element's range
//
// Integers are exact. Floats round the difference once and clear its sign, that of a NaN too.
#include <algorithm>
#include <limits>

#include "frame/checks.h"
#include "primitives/rows.h"

namespace n0::stats {
namespace {

// All lengths, then all multiples.
template <typename T, typename Size, typename... Steps>
KprStatus stepsHold(Size roi, Steps... steps) {
    return firstFailure(rowsFit<T>(roi.width, steps...), stepsAlign<T>(steps...));
}

// `roi` counts elements, of which three channels may have more than 2^31 in a row.
template <typename T>
KprStatus absDiff(Rows<const T> src1, Rows<const T> src2, Rows<T> dst, KprSizeL roi) {
    return firstFailure(notNull(src1.first, src2.first, dst.first), roiHolds(roi),
                        stepsHold<T>(roi, src1.step, src2.step, dst.step))
               ?: walkRoi<kLanes<T>>(
                      roi,
                      [](auto part, const T* a, const T* b, T* d) {
                          store(d, n0::absDiff(load(a, part), load(b, part)), part);
                      },
                      src1, src2, dst);
}

template <typename T>
KprStatus absDiffC(Rows<const T> src, Rows<T> dst, KprSize roi, T value) {
    const auto constant = broadcast(value);
    return firstFailure(notNull(src.first, dst.first), roiHolds(roi), stepsHold<T>(roi, src.step, dst.step))
               ?: walkRoi<kLanes<T>>(
                      roi, [=](auto part, const T* a, T* d) { store(d, n0::absDiff(constant, load(a, part)), part); },
                      src, dst);
}

// The nearest value of T's range.
template <typename T>
constexpr T clampTo(int value) {
    return static_cast<T>(std::clamp<int>(value, 0, std::numeric_limits<T>::max()));
}

}  // namespace
}  // namespace n0::stats

using namespace n0;
using namespace n0::stats;

KprStatus kpriAbsDiff_8u_C1R(const Kpr8u* src1, int src1Step, const Kpr8u* src2, int src2Step, Kpr8u* dst, int dstStep,
                             KprSize roiSize) {
    return absDiff<Kpr8u>({src1, src1Step}, {src2, src2Step}, {dst, dstStep}, {roiSize.width, roiSize.height});
}

KprStatus kpriAbsDiff_8u_C3R(const Kpr8u* src1, int src1Step, const Kpr8u* src2, int src2Step, Kpr8u* dst, int dstStep,
                             KprSize roiSize) {
    return absDiff<Kpr8u>({src1, src1Step}, {src2, src2Step}, {dst, dstStep},
                          {Kpr64s{3} * roiSize.width, roiSize.height});
}

KprStatus kpriAbsDiff_16u_C1R(const Kpr16u* src1, int src1Step, const Kpr16u* src2, int src2Step, Kpr16u* dst,
                              int dstStep, KprSize roiSize) {
    return absDiff<Kpr16u>({src1, src1Step}, {src2, src2Step}, {dst, dstStep}, {roiSize.width, roiSize.height});
}

KprStatus kpriAbsDiff_32f_C1R(const Kpr32f* src1, int src1Step, const Kpr32f* src2, int src2Step, Kpr32f* dst,
                              int dstStep, KprSize roiSize) {
    return absDiff<Kpr32f>({src1, src1Step}, {src2, src2Step}, {dst, dstStep}, {roiSize.width, roiSize.height});
}

KprStatus kpriAbsDiffC_8u_C1R(const Kpr8u* src, int srcStep, Kpr8u* dst, int dstStep, KprSize roiSize, int value) {
    return absDiffC<Kpr8u>({src, srcStep}, {dst, dstStep}, roiSize, clampTo<Kpr8u>(value));
}

KprStatus kpriAbsDiffC_16u_C1R(const Kpr16u* src, int srcStep, Kpr16u* dst, int dstStep, KprSize roiSize, int value) {
    return absDiffC<Kpr16u>({src, srcStep}, {dst, dstStep}, roiSize, clampTo<Kpr16u>(value));
}

KprStatus kpriAbsDiffC_32f_C1R(const Kpr32f* src, int srcStep, Kpr32f* dst, int dstStep, KprSize roiSize,
                               Kpr32f value) {
    return absDiffC<Kpr32f>({src, srcStep}, {dst, dstStep}, roiSize, value);
}
