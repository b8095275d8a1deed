// Small regions take one value, in place. Two pixels beside or above each other belong to one region where neither
// equals that value and
//
//     |p - q| <= maxDifference
//
// so that a slow ramp is one region.
//
// A row is cut into runs of pixels that belong together, and runs of rows that touch are joined. Runs of pixels that
// equal the value are numbered among the others and never joined.
#include "frame/checks.h"
#include "primitives/simd_segment.h"
#include "segment/joined_runs.h"

namespace n0::segment {
namespace {

constexpr Kpr64s speckleBytes(KprSize roi) { return 13 * Kpr64s{roi.width} * roi.height + 64; }

template <typename T>
class Speckles {
    static constexpr Kpr64s kLength = kLanes<T>;

  public:
    Speckles(Rows<T> image, KprSize roi, T value, T maxDifference, Kpr8u* buffer)
        : image_(image),
          width_(roi.width),
          height_(roi.height),
          value_(broadcast(value)),
          difference_(broadcast(maxDifference)),
          nothingJoins_(maxDifference < 0) {
        Workspace space(buffer, speckleBytes(roi));
        const Kpr64s words = (width_ + kLength - 1) / kLength;
        for (auto& row : begins_) row = space.take<Bits64>(words);
        starts_ = space.take<Kpr32s>(width_ * height_ + 1);
        leaders_ = space.take<Kpr32s>(width_ * height_);
        sizes_ = space.take<Kpr32s>(width_ * height_);
    }

    void run(Kpr32s maxSize) {
        if (maxSize < 1) return;
        const JoinedRuns runs(leaders_);
        Kpr64s above = 0, count = 0;
        for (Kpr64s y = 0; y < height_; ++y) {
            const Kpr64s first = count;
            count += cut(y, first);
            runs.begin(first, count);
            if (y > 0) joinRows(runs, y, above, first);
            above = first;
        }
        starts_[count] = static_cast<Kpr32s>(width_ * height_);
        paint(runs, count, maxSize);
    }

  private:
    KPR_INLINE Bits64 others(Vec<T> v, Bits64 part) const { return ~Bits64{equal(v, value_)} & part; }

    KPR_INLINE Bits64 near(Vec<T> a, Vec<T> b) const {
        if constexpr (std::is_floating_point_v<T>) return atMost(abs(a - b), difference_);
        if constexpr (std::is_unsigned_v<T>) return atMost(absDiff(a, b), difference_);
        // A difference of 16-bit lanes is below 2^16.
        if constexpr (std::is_same_v<T, Kpr16s>)
            return nothingJoins_ ? 0 : atMost(as<Kpr16u>(absDiff(a, b)), as<Kpr16u>(difference_));
    }

    // Numbers the runs of a row, notes where each starts and gives how many there are.
    Kpr64s cut(Kpr64s y, Kpr64s first) const {
        const T* row = image_[y];
        Kpr64s count = 0;
        for (Kpr64s x = 0, word = 0; x < width_; x += kLength, ++word) {
            const First part{std::min(kLength, width_ - x)};
            const Lanes behindFirst{x == 0 ? part.bits & ~Bits64{1} : part.bits};
            const auto v = load(row + x, part), left = load(row + x - 1, behindFirst);
            const Bits64 here = others(v, part.bits), before = others(left, behindFirst.bits);
            const Bits64 same = ((here & before & near(v, left)) | (~here & ~before)) & behindFirst.bits;
            const Bits64 begins = part.bits & ~same;
            begins_[y & 1][word] = begins;
            count += storePlaces(starts_ + first + count, begins, y * width_ + x);
        }
        return count;
    }

    // Joins the runs of row y, from `first` on, with those above that they touch.
    void joinRows(const JoinedRuns& runs, Kpr64s y, Kpr64s above, Kpr64s first) const {
        const T* row = image_[y];
        const T* up = image_[y - 1];
        Bits64 touchedBefore = 0;
        for (Kpr64s x = 0, word = 0; x < width_; x += kLength, ++word) {
            const First part{std::min(kLength, width_ - x)};
            const auto v = load(row + x, part), u = load(up + x, part);
            const Bits64 touch = others(v, part.bits) & others(u, part.bits) & near(v, u);
            const Bits64 begins = begins_[y & 1][word], beginsAbove = begins_[(y - 1) & 1][word];
            // Each pair of runs once or a few times: where it begins to touch, or one of the two is a new one.
            Bits64 pairs = touch & (begins | beginsAbove | ~(touch << 1 | touchedBefore));
            for (; pairs != 0; pairs &= pairs - 1) {
                const Bits64 upTo = pairs ^ (pairs - 1);
                runs.join(static_cast<Kpr32s>(above + std::popcount(beginsAbove & upTo) - 1),
                          static_cast<Kpr32s>(first + std::popcount(begins & upTo) - 1));
            }
            touchedBefore = touch >> (kLength - 1);
            first += std::popcount(begins);
            above += std::popcount(beginsAbove);
        }
    }

    void paint(const JoinedRuns& runs, Kpr64s count, Kpr32s maxSize) const {
        for (Kpr64s i = 0; i < count; ++i) {
            const Kpr32s leader = runs.settle(i), length = starts_[i + 1] - starts_[i];
            sizes_[i] = 0;
            sizes_[leader] += length;
        }
        const T speckle = firstLane(value_);
        Kpr64s rowStart = 0, y = 0;
        for (Kpr64s i = 0; i < count; ++i) {
            for (; starts_[i] >= rowStart + width_; rowStart += width_) ++y;
            if (sizes_[leaders_[i]] > maxSize) continue;
            T* const at = image_[y] + (starts_[i] - rowStart);
            if (*at == speckle) continue;  // a -0 that equals 0 stays
            walkRow<kLength>(
                starts_[i + 1] - starts_[i], [&](auto part, T* d) { store(d, value_, part); }, at);
        }
    }

    Rows<T> image_;
    Kpr64s width_, height_;
    Vec<T> value_, difference_;
    bool nothingJoins_;
    Bits64* begins_[2];  // where runs begin, of the row and of the one above it
    Kpr32s* starts_;     // of each run, counted in pixels of the ROI; one more entry ends the last
    Kpr32s* leaders_;
    Kpr32s* sizes_;
};

template <typename T>
KprStatus markSpeckles(T* image, int step, KprSize roi, T value, int maxSize, T maxDifference, int norm,
                       Kpr8u* buffer) {
    const KprStatus status =
        firstFailure(notNull(image, buffer), roiHolds(roi), stepsAlign<T>(step), failIf(norm != 1, kprStatusBadNorm));
    if (status == kprStatusOk) Speckles<T>({image, step}, roi, value, maxDifference, buffer).run(maxSize);
    return status;
}

}  // namespace
}  // namespace n0::segment

using namespace n0;
using namespace n0::segment;

KprStatus kpriMarkSpecklesGetBufferSize(KprSize roiSize, KprDataType dataType, int numChannels, int* bufferSize) {
    const bool served = dataType == kpr8u || dataType == kpr16u || dataType == kpr16s || dataType == kpr32f;
    const KprStatus status = firstFailure(notNull(bufferSize), roiHolds(roiSize), failIf(!served, kprStatusBadDataType),
                                          failIf(numChannels != 1, kprStatusBadChannel));
    if (status == kprStatusOk) *bufferSize = static_cast<int>(speckleBytes(roiSize));
    return status;
}

KprStatus kpriMarkSpeckles_8u_C1IR(Kpr8u* image, int imageStep, KprSize roiSize, Kpr8u speckleValue, int maxSpeckleSize,
                                   Kpr8u maxDifference, int norm, Kpr8u* buffer) {
    return markSpeckles(image, imageStep, roiSize, speckleValue, maxSpeckleSize, maxDifference, norm, buffer);
}

KprStatus kpriMarkSpeckles_16u_C1IR(Kpr16u* image, int imageStep, KprSize roiSize, Kpr16u speckleValue,
                                    int maxSpeckleSize, Kpr16u maxDifference, int norm, Kpr8u* buffer) {
    return markSpeckles(image, imageStep, roiSize, speckleValue, maxSpeckleSize, maxDifference, norm, buffer);
}

KprStatus kpriMarkSpeckles_16s_C1IR(Kpr16s* image, int imageStep, KprSize roiSize, Kpr16s speckleValue,
                                    int maxSpeckleSize, Kpr16s maxDifference, int norm, Kpr8u* buffer) {
    return markSpeckles(image, imageStep, roiSize, speckleValue, maxSpeckleSize, maxDifference, norm, buffer);
}

KprStatus kpriMarkSpeckles_32f_C1IR(Kpr32f* image, int imageStep, KprSize roiSize, Kpr32f speckleValue,
                                    int maxSpeckleSize, Kpr32f maxDifference, int norm, Kpr8u* buffer) {
    return markSpeckles(image, imageStep, roiSize, speckleValue, maxSpeckleSize, maxDifference, norm, buffer);
}
