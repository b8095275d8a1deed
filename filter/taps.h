// Weighted sums of pixels: the kernel that the separable filters share. A row and a column differ only in where the
// pixel under tap i lies, so that both are given as `at(i)`:
//
//     integers   the sum of tap[i] * at(i) in 32 bits that wrap, to float, times 1 / divisor, to the nearest integer
//                (ties to even), saturated
//     floats     tap[0] * at(0), then one fused step for each further tap, in order
#pragma once

#include <utility>

#include "filter/border_rule.h"

namespace n0 {

// Calls `body(i)` for i from 0 to `count - 1`: written out where `size` gives the count, a loop where it is 0.
template <int size, typename Body>
KPR_INLINE void repeat(int count, Body body) {
    if constexpr (size == 0) {
        for (int i = 0; i < count; ++i) body(i);
    } else {
        [&]<int... i>(std::integer_sequence<int, i...>) __attribute__((always_inline)) { (body(i), ...); }
        (std::make_integer_sequence<int, size>{});
    }
}

// So many vectors are worked on at once: a long kernel looks up a tap once for all.
inline constexpr int kGroup = 8;

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

// Sums of 32 pixels: those of the lower and those of the upper halves of the blocks of eight.
struct Sums {
    Vec<Kpr32s> lower, upper;
};

// Integer taps, two and two as `sumPairs` takes them; the last of an odd number stands beside a zero. `shrinks` says
// that the divisor is known to be 2 or more: no product leaves 32 bits.
template <typename Src, int size, bool shrinks = false>
class IntegerTaps {
  public:
    using Pixel = Src;
    static constexpr int kStep = kLanes<Kpr16s>;

    IntegerTaps(const Kpr16s* kernel, int kernelSize, int divisor)
        : kernel_(kernel), kernelSize_(kernelSize), inverse_(broadcast(1.0F / static_cast<float>(divisor))) {
        if constexpr (size > 0) {
            for (int i = 0; i < (terms() + 1) / 2; ++i) pairs_[i] = load(i);
        }
        // 16u is summed less 0x8000: sumPairs is signed. What that takes away is the same for all pixels.
        unsigned less = 0;
        for (int i = 0; i < kernelSize && std::is_same_v<Src, Kpr16u>; ++i)
            less += 0x8000U * static_cast<unsigned>(kernel[i]);
        start_ = broadcast(static_cast<Kpr32s>(less));
    }

    template <int vectors, typename Dst, Conversion conversion, typename Part, typename At>
    KPR_INLINE void apply(Part part, At at, Dst* dst) const {
        for (int v = 0; v < vectors; ++v) {
            applyOne<Dst, conversion>(
                part, [&](int i) { return at(i) + v * kStep; }, dst + v * kStep);
        }
    }

  private:
    template <typename Dst, Conversion conversion, typename Part, typename At>
    KPR_INLINE void applyOne(Part part, At at, Dst* dst) const {
        const Sums sums = sum(part, at);
        const Vec<Kpr32s> lower = scaled<conversion>(sums.lower);
        const Vec<Kpr32s> upper = scaled<conversion>(sums.upper);
        if constexpr (sizeof(Dst) == 1)
            storeAs(dst, join<Kpr16s>(lower, upper), part);
        else
            store(dst, join<Dst>(lower, upper), part);
    }

    [[nodiscard]] KPR_INLINE constexpr int terms() const { return size == 0 ? kernelSize_ : size; }

    template <typename Part, typename At>
    [[nodiscard]] KPR_INLINE Sums sum(Part part, At at) const {
        constexpr int kPairs = size / 2;
        const auto term = [&](int i) __attribute__((always_inline)) { return words(at(i), part); };
        Sums sums = {start_, start_};
        repeat<kPairs>(
            terms() / 2, [&](int i)
                             __attribute__((always_inline)) { add(sums, term(2 * i), term(2 * i + 1), pair(i)); });
        if (terms() % 2 != 0) add(sums, term(terms() - 1), zero<Kpr16s>(), pair(terms() / 2));
        return sums;
    }

    KPR_INLINE static void add(Sums& sums, Vec<Kpr16s> a, Vec<Kpr16s> b, Vec<Kpr16s> pair) {
        sums.lower = sums.lower + sumPairs(interleaveLower(a, b), pair);
        sums.upper = sums.upper + sumPairs(interleaveUpper(a, b), pair);
    }

    template <typename Part>
    KPR_INLINE static Vec<Kpr16s> words(const Src* src, Part part) {
        if constexpr (std::is_same_v<Src, Kpr16u>)
            return as<Kpr16s>(n0::load(src, part) ^ broadcast<Kpr16u>(0x8000));
        else
            return loadAs<Kpr16s>(src, part);
    }

    // A product may reach 2^31, by a divisor of -1 or a sum that is rounded up: it stays where it converts.
    template <Conversion conversion>
    [[nodiscard]] KPR_INLINE Vec<Kpr32s> scaled(Vec<Kpr32s> sum) const {
        Vec<Kpr32f> value = toFloat(sum) * inverse_;
        if constexpr (!shrinks) value = min(value, broadcast(65536.0F));
        return conversion == Conversion::Nearest ? toInteger(value) : truncate(value);
    }

    [[nodiscard]] KPR_INLINE Vec<Kpr16s> pair(int i) const {
        if constexpr (size > 0)
            return pairs_[i];
        else
            return load(i);
    }
    [[nodiscard]] KPR_INLINE Vec<Kpr16s> load(Kpr64s i) const {
        const unsigned low = static_cast<Kpr16u>(kernel_[2 * i]);
        const unsigned high = 2 * i + 1 < terms() ? static_cast<Kpr16u>(kernel_[2 * i + 1]) : 0U;
        return as<Kpr16s>(broadcast(static_cast<Kpr32s>(low | high << 16)));
    }

    const Kpr16s* kernel_;
    int kernelSize_;
    Vec<Kpr32f> inverse_;
    Vec<Kpr32s> start_;
    Vec<Kpr16s> pairs_[size == 0 ? 1 : (size + 1) / 2];
};

template <int size>
class FloatTaps {
  public:
    using Pixel = Kpr32f;
    static constexpr int kStep = kLanes<Kpr32f>;

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
                for (int v = 0; v < vectors; ++v) sums[v] = fma(load(row + v * kStep, part), weight, sums[v]);
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

// dst[x] for `count` elements of a row whose tap i lies over src[x + i * spacing]. One copy serves all its callers:
// what a call costs is nothing beside a row.
template <Conversion conversion, int spacing, typename Taps, typename Dst>
[[gnu::noinline]] void filterRow(const Taps& shared, const typename Taps::Pixel* src, Dst* dst, Kpr64s count) {
    const Taps taps = shared;  // a copy: what is not shared stays in registers
    walkStretches<Taps::kStep, kGroup>(count, [&]<int vectors>(auto part, Kpr64s x) {
        taps.template apply<vectors, Dst, conversion>(
            part, [&](int i) { return src + x + i * spacing; }, dst + x);
    });
}

// The same for a part of a row. Bytes are truncated in the columns at the border, and their edges hold just these.
template <int channels, typename Taps, typename Src, typename Dst>
KPR_INLINE void filterRowPart(const Taps& taps, const RowPart<Src>& part, Dst* row) {
    Dst* const dst = row + part.x * channels;
    if (sizeof(Src) == 1 && part.atEdge)
        filterRow<Conversion::Truncate, channels>(taps, part.src, dst, part.count * channels);
    else
        filterRow<Conversion::Nearest, channels>(taps, part.src, dst, part.count * channels);
}

// The columns of a strip for it.
template <typename Src>
inline constexpr int kEdgeLanes = sizeof(Src) == 1 ? 1 : kLanes<Src>;

// dst[x] for `count` elements, tap i over rows[i][x].
template <typename Taps, typename Dst>
[[gnu::noinline]] void filterColumn(const Taps& shared, const typename Taps::Pixel* const* rows, Dst* dst,
                                    Kpr64s count) {
    const Taps taps = shared;
    walkStretches<Taps::kStep, kGroup>(count, [&]<int vectors>(auto part, Kpr64s x) {
        taps.template apply<vectors, Dst, Conversion::Nearest>(
            part, [&](int i) { return rows[i] + x; }, dst + x);
    });
}

}  // namespace n0
