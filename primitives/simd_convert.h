// Lanes of one type made from those of another, narrower ones in memory too.
#pragma once

#include "primitives/simd_arithmetic.h"

namespace n0 {

// To the nearest value of the other type, ties to even. What does not fit into an integer, and a NaN, becomes the
// least.
KPR_INLINE Vec<Kpr32f> toFloat(Vec<unsigned> v) { return vec(_mm512_cvtepu32_ps(bits(v))); }
KPR_INLINE Vec<Kpr32f> toFloat(Vec<Kpr32s> v) { return vec(_mm512_cvtepi32_ps(bits(v))); }
KPR_INLINE Vec<Kpr32s> toInteger(Vec<Kpr32f> v) { return vec<Kpr32s>(_mm512_cvtps_epi32(ps(v))); }
KPR_INLINE Vec<Kpr32s> truncate(Vec<Kpr32f> v) { return vec<Kpr32s>(_mm512_cvttps_epi32(ps(v))); }  // toward zero

// The lanes of a vector, widened, in an order of their own that `narrow` undoes.
struct Widened {
    Vec<Kpr32s> some;
    Vec<Kpr32s> others;
};

KPR_INLINE Widened multiplyWide(Vec<Kpr16s> a, Vec<Kpr16s> b) {
    const __m512i low = _mm512_mullo_epi16(bits(a), bits(b));
    const __m512i high = _mm512_mulhi_epi16(bits(a), bits(b));
    return {vec<Kpr32s>(_mm512_unpacklo_epi16(low, high)), vec<Kpr32s>(_mm512_unpackhi_epi16(low, high))};
}

// Each lane the nearest value of its new range.
KPR_INLINE Vec<Kpr16s> narrow(Widened v) { return vec<Kpr16s>(_mm512_packs_epi32(bits(v.some), bits(v.others))); }

// ---- narrow elements in the lanes of a wider type

// `lanes` elements of fewer than 64 bytes: in an __m128i up to 16 bytes, else in an __m256i.
template <int lanes, typename T>
KPR_INLINE auto loadNarrow(const T* src, All) {
    if constexpr (lanes * sizeof(T) == 8) return _mm_loadl_epi64(reinterpret_cast<const __m128i*>(src));
    if constexpr (lanes * sizeof(T) == 16) return _mm_loadu_si128(reinterpret_cast<const __m128i*>(src));
    if constexpr (lanes * sizeof(T) == 32) return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(src));
}

template <int lanes, typename T>
KPR_INLINE auto loadNarrow(const T* src, Lanes part) {
    if constexpr (lanes * sizeof(T) <= 16) {
        const auto mask = static_cast<__mmask16>(part.bits);
        if constexpr (sizeof(T) == 1) return _mm_maskz_loadu_epi8(mask, src);
        if constexpr (sizeof(T) == 2) return _mm_maskz_loadu_epi16(static_cast<__mmask8>(mask), src);
    } else {
        const auto mask = static_cast<__mmask32>(part.bits);
        if constexpr (sizeof(T) == 1) return _mm256_maskz_loadu_epi8(mask, src);
        if constexpr (sizeof(T) == 2) return _mm256_maskz_loadu_epi16(static_cast<__mmask16>(mask), src);
        if constexpr (sizeof(T) == 4) return _mm256_maskz_loadu_epi32(static_cast<__mmask8>(mask), src);
    }
}

template <int lanes, typename T, typename Narrow>
KPR_INLINE void storeNarrow(T* dst, Narrow v, All) {
    if constexpr (lanes * sizeof(T) == 8) _mm_storel_epi64(reinterpret_cast<__m128i*>(dst), v);
    if constexpr (lanes * sizeof(T) == 16) _mm_storeu_si128(reinterpret_cast<__m128i*>(dst), v);
    if constexpr (lanes * sizeof(T) == 32) _mm256_storeu_si256(reinterpret_cast<__m256i*>(dst), v);
}

template <int lanes, typename T, typename Narrow>
KPR_INLINE void storeNarrow(T* dst, Narrow v, Lanes part) {
    if constexpr (lanes * sizeof(T) <= 16) {
        const auto mask = static_cast<__mmask16>(part.bits);
        if constexpr (sizeof(T) == 1) _mm_mask_storeu_epi8(dst, mask, v);
        if constexpr (sizeof(T) == 2) _mm_mask_storeu_epi16(dst, static_cast<__mmask8>(mask), v);
    } else {
        const auto mask = static_cast<__mmask32>(part.bits);
        if constexpr (sizeof(T) == 1) _mm256_mask_storeu_epi8(dst, mask, v);
        if constexpr (sizeof(T) == 2) _mm256_mask_storeu_epi16(dst, static_cast<__mmask16>(mask), v);
        if constexpr (sizeof(T) == 4) _mm256_mask_storeu_epi32(dst, static_cast<__mmask8>(mask), v);
    }
}

// kLanes<To> elements of `src`, converted to To without loss.
template <typename To, typename From, typename Part>
KPR_INLINE Vec<To> loadAs(const From* src, Part part) {
    if constexpr (std::is_same_v<To, From>) {
        return load(src, part);
    } else if constexpr (std::is_same_v<To, Kpr32f>) {
        return vec(_mm512_cvtepi32_ps(bits(loadAs<Kpr32s>(src, part))));
    } else {
        const auto narrow = loadNarrow<kLanes<To>>(src, part);
        if constexpr (sizeof(To) == 2 && std::is_same_v<From, Kpr8u>) return vec<To>(_mm512_cvtepu8_epi16(narrow));
        if constexpr (sizeof(To) == 4 && std::is_same_v<From, Kpr8u>) return vec<To>(_mm512_cvtepu8_epi32(narrow));
        if constexpr (sizeof(To) == 4 && std::is_same_v<From, Kpr16u>) return vec<To>(_mm512_cvtepu16_epi32(narrow));
        if constexpr (sizeof(To) == 4 && std::is_same_v<From, Kpr16s>) return vec<To>(_mm512_cvtepi16_epi32(narrow));
    }
}

// The low 16 bits of each lane.
template <typename Part>
KPR_INLINE void storeLow(Kpr16s* dst, Vec<Kpr32s> v, Part part) {
    storeNarrow<kLanes<Kpr32s>>(dst, _mm512_cvtepi32_epi16(bits(v)), part);
}

// The low 8 bits of each lane.
template <typename Part>
KPR_INLINE void storeLow(Kpr8u* dst, Vec<Kpr16u> v, Part part) {
    storeNarrow<kLanes<Kpr16u>>(dst, _mm512_cvtepi16_epi8(bits(v)), part);
}

// kLanes<From> elements, each the nearest value of To's range: From is signed.
template <typename To, typename From, typename Part>
KPR_INLINE void storeAs(To* dst, Vec<From> v, Part part) {
    constexpr int lanes = kLanes<From>;
    const __m512i positive = bits(max(v, zero<From>()));
    if constexpr (std::is_same_v<From, To>) store(dst, v, part);
    if constexpr (std::is_same_v<From, Kpr16s> && std::is_same_v<To, Kpr8u>)
        storeNarrow<lanes>(dst, _mm512_cvtusepi16_epi8(positive), part);
    if constexpr (std::is_same_v<From, Kpr16s> && std::is_same_v<To, Kpr8s>)
        storeNarrow<lanes>(dst, _mm512_cvtsepi16_epi8(bits(v)), part);
    if constexpr (std::is_same_v<From, Kpr32s> && std::is_same_v<To, Kpr8u>)
        storeNarrow<lanes>(dst, _mm512_cvtusepi32_epi8(positive), part);
    if constexpr (std::is_same_v<From, Kpr32s> && std::is_same_v<To, Kpr16u>)
        storeNarrow<lanes>(dst, _mm512_cvtusepi32_epi16(positive), part);
    if constexpr (std::is_same_v<From, Kpr32s> && std::is_same_v<To, Kpr16s>)
        storeNarrow<lanes>(dst, _mm512_cvtsepi32_epi16(bits(v)), part);
}

}  // namespace n0
