#include "morph/tap_walk.h"

namespace n0::morph {

Kpr64s listLoads(const Taps& taps, Window window, Kpr64s span, int channels, Kpr64s skip, TapList& list) {
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

}  // namespace n0::morph
