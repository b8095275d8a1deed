// The row driver: it alone knows how rows are stepped over and how they end.
#pragma once

#include <algorithm>
#include <bit>
#include <cstdint>
#include <utility>

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

    // Rows of `width` elements follow one another without a gap.
    KPR_INLINE bool gapless(Kpr64s width) const { return step == width * Kpr64s{sizeof(T)}; }
};

template <typename T>
Rows(T*, Kpr64s) -> Rows<T>;

// Whether the loop over a row's whole vectors is unrolled. A kernel of a few instructions gains up to a fifth in the
// first cache; a long one gains nothing from its four copies.
enum class Loop { Unrolled, Rolled };

// Runs `kernel(part, x)` along one row of `width` pixels, `lanes` pixels at a time from column x on. Every pixel is
// visited exactly once, so that a kernel may work in place.
template <int lanes, Loop loop = Loop::Unrolled, typename Kernel>
KPR_INLINE void walkColumns(Kpr64s width, Kernel kernel) {
    Kpr64s x = 0;
    if constexpr (loop == Loop::Unrolled) {  // NOLINT(bugprone-branch-clone): the pragma tells them apart
#pragma GCC unroll 4
        for (; x + lanes <= width; x += lanes) kernel(All{}, x);
    } else {
        for (; x + lanes <= width; x += lanes) kernel(All{}, x);
    }
    if (x < width) kernel(First{width - x}, x);
}

// The same with `kernel(part, pointers...)`: each pointer addresses the part's first pixel.
template <int lanes, Loop loop = Loop::Unrolled, typename Kernel, typename... T>
KPR_INLINE void walkRow(Kpr64s width, Kernel kernel, T*... rows) {
    walkColumns<lanes, loop>(width, [=](auto part, Kpr64s x) { kernel(part, (rows + x)...); });
}

// step(Turn<0>{}), step(Turn<1>{}) ...: a loop of which the compiler knows every index from the start.
template <int index>
using Turn = std::integral_constant<int, index>;

template <int turns, typename Step>
KPR_INLINE void takeTurns(Step step) {
    [&]<int... turn>(std::integer_sequence<int, turn...>) __attribute__((always_inline)) { (step(Turn<turn>{}), ...); }
    (std::make_integer_sequence<int, turns>{});
}

// Runs `kernel(part, turn, pointers...)` likewise for a kernel that keeps `turns` accumulators: steps take turns from
// the row's start.
template <int lanes, int turns, typename Kernel, typename... T>
KPR_INLINE void walkRowInTurns(Kpr64s width, Kernel kernel, T*... rows) {
    constexpr Kpr64s step = Kpr64s{turns} * lanes;
    Kpr64s x = 0;
    for (; x + step <= width; x += step) {
        takeTurns<turns>([&](auto turn) { kernel(All{}, turn, (rows + x + turn * lanes)...); });
    }
    takeTurns<turns>([&](auto turn) {
        if (x + lanes <= width) {
            kernel(All{}, turn, (rows + x)...);
        } else if (x < width) {
            kernel(First{width - x}, turn, (rows + x)...);
        }
        x += lanes;
    });
}

// The first x at which `test(part, pointers...)`, a mask of lanes, is set in one row; -1 where there is none.
template <int lanes, typename Test, typename... T>
KPR_INLINE Kpr64s searchRow(Kpr64s width, Test test, T*... rows) {
    Kpr64s x = 0;
    for (; x + lanes <= width; x += lanes) {
        if (const Bits64 hits = test(All{}, (rows + x)...)) return x + std::countr_zero(hits);
    }
    if (x < width) {
        const First part(width - x);
        if (const Bits64 hits = test(part, (rows + x)...) & part.bits) return x + std::countr_zero(hits);
    }
    return -1;
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

// Runs `walk(width, pointers...)` for every row of a ROI, each image having one element a pixel. Images whose rows
// follow one another without a gap are one long row: the result of a pixel does not depend on its column.
template <typename Size, typename Walk, typename... T>
KPR_INLINE KprStatus eachRow(Size roi, Walk walk, Rows<T>... images) {
    Kpr64s width = roi.width;
    Kpr64s height = roi.height;
    if ((true && ... && images.gapless(width))) {
        width *= height;
        height = 1;
    }
    for (Kpr64s y = 0; y < height; ++y) walk(width, images[y]...);
    return kprStatusOk;
}

// walkRow over every row of a ROI.
template <int lanes, typename Size, typename Kernel, typename... T>
KPR_INLINE KprStatus walkRoi(Size roi, Kernel kernel, Rows<T>... images) {
    return eachRow(
        roi, [=](Kpr64s width, T*... rows) { walkRow<lanes>(width, kernel, rows...); }, images...);
}

// How rows are written that are stored at about the speed of memory.
enum class Stores { ThroughCache, PastCache };

// walkRow for a kernel that does little but store `lanes` elements, a whole vector, to its first pointer. What lies
// before the destination's next 64-byte boundary is a part of its own, so that whole vectors fill whole lines: long
// rows that stay in the first cache gain up to twice the speed, and stores past the cache are possible only so.
template <int lanes, Stores stores, typename Kernel, typename Dst, typename... Src>
KPR_INLINE void walkLines(Kpr64s width, Kernel kernel, Dst* dst, Src*... src) {
    constexpr Kpr64s longRow = Kpr64s{16} * lanes;
    using Whole = std::conditional_t<stores == Stores::PastCache, Streamed, All>;
    Kpr64s x = 0;
    if (stores == Stores::PastCache || width >= longRow) {
        x = std::min<Kpr64s>(width, (-reinterpret_cast<std::intptr_t>(dst) & 63) / Kpr64s{sizeof(Dst)});
        if (x != 0) kernel(First{x}, dst, src...);
    }
#pragma GCC unroll 4  // copies gain up to half in the first cache
    for (; x + lanes <= width; x += lanes) kernel(Whole{}, dst + x, (src + x)...);
    if (x < width) kernel(First{width - x}, dst + x, (src + x)...);
}

// Whether every element lies on a multiple of its size, as it does unless a step that nobody checked is odd.
template <typename T>
KPR_INLINE bool aligned(Rows<T> rows) {
    return ((reinterpret_cast<std::intptr_t>(rows.first) | rows.step) & (sizeof(T) - 1)) == 0;
}

// walkLines over every row of a ROI. Only a row whose elements lie on multiples of their size has one that begins a
// line, as the stores past the cache have it: all others go through the cache.
template <int lanes, typename Size, typename Kernel, typename Dst, typename... Src>
KPR_INLINE KprStatus walkRoiLines(Stores stores, Size roi, Kernel kernel, Rows<Dst> dst, Rows<Src>... src) {
    if (stores == Stores::ThroughCache || !aligned(dst)) {
        return eachRow(
            roi,
            [=](Kpr64s width, Dst* d, Src*... s) { walkLines<lanes, Stores::ThroughCache>(width, kernel, d, s...); },
            dst, src...);
    }
    eachRow(
        roi, [=](Kpr64s width, Dst* d, Src*... s) { walkLines<lanes, Stores::PastCache>(width, kernel, d, s...); }, dst,
        src...);
    endStreaming();
    return kprStatusOk;
}

}  // namespace n0
