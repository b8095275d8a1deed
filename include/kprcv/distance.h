/* Distance fields and what is done with them: exact and chamfer distances to the nearest zero pixel, fast marching from
 * the edge of a mask, and inpainting in the order of such a field. */
#ifndef KPRCV_DISTANCE_H
#define KPRCV_DISTANCE_H

#include <kprcv/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/* ---- exact distance */

/* Bytes that the work buffer of an exact distance transform needs.
 *
 * roiSize       pixels; at least 1 x 1
 * bufferSize    receives the size in bytes
 *
 * Returns kprStatusOk, kprStatusNullPtr, kprStatusBadSize, kprStatusSizeOverflow (nothing is written then). */
KprStatus kpriTrueDistanceTransformGetBufferSize_8u32f_C1R(KprSize roiSize, int* bufferSize);

/* The Euclidean distance to the nearest pixel that is zero: with d2 the smallest dx * dx + dy * dy to one,
 *
 *     dst = (Kpr32f)sqrt((Kpr64f)d2)
 *
 * 0 at a zero pixel; 3.4028235e38 everywhere in an image that has none. d2 is exact. Takes a time in proportion to the
 * number of pixels, whatever they are.
 *
 * src           pixels, of which only zero or not zero counts
 * dst           receives the distances, in pixels; must not overlap src
 * srcStep, dstStep   bytes from row to row
 * roiSize       pixels; at least 1 x 1
 * buffer        of the size told by kpriTrueDistanceTransformGetBufferSize_8u32f_C1R, at any address
 *
 * Returns kprStatusOk, kprStatusNullPtr, kprStatusBadSize, kprStatusBadStep, kprStatusStepNotMultiple (dst). */
KprStatus kpriTrueDistanceTransform_8u32f_C1R(const Kpr8u* src, int srcStep, Kpr32f* dst, int dstStep, KprSize roiSize,
                                              Kpr8u* buffer);

/* ---- chamfer distance */

/* The length of the shortest path to a zero pixel, found in two passes. Each pixel that is not zero takes, from the top
 * row down and from left to right, the smallest of M and of d + weight over its neighbours that come earlier; then, in
 * the opposite order, the smallest of itself and of d + weight over those that come later. Neighbours outside of the
 * ROI take no part. The weight is
 *
 *     metric[0]   for a step along a row or column
 *     metric[1]   for a diagonal step
 *     metric[2]   in the 5x5 forms: for a knight's step, one pixel along one axis and two along the other
 *
 * M is 255 (8u), 65535 (16u) or 3.4028235e38 (32f). A pixel from which no zero pixel is reached, or only farther away
 * than M, has M. In 8u and 16u sums never wrap. In 32f each addition is rounded, one step after the other.
 *
 * Where a step along a row or column weighs more than a diagonal one and both sides of the ROI are at least 2, it
 * counts with the weight of the diagonal one.
 *
 * src           pixels, of which only zero or not zero counts
 * dst           receives the distances; in 8u it may be src with the same step, else it must not overlap src
 * srcStep, dstStep   bytes from row to row
 * roiSize       pixels; at least 1 x 1
 * metric        2 weights, in the 5x5 forms 3: integers of at least 1, floats above 0
 *
 * Returns kprStatusOk, kprStatusNullPtr, kprStatusBadSize, kprStatusBadStep, kprStatusStepNotMultiple (16u and 32f
 * destinations), kprStatusBadMetric (a weight that is too small; in 32f a NaN too). */
KprStatus kpriDistanceTransform_3x3_8u_C1R(const Kpr8u* src, int srcStep, Kpr8u* dst, int dstStep, KprSize roiSize,
                                           const Kpr32s* metric);
KprStatus kpriDistanceTransform_5x5_8u_C1R(const Kpr8u* src, int srcStep, Kpr8u* dst, int dstStep, KprSize roiSize,
                                           const Kpr32s* metric);
KprStatus kpriDistanceTransform_3x3_8u16u_C1R(const Kpr8u* src, int srcStep, Kpr16u* dst, int dstStep, KprSize roiSize,
                                              const Kpr32s* metric);
KprStatus kpriDistanceTransform_5x5_8u16u_C1R(const Kpr8u* src, int srcStep, Kpr16u* dst, int dstStep, KprSize roiSize,
                                              const Kpr32s* metric);
KprStatus kpriDistanceTransform_3x3_8u32f_C1R(const Kpr8u* src, int srcStep, Kpr32f* dst, int dstStep, KprSize roiSize,
                                              const Kpr32f* metric);
KprStatus kpriDistanceTransform_5x5_8u32f_C1R(const Kpr8u* src, int srcStep, Kpr32f* dst, int dstStep, KprSize roiSize,
                                              const Kpr32f* metric);

/* The same in place. */
KprStatus kpriDistanceTransform_3x3_8u_C1IR(Kpr8u* srcDst, int srcDstStep, KprSize roiSize, const Kpr32s* metric);
KprStatus kpriDistanceTransform_5x5_8u_C1IR(Kpr8u* srcDst, int srcDstStep, KprSize roiSize, const Kpr32s* metric);

/* The weights that approximate a norm:
 *
 *     kerSize   norm                       32s         32f
 *     3         0, the largest difference  1, 1        1, 1
 *     3         1, the sum of both         1, 2        1, 2
 *     3         2, Euclidean               2, 3        0.955, 1.3693
 *     5         0                          1, 1, 2     1, 1, 2
 *     5         1                          1, 2, 3     1, 2, 3
 *     5         2                          5, 7, 11    1, 1.4, 2.1969
 *
 * metric        receives kerSize / 2 + 1 weights
 *
 * Returns kprStatusOk, kprStatusNullPtr, kprStatusBadSize (kerSize), kprStatusBadArg (norm). */
KprStatus kpriGetDistanceTransformMask_32s(int kerSize, int norm, Kpr32s* metric);
KprStatus kpriGetDistanceTransformMask_32f(int kerSize, int norm, Kpr32f* metric);

/* The same of one code: ten times kerSize plus the norm. Returns kprStatusOk, kprStatusBadArg for a last digit above 2,
 * then what kpriGetDistanceTransformMask_32f returns. */
KprStatus kpriGetDistanceTransformMask(int maskType, Kpr32f* metric);

/* ---- fast marching */

/* Bytes that the work buffer of fast marching needs: with p the width rounded up to a multiple of 32,
 * (height + 34) * (p + 5) + 40.
 *
 * Returns kprStatusOk, kprStatusNullPtr, kprStatusBadSize, kprStatusSizeOverflow (nothing is written then). */
KprStatus kpriFastMarchingGetBufferSize_8u32f_C1R(KprSize roiSize, int* bufferSize);

/* A distance field that solves the eikonal equation on the grid: how far a pixel of non-zero mask lies from the zero
 * region, and, within `radius`, how far inside the zero region a pixel lies, as a negative number. It is swept down and
 * up the image, each row both ways, until nothing changes; later sweeps visit the surroundings of what changed.
 *
 * With a the value of a vertical neighbour and b that of a horizontal one, a pixel of non-zero mask takes
 *
 *     |a - b| >= 1:   1 + min(a, b)
 *     else            0.5 * ((a + b) + sqrt(fma(-(a - b), a - b, 2)))
 *
 * if that is below what it has. The first sweep down uses max(a, 0) and max(b, 0) instead; pixel (0, 0) starts with
 * 999999 if its mask is not zero, so that the field of a mask without a zero pixel grows from there.
 *
 * A pixel of zero mask has 0 where `radius` is 0. Otherwise one with a positive neighbour has -1e-10; farther inside,
 * with two negative neighbours of which |a - b| < 1:
 *
 *     0.5 * ((a + b) - sqrt(fma(-(a - b), a - b, 2)))
 *
 * and with one negative neighbour, or two that are farther apart, the one nearer to zero less 1; values below
 * -(radius + 1e-5) are not taken, and a value is replaced by one nearer to zero only. What is never reached stays 0.
 *
 * mask          not zero: outside of the region from which distances grow
 * dst           receives the field; must not overlap mask
 * maskStep, dstStep   bytes from row to row
 * roiSize       pixels; at least 1 x 1
 * radius        pixels; at least 0
 * buffer        of the size told by kpriFastMarchingGetBufferSize_8u32f_C1R, at any address
 *
 * Returns kprStatusOk, kprStatusNullPtr, kprStatusBadSize, kprStatusBadStep, kprStatusStepNotMultiple (dst),
 * kprStatusBadArg (a radius below 0 or NaN). */
KprStatus kpriFastMarching_8u32f_C1R(const Kpr8u* mask, int maskStep, Kpr32f* dst, int dstStep, KprSize roiSize,
                                     Kpr32f radius, Kpr8u* buffer);

/* ---- inpainting */

/* What an initialising call knows of a hole: which pixels are to be filled, in which order, from what surroundings. */
typedef struct KprInpaintState KprInpaintState;

/* Bytes that the state block and the work buffer need.
 *
 * mask          not zero where a pixel is to be filled
 * maskStep      bytes from row to row
 * roiSize       pixels; at least 1 x 1
 * radius        of the disc that a pixel is filled from, pixels; at least 1
 * method        0 or 1, see kpriInpaintInit_8u_C1R
 * channels      1 or 3
 * stateSize, bufferSize   receive the sizes in bytes
 *
 * Returns kprStatusOk, kprStatusNullPtr, kprStatusBadSize, kprStatusBadStep, kprStatusBadArg (radius, method),
 * kprStatusBadChannelCount, kprStatusSizeOverflow (nothing is written then). */
KprStatus kpriInpaintGetSize(const Kpr8u* mask, int maskStep, KprSize roiSize, Kpr32f radius, int method, int channels,
                             int* stateSize, int* bufferSize);

/* Prepares the filling of a hole. One state serves many images of the same size, one at a time.
 *
 * Pixels are filled by ascending distance, those of equal distance in raster order, NaN last. A pixel becomes the mean
 * of the known ones in the disc around it, hole pixels that were filled before among them, each weighted by
 *
 *     method 0:  c / sqrt(gx^2 + gy^2) / (r * r^2)                     with c = |dy * gx - dx * gy|, r^2 = dx^2 + dy^2
 *     method 1:  c / sqrt((gx^2 + gy^2) * r^2) / (1 + (r^2)^2)
 *
 * where (dx, dy) leads to the known pixel and (gx, gy) is the gradient there: what lies along an edge through the known
 * pixel counts most. c = 0 counts as a quotient of 1e-6. The gradient is that of neighbours at the sides: the
 * difference of both, or twice that to one where the other is unknown or outside of the ROI; it is taken when the
 * filling begins, and of a filled pixel when it has been filled. Where the weights add up to less than 1e-4, the pixel
 * becomes the mean of its known neighbours at the four sides, if there is one. A pixel with nothing known in its disc
 * becomes 0. Values are formed in single precision and rounded to nearest, halves up. Of three channels each is filled
 * as if alone.
 *
 * state         receives the state, which lies in stateMemory
 * dist          distances that order the filling, such as those of kpriFastMarching_8u32f_C1R; read where the mask is
 *               not zero
 * mask          not zero where a pixel is to be filled. Neither mask nor distances are needed any more after the call.
 * distStep, maskStep   bytes from row to row
 * radius, method       as given to kpriInpaintGetSize
 * stateMemory, buffer  of the sizes told by kpriInpaintGetSize, at any address. The buffer goes unchanged with the
 *               state to each filling call; it may be null if the mask is all zero.
 *
 * Returns kprStatusOk, or the first of: kprStatusNullPtr (mask), kprStatusBadSize, kprStatusBadStep (mask),
 * kprStatusNullPtr (state, dist), kprStatusBadStep, kprStatusStepNotMultiple (dist), kprStatusNullPtr (stateMemory,
 * then buffer), kprStatusBadArg (a radius below 1 or NaN, another method). */
KprStatus kpriInpaintInit_8u_C1R(KprInpaintState** state, const Kpr32f* dist, int distStep, const Kpr8u* mask,
                                 int maskStep, KprSize roiSize, Kpr32f radius, int method, Kpr8u* stateMemory,
                                 Kpr8u* buffer);
KprStatus kpriInpaintInit_8u_C3R(KprInpaintState** state, const Kpr32f* dist, int distStep, const Kpr8u* mask,
                                 int maskStep, KprSize roiSize, Kpr32f radius, int method, Kpr8u* stateMemory,
                                 Kpr8u* buffer);

/* Copies an image and fills the hole.
 *
 * src           pixels; those of the hole are not looked at
 * dst           receives the image; may be src with the same step, must not overlap it otherwise
 * srcStep, dstStep   bytes from row to row
 * roiSize       as given to the initialising call
 * state         of an initialising call for as many channels; not written
 * buffer        the buffer of that call; may be null if the mask was all zero
 *
 * Returns kprStatusOk, kprStatusNullPtr, kprStatusBadSize (also where the size is not the state's), kprStatusBadStep,
 * kprStatusBadContext (a state for another number of channels). */
KprStatus kpriInpaint_8u_C1R(const Kpr8u* src, int srcStep, Kpr8u* dst, int dstStep, KprSize roiSize,
                             const KprInpaintState* state, Kpr8u* buffer);
KprStatus kpriInpaint_8u_C3R(const Kpr8u* src, int srcStep, Kpr8u* dst, int dstStep, KprSize roiSize,
                             const KprInpaintState* state, Kpr8u* buffer);

#ifdef __cplusplus
}
#endif

#endif
