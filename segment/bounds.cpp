// Walls of one pixel between regions, drawn in place in raster order. With v the value of a pixel before its turn and q
// any neighbour visited before it - left and above, in the form of 8 neighbours above to the left and right too -, a
// pixel becomes a wall where
//
//     q is not a wall by now, and q != v
//
// Rows above are finished, so that only the left neighbour is a chain: in a stretch of pixels that each differ from the
// one before, every second one becomes a wall.
#include <bit>

#include "frame/checks.h"
#include "primitives/rows.h"
#include "primitives/simd_segment.h"

namespace n0::segment {
namespace {

// Which of the pixels `differ` - from their left neighbour, and not walls for another reason - become walls. Bit 0
// follows a pixel that is a wall or not, as `wallBefore` says.
KPR_INLINE Bits64 everySecond(Bits64 differ, Bits64 walls, Bits64 wallBefore) {
    constexpr Bits64 even = 0x5555555555555555;
    const Bits64 starts = differ & ~(differ << 1), afterWall = walls << 1 | wallBefore;
    // Stretches whose walls lie on even bits. The sum carries through each of them and clears it.
    const Bits64 onEven = starts & (even ^ afterWall), carried = differ & ~(differ + onEven);
    return (carried & even) | (differ & ~carried & ~even);
}

template <bool diagonals, typename T>
KprStatus drawWalls(Rows<T> image, KprSize roi, T wallValue) {
    constexpr Kpr64s length = kLanes<T>;
    const Kpr64s width = roi.width;
    const auto wall = broadcast(wallValue);
    for (Kpr64s y = 0; y < roi.height; ++y) {
        T* row = image[y];
        const T* up = image[y - 1];
        auto before = zero<T>();  // the pixels of the vector before, as they were
        Bits64 wallBefore = 0;
        for (Kpr64s x = 0; x < width; x += length) {
            const First part{std::min(length, width - x)};
            const Bits64 behindFirst = x == 0 ? part.bits & ~Bits64{1} : part.bits;
            const auto v = load(row + x, part), left = ahead<64 - int{sizeof(T)}>(before, v);
            Bits64 walls = equal(v, wall) & part.bits;
            if (y > 0) {
                const auto divided = [&](const T* from, Bits64 lanes) {
                    const auto u = load(from, Lanes{lanes});
                    walls |= ~Bits64{equal(u, wall)} & ~Bits64{equal(u, v)} & lanes;
                };
                divided(up + x, part.bits);
                if constexpr (diagonals) {
                    divided(up + x - 1, behindFirst);
                    divided(up + x + 1, First{std::min(length, width - 1 - x)}.bits);
                }
            }
            const Bits64 differ = ~Bits64{equal(v, left)} & behindFirst & ~walls;
            walls |= everySecond(differ, walls, wallBefore);
            store(row + x, wall, Lanes{walls});
            wallBefore = walls >> (length - 1);
            before = v;
        }
    }
    return kprStatusOk;
}

template <typename T>
KprStatus boundSegments(T* image, int step, KprSize roi, T wall, int code) {
    const KprStatus status = firstFailure(notNull(image), roiHolds(roi), rowsFit<T>(roi.width, step),
                                          stepsAlign<T>(step), failIf(code != 0 && code != 1, kprStatusBadArg));
    if (status != kprStatusOk) return status;
    return code == 1 ? drawWalls<false>(Rows<T>{image, step}, roi, wall)
                     : drawWalls<true>(Rows<T>{image, step}, roi, wall);
}

}  // namespace
}  // namespace n0::segment

using namespace n0;
using namespace n0::segment;

KprStatus kpriBoundSegments_8u_C1IR(Kpr8u* image, int imageStep, KprSize roiSize, Kpr8u wallValue, int norm) {
    return boundSegments(image, imageStep, roiSize, wallValue, norm);
}

KprStatus kpriBoundSegments_16u_C1IR(Kpr16u* image, int imageStep, KprSize roiSize, Kpr16u wallValue, int norm) {
    return boundSegments(image, imageStep, roiSize, wallValue, norm);
}
