// What the processor notes of float arithmetic by the way.
#pragma once

#include "primitives/simd.h"

namespace n0 {

// A signalling NaN becomes a quiet one; every other value stays as it is.
template <typename T>
KPR_INLINE Vec<T> quiet(Vec<T> v) {
    if constexpr (std::is_floating_point_v<T>) return larger(v, v);
    return v;
}

// Whether an operation has met an operand that is not valid for it, since this began to watch: for larger() and
// smaller() that is a signalling NaN. It costs nothing where none is met. While it watches nothing traps, and in the
// end the caller's control and status word is what it was.
class InvalidOperands {
  public:
    InvalidOperands() : before_(_mm_getcsr()) { set((before_ | _MM_MASK_MASK) & ~kSeen); }
    ~InvalidOperands() { set(before_); }
    InvalidOperands(const InvalidOperands&) = delete;
    InvalidOperands& operator=(const InvalidOperands&) = delete;

    // NOLINTNEXTLINE(readability-convert-member-functions-to-static): there is nothing to be seen without a watch
    [[nodiscard]] bool seen() const {
        asm volatile("" ::: "memory");  // what was stored until here has been computed
        return (_mm_getcsr() & kSeen) != 0;
    }

  private:
    static constexpr unsigned kSeen = _MM_EXCEPT_INVALID;

    static void set(unsigned word) {
        asm volatile("" ::: "memory");
        _mm_setcsr(word);
        asm volatile("" ::: "memory");
    }

    unsigned before_;
};

}  // namespace n0
