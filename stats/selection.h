// Reductions over the selected pixels of an image: every statistic is a visitor that is shown them a step at a time.
//
// A plane is the one channel of an image or the chosen one of three. What a visitor sees of either is alike: a step of
// pixels in which those that are not selected hold zero, or what `other` has in their lanes, and are not even read.
#pragma once

#include <algorithm>
#include <bit>

#include "frame/checks.h"
#include "primitives/channels.h"
#include "primitives/rows.h"

namespace n0::stats {

// A step is one vector of integers, two of floats: the two chains of additions then hide each other's latency.
template <typename T>
inline constexpr int kVectors = std::is_floating_point_v<T> ? 2 : 1;
template <typename T>
inline constexpr int kStep = kVectors<T>* kLanes<T>;

template <typename T>
struct Step {
    Vec<T> v[kVectors<T>];
};

// The lanes of the step's vector `i`.
KPR_INLINE All lanesOf(All, int, int) { return {}; }
KPR_INLINE Lanes lanesOf(Lanes selected, int i, int lanes) {
    return {i == 0 ? selected.bits : selected.bits >> (i * lanes)};
}

template <typename T>
struct Plane {
    static constexpr int channels = 1;
    using Element = T;

    Rows<const T> rows;

    KPR_INLINE bool gapless(Kpr64s width) const { return rows.gapless(width); }
    KPR_INLINE T pixel(Kpr64s y, Kpr64s x) const { return rows[y][x]; }

    template <typename Selected, typename... Other>
    KPR_INLINE Step<T> read(Kpr64s y, Kpr64s x, Selected selected, Other... other) const {
        Step<T> step;
        for (int i = 0; i < kVectors<T>; ++i) {
            step.v[i] = load(rows[y] + x + i * kLanes<T>, lanesOf(selected, i, kLanes<T>), other...);
        }
        return step;
    }
};

// The channel `coi`, 1 to 3, of three interleaved ones. A vector's worth of its elements lies in three vectors, in each
// lane of one of them: loading each vector's own lanes over the others' brings the channel together. Pixel p then lies
// in lane (3p + coi - 1) mod the lanes; the order matters to sums of floats alone, which are put in order.
template <typename T>
struct PlaneOfThree {
    static constexpr int channels = 3;
    using Element = T;

    Rows<const T> rows;
    int channel;         // from 0
    Bits64 lanes[3];     // of each vector, the lanes that bear the channel
    int before[3];       // and how many the vectors before it have
    Vec<Kpr32s> pixels;  // the lane of each pixel, for floats

    PlaneOfThree(const T* src, int step, int coi) : rows{src, step}, channel(coi - 1) {
        for (int v = 0; v < 3; ++v) {
            lanes[v] = channelLanes<T, 3>(channel, v);
            before[v] = v == 0 ? 0 : before[v - 1] + std::popcount(lanes[v - 1]);
        }
        if constexpr (std::is_floating_point_v<T>) {
            pixels = laneConstant<Kpr32s>([](int p) { return 3 * p % 16; }) + broadcast(channel);
            pixels = pixels & broadcast(kLanes<T> - 1);
        }
    }

    KPR_INLINE bool gapless(Kpr64s width) const { return rows.gapless(3 * width); }
    KPR_INLINE T pixel(Kpr64s y, Kpr64s x) const { return rows[y][3 * x + channel]; }

    KPR_INLINE Lanes bearing(All, int v) const { return {lanes[v]}; }
    KPR_INLINE Lanes bearing(Lanes selected, int v) const {
        return {scatterBits(selected.bits >> before[v], lanes[v])};
    }

    template <typename Selected, typename... Other>
    KPR_INLINE Step<T> read(Kpr64s y, Kpr64s x, Selected selected, Other... other) const {
        Step<T> step;
        for (int i = 0; i < kVectors<T>; ++i) {
            const T* src = rows[y] + 3 * (x + i * kLanes<T>);
            const auto part = lanesOf(selected, i, kLanes<T>);
            Vec<T> v = load(src, bearing(part, 0), other...);
            v = load(src + kLanes<T>, bearing(part, 1), v);
            v = load(src + 2 * kLanes<T>, bearing(part, 2), v);
            if constexpr (std::is_floating_point_v<T>) v = permute(v, pixels);
            step.v[i] = v;
        }
        return step;
    }
};

// What selects: nothing but the ROI, or a mask's bytes that are not zero.
struct Everything {
    static constexpr KprStatus isThere() { return kprStatusOk; }
    static constexpr KprStatus fits(Kpr64s) { return kprStatusOk; }

    KPR_INLINE static bool gapless(Kpr64s) { return true; }

    template <typename T, typename Part>
    KPR_INLINE static Part select(Kpr64s, Kpr64s, Part part) {
        return part;
    }
};

struct Masked {
    Rows<const Kpr8u> rows;

    KprStatus isThere() const { return notNull(rows.first); }
    KprStatus fits(Kpr64s width) const { return rowsFit<Kpr8u>(width, rows.step); }

    KPR_INLINE bool gapless(Kpr64s width) const { return rows.gapless(width); }
    KPR_INLINE bool selects(Kpr64s y, Kpr64s x) const { return rows[y][x] != 0; }

    template <typename T, typename Part>
    KPR_INLINE Lanes select(Kpr64s y, Kpr64s x, Part part) const {
        if constexpr (kStep<T> == 64) return {loadMask<Kpr8u>(rows[y] + x, part)};
        if constexpr (kStep<T> == 32) return {loadMask<Kpr16u>(rows[y] + x, part)};
    }
};

// Shows `visitor.take(selected, steps...)` every step of every row.
//
// Floats are widened at each row's end, where `visitor.widen()` is called: the rows are part of their sums. Integers
// are the same in any order, so that images without gaps between their rows are one long row, and `widen` is called
// only before a lane could have taken more than 2^14 steps, and at the end.
template <typename Selection, typename Visitor, typename Plane1, typename... Rest>
KPR_INLINE void visitRoi(KprSize roi, Selection selection, Visitor& visitor, Plane1 plane, Rest... planes) {
    using T = typename Plane1::Element;
    constexpr bool rowsMatter = std::is_floating_point_v<T>;
    constexpr bool longKernel = Plane1::channels == 3 && (rowsMatter || sizeof...(Rest) != 0);
    constexpr Loop loop = longKernel ? Loop::Rolled : Loop::Unrolled;
    constexpr Kpr64s most = 1 << 13;
    constexpr Kpr64s stretch = rowsMatter ? Kpr64s{1} << 62 : most * kStep<T>;
    Kpr64s width = roi.width;
    Kpr64s height = roi.height;
    if (!rowsMatter && selection.gapless(width) && plane.gapless(width) && (planes.gapless(width) && ...)) {
        width *= height;
        height = 1;
    }
    Kpr64s held = 0;
    for (Kpr64s y = 0; y < height; ++y) {
        for (Kpr64s start = 0; start < width; start += stretch) {
            const Kpr64s count = std::min(width - start, stretch);
            walkColumns<kStep<T>, loop>(count, [&](auto part, Kpr64s x) {
                const auto selected = selection.template select<T>(y, start + x, part);
                visitor.take(selected, plane.read(y, start + x, selected), planes.read(y, start + x, selected)...);
            });
            held += (count + kStep<T> - 1) / kStep<T>;
            if (rowsMatter || held > most) {
                visitor.widen();
                held = 0;
            }
        }
    }
    if (!rowsMatter) visitor.widen();
}

// ---- what a call names, and its checks

// The image of one channel.
template <typename T>
struct Single {
    static constexpr int channels = 1;
    using Element = T;

    const T* src;
    int step;

    static constexpr KprStatus coiHolds() { return kprStatusOk; }
    static constexpr int channel() { return 0; }
    Plane<T> plane() const { return {{src, step}}; }
};

// Channel `coi` of an image of three.
template <typename T>
struct OfThree {
    static constexpr int channels = 3;
    using Element = T;

    const T* src;
    int step;
    int coi;

    KprStatus coiHolds() const { return n0::coiHolds(coi); }
    int channel() const { return coi - 1; }
    PlaneOfThree<T> plane() const { return {src, step, coi}; }
};

template <typename T>
Single(const T*, int) -> Single<T>;
template <typename T>
OfThree(const T*, int, int) -> OfThree<T>;

// Of one or two sources alike, what selects, and where the result goes if it must go anywhere: all pointers, the ROI,
// all lengths, all multiples, the channel of interest.
template <typename Selection, typename Source, typename... Same>
KprStatus callHolds(KprSize roi, Selection selection, KprStatus resultIsThere, Source source, Same... second) {
    using T = typename Source::Element;
    return firstFailure(notNull(source.src, second.src...), selection.isThere(), resultIsThere, roiHolds(roi),
                        rowsFit<T>({roi.width, Source::channels}, source.step, second.step...),
                        selection.fits(roi.width), stepsAlign<T>(source.step, second.step...), source.coiHolds());
}

}  // namespace n0::stats
