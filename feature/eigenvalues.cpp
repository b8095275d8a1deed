// The eigenvalues of the structure tensor: the smaller one, or both with their vectors.
//
// A, B, C are the means of dx * dx, dy * dy and dx * dy over the window: their sum times the float nearest to 1/9 or
// 1/25. With s = 1 / 4080 (aperture 3) or 1 / 65280 (aperture 5), times 0.6125 for Scharr's kernels:
//
//     smaller    (0.5 * s) * ((A + B) - sqrt(fma(A - B, A - B, 4 * (C * C))))
//     both       a, b, c = A * s, B * s, C * s; t = c * c; det = a * b - t; sq = sqrt((a - b) * (a - b) + 4 * t)
//                m = 0.001 * max(a, b); all zero where m > det or m > min(a, b)
//                l1, l2 = 0.5 * ((a + b) + sq), 0.5 * ((a + b) - sq)
//                vectors (0, 1) and (1, 0) where m > |c|; elsewhere (c, l - a) times 1 / max(its length, 2^-23)
#include "feature/structure_rows.h"
#include "filter/sobel.h"

namespace n0::feature {
namespace {

// ---- the measures

template <int window, typename Part>
KPR_INLINE Tensor meansAt(const Kpr32f* const* rows, Kpr64s distance, Kpr64s x, Part part) {
    const Tensor sums = tensorAt<window>(rows, distance, x, part);
    const Vec<Kpr32f> share = broadcast(window == 3 ? 1.0F / 9.0F : 1.0F / 25.0F);
    return {sums.xx * share, sums.yy * share, sums.xy * share};
}

template <int window>
void putSmaller(const Measure& measure, const Kpr32f* const* row, Kpr64s distance, Kpr32f* dst, Kpr64s count) {
    const Kpr32f* rows[window];  // a copy: a store could change the pointers, for all a compiler knows
    for (int i = 0; i < window; ++i) rows[i] = row[i];
    const Vec<Kpr32f> factor = broadcast(0.5F * measure.factor);
    walkColumns<16>(count, [=](auto part, Kpr64s x) {
        const auto [a, b, c] = meansAt<window>(rows, distance, x, part);
        const Vec<Kpr32f> e = fma(a - b, a - b, broadcast(4.0F) * (c * c));
        store(dst + x, factor * ((a + b) - sqrt(e)), part);
    });
}

// Sixteen pixels of six values each.
struct Eigen {
    Vec<Kpr32f> l1, l2, x1, y1, x2, y2;
};

template <typename Part>
KPR_INLINE void storeEigen(Kpr32f* dst, const Eigen& e, Part part) {
    const auto put = [&](auto which, auto half) {
        const auto three =
            inTurn<which>(pairsOf<half>(e.l1, e.l2), pairsOf<half>(e.x1, e.y1), pairsOf<half>(e.x2, e.y2));
        constexpr int at = 48 * half + 16 * which;
        if constexpr (std::is_same_v<Part, All>) {
            store(dst + at, as<Kpr32f>(three), All{});
        } else {
            const int floats = 6 * std::popcount(part.bits) - at;
            if (floats > 0) store(dst + at, as<Kpr32f>(three), First{floats});
        }
    };
    takeTurns<3>([&](auto which) { put(which, Turn<0>{}); });
    takeTurns<3>([&](auto which) { put(which, Turn<1>{}); });
}

template <int window>
void putVectors(const Measure& measure, const Kpr32f* const* row, Kpr64s distance, Kpr32f* dst, Kpr64s count) {
    const Kpr32f* rows[window];
    for (int i = 0; i < window; ++i) rows[i] = row[i];
    const Vec<Kpr32f> s = broadcast(measure.factor), none = zero<Kpr32f>(), one = broadcast(1.0F);
    walkColumns<16>(count, [=](auto part, Kpr64s x) {
        const Tensor means = meansAt<window>(rows, distance, x, part);
        const Vec<Kpr32f> a = means.xx * s, b = means.yy * s, c = means.xy * s;
        const Vec<Kpr32f> t = c * c, det = a * b - t;
        const Vec<Kpr32f> m = broadcast(0.001F) * max(a, b);
        const auto noCorner = static_cast<Mask<Kpr32f>>(less(det, m) | less(min(a, b), m));
        const Mask<Kpr32f> straight = less(abs(c), m);
        if (noCorner == 0xffff) {  // flat areas
            storeEigen(dst + 6 * x, {none, none, none, none, none, none}, part);
            return;
        }
        const Vec<Kpr32f> sq = sqrt((a - b) * (a - b) + broadcast(4.0F) * t);
        const Vec<Kpr32f> l1 = broadcast(0.5F) * ((a + b) + sq), l2 = broadcast(0.5F) * ((a + b) - sq);
        const auto inverse = [&](Vec<Kpr32f> u) {
            const Vec<Kpr32f> least = broadcast(1.1920929e-07F);
            return one / max(least, sqrt(t + u * u));  // of a NaN, a NaN
        };
        const Vec<Kpr32f> u1 = l1 - a, u2 = l2 - a, n1 = inverse(u1), n2 = inverse(u2);
        const auto value = [&](Vec<Kpr32f> v) { return select(noCorner, none, v); };
        const auto vector = [&](Vec<Kpr32f> constant, Vec<Kpr32f> v) { return value(select(straight, constant, v)); };
        storeEigen(dst + 6 * x,
                   {value(l1), value(l2), vector(none, c * n1), vector(one, u1 * n1), vector(one, c * n2),
                    vector(none, u2 * n2)},
                   part);
    });
}

// ---- one way through all

enum { kernelSobel = 0, kernelScharr = 1, kernelSobelNegative = 2 };

template <typename Src>
struct Job {
    Rows<const Src> src;
    Rows<Kpr32f> dst;
    KprSize roi;
    int kernel, aperture, window;
    KprBorderType border;
    Src value;
    Kpr8u* buffer;
};

// What the sizing calls tell. Its third line looks at the window where the aperture would be expected: a size that
// callers may have stored.
template <typename Src>
KprStatus bufferBytes(KprSize roi, int aperture, int window, Bytes& bytes) {
    constexpr KprDataType srcType = sizeof(Src) == 1 ? kpr8u : kpr32f, dstType = sizeof(Src) == 1 ? kpr16s : kpr32f;
    int most = 0;
    const auto atLeast = [&](auto sizing, auto... arguments) {
        int size = 0;
        const KprStatus status = sizing(roi, arguments..., &size);
        most = std::max(most, size);
        return status;
    };
    const KprMaskSize mask = 11 * aperture;
    const KprStatus status = firstFailure(
        atLeast(kpriFilterSobelVertBorderGetBufferSize, mask, srcType, dstType, 1),
        atLeast(kpriFilterSobelNegVertBorderGetBufferSize, mask, srcType, dstType, 1),
        atLeast(kpriFilterSobelHorizBorderGetBufferSize, mask, srcType, dstType, 1),
        atLeast(kpriFilterLowpassGetBufferSize_32f_C1R, 11 * window),
        window != 3 ? kprStatusOk
                    : atLeast(kpriFilterScharrVertMaskBorderGetBufferSize, kprMaskSize3x3, srcType, dstType, 1),
        window != 3 ? kprStatusOk
                    : atLeast(kpriFilterScharrHorizMaskBorderGetBufferSize, kprMaskSize3x3, srcType, dstType, 1));
    bytes = 16 * roundUp(Bytes{roi.width}, 16) * roi.height + most + 224;
    return status;
}

template <typename Src>
KprStatus sizeOf(KprSize roi, int aperture, int window, int* result) {
    Bytes bytes = 0;
    const auto three = [](int side) { return side == 3 || side == 5; };
    return firstFailure(notNull(result), roiHolds(roi), failIf(!three(aperture) || !three(window), kprStatusBadSize))
               ?: bufferBytes<Src>(roi, aperture, window, bytes)
               ?: putSize(bytes, result);
}

template <typename Src>
KprStatus measureAll(const Job<Src>& job, Measure measure) {
    using Middle = std::conditional_t<sizeof(Src) == 1, Kpr16s, Kpr32f>;
    KprBorderType base = baseOf(job.border);
    if (base == kprBorderDefault) base = kprBorderReplicate;
    const KprBorderType derivatives = base | (job.border & kprBorderInMem);
    const Plane plane = {job.roi.width,
                         job.roi.height,
                         {0, 0},
                         allInMemory(job.border) ? KprBorderType{kprBorderMirror} : base,
                         static_cast<Kpr32f>(job.value)};
    measure.factor = 1.0F / static_cast<Kpr32f>(job.aperture == 3 ? 4080 : 65280);
    if (job.kernel == kernelScharr) measure.factor *= 0.6125F;
    Bytes bytes = 0;
    bufferBytes<Src>(job.roi, job.aperture, job.window, bytes);
    const Workspace space(job.buffer, static_cast<Kpr64s>(bytes));
    const auto walk = [&]<typename Rule>() {
        walkStructures<Rule>(space, columnsOf(job.roi.width, derivatives), rowsOf(job.roi.height, derivatives), job.src,
                             job.value, plane, {job.window / 2, job.window / 2}, measure, job.roi, job.dst);
        return kprStatusOk;
    };
    const bool large = job.aperture == 5;
    if (job.kernel == kernelScharr) return walk.template operator()<ScharrGradient<Middle>>();
    if (job.kernel == kernelSobelNegative)
        return large ? walk.template operator()<SobelGradient5<Middle>>()
                     : walk.template operator()<SobelGradient3<Middle>>();
    return large ? walk.template operator()<LeftwardSobelGradient5<Middle>>()
                 : walk.template operator()<LeftwardSobelGradient3<Middle>>();
}

template <typename Src>
KprStatus checked(const Job<Src>& job) {
    const auto three = [](int side) { return side == 3 || side == 5; };
    const bool apertureHolds = job.aperture == 3 || (job.aperture == 5 && job.kernel != kernelScharr);
    const bool known = allInMemory(job.border) || oneOf(baseOf(job.border), kprBorderReplicate, kprBorderMirror,
                                                        kprBorderDefault, kprBorderConstant);
    return firstFailure(notNull(job.src.first, job.dst.first, job.buffer), roiHolds(job.roi),
                        rowsFit<Src>(job.roi.width, job.src.step), rowsFit<Kpr32f>(job.roi.width, job.dst.step),
                        sizeof(Src) == 1 ? kprStatusOk : stepsAlign<Kpr32f>(job.src.step),
                        stepsAlign<Kpr32f>(job.dst.step),
                        failIf(job.kernel < kernelSobel || job.kernel > kernelSobelNegative, kprStatusBadArg),
                        failIf(!apertureHolds || !three(job.window), kprStatusBadSize),
                        failIf((job.border & ~kMorphologyWord) != 0 || !known, kprStatusBadBorder));
}

template <typename Src>
KprStatus smallerEigenvalue(const Job<Src>& job) {
    return checked(job) ?: measureAll(job, {job.window == 3 ? putSmaller<3> : putSmaller<5>, 1, 0, 0, 0});
}

template <typename Src>
KprStatus eigenvectors(const Job<Src>& job) {
    return checked(job) ?: measureAll(job, {job.window == 3 ? putVectors<3> : putVectors<5>, 6, 0, 0, 0});
}

}  // namespace
}  // namespace n0::feature

using namespace n0;
using namespace n0::feature;

KprStatus kpriMinEigenValGetBufferSize_8u32f_C1R(KprSize roiSize, int apertureSize, int avgWindow, int* result) {
    return sizeOf<Kpr8u>(roiSize, apertureSize, avgWindow, result);
}

KprStatus kpriMinEigenValGetBufferSize_32f_C1R(KprSize roiSize, int apertureSize, int avgWindow, int* result) {
    return sizeOf<Kpr32f>(roiSize, apertureSize, avgWindow, result);
}

KprStatus kpriMinEigenVal_8u32f_C1R(const Kpr8u* src, int srcStep, Kpr32f* dst, int dstStep, KprSize roiSize,
                                    int kernelType, int apertureSize, int avgWindow, Kpr8u* buffer) {
    return smallerEigenvalue<Kpr8u>(
        {{src, srcStep}, {dst, dstStep}, roiSize, kernelType, apertureSize, avgWindow, kprBorderReplicate, 0, buffer});
}

KprStatus kpriMinEigenVal_32f_C1R(const Kpr32f* src, int srcStep, Kpr32f* dst, int dstStep, KprSize roiSize,
                                  int kernelType, int apertureSize, int avgWindow, Kpr8u* buffer) {
    return smallerEigenvalue<Kpr32f>(
        {{src, srcStep}, {dst, dstStep}, roiSize, kernelType, apertureSize, avgWindow, kprBorderReplicate, 0, buffer});
}

KprStatus kpriMinEigenValBorder_8u32f_C1R(const Kpr8u* src, int srcStep, Kpr32f* dst, int dstStep, KprSize roiSize,
                                          int kernelType, int apertureSize, int avgWindow, KprBorderType borderType,
                                          Kpr8u borderValue, Kpr8u* buffer) {
    return smallerEigenvalue<Kpr8u>({{src, srcStep},
                                     {dst, dstStep},
                                     roiSize,
                                     kernelType,
                                     apertureSize,
                                     avgWindow,
                                     borderType,
                                     borderValue,
                                     buffer});
}

KprStatus kpriMinEigenValBorder_32f_C1R(const Kpr32f* src, int srcStep, Kpr32f* dst, int dstStep, KprSize roiSize,
                                        int kernelType, int apertureSize, int avgWindow, KprBorderType borderType,
                                        Kpr32f borderValue, Kpr8u* buffer) {
    return smallerEigenvalue<Kpr32f>({{src, srcStep},
                                      {dst, dstStep},
                                      roiSize,
                                      kernelType,
                                      apertureSize,
                                      avgWindow,
                                      borderType,
                                      borderValue,
                                      buffer});
}

KprStatus kpriEigenValsVecsGetBufferSize_8u32f_C1R(KprSize roiSize, int apertureSize, int avgWindow, int* result) {
    return sizeOf<Kpr8u>(roiSize, apertureSize, avgWindow, result);
}

KprStatus kpriEigenValsVecsGetBufferSize_32f_C1R(KprSize roiSize, int apertureSize, int avgWindow, int* result) {
    return sizeOf<Kpr32f>(roiSize, apertureSize, avgWindow, result);
}

KprStatus kpriEigenValsVecs_8u32f_C1R(const Kpr8u* src, int srcStep, Kpr32f* dst, int dstStep, KprSize roiSize,
                                      int kernelType, int apertureSize, int avgWindow, Kpr8u* buffer) {
    return eigenvectors<Kpr8u>(
        {{src, srcStep}, {dst, dstStep}, roiSize, kernelType, apertureSize, avgWindow, kprBorderReplicate, 0, buffer});
}

KprStatus kpriEigenValsVecs_32f_C1R(const Kpr32f* src, int srcStep, Kpr32f* dst, int dstStep, KprSize roiSize,
                                    int kernelType, int apertureSize, int avgWindow, Kpr8u* buffer) {
    return eigenvectors<Kpr32f>(
        {{src, srcStep}, {dst, dstStep}, roiSize, kernelType, apertureSize, avgWindow, kprBorderReplicate, 0, buffer});
}

KprStatus kpriEigenValsVecsBorder_8u32f_C1R(const Kpr8u* src, int srcStep, Kpr32f* dst, int dstStep, KprSize roiSize,
                                            int kernelType, int apertureSize, int avgWindow, KprBorderType borderType,
                                            Kpr8u borderValue, Kpr8u* buffer) {
    return eigenvectors<Kpr8u>({{src, srcStep},
                                {dst, dstStep},
                                roiSize,
                                kernelType,
                                apertureSize,
                                avgWindow,
                                borderType,
                                borderValue,
                                buffer});
}

KprStatus kpriEigenValsVecsBorder_32f_C1R(const Kpr32f* src, int srcStep, Kpr32f* dst, int dstStep, KprSize roiSize,
                                          int kernelType, int apertureSize, int avgWindow, KprBorderType borderType,
                                          Kpr32f borderValue, Kpr8u* buffer) {
    return eigenvectors<Kpr32f>({{src, srcStep},
                                 {dst, dstStep},
                                 roiSize,
                                 kernelType,
                                 apertureSize,
                                 avgWindow,
                                 borderType,
                                 borderValue,
                                 buffer});
}
