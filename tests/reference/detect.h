// Oracles of integral images, window deviations and stages of rectangle features, an element at a time.
#pragma once

#include <kprcv.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <vector>

namespace reference {

inline Kpr32s wrapped(std::int64_t value) { return static_cast<Kpr32s>(static_cast<std::uint32_t>(value)); }

// A table of `width` columns, read and written by (x, y).
template <typename T>
struct Table {
    int width;
    std::vector<T> elements;

    Table(int w, int h, T value) : width(w), elements(static_cast<std::size_t>(w) * h, value) {}
    T& operator()(int x, int y) { return elements[static_cast<std::size_t>(y) * width + x]; }
};

// ---- upright

// The row sums that end at each pixel, as each type adds them up; pixel(x) may be squared already.
template <typename T, typename Pixel>
std::vector<T> rowSums(int width, Pixel pixel) {
    std::vector<T> sums(static_cast<std::size_t>(width));
    T sum = 0;
    for (int x = 0; x < width; ++x) {
        if constexpr (std::is_same_v<T, Kpr32f>) {  // of bytes: blocks of sixteen
            int block = 0;
            for (int i = x / 16 * 16; i <= x; ++i) block += pixel(i);
            sums[x] = sum + static_cast<float>(block);
            if (x % 16 == 15) sum = sums[x];
        } else if constexpr (std::is_same_v<T, Kpr64f>) {
            sums[x] = sum += pixel(x);
        } else {
            sums[x] = sum = wrapped(std::int64_t{sum} + pixel(x));
        }
    }
    return sums;
}

inline std::vector<float> floatRowSums(const float* s, int width) {
    std::vector<float> sums(static_cast<std::size_t>(width));
    float sum = 0;
    int x = 0;
    for (; x + 8 <= width; x += 8) {
        const float* p = s + x;
        float b[8];
        for (int four = 0; four < 8; four += 4) {
            b[four] = p[four];
            b[four + 1] = p[four + 1] + p[four];
            b[four + 2] = (p[four + 2] + p[four + 1]) + p[four];
            b[four + 3] = (p[four + 3] + p[four + 2]) + (p[four + 1] + p[four]);
        }
        for (int i = 4; i < 8; ++i) b[i] += b[3];
        for (int i = 0; i < 8; ++i) sums[x + i] = sum + b[i];
        sum = sums[x + 7];
    }
    for (; x < width; ++x) sums[x] = sum += s[x];
    return sums;
}

template <typename T>
T added(T a, T b) {
    if constexpr (std::is_integral_v<T>)
        return wrapped(std::int64_t{a} + b);
    else
        return a + b;
}

// sumsOf(y) gives the row sums of source row y.
template <typename T, typename SumsOf>
Table<T> integral(KprSize size, T value, SumsOf sumsOf) {
    Table<T> table(size.width + 1, size.height + 1, value);
    for (int y = 0; y < size.height; ++y) {
        const std::vector<T> sums = sumsOf(y);
        for (int x = 0; x < size.width; ++x) table(x + 1, y + 1) = added(sums[x], table(x + 1, y));
    }
    return table;
}

// ---- tilted

enum class TiltedOrder { PixelsLast, AboveSecond, PixelsFirst };

template <typename T>
T tiltedElement(T left, T right, T above, int pixels, TiltedOrder order) {
    if constexpr (std::is_integral_v<T>) {
        return wrapped(std::int64_t{left} + right - above + pixels);
    } else {
        const double l = left, r = right, a = above, p = pixels;
        if (order == TiltedOrder::PixelsLast) return static_cast<T>(((l + r) - a) + p);
        if (order == TiltedOrder::AboveSecond) return static_cast<T>(((l - a) + r) + p);
        return static_cast<T>(((p + l) + r) - a);
    }
}

template <typename T, typename Pixel>
Table<T> tiltedIntegral(KprSize size, T value, TiltedOrder order, Pixel pixel) {
    const int w = size.width;
    Table<T> t(w + 2, size.height + 2, value);
    for (int r = 2; r < size.height + 2; ++r) {
        t(0, r) = t(1, r - 1);
        t(w + 1, r) = t(w, r - 1);
        for (int j = 0; j < w; ++j) {
            const int pixels = pixel(j, r - 2) + (j + 1 < w ? pixel(j + 1, r - 2) : 0);
            t(j + 1, r) = tiltedElement(t(j, r - 1), t(j + 2, r - 1), t(j + 1, r - 2), pixels, order);
        }
    }
    return t;
}

// ---- deviations

template <typename T>
T rectSum(const T (&at)[4]) {
    if constexpr (std::is_integral_v<T>)
        return wrapped(std::int64_t{at[0]} - at[1] - at[2] + at[3]);
    else
        return (at[0] - at[1]) - (at[2] - at[3]);
}

template <typename T>
float deviation(const T (&src)[4], const double (&sqr)[4], double area) {
    const double inverse = 1.0 / area;
    const double mean = inverse * static_cast<double>(rectSum(src)), meanSq = inverse * rectSum(sqr);
    const auto variance = static_cast<float>(std::fma(-mean, mean, meanSq));
    return std::sqrt(variance < 0 ? 0.0F : variance);
}

inline Kpr32s deviation(const Kpr32s (&src)[4], const Kpr32s (&sqr)[4], double area, int scaleFactor) {
    const float inverse = 1.0F / static_cast<float>(area);
    const float mean = inverse * static_cast<float>(rectSum(src)), meanSq = inverse * static_cast<float>(rectSum(sqr));
    const float variance = std::fma(-mean, mean, meanSq);
    const float root = std::sqrt(variance < 0 ? 0.0F : variance);
    const float result = std::fma(root, std::ldexp(1.0F, -scaleFactor), 0.5F);
    return result < 0x1p31F ? static_cast<Kpr32s>(result) : std::numeric_limits<Kpr32s>::min();
}

// ---- stages

template <typename V>
struct Rectangle {
    KprPoint corner[4];
    V weight;
    bool tilted;
};

template <typename V>
struct Classifier {
    std::vector<Rectangle<V>> rectangles;
    V threshold, below, above;
};

enum class Sums { Chained, Lanes };

// A feature's four elements are element(rectangle, corner). Windows in the last columns pair them.
template <typename Element>
float floatSum(const Classifier<float>& c, Sums sums, bool paired, Element element) {
    float lane[16] = {};
    for (std::size_t k = 0; k < c.rectangles.size(); ++k) {
        const auto& r = c.rectangles[k];
        const auto s = [&](int i) { return element(r, i); };
        float rect;
        if constexpr (std::is_integral_v<decltype(s(0))>)
            rect = static_cast<float>(wrapped(std::int64_t{s(0)} - s(1) - s(2) + s(3)));
        else
            rect = paired ? (s(0) - s(1)) - (s(2) - s(3)) : ((s(0) - s(1)) - s(2)) + s(3);
        float& acc = lane[sums == Sums::Lanes ? k % 16 : 0];
        acc = std::fma(r.weight, rect, acc);
    }
    float acc = lane[0];
    if (sums == Sums::Lanes) {
        float a[4], b[4], p[2];
        for (int i = 0; i < 4; ++i) a[i] = lane[i] + lane[i + 8];
        for (int i = 0; i < 4; ++i) b[i] = lane[i + 12] + lane[i + 4];
        for (int i = 0; i < 2; ++i) p[i] = (b[i + 2] + a[i]) + (b[i] + a[i + 2]);
        acc = p[1] + p[0];
    }
    return acc;
}

template <typename Element>
float floatVote(const Classifier<float>& c, float norm, Sums sums, bool paired, Element element) {
    const float acc = floatSum(c, sums, paired, element);
    const float bound = c.threshold * norm;
    return bound > acc ? c.below : c.above;
}

template <typename Element>
Kpr32s integerVote(const Classifier<Kpr32s>& c, Kpr32s norm, int shift, Element element) {
    std::uint64_t acc = 0;
    for (const auto& r : c.rectangles) {
        const auto s = [&](int i) { return std::int64_t{element(r, i)}; };
        acc += static_cast<std::uint64_t>(std::int64_t{r.weight} * wrapped(s(0) - s(1) - s(2) + s(3)));
    }
    const auto shifted = static_cast<std::int64_t>(shift < 64 ? acc << shift : 0);
    return shifted < std::int64_t{c.threshold} * norm ? c.below : c.above;
}

}  // namespace reference
