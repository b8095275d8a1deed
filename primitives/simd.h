// The vector layer: 64-byte vectors of every element type under plain names. No other file knows the instruction set.
//
// A kernel is written once, over a `part` that says which lanes of a step take part: All of them, or the First few of a
// row's last step. Loads and stores under First touch no byte beyond those lanes; lanes that were not loaded hold zero.
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

struct First {
    Bits64 bits;
    KPR_INLINE explicit First(Kpr64s lanes) : bits(_bzhi_u64(~Bits64{0}, static_cast<unsigned>(lanes))) {}
};

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

template <typename T>
KPR_INLINE Vec<T> load(const T* src, All) {
    return vec<T>(_mm512_loadu_si512(src));
}

template <typename T>
KPR_INLINE Vec<T> load(const T* src, First part) {
    if constexpr (sizeof(T) == 1) return vec<T>(_mm512_maskz_loadu_epi8(part.bits, src));
    if constexpr (sizeof(T) == 2) return vec<T>(_mm512_maskz_loadu_epi16(static_cast<__mmask32>(part.bits), src));
    if constexpr (sizeof(T) == 4) return vec<T>(_mm512_maskz_loadu_epi32(static_cast<__mmask16>(part.bits), src));
    if constexpr (sizeof(T) == 8) return vec<T>(_mm512_maskz_loadu_epi64(static_cast<__mmask8>(part.bits), src));
}

// The lanes of `src` that are named, the others from `under`; touches no byte of other lanes.
template <typename T>
KPR_INLINE Vec<T> loadOver(Vec<T> under, const T* src, Mask<T> lanes) {
    if constexpr (sizeof(T) == 1) return vec<T>(_mm512_mask_loadu_epi8(bits(under), lanes, src));
    if constexpr (sizeof(T) == 2) return vec<T>(_mm512_mask_loadu_epi16(bits(under), lanes, src));
    if constexpr (sizeof(T) == 4) return vec<T>(_mm512_mask_loadu_epi32(bits(under), lanes, src));
}

template <typename T>
KPR_INLINE void store(T* dst, Vec<T> v, All) {
    _mm512_storeu_si512(dst, bits(v));
}

template <typename T>
KPR_INLINE void store(T* dst, Vec<T> v, First part) {
    if constexpr (sizeof(T) == 1) _mm512_mask_storeu_epi8(dst, part.bits, bits(v));
    if constexpr (sizeof(T) == 2) _mm512_mask_storeu_epi16(dst, static_cast<__mmask32>(part.bits), bits(v));
    if constexpr (sizeof(T) == 4) _mm512_mask_storeu_epi32(dst, static_cast<__mmask16>(part.bits), bits(v));
    if constexpr (sizeof(T) == 8) _mm512_mask_storeu_epi64(dst, static_cast<__mmask8>(part.bits), bits(v));
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
KPR_INLINE Vec<T> operator&(Vec<T> a, Vec<T> b) {
    return vec<T>(_mm512_and_si512(bits(a), bits(b)));
}

// a where a < b, else b: of floats, b where either is a NaN.
template <typename T>
KPR_INLINE Vec<T> min(Vec<T> a, Vec<T> b) {
    if constexpr (std::is_same_v<T, Kpr8u>) return vec<T>(_mm512_min_epu8(bits(a), bits(b)));
    if constexpr (std::is_same_v<T, Kpr16u>) return vec<T>(_mm512_min_epu16(bits(a), bits(b)));
    if constexpr (std::is_same_v<T, Kpr16s>) return vec<T>(_mm512_min_epi16(bits(a), bits(b)));
    if constexpr (std::is_same_v<T, Kpr32s>) return vec<T>(_mm512_min_epi32(bits(a), bits(b)));
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

// a - b, of integers the nearest value of T's range.
template <typename T>
KPR_INLINE Vec<T> subtract(Vec<T> a, Vec<T> b) {
    if constexpr (std::is_same_v<T, Kpr8u>) return vec<T>(_mm512_subs_epu8(bits(a), bits(b)));
    if constexpr (std::is_same_v<T, Kpr16u>) return vec<T>(_mm512_subs_epu16(bits(a), bits(b)));
    if constexpr (std::is_same_v<T, Kpr16s>) return vec<T>(_mm512_subs_epi16(bits(a), bits(b)));
    if constexpr (std::is_floating_point_v<T>) return a - b;
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

// ---- masks

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

// ---- narrow elements in the lanes of a wider type

// `lanes` elements of fewer than 64 bytes: in an __m128i up to 16 bytes, else in an __m256i.
template <int lanes, typename T>
KPR_INLINE auto loadNarrow(const T* src, All) {
    if constexpr (lanes * sizeof(T) == 8) return _mm_loadl_epi64(reinterpret_cast<const __m128i*>(src));
    if constexpr (lanes * sizeof(T) == 16) return _mm_loadu_si128(reinterpret_cast<const __m128i*>(src));
    if constexpr (lanes * sizeof(T) == 32) return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(src));
}

template <int lanes, typename T>
KPR_INLINE auto loadNarrow(const T* src, First part) {
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
KPR_INLINE void storeNarrow(T* dst, Narrow v, First part) {
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

// kLanes<From> elements, each the nearest value of To's range: From is signed.
template <typename To, typename From, typename Part>
KPR_INLINE void storeAs(To* dst, Vec<From> v, Part part) {
    constexpr int lanes = kLanes<From>;
    const __m512i positive = bits(max(v, zero<From>()));
    if constexpr (std::is_same_v<From, To>) store(dst, v, part);
    if constexpr (std::is_same_v<From, Kpr16s> && std::is_same_v<To, Kpr8u>)
        storeNarrow<lanes>(dst, _mm512_cvtusepi16_epi8(positive), part);
    if constexpr (std::is_same_v<From, Kpr32s> && std::is_same_v<To, Kpr8u>)
        storeNarrow<lanes>(dst, _mm512_cvtusepi32_epi8(positive), part);
    if constexpr (std::is_same_v<From, Kpr32s> && std::is_same_v<To, Kpr16u>)
        storeNarrow<lanes>(dst, _mm512_cvtusepi32_epi16(positive), part);
    if constexpr (std::is_same_v<From, Kpr32s> && std::is_same_v<To, Kpr16s>)
        storeNarrow<lanes>(dst, _mm512_cvtsepi32_epi16(bits(v)), part);
}

}  // namespace n0
