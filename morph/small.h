// The extremum over small masks, 3x3 or 5x5, whose rows are runs of taps around the pixel's column that grow no longer
// away from its row: squares, discs, diamonds and crosses. Beyond an edge that is clamped or mirrors, such a mask sees
// nothing that it does not see inside. The source and the destination are different images.
//
// It goes along pairs of rows. For each reach, the rows whose runs go that far are joined down the columns, and the
// result is shifted to both sides by what the vectors before and after bring, in registers.
#pragma once

#include "morph/around.h"

namespace n0::morph {

// For both rows of a pair: element k is the join, column by column, of the source rows whose runs of taps reach at
// least k pixels to either side. In a full square all runs reach as far, and one element serves for every k.
template <typename T, int count>
struct RowPair {
    Vec<T> upper[count], lower[count];
};

// Where all columns lie outside the image.
template <typename T, int count>
KPR_INLINE RowPair<T, count> outsidePair(Vec<T> fill) {
    RowPair<T, count> pair;
    for (int i = 0; i < count; ++i) pair.upper[i] = pair.lower[i] = fill;
    return pair;
}

template <typename Rule, int reach, bool full, typename T>
KPR_INLINE auto joinColumns(const Vec<T>* v, Reaches reaches) {
    RowPair<T, full ? 1 : reach + 1> pair;
    if constexpr (full) {  // the two share all source rows but two
        Vec<T> shared = v[1];
        for (int i = 2; i <= 2 * reach; ++i) shared = Rule::join(shared, v[i]);
        pair.upper[0] = Rule::join(v[0], shared);
        pair.lower[0] = Rule::join(shared, v[2 * reach + 1]);
    } else {
        Vec<T> upper = v[reach], lower = v[reach + 1];
        takeTurns<reach + 1>([&](auto turn) __attribute__((always_inline)) {
            takeTurns<reach>([&](auto step) __attribute__((always_inline)) {
                constexpr int k = reach - turn, distance = step + 1;
                if (reaches.of[distance] != k) return;
                upper = Rule::join(upper, Rule::join(v[reach - distance], v[reach + distance]));
                lower = Rule::join(lower, Rule::join(v[reach + 1 - distance], v[reach + 1 + distance]));
            });
            pair.upper[reach - turn] = upper;
            pair.lower[reach - turn] = lower;
        });
    }
    return pair;
}

// The row's result from the columns of three vectors that follow one another; a pixel has `pixel` bytes.
template <typename Rule, int reach, int pixel, int count, typename T>
KPR_INLINE Vec<T> joinRow(const Vec<T> (&before)[count], const Vec<T> (&at)[count], const Vec<T> (&after)[count]) {
    Vec<T> v = at[0];
    takeTurns<reach>([&](auto turn) __attribute__((always_inline)) {
        constexpr int k = count == 1 ? 0 : turn + 1, bytes = (turn + 1) * pixel;
        v = Rule::join(v, ahead<64 - bytes>(before[k], at[k]));
        v = Rule::join(v, ahead<bytes>(at[k], after[k]));
    });
    return v;
}

template <typename Rule, int reach, bool full, int channels, typename T>
void smallMask(const Job<T>& job, Reaches reaches) {
    constexpr Kpr64s lanes = kLanes<T>;
    constexpr int side = 2 * reach + 1, pixel = channels * int{sizeof(T)};
    constexpr Window w = {reach, reach, reach, reach};
    const Reach held = rowsHeld(job, w), across = columnsHeld(job, w);
    const Kpr64s length = job.width * channels, begin = across.begin * channels, end = across.end * channels;
    const Pattern<T> pattern = outside<Rule>(job);
    const Output output = job.output;

    for (Kpr64s y = 0; y < job.height; y += 2) {
        const T* row[side + 1];
        Bits64 rowHeld[side + 1];
        bool all = true;
        for (int i = 0; i <= side; ++i) {
            const Kpr64s at = y - reach + i, inside = std::clamp(at, held.begin, held.end - 1);
            // For a row outside stands the nearest one, which has its taps too, unless there is a constant.
            row[i] = job.src[inside];
            rowHeld[i] = at == inside || job.border.base != kprBorderConstant ? ~Bits64{0} : 0;
            all &= rowHeld[i] != 0;
        }
        const auto inner = [&](Kpr64s x) __attribute__((always_inline)) {
            Vec<T> v[side + 1];
            for (int i = 0; i <= side; ++i) v[i] = load(row[i] + x, All{});
            return joinColumns<Rule, reach, full>(v, reaches);
        };
        const auto any = [&](Kpr64s x) __attribute__((always_inline)) {
            const Vec<T> fill = pattern.fromChannel((x + lanes * channels) % channels);
            const Kpr64s low = std::clamp(begin - x, Kpr64s{0}, lanes), high = std::clamp(end - x, low, lanes);
            if (low == high) return outsidePair < T, full ? 1 : reach + 1 > (fill);
            const Bits64 part = First{high}.bits & ~First{low}.bits;
            Vec<T> v[side + 1];
            for (int i = 0; i <= side; ++i) v[i] = load(row[i] + x, Lanes{part & rowHeld[i]}, fill);
            return joinColumns<Rule, reach, full>(v, reaches);
        };
        T *const upper = job.dst[y], *const lower = job.dst[y + 1];
        const T *const upperOther = job.other[y], *const lowerOther = job.other[y + 1];
        const bool both = y + 1 < job.height;

        RowPair<T, full ? 1 : reach + 1> before = {}, at = {}, after;
        const auto putPair = [&](Kpr64s x, auto part) __attribute__((always_inline)) {
            put(output, upper + x, upperOther + x, joinRow<Rule, reach, pixel>(before.upper, at.upper, after.upper),
                part);
            if (!both) return;
            put(output, lower + x, lowerOther + x, joinRow<Rule, reach, pixel>(before.lower, at.lower, after.lower),
                part);
        };
        const auto shift = [&]() __attribute__((always_inline)) {
            before = at;
            at = after;
        };
        // The results at x are joined when the columns of the vector after it are made. Each way of making columns
        // stands here once or twice and no more, as its code is long: the vectors in front of the row take their turns
        // with those of its end.
        const auto columns = [&](Kpr64s x) __attribute__((always_inline)) {
            return all && x >= begin && x + lanes <= end ? inner(x) : any(x);
        };
        for (Kpr64s x = -2 * lanes; x < length;) {
            after = columns(x + lanes);
            if (x >= 0) putPair(x, First{std::min(lanes, length - x)});
            shift();
            x += lanes;
            for (; all && x >= 0 && x + 2 * lanes <= end && x + lanes <= length; x += lanes) {
                after = inner(x + lanes);
                putPair(x, All{});
                shift();
            }
        }
    }
}

template <typename Rule, int reach, bool full, typename T>
void smallMask(const Job<T>& job, Reaches reaches) {
    if constexpr (sizeof(T) != 2) {
        if (job.channels == 3) return smallMask<Rule, reach, full, 3>(job, reaches);
        if (job.channels == 4) return smallMask<Rule, reach, full, 4>(job, reaches);
    }
    smallMask<Rule, reach, full, 1>(job, reaches);
}

}  // namespace n0::morph
