// Comparisons, whose results are one bit a lane, and what is done with such bits.
#pragma once

#include "primitives/simd_convert.h"

namespace n0 {

// Where a < b: of floats, false where either is a NaN.
template <typename T>
KPR_INLINE Mask<T> less(Vec<T> a, Vec<T> b) {
    if constexpr (std::is_same_v<T, Kpr8u>) return _mm512_cmplt_epu8_mask(bits(a), bits(b));
    if constexpr (std::is_same_v<T, Kpr16u>) return _mm512_cmplt_epu16_mask(bits(a), bits(b));
    if constexpr (std::is_same_v<T, Kpr16s>) return _mm512_cmplt_epi16_mask(bits(a), bits(b));
    if constexpr (std::is_same_v<T, Kpr32s>) return _mm512_cmplt_epi32_mask(bits(a), bits(b));
    if constexpr (std::is_same_v<T, unsigned>) return _mm512_cmplt_epu32_mask(bits(a), bits(b));
    if constexpr (std::is_same_v<T, Kpr32f>) return _mm512_cmp_ps_mask(ps(a), ps(b), _CMP_LT_OQ);
}

// Where a <= b: of floats, false where either is a NaN.
template <typename T>
KPR_INLINE Mask<T> atMost(Vec<T> a, Vec<T> b) {
    if constexpr (std::is_same_v<T, Kpr8u>) return _mm512_cmple_epu8_mask(bits(a), bits(b));
    if constexpr (std::is_same_v<T, Kpr16u>) return _mm512_cmple_epu16_mask(bits(a), bits(b));
    if constexpr (std::is_same_v<T, Kpr16s>) return _mm512_cmple_epi16_mask(bits(a), bits(b));
    if constexpr (std::is_same_v<T, Kpr32s>) return _mm512_cmple_epi32_mask(bits(a), bits(b));
    if constexpr (std::is_same_v<T, unsigned>) return _mm512_cmple_epu32_mask(bits(a), bits(b));
    if constexpr (std::is_same_v<T, Kpr32f>) return _mm512_cmp_ps_mask(ps(a), ps(b), _CMP_LE_OQ);
}

// Where a == b: of floats, false where either is a NaN.
template <typename T>
KPR_INLINE Mask<T> equal(Vec<T> a, Vec<T> b) {
    if constexpr (std::is_integral_v<T> && sizeof(T) == 1) return _mm512_cmpeq_epi8_mask(bits(a), bits(b));
    if constexpr (std::is_integral_v<T> && sizeof(T) == 2) return _mm512_cmpeq_epi16_mask(bits(a), bits(b));
    if constexpr (std::is_integral_v<T> && sizeof(T) == 4) return _mm512_cmpeq_epi32_mask(bits(a), bits(b));
    if constexpr (std::is_same_v<T, Kpr32f>) return _mm512_cmp_ps_mask(ps(a), ps(b), _CMP_EQ_OQ);
}

// Where v has none of the bits, of all lanes or of some.
template <typename T>
KPR_INLINE Mask<T> noneOf(Vec<T> v, Vec<T> which) {
    static_assert(sizeof(T) == 2);
    return _mm512_testn_epi16_mask(bits(v), bits(which));
}
template <typename T>
KPR_INLINE Mask<T> noneOf(Mask<T> lanes, Vec<T> v, Vec<T> which) {
    static_assert(sizeof(T) == 2);
    return _mm512_mask_testn_epi16_mask(lanes, bits(v), bits(which));
}

// Where the sign bit is set: that of a zero or a NaN too.
KPR_INLINE Mask<Kpr32f> signs(Vec<Kpr32f> v) { return _mm512_movepi32_mask(bits(v)); }

// Where v is infinite or no number.
KPR_INLINE Mask<Kpr32f> notFinite(Vec<Kpr32f> v) {
    constexpr int quiet = 0x01, signalling = 0x80, above = 0x08, below = 0x10;
    return _mm512_fpclass_ps_mask(ps(v), quiet | signalling | above | below);
}

// Bit i of `bits` goes to the place of the i-th set bit of `where`, counted from the lowest; all other bits are 0.
KPR_INLINE Bits64 scatterBits(Bits64 bits, Bits64 where) { return _pdep_u64(bits, where); }

// The way back: bit i is that of v at the place of the i-th set bit of `where`.
KPR_INLINE Bits64 gatherBits(Bits64 v, Bits64 where) { return _pext_u64(v, where); }

// A lane of T for each byte of `src`, set where the byte is not zero.
template <typename T, typename Part>
KPR_INLINE Mask<T> loadMask(const Kpr8u* src, Part part) {
    if constexpr (sizeof(T) == 1) {
        const __m512i v = bits(load(src, part));
        return _mm512_test_epi8_mask(v, v);
    } else {
        const auto v = loadNarrow<kLanes<T>>(src, part);
        if constexpr (sizeof(T) == 2)
            return _mm256_test_epi8_mask(v, v);
        else
            return static_cast<Mask<T>>(_mm_test_epi8_mask(v, v));
    }
}

// Whether a > b in any lane; false where either is a NaN.
template <typename T>
KPR_INLINE bool anyGreater(Vec<T> a, Vec<T> b) {
    if constexpr (std::is_same_v<T, Kpr8u>) return _mm512_cmpgt_epu8_mask(bits(a), bits(b)) != 0;
    if constexpr (std::is_same_v<T, Kpr16u>) return _mm512_cmpgt_epu16_mask(bits(a), bits(b)) != 0;
    if constexpr (std::is_same_v<T, Kpr32f>) return _mm512_cmp_ps_mask(ps(a), ps(b), _CMP_GT_OQ) != 0;
    if constexpr (std::is_same_v<T, Kpr64f>) return _mm512_cmp_pd_mask(pd(a), pd(b), _CMP_GT_OQ) != 0;
}

// v where the mask is set, zero elsewhere.
template <typename T>
KPR_INLINE Vec<T> keep(Mask<T> mask, Vec<T> v) {
    if constexpr (sizeof(T) == 1) return vec<T>(_mm512_maskz_mov_epi8(mask, bits(v)));
    if constexpr (sizeof(T) == 2) return vec<T>(_mm512_maskz_mov_epi16(mask, bits(v)));
    if constexpr (sizeof(T) == 4) return vec<T>(_mm512_maskz_mov_epi32(mask, bits(v)));
    if constexpr (sizeof(T) == 8) return vec<T>(_mm512_maskz_mov_epi64(mask, bits(v)));
}

}  // namespace n0
