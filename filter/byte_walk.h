// Small filters of bytes into bytes without a ring: 64 columns at a time are walked down, with the rows of the kernel
// in registers.
//
// A rule has kRadius, a type Row of 64 filtered columns, and
//
//     across(part, nearest, src)   filters columns that read pixels from src on; those of `nearest` read none that the
//                                  border rule has made
//     outside(src)                 the same of a row that lies in a constant border, of which src holds a piece
//     follow(above, row)           where a rule has it, completes a row by what it takes from the one above
//     down(row)                    makes results of row(Turn<0>{}) to row(Turn<2 * kRadius>{})
#pragma once

#include "primitives/edged_rows.h"
#include "primitives/rows.h"

namespace n0::filter {

// The elements of a row that read no synthesised pixel.
struct Inside {
    Kpr64s begin, end;

    // Which of 64 elements from x on.
    [[nodiscard]] KPR_INLINE Lanes from(Kpr64s x) const {
        const Kpr64s first = std::clamp<Kpr64s>(begin - x, 0, 64), last = std::clamp<Kpr64s>(end - x, first, 64);
        return {First{last}.bits & ~First{first}.bits};
    }
};

constexpr Inside insideOf(Axis columns, int radius, int channels) {
    return {columns.lowInMemory ? 0 : Kpr64s{radius} * channels,
            (columns.size - (columns.highInMemory ? 0 : radius)) * channels};
}

// Where row y of a band is read from, its first row being `first`; null for a row of the constant.
[[gnu::noinline]] inline const Kpr8u* sourceOf(Kpr64s y, Axis rows, Rows<const Kpr8u> src, Kpr64s first) {
    const Kpr64s from = rows(y);
    return from == kConstant ? nullptr : src[from - first];
}

// Rows begin to end - 1 of 64 columns. Row y of the source lies at src[y - first].
template <typename Rule, typename Part, typename Nearest>
[[gnu::noinline]] void walkBytesDown(const Rule& shared, Part part, Nearest nearest, Axis rows, Rows<const Kpr8u> src,
                                     Kpr64s first, const Kpr8u* constants, Rows<Kpr8u> dst, Kpr64s begin, Kpr64s end) {
    constexpr int radius = Rule::kRadius;
    const Rule rule = shared;
    const auto across = [&](const Kpr8u* from) __attribute__((always_inline)) {
        return from == nullptr ? rule.outside(constants) : rule.across(part, nearest, from);
    };
    constexpr int size = 2 * radius + 1;
    typename Rule::Row row[size];
    const auto put = [&](auto i, const typename Rule::Row& from) __attribute__((always_inline)) {
        row[i] = from;
        if constexpr (requires { rule.follow(row[i], row[i]); }) rule.follow(row[(i + size - 1) % size], row[i]);
    };
    row[0] = across(sourceOf(begin - radius, rows, src, first));
    takeTurns<size - 2>([&](auto i) __attribute__((always_inline)) {
        put(Turn<i + 1>{}, across(sourceOf(begin - radius + 1 + i, rows, src, first)));
    });
    // The rows take turns in their registers. Most are followed by a row that exists: that one is a step away.
    const Kpr64s existing = rows.highInMemory ? end : std::min(end, rows.size - radius);
    const Kpr8u* next = src[begin + radius - first];
    Kpr8u* out = dst[begin];
    Kpr64s y = begin;
    const auto step = [&](auto turn, const typename Rule::Row& from) __attribute__((always_inline)) {
        put(Turn<(turn + size - 1) % size>{}, from);
        store(out, rule.down([&](auto i) __attribute__((always_inline)) { return row[(turn + i) % size]; }), part);
        out += dst.step;
    };
    for (; y + size <= existing; y += size) {
        takeTurns<size>([&](auto turn) __attribute__((always_inline)) {
            step(turn, rule.across(part, nearest, next));
            next += src.step;
        });
    }
    for (; y < end; y += size) {
        takeTurns<size>([&](auto turn) __attribute__((always_inline)) {
            if (y + turn < end) step(turn, across(sourceOf(y + turn + radius, rows, src, first)));
        });
    }
}

template <int channels, typename Rule>
void walkBytes(const Rule& rule, Axis columns, Axis rows, Rows<const Kpr8u> src, Rows<Kpr8u> dst, const Kpr8u* value) {
    constexpr int radius = Rule::kRadius;
    constexpr Kpr64s lanes = kLanes<Kpr8u>;
    EdgedRows<Kpr8u, channels, lanes> edged(src, endOf(rows, radius), columns, radius, radius, value, nullptr);
    const Inside inside = insideOf(columns, radius, channels);
    Kpr8u constants[lanes + Kpr64s{2 * radius + 1} * channels];
    if (rows.mode == kprBorderConstant) {
        for (int i = 0; i < int{sizeof constants}; ++i) constants[i] = value[i % channels];
    }
    const Kpr64s band = edged.mostRows() - 2 * radius;
    for (Kpr64s begin = 0; begin < rows.size; begin += band) {
        const Kpr64s end = std::min(begin + band, rows.size);
        const Kpr64s first = rows.lowInMemory ? begin - radius : std::max<Kpr64s>(begin - radius, 0);
        for (const RowPart<Kpr8u>& row : edged.band(first, std::min(end + radius, endOf(rows, radius)) - first)) {
            const Kpr64s count = row.count * channels;
            for (Kpr64s x = 0; x < count; x += lanes) {
                const Kpr64s at = row.x * channels + x;
                const auto walk = [&](auto part, auto nearest) {
                    walkBytesDown(rule, part, nearest, rows, Rows<const Kpr8u>{row.src + x, row.step}, first,
                                  constants + at % channels, Rows<Kpr8u>{dst.first + at, dst.step}, begin, end);
                };
                if (x + lanes > count)
                    walk(First{count - x}, inside.from(at));
                else if (row.atEdge)
                    walk(All{}, inside.from(at));
                else
                    walk(All{}, All{});
            }
        }
    }
}

}  // namespace n0::filter
