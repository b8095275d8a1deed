// Integral images, deviations of windows, and a cascade that finds coins.
#include <algorithm>
#include <cstdio>

#include "examples/detect/cascade.h"
#include "examples/detect/coins.h"
#include "examples/tour/tour.h"

namespace tour {
namespace {

constexpr KprRect kWindow = {0, 0, 24, 24};

template <typename T>
float largest(const Image<T>& image) {
    return static_cast<float>(*std::max_element(image.pixels.begin(), image.pixels.end()));
}

void showTables(Tour& tour) {
    const Gray& photo = tour.photo();
    const KprSize size = photo.size();
    const double pixels = double(size.width) * size.height;

    Image<Kpr32s> sums(size.width + 1, size.height + 1);
    double time = tour.time("Integral", [&] {
        return kpriIntegral_8u32s_C1R(photo.data(), photo.step(), sums.data(), sums.step(), size, 0);
    });
    tour.show("integral image", "each element is the sum of all pixels above and left of it: white is the whole sum",
              shown(sums, 0, largest(sums)), time, pixels);

    Image<Kpr32s> tilted(size.width + 2, size.height + 2);
    time = tour.time("TiltedIntegral", [&] {
        return kpriTiltedIntegral_8u32s_C1R(photo.data(), photo.step(), tilted.data(), tilted.step(), size, 0);
    });
    tour.show("tilted integral image", "the sum of all pixels in the cone above each element",
              shown(tilted, 0, largest(tilted)), time, pixels);

    Image<Kpr64f> squares(size.width + 1, size.height + 1);
    time = tour.time("SqrIntegral", [&] {
        return kpriSqrIntegral_8u32s64f_C1R(photo.data(), photo.step(), sums.data(), sums.step(), squares.data(),
                                            squares.step(), size, 0, 0);
    });
    Floats deviation(size.width - kWindow.width + 1, size.height - kWindow.height + 1);
    time = tour.time("RectStdDev", [&] {
        return kpriRectStdDev_32s32f_C1R(sums.data(), sums.step(), squares.data(), squares.step(), deviation.data(),
                                         deviation.step(), deviation.size(), kWindow);
    });
    tour.show("deviation of windows", "standard deviation of the 24 x 24 pixels right of and below each pixel",
              shown(deviation, 0, largest(deviation)), time, double(deviation.width) * deviation.height);
}

// The image in colour, with frames two pixels wide.
Image<Kpr8u> framed(const Gray& image, const std::vector<KprRect>& boxes) {
    Image<Kpr8u> out(image.width, image.height, 3);
    for (std::size_t i = 0; i < out.pixels.size(); ++i) out.pixels[i] = image.pixels[i / 3];
    const auto paint = [&](int x, int y) {
        if (x < 0 || y < 0 || x >= image.width || y >= image.height) return;
        static const Kpr8u green[] = {60, 230, 80};
        std::copy_n(green, 3, &out.pixels[(static_cast<std::size_t>(y) * image.width + x) * 3]);
    };
    for (const KprRect& box : boxes) {
        for (int inset : {0, 1}) {
            const int left = box.x + inset, right = box.x + box.width - 1 - inset;
            const int top = box.y + inset, bottom = box.y + box.height - 1 - inset;
            for (int x = left; x <= right; ++x) {
                paint(x, top);
                paint(x, bottom);
            }
            for (int y = top; y <= bottom; ++y) {
                paint(left, y);
                paint(right, y);
            }
        }
    }
    return out;
}

void showCoins(Tour& tour) {
    const detect::Cascade cascade = detect::readCascade(tour.pathOf("../detect/coins.cascade"));
    const Gray coins = tour.example("coins.png");
    std::vector<KprRect> boxes;
    const double time = tour.time("detection", [&] {
        boxes = detect::detect(cascade, coins);
        return KprStatus{kprStatusOk};
    });
    const detect::Score score = detect::scoreOf(boxes);
    std::size_t stumps = 0;
    for (const detect::Stage& stage : cascade.stages) stumps += stage.counts.size();
    char text[192];
    std::snprintf(text, sizeof text,
                  "%d of 24 coins, %d false alarms; %zu stages of together %zu stumps, all scales and positions, "
                  "shrinking and grouping included: %.1f ms",
                  score.found, score.falseAlarms, cascade.stages.size(), stumps, time / 1e6);
    tour.show("coins found", text, framed(coins, boxes), time, double(coins.width) * coins.height);
}

}  // namespace

void tourDetection(Tour& tour) {
    tour.chapter("Finding things",
                 "Integral images give the sum of any rectangle from four elements. A cascade of rectangle features, "
                 "learnt from the photographs, looks at every window and drops most of them after a few sums.");
    showTables(tour);
    showCoins(tour);
}

}  // namespace tour
