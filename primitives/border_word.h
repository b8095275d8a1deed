// The border word, taken apart and checked. No other file knows its bits.
//
//     bits 0 to 3     the base mode
//     bits 4 to 7     sides on which the pixels outside the ROI are memory: kprBorderInMem for all four
//     bits 8 to 11    the first stage of a compound operation reads its whole neighbourhood from memory
#pragma once

#include "frame/checks.h"

namespace n0 {

inline constexpr KprBorderType kBaseMode = 15;
inline constexpr KprBorderType kFirstStage = 3840;
inline constexpr KprBorderType kFilterWord = kBaseMode | kprBorderInMem;  // all that a filter's word may have
inline constexpr KprBorderType kMorphologyWord = kFilterWord | kFirstStage;

constexpr KprBorderType baseOf(KprBorderType word) { return word & kBaseMode; }

constexpr bool allInMemory(KprBorderType word) { return (word & kprBorderInMem) == kprBorderInMem; }

// The word, taken apart.
struct Border {
    KprBorderType base;
    bool top, bottom, left, right;  // sides on which the pixels outside are memory

    constexpr Border(KprBorderType word)  // a word is a border wherever one is wanted
        : base(baseOf(word)),
          top((word & kprBorderInMemTop) != 0),
          bottom((word & kprBorderInMemBottom) != 0),
          left((word & kprBorderInMemLeft) != 0),
          right((word & kprBorderInMemRight) != 0) {}
};

constexpr bool oneOf(KprBorderType mode, auto... modes) { return ((mode == KprBorderType{modes}) || ...); }

// ---- checks of the word as a function was given it. All sides in memory need no base mode.

constexpr KprStatus borderServesFilter(KprBorderType word) {
    const bool known =
        word == kprBorderInMem || oneOf(baseOf(word), kprBorderConstant, kprBorderReplicate, kprBorderMirror);
    return failIf((word & ~kFilterWord) != 0 || !known, kprStatusBadBorder);
}

constexpr KprStatus borderServesMorphology(KprBorderType word) {
    const bool known = word == kprBorderInMem ||
                       oneOf(baseOf(word), kprBorderConstant, kprBorderReplicate, kprBorderMirror, kprBorderDefault);
    return failIf((word & ~kMorphologyWord) != 0 || !known, kprStatusBadBorder);
}

}  // namespace n0
