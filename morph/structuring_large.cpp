// Dilation and erosion with 64-bit sizes and steps: the plans of the 32-bit forms behind other checks and state blocks.
#include "morph/extremum.h"

namespace n0::morph {
namespace {

KprStatus getSpecSize(Extents e, Kpr64s* specSize) {
    return firstFailure(notNull(specSize), largeSizesHold(e)) ?: putSize(stateSizeLarge(e), specSize);
}

KprStatus getBufferSize(Extents e, KprDataType dataType, int numChannels, Kpr64s* bufferSize) {
    return firstFailure(notNull(bufferSize), largeSizesHold(e), typeServed(dataType), channelsServed(numChannels))
               ?: putSize(workSize(e, elementSizeOf(dataType), numChannels), bufferSize);
}

KprStatus init(Extents e, const Kpr8u* mask, KprMorphState* spec) {
    const KprStatus status = firstFailure(notNull(mask, spec), largeSizesHold(e));
    if (status == kprStatusOk) fillState<Kpr64s>(spec, mask, e.maskWidth, e.maskHeight, Orientation::AsGiven);
    return status;
}

}  // namespace
}  // namespace n0::morph

using namespace n0;
using namespace n0::morph;

KprStatus kpriDilateGetSpecSize_L(Kpr64s roiWidth, Kpr64s roiHeight, Kpr64s maskWidth, Kpr64s maskHeight,
                                  Kpr64s* specSize) {
    return getSpecSize({roiWidth, roiHeight, maskWidth, maskHeight}, specSize);
}

KprStatus kpriErodeGetSpecSize_L(Kpr64s roiWidth, Kpr64s roiHeight, Kpr64s maskWidth, Kpr64s maskHeight,
                                 Kpr64s* specSize) {
    return getSpecSize({roiWidth, roiHeight, maskWidth, maskHeight}, specSize);
}

KprStatus kpriDilateGetBufferSize_L(Kpr64s roiWidth, Kpr64s roiHeight, Kpr64s maskWidth, Kpr64s maskHeight,
                                    KprDataType dataType, int numChannels, Kpr64s* bufferSize) {
    return getBufferSize({roiWidth, roiHeight, maskWidth, maskHeight}, dataType, numChannels, bufferSize);
}

KprStatus kpriErodeGetBufferSize_L(Kpr64s roiWidth, Kpr64s roiHeight, Kpr64s maskWidth, Kpr64s maskHeight,
                                   KprDataType dataType, int numChannels, Kpr64s* bufferSize) {
    return getBufferSize({roiWidth, roiHeight, maskWidth, maskHeight}, dataType, numChannels, bufferSize);
}

KprStatus kpriDilateInit_L(Kpr64s roiWidth, Kpr64s roiHeight, const Kpr8u* mask, Kpr64s maskWidth, Kpr64s maskHeight,
                           KprMorphState* spec) {
    return init({roiWidth, roiHeight, maskWidth, maskHeight}, mask, spec);
}

KprStatus kpriErodeInit_L(Kpr64s roiWidth, Kpr64s roiHeight, const Kpr8u* mask, Kpr64s maskWidth, Kpr64s maskHeight,
                          KprMorphState* spec) {
    return init({roiWidth, roiHeight, maskWidth, maskHeight}, mask, spec);
}

KprStatus kpriDilate_8u_C1R_L(const Kpr8u* src, Kpr64s srcStep, Kpr8u* dst, Kpr64s dstStep, Kpr64s roiWidth,
                              Kpr64s roiHeight, KprBorderType borderType, const Kpr8u* borderValue,
                              const KprMorphState* spec, Kpr8u* buffer) {
    const Call call(src, srcStep, dst, dstStep, KprSizeL{roiWidth, roiHeight}, borderType, borderValue, 1, buffer);
    return largeCallHolds(InPlace::Served, call, spec) ?: extremum<Dilation<Kpr8u>>(call, tapsOf<Kpr64s>(spec));
}

KprStatus kpriDilate_8u_C3R_L(const Kpr8u* src, Kpr64s srcStep, Kpr8u* dst, Kpr64s dstStep, Kpr64s roiWidth,
                              Kpr64s roiHeight, KprBorderType borderType, const Kpr8u* borderValue,
                              const KprMorphState* spec, Kpr8u* buffer) {
    const Call call(src, srcStep, dst, dstStep, KprSizeL{roiWidth, roiHeight}, borderType, borderValue, 3, buffer);
    return largeCallHolds(InPlace::Served, call, spec) ?: extremum<Dilation<Kpr8u>>(call, tapsOf<Kpr64s>(spec));
}

KprStatus kpriDilate_8u_C4R_L(const Kpr8u* src, Kpr64s srcStep, Kpr8u* dst, Kpr64s dstStep, Kpr64s roiWidth,
                              Kpr64s roiHeight, KprBorderType borderType, const Kpr8u* borderValue,
                              const KprMorphState* spec, Kpr8u* buffer) {
    const Call call(src, srcStep, dst, dstStep, KprSizeL{roiWidth, roiHeight}, borderType, borderValue, 4, buffer);
    return largeCallHolds(InPlace::Served, call, spec) ?: extremum<Dilation<Kpr8u>>(call, tapsOf<Kpr64s>(spec));
}

KprStatus kpriDilate_16u_C1R_L(const Kpr16u* src, Kpr64s srcStep, Kpr16u* dst, Kpr64s dstStep, Kpr64s roiWidth,
                               Kpr64s roiHeight, KprBorderType borderType, const Kpr16u* borderValue,
                               const KprMorphState* spec, Kpr8u* buffer) {
    const Call call(src, srcStep, dst, dstStep, KprSizeL{roiWidth, roiHeight}, borderType, borderValue, 1, buffer);
    return largeCallHolds(InPlace::Served, call, spec) ?: extremum<Dilation<Kpr16u>>(call, tapsOf<Kpr64s>(spec));
}

KprStatus kpriDilate_16s_C1R_L(const Kpr16s* src, Kpr64s srcStep, Kpr16s* dst, Kpr64s dstStep, Kpr64s roiWidth,
                               Kpr64s roiHeight, KprBorderType borderType, const Kpr16s* borderValue,
                               const KprMorphState* spec, Kpr8u* buffer) {
    const Call call(src, srcStep, dst, dstStep, KprSizeL{roiWidth, roiHeight}, borderType, borderValue, 1, buffer);
    return largeCallHolds(InPlace::Refused, call, spec) ?: extremum<Dilation<Kpr16s>>(call, tapsOf<Kpr64s>(spec));
}

KprStatus kpriDilate_32f_C1R_L(const Kpr32f* src, Kpr64s srcStep, Kpr32f* dst, Kpr64s dstStep, Kpr64s roiWidth,
                               Kpr64s roiHeight, KprBorderType borderType, const Kpr32f* borderValue,
                               const KprMorphState* spec, Kpr8u* buffer) {
    const Call call(src, srcStep, dst, dstStep, KprSizeL{roiWidth, roiHeight}, borderType, borderValue, 1, buffer);
    return largeCallHolds(InPlace::Served, call, spec) ?: extremum<Dilation<Kpr32f>>(call, tapsOf<Kpr64s>(spec));
}

KprStatus kpriDilate_32f_C3R_L(const Kpr32f* src, Kpr64s srcStep, Kpr32f* dst, Kpr64s dstStep, Kpr64s roiWidth,
                               Kpr64s roiHeight, KprBorderType borderType, const Kpr32f* borderValue,
                               const KprMorphState* spec, Kpr8u* buffer) {
    const Call call(src, srcStep, dst, dstStep, KprSizeL{roiWidth, roiHeight}, borderType, borderValue, 3, buffer);
    return largeCallHolds(InPlace::Served, call, spec) ?: extremum<Dilation<Kpr32f>>(call, tapsOf<Kpr64s>(spec));
}

KprStatus kpriDilate_32f_C4R_L(const Kpr32f* src, Kpr64s srcStep, Kpr32f* dst, Kpr64s dstStep, Kpr64s roiWidth,
                               Kpr64s roiHeight, KprBorderType borderType, const Kpr32f* borderValue,
                               const KprMorphState* spec, Kpr8u* buffer) {
    const Call call(src, srcStep, dst, dstStep, KprSizeL{roiWidth, roiHeight}, borderType, borderValue, 4, buffer);
    return largeCallHolds(InPlace::Served, call, spec) ?: extremum<Dilation<Kpr32f>>(call, tapsOf<Kpr64s>(spec));
}

KprStatus kpriErode_8u_C1R_L(const Kpr8u* src, Kpr64s srcStep, Kpr8u* dst, Kpr64s dstStep, Kpr64s roiWidth,
                             Kpr64s roiHeight, KprBorderType borderType, const Kpr8u* borderValue,
                             const KprMorphState* spec, Kpr8u* buffer) {
    const Call call(src, srcStep, dst, dstStep, KprSizeL{roiWidth, roiHeight}, borderType, borderValue, 1, buffer);
    return largeCallHolds(InPlace::Served, call, spec) ?: extremum<Erosion<Kpr8u>>(call, tapsOf<Kpr64s>(spec));
}

KprStatus kpriErode_8u_C3R_L(const Kpr8u* src, Kpr64s srcStep, Kpr8u* dst, Kpr64s dstStep, Kpr64s roiWidth,
                             Kpr64s roiHeight, KprBorderType borderType, const Kpr8u* borderValue,
                             const KprMorphState* spec, Kpr8u* buffer) {
    const Call call(src, srcStep, dst, dstStep, KprSizeL{roiWidth, roiHeight}, borderType, borderValue, 3, buffer);
    return largeCallHolds(InPlace::Served, call, spec) ?: extremum<Erosion<Kpr8u>>(call, tapsOf<Kpr64s>(spec));
}

KprStatus kpriErode_8u_C4R_L(const Kpr8u* src, Kpr64s srcStep, Kpr8u* dst, Kpr64s dstStep, Kpr64s roiWidth,
                             Kpr64s roiHeight, KprBorderType borderType, const Kpr8u* borderValue,
                             const KprMorphState* spec, Kpr8u* buffer) {
    const Call call(src, srcStep, dst, dstStep, KprSizeL{roiWidth, roiHeight}, borderType, borderValue, 4, buffer);
    return largeCallHolds(InPlace::Served, call, spec) ?: extremum<Erosion<Kpr8u>>(call, tapsOf<Kpr64s>(spec));
}

KprStatus kpriErode_16u_C1R_L(const Kpr16u* src, Kpr64s srcStep, Kpr16u* dst, Kpr64s dstStep, Kpr64s roiWidth,
                              Kpr64s roiHeight, KprBorderType borderType, const Kpr16u* borderValue,
                              const KprMorphState* spec, Kpr8u* buffer) {
    const Call call(src, srcStep, dst, dstStep, KprSizeL{roiWidth, roiHeight}, borderType, borderValue, 1, buffer);
    return largeCallHolds(InPlace::Refused, call, spec) ?: extremum<Erosion<Kpr16u>>(call, tapsOf<Kpr64s>(spec));
}

KprStatus kpriErode_16s_C1R_L(const Kpr16s* src, Kpr64s srcStep, Kpr16s* dst, Kpr64s dstStep, Kpr64s roiWidth,
                              Kpr64s roiHeight, KprBorderType borderType, const Kpr16s* borderValue,
                              const KprMorphState* spec, Kpr8u* buffer) {
    const Call call(src, srcStep, dst, dstStep, KprSizeL{roiWidth, roiHeight}, borderType, borderValue, 1, buffer);
    return largeCallHolds(InPlace::Refused, call, spec) ?: extremum<Erosion<Kpr16s>>(call, tapsOf<Kpr64s>(spec));
}

KprStatus kpriErode_32f_C1R_L(const Kpr32f* src, Kpr64s srcStep, Kpr32f* dst, Kpr64s dstStep, Kpr64s roiWidth,
                              Kpr64s roiHeight, KprBorderType borderType, const Kpr32f* borderValue,
                              const KprMorphState* spec, Kpr8u* buffer) {
    const Call call(src, srcStep, dst, dstStep, KprSizeL{roiWidth, roiHeight}, borderType, borderValue, 1, buffer);
    return largeCallHolds(InPlace::Served, call, spec) ?: extremum<Erosion<Kpr32f>>(call, tapsOf<Kpr64s>(spec));
}

KprStatus kpriErode_32f_C3R_L(const Kpr32f* src, Kpr64s srcStep, Kpr32f* dst, Kpr64s dstStep, Kpr64s roiWidth,
                              Kpr64s roiHeight, KprBorderType borderType, const Kpr32f* borderValue,
                              const KprMorphState* spec, Kpr8u* buffer) {
    const Call call(src, srcStep, dst, dstStep, KprSizeL{roiWidth, roiHeight}, borderType, borderValue, 3, buffer);
    return largeCallHolds(InPlace::Served, call, spec) ?: extremum<Erosion<Kpr32f>>(call, tapsOf<Kpr64s>(spec));
}

KprStatus kpriErode_32f_C4R_L(const Kpr32f* src, Kpr64s srcStep, Kpr32f* dst, Kpr64s dstStep, Kpr64s roiWidth,
                              Kpr64s roiHeight, KprBorderType borderType, const Kpr32f* borderValue,
                              const KprMorphState* spec, Kpr8u* buffer) {
    const Call call(src, srcStep, dst, dstStep, KprSizeL{roiWidth, roiHeight}, borderType, borderValue, 4, buffer);
    return largeCallHolds(InPlace::Served, call, spec) ?: extremum<Erosion<Kpr32f>>(call, tapsOf<Kpr64s>(spec));
}
