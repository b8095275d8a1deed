// The extremum over a full rectangle of taps, separably. The source and the destination are different images.
//
// A rectangle that holds its pixel sees, past the edge of an image that is clamped, nothing that it does not see
// inside; so it does past a mirroring edge if it reaches as far to both sides. Pixels outside are then neutral, and no
// bordered copy is made. Only a constant border has a value of its own.
#pragma once

#include "morph/job.h"

namespace n0 {

// The memory that may be read along one axis, relative to the ROI.
struct Reach {
    Kpr64s begin, end;
};

template <typename T>
constexpr Reach columnsHeld(const Job<T>& job, Window w) {
    return {job.border.left ? -w.left : 0, job.width + (job.border.right ? w.right : 0)};
}
template <typename T>
constexpr Reach rowsHeld(const Job<T>& job, Window w) {
    return {job.border.top ? -w.top : 0, job.height + (job.border.bottom ? w.bottom : 0)};
}

template <typename Rule, typename T>
Pattern<T> outside(const Job<T>& job) {
    constexpr T none = neutral<Rule>();
    const T neutrals[4] = {none, none, none, none};
    return {job.border.base == kprBorderConstant ? job.fill : neutrals, job.channels};
}

// ---- small rectangles: vectors walk down the image with the last rows' extrema in registers

// `group` vectors wide, from element x of the ROI's rows, rows begin to end. `edge` says that some lanes may lie
// outside.
template <typename Rule, typename Put, int columns, int rows, int group, bool edge, typename T, typename Part>
KPR_INLINE void walkDown(const Job<T>& job, Window w, Rows<const T> other, const Pattern<T>& pattern, Kpr64s x,
                         Kpr64s begin, Kpr64s end, Part part) {
    constexpr Kpr64s lanes = kLanes<T>;
    const Kpr64s channels = job.channels;
    const Reach held = rowsHeld(job, w), across = columnsHeld(job, w);
    Vec<T> fill[group];
    for (int i = 0; i < group; ++i) fill[i] = pattern.from(x + i * lanes);
    Mask<T> inside[columns];
    for (int k = 0; k < columns && edge; ++k) {
        const Kpr64s from = x + (k - w.left) * channels;
        const Kpr64s low = std::clamp(across.begin * channels - from, Kpr64s{0}, lanes);
        const Kpr64s high = std::clamp(across.end * channels - from, low, lanes);
        inside[k] = static_cast<Mask<T>>(First{high}.bits & ~First{low}.bits);
    }
    const auto alongRow = [&](Kpr64s y, Vec<T>* v) {
        if (y < held.begin || y >= held.end) {
            for (int i = 0; i < group; ++i) v[i] = fill[i];
            return;
        }
        const T* src = job.src[y] + x - w.left * channels;
        for (int i = 0; i < group; ++i) {
            for (int k = 0; k < columns; ++k) {
                const T* at = src + i * lanes + k * channels;
                Vec<T> tap;
                if constexpr (edge)
                    tap = load(at, Lanes{inside[k]}, fill[i]);
                else
                    tap = load(at, All{});
                v[i] = k == 0 ? tap : Rule::join(v[i], tap);
            }
        }
    };
    const auto put = [&](Kpr64s y, const Vec<T>* v) {
        for (int i = 0; i < group; ++i) Put::put(job.dst[y] + x + i * lanes, other[y] + x + i * lanes, v[i], part);
    };

    // Two rows of results at a time share all source rows but two.
    Vec<T> row[rows + 1][group];
    for (int i = 0; i < rows - 1; ++i) alongRow(begin - w.top + i, row[i]);
    for (Kpr64s y = begin; y < end; y += 2) {
        alongRow(y + w.bottom, row[rows - 1]);
        Vec<T> upper[group], lower[group];
        alongRow(y + w.bottom + 1, row[rows]);
        for (int i = 0; i < group; ++i) {
            if constexpr (rows == 1) {
                upper[i] = row[0][i];
                lower[i] = row[1][i];
            } else {
                Vec<T> shared = row[1][i];
                for (int k = 2; k < rows; ++k) shared = Rule::join(shared, row[k][i]);
                upper[i] = Rule::join(row[0][i], shared);
                lower[i] = Rule::join(shared, row[rows][i]);
            }
        }
        put(y, upper);
        if (y + 1 < end) put(y + 1, lower);
        for (int k = 0; k + 2 < rows + 1; ++k) {
            for (int i = 0; i < group; ++i) row[k][i] = row[k + 2][i];
        }
    }
}

inline constexpr Kpr64s kBandBytes = 32768;

template <typename Rule, typename Put, int columns, int rows, typename T>
void smallRectangle(const Job<T>& job, Window w, Rows<const T> other) {
    constexpr Kpr64s lanes = kLanes<T>;
    constexpr int group = rows > 3 ? 2 : 4;  // what the registers hold
    const Pattern<T> pattern = outside<Rule>(job);
    const Reach across = columnsHeld(job, w);
    const int channels = job.channels;
    const Kpr64s length = job.width * channels;
    // Rows are walked down in bands that the first cache holds, so that the large image is read nearly in order.
    const Kpr64s band = std::clamp(kBandBytes / (length * Kpr64s{sizeof(T)}), Kpr64s{8}, Kpr64s{64});
    for (Kpr64s begin = 0; begin < job.height; begin += band) {
        const Kpr64s end = std::min(begin + band, job.height);
        Kpr64s x = 0;
        const auto clear = [&](Kpr64s vectors) {
            return x >= (across.begin + w.left) * channels &&
                   x + vectors * lanes + w.right * channels <= across.end * channels;
        };
        while (x < length) {
            if (x + group * lanes <= length && clear(group)) {
                walkDown<Rule, Put, columns, rows, group, false>(job, w, other, pattern, x, begin, end, All{});
                x += group * lanes;
            } else if (x + lanes <= length && clear(1)) {
                walkDown<Rule, Put, columns, rows, 1, false>(job, w, other, pattern, x, begin, end, All{});
                x += lanes;
            } else {
                walkDown<Rule, Put, columns, rows, 1, true>(job, w, other, pattern, x, begin, end,
                                                            First{std::min(lanes, length - x)});
                x += lanes;
            }
        }
    }
}

// ---- all other rectangles: whole rows, first down the columns, then along the rows

// line = the join of `count` elements of a and b.
template <typename Rule, typename T>
KPR_INLINE void joinRows(T* line, const T* a, const T* b, Kpr64s count) {
    walkRow<kLanes<T>>(
        count,
        [](auto part, T* l, const T* p, const T* q) { store(l, Rule::join(load(p, part), load(q, part)), part); }, line,
        a, b);
}

// The extremum down the columns for rows y to y + n - 1, n at most the rectangle's height, into lines 0 to n - 1 from
// element `lead` on. The rows of all those windows have one in common: the last of the first. Extrema are run up from
// it into the lines, then down from it in line n, so that a window costs three steps whatever its height.
template <typename Rule, typename T>
void downColumns(const Job<T>& job, Window w, Kpr64s y, Kpr64s n, Lines<T> lines, Kpr64s lead) {
    const Reach rows = rowsHeld(job, w), across = columnsHeld(job, w);
    const Kpr64s skip = across.begin * job.channels, count = (across.end - across.begin) * job.channels;
    const auto source = [&](Kpr64s i) { return job.src[i] + skip; };
    const auto line = [&](Kpr64s i) { return lines[i] + lead; };

    const Kpr64s common = std::min(y + w.bottom, rows.end - 1);
    const T* run = source(common);
    Kpr64s reached = common;
    for (Kpr64s i = n - 1; i >= 0; --i) {
        const Kpr64s first = std::max(y + i - w.top, rows.begin);
        if (reached == first) joinRows<Rule>(line(i), run, run, count);
        while (reached > first) {
            joinRows<Rule>(line(i), run, source(--reached), count);
            run = line(i);
        }
        run = line(i);
    }
    run = nullptr;
    for (Kpr64s i = 1; i < n; ++i) {
        const Kpr64s last = y + i + w.bottom;
        if (last < rows.end) {
            const T* next = source(last);
            walkRow<kLanes<T>>(
                count,
                [](auto part, T* down, T* l, const T* r, const T* s) {
                    const Vec<T> v = Rule::join(load(r, part), load(s, part));
                    store(down, v, part);
                    store(l, Rule::join(load(l, part), v), part);
                },
                line(n), line(i), run == nullptr ? next : run, next);
            run = line(n);
        } else if (run != nullptr) {
            joinRows<Rule>(line(i), line(i), run, count);
        }
    }
}

// dst = the join of `taps` elements of the line at 0, step, 2 * step ... and at `last`.
template <typename Rule, int taps, typename T>
KPR_INLINE Vec<T> joinTaps(const T* line, Kpr64s step, Kpr64s last, auto part) {
    Vec<T> v = load(line, part);
    if constexpr (taps > 2) v = Rule::join(v, load(line + step, part));
    if constexpr (taps > 3) v = Rule::join(v, load(line + 2 * step, part));
    if constexpr (taps > 1) v = Rule::join(v, load(line + last, part));
    return v;
}

// The extremum of `columns` pixels along a line of `length` elements. It grows fourfold in place, pixel i taking the
// pixels from i on, until four of them reach over the window; `finish(taps, step, last)` then joins these.
template <typename Rule, typename T, typename Finish>
KPR_INLINE void alongLine(T* line, Kpr64s length, Kpr64s columns, int channels, Finish finish) {
    Kpr64s held = 1;
    for (; held * 4 < columns; held *= 4) {
        const Kpr64s step = held * channels;
        length -= 3 * step;
        walkRow<kLanes<T>>(
            length, [=](auto part, T* l) { store(l, joinTaps<Rule, 4>(l, step, 3 * step, part), part); }, line);
    }
    const Kpr64s step = held * channels, last = (columns - held) * channels;
    const Kpr64s taps = (columns + held - 1) / held;
    if (taps == 1) finish.template operator()<1>(step, last);
    if (taps == 2) finish.template operator()<2>(step, last);
    if (taps == 3) finish.template operator()<3>(step, last);
    if (taps == 4) finish.template operator()<4>(step, last);
}

template <typename Rule, typename Put, typename T>
void largeRectangle(const Job<T>& job, Window w, Rows<const T> other) {
    const int channels = job.channels;
    const Kpr64s left = w.left * channels, right = w.right * channels, body = job.width * channels;
    const Kpr64s length = left + body + right;
    const Lines<T> lines(job.work, w.rows() + (w.rows() > 1 ? 1 : 0), length, left);
    const Pattern<T> pattern = outside<Rule>(job);
    const Reach rows = rowsHeld(job, w);
    for (Kpr64s y = 0; y < job.height; y += w.rows()) {
        const Kpr64s n = std::min(w.rows(), job.height - y);
        downColumns<Rule>(job, w, y, n, lines, job.border.left ? 0 : left);
        for (Kpr64s i = 0; i < n; ++i) {
            T* line = lines[i];
            if (!job.border.left) pattern.write(line, left);
            if (!job.border.right) pattern.write(line + left + body, right);
            if (job.border.base == kprBorderConstant && (y + i - w.top < rows.begin || y + i + w.bottom >= rows.end)) {
                const Kpr64s whole = kLanes<T> - kLanes<T> % channels;
                for (Kpr64s x = 0; x < length; x += whole) {
                    const First part{std::min(whole, length - x)};
                    store(line + x, Rule::join(load(line + x, part), pattern.from(0)), part);
                }
            }
            alongLine<Rule>(line, length, w.columns(), channels, [&]<int taps>(Kpr64s step, Kpr64s last) {
                walkRow<kLanes<T>>(
                    body,
                    [=](auto part, T* d, const T* o, const T* l) {
                        Put::put(d, o, joinTaps<Rule, taps>(l, step, last, part), part);
                    },
                    job.dst[y + i], other[y + i], static_cast<const T*>(line));
            });
        }
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

template <typename Rule, typename Put, typename T>
void rectangle(const Job<T>& job, Window w, Rows<const T> other) {
    const Kpr64s columns = w.columns(), rows = w.rows();
    if (columns == 1 && rows == 1) return smallRectangle<Rule, Put, 1, 1>(job, w, other);
    if (columns == 3 && rows == 3) return smallRectangle<Rule, Put, 3, 3>(job, w, other);
    if (columns == 5 && rows == 5) return smallRectangle<Rule, Put, 5, 5>(job, w, other);
    largeRectangle<Rule, Put>(job, w, other);
}

}  // namespace n0
