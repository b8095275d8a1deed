// Pyramidal optical flow. On each level L from the coarsest to 0, for each point that has passed the level before, with
// r the first pyramid's rate of the level:
//
//     p = prevPoints * r, the centre of the window        q = nextPoints * r, the place, both rounded to single
//     Ix, Iy, I around p (flow_window.h)                  Gxx, Gyy, Gxy = sums of Ix * Ix, Iy * Iy, Ix * Iy
//     det = fma(Gxx, Gyy, -(Gxy * Gxy))                   the point fails, if det is below 2^-52
//     up to maxIter times, with J around q:
//         bx = sum of (I - J) * Ix        dx = (bx * Gyy - by * Gxy) / det
//         by = sum of (I - J) * Iy        dy = (by * Gxx - bx * Gxy) / det
//         next = q + (dx, dy), rounded to single
//         q = next and the end, if dx * dx + dy * dy < threshold * threshold
//         q = next - (dx, dy) / 2 and the end, if |dx + its previous value| and |dy + its own| are below 2^-11.5
//         q = next
//     nextPoints = q / r, and on level 0 error = sqrt(sum of (I - J)^2 / pixels) of the last J
//
// in double precision but where it is said.
#include "filter/sobel.h"
#include "frame/checks.h"
#include "motion/flow_window.h"
#include "primitives/math.h"
#include "primitives/sizes.h"

namespace n0::motion {
namespace {

// ---- the state: it begins where the caller's buffer does, hence packed

struct [[gnu::packed]] State {
    Kpr32s width, height;
    Kpr32s lowestLevel;
    Kpr32s elementTag;
    Kpr32s workBytes;
    Kpr32s hint;
    Kpr32s winSize;
    Kpr32s unused;
    char* work;
};
constexpr int kWorkAlignment = 16;

Bytes filterBytes(KprSize roi, KprDataType src, KprDataType dst) {
    int across = 0, down = 0;
    kpriFilterScharrHorizMaskBorderGetBufferSize(roi, kprMaskSize3x3, src, dst, 1, &down);
    kpriFilterScharrVertMaskBorderGetBufferSize(roi, kprMaskSize3x3, src, dst, 1, &across);
    return std::max(across, down);
}

// That has room for the derivatives of a whole level, which are not made here. A window takes no more than the smallest
// state has, that of 8u for an image of one pixel: any state serves any type and image.
Bytes stateBytes(Bytes winSize, KprSize roi, KprDataType type) {
    constexpr int margin = 5;
    const Bytes plane = (Bytes{roi.width} + margin) * (Bytes{roi.height} + margin);
    const Bytes window = (winSize + 3) * (winSize + 3);
    if (2 * plane > Bytes{std::numeric_limits<Kpr32s>::max()}) return 2 * plane;
    const KprSize widened = {roi.width + margin, roi.height + margin};
    if (type == kpr8u) return 32 * window + 2 * (4 * window + filterBytes(widened, kpr8u, kpr16s) + 2 * plane) + 130;
    const Bytes planes = type == kpr16u ? 3 : 2;
    return 4 * (filterBytes(widened, kpr32f, kpr32f) + planes * plane + 12 * window) + 124;
}

constexpr KprStatus sizesHold(int winSize, KprSize roi) {
    return firstFailure(failIf(winSize < 1, kprStatusBadSize), roiHolds(roi));
}

KprStatus makeState(KprOpticalFlowPyrLK** statePtr, KprSize roi, int winSize, int hint, Kpr8u* buffer,
                    KprDataType type) {
    const KprStatus status = firstFailure(sizesHold(winSize, roi), notNull(statePtr, buffer));
    if (status != kprStatusOk) return status;
    auto& state = *reinterpret_cast<State*>(buffer);
    char* const work = alignedUp<char>(buffer + sizeof(State), kWorkAlignment);
    const Bytes before = work - reinterpret_cast<char*>(buffer);
    state = {roi.width, roi.height, 1, 1,   static_cast<Kpr32s>(stateBytes(winSize, roi, type) - before),
             hint,      winSize,    0, work};
    *statePtr = reinterpret_cast<KprOpticalFlowPyrLK*>(buffer);
    return kprStatusOk;
}

// ---- a call

constexpr Kpr64f kLeastDeterminant = 0x1p-52;
constexpr Kpr64f kOscillation = 3.4526698e-4F;  // sqrt(2^-23) in single precision

Kpr32f rounded(Kpr64f v) { return static_cast<Kpr32f>(v); }
KprPoint32f timesRate(KprPoint32f p, Kpr64f rate) { return {rounded(p.x * rate), rounded(p.y * rate)}; }

template <typename Src>
struct Call {
    const KprPyramid* first;
    const KprPyramid* second;
    const KprPoint32f* from;
    KprPoint32f* to;
    Kpr8u* status;
    Kpr32f* error;
    int points, winSize, maxLevel, maxIter;
    Kpr32f threshold;
    const KprOpticalFlowPyrLK* statePtr;

    [[nodiscard]] KprStatus run() const {
        return firstFailure(notNull(first, second, statePtr, from, to, status, error),
                            failIf(points < 1 || winSize < 1, kprStatusBadSize))
                   ?: failIf(winSize != state().winSize, kprStatusBadSize)
                   ?: failIf(maxLevel < 0 || maxIter < 1 || threshold < 0.0F, kprStatusBadArg)
                   ?: recordsHold()
                   ?: track();
    }

  private:
    // A byte tells the levels up to 254 apart, and none of them.
    [[nodiscard]] KprStatus recordsHold() const {
        const KprPyramid &a = *first, &b = *second;
        return firstFailure(notNull(a.pImage, a.pRoi, a.pRate, a.pStep, b.pImage, b.pRoi, b.pRate, b.pStep),
                            failIf(maxLevel > std::min({a.level, b.level, 254}), kprStatusBadArg));
    }
    [[nodiscard]] const State& state() const { return *reinterpret_cast<const State*>(statePtr); }

    [[nodiscard]] KprStatus track() const {
        const auto bytes = static_cast<Kpr64s>(stateBytes(winSize, {1, 1}, kpr8u));
        Window<Src> window(winSize, {state().work, bytes - (kWorkAlignment - 1) - Kpr64s{sizeof(State)}});
        for (int i = 0; i < points; ++i) status[i] = static_cast<Kpr8u>(maxLevel + 1);
        for (int level = maxLevel; level >= 0; --level) {
            const KprStatus usable = firstFailure(notNull(first->pImage[level]), roiHolds(first->pRoi[level]));
            if (usable != kprStatusOk) return usable;
            if (level > 0) {
                trackLevel<false>(window, level);
            } else {
                trackLevel<true>(window, level);
            }
        }
        return kprStatusOk;
    }

    template <bool measures>
    void trackLevel(Window<Src>& window, int level) const {
        const LevelImage<Src> image1 = levelOf(*first, level), image2 = levelOf(*second, level);
        const bool sampled = levelHolds(image1) && levelHolds(image2);
        const Kpr64f rate = first->pRate[level];
        for (int i = 0; i < points; ++i) {
            if (status[i] != level + 1) continue;
            KprPoint32f place = timesRate(to[i], rate);
            Kpr64f deviation = 0.0;
            if (sampled && window.take(image1, timesRate(from[i], rate)) &&
                settle<measures>(window, image2, place, deviation)) {
                status[i] = static_cast<Kpr8u>(level);
                to[i] = {rounded(place.x / rate), rounded(place.y / rate)};
                if (measures) error[i] = rounded(deviation);
            } else {
                error[i] = 0.0F;
            }
        }
    }

    // Moves a place until it settles. False where the point is lost.
    template <bool measures>
    bool settle(const Window<Src>& window, const LevelImage<Src>& image, KprPoint32f& place, Kpr64f& deviation) const {
        const Kpr64f gxx = window.gxx(), gyy = window.gyy(), gxy = window.gxy();
        const Kpr64f det = fma(gxx, gyy, -(gxy * gxy)), enough = Kpr64f{threshold * threshold};
        if (!(det >= kLeastDeterminant)) return false;
        Kpr64f beforeX = 0.0, beforeY = 0.0;
        Differences sums;
        for (int i = 0; i < maxIter; ++i) {
            sums = {};
            if (!window.template compare<measures>(image, place, sums)) return false;
            const Kpr64f bx = sums.withDx, by = sums.withDy;
            const Kpr64f dx = (bx * gyy - by * gxy) / det, dy = (by * gxx - bx * gxy) / det;
            const Kpr64f length = dx * dx + dy * dy;
            if (!(length <= std::numeric_limits<Kpr64f>::max())) return false;
            place = {rounded(place.x + dx), rounded(place.y + dy)};
            if (length < enough) break;
            if (kprsFabsOne(dx + beforeX) < kOscillation && kprsFabsOne(dy + beforeY) < kOscillation) {
                place = {rounded(place.x - 0.5 * dx), rounded(place.y - 0.5 * dy)};
                break;
            }
            beforeX = dx;
            beforeY = dy;
        }
        if (measures && sums.squared > 0.0)
            deviation = kprsSqrtOne(sums.squared / window.pixels()) * Sampling<Src>::kUnit;
        return true;
    }

    static LevelImage<Src> levelOf(const KprPyramid& pyramid, int level) {
        return {{static_cast<const Src*>(pyramid.pImage[level]), pyramid.pStep[level]}, pyramid.pRoi[level]};
    }
    static bool levelHolds(const LevelImage<Src>& image) {
        return firstFailure(notNull(image.pixels.first), roiHolds(image.size),
                            rowsFit<Src>(image.size.width, image.pixels.step),
                            stepsAlign<Src>(image.pixels.step)) == kprStatusOk;
    }
};

}  // namespace
}  // namespace n0::motion

using namespace n0;
using namespace n0::motion;

KprStatus kpriOpticalFlowPyrLKGetSize(int winSize, KprSize roiSize, KprDataType dataType, int, int* result) {
    return firstFailure(sizesHold(winSize, roiSize),
                        failIf(dataType != kpr8u && dataType != kpr16u && dataType != kpr32f, kprStatusBadDataType),
                        notNull(result))
               ?: putSize(stateBytes(winSize, roiSize, dataType), result);
}

KprStatus kpriOpticalFlowPyrLKInit_8u_C1R(KprOpticalFlowPyrLK** statePtr, KprSize roiSize, int winSize, int hint,
                                          Kpr8u* stateBuffer) {
    return makeState(statePtr, roiSize, winSize, hint, stateBuffer, kpr8u);
}

KprStatus kpriOpticalFlowPyrLKInit_16u_C1R(KprOpticalFlowPyrLK** statePtr, KprSize roiSize, int winSize, int hint,
                                           Kpr8u* stateBuffer) {
    return makeState(statePtr, roiSize, winSize, hint, stateBuffer, kpr16u);
}

KprStatus kpriOpticalFlowPyrLKInit_32f_C1R(KprOpticalFlowPyrLK** statePtr, KprSize roiSize, int winSize, int hint,
                                           Kpr8u* stateBuffer) {
    return makeState(statePtr, roiSize, winSize, hint, stateBuffer, kpr32f);
}

KprStatus kpriOpticalFlowPyrLK_8u_C1R(const KprPyramid* pyr1, const KprPyramid* pyr2, const KprPoint32f* prevPoints,
                                      KprPoint32f* nextPoints, Kpr8u* status, Kpr32f* error, int numPoints, int winSize,
                                      int maxLevel, int maxIter, Kpr32f threshold, KprOpticalFlowPyrLK* state) {
    return Call<Kpr8u>{pyr1,      pyr2,    prevPoints, nextPoints, status,    error,
                       numPoints, winSize, maxLevel,   maxIter,    threshold, state}
        .run();
}

KprStatus kpriOpticalFlowPyrLK_16u_C1R(const KprPyramid* pyr1, const KprPyramid* pyr2, const KprPoint32f* prevPoints,
                                       KprPoint32f* nextPoints, Kpr8u* status, Kpr32f* error, int numPoints,
                                       int winSize, int maxLevel, int maxIter, Kpr32f threshold,
                                       KprOpticalFlowPyrLK* state) {
    return Call<Kpr16u>{pyr1,      pyr2,    prevPoints, nextPoints, status,    error,
                        numPoints, winSize, maxLevel,   maxIter,    threshold, state}
        .run();
}

KprStatus kpriOpticalFlowPyrLK_32f_C1R(const KprPyramid* pyr1, const KprPyramid* pyr2, const KprPoint32f* prevPoints,
                                       KprPoint32f* nextPoints, Kpr8u* status, Kpr32f* error, int numPoints,
                                       int winSize, int maxLevel, int maxIter, Kpr32f threshold,
                                       KprOpticalFlowPyrLK* state) {
    return Call<Kpr32f>{pyr1,      pyr2,    prevPoints, nextPoints, status,    error,
                        numPoints, winSize, maxLevel,   maxIter,    threshold, state}
        .run();
}
