// Line segments, found by drawing edge points at random. Each point votes for the lines through it, and as soon as one
// of them has enough votes, the edge is followed from the point along that line.
//
// What is drawn and in which order decides the result: generator, replacement and the votes taken back are those of
// the header. The counters of sixteen angles are found at a time.
#include <algorithm>
#include <bit>

#include "feature/hough.h"

namespace n0::feature {
namespace {

constexpr int kGroup = kLanes<Kpr32s>;

// What a block begins with; pairs of cosine and sine follow, one more than there are angles.
struct BlockHead {
    KprRhoTheta delta;
    int maxLineCount;
    int angles;
};

constexpr Bytes blockBytes(const Lines& lines) { return Bytes{8} * lines.angles + 24; }

constexpr Bytes bitmapBytes(KprSize roi) { return Bytes{(roi.width >> 3) + 1} * roi.height; }
constexpr Bytes bufferBytes(KprSize roi, const Lines& lines) {
    return bitmapBytes(roi) + Bytes{4} * lines.distances * (lines.angles + 1) + Bytes{4} * roi.width * roi.height;
}

KprStatus putSizes(KprSize roi, const Lines& lines, int* specSize, int* bufferSize) {
    int spec = 0;
    const KprStatus status = putSize(blockBytes(lines), &spec) ?: putSize(bufferBytes(roi, lines), bufferSize);
    if (status == kprStatusOk) *specSize = spec;
    return status;
}

// Rows of bits, that of the first pixel lowest in the first byte.
class Bitmap {
  public:
    Bitmap(Kpr8u* bytes, KprSize roi) : bytes_(bytes), pitch_((Kpr64s{roi.width} >> 3) + 1), roi_(roi) {}

    void set(Kpr64s x, Kpr64s y, Bits64 points) {
        const Kpr64s bytes = std::min<Kpr64s>(8, pitch_ - (x >> 3));
        __builtin_memcpy(row(y) + (x >> 3), &points, static_cast<std::size_t>(bytes));
    }
    [[nodiscard]] bool holds(Kpr64s x, Kpr64s y) const { return x >= 0 && y >= 0 && x < roi_.width && y < roi_.height; }
    [[nodiscard]] bool at(Kpr64s x, Kpr64s y) const { return (row(y)[x >> 3] >> (x & 7) & 1) != 0; }
    void clear(Kpr64s x, Kpr64s y) { row(y)[x >> 3] = static_cast<Kpr8u>(row(y)[x >> 3] & ~(1 << (x & 7))); }

  private:
    [[nodiscard]] Kpr8u* row(Kpr64s y) const { return bytes_ + y * pitch_; }

    Kpr8u* bytes_;
    Kpr64s pitch_;
    KprSize roi_;
};

// How counters lie in memory. Points come from anywhere, so that nearly every vote reads and writes a line of the cache
// anew. With counters of 16 bits, blocks of sixteen distances of two neighbouring angles share one: such angles mostly
// vote for neighbouring distances.
template <typename Counter>
struct Layout;

template <>
struct Layout<Kpr16s> {
    static constexpr Kpr64s rowOf(Kpr64s distances) { return 2 * ((distances + 15) & -16); }  // of two angles
    static constexpr Kpr64s counters(const Lines& lines) { return (lines.angles + 1) / 2 * rowOf(lines.distances); }
    KPR_INLINE static Vec<Kpr32s> first(Kpr64s distances) {
        return laneConstant<Kpr32s>([](int i) { return i / 2; }) * broadcast(static_cast<Kpr32s>(rowOf(distances))) +
               laneConstant<Kpr32s>([](int i) { return i % 2 * 16; });
    }
    static constexpr Kpr64s groupOf(Kpr64s distances) { return kGroup / 2 * rowOf(distances); }
    KPR_INLINE static Vec<Kpr32s> place(Vec<Kpr32s> distance) { return distance + (distance & broadcast(-16)); }
};

template <>
struct Layout<Kpr32s> {
    static constexpr Kpr64s counters(const Lines& lines) { return lines.angles * lines.distances; }
    KPR_INLINE static Vec<Kpr32s> first(Kpr64s distances) {
        return laneConstant<Kpr32s>([](int i) { return i; }) * broadcast(static_cast<Kpr32s>(distances));
    }
    static constexpr Kpr64s groupOf(Kpr64s distances) { return kGroup * distances; }
    KPR_INLINE static Vec<Kpr32s> place(Vec<Kpr32s> distance) { return distance; }
};

// The votes of all lines.
template <typename Counter>
class Votes {
  public:
    Votes(const KprHoughProbSpec* spec, const BlockHead& head, const Lines& lines, Kpr32s* memory)
        : pairs_(reinterpret_cast<const Kpr8u*>(spec) + sizeof(BlockHead)),
          angles_(head.angles),
          rho_(head.delta.rho),
          lines_(lines),
          counters_(reinterpret_cast<Counter*>(memory)) {
        __builtin_memset(memory, 0, static_cast<std::size_t>(Layout<Counter>::counters(lines)) * sizeof(Counter));
    }

    struct Winner {
        int votes, angle;
    };

    // The first angle with most votes, of those with at least `threshold`; fewer votes if there is none.
    Winner cast(Kpr64s x, Kpr64s y, int threshold) {
        Winner winner = {threshold - 1, 0};
        Counter* const counters = counters_;
        forAngles(
            x, y, [&](int angle, Kpr32s at) __attribute__((always_inline)) {
                const auto votes = static_cast<Counter>(counters[at] + 1);
                counters[at] = votes;
                if (votes > winner.votes) [[unlikely]]
                    winner = {votes, angle};
            });
        return winner;
    }

    void takeBack(Kpr64s x, Kpr64s y) {
        Counter* const counters = counters_;
        forAngles(
            x, y, [&](int, Kpr32s at) __attribute__((always_inline)) { --counters[at]; });
    }

    [[nodiscard]] KprRhoTheta direction(int angle) const {
        Kpr32f pair[2];
        __builtin_memcpy(pair, pairs_ + Kpr64s{angle} * 8, sizeof pair);
        return {-pair[1], pair[0]};
    }

  private:
    // visit(angle, at) for the counter of each angle at which the point has a line. Where counters are is found for
    // many angles before the first is visited: what was just stored as a vector is slow to be read by the lane.
    template <typename Visit>
    KPR_INLINE void forAngles(Kpr64s x, Kpr64s y, Visit visit) const {
        alignas(64) Kpr32s at[kMostAngles];
        Vec<Kpr32s> first = Layout<Counter>::first(lines_.distances);
        for (Kpr64s begin = 0; begin < angles_; begin += kMostAngles) {
            const Kpr64s count = std::min<Kpr64s>(angles_ - begin, kMostAngles);
            const bool all = place(x, y, begin, count, &first, at);
            if (all) [[likely]] {
#pragma GCC unroll 8
                for (Kpr64s i = 0; i < count; ++i) visit(static_cast<int>(begin + i), at[i]);
            } else {
                for (Kpr64s i = 0; i < count; ++i) {
                    if (at[i] >= 0) visit(static_cast<int>(begin + i), at[i]);
                }
            }
        }
    }

    // Where the counters of `count` angles from `begin` on are, -1 where there is none; whether there is one for all.
    KPR_INLINE bool place(Kpr64s x, Kpr64s y, Kpr64s begin, Kpr64s count, Vec<Kpr32s>* first, Kpr32s* at) const {
        const Vec<Kpr32f> across = broadcast(static_cast<Kpr32f>(x)), down = broadcast(static_cast<Kpr32f>(y));
        const Vec<Kpr32f> rho = broadcast(rho_);
        const Vec<Kpr32s> even = laneConstant<Kpr32s>([](int i) { return 2 * i; });
        const Vec<Kpr32s> group = broadcast(static_cast<Kpr32s>(Layout<Counter>::groupOf(lines_.distances)));
        const auto range = broadcast(static_cast<unsigned>(lines_.distances - 1));
        const auto* const pairs = reinterpret_cast<const Kpr32s*>(pairs_) + 2 * begin;
        Bits64 missing = 0;
        walkColumns<kGroup>(
            count, [&](auto part, Kpr64s k) __attribute__((always_inline)) {
                const auto [lower, upper] = halves(part);
                const Vec<Kpr32s> a = load(pairs + 2 * k, lower), b = load(pairs + 2 * k + kGroup, upper);
                const auto cosine = as<Kpr32f>(permute(a, b, even)),
                           sine = as<Kpr32f>(permute(a, b, even + broadcast(1)));
                Vec<Kpr32f> distance = across * cosine + down * sine;
                if (rho_ != 1) distance = distance / rho;
                const Vec<Kpr32s> index = toInteger(distance) + broadcast(static_cast<Kpr32s>(lines_.offset));
                const auto counts = atMost(as<unsigned>(index), range);
                missing |= (part & Lanes{static_cast<Mask<Kpr32s>>(~counts)}).bits;
                store(at + k, select(counts, *first + Layout<Counter>::place(index), broadcast(-1)), part);
                *first = *first + group;
            });
        return missing == 0;
    }
    struct AllHalves {
        All lower, upper;
    };
    struct FirstHalves {
        First lower, upper;
    };
    KPR_INLINE static AllHalves halves(All) { return {}; }
    KPR_INLINE static FirstHalves halves(First part) {
        const int elements = 2 * std::popcount(part.bits);
        return {First{std::min(elements, kGroup)}, First{std::max(elements - kGroup, 0)}};
    }

    static constexpr Kpr64s kMostAngles = 256;

    const Kpr8u* pairs_;
    int angles_;
    Kpr32f rho_;
    Lines lines_;
    Counter* counters_;
};

// A walk from a point along a line: whole pixels along the axis that it is nearer to, 1/65536 along the other.
class Walk {
  public:
    Walk(Kpr64s x, Kpr64s y, KprRhoTheta direction) {
        const Kpr32f a = direction.rho, b = direction.theta;
        const Kpr32f up = a < 0 ? -a : a, across = b < 0 ? -b : b;
        alongX_ = up > across;
        const auto ratio = [](Kpr32f part, Kpr32f whole) {
            return static_cast<Kpr64s>(__builtin_rintf(part / whole * 65536.0F));
        };
        constexpr Kpr64s half = 32768;
        if (alongX_) {
            major_ = x, minor_ = (y << 16) + half;
            step_ = a > 0 ? 1 : -1, slope_ = ratio(b, up);
        } else {
            major_ = y, minor_ = (x << 16) + half;
            step_ = b > 0 ? 1 : -1, slope_ = ratio(a, across);
        }
    }

    [[nodiscard]] Walk reversed() const {
        Walk other = *this;
        other.step_ = -step_;
        other.slope_ = -slope_;
        return other;
    }

    void advance() {
        major_ += step_;
        minor_ += slope_;
    }
    [[nodiscard]] KprPoint at() const {
        const auto minor = static_cast<int>(minor_ >> 16), major = static_cast<int>(major_);
        return alongX_ ? KprPoint{major, minor} : KprPoint{minor, major};
    }

  private:
    bool alongX_;
    Kpr64s major_, minor_, step_, slope_;
};

// The last edge point before more than `gap` pixels without one.
KprPoint endOf(Walk walk, const Bitmap& bitmap, int gap) {
    KprPoint last = walk.at();
    for (int missing = 0;; walk.advance()) {
        const KprPoint p = walk.at();
        if (!bitmap.holds(p.x, p.y)) return last;
        if (bitmap.at(p.x, p.y)) {
            last = p;
            missing = 0;
        } else if (++missing > gap) {
            return last;
        }
    }
}

// Edge points, packed: two coordinates where 16 bits hold them, else the pixel's number.
class Draws {
  public:
    Draws(unsigned* points, KprSize roi)
        : points_(points), width_(roi.width), pairs_(roi.width <= 65536 && roi.height <= 65536) {}

    void add(Kpr64s x, Kpr64s y, Bits64 points) {
        count_ += storeColumns(points_ + count_, x, points, static_cast<unsigned>(pairs_ ? y << 16 : y * width_));
    }
    [[nodiscard]] Kpr64s count() const { return count_; }

    KprPoint draw() {
        state_ = (state_ >> 32) + (state_ & 0xffffffff) * 4164903690;
        const Kpr64s at = static_cast<unsigned>(state_) % static_cast<unsigned>(count_);
        const unsigned point = points_[at];
        points_[at] = points_[--count_];
        if (pairs_) return {static_cast<int>(point & 0xffff), static_cast<int>(point >> 16)};
        return {static_cast<int>(point % static_cast<unsigned>(width_)),
                static_cast<int>(point / static_cast<unsigned>(width_))};
    }

  private:
    unsigned* points_;
    Kpr64s count_ = 0;
    Kpr64s width_;
    bool pairs_;
    Bits64 state_ = ~Bits64{0};
};

// From so many points on, which counters of 16 bits may not hold, the list is one longer: it has always been.
constexpr Kpr64s kManyPoints = 32767;

struct Criteria {
    int threshold, length, gap;
};

template <typename Counter>
int findSegments(Bitmap& bitmap, Draws& draws, Votes<Counter> votes, const Criteria& wanted, KprLineSegment* lines,
                 int most) {
    if (most < 1) return 0;
    const Kpr64s room = draws.count() < kManyPoints ? most : Kpr64s{most} + 1;
    int count = 0;
    while (draws.count() > 0) {
        const KprPoint start = draws.draw();
        if (!bitmap.at(start.x, start.y)) continue;
        const auto winner = votes.cast(start.x, start.y, wanted.threshold);
        if (winner.votes < wanted.threshold) continue;
        const Walk forward(start.x, start.y, votes.direction(winner.angle));
        const Walk walks[] = {forward, forward.reversed()};
        const KprPoint ends[] = {endOf(walks[0], bitmap, wanted.gap), endOf(walks[1], bitmap, wanted.gap)};
        const auto extent = [](Kpr64s a, Kpr64s b) { return a < b ? b - a : a - b; };
        const bool counts = std::max(extent(ends[0].x, ends[1].x), extent(ends[0].y, ends[1].y)) >= wanted.length;
        for (int i = 0; i < 2; ++i) {
            for (Walk walk = walks[i];; walk.advance()) {
                const KprPoint p = walk.at();
                if (bitmap.at(p.x, p.y)) {
                    if (counts) votes.takeBack(p.x, p.y);
                    bitmap.clear(p.x, p.y);
                }
                if (p.x == ends[i].x && p.y == ends[i].y) break;
            }
        }
        if (!counts) continue;
        lines[count++] = {ends[0].x, ends[0].y, ends[1].x, ends[1].y};
        if (count == room) break;
    }
    return count;
}

KprStatus search(Rows<const Kpr8u> src, KprSize roi, const Criteria& wanted, KprLineSegment* lines, int maxLineCount,
                 int* lineCount, Kpr8u* buffer, const KprHoughProbSpec* spec) {
    BlockHead head;
    __builtin_memcpy(&head, spec, sizeof head);
    const Lines all(roi, head.delta);
    *lineCount = 0;
    if (all.distances < 1) return kprStatusOk;  // there is no line, nor room in the buffer to align anything
    // There is a counter to spare, which makes room for that.
    Workspace memory(buffer, static_cast<Kpr64s>(bufferBytes(roi, all)));
    auto* const counters = memory.take<Kpr32s>(all.distances * (head.angles + 1) - 1);
    Draws draws(memory.take<unsigned>(Kpr64s{roi.width} * roi.height), roi);
    auto* const bits = memory.take<Kpr8u>(static_cast<Kpr64s>(bitmapBytes(roi)));
    __builtin_memset(bits, 0, static_cast<std::size_t>(bitmapBytes(roi)));
    Bitmap bitmap(bits, roi);
    for (int y = 0; y < roi.height; ++y) {
        visitPoints(src[y], roi.width, [&](Kpr64s x, Bits64 found) {
            bitmap.set(x, y, found);
            draws.add(x, y, found);
        });
    }
    const int most = std::min(maxLineCount, head.maxLineCount);
    // The blocks of two angles need up to fifteen counters more than there are distances.
    if (draws.count() < kManyPoints && all.distances >= 15)
        *lineCount = findSegments(bitmap, draws, Votes<Kpr16s>(spec, head, all, counters), wanted, lines, most);
    else
        *lineCount = findSegments(bitmap, draws, Votes<Kpr32s>(spec, head, all, counters), wanted, lines, most);
    return kprStatusOk;
}

}  // namespace
}  // namespace n0::feature

using namespace n0;
using namespace n0::feature;

KprStatus kpriHoughProbLineGetSize_8u_C1R(KprSize roiSize, KprRhoTheta delta, int* specSize, int* bufferSize) {
    return firstFailure(notNull(specSize, bufferSize), roiHolds(roiSize), deltaHolds(delta))
               ?: putSizes(roiSize, Lines(roiSize, delta), specSize, bufferSize);
}

KprStatus kpriHoughProbLineInit_8u32f_C1R(KprSize roiSize, KprRhoTheta delta, int maxLineCount,
                                          KprHoughProbSpec* spec) {
    const KprStatus status = firstFailure(roiHolds(roiSize), deltaHolds(delta), notNull(spec));
    if (status != kprStatusOk) return status;
    const Lines lines(roiSize, delta);
    const BlockHead head = {delta, maxLineCount, static_cast<int>(lines.angles)};
    auto* const memory = reinterpret_cast<Kpr8u*>(spec);
    __builtin_memcpy(memory, &head, sizeof head);
    Kpr32f theta = 0;
    for (Kpr64s i = 0; i <= lines.angles; ++i, theta += delta.theta) {
        const Kpr32f pair[] = {static_cast<Kpr32f>(kprsCosOne(theta)), static_cast<Kpr32f>(kprsSinOne(theta))};
        __builtin_memcpy(memory + sizeof head + 8 * i, pair, sizeof pair);
    }
    return kprStatusOk;
}

KprStatus kpriHoughProbLine_8u32f_C1R(const Kpr8u* src, int srcStep, KprSize roiSize, int threshold, int lineLength,
                                      int lineGap, KprLineSegment* lines, int maxLineCount, int* lineCount,
                                      Kpr8u* buffer, const KprHoughProbSpec* spec) {
    return firstFailure(notNull(src, lines, lineCount, buffer, spec), roiHolds(roiSize),
                        rowsFit<Kpr8u>(roiSize.width, srcStep),
                        failIf(threshold < 1 || lineLength < 0 || lineGap < 0, kprStatusBadArg))
               ?: search({src, srcStep}, roiSize, {threshold, lineLength, lineGap}, lines, maxLineCount, lineCount,
                         buffer, spec);
}
