// Chamfer distances in bytes or words. A row takes what comes from other rows in vectors, then spreads its own values
// along: the smallest of v(x - i) + i * a is found by doublings within 16 bytes, then from 16 bytes to 16 bytes. Sums
// stop at the type's largest value, which is that of pixels from which no zero is reached: minima do not mind.
#pragma once

#include <algorithm>
#include <limits>

#include "primitives/rows.h"
#include "primitives/simd_distance.h"

namespace n0::distance {

template <int size, typename T>
class IntegerChamfer {
  public:
    IntegerChamfer(Rows<const Kpr8u> src, Rows<T> dst, KprSize roi, const Kpr32s (&weights)[3])
        : src_(src), dst_(dst), width_(roi.width), height_(roi.height) {
        for (int i = 0; i < 3; ++i) weight_[i] = bounded(weights[i]);
        a_ = broadcast(weight_[0]);
        b_ = broadcast(weight_[1]);
        c_ = broadcast(weight_[2]);
        for (int i = 0; i < kPieces; ++i) doubling_[i] = broadcast(times(Kpr64s{1} << i));
        up_.setRamps([&](int i) { return times(i % kPiece + 1); },
                     [&](int i) { return times(i / kPiece * kPiece + kPiece); });
        down_.setRamps([&](int i) { return times(kPiece - i % kPiece); },
                       [&](int i) { return times((4 - i / kPiece) * kPiece); });
    }

    KprStatus run() {
        for (Kpr64s y = 0; y < height_; ++y) {
            up_.carry = ones();
            const T* const beside = y > 0 ? dst_[y - 1] : nullptr;
            const T* const beyond = y > 1 ? dst_[y - 2] : nullptr;
            for (Kpr64s x = 0; x < width_; x += kStep) {
                const auto step = [&](auto part, auto load) {
                    const auto taken = arriving(load, beside, beyond, x);
                    const auto set = loadMask<T>(src_[y] + x, part);
                    store(dst_[y] + x, spread<Toward::Higher>(keep(set, taken), up_), part);
                };
                dispatch(x, step);
            }
        }
        for (Kpr64s y = height_ - 1; y >= 0; --y) {
            down_.carry = ones();
            const T* const beside = y + 1 < height_ ? dst_[y + 1] : nullptr;
            const T* const beyond = y + 2 < height_ ? dst_[y + 2] : nullptr;
            for (Kpr64s x = (width_ - 1) / kStep * kStep; x >= 0; x -= kStep) {
                const auto step = [&](auto part, auto load) {
                    const auto taken = min(load(dst_[y], x), arriving(load, beside, beyond, x));
                    // Behind the row's end there is nothing that could come along it.
                    store(dst_[y] + x, spread<Toward::Lower>(merge(part, taken, ones()), down_), part);
                };
                dispatch(x, step);
            }
        }
        return kprStatusOk;
    }

  private:
    static constexpr Kpr64s kStep = kLanes<T>;
    static constexpr int kPiece = 16 / sizeof(T);           // lanes of 16 bytes
    static constexpr int kPieces = sizeof(T) == 1 ? 6 : 5;  // doublings up to half a vector
    static constexpr Kpr64s kMost = std::numeric_limits<T>::max();

    // How far values have come that move one way along a row.
    struct Along {
        Vec<T> ramp;      // by lane, the way from the end of the 16 bytes before
        Vec<T> quarters;  // by 16 bytes, the way from the end of the vector before to their end
        Vec<T> carry;     // the value at the end of the vector before

        template <typename Ramp, typename Quarters>
        void setRamps(Ramp rampOf, Quarters quartersOf) {
            T lanes[kStep];
            for (int i = 0; i < kStep; ++i) lanes[i] = rampOf(i);
            ramp = load(lanes, All{});
            for (int i = 0; i < kStep; ++i) lanes[i] = quartersOf(i);
            quarters = load(lanes, All{});
        }
    };

    static T bounded(Kpr64s value) { return static_cast<T>(std::min(value, kMost)); }
    [[nodiscard]] T times(Kpr64s count) const { return bounded(count * weight_[0]); }
    KPR_INLINE static Vec<T> ones() { return broadcast(std::numeric_limits<T>::max()); }

    // Runs step(part, load) for the vector at column x, load(row, column) giving the largest value outside of the row.
    template <typename Step>
    KPR_INLINE void dispatch(Kpr64s x, Step step) const {
        if (x >= 2 && x + kStep + 2 <= width_) {
            step(
                All{},
                [](const T* row, Kpr64s column) __attribute__((always_inline)) { return load(row + column, All{}); });
            return;
        }
        const First part(std::min(width_ - x, kStep));
        step(
            part, [this](const T* row, Kpr64s column) __attribute__((always_inline)) {
                Lanes inside = First(std::min(width_ - std::min(column, width_), kStep));
                if (column < 0) inside.bits &= ~Bits64{0} << -column;
                return load(row + column, inside, ones());
            });
    }

    // What comes from the row beside and, by knight's steps, from the one beyond it.
    template <typename Load>
    KPR_INLINE Vec<T> arriving(Load load, const T* beside, const T* beyond, Kpr64s x) const {
        if (beside == nullptr) return ones();
        const auto pair = [&](const T* row, Kpr64s reach, Vec<T> weight) __attribute__((always_inline)) {
            return addSaturated(min(load(row, x - reach), load(row, x + reach)), weight);
        };
        auto v = min(addSaturated(load(beside, x), a_), pair(beside, 1, b_));
        if constexpr (size == 5) {
            v = min(v, pair(beside, 2, c_));
            if (beyond != nullptr) v = min(v, pair(beyond, 1, c_));
        }
        return v;
    }

    template <Toward way>
    KPR_INLINE Vec<T> spread(Vec<T> v, Along& along) const {
        constexpr int bytes = sizeof(T);
        v = min(v, addSaturated(shiftIn16<way, bytes>(v), doubling_[0]));
        v = min(v, addSaturated(shiftIn16<way, 2 * bytes>(v), doubling_[1]));
        v = min(v, addSaturated(shiftIn16<way, 4 * bytes>(v), doubling_[2]));
        if constexpr (bytes == 1) v = min(v, addSaturated(shiftIn16<way, 8>(v), doubling_[3]));
        constexpr int next = kPieces - 2;
        auto ends = as<T>(permuteIn16(as<Kpr8u>(v), laneConstant<Kpr8u>([](int i) {
                                          return (way == Toward::Higher ? 16 - int{sizeof(T)} : 0) + i % int{sizeof(T)};
                                      })));
        ends = min(ends, addSaturated(shiftQuarters<way, 1>(ends, ones()), doubling_[next]));
        ends = min(ends, addSaturated(shiftQuarters<way, 2>(ends, ones()), doubling_[next + 1]));
        ends = min(ends, addSaturated(along.carry, along.quarters));
        v = min(v, addSaturated(shiftQuarters<way, 1>(ends, along.carry), along.ramp));
        along.carry = outermostQuarter<way>(ends);
        return v;
    }

    Rows<const Kpr8u> src_;
    Rows<T> dst_;
    Kpr64s width_, height_;
    T weight_[3];
    Vec<T> a_, b_, c_;
    Vec<T> doubling_[kPieces];  // the weight of 1, 2, 4 ... steps along the row
    Along up_, down_;
};

}  // namespace n0::distance
