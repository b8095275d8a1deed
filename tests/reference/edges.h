// Oracles of the edge detectors and of the joining of colour gradients, a pixel at a time.
#pragma once

#include <kprcv.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <utility>
#include <vector>

namespace reference {

// The direction of a gradient: 1 level, 2 slanted with unlike signs, 3 upright, 4 slanted with like signs.
inline int edgeCode(float dx, float dy) {
    const float adx = std::fabs(dx), ady = std::fabs(dy);
    if (2.4142137F * adx < ady) return 3;
    if (ady < 0.41421357F * adx) return 1;
    return std::signbit(dx) == std::signbit(dy) ? 4 : 2;
}
inline int edgeCodeByAngle(int dx, int dy) {
    double angle = std::atan2(static_cast<double>(dy), static_cast<double>(dx));
    if (angle < 0) angle += 3.1415927;
    if (angle < 0.39269909) return 1;
    if (angle <= 1.1780972) return 4;
    if (angle < 1.9634955) return 3;
    if (angle <= 2.7488937) return 2;
    return 1;
}

struct EdgePixel {
    double magnitude;  // 0 where it was cut
    int code;
};

// The map: pixels that are largest along their gradient, from those above `high` on.
template <typename PixelAt>
std::vector<Kpr8u> edgeMap(int width, int height, PixelAt pixelAt, double high) {
    std::vector<EdgePixel> pixels;
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) pixels.push_back(pixelAt(x, y));
    }
    const auto inside = [=](int x, int y) { return x >= 0 && x < width && y >= 0 && y < height; };
    const auto index = [=](int x, int y) { return static_cast<std::size_t>(y) * width + x; };
    const auto magnitude = [&](int x, int y) { return inside(x, y) ? pixels[index(x, y)].magnitude : 0.0; };
    std::vector<char> survives(pixels.size());
    std::vector<Kpr8u> map(pixels.size());
    std::vector<std::pair<int, int>> waiting;
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const auto [m, code] = pixels[index(x, y)];
            if (m == 0) continue;
            const int dx = code == 3 ? 0 : code == 2 ? -1 : 1, dy = code == 1 ? 0 : 1;
            const double behind = magnitude(x - dx, y - dy), ahead = magnitude(x + dx, y + dy);
            if (!(m > behind && (m > ahead || (code % 2 == 1 && m == ahead)))) continue;
            survives[index(x, y)] = 1;
            if (m > high) {
                map[index(x, y)] = 255;
                waiting.emplace_back(x, y);
            }
        }
    }
    while (!waiting.empty()) {
        const auto [x, y] = waiting.back();
        waiting.pop_back();
        for (int v = y - 1; v <= y + 1; ++v) {
            for (int u = x - 1; u <= x + 1; ++u) {
                if (!inside(u, v) || survives[index(u, v)] == 0 || map[index(u, v)] != 0) continue;
                map[index(u, v)] = 255;
                waiting.emplace_back(u, v);
            }
        }
    }
    return map;
}

// A derivative of an 8-bit image by `smooth` across it and `derive` along it.
template <typename At>
int derivative(At at, int x, int y, bool across, const std::vector<int>& smooth, const std::vector<int>& derive) {
    const int n = static_cast<int>(smooth.size()), r = n / 2;
    int sum = 0;
    for (int j = 0; j < n; ++j) {
        for (int i = 0; i < n; ++i) {
            const int weight = across ? derive[static_cast<std::size_t>(i)] * smooth[static_cast<std::size_t>(j)]
                                      : smooth[static_cast<std::size_t>(i)] * derive[static_cast<std::size_t>(j)];
            sum += weight * at(x + i - r, y + j - r);
        }
    }
    return sum;
}

}  // namespace reference
