// What is done to vectors lane by lane, and sums into wider lanes.
#pragma once

#include "primitives/simd_vector.h"

namespace n0 {

// ---- arithmetic, lane by lane

// The unsigned element of T's size: integer lanes are added and multiplied in it, so that they wrap.
template <typename T>
using Wrapping =
    std::conditional_t<std::is_floating_point_v<T>, T,
                       std::conditional_t<sizeof(T) == 1, Kpr8u,
                                          std::conditional_t<sizeof(T) == 2, Kpr16u,
                                                             std::conditional_t<sizeof(T) == 4, unsigned, Bits64>>>>;

template <typename T>
KPR_INLINE Vec<T> operator+(Vec<T> a, Vec<T> b) {
    return as<T>(Vec<Wrapping<T>>{as<Wrapping<T>>(a).raw + as<Wrapping<T>>(b).raw});
}
template <typename T>
KPR_INLINE Vec<T> operator-(Vec<T> a, Vec<T> b) {
    return as<T>(Vec<Wrapping<T>>{as<Wrapping<T>>(a).raw - as<Wrapping<T>>(b).raw});
}
template <typename T>
KPR_INLINE Vec<T> operator*(Vec<T> a, Vec<T> b) {
    return as<T>(Vec<Wrapping<T>>{as<Wrapping<T>>(a).raw * as<Wrapping<T>>(b).raw});
}
template <typename T>
KPR_INLINE Vec<T> operator/(Vec<T> a, Vec<T> b) {
    static_assert(std::is_floating_point_v<T>);
    return {a.raw / b.raw};
}
template <typename T>
KPR_INLINE Vec<T> operator&(Vec<T> a, Vec<T> b) {
    return vec<T>(_mm512_and_si512(bits(a), bits(b)));
}
template <typename T>
KPR_INLINE Vec<T> operator|(Vec<T> a, Vec<T> b) {
    return vec<T>(_mm512_or_si512(bits(a), bits(b)));
}

// a + b, the nearest value of T's range.
template <typename T>
KPR_INLINE Vec<T> addSaturated(Vec<T> a, Vec<T> b) {
    if constexpr (std::is_same_v<T, Kpr8u>) return vec<T>(_mm512_adds_epu8(bits(a), bits(b)));
    if constexpr (std::is_same_v<T, Kpr16u>) return vec<T>(_mm512_adds_epu16(bits(a), bits(b)));
}

// a - b, of integers the nearest value of T's range.
template <typename T>
KPR_INLINE Vec<T> subtractSaturated(Vec<T> a, Vec<T> b) {
    if constexpr (std::is_same_v<T, Kpr8u>) return vec<T>(_mm512_subs_epu8(bits(a), bits(b)));
    if constexpr (std::is_same_v<T, Kpr16u>) return vec<T>(_mm512_subs_epu16(bits(a), bits(b)));
    if constexpr (std::is_same_v<T, Kpr16s>) return vec<T>(_mm512_subs_epi16(bits(a), bits(b)));
    if constexpr (std::is_floating_point_v<T>) return a - b;
}

// Integer lanes of up to 4 bytes moved by 0 to 31 bits, which may be all they have; those of a signed type keep their
// sign on the way right.
template <typename T>
KPR_INLINE Vec<T> operator<<(Vec<T> v, int count) {
    static_assert(std::is_integral_v<T> && sizeof(T) <= 4);
    const __m128i n = _mm_cvtsi32_si128(count);
    if constexpr (sizeof(T) == 4) return vec<T>(_mm512_sll_epi32(bits(v), n));
    if constexpr (sizeof(T) == 2) return vec<T>(_mm512_sll_epi16(bits(v), n));
    if constexpr (sizeof(T) == 1) {  // in pairs, without what crossed over from the neighbour
        return vec<T>(_mm512_sll_epi16(bits(v), n)) & broadcast(static_cast<T>(Bits64{0xff} << count));
    }
}
template <typename T>
KPR_INLINE Vec<T> operator>>(Vec<T> v, int count) {
    static_assert(std::is_unsigned_v<T> ? sizeof(T) <= 4 : sizeof(T) == 4);
    const __m128i n = _mm_cvtsi32_si128(count);
    if constexpr (std::is_signed_v<T>) return vec<T>(_mm512_sra_epi32(bits(v), n));
    if constexpr (std::is_unsigned_v<T> && sizeof(T) == 4) return vec<T>(_mm512_srl_epi32(bits(v), n));
    if constexpr (sizeof(T) == 2) return vec<T>(_mm512_srl_epi16(bits(v), n));
    if constexpr (sizeof(T) == 1) {
        return vec<T>(_mm512_srl_epi16(bits(v), n)) & broadcast(static_cast<T>(0xff >> count));
    }
}

template <typename T>
KPR_INLINE Vec<T> operator^(Vec<T> a, Vec<T> b) {
    return vec<T>(_mm512_xor_si512(bits(a), bits(b)));
}

// a where a < b, else b: of floats, b where either is a NaN.
template <typename T>
KPR_INLINE Vec<T> min(Vec<T> a, Vec<T> b) {
    if constexpr (std::is_same_v<T, Kpr8u>) return vec<T>(_mm512_min_epu8(bits(a), bits(b)));
    if constexpr (std::is_same_v<T, Kpr16u>) return vec<T>(_mm512_min_epu16(bits(a), bits(b)));
    if constexpr (std::is_same_v<T, Kpr16s>) return vec<T>(_mm512_min_epi16(bits(a), bits(b)));
    if constexpr (std::is_same_v<T, Kpr32s>) return vec<T>(_mm512_min_epi32(bits(a), bits(b)));
    if constexpr (std::is_same_v<T, unsigned>) return vec<T>(_mm512_min_epu32(bits(a), bits(b)));
    if constexpr (std::is_same_v<T, Kpr32f>) return vec(_mm512_min_ps(ps(a), ps(b)));
    if constexpr (std::is_same_v<T, Kpr64f>) return vec(_mm512_min_pd(pd(a), pd(b)));
}

// a where a > b, else b: of floats, b where either is a NaN.
template <typename T>
KPR_INLINE Vec<T> max(Vec<T> a, Vec<T> b) {
    if constexpr (std::is_same_v<T, Kpr8u>) return vec<T>(_mm512_max_epu8(bits(a), bits(b)));
    if constexpr (std::is_same_v<T, Kpr16u>) return vec<T>(_mm512_max_epu16(bits(a), bits(b)));
    if constexpr (std::is_same_v<T, Kpr16s>) return vec<T>(_mm512_max_epi16(bits(a), bits(b)));
    if constexpr (std::is_same_v<T, Kpr32s>) return vec<T>(_mm512_max_epi32(bits(a), bits(b)));
    if constexpr (std::is_same_v<T, Kpr32f>) return vec(_mm512_max_ps(ps(a), ps(b)));
    if constexpr (std::is_same_v<T, Kpr64f>) return vec(_mm512_max_pd(pd(a), pd(b)));
}

// The larger or the smaller value. Of floats a number counts before a quiet NaN and +0 is larger than -0, so that the
// order in which many are joined does not matter. A signalling NaN takes the number with it: simd_status.h has what
// makes it quiet, and what tells that one was met.
template <typename T>
KPR_INLINE Vec<T> larger(Vec<T> a, Vec<T> b) {
    constexpr int maximum = 5;  // the greater of the two, its sign kept
    if constexpr (std::is_same_v<T, Kpr32f>) return vec(_mm512_range_ps(ps(a), ps(b), maximum));
    if constexpr (std::is_integral_v<T>) return max(a, b);
}
template <typename T>
KPR_INLINE Vec<T> smaller(Vec<T> a, Vec<T> b) {
    constexpr int minimum = 4;  // the lesser of the two, its sign kept
    if constexpr (std::is_same_v<T, Kpr32f>) return vec(_mm512_range_ps(ps(a), ps(b), minimum));
    if constexpr (std::is_integral_v<T>) return min(a, b);
}

// |a - b|: exact for unsigned integers, a difference rounded once and its sign cleared for floats.
template <typename T>
KPR_INLINE Vec<T> absDiff(Vec<T> a, Vec<T> b) {
    if constexpr (std::is_floating_point_v<T>)
        return vec(_mm512_abs_ps(ps(a - b)));
    else
        return max(a, b) - min(a, b);
}

// a * b + c, rounded once.
KPR_INLINE Vec<Kpr32f> fma(Vec<Kpr32f> a, Vec<Kpr32f> b, Vec<Kpr32f> c) {
    return vec(_mm512_fmadd_ps(ps(a), ps(b), ps(c)));
}

// ---- products of 16-bit lanes and their sums in 32 bits

// Lane i is a[2i] * b[2i] + a[2i+1] * b[2i+1]. Only where all four are -32768 does the sum exceed a signed lane: it is
// 2^31 then, which the lane holds if it is read as unsigned.
KPR_INLINE Vec<Kpr32s> sumPairs(Vec<Kpr16s> a, Vec<Kpr16s> b) {
    return vec<Kpr32s>(_mm512_madd_epi16(bits(a), bits(b)));
}

// Lane i is a[2i] * b[2i] + a[2i+1] * b[2i+1], the nearest value of 16 bits.
KPR_INLINE Vec<Kpr16s> sumPairs(Vec<Kpr8u> a, Vec<Kpr8s> b) {
    return vec<Kpr16s>(_mm512_maddubs_epi16(bits(a), bits(b)));
}

// The upper 16 bits of the product.
KPR_INLINE Vec<Kpr16u> mulHigh(Vec<Kpr16u> a, Vec<Kpr16u> b) {
    return vec<Kpr16u>(_mm512_mulhi_epu16(bits(a), bits(b)));
}
KPR_INLINE Vec<Kpr16s> mulHigh(Vec<Kpr16s> a, Vec<Kpr16s> b) {
    return vec<Kpr16s>(_mm512_mulhi_epi16(bits(a), bits(b)));
}

// a * b / 2^15 to nearest, ties up.
KPR_INLINE Vec<Kpr16s> mulRounded(Vec<Kpr16s> a, Vec<Kpr16s> b) {
    return vec<Kpr16s>(_mm512_mulhrs_epi16(bits(a), bits(b)));
}

// (a + b + 1) / 2, the sum being exact.
KPR_INLINE Vec<Kpr8u> average(Vec<Kpr8u> a, Vec<Kpr8u> b) { return vec<Kpr8u>(_mm512_avg_epu8(bits(a), bits(b))); }

// Correctly rounded; a NaN of what is below zero, and -0 of -0.
KPR_INLINE Vec<Kpr32f> sqrt(Vec<Kpr32f> v) { return vec(_mm512_sqrt_ps(ps(v))); }

KPR_INLINE Vec<Kpr32f> abs(Vec<Kpr32f> v) { return vec(_mm512_abs_ps(ps(v))); }

// v * 2^exponent, rounded once; an exponent may be any integer.
KPR_INLINE Vec<Kpr32f> timesPowerOf2(Vec<Kpr32f> v, Vec<Kpr32f> exponent) {
    return vec(_mm512_scalef_ps(ps(v), ps(exponent)));
}

// Lanes moved by so many bits; those of a signed type keep their sign on the way right.
template <int count, typename T>
KPR_INLINE Vec<T> shiftLeft(Vec<T> v) {
    static_assert(sizeof(T) == 2);
    return vec<T>(_mm512_slli_epi16(bits(v), count));
}
template <int count, typename T>
KPR_INLINE Vec<T> shiftRight(Vec<T> v) {
    if constexpr (std::is_same_v<T, Kpr16s>) return vec<T>(_mm512_srai_epi16(bits(v), count));
    if constexpr (std::is_same_v<T, Kpr64s> || std::is_same_v<T, Bits64>)
        return vec<T>(_mm512_srli_epi64(bits(v), count));
    if constexpr (std::is_same_v<T, Kpr16u>) return vec<T>(_mm512_srli_epi16(bits(v), count));
}

// Each lane moved by as many bits as the same lane of the counts says; nothing is left from 16 on.
KPR_INLINE Vec<Kpr16u> operator<<(Vec<Kpr16u> v, Vec<Kpr16u> counts) {
    return vec<Kpr16u>(_mm512_sllv_epi16(bits(v), bits(counts)));
}
KPR_INLINE Vec<Kpr16u> operator>>(Vec<Kpr16u> v, Vec<Kpr16u> counts) {
    return vec<Kpr16u>(_mm512_srlv_epi16(bits(v), bits(counts)));
}

// Each lane's bits moved up by as many as the same lane of the counts says, those that fall out coming in below.
KPR_INLINE Vec<Kpr32s> rotateBits(Vec<Kpr32s> v, Vec<Kpr32s> counts) {
    return vec<Kpr32s>(_mm512_rolv_epi32(bits(v), bits(counts)));
}

// Any function of three bits, bit by bit. `table` is the function's value for a = 0xf0, b = 0xcc, c = 0xaa: its truth
// table, eight bits at once.
template <int table, typename T>
KPR_INLINE Vec<T> combine(Vec<T> a, Vec<T> b, Vec<T> c) {
    return vec<T>(_mm512_ternarylogic_epi32(bits(a), bits(b), bits(c), table));
}

// ---- sums into wider lanes

// Of eight neighbouring bytes each.
KPR_INLINE Vec<Kpr64s> sumOfBytes(Vec<Kpr8u> v) {
    return vec<Kpr64s>(_mm512_sad_epu8(bits(v), _mm512_setzero_si512()));
}

// The two unsigned lanes in each place of a 64-bit lane.
KPR_INLINE Vec<Kpr64s> sumPairs(Vec<Kpr32s> v) {
    const auto pairs = as<Kpr64s>(v);
    return (pairs & broadcast<Kpr64s>(0xffffffff)) + shiftRight<32>(pairs);
}

// Eight of the sixteen lanes, the lower or the upper ones.
template <int which>
KPR_INLINE Vec<Kpr64f> half(Vec<Kpr32f> v) {
    if constexpr (which == 0) return vec(_mm512_cvtps_pd(_mm512_castps512_ps256(ps(v))));
    if constexpr (which == 1) return vec(_mm512_cvtps_pd(_mm512_extractf32x8_ps(ps(v), 1)));
}

}  // namespace n0
