// Masks of bytes that are a whole rectangle of one height, about a row of their middle: an extremum along each row
// once, an extremum of rows, and the height at last.
#pragma once

#include "morph/gray.h"
#include "primitives/edged_rows.h"
#include "primitives/ring.h"

namespace n0::morph {

constexpr Kpr32s kWidestBox = 64;  // what rows need beside their ends then lies on the stack

inline bool isBox(GrayMask<Kpr8u> mask) {
    const GrayHeader& h = *mask.header;
    return h.flat != 0 && Kpr64s{h.taps} == Kpr64s{h.width} * h.height && h.width <= kWidestBox &&
           mask.above() == mask.below();
}

// The pixel is under a tap of its own: what lies outside and takes no part may as well have the weakest value.
template <typename Rule>
KprStatus boxExtremum(Rows<const Kpr8u> src, Rows<Kpr8u> dst, KprSize roi, Border border, Kpr8u value,
                      GrayMask<Kpr8u> mask, Workspace work) {
    constexpr Kpr64s step = kLanes<Kpr8u>;
    if (border.base == kprBorderDefault) {
        border.base = kprBorderConstant;
        value = Rule::kNothingLeft;
    }
    const Axis rows = rowsOf(roi.height, border, LonePixel::Reflects);
    const Kpr64s width = roi.width, height = mask.header->height;
    const Kpr32s columns = mask.header->width;
    auto* const pointers = work.take<const Kpr8u*>(height);
    EdgedRows<Kpr8u, 1, step> edged(src, endOf(rows, mask.below()), columnsOf(width, border, LonePixel::Reflects),
                                    static_cast<int>(mask.left()), static_cast<int>(mask.right()), &value, nullptr);
    // One after another `count` vectors, each of a number that is known where it matters.
    const auto joined = [](Kpr64s count, auto vectorAt) __attribute__((always_inline)) {
        if (count == 3) return Rule::join(Rule::join(vectorAt(0), vectorAt(1)), vectorAt(2));
        auto v = vectorAt(0);
        for (Kpr64s i = 1; i < count; ++i) v = Rule::join(v, vectorAt(i));
        return v;
    };
    const Kpr32s rise = mask.taps[0].height;
    const auto depth = broadcast(static_cast<Kpr8u>(rise < 0 ? -rise : rise));
    const bool lowers = rise < 0;
    walkRing(
        rows, static_cast<int>(mask.above()), Ring<Kpr8u>{work.take<Kpr8u>(height * width), width, pointers},
        [&](Kpr64s y, Kpr8u* out) {
            for (const RowPart<Kpr8u>& part : edged.row(y)) {
                walkColumns<step>(part.count, [&](auto lanes, Kpr64s x) {
                    store(out + part.x + x, joined(columns, [&](Kpr64s i) { return load(part.src + x + i, lanes); }),
                          lanes);
                });
            }
        },
        [&](Kpr8u* out) { std::fill(out, out + width, value); },
        [&](const Kpr8u* const* window, Kpr64s y) {
            walkColumns<step>(width, [&](auto lanes, Kpr64s x) {
                const auto v = joined(height, [&](Kpr64s j) { return load(window[j] + x, lanes); });
                store(dst[y] + x, lowers ? Rule::lower(v, depth) : Rule::raise(v, depth), lanes);
            });
        });
    return kprStatusOk;
}

}  // namespace n0::morph
