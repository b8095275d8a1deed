// Sums along the lanes, gathers, lanes of doubles and of 64-bit integers: what integral images, their windows and
// cascades need beyond the common vector layer.
#pragma once

#include "primitives/simd.h"

namespace n0 {

// ---- along the lanes

// Lane i is lane i - lanes of v, the first ones zero.
template <int lanes, typename T>
KPR_INLINE Vec<T> lanesUp(Vec<T> v) {
    static_assert(sizeof(T) == 4);
    return vec<T>(_mm512_alignr_epi32(bits(v), _mm512_setzero_si512(), 16 - lanes));
}

// Lane i is the sum of the lanes 0 to i.
template <typename T>
KPR_INLINE Vec<T> sumsUpTo(Vec<T> v) {
    static_assert(std::is_integral_v<T>);  // of floats the order would matter
    v = v + lanesUp<1>(v);
    v = v + lanesUp<2>(v);
    v = v + lanesUp<4>(v);
    return v + lanesUp<8>(v);
}

// The same within each eight lanes, of floats: each lane plus the one 1 before it, then plus the one 2 before it, both
// within four lanes, then the lower four's total added to the upper four.
KPR_INLINE Vec<Kpr32f> sumsUpToInEights(Vec<Kpr32f> v) {
    v = v + vec(_mm512_castsi512_ps(_mm512_bslli_epi128(bits(v), 4)));
    v = v + vec(_mm512_castsi512_ps(_mm512_bslli_epi128(bits(v), 8)));
    const __m512i lowerTotal = _mm512_set_epi32(11, 11, 11, 11, 0, 0, 0, 0, 3, 3, 3, 3, 0, 0, 0, 0);
    return v + vec(_mm512_maskz_permutexvar_ps(0xf0f0, lowerTotal, ps(v)));
}

// One lane in all.
template <int lane, typename T>
KPR_INLINE Vec<T> spread(Vec<T> v) {
    static_assert(sizeof(T) == 4);
    return vec<T>(_mm512_permutexvar_epi32(_mm512_set1_epi32(lane), bits(v)));
}
template <int lane>
KPR_INLINE Vec<Kpr32f> spread(Vec<Kpr32f> v) {
    return as<Kpr32f>(spread<lane>(as<Kpr32s>(v)));
}

// The 16 bytes at `src`, four times.
KPR_INLINE Vec<Kpr8u> repeat16(const Kpr8u* src) {
    return vec<Kpr8u>(_mm512_broadcast_i32x4(_mm_loadu_si128(reinterpret_cast<const __m128i*>(src))));
}

// ---- doubles

// Eight of the sixteen lanes, the lower or the upper ones.
template <int which>
KPR_INLINE Vec<Kpr64f> half(Vec<Kpr32s> v) {
    if constexpr (which == 0) return vec(_mm512_cvtepi32_pd(_mm512_castsi512_si256(bits(v))));
    if constexpr (which == 1) return vec(_mm512_cvtepi32_pd(_mm512_extracti32x8_epi32(bits(v), 1)));
}
template <int which>
KPR_INLINE Vec<Kpr64f> half(Vec<unsigned> v) {
    if constexpr (which == 0) return vec(_mm512_cvtepu32_pd(_mm512_castsi512_si256(bits(v))));
    if constexpr (which == 1) return vec(_mm512_cvtepu32_pd(_mm512_extracti32x8_epi32(bits(v), 1)));
}

// Each lane rounded to single precision.
KPR_INLINE Vec<Kpr32f> toFloat(Vec<Kpr64f> lower, Vec<Kpr64f> upper) {
    return vec(_mm512_insertf32x8(_mm512_castps256_ps512(_mm512_cvtpd_ps(pd(lower))), _mm512_cvtpd_ps(pd(upper)), 1));
}

// -(a * b) + c, rounded once.
KPR_INLINE Vec<Kpr64f> fmaNegated(Vec<Kpr64f> a, Vec<Kpr64f> b, Vec<Kpr64f> c) {
    return vec(_mm512_fnmadd_pd(pd(a), pd(b), pd(c)));
}
KPR_INLINE Vec<Kpr32f> fmaNegated(Vec<Kpr32f> a, Vec<Kpr32f> b, Vec<Kpr32f> c) {
    return vec(_mm512_fnmadd_ps(ps(a), ps(b), ps(c)));
}

// ---- 64-bit integers

// The even and the odd lanes of 32-bit vectors, widened.
struct EvenOdd {
    Vec<Kpr64s> even = zero<Kpr64s>();
    Vec<Kpr64s> odd = zero<Kpr64s>();
};

KPR_INLINE EvenOdd multiplyWide(Vec<Kpr32s> a, Vec<Kpr32s> b) {
    return {vec<Kpr64s>(_mm512_mul_epi32(bits(a), bits(b))),
            vec<Kpr64s>(_mm512_mul_epi32(_mm512_srli_epi64(bits(a), 32), _mm512_srli_epi64(bits(b), 32)))};
}

KPR_INLINE EvenOdd operator+(EvenOdd a, EvenOdd b) { return {a.even + b.even, a.odd + b.odd}; }

// Moved by so many bits; nothing is left from 64 on.
KPR_INLINE EvenOdd operator<<(EvenOdd v, Kpr64s count) {
    const __m128i n = _mm_cvtsi64_si128(count);
    return {vec<Kpr64s>(_mm512_sll_epi64(bits(v.even), n)), vec<Kpr64s>(_mm512_sll_epi64(bits(v.odd), n))};
}

// v where a < b, else w.
KPR_INLINE Vec<Kpr32s> selectLess(EvenOdd a, EvenOdd b, Vec<Kpr32s> v, Vec<Kpr32s> w) {
    const auto choose = [=](Vec<Kpr64s> x, Vec<Kpr64s> y) __attribute__((always_inline)) {
        return _mm512_mask_blend_epi64(_mm512_cmplt_epi64_mask(bits(x), bits(y)), bits(w), bits(v));
    };
    return vec<Kpr32s>(_mm512_mask_blend_epi32(0xaaaa, choose(a.even, b.even), choose(a.odd, b.odd)));
}

// ---- gathers

// Lane i is the place of the i-th of the lower 32 bits that are set; of more than sixteen, the rest is left out.
KPR_INLINE Vec<Kpr32s> placesOf(Bits64 set) {
    const __m512i places = _mm512_set_epi32(15, 14, 13, 12, 11, 10, 9, 8, 7, 6, 5, 4, 3, 2, 1, 0);
    const auto lower = static_cast<__mmask16>(set), upper = static_cast<__mmask16>(set >> 16);
    const auto behind = static_cast<__mmask16>(~0U << _mm_popcnt_u32(lower));
    const __m512i second = _mm512_maskz_compress_epi32(upper, _mm512_add_epi32(places, _mm512_set1_epi32(16)));
    return vec<Kpr32s>(_mm512_mask_expand_epi32(_mm512_maskz_compress_epi32(lower, places), behind, second));
}

// Lane i is lane from[i] of those of a and, from 16 on, of b.
KPR_INLINE Vec<Kpr32f> permute(Vec<Kpr32f> a, Vec<Kpr32f> b, Vec<Kpr32s> from) {
    return vec(_mm512_permutex2var_ps(ps(a), bits(from), ps(b)));
}

// Lane i is src[index[i]].
KPR_INLINE Vec<Kpr32s> gather(const Kpr32s* src, Vec<Kpr32s> index) {
    return vec<Kpr32s>(_mm512_i32gather_epi32(bits(index), src, 4));
}
KPR_INLINE Vec<Kpr32f> gather(const Kpr32f* src, Vec<Kpr32s> index) {
    return vec(_mm512_i32gather_ps(bits(index), src, 4));
}

// What a part of sixteen lanes has among the upper eight.
KPR_INLINE All upperHalf(All part) { return part; }
KPR_INLINE Lanes upperHalf(Lanes part) { return {part.bits >> 8}; }

}  // namespace n0
