// The response of Harris: with A, B, C the means of dx * dx, dy * dy and dx * dy over a window,
//
//     dst = S * fma(-t, k * t, fma(A, B, -(C * C)))    t = A + B, S = avgWindow^4 * scale
//
// A mean is the sum over its window divided by the window's area, rounded once. Products beyond a side that is not in
// memory continue those of the ROI by the base mode, the constant being 0; on a side in memory they are formed there.
#include "feature/structure_rows.h"

namespace n0::feature {
namespace {

// The difference of the pixels beside, and of the one below and the one above.
template <typename T>
struct CentralGradient {
    using Middle = T;
    static constexpr int kRadius = 1;
    static constexpr int kPlanes = 2;

    template <typename Part, typename Src>
    KPR_INLINE static void across(Part part, const Src* s, T* out, Kpr64s plane) {
        const Vec<T> left = loadAs<T>(s - 1, part), here = loadAs<T>(s, part), right = loadAs<T>(s + 1, part);
        store(out, right - left, part);
        store(out + plane, here, part);
    }
    template <typename Part, typename At>
    KPR_INLINE static Vec<T> dx(Part part, At differences) {
        return load(differences(1), part);
    }
    template <typename Part, typename At>
    KPR_INLINE static Vec<T> dy(Part part, At pixels) {
        return load(pixels(2), part) - load(pixels(0), part);
    }
};

// v / area for areas of 9 and 25, by a product with the inverse and one correction: the very quotient as long as the
// remainder is exact, that is for 0 and for numbers from 2^-100 to 2^120.
template <int area>
KPR_INLINE Vec<Kpr32f> quotient(Vec<Kpr32f> v) {
    const Vec<Kpr32f> inverse = broadcast(1.0F / area), near = v * inverse;
    return fma(minusProduct(broadcast<Kpr32f>(area), near, v), inverse, near);
}
KPR_INLINE bool correctable(const Tensor& sums) {
    // As integers, less one: 0 becomes the largest, and so do NaN and infinity nearly.
    const auto order = [](Vec<Kpr32f> v) { return as<unsigned>(as<Kpr32s>(abs(v)) - broadcast<Kpr32s>(1)); };
    const Vec<unsigned> least = min(min(order(sums.xx), order(sums.yy)), order(sums.xy));
    const Vec<Kpr32f> most = sums.xx + sums.yy;  // |xy| is not larger
    return (less(least, broadcast(0x0d800000U)) | static_cast<Mask<Kpr32f>>(~less(most, broadcast(0x1p120F)))) == 0;
}

template <int rows, int area>
void putResponse(const Measure& measure, const Kpr32f* const* row, Kpr64s distance, Kpr32f* dst, Kpr64s count) {
    const Kpr32f* sums[rows];  // a copy: a store could change the pointers, for all a compiler knows
    for (int i = 0; i < rows; ++i) sums[i] = row[i];
    const Vec<Kpr32f> k = broadcast(measure.k), factor = broadcast(measure.factor), n = broadcast(measure.area);
    walkColumns<16>(count, [=](auto part, Kpr64s x) {
        const Tensor sum = tensorAt<rows>(sums, distance, x, part);
        Tensor mean;
        if (area != 0 && correctable(sum))
            mean = {quotient<area | 1>(sum.xx), quotient<area | 1>(sum.yy), quotient<area | 1>(sum.xy)};
        else
            mean = {sum.xx / n, sum.yy / n, sum.xy / n};
        const auto [a, b, c] = mean;
        const Vec<Kpr32f> t = a + b, cc = c * c;
        const Vec<Kpr32f> det = fma(a, b, zero<Kpr32f>() - cc);
        store(dst + x, factor * minusProduct(t, k * t, det), part);
    });
}

template <typename Src>
struct Job {
    Rows<const Src> src;
    Rows<Kpr32f> dst;
    KprSize roi;
    int filter;
    KprMaskSize mask;
    int window;
    Kpr32f k, scale;
    KprBorderType border;
    Src value;
    Kpr8u* buffer;
};

constexpr Window windowOf(int size) { return {(size - 1) / 2, size / 2}; }

// A window that looks at more rows than there are needs none beyond them: the plane is taken at its tallest.
constexpr Bytes harrisBytes(KprSize roi, KprMaskSize mask, int window) {
    const Kpr64s tallest = Kpr64s{roi.height} + window;
    return structureBytes(roi.width, tallest, mask == kprMaskSize3x3 ? 1 : 2, windowOf(window));
}

template <typename Src>
KprStatus respond(const Job<Src>& job) {
    using Middle = std::conditional_t<sizeof(Src) == 1, Kpr16s, Kpr32f>;
    const Border border = job.border;
    const Window window = windowOf(job.window);
    // The plane: what the windows find in memory belongs to it.
    const int left = border.left ? window.before : 0, top = border.top ? window.before : 0;
    const Kpr64s width = Kpr64s{job.roi.width} + left + (border.right ? window.after : 0);
    const Kpr64s height = Kpr64s{job.roi.height} + top + (border.bottom ? window.after : 0);
    const bool made = oneOf(border.base, kprBorderReplicate, kprBorderMirror);
    const Plane plane = {width, height, {left, top}, made ? border.base : KprBorderType{kprBorderConstant}, 0};
    const auto area = static_cast<Kpr64f>(Kpr64s{job.window} * job.window);
    const auto factor = static_cast<Kpr32f>(area * area * static_cast<Kpr64f>(job.scale));
    const auto put = job.window == 3 ? putResponse<3, 9> : job.window == 5 ? putResponse<5, 25> : putResponse<1, 0>;
    const Measure measure = {put, 1, factor, job.k, static_cast<Kpr32f>(area)};
    const Workspace space(job.buffer, static_cast<Kpr64s>(harrisBytes(job.roi, job.mask, job.window)));
    const Rows<const Src> src = {job.src[-top] - left, job.src.step};
    const auto walk = [&]<typename Rule>() {
        walkStructures<Rule>(space, columnsOf(width, border), rowsOf(height, border), src, job.value, plane, window,
                             measure, job.roi, job.dst);
        return kprStatusOk;
    };
    if (job.filter == kprFilterCentralDifference) return walk.template operator()<CentralGradient<Middle>>();
    if (job.filter == kprFilterScharr) return walk.template operator()<ScharrGradient<Middle>>();
    if (job.mask == kprMaskSize5x5) return walk.template operator()<SobelGradient5<Middle>>();
    return walk.template operator()<SobelGradient3<Middle>>();
}

constexpr KprStatus filterHolds(int filter, KprMaskSize mask) {
    const bool known = filter == kprFilterSobel || filter == kprFilterScharr || filter == kprFilterCentralDifference;
    const bool fits = mask == kprMaskSize3x3 || (mask == kprMaskSize5x5 && filter == kprFilterSobel);
    return firstFailure(failIf(!known, kprStatusBadAlgorithm), failIf(!fits, kprStatusBadMaskSize));
}

template <typename Src>
KprStatus harris(const Job<Src>& job) {
    const bool inPlace = static_cast<const void*>(job.src.first) == job.dst.first;
    return firstFailure(notNull(job.src.first, job.dst.first, job.buffer), failIf(inPlace, kprStatusInPlaceUnsupported),
                        roiHolds(job.roi), stepsAlign<Kpr32f>(job.dst.step), filterHolds(job.filter, job.mask),
                        borderServesFilter(job.border), failIf(job.window < 1, kprStatusBadSize),
                        failIf(job.src.step < 0 || job.dst.step < 0, kprStatusBadStep))
               ?: respond(job);
}

}  // namespace
}  // namespace n0::feature

using namespace n0;
using namespace n0::feature;

KprStatus kpriHarrisCornerGetBufferSize(KprSize roiSize, KprMaskSize filterMask, int avgWindow, KprDataType dataType,
                                        int numChannels, int* result) {
    return firstFailure(notNull(result), roiHolds(roiSize),
                        failIf(filterMask != kprMaskSize3x3 && filterMask != kprMaskSize5x5, kprStatusBadMaskSize),
                        failIf(dataType != kpr8u && dataType != kpr32f, kprStatusBadDataType),
                        failIf(numChannels != 1, kprStatusBadChannel), failIf(avgWindow < 1, kprStatusBadSize))
               ?: putSize(harrisBytes(roiSize, filterMask, avgWindow), result);
}

KprStatus kpriHarrisCorner_8u32f_C1R(const Kpr8u* src, int srcStep, Kpr32f* dst, int dstStep, KprSize roiSize,
                                     int filterType, KprMaskSize filterMask, int avgWindow, Kpr32f k, Kpr32f scale,
                                     KprBorderType borderType, Kpr8u borderValue, Kpr8u* buffer) {
    return harris<Kpr8u>({{src, srcStep},
                          {dst, dstStep},
                          roiSize,
                          filterType,
                          filterMask,
                          avgWindow,
                          k,
                          scale,
                          borderType,
                          borderValue,
                          buffer});
}

KprStatus kpriHarrisCorner_32f_C1R(const Kpr32f* src, int srcStep, Kpr32f* dst, int dstStep, KprSize roiSize,
                                   int filterType, KprMaskSize filterMask, int avgWindow, Kpr32f k, Kpr32f scale,
                                   KprBorderType borderType, Kpr32f borderValue, Kpr8u* buffer) {
    return harris<Kpr32f>({{src, srcStep},
                           {dst, dstStep},
                           roiSize,
                           filterType,
                           filterMask,
                           avgWindow,
                           k,
                           scale,
                           borderType,
                           borderValue,
                           buffer});
}
