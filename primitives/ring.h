// The middle of a separable filter: each row is filtered across once, into a ring of as many rows as the kernel is
// high, and each output row is made from the ring while its rows are still in the cache.
#pragma once

#include "primitives/axis.h"

namespace n0 {

template <typename T>
struct Ring {
    T* first;
    Kpr64s stride;     // elements from row to row
    const T** window;  // of a tall kernel: room for a pointer to each row, free to use for others between rows
};

// Kernels of up to half as many rows keep their window on the stack.
inline constexpr int kOwnPointers = 128;

// Which row's slot has a row that the border word makes.
[[gnu::noinline]] inline Kpr64s placeOfMadeRow(Axis rows, Kpr64s row) {
    const Kpr64s from = rows(row);
    return from != kConstant ? from : row < 0 ? -1 : rows.size;
}

// For every row y of the ROI: `across(row, out)` once for each row that exists and is reached, then
// `down(window, y)` with the filtered rows y - radius to y + radius. Rows that do not exist are those that the border
// word names, or of a constant what `constant(out)` writes.
//
// Every row named lies in the window, so that the ring holds it: a reflection comes no farther from y than what it
// reflects, or the ROI is smaller than the radius and lies in the window whole. The rows of a constant share the slot
// of the row next to the ROI.
template <typename T, typename Across, typename Constant, typename Down>
void walkRing(Axis rows, int radius, Ring<T> ring, Across across, Constant constant, Down down) {
    const int size = 2 * radius + 1;
    const auto at = [&](Kpr64s slot) { return ring.first + (slot < size ? slot : slot - size) * ring.stride; };
    // Row i of the window that begins with row `first` in slot `top`.
    const auto find = [&](Kpr64s first, int top, int i) {
        return at(top + (rows.isReal(first + i) ? i : placeOfMadeRow(rows, first + i) - first));
    };
    const auto enter = [&](Kpr64s first, int top, int i) __attribute__((always_inline)) {
        const Kpr64s row = first + i;
        T* const out = find(first, top, i);
        if (rows.isReal(row))
            across(row, out);
        else if (rows.mode == kprBorderConstant && (row == -1 || row == rows.size))
            constant(out);
        return out;
    };
    const T* own[kOwnPointers];  // the window moves on in here by a row at a time, and now and then back to the start
    const bool moves = size <= kOwnPointers / 2;
    int top = 0, begin = 0;
    // First come the rows that the first window has beside its newest. What enters a row stands here once, as its code
    // is long.
    for (Kpr64s y = Kpr64s{-2} * radius; y < rows.size; ++y) {
        const Kpr64s first = std::max(y, Kpr64s{0}) - radius;
        const int place = size - 1 + static_cast<int>(std::min(y, Kpr64s{0}));
        const T* const newest = enter(first, top, place);
        if (moves) own[begin + place] = newest;
        if (y < 0) continue;
        if (moves) {
            down(own + begin, y);
            if (++begin + size > kOwnPointers) {
                for (int i = 0; i < size - 1; ++i) own[i] = own[begin + i];
                begin = 0;
            }
        } else {
            for (int i = 0; i < size; ++i) ring.window[i] = find(first, top, i);
            down(ring.window, y);
        }
        top = top + 1 == size ? 0 : top + 1;
    }
}

// A ring row that is the same pixel throughout: one above an image and one below it, so that a call costs nothing.
template <int channels, typename T, typename Value>
[[gnu::noinline]] void fillPixels(T* row, Kpr64s width, const Value* value) {
    for (Kpr64s x = 0; x < width; ++x) {
        for (int c = 0; c < channels; ++c) row[x * channels + c] = static_cast<T>(value[c]);
    }
}

}  // namespace n0
