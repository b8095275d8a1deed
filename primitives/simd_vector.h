// Vectors, the lanes of them that take part in a step, and how they come from memory and go back to it.
#pragma once

#include <kprcv/types.h>

#include <type_traits>

#include "primitives/workspace.h"

#define KPR_INLINE [[gnu::always_inline]] inline

#ifdef __AVX512BW__
#pragma GCC diagnostic push
#ifndef __clang__  // GCC 12 takes its own "undefined vector" idiom for a use of an uninitialised variable
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#pragma GCC diagnostic ignored "-Wuninitialized"
#endif
#include <immintrin.h>
#pragma GCC diagnostic pop
#else
#include "primitives/simd_halves.h"
#endif

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

// The first `lanes` lanes: all of them from a vector's number on. A row may have more pixels left than the number can
// say, which is 255 at most; callers take the lesser of what is left and of their step.
struct First : Lanes {
    KPR_INLINE explicit First(Kpr64s lanes) {
        mustHold(lanes >= 0 && lanes <= 255);  // the instruction looks at eight bits of it
        bits = _bzhi_u64(~Bits64{0}, static_cast<unsigned>(lanes));
    }
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

// The vector, which the compiler cannot look into: it stays as it was made, where making it anew from other values for
// each use seems cheaper to GCC than it is.
template <typename T>
KPR_INLINE Vec<T> asMade(Vec<T> v) {
#ifdef __AVX512BW__  // of two halves, no register holds it
    asm("" : "+v"(v.raw));
#endif
    return v;
}

// A load of a vector that has several uses: GCC would read memory anew for each of them, and a vector that lies
// across two cache lines costs two reads.
template <typename T, typename Part>
KPR_INLINE Vec<T> loadOnce(const T* src, Part part) {
    return asMade(load(src, part));
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

}  // namespace n0
