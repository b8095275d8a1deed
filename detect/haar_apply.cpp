// A stage applied to the windows that a mask has left.
//
// Windows are taken sixteen at a time, a lane each. Where windows lie close together, the sixteen columns from the next
// one on are evaluated, whose elements come in one load; windows that lie alone are put on a list, across rows, and
// sixteen of them are evaluated by gathers. A gather costs about four of the loads.
//
// No element is read that no window of the mask needs, but for those between two such elements of a row.
#include "detect/haar_stage.h"
#include "frame/checks.h"

namespace n0::detect {
namespace {

// A table of elements T, where its windows begin.
template <typename T>
struct Table {
    Rows<const T> rows;

    Table(const T* first, Kpr64s step) : rows{first, step} {}
    Table(Rows<const T> table) : rows(table) {}
    [[nodiscard]] Kpr64s elements() const { return rows.step / Kpr64s{sizeof(T)}; }
};

// Reads sixteen neighbouring windows, as many of them as the part has.
template <typename T, typename Part>
struct Neighbours {
    const T* uprightAt;
    const T* tiltedAt;
    Part part;

    KPR_INLINE Vec<T> upright(Kpr64s offset) const { return load(uprightAt + offset, part); }
    KPR_INLINE Vec<T> tilted(Kpr64s offset) const { return load(tiltedAt + offset, part); }
};

// Reads sixteen windows anywhere.
template <typename T>
struct Scattered {
    const T* uprightAt;
    const T* tiltedAt;
    Vec<Kpr32s> uprightIndex, tiltedIndex;

    KPR_INLINE Vec<T> upright(Kpr64s offset) const { return gather(uprightAt + offset, uprightIndex); }
    KPR_INLINE Vec<T> tilted(Kpr64s offset) const { return gather(tiltedAt + offset, tiltedIndex); }
};

// Windows that wait for others, until there are sixteen.
template <typename T, typename N>
struct Waiting {
    const T* upright;  // where the first one lies
    const T* tilted;
    int count = 0;
    Kpr32s uprightIndex[16];  // elements from the first one on
    Kpr32s tiltedIndex[16];
    N norm[16];
    Kpr8u* mask[16];

    void add(const T* uprightAt, const T* tiltedAt, N normValue, Kpr8u* maskAt) {
        if (count == 0) {
            upright = uprightAt;
            tilted = tiltedAt;
        }
        uprightIndex[count] = static_cast<Kpr32s>(uprightAt - upright);
        tiltedIndex[count] = static_cast<Kpr32s>(tiltedAt - tilted);
        norm[count] = normValue;
        mask[count] = maskAt;
        ++count;
    }

    // The window can be told by 32 bits.
    [[nodiscard]] bool reaches(const T* uprightAt, const T* tiltedAt) const {
        constexpr Kpr64s limit = 1 << 30;
        return uprightAt - upright < limit && tiltedAt - tilted < limit;
    }

    // Lanes without a window are the first one once more.
    void fillUp() {
        for (int i = count; i < 16; ++i) {
            uprightIndex[i] = tiltedIndex[i] = 0;
            norm[i] = norm[0];
        }
    }
};

// What a form does: elements T, norms N, how classifiers vote, how features' corners are found, how a rectangle's four
// elements are added, also in the last columns of a row, and which columns these are.
template <typename T, typename N, typename VoteRule, typename CornerRule, bool lastColumnsInPairs = false>
class Stage {
    using Value = typename VoteRule::Value;

  public:
    Stage(const KprHaarClassifier& state, CornerRule corners, Value threshold, Kpr64s shift)
        : state_(state), corners_(corners), threshold_(threshold), shift_(shift) {}

    // The number of windows that are left.
    Kpr32s apply(Table<T> src, Table<T> tilt, Rows<const N> norm, Rows<Kpr8u> mask, KprSize roi) {
        const Kpr64s body = lastColumnsInPairs ? roi.width & ~3 : roi.width;
        for (int y = 0; y < roi.height; ++y) {
            const Row row{src.rows[y], tilt.rows[y], norm[y], mask[y]};
            walkRow(row, body);
            for (Kpr64s x = body; x < roi.width; ++x) {
                if (row.mask[x] != 0) wait<InPairs>(last_, row, x);
            }
            if (mask.step < roi.width) evaluateWaiting();  // the next row's windows are told by some of this row's
        }
        evaluateWaiting();
        return left_;
    }

  private:
    struct Row {
        const T* src;
        const T* tilt;
        const N* norm;
        Kpr8u* mask;
    };

    void walkRow(const Row& row, Kpr64s width) {
        Kpr64s end = 0;  // behind the row's last window
        for (Kpr64s x = 0; x < width; x += 64) {
            const First part(width - x < 64 ? width - x : 64);
            for (Bits64 windows = loadMask<Kpr8u>(row.mask + x, part); windows != 0;) {
                const int first = std::countr_zero(windows);
                const Bits64 next = windows >> first & 0xffff;
                if (std::popcount(next) < kClose) {
                    wait<InOrder>(alone_, row, x + first);
                    windows &= windows - 1;
                    continue;
                }
                if (end == 0) end = endOf(row.mask, width);
                evaluateNext(row, x + first, end, next);
                windows &= ~(Bits64{0xffff} << first);
            }
        }
    }

    static Kpr64s endOf(const Kpr8u* mask, Kpr64s width) {
        while (mask[width - 1] == 0) --width;
        return width;
    }

    // The windows that bits of `which` tell, from column x on. What lies before the row's last window may be read.
    void evaluateNext(const Row& row, Kpr64s x, Kpr64s end, Bits64 which) {
        const Bits64 kept = x + 16 <= end ? evaluateAt(row, x, All{}) : evaluateAt(row, x, First{end - x});
        store(row.mask + x, zero<Kpr8u>(), Lanes{which & ~kept});
        left_ += std::popcount(which & kept);
    }

    template <typename Part>
    Bits64 evaluateAt(const Row& row, Kpr64s x, Part part) const {
        return kept<InOrder>(load(row.norm + x, part), Neighbours<T, Part>{row.src + x, row.tilt + x, part});
    }

    template <typename Order>
    void wait(Waiting<T, N>& list, const Row& row, Kpr64s x) {
        if (list.count != 0 && !list.reaches(row.src + x, row.tilt + x)) evaluate<Order>(list);
        list.add(row.src + x, row.tilt + x, row.norm[x], row.mask + x);
        if (list.count == 16) evaluate<Order>(list);
    }

    void evaluateWaiting() {
        if (alone_.count != 0) evaluate<InOrder>(alone_);
        if (last_.count != 0) evaluate<InPairs>(last_);
    }

    template <typename Order>
    [[gnu::noinline]] void evaluate(Waiting<T, N>& list) {
        list.fillUp();
        const Bits64 keep = kept<Order>(
            load(list.norm, All{}),
            Scattered<T>{list.upright, list.tilted, load(list.uprightIndex, All{}), load(list.tiltedIndex, All{})});
        for (int i = 0; i < list.count; ++i) {
            if ((keep >> i & 1) == 0) {
                *list.mask[i] = 0;
            } else {
                ++left_;
            }
        }
        list.count = 0;
    }

    // The lanes whose windows pass.
    template <typename Order, typename Reader>
    KPR_INLINE Bits64 kept(Vec<N> norm, Reader reader) const {
        const auto sum = [&] {
            if constexpr (std::is_same_v<Value, Kpr32s>)
                return stageSum<VoteRule, Order>(state_, corners_, {norm, shift_}, reader);
            else
                return stageSum<VoteRule, Order>(state_, corners_, norm, reader);
        }();
        return static_cast<Mask<Value>>(~less(sum, broadcast(threshold_)));
    }

    static constexpr int kClose = 4;  // windows among sixteen columns that are worth the sixteen

    const KprHaarClassifier& state_;
    CornerRule corners_;
    Value threshold_;
    Kpr64s shift_;
    Kpr32s left_ = 0;
    Waiting<T, N> alone_;
    Waiting<T, N> last_;
};

// ---- plain forms

void putOffsets(const KprHaarClassifier& state, Kpr64s rowElements) {
    const HaarFeature* const features = reinterpret_cast<const HaarFeature*>(state.classifiers + state.classifierCount);
    for (int i = 0; i < state.featureTotal; ++i) {
        for (int k = 0; k < 4; ++k) {
            state.scratch[i][k] = static_cast<Kpr32s>(features[i].corner[k].y * rowElements + features[i].corner[k].x);
        }
    }
}

template <typename VoteRule, bool lastColumnsInPairs, typename T, typename N, typename Value>
KprStatus applyPlain(Table<T> src, Rows<const N> norm, Rows<Kpr8u> mask, KprSize roi, int* positive, Value threshold,
                     KprHaarClassifier* state, Kpr64s shift = 0) {
    if (state->scratch == nullptr) return kprStatusNullPtr;
    putOffsets(*state, src.elements());
    Stage<T, N, VoteRule, PutDown, lastColumnsInPairs> stage(*state, {state->scratch}, threshold, shift);
    *positive = stage.apply(src, src, norm, mask, roi);
    return kprStatusOk;
}

// ---- mixed forms

// The first window's element of a tilted table lies behind its first row and column.
template <typename T>
Table<T> tiltedTable(const T* tilt, Kpr64s step) {
    return {Rows<const T>{tilt, step}[1] + 1, step};
}

template <typename VoteRule, typename T, typename N, typename Value>
KprStatus applyMixed(Table<T> src, Table<T> tilt, Rows<const N> norm, Rows<Kpr8u> mask, KprSize roi, int* positive,
                     Value threshold, const KprHaarClassifier* state, Kpr64s shift = 0) {
    Stage<T, N, VoteRule, OnTheFly> stage(*state, {src.elements(), tilt.elements()}, threshold, shift);
    *positive = stage.apply(src, tilt, norm, mask, roi);
    return kprStatusOk;
}

constexpr KprStatus scaleHolds(int scaleFactor) { return failIf(scaleFactor > 0, kprStatusBadArg); }

}  // namespace
}  // namespace n0::detect

using namespace n0;
using namespace n0::detect;

KprStatus kpriApplyHaarClassifier_32f_C1R(const Kpr32f* src, int srcStep, const Kpr32f* norm, int normStep, Kpr8u* mask,
                                          int maskStep, KprSize roiSize, int* positive, Kpr32f threshold,
                                          KprHaarClassifier* state) {
    return firstFailure(notNull(src, norm, mask, positive, state), roiHolds(roiSize),
                        rowsFit<Kpr32f>(roiSize.width, srcStep, normStep), stepsAlign<Kpr32f>(srcStep, normStep))
               ?: applyPlain<Chained, true, Kpr32f, Kpr32f>({src, srcStep}, {norm, normStep}, {mask, maskStep}, roiSize,
                                                            positive, threshold, state);
}

KprStatus kpriApplyHaarClassifier_32s32f_C1R(const Kpr32s* src, int srcStep, const Kpr32f* norm, int normStep,
                                             Kpr8u* mask, int maskStep, KprSize roiSize, int* positive,
                                             Kpr32f threshold, KprHaarClassifier* state) {
    return firstFailure(notNull(src, norm, mask, positive, state), roiHolds(roiSize),
                        rowsFit<Kpr32f>(roiSize.width, srcStep, normStep), stepsAlign<Kpr32f>(srcStep, normStep))
               ?: applyPlain<Spread, false, Kpr32s, Kpr32f>({src, srcStep}, {norm, normStep}, {mask, maskStep}, roiSize,
                                                            positive, threshold, state);
}

KprStatus kpriApplyHaarClassifier_32s_C1RSfs(const Kpr32s* src, int srcStep, const Kpr32s* norm, int normStep,
                                             Kpr8u* mask, int maskStep, KprSize roiSize, int* positive,
                                             Kpr32s threshold, KprHaarClassifier* state, int scaleFactor) {
    return firstFailure(notNull(src, norm, mask, positive, state), roiHolds(roiSize),
                        rowsFit<Kpr32s>(roiSize.width, srcStep, normStep), stepsAlign<Kpr32s>(srcStep, normStep),
                        scaleHolds(scaleFactor))
               ?: applyPlain<Shifted, false, Kpr32s, Kpr32s>({src, srcStep}, {norm, normStep}, {mask, maskStep},
                                                             roiSize, positive, threshold, state, -Kpr64s{scaleFactor});
}

KprStatus kpriApplyMixedHaarClassifier_32f_C1R(const Kpr32f* src, int srcStep, const Kpr32f* tilt, int tiltStep,
                                               const Kpr32f* norm, int normStep, Kpr8u* mask, int maskStep,
                                               KprSize roiSize, int* positive, Kpr32f threshold,
                                               KprHaarClassifier* state) {
    return firstFailure(notNull(src, tilt, norm, mask, positive, state), roiHolds(roiSize),
                        rowsFit<Kpr32f>(roiSize.width, srcStep, normStep, tiltStep),
                        rowsFit<Kpr8u>(roiSize.width, maskStep), stepsAlign<Kpr32f>(srcStep, normStep, tiltStep))
               ?: applyMixed<Spread, Kpr32f, Kpr32f>({src, srcStep}, tiltedTable(tilt, tiltStep), {norm, normStep},
                                                     {mask, maskStep}, roiSize, positive, threshold, state);
}

KprStatus kpriApplyMixedHaarClassifier_32s32f_C1R(const Kpr32s* src, int srcStep, const Kpr32s* tilt, int tiltStep,
                                                  const Kpr32f* norm, int normStep, Kpr8u* mask, int maskStep,
                                                  KprSize roiSize, int* positive, Kpr32f threshold,
                                                  KprHaarClassifier* state) {
    return firstFailure(notNull(src, tilt, norm, mask, positive, state), roiHolds(roiSize),
                        rowsFit<Kpr32f>(roiSize.width, srcStep, normStep, tiltStep),
                        rowsFit<Kpr8u>(roiSize.width, maskStep), stepsAlign<Kpr32f>(srcStep, normStep, tiltStep))
               ?: applyMixed<Spread, Kpr32s, Kpr32f>({src, srcStep}, tiltedTable(tilt, tiltStep), {norm, normStep},
                                                     {mask, maskStep}, roiSize, positive, threshold, state);
}

KprStatus kpriApplyMixedHaarClassifier_32s_C1RSfs(const Kpr32s* src, int srcStep, const Kpr32s* tilt, int tiltStep,
                                                  const Kpr32s* norm, int normStep, Kpr8u* mask, int maskStep,
                                                  KprSize roiSize, int* positive, Kpr32s threshold,
                                                  KprHaarClassifier* state, int scaleFactor) {
    return firstFailure(notNull(src, tilt, norm, mask, positive, state), roiHolds(roiSize),
                        rowsFit<Kpr32s>(roiSize.width, srcStep, normStep, tiltStep),
                        rowsFit<Kpr8u>(roiSize.width, maskStep), stepsAlign<Kpr32s>(srcStep, normStep, tiltStep),
                        scaleHolds(scaleFactor))
               ?: applyMixed<Shifted, Kpr32s, Kpr32s>({src, srcStep}, tiltedTable(tilt, tiltStep), {norm, normStep},
                                                      {mask, maskStep}, roiSize, positive, threshold, state,
                                                      -Kpr64s{scaleFactor});
}
