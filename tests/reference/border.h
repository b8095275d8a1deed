// Which pixel a place beyond an image reads, an axis at a time, for every test of borders. No index walks back and
// forth: a mirrored axis is periodic, so an index is taken modulo the period and folded once.
#pragma once

#include <kprcv.h>

#include <algorithm>
#include <cstdint>
#include <optional>
#include <type_traits>

namespace reference {

enum class Border { Constant, Replicate, Mirror, RepeatEdge };

// Of a mirrored axis of one pixel with memory on one side only: what the other side reads. Linear filters repeat the
// pixel; morphology and the bordered copies reflect about it, into the memory.
enum class LonePixel { Repeats, Reflects };

// The index that index i of n reads as; nothing where it reads as the value. A side whose flag is set is memory.
template <typename Int>
std::optional<Int> borderIndex(Border border, Int i, std::type_identity_t<Int> n, bool lowInMemory = false,
                               bool highInMemory = false, LonePixel lone = LonePixel::Reflects) {
    const bool below = i < 0, above = i >= n;
    if ((!below && !above) || (below && lowInMemory) || (above && highInMemory)) return i;
    if (border == Border::Constant) return std::nullopt;
    if (border == Border::Replicate) return below ? 0 : n - 1;

    // A mirrored axis repeats after there and back; where the edge is repeated, both ends count twice.
    const Int repeated = border == Border::RepeatEdge ? 1 : 0;
    const Int period = 2 * n - 2 + 2 * repeated;
    if (lowInMemory || highInMemory) {
        if (n == 1 && lone == LonePixel::Repeats) return 0;
        // Reflected once, an index from the one side is in the image, or in the memory beyond the other side.
        return below ? -repeated - i : period - repeated - i;
    }
    if (period == 0) return 0;
    const Int phase = (i % period + period) % period;
    return phase < n ? phase : period - repeated - phase;
}

// The same under a border word. A base mode that neither replicates nor mirrors reads the value.
inline Border borderOf(KprBorderType word) {
    const KprBorderType base = word & 15;
    if (base == kprBorderMirror) return Border::Mirror;
    return base == kprBorderReplicate ? Border::Replicate : Border::Constant;
}
template <typename Int>
std::optional<Int> columnIndex(KprBorderType word, Int x, std::type_identity_t<Int> width,
                               LonePixel lone = LonePixel::Reflects) {
    return borderIndex(borderOf(word), x, width, (word & kprBorderInMemLeft) != 0, (word & kprBorderInMemRight) != 0,
                       lone);
}
template <typename Int>
std::optional<Int> rowIndex(KprBorderType word, Int y, std::type_identity_t<Int> height,
                            LonePixel lone = LonePixel::Reflects) {
    return borderIndex(borderOf(word), y, height, (word & kprBorderInMemTop) != 0, (word & kprBorderInMemBottom) != 0,
                       lone);
}

}  // namespace reference
