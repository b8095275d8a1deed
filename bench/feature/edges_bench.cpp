#include <algorithm>
#include <vector>

#include "bench/support/bench.h"

namespace {

using bench::Image;

// Edges and flat areas in about the shares of a photograph: discs of many sizes over one another, and little noise.
template <typename T>
void drawScene(const Image<T>& image, KprSize size) {
    std::mt19937 engine(11);
    const auto at = [&](int x, int y) -> T& { return image.data()[y * image.step() / int{sizeof(T)} + x]; };
    for (int y = 0; y < size.height; ++y) {
        for (int x = 0; x < size.width; ++x) at(x, y) = static_cast<T>(60 + x * 40 / size.width);
    }
    const auto upTo = [&](int n) { return static_cast<int>(engine() % static_cast<unsigned>(n)); };
    for (int disc = 0; disc < size.width * size.height / 2000; ++disc) {
        const int cx = upTo(size.width), cy = upTo(size.height), r = 2 + upTo(5) * upTo(8), level = 20 + upTo(200);
        for (int y = std::max(cy - r, 0); y < std::min(cy + r, size.height); ++y) {
            for (int x = std::max(cx - r, 0); x < std::min(cx + r, size.width); ++x) {
                if ((x - cx) * (x - cx) + (y - cy) * (y - cy) < r * r) at(x, y) = static_cast<T>(level);
            }
        }
    }
    for (int y = 0; y < size.height; ++y) {
        for (int x = 0; x < size.width; ++x) at(x, y) = static_cast<T>(at(x, y) + static_cast<T>(upTo(5)));
    }
}

auto border(int filter, KprMaskSize mask, int norm, float low) {
    return [=](benchmark::State& state, KprSize size) {
        const Image<Kpr8u> src(size), dst(size);
        drawScene(src, size);
        int bytes = 0;
        kpriCannyBorderGetSize(size, filter, mask, norm, &bytes);
        std::vector<Kpr8u> buffer(static_cast<std::size_t>(bytes));
        bench::measure(state, size, {1, 1}, [&] {
            kpriCannyBorder_8u_C1R(src.data(), src.step(), dst.data(), dst.step(), size, filter, mask,
                                   kprBorderReplicate, 0, low, 2 * low, norm, buffer.data());
        });
    };
}

template <typename T, typename Function>
auto derivatives(Function function, int norm) {
    return [=](benchmark::State& state, KprSize size) {
        const Image<Kpr8u> src(size), dst(size);
        const Image<T> dx(size), dy(size);
        drawScene(src, size);
        const auto at = [&](int x, int y) {
            return int{src.data()[std::clamp(y, 0, size.height - 1) * src.step() + std::clamp(x, 0, size.width - 1)]};
        };
        for (int y = 0; y < size.height; ++y) {
            for (int x = 0; x < size.width; ++x) {
                const int i = y * dx.step() / int{sizeof(T)} + x;
                dx.data()[i] = static_cast<T>(at(x + 1, y - 1) - at(x - 1, y - 1) + 2 * (at(x + 1, y) - at(x - 1, y)) +
                                              at(x + 1, y + 1) - at(x - 1, y + 1));
                dy.data()[i] = static_cast<T>(at(x - 1, y + 1) - at(x - 1, y - 1) + 2 * (at(x, y + 1) - at(x, y - 1)) +
                                              at(x + 1, y + 1) - at(x + 1, y - 1));
            }
        }
        Kpr64s bytes = 0;
        kpriCannyGetSize_L(size.width, size.height, &bytes);
        std::vector<Kpr8u> buffer(static_cast<std::size_t>(bytes));
        bench::measure(state, size, {2 * sizeof(T), 1}, [&] {
            function(dx.data(), dx.step(), dy.data(), dy.step(), dst.data(), dst.step(), {size.width, size.height}, 50,
                     100, norm, buffer.data());
        });
    };
}

template <typename T, typename Function>
auto eigenvalues(Function function, int floats) {
    return [=](benchmark::State& state, KprSize size) {
        const Image<T> src(size);
        const Image<Kpr32f> dst(size, floats);
        drawScene(src, size);
        int bytes = 0;
        kpriMinEigenValGetBufferSize_32f_C1R(size, 3, 3, &bytes);
        std::vector<Kpr8u> buffer(static_cast<std::size_t>(bytes));
        bench::measure(state, size, {sizeof(T), 4 * static_cast<std::size_t>(floats)},
                       [&] { function(src.data(), src.step(), dst.data(), dst.step(), size, 0, 3, 3, buffer.data()); });
    };
}

template <typename T, typename Function>
auto harris(Function function, int window) {
    return [=](benchmark::State& state, KprSize size) {
        const Image<T> src(size);
        const Image<Kpr32f> dst(size);
        drawScene(src, size);
        int bytes = 0;
        kpriHarrisCornerGetBufferSize(size, 33, window, kpr8u, 1, &bytes);
        std::vector<Kpr8u> buffer(static_cast<std::size_t>(bytes));
        bench::measure(state, size, {sizeof(T), 4}, [&] {
            function(src.data(), src.step(), dst.data(), dst.step(), size, kprFilterSobel, 33, window, 0.04F, 1.0F,
                     kprBorderReplicate, T{}, buffer.data());
        });
    };
}

template <typename T, typename Function>
auto joined(Function function, int norm) {
    return [=](benchmark::State& state, KprSize size) {
        const Image<T> src(size, 3), dst(size);
        bench::measure(state, size, {3 * sizeof(T), sizeof(T)},
                       [&] { function(src.data(), src.step(), dst.data(), dst.step(), size, norm); });
    };
}

const bool registered = [] {
    bench::add("CannyBorder_8u_C1R/sobel3/L1", border(kprFilterSobel, 33, kprNormL1, 50));
    bench::add("CannyBorder_8u_C1R/sobel3/L2", border(kprFilterSobel, 33, kprNormL2, 50));
    bench::add("CannyBorder_8u_C1R/sobel5/L1", border(kprFilterSobel, 55, kprNormL1, 600));
    bench::add("CannyBorder_8u_C1R/sobel5/L2", border(kprFilterSobel, 55, kprNormL2, 600));
    bench::add("CannyBorder_8u_C1R/scharr/L1", border(kprFilterScharr, 33, kprNormL1, 200));
    bench::add("CannyBorder_8u_C1R/scharr/L2", border(kprFilterScharr, 33, kprNormL2, 200));
    for (int norm : {kprNormL1, kprNormL2}) {
        const std::string ending = norm == kprNormL1 ? "/L1" : "/L2";
        bench::add("Canny_16s8u_C1R_L" + ending, derivatives<Kpr16s>(kpriCanny_16s8u_C1R_L, norm));
        bench::add("Canny_32f8u_C1R_L" + ending, derivatives<Kpr32f>(kpriCanny_32f8u_C1R_L, norm));
    }
    bench::add("MinEigenVal_8u32f_C1R", eigenvalues<Kpr8u>(kpriMinEigenVal_8u32f_C1R, 1));
    bench::add("MinEigenVal_32f_C1R", eigenvalues<Kpr32f>(kpriMinEigenVal_32f_C1R, 1));
    bench::add("EigenValsVecs_8u32f_C1R", eigenvalues<Kpr8u>(kpriEigenValsVecs_8u32f_C1R, 6));
    bench::add("EigenValsVecs_32f_C1R", eigenvalues<Kpr32f>(kpriEigenValsVecs_32f_C1R, 6));
    for (int window : {3, 5, 9}) {
        const std::string ending = "/window" + std::to_string(window);
        bench::add("HarrisCorner_8u32f_C1R" + ending, harris<Kpr8u>(kpriHarrisCorner_8u32f_C1R, window));
        bench::add("HarrisCorner_32f_C1R" + ending, harris<Kpr32f>(kpriHarrisCorner_32f_C1R, window));
    }
    for (auto [norm, ending] : {std::pair(kprNormInf, "/Inf"), {kprNormL1, "/L1"}, {kprNormL2, "/L2"}}) {
        bench::add(std::string("GradientColorToGray_8u_C3C1R") + ending,
                   joined<Kpr8u>(kpriGradientColorToGray_8u_C3C1R, norm));
        bench::add(std::string("GradientColorToGray_16u_C3C1R") + ending,
                   joined<Kpr16u>(kpriGradientColorToGray_16u_C3C1R, norm));
        bench::add(std::string("GradientColorToGray_32f_C3C1R") + ending,
                   joined<Kpr32f>(kpriGradientColorToGray_32f_C3C1R, norm));
    }
    return true;
}();

}  // namespace
