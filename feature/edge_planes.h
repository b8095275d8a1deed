// The end of an edge detector: one bit a pixel says which pixels survived the suppression, one which of them are edges.
// Edges grow from the strong survivors over all survivors that touch them, and are written as bytes.
//
// Bits lie in words of 64 pixels, of images up to 8 pixels wide in words of 8, each row followed by an empty word: so
// every word has eight neighbours. A word is the unit of growth. Those whose neighbours have changed wait in a stack
// that is a chain through one link for each word: no word is in it twice, so that it cannot overflow, whatever the
// image.
#pragma once

#include "primitives/rows.h"
#include "primitives/workspace.h"

namespace n0::feature {

inline constexpr Kpr64s kNarrow = 8;  // images up to this width have words of 8 bits

class EdgePlanes {
  public:
    EdgePlanes(Workspace& space, Kpr64s width, Kpr64s height);

    // Where the bits of row y begin; whole bytes of bits may be written, those beyond the row as zeros, the rows in
    // their order.
    [[nodiscard]] Kpr8u* survivors(Kpr64s y) const { return survivors_ + rowAt(y); }
    [[nodiscard]] Kpr8u* strong(Kpr64s y) const { return edges_ + rowAt(y); }

    // 255 at edges, 0 elsewhere.
    void trace(Rows<Kpr8u> dst);

    // An upper bound of the bytes that are taken of a workspace.
    static constexpr Kpr64s bytes(Kpr64s width, Kpr64s height) {
        const Kpr64s word = wordBytes(width), row = wordsOf(width) + 1;
        return 2 * ((height + 2) * row + 1) * word + height * row * linkBytes(width) + 16;
    }

  private:
    static constexpr Kpr64s wordBytes(Kpr64s width) { return width <= kNarrow ? 1 : 8; }
    static constexpr Kpr64s linkBytes(Kpr64s width) { return width <= kNarrow ? 4 : 8; }
    static constexpr Kpr64s wordsOf(Kpr64s width) {
        const Kpr64s bits = 8 * wordBytes(width);
        return (width + bits - 1) / bits;
    }
    [[nodiscard]] Kpr64s rowAt(Kpr64s y) const { return y * rowBytes_; }

    Kpr64s width_, height_, rowBytes_;
    Kpr8u *survivors_, *edges_;  // of row 0
    void* links_;
};

}  // namespace n0::feature
