// Watersheds from markers: the bucket queue of watershed_queue.h, or the sweeps of watershed_sweeps.h and, for a float
// relief, of watershed_float.h.
#include "frame/checks.h"
#include "primitives/sizes.h"
#include "segment/watershed_float.h"
#include "segment/watershed_queue.h"
#include "segment/watershed_sweeps.h"

namespace n0::segment {
namespace {

constexpr Kpr32s kMarch = 63, kMarchOfFloats = 255;

// Callers know these sizes, and expect them to wrap where they do not fit. All that the queue and the sweeps use is no
// more than the larger of the two terms.
template <typename Label>
constexpr int integerBytes(KprSize roi) {
    const auto w = static_cast<Bytes32>(roi.width), h = static_cast<Bytes32>(roi.height), s = Bytes32{sizeof(Label)};
    const Bytes32 pitch = roundUp(s * w, 32);
    const auto queue = static_cast<int>(16 * w * h + s * (w + 2) * (h + 2) + 48);
    const auto sweeps = static_cast<int>(6 * pitch * h + 2 * pitch + h + 66);
    return std::max(queue, sweeps);
}

constexpr int floatBytes(KprSize roi) {
    const auto w = static_cast<Bytes32>(roi.width), h = static_cast<Bytes32>(roi.height);
    return static_cast<int>(9 * roundUp(w, 4) * h + h + 66);
}

KprStatus putBytes(KprSize roi, int (*bytes)(KprSize), int* bufferSize) {
    const KprStatus status = firstFailure(notNull(bufferSize), roiHolds(roi));
    if (status == kprStatusOk) *bufferSize = bytes(roi);
    return status;
}

constexpr KprStatus normHolds(int norm, int last) { return failIf(norm < 0 || norm > last, kprStatusBadArg); }

constexpr KprStatus sweepsAsked(int norm, int flag) {
    return firstFailure(failIf((flag & kprSegIterative) == 0, kprStatusBadArg), normHolds(norm, kprSegNormMarch));
}

template <typename Label>
KprStatus byQueue(Rows<const Kpr8u> src, Rows<Label> marker, KprSize roi, int norm, int flag, Workspace space) {
    const bool sides = (flag & kprSegWall4) != 0, all = (flag & kprSegWall8) != 0;
    const Walls seedWalls = all ? Walls::All : sides ? Walls::Sides : Walls::None;
    const Walls walls = sides ? Walls::Sides : all ? Walls::All : Walls::None;
    QueueWatershed<Label>(src, marker, roi, norm == kprSegNormChess, space).run(seedWalls, walls);
    return kprStatusOk;
}

template <typename Watershed>
KprStatus bySweeps(Watershed watershed, bool walls, bool diagonals) {
    watershed.run();
    if (walls) watershed.drawWalls(diagonals);
    return kprStatusOk;
}

template <typename Label>
KprStatus flood(const Kpr8u* src, int srcStep, Label* marker, int markerStep, KprSize roi, int norm, int flag,
                Kpr8u* buffer) {
    const bool queue = (flag & kprSegQueue) != 0;
    const KprStatus status =
        firstFailure(notNull(src, marker, buffer), roiHolds(roi), rowsFit<Kpr8u>(roi.width, srcStep),
                     rowsFit<Label>(roi.width, markerStep), stepsAlign<Label>(markerStep),
                     queue ? normHolds(norm, kprSegNormCity) : sweepsAsked(norm, flag));
    if (status != kprStatusOk) return status;
    const Rows<const Kpr8u> relief{src, srcStep};
    const Rows<Label> labels{marker, markerStep};
    const Workspace space(buffer, integerBytes<Label>(roi));
    if (queue) return byQueue(relief, labels, roi, norm, flag, space);
    return bySweeps(SweptWatershed<Label>(relief, labels, roi, normOf(norm, roi, kMarch), space),
                    (flag & (kprSegWall4 | kprSegWall8)) != 0, (flag & kprSegWall4) == 0);
}

}  // namespace
}  // namespace n0::segment

using namespace n0;
using namespace n0::segment;

KprStatus kpriSegmentWatershedGetBufferSize_8u_C1R(KprSize roiSize, int* bufferSize) {
    return putBytes(roiSize, integerBytes<Kpr8u>, bufferSize);
}

KprStatus kpriSegmentWatershedGetBufferSize_8u16u_C1R(KprSize roiSize, int* bufferSize) {
    return putBytes(roiSize, integerBytes<Kpr16u>, bufferSize);
}

KprStatus kpriSegmentWatershedGetBufferSize_32f16u_C1R(KprSize roiSize, int* bufferSize) {
    return putBytes(roiSize, floatBytes, bufferSize);
}

KprStatus kpriSegmentWatershed_8u_C1IR(const Kpr8u* src, int srcStep, Kpr8u* marker, int markerStep, KprSize roiSize,
                                       int norm, int flag, Kpr8u* buffer) {
    return flood(src, srcStep, marker, markerStep, roiSize, norm, flag, buffer);
}

KprStatus kpriSegmentWatershed_8u16u_C1IR(const Kpr8u* src, int srcStep, Kpr16u* marker, int markerStep,
                                          KprSize roiSize, int norm, int flag, Kpr8u* buffer) {
    return flood(src, srcStep, marker, markerStep, roiSize, norm, flag, buffer);
}

KprStatus kpriSegmentWatershed_32f16u_C1IR(const Kpr32f* src, int srcStep, Kpr16u* marker, int markerStep,
                                           KprSize roiSize, int norm, int flag, Kpr8u* buffer) {
    const KprStatus status = firstFailure(
        notNull(src, marker, buffer), roiHolds(roiSize), rowsFit<Kpr32f>(roiSize.width, srcStep),
        rowsFit<Kpr16u>(roiSize.width, markerStep), stepsAlign<Kpr16u>(markerStep), stepsAlign<Kpr32f>(srcStep),
        failIf((flag & kprSegQueue) != 0, kprStatusBadMode), sweepsAsked(norm, flag));
    if (status != kprStatusOk) return status;
    const Workspace space(buffer, floatBytes(roiSize));
    return bySweeps(
        FloatWatershed({src, srcStep}, {marker, markerStep}, roiSize, normOf(norm, roiSize, kMarchOfFloats), space),
        (flag & (kprSegWall4 | kprSegWall8)) != 0, (flag & kprSegWall8) != 0);
}
