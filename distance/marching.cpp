// A distance field by raster sweeps. A pixel of non-zero mask, with a and b the values of a vertical and a horizontal
// neighbour, falls to
//
//     T(a, b) = 1 + min(a, b) where |a - b| >= 1, else 0.5 * ((a + b) + sqrt(fma(-(a - b), a - b, 2)))
//
// and a pixel of zero mask rises, within the radius, to the mirror image of that below zero. The order of the visits is
// part of the result, since each rounds.
//
// The first two passes look at every pixel, but what has a zero mask and no neighbour other than 0 stays 0: runs of
// such pixels are passed over 64 at a time. Later sweeps go by flags, one bit for each of the four ways to come by a
// pixel.
#include <algorithm>

#include "frame/checks.h"
#include "primitives/rows.h"
#include "primitives/simd_distance.h"
#include "primitives/sizes.h"
#include "primitives/workspace.h"

namespace n0::distance {
namespace {

constexpr Kpr32f kFirstPixel = 999999.0F;
constexpr Kpr32f kEdge = -1e-10F;  // of a zero region, beside a positive pixel
constexpr Kpr32f kAbsent = __builtin_inff();

constexpr Kpr64s flagStride(Kpr64s width) { return roundUp(width, 32); }
constexpr Bytes bufferBytes(KprSize roi) { return (Bytes{roi.height} + 34) * (Bytes{flagStride(roi.width)} + 5) + 40; }

Kpr32f bend(Kpr32f difference) { return __builtin_sqrtf(__builtin_fmaf(-difference, difference, 2.0F)); }

Kpr32f solve(Kpr32f a, Kpr32f b) {
    const Kpr32f difference = a - b;
    if (__builtin_fabsf(difference) >= 1.0F) return 1.0F + std::min(a, b);
    return 0.5F * ((a + b) + bend(difference));
}

// Which way a sweep moves through the rows, and a walk along a row.
enum class Sweep { Down, Up };
enum class Walk { Right, Left };

// `inward`: there is a radius, so that values below zero are sought too.
template <bool inward>
class Marching {
  public:
    Marching(Rows<const Kpr8u> mask, Rows<Kpr32f> dst, KprSize roi, Kpr32f radius, Kpr8u* buffer)
        : mask_(mask), dst_(dst), width_(roi.width), height_(roi.height), lowest_(-(radius + 1e-5F)) {
        Workspace work(buffer, static_cast<Kpr64s>(bufferBytes(roi)));
        const Kpr64s stride = flagStride(width_);
        flags_ = {work.take<Kpr8u>((height_ + 2) * stride) + stride, stride};
        rowFlags_ = work.take<Kpr8u>(height_ + 2) + 1;
        std::fill(flags_.first - stride, flags_.first + (height_ + 1) * stride, Kpr8u{0});
        std::fill(rowFlags_ - 1, rowFlags_ + height_ + 1, Kpr8u{1});
    }

    KprStatus run() {
        for (Kpr64s y = 0; y < height_; ++y) {
            std::fill(dst_[y], dst_[y] + width_, 0.0F);
            if (y == 0) dst_[0][0] = mask_[0][0] != 0 ? kFirstPixel : 0.0F;
            pass<Stage::Fresh, Sweep::Down, Walk::Right>(y, y == 0 ? 1 : 0);
            pass<Stage::Back, Sweep::Down, Walk::Left>(y, 1);
        }
        for (Kpr64s y = height_ - 2; y >= 0; --y) {
            pass<Stage::Later, Sweep::Up, Walk::Right>(y, 0);
            pass<Stage::Later, Sweep::Up, Walk::Left>(y, 1);
        }
        while (sweepRows<Sweep::Down>() && sweepRows<Sweep::Up>()) {
        }
        return kprStatusOk;
    }

  private:
    // The first pass takes values below zero for zero, and on its way right finds nothing that would have to be better.
    // From the second on what changes is flagged.
    enum class Stage { Fresh, Back, Later };
    static constexpr Kpr64s kStep = 64;

    // What a pixel takes from two neighbours; true if that was better than what it has.
    template <Stage stage>
    KPR_INLINE bool take(Kpr32f& value, bool outside, Kpr32f a, Kpr32f b) const {
        if (outside) {
            const Kpr32f next = stage == Stage::Later ? solve(a, b) : solve(std::max(a, 0.0F), std::max(b, 0.0F));
            if (stage != Stage::Fresh && !(next < value)) return false;
            value = next;
            return true;
        }
        if (a == kAbsent) a = 0;
        if (b == kAbsent) b = 0;
        Kpr32f next;
        if (a > 0 || b > 0) {
            next = kEdge;
        } else if (a != 0 && b != 0 && __builtin_fabsf(a - b) < 1.0F) {
            next = 0.5F * ((a + b) - bend(a - b));
        } else if (a != 0 || b != 0) {
            next = (a == 0 ? b : b == 0 ? a : std::max(a, b)) - 1.0F;
        } else {
            return false;
        }
        if (next < lowest_ || (next <= value && value != 0)) return false;
        value = next;
        return true;
    }

    // The columns of 64 from x on that have something to take: where the mask is set or, with values below zero, the
    // vertical neighbour or the one behind the walk is not 0.
    template <Walk way>
    KPR_INLINE Bits64 worthwhile(const Kpr8u* mask, const Kpr32f* row, const Kpr32f* vertical, Kpr64s x) const {
        const Kpr64s left = std::min(width_ - x, kStep);
        Bits64 bits = loadMask<Kpr8u>(mask + x, First(left));
        if constexpr (inward) {
            const auto notZero = [&](const Kpr32f* values, Kpr64s from, Kpr64s end) __attribute__((always_inline)) {
                Bits64 set = 0;  // values from + i, from 0 on and before `end`, in bit i
                for (Kpr64s i = 0; i < kStep; i += 16) {
                    Lanes part = First(std::clamp<Kpr64s>(end - from - i, 0, 16));
                    if (from + i < 0) part.bits &= ~Bits64{1};
                    const auto v = as<Kpr32s>(load(values + from + i, part));
                    set |= Bits64{static_cast<Kpr16u>(~equal(v + v, zero<Kpr32s>()))} << i;  // -0 is zero
                }
                return set;
            };
            if (vertical != nullptr) bits |= notZero(vertical, x, x + left);
            bits |= way == Walk::Right ? notZero(row, x - 1, x + left - 1) : notZero(row, x + 1, width_);
            bits &= First(left).bits;
        }
        return bits;
    }

    // A walk along row y from its `skipped` first pixel on.
    template <Stage stage, Sweep sweep, Walk way>
    void pass(Kpr64s y, Kpr64s skipped) {
        const Kpr8u* const mask = mask_[y];
        Kpr32f* const row = dst_[y];
        const Kpr64s from = sweep == Sweep::Down ? y - 1 : y + 1;
        const Kpr32f* const vertical = from >= 0 && from < height_ ? dst_[from] : nullptr;
        const auto visit = [&](Kpr64s x) __attribute__((always_inline)) {
            const Kpr64s behind = way == Walk::Right ? x - 1 : x + 1;
            const Kpr32f a = vertical != nullptr ? vertical[x] : kAbsent;
            const Kpr32f b = behind >= 0 && behind < width_ ? row[behind] : kAbsent;
            const bool outside = mask[x] != 0;
            if (!inward && !outside) return;
            if (take<stage>(row[x], outside, a, b) && stage == Stage::Later) mark<sweep>(x, y);
        };
        // A block's pixels are found at once; one behind a pixel that has become other than 0 goes with them.
        bool goesOn = false;
        for (Kpr64s block = 0, blocks = (width_ + kStep - 1) / kStep; block < blocks; ++block) {
            const Kpr64s base = (way == Walk::Right ? block : blocks - 1 - block) * kStep;
            const Kpr64s end = std::min(base + kStep, width_);
            const Bits64 bits = worthwhile<way>(mask, row, vertical, base);
            if (bits == 0 && !goesOn) continue;
            if constexpr (way == Walk::Right) {
                for (Kpr64s x = std::max(base, skipped); x < end; ++x) {
                    if (!goesOn) {
                        const Bits64 rest = bits >> (x - base);
                        if (rest == 0) break;
                        x += std::countr_zero(rest);
                    }
                    visit(x);
                    goesOn = inward && row[x] != 0;
                }
            } else {
                for (Kpr64s x = std::min(end, width_ - skipped) - 1; x >= base; --x) {
                    if (!goesOn) {
                        const Bits64 rest = bits << (kStep - 1 - (x - base));
                        if (rest == 0) break;
                        x -= std::countl_zero(rest);
                    }
                    visit(x);
                    goesOn = inward && row[x] != 0;
                }
            }
        }
    }

    // ---- by flags. Bits 1 and 2 are for a sweep down, walking right and left, 4 and 8 for a sweep up.

    // Pixel x of row y has changed in such a sweep: its neighbours are to be visited by those that come.
    template <Sweep sweep>
    KPR_INLINE void mark(Kpr64s x, Kpr64s y) const {
        constexpr Kpr8u right = sweep == Sweep::Down ? 4 : 1, left = 2 * right;
        Kpr8u* const here = flags_[y] + x;
        if (x + 1 < width_) here[1] |= right;
        if (x > 0) here[-1] |= left;
        here[-flags_.step] |= 12;
        here[flags_.step] |= 3;
    }

    template <Sweep sweep>
    bool walks(Kpr64s y) {
        const bool right = walk<sweep, Walk::Right>(y), left = walk<sweep, Walk::Left>(y);
        return right || left;
    }

    // The flagged pixels of a row, each change leading on to the pixel behind it.
    template <Sweep sweep, Walk way>
    bool walk(Kpr64s y) {
        constexpr Kpr8u bit = (sweep == Sweep::Down ? 1 : 4) * (way == Walk::Right ? 1 : 2);
        const Kpr8u* const mask = mask_[y];
        Kpr8u* const flags = flags_[y];
        Kpr32f* const row = dst_[y];
        const Kpr32f* const vertical = dst_[sweep == Sweep::Down ? y - 1 : y + 1];
        bool changed = false, goesOn = false;
        const auto visit = [&](Kpr64s x) __attribute__((always_inline)) {
            const Kpr64s behind = way == Walk::Right ? x - 1 : x + 1;
            const Kpr32f b = behind >= 0 && behind < width_ ? row[behind] : kAbsent;
            const bool outside = mask[x] != 0;
            goesOn = (inward || outside) && take<Stage::Later>(row[x], outside, vertical[x], b);
            if (!goesOn) return;
            changed = true;
            mark<sweep>(x, y);
        };
        for (Kpr64s block = 0, blocks = (width_ + kStep - 1) / kStep; block < blocks; ++block) {
            const Kpr64s base = (way == Walk::Right ? block : blocks - 1 - block) * kStep;
            const Kpr64s end = std::min(base + kStep, width_);
            const First part(end - base);
            // Marks that are set during the walk are for other walks: this one's can be taken at once.
            const auto all = load(flags + base, part), rest = all & broadcast(static_cast<Kpr8u>(~bit));
            const Bits64 bits = ~equal(all, rest);
            if (bits != 0) store(flags + base, rest, part);
            if (bits == 0 && !goesOn) continue;
            if constexpr (way == Walk::Right) {
                for (Kpr64s x = base; x < end; ++x) {
                    if (!goesOn) {
                        const Bits64 ahead = bits >> (x - base);
                        if (ahead == 0) break;
                        x += std::countr_zero(ahead);
                    }
                    visit(x);
                }
            } else {
                for (Kpr64s x = end - 1; x >= base; --x) {
                    if (!goesOn) {
                        const Bits64 ahead = bits << (kStep - 1 - (x - base));
                        if (ahead == 0) break;
                        x -= std::countl_zero(ahead);
                    }
                    visit(x);
                }
            }
        }
        return changed;
    }

    template <Sweep sweep>
    bool sweepRows() {
        bool any = false;
        for (Kpr64s i = 1; i < height_; ++i) {
            const Kpr64s y = sweep == Sweep::Down ? i : height_ - 1 - i;
            if (rowFlags_[y] == 0) continue;
            const bool changed = walks<sweep>(y);
            any |= changed;
            const Kpr8u note = changed ? 1 : 0;
            rowFlags_[y] = note;
            rowFlags_[y - 1] |= note;
            rowFlags_[y + 1] |= note;
        }
        return any;
    }

    Rows<const Kpr8u> mask_;
    Rows<Kpr32f> dst_;
    Kpr64s width_, height_;
    Kpr32f lowest_;
    Rows<Kpr8u> flags_{};
    Kpr8u* rowFlags_;
};

KprStatus march(Rows<const Kpr8u> mask, Rows<Kpr32f> dst, KprSize roi, Kpr32f radius, Kpr8u* buffer) {
    if (radius > 0) return Marching<true>(mask, dst, roi, radius, buffer).run();
    return Marching<false>(mask, dst, roi, radius, buffer).run();
}

}  // namespace
}  // namespace n0::distance

using namespace n0;
using namespace n0::distance;

KprStatus kpriFastMarchingGetBufferSize_8u32f_C1R(KprSize roiSize, int* bufferSize) {
    return firstFailure(notNull(bufferSize), roiHolds(roiSize)) ?: putSize(bufferBytes(roiSize), bufferSize);
}

KprStatus kpriFastMarching_8u32f_C1R(const Kpr8u* mask, int maskStep, Kpr32f* dst, int dstStep, KprSize roiSize,
                                     Kpr32f radius, Kpr8u* buffer) {
    return firstFailure(notNull(mask, dst, buffer), roiHolds(roiSize), rowsFit<Kpr8u>(roiSize.width, maskStep),
                        rowsFit<Kpr32f>(roiSize.width, dstStep), stepsAlign<Kpr32f>(dstStep),
                        failIf(!(radius >= 0), kprStatusBadArg))
               ?: march({mask, maskStep}, {dst, dstStep}, roiSize, radius, buffer);
}
