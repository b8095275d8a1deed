// Any layer of any type: columns are summed up into rows of floats, one for each channel, and those along.
//
//     integers   acc = fma(weight, pixel, acc) from the first pixel on, from 0; at the end trunc(acc + 0.5), saturated
//     floats     acc likewise of pixel - a, a being the pixel at the position; a + acc, or where that is infinite or
//                no number, acc of the pixels themselves whose weight is not 0
#pragma once

#include <limits>

#include "primitives/rows.h"
#include "primitives/simd_pixels.h"
#include "pyramid/layer_state.h"

namespace n0::pyramid {

template <typename T, int channels>
class Resampler {
    using Floats = Vec<Kpr32f>;
    static constexpr int kStep = kLanes<Kpr32f>;
    static constexpr bool kFromBase = std::is_same_v<T, Kpr32f>;

  public:
    Resampler(const Layer& layer, Rows<const T> src, Rows<T> dst) : layer_(layer), src_(src), dst_(dst) {}

    void makeRows(Kpr64s begin, Kpr64s end) const {
        for (Kpr64s y = begin; y < end; ++y) {
            sumColumns(y);
            // Down at rates of up to 2, kernels of five taps are usual: their loops are unrolled.
            const Kpr32s taps = layer_.columns.taps;
            if (layer_.spread == Spread::OneVector) {
                sumRow<Spread::OneVector>(dst_[y], taps);
            } else if (layer_.spread == Spread::Any) {
                sumRow<Spread::Any>(dst_[y], taps);
            } else if (taps == 5) {
                sumRow<Spread::TwoVectors>(dst_[y], Turn<5>{});
            } else if (taps == 6) {
                sumRow<Spread::TwoVectors>(dst_[y], Turn<6>{});
            } else {
                sumRow<Spread::TwoVectors>(dst_[y], taps);
            }
        }
    }

  private:
    // The sum of weight(m) * pixel(v, m), for each of some vectors at once so that weights are fetched once.
    template <int vectors>
    KPR_INLINE static void sum(auto taps, auto weight, auto pixel, Floats* sums) {
        for (int v = 0; v < vectors; ++v) sums[v] = zero<Kpr32f>();
        for (Kpr32s m = 0; m < taps; ++m) {
            const Floats w = weight(m);
            for (int v = 0; v < vectors; ++v) sums[v] = fma(w, pixel(v, m), sums[v]);
        }
    }
    template <int vectors>
    KPR_INLINE static void sumFrom(auto base, auto taps, auto weight, auto pixel, Floats* sums) {
        Floats a[vectors];
        for (int v = 0; v < vectors; ++v) a[v] = base(v);
        sum<vectors>(
            taps, weight, [&](int v, Kpr32s m) { return pixel(v, m) - a[v]; }, sums);
        for (int v = 0; v < vectors; ++v) {
            sums[v] = a[v] + sums[v];
            if (const auto which = notFinite(sums[v]))
                sums[v] =
                    select(which, sumOfWeighted(a[v], taps, weight, [&](Kpr32s m) { return pixel(v, m); }), sums[v]);
        }
    }

    // The same where an infinity or what is no number may lie under a weight of 0, which does not count.
    static Floats sumOfWeighted(Floats a, Kpr32s taps, auto weight, auto pixel) {
        Floats distances = zero<Kpr32f>(), pixels = zero<Kpr32f>();
        for (Kpr32s m = 0; m < taps; ++m) {
            const Floats w = weight(m), p = pixel(m);
            const auto none = equal(w, zero<Kpr32f>());
            distances = select(none, distances, fma(w, p - a, distances));
            pixels = select(none, pixels, fma(w, p, pixels));
        }
        const Floats v = a + distances;
        return select(notFinite(v), pixels, v);
    }

    // The columns of a row of the destination.
    void sumColumns(Kpr64s y) const {
        constexpr int group = channels == 1 ? 4 : 1;
        const AxisWeights& rows = layer_.rows;
        const Rows<const T> window{src_[rows.first[y]], src_.step};
        const T* const base = src_[rows.base[y]];
        const auto weight = [w = rows.weight(0, y)](Kpr32s m) { return broadcast(w[m]); };
        walkStretches<kStep, group>(layer_.src.width, [&]<int count>(auto part, Kpr64s x) {
            constexpr int vectors = count * channels;
            const auto pixels = [&](const T* row, int v) {
                const T* const from = row + x * channels + v * kStep;
                if constexpr (channels == 1) return loadAs<Kpr32f>(from, part);
                if constexpr (channels == 3) return loadAs<Kpr32f>(from, elementsOf(part, v, kStep));
            };
            const auto pixel = [&](int v, Kpr32s m) { return pixels(window[m], v); };
            Floats sums[vectors];
            if constexpr (kFromBase) {
                sumFrom<vectors>([&](int v) { return pixels(base, v); }, rows.taps, weight, pixel, sums);
            } else {
                sum<vectors>(rows.taps, weight, pixel, sums);
            }
            Floats planes[vectors];
            if constexpr (channels == 3) separateThree(sums, planes);
            for (int v = 0; v < vectors; ++v) {  // behind the row there is room for a whole vector
                if constexpr (channels == 1) store(layer_.planes + x + Kpr64s{v} * kStep, sums[v], All{});
                if constexpr (channels == 3) store(layer_.planes + v * layer_.stride + x, planes[v], All{});
            }
        });
    }

    // Sixteen pixels of a plane.
    template <Spread spread>
    struct Picked {
        Kpr64s start;
        Vec<Kpr32s> offsets;

        KPR_INLINE explicit Picked(const Kpr32s* pixels)
            : start(pixels[0]), offsets(load(pixels, All{}) - broadcast(pixels[0])) {}

        KPR_INLINE Floats operator()(const Kpr32f* plane) const {
            const Kpr32f* const from = plane + start;
            if constexpr (spread == Spread::OneVector) return permute(load(from, All{}), offsets);
            if constexpr (spread == Spread::TwoVectors) {
                const auto a = load(from, All{}), b = load(from + kStep, All{});
                return as<Kpr32f>(permute(as<Kpr32s>(a), as<Kpr32s>(b), offsets));
            }
            if constexpr (spread == Spread::Any)
                return as<Kpr32f>(gather(static_cast<Mask<Kpr32s>>(~0), from, offsets << 2));
        }
    };

    template <Spread spread>
    void sumRow(T* dst, auto taps) const {
        const AxisWeights& columns = layer_.columns;
        walkColumns<kStep, Loop::Rolled>(layer_.dst.width, [&](auto part, Kpr64s x) {
            const Picked<spread> first(columns.first + x), base(columns.base + x);
            const auto weight = [&](Kpr32s m) { return load(columns.weight(m, x), All{}); };
            const auto pixel = [&](int c, Kpr32s m) { return first(layer_.planes + c * layer_.stride + m); };
            Floats sums[channels];
            if constexpr (kFromBase) {
                const auto baseOf = [&](int c) { return base(layer_.planes + c * layer_.stride); };
                sumFrom<channels>(baseOf, taps, weight, pixel, sums);
            } else {
                sum<channels>(taps, weight, pixel, sums);
            }
            put(dst + x * channels, sums, part);
        });
    }

    KPR_INLINE static void put(T* dst, const Floats* sums, auto part) {
        if constexpr (channels == 1) {
            put(dst, sums[0], part);
        } else {
            Floats turns[3];
            interleaveThree(sums[0], sums[1], sums[2], turns);
            eachOfThree(part, kStep, [&](auto some, int k) { put(dst + k * kStep, turns[k], some); });
        }
    }
    KPR_INLINE static void put(T* dst, Floats v, auto part) {
        if constexpr (std::is_same_v<T, Kpr32f>) {
            store(dst, v, part);
        } else {
            constexpr auto most = static_cast<Kpr32f>(std::numeric_limits<T>::max());  // an integer lane holds it
            storeAs(dst, truncate(min(v + broadcast(0.5F), broadcast(most))), part);
        }
    }

    const Layer& layer_;
    Rows<const T> src_;
    Rows<T> dst_;
};

}  // namespace n0::pyramid
