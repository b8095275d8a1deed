// What lies beyond a ROI, along one axis: which pixel the index of a row or column reads. The rule of the base modes is
// told once, here, and drawn in border.h.
#pragma once

#include <cstdint>

#include "primitives/border_word.h"
#include "primitives/simd.h"

namespace n0 {

// Reflection that repeats the edge pixel: index -1 reads 0. No border word has this mode.
inline constexpr KprBorderType kRepeatEdge = 2;

// Where along one axis a pixel is read from: its index, or kConstant for the border value.
inline constexpr Kpr64s kConstant = INT64_MIN;

// Of a mirrored ROI that is one pixel long and has memory on one side: whether the other side reads that pixel, as the
// filters take it, or is reflected into memory, as morphology takes it.
enum class LonePixel { Repeats, Reflects };

struct Axis {
    Kpr64s size;
    KprBorderType mode;  // a base mode, or kRepeatEdge
    bool lowInMemory = false, highInMemory = false;
    LonePixel lone = LonePixel::Repeats;

    [[nodiscard]] KPR_INLINE constexpr bool isReal(Kpr64s index) const {
        return index < 0 ? lowInMemory : index < size || highInMemory;
    }

    // A reflection may land beyond the other side: it goes on until it meets the ROI or real memory.
    KPR_INLINE constexpr Kpr64s operator()(Kpr64s index) const {
        for (;;) {
            if (isReal(index)) return index;
            if (mode == kprBorderConstant) return kConstant;
            if (mode == kprBorderReplicate) return index < 0 ? 0 : size - 1;
            const bool beside = lone == LonePixel::Reflects && (lowInMemory || highInMemory);
            if (size == 1 && !beside) return 0;
            const Kpr64s repeated = mode == kRepeatEdge ? 1 : 0;
            index = index < 0 ? -index - repeated : 2 * (size - 1) - index + repeated;
        }
    }
};

// The first row that does not exist below a ROI.
constexpr Kpr64s endOf(Axis rows, Kpr64s radius) { return rows.size + (rows.highInMemory ? radius : 0); }

constexpr Axis columnsOf(Kpr64s width, Border border, LonePixel lone = LonePixel::Repeats) {
    return {width, border.base, border.left, border.right, lone};
}
constexpr Axis rowsOf(Kpr64s height, Border border, LonePixel lone = LonePixel::Repeats) {
    return {height, border.base, border.top, border.bottom, lone};
}

}  // namespace n0
