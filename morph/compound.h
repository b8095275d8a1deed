// Operations of two stages: opening, closing and the differences made from them.
#pragma once

#include "morph/extremum.h"

namespace n0::morph {

// The state block: the masks of the two stages, the second turned by 180 degrees. Each is a state block of its own, and
// they follow this one; `specSize` bytes each.
struct MorphPair {
    void* first;
    void* second;
};

// That of the large interface. A mode may let the second stage use the first mask.
struct MorphPairLarge {
    void* first;
    void* second;
    void* reflectedState;
    Kpr32s modeFlag;
};

template <typename Block, typename Extent>
Block& fillPair(void* spec, const Kpr8u* mask, Kpr64s width, Kpr64s height, Bytes specSize,
                TapLists lists = TapLists::Kept) {
    Block& pair = headerOf<Block>(spec);
    auto* blocks = reinterpret_cast<char*>(&pair + 1);
    pair.first = blocks;
    pair.second = blocks + static_cast<Kpr64s>(specSize);
    fillState<Extent>(pair.first, mask, width, height, Orientation::AsGiven, lists);
    fillState<Extent>(pair.second, mask, width, height, Orientation::Reflected, lists);
    return pair;
}

struct TapsPair {
    Taps first, second;
};

template <typename Block, typename Extent>
TapsPair pairOf(const void* spec) {
    const Block& pair = headerOf<Block>(spec);
    return {tapsOf<Extent>(pair.first), tapsOf<Extent>(pair.second)};
}

// The operations of checked calls. Compiled once for each type, in compound_stages.cpp.
template <typename T>
KprStatus open(const Call<T>& call, const TapsPair& taps);
template <typename T>
KprStatus close(const Call<T>& call, const TapsPair& taps);
template <typename T>
KprStatus topHat(const Call<T>& call, const TapsPair& taps);
template <typename T>
KprStatus blackHat(const Call<T>& call, const TapsPair& taps);
template <typename T>
KprStatus gradient(const Call<T>& call, const TapsPair& taps);

}  // namespace n0::morph
