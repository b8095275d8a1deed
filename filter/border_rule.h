// What lies beyond a ROI, along one axis and along a row.
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

constexpr Axis columnsOf(Kpr64s width, KprBorderType word) {
    return {width, word & kBaseMode, (word & kprBorderInMemLeft) != 0, (word & kprBorderInMemRight) != 0};
}
constexpr Axis rowsOf(Kpr64s height, KprBorderType word) {
    return {height, word & kBaseMode, (word & kprBorderInMemTop) != 0, (word & kprBorderInMemBottom) != 0};
}

// Filters rows of pixels, a result needing `before` pixels on its left and `after` on its right.
template <typename T, int channels>
struct BorderedRow {
    Axis axis;
    int before, after;
    const T* value;  // one element a channel; read only where the word asks for it
    T* strip;        // room for before + after pixels and as many as the border touches on either side

    // Columns that read a synthesised pixel are filtered from a strip, by `edge`; all others by `inner` where they lie.
    // Both take the first pixel read, the first column written, and the number of columns.
    template <typename Inner, typename Edge>
    KPR_INLINE void filter(const T* row, Inner inner, Edge edge) const {
        const Kpr64s left = axis.lowInMemory ? 0 : std::min<Kpr64s>(before, axis.size);
        const Kpr64s right = axis.highInMemory ? axis.size : std::max<Kpr64s>(left, axis.size - after);
        if (left > 0) {
            fillStrip(row, -before, left + after);
            edge(strip, Kpr64s{0}, left);
        }
        if (right > left) inner(row + (left - before) * channels, left, right - left);
        if (axis.size > right) {
            fillStrip(row, right - before, axis.size + after);
            edge(strip, right, axis.size - right);
        }
    }

    // Pixels `first` to `last - 1` of the extended row.
    KPR_INLINE void fillStrip(const T* row, Kpr64s first, Kpr64s last) const {
        T* out = strip;
        for (Kpr64s x = first; x < last; ++x) {
            const Kpr64s from = axis(x);
            const T* pixel = from == kConstant ? value : row + from * channels;
            for (int c = 0; c < channels; ++c) *out++ = pixel[c];
        }
    }
};

}  // namespace n0
