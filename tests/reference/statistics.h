// Oracles of the masked statistics, a pixel at a time. A pixel that is not selected counts as 0 in the sums.
#pragma once

#include <kprcv.h>

#include <array>
#include <cmath>
#include <functional>
#include <limits>
#include <type_traits>

namespace reference {

// What is summed of the pixel at (x, y), or nothing.
template <typename T>
using PixelAt = std::function<T(int x, int y)>;

// Exact, whatever the order.
inline double sumOfIntegers(KprSize size, const PixelAt<long long>& at) {
    __int128 sum = 0;
    for (int y = 0; y < size.height; ++y) {
        for (int x = 0; x < size.width; ++x) sum += at(x, y);
    }
    return static_cast<double>(sum);
}

// Floats: lane x mod 32 in single precision along a row, widened at its end; the totals eight by eight.
inline double addLanes(const std::array<double, 32>& total, int first, int count) {
    double sum = 0;
    for (int group = first; group < first + count; group += 8) {
        double eight = 0;
        for (int lane = group; lane < group + 8; ++lane) eight += total[static_cast<std::size_t>(lane)];
        sum = group == first ? eight : sum + eight;
    }
    return sum;
}

inline double sumOfFloats(KprSize size, const PixelAt<float>& at) {
    std::array<double, 32> total{};
    for (int y = 0; y < size.height; ++y) {
        std::array<float, 32> row{};
        for (int x = 0; x < size.width; ++x) row[static_cast<std::size_t>(x % 32)] += at(x, y);
        for (std::size_t lane = 0; lane < 32; ++lane) total[lane] += static_cast<double>(row[lane]);
    }
    return addLanes(total, 0, 32);
}

// The same in batches of 120 steps of up to 32 pixels, which run on from row to row.
inline double sumOfFloatsInBatches(KprSize size, const PixelAt<float>& at) {
    std::array<double, 32> total{};
    std::array<float, 32> batch{};
    int steps = 0;
    const auto widen = [&] {
        for (std::size_t lane = 0; lane < 32; ++lane) total[lane] += static_cast<double>(batch[lane]);
        batch.fill(0.0F);
        steps = 0;
    };
    for (int y = 0; y < size.height; ++y) {
        for (int x = 0; x < size.width; ++x) {
            batch[static_cast<std::size_t>(x % 32)] += at(x, y);
            const bool endsStep = x % 32 == 31 || x + 1 == size.width;
            if (endsStep && ++steps == 120) widen();
        }
    }
    widen();
    return addLanes(total, 0, 32);
}

// Both moments of floats: pixels x and x + 16 of a step together.
inline std::pair<double, double> momentsOfFloats(KprSize size, const PixelAt<float>& at) {
    std::array<double, 32> total{};
    for (int y = 0; y < size.height; ++y) {
        std::array<float, 32> row{};
        for (int step = 0; step < size.width; step += 32) {
            for (int lane = 0; lane < 16; ++lane) {
                const auto pixel = [&](int x) { return x < size.width ? at(x, y) : 0.0F; };
                const float a = pixel(step + lane);
                const float b = pixel(step + 16 + lane);
                const float pair = a + b;
                const float square = b * b;
                row[static_cast<std::size_t>(lane)] += pair;
                row[static_cast<std::size_t>(16 + lane)] += std::fma(a, a, square);
            }
        }
        for (std::size_t lane = 0; lane < 32; ++lane) total[lane] += static_cast<double>(row[lane]);
    }
    return {addLanes(total, 0, 16), addLanes(total, 16, 16)};
}

inline double deviation(double mean, double meanOfSquares) {
    return std::sqrt(std::fabs(std::fma(-mean, mean, meanOfSquares)));
}

}  // namespace reference
