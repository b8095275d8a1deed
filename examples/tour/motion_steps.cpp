// A film that the tour makes: things from other photographs wander over the photograph, each with its shadow, under
// noise. What moves is told from the background, and its traces are kept.
#include <array>
#include <cmath>
#include <random>

#include "examples/tour/tour.h"

namespace tour {
namespace {

constexpr int kFrames = 40, kSide = 80;

struct Thing {
    Image<Kpr8u> picture;  // of which a disc is cut out
    double x, y, dx, dy;
};

class Film {
  public:
    explicit Film(Tour& tour) : background_(tour.colour()) {
        const double w = background_.width, h = background_.height;
        const auto cut = [&](const std::string& file, int left, int top) {
            const Image<Kpr8u> from = tour.exampleInColour(file);
            Image<Kpr8u> piece(kSide, kSide, 3);
            for (int y = 0; y < kSide; ++y)
                std::copy_n(&from.pixels[3 * (static_cast<std::size_t>(top + y) * from.width + left)], 3 * kSide,
                            &piece.pixels[static_cast<std::size_t>(y) * 3 * kSide]);
            return piece;
        };
        things_ = {{cut("coffee.png", 180, 120), 0.05 * w, 0.25 * h, 0.02 * w, 0.005 * h},
                   {cut("blossom.png", 100, 100), 0.8 * w, 0.6 * h, -0.015 * w, -0.01 * h}};
    }

    Image<Kpr8u> next() {
        Image<Kpr8u> frame = background_;
        for (const Thing& thing : things_) {
            each(
                frame, thing.x + 24, thing.y + 24,
                [](Kpr8u* to, const Kpr8u*) {
                    for (int c = 0; c < 3; ++c) to[c] = static_cast<Kpr8u>(to[c] * 7 / 10);
                },
                thing);
        }
        for (Thing& thing : things_) {
            each(
                frame, thing.x, thing.y, [](Kpr8u* to, const Kpr8u* from) { std::copy_n(from, 3, to); }, thing);
            thing.x += thing.dx;
            thing.y += thing.dy;
        }
        for (Kpr8u& value : frame.pixels)
            value = static_cast<Kpr8u>(std::clamp(value + static_cast<int>(random_() % 7) - 3, 0, 255));
        return frame;
    }
    KprSize size() const { return background_.size(); }

  private:
    // Calls put(pixel of the frame, pixel of the thing) within a disc at (left, top).
    static void each(Image<Kpr8u>& frame, double left, double top, auto put, const Thing& thing) {
        for (int y = 0; y < kSide; ++y) {
            for (int x = 0; x < kSide; ++x) {
                const int fx = x + static_cast<int>(left), fy = y + static_cast<int>(top);
                if (std::hypot(x - kSide / 2, y - kSide / 2) > kSide / 2 || fx < 0 || fy < 0 || fx >= frame.width ||
                    fy >= frame.height)
                    continue;
                put(&frame.pixels[3 * (static_cast<std::size_t>(fy) * frame.width + fx)],
                    &thing.picture.pixels[3 * (static_cast<std::size_t>(y) * kSide + x)]);
            }
        }
    }

    Image<Kpr8u> background_;
    std::vector<Thing> things_;
    std::minstd_rand random_{7};
};

}  // namespace

void tourMotion(Tour& tour) {
    tour.chapter("What moves",
                 "A film of 40 frames: two things wander over the photograph with their shadows, under "
                 "noise. The first frames teach the background.");
    Film film(tour);
    const KprSize size = film.size();
    const double pixels = static_cast<double>(size.width) * size.height;
    constexpr int modes = 5;
    constexpr Kpr8u shadow = 127;
    const KprFGMMModel model = {200, modes, 15, 4, 75, 16, 0.9F, 9, 0.05F, shadow, 1, 0.5F};
    int bytes = 0;
    Tour::requireOk("FGMMGetBufferSize", kpriFGMMGetBufferSize_8u_C3R(size, modes, &bytes));
    std::vector<Kpr8u> memory(bytes);
    auto* const state = reinterpret_cast<KprFGMMState*>(memory.data());
    Tour::requireOk("FGMMInit", kpriFGMMInit_8u_C3R(size, modes, &model, state));

    Gray mask(size.width, size.height), silhouette(size.width, size.height);
    Floats history(size.width, size.height);
    Image<Kpr8u> frame;
    std::vector<double> times;
    for (int i = 0; i < kFrames; ++i) {
        frame = film.next();
        const auto start = std::chrono::steady_clock::now();
        Tour::requireOk("FGMMForeground", kpriFGMMForeground_8u_C3R(frame.data(), frame.step(), mask.data(),
                                                                    mask.step(), size, state, nullptr, -1));
        times.push_back(std::chrono::duration<double, std::nano>(std::chrono::steady_clock::now() - start).count());
        std::transform(mask.pixels.begin(), mask.pixels.end(), silhouette.pixels.begin(),
                       [](Kpr8u label) { return static_cast<Kpr8u>(label == 255 ? 255 : 0); });
        Tour::requireOk("UpdateMotionHistory",
                        kpriUpdateMotionHistory_8u32f_C1IR(silhouette.data(), silhouette.step(), history.data(),
                                                           history.step(), size, static_cast<float>(i + 1), 25));
    }
    Image<Kpr8u> background(size.width, size.height, 3);
    const double show = tour.time(
        "FGMMBackground", [&] { return kpriFGMMBackground_8u_C3R(background.data(), background.step(), size, state); });
    tour.show("the last frame", "two discs with their shadows", frame);
    tour.show("foreground", "white what moves, gray its shadow", mask, *std::min_element(times.begin(), times.end()),
              pixels);
    tour.show("background", "what the model holds: nobody ever saw it empty", background, show, pixels);
    tour.show("motion history", "the later something moved, the brighter: 25 frames back",
              shown(history, kFrames - 25, kFrames));
}

}  // namespace tour
