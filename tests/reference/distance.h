// Oracles of distance fields and of inpainting, a pixel at a time. Images are vectors, row by row.
#pragma once

#include <kprcv.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <vector>

namespace reference {

template <typename T>
struct Field {
    KprSize size;
    std::vector<T> values;

    explicit Field(KprSize s, T value = {}) : size(s), values(static_cast<std::size_t>(s.width) * s.height, value) {}

    bool holds(int x, int y) const { return x >= 0 && y >= 0 && x < size.width && y < size.height; }
    T& at(int x, int y) { return values.at(static_cast<std::size_t>(y) * size.width + x); }
    const T& at(int x, int y) const { return values.at(static_cast<std::size_t>(y) * size.width + x); }
};

// The nearest zero is sought along each column first, then among the columns.
inline Field<float> exactDistance(const Field<Kpr8u>& image) {
    const int width = image.size.width, height = image.size.height;
    Field<std::int64_t> column(image.size, -1);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            for (int away = 0; away < height && column.at(x, y) < 0; ++away) {
                for (int j : {y - away, y + away}) {
                    if (image.holds(x, j) && image.at(x, j) == 0) column.at(x, y) = away;
                }
            }
        }
    }
    Field<float> result(image.size, 3.4028235e38F);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            std::int64_t nearest = -1;
            for (int i = 0; i < width; ++i) {
                const std::int64_t dx = x - i, dy = column.at(i, y);
                if (dy >= 0 && (nearest < 0 || dx * dx + dy * dy < nearest)) nearest = dx * dx + dy * dy;
            }
            if (nearest >= 0) result.at(x, y) = static_cast<float>(std::sqrt(static_cast<double>(nearest)));
        }
    }
    return result;
}

// Two passes over the neighbours that come earlier and later. Integers are summed in 64 bits.
template <typename T, typename Weight>
Field<T> chamferDistance(const Field<Kpr8u>& image, int kernel, std::vector<Weight> weights) {
    using Sum = std::conditional_t<std::is_integral_v<T>, std::int64_t, float>;
    const int width = image.size.width, height = image.size.height;
    if (width > 1 && height > 1) weights[0] = std::min(weights[0], weights[1]);
    struct Neighbour {
        int dx, dy;
        Sum weight;
    };
    const auto a = static_cast<Sum>(weights[0]), b = static_cast<Sum>(weights[1]);
    std::vector<Neighbour> earlier = {{-1, 0, a}, {0, -1, a}, {-1, -1, b}, {1, -1, b}};
    if (kernel == 5) {
        for (auto [dx, dy] : {std::pair{-2, -1}, {2, -1}, {-1, -2}, {1, -2}})
            earlier.push_back({dx, dy, static_cast<Sum>(weights[2])});
    }
    Field<T> result(image.size, std::numeric_limits<T>::max());
    const auto pass = [&](int sign, auto visits) {
        const int pixels = width * height;
        for (int i = 0; i < pixels; ++i) {
            const int at = sign > 0 ? i : pixels - 1 - i, x = at % width, y = at / width;
            if (!visits(x, y)) continue;
            for (const Neighbour& n : earlier) {
                if (!image.holds(x + sign * n.dx, y + sign * n.dy)) continue;
                const Sum sum = static_cast<Sum>(result.at(x + sign * n.dx, y + sign * n.dy)) + n.weight;
                if (sum < static_cast<Sum>(result.at(x, y))) result.at(x, y) = static_cast<T>(sum);
            }
        }
    };
    pass(1, [&](int x, int y) {
        if (image.at(x, y) == 0) result.at(x, y) = 0;
        return image.at(x, y) != 0;
    });
    pass(-1, [](int, int) { return true; });
    return result;
}

// The sweeps with all their flags, every pixel looked at.
class FastMarching {
  public:
    FastMarching(const Field<Kpr8u>& mask, float radius)
        : mask_(mask), radius_(radius), field_(mask.size), flags_(mask.size), rows_(mask.size.height, 1) {}

    Field<float> run() {
        const auto [width, height] = mask_.size;
        field_.at(0, 0) = mask_.at(0, 0) != 0 ? 999999.0F : 0.0F;
        for (int y = 0; y < height; ++y) {
            for (int x = y == 0 ? 1 : 0; x < width; ++x) take(x, y, -1, -1, true, true);
            for (int x = width - 2; x >= 0; --x) take(x, y, 1, -1, true, false);
        }
        for (int y = height - 2; y >= 0; --y) {
            for (int x = 0; x < width; ++x) {
                if (take(x, y, -1, 1, false, false)) mark(x, y, false);
            }
            for (int x = width - 2; x >= 0; --x) {
                if (take(x, y, 1, 1, false, false)) mark(x, y, false);
            }
        }
        while (sweep(true) && sweep(false)) ++sweeps;
        return field_;
    }
    int sweeps = 0;  // pairs of them that changed something

  private:
    static float root(float d) { return std::sqrt(std::fma(-d, d, 2.0F)); }

    // Takes the neighbour dx along the row and the one dy along the column; true if that was better.
    bool take(int x, int y, int dx, int dy, bool firstPass, bool fresh) {
        const bool across = field_.holds(x + dx, y), along = field_.holds(x, y + dy);
        float a = along ? field_.at(x, y + dy) : 0, b = across ? field_.at(x + dx, y) : 0;
        float& value = field_.at(x, y);
        if (mask_.at(x, y) != 0) {
            if (firstPass) a = std::max(a, 0.0F), b = std::max(b, 0.0F);
            const float next = !along                    ? 1.0F + b
                               : !across                 ? 1.0F + a
                               : std::abs(a - b) >= 1.0F ? 1.0F + std::min(a, b)
                                                         : 0.5F * (a + b + root(a - b));
            if (!fresh && next >= value) return false;
            value = next;
            return true;
        }
        if (radius_ == 0 || (a == 0 && b == 0)) return false;
        float next;
        if (a > 0 || b > 0)
            next = -1e-10F;
        else if (a == 0 || b == 0)
            next = a + b - 1.0F;
        else
            next = std::abs(a - b) < 1.0F ? 0.5F * (a + b - root(a - b)) : std::max(a, b) - 1.0F;
        if (next < -(radius_ + 1e-5F) || (value != 0 && next <= value)) return false;
        value = next;
        return true;
    }

    void mark(int x, int y, bool down) {
        const auto set = [&](int i, int j, int bits) {
            if (field_.holds(i, j)) flags_.at(i, j) |= bits;
        };
        set(x + 1, y, down ? 4 : 1);
        set(x - 1, y, down ? 8 : 2);
        set(x, y - 1, 12);
        set(x, y + 1, 3);
    }

    bool sweep(bool down) {
        const auto [width, height] = mask_.size;
        bool any = false;
        for (int i = 1; i < height; ++i) {
            const int y = down ? i : height - 1 - i;
            if (rows_[y] == 0) continue;
            bool changed = false;
            for (int way : {1, -1}) {
                const int bit = (down ? 1 : 4) * (way > 0 ? 1 : 2);
                bool goesOn = false;
                for (int x = way > 0 ? 0 : width - 1; x >= 0 && x < width; x += way) {
                    const bool visited = goesOn || (flags_.at(x, y) & bit) != 0;
                    flags_.at(x, y) &= ~bit;
                    goesOn = visited && take(x, y, -way, down ? -1 : 1, false, false);
                    if (goesOn) mark(x, y, down), changed = true;
                }
            }
            rows_[y] = changed;
            if (changed && y > 0) rows_[y - 1] = 1;
            if (changed && y + 1 < height) rows_[y + 1] = 1;
            any |= changed;
        }
        return any;
    }

    Field<Kpr8u> mask_;
    float radius_;
    Field<float> field_;
    Field<int> flags_;
    std::vector<int> rows_;
};

// Fills the pixels of the mask in the order of the distances. The sums run in sixteen lanes, by columns of the disc.
inline Field<Kpr8u> inpaint(Field<Kpr8u> image, const Field<Kpr8u>& mask, const Field<float>& distance, float radius,
                            int method) {
    const int width = image.size.width, height = image.size.height;
    Field<Kpr8u> unknown = mask;
    Field<int> gx(image.size), gy(image.size);
    const auto known = [&](int x, int y) { return image.holds(x, y) && unknown.at(x, y) == 0; };
    const auto slope = [&](int x, int y, int dx, int dy) {
        const bool after = known(x + dx, y + dy), before = known(x - dx, y - dy);
        if (after && before) return image.at(x + dx, y + dy) - image.at(x - dx, y - dy);
        if (after) return 2 * (image.at(x + dx, y + dy) - image.at(x, y));
        return before ? 2 * (image.at(x, y) - image.at(x - dx, y - dy)) : 0;
    };
    const auto setGradient = [&](int x, int y) {
        gx.at(x, y) = slope(x, y, 1, 0);
        gy.at(x, y) = slope(x, y, 0, 1);
    };
    std::vector<KprPoint> order;
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            if (mask.at(x, y) != 0)
                order.push_back({x, y});
            else
                setGradient(x, y);
        }
    }
    std::stable_sort(order.begin(), order.end(), [&](KprPoint p, KprPoint q) {
        const float a = distance.at(p.x, p.y), b = distance.at(q.x, q.y);
        return std::isnan(b) ? !std::isnan(a) : a < b;
    });
    const int reachX = static_cast<int>(std::min<float>(radius, static_cast<float>(width - 1)));
    const int reachY = static_cast<int>(std::min<float>(radius, static_cast<float>(height - 1)));
    for (const KprPoint p : order) {
        float weights[16] = {}, sums[16] = {};
        for (int dy = -reachY; dy <= reachY; ++dy) {
            for (int dx = -reachX; dx <= reachX; ++dx) {
                const double squared = double(dx) * dx + double(dy) * dy;
                const int x = p.x + dx, y = p.y + dy;
                if (!known(x, y) || squared > double(radius) * radius) continue;
                const double base = method == 0 ? 1 / (squared * std::sqrt(squared)) : 1 / (1 + squared * squared);
                const int c = std::abs(dy * gx.at(x, y) - dx * gy.at(x, y));
                float length = static_cast<float>(gx.at(x, y) * gx.at(x, y) + gy.at(x, y) * gy.at(x, y));
                if (method == 1) length *= static_cast<float>(squared);
                const float along = c == 0 ? 1e-6F : static_cast<float>(c) / std::sqrt(length);
                const float weight = static_cast<float>(base) * along;
                weights[(dx + reachX) % 16] += weight;
                sums[(dx + reachX) % 16] += weight * image.at(x, y);
            }
        }
        for (int half = 8; half > 0; half /= 2) {
            for (int i = 0; i < half; ++i) weights[i] += weights[i + half], sums[i] += sums[i + half];
        }
        float weight = weights[0], sum = sums[0];
        if (weight < 1e-4F) {
            int sides = 0, total = 0;
            for (auto [dx, dy] : {std::pair{1, 0}, {-1, 0}, {0, 1}, {0, -1}}) {
                if (known(p.x + dx, p.y + dy)) ++sides, total += image.at(p.x + dx, p.y + dy);
            }
            if (sides > 0) weight = static_cast<float>(sides), sum = static_cast<float>(total);
        }
        image.at(p.x, p.y) = static_cast<Kpr8u>(std::min(sum / (weight + 1e-30F) + 0.5F, 255.0F));
        unknown.at(p.x, p.y) = 0;
        setGradient(p.x, p.y);
    }
    return image;
}

}  // namespace reference
