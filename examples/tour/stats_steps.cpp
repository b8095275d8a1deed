// Differences and accumulators: what moved, and what a sequence looks like on average.
#include <algorithm>
#include <cmath>
#include <random>

#include "examples/tour/tour.h"

namespace tour {
namespace {

Gray shifted(const Gray& image, int dx, int dy) {
    Gray out(image.width, image.height);
    for (int y = 0; y < out.height; ++y) {
        for (int x = 0; x < out.width; ++x) {
            out.at(x, y) = image.at(std::clamp(x - dx, 0, out.width - 1), std::clamp(y - dy, 0, out.height - 1));
        }
    }
    return out;
}

// A film made from the photograph, so that the truth is known: sensor noise on every frame, and a bright disc that
// crosses the scene from left to right.
std::vector<Gray> film(const Gray& scene, int frames) {
    std::mt19937 engine(3);
    std::normal_distribution<float> noise(0.0F, 4.0F);
    std::vector<Gray> out(static_cast<std::size_t>(frames), scene);
    const int swing = scene.height / 6;
    const int radius = std::max(4, scene.width / 14);
    for (int i = 0; i < frames; ++i) {
        Gray& frame = out[static_cast<std::size_t>(i)];
        const int cx = scene.width * (2 * i + 1) / (2 * frames);
        const int cy = scene.height / 2 + static_cast<int>(swing * std::sin(6.28 * i / frames));
        for (int y = 0; y < scene.height; ++y) {
            for (int x = 0; x < scene.width; ++x) {
                const bool inDisc = (x - cx) * (x - cx) + (y - cy) * (y - cy) < radius * radius;
                const float light = (inDisc ? 240.0F : static_cast<float>(scene.at(x, y))) + noise(engine);
                frame.at(x, y) = static_cast<Kpr8u>(std::clamp(light, 0.0F, 255.0F));
            }
        }
    }
    return out;
}

}  // namespace

void tourStats(Tour& tour) {
    const Gray& photo = tour.photo();
    const KprSize size = photo.size();
    const double pixels = double(size.width) * size.height;
    tour.chapter("Differences and accumulators",
                 "A film is made from the photograph: noise on every frame, and a bright disc that crosses the scene. "
                 "Sums of frames and of their squares give its mean and its variance.");

    const Gray moved = shifted(photo, 3, 2);
    Gray difference(size.width, size.height);
    double time = tour.time("AbsDiff", [&] {
        return kpriAbsDiff_8u_C1R(photo.data(), photo.step(), moved.data(), moved.step(), difference.data(),
                                  difference.step(), size);
    });
    tour.show("absolute difference", "the photograph against a copy shifted by 3 columns and 2 rows", difference, time,
              pixels);

    const std::vector<Gray> frames = film(photo, 40);
    tour.show("a frame of the film", "frame 20 of 40", frames[20]);

    // The mask of what stood still: pixels that differ little from the photograph.
    Floats sum(size.width, size.height), squares = sum, calm = sum, calmCount = sum, running = sum;
    Gray still(size.width, size.height);
    const Gray ones = [&] {
        Gray image(size.width, size.height);
        std::fill(image.pixels.begin(), image.pixels.end(), Kpr8u{1});
        return image;
    }();
    for (const Gray& frame : frames) {
        Tour::requireOk("Add", kpriAdd_8u32f_C1IR(frame.data(), frame.step(), sum.data(), sum.step(), size));
        Tour::requireOk("AddSquare",
                        kpriAddSquare_8u32f_C1IR(frame.data(), frame.step(), squares.data(), squares.step(), size));
        Tour::requireOk("AddWeighted", kpriAddWeighted_8u32f_C1IR(frame.data(), frame.step(), running.data(),
                                                                  running.step(), size, 0.1F));
        Tour::requireOk("AbsDiff", kpriAbsDiff_8u_C1R(frame.data(), frame.step(), photo.data(), photo.step(),
                                                      still.data(), still.step(), size));
        std::transform(still.pixels.begin(), still.pixels.end(), still.pixels.begin(),
                       [](Kpr8u change) { return static_cast<Kpr8u>(change <= 20); });
        Tour::requireOk("Add masked", kpriAdd_8u32f_C1IMR(frame.data(), frame.step(), still.data(), still.step(),
                                                          calm.data(), calm.step(), size));
        Tour::requireOk("Add masked", kpriAdd_8u32f_C1IMR(ones.data(), ones.step(), still.data(), still.step(),
                                                          calmCount.data(), calmCount.step(), size));
    }

    Floats mean = sum, deviation = sum, calmMean = sum;
    const auto count = static_cast<float>(frames.size());
    for (std::size_t i = 0; i < mean.pixels.size(); ++i) {
        mean.pixels[i] = sum.pixels[i] / count;
        deviation.pixels[i] = std::sqrt(std::max(0.0F, squares.pixels[i] / count - mean.pixels[i] * mean.pixels[i]));
        calmMean.pixels[i] = calm.pixels[i] / std::max(1.0F, calmCount.pixels[i]);
    }
    Floats scratch = sum;
    time = tour.time("Add", [&] {
        return kpriAdd_8u32f_C1IR(frames[0].data(), frames[0].step(), scratch.data(), scratch.step(), size);
    });
    tour.show("mean of the film", "sum of 40 frames / 40: the disc leaves a faint trail", shown(mean, 0, 255), time,
              pixels);
    time = tour.time("AddSquare", [&] {
        return kpriAddSquare_8u32f_C1IR(frames[0].data(), frames[0].step(), scratch.data(), scratch.step(), size);
    });
    tour.show("standard deviation", "from the sums of frames and of squares: bright where something moved",
              shown(deviation, 0, 64), time, pixels);
    time = tour.time("Add masked", [&] {
        return kpriAdd_8u32f_C1IMR(frames[0].data(), frames[0].step(), still.data(), still.step(), scratch.data(),
                                   scratch.step(), size);
    });
    tour.show("mean of what stood still", "masked sums leave the moving pixels out: the trail is gone",
              shown(calmMean, 0, 255), time, pixels);
    time = tour.time("AddWeighted", [&] {
        return kpriAddWeighted_8u32f_C1IR(frames[0].data(), frames[0].step(), scratch.data(), scratch.step(), size,
                                          0.1F);
    });
    tour.show("running average", "weight 0.1 for each new frame: the last positions of the disc fade",
              shown(running, 0, 255), time, pixels);
}

}  // namespace tour
