/* Edges: maps of them, and the joining of colour gradients. */
#ifndef KPRCV_FEATURE_EDGES_H
#define KPRCV_FEATURE_EDGES_H

#include <kprcv/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Edges from derivatives that are ready: 255 at an edge, 0 elsewhere.
 *
 * Each pixel has a magnitude M, which counts as 0 unless it is above the low threshold, and a direction. It survives if
 * M is larger than at its two neighbours along the direction; M is 0 outside the ROI. Edges are the survivors with M
 * above the high threshold, and all survivors that are joined to one of them through survivors, by sides or corners.
 *
 *     form      M                                          compared with
 *     16s       |dx| + |dy|, exact                         the thresholds truncated toward zero
 *     32f       |dx| + |dy|, rounded once                  the thresholds; an M equal to the low one is kept
 *     16s_L     L1 |dx| + |dy|, at most 65535              the thresholds
 *               L2 dx * dx + dy * dy, -32768 counting as   the squared thresholds, truncated toward zero
 *               -32767
 *     32f_L     L1 |dx| + |dy|, rounded once               the thresholds
 *               L2 fma(dx, dx, dy * dy)                    the squared thresholds
 *
 * Directions are those of single precision: upright where 2.4142137f * |dx| < |dy|, else level where
 * |dy| < 0.41421357f * |dx|, else slanted, down to the right where the signs of dx and dy agree and down to the left
 * where they differ. A level direction has its neighbours on the left and right, an upright one above and below. Of a
 * level or upright direction M may equal the neighbour on the right or below, so that of two equal pixels one stays;
 * of a slanted one it must be larger than both.
 *
 * dx, dy          derivatives across (positive: brighter to the right) and down (positive: brighter below)
 * dst             neither derivative nor buffer
 * lowThreshold    0 or more and not above highThreshold
 * highThreshold   may equal the low one; nothing is above a NaN or an infinity, nor above squares out of range
 * norm            kprNormL1 or kprNormL2; without it L1
 * buffer          working memory of the size that the sizing call tells, at any address; no more of it is used,
 *                 whatever the image
 *
 * A NaN magnitude counts as 0. Returns kprStatusOk or the first failure: kprStatusNullPtr; in the _L forms
 * kprStatusSizeOverflow for a side or a step above 0x7fffffff; kprStatusBadSize; kprStatusBadStep;
 * kprStatusStepNotMultiple; kprStatusBadArg for the thresholds (16s_L checks them squared for L2, so that a negative
 * low one may pass); kprStatusBadNorm. */
KprStatus kpriCanny_16s8u_C1R(const Kpr16s* dx, int dxStep, const Kpr16s* dy, int dyStep, Kpr8u* dst, int dstStep,
                              KprSize roiSize, Kpr32f lowThreshold, Kpr32f highThreshold, Kpr8u* buffer);
KprStatus kpriCanny_32f8u_C1R(const Kpr32f* dx, int dxStep, const Kpr32f* dy, int dyStep, Kpr8u* dst, int dstStep,
                              KprSize roiSize, Kpr32f lowThreshold, Kpr32f highThreshold, Kpr8u* buffer);
KprStatus kpriCanny_16s8u_C1R_L(const Kpr16s* dx, Kpr64s dxStep, const Kpr16s* dy, Kpr64s dyStep, Kpr8u* dst,
                                Kpr64s dstStep, KprSizeL roiSize, Kpr32f lowThreshold, Kpr32f highThreshold, int norm,
                                Kpr8u* buffer);
KprStatus kpriCanny_32f8u_C1R_L(const Kpr32f* dx, Kpr64s dxStep, const Kpr32f* dy, Kpr64s dyStep, Kpr8u* dst,
                                Kpr64s dstStep, KprSizeL roiSize, Kpr32f lowThreshold, Kpr32f highThreshold, int norm,
                                Kpr8u* buffer);

/* The bytes of their buffer: f * (width + 2) * (height + 2) + 16 * width + 160, f being 5, or 9 where a side is 65533
 * or more. kprStatusNullPtr; in the _L form kprStatusSizeOverflow for a side above 0x7fffffff; kprStatusBadSize;
 * kprStatusSizeOverflow where the result does not hold the size. */
KprStatus kpriCannyGetSize(KprSize roiSize, int* result);
KprStatus kpriCannyGetSize_L(Kpr64s width, Kpr64s height, Kpr64s* result);

/* Edges from an 8-bit image: derivatives and edges in one pass, under the rules above.
 *
 * dx is right minus left and dy below minus above, exact integers: Sobel 1 2 1 by -1 0 1, or of mask 55 1 4 6 4 1 by
 * -1 -2 0 2 1; Scharr 3 10 3 by -1 0 1. M is |dx| + |dy|, or of L2 sqrt(fma(|dx|, |dx|, dy * dy)) in floats, and both
 * thresholds are compared with it as they are. In images of up to three rows the direction is that of the angle of
 * (dx, dy) between multiples of 22.5 degrees; it differs from the rule above only for a few pairs next to a limit.
 *
 * src            pixels; on sides whose flag is set 1 or 2 pixels beyond the ROI are read. Steps are not checked
 * dst            neither source nor buffer
 * filterType     kprFilterSobel, or kprFilterScharr with mask 33
 * maskSize       kprMaskSize3x3 or kprMaskSize5x5
 * borderType     kprBorderReplicate or kprBorderConstant with any flags, or kprBorderInMem
 * borderValue    of kprBorderConstant
 *
 * kprStatusBadMaskSize, first of all; kprStatusNullPtr; kprStatusBadSize; kprStatusBadArg for filterType, norm or
 * thresholds; kprStatusBadBorder. */
KprStatus kpriCannyBorder_8u_C1R(const Kpr8u* src, int srcStep, Kpr8u* dst, int dstStep, KprSize roiSize,
                                 int filterType, KprMaskSize maskSize, KprBorderType borderType, Kpr8u borderValue,
                                 Kpr32f lowThreshold, Kpr32f highThreshold, int norm, Kpr8u* buffer);

/* The bytes of its buffer; filterType and norm are not looked at. kprStatusNullPtr; kprStatusBadSize;
 * kprStatusBadMaskSize; kprStatusSizeOverflow. */
KprStatus kpriCannyBorderGetSize(KprSize roiSize, int filterType, KprMaskSize maskSize, int norm, int* result);

/* Joins the gradients a, b, c of three channels into one.
 *
 *     norm           8u, 16u                                            32f
 *     kprNormInf     the largest                                        the largest magnitude, a number before a NaN
 *     kprNormL1      (a + b + c) / 3 to nearest, exact                  ((|a| + |b|) + |c|) / 3
 *     kprNormL2      sqrt((a * a + b * b + c * c) / 3) to nearest, exact  sqrt(fma(c, c, fma(b, b, a * a)) / 3)
 *
 * src is of three interleaved channels, dst of one; they must not overlap. kprStatusNullPtr, kprStatusBadSize,
 * kprStatusBadStep, kprStatusStepNotMultiple, kprStatusBadNorm. */
KprStatus kpriGradientColorToGray_8u_C3C1R(const Kpr8u* src, int srcStep, Kpr8u* dst, int dstStep, KprSize roiSize,
                                           int norm);
KprStatus kpriGradientColorToGray_16u_C3C1R(const Kpr16u* src, int srcStep, Kpr16u* dst, int dstStep, KprSize roiSize,
                                            int norm);
KprStatus kpriGradientColorToGray_32f_C3C1R(const Kpr32f* src, int srcStep, Kpr32f* dst, int dstStep, KprSize roiSize,
                                            int norm);

#ifdef __cplusplus
}
#endif

#endif
