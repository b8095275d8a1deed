// Growing markers over an image in the order of the steps between neighbours. The step between two pixels is the
// largest difference of a channel. A labelled pixel offers its label to each unlabelled neighbour at the level of the
// step to it; a pixel keeps its lowest offer, of equals the earliest. The pixel with the lowest offer of all, and among
// equals the earliest, takes the label and makes its own offers. Levels may fall.
//
// Offers wait in one list for each level, first in, first out.
#include <bit>

#include "frame/checks.h"
#include "primitives/neighbours.h"
#include "primitives/rows.h"
#include "primitives/simd_segment.h"
#include "primitives/sizes.h"
#include "segment/level_lists.h"

namespace n0::segment {
namespace {

constexpr Kpr8u kWall = 255;

// For each pixel its label, its level and the room of the lists; rows of levels above and below; the lists' ends.
// Together no more than 14 bytes a pixel and 4096.
constexpr Bytes stepBytes(KprSize roi) {
    const Bytes width = roi.width, pixels = width * roi.height;
    const bool large = pixels >= Bytes{BlockLists::kFewest};
    return pixels * (large ? 13 : 10) + 2 * (width + 8) + (large ? 0 : 8 * kLevels) + 8;
}

template <int channels, typename Lists>
class ColourSteps {
  public:
    ColourSteps(Rows<const Kpr8u> src, Rows<Kpr8u> marker, KprSize roi, bool diagonals, Workspace space)
        : src_(src),
          marker_(marker),
          width_(roi.width),
          height_(roi.height),
          inReach_(diagonals ? 0xff : 0x0f),
          rowOf_(~Bits64{0} / static_cast<Bits64>(roi.width)),
          offsets_(roi.width),
          labels_(space.take<Kpr8u>(width_ * height_)),
          levels_(space.take<Kpr8u>(width_ * height_ + 2 * (width_ + 4)) + width_ + 4),
          lists_(space, width_ * height_, levels_) {}

    void run() {
        for (Kpr64s y = 0; y < height_; ++y) {
            walkRow<64>(
                width_,
                [](auto part, const Kpr8u* m, Kpr8u* label, Kpr8u* level) {
                    const auto v = load(m, part);
                    store(label, v, part);
                    store(level, select<Kpr8u>(equal(v, zero<Kpr8u>()), broadcast(kUnoffered), zero<Kpr8u>()), part);
                },
                static_cast<const Kpr8u*>(marker_[y]), labels_ + y * width_, levels_ + y * width_);
        }
        for (Kpr64s y = 0; y < height_; ++y) {
            for (Kpr64s x = 0; x < width_; x += 64) {
                const First part{std::min<Kpr64s>(64, width_ - x)};
                const auto m = load(marker_[y] + x, part);
                Bits64 seeds = ~Bits64{equal(m, zero<Kpr8u>())} & ~Bits64{equal(m, broadcast(kWall))} & part.bits;
                for (; seeds != 0; seeds &= seeds - 1)
                    offer(static_cast<Kpr32s>(y * width_ + x + std::countr_zero(seeds)));
            }
        }
        for (Kpr32s pixel = lists_.takeFirst(); pixel >= 0; pixel = lists_.takeFirst()) {
            offer(pixel);
        }
        for (Kpr64s y = 0; y < height_; ++y) {
            walkRow<64>(
                width_, [](auto part, const Kpr8u* label, Kpr8u* m) { store(m, load(label, part), part); },
                static_cast<const Kpr8u*>(labels_ + y * width_), marker_[y]);
        }
    }

  private:
    // The level of a pixel without an offer; one with an offer at that level has a label. Labelled pixels have level 0,
    // which no offer is below.
    static constexpr Kpr8u kUnoffered = 255;

    KPR_INLINE void offer(Kpr32s pixel) {
        const auto y = static_cast<Kpr64s>((Bytes{pixel + Kpr64s{1}} * rowOf_) >> 64);
        const Kpr64s x = pixel - y * width_;
        const Kpr8u* const own = src_[y] + (x - 1) * channels;
        const Kpr8u* const level = levels_ + pixel - 1;
        const Eight kept = neighbours(level - width_, level, level + width_);
        if (x > 0 && x < width_ - 1 && y > 0 && y < height_ - 1) [[likely]]
            make(pixel, stepsAround<channels>(own - src_.step, own, own + src_.step, kAllSides), kept, inReach_);
        else
            offerAtEdge(pixel, x, y, own, kept);
    }

    [[gnu::noinline]] void offerAtEdge(Kpr32s pixel, Kpr64s x, Kpr64s y, const Kpr8u* own, Eight kept) {
        const Bits64 columns = 7U & ~(x == 0 ? 1U : 0U) & ~(x == width_ - 1 ? 4U : 0U);
        const Sides sides = {y == 0 ? 0 : columns, columns, y == height_ - 1 ? 0 : columns};
        Bits64 inside = inReach_;
        if (x == 0) inside &= ~Bits64{0b01010001};
        if (x == width_ - 1) inside &= ~Bits64{0b10100010};
        if (y == 0) inside &= ~Bits64{0b00110100};
        if (y == height_ - 1) inside &= ~Bits64{0b11001000};
        make(pixel, stepsAround<channels>(own - src_.step, own, own + src_.step, sides), kept, inside);
    }

    KPR_INLINE void make(Kpr32s pixel, Eight steps, Eight kept, Bits64 inside) {
        Bits64 better = less(steps, kept) & inside;
        if (const Bits64 highest = equal(steps, kUnoffered) & equal(kept, kUnoffered) & inside) {
            for (Bits64 rest = highest; rest != 0; rest &= rest - 1) {
                const int i = std::countr_zero(rest);
                if (labels_[pixel + offsets_[i]] == 0) better |= Bits64{1} << i;
            }
        }
        levels_[pixel] = 0;  // not before the vector load around it, which would wait for the store
        const Kpr8u label = labels_[pixel];
        for (const Bits64 levels = word(steps); better != 0; better &= better - 1) {
            const int i = std::countr_zero(better);
            const auto other = static_cast<Kpr32s>(pixel + offsets_[i]);
            const auto level = static_cast<Kpr8u>(levels >> 8 * i);
            lists_.leave(other);
            labels_[other] = label;
            levels_[other] = level;
            lists_.append(other, level);
        }
    }

    Rows<const Kpr8u> src_;
    Rows<Kpr8u> marker_;
    Kpr64s width_, height_;
    Bits64 inReach_;
    Bits64 rowOf_;  // 2^64 / width: a pixel's row without a division
    NeighbourOffsets<Kpr64s> offsets_;
    Kpr8u* labels_;  // given or offered
    Kpr8u* levels_;  // of the offer kept
    Lists lists_;
};

// Every labelled pixel with a right or lower neighbour - with diagonals to either side below, too - of another label
// becomes a wall. What is looked at lies right or below and has not been drawn yet.
void drawWalls(Rows<Kpr8u> marker, KprSize roi, bool diagonals) {
    const Kpr64s width = roi.width;
    const auto wall = broadcast(kWall);
    for (Kpr64s y = 0; y < roi.height; ++y) {
        Kpr8u* row = marker[y];
        const Kpr8u* below = marker[y + 1];
        for (Kpr64s x = 0; x < width; x += 64) {
            const First part{std::min<Kpr64s>(64, width - x)};
            const Bits64 beforeLast = First{std::min<Kpr64s>(64, width - 1 - x)}.bits;
            const auto v = load(row + x, part);
            Bits64 walls = 0;
            const auto divided = [&](const Kpr8u* from, Bits64 lanes) {
                const auto u = load(from, Lanes{lanes});  // lanes that are not there are 0
                walls |= ~Bits64{equal(u, v)} & ~Bits64{equal(u, zero<Kpr8u>())} & ~Bits64{equal(u, wall)};
            };
            divided(row + x + 1, beforeLast);
            if (y + 1 < roi.height) {
                divided(below + x, part.bits);
                if (diagonals) {
                    divided(below + x - 1, x == 0 ? part.bits & ~Bits64{1} : part.bits);
                    divided(below + x + 1, beforeLast);
                }
            }
            store(row + x, wall, Lanes{walls & ~Bits64{equal(v, zero<Kpr8u>())} & part.bits});
        }
    }
}

KprStatus stepSize(KprSize roi, int* bufferSize) {
    return firstFailure(notNull(bufferSize), roiHolds(roi)) ?: putSize(stepBytes(roi), bufferSize);
}

template <int channels>
KprStatus growAlongSteps(const Kpr8u* src, int srcStep, Kpr8u* marker, int markerStep, KprSize roi, int norm, int flag,
                         Kpr8u* buffer) {
    constexpr int walls = kprSegWall4 | kprSegWall8;
    const KprStatus status =
        firstFailure(notNull(src, marker, buffer), roiHolds(roi), rowsFit<Kpr8u>(Kpr64s{roi.width} * channels, srcStep),
                     rowsFit<Kpr8u>(roi.width, markerStep),
                     failIf(norm != kprSegNormChess && norm != kprSegNormCity, kprStatusBadArg),
                     failIf((flag & ~walls) != 0, kprStatusBadMode));
    if (status != kprStatusOk) return status;
    const Workspace space(buffer, static_cast<Kpr64s>(stepBytes(roi)));
    const auto grow = [&]<typename Lists>(Lists*) {
        ColourSteps<channels, Lists>({src, srcStep}, {marker, markerStep}, roi, norm == kprSegNormChess, space).run();
    };
    if (Kpr64s{roi.width} * roi.height >= BlockLists::kFewest)
        grow(static_cast<BlockLists*>(nullptr));
    else
        grow(static_cast<LinkedLists*>(nullptr));
    if ((flag & walls) != 0) drawWalls({marker, markerStep}, roi, (flag & kprSegWall8) != 0);
    return kprStatusOk;
}

}  // namespace
}  // namespace n0::segment

using namespace n0;
using namespace n0::segment;

KprStatus kpriSegmentGradientGetBufferSize_8u_C1R(KprSize roiSize, int* bufferSize) {
    return stepSize(roiSize, bufferSize);
}

KprStatus kpriSegmentGradientGetBufferSize_8u_C3R(KprSize roiSize, int* bufferSize) {
    return stepSize(roiSize, bufferSize);
}

KprStatus kpriSegmentGradient_8u_C1IR(const Kpr8u* src, int srcStep, Kpr8u* marker, int markerStep, KprSize roiSize,
                                      int norm, int flag, Kpr8u* buffer) {
    return growAlongSteps<1>(src, srcStep, marker, markerStep, roiSize, norm, flag, buffer);
}

KprStatus kpriSegmentGradient_8u_C3IR(const Kpr8u* src, int srcStep, Kpr8u* marker, int markerStep, KprSize roiSize,
                                      int norm, int flag, Kpr8u* buffer) {
    return growAlongSteps<3>(src, srcStep, marker, markerStep, roiSize, norm, flag, buffer);
}
