// Integral images and deviations of windows, tables in rows of whole lines.
#include "bench/support/bench.h"

namespace {

using bench::Image;

KprSize larger(KprSize size, int more) { return {size.width + more, size.height + more}; }

// `more` columns and rows than the source.
template <typename Src, typename T, typename Function>
auto table(Function function, int more) {
    return [=](benchmark::State& state, KprSize size) {
        const Image<Src> src(size);
        const Image<T> dst(larger(size, more));
        bench::measure(state, size, {sizeof(Src), sizeof(T)},
                       [&] { function(src.data(), src.step(), dst.data(), dst.step(), size, 0); });
    };
}

template <typename T, typename S, typename Function>
auto tables(Function function, int more) {
    return [=](benchmark::State& state, KprSize size) {
        const Image<Kpr8u> src(size);
        const Image<T> dst(larger(size, more));
        const Image<S> sqr(larger(size, more));
        bench::measure(state, size, {1, sizeof(T) + sizeof(S)}, [&] {
            function(src.data(), src.step(), dst.data(), dst.step(), sqr.data(), sqr.step(), size, 0, 0);
        });
    };
}

// What a detector with upright and tilted features asks for.
void uprightAndTilted(benchmark::State& state, KprSize size) {
    const Image<Kpr8u> src(size);
    const Image<Kpr32s> sum(larger(size, 1)), tilted(larger(size, 2));
    const Image<Kpr64f> sqr(larger(size, 1));
    bench::measure(state, size, {2, 16}, [&] {
        kpriSqrIntegral_8u32s64f_C1R(src.data(), src.step(), sum.data(), sum.step(), sqr.data(), sqr.step(), size, 0,
                                     0);
        kpriTiltedIntegral_8u32s_C1R(src.data(), src.step(), tilted.data(), tilted.step(), size, 0);
    });
}

// One table as one would write it down, left to the compiler's scalar code.
[[gnu::noinline]] void plainIntegral(const Kpr8u* src, int srcStep, Kpr32s* dst, int dstStep, KprSize size, int value) {
    dstStep /= 4;
    for (int x = 0; x <= size.width; ++x) dst[x] = value;
    for (int y = 0; y < size.height; ++y, src += srcStep) {
        const Kpr32s* const above = dst;
        dst += dstStep;
        dst[0] = value;
        Kpr32s sum = 0;
        for (int x = 0; x < size.width; ++x) dst[x + 1] = (sum += src[x]) + above[x + 1];
    }
}

// Windows of 24 x 24 wherever they fit.
template <typename T, typename S, typename D, typename Function>
auto deviations(Function function) {
    return [=](benchmark::State& state, KprSize size) {
        const Image<T> src(larger(size, 1));
        const Image<S> sqr(larger(size, 1));
        const Image<D> dst(size);
        bench::measure(state, {size.width - 23, size.height - 23}, {sizeof(T) + sizeof(S), sizeof(D)}, [&] {
            function(src.data(), src.step(), sqr.data(), sqr.step(), dst.data(), dst.step(),
                     {size.width - 23, size.height - 23}, {0, 0, 24, 24});
        });
    };
}

const bool registered = [] {
    bench::add("Integral_8u32s_C1R", table<Kpr8u, Kpr32s>(kpriIntegral_8u32s_C1R, 1));
    bench::add("Integral_8u32s_C1R/plain_loop", table<Kpr8u, Kpr32s>(plainIntegral, 1));
    bench::add("Integral_8u32f_C1R", table<Kpr8u, Kpr32f>(kpriIntegral_8u32f_C1R, 1));
    bench::add("Integral_32f_C1R", table<Kpr32f, Kpr32f>(kpriIntegral_32f_C1R, 1));
    bench::add("SqrIntegral_8u32s_C1R", tables<Kpr32s, Kpr32s>(kpriSqrIntegral_8u32s_C1R, 1));
    bench::add("SqrIntegral_8u32s64f_C1R", tables<Kpr32s, Kpr64f>(kpriSqrIntegral_8u32s64f_C1R, 1));
    bench::add("SqrIntegral_8u32f64f_C1R", tables<Kpr32f, Kpr64f>(kpriSqrIntegral_8u32f64f_C1R, 1));
    bench::add("TiltedIntegral_8u32s_C1R", table<Kpr8u, Kpr32s>(kpriTiltedIntegral_8u32s_C1R, 2));
    bench::add("TiltedIntegral_8u32f_C1R", table<Kpr8u, Kpr32f>(kpriTiltedIntegral_8u32f_C1R, 2));
    bench::add("TiltedSqrIntegral_8u32s64f_C1R", tables<Kpr32s, Kpr64f>(kpriTiltedSqrIntegral_8u32s64f_C1R, 2));
    bench::add("TiltedSqrIntegral_8u32f64f_C1R", tables<Kpr32f, Kpr64f>(kpriTiltedSqrIntegral_8u32f64f_C1R, 2));
    bench::add("SqrIntegral_8u32s64f_C1R/and_tilted", uprightAndTilted);
    bench::add("RectStdDev_32f_C1R", deviations<Kpr32f, Kpr64f, Kpr32f>(kpriRectStdDev_32f_C1R));
    bench::add("RectStdDev_32s32f_C1R", deviations<Kpr32s, Kpr64f, Kpr32f>(kpriRectStdDev_32s32f_C1R));
    bench::add("RectStdDev_32s_C1RSfs",
               deviations<Kpr32s, Kpr32s, Kpr32s>([](const Kpr32s* src, int srcStep, const Kpr32s* sqr, int sqrStep,
                                                     Kpr32s* dst, int dstStep, KprSize roi, KprRect rect) {
                   return kpriRectStdDev_32s_C1RSfs(src, srcStep, sqr, sqrStep, dst, dstStep, roi, rect, 0);
               }));
    return true;
}();

}  // namespace
