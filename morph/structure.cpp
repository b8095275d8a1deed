#include "morph/structure.h"

namespace n0::morph {
namespace {

// The lists say 16-bit columns; a wider mask has none.
Kpr16u* listTaps(Kpr16u* lists, const Taps& taps) {
    if (taps.width > 0xffff) return nullptr;
    Kpr16u* end = lists;
    for (Kpr64s y = 0; y < taps.height; ++y) {
        Kpr16u* count = end++;
        for (Kpr64s x = 0; x < taps.width; ++x) {
            if (taps.at(x, y)) *end++ = static_cast<Kpr16u>(x);
        }
        *count = static_cast<Kpr16u>(end - count - 1);
    }
    return lists;
}

// Whether a mask's window is 3x3 or 5x5 and its rows are as told of Reaches, which it then fills.
bool isSmall(const Taps& taps, Window w, Reaches& reaches) {
    const Kpr64s reach = w.left;
    if (reach < 1 || reach > 2 || w.right != reach || w.top != reach || w.bottom != reach) return false;
    for (Kpr64s dy = -reach; dy <= reach; ++dy) {
        Kpr64s run = -1, count = 0;
        for (Kpr64s dx = -reach; dx <= reach; ++dx) count += taps.at(taps.reachX() + dx, taps.reachY() + dy) ? 1 : 0;
        while (run < reach && taps.at(taps.reachX() - run - 1, taps.reachY() + dy) &&
               taps.at(taps.reachX() + run + 1, taps.reachY() + dy)) {
            ++run;
        }
        if (count != 2 * run + 1 + (run < 0 ? 1 : 0)) return false;
        if (dy > 0 && (reaches.of[dy] != run || run > reaches.of[dy - 1])) return false;
        reaches.of[dy < 0 ? -dy : dy] = static_cast<Kpr8s>(run);
    }
    return reaches.of[0] == reach;
}

// The span with which TapWalk makes the fewest loads, its own making included; 1 for none.
Kpr8u bestSpan(const Taps& taps) {
    constexpr Kpr64s kMost = 64;
    Kpr64s best = 1, fewest = 0;
    eachRun(taps, [&](TapRun run) { fewest += run.length; });
    for (Kpr64s span = 2; span <= std::min(kMost, taps.width); ++span) {
        // A row's copy, its spans and their stores count as loads too.
        Kpr64s loads = 4;
        for (Kpr64s held = 1; held < span; held *= 4) loads += 4;
        eachRun(taps, [&](TapRun run) { loads += loadsOf(run.length, span); });
        if (loads < fewest) {
            fewest = loads;
            best = span;
        }
    }
    return static_cast<Kpr8u>(best);
}

MaskPlan planOf(const Taps& taps) {
    Kpr64s left = taps.width, right = -taps.width, top = taps.height, bottom = -taps.height, count = 0;
    eachRun(taps, [&](TapRun run) {
        left = std::min(left, run.column);
        right = std::max(right, run.column + run.length - 1);
        top = std::min(top, run.row);
        bottom = run.row;
        count += run.length;
    });
    const bool single = taps.width == 1 && taps.height == 1;
    if (count == 0 || single) return {MaskPlan::Copy, 1, {}, {}};
    const bool holdsPixel = left <= 0 && right >= 0 && top <= 0 && bottom >= 0;
    const bool full = count == (right - left + 1) * (bottom - top + 1);
    const Window window = {std::max(-left, Kpr64s{0}), std::max(right, Kpr64s{0}), std::max(-top, Kpr64s{0}),
                           std::max(bottom, Kpr64s{0})};
    MaskPlan plan = {MaskPlan::Walk, bestSpan(taps), {}, window};
    if (full && holdsPixel) {
        plan.kind = MaskPlan::Rectangle;
    } else if (isSmall(taps, window, plan.reaches)) {
        plan.kind = MaskPlan::Small;
    }
    return plan;
}

// Where the plan lies. The room for it is the slack of 104 bytes and more in the stated sizes, of which the header
// takes up to 40, the even address of the lists 1, and this alignment and that of the block 7 each.
template <typename Extent>
auto* planIn(const MorphState<Extent>& state) {
    const Kpr64s width = state.paddedWidth, height = state.paddedHeight;
    void* end = state.maskData + width * height;
    if (state.tapOffsets != nullptr) end = state.tapOffsets + (width + 1) * height;
    return alignedUp<MaskPlan>(end);
}
static_assert(sizeof(MorphState<Kpr32s>) + 1 + 7 + 7 + sizeof(MaskPlan) <= 104);
static_assert(sizeof(MorphState<Kpr64s>) + 1 + 7 + 7 + sizeof(MaskPlan) <= 128);

}  // namespace

template <typename Extent>
void fillState(void* spec, const Kpr8u* mask, Kpr64s width, Kpr64s height, Orientation turn, TapLists lists) {
    MorphState<Extent>& state = headerOf<MorphState<Extent>>(spec);
    auto* kept = reinterpret_cast<Kpr8u*>(&state + 1);
    const Taps taps{kept, width | 1, height | 1, {}};
    const Kpr64s total = taps.width * taps.height;
    // The zeros come in front; turning the whole by 180 degrees brings them to the end.
    const Kpr64s padX = taps.width - width, padY = taps.height - height;
    for (Kpr64s y = 0; y < taps.height; ++y) {
        for (Kpr64s x = 0; x < taps.width; ++x) {
            const bool set = x >= padX && y >= padY && mask[(y - padY) * width + x - padX] != 0;
            const Kpr64s i = y * taps.width + x;
            kept[turn == Orientation::AsGiven ? i : total - 1 - i] = set ? 255 : 0;
        }
    }
    state.maskData = kept;
    state.paddedWidth = static_cast<Extent>(taps.width);
    state.paddedHeight = static_cast<Extent>(taps.height);
    state.anchorX = static_cast<Kpr32s>(width >> 1);
    state.anchorY = static_cast<Kpr32s>(height >> 1);
    auto* after = reinterpret_cast<Kpr16u*>(kept + total + (total & 1));
    state.tapOffsets = lists == TapLists::Kept ? listTaps(after, taps) : nullptr;
    *planIn(state) = planOf(taps);
}

template <typename Extent>
Taps tapsOf(const void* spec) {
    const MorphState<Extent>& state = headerOf<MorphState<Extent>>(spec);
    return {state.maskData, state.paddedWidth, state.paddedHeight, *planIn(state)};
}

template void fillState<Kpr32s>(void*, const Kpr8u*, Kpr64s, Kpr64s, Orientation, TapLists);
template void fillState<Kpr64s>(void*, const Kpr8u*, Kpr64s, Kpr64s, Orientation, TapLists);
template Taps tapsOf<Kpr32s>(const void*);
template Taps tapsOf<Kpr64s>(const void*);

Bytes stateSize(Extents e) {
    const Bytes w = e.paddedWidth(), h = e.paddedHeight();
    return h * ((w + 1) * 2 + w) + 104;
}

// Padding makes at most 9 taps of 4 (2 x 2 becomes 3 x 3), so that the mask fits into three times its size.
Bytes stateSizeOfBits(Extents e) { return roundUp(Bytes{e.maskWidth} * e.maskHeight, 16) * 3 + 112; }

Bytes stateSizeLarge(Extents e) {
    const Bytes w = e.paddedWidth(), h = e.paddedHeight();
    return (w * 3 + 2) * h + 128 + stateSizeOfBits(e) + 16;
}

namespace {

// The ring of rows.
Bytes ringSize(Extents e, int elementSize, int channels) {
    const Bytes row = Bytes{e.width} * channels * elementSize;
    const Bytes mask = Bytes{e.paddedWidth()} * channels * elementSize;
    return roundUp(row, 32) * e.paddedHeight() + roundUp(mask, 32) + Bytes{16} * elementSize;
}

}  // namespace

Bytes workSize(Extents e, int elementSize, int channels) {
    const Bytes w = e.paddedWidth(), h = e.paddedHeight();
    const Bytes anchorX = e.maskWidth >> 1, anchorY = e.maskHeight >> 1;
    const Bytes wide = w + e.width - 1, tall = h + e.height - 1;
    Bytes pixels = 0;
    if (w >= e.width || h >= e.height) {
        pixels = wide * tall;
    } else {
        if (h - anchorY - 1 > 0) pixels = wide * (2 * h - anchorY - 2);
        if (w - anchorX - 1 > 0) pixels = std::max(pixels, tall * (2 * w - anchorX - 2));
    }
    return roundUp(pixels * elementSize * channels, 32) + ringSize(e, elementSize, channels) + 64;
}

Bytes workHeld(Extents e, int elementSize, int channels) {
    const Bytes w = e.paddedWidth(), h = e.paddedHeight();
    const Bytes wide = w + e.width - 1, tall = h + e.height - 1;
    const Bytes sides = tall * (3 * (w - 1) >> 1);  // when sized for an image larger than the mask
    const Bytes strips = h > 1 ? std::max(wide * (3 * (h - 1) >> 1), sides) : sides;
    return std::min(wide * tall, strips) * elementSize * channels + ringSize(e, elementSize, channels) + 64;
}

}  // namespace n0::morph
