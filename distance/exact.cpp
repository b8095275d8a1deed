// The exact Euclidean distance. With g(i, y) the distance within column i to the nearest zero pixel,
//
//     d2(x, y) = min over i of (x - i)^2 + g(i, y)^2,    dst(x, y) = (Kpr32f)sqrt((Kpr64f)d2(x, y))
//
// A column costs a step down, which leaves its distances to zeros above in the destination, and a step up. A row is the
// minimum of parabolas, each column's its own. Less x^2 they are straight lines, F(i) - 2 i x with F(i) = g(i)^2 + i^2,
// whose lower envelope is made of the corners of the lower convex hull of the points (i, F(i)): every line that is
// lowest anywhere is one of those. So the points of a row are thinned out to the corners, in vectors, and each corner
// is then the owner of a stretch of columns.
#include <algorithm>

#include "distance/hull.h"
#include "frame/checks.h"
#include "primitives/rows.h"
#include "primitives/simd_distance.h"
#include "primitives/sizes.h"
#include "primitives/workspace.h"

namespace n0::distance {
namespace {

constexpr Kpr32f kNoZero = 3.4028235e38F;

// Sides of images whose F, up to twice the square of the side, fits in 32 bits: rows go by vectors.
constexpr Kpr64s kVectorSide = 32767;
// Stands for the distance in a column without a zero: above any distance, and its square fits in 32 bits as well.
constexpr Kpr32s kNone = 40000;
// The same where sides are larger. Sizing calls let no side of 2^28 pass.
constexpr Kpr32s kNoneLarge = 1 << 28;

// A row's distances have as many elements in front of them and behind.
constexpr Kpr64s kReach = 3;
constexpr Kpr64s rowBytes(Kpr64s width) { return (4 * width + 2 * kReach) * Kpr64s{sizeof(Kpr32s)} + width + 4; }

// Distances to zeros above, row by row into the destination.
void stepDown(Rows<const Kpr8u> src, Rows<Kpr32s> down, KprSize roi, Kpr32s none) {
    for (Kpr64s y = 0; y < roi.height; ++y) {
        const Kpr32s* above = y > 0 ? down[y - 1] : nullptr;
        Kpr32s* out = down[y];
        walkColumns<kLanes<Kpr32s>>(roi.width, [=](auto part, Kpr64s x) {
            const Mask<Kpr32s> inside = loadMask<Kpr32s>(src[y] + x, part);
            auto g = broadcast(none);
            if (above != nullptr) g = min(g, load(above + x, part) + broadcast<Kpr32s>(1));
            store(out + x, keep(inside, g), part);
        });
    }
}

// The distances of a row, given those of the row below; true where the row has a pixel that is not zero.
bool stepUp(const Kpr32s* down, Kpr32s* g, Kpr64s width) {
    auto any = zero<Kpr32s>();
    walkColumns<kLanes<Kpr32s>>(width, [&](auto part, Kpr64s x) {
        const auto next = min(load(down + x, part), load(g + x, part) + broadcast<Kpr32s>(1));
        any = any | keep(within<Kpr32s>(part, 0xffff), next);
        store(g + x, next, part);
    });
    return equal(any, zero<Kpr32s>()) != 0xffff;
}

// ---- rows by vectors

class VectorRow {
  public:
    VectorRow(Workspace work, Kpr64s width) : width_(width) {
        g_ = work.take<Kpr32s>(width + 2 * kReach) + kReach;
        hull_ = {work.take<Kpr32s>(width), work.take<Kpr32s>(width), 0};
        starts_ = work.take<Kpr32s>(width);
        flags_ = work.take<Kpr8u>(width);
        std::fill(g_ - kReach, g_ + width + kReach, kNone);
        std::fill(flags_, flags_ + width, Kpr8u{0});
    }

    Kpr32s* distances() { return g_; }

    void solve(Kpr32f* dst) {
        choosePoints();
        if (hull_.count == 0) {
            std::fill(dst, dst + width_, kNoZero);
            return;
        }
        hull_.thinOut();
        divide();
        measure(dst);
    }

  private:
    static constexpr Kpr64s kStep = kLanes<Kpr32s>;

    // Columns that may be corners: not those without a zero, nor zeros between zeros, which own no column but their
    // own, nor those that lie too high above both columns next to them or three away: F bends down there.
    void choosePoints() {
        Kpr64s count = 0;
        walkColumns<kStep>(width_, [&](auto part, Kpr64s x) {
            const auto g = load(g_ + x, part), around = load(g_ + x - 1, part) | g | load(g_ + x + 1, part);
            const auto worthwhile = within<Kpr32s>(part, less(zero<Kpr32s>(), around));
            if (worthwhile == 0) return;
            const auto square = g * g;
            const auto bendsUp = [&]<int reach>(Turn<reach>) {
                const auto left = load(g_ + x - reach, part), right = load(g_ + x + reach, part);
                // Halves are rounded down, by less than 1 together: no corner is lost, and a few others stay.
                return less(square,
                            ((left * left) >> 1) + ((right * right) >> 1) + broadcast<Kpr32s>(reach * reach + 1));
            };
            const auto mask = static_cast<Mask<Kpr32s>>(worthwhile & less(g, broadcast(kNone)) & bendsUp(Turn<1>{}) &
                                                        bendsUp(Turn<3>{}));
            const auto column = broadcast(static_cast<Kpr32s>(x)) + laneConstant<Kpr32s>([](int i) { return i; });
            const First taken(countBits(mask));
            store(hull_.x + count, pack(mask, column), taken);
            store(hull_.f + count, pack(mask, square + column * column), taken);
            count += countBits(mask);
        });
        hull_.count = count;
    }

    // Where each corner's stretch begins: the first column at which its line is no higher than that of the corner
    // before. Corners whose stretch is empty or outside of the row are dropped.
    void divide() {
        const Kpr32s* const x = hull_.x;
        const Kpr32s* const f = hull_.f;
        starts_[0] = 0;
        walkColumns<kStep>(hull_.count - 1, [&](auto part, Kpr64s i) {
            const auto rise = load(f + i + 1, part) - load(f + i, part);
            const auto run = (load(x + i + 1, part) - load(x + i, part)) << 1;
            // The quotient in single precision is off by less than 1 where it lies in the row: one step mends it.
            auto start = roundUp(toFloat(rise) / toFloat(run));
            const auto over = start * run - rise;
            start = start + select(less(over, zero<Kpr32s>()), broadcast<Kpr32s>(1), zero<Kpr32s>());
            start = start - select(less(over, run), zero<Kpr32s>(), broadcast<Kpr32s>(1));
            start = max(zero<Kpr32s>(), min(start, broadcast(static_cast<Kpr32s>(width_))));
            store(starts_ + i + 1, start, part);
        });
        Kpr64s count = 0;
        walkColumns<kStep>(hull_.count, [&](auto part, Kpr64s i) {
            const auto start = load(starts_ + i, part);
            const Kpr64s others = std::min<Kpr64s>(hull_.count - 1 - i, kStep);
            const auto next = load(starts_ + i + 1, First{others}, broadcast(static_cast<Kpr32s>(width_)));
            const auto owners = within<Kpr32s>(part, less(start, next));
            const First taken(countBits(owners));
            const auto columns = load(x + i, part), heights = load(f + i, part);
            store(hull_.x + count, pack(owners, columns), taken);
            store(hull_.f + count, pack(owners, heights), taken);
            store(starts_ + count, pack(owners, start), taken);
            count += countBits(owners);
        });
        hull_.count = count;
        for (Kpr64s i = 0; i < count; ++i) flags_[starts_[i]] = 1;
    }

    // Each column's distance by its owner; takes the flags back.
    void measure(Kpr32f* dst) {
        Kpr64s next = 0;  // the first corner whose stretch has not begun
        walkColumns<kStep>(width_, [&](auto part, Kpr64s x) {
            const auto rank = runningCount(flags_ + x, part);
            const Kpr64s first = next;
            next += lastLane(rank);
            const auto inside = ~equal(load(g_ + x, part), zero<Kpr32s>()) & 0xffff;
            clearNarrow(flags_ + x, part);
            if (inside == 0) {
                store(dst + x, zero<Kpr32f>(), part);
                return;
            }
            const First begun(std::min(hull_.count - first, kStep));
            const auto which = rank - broadcast<Kpr32s>(1);
            auto column = permute(load(hull_.x + first, begun), which);
            auto height = permute(load(hull_.f + first, begun), which);
            if (first > 0) {
                const auto earlier = less(which, zero<Kpr32s>());
                column = select(earlier, broadcast(hull_.x[first - 1]), column);
                height = select(earlier, broadcast(hull_.f[first - 1]), height);
            }
            const auto here = broadcast(static_cast<Kpr32s>(x)) + laneConstant<Kpr32s>([](int i) { return i; });
            const auto squared = here * (here - (column << 1)) + height;
            store(dst + x, keep(static_cast<Mask<Kpr32f>>(inside), rootOf(squared)), part);
        });
    }

    Kpr64s width_;
    Kpr32s* g_;
    Points hull_;
    Kpr32s* starts_;
    Kpr8u* flags_;
};

// ---- rows of large images

class LargeRow {
  public:
    LargeRow(Workspace work, Kpr64s width)
        : width_(width), g_(work.take<Kpr32s>(width)), corners_(work.take<Kpr32s>(width)) {
        std::fill(g_, g_ + width, kNoneLarge);
    }

    Kpr32s* distances() { return g_; }

    void solve(Kpr32f* dst) {
        Kpr64s count = 0;
        for (Kpr64s x = 0; x < width_; ++x) {
            if (g_[x] >= kNoneLarge) continue;
            while (count >= 2 && !bendsUp(corners_[count - 2], corners_[count - 1], x)) --count;
            corners_[count++] = static_cast<Kpr32s>(x);
        }
        Kpr64s owner = 0;
        for (Kpr64s x = 0; x < width_; ++x) {
            if (count == 0) {
                dst[x] = kNoZero;
                continue;
            }
            while (owner + 1 < count && squared(x, corners_[owner + 1]) <= squared(x, corners_[owner])) ++owner;
            dst[x] = static_cast<Kpr32f>(__builtin_sqrt(static_cast<Kpr64f>(squared(x, corners_[owner]))));
        }
    }

  private:
    [[nodiscard]] Kpr64s f(Kpr64s i) const { return i * i + Kpr64s{g_[i]} * g_[i]; }
    [[nodiscard]] Kpr64s squared(Kpr64s x, Kpr64s i) const { return (x - i) * (x - i) + Kpr64s{g_[i]} * g_[i]; }
    [[nodiscard]] bool bendsUp(Kpr64s a, Kpr64s b, Kpr64s c) const {
        return Bytes{b - a} * (f(c) - f(b)) > Bytes{c - b} * (f(b) - f(a));
    }

    Kpr64s width_;
    Kpr32s* g_;
    Kpr32s* corners_;
};

template <typename Row>
KprStatus transform(Rows<const Kpr8u> src, Rows<Kpr32f> dst, KprSize roi, Kpr8u* buffer, Kpr32s none) {
    const Rows<Kpr32s> down = {reinterpret_cast<Kpr32s*>(dst.first), dst.step};
    stepDown(src, down, roi, none);
    Row row({buffer, rowBytes(roi.width)}, roi.width);
    for (Kpr64s y = roi.height - 1; y >= 0; --y) {
        if (stepUp(down[y], row.distances(), roi.width))
            row.solve(dst[y]);
        else
            std::fill(dst[y], dst[y] + roi.width, 0.0F);
    }
    return kprStatusOk;
}

KprStatus exactDistance(Rows<const Kpr8u> src, Rows<Kpr32f> dst, KprSize roi, Kpr8u* buffer) {
    if (roi.width <= kVectorSide && roi.height <= kVectorSide)
        return transform<VectorRow>(src, dst, roi, buffer, kNone);
    return transform<LargeRow>(src, dst, roi, buffer, kNoneLarge);
}

// Linear in the width, but the sides are such that squares and sums of all pixels fit: see kNoneLarge.
KprStatus putBufferSize(KprSize roi, int* size) {
    const Kpr64s w = roi.width, h = roi.height;
    int whole = 0;
    return putSize(Bytes{16} * (w + h) + Bytes{4} * w * h + 64, &whole) ?: putSize(rowBytes(w), size);
}

}  // namespace
}  // namespace n0::distance

using namespace n0;
using namespace n0::distance;

KprStatus kpriTrueDistanceTransformGetBufferSize_8u32f_C1R(KprSize roiSize, int* bufferSize) {
    return firstFailure(notNull(bufferSize), roiHolds(roiSize)) ?: putBufferSize(roiSize, bufferSize);
}

KprStatus kpriTrueDistanceTransform_8u32f_C1R(const Kpr8u* src, int srcStep, Kpr32f* dst, int dstStep, KprSize roiSize,
                                              Kpr8u* buffer) {
    return firstFailure(notNull(src, dst, buffer), roiHolds(roiSize), rowsFit<Kpr8u>(roiSize.width, srcStep),
                        rowsFit<Kpr32f>(roiSize.width, dstStep), stepsAlign<Kpr32f>(dstStep))
               ?: exactDistance({src, srcStep}, {dst, dstStep}, roiSize, buffer);
}
