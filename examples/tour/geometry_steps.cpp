// A pavement as a bad lens would show it, and set right again.
#include "examples/tour/tour.h"

namespace tour {
namespace {

Gray resampled(Tour& tour, const std::string& name, const Gray& image, float k1, float k2, double& nanoseconds) {
    int bytes = 0;
    Tour::requireOk("UndistortGetSize", kpriUndistortGetSize(image.size(), &bytes));
    std::vector<Kpr8u> buffer(bytes);
    Gray out(image.width, image.height);
    const auto w = static_cast<float>(image.width), h = static_cast<float>(image.height);
    nanoseconds = tour.time(name, [&] {
        return kpriUndistortRadial_8u_C1R(image.data(), image.step(), out.data(), out.step(), image.size(), w, w, w / 2,
                                          h / 2, k1, k2, buffer.data());
    });
    return out;
}

}  // namespace

void tourGeometry(Tour& tour) {
    tour.chapter("A lens set right",
                 "A pixel at the distance r from the middle comes from r (1 + k1 r^2 + k2 r^4). With -k1 and 3 k1^2 in "
                 "place of k1 the way leads nearly back.");
    const Gray bricks = tour.example("brick.png");
    const double pixels = static_cast<double>(bricks.width) * bricks.height;
    constexpr float k = -0.35F;
    double time = 0;
    const Gray bent = resampled(tour, "distorted", bricks, -k, 0, time);
    tour.show("distorted", "k1 = 0.35: rows of bricks bulge", bent, time, pixels);
    const Gray straight = resampled(tour, "undistorted", bent, k, 3 * k * k, time);
    tour.show("undistorted", "k1 = -0.35, k2 = 0.3675: straight again; black is what the distortion had cut off",
              straight, time, pixels);
}

}  // namespace tour
