// The middle of an edge detector: rows of magnitudes with the codes of their directions come in, bits of those pixels
// go out that are larger than their two neighbours along the gradient.
//
// A pixel of magnitude 0 never survives. The two neighbours, `behind` being the one that comes earlier in raster order:
//
//     code       gradient                  behind         ahead
//     level      mostly across             (x-1, y)       (x+1, y)      may equal the pixel
//     upright    mostly down               (x, y-1)       (x, y+1)      may equal the pixel
//     unlike     slanted, signs differ     (x+1, y-1)     (x-1, y+1)
//     none       slanted, signs agree      (x-1, y-1)     (x+1, y+1)
//
// Beyond the image magnitudes are 0. The tie keeps one pixel of a flat ridge across the gradient.
#pragma once

#include <limits>

#include "feature/edge_planes.h"
#include "primitives/simd_edges.h"

namespace n0::feature {

// Of rows up to this length all that is kept for some rows lies on the stack: a buffer for a narrow image is too small
// for whole vectors. Longer ones find room in any buffer.
inline constexpr Kpr64s kOwnColumns = 1024;

// Magnitudes are Kpr16u or Kpr32s; those of type float are taken by their bits, which order numbers from 0 on.
template <typename Magnitude>
struct EdgeRow {
    Magnitude* magnitudes;            // 0 where the low threshold has cut
    Kpr8u *level, *upright, *unlike;  // a bit a pixel; of a magnitude of 0 any
};

// The bits of `lanes` pixels from column x on, in a row of bits.
template <int lanes, typename Bits>
KPR_INLINE void putBits(Kpr8u* row, Kpr64s x, Bits pixels) {
    const auto low =
        static_cast<std::conditional_t<lanes == 64, Bits64, std::conditional_t<lanes == 32, unsigned, Kpr16u>>>(pixels);
    __builtin_memcpy(row + x / 8, &low, lanes / 8);
}
template <int lanes>
KPR_INLINE auto getBits(const Kpr8u* row, Kpr64s x) {
    std::conditional_t<lanes == 32, unsigned, Kpr16u> pixels;
    __builtin_memcpy(&pixels, row + x / 8, lanes / 8);
    return pixels;
}

template <typename Magnitude>
class EdgeRows {
  public:
    // Magnitudes above `high` are strong.
    EdgeRows(Workspace& space, EdgePlanes& planes, Kpr64s width, Magnitude high)
        : planes_(&planes), width_(width), high_(high), stride_(strideOf(width)) {
        magnitudes_ = space.take<Magnitude>(held(width), 64);
        codes_ = space.take<Kpr8u>(6 * bitBytes(width));
        fillZeros(magnitudes_, held(width));
        magnitudes_ += kBefore;
    }

    // The next row, to be filled.
    [[nodiscard]] EdgeRow<Magnitude> next() const {
        Kpr8u* const codes = codes_ + y_ % 2 * 3 * bitBytes(width_);
        return {slot(y_), codes, codes + bitBytes(width_), codes + 2 * bitBytes(width_)};
    }
    // It has been filled: the row above it has both its neighbours.
    void filled() {
        if (++y_ > 1) suppress(y_ - 2);
    }
    void end() {
        fillZeros(slot(y_), stride_ - kBefore);
        suppress(y_ - 1);
    }

    // An upper bound of the bytes that are taken of a workspace.
    static constexpr Kpr64s bytes(Kpr64s width) {
        return held(width) * Kpr64s{sizeof(Magnitude)} + 6 * bitBytes(width) + 63;
    }

  private:
    static constexpr Kpr64s kStep = kLanes<Magnitude>, kBefore = kStep;

    // Rows are made 32 pixels at a time; there is at least one zero before and one after them.
    static constexpr Kpr64s strideOf(Kpr64s width) { return kBefore + (width / 32 + 1) * 32; }
    static constexpr Kpr64s bitBytes(Kpr64s width) { return (width + 31) / 32 * 4; }
    // What lies to the right of a row's last vector may be looked at.
    static constexpr Kpr64s held(Kpr64s width) { return 3 * strideOf(width) + kStep; }

    static void fillZeros(Magnitude* row, Kpr64s count) {
        walkRow<kStep>(
            count, [](auto part, Magnitude* m) { store(m, zero<Magnitude>(), part); }, row);
    }

    [[nodiscard]] Magnitude* slot(Kpr64s y) const { return magnitudes_ + y % 3 * stride_; }

    [[gnu::noinline]] void suppress(Kpr64s y) const {
        const Magnitude *const above = slot(y + 2), *const here = slot(y), *const below = slot(y + 1);
        const Kpr8u* const codes = codes_ + y % 2 * 3 * bitBytes(width_);
        Kpr8u *const survivors = planes_->survivors(y), *const strong = planes_->strong(y);
        const Vec<Magnitude> high = broadcast(high_);
        for (Kpr64s x = 0; x < width_; x += kStep) {  // rows are zero beyond the width
            const auto vector = [=](const Magnitude* row, Kpr64s dx) { return load(row + x + dx, All{}); };
            const auto where = [=](Mask<Magnitude> lanes, const Magnitude* row, Kpr64s dx, Vec<Magnitude> others) {
                return load(row + x + dx, Lanes{lanes}, others);
            };
            const Vec<Magnitude> m = vector(here, 0);
            if (nonzero(m) == 0) continue;  // the planes are clear
            const Mask<Magnitude> level = getBits<kStep>(codes, x);
            const Mask<Magnitude> upright = getBits<kStep>(codes + bitBytes(width_), x);
            const Mask<Magnitude> unlike = getBits<kStep>(codes + 2 * bitBytes(width_), x);
            Vec<Magnitude> behind = where(unlike, above, 1, vector(above, -1));
            Vec<Magnitude> ahead = where(unlike, below, -1, vector(below, 1));
            behind = where(level, here, -1, where(upright, above, 0, behind));
            ahead = where(level, here, 1, where(upright, below, 0, ahead));
            // m may equal what is ahead: it is larger than one less.
            const Vec<Magnitude> bar = max(behind, oneLessWhere(static_cast<Mask<Magnitude>>(level | upright), ahead));
            const Mask<Magnitude> stays = less(bar, m);
            putBits<kStep>(survivors, x, stays);
            putBits<kStep>(strong, x, stays & less(high, m));
        }
    }

    EdgePlanes* planes_;
    Kpr64s width_;
    Magnitude high_;
    Kpr64s stride_;
    Magnitude* magnitudes_;  // three rows, at column 0
    Kpr8u* codes_;           // three rows of bits for each of two rows of pixels
    Kpr64s y_ = 0;           // the next row
};

}  // namespace n0::feature
