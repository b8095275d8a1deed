// The Gaussian filter with 64-bit sizes: half a kernel w of floats, the outermost tap first, and a ring of float rows.
//
// c is the pixel in the middle, s[d] the sum of the two at distance d, exact of integers. A row of pixels and a column
// of ring rows are summed alike:
//
//     3 taps    fma(s[1], w[0], w[1] * c)
//     5 taps    fma(c, w[2], fma(s[2], w[0], w[1] * s[1]))
//     7 taps    fma(c, w[3], fma(s[1], w[2], fma(s[3], w[0], w[1] * s[2])))
//     others    w[0] * s[r], then fused steps for s[r - 1] to s[1] and c, in this order
//
// Integers are rounded once, at the end, to nearest with ties to even, and saturated; but five taps of 16s keep the low
// 16 bits of a 32-bit integer. A row of a constant border is that value itself.
#include "filter/gaussian_block.h"
#include "filter/taps.h"
#include "primitives/ring.h"

namespace n0::filter {
namespace {

template <typename Src, int size>
class HalfTaps {
  public:
    using Pixel = Src;
    static constexpr int kStep = kLanes<Kpr32f>;
    static constexpr int kGroup = std::is_same_v<Src, Kpr32f> ? 8 : 4;

    HalfTaps(const Kpr32f* half, int kernelSize) : half_(half), radius_(kernelSize / 2) {
        if constexpr (size > 0) {
            for (int i = 0; i <= size / 2; ++i) taps_[i] = broadcast(half[i]);
        }
    }

    template <int vectors, typename Dst, Conversion, typename Part, typename At>
    KPR_INLINE void apply(Part part, At at, Dst* dst) const {
        Vec<Kpr32f> sums[vectors];
        sum<vectors>(part, at, sums);
        for (int v = 0; v < vectors; ++v) {
            Dst* const to = dst + v * kStep;
            if constexpr (std::is_same_v<Dst, Kpr32f>)
                store(to, sums[v], part);
            else if constexpr (size == 5 && std::is_same_v<Dst, Kpr16s>)
                storeLow(to, toInteger(sums[v]), part);
            else
                storeAs(to, toInteger(sums[v]), part);
        }
    }

  private:
    template <int vectors, typename Part, typename At>
    KPR_INLINE void sum(Part part, At at, Vec<Kpr32f>* sums) const {
        // Vector v of what lies at a distance, and in the middle.
        const auto s = [&](int distance, int v) __attribute__((always_inline)) {
            const Src* const before = at(radius() - distance) + v * kStep;
            const Src* const after = at(radius() + distance) + v * kStep;
            if constexpr (std::is_same_v<Src, Kpr32f>)
                return load(before, part) + load(after, part);
            else
                return toFloat(loadAs<Kpr32s>(before, part) + loadAs<Kpr32s>(after, part));
        };
        const auto c = [&](int v) { return loadAs<Kpr32f>(at(radius()) + v * kStep, part); };
        if constexpr (size > 0) {
            for (int v = 0; v < vectors; ++v) {
                if constexpr (size == 3) sums[v] = fma(s(1, v), taps_[0], taps_[1] * c(v));
                if constexpr (size == 5) sums[v] = fma(c(v), taps_[2], fma(s(2, v), taps_[0], taps_[1] * s(1, v)));
                if constexpr (size == 7)
                    sums[v] = fma(c(v), taps_[3], fma(s(1, v), taps_[2], fma(s(3, v), taps_[0], taps_[1] * s(2, v))));
            }
        } else {
            for (int v = 0; v < vectors; ++v) sums[v] = broadcast(half_[0]) * s(radius_, v);
            for (int i = 1; i < radius_; ++i) {
                const Vec<Kpr32f> weight = broadcast(half_[i]);
                for (int v = 0; v < vectors; ++v) sums[v] = fma(s(radius_ - i, v), weight, sums[v]);
            }
            for (int v = 0; v < vectors; ++v) sums[v] = fma(c(v), broadcast(half_[radius_]), sums[v]);
        }
    }

    [[nodiscard]] KPR_INLINE constexpr int radius() const { return size == 0 ? radius_ : size / 2; }

    const Kpr32f* half_;
    int radius_;
    Vec<Kpr32f> taps_[size / 2 + 1];
};

template <typename T>
struct Call {
    Rows<const T> src;
    Rows<T> dst;
    KprSizeL roi;
    KprBorderType border;
    const T* value;
    Kpr8u* buffer;
};

// Behind the ring lie the strip of the row stage and, for the column stage, in the same place the window's pointers.
template <int channels, typename T>
KprStatus smooth(const Call<T>& call, int kernelSize, RowStage<T, Kpr32f> across, ColumnStage<Kpr32f, T> down) {
    const Kpr64s width = channels * call.roi.width;
    const Kpr64s stride = (width + 15) & ~Kpr64s{15};
    Workspace left(call.buffer, static_cast<Kpr64s>(largeBufferBytes(static_cast<Bits64>(width), kernelSize)));
    auto* const first = left.take<Kpr32f>(kernelSize * stride, 64);
    auto* const behind = left.take<Kpr64s>(left.left<Kpr64s>());
    const int radius = kernelSize / 2;
    const Axis rows = rowsOf(call.roi.height, call.border);
    EdgedRows<T, channels, kLanes<Kpr32f>> edged(call.src, endOf(rows, radius), columnsOf(call.roi.width, call.border),
                                                 radius, radius, call.value, reinterpret_cast<T*>(behind));
    walkRing(
        rows, radius, Ring<Kpr32f>{first, stride, reinterpret_cast<const Kpr32f**>(behind)},
        [&](Kpr64s y, Kpr32f* out) { across.template operator()<channels>(edged.row(y), out); },
        [&](Kpr32f* out) { fillPixels<channels>(out, call.roi.width, call.value); },
        [&](const Kpr32f* const* window, Kpr64s y) { down.filter(down.taps, window, call.dst[y], width); });
    return kprStatusOk;
}

// Each step holds a row of `pixels` pixels of `bytes` bytes, without a product that could wrap.
template <typename... Step>
constexpr KprStatus longRowsFit(Kpr64s pixels, Kpr64s bytes, Step... steps) {
    return failIf((((steps / bytes - (steps % bytes < 0 ? 1 : 0)) < pixels) || ...), kprStatusBadStep);
}

template <int channels, typename T>
KprStatus smoothLarge(const T* src, Kpr64s srcStep, T* dst, Kpr64s dstStep, KprSizeL roi, KprBorderType borderType,
                      const T* value, const KprFilterGaussianSpec* spec, Kpr8u* buffer) {
    const KprBorderType border = largeWord(borderType);
    KprStatus multiples = kprStatusOk;
    if constexpr (sizeof(T) > 1) multiples = stepsAlign<T>(srcStep, dstStep);
    const KprStatus status = firstFailure(
        notNull(src, dst, buffer, spec), longRowsFit(roi.width, channels * sizeof(T), srcStep, dstStep), roiHolds(roi),
        multiples, failIf(border > 255, kprStatusBadBorder),
        failIf(baseOf(border) == kprBorderConstant && value == nullptr, kprStatusNullPtr), borderServesFilter(border));
    if (status != kprStatusOk) return status;
    if (!isGaussianSize(spec->kernelSize)) return kprStatusBadArg;
    const auto* const half = kernelAt<Kpr32f>(spec, kHeaderBytes, kLargeKernelAlignment);
    const Call<T> call = {{src, srcStep}, {dst, dstStep}, roi, border, value, buffer};
    return withSize(spec->kernelSize, [&]<int size>() {
        const HalfTaps<T, size> across(half, spec->kernelSize);
        const HalfTaps<Kpr32f, size> down(half, spec->kernelSize);
        return smooth<channels>(call, spec->kernelSize, rowStageOf<channels, Kpr32f, Conversion::Nearest>(across),
                                columnStageOf<T>(down));
    });
}

}  // namespace
}  // namespace n0::filter

using namespace n0;
using namespace n0::filter;

KprStatus kpriFilterGaussian_8u_C1R_L(const Kpr8u* src, int64_t srcStep, Kpr8u* dst, int64_t dstStep, KprSizeL roiSize,
                                      KprBorderType borderType, const Kpr8u* borderValue,
                                      const KprFilterGaussianSpec* spec, Kpr8u* buffer) {
    return smoothLarge<1>(src, srcStep, dst, dstStep, roiSize, borderType, borderValue, spec, buffer);
}

KprStatus kpriFilterGaussian_8u_C3R_L(const Kpr8u* src, int64_t srcStep, Kpr8u* dst, int64_t dstStep, KprSizeL roiSize,
                                      KprBorderType borderType, const Kpr8u* borderValue,
                                      const KprFilterGaussianSpec* spec, Kpr8u* buffer) {
    return smoothLarge<3>(src, srcStep, dst, dstStep, roiSize, borderType, borderValue, spec, buffer);
}

KprStatus kpriFilterGaussian_16u_C1R_L(const Kpr16u* src, int64_t srcStep, Kpr16u* dst, int64_t dstStep,
                                       KprSizeL roiSize, KprBorderType borderType, const Kpr16u* borderValue,
                                       const KprFilterGaussianSpec* spec, Kpr8u* buffer) {
    return smoothLarge<1>(src, srcStep, dst, dstStep, roiSize, borderType, borderValue, spec, buffer);
}

KprStatus kpriFilterGaussian_16u_C3R_L(const Kpr16u* src, int64_t srcStep, Kpr16u* dst, int64_t dstStep,
                                       KprSizeL roiSize, KprBorderType borderType, const Kpr16u* borderValue,
                                       const KprFilterGaussianSpec* spec, Kpr8u* buffer) {
    return smoothLarge<3>(src, srcStep, dst, dstStep, roiSize, borderType, borderValue, spec, buffer);
}

KprStatus kpriFilterGaussian_16s_C1R_L(const Kpr16s* src, int64_t srcStep, Kpr16s* dst, int64_t dstStep,
                                       KprSizeL roiSize, KprBorderType borderType, const Kpr16s* borderValue,
                                       const KprFilterGaussianSpec* spec, Kpr8u* buffer) {
    return smoothLarge<1>(src, srcStep, dst, dstStep, roiSize, borderType, borderValue, spec, buffer);
}

KprStatus kpriFilterGaussian_16s_C3R_L(const Kpr16s* src, int64_t srcStep, Kpr16s* dst, int64_t dstStep,
                                       KprSizeL roiSize, KprBorderType borderType, const Kpr16s* borderValue,
                                       const KprFilterGaussianSpec* spec, Kpr8u* buffer) {
    return smoothLarge<3>(src, srcStep, dst, dstStep, roiSize, borderType, borderValue, spec, buffer);
}

KprStatus kpriFilterGaussian_32f_C1R_L(const Kpr32f* src, int64_t srcStep, Kpr32f* dst, int64_t dstStep,
                                       KprSizeL roiSize, KprBorderType borderType, const Kpr32f* borderValue,
                                       const KprFilterGaussianSpec* spec, Kpr8u* buffer) {
    return smoothLarge<1>(src, srcStep, dst, dstStep, roiSize, borderType, borderValue, spec, buffer);
}

KprStatus kpriFilterGaussian_32f_C3R_L(const Kpr32f* src, int64_t srcStep, Kpr32f* dst, int64_t dstStep,
                                       KprSizeL roiSize, KprBorderType borderType, const Kpr32f* borderValue,
                                       const KprFilterGaussianSpec* spec, Kpr8u* buffer) {
    return smoothLarge<3>(src, srcStep, dst, dstStep, roiSize, borderType, borderValue, spec, buffer);
}
