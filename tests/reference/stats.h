// Oracles of the pixel differences and accumulators, a pixel at a time.
#pragma once

#include <kprcv.h>

#include <cmath>
#include <cstdlib>
#include <type_traits>

namespace reference {

template <typename T>
T absDiff(T a, T b) {
    if constexpr (std::is_floating_point_v<T>) {
        return std::fabs(a - b);
    } else {
        return static_cast<T>(std::abs(int{a} - int{b}));
    }
}

// The accumulators: `m` is null in the plain forms.
inline float add(float a, float d, const Kpr8u* m) {
    return m == nullptr ? d + a : std::fma(*m != 0 ? 1.0F : 0.0F, a, d);
}

inline float addProduct(float a, float b, float d, const Kpr8u* m) {
    if (m == nullptr) return std::fma(a, b, d);
    const float product = a * b;
    return std::fma(*m != 0 ? 1.0F : 0.0F, product, d);
}

inline float addWeighted(float a, float d, float alpha, const Kpr8u* m) {
    const float change = a - d;
    return std::fma(m == nullptr || *m != 0 ? alpha : 0.0F, change, d);
}

}  // namespace reference
