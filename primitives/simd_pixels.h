// Pixels of several channels taken apart and put together, pixels fetched from anywhere, and positions.
#pragma once

#include <algorithm>

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

// Of three vectors that hold the elements of three channels in turn, what of vector k belongs to the pixels of `part`.
KPR_INLINE All elementsOf(All part, int /*k*/, int /*lanes*/) { return part; }
KPR_INLINE First elementsOf(First part, int k, int lanes) {
    const Kpr64s elements = 3 * _mm_popcnt_u64(part.bits);
    return First{std::max(elements - Kpr64s{k} * lanes, Kpr64s{0})};
}

// Calls put(part, k) for each of the three with its part.
KPR_INLINE void eachOfThree(auto part, int lanes, auto put) {
    for (int k = 0; k < 3; ++k) put(elementsOf(part, k, lanes), k);
}

// The way back from interleaveThree.
KPR_INLINE void separateThree(const Vec<Kpr32f>* in, Vec<Kpr32f>* out) {
    const auto a = as<Kpr32s>(in[0]), b = as<Kpr32s>(in[1]), c = as<Kpr32s>(in[2]);
    const auto channel = [&]<int k>(std::integral_constant<int, k>) {
        const auto ab = laneConstant<Kpr32s>([](int i) { return 3 * i + k < 32 ? 3 * i + k : 0; });
        const auto withC = laneConstant<Kpr32s>([](int i) { return 3 * i + k < 32 ? i : 3 * i + k - 16; });
        out[k] = as<Kpr32f>(permute(permute(a, b, ab), c, withC));
    };
    channel(std::integral_constant<int, 0>{});
    channel(std::integral_constant<int, 1>{});
    channel(std::integral_constant<int, 2>{});
}

// Sixteen pixels of three bytes, a channel in each of `out`.
template <typename Part>
KPR_INLINE void loadThree(const Kpr8u* src, Part part, Vec<Kpr32f>* out) {
    Kpr64s bytes = 48;
    if constexpr (std::is_same_v<Part, First>) bytes = 3 * _mm_popcnt_u64(part.bits);
    const auto inQuarters = laneConstant<Kpr32s>([](int i) { return i / 4 * 3 + (i % 4 == 3 ? 0 : i % 4); });
    const auto v = permute(as<Kpr32s>(load(src, First{bytes})), inQuarters);
    const auto channel = [&]<int c>(std::integral_constant<int, c>) {
        const auto from = laneConstant<Kpr8u>([](int i) { return i % 4 == 0 ? i % 16 / 4 * 3 + c : 0x80; });
        out[c] = toFloat(as<Kpr32s>(permuteIn16(as<Kpr8u>(v), from)));
    };
    channel(std::integral_constant<int, 0>{});
    channel(std::integral_constant<int, 1>{});
    channel(std::integral_constant<int, 2>{});
}

// Four vectors of four elements a pixel and four of one element each, one from the other.
struct FourOf {
    Vec<Kpr32f> v[4];
};
KPR_INLINE FourOf transposed(const FourOf& in) {
    const auto pair = laneConstant<Kpr32s>([](int i) { return i % 8 / 4 * 16 + i % 4 * 4 + i / 8; });
    const auto pairUpper = laneConstant<Kpr32s>([](int i) { return i % 8 / 4 * 16 + i % 4 * 4 + i / 8 + 2; });
    const auto lower = laneConstant<Kpr32s>([](int i) { return i % 8 + i / 8 * 16; });
    const auto upper = laneConstant<Kpr32s>([](int i) { return i % 8 + i / 8 * 16 + 8; });
    const auto take = [](Vec<Kpr32s> a, Vec<Kpr32s> b, Vec<Kpr32s> from) { return permute(a, b, from); };
    const auto a = as<Kpr32s>(in.v[0]), b = as<Kpr32s>(in.v[1]), c = as<Kpr32s>(in.v[2]), d = as<Kpr32s>(in.v[3]);
    const auto ab01 = take(a, b, pair), ab23 = take(a, b, pairUpper), cd01 = take(c, d, pair),
               cd23 = take(c, d, pairUpper);
    return {{as<Kpr32f>(take(ab01, cd01, lower)), as<Kpr32f>(take(ab01, cd01, upper)),
             as<Kpr32f>(take(ab23, cd23, lower)), as<Kpr32f>(take(ab23, cd23, upper))}};
}
KPR_INLINE FourOf interleaved(const FourOf& in) {
    const auto firsts = laneConstant<Kpr32s>([](int i) { return i / 2 + i % 2 * 16; });       // a0 b0 a1 b1 ... a7 b7
    const auto seconds = laneConstant<Kpr32s>([](int i) { return i / 2 + i % 2 * 16 + 8; });  // a8 b8 ...
    const auto lower = laneConstant<Kpr32s>([](int i) { return i / 4 * 2 + i % 2 + i % 4 / 2 * 16; });
    const auto upper = laneConstant<Kpr32s>([](int i) { return i / 4 * 2 + i % 2 + i % 4 / 2 * 16 + 8; });
    const auto a = as<Kpr32s>(in.v[0]), b = as<Kpr32s>(in.v[1]), c = as<Kpr32s>(in.v[2]), d = as<Kpr32s>(in.v[3]);
    const auto ab = permute(a, b, firsts), cd = permute(c, d, firsts);
    const auto abNext = permute(a, b, seconds), cdNext = permute(c, d, seconds);
    return {{as<Kpr32f>(permute(ab, cd, lower)), as<Kpr32f>(permute(ab, cd, upper)),
             as<Kpr32f>(permute(abNext, cdNext, lower)), as<Kpr32f>(permute(abNext, cdNext, upper))}};
}

// Calls put(part, k) for the four vectors that hold four elements of each pixel of the part.
KPR_INLINE void eachOfFour(All part, auto put) {
    for (int k = 0; k < 4; ++k) put(part, k);
}
KPR_INLINE void eachOfFour(First part, auto put) {
    const Kpr64s elements = 4 * _mm_popcnt_u64(part.bits);
    for (int k = 0; k < 4; ++k) put(First{std::max(elements - Kpr64s{16} * k, Kpr64s{0})}, k);
}

}  // namespace n0
