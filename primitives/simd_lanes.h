// Lanes moved about.
#pragma once

#include "primitives/simd_arithmetic.h"

namespace n0 {

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

// In each block of 16 bytes the lanes of `lower` and then those of `upper`, each the nearest value of To's range. What
// was made of interleaveLower and of interleaveUpper comes back into the order of the row.
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

// Lane i is v's lane from[i].
template <typename T, typename Index>
KPR_INLINE Vec<T> permute(Vec<T> v, Vec<Index> from) {
    static_assert(sizeof(T) == sizeof(Index));
    if constexpr (sizeof(T) == 2) return vec<T>(_mm512_permutexvar_epi16(bits(from), bits(v)));
    if constexpr (sizeof(T) == 4) return vec<T>(_mm512_permutexvar_epi32(bits(from), bits(v)));
}

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
KPR_INLINE Vec<Kpr16u> permute(Vec<Kpr16u> a, Vec<Kpr16u> b, Vec<Kpr16u> from) {  // from 32 on
    return vec<Kpr16u>(_mm512_permutex2var_epi16(bits(a), bits(from), bits(b)));
}

// Byte i is v's byte from[i] of the same 16 bytes, counted from their first.
KPR_INLINE Vec<Kpr8u> permuteIn16(Vec<Kpr8u> v, Vec<Kpr8u> from) {
    return vec<Kpr8u>(_mm512_shuffle_epi8(bits(v), bits(from)));
}

}  // namespace n0
