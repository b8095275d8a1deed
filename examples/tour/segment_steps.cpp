// Segmentation: fills, labels, speckles, watersheds, growing along colour steps.
#include <array>

#include "examples/tour/structuring.h"

namespace tour {
namespace {

using Colour = std::array<Kpr8u, 3>;
constexpr Colour kRed = {230, 40, 40};

// Any number of colours that differ from one another; 0 is black.
Colour colourOf(int label) {
    if (label == 0) return {0, 0, 0};
    const auto wave = [label](int channel) { return 140 + 110 * std::sin(label * 2.4 + channel * 2.1); };
    return {static_cast<Kpr8u>(wave(0)), static_cast<Kpr8u>(wave(1)), static_cast<Kpr8u>(wave(2))};
}

Image<Kpr8u> inColour(const Gray& image) {
    Image<Kpr8u> out(image.width, image.height, 3);
    for (std::size_t i = 0; i < out.pixels.size(); ++i) out.pixels[i] = image.pixels[i / 3];
    return out;
}

void paint(Image<Kpr8u>& image, int x, int y, const Colour& colour) {
    if (x < 0 || y < 0 || x >= image.width || y >= image.height) return;
    std::copy(colour.begin(), colour.end(), &image.pixels[(static_cast<std::size_t>(y) * image.width + x) * 3]);
}

Image<Kpr8u> labelled(const Gray& labels) {
    Image<Kpr8u> out(labels.width, labels.height, 3);
    for (int y = 0; y < labels.height; ++y) {
        for (int x = 0; x < labels.width; ++x) paint(out, x, y, colourOf(labels.at(x, y)));
    }
    return out;
}

// Pixels of one value, painted over an image.
Image<Kpr8u> over(Image<Kpr8u> image, const Gray& marks, Kpr8u value) {
    for (int y = 0; y < marks.height; ++y) {
        for (int x = 0; x < marks.width; ++x) {
            if (marks.at(x, y) == value) paint(image, x, y, kRed);
        }
    }
    return image;
}

Gray above(const Gray& image, int threshold) {
    Gray out(image.width, image.height);
    std::transform(image.pixels.begin(), image.pixels.end(), out.pixels.begin(),
                   [=](Kpr8u v) { return static_cast<Kpr8u>(v > threshold ? 255 : 0); });
    return out;
}

template <typename GetSize, typename... Arguments>
std::vector<Kpr8u> bufferOf(GetSize getSize, Arguments... arguments) {
    int bytes = 0;
    Tour::requireOk("GetSize", getSize(arguments..., &bytes));
    return std::vector<Kpr8u>(static_cast<std::size_t>(bytes));
}

double pixelsOf(KprSize size) { return double(size.width) * size.height; }

void tourFill(Tour& tour) {
    const Gray& photo = tour.photo();
    const KprSize size = photo.size();
    const KprPoint seed = {size.width / 5, size.height / 5};
    Gray filled = photo;
    KprConnectedComp region{};
    std::vector<Kpr8u> buffer = bufferOf(kpriFloodFillGetSize_Grad, size);
    const double time = tour.time("FloodFill_Grad4Con", [&] {
        filled.pixels = photo.pixels;  // the fill works in place
        return kpriFloodFill_Grad4Con_8u_C1IR(filled.data(), filled.step(), size, seed, 255, 3, 3, &region,
                                              buffer.data());
    });
    Image<Kpr8u> picture = inColour(filled);
    const KprRect box = region.rect;
    for (int x = box.x; x < box.x + box.width; ++x) {
        paint(picture, x, box.y, kRed);
        paint(picture, x, box.y + box.height - 1, kRed);
    }
    for (int y = box.y; y < box.y + box.height; ++y) {
        paint(picture, box.x, y, kRed);
        paint(picture, box.x + box.width - 1, y, kRed);
    }
    tour.show("fill along small steps",
              std::to_string(static_cast<long>(region.area)) +
                  " pixels reached by steps of no more than 3, white, and the rectangle of the fill's record",
              picture, time, pixelsOf(size));
}

void tourSpeckles(Tour& tour, const Gray& photo) {
    const KprSize size = photo.size();
    Gray noisy = photo;  // few levels, and wrong pixels strewn over them
    unsigned random = 7;
    for (Kpr8u& pixel : noisy.pixels) {
        random = random * 1664525 + 1013904223;
        pixel = static_cast<Kpr8u>(random >> 24 < 12 ? random >> 16 : pixel / 48 * 48 + 1);
    }
    tour.show("noisy map", "the coins in six levels, with wrong pixels", noisy);
    Gray clean = noisy;
    std::vector<Kpr8u> buffer = bufferOf(kpriMarkSpecklesGetBufferSize, size, kpr8u, 1);
    const double time = tour.time("MarkSpeckles", [&] {
        clean.pixels = noisy.pixels;
        return kpriMarkSpeckles_8u_C1IR(clean.data(), clean.step(), size, 0, 20, 2, 1, buffer.data());
    });
    tour.show("without speckles", "regions of at most 20 pixels have become 0: what is left is to be trusted", clean,
              time, pixelsOf(size));
}

void tourWatersheds(Tour& tour, const Gray& coins) {
    const KprSize size = coins.size();
    const double pixels = pixelsOf(size);
    Structuring<KprMorphAdvState> wide(size, rectangle(71, 71));
    Structuring<KprMorphAdvState> small(size, rectangle(3, 3));
    Gray even = coins;
    Gray relief = coins;
    Tour::requireOk("MorphTophatBorder",
                    kpriMorphTophatBorder_8u_C1R(coins.data(), coins.step(), even.data(), even.step(), size,
                                                 kprBorderDefault, 0, wide.spec(), wide.buffer()));
    Tour::requireOk("MorphGradientBorder",
                    kpriMorphGradientBorder_8u_C1R(coins.data(), coins.step(), relief.data(), relief.step(), size,
                                                   kprBorderDefault, 0, small.spec(), small.buffer()));
    tour.show("relief", "the gradient of the photograph: what floods have to climb", relief);

    Gray bright = above(even, 70);
    std::vector<Kpr8u> buffer = bufferOf(kpriMarkSpecklesGetBufferSize, size, kpr8u, 1);
    Tour::requireOk("MarkSpeckles",
                    kpriMarkSpeckles_8u_C1IR(bright.data(), bright.step(), size, 0, 300, 0, 1, buffer.data()));
    Gray labels = bright;
    int count = 0;
    double time = tour.time("LabelMarkers", [&] {
        labels.pixels = bright.pixels;
        return kpriLabelMarkers_8u_C1IR(labels.data(), labels.step(), size, 1, 253, 0, &count, buffer.data());
    });
    tour.show("labels", std::to_string(count) + " bright regions, a label and a colour each", labelled(labels), time,
              pixels);

    Gray markers = labels;  // and the ground, with a label of its own
    for (std::size_t i = 0; i < markers.pixels.size(); ++i) {
        if (even.pixels[i] < 12) markers.pixels[i] = 254;
    }
    buffer = bufferOf(kpriSegmentWatershedGetBufferSize_8u_C1R, size);
    Gray result = markers;
    const auto flood = [&](const char* name, int way, const char* caption) {
        time = tour.time("SegmentWatershed", [&] {
            result.pixels = markers.pixels;
            return kpriSegmentWatershed_8u_C1IR(relief.data(), relief.step(), result.data(), result.step(), size,
                                                kprSegNormChess, way | kprSegWall8, buffer.data());
        });
        tour.show(name, caption, over(inColour(coins), result, 255), time, pixels);
    };
    flood("watershed by queue", kprSegQueue, "flooded level by level from the labels and the ground; walls in red");
    flood("watershed by sweeps", kprSegIterative, "flooded by sweeps down and up; walls in red");
}

void tourColourSteps(Tour& tour) {
    const Image<Kpr8u> coffee = tour.exampleInColour("coffee.png");
    const KprSize size = coffee.size();
    enum { table = 1, saucer, cup, drink, spoon, shadow };
    const struct {
        int label, x, y;
    } marks[] = {{table, 30, 200},   {table, 540, 60},   {table, 560, 330},  {table, 60, 350},   {table, 480, 30},
                 {table, 120, 80},   {table, 530, 200},  {table, 70, 260},   {table, 110, 345},  {table, 180, 385},
                 {table, 460, 330},  {table, 400, 385},  {table, 10, 245},   {cup, 290, 262},    {saucer, 130, 180},
                 {saucer, 140, 270}, {saucer, 250, 350}, {saucer, 440, 160}, {saucer, 430, 290}, {cup, 190, 100},
                 {cup, 290, 30},     {cup, 390, 100},    {cup, 300, 70},     {cup, 180, 160},    {cup, 290, 230},
                 {cup, 225, 270},    {drink, 280, 160},  {drink, 250, 120},  {spoon, 365, 285},  {spoon, 345, 290},
                 {spoon, 390, 280},  {spoon, 412, 85},   {shadow, 40, 30}};
    Gray markers(size.width, size.height);
    for (const auto& mark : marks) {
        for (int y = -3; y <= 3; ++y) {
            for (int x = -3; x <= 3; ++x) markers.at(mark.x + x, mark.y + y) = static_cast<Kpr8u>(mark.label);
        }
    }
    Image<Kpr8u> marked = coffee;
    Gray result = markers;
    std::vector<Kpr8u> buffer = bufferOf(kpriSegmentGradientGetBufferSize_8u_C3R, size);
    const double time = tour.time("SegmentGradient", [&] {
        result.pixels = markers.pixels;
        return kpriSegmentGradient_8u_C3IR(coffee.data(), coffee.step(), result.data(), result.step(), size,
                                           kprSegNormChess, 0, buffer.data());
    });
    Image<Kpr8u> parts = labelled(result);
    for (int y = 0; y < size.height; ++y) {
        for (int x = 0; x < size.width; ++x) {
            if (markers.at(x, y) != 0) paint(marked, x, y, colourOf(markers.at(x, y)));
        }
    }
    for (std::size_t i = 0; i < parts.pixels.size(); ++i)
        parts.pixels[i] = static_cast<Kpr8u>((parts.pixels[i] + coffee.pixels[i]) / 2);
    tour.show("marked pixels", "squares on the table, the saucer, the cup, the coffee, the spoon and the shadow",
              marked);
    tour.show("grown along colour steps",
              "each pixel has the label from which it is reached with the smallest largest step of colour", parts, time,
              pixelsOf(size));
}

}  // namespace

void tourSegments(Tour& tour) {
    tour.chapter(
        "Segments",
        "A fill takes what hangs together. Labels number regions, a watershed floods a relief from them until the "
        "floods meet, and markers grow over a photograph along its smallest steps of colour.");
    tourFill(tour);
    const Gray coins = tour.example("coins.png");
    tourSpeckles(tour, coins);
    tourWatersheds(tour, coins);
    tourColourSteps(tour);
}

}  // namespace tour
