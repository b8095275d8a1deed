// Structuring elements that the benchmarks of morphology share.
#pragma once

#include <vector>

#include "bench/support/bench.h"

namespace bench {

enum class Shape { Rectangle, Disc };

inline std::vector<Kpr8u> maskOf(int side, Shape shape) {
    std::vector<Kpr8u> mask;
    const double r = side * 0.5;
    for (int y = 0; y < side; ++y) {
        for (int x = 0; x < side; ++x) {
            const double u = x + 0.5 - r, v = y + 0.5 - r;
            mask.push_back(shape == Shape::Rectangle || u * u + v * v <= r * r ? 1 : 0);
        }
    }
    return mask;
}

}  // namespace bench
