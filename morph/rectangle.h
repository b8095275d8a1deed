// The extremum over a full rectangle of taps, separably. The source and the destination are different images.
//
// A rectangle that holds its pixel sees, past the edge of an image that is clamped, nothing that it does not see
// inside; so it does past a mirroring edge if it reaches as far to both sides. Pixels outside are then neutral, and no
// bordered copy is made. Only a constant border has a value of its own.
//
// Small squares have a way of their own. All other rectangles take bands of rows, down the columns into lines of the
// work buffer and then along the lines.
#pragma once

#include "morph/along_lines.h"
#include "morph/small.h"

namespace n0::morph {

// The extremum down the columns for `results` rows from y on, at most as many as the rectangle has, into lines from
// number `to` on, their element `lead`. The windows of those rows have rows in common. In registers, extrema are run up
// from these and down from below them, and every window is one of the former joined to one of the latter: about three
// joins a result, up to heights of twice the results.
template <typename Rule, int results, typename T>
void downColumns(const Job<T>& job, const Window& w, Kpr64s y, const Lines<T>& lines, Kpr64s to, Kpr64s lead) {
    constexpr Kpr64s lanes = kLanes<T>;
    const Reach held = rowsHeld(job, w), across = columnsHeld(job, w);
    const Kpr64s skip = across.begin * job.channels, count = (across.end - across.begin) * job.channels;
    // For a row outside stands the nearest one, which all windows that reach outside hold.
    const auto inside = [&](Kpr64s row) { return std::clamp(row, held.begin, held.end - 1); };
    const Kpr64s common = inside(y + results - 1 - w.top), last = inside(y + w.bottom);
    const Rows<const T> shared = {job.src[common] + skip, job.src.step};
    const T* above[results];
    const T* below[results];
    for (int i = 0; i < results - 1; ++i) {
        above[i] = job.src[inside(y - w.top + i)] + skip;
        below[i] = job.src[inside(y + w.bottom + 1 + i)] + skip;
    }
    T* const first = lines[to] + lead;
    const Kpr64s stride = lines.stride;
    walkStretches<lanes, results >= 8 ? 1 : 2>(
        count, [&]<int vectors>(auto part, Kpr64s x) __attribute__((always_inline)) {
            Vec<T> up[results][vectors], down[vectors];
            const auto take = [&](Vec<T> * v, const T* src) __attribute__((always_inline)) {
                for (int k = 0; k < vectors; ++k) v[k] = load(src + x + k * lanes, part);
            };
            const auto join = [&](Vec<T> * v, const Vec<T>* a, const T* src) __attribute__((always_inline)) {
                for (int k = 0; k < vectors; ++k) v[k] = Rule::join(a[k], load(src + x + k * lanes, part));
            };
            const auto put = [&](int line, const Vec<T>* v) __attribute__((always_inline)) {
                for (int k = 0; k < vectors; ++k) store(first + line * stride + x + k * lanes, v[k], part);
            };
            take(up[results - 1], shared[0]);
            for (Kpr64s i = 1; i <= last - common; ++i) join(up[results - 1], up[results - 1], shared[i]);
            for (int i = results - 2; i >= 0; --i) join(up[i], up[i + 1], above[i]);
            put(0, up[0]);
            for (int i = 1; i < results; ++i) {
                if (i == 1) take(down, below[0]);
                if (i > 1) join(down, down, below[i - 1]);
                for (int k = 0; k < vectors; ++k) up[i][k] = Rule::join(up[i][k], down[k]);
                put(i, up[i]);
            }
        });
}

// Completes the line of row y, in which the columns that lie in memory have been joined: those beside them get what
// lies outside, and where a row of the window lies above or below a constant border, the constant is joined to all.
template <typename Rule, typename T>
KPR_INLINE void addBorder(const Job<T>& job, const Window& w, const Pattern<T>& pattern, Kpr64s y, T* line) {
    const int channels = job.channels;
    const Kpr64s left = w.left * channels, right = w.right * channels, body = job.width * channels;
    const Reach held = rowsHeld(job, w);
    if (!job.border.left) pattern.write(line, left);
    if (!job.border.right) pattern.write(line + left + body, right);
    if (job.border.base != kprBorderConstant || (y - w.top >= held.begin && y + w.bottom < held.end)) return;
    const Kpr64s length = left + body + right;
    for (Kpr64s x = 0; x < length; x += pattern.period()) {
        const First part{std::min(pattern.period(), length - x)};
        store(line + x, Rule::join(load(line + x, part), pattern.from(0)), part);
    }
}

// Between lines, floats are not to be signalling NaN: lines grow as one long line, and one that was left in the
// caller's buffer would be taken for a pixel's.
template <typename T>
void clearGaps(const Lines<T>& lines, Kpr64s count, Kpr64s length) {
    if constexpr (std::is_floating_point_v<T>) {
        store(lines.first - lines.before, zero<T>(), First{lines.before});
        for (Kpr64s i = 0; i < count; ++i) store(lines[i] + length, zero<T>(), First{lines.stride - length});
    }
}

template <typename Rule, typename T>
void largeRectangle(const Job<T>& job, Window w) {
    const int channels = job.channels;
    const Kpr64s left = w.left * channels, body = job.width * channels,
                 length = w.columns() * channels + body - channels;
    const Kpr64s lead = job.border.left ? 0 : left;
    const Kpr64s results = std::min<Kpr64s>(std::bit_floor(static_cast<Bits64>(w.rows())), 16);
    // Whole groups of results, as many lines as the work buffer and the first cache have room for.
    const Kpr64s lineBytes = (length + kLanes<T>)*Kpr64s{sizeof(T)};
    const Kpr64s room = std::min({Lines<T>::heldBy(job.work, length), kLinesBytes / lineBytes, Kpr64s{16}});
    const Kpr64s band = std::max(room / results, Kpr64s{1}) * results;
    const Lines<T> lines(job.work, band, length, left);
    clearGaps(lines, band, length);
    const Pattern<T> pattern = outside<Rule>(job);
    const Output output = job.output;
    for (Kpr64s y = 0; y < job.height; y += band) {
        const Kpr64s n = std::min(band, job.height - y);
        for (Kpr64s i = 0; i < n; i += results) {
            if (results == 16) downColumns<Rule, 16>(job, w, y + i, lines, i, lead);
            if (results == 8) downColumns<Rule, 8>(job, w, y + i, lines, i, lead);
            if (results == 4) downColumns<Rule, 4>(job, w, y + i, lines, i, lead);
            if (results == 2) downColumns<Rule, 2>(job, w, y + i, lines, i, lead);
            if (results == 1) downColumns<Rule, 1>(job, w, y + i, lines, i, lead);
        }
        for (Kpr64s i = 0; i < n; ++i) addBorder<Rule>(job, w, pattern, y + i, lines[i]);
        const Kpr64s held = growInRegisters<Rule>(lines, n, length, w.columns(), channels);
        alongLines<Rule>(lines, n, length, held, w.columns(), channels, [&]<int taps>(Kpr64s step, Kpr64s last) {
            for (Kpr64s i = 0; i < n; ++i) {
                walkRow<kLanes<T>>(
                    body,
                    [=](auto part, T* d, const T* o, const T* l) {
                        put(output, d, o, joinTaps<Rule, taps>(l, step, last, part), part);
                    },
                    job.dst[y + i], job.other[y + i], static_cast<const T*>(lines[i]));
            }
        });
    }
}

// Whether what lies outside the image may be taken for neutral or constant, as this file does.
template <typename T>
bool rectangleServes(const Job<T>& job, Window w) {
    const Border b = job.border;
    if (job.inPlace()) return w.columns() == 1 && w.rows() == 1;
    if (b.base != kprBorderMirror) return true;
    return (w.left == w.right || (b.left && b.right)) && (w.top == w.bottom || (b.top && b.bottom));
}

template <typename Rule, typename T>
void rectangle(const Job<T>& job, Window w) {
    const bool square = w.left == w.right && w.left == w.top && w.left == w.bottom;
    if (square && w.left == 0) {
        const Output output = job.output;
        for (Kpr64s y = 0; y < job.height; ++y) {
            walkRow<kLanes<T>>(
                job.width * job.channels,
                [=](auto part, T* d, const T* o, const T* s) { put(output, d, o, load(s, part), part); }, job.dst[y],
                job.other[y], job.src[y]);
        }
        return;
    }
    if (square && w.left == 1) return smallMask<Rule, 1, true>(job, {});
    if (square && w.left == 2) return smallMask<Rule, 2, true>(job, {});
    largeRectangle<Rule>(job, w);
}

}  // namespace n0::morph
