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

// Of one plane, or of the difference of two.
template <template <typename> typename Gather, typename Plane, typename... Second>
KprStatus norm(KprSize roi, Masked mask, Kpr64f* value, const Plane& plane, const Second&... second) {
    NormVisitor<Gather<typename Plane::Element>> visitor;
    visitRoi(roi, mask, visitor, plane, second...);
    *value = normOf(visitor.norm);
    return kprStatusOk;
}

template <template <typename> typename Gather, typename Plane>
KprStatus normRel(KprSize roi, Masked mask, Kpr64f* value, const Plane& a, const Plane& b) {
    RelativeVisitor<Gather<typename Plane::Element>> visitor;
    visitRoi(roi, mask, visitor, a, b);
    const Kpr64f numerator = normOf(visitor.difference);
    const Kpr64f divisor = normOf(visitor.second);
    if (divisor == 0.0) {
        constexpr Kpr64f infinity = std::numeric_limits<Kpr64f>::infinity();
        *value = numerator == 0.0 ? std::numeric_limits<Kpr64f>::quiet_NaN() : numerator > 0.0 ? infinity : -infinity;
        return kprStatusZeroDivisor;
    }
    *value = numerator / divisor;
    return kprStatusOk;
}

}  // namespace n0::stats
