// Oracles of the linear filters, a pixel at a time.
#pragma once

#include <kprcv.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <optional>
#include <type_traits>

namespace reference {

// Where pixel `i` of an axis of `n` is read from; nothing for the border value.
inline std::optional<std::int64_t> extended(std::int64_t i, std::int64_t n, KprBorderType word, KprBorderType lowFlag,
                                            KprBorderType highFlag) {
    while (i < 0 || i >= n) {
        if ((word & (i < 0 ? lowFlag : highFlag)) != 0) return i;
        if ((word & 15) == kprBorderConstant) return std::nullopt;
        if ((word & 15) == kprBorderReplicate) return std::clamp<std::int64_t>(i, 0, n - 1);
        if (n == 1) return 0;
        i = i < 0 ? -i : 2 * n - 2 - i;
    }
    return i;
}
inline std::optional<std::int64_t> extendedX(std::int64_t x, std::int64_t width, KprBorderType word) {
    return extended(x, width, word, kprBorderInMemLeft, kprBorderInMemRight);
}
inline std::optional<std::int64_t> extendedY(std::int64_t y, std::int64_t height, KprBorderType word) {
    return extended(y, height, word, kprBorderInMemTop, kprBorderInMemBottom);
}

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

}  // namespace reference
