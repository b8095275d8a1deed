/* Fast corners: pixels around which a long arc of a circle is all brighter or all darker. */
#ifndef KPRCV_FEATURE_CORNERS_H
#define KPRCV_FEATURE_CORNERS_H

#include <kprcv/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/* The block of a search: its parameters and tables. It holds no address but one of the library's own tables, may be
 * copied to any address, and is not written by the search, so that calls at once may share it. */
typedef struct KprFastNSpec KprFastNSpec;

/* The option word: corners always, and what else is wanted of them. */
enum {
    kprFastNOrientation = 1, /* the direction of a corner, as a bin */
    kprFastNSuppression = 2, /* of neighbouring corners, those with the highest score only; needs the score */
    kprFastNCorner = 4,      /* mandatory */
    kprFastNScore = 0x20     /* a score image */
};

/* The bytes of a block, stored to *result.
 *
 * srcSize           pixels of the whole image that will be searched; at least 1 x 1
 * circleRadius      1, 2, 3, 5, 7 or 9, for circles of n = 8, 12, 16, 28, 40 or 52 points
 * arcLength         points that an arc needs, n / 2 + 1 to n
 * orientationBins   1 to 64; looked at with kprFastNOrientation only
 * option            an option word
 * dataType, numChannels   kpr8u and 1
 *
 * Returns kprStatusOk or the first failure: kprStatusNullPtr; kprStatusBadSize; kprStatusBadDataType;
 * kprStatusBadChannel; kprStatusBadArg for the option word; kprStatusOutOfRange for the bins; kprStatusBadArg for the
 * radius; kprStatusOutOfRange for the arc. */
KprStatus kpriFastNGetSize(KprSize srcSize, int circleRadius, int arcLength, int orientationBins, int option,
                           KprDataType dataType, int numChannels, int* result);

/* Fills a block of that size, at any address.
 *
 * threshold   at least 0; its fraction is dropped
 *
 * Arguments and statuses are those of kpriFastNGetSize, with kprStatusBadThreshold for a threshold below 0, or a NaN,
 * after the size. */
KprStatus kpriFastNInit(KprSize srcSize, int circleRadius, int arcLength, int orientationBins, int option,
                        KprDataType dataType, int numChannels, Kpr32f threshold, KprFastNSpec* spec);

/* The bytes of working memory for a ROI, stored to *result. The block is not looked at.
 *
 * Returns kprStatusOk, kprStatusNullPtr, kprStatusBadSize, or kprStatusSizeOverflow if they do not fit. */
KprStatus kpriFastNGetBufferSize(const KprFastNSpec* spec, KprSize dstRoiSize, int* result);

/* Searches a ROI for corners. A pixel c is a corner if at least arcLength points in a row of its circle are brighter
 * than c + t, or as many are darker than c - t, t being the threshold's integer; the circle is closed.
 *
 *     corner byte    0 for no corner; 0x40 for a brighter arc, 0x80 for a darker one, plus the bin of orientation
 *     score          the largest threshold, plus 1, with which the pixel were still a corner; 0 for no corner
 *     suppression    a corner stays if its score is not below those of its eight neighbours, so that equal neighbours
 *                    both stay. Neighbours outside the ROI take no part.
 *     orientation    with d[i] = point i - c and step = 2 pi / n: a = atan2(sum d[i] cos(i step), sum d[i] sin(i step))
 *                    from 0 to 2 pi, in floats added in the order of i. Point 0 lies straight below the centre, the
 *                    points go on toward the left. The bin is trunc(a * bins / (2 pi)), and 0 instead of 64.
 *
 * Pixels nearer to an edge of the image than the radius are no corners. All bytes of both destination ROIs are written,
 * and the image is read within the radius of the ROI.
 *
 * src                      the whole image, of the size in the block, whatever the ROI
 * dstCorner, dstScore      their first pixels belong to srcRoiOffset; dstScore is looked at with kprFastNScore only.
 *                          No image overlaps another
 * numCorners               receives the number of corners in dstCorner
 * srcRoiOffset, dstRoiSize the ROI, of which what lies outside the image holds no corner
 * buffer                   working memory of the size that the sizing call tells for this ROI, at any address
 *
 * Returns kprStatusOk; kprStatusRoiClipped if the ROI leaves the image, nothing being written if it lies outside
 * altogether; or the first failure: kprStatusNullPtr for src, dstCorner, spec, buffer or numCorners; kprStatusBadSize
 * for the ROI; kprStatusBadContext, kprStatusBadDataType, kprStatusBadChannel, kprStatusBadSize for the block;
 * kprStatusBadStep; then for what the block holds kprStatusBadArg, kprStatusOutOfRange, kprStatusNullPtr for dstScore,
 * kprStatusBadArg, kprStatusOutOfRange as in kpriFastNInit. */
KprStatus kpriFastN_8u_C1R(const Kpr8u* src, int srcStep, Kpr8u* dstCorner, int dstCornerStep, Kpr8u* dstScore,
                           int dstScoreStep, int* numCorners, KprPoint srcRoiOffset, KprSize dstRoiSize,
                           const KprFastNSpec* spec, Kpr8u* buffer);

/* One corner. */
typedef struct KprFastNCorner {
    Kpr32s x, y;        /* in the ROI */
    Kpr32s cornerType;  /* 0 brighter arc, 1 darker arc */
    Kpr32s orientation; /* the bin, or -1 without kprFastNOrientation */
    Kpr32f angle;       /* bin * (360 / bins) degrees, or -1 */
    Kpr32f score;       /* or -1 without kprFastNScore */
} KprFastNCorner;

/* Lists the corners of an image that kpriFastN_8u_C1R has made, in raster order, until the list is full.
 *
 * srcCorner, srcScore   pixels; srcScore is looked at if the block has kprFastNScore
 * dstList               room for maxLen corners; no more than are found are written
 * maxLen                at least 0
 * numCorners            receives the number of corners listed
 *
 * Returns kprStatusOk, or the first failure: kprStatusNullPtr for srcCorner, dstList, numCorners or spec;
 * kprStatusBadSize for the ROI, then for maxLen; and those of kpriFastN_8u_C1R for the block, the steps and srcScore.
 */
KprStatus kpriFastN2DToVec_8u(const Kpr8u* srcCorner, int srcCornerStep, const Kpr8u* srcScore, int srcScoreStep,
                              KprFastNCorner* dstList, KprSize roiSize, int maxLen, int* numCorners,
                              const KprFastNSpec* spec);

#ifdef __cplusplus
}
#endif

#endif
