/* Motion from frame to frame. */
#ifndef KPRCV_MOTION_H
#define KPRCV_MOTION_H

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

#ifdef __cplusplus
}
#endif

#endif
