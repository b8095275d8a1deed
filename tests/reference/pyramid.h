// Pyramids: the rules of sizes and pixels, one at a time.
#pragma once

#include <kprcv.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <map>
#include <type_traits>
#include <vector>

namespace reference {

struct Sides {
    std::int64_t least, most;
};

inline Sides sidesAbove(std::int64_t s, float rate) {
    const auto least = static_cast<std::int64_t>(static_cast<float>(s - 1) * rate) + 1;
    const auto most = static_cast<std::int64_t>(static_cast<float>(s) * rate);
    return {s == 1 ? 1 : std::max(least, s + 1), std::max(most, s + 1)};
}

inline int sideBelow(int s, float rate) {
    auto d = static_cast<std::int64_t>(static_cast<float>(s) / rate + 0.5F);
    if (d <= 0) d = 1;
    for (;;) {
        const Sides range = sidesAbove(d, rate);
        if (s < range.least)
            --d;
        else if (s > range.most)
            ++d;
        else
            return static_cast<int>(d);
    }
}

inline KprSize sizeBelow(KprSize size, float rate) {
    return {sideBelow(size.width, rate), sideBelow(size.height, rate)};
}

// Pixels of the source and their weights along one axis, for each pixel of the destination.
struct LayerAxis {
    struct Pixel {
        std::map<int, float> weights;
        int base;
    };
    std::vector<Pixel> pixels;

    template <typename Tap>
    LayerAxis(bool down, float rate, int src, int dst, const std::vector<Tap>& kernel) {
        double sum = 0;
        for (Tap tap : kernel) sum += static_cast<double>(tap);
        const auto n = static_cast<int>(kernel.size());
        const auto place = [&](int i) {
            const double x = down ? double(i) * double{rate} : double(i) / double{rate};
            return std::min(x, double(src - 1));
        };
        const auto reflected = [](int i, int size) {  // ... 1 0 0 1 2 ...
            const int m = ((i % (2 * size)) + 2 * size) % (2 * size);
            return m < size ? m : 2 * size - 1 - m;
        };
        for (int i = 0; i < dst; ++i) {
            std::map<int, double> weights;
            const auto put = [&](double x, int shift, double tap) {
                const int whole = static_cast<int>(std::floor(x));
                const double f = x - whole;
                weights[reflected(whole + shift, src)] += tap * (1.0 - f);
                if (f > 0) weights[reflected(whole + 1 + shift, src)] += tap * f;
            };
            for (int t = 0; t < n; ++t) {
                const double tap = static_cast<double>(kernel[static_cast<std::size_t>(t)]) / sum;
                if (down)
                    put(place(i), t - n / 2, tap);
                else
                    put(place(reflected(i + t - n / 2, dst)), 0, tap);
            }
            Pixel pixel{{}, static_cast<int>(std::floor(place(i)))};
            for (const auto& [index, weight] : weights) pixel.weights[index] = static_cast<float>(weight);
            pixels.push_back(pixel);
        }
    }

    // Of a row or column that `at` reads.
    template <typename T>
    float sum(int i, auto at) const {
        const Pixel& pixel = pixels[static_cast<std::size_t>(i)];
        const auto weighted = [&](float from) {
            float sum = 0;
            for (const auto& [index, weight] : pixel.weights) {
                if (weight != 0.0F) sum = std::fma(weight, at(index) - from, sum);
            }
            return sum;
        };
        if constexpr (!std::is_same_v<T, Kpr32f>) return weighted(0.0F);
        const float a = at(pixel.base), near = a + weighted(a);
        return std::isfinite(near) ? near : weighted(0.0F);
    }
};

template <typename T>
class PyramidLayer {
  public:
    template <typename Tap>
    PyramidLayer(bool down, float rate, KprSize src, KprSize dst, const std::vector<Tap>& kernel)
        : width_(src.width),
          columns_(down, rate, src.width, dst.width, kernel),
          rows_(down, rate, src.height, dst.height, kernel) {}

    // Row y of the destination: `at(x, y)` reads the source.
    std::vector<T> row(int y, auto at) const {
        std::vector<float> sums;
        for (int x = 0; x < width_; ++x)
            sums.push_back(rows_.sum<T>(y, [&](int row) { return static_cast<float>(at(x, row)); }));
        std::vector<T> result;
        for (std::size_t x = 0; x < columns_.pixels.size(); ++x) {
            const float v = columns_.sum<T>(static_cast<int>(x),
                                            [&](int column) { return sums[static_cast<std::size_t>(column)]; });
            if constexpr (std::is_same_v<T, Kpr32f>)
                result.push_back(v);
            else
                result.push_back(static_cast<T>(
                    std::clamp(std::floor(double{v} + 0.5), 0.0, double{std::numeric_limits<T>::max()})));
        }
        return result;
    }

  private:
    int width_;
    LayerAxis columns_, rows_;
};

}  // namespace reference
