// Three taps k, 4096 + d - 2k, k on bytes. The taps of a Gaussian are rounded one by one and add up to 4096 + d, with d
// -1, 0 or 1. For the pixel b in the middle and the pixels a and c beside it, with x = a + c - 2b,
//
//     (k * a + (4096 + d - 2k) * b + k * c) / 4096 = b + (k * x + d * b) / 4096
//
// The integer part of k * x / 4096 is one 16-bit multiplication, its remainder another.
#pragma once

#include <cstdint>

#include "filter/byte_walk.h"

namespace n0::filter {

// 64 elements in 16-bit lanes: of one channel the even and the odd ones, so that two neighbours multiply at once; of
// more those of the lower and of the upper half of each 16 bytes.
struct Words {
    Vec<Kpr16s> first, second;
};
template <int channels>
inline constexpr Bits64 kFirst = channels == 1 ? 0x5555555555555555 : 0x00ff00ff00ff00ff;

template <int channels>
KPR_INLINE Words wordsOf(Vec<Kpr8u> v) {
    if constexpr (channels == 1)
        return {as<Kpr16s>(v) & broadcast<Kpr16s>(0xff), as<Kpr16s>(shiftRight<8>(as<Kpr16u>(v)))};
    else
        return {as<Kpr16s>(interleaveLower(v, zero<Kpr8u>())), as<Kpr16s>(interleaveUpper(v, zero<Kpr8u>()))};
}

// The low bytes of one channel; of more the words, which are bytes.
template <int channels>
KPR_INLINE Vec<Kpr8u> bytesOf(Words v) {
    constexpr int firstWhereSecond = 0xe2;  // b ? a : c
    if constexpr (channels == 1)
        return as<Kpr8u>(combine<firstWhereSecond>(v.first, broadcast<Kpr16s>(0xff), shiftLeft<8>(v.second)));
    else
        return join(as<Kpr16u>(v.first), as<Kpr16u>(v.second));
}

// The pixels b of 64 results and the x of their neighbourhoods.
struct Neighbours {
    Words b, x;
};

template <int channels, typename Part>
KPR_INLINE Neighbours neighbours(Part part, const Kpr8u* src) {
    const auto pairs = [](Vec<Kpr8u> v, int even, int odd) {  // even * its even byte + odd * its odd one
        return sumPairs(v, as<Kpr8s>(broadcast(static_cast<Kpr16s>((even & 0xff) | odd * 256))));
    };
    const Vec<Kpr8u> a = loadOnce(src, channels == 1 ? oneMore(part) : part);
    const Vec<Kpr8u> c = loadOnce(src + Kpr64s{2} * channels, part);
    if constexpr (channels == 1) {
        // Byte 1 of a is the pixel in the middle of the even result 0, byte 0 of c that of the odd result 1.
        const Words b = {wordsOf<1>(a).second, wordsOf<1>(c).first};
        return {b, {pairs(a, 1, -2) + b.second, pairs(c, -2, 1) + b.first}};
    } else {
        const Words b = wordsOf<channels>(load(src + channels, part));
        return {b,
                {pairs(interleaveLower(a, c), 1, 1) - (b.first + b.first),
                 pairs(interleaveUpper(a, c), 1, 1) - (b.second + b.second)}};
    }
}

// Where d is 0 and k no multiple of 8: k * x / 4096 is then never half way between two integers, because |x| is below
// 512 and a half needs k * x to be an odd multiple of 2048. A product that rounds halves up is all it takes.
class TielessRounding {
  public:
    TielessRounding(int k, int /*d*/)
        : nearest_(broadcast(static_cast<Kpr16s>(8 * k))), truncated_(broadcast(static_cast<Kpr16s>(16 * k))) {}

    static bool serves(int k, int d) { return d == 0 && k % 8 != 0; }

    KPR_INLINE static Vec<Kpr16s> entered(Vec<Kpr16s> b) { return b; }
    KPR_INLINE static Vec<Kpr16s> left(Vec<Kpr16s> result) { return result; }
    KPR_INLINE Vec<Kpr16s> operator()(Vec<Kpr16s> x, Vec<Kpr16s> b, All, Bits64) const {
        return b + mulRounded(x, nearest_);
    }
    KPR_INLINE Vec<Kpr16s> operator()(Vec<Kpr16s> x, Vec<Kpr16s> b, Lanes nearest, Bits64 pixels) const {
        const auto lanes = static_cast<Mask<Kpr16s>>(gatherBits(nearest.bits, pixels));
        return b + select<Kpr16s>(lanes, mulRounded(x, nearest_), mulHigh(x, truncated_));
    }

  private:
    Vec<Kpr16s> nearest_, truncated_;
};

// All others: b + floor(k * x / 4096), and one more where the remainder of that division and d * b are more than 2048
// together, or 2048 and that result is odd. The low halves of the products are 16 times the remainders.
class EvenRounding {
  public:
    EvenRounding(int k, int d)
        : times16_(broadcast(static_cast<Kpr16s>(16 * k))), less16d_(broadcast(static_cast<Kpr16s>(-16 * d))), d_(d) {}

    static bool serves(int /*k*/, int d) { return d >= -1 && d <= 1; }

    // Pixels are given bit 15, for the comparison in Parts. Times 16 it vanishes, differences of rows do not contain
    // it, and only the low bytes of results are stored.
    KPR_INLINE static Vec<Kpr16s> entered(Vec<Kpr16s> b) { return b | signBit(); }
    KPR_INLINE static Vec<Kpr16s> left(Vec<Kpr16s> result) { return result & broadcast<Kpr16s>(0xff); }
    KPR_INLINE Vec<Kpr16s> operator()(Vec<Kpr16s> x, Vec<Kpr16s> b, All, Bits64) const {
        const Parts parts(*this, x, b);
        return select<Kpr16s>(parts.up, parts.floor + broadcast<Kpr16s>(1), parts.floor);
    }
    // Columns outside `nearest` are truncated: one more where remainder and d * b reach 4096 together, one less where
    // they are below 0.
    KPR_INLINE Vec<Kpr16s> operator()(Vec<Kpr16s> x, Vec<Kpr16s> b, Lanes nearest, Bits64 pixels) const {
        const auto lanes = static_cast<Mask<Kpr16s>>(gatherBits(nearest.bits, pixels));
        const Parts parts(*this, x, b);
        const auto rest = as<Kpr16u>(parts.rest), less = as<Kpr16u>(parts.less16db);
        const Mask<Kpr16s> out = d_ < 0 ? n0::less(rest, less) : n0::less(less - broadcast<Kpr16u>(1), rest);
        const Vec<Kpr16s> truncated =
            select<Kpr16s>(out, parts.floor + broadcast(static_cast<Kpr16s>(d_ < 0 ? -1 : 1)), parts.floor);
        return select<Kpr16s>(parts.up & lanes, parts.floor + broadcast<Kpr16s>(1),
                              select<Kpr16s>(lanes, parts.floor, truncated));
    }

  private:
    KPR_INLINE static Vec<Kpr16s> signBit() { return broadcast<Kpr16s>(INT16_MIN); }

    struct Parts {
        Vec<Kpr16s> rest, floor, less16db;
        Mask<Kpr16s> up;

        KPR_INLINE Parts(const EvenRounding& by, Vec<Kpr16s> x, Vec<Kpr16s> b)
            : rest(x * by.times16_), floor(b + mulHigh(x, by.times16_)), less16db(b * by.less16d_) {
            // remainder + d * b > 2048 as a comparison of signed lanes: rest - 32768 > -16 * d * b. Bit 0, which is
            // free in rest, is that of the result, so that a tie counts as more where the result is odd; bit 15 of the
            // result is set and so subtracts the 32768.
            constexpr int firstUnlessBoth = 0x78;  // a ^ (b & c)
            const Vec<Kpr16s> n = combine<firstUnlessBoth>(rest, floor, broadcast<Kpr16s>(INT16_MIN + 1));
            up = n0::less(less16db, n);
        }
    };

    Vec<Kpr16s> times16_, less16d_;
    int d_;
};

template <int channels, typename Rounding>
class ThreeTaps {
  public:
    static constexpr int kRadius = 1;
    struct Row {
        Words b;
        Words rise = {zero<Kpr16s>(), zero<Kpr16s>()};  // from the row above; down the columns x is a difference of two
    };

    ThreeTaps(int k, int d) : rounding_(k, d) {}

    template <typename Part, typename Nearest>
    KPR_INLINE Row across(Part part, Nearest nearest, const Kpr8u* src) const {
        const auto [b, x] = neighbours<channels>(part, src);
        return {Words{rounding_(x.first, Rounding::entered(b.first), nearest, kFirst<channels>),
                      rounding_(x.second, Rounding::entered(b.second), nearest, ~kFirst<channels>)}};
    }
    KPR_INLINE Row outside(const Kpr8u* src) const {
        const Words b = wordsOf<channels>(load(src, All{}));
        return {Words{Rounding::entered(b.first), Rounding::entered(b.second)}};
    }
    KPR_INLINE void follow(const Row& above, Row& row) const {
        row.rise = {asMade(row.b.first - above.b.first), asMade(row.b.second - above.b.second)};
    }
    template <typename At>
    KPR_INLINE Vec<Kpr8u> down(At row) const {
        const Row &b = row(Turn<1>{}), &c = row(Turn<2>{});
        const Words result = {rounding_(c.rise.first - b.rise.first, b.b.first, All{}, 0),
                              rounding_(c.rise.second - b.rise.second, b.b.second, All{}, 0)};
        if constexpr (channels == 1) return bytesOf<1>(result);
        return bytesOf<channels>({Rounding::left(result.first), Rounding::left(result.second)});
    }

  private:
    Rounding rounding_;
};

// The taps 1 2 1, which are k = 1024 with d 0 or, of most sigmas, 1: a + 2b + c in quarters, of which d * b decides the
// ties alone. All in bytes: with h the mean of a and c rounded down, and e the bit that this dropped, the sum is
// 2 * (h + b) + e, a tie where e is 0 and h + b is odd. Where d is 1 a tie is rounded up unless b is 0, which is rare
// enough to be looked for.
template <int channels>
class MeanTaps {
  public:
    static constexpr int kRadius = 1;
    using Row = Vec<Kpr8u>;

    MeanTaps(int /*k*/, int d) : lastTied_(broadcast(static_cast<Kpr8u>(d == 0 ? 255 : 0))) {}

    static bool serves(int k, int d) { return k == 1024 && (d == 0 || d == 1); }

    template <typename Part, typename Nearest>
    KPR_INLINE Row across(Part part, Nearest nearest, const Kpr8u* src) const {
        return mean(loadOnce(src, part), loadOnce(src + channels, part), load(src + Kpr64s{2} * channels, part),
                    nearest);
    }
    KPR_INLINE Row outside(const Kpr8u* src) const { return load(src, All{}); }
    template <typename At>
    KPR_INLINE Vec<Kpr8u> down(At row) const {
        return mean(row(Turn<0>{}), row(Turn<1>{}), row(Turn<2>{}), All{});
    }

  private:
    using V = Vec<Kpr8u>;

    template <typename Nearest>
    KPR_INLINE V mean(V a, V b, V c, Nearest nearest) const {
        constexpr int different = 0x28;  // (a ^ b) & c
        const V one = broadcast<Kpr8u>(1);
        const V e = combine<different>(a, c, one);
        const V h = average(a, c) - e;
        const V up = average(h, b);
        V nearestEven = up;
        const Mask<Kpr8u> mayTie = atMost(b, lastTied_);
        if (mayTie != 0) [[unlikely]] {
            constexpr int tie = 0x0f & (0xcc ^ 0xaa), all = 0x80;  // ~a & (b ^ c), a & b & c
            nearestEven = up - keep<Kpr8u>(mayTie, combine<all>(combine<tie>(e, h, b), up, one));
        }
        return merge(nearest, nearestEven, up - combine<different>(h, b, one));
    }

    V lastTied_;
};

}  // namespace n0::filter
