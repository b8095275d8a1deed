// What fills and floods ask of a row or of the surroundings of a pixel.
#pragma once

#include "primitives/simd.h"

namespace n0 {

// Where a <= b: of floats, false where either is a NaN.
template <typename T>
KPR_INLINE Mask<T> notAbove(Vec<T> a, Vec<T> b) {
    if constexpr (std::is_same_v<T, Kpr8u>) return _mm512_cmple_epu8_mask(bits(a), bits(b));
    if constexpr (std::is_same_v<T, Kpr16u>) return _mm512_cmple_epu16_mask(bits(a), bits(b));
    if constexpr (std::is_same_v<T, Kpr16s>) return _mm512_cmple_epi16_mask(bits(a), bits(b));
    if constexpr (std::is_same_v<T, Kpr32s>) return _mm512_cmple_epi32_mask(bits(a), bits(b));
    if constexpr (std::is_same_v<T, Kpr32f>) return _mm512_cmp_ps_mask(ps(a), ps(b), _CMP_LE_OQ);
}

// As many of the lowest bits, 0 to 64.
KPR_INLINE Bits64 lowBits(Kpr64s count) { return First{count}.bits; }

}  // namespace n0
