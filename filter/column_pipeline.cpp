// The column stage of a separable filter: rows that stand wherever their pointers say, filtered downward into an image.
//
//     dst[y][x] = sum of kernel[i] * rows[y + i][x]
//
// Sums and conversions are those of the row stage, to nearest in every column. Three channels are rows of three times
// the width. The taps are few enough to need no working memory.
#include "filter/pipeline_checks.h"
#include "filter/pipeline_sizes.h"
#include "filter/taps.h"

namespace n0::filter {
namespace {

template <typename Taps, typename Src, typename Dst>
void filterColumns(const Taps& taps, const Src* const* rows, Rows<Dst> dst, Kpr64s width, Kpr64s height) {
    for (Kpr64s y = 0; y < height; ++y) filterColumn<Taps>(&taps, rows + y, dst[y], width);
}

template <int channels, typename Src, typename Dst, typename Tap>
KprStatus columnStage(const Src* const* rows, Rows<Dst> dst, KprSize roi, const Tap* kernel, int kernelSize,
                      int divisor, const Kpr8u* buffer) {
    const Kpr64s width = Kpr64s{channels} * roi.width;
    KprStatus multiple = kprStatusOk;
    if constexpr (sizeof(Dst) > 1) multiple = stepsAlign<Dst>(dst.step);
    return firstFailure(notNull(rows, dst.first, kernel), roiHolds(roi))
               ?: rowsPresent(rows, Kpr64s{kernelSize} + roi.height - 1)
               ?: firstFailure(failIf(kernelSize < 1, kprStatusBadSize), rowsFit<Dst>(width, dst.step), multiple,
                               notNull(buffer), failIf(divisor == 0, kprStatusBadArg))
               ?: withSize(kernelSize, [&]<int size>() {
                      filterColumns(tapsOf<Src, size>(kernel, kernelSize, divisor), rows, dst, width, roi.height);
                      return KprStatus{kprStatusOk};
                  });
}

}  // namespace
}  // namespace n0::filter

using namespace n0;
using namespace n0::filter;

KprStatus kpriFilterColumnPipelineGetBufferSize_16s_C1R(KprSize roiSize, int kernelSize, int* bufferSize) {
    return sizeOf(roiSize, kernelSize, bufferSize, columnBytes16s(static_cast<Bytes32>(roiSize.width), 1));
}

KprStatus kpriFilterColumnPipelineGetBufferSize_16s_C3R(KprSize roiSize, int kernelSize, int* bufferSize) {
    return sizeOf(roiSize, kernelSize, bufferSize, columnBytes16s(static_cast<Bytes32>(roiSize.width), 3));
}

KprStatus kpriFilterColumnPipelineGetBufferSize_16s8s_C1R(KprSize roiSize, int kernelSize, int* bufferSize) {
    return sizeOf(roiSize, kernelSize, bufferSize, columnBytes16s(static_cast<Bytes32>(roiSize.width), 1));
}

KprStatus kpriFilterColumnPipelineGetBufferSize_16s8s_C3R(KprSize roiSize, int kernelSize, int* bufferSize) {
    return sizeOf(roiSize, kernelSize, bufferSize, columnBytes16s(static_cast<Bytes32>(roiSize.width), 3));
}

KprStatus kpriFilterColumnPipelineGetBufferSize_16s8u_C1R(KprSize roiSize, int kernelSize, int* bufferSize) {
    return sizeOf(roiSize, kernelSize, bufferSize, columnBytes16s(static_cast<Bytes32>(roiSize.width), 1));
}

KprStatus kpriFilterColumnPipelineGetBufferSize_16s8u_C3R(KprSize roiSize, int kernelSize, int* bufferSize) {
    return sizeOf(roiSize, kernelSize, bufferSize, columnBytes16s(static_cast<Bytes32>(roiSize.width), 3));
}

KprStatus kpriFilterColumnPipelineGetBufferSize_16u_C1R(KprSize roiSize, int kernelSize, int* bufferSize) {
    return sizeOf(roiSize, kernelSize, bufferSize,
                  columnBytes16u(static_cast<Bytes32>(roiSize.width), static_cast<Bytes32>(kernelSize), 1));
}

KprStatus kpriFilterColumnPipelineGetBufferSize_16u_C3R(KprSize roiSize, int kernelSize, int* bufferSize) {
    return sizeOf(roiSize, kernelSize, bufferSize,
                  columnBytes16u(static_cast<Bytes32>(roiSize.width), static_cast<Bytes32>(kernelSize), 3));
}

KprStatus kpriFilterColumnPipelineGetBufferSize_Low_16s_C1R(KprSize roiSize, int kernelSize, int* bufferSize) {
    return sizeOf(roiSize, kernelSize, bufferSize, columnBytesLow16s(static_cast<Bytes32>(roiSize.width), 1));
}

KprStatus kpriFilterColumnPipelineGetBufferSize_Low_16s_C3R(KprSize roiSize, int kernelSize, int* bufferSize) {
    return sizeOf(roiSize, kernelSize, bufferSize, columnBytesLow16s(static_cast<Bytes32>(roiSize.width), 3));
}

KprStatus kpriFilterColumnPipelineGetBufferSize_32f_C1R(KprSize roiSize, int kernelSize, int* bufferSize) {
    return sizeOf(roiSize, kernelSize, bufferSize, columnBytes32f(static_cast<Bytes32>(kernelSize)));
}

KprStatus kpriFilterColumnPipelineGetBufferSize_32f_C3R(KprSize roiSize, int kernelSize, int* bufferSize) {
    return sizeOf(roiSize, kernelSize, bufferSize, columnBytes32f(static_cast<Bytes32>(kernelSize)));
}

KprStatus kpriFilterColumnPipeline_16s_C1R(const Kpr16s* const* src, Kpr16s* dst, int dstStep, KprSize roiSize,
                                           const Kpr16s* kernel, int kernelSize, int divisor, Kpr8u* buffer) {
    return columnStage<1>(src, Rows{dst, dstStep}, roiSize, kernel, kernelSize, divisor, buffer);
}

KprStatus kpriFilterColumnPipeline_16s_C3R(const Kpr16s* const* src, Kpr16s* dst, int dstStep, KprSize roiSize,
                                           const Kpr16s* kernel, int kernelSize, int divisor, Kpr8u* buffer) {
    return columnStage<3>(src, Rows{dst, dstStep}, roiSize, kernel, kernelSize, divisor, buffer);
}

KprStatus kpriFilterColumnPipeline_16s8s_C1R(const Kpr16s* const* src, Kpr8s* dst, int dstStep, KprSize roiSize,
                                             const Kpr16s* kernel, int kernelSize, int divisor, Kpr8u* buffer) {
    return columnStage<1>(src, Rows{dst, dstStep}, roiSize, kernel, kernelSize, divisor, buffer);
}

KprStatus kpriFilterColumnPipeline_16s8s_C3R(const Kpr16s* const* src, Kpr8s* dst, int dstStep, KprSize roiSize,
                                             const Kpr16s* kernel, int kernelSize, int divisor, Kpr8u* buffer) {
    return columnStage<3>(src, Rows{dst, dstStep}, roiSize, kernel, kernelSize, divisor, buffer);
}

KprStatus kpriFilterColumnPipeline_16s8u_C1R(const Kpr16s* const* src, Kpr8u* dst, int dstStep, KprSize roiSize,
                                             const Kpr16s* kernel, int kernelSize, int divisor, Kpr8u* buffer) {
    return columnStage<1>(src, Rows{dst, dstStep}, roiSize, kernel, kernelSize, divisor, buffer);
}

KprStatus kpriFilterColumnPipeline_16s8u_C3R(const Kpr16s* const* src, Kpr8u* dst, int dstStep, KprSize roiSize,
                                             const Kpr16s* kernel, int kernelSize, int divisor, Kpr8u* buffer) {
    return columnStage<3>(src, Rows{dst, dstStep}, roiSize, kernel, kernelSize, divisor, buffer);
}

KprStatus kpriFilterColumnPipeline_16u_C1R(const Kpr16u* const* src, Kpr16u* dst, int dstStep, KprSize roiSize,
                                           const Kpr16s* kernel, int kernelSize, int divisor, Kpr8u* buffer) {
    return columnStage<1>(src, Rows{dst, dstStep}, roiSize, kernel, kernelSize, divisor, buffer);
}

KprStatus kpriFilterColumnPipeline_16u_C3R(const Kpr16u* const* src, Kpr16u* dst, int dstStep, KprSize roiSize,
                                           const Kpr16s* kernel, int kernelSize, int divisor, Kpr8u* buffer) {
    return columnStage<3>(src, Rows{dst, dstStep}, roiSize, kernel, kernelSize, divisor, buffer);
}

KprStatus kpriFilterColumnPipeline_Low_16s_C1R(const Kpr16s* const* src, Kpr16s* dst, int dstStep, KprSize roiSize,
                                               const Kpr16s* kernel, int kernelSize, int divisor, Kpr8u* buffer) {
    return columnStage<1>(src, Rows{dst, dstStep}, roiSize, kernel, kernelSize, divisor, buffer);
}

KprStatus kpriFilterColumnPipeline_Low_16s_C3R(const Kpr16s* const* src, Kpr16s* dst, int dstStep, KprSize roiSize,
                                               const Kpr16s* kernel, int kernelSize, int divisor, Kpr8u* buffer) {
    return columnStage<3>(src, Rows{dst, dstStep}, roiSize, kernel, kernelSize, divisor, buffer);
}

KprStatus kpriFilterColumnPipeline_32f_C1R(const Kpr32f* const* src, Kpr32f* dst, int dstStep, KprSize roiSize,
                                           const Kpr32f* kernel, int kernelSize, Kpr8u* buffer) {
    return columnStage<1>(src, Rows{dst, dstStep}, roiSize, kernel, kernelSize, 1, buffer);
}

KprStatus kpriFilterColumnPipeline_32f_C3R(const Kpr32f* const* src, Kpr32f* dst, int dstStep, KprSize roiSize,
                                           const Kpr32f* kernel, int kernelSize, Kpr8u* buffer) {
    return columnStage<3>(src, Rows{dst, dstStep}, roiSize, kernel, kernelSize, 1, buffer);
}
