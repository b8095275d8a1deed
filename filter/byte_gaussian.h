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

#include "filter/taps.h"

namespace n0 {

// The taps of a kernel in pairs, four bytes to a pair: twice the two.
class BytePairs {
  public:
    static constexpr int kMostTaps = 63;
    static constexpr int kFlush = 5;  // so many pairs' lows are added up between two reductions
    static constexpr int kMost = (kMostTaps + 1) / 2;
    struct Pair {
        Kpr32s high, low;
    };
    Pair even[kMost], odd[kMost];

    // False where the kernel is not one that the file's comment tells of.
    bool make(const Kpr16s* kernel, int kernelSize, int divisor) {
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

// Taps of a kernel of known size are kept in registers; those of others are looked up.
template <int size>
class ByteTaps {
  public:
    ByteTaps(const BytePairs& pairs, int kernelSize) : pairs_(&pairs), kernelSize_(kernelSize) {
        for (int i = 0; i < kKept; ++i) {
            even_[i] = PairWeights(pairs.even[i]);
            odd_[i] = PairWeights(pairs.odd[i]);
        }
    }

    // Neighbours in a row: dst[x] from src[x] to src[x + kernelSize - 1], to nearest where `nearest` has a bit.
    // `stored` is the part of dst that is written.
    template <typename Part, typename Nearest>
    KPR_INLINE void along(Part part, Nearest nearest, const Kpr8u* src, Kpr8u* dst, auto stored) const {
        Digits even, odd;
        eachPair(
            even, odd, [&](int i, bool last) __attribute__((always_inline)) {
                const Vec<Kpr8u> pixels =
                    last ? loadOnce(src + Kpr64s{2} * i, part) : loadOnce(src + Kpr64s{2} * i, oneMore(part));
                even.add(pixels, evenPair(i));
                odd.add(pixels, oddPair(i));
            });
        Vec<Kpr16u> lower, upper;
        divide(even, odd, halfOf(nearest, 0x5555555555555555), halfOf(nearest, 0xaaaaaaaaaaaaaaaa), lower, upper);
        store(dst, as<Kpr8u>(shiftRight<7>(lower) | (shiftLeft<1>(upper) & broadcast<Kpr16u>(0xff00))), stored);
    }

    // Tap i over at(i), likewise.
    template <typename Part, typename Nearest, typename At>
    KPR_INLINE void down(Part part, Nearest nearest, At at, Kpr8u* dst, auto stored) const {
        Digits lower, upper;
        eachPair(
            lower, upper, [&](int i, bool last) __attribute__((always_inline)) {
                const Vec<Kpr8u> first = loadOnce(at(2 * i), part);
                const Vec<Kpr8u> second = last ? first : loadOnce(at(2 * i + 1), part);
                const PairWeights weights = evenPair(i);
                lower.add(interleaveLower(first, second), weights);
                upper.add(interleaveUpper(first, second), weights);
            });
        Vec<Kpr16u> a, b;
        divide(lower, upper, halfOf(nearest, 0x00ff00ff00ff00ff), halfOf(nearest, 0xff00ff00ff00ff00), a, b);
        store(dst, join(shiftRight<7>(a), shiftRight<7>(b)), stored);
    }

  private:
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
            step(kKept - 1, true);
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
    [[nodiscard]] KPR_INLINE PairWeights evenPair(int i) const {
        return size == 0 ? PairWeights(pairs_->even[i]) : even_[i];
    }
    [[nodiscard]] KPR_INLINE PairWeights oddPair(int i) const {
        return size == 0 ? PairWeights(pairs_->odd[i]) : odd_[i];
    }

    const BytePairs* pairs_;
    int kernelSize_;
    PairWeights even_[kKept == 0 ? 1 : kKept], odd_[kKept == 0 ? 1 : kKept];
};

// Three taps k, 4096 - 2k, k: with x = a + c - 2b the result is b + k * x / 4096, one product in 16 bits. It rounds
// half up; but a tie asks for a multiple of 2048 among k * x, which |x| below 512 does not give if k is no multiple
// of 8.
class CentredTaps {
  public:
    static bool serves(const Kpr16s* kernel, int kernelSize, int divisor) {
        return divisor == 4096 && kernelSize == 3 && kernel[0] > 0 && kernel[0] < 2048 && kernel[0] % 8 != 0 &&
               kernel[2] == kernel[0] && kernel[1] + 2 * kernel[0] == 4096;
    }

    explicit CentredTaps(Kpr16s outer)
        : nearest_(broadcast(static_cast<Kpr16s>(outer * 8))), truncated_(broadcast(static_cast<Kpr16s>(outer * 16))) {}

    template <typename Part, typename Nearest>
    KPR_INLINE void along(Part part, Nearest nearest, const Kpr8u* src, Kpr8u* dst, auto stored) const {
        down(
            part, nearest, [&](int i) { return src + i; }, dst, stored);
    }

    template <typename Part, typename Nearest, typename At>
    KPR_INLINE void down(Part part, Nearest nearest, At at, Kpr8u* dst, auto stored) const {
        const Vec<Kpr8u> a = loadOnce(at(0), part), b = loadOnce(at(1), part), c = loadOnce(at(2), part);
        const Vec<Kpr8u> none = zero<Kpr8u>();
        const Vec<Kpr16s> lower =
            between(interleaveLower(a, c), as<Kpr16s>(interleaveLower(b, none)), nearest, 0x00ff00ff00ff00ff);
        const Vec<Kpr16s> upper =
            between(interleaveUpper(a, c), as<Kpr16s>(interleaveUpper(b, none)), nearest, 0xff00ff00ff00ff00);
        store(dst, join(as<Kpr16u>(lower), as<Kpr16u>(upper)), stored);
    }

  private:
    KPR_INLINE Vec<Kpr16s> between(Vec<Kpr8u> beside, Vec<Kpr16s> b, All, Bits64) const {
        return b + mulRounded(difference(beside, b), nearest_);
    }
    KPR_INLINE Vec<Kpr16s> between(Vec<Kpr8u> beside, Vec<Kpr16s> b, Lanes nearest, Bits64 pixels) const {
        const Vec<Kpr16s> x = difference(beside, b);
        const auto lanes = static_cast<Mask<Kpr16s>>(gatherBits(nearest.bits, pixels));
        return b + select<Kpr16s>(lanes, mulRounded(x, nearest_), mulHigh(x, truncated_));
    }
    KPR_INLINE static Vec<Kpr16s> difference(Vec<Kpr8u> beside, Vec<Kpr16s> b) {
        return sumPairs(beside, broadcast<Kpr8s>(1)) - (b + b);
    }

    Vec<Kpr16s> nearest_, truncated_;
};

// The elements of a row that are rounded to nearest; those that read a synthesised pixel are truncated.
struct Inside {
    Kpr64s begin, end;
};

// One call for a row, which looks up the taps once. Every part begins with a whole vector of dst, and whole vectors are
// stored, so that dst has room for its last one: a vector stored in part would not be at hand when it is read soon.
template <int channels, typename Taps>
[[gnu::noinline]] void filterByteRow(const Taps& shared, const RowParts<Kpr8u>& parts, Inside inside, Kpr8u* dst) {
    const Taps taps = shared;
    constexpr Kpr64s lanes = kLanes<Kpr8u>;
    const auto apply = [&](auto part, auto nearest, const Kpr8u* s, Kpr8u* d) __attribute__((always_inline)) {
        if constexpr (channels == 1)
            taps.along(part, nearest, s, d, All{});
        else
            taps.down(
                part, nearest, [&](Kpr64s i) { return s + i * channels; }, d, All{});
    };
    for (const RowPart<Kpr8u>& row : parts) {
        const Kpr64s first = row.x * channels, count = row.count * channels;
        Kpr64s x = 0;
        if (!row.atEdge) {
            for (; x + lanes <= count; x += lanes) apply(All{}, All{}, row.src + x, dst + first + x);
        }
        for (; x < count; x += lanes) {
            const Kpr64s begin = std::clamp(inside.begin - first - x, Kpr64s{0}, lanes);
            const Kpr64s end = std::clamp(inside.end - first - x, begin, lanes);
            const Lanes nearest = {First{end}.bits & ~First{begin}.bits};
            if (x + lanes <= count)
                apply(All{}, nearest, row.src + x, dst + first + x);
            else
                apply(First{count - x}, nearest, row.src + x, dst + first + x);
        }
    }
}

template <typename Taps>
[[gnu::noinline]] void filterByteColumn(const Taps& shared, const Kpr8u* const* rows, Kpr8u* dst, Kpr64s count) {
    const Taps taps = shared;
    walkStretches<kLanes<Kpr8u>, 1>(count, [&]<int>(auto part, Kpr64s x) {
        taps.down(
            part, All{}, [&](int i) { return rows[i] + x; }, dst + x, part);
    });
}

}  // namespace n0
