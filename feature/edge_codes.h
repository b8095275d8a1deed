// The first half of an edge detector: what 16-bit or float derivatives make of a pixel, its magnitude and the code of
// its direction.
//
// With adx and ady the absolute values, as floats:
//
//     upright    2.4142137 * adx < ady
//     level      otherwise, if ady < 0.41421357 * adx
//     unlike     otherwise, if the signs of dx and dy differ
#pragma once

#include "feature/edge_rows.h"

namespace n0::feature {

inline constexpr Kpr32f kTangent22 = 0.41421357F, kTangent67 = 2.4142137F;

// Whether b > 2.4142137 * a and the like without leaving 16 bits: b > 2 * a + floor(a * k), with k so that it comes to
// the same for all integers up to the reach, those too whose product rounds to an integer in single precision. Up to
// 1020 an upper half of 27146 serves both comparisons. Up to 12240 each has a lower half of its own (the pairs 2378 and
// 5741, 3771 and 9104 tell them apart); beyond there is none.
inline constexpr int kShortReach = 1020, kLongReach = 12240;

template <int reach>
KPR_INLINE Vec<Kpr16u> timesTangent67(Vec<Kpr16u> a, Kpr16u lowerHalf) {
    const Vec<Kpr16u> twice = a + a;
    if constexpr (reach <= kShortReach) return twice + mulHigh(a, broadcast<Kpr16u>(27146));
    const Vec<Kpr16u> upper = broadcast<Kpr16u>(27145);
    const Vec<Kpr16u> fraction = a * upper, sum = fraction + mulHigh(a, broadcast(lowerHalf));
    return addOneWhere(less(sum, fraction), twice + mulHigh(a, upper));
}

struct Codes {
    Bits64 level, upright;
};

template <int reach>
KPR_INLINE Codes codesWithin(Vec<Kpr16u> adx, Vec<Kpr16u> ady) {
    return {less(timesTangent67<reach>(ady, 59500), adx), less(timesTangent67<reach>(adx, 60100), ady)};
}

KPR_INLINE Codes codesOf(Vec<Kpr32f> adx, Vec<Kpr32f> ady) {
    return {less(ady, adx * broadcast(kTangent22)), less(adx * broadcast(kTangent67), ady)};
}

[[gnu::noinline]] inline Codes codesOfAny(Vec<Kpr16u> adx, Vec<Kpr16u> ady) {
    const Codes first = codesOf(toFloat(widened<0>(adx)), toFloat(widened<0>(ady)));
    const Codes second = codesOf(toFloat(widened<1>(adx)), toFloat(widened<1>(ady)));
    return {first.level | second.level << 16, first.upright | second.upright << 16};
}

// ---- magnitudes of integer derivatives, 32 pixels at a time; `low` is at least 0

// |dx| + |dy|, at most 65535.
struct SaturatedSum {
    using Magnitude = Kpr16u;
    Kpr16u low;

    KPR_INLINE void put(Kpr16u* m, Vec<Kpr16s>, Vec<Kpr16s>, Vec<Kpr16u> adx, Vec<Kpr16u> ady) const {
        const Vec<Kpr16u> sum = addSaturated(adx, ady);
        store(m, keep(less(broadcast(low), sum), sum), All{});
    }
};

KPR_INLINE void putAbove(Kpr32s low, Kpr32s* m, Vec<Kpr32s> first, Vec<Kpr32s> second) {
    store(m, keep(less(broadcast(low), first), first), All{});
    store(m + 16, keep(less(broadcast(low), second), second), All{});
}

// |dx| + |dy|: 65536 too.
struct ExactSum {
    using Magnitude = Kpr32s;
    Kpr32s low;

    KPR_INLINE void put(Kpr32s* m, Vec<Kpr16s>, Vec<Kpr16s>, Vec<Kpr16u> adx, Vec<Kpr16u> ady) const {
        putAbove(low, m, widened<0>(adx) + widened<0>(ady), widened<1>(adx) + widened<1>(ady));
    }
};

// dx * dx + dy * dy; of any derivatives, -32768 counts as -32767.
template <bool ofAny>
struct SquareSum {
    using Magnitude = Kpr32s;
    Kpr32s low;

    KPR_INLINE void put(Kpr32s* m, Vec<Kpr16s> dx, Vec<Kpr16s> dy, Vec<Kpr16u>, Vec<Kpr16u>) const {
        if constexpr (ofAny) {
            dx = max(dx, broadcast<Kpr16s>(-32767));
            dy = max(dy, broadcast<Kpr16s>(-32767));
        }
        const auto squares = [](Vec<Kpr16s> both) { return sumPairs(both, both); };
        const Ordered sums = inOrder(squares(interleaveLower(dx, dy)), squares(interleaveUpper(dx, dy)));
        putAbove(low, m, sums.first, sums.second);
    }
};

// The bits of sqrt(fma(adx, adx, ady * ady)).
struct Root {
    using Magnitude = Kpr32s;
    Kpr32f low;
    Kpr32f perhaps;  // sums up to this have roots up to `low`: most pixels of a photograph need no root

    template <int which>
    KPR_INLINE void putHalf(Kpr32s* m, Vec<Kpr16u> adx, Vec<Kpr16u> ady) const {
        const Vec<Kpr32f> x = toFloat(widened<which>(adx)), y = toFloat(widened<which>(ady));
        const Vec<Kpr32f> sum = fma(x, x, y * y);
        Vec<Kpr32f> root = zero<Kpr32f>();
        if (less(broadcast(perhaps), sum) != 0) {
            root = sqrt(sum);
            root = keep(less(broadcast(low), root), root);
        }
        store(m + Kpr64s{16} * which, as<Kpr32s>(root), All{});
    }
    KPR_INLINE void put(Kpr32s* m, Vec<Kpr16s>, Vec<Kpr16s>, Vec<Kpr16u> adx, Vec<Kpr16u> ady) const {
        putHalf<0>(m, adx, ady);
        putHalf<1>(m, adx, ady);
    }
};

// 32 pixels of a row from their derivatives, which are not beyond `reach`, or any. Whether they were within 16-bit
// comparisons.
inline constexpr int kAnyReach = 32768;

template <int reach, typename Sum>
KPR_INLINE bool putPixels(const Sum& sum, EdgeRow<typename Sum::Magnitude> row, Kpr64s x, Vec<Kpr16s> dx,
                          Vec<Kpr16s> dy) {
    const Vec<Kpr16u> adx = magnitude(dx), ady = magnitude(dy);
    sum.put(row.magnitudes + x, dx, dy, adx, ady);
    const bool within = reach <= kLongReach || !anyGreater(max(adx, ady), broadcast<Kpr16u>(kLongReach));
    const Codes codes = within ? codesWithin<reach>(adx, ady) : codesOfAny(adx, ady);
    putBits<32>(row.level, x, codes.level);
    putBits<32>(row.upright, x, codes.upright);
    putBits<32>(row.unlike, x, signs(dx ^ dy));
    return within;
}

// ---- thresholds: each as the type of the magnitudes, so that no magnitude is above a NaN

// The largest integer not above `threshold`, which is at least 0 or a NaN, as far as the type goes.
template <typename Integer>
constexpr Integer floorOf(Kpr32f threshold) {
    constexpr Integer most = std::numeric_limits<Integer>::max();
    return threshold < static_cast<Kpr32f>(most) ? static_cast<Integer>(threshold) : most;
}

// The bits of a float that is at least 0, so that bits are compared.
inline Kpr32s bitsOf(Kpr32f threshold) {
    return threshold >= 0 ? __builtin_bit_cast(Kpr32s, threshold + 0.0F) : std::numeric_limits<Kpr32s>::max();
}

}  // namespace n0::feature
