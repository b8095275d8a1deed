#include "bench/support/bench.h"

namespace {

using bench::Image;

// A member called as function(src..., srcDst, size, extra...).
template <typename T, int sources = 1, typename Function, typename... Extra>
auto plain(Function function, Extra... extra) {
    return [=](benchmark::State& state, KprSize size) {
        const Image<T> a(size), b(size);
        const Image<Kpr32f> sum(size);
        bench::measure(state, size, {sources * sizeof(T) + 4, 4, true}, [&] {
            if constexpr (sources == 1) function(a.data(), a.step(), sum.data(), sum.step(), size, extra...);
            if constexpr (sources == 2) function(a.data(), a.step(), b.data(), b.step(), sum.data(), sum.step(), size);
        });
    };
}

enum class Pattern { None, Random, Full };

template <typename T, typename Function, typename... Extra>
auto masked(Pattern pattern, Function function, Extra... extra) {
    return [=](benchmark::State& state, KprSize size) {
        const Image<T> src(size);
        const Image<Kpr8u> mask(size);
        const Image<Kpr32f> sum(size);
        std::mt19937 engine(11);
        for (int i = 0; i < mask.step() * size.height; ++i) {
            mask.data()[i] = pattern == Pattern::Random ? engine() & 1 : pattern == Pattern::Full;
        }
        bench::measure(state, size, {sizeof(T) + 5, 4, true}, [&] {
            function(src.data(), src.step(), mask.data(), mask.step(), sum.data(), sum.step(), size, extra...);
        });
    };
}

[[gnu::noinline]] void plainAdd(const Kpr8u* src, int srcStep, Kpr32f* sum, int sumStep, KprSize size) {
    for (int y = 0; y < size.height; ++y, src += srcStep, sum += sumStep / 4) {
        for (int x = 0; x < size.width; ++x) sum[x] += static_cast<float>(src[x]);
    }
}

const bool registered = [] {
    bench::add("Add_8u32f_C1IR", plain<Kpr8u>(kpriAdd_8u32f_C1IR));
    bench::add("Add_8u32f_C1IR/plain_loop", plain<Kpr8u>(plainAdd));
    bench::add("Add_16u32f_C1IR", plain<Kpr16u>(kpriAdd_16u32f_C1IR));
    bench::add("AddSquare_8u32f_C1IR", plain<Kpr8u>(kpriAddSquare_8u32f_C1IR));
    bench::add("AddSquare_32f_C1IR", plain<Kpr32f>(kpriAddSquare_32f_C1IR));
    bench::add("AddProduct_8u32f_C1IR", plain<Kpr8u, 2>(kpriAddProduct_8u32f_C1IR));
    bench::add("AddWeighted_8u32f_C1IR", plain<Kpr8u>(kpriAddWeighted_8u32f_C1IR, 0.05F));
    bench::add("AddWeighted_32f_C1IR", plain<Kpr32f>(kpriAddWeighted_32f_C1IR, 0.05F));
    bench::add("Add_8u32f_C1IMR/empty", masked<Kpr8u>(Pattern::None, kpriAdd_8u32f_C1IMR));
    bench::add("Add_8u32f_C1IMR/random", masked<Kpr8u>(Pattern::Random, kpriAdd_8u32f_C1IMR));
    bench::add("Add_8u32f_C1IMR/full", masked<Kpr8u>(Pattern::Full, kpriAdd_8u32f_C1IMR));
    bench::add("AddWeighted_8u32f_C1IMR/random", masked<Kpr8u>(Pattern::Random, kpriAddWeighted_8u32f_C1IMR, 0.05F));
    return true;
}();

}  // namespace
