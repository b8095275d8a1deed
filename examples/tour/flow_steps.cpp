// Corners of the photograph, found again after it has moved, turned and grown.
#include <cmath>
#include <random>

#include "examples/tour/canvas.h"
#include "examples/tour/pyramid.h"

namespace tour {
namespace {

constexpr Colour kTrackColour = {0, 230, 80}, kDoubtfulColour = {255, 210, 0}, kLostColour = {255, 60, 60};
constexpr int kWindow = 21, kLevels = 3;

// Where a point of the photograph comes to lie: turned and enlarged around the middle, then moved.
struct Motion {
    double x, y, degrees, scale;

    KprPoint32f moved(KprPoint32f p, KprSize size) const {
        const double c = scale * std::cos(degrees * M_PI / 180), s = scale * std::sin(degrees * M_PI / 180);
        const double u = p.x - size.width / 2.0, v = p.y - size.height / 2.0;
        return {static_cast<float>(size.width / 2.0 + x + c * u - s * v),
                static_cast<float>(size.height / 2.0 + y + s * u + c * v)};
    }

    Gray of(const Gray& image) const {
        std::mt19937 random(3);
        Gray out(image.width, image.height);
        const double c = std::cos(degrees * M_PI / 180) / scale, s = std::sin(degrees * M_PI / 180) / scale;
        for (int row = 0; row < out.height; ++row) {
            for (int column = 0; column < out.width; ++column) {
                const double u = column - image.width / 2.0 - x, v = row - image.height / 2.0 - y;
                const double sx = std::clamp(image.width / 2.0 + c * u + s * v, 0.0, image.width - 1.001);
                const double sy = std::clamp(image.height / 2.0 - s * u + c * v, 0.0, image.height - 1.001);
                const int ix = static_cast<int>(sx), iy = static_cast<int>(sy);
                const double fx = sx - ix, fy = sy - iy;
                const double value = (1 - fy) * ((1 - fx) * image.at(ix, iy) + fx * image.at(ix + 1, iy)) +
                                     fy * ((1 - fx) * image.at(ix, iy + 1) + fx * image.at(ix + 1, iy + 1));
                const double noise = static_cast<double>(random() % 7) - 3;
                out.at(column, row) = static_cast<Kpr8u>(std::lround(std::clamp(value + noise, 0.0, 255.0)));
            }
        }
        return out;
    }
};

// The strongest peaks of the smaller eigenvalue, which is large where the image changes along both axes.
std::vector<KprPoint32f> cornersOf(const Gray& image, int most) {
    int bytes = 0, count = 0;
    Tour::requireOk("MinEigenValGetBufferSize", kpriMinEigenValGetBufferSize_8u32f_C1R(image.size(), 3, 5, &bytes));
    std::vector<Kpr8u> buffer(bytes);
    Floats measure(image.width, image.height);
    Tour::requireOk("MinEigenVal", kpriMinEigenVal_8u32f_C1R(image.data(), image.step(), measure.data(), measure.step(),
                                                             image.size(), 0, 3, 5, buffer.data()));
    Tour::requireOk("FindPeaks3x3GetBufferSize", kpriFindPeaks3x3GetBufferSize_32f_C1R(most, &bytes));
    buffer.resize(bytes);
    std::vector<KprPoint> peaks(most);
    Tour::requireOk("FindPeaks3x3", kpriFindPeaks3x3_32f_C1R(measure.data(), measure.step(), image.size(), 0,
                                                             peaks.data(), most, &count, kprNormInf, 5, buffer.data()));
    std::vector<KprPoint32f> corners;
    for (int i = 0; i < count; ++i) corners.push_back({static_cast<float>(peaks[i].x), static_cast<float>(peaks[i].y)});
    return corners;
}

void showTracks(Tour& tour, const std::string& name, const Motion& motion) {
    const Gray& photo = tour.photo();
    const Gray second = motion.of(photo);
    const Pyramid from(photo, 2.0F, kLevels), to(second, 2.0F, kLevels);
    const std::vector<KprPoint32f> points = cornersOf(photo, 500);
    const int count = static_cast<int>(points.size());
    int bytes = 0;
    Tour::requireOk("OpticalFlowPyrLKGetSize", kpriOpticalFlowPyrLKGetSize(kWindow, photo.size(), kpr8u, 0, &bytes));
    std::vector<Kpr8u> block(bytes), status(count);
    KprOpticalFlowPyrLK* state = nullptr;
    Tour::requireOk("OpticalFlowPyrLKInit",
                    kpriOpticalFlowPyrLKInit_8u_C1R(&state, photo.size(), kWindow, 0, block.data()));
    std::vector<KprPoint32f> found;
    std::vector<float> error(count);
    const double time = tour.time("OpticalFlowPyrLK", [&] {
        found = points;
        return kpriOpticalFlowPyrLK_8u_C1R(from.record(), to.record(), points.data(), found.data(), status.data(),
                                           error.data(), count, kWindow, from.record()->level, 20, 0.01F, state);
    });
    Canvas canvas(second);
    std::vector<double> misses;
    for (int i = 0; i < count; ++i) {
        const KprPoint32f wanted = motion.moved(points[i], photo.size());
        if (status[i] != 0) {
            canvas.cross(static_cast<int>(points[i].x), static_cast<int>(points[i].y), kLostColour);
            continue;
        }
        const bool good = error[i] < 25;
        canvas.line(points[i].x, points[i].y, found[i].x, found[i].y, good ? kTrackColour : kDoubtfulColour);
        if (good) misses.push_back(std::hypot(found[i].x - wanted.x, found[i].y - wanted.y));
    }
    std::sort(misses.begin(), misses.end());
    char text[256];
    std::snprintf(text, sizeof text,
                  "%zu of %d corners keep an error below 25 (green; others yellow, lost ones red); half of them lie "
                  "within %.3f pixels of where they should. %.2f us a point.",
                  misses.size(), count, misses.empty() ? 0.0 : misses[misses.size() / 2], time / count / 1000);
    tour.show(name, text, canvas.image());
}

}  // namespace

void tourFlow(Tour& tour) {
    tour.chapter("Tracks",
                 "Corners of the photograph are looked for in a second one, level by level of two pyramids. Each line "
                 "leads from a corner's old place to its new one.");
    showTracks(tour, "moved", {7.3, -4.6, 0, 1});
    showTracks(tour, "turned by 4 degrees", {0, 0, 4, 1});
    showTracks(tour, "moved, turned and enlarged", {5, 3, -3, 1.06});
}

}  // namespace tour
