/* Straight lines in a map of edges: every pixel but 0 is an edge point. */
#ifndef KPRCV_FEATURE_LINES_H
#define KPRCV_FEATURE_LINES_H

#include <kprcv/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/* The points x, y of a line have x * cos(theta) + y * sin(theta) = rho, from the first pixel of the ROI. As a
 * resolution, the distances between neighbouring lines. */
typedef struct KprRhoTheta {
    Kpr32f rho;   /* pixels */
    Kpr32f theta; /* radians */
} KprRhoTheta;

typedef struct KprLineSegment {
    Kpr32s x1, y1, x2, y2;
} KprLineSegment;

/* The bytes of working memory for both forms of kpriHoughLine, stored to *result.
 *
 * Returns kprStatusOk; kprStatusSizeBeyond32Bit if the size does not fit: *result is then its low 32 bits, and no
 * memory serves; kprStatusNullPtr; kprStatusBadSize for the ROI; kprStatusBadArg for a resolution that is not above
 * 0. */
KprStatus kpriHoughLineGetSize_8u_C1R(KprSize roiSize, KprRhoTheta delta, int maxLineCount, int* result);

/* Finds the lines on which more than `threshold` edge points lie.
 *
 *     lines         numRho = trunc((2 * (width + height) + 1) / delta.rho) distances for each of
 *                   numAngle = trunc(3.14159 / delta.theta) angles, the first of which is 0; the distance 0 has the
 *                   index offset = (numRho - 1) / 2
 *     votes         a point votes at each angle for the index ((x * cosine + y * sine + 512) >> 10) + offset, in
 *                   32 bits that wrap, with the angle's cosine and sine times 1024 / delta.rho, truncated; angles are
 *                   summed up in single precision. There is no vote for an index that no line has
 *     a line        has more votes than `threshold`, than the next lower distance at its angle and than its own
 *                   distance at the angle before; and no fewer than the next higher distance, its own distance at the
 *                   angle behind, and the last line of a list that was full when its angle came
 *
 * src            pixels; rows srcStep bytes apart, srcStep being any positive number
 * delta          above 0, and such that numRho and numAngle are at least 1
 * threshold      at least 1
 * lines          room for maxLineCount lines, filled from the most votes to the fewest; of equal ones the line that was
 *                found first, by angle and then by distance, comes first
 * maxLineCount   at least 1
 * lineCount      receives the number of lines listed
 * buffer         working memory of the size that the sizing call tells, at any address
 *
 * Returns kprStatusOk; kprStatusListFull if more lines were found than the list holds; or the first failure:
 * kprStatusNullPtr; kprStatusBadStep for a step below 1; kprStatusBadSize for the ROI or maxLineCount; kprStatusBadArg
 * for the resolution or the threshold. */
KprStatus kpriHoughLine_8u32f_C1R(const Kpr8u* src, int srcStep, KprSize roiSize, KprRhoTheta delta, int threshold,
                                  KprRhoTheta* lines, int maxLineCount, int* lineCount, Kpr8u* buffer);

/* The same of lines in a window of distances and angles only: votes outside it do not count, so that lines at its edge
 * have no neighbours there.
 *
 * dstRoi    the window's lower and upper corner, both inside; what reaches beyond the first and last distance or angle
 *           is brought back to them and stored. A window between neighbouring lines, or beyond all, has none
 *
 * Returns what kpriHoughLine_8u32f_C1R returns, dstRoi not being null either; then kprStatusBadRange, with *lineCount
 * 0, if a lower bound is above the upper one, or one is a NaN. */
KprStatus kpriHoughLine_Region_8u32f_C1R(const Kpr8u* src, int srcStep, KprSize roiSize, KprRhoTheta* lines,
                                         KprRhoTheta dstRoi[2], int maxLineCount, int* lineCount, KprRhoTheta delta,
                                         int threshold, Kpr8u* buffer);

/* The block of kpriHoughProbLine_8u32f_C1R. It holds no address, may be copied to any, and is not written by the
 * search. */
typedef struct KprHoughProbSpec KprHoughProbSpec;

/* The bytes of block and working memory, stored to *specSize and *bufferSize.
 *
 * Returns kprStatusOk, kprStatusNullPtr, kprStatusBadSize, kprStatusBadArg for a resolution that is not above 0, or
 * kprStatusSizeOverflow, nothing being stored. */
KprStatus kpriHoughProbLineGetSize_8u_C1R(KprSize roiSize, KprRhoTheta delta, int* specSize, int* bufferSize);

/* Fills a block of that size, at any address. Angles are summed up in single precision.
 *
 * Returns kprStatusOk, kprStatusBadSize, kprStatusBadArg for a resolution that is not above 0, or kprStatusNullPtr, in
 * this order. */
KprStatus kpriHoughProbLineInit_8u32f_C1R(KprSize roiSize, KprRhoTheta delta, int maxLineCount, KprHoughProbSpec* spec);

/* Finds straight segments, taking edge points at random and following the line that has most votes by then.
 *
 * With `state` all ones at first, and the points in raster order, c of them left:
 *   1. state = (state >> 32) + (state mod 2^32) * 4164903690; the point (state mod 2^32) mod c is taken, and the last
 *      one put in its place. A point of an earlier segment is dropped.
 *   2. It votes at each angle for the index nearest to (x * cos + y * sin) / delta.rho (ties to even, each operation
 *      rounded to single precision) plus (numRho - 1) / 2. The first angle with most votes wins; with fewer than
 *      `threshold` the point is done.
 *   3. From the point, the line of that angle is followed forward, that is toward (-sin, cos), and backward, by whole
 *      pixels along the axis it is nearer to and by 1/65536 of a pixel along the other, to the last edge point before
 *      more than `lineGap` pixels without one, or the edge of the ROI.
 *   4. The segment counts if its larger extent is at least `lineLength`. Its points are used up in any case; if it
 *      counts, each of them loses a vote at every angle, whether it had voted or not.
 * The search ends when no point is left or the list is full. The same input gives the same segments.
 *
 * src                     pixels; rows srcStep bytes apart
 * roiSize                 that of the block and of the buffer, or smaller on both sides
 * threshold               at least 1
 * lineLength, lineGap     pixels, at least 0
 * lines                   (x1, y1) is the end of the forward walk. Room for maxLineCount segments; for one more if
 *                         32767 or more pixels are edge points, since the list then counts as full one segment later
 * maxLineCount            the smaller one of this and the block's rules; below 1 nothing is listed
 * lineCount               receives the number of segments
 * buffer                  working memory of the size that the sizing call tells, at any address
 *
 * Returns kprStatusOk, or the first failure: kprStatusNullPtr, kprStatusBadSize, kprStatusBadStep, kprStatusBadArg for
 * threshold, lineLength or lineGap. */
KprStatus kpriHoughProbLine_8u32f_C1R(const Kpr8u* src, int srcStep, KprSize roiSize, int threshold, int lineLength,
                                      int lineGap, KprLineSegment* lines, int maxLineCount, int* lineCount,
                                      Kpr8u* buffer, const KprHoughProbSpec* spec);

#ifdef __cplusplus
}
#endif

#endif
