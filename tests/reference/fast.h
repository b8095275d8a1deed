// Oracle of the fast corners, a pixel at a time, on the walk round the circle that the rule describes.
#pragma once

#include <kprcv.h>

#include <algorithm>
#include <cmath>
#include <vector>

namespace reference {

// From straight below toward the left and on. A quadrant says it all, but for the flaw of the largest circle.
inline std::vector<KprPoint> circle(int radius) {
    const std::vector<KprPoint> quadrants[] = {
        {{0, 1}, {1, 1}, {1, 0}},
        {{0, 2}, {1, 2}, {2, 1}, {2, 0}},
        {{0, 3}, {1, 3}, {2, 2}, {3, 1}, {3, 0}},
        {{0, 5}, {1, 5}, {2, 5}, {3, 4}, {4, 3}, {5, 2}, {5, 1}, {5, 0}},
        {{0, 7}, {1, 7}, {2, 7}, {3, 6}, {4, 6}, {5, 5}, {6, 4}, {6, 3}, {7, 2}, {7, 1}, {7, 0}},
        {{0, 9},
         {1, 9},
         {2, 9},
         {3, 9},
         {4, 8},
         {5, 8},
         {6, 7},
         {7, 6},
         {8, 5},
         {8, 4},
         {9, 3},
         {9, 2},
         {9, 1},
         {9, 0}}};
    std::vector<KprPoint> right;
    for (const auto& quadrant : quadrants) {
        if (quadrant[0].y == radius) right = quadrant;
    }
    for (int i = static_cast<int>(right.size()) - 2; i >= 0; --i) right.push_back({right[i].x, -right[i].y});
    std::vector<KprPoint> points;
    for (const KprPoint& p : right) points.push_back({-p.x, p.y});
    for (int i = static_cast<int>(right.size()) - 2; i >= 1; --i) points.push_back(right[i]);
    if (radius == 9) points[12] = {-9, -1};
    return points;
}

struct Fast {
    int radius, arc, bins, option;
    float threshold;
};

struct FastPixel {
    int byte = 0, score = 0;
};

// `at(dx, dy)` is the image around the pixel.
template <typename At>
FastPixel fastPixel(const Fast& fast, At at) {
    const auto points = circle(fast.radius);
    const int n = static_cast<int>(points.size()), t = static_cast<int>(std::min(fast.threshold, 1e6F));
    std::vector<int> d;
    for (const KprPoint& p : points) d.push_back(at(p.x, p.y) - at(0, 0));
    FastPixel result;
    for (int sign : {1, -1}) {
        for (int start = 0; start < n; ++start) {
            int least = 255;
            for (int j = 0; j < fast.arc; ++j) least = std::min(least, sign * d[(start + j) % n]);
            if (least <= t) continue;
            result.byte = sign > 0 ? 0x40 : 0x80;
            result.score = std::max(result.score, least);
        }
    }
    if (result.byte != 0 && (fast.option & 1)) {
        const float step = 6.2831855F / static_cast<float>(n);
        float a = 0, b = 0;
        for (int i = 0; i < n; ++i) {
            const double angle = static_cast<float>(i) * step;
            a += static_cast<float>(double(d[i]) * static_cast<float>(std::sin(angle)));
            b += static_cast<float>(double(d[i]) * static_cast<float>(std::cos(angle)));
        }
        double angle = std::atan2(double{b}, double{a});
        if (angle < 0) angle += 6.283185307179586;
        result.byte |= static_cast<int>(angle * (static_cast<float>(fast.bins) * 0.15915494F)) & 0x3f;
    }
    return result;
}

}  // namespace reference
