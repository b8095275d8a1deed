// Oracles of sub-pixel sampling and undistortion, a pixel at a time.
#pragma once

#include <kprcv/types.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <functional>
#include <limits>
#include <type_traits>

namespace reference {

template <typename T>
using PixelAt = std::function<T(std::int64_t x, std::int64_t y)>;

// Of 8u, 16u and the scaled form: weights of 14 bits, in the order 00, 01, 10, 11.
struct CellWeights {
    std::int64_t w[4];

    CellWeights(std::uint32_t qx, std::uint32_t qy) {
        const std::uint32_t rx = 16384 - qx, ry = 16384 - qy;
        const std::uint32_t products[] = {rx * ry, rx * qy, ry * qx, qy * qx};
        for (int i = 0; i < 4; ++i) w[i] = ((products[i] + 16384) >> 14) & 0xffff;
        const std::int64_t d = 16384 - w[0] - w[1] - w[2] - w[3];
        if (d < 0) *std::max_element(w, w + 4) += d;
    }
};

inline std::uint32_t quantized(float f, float half) {
    return std::isnan(f) ? 0 : static_cast<std::uint32_t>(static_cast<std::int64_t>(16384.0F * f + half)) & 0xffff;
}

// sum * 2^-(14 + scaleFactor), rounded half up and saturated.
template <typename Dst>
Dst scaledCell(std::int64_t sum, int scaleFactor) {
    const double value =
        std::floor(std::ldexp(static_cast<double>(sum), -14 - std::clamp(scaleFactor, -100, 100)) + 0.5);
    return static_cast<Dst>(std::min(value, double{std::numeric_limits<Dst>::max()}));
}

template <typename Dst, typename Src>
Dst cell(Src p00, Src p10, Src p01, Src p11, const CellWeights& c, int scaleFactor) {
    return scaledCell<Dst>(c.w[0] * p00 + c.w[1] * p01 + c.w[2] * p10 + c.w[3] * p11, scaleFactor);
}

inline float cell(float p00, float p10, float p01, float p11, float fx, float fy) {
    const float w00 = (1.0F - fx) * (1.0F - fy), w10 = fx * (1.0F - fy), w01 = (1.0F - fx) * fy, w11 = fx * fy;
    return std::fma(w11, p11, std::fma(w01, p01, std::fma(w10, p10, w00 * p00)));
}

// A displacement's own fraction, as the weights take it.
inline float behindThePoint(float f) { return f - std::trunc(f); }

template <typename Src, typename Dst>
Dst copySubpix(const PixelAt<Src>& p, int x, int y, float dx, float dy, int scaleFactor) {
    const float fx = behindThePoint(dx), fy = behindThePoint(dy);
    if constexpr (std::is_same_v<Dst, float>) {
        return cell(float(p(x, y)), float(p(x + 1, y)), float(p(x, y + 1)), float(p(x + 1, y + 1)),
                    fx < 0 ? fx + 1.0F : fx, fy < 0 ? fy + 1.0F : fy);
    } else {
        const CellWeights c(quantized(fx, fx < 0 ? 16384.5F : 0.5F), quantized(fy, fy < 0 ? 16384.5F : 0.5F));
        return cell<Dst>(p(x, y), p(x + 1, y), p(x, y + 1), p(x + 1, y + 1), c, scaleFactor);
    }
}

struct PatchAxis {
    std::int64_t first, min, max;
    float fraction;

    PatchAxis(float centre, std::int64_t length, std::int64_t size) {
        const float begin = std::fma(-static_cast<float>(length - 1), 0.5F, centre);
        const float moved = static_cast<float>(length) + begin;
        first =
            (std::isnan(moved) ? -(1LL << 40) : static_cast<std::int64_t>(std::clamp(moved, -1e12F, 1e12F))) - length;
        fraction = begin - static_cast<float>(first);
        min = std::clamp<std::int64_t>(-first, 0, length);
        max = first + length - 1 > size - 2 ? size - 2 - first : length - 1;
        if (std::max<std::int64_t>(first, 0) >= size) min = 0, max = -1;
    }
    // -1 before the inside, 0 in it, 1 behind it
    int side(std::int64_t i) const { return i < min ? -1 : i > max ? 1 : 0; }
};

template <typename Src, typename Dst>
Dst patchPixel(const PixelAt<Src>& p, KprSize size, const PatchAxis& ax, const PatchAxis& ay, int i, int j,
               int scaleFactor) {
    const int sideX = ax.side(i), sideY = ay.side(j);
    const std::int64_t x = ax.first + i, y = ay.first + j;
    const std::int64_t edgeX = sideX < 0 ? 0 : size.width - 1, edgeY = sideY < 0 ? 0 : size.height - 1;
    if (sideX != 0 && sideY != 0) {
        if constexpr (std::is_same_v<Dst, float>) return float(p(edgeX, edgeY));
        return scaledCell<Dst>(std::int64_t{16384} * p(edgeX, edgeY), scaleFactor);
    }
    if (sideX != 0 || sideY != 0) {
        const Src a = sideX != 0 ? p(edgeX, y) : p(x, edgeY), b = sideX != 0 ? p(edgeX, y + 1) : p(x + 1, edgeY);
        const float f = sideX != 0 ? ay.fraction : ax.fraction;
        if constexpr (std::is_same_v<Dst, float>) return std::fma(f, float(b), (1.0F - f) * float(a));
        const std::int64_t q = quantized(f, 0.5F);
        return scaledCell<Dst>((16384 - q) * a + q * b, scaleFactor);
    }
    if constexpr (std::is_same_v<Dst, float>) {
        return cell(float(p(x, y)), float(p(x + 1, y)), float(p(x, y + 1)), float(p(x + 1, y + 1)), ax.fraction,
                    ay.fraction);
    } else {
        const CellWeights c(quantized(ax.fraction, 0.5F), quantized(ay.fraction, 0.5F));
        return cell<Dst>(p(x, y), p(x + 1, y), p(x, y + 1), p(x + 1, y + 1), c, scaleFactor);
    }
}

struct Camera {
    float fx, fy, cx, cy, k1, k2, p1 = 0, p2 = 0;
};

inline std::pair<float, float> distorted(const Camera& c, int u, int v, bool tangential) {
    const float ifx = 1.0F / c.fx, ify = 1.0F / c.fy;
    const float x = (static_cast<float>(u) - c.cx) * ifx, y = (static_cast<float>(v) - c.cy) * ify;
    const float r2 = std::fma(y, y, x * x), d = std::fma(r2, std::fma(r2, c.k2, c.k1), 1.0F);
    if (!tangential) return {std::fma(c.fx, x * d, c.cx), std::fma(c.fy, y * d, c.cy)};
    const float dx = std::fma(c.p2, std::fma(2 * x, x, r2), std::fma(2 * c.p1, x * y, x * d));
    const float dy = std::fma(c.p1, std::fma(2 * y, y, r2), std::fma(2 * c.p2, x * y, y * d));
    return {std::fma(c.fx, dx, c.cx), std::fma(c.fy, dy, c.cy)};
}

template <typename T>
T bilinear(const PixelAt<T>& p, KprSize size, float x, float y) {
    const float lastX = static_cast<float>(size.width - 1), lastY = static_cast<float>(size.height - 1);
    if (!(x >= 0 && x <= lastX && y >= 0 && y <= lastY)) return 0;
    const int ix = static_cast<int>(std::floor(x)), iy = static_cast<int>(std::floor(y));
    const int right = std::min(ix + 1, size.width - 1), below = std::min(iy + 1, size.height - 1);
    const float ax = x - std::floor(x), ay = y - std::floor(y);
    const auto mean = [](float a, float b, float f) { return std::fma(f, b - a, a); };
    const float value = mean(mean(float(p(ix, iy)), float(p(right, iy)), ax),
                             mean(float(p(ix, below)), float(p(right, below)), ax), ay);
    if constexpr (std::is_integral_v<T>) return static_cast<T>(std::nearbyint(value));
    return static_cast<T>(value);
}

}  // namespace reference
