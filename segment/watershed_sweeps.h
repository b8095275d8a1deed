// Watershed of an 8-bit relief by sweeps down and up the image until nothing changes.
//
// The cost of a path is one word: the highest relief on it, shifted by 23, and below that its length since the last rise.
// From a neighbour n
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

    // The best way to a pixel so far: the cost of a neighbour and the weight of the step from it.
    struct Way {
        Kpr32s sum;
        Direction from;
        KPR_INLINE void orElse(Kpr32s other, Direction direction) {
            if (other < sum) *this = {other, direction};
        }
    };

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

    KPR_INLINE void take(Kpr64s x, Kpr64s y, Kpr32s cost, Direction from) {
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
        for (Kpr64s x = width_ - 2; x >= 0; --x) tryRightFirst(x, 0, {plus(costs_[x + 1], norm_.side), kRight});
    }

    KPR_INLINE void tryRightFirst(Kpr64s x, Kpr64s y, Way way) {
        const Kpr64s i = y * width_ + x;
        if (codes_[i] == kMarked) return;
        const Kpr32s cost = costOf(x, y, way.sum);
        if (cost < costs_[i]) take(x, y, cost, way.from);
    }

    template <Family family>
    void firstVisit(Kpr64s y) {
        beginRow(y);
        for (Kpr64s x = 0; x < width_; ++x) {
            if (codes_[y * width_ + x] == kMarked) continue;
            const Way way = wayRightward<family, -1>(x, y);
            take(x, y, costOf(x, y, way.sum), way.from);
        }
        for (Kpr64s x = width_ - 2; x >= 0; --x) tryRightFirst(x, y, wayLeftward<family, -1>(x, y));
    }

    // Two ways at once, straight and aside: the first-order step of a front that comes aslant.
    KPR_INLINE static Way together(Kpr32s beside, Direction side, Kpr32s straight, Direction vertical) {
        Way way = {beside, side};
        way.orElse(straight, vertical);
        const auto apart = static_cast<Kpr32s>(std::abs(Kpr64s{beside} - straight));
        if (apart <= 63) way.sum = plus(way.sum, -marchGain(apart));
        return way;
    }

    // From the left and from the row `dy` away; the first pixel of a row from that row alone.
    template <Family family, int dy>
    KPR_INLINE Way wayRightward(Kpr64s x, Kpr64s y) const {
        const Kpr32s* const own = costs_ + y * width_ + x;
        const Kpr32s* const row = own + dy * width_;
        constexpr Direction vertical = dy < 0 ? kAbove : kBelow;
        const Kpr32s straight = plus(row[0], norm_.side);
        if (x == 0) return {straight, vertical};
        const Kpr32s left = plus(own[-1], norm_.side);
        if constexpr (family == Family::March) return together(left, kLeft, straight, vertical);
        Way way = {left, kLeft};
        if constexpr (family == Family::Eight)
            way.orElse(plus(row[-1], norm_.corner), dy < 0 ? kUpperLeft : kLowerLeft);
        way.orElse(straight, vertical);
        if (family == Family::Eight && x < width_ - 1)
            way.orElse(plus(row[1], norm_.corner), dy < 0 ? kUpperRight : kLowerRight);
        return way;
    }

    // From the right; with 8 neighbours and marching from the row `dy` away too.
    template <Family family, int dy>
    KPR_INLINE Way wayLeftward(Kpr64s x, Kpr64s y) const {
        const Kpr32s* const own = costs_ + y * width_ + x;
        constexpr Direction vertical = dy < 0 ? kAbove : kBelow;
        const Kpr32s right = plus(own[1], norm_.side);
        Way way = {right, kRight};
        if constexpr (family == Family::Four) return way;
        const Kpr32s straight = plus(own[dy * width_], norm_.side);
        if constexpr (family == Family::March) return together(right, kRight, straight, vertical);
        way.orElse(straight, vertical);
        return way;
    }

    // Visits a row, against the row `dy` away, to the right and back; of a row at rest nothing, and where `checking` only
    // dirty pixels. Tells whether anything changed.
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
                if (codes_[y * width_ + x] != kMarked) changed |= settle<family>(x, y, wayRightward<family, dy>(x, y));
            }
        }
        for (Kpr64s word = words_ - 1; word >= 0; --word) {
            const Bits64 inRow = First{std::min<Kpr64s>(64, width_ - 1 - word * 64)}.bits;
            Bits64 ahead = inRow;
            while (const Bits64 next = (checking ? dirty[word] : ~Bits64{0}) & ahead) {
                const int bit = 63 - std::countl_zero(next);
                const Kpr64s x = word * 64 + bit;
                ahead = inRow & ((Bits64{1} << bit) - 1);
                if (codes_[y * width_ + x] != kMarked) changed |= settle<family>(x, y, wayLeftward<family, dy>(x, y));
            }
        }
        rowFlags_[y] = 0;
        rowFlags_[y - 1] |= changed ? 1 : 0;
        rowFlags_[y + 1] |= changed ? 1 : 0;
        return changed;
    }

    // Takes a better way, or else the label of the neighbour that the present one comes from.
    template <Family family>
    KPR_INLINE bool settle(Kpr64s x, Kpr64s y, Way way) {
        const Kpr64s i = y * width_ + x;
        const Kpr32s cost = costOf(x, y, way.sum);
        Label* const label = labels_[y] + x;
        if (cost < costs_[i]) {
            take(x, y, cost, way.from);
        } else if (const Label parent = label[parents_[codes_[i]]]; parent != *label) {
            *label = parent;
        } else {
            dirty_[y * words_ + x / 64] &= ~(Bits64{1} << x % 64);
            return false;
        }
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
