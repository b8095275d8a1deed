// Runs of a row that belong together, found by joining them pair by pair. Runs are numbered in raster order, and the
// first run of a region speaks for it.
#pragma once

#include <utility>

#include "primitives/rows.h"

namespace n0::segment {

class JoinedRuns {
  public:
    explicit JoinedRuns(Kpr32s* leaders) : leaders_(leaders) {}

    // Runs `first` to before `end` stand alone.
    KPR_INLINE void begin(Kpr64s first, Kpr64s end) const {
        walkColumns<kLanes<Kpr32s>>(end - first, [&](auto part, Kpr64s x) {
            const auto places = laneConstant<Kpr32s>([](int i) { return i; });
            store(leaders_ + first + x, places + broadcast(static_cast<Kpr32s>(first + x)), part);
        });
    }

    KPR_INLINE void join(Kpr32s a, Kpr32s b) const {
        a = find(a);
        b = find(b);
        if (a > b) std::swap(a, b);
        leaders_[b] = a;
    }

    // Runs come in their order: each then has the first run of its region.
    [[nodiscard]] KPR_INLINE Kpr32s settle(Kpr64s run) const { return leaders_[run] = leaders_[leaders_[run]]; }

  private:
    [[nodiscard]] KPR_INLINE Kpr32s find(Kpr32s run) const {
        while (leaders_[run] != run) run = leaders_[run] = leaders_[leaders_[run]];
        return run;
    }

    Kpr32s* leaders_;  // an earlier run of the same region, or the run itself
};

}  // namespace n0::segment
