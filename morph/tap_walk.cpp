#include "morph/tap_walk.h"

namespace n0 {
namespace {

// Calls `visit(row, begin, length)` for each run of taps, in the window's rows and in the mask's columns.
template <typename Visit>
void eachRun(Taps taps, Window window, Visit visit) {
    for (Kpr64s y = 0; y < taps.height; ++y) {
        const Kpr64s row = y - taps.reachY() + window.top;
        for (Kpr64s x = 0; x < taps.width; ++x) {
            if (!taps.at(x, y)) continue;
            const Kpr64s begin = x;
            while (x < taps.width && taps.at(x, y)) ++x;
            visit(row, begin, x - begin);
        }
    }
}

constexpr Kpr64s loadsOf(Kpr64s run, Kpr64s span) { return run < span ? run : (run + span - 1) / span; }

}  // namespace

Kpr64s listLoads(Taps taps, Window window, Kpr64s span, int channels, Kpr64s skip, TapList& list) {
    Kpr64s total = 0;
    eachRun(taps, window, [&](Kpr64s row, Kpr64s begin, Kpr64s length) {
        const Kpr64s count = loadsOf(length, span);
        const bool spans = span > 1 && length >= span;
        const Kpr64s step = spans ? span : 1;
        const Kpr64s from = std::max(skip - total, Kpr64s{0});
        const Kpr64s to = std::min(count, skip + TapList::kMost - total);
        for (Kpr64s k = from; k < to; ++k) {
            const Kpr64s column = begin + std::min(k * step, length - step) - taps.reachX() + window.left;
            list.loads[total + k - skip] = {spans ? -1 - row : row, column * channels};
        }
        total += count;
    });
    return total;
}

Kpr64s bestSpan(Taps taps, Window window) {
    constexpr Kpr64s kMost = 64;
    Kpr64s best = 1, fewest = 0;
    eachRun(taps, window, [&](Kpr64s, Kpr64s, Kpr64s length) { fewest += length; });
    for (Kpr64s span = 2; span <= std::min(kMost, window.columns()); ++span) {
        // A row's copy, its spans and their stores count as loads too.
        Kpr64s loads = 4;
        for (Kpr64s held = 1; held < span; held *= 4) loads += 4;
        eachRun(taps, window, [&](Kpr64s, Kpr64s, Kpr64s length) { loads += loadsOf(length, span); });
        if (loads < fewest) {
            fewest = loads;
            best = span;
        }
    }
    return best;
}

}  // namespace n0
