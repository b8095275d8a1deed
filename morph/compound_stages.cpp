// Opening, closing, top-hat, black-hat and gradient. With D and E for dilation and erosion by the mask as given, D* and
// E* by the mask turned by 180 degrees,
//
//     open      D*(E(s))                 top-hat     max(s - open, 0)
//     close     E*(D(s))                 black-hat   max(close - s, 0)
//     gradient  D(s) - E(s)
//
// The last stage writes the difference.
#include "morph/compound.h"

namespace n0::morph {
namespace {

// A buffer's two parts: the image between the stages, and the work area of either stage. The image comes first, so that
// a ROI smaller than the one that the buffer was sized for leaves no less to the work area; that has the room of two
// work areas of the ROI, which is enough for the first stage's larger image too.
template <typename T>
struct TwoParts {
    Rows<T> image;
    Workspace work;

    TwoParts(const Call<T>& call, Kpr64s width, Kpr64s height, const Taps& taps) {
        const Extents e = {call.width, call.height, taps.width, taps.height};
        const Kpr64s step = roundUp(width * call.channels * Kpr64s{sizeof(T)}, 32);
        work = Workspace(call.buffer, height * step + static_cast<Kpr64s>(2 * workHeld(e, sizeof(T), call.channels)));
        image = {reinterpret_cast<T*>(work.take<char>(height * step, 32)), step};
    }
    [[nodiscard]] Rows<const T> pixels() const { return {image.first, image.step}; }
};

// The first stage into an image between, the second from there to the destination. On sides that are memory the image
// between is larger by the second mask's reach, so that both stages see real pixels. First-stage flags of the border
// word say that all of the first stage's neighbourhood is memory.
template <typename First, typename Second, typename T>
KprStatus twoStages(const Call<T>& call, const TapsPair& taps, Output output, Rows<const T> other) {
    const Border border(call.border);
    const Kpr64s reachX = taps.second.reachX(), reachY = taps.second.reachY();
    const Kpr64s left = border.left ? reachX : 0, top = border.top ? reachY : 0;
    const Kpr64s width = call.width + left + (border.right ? reachX : 0);
    const Kpr64s height = call.height + top + (border.bottom ? reachY : 0);
    const TwoParts<T> parts(call, width, height, taps.first);

    Call<T> first = call;
    if ((call.border & kFirstStage) != 0) first.border |= kprBorderInMem;
    Job<T> job = jobOf<First>(first, taps.first);
    job.src = {job.src[-top] - left * call.channels, call.srcStep};
    job.dst = parts.image;
    job.width = width;
    job.height = height;
    job.work = parts.work;
    makeExtremum<First>(job, taps.first);

    job = jobOf<Second>(call, taps.second);
    job.src = {parts.pixels()[top] + left * call.channels, parts.image.step};
    job.work = parts.work;
    job.output = output;
    job.other = other;
    makeExtremum<Second>(job, taps.second);
    return kprStatusOk;
}

template <typename T>
Rows<const T> sourceOf(const Call<T>& call) {
    return {call.src, call.srcStep};
}

}  // namespace

template <typename T>
KprStatus open(const Call<T>& call, const TapsPair& taps) {
    return twoStages<Erosion<T>, Dilation<T>>(call, taps, Output::Result, sourceOf(call));
}

template <typename T>
KprStatus close(const Call<T>& call, const TapsPair& taps) {
    return twoStages<Dilation<T>, Erosion<T>>(call, taps, Output::Result, sourceOf(call));
}

template <typename T>
KprStatus topHat(const Call<T>& call, const TapsPair& taps) {
    return twoStages<Erosion<T>, Dilation<T>>(call, taps, Output::OtherLess, sourceOf(call));
}

template <typename T>
KprStatus blackHat(const Call<T>& call, const TapsPair& taps) {
    return twoStages<Dilation<T>, Erosion<T>>(call, taps, Output::LessOther, sourceOf(call));
}

// The erosion is made first, so that the dilation can write the difference, in place too.
template <typename T>
KprStatus gradient(const Call<T>& call, const TapsPair& taps) {
    const TwoParts<T> parts(call, call.width, call.height, taps.first);
    Job<T> job = jobOf<Erosion<T>>(call, taps.first);
    job.work = parts.work;
    job.dst = parts.image;
    const Source source = makeExtremum<Erosion<T>>(job, taps.first);
    job = jobOf<Dilation<T>>(call, taps.first);
    job.work = parts.work;
    job.source = source;
    job.output = Output::LessOtherSigned;
    job.other = parts.pixels();
    makeExtremum<Dilation<T>>(job, taps.first);
    return kprStatusOk;
}

template KprStatus open(const Call<Kpr8u>&, const TapsPair&);
template KprStatus close(const Call<Kpr8u>&, const TapsPair&);
template KprStatus topHat(const Call<Kpr8u>&, const TapsPair&);
template KprStatus blackHat(const Call<Kpr8u>&, const TapsPair&);
template KprStatus gradient(const Call<Kpr8u>&, const TapsPair&);
template KprStatus open(const Call<Kpr16u>&, const TapsPair&);
template KprStatus close(const Call<Kpr16u>&, const TapsPair&);
template KprStatus topHat(const Call<Kpr16u>&, const TapsPair&);
template KprStatus blackHat(const Call<Kpr16u>&, const TapsPair&);
template KprStatus gradient(const Call<Kpr16u>&, const TapsPair&);
template KprStatus open(const Call<Kpr16s>&, const TapsPair&);
template KprStatus close(const Call<Kpr16s>&, const TapsPair&);
template KprStatus topHat(const Call<Kpr16s>&, const TapsPair&);
template KprStatus blackHat(const Call<Kpr16s>&, const TapsPair&);
template KprStatus gradient(const Call<Kpr16s>&, const TapsPair&);
template KprStatus open(const Call<Kpr32f>&, const TapsPair&);
template KprStatus close(const Call<Kpr32f>&, const TapsPair&);
template KprStatus topHat(const Call<Kpr32f>&, const TapsPair&);
template KprStatus blackHat(const Call<Kpr32f>&, const TapsPair&);
template KprStatus gradient(const Call<Kpr32f>&, const TapsPair&);

}  // namespace n0::morph
