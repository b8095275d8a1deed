// Edges from derivatives that are ready: magnitudes, suppression along the gradient, growth from strong pixels.
//
//     M          L1 |dx| + |dy|, L2 dx * dx + dy * dy under squared thresholds; 0 unless it is above the low threshold
//     strong     M above the high threshold
//
//     16s        exact; _L: L1 at most 65535, L2 of values from -32767 on
//     32f        L1 one rounding, L2 fma(dx, dx, dy * dy); kpriCanny_32f8u_C1R keeps a magnitude equal to `low`
#include "feature/edge_codes.h"
#include "primitives/sizes.h"

namespace n0::feature {
namespace {

template <typename Size>
constexpr Bytes cannyBytes(Size width, Size height) {
    const Bytes w = width, h = height;
    return (w < 65533 && h < 65533 ? 5 : 9) * (w + 2) * (h + 2) + 16 * w + 160;
}

// ---- rows of magnitudes and codes

// They say whether the type of the magnitudes holds them all.
template <typename Sum>
struct IntegerRow {
    Sum sum;
    using Magnitude = typename Sum::Magnitude;

    [[gnu::noinline]] bool operator()(const Kpr16s* dx, const Kpr16s* dy, EdgeRow<Magnitude> row, Kpr64s width) const {
        walkColumns<32>(width, [=, this](auto part, Kpr64s x) {
            putPixels<kAnyReach>(sum, row, x, load(dx + x, part), load(dy + x, part));
        });
        return true;
    }
};

// Sums of 16 bits hold all but the 65536 of two derivatives of -32768.
struct SumRow {
    SaturatedSum sum;
    using Magnitude = Kpr16u;

    [[gnu::noinline]] bool operator()(const Kpr16s* dx, const Kpr16s* dy, EdgeRow<Kpr16u> row, Kpr64s width) const {
        bool within = true;
        walkColumns<32>(width, [&, this](auto part, Kpr64s x) {
            within &= putPixels<kAnyReach>(sum, row, x, load(dx + x, part), load(dy + x, part));
        });
        const auto beyond = [](auto part, const Kpr16s* h, const Kpr16s* v) -> Bits64 {
            const Vec<Kpr16s> least = broadcast<Kpr16s>(-32768);
            return equal(load(h, part), least) & equal(load(v, part), least);
        };
        return within || searchRow<32>(width, beyond, dx, dy) < 0;
    }
};

template <bool squares>
struct FloatRow {
    Kpr32f low;
    using Magnitude = Kpr32s;

    [[gnu::noinline]] bool operator()(const Kpr32f* dx, const Kpr32f* dy, EdgeRow<Kpr32s> row, Kpr64s width) const {
        const Vec<Kpr32f> above = broadcast(low);
        walkColumns<16>(width, [=](auto part, Kpr64s x) {
            const Vec<Kpr32f> h = load(dx + x, part), v = load(dy + x, part);
            const Vec<Kpr32f> m = squares ? fma(h, h, v * v) : abs(h) + abs(v);
            store(row.magnitudes + x, as<Kpr32s>(keep(less(above, m), m)), All{});
            const Codes codes = codesOf(abs(h), abs(v));
            putBits<16>(row.level, x, codes.level);
            putBits<16>(row.upright, x, codes.upright);
            putBits<16>(row.unlike, x, signs(as<Kpr32f>(as<Kpr32s>(h) ^ as<Kpr32s>(v))));
        });
        return true;
    }
};

// Above which a number is that is not below `low`.
Kpr32f justBelow(Kpr32f low) {
    if (!(low > 0)) return low == 0 ? -1.0F : low;
    return __builtin_bit_cast(Kpr32f, __builtin_bit_cast(Kpr32s, low) - 1);
}

// ---- the pipeline

template <typename T>
struct Derivatives {
    Rows<const T> dx, dy;
    Rows<Kpr8u> dst;
    Kpr64s width, height;
    Kpr8u* buffer;
};

// False, and nothing is written, where a magnitude did not fit.
template <typename T, typename MakeRow>
bool detect(const Derivatives<T>& job, const MakeRow& make, typename MakeRow::Magnitude high) {
    using Pixels = EdgeRows<typename MakeRow::Magnitude>;
    alignas(64) Kpr8u own[Pixels::bytes(kOwnColumns)];
    Workspace space(job.buffer, static_cast<Kpr64s>(cannyBytes(job.width, job.height)));
    Workspace near(own, sizeof own);
    EdgePlanes planes(space, job.width, job.height);
    Pixels pixels(job.width <= kOwnColumns ? near : space, planes, job.width, high);
    for (Kpr64s y = 0; y < job.height; ++y) {
        if (!make(job.dx[y], job.dy[y], pixels.next(), job.width)) return false;
        pixels.filled();
    }
    pixels.end();
    planes.trace(job.dst);
    return true;
}

KprStatus detectSums(const Derivatives<Kpr16s>& job, Kpr32f low, Kpr32f high) {
    if (!detect(job, SumRow{{floorOf<Kpr16u>(low)}}, floorOf<Kpr16u>(high)))
        detect(job, IntegerRow<ExactSum>{{floorOf<Kpr32s>(low)}}, floorOf<Kpr32s>(high));
    return kprStatusOk;
}

KprStatus detectByNorm(const Derivatives<Kpr16s>& job, Kpr32f low, Kpr32f high, int norm) {
    if (norm == kprNormL1)
        detect(job, IntegerRow<SaturatedSum>{{floorOf<Kpr16u>(low)}}, floorOf<Kpr16u>(high));
    else
        detect(job, IntegerRow<SquareSum<true>>{{floorOf<Kpr32s>(low * low)}}, floorOf<Kpr32s>(high * high));
    return kprStatusOk;
}

KprStatus detectByNorm(const Derivatives<Kpr32f>& job, Kpr32f low, Kpr32f high, int norm) {
    if (norm == kprNormL1)
        detect(job, FloatRow<false>{low}, bitsOf(high));
    else
        detect(job, FloatRow<true>{low * low}, bitsOf(high * high));
    return kprStatusOk;
}

// ---- checks

template <typename T, typename Size, typename Step>
constexpr KprStatus imagesHold(Size roi, Step dxStep, Step dyStep, Step dstStep) {
    return firstFailure(roiHolds(roi), rowsFit<T>(roi.width, dxStep, dyStep), rowsFit<Kpr8u>(roi.width, dstStep),
                        stepsAlign<T>(dxStep, dyStep));
}

constexpr KprStatus thresholdsHold(Kpr32f low, Kpr32f high) { return failIf(low < 0 || low > high, kprStatusBadArg); }

template <typename... Integer>
constexpr KprStatus within32Bits(Integer... values) {
    return failIf(((values > 0x7fffffff) || ...), kprStatusSizeOverflow);
}

}  // namespace
}  // namespace n0::feature

using namespace n0;
using namespace n0::feature;

KprStatus kpriCannyGetSize(KprSize roiSize, int* result) {
    return firstFailure(notNull(result), roiHolds(roiSize))
               ?: putSize(cannyBytes(roiSize.width, roiSize.height), result);
}

KprStatus kpriCannyGetSize_L(Kpr64s width, Kpr64s height, Kpr64s* result) {
    return firstFailure(notNull(result), within32Bits(width, height), roiHolds(KprSizeL{width, height}))
               ?: putSize(cannyBytes(width, height), result);
}

KprStatus kpriCanny_16s8u_C1R(const Kpr16s* dx, int dxStep, const Kpr16s* dy, int dyStep, Kpr8u* dst, int dstStep,
                              KprSize roiSize, Kpr32f lowThreshold, Kpr32f highThreshold, Kpr8u* buffer) {
    return firstFailure(notNull(dx, dy, dst, buffer), imagesHold<Kpr16s>(roiSize, dxStep, dyStep, dstStep),
                        thresholdsHold(lowThreshold, highThreshold))
               ?: detectSums({{dx, dxStep}, {dy, dyStep}, {dst, dstStep}, roiSize.width, roiSize.height, buffer},
                             lowThreshold, highThreshold);
}

KprStatus kpriCanny_32f8u_C1R(const Kpr32f* dx, int dxStep, const Kpr32f* dy, int dyStep, Kpr8u* dst, int dstStep,
                              KprSize roiSize, Kpr32f lowThreshold, Kpr32f highThreshold, Kpr8u* buffer) {
    return firstFailure(notNull(dx, dy, dst, buffer), imagesHold<Kpr32f>(roiSize, dxStep, dyStep, dstStep),
                        thresholdsHold(lowThreshold, highThreshold))
               ?: detectByNorm(
                      Derivatives<Kpr32f>{
                          {dx, dxStep}, {dy, dyStep}, {dst, dstStep}, roiSize.width, roiSize.height, buffer},
                      justBelow(lowThreshold), highThreshold, kprNormL1);
}

KprStatus kpriCanny_16s8u_C1R_L(const Kpr16s* dx, Kpr64s dxStep, const Kpr16s* dy, Kpr64s dyStep, Kpr8u* dst,
                                Kpr64s dstStep, KprSizeL roiSize, Kpr32f lowThreshold, Kpr32f highThreshold, int norm,
                                Kpr8u* buffer) {
    const bool squared = norm == kprNormL2;  // a negative low threshold passes squared
    return firstFailure(notNull(dx, dy, dst, buffer),
                        within32Bits(roiSize.width, roiSize.height, dxStep, dyStep, dstStep),
                        imagesHold<Kpr16s>(roiSize, dxStep, dyStep, dstStep),
                        squared ? thresholdsHold(lowThreshold * lowThreshold, highThreshold * highThreshold)
                                : thresholdsHold(lowThreshold, highThreshold),
                        failIf(norm != kprNormL1 && norm != kprNormL2, kprStatusBadNorm))
               ?: detectByNorm(
                      Derivatives<Kpr16s>{
                          {dx, dxStep}, {dy, dyStep}, {dst, dstStep}, roiSize.width, roiSize.height, buffer},
                      lowThreshold, highThreshold, norm);
}

KprStatus kpriCanny_32f8u_C1R_L(const Kpr32f* dx, Kpr64s dxStep, const Kpr32f* dy, Kpr64s dyStep, Kpr8u* dst,
                                Kpr64s dstStep, KprSizeL roiSize, Kpr32f lowThreshold, Kpr32f highThreshold, int norm,
                                Kpr8u* buffer) {
    return firstFailure(
               notNull(dx, dy, dst, buffer), within32Bits(roiSize.width, roiSize.height, dxStep, dyStep, dstStep),
               imagesHold<Kpr32f>(roiSize, dxStep, dyStep, dstStep), thresholdsHold(lowThreshold, highThreshold),
               failIf(norm != kprNormL1 && norm != kprNormL2, kprStatusBadNorm))
               ?: detectByNorm(
                      Derivatives<Kpr32f>{
                          {dx, dxStep}, {dy, dyStep}, {dst, dstStep}, roiSize.width, roiSize.height, buffer},
                      lowThreshold, highThreshold, norm);
}
