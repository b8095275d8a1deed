// Rows of pixels of one or three channels, looked at as many pixels at a time as a vector holds: what is found of them
// is one bit a pixel, the lowest for the leftmost.
#pragma once

#include <algorithm>
#include <bit>

#include "primitives/bytes.h"
#include "primitives/rows.h"
#include "primitives/simd_segment.h"

namespace n0::segment {

template <typename T, int channels>
struct Pixels {
    static constexpr Kpr64s kCount = kLanes<T> / channels;  // whole pixels of a vector
    static constexpr Bits64 kAll = ~Bits64{0} >> (64 - kCount);

    // The elements of the first `count` pixels.
    KPR_INLINE static First first(Kpr64s count) { return First{count * channels}; }

    // The elements of kCount pixels.
    KPR_INLINE static auto whole() {
        if constexpr (channels == 1) return All{};
        if constexpr (channels == 3) return first(kCount);
    }

    // One bit for each pixel of which every channel's bit is set.
    KPR_INLINE static Bits64 joined(Bits64 elements) {
        if constexpr (channels == 1) return elements;
        constexpr Bits64 everyThird = 0x1249249249249249;
        return gatherBits(elements & elements >> 1 & elements >> 2, everyThird);
    }

    // The pixel at `value` again and again.
    KPR_INLINE static Vec<T> repeated(const T* value) {
        if constexpr (channels == 1) return broadcast(*value);
        if constexpr (channels == 3)
            return as<T>(repeatPixel<3 * int{sizeof(T)}>(reinterpret_cast<const Kpr8u*>(value)));
    }

    // Paints `count` pixels.
    KPR_INLINE static void paint(T* first, Vec<T> value, Kpr64s count) {
        fillPixels<channels* int{sizeof(T)}>(reinterpret_cast<Kpr8u*>(first), as<Kpr8u>(value), count);
    }
};

}  // namespace n0::segment
