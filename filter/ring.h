// The middle of a separable filter: each row is filtered across once, into a ring of as many rows as the kernel is
// high, and each output row is made from the ring while its rows are still in the cache.
#pragma once

#include "filter/border_rule.h"

namespace n0 {

template <typename T>
struct Ring {
    T* first;
    Kpr64s stride;     // elements from row to row
    const T** window;  // room for a pointer to each row
};

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
    const auto prepare = [&](Kpr64s row, Kpr64s slot) {
        T* const out = ring.first + slot * ring.stride;
        if (rows.isReal(row))
            across(row, out);
        else if (rows.mode == kprBorderConstant && (row == -1 || row == rows.size))
            constant(out);
    };
    for (int i = 0; i < 2 * radius; ++i) prepare(i - radius, i);
    int top = 0;  // the slot of the window's first row
    for (Kpr64s y = 0; y < rows.size; ++y) {
        const int last = top == 0 ? size - 1 : top - 1;
        prepare(y + radius, last);
        for (int i = 0; i < size; ++i) {
            const Kpr64s row = y - radius + i;
            const Kpr64s from = rows(row);
            const Kpr64s slot = top + radius - y + (from != kConstant ? from : row < 0 ? -1 : rows.size);
            ring.window[i] = ring.first + (slot < size ? slot : slot - size) * ring.stride;
        }
        down(ring.window, y);
        top = top + 1 == size ? 0 : top + 1;
    }
}

// A ring row that is the same pixel throughout.
template <int channels, typename T, typename Value>
void fillPixels(T* row, Kpr64s width, const Value* value) {
    for (Kpr64s x = 0; x < width; ++x) {
        for (int c = 0; c < channels; ++c) row[x * channels + c] = static_cast<T>(value[c]);
    }
}

}  // namespace n0
