#include <vector>

#include "bench/support/bench.h"

namespace {

using bench::Image;

template <typename T, typename Size, typename Init, typename Process>
void add(const std::string& name, Size getSize, Init init, Process process, T value, int side) {
    const std::string sides = std::to_string(side) + "x" + std::to_string(side);
    bench::add(name + "/" + sides, [=](benchmark::State& state, KprSize size) {
        const Image<T> src(size), dst(size);
        int specSize = 0, bufferSize = 0;
        getSize(size, {side, side}, &specSize, &bufferSize);
        std::vector<Kpr8u> spec(static_cast<std::size_t>(specSize)), buffer(static_cast<std::size_t>(bufferSize));
        auto* block = reinterpret_cast<KprMorphAdvState*>(spec.data());
        const std::vector<Kpr8u> mask(static_cast<std::size_t>(side * side), 1);
        init(size, mask.data(), {side, side}, block, buffer.data());
        bench::measure(state, size, {sizeof(T), sizeof(T)}, [&] {
            process(src.data(), src.step(), dst.data(), dst.step(), size, kprBorderReplicate, value, block,
                    buffer.data());
        });
    });
}

const bool registered = [] {
    const auto bytes = [](const std::string& name, auto process) {
        add(name, kpriMorphAdvGetSize_8u_C1R, kpriMorphAdvInit_8u_C1R, process, Kpr8u{}, 5);
    };
    bytes("MorphOpenBorder_8u_C1R", kpriMorphOpenBorder_8u_C1R);
    bytes("MorphCloseBorder_8u_C1R", kpriMorphCloseBorder_8u_C1R);
    bytes("MorphTophatBorder_8u_C1R", kpriMorphTophatBorder_8u_C1R);
    bytes("MorphGradientBorder_8u_C1R", kpriMorphGradientBorder_8u_C1R);
    add("MorphOpenBorder_32f_C1R", kpriMorphAdvGetSize_32f_C1R, kpriMorphAdvInit_32f_C1R, kpriMorphOpenBorder_32f_C1R,
        Kpr32f{}, 5);
    return true;
}();

}  // namespace
