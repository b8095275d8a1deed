// Dilation and erosion by structuring elements. With s the source and t over the taps that the mask sets,
//
//     dilation   d(x, y) = max s(x + t.x, y + t.y)
//     erosion    d(x, y) = min s(x + t.x, y + t.y)
//
// and the border rule for pixels outside the ROI, each axis by itself. Taps are counted from the mask's anchor.
#include "morph/extremum.h"

namespace n0::morph {
namespace {

template <typename Size>
KprStatus getSize(Size roi, Size mask, int elementSize, int channels, int* specSize, int* bufferSize) {
    const Extents e = {roi.width, roi.height, mask.width, mask.height};
    int spec = 0, buffer = 0;
    const KprStatus status = firstFailure(notNull(specSize, bufferSize), roiHolds(roi), roiHolds(mask)) ?:
                             putSize(stateSize(e), &spec) ?:
                             putSize(workSize(e, elementSize, channels), &buffer);
    if (status != kprStatusOk) return status;
    *specSize = spec;
    *bufferSize = buffer;
    return kprStatusOk;
}

KprStatus init(KprSize roi, const Kpr8u* mask, KprSize maskSize, KprMorphState* spec, const Kpr8u* buffer) {
    const KprStatus status = firstFailure(notNull(mask, spec, buffer), roiHolds(roi), roiHolds(maskSize));
    if (status == kprStatusOk) fillState<Kpr32s>(spec, mask, maskSize.width, maskSize.height, Orientation::AsGiven);
    return status;
}

}  // namespace
}  // namespace n0::morph

using namespace n0;
using namespace n0::morph;

KprStatus kpriMorphologyBorderGetSize_8u_C1R(KprSize roiSize, KprSize maskSize, int* specSize, int* bufferSize) {
    return getSize(roiSize, maskSize, sizeof(Kpr8u), 1, specSize, bufferSize);
}

KprStatus kpriMorphologyBorderGetSize_8u_C3R(KprSize roiSize, KprSize maskSize, int* specSize, int* bufferSize) {
    return getSize(roiSize, maskSize, sizeof(Kpr8u), 3, specSize, bufferSize);
}

KprStatus kpriMorphologyBorderGetSize_8u_C4R(KprSize roiSize, KprSize maskSize, int* specSize, int* bufferSize) {
    return getSize(roiSize, maskSize, sizeof(Kpr8u), 4, specSize, bufferSize);
}

KprStatus kpriMorphologyBorderGetSize_16u_C1R(KprSize roiSize, KprSize maskSize, int* specSize, int* bufferSize) {
    return getSize(roiSize, maskSize, sizeof(Kpr16u), 1, specSize, bufferSize);
}

KprStatus kpriMorphologyBorderGetSize_16s_C1R(KprSize roiSize, KprSize maskSize, int* specSize, int* bufferSize) {
    return getSize(roiSize, maskSize, sizeof(Kpr16s), 1, specSize, bufferSize);
}

KprStatus kpriMorphologyBorderGetSize_32f_C1R(KprSize roiSize, KprSize maskSize, int* specSize, int* bufferSize) {
    return getSize(roiSize, maskSize, sizeof(Kpr32f), 1, specSize, bufferSize);
}

KprStatus kpriMorphologyBorderGetSize_32f_C3R(KprSize roiSize, KprSize maskSize, int* specSize, int* bufferSize) {
    return getSize(roiSize, maskSize, sizeof(Kpr32f), 3, specSize, bufferSize);
}

KprStatus kpriMorphologyBorderGetSize_32f_C4R(KprSize roiSize, KprSize maskSize, int* specSize, int* bufferSize) {
    return getSize(roiSize, maskSize, sizeof(Kpr32f), 4, specSize, bufferSize);
}

KprStatus kpriMorphologyBorderInit_8u_C1R(KprSize roiSize, const Kpr8u* mask, KprSize maskSize, KprMorphState* spec,
                                          Kpr8u* buffer) {
    return init(roiSize, mask, maskSize, spec, buffer);
}

KprStatus kpriMorphologyBorderInit_8u_C3R(KprSize roiSize, const Kpr8u* mask, KprSize maskSize, KprMorphState* spec,
                                          Kpr8u* buffer) {
    return init(roiSize, mask, maskSize, spec, buffer);
}

KprStatus kpriMorphologyBorderInit_8u_C4R(KprSize roiSize, const Kpr8u* mask, KprSize maskSize, KprMorphState* spec,
                                          Kpr8u* buffer) {
    return init(roiSize, mask, maskSize, spec, buffer);
}

KprStatus kpriMorphologyBorderInit_16u_C1R(KprSize roiSize, const Kpr8u* mask, KprSize maskSize, KprMorphState* spec,
                                           Kpr8u* buffer) {
    return init(roiSize, mask, maskSize, spec, buffer);
}

KprStatus kpriMorphologyBorderInit_16s_C1R(KprSize roiSize, const Kpr8u* mask, KprSize maskSize, KprMorphState* spec,
                                           Kpr8u* buffer) {
    return init(roiSize, mask, maskSize, spec, buffer);
}

KprStatus kpriMorphologyBorderInit_32f_C1R(KprSize roiSize, const Kpr8u* mask, KprSize maskSize, KprMorphState* spec,
                                           Kpr8u* buffer) {
    return init(roiSize, mask, maskSize, spec, buffer);
}

KprStatus kpriMorphologyBorderInit_32f_C3R(KprSize roiSize, const Kpr8u* mask, KprSize maskSize, KprMorphState* spec,
                                           Kpr8u* buffer) {
    return init(roiSize, mask, maskSize, spec, buffer);
}

KprStatus kpriMorphologyBorderInit_32f_C4R(KprSize roiSize, const Kpr8u* mask, KprSize maskSize, KprMorphState* spec,
                                           Kpr8u* buffer) {
    return init(roiSize, mask, maskSize, spec, buffer);
}

KprStatus kpriDilateBorder_8u_C1R(const Kpr8u* src, int srcStep, Kpr8u* dst, int dstStep, KprSize roiSize,
                                  KprBorderType borderType, Kpr8u borderValue, const KprMorphState* spec,
                                  Kpr8u* buffer) {
    const Call call(src, srcStep, dst, dstStep, roiSize, borderType, &borderValue, 1, buffer);
    return callHolds(InPlace::Served, call, spec) ?: extremum<Dilation<Kpr8u>>(call, tapsOf<Kpr32s>(spec));
}

KprStatus kpriDilateBorder_8u_C3R(const Kpr8u* src, int srcStep, Kpr8u* dst, int dstStep, KprSize roiSize,
                                  KprBorderType borderType, const Kpr8u* borderValue, const KprMorphState* spec,
                                  Kpr8u* buffer) {
    const Call call(src, srcStep, dst, dstStep, roiSize, borderType, borderValue, 3, buffer);
    return callHolds(InPlace::Served, call, spec) ?: extremum<Dilation<Kpr8u>>(call, tapsOf<Kpr32s>(spec));
}

KprStatus kpriDilateBorder_8u_C4R(const Kpr8u* src, int srcStep, Kpr8u* dst, int dstStep, KprSize roiSize,
                                  KprBorderType borderType, const Kpr8u* borderValue, const KprMorphState* spec,
                                  Kpr8u* buffer) {
    const Call call(src, srcStep, dst, dstStep, roiSize, borderType, borderValue, 4, buffer);
    return callHolds(InPlace::Served, call, spec) ?: extremum<Dilation<Kpr8u>>(call, tapsOf<Kpr32s>(spec));
}

KprStatus kpriDilateBorder_16u_C1R(const Kpr16u* src, int srcStep, Kpr16u* dst, int dstStep, KprSize roiSize,
                                   KprBorderType borderType, Kpr16u borderValue, const KprMorphState* spec,
                                   Kpr8u* buffer) {
    const Call call(src, srcStep, dst, dstStep, roiSize, borderType, &borderValue, 1, buffer);
    return callHolds(InPlace::Served, call, spec) ?: extremum<Dilation<Kpr16u>>(call, tapsOf<Kpr32s>(spec));
}

KprStatus kpriDilateBorder_16s_C1R(const Kpr16s* src, int srcStep, Kpr16s* dst, int dstStep, KprSize roiSize,
                                   KprBorderType borderType, Kpr16s borderValue, const KprMorphState* spec,
                                   Kpr8u* buffer) {
    const Call call(src, srcStep, dst, dstStep, roiSize, borderType, &borderValue, 1, buffer);
    return callHolds(InPlace::Refused, call, spec) ?: extremum<Dilation<Kpr16s>>(call, tapsOf<Kpr32s>(spec));
}

KprStatus kpriDilateBorder_32f_C1R(const Kpr32f* src, int srcStep, Kpr32f* dst, int dstStep, KprSize roiSize,
                                   KprBorderType borderType, Kpr32f borderValue, const KprMorphState* spec,
                                   Kpr8u* buffer) {
    const Call call(src, srcStep, dst, dstStep, roiSize, borderType, &borderValue, 1, buffer);
    return callHolds(InPlace::Served, call, spec) ?: extremum<Dilation<Kpr32f>>(call, tapsOf<Kpr32s>(spec));
}

KprStatus kpriDilateBorder_32f_C3R(const Kpr32f* src, int srcStep, Kpr32f* dst, int dstStep, KprSize roiSize,
                                   KprBorderType borderType, const Kpr32f* borderValue, const KprMorphState* spec,
                                   Kpr8u* buffer) {
    const Call call(src, srcStep, dst, dstStep, roiSize, borderType, borderValue, 3, buffer);
    return callHolds(InPlace::Served, call, spec) ?: extremum<Dilation<Kpr32f>>(call, tapsOf<Kpr32s>(spec));
}

KprStatus kpriDilateBorder_32f_C4R(const Kpr32f* src, int srcStep, Kpr32f* dst, int dstStep, KprSize roiSize,
                                   KprBorderType borderType, const Kpr32f* borderValue, const KprMorphState* spec,
                                   Kpr8u* buffer) {
    const Call call(src, srcStep, dst, dstStep, roiSize, borderType, borderValue, 4, buffer);
    return callHolds(InPlace::Served, call, spec) ?: extremum<Dilation<Kpr32f>>(call, tapsOf<Kpr32s>(spec));
}

KprStatus kpriErodeBorder_8u_C1R(const Kpr8u* src, int srcStep, Kpr8u* dst, int dstStep, KprSize roiSize,
                                 KprBorderType borderType, Kpr8u borderValue, const KprMorphState* spec,
                                 Kpr8u* buffer) {
    const Call call(src, srcStep, dst, dstStep, roiSize, borderType, &borderValue, 1, buffer);
    return callHolds(InPlace::Served, call, spec) ?: extremum<Erosion<Kpr8u>>(call, tapsOf<Kpr32s>(spec));
}

KprStatus kpriErodeBorder_8u_C3R(const Kpr8u* src, int srcStep, Kpr8u* dst, int dstStep, KprSize roiSize,
                                 KprBorderType borderType, const Kpr8u* borderValue, const KprMorphState* spec,
                                 Kpr8u* buffer) {
    const Call call(src, srcStep, dst, dstStep, roiSize, borderType, borderValue, 3, buffer);
    return callHolds(InPlace::Served, call, spec) ?: extremum<Erosion<Kpr8u>>(call, tapsOf<Kpr32s>(spec));
}

KprStatus kpriErodeBorder_8u_C4R(const Kpr8u* src, int srcStep, Kpr8u* dst, int dstStep, KprSize roiSize,
                                 KprBorderType borderType, const Kpr8u* borderValue, const KprMorphState* spec,
                                 Kpr8u* buffer) {
    const Call call(src, srcStep, dst, dstStep, roiSize, borderType, borderValue, 4, buffer);
    return callHolds(InPlace::Served, call, spec) ?: extremum<Erosion<Kpr8u>>(call, tapsOf<Kpr32s>(spec));
}

KprStatus kpriErodeBorder_16u_C1R(const Kpr16u* src, int srcStep, Kpr16u* dst, int dstStep, KprSize roiSize,
                                  KprBorderType borderType, Kpr16u borderValue, const KprMorphState* spec,
                                  Kpr8u* buffer) {
    const Call call(src, srcStep, dst, dstStep, roiSize, borderType, &borderValue, 1, buffer);
    return callHolds(InPlace::Refused, call, spec) ?: extremum<Erosion<Kpr16u>>(call, tapsOf<Kpr32s>(spec));
}

KprStatus kpriErodeBorder_16s_C1R(const Kpr16s* src, int srcStep, Kpr16s* dst, int dstStep, KprSize roiSize,
                                  KprBorderType borderType, Kpr16s borderValue, const KprMorphState* spec,
                                  Kpr8u* buffer) {
    const Call call(src, srcStep, dst, dstStep, roiSize, borderType, &borderValue, 1, buffer);
    return callHolds(InPlace::Refused, call, spec) ?: extremum<Erosion<Kpr16s>>(call, tapsOf<Kpr32s>(spec));
}

KprStatus kpriErodeBorder_32f_C1R(const Kpr32f* src, int srcStep, Kpr32f* dst, int dstStep, KprSize roiSize,
                                  KprBorderType borderType, Kpr32f borderValue, const KprMorphState* spec,
                                  Kpr8u* buffer) {
    const Call call(src, srcStep, dst, dstStep, roiSize, borderType, &borderValue, 1, buffer);
    return callHolds(InPlace::Served, call, spec) ?: extremum<Erosion<Kpr32f>>(call, tapsOf<Kpr32s>(spec));
}

KprStatus kpriErodeBorder_32f_C3R(const Kpr32f* src, int srcStep, Kpr32f* dst, int dstStep, KprSize roiSize,
                                  KprBorderType borderType, const Kpr32f* borderValue, const KprMorphState* spec,
                                  Kpr8u* buffer) {
    const Call call(src, srcStep, dst, dstStep, roiSize, borderType, borderValue, 3, buffer);
    return callHolds(InPlace::Served, call, spec) ?: extremum<Erosion<Kpr32f>>(call, tapsOf<Kpr32s>(spec));
}

KprStatus kpriErodeBorder_32f_C4R(const Kpr32f* src, int srcStep, Kpr32f* dst, int dstStep, KprSize roiSize,
                                  KprBorderType borderType, const Kpr32f* borderValue, const KprMorphState* spec,
                                  Kpr8u* buffer) {
    const Call call(src, srcStep, dst, dstStep, roiSize, borderType, borderValue, 4, buffer);
    return callHolds(InPlace::Served, call, spec) ?: extremum<Erosion<Kpr32f>>(call, tapsOf<Kpr32s>(spec));
}
