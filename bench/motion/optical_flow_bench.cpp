// 500 points of a photograph, tracked to where it has moved by a few pixels and a fraction: time a point.
#include <algorithm>
#include <cmath>
#include <vector>

#include "bench/support/bench.h"
#include "examples/tour/image.h"

namespace {

constexpr int kLevels = 4, kWindow = 21, kCount = 500;
constexpr float kMovedX = 4.3F, kMovedY = -2.6F;

// The photograph side by side with its mirror images, moved.
float scene(const tour::Gray& photo, float x, float y) {
    const auto at = [&](int column, int row) {
        const auto mirrored = [](int i, int n) { return std::min(i % (2 * n), 2 * n - 1 - i % (2 * n)); };
        return static_cast<float>(photo.at(mirrored(column, photo.width), mirrored(row, photo.height)));
    };
    const int ix = static_cast<int>(std::floor(x)), iy = static_cast<int>(std::floor(y));
    const float fx = x - std::floor(x), fy = y - std::floor(y);
    return (1 - fy) * ((1 - fx) * at(ix, iy) + fx * at(ix + 1, iy)) +
           fy * ((1 - fx) * at(ix, iy + 1) + fx * at(ix + 1, iy + 1));
}

template <typename T>
struct Levels {
    std::vector<bench::Image<T>> images;
    std::vector<void*> pixels;
    std::vector<KprSize> sizes;
    std::vector<double> rates;
    std::vector<int> steps;

    Levels(const tour::Gray& photo, KprSize size, float movedX, float movedY) {
        for (int level = 0; level < kLevels; ++level) {
            const KprSize here = {size.width >> level, size.height >> level};
            const bench::Image<T>& image = images.emplace_back(here);
            const int step = image.step() / static_cast<int>(sizeof(T));
            for (int y = 0; y < here.height; ++y) {
                for (int x = 0; x < here.width; ++x) {
                    float value =
                        scene(photo, 40 + static_cast<float>(x) + movedX, 40 + static_cast<float>(y) + movedY);
                    if (level > 0) {
                        const T* const from =
                            static_cast<const T*>(pixels.back()) + 2 * (y * (steps.back() / sizeof(T)) + x);
                        const T* const below = from + steps.back() / sizeof(T);
                        value = static_cast<float>(from[0] + from[1] + below[0] + below[1]) / 4;
                    }
                    image.data()[y * step + x] = static_cast<T>(value + 0.5F);
                }
            }
            pixels.push_back(image.data());
            sizes.push_back(here);
            rates.push_back(1.0 / (1 << level));
            steps.push_back(image.step());
        }
    }

    KprPyramid record() { return {pixels.data(), sizes.data(), rates.data(), steps.data(), nullptr, kLevels - 1}; }
};

// The pixel of each tile that differs most along both axes.
template <typename T>
std::vector<KprPoint32f> corners(Levels<T>& levels) {
    const KprSize size = levels.sizes[0];
    const T* const image = static_cast<const T*>(levels.pixels[0]);
    const int step = levels.steps[0] / static_cast<int>(sizeof(T)), tilesX = 25, tilesY = kCount / tilesX;
    std::vector<KprPoint32f> points;
    for (int i = 0; i < kCount; ++i) {
        const int tx = i % tilesX, ty = i / tilesX;
        double best = -1;
        KprPoint32f corner = {0, 0};
        for (int y = 16 + (size.height - 32) * ty / tilesY; y < 16 + (size.height - 32) * (ty + 1) / tilesY; ++y) {
            for (int x = 16 + (size.width - 32) * tx / tilesX; x < 16 + (size.width - 32) * (tx + 1) / tilesX; ++x) {
                const T* const p = image + y * step + x;
                const double across = std::fabs(double(p[2]) - double(p[-2]));
                const double down = std::fabs(double(p[2 * step]) - double(p[-2 * step]));
                if (std::min(across, down) <= best) continue;
                best = std::min(across, down);
                corner = {static_cast<float>(x), static_cast<float>(y)};
            }
        }
        points.push_back(corner);
    }
    return points;
}

template <typename T, typename Init, typename Track>
auto flow(KprDataType type, Init init, Track track) {
    return [=](benchmark::State& state, KprSize size) {
        const tour::Gray photo = tour::readGray(KPRCV_PHOTOS_DIR "/camera.png");
        Levels<T> first(photo, size, 0, 0), second(photo, size, kMovedX, kMovedY);
        const KprPyramid pyramid1 = first.record(), pyramid2 = second.record();
        const std::vector<KprPoint32f> points = corners(first);
        int bytes = 0;
        kpriOpticalFlowPyrLKGetSize(kWindow, size, type, 0, &bytes);
        std::vector<Kpr8u> buffer(static_cast<std::size_t>(bytes)), status(kCount);
        std::vector<Kpr32f> error(kCount);
        KprOpticalFlowPyrLK* block = nullptr;
        init(&block, size, kWindow, 0, buffer.data());
        std::vector<KprPoint32f> found;
        for (auto _ : state) {
            found = points;
            track(&pyramid1, &pyramid2, points.data(), found.data(), status.data(), error.data(), kCount, kWindow,
                  kLevels - 1, 10, 0.03F, block);
            benchmark::ClobberMemory();
        }
        state.counters["us/point"] = benchmark::Counter(
            kCount * 1e-6, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
        std::vector<double> errors;
        for (std::size_t i = 0; i < points.size(); ++i) {
            if (status[i] == 0)
                errors.push_back(std::hypot(found[i].x - points[i].x + kMovedX, found[i].y - points[i].y + kMovedY));
        }
        std::sort(errors.begin(), errors.end());
        state.counters["tracked"] = static_cast<double>(errors.size());
        state.counters["median_error"] = errors.empty() ? 0 : errors[errors.size() / 2];
    };
}

const bool registered = [] {
    const auto add = [](const std::string& name, auto run) {
        for (KprSize size : {bench::kInCache, bench::kLarge})
            benchmark::RegisterBenchmark(
                (name + "/" + std::to_string(size.width) + "x" + std::to_string(size.height)).c_str(),
                [run, size](benchmark::State& state) { run(state, size); });
    };
    add("OpticalFlowPyrLK_8u_C1R", flow<Kpr8u>(kpr8u, kpriOpticalFlowPyrLKInit_8u_C1R, kpriOpticalFlowPyrLK_8u_C1R));
    add("OpticalFlowPyrLK_16u_C1R",
        flow<Kpr16u>(kpr16u, kpriOpticalFlowPyrLKInit_16u_C1R, kpriOpticalFlowPyrLK_16u_C1R));
    add("OpticalFlowPyrLK_32f_C1R",
        flow<Kpr32f>(kpr32f, kpriOpticalFlowPyrLKInit_32f_C1R, kpriOpticalFlowPyrLK_32f_C1R));
    return true;
}();

}  // namespace
