// Accumulators: a frame is folded into a running single-precision image. With d the accumulator's pixel, a and b the
// sources' pixels converted exactly to single precision, and every operation rounded once:
//
//                  plain                        masked, m = 1 where the mask byte is not 0, else 0
//     Add          d + a                        fma(m, a, d)
//     AddSquare    fma(a, a, d)                 fma(m, a * a, d)
//     AddProduct   fma(a, b, d)                 fma(m, a * b, d)
//     AddWeighted  fma(alpha, a - d, d)         fma(alpha or 0 by the mask, a - d, d)
//
// The masked formulas have no branch: an unselected pixel is computed with a zero factor and stored, so that an
// infinite or NaN term turns it into a NaN. AddWeighted_32f_C1R writes fma(alpha, a - b, b) to a third image.
#include "frame/checks.h"
#include "primitives/rows.h"

namespace n0::stats {
namespace {

using Floats = Vec<Kpr32f>;
inline constexpr int kStep = kLanes<Kpr32f>;

// The checks of every member; the type of the sources decides their order. Those of a mask are made by who has one.
template <typename Src, typename... Same>
KprStatus callHolds(KprSize roi, KprStatus maskIsThere, KprStatus maskFits, Rows<Kpr32f> srcDst, Rows<const Src> src,
                    Rows<const Same>... second) {
    const KprStatus given = firstFailure(notNull(src.first, second.first..., srcDst.first), maskIsThere, roiHolds(roi));
    const KprStatus sourcesFit = rowsFit<Src>(roi.width, src.step, second.step...);
    const KprStatus sourcesAlign = stepsAlign<Src>(src.step, second.step...);
    const KprStatus othersFit = firstFailure(maskFits, rowsFit<Kpr32f>(roi.width, srcDst.step));
    const KprStatus sumAligns = stepsAlign<Kpr32f>(srcDst.step);
    if constexpr (sizeof(Src) == 2) return firstFailure(given, sourcesFit, sourcesAlign, othersFit, sumAligns);
    return firstFailure(given, sourcesFit, othersFit, sourcesAlign, sumAligns);
}

// srcDst = rule(sources..., srcDst) for every pixel.
template <typename Rule, typename... Src>
KprStatus accumulate(Rule rule, KprSize roi, Rows<Kpr32f> srcDst, Rows<const Src>... src) {
    return callHolds(roi, kprStatusOk, kprStatusOk, srcDst, src...)
               ?: walkRoi<kStep>(
                      roi,
                      [=](auto part, Kpr32f* d, const Src*... s) {
                          store(d, rule(loadAs<Kpr32f>(s, part)..., load(d, part)), part);
                      },
                      srcDst, src...);
}

// srcDst = fma(factor or 0 by the mask, rule(sources..., srcDst), srcDst) for every pixel.
template <typename Rule, typename... Src>
KprStatus accumulateMasked(Rule term, Kpr32f factor, Rows<const Kpr8u> mask, KprSize roi, Rows<Kpr32f> srcDst,
                           Rows<const Src>... src) {
    const Floats weight = broadcast(factor);
    return callHolds(roi, notNull(mask.first), rowsFit<Kpr8u>(roi.width, mask.step), srcDst, src...)
               ?: walkRoi<kStep>(
                      roi,
                      [=](auto part, Kpr32f* d, const Kpr8u* m, const Src*... s) {
                          const Floats old = load(d, part);
                          const Floats selected = keep(loadMask<Kpr32f>(m, part), weight);
                          store(d, fma(selected, term(loadAs<Kpr32f>(s, part)..., old), old), part);
                      },
                      srcDst, mask, src...);
}

// The terms that the masked forms weigh.
constexpr auto source = [](Floats a, Floats) { return a; };
constexpr auto square = [](Floats a, Floats) { return a * a; };
constexpr auto product = [](Floats a, Floats b, Floats) { return a * b; };
constexpr auto change = [](Floats a, Floats d) { return a - d; };

// The rules of the plain forms.
constexpr auto addSource = [](Floats a, Floats d) { return d + a; };
constexpr auto addSquare = [](Floats a, Floats d) { return fma(a, a, d); };
constexpr auto addProduct = [](Floats a, Floats b, Floats d) { return fma(a, b, d); };
auto addWeighted(Kpr32f alpha) {
    return [weight = broadcast(alpha)](Floats a, Floats d) { return fma(weight, a - d, d); };
}

}  // namespace
}  // namespace n0::stats

using namespace n0;
using namespace n0::stats;

KprStatus kpriAdd_8u32f_C1IR(const Kpr8u* src, int srcStep, Kpr32f* srcDst, int srcDstStep, KprSize roiSize) {
    return accumulate(addSource, roiSize, Rows{srcDst, srcDstStep}, Rows{src, srcStep});
}

KprStatus kpriAdd_16u32f_C1IR(const Kpr16u* src, int srcStep, Kpr32f* srcDst, int srcDstStep, KprSize roiSize) {
    return accumulate(addSource, roiSize, Rows{srcDst, srcDstStep}, Rows{src, srcStep});
}

KprStatus kpriAdd_8u32f_C1IMR(const Kpr8u* src, int srcStep, const Kpr8u* mask, int maskStep, Kpr32f* srcDst,
                              int srcDstStep, KprSize roiSize) {
    return accumulateMasked(source, 1.0F, Rows{mask, maskStep}, roiSize, Rows{srcDst, srcDstStep}, Rows{src, srcStep});
}

KprStatus kpriAdd_16u32f_C1IMR(const Kpr16u* src, int srcStep, const Kpr8u* mask, int maskStep, Kpr32f* srcDst,
                               int srcDstStep, KprSize roiSize) {
    return accumulateMasked(source, 1.0F, Rows{mask, maskStep}, roiSize, Rows{srcDst, srcDstStep}, Rows{src, srcStep});
}

KprStatus kpriAdd_32f_C1IMR(const Kpr32f* src, int srcStep, const Kpr8u* mask, int maskStep, Kpr32f* srcDst,
                            int srcDstStep, KprSize roiSize) {
    return accumulateMasked(source, 1.0F, Rows{mask, maskStep}, roiSize, Rows{srcDst, srcDstStep}, Rows{src, srcStep});
}

KprStatus kpriAddSquare_8u32f_C1IR(const Kpr8u* src, int srcStep, Kpr32f* srcDst, int srcDstStep, KprSize roiSize) {
    return accumulate(addSquare, roiSize, Rows{srcDst, srcDstStep}, Rows{src, srcStep});
}

KprStatus kpriAddSquare_16u32f_C1IR(const Kpr16u* src, int srcStep, Kpr32f* srcDst, int srcDstStep, KprSize roiSize) {
    return accumulate(addSquare, roiSize, Rows{srcDst, srcDstStep}, Rows{src, srcStep});
}

KprStatus kpriAddSquare_32f_C1IR(const Kpr32f* src, int srcStep, Kpr32f* srcDst, int srcDstStep, KprSize roiSize) {
    return accumulate(addSquare, roiSize, Rows{srcDst, srcDstStep}, Rows{src, srcStep});
}

KprStatus kpriAddSquare_8u32f_C1IMR(const Kpr8u* src, int srcStep, const Kpr8u* mask, int maskStep, Kpr32f* srcDst,
                                    int srcDstStep, KprSize roiSize) {
    return accumulateMasked(square, 1.0F, Rows{mask, maskStep}, roiSize, Rows{srcDst, srcDstStep}, Rows{src, srcStep});
}

KprStatus kpriAddSquare_16u32f_C1IMR(const Kpr16u* src, int srcStep, const Kpr8u* mask, int maskStep, Kpr32f* srcDst,
                                     int srcDstStep, KprSize roiSize) {
    return accumulateMasked(square, 1.0F, Rows{mask, maskStep}, roiSize, Rows{srcDst, srcDstStep}, Rows{src, srcStep});
}

KprStatus kpriAddSquare_32f_C1IMR(const Kpr32f* src, int srcStep, const Kpr8u* mask, int maskStep, Kpr32f* srcDst,
                                  int srcDstStep, KprSize roiSize) {
    return accumulateMasked(square, 1.0F, Rows{mask, maskStep}, roiSize, Rows{srcDst, srcDstStep}, Rows{src, srcStep});
}

KprStatus kpriAddProduct_8u32f_C1IR(const Kpr8u* src1, int src1Step, const Kpr8u* src2, int src2Step, Kpr32f* srcDst,
                                    int srcDstStep, KprSize roiSize) {
    return accumulate(addProduct, roiSize, Rows{srcDst, srcDstStep}, Rows{src1, src1Step}, Rows{src2, src2Step});
}

KprStatus kpriAddProduct_16u32f_C1IR(const Kpr16u* src1, int src1Step, const Kpr16u* src2, int src2Step, Kpr32f* srcDst,
                                     int srcDstStep, KprSize roiSize) {
    return accumulate(addProduct, roiSize, Rows{srcDst, srcDstStep}, Rows{src1, src1Step}, Rows{src2, src2Step});
}

KprStatus kpriAddProduct_32f_C1IR(const Kpr32f* src1, int src1Step, const Kpr32f* src2, int src2Step, Kpr32f* srcDst,
                                  int srcDstStep, KprSize roiSize) {
    return accumulate(addProduct, roiSize, Rows{srcDst, srcDstStep}, Rows{src1, src1Step}, Rows{src2, src2Step});
}

KprStatus kpriAddProduct_8u32f_C1IMR(const Kpr8u* src1, int src1Step, const Kpr8u* src2, int src2Step,
                                     const Kpr8u* mask, int maskStep, Kpr32f* srcDst, int srcDstStep, KprSize roiSize) {
    return accumulateMasked(product, 1.0F, Rows{mask, maskStep}, roiSize, Rows{srcDst, srcDstStep},
                            Rows{src1, src1Step}, Rows{src2, src2Step});
}

KprStatus kpriAddProduct_16u32f_C1IMR(const Kpr16u* src1, int src1Step, const Kpr16u* src2, int src2Step,
                                      const Kpr8u* mask, int maskStep, Kpr32f* srcDst, int srcDstStep,
                                      KprSize roiSize) {
    return accumulateMasked(product, 1.0F, Rows{mask, maskStep}, roiSize, Rows{srcDst, srcDstStep},
                            Rows{src1, src1Step}, Rows{src2, src2Step});
}

KprStatus kpriAddProduct_32f_C1IMR(const Kpr32f* src1, int src1Step, const Kpr32f* src2, int src2Step,
                                   const Kpr8u* mask, int maskStep, Kpr32f* srcDst, int srcDstStep, KprSize roiSize) {
    return accumulateMasked(product, 1.0F, Rows{mask, maskStep}, roiSize, Rows{srcDst, srcDstStep},
                            Rows{src1, src1Step}, Rows{src2, src2Step});
}

KprStatus kpriAddWeighted_8u32f_C1IR(const Kpr8u* src, int srcStep, Kpr32f* srcDst, int srcDstStep, KprSize roiSize,
                                     Kpr32f alpha) {
    return accumulate(addWeighted(alpha), roiSize, Rows{srcDst, srcDstStep}, Rows{src, srcStep});
}

KprStatus kpriAddWeighted_16u32f_C1IR(const Kpr16u* src, int srcStep, Kpr32f* srcDst, int srcDstStep, KprSize roiSize,
                                      Kpr32f alpha) {
    return accumulate(addWeighted(alpha), roiSize, Rows{srcDst, srcDstStep}, Rows{src, srcStep});
}

KprStatus kpriAddWeighted_32f_C1IR(const Kpr32f* src, int srcStep, Kpr32f* srcDst, int srcDstStep, KprSize roiSize,
                                   Kpr32f alpha) {
    return accumulate(addWeighted(alpha), roiSize, Rows{srcDst, srcDstStep}, Rows{src, srcStep});
}

KprStatus kpriAddWeighted_8u32f_C1IMR(const Kpr8u* src, int srcStep, const Kpr8u* mask, int maskStep, Kpr32f* srcDst,
                                      int srcDstStep, KprSize roiSize, Kpr32f alpha) {
    return accumulateMasked(change, alpha, Rows{mask, maskStep}, roiSize, Rows{srcDst, srcDstStep}, Rows{src, srcStep});
}

KprStatus kpriAddWeighted_16u32f_C1IMR(const Kpr16u* src, int srcStep, const Kpr8u* mask, int maskStep, Kpr32f* srcDst,
                                       int srcDstStep, KprSize roiSize, Kpr32f alpha) {
    return accumulateMasked(change, alpha, Rows{mask, maskStep}, roiSize, Rows{srcDst, srcDstStep}, Rows{src, srcStep});
}

KprStatus kpriAddWeighted_32f_C1IMR(const Kpr32f* src, int srcStep, const Kpr8u* mask, int maskStep, Kpr32f* srcDst,
                                    int srcDstStep, KprSize roiSize, Kpr32f alpha) {
    return accumulateMasked(change, alpha, Rows{mask, maskStep}, roiSize, Rows{srcDst, srcDstStep}, Rows{src, srcStep});
}

KprStatus kpriAddWeighted_32f_C1R(const Kpr32f* src1, int src1Step, const Kpr32f* src2, int src2Step, Kpr32f* dst,
                                  int dstStep, KprSize roiSize, Kpr32f alpha) {
    const auto blend = [rule = addWeighted(alpha)](auto part, const Kpr32f* a, const Kpr32f* b, Kpr32f* d) {
        store(d, rule(load(a, part), load(b, part)), part);
    };
    return firstFailure(notNull(src1, src2, dst), roiHolds(roiSize),
                        rowsFit<Kpr32f>(roiSize.width, src1Step, src2Step, dstStep),
                        stepsAlign<Kpr32f>(src1Step, src2Step, dstStep))
               ?: walkRoi<kStep>(roiSize, blend, Rows{src1, src1Step}, Rows{src2, src2Step}, Rows{dst, dstStep});
}
