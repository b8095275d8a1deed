#include <cstddef>
#include <vector>

#include "bench/support/bench.h"

namespace {

using bench::Image;

constexpr float kSigma = 1.2F;

// Smooth, with some noise and flat areas: what sigmas cost depends on the pixels where halves take a way of their own.
template <typename T>
void makePhotograph(const Image<T>& image, KprSize size, int channels) {
    for (int y = 0; y < size.height; ++y) {
        T* const row = reinterpret_cast<T*>(reinterpret_cast<char*>(image.data()) + std::ptrdiff_t{y} * image.step());
        for (int x = 0; x < size.width * channels; ++x)
            row[x] = static_cast<T>(y % 100 < 30 ? 128 : (x / channels + y) / 7 % 256 ^ static_cast<int>(row[x]) % 4);
    }
}

template <typename T>
constexpr KprDataType kTypeOf = std::is_same_v<T, Kpr8u>    ? kpr8u
                                : std::is_same_v<T, Kpr16u> ? kpr16u
                                : std::is_same_v<T, Kpr16s> ? kpr16s
                                                            : kpr32f;

template <typename T, int channels, typename Function>
auto borderForm(Function function, int kernelSize, float sigma = kSigma, typename Image<T>::Start start = {}) {
    return [=](benchmark::State& state, KprSize size) {
        const Image<T> src(size, channels, start), dst(size, channels, start);
        makePhotograph(src, size, channels);
        const T values[3] = {};
        int specSize = 0, bufferSize = 0;
        kpriFilterGaussianGetBufferSize(size, static_cast<unsigned>(kernelSize), kTypeOf<T>, channels, &specSize,
                                        &bufferSize);
        std::vector<Kpr8u> block(static_cast<std::size_t>(specSize)), buffer(static_cast<std::size_t>(bufferSize));
        auto* spec = reinterpret_cast<KprFilterGaussianSpec*>(block.data());
        kpriFilterGaussianInit(size, static_cast<unsigned>(kernelSize), kprBorderReplicate, kTypeOf<T>, channels, spec,
                               buffer.data(), sigma);
        bench::measure(state, size, {sizeof(T) * channels, sizeof(T) * channels}, [&] {
            if constexpr (channels == 1)
                function(src.data(), src.step(), dst.data(), dst.step(), size, values[0], spec, buffer.data());
            else
                function(src.data(), src.step(), dst.data(), dst.step(), size, values, spec, buffer.data());
        });
    };
}

template <typename T, int channels, typename Function>
auto largeForm(Function function, int kernelSize) {
    return [=](benchmark::State& state, KprSize size) {
        const Image<T> src(size, channels), dst(size, channels);
        const KprSizeL roi = {size.width, size.height};
        std::int64_t specSize = 0, bufferSize = 0, initSize = 0;
        kpriFilterGaussianGetSpecSize_L(kernelSize, kTypeOf<T>, channels, &specSize, &initSize);
        kpriFilterGaussianGetBufferSize_L(roi, kernelSize, kTypeOf<T>, kprBorderReplicate, channels, &bufferSize);
        std::vector<Kpr8u> block(static_cast<std::size_t>(specSize)), buffer(static_cast<std::size_t>(bufferSize));
        auto* spec = reinterpret_cast<KprFilterGaussianSpec*>(block.data());
        kpriFilterGaussianInit_L(roi, kernelSize, kprBorderReplicate, kTypeOf<T>, channels, spec, buffer.data(),
                                 kSigma);
        bench::measure(state, size, {sizeof(T) * channels, sizeof(T) * channels}, [&] {
            function(src.data(), src.step(), dst.data(), dst.step(), roi, kprBorderReplicate, nullptr, spec,
                     buffer.data());
        });
    };
}

const bool registered = [] {
    for (int taps : {3, 5, 7, 15, 31}) {
        const std::string ending = "/taps" + std::to_string(taps);
        bench::add("FilterGaussianBorder_8u_C1R" + ending, borderForm<Kpr8u, 1>(kpriFilterGaussianBorder_8u_C1R, taps));
        bench::add("FilterGaussianBorder_16u_C1R" + ending,
                   borderForm<Kpr16u, 1>(kpriFilterGaussianBorder_16u_C1R, taps));
        bench::add("FilterGaussianBorder_16s_C1R" + ending,
                   borderForm<Kpr16s, 1>(kpriFilterGaussianBorder_16s_C1R, taps));
        bench::add("FilterGaussianBorder_32f_C1R" + ending,
                   borderForm<Kpr32f, 1>(kpriFilterGaussianBorder_32f_C1R, taps));
        bench::add("FilterGaussian_8u_C1R_L" + ending, largeForm<Kpr8u, 1>(kpriFilterGaussian_8u_C1R_L, taps));
        bench::add("FilterGaussian_16u_C1R_L" + ending, largeForm<Kpr16u, 1>(kpriFilterGaussian_16u_C1R_L, taps));
        bench::add("FilterGaussian_16s_C1R_L" + ending, largeForm<Kpr16s, 1>(kpriFilterGaussian_16s_C1R_L, taps));
        bench::add("FilterGaussian_32f_C1R_L" + ending, largeForm<Kpr32f, 1>(kpriFilterGaussian_32f_C1R_L, taps));
    }
    // Taps of three: 1 2 1, sums of 4096 with and without halves, a sum beside 4096.
    for (float sigma : {0.849F, 0.8F, 0.8493F, 1.0F}) {
        const std::string ending = "/taps3/sigma" + std::to_string(sigma).substr(0, 6);
        bench::add("FilterGaussianBorder_8u_C1R" + ending,
                   borderForm<Kpr8u, 1>(kpriFilterGaussianBorder_8u_C1R, 3, sigma));
        bench::add("FilterGaussianBorder_8u_C3R" + ending,
                   borderForm<Kpr8u, 3>(kpriFilterGaussianBorder_8u_C3R, 3, sigma));
    }
    for (int taps : {3, 5}) {
        const std::string ending = "/taps" + std::to_string(taps) + "/odd";
        bench::add("FilterGaussianBorder_8u_C1R" + ending,
                   borderForm<Kpr8u, 1>(kpriFilterGaussianBorder_8u_C1R, taps, kSigma, Image<Kpr8u>::Odd));
        bench::add("FilterGaussianBorder_16u_C1R" + ending,
                   borderForm<Kpr16u, 1>(kpriFilterGaussianBorder_16u_C1R, taps, kSigma, Image<Kpr16u>::Odd));
    }
    bench::add("FilterGaussianBorder_8u_C3R/taps5", borderForm<Kpr8u, 3>(kpriFilterGaussianBorder_8u_C3R, 5));
    bench::add("FilterGaussianBorder_16u_C3R/taps5", borderForm<Kpr16u, 3>(kpriFilterGaussianBorder_16u_C3R, 5));
    bench::add("FilterGaussianBorder_32f_C3R/taps5", borderForm<Kpr32f, 3>(kpriFilterGaussianBorder_32f_C3R, 5));
    bench::add("FilterGaussian_8u_C3R_L/taps5", largeForm<Kpr8u, 3>(kpriFilterGaussian_8u_C3R_L, 5));
    bench::add("FilterGaussian_16u_C3R_L/taps5", largeForm<Kpr16u, 3>(kpriFilterGaussian_16u_C3R_L, 5));
    bench::add("FilterGaussian_32f_C3R_L/taps5", largeForm<Kpr32f, 3>(kpriFilterGaussian_32f_C3R_L, 5));
    return true;
}();

}  // namespace
