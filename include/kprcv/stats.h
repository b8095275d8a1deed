/* Pixel differences, accumulators, and statistics of selected pixels.
 *
 * Everywhere here: images are read and written inside their ROI alone, so that no border is needed; they may begin at
 * any address, and their rows may be any whole number of elements apart that holds a row. Nothing is allocated, nothing
 * is kept between calls, and calls on different images may run at the same time. Checks come before everything else:
 * after an error no output has been written. */
#ifndef KPRCV_STATS_H
#define KPRCV_STATS_H

#include <kprcv/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Absolute difference of two images: dst = |src1 - src2|.
 *
 * 8u and 16u are exact. 32f rounds the difference once, to infinity where it overflows, and clears its sign: a NaN
 * result, from a NaN source or from two infinities of one sign, has a clear sign bit too. The C3R form takes three
 * interleaved channels; roiSize counts pixels.
 *
 * src1, src2                     the images
 * dst                            the result; may be src1 or src2 itself with the same step, and must not overlap them
 *                                in any other way
 * src1Step, src2Step, dstStep    bytes from row to row
 * roiSize                        pixels; at least 1 x 1
 *
 * Returns, in this order of checks:
 * kprStatusNullPtr            a null image
 * kprStatusBadSize            a width or height below 1
 * kprStatusBadStep            a step below the bytes of a row
 * kprStatusStepNotMultiple    a step that is no multiple of the element's size (16u, 32f)
 * kprStatusOk */
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
 * As kpriAbsDiff, with one source: dst may be src itself. In 8u and 16u a value outside the element's range is taken as
 * the nearest end of the range; that is no error. In 32f any value is taken, NaN and infinities too. */
KprStatus kpriAbsDiffC_8u_C1R(const Kpr8u* src, int srcStep, Kpr8u* dst, int dstStep, KprSize roiSize, int value);
KprStatus kpriAbsDiffC_16u_C1R(const Kpr16u* src, int srcStep, Kpr16u* dst, int dstStep, KprSize roiSize, int value);
KprStatus kpriAbsDiffC_32f_C1R(const Kpr32f* src, int srcStep, Kpr32f* dst, int dstStep, KprSize roiSize, Kpr32f value);

/* Sum of frames: srcDst = srcDst + src, rounded once to single precision.
 *
 * In the IMR forms `mask` selects: m is 1 where the mask byte is not zero and 0 elsewhere, and srcDst = m * src +
 * srcDst, rounded once. An unselected pixel is thus computed too: it keeps its value while src is finite (a negative
 * zero may become positive), and becomes NaN where src is infinite or NaN. Nothing saturates: a sum that overflows is
 * infinite. A sum of integers is exact up to 2^24, beyond which a single-precision number no longer holds every
 * integer.
 *
 * src                              the frame
 * mask                             one byte a pixel; every value but 0 selects
 * srcDst                           the accumulator, read and written; must not overlap src or mask
 * srcStep, maskStep, srcDstStep    bytes from row to row
 * roiSize                          pixels; at least 1 x 1
 *
 * Returns, in this order of checks:
 * kprStatusNullPtr            a null image
 * kprStatusBadSize            a width or height below 1
 * kprStatusBadStep            a step below the bytes of a row
 * kprStatusStepNotMultiple    a step that is no multiple of its element's size (16u, 32f)
 * kprStatusOk
 * With a 16u source its step is checked whole, length then multiple, before the mask's and the accumulator's; in all
 * other forms every length comes before any multiple. */
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
 * Parameters, overflow and statuses as kpriAdd. The masked forms round the square first: srcDst = m * round(src * src)
 * + srcDst, so that an unselected pixel becomes NaN where the square is infinite or NaN. For 8u sources the square is
 * exact and both kinds of form agree; for 16u and 32f they may differ in the last place. */
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
 * Parameters, overflow and statuses as kpriAdd; src1 and src2 may be the same image. The masked forms round the
 * product first: srcDst = m * round(src1 * src2) + srcDst, so that an unselected pixel becomes NaN where the product
 * is infinite or NaN. With 16u sources both lengths are checked, then both multiples, before the mask's and the
 * accumulator's steps. */
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
 * alpha is the weight of the new frame, usually from 0 to 1; any value is taken. Parameters, overflow and statuses as
 * kpriAdd. In the masked forms alpha is 0 where the mask byte is 0, so that an unselected pixel keeps a finite value
 * and turns NaN where src - srcDst is infinite or NaN. */
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

/* Blend of two images: dst = alpha * round(src1 - src2) + src2, the last step fused and rounded once. dst may be src1
 * or src2 itself with the same step, and must not overlap them in any other way. Steps, sizes and statuses as
 * kpriAbsDiff, alpha as kpriAddWeighted; what is infinite or NaN in a source makes the formula's result. */
KprStatus kpriAddWeighted_32f_C1R(const Kpr32f* src1, int src1Step, const Kpr32f* src2, int src2Step, Kpr32f* dst,
                                  int dstStep, KprSize roiSize, Kpr32f alpha);

/* ---- statistics of the selected pixels
 *
 * A masked form (M) looks at the pixels whose mask byte is not zero; the others are not read, so that a NaN among them
 * has no influence. A C3C form looks at one channel of three, `coi`, which is 1, 2 or 3. Sums of integers are exact,
 * whatever the size of the image, and are rounded once to double precision. Sums of floats are formed in 32 lanes of
 * single precision, pixel x of a row in lane x mod 32, each widened to double precision at the row's end, so that they
 * are the same bits on any alignment and step; a lane that overflows along a row is infinite. Images and masks are only
 * read, and may be one another or overlap in any way. */

/* Mean of the selected pixels, in double precision; 0 where none is selected, which is no error. Of floats the lanes
 * are widened after every 120 steps of 32 pixels (a row's last step may be shorter) instead of at each row's end. A
 * selected NaN makes the mean NaN, as do selected infinities of both signs.
 *
 * src                  pixels, of three interleaved channels in the C3C forms
 * mask                 one byte a pixel; every value but 0 selects
 * srcStep, maskStep    bytes from row to row
 * roiSize              pixels; at least 1 x 1
 * coi                  the channel of interest, 1 to 3
 * mean                 receives the result; must not be null
 *
 * Returns, in this order of checks:
 * kprStatusNullPtr            a null image, mask or result
 * kprStatusBadSize            a width or height below 1
 * kprStatusBadStep            a step of the image or the mask below the bytes of a row
 * kprStatusStepNotMultiple    an image's step that is no multiple of the element's size (16u, 32f)
 * kprStatusBadCoi             coi is not 1, 2 or 3 (C3C)
 * kprStatusOk */
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

/* Mean and standard deviation: sqrt(|sumOfSquares / n - mean * mean|) over the n selected pixels, which are all in the
 * forms without a mask; the difference is formed with one fused step. Both are 0 where no pixel is selected; the
 * deviation of a constant integer image is exactly 0. Of floats, pixels x and x + 16 of every 32 are taken together, as
 * a + b and as fma(a, a, b * b), in 16 lanes each. Where the mean is NaN or
 * infinite the deviation is NaN; where the mean is finite and the squares overflow single precision it is infinite.
 *
 * As kpriMean, but that mean and stdDev may be null, one or both: what is null is not written, and without stdDev no
 * square is formed, which takes half the time. */
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

/* Smallest and largest pixel and their positions. Values are given as Kpr32f, exactly; a position is the first in
 * row-major order that holds the extremum, x before y, and of zeros of both signs the first one is the result. A NaN
 * wins over nothing; where all is NaN, the first of them is the result.
 *
 * minValue, maxValue    receive the values
 * minIndex, maxIndex    receive the positions, in pixels from the ROI's first
 * The other parameters are those of kpriMean.
 *
 * In the forms without a mask at least one of minValue and maxValue must be given, which is not checked; an index is
 * written only beside its value. In the masked forms each of the four may be null; where the mask selects no pixel the
 * values are 0 and the positions (0, 0).
 *
 * Returns kprStatusOk or, as kpriMean, an error. The masked forms also return the warning kprStatusNoMaskedPixels,
 * which they infer from what was asked for: with minIndex (or else maxIndex) given, when its x is 0 and the first mask
 * byte is 0, which may be said of an extremum that lies in column 0; else with minValue given, when the given values
 * are 0 and the mask selects nothing; else with maxValue given, always; with nothing given, when the mask selects
 * nothing. The outputs are written all the same. */
KprStatus kpriMinMaxIndx_8u_C1R(const Kpr8u* src, int srcStep, KprSize roiSize, Kpr32f* minValue, Kpr32f* maxValue,
                                KprPoint* minIndex, KprPoint* maxIndex);
KprStatus kpriMinMaxIndx_16u_C1R(const Kpr16u* src, int srcStep, KprSize roiSize, Kpr32f* minValue, Kpr32f* maxValue,
                                 KprPoint* minIndex, KprPoint* maxIndex);
KprStatus kpriMinMaxIndx_32f_C1R(const Kpr32f* src, int srcStep, KprSize roiSize, Kpr32f* minValue, Kpr32f* maxValue,
                                 KprPoint* minIndex, KprPoint* maxIndex);
KprStatus kpriMinMaxIndx_8u_C3CR(const Kpr8u* src, int srcStep, KprSize roiSize, int coi, Kpr32f* minValue,
                                 Kpr32f* maxValue, KprPoint* minIndex, KprPoint* maxIndex);
KprStatus kpriMinMaxIndx_16u_C3CR(const Kpr16u* src, int srcStep, KprSize roiSize, int coi, Kpr32f* minValue,
                                  Kpr32f* maxValue, KprPoint* minIndex, KprPoint* maxIndex);
KprStatus kpriMinMaxIndx_32f_C3CR(const Kpr32f* src, int srcStep, KprSize roiSize, int coi, Kpr32f* minValue,
                                  Kpr32f* maxValue, KprPoint* minIndex, KprPoint* maxIndex);
KprStatus kpriMinMaxIndx_8u_C1MR(const Kpr8u* src, int srcStep, const Kpr8u* mask, int maskStep, KprSize roiSize,
                                 Kpr32f* minValue, Kpr32f* maxValue, KprPoint* minIndex, KprPoint* maxIndex);
KprStatus kpriMinMaxIndx_16u_C1MR(const Kpr16u* src, int srcStep, const Kpr8u* mask, int maskStep, KprSize roiSize,
                                  Kpr32f* minValue, Kpr32f* maxValue, KprPoint* minIndex, KprPoint* maxIndex);
KprStatus kpriMinMaxIndx_32f_C1MR(const Kpr32f* src, int srcStep, const Kpr8u* mask, int maskStep, KprSize roiSize,
                                  Kpr32f* minValue, Kpr32f* maxValue, KprPoint* minIndex, KprPoint* maxIndex);
KprStatus kpriMinMaxIndx_8u_C3CMR(const Kpr8u* src, int srcStep, const Kpr8u* mask, int maskStep, KprSize roiSize,
                                  int coi, Kpr32f* minValue, Kpr32f* maxValue, KprPoint* minIndex, KprPoint* maxIndex);
KprStatus kpriMinMaxIndx_16u_C3CMR(const Kpr16u* src, int srcStep, const Kpr8u* mask, int maskStep, KprSize roiSize,
                                   int coi, Kpr32f* minValue, Kpr32f* maxValue, KprPoint* minIndex, KprPoint* maxIndex);
KprStatus kpriMinMaxIndx_32f_C3CMR(const Kpr32f* src, int srcStep, const Kpr8u* mask, int maskStep, KprSize roiSize,
                                   int coi, Kpr32f* minValue, Kpr32f* maxValue, KprPoint* minIndex, KprPoint* maxIndex);

/* Norms of the selected pixels, in double precision: the largest |src| (Inf), the sum of |src| (L1), the square root
 * of the sum of src * src (L2), whose squares are rounded to single precision if floats; 0 where no pixel is selected,
 * which is no error. A selected NaN makes L1 and L2 NaN and is passed over by Inf, which is 0 where all is NaN.
 * Infinities and sums that overflow a lane give infinity.
 *
 * value receives the result and must not be null. Other parameters and statuses as kpriMean; of floats the multiple of
 * the image's step is checked before the mask's step. */
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

/* Norms of the difference src1 - src2, which is exact for integers and rounded to single precision for floats: a
 * difference of infinities of one sign counts as NaN. In all else as kpriNorm, but that all steps' lengths are checked
 * before any multiple. */
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

/* Norms of the difference relative to the second image: the norm of src1 - src2 divided by the norm of src2, in double
 * precision, each formed as by kpriNormDiff and kpriNorm. Parameters and errors as kpriNormDiff.
 *
 * Where the norm of src2 is 0, as it is where no pixel is selected, the status is the warning kprStatusZeroDivisor, and
 * value is NaN if the norm of src1 - src2 is 0 too, positive infinity if it is greater, and negative infinity if it is
 * NaN. Otherwise the status is kprStatusOk and a NaN in either norm makes value NaN, as do two infinite norms. */
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
