// Means and standard deviations of the selected pixels, in double precision. With n pixels selected:
//
//     mean = sum / n        stdDev = sqrt(|fma(-mean, mean, sumOfSquares / n)|)        both 0 when n is 0
//
// Pixels that are not selected are not read, so that what lies there has no influence. Sums of integers are exact. Of
// floats, pixel x of a row is added in lane x mod 32: by Mean in batches of 120 steps of 32 pixels, a row's last,
// shorter step counted as one, that run on from row to row before the lanes are widened; by Mean_StdDev to the row's
// end, pixels x and x + 16 of a step together, as a + b and as fma(a, a, b * b).
#include "primitives/math.h"
#include "stats/folds.h"

namespace n0::stats {
namespace {

KPR_INLINE Kpr64s countOf(All, int step) { return step; }
KPR_INLINE Kpr64s countOf(Lanes selected, int) { return std::popcount(selected.bits); }

template <typename T>
struct MeanSums {
    static constexpr int kBatch = 120;

    Sum<T> sum;
    Kpr64s count = 0;
    int steps = 0;

    template <typename Selected>
    KPR_INLINE void take(Selected selected, const Step<T>& step) {
        count += countOf(selected, kStep<T>);
        sum.add(step);
        if constexpr (std::is_floating_point_v<T>) {
            if (++steps == kBatch) endBatch();
        }
    }
    KPR_INLINE void widen() {
        if constexpr (!std::is_floating_point_v<T>) sum.widen();
    }
    KPR_INLINE void endBatch() {
        sum.widen();
        steps = 0;
    }
};

// The sums of both moments.
template <typename T>
struct Moments {
    Sum<T> sum;
    Squares<T> squares;

    KPR_INLINE void add(const Step<T>& step) {
        sum.add(step);
        squares.add(step);
    }
    KPR_INLINE void widen() {
        sum.widen();
        squares.widen();
    }
    KPR_INLINE Kpr64f sumValue() const { return sum.value(); }
    KPR_INLINE Kpr64f squaresValue() const { return squares.value(); }
};

template <>
struct Moments<Kpr16u> : Squares<Kpr16u> {
    KPR_INLINE Kpr64f sumValue() const { return words.value(); }
    KPR_INLINE Kpr64f squaresValue() const { return value(); }
};

template <>
struct Moments<Kpr32f> {
    Sum<Kpr32f> both;  // lanes 0 to 15 have the sum of the pixels, the others that of their squares

    KPR_INLINE void add(const Step<Kpr32f>& step) {
        const auto [a, b] = step.v;
        both.add({{a + b, fma(a, a, b * b)}});
    }
    KPR_INLINE void widen() { both.widen(); }
    KPR_INLINE Kpr64f sumValue() const { return sumOfLanes(both.total[0][0]) + sumOfLanes(both.total[0][1]); }
    KPR_INLINE Kpr64f squaresValue() const { return sumOfLanes(both.total[1][0]) + sumOfLanes(both.total[1][1]); }
};

template <typename T>
struct MomentSums {
    Moments<T> moments;
    Kpr64s count = 0;

    template <typename Selected>
    KPR_INLINE void take(Selected selected, const Step<T>& step) {
        count += countOf(selected, kStep<T>);
        moments.add(step);
    }
    KPR_INLINE void widen() { moments.widen(); }
};

template <typename Plane>
KprStatus meanOf(const Plane& plane, Masked mask, KprSize roi, Kpr64f* mean) {
    MeanSums<typename Plane::Element> sums;
    visitRoi(roi, mask, sums, plane);
    sums.endBatch();
    *mean = sums.count == 0 ? 0.0 : sums.sum.value() / static_cast<Kpr64f>(sums.count);
    return kprStatusOk;
}

template <typename Plane, typename Selection>
KprStatus meanAndDeviationOf(const Plane& plane, Selection selection, KprSize roi, Kpr64f* mean, Kpr64f* stdDev) {
    MomentSums<typename Plane::Element> sums;
    visitRoi(roi, selection, sums, plane);
    const auto count = static_cast<Kpr64f>(sums.count);
    const Kpr64f average = sums.count == 0 ? 0.0 : sums.moments.sumValue() / count;
    const Kpr64f square = sums.count == 0 ? 0.0 : sums.moments.squaresValue() / count;
    if (mean != nullptr) *mean = average;
    if (stdDev != nullptr) *stdDev = kprsSqrtOne(kprsFabsOne(fma(-average, average, square)));
    return kprStatusOk;
}

}  // namespace
}  // namespace n0::stats

using namespace n0;
using namespace n0::stats;

KprStatus kpriMean_8u_C1MR(const Kpr8u* src, int srcStep, const Kpr8u* mask, int maskStep, KprSize roiSize,
                           Kpr64f* mean) {
    return firstFailure(notNull(src, mask, mean), roiHolds(roiSize), stepsHold<Kpr8u, 1>(roiSize, maskStep, srcStep))
               ?: meanOf(Plane<Kpr8u>{{src, srcStep}}, Masked{{mask, maskStep}}, roiSize, mean);
}

KprStatus kpriMean_16u_C1MR(const Kpr16u* src, int srcStep, const Kpr8u* mask, int maskStep, KprSize roiSize,
                            Kpr64f* mean) {
    return firstFailure(notNull(src, mask, mean), roiHolds(roiSize), stepsHold<Kpr16u, 1>(roiSize, maskStep, srcStep))
               ?: meanOf(Plane<Kpr16u>{{src, srcStep}}, Masked{{mask, maskStep}}, roiSize, mean);
}

KprStatus kpriMean_32f_C1MR(const Kpr32f* src, int srcStep, const Kpr8u* mask, int maskStep, KprSize roiSize,
                            Kpr64f* mean) {
    return firstFailure(notNull(src, mask, mean), roiHolds(roiSize), stepsHold<Kpr32f, 1>(roiSize, maskStep, srcStep))
               ?: meanOf(Plane<Kpr32f>{{src, srcStep}}, Masked{{mask, maskStep}}, roiSize, mean);
}

KprStatus kpriMean_8u_C3CMR(const Kpr8u* src, int srcStep, const Kpr8u* mask, int maskStep, KprSize roiSize, int coi,
                            Kpr64f* mean) {
    return firstFailure(notNull(src, mask, mean), roiHolds(roiSize), stepsHold<Kpr8u, 3>(roiSize, maskStep, srcStep),
                        coiHolds(coi))
               ?: meanOf(PlaneOfThree<Kpr8u>(src, srcStep, coi), Masked{{mask, maskStep}}, roiSize, mean);
}

KprStatus kpriMean_16u_C3CMR(const Kpr16u* src, int srcStep, const Kpr8u* mask, int maskStep, KprSize roiSize, int coi,
                             Kpr64f* mean) {
    return firstFailure(notNull(src, mask, mean), roiHolds(roiSize), stepsHold<Kpr16u, 3>(roiSize, maskStep, srcStep),
                        coiHolds(coi))
               ?: meanOf(PlaneOfThree<Kpr16u>(src, srcStep, coi), Masked{{mask, maskStep}}, roiSize, mean);
}

KprStatus kpriMean_32f_C3CMR(const Kpr32f* src, int srcStep, const Kpr8u* mask, int maskStep, KprSize roiSize, int coi,
                             Kpr64f* mean) {
    return firstFailure(notNull(src, mask, mean), roiHolds(roiSize), stepsHold<Kpr32f, 3>(roiSize, maskStep, srcStep),
                        coiHolds(coi))
               ?: meanOf(PlaneOfThree<Kpr32f>(src, srcStep, coi), Masked{{mask, maskStep}}, roiSize, mean);
}

KprStatus kpriMean_StdDev_8u_C1R(const Kpr8u* src, int srcStep, KprSize roiSize, Kpr64f* mean, Kpr64f* stdDev) {
    return firstFailure(notNull(src), roiHolds(roiSize), stepsHold<Kpr8u, 1>(roiSize, kAnyStep, srcStep))
               ?: meanAndDeviationOf(Plane<Kpr8u>{{src, srcStep}}, Everything{}, roiSize, mean, stdDev);
}

KprStatus kpriMean_StdDev_16u_C1R(const Kpr16u* src, int srcStep, KprSize roiSize, Kpr64f* mean, Kpr64f* stdDev) {
    return firstFailure(notNull(src), roiHolds(roiSize), stepsHold<Kpr16u, 1>(roiSize, kAnyStep, srcStep))
               ?: meanAndDeviationOf(Plane<Kpr16u>{{src, srcStep}}, Everything{}, roiSize, mean, stdDev);
}

KprStatus kpriMean_StdDev_32f_C1R(const Kpr32f* src, int srcStep, KprSize roiSize, Kpr64f* mean, Kpr64f* stdDev) {
    return firstFailure(notNull(src), roiHolds(roiSize), stepsHold<Kpr32f, 1>(roiSize, kAnyStep, srcStep))
               ?: meanAndDeviationOf(Plane<Kpr32f>{{src, srcStep}}, Everything{}, roiSize, mean, stdDev);
}

KprStatus kpriMean_StdDev_8u_C3CR(const Kpr8u* src, int srcStep, KprSize roiSize, int coi, Kpr64f* mean,
                                  Kpr64f* stdDev) {
    return firstFailure(notNull(src), roiHolds(roiSize), stepsHold<Kpr8u, 3>(roiSize, kAnyStep, srcStep), coiHolds(coi))
               ?: meanAndDeviationOf(PlaneOfThree<Kpr8u>(src, srcStep, coi), Everything{}, roiSize, mean, stdDev);
}

KprStatus kpriMean_StdDev_16u_C3CR(const Kpr16u* src, int srcStep, KprSize roiSize, int coi, Kpr64f* mean,
                                   Kpr64f* stdDev) {
    return firstFailure(notNull(src), roiHolds(roiSize), stepsHold<Kpr16u, 3>(roiSize, kAnyStep, srcStep),
                        coiHolds(coi))
               ?: meanAndDeviationOf(PlaneOfThree<Kpr16u>(src, srcStep, coi), Everything{}, roiSize, mean, stdDev);
}

KprStatus kpriMean_StdDev_32f_C3CR(const Kpr32f* src, int srcStep, KprSize roiSize, int coi, Kpr64f* mean,
                                   Kpr64f* stdDev) {
    return firstFailure(notNull(src), roiHolds(roiSize), stepsHold<Kpr32f, 3>(roiSize, kAnyStep, srcStep),
                        coiHolds(coi))
               ?: meanAndDeviationOf(PlaneOfThree<Kpr32f>(src, srcStep, coi), Everything{}, roiSize, mean, stdDev);
}

KprStatus kpriMean_StdDev_8u_C1MR(const Kpr8u* src, int srcStep, const Kpr8u* mask, int maskStep, KprSize roiSize,
                                  Kpr64f* mean, Kpr64f* stdDev) {
    return firstFailure(notNull(src, mask), roiHolds(roiSize), stepsHold<Kpr8u, 1>(roiSize, maskStep, srcStep))
               ?: meanAndDeviationOf(Plane<Kpr8u>{{src, srcStep}}, Masked{{mask, maskStep}}, roiSize, mean, stdDev);
}

KprStatus kpriMean_StdDev_16u_C1MR(const Kpr16u* src, int srcStep, const Kpr8u* mask, int maskStep, KprSize roiSize,
                                   Kpr64f* mean, Kpr64f* stdDev) {
    return firstFailure(notNull(src, mask), roiHolds(roiSize), stepsHold<Kpr16u, 1>(roiSize, maskStep, srcStep))
               ?: meanAndDeviationOf(Plane<Kpr16u>{{src, srcStep}}, Masked{{mask, maskStep}}, roiSize, mean, stdDev);
}

KprStatus kpriMean_StdDev_32f_C1MR(const Kpr32f* src, int srcStep, const Kpr8u* mask, int maskStep, KprSize roiSize,
                                   Kpr64f* mean, Kpr64f* stdDev) {
    return firstFailure(notNull(src, mask), roiHolds(roiSize), stepsHold<Kpr32f, 1>(roiSize, maskStep, srcStep))
               ?: meanAndDeviationOf(Plane<Kpr32f>{{src, srcStep}}, Masked{{mask, maskStep}}, roiSize, mean, stdDev);
}

KprStatus kpriMean_StdDev_8u_C3CMR(const Kpr8u* src, int srcStep, const Kpr8u* mask, int maskStep, KprSize roiSize,
                                   int coi, Kpr64f* mean, Kpr64f* stdDev) {
    return firstFailure(notNull(src, mask), roiHolds(roiSize), stepsHold<Kpr8u, 3>(roiSize, maskStep, srcStep),
                        coiHolds(coi))
               ?: meanAndDeviationOf(PlaneOfThree<Kpr8u>(src, srcStep, coi), Masked{{mask, maskStep}}, roiSize, mean,
                                     stdDev);
}

KprStatus kpriMean_StdDev_16u_C3CMR(const Kpr16u* src, int srcStep, const Kpr8u* mask, int maskStep, KprSize roiSize,
                                    int coi, Kpr64f* mean, Kpr64f* stdDev) {
    return firstFailure(notNull(src, mask), roiHolds(roiSize), stepsHold<Kpr16u, 3>(roiSize, maskStep, srcStep),
                        coiHolds(coi))
               ?: meanAndDeviationOf(PlaneOfThree<Kpr16u>(src, srcStep, coi), Masked{{mask, maskStep}}, roiSize, mean,
                                     stdDev);
}

KprStatus kpriMean_StdDev_32f_C3CMR(const Kpr32f* src, int srcStep, const Kpr8u* mask, int maskStep, KprSize roiSize,
                                    int coi, Kpr64f* mean, Kpr64f* stdDev) {
    return firstFailure(notNull(src, mask), roiHolds(roiSize), stepsHold<Kpr32f, 3>(roiSize, maskStep, srcStep),
                        coiHolds(coi))
               ?: meanAndDeviationOf(PlaneOfThree<Kpr32f>(src, srcStep, coi), Masked{{mask, maskStep}}, roiSize, mean,
                                     stdDev);
}
