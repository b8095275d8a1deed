// Fast corners. With v[i] the points of a circle around the pixel c and t the threshold:
//
//     bright   v[i] - c > t for `arc` points in a row of the closed circle        dark   c - v[i] > t
//     score    over all arcs the largest, of the smallest difference in an arc
//
// Every byte of the destinations is stored once, in whole vectors: no corner is the usual case, and a pass that clears
// would take as long as the search.
#include <algorithm>

#include "feature/fast_arc.h"
#include "feature/fast_orientation.h"
#include "primitives/sizes.h"

namespace n0::feature {
namespace {

constexpr int kStep = kLanes<Kpr8u>;

// The ROI, cut: what is tested of it, in coordinates of the ROI.
struct Tested {
    Kpr64s left, right, top, bottom;  // right and bottom lie behind the last
    bool clipped;

    Tested(const FastBlock& block, KprPoint offset, KprSize roi) {
        const auto cut = [&](int at, int size, int image, Kpr64s* first, Kpr64s* last) {
            const Kpr64s begin = at, end = begin + size;
            *first = std::clamp<Kpr64s>(block.radius - begin, 0, size);
            *last = std::clamp<Kpr64s>(image - block.radius - begin, *first, size);
            return begin < 0 || end > image;
        };
        const bool across = cut(offset.x, roi.width, block.width, &left, &right);
        const bool down = cut(offset.y, roi.height, block.height, &top, &bottom);
        clipped = across || down;
    }
};

constexpr bool outside(const FastBlock& block, KprPoint offset, KprSize roi) {
    return offset.x >= block.width || offset.y >= block.height || Kpr64s{offset.x} + roi.width <= 0 ||
           Kpr64s{offset.y} + roi.height <= 0;
}

struct Images {
    Rows<const Kpr8u> centre;  // of the ROI, which may begin outside the image
    Rows<Kpr8u> corner, score;
    KprSize roi;
};

KPR_INLINE Bytes64 cornerBytes(Bits64 bright, Bits64 dark) {
    return keep<Kpr8u>(bright, broadcast<Kpr8u>(0x40)) | keep<Kpr8u>(dark, broadcast<Kpr8u>(0x80));
}

// What is left of a row's corners on their way out: their number, and their bins.
class Exit {
  public:
    Exit(const Images& images, Orientation* orientation) : images_(images), orientation_(orientation) {}

    // Where a row's results go, and its centres.
    struct Row {
        const Kpr8u* centre;
        Kpr8u *corner, *score;
    };
    [[nodiscard]] Row row(Kpr64s left, Kpr64s y) const {
        return {images_.centre[y] + left, images_.corner[y] + left, images_.score[y] + left};
    }

    // 64 centres from x on, of which `bright` and `dark` are corners.
    template <bool scored, typename Part>
    KPR_INLINE void put(Part part, Row row, Kpr64s x, Bits64 bright, Bits64 dark, Bytes64 score) {
        const Bits64 corners = bright | dark;
        if constexpr (scored) store(row.score + x, score, part);
        if (corners == 0) {
            store(row.corner + x, zero<Kpr8u>(), part);
            return;
        }
        store(row.corner + x, cornerBytes(bright, dark), part);
        count_ += std::popcount(corners);
        if (orientation_ == nullptr) return;
        for (Bits64 left = corners; left != 0; left &= left - 1) {
            const Kpr64s at = x + std::countr_zero(left);
            orientation_->add(row.centre + at, row.corner + at);
        }
    }

    template <bool scored>
    void clear(Kpr64s first, Kpr64s last, Kpr64s y) const {
        walkColumns<kStep>(last - first, [&](auto part, Kpr64s x) {
            store(images_.corner[y] + first + x, zero<Kpr8u>(), part);
            if constexpr (scored) store(images_.score[y] + first + x, zero<Kpr8u>(), part);
        });
    }

    Kpr64s finish() {
        if (orientation_ != nullptr) orientation_->finish();
        return count_;
    }

  private:
    Images images_;
    Orientation* orientation_;
    Kpr64s count_ = 0;
};

template <bool scored, typename Arc>
void search(const Ring& ring, const Tested& tested, Exit& out) {
    const Arc arc(ring);
    for (Kpr64s y = tested.top; y < tested.bottom; ++y) {
        const Exit::Row row = out.row(tested.left, y);
        findInRow<scored>(
            arc, ring, row.centre, tested.right - tested.left,
            [&out, row ](auto part, Kpr64s x, const Found& found) __attribute__((always_inline)) {
                out.put<scored>(part, row, x, found.bright, found.dark, found.score);
            });
    }
}

// A row of the search as the suppression keeps it. Scores have a zero on either side.
struct FoundRow {
    Kpr8u* score;
    Bits64 *bright, *dark;
    bool any;
};

// Corners of `row` stay whose score is not below those of their neighbours.
void suppress(const Kpr8u* above, const FoundRow row, const Kpr8u* below, const Tested& tested, Kpr64s y, Exit& out) {
    const Exit::Row to = out.row(tested.left, y);
    walkColumns<kStep>(
        tested.right - tested.left, [ =, &out ](auto part, Kpr64s x) __attribute__((always_inline)) {
            const Kpr64s step = x / kStep;
            const Bits64 corners = row.any ? row.bright[step] | row.dark[step] : 0;
            if (corners == 0) {
                out.put<true>(part, to, x, 0, 0, zero<Kpr8u>());
                return;
            }
            const Bytes64 score = load(row.score + x, part);
            Bytes64 most = max(load(row.score + x - 1, part), load(row.score + x + 1, part));
            for (int i = -1; i <= 1; ++i) most = max(most, max(load(above + x + i, part), load(below + x + i, part)));
            const Bits64 stay = corners & ~less(score, most);
            out.put<true>(part, to, x, row.bright[step] & stay, row.dark[step] & stay, keep<Kpr8u>(stay, score));
        });
}

// The same with suppression, a row behind. Three rows of scores roll through the buffer; the bits of a row are needed
// one row later.
template <typename Arc>
void searchAndSuppress(const Ring& ring, const Images& images, const Tested& tested, Exit& out, Kpr8u* buffer) {
    const Arc arc(ring);
    const Kpr64s width = tested.right - tested.left, steps = (width + kStep - 1) / kStep;
    if (width == 0 || tested.top == tested.bottom) return;
    Workspace memory(buffer, 6 * Kpr64s{images.roi.width} + 636);
    auto* const words = memory.take<Bits64>(4 * steps);
    Kpr8u* const scores = memory.take<Kpr8u>(3 * (width + 2)) + 1;
    const auto clear = [&](Kpr8u* score) { __builtin_memset(score - 1, 0, static_cast<std::size_t>(width) + 2); };
    FoundRow rows[3];
    for (Kpr64s i = 0; i < 3; ++i) {
        const Kpr64s bits = i % 2 * 2 * steps;
        rows[i] = {scores + i * (width + 2), words + bits, words + bits + steps, false};
        clear(rows[i].score);
    }
    FoundRow *above = rows, *row = rows + 1, *below = rows + 2;
    for (Kpr64s y = tested.top; y <= tested.bottom; ++y) {
        below->bright = y % 2 == 0 ? words : words + 2 * steps;
        below->dark = below->bright + steps;
        Bits64 any = 0;
        if (y < tested.bottom) {
            const Kpr8u* const centre = images.centre[y] + tested.left;
            findInRow<true>(
                arc, ring, centre, width,
                [&any, to = *below ](auto part, Kpr64s x, const Found& found) __attribute__((always_inline)) {
                    store(to.score + x, found.score, part);
                    to.bright[x / kStep] = found.bright;
                    to.dark[x / kStep] = found.dark;
                    any |= found.bright | found.dark;
                });
        } else {
            clear(below->score);
        }
        below->any = any != 0;
        if (y > tested.top) suppress(above->score, *row, below->score, tested, y - 1, out);
        FoundRow* const oldest = above;
        above = row;
        row = below;
        below = oldest;
    }
}

template <bool scored, typename Arc>
void searchAs(const FastBlock& block, const Ring& ring, const Images& images, const Tested& tested, Exit& out,
              Kpr8u* buffer) {
    if (scored && suppresses(block))
        searchAndSuppress<Arc>(ring, images, tested, out, buffer);
    else
        search<scored, Arc>(ring, tested, out);
}

template <bool scored>
Kpr64s searchRoi(const KprFastNSpec* spec, const FastBlock& block, const Images& images, Kpr64s step,
                 const Tested& tested, Kpr8u* buffer) {
    const Ring ring(block, step);
    const auto run = [&](Orientation* orientation) {
        Exit out(images, orientation);
        for (Kpr64s y = 0; y < images.roi.height; ++y) {
            const bool whole = y < tested.top || y >= tested.bottom;
            out.clear<scored>(0, whole ? images.roi.width : tested.left, y);
            if (!whole) out.clear<scored>(tested.right, images.roi.width, y);
        }
        if (block.radius == 3 && block.arc == 9)
            searchAs<scored, Arc9Of16>(block, ring, images, tested, out, buffer);
        else
            searchAs<scored, AnyArc>(block, ring, images, tested, out, buffer);
        return out.finish();
    };
    if (!orients(block)) return run(nullptr);
    Orientation orientation(spec, ring.points, ring.offset);
    return run(&orientation);
}

KprStatus parametersHold(KprSize size, int radius, int arc, int bins, int option, KprDataType dataType, int channels,
                         KprStatus threshold) {
    return firstFailure(roiHolds(size), threshold, kindHolds(dataType, channels), optionHolds(option, bins),
                        circleHolds(radius, arc));
}

void fillBlock(const FastBlock& block, KprFastNSpec* spec) {
    auto* const memory = reinterpret_cast<Kpr8u*>(spec);
    memory[0] = static_cast<Kpr8u>(8 - (reinterpret_cast<std::uintptr_t>(memory) & 7));
    Kpr8u* const to = memory + memory[0];
    __builtin_memcpy(to, &block, sizeof block);
    if (!orients(block)) return;
    const int n = circleOf(block.radius).points;
    const Kpr32f step = 6.2831855F / static_cast<Kpr32f>(n);
    Kpr8u* const tables = to + sizeof block;
    for (int i = 0; i < n; ++i) {
        const Kpr64f angle = static_cast<Kpr32f>(i) * step;
        const auto sine = static_cast<Kpr32f>(kprsSinOne(angle)), cosine = static_cast<Kpr32f>(kprsCosOne(angle));
        __builtin_memcpy(tables + sizeof sine * static_cast<std::size_t>(i), &sine, sizeof sine);
        __builtin_memcpy(tables + sizeof sine * static_cast<std::size_t>(n + i), &cosine, sizeof cosine);
    }
    const Kpr32f scale = static_cast<Kpr32f>(block.bins) * 0.15915494F;
    __builtin_memcpy(tables + sizeof scale * static_cast<std::size_t>(2 * n), &scale, sizeof scale);
}

// Truncated, and brought into the range of an integer.
constexpr int integerOf(Kpr32f threshold) { return threshold < 0x1p31F ? static_cast<int>(threshold) : 0x7fffffff; }

// The checks of what a block holds, with the score image that it may ask for.
KprStatus blockServes(const FastBlock& block, const Kpr8u* score) {
    return firstFailure(optionHolds(block.option, block.bins),
                        failIf(scores(block) && score == nullptr, kprStatusNullPtr),
                        circleHolds(block.radius, block.arc));
}

KprStatus findCorners(Rows<const Kpr8u> src, Rows<Kpr8u> corner, Rows<Kpr8u> score, int* numCorners, KprPoint offset,
                      KprSize roi, const KprFastNSpec* spec, const FastBlock& block, Kpr8u* buffer) {
    if (outside(block, offset, roi)) return kprStatusRoiClipped;
    const Tested tested(block, offset, roi);
    const Images images = {{src[offset.y] + offset.x, src.step}, corner, score, roi};
    *numCorners = static_cast<int>(scores(block) ? searchRoi<true>(spec, block, images, src.step, tested, buffer)
                                                 : searchRoi<false>(spec, block, images, src.step, tested, buffer));
    return tested.clipped ? kprStatusRoiClipped : kprStatusOk;
}

int listCorners(Rows<const Kpr8u> corner, Rows<const Kpr8u> score, KprFastNCorner* list, KprSize roi, int most,
                const FastBlock& block) {
    int count = 0;
    const auto put = [&](int x, int y) {
        const int byte = corner[y][x], bin = byte & 0x3f;
        KprFastNCorner one = {x, y, byte >> 7, -1, -1.0F, -1.0F};
        if (orients(block)) {
            one.orientation = bin;
            one.angle = static_cast<Kpr32f>(bin * (360.0 / block.bins));
        }
        if (scores(block)) one.score = score[y][x];
        list[count++] = one;
    };
    for (int y = 0; y < roi.height && count < most; ++y) {
        walkColumns<kStep>(roi.width, [&](auto part, Kpr64s x) {
            Bits64 found = loadMask<Kpr8u>(corner[y] + x, part);
            for (; found != 0 && count < most; found &= found - 1)
                put(static_cast<int>(x) + std::countr_zero(found), y);
        });
    }
    return count;
}

}  // namespace
}  // namespace n0::feature

using namespace n0;
using namespace n0::feature;

KprStatus kpriFastNGetSize(KprSize srcSize, int circleRadius, int arcLength, int orientationBins, int option,
                           KprDataType dataType, int numChannels, int* result) {
    const KprStatus status = firstFailure(
        notNull(result),
        parametersHold(srcSize, circleRadius, arcLength, orientationBins, option, dataType, numChannels, kprStatusOk));
    if (status == kprStatusOk) *result = 8 * circleOf(circleRadius).points + 68;
    return status;
}

KprStatus kpriFastNInit(KprSize srcSize, int circleRadius, int arcLength, int orientationBins, int option,
                        KprDataType dataType, int numChannels, Kpr32f threshold, KprFastNSpec* spec) {
    const KprStatus status =
        firstFailure(notNull(spec), parametersHold(srcSize, circleRadius, arcLength, orientationBins, option, dataType,
                                                   numChannels, failIf(!(threshold >= 0), kprStatusBadThreshold)));
    if (status != kprStatusOk) return status;
    fillBlock({kFastMagic, dataType, numChannels, srcSize.width, srcSize.height, circleRadius, arcLength,
               orientationBins, option, 0, threshold, integerOf(threshold), circleOf(circleRadius).point},
              spec);
    return kprStatusOk;
}

KprStatus kpriFastNGetBufferSize(const KprFastNSpec* spec, KprSize dstRoiSize, int* result) {
    return firstFailure(notNull(spec, result), roiHolds(dstRoiSize))
               ?: putSize(Bytes{6} * dstRoiSize.width + 636, result);
}

KprStatus kpriFastN_8u_C1R(const Kpr8u* src, int srcStep, Kpr8u* dstCorner, int dstCornerStep, Kpr8u* dstScore,
                           int dstScoreStep, int* numCorners, KprPoint srcRoiOffset, KprSize dstRoiSize,
                           const KprFastNSpec* spec, Kpr8u* buffer) {
    FastBlock block;
    const int width = dstRoiSize.width;
    return firstFailure(notNull(src, dstCorner, spec, buffer, numCorners), roiHolds(dstRoiSize))
               ?: readBlock(spec, &block)
               ?: firstFailure(rowsFit<Kpr8u>(block.width, srcStep), rowsFit<Kpr8u>(width, dstCornerStep),
                               rowsFit<Kpr8u>(width, scores(block) ? dstScoreStep : kAnyStep),
                               blockServes(block, dstScore))
               ?: findCorners({src, srcStep}, {dstCorner, dstCornerStep}, {dstScore, dstScoreStep}, numCorners,
                              srcRoiOffset, dstRoiSize, spec, block, buffer);
}

KprStatus kpriFastN2DToVec_8u(const Kpr8u* srcCorner, int srcCornerStep, const Kpr8u* srcScore, int srcScoreStep,
                              KprFastNCorner* dstList, KprSize roiSize, int maxLen, int* numCorners,
                              const KprFastNSpec* spec) {
    FastBlock block;
    const int width = roiSize.width;
    const KprStatus status =
        firstFailure(notNull(srcCorner, dstList, numCorners, spec), roiHolds(roiSize),
                     failIf(maxLen < 0, kprStatusBadSize))
            ?: readBlock(spec, &block)
            ?: firstFailure(rowsFit<Kpr8u>(width, srcCornerStep),
                            rowsFit<Kpr8u>(width, scores(block) ? srcScoreStep : kAnyStep),
                            blockServes(block, srcScore));
    if (status != kprStatusOk) return status;
    *numCorners = listCorners({srcCorner, srcCornerStep}, {srcScore, srcScoreStep}, dstList, roiSize, maxLen, block);
    return kprStatusOk;
}
