// The measuring ground: images that live where a size says, and the machine's own copying speed beside every result.
#pragma once

#include <benchmark/benchmark.h>
#include <kprcv.h>

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <random>
#include <string>
#include <type_traits>

namespace bench {

// What a function moves, in bytes a pixel. An accumulator is read and written where it lies.
struct Traffic {
    std::size_t read;
    std::size_t written;
    bool inPlace = false;

    std::size_t moved() const { return read + written; }
    std::size_t held() const { return inPlace ? read : read + written; }
};

// Bytes a second, counted both ways, that the machine itself reaches over `footprint` bytes: by copying one half to the
// other, by reading alone, by adding to all of it in place. Measured in this run, once for every power of two.
enum class Limit { Copy, Read, Update };
double rateOf(Limit limit, std::size_t footprint);

inline constexpr KprSize kTile = {64, 64};  // which shows what a call costs
inline constexpr KprSize kInCache = {640, 480};
inline constexpr KprSize kLarge = {1920, 1080};

template <typename T>
class Image {
  public:
    // Rows start at multiples of 64 bytes; or all of them one element behind, where they are `Odd`.
    enum Start { Aligned, Odd };
    explicit Image(KprSize size, int channels = 1, Start start = Aligned)
        : step_(static_cast<int>((sizeof(T) * static_cast<std::size_t>(size.width * channels + start) + 63) / 64 * 64)),
          bytes_(static_cast<std::size_t>(step_) * static_cast<std::size_t>(size.height)),
          start_(start),
          data_(static_cast<T*>(std::aligned_alloc(64, bytes_))) {
        std::mt19937 engine(7);
        for (std::size_t i = 0; i < bytes_ / sizeof(T); ++i) data_.get()[i] = static_cast<T>(engine() % 251);
    }

    T* data() const { return data_.get() + start_; }
    int step() const { return step_; }

  private:
    struct Free {
        void operator()(void* memory) const { std::free(memory); }
    };
    int step_;
    std::size_t bytes_;
    Start start_;
    std::unique_ptr<T, Free> data_;
};

// Times `call` and holds it against the machine's limit for its kind and footprint.
template <typename Call>
void measure(benchmark::State& state, KprSize size, Traffic traffic, Call call) {
    for (auto _ : state) {
        call();
        benchmark::ClobberMemory();
    }
    using benchmark::Counter;
    const double pixels = double(size.width) * size.height;
    const double bytes = pixels * double(traffic.moved());
    const Limit kind = traffic.written == 0 ? Limit::Read : traffic.inPlace ? Limit::Update : Limit::Copy;
    const double limit = rateOf(kind, static_cast<std::size_t>(pixels) * traffic.held());
    state.counters["ns/px"] = Counter(pixels * 1e-9, Counter::kIsIterationInvariantRate | Counter::kInvert);
    state.counters["GB/s"] = Counter(bytes * 1e-9, Counter::kIsIterationInvariantRate);
    state.counters["of_limit"] = Counter(bytes / limit, Counter::kIsIterationInvariantRate);
}

// Registers `run(state, size)` under `name` at the size of a tile, at the one in cache and at the large one.
template <typename Run>
void add(const std::string& name, Run run) {
    for (KprSize size : {kTile, kInCache, kLarge}) {
        benchmark::RegisterBenchmark(
            (name + "/" + std::to_string(size.width) + "x" + std::to_string(size.height)).c_str(),
            [run, size](benchmark::State& state) { run(state, size); });
    }
}

}  // namespace bench
