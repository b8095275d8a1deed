// The processor's operations that the vector layer is made of, for processors whose vectors have 32 bytes (x86-64-v3):
// each under the name that it has where they have 64, with the same result, so that all else stays as it is. What such
// processors have is done to the halves; the rest is plain loops over the lanes.
#pragma once

#include <immintrin.h>

#include <bit>
#include <type_traits>

// What compilers define as macros would take the place of the functions below.
#undef _mm512_alignr_epi32
#undef _mm512_alignr_epi64
#undef _mm512_alignr_epi8
#undef _mm512_bslli_epi128
#undef _mm512_cmp_pd_mask
#undef _mm512_cmp_ps_mask
#undef _mm512_cmpeq_epi16_mask
#undef _mm512_cmpeq_epi32_mask
#undef _mm512_cmpeq_epi8_mask
#undef _mm512_cmpgt_epi32_mask
#undef _mm512_cmpgt_epu16_mask
#undef _mm512_cmpgt_epu8_mask
#undef _mm512_cmple_epi16_mask
#undef _mm512_cmple_epi32_mask
#undef _mm512_cmple_epu16_mask
#undef _mm512_cmple_epu32_mask
#undef _mm512_cmple_epu8_mask
#undef _mm512_cmplt_epi16_mask
#undef _mm512_cmplt_epi32_mask
#undef _mm512_cmplt_epi64_mask
#undef _mm512_cmplt_epu16_mask
#undef _mm512_cmplt_epu32_mask
#undef _mm512_cmplt_epu8_mask
#undef _mm512_cvt_roundps_epi32
#undef _mm512_extractf32x8_ps
#undef _mm512_extracti32x8_epi32
#undef _mm512_extracti64x4_epi64
#undef _mm512_fpclass_ps_mask
#undef _mm512_i32gather_epi32
#undef _mm512_i32gather_ps
#undef _mm512_insertf32x8
#undef _mm512_inserti64x4
#undef _mm512_mask_blend_epi16
#undef _mm512_mask_blend_epi8
#undef _mm512_mask_cmp_ps_mask
#undef _mm512_mask_cmplt_epu8_mask
#undef _mm512_mask_i32gather_epi32
#undef _mm512_mask_i32gather_epi64
#undef _mm512_range_ps
#undef _mm512_roundscale_ps
#undef _mm512_setr_epi32
#undef _mm512_shuffle_f32x4
#undef _mm512_shuffle_i32x4
#undef _mm512_shuffle_i64x2
#undef _mm512_shuffle_ps
#undef _mm512_slli_epi16
#undef _mm512_slli_epi64
#undef _mm512_srai_epi16
#undef _mm512_srli_epi16
#undef _mm512_slli_epi32
#undef _mm512_srai_epi32
#undef _mm512_srli_epi32
#undef _mm512_srli_epi64
#undef _mm512_ternarylogic_epi32
#undef _mm_cmpeq_epi8_mask
#undef _mm_cmplt_epu8_mask

// Of those that go lane by lane, and stand in every kernel's tail, a function each is enough.
#define KPR_LOOP [[gnu::noinline]] inline

namespace n0 {

// ---- lanes and halves

template <typename T>
struct Lanewise {
    typedef T Vector __attribute__((vector_size(64)));
};

// Bits as another type of the same size.
template <typename To, typename From>
KPR_INLINE To sameBits(const From& from) {
    static_assert(sizeof(To) == sizeof(From));
    To to;
    __builtin_memcpy(&to, &from, sizeof to);
    return to;
}

template <typename T, int bytes = 64>
struct LaneArray {
    static constexpr int kCount = bytes / static_cast<int>(sizeof(T));
    T lane[kCount];
};

// Lane i of the result is rule(i).
template <typename T, typename V, typename Rule>
KPR_INLINE V fromLanes(Rule rule) {
    using Array = LaneArray<T, sizeof(V)>;
    Array to;
#pragma GCC unroll 1  // unrolled, a few of these fill a function
    for (int i = 0; i < Array::kCount; ++i) to.lane[i] = static_cast<T>(rule(i));
    return sameBits<V>(to);
}
template <typename T, typename V>
KPR_INLINE LaneArray<T, sizeof(V)> lanesOf(const V& v) {
    return sameBits<LaneArray<T, sizeof(V)>>(v);
}

struct IntegerHalves {
    __m256i lower, upper;
};
struct FloatHalves {
    __m256 lower, upper;
};
struct DoubleHalves {
    __m256d lower, upper;
};
KPR_INLINE auto halvesOf(__m512i v) { return sameBits<IntegerHalves>(v); }
KPR_INLINE auto halvesOf(__m512 v) { return sameBits<FloatHalves>(v); }
KPR_INLINE auto halvesOf(__m512d v) { return sameBits<DoubleHalves>(v); }
KPR_INLINE __m512i joined(__m256i a, __m256i b) { return sameBits<__m512i>(IntegerHalves{a, b}); }
KPR_INLINE __m512 joined(__m256 a, __m256 b) { return sameBits<__m512>(FloatHalves{a, b}); }
KPR_INLINE __m512d joined(__m256d a, __m256d b) { return sameBits<__m512d>(DoubleHalves{a, b}); }

template <typename Do, typename... V>
KPR_INLINE auto byHalves(Do act, V... v) {
    return joined(act(halvesOf(v).lower...), act(halvesOf(v).upper...));
}

// ---- what the halves have

#define KPR_OF_ONE(name, Whole, Half)                                \
    KPR_INLINE Whole _mm512_##name(Whole a) {                        \
        return byHalves([](Half p) { return _mm256_##name(p); }, a); \
    }
#define KPR_OF_TWO(name, Whole, Half)                                              \
    KPR_INLINE Whole _mm512_##name(Whole a, Whole b) {                             \
        return byHalves([](Half p, Half q) { return _mm256_##name(p, q); }, a, b); \
    }
#define KPR_OF_THREE(name, Whole, Half)                                                          \
    KPR_INLINE Whole _mm512_##name(Whole a, Whole b, Whole c) {                                  \
        return byHalves([](Half p, Half q, Half r) { return _mm256_##name(p, q, r); }, a, b, c); \
    }
#define KPR_INTEGERS(name) KPR_OF_TWO(name, __m512i, __m256i)
#define KPR_FLOATS(name) KPR_OF_TWO(name, __m512, __m256)
#define KPR_DOUBLES(name) KPR_OF_TWO(name, __m512d, __m256d)
#define KPR_SHIFT(name, byNumber)                                                     \
    KPR_INLINE __m512i _mm512_##name(__m512i v, __m128i count) {                      \
        return byHalves([=](__m256i half) { return _mm256_##name(half, count); }, v); \
    }                                                                                 \
    KPR_INLINE __m512i _mm512_##byNumber(__m512i v, int count) { return _mm512_##name(v, _mm_cvtsi32_si128(count)); }

KPR_INTEGERS(add_epi16)
KPR_INTEGERS(add_epi32)
KPR_INTEGERS(adds_epu8)
KPR_INTEGERS(adds_epu16)
KPR_INTEGERS(sub_epi32)
KPR_INTEGERS(sub_epi64)
KPR_INTEGERS(subs_epu8)
KPR_INTEGERS(subs_epu16)
KPR_INTEGERS(subs_epi16)
KPR_INTEGERS(avg_epu8)
KPR_INTEGERS(mullo_epi16)
KPR_INTEGERS(mulhi_epi16)
KPR_INTEGERS(mulhi_epu16)
KPR_INTEGERS(mulhrs_epi16)
KPR_INTEGERS(madd_epi16)
KPR_INTEGERS(maddubs_epi16)
KPR_INTEGERS(mul_epi32)
KPR_INTEGERS(mul_epu32)
KPR_INTEGERS(sad_epu8)
KPR_INTEGERS(min_epu8)
KPR_INTEGERS(min_epu16)
KPR_INTEGERS(min_epu32)
KPR_INTEGERS(min_epi16)
KPR_INTEGERS(min_epi32)
KPR_INTEGERS(max_epu8)
KPR_INTEGERS(max_epu16)
KPR_INTEGERS(max_epi16)
KPR_INTEGERS(max_epi32)
KPR_INTEGERS(packs_epi32)
KPR_INTEGERS(packus_epi32)
KPR_INTEGERS(packus_epi16)
KPR_INTEGERS(unpacklo_epi8)
KPR_INTEGERS(unpackhi_epi8)
KPR_INTEGERS(unpacklo_epi16)
KPR_INTEGERS(unpackhi_epi16)
KPR_INTEGERS(shuffle_epi8)
KPR_INTEGERS(sllv_epi64)
KPR_INTEGERS(srlv_epi32)
KPR_INTEGERS(srlv_epi64)
KPR_OF_ONE(abs_epi16, __m512i, __m256i)
KPR_FLOATS(min_ps)
KPR_FLOATS(max_ps)
KPR_FLOATS(unpacklo_ps)
KPR_FLOATS(unpackhi_ps)
KPR_DOUBLES(min_pd)
KPR_DOUBLES(max_pd)
KPR_OF_ONE(sqrt_ps, __m512, __m256)
KPR_OF_ONE(sqrt_pd, __m512d, __m256d)
KPR_OF_THREE(fmadd_ps, __m512, __m256)
KPR_OF_THREE(fnmadd_ps, __m512, __m256)
KPR_OF_THREE(fmadd_pd, __m512d, __m256d)
KPR_OF_THREE(fnmadd_pd, __m512d, __m256d)
KPR_SHIFT(sll_epi16, slli_epi16)
KPR_SHIFT(sll_epi32, slli_epi32)
KPR_SHIFT(sll_epi64, slli_epi64)
KPR_SHIFT(srl_epi16, srli_epi16)
KPR_SHIFT(srl_epi32, srli_epi32)
KPR_SHIFT(srl_epi64, srli_epi64)
KPR_SHIFT(sra_epi16, srai_epi16)
KPR_SHIFT(sra_epi32, srai_epi32)

#undef KPR_OF_ONE
#undef KPR_OF_TWO
#undef KPR_OF_THREE
#undef KPR_INTEGERS
#undef KPR_FLOATS
#undef KPR_DOUBLES
#undef KPR_SHIFT

KPR_INLINE __m512i _mm512_and_si512(__m512i a, __m512i b) { return a & b; }
KPR_INLINE __m512i _mm512_or_si512(__m512i a, __m512i b) { return a | b; }
KPR_INLINE __m512i _mm512_xor_si512(__m512i a, __m512i b) { return a ^ b; }
KPR_INLINE __m512i _mm512_andnot_si512(__m512i a, __m512i b) { return ~a & b; }

// ---- between memory, single values and vectors

KPR_INLINE __m512i _mm512_loadu_si512(const void* src) {
    __m512i v;
    __builtin_memcpy(&v, src, sizeof v);
    return v;
}
KPR_INLINE void _mm512_storeu_si512(void* dst, __m512i v) { __builtin_memcpy(dst, &v, sizeof v); }
KPR_INLINE void _mm512_stream_si512(__m512i* dst, __m512i v) {
    auto* const to = reinterpret_cast<__m256i*>(dst);
    _mm256_stream_si256(to, halvesOf(v).lower);
    _mm256_stream_si256(to + 1, halvesOf(v).upper);
}

KPR_INLINE __m512i _mm512_setzero_si512() { return __m512i{}; }
KPR_INLINE __m512i _mm512_set1_epi8(char x) { return joined(_mm256_set1_epi8(x), _mm256_set1_epi8(x)); }
KPR_INLINE __m512i _mm512_set1_epi16(short x) { return joined(_mm256_set1_epi16(x), _mm256_set1_epi16(x)); }
KPR_INLINE __m512i _mm512_set1_epi32(int x) { return joined(_mm256_set1_epi32(x), _mm256_set1_epi32(x)); }
KPR_INLINE __m512i _mm512_set1_epi64(long long x) { return joined(_mm256_set1_epi64x(x), _mm256_set1_epi64x(x)); }
KPR_INLINE __m512 _mm512_set1_ps(float x) { return joined(_mm256_set1_ps(x), _mm256_set1_ps(x)); }
KPR_INLINE __m512d _mm512_set1_pd(double x) { return joined(_mm256_set1_pd(x), _mm256_set1_pd(x)); }
KPR_INLINE __m512i _mm512_broadcast_i32x4(__m128i v) {
    return joined(_mm256_broadcastsi128_si256(v), _mm256_broadcastsi128_si256(v));
}
template <typename... Int>
KPR_INLINE __m512i _mm512_setr_epi32(Int... x) {
    return sameBits<__m512i>(LaneArray<int>{{x...}});
}
KPR_INLINE __m512i _mm512_set_epi32(int p, int o, int n, int m, int l, int k, int j, int i, int h, int g, int f, int e,
                                    int d, int c, int b, int a) {
    return _mm512_setr_epi32(a, b, c, d, e, f, g, h, i, j, k, l, m, n, o, p);
}

KPR_INLINE __m512 _mm512_castps256_ps512(__m256 v) { return joined(v, __m256{}); }
KPR_INLINE __m256 _mm512_castps512_ps256(__m512 v) { return halvesOf(v).lower; }
KPR_INLINE __m512i _mm512_castsi256_si512(__m256i v) { return joined(v, __m256i{}); }
KPR_INLINE __m256i _mm512_castsi512_si256(__m512i v) { return halvesOf(v).lower; }
KPR_INLINE __m512d _mm512_castps_pd(__m512 v) { return sameBits<__m512d>(v); }
KPR_INLINE __m512 _mm512_castsi512_ps(__m512i v) { return sameBits<__m512>(v); }
KPR_INLINE __m256i _mm512_extracti64x4_epi64(__m512i v, int which) {
    return which == 0 ? halvesOf(v).lower : halvesOf(v).upper;
}
KPR_INLINE __m256i _mm512_extracti32x8_epi32(__m512i v, int which) { return _mm512_extracti64x4_epi64(v, which); }
KPR_INLINE __m256 _mm512_extractf32x8_ps(__m512 v, int which) {
    return which == 0 ? halvesOf(v).lower : halvesOf(v).upper;
}
KPR_INLINE __m512i _mm512_inserti64x4(__m512i v, __m256i half, int which) {
    return which == 0 ? joined(half, halvesOf(v).upper) : joined(halvesOf(v).lower, half);
}
KPR_INLINE __m512 _mm512_insertf32x8(__m512 v, __m256 half, int which) {
    return which == 0 ? joined(half, halvesOf(v).upper) : joined(halvesOf(v).lower, half);
}

// ---- masks: a bit a lane in place of all the lane's bits, and the way back

template <int bytes>
KPR_INLINE unsigned long long bitsOfLanes(__m512i lanes) {
    const auto [a, b] = halvesOf(lanes);
    const auto word = [](int bits) { return static_cast<unsigned long long>(static_cast<unsigned>(bits)); };
    if constexpr (bytes == 1) return word(_mm256_movemask_epi8(a)) | word(_mm256_movemask_epi8(b)) << 32;
    if constexpr (bytes == 2)
        return word(_mm256_movemask_epi8(_mm256_permute4x64_epi64(_mm256_packs_epi16(a, b), 0xd8)));
    if constexpr (bytes == 4)
        return word(_mm256_movemask_ps(sameBits<__m256>(a))) | word(_mm256_movemask_ps(sameBits<__m256>(b))) << 8;
    if constexpr (bytes == 8)
        return word(_mm256_movemask_pd(sameBits<__m256d>(a))) | word(_mm256_movemask_pd(sameBits<__m256d>(b))) << 4;
}

template <int bytes>
KPR_INLINE __m512i lanesOfBits(unsigned long long mask) {
    if constexpr (bytes == 1) {
        const __m256i from = _mm256_setr_epi64x(0, 0x0101010101010101, 0x0202020202020202, 0x0303030303030303);
        const __m256i bit = _mm256_set1_epi64x(static_cast<long long>(0x8040201008040201));
        const auto half = [=](unsigned long long bits) {
            const __m256i spread = _mm256_shuffle_epi8(_mm256_set1_epi32(static_cast<int>(bits)), from);
            return _mm256_cmpeq_epi8(_mm256_and_si256(spread, bit), bit);
        };
        return joined(half(mask), half(mask >> 32));
    }
    if constexpr (bytes == 2) {
        const __m256i bit = _mm256_setr_epi16(1, 2, 4, 8, 16, 32, 64, 128, 256, 512, 1024, 2048, 4096, 8192, 16384,
                                              static_cast<short>(0x8000));
        const auto half = [=](unsigned long long bits) {
            return _mm256_cmpeq_epi16(_mm256_and_si256(_mm256_set1_epi16(static_cast<short>(bits)), bit), bit);
        };
        return joined(half(mask), half(mask >> 16));
    }
    if constexpr (bytes == 4) {
        const __m256i bit = _mm256_setr_epi32(1, 2, 4, 8, 16, 32, 64, 128);
        const auto half = [=](unsigned long long bits) {
            return _mm256_cmpeq_epi32(_mm256_and_si256(_mm256_set1_epi32(static_cast<int>(bits)), bit), bit);
        };
        return joined(half(mask), half(mask >> 8));
    }
    if constexpr (bytes == 8) {
        const __m256i bit = _mm256_setr_epi64x(1, 2, 4, 8);
        const auto half = [=](unsigned long long bits) {
            return _mm256_cmpeq_epi64(_mm256_and_si256(_mm256_set1_epi64x(static_cast<long long>(bits)), bit), bit);
        };
        return joined(half(mask), half(mask >> 4));
    }
}

// b where the mask is set, a elsewhere.
template <int bytes>
KPR_INLINE __m512i blended(unsigned long long mask, __m512i a, __m512i b) {
    const __m512i which = lanesOfBits<bytes>(mask);
    return (a & ~which) | (b & which);
}

KPR_INLINE __m512i _mm512_mask_blend_epi8(__mmask64 mask, __m512i a, __m512i b) { return blended<1>(mask, a, b); }
KPR_INLINE __m512i _mm512_maskz_mov_epi8(__mmask64 mask, __m512i v) { return lanesOfBits<1>(mask) & v; }
KPR_INLINE __m512i _mm512_mask_blend_epi16(__mmask32 mask, __m512i a, __m512i b) { return blended<2>(mask, a, b); }
KPR_INLINE __m512i _mm512_maskz_mov_epi16(__mmask32 mask, __m512i v) { return lanesOfBits<2>(mask) & v; }
KPR_INLINE __m512i _mm512_mask_blend_epi32(__mmask16 mask, __m512i a, __m512i b) { return blended<4>(mask, a, b); }
KPR_INLINE __m512i _mm512_maskz_mov_epi32(__mmask16 mask, __m512i v) { return lanesOfBits<4>(mask) & v; }
KPR_INLINE __m512i _mm512_mask_blend_epi64(__mmask8 mask, __m512i a, __m512i b) { return blended<8>(mask, a, b); }
KPR_INLINE __m512i _mm512_maskz_mov_epi64(__mmask8 mask, __m512i v) { return lanesOfBits<8>(mask) & v; }
KPR_INLINE __m512i _mm512_mask_add_epi16(__m512i others, __mmask32 mask, __m512i a, __m512i b) {
    return blended<2>(mask, others, _mm512_add_epi16(a, b));
}
KPR_INLINE __m512i _mm512_mask_add_epi32(__m512i others, __mmask16 mask, __m512i a, __m512i b) {
    return blended<4>(mask, others, _mm512_add_epi32(a, b));
}
KPR_INLINE __m512i _mm512_mask_sub_epi32(__m512i others, __mmask16 mask, __m512i a, __m512i b) {
    return blended<4>(mask, others, _mm512_sub_epi32(a, b));
}
KPR_INLINE __m512i _mm512_mask_subs_epu16(__m512i others, __mmask32 mask, __m512i a, __m512i b) {
    return blended<2>(mask, others, _mm512_subs_epu16(a, b));
}

template <typename T, typename Compare>
KPR_INLINE unsigned long long compared(__m512i a, __m512i b, Compare compare) {
    return bitsOfLanes<sizeof(T)>(sameBits<__m512i>(
        compare(sameBits<typename Lanewise<T>::Vector>(a), sameBits<typename Lanewise<T>::Vector>(b))));
}
KPR_INLINE __mmask32 _mm512_cmpeq_epi16_mask(__m512i a, __m512i b) {
    return static_cast<__mmask32>(compared<Kpr16s>(a, b, [](auto x, auto y) { return x == y; }));
}
KPR_INLINE __mmask16 _mm512_cmpeq_epi32_mask(__m512i a, __m512i b) {
    return static_cast<__mmask16>(compared<Kpr32s>(a, b, [](auto x, auto y) { return x == y; }));
}
KPR_INLINE __mmask64 _mm512_cmpeq_epi8_mask(__m512i a, __m512i b) {
    return static_cast<__mmask64>(compared<Kpr8s>(a, b, [](auto x, auto y) { return x == y; }));
}
KPR_INLINE __mmask16 _mm512_cmpgt_epi32_mask(__m512i a, __m512i b) {
    return static_cast<__mmask16>(compared<Kpr32s>(a, b, [](auto x, auto y) { return x > y; }));
}
KPR_INLINE __mmask32 _mm512_cmpgt_epu16_mask(__m512i a, __m512i b) {
    return static_cast<__mmask32>(compared<Kpr16u>(a, b, [](auto x, auto y) { return x > y; }));
}
KPR_INLINE __mmask64 _mm512_cmpgt_epu8_mask(__m512i a, __m512i b) {
    return static_cast<__mmask64>(compared<Kpr8u>(a, b, [](auto x, auto y) { return x > y; }));
}
KPR_INLINE __mmask32 _mm512_cmple_epi16_mask(__m512i a, __m512i b) {
    return static_cast<__mmask32>(compared<Kpr16s>(a, b, [](auto x, auto y) { return x <= y; }));
}
KPR_INLINE __mmask16 _mm512_cmple_epi32_mask(__m512i a, __m512i b) {
    return static_cast<__mmask16>(compared<Kpr32s>(a, b, [](auto x, auto y) { return x <= y; }));
}
KPR_INLINE __mmask32 _mm512_cmple_epu16_mask(__m512i a, __m512i b) {
    return static_cast<__mmask32>(compared<Kpr16u>(a, b, [](auto x, auto y) { return x <= y; }));
}
KPR_INLINE __mmask16 _mm512_cmple_epu32_mask(__m512i a, __m512i b) {
    return static_cast<__mmask16>(compared<unsigned>(a, b, [](auto x, auto y) { return x <= y; }));
}
KPR_INLINE __mmask64 _mm512_cmple_epu8_mask(__m512i a, __m512i b) {
    return static_cast<__mmask64>(compared<Kpr8u>(a, b, [](auto x, auto y) { return x <= y; }));
}
KPR_INLINE __mmask32 _mm512_cmplt_epi16_mask(__m512i a, __m512i b) {
    return static_cast<__mmask32>(compared<Kpr16s>(a, b, [](auto x, auto y) { return x < y; }));
}
KPR_INLINE __mmask16 _mm512_cmplt_epi32_mask(__m512i a, __m512i b) {
    return static_cast<__mmask16>(compared<Kpr32s>(a, b, [](auto x, auto y) { return x < y; }));
}
KPR_INLINE __mmask8 _mm512_cmplt_epi64_mask(__m512i a, __m512i b) {
    return static_cast<__mmask8>(compared<long long>(a, b, [](auto x, auto y) { return x < y; }));
}
KPR_INLINE __mmask32 _mm512_cmplt_epu16_mask(__m512i a, __m512i b) {
    return static_cast<__mmask32>(compared<Kpr16u>(a, b, [](auto x, auto y) { return x < y; }));
}
KPR_INLINE __mmask16 _mm512_cmplt_epu32_mask(__m512i a, __m512i b) {
    return static_cast<__mmask16>(compared<unsigned>(a, b, [](auto x, auto y) { return x < y; }));
}
KPR_INLINE __mmask64 _mm512_cmplt_epu8_mask(__m512i a, __m512i b) {
    return static_cast<__mmask64>(compared<Kpr8u>(a, b, [](auto x, auto y) { return x < y; }));
}
KPR_INLINE __mmask32 _mm512_test_epi16_mask(__m512i a, __m512i b) {
    return static_cast<__mmask32>(compared<Kpr16s>(a & b, __m512i{}, [](auto x, auto y) { return x != y; }));
}
KPR_INLINE __mmask16 _mm512_test_epi32_mask(__m512i a, __m512i b) {
    return static_cast<__mmask16>(compared<Kpr32s>(a & b, __m512i{}, [](auto x, auto y) { return x != y; }));
}
KPR_INLINE __mmask8 _mm512_test_epi64_mask(__m512i a, __m512i b) {
    return static_cast<__mmask8>(compared<long long>(a & b, __m512i{}, [](auto x, auto y) { return x != y; }));
}
KPR_INLINE __mmask64 _mm512_test_epi8_mask(__m512i a, __m512i b) {
    return static_cast<__mmask64>(compared<Kpr8s>(a & b, __m512i{}, [](auto x, auto y) { return x != y; }));
}
KPR_INLINE __mmask32 _mm512_testn_epi16_mask(__m512i a, __m512i b) {
    return static_cast<__mmask32>(compared<Kpr16s>(a & b, __m512i{}, [](auto x, auto y) { return x == y; }));
}
KPR_INLINE __mmask64 _mm512_mask_cmplt_epu8_mask(__mmask64 mask, __m512i a, __m512i b) {
    return mask & _mm512_cmplt_epu8_mask(a, b);
}
KPR_INLINE __mmask32 _mm512_mask_testn_epi16_mask(__mmask32 mask, __m512i a, __m512i b) {
    return mask & _mm512_testn_epi16_mask(a, b);
}
KPR_INLINE __mmask32 _mm512_movepi16_mask(__m512i v) {
    return static_cast<__mmask32>(bitsOfLanes<2>(v));  // packing keeps signs
}
KPR_INLINE __mmask16 _mm512_movepi32_mask(__m512i v) { return static_cast<__mmask16>(bitsOfLanes<4>(v)); }

// Quiet comparisons; the predicates are constants wherever this is called.
template <typename Half, typename Compare>
KPR_INLINE Half comparedAs(int predicate, Compare compare) {
    switch (predicate) {
        case _CMP_EQ_OQ:
            return compare(std::integral_constant<int, _CMP_EQ_OQ>{});
        case _CMP_LT_OQ:
            return compare(std::integral_constant<int, _CMP_LT_OQ>{});
        case _CMP_LE_OQ:
            return compare(std::integral_constant<int, _CMP_LE_OQ>{});
        case _CMP_GE_OQ:
            return compare(std::integral_constant<int, _CMP_GE_OQ>{});
        case _CMP_GT_OQ:
            return compare(std::integral_constant<int, _CMP_GT_OQ>{});
        default:
            __builtin_trap();
    }
}
KPR_INLINE __mmask16 _mm512_cmp_ps_mask(__m512 a, __m512 b, int predicate) {
    const __m512 lanes = byHalves(
        [=](__m256 x, __m256 y) {
            return comparedAs<__m256>(predicate, [=](auto which) { return _mm256_cmp_ps(x, y, which()); });
        },
        a, b);
    return static_cast<__mmask16>(bitsOfLanes<4>(sameBits<__m512i>(lanes)));
}
KPR_INLINE __mmask8 _mm512_cmp_pd_mask(__m512d a, __m512d b, int predicate) {
    const __m512d lanes = byHalves(
        [=](__m256d x, __m256d y) {
            return comparedAs<__m256d>(predicate, [=](auto which) { return _mm256_cmp_pd(x, y, which()); });
        },
        a, b);
    return static_cast<__mmask8>(bitsOfLanes<8>(sameBits<__m512i>(lanes)));
}
KPR_INLINE __mmask16 _mm512_mask_cmp_ps_mask(__mmask16 mask, __m512 a, __m512 b, int predicate) {
    return mask & _mm512_cmp_ps_mask(a, b, predicate);
}
// Of all classes together: infinite, or no number.
KPR_INLINE __mmask16 _mm512_fpclass_ps_mask(__m512 v, int) {
    const __m512i exponent = _mm512_set1_epi32(0x7f800000);
    return _mm512_cmpeq_epi32_mask(sameBits<__m512i>(v) & exponent, exponent);
}

KPR_INLINE __mmask16 _mm_cmpeq_epi8_mask(__m128i a, __m128i b) {
    return static_cast<__mmask16>(_mm_movemask_epi8(_mm_cmpeq_epi8(a, b)));
}
KPR_INLINE __mmask16 _mm_cmplt_epu8_mask(__m128i a, __m128i b) {
    return static_cast<__mmask16>(~_mm_cmpeq_epi8_mask(_mm_min_epu8(a, b), b));
}
KPR_INLINE __mmask16 _mm_test_epi8_mask(__m128i a, __m128i b) {
    return static_cast<__mmask16>(~_mm_cmpeq_epi8_mask(_mm_and_si128(a, b), _mm_setzero_si128()));
}
KPR_INLINE __mmask32 _mm256_test_epi8_mask(__m256i a, __m256i b) {
    const __m256i none = _mm256_cmpeq_epi8(_mm256_and_si256(a, b), _mm256_setzero_si256());
    return ~static_cast<__mmask32>(_mm256_movemask_epi8(none));
}

// ---- loads and stores of some lanes, which touch no others

template <typename T, typename V>
KPR_LOOP V loadedSome(V others, unsigned long long mask, const void* src) {
    auto to = lanesOf<T>(others);
    for (; mask != 0; mask &= mask - 1) {
        const int i = __builtin_ctzll(mask);
        __builtin_memcpy(&to.lane[i], static_cast<const char*>(src) + i * sizeof(T), sizeof(T));
    }
    return sameBits<V>(to);
}
template <typename T, typename V>
KPR_LOOP void storeSome(void* dst, unsigned long long mask, V v) {
    const auto from = lanesOf<T>(v);
    for (; mask != 0; mask &= mask - 1) {
        const int i = __builtin_ctzll(mask);
        __builtin_memcpy(static_cast<char*>(dst) + i * sizeof(T), &from.lane[i], sizeof(T));
    }
}
KPR_INLINE __m512i _mm512_mask_loadu_epi8(__m512i others, __mmask64 mask, const void* src) {
    return loadedSome<Kpr8u>(others, mask, src);
}
KPR_INLINE __m512i _mm512_maskz_loadu_epi8(__mmask64 mask, const void* src) {
    return loadedSome<Kpr8u>(__m512i{}, mask, src);
}
KPR_INLINE void _mm512_mask_storeu_epi8(void* dst, __mmask64 mask, __m512i v) { storeSome<Kpr8u>(dst, mask, v); }
KPR_INLINE __m512i _mm512_mask_loadu_epi16(__m512i others, __mmask32 mask, const void* src) {
    return loadedSome<Kpr16u>(others, mask, src);
}
KPR_INLINE __m512i _mm512_maskz_loadu_epi16(__mmask32 mask, const void* src) {
    return loadedSome<Kpr16u>(__m512i{}, mask, src);
}
KPR_INLINE void _mm512_mask_storeu_epi16(void* dst, __mmask32 mask, __m512i v) { storeSome<Kpr16u>(dst, mask, v); }
KPR_INLINE __m512i _mm512_mask_loadu_epi32(__m512i others, __mmask16 mask, const void* src) {
    return loadedSome<Kpr32s>(others, mask, src);
}
KPR_INLINE __m512i _mm512_maskz_loadu_epi32(__mmask16 mask, const void* src) {
    return loadedSome<Kpr32s>(__m512i{}, mask, src);
}
KPR_INLINE void _mm512_mask_storeu_epi32(void* dst, __mmask16 mask, __m512i v) { storeSome<Kpr32s>(dst, mask, v); }
KPR_INLINE __m512i _mm512_mask_loadu_epi64(__m512i others, __mmask8 mask, const void* src) {
    return loadedSome<Kpr64s>(others, mask, src);
}
KPR_INLINE __m512i _mm512_maskz_loadu_epi64(__mmask8 mask, const void* src) {
    return loadedSome<Kpr64s>(__m512i{}, mask, src);
}
KPR_INLINE void _mm512_mask_storeu_epi64(void* dst, __mmask8 mask, __m512i v) { storeSome<Kpr64s>(dst, mask, v); }
KPR_INLINE __m256i _mm256_maskz_loadu_epi8(__mmask32 mask, const void* src) {
    return loadedSome<Kpr8u>(__m256i{}, mask, src);
}
KPR_INLINE void _mm256_mask_storeu_epi8(void* dst, __mmask32 mask, __m256i v) { storeSome<Kpr8u>(dst, mask, v); }
KPR_INLINE __m256i _mm256_mask_loadu_epi16(__m256i others, __mmask16 mask, const void* src) {
    return loadedSome<Kpr16u>(others, mask, src);
}
KPR_INLINE __m256i _mm256_maskz_loadu_epi16(__mmask16 mask, const void* src) {
    return loadedSome<Kpr16u>(__m256i{}, mask, src);
}
KPR_INLINE void _mm256_mask_storeu_epi16(void* dst, __mmask16 mask, __m256i v) { storeSome<Kpr16u>(dst, mask, v); }
KPR_INLINE __m256 _mm256_maskz_loadu_ps(__mmask8 mask, const void* src) {
    return loadedSome<Kpr32f>(__m256{}, mask, src);
}
KPR_INLINE __m256i _mm256_maskz_loadu_epi32(__mmask8 mask, const void* src) {
    return loadedSome<Kpr32s>(__m256i{}, mask, src);
}
KPR_INLINE void _mm256_mask_storeu_epi32(void* dst, __mmask8 mask, __m256i v) { storeSome<Kpr32s>(dst, mask, v); }
KPR_INLINE __m128i _mm_mask_loadu_epi8(__m128i others, __mmask16 mask, const void* src) {
    return loadedSome<Kpr8u>(others, mask, src);
}
KPR_INLINE __m128i _mm_maskz_loadu_epi8(__mmask16 mask, const void* src) {
    return loadedSome<Kpr8u>(__m128i{}, mask, src);
}
KPR_INLINE void _mm_mask_storeu_epi8(void* dst, __mmask16 mask, __m128i v) { storeSome<Kpr8u>(dst, mask, v); }
KPR_INLINE __m128i _mm_maskz_loadu_epi16(__mmask8 mask, const void* src) {
    return loadedSome<Kpr16u>(__m128i{}, mask, src);
}
KPR_INLINE void _mm_mask_storeu_epi16(void* dst, __mmask8 mask, __m128i v) { storeSome<Kpr16u>(dst, mask, v); }

template <typename T, typename Index>
KPR_LOOP __m512i gathered(__m512i others, unsigned mask, Index offsets, const void* base, int scale) {
    const auto at = lanesOf<int>(offsets);
    auto to = lanesOf<T>(others);
#pragma GCC unroll 1
    for (int i = 0; i < to.kCount; ++i) {
        const long long offset = static_cast<long long>(at.lane[i]) * scale;
        if ((mask >> i & 1) != 0) __builtin_memcpy(&to.lane[i], static_cast<const char*>(base) + offset, sizeof(T));
    }
    return sameBits<__m512i>(to);
}
KPR_INLINE __m512i _mm512_mask_i32gather_epi32(__m512i others, __mmask16 mask, __m512i at, const void* base,
                                               int scale) {
    return gathered<int>(others, mask, at, base, scale);
}
KPR_INLINE __m512i _mm512_mask_i32gather_epi64(__m512i others, __mmask8 mask, __m256i at, const void* base, int scale) {
    return gathered<long long>(others, mask, at, base, scale);
}
KPR_INLINE __m512i _mm512_i32gather_epi32(__m512i at, const void* base, int scale) {
    return gathered<int>(__m512i{}, 0xffff, at, base, scale);
}
KPR_INLINE __m512 _mm512_i32gather_ps(__m512i at, const void* base, int scale) {
    return sameBits<__m512>(gathered<int>(__m512i{}, 0xffff, at, base, scale));
}

// ---- between types

template <typename From, typename To, typename R, typename V>
KPR_INLINE R converted(V v) {
    typedef From Source __attribute__((vector_size(sizeof(V))));
    typedef To Result __attribute__((vector_size(sizeof(R))));
    return sameBits<R>(__builtin_convertvector(sameBits<Source>(v), Result));
}
KPR_INLINE __m512i _mm512_cvtepu8_epi16(__m256i v) { return converted<Kpr8u, Kpr16s, __m512i>(v); }
KPR_INLINE __m512i _mm512_cvtepu8_epi32(__m128i v) { return converted<Kpr8u, Kpr32s, __m512i>(v); }
KPR_INLINE __m512i _mm512_cvtepi8_epi32(__m128i v) { return converted<Kpr8s, Kpr32s, __m512i>(v); }
KPR_INLINE __m512i _mm512_cvtepu16_epi32(__m256i v) { return converted<Kpr16u, Kpr32s, __m512i>(v); }
KPR_INLINE __m512i _mm512_cvtepi16_epi32(__m256i v) { return converted<Kpr16s, Kpr32s, __m512i>(v); }
KPR_INLINE __m512i _mm512_cvtepu32_epi64(__m256i v) { return converted<unsigned, long long, __m512i>(v); }
KPR_INLINE __m256i _mm512_cvtepi16_epi8(__m512i v) { return converted<Kpr16s, Kpr8s, __m256i>(v); }
KPR_INLINE __m256i _mm512_cvtepi32_epi16(__m512i v) { return converted<Kpr32s, Kpr16s, __m256i>(v); }
KPR_INLINE __m128i _mm512_cvtepi32_epi8(__m512i v) { return converted<Kpr32s, Kpr8s, __m128i>(v); }
KPR_INLINE __m512 _mm512_cvtepi32_ps(__m512i v) { return converted<Kpr32s, float, __m512>(v); }
KPR_INLINE __m512 _mm512_cvtepu32_ps(__m512i v) { return converted<unsigned, float, __m512>(v); }
KPR_INLINE __m512d _mm512_cvtepi32_pd(__m256i v) { return converted<Kpr32s, double, __m512d>(v); }
KPR_INLINE __m512d _mm512_cvtepu32_pd(__m256i v) { return converted<unsigned, double, __m512d>(v); }
KPR_INLINE __m512d _mm512_cvtepu64_pd(__m512i v) { return converted<unsigned long long, double, __m512d>(v); }
KPR_INLINE __m512d _mm512_cvtps_pd(__m256 v) { return converted<float, double, __m512d>(v); }
KPR_INLINE __m256 _mm512_cvtpd_ps(__m512d v) { return converted<double, float, __m256>(v); }

// The nearest value of the narrower type.
KPR_INLINE __m256i _mm512_cvtsepi16_epi8(__m512i v) {
    return _mm512_cvtepi16_epi8(_mm512_min_epi16(_mm512_max_epi16(v, _mm512_set1_epi16(-128)), _mm512_set1_epi16(127)));
}
KPR_INLINE __m256i _mm512_cvtusepi16_epi8(__m512i v) {
    return _mm512_cvtepi16_epi8(_mm512_min_epu16(v, _mm512_set1_epi16(255)));
}
KPR_INLINE __m256i _mm512_cvtsepi32_epi16(__m512i v) {
    return _mm512_cvtepi32_epi16(
        _mm512_min_epi32(_mm512_max_epi32(v, _mm512_set1_epi32(-32768)), _mm512_set1_epi32(32767)));
}
KPR_INLINE __m256i _mm512_cvtusepi32_epi16(__m512i v) {
    return _mm512_cvtepi32_epi16(_mm512_min_epu32(v, _mm512_set1_epi32(65535)));
}
KPR_INLINE __m128i _mm512_cvtusepi32_epi8(__m512i v) {
    return _mm512_cvtepi32_epi8(_mm512_min_epu32(v, _mm512_set1_epi32(255)));
}

KPR_INLINE __m512i _mm512_cvtps_epi32(__m512 v) {
    return joined(_mm256_cvtps_epi32(halvesOf(v).lower), _mm256_cvtps_epi32(halvesOf(v).upper));
}
KPR_INLINE __m512i _mm512_cvttps_epi32(__m512 v) {
    return joined(_mm256_cvttps_epi32(halvesOf(v).lower), _mm256_cvttps_epi32(halvesOf(v).upper));
}
KPR_INLINE __m256i _mm512_cvtpd_epi32(__m512d v) {
    return _mm256_set_m128i(_mm256_cvtpd_epi32(halvesOf(v).upper), _mm256_cvtpd_epi32(halvesOf(v).lower));
}
KPR_INLINE __m512 _mm512_roundscale_ps(__m512 v, int how) {
    if (how != (_MM_FROUND_TO_NEG_INF | _MM_FROUND_NO_EXC)) __builtin_trap();
    return byHalves([](__m256 half) { return _mm256_round_ps(half, _MM_FROUND_TO_NEG_INF | _MM_FROUND_NO_EXC); }, v);
}
KPR_INLINE __m512i _mm512_cvt_roundps_epi32(__m512 v, int how) {
    if (how != (_MM_FROUND_TO_POS_INF | _MM_FROUND_NO_EXC)) __builtin_trap();
    return _mm512_cvttps_epi32(
        byHalves([](__m256 half) { return _mm256_round_ps(half, _MM_FROUND_TO_POS_INF | _MM_FROUND_NO_EXC); }, v));
}

// ---- lanes moved about

KPR_INLINE __m512i _mm512_alignr_epi32(__m512i upper, __m512i lower, int count) {
    char both[128];
    __builtin_memcpy(both, &lower, 64);
    __builtin_memcpy(both + 64, &upper, 64);
    return _mm512_loadu_si512(both + sizeof(int) * (count & 15));
}
KPR_INLINE __m512i _mm512_alignr_epi64(__m512i upper, __m512i lower, int count) {
    return _mm512_alignr_epi32(upper, lower, 2 * (count & 7));
}
// Byte i + `by` of the same 16 bytes, 0 where that lies outside of them.
KPR_INLINE __m512i movedIn16(__m512i v, int by) {
    const __m128i index = _mm_setr_epi8(0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15);
    const __m128i at = _mm_add_epi8(index, _mm_set1_epi8(static_cast<char>(by)));
    const __m128i beyond = _mm_cmpgt_epi8(at, _mm_set1_epi8(15));  // negative ones give 0 as they are
    return _mm512_shuffle_epi8(v, _mm512_broadcast_i32x4(_mm_or_si128(at, beyond)));
}
KPR_INLINE __m512i _mm512_alignr_epi8(__m512i upper, __m512i lower, int count) {
    return movedIn16(lower, count) | movedIn16(upper, count - 16);
}
KPR_INLINE __m512i _mm512_bslli_epi128(__m512i v, int count) { return movedIn16(v, -count); }

KPR_LOOP __m512i _mm512_permutexvar_epi16(__m512i from, __m512i v) {
    const auto at = lanesOf<Kpr16u>(from), in = lanesOf<Kpr16u>(v);
    return fromLanes<Kpr16u, __m512i>([&](int i) { return in.lane[at.lane[i] % 32]; });
}
KPR_INLINE __m512i _mm512_permutexvar_epi32(__m512i from, __m512i v) {
    return byHalves(
        [halves = halvesOf(v)](__m256i at) {
            const auto lower = sameBits<__m256>(_mm256_permutevar8x32_epi32(halves.lower, at));
            const auto upper = sameBits<__m256>(_mm256_permutevar8x32_epi32(halves.upper, at));
            return sameBits<__m256i>(_mm256_blendv_ps(lower, upper, sameBits<__m256>(_mm256_slli_epi32(at, 28))));
        },
        from);
}
KPR_INLINE __m512i _mm512_mask_permutexvar_epi16(__m512i others, __mmask32 mask, __m512i from, __m512i v) {
    return blended<2>(mask, others, _mm512_permutexvar_epi16(from, v));
}
KPR_INLINE __m512i _mm512_mask_permutexvar_epi32(__m512i others, __mmask16 mask, __m512i from, __m512i v) {
    return blended<4>(mask, others, _mm512_permutexvar_epi32(from, v));
}
KPR_INLINE __m512 _mm512_maskz_permutexvar_ps(__mmask16 mask, __m512i from, __m512 v) {
    return sameBits<__m512>(_mm512_maskz_mov_epi32(mask, _mm512_permutexvar_epi32(from, sameBits<__m512i>(v))));
}
KPR_LOOP __m512i _mm512_permutex2var_epi16(__m512i a, __m512i from, __m512i b) {
    const auto at = lanesOf<Kpr16u>(from), x = lanesOf<Kpr16u>(a), y = lanesOf<Kpr16u>(b);
    return fromLanes<Kpr16u, __m512i>(
        [&](int i) { return (at.lane[i] & 32) != 0 ? y.lane[at.lane[i] % 32] : x.lane[at.lane[i] % 32]; });
}
KPR_INLINE __m512i _mm512_permutex2var_epi32(__m512i a, __m512i from, __m512i b) {
    const __m512i fromB = _mm512_set1_epi32(16);
    return blended<4>(_mm512_test_epi32_mask(from, fromB), _mm512_permutexvar_epi32(from, a),
                      _mm512_permutexvar_epi32(from, b));
}
KPR_INLINE __m512 _mm512_permutex2var_ps(__m512 a, __m512i from, __m512 b) {
    return sameBits<__m512>(_mm512_permutex2var_epi32(sameBits<__m512i>(a), from, sameBits<__m512i>(b)));
}
KPR_LOOP __m512d _mm512_permutex2var_pd(__m512d a, __m512i from, __m512d b) {
    const auto at = lanesOf<unsigned long long>(from);
    const auto x = lanesOf<double>(a), y = lanesOf<double>(b);
    return fromLanes<double, __m512d>(
        [&](int i) { return (at.lane[i] & 8) != 0 ? y.lane[at.lane[i] % 8] : x.lane[at.lane[i] % 8]; });
}

// Quarters of a, then of b, two bits of `which` for each.
struct Quarters {
    __m128i quarter[4];
};
KPR_INLINE __m512i _mm512_shuffle_i32x4(__m512i a, __m512i b, int which) {
    const auto x = sameBits<Quarters>(a), y = sameBits<Quarters>(b);
    return sameBits<__m512i>(Quarters{
        {x.quarter[which & 3], x.quarter[which >> 2 & 3], y.quarter[which >> 4 & 3], y.quarter[which >> 6 & 3]}});
}
KPR_INLINE __m512i _mm512_shuffle_i64x2(__m512i a, __m512i b, int which) { return _mm512_shuffle_i32x4(a, b, which); }
KPR_INLINE __m512 _mm512_shuffle_f32x4(__m512 a, __m512 b, int which) {
    return sameBits<__m512>(_mm512_shuffle_i32x4(sameBits<__m512i>(a), sameBits<__m512i>(b), which));
}
// The lower (0x44) or the upper two lanes (0xee) of each quarter of a, and those of b behind them.
KPR_INLINE __m512 _mm512_shuffle_ps(__m512 a, __m512 b, int which) {
    if (which == 0x44) return byHalves([](__m256 p, __m256 q) { return _mm256_shuffle_ps(p, q, 0x44); }, a, b);
    if (which == 0xee) return byHalves([](__m256 p, __m256 q) { return _mm256_shuffle_ps(p, q, 0xee); }, a, b);
    __builtin_trap();
}

KPR_LOOP __m512i _mm512_maskz_compress_epi32(__mmask16 mask, __m512i v) {
    const auto from = lanesOf<int>(v);
    LaneArray<int> to = {};
    int next = 0;
#pragma GCC unroll 1
    for (int i = 0; i < 16; ++i) {
        if ((mask >> i & 1) != 0) to.lane[next++] = from.lane[i];
    }
    return sameBits<__m512i>(to);
}
KPR_LOOP __m512i _mm512_mask_expand_epi32(__m512i others, __mmask16 mask, __m512i v) {
    const auto from = lanesOf<int>(v);
    auto to = lanesOf<int>(others);
    int next = 0;
#pragma GCC unroll 1
    for (int i = 0; i < 16; ++i) {
        if ((mask >> i & 1) != 0) to.lane[i] = from.lane[next++];
    }
    return sameBits<__m512i>(to);
}

// ---- arithmetic that the halves lack

KPR_LOOP __m512i _mm512_sllv_epi16(__m512i v, __m512i counts) {
    const auto x = lanesOf<Kpr16u>(v), n = lanesOf<Kpr16u>(counts);
    return fromLanes<Kpr16u, __m512i>([&](int i) { return n.lane[i] > 15 ? 0 : x.lane[i] << n.lane[i]; });
}
KPR_LOOP __m512i _mm512_srlv_epi16(__m512i v, __m512i counts) {
    const auto x = lanesOf<Kpr16u>(v), n = lanesOf<Kpr16u>(counts);
    return fromLanes<Kpr16u, __m512i>([&](int i) { return n.lane[i] > 15 ? 0 : x.lane[i] >> n.lane[i]; });
}
KPR_LOOP __m512i _mm512_lzcnt_epi32(__m512i v) {
    const auto x = lanesOf<unsigned>(v);
    return fromLanes<unsigned, __m512i>([&](int i) { return std::countl_zero(x.lane[i]); });
}
KPR_LOOP __m512i _mm512_rolv_epi32(__m512i v, __m512i counts) {
    const auto x = lanesOf<unsigned>(v), n = lanesOf<unsigned>(counts);
    return fromLanes<unsigned, __m512i>([&](int i) {
        const unsigned by = n.lane[i] % 32;
        return x.lane[i] << by | x.lane[i] >> (31 - by) >> 1;
    });
}
KPR_INLINE __m512i _mm512_ternarylogic_epi32(__m512i a, __m512i b, __m512i c, int table) {
    __m512i all = {};
    for (int i = 0; i < 8; ++i) {
        if ((table >> i & 1) != 0) all |= ((i & 4) != 0 ? a : ~a) & ((i & 2) != 0 ? b : ~b) & ((i & 1) != 0 ? c : ~c);
    }
    return all;
}
KPR_INLINE __m512 _mm512_abs_ps(__m512 v) {
    return sameBits<__m512>(sameBits<__m512i>(v) & _mm512_set1_epi32(0x7fffffff));
}
KPR_INLINE __m512 _mm512_rsqrt14_ps(__m512 v) { return _mm512_set1_ps(1.0F) / _mm512_sqrt_ps(v); }

// a * 2^floor(b), rounded once: products by up to 2^400 are exact in double precision, and beyond lies nothing new.
KPR_LOOP __m512 _mm512_scalef_ps(__m512 a, __m512 b) {
    const auto x = lanesOf<float>(a), n = lanesOf<float>(b);
    return fromLanes<float, __m512>([&](int i) {
        const double whole = __builtin_floor(static_cast<double>(n.lane[i]));
        const auto exponent = static_cast<long long>(whole < -400 ? -400 : whole > 400 ? 400 : whole);
        const auto power = sameBits<double>((exponent + 1023) << 52);
        return static_cast<float>(static_cast<double>(x.lane[i]) * power);
    });
}

// The greater (5) or the lesser (4): a number before a quiet NaN, a signalling one before all, and -0 below +0.
KPR_LOOP __m512 _mm512_range_ps(__m512 a, __m512 b, int which) {
    const auto x = sameBits<__m512i>(a), y = sameBits<__m512i>(b);
    const bool greater = which == 5;
    const auto chosen = sameBits<__m512i>(greater ? _mm512_max_ps(a, b) : _mm512_min_ps(a, b));
    const __m512i ofEqual = greater ? x & y : x | y;
    const __mmask16 aIsNumber = _mm512_cmp_ps_mask(a, a, _CMP_EQ_OQ), bIsNumber = _mm512_cmp_ps_mask(b, b, _CMP_EQ_OQ);
    __m512i result = blended<4>(_mm512_cmp_ps_mask(a, b, _CMP_EQ_OQ), chosen, ofEqual);
    result = blended<4>(static_cast<__mmask16>(~bIsNumber), result, x);
    result = blended<4>(static_cast<__mmask16>(~aIsNumber & bIsNumber), result, y);
    const __m512i quiet = _mm512_set1_epi32(0x00400000);
    const auto signalling = [&](__m512i bits, __mmask16 isNumber) {
        return static_cast<__mmask16>(~isNumber & ~_mm512_test_epi32_mask(bits, quiet));
    };
    result = blended<4>(signalling(y, bIsNumber), result, y | quiet);
    return sameBits<__m512>(blended<4>(signalling(x, aIsNumber), result, x | quiet));
}

}  // namespace n0
