#include "morph/tap_walk.h"

namespace n0::morph {
namespace {

constexpr Kpr64s loadsOf(Kpr64s run, Kpr64s span) { return run < span ? run : (run + span - 1) / span; }

}  // namespace

Kpr64s listLoads(Taps taps, Window window, Kpr64s span, int channels, Kpr64s skip, TapList& list) {
    Kpr64s total = 0;
    eachRun(taps, [&](TapRun run) {
        const Kpr64s row = run.row + window.top, count = loadsOf(run.length, span);
        const bool spans = span > 1 && run.length >= span;
        const Kpr64s step = spans ? span : 1;
        const Kpr64s from = std::max(skip - total, Kpr64s{0});
        const Kpr64s to = std::min(count, skip + TapList::kMost - total);
        for (Kpr64s k = from; k < to; ++k) {
            const Kpr64s column = run.column + std::min(k * step, run.length - step) + window.left;
            list.loads[total + k - skip] = {spans ? -1 - row : row, column * channels};
        }
        total += count;
    });
    return total;
}

Kpr64s bestSpan(Taps taps, Window window) {
    constexpr Kpr64s kMost = 64;
    Kpr64s best = 1, fewest = 0;
    eachRun(taps, [&](TapRun run) { fewest += run.length; });
    for (Kpr64s span = 2; span <= std::min(kMost, window.columns()); ++span) {
        // A row's copy, its spans and their stores count as loads too.
        Kpr64s loads = 4;
        for (Kpr64s held = 1; held < span; held *= 4) loads += 4;
        eachRun(taps, [&](TapRun run) { loads += loadsOf(run.length, span); });
        if (loads < fewest) {
            fewest = loads;
            best = span;
        }
    }
    return best;
}

}  // namespace n0::morph
