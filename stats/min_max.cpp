// The smallest and the largest pixel of an image or of what a mask selects, with their positions.
//
// An extremum's position is the first in row-major order that holds it. A NaN wins over nothing; where there is nothing
// but NaN, the first of them is what is found. Values are given in single precision, which holds every 16-bit value.
//
// The forms without a mask run the search that just gives what was asked for. The masked forms reduce row after row,
// note the first row that improved on what was known, and search it alone for the column.
#include <bit>

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
            const Lanes selected = mask.select<T>(y, x, First{std::min<Kpr64s>(roi.width - x, kStep<T>)});
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

template <typename Source>
KprStatus maskedMinMax(KprSize roi, Masked mask, Kpr32f* minValue, Kpr32f* maxValue, KprPoint* minIndex,
                       KprPoint* maxIndex, Source source) {
    using T = typename Source::Element;
    if (const KprStatus failure = callHolds(roi, mask, kprStatusOk, source)) return failure;
    const auto plane = source.plane();
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

// The cheapest search that gives what was asked for. The values decide: an index without its value is not written, and
// one of the values must be there, or a null pointer is written through.
template <int channels, typename T>
KprStatus searchFor(Rows<const T> rows, KprSize roi, int channel, Kpr32f* minValue, Kpr32f* maxValue,
                    KprPoint* minIndex, KprPoint* maxIndex) {
    using Known = ExtremaOf<T, channels>;
    T low[channels], high[channels];
    int x[channels], y[channels];
    if (maxValue == nullptr && minIndex == nullptr) {
        Known::min(rows, roi, low);
        *minValue = static_cast<Kpr32f>(low[channel]);
    } else if (maxValue == nullptr) {
        Known::minIndx(rows, roi, low, x, y);
        *minIndex = {x[channel], y[channel]};
        *minValue = static_cast<Kpr32f>(low[channel]);
    } else if (minValue == nullptr && maxIndex == nullptr) {
        Known::max(rows, roi, high);
        *maxValue = static_cast<Kpr32f>(high[channel]);
    } else if (minValue == nullptr) {
        Known::maxIndx(rows, roi, high, x, y);
        *maxIndex = {x[channel], y[channel]};
        *maxValue = static_cast<Kpr32f>(high[channel]);
    } else if (minIndex == nullptr && maxIndex == nullptr) {
        Known::minMax(rows, roi, low, high);
        *minValue = static_cast<Kpr32f>(low[channel]);
        *maxValue = static_cast<Kpr32f>(high[channel]);
    } else {
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

template <typename Source>
KprStatus minMax(KprSize roi, Kpr32f* minValue, Kpr32f* maxValue, KprPoint* minIndex, KprPoint* maxIndex,
                 Source source) {
    return callHolds(roi, Everything{}, kprStatusOk, source)
               ?: searchFor<Source::channels>(Rows{source.src, source.step}, roi, source.channel(), minValue, maxValue,
                                              minIndex, maxIndex);
}

}  // namespace
}  // namespace n0::stats

using namespace n0;
using namespace n0::stats;

KprStatus kpriMinMaxIndx_8u_C1R(const Kpr8u* src, int srcStep, KprSize roiSize, Kpr32f* minValue, Kpr32f* maxValue,
                                KprPoint* minIndex, KprPoint* maxIndex) {
    return minMax(roiSize, minValue, maxValue, minIndex, maxIndex, Single{src, srcStep});
}

KprStatus kpriMinMaxIndx_16u_C1R(const Kpr16u* src, int srcStep, KprSize roiSize, Kpr32f* minValue, Kpr32f* maxValue,
                                 KprPoint* minIndex, KprPoint* maxIndex) {
    return minMax(roiSize, minValue, maxValue, minIndex, maxIndex, Single{src, srcStep});
}

KprStatus kpriMinMaxIndx_32f_C1R(const Kpr32f* src, int srcStep, KprSize roiSize, Kpr32f* minValue, Kpr32f* maxValue,
                                 KprPoint* minIndex, KprPoint* maxIndex) {
    return minMax(roiSize, minValue, maxValue, minIndex, maxIndex, Single{src, srcStep});
}

KprStatus kpriMinMaxIndx_8u_C3CR(const Kpr8u* src, int srcStep, KprSize roiSize, int coi, Kpr32f* minValue,
                                 Kpr32f* maxValue, KprPoint* minIndex, KprPoint* maxIndex) {
    return minMax(roiSize, minValue, maxValue, minIndex, maxIndex, OfThree{src, srcStep, coi});
}

KprStatus kpriMinMaxIndx_16u_C3CR(const Kpr16u* src, int srcStep, KprSize roiSize, int coi, Kpr32f* minValue,
                                  Kpr32f* maxValue, KprPoint* minIndex, KprPoint* maxIndex) {
    return minMax(roiSize, minValue, maxValue, minIndex, maxIndex, OfThree{src, srcStep, coi});
}

KprStatus kpriMinMaxIndx_32f_C3CR(const Kpr32f* src, int srcStep, KprSize roiSize, int coi, Kpr32f* minValue,
                                  Kpr32f* maxValue, KprPoint* minIndex, KprPoint* maxIndex) {
    return minMax(roiSize, minValue, maxValue, minIndex, maxIndex, OfThree{src, srcStep, coi});
}

KprStatus kpriMinMaxIndx_8u_C1MR(const Kpr8u* src, int srcStep, const Kpr8u* mask, int maskStep, KprSize roiSize,
                                 Kpr32f* minValue, Kpr32f* maxValue, KprPoint* minIndex, KprPoint* maxIndex) {
    return maskedMinMax(roiSize, Masked{{mask, maskStep}}, minValue, maxValue, minIndex, maxIndex,
                        Single{src, srcStep});
}

KprStatus kpriMinMaxIndx_16u_C1MR(const Kpr16u* src, int srcStep, const Kpr8u* mask, int maskStep, KprSize roiSize,
                                  Kpr32f* minValue, Kpr32f* maxValue, KprPoint* minIndex, KprPoint* maxIndex) {
    return maskedMinMax(roiSize, Masked{{mask, maskStep}}, minValue, maxValue, minIndex, maxIndex,
                        Single{src, srcStep});
}

KprStatus kpriMinMaxIndx_32f_C1MR(const Kpr32f* src, int srcStep, const Kpr8u* mask, int maskStep, KprSize roiSize,
                                  Kpr32f* minValue, Kpr32f* maxValue, KprPoint* minIndex, KprPoint* maxIndex) {
    return maskedMinMax(roiSize, Masked{{mask, maskStep}}, minValue, maxValue, minIndex, maxIndex,
                        Single{src, srcStep});
}

KprStatus kpriMinMaxIndx_8u_C3CMR(const Kpr8u* src, int srcStep, const Kpr8u* mask, int maskStep, KprSize roiSize,
                                  int coi, Kpr32f* minValue, Kpr32f* maxValue, KprPoint* minIndex, KprPoint* maxIndex) {
    return maskedMinMax(roiSize, Masked{{mask, maskStep}}, minValue, maxValue, minIndex, maxIndex,
                        OfThree{src, srcStep, coi});
}

KprStatus kpriMinMaxIndx_16u_C3CMR(const Kpr16u* src, int srcStep, const Kpr8u* mask, int maskStep, KprSize roiSize,
                                   int coi, Kpr32f* minValue, Kpr32f* maxValue, KprPoint* minIndex,
                                   KprPoint* maxIndex) {
    return maskedMinMax(roiSize, Masked{{mask, maskStep}}, minValue, maxValue, minIndex, maxIndex,
                        OfThree{src, srcStep, coi});
}

KprStatus kpriMinMaxIndx_32f_C3CMR(const Kpr32f* src, int srcStep, const Kpr8u* mask, int maskStep, KprSize roiSize,
                                   int coi, Kpr32f* minValue, Kpr32f* maxValue, KprPoint* minIndex,
                                   KprPoint* maxIndex) {
    return maskedMinMax(roiSize, Masked{{mask, maskStep}}, minValue, maxValue, minIndex, maxIndex,
                        OfThree{src, srcStep, coi});
}
