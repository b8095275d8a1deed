// The sizes of a pyramid's levels.
#pragma once

#include <algorithm>

#include "frame/checks.h"

namespace n0::pyramid {

// A NaN fails.
constexpr bool rateHolds(Kpr32f rate) { return rate > 1.0F && rate <= 10.0F; }

// Sides that go down to a side.
struct UpRange {
    Kpr64s min, max;
};

constexpr UpRange upRangeOf(Kpr64s side, Kpr32f rate) {
    const auto times = [rate](Kpr64s n) { return static_cast<Kpr64s>(static_cast<Kpr32f>(n) * rate); };
    return {side == 1 ? 1 : std::max(times(side - 1) + 1, side + 1), std::max(times(side), side + 1)};
}

// The ranges of neighbours follow one another without a gap, so that one of them has the side.
constexpr Kpr32s sideBelow(Kpr32s side, Kpr32f rate) {
    const Kpr32f nearest = static_cast<Kpr32f>(side) / rate + 0.5F;
    auto below = std::max<Kpr64s>(static_cast<Kpr64s>(nearest), 1);
    while (side < upRangeOf(below, rate).min) --below;
    while (side > upRangeOf(below, rate).max) ++below;
    return static_cast<Kpr32s>(below);
}

constexpr KprSize sizeBelow(KprSize size, Kpr32f rate) {
    return {sideBelow(size.width, rate), sideBelow(size.height, rate)};
}

}  // namespace n0::pyramid
