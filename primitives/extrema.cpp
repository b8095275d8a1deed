// Extrema of images and arrays; the search itself is in extrema_rows.h.
#include "primitives/extrema.h"

#include "frame/checks.h"
#include "primitives/extrema_rows.h"

namespace n0 {
namespace {

// The value of each channel's extremum.
template <typename Rule, int channels, typename T>
KprStatus findValues(Rows<const T> src, KprSize roi, T* values) {
    Running<T, channels, Rule> running;
    scanRows(src, roi, running);
    for (int channel = 0; channel < channels; ++channel) values[channel] = running.value(src, roi, channel);
    return kprStatusOk;
}

// The values of both extrema.
template <int channels, typename T>
KprStatus findBothValues(Rows<const T> src, KprSize roi, T* smallest, T* largest) {
    Running<T, channels, Smallest> small;
    Running<T, channels, Largest> large;
    scanRows(src, roi, small, large);
    for (int channel = 0; channel < channels; ++channel) {
        smallest[channel] = small.value(src, roi, channel);
        largest[channel] = large.value(src, roi, channel);
    }
    return kprStatusOk;
}

// Value and position of each channel's extremum.
template <typename Rule, int channels, typename T>
KprStatus findPositions(Rows<const T> src, KprSize roi, T* values, int* x, int* y) {
    Running<T, channels, Rule> running;
    scanRows(src, roi, running);
    for (int channel = 0; channel < channels; ++channel) {
        const Extremum<T> found = running.find(src, roi, channel);
        values[channel] = found.value;
        x[channel] = found.x;
        y[channel] = found.y;
    }
    return kprStatusOk;
}

template <typename Rule, typename T>
KprStatus chooseEvery(const T* src1, const T* src2, T* dst, int len) {
    walkRow<kLanes<T>>(
        len,
        [](auto part, const T* a, const T* b, T* d) { store(d, Rule::choose(load(a, part), load(b, part)), part); },
        src1, src2, dst);
    return kprStatusOk;
}

KprStatus lengthHolds(int len) { return failIf(len < 1, kprStatusBadSize); }

}  // namespace

template <typename T, int channels>
KprStatus ExtremaOf<T, channels>::min(Rows<const T> src, KprSize roi, T* values) {
    return findValues<Smallest, channels>(src, roi, values);
}
template <typename T, int channels>
KprStatus ExtremaOf<T, channels>::max(Rows<const T> src, KprSize roi, T* values) {
    return findValues<Largest, channels>(src, roi, values);
}
template <typename T, int channels>
KprStatus ExtremaOf<T, channels>::minMax(Rows<const T> src, KprSize roi, T* smallest, T* largest) {
    return findBothValues<channels>(src, roi, smallest, largest);
}
template <typename T, int channels>
KprStatus ExtremaOf<T, channels>::minIndx(Rows<const T> src, KprSize roi, T* values, int* x, int* y) {
    return findPositions<Smallest, channels>(src, roi, values, x, y);
}
template <typename T, int channels>
KprStatus ExtremaOf<T, channels>::maxIndx(Rows<const T> src, KprSize roi, T* values, int* x, int* y) {
    return findPositions<Largest, channels>(src, roi, values, x, y);
}

template struct ExtremaOf<Kpr8u, 1>;
template struct ExtremaOf<Kpr8u, 3>;
template struct ExtremaOf<Kpr16u, 1>;
template struct ExtremaOf<Kpr16u, 3>;
template struct ExtremaOf<Kpr32f, 1>;
template struct ExtremaOf<Kpr32f, 3>;

}  // namespace n0

using namespace n0;

KprStatus kpriMin_8u_C1R(const Kpr8u* src, int srcStep, KprSize roiSize, Kpr8u* min) {
    return firstFailure(notNull(src, min), roiHolds(roiSize))
               ?: ExtremaOf<Kpr8u, 1>::min(Rows{src, srcStep}, roiSize, min);
}

KprStatus kpriMin_8u_C3R(const Kpr8u* src, int srcStep, KprSize roiSize, Kpr8u* min) {
    return firstFailure(notNull(src, min), roiHolds(roiSize))
               ?: ExtremaOf<Kpr8u, 3>::min(Rows{src, srcStep}, roiSize, min);
}

KprStatus kpriMin_16u_C1R(const Kpr16u* src, int srcStep, KprSize roiSize, Kpr16u* min) {
    return firstFailure(notNull(src, min), roiHolds(roiSize))
               ?: ExtremaOf<Kpr16u, 1>::min(Rows{src, srcStep}, roiSize, min);
}

KprStatus kpriMin_16u_C3R(const Kpr16u* src, int srcStep, KprSize roiSize, Kpr16u* min) {
    return firstFailure(notNull(src, min), roiHolds(roiSize))
               ?: ExtremaOf<Kpr16u, 3>::min(Rows{src, srcStep}, roiSize, min);
}

KprStatus kpriMin_32f_C1R(const Kpr32f* src, int srcStep, KprSize roiSize, Kpr32f* min) {
    return firstFailure(notNull(src, min), roiHolds(roiSize))
               ?: ExtremaOf<Kpr32f, 1>::min(Rows{src, srcStep}, roiSize, min);
}

KprStatus kpriMin_32f_C3R(const Kpr32f* src, int srcStep, KprSize roiSize, Kpr32f* min) {
    return firstFailure(notNull(src, min), roiHolds(roiSize))
               ?: ExtremaOf<Kpr32f, 3>::min(Rows{src, srcStep}, roiSize, min);
}

KprStatus kpriMax_8u_C1R(const Kpr8u* src, int srcStep, KprSize roiSize, Kpr8u* max) {
    return firstFailure(notNull(src, max), roiHolds(roiSize))
               ?: ExtremaOf<Kpr8u, 1>::max(Rows{src, srcStep}, roiSize, max);
}

KprStatus kpriMax_8u_C3R(const Kpr8u* src, int srcStep, KprSize roiSize, Kpr8u* max) {
    return firstFailure(notNull(src, max), roiHolds(roiSize))
               ?: ExtremaOf<Kpr8u, 3>::max(Rows{src, srcStep}, roiSize, max);
}

KprStatus kpriMax_16u_C1R(const Kpr16u* src, int srcStep, KprSize roiSize, Kpr16u* max) {
    return firstFailure(notNull(src, max), roiHolds(roiSize))
               ?: ExtremaOf<Kpr16u, 1>::max(Rows{src, srcStep}, roiSize, max);
}

KprStatus kpriMax_16u_C3R(const Kpr16u* src, int srcStep, KprSize roiSize, Kpr16u* max) {
    return firstFailure(notNull(src, max), roiHolds(roiSize))
               ?: ExtremaOf<Kpr16u, 3>::max(Rows{src, srcStep}, roiSize, max);
}

KprStatus kpriMax_32f_C1R(const Kpr32f* src, int srcStep, KprSize roiSize, Kpr32f* max) {
    return firstFailure(notNull(src, max), roiHolds(roiSize))
               ?: ExtremaOf<Kpr32f, 1>::max(Rows{src, srcStep}, roiSize, max);
}

KprStatus kpriMax_32f_C3R(const Kpr32f* src, int srcStep, KprSize roiSize, Kpr32f* max) {
    return firstFailure(notNull(src, max), roiHolds(roiSize))
               ?: ExtremaOf<Kpr32f, 3>::max(Rows{src, srcStep}, roiSize, max);
}

KprStatus kpriMinMax_8u_C1R(const Kpr8u* src, int srcStep, KprSize roiSize, Kpr8u* min, Kpr8u* max) {
    return firstFailure(notNull(src, min, max), roiHolds(roiSize))
               ?: ExtremaOf<Kpr8u, 1>::minMax(Rows{src, srcStep}, roiSize, min, max);
}

KprStatus kpriMinMax_8u_C3R(const Kpr8u* src, int srcStep, KprSize roiSize, Kpr8u* min, Kpr8u* max) {
    return firstFailure(notNull(src, min, max), roiHolds(roiSize))
               ?: ExtremaOf<Kpr8u, 3>::minMax(Rows{src, srcStep}, roiSize, min, max);
}

KprStatus kpriMinMax_16u_C1R(const Kpr16u* src, int srcStep, KprSize roiSize, Kpr16u* min, Kpr16u* max) {
    return firstFailure(notNull(src, min, max), roiHolds(roiSize))
               ?: ExtremaOf<Kpr16u, 1>::minMax(Rows{src, srcStep}, roiSize, min, max);
}

KprStatus kpriMinMax_16u_C3R(const Kpr16u* src, int srcStep, KprSize roiSize, Kpr16u* min, Kpr16u* max) {
    return firstFailure(notNull(src, min, max), roiHolds(roiSize))
               ?: ExtremaOf<Kpr16u, 3>::minMax(Rows{src, srcStep}, roiSize, min, max);
}

KprStatus kpriMinMax_32f_C1R(const Kpr32f* src, int srcStep, KprSize roiSize, Kpr32f* min, Kpr32f* max) {
    return firstFailure(notNull(src, min, max), roiHolds(roiSize))
               ?: ExtremaOf<Kpr32f, 1>::minMax(Rows{src, srcStep}, roiSize, min, max);
}

KprStatus kpriMinMax_32f_C3R(const Kpr32f* src, int srcStep, KprSize roiSize, Kpr32f* min, Kpr32f* max) {
    return firstFailure(notNull(src, min, max), roiHolds(roiSize))
               ?: ExtremaOf<Kpr32f, 3>::minMax(Rows{src, srcStep}, roiSize, min, max);
}

KprStatus kpriMinIndx_8u_C1R(const Kpr8u* src, int srcStep, KprSize roiSize, Kpr8u* min, int* x, int* y) {
    return firstFailure(notNull(src, min, x, y), roiHolds(roiSize))
               ?: ExtremaOf<Kpr8u, 1>::minIndx(Rows{src, srcStep}, roiSize, min, x, y);
}

KprStatus kpriMinIndx_8u_C3R(const Kpr8u* src, int srcStep, KprSize roiSize, Kpr8u* min, int* x, int* y) {
    return firstFailure(notNull(src, min, x, y), roiHolds(roiSize))
               ?: ExtremaOf<Kpr8u, 3>::minIndx(Rows{src, srcStep}, roiSize, min, x, y);
}

KprStatus kpriMinIndx_16u_C1R(const Kpr16u* src, int srcStep, KprSize roiSize, Kpr16u* min, int* x, int* y) {
    return firstFailure(notNull(src, min, x, y), roiHolds(roiSize))
               ?: ExtremaOf<Kpr16u, 1>::minIndx(Rows{src, srcStep}, roiSize, min, x, y);
}

KprStatus kpriMinIndx_16u_C3R(const Kpr16u* src, int srcStep, KprSize roiSize, Kpr16u* min, int* x, int* y) {
    return firstFailure(notNull(src, min, x, y), roiHolds(roiSize))
               ?: ExtremaOf<Kpr16u, 3>::minIndx(Rows{src, srcStep}, roiSize, min, x, y);
}

KprStatus kpriMinIndx_32f_C1R(const Kpr32f* src, int srcStep, KprSize roiSize, Kpr32f* min, int* x, int* y) {
    return firstFailure(notNull(src, min, x, y), roiHolds(roiSize))
               ?: ExtremaOf<Kpr32f, 1>::minIndx(Rows{src, srcStep}, roiSize, min, x, y);
}

KprStatus kpriMinIndx_32f_C3R(const Kpr32f* src, int srcStep, KprSize roiSize, Kpr32f* min, int* x, int* y) {
    return firstFailure(notNull(src, min, x, y), roiHolds(roiSize))
               ?: ExtremaOf<Kpr32f, 3>::minIndx(Rows{src, srcStep}, roiSize, min, x, y);
}

KprStatus kpriMaxIndx_8u_C1R(const Kpr8u* src, int srcStep, KprSize roiSize, Kpr8u* max, int* x, int* y) {
    return firstFailure(notNull(src, max, x, y), roiHolds(roiSize))
               ?: ExtremaOf<Kpr8u, 1>::maxIndx(Rows{src, srcStep}, roiSize, max, x, y);
}

KprStatus kpriMaxIndx_8u_C3R(const Kpr8u* src, int srcStep, KprSize roiSize, Kpr8u* max, int* x, int* y) {
    return firstFailure(notNull(src, max, x, y), roiHolds(roiSize))
               ?: ExtremaOf<Kpr8u, 3>::maxIndx(Rows{src, srcStep}, roiSize, max, x, y);
}

KprStatus kpriMaxIndx_16u_C1R(const Kpr16u* src, int srcStep, KprSize roiSize, Kpr16u* max, int* x, int* y) {
    return firstFailure(notNull(src, max, x, y), roiHolds(roiSize))
               ?: ExtremaOf<Kpr16u, 1>::maxIndx(Rows{src, srcStep}, roiSize, max, x, y);
}

KprStatus kpriMaxIndx_16u_C3R(const Kpr16u* src, int srcStep, KprSize roiSize, Kpr16u* max, int* x, int* y) {
    return firstFailure(notNull(src, max, x, y), roiHolds(roiSize))
               ?: ExtremaOf<Kpr16u, 3>::maxIndx(Rows{src, srcStep}, roiSize, max, x, y);
}

KprStatus kpriMaxIndx_32f_C1R(const Kpr32f* src, int srcStep, KprSize roiSize, Kpr32f* max, int* x, int* y) {
    return firstFailure(notNull(src, max, x, y), roiHolds(roiSize))
               ?: ExtremaOf<Kpr32f, 1>::maxIndx(Rows{src, srcStep}, roiSize, max, x, y);
}

KprStatus kpriMaxIndx_32f_C3R(const Kpr32f* src, int srcStep, KprSize roiSize, Kpr32f* max, int* x, int* y) {
    return firstFailure(notNull(src, max, x, y), roiHolds(roiSize))
               ?: ExtremaOf<Kpr32f, 3>::maxIndx(Rows{src, srcStep}, roiSize, max, x, y);
}

// An array is a row, whose step takes no part.
KprStatus kprsMax_32f(const Kpr32f* src, int len, Kpr32f* max) { return kpriMax_32f_C1R(src, 0, {len, 1}, max); }

KprStatus kprsMaxIndx_32f(const Kpr32f* src, int len, Kpr32f* max, int* index) {
    int row = 0;
    return kpriMaxIndx_32f_C1R(src, 0, {len, 1}, max, index, &row);
}

KprStatus kprsMinEvery_8u(const Kpr8u* src1, const Kpr8u* src2, Kpr8u* dst, int len) {
    return firstFailure(notNull(src1, src2, dst), lengthHolds(len)) ?: chooseEvery<Smallest>(src1, src2, dst, len);
}

KprStatus kprsMinEvery_16u(const Kpr16u* src1, const Kpr16u* src2, Kpr16u* dst, int len) {
    return firstFailure(notNull(src1, src2, dst), lengthHolds(len)) ?: chooseEvery<Smallest>(src1, src2, dst, len);
}

KprStatus kprsMinEvery_32f(const Kpr32f* src1, const Kpr32f* src2, Kpr32f* dst, int len) {
    return firstFailure(notNull(src1, src2, dst), lengthHolds(len)) ?: chooseEvery<Smallest>(src1, src2, dst, len);
}

KprStatus kprsMinEvery_64f(const Kpr64f* src1, const Kpr64f* src2, Kpr64f* dst, int len) {
    return firstFailure(notNull(src1, src2, dst), lengthHolds(len)) ?: chooseEvery<Smallest>(src1, src2, dst, len);
}

KprStatus kprsMaxEvery_8u(const Kpr8u* src1, const Kpr8u* src2, Kpr8u* dst, int len) {
    return firstFailure(notNull(src1, src2, dst), lengthHolds(len)) ?: chooseEvery<Largest>(src1, src2, dst, len);
}

KprStatus kprsMaxEvery_16u(const Kpr16u* src1, const Kpr16u* src2, Kpr16u* dst, int len) {
    return firstFailure(notNull(src1, src2, dst), lengthHolds(len)) ?: chooseEvery<Largest>(src1, src2, dst, len);
}

KprStatus kprsMaxEvery_32f(const Kpr32f* src1, const Kpr32f* src2, Kpr32f* dst, int len) {
    return firstFailure(notNull(src1, src2, dst), lengthHolds(len)) ?: chooseEvery<Largest>(src1, src2, dst, len);
}

KprStatus kprsMaxEvery_64f(const Kpr64f* src1, const Kpr64f* src2, Kpr64f* dst, int len) {
    return firstFailure(notNull(src1, src2, dst), lengthHolds(len)) ?: chooseEvery<Largest>(src1, src2, dst, len);
}
