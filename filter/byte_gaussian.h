// The Gaussian filter of bytes with 32-bit sizes, by bytes: rows are bytes between the stages too, since taps that are
// not negative and add up to about 4096 give no result beyond 255.
//
// A tap is written as 32 * high + low, low between -31 and 31, so that products of bytes add up in 16 bits: the lows of
// either sign to 128 at most, before L is reduced. With S = 32 * H + L and T = H + (L >> 5), which is S / 32 rounded
// down,
//
//     S / 4096 to nearest    (T + 64) >> 7, one less where that is odd and a tie: no bit set in T + 64 below 7 and in L
//                            below 5
//     S / 4096 truncated     T >> 7
//
// Two pixels are multiplied and added at once. Along a row of one channel these are neighbours: one vector serves the
// results of its even columns, as taps (0, 1), (2, 3) ..., and of its odd ones, as taps (-, 0), (1, 2) ....
#pragma once

#include "filter/byte_walk.h"
#include "filter/taps.h"

namespace n0::filter {

// The taps of a kernel in pairs. A pair is held twice, in four bytes, since 32 bits are the least that broadcasts fast.
class BytePairs {
  public:
    static constexpr int kMostTaps = 63;
    static constexpr int kFlush = 5;  // after so many pairs the low digits are carried into the high ones
    static constexpr int kMost = (kMostTaps + 1) / 2;
    struct Pair {
        Kpr32s high, low;
    };
    Pair even[kMost], odd[kMost];

    // False where the kernel is not one that the file's comment tells of.
    [[gnu::noinline]] bool make(const Kpr16s* kernel, int kernelSize, int divisor) {
        if (divisor != 4096 || kernelSize > kMostTaps) return false;
        Kpr8s high[kMostTaps + 2] = {}, low[kMostTaps + 2] = {};  // of tap i at i + 1
        int sum = 0, above = 0, below = 0;
        for (int i = 0; i < kernelSize; ++i) {
            if (i % (2 * kFlush) == 0) above = below = 0;
            const int tap = kernel[i], rest = tap & 31;
            if (tap < 0 || tap > 4064) return false;
            const bool negative = rest > 0 && below + 32 - rest < above + rest;
            (negative ? below : above) += negative ? 32 - rest : rest;
            if (above > 96 || below > 96) return false;  // odd pairs begin a tap earlier, whose low is below 32
            low[i + 1] = static_cast<Kpr8s>(negative ? rest - 32 : rest);
            high[i + 1] = static_cast<Kpr8s>((tap - low[i + 1]) / 32);
            if (high[i] + high[i + 1] > 128) return false;
            sum += tap;
        }
        for (int i = 0; i < (kernelSize + 1) / 2; ++i) {
            even[i] = {packed(high, 2 * i + 1), packed(low, 2 * i + 1)};
            odd[i] = {packed(high, 2 * i), packed(low, 2 * i)};
        }
        return 255 * sum + 2048 < 256 * 4096;
    }

  private:
    static Kpr32s packed(const Kpr8s* taps, int i) {
        const unsigned pair = static_cast<Kpr8u>(taps[i]) | unsigned{static_cast<Kpr8u>(taps[i + 1])} << 8;
        return static_cast<Kpr32s>(pair | pair << 16);
    }
};

// A pair of taps for all pixels.
struct PairWeights {
    Vec<Kpr8s> high, low;

    KPR_INLINE PairWeights() = default;
    KPR_INLINE explicit PairWeights(BytePairs::Pair pair)
        : high(as<Kpr8s>(broadcast(pair.high))), low(as<Kpr8s>(broadcast(pair.low))) {}
};

// The sums of 32 pixels.
struct Digits {
    Vec<Kpr16s> high = zero<Kpr16s>(), low = zero<Kpr16s>();

    KPR_INLINE void add(Vec<Kpr8u> pixels, const PairWeights& weights) {
        high = high + sumPairs(pixels, weights.high);
        low = low + sumPairs(pixels, weights.low);
    }
    KPR_INLINE void reduce() {
        high = high + shiftRight<5>(low);
        low = low & broadcast<Kpr16s>(31);
    }
};

// 128 times the results, and less than 128 more; `half` is 64 where they are rounded to nearest and 0 elsewhere.
KPR_INLINE void divide(const Digits& a, const Digits& b, Vec<Kpr16u> halfA, Vec<Kpr16u> halfB, Vec<Kpr16u>& resultA,
                       Vec<Kpr16u>& resultB) {
    resultA = as<Kpr16u>(a.high + shiftRight<5>(a.low)) + halfA;
    resultB = as<Kpr16u>(b.high + shiftRight<5>(b.low)) + halfB;
    const auto tie = [](const Digits& d, Vec<Kpr16u> result) {
        return noneOf(noneOf(result, broadcast<Kpr16u>(127)), d.low, broadcast<Kpr16s>(31));
    };
    const Mask<Kpr16u> tieA = tie(a, resultA), tieB = tie(b, resultB);
    if ((tieA | tieB) != 0) [[unlikely]] {
        const auto odd = [](Vec<Kpr16u> result, Vec<Kpr16u> half) {
            return shiftRight<7>(result) & shiftRight<6>(half);
        };
        resultA = resultA - keep<Kpr16u>(tieA, odd(resultA, halfA));
        resultB = resultB - keep<Kpr16u>(tieB, odd(resultB, halfB));
    }
}

// Taps of a kernel of known size are kept in registers; those of others are looked up. `nearest` tells which of 64
// results are rounded to nearest.
template <int channels, int size>
class ByteTaps {
  public:
    static constexpr int kRadius = size / 2;
    using Row = Vec<Kpr8u>;

    ByteTaps(const BytePairs& pairs, int kernelSize) : pairs_(&pairs), kernelSize_(kernelSize) {
        for (int i = 0; i < kKept; ++i) {
            even_[i] = PairWeights(pairs.even[i]);
            odd_[i] = PairWeights(pairs.odd[i]);
        }
    }

    // Columns whose first tap lies over src.
    template <typename Part, typename Nearest>
    KPR_INLINE Row across(Part part, Nearest nearest, const Kpr8u* src) const {
        if constexpr (channels > 1)
            return sum(
                nearest, [&](Kpr64s i) __attribute__((always_inline)) { return load(src + i * channels, part); });
        Digits even, odd;
        eachPair(
            even, odd, [&](Kpr64s i, bool last) __attribute__((always_inline)) {
                const Vec<Kpr8u> pixels = last ? loadOnce(src + 2 * i, part) : loadOnce(src + 2 * i, oneMore(part));
                even.add(pixels, evenPair(i));
                odd.add(pixels, oddPair(i));
            });
        Vec<Kpr16u> lower, upper;
        divide(even, odd, halfOf(nearest, 0x5555555555555555), halfOf(nearest, 0xaaaaaaaaaaaaaaaa), lower, upper);
        return as<Kpr8u>(shiftRight<7>(lower) | (shiftLeft<1>(upper) & broadcast<Kpr16u>(0xff00)));
    }
    KPR_INLINE Row outside(const Kpr8u* src) const { return load(src, All{}); }

    template <typename At>
    KPR_INLINE Vec<Kpr8u> down(At row) const {
        return sum(All{}, row);
    }

  private:
    // Tap i times at(i).
    template <typename Nearest, typename At>
    KPR_INLINE Vec<Kpr8u> sum(Nearest nearest, At at) const {
        Digits lower, upper;
        eachPair(
            lower, upper, [&](auto i, bool last) __attribute__((always_inline)) {
                const Vec<Kpr8u> first = at(twice(i)), second = last ? first : at(twice(i, Turn<1>{}));
                const PairWeights weights = evenPair(i);
                lower.add(interleaveLower(first, second), weights);
                upper.add(interleaveUpper(first, second), weights);
            });
        Vec<Kpr16u> a, b;
        divide(lower, upper, halfOf(nearest, 0x00ff00ff00ff00ff), halfOf(nearest, 0xff00ff00ff00ff00), a, b);
        return join(shiftRight<7>(a), shiftRight<7>(b));
    }

    // 2 * i + more; of a turn, a turn.
    template <int i, int more = 0>
    KPR_INLINE static Turn<2 * i + more> twice(Turn<i>, Turn<more> = {}) {
        return {};
    }
    template <int more = 0>
    KPR_INLINE static int twice(int i, Turn<more> = {}) {
        return 2 * i + more;
    }

    static constexpr int kKept = (size + 1) / 2;

    // The half that is added to the lanes which stand for those pixels.
    KPR_INLINE static Vec<Kpr16u> halfOf(All, Bits64) { return broadcast<Kpr16u>(64); }
    KPR_INLINE static Vec<Kpr16u> halfOf(Lanes nearest, Bits64 pixels) {
        return keep<Kpr16u>(static_cast<Mask<Kpr16u>>(gatherBits(nearest.bits, pixels)), broadcast<Kpr16u>(64));
    }

    // step(i, last) for each pair of taps.
    template <typename Step>
    KPR_INLINE void eachPair(Digits& a, Digits& b, Step step) const {
        if constexpr (size > 0) {
            takeTurns<kKept - 1>([&](auto i) __attribute__((always_inline)) { step(i, false); });
            step(Turn<kKept - 1>{}, true);
        } else {
            const int last = kernelSize_ / 2;
            for (int i = 0; i < last;) {
                for (const int end = std::min(i + BytePairs::kFlush, last); i < end; ++i) step(i, false);
                a.reduce();
                b.reduce();
            }
            step(last, true);
        }
    }
    [[nodiscard]] KPR_INLINE PairWeights evenPair(Kpr64s i) const {
        return size == 0 ? PairWeights(pairs_->even[i]) : even_[i];
    }
    [[nodiscard]] KPR_INLINE PairWeights oddPair(Kpr64s i) const {
        return size == 0 ? PairWeights(pairs_->odd[i]) : odd_[i];
    }

    const BytePairs* pairs_;
    int kernelSize_;
    PairWeights even_[kKept == 0 ? 1 : kKept], odd_[kKept == 0 ? 1 : kKept];
};

// One call for a row, which looks up the taps once. Every part of the row begins at a whole vector of dst. The last
// vector too is stored whole, for which dst has room: a masked store cannot be forwarded to the load that soon reads it
// for the column stage.
template <int channels, typename Taps>
void filterByteRow(const void* shared, const RowParts<Kpr8u>& parts, Inside inside, Kpr8u* dst) {
    const Taps taps = *static_cast<const Taps*>(shared);
    constexpr Kpr64s lanes = kLanes<Kpr8u>;
    for (const RowPart<Kpr8u>& row : parts) {
        const Kpr64s first = row.x * channels, count = row.count * channels;
        const auto apply = [&](auto part, auto nearest, Kpr64s x) __attribute__((always_inline)) {
            store(dst + first + x, taps.across(part, nearest, row.src + x), All{});
        };
        Kpr64s x = 0;
        if (!row.atEdge) {
            for (; x + lanes <= count; x += lanes) apply(All{}, All{}, x);
        }
        for (; x + lanes <= count; x += lanes) apply(All{}, inside.from(first + x), x);
        if (x < count) apply(First{count - x}, inside.from(first + x), x);
    }
}

template <typename Taps>
void filterByteColumn(const void* shared, const Kpr8u* const* rows, Kpr8u* dst, Kpr64s count) {
    const Taps taps = *static_cast<const Taps*>(shared);
    walkStretches<kLanes<Kpr8u>, 1>(count, [&]<int>(auto part, Kpr64s x) {
        const auto at = [&](int i) __attribute__((always_inline)) { return load(rows[i] + x, part); };
        store(dst + x, taps.down(at), part);
    });
}

// The two, with their taps.
struct ByteStages {
    const void* taps;
    void (*across)(const void* taps, const RowParts<Kpr8u>& parts, Inside inside, Kpr8u* dst);
    void (*down)(const void* taps, const Kpr8u* const* rows, Kpr8u* dst, Kpr64s count);

    template <int channels, typename Taps>
    static ByteStages of(const Taps& taps) {
        return {&taps, filterByteRow<channels, Taps>, filterByteColumn<Taps>};
    }
};

}  // namespace n0::filter
