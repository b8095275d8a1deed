// Oracles of morphology, a pixel at a time.
#pragma once

#include <kprcv.h>

#include <cmath>
#include <functional>
#include <optional>
#include <vector>

#include "tests/reference/border.h"

namespace reference {

// Of numbers the greater, +0 above -0; a NaN only if there is nothing else.
template <typename T>
T greater(T a, T b) {
    if constexpr (std::is_floating_point_v<T>) {
        if (std::isnan(a)) return b;
        if (std::isnan(b)) return a;
        if (a == b) return std::signbit(a) ? b : a;
    }
    return a > b ? a : b;
}
template <typename T>
T lesser(T a, T b) {
    if constexpr (std::is_floating_point_v<T>) {
        if (std::isnan(a)) return b;
        if (std::isnan(b)) return a;
        if (a == b) return std::signbit(a) ? a : b;
    }
    return a < b ? a : b;
}

struct StructuringElement {
    int width, height;
    std::vector<Kpr8u> bytes;
    bool turned = false;  // by 180 degrees

    bool copies() const {
        for (Kpr8u byte : bytes) {
            if (byte != 0) return width * height == 1;
        }
        return true;
    }
    int reachX() const { return width / 2; }
    int reachY() const { return height / 2; }

    // visit(x, y) with each tap's place relative to the pixel.
    template <typename Visit>
    void eachTap(Visit visit) const {
        for (int j = 0; j < height; ++j) {
            for (int i = 0; i < width; ++i) {
                if (bytes[static_cast<std::size_t>(j * width + i)] == 0) continue;
                const int x = i + (width % 2 == 0 ? 1 : 0) - reachX(), y = j + (height % 2 == 0 ? 1 : 0) - reachY();
                turned ? visit(-x, -y) : visit(x, y);
            }
        }
    }
};

// One stage: at(x, y) reads the source, memory around it included; `constant` is what the border word's constant is.
template <typename T>
struct Stage {
    bool dilation;
    StructuringElement element;
    KprBorderType word;
    T constant;
    KprSize size;
    std::function<T(int, int)> at;

    T outside() const {
        using Limits = std::numeric_limits<T>;
        if ((word & 15) == kprBorderDefault) return dilation ? Limits::lowest() : Limits::max();
        return constant;
    }

    T operator()(int x, int y) const {
        if (element.copies()) return at(x, y);
        std::optional<T> best;
        element.eachTap([&](int tapX, int tapY) {
            const auto column = columnIndex(word, x + tapX, size.width), row = rowIndex(word, y + tapY, size.height);
            const T value = column && row ? at(*column, *row) : outside();
            best = !best ? value : dilation ? greater(*best, value) : lesser(*best, value);
        });
        return *best;
    }
};

// Reconstruction by dilation, or by erosion: the rule pixel by pixel until nothing changes. Both images are width x
// height without gaps. A NaN is further than nothing and nothing is further than a NaN.
template <typename T>
void reconstruct(bool dilation, bool diagonals, KprSize size, const std::vector<T>& limit, std::vector<T>& marker) {
    const auto further = [&](T a, T b) { return dilation ? a > b : a < b; };
    for (std::size_t i = 0; i < marker.size(); ++i) {
        if (further(marker[i], limit[i])) marker[i] = limit[i];
    }
    const int count = size.width * size.height;
    bool changed = true;
    for (int pass = 0; changed; ++pass) {
        changed = false;
        for (int n = 0; n < count; ++n) {
            const int i = pass % 2 == 0 ? n : count - 1 - n;  // there and back, so that far ways are few passes
            const auto at = static_cast<std::size_t>(i);
            const int x = i % size.width, y = i / size.width;
            T value = marker[at];
            for (int dy = -1; dy <= 1; ++dy) {
                for (int dx = -1; dx <= 1; ++dx) {
                    const bool inside = x + dx >= 0 && x + dx < size.width && y + dy >= 0 && y + dy < size.height;
                    if (!inside || (dx != 0 && dy != 0 && !diagonals)) continue;
                    const T neighbour = marker[static_cast<std::size_t>(i + dy * size.width + dx)];
                    if (further(neighbour, value)) value = neighbour;
                }
            }
            if (further(value, limit[at])) value = limit[at];
            if (!further(value, marker[at])) continue;
            marker[at] = value;
            changed = true;
        }
    }
}

}  // namespace reference
