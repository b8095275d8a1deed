/* What is done with a map of corners or edges: its peaks, and candidates on lines taken out. */
#ifndef KPRCV_FEATURE_PEAKS_H
#define KPRCV_FEATURE_PEAKS_H

#include <kprcv/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/* The bytes of working memory for a list of at most maxPeakCount peaks, stored to *bufferSize.
 *
 * Returns kprStatusOk, kprStatusNullPtr, kprStatusBadArg for maxPeakCount below 1, or kprStatusSizeOverflow. */
KprStatus kpriFindPeaks3x3GetBufferSize_32s_C1R(int maxPeakCount, int* bufferSize);
KprStatus kpriFindPeaks3x3GetBufferSize_32f_C1R(int maxPeakCount, int* bufferSize);

/* Lists the largest local maxima of an image.
 *
 * A pixel is a peak if it is above the threshold, larger than each neighbour that comes earlier in raster order (above,
 * or left in its row) and not smaller than each one that comes later, so that of a plateau two pixels wide one is a
 * peak. Neighbours outside the ROI take no part. A NaN is no peak and, as a neighbour, hinders none; with a NaN as
 * threshold there are no peaks.
 *
 * src            pixels; rows srcStep bytes apart
 * peaks          room for maxPeakCount peaks, filled from the largest value to the smallest, equal ones in raster
 *                order; no more than *peakCount are written
 * maxPeakCount   at least 1
 * peakCount      receives the number of peaks listed
 * norm           kprNormInf: all eight neighbours; kprNormL1: the four beside, above and below
 * border         at least 0: pixels nearer than this to the edge of the ROI are neighbours, but no peaks
 * buffer         working memory of the size that the sizing call tells, at any address
 *
 * Returns kprStatusOk, kprStatusListFull if there are more peaks than were listed, or the first failure:
 * kprStatusNullPtr, kprStatusBadSize, kprStatusBadStep, kprStatusStepNotMultiple, kprStatusBadArg for maxPeakCount or
 * border, kprStatusBadNorm. */
KprStatus kpriFindPeaks3x3_32s_C1R(const Kpr32s* src, int srcStep, KprSize roiSize, Kpr32s threshold, KprPoint* peaks,
                                   int maxPeakCount, int* peakCount, int norm, int border, Kpr8u* buffer);
KprStatus kpriFindPeaks3x3_32f_C1R(const Kpr32f* src, int srcStep, KprSize roiSize, Kpr32f threshold, KprPoint* peaks,
                                   int maxPeakCount, int* peakCount, int norm, int border, Kpr8u* buffer);

/* The bytes of working memory of the line suppression, stored to *bufferSize: about 60 a column, whatever the height.
 *
 * Returns kprStatusOk, kprStatusNullPtr, kprStatusBadSize, kprStatusBadArg for a window that is not 3 or 5, or
 * kprStatusSizeOverflow. */
KprStatus kpriLineSuppressionGetBufferSize(KprSize roiSize, int avgWindow, int* bufferSize);

/* Takes candidates for corners out of a map that lie on a line or an edge: around which the image changes in one
 * direction only.
 *
 * With dx and dy the image's derivatives across and down, and A, B, C the sums of dx * dx, dy * dy and dx * dy over the
 * window around the pixel, as far as it lies in the ROI, all exact integers; det = A * B - C * C, exact;
 * t = A + B; r = threshold: dst = feature where feature is 0 or (t * t) * r < ((r + 1) * (r + 1)) * det, in double
 * precision, and 0 elsewhere. r is the largest allowed ratio of the two eigenvalues.
 *
 * src           the image; beside the ROI, what borderType says: a flagged side is read as far as the mask reaches
 * feature       the map; every value but 0 is a candidate
 * dst           may be the same image as feature, with the same step, and not src
 * filterType    kprFilterSobel with kprMaskSize3x3 or kprMaskSize5x5, kprFilterScharr with kprMaskSize3x3: unscaled
 * avgWindow     3 or 5: the window's side
 * threshold     at least 1, finite
 * borderType    kprBorderConstant with borderValue, kprBorderReplicate, kprBorderMirror, with any flags, or
 *               kprBorderInMem
 * buffer        working memory of the size that the sizing call tells, at any address
 *
 * Returns kprStatusOk, or the first failure: kprStatusNullPtr; kprStatusInPlaceUnsupported if dst is src;
 * kprStatusBadSize; kprStatusBadStep; kprStatusBadAlgorithm for the filter; kprStatusBadMaskSize; kprStatusBadBorder;
 * kprStatusBadArg for the window or the threshold. */
KprStatus kpriLineSuppression_8u_C1R(const Kpr8u* src, int srcStep, const Kpr8u* feature, int featureStep, Kpr8u* dst,
                                     int dstStep, KprSize roiSize, int filterType, KprMaskSize filterMask,
                                     int avgWindow, Kpr32f threshold, KprBorderType borderType, Kpr8u borderValue,
                                     Kpr8u* buffer);

#ifdef __cplusplus
}
#endif

#endif
