// Layers of bytes at rate 2 with few and small taps: the sums of the general way are all exact in single precision, so
// that words give the same pixels.
//
// Down, with taps a b c b a that add up to s, a power of 2: a column and then a row of a * (p[-2] + p[2]) + b * (p[-1]
// + p[1]) + c * p[0] is at most 255 * s * s, 65280 with s = 16, and a pixel is that, and half of s * s, divided by
// s * s.
//
// Up, every other pixel lies at one of the source, with even = 2 * a + b, the others between two of them:
//
//     (even * p[-1] + (2 * s - 2 * even) * p[0] + even * p[1]) / 2s
//         = p[0] + even * (p[-1] + p[1] - 2 * p[0]) / 2s
//     (a * p[-1] + (s - a) * (p[0] + p[1]) + a * p[2]) / 2s
//         = (p[0] + p[1]) / 2 + a * (p[-1] + p[2] - p[0] - p[1]) / 2s
//
// Columns are 2s times that, at most 8160. Rows of those, and half of 4 * s * s, divided by 4 * s * s are formed from
// the right sides, the second terms divided first and rounded down, which does not change the whole quotient. So are
// pixels made that read neither a reflection nor the last pixel twice; the others come from the weights.
#pragma once

#include <algorithm>
#include <bit>

#include "primitives/axis.h"
#include "primitives/workspace.h"
#include "pyramid/resample.h"

namespace n0::pyramid {

using Words = Vec<Kpr16u>;

// Two rows of words in the layer's working memory, with room around them.
template <int channels>
class WordRows {
  public:
    WordRows(const Layer& layer, Kpr64s pixels) {
        Workspace memory(layer.planes, channels * layer.stride * Kpr64s{sizeof(Kpr32f)});
        for (Kpr16u*& row : row_) row = memory.take<Kpr16u>(kBefore + pixels * channels + kBehind) + kBefore;
    }
    Kpr16u* operator[](int i) const { return row_[i]; }

  private:
    static constexpr Kpr64s kBefore = 4, kBehind = 2 * Kpr64s{kLanes<Kpr16u>};
    Kpr16u* row_[2];
};

template <int channels>
class Halving {
  public:
    static bool serves(const Layer& layer) { return layer.small.sum != 0 && layer.src.width >= 3; }

    Halving(const Layer& layer, Rows<const Kpr8u> src, Rows<Kpr8u> dst)
        : layer_(layer),
          src_(src),
          dst_(dst),
          words_(layer, layer.dst.width + 1),
          outer_(broadcast(layer.small.outer)),
          inner_(broadcast(layer.small.inner)),
          middle_(broadcast(layer.small.middle)) {}

    void makeRows() const {
        for (Kpr64s y = 0; y < layer_.dst.height; ++y) {
            sumColumns(y);
            extend();
            sumRow(dst_[y]);
        }
    }

  private:
    // Five words in a row or column.
    KPR_INLINE Words weigh(Words a, Words b, Words c, Words d, Words e) const {
        return (a + e) * outer_ + (b + d) * inner_ + c * middle_;
    }

    // Columns of even pixels go to one row, those of odd ones to the other. Even and odd bytes are words as they lie;
    // pixels of three channels have ten pairs in 60 bytes, which are sorted out.
    void sumColumns(Kpr64s y) const {
        constexpr int bytesOfStep = channels == 1 ? 64 : 60;
        const Axis rows{layer_.src.height, kRepeatEdge};
        const Kpr8u* window[5];
        for (int i = 0; i < 5; ++i) window[i] = src_[rows(2 * y + i - 2)];
        const auto step = [&](auto part, Kpr64s x) {
            const auto words = [&](int i) { return as<Kpr16u>(load(window[i] + x, part)); };
            const auto even = [&](int i) { return words(i) & broadcast<Kpr16u>(0xff); };
            const auto odd = [&](int i) { return shiftRight<8>(words(i)); };
            put(x / 2, weigh(even(0), even(1), even(2), even(3), even(4)),
                weigh(odd(0), odd(1), odd(2), odd(3), odd(4)));
        };
        const Kpr64s bytes = Kpr64s{layer_.src.width} * channels;
        Kpr64s x = 0;
        for (; x + kLanes<Kpr8u> <= bytes; x += bytesOfStep) step(All{}, x);
        for (; x < bytes; x += bytesOfStep) step(First{bytes - x}, x);
    }
    KPR_INLINE void put(Kpr64s x, Words even, Words odd) const {
        if constexpr (channels == 1) {
            store(words_[0] + x, even, All{});
            store(words_[1] + x, odd, All{});
        } else {  // of six bytes the words even 0, odd 0, even 1 and odd 1, even 2, odd 2
            const auto evenPixels =
                laneConstant<Kpr16u>([](int i) { return i / 3 * 3 + (i % 3 == 1 ? 32 : i % 3 / 2); });
            const auto oddPixels =
                laneConstant<Kpr16u>([](int i) { return i / 3 * 3 + (i % 3 == 1 ? 2 : 33 + i % 3 / 2); });
            store(words_[0] + x, permute(even, odd, evenPixels), All{});
            store(words_[1] + x, permute(even, odd, oddPixels), All{});
        }
    }

    // Pixels -2 and -1, and up to two behind the last one, reflected.
    void extend() const {
        const Kpr64s end = Kpr64s{layer_.dst.width} * channels;
        Kpr16u *const even = words_[0], *const odd = words_[1];
        for (int c = 0; c < channels; ++c) {
            even[c - channels] = odd[c];
            odd[c - channels] = even[c];
            if (layer_.src.width % 2 == 0) {
                even[end + c] = odd[end - channels + c];
            } else {
                odd[end - channels + c] = even[end - channels + c];
                even[end + c] = odd[end - Kpr64s{2} * channels + c];
            }
        }
    }

    void sumRow(Kpr8u* dst) const {
        const int area = layer_.small.sum * layer_.small.sum, bits = std::countr_zero(static_cast<unsigned>(area));
        const auto half = broadcast(static_cast<Kpr16u>(area / 2));
        walkRow<kLanes<Kpr16u>>(
            Kpr64s{layer_.dst.width} * channels,
            [&](auto part, Kpr8u* d, const Kpr16u* even, const Kpr16u* odd) {
                const auto at = [](const Kpr16u* word) { return load(word, All{}); };
                const Words sum =
                    weigh(at(even - channels), at(odd - channels), at(even), at(odd), at(even + channels));
                storeLow(d, (sum + half) >> bits, part);
            },
            dst, words_[0], words_[1]);
    }

    const Layer& layer_;
    Rows<const Kpr8u> src_;
    Rows<Kpr8u> dst_;
    WordRows<channels> words_;
    Words outer_, inner_, middle_;
};

template <int channels>
class Doubling {
    using Signed = Vec<Kpr16s>;

  public:
    static bool serves(const Layer& layer) {
        return layer.small.sum != 0 && endOfInside(layer.src.width, layer.dst.width) > 1 &&
               endOfInside(layer.src.height, layer.dst.height) > 1;
    }

    Doubling(const Layer& layer, Rows<const Kpr8u> src, Rows<Kpr8u> dst)
        : layer_(layer), src_(src), dst_(dst), words_(layer, layer.src.width), sum_(layer.small.sum) {
        const unsigned outer = layer.small.outer, even = 2 * outer + layer.small.inner;
        even_ = broadcast(static_cast<Kpr16u>(even));
        onEven_ = broadcast(static_cast<Kpr16u>(2 * sum_ - 2 * even));
        outer_ = broadcast(static_cast<Kpr16u>(outer));
        onOuter_ = broadcast(static_cast<Kpr16u>(sum_ - outer));
        evenPart_ = broadcast(static_cast<Kpr16s>(even * 0x8000 / sum_));
        outerPart_ = broadcast(static_cast<Kpr16s>(outer * 0x10000 / sum_));
    }

    void makeRows() const {
        const Resampler<Kpr8u, channels> edges(layer_, src_, dst_);
        const Kpr64s end = endOfInside(layer_.src.height, layer_.dst.height);
        edges.makeRows(0, 2);
        for (Kpr64s y = 1; y < end; ++y) {
            sumColumns(y);
            sumRow(words_[0], dst_[2 * y]);
            sumRow(words_[1], dst_[2 * y + 1]);
        }
        edges.makeRows(2 * end, layer_.dst.height);
    }

  private:
    // From source pixel 1 on to the one before this, the two pixels of the destination are made of four that exist.
    static Kpr64s endOfInside(Kpr32s src, Kpr32s dst) { return std::min(src - 2, dst / 2 - 1); }

    // Of the rows from y - 1 to y + 2 the columns of two rows of the destination.
    void sumColumns(Kpr64s y) const {
        walkRow<kLanes<Kpr16u>>(
            Kpr64s{layer_.src.width} * channels,
            [&](auto part, const Kpr8u* a, const Kpr8u* b, const Kpr8u* c, const Kpr8u* d, Kpr16u* even, Kpr16u* odd) {
                const auto at = [&](const Kpr8u* row) { return loadAs<Kpr16u>(row, part); };
                const Words upper = at(b), lower = at(c), above = at(a);
                store(even, upper * onEven_ + (above + lower) * even_, All{});
                store(odd, (upper + lower) * onOuter_ + (above + at(d)) * outer_, All{});
            },
            src_[y - 1], src_[y], src_[y + 1], src_[y + 2], words_[0], words_[1]);
    }

    void sumRow(const Kpr16u* words, Kpr8u* dst) const {
        constexpr int lanesOfStep = channels == 1 ? 32 : 30;
        const int bits = std::countr_zero(sum_);
        const auto half = broadcast(static_cast<Kpr16u>(sum_)), halfOfBoth = broadcast(static_cast<Kpr16u>(2 * sum_));
        const Kpr64s end = endOfInside(layer_.src.width, layer_.dst.width);
        const Kpr64s last = end * channels;
        const auto step = [&](auto part, Kpr64s x) {
            const auto at = [&](int shift) { return load(words + x + Kpr64s{shift} * channels, All{}); };
            const Words a = at(-1), b = at(0), c = at(1), both = b + c;
            const auto second = [](Words v, Signed by) { return as<Kpr16u>(mulHigh(as<Kpr16s>(v), by)); };
            const Words even = (b + half + second(a + c - (b + b), evenPart_)) >> (bits + 1);
            const Words odd = (both + halfOfBoth + second(a + at(2) - both, outerPart_)) >> (bits + 2);
            putPairs(dst + 2 * x, even, odd, part);
        };
        for (Kpr64s x = channels; x < last; x += lanesOfStep) {
            if (x + lanesOfStep <= last)
                step(All{}, x);  // of three channels the last two words are made again, or an edge's
            else
                step(First{2 * std::min<Kpr64s>(last - x, lanesOfStep)}, x);
        }
        putEdge(words, dst, 0, 2);
        putEdge(words, dst, 2 * end, layer_.dst.width);
    }

    // Even and odd pixels in turn.
    KPR_INLINE static void putPairs(Kpr8u* dst, Words even, Words odd, auto part) {
        Words pairs;
        if constexpr (channels == 1) {
            pairs = even | shiftLeft<8>(odd);
        } else {
            const auto lower = laneConstant<Kpr16u>([](int i) { return i / 3 * 3 + (i % 3 == 2 ? 33 : i % 3 * 2); });
            const auto upper =
                laneConstant<Kpr16u>([](int i) { return i / 3 * 3 + (i % 3 == 0 ? 1 : 30 + i % 3 * 2); });
            pairs = permute(even, odd, lower) | shiftLeft<8>(permute(even, odd, upper));
        }
        store(dst, as<Kpr8u>(pairs), part);
    }

    void putEdge(const Kpr16u* words, Kpr8u* dst, Kpr64s begin, Kpr64s end) const {
        const AxisWeights& columns = layer_.columns;
        for (Kpr64s x = begin; x < end; ++x) {
            for (int c = 0; c < channels; ++c) {
                Kpr32f sum = 0.0F;
                for (Kpr32s m = 0; m < columns.taps; ++m) {
                    const Kpr16u word = words[(columns.first[x] + m) * channels + c];
                    sum += *columns.weight(m, x) * static_cast<Kpr32f>(word);
                }
                const Kpr32f rounded = sum / static_cast<Kpr32f>(2 * sum_) + 0.5F;
                dst[x * channels + c] = static_cast<Kpr8u>(rounded);
            }
        }
    }

    const Layer& layer_;
    Rows<const Kpr8u> src_;
    Rows<Kpr8u> dst_;
    WordRows<channels> words_;
    unsigned sum_;
    Words even_, onEven_, outer_, onOuter_;
    Signed evenPart_, outerPart_;
};

}  // namespace n0::pyramid
