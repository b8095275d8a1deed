// Oracles of the image kit, a pixel at a time.
#pragma once

#include <kprcv/types.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace reference {

// exact * 2^-scaleFactor to the nearest integer, ties to even, and to the nearest value of T. Doubles hold every exact
// result and every power of two on the way.
template <typename T>
T scaled(Kpr64s exact, int scaleFactor) {
    using Limits = std::numeric_limits<T>;
    const int exponent = -std::clamp(scaleFactor, -500, 500);
    const double rounded = std::nearbyint(std::ldexp(static_cast<double>(exact), exponent));
    return static_cast<T>(std::clamp(rounded, double{Limits::lowest()}, double{Limits::max()}));
}

template <typename T>
T subtract(T src1, T src2, int scaleFactor) {
    const Kpr64s difference = Kpr64s{src2} - src1;
    return scaled<T>(std::is_unsigned_v<T> ? std::max<Kpr64s>(difference, 0) : difference, scaleFactor);
}

template <typename T>
T convert(Kpr32f src, bool toZero, int scaleFactor) {
    if (std::isnan(src)) return 0;
    const double value = std::ldexp(double{src}, -std::clamp(scaleFactor, -500, 500));
    const double rounded = toZero ? std::trunc(value) : std::nearbyint(value);
    return static_cast<T>(std::clamp(rounded, 0.0, double{std::numeric_limits<T>::max()}));
}

}  // namespace reference
