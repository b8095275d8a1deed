// Opening by reconstruction: the marker is the image eroded. Beside it the time of one pair of plain sweeps over the
// same image, down and up, as one would write them.
#include <algorithm>
#include <cstring>
#include <vector>

#include "bench/support/bench.h"

namespace {

using bench::Image;

// Round bright spots of many sizes on a dark, uneven ground, as coins on a table.
void drawCoins(const Image<Kpr8u>& image, KprSize size) {
    for (int y = 0; y < size.height; ++y) {
        for (int x = 0; x < size.width; ++x) {
            const int cell = size.height / 5;
            const int dx = x % cell - cell / 2, dy = y % cell - cell / 2,
                      r = cell / 4 + (x / cell * 7 + y / cell * 5) % 9;
            const int noise = (x * 7919 + y * 104729 + x * y) % 23;
            image.data()[y * image.step() + x] =
                static_cast<Kpr8u>((dx * dx + dy * dy < r * r ? 150 + (x + y) % 40 : 40 + x * 40 / size.width) + noise);
        }
    }
}

[[gnu::noinline]] void plainSweeps(const Kpr8u* limit, int limitStep, Kpr8u* marker, int markerStep, KprSize size) {
    const auto visit = [&](int x, int y, int dx, int dy) {
        Kpr8u* row = marker + y * markerStep;
        Kpr8u v = row[x];
        if (y + dy >= 0 && y + dy < size.height) {
            for (int i = std::max(x - 1, 0); i <= std::min(x + 1, size.width - 1); ++i)
                v = std::max(v, row[dy * markerStep + i]);
        }
        if (x + dx >= 0 && x + dx < size.width) v = std::max(v, row[x + dx]);
        row[x] = std::min(v, limit[y * limitStep + x]);
    };
    for (int y = 0; y < size.height; ++y) {
        for (int x = 0; x < size.width; ++x) visit(x, y, -1, -1);
        for (int x = size.width - 1; x >= 0; --x) visit(x, y, 1, -1);
    }
    for (int y = size.height - 1; y >= 0; --y) {
        for (int x = 0; x < size.width; ++x) visit(x, y, -1, 1);
        for (int x = size.width - 1; x >= 0; --x) visit(x, y, 1, 1);
    }
}

template <typename Run>
void reconstruct(benchmark::State& state, KprSize size, Run run) {
    const Image<Kpr8u> image(size), marker(size), result(size);
    drawCoins(image, size);
    const KprSize maskSize = {15, 15};
    int specSize = 0, bufferSize = 0;
    kpriMorphologyBorderGetSize_8u_C1R(size, maskSize, &specSize, &bufferSize);
    std::vector<Kpr8u> spec(static_cast<std::size_t>(specSize)), buffer(static_cast<std::size_t>(bufferSize));
    auto* block = reinterpret_cast<KprMorphState*>(spec.data());
    const std::vector<Kpr8u> mask(15 * 15, 1);
    kpriMorphologyBorderInit_8u_C1R(size, mask.data(), maskSize, block, buffer.data());
    kpriErodeBorder_8u_C1R(image.data(), image.step(), marker.data(), marker.step(), size, kprBorderReplicate, 0, block,
                           buffer.data());
    const std::size_t bytes = static_cast<std::size_t>(marker.step()) * static_cast<std::size_t>(size.height);
    bench::measure(state, size, {2, 1, true}, [&] {
        std::memcpy(result.data(), marker.data(), bytes);
        run(image.data(), image.step(), result.data(), result.step(), size);
    });
}

const bool registered = [] {
    for (int norm : {0, 1}) {
        bench::add("MorphReconstructDilate_8u_C1IR/neighbours_" + std::to_string(norm == 0 ? 8 : 4),
                   [norm](benchmark::State& state, KprSize size) {
                       int bufferSize = 0;
                       kpriMorphReconstructGetBufferSize(size, kpr8u, 1, &bufferSize);
                       std::vector<Kpr8u> buffer(static_cast<std::size_t>(bufferSize));
                       reconstruct(state, size, [&](auto* src, int srcStep, auto* dst, int dstStep, KprSize roi) {
                           kpriMorphReconstructDilate_8u_C1IR(src, srcStep, dst, dstStep, roi, buffer.data(), norm);
                       });
                   });
    }
    bench::add("MorphReconstructDilate_8u_C1IR/plain_sweep_pair",
               [](benchmark::State& state, KprSize size) { reconstruct(state, size, plainSweeps); });
    return true;
}();

}  // namespace
