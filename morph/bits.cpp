// Dilation and erosion of 1-bit images, in both interfaces: the rule of the other types, with set bits as the larger
// pixels. A pixel of a dilation is set where any tap meets a set pixel, one of an erosion where all taps do.
#include "morph/bit_extremum.h"

namespace n0::morph {

Bytes bitWorkSize(Extents e) { return (Bytes{e.paddedWidth()} + e.width + 31) * e.paddedHeight() + 48; }

namespace {

template <typename Rule>
KprStatus extremum(const BitCall& call, const Taps& taps) {
    makeBitExtremum<Rule>(bitJobOf<Rule>(call, taps), taps);
    return kprStatusOk;
}

}  // namespace
}  // namespace n0::morph

using namespace n0;
using namespace n0::morph;

KprStatus kpriMorphologyBorderGetSize_1u_C1R(KprSize roiSize, KprSize maskSize, int* specSize, int* bufferSize) {
    const Extents e = {roiSize.width, roiSize.height, maskSize.width, maskSize.height};
    int spec = 0, buffer = 0;
    const KprStatus status = firstFailure(notNull(specSize, bufferSize), roiHolds(roiSize), roiHolds(maskSize)) ?:
                             putSize(stateSizeOfBits(e), &spec) ?:
                             putSize(bitWorkSize(e), &buffer);
    if (status != kprStatusOk) return status;
    *specSize = spec;
    *bufferSize = buffer;
    return kprStatusOk;
}

KprStatus kpriMorphologyBorderInit_1u_C1R(KprSize roiSize, const Kpr8u* mask, KprSize maskSize, KprMorphState* spec,
                                          Kpr8u* buffer) {
    const KprStatus status = firstFailure(notNull(mask, spec, buffer), roiHolds(roiSize), roiHolds(maskSize));
    if (status != kprStatusOk) return status;
    fillState<Kpr32s>(spec, mask, maskSize.width, maskSize.height, Orientation::AsGiven, TapLists::None);
    return kprStatusOk;
}

KprStatus kpriDilateBorder_1u_C1R(const Kpr8u* src, int srcStep, int srcBitOffset, Kpr8u* dst, int dstStep,
                                  int dstBitOffset, KprSize roiSize, KprBorderType borderType, Kpr8u borderValue,
                                  const KprMorphState* spec, Kpr8u* buffer) {
    const BitCall call(src, srcStep, srcBitOffset, dst, dstStep, dstBitOffset, roiSize, borderType, &borderValue,
                       buffer);
    return callHolds(InPlace::Refused, call, spec) ?: extremum<BitDilation>(call, tapsOf<Kpr32s>(spec));
}

KprStatus kpriErodeBorder_1u_C1R(const Kpr8u* src, int srcStep, int srcBitOffset, Kpr8u* dst, int dstStep,
                                 int dstBitOffset, KprSize roiSize, KprBorderType borderType, Kpr8u borderValue,
                                 const KprMorphState* spec, Kpr8u* buffer) {
    const BitCall call(src, srcStep, srcBitOffset, dst, dstStep, dstBitOffset, roiSize, borderType, &borderValue,
                       buffer);
    return callHolds(InPlace::Refused, call, spec) ?: extremum<BitErosion>(call, tapsOf<Kpr32s>(spec));
}

KprStatus kpriDilate_1u_C1R_L(const Kpr8u* src, Kpr64s srcStep, int srcBitOffset, Kpr8u* dst, Kpr64s dstStep,
                              int dstBitOffset, Kpr64s roiWidth, Kpr64s roiHeight, KprBorderType borderType,
                              const Kpr8u* borderValue, const KprMorphState* spec, Kpr8u* buffer) {
    const BitCall call(src, srcStep, srcBitOffset, dst, dstStep, dstBitOffset, KprSizeL{roiWidth, roiHeight},
                       borderType, borderValue, buffer);
    return largeCallHolds(InPlace::Refused, call, spec) ?: extremum<BitDilation>(call, tapsOf<Kpr64s>(spec));
}

KprStatus kpriErode_1u_C1R_L(const Kpr8u* src, Kpr64s srcStep, int srcBitOffset, Kpr8u* dst, Kpr64s dstStep,
                             int dstBitOffset, Kpr64s roiWidth, Kpr64s roiHeight, KprBorderType borderType,
                             const Kpr8u* borderValue, const KprMorphState* spec, Kpr8u* buffer) {
    const BitCall call(src, srcStep, srcBitOffset, dst, dstStep, dstBitOffset, KprSizeL{roiWidth, roiHeight},
                       borderType, borderValue, buffer);
    return largeCallHolds(InPlace::Refused, call, spec) ?: extremum<BitErosion>(call, tapsOf<Kpr64s>(spec));
}
