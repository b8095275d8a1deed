// The plans of dilation and erosion, and the choice between them: one engine over element type, channels and rule. It
// is compiled once for each type and rule, by the sources named extremum_*.cpp.
#pragma once

#include "morph/extremum.h"
#include "morph/rectangle.h"
#include "morph/tap_walk.h"
#include "primitives/simd_status.h"

namespace n0::morph {

// By the plan that the mask asks for; false, with nothing done, if that cannot serve what lies around the image.
template <typename Rule, typename T>
bool byPlan(const Job<T>& job, const MaskPlan& plan) {
    if (plan.kind == MaskPlan::Copy || (plan.kind == MaskPlan::Rectangle && rectangleServes(job, plan.window))) {
        rectangle<Rule>(job, plan.window);
        return true;
    }
    if (plan.kind != MaskPlan::Small || job.inPlace()) return false;
    if (plan.window.left == 1) smallMask<Rule, 1, false>(job, plan.reaches);
    if (plan.window.left == 2) smallMask<Rule, 2, false>(job, plan.reaches);
    return true;
}

template <typename Rule, typename T>
Source makeExtremum(const Job<T>& job, const Taps& taps) {
    if constexpr (std::is_floating_point_v<T>) {
        // Plans take floats for free of signalling NaN, as they are in practice. Where one turns up, all is made anew
        // by the plan that makes them quiet: the source is as it was, as other plans do not work in place. A difference
        // has no second try, since its other image may be the destination; but its source comes from an earlier stage,
        // which has told.
        const InvalidOperands invalid;
        if (job.source == Source::Quiet && byPlan<Rule>(job, taps.plan)) {
            if (job.output != Output::Result || !invalid.seen()) return Source::Quiet;
        }
        TapWalk<Rule, T>(job, taps).run();
        return Source::Signalling;
    } else {
        if (!byPlan<Rule>(job, taps.plan)) TapWalk<Rule, T>(job, taps).run();
        return Source::Quiet;
    }
}

template <typename Rule, typename T>
KprStatus extremum(const Call<T>& call, const Taps& taps) {
    makeExtremum<Rule>(jobOf<Rule>(call, taps), taps);
    return kprStatusOk;
}

}  // namespace n0::morph
