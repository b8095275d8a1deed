// The cross derivative, the low-pass average and the Laplacian, in masks of three and of five pixels.
//
//     cross      DxNeg across, Dx down
//     low-pass   the sum s of the mask: 8u ((s + 5) * 7280) >> 16 of 9 pixels, (s * 2621) >> 16 of 25, without a
//                rounding term; 32f s times the float nearest to 1/9 or 1/25
//     Laplacian  2  0  2        2  4   4   4  2
//                0 -8  0        4  0  -8   0  4
//                2  0  2        4 -8 -24  -8  4
//                               4  0  -8   0  4
//                               2  4   4   4  2
#include "filter/byte_walk.h"
#include "filter/fixed_kernels.h"
#include "filter/pipeline_sizes.h"

namespace n0::filter {
namespace {

template <typename T>
using CrossDerivative3 = Separable<T, DxNeg3, Dx3>;
template <typename T>
using CrossDerivative5 = Separable<T, DxNeg5, Dx5>;

template <typename T, typename Ones>
struct Average : Separable<T, Ones, Ones> {
    template <typename Part, typename At, typename Dst>
    KPR_INLINE static void down(Part part, At at, Dst* dst) {
        const Vec<T> s = Ones::template sum<T>([=](int i) { return load(at(i, 0), part); });
        store(dst, s * broadcast(Ones::kRadius == 1 ? 1.0F / 9.0F : 1.0F / 25.0F), part);
    }
};

// Bytes, walked down: the sums of 32 even columns and of 32 odd ones, each of which takes a pair of neighbours at once.
template <int radius>
struct ByteAverage {
    static constexpr int kRadius = radius;
    struct Row {
        Vec<Kpr16s> even, odd;
    };

    template <typename Part, typename Nearest>
    KPR_INLINE static Row across(Part part, Nearest, const Kpr8u* src) {
        const auto pairs = [](Vec<Kpr8u> v) { return sumPairs(v, broadcast<Kpr8s>(1)); };
        const auto even = [](Vec<Kpr8u> v) { return as<Kpr16s>(v) & broadcast<Kpr16s>(0xff); };
        const auto odd = [](Vec<Kpr8u> v) { return as<Kpr16s>(shiftRight<8>(as<Kpr16u>(v))); };
        const Vec<Kpr16s> here = pairs(loadOnce(src + radius, oneMore(part)));
        if constexpr (radius == 1) return {even(load(src, part)) + here, here + odd(load(src + 2, part))};
        const Vec<Kpr8u> before = loadOnce(src, oneMore(part)), after = loadOnce(src + 4, part);
        return {pairs(before) + here + even(after), odd(before) + here + pairs(after)};
    }
    KPR_INLINE static Row outside(const Kpr8u* src) { return across(All{}, All{}, src); }

    template <typename At>
    KPR_INLINE static Vec<Kpr8u> down(At row) {
        Vec<Kpr16s> even = zero<Kpr16s>(), odd = broadcast<Kpr16s>(0);
        if constexpr (radius == 1) even = odd = broadcast<Kpr16s>(5);
        takeTurns<2 * radius + 1>([&](auto i) __attribute__((always_inline)) {
            even = even + row(i).even;
            odd = odd + row(i).odd;
        });
        const auto average = [](Vec<Kpr16s> sum) {
            return mulHigh(as<Kpr16u>(sum), broadcast<Kpr16u>(radius == 1 ? 7280 : 2621));
        };
        return as<Kpr8u>(average(even) | shiftLeft<8>(average(odd)));
    }
};
template <typename T>
using Average3 = Average<T, Ones3>;
template <typename T>
using Average5 = Average<T, Ones5>;

// The planes: the pixels beside, and the pixel itself.
template <typename T>
struct Laplacian3 {
    using Middle = T;
    static constexpr int kRadius = 1;
    static constexpr int kPlanes = 2;

    template <typename Part, typename Src>
    KPR_INLINE static void across(Part part, const Src* s, T* out, Kpr64s plane) {
        store(out, loadAs<T>(s - 1, part) + loadAs<T>(s + 1, part), part);
        store(out + plane, loadAs<T>(s, part), part);
    }
    template <typename Part, typename At, typename Dst>
    KPR_INLINE static void down(Part part, At at, Dst* dst) {
        const Vec<T> t = load(at(0, 0), part) + load(at(2, 0), part);
        store(dst, plusTimes<-8>(t + t, load(at(1, 1), part)), part);
    }
};

// The planes: the mask's first row (and last), its second (and fourth), and its third.
template <typename T>
struct Laplacian5 {
    using Middle = T;
    static constexpr int kRadius = 2;
    static constexpr int kPlanes = 3;

    template <typename Part, typename Src>
    KPR_INLINE static void across(Part part, const Src* s, T* out, Kpr64s plane) {
        const auto times = [](Vec<T> v, T factor) { return v * broadcast(factor); };
        const Vec<T> outer = loadAs<T>(s - 2, part) + loadAs<T>(s + 2, part);
        const Vec<T> inner = loadAs<T>(s - 1, part) + loadAs<T>(s + 1, part);
        const Vec<T> centre = loadAs<T>(s, part);
        store(out, plusTimes<2>(times(inner + centre, 4), outer), part);
        store(out + plane, plusTimes<-8>(times(outer, 4), centre), part);
        store(out + 2 * plane, plusTimes<-24>(plusTimes<-8>(times(outer, 4), inner), centre), part);
    }
    template <typename Part, typename At, typename Dst>
    KPR_INLINE static void down(Part part, At at, Dst* dst) {
        const Vec<T> outer = load(at(0, 0), part) + load(at(4, 0), part);
        const Vec<T> inner = load(at(1, 1), part) + load(at(3, 1), part);
        store(dst, outer + inner + load(at(2, 2), part), part);
    }
};

// ---- sizes

constexpr Bytes32 roundedWidth(KprSize roi) { return roundUp(static_cast<Bytes32>(roi.width), 16); }

constexpr KprStatus maskHolds(KprMaskSize mask) {
    return failIf(mask != kprMaskSize3x3 && mask != kprMaskSize5x5, kprStatusBadMaskSize);
}

KprStatus sizeOf(KprSize roi, KprMaskSize mask, int* size, Bytes32 bytes) {
    return firstFailure(notNull(size), roiHolds(roi), maskHolds(mask))
               ?: (*size = static_cast<int>(bytes), kprStatusOk);
}

// The rows, the constants `perMask` and `fixed`, and what the row and the column stage need.
constexpr Bytes32 floatBytes(KprSize roi, KprMaskSize mask, Bytes32 fixed) {
    const bool small = mask == kprMaskSize3x3;
    const Bytes32 taps = small ? 3 : 5;
    return roundedWidth(roi) * 4 * (small ? 21 : 25) + (small ? 72 : 120) + fixed + rowBytes32f(taps, 1) +
           columnBytes32f(taps);
}
constexpr Bytes32 byteBytes(KprSize roi, KprMaskSize mask) {
    const bool small = mask == kprMaskSize3x3;
    return roundedWidth(roi) * 4 * (small ? 21 : 25) + (small ? 144 : 240) + 576 + rowBytes8u16s(small ? 3 : 5, 1) +
           columnBytes16s(static_cast<Bytes32>(roi.width), 1);
}
// The ring of the float Laplacian, which starts at a multiple of 64 bytes.
constexpr Bytes32 laplacianBytes(KprSize roi, KprMaskSize mask) {
    const Bytes32 planes = mask == kprMaskSize3x3 ? 3 * Laplacian3<Kpr32f>::kPlanes : 5 * Laplacian5<Kpr32f>::kPlanes;
    return roundUp(planes * roundedWidth(roi) * 4 + 64, 64);
}

// ---- one way through all six filters

template <template <typename> typename Rule3, template <typename> typename Rule5, typename Src, typename Dst>
KprStatus filterMask(const Src* src, int srcStep, Dst* dst, int dstStep, KprSize roi, KprMaskSize mask,
                     KprBorderType border, Src value, Kpr8u* buffer) {
    using Middle = std::conditional_t<std::is_same_v<Src, Kpr8u>, Kpr16s, Src>;
    KprStatus multiples = kprStatusOk;
    if constexpr (sizeof(Src) > 1) multiples = stepsAlign<Src>(srcStep);
    if constexpr (sizeof(Dst) > 1) multiples = firstFailure(multiples, stepsAlign<Dst>(dstStep));
    const KprStatus status =
        firstFailure(notNull(src, dst, buffer), roiHolds(roi), rowsFit<Src>(roi.width, srcStep),
                     rowsFit<Dst>(roi.width, dstStep), multiples, borderServesFilter(border), maskHolds(mask));
    if (status != kprStatusOk) return status;
    if constexpr (std::is_same_v<Dst, Kpr8u>) {
        const auto walk = [&](const auto& rule) {
            walkBytes<1>(rule, columnsOf(roi.width, border), rowsOf(roi.height, border), {src, srcStep}, {dst, dstStep},
                         &value);
            return kprStatusOk;
        };
        if (mask == kprMaskSize3x3) return walk(ByteAverage<1>{});
        return walk(ByteAverage<2>{});
    } else {
        const auto filter = [&]<typename Rule>() {
            filterFixed<Rule>(columnsOf(roi.width, border), rowsOf(roi.height, border), Rows<const Src>{src, srcStep},
                              Rows<Dst>{dst, dstStep}, value, alignedUp<Middle>(buffer, 64),
                              Kpr64s{roundUp(static_cast<Bytes32>(roi.width), 16)});
            return kprStatusOk;
        };
        if (mask == kprMaskSize3x3) return filter.template operator()<Rule3<Middle>>();
        return filter.template operator()<Rule5<Middle>>();
    }
}

}  // namespace
}  // namespace n0::filter

using namespace n0;
using namespace n0::filter;

KprStatus kpriFilterLaplacianGetBufferSize_8u16s_C1R(KprSize roiSize, KprMaskSize maskSize, int* bufferSize) {
    return sizeOf(roiSize, maskSize, bufferSize, byteBytes(roiSize, maskSize));
}

KprStatus kpriFilterLaplacianBorder_8u16s_C1R(const Kpr8u* src, int srcStep, Kpr16s* dst, int dstStep, KprSize roiSize,
                                              KprMaskSize maskSize, KprBorderType borderType, Kpr8u borderValue,
                                              Kpr8u* buffer) {
    return filterMask<Laplacian3, Laplacian5>(src, srcStep, dst, dstStep, roiSize, maskSize, borderType, borderValue,
                                              buffer);
}

KprStatus kpriFilterLaplacianGetBufferSize_32f_C1R(KprSize roiSize, KprMaskSize maskSize, int* bufferSize) {
    return sizeOf(roiSize, maskSize, bufferSize, laplacianBytes(roiSize, maskSize));
}

KprStatus kpriFilterLaplacianBorder_32f_C1R(const Kpr32f* src, int srcStep, Kpr32f* dst, int dstStep, KprSize roiSize,
                                            KprMaskSize maskSize, KprBorderType borderType, Kpr32f borderValue,
                                            Kpr8u* buffer) {
    return filterMask<Laplacian3, Laplacian5>(src, srcStep, dst, dstStep, roiSize, maskSize, borderType, borderValue,
                                              buffer);
}

KprStatus kpriFilterLowpassGetBufferSize_8u_C1R(KprSize roiSize, KprMaskSize maskSize, int* bufferSize) {
    return sizeOf(roiSize, maskSize, bufferSize, byteBytes(roiSize, maskSize));
}

KprStatus kpriFilterLowpassBorder_8u_C1R(const Kpr8u* src, int srcStep, Kpr8u* dst, int dstStep, KprSize roiSize,
                                         KprMaskSize maskSize, KprBorderType borderType, Kpr8u borderValue,
                                         Kpr8u* buffer) {
    return filterMask<Average3, Average5>(src, srcStep, dst, dstStep, roiSize, maskSize, borderType, borderValue,
                                          buffer);
}

KprStatus kpriFilterLowpassGetBufferSize_32f_C1R(KprSize roiSize, KprMaskSize maskSize, int* bufferSize) {
    return sizeOf(roiSize, maskSize, bufferSize, floatBytes(roiSize, maskSize, 304));
}

KprStatus kpriFilterLowpassBorder_32f_C1R(const Kpr32f* src, int srcStep, Kpr32f* dst, int dstStep, KprSize roiSize,
                                          KprMaskSize maskSize, KprBorderType borderType, Kpr32f borderValue,
                                          Kpr8u* buffer) {
    return filterMask<Average3, Average5>(src, srcStep, dst, dstStep, roiSize, maskSize, borderType, borderValue,
                                          buffer);
}

KprStatus kpriFilterSobelCrossGetBufferSize_8u16s_C1R(KprSize roiSize, KprMaskSize maskSize, int* bufferSize) {
    return sizeOf(roiSize, maskSize, bufferSize, byteBytes(roiSize, maskSize));
}

KprStatus kpriFilterSobelCrossBorder_8u16s_C1R(const Kpr8u* src, int srcStep, Kpr16s* dst, int dstStep, KprSize roiSize,
                                               KprMaskSize maskSize, KprBorderType borderType, Kpr8u borderValue,
                                               Kpr8u* buffer) {
    return filterMask<CrossDerivative3, CrossDerivative5>(src, srcStep, dst, dstStep, roiSize, maskSize, borderType,
                                                          borderValue, buffer);
}

KprStatus kpriFilterSobelCrossGetBufferSize_32f_C1R(KprSize roiSize, KprMaskSize maskSize, int* bufferSize) {
    return sizeOf(roiSize, maskSize, bufferSize, floatBytes(roiSize, maskSize, 368));
}

KprStatus kpriFilterSobelCrossBorder_32f_C1R(const Kpr32f* src, int srcStep, Kpr32f* dst, int dstStep, KprSize roiSize,
                                             KprMaskSize maskSize, KprBorderType borderType, Kpr32f borderValue,
                                             Kpr8u* buffer) {
    return filterMask<CrossDerivative3, CrossDerivative5>(src, srcStep, dst, dstStep, roiSize, maskSize, borderType,
                                                          borderValue, buffer);
}
