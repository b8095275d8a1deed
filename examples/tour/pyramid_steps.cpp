// The photograph at ever smaller sizes, at two rates, and back up from a small one.
#include "examples/tour/pyramid.h"

namespace tour {
namespace {

// Levels one beside the other, the first one large.
Gray sideBySide(const std::vector<Gray>& images) {
    int width = 0;
    for (const Gray& image : images) width += image.width + 4;
    Gray all(width, images[0].height);
    int left = 0;
    for (const Gray& image : images) {
        for (int y = 0; y < image.height; ++y)
            std::copy_n(image.from(0, y), image.width, &all.pixels[static_cast<std::size_t>(y) * width + left]);
        left += image.width + 4;
    }
    return all;
}

Gray above(const Gray& image, KprSize size, float rate) {
    int bytes = 0;
    Tour::requireOk("PyramidLayerUpGetSize", kpriPyramidLayerUpGetSize_8u_C1R(size, rate, Pyramid::kTaps, &bytes));
    std::vector<Kpr8u> memory(bytes);
    KprPyramidUpState* state = nullptr;
    Tour::requireOk("PyramidLayerUpInit", kpriPyramidLayerUpInit_8u_C1R(&state, size, rate, Pyramid::kKernel,
                                                                        Pyramid::kTaps, 2, memory.data(), nullptr));
    Gray out(size.width, size.height);
    Tour::requireOk("PyramidLayerUp", kpriPyramidLayerUp_8u_C1R(image.data(), image.step(), image.size(), out.data(),
                                                                out.step(), size, state));
    return out;
}

}  // namespace

void tourPyramids(Tour& tour) {
    tour.chapter("Pyramids", "Each level is the one before, smoothed by the taps 1 4 6 4 1 and sampled at the rate.");
    for (const float rate : {2.0F, 1.5F}) {
        const Pyramid pyramid(tour.photo(), rate, 6);
        const std::string name = rate == 2.0F ? "rate 2" : "rate 1.5";
        tour.show("pyramid at " + name, "the image and up to six levels below it", sideBySide(pyramid.levels()));
        Gray back = pyramid.levels()[3];
        for (int k = 2; k >= 0; --k) back = above(back, pyramid.record()->pRoi[k], rate);
        tour.show("back up at " + name, "from level 3, three layers up: what is finer than that level is gone", back);
    }
}

}  // namespace tour
