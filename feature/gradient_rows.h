// Both first derivatives of an image at once: a ring of filtered rows holds the difference across and the average
// across of each, from which dx and dy are made down the columns.
#pragma once

#include "filter/fixed_kernels.h"

namespace n0::feature {

// Across: Difference and Average; down: dx is the Average of the differences, dy the Difference of the averages.
// `Across` may turn the sign of dx.
template <typename T, typename Difference, typename Average, typename Across = Difference>
struct Gradient {
    using Middle = T;
    static constexpr int kRadius = Difference::kRadius;
    static constexpr int kPlanes = 2;

    template <typename Part, typename Src>
    KPR_INLINE static void across(Part part, const Src* s, T* out, Kpr64s plane) {
        Vec<T> pixels[2 * kRadius + 1];
        for (int i = 0; i <= 2 * kRadius; ++i) pixels[i] = loadAs<T>(s + i - kRadius, part);
        const auto at = [&](int i) { return pixels[i]; };
        const Vec<T> difference = Across::template sum<T>(at), average = Average::template sum<T>(at);
        store(out, difference, part);
        store(out + plane, average, part);
    }

    // Of the rows of a window, at a column of theirs.
    template <typename Part, typename At>
    KPR_INLINE static Vec<T> dx(Part part, At differences) {
        return Average::template sum<T>([=](int i) { return load(differences(i), part); });
    }
    template <typename Part, typename At>
    KPR_INLINE static Vec<T> dy(Part part, At averages) {
        return Difference::template sum<T>([=](int i) { return load(averages(i), part); });
    }
};

template <typename T>
using SobelGradient3 = Gradient<T, filter::Dx3, filter::Sobel3>;
template <typename T>
using SobelGradient5 = Gradient<T, filter::Dx5, filter::Sobel5>;
template <typename T>
using ScharrGradient = Gradient<T, filter::Dx3, filter::Scharr3>;

// dx left minus right.
template <typename T>
using LeftwardSobelGradient3 = Gradient<T, filter::Dx3, filter::Sobel3, filter::DxNeg3>;
template <typename T>
using LeftwardSobelGradient5 = Gradient<T, filter::Dx5, filter::Sobel5, filter::DxNeg5>;

}  // namespace n0::feature
