// Copying: the bytes of a ROI or of an array. Element types and channels matter to the length of a row alone, but in
// the AC4 forms, which leave the fourth channel of the destination alone.
#include "frame/cache.h"
#include "frame/checks.h"
#include "primitives/kit.h"
#include "primitives/rows.h"

namespace n0 {
namespace {

// The sizes in bytes above which a copy that exceeds the cache bypasses it.
inline constexpr Kpr64s kLargeImage = 0x300000;
inline constexpr Kpr64s kLongArray = 4194304;

// A ROI of pixels of so many T, counted in bytes.
template <typename T, int channels, typename Size>
KprSizeL inBytes(Size roi) {
    return {roi.width * Kpr64s{channels * sizeof(T)}, roi.height};
}

KprStatus copyRows(Rows<const Kpr8u> src, Rows<Kpr8u> dst, KprSizeL roi, bool pastCache) {
    return walkRoiLines<kLanes<Kpr8u>>(
        pastCache ? Stores::PastCache : Stores::ThroughCache, roi,
        [](auto part, Kpr8u* d, const Kpr8u* s) { store(d, load(s, part), part); }, dst, src);
}

KprStatus copyImage(const void* src, Kpr64s srcStep, void* dst, Kpr64s dstStep, KprSizeL roi) {
    return firstFailure(notNull(src, dst), roiHolds(roi))
               ?: copyRows({static_cast<const Kpr8u*>(src), srcStep}, {static_cast<Kpr8u*>(dst), dstStep}, roi,
                           exceedsCache(roi.width * roi.height, kLargeImage));
}

// An array that is copied brings its source into the cache too.
KprStatus copyArray(const void* src, void* dst, Kpr64s bytes) {
    const KprSizeL roi = {bytes, 1};
    return firstFailure(notNull(src, dst), roiHolds(roi))
               ?: copyRows({static_cast<const Kpr8u*>(src), 0}, {static_cast<Kpr8u*>(dst), 0}, roi,
                           exceedsCache(2 * bytes, 2 * kLongArray));
}

// The bytes of the fourth channel are not written at all: another thread may own them.
template <typename T>
KprStatus copyThreeOfFour(const T* src, int srcStep, T* dst, int dstStep, KprSize roi) {
    constexpr Lanes threeOfFour = {0x7777777777777777};
    return firstFailure(notNull(src, dst), roiHolds(roi))
               ?: walkRoi<kLanes<T>>(
                      KprSizeL{Kpr64s{4} * roi.width, roi.height},
                      [=](auto part, const T* s, T* d) { store(d, load(s, part), part & threeOfFour); },
                      Rows{src, srcStep}, Rows{dst, dstStep});
}

}  // namespace
}  // namespace n0

using namespace n0;

KprStatus kpriCopy_8u_C1R(const Kpr8u* src, int srcStep, Kpr8u* dst, int dstStep, KprSize roiSize) {
    return copyImage(src, srcStep, dst, dstStep, inBytes<Kpr8u, 1>(roiSize));
}

KprStatus kpriCopy_8u_C3R(const Kpr8u* src, int srcStep, Kpr8u* dst, int dstStep, KprSize roiSize) {
    return copyImage(src, srcStep, dst, dstStep, inBytes<Kpr8u, 3>(roiSize));
}

KprStatus kpriCopy_8u_C4R(const Kpr8u* src, int srcStep, Kpr8u* dst, int dstStep, KprSize roiSize) {
    return copyImage(src, srcStep, dst, dstStep, inBytes<Kpr8u, 4>(roiSize));
}

KprStatus kpriCopy_16s_C1R(const Kpr16s* src, int srcStep, Kpr16s* dst, int dstStep, KprSize roiSize) {
    return copyImage(src, srcStep, dst, dstStep, inBytes<Kpr16s, 1>(roiSize));
}

KprStatus kpriCopy_16s_C3R(const Kpr16s* src, int srcStep, Kpr16s* dst, int dstStep, KprSize roiSize) {
    return copyImage(src, srcStep, dst, dstStep, inBytes<Kpr16s, 3>(roiSize));
}

KprStatus kpriCopy_16s_C4R(const Kpr16s* src, int srcStep, Kpr16s* dst, int dstStep, KprSize roiSize) {
    return copyImage(src, srcStep, dst, dstStep, inBytes<Kpr16s, 4>(roiSize));
}

KprStatus kpriCopy_16u_C1R(const Kpr16u* src, int srcStep, Kpr16u* dst, int dstStep, KprSize roiSize) {
    return copyImage(src, srcStep, dst, dstStep, inBytes<Kpr16u, 1>(roiSize));
}

KprStatus kpriCopy_32f_C1R(const Kpr32f* src, int srcStep, Kpr32f* dst, int dstStep, KprSize roiSize) {
    return copyImage(src, srcStep, dst, dstStep, inBytes<Kpr32f, 1>(roiSize));
}

KprStatus kpriCopy_32f_C3R(const Kpr32f* src, int srcStep, Kpr32f* dst, int dstStep, KprSize roiSize) {
    return copyImage(src, srcStep, dst, dstStep, inBytes<Kpr32f, 3>(roiSize));
}

KprStatus kpriCopy_32f_C4R(const Kpr32f* src, int srcStep, Kpr32f* dst, int dstStep, KprSize roiSize) {
    return copyImage(src, srcStep, dst, dstStep, inBytes<Kpr32f, 4>(roiSize));
}

KprStatus kpriCopy_8u_C1R_L(const Kpr8u* src, Kpr64s srcStep, Kpr8u* dst, Kpr64s dstStep, KprSizeL roiSize) {
    return copyImage(src, srcStep, dst, dstStep, roiSize);
}

KprStatus kpriCopy_8u_AC4R(const Kpr8u* src, int srcStep, Kpr8u* dst, int dstStep, KprSize roiSize) {
    return copyThreeOfFour(src, srcStep, dst, dstStep, roiSize);
}

KprStatus kpriCopy_16s_AC4R(const Kpr16s* src, int srcStep, Kpr16s* dst, int dstStep, KprSize roiSize) {
    return copyThreeOfFour(src, srcStep, dst, dstStep, roiSize);
}

KprStatus kpriCopy_32f_AC4R(const Kpr32f* src, int srcStep, Kpr32f* dst, int dstStep, KprSize roiSize) {
    return copyThreeOfFour(src, srcStep, dst, dstStep, roiSize);
}

KprStatus kprsCopy_8u(const Kpr8u* src, Kpr8u* dst, int len) { return copyArray(src, dst, len); }
KprStatus kprsCopy_16s(const Kpr16s* src, Kpr16s* dst, int len) { return copyArray(src, dst, Kpr64s{2} * len); }
KprStatus kprsCopy_32f(const Kpr32f* src, Kpr32f* dst, int len) { return copyArray(src, dst, Kpr64s{4} * len); }
