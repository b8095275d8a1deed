// Inpainting: sizes, and what is known of a hole before an image is.
#include <bit>

#include "distance/inpaint_state.h"
#include "frame/checks.h"
#include "primitives/math.h"

namespace n0::distance {
namespace {

constexpr KprStatus parametersServe(Kpr32f radius, int method) {
    return failIf(!(radius >= 1) || method < 0 || method > 1, kprStatusBadArg);
}

constexpr KprStatus channelsServe(int channels) {
    return failIf(channels != 1 && channels != 3, kprStatusBadChannelCount);
}

// Calls visit(x, y) for each pixel of the mask, in raster order.
template <typename Visit>
void eachSet(Rows<const Kpr8u> mask, KprSize roi, Visit visit) {
    for (Kpr64s y = 0; y < roi.height; ++y) {
        walkColumns<kLanes<Kpr8u>>(roi.width, [&](auto part, Kpr64s x) {
            for (Bits64 bits = loadMask<Kpr8u>(mask[y] + x, part); bits != 0; bits &= bits - 1)
                visit(static_cast<Kpr32s>(x + std::countr_zero(bits)), static_cast<Kpr32s>(y));
        });
    }
}

Kpr64s countSet(Rows<const Kpr8u> mask, KprSize roi) {
    Kpr64s count = 0;
    for (Kpr64s y = 0; y < roi.height; ++y) {
        walkColumns<kLanes<Kpr8u>>(roi.width, [&](auto part, Kpr64s x) {
            count += std::popcount(Bits64{loadMask<Kpr8u>(mask[y] + x, part)});
        });
    }
    return count;
}

KprStatus putSizes(Rows<const Kpr8u> mask, KprSize roi, Kpr32f radius, int channels, int* stateSize, int* bufferSize) {
    int state = 0, buffer = 0;
    const KprStatus status =
        putSize(stateBytes(roi, radius), &state)
            ?: putSize(InpaintWork::bytes(roi, 0, channels), &buffer)  // larger masks are not looked at
            ?: putSize(InpaintWork::bytes(roi, countSet(mask, roi), channels), &buffer);
    if (status == kprStatusOk) {
        *stateSize = state;
        *bufferSize = buffer;
    }
    return status;
}

// A double that sorts by a distance, NaN last, and then by a pixel's number, which is its lower half. It is never
// subnormal: the caller may have those compared as zeros.
Kpr64f keyOf(Kpr32f distance, Bits64 number) {
    constexpr Bits64 leastExponent = 0x00100000, sign = 0x80000000;
    Bits64 high = std::bit_cast<unsigned>(distance + 0.0F);  // -0 becomes 0
    if (distance != distance) high = 0x7fc00000;
    const Bits64 low = (high & sign) != 0 ? number ^ 0xffffffff : number;  // negative doubles sort the other way
    return std::bit_cast<Kpr64f>(((high + leastExponent) << 32) | low);
}

Place placeOf(Kpr64f key, Kpr32s width) {
    const auto pattern = std::bit_cast<Bits64>(key);
    auto number = static_cast<unsigned>(pattern);
    if ((pattern >> 63) != 0) number = ~number;
    return {static_cast<Kpr32s>(number % static_cast<unsigned>(width)),
            static_cast<Kpr32s>(number / static_cast<unsigned>(width))};
}

void orderPixels(Rows<const Kpr32f> dist, Rows<const Kpr8u> mask, KprSize roi, Kpr64s count, Place* order) {
    auto* const keys = reinterpret_cast<Kpr64f*>(order);
    Kpr64s filled = 0;
    eachSet(mask, roi, [&](Kpr32s x, Kpr32s y) {
        const Kpr64s number = Kpr64s{y} * roi.width + x;
        keys[filled++] = keyOf(dist[y][x], static_cast<Bits64>(number));
    });
    kprsSortAscend_64f_I(keys, static_cast<int>(count));
    for (Kpr64s i = 0; i < count; ++i) {
        Kpr64f key;
        __builtin_memcpy(&key, order + i, sizeof key);
        order[i] = placeOf(key, roi.width);
    }
}

// Tiles from which a pixel is filled, and one pixel more: gradients look at neighbours.
void markTiles(const InpaintWork& work, KprSize roi, Disc disc, Kpr64s count) {
    const Kpr64s tiles = InpaintWork::tiles(roi), reachX = disc.reachX + 1, reachY = disc.reachY + 1;
    std::fill(work.near.first, work.near.first + tiles * roi.height, Kpr8u{0});
    for (Kpr64s i = 0; i < count; ++i) {
        const Place p = work.order[i];
        const Kpr64s first = std::max<Kpr64s>(p.x - reachX, 0) / kTile;
        const Kpr64s last = std::min<Kpr64s>(p.x + reachX, roi.width - 1) / kTile;
        const Kpr64s end = std::min<Kpr64s>(p.y + reachY + 1, roi.height);
        for (Kpr64s y = std::max<Kpr64s>(p.y - reachY, 0); y < end; ++y) {
            for (Kpr64s t = first; t <= last; ++t) work.near[y][t] = 1;
        }
    }
}

void tabulate(Disc disc, Kpr32f radius, int method, Kpr32f* table) {
    const Kpr64f limit = Kpr64f{radius} * radius;
    for (Kpr64s dy = -disc.reachY; dy <= disc.reachY; ++dy) {
        for (Kpr64s i = 0; i < disc.stride(); ++i) {
            const Kpr64s dx = i - disc.reachX;
            const auto squared = static_cast<Kpr64f>(dx * dx + dy * dy);
            const bool within = squared > 0 && squared <= limit && dx <= disc.reachX;
            const Kpr64f weight = method == 0 ? 1 / (squared * kprsSqrtOne(squared)) : 1 / (1 + squared * squared);
            *table++ = within ? static_cast<Kpr32f>(weight) : 0;
        }
    }
}

KprStatus prepare(KprInpaintState** state, Rows<const Kpr32f> dist, Rows<const Kpr8u> mask, KprSize roi, Kpr32f radius,
                  int method, int channels, Kpr8u* stateMemory, Kpr8u* buffer) {
    auto* const block = alignedUp<KprInpaintState>(stateMemory);
    const Kpr64s count = countSet(mask, roi);
    *block = {roi, count, radius, method, channels};
    *state = block;
    if (count == 0) return kprStatusOk;
    const Disc disc(roi, radius);
    tabulate(disc, radius, method, tableOf(block));
    const InpaintWork work(buffer, roi, count, channels);
    orderPixels(dist, mask, roi, count, work.order);
    markTiles(work, roi, disc, count);
    std::fill(work.unknown.first, work.unknown.first + Kpr64s{roi.width} * roi.height, Kpr8u{0});
    return kprStatusOk;
}

KprStatus checkedInit(KprInpaintState** state, const Kpr32f* dist, int distStep, const Kpr8u* mask, int maskStep,
                      KprSize roi, Kpr32f radius, int method, int channels, Kpr8u* stateMemory, Kpr8u* buffer) {
    return firstFailure(notNull(mask), roiHolds(roi), rowsFit<Kpr8u>(roi.width, maskStep), notNull(state, dist),
                        rowsFit<Kpr32f>(roi.width, distStep), stepsAlign<Kpr32f>(distStep), notNull(stateMemory))
               ?: failIf(buffer == nullptr && countSet({mask, maskStep}, roi) > 0, kprStatusNullPtr)
               ?: parametersServe(radius, method)
               ?: prepare(state, {dist, distStep}, {mask, maskStep}, roi, radius, method, channels, stateMemory,
                          buffer);
}

}  // namespace
}  // namespace n0::distance

using namespace n0;
using namespace n0::distance;

KprStatus kpriInpaintGetSize(const Kpr8u* mask, int maskStep, KprSize roiSize, Kpr32f radius, int method, int channels,
                             int* stateSize, int* bufferSize) {
    return firstFailure(notNull(mask, stateSize, bufferSize), roiHolds(roiSize),
                        rowsFit<Kpr8u>(roiSize.width, maskStep), parametersServe(radius, method),
                        channelsServe(channels))
               ?: putSizes({mask, maskStep}, roiSize, radius, channels, stateSize, bufferSize);
}

KprStatus kpriInpaintInit_8u_C1R(KprInpaintState** state, const Kpr32f* dist, int distStep, const Kpr8u* mask,
                                 int maskStep, KprSize roiSize, Kpr32f radius, int method, Kpr8u* stateMemory,
                                 Kpr8u* buffer) {
    return checkedInit(state, dist, distStep, mask, maskStep, roiSize, radius, method, 1, stateMemory, buffer);
}

KprStatus kpriInpaintInit_8u_C3R(KprInpaintState** state, const Kpr32f* dist, int distStep, const Kpr8u* mask,
                                 int maskStep, KprSize roiSize, Kpr32f radius, int method, Kpr8u* stateMemory,
                                 Kpr8u* buffer) {
    return checkedInit(state, dist, distStep, mask, maskStep, roiSize, radius, method, 3, stateMemory, buffer);
}
