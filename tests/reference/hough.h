// Oracles of the searches for lines: votes and draws one by one, in the order that the rule tells.
#pragma once

#include <kprcv.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <vector>

namespace reference {

// Whether a pixel of the map is an edge point.
using Edge = std::function<bool(int x, int y)>;

struct LineResult {
    std::vector<KprRhoTheta> lines;
    bool more = false;
};

// Lines with index distLow <= r <= distHigh and angleLow <= k <= angleHigh; -1 for the largest there is.
inline LineResult houghLines(KprSize roi, const Edge& edge, KprRhoTheta delta, int threshold, std::size_t room,
                             int distLow = 0, int distHigh = -1, int angleLow = 0, int angleHigh = -1) {
    const int numRho = static_cast<int>(static_cast<float>(2 * (roi.width + roi.height) + 1) / delta.rho);
    const int numAngle = static_cast<int>(3.14159 / double{delta.theta}), offset = (numRho - 1) / 2;
    if (distHigh < 0) distHigh = numRho - 1;
    if (angleHigh < 0) angleHigh = numAngle - 1;
    std::vector<std::vector<int>> votes(static_cast<std::size_t>(numAngle) + 2,
                                        std::vector<int>(static_cast<std::size_t>(numRho) + 2));
    float theta = 0;
    for (int k = 0; k < numAngle; ++k, theta += delta.theta) {
        const double scale = double{1.0F / delta.rho} * 1024.0;
        const int sine = static_cast<int>(std::sin(double{theta}) * scale);
        const int cosine = static_cast<int>(std::cos(double{theta}) * scale);
        if (k < angleLow || k > angleHigh) continue;
        for (int y = 0; y < roi.height; ++y) {
            for (int x = 0; x < roi.width; ++x) {
                if (!edge(x, y)) continue;
                const unsigned sum = static_cast<unsigned>(x) * static_cast<unsigned>(cosine) +
                                     static_cast<unsigned>(y) * static_cast<unsigned>(sine) + 512U;
                const int r = (static_cast<int>(sum) >> 10) + offset;
                if (r >= distLow && r <= distHigh) ++votes[k + 1][r + 1];
            }
        }
    }
    struct Found {
        int r, k, m;
    };
    std::vector<Found> list;
    std::size_t offered = 0;
    for (int k = angleLow; k <= angleHigh; ++k) {
        const int worst = list.size() == room ? list.back().m : 0;
        for (int r = distLow; r <= distHigh; ++r) {
            const int i = k + 1, j = r + 1, m = votes[i][j];
            if (m <= threshold || m < worst || m <= votes[i][j - 1] || m < votes[i][j + 1] || m < votes[i + 1][j] ||
                m <= votes[i - 1][j])
                continue;
            ++offered;
            std::size_t at = 0;
            while (at < list.size() && list[at].m >= m) ++at;
            list.insert(list.begin() + static_cast<std::ptrdiff_t>(at), {r, k, m});
            if (list.size() > room) list.pop_back();
        }
    }
    LineResult result;
    for (const Found& f : list)
        result.lines.push_back({static_cast<float>(f.r - offset) * delta.rho, static_cast<float>(f.k) * delta.theta});
    result.more = offered > room;
    return result;
}

inline std::vector<KprLineSegment> houghSegments(KprSize roi, const Edge& edge, KprRhoTheta delta, int threshold,
                                                 int length, int gap, int room) {
    const int numRho = static_cast<int>(static_cast<float>(2 * (roi.width + roi.height) + 1) / delta.rho);
    const int numAngle = static_cast<int>(3.14159 / double{delta.theta}), offset = (numRho - 1) / 2;
    std::vector<float> sine, cosine;
    float theta = 0;
    for (int k = 0; k < numAngle; ++k, theta += delta.theta) {
        sine.push_back(static_cast<float>(std::sin(double{theta})));
        cosine.push_back(static_cast<float>(std::cos(double{theta})));
    }
    std::vector<std::vector<bool>> set(roi.height, std::vector<bool>(roi.width));
    std::vector<KprPoint> points;
    for (int y = 0; y < roi.height; ++y) {
        for (int x = 0; x < roi.width; ++x) {
            set[y][x] = edge(x, y);
            if (set[y][x]) points.push_back({x, y});
        }
    }
    const bool wide = points.size() >= 32767;
    std::vector<std::vector<int>> votes(numAngle, std::vector<int>(std::max(numRho, 0)));
    const auto counter = [&](int k, KprPoint p) -> int* {
        const float sum = static_cast<float>(p.x) * cosine[k] + static_cast<float>(p.y) * sine[k];
        const float index = std::nearbyint(sum / delta.rho) + static_cast<float>(offset);
        return index >= 0 && index < static_cast<float>(numRho) ? &votes[k][static_cast<int>(index)] : nullptr;
    };
    std::vector<KprLineSegment> lines;
    unsigned long long state = ~0ULL;
    while (!points.empty() && room > 0) {
        state = (state >> 32) + (state & 0xffffffffULL) * 4164903690ULL;
        const std::size_t index = (state & 0xffffffffULL) % points.size();
        const KprPoint start = points[index];
        points[index] = points.back();
        points.pop_back();
        if (!set[start.y][start.x]) continue;
        int most = 0, best = 0;
        for (int k = 0; k < numAngle; ++k) {
            int* const c = counter(k, start);
            if (c != nullptr && ++*c > most) {
                most = *c;
                best = k;
            }
        }
        if (most < threshold) continue;
        const float a = -sine[best], b = cosine[best];
        const bool alongX = std::fabs(a) > std::fabs(b);
        const long long slope =
            alongX ? std::llrint(b / std::fabs(a) * 65536.0F) : std::llrint(a / std::fabs(b) * 65536.0F);
        const int step = (alongX ? a : b) > 0 ? 1 : -1;
        const auto place = [&](int side, int i) -> KprPoint {
            const int sign = side == 0 ? 1 : -1;
            const long long fixed = ((alongX ? start.y : start.x) * 65536LL + 32768) + sign * slope * i;
            const int minor = static_cast<int>(fixed >> 16), major = (alongX ? start.x : start.y) + sign * step * i;
            return alongX ? KprPoint{major, minor} : KprPoint{minor, major};
        };
        int steps[2] = {0, 0};
        for (int side = 0; side < 2; ++side) {
            int missing = 0;
            for (int i = 0;; ++i) {
                const KprPoint p = place(side, i);
                if (p.x < 0 || p.y < 0 || p.x >= roi.width || p.y >= roi.height) break;
                if (set[p.y][p.x]) {
                    missing = 0;
                    steps[side] = i;
                } else if (++missing > gap) {
                    break;
                }
            }
        }
        const KprPoint p1 = place(0, steps[0]), p2 = place(1, steps[1]);
        const bool good = std::max(std::abs(p2.x - p1.x), std::abs(p2.y - p1.y)) >= length;
        for (int side = 0; side < 2; ++side) {
            for (int i = 0; i <= steps[side]; ++i) {
                const KprPoint p = place(side, i);
                if (!set[p.y][p.x]) continue;
                for (int k = 0; good && k < numAngle; ++k) {
                    if (int* const c = counter(k, p)) --*c;
                }
                set[p.y][p.x] = false;
            }
        }
        if (!good) continue;
        lines.push_back({p1.x, p1.y, p2.x, p2.y});
        const int count = static_cast<int>(lines.size());
        if (wide ? count > room : count >= room) break;
    }
    return lines;
}

}  // namespace reference
