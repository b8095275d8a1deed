// The prepared block of the two Gaussian filters, and where its kernel lies.
#pragma once

#include "primitives/axis.h"
#include "primitives/workspace.h"

struct KprFilterGaussianSpec {
    Kpr32s kernelSize;
    Kpr32s kernelOffset;
    KprDataType dataType;
    KprBorderType borderType;
    Kpr32s scaleBits;
};

namespace n0::filter {

// The kernel follows the five words at a multiple of 16 bytes in the border form, of 64 in the large one.
inline constexpr int kHeaderBytes = 20;
inline constexpr int kLargeKernelAlignment = 64;
static_assert(sizeof(KprFilterGaussianSpec) == kHeaderBytes);

template <typename Tap, typename Spec>
auto* kernelAt(Spec* spec, Kpr64s offset, std::uintptr_t alignment) {
    using Byte = std::conditional_t<std::is_const_v<Spec>, const char, char>;
    return alignedUp<Tap>(reinterpret_cast<Byte*>(spec) + offset, alignment);
}

template <typename Size>
constexpr bool isGaussianSize(Size kernelSize) {
    return kernelSize >= 3 && kernelSize % 2 == 1;
}

// Border forms store a tap of 1 as 2 to the power of this.
constexpr int scaleBitsOf(KprDataType type) { return type == kpr8u ? 12 : 15; }

// The large form takes every word with all four flags for the one without a base mode.
constexpr KprBorderType largeWord(KprBorderType word) {
    return allInMemory(word) && (word & ~kFilterWord) == 0 ? KprBorderType{kprBorderInMem} : word;
}

}  // namespace n0::filter
