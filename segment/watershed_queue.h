// Watershed of an 8-bit relief in the order of levels. Each pixel waits once: a marker with an unlabelled neighbour at
// the level of its relief, another pixel at the level of its relief or the one that the flood has reached, whichever is
// higher. Within a level pixels come in the order in which they were told to wait. The level never falls.
#pragma once

#include <bit>
#include <limits>

#include "primitives/neighbours.h"
#include "primitives/rows.h"
#include "primitives/simd_segment.h"
#include "primitives/workspace.h"

namespace n0::segment {

enum class Walls { None, Sides, All };  // which neighbours tell that a pixel lies between two segments

template <typename Label>
class QueueWatershed {
    static constexpr Label kWall = std::numeric_limits<Label>::max();

  public:
    // The workspace holds 8 bytes a pixel, and a label and a byte for each and the frame around them.
    QueueWatershed(Rows<const Kpr8u> src, Rows<Label> marker, KprSize roi, bool diagonals, Workspace space)
        : marker_(marker),
          width_(roi.width),
          height_(roi.height),
          pitch_(width_ + 2),
          neighbours_(diagonals ? 8 : 4),
          offsets_(pitch_) {
        const Kpr64s pixels = width_ * height_, framed = pitch_ * (height_ + 2);
        waiting_ = space.take<Kpr32s>(pixels);
        reached_ = space.take<Kpr32s>(pixels);
        auto* const labels = space.take<Label>(framed);
        auto* const relief = space.take<Kpr8u>(framed);
        labels_ = labels + pitch_ + 1;
        relief_ = relief + pitch_ + 1;
        walkRow<kLanes<Label>>(
            framed, [](auto part, Label* d) { store(d, broadcast(kWall), part); }, labels);
        Kpr32s counts[256] = {};
        for (Kpr64s y = 0; y < height_; ++y) {
            const auto copy = [](auto part, auto* d, const auto* s) { store(d, load(s, part), part); };
            walkRow<kLanes<Label>>(width_, copy, labels_ + y * pitch_, static_cast<const Label*>(marker[y]));
            walkRow<64>(width_, copy, relief_ + y * pitch_, src[y]);
            for (Kpr64s x = 0; x < width_; ++x) ++counts[relief_[y * pitch_ + x]];
        }
        Kpr32s* next = waiting_;
        for (int level = 0; level < 256; ++level) {
            first_[level] = end_[level] = next;
            next += counts[level];
        }
    }

    // `seedWalls` is which neighbours make a wall of a marker, `walls` which make one of a pixel that is reached.
    void run(Walls seedWalls, Walls walls) {
        plantMarkers(seedWalls);
        if (walls == Walls::None) flood<Walls::None>();
        if (walls == Walls::Sides) flood<Walls::Sides>();
        if (walls == Walls::All) flood<Walls::All>();
        for (Kpr64s y = 0; y < height_; ++y) {
            walkRow<kLanes<Label>>(
                width_, [](auto part, Label* d, const Label* s) { store(d, load(s, part), part); }, marker_[y],
                static_cast<const Label*>(labels_ + y * pitch_));
        }
    }

  private:
    static bool real(Label label) { return label != 0 && label != kWall; }

    KPR_INLINE void wait(Kpr64s pixel, int level) { *end_[level]++ = static_cast<Kpr32s>(pixel); }

    void plantMarkers(Walls walls) {
        for (Kpr64s y = 0; y < height_; ++y) {
            for (Kpr64s x = 0; x < width_; x += kLanes<Label>) {
                const First part{std::min<Kpr64s>(kLanes<Label>, width_ - x)};
                const auto labels = load(labels_ + y * pitch_ + x, part);
                for (Bits64 marked = ~Bits64{equal(labels, zero<Label>())} & part.bits; marked != 0;
                     marked &= marked - 1)
                    plant(y * pitch_ + x + std::countr_zero(marked), walls);
            }
        }
    }

    void plant(Kpr64s pixel, Walls walls) {
        if (openAround(pixel) != 0) wait(pixel, relief_[pixel]);
        const Label own = labels_[pixel];
        if (walls == Walls::None || own == kWall) return;
        const int count = walls == Walls::All ? 8 : 4;
        bool meets = false;
        for (int i = 0; i < count; ++i) {
            const Label other = labels_[pixel + offsets_[i]];
            meets |= real(other) && other != own;
        }
        if (meets) labels_[pixel] = kWall;
    }

    // The unlabelled neighbours, one bit each. Read one by one: the last labels are still on their way to memory, from
    // where a vector over several of them would have to wait for them.
    KPR_INLINE Bits64 openAround(Kpr64s pixel) const {
        const auto open = [&](int i) { return Bits64{labels_[pixel + offsets_[i]] == 0} << i; };
        const Bits64 sides = open(0) | open(1) | open(2) | open(3);
        return neighbours_ == 4 ? sides : sides | open(4) | open(5) | open(6) | open(7);
    }

    // The only real label around a pixel; the wall where there are two or none.
    template <Walls walls>
    KPR_INLINE Label between(Kpr64s pixel) const {
        Label label = kWall;
        for (int i = 0; i < (walls == Walls::All ? 8 : 4); ++i) {
            const Label other = labels_[pixel + offsets_[i]];
            if (!real(other) || other == label) continue;
            if (label != kWall) return kWall;
            label = other;
        }
        return label;
    }

    template <Walls walls>
    void flood() {
        for (int level = 0; level < 256; ++level) {
            const Kpr32s* const end = end_[level];
            if (end == first_[level]) continue;
            // From here on pixels join this level behind those that wait for it.
            end_[level] = reached_;
            for (const Kpr32s* pixel = first_[level]; pixel != end; ++pixel) spread<walls>(*pixel, level);
            for (const Kpr32s* pixel = reached_; pixel != end_[level]; ++pixel) spread<walls>(*pixel, level);
        }
    }

    template <Walls walls>
    KPR_INLINE void spread(Kpr64s pixel, int level) {
        const Label label = labels_[pixel];
        for (Bits64 open = openAround(pixel); open != 0; open &= open - 1) {
            const Kpr64s other = pixel + offsets_[std::countr_zero(open)];
            labels_[other] = walls == Walls::None ? label : between<walls>(other);
            wait(other, std::max<int>(relief_[other], level));
        }
    }

    Rows<Label> marker_;
    Kpr64s width_, height_, pitch_;
    int neighbours_;
    NeighbourOffsets<Kpr64s> offsets_;
    Label* labels_;    // framed by walls
    Kpr8u* relief_;    // framed likewise
    Kpr32s* waiting_;  // by levels: as many places as pixels have that relief
    Kpr32s* reached_;  // what joins the present level
    Kpr32s* first_[256];
    Kpr32s* end_[256];
};

}  // namespace n0::segment
