// Statistics under a mask: what lies in a region, and how far a degraded copy is from the original.
#include <algorithm>
#include <cstdio>
#include <random>

#include "examples/tour/tour.h"

namespace tour {
namespace {

// 255 inside an ellipse in the middle, 0 outside.
Gray ellipse(int width, int height) {
    Gray mask(width, height);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const double u = (x + 0.5) / width * 2 - 1;
            const double v = (y + 0.5) / height * 2 - 1;
            mask.at(x, y) = u * u / 0.36 + v * v / 0.49 < 1 ? 255 : 0;
        }
    }
    return mask;
}

// Noise, and blocks as a coarse compression leaves them.
Gray degraded(const Gray& image) {
    std::mt19937 engine(9);
    std::normal_distribution<float> noise(0.0F, 6.0F);
    Gray out = image;
    for (int y = 0; y < image.height; ++y) {
        for (int x = 0; x < image.width; ++x) {
            const int block = image.at(x / 4 * 4, y / 4 * 4);
            out.at(x, y) = static_cast<Kpr8u>(std::clamp(static_cast<float>(block) + noise(engine), 0.0F, 255.0F));
        }
    }
    return out;
}

// A cross of the given colour, 17 pixels wide.
void mark(Image<Kpr8u>& picture, KprPoint at, const Kpr8u (&colour)[3]) {
    for (int i = -8; i <= 8; ++i) {
        for (const auto& [x, y] : {std::pair{at.x + i, at.y}, {at.x, at.y + i}}) {
            if (x < 0 || y < 0 || x >= picture.width || y >= picture.height) continue;
            std::copy_n(colour, 3, picture.data() + 3 * (static_cast<std::size_t>(y) * picture.width + x));
        }
    }
}

std::string withNumbers(const char* format, double a, double b) {
    char text[160];
    std::snprintf(text, sizeof text, format, a, b);
    return text;
}

}  // namespace

void tourStatistics(Tour& tour) {
    const Gray& photo = tour.photo();
    const KprSize size = photo.size();
    const double pixels = double(size.width) * size.height;
    const Gray mask = ellipse(size.width, size.height);
    tour.chapter("Statistics under a mask",
                 "An ellipse in the middle of the photograph selects; what lies outside is not read.");

    double mean = 0;
    double deviation = 0;
    double time = tour.time("Mean_StdDev", [&] {
        return kpriMean_StdDev_8u_C1MR(photo.data(), photo.step(), mask.data(), mask.step(), size, &mean, &deviation);
    });
    Image<Kpr8u> picture(size.width, size.height, 3);
    for (std::size_t i = 0; i < photo.pixels.size(); ++i) {
        const int light = mask.pixels[i] != 0 ? photo.pixels[i] : photo.pixels[i] / 4;
        std::fill_n(picture.data() + 3 * i, 3, static_cast<Kpr8u>(light));
    }
    tour.show("mean and deviation",
              withNumbers("inside the ellipse: mean %.2f, standard deviation %.2f", mean, deviation), picture, time,
              pixels);

    float low = 0;
    float high = 0;
    KprPoint lowAt{};
    KprPoint highAt{};
    time = tour.time("MinMaxIndx", [&] {
        return kpriMinMaxIndx_8u_C1MR(photo.data(), photo.step(), mask.data(), mask.step(), size, &low, &high, &lowAt,
                                      &highAt);
    });
    mark(picture, lowAt, {80, 160, 255});
    mark(picture, highAt, {255, 80, 60});
    tour.show("extrema",
              withNumbers("the darkest pixel inside, %.0f, in blue, and the brightest, %.0f, in red", low, high),
              picture, time, pixels);

    const Gray copy = degraded(photo);
    double largest = 0;
    double relative = 0;
    Tour::requireOk("NormDiff_Inf", kpriNormDiff_Inf_8u_C1MR(photo.data(), photo.step(), copy.data(), copy.step(),
                                                             mask.data(), mask.step(), size, &largest));
    time = tour.time("NormRel_L2", [&] {
        return kpriNormRel_L2_8u_C1MR(copy.data(), copy.step(), photo.data(), photo.step(), mask.data(), mask.step(),
                                      size, &relative);
    });
    tour.show("norms",
              withNumbers("a degraded copy: inside the ellipse its largest difference is %.0f, its relative L2 norm "
                          "of difference %.4f",
                          largest, relative),
              copy, time, pixels);
}

}  // namespace tour
