// How a pixel under a tap with a height becomes a candidate, and candidates a result.
#pragma once

#include <limits>

#include "primitives/simd_distance.h"

namespace n0::morph {

template <typename Element>
struct GrayDilation {
    using T = Element;
    static constexpr T kNothingLeft = std::numeric_limits<T>::lowest();
    KPR_INLINE static Vec<T> raise(Vec<T> v, Vec<T> height) { return plus(v, height); }  // by a height of at least 0
    KPR_INLINE static Vec<T> lower(Vec<T> v, Vec<T> depth) { return subtractSaturated(v, depth); }
    KPR_INLINE static Vec<T> join(Vec<T> a, Vec<T> b) { return larger(a, b); }

    KPR_INLINE static Vec<T> plus(Vec<T> a, Vec<T> b) {
        if constexpr (std::is_integral_v<T>) return addSaturated(a, b);
        if constexpr (!std::is_integral_v<T>) return a + b;
    }
};

template <typename Element>
struct GrayErosion {
    using T = Element;
    static constexpr T kNothingLeft = std::numeric_limits<T>::max();
    KPR_INLINE static Vec<T> raise(Vec<T> v, Vec<T> height) { return subtractSaturated(v, height); }
    KPR_INLINE static Vec<T> lower(Vec<T> v, Vec<T> depth) { return GrayDilation<T>::plus(v, depth); }
    KPR_INLINE static Vec<T> join(Vec<T> a, Vec<T> b) { return smaller(a, b); }
};

}  // namespace n0::morph
