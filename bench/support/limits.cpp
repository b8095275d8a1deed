#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstring>
#include <iostream>
#include <map>
#include <vector>

#include "bench/support/bench.h"

namespace bench {
namespace {

// The best of several rounds: a limit is what the machine can do, not what it did on average.
template <typename Run>
double bestRate(std::size_t bytes, Run run) {
    using Clock = std::chrono::steady_clock;
    const std::size_t repeats = std::max<std::size_t>(1, (std::size_t{32} << 20) / bytes);
    double best = 0;
    for (int round = 0; round < 15; ++round) {
        const auto start = Clock::now();
        for (std::size_t i = 0; i < repeats; ++i) run();
        const std::chrono::duration<double> time = Clock::now() - start;
        best = std::max(best, double(bytes * repeats) / time.count());
    }
    return best;
}

typedef std::uint64_t Words __attribute__((vector_size(64), aligned(8), may_alias));

// Four independent chains: bound by nothing but the loads.
__attribute__((target("arch=" KPRCV_PROCESSOR))) std::uint64_t readAll(const std::vector<std::uint64_t>& words) {
    const Words* v = reinterpret_cast<const Words*>(words.data());
    Words a{}, b{}, c{}, d{};
    for (std::size_t i = 0; i + 4 <= words.size() / 8; i += 4) {
        a |= v[i];
        b |= v[i + 1];
        c |= v[i + 2];
        d |= v[i + 3];
    }
    a |= b | c | d;
    return a[0] ^ a[1] ^ a[2] ^ a[3] ^ a[4] ^ a[5] ^ a[6] ^ a[7];
}

__attribute__((target("arch=" KPRCV_PROCESSOR))) void updateAll(std::vector<std::uint64_t>& words) {
    Words* v = reinterpret_cast<Words*>(words.data());
    for (std::size_t i = 0; i < words.size() / 8; ++i) v[i] += 1;
}

double measureRate(Limit limit, std::size_t size) {
    std::vector<std::uint64_t> words(size / 8, 1);
    switch (limit) {
        case Limit::Copy:
            return bestRate(size, [&] {
                std::memcpy(words.data() + size / 16, words.data(), size / 2);
                benchmark::ClobberMemory();
            });
        case Limit::Read:
            return bestRate(size, [&] { benchmark::DoNotOptimize(readAll(words)); });
        case Limit::Update:
            return bestRate(2 * size, [&] {
                updateAll(words);
                benchmark::ClobberMemory();
            });
    }
    return 0;
}

}  // namespace

double rateOf(Limit limit, std::size_t footprint) {
    static std::map<std::pair<Limit, std::size_t>, double> known;
    std::size_t size = 4096;
    while (size * 2 <= footprint) size *= 2;
    const auto [entry, isNew] = known.try_emplace({limit, size}, 0.0);
    if (isNew) entry->second = measureRate(limit, size);
    return entry->second;
}

}  // namespace bench

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    using bench::Limit;
    for (const auto& [limit, name] :
         {std::pair{Limit::Copy, "copy"}, {Limit::Read, "read"}, {Limit::Update, "update"}}) {
        for (const auto& [block, bytes] : {std::pair{"256KiB", 256 << 10}, {"16MiB", 16 << 20}}) {
            const auto footprint = static_cast<std::size_t>(limit == Limit::Copy ? 2 * bytes : bytes);
            benchmark::AddCustomContext(std::string(name) + "_of_" + block + "_blocks_GB/s",
                                        std::to_string(bench::rateOf(limit, footprint) * 1e-9));
        }
    }
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
