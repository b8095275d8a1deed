// A stack in the caller's memory. It never leaves it: what does not fit is refused.
#pragma once

#include "primitives/simd.h"
#include "primitives/workspace.h"

namespace n0 {

template <typename T>
class BoundedStack {
  public:
    BoundedStack(T* memory, Kpr64s capacity) : memory_(memory), capacity_(capacity) {}

    KPR_INLINE bool push(T value) {
        if (count_ == capacity_) return false;
        memory_[count_++] = value;
        return true;
    }
    KPR_INLINE T pop() {
        mustHold(count_ > 0);
        return memory_[--count_];
    }
    [[nodiscard]] KPR_INLINE bool empty() const { return count_ == 0; }
    [[nodiscard]] KPR_INLINE Kpr64s count() const { return count_; }

  private:
    T* memory_;
    Kpr64s capacity_;
    Kpr64s count_ = 0;
};

}  // namespace n0
