// Operations that distance fields need: lanes packed together, exact comparisons of products, roots of integers.
#pragma once

#include "primitives/simd.h"

namespace n0 {

// The lanes of the mask, moved together from the lowest on; zeros above.
KPR_INLINE Vec<Kpr32s> pack(Mask<Kpr32s> mask, Vec<Kpr32s> v) {
    return vec<Kpr32s>(_mm512_maskz_compress_epi32(mask, bits(v)));
}

// The lanes of a mask that the part has. `mask` may have bits of lanes that do not exist.
template <typename T>
KPR_INLINE Mask<T> within(All, Bits64 mask) {
    return static_cast<Mask<T>>(mask);
}
template <typename T>
KPR_INLINE Mask<T> within(Lanes part, Bits64 mask) {
    return static_cast<Mask<T>>(mask & part.bits);
}

KPR_INLINE int countBits(Bits64 mask) { return static_cast<int>(_mm_popcnt_u64(mask)); }

// Where a * b < c * d, the products formed in 64 bits; their difference must fit in 64 bits too.
KPR_INLINE Mask<Kpr32s> productLess(Vec<Kpr32s> a, Vec<Kpr32s> b, Vec<Kpr32s> c, Vec<Kpr32s> d) {
    const auto odd = [](Vec<Kpr32s> v) { return _mm512_srli_epi64(bits(v), 32); };
    const __m512i even = _mm512_sub_epi64(_mm512_mul_epi32(bits(a), bits(b)), _mm512_mul_epi32(bits(c), bits(d)));
    const __m512i other = _mm512_sub_epi64(_mm512_mul_epi32(odd(a), odd(b)), _mm512_mul_epi32(odd(c), odd(d)));
    return _mm512_movepi32_mask(_mm512_mask_blend_epi32(0xaaaa, _mm512_srli_epi64(even, 32), other));
}

// The integer at or above; what does not fit becomes the least.
KPR_INLINE Vec<Kpr32s> roundUp(Vec<Kpr32f> v) {
    return vec<Kpr32s>(_mm512_cvt_roundps_epi32(ps(v), _MM_FROUND_TO_POS_INF | _MM_FROUND_NO_EXC));
}

// Lane i is the sum of the first i + 1 of sixteen bytes that hold 0 or 1.
template <typename Part>
KPR_INLINE Vec<Kpr32s> runningCount(const Kpr8u* flags, Part part) {
    __m128i v = loadNarrow<16>(flags, part);
    v = _mm_add_epi8(v, _mm_slli_si128(v, 1));
    v = _mm_add_epi8(v, _mm_slli_si128(v, 2));
    v = _mm_add_epi8(v, _mm_slli_si128(v, 4));
    v = _mm_add_epi8(v, _mm_slli_si128(v, 8));
    return vec<Kpr32s>(_mm512_cvtepi8_epi32(v));
}

// Sixteen bytes become zero.
template <typename Part>
KPR_INLINE void clearNarrow(Kpr8u* dst, Part part) {
    storeNarrow<16>(dst, _mm_setzero_si128(), part);
}

KPR_INLINE int lastLane(Vec<Kpr32s> v) { return v.raw[15]; }

// The root of a number from 0 to 2^31 - 1, as a double rounded to single precision. Up to 2^24, which single precision
// holds, its own root is the same: a double has more than twice its digits, so that the second rounding never goes the
// other way.
KPR_INLINE Vec<Kpr32f> rootOf(Vec<Kpr32s> v) {
    if (__builtin_expect(_mm512_cmpgt_epi32_mask(bits(v), _mm512_set1_epi32(1 << 24)) == 0, 1)) return sqrt(toFloat(v));
    const auto half = [](__m256i h) { return _mm512_cvtpd_ps(_mm512_sqrt_pd(_mm512_cvtepi32_pd(h))); };
    const __m256 lower = half(_mm512_castsi512_si256(bits(v))), upper = half(_mm512_extracti64x4_epi64(bits(v), 1));
    return vec(_mm512_insertf32x8(_mm512_castps256_ps512(lower), upper, 1));
}

// ---- bytes and words whose largest value stands for what is farther away

// Which way lanes move: to higher columns or to lower ones.
enum class Toward { Higher, Lower };

// Within each 16 bytes, lanes moved by `bytes`; ones come in.
template <Toward way, int bytes, typename T>
KPR_INLINE Vec<T> shiftIn16(Vec<T> v) {
    const __m512i ones = _mm512_set1_epi32(-1);
    if constexpr (way == Toward::Higher) return vec<T>(_mm512_alignr_epi8(bits(v), ones, 16 - bytes));
    if constexpr (way == Toward::Lower) return vec<T>(_mm512_alignr_epi8(ones, bits(v), bytes));
}

// Quarters of 16 bytes moved by `count` of them; those of `others` come in from the opposite end.
template <Toward way, int count, typename T>
KPR_INLINE Vec<T> shiftQuarters(Vec<T> v, Vec<T> others) {
    if constexpr (way == Toward::Higher) return vec<T>(_mm512_alignr_epi64(bits(v), bits(others), 8 - 2 * count));
    if constexpr (way == Toward::Lower) return vec<T>(_mm512_alignr_epi64(bits(others), bits(v), 2 * count));
}

// The last quarter, or the first, in all four.
template <Toward way, typename T>
KPR_INLINE Vec<T> outermostQuarter(Vec<T> v) {
    return vec<T>(_mm512_shuffle_i64x2(bits(v), bits(v), way == Toward::Higher ? 0xff : 0));
}

// ---- squares of 16 x 16

// Of rows in vectors, columns.
KPR_INLINE void transpose(Vec<Kpr32f> (&v)[16]) {
    __m512 a[16];
    for (int i = 0; i < 16; i += 4) {  // 4 x 4 within quarters: a[i + j] has column 4q + j of rows i to i + 3
        const __m512 lo0 = _mm512_unpacklo_ps(ps(v[i]), ps(v[i + 1])), hi0 = _mm512_unpackhi_ps(ps(v[i]), ps(v[i + 1]));
        const __m512 lo1 = _mm512_unpacklo_ps(ps(v[i + 2]), ps(v[i + 3]));
        const __m512 hi1 = _mm512_unpackhi_ps(ps(v[i + 2]), ps(v[i + 3]));
        a[i] = _mm512_shuffle_ps(lo0, lo1, 0x44);
        a[i + 1] = _mm512_shuffle_ps(lo0, lo1, 0xee);
        a[i + 2] = _mm512_shuffle_ps(hi0, hi1, 0x44);
        a[i + 3] = _mm512_shuffle_ps(hi0, hi1, 0xee);
    }
    for (int j = 0; j < 4; ++j) {  // 4 x 4 of quarters
        const __m512 even0 = _mm512_shuffle_f32x4(a[j], a[4 + j], 0x88),
                     odd0 = _mm512_shuffle_f32x4(a[j], a[4 + j], 0xdd);
        const __m512 even1 = _mm512_shuffle_f32x4(a[8 + j], a[12 + j], 0x88);
        const __m512 odd1 = _mm512_shuffle_f32x4(a[8 + j], a[12 + j], 0xdd);
        v[j] = vec(_mm512_shuffle_f32x4(even0, even1, 0x88));
        v[4 + j] = vec(_mm512_shuffle_f32x4(odd0, odd1, 0x88));
        v[8 + j] = vec(_mm512_shuffle_f32x4(even0, even1, 0xdd));
        v[12 + j] = vec(_mm512_shuffle_f32x4(odd0, odd1, 0xdd));
    }
}

// Of 16 rows of 16 bytes each, given by row(i): in mask k, bit i says whether byte k of row i is not zero.
template <typename Row>
KPR_INLINE void columnsNotZero(Row row, Mask<Kpr32f> (&masks)[16]) {
    __m512i z[4];
    for (int q = 0; q < 4; ++q) {  // rows q, q + 4, q + 8, q + 12 in the quarters
        const __m256i lower = _mm256_inserti128_si256(_mm256_castsi128_si256(row(q)), row(q + 4), 1);
        const __m256i upper = _mm256_inserti128_si256(_mm256_castsi128_si256(row(q + 8)), row(q + 12), 1);
        z[q] = _mm512_inserti64x4(_mm512_castsi256_si512(lower), upper, 1);
    }
    const __m512i a = _mm512_unpacklo_epi8(z[0], z[1]), b = _mm512_unpacklo_epi8(z[2], z[3]);
    const __m512i c = _mm512_unpackhi_epi8(z[0], z[1]), d = _mm512_unpackhi_epi8(z[2], z[3]);
    const __m512i fours[4] = {_mm512_unpacklo_epi16(a, b), _mm512_unpackhi_epi16(a, b), _mm512_unpacklo_epi16(c, d),
                              _mm512_unpackhi_epi16(c, d)};
    const __m512i byColumn = bits(laneConstant<Kpr32s>([](int i) { return i % 4 * 4 + i / 4; }));
    for (int f = 0; f < 4; ++f) {
        const __m512i columns = _mm512_permutexvar_epi32(byColumn, fours[f]);
        const Bits64 set = _mm512_test_epi8_mask(columns, columns);
        for (int k = 0; k < 4; ++k) masks[4 * f + k] = static_cast<Mask<Kpr32f>>(set >> (16 * k));
    }
}

// The lanes one up, `lowest` in the first.
KPR_INLINE Vec<Kpr32f> shiftUp(Vec<Kpr32f> v, Kpr32f lowest) {
    return vec<Kpr32f>(_mm512_alignr_epi32(bits(v), bits(broadcast(lowest)), 15));
}

}  // namespace n0
