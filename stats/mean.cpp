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

// What Mean adds up, and Mean_StdDev of integers.
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
    KPR_INLINE Kpr64f mean() {
        endBatch();
        return count == 0 ? 0.0 : sum.value() / static_cast<Kpr64f>(count);
    }
};

// What Mean_StdDev of floats adds up where the mean alone is wanted.
struct PairSums {
    FloatLanes sum;
    Kpr64s count = 0;

    template <typename Selected>
    KPR_INLINE void take(Selected selected, const Step<Kpr32f>& step) {
        count += countOf(selected, kStep<Kpr32f>);
        sum.add(step.v[0] + step.v[1]);
    }
    KPR_INLINE void widen() { sum.widen(); }
    KPR_INLINE Kpr64f mean() const { return count == 0 ? 0.0 : sum.value() / static_cast<Kpr64f>(count); }
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
    FloatLanes sum, squares;

    KPR_INLINE void add(const Step<Kpr32f>& step) {
        const auto [a, b] = step.v;
        sum.add(a + b);
        squares.add(fma(a, a, b * b));
    }
    KPR_INLINE void widen() {
        sum.widen();
        squares.widen();
    }
    KPR_INLINE Kpr64f sumValue() const { return sum.value(); }
    KPR_INLINE Kpr64f squaresValue() const { return squares.value(); }
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

// Not inlined: of integers both families share it.
template <typename Sums, typename Selection, typename Source>
[[gnu::noinline]] KprStatus average(KprSize roi, Selection selection, Source source, Kpr64f* mean) {
    Sums sums;
    visitRoi(roi, selection, sums, source.plane());
    *mean = sums.mean();
    return kprStatusOk;
}

template <typename Selection, typename Source>
KprStatus moments(KprSize roi, Selection selection, Source source, Kpr64f* mean, Kpr64f* stdDev) {
    MomentSums<typename Source::Element> sums;
    visitRoi(roi, selection, sums, source.plane());
    const auto count = static_cast<Kpr64f>(sums.count);
    const Kpr64f ofPixels = sums.count == 0 ? 0.0 : sums.moments.sumValue() / count;
    const Kpr64f ofSquares = sums.count == 0 ? 0.0 : sums.moments.squaresValue() / count;
    if (mean != nullptr) *mean = ofPixels;
    *stdDev = kprsSqrtOne(kprsFabsOne(fma(-ofPixels, ofPixels, ofSquares)));
    return kprStatusOk;
}

template <typename Source>
KprStatus meanOf(KprSize roi, Masked mask, Kpr64f* mean, Source source) {
    return callHolds(roi, mask, notNull(mean), source)
               ?: average<MeanSums<typename Source::Element>>(roi, mask, source, mean);
}

// Squares take as long again as the mean: they are formed only where the deviation is wanted.
template <typename Selection, typename Source>
KprStatus meanAndDeviationOf(KprSize roi, Selection selection, Kpr64f* mean, Kpr64f* stdDev, Source source) {
    using T = typename Source::Element;
    using MeanAlone = std::conditional_t<std::is_floating_point_v<T>, PairSums, MeanSums<T>>;
    if (const KprStatus failure = callHolds(roi, selection, kprStatusOk, source)) return failure;
    if (stdDev != nullptr) return moments(roi, selection, source, mean, stdDev);
    return mean == nullptr ? KprStatus{kprStatusOk} : average<MeanAlone>(roi, selection, source, mean);
}

}  // namespace
}  // namespace n0::stats

using namespace n0;
using namespace n0::stats;

KprStatus kpriMean_8u_C1MR(const Kpr8u* src, int srcStep, const Kpr8u* mask, int maskStep, KprSize roiSize,
                           Kpr64f* mean) {
    return meanOf(roiSize, Masked{{mask, maskStep}}, mean, Single{src, srcStep});
}

KprStatus kpriMean_16u_C1MR(const Kpr16u* src, int srcStep, const Kpr8u* mask, int maskStep, KprSize roiSize,
                            Kpr64f* mean) {
    return meanOf(roiSize, Masked{{mask, maskStep}}, mean, Single{src, srcStep});
}

KprStatus kpriMean_32f_C1MR(const Kpr32f* src, int srcStep, const Kpr8u* mask, int maskStep, KprSize roiSize,
                            Kpr64f* mean) {
    return meanOf(roiSize, Masked{{mask, maskStep}}, mean, Single{src, srcStep});
}

KprStatus kpriMean_8u_C3CMR(const Kpr8u* src, int srcStep, const Kpr8u* mask, int maskStep, KprSize roiSize, int coi,
                            Kpr64f* mean) {
    return meanOf(roiSize, Masked{{mask, maskStep}}, mean, OfThree{src, srcStep, coi});
}

KprStatus kpriMean_16u_C3CMR(const Kpr16u* src, int srcStep, const Kpr8u* mask, int maskStep, KprSize roiSize, int coi,
                             Kpr64f* mean) {
    return meanOf(roiSize, Masked{{mask, maskStep}}, mean, OfThree{src, srcStep, coi});
}

KprStatus kpriMean_32f_C3CMR(const Kpr32f* src, int srcStep, const Kpr8u* mask, int maskStep, KprSize roiSize, int coi,
                             Kpr64f* mean) {
    return meanOf(roiSize, Masked{{mask, maskStep}}, mean, OfThree{src, srcStep, coi});
}

KprStatus kpriMean_StdDev_8u_C1R(const Kpr8u* src, int srcStep, KprSize roiSize, Kpr64f* mean, Kpr64f* stdDev) {
    return meanAndDeviationOf(roiSize, Everything{}, mean, stdDev, Single{src, srcStep});
}

KprStatus kpriMean_StdDev_16u_C1R(const Kpr16u* src, int srcStep, KprSize roiSize, Kpr64f* mean, Kpr64f* stdDev) {
    return meanAndDeviationOf(roiSize, Everything{}, mean, stdDev, Single{src, srcStep});
}

KprStatus kpriMean_StdDev_32f_C1R(const Kpr32f* src, int srcStep, KprSize roiSize, Kpr64f* mean, Kpr64f* stdDev) {
    return meanAndDeviationOf(roiSize, Everything{}, mean, stdDev, Single{src, srcStep});
}

KprStatus kpriMean_StdDev_8u_C3CR(const Kpr8u* src, int srcStep, KprSize roiSize, int coi, Kpr64f* mean,
                                  Kpr64f* stdDev) {
    return meanAndDeviationOf(roiSize, Everything{}, mean, stdDev, OfThree{src, srcStep, coi});
}

KprStatus kpriMean_StdDev_16u_C3CR(const Kpr16u* src, int srcStep, KprSize roiSize, int coi, Kpr64f* mean,
                                   Kpr64f* stdDev) {
    return meanAndDeviationOf(roiSize, Everything{}, mean, stdDev, OfThree{src, srcStep, coi});
}

KprStatus kpriMean_StdDev_32f_C3CR(const Kpr32f* src, int srcStep, KprSize roiSize, int coi, Kpr64f* mean,
                                   Kpr64f* stdDev) {
    return meanAndDeviationOf(roiSize, Everything{}, mean, stdDev, OfThree{src, srcStep, coi});
}

KprStatus kpriMean_StdDev_8u_C1MR(const Kpr8u* src, int srcStep, const Kpr8u* mask, int maskStep, KprSize roiSize,
                                  Kpr64f* mean, Kpr64f* stdDev) {
    return meanAndDeviationOf(roiSize, Masked{{mask, maskStep}}, mean, stdDev, Single{src, srcStep});
}

KprStatus kpriMean_StdDev_16u_C1MR(const Kpr16u* src, int srcStep, const Kpr8u* mask, int maskStep, KprSize roiSize,
                                   Kpr64f* mean, Kpr64f* stdDev) {
    return meanAndDeviationOf(roiSize, Masked{{mask, maskStep}}, mean, stdDev, Single{src, srcStep});
}

KprStatus kpriMean_StdDev_32f_C1MR(const Kpr32f* src, int srcStep, const Kpr8u* mask, int maskStep, KprSize roiSize,
                                   Kpr64f* mean, Kpr64f* stdDev) {
    return meanAndDeviationOf(roiSize, Masked{{mask, maskStep}}, mean, stdDev, Single{src, srcStep});
}

KprStatus kpriMean_StdDev_8u_C3CMR(const Kpr8u* src, int srcStep, const Kpr8u* mask, int maskStep, KprSize roiSize,
                                   int coi, Kpr64f* mean, Kpr64f* stdDev) {
    return meanAndDeviationOf(roiSize, Masked{{mask, maskStep}}, mean, stdDev, OfThree{src, srcStep, coi});
}

KprStatus kpriMean_StdDev_16u_C3CMR(const Kpr16u* src, int srcStep, const Kpr8u* mask, int maskStep, KprSize roiSize,
                                    int coi, Kpr64f* mean, Kpr64f* stdDev) {
    return meanAndDeviationOf(roiSize, Masked{{mask, maskStep}}, mean, stdDev, OfThree{src, srcStep, coi});
}

KprStatus kpriMean_StdDev_32f_C3CMR(const Kpr32f* src, int srcStep, const Kpr8u* mask, int maskStep, KprSize roiSize,
                                    int coi, Kpr64f* mean, Kpr64f* stdDev) {
    return meanAndDeviationOf(roiSize, Masked{{mask, maskStep}}, mean, stdDev, OfThree{src, srcStep, coi});
}
