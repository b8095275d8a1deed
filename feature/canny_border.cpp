// Edges from an 8-bit image: derivatives, magnitudes, suppression along the gradient, growth from strong pixels.
//
//     dx, dy     exact: right minus left, below minus above; Sobel of 3 or 5, Scharr of 3
//     M          L1 |dx| + |dy|, L2 sqrt(fma(adx, adx, ady * ady)) in floats; 0 unless it is above the low threshold
//     strong     M above the high threshold
//
// Images of up to three rows take the code of a direction from its angle. It differs from that of the tangents only
// where dx and dy come nearest to one of these: for a few pairs of integers beyond 900.
#include "feature/edge_codes.h"
#include "feature/gradient_rows.h"
#include "primitives/math.h"
#include "primitives/sizes.h"

namespace n0::feature {
namespace {

constexpr Bytes borderBytes(KprSize roi, KprMaskSize mask) {
    const Bytes m = mask == kprMaskSize3x3 ? 3 : 5;
    const Bytes w = roi.width + m - 1, area = w * (roi.height + m - 1);
    const Bytes padded = roi.width < m || roi.height < m ? roundUp(area, 32) : 0;
    return roundUp(16 * w, 32) + roundUp(area, 32) + roundUp(4 * area, 32) + 64 + padded;
}

constexpr Kpr64s kLowRows = 3;

// The code of a direction by its angle from 0 to pi.
struct AngleCode {
    bool level, upright, unlike;
};
AngleCode codeOfAngle(int dx, int dy) {
    Kpr64f angle = kprsAtan2One(dy, dx);
    if (angle < 0) angle += 3.1415927;
    if (angle < 0.39269909) return {true, false, false};
    if (angle <= 1.1780972) return {false, false, false};
    if (angle < 1.9634955) return {false, true, false};
    if (angle <= 2.7488937) return {false, false, true};
    return {true, false, false};
}

template <int reach, typename Rule, typename Sum>
[[gnu::noinline]] void makeRow(const Kpr16s* const* window, Kpr64s plane, const Sum& sum,
                               EdgeRow<typename Sum::Magnitude> row, Kpr64s width) {
    const Kpr16s* rows[2 * Rule::kRadius + 1];  // a copy: a store could change the window, for all a compiler knows
    for (int i = 0; i <= 2 * Rule::kRadius; ++i) rows[i] = window[i];
    walkColumns<32>(width, [=](auto part, Kpr64s x) {
        const Vec<Kpr16s> dx = Rule::dx(part, [=](int i) { return rows[i] + x; });
        const Vec<Kpr16s> dy = Rule::dy(part, [=](int i) { return rows[i] + plane + x; });
        putPixels<reach>(sum, row, x, dx, dy);
    });
}

// Directions that lie next to a tangent once more, by their angles.
template <typename Rule, typename Magnitude>
void codeByAngles(const Kpr16s* const* window, Kpr64s plane, EdgeRow<Magnitude> row, Kpr64s width) {
    const auto derivative = [&](auto part, auto make, Kpr64s from) {
        return static_cast<int>(firstLane(make(part, [&](int i) { return window[i] + from; })));
    };
    const auto put = [](Kpr8u* bits, Kpr64s x, bool set) {
        const auto bit = static_cast<Kpr8u>(1 << x % 8);
        bits[x / 8] = static_cast<Kpr8u>(set ? bits[x / 8] | bit : bits[x / 8] & ~bit);
    };
    const auto nearTangent = [](int a, int b) {
        return __builtin_fabsf(kTangent67 * static_cast<float>(a) - static_cast<float>(b)) < 1;
    };
    for (Kpr64s x = 0; x < width; ++x) {
        if (row.magnitudes[x] == 0) continue;
        const int dx = derivative(
            First{1}, [](auto part, auto at) { return Rule::dx(part, at); }, x);
        const int dy = derivative(
            First{1}, [](auto part, auto at) { return Rule::dy(part, at); }, plane + x);
        const int adx = dx < 0 ? -dx : dx, ady = dy < 0 ? -dy : dy;
        if (!nearTangent(adx, ady) && !nearTangent(ady, adx)) continue;
        const AngleCode code = codeOfAngle(dx, dy);
        put(row.level, x, code.level);
        put(row.upright, x, code.upright);
        put(row.unlike, x, code.unlike);
    }
}

struct Job {
    Rows<const Kpr8u> src;
    Rows<Kpr8u> dst;
    KprSize roi;
    KprMaskSize mask;
    KprBorderType border;
    Kpr8u value;
    Kpr8u* buffer;
};

template <int reach, typename Rule, typename Sum>
void detect(const Job& job, const Sum& sum, typename Sum::Magnitude high) {
    using Pixels = EdgeRows<typename Sum::Magnitude>;
    constexpr int ringRows = (2 * Rule::kRadius + 1) * Rule::kPlanes;
    alignas(64) Kpr8u own[ringRows * kOwnColumns * 2 + Pixels::bytes(kOwnColumns)];
    const Kpr64s width = job.roi.width, plane = (width + 31) / 32 * 32;
    Workspace space(job.buffer, static_cast<Kpr64s>(borderBytes(job.roi, job.mask)));
    EdgePlanes planes(space, width, job.roi.height);
    if (width <= kOwnColumns) space = Workspace(own, sizeof own);
    auto* const ring = space.take<Kpr16s>(ringRows * plane, 64);
    Pixels pixels(space, planes, width, high);
    filter::walkFixed<Rule>(columnsOf(width, job.border), rowsOf(job.roi.height, job.border), job.src, job.value, ring,
                            plane, [&](const Kpr16s* const* window, Kpr64s) {
                                const auto row = pixels.next();
                                makeRow<reach, Rule>(window, plane, sum, row, width);
                                if (job.roi.height <= kLowRows) codeByAngles<Rule>(window, plane, row, width);
                                pixels.filled();
                            });
    pixels.end();
    planes.trace(job.dst);
}

// The largest integer whose root in single precision is not above `threshold`. Roots of Sobel's sums for a mask of
// three, which stay below 2^21, are as far apart as the sums: so the sums stand for them.
Kpr32s sumUpTo(Kpr32f threshold) {
    if (!(threshold < 2048)) return std::numeric_limits<Kpr32s>::max();
    auto sum = static_cast<Kpr32s>(threshold * threshold);
    const auto root = [](Kpr32s s) { return kprsSqrtOneF(static_cast<Kpr32f>(s)); };
    while (root(sum + 1) <= threshold) ++sum;
    while (root(sum) > threshold) --sum;
    return sum;
}

template <int reach, typename Rule>
void detectRoots(const Job& job, Kpr32f low, Kpr32f high) {
    detect<reach, Rule>(job, Root{low, low * low * 0.999999F}, bitsOf(high));
}

KprStatus detectBorder(const Job& job, int filterType, Kpr32f low, Kpr32f high, int norm) {
    const auto detectSums = [&]<int reach, typename Rule>() {
        detect<reach, Rule>(job, SaturatedSum{floorOf<Kpr16u>(low)}, floorOf<Kpr16u>(high));
    };
    if (filterType == kprFilterScharr) {
        if (norm == kprNormL1)
            detectSums.operator()<kLongReach, ScharrGradient<Kpr16s>>();
        else
            detectRoots<kLongReach, ScharrGradient<Kpr16s>>(job, low, high);
    } else if (job.mask == kprMaskSize5x5) {
        if (norm == kprNormL1)
            detectSums.operator()<kLongReach, SobelGradient5<Kpr16s>>();
        else
            detectRoots<kLongReach, SobelGradient5<Kpr16s>>(job, low, high);
    } else if (norm == kprNormL1) {
        detectSums.operator()<kShortReach, SobelGradient3<Kpr16s>>();
    } else {
        detect<kShortReach, SobelGradient3<Kpr16s>>(job, SquareSum<false>{sumUpTo(low)}, sumUpTo(high));
    }
    return kprStatusOk;
}

constexpr KprStatus borderServesEdges(KprBorderType word) {
    return firstFailure(borderServesFilter(word),
                        failIf(word != kprBorderInMem && baseOf(word) == kprBorderMirror, kprStatusBadBorder));
}

}  // namespace
}  // namespace n0::feature

using namespace n0;
using namespace n0::feature;

KprStatus kpriCannyBorderGetSize(KprSize roiSize, int filterType, KprMaskSize maskSize, int norm, int* result) {
    static_cast<void>(filterType);
    static_cast<void>(norm);
    return firstFailure(notNull(result), roiHolds(roiSize),
                        failIf(maskSize != kprMaskSize3x3 && maskSize != kprMaskSize5x5, kprStatusBadMaskSize))
               ?: putSize(borderBytes(roiSize, maskSize), result);
}

KprStatus kpriCannyBorder_8u_C1R(const Kpr8u* src, int srcStep, Kpr8u* dst, int dstStep, KprSize roiSize,
                                 int filterType, KprMaskSize maskSize, KprBorderType borderType, Kpr8u borderValue,
                                 Kpr32f lowThreshold, Kpr32f highThreshold, int norm, Kpr8u* buffer) {
    const bool maskHolds = maskSize == kprMaskSize3x3 || (maskSize == kprMaskSize5x5 && filterType != kprFilterScharr);
    return firstFailure(failIf(!maskHolds, kprStatusBadMaskSize), notNull(src, dst, buffer), roiHolds(roiSize),
                        failIf(filterType != kprFilterSobel && filterType != kprFilterScharr, kprStatusBadArg),
                        failIf(norm != kprNormL1 && norm != kprNormL2, kprStatusBadArg),
                        failIf(lowThreshold < 0 || lowThreshold > highThreshold, kprStatusBadArg),
                        borderServesEdges(borderType))
               ?: detectBorder({{src, srcStep}, {dst, dstStep}, roiSize, maskSize, borderType, borderValue, buffer},
                               filterType, lowThreshold, highThreshold, norm);
}
