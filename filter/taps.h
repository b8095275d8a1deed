// Weighted sums of pixels: the kernel that the separable filters share. A row and a column differ only in where the
// pixel under tap i lies, so that both are given as `at(i)`:
//
//     integers   the sum of tap[i] * at(i) in 32 bits that wrap, to float, times 1 / divisor, to the nearest integer
//                (ties to even), saturated
//     floats     tap[0] * at(0), then one fused step for each further tap, in order
#pragma once

#include "primitives/edged_rows.h"

namespace n0::filter {

// Calls `body(i)` for i from 0 to `count - 1`: written out where `size` gives the count, a loop where it is 0.
template <int size, typename Body>
KPR_INLINE void repeat(int count, Body body) {
    if constexpr (size == 0) {
        for (int i = 0; i < count; ++i) body(i);
    } else {
        takeTurns<size>(body);
    }
}

// Calls `run.template operator()<size>()` with the kernel sizes that have code of their own, and 0 for all others.
template <typename Run>
KPR_INLINE auto withSize(int kernelSize, Run run) {
    switch (kernelSize) {
        case 3:
            return run.template operator()<3>();
        case 5:
            return run.template operator()<5>();
        case 7:
            return run.template operator()<7>();
        default:
            return run.template operator()<0>();
    }
}

enum class Conversion { Nearest, Truncate };

// Integer taps in pairs, since one instruction multiplies and adds two pixels; the last of an odd number is paired with
// a tap of zero. `shrinks` says that the divisor is known to be 2 or more, so that no scaled sum exceeds 2^30.
template <typename Src, int size, bool shrinks = false>
class IntegerTaps {
  public:
    using Pixel = Src;
    static constexpr int kStep = kLanes<Kpr16s>;
    static constexpr int kGroup = 4;

    IntegerTaps(const Kpr16s* kernel, int kernelSize, int divisor)
        : kernel_(kernel), kernelSize_(kernelSize), inverse_(broadcast(1.0F / static_cast<float>(divisor))) {
        for (int i = 0; i < kKept; ++i) {
            pairs_[i] = pairFrom(2 * i);
            shifted_[i] = pairFrom(2 * i - 1);
        }
        // 16u is summed less 0x8000: sumPairs is signed. What that takes away is the same for all pixels.
        unsigned less = 0;
        for (int i = 0; i < kernelSize && std::is_same_v<Src, Kpr16u>; ++i)
            less += 0x8000U * static_cast<unsigned>(kernel[i]);
        start_ = broadcast(static_cast<Kpr32s>(less));
    }

    // Tap i over at(i). The pixels of two taps are interleaved.
    template <int vectors, typename Dst, Conversion conversion, typename Part, typename At>
    KPR_INLINE void apply(Part part, At at, Dst* dst) const {
        Vec<Kpr32s> lower[vectors], upper[vectors];
        for (int v = 0; v < vectors; ++v) lower[v] = upper[v] = start_;
        repeat<(size + 1) / 2>((taps() + 1) / 2, [&](int i) __attribute__((always_inline)) {
            const Vec<Kpr16s> pair = kept(pairs_, i, 2 * i);
            const bool alone = 2 * i + 1 == taps();
            for (int v = 0; v < vectors; ++v) {
                const Vec<Kpr16s> a = words(at(2 * i) + v * kStep, part);
                const Vec<Kpr16s> b = alone ? zero<Kpr16s>() : words(at(2 * i + 1) + v * kStep, part);
                lower[v] = lower[v] + sumPairs(interleaveLower(a, b), pair);
                upper[v] = upper[v] + sumPairs(interleaveUpper(a, b), pair);
            }
        });
        for (int v = 0; v < vectors; ++v) {
            const Vec<Kpr32s> a = scaled<conversion>(lower[v]), b = scaled<conversion>(upper[v]);
            if constexpr (sizeof(Dst) == 1)
                storeAs(dst + v * kStep, join<Kpr16s>(a, b), part);
            else
                store(dst + v * kStep, join<Dst>(a, b), part);
        }
    }

    // An odd number of taps along a row of one channel: neighbours are pairs already. A vector of them serves its even
    // columns by taps (0, 1), (2, 3) ..., and its odd ones by taps (-, 0), (1, 2) ....
    template <int vectors, Conversion conversion, typename Part, typename Dst>
    KPR_INLINE void along(Part part, const Src* src, Dst* dst) const {
        Vec<Kpr32s> even[vectors], odd[vectors];
        for (int v = 0; v < vectors; ++v) even[v] = odd[v] = start_;
        const auto add = [&](int i, auto loaded) __attribute__((always_inline)) {
            const Vec<Kpr16s> pair = kept(pairs_, i, 2 * i), shifted = kept(shifted_, i, 2 * i - 1);
            for (int v = 0; v < vectors; ++v) {
                Vec<Kpr16s> pixels = words(src + v * kStep + Kpr64s{2} * i, loaded);
                even[v] = even[v] + sumPairs(pixels, pair);
                odd[v] = odd[v] + sumPairs(pixels, shifted);
            }
        };
        repeat<size / 2>(
            taps() / 2, [&](int i) __attribute__((always_inline)) { add(i, oneMore(part)); });
        add(taps() / 2, part);
        for (int v = 0; v < vectors; ++v)
            store(dst + v * kStep, alternate<Dst>(scaled<conversion>(even[v]), scaled<conversion>(odd[v])), part);
    }

    [[nodiscard]] KPR_INLINE constexpr int taps() const { return size == 0 ? kernelSize_ : size; }

  private:
    static constexpr int kKept = (size + 1) / 2;

    template <typename Part>
    KPR_INLINE static Vec<Kpr16s> words(const Src* src, Part part) {
        if constexpr (std::is_same_v<Src, Kpr16u>)
            return as<Kpr16s>(load(src, part) ^ broadcast<Kpr16u>(0x8000));
        else
            return loadAs<Kpr16s>(src, part);
    }

    // The sum times 1 / divisor as an integer. With a divisor of 1 or -1 the float may be 2^31, which the conversion
    // would turn into -2^31: it is capped first, above what any destination holds.
    template <Conversion conversion>
    [[nodiscard]] KPR_INLINE Vec<Kpr32s> scaled(Vec<Kpr32s> sum) const {
        Vec<Kpr32f> value = toFloat(sum) * inverse_;
        if constexpr (!shrinks) value = min(value, broadcast(65536.0F));
        return conversion == Conversion::Nearest ? toInteger(value) : truncate(value);
    }

    [[nodiscard]] KPR_INLINE Vec<Kpr16s> kept(const Vec<Kpr16s>* pairs, int i, int first) const {
        return size > 0 ? pairs[i] : pairFrom(first);
    }
    // Taps `first` and the next, as far as there are such.
    [[nodiscard]] KPR_INLINE Vec<Kpr16s> pairFrom(Kpr64s first) const {
        const unsigned low = first >= 0 ? static_cast<Kpr16u>(kernel_[first]) : 0U;
        const unsigned high = first + 1 < taps() ? static_cast<Kpr16u>(kernel_[first + 1]) : 0U;
        return as<Kpr16s>(broadcast(static_cast<Kpr32s>(low | high << 16)));
    }

    const Kpr16s* kernel_;
    int kernelSize_;
    Vec<Kpr32f> inverse_;
    Vec<Kpr32s> start_;
    Vec<Kpr16s> pairs_[kKept == 0 ? 1 : kKept], shifted_[kKept == 0 ? 1 : kKept];
};

template <int size>
class FloatTaps {
  public:
    using Pixel = Kpr32f;
    static constexpr int kStep = kLanes<Kpr32f>;
    static constexpr int kGroup = 8;

    // Taps may stand `spacing` elements apart.
    FloatTaps(const Kpr32f* kernel, int kernelSize, Kpr64s spacing = 1)
        : kernel_(kernel), kernelSize_(kernelSize), spacing_(spacing) {
        if constexpr (size > 0) {
            for (int i = 0; i < size; ++i) taps_[i] = broadcast(kernel[i * spacing]);
        }
    }

    template <int vectors, typename Dst, Conversion, typename Part, typename At>
    KPR_INLINE void apply(Part part, At at, Dst* dst) const {
        Vec<Kpr32f> sums[vectors];
        for (int v = 0; v < vectors; ++v) sums[v] = load(at(0) + v * kStep, part) * tap(0);
        repeat<size == 0 ? 0 : size - 1>(
            kernelSize_ - 1, [&](int i) __attribute__((always_inline)) {
                const Kpr32f* const row = at(i + 1);
                const Vec<Kpr32f> weight = tap(i + 1);
                for (Kpr64s v = 0; v < vectors; ++v) sums[v] = fma(load(row + v * kStep, part), weight, sums[v]);
            });
        for (int v = 0; v < vectors; ++v) store(dst + v * kStep, sums[v], part);
    }

  private:
    [[nodiscard]] KPR_INLINE Vec<Kpr32f> tap(int i) const {
        if constexpr (size > 0)
            return taps_[i];
        else
            return broadcast(kernel_[i * spacing_]);
    }

    const Kpr32f* kernel_;
    int kernelSize_;
    Kpr64s spacing_;
    Vec<Kpr32f> taps_[size == 0 ? 1 : size];
};

template <typename Src, int size>
KPR_INLINE auto tapsOf(const Kpr16s* kernel, int kernelSize, int divisor) {
    return IntegerTaps<Src, size>(kernel, kernelSize, divisor);
}
template <typename Src, int size>
KPR_INLINE auto tapsOf(const Kpr32f* kernel, int kernelSize, int) {
    return FloatTaps<size>(kernel, kernelSize);
}

// Taps work on kGroup vectors at once, as long as there are so many: long kernels look up a tap once for all.
//
// dst[x] for `count` elements of a row whose tap i lies over src[x + i * spacing].
template <Conversion conversion, int spacing, typename Taps, typename Dst>
[[gnu::noinline]] void filterRow(const void* shared, const typename Taps::Pixel* src, Dst* dst, Kpr64s count) {
    const Taps taps = *static_cast<const Taps*>(shared);  // a copy: what is not shared stays in registers
    if constexpr (spacing == 1 && requires { taps.taps(); }) {
        if (taps.taps() % 2 != 0) {
            return walkStretches<Taps::kStep, Taps::kGroup>(count, [&]<int vectors>(auto part, Kpr64s x) {
                taps.template along<vectors, conversion>(part, src + x, dst + x);
            });
        }
    }
    walkStretches<Taps::kStep, Taps::kGroup>(count, [&]<int vectors>(auto part, Kpr64s x) {
        taps.template apply<vectors, Dst, conversion>(
            part, [&](int i) { return src + x + i * spacing; }, dst + x);
    });
}

// How columns at the border are converted, of bytes otherwise than all others.
template <typename Src>
inline constexpr Conversion kAtEdge = sizeof(Src) == 1 ? Conversion::Truncate : Conversion::Nearest;

// The columns of a strip: the edges of bytes hold just the columns at the border.
template <typename Src>
inline constexpr int kEdgeLanes = sizeof(Src) == 1 ? 1 : kLanes<Src>;

// filterRow for a part of a row.
template <int channels, typename Taps, typename Src, typename Dst>
KPR_INLINE void filterRowPart(const Taps& taps, const RowPart<Src>& part, Dst* row) {
    Dst* const dst = row + part.x * channels;
    if (part.atEdge)
        filterRow<kAtEdge<Src>, channels, Taps>(&taps, part.src, dst, part.count * channels);
    else
        filterRow<Conversion::Nearest, channels, Taps>(&taps, part.src, dst, part.count * channels);
}

// dst[x] for `count` elements, tap i over rows[i][x].
template <typename Taps, typename Dst>
[[gnu::noinline]] void filterColumn(const void* shared, const typename Taps::Pixel* const* rows, Dst* dst,
                                    Kpr64s count) {
    const Taps taps = *static_cast<const Taps*>(shared);
    walkStretches<Taps::kStep, Taps::kGroup>(count, [&]<int vectors>(auto part, Kpr64s x) {
        taps.template apply<vectors, Dst, Conversion::Nearest>(
            part, [&](int i) { return rows[i] + x; }, dst + x);
    });
}

// The two stages with their taps, called through pointers, so that one walk over rows serves all kinds of taps: what a
// call costs is nothing beside a row.
template <typename Src, typename Dst>
struct RowStage {
    const void* taps;
    void (*filter)(const void* taps, const Src* src, Dst* dst, Kpr64s count);
    void (*filterEdge)(const void* taps, const Src* src, Dst* dst, Kpr64s count);

    template <int channels>
    KPR_INLINE void operator()(const RowParts<Src>& parts, Dst* dst) const {
        for (const RowPart<Src>& part : parts)
            (part.atEdge ? filterEdge : filter)(taps, part.src, dst + part.x * channels, part.count * channels);
    }
};
template <typename Src, typename Dst>
struct ColumnStage {
    const void* taps;
    void (*filter)(const void* taps, const Src* const* rows, Dst* dst, Kpr64s count);
};

template <int channels, typename Dst, Conversion atEdge = Conversion::Nearest, typename Taps>
RowStage<typename Taps::Pixel, Dst> rowStageOf(const Taps& taps) {
    return {&taps, filterRow<Conversion::Nearest, channels, Taps, Dst>, filterRow<atEdge, channels, Taps, Dst>};
}
template <typename Dst, typename Taps>
ColumnStage<typename Taps::Pixel, Dst> columnStageOf(const Taps& taps) {
    return {&taps, filterColumn<Taps, Dst>};
}

}  // namespace n0::filter
