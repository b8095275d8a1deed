// The row driver: it alone knows how rows are stepped over and how they end.
#pragma once

#include "frame/api.h"
#include "primitives/simd.h"

namespace n0 {

// Rows of T that lie `step` bytes apart.
template <typename T>
struct Rows {
    T* first;
    Kpr64s step;

    KPR_INLINE T* operator[](Kpr64s y) const {
        using Byte = std::conditional_t<std::is_const_v<T>, const char, char>;
        return reinterpret_cast<T*>(reinterpret_cast<Byte*>(first) + y * step);
    }
};

template <typename T>
Rows(T*, Kpr64s) -> Rows<T>;

// Runs `kernel(part, pointers...)` along one row of `width` pixels, `lanes` pixels at a time; each pointer addresses
// the part's first pixel. Every pixel is visited exactly once, so that a kernel may work in place.
template <int lanes, typename Kernel, typename... T>
KPR_INLINE void walkRow(Kpr64s width, Kernel kernel, T*... rows) {
    Kpr64s x = 0;
    for (; x + lanes <= width; x += lanes) kernel(All{}, (rows + x)...);
    if (x < width) kernel(First{width - x}, (rows + x)...);
}

// Runs `kernel.operator()<vectors>(part, x)` along one row, `group` vectors at a time as long as they are full, then
// one by one: for kernels whose setting up for a stretch costs more than its vectors.
template <int lanes, int group, typename Kernel>
KPR_INLINE void walkStretches(Kpr64s width, Kernel kernel) {
    constexpr Kpr64s stretch = Kpr64s{group} * lanes;
    Kpr64s x = 0;
    for (; x + stretch <= width; x += stretch) kernel.template operator()<group>(All{}, x);
    for (; x + lanes <= width; x += lanes) kernel.template operator()<1>(All{}, x);
    if (x < width) kernel.template operator()<1>(First{width - x}, x);
}

// As walkRow over every row of a ROI, each image having one element a pixel. Images whose rows follow one another
// without a gap are one long row: the result of a pixel does not depend on its column.
template <int lanes, typename Size, typename Kernel, typename... T>
KPR_INLINE KprStatus walkRoi(Size roi, Kernel kernel, Rows<T>... images) {
    Kpr64s width = roi.width;
    Kpr64s height = roi.height;
    if (((images.step == width * Kpr64s{sizeof(T)}) && ...)) {
        width *= height;
        height = 1;
    }
    for (Kpr64s y = 0; y < height; ++y) walkRow<lanes>(width, kernel, images[y]...);
    return kprStatusOk;
}

}  // namespace n0
