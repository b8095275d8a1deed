// Structuring elements: the state block made from a mask, and what the sizing calls say of it and of the work buffer.
//
// A mask is kept with odd sides. An even side gets one more column or row of zeros: in front when the mask is kept as
// given, at the end when it is turned by 180 degrees. The anchor is the centre of what is kept.
#pragma once

#include <algorithm>
#include <bit>

#include "primitives/simd.h"
#include "primitives/sizes.h"

namespace n0::morph {

// Columns -left to right and rows -top to bottom around a pixel.
struct Window {
    Kpr64s left, right, top, bottom;

    [[nodiscard]] Kpr64s columns() const { return left + right + 1; }
    [[nodiscard]] Kpr64s rows() const { return top + bottom + 1; }
};

// Of a small mask whose rows are runs around the pixel's column: how far those of the rows at distance 0, 1 and 2,
// above and below, reach to either side; -1 for a row without taps. No run reaches farther than one nearer to the
// pixel.
struct Reaches {
    Kpr8s of[3];
};

// How a mask is best worked on. It is found once, when the state block is filled.
struct MaskPlan {
    enum Kind : Kpr8u { Copy, Rectangle, Small, Walk } kind;
    Kpr8u span;       // of TapWalk: how many pixels an element of its second ring joins, 1 for no such ring
    Reaches reaches;  // of a small mask
    Window window;    // the smallest that holds the pixel and all taps
};

// The kept mask, 0 or 255 a tap, and its plan.
struct Taps {
    const Kpr8u* mask;
    Kpr64s width;
    Kpr64s height;
    MaskPlan plan;

    [[nodiscard]] Kpr64s reachX() const { return width >> 1; }
    [[nodiscard]] Kpr64s reachY() const { return height >> 1; }
    [[nodiscard]] bool at(Kpr64s x, Kpr64s y) const { return mask[y * width + x] != 0; }
};

// A run of taps, in the row and from the column that are told relative to the pixel.
struct TapRun {
    Kpr64s row, column, length;
};

// Calls visit(run) for each. The taps of a row are looked at 64 at a time, as bits: a bit for each place, which the
// ends of runs are counted out of.
template <typename Visit>
void eachRun(const Taps& taps, Visit visit) {
    for (Kpr64s y = 0; y < taps.height; ++y) {
        constexpr Kpr64s kNone = -1;
        Kpr64s begin = kNone;  // of a run that is not at its end yet
        const auto end = [&](Kpr64s x) {
            visit(TapRun{y - taps.reachY(), begin - taps.reachX(), x - begin});
            begin = kNone;
        };
        for (Kpr64s x = 0; x < taps.width; x += 64) {
            const First part(std::min(taps.width - x, Kpr64s{64}));
            const Bits64 set = loadMask<Kpr8u>(taps.mask + y * taps.width + x, part);
            for (int i = 0; i < 64;) {
                const Bits64 rest = set >> i;
                if (begin != kNone) {
                    i += std::countr_one(rest);
                    if (i < 64) end(x + i);
                } else {
                    if (rest == 0) break;
                    i += std::countr_zero(rest);
                    begin = x + i;
                }
            }
        }
        if (begin != kNone) end(taps.width);
    }
}

// The loads that TapWalk makes for a run where an element of its second ring joins `span` pixels; the last of them may
// overlap the one before it.
constexpr Kpr64s loadsOf(Kpr64s run, Kpr64s span) { return run < span ? run : (run + span - 1) / span; }

// The state block as it lies in the caller's memory; Extent is 32-bit, and 64-bit in large forms. The mask follows it,
// then the lists of taps, then the plan.
template <typename Extent>
struct MorphState {
    Kpr8u* maskData;
    Extent paddedWidth, paddedHeight;
    Kpr32s anchorX, anchorY;
    Kpr16u* tapOffsets;  // for each row of the mask, the count of its taps and their columns; null if not kept
};

// The header at the start of a state block. Blocks are taken at any address; the slack in their sizes pays for aligning
// it.
template <typename Block, typename Memory>
auto& headerOf(Memory* spec) {
    return *alignedUp<Block>(spec);
}

// Which way round a mask is kept.
enum class Orientation { AsGiven, Reflected };

// Whether a block has the lists of taps behind its mask: those of 1-bit images have not.
enum class TapLists { Kept, None };

// Fills a block from a mask of width x height bytes.
template <typename Extent>
void fillState(void* spec, const Kpr8u* mask, Kpr64s width, Kpr64s height, Orientation turn,
               TapLists lists = TapLists::Kept);
template <typename Extent>
Taps tapsOf(const void* spec);

// ---- sizes in bytes

struct Extents {
    Kpr64s width, height, maskWidth, maskHeight;

    [[nodiscard]] Kpr64s paddedWidth() const { return maskWidth | 1; }
    [[nodiscard]] Kpr64s paddedHeight() const { return maskHeight | 1; }
};

Bytes stateSize(Extents e);        // 32-bit interface
Bytes stateSizeOfBits(Extents e);  // the same for 1-bit images
Bytes stateSizeLarge(Extents e);   // large interface: of one byte block and one 1-bit block
Bytes workSize(Extents e, int elementSize, int channels);

// The bytes that a buffer of `workSize` has at least, whatever larger image it was sized for: the size itself falls
// when the image grows past the mask.
Bytes workHeld(Extents e, int elementSize, int channels);

// ---- checks

// Sizes of the large interface, which end at 0x7fffffff too.
constexpr KprStatus roiNotBeyond(Kpr64s width, Kpr64s height) {
    return failIf(width > 0x7fffffff || height > 0x7fffffff, kprStatusSizeOverflow);
}

constexpr KprStatus largeSizesHold(Extents e) {
    return firstFailure(roiHolds(KprSizeL{e.width, e.height}), roiHolds(KprSizeL{e.maskWidth, e.maskHeight}),
                        roiNotBeyond(e.width, e.height), roiNotBeyond(e.maskWidth, e.maskHeight));
}

constexpr KprStatus typeServed(KprDataType type) {
    return failIf(type != kpr1u && type != kpr8u && type != kpr16u && type != kpr16s && type != kpr32f,
                  kprStatusBadDataType);
}

constexpr KprStatus channelsServed(int channels) {
    return failIf(channels != 1 && channels != 3 && channels != 4, kprStatusBadChannelCount);
}

constexpr int elementSizeOf(KprDataType type) {
    if (type == kpr32f) return 4;
    return type == kpr16u || type == kpr16s ? 2 : 1;
}

}  // namespace n0::morph
