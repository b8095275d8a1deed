// The Gaussian filter with 32-bit sizes: the row and the column stage with one kernel, and a ring of rows between them
// where they do not stay in registers.
//
// The rows of an integer image are rounded to integers between the stages: those of 8u to 16s, to nearest, but in the
// columns that read a synthesised pixel by truncation. A row outside the ROI is a filtered row that the border word
// names; of a constant it is that value itself.
#include "filter/byte_gaussian.h"
#include "filter/gaussian_block.h"
#include "filter/taps.h"
#include "filter/three_taps.h"
#include "primitives/ring.h"

namespace n0::filter {
namespace {

template <typename T>
using Middle = std::conditional_t<std::is_same_v<T, Kpr8u>, Kpr16s, T>;

template <typename T>
struct Call {
    Rows<const T> src;
    Rows<T> dst;
    KprSize roi;
    const T* value;
    KprBorderType border;
    int kernelSize;
    Kpr8u* buffer;
};

// The working memory is the ring, a strip for the row stage and the pointers to a window of rows. The sized buffer has
// more rows than the ring, so that rows of a vector and more can be padded to whole vectors.
template <int channels, typename T>
struct Memory {
    Ring<Middle<T>> ring;
    T* strip;

    explicit Memory(const Call<T>& call) {
        constexpr Kpr64s lanes = kLanes<Middle<T>>;
        const Kpr64s padded = (Kpr64s{channels} * (Kpr64s{call.roi.width} + call.kernelSize) + 7) & ~Kpr64s{7};
        ring.stride = padded < lanes ? padded : (padded + lanes - 1) & ~(lanes - 1);
        constexpr KprDataType type = std::is_same_v<T, Kpr8u>    ? kpr8u
                                     : std::is_same_v<T, Kpr16u> ? kpr16u
                                     : std::is_same_v<T, Kpr16s> ? kpr16s
                                                                 : kpr32f;
        const auto [width, height] = call.roi;
        Workspace left(call.buffer, borderSizes(static_cast<Bytes32>(width), static_cast<Bytes32>(height),
                                                static_cast<Bytes32>(call.kernelSize), type, channels)
                                        .buffer);
        ring.first = left.take<Middle<T>>(call.kernelSize * ring.stride, 64);
        ring.window = left.take<const Middle<T>*>(call.kernelSize);
        strip = left.take<T>(left.left<T>());
    }
};

template <int channels, typename T>
KprStatus smooth(const Call<T>& call, RowStage<T, Middle<T>> across, ColumnStage<Middle<T>, T> down) {
    const Memory<channels, T> memory(call);
    const int radius = call.kernelSize / 2;
    const Axis rows = rowsOf(call.roi.height, call.border);
    EdgedRows<T, channels, kEdgeLanes<T>> edged(call.src, endOf(rows, radius), columnsOf(call.roi.width, call.border),
                                                radius, radius, call.value, memory.strip);
    walkRing(
        rows, radius, memory.ring,
        [&](Kpr64s y, Middle<T>* out) { across.template operator()<channels>(edged.row(y), out); },
        [&](Middle<T>* out) { fillPixels<channels>(out, call.roi.width, call.value); },
        [&](const Middle<T>* const* window, Kpr64s y) {
            down.filter(down.taps, window, call.dst[y], Kpr64s{channels} * call.roi.width);
        });
    return kprStatusOk;
}

// Bytes that stay bytes between the stages, in a ring, which takes half of the room that the buffer has for words.
template <int channels>
KprStatus smoothBytes(const Call<Kpr8u>& call, ByteStages stages) {
    const Axis rows = rowsOf(call.roi.height, call.border), columns = columnsOf(call.roi.width, call.border);
    const int radius = call.kernelSize / 2;
    const Kpr64s width = Kpr64s{channels} * call.roi.width;
    const Inside inside = insideOf(columns, radius, channels);
    EdgedRows<Kpr8u, channels, kLanes<Kpr8u>> edged(call.src, endOf(rows, radius), columns, radius, radius, call.value,
                                                    nullptr);
    walkRing(
        rows, radius, Ring<Kpr8u>{alignedUp<Kpr8u>(call.buffer, 64), (width + 63) & ~Kpr64s{63}, nullptr},
        [&](Kpr64s y, Kpr8u* out) { stages.across(stages.taps, edged.row(y), inside, out); },
        [&](Kpr8u* out) { fillPixels<channels>(out, call.roi.width, call.value); },
        [&](const Kpr8u* const* window, Kpr64s y) { stages.down(stages.taps, window, call.dst[y], width); });
    return kprStatusOk;
}

// The same with rows that stay in registers.
template <int channels, typename Taps>
KprStatus walkDown(const Call<Kpr8u>& call, const Taps& taps) {
    walkBytes<channels>(taps, columnsOf(call.roi.width, call.border), rowsOf(call.roi.height, call.border), call.src,
                        call.dst, call.value);
    return kprStatusOk;
}

template <int channels, typename T>
KprStatus smoothIntegers(const Call<T>& call, const Kpr16s* kernel, int divisor) {
    return withSize(call.kernelSize, [&]<int size>() {
        if constexpr (sizeof(T) == 1) {
            if constexpr (size == 3) {
                const int k = kernel[0], d = kernel[1] + 2 * k - 4096;
                if (divisor == 4096 && k == kernel[2] && k >= 0 && k < 2048 && kernel[1] >= 0) {
                    if (MeanTaps<channels>::serves(k, d)) return walkDown<channels>(call, MeanTaps<channels>(k, d));
                    if (TielessRounding::serves(k, d))
                        return walkDown<channels>(call, ThreeTaps<channels, TielessRounding>(k, d));
                    if (EvenRounding::serves(k, d))
                        return walkDown<channels>(call, ThreeTaps<channels, EvenRounding>(k, d));
                }
            }
            constexpr int anySize = 0, known = size == 3 ? anySize : size;  // others of three taps are made by no sigma
            BytePairs pairs;
            if (pairs.make(kernel, call.kernelSize, divisor)) {
                const ByteTaps<channels, known> taps(pairs, call.kernelSize);
                if constexpr (known == 5 && channels == 1)
                    return walkDown<channels>(call, taps);  // more rows gain nothing from staying in registers
                else
                    return smoothBytes<channels>(call, ByteStages::of<channels>(taps));
            }
        }
        // 16-bit blocks have a divisor of 32768.
        constexpr bool shrinks = sizeof(T) > 1;
        const IntegerTaps<T, size, shrinks> across(kernel, call.kernelSize, divisor);
        const IntegerTaps<Middle<T>, size, shrinks> down(kernel, call.kernelSize, divisor);
        return smooth<channels>(call, rowStageOf<channels, Middle<T>, kAtEdge<T>>(across), columnStageOf<T>(down));
    });
}

template <int channels, typename T>
KprStatus smoothBlock(const T* src, int srcStep, T* dst, int dstStep, KprSize roi, const T* value,
                      const KprFilterGaussianSpec* spec, Kpr8u* buffer) {
    const Kpr64s width = Kpr64s{channels} * roi.width;
    KprStatus multiples = kprStatusOk;
    if constexpr (sizeof(T) > 1) multiples = stepsAlign<T>(srcStep, dstStep);
    const KprStatus status =
        firstFailure(notNull(src, dst, buffer, spec), rowsFit<T>(width, srcStep, dstStep), roiHolds(roi), multiples)
            ?: borderServesFilter(spec->borderType);
    if (status != kprStatusOk) return status;
    const Call<T> call = {{src, srcStep}, {dst, dstStep}, roi, value, spec->borderType, spec->kernelSize, buffer};
    if constexpr (std::is_same_v<T, Kpr32f>) {
        if (!isGaussianSize(spec->kernelSize)) return kprStatusBadArg;
        const auto* const kernel = kernelAt<Kpr32f>(spec, spec->kernelOffset, 16);
        return withSize(spec->kernelSize, [&]<int size>() {
            const FloatTaps<size> taps(kernel, spec->kernelSize, 8);  // each tap is stored eight times
            return smooth<channels>(call, rowStageOf<channels, T>(taps), columnStageOf<T>(taps));
        });
    } else {
        // A block that integer forms cannot use leaves the image as it is, without an error.
        const int divisor = spec->scaleBits >= 0 && spec->scaleBits < 32 ? static_cast<int>(1U << spec->scaleBits) : 0;
        if (!isGaussianSize(spec->kernelSize) || divisor == 0) return kprStatusOk;
        return smoothIntegers<channels>(call, kernelAt<Kpr16s>(spec, spec->kernelOffset, 16), divisor);
    }
}

}  // namespace
}  // namespace n0::filter

using namespace n0;
using namespace n0::filter;

KprStatus kpriFilterGaussianBorder_8u_C1R(const Kpr8u* src, int srcStep, Kpr8u* dst, int dstStep, KprSize roiSize,
                                          Kpr8u borderValue, const KprFilterGaussianSpec* spec, Kpr8u* buffer) {
    return smoothBlock<1>(src, srcStep, dst, dstStep, roiSize, &borderValue, spec, buffer);
}

KprStatus kpriFilterGaussianBorder_8u_C3R(const Kpr8u* src, int srcStep, Kpr8u* dst, int dstStep, KprSize roiSize,
                                          const Kpr8u* borderValue, const KprFilterGaussianSpec* spec, Kpr8u* buffer) {
    return smoothBlock<3>(src, srcStep, dst, dstStep, roiSize, borderValue, spec, buffer);
}

KprStatus kpriFilterGaussianBorder_16u_C1R(const Kpr16u* src, int srcStep, Kpr16u* dst, int dstStep, KprSize roiSize,
                                           Kpr16u borderValue, const KprFilterGaussianSpec* spec, Kpr8u* buffer) {
    return smoothBlock<1>(src, srcStep, dst, dstStep, roiSize, &borderValue, spec, buffer);
}

KprStatus kpriFilterGaussianBorder_16u_C3R(const Kpr16u* src, int srcStep, Kpr16u* dst, int dstStep, KprSize roiSize,
                                           const Kpr16u* borderValue, const KprFilterGaussianSpec* spec,
                                           Kpr8u* buffer) {
    return smoothBlock<3>(src, srcStep, dst, dstStep, roiSize, borderValue, spec, buffer);
}

KprStatus kpriFilterGaussianBorder_16s_C1R(const Kpr16s* src, int srcStep, Kpr16s* dst, int dstStep, KprSize roiSize,
                                           Kpr16s borderValue, const KprFilterGaussianSpec* spec, Kpr8u* buffer) {
    return smoothBlock<1>(src, srcStep, dst, dstStep, roiSize, &borderValue, spec, buffer);
}

KprStatus kpriFilterGaussianBorder_16s_C3R(const Kpr16s* src, int srcStep, Kpr16s* dst, int dstStep, KprSize roiSize,
                                           const Kpr16s* borderValue, const KprFilterGaussianSpec* spec,
                                           Kpr8u* buffer) {
    return smoothBlock<3>(src, srcStep, dst, dstStep, roiSize, borderValue, spec, buffer);
}

KprStatus kpriFilterGaussianBorder_32f_C1R(const Kpr32f* src, int srcStep, Kpr32f* dst, int dstStep, KprSize roiSize,
                                           Kpr32f borderValue, const KprFilterGaussianSpec* spec, Kpr8u* buffer) {
    return smoothBlock<1>(src, srcStep, dst, dstStep, roiSize, &borderValue, spec, buffer);
}

KprStatus kpriFilterGaussianBorder_32f_C3R(const Kpr32f* src, int srcStep, Kpr32f* dst, int dstStep, KprSize roiSize,
                                           const Kpr32f* borderValue, const KprFilterGaussianSpec* spec,
                                           Kpr8u* buffer) {
    return smoothBlock<3>(src, srcStep, dst, dstStep, roiSize, borderValue, spec, buffer);
}
