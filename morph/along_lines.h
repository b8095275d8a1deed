// The extremum along lines of the work buffer: growing by doublings, in place.
#pragma once

#include "morph/around.h"

namespace n0::morph {

// Bytes of lines that stay in the first cache while rows of the image pass through it.
inline constexpr Kpr64s kLinesBytes = 32768;

// Each element becomes the extremum of those of 2^doublings pixels from it on; the line's last few hold anything.
// Vectors go through all doublings in registers, each doubling one vector behind the one before it.
template <typename Rule, int channels, int doublings, typename T>
void growInRegisters(T* line, Kpr64s length) {
    // A shift that is no multiple of 4 bytes takes two steps; for the first doubling a second load is cheaper.
    constexpr int pixel = channels * int{sizeof(T)}, loaded = pixel % 4 == 0 ? 0 : 1, shifted = doublings - loaded;
    constexpr Kpr64s second = loaded == 0 ? 0 : channels;
    constexpr Kpr64s lanes = kLanes<T>, behind = shifted * lanes;
    Vec<T> before[shifted + 1] = {};
    const auto pass = [&](Vec<T> v) __attribute__((always_inline)) {
        takeTurns<shifted>([&](auto turn) __attribute__((always_inline)) {
            const Vec<T> held = before[turn];
            before[turn] = v;
            v = Rule::join(held, ahead<(pixel << (turn + loaded))>(held, v));
        });
        return v;
    };
    const auto upTo = [=](Kpr64s x) { return First{std::clamp(length - x, Kpr64s{0}, lanes)}; };
    const auto passLast = [&](Kpr64s x) __attribute__((always_inline)) {
        const auto at = [&](Kpr64s i) { return load(line + std::min(i, length), upTo(i)); };
        return pass(loaded == 0 ? at(x) : Rule::join(at(x), at(x + channels)));
    };
    Kpr64s x = 0;
    for (; x < behind; x += lanes) passLast(x);
    for (; x + lanes + second <= length; x += lanes) {
        const Vec<T> v = load(line + x, All{});
        store(line + x - behind, pass(loaded == 0 ? v : Rule::join(v, load(line + x + second, All{}))), All{});
    }
    for (; x < length + behind; x += lanes) store(line + x - behind, passLast(x), upTo(x - behind));
}

// Lets n lines grow to the largest power of two that is not above `columns`, as far as registers serve, and returns
// that. They grow as one long line: what crosses from one to the next lands in elements that hold anything.
template <typename Rule, int channels, typename T>
Kpr64s growInRegisters(const Lines<T>& lines, Kpr64s n, Kpr64s length, Kpr64s columns) {
    // A pixel's partners lie in the next vector at the farthest.
    constexpr int most = std::min<int>(std::bit_width(64 / (channels * sizeof(T))), 4);
    const auto grow = [&]<int doublings>() {
        growInRegisters<Rule, channels, doublings>(lines.first - lines.before,
                                                   lines.before + (n - 1) * lines.stride + length);
        return Kpr64s{1} << doublings;
    };
    if constexpr (most >= 4) {
        if (columns >= 16) return grow.template operator()<4>();
    }
    if (columns >= 8) return grow.template operator()<3>();
    if (columns >= 4) return grow.template operator()<2>();
    if (columns >= 2) return grow.template operator()<1>();
    return 1;
}

template <typename Rule, typename T>
Kpr64s growInRegisters(const Lines<T>& lines, Kpr64s n, Kpr64s length, Kpr64s columns, int channels) {
    if constexpr (sizeof(T) != 2) {
        if (channels == 3) return growInRegisters<Rule, 3>(lines, n, length, columns);
        if (channels == 4) return growInRegisters<Rule, 4>(lines, n, length, columns);
    }
    return growInRegisters<Rule, 1>(lines, n, length, columns);
}

// The join of `taps` elements of a line at 0, step, 2 * step ... and at `last`.
template <typename Rule, int taps, typename T>
KPR_INLINE Vec<T> joinTaps(const T* line, Kpr64s step, Kpr64s last, auto part) {
    Vec<T> v = load(line, part);
    for (int k = 1; k < taps - 1; ++k) v = Rule::join(v, load(line + k * step, part));
    if constexpr (taps > 1) v = Rule::join(v, load(line + last, part));
    return v;
}

// The extremum of `columns` pixels along n lines of `length` elements, which hold that of `held` pixels. It grows
// fourfold in place, pixel i taking the pixels from i on, until four of them reach over the window;
// `finish(taps, step, last)` then joins these. All lines grow before any is finished: what was just stored is slow to
// load at another alignment.
template <typename Rule, typename T, typename Finish>
KPR_INLINE void alongLines(const Lines<T>& lines, Kpr64s n, Kpr64s length, Kpr64s held, Kpr64s columns, int channels,
                           Finish finish) {
    length -= (held - 1) * channels;
    for (; held * 4 < columns; held *= 4) {
        const Kpr64s step = held * channels;
        length -= 3 * step;
        for (Kpr64s i = 0; i < n; ++i) {
            walkRow<kLanes<T>>(
                length, [=](auto part, T* l) { store(l, joinTaps<Rule, 4>(l, step, 3 * step, part), part); }, lines[i]);
        }
    }
    const Kpr64s step = held * channels, last = (columns - held) * channels;
    const Kpr64s taps = (columns + held - 1) / held;
    if (taps == 1) finish.template operator()<1>(step, last);
    if (taps == 2) finish.template operator()<2>(step, last);
    if (taps == 3) finish.template operator()<3>(step, last);
    if (taps == 4) finish.template operator()<4>(step, last);
}

}  // namespace n0::morph
