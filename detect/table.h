// What the upright and the tilted tables have in common.
#pragma once

#include "primitives/rows.h"
#include "primitives/simd_detect.h"

namespace n0::detect {

// Of pixels below 256.
KPR_INLINE Vec<Kpr32s> squares(Vec<Kpr32s> pixels) {
    return sumPairs(as<Kpr16s>(pixels), as<Kpr16s>(pixels));  // the upper 16 bits of each are zero
}

template <typename T>
void fillRow(T* dst, Kpr64s width, T value) {
    walkRow<kLanes<T>>(
        width, [=](auto part, T* d) { store(d, broadcast(value), part); }, dst);
}

}  // namespace n0::detect
