// Fills of a blob: an ellipse that touches the image's edges. Plain fills paint it to and fro between two values; the
// others fill a blob of uneven values, which is put back each time by a copy. Beside them the worst shapes, as plain
// fills: a comb, whose teeth are one pixel wide, and a checkerboard of 8 neighbours.
#include <cstring>
#include <vector>

#include "bench/support/bench.h"

namespace {

using bench::Image;

bool inBlob(int x, int y, KprSize size) {
    const double dx = (x - size.width / 2) / (size.width / 2.0), dy = (y - size.height / 2) / (size.height / 2.0);
    return dx * dx + dy * dy < 1;
}

// Values 100 to 99 + levels where `inside`, 200 elsewhere, in every channel.
template <typename T, typename Inside>
void draw(const Image<T>& image, KprSize size, int channels, int levels, Inside inside) {
    for (int y = 0; y < size.height; ++y) {
        T* row = reinterpret_cast<T*>(reinterpret_cast<char*>(image.data()) + std::ptrdiff_t{y} * image.step());
        for (int x = 0; x < size.width * channels; ++x) {
            row[x] = static_cast<T>(inside(x / channels, y) ? 100 + (x * 7919 + y * 104729) % levels : 200);
        }
    }
}

template <typename T, typename Fill, typename Inside>
void plain(const std::string& name, Fill fill, Inside inside) {
    bench::add(name, [=](benchmark::State& state, KprSize size) {
        const Image<T> image(size);
        draw(image, size, 1, 1, [=](int x, int y) { return inside(x, y, size); });
        int bytes = 0;
        kpriFloodFillGetSize(size, &bytes);
        std::vector<Kpr8u> buffer(static_cast<std::size_t>(bytes));
        KprConnectedComp record;
        const KprPoint seed = {size.width / 2 & ~1, size.height / 2 & ~1};
        T value = 100;
        bench::measure(state, size, {sizeof(T), sizeof(T), true}, [&] {
            value = static_cast<T>(201 - value);
            fill(image.data(), image.step(), size, seed, value, &record, buffer.data());
        });
    });
}

template <typename T, typename Fill>
void tolerant(const std::string& name, int channels, Fill fill) {
    bench::add(name, [=](benchmark::State& state, KprSize size) {
        const Image<T> source(size, channels), image(size, channels);
        draw(source, size, channels, 4, [=](int x, int y) { return inBlob(x, y, size); });
        int bytes = 0;
        kpriFloodFillGetSize_Grad(size, &bytes);
        std::vector<Kpr8u> buffer(static_cast<std::size_t>(bytes));
        KprConnectedComp record;
        const std::size_t pixels = sizeof(T) * static_cast<std::size_t>(channels);
        bench::measure(state, size, {2 * pixels, pixels, true}, [&] {
            std::memcpy(image.data(), source.data(),
                        static_cast<std::size_t>(image.step()) * static_cast<std::size_t>(size.height));
            fill(image.data(), image.step(), size, KprPoint{size.width / 2, size.height / 2}, &record, buffer.data());
        });
    });
}

#define KPR_TOLERANT(name, T)                                                                                       \
    tolerant<T>(#name "_C1IR/blob", 1, [](T* image, int step, KprSize size, KprPoint seed, auto* r, auto* buffer) { \
        kpri##name##_C1IR(image, step, size, seed, T{30}, T{3}, T{3}, r, buffer);                                   \
    });                                                                                                             \
    tolerant<T>(#name "_C3IR/blob", 3, [](T* image, int step, KprSize size, KprPoint seed, auto* r, auto* buffer) { \
        const T value[] = {30, 30, 30}, delta[] = {3, 3, 3};                                                        \
        kpri##name##_C3IR(image, step, size, seed, value, delta, delta, r, buffer);                                 \
    });

const bool registered = [] {
    plain<Kpr8u>("FloodFill_4Con_8u_C1IR/blob", kpriFloodFill_4Con_8u_C1IR, inBlob);
    plain<Kpr8u>("FloodFill_8Con_8u_C1IR/blob", kpriFloodFill_8Con_8u_C1IR, inBlob);
    plain<Kpr32f>("FloodFill_4Con_32f_C1IR/blob", kpriFloodFill_4Con_32f_C1IR, inBlob);
    plain<Kpr8u>("FloodFill_4Con_8u_C1IR/comb", kpriFloodFill_4Con_8u_C1IR,
                 [](int x, int y, KprSize) { return y == 0 || x % 2 == 0; });
    plain<Kpr8u>("FloodFill_8Con_8u_C1IR/checkers", kpriFloodFill_8Con_8u_C1IR,
                 [](int x, int y, KprSize) { return (x + y) % 2 == 0; });
    KPR_TOLERANT(FloodFill_Range4Con_8u, Kpr8u)
    KPR_TOLERANT(FloodFill_Range8Con_8u, Kpr8u)
    KPR_TOLERANT(FloodFill_Grad4Con_8u, Kpr8u)
    KPR_TOLERANT(FloodFill_Grad8Con_8u, Kpr8u)
    KPR_TOLERANT(FloodFill_Grad4Con_32f, Kpr32f)
    return true;
}();

}  // namespace
