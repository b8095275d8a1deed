// The fill whose test is the same for every pixel of the region: with the seed's value, or a range around it. A filled
// pixel no longer passes, so that the image itself tells where the fill has been.
#pragma once

#include "segment/pixels.h"
#include "segment/spans.h"

namespace n0::segment {

// Passes what equals the seed.
template <typename T>
struct Equals {
    Vec<T> value;
    KPR_INLINE Mask<T> operator()(Vec<T> v) const { return equal(v, value); }
};

// Passes what lies between two bounds, both included.
template <typename T>
struct Within {
    Vec<T> low, high;
    KPR_INLINE Mask<T> operator()(Vec<T> v) const { return static_cast<Mask<T>>(atMost(low, v) & atMost(v, high)); }
};

// `reach` is how far beside a span's ends the rows above and below it continue the region: 0 for 4 neighbours, 1 for 8.
template <typename T, int channels, int reach, typename Test>
class FloodFill {
    using P = Pixels<T, channels>;

  public:
    FloodFill(Rows<T> image, KprSize roi, Test test, const T* newValue)
        : image_(image), width_(roi.width), height_(roi.height), test_(test), paint_(P::repeated(newValue)) {}

    // The seed pixel is filled whether it passes or not.
    template <typename Spans>
    void run(KprPoint seed, Spans spans, bool seedSpanOnly = false) {
        T* row = image_[seed.y];
        store(row + seed.x * Kpr64s{channels}, paint_, P::first(1));
        const Kpr64s left = fillLeft(row, seed.x), right = fillRight(row, seed.x + 1) - 1;
        area_ = right - left + 1;
        const Kpr32s direction = seed.y == height_ - 1 ? -1 : 1;
        const FloodSpan first = {seed.y, narrow(left), narrow(right), narrow(right + 1), narrow(right), direction};
        if (height_ == 1 || seedSpanOnly) return extent_.add(first);
        spans.push(first);
        while (!spans.empty()) {
            const FloodSpan span = spans.pop();
            extent_.add(span);
            const Kpr64s from = std::max<Kpr64s>(span.left - reach, 0),
                         to = std::min<Kpr64s>(span.right + reach + 1, width_);
            const Kpr64s back = span.row - span.direction, forward = span.row + span.direction;
            if (back >= 0 && back < height_) look(spans, back, from, to, span, span.direction);
            if (forward >= 0 && forward < height_) {
                look(spans, forward, from, span.parentLeft, span, -span.direction);
                look(spans, forward, std::max<Kpr64s>(span.parentRight + 1, from), to, span, -span.direction);
            }
        }
    }

    [[nodiscard]] Kpr64s area() const { return area_; }
    [[nodiscard]] const Extent& extent() const { return extent_; }

  private:
    KPR_INLINE static Kpr32s narrow(Kpr64s x) { return static_cast<Kpr32s>(x); }

    // Fills whatever passes in the columns from `from` to before `to` of a row beside the span, with all that is joined
    // to it along that row.
    template <typename Spans>
    KPR_INLINE void look(Spans& spans, Kpr64s y, Kpr64s from, Kpr64s to, const FloodSpan& parent, Kpr32s direction) {
        T* row = image_[y];
        for (Kpr64s x = from; x < to;) {
            const Kpr64s found = find(row, x, to);
            if (found >= to) return;
            // Left of a later one has been looked at.
            const Kpr64s left = found == from ? fillLeft(row, found) : found, end = fillRight(row, found);
            area_ += end - left;
            spans.push({narrow(y), narrow(left), narrow(end - 1), parent.left, parent.right, direction});
            x = end + 1;
        }
    }

    KPR_INLINE Bits64 passing(const T* first, Kpr64s count) const {
        if (count >= P::kCount) return P::joined(test_(load(first, P::whole())));
        return P::joined(test_(load(first, P::first(count)))) & lowBits(count);
    }

    // The first column that passes, from x on; `end` or more where there is none before it.
    KPR_INLINE Kpr64s find(const T* row, Kpr64s x, Kpr64s end) const {
        for (; x < end; x += P::kCount) {
            if (const Bits64 hits = passing(row + x * channels, end - x)) return x + std::countr_zero(hits);
        }
        return end;
    }

    // The column behind the run that starts at x.
    KPR_INLINE Kpr64s fillRight(T* row, Kpr64s x) const {
        // Whole vectors go by a branch: counted, each would wait for the one before.
        for (; x + P::kCount <= width_ && passing(row + x * channels, P::kCount) == P::kAll; x += P::kCount)
            store(row + x * channels, paint_, P::whole());
        if (x >= width_) return width_;
        const Kpr64s run = std::countr_one(passing(row + x * channels, width_ - x));
        store(row + x * channels, paint_, P::first(run));
        return x + run;
    }

    // The first column of the run that ends before x.
    KPR_INLINE Kpr64s fillLeft(T* row, Kpr64s x) const {
        for (; x >= P::kCount && passing(row + (x - P::kCount) * channels, P::kCount) == P::kAll; x -= P::kCount)
            store(row + (x - P::kCount) * channels, paint_, P::whole());
        if (x == 0) return 0;
        const Kpr64s count = std::min(P::kCount, x);
        const Kpr64s run = std::countl_one(passing(row + (x - count) * channels, count) << (64 - count));
        store(row + (x - run) * channels, paint_, P::first(run));
        return x - run;
    }

    Rows<T> image_;
    Kpr64s width_, height_;
    Test test_;
    Vec<T> paint_;
    Kpr64s area_ = 0;
    Extent extent_;
};

// Bytes of working memory: a quarter of the pixels may be spans with what they came from.
constexpr Kpr64s floodBytes(KprSize roi) { return 24 * Kpr64s{roi.height} * roi.width / 4 + 32; }

}  // namespace n0::segment
