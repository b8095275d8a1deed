// Watershed of a float relief by sweeps down and up the image until nothing changes.
//
// The cost of a path is a pair: the highest relief on it, its level, and its length since the last rise, its distance.
// Pairs are ordered by level, then by distance. From the best neighbour n
//
//     (relief, 0) where relief > level(n), else (level(n), distance(n) + weight + 1)
#pragma once

#include <bit>

#include "primitives/rows.h"
#include "primitives/workspace.h"
#include "segment/watershed_norms.h"
#include "segment/watershed_walls.h"

namespace n0::segment {

class FloatWatershed {
  public:
    FloatWatershed(Rows<const Kpr32f> src, Rows<Kpr16u> marker, KprSize roi, Norm norm, Workspace space)
        : src_(src),
          labels_(marker),
          roi_(roi),
          width_(roi.width),
          height_(roi.height),
          norm_(norm),
          parents_(marker.step / Kpr64s{sizeof(Kpr16u)}) {
        const Kpr64s pixels = width_ * height_;
        levels_ = space.take<Kpr32f>(pixels);
        distances_ = space.take<Kpr32s>(pixels);
        codes_ = space.take<Kpr8u>(pixels);
        rowFlags_ = space.take<Kpr8u>(height_ + 2) + 1;
        for (Kpr64s y = 0, i = 0; y < height_; ++y) {
            for (Kpr64s x = 0; x < width_; ++x, ++i) {
                const bool marked = labels_[y][x] != 0;
                levels_[i] = marked ? src_[y][x] : kUnreached;
                distances_[i] = 0;
                codes_[i] = marked ? kMarked : kNowhere;
            }
        }
        std::fill(rowFlags_ - 1, rowFlags_ + height_ + 1, Kpr8u{0});
    }

    void run() {
        if (norm_.family == Family::Four) sweep<Family::Four>();
        if (norm_.family == Family::Eight) sweep<Family::Eight>();
        if (norm_.family == Family::March) sweep<Family::March>();
    }

    void drawWalls(bool diagonals) const {
        wallsBetween(labels_, roi_, Kpr16u{0xffff}, diagonals,
                     [levels = levels_, distances = distances_](Kpr64s a, Kpr64s b) {
                         return levels[a] > levels[b] || (levels[a] == levels[b] && distances[a] > distances[b]);
                     });
    }

  private:
    static constexpr Kpr32f kUnreached = 3.4028234663852886e38F;

    // The best way to a pixel so far: the level of a neighbour, and its distance with the weight of the step from it.
    struct Way {
        Kpr32f level = kUnreached;
        Kpr32s sum = 0x7fffffff;
        Direction from = kNowhere;

        KPR_INLINE void orElse(const Way& other) {
            if (other.level < level || (other.level == level && other.sum < sum)) *this = other;
        }
    };

    template <Family family>
    void sweep() {
        visit<family, 0>(0);
        if (height_ == 1) return;
        for (Kpr64s y = 1; y < height_; ++y) visit<family, -1>(y);
        visit<family, 0>(height_ - 1);
        for (Kpr64s y = height_ - 2; y >= 0; --y) visitAndFlag<family, 1>(y);
        for (;;) {
            if (!anyFlag()) return;
            for (Kpr64s y = 1; y < height_; ++y) {
                if (rowFlags_[y] != 0) visitAndFlag<family, -1>(y);
            }
            if (!anyFlag()) return;
            for (Kpr64s y = height_ - 2; y >= 0; --y) {
                if (rowFlags_[y] != 0) visitAndFlag<family, 1>(y);
            }
        }
    }

    bool anyFlag() const { return std::find(rowFlags_, rowFlags_ + height_, Kpr8u{1}) != rowFlags_ + height_; }

    template <Family family, int dy>
    void visitAndFlag(Kpr64s y) {
        const bool changed = visit<family, dy>(y);
        rowFlags_[y] = 0;
        rowFlags_[y - 1] |= changed ? 1 : 0;
        rowFlags_[y + 1] |= changed ? 1 : 0;
    }

    // Visits a row, against the row `dy` away, to the right and back; with 0 along itself only.
    template <Family family, int dy>
    bool visit(Kpr64s y) {
        bool changed = false;
        for (Kpr64s x = 0; x < width_; ++x) {
            if (codes_[y * width_ + x] != kMarked) changed |= settle(x, y, wayRightward<family, dy>(x, y));
        }
        for (Kpr64s x = width_ - 2; x >= 0; --x) {
            if (codes_[y * width_ + x] != kMarked) changed |= settle(x, y, wayLeftward<family, dy>(x, y));
        }
        return changed;
    }

    // From a neighbour that has a label.
    KPR_INLINE Way from(Kpr64s x, Kpr64s y, Direction direction, Kpr32s weight) const {
        constexpr Kpr64s dx[] = {0, 1, 1, 0, -1, -1, -1, 0, 1}, dy[] = {0, 0, -1, -1, -1, 0, 1, 1, 1};
        const Kpr64s nx = x + dx[direction], ny = y + dy[direction];
        if (labels_[ny][nx] == 0) return {};
        const Kpr64s i = ny * width_ + nx;
        return {levels_[i], distances_[i] + weight, direction};
    }

    // Two ways at once, straight and aside. Fronts of one level that are no more than a step apart meet aslant, under
    // the root of twice the square of a step and one.
    KPR_INLINE static Way together(const Way& beside, const Way& straight) {
        Way way;
        way.orElse(beside);
        way.orElse(straight);
        if (beside.from == kNowhere || straight.from == kNowhere || beside.level != straight.level) return way;
        const Kpr64f a = beside.sum, b = straight.sum, apart = a - b;
        if (apart < -255 || apart > 255) return way;
        const Kpr64f met = 0.5 * (a + b + __builtin_sqrt(131072.0 - apart * apart)) + 0.5;
        way.sum = static_cast<Kpr32s>(met) - 255;
        return way;
    }

    template <Family family, int dy>
    KPR_INLINE Way wayRightward(Kpr64s x, Kpr64s y) const {
        Way left;
        if (x > 0) left = from(x, y, kLeft, norm_.side);
        Way way;
        if constexpr (dy == 0) {
            way.orElse(left);
            return way;
        }
        const Way straight = from(x, y, dy < 0 ? kAbove : kBelow, norm_.side);
        if (family == Family::March && x > 0) return together(left, straight);
        way.orElse(left);
        if (family == Family::Eight && x > 0) way.orElse(from(x, y, dy < 0 ? kUpperLeft : kLowerLeft, norm_.corner));
        way.orElse(straight);
        if (family == Family::Eight && x > 0 && x < width_ - 1)
            way.orElse(from(x, y, dy < 0 ? kUpperRight : kLowerRight, norm_.corner));
        return way;
    }

    template <Family family, int dy>
    KPR_INLINE Way wayLeftward(Kpr64s x, Kpr64s y) const {
        const Way right = from(x, y, kRight, norm_.side);
        if (family == Family::March && dy != 0)
            return together(right, from(x, y, dy < 0 ? kAbove : kBelow, norm_.side));
        Way way;
        way.orElse(right);
        if (family == Family::Eight && dy != 0) way.orElse(from(x, y, dy < 0 ? kAbove : kBelow, norm_.side));
        return way;
    }

    // Takes a better way, or else the label of the neighbour that the present one comes from.
    KPR_INLINE bool settle(Kpr64s x, Kpr64s y, const Way& way) {
        const Kpr64s i = y * width_ + x;
        const Kpr32f relief = src_[y][x];
        Kpr16u* const label = labels_[y] + x;
        if (way.from != kNowhere) {
            const bool rises = relief > way.level;
            const Kpr32f level = rises ? relief : way.level;
            const Kpr32s distance = rises ? 0 : way.sum + 1;
            if (*label == 0 || level < levels_[i] || (level == levels_[i] && distance < distances_[i])) {
                levels_[i] = level;
                distances_[i] = distance;
                codes_[i] = way.from;
                *label = label[parents_[way.from]];
                return true;
            }
        }
        const Kpr16u parentLabel = label[parents_[codes_[i]]];
        if (parentLabel == *label) return false;
        *label = parentLabel;
        if (levels_[i] == relief && distances_[i] <= 1) return true;
        const Kpr64s parent = i + ParentOffsets(width_)[codes_[i]];
        if (levels_[i] == levels_[parent]) {
            distances_[i] = distances_[parent] + 1;
        } else {
            levels_[i] = relief > levels_[parent] ? relief : levels_[parent];
            distances_[i] = 0;
        }
        return true;
    }

    Rows<const Kpr32f> src_;
    Rows<Kpr16u> labels_;
    KprSize roi_;
    Kpr64s width_, height_;
    Norm norm_;
    ParentOffsets parents_;
    Kpr32f* levels_;
    Kpr32s* distances_;
    Kpr8u* codes_;
    Kpr8u* rowFlags_;
};

}  // namespace n0::segment
