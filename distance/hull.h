// Points in the plane, thinned out to the corners of their lower convex hull.
#pragma once

#include "primitives/rows.h"
#include "primitives/simd_distance.h"

namespace n0::distance {

// Columns in ascending order and heights up to 2^31 - 1.
struct Points {
    Kpr32s* x;
    Kpr32s* f;
    Kpr64s count;

    // Every pass drops all points that lie on or above the line between their neighbours at once: such a point is no
    // corner, whichever others go with it. Some six passes do. Where more are needed, each for a point or two, a walk
    // finishes, so that the time stays linear.
    void thinOut() {
        for (Kpr64s visits = kPasses * count; visits > 0; visits -= count) {
            const Kpr64s before = count;
            dropOnce();
            if (count == before) return;
        }
        walk();
    }

  private:
    static constexpr Kpr64s kPasses = 8;

    void dropOnce() {
        constexpr Kpr64s step = kLanes<Kpr32s>;
        if (count < 3) return;
        // The points in between, with the old points before and behind them: what has been written back lies before
        // what is read next.
        Kpr64s kept = 1;
        const Kpr64s last = count - 1;
        auto xCarry = broadcast(x[0]), fCarry = broadcast(f[0]);  // the last lane is the point before the step's first
        walkColumns<step>(count - 2, [&](auto part, Kpr64s i) {
            const auto xHere = load(x + i + 1, part), fHere = load(f + i + 1, part);
            const auto xNext = load(x + i + 2, part), fNext = load(f + i + 2, part);
            const auto xBack = ahead<60>(xCarry, xHere), fBack = ahead<60>(fCarry, fHere);
            const auto corners = productLess(xNext - xHere, fHere - fBack, xHere - xBack, fNext - fHere);
            const auto mask = within<Kpr32s>(part, corners);
            const First taken(countBits(mask));
            store(x + kept, pack(mask, xHere), taken);
            store(f + kept, pack(mask, fHere), taken);
            kept += countBits(mask);
            xCarry = xHere;
            fCarry = fHere;
        });
        x[kept] = x[last];
        f[kept] = f[last];
        count = kept + 1;
    }

    void walk() {
        Kpr64s kept = 0;
        for (Kpr64s i = 0; i < count; ++i) {
            const Kpr64s xi = x[i], fi = f[i];
            while (kept >= 2 && (xi - x[kept - 1]) * (Kpr64s{f[kept - 1]} - f[kept - 2]) >=
                                    (Kpr64s{x[kept - 1]} - x[kept - 2]) * (fi - f[kept - 1])) {
                --kept;
            }
            x[kept] = x[i];
            f[kept++] = f[i];
        }
        count = kept;
    }
};

}  // namespace n0::distance
