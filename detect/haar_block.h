// The prepared block of a stage. Blocks lie at any address, hence packed.
#pragma once

#include "primitives/simd_vector.h"
#include "primitives/workspace.h"

namespace n0::detect {

// A rectangle: its corners, bottom right, bottom left, top right, top left (of a tilted one bottom, left, right, top),
// and its weight, a Kpr32f or a Kpr32s.
struct [[gnu::packed]] HaarFeature {
    struct [[gnu::packed]] {
        Kpr32s x, y;
    } corner[4];
    Kpr32s weight;
};
static_assert(sizeof(HaarFeature) == 36);

// The last bit of a tag says that the classifier reads the tilted table; its bits from this one on are the classifier's
// index in the caller's list.
inline constexpr int kIndexBit = 8;

// A threshold and values of a Kpr32f or a Kpr32s.
struct [[gnu::packed]] HaarClassifier {
    Kpr32s featureCount;
    Kpr32s unused;
    HaarFeature* features;
    Kpr32s threshold;
    Kpr32s valueBelow;
    Kpr32s valueAbove;
    unsigned tag;
};
static_assert(sizeof(HaarClassifier) == 32);

template <typename T>
KPR_INLINE T valueOf(Kpr32s stored) {
    return __builtin_bit_cast(T, stored);
}

// Four offsets of corners in elements, one for each corner of each feature in stored order.
using CornerOffsets = Kpr32s[4];

}  // namespace n0::detect

struct [[gnu::packed]] KprHaarClassifier {
    Kpr32s classifierCount;
    Kpr32s featureTotal;
    n0::detect::HaarClassifier* classifiers;
    KprRect region;
    Kpr32s tilted;
    Kpr32s twos;           // classifiers of two features, which come first
    Kpr32s twosAndThrees;  // and those of three, which come next
    Kpr32s featureTotalAgain;
    Kpr32s firstWeightsAreMinusOne;
    Kpr32s unused;
    n0::detect::CornerOffsets* scratch;
};
static_assert(sizeof(KprHaarClassifier) == 64);
