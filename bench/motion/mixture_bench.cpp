// The mixture of five modes on a film: a still scene with noise, in which a few things move.
#include <algorithm>
#include <vector>

#include "bench/support/bench.h"

namespace {

using bench::Image;

std::vector<Image<Kpr8u>> film(KprSize size, int frames) {
    std::mt19937 engine(5);
    std::vector<Image<Kpr8u>> all;
    for (int n = 0; n < frames; ++n) {
        const Image<Kpr8u>& frame = all.emplace_back(size, 3);
        for (int y = 0; y < size.height; ++y) {
            for (int x = 0; x < size.width; ++x) {
                const bool thing = (x + 9 * n) % size.width < size.width / 12 && y / (size.height / 8) % 4 == 1;
                for (int c = 0; c < 3; ++c) {
                    const int scene = (x / 7 * 13 + y / 5 * 29 + 40 * c) % 200 + 20;
                    const int value = (thing ? 230 - 60 * c : scene) + static_cast<int>(engine() % 7) - 3;
                    frame.data()[y * frame.step() + 3 * x + c] = static_cast<Kpr8u>(std::clamp(value, 0, 255));
                }
            }
        }
    }
    return all;
}

void mixture(benchmark::State& state, KprSize size) {
    constexpr KprFGMMModel model = {200, 5, 15.0F, 4.0F, 75.0F, 16.0F, 0.9F, 9.0F, 0.05F, 127, 1, 0.5F};
    int bytes = 0;
    kpriFGMMGetBufferSize_8u_C3R(size, 5, &bytes);
    std::vector<char> memory(static_cast<std::size_t>(bytes));
    auto* const mixed = reinterpret_cast<KprFGMMState*>(memory.data());
    kpriFGMMInit_8u_C3R(size, 5, &model, mixed);
    const std::vector<Image<Kpr8u>> frames = film(size, 40);
    const Image<Kpr8u> mask(size);
    std::size_t n = 0;
    const auto next = [&] {
        const Image<Kpr8u>& frame = frames[n++ % frames.size()];
        kpriFGMMForeground_8u_C3R(frame.data(), frame.step(), mask.data(), mask.step(), size, mixed, nullptr, -1);
    };
    for (int i = 0; i < 40; ++i) next();
    bench::measure(state, size, {3, 1}, next);
}

const bool registered = [] {
    bench::add("FGMMForeground_8u_C3R", mixture);
    return true;
}();

}  // namespace
