// The pixels along a digital line, its ends included, one after another. With M and m the longer and the shorter of the
// two distances, the longer one down where they are equal, and e = M at first: take a pixel, then
//
//     e = e - 2 * m; where that is below zero, e = e + 2 * M and a step the shorter way; a step the longer way
#include "frame/checks.h"
#include "primitives/rows.h"

namespace n0::geometry {
namespace {

template <int channels, typename T>
KprStatus sampleLine(const T* src, int srcStep, KprSize roi, T* dst, KprPoint start, KprPoint end) {
    const auto outside = [=](KprPoint p) { return p.x < 0 || p.y < 0 || p.x >= roi.width || p.y >= roi.height; };
    const KprStatus status =
        firstFailure(notNull(src, dst), roiHolds(roi), rowsFit<T>(Kpr64s{channels} * roi.width, srcStep),
                     stepsAlign<T>(srcStep), failIf(outside(start) || outside(end), kprStatusOutOfRange));
    if (status != kprStatusOk) return status;

    const Kpr64s dx = Kpr64s{end.x} - start.x, dy = Kpr64s{end.y} - start.y;
    const Kpr64s across = dx < 0 ? -dx : dx, along = dy < 0 ? -dy : dy;
    const Kpr64s stepX = (dx < 0 ? -1 : 1) * Kpr64s{channels * sizeof(T)}, stepY = dy < 0 ? -Kpr64s{srcStep} : srcStep;
    const bool down = across <= along;
    const Kpr64s major = down ? along : across, minor = down ? across : along;
    const Kpr64s majorStep = down ? stepY : stepX, minorStep = down ? stepX : stepY;
    const auto* at = reinterpret_cast<const char*>(Rows<const T>{src, srcStep}[start.y] + Kpr64s{channels} * start.x);
    Kpr64s e = major;
    for (Kpr64s n = major;; --n) {
        for (int c = 0; c < channels; ++c) *dst++ = reinterpret_cast<const T*>(at)[c];
        if (n == 0) return kprStatusOk;
        e -= 2 * minor;
        const bool beside = e < 0;
        e += beside ? 2 * major : 0;
        at += majorStep + (beside ? minorStep : 0);
    }
}

}  // namespace
}  // namespace n0::geometry

using namespace n0;
using namespace n0::geometry;

KprStatus kpriSampleLine_8u_C1R(const Kpr8u* src, int srcStep, KprSize roiSize, Kpr8u* dst, KprPoint start,
                                KprPoint end) {
    return sampleLine<1>(src, srcStep, roiSize, dst, start, end);
}

KprStatus kpriSampleLine_8u_C3R(const Kpr8u* src, int srcStep, KprSize roiSize, Kpr8u* dst, KprPoint start,
                                KprPoint end) {
    return sampleLine<3>(src, srcStep, roiSize, dst, start, end);
}

KprStatus kpriSampleLine_16u_C1R(const Kpr16u* src, int srcStep, KprSize roiSize, Kpr16u* dst, KprPoint start,
                                 KprPoint end) {
    return sampleLine<1>(src, srcStep, roiSize, dst, start, end);
}

KprStatus kpriSampleLine_16u_C3R(const Kpr16u* src, int srcStep, KprSize roiSize, Kpr16u* dst, KprPoint start,
                                 KprPoint end) {
    return sampleLine<3>(src, srcStep, roiSize, dst, start, end);
}

KprStatus kpriSampleLine_32f_C1R(const Kpr32f* src, int srcStep, KprSize roiSize, Kpr32f* dst, KprPoint start,
                                 KprPoint end) {
    return sampleLine<1>(src, srcStep, roiSize, dst, start, end);
}

KprStatus kpriSampleLine_32f_C3R(const Kpr32f* src, int srcStep, KprSize roiSize, Kpr32f* dst, KprPoint start,
                                 KprPoint end) {
    return sampleLine<3>(src, srcStep, roiSize, dst, start, end);
}
