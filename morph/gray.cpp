// Gray morphology. With m the heights of the taps and (ax, ay) the anchor
//
//     dilation: dst(x, y) = max of src(x + i - ax, y + j - ay) + m(i, j)
//     erosion:  dst(x, y) = min of src(x + i - ax, y + j - ay) - m(i, j)
//
// Bytes are added with saturation, which an extremum does not mind; floats are added one by one. Source rows go into a
// ring with their borders, so that every tap is a load and the destination may be the source.
#include "morph/gray.h"

#include "frame/checks.h"
#include "morph/gray_box.h"
#include "morph/gray_rules.h"
#include "primitives/axis.h"
#include "primitives/bytes.h"
#include "primitives/kit.h"
#include "primitives/workspace.h"

namespace n0::morph {
namespace {

template <typename Rule>
class GrayWalk {
  public:
    using T = typename Rule::T;

    GrayWalk(Rows<const T> src, Rows<T> dst, KprSize roi, KprBorderType word, T value, GrayMask<T> mask, Kpr8u* buffer)
        : src_(src),
          dst_(dst),
          roi_(roi),
          border_(word),
          leavesOut_(border_.base == kprBorderDefault),
          value_(value),
          mask_(mask) {
        if (leavesOut_) border_.base = kprBorderConstant;
        if (leavesOut_ && mask.header->hasFiller != 0) {
            leavesOut_ = false;
            value_ = filler();
        }
        rows_ = rowsOf(roi.height, border_, LonePixel::Reflects);
        columns_ = columnsOf(roi.width, border_, LonePixel::Reflects);
        const Kpr64s maskWidth = mask.header->width, maskHeight = mask.header->height;
        extends_ = extendsRows(roi.width, maskWidth);
        stride_ = grayStride(roi.width, maskWidth);
        reach_ = std::max(mask.above(), mask.below());
        Workspace work(buffer, static_cast<Kpr64s>(grayBufferBytes<T>(roi, {mask.header->width, mask.header->height})));
        window_ = work.take<const T*>(maskHeight);
        ring_ = work.take<T>((2 * reach_ + 1) * stride_);
        constant_ = work.take<T>(stride_);
        std::fill(constant_, constant_ + stride_, value_);
    }

    KprStatus run() {
        const Kpr64s end = endOf(rows_, mask_.below());
        Kpr64s next = rows_.lowInMemory ? -mask_.above() : 0;
        for (Kpr64s y = 0; y < roi_.height; ++y) {
            for (; next < end && next <= y + reach_; ++next) enter(next);
            bool complete = true;
            for (Kpr64s j = 0; j < mask_.header->height; ++j) {
                const Kpr64s from = rows_(y - mask_.above() + j);
                window_[j] = from != kConstant ? slot(from) : leavesOut_ ? nullptr : constant_;
                complete &= window_[j] != nullptr;
            }
            if (extends_)
                filterRow(y, complete);
            else
                lookUpRow(y);
        }
        return kprStatusOk;
    }

  private:
    static constexpr Kpr64s kStep = kLanes<T>;

    // Of bytes under heights none of which is above 0, what a sum cannot pass; of floats a NaN, which only a pixel with
    // nothing else under its taps would show: one with a tap of its own has something.
    static T filler() { return std::is_integral_v<T> ? Rule::kNothingLeft : std::numeric_limits<T>::quiet_NaN(); }

    T* slot(Kpr64s row) const {
        const Kpr64s slots = 2 * reach_ + 1, place = row % slots;
        return ring_ + (place < 0 ? place + slots : place) * stride_;
    }

    // Columns of the source that are pixels, beside those of the ROI those of flagged sides.
    [[nodiscard]] Kpr64s firstReal() const { return columns_.lowInMemory ? -mask_.left() : 0; }
    [[nodiscard]] Kpr64s endReal() const { return endOf(columns_, mask_.right()); }

    // A row of the source goes into the ring, with its border or, for wide masks, as it is.
    void enter(Kpr64s row) {
        const T* const from = src_[row];
        T* const to = slot(row);
        const auto copy = [](T* out, const T* in, Kpr64s count) {
            copyBytes(reinterpret_cast<Kpr8u*>(out), reinterpret_cast<const Kpr8u*>(in), count * Kpr64s{sizeof(T)});
        };
        if (!extends_) return copy(to, from, roi_.width);
        const Kpr64s first = firstReal(), end = endReal(), last = roi_.width + mask_.right();
        const auto make = [&](Kpr64s x) {
            const Kpr64s column = columns_(x);
            to[x + mask_.left()] = column == kConstant ? value_ : from[column];
        };
        for (Kpr64s x = -mask_.left(); x < first; ++x) make(x);
        copy(to + first + mask_.left(), from + first, end - first);
        for (Kpr64s x = end; x < last; ++x) make(x);
    }

    void filterRow(Kpr64s y, bool complete) {
        T* const out = dst_[y];
        walkStretches<kStep, 4>(roi_.width, [&]<int vectors>(auto part, Kpr64s x) {
            const bool inside = x - mask_.left() >= firstReal() && x + vectors * kStep + mask_.right() <= endReal();
            if (leavesOut_ && !(complete && inside)) {
                for (int v = 0; v < vectors; ++v) partly(part, out, x + v * kStep);
            } else if (mask_.header->flat != 0) {
                extremum<vectors, true>(part, out, x);
            } else {
                extremum<vectors, false>(part, out, x);
            }
        });
    }

    // A value to which any candidate is preferred.
    KPR_INLINE static Vec<T> start() {
        if constexpr (std::is_integral_v<T>) return broadcast(Rule::kNothingLeft);
        if constexpr (!std::is_integral_v<T>) return broadcast(std::numeric_limits<T>::quiet_NaN());
    }
    KPR_INLINE static Vec<T> heightOf(Height<T> height) { return broadcast(static_cast<T>(height)); }

    template <int vectors, bool flat, typename Part>
    KPR_INLINE void extremum(Part part, T* out, Kpr64s x) const {
        Vec<T> v[vectors];
        for (auto& one : v) one = start();
        const auto join = [&](const T* row, Kpr64s from, Kpr64s to, auto change) __attribute__((always_inline)) {
            for (Kpr64s tap = from; tap < to; ++tap) {
                const T* const pixels = row + mask_.taps[tap].column;
                const Height<T> height = mask_.taps[tap].height;
                for (int i = 0; i < vectors; ++i)
                    v[i] = Rule::join(v[i], change(load(pixels + i * kStep, part), height));
            }
        };
        const auto raise = [](Vec<T> pixels, Height<T> h) { return Rule::raise(pixels, heightOf(h)); };
        const auto lower = [](Vec<T> pixels, Height<T> h) { return Rule::lower(pixels, heightOf(-h)); };
        for (Kpr64s j = 0; j < mask_.header->height; ++j) {
            const GrayRow row = mask_.rows[j], after = mask_.rows[j + 1];
            if constexpr (flat) {
                join(window_[j] + x, row.first, after.first, [](Vec<T> pixels, Height<T>) { return pixels; });
            } else {
                join(window_[j] + x, row.first, row.falling, raise);
                join(window_[j] + x, row.falling, after.first, lower);
            }
        }
        if constexpr (flat) {
            const Height<T> height = mask_.taps[0].height;
            for (auto& one : v) one = height < 0 ? lower(one, height) : raise(one, height);
        }
        for (int i = 0; i < vectors; ++i) store(out + x + i * kStep, v[i], part);
    }

    // Where some of the taps have nothing under them.
    template <typename Part>
    void partly(Part part, T* out, Kpr64s x) const {
        Vec<T> v = start();
        Bits64 any = 0;
        for (Kpr64s j = 0; j < mask_.header->height; ++j) {
            if (window_[j] == nullptr) continue;
            for (Kpr64s tap = mask_.rows[j].first; tap < mask_.rows[j + 1].first; ++tap) {
                const Height<T> height = mask_.taps[tap].height;
                const Kpr64s column = x - mask_.left() + mask_.taps[tap].column;
                Lanes there = First(std::clamp<Kpr64s>(endReal() - column, 0, kStep));
                if (column < firstReal())
                    there.bits &= firstReal() - column < kStep ? ~Bits64{0} << (firstReal() - column) : 0;
                there = part & there;
                const auto pixels = load(window_[j] + x + mask_.taps[tap].column, there);
                const auto candidate =
                    height < 0 ? Rule::lower(pixels, heightOf(-height)) : Rule::raise(pixels, heightOf(height));
                v = merge(there, Rule::join(v, candidate), v);
                any |= there.bits;
            }
        }
        store(out + x, merge(Lanes{any}, v, broadcast(Rule::kNothingLeft)), part);
    }

    // Of a mask much wider than the image: there is no room for the borders of its rows.
    void lookUpRow(Kpr64s y) const {
        for (Kpr64s x = 0; x < roi_.width; ++x) {
            auto v = start();
            bool any = false;
            for (Kpr64s j = 0; j < mask_.header->height; ++j) {
                if (window_[j] == nullptr) continue;
                for (Kpr64s tap = mask_.rows[j].first; tap < mask_.rows[j + 1].first; ++tap) {
                    const Kpr64s column = columns_(x - mask_.left() + mask_.taps[tap].column);
                    if (column == kConstant && leavesOut_) continue;
                    const Height<T> height = mask_.taps[tap].height;
                    const auto pixel = broadcast(pixelAt(y, j, column));
                    v = Rule::join(
                        v, height < 0 ? Rule::lower(pixel, heightOf(-height)) : Rule::raise(pixel, heightOf(height)));
                    any = true;
                }
            }
            dst_[y][x] = any ? firstLane(v) : Rule::kNothingLeft;
        }
    }

    // Columns of flagged sides are not in the ring, and no call writes them.
    [[nodiscard]] T pixelAt(Kpr64s y, Kpr64s j, Kpr64s column) const {
        if (column == kConstant) return value_;
        if (column >= 0 && column < roi_.width) return window_[j][column];
        const Kpr64s row = rows_(y - mask_.above() + j);
        return row == kConstant ? value_ : src_[row][column];
    }

    Rows<const T> src_;
    Rows<T> dst_;
    KprSize roi_;
    Border border_;
    bool leavesOut_;  // what lies outside takes no part
    T value_;
    GrayMask<T> mask_;
    Axis rows_{}, columns_{};
    bool extends_;
    Kpr64s stride_, reach_;
    const T** window_;  // the rows under those of the mask; null where there is none
    T* ring_;
    T* constant_;
};

template <template <typename> class Rule, typename T>
KprStatus grayExtremum(const T* src, int srcStep, T* dst, int dstStep, KprSize roi, KprBorderType word, T value,
                       const KprMorphGrayState* spec, Kpr8u* buffer) {
    const GrayMask<T> mask(spec);
    if constexpr (std::is_same_v<T, Kpr8u>) {
        if (isBox(mask)) {
            const Bytes bytes = grayBufferBytes<T>(roi, {mask.header->width, mask.header->height});
            return boxExtremum<Rule<T>>({src, srcStep}, {dst, dstStep}, roi, word, value, mask,
                                        {buffer, static_cast<Kpr64s>(bytes)});
        }
    }
    if (mask.header->taps > 0)
        return GrayWalk<Rule<T>>({src, srcStep}, {dst, dstStep}, roi, word, value, mask, buffer).run();
    if constexpr (std::is_same_v<T, Kpr8u>) return kpriCopy_8u_C1R(src, srcStep, dst, dstStep, roi);
    if constexpr (std::is_same_v<T, Kpr32f>) return kpriCopy_32f_C1R(src, srcStep, dst, dstStep, roi);
}

template <typename T>
KprStatus callServes(const T* src, int srcStep, const T* dst, int dstStep, KprSize roi, KprBorderType word,
                     const KprMorphGrayState* spec, const Kpr8u* buffer) {
    return firstFailure(notNull(src, dst, spec, buffer), roiHolds(roi), rowsFit<T>(roi.width, srcStep, dstStep),
                        stepsAlign<T>(srcStep, dstStep), borderServesMorphology(word))
               ?: failIf(GrayMask<T>(spec).header->magic != kGrayMagic<T>, kprStatusBadContext);
}

template <typename T>
KprStatus putSizes(KprSize roi, KprSize mask, int* specSize, int* bufferSize) {
    int spec = 0;
    const KprStatus status =
        putSize(grayBlockBytes<T>(mask), &spec) ?: putSize(grayBufferBytes<T>(roi, mask), bufferSize);
    if (status == kprStatusOk) *specSize = spec;
    return status;
}

template <typename T>
KprStatus fillBlock(const Height<T>* mask, KprSize size, KprPoint anchor, KprMorphGrayState* spec) {
    auto* const header = reinterpret_cast<GrayHeader*>(spec);
    *header = {kGrayMagic<T>, size.width, size.height, anchor.x, anchor.y, 0, 0, 0};
    auto* const rows = reinterpret_cast<GrayRow*>(header + 1);
    auto* const taps = reinterpret_cast<GrayTap<T>*>(rows + size.height + 1);
    Kpr32s count = 0;
    bool flat = true, rises = false;
    const auto take = [&](const Height<T>* heights, bool falling) {
        for (Kpr32s i = 0; i < size.width; ++i) {
            Height<T> height = heights[i];
            // Floats are not told apart: -h is exact, and a NaN is on neither side.
            if (!isTap<T>(height) || (std::is_same_v<T, Kpr8u> && height < 0) != falling) continue;
            if constexpr (std::is_same_v<T, Kpr8u>) height = std::clamp(height, -255, 255);
            taps[count] = {i, height};
            flat &= height == taps[0].height;
            rises |= height > 0;
            ++count;
        }
    };
    for (Kpr32s j = 0; j < size.height; ++j) {
        const Height<T>* const heights = mask + Kpr64s{j} * size.width;
        rows[j].first = count;
        take(heights, false);
        rows[j].falling = count;
        take(heights, true);
    }
    rows[size.height] = {count, count};
    header->taps = count;
    header->flat = flat && std::is_same_v<T, Kpr8u> ? 1 : 0;
    const bool ownTap = isTap<T>(mask[Kpr64s{anchor.y} * size.width + anchor.x]);
    header->hasFiller = (std::is_same_v<T, Kpr8u> ? !rises : ownTap) ? 1 : 0;
    return kprStatusOk;
}

constexpr KprStatus anchorHolds(KprPoint anchor, KprSize mask) {
    return failIf(anchor.x < 0 || anchor.x >= mask.width || anchor.y < 0 || anchor.y >= mask.height,
                  kprStatusBadAnchor);
}

}  // namespace
}  // namespace n0::morph

using namespace n0;
using namespace n0::morph;

KprStatus kpriMorphGrayGetSize_8u_C1R(KprSize roiSize, KprSize maskSize, int* specSize, int* bufferSize) {
    return firstFailure(notNull(specSize, bufferSize), roiHolds(roiSize), roiHolds(maskSize))
               ?: putSizes<Kpr8u>(roiSize, maskSize, specSize, bufferSize);
}

KprStatus kpriMorphGrayGetSize_32f_C1R(KprSize roiSize, KprSize maskSize, int* specSize, int* bufferSize) {
    return firstFailure(notNull(specSize, bufferSize), roiHolds(roiSize), roiHolds(maskSize))
               ?: putSizes<Kpr32f>(roiSize, maskSize, specSize, bufferSize);
}

KprStatus kpriMorphGrayInit_8u_C1R(KprSize roiSize, const Kpr32s* mask, KprSize maskSize, KprPoint anchor,
                                   KprMorphGrayState* spec, Kpr8u* buffer) {
    return firstFailure(notNull(mask, spec, buffer), roiHolds(roiSize), roiHolds(maskSize),
                        anchorHolds(anchor, maskSize))
               ?: fillBlock<Kpr8u>(mask, maskSize, anchor, spec);
}

KprStatus kpriMorphGrayInit_32f_C1R(KprSize roiSize, const Kpr32f* mask, KprSize maskSize, KprPoint anchor,
                                    KprMorphGrayState* spec, Kpr8u* buffer) {
    return firstFailure(notNull(mask, spec, buffer), roiHolds(roiSize), roiHolds(maskSize),
                        anchorHolds(anchor, maskSize))
               ?: fillBlock<Kpr32f>(mask, maskSize, anchor, spec);
}

KprStatus kpriGrayDilateBorder_8u_C1R(const Kpr8u* src, int srcStep, Kpr8u* dst, int dstStep, KprSize roiSize,
                                      KprBorderType borderType, Kpr8u borderValue, const KprMorphGrayState* spec,
                                      Kpr8u* buffer) {
    return callServes(src, srcStep, dst, dstStep, roiSize, borderType, spec, buffer)
               ?: grayExtremum<GrayDilation>(src, srcStep, dst, dstStep, roiSize, borderType, borderValue, spec,
                                             buffer);
}

KprStatus kpriGrayDilateBorder_32f_C1R(const Kpr32f* src, int srcStep, Kpr32f* dst, int dstStep, KprSize roiSize,
                                       KprBorderType borderType, Kpr32f borderValue, const KprMorphGrayState* spec,
                                       Kpr8u* buffer) {
    return callServes(src, srcStep, dst, dstStep, roiSize, borderType, spec, buffer)
               ?: grayExtremum<GrayDilation>(src, srcStep, dst, dstStep, roiSize, borderType, borderValue, spec,
                                             buffer);
}

KprStatus kpriGrayErodeBorder_8u_C1R(const Kpr8u* src, int srcStep, Kpr8u* dst, int dstStep, KprSize roiSize,
                                     KprBorderType borderType, Kpr8u borderValue, const KprMorphGrayState* spec,
                                     Kpr8u* buffer) {
    return callServes(src, srcStep, dst, dstStep, roiSize, borderType, spec, buffer)
               ?: grayExtremum<GrayErosion>(src, srcStep, dst, dstStep, roiSize, borderType, borderValue, spec, buffer);
}

KprStatus kpriGrayErodeBorder_32f_C1R(const Kpr32f* src, int srcStep, Kpr32f* dst, int dstStep, KprSize roiSize,
                                      KprBorderType borderType, Kpr32f borderValue, const KprMorphGrayState* spec,
                                      Kpr8u* buffer) {
    return callServes(src, srcStep, dst, dstStep, roiSize, borderType, spec, buffer)
               ?: grayExtremum<GrayErosion>(src, srcStep, dst, dstStep, roiSize, borderType, borderValue, spec, buffer);
}
