// Stages of a cascade: their sizes, how they are prepared, and how their classifiers are tilted.
#include "detect/haar_block.h"
#include "frame/checks.h"
#include "primitives/sizes.h"

namespace n0::detect {
namespace {

// Caller's numbers may be any: sums wrap.
constexpr Kpr32s plus(Kpr32s a, Kpr32s b) {
    return static_cast<Kpr32s>(static_cast<unsigned>(a) + static_cast<unsigned>(b));
}
constexpr Kpr32s minus(Kpr32s a, Kpr32s b) {
    return static_cast<Kpr32s>(static_cast<unsigned>(a) - static_cast<unsigned>(b));
}

void setCorners(HaarFeature& feature, KprPoint a, KprPoint b, KprPoint c, KprPoint d) {
    const KprPoint corners[4] = {a, b, c, d};
    for (int i = 0; i < 4; ++i) {
        feature.corner[i].x = corners[i].x;
        feature.corner[i].y = corners[i].y;
    }
}

void setUpright(HaarFeature& feature, KprRect r) {
    const Kpr32s right = plus(r.x, r.width), bottom = plus(r.y, r.height);
    setCorners(feature, {right, bottom}, {r.x, bottom}, {right, r.y}, {r.x, r.y});
}

// At 45 degrees, standing on its top corner.
void setTilted(HaarFeature& feature, KprRect r) {
    const Kpr32s right = plus(r.x, r.width), down = plus(r.y, r.width);
    setCorners(feature, {minus(right, r.height), plus(down, r.height)}, {minus(r.x, r.height), plus(r.y, r.height)},
               {right, down}, {r.x, r.y});
}

// Turned the other way, about the bottom left corner.
void setTiltedBack(HaarFeature& feature, KprRect r) {
    const Kpr32s bottom = plus(r.y, r.height), right = plus(r.x, r.width);
    setCorners(feature, {r.x, bottom}, {minus(r.x, r.height), r.y}, {right, minus(bottom, r.width)},
               {minus(right, r.height), minus(r.y, r.width)});
}

KprRect uprightRect(const HaarFeature& feature) {
    const Kpr32s x = feature.corner[3].x, y = feature.corner[3].y;
    return {x, y, minus(feature.corner[0].x, x), minus(feature.corner[0].y, y)};
}

// The width and height are a right and a bottom edge until all rectangles are in. A first rectangle away from the
// origin makes the region smaller than it is: readers of the block rely on this arithmetic.
void widen(KprRect& region, KprRect r) {
    if (r.x < region.x) region.x = r.x;
    if (r.y < region.y) region.y = r.y;
    if (plus(region.x, region.width) < plus(r.x, r.width)) region.width = plus(r.x, r.width);
    if (plus(region.y, region.height) < plus(r.y, r.height)) region.height = plus(r.y, r.height);
}

constexpr bool rectHolds(KprRect r, bool tilted) {
    return r.x >= 0 && r.y >= 0 && r.width >= 1 && r.height >= 1 && !(tilted && r.height - 1 > r.x);
}

bool countsHold(const int* featureCounts, int classifierCount) {
    for (int i = 0; i < classifierCount; ++i) {
        if (featureCounts[i] < 1) return false;
    }
    return true;
}

Kpr64s total(const int* featureCounts, int classifierCount) {
    Kpr64s sum = 0;
    for (int i = 0; i < classifierCount; ++i) sum += featureCounts[i];
    return sum;
}

// What the caller gives for a stage.
template <typename T>
struct Stage {
    const int* features;
    const T* weights;
    const T* thresholds;
    const T* valuesBelow;
    const T* valuesAbove;
    const int* featureCounts;
    int classifierCount;

    [[nodiscard]] KprRect rect(Kpr64s i) const {
        return {features[4 * i], features[4 * i + 1], features[4 * i + 2], features[4 * i + 3]};
    }
};

template <typename T>
Kpr32s stored(T value) {
    return __builtin_bit_cast(Kpr32s, value);
}

// Appends classifiers to a block.
template <typename T>
class Writer {
  public:
    Writer(KprHaarClassifier* state, const Stage<T>& stage, bool tilted)
        : state_(state),
          stage_(stage),
          tilted_(tilted),
          classifier_(reinterpret_cast<HaarClassifier*>(state + 1)),
          feature_(reinterpret_cast<HaarFeature*>(classifier_ + stage.classifierCount)) {
        state->classifiers = classifier_;
    }

    // All classifiers that `chosen(count)` tells by their number of features; false at a rectangle that does not hold.
    template <typename Chosen>
    bool write(Chosen chosen) {
        Kpr64s first = 0;  // the classifier's first rectangle in the caller's list
        for (int i = 0; i < stage_.classifierCount; first += stage_.featureCounts[i++]) {
            if (chosen(stage_.featureCounts[i]) && !append(i, first)) return false;
        }
        return true;
    }

    // So many have been written.
    [[nodiscard]] Kpr32s count() const { return static_cast<Kpr32s>(classifier_ - state_->classifiers); }

    // The first 64-byte boundary after the features.
    [[nodiscard]] CornerOffsets* end() const { return alignedUp<CornerOffsets>(feature_, 64); }

  private:
    bool append(int index, Kpr64s first) {
        const int count = stage_.featureCounts[index];
        *classifier_++ = {count,
                          0,
                          feature_,
                          stored(stage_.thresholds[index]),
                          stored(stage_.valuesBelow[index]),
                          stored(stage_.valuesAbove[index]),
                          static_cast<unsigned>(index) << kIndexBit | static_cast<unsigned>(tilted_)};
        for (Kpr64s i = first; i < first + count; ++i, ++feature_) {
            const KprRect rect = stage_.rect(i);
            if (!rectHolds(rect, tilted_)) return false;
            (tilted_ ? setTilted : setUpright)(*feature_, rect);
            feature_->weight = stored(stage_.weights[i]);
            KprRect region = state_->region;
            widen(region, rect);
            state_->region = region;
        }
        return true;
    }

    KprHaarClassifier* state_;
    const Stage<T>& stage_;
    bool tilted_;
    HaarClassifier* classifier_;
    HaarFeature* feature_;
};

// The weight of every classifier's first rectangle truncates to -1.
bool firstWeightsAreMinusOne(const Stage<Kpr32f>& stage) {
    Kpr64s first = 0;
    for (int i = 0; i < stage.classifierCount; first += stage.featureCounts[i++]) {
        const Kpr32f weight = stage.weights[first];
        if (!(weight > -2.0F && weight <= -1.0F)) return false;
    }
    return true;
}

template <typename T>
KprStatus prepare(KprHaarClassifier* state, const Stage<T>& stage, bool tilted) {
    if (stage.classifierCount < 1 || !countsHold(stage.featureCounts, stage.classifierCount)) return kprStatusBadSize;
    *state = {};
    state->classifierCount = stage.classifierCount;
    state->featureTotal = static_cast<Kpr32s>(total(stage.featureCounts, stage.classifierCount));
    state->region = stage.rect(0);
    state->tilted = static_cast<Kpr32s>(tilted);
    if constexpr (std::is_same_v<T, Kpr32f>) {
        state->featureTotalAgain = state->featureTotal;
        state->firstWeightsAreMinusOne = static_cast<Kpr32s>(firstWeightsAreMinusOne(stage));
    }
    Writer<T> writer(state, stage, tilted);
    if (tilted) {
        if (!writer.write([](int) { return true; })) return kprStatusBadArg;
    } else {
        if (!writer.write([](int count) { return count == 2; })) return kprStatusBadArg;
        state->twos = writer.count();
        if (!writer.write([](int count) { return count == 3; })) return kprStatusBadArg;
        state->twosAndThrees = writer.count();
        if (!writer.write([](int count) { return count != 2 && count != 3; })) return kprStatusBadArg;
    }
    state->region.width = minus(state->region.width, state->region.x);
    state->region.height = minus(state->region.height, state->region.y);
    state->scratch = writer.end();
    return kprStatusOk;
}

template <typename Visit>
void eachFeature(const HaarClassifier& classifier, Visit visit) {
    HaarFeature* const features = classifier.features;
    for (int i = 0; i < classifier.featureCount; ++i) visit(features[i]);
}

KprSize reachOf(const KprHaarClassifier& state) {
    KprSize reach = {0, 0};
    for (int i = 0; i < state.classifierCount; ++i) {
        eachFeature(state.classifiers[i], [&](const HaarFeature& feature) {
            const Kpr32s x = feature.corner[0].x, y = feature.corner[0].y;
            if (x > reach.width) reach.width = x;
            if (y > reach.height) reach.height = y;
        });
    }
    return reach;
}

HaarClassifier* findClassifier(const KprHaarClassifier& state, unsigned index) {
    for (int i = 0; i < state.classifierCount; ++i) {
        if (state.classifiers[i].tag >> kIndexBit == index) return &state.classifiers[i];
    }
    return nullptr;
}

KprStatus tilt(const Kpr8u* mask, bool forward, KprHaarClassifier* state) {
    if (state->tilted != 0) return kprStatusBadArg;
    for (int i = 0; i < state->classifierCount; ++i) {
        HaarClassifier* const classifier = mask[i] != 0 ? findClassifier(*state, static_cast<unsigned>(i)) : nullptr;
        if (classifier == nullptr) continue;
        classifier->tag = 1;
        state->tilted = 1;
        eachFeature(*classifier, [=](HaarFeature& feature) {
            (forward ? setTilted : setTiltedBack)(feature, uprightRect(feature));
        });
    }
    return kprStatusOk;
}

template <typename T>
KprStatus initialise(KprHaarClassifier* state, const Stage<T>& stage, bool tilted) {
    return notNull(state, stage.features, stage.weights, stage.thresholds, stage.valuesBelow, stage.valuesAbove,
                   stage.featureCounts)
               ?: prepare(state, stage, tilted);
}

KprStatus putReach(const KprHaarClassifier* state, KprSize* size) {
    const KprStatus status = notNull(state, size);
    if (status == kprStatusOk) *size = reachOf(*state);
    return status;
}

KprStatus tiltChosen(const Kpr8u* mask, int flag, KprHaarClassifier* state) {
    return notNull(mask, state) ?: tilt(mask, flag != 0, state);
}

}  // namespace
}  // namespace n0::detect

using namespace n0;
using namespace n0::detect;

KprStatus kpriHaarClassifierGetSize(KprDataType dataType, KprSize roiSize, const int* featureCounts,
                                    int classifierCount, int* size) {
    const KprStatus status =
        firstFailure(notNull(featureCounts, size), failIf(classifierCount < 1, kprStatusBadSize), roiHolds(roiSize));
    if (status != kprStatusOk) return status;
    if (!countsHold(featureCounts, classifierCount)) return kprStatusBadSize;
    if (dataType != kpr32s && dataType != kpr32f) return kprStatusBadDataType;
    const Bytes n = classifierCount, f = total(featureCounts, classifierCount);
    const Bytes records = 32 * n + 36 * f + 64;
    const Bytes row = roundUp(Bytes{roiSize.width} * 4, 16);
    return putSize(dataType == kpr32f ? records + ((16 * f + 31) & ~Bytes{15}) + 2 * row + 64 : records + 16 * f + 64,
                   size);
}

KprStatus kpriHaarClassifierInit_32f(KprHaarClassifier* state, const int* features, const Kpr32f* weights,
                                     const Kpr32f* thresholds, const Kpr32f* valuesBelow, const Kpr32f* valuesAbove,
                                     const int* featureCounts, int classifierCount) {
    return initialise<Kpr32f>(
        state, {features, weights, thresholds, valuesBelow, valuesAbove, featureCounts, classifierCount}, false);
}

KprStatus kpriHaarClassifierInit_32s(KprHaarClassifier* state, const int* features, const Kpr32s* weights,
                                     const Kpr32s* thresholds, const Kpr32s* valuesBelow, const Kpr32s* valuesAbove,
                                     const int* featureCounts, int classifierCount) {
    return initialise<Kpr32s>(
        state, {features, weights, thresholds, valuesBelow, valuesAbove, featureCounts, classifierCount}, false);
}

KprStatus kpriTiltedHaarClassifierInit_32f(KprHaarClassifier* state, const int* features, const Kpr32f* weights,
                                           const Kpr32f* thresholds, const Kpr32f* valuesBelow,
                                           const Kpr32f* valuesAbove, const int* featureCounts, int classifierCount) {
    return initialise<Kpr32f>(
        state, {features, weights, thresholds, valuesBelow, valuesAbove, featureCounts, classifierCount}, true);
}

KprStatus kpriTiltedHaarClassifierInit_32s(KprHaarClassifier* state, const int* features, const Kpr32s* weights,
                                           const Kpr32s* thresholds, const Kpr32s* valuesBelow,
                                           const Kpr32s* valuesAbove, const int* featureCounts, int classifierCount) {
    return initialise<Kpr32s>(
        state, {features, weights, thresholds, valuesBelow, valuesAbove, featureCounts, classifierCount}, true);
}

KprStatus kpriGetHaarClassifierSize_32f(const KprHaarClassifier* state, KprSize* size) { return putReach(state, size); }

KprStatus kpriGetHaarClassifierSize_32s(const KprHaarClassifier* state, KprSize* size) { return putReach(state, size); }

KprStatus kpriTiltHaarFeatures_32f(const Kpr8u* mask, int flag, KprHaarClassifier* state) {
    return tiltChosen(mask, flag, state);
}

KprStatus kpriTiltHaarFeatures_32s(const Kpr8u* mask, int flag, KprHaarClassifier* state) {
    return tiltChosen(mask, flag, state);
}
