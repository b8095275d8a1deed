#include "bench/morph/masks.h"

namespace {

using bench::Image;

// A dilation, or an opening, whatever the type of its state block. Its figure is that of the 8u forms, a pixel.
template <typename State, typename Size, typename Init, typename Process>
void add(const std::string& name, Size getSize, Init init, Process process, int side, bool disc, int srcBit,
         int dstBit) {
    const std::string sides = std::to_string(side) + "x" + std::to_string(side) + (disc ? "_disc" : "");
    const std::string bits = "/bit" + std::to_string(srcBit) + "to" + std::to_string(dstBit);
    bench::add(name + "/" + sides + bits, [=](benchmark::State& state, KprSize size) {
        const auto rowBytes = [&](int bit) { return (size.width + bit + 7) / 8; };  // rows lie without gaps
        const Image<Kpr8u> src({rowBytes(srcBit) * size.height, 1}), dst({rowBytes(dstBit) * size.height, 1});
        int specSize = 0, bufferSize = 0;
        getSize(size, {side, side}, &specSize, &bufferSize);
        std::vector<Kpr8u> spec(static_cast<std::size_t>(specSize)), buffer(static_cast<std::size_t>(bufferSize));
        auto* block = reinterpret_cast<State*>(spec.data());
        init(size, bench::maskOf(side, disc ? bench::Shape::Disc : bench::Shape::Rectangle).data(), {side, side}, block,
             buffer.data());
        for (auto _ : state) {
            process(src.data(), rowBytes(srcBit), srcBit, dst.data(), rowBytes(dstBit), dstBit, size,
                    kprBorderReplicate, 0, block, buffer.data());
            benchmark::ClobberMemory();
        }
        using benchmark::Counter;
        state.counters["ns/px"] =
            Counter(double(size.width) * size.height * 1e-9, Counter::kIsIterationInvariantRate | Counter::kInvert);
    });
}

const bool registered = [] {
    const auto dilation = [](int side, bool disc, int srcBit, int dstBit) {
        add<KprMorphState>("DilateBorder_1u_C1R", kpriMorphologyBorderGetSize_1u_C1R, kpriMorphologyBorderInit_1u_C1R,
                           kpriDilateBorder_1u_C1R, side, disc, srcBit, dstBit);
    };
    dilation(3, false, 0, 0);
    dilation(3, false, 3, 3);
    dilation(3, false, 2, 5);
    dilation(5, false, 0, 0);
    dilation(15, false, 0, 0);
    dilation(5, true, 0, 0);
    dilation(5, true, 2, 5);
    dilation(15, true, 0, 0);
    add<KprMorphState>("ErodeBorder_1u_C1R", kpriMorphologyBorderGetSize_1u_C1R, kpriMorphologyBorderInit_1u_C1R,
                       kpriErodeBorder_1u_C1R, 3, false, 0, 0);
    add<KprMorphAdvState>("MorphOpenBorder_1u_C1R", kpriMorphAdvGetSize_1u_C1R, kpriMorphAdvInit_1u_C1R,
                          kpriMorphOpenBorder_1u_C1R, 5, false, 0, 0);
    add<KprMorphAdvState>("MorphTophatBorder_1u_C1R", kpriMorphAdvGetSize_1u_C1R, kpriMorphAdvInit_1u_C1R,
                          kpriMorphTophatBorder_1u_C1R, 5, false, 0, 0);
    return true;
}();

}  // namespace
