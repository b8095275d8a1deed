#include "bench/morph/masks.h"

namespace {

using bench::Image;
using bench::maskOf;
using bench::Shape;

// A tile, as images come in patches: what a call costs beside its pixels.
constexpr KprSize kTile = {64, 64};

// Where the rows of an image lie, and what is processed into what.
enum class Layout { Aligned, OddRows, InPlace };

void addAt(const std::string& name, KprSize size, auto run) {
    benchmark::RegisterBenchmark((name + "/" + std::to_string(size.width) + "x" + std::to_string(size.height)).c_str(),
                                 [run, size](benchmark::State& state) { run(state, size); });
}

// A call of dilation or erosion of the 32-bit interface, with a mask of side x side.
template <typename T, int channels, typename Size, typename Init, typename Process>
auto extremum(Size getSize, Init init, Process process, int side, Shape shape, Layout layout = Layout::Aligned) {
    return [=](benchmark::State& state, KprSize size) {
        const KprSize room = {size.width + 64, size.height + 2};  // odd rows move on by a byte each
        const Image<T> src(room, channels), dst(room, channels);
        // Odd rows begin an element behind a multiple of 64 bytes, and one more in each row.
        const int odd = layout == Layout::OddRows ? 1 : 0, step = src.step() + odd * int{sizeof(T)};
        T* const to = layout == Layout::InPlace ? src.data() : dst.data() + odd;
        int specSize = 0, bufferSize = 0;
        getSize(size, {side, side}, &specSize, &bufferSize);
        std::vector<Kpr8u> spec(static_cast<std::size_t>(specSize)), buffer(static_cast<std::size_t>(bufferSize));
        auto* block = reinterpret_cast<KprMorphState*>(spec.data());
        init(size, maskOf(side, shape).data(), {side, side}, block, buffer.data());
        const T values[4] = {};
        bench::measure(state, size, {sizeof(T) * channels, sizeof(T) * channels, layout == Layout::InPlace}, [&] {
            if constexpr (channels == 1) {
                process(src.data() + odd, step, to, step, size, kprBorderReplicate, 0, block, buffer.data());
            } else {
                process(src.data() + odd, step, to, step, size, kprBorderReplicate, values, block, buffer.data());
            }
        });
    };
}

// The same of the large interface.
template <typename T, typename Process>
auto largeExtremum(Process process, KprDataType type, int side) {
    return [=](benchmark::State& state, KprSize size) {
        const Image<T> src(size), dst(size);
        Kpr64s specSize = 0, bufferSize = 0;
        kpriDilateGetSpecSize_L(size.width, size.height, side, side, &specSize);
        kpriDilateGetBufferSize_L(size.width, size.height, side, side, type, 1, &bufferSize);
        std::vector<Kpr8u> spec(static_cast<std::size_t>(specSize)), buffer(static_cast<std::size_t>(bufferSize));
        auto* block = reinterpret_cast<KprMorphState*>(spec.data());
        kpriDilateInit_L(size.width, size.height, maskOf(side, Shape::Rectangle).data(), side, side, block);
        bench::measure(state, size, {sizeof(T), sizeof(T)}, [&] {
            process(src.data(), src.step(), dst.data(), dst.step(), size.width, size.height, kprBorderReplicate,
                    nullptr, block, buffer.data());
        });
    };
}

const bool registered = [] {
    const auto bytes = [](int side, Shape shape, Layout layout = Layout::Aligned) {
        return extremum<Kpr8u, 1>(kpriMorphologyBorderGetSize_8u_C1R, kpriMorphologyBorderInit_8u_C1R,
                                  kpriDilateBorder_8u_C1R, side, shape, layout);
    };
    const auto floats = [](int side, Shape shape, Layout layout = Layout::Aligned) {
        return extremum<Kpr32f, 1>(kpriMorphologyBorderGetSize_32f_C1R, kpriMorphologyBorderInit_32f_C1R,
                                   kpriDilateBorder_32f_C1R, side, shape, layout);
    };
    const auto named = [](const std::string& name, int side, Shape shape = Shape::Rectangle) {
        const std::string sides = std::to_string(side) + "x" + std::to_string(side);
        return name + "/" + sides + (shape == Shape::Disc ? "_disc" : "");
    };
    const std::string name8u = "DilateBorder_8u_C1R", name32f = "DilateBorder_32f_C1R";
    for (int side : {3, 5, 7, 15, 31}) bench::add(named(name8u, side), bytes(side, Shape::Rectangle));
    for (int side : {5, 15}) bench::add(named(name8u, side, Shape::Disc), bytes(side, Shape::Disc));
    for (int side : {3, 5, 15}) bench::add(named(name32f, side), floats(side, Shape::Rectangle));
    bench::add(named("ErodeBorder_8u_C1R", 3),
               extremum<Kpr8u, 1>(kpriMorphologyBorderGetSize_8u_C1R, kpriMorphologyBorderInit_8u_C1R,
                                  kpriErodeBorder_8u_C1R, 3, Shape::Rectangle));
    bench::add(named("DilateBorder_16u_C1R", 3),
               extremum<Kpr16u, 1>(kpriMorphologyBorderGetSize_16u_C1R, kpriMorphologyBorderInit_16u_C1R,
                                   kpriDilateBorder_16u_C1R, 3, Shape::Rectangle));

    for (int side : {3, 5, 15}) {
        bench::add(named("DilateBorder_8u_C3R", side),
                   extremum<Kpr8u, 3>(kpriMorphologyBorderGetSize_8u_C3R, kpriMorphologyBorderInit_8u_C3R,
                                      kpriDilateBorder_8u_C3R, side, Shape::Rectangle));
        bench::add(named(name8u, side) + "/odd_rows", bytes(side, Shape::Rectangle, Layout::OddRows));
        bench::add(named(name8u, side) + "/in_place", bytes(side, Shape::Rectangle, Layout::InPlace));
        bench::add(named("Dilate_8u_C1R_L", side), largeExtremum<Kpr8u>(kpriDilate_8u_C1R_L, kpr8u, side));
    }
    bench::add(named(name32f, 3) + "/in_place", floats(3, Shape::Rectangle, Layout::InPlace));
    bench::add(named("Dilate_32f_C1R_L", 3), largeExtremum<Kpr32f>(kpriDilate_32f_C1R_L, kpr32f, 3));

    for (int side : {3, 15, 31}) {
        addAt(named(name8u, side), kTile, bytes(side, Shape::Rectangle));
        addAt(named(name8u, side, Shape::Disc), kTile, bytes(side, Shape::Disc));
        addAt(named(name32f, side), kTile, floats(side, Shape::Rectangle));
    }
    addAt(named("Dilate_8u_C1R_L", 3), kTile, largeExtremum<Kpr8u>(kpriDilate_8u_C1R_L, kpr8u, 3));
    return true;
}();

}  // namespace
