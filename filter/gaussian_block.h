// The prepared block of the two Gaussian filters, and where its kernel lies.
#pragma once

#include "filter/border_rule.h"

struct KprFilterGaussianSpec {
    Kpr32s kernelSize;
    Kpr32s kernelOffset;
    KprDataType dataType;
    KprBorderType borderType;
    Kpr32s scaleBits;
};

namespace n0 {

// The kernel follows the five words at a multiple of 16 bytes in the border form, of 64 in the large one.
inline constexpr int kHeaderBytes = 20;
inline constexpr int kLargeKernelAlignment = 64;
static_assert(sizeof(KprFilterGaussianSpec) == kHeaderBytes);

template <typename T, typename Spec>
auto* kernelAt(Spec* spec, Kpr64s offset, std::uintptr_t alignment) {
    using Bytes = std::conditional_t<std::is_const_v<Spec>, const char, char>;
    auto* const from = reinterpret_cast<Bytes*>(spec) + offset;
    using Tap = std::conditional_t<std::is_const_v<Spec>, const T, T>;
    return reinterpret_cast<Tap*>(from + (-reinterpret_cast<std::uintptr_t>(from) & (alignment - 1)));
}

template <typename Size>
constexpr bool isGaussianSize(Size kernelSize) {
    return kernelSize >= 3 && kernelSize % 2 == 1;
}

// Border forms store a tap of 1 as 2 to the power of this.
constexpr int scaleBitsOf(KprDataType type) { return type == kpr8u ? 12 : 15; }

// The large form takes every word with all four flags for the one without a base mode.
constexpr KprBorderType largeWord(KprBorderType word) {
    return (word & kprBorderInMem) == kprBorderInMem && word <= 255 ? KprBorderType{kprBorderInMem} : word;
}

}  // namespace n0
