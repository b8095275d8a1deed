// Layers of a pyramid, by source pixels on the way down and by destination pixels on the way up.
#include "bench/support/bench.h"

namespace {

using bench::Image;

template <typename T>
using TapOf = std::conditional_t<std::is_same_v<T, Kpr32f>, Kpr32f, Kpr16s>;

template <typename T, typename State>
void run(benchmark::State& bench, KprSize larger, int channels, float rate, std::vector<TapOf<T>> kernel, auto sizes,
         auto init, auto make) {
    constexpr bool down = std::is_same_v<State, KprPyramidDownState>;
    KprSize smaller;
    kpriGetPyramidDownROI(larger, &smaller, rate);
    const KprSize from = down ? larger : smaller, to = down ? smaller : larger;
    const Image<T> src(from, channels), dst(to, channels);
    const auto taps = static_cast<int>(kernel.size());
    int bytes = 0;
    sizes(larger, rate, taps, &bytes);
    std::vector<Kpr8u> memory(static_cast<std::size_t>(bytes));
    Kpr8u buffer[64];
    State* state = nullptr;
    init(&state, larger, rate, kernel.data(), taps, 2, memory.data(), buffer);
    const auto whole = sizeof(T) * static_cast<std::size_t>(channels);
    const auto part = static_cast<std::size_t>(static_cast<float>(whole) / (rate * rate));
    bench::measure(bench, larger, {down ? whole : part, down ? part : whole},
                   [&] { make(src.data(), src.step(), from, dst.data(), dst.step(), to, state); });
}

template <typename T>
auto down(float rate, int channels, std::vector<TapOf<T>> kernel, auto sizes, auto init, auto make) {
    return [=](benchmark::State& bench, KprSize size) {
        const auto stateSize = [&](KprSize roi, Kpr32f r, int n, int* bytes) {
            int buffer = 0;
            return sizes(roi, r, n, bytes, &buffer);
        };
        run<T, KprPyramidDownState>(bench, size, channels, rate, kernel, stateSize, init, make);
    };
}
template <typename T>
auto up(float rate, int channels, std::vector<TapOf<T>> kernel, auto sizes, auto init, auto make) {
    return [=](benchmark::State& bench, KprSize size) {
        run<T, KprPyramidUpState>(bench, size, channels, rate, kernel, sizes, init, make);
    };
}

#define DOWN(type, form)                                                                   \
    kpriPyramidLayerDownGetSize_##type##_##form, kpriPyramidLayerDownInit_##type##_##form, \
        kpriPyramidLayerDown_##type##_##form
#define UP(type, form)                                                                 \
    kpriPyramidLayerUpGetSize_##type##_##form, kpriPyramidLayerUpInit_##type##_##form, \
        kpriPyramidLayerUp_##type##_##form

[[maybe_unused]] const bool registered = [] {
    const std::vector<Kpr16s> five = {1, 4, 6, 4, 1}, wide = {410, 1638, 2458, 1638, 410};
    const std::vector<Kpr32f> floats = {0.0625F, 0.25F, 0.375F, 0.25F, 0.0625F};
    bench::add("PyramidLayerDown_8u_C1R/rate2", down<Kpr8u>(2.0F, 1, five, DOWN(8u, C1R)));
    bench::add("PyramidLayerDown_8u_C3R/rate2", down<Kpr8u>(2.0F, 3, five, DOWN(8u, C3R)));
    bench::add("PyramidLayerDown_8u_C1R/rate2/large_taps", down<Kpr8u>(2.0F, 1, wide, DOWN(8u, C1R)));
    bench::add("PyramidLayerDown_16u_C1R/rate2", down<Kpr16u>(2.0F, 1, five, DOWN(16u, C1R)));
    bench::add("PyramidLayerDown_32f_C1R/rate2", down<Kpr32f>(2.0F, 1, floats, DOWN(32f, C1R)));
    bench::add("PyramidLayerDown_8u_C1R/rate1.5", down<Kpr8u>(1.5F, 1, five, DOWN(8u, C1R)));
    bench::add("PyramidLayerDown_8u_C1R/rate3", down<Kpr8u>(3.0F, 1, five, DOWN(8u, C1R)));
    bench::add("PyramidLayerUp_8u_C1R/rate2", up<Kpr8u>(2.0F, 1, five, UP(8u, C1R)));
    bench::add("PyramidLayerUp_8u_C3R/rate2", up<Kpr8u>(2.0F, 3, five, UP(8u, C3R)));
    bench::add("PyramidLayerUp_32f_C1R/rate2", up<Kpr32f>(2.0F, 1, floats, UP(32f, C1R)));
    bench::add("PyramidLayerUp_8u_C1R/rate1.5", up<Kpr8u>(1.5F, 1, five, UP(8u, C1R)));
    return true;
}();

}  // namespace
