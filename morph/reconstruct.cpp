// Morphological reconstruction. By dilation, with m the marker, n its neighbours and l the limit,
//
//     m(x, y) = min(max(m(x, y), n...), l(x, y))
//
// until nothing changes; by erosion with minimum and maximum exchanged.
//
// The image is swept down and up in turn. A row takes its neighbours of the row before in vectors, then spreads its own
// values forward and backward. Rows at rest are passed over: a sweep visits a row whose flag is set or whose
// predecessor has just changed, and sets the flag of the row behind one that changed, for the opposite sweep.
#include <algorithm>

#include "frame/checks.h"
#include "primitives/rows.h"
#include "primitives/sizes.h"
#include "primitives/workspace.h"

namespace n0::morph {
namespace {

// With NaNs these keep the second operand: a marker's NaN stays, a limit's does not limit.
struct Growth {
    template <typename T>
    KPR_INLINE static T spread(T neighbour, T marker) {
        return neighbour > marker ? neighbour : marker;
    }
    template <typename T>
    KPR_INLINE static T hold(T limit, T value) {
        return limit < value ? limit : value;
    }
    template <typename T>
    KPR_INLINE static Vec<T> spread(Vec<T> neighbour, Vec<T> marker) {
        return max(neighbour, marker);
    }
    template <typename T>
    KPR_INLINE static Vec<T> hold(Vec<T> limit, Vec<T> value) {
        return min(limit, value);
    }
    template <typename T>
    KPR_INLINE static bool moves(Vec<T> next, Vec<T> old) {
        return anyGreater(next, old);
    }
};

struct Shrinkage {
    template <typename T>
    KPR_INLINE static T spread(T neighbour, T marker) {
        return neighbour < marker ? neighbour : marker;
    }
    template <typename T>
    KPR_INLINE static T hold(T limit, T value) {
        return limit > value ? limit : value;
    }
    template <typename T>
    KPR_INLINE static Vec<T> spread(Vec<T> neighbour, Vec<T> marker) {
        return min(neighbour, marker);
    }
    template <typename T>
    KPR_INLINE static Vec<T> hold(Vec<T> limit, Vec<T> value) {
        return max(limit, value);
    }
    template <typename T>
    KPR_INLINE static bool moves(Vec<T> next, Vec<T> old) {
        return anyGreater(old, next);
    }
};

template <typename Rule, typename T>
class Reconstruction {
  public:
    Reconstruction(Rows<const T> limit, Rows<T> marker, KprSize roi, Kpr8u* buffer, bool diagonals)
        : limit_(limit), marker_(marker), width_(roi.width), height_(roi.height), diagonals_(diagonals) {
        // The rows in front of the flags are not used.
        flags_ = alignedUp<Kpr8u>(buffer, 32) + 4 * roundUp(width_ * Kpr64s{sizeof(T)}, 32);
    }

    KprStatus run() {
        bool plain = true;
        for (;;) {
            if (plain) {
                setFlags();
                sweep<false>(0, 1);
                sweep<false>(height_ - 1, -1);
            }
            if (sweep<true>(0, 1) == 0) return kprStatusOk;
            const Kpr64s changed = sweep<true>(height_ - 1, -1);
            if (changed == 0) return kprStatusOk;
            plain = static_cast<Kpr64f>(changed) > 0.9 * static_cast<Kpr64f>(height_);
            if (plain) setFlags();
        }
    }

  private:
    static constexpr Kpr64s kLength = kLanes<T>;

    void setFlags() { std::fill(flags_, flags_ + height_, Kpr8u{1}); }

    // From row `first` on in `direction`; the checking form passes over rows at rest and counts rows that changed.
    template <bool checking>
    Kpr64s sweep(Kpr64s first, Kpr64s direction) {
        Kpr64s changedRows = 0;
        bool changed = false;
        for (Kpr64s i = 0, y = first; i < height_; ++i, y += direction) {
            if (checking && flags_[y] == 0 && !changed) continue;
            changed = visit(marker_[y], i == 0 ? nullptr : marker_[y - direction], limit_[y]);
            if (!checking) continue;
            flags_[y] = changed ? 1 : 0;
            changedRows += changed ? 1 : 0;
            if (changed && i > 0) flags_[y - direction] = 1;
        }
        return changedRows;
    }

    // Brings one row to rest against the row before it, null for the first; true if it changed.
    bool visit(T* row, const T* before, const T* limit) {
        bool changed = false;
        const auto join = [&](auto part, Kpr64s x, auto spreadTo) __attribute__((always_inline)) {
            const Vec<T> old = load(row + x, part), next = Rule::hold(load(limit + x, part), spreadTo(old));
            changed |= Rule::moves(next, old);
            store(row + x, next, part);
        };
        if (before == nullptr) {
            walkColumns<kLanes<T>>(width_, [&](auto part, Kpr64s x) { join(part, x, [](Vec<T> old) { return old; }); });
        } else if (!diagonals_) {
            walkColumns<kLanes<T>>(width_, [&](auto part, Kpr64s x) {
                join(part, x, [=](Vec<T> old) { return Rule::spread(load(before + x, part), old); });
            });
        } else {
            // Each neighbour is spread for itself: joined to one another first, a NaN would hide a number.
            walkColumns<kLanes<T>>(width_, [&](auto part, Kpr64s x) {
                const Vec<T> middle = load(before + x, part);
                const Vec<T> left = load(before + x - 1, inRow(part, x - 1), middle);
                const Vec<T> right = load(before + x + 1, inRow(part, x + 1), middle);
                join(part, x,
                     [=](Vec<T> old) { return Rule::spread(left, Rule::spread(right, Rule::spread(middle, old))); });
            });
        }
        const bool forward = spreadForward(row, limit);
        const bool backward = spreadBackward(row, limit);
        return changed || forward || backward;
    }

    // Of lanes that begin at column x those that lie in the row.
    [[nodiscard]] KPR_INLINE Lanes inRow(auto part, Kpr64s x) const {
        const Lanes right = First{std::clamp(width_ - x, Kpr64s{0}, kLength)};
        return part & (x < 0 ? Lanes{right.bits & ~Bits64{1}} : right);
    }

    // A value travels any distance along the row; so these are serial, but for vectors in which nothing would move.
    bool spreadForward(T* row, const T* limit) {
        bool changed = false;
        for (Kpr64s x = 1; x < width_; x += kLength) {
            const Kpr64s end = std::min(x + kLength, width_);
            if (atRest(row + x, row + x - 1, limit + x, end - x)) continue;
            changed = true;
            T run = row[x - 1];
            for (Kpr64s i = x; i < end; ++i) row[i] = run = Rule::hold(limit[i], Rule::spread(run, row[i]));
        }
        return changed;
    }

    bool spreadBackward(T* row, const T* limit) {
        bool changed = false;
        for (Kpr64s end = width_ - 1; end > 0; end -= std::min(end, kLength)) {
            const Kpr64s x = std::max(end - kLength, Kpr64s{0});
            if (atRest(row + x, row + x + 1, limit + x, end - x)) continue;
            changed = true;
            T run = row[end];
            for (Kpr64s i = end - 1; i >= x; --i) row[i] = run = Rule::hold(limit[i], Rule::spread(run, row[i]));
        }
        return changed;
    }

    KPR_INLINE static bool atRest(const T* row, const T* neighbours, const T* limit, Kpr64s count) {
        const First part{count};
        const Vec<T> old = load(row, part);
        return !Rule::moves(Rule::hold(load(limit, part), Rule::spread(load(neighbours, part), old)), old);
    }

    Rows<const T> limit_;
    Rows<T> marker_;
    Kpr64s width_, height_;
    bool diagonals_;
    Kpr8u* flags_;
};

template <typename Rule, typename T>
KprStatus reconstruct(const T* src, int srcStep, T* srcDst, int srcDstStep, KprSize roi, Kpr8u* buffer, int norm) {
    const KprStatus aligned = sizeof(T) == 1 ? KprStatus{kprStatusOk} : stepsAlign<T>(srcStep, srcDstStep);
    return firstFailure(notNull(src, srcDst, buffer), roiHolds(roi), rowsFit<T>(roi.width, srcStep, srcDstStep),
                        aligned, failIf(norm != 0 && norm != 1, kprStatusBadArg))
               ?: Reconstruction<Rule, T>({src, srcStep}, {srcDst, srcDstStep}, roi, buffer, norm == 0).run();
}

}  // namespace
}  // namespace n0::morph

using namespace n0;
using namespace n0::morph;

KprStatus kpriMorphReconstructGetBufferSize(KprSize roiSize, KprDataType dataType, int numChannels, int* bufferSize) {
    const bool served = dataType == kpr8u || dataType == kpr16u || dataType == kpr32f || dataType == kpr64f;
    const KprStatus status = firstFailure(notNull(bufferSize), roiHolds(roiSize), failIf(!served, kprStatusBadDataType),
                                          failIf(numChannels != 1, kprStatusBadCoi));
    if (status != kprStatusOk) return status;
    const Kpr64s width = roiSize.width, height = roiSize.height;
    Kpr64s size = height + 4 * width + 161;
    if (dataType == kpr16u) size *= 2;
    if (dataType == kpr32f) size = height + 16 * width + 164;
    if (dataType == kpr64f) size = height + 32 * width + 168;
    if (size > 0x7fffffff) return kprStatusSizeOverflow;
    *bufferSize = static_cast<int>(size);
    return kprStatusOk;
}

KprStatus kpriMorphReconstructDilate_8u_C1IR(const Kpr8u* src, int srcStep, Kpr8u* srcDst, int srcDstStep,
                                             KprSize roiSize, Kpr8u* buffer, int norm) {
    return reconstruct<Growth>(src, srcStep, srcDst, srcDstStep, roiSize, buffer, norm);
}

KprStatus kpriMorphReconstructDilate_16u_C1IR(const Kpr16u* src, int srcStep, Kpr16u* srcDst, int srcDstStep,
                                              KprSize roiSize, Kpr8u* buffer, int norm) {
    return reconstruct<Growth>(src, srcStep, srcDst, srcDstStep, roiSize, buffer, norm);
}

KprStatus kpriMorphReconstructDilate_32f_C1IR(const Kpr32f* src, int srcStep, Kpr32f* srcDst, int srcDstStep,
                                              KprSize roiSize, Kpr8u* buffer, int norm) {
    return reconstruct<Growth>(src, srcStep, srcDst, srcDstStep, roiSize, buffer, norm);
}

KprStatus kpriMorphReconstructDilate_64f_C1IR(const Kpr64f* src, int srcStep, Kpr64f* srcDst, int srcDstStep,
                                              KprSize roiSize, Kpr8u* buffer, int norm) {
    return reconstruct<Growth>(src, srcStep, srcDst, srcDstStep, roiSize, buffer, norm);
}

KprStatus kpriMorphReconstructErode_8u_C1IR(const Kpr8u* src, int srcStep, Kpr8u* srcDst, int srcDstStep,
                                            KprSize roiSize, Kpr8u* buffer, int norm) {
    return reconstruct<Shrinkage>(src, srcStep, srcDst, srcDstStep, roiSize, buffer, norm);
}

KprStatus kpriMorphReconstructErode_16u_C1IR(const Kpr16u* src, int srcStep, Kpr16u* srcDst, int srcDstStep,
                                             KprSize roiSize, Kpr8u* buffer, int norm) {
    return reconstruct<Shrinkage>(src, srcStep, srcDst, srcDstStep, roiSize, buffer, norm);
}

KprStatus kpriMorphReconstructErode_32f_C1IR(const Kpr32f* src, int srcStep, Kpr32f* srcDst, int srcDstStep,
                                             KprSize roiSize, Kpr8u* buffer, int norm) {
    return reconstruct<Shrinkage>(src, srcStep, srcDst, srcDstStep, roiSize, buffer, norm);
}

KprStatus kpriMorphReconstructErode_64f_C1IR(const Kpr64f* src, int srcStep, Kpr64f* srcDst, int srcDstStep,
                                             KprSize roiSize, Kpr8u* buffer, int norm) {
    return reconstruct<Shrinkage>(src, srcStep, srcDst, srcDstStep, roiSize, buffer, norm);
}
