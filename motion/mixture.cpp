// The foreground mixture model: each pixel keeps up to N modes, of a weight, a mean colour and one variance each, in
// the order of falling weights. A frame's colour x updates a pixel's modes, with alpha the learning rate and c = alpha
// * weightDecay:
//
//     for each mode in order, while there are any
//         w = fma(1 - alpha, w, -c)
//         as long as none has matched, with d = mean - x and d2 = dot(d, d):
//             background, if total < backgroundWeight and backgroundFactor * v > d2
//             matched, if matchFactor * v > d2:  w += alpha, k = alpha / w, mean -= k * d, v += k * (d2 - v) within the
//                 model's limits; the mode moves up past all that weigh no more; its w counts as 0 below, if c > w
//         any other with c > w gets the weight 0
//         one mode less, if c > w;  total += w
//     the weights are divided by their total
//     if none has matched, x makes a new mode of weight alpha, or 1 where it is the only one: behind the others, whose
//         weights are multiplied by 1 - alpha, or in place of the last one; it moves up past all that do not weigh more
//         than alpha
//
// Every operation is rounded in single precision, dot(a, b) is (a0 * b0 + a1 * b1) + a2 * b2.
//
// Sixteen pixels are updated at a time, with a mask for each condition.
#include "frame/checks.h"
#include "primitives/math.h"
#include "primitives/rows.h"
#include "primitives/simd_pixels.h"
#include "primitives/sizes.h"
#include "primitives/workspace.h"

namespace n0::motion {
namespace {

// ---- the state: a header at the first multiple of 32 bytes, the number of modes of each pixel, three tables of
// pointers to an array for each slot, and those arrays. A slot has a weight and an index a pixel. The index names the
// array of means in which the slot's mode lives: four floats a pixel, three colours and the variance. Sorting moves
// weights and indices, never means.

constexpr int kAlignment = 32, kHeaderBytes = 128;

struct Mixture {
    uint32_t frames;
    Kpr8u* counts;
    KprFGMMModel model;
    Kpr32s mostModes;
    Kpr32f** weights;
    Kpr32f** means;
    Kpr32s** indices;
};
static_assert(sizeof(Mixture) <= kHeaderBytes && sizeof(KprFGMMModel) == 44);

Bytes stateBytes(KprSize roi, int modes) {
    const Bytes area = Bytes{roi.width} * roi.height, n = modes;
    return roundUp(16 * area * n, 32) + 2 * roundUp(4 * area * n, 32) + 3 * roundUp(8 * n, 32) + roundUp(area, 32) +
           416;
}

KprStatus makeState(KprSize roi, int modes, const KprFGMMModel& model, KprFGMMState* state) {
    const Kpr64s area = Kpr64s{roi.width} * roi.height;
    const auto bytes = static_cast<Kpr64s>(stateBytes(roi, modes));
    walkRow<kLanes<Kpr8u>>(
        bytes, [](auto part, Kpr8u* p) { store(p, zero<Kpr8u>(), part); }, reinterpret_cast<Kpr8u*>(state));
    Workspace memory(state, bytes);
    auto& mixture = *reinterpret_cast<Mixture*>(memory.take<char>(kHeaderBytes, kAlignment));
    mixture.model = model;
    mixture.model.modeCount = mixture.mostModes = modes;
    mixture.counts = memory.take<Kpr8u>(roundUp(area, 32));
    const Kpr64s table = roundUp(Kpr64s{modes}, 4);  // pointers in whole groups of 32 bytes
    mixture.weights = memory.take<Kpr32f*>(table);
    mixture.means = memory.take<Kpr32f*>(table);
    mixture.indices = memory.take<Kpr32s*>(table);
    for (int m = 0; m < modes; ++m) mixture.weights[m] = memory.take<Kpr32f>(area);
    for (int m = 0; m < modes; ++m) mixture.means[m] = memory.take<Kpr32f>(4 * area);
    for (int m = 0; m < modes; ++m) {
        mixture.indices[m] = memory.take<Kpr32s>(area);
        walkRow<kLanes<Kpr32s>>(
            area, [m](auto part, Kpr32s* p) { store(p, broadcast(m), part); }, mixture.indices[m]);
    }
    return kprStatusOk;
}

// ---- sixteen pixels of a frame

using Floats = Vec<Kpr32f>;
using Integers = Vec<Kpr32s>;
using Pixels = Mask<Kpr32f>;

KPR_INLINE Floats dot(const Floats* a, const Floats* b) { return (a[0] * b[0] + a[1] * b[1]) + a[2] * b[2]; }

struct Rates {
    Kpr32f alpha, decay;
};

// Colours and variance of a mode.
struct Mode {
    Floats colour[3];
    Floats variance;
};

template <typename Part>
class Group {
  public:
    Group(const Mixture& mixture, Rates rates, Kpr64s pixel, Part part)
        : state_(mixture),
          model_(mixture.model),
          rates_(rates),
          pixel_(pixel),
          part_(part),
          limit_(std::min(mixture.model.modeCount, 255)) {
        count_ = min(loadAs<Kpr32s>(state_.counts + pixel, part), broadcast(limit_));
        all_ = static_cast<Pixels>(lanesOf(part).bits);
    }

    // Takes in a frame's colours; gives 0 for the background, the shadow's label or 255.
    KPR_INLINE Integers update(const Floats* x) {
        matchModes(x);
        normalise();
        if (const auto added = static_cast<Pixels>(all_ & ~matched_)) addMode(x, added);
        storeAs(state_.counts + pixel_, count_, part_);
        const auto foreground = static_cast<Pixels>(all_ & ~background_);
        const Integers result = keep(foreground, broadcast(255));
        if (model_.shadowEnabled != 0 && foreground != 0)
            return select(shadows(x, foreground), broadcast(Kpr32s{model_.shadowLabel}), result);
        return result;
    }

    // The mean of the modes that make the background, by their weights. Of a pixel without modes no number.
    KPR_INLINE void background(Floats* colour) const {
        Floats sum = zero<Kpr32f>();
        for (int c = 0; c < 3; ++c) colour[c] = sum;
        Pixels open = all_;
        for (int m = 0;; ++m) {
            open = static_cast<Pixels>(open & having(m) & ~less(broadcast(model_.backgroundWeight), sum));
            if (open == 0) break;
            const Floats w = load(weightAt(m), part_);
            sum = select(open, sum + w, sum);
            eachArray(m, open, [&](Kpr32s array, Pixels here) {
                const Mode mode = meansOf(array);
                for (int c = 0; c < 3; ++c) colour[c] = select(here, fma(w, mode.colour[c], colour[c]), colour[c]);
            });
        }
        for (int c = 0; c < 3; ++c) colour[c] = colour[c] / sum;
    }

  private:
    KPR_INLINE static Lanes lanesOf(All) { return {0xffff}; }
    KPR_INLINE static Lanes lanesOf(Lanes part) { return part; }

    [[nodiscard]] KPR_INLINE Kpr32f* weightAt(int m) const { return state_.weights[m] + pixel_; }
    [[nodiscard]] KPR_INLINE Kpr32s* indexAt(int m) const { return state_.indices[m] + pixel_; }
    [[nodiscard]] KPR_INLINE Pixels having(int m) const {  // pixels with a mode in slot m
        return static_cast<Pixels>(less(broadcast(m), count_) & all_);
    }

    // The sixteen pixels of one array of means, and back.
    [[nodiscard]] KPR_INLINE Mode meansOf(int array) const {
        const Kpr32f* const at = state_.means[array] + 4 * pixel_;
        FourOf pixels;
        eachOfFour(part_, [&](auto part, int k) { pixels.v[k] = load(at + Kpr64s{kLanes<Kpr32f>} * k, part); });
        const FourOf planes = transposed(pixels);
        return {{planes.v[0], planes.v[1], planes.v[2]}, planes.v[3]};
    }
    KPR_INLINE void putMeans(int array, const Mode& mode) const {
        Kpr32f* const at = state_.means[array] + 4 * pixel_;
        const FourOf pixels = interleaved({{mode.colour[0], mode.colour[1], mode.colour[2], mode.variance}});
        eachOfFour(part_, [&](auto part, int k) { store(at + Kpr64s{kLanes<Kpr32f>} * k, pixels.v[k], part); });
    }
    KPR_INLINE static void blend(Mode& to, Pixels lanes, const Mode& from) {
        for (int c = 0; c < 3; ++c) to.colour[c] = select(lanes, from.colour[c], to.colour[c]);
        to.variance = select(lanes, from.variance, to.variance);
    }

    // visit(array, its pixels) for every array of means that some of the pixels name in slot m: mostly array m alone.
    KPR_INLINE void eachArray(int m, Pixels lanes, auto visit) const {
        const Kpr32s* const indices = indexAt(m);
        const Integers index = load(indices, part_);
        for (Kpr32s array = m; lanes != 0; array = indices[std::countr_zero(static_cast<unsigned>(lanes))]) {
            const auto here = static_cast<Pixels>(lanes & equal(index, broadcast(array)));
            lanes = static_cast<Pixels>(lanes & ~here);
            if (here != 0) visit(array, here);
            if (lanes == 0) break;
        }
    }

    KPR_INLINE void matchModes(const Floats* x) {
        const Floats kept = broadcast(1.0F - rates_.alpha), alpha = broadcast(rates_.alpha);
        const Floats decay = broadcast(rates_.decay), minusDecay = broadcast(-rates_.decay);
        total_ = zero<Kpr32f>();
        for (int m = 0;; ++m) {
            const Pixels present = having(m);
            if (present == 0) break;
            Floats w = fma(kept, load(weightAt(m), part_), minusDecay);
            Pixels hits = 0;
            if (const auto open = static_cast<Pixels>(present & ~matched_)) {
                eachArray(m, open, [&](Kpr32s array, Pixels here) {
                    Mode mode = meansOf(array);
                    const Floats v = mode.variance;
                    const Floats d[] = {mode.colour[0] - x[0], mode.colour[1] - x[1], mode.colour[2] - x[2]};
                    const Floats d2 = dot(d, d);
                    background_ =
                        static_cast<Pixels>(background_ | (here & less(total_, broadcast(model_.backgroundWeight)) &
                                                           less(d2, broadcast(model_.backgroundFactor) * v)));
                    const auto hit = static_cast<Pixels>(here & less(d2, broadcast(model_.matchFactor) * v));
                    if (hit == 0) return;
                    hits = static_cast<Pixels>(hits | hit);
                    w = select(hit, w + alpha, w);
                    const Floats k = alpha / w;
                    const Floats moved = v + k * (d2 - v);
                    const Floats held = min(broadcast(model_.varianceMax), max(broadcast(model_.varianceMin), moved));
                    const Mode next = {
                        {mode.colour[0] - k * d[0], mode.colour[1] - k * d[1], mode.colour[2] - k * d[2]}, held};
                    blend(mode, hit, next);
                    putMeans(array, mode);
                });
            }
            const auto fading = static_cast<Pixels>(less(w, decay) & present);
            const Floats counted = select(fading, zero<Kpr32f>(), w);
            count_ = select(fading, count_ - broadcast(1), count_);
            total_ = select(present, total_ + counted, total_);
            const Floats stored = select(hits, w, counted);
            store(weightAt(m), stored, part_ & Lanes{present});
            if (hits != 0 && m > 0) moveUp(m, hits, [&](Floats above) { return atMost(above, w); });
            matched_ = static_cast<Pixels>(matched_ | hits);
        }
    }

    // Slot m of these pixels changes places with the one above it, and so on, as long as `passes(weight above)`.
    KPR_INLINE void moveUp(int m, Pixels lanes, auto passes) {
        for (; m > 0 && lanes != 0; --m) {
            const Floats above = load(weightAt(m - 1), part_), own = load(weightAt(m), part_);
            lanes = static_cast<Pixels>(lanes & passes(above));
            exchange(m, lanes, above, own);
        }
    }
    KPR_INLINE void exchange(int m, Pixels lanes, Floats above, Floats own) {
        const auto part = part_ & Lanes{lanes};
        const Integers aboveIndex = load(indexAt(m - 1), part_), ownIndex = load(indexAt(m), part_);
        store(weightAt(m - 1), own, part);
        store(weightAt(m), above, part);
        store(indexAt(m - 1), ownIndex, part);
        store(indexAt(m), aboveIndex, part);
    }

    // A total of 0 leaves the weights as they are.
    KPR_INLINE void normalise() {
        const auto divided = static_cast<Pixels>(~equal(total_, zero<Kpr32f>()));
        for (int m = 0;; ++m) {
            const auto present = static_cast<Pixels>(having(m) & divided);
            if (present == 0) return;
            store(weightAt(m), load(weightAt(m), part_) / total_, part_ & Lanes{present});
        }
    }

    KPR_INLINE void addMode(const Floats* x, Pixels added) {
        const Floats alpha = broadcast(rates_.alpha), kept = broadcast(1.0F - rates_.alpha);
        const Integers slot = min(count_, broadcast(limit_ - 1));
        count_ = select(added, slot + broadcast(1), count_);
        const Mode mode = {{x[0], x[1], x[2]}, broadcast(model_.varianceInit)};
        for (int m = 0; m < limit_; ++m) {
            const auto before = static_cast<Pixels>(added & less(broadcast(m), slot));
            const auto own = static_cast<Pixels>(added & equal(broadcast(m), slot));
            if ((before | own) == 0) break;
            const Floats alone = broadcast(m == 0 ? 1.0F : rates_.alpha);
            const Floats w = select(own, alone, load(weightAt(m), part_) * kept);
            store(weightAt(m), w, part_ & Lanes{static_cast<Pixels>(before | own)});
            eachArray(m, own, [&](Kpr32s array, Pixels here) {
                Mode all = meansOf(array);
                blend(all, here, mode);
                putMeans(array, all);
            });
        }
        for (int m = limit_ - 1; m > 0; --m) {  // a refusal does not end it
            const auto lanes = static_cast<Pixels>(added & ~less(slot, broadcast(m)));
            if (lanes == 0) continue;
            const Floats above = load(weightAt(m - 1), part_), own = load(weightAt(m), part_);
            exchange(m, static_cast<Pixels>(lanes & ~less(alpha, above)), above, own);
        }
    }

    // Which of the pixels are a mode of the background, darker by the same share in each channel.
    KPR_INLINE Pixels shadows(const Floats* x, Pixels open) {
        Pixels found = 0;
        Floats total = zero<Kpr32f>();
        const Floats enough = broadcast(model_.backgroundWeight);
        for (int m = 0;; ++m) {
            open = static_cast<Pixels>(open & having(m));
            if (open == 0) return found;
            eachArray(m, open, [&](Kpr32s array, Pixels here) {
                const Mode mode = meansOf(array);
                const Floats numerator = dot(mode.colour, x), denominator = dot(mode.colour, mode.colour);
                const auto black = equal(denominator, zero<Kpr32f>());
                open = static_cast<Pixels>(open & ~(here & black));
                const auto darker =
                    static_cast<Pixels>(here & ~black & atMost(numerator, denominator) &
                                        atMost(broadcast(model_.shadowRatioMin) * denominator, numerator));
                if (darker == 0) return;
                const Floats a = numerator / denominator;
                const Floats e[] = {a * mode.colour[0] - x[0], a * mode.colour[1] - x[1], a * mode.colour[2] - x[2]};
                const Floats near = broadcast(model_.backgroundFactor) * mode.variance * a * a;
                found = static_cast<Pixels>(found | (darker & less(dot(e, e), near)));
            });
            total = total + load(weightAt(m), part_);
            open = static_cast<Pixels>(open & ~found & ~less(enough, total));
        }
    }

    const Mixture& state_;
    const KprFGMMModel& model_;
    Rates rates_;
    Kpr64s pixel_;
    Part part_;
    Kpr32s limit_;  // of modes: a pixel counts them in a byte
    Integers count_;
    Floats total_;
    Pixels all_, matched_ = 0, background_ = 0;
};

// ---- frames

Mixture& mixtureIn(KprFGMMState* state) { return *alignedUp<Mixture>(state, kAlignment); }
const Mixture& mixtureIn(const KprFGMMState* state) { return *alignedUp<Mixture>(state, kAlignment); }

// The first frame settles its own rate, and so does any whose rate is given as a negative number.
Rates ratesOf(const Mixture& mixture, Kpr64f given) {
    const uint32_t settling = std::min(2 * mixture.frames, mixture.model.historyLength);
    const Kpr64f rate = given >= 0.0 && mixture.frames > 1 ? given : 1.0 / settling;
    const auto alpha = static_cast<Kpr32f>(rate);
    return {alpha, static_cast<Kpr32f>(Kpr64f{alpha} * mixture.model.weightDecay)};
}

KprStatus takeModel(Mixture& mixture, const KprFGMMModel* model) {
    if (model == nullptr) return kprStatusOk;
    if (model->modeCount < 1 || model->modeCount > mixture.mostModes) return kprStatusBadArg;
    mixture.model = *model;
    return kprStatusOk;
}

KprStatus findForeground(Rows<const Kpr8u> src, Rows<Kpr8u> dst, KprSize roi, Mixture& mixture, Kpr64f rate) {
    ++mixture.frames;
    const Rates rates = ratesOf(mixture, rate);
    for (Kpr64s y = 0; y < roi.height; ++y) {
        const Kpr8u* const from = src[y];
        Kpr8u* const to = dst[y];
        walkStretches<kLanes<Kpr32f>, 1>(roi.width, [&]<int>(auto part, Kpr64s x) {
            Floats colour[3];
            loadThree(from + 3 * x, part, colour);
            Group group(mixture, rates, y * roi.width + x, part);
            storeAs(to + x, group.update(colour), part);
        });
    }
    return kprStatusOk;
}

KprStatus showBackground(Rows<Kpr8u> dst, KprSize roi, const Mixture& mixture) {
    for (Kpr64s y = 0; y < roi.height; ++y) {
        Kpr8u* const to = dst[y];
        walkStretches<kLanes<Kpr32f>, 1>(roi.width, [&]<int>(auto part, Kpr64s x) {
            Floats colour[3], turns[3];
            Group(mixture, {}, y * roi.width + x, part).background(colour);
            interleaveThree(colour[0], colour[1], colour[2], turns);
            eachOfThree(part, kLanes<Kpr32f>, [&](auto some, int k) {
                storeAs(to + 3 * x + Kpr64s{kLanes<Kpr32f>} * k, toInteger(turns[k]), some);
            });
        });
    }
    return kprStatusOk;
}

constexpr KprStatus stepPositive(int step) { return failIf(step < 1, kprStatusBadStep); }

}  // namespace
}  // namespace n0::motion

using namespace n0;
using namespace n0::motion;

KprStatus kpriFGMMGetBufferSize_8u_C3R(KprSize roiSize, int maxModes, int* bufferSize) {
    return firstFailure(notNull(bufferSize), roiHolds(roiSize), failIf(maxModes < 1, kprStatusBadArg))
               ?: putSize(stateBytes(roiSize, maxModes), bufferSize);
}

KprStatus kpriFGMMInit_8u_C3R(KprSize roiSize, int maxModes, const KprFGMMModel* model, KprFGMMState* state) {
    return firstFailure(notNull(model, state), roiHolds(roiSize), failIf(maxModes < 1, kprStatusBadArg))
               ?: makeState(roiSize, maxModes, *model, state);
}

KprStatus kpriFGMMForeground_8u_C3R(const Kpr8u* src, int srcStep, Kpr8u* dst, int dstStep, KprSize roiSize,
                                    KprFGMMState* state, const KprFGMMModel* model, double learningRate) {
    return firstFailure(notNull(src, dst, state), stepPositive(srcStep), stepPositive(dstStep), roiHolds(roiSize))
               ?: takeModel(mixtureIn(state), model)
               ?: findForeground({src, srcStep}, {dst, dstStep}, roiSize, mixtureIn(state), learningRate);
}

KprStatus kpriFGMMBackground_8u_C3R(Kpr8u* dst, int dstStep, KprSize roiSize, const KprFGMMState* state) {
    return firstFailure(notNull(dst, state), stepPositive(dstStep), roiHolds(roiSize))
               ?: showBackground({dst, dstStep}, roiSize, mixtureIn(state));
}
