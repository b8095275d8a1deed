// The neighbours of a pixel in the order in which floods visit them: left, right, above, below, then upper left, upper
// right, lower left, lower right. The first four are those of 4 neighbours.
#pragma once

#include "frame/api.h"

namespace n0 {

// Their distances in a plane whose rows lie `pitch` elements apart.
template <typename Offset>
struct NeighbourOffsets {
    Offset at[8];
    explicit NeighbourOffsets(Offset pitch) : at{-1, 1, -pitch, pitch, -pitch - 1, 1 - pitch, pitch - 1, pitch + 1} {}
    Offset operator[](int i) const { return at[i]; }
};

}  // namespace n0
