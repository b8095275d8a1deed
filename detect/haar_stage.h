// One stage for sixteen windows at once: a lane for each window. How a lane's elements come from the table is the
// reader's matter.
#pragma once

#include "detect/haar_block.h"
#include "primitives/rows.h"
#include "primitives/simd_detect.h"

namespace n0::detect {

// ---- rectangles

// Integers wrap, so that their order is free.
struct InOrder {
    template <typename T>
    KPR_INLINE static Vec<T> rect(Vec<T> a, Vec<T> b, Vec<T> c, Vec<T> d) {
        return a - b - c + d;
    }
};
struct InPairs {
    template <typename T>
    KPR_INLINE static Vec<T> rect(Vec<T> a, Vec<T> b, Vec<T> c, Vec<T> d) {
        return (a - b) - (c - d);
    }
};

// ---- votes: what a classifier of `count` rectangles gives in each lane; rect(k) and weight(k) are those of feature k

KPR_INLINE Vec<Kpr32f> floatVote(const HaarClassifier& classifier, Vec<Kpr32f> sum, Vec<Kpr32f> norm) {
    const auto bound = broadcast(valueOf<Kpr32f>(classifier.threshold)) * norm;
    return select(less(sum, bound), broadcast(valueOf<Kpr32f>(classifier.valueBelow)),
                  broadcast(valueOf<Kpr32f>(classifier.valueAbove)));
}

// Sums by fused steps, one feature after another.
struct Chained {
    using Value = Kpr32f;
    using Norm = Vec<Kpr32f>;

    template <typename Rect, typename Weight>
    KPR_INLINE static Vec<Kpr32f> vote(const HaarClassifier& classifier, Norm norm, Rect rect, Weight weight) {
        const int count = classifier.featureCount;
        auto sum = broadcast(weight(0)) * rect(0);
        for (int k = 1; k < count; ++k) sum = fma(broadcast(weight(k)), rect(k), sum);
        return floatVote(classifier, sum, norm);
    }
};

// Sums of every sixteenth feature, each by fused steps, added up in a tree. Sums of no feature are zeros, which change
// nothing but a zero's sign: those of up to three features are left out.
struct Spread {
    using Value = Kpr32f;
    using Norm = Vec<Kpr32f>;

    template <typename Rect, typename Weight>
    KPR_INLINE static Vec<Kpr32f> vote(const HaarClassifier& classifier, Norm norm, Rect rect, Weight weight) {
        const int count = classifier.featureCount;
        const auto product = [&](int k) __attribute__((always_inline)) {
            return broadcast(weight(k)) * asFloat(rect(k));
        };
        if (count == 2) return floatVote(classifier, product(1) + product(0), norm);
        if (count == 3) return floatVote(classifier, product(1) + (product(0) + product(2)), norm);
        return floatVote(classifier, tree(count, rect, weight), norm);
    }

  private:
    KPR_INLINE static Vec<Kpr32f> asFloat(Vec<Kpr32f> v) { return v; }
    KPR_INLINE static Vec<Kpr32f> asFloat(Vec<Kpr32s> v) { return toFloat(v); }

    template <typename Rect, typename Weight>
    static Vec<Kpr32f> tree(int count, Rect rect, Weight weight) {
        Vec<Kpr32f> sums[16];
        for (auto& sum : sums) sum = zero<Kpr32f>();
        for (int k = 0; k < count; ++k) sums[k % 16] = fma(broadcast(weight(k)), asFloat(rect(k)), sums[k % 16]);
        const auto a = [&](int i) { return sums[i] + sums[i + 8]; };
        const auto b = [&](int i) { return sums[i + 12] + sums[i + 4]; };
        const auto p = [&](int i) { return (b(i + 2) + a(i)) + (b(i) + a(i + 2)); };
        return p(1) + p(0);
    }
};

// Sums of integers in 64 bits, compared after they are shifted.
struct Shifted {
    using Value = Kpr32s;
    struct Norm {
        Vec<Kpr32s> norm;
        Kpr64s shift;
    };

    template <typename Rect, typename Weight>
    KPR_INLINE static Vec<Kpr32s> vote(const HaarClassifier& classifier, Norm norm, Rect rect, Weight weight) {
        const int count = classifier.featureCount;
        EvenOdd sum = multiplyWide(rect(0), broadcast(weight(0)));
        for (int k = 1; k < count; ++k) sum = sum + multiplyWide(rect(k), broadcast(weight(k)));
        return selectLess(sum << norm.shift, multiplyWide(norm.norm, broadcast(classifier.threshold)),
                          broadcast(classifier.valueBelow), broadcast(classifier.valueAbove));
    }
};

// ---- corners: where the four elements of a feature lie

// As the call has put them down; every classifier reads the one table.
struct PutDown {
    const CornerOffsets* offsets;  // of the next classifier

    template <typename Order, typename Reader>
    KPR_INLINE auto rect(const HaarClassifier& /*classifier*/, int k, const Reader& reader) const {
        const auto* const corner = offsets[k];
        return reader.template rect<Order>(false, corner[0], corner[1], corner[2], corner[3]);
    }
    KPR_INLINE void next(int features) { offsets += features; }
};

// On the fly, in the table that the classifier's tag names.
struct OnTheFly {
    Kpr64s elements[2];  // from row to row of the upright and of the tilted table

    template <typename Order, typename Reader>
    KPR_INLINE auto rect(const HaarClassifier& classifier, int k, const Reader& reader) const {
        const bool tilted = (classifier.tag & 1) != 0;
        const HaarFeature& feature = classifier.features[k];
        const auto at = [&](int i) __attribute__((always_inline)) {
            return feature.corner[i].y * elements[tilted] + feature.corner[i].x;
        };
        return reader.template rect<Order>(tilted, at(0), at(1), at(2), at(3));
    }
    KPR_INLINE void next(int /*features*/) {}
};

// The stage's sum in each lane.
template <typename Vote, typename Order, typename Corners, typename Reader>
KPR_INLINE auto stageSum(const KprHaarClassifier& state, Corners corners, typename Vote::Norm norm, Reader reader) {
    using Value = typename Vote::Value;
    auto sum = zero<Value>();
    const HaarClassifier* const classifiers = state.classifiers;
    for (int i = 0; i < state.classifierCount; ++i) {
        const HaarClassifier& classifier = classifiers[i];
        sum = sum +
              Vote::vote(
                  classifier, norm,
                  [&](int k)
                      __attribute__((always_inline)) { return corners.template rect<Order>(classifier, k, reader); },
                  [&](int k) __attribute__((always_inline)) { return valueOf<Value>(classifier.features[k].weight); });
        corners.next(classifier.featureCount);
    }
    return sum;
}

}  // namespace n0::detect
