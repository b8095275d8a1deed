// Dilation and erosion of checked 1-bit images: a call in the form of either interface, its checks and its plan.
#pragma once

#include "morph/bit_ribbon.h"
#include "morph/bit_square.h"
#include "morph/bit_walk.h"
#include "morph/extremum.h"

namespace n0::morph {

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
};

// Bit offsets lie within a byte, and a step holds the bytes that the row's bits lie in.
inline KprStatus stepsHold(const BitCall& c) {
    const auto within = [](int offset) { return offset >= 0 && offset <= 7; };
    return firstFailure(failIf(!within(c.srcBitOffset) || !within(c.dstBitOffset), kprStatusBadArg),
                        rowsFit<Kpr8u>((c.width + c.srcBitOffset + 7) >> 3, c.srcStep),
                        rowsFit<Kpr8u>((c.width + c.dstBitOffset + 7) >> 3, c.dstStep));
}

// The bytes of a work buffer. No more is needed for a smaller ROI, and as many are in the work area of a byte image,
// sized for this ROI or a larger one, as the large interface gives it. With V x H for the mask made odd, u for V +
// width
// - 1 and [n] for n rounded up to 32, that has at least u * H + [width] * H + [V] + 80 bytes if H is 3 or more, and
// [width] + [V] + 80 if H is 1.
Bytes bitWorkSize(Extents e);

// The call as a job for one mask.
template <typename Rule>
BitJob bitJobOf(const BitCall& call, Taps taps) {
    BitJob job = {{{call.src, call.srcStep}, call.srcBitOffset},
                  {{call.dst, call.dstStep}, call.dstBitOffset},
                  call.width,
                  call.height,
                  Border(call.border),
                  Rule::kWeakest,
                  {reinterpret_cast<char*>(call.buffer),
                   static_cast<Kpr64s>(bitWorkSize({call.width, call.height, taps.width, taps.height}))}};
    if (job.border.base == kprBorderConstant && call.value != nullptr) job.fill = *call.value != 0 ? 0xff : 0;
    if (job.border.base == kprBorderDefault) job.border.base = kprBorderConstant;
    return job;
}

// The plan that the mask asks for. `other` is the image of Put's differences; its first pixel is the ROI's.
template <typename Rule, typename Put>
KprStatus bitExtremum(const BitJob& job, Taps taps, BitRows<const Kpr8u> other) {
    const Feature feature = featureOf(taps);
    const Window window = feature.window;
    if (feature.plan != Feature::Walk && window.columns() == 1 && window.rows() == 1) {
        const BitSink<Put> sink(job, other);
        const BitReader read(job.src.bit - sink.before(), {job.src.bit, job.src.bit + job.width});
        for (Kpr64s y = 0; y < job.height; ++y) {
            walkColumns<64>(sink.bytes(), [&](auto part, Kpr64s x) {
                sink.put(y, x, sink.stretch(x), read(job.src.bytes[y], x), part);
            });
        }
    } else if (!Put::kReadsOther && feature.plan == Feature::Rectangle && BitRibbon<Rule>::serves(job, window)) {
        BitRibbon<Rule>(job).run();
    } else if (feature.plan == Feature::Rectangle && BitSquare<Rule, Put, 1>::serves(window)) {
        BitSquare<Rule, Put, 1>(job, other).run();
    } else if (feature.plan == Feature::Rectangle && BitSquare<Rule, Put, 2>::serves(window)) {
        BitSquare<Rule, Put, 2>(job, other).run();
    } else {
        BitWalk<Rule, Put>(job, window, taps, other).run();
    }
    return kprStatusOk;
}

inline BitRows<const Kpr8u> sourceOf(const BitCall& call) { return {{call.src, call.srcStep}, call.srcBitOffset}; }

template <typename Rule>
KprStatus bitExtremum(const BitCall& call, Taps taps) {
    return bitExtremum<Rule, PlainBits>(bitJobOf<Rule>(call, taps), taps, sourceOf(call));
}

}  // namespace n0::morph
