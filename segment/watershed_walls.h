// Walls between the segments of a watershed, in raster order: of two neighbours of different labels, neither of them a
// wall, the one that the flood reached later becomes a wall, of equals the right or lower one.
#pragma once

#include <bit>

#include "primitives/rows.h"

namespace n0::segment {

// `later(a, b)`: whether pixel a was reached after pixel b; pixels are numbered row by row. Where neighbours are alike
// nothing is drawn, whatever has become a wall around them.
template <typename Label, typename Later>
void wallsBetween(Rows<Label> labels, KprSize roi, Label wall, bool diagonals, Later later) {
    const Kpr64s width = roi.width;
    for (Kpr64s y = 0; y < roi.height; ++y) {
        Label* const row = labels[y];
        Label* const above = y > 0 ? labels[y - 1] : nullptr;
        const auto meet = [&](Kpr64s x, Label* others, Kpr64s otherX) {
            if (others == nullptr || otherX < 0 || otherX >= width) return;
            Label &own = row[x], &other = others[otherX];
            if (own == wall || other == wall || own == other) return;
            const Kpr64s otherY = others == row ? y : y - 1;
            (later(otherY * width + otherX, y * width + x) ? other : own) = wall;
        };
        for (Kpr64s x = 0; x < width; x += kLanes<Label>) {
            const Bits64 part = First{std::min<Kpr64s>(width - x, kLanes<Label>)}.bits;
            const Bits64 behindFirst = x > 0 ? part : part & ~Bits64{1};
            const auto own = load(row + x, Lanes{part});
            Bits64 unlike = 0;
            const auto compare = [&](const Label* others, Bits64 lanes) {
                unlike |= ~Bits64{equal(own, load(others, Lanes{lanes}))} & lanes;
            };
            compare(row + x - 1, behindFirst);
            if (above != nullptr) {
                compare(above + x, part);
                if (diagonals) {
                    compare(above + x - 1, behindFirst);
                    compare(above + x + 1, First{std::min<Kpr64s>(width - 1 - x, kLanes<Label>)}.bits);
                }
            }
            for (; unlike != 0; unlike &= unlike - 1) {
                const Kpr64s at = x + std::countr_zero(unlike);
                meet(at, row, at - 1);
                meet(at, above, at);
                if (!diagonals) continue;
                meet(at, above, at - 1);
                meet(at, above, at + 1);
            }
        }
    }
}

}  // namespace n0::segment
