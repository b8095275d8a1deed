// Walls between the segments of a watershed, in raster order: of two neighbours of different labels, neither of them a
// wall, the one that the flood reached later becomes a wall, of equals the right or lower one.
#pragma once

#include "primitives/rows.h"

namespace n0::segment {

// `later(a, b)`: whether pixel a was reached after pixel b; pixels are numbered row by row.
template <typename Label, typename Later>
void wallsBetween(Rows<Label> labels, KprSize roi, Label wall, bool diagonals, Later later) {
    const Kpr64s width = roi.width;
    for (Kpr64s y = 0; y < roi.height; ++y) {
        for (Kpr64s x = 0; x < width; ++x) {
            Label& own = labels[y][x];
            const auto meet = [&](Kpr64s dx, Kpr64s dy) {
                if (x + dx < 0 || x + dx >= width || y + dy < 0) return;
                Label& other = labels[y + dy][x + dx];
                if (own == wall || other == wall || own == other) return;
                const Kpr64s pixel = y * width + x;
                (later(pixel + dy * width + dx, pixel) ? other : own) = wall;
            };
            meet(-1, 0);
            meet(0, -1);
            if (!diagonals) continue;
            meet(-1, -1);
            meet(1, -1);
        }
    }
}

}  // namespace n0::segment
