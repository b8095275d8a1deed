// Arithmetic of images and arrays: differences, products and quotients with a constant, conversions.
//
// A scaled integer result is the exact result times 2^-scaleFactor, rounded to the nearest integer, ties to even, and
// then brought into the element's range; differences below zero count as zero first where the element is unsigned.
#include <algorithm>
#include <limits>
#include <type_traits>

#include "frame/cache.h"
#include "frame/checks.h"
#include "primitives/kit.h"
#include "primitives/rows.h"

namespace n0 {
namespace {

// ---- scaling of integers

// v / 2^shift, ties to even; shift is 1 or more and, of unsigned lanes, up to their width.
template <typename T>
KPR_INLINE Vec<T> scaledDown(Vec<T> v, int shift) {
    const auto one = broadcast<T>(1);
    const auto half = broadcast(static_cast<T>(Bits64{1} << (shift - 1)));
    const auto lowBits = broadcast(static_cast<T>((Bits64{1} << shift) - 1));
    const Vec<T> quotient = v >> shift;
    const Vec<T> rest = v & lowBits;
    const auto up = less(half, rest + (quotient & one));  // a tie goes up if the quotient is odd
    return quotient + keep<T>(up, one);
}

// v * 2^shift or the largest value.
template <typename T>
KPR_INLINE Vec<T> scaledUp(Vec<T> v, int shift) {
    static_assert(std::is_unsigned_v<T>);
    constexpr auto largest = std::numeric_limits<T>::max();
    const auto limit = broadcast(static_cast<T>(largest >> shift));
    return select<T>(less(limit, v), broadcast(largest), v << shift);
}

// The same of lanes that are about to be narrowed to 16 bits: what exceeds these before the shift exceeds them after
// it.
KPR_INLINE Vec<Kpr32s> scaledUp(Vec<Kpr32s> v, int shift) {
    const auto lowest = broadcast<Kpr32s>(-32768);
    const auto largest = broadcast<Kpr32s>(32767);
    return min(max(v, lowest), largest) << shift;
}

// Calls `kernel` with the rule that scales by 2^-scaleFactor, a factor other than 0. Shifted left by 16, all but zero
// exceeds the range of every element, so that no longer shift is needed.
template <typename Kernel>
KprStatus withScale(int scaleFactor, Kernel kernel) {
    if (scaleFactor > 0) return kernel([=](auto v) { return scaledDown(v, scaleFactor); });
    const int shift = -std::max(scaleFactor, -16);
    return kernel([=](auto v) { return scaledUp(v, shift); });
}

// ---- differences

template <typename T>
KprStatus subtractScaled(Rows<const T> src1, Rows<const T> src2, Rows<T> dst, KprSizeL roi, int scaleFactor) {
    if (scaleFactor == 0) {
        return walkRoi<kLanes<T>>(
            roi,
            [](auto part, const T* a, const T* b, T* d) {
                store(d, subtractSaturated(load(b, part), load(a, part)), part);
            },
            src1, src2, dst);
    }
    if (scaleFactor > 8 * int{sizeof(T)}) {
        return walkRoi<kLanes<T>>(
            roi, [](auto part, T* d) { store(d, zero<T>(), part); }, dst);
    }
    return withScale(scaleFactor, [=](auto scaled) {
        using Lane = std::conditional_t<std::is_signed_v<T>, Kpr32s, T>;  // a signed difference has a bit more
        return walkRoi<kLanes<Lane>>(
            roi,
            [=](auto part, const T* a, const T* b, T* d) {
                const auto left = loadAs<Lane>(b, part);
                const auto right = loadAs<Lane>(a, part);
                if constexpr (std::is_signed_v<T>)
                    storeAs(d, scaled(left - right), part);
                else
                    store(d, scaled(subtractSaturated(left, right)), part);
            },
            src1, src2, dst);
    });
}

// `elements` counts the channels as pixels of their own.
template <typename T>
KprStatus subtract(const T* src1, Kpr64s src1Step, const T* src2, Kpr64s src2Step, T* dst, Kpr64s dstStep,
                   KprSizeL elements, int scaleFactor) {
    return firstFailure(notNull(src1, src2, dst), roiHolds(elements))
               ?: subtractScaled<T>({src1, src1Step}, {src2, src2Step}, {dst, dstStep}, elements, scaleFactor);
}

KprStatus subtract(const Kpr32f* src1, Kpr64s src1Step, const Kpr32f* src2, Kpr64s src2Step, Kpr32f* dst,
                   Kpr64s dstStep, KprSizeL elements) {
    return firstFailure(notNull(src1, src2, dst), roiHolds(elements))
               ?: walkRoi<kLanes<Kpr32f>>(
                      elements,
                      [](auto part, const Kpr32f* a, const Kpr32f* b, Kpr32f* d) {
                          store(d, load(b, part) - load(a, part), part);
                      },
                      Rows{src1, src1Step}, Rows{src2, src2Step}, Rows{dst, dstStep});
}

template <int channels = 1, typename Size>
KprSizeL elementsOf(Size roi) {
    return {Kpr64s{channels} * roi.width, roi.height};
}

// ---- products

KprStatus multiplyScaled(Rows<const Kpr16s> src, Kpr16s value, Rows<Kpr16s> dst, KprSize roi, int scaleFactor) {
    const auto factor = broadcast(value);
    const auto products = [=](auto scaled) {
        return walkRoi<kLanes<Kpr16s>>(
            roi,
            [=](auto part, const Kpr16s* s, Kpr16s* d) {
                const Widened product = multiplyWide(load(s, part), factor);
                store(d, narrow(Widened{scaled(product.some), scaled(product.others)}), part);
            },
            src, dst);
    };
    if (scaleFactor == 0) return products([](auto v) { return v; });
    return withScale(scaleFactor, products);
}

KprStatus multiply(const Kpr32f* src, Kpr64s srcStep, Kpr32f value, Kpr32f* dst, Kpr64s dstStep, KprSize roi) {
    const auto factor = broadcast(value);
    return firstFailure(notNull(src, dst), roiHolds(roi))
               ?: walkRoi<kLanes<Kpr32f>>(
                      roi, [=](auto part, const Kpr32f* s, Kpr32f* d) { store(d, load(s, part) * factor, part); },
                      Rows{src, srcStep}, Rows{dst, dstStep});
}

// ---- conversions

// The bytes, read and written, above which a conversion that exceeds the cache bypasses it.
inline constexpr Kpr64s kLargeConversion = 524288;

KprStatus convertRows(Rows<const Kpr16u> src, Rows<Kpr32f> dst, KprSize roi) {
    const Kpr64s bytes = Kpr64s{6} * roi.width * roi.height;
    return walkRoiLines<kLanes<Kpr32f>>(
        exceedsCache(bytes, kLargeConversion) ? Stores::PastCache : Stores::ThroughCache, roi,
        [](auto part, Kpr32f* d, const Kpr16u* s) { store(d, loadAs<Kpr32f>(s, part), part); }, dst, src);
}

template <typename T>
KprStatus convert(const Kpr32f* src, T* dst, int len, int roundMode, int scaleFactor) {
    const KprSize roi = {len, 1};
    if (const KprStatus failure = firstFailure(notNull(src, dst), roiHolds(roi))) return failure;
    const auto exponent = broadcast(-static_cast<Kpr32f>(scaleFactor));
    const auto largest = broadcast(static_cast<Kpr32f>(std::numeric_limits<T>::max()));
    const auto converted = [=](auto integer) {
        return walkRoi<kLanes<Kpr32f>>(
            roi,
            [=](auto part, const Kpr32f* s, T* d) {
                // into the range before the rounding, which cannot leave it; max takes a NaN for zero
                const auto v = max(timesPowerOf2(load(s, part), exponent), zero<Kpr32f>());
                storeAs(d, integer(min(v, largest)), part);
            },
            Rows{src, 0}, Rows{dst, 0});
    };
    if (roundMode == kprRoundToZero) return converted([](auto v) { return truncate(v); });
    return converted([](auto v) { return toInteger(v); });
}

}  // namespace
}  // namespace n0

using namespace n0;

KprStatus kpriSub_8u_C1RSfs(const Kpr8u* src1, int src1Step, const Kpr8u* src2, int src2Step, Kpr8u* dst, int dstStep,
                            KprSize roiSize, int scaleFactor) {
    return subtract(src1, src1Step, src2, src2Step, dst, dstStep, elementsOf(roiSize), scaleFactor);
}

KprStatus kpriSub_8u_C3RSfs(const Kpr8u* src1, int src1Step, const Kpr8u* src2, int src2Step, Kpr8u* dst, int dstStep,
                            KprSize roiSize, int scaleFactor) {
    return subtract(src1, src1Step, src2, src2Step, dst, dstStep, elementsOf<3>(roiSize), scaleFactor);
}

KprStatus kpriSub_8u_C4RSfs(const Kpr8u* src1, int src1Step, const Kpr8u* src2, int src2Step, Kpr8u* dst, int dstStep,
                            KprSize roiSize, int scaleFactor) {
    return subtract(src1, src1Step, src2, src2Step, dst, dstStep, elementsOf<4>(roiSize), scaleFactor);
}

KprStatus kpriSub_16s_C1RSfs(const Kpr16s* src1, int src1Step, const Kpr16s* src2, int src2Step, Kpr16s* dst,
                             int dstStep, KprSize roiSize, int scaleFactor) {
    return subtract(src1, src1Step, src2, src2Step, dst, dstStep, elementsOf(roiSize), scaleFactor);
}

KprStatus kpriSub_16u_C1RSfs(const Kpr16u* src1, int src1Step, const Kpr16u* src2, int src2Step, Kpr16u* dst,
                             int dstStep, KprSize roiSize, int scaleFactor) {
    return subtract(src1, src1Step, src2, src2Step, dst, dstStep, elementsOf(roiSize), scaleFactor);
}

KprStatus kpriSub_32f_C1R(const Kpr32f* src1, int src1Step, const Kpr32f* src2, int src2Step, Kpr32f* dst, int dstStep,
                          KprSize roiSize) {
    return subtract(src1, src1Step, src2, src2Step, dst, dstStep, elementsOf(roiSize));
}

KprStatus kpriSub_32f_C3R(const Kpr32f* src1, int src1Step, const Kpr32f* src2, int src2Step, Kpr32f* dst, int dstStep,
                          KprSize roiSize) {
    return subtract(src1, src1Step, src2, src2Step, dst, dstStep, elementsOf<3>(roiSize));
}

KprStatus kpriSub_32f_C4R(const Kpr32f* src1, int src1Step, const Kpr32f* src2, int src2Step, Kpr32f* dst, int dstStep,
                          KprSize roiSize) {
    return subtract(src1, src1Step, src2, src2Step, dst, dstStep, elementsOf<4>(roiSize));
}

KprStatus kpriSub_8u_C1RSfs_L(const Kpr8u* src1, Kpr64s src1Step, const Kpr8u* src2, Kpr64s src2Step, Kpr8u* dst,
                              Kpr64s dstStep, KprSizeL roiSize, int scaleFactor) {
    return subtract(src1, src1Step, src2, src2Step, dst, dstStep, elementsOf(roiSize), scaleFactor);
}

KprStatus kpriSub_8u_C3RSfs_L(const Kpr8u* src1, Kpr64s src1Step, const Kpr8u* src2, Kpr64s src2Step, Kpr8u* dst,
                              Kpr64s dstStep, KprSizeL roiSize, int scaleFactor) {
    return subtract(src1, src1Step, src2, src2Step, dst, dstStep, elementsOf<3>(roiSize), scaleFactor);
}

KprStatus kpriSub_8u_C4RSfs_L(const Kpr8u* src1, Kpr64s src1Step, const Kpr8u* src2, Kpr64s src2Step, Kpr8u* dst,
                              Kpr64s dstStep, KprSizeL roiSize, int scaleFactor) {
    return subtract(src1, src1Step, src2, src2Step, dst, dstStep, elementsOf<4>(roiSize), scaleFactor);
}

KprStatus kpriSub_16s_C1RSfs_L(const Kpr16s* src1, Kpr64s src1Step, const Kpr16s* src2, Kpr64s src2Step, Kpr16s* dst,
                               Kpr64s dstStep, KprSizeL roiSize, int scaleFactor) {
    return subtract(src1, src1Step, src2, src2Step, dst, dstStep, elementsOf(roiSize), scaleFactor);
}

KprStatus kpriSub_16u_C1RSfs_L(const Kpr16u* src1, Kpr64s src1Step, const Kpr16u* src2, Kpr64s src2Step, Kpr16u* dst,
                               Kpr64s dstStep, KprSizeL roiSize, int scaleFactor) {
    return subtract(src1, src1Step, src2, src2Step, dst, dstStep, elementsOf(roiSize), scaleFactor);
}

KprStatus kpriSub_32f_C1R_L(const Kpr32f* src1, Kpr64s src1Step, const Kpr32f* src2, Kpr64s src2Step, Kpr32f* dst,
                            Kpr64s dstStep, KprSizeL roiSize) {
    return subtract(src1, src1Step, src2, src2Step, dst, dstStep, elementsOf(roiSize));
}

KprStatus kpriSub_32f_C3R_L(const Kpr32f* src1, Kpr64s src1Step, const Kpr32f* src2, Kpr64s src2Step, Kpr32f* dst,
                            Kpr64s dstStep, KprSizeL roiSize) {
    return subtract(src1, src1Step, src2, src2Step, dst, dstStep, elementsOf<3>(roiSize));
}

KprStatus kpriSub_32f_C4R_L(const Kpr32f* src1, Kpr64s src1Step, const Kpr32f* src2, Kpr64s src2Step, Kpr32f* dst,
                            Kpr64s dstStep, KprSizeL roiSize) {
    return subtract(src1, src1Step, src2, src2Step, dst, dstStep, elementsOf<4>(roiSize));
}

KprStatus kprsSub_8u_Sfs(const Kpr8u* src1, const Kpr8u* src2, Kpr8u* dst, int len, int scaleFactor) {
    return subtract(src1, 0, src2, 0, dst, 0, {len, 1}, scaleFactor);
}

KprStatus kprsSub_16s_Sfs(const Kpr16s* src1, const Kpr16s* src2, Kpr16s* dst, int len, int scaleFactor) {
    return subtract(src1, 0, src2, 0, dst, 0, {len, 1}, scaleFactor);
}

KprStatus kprsSub_16u_Sfs(const Kpr16u* src1, const Kpr16u* src2, Kpr16u* dst, int len, int scaleFactor) {
    return subtract(src1, 0, src2, 0, dst, 0, {len, 1}, scaleFactor);
}

KprStatus kprsSub_32f(const Kpr32f* src1, const Kpr32f* src2, Kpr32f* dst, int len) {
    return subtract(src1, 0, src2, 0, dst, 0, {len, 1});
}

KprStatus kpriMulC_16s_C1RSfs(const Kpr16s* src, int srcStep, Kpr16s value, Kpr16s* dst, int dstStep, KprSize roiSize,
                              int scaleFactor) {
    if (const KprStatus failure = firstFailure(notNull(src, dst), roiHolds(roiSize))) return failure;
    if (value == 0 || scaleFactor > 30) return kpriSet_16s_C1R(0, dst, dstStep, roiSize);
    if (value == 1 && scaleFactor == 0) return kpriCopy_16s_C1R(src, srcStep, dst, dstStep, roiSize);
    return multiplyScaled({src, srcStep}, value, {dst, dstStep}, roiSize, scaleFactor);
}

KprStatus kpriMulC_32f_C1R(const Kpr32f* src, int srcStep, Kpr32f value, Kpr32f* dst, int dstStep, KprSize roiSize) {
    return multiply(src, srcStep, value, dst, dstStep, roiSize);
}

KprStatus kprsMulC_32f(const Kpr32f* src, Kpr32f value, Kpr32f* dst, int len) {
    return multiply(src, 0, value, dst, 0, {len, 1});
}

KprStatus kprsDivC_32f(const Kpr32f* src, Kpr32f value, Kpr32f* dst, int len) {
    return firstFailure(notNull(src, dst), roiHolds(KprSize{len, 1}), failIf(value == 0, kprStatusDivByZero))
               ?: kprsMulC_32f(src, 1.0F / value, dst, len);
}

KprStatus kprsDivC_32f_I(Kpr32f* srcDst, int len, Kpr32f value) { return kprsDivC_32f(srcDst, value, srcDst, len); }

KprStatus kpriConvert_16u32f_C1R(const Kpr16u* src, int srcStep, Kpr32f* dst, int dstStep, KprSize roiSize) {
    return firstFailure(notNull(src, dst), roiHolds(roiSize), failIf(srcStep < 1 || dstStep < 1, kprStatusBadStep))
               ?: convertRows({src, srcStep}, {dst, dstStep}, roiSize);
}

KprStatus kprsConvert_32f8u_Sfs(const Kpr32f* src, Kpr8u* dst, int len, int roundMode, int scaleFactor) {
    return convert(src, dst, len, roundMode, scaleFactor);
}

KprStatus kprsConvert_32f16u_Sfs(const Kpr32f* src, Kpr16u* dst, int len, int roundMode, int scaleFactor) {
    return convert(src, dst, len, roundMode, scaleFactor);
}
