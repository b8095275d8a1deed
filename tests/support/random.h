// Random test data. Every test draws from its own stream, made from the run's seed and the test's name, so that a test
// that is run alone draws what it drew among the others. A failing run prints its seed; KPRCV_SEED sets it.
#pragma once

#include <kprcv.h>

#include <cstdint>
#include <random>
#include <type_traits>

namespace test {

std::uint64_t runSeed();

class Random {
  public:
    Random();  // the current test's stream

    // Uniform from low to high, both included.
    int range(int low, int high) { return std::uniform_int_distribution<int>(low, high)(engine_); }
    bool oneIn(int n) { return range(1, n) == 1; }

    // A pixel: any value of an integer type, its ends often. Floats are of moderate size unless `wild`, which brings
    // infinities, NaN of both kinds and signs, zeros of both signs, subnormals and values near overflow among them.
    template <typename T>
    T pixel(bool wild = false) {
        if constexpr (std::is_floating_point_v<T>) {
            if (wild && oneIn(4)) return special<T>();
            return static_cast<T>(range(-1000000, 1000000)) / static_cast<T>(1 << range(0, 20));
        } else {
            if (oneIn(8)) return oneIn(2) ? std::numeric_limits<T>::max() : std::numeric_limits<T>::min();
            return static_cast<T>(engine_());
        }
    }

  private:
    template <typename T>
    T special() {
        using Limits = std::numeric_limits<T>;
        const T values[] = {Limits::infinity(),
                            -Limits::infinity(),
                            Limits::quiet_NaN(),
                            -Limits::quiet_NaN(),
                            Limits::signaling_NaN(),
                            T{0},
                            -T{0},
                            Limits::min(),
                            Limits::denorm_min(),
                            Limits::max(),
                            Limits::lowest()};
        return values[range(0, static_cast<int>(std::size(values)) - 1)];
    }

    std::mt19937_64 engine_;
};

}  // namespace test
