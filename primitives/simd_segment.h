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

// Writes `base` + the place of each set bit, in their order, and gives how many there are. Nothing is written behind them.
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

}  // namespace n0
