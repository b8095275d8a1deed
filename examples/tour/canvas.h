// Drawing in colour over a gray image.
#pragma once

#include <array>
#include <cmath>

#include "examples/tour/image.h"

namespace tour {

using Colour = std::array<Kpr8u, 3>;

// The image, darkened.
class Canvas {
  public:
    explicit Canvas(const Gray& gray) : image_(gray.width, gray.height, 3) {
        for (std::size_t i = 0; i < image_.pixels.size(); ++i)
            image_.pixels[i] = static_cast<Kpr8u>(gray.pixels[i / 3] / 3 * 2);
    }

    void dot(double x, double y, Colour colour) {
        const auto px = static_cast<int>(std::lround(x)), py = static_cast<int>(std::lround(y));
        if (px < 0 || py < 0 || px >= image_.width || py >= image_.height) return;
        std::copy(colour.begin(), colour.end(), &image_.pixels[3 * (static_cast<std::size_t>(py) * image_.width + px)]);
    }
    void line(double x1, double y1, double x2, double y2, Colour colour) {
        const double steps = std::max({std::fabs(x2 - x1), std::fabs(y2 - y1), 1.0});
        for (double i = 0; i <= steps; ++i) dot(x1 + (x2 - x1) * i / steps, y1 + (y2 - y1) * i / steps, colour);
    }
    void cross(int x, int y, Colour colour) {
        line(x - 3, y, x + 3, y, colour);
        line(x, y - 3, x, y + 3, colour);
    }

    const Image<Kpr8u>& image() const { return image_; }

  private:
    Image<Kpr8u> image_;
};

}  // namespace tour
