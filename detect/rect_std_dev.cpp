// Standard deviations of the pixels in a rectangle, at each position of a window, from integral tables.
//
//     sum = (a - b) - (c - d)       of each table, at the rectangle's corners
//     variance = fma(-mean, mean, meanSq), mean = inverse * sum, meanSq = inverse * sumOfSquares
//     dst = sqrt(variance), of a variance below zero 0
//
// A float result is computed in double precision and its variance rounded to single; an integer result is computed in
// single precision throughout and rounded half up. Tables of integers wrap.
#include "frame/checks.h"
#include "primitives/rows.h"
#include "primitives/simd_detect.h"

namespace n0::detect {
namespace {

// Where the four elements of a position lie, and how many pixels their rectangle has.
struct Corners {
    Kpr64s column[4];
    Kpr64s row[4];
    Kpr64f area;

    static Corners upright(KprRect r) {
        const Kpr64s x = r.x, y = r.y, w = r.width, h = r.height;
        return {{x, x + w, x, x + w}, {y, y, y + h, y + h}, static_cast<Kpr64f>(w * h)};
    }
    static Corners tilted(KprRect r) {
        const Kpr64s x = r.x, y = r.y, w = r.width, h = r.height;
        return {{x - y, x - y - h, x - y + w, x - y + w - h},
                {x + y, x + y + h, x + y + w, x + y + w + h},
                static_cast<Kpr64f>(w * h) * 2.0};
    }
};

template <typename T>
struct Corner4 {
    const T* at[4];

    Corner4(Rows<const T> table, const Corners& corners, Kpr64s y) {
        for (int i = 0; i < 4; ++i) at[i] = table[y + corners.row[i]] + corners.column[i];
    }

    template <typename Part>
    KPR_INLINE Vec<T> sum(Part part, Kpr64s x) const {
        return (load(at[0] + x, part) - load(at[1] + x, part)) - (load(at[2] + x, part) - load(at[3] + x, part));
    }
};

KPR_INLINE Vec<Kpr64f> variance(Vec<Kpr64f> inverse, Vec<Kpr64f> sum, Vec<Kpr64f> squares) {
    const auto mean = inverse * sum;
    return fmaNegated(mean, mean, inverse * squares);
}

KPR_INLINE Vec<Kpr32f> root(Vec<Kpr32f> variance) { return sqrt(max(zero<Kpr32f>(), variance)); }

template <typename T>
KprStatus deviations(Rows<const T> src, Rows<const Kpr64f> sqr, Rows<Kpr32f> dst, KprSize roi, const Corners& corners) {
    const auto inverse = broadcast(1.0 / corners.area);
    for (int y = 0; y < roi.height; ++y) {
        const Corner4<T> sums(src, corners, y);
        const Corner4<Kpr64f> squares(sqr, corners, y);
        Kpr32f* const row = dst[y];
        walkColumns<16>(
            roi.width, [&](auto part, Kpr64s x) __attribute__((always_inline)) {
                const auto sum = sums.sum(part, x);
                const auto lower = variance(inverse, half<0>(sum), squares.sum(part, x));
                const auto upper = variance(inverse, half<1>(sum), squares.sum(upperHalf(part), x + 8));
                store(row + x, root(toFloat(lower, upper)), part);
            });
    }
    return kprStatusOk;
}

KprStatus deviations(Rows<const Kpr32s> src, Rows<const Kpr32s> sqr, Rows<Kpr32s> dst, KprSize roi,
                     const Corners& corners, int scaleFactor) {
    const auto inverse = broadcast(1.0F / static_cast<Kpr32f>(corners.area));
    const auto scale = timesPowerOf2(broadcast(1.0F), broadcast(-static_cast<Kpr32f>(scaleFactor)));
    for (int y = 0; y < roi.height; ++y) {
        const Corner4<Kpr32s> sums(src, corners, y);
        const Corner4<Kpr32s> squares(sqr, corners, y);
        Kpr32s* const row = dst[y];
        walkColumns<16>(
            roi.width, [&](auto part, Kpr64s x) __attribute__((always_inline)) {
                const auto mean = inverse * toFloat(sums.sum(part, x));
                const auto meanSq = inverse * toFloat(squares.sum(part, x));
                const auto deviation = root(fmaNegated(mean, mean, meanSq));
                store(row + x, truncate(fma(deviation, scale, broadcast(0.5F))), part);
            });
    }
    return kprStatusOk;
}

// ---- checks

template <typename T, typename S, typename D>
KprStatus tablesHold(Kpr64s width, Kpr64s reach, int srcStep, int sqrStep, int dstStep) {
    return firstFailure(rowsFit<T>(reach, srcStep), rowsFit<D>(width, dstStep), rowsFit<S>(reach, sqrStep),
                        stepsAlign<T>(srcStep, dstStep), stepsAlign<S>(sqrStep));
}

constexpr KprStatus rectHolds(KprRect r) {
    return failIf(r.x < 0 || r.y < 0 || r.width < 1 || r.height < 1, kprStatusBadSize);
}

constexpr Kpr64s uprightReach(KprSize roi, KprRect r) { return Kpr64s{roi.width} + r.x + r.width; }
constexpr Kpr64s tiltedReach(KprSize roi, KprRect r) { return Kpr64s{roi.width} + r.x + r.y + r.width + r.height - 1; }

}  // namespace
}  // namespace n0::detect

using namespace n0;
using namespace n0::detect;

KprStatus kpriRectStdDev_32f_C1R(const Kpr32f* src, int srcStep, const Kpr64f* sqr, int sqrStep, Kpr32f* dst,
                                 int dstStep, KprSize roiSize, KprRect rect) {
    return firstFailure(notNull(src, sqr, dst), roiHolds(roiSize),
                        tablesHold<Kpr32f, Kpr64f, Kpr32f>(roiSize.width, uprightReach(roiSize, rect), srcStep, sqrStep,
                                                           dstStep),
                        rectHolds(rect))
               ?: deviations<Kpr32f>({src, srcStep}, {sqr, sqrStep}, {dst, dstStep}, roiSize, Corners::upright(rect));
}

KprStatus kpriRectStdDev_32s32f_C1R(const Kpr32s* src, int srcStep, const Kpr64f* sqr, int sqrStep, Kpr32f* dst,
                                    int dstStep, KprSize roiSize, KprRect rect) {
    return firstFailure(notNull(src, sqr, dst), roiHolds(roiSize),
                        tablesHold<Kpr32s, Kpr64f, Kpr32f>(roiSize.width, uprightReach(roiSize, rect), srcStep, sqrStep,
                                                           dstStep),
                        rectHolds(rect))
               ?: deviations<Kpr32s>({src, srcStep}, {sqr, sqrStep}, {dst, dstStep}, roiSize, Corners::upright(rect));
}

KprStatus kpriRectStdDev_32s_C1RSfs(const Kpr32s* src, int srcStep, const Kpr32s* sqr, int sqrStep, Kpr32s* dst,
                                    int dstStep, KprSize roiSize, KprRect rect, int scaleFactor) {
    return firstFailure(notNull(src, sqr, dst), roiHolds(roiSize),
                        tablesHold<Kpr32s, Kpr32s, Kpr32s>(roiSize.width, uprightReach(roiSize, rect), srcStep, sqrStep,
                                                           dstStep),
                        rectHolds(rect))
               ?: deviations({src, srcStep}, {sqr, sqrStep}, {dst, dstStep}, roiSize, Corners::upright(rect),
                             scaleFactor);
}

KprStatus kpriTiltedRectStdDev_32f_C1R(const Kpr32f* src, int srcStep, const Kpr64f* sqr, int sqrStep, Kpr32f* dst,
                                       int dstStep, KprSize roiSize, KprRect rect) {
    return firstFailure(
               notNull(src, sqr, dst), roiHolds(roiSize),
               tablesHold<Kpr32f, Kpr64f, Kpr32f>(roiSize.width, tiltedReach(roiSize, rect), srcStep, sqrStep, dstStep),
               rectHolds(rect))
               ?: deviations<Kpr32f>({src, srcStep}, {sqr, sqrStep}, {dst, dstStep}, roiSize, Corners::tilted(rect));
}

KprStatus kpriTiltedRectStdDev_32s32f_C1R(const Kpr32s* src, int srcStep, const Kpr64f* sqr, int sqrStep, Kpr32f* dst,
                                          int dstStep, KprSize roiSize, KprRect rect) {
    return firstFailure(
               notNull(src, sqr, dst), roiHolds(roiSize),
               tablesHold<Kpr32s, Kpr64f, Kpr32f>(roiSize.width, tiltedReach(roiSize, rect), srcStep, sqrStep, dstStep),
               rectHolds(rect))
               ?: deviations<Kpr32s>({src, srcStep}, {sqr, sqrStep}, {dst, dstStep}, roiSize, Corners::tilted(rect));
}

KprStatus kpriTiltedRectStdDev_32s_C1RSfs(const Kpr32s* src, int srcStep, const Kpr32s* sqr, int sqrStep, Kpr32s* dst,
                                          int dstStep, KprSize roiSize, KprRect rect, int scaleFactor) {
    return firstFailure(
               notNull(src, sqr, dst), roiHolds(roiSize),
               tablesHold<Kpr32s, Kpr32s, Kpr32s>(roiSize.width, tiltedReach(roiSize, rect), srcStep, sqrStep, dstStep),
               rectHolds(rect))
               ?: deviations({src, srcStep}, {sqr, sqrStep}, {dst, dstStep}, roiSize, Corners::tilted(rect),
                             scaleFactor);
}
