// Watershed of an 8-bit relief by sweeps down and up the image until nothing changes.
//
// The cost of a path is one word: the highest relief on it, shifted by 23, and below that its length since the last
// rise. From a neighbour n
//
//     cost = max(cost(n) + weight + 1, relief << 23)
//
// A pixel remembers the neighbour from which it took its cost, and follows when that one changes its label. Marching
// fronts go pixel by pixel, other norms by the sixteens of watershed_lanes.h.
#pragma once

#include <bit>
#include <limits>

#include "primitives/rows.h"
#include "primitives/workspace.h"
#include "segment/watershed_lanes.h"
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
        const bool lanes = costsStayBelowFar(roi_);
        if (norm_.family == Family::Four) lanes ? sweep<Family::Four, true>() : sweep<Family::Four, false>();
        if (norm_.family == Family::Eight) lanes ? sweep<Family::Eight, true>() : sweep<Family::Eight, false>();
        if (norm_.family == Family::March) sweep<Family::March, false>();
    }

    void drawWalls(bool diagonals) const {
        wallsBetween(labels_, roi_, std::numeric_limits<Label>::max(), diagonals,
                     [costs = costs_](Kpr64s a, Kpr64s b) { return costs[a] > costs[b]; });
    }

  private:
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

    // The pass down that begins, the pass up that visits all pixels, those that visit dirty ones.
    enum class Pass { First, All, Dirty };

    template <Family family, bool lanes>
    void sweep() {
        beginRow(0, kUnreached);
        firstRow();
        if (height_ == 1) return;
        for (Kpr64s y = 1; y < height_; ++y) firstVisit<family, lanes>(y);
        for (Kpr64s y = height_ - 2; y >= 0; --y) visit<family, 1, Pass::All, lanes>(y);
        bool changed = true;
        while (changed) {
            for (Kpr64s y = 1; y < height_; ++y) visit<family, -1, Pass::Dirty, lanes>(y);
            changed = false;
            for (Kpr64s y = height_ - 2; y >= 0; --y) changed |= visit<family, 1, Pass::Dirty, lanes>(y);
        }
    }

    KPR_INLINE static Kpr32s plus(Kpr32s cost, Kpr32s weight) {
        return static_cast<Kpr32s>(static_cast<unsigned>(cost) + static_cast<unsigned>(weight));
    }
    KPR_INLINE Kpr32s costOf(Kpr64s x, Kpr64s y, Kpr32s sum) const {
        return std::max(plus(sum, 1), Kpr32s{src_[y][x]} << 23);
    }

    void beginRow(Kpr64s y, Kpr32s unreached) {
        walkRow<kLanes<Kpr32s>>(
            width_,
            [=](auto part, const Kpr8u* src, const Label* label, Kpr32s* cost, Kpr8u* code) {
                const auto unmarked = equal(loadAs<Kpr32s>(label, part), zero<Kpr32s>());
                store(cost, select<Kpr32s>(unmarked, broadcast(unreached), loadAs<Kpr32s>(src, part) << 23), part);
                storeAs(code, select<Kpr32s>(unmarked, broadcast(Kpr32s{kNowhere}), broadcast(Kpr32s{kMarked})), part);
            },
            src_[y], static_cast<const Label*>(labels_[y]), costs_ + y * width_, codes_ + y * width_);
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

    template <Family family, bool lanes>
    void firstVisit(Kpr64s y) {
        if constexpr (lanes) {
            beginRow(y, std::numeric_limits<Kpr32s>::max());
            walkLanes<family, -1, true, Pass::First>(y);
            walkLanes<family, -1, false, Pass::First>(y);
            return;
        }
        beginRow(y, kUnreached);
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

    // Visits a row, against the row `dy` away, to the right and back: all of it, or of a row at rest nothing and else its
    // dirty pixels. Tells whether anything changed.
    template <Family family, int dy, Pass pass, bool lanes>
    bool visit(Kpr64s y) {
        if (pass == Pass::Dirty && rowFlags_[y] == 0) return false;
        bool changed = false;
        if constexpr (lanes) {
            changed |= walkLanes<family, dy, true, pass>(y);
            changed |= walkLanes<family, dy, false, pass>(y);
        } else {
            changed |= walk<family, dy, true, pass>(y);
            changed |= walk<family, dy, false, pass>(y);
        }
        rowFlags_[y] = 0;
        rowFlags_[y - 1] |= changed ? 1 : 0;
        rowFlags_[y + 1] |= changed ? 1 : 0;
        return changed;
    }

    template <Family family, int dy, bool rightward, Pass pass>
    bool walk(Kpr64s y) {
        bool changed = false;
        Bits64* const dirty = dirty_ + y * words_;
        for (Kpr64s i = 0; i < words_; ++i) {
            const Kpr64s word = rightward ? i : words_ - 1 - i;
            // The last one has nothing on its right.
            const Bits64 turn = lowBits(std::min<Kpr64s>(64, (rightward ? width_ : width_ - 1) - word * 64));
            Bits64 ahead = turn;
            while (const Bits64 next = (pass == Pass::Dirty ? dirty[word] : ~Bits64{0}) & ahead) {
                const int bit = rightward ? std::countr_zero(next) : 63 - std::countl_zero(next);
                const Kpr64s x = word * 64 + bit;
                ahead = turn & (rightward ? ~Bits64{1} << bit : (Bits64{1} << bit) - 1);
                if (codes_[y * width_ + x] == kMarked) continue;
                if constexpr (rightward)
                    changed |= settle<family, dy, true>(x, y, wayRightward<family, dy>(x, y));
                else
                    changed |= settle<family, dy, false>(x, y, wayLeftward<family, dy>(x, y));
            }
        }
        return changed;
    }

    template <Family family, int dy, bool rightward, Pass pass>
    bool walkLanes(Kpr64s y) {
        const LaneVisits<family, dy, rightward, pass == Pass::First> visits(norm_, parents_);
        const SweptRow<Label> row{src_[y], labels_[y], costs_ + y * width_, codes_ + y * width_, width_};
        bool any = false;
        for (Kpr64s i = 0; i < words_; ++i) {
            const Kpr64s word = rightward ? i : words_ - 1 - i;
            const Bits64 inRow = lowBits(std::min<Kpr64s>(64, width_ - word * 64));
            Bits64 due = pass == Pass::Dirty ? dirty_[y * words_ + word] & inRow : inRow, changed = 0;
            if (due == 0) continue;
            for (int group = 0; group < 4; ++group) {
                const int first = 16 * (rightward ? group : 3 - group);
                if ((due >> first & 0xffff) == 0) continue;
                const Bits64 found = visits.visit(row, word * 64 + first) << first;
                changed |= found;
                due |= (rightward ? found << 1 : found >> 1) & inRow;
            }
            if constexpr (pass != Pass::First) markAround<family, rightward>(y, word, changed);
            any |= changed != 0;
        }
        return any;
    }

    // Around those of a word that have changed, all others being clean: in their own row those ahead have been visited
    // since, or are in the next word.
    template <Family family, bool rightward>
    KPR_INLINE void markAround(Kpr64s y, Kpr64s word, Bits64 changed) {
        Bits64* const own = dirty_ + y * words_ + word;
        *own = rightward ? changed >> 1 : changed << 1;
        if (changed == 0) return;
        const Bits64 before = word > 0 ? changed << 63 : 0, behind = word + 1 < words_ ? changed >> 63 : 0;
        const auto markBeside = [&](Bits64 * dirty) __attribute__((always_inline)) {
            if (before != 0) dirty[-1] |= before;
            if (behind != 0) dirty[1] |= behind;
        };
        markBeside(own);
        for (Bits64* const other : {own - words_, own + words_}) {
            *other |= family == Family::Eight ? changed | changed << 1 | changed >> 1 : changed;
            if (family == Family::Eight) markBeside(other);
        }
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
