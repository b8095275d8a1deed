// Gray morphology by a flat square and by masks of 25 heights.
#include <vector>

#include "bench/support/bench.h"

namespace {

using bench::Image;

template <typename T, typename Height, typename GetSize, typename Init, typename Process>
void addGray(const std::string& type, GetSize getSize, Init init, Process process) {
    const auto addMask = [=](const std::string& mask, int side, auto heightAt) {
        bench::add("GrayDilateBorder_" + type + "/" + mask, [=](benchmark::State& state, KprSize size) {
            const Image<T> src(size), dst(size);
            std::vector<Height> heights;
            for (int i = 0; i < side * side; ++i) heights.push_back(static_cast<Height>(heightAt(i)));
            int specSize = 0, bufferSize = 0;
            getSize(size, {side, side}, &specSize, &bufferSize);
            std::vector<Kpr8u> block(static_cast<std::size_t>(specSize)), buffer(static_cast<std::size_t>(bufferSize));
            auto* spec = reinterpret_cast<KprMorphGrayState*>(block.data());
            init(size, heights.data(), {side, side}, {side / 2, side / 2}, spec, buffer.data());
            bench::measure(state, size, {sizeof(T), sizeof(T)}, [&] {
                process(src.data(), src.step(), dst.data(), dst.step(), size, kprBorderReplicate, 0, spec,
                        buffer.data());
            });
        });
    };
    addMask("flat_3x3", 3, [](int) { return 0; });
    addMask("ball_5x5", 5, [](int i) { return 12 - 3 * ((i % 5 - 2) * (i % 5 - 2) + (i / 5 - 2) * (i / 5 - 2)); });
}

const bool registered = [] {
    addGray<Kpr8u, Kpr32s>("8u_C1R", kpriMorphGrayGetSize_8u_C1R, kpriMorphGrayInit_8u_C1R,
                           kpriGrayDilateBorder_8u_C1R);
    addGray<Kpr32f, Kpr32f>("32f_C1R", kpriMorphGrayGetSize_32f_C1R, kpriMorphGrayInit_32f_C1R,
                            kpriGrayDilateBorder_32f_C1R);
    return true;
}();

}  // namespace
