// Operations on vectors that the search for corners, peaks and lines adds.
#pragma once

#include "primitives/simd.h"

namespace n0 {

// Of the lanes of the mask, those where a < b.
KPR_INLINE Mask<Kpr8u> lessOf(Mask<Kpr8u> lanes, Vec<Kpr8u> a, Vec<Kpr8u> b) {
    return _mm512_mask_cmplt_epu8_mask(lanes, bits(a), bits(b));
}

// Stores the lanes of the mask one behind another; how many they are.
template <typename T>
KPR_INLINE Kpr64s storePacked(T* dst, Vec<T> v, Mask<T> lanes) {
    static_assert(sizeof(T) == 4);
    const Kpr64s count = _mm_popcnt_u64(lanes);
    store(dst, vec<T>(_mm512_maskz_compress_epi32(lanes, bits(v))), First{count});
    return count;
}

// What lies in memory is read from there. Compilers would move lanes between vectors and other registers one by one,
// by operations that compete with those of vectors.
template <typename T, int count>
KPR_INLINE void stayInMemory(T (&lanes)[count]) {
    asm("" : "+m"(lanes));
}

// The lanes in memory, from where each is read by itself.
struct Spilled {
    alignas(64) unsigned lane[16];
    KPR_INLINE explicit Spilled(Vec<Kpr32s> v) {
        store(lane, as<unsigned>(v), All{});
        stayInMemory(lane);
    }
};

// counters[i] += bytes[i] for sixteen of them.
KPR_INLINE void addSixteen(Kpr16u* counters, const Kpr8u* bytes) {
    const __m256i more = _mm256_cvtepu8_epi16(_mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes)));
    auto* const at = reinterpret_cast<__m256i*>(counters);
    _mm256_storeu_si256(at, _mm256_add_epi16(_mm256_loadu_si256(at), more));
}

// The eight lower or upper lanes, none of them negative, as 64-bit lanes.
template <int which>
KPR_INLINE Vec<Bits64> widenHalf(Vec<Kpr32s> v) {
    return vec<Bits64>(_mm512_cvtepu32_epi64(_mm512_extracti64x4_epi64(bits(v), which)));
}

// Each lane moved up by as many bits as the same lane of the counts says.
KPR_INLINE Vec<Bits64> shiftUp(Vec<Bits64> v, Vec<Bits64> counts) {
    return vec<Bits64>(_mm512_sllv_epi64(bits(v), bits(counts)));
}

// The exact products of the even 32-bit lanes, or of the odd ones: unsigned modulo 2^64.
template <int odd>
KPR_INLINE Vec<Bits64> multiplyLong(Vec<unsigned> a, Vec<unsigned> b) {
    const auto at = [](Vec<unsigned> v) { return odd ? _mm512_srli_epi64(bits(v), 32) : bits(v); };
    return vec<Bits64>(_mm512_mul_epu32(at(a), at(b)));
}
template <int odd>
KPR_INLINE Vec<Bits64> multiplyLong(Vec<Kpr32s> a, Vec<Kpr32s> b) {
    const auto at = [](Vec<Kpr32s> v) { return odd ? _mm512_srli_epi64(bits(v), 32) : bits(v); };
    return vec<Bits64>(_mm512_mul_epi32(at(a), at(b)));
}

// The even lanes, or the odd ones, as 64-bit lanes.
template <int odd>
KPR_INLINE Vec<Bits64> everySecond(Vec<unsigned> v) {
    if constexpr (odd != 0) return vec<Bits64>(_mm512_srli_epi64(bits(v), 32));
    return vec<Bits64>(_mm512_and_si512(bits(v), _mm512_set1_epi64(0xffffffff)));
}

// To the nearest number, ties to even.
KPR_INLINE Vec<Kpr64f> toDouble(Vec<Bits64> v) { return vec(_mm512_cvtepu64_pd(bits(v))); }

// Where a < b, of numbers.
KPR_INLINE Mask<Kpr64f> lessOf(Vec<Kpr64f> a, Vec<Kpr64f> b) { return _mm512_cmp_pd_mask(pd(a), pd(b), _CMP_LT_OQ); }

}  // namespace n0
