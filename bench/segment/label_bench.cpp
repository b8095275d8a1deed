// Labels of blobs as a threshold leaves them, ragged at their edges, and of noise, the worst case; walls between
// labels; speckles of a map of depths: slanting planes with wrong pixels strewn over them. Each call starts from a
// fresh copy.
#include <cmath>
#include <cstring>
#include <vector>

#include "bench/segment/ground.h"

namespace {

using bench::Image;

using bench::hashOf;

bool inBlobs(int x, int y) { return std::sin(x / 9.0) * std::sin(y / 11.0) + hashOf(x, y) / 400000.0 > 0.3; }
bool inNoise(int x, int y) { return hashOf(x, y) < 32768; }

template <typename T, typename Value, typename Call>
void add(const std::string& name, Value value, int bytesPerPixel, Call call) {
    bench::add(name, [=](benchmark::State& state, KprSize size) {
        const Image<T> source(size), image(size);
        for (int y = 0; y < size.height; ++y) {
            T* row = reinterpret_cast<T*>(reinterpret_cast<char*>(source.data()) + std::ptrdiff_t{y} * source.step());
            for (int x = 0; x < size.width; ++x) row[x] = static_cast<T>(value(x, y));
        }
        std::vector<Kpr8u> buffer(static_cast<std::size_t>(size.width) * static_cast<std::size_t>(size.height) *
                                      static_cast<std::size_t>(bytesPerPixel) +
                                  64);
        bench::measure(state, size, {2 * sizeof(T), sizeof(T), true}, [&] {
            std::memcpy(image.data(), source.data(),
                        static_cast<std::size_t>(image.step()) * static_cast<std::size_t>(size.height));
            call(image.data(), image.step(), size, buffer.data());
        });
    });
}

const bool registered = [] {
    for (int norm : {1, 0}) {
        const auto label = [norm](Kpr8u* image, int step, KprSize size, Kpr8u* buffer) {
            int count = 0;
            kpriLabelMarkers_8u_C1IR(image, step, size, 1, 254, norm, &count, buffer);
        };
        const std::string name = "LabelMarkers_8u_C1IR/neighbours_" + std::to_string(norm == 0 ? 8 : 4);
        add<Kpr8u>(name + "/blobs", inBlobs, 6, label);
        add<Kpr8u>(name + "/noise", inNoise, 6, label);
        add<Kpr8u>(
            "BoundSegments_8u_C1IR/neighbours_" + std::to_string(norm == 0 ? 8 : 4),
            [](int x, int y) { return inBlobs(x, y) ? 1 + x / 57 % 7 : 20; }, 1,
            [norm](Kpr8u* image, int step, KprSize size, Kpr8u*) {
                kpriBoundSegments_8u_C1IR(image, step, size, 255, norm);
            });
    }
    const auto depth = [](int x, int y) {
        const int plane = (x / 160 * 3 + y / 120 * 5) % 7;
        const bool wrong = hashOf(x / 2, y / 2) < 3000 || hashOf(x, y) < 1500;
        return wrong ? hashOf(y, x) % 250 : 30 + plane * 20 + (x + y * plane) / 30;
    };
    add<Kpr8u>("MarkSpeckles_8u_C1IR/depths", depth, 13, [](Kpr8u* image, int step, KprSize size, Kpr8u* buffer) {
        kpriMarkSpeckles_8u_C1IR(image, step, size, 0, 20, 2, 1, buffer);
    });
    add<Kpr16s>("MarkSpeckles_16s_C1IR/depths", depth, 13, [](Kpr16s* image, int step, KprSize size, Kpr8u* buffer) {
        kpriMarkSpeckles_16s_C1IR(image, step, size, 0, 20, 2, 1, buffer);
    });
    add<Kpr8u>(
        "MarkSpeckles_8u_C1IR/noise", [](int x, int y) { return hashOf(x, y); }, 13,
        [](Kpr8u* image, int step, KprSize size, Kpr8u* buffer) {
            kpriMarkSpeckles_8u_C1IR(image, step, size, 0, 20, 40, 1, buffer);
        });
    return true;
}();

}  // namespace
