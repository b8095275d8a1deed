// What fills and floods ask of a row or of the surroundings of a pixel.
#pragma once

#include "primitives/simd.h"

namespace n0 {

// As many of the lowest bits, 0 to 64.
KPR_INLINE Bits64 lowBits(Kpr64s count) { return First{count}.bits; }

// Writes `base` + the place of each set bit, in their order, and gives how many there are. Nothing is written behind
// them.
KPR_INLINE Kpr64s storePlaces(Kpr32s* dst, Bits64 set, Kpr64s base) {
    const auto places = laneConstant<Kpr32s>([](int i) { return i; });
    Kpr64s count = 0;
    for (Kpr64s first = 0; set != 0; first += 16, set >>= 16) {
        const auto lanes = static_cast<__mmask16>(set);
        const auto numbers = places + broadcast(static_cast<Kpr32s>(base + first));
        const Kpr64s some = _mm_popcnt_u64(lanes);
        store(dst + count, vec<Kpr32s>(_mm512_maskz_compress_epi32(lanes, bits(numbers))), First{some});
        count += some;
    }
    return count;
}

// ---- sixteen neighbouring pixels of a row, whose costs fill a vector

// The labels of sixteen pixels, of 8 or 16 bits.
template <typename T>
struct Sixteen {
    decltype(loadNarrow<16>(static_cast<const T*>(nullptr), All{})) raw;
};

template <typename T>
KPR_INLINE Sixteen<T> loadSixteen(const T* src, Lanes part) {
    return {loadNarrow<16>(src, part)};
}

// Those of some lanes, of the others what `others` has. Nothing else is read.
KPR_INLINE Sixteen<Kpr8u> loadSixteen(const Kpr8u* src, Mask<Kpr32s> lanes, Sixteen<Kpr8u> others) {
    return {_mm_mask_loadu_epi8(others.raw, lanes, src)};
}
KPR_INLINE Sixteen<Kpr16u> loadSixteen(const Kpr16u* src, Mask<Kpr32s> lanes, Sixteen<Kpr16u> others) {
    return {_mm256_mask_loadu_epi16(others.raw, lanes, src)};
}

KPR_INLINE Vec<Kpr32s> widen(Sixteen<Kpr8u> v) { return vec<Kpr32s>(_mm512_cvtepu8_epi32(v.raw)); }
KPR_INLINE Vec<Kpr32s> widen(Sixteen<Kpr16u> v) { return vec<Kpr32s>(_mm512_cvtepu16_epi32(v.raw)); }

// Lane i is the place of the last set bit from 0 to i; -1 where there is none.
KPR_INLINE Vec<Kpr32s> lastUpTo(Bits64 set) {
    const auto upTo = laneConstant<Kpr32s>([](int i) { return (2 << i) - 1; });
    const auto seen = upTo & broadcast(static_cast<Kpr32s>(set));
    return broadcast(Kpr32s{31}) - vec<Kpr32s>(_mm512_lzcnt_epi32(bits(seen)));
}

// Lane i is the place of the first set bit from i to 15; -1 where there is none.
KPR_INLINE Vec<Kpr32s> firstFrom(Bits64 set) {
    const auto from = laneConstant<Kpr32s>([](int i) { return 0xffff & -(1 << i); });
    const auto seen = from & broadcast(static_cast<Kpr32s>(set));
    const auto lowest = seen & (zero<Kpr32s>() - seen);
    return broadcast(Kpr32s{31}) - vec<Kpr32s>(_mm512_lzcnt_epi32(bits(lowest)));
}

// ---- the eight neighbours of a pixel, a byte each: left, right, above, below, upper left, upper right, lower left,
// lower right

struct Eight {
    __m128i raw;  // its lower half
};

// The columns beside a pixel that are looked at, of the row above, its own and the one below: bit 0 is the left one.
struct Sides {
    Bits64 above, own, below;
};
inline constexpr Sides kAllSides = {7, 7, 7};

// Of bytes, from a pointer to the left neighbour in each of three rows. Nothing else is read.
KPR_INLINE Eight neighbours(const Kpr8u* above, const Kpr8u* own, const Kpr8u* below, Sides sides) {
    const auto row = [](const Kpr8u* left, Bits64 lanes) {
        return _mm_maskz_loadu_epi8(static_cast<__mmask16>(lanes), left);
    };
    const __m128i upper = _mm_unpacklo_epi32(row(above, sides.above), row(own, sides.own));
    const __m128i all = _mm_unpacklo_epi64(upper, row(below, sides.below));
    return {_mm_shuffle_epi8(all, _mm_setr_epi8(4, 6, 1, 9, 0, 2, 8, 10, -1, -1, -1, -1, -1, -1, -1, -1))};
}

// The same where four bytes of each row may be read.
KPR_INLINE Eight neighbours(const Kpr8u* above, const Kpr8u* own, const Kpr8u* below) {
    const __m128i upper = _mm_unpacklo_epi32(_mm_loadu_si32(above), _mm_loadu_si32(own));
    const __m128i all = _mm_unpacklo_epi64(upper, _mm_loadu_si32(below));
    return {_mm_shuffle_epi8(all, _mm_setr_epi8(4, 6, 1, 9, 0, 2, 8, 10, -1, -1, -1, -1, -1, -1, -1, -1))};
}

KPR_INLINE __m128i absDiffOfBytes(__m128i a, __m128i b) {
    return _mm_or_si128(_mm_subs_epu8(a, b), _mm_subs_epu8(b, a));
}

// By how much each neighbour differs from the pixel: of one channel, and the most of three.
template <int channels>
KPR_INLINE Eight stepsAround(const Kpr8u* above, const Kpr8u* own, const Kpr8u* below, Sides sides) {
    if constexpr (channels == 1) {
        const __m128i pixel = _mm_set1_epi8(static_cast<char>(own[1]));
        return {absDiffOfBytes(neighbours(above, own, below, sides).raw, pixel)};
    } else {
        const auto row = [](const Kpr8u* left, Bits64 columns) {  // the bits of columns, three times each
            const Bits64 lanes = (columns & 1) * 7 | (columns & 2) * 28 | (columns & 4) * 112;
            return _mm_maskz_loadu_epi8(static_cast<__mmask16>(lanes), left);
        };
        const __m128i middle = row(own, sides.own);
        const __m128i pixel = _mm_shuffle_epi8(middle, _mm_setr_epi8(3, 4, 5, 3, 4, 5, 3, 4, 5, 3, 4, 5, 3, 4, 5, 3));
        const auto most = [pixel](__m128i v) {  // of bytes 0 to 2, 3 to 5 and 6 to 8, in the first of them
            const __m128i d = absDiffOfBytes(v, pixel);
            return _mm_max_epu8(_mm_max_epu8(d, _mm_srli_si128(d, 1)), _mm_srli_si128(d, 2));
        };
        const __m128i a = most(row(above, sides.above)), b = most(middle), c = most(row(below, sides.below));
        constexpr char none = -1;
        const __m128i fromA = _mm_shuffle_epi8(
            a, _mm_setr_epi8(none, none, 3, none, 0, 6, none, none, none, none, none, none, none, none, none, none));
        const __m128i fromB = _mm_shuffle_epi8(
            b, _mm_setr_epi8(0, 6, none, none, none, none, none, none, none, none, none, none, none, none, none, none));
        const __m128i fromC = _mm_shuffle_epi8(
            c, _mm_setr_epi8(none, none, none, 3, none, none, 0, 6, none, none, none, none, none, none, none, none));
        return {_mm_or_si128(_mm_or_si128(fromA, fromB), fromC)};
    }
}

// One bit a neighbour, the lowest for the left one.
KPR_INLINE Bits64 less(Eight a, Eight b) { return _mm_cmplt_epu8_mask(a.raw, b.raw) & 0xff; }
KPR_INLINE Bits64 equal(Eight a, Kpr8u b) {
    return _mm_cmpeq_epi8_mask(a.raw, _mm_set1_epi8(static_cast<char>(b))) & 0xff;
}

// The first one in the lowest byte.
KPR_INLINE Bits64 word(Eight v) { return static_cast<Bits64>(_mm_cvtsi128_si64(v.raw)); }

}  // namespace n0
