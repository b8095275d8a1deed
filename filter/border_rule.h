// What lies beyond a ROI, along one axis.
#pragma once

#include <algorithm>
#include <cstdint>

#include "primitives/border.h"
#include "primitives/simd.h"

namespace n0 {

// The first T of working memory, at a multiple of `alignment` bytes.
template <typename T>
T* alignedUp(void* memory, std::uintptr_t alignment) {
    return reinterpret_cast<T*>(static_cast<char*>(memory) +
                                (-reinterpret_cast<std::uintptr_t>(memory) & (alignment - 1)));
}

// Where along one axis a pixel is read from: its index, or kConstant for the border value.
inline constexpr Kpr64s kConstant = INT64_MIN;

struct Axis {
    Kpr64s size;
    KprBorderType mode;
    bool lowInMemory, highInMemory;

    [[nodiscard]] KPR_INLINE constexpr bool isReal(Kpr64s index) const {
        return index < 0 ? lowInMemory : index < size || highInMemory;
    }

    // A reflection may land beyond the other side: it goes on until it meets the ROI or real memory.
    KPR_INLINE constexpr Kpr64s operator()(Kpr64s index) const {
        for (;;) {
            if (isReal(index)) return index;
            if (mode == kprBorderConstant) return kConstant;
            if (mode == kprBorderReplicate) return index < 0 ? 0 : size - 1;
            if (size == 1) return 0;
            index = index < 0 ? -index : 2 * (size - 1) - index;
        }
    }
};

// The first row that does not exist below a ROI.
constexpr Kpr64s endOf(Axis rows, int radius) { return rows.size + (rows.highInMemory ? radius : 0); }

constexpr Axis columnsOf(Kpr64s width, KprBorderType word) {
    return {width, word & kBaseMode, (word & kprBorderInMemLeft) != 0, (word & kprBorderInMemRight) != 0};
}
constexpr Axis rowsOf(Kpr64s height, KprBorderType word) {
    return {height, word & kBaseMode, (word & kprBorderInMemTop) != 0, (word & kprBorderInMemBottom) != 0};
}

}  // namespace n0
