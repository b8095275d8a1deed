// The Gaussian filter in its two forms, of images with one channel: each asks for its sizes, allocates and initialises
// once, and then filters any number of images up to the size it was made for.
#pragma once

#include <type_traits>
#include <vector>

#include "examples/tour/tour.h"

namespace tour {

template <typename T>
constexpr KprDataType kTypeOf = std::is_same_v<T, Kpr8u> ? kpr8u : kpr16u;

// The form with 32-bit sizes. Taps, and the rows between the two passes, are integers; the border is part of the block.
template <typename T>
class GaussianBorder {
  public:
    GaussianBorder(KprSize largest, int taps, float sigma, KprBorderType border) {
        int specSize = 0;
        int bufferSize = 0;
        Tour::requireOk("FilterGaussianGetBufferSize",
                        kpriFilterGaussianGetBufferSize(largest, taps, kTypeOf<T>, 1, &specSize, &bufferSize));
        spec_.resize(specSize);
        buffer_.resize(bufferSize);
        Tour::requireOk("FilterGaussianInit",
                        kpriFilterGaussianInit(largest, taps, border, kTypeOf<T>, 1, spec(), buffer_.data(), sigma));
    }
    GaussianBorder(const GaussianBorder&) = delete;  // where the kernel lies in the block depends on its address

    // `outside` is the value beyond the ROI under a constant border.
    KprStatus operator()(const T* src, int srcStep, Image<T>& dst, T outside = 0) {
        if constexpr (std::is_same_v<T, Kpr8u>) {
            return kpriFilterGaussianBorder_8u_C1R(src, srcStep, dst.data(), dst.step(), dst.size(), outside, spec(),
                                                   buffer_.data());
        } else {
            return kpriFilterGaussianBorder_16u_C1R(src, srcStep, dst.data(), dst.step(), dst.size(), outside, spec(),
                                                    buffer_.data());
        }
    }

  private:
    KprFilterGaussianSpec* spec() { return reinterpret_cast<KprFilterGaussianSpec*>(spec_.data()); }
    std::vector<Kpr8u> spec_;
    std::vector<Kpr8u> buffer_;
};

// The form with 64-bit sizes. Taps and rows are floats; the border is given with every call.
template <typename T>
class GaussianLarge {
  public:
    GaussianLarge(KprSizeL largest, int taps, float sigma, KprBorderType border) : border_(border) {
        int64_t specSize = 0;
        int64_t initSize = 0;
        int64_t bufferSize = 0;
        Tour::requireOk("FilterGaussianGetSpecSize_L",
                        kpriFilterGaussianGetSpecSize_L(taps, kTypeOf<T>, 1, &specSize, &initSize));
        Tour::requireOk("FilterGaussianGetBufferSize_L",
                        kpriFilterGaussianGetBufferSize_L(largest, taps, kTypeOf<T>, border, 1, &bufferSize));
        spec_.resize(specSize);
        buffer_.resize(bufferSize);
        std::vector<Kpr8u> initBuffer(initSize);
        Tour::requireOk("FilterGaussianInit_L", kpriFilterGaussianInit_L(largest, taps, border, kTypeOf<T>, 1, spec(),
                                                                         initBuffer.data(), sigma));
    }
    GaussianLarge(const GaussianLarge&) = delete;

    KprStatus operator()(const T* src, int srcStep, Image<T>& dst, T outside = 0) {
        const KprSizeL size = {dst.width, dst.height};
        if constexpr (std::is_same_v<T, Kpr8u>) {
            return kpriFilterGaussian_8u_C1R_L(src, srcStep, dst.data(), dst.step(), size, border_, &outside, spec(),
                                               buffer_.data());
        } else {
            return kpriFilterGaussian_16u_C1R_L(src, srcStep, dst.data(), dst.step(), size, border_, &outside, spec(),
                                                buffer_.data());
        }
    }

  private:
    KprFilterGaussianSpec* spec() { return reinterpret_cast<KprFilterGaussianSpec*>(spec_.data()); }
    KprBorderType border_;
    std::vector<Kpr8u> spec_;
    std::vector<Kpr8u> buffer_;
};

// The sigma that suits a number of taps: beyond them little of the bell is left.
inline float sigmaOf(int taps) { return 0.3F * ((static_cast<float>(taps) - 1) * 0.5F - 1) + 0.8F; }

}  // namespace tour
