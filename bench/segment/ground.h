// A picture as photographs are: large shapes, soft shading and a little noise, in any number of channels; and markers
// on a grid.
#pragma once

#include <cmath>
#include <vector>

#include "bench/support/bench.h"

namespace bench {

inline int hashOf(int x, int y) {
    unsigned v = static_cast<unsigned>(x) * 374761393U + static_cast<unsigned>(y) * 668265263U;
    v = (v ^ (v >> 13)) * 1274126177U;
    return static_cast<int>((v ^ (v >> 16)) & 0xffff);
}

inline Kpr8u sceneAt(int x, int y, int channel) {
    const int shape =
        (std::sin(x / 37.0 + channel) + std::sin(y / 29.0) > 0.4 ? 60 : 0) + (std::sin((x + y) / 71.0) > 0.2 ? 40 : 0);
    const double shade = 20 * std::sin(x / 200.0) + 15 * std::cos(y / 140.0 + channel);
    return static_cast<Kpr8u>(60 + shape + shade + hashOf(x, y * 3 + channel) % 5 + hashOf(x / 3, y / 3) % 4);
}

inline void drawScene(const Image<Kpr8u>& image, KprSize size, int channels) {
    for (int y = 0; y < size.height; ++y) {
        for (int x = 0; x < size.width * channels; ++x)
            image.data()[std::ptrdiff_t{y} * image.step() + x] = sceneAt(x / channels, y, x % channels);
    }
}

// The step to the right and lower neighbours: a relief.
inline void drawRelief(const Image<Kpr8u>& image, KprSize size) {
    for (int y = 0; y < size.height; ++y) {
        for (int x = 0; x < size.width; ++x) {
            const int v = sceneAt(x, y, 0);
            image.data()[std::ptrdiff_t{y} * image.step() + x] =
                static_cast<Kpr8u>(std::max(std::abs(v - sceneAt(x + 1, y, 0)), std::abs(v - sceneAt(x, y + 1, 0))));
        }
    }
}

// 80 markers of 5 x 5 pixels.
template <typename T>
void drawMarkers(const Image<T>& image, KprSize size) {
    for (int y = 0; y < size.height; ++y) {
        T* row = reinterpret_cast<T*>(reinterpret_cast<char*>(image.data()) + std::ptrdiff_t{y} * image.step());
        for (int x = 0; x < size.width; ++x) {
            const int cellX = x * 10 / size.width, cellY = y * 8 / size.height;
            const int dx = x - (2 * cellX + 1) * size.width / 20, dy = y - (2 * cellY + 1) * size.height / 16;
            row[x] = static_cast<T>(std::abs(dx) <= 2 && std::abs(dy) <= 2 ? 1 + cellY * 10 + cellX : 0);
        }
    }
}

}  // namespace bench
