// What the row and the column stage check alike.
#pragma once

#include "filter/pipeline_sizes.h"
#include "frame/checks.h"

namespace n0::filter {

inline KprStatus sizeOf(KprSize roi, int kernelSize, int* size, Bytes32 bytes) {
    return firstFailure(notNull(size), roiHolds(roi), failIf(kernelSize < 1, kprStatusBadSize))
               ?: (*size = static_cast<int>(bytes), kprStatusOk);
}

// Looks at the pointers, so that it stands after the checks of the array itself.
template <typename T>
KprStatus rowsPresent(T* const* rows, Kpr64s count) {
    for (Kpr64s y = 0; y < count; ++y) {
        if (rows[y] == nullptr) return kprStatusNullPtr;
    }
    return kprStatusOk;
}

}  // namespace n0::filter
