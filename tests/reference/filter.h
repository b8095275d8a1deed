// Oracles of the linear filters, a pixel at a time.
#pragma once

#include <kprcv.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <type_traits>
#include <vector>

namespace reference {

template <typename T>
T saturated(double value) {
    return static_cast<T>(std::clamp(value, static_cast<double>(std::numeric_limits<T>::min()),
                                     static_cast<double>(std::numeric_limits<T>::max())));
}

// The sum of tap(i) * pixel(i) as the separable stages form it.
template <typename Dst, typename Tap, typename Pixel>
Dst tapSum(const Tap* kernel, int kernelSize, int divisor, bool truncates, Pixel pixel) {
    if constexpr (std::is_floating_point_v<Dst>) {
        float sum = kernel[0] * pixel(0);
        for (int i = 1; i < kernelSize; ++i) sum = std::fma(kernel[i], pixel(i), sum);
        return sum;
    } else {
        std::uint32_t sum = 0;
        for (int i = 0; i < kernelSize; ++i)
            sum += static_cast<std::uint32_t>(kernel[i]) * static_cast<std::uint32_t>(pixel(i));
        const float inverse = 1.0F / static_cast<float>(divisor);
        const float scaled = static_cast<float>(static_cast<std::int32_t>(sum)) * inverse;
        return saturated<Dst>(truncates ? std::trunc(scaled) : std::nearbyint(scaled));
    }
}

// The Gaussian's kernels: whole, in floats, as the border form divides it, and half, as the large form does.
inline std::vector<float> gaussian(int kernelSize, float sigma) {
    const float twoSigmaSquared = (sigma + sigma) * sigma;
    std::vector<float> g;
    float sum = 0.0F;
    for (int i = 0; i < kernelSize; ++i) {
        const auto x = static_cast<float>(i - kernelSize / 2);
        g.push_back(static_cast<float>(std::exp(static_cast<double>(-(x * x) / twoSigmaSquared))));
        sum += g.back();
    }
    for (float& tap : g) tap /= sum;
    return g;
}
inline std::vector<Kpr16s> integerGaussian(int kernelSize, float sigma, int scale) {
    std::vector<Kpr16s> taps;
    for (float tap : gaussian(kernelSize, sigma))
        taps.push_back(static_cast<Kpr16s>(static_cast<int>(double{tap * static_cast<float>(scale)} + 0.5)));
    return taps;
}
inline std::vector<float> halfGaussian(int kernelSize, float sigma) {
    const float twoSigmaSquared = (sigma + sigma) * sigma;
    std::vector<float> w;
    float sum = 0.0F;
    for (int x = kernelSize / 2; x > 0; --x) {
        const auto distance = static_cast<float>(x);
        w.push_back(static_cast<float>(std::exp(static_cast<double>(-(distance * distance) / twoSigmaSquared))));
        sum = std::fma(w.back(), 2.0F, sum);
    }
    w.push_back(1.0F);
    sum = 1.0F + sum;
    for (float& tap : w) tap /= sum;
    return w;
}

// One pass of the large form; pixel(i) lies under tap i.
template <typename Pixel>
float halfTapSum(const std::vector<float>& w, Pixel pixel) {
    const int r = static_cast<int>(w.size()) - 1;
    const auto s = [&](int d) { return static_cast<float>(pixel(r - d) + pixel(r + d)); };
    const auto c = static_cast<float>(pixel(r));
    if (r == 1) return std::fma(s(1), w[0], w[1] * c);
    if (r == 2) return std::fma(c, w[2], std::fma(s(2), w[0], w[1] * s(1)));
    if (r == 3) return std::fma(c, w[3], std::fma(s(1), w[2], std::fma(s(3), w[0], w[1] * s(2))));
    float acc = w[0] * s(r);
    for (int i = 1; i < r; ++i) acc = std::fma(s(r - i), w[static_cast<std::size_t>(i)], acc);
    return std::fma(c, w.back(), acc);
}

template <typename Dst>
Dst largeResult(float value, std::size_t half) {
    if constexpr (std::is_floating_point_v<Dst>) {
        return value;
    } else {
        if (std::is_same_v<Dst, Kpr16s> && half == 3) return static_cast<Dst>(static_cast<int>(std::nearbyint(value)));
        return saturated<Dst>(std::nearbyint(value));
    }
}

}  // namespace reference
