// The row stage of a separable filter: rows of an image, filtered across, each to where its pointer says.
//
//     dst[y][x] = sum of kernel[i] * ext(y, x - xAnchor + i)
//
// `ext` is row y extended by the border word. Integer sums are exact in 32 bits, go to float, are multiplied by
// 1 / divisor and become the nearest integer, ties to even, saturated. One family differs at the columns that read a
// synthesised pixel: 8u16s truncates there. Floats are fused steps in the order of the taps.
//
// The forms that promise a narrow sum (`Low`) have the results of the plain ones.
#include "filter/pipeline_checks.h"
#include "filter/pipeline_sizes.h"
#include "filter/taps.h"
#include "primitives/axis.h"

namespace n0::filter {
namespace {

// What all forms are called with; `divisor` is 1 where there is none.
template <typename Src, typename Dst, typename Tap>
struct RowCall {
    const Src* src;
    int srcStep;
    Dst* const* dst;
    KprSize roi;
    const Tap* kernel;
    int kernelSize, xAnchor;
    KprBorderType border;
    const Src* borderValue;
    int divisor;
    Kpr8u* buffer;
};

template <typename Src, typename Dst, typename Tap>
RowCall(const Src*, int, Dst* const*, KprSize, const Tap*, int, int, KprBorderType, const Src*, int, Kpr8u*)
    -> RowCall<Src, Dst, Tap>;

template <int channels, typename Src, typename Dst, typename Tap>
KprStatus filterRows(const RowCall<Src, Dst, Tap>& call) {
    EdgedRows<Src, channels, kEdgeLanes<Src>> edged(
        {call.src, call.srcStep}, call.roi.height, columnsOf(call.roi.width, call.border), call.xAnchor,
        call.kernelSize - 1 - call.xAnchor, call.borderValue, alignedUp<Src>(call.buffer, 32));
    withSize(call.kernelSize, [&]<int size>() {
        const auto taps = tapsOf<Src, size>(call.kernel, call.kernelSize, call.divisor);
        for (Kpr64s y = 0; y < call.roi.height; ++y) {
            Dst* const dst = call.dst[y];
            for (const RowPart<Src>& part : edged.row(y)) filterRowPart<channels>(taps, part, dst);
        }
    });
    return kprStatusOk;
}

template <int channels, typename Src, typename Dst, typename Tap>
KprStatus rowStage(const RowCall<Src, Dst, Tap>& call) {
    KprStatus multiple = kprStatusOk;
    if constexpr (sizeof(Src) > 1) multiple = stepsAlign<Src>(call.srcStep);
    return firstFailure(notNull(call.src, call.dst, call.kernel, call.buffer), roiHolds(call.roi))
               ?: rowsPresent(call.dst, call.roi.height)
               ?: firstFailure(failIf(call.kernelSize < 1, kprStatusBadSize),
                               failIf(call.xAnchor < 0 || call.xAnchor >= call.kernelSize, kprStatusBadAnchor),
                               rowsFit<Src>(Kpr64s{channels} * call.roi.width, call.srcStep), multiple,
                               borderServesFilter(call.border), failIf(call.divisor == 0, kprStatusBadArg))
               ?: filterRows<channels>(call);
}

}  // namespace
}  // namespace n0::filter

using namespace n0;
using namespace n0::filter;

KprStatus kpriFilterRowBorderPipelineGetBufferSize_8u16s_C1R(KprSize roiSize, int kernelSize, int* bufferSize) {
    return sizeOf(roiSize, kernelSize, bufferSize, rowBytes8u16s(static_cast<Bytes32>(kernelSize), 1));
}

KprStatus kpriFilterRowBorderPipelineGetBufferSize_8u16s_C3R(KprSize roiSize, int kernelSize, int* bufferSize) {
    return sizeOf(roiSize, kernelSize, bufferSize, rowBytes8u16s(static_cast<Bytes32>(kernelSize), 3));
}

KprStatus kpriFilterRowBorderPipelineGetBufferSize_16s_C1R(KprSize roiSize, int kernelSize, int* bufferSize) {
    return sizeOf(roiSize, kernelSize, bufferSize, rowBytes16s(static_cast<Bytes32>(kernelSize), 1));
}

KprStatus kpriFilterRowBorderPipelineGetBufferSize_16s_C3R(KprSize roiSize, int kernelSize, int* bufferSize) {
    return sizeOf(roiSize, kernelSize, bufferSize, rowBytes16s(static_cast<Bytes32>(kernelSize), 3));
}

KprStatus kpriFilterRowBorderPipelineGetBufferSize_16u_C1R(KprSize roiSize, int kernelSize, int* bufferSize) {
    return sizeOf(roiSize, kernelSize, bufferSize, rowBytes16u(static_cast<Bytes32>(kernelSize), 1));
}

KprStatus kpriFilterRowBorderPipelineGetBufferSize_16u_C3R(KprSize roiSize, int kernelSize, int* bufferSize) {
    return sizeOf(roiSize, kernelSize, bufferSize, rowBytes16u(static_cast<Bytes32>(kernelSize), 3));
}

KprStatus kpriFilterRowBorderPipelineGetBufferSize_Low_16s_C1R(KprSize roiSize, int kernelSize, int* bufferSize) {
    return sizeOf(roiSize, kernelSize, bufferSize, rowBytesLow16s(static_cast<Bytes32>(kernelSize), 1));
}

KprStatus kpriFilterRowBorderPipelineGetBufferSize_Low_16s_C3R(KprSize roiSize, int kernelSize, int* bufferSize) {
    return sizeOf(roiSize, kernelSize, bufferSize, rowBytesLow16s(static_cast<Bytes32>(kernelSize), 3));
}

KprStatus kpriFilterRowBorderPipelineGetBufferSize_32f_C1R(KprSize roiSize, int kernelSize, int* bufferSize) {
    return sizeOf(roiSize, kernelSize, bufferSize, rowBytes32f(static_cast<Bytes32>(kernelSize), 1));
}

KprStatus kpriFilterRowBorderPipelineGetBufferSize_32f_C3R(KprSize roiSize, int kernelSize, int* bufferSize) {
    return sizeOf(roiSize, kernelSize, bufferSize, rowBytes32f(static_cast<Bytes32>(kernelSize), 3));
}

KprStatus kpriFilterRowBorderPipeline_8u16s_C1R(const Kpr8u* src, int srcStep, Kpr16s* const* dst, KprSize roiSize,
                                                const Kpr16s* kernel, int kernelSize, int xAnchor,
                                                KprBorderType borderType, Kpr8u borderValue, int divisor,
                                                Kpr8u* buffer) {
    return rowStage<1>(
        RowCall{src, srcStep, dst, roiSize, kernel, kernelSize, xAnchor, borderType, &borderValue, divisor, buffer});
}

KprStatus kpriFilterRowBorderPipeline_8u16s_C3R(const Kpr8u* src, int srcStep, Kpr16s* const* dst, KprSize roiSize,
                                                const Kpr16s* kernel, int kernelSize, int xAnchor,
                                                KprBorderType borderType, const Kpr8u* borderValue, int divisor,
                                                Kpr8u* buffer) {
    return rowStage<3>(
        RowCall{src, srcStep, dst, roiSize, kernel, kernelSize, xAnchor, borderType, borderValue, divisor, buffer});
}

KprStatus kpriFilterRowBorderPipeline_16s_C1R(const Kpr16s* src, int srcStep, Kpr16s* const* dst, KprSize roiSize,
                                              const Kpr16s* kernel, int kernelSize, int xAnchor,
                                              KprBorderType borderType, Kpr16s borderValue, int divisor,
                                              Kpr8u* buffer) {
    return rowStage<1>(
        RowCall{src, srcStep, dst, roiSize, kernel, kernelSize, xAnchor, borderType, &borderValue, divisor, buffer});
}

KprStatus kpriFilterRowBorderPipeline_16s_C3R(const Kpr16s* src, int srcStep, Kpr16s* const* dst, KprSize roiSize,
                                              const Kpr16s* kernel, int kernelSize, int xAnchor,
                                              KprBorderType borderType, const Kpr16s* borderValue, int divisor,
                                              Kpr8u* buffer) {
    return rowStage<3>(
        RowCall{src, srcStep, dst, roiSize, kernel, kernelSize, xAnchor, borderType, borderValue, divisor, buffer});
}

KprStatus kpriFilterRowBorderPipeline_16u_C1R(const Kpr16u* src, int srcStep, Kpr16u* const* dst, KprSize roiSize,
                                              const Kpr16s* kernel, int kernelSize, int xAnchor,
                                              KprBorderType borderType, Kpr16u borderValue, int divisor,
                                              Kpr8u* buffer) {
    return rowStage<1>(
        RowCall{src, srcStep, dst, roiSize, kernel, kernelSize, xAnchor, borderType, &borderValue, divisor, buffer});
}

KprStatus kpriFilterRowBorderPipeline_16u_C3R(const Kpr16u* src, int srcStep, Kpr16u* const* dst, KprSize roiSize,
                                              const Kpr16s* kernel, int kernelSize, int xAnchor,
                                              KprBorderType borderType, const Kpr16u* borderValue, int divisor,
                                              Kpr8u* buffer) {
    return rowStage<3>(
        RowCall{src, srcStep, dst, roiSize, kernel, kernelSize, xAnchor, borderType, borderValue, divisor, buffer});
}

KprStatus kpriFilterRowBorderPipeline_Low_16s_C1R(const Kpr16s* src, int srcStep, Kpr16s* const* dst, KprSize roiSize,
                                                  const Kpr16s* kernel, int kernelSize, int xAnchor,
                                                  KprBorderType borderType, Kpr16s borderValue, int divisor,
                                                  Kpr8u* buffer) {
    return rowStage<1>(
        RowCall{src, srcStep, dst, roiSize, kernel, kernelSize, xAnchor, borderType, &borderValue, divisor, buffer});
}

KprStatus kpriFilterRowBorderPipeline_Low_16s_C3R(const Kpr16s* src, int srcStep, Kpr16s* const* dst, KprSize roiSize,
                                                  const Kpr16s* kernel, int kernelSize, int xAnchor,
                                                  KprBorderType borderType, const Kpr16s* borderValue, int divisor,
                                                  Kpr8u* buffer) {
    return rowStage<3>(
        RowCall{src, srcStep, dst, roiSize, kernel, kernelSize, xAnchor, borderType, borderValue, divisor, buffer});
}

KprStatus kpriFilterRowBorderPipeline_32f_C1R(const Kpr32f* src, int srcStep, Kpr32f* const* dst, KprSize roiSize,
                                              const Kpr32f* kernel, int kernelSize, int xAnchor,
                                              KprBorderType borderType, Kpr32f borderValue, Kpr8u* buffer) {
    return rowStage<1>(
        RowCall{src, srcStep, dst, roiSize, kernel, kernelSize, xAnchor, borderType, &borderValue, 1, buffer});
}

KprStatus kpriFilterRowBorderPipeline_32f_C3R(const Kpr32f* src, int srcStep, Kpr32f* const* dst, KprSize roiSize,
                                              const Kpr32f* kernel, int kernelSize, int xAnchor,
                                              KprBorderType borderType, const Kpr32f* borderValue, Kpr8u* buffer) {
    return rowStage<3>(
        RowCall{src, srcStep, dst, roiSize, kernel, kernelSize, xAnchor, borderType, borderValue, 1, buffer});
}
