// Filling the region of a seed, in place: the pixels that equal the seed's value, or lie in a range around it, and are
// connected with it through such pixels.
//
//     plain:  p == s                     in every channel
//     range:  s - lower <= p <= s + upper
//
// where s is the seed's value before the fill. A NaN seed fills itself alone.
#include "segment/flood_fill.h"
#include "frame/checks.h"

namespace n0::segment {
namespace {

template <int channels, typename T>
bool samePixel(const T* a, const T* b) {
    bool all = true;
    for (int i = 0; i < channels; ++i) all &= a[i] == b[i];
    return all;
}

template <int channels, int reach, typename T>
KprStatus fillEqual(Rows<T> image, KprSize roi, KprPoint seed, const T* newValue, KprConnectedComp* region,
                    Kpr8u* buffer) {
    const T* const start = image[seed.y] + seed.x * Kpr64s{channels};
    if (samePixel<channels>(start, newValue)) return kprStatusOk;
    const Equals<T> test{Pixels<T, channels>::repeated(start)};
    FloodFill<T, channels, reach, Equals<T>> fill(image, roi, test, newValue);
    fill.run(seed, LoneSpans(buffer, floodBytes(roi)));
    putRecord<channels>(region, fill.area(), newValue, fill.extent());
    return kprStatusOk;
}

template <int channels, int reach, typename T>
KprStatus plainFill(T* image, int step, KprSize roi, KprPoint seed, const T* newValue, KprConnectedComp* region,
                    Kpr8u* buffer) {
    return firstFailure(notNull(image, newValue, region, buffer), roiHolds(roi),
                        rowsFit<T>(Kpr64s{roi.width} * channels, step), stepsAlign<T>(step), seedInside(seed, roi))
               ?: fillEqual<channels, reach>(Rows<T>{image, step}, roi, seed, newValue, region, buffer);
}

// s - lower and s + upper: of integers the nearest values of their range, of floats as they are rounded.
template <typename T>
T lowest(T value, T lower) {
    if constexpr (std::is_integral_v<T>)
        return static_cast<T>(std::max(value - lower, 0));
    else
        return value - lower;
}
template <typename T>
T highest(T value, T upper) {
    if constexpr (std::is_integral_v<T>)
        return static_cast<T>(std::min<int>(value + upper, static_cast<T>(-1)));
    else
        return value + upper;
}

template <int channels, int reach, typename T>
KprStatus fillWithin(Rows<T> image, KprSize roi, KprPoint seed, const T* newValue, const T* lower, const T* upper,
                     KprConnectedComp* region, Kpr8u* buffer) {
    const T* const start = image[seed.y] + seed.x * Kpr64s{channels};
    T low[channels], high[channels];
    bool inside = true;
    for (int i = 0; i < channels; ++i) {
        low[i] = lowest(start[i], lower[i]);
        high[i] = highest(start[i], upper[i]);
        inside &= low[i] <= newValue[i] && newValue[i] <= high[i];
    }
    if (inside) return kprStatusBadArg;  // filled pixels would pass again

    using P = Pixels<T, channels>;
    FloodFill<T, channels, reach, Within<T>> fill(image, roi, {P::repeated(low), P::repeated(high)}, newValue);
    // Callers count on what happens to more spans than a quarter of the pixels: the oldest are forgotten.
    const Kpr64s capacity = Kpr64s{roi.width} * roi.height / 4;
    if (capacity == 0)
        fill.run(seed, LoneSpans(buffer, floodBytes(roi)));
    else
        fill.run(seed, WrappingSpans(buffer, capacity), capacity == 1);
    putRecord<channels>(region, fill.area(), newValue, fill.extent());
    return kprStatusOk;
}

template <int channels, int reach, typename T>
KprStatus rangeFill(T* image, int step, KprSize roi, KprPoint seed, const T* newValue, const T* lower, const T* upper,
                    KprConnectedComp* region, Kpr8u* buffer) {
    return firstFailure(notNull(image, newValue, lower, upper, region, buffer), roiHolds(roi),
                        rowsFit<T>(Kpr64s{roi.width} * channels, step), stepsAlign<T>(step), seedInside(seed, roi))
               ?: fillWithin<channels, reach>(Rows<T>{image, step}, roi, seed, newValue, lower, upper, region, buffer);
}

}  // namespace
}  // namespace n0::segment

using namespace n0;
using namespace n0::segment;

KprStatus kpriFloodFillGetSize(KprSize roiSize, int* bufferSize) {
    const KprStatus status = firstFailure(notNull(bufferSize), roiHolds(roiSize));
    if (status == kprStatusOk) *bufferSize = static_cast<int>(floodBytes(roiSize));
    return status;
}

KprStatus kpriFloodFill_4Con_8u_C1IR(Kpr8u* image, int imageStep, KprSize roiSize, KprPoint seed, Kpr8u newValue,
                                     KprConnectedComp* region, Kpr8u* buffer) {
    return plainFill<1, 0>(image, imageStep, roiSize, seed, &newValue, region, buffer);
}

KprStatus kpriFloodFill_4Con_16u_C1IR(Kpr16u* image, int imageStep, KprSize roiSize, KprPoint seed, Kpr16u newValue,
                                      KprConnectedComp* region, Kpr8u* buffer) {
    return plainFill<1, 0>(image, imageStep, roiSize, seed, &newValue, region, buffer);
}

KprStatus kpriFloodFill_4Con_32s_C1IR(Kpr32s* image, int imageStep, KprSize roiSize, KprPoint seed, Kpr32s newValue,
                                      KprConnectedComp* region, Kpr8u* buffer) {
    return plainFill<1, 0>(image, imageStep, roiSize, seed, &newValue, region, buffer);
}

KprStatus kpriFloodFill_4Con_32f_C1IR(Kpr32f* image, int imageStep, KprSize roiSize, KprPoint seed, Kpr32f newValue,
                                      KprConnectedComp* region, Kpr8u* buffer) {
    return plainFill<1, 0>(image, imageStep, roiSize, seed, &newValue, region, buffer);
}

KprStatus kpriFloodFill_4Con_8u_C3IR(Kpr8u* image, int imageStep, KprSize roiSize, KprPoint seed, const Kpr8u* newValue,
                                     KprConnectedComp* region, Kpr8u* buffer) {
    return plainFill<3, 0>(image, imageStep, roiSize, seed, newValue, region, buffer);
}

KprStatus kpriFloodFill_4Con_16u_C3IR(Kpr16u* image, int imageStep, KprSize roiSize, KprPoint seed,
                                      const Kpr16u* newValue, KprConnectedComp* region, Kpr8u* buffer) {
    return plainFill<3, 0>(image, imageStep, roiSize, seed, newValue, region, buffer);
}

KprStatus kpriFloodFill_4Con_32f_C3IR(Kpr32f* image, int imageStep, KprSize roiSize, KprPoint seed,
                                      const Kpr32f* newValue, KprConnectedComp* region, Kpr8u* buffer) {
    return plainFill<3, 0>(image, imageStep, roiSize, seed, newValue, region, buffer);
}

KprStatus kpriFloodFill_8Con_8u_C1IR(Kpr8u* image, int imageStep, KprSize roiSize, KprPoint seed, Kpr8u newValue,
                                     KprConnectedComp* region, Kpr8u* buffer) {
    return plainFill<1, 1>(image, imageStep, roiSize, seed, &newValue, region, buffer);
}

KprStatus kpriFloodFill_8Con_16u_C1IR(Kpr16u* image, int imageStep, KprSize roiSize, KprPoint seed, Kpr16u newValue,
                                      KprConnectedComp* region, Kpr8u* buffer) {
    return plainFill<1, 1>(image, imageStep, roiSize, seed, &newValue, region, buffer);
}

KprStatus kpriFloodFill_8Con_32s_C1IR(Kpr32s* image, int imageStep, KprSize roiSize, KprPoint seed, Kpr32s newValue,
                                      KprConnectedComp* region, Kpr8u* buffer) {
    return plainFill<1, 1>(image, imageStep, roiSize, seed, &newValue, region, buffer);
}

KprStatus kpriFloodFill_8Con_32f_C1IR(Kpr32f* image, int imageStep, KprSize roiSize, KprPoint seed, Kpr32f newValue,
                                      KprConnectedComp* region, Kpr8u* buffer) {
    return plainFill<1, 1>(image, imageStep, roiSize, seed, &newValue, region, buffer);
}

KprStatus kpriFloodFill_8Con_8u_C3IR(Kpr8u* image, int imageStep, KprSize roiSize, KprPoint seed, const Kpr8u* newValue,
                                     KprConnectedComp* region, Kpr8u* buffer) {
    return plainFill<3, 1>(image, imageStep, roiSize, seed, newValue, region, buffer);
}

KprStatus kpriFloodFill_8Con_16u_C3IR(Kpr16u* image, int imageStep, KprSize roiSize, KprPoint seed,
                                      const Kpr16u* newValue, KprConnectedComp* region, Kpr8u* buffer) {
    return plainFill<3, 1>(image, imageStep, roiSize, seed, newValue, region, buffer);
}

KprStatus kpriFloodFill_8Con_32f_C3IR(Kpr32f* image, int imageStep, KprSize roiSize, KprPoint seed,
                                      const Kpr32f* newValue, KprConnectedComp* region, Kpr8u* buffer) {
    return plainFill<3, 1>(image, imageStep, roiSize, seed, newValue, region, buffer);
}

KprStatus kpriFloodFill_Range4Con_8u_C1IR(Kpr8u* image, int imageStep, KprSize roiSize, KprPoint seed, Kpr8u newValue,
                                          Kpr8u lowerDelta, Kpr8u upperDelta, KprConnectedComp* region, Kpr8u* buffer) {
    return rangeFill<1, 0>(image, imageStep, roiSize, seed, &newValue, &lowerDelta, &upperDelta, region, buffer);
}

KprStatus kpriFloodFill_Range4Con_16u_C1IR(Kpr16u* image, int imageStep, KprSize roiSize, KprPoint seed,
                                           Kpr16u newValue, Kpr16u lowerDelta, Kpr16u upperDelta,
                                           KprConnectedComp* region, Kpr8u* buffer) {
    return rangeFill<1, 0>(image, imageStep, roiSize, seed, &newValue, &lowerDelta, &upperDelta, region, buffer);
}

KprStatus kpriFloodFill_Range4Con_32f_C1IR(Kpr32f* image, int imageStep, KprSize roiSize, KprPoint seed,
                                           Kpr32f newValue, Kpr32f lowerDelta, Kpr32f upperDelta,
                                           KprConnectedComp* region, Kpr8u* buffer) {
    return rangeFill<1, 0>(image, imageStep, roiSize, seed, &newValue, &lowerDelta, &upperDelta, region, buffer);
}

KprStatus kpriFloodFill_Range4Con_8u_C3IR(Kpr8u* image, int imageStep, KprSize roiSize, KprPoint seed,
                                          const Kpr8u* newValue, const Kpr8u* lowerDelta, const Kpr8u* upperDelta,
                                          KprConnectedComp* region, Kpr8u* buffer) {
    return rangeFill<3, 0>(image, imageStep, roiSize, seed, newValue, lowerDelta, upperDelta, region, buffer);
}

KprStatus kpriFloodFill_Range4Con_16u_C3IR(Kpr16u* image, int imageStep, KprSize roiSize, KprPoint seed,
                                           const Kpr16u* newValue, const Kpr16u* lowerDelta, const Kpr16u* upperDelta,
                                           KprConnectedComp* region, Kpr8u* buffer) {
    return rangeFill<3, 0>(image, imageStep, roiSize, seed, newValue, lowerDelta, upperDelta, region, buffer);
}

KprStatus kpriFloodFill_Range4Con_32f_C3IR(Kpr32f* image, int imageStep, KprSize roiSize, KprPoint seed,
                                           const Kpr32f* newValue, const Kpr32f* lowerDelta, const Kpr32f* upperDelta,
                                           KprConnectedComp* region, Kpr8u* buffer) {
    return rangeFill<3, 0>(image, imageStep, roiSize, seed, newValue, lowerDelta, upperDelta, region, buffer);
}

KprStatus kpriFloodFill_Range8Con_8u_C1IR(Kpr8u* image, int imageStep, KprSize roiSize, KprPoint seed, Kpr8u newValue,
                                          Kpr8u lowerDelta, Kpr8u upperDelta, KprConnectedComp* region, Kpr8u* buffer) {
    return rangeFill<1, 1>(image, imageStep, roiSize, seed, &newValue, &lowerDelta, &upperDelta, region, buffer);
}

KprStatus kpriFloodFill_Range8Con_16u_C1IR(Kpr16u* image, int imageStep, KprSize roiSize, KprPoint seed,
                                           Kpr16u newValue, Kpr16u lowerDelta, Kpr16u upperDelta,
                                           KprConnectedComp* region, Kpr8u* buffer) {
    return rangeFill<1, 1>(image, imageStep, roiSize, seed, &newValue, &lowerDelta, &upperDelta, region, buffer);
}

KprStatus kpriFloodFill_Range8Con_32f_C1IR(Kpr32f* image, int imageStep, KprSize roiSize, KprPoint seed,
                                           Kpr32f newValue, Kpr32f lowerDelta, Kpr32f upperDelta,
                                           KprConnectedComp* region, Kpr8u* buffer) {
    return rangeFill<1, 1>(image, imageStep, roiSize, seed, &newValue, &lowerDelta, &upperDelta, region, buffer);
}

KprStatus kpriFloodFill_Range8Con_8u_C3IR(Kpr8u* image, int imageStep, KprSize roiSize, KprPoint seed,
                                          const Kpr8u* newValue, const Kpr8u* lowerDelta, const Kpr8u* upperDelta,
                                          KprConnectedComp* region, Kpr8u* buffer) {
    return rangeFill<3, 1>(image, imageStep, roiSize, seed, newValue, lowerDelta, upperDelta, region, buffer);
}

KprStatus kpriFloodFill_Range8Con_16u_C3IR(Kpr16u* image, int imageStep, KprSize roiSize, KprPoint seed,
                                           const Kpr16u* newValue, const Kpr16u* lowerDelta, const Kpr16u* upperDelta,
                                           KprConnectedComp* region, Kpr8u* buffer) {
    return rangeFill<3, 1>(image, imageStep, roiSize, seed, newValue, lowerDelta, upperDelta, region, buffer);
}

KprStatus kpriFloodFill_Range8Con_32f_C3IR(Kpr32f* image, int imageStep, KprSize roiSize, KprPoint seed,
                                           const Kpr32f* newValue, const Kpr32f* lowerDelta, const Kpr32f* upperDelta,
                                           KprConnectedComp* region, Kpr8u* buffer) {
    return rangeFill<3, 1>(image, imageStep, roiSize, seed, newValue, lowerDelta, upperDelta, region, buffer);
}
