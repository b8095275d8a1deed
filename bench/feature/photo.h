// What features are measured on: a photograph at any size, and its edges.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <string>

#include "bench/support/bench.h"
#include "examples/tour/image.h"

namespace bench {

// The part of the photographer that has the size's shape, enlarged or reduced with straight lines between pixels.
inline tour::Gray photo(KprSize size) {
    const tour::Gray from = tour::readGray(std::string(KPRCV_PHOTOS_DIR) + "/camera.png");
    const double scale = std::min(double(from.width) / size.width, double(from.height) / size.height);
    tour::Gray to(size.width, size.height);
    for (int y = 0; y < size.height; ++y) {
        const double v = std::min((y + 0.5) * scale, from.height - 1.001);
        const int top = static_cast<int>(v);
        for (int x = 0; x < size.width; ++x) {
            const double u = std::min((x + 0.5) * scale, from.width - 1.001);
            const int left = static_cast<int>(u);
            const auto across = [&](int row) {
                return from.at(left, row) * (left + 1 - u) + from.at(left + 1, row) * (u - left);
            };
            to.at(x, y) = static_cast<Kpr8u>(std::lround(across(top) * (top + 1 - v) + across(top + 1) * (v - top)));
        }
    }
    return to;
}

// 255 where the gradient is above the threshold and largest along its stronger axis.
inline tour::Gray edges(const tour::Gray& image, int threshold) {
    const auto gradient = [&](int x, int y, int& dx, int& dy) {
        const auto at = [&](int i, int j) {
            return int{image.at(std::clamp(x + i, 0, image.width - 1), std::clamp(y + j, 0, image.height - 1))};
        };
        dx = at(1, -1) + 2 * at(1, 0) + at(1, 1) - at(-1, -1) - 2 * at(-1, 0) - at(-1, 1);
        dy = at(-1, 1) + 2 * at(0, 1) + at(1, 1) - at(-1, -1) - 2 * at(0, -1) - at(1, -1);
        return std::abs(dx) + std::abs(dy);
    };
    tour::Gray map(image.width, image.height);
    for (int y = 0; y < image.height; ++y) {
        for (int x = 0; x < image.width; ++x) {
            int dx = 0, dy = 0, unused = 0;
            const int m = gradient(x, y, dx, dy);
            if (m <= threshold) continue;
            const int i = std::abs(dx) > std::abs(dy) ? 1 : 0, j = 1 - i;
            const bool largest =
                m > gradient(x - i, y - j, unused, unused) && m >= gradient(x + i, y + j, unused, unused);
            if (largest) map.at(x, y) = 255;
        }
    }
    return map;
}

}  // namespace bench
