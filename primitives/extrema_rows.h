// The search for extrema, row by row: the image is read once, a whole row is reduced in vectors, and of all rows only
// the winning one is read again, for the column.
//
// A Running holds what is known so far of one rule's extremum (the Smallest or the Largest), for each channel. Several
// may run along in one scan.
#pragma once

#include <algorithm>
#include <limits>

#include "primitives/channels.h"
#include "primitives/rows.h"

namespace n0 {

template <typename T>
struct Extremum {
    T value;
    int x;
    int y;
};

// The two rules. An extremum starts at `worst`, over which no value wins, and can get no better than `best`.
struct Smallest {
    template <typename T>
    static constexpr T worst = std::numeric_limits<T>::has_infinity ? std::numeric_limits<T>::infinity()
                                                                    : std::numeric_limits<T>::max();
    template <typename T>
    static constexpr T best = std::numeric_limits<T>::has_infinity ? -std::numeric_limits<T>::infinity()
                                                                   : std::numeric_limits<T>::lowest();
    // `old` where v is a NaN.
    template <typename T>
    KPR_INLINE static Vec<T> choose(Vec<T> v, Vec<T> old) {
        return min(v, old);
    }
    template <typename T>
    KPR_INLINE static Mask<T> improves(Vec<T> v, Vec<T> old) {
        return less(v, old);
    }
};

struct Largest {
    template <typename T>
    static constexpr T worst = Smallest::best<T>;
    template <typename T>
    static constexpr T best = Smallest::worst<T>;
    template <typename T>
    KPR_INLINE static Vec<T> choose(Vec<T> v, Vec<T> old) {
        return max(v, old);
    }
    template <typename T>
    KPR_INLINE static Mask<T> improves(Vec<T> v, Vec<T> old) {
        return less(old, v);
    }
};

template <typename T, int channels, typename Rule>
class Running {
  public:
    // One vector a turn: three for three channels, and for one channel as many as hide the latency of a choice, which
    // of floats takes four cycles and of integers one.
    static constexpr int kTurns = channels == 1 ? (std::is_floating_point_v<T> ? 4 : 2) : channels;

    KPR_INLINE Running() {
        const Vec<T> worst = broadcast(Rule::template worst<T>);
        takeTurns<kTurns>([&](auto turn) { lanes_[turn] = worst; });
        takeTurns<channels>([&](auto channel) {
            best_[channel] = worst;
            rowOf_[channel] = 0;
        });
    }

    // The lanes of v that `part` has.
    template <typename Part, typename Turn>
    KPR_INLINE void take(Part part, Turn turn, Vec<T> v) {
        lanes_[turn] = Rule::choose(merge(part, v, lanes_[turn]), lanes_[turn]);
    }

    // To be called after each row. Whether no later row can improve on it.
    KPR_INLINE bool endRow(int y) {
        if (!improved()) return final_;
        final_ = true;
        takeTurns<channels>([&](auto channel) {
            const Vec<T> now = fold(lanesOf(channel), choose);
            if (Rule::improves(now, best_[channel]) != 0) rowOf_[channel] = y;
            best_[channel] = now;
            final_ = final_ && firstLane(now) == Rule::template best<T>;
        });
        return final_;
    }

    // The extremum and its position. In the noted row, unless no row has improved on the worst value.
    [[nodiscard]] KPR_INLINE Extremum<T> find(Rows<const T> src, KprSize roi, int channel) const {
        for (int y = rowOf_[channel]; y < roi.height; ++y) {
            const T* row = src[y];
            const auto holdsIt = [&](auto part, const T* s) {
                const auto turn = static_cast<int>((s - row) / kLanes<T> % channels);
                return equal(load(s, part), best_[channel]) & channelLanes<T, channels>(channel, turn);
            };
            const Kpr64s x = searchRow<kLanes<T>>(Kpr64s{channels} * roi.width, holdsIt, row);
            if (x >= 0) return {row[x], static_cast<int>(x / channels), y};
        }
        return {src.first[channel], 0, 0};  // nothing but NaN
    }

    // The extremum alone. A zero's sign, and whether there was anything but NaN, has to be looked for.
    [[nodiscard]] KPR_INLINE T value(Rows<const T> src, KprSize roi, int channel) const {
        const T best = firstLane(best_[channel]);
        if constexpr (std::is_floating_point_v<T>) {
            if (best == 0 || best == Rule::template worst<T>) return find(src, roi, channel).value;
        }
        return best;
    }

  private:
    static constexpr auto choose = [](Vec<T> a, Vec<T> b) { return Rule::choose(a, b); };

    // Whether a lane is better than its channel's best.
    [[nodiscard]] KPR_INLINE bool improved() const {
        Bits64 lanes = 0;
        takeTurns<kTurns>([&](auto turn) {
            Vec<T> known = best_[0];
            takeTurns<channels>(
                [&](auto channel) { known = select(channelLanes<T, channels>(channel, turn), best_[channel], known); });
            lanes |= Rule::improves(lanes_[turn], known);
        });
        return lanes != 0;
    }

    // What belongs to a channel, in one vector.
    [[nodiscard]] KPR_INLINE Vec<T> lanesOf(int channel) const {
        Vec<T> all = broadcast(Rule::template worst<T>);
        takeTurns<kTurns>(
            [&](auto turn) { all = choose(select(channelLanes<T, channels>(channel, turn), lanes_[turn], all), all); });
        return all;
    }

    Vec<T> lanes_[kTurns];   // the best of each lane
    Vec<T> best_[channels];  // in every lane the best of the rows that have ended
    int rowOf_[channels];    // the first row that holds it
    bool final_ = false;     // it can get no better
};

// Reads every row, up to one after which nothing can change.
template <typename T, int channels, typename... Rule>
KPR_INLINE void scanRows(Rows<const T> src, KprSize roi, Running<T, channels, Rule>&... running) {
    constexpr int turns = std::max({Running<T, channels, Rule>::kTurns...});
    for (int y = 0; y < roi.height; ++y) {
        walkRowInTurns<kLanes<T>, turns>(
            Kpr64s{channels} * roi.width,
            [&](auto part, auto turn, const T* s) {
                const Vec<T> v = loadOnce(s, part);
                (running.take(part, turn, v), ...);
            },
            src[y]);
        if ((int{running.endRow(y)} & ...) != 0) return;
    }
}

// What extrema.cpp has compiled: of an image that has been checked, each channel's extrema.
template <typename T, int channels>
struct ExtremaOf {
    static KprStatus min(Rows<const T> src, KprSize roi, T* values);
    static KprStatus max(Rows<const T> src, KprSize roi, T* values);
    static KprStatus minMax(Rows<const T> src, KprSize roi, T* smallest, T* largest);
    static KprStatus minIndx(Rows<const T> src, KprSize roi, T* values, int* x, int* y);
    static KprStatus maxIndx(Rows<const T> src, KprSize roi, T* values, int* x, int* y);
};

}  // namespace n0
