/* Pixel differences and accumulators. */
#ifndef KPRCV_STATS_H
#define KPRCV_STATS_H

#include <kprcv/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Absolute difference of two images: dst = |src1 - src2|.
 *
 * 8u and 16u are exact. 32f rounds the difference once and clears its sign, so that a NaN result has a clear sign bit.
 * The C3R form takes three interleaved channels; roiSize counts pixels.
 *
 * src1, src2, dst              pixels; dst may be the same image as either source, in any other way they must not
 * overlap src1Step, src2Step, dstStep  bytes from row to row roiSize                      pixels; at least 1 x 1
 *
 * Returns kprStatusOk, kprStatusNullPtr, kprStatusBadSize, kprStatusBadStep, kprStatusStepNotMultiple (16u, 32f). */
KprStatus kpriAbsDiff_8u_C1R(const Kpr8u* src1, int src1Step, const Kpr8u* src2, int src2Step, Kpr8u* dst, int dstStep,
                             KprSize roiSize);
KprStatus kpriAbsDiff_8u_C3R(const Kpr8u* src1, int src1Step, const Kpr8u* src2, int src2Step, Kpr8u* dst, int dstStep,
                             KprSize roiSize);
KprStatus kpriAbsDiff_16u_C1R(const Kpr16u* src1, int src1Step, const Kpr16u* src2, int src2Step, Kpr16u* dst,
                              int dstStep, KprSize roiSize);
KprStatus kpriAbsDiff_32f_C1R(const Kpr32f* src1, int src1Step, const Kpr32f* src2, int src2Step, Kpr32f* dst,
                              int dstStep, KprSize roiSize);

/* Absolute difference of an image and a constant: dst = |value - src|.
 *
 * As kpriAbsDiff. In 8u and 16u a value outside the element's range is taken as the nearest end of the range; that is
 * no error. */
KprStatus kpriAbsDiffC_8u_C1R(const Kpr8u* src, int srcStep, Kpr8u* dst, int dstStep, KprSize roiSize, int value);
KprStatus kpriAbsDiffC_16u_C1R(const Kpr16u* src, int srcStep, Kpr16u* dst, int dstStep, KprSize roiSize, int value);
KprStatus kpriAbsDiffC_32f_C1R(const Kpr32f* src, int srcStep, Kpr32f* dst, int dstStep, KprSize roiSize, Kpr32f value);

/* Sum of frames: srcDst = srcDst + src, rounded once to single precision.
 *
 * In the IMR forms `mask` selects: m is 1 where the mask byte is not zero and 0 elsewhere, and srcDst = m * src +
 * srcDst, rounded once. An unselected pixel is thus computed too: it keeps its value while src is finite (a negative
 * zero may become positive), and becomes NaN where src is infinite or NaN.
 *
 * src              pixels
 * mask             one byte a pixel; every value but 0 selects
 * srcDst           the accumulator, read and written; must not overlap src or mask
 * srcStep, maskStep, srcDstStep   bytes from row to row
 * roiSize          pixels; at least 1 x 1
 *
 * Returns kprStatusOk, kprStatusNullPtr, kprStatusBadSize, kprStatusBadStep, kprStatusStepNotMultiple. With a 16u
 * source its step is checked whole, length then multiple, before the mask's and the accumulator's. */
KprStatus kpriAdd_8u32f_C1IR(const Kpr8u* src, int srcStep, Kpr32f* srcDst, int srcDstStep, KprSize roiSize);
KprStatus kpriAdd_16u32f_C1IR(const Kpr16u* src, int srcStep, Kpr32f* srcDst, int srcDstStep, KprSize roiSize);
KprStatus kpriAdd_8u32f_C1IMR(const Kpr8u* src, int srcStep, const Kpr8u* mask, int maskStep, Kpr32f* srcDst,
                              int srcDstStep, KprSize roiSize);
KprStatus kpriAdd_16u32f_C1IMR(const Kpr16u* src, int srcStep, const Kpr8u* mask, int maskStep, Kpr32f* srcDst,
                               int srcDstStep, KprSize roiSize);
KprStatus kpriAdd_32f_C1IMR(const Kpr32f* src, int srcStep, const Kpr8u* mask, int maskStep, Kpr32f* srcDst,
                            int srcDstStep, KprSize roiSize);

/* Sum of squares: srcDst = src * src + srcDst, one fused step, rounded once.
 *
 * As kpriAdd, but that the masked forms round the square first: srcDst = m * round(src * src) + srcDst. For 8u sources
 * the square is exact and the forms agree; for 16u and 32f they may differ in the last place. */
KprStatus kpriAddSquare_8u32f_C1IR(const Kpr8u* src, int srcStep, Kpr32f* srcDst, int srcDstStep, KprSize roiSize);
KprStatus kpriAddSquare_16u32f_C1IR(const Kpr16u* src, int srcStep, Kpr32f* srcDst, int srcDstStep, KprSize roiSize);
KprStatus kpriAddSquare_32f_C1IR(const Kpr32f* src, int srcStep, Kpr32f* srcDst, int srcDstStep, KprSize roiSize);
KprStatus kpriAddSquare_8u32f_C1IMR(const Kpr8u* src, int srcStep, const Kpr8u* mask, int maskStep, Kpr32f* srcDst,
                                    int srcDstStep, KprSize roiSize);
KprStatus kpriAddSquare_16u32f_C1IMR(const Kpr16u* src, int srcStep, const Kpr8u* mask, int maskStep, Kpr32f* srcDst,
                                     int srcDstStep, KprSize roiSize);
KprStatus kpriAddSquare_32f_C1IMR(const Kpr32f* src, int srcStep, const Kpr8u* mask, int maskStep, Kpr32f* srcDst,
                                  int srcDstStep, KprSize roiSize);

/* Sum of products: srcDst = src1 * src2 + srcDst, one fused step, rounded once.
 *
 * As kpriAdd, but that the masked forms round the product first: srcDst = m * round(src1 * src2) + srcDst. With 16u
 * sources both lengths are checked, then both multiples, before the mask's and the accumulator's steps. */
KprStatus kpriAddProduct_8u32f_C1IR(const Kpr8u* src1, int src1Step, const Kpr8u* src2, int src2Step, Kpr32f* srcDst,
                                    int srcDstStep, KprSize roiSize);
KprStatus kpriAddProduct_16u32f_C1IR(const Kpr16u* src1, int src1Step, const Kpr16u* src2, int src2Step, Kpr32f* srcDst,
                                     int srcDstStep, KprSize roiSize);
KprStatus kpriAddProduct_32f_C1IR(const Kpr32f* src1, int src1Step, const Kpr32f* src2, int src2Step, Kpr32f* srcDst,
                                  int srcDstStep, KprSize roiSize);
KprStatus kpriAddProduct_8u32f_C1IMR(const Kpr8u* src1, int src1Step, const Kpr8u* src2, int src2Step,
                                     const Kpr8u* mask, int maskStep, Kpr32f* srcDst, int srcDstStep, KprSize roiSize);
KprStatus kpriAddProduct_16u32f_C1IMR(const Kpr16u* src1, int src1Step, const Kpr16u* src2, int src2Step,
                                      const Kpr8u* mask, int maskStep, Kpr32f* srcDst, int srcDstStep, KprSize roiSize);
KprStatus kpriAddProduct_32f_C1IMR(const Kpr32f* src1, int src1Step, const Kpr32f* src2, int src2Step,
                                   const Kpr8u* mask, int maskStep, Kpr32f* srcDst, int srcDstStep, KprSize roiSize);

/* Running average: srcDst = alpha * round(src - srcDst) + srcDst, the last step fused and rounded once.
 *
 * alpha is the weight of the new frame, usually from 0 to 1; any value is taken. As kpriAdd; in the masked forms alpha
 * is 0 where the mask byte is 0, so that an unselected pixel keeps a finite value and turns NaN where src - srcDst is
 * infinite or NaN. */
KprStatus kpriAddWeighted_8u32f_C1IR(const Kpr8u* src, int srcStep, Kpr32f* srcDst, int srcDstStep, KprSize roiSize,
                                     Kpr32f alpha);
KprStatus kpriAddWeighted_16u32f_C1IR(const Kpr16u* src, int srcStep, Kpr32f* srcDst, int srcDstStep, KprSize roiSize,
                                      Kpr32f alpha);
KprStatus kpriAddWeighted_32f_C1IR(const Kpr32f* src, int srcStep, Kpr32f* srcDst, int srcDstStep, KprSize roiSize,
                                   Kpr32f alpha);
KprStatus kpriAddWeighted_8u32f_C1IMR(const Kpr8u* src, int srcStep, const Kpr8u* mask, int maskStep, Kpr32f* srcDst,
                                      int srcDstStep, KprSize roiSize, Kpr32f alpha);
KprStatus kpriAddWeighted_16u32f_C1IMR(const Kpr16u* src, int srcStep, const Kpr8u* mask, int maskStep, Kpr32f* srcDst,
                                       int srcDstStep, KprSize roiSize, Kpr32f alpha);
KprStatus kpriAddWeighted_32f_C1IMR(const Kpr32f* src, int srcStep, const Kpr8u* mask, int maskStep, Kpr32f* srcDst,
                                    int srcDstStep, KprSize roiSize, Kpr32f alpha);

/* Blend of two images: dst = alpha * round(src1 - src2) + src2, the last step fused and rounded once. dst may be the
 * same image as either source. Parameters and statuses as kpriAddWeighted. */
KprStatus kpriAddWeighted_32f_C1R(const Kpr32f* src1, int src1Step, const Kpr32f* src2, int src2Step, Kpr32f* dst,
                                  int dstStep, KprSize roiSize, Kpr32f alpha);

#ifdef __cplusplus
}
#endif

#endif
