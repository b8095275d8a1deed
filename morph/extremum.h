// Dilation and erosion of a checked call: what makes its pixels.
#pragma once

#include "morph/call.h"
#include "morph/job.h"

namespace n0::morph {

// The same as a job for one mask. The mode that never wins becomes its constant; a constant that is a signalling NaN
// becomes a quiet one.
template <typename Rule, typename T>
Job<T> jobOf(const Call<T>& call, const Taps& taps) {
    const Extents e = {call.width, call.height, taps.width, taps.height};
    Job<T> job = {{call.src, call.srcStep},
                  {call.dst, call.dstStep},
                  call.width,
                  call.height,
                  call.channels,
                  Border(call.border),
                  {},
                  Workspace(call.buffer, static_cast<Kpr64s>(workHeld(e, sizeof(T), call.channels))),
                  Source::Quiet,
                  Output::Result,
                  {call.dst, call.dstStep}};
    const bool own = job.border.base == kprBorderConstant && call.value != nullptr;
    for (int c = 0; c < 4; ++c) job.fill[c] = own && c < call.channels ? quiet(call.value[c]) : Rule::kWeakest;
    if (job.border.base == kprBorderDefault) job.border.base = kprBorderConstant;
    return job;
}

// Makes the pixels of a job, by the plan of the mask. Returns what has become known of the source. This and what makes
// those of a call are compiled once for each rule and type, from plans.h.
template <typename Rule, typename T>
Source makeExtremum(const Job<T>& job, const Taps& taps);

template <typename Rule, typename T>
KprStatus extremum(const Call<T>& call, const Taps& taps);

}  // namespace n0::morph
