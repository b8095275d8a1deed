// Coins on an uneven ground: a top-hat evens it out, and reconstruction fills the holes that a threshold leaves.
#include <algorithm>

#include "examples/tour/structuring.h"

namespace tour {
namespace {

// The image where its outermost pixels are, white inside: what a reconstruction by erosion starts from to fill holes.
Gray frameOf(const Gray& image) {
    Gray marker = image;
    for (int y = 1; y < image.height - 1; ++y) {
        for (int x = 1; x < image.width - 1; ++x) marker.at(x, y) = 255;
    }
    return marker;
}

std::vector<Kpr8u> reconstructionBuffer(KprSize size) {
    int bytes = 0;
    Tour::requireOk("MorphReconstructGetBufferSize", kpriMorphReconstructGetBufferSize(size, kpr8u, 1, &bytes));
    return std::vector<Kpr8u>(bytes);
}

}  // namespace

void tourCoins(Tour& tour) {
    const Gray coins = tour.example("coins.png");
    const KprSize size = coins.size();
    const double pixels = double(size.width) * size.height;
    tour.chapter("The holes of the coins",
                 "Reconstruction by erosion lets white shrink from the frame inward, nowhere below the image: what it "
                 "cannot reach is a hole, and is filled.");
    tour.show("coins", "the photograph that this chapter starts from", coins);

    Gray even = coins;
    Structuring<KprMorphAdvState> wide(size, rectangle(71, 71));
    double time = tour.time("MorphTophatBorder", [&] {
        return kpriMorphTophatBorder_8u_C1R(coins.data(), coins.step(), even.data(), even.step(), size,
                                            kprBorderDefault, 0, wide.spec(), wide.buffer());
    });
    tour.show("even ground", "top-hat by a square wider than a coin", even, time, pixels);

    Gray bright = even;
    std::transform(even.pixels.begin(), even.pixels.end(), bright.pixels.begin(),
                   [](Kpr8u value) { return static_cast<Kpr8u>(value > 70 ? 255 : 0); });
    tour.show("bright pixels", "above a threshold of 70: the faces of the coins have holes", bright);

    std::vector<Kpr8u> buffer = reconstructionBuffer(size);
    const Gray marker = frameOf(bright);
    Gray filled = marker;
    time = tour.time("MorphReconstructErode", [&] {
        filled.pixels = marker.pixels;  // the result stands where the marker was
        return kpriMorphReconstructErode_8u_C1IR(bright.data(), bright.step(), filled.data(), filled.step(), size,
                                                 buffer.data(), 1);
    });
    tour.show("filled holes", "reconstructed by erosion, neighbours being the 4 pixels beside, above and below", filled,
              time, pixels);

    const Gray grayMarker = frameOf(coins);
    Gray grayFilled = grayMarker;
    time = tour.time("MorphReconstructErode", [&] {
        grayFilled.pixels = grayMarker.pixels;
        return kpriMorphReconstructErode_8u_C1IR(coins.data(), coins.step(), grayFilled.data(), grayFilled.step(), size,
                                                 buffer.data(), 1);
    });
    tour.show("filled in gray", "the coins as they were, without a threshold: each hollow rises to the lowest way out",
              grayFilled, time, pixels);
}

}  // namespace tour
