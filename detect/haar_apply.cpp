// A stage applied to the windows that a mask has left.
//
// Windows are taken sixteen at a time, a lane each. Where they lie close together, the sixteen columns from the next
// one on are read, or the thirty-two, of which the windows are then pressed together: every second column is the usual
// step of a detector. Windows that lie alone are put on a list, across rows, and sixteen of them are read by gathers. A
// gather costs about four of the loads.
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

// Rectangles of sixteen neighbouring windows, as many of them as the part has. `at` is where the first window lies in
// the upright and in the tilted table.
template <typename T, typename Part>
struct Neighbours {
    const T* at[2];
    Part part;

    template <typename Order>
    KPR_INLINE Vec<T> rect(bool tilted, Kpr64s a, Kpr64s b, Kpr64s c, Kpr64s d) const {
        const T* const first = at[tilted];
        return Order::rect(load(first + a, part), load(first + b, part), load(first + c, part), load(first + d, part));
    }
};

// Of sixteen among thirty-two neighbours, of which the part has some of the second half.
template <typename T, typename Part>
struct Pressed {
    const T* at[2];
    Part part;
    Vec<Kpr32s> places;

    template <typename Order>
    KPR_INLINE Vec<T> rect(bool tilted, Kpr64s a, Kpr64s b, Kpr64s c, Kpr64s d) const {
        const Neighbours<T, All> lower{{at[0], at[1]}, {}};
        const Neighbours<T, Part> upper{{at[0] + 16, at[1] + 16}, part};
        return permute(lower.template rect<Order>(tilted, a, b, c, d), upper.template rect<Order>(tilted, a, b, c, d),
                       places);
    }
};

// Of sixteen windows anywhere.
template <typename T>
struct Scattered {
    const T* at[2];
    Vec<Kpr32s> index[2];

    template <typename Order>
    KPR_INLINE Vec<T> rect(bool tilted, Kpr64s a, Kpr64s b, Kpr64s c, Kpr64s d) const {
        const T* const first = at[tilted];
        const auto read = [&](Kpr64s offset) __attribute__((always_inline)) {
            return gather(first + offset, index[tilted]);
        };
        return Order::rect(read(a), read(b), read(c), read(d));
    }
};

// Windows that wait for others, until there are sixteen, and how their rectangles are added.
template <typename T, typename N, typename RectOrder>
struct Waiting {
    using Order = RectOrder;

    const T* first[2];  // where the first one lies in both tables
    int count = 0;
    Kpr32s index[2][16];  // elements from there on
    N norm[16];
    Kpr8u* mask[16];

    void add(const T* src, const T* tilt, N normValue, Kpr8u* maskAt) {
        if (count == 0) {
            first[0] = src;
            first[1] = tilt;
        }
        index[0][count] = static_cast<Kpr32s>(src - first[0]);
        index[1][count] = static_cast<Kpr32s>(tilt - first[1]);
        norm[count] = normValue;
        mask[count] = maskAt;
        ++count;
    }

    // The window can be told by 32 bits, like the others.
    [[nodiscard]] bool reaches(const T* src, const T* tilt) const {
        const auto near = [](Kpr64s distance) { return distance < 1 << 30 && distance > -(1 << 30); };
        return near(src - first[0]) && near(tilt - first[1]);
    }

    // Lanes without a window are the first one once more.
    void fillUp() {
        for (int i = count; i < 16; ++i) {
            index[0][i] = index[1][i] = 0;
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
        // Where rows of the mask share bytes, each row's windows are told by what the row before it has left.
        const bool shared = mask.step < roi.width;
        const Kpr64s strip = shared ? roi.width : kStrip;
        for (Kpr64s x = 0; x < roi.width; x += strip) {
            const Kpr64s end = std::min<Kpr64s>(x + strip, roi.width);
            for (int y = 0; y < roi.height; ++y) {
                const Row row{src.rows[y], tilt.rows[y], norm[y], mask[y]};
                walkRow(row, x, std::min(end, body));
                for (Kpr64s last = std::max(x, body); last < end; ++last) {
                    if (row.mask[last] != 0) wait(last_, row, last);
                }
                if (shared) evaluateWaiting();
            }
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

    // The columns from `x` to before `stop`.
    void walkRow(const Row& row, Kpr64s x, Kpr64s stop) {
        Kpr64s end = 0;  // behind the last window, once it is asked for
        for (; x < stop; x += 64) {
            const First part(std::min<Kpr64s>(stop - x, 64));
            for (Bits64 windows = loadMask<Kpr8u>(row.mask + x, part); windows != 0;) {
                const int first = std::countr_zero(windows);
                const Bits64 next16 = windows >> first & 0xffff, next32 = windows >> first & 0xffffffff;
                const int in16 = std::popcount(next16), in32 = std::popcount(next32);
                if (in16 < kClose && in32 < 2 * kClose) {
                    wait(alone_, row, x + first);
                    windows &= windows - 1;
                    continue;
                }
                if (end == 0) end = endOf(row.mask, stop);
                if (in32 <= 16 && in32 - in16 >= kClose / 2) {
                    evaluatePressed(row, x + first, end, next32);
                    windows &= ~(Bits64{0xffffffff} << first);
                } else {
                    evaluateNext(row, x + first, end, next16);
                    windows &= ~(Bits64{0xffff} << first);
                }
            }
        }
    }

    static Kpr64s endOf(const Kpr8u* mask, Kpr64s stop) {
        while (mask[stop - 1] == 0) --stop;
        return stop;
    }

    // The windows that bits of `which` tell, from column x on. What lies before the last window may be read.
    void evaluateNext(const Row& row, Kpr64s x, Kpr64s end, Bits64 which) {
        const auto at = [&](auto part) __attribute__((always_inline)) {
            return kept<InOrder>(load(row.norm + x, part),
                                 Neighbours<T, decltype(part)>{{row.src + x, row.tilt + x}, part});
        };
        leave(row.mask + x, which, x + 16 <= end ? at(All{}) : at(First{end - x}));
    }

    // Up to sixteen among thirty-two columns, some of them in the second half.
    void evaluatePressed(const Row& row, Kpr64s x, Kpr64s end, Bits64 which) {
        const auto places = placesOf(which);
        const auto at = [&](auto part) __attribute__((always_inline)) {
            return kept<InOrder>(permute(load(row.norm + x, All{}), load(row.norm + x + 16, part), places),
                                 Pressed<T, decltype(part)>{{row.src + x, row.tilt + x}, part, places});
        };
        leave(row.mask + x, which, scatterBits(x + 32 <= end ? at(All{}) : at(First{end - x - 16}), which));
    }

    void leave(Kpr8u* mask, Bits64 which, Bits64 kept) {
        store(mask, zero<Kpr8u>(), Lanes{which & ~kept});
        left_ += std::popcount(which & kept);
    }

    template <typename List>
    void wait(List& list, const Row& row, Kpr64s x) {
        if (list.count != 0 && !list.reaches(row.src + x, row.tilt + x)) evaluate(list);
        list.add(row.src + x, row.tilt + x, row.norm[x], row.mask + x);
        if (list.count == 16) evaluate(list);
    }

    void evaluateWaiting() {
        if (alone_.count != 0) evaluate(alone_);
        if (last_.count != 0) evaluate(last_);
    }

    template <typename List>
    [[gnu::noinline]] void evaluate(List& list) {
        list.fillUp();
        const Bits64 keep = kept<typename List::Order>(
            load(list.norm, All{}),
            Scattered<T>{{list.first[0], list.first[1]}, {load(list.index[0], All{}), load(list.index[1], All{})}});
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

    // Columns whose part of the table, as high as a window, stays in the first cache while the windows walk down.
    static constexpr Kpr64s kStrip = 256;
    static constexpr int kClose = 4;  // windows among sixteen columns that are worth the sixteen

    const KprHaarClassifier& state_;
    CornerRule corners_;
    Value threshold_;
    Kpr64s shift_;
    Kpr32s left_ = 0;
    Waiting<T, N, InOrder> alone_;
    Waiting<T, N, InPairs> last_;
};

// ---- plain forms

void putOffsets(const KprHaarClassifier& state, Kpr64s rowElements) {
    const auto* const features = reinterpret_cast<const HaarFeature*>(state.classifiers + state.classifierCount);
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
    Stage<T, N, VoteRule, OnTheFly> stage(*state, {{src.elements(), tilt.elements()}}, threshold, shift);
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
