// Pixels fetched from anywhere, and what is done with positions.
#pragma once

#include "primitives/simd.h"

namespace n0 {

// The four bytes at each offset from `base`, in bytes; zero, and nothing read, where the mask is clear.
KPR_INLINE Vec<Kpr32s> gather(Mask<Kpr32s> lanes, const void* base, Vec<Kpr32s> offsets) {
    return vec<Kpr32s>(_mm512_mask_i32gather_epi32(_mm512_setzero_si512(), lanes, bits(offsets), base, 1));
}

// Sixteen lanes of 64 bits.
struct Wide {
    Vec<Kpr64s> lower, upper;
};

// The eight bytes at each offset likewise.
KPR_INLINE Wide gatherWide(Mask<Kpr32s> lanes, const void* base, Vec<Kpr32s> offsets) {
    const __m512i none = _mm512_setzero_si512();
    const __m256i lower = _mm512_castsi512_si256(bits(offsets)), upper = _mm512_extracti64x4_epi64(bits(offsets), 1);
    return {vec<Kpr64s>(_mm512_mask_i32gather_epi64(none, static_cast<__mmask8>(lanes), lower, base, 1)),
            vec<Kpr64s>(_mm512_mask_i32gather_epi64(none, static_cast<__mmask8>(lanes >> 8), upper, base, 1))};
}

// Each lane moved right by as many bits as the counts say.
KPR_INLINE Wide operator>>(Wide v, Vec<Kpr32s> counts) {
    const __m512i c = bits(counts);
    const __m512i lower = _mm512_cvtepu32_epi64(_mm512_castsi512_si256(c));
    const __m512i upper = _mm512_cvtepu32_epi64(_mm512_extracti64x4_epi64(c, 1));
    return {vec<Kpr64s>(_mm512_srlv_epi64(bits(v.lower), lower)), vec<Kpr64s>(_mm512_srlv_epi64(bits(v.upper), upper))};
}
KPR_INLINE Vec<Kpr32s> shiftRightLogical(Vec<Kpr32s> v, Vec<Kpr32s> counts) {
    return vec<Kpr32s>(_mm512_srlv_epi32(bits(v), bits(counts)));
}

// The lower or the upper 32 bits of each.
KPR_INLINE Vec<Kpr32s> lowerHalves(Wide v) {
    const auto even = laneConstant<Kpr32s>([](int i) { return 2 * i; });
    return permute(as<Kpr32s>(v.lower), as<Kpr32s>(v.upper), even);
}
KPR_INLINE Vec<Kpr32s> upperHalves(Wide v) {
    const auto odd = laneConstant<Kpr32s>([](int i) { return 2 * i + 1; });
    return permute(as<Kpr32s>(v.lower), as<Kpr32s>(v.upper), odd);
}

// Toward negative infinity, and whether a value lies in a range, its ends included: a NaN does not.
KPR_INLINE Vec<Kpr32f> floor(Vec<Kpr32f> v) {
    return vec(_mm512_roundscale_ps(ps(v), _MM_FROUND_TO_NEG_INF | _MM_FROUND_NO_EXC));
}
KPR_INLINE Mask<Kpr32f> within(Vec<Kpr32f> v, Vec<Kpr32f> low, Vec<Kpr32f> high) {
    return _mm512_mask_cmp_ps_mask(_mm512_cmp_ps_mask(ps(v), ps(low), _CMP_GE_OQ), ps(v), ps(high), _CMP_LE_OQ);
}

// The lanes of three vectors in turn: out[0] has the first sixteen.
template <typename T>
KPR_INLINE void interleaveThree(Vec<T> a, Vec<T> b, Vec<T> c, Vec<T>* out) {
    static_assert(sizeof(T) == 4);
    const auto place = [&]<int k>(std::integral_constant<int, k>) {
        const auto ab = laneConstant<Kpr32s>([](int i) { return (16 * k + i) / 3 + ((16 * k + i) % 3 == 1 ? 16 : 0); });
        const auto withC =
            laneConstant<Kpr32s>([](int i) { return (16 * k + i) % 3 == 2 ? 16 + (16 * k + i) / 3 : i; });
        out[k] = as<T>(permute(permute(as<Kpr32s>(a), as<Kpr32s>(b), ab), as<Kpr32s>(c), withC));
    };
    place(std::integral_constant<int, 0>{});
    place(std::integral_constant<int, 1>{});
    place(std::integral_constant<int, 2>{});
}

// Calls put(part, k) for three vectors that hold the elements of three channels in turn: the parts of them that belong
// to the pixels of `part`.
KPR_INLINE void eachOfThree(All part, int, auto put) {
    for (int k = 0; k < 3; ++k) put(part, k);
}
KPR_INLINE void eachOfThree(First part, int lanes, auto put) {
    const Kpr64s elements = 3 * _mm_popcnt_u64(part.bits);
    for (int k = 0; k < 3; ++k) put(First{elements > k * lanes ? elements - k * lanes : 0}, k);
}

}  // namespace n0
