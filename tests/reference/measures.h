// Oracles of the corner measures, a pixel at a time.
#pragma once

#include <kprcv.h>

#include <cmath>

#include "tests/reference/filter.h"

namespace reference {

struct Tensor {
    float xx, yy, xy;
};

inline float smallerEigenvalue(Tensor mean, float s) {
    const auto [a, b, c] = mean;
    return (0.5F * s) * (a + b - std::sqrt(std::fma(a - b, a - b, 4.0F * (c * c))));
}

struct Eigen {
    float values[6];
};
inline Eigen eigenvectors(Tensor mean, float s) {
    const float a = mean.xx * s, b = mean.yy * s, c = mean.xy * s, t = c * c;
    const float det = a * b - t, sq = std::sqrt((a - b) * (a - b) + 4.0F * t), m = 0.001F * std::max(a, b);
    if (m > det || m > std::min(a, b)) return {};
    const float l1 = 0.5F * (a + b + sq), l2 = 0.5F * (a + b - sq);
    if (m > std::fabs(c)) return {{l1, l2, 0, 1, 1, 0}};
    const auto inverse = [&](float u) { return 1.0F / std::max(std::sqrt(t + u * u), 1.1920929e-07F); };
    const float u1 = l1 - a, u2 = l2 - a, n1 = inverse(u1), n2 = inverse(u2);
    return {{l1, l2, c * n1, u1 * n1, c * n2, u2 * n2}};
}

inline float harris(Tensor mean, float k, float factor) {
    const auto [a, b, c] = mean;
    const float t = a + b;
    return factor * std::fma(-t, k * t, std::fma(a, b, -(c * c)));
}

}  // namespace reference
