// Bordered copies, which are not exported: a mask's margin of two pixels, and a wide one.
#include "primitives/border.h"

#include "bench/support/bench.h"

namespace {

using bench::Image;

KprSize grown(KprSize size, int border) { return {size.width + 2 * border, size.height + 2 * border}; }

template <typename T, typename Function, typename... Value>
auto copying(Function function, int channels, int border, Value... value) {
    return [=](benchmark::State& state, KprSize size) {
        const KprSize whole = grown(size, border);
        const Image<T> src(size, channels), dst(whole, channels);
        const auto bytes = sizeof(T) * static_cast<std::size_t>(channels);
        bench::measure(state, size, {bytes, bytes}, [&] {
            function(src.data(), src.step(), size, dst.data(), dst.step(), whole, border, border, value...);
        });
    };
}

// Around the image where it lies: what is written is the border alone.
template <typename T, typename Function>
auto inPlace(Function function, int channels, int border) {
    return [=](benchmark::State& state, KprSize size) {
        const KprSize whole = grown(size, border);
        const Image<T> image(whole, channels);
        T* const first = image.data() + border * (image.step() / static_cast<int>(sizeof(T)) + channels);
        bench::measure(state, size, {sizeof(T), sizeof(T), true},
                       [&] { function(first, image.step(), size, whole, border, border); });
    };
}

auto margins(KprBorderType word) {
    return [=](benchmark::State& state, KprSize size) {
        const Image<Kpr8u> src(grown(size, 2)), dst(grown(size, 2));
        bench::measure(state, size, {1, 1}, [&] {
            CopyWithBorder8u(src.data() + 2 * src.step() + 2, src.step(), size, word, 7, {2, 2}, dst.data(),
                             dst.step());
        });
    };
}

auto tight() {
    return [=](benchmark::State& state, KprSize size) {
        const Image<Kpr8u> src(size), dst(grown(size, 2));
        bench::measure(state, size, {1, 1}, [&] {
            ownCopyWithBorder_8u_C1R(src.data(), src.step(), size, dst.data(), kprBorderMirror, 2, 2, 2, 2);
        });
    };
}

const bool registered = [] {
    for (int border : {2, 40}) {
        const std::string end = "/border_" + std::to_string(border);
        bench::add("CopyConstBorder_8u_C1R" + end, copying<Kpr8u>(kpriCopyConstBorder_8u_C1R, 1, border, Kpr8u{9}));
        bench::add("CopyReplicateBorder_8u_C1R" + end, copying<Kpr8u>(kpriCopyReplicateBorder_8u_C1R, 1, border));
        bench::add("CopyReplicateBorder_8u_C3R" + end, copying<Kpr8u>(kpriCopyReplicateBorder_8u_C3R, 3, border));
        bench::add("CopyMirrorBorder_8u_C1R" + end, copying<Kpr8u>(kpriCopyMirrorBorder_8u_C1R, 1, border));
        bench::add("CopyMirrorBorder_8u_C3R" + end, copying<Kpr8u>(kpriCopyMirrorBorder_8u_C3R, 3, border));
        bench::add("CopyMirrorBorder_32f_C1R" + end, copying<Kpr32f>(kpriCopyMirrorBorder_32f_C1R, 1, border));
        bench::add("CopyReplicateBorder_8u_C1IR" + end, inPlace<Kpr8u>(kpriCopyReplicateBorder_8u_C1IR, 1, border));
        bench::add("CopyMirrorBorder_8u_C1IR" + end, inPlace<Kpr8u>(kpriCopyMirrorBorder_8u_C1IR, 1, border));
    }
    bench::add("CopyWithBorder8u/mirror", margins(kprBorderMirror));
    bench::add("CopyWithBorder8u/in_memory", margins(kprBorderInMem));
    bench::add("ownCopyWithBorder_8u_C1R", tight());
    return true;
}();

}  // namespace
