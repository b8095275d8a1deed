// The vocabulary of argument checks. A public body states its ladder once, in the order in which failures count:
//
//     return firstFailure(notNull(src, dst), roiHolds(roiSize), rowsFit<Kpr16u>(roiSize.width, srcStep, dstStep),
//                         stepsAlign<Kpr16u>(srcStep, dstStep))
//                ?: kernel(...);
//
// A check looks at its arguments' values and never at what they point to, so that all may be evaluated at once.
#pragma once

#include "frame/api.h"

namespace n0 {

constexpr KprStatus failIf(bool failed, KprStatus status) { return failed ? status : KprStatus{kprStatusOk}; }

template <typename... Pointer>
constexpr KprStatus notNull(const Pointer*... pointers) {
    return failIf(((pointers == nullptr) || ...), kprStatusNullPtr);
}

template <typename Size>
constexpr KprStatus roiHolds(Size roi) {
    return failIf(roi.width < 1 || roi.height < 1, kprStatusBadSize);
}

// Each step holds a row of `width` elements of T; the product is formed in 64 bits and cannot wrap.
template <typename T, typename... Step>
constexpr KprStatus rowsFit(Kpr64s width, Step... steps) {
    return failIf(((Kpr64s{steps} < width * Kpr64s{sizeof(T)}) || ...), kprStatusBadStep);
}

// Stands in for the step of an image that a form does not have: it holds any row.
inline constexpr int kAnyStep = 0x7fffffff;

// Each step is a multiple of the size of T, as every step is of a byte's.
template <typename T, typename... Step>
constexpr KprStatus stepsAlign(Step... steps) {
    return failIf((((Kpr64s{steps} & Kpr64s{sizeof(T) - 1}) != 0) || ...), kprStatusStepNotMultiple);
}

// The channel of interest is one of three.
constexpr KprStatus coiHolds(int coi) { return failIf(coi < 1 || coi > 3, kprStatusBadCoi); }

template <typename... Status>
constexpr KprStatus firstFailure(Status... checks) {
    KprStatus first = kprStatusOk;
    static_cast<void>((((first = checks) != kprStatusOk) || ...));
    return first;
}

}  // namespace n0
