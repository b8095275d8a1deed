// Pixels moved as bytes: what an element means does not matter to moving it. A pixel is 1, 2, 3, 4, 6, 8, 12 or 16
// bytes, and nothing is aligned.
#pragma once

#include <algorithm>

#include "primitives/rows.h"

namespace n0 {

// Source and destination are the same or do not overlap.
KPR_INLINE void copyBytes(Kpr8u* dst, const Kpr8u* src, Kpr64s count) {
    const auto move = [](auto part, Kpr8u* d, const Kpr8u* s) { store(d, load(s, part), part); };
    // Two vectors to a turn: with one, a row of some 30 turns between short borders ends in a mispredicted branch,
    // which costs a fifth of the whole copy.
    Kpr64s x = 0;
    for (; x + 128 <= count; x += 128) {
        for (int i = 0; i < 128; i += 64) move(All{}, dst + x + i, src + x + i);
    }
    walkRow<64>(count - x, move, dst + x, src + x);
}

// The pixel at `src` again and again, the last time in part where it does not divide 64 bytes.
template <int pixelBytes>
KPR_INLINE Vec<Kpr8u> repeatPixel(const Kpr8u* src) {
    const auto inEvery16 =
        permute(as<Kpr32s>(load(src, First{pixelBytes})), laneConstant<Kpr32s>([](int i) { return i % 4; }));
    return permuteIn16(as<Kpr8u>(inEvery16), laneConstant<Kpr8u>([](int i) { return i % pixelBytes; }));
}

// `count` pixels, each the one that `repeated` is made of.
template <int pixelBytes>
KPR_INLINE void fillPixels(Kpr8u* dst, Vec<Kpr8u> repeated, Kpr64s count) {
    constexpr int wholePixels = 64 / pixelBytes * pixelBytes;  // the next store begins with a pixel
    Kpr64s bytes = count * pixelBytes;
    for (; bytes >= 64; bytes -= wholePixels, dst += wholePixels) store(dst, repeated, All{});
    store(dst, repeated, First{bytes});
}

// The bytes that hold the whole pixels of a vector that is reversed at once: the same number in each 16 bytes.
template <int pixelBytes>
inline constexpr int kReversedBytes = pixelBytes % 3 == 0 ? 48 : 64;

// The first kReversedBytes, their pixels in reverse order. Groups of 12 or 16 bytes go to a 16 each, the last one
// first, and are reversed there; groups of 12 then close up again.
template <int pixelBytes>
KPR_INLINE Vec<Kpr8u> reversed(Vec<Kpr8u> pixels) {
    constexpr int group = kReversedBytes<pixelBytes> / 4;
    const auto groups =
        permute(as<Kpr32s>(pixels), laneConstant<Kpr32s>([](int i) { return (3 - i / 4) * (group / 4) + i % 4; }));
    const auto turned = permuteIn16(as<Kpr8u>(groups), laneConstant<Kpr8u>([](int i) {
                                        const int byte = i % 16;
                                        const int pixel = byte / pixelBytes * pixelBytes;
                                        return byte < group ? group - pixelBytes - pixel + byte % pixelBytes : 0;
                                    }));
    if constexpr (group == 16) return turned;
    return as<Kpr8u>(
        permute(as<Kpr32s>(turned), laneConstant<Kpr32s>([](int i) { return i < 12 ? i / 3 * 4 + i % 3 : 0; })));
}

// The `count` pixels from `src` on, the last one first. Source and destination do not overlap.
template <int pixelBytes>
KPR_INLINE void reversePixels(Kpr8u* dst, const Kpr8u* src, Kpr64s count) {
    constexpr int step = kReversedBytes<pixelBytes>;
    const Kpr8u* end = src + count * pixelBytes;
    for (Kpr64s bytes = count * pixelBytes; bytes > 0; bytes -= step, dst += step, end -= step) {
        const First taken(std::min<Kpr64s>(bytes, step));
        // What is left of the run stands in the last lanes of the step, which the reversal makes the first.
        const Lanes last{taken.bits << (step - std::min<Kpr64s>(bytes, step))};
        store(dst, reversed<pixelBytes>(load(end - step, last)), taken);
    }
}

}  // namespace n0
