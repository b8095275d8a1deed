// Chamfer distances in single precision, every addition rounded in its place along the path. A row cannot be taken by
// doublings then: (d + a) + a is not d + 2a. Instead sixteen rows go at once, each some columns behind the one it
// takes values from, so that a vector holds one pixel of each and all its neighbours have been visited.
//
// At step t lane r has the pixel t - skew * r of its row. What lane r - 1 had at step t - i is one up in the other row
// and skew - i columns ahead: neighbours are earlier vectors whose lanes are moved up by one or two. Into the lanes
// that fall free come pixels of the rows before the sixteen. Blocks of 16 steps are turned into pieces of rows.
#pragma once

#include <algorithm>

#include "primitives/rows.h"
#include "primitives/simd_distance.h"

namespace n0::distance {

inline constexpr Kpr32f kFarthest = 3.4028235e38F;

template <int size>
class FloatChamfer {
  public:
    FloatChamfer(Rows<const Kpr8u> src, Rows<Kpr32f> dst, KprSize roi, const Kpr32f (&weights)[3])
        : src_(src), dst_(dst), width_(roi.width), height_(roi.height) {
        for (int i = 0; i < 3; ++i) weight_[i] = weights[i];
    }

    KprStatus run() {
        for (Kpr64s y = 0; y < height_; y += kRows) sweep<Pass::Down>(y);
        for (Kpr64s y = height_ - 1; y >= 0; y -= kRows) sweep<Pass::Up>(y);
        return kprStatusOk;
    }

  private:
    enum class Pass { Down, Up };
    static constexpr Kpr64s kRows = 16, kSteps = 16;
    static constexpr Kpr64s kSkew = size == 3 ? 2 : 3;
    static constexpr int kHeld = 7;  // the oldest vector that a step looks at

    // The vectors of a block's steps behind those of earlier steps.
    struct History {
        Vec<Kpr32f> v[kHeld + kSteps];

        History() {
            for (auto& old : v) old = broadcast(kFarthest);
        }
        KPR_INLINE void moveOn() {
            for (int i = 0; i < kHeld; ++i) v[i] = v[i + kSteps];
        }
        // Of `age` steps before step k.
        KPR_INLINE Vec<Kpr32f> back(int k, int age) const { return v[kHeld + k - age]; }
        KPR_INLINE void put(int k, Vec<Kpr32f> value) { v[kHeld + k] = value; }
    };

    // Sixteen rows from `first` on, in the direction of the pass; columns count in that direction too.
    template <Pass way>
    struct Band {
        const FloatChamfer& image;
        Kpr64s first, count;

        // The row r places on, and where in a row 16 columns begin of which the first in the pass's direction is c.
        [[nodiscard]] KPR_INLINE Kpr64s row(Kpr64s r) const { return way == Pass::Down ? first + r : first - r; }
        [[nodiscard]] KPR_INLINE Kpr64s from(Kpr64s c) const {
            return way == Pass::Down ? c : image.width_ - kSteps - c;
        }
        // In memory, which of them lie in the image.
        [[nodiscard]] KPR_INLINE Lanes inside(Kpr64s begin) const {
            Lanes part = First(std::clamp<Kpr64s>(image.width_ - begin, 0, kSteps));
            if (begin < 0) part.bits &= begin > -kSteps ? ~Bits64{0} << -begin : 0;
            return part;
        }
        // Pixels c to c + 15 of a row, as they lie in memory; kFarthest outside of the image.
        [[nodiscard]] KPR_INLINE Vec<Kpr32f> pixels(Kpr64s r, Kpr64s c) const {
            const Kpr64s y = row(r), begin = from(c);
            if (y < 0 || y >= image.height_) return broadcast(kFarthest);
            return load(image.dst_[y] + begin, inside(begin), broadcast(kFarthest));
        }
    };

    template <Pass way>
    void sweep(Kpr64s first) {
        const Band<way> band = {*this, first, std::min<Kpr64s>(kRows, way == Pass::Down ? height_ - first : first + 1)};
        History own, beside, beyond;
        // Before the first step only pixels of the rows before the sixteen have been met.
        Kpr32f lowest[kSteps], second[kSteps];
        store(lowest, band.pixels(-1, kSkew - kSteps), All{});
        store(second, band.pixels(-2, 2 * kSkew - kSteps), All{});
        for (int k = -kHeld; k < 0; ++k) {
            const Kpr64s at = way == Pass::Down ? kSteps + k : -1 - k;
            beside.put(k, shiftUp(broadcast(kFarthest), lowest[at]));
            beyond.put(k, shiftUp(beside.back(k, 0), second[at]));
        }
        const Kpr64s steps = width_ + kSkew * (band.count - 1);
        for (Kpr64s t = 0; t < steps; t += kSteps) {
            if (t >= kSkew * (kRows - 1) && t + kSteps <= width_ && band.count == kRows)
                block<way, true>(band, t, own, beside, beyond);
            else
                block<way, false>(band, t, own, beside, beyond);
        }
    }

    // `whole`: all pixels of the block lie in the image.
    template <Pass way, bool whole>
    KPR_INLINE void block(Band<way> band, Kpr64s t, History& own, History& beside, History& beyond) {
        // Pixels of the rows before the sixteen, which come into the lanes that fall free.
        Kpr32f lowest[kSteps], second[kSteps];
        store(lowest, band.pixels(-1, t + kSkew), All{});
        if constexpr (size == 5) store(second, band.pixels(-2, t + 2 * kSkew), All{});

        const auto begin = [&](int r) __attribute__((always_inline)) { return band.from(t - kSkew * r); };
        const auto inside = [&](int r) __attribute__((always_inline)) {
            return r < band.count ? band.inside(begin(r)) : Lanes{0};
        };
        Mask<Kpr32f> set[kSteps];
        Vec<Kpr32f> tile[kSteps];
        if constexpr (way == Pass::Down) {
            columnsNotZero(
                [&](int r) __attribute__((always_inline)) {
                    if constexpr (whole) return loadNarrow<16>(src_[band.row(r)] + begin(r), All{});
                    return loadNarrow<16>(r < band.count ? src_[band.row(r)] + begin(r) : nullptr, inside(r));
                },
                set);
        } else {
            for (int r = 0; r < kRows; ++r) {
                if constexpr (whole)
                    tile[r] = load(dst_[band.row(r)] + begin(r), All{});
                else
                    tile[r] = r < band.count ? band.pixels(r, t - kSkew * r) : broadcast(kFarthest);
            }
            transpose(tile);
        }

        const auto a = broadcast(weight_[0]), b = broadcast(weight_[1]), c = broadcast(weight_[2]);
        const auto behind = laneConstant<Kpr32s>([](int r) { return kSkew * r; });
        takeTurns<kSteps>([&](auto turn) __attribute__((always_inline)) {
            constexpr int k = turn, at = way == Pass::Down ? k : kSteps - 1 - k;
            auto others = min(beside.back(k, kSkew) + a,
                              min(beside.back(k, kSkew - 1 + (size == 3 ? 2 : 0)), beside.back(k, kSkew + 1)) + b);
            if constexpr (size == 5) {
                others = min(others, min(beside.back(k, 5), min(beyond.back(k, 5), beyond.back(k, 7))) + c);
            }
            const auto nearest = beside.back(k, 1) + (size == 3 ? b : c);
            others = min(others, way == Pass::Down ? broadcast(kFarthest) : tile[at]);
            auto d = min(min(others, own.back(k, 1) + a), nearest);
            if constexpr (way == Pass::Down) d = keep(set[at], d);
            if constexpr (!whole) {
                const auto column = broadcast(static_cast<Kpr32s>(t + k)) - behind;
                const auto outside =
                    less(column, zero<Kpr32s>()) | less(broadcast(static_cast<Kpr32s>(width_ - 1)), column);
                d = select(static_cast<Mask<Kpr32f>>(outside), broadcast(kFarthest), d);
            }
            own.put(k, d);
            beside.put(k, shiftUp(d, lowest[at]));
            if constexpr (size == 5) beyond.put(k, shiftUp(beside.back(k, 0), second[at]));
            tile[at] = d;
        });
        transpose(tile);
        for (int r = 0; r < kRows; ++r) {
            if constexpr (whole)
                store(dst_[band.row(r)] + begin(r), tile[r], All{});
            else if (r < band.count)
                store(dst_[band.row(r)] + begin(r), tile[r], inside(r));
        }
        own.moveOn();
        beside.moveOn();
        if constexpr (size == 5) beyond.moveOn();
    }

    Rows<const Kpr8u> src_;
    Rows<Kpr32f> dst_;
    Kpr64s width_, height_;
    Kpr32f weight_[3];
};

}  // namespace n0::distance
