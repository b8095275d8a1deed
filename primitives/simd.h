// The vector layer: 64-byte vectors of every element type under plain names. No other file knows the instruction set.
//
// A kernel is written once, over a `part` that says which lanes of a step take part: All of them, the First few of a
// row's last step, or any Lanes. Loads and stores touch no byte of other lanes; lanes that were not loaded hold zero.
// Integer lanes wrap, float lanes round to nearest even.
#pragma once

#include <kprcv/types.h>

#include <type_traits>

#pragma GCC diagnostic push
#ifndef __clang__  // GCC 12 takes its own "undefined vector" idiom for a use of an uninitialised variable
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#pragma GCC diagnostic ignored "-Wuninitialized"
#endif
#include <immintrin.h>
#pragma GCC diagnostic pop

#define KPR_INLINE [[gnu::always_inline]] inline

namespace n0 {

template <typename T>
struct Vec {
    typedef T Raw __attribute__((vector_size(64)));
    Raw raw;
};

template <typename T>
inline constexpr int kLanes = 64 / sizeof(T);

// One bit a lane, the lowest for the first.
template <typename T>
using Mask = std::conditional_t<
    sizeof(T) == 1, __mmask64,
    std::conditional_t<sizeof(T) == 2, __mmask32, std::conditional_t<sizeof(T) == 4, __mmask16, __mmask8>>>;

using Bits64 = unsigned long long;

struct All {};

// Any lanes, one bit each, the lowest for the first.
struct Lanes {
    Bits64 bits;
};

struct First : Lanes {
    KPR_INLINE explicit First(Kpr64s lanes) { bits = _bzhi_u64(~Bits64{0}, static_cast<unsigned>(lanes)); }
};

// The part and the lane behind it.
KPR_INLINE All oneMore(All part) { return part; }
KPR_INLINE First oneMore(First part) { return First{_mm_popcnt_u64(part.bits) + 1}; }

// All, of a destination that lies on a 64-byte boundary: whole vectors are stored past the cache.
struct Streamed : All {};

KPR_INLINE Lanes operator&(All, Lanes b) { return b; }
KPR_INLINE Lanes operator&(Lanes a, Lanes b) { return {a.bits & b.bits}; }

// ---- between vectors and the processor's own types

template <typename T>
KPR_INLINE Vec<T> vec(__m512i v) {
    return {(typename Vec<T>::Raw)v};
}
KPR_INLINE Vec<Kpr32f> vec(__m512 v) { return {(Vec<Kpr32f>::Raw)v}; }
KPR_INLINE Vec<Kpr64f> vec(__m512d v) { return {(Vec<Kpr64f>::Raw)v}; }
template <typename T>
KPR_INLINE __m512i bits(Vec<T> v) {
    return (__m512i)v.raw;
}
KPR_INLINE __m512 ps(Vec<Kpr32f> v) { return (__m512)v.raw; }
KPR_INLINE __m512d pd(Vec<Kpr64f> v) { return (__m512d)v.raw; }

// The same bits as lanes of another type.
template <typename To, typename T>
KPR_INLINE Vec<To> as(Vec<T> v) {
    return {(typename Vec<To>::Raw)v.raw};
}

// ---- load, store, broadcast

// a where the mask is set, b elsewhere.
template <typename T>
KPR_INLINE Vec<T> select(Mask<T> mask, Vec<T> a, Vec<T> b) {
    if constexpr (sizeof(T) == 1) return vec<T>(_mm512_mask_blend_epi8(mask, bits(b), bits(a)));
    if constexpr (sizeof(T) == 2) return vec<T>(_mm512_mask_blend_epi16(mask, bits(b), bits(a)));
    if constexpr (sizeof(T) == 4) return vec<T>(_mm512_mask_blend_epi32(mask, bits(b), bits(a)));
    if constexpr (sizeof(T) == 8) return vec<T>(_mm512_mask_blend_epi64(mask, bits(b), bits(a)));
}

template <typename T>
KPR_INLINE Vec<T> load(const T* src, All) {
    return vec<T>(_mm512_loadu_si512(src));
}

template <typename T>
KPR_INLINE Vec<T> load(const T* src, Lanes part) {
    if constexpr (sizeof(T) == 1) return vec<T>(_mm512_maskz_loadu_epi8(part.bits, src));
    if constexpr (sizeof(T) == 2) return vec<T>(_mm512_maskz_loadu_epi16(static_cast<__mmask32>(part.bits), src));
    if constexpr (sizeof(T) == 4) return vec<T>(_mm512_maskz_loadu_epi32(static_cast<__mmask16>(part.bits), src));
    if constexpr (sizeof(T) == 8) return vec<T>(_mm512_maskz_loadu_epi64(static_cast<__mmask8>(part.bits), src));
}

// The same, but that lanes which are not loaded hold what `others` has.
template <typename T>
KPR_INLINE Vec<T> load(const T* src, All, Vec<T> /*others*/) {
    return load(src, All{});
}

template <typename T>
KPR_INLINE Vec<T> load(const T* src, Lanes part, Vec<T> others) {
    const __m512i o = bits(others);
    if constexpr (sizeof(T) == 1) return vec<T>(_mm512_mask_loadu_epi8(o, part.bits, src));
    if constexpr (sizeof(T) == 2) return vec<T>(_mm512_mask_loadu_epi16(o, static_cast<__mmask32>(part.bits), src));
    if constexpr (sizeof(T) == 4) return vec<T>(_mm512_mask_loadu_epi32(o, static_cast<__mmask16>(part.bits), src));
    if constexpr (sizeof(T) == 8) return vec<T>(_mm512_mask_loadu_epi64(o, static_cast<__mmask8>(part.bits), src));
}

// The same for a vector that has several uses: GCC would read memory anew for each of them, and a vector that lies
// across two cache lines costs two reads.
template <typename T, typename Part>
KPR_INLINE Vec<T> loadOnce(const T* src, Part part) {
    Vec<T> v = load(src, part);
    asm("" : "+v"(v.raw));
    return v;
}

template <typename T>
KPR_INLINE void store(T* dst, Vec<T> v, All) {
    _mm512_storeu_si512(dst, bits(v));
}

template <typename T>
KPR_INLINE void store(T* dst, Vec<T> v, Lanes part) {
    if constexpr (sizeof(T) == 1) _mm512_mask_storeu_epi8(dst, part.bits, bits(v));
    if constexpr (sizeof(T) == 2) _mm512_mask_storeu_epi16(dst, static_cast<__mmask32>(part.bits), bits(v));
    if constexpr (sizeof(T) == 4) _mm512_mask_storeu_epi32(dst, static_cast<__mmask16>(part.bits), bits(v));
    if constexpr (sizeof(T) == 8) _mm512_mask_storeu_epi64(dst, static_cast<__mmask8>(part.bits), bits(v));
}

template <typename T>
KPR_INLINE void store(T* dst, Vec<T> v, Streamed) {
    _mm512_stream_si512(reinterpret_cast<__m512i*>(dst), bits(v));
}

// Streamed stores come before whatever is stored from here on.
KPR_INLINE void endStreaming() { _mm_sfence(); }

// kLanes<T> pixels of three channels, in the elements of a, b and c one after another.
template <typename T>
KPR_INLINE void storePixels(T* dst, Vec<T> a, Vec<T> b, Vec<T> c, All part) {
    store(dst, a, part);
    store(dst + kLanes<T>, b, part);
    store(dst + 2 * kLanes<T>, c, part);
}

template <typename T>
KPR_INLINE void storePixels(T* dst, Vec<T> a, Vec<T> b, Vec<T> c, First part) {
    const Kpr64s elements = 3 * _mm_popcnt_u64(part.bits);
    const auto after = [=](Kpr64s count) { return First{elements > count ? elements - count : 0}; };
    store(dst, a, after(0));
    store(dst + kLanes<T>, b, after(kLanes<T>));
    store(dst + 2 * kLanes<T>, c, after(2 * kLanes<T>));
}

template <typename T>
KPR_INLINE Vec<T> broadcast(T value) {
    if constexpr (std::is_same_v<T, Kpr32f>) return vec(_mm512_set1_ps(value));
    if constexpr (std::is_same_v<T, Kpr64f>) return vec(_mm512_set1_pd(value));
    if constexpr (std::is_integral_v<T> && sizeof(T) == 1) return vec<T>(_mm512_set1_epi8(static_cast<char>(value)));
    if constexpr (std::is_integral_v<T> && sizeof(T) == 2) return vec<T>(_mm512_set1_epi16(static_cast<Kpr16s>(value)));
    if constexpr (std::is_integral_v<T> && sizeof(T) == 4) return vec<T>(_mm512_set1_epi32(static_cast<Kpr32s>(value)));
    if constexpr (std::is_integral_v<T> && sizeof(T) == 8) return vec<T>(_mm512_set1_epi64(static_cast<Kpr64s>(value)));
}

template <typename T>
KPR_INLINE Vec<T> zero() {
    return vec<T>(_mm512_setzero_si512());
}

// The lanes of v that the part has, those of `others` elsewhere.
template <typename T>
KPR_INLINE Vec<T> merge(All, Vec<T> v, Vec<T> /*others*/) {
    return v;
}
template <typename T>
KPR_INLINE Vec<T> merge(Lanes part, Vec<T> v, Vec<T> others) {
    return select(static_cast<Mask<T>>(part.bits), v, others);
}

template <typename T>
KPR_INLINE T firstLane(Vec<T> v) {
    return v.raw[0];
}

// Lanes moved down by so many bytes, those that fall out coming in above: within the whole vector where that is a
// multiple of 16 bytes, within each of its quarters where it is less.
template <int bytes, typename T>
KPR_INLINE Vec<T> rotate(Vec<T> v) {
    if constexpr (bytes % 16 == 0) return vec<T>(_mm512_alignr_epi64(bits(v), bits(v), bytes / 8));
    if constexpr (bytes < 16) return vec<T>(_mm512_alignr_epi8(bits(v), bits(v), bytes));
}

// The vector that begins `bytes` after the start of `v`, at most 64, where `next` follows v.
template <int bytes, typename T>
KPR_INLINE Vec<T> ahead(Vec<T> v, Vec<T> next) {
    constexpr int whole = bytes / 16 * 4, rest = bytes % 16;  // in 32-bit lanes, in bytes
    if constexpr (bytes == 0) return v;
    if constexpr (bytes % 4 == 0 && bytes > 0 && bytes < 64)
        return vec<T>(_mm512_alignr_epi32(bits(next), bits(v), bytes / 4));
    if constexpr (bytes == 64) return next;
    if constexpr (bytes % 4 != 0) {
        const Vec<T> lower = ahead<whole * 4>(v, next), upper = ahead<whole * 4 + 16>(v, next);
        return vec<T>(_mm512_alignr_epi8(bits(upper), bits(lower), rest));
    }
}

// choose(a, b) over all lanes, the result in every lane.
template <int bytes = 32, typename T, typename Choice>
KPR_INLINE Vec<T> fold(Vec<T> v, Choice choose) {
    const Vec<T> half = choose(v, rotate<bytes>(v));
    if constexpr (bytes > sizeof(T)) return fold<bytes / 2>(half, choose);
    return half;
}

// ---- arithmetic, lane by lane

// The unsigned element of T's size: integer lanes are added and multiplied in it, so that they wrap.
template <typename T>
using Wrapping =
    std::conditional_t<std::is_floating_point_v<T>, T,
                       std::conditional_t<sizeof(T) == 1, Kpr8u,
                                          std::conditional_t<sizeof(T) == 2, Kpr16u,
                                                             std::conditional_t<sizeof(T) == 4, unsigned, Bits64>>>>;

template <typename T>
KPR_INLINE Vec<T> operator+(Vec<T> a, Vec<T> b) {
    return as<T>(Vec<Wrapping<T>>{as<Wrapping<T>>(a).raw + as<Wrapping<T>>(b).raw});
}
template <typename T>
KPR_INLINE Vec<T> operator-(Vec<T> a, Vec<T> b) {
    return as<T>(Vec<Wrapping<T>>{as<Wrapping<T>>(a).raw - as<Wrapping<T>>(b).raw});
}
template <typename T>
KPR_INLINE Vec<T> operator*(Vec<T> a, Vec<T> b) {
    return as<T>(Vec<Wrapping<T>>{as<Wrapping<T>>(a).raw * as<Wrapping<T>>(b).raw});
}
template <typename T>
KPR_INLINE Vec<T> operator/(Vec<T> a, Vec<T> b) {
    static_assert(std::is_floating_point_v<T>);
    return {a.raw / b.raw};
}
template <typename T>
KPR_INLINE Vec<T> operator&(Vec<T> a, Vec<T> b) {
    return vec<T>(_mm512_and_si512(bits(a), bits(b)));
}
template <typename T>
KPR_INLINE Vec<T> operator|(Vec<T> a, Vec<T> b) {
    return vec<T>(_mm512_or_si512(bits(a), bits(b)));
}

// a - b, of integers the nearest value of T's range.
template <typename T>
KPR_INLINE Vec<T> subtractSaturated(Vec<T> a, Vec<T> b) {
    if constexpr (std::is_same_v<T, Kpr8u>) return vec<T>(_mm512_subs_epu8(bits(a), bits(b)));
    if constexpr (std::is_same_v<T, Kpr16u>) return vec<T>(_mm512_subs_epu16(bits(a), bits(b)));
    if constexpr (std::is_same_v<T, Kpr16s>) return vec<T>(_mm512_subs_epi16(bits(a), bits(b)));
    if constexpr (std::is_floating_point_v<T>) return a - b;
}

// Integer lanes of up to 4 bytes moved by 0 to 31 bits, which may be all they have; those of a signed type keep their
// sign on the way right.
template <typename T>
KPR_INLINE Vec<T> operator<<(Vec<T> v, int count) {
    static_assert(std::is_integral_v<T> && sizeof(T) <= 4);
    const __m128i n = _mm_cvtsi32_si128(count);
    if constexpr (sizeof(T) == 4) return vec<T>(_mm512_sll_epi32(bits(v), n));
    if constexpr (sizeof(T) == 2) return vec<T>(_mm512_sll_epi16(bits(v), n));
    if constexpr (sizeof(T) == 1) {  // in pairs, without what crossed over from the neighbour
        return vec<T>(_mm512_sll_epi16(bits(v), n)) & broadcast(static_cast<T>(Bits64{0xff} << count));
    }
}
template <typename T>
KPR_INLINE Vec<T> operator>>(Vec<T> v, int count) {
    static_assert(std::is_unsigned_v<T> ? sizeof(T) <= 4 : sizeof(T) == 4);
    const __m128i n = _mm_cvtsi32_si128(count);
    if constexpr (std::is_signed_v<T>) return vec<T>(_mm512_sra_epi32(bits(v), n));
    if constexpr (std::is_unsigned_v<T> && sizeof(T) == 4) return vec<T>(_mm512_srl_epi32(bits(v), n));
    if constexpr (sizeof(T) == 2) return vec<T>(_mm512_srl_epi16(bits(v), n));
    if constexpr (sizeof(T) == 1) {
        return vec<T>(_mm512_srl_epi16(bits(v), n)) & broadcast(static_cast<T>(0xff >> count));
    }
}

template <typename T>
KPR_INLINE Vec<T> operator^(Vec<T> a, Vec<T> b) {
    return vec<T>(_mm512_xor_si512(bits(a), bits(b)));
}

// a where a < b, else b: of floats, b where either is a NaN.
template <typename T>
KPR_INLINE Vec<T> min(Vec<T> a, Vec<T> b) {
    if constexpr (std::is_same_v<T, Kpr8u>) return vec<T>(_mm512_min_epu8(bits(a), bits(b)));
    if constexpr (std::is_same_v<T, Kpr16u>) return vec<T>(_mm512_min_epu16(bits(a), bits(b)));
    if constexpr (std::is_same_v<T, Kpr16s>) return vec<T>(_mm512_min_epi16(bits(a), bits(b)));
    if constexpr (std::is_same_v<T, Kpr32s>) return vec<T>(_mm512_min_epi32(bits(a), bits(b)));
    if constexpr (std::is_same_v<T, unsigned>) return vec<T>(_mm512_min_epu32(bits(a), bits(b)));
    if constexpr (std::is_same_v<T, Kpr32f>) return vec(_mm512_min_ps(ps(a), ps(b)));
    if constexpr (std::is_same_v<T, Kpr64f>) return vec(_mm512_min_pd(pd(a), pd(b)));
}

// a where a > b, else b: of floats, b where either is a NaN.
template <typename T>
KPR_INLINE Vec<T> max(Vec<T> a, Vec<T> b) {
    if constexpr (std::is_same_v<T, Kpr8u>) return vec<T>(_mm512_max_epu8(bits(a), bits(b)));
    if constexpr (std::is_same_v<T, Kpr16u>) return vec<T>(_mm512_max_epu16(bits(a), bits(b)));
    if constexpr (std::is_same_v<T, Kpr16s>) return vec<T>(_mm512_max_epi16(bits(a), bits(b)));
    if constexpr (std::is_same_v<T, Kpr32s>) return vec<T>(_mm512_max_epi32(bits(a), bits(b)));
    if constexpr (std::is_same_v<T, Kpr32f>) return vec(_mm512_max_ps(ps(a), ps(b)));
    if constexpr (std::is_same_v<T, Kpr64f>) return vec(_mm512_max_pd(pd(a), pd(b)));
}

// The larger or the smaller value. Of floats a number counts before a NaN and +0 is larger than -0, so that the order
// in which many are joined does not matter.
template <typename T>
KPR_INLINE Vec<T> larger(Vec<T> a, Vec<T> b) {
    constexpr int maximum = 5;  // the greater of the two, its sign kept
    if constexpr (std::is_same_v<T, Kpr32f>) return vec(_mm512_range_ps(ps(a), ps(b), maximum));
    if constexpr (std::is_integral_v<T>) return max(a, b);
}
template <typename T>
KPR_INLINE Vec<T> smaller(Vec<T> a, Vec<T> b) {
    constexpr int minimum = 4;  // the lesser of the two, its sign kept
    if constexpr (std::is_same_v<T, Kpr32f>) return vec(_mm512_range_ps(ps(a), ps(b), minimum));
    if constexpr (std::is_integral_v<T>) return min(a, b);
}

// |a - b|: exact for unsigned integers, a difference rounded once and its sign cleared for floats.
template <typename T>
KPR_INLINE Vec<T> absDiff(Vec<T> a, Vec<T> b) {
    if constexpr (std::is_floating_point_v<T>)
        return vec(_mm512_abs_ps(ps(a - b)));
    else
        return max(a, b) - min(a, b);
}

// a * b + c, rounded once.
KPR_INLINE Vec<Kpr32f> fma(Vec<Kpr32f> a, Vec<Kpr32f> b, Vec<Kpr32f> c) {
    return vec(_mm512_fmadd_ps(ps(a), ps(b), ps(c)));
}

// ---- 16-bit lanes and their sums in 32 bits

// Lane i is a[2i] * b[2i] + a[2i+1] * b[2i+1]; the one sum that exceeds a signed lane, of four -32768, wraps to an
// unsigned 2^31.
KPR_INLINE Vec<Kpr32s> sumPairs(Vec<Kpr16s> a, Vec<Kpr16s> b) {
    return vec<Kpr32s>(_mm512_madd_epi16(bits(a), bits(b)));
}

// Lane i is a[2i] * b[2i] + a[2i+1] * b[2i+1], the nearest value of 16 bits.
KPR_INLINE Vec<Kpr16s> sumPairs(Vec<Kpr8u> a, Vec<Kpr8s> b) {
    return vec<Kpr16s>(_mm512_maddubs_epi16(bits(a), bits(b)));
}

// The upper 16 bits of the product.
KPR_INLINE Vec<Kpr16u> mulHigh(Vec<Kpr16u> a, Vec<Kpr16u> b) {
    return vec<Kpr16u>(_mm512_mulhi_epu16(bits(a), bits(b)));
}
KPR_INLINE Vec<Kpr16s> mulHigh(Vec<Kpr16s> a, Vec<Kpr16s> b) {
    return vec<Kpr16s>(_mm512_mulhi_epi16(bits(a), bits(b)));
}

// a * b / 2^15 to nearest, ties up.
KPR_INLINE Vec<Kpr16s> mulRounded(Vec<Kpr16s> a, Vec<Kpr16s> b) {
    return vec<Kpr16s>(_mm512_mulhrs_epi16(bits(a), bits(b)));
}

// The lanes of a and b in turn: of the lower or upper half of each block of 16 bytes.
template <typename T>
KPR_INLINE Vec<T> interleaveLower(Vec<T> a, Vec<T> b) {
    if constexpr (sizeof(T) == 1) return vec<T>(_mm512_unpacklo_epi8(bits(a), bits(b)));
    if constexpr (sizeof(T) == 2) return vec<T>(_mm512_unpacklo_epi16(bits(a), bits(b)));
}
template <typename T>
KPR_INLINE Vec<T> interleaveUpper(Vec<T> a, Vec<T> b) {
    if constexpr (sizeof(T) == 1) return vec<T>(_mm512_unpackhi_epi8(bits(a), bits(b)));
    if constexpr (sizeof(T) == 2) return vec<T>(_mm512_unpackhi_epi16(bits(a), bits(b)));
}

// Block of 16 bytes by block, the lanes of `lower` and then those of `upper`, each the nearest value of To's range: the
// order that the interleaving took apart.
template <typename To>
KPR_INLINE Vec<To> join(Vec<Kpr32s> lower, Vec<Kpr32s> upper) {
    if constexpr (std::is_same_v<To, Kpr16s>) return vec<To>(_mm512_packs_epi32(bits(lower), bits(upper)));
    if constexpr (std::is_same_v<To, Kpr16u>) return vec<To>(_mm512_packus_epi32(bits(lower), bits(upper)));
}

// The lanes of a and b in turn, each the nearest value of To's range.
template <typename To>
KPR_INLINE Vec<To> alternate(Vec<Kpr32s> a, Vec<Kpr32s> b) {
    const __m512i from = _mm512_broadcast_i32x4(_mm_setr_epi8(0, 1, 8, 9, 2, 3, 10, 11, 4, 5, 12, 13, 6, 7, 14, 15));
    return vec<To>(_mm512_shuffle_epi8(bits(join<To>(a, b)), from));
}

KPR_INLINE Vec<Kpr8u> join(Vec<Kpr16u> lower, Vec<Kpr16u> upper) {  // of lanes below 2^15
    return vec<Kpr8u>(_mm512_packus_epi16(bits(lower), bits(upper)));
}

// Correctly rounded; a NaN of what is below zero, and -0 of -0.
KPR_INLINE Vec<Kpr32f> sqrt(Vec<Kpr32f> v) { return vec(_mm512_sqrt_ps(ps(v))); }

KPR_INLINE Vec<Kpr32f> abs(Vec<Kpr32f> v) { return vec(_mm512_abs_ps(ps(v))); }

// To the nearest value of the other type, ties to even. What does not fit into an integer, and a NaN, becomes the
// least.
KPR_INLINE Vec<Kpr32f> toFloat(Vec<unsigned> v) { return vec(_mm512_cvtepu32_ps(bits(v))); }
KPR_INLINE Vec<Kpr32f> toFloat(Vec<Kpr32s> v) { return vec(_mm512_cvtepi32_ps(bits(v))); }
KPR_INLINE Vec<Kpr32s> toInteger(Vec<Kpr32f> v) { return vec<Kpr32s>(_mm512_cvtps_epi32(ps(v))); }
KPR_INLINE Vec<Kpr32s> truncate(Vec<Kpr32f> v) { return vec<Kpr32s>(_mm512_cvttps_epi32(ps(v))); }  // toward zero

// v * 2^exponent, rounded once; an exponent may be any integer.
KPR_INLINE Vec<Kpr32f> timesPowerOf2(Vec<Kpr32f> v, Vec<Kpr32f> exponent) {
    return vec(_mm512_scalef_ps(ps(v), ps(exponent)));
}

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

// Lanes moved by so many bits; those of a signed type keep their sign on the way right.
template <int count, typename T>
KPR_INLINE Vec<T> shiftLeft(Vec<T> v) {
    static_assert(sizeof(T) == 2);
    return vec<T>(_mm512_slli_epi16(bits(v), count));
}
template <int count, typename T>
KPR_INLINE Vec<T> shiftRight(Vec<T> v) {
    if constexpr (std::is_same_v<T, Kpr16s>) return vec<T>(_mm512_srai_epi16(bits(v), count));
    if constexpr (std::is_same_v<T, Kpr64s> || std::is_same_v<T, Bits64>)
        return vec<T>(_mm512_srli_epi64(bits(v), count));
    if constexpr (std::is_same_v<T, Kpr16u>) return vec<T>(_mm512_srli_epi16(bits(v), count));
}

// Each lane moved by as many bits as the same lane of the counts says; nothing is left from 16 on.
KPR_INLINE Vec<Kpr16u> operator<<(Vec<Kpr16u> v, Vec<Kpr16u> counts) {
    return vec<Kpr16u>(_mm512_sllv_epi16(bits(v), bits(counts)));
}
KPR_INLINE Vec<Kpr16u> operator>>(Vec<Kpr16u> v, Vec<Kpr16u> counts) {
    return vec<Kpr16u>(_mm512_srlv_epi16(bits(v), bits(counts)));
}

// Each lane's bits moved up by as many as the same lane of the counts says, those that fall out coming in below.
KPR_INLINE Vec<Kpr32s> rotateBits(Vec<Kpr32s> v, Vec<Kpr32s> counts) {
    return vec<Kpr32s>(_mm512_rolv_epi32(bits(v), bits(counts)));
}

// Any function of three bits, bit by bit: `table` is what it makes of the columns 0xf0, 0xcc and 0xaa.
template <int table, typename T>
KPR_INLINE Vec<T> combine(Vec<T> a, Vec<T> b, Vec<T> c) {
    return vec<T>(_mm512_ternarylogic_epi32(bits(a), bits(b), bits(c), table));
}

// Lane i is v's lane from[i].
template <typename T, typename Index>
KPR_INLINE Vec<T> permute(Vec<T> v, Vec<Index> from) {
    static_assert(sizeof(T) == sizeof(Index));
    if constexpr (sizeof(T) == 2) return vec<T>(_mm512_permutexvar_epi16(bits(from), bits(v)));
    if constexpr (sizeof(T) == 4) return vec<T>(_mm512_permutexvar_epi32(bits(from), bits(v)));
}

// ---- sums into wider lanes

// Of eight neighbouring bytes each.
KPR_INLINE Vec<Kpr64s> sumOfBytes(Vec<Kpr8u> v) {
    return vec<Kpr64s>(_mm512_sad_epu8(bits(v), _mm512_setzero_si512()));
}

// The two unsigned lanes in each place of a 64-bit lane.
KPR_INLINE Vec<Kpr64s> sumPairs(Vec<Kpr32s> v) {
    const auto pairs = as<Kpr64s>(v);
    return (pairs & broadcast<Kpr64s>(0xffffffff)) + shiftRight<32>(pairs);
}

// Eight of the sixteen lanes, the lower or the upper ones.
template <int which>
KPR_INLINE Vec<Kpr64f> half(Vec<Kpr32f> v) {
    if constexpr (which == 0) return vec(_mm512_cvtps_pd(_mm512_castps512_ps256(ps(v))));
    if constexpr (which == 1) return vec(_mm512_cvtps_pd(_mm512_extractf32x8_ps(ps(v), 1)));
}

// ---- masks

// Where a < b: of floats, false where either is a NaN.
template <typename T>
KPR_INLINE Mask<T> less(Vec<T> a, Vec<T> b) {
    if constexpr (std::is_same_v<T, Kpr8u>) return _mm512_cmplt_epu8_mask(bits(a), bits(b));
    if constexpr (std::is_same_v<T, Kpr16u>) return _mm512_cmplt_epu16_mask(bits(a), bits(b));
    if constexpr (std::is_same_v<T, Kpr16s>) return _mm512_cmplt_epi16_mask(bits(a), bits(b));
    if constexpr (std::is_same_v<T, Kpr32s>) return _mm512_cmplt_epi32_mask(bits(a), bits(b));
    if constexpr (std::is_same_v<T, Kpr32f>) return _mm512_cmp_ps_mask(ps(a), ps(b), _CMP_LT_OQ);
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

// As many of the set bits of `where`, from the lowest on, as `bits` says one by one.
KPR_INLINE Bits64 scatterBits(Bits64 bits, Bits64 where) { return _pdep_u64(bits, where); }

// The bits of v at the places of `where`, from the lowest on.
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

// ---- lanes moved about

// A constant whose lane i is rule(i); the rule is a lambda that captures nothing.
template <typename T, typename Rule>
struct LaneTable {
    alignas(64) T lanes[kLanes<T>] = {};
    constexpr explicit LaneTable(Rule rule) {
        for (int i = 0; i < kLanes<T>; ++i) lanes[i] = static_cast<T>(rule(i));
    }
};
template <typename T, typename Rule>
KPR_INLINE Vec<T> laneConstant(Rule) {
    static constexpr LaneTable<T, Rule> table{Rule{}};
    return load(table.lanes, All{});
}

// Lane i is lane from[i] of those of a and, from 16 on, of b.
KPR_INLINE Vec<Kpr32s> permute(Vec<Kpr32s> a, Vec<Kpr32s> b, Vec<Kpr32s> from) {
    return vec<Kpr32s>(_mm512_permutex2var_epi32(bits(a), bits(from), bits(b)));
}

// Byte i is v's byte from[i] of the same 16 bytes, counted from their first.
KPR_INLINE Vec<Kpr8u> permuteIn16(Vec<Kpr8u> v, Vec<Kpr8u> from) {
    return vec<Kpr8u>(_mm512_shuffle_epi8(bits(v), bits(from)));
}

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
