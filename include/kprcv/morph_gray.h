/* Gray morphology: dilation and erosion by masks with heights. */
#ifndef KPRCV_MORPH_GRAY_H
#define KPRCV_MORPH_GRAY_H

#include <kprcv/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/* A state block made from a mask with heights. It holds no addresses: it may be copied, moved, and shared by calls that
 * run at once. */
typedef struct KprMorphGrayState KprMorphGrayState;

/* Bytes that the state block and the work buffer need.
 *
 * roiSize      the largest ROI to be processed, pixels; at least 1 x 1
 * maskSize     at least 1 x 1
 * specSize, bufferSize   receive the sizes in bytes
 *
 * Returns kprStatusOk, kprStatusNullPtr, kprStatusBadSize, kprStatusSizeOverflow (nothing is written then). */
KprStatus kpriMorphGrayGetSize_8u_C1R(KprSize roiSize, KprSize maskSize, int* specSize, int* bufferSize);
KprStatus kpriMorphGrayGetSize_32f_C1R(KprSize roiSize, KprSize maskSize, int* specSize, int* bufferSize);

/* Fills a state block.
 *
 * roiSize      as given to GetSize
 * mask         maskSize.width * maskSize.height heights, row after row without gaps; not needed after the call.
 *              -2147483648 (8u) or negative infinity (32f) marks a place that is no tap.
 * anchor       the place of the mask that is laid on a pixel, from (0, 0) on
 * spec         the block, of the size that GetSize told, at any address
 * buffer       the work buffer, which is not touched; must not be null
 *
 * Returns kprStatusOk, kprStatusNullPtr, kprStatusBadSize, kprStatusBadAnchor. */
KprStatus kpriMorphGrayInit_8u_C1R(KprSize roiSize, const Kpr32s* mask, KprSize maskSize, KprPoint anchor,
                                   KprMorphGrayState* spec, Kpr8u* buffer);
KprStatus kpriMorphGrayInit_32f_C1R(KprSize roiSize, const Kpr32f* mask, KprSize maskSize, KprPoint anchor,
                                    KprMorphGrayState* spec, Kpr8u* buffer);

/* Dilation: of the taps (i, j) with heights m, (ax, ay) being the anchor,
 *
 *     dst(x, y) = the largest of src(x + i - ax, y + j - ay) + m(i, j)
 *
 * and erosion:
 *
 *     dst(x, y) = the smallest of src(x + i - ax, y + j - ay) - m(i, j)
 *
 * 8u: exact, then brought into 0 to 255. 32f: each sum is rounded once; a number counts before any NaN, +0 is above -0,
 * and the result is a NaN only where all sums are. A mask without taps copies the source.
 *
 * src, dst      may be the same image with the same step; must not overlap otherwise
 * srcStep, dstStep   bytes from row to row
 * roiSize       pixels; at least 1 x 1 and no larger than given to GetSize, in either direction
 * borderType    kprBorderReplicate, kprBorderMirror, kprBorderConstant or kprBorderDefault, with flags for sides where
 *               pixels outside of the ROI are memory: ax columns on the left, maskSize.width - 1 - ax on the right, ay
 *               rows above and maskSize.height - 1 - ay below are read there, of a mask with taps. Bits 8 to 11 mean
 *               nothing. With kprBorderDefault what lies outside takes no part, and a pixel for which no tap is left
 *               becomes 0 or 255, in 32f the lowest or the largest finite number, by dilation or erosion.
 * borderValue   of the constant border; heights are added to it as to pixels
 * spec          filled by the initialising call of the same type
 * buffer        of the size that GetSize told, at any address; holds nothing between calls
 *
 * Returns kprStatusOk, kprStatusNullPtr, kprStatusBadSize, kprStatusBadStep, kprStatusStepNotMultiple (32f),
 * kprStatusBadBorder, kprStatusBadContext (a block that such an initialising call has not filled). */
KprStatus kpriGrayDilateBorder_8u_C1R(const Kpr8u* src, int srcStep, Kpr8u* dst, int dstStep, KprSize roiSize,
                                      KprBorderType borderType, Kpr8u borderValue, const KprMorphGrayState* spec,
                                      Kpr8u* buffer);
KprStatus kpriGrayDilateBorder_32f_C1R(const Kpr32f* src, int srcStep, Kpr32f* dst, int dstStep, KprSize roiSize,
                                       KprBorderType borderType, Kpr32f borderValue, const KprMorphGrayState* spec,
                                       Kpr8u* buffer);
KprStatus kpriGrayErodeBorder_8u_C1R(const Kpr8u* src, int srcStep, Kpr8u* dst, int dstStep, KprSize roiSize,
                                     KprBorderType borderType, Kpr8u borderValue, const KprMorphGrayState* spec,
                                     Kpr8u* buffer);
KprStatus kpriGrayErodeBorder_32f_C1R(const Kpr32f* src, int srcStep, Kpr32f* dst, int dstStep, KprSize roiSize,
                                      KprBorderType borderType, Kpr32f borderValue, const KprMorphGrayState* spec,
                                      Kpr8u* buffer);

#ifdef __cplusplus
}
#endif

#endif
