// Watershed of an 8-bit relief by sweeps down and up the image until nothing changes.
//
// The cost of a path is one word: the highest relief on it, shifted by 23, and below that its length since the last
// rise. From a neighbour n
//
//     cost = max(cost(n) + weight + 1, relief << 23)
//
// A pixel remembers the neighbour from which it took its cost, and follows when that one changes its label.
#pragma once

#include <bit>
#include <limits>

#include "primitives/rows.h"
#include "primitives/workspace.h"
#include "segment/watershed_norms.h"
#include "segment/watershed_walls.h"

namespace n0::segment {

template <typename Label>
class SweptWatershed {
  public:
    SweptWatershed(Rows<const Kpr8u> src, Rows<Label> marker, KprSize roi, Norm norm, Workspace space)
        : src_(src),
          labels_(marker),
          roi_(roi),
          width_(roi.width),
          height_(roi.height),
          words_((width_ + 63) / 64),
          norm_(norm),
          parents_(marker.step / Kpr64s{sizeof(Label)}) {
        dirty_ = space.take<Bits64>(words_ * (height_ + 2));
        costs_ = space.take<Kpr32s>(width_ * height_);
        codes_ = space.take<Kpr8u>(width_ * height_);
        rowFlags_ = space.take<Kpr8u>(height_ + 2) + 1;
        std::fill(dirty_, dirty_ + words_ * (height_ + 2), Bits64{0});
        std::fill(rowFlags_ - 1, rowFlags_ + height_ + 1, Kpr8u{1});
        dirty_ += words_;
    }

    void run() {
        if (norm_.family == Family::Four) sweep<Family::Four>();
        if (norm_.family == Family::Eight) sweep<Family::Eight>();
        if (norm_.family == Family::March) sweep<Family::March>();
    }

    void drawWalls(bool diagonals) const {
        wallsBetween(labels_, roi_, std::numeric_limits<Label>::max(), diagonals,
                     [costs = costs_](Kpr64s a, Kpr64s b) { return costs[a] > costs[b]; });
    }

  private:
    static constexpr Kpr32s kUnreached = 0x7fc00000;

    // A way to a pixel: the cost of a neighbour with the weight of the step from it, and below that its turn, in one
    // word, so that the smaller word is the better way. Beside comes first, then the first corner, above or below, the
    // other corner.
    enum Turn { kBeside, kCorner, kVertical, kOtherCorner };
    struct Way {
        Kpr64s word;
        KPR_INLINE Way(Kpr32s sum, Turn turn) : word(Kpr64s{sum} * 4 + turn) {}
        KPR_INLINE void orElse(Way other) { word = std::min(word, other.word); }
        [[nodiscard]] KPR_INLINE Kpr32s sum() const { return static_cast<Kpr32s>(word >> 2); }
        [[nodiscard]] KPR_INLINE int turn() const { return static_cast<int>(word & 3); }
    };

    // The way's direction. Codes run around the pixel, from the left one the turns are next to one another.
    template <int dy, bool rightward>
    KPR_INLINE static Kpr8u directionOf(Way way) {
        static_assert(kLeft - kAbove == kVertical);
        static_assert(kBelow - kLeft == kVertical);
        if constexpr (rightward) return static_cast<Kpr8u>(kLeft + dy * way.turn());
        return way.turn() == kBeside ? kRight : dy < 0 ? kAbove : kBelow;
    }

    template <Family family>
    void sweep() {
        beginRow(0);
        firstRow();
        if (height_ == 1) return;
        for (Kpr64s y = 1; y < height_; ++y) firstVisit<family>(y);
        for (Kpr64s y = height_ - 2; y >= 0; --y) visit<family, 1, false>(y);
        bool changed = true;
        while (changed) {
            for (Kpr64s y = 1; y < height_; ++y) visit<family, -1, true>(y);
            changed = false;
            for (Kpr64s y = height_ - 2; y >= 0; --y) changed |= visit<family, 1, true>(y);
        }
    }

    KPR_INLINE static Kpr32s plus(Kpr32s cost, Kpr32s weight) {
        return static_cast<Kpr32s>(static_cast<unsigned>(cost) + static_cast<unsigned>(weight));
    }
    KPR_INLINE Kpr32s costOf(Kpr64s x, Kpr64s y, Kpr32s sum) const {
        return std::max(plus(sum, 1), Kpr32s{src_[y][x]} << 23);
    }

    void beginRow(Kpr64s y) {
        for (Kpr64s x = 0; x < width_; ++x) {
            const bool marked = labels_[y][x] != 0;
            costs_[y * width_ + x] = marked ? Kpr32s{src_[y][x]} << 23 : kUnreached;
            codes_[y * width_ + x] = marked ? kMarked : kNowhere;
        }
    }

    KPR_INLINE void take(Kpr64s x, Kpr64s y, Kpr32s cost, Kpr8u from) {
        const Kpr64s i = y * width_ + x;
        costs_[i] = cost;
        codes_[i] = from;
        Label* const label = labels_[y] + x;
        *label = label[parents_[from]];
    }

    void firstRow() {
        for (Kpr64s x = 1; x < width_; ++x) {
            if (codes_[x] != kMarked) take(x, 0, costOf(x, 0, plus(costs_[x - 1], norm_.side)), kLeft);
        }
        for (Kpr64s x = width_ - 2; x >= 0; --x) tryRightFirst<-1>(x, 0, {plus(costs_[x + 1], norm_.side), kBeside});
    }

    template <int dy>
    KPR_INLINE void tryRightFirst(Kpr64s x, Kpr64s y, Way way) {
        const Kpr64s i = y * width_ + x;
        if (codes_[i] == kMarked) return;
        const Kpr32s cost = costOf(x, y, way.sum());
        if (cost < costs_[i]) take(x, y, cost, directionOf<dy, false>(way));
    }

    template <Family family>
    void firstVisit(Kpr64s y) {
        beginRow(y);
        for (Kpr64s x = 0; x < width_; ++x) {
            if (codes_[y * width_ + x] == kMarked) continue;
            const Way way = wayRightward<family, -1>(x, y);
            take(x, y, costOf(x, y, way.sum()), directionOf<-1, true>(way));
        }
        for (Kpr64s x = width_ - 2; x >= 0; --x) tryRightFirst<-1>(x, y, wayLeftward<family, -1>(x, y));
    }

    // Two ways at once, straight and aside: the first-order step of a front that comes aslant.
    KPR_INLINE static Way together(Kpr32s beside, Kpr32s straight) {
        Way way(beside, kBeside);
        way.orElse({straight, kVertical});
        const Kpr64s apart = std::abs(Kpr64s{beside} - straight);
        if (apart <= 63) way.word -= Kpr64s{4} * marchGain(apart);
        return way;
    }

    // From the left and from the row `dy` away; the first pixel of a row from that row alone.
    template <Family family, int dy>
    KPR_INLINE Way wayRightward(Kpr64s x, Kpr64s y) const {
        const Kpr32s* const own = costs_ + y * width_ + x;
        const Kpr32s* const row = own + dy * width_;
        const Kpr32s straight = plus(row[0], norm_.side);
        if (x == 0) return {straight, kVertical};
        const Kpr32s left = plus(own[-1], norm_.side);
        if constexpr (family == Family::March) return together(left, straight);
        Way way(left, kBeside);
        if constexpr (family == Family::Eight) way.orElse({plus(row[-1], norm_.corner), kCorner});
        way.orElse({straight, kVertical});
        if (family == Family::Eight && x < width_ - 1) way.orElse({plus(row[1], norm_.corner), kOtherCorner});
        return way;
    }

    // From the right; with 8 neighbours and marching from the row `dy` away too.
    template <Family family, int dy>
    KPR_INLINE Way wayLeftward(Kpr64s x, Kpr64s y) const {
        const Kpr32s* const own = costs_ + y * width_ + x;
        const Kpr32s right = plus(own[1], norm_.side);
        Way way(right, kBeside);
        if constexpr (family == Family::Four) return way;
        const Kpr32s straight = plus(own[dy * width_], norm_.side);
        if constexpr (family == Family::March) return together(right, straight);
        way.orElse({straight, kVertical});
        return way;
    }

    // Visits a row, against the row `dy` away, to the right and back; of a row at rest nothing, and where `checking`
    // only dirty pixels. Tells whether anything changed.
    template <Family family, int dy, bool checking>
    bool visit(Kpr64s y) {
        if (checking && rowFlags_[y] == 0) return false;
        bool changed = false;
        Bits64* const dirty = dirty_ + y * words_;
        for (Kpr64s word = 0; word < words_; ++word) {
            const Bits64 inRow = First{std::min<Kpr64s>(64, width_ - word * 64)}.bits;
            Bits64 ahead = inRow;
            while (const Bits64 next = (checking ? dirty[word] : ~Bits64{0}) & ahead) {
                const Kpr64s x = word * 64 + std::countr_zero(next);
                ahead = inRow & ~(next ^ (next - 1));
                if (codes_[y * width_ + x] != kMarked)
                    changed |= settle<family, dy, true>(x, y, wayRightward<family, dy>(x, y));
            }
        }
        for (Kpr64s word = words_ - 1; word >= 0; --word) {
            const Bits64 inRow = First{std::min<Kpr64s>(64, width_ - 1 - word * 64)}.bits;
            Bits64 ahead = inRow;
            while (const Bits64 next = (checking ? dirty[word] : ~Bits64{0}) & ahead) {
                const int bit = 63 - std::countl_zero(next);
                const Kpr64s x = word * 64 + bit;
                ahead = inRow & ((Bits64{1} << bit) - 1);
                if (codes_[y * width_ + x] != kMarked)
                    changed |= settle<family, dy, false>(x, y, wayLeftward<family, dy>(x, y));
            }
        }
        rowFlags_[y] = 0;
        rowFlags_[y - 1] |= changed ? 1 : 0;
        rowFlags_[y + 1] |= changed ? 1 : 0;
        return changed;
    }

    // Takes a better way, or else the label of the neighbour that the present one comes from.
    template <Family family, int dy, bool rightward>
    KPR_INLINE bool settle(Kpr64s x, Kpr64s y, Way way) {
        const Kpr64s i = y * width_ + x;
        const Kpr32s cost = costOf(x, y, way.sum()), present = costs_[i];
        const bool better = cost < present;
        const Kpr8u code = better ? directionOf<dy, rightward>(way) : codes_[i];
        Label* const own = labels_[y] + x;
        const Label label = own[parents_[code]];
        if (!better & (label == *own)) {
            dirty_[y * words_ + x / 64] &= ~(Bits64{1} << x % 64);
            return false;
        }
        costs_[i] = better ? cost : present;
        codes_[i] = code;
        *own = label;
        markAround<family>(x, y);
        return true;
    }

    template <Family family>
    KPR_INLINE void markAround(Kpr64s x, Kpr64s y) {
        constexpr Bits64 beside = 5, straight = family == Family::Eight ? 7 : 2;
        mark(x, y, beside);
        mark(x, y - 1, straight);
        mark(x, y + 1, straight);
        dirty_[y * words_ + x / 64] &= ~(Bits64{1} << x % 64);
    }

    // The pixels x - 1, x and x + 1 that have a bit and lie in the row.
    KPR_INLINE void mark(Kpr64s x, Kpr64s y, Bits64 which) {
        Bits64* const dirty = dirty_ + y * words_ + x / 64;
        const int bit = static_cast<int>(x % 64);
        *dirty |= bit > 0 ? which << (bit - 1) : which >> 1;
        if (bit == 0 && x > 0) dirty[-1] |= which << 63;
        if (bit == 63 && x + 1 < width_) dirty[1] |= which >> 2;
    }

    Rows<const Kpr8u> src_;
    Rows<Label> labels_;
    KprSize roi_;
    Kpr64s width_, height_, words_;
    Norm norm_;
    ParentOffsets parents_;
    Bits64* dirty_;  // a bit a pixel, and a row of them above and below
    Kpr32s* costs_;
    Kpr8u* codes_;
    Kpr8u* rowFlags_;
};

}  // namespace n0::segment
