// First derivatives: two kernels of three or five taps, through a ring of rows. And Sobel kernels of any length.
#include "filter/sobel.h"

#include "filter/fixed_kernels.h"
#include "filter/pipeline_sizes.h"

namespace n0::filter {
namespace {

template <typename Across, typename Down>
struct Kernels {
    template <typename T>
    using Rule = Separable<T, Across, Down>;
};
struct None {};  // no mask of five

// Of bytes the ring lies on the stack: strips of so many columns keep it small.
inline constexpr Kpr64s kStripColumns = 1024;

// A strip's inner sides are real memory. A strip of one column would not show a reflection where to go.
template <typename Rule>
void deriveStrips(Axis columns, Axis rows, Rows<const Kpr8u> src, Rows<Kpr16s> dst, Kpr8u value) {
    alignas(64) Kpr16s ring[(2 * Rule::kRadius + 1) * kStripColumns];
    for (Kpr64s x = 0; x < columns.size;) {
        const Kpr64s left = columns.size - x;
        const Kpr64s count = left <= kStripColumns       ? left
                             : left == kStripColumns + 1 ? kStripColumns - 1
                                                         : kStripColumns;
        const Axis strip = {count, columns.mode, x > 0 || columns.lowInMemory, count < left || columns.highInMemory};
        filterFixed<Rule>(strip, rows, Rows<const Kpr8u>{src.first + x, src.step},
                          Rows<Kpr16s>{dst.first + x, dst.step}, value, ring, kStripColumns);
        x += count;
    }
}

template <typename Three, typename Five, typename Src, typename Dst>
KprStatus derive(const Src* src, int srcStep, Dst* dst, int dstStep, KprSize roi, KprMaskSize mask,
                 KprBorderType border, Src value, Kpr8u* buffer) {
    constexpr bool hasFive = !std::is_same_v<Five, None>;
    const KprStatus status =
        firstFailure(notNull(src, dst, buffer), roiHolds(roi), stepsAlign<Dst>(dstStep),
                     failIf(mask != kprMaskSize3x3 && !(hasFive && mask == kprMaskSize5x5), kprStatusBadMaskSize),
                     borderServesFilter(border));
    if (status != kprStatusOk) return status;
    const auto filter = [&]<typename Kernels>() {
        const Axis columns = columnsOf(roi.width, border);
        const Axis rows = rowsOf(roi.height, border);
        if constexpr (std::is_same_v<Src, Kpr8u>) {
            deriveStrips<typename Kernels::template Rule<Dst>>(columns, rows, {src, srcStep}, {dst, dstStep}, value);
        } else {
            filterFixed<typename Kernels::template Rule<Dst>>(
                columns, rows, Rows<const Src>{src, srcStep}, Rows<Dst>{dst, dstStep}, value,
                alignedUp<Dst>(buffer, 32), Kpr64s{roundUp(static_cast<Bytes32>(roi.width), 16)});
        }
        return kprStatusOk;
    };
    if constexpr (hasFive) {
        if (mask == kprMaskSize5x5) return filter.template operator()<Five>();
    }
    return filter.template operator()<Three>();
}

KprStatus derivativeBytes(KprSize roi, KprMaskSize mask, KprDataType srcType, KprDataType dstType, int numChannels,
                          int* bufferSize) {
    const bool pairHolds =
        dstType == kpr16s ? srcType == kpr8u || srcType == kpr16s : srcType == kpr32f && dstType == kpr32f;
    const KprStatus status =
        firstFailure(notNull(bufferSize), roiHolds(roi),
                     failIf(mask != kprMaskSize3x3 && mask != kprMaskSize5x5, kprStatusBadMaskSize),
                     failIf(!pairHolds, kprStatusBadDataType), failIf(numChannels != 1, kprStatusBadCoi));
    if (status != kprStatusOk) return status;
    const Bytes32 rows = mask == kprMaskSize3x3 ? 3 : 5;
    const Bytes32 ring = roundUp(static_cast<Bytes32>(roi.width), 16) * rows * 4;
    *bufferSize = static_cast<int>(srcType == kpr8u ? 32 : ring + 32);
    return kprStatusOk;
}

// Each step adds or subtracts the next entry, over a stretch that grows by one toward the front.
template <typename T>
KprStatus makeSobelKernel(T* kernel, int kernelSize, int order, int sign) {
    const KprStatus status = firstFailure(
        notNull(kernel),
        failIf(kernelSize < 1 || kernelSize % 2 == 0 || order < 0 || order >= kernelSize, kprStatusBadArg));
    if (status != kprStatusOk) return status;
    for (int i = 0; i < kernelSize; ++i) kernel[i] = static_cast<T>(i == kernelSize - 1);
    for (int start = kernelSize - 2; start >= 0; --start) {
        const bool smooths = start >= order;
        for (int i = start; i < kernelSize - 1; ++i)
            kernel[i] = static_cast<T>(smooths ? kernel[i] + kernel[i + 1] : kernel[i] - kernel[i + 1]);
    }
    for (int i = 0; i < kernelSize && sign < 0; ++i) kernel[i] = static_cast<T>(-kernel[i]);
    return kprStatusOk;
}

}  // namespace
}  // namespace n0::filter

using namespace n0;
using namespace n0::filter;

KprStatus kpriFilterSobelVertBorder_8u16s_C1R(const Kpr8u* src, int srcStep, Kpr16s* dst, int dstStep, KprSize roiSize,
                                              KprMaskSize maskSize, KprBorderType borderType, Kpr8u borderValue,
                                              Kpr8u* buffer) {
    return derive<Kernels<DxNeg3, Sobel3>, Kernels<DxNeg5, Sobel5>>(src, srcStep, dst, dstStep, roiSize, maskSize,
                                                                    borderType, borderValue, buffer);
}

KprStatus kpriFilterSobelVertBorder_32f_C1R(const Kpr32f* src, int srcStep, Kpr32f* dst, int dstStep, KprSize roiSize,
                                            KprMaskSize maskSize, KprBorderType borderType, Kpr32f borderValue,
                                            Kpr8u* buffer) {
    return derive<Kernels<DxNeg3, Sobel3>, Kernels<DxNeg5, Sobel5>>(src, srcStep, dst, dstStep, roiSize, maskSize,
                                                                    borderType, borderValue, buffer);
}

KprStatus kpriFilterSobelVertBorderGetBufferSize(KprSize roiSize, KprMaskSize maskSize, KprDataType srcType,
                                                 KprDataType dstType, int numChannels, int* bufferSize) {
    return derivativeBytes(roiSize, maskSize, srcType, dstType, numChannels, bufferSize);
}

KprStatus kpriFilterSobelHorizBorder_8u16s_C1R(const Kpr8u* src, int srcStep, Kpr16s* dst, int dstStep, KprSize roiSize,
                                               KprMaskSize maskSize, KprBorderType borderType, Kpr8u borderValue,
                                               Kpr8u* buffer) {
    return derive<Kernels<Sobel3, Dx3>, Kernels<Sobel5, Dx5>>(src, srcStep, dst, dstStep, roiSize, maskSize, borderType,
                                                              borderValue, buffer);
}

KprStatus kpriFilterSobelHorizBorder_32f_C1R(const Kpr32f* src, int srcStep, Kpr32f* dst, int dstStep, KprSize roiSize,
                                             KprMaskSize maskSize, KprBorderType borderType, Kpr32f borderValue,
                                             Kpr8u* buffer) {
    return derive<Kernels<Sobel3, Dx3>, Kernels<Sobel5, Dx5>>(src, srcStep, dst, dstStep, roiSize, maskSize, borderType,
                                                              borderValue, buffer);
}

KprStatus kpriFilterSobelHorizBorderGetBufferSize(KprSize roiSize, KprMaskSize maskSize, KprDataType srcType,
                                                  KprDataType dstType, int numChannels, int* bufferSize) {
    return derivativeBytes(roiSize, maskSize, srcType, dstType, numChannels, bufferSize);
}

KprStatus kpriFilterSobelNegVertBorder_8u16s_C1R(const Kpr8u* src, int srcStep, Kpr16s* dst, int dstStep,
                                                 KprSize roiSize, KprMaskSize maskSize, KprBorderType borderType,
                                                 Kpr8u borderValue, Kpr8u* buffer) {
    return derive<Kernels<Dx3, Sobel3>, Kernels<Dx5, Sobel5>>(src, srcStep, dst, dstStep, roiSize, maskSize, borderType,
                                                              borderValue, buffer);
}

KprStatus kpriFilterSobelNegVertBorder_32f_C1R(const Kpr32f* src, int srcStep, Kpr32f* dst, int dstStep,
                                               KprSize roiSize, KprMaskSize maskSize, KprBorderType borderType,
                                               Kpr32f borderValue, Kpr8u* buffer) {
    return derive<Kernels<Dx3, Sobel3>, Kernels<Dx5, Sobel5>>(src, srcStep, dst, dstStep, roiSize, maskSize, borderType,
                                                              borderValue, buffer);
}

KprStatus kpriFilterSobelNegVertBorderGetBufferSize(KprSize roiSize, KprMaskSize maskSize, KprDataType srcType,
                                                    KprDataType dstType, int numChannels, int* bufferSize) {
    return derivativeBytes(roiSize, maskSize, srcType, dstType, numChannels, bufferSize);
}

KprStatus kpriFilterScharrVertMaskBorder_8u16s_C1R(const Kpr8u* src, int srcStep, Kpr16s* dst, int dstStep,
                                                   KprSize roiSize, KprMaskSize maskSize, KprBorderType borderType,
                                                   Kpr8u borderValue, Kpr8u* buffer) {
    return derive<Kernels<Dx3, Scharr3>, None>(src, srcStep, dst, dstStep, roiSize, maskSize, borderType, borderValue,
                                               buffer);
}

KprStatus kpriFilterScharrVertMaskBorder_32f_C1R(const Kpr32f* src, int srcStep, Kpr32f* dst, int dstStep,
                                                 KprSize roiSize, KprMaskSize maskSize, KprBorderType borderType,
                                                 Kpr32f borderValue, Kpr8u* buffer) {
    return derive<Kernels<Dx3, Scharr3>, None>(src, srcStep, dst, dstStep, roiSize, maskSize, borderType, borderValue,
                                               buffer);
}

KprStatus kpriFilterScharrVertMaskBorderGetBufferSize(KprSize roiSize, KprMaskSize maskSize, KprDataType srcType,
                                                      KprDataType dstType, int numChannels, int* bufferSize) {
    return derivativeBytes(roiSize, maskSize, srcType, dstType, numChannels, bufferSize);
}

KprStatus kpriFilterScharrHorizMaskBorder_8u16s_C1R(const Kpr8u* src, int srcStep, Kpr16s* dst, int dstStep,
                                                    KprSize roiSize, KprMaskSize maskSize, KprBorderType borderType,
                                                    Kpr8u borderValue, Kpr8u* buffer) {
    return derive<Kernels<Scharr3, Dx3>, None>(src, srcStep, dst, dstStep, roiSize, maskSize, borderType, borderValue,
                                               buffer);
}

KprStatus kpriFilterScharrHorizMaskBorder_32f_C1R(const Kpr32f* src, int srcStep, Kpr32f* dst, int dstStep,
                                                  KprSize roiSize, KprMaskSize maskSize, KprBorderType borderType,
                                                  Kpr32f borderValue, Kpr8u* buffer) {
    return derive<Kernels<Scharr3, Dx3>, None>(src, srcStep, dst, dstStep, roiSize, maskSize, borderType, borderValue,
                                               buffer);
}

KprStatus kpriFilterScharrHorizMaskBorderGetBufferSize(KprSize roiSize, KprMaskSize maskSize, KprDataType srcType,
                                                       KprDataType dstType, int numChannels, int* bufferSize) {
    return derivativeBytes(roiSize, maskSize, srcType, dstType, numChannels, bufferSize);
}

KprStatus kpriGenSobelKernel_16s(Kpr16s* kernel, int kernelSize, int derivativeOrder, int sign) {
    return makeSobelKernel(kernel, kernelSize, derivativeOrder, sign);
}

KprStatus kpriGenSobelKernel_32f(Kpr32f* kernel, int kernelSize, int derivativeOrder, int sign) {
    return makeSobelKernel(kernel, kernelSize, derivativeOrder, sign);
}
