// Dilation and erosion of a checked call on 1-bit images: what makes its pixels.
#pragma once

#include "morph/bits.h"
#include "morph/call.h"

namespace n0::morph {

// The bytes of a work buffer. A smaller ROI needs no more. The large interface has no sizing call for bits alone: its
// buffers are sized for images of bytes, and these sizes are no smaller. For a mask made odd of V x H and a ROI of
// width w, [n] being n rounded up to 32, an image of bytes has at least (V + w - 1) * H + [w] * H + [V] + 80 bytes if H
// is 3 or more, and [w] + [V] + 80 if H is 1.
Bytes bitWorkSize(Extents e);

// The call as a job for one mask.
template <typename Rule>
BitJob bitJobOf(const BitCall& call, const Taps& taps) {
    const Bytes bytes = bitWorkSize({call.width, call.height, taps.width, taps.height});
    BitJob job = {{{call.src, call.srcStep}, call.srcBitOffset},
                  {{call.dst, call.dstStep}, call.dstBitOffset},
                  call.width,
                  call.height,
                  Border(call.border),
                  Rule::kWeakest,
                  Workspace(call.buffer, static_cast<Kpr64s>(bytes)),
                  Output::Result,
                  {{call.src, call.srcStep}, call.srcBitOffset}};
    if (job.border.base == kprBorderConstant && call.value != nullptr) job.fill = *call.value != 0 ? 0xff : 0;
    if (job.border.base == kprBorderDefault) job.border.base = kprBorderConstant;
    return job;
}

// Makes the pixels of a job, by the plan of the mask. Compiled once for each rule, in extremum_bits.cpp.
template <typename Rule>
void makeBitExtremum(const BitJob& job, const Taps& taps);

}  // namespace n0::morph
