// Calls of dilation, erosion and what is made of them, in the form of either interface, and their checks.
#pragma once

#include "morph/structure.h"

namespace n0::morph {

// What a call gives. Its sizes and steps are 32-bit or 64-bit.
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

    template <typename Size>
    Call(const T* from, Kpr64s fromStep, T* to, Kpr64s toStep, Size roi, KprBorderType word, const T* constant,
         int channelCount, Kpr8u* work)
        : src(from),
          srcStep(fromStep),
          dst(to),
          dstStep(toStep),
          width(roi.width),
          height(roi.height),
          border(word),
          value(constant),
          channels(channelCount),
          buffer(work) {}
};

// The same of images of one bit a pixel.
struct BitCall {
    const Kpr8u* src;
    Kpr64s srcStep;
    int srcBitOffset;
    Kpr8u* dst;
    Kpr64s dstStep;
    int dstBitOffset;
    Kpr64s width, height;
    KprBorderType border;
    const Kpr8u* value;  // of which 0 is a clear bit, or null
    Kpr8u* buffer;

    template <typename Size>
    BitCall(const Kpr8u* from, Kpr64s fromStep, int fromBit, Kpr8u* to, Kpr64s toStep, int toBit, Size roi,
            KprBorderType word, const Kpr8u* constant, Kpr8u* work)
        : src(from),
          srcStep(fromStep),
          srcBitOffset(fromBit),
          dst(to),
          dstStep(toStep),
          dstBitOffset(toBit),
          width(roi.width),
          height(roi.height),
          border(word),
          value(constant),
          buffer(work) {}
};

// Whether the source may be the destination. Which members take that is settled one by one and follows no rule.
enum class InPlace { Served, Refused };

// The ladders of a call of either kind, in the 32-bit and in the large interface.
template <typename Call>
KprStatus callHolds(InPlace inPlace, const Call& call, const void* spec);
template <typename Call>
KprStatus largeCallHolds(InPlace inPlace, const Call& call, const void* spec);

// That of the large interface's operations of two stages: the constant's pointer counts among the pointers here, and a
// ROI of 0x7fffffff comes last.
template <typename Call>
KprStatus largeCompoundHolds(const Call& call, const void* spec);

}  // namespace n0::morph
