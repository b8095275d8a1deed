// The memory around a ROI that a plan may read, and what lies beyond it.
#pragma once

#include "morph/job.h"

namespace n0::morph {

// The memory that may be read along one axis, relative to the ROI.
struct Reach {
    Kpr64s begin, end;
};

template <typename T>
constexpr Reach columnsHeld(const Job<T>& job, Window w) {
    return {job.border.left ? -w.left : 0, job.width + (job.border.right ? w.right : 0)};
}
template <typename T>
constexpr Reach rowsHeld(const Job<T>& job, Window w) {
    return {job.border.top ? -w.top : 0, job.height + (job.border.bottom ? w.bottom : 0)};
}

template <typename Rule, typename T>
Pattern<T> outside(const Job<T>& job) {
    constexpr T none = neutral<Rule>();
    const T neutrals[4] = {none, none, none, none};
    return {job.border.base == kprBorderConstant ? job.fill : neutrals, job.channels};
}

}  // namespace n0::morph
