// What the statistics gather from the steps of pixels that a selection shows them: sums, sums of squares, the largest.
//
// Integers are exact: every narrow lane is widened before it can overflow, and the 64-bit totals hold any image, since
// 65535^2 * 2^32 pixels is below 2^64. Floats are added in 32 lanes, pixel x of a row in lane x mod 32, in single
// precision along the row; at its end each lane is widened and added to the lane's double total. The totals are added
// in the order of the lanes, eight by eight.
#pragma once

#include <algorithm>

#include "stats/selection.h"

namespace n0::stats {

// The sum of the lanes, in their order; integers modulo 2^64.
template <typename T>
KPR_INLINE Wrapping<T> sumOfLanes(Vec<T> v) {
    Wrapping<T> sum = 0;
    for (int i = 0; i < kLanes<T>; ++i) sum += static_cast<Wrapping<T>>(v.raw[i]);
    return sum;
}

template <typename T>
struct Sum;

template <>
struct Sum<Kpr8u> {
    Vec<Kpr64s> total = zero<Kpr64s>();

    KPR_INLINE void add(const Step<Kpr8u>& step) { total = total + sumOfBytes(step.v[0]); }
    KPR_INLINE void widen() {}
    KPR_INLINE Kpr64f value() const { return static_cast<Kpr64f>(sumOfLanes(total)); }
};

// Low and high bytes are summed apart.
template <>
struct Sum<Kpr16u> {
    Vec<Kpr64s> low = zero<Kpr64s>();
    Vec<Kpr64s> high = zero<Kpr64s>();

    KPR_INLINE void add(const Step<Kpr16u>& step) {
        low = low + sumOfBytes(as<Kpr8u>(step.v[0] & broadcast<Kpr16u>(0xff)));
        high = high + sumOfBytes(as<Kpr8u>(shiftRight<8>(step.v[0])));
    }
    KPR_INLINE void widen() {}
    KPR_INLINE Bits64 total() const { return sumOfLanes(low) + 256 * sumOfLanes(high); }
    KPR_INLINE Kpr64f value() const { return static_cast<Kpr64f>(total()); }
};

// Sixteen of the lanes in which floats are added: along a row in single precision, from row to row in double.
struct FloatLanes {
    Vec<Kpr32f> row = zero<Kpr32f>();
    Vec<Kpr64f> total[2] = {zero<Kpr64f>(), zero<Kpr64f>()};  // the lower and the upper lanes

    KPR_INLINE void add(Vec<Kpr32f> v) { row = row + v; }
    KPR_INLINE void widen() {
        total[0] = total[0] + half<0>(row);
        total[1] = total[1] + half<1>(row);
        row = zero<Kpr32f>();
    }
    KPR_INLINE Kpr64f value() const { return sumOfLanes(total[0]) + sumOfLanes(total[1]); }
};

template <>
struct Sum<Kpr32f> {
    FloatLanes lanes[2];

    KPR_INLINE void add(const Step<Kpr32f>& step) {
        for (int i = 0; i < 2; ++i) lanes[i].add(step.v[i]);
    }
    KPR_INLINE void widen() {
        for (auto& sixteen : lanes) sixteen.widen();
    }
    KPR_INLINE Kpr64f value() const {
        return (lanes[0].value() + sumOfLanes(lanes[1].total[0])) + sumOfLanes(lanes[1].total[1]);
    }
};

template <typename T>
struct Squares;

// Squares of even and of odd bytes are added in pairs to 32-bit lanes, which hold 2^14 steps of 4 * 255^2.
template <>
struct Squares<Kpr8u> {
    Vec<Kpr32s> row = zero<Kpr32s>();
    Vec<Kpr64s> total = zero<Kpr64s>();

    KPR_INLINE void add(const Step<Kpr8u>& step) {
        const auto pairs = as<Kpr16u>(step.v[0]);
        const auto even = as<Kpr16s>(pairs & broadcast<Kpr16u>(0xff));
        const auto odd = as<Kpr16s>(shiftRight<8>(pairs));
        row = row + (sumPairs(even, even) + sumPairs(odd, odd));
    }
    KPR_INLINE void widen() {
        total = total + sumPairs(row);
        row = zero<Kpr32s>();
    }
    KPR_INLINE Kpr64f value() const { return static_cast<Kpr64f>(sumOfLanes(total)); }
};

// Moved by 2^15 a word is signed, and pairs of squares fit 32 unsigned bits. With s = w - 2^15 the squares of the words
// are s^2 + 2^16 w - 2^30, for every lane that was taken, the empty ones too.
template <>
struct Squares<Kpr16u> {
    Vec<Kpr64s> moved = zero<Kpr64s>();
    Sum<Kpr16u> words;
    Bits64 steps = 0;

    KPR_INLINE void add(const Step<Kpr16u>& step) {
        const auto s = as<Kpr16s>(step.v[0] - broadcast<Kpr16u>(0x8000));
        moved = moved + sumPairs(sumPairs(s, s));
        words.add(step);
        ++steps;
    }
    KPR_INLINE void widen() {}
    KPR_INLINE Kpr64f value() const {
        return static_cast<Kpr64f>(sumOfLanes(moved) + (words.total() << 16) - ((steps * kLanes<Kpr16u>) << 30));
    }
};

template <>
struct Squares<Kpr32f> : Sum<Kpr32f> {
    KPR_INLINE void add(const Step<Kpr32f>& step) {
        Sum<Kpr32f>::add({{step.v[0] * step.v[0], step.v[1] * step.v[1]}});
    }
};

// The largest of values that are not negative, 0 of none. A NaN is never the largest.
template <typename T>
struct Largest {
    Step<T> largest = {};

    KPR_INLINE void add(const Step<T>& step) {
        for (int i = 0; i < kVectors<T>; ++i) largest.v[i] = max(step.v[i], largest.v[i]);
    }
    KPR_INLINE void widen() {}
    KPR_INLINE Kpr64f value() const {
        T top = 0;
        for (const Vec<T>& v : largest.v) {
            for (int i = 0; i < kLanes<T>; ++i) top = std::max<T>(top, v.raw[i]);
        }
        return static_cast<Kpr64f>(top);
    }
};

}  // namespace n0::stats
