// The direction in which a corner's circle is brighter, as a bin. Corners are taken in groups of sixteen, one a lane.
//
// The angle that counts is the one in double precision. A lane's angle in single precision tells the bin wherever that
// is farther from a bin's edge than it can be wrong; elsewhere the angle is formed anew.
#pragma once

#include "feature/fast_block.h"
#include "primitives/math.h"
#include "primitives/rows.h"

namespace n0::feature {

class Orientation {
  public:
    Orientation(const KprFastNSpec* spec, int points, const Kpr64s* offset) : points_(points), offset_(offset) {
        const Kpr8u* const tables = orientationOf(spec);
        const std::size_t bytes = static_cast<std::size_t>(points) * sizeof(Kpr32f);
        __builtin_memcpy(sine_, tables, bytes);
        __builtin_memcpy(cosine_, tables + bytes, bytes);
        __builtin_memcpy(&scale_, tables + 2 * bytes, sizeof scale_);
    }

    // The bin of the corner at `centre` is to be added to its byte.
    void add(const Kpr8u* centre, Kpr8u* corner) {
        for (int i = 0; i < points_; ++i)
            difference_[i * kGroup + count_] = static_cast<Kpr16s>(centre[offset_[i]] - *centre);
        corner_[count_] = corner;
        if (++count_ == kGroup) finish();
    }

    // To be called at the end, too.
    [[gnu::noinline]] void finish() {
        const First part(count_);
        Vec<Kpr32f> a = zero<Kpr32f>(), b = zero<Kpr32f>();
        for (int i = 0; i < points_; ++i) {
            const Vec<Kpr32f> d = toFloat(loadAs<Kpr32s>(difference_ + Kpr64s{i} * kGroup, part));
            a = a + d * broadcast(sine_[i]);
            b = b + d * broadcast(cosine_[i]);
        }
        Kpr32f as[kGroup], bs[kGroup], angles[kGroup];
        store(as, a, All{});
        store(bs, b, All{});
        kprsAtan2_32f_A21(bs, as, angles, kGroup);
        for (int i = 0; i < count_; ++i) *corner_[i] = static_cast<Kpr8u>(*corner_[i] | bin(as[i], bs[i], angles[i]));
        count_ = 0;
    }

  private:
    static constexpr int kGroup = kLanes<Kpr32f>;
    static constexpr Kpr64f kTurn = 6.283185307179586;
    // Angles are wrong by less than 2^-18 radians, and a bin scale is at most 64 / 2 pi.
    static constexpr Kpr64f kUnsure = 1e-4;

    [[nodiscard]] int bin(Kpr32f a, Kpr32f b, Kpr32f about) const {
        const auto scaled = [&](Kpr64f angle) { return (angle < 0 ? angle + kTurn : angle) * scale_; };
        const Kpr64f near = scaled(about);
        const int guess = static_cast<int>(near);
        if (near - guess > kUnsure && near - guess < 1 - kUnsure) return guess & 0x3f;
        return static_cast<int>(scaled(kprsAtan2One(b, a))) & 0x3f;
    }

    int points_;
    const Kpr64s* offset_;
    Kpr32f sine_[kMostPoints], cosine_[kMostPoints];
    Kpr32f scale_;
    int count_ = 0;
    Kpr8u* corner_[kGroup];
    Kpr16s difference_[kMostPoints * kGroup];
};

}  // namespace n0::feature
