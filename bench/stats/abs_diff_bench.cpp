#include "bench/support/bench.h"

namespace {

using bench::Image;

template <typename T, typename Function>
auto twoSources(Function function, int channels = 1, typename Image<T>::Start start = Image<T>::Aligned) {
    return [=](benchmark::State& state, KprSize size) {
        const Image<T> a(size, channels, start), b(size, channels, start), dst(size, channels, start);
        const auto bytes = sizeof(T) * static_cast<std::size_t>(channels);
        bench::measure(state, size, {2 * bytes, bytes},
                       [&] { function(a.data(), a.step(), b.data(), b.step(), dst.data(), dst.step(), size); });
    };
}

template <typename T, typename Function>
auto inPlace(Function function) {
    return [=](benchmark::State& state, KprSize size) {
        const Image<T> a(size), b(size);
        bench::measure(state, size, {2 * sizeof(T), sizeof(T), true},
                       [&] { function(a.data(), a.step(), b.data(), b.step(), a.data(), a.step(), size); });
    };
}

template <typename T, typename Function>
auto constant(Function function) {
    return [=](benchmark::State& state, KprSize size) {
        const Image<T> src(size), dst(size);
        bench::measure(state, size, {sizeof(T), sizeof(T)},
                       [&] { function(src.data(), src.step(), dst.data(), dst.step(), size, 100); });
    };
}

// The rule as one would write it down, left to the compiler's scalar code.
[[gnu::noinline]] void plainAbsDiff(const Kpr8u* a, int aStep, const Kpr8u* b, int bStep, Kpr8u* dst, int dstStep,
                                    KprSize size) {
    for (int y = 0; y < size.height; ++y, a += aStep, b += bStep, dst += dstStep) {
        for (int x = 0; x < size.width; ++x) dst[x] = static_cast<Kpr8u>(std::abs(a[x] - b[x]));
    }
}

// The same number of pixels in short rows and in long ones, rows never adjacent: what a row costs beyond its pixels.
void rowsOf(benchmark::State& state, int width) {
    const KprSize size = {width, 17408 / width};
    const KprSize held = {width + 64, size.height};
    const Image<Kpr8u> a(held), b(held), dst(held);
    bench::measure(state, size, {2, 1},
                   [&] { kpriAbsDiff_8u_C1R(a.data(), a.step(), b.data(), b.step(), dst.data(), dst.step(), size); });
    state.counters["ns/row"] = benchmark::Counter(
        size.height * 1e-9, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

const bool registered = [] {
    bench::add("AbsDiff_8u_C1R", twoSources<Kpr8u>(kpriAbsDiff_8u_C1R));
    bench::add("AbsDiff_8u_C1R/plain_loop", twoSources<Kpr8u>(plainAbsDiff));
    bench::add("AbsDiff_8u_C1R/odd", twoSources<Kpr8u>(kpriAbsDiff_8u_C1R, 1, Image<Kpr8u>::Odd));
    bench::add("AbsDiff_8u_C1R/in_place", inPlace<Kpr8u>(kpriAbsDiff_8u_C1R));
    bench::add("AbsDiff_8u_C3R", twoSources<Kpr8u>(kpriAbsDiff_8u_C3R, 3));
    bench::add("AbsDiff_16u_C1R", twoSources<Kpr16u>(kpriAbsDiff_16u_C1R));
    bench::add("AbsDiff_32f_C1R", twoSources<Kpr32f>(kpriAbsDiff_32f_C1R));
    bench::add("AbsDiff_32f_C1R/odd", twoSources<Kpr32f>(kpriAbsDiff_32f_C1R, 1, Image<Kpr32f>::Odd));
    bench::add("AbsDiffC_8u_C1R", constant<Kpr8u>(kpriAbsDiffC_8u_C1R));
    bench::add("AbsDiffC_16u_C1R", constant<Kpr16u>(kpriAbsDiffC_16u_C1R));
    bench::add("AbsDiffC_32f_C1R", constant<Kpr32f>(kpriAbsDiffC_32f_C1R));
    for (int width : {17, 64, 1024}) {
        benchmark::RegisterBenchmark(("AbsDiff_8u_C1R/row_of_" + std::to_string(width)).c_str(), rowsOf, width);
    }
    return true;
}();

}  // namespace
