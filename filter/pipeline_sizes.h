// The buffers of the two stages, in bytes; k is the kernel's size, w the ROI's width. The sums are formed as callers of
// 32-bit sizes form them: they wrap.
#pragma once

#include "primitives/sizes.h"

namespace n0::filter {

constexpr Bytes32 rowBytes8u16s(Bytes32 k, int channels) {
    return channels == 1 ? 32 * (k + k / 4) + 2 * k + 66 : 60 * k + 144;
}
constexpr Bytes32 rowBytes16s(Bytes32 k, int channels) { return channels == 1 ? 48 * k + 112 : 40 * k + 96; }
constexpr Bytes32 rowBytesLow16s(Bytes32 k, int channels) { return (channels == 1 ? 24 : 208) * k + 96; }
constexpr Bytes32 rowBytes16u(Bytes32 k, int channels) { return (channels == 1 ? 64 : 128) * k + 96; }
constexpr Bytes32 rowBytes32f(Bytes32 k, int channels) { return (channels == 1 ? 96 : 288) * k + 96; }

constexpr Bytes32 columnBytes16s(Bytes32 w, int channels) {
    return 12 * static_cast<Bytes32>(channels) * roundUp(w, 4) + 64;
}
constexpr Bytes32 columnBytesLow16s(Bytes32 w, int channels) {
    return 12 * static_cast<Bytes32>(channels) * roundUp(w, 8) + 64;
}
constexpr Bytes32 columnBytes16u(Bytes32 w, Bytes32 k, int channels) {
    return 8 * roundUp(static_cast<Bytes32>(channels) * w, 4) + 32 * k + 64;
}
constexpr Bytes32 columnBytes32f(Bytes32 k) { return 32 * k + 32; }

}  // namespace n0::filter
