/* Pixel differences, accumulators, and statistics of selected pixels. */
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

/* ---- statistics of the selected pixels
 *
 * A masked form (M) looks at the pixels whose mask byte is not zero; the others are not read, so that a NaN among them
 * has no influence. A C3C form looks at one channel of three, `coi`, which is 1, 2 or 3. Sums of integers are exact;
 * sums of floats are formed in 32 lanes of single precision, pixel x of a row in lane x mod 32, each widened to double
 * precision at the row's end, so that they are the same bits on any alignment and step. */

/* Mean of the selected pixels, in double precision; 0 where none is selected. Of floats the lanes are widened after
 * every 120 steps of 32 pixels (a row's last step may be shorter) instead of at each row's end.
 *
 * src              pixels, of three interleaved channels in the C3C forms
 * mask             one byte a pixel; every value but 0 selects
 * srcStep, maskStep   bytes from row to row
 * roiSize          pixels; at least 1 x 1
 * coi              the channel of interest, 1 to 3
 * mean             receives the result; must not be null
 *
 * Returns kprStatusOk, kprStatusNullPtr, kprStatusBadSize, kprStatusBadStep (either step), kprStatusStepNotMultiple
 * (16u, 32f), kprStatusBadCoi. */
KprStatus kpriMean_8u_C1MR(const Kpr8u* src, int srcStep, const Kpr8u* mask, int maskStep, KprSize roiSize,
                           Kpr64f* mean);
KprStatus kpriMean_16u_C1MR(const Kpr16u* src, int srcStep, const Kpr8u* mask, int maskStep, KprSize roiSize,
                            Kpr64f* mean);
KprStatus kpriMean_32f_C1MR(const Kpr32f* src, int srcStep, const Kpr8u* mask, int maskStep, KprSize roiSize,
                            Kpr64f* mean);
KprStatus kpriMean_8u_C3CMR(const Kpr8u* src, int srcStep, const Kpr8u* mask, int maskStep, KprSize roiSize, int coi,
                            Kpr64f* mean);
KprStatus kpriMean_16u_C3CMR(const Kpr16u* src, int srcStep, const Kpr8u* mask, int maskStep, KprSize roiSize, int coi,
                             Kpr64f* mean);
KprStatus kpriMean_32f_C3CMR(const Kpr32f* src, int srcStep, const Kpr8u* mask, int maskStep, KprSize roiSize, int coi,
                             Kpr64f* mean);

/* Mean and standard deviation: sqrt(|sumOfSquares / n - mean * mean|) over the n selected pixels, the difference formed
 * with one fused step. Both are 0 where no pixel is selected; the deviation of a constant integer image is exactly 0.
 * Of floats, pixels x and x + 16 of every 32 are taken together, as a + b and as fma(a, a, b * b), in 16 lanes each.
 *
 * As kpriMean, but that mean and stdDev may be null: what is null is not written. */
KprStatus kpriMean_StdDev_8u_C1R(const Kpr8u* src, int srcStep, KprSize roiSize, Kpr64f* mean, Kpr64f* stdDev);
KprStatus kpriMean_StdDev_16u_C1R(const Kpr16u* src, int srcStep, KprSize roiSize, Kpr64f* mean, Kpr64f* stdDev);
KprStatus kpriMean_StdDev_32f_C1R(const Kpr32f* src, int srcStep, KprSize roiSize, Kpr64f* mean, Kpr64f* stdDev);
KprStatus kpriMean_StdDev_8u_C3CR(const Kpr8u* src, int srcStep, KprSize roiSize, int coi, Kpr64f* mean,
                                  Kpr64f* stdDev);
KprStatus kpriMean_StdDev_16u_C3CR(const Kpr16u* src, int srcStep, KprSize roiSize, int coi, Kpr64f* mean,
                                   Kpr64f* stdDev);
KprStatus kpriMean_StdDev_32f_C3CR(const Kpr32f* src, int srcStep, KprSize roiSize, int coi, Kpr64f* mean,
                                   Kpr64f* stdDev);
KprStatus kpriMean_StdDev_8u_C1MR(const Kpr8u* src, int srcStep, const Kpr8u* mask, int maskStep, KprSize roiSize,
                                  Kpr64f* mean, Kpr64f* stdDev);
KprStatus kpriMean_StdDev_16u_C1MR(const Kpr16u* src, int srcStep, const Kpr8u* mask, int maskStep, KprSize roiSize,
                                   Kpr64f* mean, Kpr64f* stdDev);
KprStatus kpriMean_StdDev_32f_C1MR(const Kpr32f* src, int srcStep, const Kpr8u* mask, int maskStep, KprSize roiSize,
                                   Kpr64f* mean, Kpr64f* stdDev);
KprStatus kpriMean_StdDev_8u_C3CMR(const Kpr8u* src, int srcStep, const Kpr8u* mask, int maskStep, KprSize roiSize,
                                   int coi, Kpr64f* mean, Kpr64f* stdDev);
KprStatus kpriMean_StdDev_16u_C3CMR(const Kpr16u* src, int srcStep, const Kpr8u* mask, int maskStep, KprSize roiSize,
                                    int coi, Kpr64f* mean, Kpr64f* stdDev);
KprStatus kpriMean_StdDev_32f_C3CMR(const Kpr32f* src, int srcStep, const Kpr8u* mask, int maskStep, KprSize roiSize,
                                    int coi, Kpr64f* mean, Kpr64f* stdDev);

/* Norms of the selected pixels, in double precision: the largest |src| (Inf), the sum of |src| (L1), the square root of
 * the sum of src * src (L2); 0 where no pixel is selected. A selected NaN makes L1 and L2 NaN and is passed over by
 * Inf.
 *
 * As kpriMean; value receives the result and must not be null. Of floats the step's multiple is checked before the
 * mask's step. */
KprStatus kpriNorm_Inf_8u_C1MR(const Kpr8u* src, int srcStep, const Kpr8u* mask, int maskStep, KprSize roiSize,
                               Kpr64f* value);
KprStatus kpriNorm_Inf_16u_C1MR(const Kpr16u* src, int srcStep, const Kpr8u* mask, int maskStep, KprSize roiSize,
                                Kpr64f* value);
KprStatus kpriNorm_Inf_32f_C1MR(const Kpr32f* src, int srcStep, const Kpr8u* mask, int maskStep, KprSize roiSize,
                                Kpr64f* value);
KprStatus kpriNorm_Inf_8u_C3CMR(const Kpr8u* src, int srcStep, const Kpr8u* mask, int maskStep, KprSize roiSize,
                                int coi, Kpr64f* value);
KprStatus kpriNorm_Inf_16u_C3CMR(const Kpr16u* src, int srcStep, const Kpr8u* mask, int maskStep, KprSize roiSize,
                                 int coi, Kpr64f* value);
KprStatus kpriNorm_Inf_32f_C3CMR(const Kpr32f* src, int srcStep, const Kpr8u* mask, int maskStep, KprSize roiSize,
                                 int coi, Kpr64f* value);
KprStatus kpriNorm_L1_8u_C1MR(const Kpr8u* src, int srcStep, const Kpr8u* mask, int maskStep, KprSize roiSize,
                              Kpr64f* value);
KprStatus kpriNorm_L1_16u_C1MR(const Kpr16u* src, int srcStep, const Kpr8u* mask, int maskStep, KprSize roiSize,
                               Kpr64f* value);
KprStatus kpriNorm_L1_32f_C1MR(const Kpr32f* src, int srcStep, const Kpr8u* mask, int maskStep, KprSize roiSize,
                               Kpr64f* value);
KprStatus kpriNorm_L1_8u_C3CMR(const Kpr8u* src, int srcStep, const Kpr8u* mask, int maskStep, KprSize roiSize, int coi,
                               Kpr64f* value);
KprStatus kpriNorm_L1_16u_C3CMR(const Kpr16u* src, int srcStep, const Kpr8u* mask, int maskStep, KprSize roiSize,
                                int coi, Kpr64f* value);
KprStatus kpriNorm_L1_32f_C3CMR(const Kpr32f* src, int srcStep, const Kpr8u* mask, int maskStep, KprSize roiSize,
                                int coi, Kpr64f* value);
KprStatus kpriNorm_L2_8u_C1MR(const Kpr8u* src, int srcStep, const Kpr8u* mask, int maskStep, KprSize roiSize,
                              Kpr64f* value);
KprStatus kpriNorm_L2_16u_C1MR(const Kpr16u* src, int srcStep, const Kpr8u* mask, int maskStep, KprSize roiSize,
                               Kpr64f* value);
KprStatus kpriNorm_L2_32f_C1MR(const Kpr32f* src, int srcStep, const Kpr8u* mask, int maskStep, KprSize roiSize,
                               Kpr64f* value);
KprStatus kpriNorm_L2_8u_C3CMR(const Kpr8u* src, int srcStep, const Kpr8u* mask, int maskStep, KprSize roiSize, int coi,
                               Kpr64f* value);
KprStatus kpriNorm_L2_16u_C3CMR(const Kpr16u* src, int srcStep, const Kpr8u* mask, int maskStep, KprSize roiSize,
                                int coi, Kpr64f* value);
KprStatus kpriNorm_L2_32f_C3CMR(const Kpr32f* src, int srcStep, const Kpr8u* mask, int maskStep, KprSize roiSize,
                                int coi, Kpr64f* value);

/* Norms of the difference src1 - src2, which is exact for integers and rounded to single precision for floats. As
 * kpriNorm, but that all steps' lengths are checked before any multiple. */
KprStatus kpriNormDiff_Inf_8u_C1MR(const Kpr8u* src1, int src1Step, const Kpr8u* src2, int src2Step, const Kpr8u* mask,
                                   int maskStep, KprSize roiSize, Kpr64f* value);
KprStatus kpriNormDiff_Inf_16u_C1MR(const Kpr16u* src1, int src1Step, const Kpr16u* src2, int src2Step,
                                    const Kpr8u* mask, int maskStep, KprSize roiSize, Kpr64f* value);
KprStatus kpriNormDiff_Inf_32f_C1MR(const Kpr32f* src1, int src1Step, const Kpr32f* src2, int src2Step,
                                    const Kpr8u* mask, int maskStep, KprSize roiSize, Kpr64f* value);
KprStatus kpriNormDiff_Inf_8u_C3CMR(const Kpr8u* src1, int src1Step, const Kpr8u* src2, int src2Step, const Kpr8u* mask,
                                    int maskStep, KprSize roiSize, int coi, Kpr64f* value);
KprStatus kpriNormDiff_Inf_16u_C3CMR(const Kpr16u* src1, int src1Step, const Kpr16u* src2, int src2Step,
                                     const Kpr8u* mask, int maskStep, KprSize roiSize, int coi, Kpr64f* value);
KprStatus kpriNormDiff_Inf_32f_C3CMR(const Kpr32f* src1, int src1Step, const Kpr32f* src2, int src2Step,
                                     const Kpr8u* mask, int maskStep, KprSize roiSize, int coi, Kpr64f* value);
KprStatus kpriNormDiff_L1_8u_C1MR(const Kpr8u* src1, int src1Step, const Kpr8u* src2, int src2Step, const Kpr8u* mask,
                                  int maskStep, KprSize roiSize, Kpr64f* value);
KprStatus kpriNormDiff_L1_16u_C1MR(const Kpr16u* src1, int src1Step, const Kpr16u* src2, int src2Step,
                                   const Kpr8u* mask, int maskStep, KprSize roiSize, Kpr64f* value);
KprStatus kpriNormDiff_L1_32f_C1MR(const Kpr32f* src1, int src1Step, const Kpr32f* src2, int src2Step,
                                   const Kpr8u* mask, int maskStep, KprSize roiSize, Kpr64f* value);
KprStatus kpriNormDiff_L1_8u_C3CMR(const Kpr8u* src1, int src1Step, const Kpr8u* src2, int src2Step, const Kpr8u* mask,
                                   int maskStep, KprSize roiSize, int coi, Kpr64f* value);
KprStatus kpriNormDiff_L1_16u_C3CMR(const Kpr16u* src1, int src1Step, const Kpr16u* src2, int src2Step,
                                    const Kpr8u* mask, int maskStep, KprSize roiSize, int coi, Kpr64f* value);
KprStatus kpriNormDiff_L1_32f_C3CMR(const Kpr32f* src1, int src1Step, const Kpr32f* src2, int src2Step,
                                    const Kpr8u* mask, int maskStep, KprSize roiSize, int coi, Kpr64f* value);
KprStatus kpriNormDiff_L2_8u_C1MR(const Kpr8u* src1, int src1Step, const Kpr8u* src2, int src2Step, const Kpr8u* mask,
                                  int maskStep, KprSize roiSize, Kpr64f* value);
KprStatus kpriNormDiff_L2_16u_C1MR(const Kpr16u* src1, int src1Step, const Kpr16u* src2, int src2Step,
                                   const Kpr8u* mask, int maskStep, KprSize roiSize, Kpr64f* value);
KprStatus kpriNormDiff_L2_32f_C1MR(const Kpr32f* src1, int src1Step, const Kpr32f* src2, int src2Step,
                                   const Kpr8u* mask, int maskStep, KprSize roiSize, Kpr64f* value);
KprStatus kpriNormDiff_L2_8u_C3CMR(const Kpr8u* src1, int src1Step, const Kpr8u* src2, int src2Step, const Kpr8u* mask,
                                   int maskStep, KprSize roiSize, int coi, Kpr64f* value);
KprStatus kpriNormDiff_L2_16u_C3CMR(const Kpr16u* src1, int src1Step, const Kpr16u* src2, int src2Step,
                                    const Kpr8u* mask, int maskStep, KprSize roiSize, int coi, Kpr64f* value);
KprStatus kpriNormDiff_L2_32f_C3CMR(const Kpr32f* src1, int src1Step, const Kpr32f* src2, int src2Step,
                                    const Kpr8u* mask, int maskStep, KprSize roiSize, int coi, Kpr64f* value);

/* Norms of the difference relative to the second image: the norm of src1 - src2 divided by the norm of src2, as
 * kpriNormDiff. Where the divisor is 0 the result is NaN if the numerator is 0 too, else positive infinity, and the
 * status is the warning kprStatusZeroDivisor. */
KprStatus kpriNormRel_Inf_8u_C1MR(const Kpr8u* src1, int src1Step, const Kpr8u* src2, int src2Step, const Kpr8u* mask,
                                  int maskStep, KprSize roiSize, Kpr64f* value);
KprStatus kpriNormRel_Inf_16u_C1MR(const Kpr16u* src1, int src1Step, const Kpr16u* src2, int src2Step,
                                   const Kpr8u* mask, int maskStep, KprSize roiSize, Kpr64f* value);
KprStatus kpriNormRel_Inf_32f_C1MR(const Kpr32f* src1, int src1Step, const Kpr32f* src2, int src2Step,
                                   const Kpr8u* mask, int maskStep, KprSize roiSize, Kpr64f* value);
KprStatus kpriNormRel_Inf_8u_C3CMR(const Kpr8u* src1, int src1Step, const Kpr8u* src2, int src2Step, const Kpr8u* mask,
                                   int maskStep, KprSize roiSize, int coi, Kpr64f* value);
KprStatus kpriNormRel_Inf_16u_C3CMR(const Kpr16u* src1, int src1Step, const Kpr16u* src2, int src2Step,
                                    const Kpr8u* mask, int maskStep, KprSize roiSize, int coi, Kpr64f* value);
KprStatus kpriNormRel_Inf_32f_C3CMR(const Kpr32f* src1, int src1Step, const Kpr32f* src2, int src2Step,
                                    const Kpr8u* mask, int maskStep, KprSize roiSize, int coi, Kpr64f* value);
KprStatus kpriNormRel_L1_8u_C1MR(const Kpr8u* src1, int src1Step, const Kpr8u* src2, int src2Step, const Kpr8u* mask,
                                 int maskStep, KprSize roiSize, Kpr64f* value);
KprStatus kpriNormRel_L1_16u_C1MR(const Kpr16u* src1, int src1Step, const Kpr16u* src2, int src2Step, const Kpr8u* mask,
                                  int maskStep, KprSize roiSize, Kpr64f* value);
KprStatus kpriNormRel_L1_32f_C1MR(const Kpr32f* src1, int src1Step, const Kpr32f* src2, int src2Step, const Kpr8u* mask,
                                  int maskStep, KprSize roiSize, Kpr64f* value);
KprStatus kpriNormRel_L1_8u_C3CMR(const Kpr8u* src1, int src1Step, const Kpr8u* src2, int src2Step, const Kpr8u* mask,
                                  int maskStep, KprSize roiSize, int coi, Kpr64f* value);
KprStatus kpriNormRel_L1_16u_C3CMR(const Kpr16u* src1, int src1Step, const Kpr16u* src2, int src2Step,
                                   const Kpr8u* mask, int maskStep, KprSize roiSize, int coi, Kpr64f* value);
KprStatus kpriNormRel_L1_32f_C3CMR(const Kpr32f* src1, int src1Step, const Kpr32f* src2, int src2Step,
                                   const Kpr8u* mask, int maskStep, KprSize roiSize, int coi, Kpr64f* value);
KprStatus kpriNormRel_L2_8u_C1MR(const Kpr8u* src1, int src1Step, const Kpr8u* src2, int src2Step, const Kpr8u* mask,
                                 int maskStep, KprSize roiSize, Kpr64f* value);
KprStatus kpriNormRel_L2_16u_C1MR(const Kpr16u* src1, int src1Step, const Kpr16u* src2, int src2Step, const Kpr8u* mask,
                                  int maskStep, KprSize roiSize, Kpr64f* value);
KprStatus kpriNormRel_L2_32f_C1MR(const Kpr32f* src1, int src1Step, const Kpr32f* src2, int src2Step, const Kpr8u* mask,
                                  int maskStep, KprSize roiSize, Kpr64f* value);
KprStatus kpriNormRel_L2_8u_C3CMR(const Kpr8u* src1, int src1Step, const Kpr8u* src2, int src2Step, const Kpr8u* mask,
                                  int maskStep, KprSize roiSize, int coi, Kpr64f* value);
KprStatus kpriNormRel_L2_16u_C3CMR(const Kpr16u* src1, int src1Step, const Kpr16u* src2, int src2Step,
                                   const Kpr8u* mask, int maskStep, KprSize roiSize, int coi, Kpr64f* value);
KprStatus kpriNormRel_L2_32f_C3CMR(const Kpr32f* src1, int src1Step, const Kpr32f* src2, int src2Step,
                                   const Kpr8u* mask, int maskStep, KprSize roiSize, int coi, Kpr64f* value);

#ifdef __cplusplus
}
#endif

#endif
