/* Integral images, standard deviations of windows, and stages of rectangle features. */
#ifndef KPRCV_DETECT_H
#define KPRCV_DETECT_H

#include <kprcv/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Integral image: each element of the table is `value` plus the sum of all source pixels above it and to its left.
 *
 *     dst(0, y) = dst(x, 0) = value          dst(x + 1, y + 1) = rowSum(x, y) + dst(x + 1, y)
 *
 * where rowSum(x, y) adds up row y of the source to pixel x, x included. The table has one column and one row more
 * than the source. The sum of the pixels of a rectangle at (x, y) is then
 * dst(x, y) - dst(x + width, y) - dst(x, y + height) + dst(x + width, y + height).
 *
 * 8u32s wraps in 32 bits without notice: from 16843010 white pixels on. In 8u32f a row's sum is exact below 2^24; what
 * is beyond is added in blocks of sixteen pixels, each integer sum rounded once and then added to the row's sum before
 * it. 32f adds in blocks of eight: within four pixels each plus the one 1 before it, then plus the one 2 before it,
 * the lower four's total added to the upper four, the block to the row's sum before it; the last width mod 8 pixels
 * are added one by one. Each sum is rounded, and so is its sum with the element above. A NaN or an infinity spreads to
 * the right and downward, in 32f never to the left.
 *
 * src                 pixels; must not overlap dst
 * dst                 width + 1 by height + 1 elements
 * srcStep, dstStep    bytes from row to row
 * roiSize             of the source, pixels; at least 1 x 1
 * value               what the table's first row and column hold
 *
 * Returns kprStatusOk, kprStatusNullPtr, kprStatusBadSize, kprStatusBadStep, kprStatusStepNotMultiple (steps of 32-bit
 * elements). */
KprStatus kpriIntegral_8u32s_C1R(const Kpr8u* src, int srcStep, Kpr32s* dst, int dstStep, KprSize roiSize,
                                 Kpr32s value);
KprStatus kpriIntegral_8u32f_C1R(const Kpr8u* src, int srcStep, Kpr32f* dst, int dstStep, KprSize roiSize,
                                 Kpr32f value);
KprStatus kpriIntegral_32f_C1R(const Kpr32f* src, int srcStep, Kpr32f* dst, int dstStep, KprSize roiSize, Kpr32f value);

/* Integral image and that of the pixels' squares, in one pass over the source.
 *
 * As kpriIntegral, with sqr the same table of the squares, which starts from valueSqr. 32s squares wrap. The row sums
 * of 64f squares are exact, so that each element is rounded once, where it is added to the one above it.
 *
 * sqr, sqrStep    width + 1 by height + 1 elements, and bytes from row to row; must not overlap src or dst
 * valueSqr        what the first row and column of sqr hold
 *
 * Returns the statuses of kpriIntegral; kprStatusStepNotMultiple also for a sqrStep that is no multiple of its
 * element's size. */
KprStatus kpriSqrIntegral_8u32s_C1R(const Kpr8u* src, int srcStep, Kpr32s* dst, int dstStep, Kpr32s* sqr, int sqrStep,
                                    KprSize roiSize, Kpr32s value, Kpr32s valueSqr);
KprStatus kpriSqrIntegral_8u32s64f_C1R(const Kpr8u* src, int srcStep, Kpr32s* dst, int dstStep, Kpr64f* sqr,
                                       int sqrStep, KprSize roiSize, Kpr32s value, Kpr64f valueSqr);
KprStatus kpriSqrIntegral_8u32f64f_C1R(const Kpr8u* src, int srcStep, Kpr32f* dst, int dstStep, Kpr64f* sqr,
                                       int sqrStep, KprSize roiSize, Kpr32f value, Kpr64f valueSqr);

/* Tilted integral image: the table of sums from which rectangles at 45 degrees are read.
 *
 * The table T has two columns and two rows more than the source. Its rows 0 and 1 are all `value`; source row y, with
 * pixels s(0) to s(width - 1) and s(width) counting as 0, makes row r = y + 2:
 *
 *     T(0, r) = T(1, r - 1)                    T(width + 1, r) = T(width, r - 1)
 *     T(j + 1, r) = T(j, r - 1) + T(j + 2, r - 1) - T(j + 1, r - 2) + (s(j) + s(j + 1))        0 <= j < width
 *
 * 32s wraps. 8u32f computes each element in double precision, in the order T(j, r - 1) - T(j + 1, r - 2) +
 * T(j + 2, r - 1) + pixels, and rounds it once to single precision.
 *
 * dst    width + 2 by height + 2 elements; must not overlap src
 *
 * The other parameters and the statuses are those of kpriIntegral. */
KprStatus kpriTiltedIntegral_8u32s_C1R(const Kpr8u* src, int srcStep, Kpr32s* dst, int dstStep, KprSize roiSize,
                                       Kpr32s value);
KprStatus kpriTiltedIntegral_8u32f_C1R(const Kpr8u* src, int srcStep, Kpr32f* dst, int dstStep, KprSize roiSize,
                                       Kpr32f value);

/* Tilted integral image and that of the pixels' squares, in one pass over the source.
 *
 * As kpriTiltedIntegral, with sqr the same table of squares (s(j)^2 + s(j + 1)^2 added as integers), which starts from
 * valueSqr. 64f is computed in double precision, in the order written there beside a 32s table; in 8u32f64f both tables
 * add in the order pixels + T(j, r - 1) + T(j + 2, r - 1) - T(j + 1, r - 2).
 *
 * sqr    width + 2 by height + 2 elements; must not overlap src or dst
 *
 * The other parameters and the statuses are those of kpriSqrIntegral. */
KprStatus kpriTiltedSqrIntegral_8u32s_C1R(const Kpr8u* src, int srcStep, Kpr32s* dst, int dstStep, Kpr32s* sqr,
                                          int sqrStep, KprSize roiSize, Kpr32s value, Kpr32s valueSqr);
KprStatus kpriTiltedSqrIntegral_8u32s64f_C1R(const Kpr8u* src, int srcStep, Kpr32s* dst, int dstStep, Kpr64f* sqr,
                                             int sqrStep, KprSize roiSize, Kpr32s value, Kpr64f valueSqr);
KprStatus kpriTiltedSqrIntegral_8u32f64f_C1R(const Kpr8u* src, int srcStep, Kpr32f* dst, int dstStep, Kpr64f* sqr,
                                             int sqrStep, KprSize roiSize, Kpr32f value, Kpr64f valueSqr);

/* Standard deviation of the pixels in a rectangle, for each position of a window over an image, from the image's
 * integral tables.
 *
 * For the position (col, row), with a, b, c and d the table's elements at (col, row) plus (x, y), (x + width, y),
 * (x, y + height) and (x + width, y + height) of rect, a table's sum is (a - b) - (c - d). Then
 *
 *     mean = inverse * sum, meanSq = inverse * sumOfSquares, variance = fma(-mean, mean, meanSq)
 *
 * where inverse = 1 / (width * height); dst is the square root, or 0 for a variance below zero.
 *
 * _32f and _32s32f compute in double precision; the sum of src is formed in its own type (32s wraps), the variance is
 * rounded to single precision before the root. _32s_C1RSfs forms both sums in wrapping 32-bit integers, computes in
 * single precision, and stores fma(root, 2^-scaleFactor, 0.5) truncated: rounded half up, and not saturated: what 32
 * bits do not hold becomes -2147483648. A NaN in a table gives NaN in the windows that read it; in integers it cannot
 * occur.
 *
 * src, sqr                     the tables of the pixels and of their squares; read from (rect.x, rect.y) on, as far as
 *                              the rectangle of the last position reaches
 * dst                          one element for each position; must not overlap the tables
 * srcStep, sqrStep, dstStep    bytes from row to row
 * roiSize                      of dst: positions; at least 1 x 1
 * rect                         pixels, relative to the position; x and y at least 0, width and height at least 1
 * scaleFactor                  any integer
 *
 * Returns kprStatusOk, kprStatusNullPtr, kprStatusBadSize (roiSize), kprStatusBadStep (the tables' rows have
 * roiSize.width + rect.x + rect.width elements), kprStatusStepNotMultiple, and last kprStatusBadSize (rect). */
KprStatus kpriRectStdDev_32f_C1R(const Kpr32f* src, int srcStep, const Kpr64f* sqr, int sqrStep, Kpr32f* dst,
                                 int dstStep, KprSize roiSize, KprRect rect);
KprStatus kpriRectStdDev_32s32f_C1R(const Kpr32s* src, int srcStep, const Kpr64f* sqr, int sqrStep, Kpr32f* dst,
                                    int dstStep, KprSize roiSize, KprRect rect);
KprStatus kpriRectStdDev_32s_C1RSfs(const Kpr32s* src, int srcStep, const Kpr32s* sqr, int sqrStep, Kpr32s* dst,
                                    int dstStep, KprSize roiSize, KprRect rect, int scaleFactor);

/* The same of a rectangle at 45 degrees, from the tilted tables.
 *
 * As kpriRectStdDev, with a, b, c and d at (col, row) plus (x - y, x + y), (x - y - height, x + y + height),
 * (x - y + width, x + y + width) and (x - y + width - height, x + y + width + height), and inverse =
 * 1 / (2 * width * height). The column of an offset may be negative: the caller's tables reach as far.
 *
 * kprStatusBadStep is returned for tables whose rows have fewer than roiSize.width + rect.x + rect.y + rect.width +
 * rect.height - 1 elements. */
KprStatus kpriTiltedRectStdDev_32f_C1R(const Kpr32f* src, int srcStep, const Kpr64f* sqr, int sqrStep, Kpr32f* dst,
                                       int dstStep, KprSize roiSize, KprRect rect);
KprStatus kpriTiltedRectStdDev_32s32f_C1R(const Kpr32s* src, int srcStep, const Kpr64f* sqr, int sqrStep, Kpr32f* dst,
                                          int dstStep, KprSize roiSize, KprRect rect);
KprStatus kpriTiltedRectStdDev_32s_C1RSfs(const Kpr32s* src, int srcStep, const Kpr32s* sqr, int sqrStep, Kpr32s* dst,
                                          int dstStep, KprSize roiSize, KprRect rect, int scaleFactor);

/* A prepared stage of a cascade: weighted rectangles, grouped into classifiers. It lies in the caller's memory, at any
 * address, holds addresses of its own and so must not be moved or copied, and serves one call at a time: processing
 * calls write to it. Nothing needs to be undone before the memory is freed. */
typedef struct KprHaarClassifier KprHaarClassifier;

/* Bytes that a stage needs.
 *
 * dataType           kpr32f or kpr32s, the type of its thresholds and values
 * roiSize            the largest ROI of windows to be processed; at least 1 x 1
 * featureCounts      the number of rectangles of each classifier, each at least 1
 * classifierCount    at least 1
 * size               receives the size in bytes
 *
 * Returns kprStatusOk, kprStatusNullPtr, kprStatusBadSize (a size or a count below 1), kprStatusBadDataType,
 * kprStatusSizeOverflow (more than 2147483647 bytes). */
KprStatus kpriHaarClassifierGetSize(KprDataType dataType, KprSize roiSize, const int* featureCounts,
                                    int classifierCount, int* size);

/* Prepares a stage. Classifiers of two rectangles come first, then those of three, then the others, each kind in the
 * caller's order; their values are added in that order.
 *
 * state                         of the size told by kpriHaarClassifierGetSize
 * features                      x, y, width and height of each rectangle in pixels, relative to the window: x and y at
 *                               least 0, width and height at least 1; all classifiers one after another
 * weights                       one for each rectangle
 * thresholds, valuesBelow, valuesAbove    one for each classifier
 * featureCounts                 as in kpriHaarClassifierGetSize
 * classifierCount               at least 1
 *
 * Returns kprStatusOk, kprStatusNullPtr, kprStatusBadSize (a count below 1), kprStatusBadArg (a rectangle outside what
 * is told above: the block is then half filled and must not be used). */
KprStatus kpriHaarClassifierInit_32f(KprHaarClassifier* state, const int* features, const Kpr32f* weights,
                                     const Kpr32f* thresholds, const Kpr32f* valuesBelow, const Kpr32f* valuesAbove,
                                     const int* featureCounts, int classifierCount);
KprStatus kpriHaarClassifierInit_32s(KprHaarClassifier* state, const int* features, const Kpr32s* weights,
                                     const Kpr32s* thresholds, const Kpr32s* valuesBelow, const Kpr32s* valuesAbove,
                                     const int* featureCounts, int classifierCount);

/* The same of rectangles at 45 degrees, which stand on their top corner (x, y) and reach from there `width` down to the
 * right and `height` down to the left. Classifiers stay in the caller's order. A height above x + 1 is kprStatusBadArg
 * too: the rectangle would leave the table to the left. */
KprStatus kpriTiltedHaarClassifierInit_32f(KprHaarClassifier* state, const int* features, const Kpr32f* weights,
                                           const Kpr32f* thresholds, const Kpr32f* valuesBelow,
                                           const Kpr32f* valuesAbove, const int* featureCounts, int classifierCount);
KprStatus kpriTiltedHaarClassifierInit_32s(KprHaarClassifier* state, const int* features, const Kpr32s* weights,
                                           const Kpr32s* thresholds, const Kpr32s* valuesBelow,
                                           const Kpr32s* valuesAbove, const int* featureCounts, int classifierCount);

/* How far the rectangles of a stage reach: the greatest x and the greatest y of their bottom right corners (of the
 * bottom corners of tilted ones), 0 where none is above it. So much the windows must be away from the right and bottom
 * end of a table.
 *
 * Returns kprStatusOk, kprStatusNullPtr. */
KprStatus kpriGetHaarClassifierSize_32f(const KprHaarClassifier* state, KprSize* size);
KprStatus kpriGetHaarClassifierSize_32s(const KprHaarClassifier* state, KprSize* size);

/* Turns chosen classifiers of an upright stage into tilted ones, once.
 *
 * With a flag that is not 0 each of their rectangles turns about its top left corner, into that of
 * kpriTiltedHaarClassifierInit; with a flag of 0 it turns the other way about its bottom left corner: its corners are
 * then (x, y + height), (x - height, y), (x + width, y + height - width) and (x + width - height, y - width).
 *
 * mask    one byte for each classifier in the caller's order; those that are not 0 choose
 *
 * Returns kprStatusOk, kprStatusNullPtr, kprStatusBadArg (a stage that has tilted classifiers already). */
KprStatus kpriTiltHaarFeatures_32f(const Kpr8u* mask, int flag, KprHaarClassifier* state);
KprStatus kpriTiltHaarFeatures_32s(const Kpr8u* mask, int flag, KprHaarClassifier* state);

/* One stage for each window whose mask pixel is not 0: clears the pixel where the stage rejects the window.
 *
 * With S the table at the window's place, each classifier adds up its rectangles in order,
 *
 *     rect = S(corner 0) - S(corner 1) - S(corner 2) + S(corner 3)        acc = sum of weight * rect
 *
 * and gives valueBelow where its threshold * norm is above acc, else valueAbove. A window is kept unless the stage's
 * threshold is above the sum of these values, which starts at 0 and is added in the order of kpriHaarClassifierInit.
 * Equality gives valueAbove and keeps the window; so does a NaN.
 *
 * _32f        acc = fma(weight, rect, acc), where rect is ((a - b) - c) + d, or (a - b) - (c - d) in the last
 *             width mod 4 columns of a row
 * _32s32f     rect wraps in 32 bits and is converted; feature k goes to lane k mod 16, each with an fma of its own.
 *             With A[i] = lane[i] + lane[i + 8] and B[i] = lane[i + 12] + lane[i + 4], i from 0 to 3, and
 *             p[i] = (B[i + 2] + A[i]) + (B[i] + A[i + 2]), acc is p[1] + p[0]
 * _32s_Sfs    rect and the stage's sum wrap in 32 bits, acc is a 64-bit integer and the comparison is
 *             acc * 2^-scaleFactor < threshold * norm in 64 bits
 *
 * Only windows whose mask pixel is set are read, of the tables and of norm: with a mask of zeros, nothing is.
 *
 * src, srcStep      the integral table, one element a window: the first is that of window (0, 0). Rectangles are read
 *                   wherever they lie, so that the table must reach beyond the windows by kpriGetHaarClassifierSize
 * norm, normStep    what thresholds are multiplied by, such as the windows' standard deviations
 * mask, maskStep    windows to look at, and the result; maskStep is not checked
 * roiSize           windows; at least 1 x 1
 * positive          on return the number of mask pixels that are left. On entry it may hold what the stage before left;
 *                   no result depends on it
 * threshold         of the stage
 * state             a stage of 32f, or of 32s in _32s_C1RSfs
 * scaleFactor       0 or below; from -64 on nothing is left of acc
 *
 * Returns kprStatusOk, kprStatusNullPtr, kprStatusBadSize, kprStatusBadStep, kprStatusStepNotMultiple,
 * kprStatusBadArg (scaleFactor), and last kprStatusNullPtr for a block that was never prepared, as far as its working
 * area shows it. */
KprStatus kpriApplyHaarClassifier_32f_C1R(const Kpr32f* src, int srcStep, const Kpr32f* norm, int normStep, Kpr8u* mask,
                                          int maskStep, KprSize roiSize, int* positive, Kpr32f threshold,
                                          KprHaarClassifier* state);
KprStatus kpriApplyHaarClassifier_32s32f_C1R(const Kpr32s* src, int srcStep, const Kpr32f* norm, int normStep,
                                             Kpr8u* mask, int maskStep, KprSize roiSize, int* positive,
                                             Kpr32f threshold, KprHaarClassifier* state);
KprStatus kpriApplyHaarClassifier_32s_C1RSfs(const Kpr32s* src, int srcStep, const Kpr32s* norm, int normStep,
                                             Kpr8u* mask, int maskStep, KprSize roiSize, int* positive,
                                             Kpr32s threshold, KprHaarClassifier* state, int scaleFactor);

/* The same for stages of which some classifiers are tilted: these read the tilted table, the others the upright one.
 *
 * As kpriApplyHaarClassifier, but that _32f too gathers acc in sixteen lanes, with rect as ((a - b) - c) + d in every
 * column. The element (1, 1) of the tilted table belongs to window (0, 0). maskStep is checked with the other steps.
 * The block is not written to.
 *
 * tilt, tiltStep    the tilted integral table */
KprStatus kpriApplyMixedHaarClassifier_32f_C1R(const Kpr32f* src, int srcStep, const Kpr32f* tilt, int tiltStep,
                                               const Kpr32f* norm, int normStep, Kpr8u* mask, int maskStep,
                                               KprSize roiSize, int* positive, Kpr32f threshold,
                                               KprHaarClassifier* state);
KprStatus kpriApplyMixedHaarClassifier_32s32f_C1R(const Kpr32s* src, int srcStep, const Kpr32s* tilt, int tiltStep,
                                                  const Kpr32f* norm, int normStep, Kpr8u* mask, int maskStep,
                                                  KprSize roiSize, int* positive, Kpr32f threshold,
                                                  KprHaarClassifier* state);
KprStatus kpriApplyMixedHaarClassifier_32s_C1RSfs(const Kpr32s* src, int srcStep, const Kpr32s* tilt, int tiltStep,
                                                  const Kpr32s* norm, int normStep, Kpr8u* mask, int maskStep,
                                                  KprSize roiSize, int* positive, Kpr32s threshold,
                                                  KprHaarClassifier* state, int scaleFactor);

#ifdef __cplusplus
}
#endif

#endif
