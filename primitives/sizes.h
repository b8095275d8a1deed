// The arithmetic of sizing calls. Sizes are formed in 128 bits, where none that pass the checks can wrap; those that
// callers form in 32 bits and expect to wrap are formed in Bytes32.
#pragma once

#include <cstdint>
#include <limits>

#include "frame/checks.h"

namespace n0 {

__extension__ typedef __int128 Bytes;
using Bytes32 = std::uint32_t;

// To a multiple that is a power of two: a division in 128 bits would be a call.
template <typename Size>
constexpr Size roundUp(Size size, int multiple) {
    return (size + static_cast<Size>(multiple - 1)) & ~static_cast<Size>(multiple - 1);
}

// Stores a size if the caller's integer holds it.
template <typename Integer>
KprStatus putSize(Bytes size, Integer* out) {
    if (size > Bytes{std::numeric_limits<Integer>::max()}) return kprStatusSizeOverflow;
    *out = static_cast<Integer>(size);
    return kprStatusOk;
}

}  // namespace n0
