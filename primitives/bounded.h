// A stack and a queue in the caller's memory. They never leave it: what does not fit is refused, and they remember that
// something was.
#pragma once

#include "primitives/simd.h"
#include "primitives/workspace.h"

namespace n0 {

template <typename T>
class BoundedStack {
  public:
    BoundedStack(T* memory, Kpr64s capacity) : memory_(memory), capacity_(capacity) {}

    KPR_INLINE bool push(T value) {
        if (count_ == capacity_) {
            refused_ = true;
            return false;
        }
        memory_[count_++] = value;
        return true;
    }
    KPR_INLINE T pop() {
        mustHold(count_ > 0);
        return memory_[--count_];
    }
    [[nodiscard]] KPR_INLINE bool empty() const { return count_ == 0; }
    [[nodiscard]] KPR_INLINE Kpr64s count() const { return count_; }

    // Whether a push was refused since this was last asked.
    bool takeRefused() {
        const bool refused = refused_;
        refused_ = false;
        return refused;
    }

  private:
    T* memory_;
    Kpr64s capacity_;
    Kpr64s count_ = 0;
    bool refused_ = false;
};

// First in, first out, in a ring of places.
template <typename T>
class BoundedQueue {
  public:
    BoundedQueue(T* memory, Kpr64s capacity) : memory_(memory), capacity_(capacity) {}

    KPR_INLINE bool push(T value) {
        if (count_ == capacity_) {
            refused_ = true;
            return false;
        }
        const Kpr64s at = first_ + count_++;
        memory_[at < capacity_ ? at : at - capacity_] = value;
        return true;
    }
    KPR_INLINE T pop() {
        mustHold(count_ > 0);
        const T value = memory_[first_];
        first_ = first_ + 1 == capacity_ ? 0 : first_ + 1;
        --count_;
        return value;
    }
    [[nodiscard]] KPR_INLINE bool empty() const { return count_ == 0; }
    [[nodiscard]] KPR_INLINE Kpr64s count() const { return count_; }

    bool takeRefused() {
        const bool refused = refused_;
        refused_ = false;
        return refused;
    }

  private:
    T* memory_;
    Kpr64s capacity_;
    Kpr64s first_ = 0, count_ = 0;
    bool refused_ = false;
};

}  // namespace n0
