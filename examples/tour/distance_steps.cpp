// Distance fields of the coins, a field by fast marching, the restoration of a damaged photograph, and a background
// taken away by a rolling ball.
#include <cmath>
#include <cstdio>

#include "examples/tour/tour.h"

namespace tour {
namespace {

std::vector<Kpr8u> bufferOf(KprStatus (*getSize)(KprSize, int*), KprSize size) {
    int bytes = 0;
    Tour::requireOk("GetBufferSize", getSize(size, &bytes));
    return std::vector<Kpr8u>(bytes);
}

Gray whiteAbove(const Gray& image, int threshold) {
    Gray out = image;
    for (Kpr8u& pixel : out.pixels) pixel = pixel > threshold ? 255 : 0;
    return out;
}

void showDistances(Tour& tour) {
    const Gray coins = tour.example("coins.png");
    const KprSize size = coins.size();
    const double pixels = double(size.width) * size.height;
    const Gray faces = whiteAbove(coins, 120);
    tour.chapter(
        "Distances",
        "How far each pixel of the coins lies from the nearest pixel of the table: exactly, and as the length of "
        "a path of weighted steps. What a path is too long or too short by is shown eighty times as strong, gray "
        "being right.");
    tour.show("coins above 120", "what distances are measured in", faces);

    Floats exact(size.width, size.height), path = exact, error = exact;
    std::vector<Kpr8u> buffer = bufferOf(kpriTrueDistanceTransformGetBufferSize_8u32f_C1R, size);
    double time = tour.time("TrueDistanceTransform", [&] {
        return kpriTrueDistanceTransform_8u32f_C1R(faces.data(), faces.step(), exact.data(), exact.step(), size,
                                                   buffer.data());
    });
    const float farthest = *std::max_element(exact.pixels.begin(), exact.pixels.end());
    tour.show("exact distance", "black at the table", shown(exact, 0, farthest), time, pixels);

    for (const int kernel : {3, 5}) {
        Kpr32f weights[3];
        Tour::requireOk("GetDistanceTransformMask", kpriGetDistanceTransformMask_32f(kernel, 2, weights));
        const auto transform = kernel == 3 ? kpriDistanceTransform_3x3_8u32f_C1R : kpriDistanceTransform_5x5_8u32f_C1R;
        const std::string name = kernel == 3 ? "3x3 steps" : "5x5 steps";
        time = tour.time(
            name, [&] { return transform(faces.data(), faces.step(), path.data(), path.step(), size, weights); });
        float most = 0;
        for (std::size_t i = 0; i < error.pixels.size(); ++i) {
            error.pixels[i] = path.pixels[i] - exact.pixels[i];
            most = std::max(most, std::abs(error.pixels[i]));
        }
        char caption[80];
        std::snprintf(caption, sizeof caption, "off by at most %.2f pixels of %.1f", most, farthest);
        tour.show(name, caption, shown(path, 0, farthest), time, pixels);
        tour.show(name + ", less exact", "brighter: the path is longer", shown(error, -1.6F, 1.6F));
    }
}

// A field in gray, each multiple of `every` a dark line.
Gray withLevels(const Floats& field, float low, float high, float every) {
    Gray out = shown(field, low, high);
    for (int y = 0; y + 1 < field.height; ++y) {
        for (int x = 0; x + 1 < field.width; ++x) {
            const float level = std::floor(field.at(x, y) / every);
            if (level != std::floor(field.at(x + 1, y) / every) || level != std::floor(field.at(x, y + 1) / every))
                out.at(x, y) = 0;
        }
    }
    return out;
}

// ---- damage

void drawLine(Gray& mask, double x, double y, double angle, int length, int width) {
    for (int i = 0; i < length; ++i) {
        for (int j = 0; j < width; ++j) {
            const int u = static_cast<int>(x + i * std::cos(angle)) + j, v = static_cast<int>(y + i * std::sin(angle));
            if (u >= 0 && u < mask.width && v >= 0 && v < mask.height) mask.at(u, v) = 255;
        }
    }
}

Gray scratches(KprSize size) {
    Gray mask(size.width, size.height);
    unsigned state = 1;
    const auto draw = [&](int n) {
        state = state * 1664525U + 1013904223U;
        return static_cast<int>(state >> 8U) % n;
    };
    for (int i = 0; i < 25; ++i) {
        const double x = draw(size.width), y = draw(size.height), angle = draw(628) / 100.0;
        drawLine(mask, x, y, angle, 60 + draw(size.width / 4), 3);
    }
    return mask;
}

// Letters of 5 x 7 squares, a row of the letter in 5 bits.
Gray inscription(KprSize size) {
    static const Kpr8u letters[][7] = {{17, 18, 20, 24, 20, 18, 17},
                                       {30, 17, 17, 30, 16, 16, 16},
                                       {30, 17, 17, 30, 20, 18, 17},
                                       {14, 17, 16, 16, 16, 17, 14},
                                       {17, 17, 17, 17, 17, 10, 4}};
    Gray mask(size.width, size.height);
    const int square = std::max(size.width / 128, 1), left = size.width / 2 - 15 * square, top = size.height / 2;
    for (int letter = 0; letter < 5; ++letter) {
        for (int row = 0; row < 7 * square; ++row) {
            for (int column = 0; column < 5 * square; ++column) {
                const int x = left + letter * 6 * square + column, y = top + row;
                const bool set = (letters[letter][row / square] >> (4 - column / square) & 1) != 0;
                if (set && x >= 0 && x < size.width && y < size.height) mask.at(x, y) = 255;
            }
        }
    }
    return mask;
}

// 10 log10 of 255^2 over the mean squared difference, over the whole image or under the mask alone.
double signalToNoise(const Gray& a, const Gray& b, const Gray* mask) {
    double sum = 0, count = 0;
    for (std::size_t i = 0; i < a.pixels.size(); ++i) {
        if (mask != nullptr && mask->pixels[i] == 0) continue;
        const double difference = double(a.pixels[i]) - b.pixels[i];
        sum += difference * difference;
        ++count;
    }
    return 10 * std::log10(255 * 255 * count / std::max(sum, 1e-9));
}

void restore(Tour& tour, const Gray& mask, const std::string& damage) {
    const Gray& photo = tour.photo();
    const KprSize size = photo.size();
    const double pixels = double(size.width) * size.height;
    Gray damaged = photo;
    for (std::size_t i = 0; i < mask.pixels.size(); ++i) damaged.pixels[i] |= mask.pixels[i];
    tour.show("photograph with " + damage, "white pixels are to be filled", damaged);

    Floats field(size.width, size.height);
    std::vector<Kpr8u> buffer = bufferOf(kpriFastMarchingGetBufferSize_8u32f_C1R, size);
    double time = tour.time("FastMarching", [&] {
        return kpriFastMarching_8u32f_C1R(mask.data(), mask.step(), field.data(), field.step(), size, 12,
                                          buffer.data());
    });
    tour.show(
        "fast marching, " + damage,
        "distances into the damage, brighter than gray, and up to 12 pixels out of it, darker, with a line at every "
        "third pixel",
        withLevels(field, -12, 12, 3), time, pixels);

    for (const int method : {0, 1}) {
        const std::string name = damage + " filled, method " + std::to_string(method);
        int stateSize = 0, bufferSize = 0;
        Tour::requireOk(name,
                        kpriInpaintGetSize(mask.data(), mask.step(), size, 5, method, 1, &stateSize, &bufferSize));
        std::vector<Kpr8u> memory(stateSize), work(bufferSize);
        KprInpaintState* state = nullptr;
        Tour::requireOk(name, kpriInpaintInit_8u_C1R(&state, field.data(), field.step(), mask.data(), mask.step(), size,
                                                     5, method, memory.data(), work.data()));
        Gray filled = damaged;
        time = tour.time(name, [&] {
            return kpriInpaint_8u_C1R(damaged.data(), damaged.step(), filled.data(), filled.step(), size, state,
                                      work.data());
        });
        char caption[120];
        std::snprintf(caption, sizeof caption, "signal to noise %.1f dB in the filled pixels, %.1f dB in all",
                      signalToNoise(photo, filled, &mask), signalToNoise(photo, filled, nullptr));
        std::printf("    %s\n", caption);
        tour.show(name, caption, filled, time, pixels);
    }
}

// ---- rolling ball

// The upper half of a ball, its top at height 0.
std::vector<Kpr32s> ball(int radius, int side, int flatness) {
    std::vector<Kpr32s> heights;
    for (int y = 0; y < side; ++y) {
        for (int x = 0; x < side; ++x) {
            const int dx = x - side / 2, dy = y - side / 2, left = radius * radius - dx * dx - dy * dy;
            heights.push_back(
                left < 0 ? INT32_MIN : static_cast<Kpr32s>(std::lround((std::sqrt(double(left)) - radius) / flatness)));
        }
    }
    return heights;
}

void rollBall(Tour& tour) {
    const Gray coins = tour.example("coins.png");
    const KprSize size = coins.size();
    const double pixels = double(size.width) * size.height;
    tour.chapter("A rolling ball",
                 "A ball as wide as 71 pixels rolls under the image taken as a landscape: erosion by its heights, then "
                 "dilation. What it reaches is the ground; it is too wide to roll into the coins.");
    constexpr int radius = 36, side = 71;
    const auto heights = ball(radius, side, 2);
    int specSize = 0, bufferSize = 0;
    Tour::requireOk("MorphGrayGetSize", kpriMorphGrayGetSize_8u_C1R(size, {side, side}, &specSize, &bufferSize));
    std::vector<Kpr8u> block(specSize), buffer(bufferSize);
    auto* const spec = reinterpret_cast<KprMorphGrayState*>(block.data());
    Tour::requireOk("MorphGrayInit", kpriMorphGrayInit_8u_C1R(size, heights.data(), {side, side}, {side / 2, side / 2},
                                                              spec, buffer.data()));
    Gray eroded = coins, ground = coins, even = coins;
    const auto step = [&](const char* name, auto operation, const Gray& from, Gray& to) {
        return tour.time(name, [&] {
            return operation(from.data(), from.step(), to.data(), to.step(), size, kprBorderDefault, Kpr8u{0}, spec,
                             buffer.data());
        });
    };
    double time = step("GrayErodeBorder", kpriGrayErodeBorder_8u_C1R, coins, eroded);
    tour.show("gray erosion", "how high the ball's top comes at each pixel", eroded, time, pixels);
    time = step("GrayDilateBorder", kpriGrayDilateBorder_8u_C1R, eroded, ground);
    tour.show("gray dilation of it", "the ground that the ball reaches", ground, time, pixels);
    for (std::size_t i = 0; i < even.pixels.size(); ++i)
        even.pixels[i] = static_cast<Kpr8u>(coins.pixels[i] - ground.pixels[i]);
    tour.show("coins above the ground", "the table is even", even);
}

}  // namespace

void tourDistances(Tour& tour) {
    showDistances(tour);
    tour.chapter(
        "Restoration",
        "Damaged pixels are filled from the known ones around them, those nearest to the edge of the damage first: "
        "the order is that of a field by fast marching. The signal-to-noise ratio is taken against the photograph "
        "as it was.");
    restore(tour, scratches(tour.photo().size()), "scratches");
    restore(tour, inscription(tour.photo().size()), "inscription");
    rollBall(tour);
}

}  // namespace tour
