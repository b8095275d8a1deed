// Dilation and erosion of 1-bit images, in both interfaces: the rule of the other types, with set bits as the larger
// pixels. A pixel of a dilation is set where any tap meets a set pixel, one of an erosion where all taps do.
#include "morph/bit_extremum.h"

namespace n0::morph {

Bytes bitWorkSize(Extents e) { return (Bytes{e.paddedWidth()} + e.width + 31) * e.paddedHeight() + 48; }

void listRuns(Taps taps, int mostKinds, BitRuns& runs) {
    runs.kindCount = runs.placeCount = 0;
    bool holds = true;
    const auto kindOf = [&](TapRun run) {
        for (int k = 0; k < runs.kindCount; ++k) {
            if (runs.kinds[k].column == run.column && runs.kinds[k].length == run.length) return k;
        }
        return -1;
    };
    eachRun(taps, [&](TapRun run) {
        if (!holds || kindOf(run) >= 0) return;
        holds = runs.kindCount < mostKinds;
        if (!holds) return;
        int k = runs.kindCount++;
        for (; k > 0 && runs.kinds[k - 1].length > run.length; --k) runs.kinds[k] = runs.kinds[k - 1];
        runs.kinds[k] = {run.column, run.length};
    });
    eachRun(taps, [&](TapRun run) {
        holds = holds && runs.placeCount < BitRuns::kMostPlaces;
        if (holds) runs.places[runs.placeCount++] = {run.row, kindOf(run)};
    });
    if (!holds) runs.placeCount = 0;
}

namespace {

// One of the large interface's blocks serves these types too.
template <typename Rule, typename Block>
KprStatus process(const BitCall& call, const KprMorphState* spec) {
    constexpr bool large = std::is_same_v<Block, Kpr64s>;
    return (large ? largeCallHolds(InPlace::Refused, call, spec) : callHolds(InPlace::Refused, call, spec))
               ?: bitExtremum<Rule>(call, tapsOf<Block>(spec));
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
    return process<BitDilation, Kpr32s>({src, srcStep, srcBitOffset, dst, dstStep, dstBitOffset, roiSize.width,
                                         roiSize.height, borderType, &borderValue, buffer},
                                        spec);
}

KprStatus kpriErodeBorder_1u_C1R(const Kpr8u* src, int srcStep, int srcBitOffset, Kpr8u* dst, int dstStep,
                                 int dstBitOffset, KprSize roiSize, KprBorderType borderType, Kpr8u borderValue,
                                 const KprMorphState* spec, Kpr8u* buffer) {
    return process<BitErosion, Kpr32s>({src, srcStep, srcBitOffset, dst, dstStep, dstBitOffset, roiSize.width,
                                        roiSize.height, borderType, &borderValue, buffer},
                                       spec);
}

KprStatus kpriDilate_1u_C1R_L(const Kpr8u* src, Kpr64s srcStep, int srcBitOffset, Kpr8u* dst, Kpr64s dstStep,
                              int dstBitOffset, Kpr64s roiWidth, Kpr64s roiHeight, KprBorderType borderType,
                              const Kpr8u* borderValue, const KprMorphState* spec, Kpr8u* buffer) {
    return process<BitDilation, Kpr64s>(
        {src, srcStep, srcBitOffset, dst, dstStep, dstBitOffset, roiWidth, roiHeight, borderType, borderValue, buffer},
        spec);
}

KprStatus kpriErode_1u_C1R_L(const Kpr8u* src, Kpr64s srcStep, int srcBitOffset, Kpr8u* dst, Kpr64s dstStep,
                             int dstBitOffset, Kpr64s roiWidth, Kpr64s roiHeight, KprBorderType borderType,
                             const Kpr8u* borderValue, const KprMorphState* spec, Kpr8u* buffer) {
    return process<BitErosion, Kpr64s>(
        {src, srcStep, srcBitOffset, dst, dstStep, dstBitOffset, roiWidth, roiHeight, borderType, borderValue, buffer},
        spec);
}
