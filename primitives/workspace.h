// The caller's memory, cut into pieces: working buffers and state blocks begin anywhere.
#pragma once

#include <cstdint>
#include <type_traits>

#include "frame/api.h"

namespace n0 {

// What must hold if the code is right. Debug builds stop where it does not.
#ifdef NDEBUG
inline void mustHold(bool) {}
#else
inline void mustHold(bool holds) {
    if (!holds) __builtin_trap();
}
#endif

// The first T of `memory` at a multiple of `alignment` bytes, which is a power of two.
template <typename T, typename Memory>
auto* alignedUp(Memory* memory, std::uintptr_t alignment = alignof(T)) {
    using Byte = std::conditional_t<std::is_const_v<Memory>, const char, char>;
    using Result = std::conditional_t<std::is_const_v<Memory>, const T, T>;
    const std::uintptr_t past = -reinterpret_cast<std::uintptr_t>(memory) & (alignment - 1);
    return reinterpret_cast<Result*>(reinterpret_cast<Byte*>(memory) + past);
}

// A buffer of which pieces are taken one after another, never more than it has.
class Workspace {
  public:
    Workspace() = default;
    Workspace(void* memory, Kpr64s bytes) : next_(static_cast<char*>(memory)), end_(next_ + bytes) {}

    // `count` elements at a multiple of `alignment` bytes; null, and nothing taken, where that many are not left.
    template <typename T>
    T* takeIfHeld(Kpr64s count, std::uintptr_t alignment = alignof(T)) {
        auto* const piece = reinterpret_cast<char*>(alignedUp<T>(next_, alignment));
        if (count < 0 || piece > end_ || (end_ - piece) / Kpr64s{sizeof(T)} < count) return nullptr;
        next_ = piece + count * Kpr64s{sizeof(T)};
        return reinterpret_cast<T*>(piece);
    }

    // The same where the sizing call has made sure that they are left.
    template <typename T>
    T* take(Kpr64s count, std::uintptr_t alignment = alignof(T)) {
        T* const piece = takeIfHeld<T>(count, alignment);
        mustHold(piece != nullptr);
        return piece;
    }

    // As many whole elements as are left.
    template <typename T>
    [[nodiscard]] Kpr64s left(std::uintptr_t alignment = alignof(T)) const {
        const auto* const piece = reinterpret_cast<const char*>(alignedUp<T>(next_, alignment));
        return end_ > piece ? (end_ - piece) / Kpr64s{sizeof(T)} : 0;
    }

  private:
    char* next_ = nullptr;
    char* end_ = nullptr;
};

}  // namespace n0
