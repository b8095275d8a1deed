// Filters whose kernels are constants, as rules of two steps: `across` filters a row, into one plane or several of a
// ring's row, and `down` makes an output row from the ring.
//
// Integers are summed in 16 bits that wrap, and never get there. Floats are summed in the order of the taps by fused
// steps. A tap of zero takes no part: what lies under it is not looked at.
#pragma once

#include "primitives/edged_rows.h"
#include "primitives/ring.h"
#include "primitives/rows.h"

namespace n0::filter {

// sum + tap * v, one fused step of floats.
template <int tap, typename T>
KPR_INLINE Vec<T> plusTimes(Vec<T> sum, Vec<T> v) {
    if constexpr (tap == 0)
        return sum;
    else if constexpr (tap == 1)
        return sum + v;
    else if constexpr (tap == -1)
        return sum - v;
    else if constexpr (std::is_floating_point_v<T>)
        return fma(v, broadcast(static_cast<T>(tap)), sum);
    else
        return sum + v * broadcast(static_cast<T>(tap));
}

// Index 0 is the tap with the lowest coordinate, and not zero.
template <int first, int... others>
struct Kernel {
    static constexpr int kRadius = sizeof...(others) / 2;

    template <typename T, typename At>
    KPR_INLINE static Vec<T> sum(At at) {
        Vec<T> total = first == 1 ? at(0) : at(0) * broadcast(static_cast<T>(first));
        int i = 0;
        ((++i, static_cast<void>(others == 0 ? 0 : (total = plusTimes<others, T>(total, at(i)), 0))), ...);
        return total;
    }
};

using Dx3 = Kernel<-1, 0, 1>;
using DxNeg3 = Kernel<1, 0, -1>;
using Dx5 = Kernel<-1, -2, 0, 2, 1>;
using DxNeg5 = Kernel<1, 2, 0, -2, -1>;
using Sobel3 = Kernel<1, 2, 1>;
using Sobel5 = Kernel<1, 4, 6, 4, 1>;
using Scharr3 = Kernel<3, 10, 3>;
using Ones3 = Kernel<1, 1, 1>;
using Ones5 = Kernel<1, 1, 1, 1, 1>;

// One kernel across and one down.
template <typename T, typename Across, typename Down>
struct Separable {
    using Middle = T;
    static constexpr int kRadius = Across::kRadius;
    static constexpr int kPlanes = 1;

    template <typename Part, typename Src>
    KPR_INLINE static void across(Part part, const Src* s, T* out, Kpr64s) {
        store(out, Across::template sum<T>([=](int i) { return loadAs<T>(s + i - kRadius, part); }), part);
    }
    template <typename Part, typename At, typename Dst>
    KPR_INLINE static void down(Part part, At at, Dst* dst) {
        store(dst, Down::template sum<T>([=](int i) { return load(at(i, 0), part); }), part);
    }
};

// out[x] for `count` columns; `s` lies under the kernel's centre.
template <typename Rule, typename Src>
[[gnu::noinline]] void filterAcross(const Src* s, typename Rule::Middle* out, Kpr64s plane, Kpr64s count) {
    walkRow<kLanes<typename Rule::Middle>>(
        count, [plane](auto part, const Src* from, typename Rule::Middle* to) { Rule::across(part, from, to, plane); },
        s, out);
}

// What a walk calls for each row: the two steps of a rule, through pointers, so that one walk serves all rules of a type.
template <typename Src, typename Middle>
struct FixedSteps {
    static constexpr int kMostRadius = 2, kMostPlanes = 3;
    int radius, planes;
    void (*across)(const Src* s, Middle* out, Kpr64s plane, Kpr64s count);
    void* owner;
    void (*down)(void* owner, const Middle* const* window, Kpr64s y);
};

template <typename Src, typename Middle>
[[gnu::noinline]] void walkSteps(const FixedSteps<Src, Middle>& steps, Axis columns, Axis rows, Rows<const Src> src,
                                 Src value, Middle* ring, Kpr64s plane) {
    using Steps = FixedSteps<Src, Middle>;
    constexpr Kpr64s lanes = kLanes<Middle>;
    const int radius = steps.radius;
    EdgedRows<Src, 1, lanes> edged(src, endOf(rows, radius), columns, radius, radius, &value, nullptr);
    walkRing(
        rows, radius, Ring<Middle>{ring, steps.planes * plane, nullptr},
        [&](Kpr64s y, Middle* out) {
            for (const RowPart<Src>& part : edged.row(y))
                steps.across(part.src + radius, out + part.x, plane, part.count);
        },
        [&](Middle* out) {  // a row of the constant is filtered like any other
            Src constants[lanes + 2 * Steps::kMostRadius];
            Middle filtered[Steps::kMostPlanes * lanes];
            for (Src& pixel : constants) pixel = value;
            steps.across(constants + radius, filtered, lanes, lanes);
            for (int i = 0; i < steps.planes; ++i)
                fillPixels<1>(out + Kpr64s{i} * plane, columns.size, filtered + Kpr64s{i} * lanes);
        },
        [&](const Middle* const* window, Kpr64s y) { steps.down(steps.owner, window, y); });
}

// Passes a ROI, or a strip of its columns, through a ring of 2 * kRadius + 1 rows of kPlanes planes: `down(window, y)`
// once for each of its rows.
template <typename Rule, typename Src, typename Down>
void walkFixed(Axis columns, Axis rows, Rows<const Src> src, Src value, typename Rule::Middle* ring, Kpr64s plane,
               Down down) {
    using Middle = typename Rule::Middle;
    const FixedSteps<Src, Middle> steps = {
        Rule::kRadius, Rule::kPlanes, filterAcross<Rule, Src>, &down,
        [](void* owner, const Middle* const* window, Kpr64s y) { (*static_cast<Down*>(owner))(window, y); }};
    static_assert(Rule::kRadius <= steps.kMostRadius && Rule::kPlanes <= steps.kMostPlanes);
    walkSteps(steps, columns, rows, src, value, ring, plane);
}

// Filters a ROI, or a strip of its columns, into an image.
template <typename Rule, typename Src, typename Dst>
void filterFixed(Axis columns, Axis rows, Rows<const Src> src, Rows<Dst> dst, Src value, typename Rule::Middle* ring,
                 Kpr64s plane) {
    using Middle = typename Rule::Middle;
    constexpr int size = 2 * Rule::kRadius + 1;
    walkFixed<Rule>(columns, rows, src, value, ring, plane, [=](const Middle* const* window, Kpr64s y) {
        const Middle* from[size];  // a copy: a store to dst could change the window, for all that a compiler knows
        for (int i = 0; i < size; ++i) from[i] = window[i];
        Dst* const out = dst[y];
        walkRow<kLanes<Middle>>(
            columns.size,
            [=](auto part, Dst* d) {
                Rule::down(
                    part, [=](int row, int which) { return from[row] + which * plane + (d - out); }, d);
            },
            out);
    });
}

}  // namespace n0::filter
