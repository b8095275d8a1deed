// Fills, labels and floods a pixel at a time.
#pragma once

#include <kprcv.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <deque>
#include <functional>
#include <queue>
#include <vector>

namespace reference {

// Offsets of neighbours: the four beside, above and below, then those at the corners.
inline constexpr int kNeighbours[8][2] = {{-1, 0}, {1, 0}, {0, -1}, {0, 1}, {-1, -1}, {1, -1}, {-1, 1}, {1, 1}};

template <typename T>
struct Picture {
    KprSize size;
    int channels;
    std::vector<T> pixels;

    const T* at(int x, int y) const { return &pixels[(std::size_t(y) * size.width + x) * channels]; }
    T* at(int x, int y) { return &pixels[(std::size_t(y) * size.width + x) * channels]; }
    bool holds(int x, int y) const { return x >= 0 && y >= 0 && x < size.width && y < size.height; }
};

struct Filled {
    double area = 0;
    KprRect rect = {0, 0, 0, 0};
    std::vector<char> map;
};

// All pixels that can be reached from the seed by steps from a pixel to its neighbour that `joins(from, to)` allows.
template <typename T, typename Joins>
Filled reach(const Picture<T>& image, KprPoint seed, int neighbours, Joins joins) {
    Filled result;
    const auto [w, h] = image.size;
    result.map.assign(std::size_t(w) * h, 0);
    std::deque<KprPoint> open = {seed};
    result.map[std::size_t(seed.y) * w + seed.x] = 1;
    int left = w, right = -1, top = h, bottom = -1;
    while (!open.empty()) {
        const KprPoint p = open.front();
        open.pop_front();
        result.area += 1;
        left = std::min(left, p.x), right = std::max(right, p.x);
        top = std::min(top, p.y), bottom = std::max(bottom, p.y);
        for (int i = 0; i < neighbours; ++i) {
            const int x = p.x + kNeighbours[i][0], y = p.y + kNeighbours[i][1];
            if (!image.holds(x, y) || result.map[std::size_t(y) * w + x] != 0) continue;
            if (!joins(image.at(p.x, p.y), image.at(x, y))) continue;
            result.map[std::size_t(y) * w + x] = 1;
            open.push_back({x, y});
        }
    }
    result.rect = {left, top, right - left + 1, bottom - top + 1};
    return result;
}

// The fill in its told order, with a stack that begins again at 0 when it is full; capacity 0 is no bound.
inline Filled fillInOrder(KprSize size, std::vector<char> passes, KprPoint seed, int neighbours, long capacity) {
    struct Span {
        int row, left, right, parentLeft, parentRight, direction;
    };
    const auto [w, h] = size;
    Filled result;
    result.map.assign(std::size_t(w) * h, 0);
    const auto at = [&, w = w](int x, int y) { return std::size_t(y) * w + x; };
    const auto take = [&](int x, int y) {
        passes[at(x, y)] = 0;
        result.map[at(x, y)] = 1;
        result.area += 1;
    };
    const auto grow = [&, w = w](int x, int y, int& left, int& right) {
        for (left = x; left > 0 && passes[at(left - 1, y)]; --left) take(left - 1, y);
        for (right = x; right < w - 1 && passes[at(right + 1, y)]; ++right) take(right + 1, y);
    };
    std::vector<Span> stack(capacity > 0 ? capacity : long(w) * h + 1);
    long count = 0;
    const auto push = [&](Span span) {
        stack[count++] = span;
        if (count == capacity) count = 0;
    };
    int left = 0, right = 0;
    take(seed.x, seed.y);
    grow(seed.x, seed.y, left, right);
    result.rect = {left, seed.y, right - left + 1, 1};
    if (h == 1 || capacity == 1) return result;
    push({seed.y, left, right, right + 1, right, seed.y == h - 1 ? -1 : 1});
    int minX = w, maxX = -1, minY = h, maxY = -1;
    const int reach = neighbours == 8 ? 1 : 0;
    while (count > 0) {
        const Span s = stack[--count];
        minX = std::min(minX, s.left), maxX = std::max(maxX, s.right);
        minY = std::min(minY, s.row), maxY = std::max(maxY, s.row);
        const auto scan = [&](int y, int from, int to, int direction) {
            for (int x = from; x <= to; ++x) {
                if (!passes[at(x, y)]) continue;
                int l = 0, r = 0;
                take(x, y);
                grow(x, y, l, r);
                push({y, l, r, s.left, s.right, direction});
                x = r + 1;
            }
        };
        const int from = std::max(s.left - reach, 0), to = std::min(s.right + reach, w - 1);
        const int back = s.row - s.direction, forward = s.row + s.direction;
        if (back >= 0 && back < h) scan(back, from, to, s.direction);
        if (forward >= 0 && forward < h) {
            scan(forward, from, s.parentLeft - 1, -s.direction);
            scan(forward, std::max(s.parentRight + 1, from), to, -s.direction);
        }
    }
    result.rect = {minX, minY, maxX - minX + 1, maxY - minY + 1};
    return result;
}

// Labels of connected pixels: `joins(a, b)` is asked of neighbours only. 0 where `counts(pixel)` is false.
template <typename T, typename Counts, typename Joins>
std::vector<int> components(const Picture<T>& image, int neighbours, Counts counts, Joins joins) {
    const auto [w, h] = image.size;
    std::vector<int> labels(std::size_t(w) * h, 0);
    int next = 0;
    for (int y = 0; y < h; ++y) {
        for (int x = 0; x < w; ++x) {
            if (labels[std::size_t(y) * w + x] != 0 || !counts(*image.at(x, y))) continue;
            const auto region = reach(image, {x, y}, neighbours,
                                      [&](const T* from, const T* to) { return counts(*to) && joins(*from, *to); });
            ++next;
            for (std::size_t i = 0; i < labels.size(); ++i) {
                if (region.map[i]) labels[i] = next;
            }
        }
    }
    return labels;
}

// Walls drawn in raster order, in place.
template <typename T>
void boundSegments(Picture<T>& image, T wall, bool diagonals) {
    const auto [w, h] = image.size;
    for (int y = 0; y < h; ++y) {
        for (int x = 0; x < w; ++x) {
            for (int i : {0, 2, 4, 5}) {  // left, above, upper left, upper right
                const int nx = x + kNeighbours[i][0], ny = y + kNeighbours[i][1];
                if ((i >= 4 && !diagonals) || !image.holds(nx, ny)) continue;
                if (*image.at(nx, ny) != wall && *image.at(nx, ny) != *image.at(x, y)) {
                    *image.at(x, y) = wall;
                    break;
                }
            }
        }
    }
}

// Growing along colour steps: every offer waits in a heap by its level and its turn; one for a pixel that has a label
// by then is dropped.
inline void colourSteps(const Picture<Kpr8u>& image, std::vector<Kpr8u>& marker, int neighbours) {
    struct Offer {
        int level;
        long turn;
        int x, y;
        Kpr8u label;
        bool operator<(const Offer& other) const {
            return level != other.level ? level > other.level : turn > other.turn;
        }
    };
    std::priority_queue<Offer> waiting;
    long turn = 0;
    const auto [w, h] = image.size;
    const auto at = [&, w = w](int x, int y) -> Kpr8u& { return marker[std::size_t(y) * w + x]; };
    const auto offer = [&](int x, int y) {
        for (int i = 0; i < neighbours; ++i) {
            const int nx = x + kNeighbours[i][0], ny = y + kNeighbours[i][1];
            if (!image.holds(nx, ny) || at(nx, ny) != 0) continue;
            int level = 0;
            for (int c = 0; c < image.channels; ++c)
                level = std::max(level, std::abs(image.at(x, y)[c] - image.at(nx, ny)[c]));
            waiting.push({level, turn++, nx, ny, at(x, y)});
        }
    };
    for (int y = 0; y < h; ++y) {
        for (int x = 0; x < w; ++x) {
            if (at(x, y) != 0 && at(x, y) != 255) offer(x, y);
        }
    }
    while (!waiting.empty()) {
        const Offer best = waiting.top();
        waiting.pop();
        if (at(best.x, best.y) != 0) continue;
        at(best.x, best.y) = best.label;
        offer(best.x, best.y);
    }
}

// Walls on labelled pixels with a right or lower neighbour of another label, decided before any is drawn.
inline void wallsBetween(KprSize size, std::vector<Kpr8u>& marker, bool diagonals) {
    const auto before = marker;
    const auto [w, h] = size;
    for (int y = 0; y < h; ++y) {
        for (int x = 0; x < w; ++x) {
            const Kpr8u label = before[std::size_t(y) * w + x];
            for (int i : {1, 3, 6, 7}) {
                const int nx = x + kNeighbours[i][0], ny = y + kNeighbours[i][1];
                if ((i >= 4 && !diagonals) || nx < 0 || nx >= w || ny >= h || label == 0) continue;
                const Kpr8u other = before[std::size_t(ny) * w + nx];
                if (other != label && other != 0 && other != 255) marker[std::size_t(y) * w + x] = 255;
            }
        }
    }
}

}  // namespace reference
