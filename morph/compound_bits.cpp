// Opening, closing, top-hat, black-hat and gradient of 1-bit images, in both interfaces: as of the other types, the
// differences being s & ~open, close & ~s and D(s) & ~E(s).
#include "morph/bit_extremum.h"
#include "morph/compound.h"

namespace n0::morph {
namespace {

KprSizeL betweenAtMost(Extents e) { return {e.width + e.paddedWidth() - 1, e.height + e.paddedHeight() - 1}; }

Kpr64s bytesOfRow(Kpr64s width) { return roundUp((width + 7) >> 3, 32); }

// A buffer's two parts: the image between the stages, and the work area of either stage. The latter has the room of two
// of the ROI, which is enough for the first stage's larger image.
struct BitParts {
    BitRows<Kpr8u> image;
    Workspace work;

    BitParts(const BitCall& call, Kpr64s width, Kpr64s height, const Taps& taps) {
        const Bytes one = bitWorkSize({call.width, call.height, taps.width, taps.height});
        const Kpr64s step = bytesOfRow(width);
        work = Workspace(call.buffer, height * step + static_cast<Kpr64s>(2 * one));
        image = {{work.take<Kpr8u>(height * step, 32), step}, 0};
    }
    [[nodiscard]] BitRows<const Kpr8u> pixelsFrom(Kpr64s x, Kpr64s y) const {
        return {{image.bytes[y], image.bytes.step}, x};
    }
};

// The stages of `twoStages`, from bits to bits.
template <typename First, typename Second>
KprStatus twoBitStages(const BitCall& call, const TapsPair& taps, Output output) {
    const Border border(call.border);
    const Kpr64s reachX = taps.second.reachX(), reachY = taps.second.reachY();
    const Kpr64s left = border.left ? reachX : 0, top = border.top ? reachY : 0;
    const Kpr64s width = call.width + left + (border.right ? reachX : 0);
    const Kpr64s height = call.height + top + (border.bottom ? reachY : 0);
    const BitParts parts(call, width, height, taps.first);

    BitJob job = bitJobOf<First>(call, taps.first);
    if ((call.border & kFirstStage) != 0) job.border = Border(call.border | kprBorderInMem);
    job.src = {{job.src.bytes[-top], call.srcStep}, call.srcBitOffset - left};
    job.dst = parts.image;
    job.width = width;
    job.height = height;
    job.work = parts.work;
    makeBitExtremum<First>(job, taps.first);

    job = bitJobOf<Second>(call, taps.second);
    job.src = parts.pixelsFrom(left, top);
    job.work = parts.work;
    job.output = output;
    makeBitExtremum<Second>(job, taps.second);
    return kprStatusOk;
}

KprStatus open(const BitCall& call, const TapsPair& taps) {
    return twoBitStages<BitErosion, BitDilation>(call, taps, Output::Result);
}

KprStatus close(const BitCall& call, const TapsPair& taps) {
    return twoBitStages<BitDilation, BitErosion>(call, taps, Output::Result);
}

KprStatus topHat(const BitCall& call, const TapsPair& taps) {
    return twoBitStages<BitErosion, BitDilation>(call, taps, Output::OtherLess);
}

KprStatus blackHat(const BitCall& call, const TapsPair& taps) {
    return twoBitStages<BitDilation, BitErosion>(call, taps, Output::LessOther);
}

// The erosion first, so that the dilation can write the difference.
KprStatus gradient(const BitCall& call, const TapsPair& taps) {
    const BitParts parts(call, call.width, call.height, taps.first);
    BitJob job = bitJobOf<BitErosion>(call, taps.first);
    job.work = parts.work;
    job.dst = parts.image;
    makeBitExtremum<BitErosion>(job, taps.first);
    job = bitJobOf<BitDilation>(call, taps.first);
    job.work = parts.work;
    job.output = Output::LessOther;
    job.other = parts.pixelsFrom(0, 0);
    makeBitExtremum<BitDilation>(job, taps.first);
    return kprStatusOk;
}

TapsPair tapsIn(const KprMorphAdvState* spec) { return pairOf<MorphPair, Kpr32s>(spec); }
TapsPair largeTapsIn(const KprMorphAdvState* spec) { return pairOf<MorphPairLarge, Kpr64s>(spec); }

}  // namespace
}  // namespace n0::morph

using namespace n0;
using namespace n0::morph;

KprStatus kpriMorphAdvGetSize_1u_C1R(KprSize roiSize, KprSize maskSize, int* specSize, int* bufferSize) {
    const Extents e = {roiSize.width, roiSize.height, maskSize.width, maskSize.height};
    const KprSizeL most = betweenAtMost(e);
    int spec = 0, buffer = 0;
    const KprStatus status =
        firstFailure(notNull(specSize, bufferSize), roiHolds(roiSize), roiHolds(maskSize)) ?:
        putSize(Bytes{e.paddedWidth()} * e.paddedHeight() + 2 * stateSizeOfBits(e) + 32, &spec) ?:
        putSize(Bytes{most.height} * bytesOfRow(most.width) + 2 * bitWorkSize(e), &buffer);
    if (status != kprStatusOk) return status;
    *specSize = spec;
    *bufferSize = buffer;
    return kprStatusOk;
}

KprStatus kpriMorphAdvInit_1u_C1R(KprSize roiSize, const Kpr8u* mask, KprSize maskSize, KprMorphAdvState* spec,
                                  Kpr8u* buffer) {
    const KprStatus status = firstFailure(notNull(mask, spec, buffer), roiHolds(roiSize), roiHolds(maskSize));
    if (status != kprStatusOk) return status;
    const Extents e = {roiSize.width, roiSize.height, maskSize.width, maskSize.height};
    fillPair<MorphPair, Kpr32s>(spec, mask, maskSize.width, maskSize.height, stateSizeOfBits(e), TapLists::None);
    return kprStatusOk;
}

KprStatus kpriMorphOpenBorder_1u_C1R(const Kpr8u* src, int srcStep, int srcBitOffset, Kpr8u* dst, int dstStep,
                                     int dstBitOffset, KprSize roiSize, KprBorderType borderType, Kpr8u borderValue,
                                     const KprMorphAdvState* spec, Kpr8u* buffer) {
    const BitCall call(src, srcStep, srcBitOffset, dst, dstStep, dstBitOffset, roiSize, borderType, &borderValue,
                       buffer);
    return callHolds(InPlace::Served, call, spec) ?: open(call, tapsIn(spec));
}

KprStatus kpriMorphCloseBorder_1u_C1R(const Kpr8u* src, int srcStep, int srcBitOffset, Kpr8u* dst, int dstStep,
                                      int dstBitOffset, KprSize roiSize, KprBorderType borderType, Kpr8u borderValue,
                                      const KprMorphAdvState* spec, Kpr8u* buffer) {
    const BitCall call(src, srcStep, srcBitOffset, dst, dstStep, dstBitOffset, roiSize, borderType, &borderValue,
                       buffer);
    return callHolds(InPlace::Served, call, spec) ?: close(call, tapsIn(spec));
}

KprStatus kpriMorphTophatBorder_1u_C1R(const Kpr8u* src, int srcStep, int srcBitOffset, Kpr8u* dst, int dstStep,
                                       int dstBitOffset, KprSize roiSize, KprBorderType borderType, Kpr8u borderValue,
                                       const KprMorphAdvState* spec, Kpr8u* buffer) {
    const BitCall call(src, srcStep, srcBitOffset, dst, dstStep, dstBitOffset, roiSize, borderType, &borderValue,
                       buffer);
    return callHolds(InPlace::Served, call, spec) ?: topHat(call, tapsIn(spec));
}

KprStatus kpriMorphBlackhatBorder_1u_C1R(const Kpr8u* src, int srcStep, int srcBitOffset, Kpr8u* dst, int dstStep,
                                         int dstBitOffset, KprSize roiSize, KprBorderType borderType, Kpr8u borderValue,
                                         const KprMorphAdvState* spec, Kpr8u* buffer) {
    const BitCall call(src, srcStep, srcBitOffset, dst, dstStep, dstBitOffset, roiSize, borderType, &borderValue,
                       buffer);
    return callHolds(InPlace::Served, call, spec) ?: blackHat(call, tapsIn(spec));
}

KprStatus kpriMorphGradientBorder_1u_C1R(const Kpr8u* src, int srcStep, int srcBitOffset, Kpr8u* dst, int dstStep,
                                         int dstBitOffset, KprSize roiSize, KprBorderType borderType, Kpr8u borderValue,
                                         const KprMorphAdvState* spec, Kpr8u* buffer) {
    const BitCall call(src, srcStep, srcBitOffset, dst, dstStep, dstBitOffset, roiSize, borderType, &borderValue,
                       buffer);
    return callHolds(InPlace::Refused, call, spec) ?: gradient(call, tapsIn(spec));
}

KprStatus kpriMorphOpen_1u_C1R_L(const Kpr8u* src, Kpr64s srcStep, int srcBitOffset, Kpr8u* dst, Kpr64s dstStep,
                                 int dstBitOffset, Kpr64s roiWidth, Kpr64s roiHeight, KprBorderType borderType,
                                 const Kpr8u* borderValue, const KprMorphAdvState* spec, Kpr8u* buffer) {
    const BitCall call(src, srcStep, srcBitOffset, dst, dstStep, dstBitOffset, KprSizeL{roiWidth, roiHeight},
                       borderType, borderValue, buffer);
    return largeCompoundHolds(call, spec) ?: open(call, largeTapsIn(spec));
}

KprStatus kpriMorphClose_1u_C1R_L(const Kpr8u* src, Kpr64s srcStep, int srcBitOffset, Kpr8u* dst, Kpr64s dstStep,
                                  int dstBitOffset, Kpr64s roiWidth, Kpr64s roiHeight, KprBorderType borderType,
                                  const Kpr8u* borderValue, const KprMorphAdvState* spec, Kpr8u* buffer) {
    const BitCall call(src, srcStep, srcBitOffset, dst, dstStep, dstBitOffset, KprSizeL{roiWidth, roiHeight},
                       borderType, borderValue, buffer);
    return largeCompoundHolds(call, spec) ?: close(call, largeTapsIn(spec));
}

KprStatus kpriMorphTophat_1u_C1R_L(const Kpr8u* src, Kpr64s srcStep, int srcBitOffset, Kpr8u* dst, Kpr64s dstStep,
                                   int dstBitOffset, Kpr64s roiWidth, Kpr64s roiHeight, KprBorderType borderType,
                                   const Kpr8u* borderValue, const KprMorphAdvState* spec, Kpr8u* buffer) {
    const BitCall call(src, srcStep, srcBitOffset, dst, dstStep, dstBitOffset, KprSizeL{roiWidth, roiHeight},
                       borderType, borderValue, buffer);
    return largeCompoundHolds(call, spec) ?: topHat(call, largeTapsIn(spec));
}

KprStatus kpriMorphBlackhat_1u_C1R_L(const Kpr8u* src, Kpr64s srcStep, int srcBitOffset, Kpr8u* dst, Kpr64s dstStep,
                                     int dstBitOffset, Kpr64s roiWidth, Kpr64s roiHeight, KprBorderType borderType,
                                     const Kpr8u* borderValue, const KprMorphAdvState* spec, Kpr8u* buffer) {
    const BitCall call(src, srcStep, srcBitOffset, dst, dstStep, dstBitOffset, KprSizeL{roiWidth, roiHeight},
                       borderType, borderValue, buffer);
    return largeCompoundHolds(call, spec) ?: blackHat(call, largeTapsIn(spec));
}

KprStatus kpriMorphGradient_1u_C1R_L(const Kpr8u* src, Kpr64s srcStep, int srcBitOffset, Kpr8u* dst, Kpr64s dstStep,
                                     int dstBitOffset, Kpr64s roiWidth, Kpr64s roiHeight, KprBorderType borderType,
                                     const Kpr8u* borderValue, const KprMorphAdvState* spec, Kpr8u* buffer) {
    const BitCall call(src, srcStep, srcBitOffset, dst, dstStep, dstBitOffset, KprSizeL{roiWidth, roiHeight},
                       borderType, borderValue, buffer);
    return largeCallHolds(InPlace::Refused, call, spec) ?: gradient(call, largeTapsIn(spec));
}
