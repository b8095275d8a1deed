// Growing along colour steps from 80 markers, and beside it the plain form with a binary heap, as the tests have it.
#include <cstring>
#include <vector>

#include "bench/segment/ground.h"
#include "tests/reference/segment.h"

namespace {

using bench::Image;

const bool registered = [] {
    for (int channels : {1, 3}) {
        const std::string name = "SegmentGradient_8u_C" + std::to_string(channels) + "IR/";
        for (int norm : {0, 1}) {
            bench::add(name + "neighbours_" + std::to_string(norm == 0 ? 8 : 4), [=](auto& state, KprSize size) {
                const Image<Kpr8u> image(size, channels), markers(size), result(size);
                bench::drawScene(image, size, channels);
                bench::drawMarkers(markers, size);
                int bytes = 0;
                kpriSegmentGradientGetBufferSize_8u_C1R(size, &bytes);
                std::vector<Kpr8u> buffer(static_cast<std::size_t>(bytes));
                const auto run = channels == 1 ? kpriSegmentGradient_8u_C1IR : kpriSegmentGradient_8u_C3IR;
                const auto traffic = static_cast<std::size_t>(channels) + 1;
                bench::measure(state, size, {traffic, 1, true}, [&] {
                    std::memcpy(result.data(), markers.data(),
                                static_cast<std::size_t>(markers.step()) * static_cast<std::size_t>(size.height));
                    run(image.data(), image.step(), result.data(), result.step(), size, norm, 0, buffer.data());
                });
            });
        }
        bench::add(name + "plain_heap", [=](auto& state, KprSize size) {
            reference::Picture<Kpr8u> image{size, channels, {}};
            const Image<Kpr8u> markers(size);
            bench::drawMarkers(markers, size);
            std::vector<Kpr8u> start;
            for (int y = 0; y < size.height; ++y) {
                for (int x = 0; x < size.width; ++x) {
                    for (int c = 0; c < channels; ++c) image.pixels.push_back(bench::sceneAt(x, y, c));
                    start.push_back(markers.data()[y * markers.step() + x]);
                }
            }
            const auto traffic = static_cast<std::size_t>(channels) + 1;
            bench::measure(state, size, {traffic, 1, true}, [&] {
                auto result = start;
                reference::colourSteps(image, result, 8);
                benchmark::DoNotOptimize(result.data());
            });
        });
    }
    return true;
}();

}  // namespace
