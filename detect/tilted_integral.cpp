// Integral images of rectangles at 45 degrees: tables of two columns and two rows more than the source. Rows 0 and 1
// are all `value`; the source row s makes row r from the two rows above it:
//
//     T[r][0] = T[r - 1][1]                                                            T[r][w + 1] = T[r - 1][w]
//     T[r][j + 1] = T[r - 1][j] + T[r - 1][j + 2] - T[r - 2][j + 1] + (s[j] + s[j + 1])     s[w] counts as 0
//
// and the same of the pixels' squares. 32s wraps. The others are computed in double precision, each step rounded: a
// table of floats is rounded once more when it is stored. The order of the steps is part of the result and differs:
//
//     32s, 64f beside 32s                    ((left + right) - above) + pixels
//     32f alone                              ((left - above) + right) + pixels
//     32f with squares, 64f beside 32f       ((pixels + left) + right) - above
#include "detect/table.h"
#include "frame/checks.h"

namespace n0::detect {
namespace {

// The steps of the recurrence in their order.
struct PixelsLast {
    template <typename T>
    KPR_INLINE static Vec<T> sum(Vec<T> left, Vec<T> right, Vec<T> above, Vec<T> pixels) {
        return left + right - above + pixels;
    }
};
struct AboveSecond {
    template <typename T>
    KPR_INLINE static Vec<T> sum(Vec<T> left, Vec<T> right, Vec<T> above, Vec<T> pixels) {
        return left - above + right + pixels;
    }
};
struct PixelsFirst {
    template <typename T>
    KPR_INLINE static Vec<T> sum(Vec<T> left, Vec<T> right, Vec<T> above, Vec<T> pixels) {
        return pixels + left + right - above;
    }
};

// A row of a table, and the two above it.
template <typename T, typename Order>
struct TiltedRow {
    const T* above2;
    const T* above;
    T* dst;

    TiltedRow(Rows<T> table, Kpr64s y) : above2(table[y]), above(table[y + 1]), dst(table[y + 2]) {}

    // Sixteen elements from j + 1 on.
    template <typename Part>
    KPR_INLINE void put(Part part, Kpr64s j, Vec<Kpr32s> pixels) {
        if constexpr (std::is_same_v<T, Kpr32s>) {
            store(dst + j + 1,
                  Order::sum(load(above + j, part), load(above + j + 2, part), load(above2 + j + 1, part), pixels),
                  part);
        } else if constexpr (std::is_same_v<T, Kpr32f>) {
            const auto left = load(above + j, part), right = load(above + j + 2, part);
            const auto over = load(above2 + j + 1, part);
            store(dst + j + 1,
                  toFloat(Order::sum(half<0>(left), half<0>(right), half<0>(over), half<0>(pixels)),
                          Order::sum(half<1>(left), half<1>(right), half<1>(over), half<1>(pixels))),
                  part);
        } else {
            putEight(part, j, half<0>(pixels));
            putEight(upperHalf(part), j + 8, half<1>(pixels));
        }
    }

    KPR_INLINE void putEnds(Kpr64s width) {
        dst[0] = above[1];
        dst[width + 1] = above[width];
    }

  private:
    template <typename Part>
    KPR_INLINE void putEight(Part part, Kpr64s j, Vec<Kpr64f> pixels) {
        store(dst + j + 1,
              Order::sum(load(above + j, part), load(above + j + 2, part), load(above2 + j + 1, part), pixels), part);
    }
};

// Runs kernel(part, j, s[j], s[j + 1]) along a row, of which `dst` is the first element stored: steps are taken so that
// whole vectors fill whole lines. The last pixel has nothing behind it.
template <typename T, typename Kernel>
KPR_INLINE void walkPairs(const Kpr8u* src, Kpr64s width, const T* dst, Kernel kernel) {
    const auto inside = [&](auto part, Kpr64s j) __attribute__((always_inline)) {
        kernel(part, j, loadAs<Kpr32s>(src + j, part), loadAs<Kpr32s>(src + j + 1, part));
    };
    Kpr64s j = 0;
    if (width >= 128) {
        j = (-reinterpret_cast<std::intptr_t>(dst) & 63) / Kpr64s{sizeof(T)};
        if (j != 0) inside(First{j}, 0);
    }
    for (; j + 16 < width; j += 16) inside(All{}, j);
    const First part(width - j);
    kernel(part, j, loadAs<Kpr32s>(src + j, part), loadAs<Kpr32s>(src + j + 1, First{width - j - 1}));
}

template <typename Order, typename T>
KprStatus tiltedIntegral(Rows<const Kpr8u> src, Rows<T> dst, KprSize roi, T value) {
    for (int y = 0; y < 2; ++y) fillRow(dst[y], Kpr64s{roi.width} + 2, value);
    for (int y = 0; y < roi.height; ++y) {
        TiltedRow<T, Order> sum(dst, y);
        walkPairs(
            src[y], roi.width,
            sum.dst + 1, [&](auto part, Kpr64s j, Vec<Kpr32s> a, Vec<Kpr32s> b) __attribute__((always_inline)) {
                sum.put(part, j, a + b);
            });
        sum.putEnds(roi.width);
    }
    return kprStatusOk;
}

template <typename Order, typename T, typename S>
KprStatus tiltedIntegrals(Rows<const Kpr8u> src, Rows<T> dst, Rows<S> sqr, KprSize roi, T value, S valueSqr) {
    for (int y = 0; y < 2; ++y) {
        fillRow(dst[y], Kpr64s{roi.width} + 2, value);
        fillRow(sqr[y], Kpr64s{roi.width} + 2, valueSqr);
    }
    for (int y = 0; y < roi.height; ++y) {
        TiltedRow<T, Order> sum(dst, y);
        TiltedRow<S, Order> square(sqr, y);
        walkPairs(
            src[y], roi.width,
            sum.dst + 1, [&](auto part, Kpr64s j, Vec<Kpr32s> a, Vec<Kpr32s> b) __attribute__((always_inline)) {
                sum.put(part, j, a + b);
                square.put(part, j, squares(a) + squares(b));
            });
        sum.putEnds(roi.width);
        square.putEnds(roi.width);
    }
    return kprStatusOk;
}

}  // namespace
}  // namespace n0::detect

using namespace n0;
using namespace n0::detect;

KprStatus kpriTiltedIntegral_8u32s_C1R(const Kpr8u* src, int srcStep, Kpr32s* dst, int dstStep, KprSize roiSize,
                                       Kpr32s value) {
    return firstFailure(notNull(src, dst), roiHolds(roiSize), rowsFit<Kpr8u>(roiSize.width, srcStep),
                        rowsFit<Kpr32s>(Kpr64s{roiSize.width} + 2, dstStep), stepsAlign<Kpr32s>(dstStep))
               ?: tiltedIntegral<PixelsLast, Kpr32s>({src, srcStep}, {dst, dstStep}, roiSize, value);
}

KprStatus kpriTiltedIntegral_8u32f_C1R(const Kpr8u* src, int srcStep, Kpr32f* dst, int dstStep, KprSize roiSize,
                                       Kpr32f value) {
    return firstFailure(notNull(src, dst), roiHolds(roiSize), rowsFit<Kpr8u>(roiSize.width, srcStep),
                        rowsFit<Kpr32f>(Kpr64s{roiSize.width} + 2, dstStep), stepsAlign<Kpr32f>(dstStep))
               ?: tiltedIntegral<AboveSecond, Kpr32f>({src, srcStep}, {dst, dstStep}, roiSize, value);
}

KprStatus kpriTiltedSqrIntegral_8u32s_C1R(const Kpr8u* src, int srcStep, Kpr32s* dst, int dstStep, Kpr32s* sqr,
                                          int sqrStep, KprSize roiSize, Kpr32s value, Kpr32s valueSqr) {
    return firstFailure(notNull(src, dst, sqr), roiHolds(roiSize), rowsFit<Kpr8u>(roiSize.width, srcStep),
                        rowsFit<Kpr32s>(Kpr64s{roiSize.width} + 2, dstStep, sqrStep),
                        stepsAlign<Kpr32s>(dstStep, sqrStep))
               ?: tiltedIntegrals<PixelsLast, Kpr32s, Kpr32s>({src, srcStep}, {dst, dstStep}, {sqr, sqrStep}, roiSize,
                                                              value, valueSqr);
}

KprStatus kpriTiltedSqrIntegral_8u32s64f_C1R(const Kpr8u* src, int srcStep, Kpr32s* dst, int dstStep, Kpr64f* sqr,
                                             int sqrStep, KprSize roiSize, Kpr32s value, Kpr64f valueSqr) {
    return firstFailure(notNull(src, dst, sqr), roiHolds(roiSize), rowsFit<Kpr8u>(roiSize.width, srcStep),
                        rowsFit<Kpr32s>(Kpr64s{roiSize.width} + 2, dstStep),
                        rowsFit<Kpr64f>(Kpr64s{roiSize.width} + 2, sqrStep), stepsAlign<Kpr32s>(dstStep),
                        stepsAlign<Kpr64f>(sqrStep))
               ?: tiltedIntegrals<PixelsLast, Kpr32s, Kpr64f>({src, srcStep}, {dst, dstStep}, {sqr, sqrStep}, roiSize,
                                                              value, valueSqr);
}

KprStatus kpriTiltedSqrIntegral_8u32f64f_C1R(const Kpr8u* src, int srcStep, Kpr32f* dst, int dstStep, Kpr64f* sqr,
                                             int sqrStep, KprSize roiSize, Kpr32f value, Kpr64f valueSqr) {
    return firstFailure(notNull(src, dst, sqr), roiHolds(roiSize), rowsFit<Kpr8u>(roiSize.width, srcStep),
                        rowsFit<Kpr32f>(Kpr64s{roiSize.width} + 2, dstStep),
                        rowsFit<Kpr64f>(Kpr64s{roiSize.width} + 2, sqrStep), stepsAlign<Kpr32f>(dstStep),
                        stepsAlign<Kpr64f>(sqrStep))
               ?: tiltedIntegrals<PixelsFirst, Kpr32f, Kpr64f>({src, srcStep}, {dst, dstStep}, {sqr, sqrStep}, roiSize,
                                                               value, valueSqr);
}
