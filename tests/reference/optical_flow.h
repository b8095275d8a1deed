// The oracle of optical flow: a point at a time, whole patches and derivatives of any pixel. Sums are added up in eight
// lanes: the order is free, and this is the library's, so that results can be held against each other bit by bit.
#pragma once

#include <kprcv.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <type_traits>
#include <vector>

#include "tests/reference/geometry.h"

namespace reference {

template <typename T>
struct FlowLevel {
    PixelAt<T> pixel;
    KprSize size;
    double rate;
};

struct FlowPoint {
    KprPoint32f next;
    int status;
    float error;
};

// How points have come to their ends.
struct FlowEnds {
    int shortStep = 0, oscillation = 0, allIterations = 0, noWindow = 0, flat = 0, missed = 0;
};

class FlowSums {
  public:
    explicit FlowSums(int stretch) : stretch_(stretch) {}

    double over(int width, int height, const std::function<double(int, int)>& a,
                const std::function<double(int, int)>& b) const {
        double sum = 0;
        for (int x0 = 0; x0 < width; x0 += stretch_) {
            double lane[4][8] = {}, all[8];
            for (int y = 0; y < height; ++y) {
                for (int i = 0; i < stretch_ && x0 + i < width; ++i)
                    lane[i / 8][i % 8] = std::fma(a(x0 + i, y), b(x0 + i, y), lane[i / 8][i % 8]);
            }
            for (int i = 0; i < 8; ++i) all[i] = lane[0][i] + lane[1][i] + lane[2][i] + lane[3][i];
            sum += ((all[0] + all[4]) + (all[2] + all[6])) + ((all[1] + all[5]) + (all[3] + all[7]));
        }
        return sum;
    }

  private:
    int stretch_;
};

template <typename T>
class Flow {
    static constexpr bool kBytes = sizeof(T) == 1;
    using Sample = std::conditional_t<kBytes, std::uint16_t, float>;

  public:
    Flow(int winSize, int maxIter, float threshold)
        : side_(winSize + 2), maxIter_(maxIter), threshold_(threshold), sums_(kBytes ? 32 : 16) {}

    FlowPoint track(const std::vector<FlowLevel<T>>& first, const std::vector<FlowLevel<T>>& second, int maxLevel,
                    KprPoint32f from, KprPoint32f guess) {
        FlowPoint point = {guess, maxLevel + 1, 0};
        for (int level = maxLevel; level >= 0; --level) {
            const auto index = static_cast<std::size_t>(level);
            const double rate = first[index].rate;
            KprPoint32f place = times(point.next, rate);
            float error = 0;
            if (!settle(first[index], second[index], times(from, rate), place, error)) return point;
            point = {{static_cast<float>(place.x / rate), static_cast<float>(place.y / rate)}, level, 0};
            if (level == 0) point.error = error;
        }
        return point;
    }

    FlowEnds ends;

  private:
    static KprPoint32f times(KprPoint32f p, double rate) {
        return {static_cast<float>(p.x * rate), static_cast<float>(p.y * rate)};
    }

    // All (winSize + 2) x (winSize + 2) samples around a point.
    std::vector<Sample> patch(const FlowLevel<T>& image, const PatchAxis& x, const PatchAxis& y) const {
        std::vector<Sample> out;
        for (int j = 0; j < side_; ++j) {
            for (int i = 0; i < side_; ++i)
                out.push_back(patchPixel<T, Sample>(image.pixel, image.size, x, y, i, j, -7));
        }
        return out;
    }

    // Scharr's derivative across or down, on the scale of the samples.
    static float derivative(const FlowLevel<T>& image, std::int64_t x, std::int64_t y, bool across) {
        const auto at = [&](int i, int j) {
            return static_cast<float>(image.pixel(std::clamp<std::int64_t>(x + i, 0, image.size.width - 1),
                                                  std::clamp<std::int64_t>(y + j, 0, image.size.height - 1)));
        };
        const auto mean = [](float a, float b, float c) { return std::fma(3.0F, c, std::fma(10.0F, b, 3.0F * a)); };
        const auto difference = [&](int j) { return at(1, j) - at(-1, j); };
        const auto average = [&](int j) { return mean(at(-1, j), at(0, j), at(1, j)); };
        const float sum = across ? mean(difference(-1), difference(0), difference(1)) : average(1) - average(-1);
        return kBytes ? sum * 4.0F : sum / 32.0F;
    }

    static float interpolated(const FlowLevel<T>& image, std::int64_t x, std::int64_t y, float fx, float fy,
                              bool across) {
        const float p00 = derivative(image, x, y, across), p10 = derivative(image, x + 1, y, across);
        const float p01 = derivative(image, x, y + 1, across), p11 = derivative(image, x + 1, y + 1, across);
        if (!kBytes) return cell(p00, p10, p01, p11, fx, fy);
        const float rx = 1.0F - fx, w00 = std::fma(-rx, fy, rx), w10 = std::fma(-fx, fy, fx);
        return std::fma(fx * fy, p11, std::fma(rx * fy, p01, std::fma(w10, p10, w00 * p00)));
    }

    bool settle(const FlowLevel<T>& image1, const FlowLevel<T>& image2, KprPoint32f centre, KprPoint32f& place,
                float& error) {
        const PatchAxis x(centre.x, side_, image1.size.width), y(centre.y, side_, image1.size.height);
        const auto left = static_cast<int>(x.min) + 1, top = static_cast<int>(y.min) + 1;
        const auto width = static_cast<int>(x.max - left), height = static_cast<int>(y.max - top);
        if (width < 1 || height < 1) return ++ends.noWindow, false;
        const std::vector<Sample> samples = patch(image1, x, y);
        std::vector<float> dx, dy;
        for (int j = 0; j < height; ++j) {
            for (int i = 0; i < width; ++i) {
                dx.push_back(interpolated(image1, x.first + left + i, y.first + top + j, x.fraction, y.fraction, true));
                dy.push_back(
                    interpolated(image1, x.first + left + i, y.first + top + j, x.fraction, y.fraction, false));
            }
        }
        const auto in = [&](const std::vector<float>& plane) {
            return [&plane, width](int i, int j) -> double { return plane[static_cast<std::size_t>(j * width + i)]; };
        };
        const double gxx = sums_.over(width, height, in(dx), in(dx)), gyy = sums_.over(width, height, in(dy), in(dy));
        const double gxy = sums_.over(width, height, in(dx), in(dy));
        const double det = std::fma(gxx, gyy, -(gxy * gxy));
        double lastX = 0, lastY = 0;
        for (int n = 0; n < maxIter_; ++n) {
            const PatchAxis x2(place.x, side_, image2.size.width), y2(place.y, side_, image2.size.height);
            if (x2.min > x2.max || y2.min > y2.max) return ++ends.missed, false;
            const std::vector<Sample> present = patch(image2, x2, y2);
            const auto d = [&](int i, int j) {
                const auto at = static_cast<std::size_t>((top + j) * side_ + left + i);
                return double(samples[at]) - double(present[at]);
            };
            const double bx = sums_.over(width, height, d, in(dx)), by = sums_.over(width, height, d, in(dy));
            if (!(det >= 2.220446049250313e-16)) return ++ends.flat, false;
            const double stepX = (bx * gyy - by * gxy) / det, stepY = (by * gxx - bx * gxy) / det;
            if (!std::isfinite(stepX * stepX + stepY * stepY)) return ++ends.missed, false;
            place = {static_cast<float>(place.x + stepX), static_cast<float>(place.y + stepY)};
            const double squares = sums_.over(width, height, d, d);
            error = squares > 0 ? static_cast<float>(std::sqrt(squares / (width * height)) * (kBytes ? 0.0078125 : 1))
                                : 0.0F;
            const float limit = threshold_ * threshold_;
            if (stepX * stepX + stepY * stepY < limit) return ++ends.shortStep, true;
            const float q = std::sqrt(1.1920929e-07F);
            if (std::fabs(stepX + lastX) < q && std::fabs(stepY + lastY) < q) {
                place = {static_cast<float>(place.x - 0.5 * stepX), static_cast<float>(place.y - 0.5 * stepY)};
                return ++ends.oscillation, true;
            }
            lastX = stepX;
            lastY = stepY;
        }
        return ++ends.allIterations, true;
    }

    int side_, maxIter_;
    float threshold_;
    FlowSums sums_;
};

}  // namespace reference
