// What edges, corners and colours ask of vectors beyond the rest.
#pragma once

#include "primitives/simd.h"

namespace n0 {

// The distance from zero, 32768 that of -32768.
KPR_INLINE Vec<Kpr16u> magnitude(Vec<Kpr16s> v) { return vec<Kpr16u>(_mm512_abs_epi16(bits(v))); }

// a + b, at most 65535.
KPR_INLINE Vec<Kpr16u> addSaturated(Vec<Kpr16u> a, Vec<Kpr16u> b) {
    return vec<Kpr16u>(_mm512_adds_epu16(bits(a), bits(b)));
}

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
    const __m512i turns = _mm512_add_epi32(
        _mm512_setr_epi32(0, 16, 1, 17, 2, 18, 3, 19, 4, 20, 5, 21, 6, 22, 7, 23), _mm512_set1_epi32(from));
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

// The 32-bit sums that `sumPairs` made of the lower and the upper interleaving, in the order of the columns.
struct Ordered {
    Vec<Kpr32s> first, second;
};
KPR_INLINE Ordered inOrder(Vec<Kpr32s> lower, Vec<Kpr32s> upper) {
    const auto first = laneConstant<Kpr32s>([](int i) { return i / 8 * 4 + i % 4 + i / 4 % 2 * 16; });
    return {permute(lower, upper, first), permute(lower, upper, first + broadcast<Kpr32s>(8))};
}

}  // namespace n0
