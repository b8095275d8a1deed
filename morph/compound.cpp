// Opening, closing, top-hat, black-hat and gradient with 32-bit sizes and steps.
#include "morph/compound.h"

namespace n0::morph {
namespace {

KprStatus getSize(KprSize roi, KprSize mask, int elementSize, int channels, int* specSize, int* bufferSize) {
    const Extents e = {roi.width, roi.height, mask.width, mask.height};
    const Bytes width = e.paddedWidth(), height = e.paddedHeight();
    const Bytes between = (height + e.height - 1) * roundUp((width + e.width - 1) * channels * elementSize, 32);
    int spec = 0, buffer = 0;
    const KprStatus status = firstFailure(notNull(specSize, bufferSize), roiHolds(roi), roiHolds(mask)) ?:
                             putSize(width * height + 2 * stateSize(e) + 32, &spec) ?:
                             putSize(between + 2 * workSize(e, elementSize, channels), &buffer);
    if (status != kprStatusOk) return status;
    *specSize = spec;
    *bufferSize = buffer;
    return kprStatusOk;
}

KprStatus init(KprSize roi, const Kpr8u* mask, KprSize maskSize, KprMorphAdvState* spec, const Kpr8u* buffer) {
    const KprStatus status = firstFailure(notNull(mask, spec, buffer), roiHolds(roi), roiHolds(maskSize));
    if (status != kprStatusOk) return status;
    const Extents e = {roi.width, roi.height, maskSize.width, maskSize.height};
    fillPair<MorphPair, Kpr32s>(spec, mask, maskSize.width, maskSize.height, stateSize(e));
    return kprStatusOk;
}

TapsPair tapsIn(const KprMorphAdvState* spec) { return pairOf<MorphPair, Kpr32s>(spec); }

}  // namespace
}  // namespace n0::morph

using namespace n0;
using namespace n0::morph;

KprStatus kpriMorphAdvGetSize_8u_C1R(KprSize roiSize, KprSize maskSize, int* specSize, int* bufferSize) {
    return getSize(roiSize, maskSize, sizeof(Kpr8u), 1, specSize, bufferSize);
}

KprStatus kpriMorphAdvGetSize_8u_C3R(KprSize roiSize, KprSize maskSize, int* specSize, int* bufferSize) {
    return getSize(roiSize, maskSize, sizeof(Kpr8u), 3, specSize, bufferSize);
}

KprStatus kpriMorphAdvGetSize_8u_C4R(KprSize roiSize, KprSize maskSize, int* specSize, int* bufferSize) {
    return getSize(roiSize, maskSize, sizeof(Kpr8u), 4, specSize, bufferSize);
}

KprStatus kpriMorphAdvGetSize_16u_C1R(KprSize roiSize, KprSize maskSize, int* specSize, int* bufferSize) {
    return getSize(roiSize, maskSize, sizeof(Kpr16u), 1, specSize, bufferSize);
}

KprStatus kpriMorphAdvGetSize_16s_C1R(KprSize roiSize, KprSize maskSize, int* specSize, int* bufferSize) {
    return getSize(roiSize, maskSize, sizeof(Kpr16s), 1, specSize, bufferSize);
}

KprStatus kpriMorphAdvGetSize_32f_C1R(KprSize roiSize, KprSize maskSize, int* specSize, int* bufferSize) {
    return getSize(roiSize, maskSize, sizeof(Kpr32f), 1, specSize, bufferSize);
}

KprStatus kpriMorphAdvGetSize_32f_C3R(KprSize roiSize, KprSize maskSize, int* specSize, int* bufferSize) {
    return getSize(roiSize, maskSize, sizeof(Kpr32f), 3, specSize, bufferSize);
}

KprStatus kpriMorphAdvGetSize_32f_C4R(KprSize roiSize, KprSize maskSize, int* specSize, int* bufferSize) {
    return getSize(roiSize, maskSize, sizeof(Kpr32f), 4, specSize, bufferSize);
}

KprStatus kpriMorphAdvInit_8u_C1R(KprSize roiSize, const Kpr8u* mask, KprSize maskSize, KprMorphAdvState* spec,
                                  Kpr8u* buffer) {
    return init(roiSize, mask, maskSize, spec, buffer);
}

KprStatus kpriMorphAdvInit_8u_C3R(KprSize roiSize, const Kpr8u* mask, KprSize maskSize, KprMorphAdvState* spec,
                                  Kpr8u* buffer) {
    return init(roiSize, mask, maskSize, spec, buffer);
}

KprStatus kpriMorphAdvInit_8u_C4R(KprSize roiSize, const Kpr8u* mask, KprSize maskSize, KprMorphAdvState* spec,
                                  Kpr8u* buffer) {
    return init(roiSize, mask, maskSize, spec, buffer);
}

KprStatus kpriMorphAdvInit_16u_C1R(KprSize roiSize, const Kpr8u* mask, KprSize maskSize, KprMorphAdvState* spec,
                                   Kpr8u* buffer) {
    return init(roiSize, mask, maskSize, spec, buffer);
}

KprStatus kpriMorphAdvInit_16s_C1R(KprSize roiSize, const Kpr8u* mask, KprSize maskSize, KprMorphAdvState* spec,
                                   Kpr8u* buffer) {
    return init(roiSize, mask, maskSize, spec, buffer);
}

KprStatus kpriMorphAdvInit_32f_C1R(KprSize roiSize, const Kpr8u* mask, KprSize maskSize, KprMorphAdvState* spec,
                                   Kpr8u* buffer) {
    return init(roiSize, mask, maskSize, spec, buffer);
}

KprStatus kpriMorphAdvInit_32f_C3R(KprSize roiSize, const Kpr8u* mask, KprSize maskSize, KprMorphAdvState* spec,
                                   Kpr8u* buffer) {
    return init(roiSize, mask, maskSize, spec, buffer);
}

KprStatus kpriMorphAdvInit_32f_C4R(KprSize roiSize, const Kpr8u* mask, KprSize maskSize, KprMorphAdvState* spec,
                                   Kpr8u* buffer) {
    return init(roiSize, mask, maskSize, spec, buffer);
}

KprStatus kpriMorphOpenBorder_8u_C1R(const Kpr8u* src, int srcStep, Kpr8u* dst, int dstStep, KprSize roiSize,
                                     KprBorderType borderType, Kpr8u borderValue, const KprMorphAdvState* spec,
                                     Kpr8u* buffer) {
    const Call call(src, srcStep, dst, dstStep, roiSize, borderType, &borderValue, 1, buffer);
    return callHolds(InPlace::Served, call, spec) ?: open(call, tapsIn(spec));
}

KprStatus kpriMorphOpenBorder_8u_C3R(const Kpr8u* src, int srcStep, Kpr8u* dst, int dstStep, KprSize roiSize,
                                     KprBorderType borderType, const Kpr8u* borderValue, const KprMorphAdvState* spec,
                                     Kpr8u* buffer) {
    const Call call(src, srcStep, dst, dstStep, roiSize, borderType, borderValue, 3, buffer);
    return callHolds(InPlace::Served, call, spec) ?: open(call, tapsIn(spec));
}

KprStatus kpriMorphOpenBorder_8u_C4R(const Kpr8u* src, int srcStep, Kpr8u* dst, int dstStep, KprSize roiSize,
                                     KprBorderType borderType, const Kpr8u* borderValue, const KprMorphAdvState* spec,
                                     Kpr8u* buffer) {
    const Call call(src, srcStep, dst, dstStep, roiSize, borderType, borderValue, 4, buffer);
    return callHolds(InPlace::Served, call, spec) ?: open(call, tapsIn(spec));
}

KprStatus kpriMorphOpenBorder_16u_C1R(const Kpr16u* src, int srcStep, Kpr16u* dst, int dstStep, KprSize roiSize,
                                      KprBorderType borderType, Kpr16u borderValue, const KprMorphAdvState* spec,
                                      Kpr8u* buffer) {
    const Call call(src, srcStep, dst, dstStep, roiSize, borderType, &borderValue, 1, buffer);
    return callHolds(InPlace::Served, call, spec) ?: open(call, tapsIn(spec));
}

KprStatus kpriMorphOpenBorder_16s_C1R(const Kpr16s* src, int srcStep, Kpr16s* dst, int dstStep, KprSize roiSize,
                                      KprBorderType borderType, Kpr16s borderValue, const KprMorphAdvState* spec,
                                      Kpr8u* buffer) {
    const Call call(src, srcStep, dst, dstStep, roiSize, borderType, &borderValue, 1, buffer);
    return callHolds(InPlace::Served, call, spec) ?: open(call, tapsIn(spec));
}

KprStatus kpriMorphOpenBorder_32f_C1R(const Kpr32f* src, int srcStep, Kpr32f* dst, int dstStep, KprSize roiSize,
                                      KprBorderType borderType, Kpr32f borderValue, const KprMorphAdvState* spec,
                                      Kpr8u* buffer) {
    const Call call(src, srcStep, dst, dstStep, roiSize, borderType, &borderValue, 1, buffer);
    return callHolds(InPlace::Served, call, spec) ?: open(call, tapsIn(spec));
}

KprStatus kpriMorphOpenBorder_32f_C3R(const Kpr32f* src, int srcStep, Kpr32f* dst, int dstStep, KprSize roiSize,
                                      KprBorderType borderType, const Kpr32f* borderValue, const KprMorphAdvState* spec,
                                      Kpr8u* buffer) {
    const Call call(src, srcStep, dst, dstStep, roiSize, borderType, borderValue, 3, buffer);
    return callHolds(InPlace::Served, call, spec) ?: open(call, tapsIn(spec));
}

KprStatus kpriMorphOpenBorder_32f_C4R(const Kpr32f* src, int srcStep, Kpr32f* dst, int dstStep, KprSize roiSize,
                                      KprBorderType borderType, const Kpr32f* borderValue, const KprMorphAdvState* spec,
                                      Kpr8u* buffer) {
    const Call call(src, srcStep, dst, dstStep, roiSize, borderType, borderValue, 4, buffer);
    return callHolds(InPlace::Served, call, spec) ?: open(call, tapsIn(spec));
}

KprStatus kpriMorphCloseBorder_8u_C1R(const Kpr8u* src, int srcStep, Kpr8u* dst, int dstStep, KprSize roiSize,
                                      KprBorderType borderType, Kpr8u borderValue, const KprMorphAdvState* spec,
                                      Kpr8u* buffer) {
    const Call call(src, srcStep, dst, dstStep, roiSize, borderType, &borderValue, 1, buffer);
    return callHolds(InPlace::Served, call, spec) ?: close(call, tapsIn(spec));
}

KprStatus kpriMorphCloseBorder_8u_C3R(const Kpr8u* src, int srcStep, Kpr8u* dst, int dstStep, KprSize roiSize,
                                      KprBorderType borderType, const Kpr8u* borderValue, const KprMorphAdvState* spec,
                                      Kpr8u* buffer) {
    const Call call(src, srcStep, dst, dstStep, roiSize, borderType, borderValue, 3, buffer);
    return callHolds(InPlace::Served, call, spec) ?: close(call, tapsIn(spec));
}

KprStatus kpriMorphCloseBorder_8u_C4R(const Kpr8u* src, int srcStep, Kpr8u* dst, int dstStep, KprSize roiSize,
                                      KprBorderType borderType, const Kpr8u* borderValue, const KprMorphAdvState* spec,
                                      Kpr8u* buffer) {
    const Call call(src, srcStep, dst, dstStep, roiSize, borderType, borderValue, 4, buffer);
    return callHolds(InPlace::Served, call, spec) ?: close(call, tapsIn(spec));
}

KprStatus kpriMorphCloseBorder_16u_C1R(const Kpr16u* src, int srcStep, Kpr16u* dst, int dstStep, KprSize roiSize,
                                       KprBorderType borderType, Kpr16u borderValue, const KprMorphAdvState* spec,
                                       Kpr8u* buffer) {
    const Call call(src, srcStep, dst, dstStep, roiSize, borderType, &borderValue, 1, buffer);
    return callHolds(InPlace::Served, call, spec) ?: close(call, tapsIn(spec));
}

KprStatus kpriMorphCloseBorder_16s_C1R(const Kpr16s* src, int srcStep, Kpr16s* dst, int dstStep, KprSize roiSize,
                                       KprBorderType borderType, Kpr16s borderValue, const KprMorphAdvState* spec,
                                       Kpr8u* buffer) {
    const Call call(src, srcStep, dst, dstStep, roiSize, borderType, &borderValue, 1, buffer);
    return callHolds(InPlace::Served, call, spec) ?: close(call, tapsIn(spec));
}

KprStatus kpriMorphCloseBorder_32f_C1R(const Kpr32f* src, int srcStep, Kpr32f* dst, int dstStep, KprSize roiSize,
                                       KprBorderType borderType, Kpr32f borderValue, const KprMorphAdvState* spec,
                                       Kpr8u* buffer) {
    const Call call(src, srcStep, dst, dstStep, roiSize, borderType, &borderValue, 1, buffer);
    return callHolds(InPlace::Served, call, spec) ?: close(call, tapsIn(spec));
}

KprStatus kpriMorphCloseBorder_32f_C3R(const Kpr32f* src, int srcStep, Kpr32f* dst, int dstStep, KprSize roiSize,
                                       KprBorderType borderType, const Kpr32f* borderValue,
                                       const KprMorphAdvState* spec, Kpr8u* buffer) {
    const Call call(src, srcStep, dst, dstStep, roiSize, borderType, borderValue, 3, buffer);
    return callHolds(InPlace::Served, call, spec) ?: close(call, tapsIn(spec));
}

KprStatus kpriMorphCloseBorder_32f_C4R(const Kpr32f* src, int srcStep, Kpr32f* dst, int dstStep, KprSize roiSize,
                                       KprBorderType borderType, const Kpr32f* borderValue,
                                       const KprMorphAdvState* spec, Kpr8u* buffer) {
    const Call call(src, srcStep, dst, dstStep, roiSize, borderType, borderValue, 4, buffer);
    return callHolds(InPlace::Served, call, spec) ?: close(call, tapsIn(spec));
}

KprStatus kpriMorphTophatBorder_8u_C1R(const Kpr8u* src, int srcStep, Kpr8u* dst, int dstStep, KprSize roiSize,
                                       KprBorderType borderType, Kpr8u borderValue, const KprMorphAdvState* spec,
                                       Kpr8u* buffer) {
    const Call call(src, srcStep, dst, dstStep, roiSize, borderType, &borderValue, 1, buffer);
    return callHolds(InPlace::Served, call, spec) ?: topHat(call, tapsIn(spec));
}

KprStatus kpriMorphTophatBorder_8u_C3R(const Kpr8u* src, int srcStep, Kpr8u* dst, int dstStep, KprSize roiSize,
                                       KprBorderType borderType, const Kpr8u* borderValue, const KprMorphAdvState* spec,
                                       Kpr8u* buffer) {
    const Call call(src, srcStep, dst, dstStep, roiSize, borderType, borderValue, 3, buffer);
    return callHolds(InPlace::Served, call, spec) ?: topHat(call, tapsIn(spec));
}

KprStatus kpriMorphTophatBorder_8u_C4R(const Kpr8u* src, int srcStep, Kpr8u* dst, int dstStep, KprSize roiSize,
                                       KprBorderType borderType, const Kpr8u* borderValue, const KprMorphAdvState* spec,
                                       Kpr8u* buffer) {
    const Call call(src, srcStep, dst, dstStep, roiSize, borderType, borderValue, 4, buffer);
    return callHolds(InPlace::Served, call, spec) ?: topHat(call, tapsIn(spec));
}

KprStatus kpriMorphTophatBorder_16u_C1R(const Kpr16u* src, int srcStep, Kpr16u* dst, int dstStep, KprSize roiSize,
                                        KprBorderType borderType, Kpr16u borderValue, const KprMorphAdvState* spec,
                                        Kpr8u* buffer) {
    const Call call(src, srcStep, dst, dstStep, roiSize, borderType, &borderValue, 1, buffer);
    return callHolds(InPlace::Served, call, spec) ?: topHat(call, tapsIn(spec));
}

KprStatus kpriMorphTophatBorder_16s_C1R(const Kpr16s* src, int srcStep, Kpr16s* dst, int dstStep, KprSize roiSize,
                                        KprBorderType borderType, Kpr16s borderValue, const KprMorphAdvState* spec,
                                        Kpr8u* buffer) {
    const Call call(src, srcStep, dst, dstStep, roiSize, borderType, &borderValue, 1, buffer);
    return callHolds(InPlace::Served, call, spec) ?: topHat(call, tapsIn(spec));
}

KprStatus kpriMorphTophatBorder_32f_C1R(const Kpr32f* src, int srcStep, Kpr32f* dst, int dstStep, KprSize roiSize,
                                        KprBorderType borderType, Kpr32f borderValue, const KprMorphAdvState* spec,
                                        Kpr8u* buffer) {
    const Call call(src, srcStep, dst, dstStep, roiSize, borderType, &borderValue, 1, buffer);
    return callHolds(InPlace::Served, call, spec) ?: topHat(call, tapsIn(spec));
}

KprStatus kpriMorphTophatBorder_32f_C3R(const Kpr32f* src, int srcStep, Kpr32f* dst, int dstStep, KprSize roiSize,
                                        KprBorderType borderType, const Kpr32f* borderValue,
                                        const KprMorphAdvState* spec, Kpr8u* buffer) {
    const Call call(src, srcStep, dst, dstStep, roiSize, borderType, borderValue, 3, buffer);
    return callHolds(InPlace::Served, call, spec) ?: topHat(call, tapsIn(spec));
}

KprStatus kpriMorphTophatBorder_32f_C4R(const Kpr32f* src, int srcStep, Kpr32f* dst, int dstStep, KprSize roiSize,
                                        KprBorderType borderType, const Kpr32f* borderValue,
                                        const KprMorphAdvState* spec, Kpr8u* buffer) {
    const Call call(src, srcStep, dst, dstStep, roiSize, borderType, borderValue, 4, buffer);
    return callHolds(InPlace::Served, call, spec) ?: topHat(call, tapsIn(spec));
}

KprStatus kpriMorphBlackhatBorder_8u_C1R(const Kpr8u* src, int srcStep, Kpr8u* dst, int dstStep, KprSize roiSize,
                                         KprBorderType borderType, Kpr8u borderValue, const KprMorphAdvState* spec,
                                         Kpr8u* buffer) {
    const Call call(src, srcStep, dst, dstStep, roiSize, borderType, &borderValue, 1, buffer);
    return callHolds(InPlace::Served, call, spec) ?: blackHat(call, tapsIn(spec));
}

KprStatus kpriMorphBlackhatBorder_8u_C3R(const Kpr8u* src, int srcStep, Kpr8u* dst, int dstStep, KprSize roiSize,
                                         KprBorderType borderType, const Kpr8u* borderValue,
                                         const KprMorphAdvState* spec, Kpr8u* buffer) {
    const Call call(src, srcStep, dst, dstStep, roiSize, borderType, borderValue, 3, buffer);
    return callHolds(InPlace::Served, call, spec) ?: blackHat(call, tapsIn(spec));
}

KprStatus kpriMorphBlackhatBorder_8u_C4R(const Kpr8u* src, int srcStep, Kpr8u* dst, int dstStep, KprSize roiSize,
                                         KprBorderType borderType, const Kpr8u* borderValue,
                                         const KprMorphAdvState* spec, Kpr8u* buffer) {
    const Call call(src, srcStep, dst, dstStep, roiSize, borderType, borderValue, 4, buffer);
    return callHolds(InPlace::Served, call, spec) ?: blackHat(call, tapsIn(spec));
}

KprStatus kpriMorphBlackhatBorder_16u_C1R(const Kpr16u* src, int srcStep, Kpr16u* dst, int dstStep, KprSize roiSize,
                                          KprBorderType borderType, Kpr16u borderValue, const KprMorphAdvState* spec,
                                          Kpr8u* buffer) {
    const Call call(src, srcStep, dst, dstStep, roiSize, borderType, &borderValue, 1, buffer);
    return callHolds(InPlace::Served, call, spec) ?: blackHat(call, tapsIn(spec));
}

KprStatus kpriMorphBlackhatBorder_16s_C1R(const Kpr16s* src, int srcStep, Kpr16s* dst, int dstStep, KprSize roiSize,
                                          KprBorderType borderType, Kpr16s borderValue, const KprMorphAdvState* spec,
                                          Kpr8u* buffer) {
    const Call call(src, srcStep, dst, dstStep, roiSize, borderType, &borderValue, 1, buffer);
    return callHolds(InPlace::Served, call, spec) ?: blackHat(call, tapsIn(spec));
}

KprStatus kpriMorphBlackhatBorder_32f_C1R(const Kpr32f* src, int srcStep, Kpr32f* dst, int dstStep, KprSize roiSize,
                                          KprBorderType borderType, Kpr32f borderValue, const KprMorphAdvState* spec,
                                          Kpr8u* buffer) {
    const Call call(src, srcStep, dst, dstStep, roiSize, borderType, &borderValue, 1, buffer);
    return callHolds(InPlace::Served, call, spec) ?: blackHat(call, tapsIn(spec));
}

KprStatus kpriMorphBlackhatBorder_32f_C3R(const Kpr32f* src, int srcStep, Kpr32f* dst, int dstStep, KprSize roiSize,
                                          KprBorderType borderType, const Kpr32f* borderValue,
                                          const KprMorphAdvState* spec, Kpr8u* buffer) {
    const Call call(src, srcStep, dst, dstStep, roiSize, borderType, borderValue, 3, buffer);
    return callHolds(InPlace::Served, call, spec) ?: blackHat(call, tapsIn(spec));
}

KprStatus kpriMorphBlackhatBorder_32f_C4R(const Kpr32f* src, int srcStep, Kpr32f* dst, int dstStep, KprSize roiSize,
                                          KprBorderType borderType, const Kpr32f* borderValue,
                                          const KprMorphAdvState* spec, Kpr8u* buffer) {
    const Call call(src, srcStep, dst, dstStep, roiSize, borderType, borderValue, 4, buffer);
    return callHolds(InPlace::Served, call, spec) ?: blackHat(call, tapsIn(spec));
}

KprStatus kpriMorphGradientBorder_8u_C1R(const Kpr8u* src, int srcStep, Kpr8u* dst, int dstStep, KprSize roiSize,
                                         KprBorderType borderType, Kpr8u borderValue, const KprMorphAdvState* spec,
                                         Kpr8u* buffer) {
    const Call call(src, srcStep, dst, dstStep, roiSize, borderType, &borderValue, 1, buffer);
    return callHolds(InPlace::Served, call, spec) ?: gradient(call, tapsIn(spec));
}

KprStatus kpriMorphGradientBorder_8u_C3R(const Kpr8u* src, int srcStep, Kpr8u* dst, int dstStep, KprSize roiSize,
                                         KprBorderType borderType, const Kpr8u* borderValue,
                                         const KprMorphAdvState* spec, Kpr8u* buffer) {
    const Call call(src, srcStep, dst, dstStep, roiSize, borderType, borderValue, 3, buffer);
    return callHolds(InPlace::Served, call, spec) ?: gradient(call, tapsIn(spec));
}

KprStatus kpriMorphGradientBorder_8u_C4R(const Kpr8u* src, int srcStep, Kpr8u* dst, int dstStep, KprSize roiSize,
                                         KprBorderType borderType, const Kpr8u* borderValue,
                                         const KprMorphAdvState* spec, Kpr8u* buffer) {
    const Call call(src, srcStep, dst, dstStep, roiSize, borderType, borderValue, 4, buffer);
    return callHolds(InPlace::Served, call, spec) ?: gradient(call, tapsIn(spec));
}

KprStatus kpriMorphGradientBorder_16u_C1R(const Kpr16u* src, int srcStep, Kpr16u* dst, int dstStep, KprSize roiSize,
                                          KprBorderType borderType, Kpr16u borderValue, const KprMorphAdvState* spec,
                                          Kpr8u* buffer) {
    const Call call(src, srcStep, dst, dstStep, roiSize, borderType, &borderValue, 1, buffer);
    return callHolds(InPlace::Served, call, spec) ?: gradient(call, tapsIn(spec));
}

KprStatus kpriMorphGradientBorder_16s_C1R(const Kpr16s* src, int srcStep, Kpr16s* dst, int dstStep, KprSize roiSize,
                                          KprBorderType borderType, Kpr16s borderValue, const KprMorphAdvState* spec,
                                          Kpr8u* buffer) {
    const Call call(src, srcStep, dst, dstStep, roiSize, borderType, &borderValue, 1, buffer);
    return callHolds(InPlace::Refused, call, spec) ?: gradient(call, tapsIn(spec));
}

KprStatus kpriMorphGradientBorder_32f_C1R(const Kpr32f* src, int srcStep, Kpr32f* dst, int dstStep, KprSize roiSize,
                                          KprBorderType borderType, Kpr32f borderValue, const KprMorphAdvState* spec,
                                          Kpr8u* buffer) {
    const Call call(src, srcStep, dst, dstStep, roiSize, borderType, &borderValue, 1, buffer);
    return callHolds(InPlace::Served, call, spec) ?: gradient(call, tapsIn(spec));
}

KprStatus kpriMorphGradientBorder_32f_C3R(const Kpr32f* src, int srcStep, Kpr32f* dst, int dstStep, KprSize roiSize,
                                          KprBorderType borderType, const Kpr32f* borderValue,
                                          const KprMorphAdvState* spec, Kpr8u* buffer) {
    const Call call(src, srcStep, dst, dstStep, roiSize, borderType, borderValue, 3, buffer);
    return callHolds(InPlace::Served, call, spec) ?: gradient(call, tapsIn(spec));
}

KprStatus kpriMorphGradientBorder_32f_C4R(const Kpr32f* src, int srcStep, Kpr32f* dst, int dstStep, KprSize roiSize,
                                          KprBorderType borderType, const Kpr32f* borderValue,
                                          const KprMorphAdvState* spec, Kpr8u* buffer) {
    const Call call(src, srcStep, dst, dstStep, roiSize, borderType, borderValue, 4, buffer);
    return callHolds(InPlace::Served, call, spec) ?: gradient(call, tapsIn(spec));
}
