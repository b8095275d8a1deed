// The record of a pyramid: level 0 has the image's size, each further one what the size rule makes of the one before,
// down to 1 x 1. Rates are (1 / rate)^k, multiplied up in double precision.
#include "pyramid/levels.h"

#include <limits>

#include "primitives/sizes.h"
#include "primitives/workspace.h"

namespace n0::pyramid {
namespace {

// Calls each(size) for up to `most` levels below the image, and tells how many there are.
int eachLevelBelow(KprSize size, Kpr32f rate, int most, auto each) {
    int steps = 0;
    for (; steps < most && (size.width > 1 || size.height > 1); ++steps) {
        size = sizeBelow(size, rate);
        each(size);
    }
    return steps;
}

KprStatus sizeOfRecord(int* pyramidSize, int* bufferSize, int level, KprSize size, Kpr32f rate) {
    const int steps = eachLevelBelow(size, rate, level, [](KprSize) {});
    const Bytes table = Bytes{8} * std::max(size.width, size.height);
    int bytes = 0;
    const KprStatus status = putSize(Bytes{52} * steps + 152, &bytes) ?: putSize(table, bufferSize);
    if (status == kprStatusOk) *pyramidSize = bytes;
    return status;
}

KprStatus makeRecord(KprPyramid** pyramid, int level, KprSize size, void* memory, void* buffer, Kpr32f rate) {
    // The sizes are listed first, as the arrays can only be cut when their number is known. A side loses a pixel with
    // each level at least, so that the list has room for them.
    auto* next = static_cast<char*>(buffer);
    const int last = eachLevelBelow(size, rate, level, [&](KprSize below) {
        __builtin_memcpy(next, &below, sizeof below);  // the buffer may lie anywhere
        next += sizeof below;
    });

    Workspace pieces(memory, Kpr64s{52} * last + 152);
    auto& record = *pieces.take<KprPyramid>(1, 8);
    record.pImage = pieces.take<void*>(last + 1, 8);
    record.pRoi = pieces.take<KprSize>(last + 1, 8);
    record.pRate = pieces.take<Kpr64f>(last + 1, 8);
    record.pStep = pieces.take<int>(last + 1, 8);
    record.pState = nullptr;
    record.level = last;
    Kpr64f scale = 1.0;
    for (int k = 0; k <= last; ++k) {
        record.pImage[k] = nullptr;
        record.pStep[k] = 0;
        record.pRate[k] = scale;
        scale *= 1.0 / static_cast<Kpr64f>(rate);
        if (k == 0)
            record.pRoi[k] = size;
        else
            __builtin_memcpy(&record.pRoi[k], static_cast<char*>(buffer) + (k - 1) * sizeof(KprSize), sizeof(KprSize));
    }
    *pyramid = &record;
    return kprStatusOk;
}

KprStatus putUpRange(KprSize size, KprSize* least, KprSize* most, Kpr32f rate) {
    const UpRange width = upRangeOf(size.width, rate), height = upRangeOf(size.height, rate);
    if (std::max(width.max, height.max) > std::numeric_limits<Kpr32s>::max()) return kprStatusSizeOverflow;
    *least = {static_cast<Kpr32s>(width.min), static_cast<Kpr32s>(height.min)};
    *most = {static_cast<Kpr32s>(width.max), static_cast<Kpr32s>(height.max)};
    return kprStatusOk;
}

}  // namespace
}  // namespace n0::pyramid

using namespace n0;
using namespace n0::pyramid;

KprStatus kpriGetPyramidDownROI(KprSize srcRoi, KprSize* dstRoi, Kpr32f rate) {
    const KprStatus status = firstFailure(notNull(dstRoi), roiHolds(srcRoi), failIf(!rateHolds(rate), kprStatusBadArg));
    if (status == kprStatusOk) *dstRoi = sizeBelow(srcRoi, rate);
    return status;
}

KprStatus kpriGetPyramidUpROI(KprSize srcRoi, KprSize* dstRoiMin, KprSize* dstRoiMax, Kpr32f rate) {
    return firstFailure(notNull(dstRoiMin, dstRoiMax), roiHolds(srcRoi), failIf(!rateHolds(rate), kprStatusBadArg))
               ?: putUpRange(srcRoi, dstRoiMin, dstRoiMax, rate);
}

KprStatus kpriPyramidGetSize(int* pyramidSize, int* bufferSize, int level, KprSize roiSize, Kpr32f rate) {
    return firstFailure(notNull(pyramidSize, bufferSize), roiHolds(roiSize),
                        failIf(level < 1 || !rateHolds(rate), kprStatusBadArg))
               ?: sizeOfRecord(pyramidSize, bufferSize, level, roiSize, rate);
}

KprStatus kpriPyramidInit(KprPyramid** pyramidPtr, int level, KprSize roiSize, Kpr8u* pyramidBuffer, Kpr8u* buffer,
                          Kpr32f rate) {
    return firstFailure(notNull(pyramidPtr, pyramidBuffer, buffer), roiHolds(roiSize),
                        failIf(level < 1 || !rateHolds(rate), kprStatusBadArg))
               ?: makeRecord(pyramidPtr, level, roiSize, pyramidBuffer, buffer, rate);
}
