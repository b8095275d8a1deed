// Spans of a fill, and the stacks in which they wait until the rows above and below them are looked at.
#pragma once

#include "frame/checks.h"
#include "primitives/bounded.h"
#include "primitives/rows.h"

namespace n0::segment {

// A span with the span from which it was found: what that one covers in its row needs no second look. `direction`, +1
// or -1, leads to that row.
struct FloodSpan {
    Kpr32s row, left, right;
    Kpr32s parentLeft, parentRight;
    Kpr32s direction;
};

// A span alone. Both rows beside it are looked at in full, where it finds what it came from already filled.
struct LoneSpan {
    Kpr32s row, left, right;
};

// Lone spans. A region of w x h pixels never has more than ((w + 1) * h + 2) / 3 of them waiting where a span ends at a
// pixel that is not the region's: a span of n pixels leads to at most n + 1 more than it replaces and takes n + 1
// columns with the one behind it, and those that wait take two each. 6 * w * h + 29 bytes hold that many. Spans that
// may touch, as gradients make them, are no more than the pixels.
class LoneSpans {
  public:
    LoneSpans(void* memory, Kpr64s bytes)
        : stack_(alignedUp<LoneSpan>(memory), (bytes - Kpr64s{alignof(LoneSpan)} + 1) / Kpr64s{sizeof(LoneSpan)}) {}

    KPR_INLINE void push(const FloodSpan& span) {
        const bool held = stack_.push({span.row, span.left, span.right});
        mustHold(held);
    }
    KPR_INLINE FloodSpan pop() {
        const LoneSpan span = stack_.pop();
        return {span.row, span.left, span.right, span.right + 1, span.right, 1};
    }
    [[nodiscard]] KPR_INLINE bool empty() const { return stack_.empty(); }

  private:
    BoundedStack<LoneSpan> stack_;
};

// Spans of which the oldest are forgotten when there are too many: at the capacity the count begins again at 0.
class WrappingSpans {
  public:
    WrappingSpans(void* memory, Kpr64s capacity) : spans_(alignedUp<FloodSpan>(memory)), capacity_(capacity) {}

    KPR_INLINE void push(const FloodSpan& span) {
        spans_[count_++] = span;
        if (count_ == capacity_) count_ = 0;
    }
    KPR_INLINE FloodSpan pop() { return spans_[--count_]; }
    [[nodiscard]] KPR_INLINE bool empty() const { return count_ == 0; }

  private:
    FloodSpan* spans_;
    Kpr64s capacity_;
    Kpr64s count_ = 0;
};

// What a fill covers.
class Extent {
  public:
    KPR_INLINE void add(const FloodSpan& span) {
        left_ = std::min(left_, span.left);
        right_ = std::max(right_, span.right);
        top_ = std::min(top_, span.row);
        bottom_ = std::max(bottom_, span.row);
    }
    [[nodiscard]] KprRect rect() const { return {left_, top_, right_ - left_ + 1, bottom_ - top_ + 1}; }

  private:
    Kpr32s left_ = 0x7fffffff, right_ = -1, top_ = 0x7fffffff, bottom_ = -1;
};

template <int channels, typename T>
void putRecord(KprConnectedComp* record, Kpr64s area, const T* value, const Extent& extent) {
    *record = {static_cast<Kpr64f>(area), {}, extent.rect()};
    for (int i = 0; i < channels; ++i) record->value[i] = static_cast<Kpr64f>(value[i]);
}

constexpr KprStatus seedInside(KprPoint seed, KprSize roi) {
    return failIf(seed.x < 0 || seed.y < 0 || seed.x >= roi.width || seed.y >= roi.height, kprStatusOutOfRange);
}

}  // namespace n0::segment
