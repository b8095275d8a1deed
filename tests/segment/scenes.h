// Regions of every awkward shape, as maps of 0 and 1.
#pragma once

#include <vector>

#include "tests/support/guarded_image.h"

namespace test {

enum class Scene { Noise, Dense, Comb, Ladder, Spiral, Checkers, Blobs, Full, Count };

inline std::vector<char> drawScene(Scene scene, KprSize size, Random& random) {
    const auto [w, h] = size;
    std::vector<char> map(std::size_t(w) * h);
    const auto at = [&, w = w](int x, int y) -> char& { return map[std::size_t(y) * w + x]; };
    const int period = random.range(2, 5);
    const int cx = random.range(0, w - 1), cy = random.range(0, h - 1), r = std::max(w, h) / 3 + 1;
    for (int y = 0; y < h; ++y) {
        for (int x = 0; x < w; ++x) {
            switch (scene) {
                case Scene::Noise:
                    at(x, y) = random.range(0, 9) < 6;
                    break;
                case Scene::Dense:
                    at(x, y) = !random.oneIn(12);
                    break;
                case Scene::Comb:
                    at(x, y) = y == 0 || x % 2 == 0;
                    break;
                case Scene::Ladder:
                    at(x, y) = y % period == 0 || (x + (y % period == 1 ? 1 : 0)) % 2 == 0;
                    break;
                case Scene::Checkers:
                    at(x, y) = (x + y) % 2 == 0;
                    break;
                case Scene::Blobs: {
                    const int dx = x - cx, dy = y - cy, d = dx * dx + dy * dy;
                    at(x, y) = d < r * r && (d > r * r / 5 || (dx + dy) % 7 == 0);
                    break;
                }
                default:
                    at(x, y) = 1;
            }
        }
    }
    if (scene == Scene::Spiral) {
        // Walls two apart, wound inward from the left edge of row 1.
        int x = 0, y = 1, dx = 1, dy = 0, runX = w - 2, runY = h - 3;
        while (runX > 0 && runY > 0) {
            const int run = dx != 0 ? runX : runY;
            for (int i = 0; i < run; ++i, x += dx, y += dy) {
                if (x >= 0 && y >= 0 && x < w && y < h) at(x, y) = 0;
            }
            (dx != 0 ? runX : runY) -= 2;
            const int turned = dx;
            dx = -dy;
            dy = turned;
        }
    }
    return map;
}

}  // namespace test
