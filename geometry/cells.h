// Bilinear weights of a fraction of a pixel, and kernels that weigh the four pixels of a cell. The first pixel of a
// cell is the upper left one; names of pixels and weights give x first: 10 is to the right, 01 below.
//
// Integers take weights of 14 bits:
//
//     q = trunc(16384 * f + 0.5), its low 16 bits        rx = 16384 - qx        ry = 16384 - qy
//     w00 = (rx * ry + 16384) >> 14    w01 = (rx * qy + 16384) >> 14
//     w10 = (ry * qx + 16384) >> 14    w11 = (qy * qx + 16384) >> 14        their low 16 bits
//
// What they exceed 16384 by goes off the largest of them, the first in the order 00, 01, 10, 11 where several are. The
// 16384 that is added is one unit, not the half of one.
//
//     pixel = (w00 * p00 + w01 * p01 + w10 * p10 + w11 * p11 + 8192) >> 14
//
// and in scaled forms the sum times 2^-scaleFactor, with the half of its own last bit. Floats, and integers that become
// floats, take w00 = (1 - fx) * (1 - fy), w10 = fx * (1 - fy), w01 = (1 - fx) * fy, w11 = fx * fy, each step rounded,
// and add in the order 00, 10, 01, 11, each sum after the first product a fused step.
#pragma once

#include <algorithm>

#include "frame/checks.h"
#include "primitives/math.h"
#include "primitives/rows.h"

namespace n0::geometry {

inline constexpr int kWeightBits = 14;
inline constexpr unsigned kOne = 1U << kWeightBits;

// Weights of the four pixels of a cell.
template <typename T>
struct Weights {
    T w00, w10, w01, w11;
};

// Toward zero, 0 of a NaN and of what no integer holds.
inline Kpr32s truncated(Kpr32f f) { return f > -0x1p31F && f < 0x1p31F ? static_cast<Kpr32s>(f) : 0; }

// The low 16 bits of 16384 * f + half, which is a sum rounded once: the product is exact.
inline unsigned quantized(Kpr32f f, Kpr32f half = 0.5F) {
    return static_cast<Kpr16u>(truncated(f * static_cast<Kpr32f>(kOne) + half));
}

inline Weights<Kpr32s> weightsOf(unsigned qx, unsigned qy) {
    const unsigned rx = kOne - qx, ry = kOne - qy;
    const auto product = [](unsigned a, unsigned b) {
        return static_cast<Kpr32s>(static_cast<Kpr16u>((a * b + kOne) >> kWeightBits));
    };
    Kpr32s w[] = {product(rx, ry), product(rx, qy), product(ry, qx), product(qy, qx)};
    const Kpr32s missing = static_cast<Kpr32s>(kOne) - w[0] - w[1] - w[2] - w[3];
    if (missing < 0) *std::max_element(w, w + 4) += missing;
    return {w[0], w[2], w[1], w[3]};
}

// ---- kernels: row(src, part) has what the cells need of a row, the pixel behind the part too; put(dst, upper, lower,
// part) makes pixels from the cells between two rows.

// How a weighted sum becomes a pixel: `down` bits less with the half of the last one, then `up` bits more.
struct Scale {
    int down = kWeightBits, up = 0;

    explicit Scale(int scaleFactor) {
        const int shift = kWeightBits + std::clamp(scaleFactor, -16 - kWeightBits, 31 - kWeightBits);
        down = std::max(shift, 0);
        up = std::max(-shift, 0);
    }
    [[nodiscard]] Kpr32s half() const { return down > 0 ? static_cast<Kpr32s>(1U << (down - 1)) : 0; }

    // What is beyond the range of a word before it is moved up is beyond it after: it need not leave its lane.
    [[nodiscard]] Kpr32s most() const { return up < 16 ? 65535 : 1; }
};

// Bytes and words, as pairs of 16-bit lanes; words are moved into the signed range on the way.
template <typename Src, typename Dst>
class PairCells {
    static constexpr int kLanesOfStep = kLanes<Kpr16s>;
    static constexpr Kpr32s kMoved = sizeof(Src) == 2 ? 32768 : 0;

  public:
    static constexpr int kStep = kLanesOfStep;

    PairCells(Weights<Kpr32s> w, Scale scale)
        : upper_(broadcast(w.w00 | (w.w10 << 16))),
          lower_(broadcast(w.w01 | (w.w11 << 16))),
          added_(broadcast(kMoved * (w.w00 + w.w10 + w.w01 + w.w11) + scale.half())),
          scale_(scale) {}

    struct Row {
        Vec<Kpr16s> first, second;  // neighbours in turn
    };
    KPR_INLINE Row row(const Src* src, auto part) const {
        const auto left = pixels(src, part), right = pixels(src + 1, part);
        return {interleaveLower(left, right), interleaveUpper(left, right)};
    }
    KPR_INLINE auto mean(const Row& upper, const Row& lower) const {
        using Joined = std::conditional_t<sizeof(Dst) == 2, Kpr16u, Kpr16s>;
        return join<Joined>(cell(upper.first, lower.first), cell(upper.second, lower.second));
    }
    KPR_INLINE void put(Dst* dst, const Row& upper, const Row& lower, auto part) const {
        storeAs(dst, mean(upper, lower), part);
    }

  private:
    KPR_INLINE static Vec<Kpr16s> pixels(const Src* src, auto part) {
        if constexpr (sizeof(Src) == 1) return loadAs<Kpr16s>(src, part);
        if constexpr (sizeof(Src) == 2) return as<Kpr16s>(load(src, part)) ^ broadcast<Kpr16s>(-32768);
    }
    KPR_INLINE Vec<Kpr32s> cell(Vec<Kpr16s> upper, Vec<Kpr16s> lower) const {
        const auto sum = sumPairs(upper, as<Kpr16s>(upper_)) + (sumPairs(lower, as<Kpr16s>(lower_)) + added_);
        const auto shifted = sum >> scale_.down;
        if (std::is_same_v<Src, Dst> || scale_.up == 0) return shifted;
        return min(shifted, broadcast(scale_.most())) << scale_.up;
    }

    Vec<Kpr32s> upper_, lower_, added_;
    Scale scale_;
};

// Bytes in 16-bit sums. A weight has two digits, 128 * high + low with low from -63 to 64, so that
//
//     (128 * H + L + 8192) >> 14 = (H + floor(L / 128) + 64) >> 7
//
// L, the sum of four bytes times their low digits, has a range of less than 2^16: moved by what it can be negative, it
// is an unsigned lane. No sum of two products exceeds a signed lane, if no weight has a high digit above 127.
class ByteCells {
  public:
    static constexpr int kStep = kLanes<Kpr8u>;

    static bool serves(Weights<Kpr32s> w) { return std::max({w.w00, w.w10, w.w01, w.w11}) <= 127 * 128 + 64; }

    explicit ByteCells(Weights<Kpr32s> w) {
        const auto high = [](Kpr32s weight) { return (weight + 63) >> 7; };
        const auto low = [=](Kpr32s weight) { return weight - high(weight) * 128; };
        const auto pair = [](Kpr32s a, Kpr32s b) {
            return as<Kpr8s>(broadcast(static_cast<Kpr16s>((a & 0xff) | (b << 8))));
        };
        upperHigh_ = pair(high(w.w00), high(w.w10));
        upperLow_ = pair(low(w.w00), low(w.w10));
        lowerHigh_ = pair(high(w.w01), high(w.w11));
        lowerLow_ = pair(low(w.w01), low(w.w11));
        Kpr32s negative = 0;
        for (const Kpr32s weight : {w.w00, w.w10, w.w01, w.w11}) negative += std::max(-low(weight), 0);
        const Kpr32s moved = (negative * 255 + 127) >> 7;
        moved_ = broadcast(static_cast<Kpr16u>(moved << 7));
        half_ = broadcast(static_cast<Kpr16u>(64 - moved));
    }

    struct Row {
        Vec<Kpr8u> first, second;  // neighbours in turn
    };
    KPR_INLINE static Row row(const Kpr8u* src, auto part) {
        const auto left = loadOnce(src, part), right = loadOnce(src + 1, part);
        return {interleaveLower(left, right), interleaveUpper(left, right)};
    }
    KPR_INLINE void put(Kpr8u* dst, const Row& upper, const Row& lower, auto part) const {
        store(dst, join(cell(upper.first, lower.first), cell(upper.second, lower.second)), part);
    }

  private:
    KPR_INLINE Vec<Kpr16u> cell(Vec<Kpr8u> upper, Vec<Kpr8u> lower) const {
        const auto high = as<Kpr16u>(sumPairs(upper, upperHigh_)) + as<Kpr16u>(sumPairs(lower, lowerHigh_));
        const auto low = as<Kpr16u>(sumPairs(upper, upperLow_)) + as<Kpr16u>(sumPairs(lower, lowerLow_)) + moved_;
        return shiftRight<7>(high + shiftRight<7>(low) + half_);
    }

    Vec<Kpr8s> upperHigh_, upperLow_, lowerHigh_, lowerLow_;
    Vec<Kpr16u> moved_, half_;
};

template <typename Src>
class FloatCells {
  public:
    static constexpr int kStep = kLanes<Kpr32f>;

    explicit FloatCells(Weights<Kpr32f> w)
        : w00_(broadcast(w.w00)), w10_(broadcast(w.w10)), w01_(broadcast(w.w01)), w11_(broadcast(w.w11)) {}

    struct Row {
        Vec<Kpr32f> left, right;
    };
    KPR_INLINE static Row row(const Src* src, auto part) {
        return {loadAs<Kpr32f>(src, part), loadAs<Kpr32f>(src + 1, part)};
    }
    KPR_INLINE Vec<Kpr32f> mean(const Row& upper, const Row& lower) const {
        const auto above = fma(w10_, upper.right, w00_ * upper.left);
        return fma(w11_, lower.right, fma(w01_, lower.left, above));
    }
    KPR_INLINE void put(Kpr32f* dst, const Row& upper, const Row& lower, auto part) const {
        store(dst, mean(upper, lower), part);
    }

  private:
    Vec<Kpr32f> w00_, w10_, w01_, w11_;
};

// The two pixels of a row alone.
template <typename Src>
class FloatPairs {
  public:
    static constexpr int kStep = kLanes<Kpr32f>;

    explicit FloatPairs(Kpr32f f) : left_(broadcast(1.0F - f)), right_(broadcast(f)) {}

    using Row = typename FloatCells<Src>::Row;
    KPR_INLINE static Row row(const Src* src, auto part) { return FloatCells<Src>::row(src, part); }
    KPR_INLINE void put(Kpr32f* dst, const Row& upper, const Row&, auto part) const {
        store(dst, fma(right_, upper.right, left_ * upper.left), part);
    }

  private:
    Vec<Kpr32f> left_, right_;
};

inline Weights<Kpr32f> weightsOf(Kpr32f fx, Kpr32f fy) {
    const Kpr32f rx = 1.0F - fx, ry = 1.0F - fy;
    return {rx * ry, fx * ry, rx * fy, fx * fy};
}

// Makes width x height pixels of the cells that begin at src. Patches are walked down, so that the lower row of a cell
// is at hand as the next one's upper; that gains a third. Longer rows are walked along, which suits the caches.
template <typename Cells, typename Src, typename Dst>
void makeCells(const Cells& cells, Rows<const Src> src, Rows<Dst> dst, Kpr64s width, Kpr64s height) {
    if (width <= 4 * Cells::kStep) {
        walkStretches<Cells::kStep, 1>(width, [&]<int>(auto part, Kpr64s x) {
            auto upper = cells.row(src[0] + x, part);
            for (Kpr64s y = 0; y < height; ++y) {
                const auto lower = cells.row(src[y + 1] + x, part);
                cells.put(dst[y] + x, upper, lower, part);
                upper = lower;
            }
        });
    } else {
        for (Kpr64s y = 0; y < height; ++y) {
            walkRow<Cells::kStep>(
                width,
                [&](auto part, Dst* d, const Src* upper, const Src* lower) {
                    cells.put(d, cells.row(upper, part), cells.row(lower, part), part);
                },
                dst[y], src[y], src[y + 1]);
        }
    }
}

// Each image's step.
template <typename Src, typename Dst>
KprStatus stepsHold(Kpr64s srcWidth, Kpr64s srcStep, Kpr64s dstWidth, Kpr64s dstStep) {
    const KprStatus src = rowsFit<Src>(srcWidth, srcStep), dst = rowsFit<Dst>(dstWidth, dstStep);
    if constexpr (sizeof(Src) == sizeof(Dst)) return firstFailure(src, dst, stepsAlign<Src>(srcStep, dstStep));
    return firstFailure(src, stepsAlign<Src>(srcStep), dst, stepsAlign<Dst>(dstStep));
}

// Runs walk(cells) with the kernel that serves these weights.
template <typename Src, typename Dst, typename Walk>
KPR_INLINE auto withCells(Weights<Kpr32s> w, int scaleFactor, Walk walk) {
    if constexpr (sizeof(Dst) == 1) {
        if (ByteCells::serves(w)) return walk(ByteCells(w));
    }
    return walk(PairCells<Src, Dst>(w, Scale(scaleFactor)));
}

}  // namespace n0::geometry
