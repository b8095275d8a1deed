// Filling: every pixel of a ROI, or every element of an array, becomes one value or one tuple of values.
#include <array>
#include <bit>

#include "frame/cache.h"
#include "frame/checks.h"
#include "primitives/kit.h"
#include "primitives/rows.h"

namespace n0 {
namespace {

// The sizes above which a fill that exceeds the cache bypasses it: of an array in bytes, of an image in pixels.
inline constexpr Kpr64s kLongArray = 0x200000;
inline constexpr Kpr64s kLargeImage = 6291456;

template <typename T>
KprStatus setRows(T value, Rows<T> dst, KprSizeL roi, Kpr64s askAbove) {
    const Kpr64s bytes = roi.width * roi.height * Kpr64s{sizeof(T)};
    return walkRoiLines<kLanes<T>>(
        exceedsCache(bytes, askAbove) ? Stores::PastCache : Stores::ThroughCache, roi,
        [constant = broadcast(value)](auto part, T* d) { store(d, constant, part); }, dst);
}

template <typename T>
KprStatus setImage(T value, T* dst, int dstStep, KprSize roi) {
    return firstFailure(notNull(dst), roiHolds(roi))
               ?: setRows(value, Rows{dst, dstStep}, {roi.width, roi.height}, kLargeImage * Kpr64s{sizeof(T)});
}

// Not inlined: filling and clearing share it, and elements of one size.
template <typename T>
[[gnu::noinline]] KprStatus setArray(T value, T* dst, int len) {
    const KprSizeL roi = {len, 1};
    return firstFailure(notNull(dst), roiHolds(roi)) ?: setRows(value, Rows{dst, 0}, roi, kLongArray);
}

// The channel of each element in three vectors of three-channel pixels.
template <typename T>
constexpr auto channelTurns() {
    std::array<T, 3 * kLanes<T>> turns{};
    for (unsigned i = 0; i < turns.size(); ++i) turns[i] = static_cast<T>(i % 3);
    return turns;
}

template <typename T>
KprStatus setThreeChannels(const T* value, T* dst, int dstStep, KprSize roi) {
    struct Pixel {
        T channels[3];
    };
    if (const KprStatus failure = firstFailure(notNull(value, dst), roiHolds(roi))) return failure;
    static constexpr auto turns = channelTurns<T>();
    const auto tuple = load(value, Lanes{0b111});
    const auto a = permute(tuple, load(turns.data(), All{}));
    const auto b = permute(tuple, load(turns.data() + kLanes<T>, All{}));
    const auto c = permute(tuple, load(turns.data() + 2 * kLanes<T>, All{}));
    return walkRoi<kLanes<T>>(
        roi, [=](auto part, Pixel* d) { storePixels(d->channels, a, b, c, part); },
        Rows{reinterpret_cast<Pixel*>(dst), dstStep});
}

// Whole pixels fill a vector, so that every vector of a row is the same.
KprStatus setFourChannels(const Kpr16s* value, Kpr16s* dst, int dstStep, KprSize roi) {
    if (const KprStatus failure = firstFailure(notNull(value, dst), roiHolds(roi))) return failure;
    const auto pixel = std::bit_cast<Kpr64s>(std::array{value[0], value[1], value[2], value[3]});
    return walkRoi<kLanes<Kpr16s>>(
        KprSizeL{Kpr64s{4} * roi.width, roi.height},
        [pixels = as<Kpr16s>(broadcast(pixel))](auto part, Kpr16s* d) { store(d, pixels, part); }, Rows{dst, dstStep});
}

}  // namespace
}  // namespace n0

using namespace n0;

KprStatus kpriSet_8u_C1R(Kpr8u value, Kpr8u* dst, int dstStep, KprSize roiSize) {
    return setImage(value, dst, dstStep, roiSize);
}

KprStatus kpriSet_16s_C1R(Kpr16s value, Kpr16s* dst, int dstStep, KprSize roiSize) {
    return setImage(value, dst, dstStep, roiSize);
}

KprStatus kpriSet_16s_C3R(const Kpr16s* value, Kpr16s* dst, int dstStep, KprSize roiSize) {
    return setThreeChannels(value, dst, dstStep, roiSize);
}

KprStatus kpriSet_16s_C4R(const Kpr16s* value, Kpr16s* dst, int dstStep, KprSize roiSize) {
    return setFourChannels(value, dst, dstStep, roiSize);
}

KprStatus kpriSet_32s_C3R(const Kpr32s* value, Kpr32s* dst, int dstStep, KprSize roiSize) {
    return setThreeChannels(value, dst, dstStep, roiSize);
}

KprStatus kprsSet_8u(Kpr8u value, Kpr8u* dst, int len) { return setArray(value, dst, len); }
KprStatus kprsSet_16s(Kpr16s value, Kpr16s* dst, int len) { return setArray(value, dst, len); }
KprStatus kprsSet_32s(Kpr32s value, Kpr32s* dst, int len) { return setArray(value, dst, len); }
KprStatus kprsSet_32f(Kpr32f value, Kpr32f* dst, int len) {
    return setArray(std::bit_cast<Kpr32s>(value), reinterpret_cast<Kpr32s*>(dst), len);
}

KprStatus kprsZero_8u(Kpr8u* dst, int len) { return setArray<Kpr8u>(0, dst, len); }
KprStatus kprsZero_16s(Kpr16s* dst, int len) { return setArray<Kpr16s>(0, dst, len); }
KprStatus kprsZero_32s(Kpr32s* dst, int len) { return setArray<Kpr32s>(0, dst, len); }
KprStatus kprsZero_32f(Kpr32f* dst, int len) { return setArray<Kpr32s>(0, reinterpret_cast<Kpr32s*>(dst), len); }
