// Lines with many edge points. A point (x, y) votes at angle k for
//
//     ((x * cosine[k] + y * sine[k] + 512) >> 10) + offset        in 32 bits that wrap
//
// and with M the votes of a line, a line is listed where
//
//     M > threshold, M > lower, M >= higher    its neighbours at the same angle
//     M > before, M >= behind                  the same distance at the neighbouring angles
//     M >= the last line of a list that was full when the angle came
//
// Sixteen angles vote at a time: their indices are a vector, their counters sixteen rows. Where edge points leave less
// memory there are fewer rows, down to one angle at a time. Counters have 16 bits where there are too few points to
// overflow them: the first cache then holds what neighbouring points vote for. Votes come tile by tile (hough_tiles.h);
// one by one in tiny images, for windows, for resolutions below about 2/3 of a pixel and for more points than that.
#include <algorithm>
#include <bit>

#include "feature/hough_tiles.h"

namespace n0::feature {
namespace {

constexpr int kGroup = kLanes<Kpr32s>;

// A line in the list.
struct Listed {
    int distance, angle, votes, unused;
};

constexpr Bytes bufferBytes(KprSize roi, const Lines& lines, int maxLineCount) {
    return Bytes{roi.height} * (Bytes{4} * roi.width + 64) + Bytes{16} * maxLineCount + 32 + Bytes{8} * lines.angles +
           8 + Bytes{16} * lines.distances + 256;
}

// The lines that count, first and last included.
struct Window {
    Kpr64s low, high;
    Kpr64s first, last;  // angles
};

class LineList {
  public:
    LineList(Listed* lines, int room) : lines_(lines), room_(room) {}

    // The votes below which a line is not offered at an angle that begins.
    [[nodiscard]] Kpr64s least(int threshold) const {
        const Kpr64s last = count_ == room_ ? lines_[room_ - 1].votes : 0;
        return std::max<Kpr64s>(Kpr64s{threshold} + 1, last);
    }

    void offer(Listed line) {
        ++offered_;
        const Listed* const behind = std::upper_bound(
            lines_, lines_ + count_, line, [](const Listed& a, const Listed& b) { return a.votes > b.votes; });
        const auto at = static_cast<int>(behind - lines_);
        if (at == room_) return;
        for (int i = std::min(count_, room_ - 1); i > at; --i) lines_[i] = lines_[i - 1];
        lines_[at] = line;
        if (count_ < room_) ++count_;
    }

    KprStatus finish(KprRhoTheta delta, Kpr64s offset, KprRhoTheta* lines, int* lineCount) const {
        for (int i = 0; i < count_; ++i) {
            lines[i] = {static_cast<Kpr32f>(lines_[i].distance - offset) * delta.rho,
                        static_cast<Kpr32f>(lines_[i].angle) * delta.theta};
        }
        *lineCount = count_;
        return offered_ > room_ ? kprStatusListFull : kprStatusOk;
    }

  private:
    Listed* lines_;
    int room_, count_ = 0;
    Kpr64s offered_ = 0;
};

// Edge points, row after row: row y's end at end[y].
struct Points {
    const unsigned* column;
    const Kpr32s* end;
    int height;
};

// Votes one by one, for any resolution and window.
class PointVoters {
  public:
    PointVoters(const Points& points, const Angles& angles, const Lines& lines, const Window& window)
        : points_(points), angles_(angles), offset_(lines.offset), window_(window) {}

    // Votes of `count` angles from `first` on. The counters of an angle begin `stride` behind those of the one before,
    // and the last counter of all, which ends them, is for votes that do not count.
    template <typename Counter>
    [[gnu::noinline]] void vote(Kpr64s first, int count, Counter* counters, Kpr64s stride, Kpr64s nothing) const {
        const First part(count);
        const Vec<Kpr32s> sine = load(angles_.sine + first, part), cosine = load(angles_.cosine + first, part);
        const Vec<Kpr32s> low = broadcast(static_cast<Kpr32s>(window_.low - offset_));
        const auto range = broadcast(static_cast<unsigned>(window_.high - window_.low));
        // From distances after the first one to the counters of each angle.
        const Vec<Kpr32s> base = broadcast(static_cast<Kpr32s>(window_.low)) +
                                 laneConstant<Kpr32s>([](int i) { return i; }) * broadcast(static_cast<Kpr32s>(stride));
        const Vec<Kpr32s> nowhere = broadcast(static_cast<Kpr32s>(nothing));
        const unsigned* point = points_.column;
        for (int y = 0; y < points_.height; ++y) {
            const unsigned* const end = points_.column + points_.end[y];
            const Vec<Kpr32s> down = broadcast(y) * sine + broadcast(512);
            for (; point != end; ++point) {
                const Vec<Kpr32s> index = ((broadcast(static_cast<Kpr32s>(*point)) * cosine + down) >> 10) - low;
                const auto counts = atMost(as<unsigned>(index), range);
                const Spilled at(select(counts, index + base, nowhere));
                if (count == kGroup) {
                    takeTurns<kGroup>([&](auto i) __attribute__((always_inline)) { ++counters[at.lane[i]]; });
                } else {
                    for (int i = 0; i < count; ++i) ++counters[at.lane[i]];
                }
            }
        }
    }

  private:
    Points points_;
    Angles angles_;
    Kpr64s offset_;
    Window window_;
};

template <typename Counter>
struct CounterOf {};

// Counters: Kpr16u or Kpr32s. Rows have a zero on either side, and there is one counter more for votes for nothing.
template <typename Counter, typename Voters>
class Voting {
  public:
    Voting(CounterOf<Counter>, const Voters& voters, const Lines& lines, const Window& window, Workspace memory)
        : voters_(voters), window_(window), stride_(lines.distances + 2) {
        const Kpr64s room = memory.left<Counter>() - 1;
        group_ = static_cast<int>(std::min({Kpr64s{kGroup}, room / stride_ - 2, 0x7fffffff / stride_ - 2}));
        counters_ = memory.take<Counter>((group_ + 2) * stride_ + 1);
    }

    void run(int threshold, LineList* list) {
        clear(0, 2);
        for (Kpr64s first = window_.first; first <= window_.last; first += group_) {
            const auto count = static_cast<int>(std::min<Kpr64s>(group_, window_.last - first + 1));
            clear(2, count);
            voters_.vote(first, count, row(2) + 1, stride_, group_ * stride_ - 1);
            for (int i = 0; i < count; ++i) findPeaks(first - 1 + i, i + 1, threshold, list);
            __builtin_memmove(row(0), row(count), static_cast<std::size_t>(2 * stride_) * sizeof(Counter));
        }
        clear(2, 1);
        findPeaks(window_.last, 1, threshold, list);
    }

  private:
    // Row 0 and 1 are the last two angles of the group before.
    [[nodiscard]] Counter* row(int i) const { return counters_ + i * stride_; }

    void clear(int first, int rows) const {
        __builtin_memset(row(first), 0, static_cast<std::size_t>(rows * stride_) * sizeof(Counter));
    }

    // Of one angle, in row i.
    [[gnu::noinline]] void findPeaks(Kpr64s angle, int i, int threshold, LineList* list) const {
        constexpr Kpr64s most = sizeof(Counter) == 2 ? 0xffff : 0x7fffffff;
        const Kpr64s needed = list->least(threshold);
        if (needed > most) return;
        const Vec<Counter> below = broadcast(static_cast<Counter>(needed - 1));
        const Kpr64s first = 1 + window_.low;
        const Counter *votes = row(i) + first, *before = row(i - 1) + first, *behind = row(i + 1) + first;
        walkColumns<kLanes<Counter>>(window_.high - window_.low + 1, [&](auto part, Kpr64s x) {
            const Vec<Counter> m = load(votes + x, part);
            Bits64 peaks = less(below, m);
            if (peaks == 0) return;
            peaks &= less(load(votes + x - 1, part), m) & less(load(before + x, part), m);
            peaks &= ~(Bits64{less(m, load(votes + x + 1, part))} | less(m, load(behind + x, part)));
            for (; peaks != 0; peaks &= peaks - 1) {
                const Kpr64s at = x + std::countr_zero(peaks);
                list->offer(
                    {static_cast<int>(window_.low + at), static_cast<int>(angle), static_cast<int>(votes[at]), 0});
            }
        });
    }

    Voters voters_;
    Window window_;
    Kpr64s stride_;
    int group_;
    Counter* counters_;
};

KprStatus findLines(Rows<const Kpr8u> src, KprSize roi, KprRhoTheta delta, const Lines& all, const Window& window,
                    int threshold, KprRhoTheta* lines, int maxLineCount, int* lineCount, Kpr8u* buffer) {
    Workspace memory(buffer, static_cast<Kpr64s>(bufferBytes(roi, all, maxLineCount)));
    LineList list(memory.take<Listed>(maxLineCount), maxLineCount);
    auto* const sine = memory.take<Kpr32s>(all.angles);
    auto* const cosine = memory.take<Kpr32s>(all.angles);
    const Kpr64f scale = Kpr64f{1.0F / delta.rho} * 1024.0;
    Kpr32f theta = 0;
    for (Kpr64s i = 0; i < all.angles; ++i, theta += delta.theta) {
        sine[i] = static_cast<Kpr32s>(kprsSinOne(theta) * scale);
        cosine[i] = static_cast<Kpr32s>(kprsCosOne(theta) * scale);
    }
    const Angles angles = {sine, cosine};
    const bool whole = window.low == 0 && window.high == all.distances - 1;
    if (whole && tilesServe(roi, all, angles)) {
        Workspace behind = memory;
        const Tiles tiles(src, roi, behind.take<Tile>(0));
        if (tiles.points <= 0xffff) {
            static_cast<void>(memory.take<Tile>(tiles.end - tiles.begin));
            Voting(CounterOf<Kpr16u>{}, TileVoters(tiles, angles, all), all, window, memory).run(threshold, &list);
            return list.finish(delta, all.offset, lines, lineCount);
        }
    }
    auto* const end = memory.take<Kpr32s>(roi.height);
    Workspace behind = memory;
    auto* const column = behind.take<unsigned>(0);
    Kpr64s count = 0;
    for (int y = 0; y < roi.height; ++y) {
        visitPoints(src[y], roi.width,
                    [&](Kpr64s x, Bits64 points) { count += storeColumns(column + count, x, points, 0); });
        end[y] = static_cast<Kpr32s>(count);
    }
    static_cast<void>(memory.take<unsigned>(count));
    const PointVoters voters({column, end, roi.height}, angles, all, window);
    if (count <= 0xffff)
        Voting(CounterOf<Kpr16u>{}, voters, all, window, memory).run(threshold, &list);
    else
        Voting(CounterOf<Kpr32s>{}, voters, all, window, memory).run(threshold, &list);
    return list.finish(delta, all.offset, lines, lineCount);
}

// The first and last index whose value, a multiple of `delta` from `start` on, lies between the bounds, which are
// brought into the range of all values.
struct Indices {
    Kpr64s first, last;
};
Indices clip(Kpr32f* low, Kpr32f* high, Kpr64s start, Kpr64s count, Kpr32f delta) {
    const auto value = [&](Kpr64s i) { return static_cast<Kpr32f>(i + start) * delta; };
    const auto partition = [&](auto isBefore) {
        Kpr64s begin = 0, end = count;
        while (begin < end) {
            const Kpr64s middle = begin + (end - begin) / 2;
            if (isBefore(value(middle)))
                begin = middle + 1;
            else
                end = middle;
        }
        return begin;
    };
    const Indices found = {partition([&](Kpr32f v) { return v < *low; }),
                           partition([&](Kpr32f v) { return v <= *high; }) - 1};
    *low = std::clamp(*low, value(0), value(count - 1));
    *high = std::clamp(*high, value(0), value(count - 1));
    return found;
}

KprStatus findLinesIn(KprRhoTheta* bounds, Rows<const Kpr8u> src, KprSize roi, KprRhoTheta delta, int threshold,
                      KprRhoTheta* lines, int maxLineCount, int* lineCount, Kpr8u* buffer) {
    KprRhoTheta &low = bounds[0], &high = bounds[1];
    *lineCount = 0;
    if (!(low.rho <= high.rho && low.theta <= high.theta)) return kprStatusBadRange;
    const Lines all(roi, delta);
    const Indices distance = clip(&low.rho, &high.rho, -all.offset, all.distances, delta.rho);
    const Indices angle = clip(&low.theta, &high.theta, 0, all.angles, delta.theta);
    if (distance.first > distance.last || angle.first > angle.last) return kprStatusOk;
    return findLines(src, roi, delta, all, {distance.first, distance.last, angle.first, angle.last}, threshold, lines,
                     maxLineCount, lineCount, buffer);
}

KprStatus findAllLines(Rows<const Kpr8u> src, KprSize roi, KprRhoTheta delta, int threshold, KprRhoTheta* lines,
                       int maxLineCount, int* lineCount, Kpr8u* buffer) {
    const Lines all(roi, delta);
    return findLines(src, roi, delta, all, {0, all.distances - 1, 0, all.angles - 1}, threshold, lines, maxLineCount,
                     lineCount, buffer);
}

// A resolution is workable if there are lines at all, and no more than the 32 bits of a sizing call can say.
KprStatus searchHolds(int srcStep, KprSize roi, KprRhoTheta delta, int threshold, int maxLineCount) {
    const KprStatus status =
        firstFailure(failIf(srcStep < 1, kprStatusBadStep), roiHolds(roi), failIf(maxLineCount < 1, kprStatusBadSize),
                     deltaHolds(delta), failIf(threshold < 1, kprStatusBadArg));
    if (status != kprStatusOk) return status;
    const Lines lines(roi, delta);
    return failIf(lines.distances < 1 || lines.angles < 1 || lines.distances == Lines::kTooMany ||
                      lines.angles == Lines::kTooMany || !(1.0F / delta.rho < 0x1p21F),
                  kprStatusBadArg);
}

}  // namespace
}  // namespace n0::feature

using namespace n0;
using namespace n0::feature;

KprStatus kpriHoughLineGetSize_8u_C1R(KprSize roiSize, KprRhoTheta delta, int maxLineCount, int* result) {
    const KprStatus status = firstFailure(notNull(result), roiHolds(roiSize), deltaHolds(delta));
    if (status != kprStatusOk) return status;
    const Bytes bytes = bufferBytes(roiSize, Lines(roiSize, delta), maxLineCount);
    *result = static_cast<int>(static_cast<unsigned>(bytes));
    return bytes > 0x7fffffff ? kprStatusSizeBeyond32Bit : kprStatusOk;
}

KprStatus kpriHoughLine_8u32f_C1R(const Kpr8u* src, int srcStep, KprSize roiSize, KprRhoTheta delta, int threshold,
                                  KprRhoTheta* lines, int maxLineCount, int* lineCount, Kpr8u* buffer) {
    return notNull(src, lines, lineCount, buffer) ?: searchHolds(srcStep, roiSize, delta, threshold, maxLineCount)
               ?: findAllLines({src, srcStep}, roiSize, delta, threshold, lines, maxLineCount, lineCount, buffer);
}

KprStatus kpriHoughLine_Region_8u32f_C1R(const Kpr8u* src, int srcStep, KprSize roiSize, KprRhoTheta* lines,
                                         KprRhoTheta dstRoi[2], int maxLineCount, int* lineCount, KprRhoTheta delta,
                                         int threshold, Kpr8u* buffer) {
    return notNull(src, lines, dstRoi, lineCount, buffer)
               ?: searchHolds(srcStep, roiSize, delta, threshold, maxLineCount)
               ?: findLinesIn(dstRoi, {src, srcStep}, roiSize, delta, threshold, lines, maxLineCount, lineCount,
                              buffer);
}
