// Operations that the tracking of points adds: pixels in double precision, for sums over a window.
#pragma once

#include "primitives/simd.h"

namespace n0 {

// a * b + c, rounded once.
KPR_INLINE Vec<Kpr64f> fma(Vec<Kpr64f> a, Vec<Kpr64f> b, Vec<Kpr64f> c) {
    return vec(_mm512_fmadd_pd(pd(a), pd(b), pd(c)));
}

// Eight lanes as doubles, of words each 2^20 more: the word becomes a part of the fraction beside an exponent that is
// there already, which is one operation where a conversion takes two. Differences between such doubles are exact.
template <int which>
KPR_INLINE Vec<Kpr64f> raised(Vec<Kpr16u> v) {
    constexpr __mmask32 third = 0x44444444;  // of the four words of a double
    const auto from = laneConstant<Kpr16u>([](int i) { return 8 * which + i / 4; });
    const auto exponent = broadcast<Kpr64s>(Kpr64s{0x413} << 52);
    return as<Kpr64f>(vec<Kpr16u>(_mm512_mask_permutexvar_epi16(bits(exponent), third, bits(from), bits(v))));
}
template <int which>
KPR_INLINE Vec<Kpr64f> raised(Vec<Kpr32f> v) {
    return half<which>(v);
}

// Eight floats as doubles; zeros where the part has none.
KPR_INLINE Vec<Kpr64f> loadWidened(const Kpr32f* src, Lanes part) {
    return vec(_mm512_cvtps_pd(_mm256_maskz_loadu_ps(static_cast<__mmask8>(part.bits), src)));
}

// Sixteen lanes in single precision.
template <int which>
KPR_INLINE Vec<Kpr32f> floats(Vec<Kpr16s> v) {
    return vec(_mm512_cvtepi32_ps(_mm512_cvtepi16_epi32(_mm512_extracti64x4_epi64(bits(v), which))));
}
template <int which>
KPR_INLINE Vec<Kpr32f> floats(Vec<Kpr32f> v) {
    static_assert(which == 0);
    return v;
}

}  // namespace n0
