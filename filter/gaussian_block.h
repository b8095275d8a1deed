// The prepared block of the two Gaussian filters, where its kernel lies, and the sizes of block and buffer.
#pragma once

#include "filter/pipeline_sizes.h"
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

struct BorderSizes {
    Bytes32 spec, buffer;
};

// `n` taps on rows of `w` pixels: the row's and the column's own buffers, two strips, the rows and their pointers.
constexpr BorderSizes borderSizes(Bytes32 w, Bytes32 h, Bytes32 n, KprDataType type, int channels) {
    const Bytes32 m = h < n ? h : n;
    const Bytes32 w8 = roundUp((w + n) * static_cast<Bytes32>(channels), 8);
    if (type == kpr32f) {
        return {n * 32 + 32, w8 * n * 4 + 32 + (m + n) * 4 * w8 + 64 + rowBytes32f(n, channels) + 32 +
                                 columnBytes32f(n) + 32 + (m + n) * 8 + 32};
    }
    const Bytes32 stages = type == kpr8u    ? rowBytes8u16s(n, channels) + columnBytes16s(w, channels)
                           : type == kpr16u ? rowBytes16u(n, channels) + columnBytes16u(w, n, channels)
                                            : rowBytes16s(n, channels) + columnBytes16s(w, channels);
    return {n * 16 + 36, 2 * (m + n) * w8 + 64 + 2 * (2 * (n / 2) * w8 + 16) + stages + 32 + 32 + (h + n) * 8 + 32};
}

// The large form: a ring of float rows that are whole cache lines, one row more and three words a tap.
constexpr Bits64 largeBufferBytes(Bits64 rowElements, int kernelSize) {
    const auto n = static_cast<Bits64>(kernelSize);
    return (n + 1) * ((rowElements * 4 + 63) & ~Bits64{63}) + n * 12 + 64;
}

}  // namespace n0::filter
