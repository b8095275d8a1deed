// Filling from a seed along small steps, in place: a pixel p is joined when a neighbour r of the region has
//
//     r - lower <= p <= r + upper
//
// in every channel, all values being those before the fill. So the region creeps along slopes.
//
// What has been reached stands in a map of one byte a pixel. A span is painted when the rows above and below it have
// been looked at: until then its own values are needed.
#include "frame/checks.h"
#include "primitives/kit.h"
#include "segment/pixels.h"
#include "segment/spans.h"

namespace n0::segment {
namespace {

template <typename T, int channels, int reach>
class GradientFill {
    using P = Pixels<T, channels>;

  public:
    GradientFill(Rows<T> image, KprSize roi, const T* newValue, const T* lower, const T* upper, Kpr8u* reached)
        : image_(image),
          reached_{reached, roi.width},
          width_(roi.width),
          height_(roi.height),
          paint_(P::repeated(newValue)),
          lower_(P::repeated(lower)),
          upper_(P::repeated(upper)) {}

    void run(KprPoint seed, LoneSpans spans) {
        reached_[seed.y][seed.x] = 1;
        const Kpr64s left = growLeft(seed.y, seed.x), right = growRight(seed.y, seed.x + 1, {nullptr, 0, 0}) - 1;
        push(spans, seed.y, left, right);
        while (!spans.empty()) {
            const FloodSpan span = spans.pop();
            extent_.add(span);
            T* const row = image_[span.row];
            const Source source = {row, span.left, span.right + Kpr64s{1}};
            if (span.row > 0) look(spans, span.row - Kpr64s{1}, source);
            if (span.row + 1 < height_) look(spans, span.row + Kpr64s{1}, source);
            const Kpr64s length = source.end - source.begin;
            P::paint(row + source.begin * channels, paint_, length);
            area_ += length;
        }
    }

    [[nodiscard]] Kpr64s area() const { return area_; }
    [[nodiscard]] const Extent& extent() const { return extent_; }

  private:
    // The span that the fill comes from: columns `begin` to before `end` of the row beside.
    struct Source {
        const T* row;
        Kpr64s begin, end;
    };

    static void push(LoneSpans& spans, Kpr64s y, Kpr64s left, Kpr64s right) {
        const auto narrow = [](Kpr64s x) { return static_cast<Kpr32s>(x); };
        spans.push({narrow(y), narrow(left), narrow(right), 0, 0, 0});
    }

    void look(LoneSpans& spans, Kpr64s y, const Source& source) {
        const Kpr64s to = std::min(source.end + reach, width_);
        for (Kpr64s x = std::max<Kpr64s>(source.begin - reach, 0); x < to;) {
            const Kpr64s found = find(y, x, to, source);
            if (found >= to) return;
            reached_[y][found] = 1;
            const Kpr64s left = growLeft(y, found), end = growRight(y, found + 1, source);
            push(spans, y, left, end - 1);
            x = end + 1;
        }
    }

    // Steps from r to p that are small enough.
    KPR_INLINE Bits64 small(Vec<T> p, Vec<T> r) const {
        if constexpr (std::is_integral_v<T>)
            return P::joined(atMost(subtractSaturated(p, r), upper_) & atMost(subtractSaturated(r, p), lower_));
        else
            return P::joined(atMost(r - lower_, p) & atMost(p, r + upper_));
    }

    // Pixels from column x of row y on that have not been reached, of `count`.
    KPR_INLINE Bits64 open(Kpr64s y, Kpr64s x, Kpr64s count) const {
        const First part{count};
        return ~loadMask<Kpr8u>(reached_[y] + x, part) & part.bits;
    }

    // Of the pixels p from column x on those to which the source leads, straight or, with 8 neighbours, aslant.
    KPR_INLINE Bits64 ledTo(Vec<T> p, Kpr64s x, Kpr64s count, const Source& source) const {
        Bits64 all = 0;
        for (Kpr64s from = x - reach; from <= x + reach; ++from) {
            const Kpr64s begin = std::clamp<Kpr64s>(source.begin - from, 0, count);
            const Kpr64s end = std::clamp<Kpr64s>(source.end - from, 0, count);
            if (begin >= end) continue;
            const Lanes elements{P::first(end).bits & ~P::first(begin).bits};
            all |= small(p, load(source.row + from * channels, elements)) & lowBits(end) & ~lowBits(begin);
        }
        return all;
    }

    // The first column from x on to which the source leads, `end` where there is none before it.
    KPR_INLINE Kpr64s find(Kpr64s y, Kpr64s x, Kpr64s end, const Source& source) const {
        for (; x < end; x += P::kCount) {
            const Kpr64s count = std::min(P::kCount, end - x);
            const Bits64 candidates = open(y, x, count);
            if (candidates == 0) continue;
            const auto p = load(image_[y] + x * channels, P::first(count));
            if (const Bits64 hits = ledTo(p, x, count, source) & candidates) return x + std::countr_zero(hits);
        }
        return end;
    }

    // Grows to the right from column x on, from the left neighbour or from the source, and gives the column behind.
    KPR_INLINE Kpr64s growRight(Kpr64s y, Kpr64s x, const Source& source) const {
        while (x < width_) {
            const Kpr64s count = std::min(P::kCount, width_ - x);
            const T* const at = image_[y] + x * channels;
            const auto p = load(at, P::first(count));
            const Bits64 unreached = open(y, x, count);
            Bits64 joins = small(p, load(at - channels, P::first(count))) & unreached;
            if (joins != P::kAll && x < source.end + reach) joins |= ledTo(p, x, count, source) & unreached;
            if (joins == P::kAll) {  // by a branch: counted, each vector would wait for the one before
                store(reached_[y] + x, broadcast(Kpr8u{1}), First{P::kCount});
                x += P::kCount;
                continue;
            }
            const Kpr64s run = std::countr_one(joins);
            store(reached_[y] + x, broadcast(Kpr8u{1}), First{run});
            return x + run;
        }
        return x;
    }

    // Grows to the left from before column x, each pixel from its right neighbour, and gives the first column.
    KPR_INLINE Kpr64s growLeft(Kpr64s y, Kpr64s x) const {
        while (x > 0) {
            const Kpr64s count = std::min(P::kCount, x);
            const T* const at = image_[y] + (x - count) * channels;
            const Bits64 steps = small(load(at, P::first(count)), load(at + channels, P::first(count)));
            const Bits64 joins = steps & open(y, x - count, count);
            if (joins == P::kAll) {
                x -= P::kCount;
                store(reached_[y] + x, broadcast(Kpr8u{1}), First{P::kCount});
                continue;
            }
            const Kpr64s run = std::countl_one(joins << (64 - count));
            store(reached_[y] + x - run, broadcast(Kpr8u{1}), First{run});
            return x - run;
        }
        return x;
    }

    Rows<T> image_;
    Rows<Kpr8u> reached_;
    Kpr64s width_, height_;
    Vec<T> paint_, lower_, upper_;
    Kpr64s area_ = 0;
    Extent extent_;
};

constexpr Kpr64s gradientBytes(KprSize roi) {
    const Kpr64s width = roi.width, height = roi.height;
    return (width + 2) * (height + 2) + 48 * height * width / 3 + 64;
}

template <int channels, int reach, typename T>
KprStatus fillAlong(Rows<T> image, KprSize roi, KprPoint seed, const T* newValue, const T* lower, const T* upper,
                    KprConnectedComp* region, Kpr8u* buffer) {
    const Kpr64s pixels = Kpr64s{roi.width} * roi.height;
    walkRow<64>(
        pixels, [](auto part, Kpr8u* d) { store(d, zero<Kpr8u>(), part); }, buffer);
    GradientFill<T, channels, reach> fill(image, roi, newValue, lower, upper, buffer);
    fill.run(seed, LoneSpans(buffer + pixels, gradientBytes(roi) - pixels));
    putRecord<channels>(region, fill.area(), newValue, fill.extent());
    return kprStatusOk;
}

template <int channels, typename T>
KprStatus deltasHold(const T* lower, const T* upper) {
    bool negative = false;
    for (int i = 0; i < channels; ++i) negative |= lower[i] < 0 || upper[i] < 0;
    return failIf(negative, kprStatusOutOfRange);
}

template <int channels, int reach, typename T>
KprStatus gradientFill(T* image, int step, KprSize roi, KprPoint seed, const T* newValue, const T* lower,
                       const T* upper, KprConnectedComp* region, Kpr8u* buffer) {
    return firstFailure(notNull(image, newValue, lower, upper, region, buffer), roiHolds(roi),
                        rowsFit<T>(Kpr64s{roi.width} * channels, step), stepsAlign<T>(step), seedInside(seed, roi))
               ?: deltasHold<channels>(lower, upper)
               ?: fillAlong<channels, reach>(Rows<T>{image, step}, roi, seed, newValue, lower, upper, region, buffer);
}

}  // namespace
}  // namespace n0::segment

using namespace n0;
using namespace n0::segment;

KprStatus kpriFloodFillGetSize_Grad(KprSize roiSize, int* bufferSize) {
    const KprStatus status = firstFailure(notNull(bufferSize), roiHolds(roiSize));
    if (status == kprStatusOk) *bufferSize = static_cast<int>(gradientBytes(roiSize));
    return status;
}

KprStatus kpriFloodFill_Grad4Con_8u_C1IR(Kpr8u* image, int imageStep, KprSize roiSize, KprPoint seed, Kpr8u newValue,
                                         Kpr8u lowerDelta, Kpr8u upperDelta, KprConnectedComp* region, Kpr8u* buffer) {
    return gradientFill<1, 0>(image, imageStep, roiSize, seed, &newValue, &lowerDelta, &upperDelta, region, buffer);
}

KprStatus kpriFloodFill_Grad4Con_16u_C1IR(Kpr16u* image, int imageStep, KprSize roiSize, KprPoint seed, Kpr16u newValue,
                                          Kpr16u lowerDelta, Kpr16u upperDelta, KprConnectedComp* region,
                                          Kpr8u* buffer) {
    return gradientFill<1, 0>(image, imageStep, roiSize, seed, &newValue, &lowerDelta, &upperDelta, region, buffer);
}

KprStatus kpriFloodFill_Grad4Con_32f_C1IR(Kpr32f* image, int imageStep, KprSize roiSize, KprPoint seed, Kpr32f newValue,
                                          Kpr32f lowerDelta, Kpr32f upperDelta, KprConnectedComp* region,
                                          Kpr8u* buffer) {
    return gradientFill<1, 0>(image, imageStep, roiSize, seed, &newValue, &lowerDelta, &upperDelta, region, buffer);
}

KprStatus kpriFloodFill_Grad4Con_8u_C3IR(Kpr8u* image, int imageStep, KprSize roiSize, KprPoint seed,
                                         const Kpr8u* newValue, const Kpr8u* lowerDelta, const Kpr8u* upperDelta,
                                         KprConnectedComp* region, Kpr8u* buffer) {
    return gradientFill<3, 0>(image, imageStep, roiSize, seed, newValue, lowerDelta, upperDelta, region, buffer);
}

KprStatus kpriFloodFill_Grad4Con_16u_C3IR(Kpr16u* image, int imageStep, KprSize roiSize, KprPoint seed,
                                          const Kpr16u* newValue, const Kpr16u* lowerDelta, const Kpr16u* upperDelta,
                                          KprConnectedComp* region, Kpr8u* buffer) {
    return gradientFill<3, 0>(image, imageStep, roiSize, seed, newValue, lowerDelta, upperDelta, region, buffer);
}

KprStatus kpriFloodFill_Grad4Con_32f_C3IR(Kpr32f* image, int imageStep, KprSize roiSize, KprPoint seed,
                                          const Kpr32f* newValue, const Kpr32f* lowerDelta, const Kpr32f* upperDelta,
                                          KprConnectedComp* region, Kpr8u* buffer) {
    return gradientFill<3, 0>(image, imageStep, roiSize, seed, newValue, lowerDelta, upperDelta, region, buffer);
}

KprStatus kpriFloodFill_Grad8Con_8u_C1IR(Kpr8u* image, int imageStep, KprSize roiSize, KprPoint seed, Kpr8u newValue,
                                         Kpr8u lowerDelta, Kpr8u upperDelta, KprConnectedComp* region, Kpr8u* buffer) {
    return gradientFill<1, 1>(image, imageStep, roiSize, seed, &newValue, &lowerDelta, &upperDelta, region, buffer);
}

KprStatus kpriFloodFill_Grad8Con_16u_C1IR(Kpr16u* image, int imageStep, KprSize roiSize, KprPoint seed, Kpr16u newValue,
                                          Kpr16u lowerDelta, Kpr16u upperDelta, KprConnectedComp* region,
                                          Kpr8u* buffer) {
    return gradientFill<1, 1>(image, imageStep, roiSize, seed, &newValue, &lowerDelta, &upperDelta, region, buffer);
}

KprStatus kpriFloodFill_Grad8Con_32f_C1IR(Kpr32f* image, int imageStep, KprSize roiSize, KprPoint seed, Kpr32f newValue,
                                          Kpr32f lowerDelta, Kpr32f upperDelta, KprConnectedComp* region,
                                          Kpr8u* buffer) {
    return gradientFill<1, 1>(image, imageStep, roiSize, seed, &newValue, &lowerDelta, &upperDelta, region, buffer);
}

KprStatus kpriFloodFill_Grad8Con_8u_C3IR(Kpr8u* image, int imageStep, KprSize roiSize, KprPoint seed,
                                         const Kpr8u* newValue, const Kpr8u* lowerDelta, const Kpr8u* upperDelta,
                                         KprConnectedComp* region, Kpr8u* buffer) {
    return gradientFill<3, 1>(image, imageStep, roiSize, seed, newValue, lowerDelta, upperDelta, region, buffer);
}

KprStatus kpriFloodFill_Grad8Con_16u_C3IR(Kpr16u* image, int imageStep, KprSize roiSize, KprPoint seed,
                                          const Kpr16u* newValue, const Kpr16u* lowerDelta, const Kpr16u* upperDelta,
                                          KprConnectedComp* region, Kpr8u* buffer) {
    return gradientFill<3, 1>(image, imageStep, roiSize, seed, newValue, lowerDelta, upperDelta, region, buffer);
}

KprStatus kpriFloodFill_Grad8Con_32f_C3IR(Kpr32f* image, int imageStep, KprSize roiSize, KprPoint seed,
                                          const Kpr32f* newValue, const Kpr32f* lowerDelta, const Kpr32f* upperDelta,
                                          KprConnectedComp* region, Kpr8u* buffer) {
    return gradientFill<3, 1>(image, imageStep, roiSize, seed, newValue, lowerDelta, upperDelta, region, buffer);
}
