// Distance fields of a scene as a photograph gives it when thresholded, and the restoration of one with scratches.
// Plain two-pass loops stand beside the chamfer forms.
#include <algorithm>
#include <cmath>
#include <vector>

#include "bench/support/bench.h"

namespace {

using bench::Image;

// Round objects of several sizes, with a ragged edge: half of the pixels or so are zero.
void drawObjects(const Image<Kpr8u>& image, KprSize size) {
    for (int y = 0; y < size.height; ++y) {
        for (int x = 0; x < size.width; ++x) {
            const int cell = 37 + y / 120 * 25, dx = x % cell - cell / 2, dy = y % cell - cell / 2;
            const int r = cell / 3 + (x / cell * 7 + y / cell * 5) % 11, noise = (x * 7919 + y * 104729 + x * y) % 97;
            image.data()[y * image.step() + x] = dx * dx + dy * dy < r * r + noise ? 255 : 0;
        }
    }
}

// Scratches of three pixels' width over 2 % of the image; the number of their pixels.
std::size_t drawScratches(const Image<Kpr8u>& image, KprSize size) {
    std::fill(image.data(), image.data() + image.step() * size.height, Kpr8u{0});
    std::mt19937 engine(3);
    const std::size_t wanted = static_cast<std::size_t>(size.width) * static_cast<std::size_t>(size.height) / 50;
    std::size_t count = 0;
    while (count < wanted) {
        const double angle = double(engine() % 628) / 100;
        const int x0 = static_cast<int>(engine() % size.width), y0 = static_cast<int>(engine() % size.height);
        for (int i = 0; i < 100; ++i) {
            const int x = x0 + static_cast<int>(i * std::cos(angle)), y = y0 + static_cast<int>(i * std::sin(angle));
            for (int j = 0; j < 3; ++j) {
                if (x + j < 0 || x + j >= size.width || y < 0 || y >= size.height) continue;
                Kpr8u& pixel = image.data()[y * image.step() + x + j];
                count += pixel == 0;
                pixel = 255;
            }
        }
    }
    return count;
}

[[gnu::noinline]] void plainChamfer(const Kpr8u* src, int srcStep, Kpr32f* dst, int dstStep, KprSize size,
                                    const Kpr32f* weights) {
    const auto row = [&](int y) { return reinterpret_cast<Kpr32f*>(reinterpret_cast<char*>(dst) + y * dstStep); };
    const auto visit = [&](int x, int y, int sign, Kpr32f d) {
        const auto from = [&](int dx, int dy, Kpr32f weight) {
            if (x + dx >= 0 && x + dx < size.width && y + dy >= 0 && y + dy < size.height)
                d = std::min(d, row(y + dy)[x + dx] + weight);
        };
        from(-sign, 0, weights[0]);
        for (int dx = -1; dx <= 1; ++dx) from(dx, -sign, weights[dx == 0 ? 0 : 1]);
        row(y)[x] = d;
    };
    for (int y = 0; y < size.height; ++y) {
        for (int x = 0; x < size.width; ++x) {
            if (src[y * srcStep + x] == 0)
                row(y)[x] = 0;
            else
                visit(x, y, 1, 3.4028235e38F);
        }
    }
    for (int y = size.height - 1; y >= 0; --y) {
        for (int x = size.width - 1; x >= 0; --x) visit(x, y, -1, row(y)[x]);
    }
}

template <typename T, typename Run>
void addField(const std::string& name, Run run) {
    bench::add(name, [run](benchmark::State& state, KprSize size) {
        const Image<Kpr8u> src(size);
        const Image<T> dst(size);
        drawObjects(src, size);
        bench::measure(state, size, {1, sizeof(T)}, [&] { run(src.data(), src.step(), dst.data(), dst.step(), size); });
    });
}

template <typename T, typename Weight>
void addChamfer(const std::string& name, KprStatus (*function)(const Kpr8u*, int, T*, int, KprSize, const Weight*),
                const std::vector<Weight>& weights) {
    addField<T>("DistanceTransform_" + name,
                [function, weights](auto... arguments) { function(arguments..., weights.data()); });
}

void marching(benchmark::State& state, KprSize size) {
    const Image<Kpr8u> mask(size);
    const Image<Kpr32f> dst(size);
    drawScratches(mask, size);
    int bytes = 0;
    kpriFastMarchingGetBufferSize_8u32f_C1R(size, &bytes);
    std::vector<Kpr8u> buffer(static_cast<std::size_t>(bytes));
    bench::measure(state, size, {1, 4}, [&] {
        kpriFastMarching_8u32f_C1R(mask.data(), mask.step(), dst.data(), dst.step(), size, 5, buffer.data());
    });
    std::size_t band = 0;
    for (int y = 0; y < size.height; ++y) {
        for (int x = 0; x < size.width; ++x) band += dst.data()[y * dst.step() / 4 + x] != 0;
    }
    state.counters["band"] = double(band) / size.width / size.height;
}

void inpainting(benchmark::State& state, KprSize size, int method) {
    const Image<Kpr8u> src(size), mask(size), dst(size);
    const Image<Kpr32f> distance(size);
    const double filled = double(drawScratches(mask, size));
    int bytes = 0, stateBytes = 0;
    kpriFastMarchingGetBufferSize_8u32f_C1R(size, &bytes);
    std::vector<Kpr8u> buffer(static_cast<std::size_t>(bytes));
    kpriFastMarching_8u32f_C1R(mask.data(), mask.step(), distance.data(), distance.step(), size, 0, buffer.data());
    kpriInpaintGetSize(mask.data(), mask.step(), size, 5, method, 1, &stateBytes, &bytes);
    std::vector<Kpr8u> memory(static_cast<std::size_t>(stateBytes)), work(static_cast<std::size_t>(bytes));
    KprInpaintState* restoration = nullptr;
    kpriInpaintInit_8u_C1R(&restoration, distance.data(), distance.step(), mask.data(), mask.step(), size, 5, method,
                           memory.data(), work.data());
    bench::measure(state, size, {1, 1}, [&] {
        kpriInpaint_8u_C1R(src.data(), src.step(), dst.data(), dst.step(), size, restoration, work.data());
    });
    state.counters["ns/filled"] =
        benchmark::Counter(filled * 1e-9, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

const bool registered = [] {
    addField<Kpr32f>("TrueDistanceTransform_8u32f_C1R",
                     [](const Kpr8u* src, int srcStep, Kpr32f* dst, int dstStep, KprSize size) {
                         static std::vector<Kpr8u> buffer;
                         int bytes = 0;
                         kpriTrueDistanceTransformGetBufferSize_8u32f_C1R(size, &bytes);
                         buffer.resize(static_cast<std::size_t>(bytes));
                         kpriTrueDistanceTransform_8u32f_C1R(src, srcStep, dst, dstStep, size, buffer.data());
                     });
    const std::vector<Kpr32s> whole = {5, 7, 11};
    const std::vector<Kpr32f> real3 = {0.955F, 1.3693F}, real5 = {1, 1.4F, 2.1969F};
    addChamfer("3x3_8u_C1R", kpriDistanceTransform_3x3_8u_C1R, whole);
    addChamfer("5x5_8u_C1R", kpriDistanceTransform_5x5_8u_C1R, whole);
    addChamfer("3x3_8u16u_C1R", kpriDistanceTransform_3x3_8u16u_C1R, whole);
    addChamfer("5x5_8u16u_C1R", kpriDistanceTransform_5x5_8u16u_C1R, whole);
    addChamfer("3x3_8u32f_C1R", kpriDistanceTransform_3x3_8u32f_C1R, real3);
    addChamfer("5x5_8u32f_C1R", kpriDistanceTransform_5x5_8u32f_C1R, real5);
    addField<Kpr32f>("DistanceTransform_3x3_8u32f_C1R/plain",
                     [real3](auto... arguments) { plainChamfer(arguments..., real3.data()); });
    bench::add("FastMarching_8u32f_C1R", marching);
    for (int method : {0, 1}) {
        bench::add("Inpaint_8u_C1R/method_" + std::to_string(method),
                   [method](benchmark::State& state, KprSize size) { inpainting(state, size, method); });
    }
    return true;
}();

}  // namespace
