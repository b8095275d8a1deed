// The kernels of the three families of norms, over the way in which magnitudes are gathered: Largest, Sum or Squares.
#pragma once

#include <limits>

#include "primitives/math.h"
#include "stats/folds.h"

namespace n0::stats {

// |v| and |a - b|.
template <typename T>
KPR_INLINE Step<T> magnitude(Step<T> step) {
    if constexpr (std::is_floating_point_v<T>) {
        for (auto& v : step.v) v = abs(v);
    }
    return step;
}

template <typename T>
KPR_INLINE Step<T> magnitude(const Step<T>& a, const Step<T>& b) {
    Step<T> out;
    for (int i = 0; i < kVectors<T>; ++i) out.v[i] = absDiff(a.v[i], b.v[i]);
    return out;
}

// A finished sum of squares stands for its root.
template <typename T>
KPR_INLINE Kpr64f normOf(const Squares<T>& gathered) {
    return kprsSqrtOne(gathered.value());
}
template <typename Gathered>
KPR_INLINE Kpr64f normOf(const Gathered& gathered) {
    return gathered.value();
}

template <typename Gather>
struct NormVisitor {
    Gather norm;

    template <typename... Steps>
    KPR_INLINE void take(Lanes, const Steps&... steps) {
        norm.add(magnitude(steps...));
    }
    KPR_INLINE void widen() { norm.widen(); }
};

template <typename Gather>
struct RelativeVisitor {
    Gather difference;
    Gather second;

    template <typename T>
    KPR_INLINE void take(Lanes, const Step<T>& a, const Step<T>& b) {
        difference.add(magnitude(a, b));
        second.add(magnitude(b));
    }
    KPR_INLINE void widen() {
        difference.widen();
        second.widen();
    }
};

// Of one float source the multiple of its step is tested before the mask's length.
template <typename Source>
KprStatus normHolds(KprSize roi, Masked mask, const Kpr64f* value, Source source) {
    using T = typename Source::Element;
    if constexpr (!std::is_floating_point_v<T>) return callHolds(roi, mask, notNull(value), source);
    return firstFailure(notNull(source.src, value), mask.isThere(), roiHolds(roi),
                        rowsFit<T>({roi.width, Source::channels}, source.step), stepsAlign<T>(source.step),
                        mask.fits(roi.width), source.coiHolds());
}

// The norm of one source.
template <template <typename> typename Gather, typename Source>
KprStatus norm(KprSize roi, Masked mask, Kpr64f* value, Source source) {
    if (const KprStatus failure = normHolds(roi, mask, value, source)) return failure;
    NormVisitor<Gather<typename Source::Element>> visitor;
    visitRoi(roi, mask, visitor, source.plane());
    *value = normOf(visitor.norm);
    return kprStatusOk;
}

// The norm of the difference of two.
template <template <typename> typename Gather, typename Source>
KprStatus normDiff(KprSize roi, Masked mask, Kpr64f* value, Source first, Source second) {
    if (const KprStatus failure = callHolds(roi, mask, notNull(value), first, second)) return failure;
    NormVisitor<Gather<typename Source::Element>> visitor;
    visitRoi(roi, mask, visitor, first.plane(), second.plane());
    *value = normOf(visitor.norm);
    return kprStatusOk;
}

// The norm of the difference of two, divided by that of the second.
template <template <typename> typename Gather, typename Source>
KprStatus normRel(KprSize roi, Masked mask, Kpr64f* value, Source first, Source second) {
    if (const KprStatus failure = callHolds(roi, mask, notNull(value), first, second)) return failure;
    RelativeVisitor<Gather<typename Source::Element>> visitor;
    visitRoi(roi, mask, visitor, first.plane(), second.plane());
    const Kpr64f numerator = normOf(visitor.difference);
    const Kpr64f divisor = normOf(visitor.second);
    if (divisor == 0.0) {
        constexpr Kpr64f infinity = std::numeric_limits<Kpr64f>::infinity();
        constexpr Kpr64f nan = std::numeric_limits<Kpr64f>::quiet_NaN();
        *value = numerator == 0.0 ? nan : numerator > 0.0 ? infinity : -infinity;  // a NaN is not above 0 either
        return kprStatusZeroDivisor;
    }
    *value = numerator / divisor;
    return kprStatusOk;
}

}  // namespace n0::stats
