// The extremum of 3 x 3 pixels where rows of whole 64-bit words follow one another without a gap, in the source as in
// the destination. They are worked on as one long row, so that every vector is full. What lies outside is neutral or,
// above and below, memory.
//
// Three rows are joined down the columns first. With its bytes turned round, a word then has the leftmost pixel in its
// top bit: the neighbours of its pixels are a shift away, but for two that lie in the words beside it.
#pragma once

#include "morph/bits.h"

namespace n0::morph {

template <typename Rule>
class BitRibbon {
  public:
    // Rows have eight words or more, so that a vector holds the end of one row at most.
    static bool serves(const BitJob& job) {
        const Border b = job.border;
        const bool neutral = b.base != kprBorderConstant || job.fill == Rule::kWeakest;
        const bool words = job.width >= 512 && job.width % 64 == 0 && job.src.bit == 0 && job.dst.bit == 0;
        return job.output == Output::Result && neutral && words && !b.left && !b.right &&
               job.src.bytes.gapless(job.width >> 3) && job.dst.bytes.gapless(job.width >> 3);
    }

    explicit BitRibbon(const BitJob& job)
        : job_(job), step_(job.width >> 3), crossings_(Workspace(job.work).take<Kpr8u>(step_ + 64, 64)) {}

    void run() const {
        drawCrossings();
        // In place of a row that does not exist, above the first or below the last, that row itself is joined once
        // more, which changes nothing.
        const bool above = job_.border.top, below = job_.border.bottom;
        const Kpr64s last = job_.height - 1;
        if (last == 0) return rows(0, 1, above, below);
        rows(0, 1, above, true);
        if (last > 1) rows(1, last, true, true);
        rows(last, last + 1, true, below);
    }

  private:
    static constexpr Kpr64s kTop = std::numeric_limits<Kpr64s>::min(), kLow = 1;

    // For each word of a row, and for the eight words that a vector may reach beyond it, a mask of the pixels that have
    // a neighbour in the word before or after: the word's first and last, but not the row's first and last.
    void drawCrossings() const {
        const auto both = broadcast(kTop | kLow);
        walkColumns<64>(step_ + 64, [&](auto part, Kpr64s x) { store(crossings_ + x, as<Kpr8u>(both), part); });
        crossings_[7] = crossings_[step_ - 8] = crossings_[step_ + 7] = 0;
    }

    void rows(Kpr64s begin, Kpr64s end, bool above, bool below) const {
        // An erosion works on complements: the first step inverts, the last inverts back, and between them set bits win
        // as in a dilation. Tables for combine(): of the join of three rows, and of pixels | (crossed & where it may).
        constexpr bool complement = Rule::kWeakest != 0;
        constexpr int join = complement ? 0x7f : 0xfe, finish = complement ? 0x07 : 0xf8;
        const Kpr64s step = step_, length = (end - begin) * step;
        const Kpr8u* src = job_.src.bytes[begin];
        const Kpr8u* up = above ? src - step : src;
        const Kpr8u* down = below ? src + step : src;
        Kpr8u* dst = job_.dst.bytes[begin];
        const Kpr8u* crossings = crossings_;
        const auto fromTop = laneConstant<Kpr8u>([](int i) { return i ^ 7; });
        // The halves of words that hold the last pixel of the word before and the first of the one after, and how far
        // these are turned to lie beside this word's own, once their bytes are in order.
        const auto beside = laneConstant<Kpr32s>([](int i) { return (i % 2 == 0 ? i + 2 : i - 2) & 31; });
        const auto turns = laneConstant<Kpr32s>([](int i) { return i % 2 == 0 ? 25 : 7; });
        const auto columns = [&](Kpr64s x, auto part) __attribute__((always_inline)) {
            return combine<join>(load(up + x, part), load(src + x, part), load(down + x, part));
        };
        // Whole vectors are stored where lines of the cache begin, if words lie at multiples of 8 there.
        const auto lead = static_cast<Kpr64s>(reinterpret_cast<std::uintptr_t>(dst) & 56);
        const auto at = [=](Kpr64s x) { return lanesOf(x, 0, length); };
        Vec<Kpr8u> here = columns(-lead, at(-lead)), before = here;
        Kpr64s column = lead == 0 ? 0 : step - lead;
        const auto put = [&](Kpr64s x, Vec<Kpr8u> next, auto part) __attribute__((always_inline)) {
            const auto ends = merge(Lanes{0x8000}, as<Kpr32s>(before), as<Kpr32s>(next));
            const auto crossed = rotateBits(permute(as<Kpr32s>(here), ends, beside), turns);
            const auto words = as<Bits64>(permuteIn16(here, fromTop));
            const auto inner = combine<0xfe>(words, words + words, shiftRight<1>(words));
            const auto v = combine<finish>(as<Kpr8u>(inner), as<Kpr8u>(crossed), load(crossings + column, All{}));
            store(dst + x, permuteIn16(v, fromTop), part);
            before = here;
            here = next;
            column += 64;
            column = column >= step ? column - step : column;
        };
        Kpr64s x = -lead;
        put(x, columns(x + 64, at(x + 64)), at(x));
        x += 64;
#pragma GCC unroll 4  // fewer moves between registers
        for (; x + 128 <= length; x += 64) put(x, columns(x + 64, All{}), All{});
        for (; x < length; x += 64) put(x, columns(x + 64, at(x + 64)), at(x));
    }

    const BitJob& job_;
    Kpr64s step_;
    Kpr8u* crossings_;  // in the work buffer
};

}  // namespace n0::morph
