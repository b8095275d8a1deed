// Dilation and erosion of checked arguments: one engine over element type, channels and rule.
#pragma once

#include "morph/rectangle.h"
#include "morph/tap_walk.h"
#include "primitives/border.h"

namespace n0::morph {

// The plan that the mask asks for. `other` is the image of Put's differences, row by row the ROI's.
template <typename Rule, typename Put, typename T>
KprStatus extremum(const Job<T>& job, Taps taps, Rows<const T> other) {
    const Feature feature = featureOf(taps);
    if (feature.plan == Feature::Copy || (feature.plan == Feature::Rectangle && rectangleServes(job, feature.window))) {
        rectangle<Rule, Put>(job, feature.window, other);
    } else if (feature.plan == Feature::Small && !job.inPlace()) {
        if (feature.window.left == 1) smallMask<Rule, Put, 1, false>(job, feature.reaches, other);
        if (feature.window.left == 2) smallMask<Rule, Put, 2, false>(job, feature.reaches, other);
    } else {
        TapWalk<Rule, Put, T>(job, feature.window, taps, other).run();
    }
    return kprStatusOk;
}

// What a call gives, in the form of either interface.
template <typename T>
struct Call {
    const T* src;
    Kpr64s srcStep;
    T* dst;
    Kpr64s dstStep;
    Kpr64s width, height;
    KprBorderType border;
    const T* value;  // one element a channel, or null
    int channels;
    Kpr8u* buffer;
};

template <typename T>
KprStatus elementsAlign(const Call<T>& c) {
    if constexpr (sizeof(T) == 1) return kprStatusOk;
    if constexpr (sizeof(T) > 1) return stepsAlign<T>(c.srcStep, c.dstStep);
}

template <typename T>
KprStatus stepsHold(const Call<T>& c) {
    return firstFailure(rowsFit<T>(c.width * c.channels, c.srcStep, c.dstStep), elementsAlign<T>(c));
}

// A constant border has a value.
template <typename Call>
KprStatus valueGiven(const Call& c) {
    return failIf(baseOf(c.border) == kprBorderConstant && c.value == nullptr, kprStatusNullPtr);
}

// Whether the source may be the destination. Which members take that is settled one by one and follows no rule.
enum class InPlace { Served, Refused };

// The ladders of a call, which are the same for bytes, words, floats and bits.
template <typename Call>
KprStatus callHolds(InPlace inPlace, const Call& c, const void* spec) {
    return firstFailure(notNull(c.src, c.dst, spec, c.buffer),
                        failIf(inPlace == InPlace::Refused && c.src == c.dst, kprStatusInPlaceUnsupported),
                        roiHolds(KprSizeL{c.width, c.height}), stepsHold(c), borderServesMorphology(c.border),
                        valueGiven(c));
}

template <typename Call>
KprStatus largeCallHolds(InPlace inPlace, const Call& c, const void* spec) {
    constexpr Kpr64s kBeyond = 0x7fffffff;
    return firstFailure(notNull(c.src, c.dst, spec, c.buffer),
                        failIf(inPlace == InPlace::Refused && c.src == c.dst, kprStatusInPlaceUnsupported),
                        roiHolds(KprSizeL{c.width, c.height}), roiNotBeyond(c.width, c.height))
               ?: firstFailure(stepsHold(c), borderServesMorphology(c.border),
                               failIf(c.width == kBeyond || c.height == kBeyond, kprStatusBadSize),
                               failIf(c.srcStep >= kBeyond || c.dstStep >= kBeyond, kprStatusBadStep), valueGiven(c));
}

// The same as a job for one mask. The mode that never wins becomes its constant.
template <typename Rule, typename T>
Job<T> jobOf(const Call<T>& call, Taps taps) {
    const Extents e = {call.width, call.height, taps.width, taps.height};
    Job<T> job = {{call.src, call.srcStep},
                  {call.dst, call.dstStep},
                  call.width,
                  call.height,
                  call.channels,
                  Border(call.border),
                  {},
                  {reinterpret_cast<char*>(call.buffer), static_cast<Kpr64s>(workHeld(e, sizeof(T), call.channels))}};
    const bool own = job.border.base == kprBorderConstant && call.value != nullptr;
    for (int c = 0; c < 4; ++c) job.fill[c] = own && c < call.channels ? call.value[c] : Rule::kWeakest;
    if (job.border.base == kprBorderDefault) job.border.base = kprBorderConstant;
    return job;
}

template <typename Rule, typename T>
KprStatus extremum(const Call<T>& call, Taps taps) {
    const Job<T> job = jobOf<Rule>(call, taps);
    return extremum<Rule, Plain>(job, taps, Rows<const T>{call.dst, call.dstStep});
}

}  // namespace n0::morph
