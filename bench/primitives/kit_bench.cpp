// The kit of primitives, which are not exported.
#include "primitives/kit.h"

#include "bench/support/bench.h"
#include "primitives/extrema.h"
#include "primitives/math.h"

namespace {

using bench::Image;

template <typename T, typename Function, typename... Value>
auto filling(Function function, int channels, Value... value) {
    return [=](benchmark::State& state, KprSize size) {
        const Image<T> dst(size, channels);
        bench::measure(state, size, {0, sizeof(T) * static_cast<std::size_t>(channels)},
                       [&] { function(value..., dst.data(), dst.step(), size); });
    };
}

// From Src to Dst, or in place.
template <typename Src, typename Dst, typename Function, typename... Extra>
auto one(Function function, int channels, typename Image<Src>::Start start, bool inPlace, Extra... extra) {
    return [=](benchmark::State& state, KprSize size) {
        const Image<Src> src(size, channels, start);
        const Image<Dst> other(size, channels);
        const auto bytes = static_cast<std::size_t>(channels);
        auto* const dst = inPlace ? reinterpret_cast<Dst*>(src.data()) : other.data();
        const int dstStep = inPlace ? src.step() : other.step();
        bench::measure(state, size, {bytes * sizeof(Src), bytes * sizeof(Dst), inPlace},
                       [&] { function(src.data(), src.step(), dst, dstStep, size, extra...); });
    };
}

template <typename T, typename Function, typename... Extra>
auto two(Function function, int channels, Extra... extra) {
    return [=](benchmark::State& state, KprSize size) {
        const Image<T> a(size, channels), b(size, channels), dst(size, channels);
        const auto bytes = sizeof(T) * static_cast<std::size_t>(channels);
        bench::measure(state, size, {2 * bytes, bytes}, [&] {
            function(a.data(), a.step(), b.data(), b.step(), dst.data(), dst.step(), size, extra...);
        });
    };
}

// The array forms, over as many elements as the image has.
template <typename T, int sources, typename Function>
auto arrays(Function function) {
    return [=](benchmark::State& state, KprSize size) {
        const Image<T> a(size), b(size), dst(size);
        const int len = size.width * size.height;
        bench::measure(state, size, {sources * sizeof(T), sizeof(T)}, [&] {
            if constexpr (sources == 1) function(a.data(), dst.data(), len);
            if constexpr (sources == 2) function(a.data(), b.data(), dst.data(), len);
        });
    };
}

template <typename T, typename Function>
auto extrema(Function function, int channels) {
    return [=](benchmark::State& state, KprSize size) {
        const Image<T> src(size, channels);
        T value[3];
        int x[3], y[3];
        bench::measure(state, size, {sizeof(T) * static_cast<std::size_t>(channels), 0}, [&] {
            if constexpr (std::is_invocable_v<Function, const T*, int, KprSize, T*>) {
                function(src.data(), src.step(), size, value);
            } else {
                function(src.data(), src.step(), size, value, x, y);
            }
            benchmark::DoNotOptimize(value);
        });
    };
}

const bool registered = [] {
    constexpr auto aligned = Image<Kpr8u>::Aligned, odd = Image<Kpr8u>::Odd;
    constexpr auto words = Image<Kpr16u>::Aligned;
    constexpr auto alignedWords = Image<Kpr16s>::Aligned;
    constexpr auto floats = Image<Kpr32f>::Aligned, oddFloats = Image<Kpr32f>::Odd;
    static const Kpr16s tuple[] = {1, 2, 3, 4};
    bench::add("Set_8u_C1R", filling<Kpr8u>(kpriSet_8u_C1R, 1, Kpr8u{7}));
    bench::add("Set_16s_C3R", filling<Kpr16s>(kpriSet_16s_C3R, 3, tuple));
    bench::add("Copy_8u_C1R", one<Kpr8u, Kpr8u>(kpriCopy_8u_C1R, 1, aligned, false));
    bench::add("Copy_8u_C1R/odd", one<Kpr8u, Kpr8u>(kpriCopy_8u_C1R, 1, odd, false));
    bench::add("Copy_8u_AC4R", one<Kpr8u, Kpr8u>(kpriCopy_8u_AC4R, 4, aligned, false));
    bench::add("Copy_32f_C3R", one<Kpr32f, Kpr32f>(kpriCopy_32f_C3R, 3, floats, false));
    bench::add("Sub_8u_C1RSfs/0", two<Kpr8u>(kpriSub_8u_C1RSfs, 1, 0));
    bench::add("Sub_8u_C1RSfs/1", two<Kpr8u>(kpriSub_8u_C1RSfs, 1, 1));
    bench::add("Sub_16s_C1RSfs/1", two<Kpr16s>(kpriSub_16s_C1RSfs, 1, 1));
    bench::add("Sub_32f_C1R", two<Kpr32f>(kpriSub_32f_C1R, 1));
    bench::add("MulC_16s_C1RSfs/4",
               one<Kpr16s, Kpr16s>([](const Kpr16s* src, int srcStep, Kpr16s* dst, int dstStep,
                                      KprSize size) { kpriMulC_16s_C1RSfs(src, srcStep, 77, dst, dstStep, size, 4); },
                                   1, alignedWords, false));
    bench::add("Convert_16u32f_C1R", one<Kpr16u, Kpr32f>(kpriConvert_16u32f_C1R, 1, words, false));
    bench::add("Threshold_LT_32f_C1R", one<Kpr32f, Kpr32f>(kpriThreshold_LT_32f_C1R, 1, floats, false, 100.0F));
    bench::add("Threshold_LT_32f_C1R/in_place", one<Kpr32f, Kpr32f>(kpriThreshold_LT_32f_C1R, 1, floats, true, 100.0F));
    bench::add("Threshold_LT_32f_C1R/odd", one<Kpr32f, Kpr32f>(kpriThreshold_LT_32f_C1R, 1, oddFloats, false, 100.0F));
    bench::add("Threshold_GTVal_8u_C1R",
               one<Kpr8u, Kpr8u>(kpriThreshold_GTVal_8u_C1R, 1, aligned, false, Kpr8u{100}, Kpr8u{9}));
    bench::add("Min_8u_C1R", extrema<Kpr8u>(kpriMin_8u_C1R, 1));
    bench::add("Min_8u_C3R", extrema<Kpr8u>(kpriMin_8u_C3R, 3));
    bench::add("MaxIndx_32f_C1R", extrema<Kpr32f>(kpriMaxIndx_32f_C1R, 1));
    bench::add("MaxEvery_32f", arrays<Kpr32f, 2>(kprsMaxEvery_32f));
    bench::add("Sqrt_32f", arrays<Kpr32f, 1>(kprsSqrt_32f));
    bench::add("Atan2_32f", arrays<Kpr32f, 2>(kprsAtan2_32f_A21));
    bench::add("Magnitude_32f", arrays<Kpr32f, 2>(kprsMagnitude_32f));
    bench::add("Magnitude_16s", arrays<Kpr16s, 2>([](const Kpr16s* re, const Kpr16s* im, Kpr16s* dst, int len) {
                   kprsMagnitude_16s_Sfs(re, im, dst, len, 0);
               }));
    return true;
}();

}  // namespace
