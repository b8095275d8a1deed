// What edges, corners and colours ask of vectors beyond the rest.
#pragma once

#include <utility>

#include "primitives/simd.h"

namespace n0 {

// The distance from zero, 32768 that of -32768.
KPR_INLINE Vec<Kpr16u> magnitude(Vec<Kpr16s> v) { return vec<Kpr16u>(_mm512_abs_epi16(bits(v))); }

// Where the sign bit is set.
KPR_INLINE Mask<Kpr16s> signs(Vec<Kpr16s> v) { return _mm512_movepi16_mask(bits(v)); }

// Lanes of 64 bits or of 8 moved by so many bits.
template <int count, typename T>
KPR_INLINE Vec<T> shiftedUp(Vec<T> v) {
    if constexpr (sizeof(T) == 8) return vec<T>(_mm512_slli_epi64(bits(v), count));
    if constexpr (sizeof(T) == 1) return v << count;
}
template <int count, typename T>
KPR_INLINE Vec<T> shiftedDown(Vec<T> v) {
    if constexpr (sizeof(T) == 8) return vec<T>(_mm512_srli_epi64(bits(v), count));
    if constexpr (sizeof(T) == 1) return v >> count;
}

// The bits of a that b does not have.
template <typename T>
KPR_INLINE Vec<T> andNot(Vec<T> a, Vec<T> b) {
    return vec<T>(_mm512_andnot_si512(bits(b), bits(a)));
}

// Where v is not zero.
template <typename T>
KPR_INLINE Mask<T> nonzero(Vec<T> v) {
    if constexpr (sizeof(T) == 1) return _mm512_test_epi8_mask(bits(v), bits(v));
    if constexpr (sizeof(T) == 8) return _mm512_test_epi64_mask(bits(v), bits(v));
    if constexpr (sizeof(T) == 2) return _mm512_test_epi16_mask(bits(v), bits(v));
    if constexpr (sizeof(T) == 4) return _mm512_test_epi32_mask(bits(v), bits(v));
}

// The lower or upper 16 lanes of v, widened.
template <int which, typename T>
KPR_INLINE Vec<Kpr32s> widened(Vec<T> v) {
    static_assert(sizeof(T) == 2);
    __m256i part;
    if constexpr (which == 0) part = _mm512_castsi512_si256(bits(v));
    if constexpr (which == 1) part = _mm512_extracti64x4_epi64(bits(v), 1);
    if constexpr (std::is_signed_v<T>) return vec<Kpr32s>(_mm512_cvtepi16_epi32(part));
    if constexpr (std::is_unsigned_v<T>) return vec<Kpr32s>(_mm512_cvtepu16_epi32(part));
}

// v + 1 where the mask is set.
KPR_INLINE Vec<Kpr32s> addOneWhere(Mask<Kpr32s> where, Vec<Kpr32s> v) {
    return vec<Kpr32s>(_mm512_mask_add_epi32(bits(v), where, bits(v), _mm512_set1_epi32(1)));
}
KPR_INLINE Vec<Kpr16u> addOneWhere(Mask<Kpr16u> where, Vec<Kpr16u> v) {
    return vec<Kpr16u>(_mm512_mask_add_epi16(bits(v), where, bits(v), _mm512_set1_epi16(1)));
}

// v - 1 where the mask is set, of unsigned lanes no less than 0.
KPR_INLINE Vec<Kpr16u> oneLessWhere(Mask<Kpr16u> where, Vec<Kpr16u> v) {
    return vec<Kpr16u>(_mm512_mask_subs_epu16(bits(v), where, bits(v), _mm512_set1_epi16(1)));
}
KPR_INLINE Vec<Kpr32s> oneLessWhere(Mask<Kpr32s> where, Vec<Kpr32s> v) {
    return vec<Kpr32s>(_mm512_mask_sub_epi32(bits(v), where, bits(v), _mm512_set1_epi32(1)));
}

// c - a * b, rounded once.
KPR_INLINE Vec<Kpr32f> minusProduct(Vec<Kpr32f> a, Vec<Kpr32f> b, Vec<Kpr32f> c) {
    return vec(_mm512_fnmadd_ps(ps(a), ps(b), ps(c)));
}

// The first or second eight lanes of a and b in turn.
template <int which>
KPR_INLINE Vec<Kpr64f> pairsOf(Vec<Kpr32f> a, Vec<Kpr32f> b) {
    constexpr int from = which == 0 ? 0 : 8;
    const __m512i turns = _mm512_add_epi32(_mm512_setr_epi32(0, 16, 1, 17, 2, 18, 3, 19, 4, 20, 5, 21, 6, 22, 7, 23),
                                           _mm512_set1_epi32(from));
    return vec(_mm512_castps_pd(_mm512_permutex2var_ps(ps(a), turns, ps(b))));
}

// Three vectors whose lanes follow one another in turn: a0 b0 c0 a1 ..., of which `which` is the first, second or
// third.
template <int which>
KPR_INLINE Vec<Kpr64f> inTurn(Vec<Kpr64f> a, Vec<Kpr64f> b, Vec<Kpr64f> c) {
    // Of a and b first, what belongs to c is put in afterwards.
    const auto two = laneConstant<Bits64>([](int i) {
        const int lane = which * 8 + i;
        return lane % 3 == 2 ? 0 : lane / 3 + lane % 3 * 8;
    });
    const auto third = laneConstant<Bits64>([](int i) {
        const int lane = which * 8 + i;
        return lane % 3 == 2 ? 8 + lane / 3 : i;
    });
    const __m512d both = _mm512_permutex2var_pd(pd(a), bits(two), pd(b));
    return vec(_mm512_permutex2var_pd(both, bits(third), pd(c)));
}

// The lanes of both or of all, which are in the range of the result, in their order.
KPR_INLINE Vec<Kpr16u> narrowed(Vec<Kpr32s> first, Vec<Kpr32s> second) {
    return vec<Kpr16u>(_mm512_inserti64x4(_mm512_castsi256_si512(_mm512_cvtepi32_epi16(bits(first))),
                                          _mm512_cvtepi32_epi16(bits(second)), 1));
}

KPR_INLINE Vec<Kpr8u> narrowed(Vec<Kpr32s> a, Vec<Kpr32s> b, Vec<Kpr32s> c, Vec<Kpr32s> d) {
    const Vec<Kpr8u> fours = join(join<Kpr16u>(a, b), join<Kpr16u>(c, d));
    return as<Kpr8u>(permute(as<Kpr32s>(fours), laneConstant<Kpr32s>([](int i) { return i % 4 * 4 + i / 4; })));
}

// ---- pixels of three channels

// The elements of kLanes<T> pixels in the order of memory.
template <typename T>
struct Triple {
    Vec<T> first, second, third;
};
template <typename T>
KPR_INLINE Triple<T> loadPixels(const T* src, All part) {
    return {load(src, part), load(src + kLanes<T>, part), load(src + 2 * kLanes<T>, part)};
}
template <typename T>
KPR_INLINE Triple<T> loadPixels(const T* src, First part) {
    const Kpr64s elements = 3 * _mm_popcnt_u64(part.bits);
    const auto after = [=](Kpr64s count) { return First{elements > count ? elements - count : 0}; };
    return {load(src, after(0)), load(src + kLanes<T>, after(kLanes<T>)),
            load(src + 2 * kLanes<T>, after(2 * kLanes<T>))};
}

// One channel of the pixels.
template <int channel, typename T>
KPR_INLINE Vec<T> channelOf(const Triple<T>& pixels) {
    constexpr int lanes = kLanes<T>;
    using Index = std::conditional_t<sizeof(T) == 2, Kpr16u, Kpr32s>;
    const auto from = laneConstant<Index>([](int i) { return (3 * i + channel) % (2 * lanes); });
    constexpr Bits64 inThird = [] {
        Bits64 set = 0;
        for (int i = 0; i < lanes; ++i) set |= static_cast<Bits64>(3 * i + channel >= 2 * lanes) << i;
        return set;
    }();
    const __m512i a = bits(pixels.first), b = bits(pixels.second), c = bits(pixels.third), at = bits(from);
    if constexpr (sizeof(T) == 2)
        return vec<T>(
            _mm512_mask_permutexvar_epi16(_mm512_permutex2var_epi16(a, at, b), static_cast<__mmask32>(inThird), at, c));
    else
        return as<T>(vec<Kpr32s>(_mm512_mask_permutexvar_epi32(_mm512_permutex2var_epi32(a, at, b),
                                                               static_cast<__mmask16>(inThird), at, c)));
}

// The bytes of 64 pixels, 16 pixels to a lane of 16 bytes: their first 16 bytes, their second and their third.
KPR_INLINE Triple<Kpr8u> grouped(const Triple<Kpr8u>& v) {
    // Blocks of 16 bytes by their number modulo 3, each of a vector of its own, then in their order.
    const auto blocks = [](Vec<Kpr8u> a, Vec<Kpr8u> b, Vec<Kpr8u> c, unsigned fromB, unsigned fromC) {
        const __m512i two = _mm512_mask_blend_epi32(static_cast<__mmask16>(fromB), bits(a), bits(b));
        return _mm512_mask_blend_epi32(static_cast<__mmask16>(fromC), two, bits(c));
    };
    const __m512i first = blocks(v.first, v.second, v.third, 0x0f00, 0x00f0);   // blocks 0, 9, 6, 3
    const __m512i second = blocks(v.first, v.second, v.third, 0xf00f, 0x0f00);  // 4, 1, 10, 7
    const __m512i third = blocks(v.first, v.second, v.third, 0x00f0, 0xf00f);   // 8, 5, 2, 11
    return {vec<Kpr8u>(_mm512_shuffle_i32x4(first, first, 0x6c)),
            vec<Kpr8u>(_mm512_shuffle_i32x4(second, second, 0xb1)),
            vec<Kpr8u>(_mm512_shuffle_i32x4(third, third, 0xc6))};
}

// The bytes so many places further on; what follows the last is open.
template <int places>
KPR_INLINE Triple<Kpr8u> furtherOn(const Triple<Kpr8u>& v) {
    const auto join = [](Vec<Kpr8u> lower, Vec<Kpr8u> upper) {
        return vec<Kpr8u>(_mm512_alignr_epi8(bits(upper), bits(lower), places));
    };
    return {join(v.first, v.second), join(v.second, v.third), join(v.third, v.third)};
}

// Of bytes that are grouped so, those at which pixels begin, or the first of the pairs in which pixels begin.
template <bool pairs>
KPR_INLINE Vec<Kpr8u> pixelBytes(const Triple<Kpr8u>& v) {
    // 6 pixels begin in the first 16 bytes, 5 each in the second and the third.
    const auto taken = [](Vec<Kpr8u> bytes, auto which) {
        return permuteIn16(bytes, laneConstant<Kpr8u>([](int i) {
                               constexpr int block = decltype(which)::value;
                               const int begin = block == 0 ? 0 : 5 * block + 1, count = block == 0 ? 6 : 5;
                               const int pixel = i % 16 - begin, byte = 3 * pixel + 2 * block % 3;
                               return pixel < 0 || pixel >= count ? 0x80 : pairs ? byte & ~1 : byte;
                           }));
    };
    return combine<0xfe>(taken(v.first, std::integral_constant<int, 0>{}),
                         taken(v.second, std::integral_constant<int, 1>{}),
                         taken(v.third, std::integral_constant<int, 2>{}));
}

// Lane i is the sum of the squares of the bytes of pixel i; the pixels are the first 48 bytes.
KPR_INLINE Vec<Kpr32s> squaresOfPixels(Vec<Kpr8u> pixels) {
    const auto fours =
        permute(as<Kpr32s>(pixels), laneConstant<Kpr32s>([](int i) { return i % 4 == 3 ? 0 : i / 4 * 3 + i % 4; }));
    const auto two = permuteIn16(
        as<Kpr8u>(fours), laneConstant<Kpr8u>([](int i) { return i % 2 == 1 ? 0x80 : i % 16 / 4 * 3 + i % 4 / 2; }));
    const auto one = permuteIn16(as<Kpr8u>(fours),
                                 laneConstant<Kpr8u>([](int i) { return i % 4 == 0 ? i % 16 / 4 * 3 + 2 : 0x80; }));
    return sumPairs(as<Kpr16s>(two), as<Kpr16s>(two)) + sumPairs(as<Kpr16s>(one), as<Kpr16s>(one));
}

// The inverse root of what is above zero, off by up to 2^-14 of it: what is made of it must not show which.
KPR_INLINE Vec<Kpr32f> nearInverseRoot(Vec<Kpr32f> v) { return vec(_mm512_rsqrt14_ps(ps(v))); }

// Squares of what interleaveLower or interleaveUpper takes; `join` brings what is made of them back into order.
template <int which>
KPR_INLINE Vec<unsigned> squares(Vec<Kpr16u> v) {
    const Vec<Kpr16u> low = v * v, high = mulHigh(v, v);
    return as<unsigned>(which == 0 ? interleaveLower(low, high) : interleaveUpper(low, high));
}

// ---- sums

// The 32-bit sums that `sumPairs` made of the lower and the upper interleaving, in the order of the columns.
struct Ordered {
    Vec<Kpr32s> first, second;
};
KPR_INLINE Ordered inOrder(Vec<Kpr32s> lower, Vec<Kpr32s> upper) {
    const auto first = laneConstant<Kpr32s>([](int i) { return i / 8 * 4 + i % 4 + i / 4 % 2 * 16; });
    return {permute(lower, upper, first), permute(lower, upper, first + broadcast<Kpr32s>(8))};
}

}  // namespace n0
