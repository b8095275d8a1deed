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

// The checks of the large interface, but those of the gradient: the constant's pointer counts among the pointers here,
// and a ROI of 0x7fffffff comes last.
template <typename Call>
KprStatus compoundHolds(const Call& c, const void* spec) {
    constexpr Kpr64s kBeyond = 0x7fffffff;
    return firstFailure(notNull(c.src, c.dst, spec, c.buffer), valueGiven(c), roiHolds(KprSizeL{c.width, c.height}),
                        roiNotBeyond(c.width, c.height))
               ?: firstFailure(stepsHold(c), borderServesMorphology(c.border),
                               failIf(c.width == kBeyond || c.height == kBeyond, kprStatusSizeOverflow));
}

// A buffer's two parts: the image between the stages, and the work area of either stage. The image comes first, so that
// a ROI smaller than the one that the buffer was sized for leaves no less to the work area; that has the room of two
// work areas of the ROI, which is enough for the first stage's larger image too.
template <typename T>
struct TwoParts {
    Rows<T> image;
    Workspace work;

    TwoParts(const Call<T>& call, Kpr64s width, Kpr64s height, Taps taps) {
        const Kpr64s rowBytes = width * call.channels * Kpr64s{sizeof(T)};
        char* first = Lines<T>::upTo(reinterpret_cast<char*>(call.buffer), 32);
        image = {reinterpret_cast<T*>(first), (rowBytes + 31) & ~Kpr64s{31}};
        const Extents e = {call.width, call.height, taps.width, taps.height};
        work = {first + height * image.step, static_cast<Kpr64s>(2 * workHeld(e, sizeof(T), call.channels) - 31)};
    }
};

// The first stage into an image between, the second from there to the destination. On sides that are memory the image
// between is larger by the second mask's reach, so that both stages see real pixels. First-stage flags of the border
// word say that all of the first stage's neighbourhood is memory.
template <typename First, typename Second, typename Put, typename T>
KprStatus twoStages(const Call<T>& call, TapsPair taps, Rows<const T> other) {
    const Border border(call.border);
    const Kpr64s reachX = taps.second.reachX(), reachY = taps.second.reachY();
    const Kpr64s left = border.left ? reachX : 0, top = border.top ? reachY : 0;
    const Kpr64s width = call.width + left + (border.right ? reachX : 0);
    const Kpr64s height = call.height + top + (border.bottom ? reachY : 0);
    const TwoParts<T> parts(call, width, height, taps.first);

    Call<T> first = call;
    first.src = Rows{call.src, call.srcStep}[-top] - left * call.channels;
    first.dst = parts.image.first;
    first.dstStep = parts.image.step;
    first.width = width;
    first.height = height;
    if ((call.border & kFirstStage) != 0) first.border |= kprBorderInMem;
    Job<T> job = jobOf<First>(first, taps.first);
    job.work = parts.work;
    extremum<First, Plain>(job, taps.first, Rows<const T>{job.dst.first, job.dst.step});

    Call<T> second = call;
    second.src = parts.image[top] + left * call.channels;
    second.srcStep = parts.image.step;
    job = jobOf<Second>(second, taps.second);
    job.work = parts.work;
    return extremum<Second, Put>(job, taps.second, other);
}

template <typename T>
Rows<const T> sourceOf(const Call<T>& call) {
    return {call.src, call.srcStep};
}
template <typename T>
Rows<const T> destinationOf(const Call<T>& call) {
    return {call.dst, call.dstStep};
}

template <typename T>
KprStatus open(const Call<T>& call, TapsPair taps) {
    return twoStages<Erosion<T>, Dilation<T>, Plain>(call, taps, destinationOf(call));
}

template <typename T>
KprStatus close(const Call<T>& call, TapsPair taps) {
    return twoStages<Dilation<T>, Erosion<T>, Plain>(call, taps, destinationOf(call));
}

template <typename T>
KprStatus topHat(const Call<T>& call, TapsPair taps) {
    return twoStages<Erosion<T>, Dilation<T>, FromOther>(call, taps, sourceOf(call));
}

template <typename T>
KprStatus blackHat(const Call<T>& call, TapsPair taps) {
    return twoStages<Dilation<T>, Erosion<T>, LessOther>(call, taps, sourceOf(call));
}

// The erosion is made first, so that the dilation can write the difference, in place too.
template <typename T>
KprStatus gradient(const Call<T>& call, TapsPair taps) {
    const TwoParts<T> parts(call, call.width, call.height, taps.first);
    Job<T> job = jobOf<Erosion<T>>(call, taps.first);
    job.work = parts.work;
    job.dst = parts.image;
    const Rows<const T> eroded = {parts.image.first, parts.image.step};
    extremum<Erosion<T>, Plain>(job, taps.first, eroded);
    job = jobOf<Dilation<T>>(call, taps.first);
    job.work = parts.work;
    return extremum<Dilation<T>, LessOtherSigned>(job, taps.first, eroded);
}

}  // namespace n0::morph
