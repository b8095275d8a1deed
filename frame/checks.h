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

// A row of interleaved pixels, whose length is asked for.
struct RowLength {
    Kpr64s pixels;
    int channels;

    constexpr RowLength(Kpr64s width, int channelsOfOne = 1)  // a width alone is a row of one channel
        : pixels(width), channels(channelsOfOne) {}
};

// Each step holds a row of elements of T. A row that is longer than 64 bits can say is longer than any step, however
// the checks before this one went.
template <typename T, typename... Step>
constexpr KprStatus rowsFit(RowLength row, Step... steps) {
    Kpr64s bytes = 0;
    if (__builtin_mul_overflow(row.pixels, row.channels * Kpr64s{sizeof(T)}, &bytes)) {
        return failIf(row.pixels > 0, kprStatusBadStep);
    }
    return failIf(((Kpr64s{steps} < bytes) || ...), kprStatusBadStep);
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
