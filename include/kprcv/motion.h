/* Motion from frame to frame. */
#ifndef KPRCV_MOTION_H
#define KPRCV_MOTION_H

#include <kprcv/pyramid.h>
#include <kprcv/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Folds the silhouette of what moves now into a motion history image, which holds the time at which each pixel last
 * moved. With limit = timeStamp - duration in single precision:
 *
 *     history = timeStamp where silhouette is not 0; else 0 where history < limit; else as it is
 *
 * silhouette    pixels of which any but zero moves, of 32f either zero stands still and a NaN moves
 * history       in place, in the unit of the time stamp, 0 where nothing moved lately. A NaN, and what equals the
 *               limit, stays. Must not overlap the silhouette.
 * timeStamp, duration   any numbers, the duration not below 0
 *
 * Returns kprStatusOk, kprStatusNullPtr, kprStatusBadSize, kprStatusBadStep, kprStatusStepNotMultiple (of history, and
 * of a 16u or 32f silhouette), kprStatusOutOfRange (a duration below 0; a NaN passes). */
KprStatus kpriUpdateMotionHistory_8u32f_C1IR(const Kpr8u* silhouette, int silhouetteStep, Kpr32f* history,
                                             int historyStep, KprSize roiSize, Kpr32f timeStamp, Kpr32f duration);
KprStatus kpriUpdateMotionHistory_16u32f_C1IR(const Kpr16u* silhouette, int silhouetteStep, Kpr32f* history,
                                              int historyStep, KprSize roiSize, Kpr32f timeStamp, Kpr32f duration);
KprStatus kpriUpdateMotionHistory_32f_C1IR(const Kpr32f* silhouette, int silhouetteStep, Kpr32f* history,
                                           int historyStep, KprSize roiSize, Kpr32f timeStamp, Kpr32f duration);

/* The foreground mixture model: tells what moves in a video of three 8-bit channels from its background. Each pixel
 * keeps up to maxModes modes, of a weight, a mean colour and a variance each, in the order of falling weights.
 *
 * The parameters have no defaults: every field counts. */
typedef struct KprFGMMModel {
    uint32_t historyLength; /* frames over which the automatic learning rate settles */
    int32_t modeCount;      /* modes in use, 1 to the state's maximum; more than 255 count as 255 */
    float varianceInit;     /* of a new mode */
    float varianceMin;      /* what a mode's variance is held above */
    float varianceMax;      /* and below */
    float backgroundFactor; /* background, if the squared distance is below this times the variance */
    float backgroundWeight; /* only modes before the sum of weights reaches this are background */
    float matchFactor;      /* a mode matches, if the squared distance is below this times the variance */
    float weightDecay;      /* each frame a mode's weight loses the learning rate times this */
    uint8_t shadowLabel;    /* the result of a pixel in shadow */
    uint8_t shadowEnabled;  /* not 0: pixels that are no background are tested for shadow */
    float shadowRatioMin;   /* the least brightness of a shadow, as a share of the background's */
} KprFGMMModel;

/* The state in the caller's memory. It holds addresses of its own: a copy elsewhere is no state. One call at a time. */
typedef struct KprFGMMState KprFGMMState;

/* The bytes of a state for frames of roiSize. Returns kprStatusOk, kprStatusNullPtr, kprStatusBadSize, kprStatusBadArg
 * (maxModes below 1), kprStatusSizeOverflow (a size beyond 2^31 - 1; nothing is written). */
KprStatus kpriFGMMGetBufferSize_8u_C3R(KprSize roiSize, int maxModes, int* bufferSize);

/* Fills a state, which may lie at any address: no frames, no modes. The model is copied; maxModes takes the place of
 * its modeCount. Returns kprStatusOk, kprStatusNullPtr, kprStatusBadSize, kprStatusBadArg (maxModes below 1). */
KprStatus kpriFGMMInit_8u_C3R(KprSize roiSize, int maxModes, const KprFGMMModel* model, KprFGMMState* state);

/* Takes a frame into the model and tells for each pixel: 0 background, model.shadowLabel shadow, 255 foreground.
 *
 * src, dst      three channels, and one; steps in bytes, which are trusted to hold their rows. They must not overlap.
 * roiSize       as at the initialisation
 * model         null, or parameters that replace the state's from this frame on. Where its modeCount is below the
 *               number of modes that a pixel has, the lightest are dropped.
 * learningRate  alpha, from 0 to 1: how fast the model follows. A negative one, and the first frame always, take
 *               1 / min(2 * n, historyLength) at frame n.
 *
 * Each mode's weight w becomes fma(1 - alpha, w, -alpha * weightDecay). In the order of weights, the first mode with
 * dot(d, d) < matchFactor * v, d = mean - colour, takes the colour in: w += alpha, k = alpha / w, mean -= k * d,
 * v += k * (dot(d, d) - v). A mode whose weight falls below alpha * weightDecay is dropped; the weights then add up to
 * 1. A colour without a match makes a new mode, in place of the lightest where there is no room. A pixel is background,
 * if it is near enough to a mode before backgroundWeight is reached; shadow, if it is such a mode's colour times a
 * factor from shadowRatioMin to 1. Single precision, each operation rounded once.
 *
 * Returns kprStatusOk, kprStatusNullPtr, kprStatusBadStep (a step below 1), kprStatusBadSize, kprStatusBadArg
 * (model->modeCount below 1 or above the state's maximum: nothing changes). */
KprStatus kpriFGMMForeground_8u_C3R(const Kpr8u* src, int srcStep, Kpr8u* dst, int dstStep, KprSize roiSize,
                                    KprFGMMState* state, const KprFGMMModel* model, double learningRate);

/* Shows the background that the model holds: the mean, by their weights, of the modes up to the one with which the sum
 * of weights exceeds backgroundWeight, to the nearest integer. 0 before the first frame. The state is only read.
 *
 * Returns kprStatusOk, kprStatusNullPtr, kprStatusBadStep (below 1), kprStatusBadSize. */
KprStatus kpriFGMMBackground_8u_C3R(Kpr8u* dst, int dstStep, KprSize roiSize, const KprFGMMState* state);

/* Optical flow: where points of one image are found in the next one, by the iterative method of Lucas and Kanade in a
 * square window, from the coarsest of some levels of two pyramids to the images themselves. */
typedef struct KprOpticalFlowPyrLK KprOpticalFlowPyrLK;

/* The bytes of the state for windows of winSize x winSize pixels.
 *
 * roiSize       pixels of the largest image, level 0
 * dataType      kpr8u, kpr16u or kpr32f
 * hint          any; it has no effect
 *
 * Returns kprStatusOk, kprStatusBadSize (winSize or a side below 1), kprStatusBadDataType, kprStatusNullPtr,
 * kprStatusSizeOverflow (a size beyond 2^31 - 1; nothing is written). */
KprStatus kpriOpticalFlowPyrLKGetSize(int winSize, KprSize roiSize, KprDataType dataType, int hint, int* result);

/* Makes a state in stateBuffer, which may lie anywhere, and gives its address. The state holds an address of its own
 * and must not be moved. It serves one call at a time, and any number of them.
 *
 * Returns kprStatusOk, kprStatusBadSize (winSize or a side below 1), kprStatusNullPtr. */
KprStatus kpriOpticalFlowPyrLKInit_8u_C1R(KprOpticalFlowPyrLK** statePtr, KprSize roiSize, int winSize, int hint,
                                          Kpr8u* stateBuffer);
KprStatus kpriOpticalFlowPyrLKInit_16u_C1R(KprOpticalFlowPyrLK** statePtr, KprSize roiSize, int winSize, int hint,
                                           Kpr8u* stateBuffer);
KprStatus kpriOpticalFlowPyrLKInit_32f_C1R(KprOpticalFlowPyrLK** statePtr, KprSize roiSize, int winSize, int hint,
                                           Kpr8u* stateBuffer);

/* Tracks points. At each level L from maxLevel to 0 a point starts at the place that the level before has found, or at
 * the one that was given. The window lies around prevPoints * pRate[L] of pyr1, cut to where each of its cells of four
 * pixels has all neighbours in the image. I are its pixels there, Ix and Iy their derivatives (Scharr's, of the levels'
 * pixels), all by bilinear interpolation; J are those of pyr2 around the present place, filled beyond the image with
 * what is nearest. With sums over the window in double precision, an iteration goes
 *
 *     dx = (bx * Gyy - by * Gxy) / det      bx = sum of (I - J) * Ix     by = sum of (I - J) * Iy
 *     dy = (by * Gxx - bx * Gxy) / det      Gxx = sum of Ix * Ix         and so on
 *
 * from the place to the place + (dx, dy), rounded to single precision, det = Gxx * Gyy - Gxy * Gxy. The level ends with
 * a step shorter than the threshold; after a step that takes the one before back to within 2^-11.5 pixels along both
 * axes, of which half is applied; and after maxIter steps.
 *
 * pyr1, pyr2    the first and the second image: their levels' pixels, sizes and steps; the rates are those of pyr1.
 *               They may differ in size. Only pixels of the levels are read, and only around the points.
 * prevPoints    pixels of level 0, x then y, from the middle of the image's first pixel; anywhere, and NaN too
 * nextPoints    in: a first guess, such as prevPoints; out: the place found. Of a point that fails, the place found at
 *               the last level that it passed, or the guess.
 * status        out: 0 where a point is tracked; else 1 + the level at which it has failed. It fails where nothing is
 *               left of the window, where det is below 2^-52 or no number, as in a flat window, where the second patch
 *               misses its image wholly, where a step is no number, and where pyr2 has no image of the level or a
 *               step in bytes cannot hold the level's row. To leave the image in part is no failure.
 * error         out: root mean square of I - J over the window at the last iteration's begin, in units of a pixel's
 *               value; 0 of a point that fails
 * winSize       pixels along a side, as at the initialisation
 * maxLevel      the coarsest level to use, at most that of either record
 * maxIter       at least 1
 * threshold     pixels of the level in question, not below 0. At 0 no step is short enough.
 *
 * 8u            I and J are 128 times the pixels, rounded; Ix and Iy 128 times the derivatives, in single precision.
 *               det and its bound are in these units.
 * 16u, 32f      I, J, Ix and Iy are in units of a pixel's value, in single precision
 *
 * Returns kprStatusOk, kprStatusNullPtr (a pointer, or an array of a record), kprStatusBadSize (numPoints below 1;
 * winSize below 1 or not the state's), kprStatusBadArg (maxLevel below 0, above a record's last level, or above 254;
 * maxIter below 1; a threshold below 0). Also, after the levels before it, kprStatusNullPtr and kprStatusBadSize for a
 * level of pyr1 without an image or with a side below 1. */
KprStatus kpriOpticalFlowPyrLK_8u_C1R(const KprPyramid* pyr1, const KprPyramid* pyr2, const KprPoint32f* prevPoints,
                                      KprPoint32f* nextPoints, Kpr8u* status, Kpr32f* error, int numPoints, int winSize,
                                      int maxLevel, int maxIter, Kpr32f threshold, KprOpticalFlowPyrLK* state);
KprStatus kpriOpticalFlowPyrLK_16u_C1R(const KprPyramid* pyr1, const KprPyramid* pyr2, const KprPoint32f* prevPoints,
                                       KprPoint32f* nextPoints, Kpr8u* status, Kpr32f* error, int numPoints,
                                       int winSize, int maxLevel, int maxIter, Kpr32f threshold,
                                       KprOpticalFlowPyrLK* state);
KprStatus kpriOpticalFlowPyrLK_32f_C1R(const KprPyramid* pyr1, const KprPyramid* pyr2, const KprPoint32f* prevPoints,
                                       KprPoint32f* nextPoints, Kpr8u* status, Kpr32f* error, int numPoints,
                                       int winSize, int maxLevel, int maxIter, Kpr32f threshold,
                                       KprOpticalFlowPyrLK* state);

#ifdef __cplusplus
}
#endif

#endif
