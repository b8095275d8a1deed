#include "bench/morph/masks.h"

namespace {

using bench::Image;
using bench::maskOf;
using bench::Shape;

// A call of dilation or erosion with a mask of side x side.
template <typename T, typename Size, typename Init, typename Process>
auto extremum(Size getSize, Init init, Process process, int side, Shape shape) {
    return [=](benchmark::State& state, KprSize size) {
        const Image<T> src(size), dst(size);
        int specSize = 0, bufferSize = 0;
        getSize(size, {side, side}, &specSize, &bufferSize);
        std::vector<Kpr8u> spec(static_cast<std::size_t>(specSize)), buffer(static_cast<std::size_t>(bufferSize));
        auto* block = reinterpret_cast<KprMorphState*>(spec.data());
        init(size, maskOf(side, shape).data(), {side, side}, block, buffer.data());
        bench::measure(state, size, {sizeof(T), sizeof(T)}, [&] {
            process(src.data(), src.step(), dst.data(), dst.step(), size, kprBorderReplicate, 0, block, buffer.data());
        });
    };
}

const bool registered = [] {
    const auto add = [](const std::string& name, auto getSize, auto init, auto process, auto pixel, int side,
                        Shape shape) {
        const std::string sides = std::to_string(side) + "x" + std::to_string(side);
        bench::add(name + "/" + sides + (shape == Shape::Disc ? "_disc" : ""),
                   extremum<decltype(pixel)>(getSize, init, process, side, shape));
    };
    for (int side : {3, 5, 7, 15, 31}) {
        add("DilateBorder_8u_C1R", kpriMorphologyBorderGetSize_8u_C1R, kpriMorphologyBorderInit_8u_C1R,
            kpriDilateBorder_8u_C1R, Kpr8u{}, side, Shape::Rectangle);
    }
    for (int side : {5, 15}) {
        add("DilateBorder_8u_C1R", kpriMorphologyBorderGetSize_8u_C1R, kpriMorphologyBorderInit_8u_C1R,
            kpriDilateBorder_8u_C1R, Kpr8u{}, side, Shape::Disc);
    }
    add("ErodeBorder_8u_C1R", kpriMorphologyBorderGetSize_8u_C1R, kpriMorphologyBorderInit_8u_C1R,
        kpriErodeBorder_8u_C1R, Kpr8u{}, 3, Shape::Rectangle);
    add("DilateBorder_16u_C1R", kpriMorphologyBorderGetSize_16u_C1R, kpriMorphologyBorderInit_16u_C1R,
        kpriDilateBorder_16u_C1R, Kpr16u{}, 3, Shape::Rectangle);
    for (int side : {3, 5, 15}) {
        add("DilateBorder_32f_C1R", kpriMorphologyBorderGetSize_32f_C1R, kpriMorphologyBorderInit_32f_C1R,
            kpriDilateBorder_32f_C1R, Kpr32f{}, side, Shape::Rectangle);
    }
    return true;
}();

}  // namespace
