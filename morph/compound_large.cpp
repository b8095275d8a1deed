// Opening, closing and their differences with 64-bit sizes and steps.
#include "morph/compound.h"

namespace n0::morph {
namespace {

KprStatus sizingHolds(Extents e, KprDataType dataType, int numChannels) {
    return firstFailure(largeSizesHold(e), typeServed(dataType), channelsServed(numChannels));
}

// A ROI that has grown by `times` the mask, less one pixel each time.
Extents grown(Extents e, int times) {
    return {e.width + times * (e.paddedWidth() - 1), e.height + times * (e.paddedHeight() - 1), e.maskWidth,
            e.maskHeight};
}

KprStatus grownHolds(Extents e) {
    const Extents most = grown(e, 2);
    return roiNotBeyond(most.width, most.height);
}

Bytes specBytes(Extents e) { return Bytes{e.paddedWidth()} * e.paddedHeight() + 2 * stateSizeLarge(e) + 64; }

Bytes bufferBytes(Extents e, int elementSize, int channels) {
    const Extents most = grown(e, 2);
    Bytes work = 0;
    for (int times = 0; times <= 2; ++times) work = std::max(work, workSize(grown(e, times), elementSize, channels));
    return most.height * roundUp(Bytes{channels} * most.width * elementSize, 32) + 2 * work;
}

TapsPair tapsIn(const KprMorphAdvState* spec) { return pairOf<MorphPairLarge, Kpr64s>(spec); }

}  // namespace
}  // namespace n0::morph

using namespace n0;
using namespace n0::morph;

KprStatus kpriMorphGetSpecSize_L(Kpr64s roiWidth, Kpr64s roiHeight, Kpr64s maskWidth, Kpr64s maskHeight,
                                 KprDataType dataType, int numChannels, Kpr64s* specSize) {
    const Extents e = {roiWidth, roiHeight, maskWidth, maskHeight};
    return firstFailure(notNull(specSize), sizingHolds(e, dataType, numChannels)) ?: grownHolds(e) ?:
           putSize(specBytes(e), specSize);
}

KprStatus kpriMorphGetBufferSize_L(Kpr64s roiWidth, Kpr64s roiHeight, Kpr64s maskWidth, Kpr64s maskHeight,
                                   KprDataType dataType, int numChannels, Kpr64s* bufferSize) {
    const Extents e = {roiWidth, roiHeight, maskWidth, maskHeight};
    return firstFailure(notNull(bufferSize), sizingHolds(e, dataType, numChannels)) ?: grownHolds(e) ?:
           putSize(bufferBytes(e, elementSizeOf(dataType), numChannels), bufferSize);
}

KprStatus kpriMorphInit_L(Kpr64s roiWidth, Kpr64s roiHeight, const Kpr8u* mask, Kpr64s maskWidth, Kpr64s maskHeight,
                          KprDataType dataType, int numChannels, KprMorphAdvState* spec) {
    const Extents e = {roiWidth, roiHeight, maskWidth, maskHeight};
    const KprStatus status = firstFailure(notNull(mask, spec), sizingHolds(e, dataType, numChannels));
    if (status != kprStatusOk) return status;
    auto& pair = fillPair<MorphPairLarge, Kpr64s>(spec, mask, maskWidth, maskHeight, stateSizeLarge(e));
    pair.reflectedState = pair.second;
    pair.modeFlag = 0;
    return kprStatusOk;
}

KprStatus kpriMorphSetMode_L(int mode, KprMorphAdvState* spec) {
    constexpr int kSameMask = 1, kFlag = 4;
    const KprStatus status =
        firstFailure(notNull(spec), failIf(mode != 0 && mode != kSameMask && mode != kFlag, kprStatusBadMode));
    if (status != kprStatusOk) return status;
    MorphPairLarge& pair = headerOf<MorphPairLarge>(spec);
    pair.second = mode == kSameMask ? pair.first : pair.reflectedState;
    pair.modeFlag = mode == kFlag ? 1 : 0;
    return kprStatusOk;
}

KprStatus kpriMorphOpen_8u_C1R_L(const Kpr8u* src, Kpr64s srcStep, Kpr8u* dst, Kpr64s dstStep, Kpr64s roiWidth,
                                 Kpr64s roiHeight, KprBorderType borderType, const Kpr8u* borderValue,
                                 const KprMorphAdvState* spec, Kpr8u* buffer) {
    const Call call(src, srcStep, dst, dstStep, KprSizeL{roiWidth, roiHeight}, borderType, borderValue, 1, buffer);
    return largeCompoundHolds(call, spec) ?: open(call, tapsIn(spec));
}

KprStatus kpriMorphOpen_8u_C3R_L(const Kpr8u* src, Kpr64s srcStep, Kpr8u* dst, Kpr64s dstStep, Kpr64s roiWidth,
                                 Kpr64s roiHeight, KprBorderType borderType, const Kpr8u* borderValue,
                                 const KprMorphAdvState* spec, Kpr8u* buffer) {
    const Call call(src, srcStep, dst, dstStep, KprSizeL{roiWidth, roiHeight}, borderType, borderValue, 3, buffer);
    return largeCompoundHolds(call, spec) ?: open(call, tapsIn(spec));
}

KprStatus kpriMorphOpen_8u_C4R_L(const Kpr8u* src, Kpr64s srcStep, Kpr8u* dst, Kpr64s dstStep, Kpr64s roiWidth,
                                 Kpr64s roiHeight, KprBorderType borderType, const Kpr8u* borderValue,
                                 const KprMorphAdvState* spec, Kpr8u* buffer) {
    const Call call(src, srcStep, dst, dstStep, KprSizeL{roiWidth, roiHeight}, borderType, borderValue, 4, buffer);
    return largeCompoundHolds(call, spec) ?: open(call, tapsIn(spec));
}

KprStatus kpriMorphOpen_16u_C1R_L(const Kpr16u* src, Kpr64s srcStep, Kpr16u* dst, Kpr64s dstStep, Kpr64s roiWidth,
                                  Kpr64s roiHeight, KprBorderType borderType, const Kpr16u* borderValue,
                                  const KprMorphAdvState* spec, Kpr8u* buffer) {
    const Call call(src, srcStep, dst, dstStep, KprSizeL{roiWidth, roiHeight}, borderType, borderValue, 1, buffer);
    return largeCompoundHolds(call, spec) ?: open(call, tapsIn(spec));
}

KprStatus kpriMorphOpen_16s_C1R_L(const Kpr16s* src, Kpr64s srcStep, Kpr16s* dst, Kpr64s dstStep, Kpr64s roiWidth,
                                  Kpr64s roiHeight, KprBorderType borderType, const Kpr16s* borderValue,
                                  const KprMorphAdvState* spec, Kpr8u* buffer) {
    const Call call(src, srcStep, dst, dstStep, KprSizeL{roiWidth, roiHeight}, borderType, borderValue, 1, buffer);
    return largeCompoundHolds(call, spec) ?: open(call, tapsIn(spec));
}

KprStatus kpriMorphOpen_32f_C1R_L(const Kpr32f* src, Kpr64s srcStep, Kpr32f* dst, Kpr64s dstStep, Kpr64s roiWidth,
                                  Kpr64s roiHeight, KprBorderType borderType, const Kpr32f* borderValue,
                                  const KprMorphAdvState* spec, Kpr8u* buffer) {
    const Call call(src, srcStep, dst, dstStep, KprSizeL{roiWidth, roiHeight}, borderType, borderValue, 1, buffer);
    return largeCompoundHolds(call, spec) ?: open(call, tapsIn(spec));
}

KprStatus kpriMorphOpen_32f_C3R_L(const Kpr32f* src, Kpr64s srcStep, Kpr32f* dst, Kpr64s dstStep, Kpr64s roiWidth,
                                  Kpr64s roiHeight, KprBorderType borderType, const Kpr32f* borderValue,
                                  const KprMorphAdvState* spec, Kpr8u* buffer) {
    const Call call(src, srcStep, dst, dstStep, KprSizeL{roiWidth, roiHeight}, borderType, borderValue, 3, buffer);
    return largeCompoundHolds(call, spec) ?: open(call, tapsIn(spec));
}

KprStatus kpriMorphOpen_32f_C4R_L(const Kpr32f* src, Kpr64s srcStep, Kpr32f* dst, Kpr64s dstStep, Kpr64s roiWidth,
                                  Kpr64s roiHeight, KprBorderType borderType, const Kpr32f* borderValue,
                                  const KprMorphAdvState* spec, Kpr8u* buffer) {
    const Call call(src, srcStep, dst, dstStep, KprSizeL{roiWidth, roiHeight}, borderType, borderValue, 4, buffer);
    return largeCompoundHolds(call, spec) ?: open(call, tapsIn(spec));
}

KprStatus kpriMorphClose_8u_C1R_L(const Kpr8u* src, Kpr64s srcStep, Kpr8u* dst, Kpr64s dstStep, Kpr64s roiWidth,
                                  Kpr64s roiHeight, KprBorderType borderType, const Kpr8u* borderValue,
                                  const KprMorphAdvState* spec, Kpr8u* buffer) {
    const Call call(src, srcStep, dst, dstStep, KprSizeL{roiWidth, roiHeight}, borderType, borderValue, 1, buffer);
    return largeCompoundHolds(call, spec) ?: close(call, tapsIn(spec));
}

KprStatus kpriMorphClose_8u_C3R_L(const Kpr8u* src, Kpr64s srcStep, Kpr8u* dst, Kpr64s dstStep, Kpr64s roiWidth,
                                  Kpr64s roiHeight, KprBorderType borderType, const Kpr8u* borderValue,
                                  const KprMorphAdvState* spec, Kpr8u* buffer) {
    const Call call(src, srcStep, dst, dstStep, KprSizeL{roiWidth, roiHeight}, borderType, borderValue, 3, buffer);
    return largeCompoundHolds(call, spec) ?: close(call, tapsIn(spec));
}

KprStatus kpriMorphClose_8u_C4R_L(const Kpr8u* src, Kpr64s srcStep, Kpr8u* dst, Kpr64s dstStep, Kpr64s roiWidth,
                                  Kpr64s roiHeight, KprBorderType borderType, const Kpr8u* borderValue,
                                  const KprMorphAdvState* spec, Kpr8u* buffer) {
    const Call call(src, srcStep, dst, dstStep, KprSizeL{roiWidth, roiHeight}, borderType, borderValue, 4, buffer);
    return largeCompoundHolds(call, spec) ?: close(call, tapsIn(spec));
}

KprStatus kpriMorphClose_16u_C1R_L(const Kpr16u* src, Kpr64s srcStep, Kpr16u* dst, Kpr64s dstStep, Kpr64s roiWidth,
                                   Kpr64s roiHeight, KprBorderType borderType, const Kpr16u* borderValue,
                                   const KprMorphAdvState* spec, Kpr8u* buffer) {
    const Call call(src, srcStep, dst, dstStep, KprSizeL{roiWidth, roiHeight}, borderType, borderValue, 1, buffer);
    return largeCompoundHolds(call, spec) ?: close(call, tapsIn(spec));
}

KprStatus kpriMorphClose_16s_C1R_L(const Kpr16s* src, Kpr64s srcStep, Kpr16s* dst, Kpr64s dstStep, Kpr64s roiWidth,
                                   Kpr64s roiHeight, KprBorderType borderType, const Kpr16s* borderValue,
                                   const KprMorphAdvState* spec, Kpr8u* buffer) {
    const Call call(src, srcStep, dst, dstStep, KprSizeL{roiWidth, roiHeight}, borderType, borderValue, 1, buffer);
    return largeCompoundHolds(call, spec) ?: close(call, tapsIn(spec));
}

KprStatus kpriMorphClose_32f_C1R_L(const Kpr32f* src, Kpr64s srcStep, Kpr32f* dst, Kpr64s dstStep, Kpr64s roiWidth,
                                   Kpr64s roiHeight, KprBorderType borderType, const Kpr32f* borderValue,
                                   const KprMorphAdvState* spec, Kpr8u* buffer) {
    const Call call(src, srcStep, dst, dstStep, KprSizeL{roiWidth, roiHeight}, borderType, borderValue, 1, buffer);
    return largeCompoundHolds(call, spec) ?: close(call, tapsIn(spec));
}

KprStatus kpriMorphClose_32f_C3R_L(const Kpr32f* src, Kpr64s srcStep, Kpr32f* dst, Kpr64s dstStep, Kpr64s roiWidth,
                                   Kpr64s roiHeight, KprBorderType borderType, const Kpr32f* borderValue,
                                   const KprMorphAdvState* spec, Kpr8u* buffer) {
    const Call call(src, srcStep, dst, dstStep, KprSizeL{roiWidth, roiHeight}, borderType, borderValue, 3, buffer);
    return largeCompoundHolds(call, spec) ?: close(call, tapsIn(spec));
}

KprStatus kpriMorphClose_32f_C4R_L(const Kpr32f* src, Kpr64s srcStep, Kpr32f* dst, Kpr64s dstStep, Kpr64s roiWidth,
                                   Kpr64s roiHeight, KprBorderType borderType, const Kpr32f* borderValue,
                                   const KprMorphAdvState* spec, Kpr8u* buffer) {
    const Call call(src, srcStep, dst, dstStep, KprSizeL{roiWidth, roiHeight}, borderType, borderValue, 4, buffer);
    return largeCompoundHolds(call, spec) ?: close(call, tapsIn(spec));
}

KprStatus kpriMorphTophat_8u_C1R_L(const Kpr8u* src, Kpr64s srcStep, Kpr8u* dst, Kpr64s dstStep, Kpr64s roiWidth,
                                   Kpr64s roiHeight, KprBorderType borderType, const Kpr8u* borderValue,
                                   const KprMorphAdvState* spec, Kpr8u* buffer) {
    const Call call(src, srcStep, dst, dstStep, KprSizeL{roiWidth, roiHeight}, borderType, borderValue, 1, buffer);
    return largeCompoundHolds(call, spec) ?: topHat(call, tapsIn(spec));
}

KprStatus kpriMorphTophat_8u_C3R_L(const Kpr8u* src, Kpr64s srcStep, Kpr8u* dst, Kpr64s dstStep, Kpr64s roiWidth,
                                   Kpr64s roiHeight, KprBorderType borderType, const Kpr8u* borderValue,
                                   const KprMorphAdvState* spec, Kpr8u* buffer) {
    const Call call(src, srcStep, dst, dstStep, KprSizeL{roiWidth, roiHeight}, borderType, borderValue, 3, buffer);
    return largeCompoundHolds(call, spec) ?: topHat(call, tapsIn(spec));
}

KprStatus kpriMorphTophat_8u_C4R_L(const Kpr8u* src, Kpr64s srcStep, Kpr8u* dst, Kpr64s dstStep, Kpr64s roiWidth,
                                   Kpr64s roiHeight, KprBorderType borderType, const Kpr8u* borderValue,
                                   const KprMorphAdvState* spec, Kpr8u* buffer) {
    const Call call(src, srcStep, dst, dstStep, KprSizeL{roiWidth, roiHeight}, borderType, borderValue, 4, buffer);
    return largeCompoundHolds(call, spec) ?: topHat(call, tapsIn(spec));
}

KprStatus kpriMorphTophat_16u_C1R_L(const Kpr16u* src, Kpr64s srcStep, Kpr16u* dst, Kpr64s dstStep, Kpr64s roiWidth,
                                    Kpr64s roiHeight, KprBorderType borderType, const Kpr16u* borderValue,
                                    const KprMorphAdvState* spec, Kpr8u* buffer) {
    const Call call(src, srcStep, dst, dstStep, KprSizeL{roiWidth, roiHeight}, borderType, borderValue, 1, buffer);
    return largeCompoundHolds(call, spec) ?: topHat(call, tapsIn(spec));
}

KprStatus kpriMorphTophat_16s_C1R_L(const Kpr16s* src, Kpr64s srcStep, Kpr16s* dst, Kpr64s dstStep, Kpr64s roiWidth,
                                    Kpr64s roiHeight, KprBorderType borderType, const Kpr16s* borderValue,
                                    const KprMorphAdvState* spec, Kpr8u* buffer) {
    const Call call(src, srcStep, dst, dstStep, KprSizeL{roiWidth, roiHeight}, borderType, borderValue, 1, buffer);
    return largeCompoundHolds(call, spec) ?: topHat(call, tapsIn(spec));
}

KprStatus kpriMorphTophat_32f_C1R_L(const Kpr32f* src, Kpr64s srcStep, Kpr32f* dst, Kpr64s dstStep, Kpr64s roiWidth,
                                    Kpr64s roiHeight, KprBorderType borderType, const Kpr32f* borderValue,
                                    const KprMorphAdvState* spec, Kpr8u* buffer) {
    const Call call(src, srcStep, dst, dstStep, KprSizeL{roiWidth, roiHeight}, borderType, borderValue, 1, buffer);
    return largeCompoundHolds(call, spec) ?: topHat(call, tapsIn(spec));
}

KprStatus kpriMorphTophat_32f_C3R_L(const Kpr32f* src, Kpr64s srcStep, Kpr32f* dst, Kpr64s dstStep, Kpr64s roiWidth,
                                    Kpr64s roiHeight, KprBorderType borderType, const Kpr32f* borderValue,
                                    const KprMorphAdvState* spec, Kpr8u* buffer) {
    const Call call(src, srcStep, dst, dstStep, KprSizeL{roiWidth, roiHeight}, borderType, borderValue, 3, buffer);
    return largeCompoundHolds(call, spec) ?: topHat(call, tapsIn(spec));
}

KprStatus kpriMorphTophat_32f_C4R_L(const Kpr32f* src, Kpr64s srcStep, Kpr32f* dst, Kpr64s dstStep, Kpr64s roiWidth,
                                    Kpr64s roiHeight, KprBorderType borderType, const Kpr32f* borderValue,
                                    const KprMorphAdvState* spec, Kpr8u* buffer) {
    const Call call(src, srcStep, dst, dstStep, KprSizeL{roiWidth, roiHeight}, borderType, borderValue, 4, buffer);
    return largeCompoundHolds(call, spec) ?: topHat(call, tapsIn(spec));
}

KprStatus kpriMorphBlackhat_8u_C1R_L(const Kpr8u* src, Kpr64s srcStep, Kpr8u* dst, Kpr64s dstStep, Kpr64s roiWidth,
                                     Kpr64s roiHeight, KprBorderType borderType, const Kpr8u* borderValue,
                                     const KprMorphAdvState* spec, Kpr8u* buffer) {
    const Call call(src, srcStep, dst, dstStep, KprSizeL{roiWidth, roiHeight}, borderType, borderValue, 1, buffer);
    return largeCompoundHolds(call, spec) ?: blackHat(call, tapsIn(spec));
}

KprStatus kpriMorphBlackhat_8u_C3R_L(const Kpr8u* src, Kpr64s srcStep, Kpr8u* dst, Kpr64s dstStep, Kpr64s roiWidth,
                                     Kpr64s roiHeight, KprBorderType borderType, const Kpr8u* borderValue,
                                     const KprMorphAdvState* spec, Kpr8u* buffer) {
    const Call call(src, srcStep, dst, dstStep, KprSizeL{roiWidth, roiHeight}, borderType, borderValue, 3, buffer);
    return largeCompoundHolds(call, spec) ?: blackHat(call, tapsIn(spec));
}

KprStatus kpriMorphBlackhat_8u_C4R_L(const Kpr8u* src, Kpr64s srcStep, Kpr8u* dst, Kpr64s dstStep, Kpr64s roiWidth,
                                     Kpr64s roiHeight, KprBorderType borderType, const Kpr8u* borderValue,
                                     const KprMorphAdvState* spec, Kpr8u* buffer) {
    const Call call(src, srcStep, dst, dstStep, KprSizeL{roiWidth, roiHeight}, borderType, borderValue, 4, buffer);
    return largeCompoundHolds(call, spec) ?: blackHat(call, tapsIn(spec));
}

KprStatus kpriMorphBlackhat_16u_C1R_L(const Kpr16u* src, Kpr64s srcStep, Kpr16u* dst, Kpr64s dstStep, Kpr64s roiWidth,
                                      Kpr64s roiHeight, KprBorderType borderType, const Kpr16u* borderValue,
                                      const KprMorphAdvState* spec, Kpr8u* buffer) {
    const Call call(src, srcStep, dst, dstStep, KprSizeL{roiWidth, roiHeight}, borderType, borderValue, 1, buffer);
    return largeCompoundHolds(call, spec) ?: blackHat(call, tapsIn(spec));
}

KprStatus kpriMorphBlackhat_16s_C1R_L(const Kpr16s* src, Kpr64s srcStep, Kpr16s* dst, Kpr64s dstStep, Kpr64s roiWidth,
                                      Kpr64s roiHeight, KprBorderType borderType, const Kpr16s* borderValue,
                                      const KprMorphAdvState* spec, Kpr8u* buffer) {
    const Call call(src, srcStep, dst, dstStep, KprSizeL{roiWidth, roiHeight}, borderType, borderValue, 1, buffer);
    return largeCompoundHolds(call, spec) ?: blackHat(call, tapsIn(spec));
}

KprStatus kpriMorphBlackhat_32f_C1R_L(const Kpr32f* src, Kpr64s srcStep, Kpr32f* dst, Kpr64s dstStep, Kpr64s roiWidth,
                                      Kpr64s roiHeight, KprBorderType borderType, const Kpr32f* borderValue,
                                      const KprMorphAdvState* spec, Kpr8u* buffer) {
    const Call call(src, srcStep, dst, dstStep, KprSizeL{roiWidth, roiHeight}, borderType, borderValue, 1, buffer);
    return largeCompoundHolds(call, spec) ?: blackHat(call, tapsIn(spec));
}

KprStatus kpriMorphBlackhat_32f_C3R_L(const Kpr32f* src, Kpr64s srcStep, Kpr32f* dst, Kpr64s dstStep, Kpr64s roiWidth,
                                      Kpr64s roiHeight, KprBorderType borderType, const Kpr32f* borderValue,
                                      const KprMorphAdvState* spec, Kpr8u* buffer) {
    const Call call(src, srcStep, dst, dstStep, KprSizeL{roiWidth, roiHeight}, borderType, borderValue, 3, buffer);
    return largeCompoundHolds(call, spec) ?: blackHat(call, tapsIn(spec));
}

KprStatus kpriMorphBlackhat_32f_C4R_L(const Kpr32f* src, Kpr64s srcStep, Kpr32f* dst, Kpr64s dstStep, Kpr64s roiWidth,
                                      Kpr64s roiHeight, KprBorderType borderType, const Kpr32f* borderValue,
                                      const KprMorphAdvState* spec, Kpr8u* buffer) {
    const Call call(src, srcStep, dst, dstStep, KprSizeL{roiWidth, roiHeight}, borderType, borderValue, 4, buffer);
    return largeCompoundHolds(call, spec) ?: blackHat(call, tapsIn(spec));
}

KprStatus kpriMorphGradient_8u_C1R_L(const Kpr8u* src, Kpr64s srcStep, Kpr8u* dst, Kpr64s dstStep, Kpr64s roiWidth,
                                     Kpr64s roiHeight, KprBorderType borderType, const Kpr8u* borderValue,
                                     const KprMorphAdvState* spec, Kpr8u* buffer) {
    const Call call(src, srcStep, dst, dstStep, KprSizeL{roiWidth, roiHeight}, borderType, borderValue, 1, buffer);
    return largeCallHolds(InPlace::Served, call, spec) ?: gradient(call, tapsIn(spec));
}

KprStatus kpriMorphGradient_8u_C3R_L(const Kpr8u* src, Kpr64s srcStep, Kpr8u* dst, Kpr64s dstStep, Kpr64s roiWidth,
                                     Kpr64s roiHeight, KprBorderType borderType, const Kpr8u* borderValue,
                                     const KprMorphAdvState* spec, Kpr8u* buffer) {
    const Call call(src, srcStep, dst, dstStep, KprSizeL{roiWidth, roiHeight}, borderType, borderValue, 3, buffer);
    return largeCallHolds(InPlace::Served, call, spec) ?: gradient(call, tapsIn(spec));
}

KprStatus kpriMorphGradient_8u_C4R_L(const Kpr8u* src, Kpr64s srcStep, Kpr8u* dst, Kpr64s dstStep, Kpr64s roiWidth,
                                     Kpr64s roiHeight, KprBorderType borderType, const Kpr8u* borderValue,
                                     const KprMorphAdvState* spec, Kpr8u* buffer) {
    const Call call(src, srcStep, dst, dstStep, KprSizeL{roiWidth, roiHeight}, borderType, borderValue, 4, buffer);
    return largeCallHolds(InPlace::Served, call, spec) ?: gradient(call, tapsIn(spec));
}

KprStatus kpriMorphGradient_16u_C1R_L(const Kpr16u* src, Kpr64s srcStep, Kpr16u* dst, Kpr64s dstStep, Kpr64s roiWidth,
                                      Kpr64s roiHeight, KprBorderType borderType, const Kpr16u* borderValue,
                                      const KprMorphAdvState* spec, Kpr8u* buffer) {
    const Call call(src, srcStep, dst, dstStep, KprSizeL{roiWidth, roiHeight}, borderType, borderValue, 1, buffer);
    return largeCallHolds(InPlace::Served, call, spec) ?: gradient(call, tapsIn(spec));
}

KprStatus kpriMorphGradient_16s_C1R_L(const Kpr16s* src, Kpr64s srcStep, Kpr16s* dst, Kpr64s dstStep, Kpr64s roiWidth,
                                      Kpr64s roiHeight, KprBorderType borderType, const Kpr16s* borderValue,
                                      const KprMorphAdvState* spec, Kpr8u* buffer) {
    const Call call(src, srcStep, dst, dstStep, KprSizeL{roiWidth, roiHeight}, borderType, borderValue, 1, buffer);
    return largeCallHolds(InPlace::Refused, call, spec) ?: gradient(call, tapsIn(spec));
}

KprStatus kpriMorphGradient_32f_C1R_L(const Kpr32f* src, Kpr64s srcStep, Kpr32f* dst, Kpr64s dstStep, Kpr64s roiWidth,
                                      Kpr64s roiHeight, KprBorderType borderType, const Kpr32f* borderValue,
                                      const KprMorphAdvState* spec, Kpr8u* buffer) {
    const Call call(src, srcStep, dst, dstStep, KprSizeL{roiWidth, roiHeight}, borderType, borderValue, 1, buffer);
    return largeCallHolds(InPlace::Served, call, spec) ?: gradient(call, tapsIn(spec));
}

KprStatus kpriMorphGradient_32f_C3R_L(const Kpr32f* src, Kpr64s srcStep, Kpr32f* dst, Kpr64s dstStep, Kpr64s roiWidth,
                                      Kpr64s roiHeight, KprBorderType borderType, const Kpr32f* borderValue,
                                      const KprMorphAdvState* spec, Kpr8u* buffer) {
    const Call call(src, srcStep, dst, dstStep, KprSizeL{roiWidth, roiHeight}, borderType, borderValue, 3, buffer);
    return largeCallHolds(InPlace::Served, call, spec) ?: gradient(call, tapsIn(spec));
}

KprStatus kpriMorphGradient_32f_C4R_L(const Kpr32f* src, Kpr64s srcStep, Kpr32f* dst, Kpr64s dstStep, Kpr64s roiWidth,
                                      Kpr64s roiHeight, KprBorderType borderType, const Kpr32f* borderValue,
                                      const KprMorphAdvState* spec, Kpr8u* buffer) {
    const Call call(src, srcStep, dst, dstStep, KprSizeL{roiWidth, roiHeight}, borderType, borderValue, 4, buffer);
    return largeCallHolds(InPlace::Served, call, spec) ?: gradient(call, tapsIn(spec));
}
