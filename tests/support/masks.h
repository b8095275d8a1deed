// Masks of the kinds that decide what a kernel does: nothing at all, a single pixel, one block that leaves most of a
// row out, a few pixels here and there, most of them, all.
#pragma once

#include "tests/support/guarded_image.h"

namespace test {

enum class MaskKind { Empty, OnePixel, OneBlock, Sparse, Dense, Full };

inline constexpr MaskKind kMaskKinds[] = {MaskKind::Empty,  MaskKind::OnePixel, MaskKind::OneBlock,
                                          MaskKind::Sparse, MaskKind::Dense,    MaskKind::Full};

inline MaskKind anyMaskKind(Random& random) { return kMaskKinds[random.range(0, 5)]; }

// Selected pixels hold any value but 0. A block is 64 columns wide, where the mask is, and begins at a multiple of 64
// one time in two.
inline void fillMask(GuardedImage<Kpr8u>& mask, MaskKind kind, Random& random) {
    const KprSize size = mask.size();
    const KprPoint one = {random.range(0, size.width - 1), random.range(0, size.height - 1)};
    const int left = random.oneIn(2) ? one.x : one.x / 64 * 64;
    const int bottom = random.range(one.y, size.height - 1);
    for (int y = 0; y < size.height; ++y) {
        for (int x = 0; x < size.width; ++x) {
            const bool selected = kind == MaskKind::OnePixel   ? x == one.x && y == one.y
                                  : kind == MaskKind::OneBlock ? x >= left && x < left + 64 && y >= one.y && y <= bottom
                                  : kind == MaskKind::Sparse   ? random.oneIn(30)
                                  : kind == MaskKind::Dense    ? !random.oneIn(3)
                                                               : kind == MaskKind::Full;
            mask.at(x, y) = static_cast<Kpr8u>(selected ? random.range(1, 255) : 0);
        }
    }
}

}  // namespace test
