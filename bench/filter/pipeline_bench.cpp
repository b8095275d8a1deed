#include <vector>

#include "bench/support/bench.h"

namespace {

using bench::Image;

const std::vector<Kpr16s> integerTaps = [] {
    std::vector<Kpr16s> taps(31);
    for (int i = 0; i < 31; ++i) taps[i] = static_cast<Kpr16s>(100 + 7 * i % 31);
    return taps;
}();
const std::vector<Kpr32f> floatTaps(integerTaps.begin(), integerTaps.end());

template <typename Src, typename Dst, typename Function>
auto rowStage(Function function, int kernelSize) {
    constexpr bool threeChannels = !std::is_invocable_v<Function, const Src*, int, Dst* const*, KprSize, const Kpr16s*,
                                                        int, int, KprBorderType, Src, int, Kpr8u*> &&
                                   sizeof(Src) < 4;
    constexpr int channels = threeChannels ? 3 : 1;
    return [=](benchmark::State& state, KprSize size) {
        const Image<Src> src(size, channels);
        const Image<Dst> dst(size, channels);
        const auto value = [] {
            if constexpr (threeChannels)
                return static_cast<const Src*>(nullptr);
            else
                return Src{};
        }();
        std::vector<Dst*> rows;
        for (int y = 0; y < size.height; ++y) rows.push_back(dst.data() + y * (dst.step() / int(sizeof(Dst))));
        std::vector<Kpr8u> buffer(1 << 16);
        bench::measure(state, size, {sizeof(Src) * channels, sizeof(Dst) * channels}, [&] {
            if constexpr (sizeof(Src) == 4)
                function(src.data(), src.step(), rows.data(), size, floatTaps.data(), kernelSize, kernelSize / 2,
                         kprBorderReplicate, value, buffer.data());
            else
                function(src.data(), src.step(), rows.data(), size, integerTaps.data(), kernelSize, kernelSize / 2,
                         kprBorderReplicate, value, 4096, buffer.data());
        });
    };
}

template <typename Src, typename Dst, typename Function>
auto columnStage(Function function, int kernelSize) {
    return [=](benchmark::State& state, KprSize size) {
        const Image<Src> src({size.width, size.height + kernelSize - 1});
        const Image<Dst> dst(size);
        std::vector<const Src*> rows;
        for (int y = 0; y < size.height + kernelSize - 1; ++y)
            rows.push_back(src.data() + y * (src.step() / int(sizeof(Src))));
        std::vector<Kpr8u> buffer(1 << 20);
        bench::measure(state, size, {sizeof(Src), sizeof(Dst)}, [&] {
            if constexpr (sizeof(Src) == 4)
                function(rows.data(), dst.data(), dst.step(), size, floatTaps.data(), kernelSize, buffer.data());
            else
                function(rows.data(), dst.data(), dst.step(), size, integerTaps.data(), kernelSize, 4096,
                         buffer.data());
        });
    };
}

const bool registered = [] {
    for (int taps : {3, 5, 7, 15, 31}) {
        const std::string ending = "/taps" + std::to_string(taps);
        bench::add("FilterRow_8u16s_C1R" + ending,
                   rowStage<Kpr8u, Kpr16s>(kpriFilterRowBorderPipeline_8u16s_C1R, taps));
        bench::add("FilterRow_8u16s_C3R" + ending,
                   rowStage<Kpr8u, Kpr16s>(kpriFilterRowBorderPipeline_8u16s_C3R, taps));
        bench::add("FilterRow_16s_C1R" + ending, rowStage<Kpr16s, Kpr16s>(kpriFilterRowBorderPipeline_16s_C1R, taps));
        bench::add("FilterRow_16u_C1R" + ending, rowStage<Kpr16u, Kpr16u>(kpriFilterRowBorderPipeline_16u_C1R, taps));
        bench::add("FilterRow_32f_C1R" + ending, rowStage<Kpr32f, Kpr32f>(kpriFilterRowBorderPipeline_32f_C1R, taps));
        bench::add("FilterColumn_16s8u_C1R" + ending,
                   columnStage<Kpr16s, Kpr8u>(kpriFilterColumnPipeline_16s8u_C1R, taps));
        bench::add("FilterColumn_16s_C1R" + ending,
                   columnStage<Kpr16s, Kpr16s>(kpriFilterColumnPipeline_16s_C1R, taps));
        bench::add("FilterColumn_16u_C1R" + ending,
                   columnStage<Kpr16u, Kpr16u>(kpriFilterColumnPipeline_16u_C1R, taps));
        bench::add("FilterColumn_32f_C1R" + ending,
                   columnStage<Kpr32f, Kpr32f>(kpriFilterColumnPipeline_32f_C1R, taps));
    }
    return true;
}();

}  // namespace
