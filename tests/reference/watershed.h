// Watersheds as they are told: the queue with a list for each level, the sweeps with a byte of dirt for each pixel.
#pragma once

#include <list>

#include "tests/reference/segment.h"

namespace reference {

// Labels and relief of one image, with walls around the labels.
template <typename T, typename Label>
struct Flood {
    KprSize size;
    std::vector<T> relief;
    std::vector<Label> labels;

    static constexpr Label kWall = static_cast<Label>(-1);
    bool holds(int x, int y) const { return x >= 0 && y >= 0 && x < size.width && y < size.height; }
    std::size_t index(int x, int y) const { return std::size_t(y) * size.width + x; }
    Label label(int x, int y) const { return holds(x, y) ? labels[index(x, y)] : kWall; }
    bool real(Label label) const { return label != 0 && label != kWall; }
};

template <typename Label>
void queueWatershed(Flood<Kpr8u, Label>& f, int norm, int flag) {
    const int neighbours = norm == 0 ? 8 : 4;
    std::list<KprPoint> buckets[256];
    for (int y = 0; y < f.size.height; ++y) {
        for (int x = 0; x < f.size.width; ++x) {
            const Label own = f.label(x, y);
            if (own == 0) continue;
            bool open = false, meets = false;
            for (int i = 0; i < 8; ++i) {
                const Label other = f.label(x + kNeighbours[i][0], y + kNeighbours[i][1]);
                if (i < neighbours && other == 0) open = true;
                const bool tested = i < 4 ? (flag & 192) != 0 : (flag & 128) != 0;
                if (tested && own != f.kWall && f.real(other) && other != own) meets = true;
            }
            if (open) buckets[f.relief[f.index(x, y)]].push_back({x, y});
            if (meets) f.labels[f.index(x, y)] = f.kWall;
        }
    }
    for (int level = 0; level < 256; ++level) {
        while (!buckets[level].empty()) {
            const KprPoint p = buckets[level].front();
            buckets[level].pop_front();
            for (int i = 0; i < neighbours; ++i) {
                const int x = p.x + kNeighbours[i][0], y = p.y + kNeighbours[i][1];
                if (f.label(x, y) != 0) continue;
                buckets[std::max<int>(level, f.relief[f.index(x, y)])].push_back({x, y});
                Label label = f.label(p.x, p.y);
                if ((flag & 192) != 0) {
                    std::vector<Label> around;
                    for (int j = 0; j < ((flag & 64) != 0 ? 4 : 8); ++j) {
                        const Label other = f.label(x + kNeighbours[j][0], y + kNeighbours[j][1]);
                        if (f.real(other) && std::find(around.begin(), around.end(), other) == around.end())
                            around.push_back(other);
                    }
                    label = around.size() == 1 ? around[0] : f.kWall;
                }
                f.labels[f.index(x, y)] = label;
            }
        }
    }
}

// Walls in raster order, each pixel against its earlier neighbours: left, above, upper left, upper right.
template <typename T, typename Label, typename Later>
void drawWalls(Flood<T, Label>& f, bool diagonals, Later later) {
    for (int y = 0; y < f.size.height; ++y) {
        for (int x = 0; x < f.size.width; ++x) {
            for (int i : {0, 2, 4, 5}) {
                const int nx = x + kNeighbours[i][0], ny = y + kNeighbours[i][1];
                if ((i >= 4 && !diagonals) || !f.holds(nx, ny)) continue;
                Label &own = f.labels[f.index(x, y)], &other = f.labels[f.index(nx, ny)];
                if (own == f.kWall || other == f.kWall || own == other) continue;
                (later(f.index(nx, ny), f.index(x, y)) ? other : own) = f.kWall;
            }
        }
    }
}

inline constexpr int kParents[10][2] = {{0, 0},  {1, 0},  {1, -1}, {0, -1}, {-1, -1},
                                        {-1, 0}, {-1, 1}, {0, 1},  {1, 1},  {0, 0}};

// From which neighbours, by their codes, a pixel may take its cost on the way right or left of a pass down or up.
inline std::vector<int> sources(int family, int x, int width, bool rightward, bool down) {
    const int vertical = down ? 3 : 7;
    if (!rightward) return family == 4 ? std::vector<int>{1} : std::vector<int>{1, vertical};
    if (x == 0) return {vertical};
    if (family != 8) return {5, vertical};
    std::vector<int> all = {5, down ? 4 : 6, vertical};
    if (x < width - 1) all.push_back(down ? 2 : 8);
    return all;
}

template <typename Label>
class IntegerSweeps {
  public:
    IntegerSweeps(Flood<Kpr8u, Label>& f, int norm) : f_(f), w_(f.size.width), h_(f.size.height) {
        if (w_ == 1) norm = 1;
        family_ = norm == 1 ? 4 : norm == 3 ? 0 : 8;
        side_ = norm == 2 ? 10 : norm == 3 ? 63 : 0;
        corner_ = norm == 2 ? 14 : 0;
        cost.assign(f.labels.size(), 0x7fc00000);
        code_.assign(f.labels.size(), 9);
        dirty_.assign(f.labels.size(), 0);
        rows_.assign(std::size_t(h_), 1);
        for (std::size_t i = 0; i < cost.size(); ++i) {
            if (f.labels[i] == 0) continue;
            cost[i] = f.relief[i] << 23;
            code_[i] = 0;
        }
    }

    void run() {
        for (int x = 1; x < w_; ++x) take(x, 0, {5}, true);
        for (int x = w_ - 2; x >= 0; --x) take(x, 0, {1}, false);
        if (h_ == 1) return;
        for (int y = 1; y < h_; ++y) {
            for (int x = 0; x < w_; ++x) take(x, y, sources(family_, x, w_, true, true), true);
            for (int x = w_ - 2; x >= 0; --x) take(x, y, sources(family_, x, w_, false, true), false);
        }
        for (int y = h_ - 2; y >= 0; --y) visit(y, false, false);
        for (int changes = 1; changes != 0;) {
            for (int y = 1; y < h_; ++y) visit(y, true, true);
            changes = 0;
            for (int y = h_ - 2; y >= 0; --y) changes += visit(y, false, true);
        }
    }

    std::vector<int> cost;

  private:
    struct Way {
        int cost, code;
    };

    Way best(int x, int y, const std::vector<int>& from) const {
        const auto sum = [&](int c) {
            const auto [dx, dy] = kParents[c];
            return cost[f_.index(x + dx, y + dy)] + (dx != 0 && dy != 0 ? corner_ : side_);
        };
        Way way = {sum(from[0]), from[0]};
        for (int c : from) {
            if (sum(c) < way.cost) way = {sum(c), c};
        }
        static const int gain[] = {19, 18, 18, 17, 17, 16, 16, 15, 15, 14, 14, 14, 13, 13, 12, 12, 11,
                                   11, 11, 10, 10, 9,  9,  9,  8,  8,  8,  7,  7,  7,  6,  6,  6,  5,
                                   5,  5,  4,  4,  4,  4,  3,  3,  3,  3,  2,  2,  2,  2,  2,  1,  1,
                                   1,  1,  1,  1,  1,  0,  0,  0,  0,  0,  0,  0,  0,  0};
        if (family_ == 0 && from.size() == 2) {
            const int apart = std::abs(sum(from[0]) - sum(from[1]));
            if (apart <= 63) way.cost -= gain[apart];
        }
        return {std::max(way.cost + 1, f_.relief[f_.index(x, y)] << 23), way.code};
    }

    void take(int x, int y, const std::vector<int>& from, bool always) {
        const std::size_t i = f_.index(x, y);
        if (code_[i] == 0) return;
        const Way way = best(x, y, from);
        if (!always && way.cost >= cost[i]) return;
        cost[i] = way.cost;
        code_[i] = way.code;
        f_.labels[i] = f_.labels[f_.index(x + kParents[way.code][0], y + kParents[way.code][1])];
    }

    bool visit(int y, bool down, bool checking) {
        if (checking && rows_[std::size_t(y)] == 0) return false;
        bool changed = false;
        for (int x = 0; x < w_; ++x) changed |= settle(x, y, true, down, checking);
        for (int x = w_ - 2; x >= 0; --x) changed |= settle(x, y, false, down, checking);
        rows_[std::size_t(y)] = 0;
        for (int other : {y - 1, y + 1}) {
            if (changed && other >= 0 && other < h_) rows_[std::size_t(other)] = 1;
        }
        return changed;
    }

    bool settle(int x, int y, bool rightward, bool down, bool checking) {
        const std::size_t i = f_.index(x, y);
        if (code_[i] == 0 || (checking && dirty_[i] == 0)) return false;
        const Way way = best(x, y, sources(family_, x, w_, rightward, down));
        const Label parent = f_.labels[f_.index(x + kParents[code_[i]][0], y + kParents[code_[i]][1])];
        dirty_[i] = 0;
        if (way.cost < cost[i]) {
            cost[i] = way.cost;
            code_[i] = way.code;
            f_.labels[i] = f_.labels[f_.index(x + kParents[way.code][0], y + kParents[way.code][1])];
        } else if (parent != f_.labels[i]) {
            f_.labels[i] = parent;
        } else {
            return false;
        }
        for (int n = 0; n < (family_ == 8 ? 8 : 4); ++n) {
            const int nx = x + kNeighbours[n][0], ny = y + kNeighbours[n][1];
            if (f_.holds(nx, ny)) dirty_[f_.index(nx, ny)] = 1;
        }
        return true;
    }

    Flood<Kpr8u, Label>& f_;
    int w_, h_, family_, side_, corner_;
    std::vector<int> code_;
    std::vector<char> dirty_, rows_;
};

class FloatSweeps {
  public:
    FloatSweeps(Flood<Kpr32f, Kpr16u>& f, int norm) : f_(f), w_(f.size.width), h_(f.size.height) {
        if (w_ == 1) norm = 1;
        family_ = norm == 1 ? 4 : norm == 3 ? 0 : 8;
        side_ = norm == 2 ? 10 : norm == 3 ? 255 : 0;
        corner_ = norm == 2 ? 14 : 0;
        level.assign(f.labels.size(), std::numeric_limits<float>::max());
        distance.assign(f.labels.size(), 0);
        code_.assign(f.labels.size(), 9);
        for (std::size_t i = 0; i < level.size(); ++i) {
            if (f.labels[i] == 0) continue;
            level[i] = f.relief[i];
            code_[i] = 0;
        }
    }

    void run() {
        visit(0, 0);
        if (h_ == 1) return;
        for (int y = 1; y < h_; ++y) visit(y, 1);
        visit(h_ - 1, 0);
        std::vector<char> flags(std::size_t(h_), 0);
        const auto visitAndFlag = [&](int y, int direction) {
            const bool changed = visit(y, direction);
            flags[std::size_t(y)] = 0;
            for (int other : {y - 1, y + 1}) {
                if (changed && other >= 0 && other < h_) flags[std::size_t(other)] = 1;
            }
        };
        for (int y = h_ - 2; y >= 0; --y) visitAndFlag(y, -1);
        const auto any = [&] { return std::count(flags.begin(), flags.end(), 1) != 0; };
        for (int direction = 1; any(); direction = -direction) {
            for (int i = 1; i < h_; ++i) {
                const int y = direction > 0 ? i : h_ - 1 - i;
                if (flags[std::size_t(y)]) visitAndFlag(y, direction);
            }
        }
    }

    std::vector<float> level;
    std::vector<int> distance;

  private:
    struct Way {
        float level;
        long sum;
        int code;
    };

    // `direction` +1 for a pass down, -1 up, 0 for a row alone.
    bool visit(int y, int direction) {
        bool changed = false;
        const auto from = [&](int x, bool rightward) {
            auto all = sources(family_, x, w_, rightward, direction > 0);
            if (direction == 0)
                all.erase(std::remove_if(all.begin(), all.end(), [](int c) { return c != 1 && c != 5; }), all.end());
            return all;
        };
        for (int x = 0; x < w_; ++x) changed |= settle(x, y, from(x, true));
        for (int x = w_ - 2; x >= 0; --x) changed |= settle(x, y, from(x, false));
        return changed;
    }

    bool settle(int x, int y, const std::vector<int>& from) {
        const std::size_t i = f_.index(x, y);
        if (code_[i] == 0) return false;
        Way best = {std::numeric_limits<float>::max(), 0x7fffffff, 9};
        std::vector<Way> present;
        for (int c : from) {
            const auto [dx, dy] = kParents[c];
            const std::size_t n = f_.index(x + dx, y + dy);
            if (f_.labels[n] == 0) continue;
            const Way way = {level[n], distance[n] + (dx != 0 && dy != 0 ? corner_ : side_), c};
            present.push_back(way);
            if (way.level < best.level || (way.level == best.level && way.sum < best.sum)) best = way;
        }
        if (family_ == 0 && present.size() == 2 && present[0].level == present[1].level) {
            const double a = double(present[0].sum), b = double(present[1].sum);
            if (std::abs(a - b) <= 255)
                best.sum = long(std::trunc(0.5 * (a + b + std::sqrt(131072 - (a - b) * (a - b))) + 0.5)) - 255;
        }
        const float relief = f_.relief[i];
        if (best.code != 9) {
            const bool rises = relief > best.level;
            const float l = rises ? relief : best.level;
            const int d = rises ? 0 : int(best.sum + 1);
            if (f_.labels[i] == 0 || l < level[i] || (l == level[i] && d < distance[i])) {
                level[i] = l;
                distance[i] = d;
                code_[i] = best.code;
                f_.labels[i] = f_.labels[f_.index(x + kParents[best.code][0], y + kParents[best.code][1])];
                return true;
            }
        }
        const std::size_t parent = f_.index(x + kParents[code_[i]][0], y + kParents[code_[i]][1]);
        if (f_.labels[parent] == f_.labels[i]) return false;
        f_.labels[i] = f_.labels[parent];
        if (level[i] == relief && distance[i] <= 1) return true;
        if (level[i] == level[parent]) {
            distance[i] = distance[parent] + 1;
        } else {
            level[i] = std::max(relief, level[parent]);
            distance[i] = 0;
        }
        return true;
    }

    Flood<Kpr32f, Kpr16u>& f_;
    int w_, h_, family_, side_, corner_;
    std::vector<int> code_;
};

template <typename Label>
void sweptWatershed(Flood<Kpr8u, Label>& f, int norm, int flag) {
    IntegerSweeps<Label> sweeps(f, norm);
    sweeps.run();
    const auto later = [&](std::size_t a, std::size_t b) { return sweeps.cost[a] > sweeps.cost[b]; };
    if ((flag & 192) != 0) drawWalls(f, (flag & 64) == 0, later);
}

inline void sweptWatershed(Flood<Kpr32f, Kpr16u>& f, int norm, int flag) {
    FloatSweeps sweeps(f, norm);
    sweeps.run();
    const auto later = [&](std::size_t a, std::size_t b) {
        return sweeps.level[a] != sweeps.level[b] ? sweeps.level[a] > sweeps.level[b]
                                                  : sweeps.distance[a] > sweeps.distance[b];
    };
    if ((flag & 192) != 0) drawWalls(f, (flag & 128) != 0, later);
}

}  // namespace reference
