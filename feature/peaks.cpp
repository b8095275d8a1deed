// The largest local maxima of an image. c is a peak where
//
//     c > threshold,    c > n for the neighbours before it in raster order,    c >= n for those after it
//
// a neighbour that is a NaN or outside the ROI being no hindrance.
//
// Peaks are kept as they come until the list overflows by a third; then all but the largest are dropped, and from there
// on only pixels above the smallest that is left are looked at. Of equal peaks the earlier ones stay, so that no later
// pixel with just that value can come in.
#include <bit>
#include <limits>

#include "frame/checks.h"
#include "primitives/rows.h"
#include "primitives/simd_corners.h"
#include "primitives/sizes.h"
#include "primitives/workspace.h"

namespace n0::feature {
namespace {

constexpr Bytes bufferBytes(int peaks) { return Bytes{16} * peaks + 64; }

// Values as integers of the same order. The zeros are equal.
constexpr unsigned keyOf(Kpr32s value) { return static_cast<unsigned>(value) ^ 0x80000000; }
constexpr unsigned keyOf(Kpr32f value) {
    const auto bits = std::bit_cast<unsigned>(value + 0.0F);
    return bits ^ ((bits & 0x80000000) != 0 ? 0xffffffff : 0x80000000);
}
template <typename T>
constexpr T valueOf(unsigned key) {
    if constexpr (std::is_same_v<T, Kpr32s>) return static_cast<Kpr32s>(key ^ 0x80000000);
    return std::bit_cast<T>(key ^ ((key & 0x80000000) != 0 ? 0x80000000 : 0xffffffff));
}

class PeakList {
  public:
    PeakList(int wanted, Kpr8u* buffer) : wanted_(wanted), room_((static_cast<Kpr64s>(bufferBytes(wanted)) - 3) / 12) {
        key_ = alignedUp<unsigned>(buffer);
        x_ = key_ + room_;
        y_ = x_ + room_;
    }

    // Whether only peaks above least() matter from now on that did not before.
    bool add(unsigned key, Kpr64s x, Kpr64s y) {
        key_[count_] = key;
        x_[count_] = static_cast<unsigned>(x);
        y_[count_] = static_cast<unsigned>(y);
        if (++count_ < room_) return false;
        reduce();
        return true;
    }
    [[nodiscard]] unsigned least() const { return least_; }

    KprStatus finish(KprPoint* peaks, int* peakCount) {
        if (count_ > wanted_) reduce();
        sort(peaks);
        *peakCount = static_cast<int>(count_);
        return dropped_ ? kprStatusListFull : kprStatusOk;
    }

  private:
    static constexpr int kLanes = n0::kLanes<unsigned>;

    [[nodiscard]] Kpr64s countFrom(unsigned key) const {
        Kpr64s count = 0;
        const Vec<unsigned> least = broadcast(key);
        walkRow<kLanes>(
            count_,
            [&](auto part, const unsigned* k) {
                const Mask<unsigned> lanes = atMost(least, load(k, part));
                count += std::popcount(static_cast<unsigned>((part & Lanes{lanes}).bits));
            },
            key_);
        return count;
    }

    // Leaves the largest, in the order in which they came.
    [[gnu::noinline]] void reduce() {
        unsigned key = 0;  // the wanted-th largest, bit by bit
        for (unsigned bit = 0x80000000; bit != 0; bit /= 2) {
            if (countFrom(key | bit) >= wanted_) key |= bit;
        }
        Kpr64s equals = wanted_ - (key == 0xffffffff ? 0 : countFrom(key + 1));  // so many of those with this key stay
        const Vec<unsigned> bound = broadcast(key);
        Kpr64s kept = 0;
        walkColumns<kLanes>(count_, [&](auto part, Kpr64s i) {
            const Vec<unsigned> k = load(key_ + i, part);
            Bits64 same = (part & Lanes{equal(k, bound)}).bits;
            const Bits64 larger = (part & Lanes{atMost(bound, k)}).bits & ~same;
            same = scatterBits(First{std::min<Kpr64s>(equals, kLanes)}.bits, same);
            equals -= std::popcount(same);
            const auto stay = static_cast<Mask<unsigned>>(larger | same);
            storePacked(x_ + kept, load(x_ + i, part), stay);
            storePacked(y_ + kept, load(y_ + i, part), stay);
            kept += storePacked(key_ + kept, k, stay);
        });
        count_ = kept;
        least_ = key;
        dropped_ = true;
    }

    // Writes the peaks from the largest key down. Pairs of key and number are sorted byte by byte, between the buffer
    // and the memory of the peaks.
    void sort(KprPoint* peaks) {
        unsigned* const x = key_ + wanted_;  // columns and rows move together to make room for the numbers
        unsigned* const y = x + wanted_;
        const auto bytes = static_cast<std::size_t>(count_) * sizeof(unsigned);
        __builtin_memmove(x, x_, bytes);
        __builtin_memmove(y, y_, bytes);
        unsigned* const number = y + wanted_;
        for (Kpr64s i = 0; i < count_; ++i) number[i] = static_cast<unsigned>(i);

        Kpr64s begin[4][256] = {};
        for (Kpr64s i = 0; i < count_; ++i) {
            for (int byte = 0; byte < 4; ++byte) ++begin[byte][~key_[i] >> (8 * byte) & 255];
        }
        for (auto& of : begin) {
            Kpr64s sum = 0;
            for (Kpr64s& count : of) {
                const Kpr64s here = count;
                count = sum;
                sum += here;
            }
        }
        for (int byte = 0; byte < 4; byte += 2) {
            for (Kpr64s i = 0; i < count_; ++i)
                peaks[begin[byte][~key_[i] >> (8 * byte) & 255]++] = {static_cast<Kpr32s>(key_[i]),
                                                                      static_cast<Kpr32s>(number[i])};
            for (Kpr64s i = 0; i < count_; ++i) {
                const auto key = static_cast<unsigned>(peaks[i].x);
                const Kpr64s to = begin[byte + 1][~key >> (8 * byte + 8) & 255]++;
                key_[to] = key;
                number[to] = static_cast<unsigned>(peaks[i].y);
            }
        }
        for (Kpr64s i = 0; i < count_; ++i)
            peaks[i] = {static_cast<Kpr32s>(x[number[i]]), static_cast<Kpr32s>(y[number[i]])};
    }

    Kpr64s wanted_, room_, count_ = 0;
    unsigned *key_, *x_, *y_;
    unsigned least_ = 0;
    bool dropped_ = false;
};

template <typename T>
class PeakSearch {
  public:
    PeakSearch(Rows<const T> src, KprSize roi, T threshold, bool corners, PeakList* list)
        : src_(src), roi_(roi), limit_(broadcast(threshold)), corners_(corners), list_(list) {}

    void run(int border) {
        const Kpr64s end = Kpr64s{roi_.width} - border, bottom = Kpr64s{roi_.height} - border;
        for (Kpr64s y = border; y < bottom; ++y) {
            const T* const row = src_[y];
            Kpr64s x = border;
            if (x == 0) {
                step(First{std::min<Kpr64s>(end, kStep)}, Edge{x, roi_.width}, row, x, y);
                x += kStep;
            }
            const Kpr64s inside = std::min<Kpr64s>(end, roi_.width - 1);  // columns with a neighbour on the right
            for (; x + kStretch <= inside; x += kStretch) {
                if (!holdsMore(row + x, limit_)) continue;
                for (int i = 0; i < kStretch; i += kStep) step(All{}, Inside{}, row, x + i, y);
            }
            for (; x + kStep <= inside; x += kStep) step(All{}, Inside{}, row, x, y);
            if (x < end) step(First{end - x}, Edge{x, roi_.width}, row, x, y);
        }
    }

  private:
    static constexpr int kStep = kLanes<T>;
    // Below every peak: a peak is above a threshold.
    static constexpr T kNoNeighbour =
        std::is_floating_point_v<T> ? -std::numeric_limits<T>::infinity() : std::numeric_limits<T>::lowest();

    // Whether a stretch of pixels has one above the limit: most have none, and are left at the speed of reading.
    static constexpr int kStretch = 8 * kStep;
    KPR_INLINE static bool holdsMore(const T* row, Vec<T> limit) {
        unsigned more = 0;
        takeTurns<8>([&](auto i) __attribute__((always_inline)) { more |= less(limit, load(row + i * kStep, All{})); });
        return more != 0;
    }

    // Which lanes of a step have a neighbour d columns on.
    struct Inside {
        KPR_INLINE All beside(All part, int) const { return part; }
    };
    struct Edge {
        Kpr64s x, width;
        KPR_INLINE Lanes beside(Lanes part, int d) const {
            if (d < 0) return x == 0 ? Lanes{part.bits & ~Bits64{1}} : part;
            if (d > 0) return part & First{std::min<Kpr64s>(width - 1 - x, kStep)};
            return part;
        }
    };

    template <typename Part, typename Where>
    KPR_INLINE void step(Part part, Where where, const T* row, Kpr64s x, Kpr64s y) {
        const Vec<T> c = load(row + x, part);
        auto peaks = static_cast<Mask<T>>((part & Lanes{less(limit_, c)}).bits);
        if (peaks == 0) return;
        const Vec<T> none = broadcast(kNoNeighbour);
        const auto before = [&](const T* from, int d) __attribute__((always_inline)) {
            peaks = static_cast<Mask<T>>(peaks & ~atMost(c, load(from + x + d, where.beside(part, d), none)));
        };
        const auto after = [&](const T* from, int d) __attribute__((always_inline)) {
            peaks = static_cast<Mask<T>>(peaks & ~less(c, load(from + x + d, where.beside(part, d), none)));
        };
        after(row, 1);
        if (peaks == 0) return;
        before(row, -1);
        if (peaks == 0) return;
        if (y > 0) before(src_[y - 1], 0);
        if (y + 1 < roi_.height) after(src_[y + 1], 0);
        if (peaks == 0) return;
        if (corners_) {
            for (int d = -1; d <= 1; d += 2) {
                if (y > 0) before(src_[y - 1], d);
                if (y + 1 < roi_.height) after(src_[y + 1], d);
            }
        }
        for (Bits64 left = peaks; left != 0; left &= left - 1) {
            const Kpr64s at = x + std::countr_zero(left);
            if (list_->add(keyOf(row[at]), at, y)) limit_ = broadcast(valueOf<T>(list_->least()));
        }
    }

    Rows<const T> src_;
    KprSize roi_;
    Vec<T> limit_;
    bool corners_;
    PeakList* list_;
};

template <typename T>
KprStatus findPeaks(const T* src, int srcStep, KprSize roi, T threshold, KprPoint* peaks, int maxPeakCount,
                    int* peakCount, int norm, int border, Kpr8u* buffer) {
    PeakList list(maxPeakCount, buffer);
    PeakSearch<T>({src, srcStep}, roi, threshold, norm == kprNormInf, &list).run(border);
    return list.finish(peaks, peakCount);
}

KprStatus peakBufferSize(int maxPeakCount, int* bufferSize) {
    return firstFailure(notNull(bufferSize), failIf(maxPeakCount < 1, kprStatusBadArg))
               ?: putSize(bufferBytes(maxPeakCount), bufferSize);
}

KprStatus searchHolds(int maxPeakCount, int border, int norm) {
    return firstFailure(failIf(maxPeakCount < 1 || border < 0, kprStatusBadArg),
                        failIf(norm != kprNormInf && norm != kprNormL1, kprStatusBadNorm));
}

}  // namespace
}  // namespace n0::feature

using namespace n0;
using namespace n0::feature;

KprStatus kpriFindPeaks3x3GetBufferSize_32s_C1R(int maxPeakCount, int* bufferSize) {
    return peakBufferSize(maxPeakCount, bufferSize);
}

KprStatus kpriFindPeaks3x3GetBufferSize_32f_C1R(int maxPeakCount, int* bufferSize) {
    return peakBufferSize(maxPeakCount, bufferSize);
}

KprStatus kpriFindPeaks3x3_32s_C1R(const Kpr32s* src, int srcStep, KprSize roiSize, Kpr32s threshold, KprPoint* peaks,
                                   int maxPeakCount, int* peakCount, int norm, int border, Kpr8u* buffer) {
    return firstFailure(notNull(src, peaks, peakCount, buffer), roiHolds(roiSize),
                        rowsFit<Kpr32s>(roiSize.width, srcStep), stepsAlign<Kpr32s>(srcStep),
                        searchHolds(maxPeakCount, border, norm))
               ?: findPeaks(src, srcStep, roiSize, threshold, peaks, maxPeakCount, peakCount, norm, border, buffer);
}

KprStatus kpriFindPeaks3x3_32f_C1R(const Kpr32f* src, int srcStep, KprSize roiSize, Kpr32f threshold, KprPoint* peaks,
                                   int maxPeakCount, int* peakCount, int norm, int border, Kpr8u* buffer) {
    return firstFailure(notNull(src, peaks, peakCount, buffer), roiHolds(roiSize),
                        rowsFit<Kpr32f>(roiSize.width, srcStep), stepsAlign<Kpr32f>(srcStep),
                        searchHolds(maxPeakCount, border, norm))
               ?: findPeaks(src, srcStep, roiSize, threshold, peaks, maxPeakCount, peakCount, norm, border, buffer);
}
