// Sub-pixel copies and patches, undistortion and motion history.
#include "bench/support/bench.h"

namespace {

using bench::Image;

// The source has a column and a row more.
template <typename Src, typename Dst, typename Function>
auto subpix(Function function) {
    return [=](benchmark::State& state, KprSize size) {
        const Image<Src> src({size.width + 1, size.height + 1});
        const Image<Dst> dst(size);
        bench::measure(state, size, {sizeof(Src), sizeof(Dst)},
                       [&] { function(src.data(), src.step(), dst.data(), dst.step(), size, 0.3F, 0.6F); });
    };
}

void scaled(benchmark::State& state, KprSize size) {
    const Image<Kpr8u> src({size.width + 1, size.height + 1});
    const Image<Kpr16u> dst(size);
    bench::measure(state, size, {1, 2}, [&] {
        kpriCopySubpix_8u16u_C1R_Sfs(src.data(), src.step(), dst.data(), dst.step(), size, -5, 0.3F, 0.6F);
    });
}

// 500 patches of 21 x 21 from all over an image: time a patch's pixel.
void patches(benchmark::State& state) {
    constexpr KprSize size = {21, 21};
    constexpr int count = 500;
    const Image<Kpr8u> src(bench::kInCache), dst(size);
    bench::measure(state, {21 * 21, count}, {1, 1}, [&] {
        KprPoint first, last;
        for (int i = 0; i < count; ++i) {
            const KprPoint32f centre = {static_cast<float>((i * 7919) % 600) + 20.3F,
                                        static_cast<float>((i * 104729) % 440) + 20.6F};
            kpriCopySubpixIntersect_8u_C1R(src.data(), src.step(), bench::kInCache, dst.data(), dst.step(), size,
                                           centre, &first, &last);
        }
    });
}

template <typename T, typename Function>
auto undistort(Function function, int channels) {
    return [=](benchmark::State& state, KprSize size) {
        const Image<T> src(size, channels), dst(size, channels);
        Kpr8u buffer[64];
        const auto w = static_cast<float>(size.width), h = static_cast<float>(size.height);
        const auto bytes = sizeof(T) * static_cast<std::size_t>(channels);
        bench::measure(state, size, {bytes, bytes}, [&] {
            function(src.data(), src.step(), dst.data(), dst.step(), size, w, w, w / 2, h / 2, -0.3F, 0.1F, buffer);
        });
    };
}

void map(benchmark::State& state, KprSize size) {
    const Image<Kpr32f> x(size), y(size);
    Kpr8u buffer[64];
    bench::measure(state, size, {0, 8}, [&] {
        kpriCreateMapCameraUndistort_32f_C1R(x.data(), x.step(), y.data(), y.step(), size, 500, 500, 320, 240, -0.3F,
                                             0.1F, 0.001F, 0.002F, buffer);
    });
}

void history(benchmark::State& state, KprSize size) {
    const Image<Kpr8u> silhouette(size);
    const Image<Kpr32f> past(size);
    bench::measure(state, size, {5, 4, true}, [&] {
        kpriUpdateMotionHistory_8u32f_C1IR(silhouette.data(), silhouette.step(), past.data(), past.step(), size, 100,
                                           50);
    });
}

const bool registered = [] {
    bench::add("CopySubpix_8u_C1R", subpix<Kpr8u, Kpr8u>(kpriCopySubpix_8u_C1R));
    bench::add("CopySubpix_16u_C1R", subpix<Kpr16u, Kpr16u>(kpriCopySubpix_16u_C1R));
    bench::add("CopySubpix_32f_C1R", subpix<Kpr32f, Kpr32f>(kpriCopySubpix_32f_C1R));
    bench::add("CopySubpix_8u32f_C1R", subpix<Kpr8u, Kpr32f>(kpriCopySubpix_8u32f_C1R));
    bench::add("CopySubpix_8u16u_C1R_Sfs", scaled);
    benchmark::RegisterBenchmark("CopySubpixIntersect_8u_C1R/500_of_21x21", patches);
    bench::add("UndistortRadial_8u_C1R", undistort<Kpr8u>(kpriUndistortRadial_8u_C1R, 1));
    bench::add("UndistortRadial_8u_C3R", undistort<Kpr8u>(kpriUndistortRadial_8u_C3R, 3));
    bench::add("UndistortRadial_16u_C1R", undistort<Kpr16u>(kpriUndistortRadial_16u_C1R, 1));
    bench::add("UndistortRadial_16u_C3R", undistort<Kpr16u>(kpriUndistortRadial_16u_C3R, 3));
    bench::add("UndistortRadial_32f_C1R", undistort<Kpr32f>(kpriUndistortRadial_32f_C1R, 1));
    bench::add("UndistortRadial_32f_C3R", undistort<Kpr32f>(kpriUndistortRadial_32f_C3R, 3));
    bench::add("CreateMapCameraUndistort_32f_C1R", map);
    bench::add("UpdateMotionHistory_8u32f_C1IR", history);
    return true;
}();

}  // namespace
