// Edges and corner measures of the photograph, the edges of a colour photograph, and what thresholds change:
// docs/edges.png is made here. First derivatives, which are not exported, come from the library's objects.
#include "examples/tour/tour.h"
#include "filter/sobel.h"

namespace tour {
namespace {

Gray edgesOf(Tour& tour, const Gray& photo, const std::string& name, KprMaskSize mask, int norm, float low, float high,
             double* time = nullptr) {
    int size = 0;
    Tour::requireOk("CannyBorderGetSize", kpriCannyBorderGetSize(photo.size(), kprFilterSobel, mask, norm, &size));
    std::vector<Kpr8u> buffer(size);
    Gray out(photo.width, photo.height);
    const auto detect = [&] {
        return kpriCannyBorder_8u_C1R(photo.data(), photo.step(), out.data(), out.step(), photo.size(), kprFilterSobel,
                                      mask, kprBorderReplicate, 0, low, high, norm, buffer.data());
    };
    if (time != nullptr)
        *time = tour.time(name, detect);
    else
        Tour::requireOk(name, detect());
    return out;
}

void showEdges(Tour& tour) {
    const struct {
        const char* name;
        const char* caption;
        KprMaskSize mask;
        int norm;
        float low, high;
    } steps[] = {
        {"edges, Sobel 3 x 3, L1", "|dx| + |dy|, thresholds 80 and 200", kprMaskSize3x3, kprNormL1, 80, 200},
        {"edges, Sobel 3 x 3, L2", "the length of (dx, dy), thresholds 80 and 200: fewer slanted edges pass",
         kprMaskSize3x3, kprNormL2, 80, 200},
        {"edges, Sobel 5 x 5, L1", "a larger kernel smooths more: thresholds 960 and 2400", kprMaskSize5x5, kprNormL1,
         960, 2400},
        {"edges, Sobel 5 x 5, L2", "thresholds 960 and 2400", kprMaskSize5x5, kprNormL2, 960, 2400},
    };
    const Gray& photo = tour.photo();
    for (const auto& step : steps) {
        double time = 0;
        const Gray map = edgesOf(tour, photo, step.name, step.mask, step.norm, step.low, step.high, &time);
        tour.show(step.name, step.caption, map, time, double(photo.width) * photo.height);
    }
}

// The smaller eigenvalue at every pixel.
Floats measureOf(Tour& tour, const Gray& photo, double* time = nullptr) {
    int size = 0;
    Tour::requireOk("MinEigenValGetBufferSize", kpriMinEigenValGetBufferSize_8u32f_C1R(photo.size(), 3, 3, &size));
    std::vector<Kpr8u> buffer(size);
    Floats out(photo.width, photo.height);
    const auto measure = [&] {
        return kpriMinEigenVal_8u32f_C1R(photo.data(), photo.step(), out.data(), out.step(), photo.size(), 0, 3, 3,
                                         buffer.data());
    };
    if (time != nullptr)
        *time = tour.time("MinEigenVal", measure);
    else
        Tour::requireOk("MinEigenVal", measure());
    return out;
}

void showMeasures(Tour& tour) {
    const Gray& photo = tour.photo();
    const double pixels = double(photo.width) * photo.height;
    double time = 0;
    const Floats smaller = measureOf(tour, photo, &time);
    tour.show("smaller eigenvalue", "of the structure tensor: corners are bright, edges dark", shown(smaller, 0, 2),
              time, pixels);

    int size = 0;
    Tour::requireOk("HarrisCornerGetBufferSize",
                    kpriHarrisCornerGetBufferSize(photo.size(), kprMaskSize3x3, 3, kpr8u, 1, &size));
    std::vector<Kpr8u> buffer(size);
    Floats response(photo.width, photo.height);
    time = tour.time("HarrisCorner", [&] {
        return kpriHarrisCorner_8u32f_C1R(photo.data(), photo.step(), response.data(), response.step(), photo.size(),
                                          kprFilterSobel, kprMaskSize3x3, 3, 0.04F, 1e-12F, kprBorderReplicate, 0,
                                          buffer.data());
    });
    tour.show("response of Harris", "gray is 0; corners are brighter, edges darker", shown(response, -0.5F, 0.5F), time,
              pixels);
}

// Derivatives of each channel, joined into one of all; their signs are those of the gray image.
void showColourEdges(Tour& tour) {
    const Image<Kpr8u> photo = tour.exampleInColour("astronaut.png");
    const KprSize size = {photo.width, photo.height};
    const auto derivative = [&](const Gray& plane, bool across) {
        Image<Kpr16s> out(size.width, size.height);
        Kpr8u buffer[64];
        const auto filter = across ? kpriFilterSobelNegVertBorder_8u16s_C1R : kpriFilterSobelHorizBorder_8u16s_C1R;
        Tour::requireOk("FilterSobel", filter(plane.data(), plane.step(), out.data(), out.step(), size, kprMaskSize3x3,
                                              kprBorderReplicate, 0, buffer));
        return out;
    };
    const Gray gray = tour.example("astronaut.png");
    Floats joined[2];
    double time = 0;
    for (const bool across : {true, false}) {
        Floats channels(size.width, size.height, 3);
        for (int c = 0; c < 3; ++c) {
            Gray plane(size.width, size.height);
            for (std::size_t i = 0; i < plane.pixels.size(); ++i) plane.pixels[i] = photo.pixels[3 * i + c];
            const Image<Kpr16s> slope = derivative(plane, across);
            for (std::size_t i = 0; i < plane.pixels.size(); ++i) channels.pixels[3 * i + c] = slope.pixels[i];
        }
        Floats& out = joined[across ? 0 : 1];
        out = Floats(size.width, size.height);
        time += tour.time("GradientColorToGray", [&] {
            return kpriGradientColorToGray_32f_C3C1R(channels.data(), channels.step(), out.data(), out.step(), size,
                                                     kprNormInf);
        });
        const Image<Kpr16s> signs = derivative(gray, across);
        for (std::size_t i = 0; i < out.pixels.size(); ++i) out.pixels[i] *= signs.pixels[i] < 0 ? -1.0F : 1.0F;
    }
    int bytes = 0;
    Tour::requireOk("CannyGetSize", kpriCannyGetSize(size, &bytes));
    std::vector<Kpr8u> buffer(bytes);
    Gray map(size.width, size.height);
    time += tour.time("Canny", [&] {
        return kpriCanny_32f8u_C1R(joined[0].data(), joined[0].step(), joined[1].data(), joined[1].step(), map.data(),
                                   map.step(), size, 80, 200, buffer.data());
    });
    tour.show("edges in colour",
              "the largest derivative of three channels: edges between colours of one brightness too", map, time,
              double(size.width) * size.height);
}

// Above: edges, from low to high thresholds. Below: what of the measure lies above a threshold, in white over the
// photograph in half its brightness.
void showThresholds(Tour& tour) {
    constexpr int side = 160, gap = 8;
    const Gray whole = tour.example("camera.png");
    Gray part(side, side);
    for (int y = 0; y < side; ++y) {
        for (int x = 0; x < side; ++x) part.at(x, y) = whole.at(170 + x, 60 + y);
    }
    Gray picture(4 * side + 3 * gap, 2 * side + gap);
    std::fill(picture.pixels.begin(), picture.pixels.end(), Kpr8u{255});
    const auto put = [&](const Gray& tile, int column, int row) {
        for (int y = 0; y < side; ++y) {
            for (int x = 0; x < side; ++x)
                picture.at(column * (side + gap) + x, row * (side + gap) + y) = tile.at(x, y);
        }
    };
    const float pairs[4][2] = {{20, 20}, {20, 200}, {80, 200}, {200, 200}};
    const float levels[4] = {0.1F, 0.5F, 2.0F, 6.0F};
    const Floats measure = measureOf(tour, part);
    for (int i = 0; i < 4; ++i) {
        put(edgesOf(tour, part, "edges", kprMaskSize3x3, kprNormL1, pairs[i][0], pairs[i][1]), i, 0);
        Gray corners(side, side);
        for (std::size_t k = 0; k < corners.pixels.size(); ++k)
            corners.pixels[k] = measure.pixels[k] > levels[i] ? Kpr8u{255} : static_cast<Kpr8u>(part.pixels[k] / 2);
        put(corners, i, 1);
    }
    tour.show(
        "thresholds",
        "Above, edges with the thresholds 20 and 20, 20 and 200, 80 and 200, 200 and 200. Below, where the smaller "
        "eigenvalue is above 0.1, 0.5, 2 and 6.",
        picture);
}

}  // namespace

void tourEdges(Tour& tour) {
    tour.chapter(
        "Edges and corner measures",
        "Pixels of the steepest change, thinned to lines and followed from strong ones over weak ones; and how "
        "much the image changes in every direction.");
    showEdges(tour);
    showMeasures(tour);
    showColourEdges(tour);
    showThresholds(tour);
}

}  // namespace tour
