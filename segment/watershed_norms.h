// What the norms of a watershed by sweeps mean, and where a pixel remembers that its cost came from.
#pragma once

#include "primitives/simd.h"

namespace n0::segment {

enum class Family { Four, Eight, March };

struct Norm {
    Family family;
    Kpr32s side, corner;  // weights of steps
};

// `march` is the weight of a straight step of marching fronts. A single column has steps of no weight to the row above
// and below, whatever the norm.
constexpr Norm normOf(int code, KprSize roi, Kpr32s march) {
    if (roi.width == 1 || code == kprSegNormCity) return {Family::Four, 0, 0};
    if (code == kprSegNormEuclid) return {Family::Eight, 10, 14};
    if (code == kprSegNormMarch) return {Family::March, march, 0};
    return {Family::Eight, 0, 0};
}

enum Direction : Kpr8u {
    kMarked,
    kRight,
    kUpperRight,
    kAbove,
    kUpperLeft,
    kLeft,
    kLowerLeft,
    kBelow,
    kLowerRight,
    kNowhere
};

// From a pixel to the one that its cost came from, in rows `pitch` elements apart.
struct ParentOffsets {
    Kpr64s at[10];
    explicit ParentOffsets(Kpr64s pitch)
        : at{0, 1, 1 - pitch, -pitch, -pitch - 1, -1, pitch - 1, pitch, pitch + 1, 0} {}
    Kpr64s operator[](int direction) const { return at[direction]; }
};

// What two fronts of steps of 63, so far apart, gain over the nearer one alone.
KPR_INLINE Kpr32s marchGain(Kpr64s apart) {
    static constexpr Kpr8u gains[64] = {19, 18, 18, 17, 17, 16, 16, 15, 15, 14, 14, 14, 13, 13, 12, 12,
                                        11, 11, 11, 10, 10, 9,  9,  9,  8,  8,  8,  7,  7,  7,  6,  6,
                                        6,  5,  5,  5,  4,  4,  4,  4,  3,  3,  3,  3,  2,  2,  2,  2,
                                        2,  1,  1,  1,  1,  1,  1,  1,  0,  0,  0,  0,  0,  0,  0,  0};
    return gains[apart];
}

}  // namespace n0::segment
