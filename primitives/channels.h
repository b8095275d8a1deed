// Interleaved channels in the lanes of vectors.
#pragma once

#include "primitives/simd.h"

namespace n0 {

// The lanes of vector `turn` of a row that hold elements of `channel`, both counted from 0. Three channels rotate from
// vector to vector, since 3 divides no number of lanes: after three vectors the pattern comes back, and those three
// have each lane exactly once.
template <typename T, int channels>
constexpr Mask<T> channelLanes(int channel, int turn) {
    constexpr Bits64 everyThird[] = {0x9249249249249249, 0x2492492492492492, 0x4924924924924924};
    if (channels == 1) return static_cast<Mask<T>>(~Bits64{0});
    const int first = (channel + 2 * turn * kLanes<T>) % 3;  // channel - turn * lanes, kept positive: 2 is -1 mod 3
    return static_cast<Mask<T>>(everyThird[first]);
}

}  // namespace n0
