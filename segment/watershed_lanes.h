// Sixteen pixels of a row visited at once, as sweeps visit them one after another.
//
// A visit makes the pixel's cost from the cost c of the pixel before it in the row:
//
//     cost(c) = max(min(c + step, most), least)
//
// `most` is the lesser of what the pixel costs now and of what it would by the best way from the row above or below,
// `least` is its relief. A chain of such functions is one again, so that sixteen are joined in four steps.
//
// Clean pixels among the sixteen are visited as well, which changes none of them: what changes marks its neighbours, and
// each of them is visited, in a walk that looks there, before its mark goes. The first pass down marks nothing, but all
// that it leaves to do is looked at by the pass up: in the last row, which that does not visit, a pixel changes on the
// way back only from its right, and so has nothing better for that one.
#pragma once

#include <limits>

#include "primitives/rows.h"
#include "primitives/simd_segment.h"
#include "segment/watershed_norms.h"

namespace n0::segment {

// The first pixel's cost where no marker reaches it. Each column and row adds a step to that, of the norms seen here less
// than 16; where an image is not so large that this goes beyond kFar, sixteen more steps are added to no larger number
// than that one.
inline constexpr Kpr32s kUnreached = 0x7fc00000, kFar = 0x7fffff0f;
constexpr bool costsStayBelowFar(KprSize roi) { return Kpr64s{roi.width} + roi.height < (kFar - kUnreached) / 16; }

// Where the pixels of a row have what is known of them.
template <typename Label>
struct SweptRow {
    const Kpr8u* src;
    Label* labels;
    Kpr32s* costs;
    Kpr8u* codes;
    Kpr64s width;
};

// Visits in a row against the row `dy` away. In the `first` pass down no pixel has a way yet that leads elsewhere.
template <Family family, int dy, bool rightward, bool first>
class LaneVisits {
    using Cost = Vec<Kpr32s>;

  public:
    LaneVisits(Norm norm, const ParentOffsets& parents)
        : side_(broadcast(norm.side)),
          corner_(broadcast(norm.corner)),
          step_(broadcast(norm.side + 1)),
          steps_(laneConstant<Kpr32s>([](int i) { return rightward ? i + 1 : 16 - i; }) * step_),
          parents_(parents) {}

    // Visits the sixteen pixels from column x on, or as many as there are. Gives those that have changed.
    template <typename Label>
    KPR_INLINE Bits64 visit(const SweptRow<Label>& row, Kpr64s x) const {
        const Outcome outcome = evaluate(row, x);
        if (outcome.changed != 0) {
            if (x + 16 <= row.width)
                put(row, x, outcome, All{});
            else
                put(row, x, outcome, First{row.width - x});
        }
        return outcome.changed;
    }

  private:
    static constexpr int kBeside = rightward ? kLeft : kRight;
    static constexpr int kStraight = dy < 0 ? kAbove : kBelow;
    static constexpr int kCorner = dy < 0 ? kUpperLeft : kLowerLeft, kOtherCorner = dy < 0 ? kUpperRight : kLowerRight;

    // Whether lanes may have a way from there to follow, but for the one that runs along the row.
    static constexpr bool leads(int direction) {
        if (direction == kMarked || direction == kBeside) return false;
        constexpr bool corners = family == Family::Eight;
        if (!first) return corners || direction % 2 == 1;
        return direction == kStraight ? corners || rightward
                                      : corners && rightward && (direction == kCorner || direction == kOtherCorner);
    }

    struct Outcome {
        Cost costs, codes, labels;
        Bits64 changed;
    };

    // The lanes `count` before.
    template <int count>
    KPR_INLINE static Cost earlier(Cost v, Cost beyond) {
        if constexpr (rightward) return ahead<64 - 4 * count>(beyond, v);
        return ahead<4 * count>(v, beyond);
    }

    struct Best {
        Cost sums, codes;
    };

    // The best ways from the other row.
    KPR_INLINE Best fromOtherRow(const Kpr32s* other, Kpr64s x, Kpr64s width, Lanes part) const {
        const auto far = broadcast(kFar);
        if constexpr (family == Family::Four && !rightward) return {far, far};
        const Cost straight = load(other, part, far) + side_;
        Best best = {straight, broadcast(Kpr32s{kStraight})};
        if constexpr (family == Family::Eight && rightward) {
            const Bits64 begin = x == 0 ? 1 : 0;  // whose way is straight
            const Bits64 beforeLast = lowBits(std::min<Kpr64s>(width - 1 - x, 16));
            const Cost corner = load(other - 1, Lanes{part.bits & ~begin}, far) + corner_;
            const Cost otherCorner = load(other + 1, Lanes{beforeLast & ~begin}, far) + corner_;
            best.codes = select<Kpr32s>(less(straight, corner), best.codes, broadcast(Kpr32s{kCorner}));
            best.sums = min(corner, straight);
            best.codes = select<Kpr32s>(less(otherCorner, best.sums), broadcast(Kpr32s{kOtherCorner}), best.codes);
            best.sums = min(best.sums, otherCorner);
        }
        return best;
    }

    template <typename Label>
    KPR_INLINE Outcome evaluate(const SweptRow<Label>& row, Kpr64s x) const {
        const First part(std::min<Kpr64s>(row.width - x, 16));
        const bool begins = rightward ? x == 0 : x + 16 >= row.width;
        const Kpr64s last = rightward ? x - 1 : x + 16;
        const Kpr32s* const own = row.costs + x;
        const auto present = load(own, part, broadcast(kFar));  // kFar from one end of the row to the next
        const Best best = fromOtherRow(own + dy * row.width, x, row.width, part);

        Cost most = min(best.sums + broadcast(Kpr32s{1}), present);
        Cost least = loadAs<Kpr32s>(row.src + x, part) << 23;
        const auto lowest = broadcast(std::numeric_limits<Kpr32s>::min());
        Cost step = step_;
        takeTurns<4>([&](auto turn) {
            const Cost mostBefore = earlier<1 << turn>(most, broadcast(kFar)) + step;
            const Cost leastBefore = earlier<1 << turn>(least, lowest) + step;
            least = max(min(leastBefore, most), least);
            most = min(mostBefore, most);
            step = step + step;
        });
        const auto carried = broadcast(begins ? kFar : row.costs[last]);
        const Cost costs = max(min(carried + steps_, most), least);

        const auto better = less(costs, present);
        const auto beside = atMost(earlier<1>(costs, carried) + side_, best.sums);
        const Cost codes = select<Kpr32s>(better, select<Kpr32s>(beside, broadcast(Kpr32s{kBeside}), best.codes),
                                          loadAs<Kpr32s>(row.codes + x, part));
        const auto present16 = loadSixteen(row.labels + x, part);
        auto parents16 = present16;
        const auto follow = [&](int direction) __attribute__((always_inline)) {
            const auto lanes = equal(codes, broadcast(Kpr32s{direction}));
            parents16 = loadSixteen(row.labels + x + parents_[direction], lanes, parents16);
        };
        takeTurns<kNowhere>([&](auto direction) {
            if constexpr (leads(direction)) follow(direction);
        });
        const Bits64 heads = ~Bits64{equal(codes, broadcast(Kpr32s{kBeside}))};
        const auto carriedLabel = broadcast(Kpr32s{begins ? Label{0} : row.labels[last]});
        const auto labels = permute(widen(parents16), carriedLabel, rightward ? lastUpTo(heads) : firstFrom(heads));
        const auto kept = equal(labels, widen(present16));
        return {costs, codes, labels, (Bits64{better} | ~Bits64{kept}) & part.bits};
    }

    template <typename Label, typename Part>
    KPR_INLINE static void put(const SweptRow<Label>& row, Kpr64s x, const Outcome& outcome, Part part) {
        store(row.costs + x, outcome.costs, part);
        storeAs(row.codes + x, outcome.codes, part);
        storeAs(row.labels + x, outcome.labels, part);
    }

    Cost side_, corner_, step_, steps_;
    ParentOffsets parents_;
};

}  // namespace n0::segment
