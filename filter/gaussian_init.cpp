// The sizes and kernels of the Gaussian filters.
//
//     g(x) = exp(-(x * x) / ((sigma + sigma) * sigma)), every step in single precision
//
// The border form divides by the sum from one end to the other, and stores integers for integer images; a coefficient
// of 2^15 wraps. The large form adds the pairs first, and stores half of the kernel, the outermost tap first, in
// floats. The two hold slightly different coefficients.
#include "filter/gaussian_block.h"
#include "primitives/math.h"

namespace n0::filter {
namespace {

constexpr KprStatus kernelSizeHolds(bool holds) { return failIf(!holds, kprStatusBadArg); }

constexpr KprStatus typeHolds(KprDataType type) {
    return failIf(type != kpr8u && type != kpr16u && type != kpr16s && type != kpr32f, kprStatusBadDataType);
}

constexpr KprStatus channelsHold(int channels) {
    return failIf(channels != 1 && channels != 3, kprStatusBadChannelCount);
}

Kpr32f weight(int distance, Kpr32f twoSigmaSquared) {
    const auto x = static_cast<Kpr32f>(distance);
    return kprsExpOneF(-(x * x) / twoSigmaSquared);
}

// The value rounded half up, of which the low 16 bits are kept. What no integer holds becomes the least one, and 0.
Kpr16s integerTap(Kpr32f tap) {
    const Kpr64f rounded = Kpr64f{tap} + 0.5;
    return rounded < 0x1p31 ? static_cast<Kpr16s>(static_cast<Kpr32s>(rounded)) : Kpr16s{0};
}

void makeBorderKernel(KprFilterGaussianSpec* spec, int n, Kpr32f sigma, Kpr32f* g) {
    const Kpr32f twoSigmaSquared = (sigma + sigma) * sigma;
    Kpr32f sum = 0.0F;
    for (int i = 0; i < n; ++i) sum += g[i] = weight(i - n / 2, twoSigmaSquared);
    if (spec->dataType == kpr32f) {
        auto* const kernel = kernelAt<Kpr32f>(spec, kHeaderBytes, 16);
        for (Kpr64s i = 0; i < n; ++i) {
            for (int copy = 0; copy < 8; ++copy) kernel[8 * i + copy] = g[i] / sum;
        }
    } else {
        spec->scaleBits = scaleBitsOf(spec->dataType);
        const auto scale = static_cast<Kpr32f>(1 << spec->scaleBits);
        auto* const kernel = kernelAt<Kpr16s>(spec, kHeaderBytes, 16);
        for (int i = 0; i < n; ++i) kernel[i] = integerTap(g[i] / sum * scale);
    }
}

void makeLargeKernel(KprFilterGaussianSpec* spec, int n, Kpr32f sigma) {
    const Kpr32f twoSigmaSquared = (sigma + sigma) * sigma;
    const int radius = n / 2;
    auto* const w = kernelAt<Kpr32f>(spec, kHeaderBytes, kLargeKernelAlignment);
    Kpr32f sum = 0.0F;
    for (int i = 0; i < radius; ++i) {
        w[i] = weight(radius - i, twoSigmaSquared);
        sum += w[i] + w[i];  // the double is exact: one rounding
    }
    w[radius] = 1.0F;
    sum = 1.0F + sum;
    for (int i = 0; i <= radius; ++i) w[i] /= sum;
}

}  // namespace
}  // namespace n0::filter

using namespace n0;
using namespace n0::filter;

KprStatus kpriFilterGaussianGetBufferSize(KprSize roiSize, uint32_t kernelSize, KprDataType dataType, int numChannels,
                                          int* specSize, int* bufferSize) {
    const KprStatus status =
        firstFailure(notNull(specSize, bufferSize), roiHolds(roiSize), kernelSizeHolds(isGaussianSize(kernelSize)),
                     typeHolds(dataType), channelsHold(numChannels));
    if (status != kprStatusOk) return status;
    const BorderSizes sizes = borderSizes(static_cast<Bytes32>(roiSize.width), static_cast<Bytes32>(roiSize.height),
                                          kernelSize, dataType, numChannels);
    *specSize = static_cast<int>(sizes.spec);
    *bufferSize = static_cast<int>(sizes.buffer);
    return kprStatusOk;
}

KprStatus kpriFilterGaussianInit(KprSize roiSize, uint32_t kernelSize, KprBorderType borderType, KprDataType dataType,
                                 int numChannels, KprFilterGaussianSpec* spec, Kpr8u* buffer, Kpr32f sigma) {
    const KprStatus status = firstFailure(
        notNull(spec, buffer), roiHolds(roiSize), kernelSizeHolds(isGaussianSize(kernelSize)), typeHolds(dataType),
        channelsHold(numChannels), failIf(!(sigma > 0.0F), kprStatusBadArg), borderServesFilter(borderType));
    if (status != kprStatusOk) return status;
    spec->kernelSize = static_cast<int>(kernelSize);
    spec->kernelOffset = kHeaderBytes;
    spec->dataType = dataType;
    spec->borderType = borderType;
    makeBorderKernel(spec, spec->kernelSize, sigma, alignedUp<Kpr32f>(buffer, 16));
    return kprStatusOk;
}

KprStatus kpriFilterGaussianGetSpecSize_L(int kernelSize, KprDataType dataType, int numChannels, int64_t* specSize,
                                          int64_t* initBufferSize) {
    const KprStatus status =
        firstFailure(notNull(specSize, initBufferSize), kernelSizeHolds(isGaussianSize(kernelSize)),
                     typeHolds(dataType), channelsHold(numChannels));
    if (status != kprStatusOk) return status;
    *specSize = (Kpr64s{kernelSize} + 1) / 2 * 4 + 128;
    *initBufferSize = 64;
    return kprStatusOk;
}

KprStatus kpriFilterGaussianGetBufferSize_L(KprSizeL roiSize, int kernelSize, KprDataType dataType,
                                            KprBorderType borderType, int numChannels, int64_t* bufferSize) {
    static_cast<void>(borderType);  // the same memory serves every border
    const KprStatus status =
        firstFailure(notNull(bufferSize), roiHolds(roiSize), kernelSizeHolds(isGaussianSize(kernelSize)),
                     typeHolds(dataType), channelsHold(numChannels));
    if (status != kprStatusOk) return status;
    *bufferSize = static_cast<Kpr64s>(
        largeBufferBytes(static_cast<Bits64>(roiSize.width) * static_cast<Bits64>(numChannels), kernelSize));
    return kprStatusOk;
}

KprStatus kpriFilterGaussianInit_L(KprSizeL roiSize, int kernelSize, KprBorderType borderType, KprDataType dataType,
                                   int numChannels, KprFilterGaussianSpec* spec, Kpr8u* buffer, Kpr32f sigma) {
    const KprStatus status = firstFailure(
        notNull(spec, buffer), roiHolds(roiSize), kernelSizeHolds(isGaussianSize(kernelSize)), typeHolds(dataType),
        channelsHold(numChannels), failIf(sigma <= 0.0F, kprStatusBadArg), borderServesFilter(largeWord(borderType)));
    if (status != kprStatusOk) return status;
    *spec = {kernelSize, kLargeKernelAlignment, dataType, borderType, 0};
    makeLargeKernel(spec, kernelSize, sigma);
    return kprStatusOk;
}
