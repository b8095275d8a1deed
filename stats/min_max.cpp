// The smallest and the largest pixel of an image or of what a mask selects, with their positions.
//
// An extremum's position is the first in row-major order that holds it. A NaN wins over nothing; where there is nothing
// but NaN, the first of them is what is found. Values are given in single precision, which holds every 16-bit value.
//
// The forms without a mask run the primitive that just gives what was asked for. The masked forms reduce row after row,
// note the first row that improved on what was known, and search it alone for the column.
#include <bit>

#include "primitives/extrema.h"
#include "primitives/extrema_rows.h"
#include "stats/selection.h"

namespace n0::stats {
namespace {

struct Position {
    Kpr64s x;
    Kpr64s y;
};

// The extremum of the selected pixels, a row at a time. The lanes start at the rule's worst value, over which nothing
// wins: whether a pixel was it, or was selected at all, is looked up afterwards.
template <typename T, typename Rule>
struct RowExtremum {
    Step<T> lanes = startingStep();
    Vec<T> best = broadcast(Rule::template worst<T>);
    Kpr64s row = -1;

    KPR_INLINE static Step<T> startingStep() {
        Step<T> step;
        for (auto& v : step.v) v = broadcast(Rule::template worst<T>);
        return step;
    }

    KPR_INLINE void add(const Step<T>& step) {
        for (int i = 0; i < kVectors<T>; ++i) lanes.v[i] = Rule::choose(step.v[i], lanes.v[i]);
    }
    KPR_INLINE void endRow(Kpr64s y) {
        Vec<T> all = lanes.v[0];
        if constexpr (kVectors<T> == 2) all = Rule::choose(all, lanes.v[1]);
        if (Rule::improves(all, best) == 0) return;
        best = fold(all, [](Vec<T> a, Vec<T> b) { return Rule::choose(a, b); });
        row = y;
    }
};

// The first selected pixel, from row y on, that equals `value`.
template <typename T, typename Plane>
bool findValue(Kpr64s y, KprSize roi, const Plane& plane, Masked mask, T value, Position& found) {
    const auto wanted = broadcast(value);
    for (; y < roi.height; ++y) {
        for (Kpr64s x = 0; x < roi.width; x += kStep<T>) {
            const Kpr64s end = std::min<Kpr64s>(x + kStep<T>, roi.width);
            const Lanes selected = mask.select<T>(y, x, First{end - x});
            Bits64 hits = 0;
            for (const auto& v : plane.read(y, x, selected).v) hits |= equal(v, wanted);
            if (selected.bits == 0 || hits == 0) continue;
            for (Kpr64s i = x; i < end; ++i) {
                if (!mask.selects(y, i) || plane.pixel(y, i) != value) continue;
                found = {i, y};
                return true;
            }
        }
    }
    return false;
}

// The first selected pixel.
template <typename T>
bool findSelected(KprSize roi, Masked mask, Position& found) {
    for (Kpr64s y = 0; y < roi.height; ++y) {
        for (Kpr64s x = 0; x < roi.width; x += kStep<T>) {
            const Lanes selected = mask.select<T>(y, x, First{roi.width - x});
            if (selected.bits == 0) continue;
            found = {x + std::countr_zero(selected.bits), y};
            return true;
        }
    }
    return false;
}

// Writes what was asked for; nothing where no pixel is selected.
template <typename T, typename Rule, typename Plane>
void report(const RowExtremum<T, Rule>& known, KprSize roi, const Plane& plane, Masked mask, Kpr32f* value,
            KprPoint* index) {
    if (value == nullptr && index == nullptr) return;
    Position found{};
    if (!findValue(std::max<Kpr64s>(known.row, 0), roi, plane, mask, firstLane(known.best), found) &&
        !findSelected<T>(roi, mask, found)) {
        return;
    }
    if (value != nullptr) *value = static_cast<Kpr32f>(plane.pixel(found.y, found.x));
    if (index != nullptr) *index = {static_cast<int>(found.x), static_cast<int>(found.y)};
}

bool masksEverything(KprSize roi, Masked mask) {
    Position ignored{};
    return !findSelected<Kpr8u>(roi, mask, ignored);
}

// Whether the mask selected no pixel is inferred from what was asked for, and in two cases wrongly: a position in
// column 0 while the very first pixel is masked out, and a largest value alone.
KprStatus inferredStatus(KprSize roi, Masked mask, const Kpr32f* minValue, const Kpr32f* maxValue,
                         const KprPoint* minIndex, const KprPoint* maxIndex) {
    const KprPoint* index = minIndex != nullptr ? minIndex : maxIndex;
    bool warns = false;
    if (index != nullptr) {
        warns = index->x == 0 && !mask.selects(0, 0);
    } else if (minValue != nullptr) {
        warns = *minValue == 0 && (maxValue == nullptr || *maxValue == 0) && masksEverything(roi, mask);
    } else {
        warns = maxValue != nullptr || masksEverything(roi, mask);
    }
    return warns ? kprStatusNoMaskedPixels : kprStatusOk;
}

template <typename Plane>
KprStatus maskedMinMax(const Plane& plane, Masked mask, KprSize roi, Kpr32f* minValue, Kpr32f* maxValue,
                       KprPoint* minIndex, KprPoint* maxIndex) {
    using T = typename Plane::Element;
    RowExtremum<T, Smallest> smallest;
    RowExtremum<T, Largest> largest;
    for (Kpr64s y = 0; y < roi.height; ++y) {
        walkColumns<kStep<T>>(roi.width, [&](auto part, Kpr64s x) {
            const Lanes selected = mask.select<T>(y, x, part);
            smallest.add(plane.read(y, x, selected, broadcast(Smallest::worst<T>)));
            largest.add(plane.read(y, x, selected, broadcast(Largest::worst<T>)));
        });
        smallest.endRow(y);
        largest.endRow(y);
    }
    if (minValue != nullptr) *minValue = 0;
    if (maxValue != nullptr) *maxValue = 0;
    if (minIndex != nullptr) *minIndex = {0, 0};
    if (maxIndex != nullptr) *maxIndex = {0, 0};
    report(smallest, roi, plane, mask, minValue, minIndex);
    report(largest, roi, plane, mask, maxValue, maxIndex);
    return inferredStatus(roi, mask, minValue, maxValue, minIndex, maxIndex);
}

// ---- without a mask

// The primitives, by element and channels.
template <typename T, int channels>
struct Primitives;

template <>
struct Primitives<Kpr8u, 1> {
    static constexpr auto min = kpriMin_8u_C1R;
    static constexpr auto max = kpriMax_8u_C1R;
    static constexpr auto minMax = kpriMinMax_8u_C1R;
    static constexpr auto minIndex = kpriMinIndx_8u_C1R;
    static constexpr auto maxIndex = kpriMaxIndx_8u_C1R;
};

template <>
struct Primitives<Kpr8u, 3> {
    static constexpr auto min = kpriMin_8u_C3R;
    static constexpr auto max = kpriMax_8u_C3R;
    static constexpr auto minMax = kpriMinMax_8u_C3R;
    static constexpr auto minIndex = kpriMinIndx_8u_C3R;
    static constexpr auto maxIndex = kpriMaxIndx_8u_C3R;
};

template <>
struct Primitives<Kpr16u, 1> {
    static constexpr auto min = kpriMin_16u_C1R;
    static constexpr auto max = kpriMax_16u_C1R;
    static constexpr auto minMax = kpriMinMax_16u_C1R;
    static constexpr auto minIndex = kpriMinIndx_16u_C1R;
    static constexpr auto maxIndex = kpriMaxIndx_16u_C1R;
};

template <>
struct Primitives<Kpr16u, 3> {
    static constexpr auto min = kpriMin_16u_C3R;
    static constexpr auto max = kpriMax_16u_C3R;
    static constexpr auto minMax = kpriMinMax_16u_C3R;
    static constexpr auto minIndex = kpriMinIndx_16u_C3R;
    static constexpr auto maxIndex = kpriMaxIndx_16u_C3R;
};

template <>
struct Primitives<Kpr32f, 1> {
    static constexpr auto min = kpriMin_32f_C1R;
    static constexpr auto max = kpriMax_32f_C1R;
    static constexpr auto minMax = kpriMinMax_32f_C1R;
    static constexpr auto minIndex = kpriMinIndx_32f_C1R;
    static constexpr auto maxIndex = kpriMaxIndx_32f_C1R;
};

template <>
struct Primitives<Kpr32f, 3> {
    static constexpr auto min = kpriMin_32f_C3R;
    static constexpr auto max = kpriMax_32f_C3R;
    static constexpr auto minMax = kpriMinMax_32f_C3R;
    static constexpr auto minIndex = kpriMinIndx_32f_C3R;
    static constexpr auto maxIndex = kpriMaxIndx_32f_C3R;
};

// The cheapest primitive that gives what was asked for. The values decide: an index without its value is not written,
// and one of the values must be there, or a null pointer is written through.
template <typename T, int channels>
KprStatus minMax(const T* src, int srcStep, KprSize roi, int channel, Kpr32f* minValue, Kpr32f* maxValue,
                 KprPoint* minIndex, KprPoint* maxIndex) {
    using Kit = Primitives<T, channels>;
    T low[channels], high[channels];
    int x[channels], y[channels];
    if (maxValue == nullptr && minIndex == nullptr) {
        Kit::min(src, srcStep, roi, low);
        *minValue = static_cast<Kpr32f>(low[channel]);
    } else if (maxValue == nullptr) {
        Kit::minIndex(src, srcStep, roi, low, x, y);
        *minIndex = {x[channel], y[channel]};
        *minValue = static_cast<Kpr32f>(low[channel]);
    } else if (minValue == nullptr && maxIndex == nullptr) {
        Kit::max(src, srcStep, roi, high);
        *maxValue = static_cast<Kpr32f>(high[channel]);
    } else if (minValue == nullptr) {
        Kit::maxIndex(src, srcStep, roi, high, x, y);
        *maxIndex = {x[channel], y[channel]};
        *maxValue = static_cast<Kpr32f>(high[channel]);
    } else if (minIndex == nullptr && maxIndex == nullptr) {
        Kit::minMax(src, srcStep, roi, low, high);
        *minValue = static_cast<Kpr32f>(low[channel]);
        *maxValue = static_cast<Kpr32f>(high[channel]);
    } else {
        const Rows rows{src, srcStep};
        Running<T, channels, Smallest> smallest;
        Running<T, channels, Largest> largest;
        scanRows(rows, roi, smallest, largest);
        const Extremum<T> first = smallest.find(rows, roi, channel);
        const Extremum<T> last = largest.find(rows, roi, channel);
        *minValue = static_cast<Kpr32f>(first.value);
        *maxValue = static_cast<Kpr32f>(last.value);
        if (minIndex != nullptr) *minIndex = {first.x, first.y};
        if (maxIndex != nullptr) *maxIndex = {last.x, last.y};
    }
    return kprStatusOk;
}

}  // namespace
}  // namespace n0::stats

using namespace n0;
using namespace n0::stats;

KprStatus kpriMinMaxIndx_8u_C1R(const Kpr8u* src, int srcStep, KprSize roiSize, Kpr32f* minValue, Kpr32f* maxValue,
                                KprPoint* minIndex, KprPoint* maxIndex) {
    return firstFailure(notNull(src), roiHolds(roiSize), stepsHold<Kpr8u, 1>(roiSize, kAnyStep, srcStep))
               ?: minMax<Kpr8u, 1>(src, srcStep, roiSize, 0, minValue, maxValue, minIndex, maxIndex);
}

KprStatus kpriMinMaxIndx_16u_C1R(const Kpr16u* src, int srcStep, KprSize roiSize, Kpr32f* minValue, Kpr32f* maxValue,
                                 KprPoint* minIndex, KprPoint* maxIndex) {
    return firstFailure(notNull(src), roiHolds(roiSize), stepsHold<Kpr16u, 1>(roiSize, kAnyStep, srcStep))
               ?: minMax<Kpr16u, 1>(src, srcStep, roiSize, 0, minValue, maxValue, minIndex, maxIndex);
}

KprStatus kpriMinMaxIndx_32f_C1R(const Kpr32f* src, int srcStep, KprSize roiSize, Kpr32f* minValue, Kpr32f* maxValue,
                                 KprPoint* minIndex, KprPoint* maxIndex) {
    return firstFailure(notNull(src), roiHolds(roiSize), stepsHold<Kpr32f, 1>(roiSize, kAnyStep, srcStep))
               ?: minMax<Kpr32f, 1>(src, srcStep, roiSize, 0, minValue, maxValue, minIndex, maxIndex);
}

KprStatus kpriMinMaxIndx_8u_C3CR(const Kpr8u* src, int srcStep, KprSize roiSize, int coi, Kpr32f* minValue,
                                 Kpr32f* maxValue, KprPoint* minIndex, KprPoint* maxIndex) {
    return firstFailure(notNull(src), roiHolds(roiSize), stepsHold<Kpr8u, 3>(roiSize, kAnyStep, srcStep), coiHolds(coi))
               ?: minMax<Kpr8u, 3>(src, srcStep, roiSize, coi - 1, minValue, maxValue, minIndex, maxIndex);
}

KprStatus kpriMinMaxIndx_16u_C3CR(const Kpr16u* src, int srcStep, KprSize roiSize, int coi, Kpr32f* minValue,
                                  Kpr32f* maxValue, KprPoint* minIndex, KprPoint* maxIndex) {
    return firstFailure(notNull(src), roiHolds(roiSize), stepsHold<Kpr16u, 3>(roiSize, kAnyStep, srcStep),
                        coiHolds(coi))
               ?: minMax<Kpr16u, 3>(src, srcStep, roiSize, coi - 1, minValue, maxValue, minIndex, maxIndex);
}

KprStatus kpriMinMaxIndx_32f_C3CR(const Kpr32f* src, int srcStep, KprSize roiSize, int coi, Kpr32f* minValue,
                                  Kpr32f* maxValue, KprPoint* minIndex, KprPoint* maxIndex) {
    return firstFailure(notNull(src), roiHolds(roiSize), stepsHold<Kpr32f, 3>(roiSize, kAnyStep, srcStep),
                        coiHolds(coi))
               ?: minMax<Kpr32f, 3>(src, srcStep, roiSize, coi - 1, minValue, maxValue, minIndex, maxIndex);
}

KprStatus kpriMinMaxIndx_8u_C1MR(const Kpr8u* src, int srcStep, const Kpr8u* mask, int maskStep, KprSize roiSize,
                                 Kpr32f* minValue, Kpr32f* maxValue, KprPoint* minIndex, KprPoint* maxIndex) {
    return firstFailure(notNull(src, mask), roiHolds(roiSize), stepsHold<Kpr8u, 1>(roiSize, maskStep, srcStep))
               ?: maskedMinMax(Plane<Kpr8u>{{src, srcStep}}, Masked{{mask, maskStep}}, roiSize, minValue, maxValue,
                               minIndex, maxIndex);
}

KprStatus kpriMinMaxIndx_16u_C1MR(const Kpr16u* src, int srcStep, const Kpr8u* mask, int maskStep, KprSize roiSize,
                                  Kpr32f* minValue, Kpr32f* maxValue, KprPoint* minIndex, KprPoint* maxIndex) {
    return firstFailure(notNull(src, mask), roiHolds(roiSize), stepsHold<Kpr16u, 1>(roiSize, maskStep, srcStep))
               ?: maskedMinMax(Plane<Kpr16u>{{src, srcStep}}, Masked{{mask, maskStep}}, roiSize, minValue, maxValue,
                               minIndex, maxIndex);
}

KprStatus kpriMinMaxIndx_32f_C1MR(const Kpr32f* src, int srcStep, const Kpr8u* mask, int maskStep, KprSize roiSize,
                                  Kpr32f* minValue, Kpr32f* maxValue, KprPoint* minIndex, KprPoint* maxIndex) {
    return firstFailure(notNull(src, mask), roiHolds(roiSize), stepsHold<Kpr32f, 1>(roiSize, maskStep, srcStep))
               ?: maskedMinMax(Plane<Kpr32f>{{src, srcStep}}, Masked{{mask, maskStep}}, roiSize, minValue, maxValue,
                               minIndex, maxIndex);
}

KprStatus kpriMinMaxIndx_8u_C3CMR(const Kpr8u* src, int srcStep, const Kpr8u* mask, int maskStep, KprSize roiSize,
                                  int coi, Kpr32f* minValue, Kpr32f* maxValue, KprPoint* minIndex, KprPoint* maxIndex) {
    return firstFailure(notNull(src, mask), roiHolds(roiSize), stepsHold<Kpr8u, 3>(roiSize, maskStep, srcStep),
                        coiHolds(coi))
               ?: maskedMinMax(PlaneOfThree<Kpr8u>(src, srcStep, coi), Masked{{mask, maskStep}}, roiSize, minValue,
                               maxValue, minIndex, maxIndex);
}

KprStatus kpriMinMaxIndx_16u_C3CMR(const Kpr16u* src, int srcStep, const Kpr8u* mask, int maskStep, KprSize roiSize,
                                   int coi, Kpr32f* minValue, Kpr32f* maxValue, KprPoint* minIndex,
                                   KprPoint* maxIndex) {
    return firstFailure(notNull(src, mask), roiHolds(roiSize), stepsHold<Kpr16u, 3>(roiSize, maskStep, srcStep),
                        coiHolds(coi))
               ?: maskedMinMax(PlaneOfThree<Kpr16u>(src, srcStep, coi), Masked{{mask, maskStep}}, roiSize, minValue,
                               maxValue, minIndex, maxIndex);
}

KprStatus kpriMinMaxIndx_32f_C3CMR(const Kpr32f* src, int srcStep, const Kpr8u* mask, int maskStep, KprSize roiSize,
                                   int coi, Kpr32f* minValue, Kpr32f* maxValue, KprPoint* minIndex,
                                   KprPoint* maxIndex) {
    return firstFailure(notNull(src, mask), roiHolds(roiSize), stepsHold<Kpr32f, 3>(roiSize, maskStep, srcStep),
                        coiHolds(coi))
               ?: maskedMinMax(PlaneOfThree<Kpr32f>(src, srcStep, coi), Masked{{mask, maskStep}}, roiSize, minValue,
                               maxValue, minIndex, maxIndex);
}
