/* Image pyramids: the sizes of their levels, and one level made from its neighbour. */
#ifndef KPRCV_PYRAMID_H
#define KPRCV_PYRAMID_H

#include <kprcv/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/* The size rule. At a rate above 1 a side of s pixels comes of any side within the up range of s, and goes down to the
 * one side whose up range it lies in:
 *
 *     up range of s:  1 to max(trunc(rate), 2)                                   where s is 1
 *                     max(trunc((s - 1) * rate) + 1, s + 1) to max(trunc(s * rate), s + 1)    else
 *
 * with products in single precision. 5 goes down to 3 at rate 2, and 3 goes up to 5 or 6. A side of 1 stays.
 *
 * Returns kprStatusOk, kprStatusNullPtr, kprStatusBadSize (a side below 1), kprStatusBadArg (rate at or below 1, above
 * 10, or no number), kprStatusSizeOverflow (an up range that ends beyond 2^31 - 1; nothing is written). */
KprStatus kpriGetPyramidDownROI(KprSize srcRoi, KprSize* dstRoi, Kpr32f rate);
KprStatus kpriGetPyramidUpROI(KprSize srcRoi, KprSize* dstRoiMin, KprSize* dstRoiMax, Kpr32f rate);

/* A pyramid: level 0 is the image itself, each further one goes down from the level before it. The arrays have
 * level + 1 entries and lie behind the record in the caller's memory: a copy elsewhere shares them. */
typedef struct KprPyramid {
    void** pImage; /* the first pixel of each level; null until the caller fills it in */
    KprSize* pRoi; /* the size of each level */
    Kpr64f* pRate; /* (1 / rate)^k: multiplied by it, a coordinate of level 0 becomes one of level k */
    int* pStep;    /* bytes from row to row of each level; 0 until the caller fills it in */
    void* pState;  /* for the caller, who may keep the state of the layers here; null at first */
    int level;     /* the index of the last level */
} KprPyramid;

/* The bytes of a pyramid's two buffers.
 *
 * pyramidSize   of the record with its arrays: 52 * min(level, n) + 152, where n is the number of steps down until both
 *               sides are 1
 * bufferSize    of what kpriPyramidInit needs while it runs: 8 * max(width, height)
 * level         the last level that is wanted, at least 1
 *
 * Returns kprStatusOk, kprStatusNullPtr, kprStatusBadSize (a side below 1), kprStatusBadArg (level below 1; rate at or
 * below 1, above 10, or no number), kprStatusSizeOverflow (a size beyond 2^31 - 1; nothing is written). */
KprStatus kpriPyramidGetSize(int* pyramidSize, int* bufferSize, int level, KprSize roiSize, Kpr32f rate);

/* Makes the record of a pyramid over images of roiSize in pyramidBuffer, which may lie anywhere, and gives its address.
 * It has `level` levels below the image, or as many as there are until both sides are 1. `buffer` is free again
 * afterwards. Returns kprStatusOk, kprStatusNullPtr, kprStatusBadSize (a side below 1), kprStatusBadArg (level below 1;
 * a rate as above). */
KprStatus kpriPyramidInit(KprPyramid** pyramidPtr, int level, KprSize roiSize, Kpr8u* pyramidBuffer, Kpr8u* buffer,
                          Kpr32f rate);

/* What a step from one level to the next knows beforehand, and its working rows: memory of the caller's, which holds
 * addresses of its own and must not be moved. It serves one call at a time, and any number of them. */
typedef struct KprPyramidDownState KprPyramidDownState;
typedef struct KprPyramidUpState KprPyramidUpState;

/* ---- one level down: the image is smoothed, and sampled at the rate
 *
 * With the kernel's taps divided by their sum, w[0] to w[n - 1], and r = n / 2 rounded down, the smoothed image is
 * s(x) = sum of w[i] * src(x + i - r) along both axes, where indices beyond the image are reflected and the edge is
 * repeated: -1 reads 0, -2 reads 1. dst(i) lies at x = i * rate, at most at the last pixel, and is the bilinear mean of
 * s around it.
 *
 * Both axes have their weights made beforehand, one for each pixel that dst(i) is made of, in double precision and
 * rounded to single. Columns are summed up first, then rows. Integers: acc = fma(weight, pixel, acc) from the upper or
 * left pixel on, from 0; the result is rounded halves up and saturated. Floats: a + sum of weight * (pixel - a), fused
 * likewise, a being the pixel at trunc(x): an even area stays as it is to the last bit. Where that is infinite or no
 * number, it is the sum of weight * pixel over the weights that are not 0.
 *
 * srcRoi        pixels of the source; the destination has what kpriGetPyramidDownROI makes of them
 * rate          above 1, up to 10
 * kernel        kernelSize taps of any sign, whose sum is not 0: 16s for 8u and 16u, else 32f. It is copied.
 * mode          2, the reflection above; there is no other
 * stateSize, bufferSize   bytes of the two buffers of the initialisation. The second one is neither read nor written.
 * stateBuffer   becomes the state; may lie anywhere
 * src, dst      steps in bytes. Exactly their pixels are read and written; they must not overlap.
 *
 * Sizing and initialising calls return kprStatusOk, kprStatusBadArg (mode, which is looked at first), kprStatusNullPtr,
 * kprStatusBadSize (a side of the ROI below 1), kprStatusBadArg (the rate; kernelSize below 1; taps that add up to 0 or
 * to no number), kprStatusSizeOverflow (a size beyond 2^31 - 1; nothing is written). Processing calls return
 * kprStatusOk, kprStatusNullPtr, kprStatusBadSize (a side below 1), kprStatusBadStep, kprStatusStepNotMultiple (16u and
 * 32f), kprStatusBadSize (dstRoi is not the state's), kprStatusBadArg (srcRoi is not the state's, or the state is that
 * of another function). */
KprStatus kpriPyramidLayerDownGetSize_8u_C1R(KprSize srcRoi, Kpr32f rate, int kernelSize, int* stateSize,
                                             int* bufferSize);
KprStatus kpriPyramidLayerDownGetSize_8u_C3R(KprSize srcRoi, Kpr32f rate, int kernelSize, int* stateSize,
                                             int* bufferSize);
KprStatus kpriPyramidLayerDownGetSize_16u_C1R(KprSize srcRoi, Kpr32f rate, int kernelSize, int* stateSize,
                                              int* bufferSize);
KprStatus kpriPyramidLayerDownGetSize_16u_C3R(KprSize srcRoi, Kpr32f rate, int kernelSize, int* stateSize,
                                              int* bufferSize);
KprStatus kpriPyramidLayerDownGetSize_32f_C1R(KprSize srcRoi, Kpr32f rate, int kernelSize, int* stateSize,
                                              int* bufferSize);
KprStatus kpriPyramidLayerDownGetSize_32f_C3R(KprSize srcRoi, Kpr32f rate, int kernelSize, int* stateSize,
                                              int* bufferSize);

KprStatus kpriPyramidLayerDownInit_8u_C1R(KprPyramidDownState** statePtr, KprSize srcRoi, Kpr32f rate,
                                          const Kpr16s* kernel, int kernelSize, int mode, Kpr8u* stateBuffer,
                                          Kpr8u* buffer);
KprStatus kpriPyramidLayerDownInit_8u_C3R(KprPyramidDownState** statePtr, KprSize srcRoi, Kpr32f rate,
                                          const Kpr16s* kernel, int kernelSize, int mode, Kpr8u* stateBuffer,
                                          Kpr8u* buffer);
KprStatus kpriPyramidLayerDownInit_16u_C1R(KprPyramidDownState** statePtr, KprSize srcRoi, Kpr32f rate,
                                           const Kpr16s* kernel, int kernelSize, int mode, Kpr8u* stateBuffer,
                                           Kpr8u* buffer);
KprStatus kpriPyramidLayerDownInit_16u_C3R(KprPyramidDownState** statePtr, KprSize srcRoi, Kpr32f rate,
                                           const Kpr16s* kernel, int kernelSize, int mode, Kpr8u* stateBuffer,
                                           Kpr8u* buffer);
KprStatus kpriPyramidLayerDownInit_32f_C1R(KprPyramidDownState** statePtr, KprSize srcRoi, Kpr32f rate,
                                           const Kpr32f* kernel, int kernelSize, int mode, Kpr8u* stateBuffer,
                                           Kpr8u* buffer);
KprStatus kpriPyramidLayerDownInit_32f_C3R(KprPyramidDownState** statePtr, KprSize srcRoi, Kpr32f rate,
                                           const Kpr32f* kernel, int kernelSize, int mode, Kpr8u* stateBuffer,
                                           Kpr8u* buffer);

KprStatus kpriPyramidLayerDown_8u_C1R(const Kpr8u* src, int srcStep, KprSize srcRoi, Kpr8u* dst, int dstStep,
                                      KprSize dstRoi, KprPyramidDownState* state);
KprStatus kpriPyramidLayerDown_8u_C3R(const Kpr8u* src, int srcStep, KprSize srcRoi, Kpr8u* dst, int dstStep,
                                      KprSize dstRoi, KprPyramidDownState* state);
KprStatus kpriPyramidLayerDown_16u_C1R(const Kpr16u* src, int srcStep, KprSize srcRoi, Kpr16u* dst, int dstStep,
                                       KprSize dstRoi, KprPyramidDownState* state);
KprStatus kpriPyramidLayerDown_16u_C3R(const Kpr16u* src, int srcStep, KprSize srcRoi, Kpr16u* dst, int dstStep,
                                       KprSize dstRoi, KprPyramidDownState* state);
KprStatus kpriPyramidLayerDown_32f_C1R(const Kpr32f* src, int srcStep, KprSize srcRoi, Kpr32f* dst, int dstStep,
                                       KprSize dstRoi, KprPyramidDownState* state);
KprStatus kpriPyramidLayerDown_32f_C3R(const Kpr32f* src, int srcStep, KprSize srcRoi, Kpr32f* dst, int dstStep,
                                       KprSize dstRoi, KprPyramidDownState* state);

/* ---- one level up: the image is sampled at a distance of 1 / rate, and smoothed
 *
 * b(j) is the bilinear mean of the source around x = j / rate, at most at the last pixel, along both axes; dst(j) = sum
 * of w[i] * b(j + i - r), where indices beyond the destination are reflected as above. Weights and sums are made as for
 * a level down, a of the floats being the pixel at trunc(j / rate).
 *
 * dstRoi        pixels of the destination; the source has what kpriGetPyramidDownROI makes of them
 * buffer        neither read nor written, and may be null
 *
 * All else, and the statuses, as a level down has them. Processing calls return kprStatusBadSize for a dstRoi that is
 * not the state's, kprStatusBadArg for such a srcRoi. */
KprStatus kpriPyramidLayerUpGetSize_8u_C1R(KprSize dstRoi, Kpr32f rate, int kernelSize, int* stateSize);
KprStatus kpriPyramidLayerUpGetSize_8u_C3R(KprSize dstRoi, Kpr32f rate, int kernelSize, int* stateSize);
KprStatus kpriPyramidLayerUpGetSize_16u_C1R(KprSize dstRoi, Kpr32f rate, int kernelSize, int* stateSize);
KprStatus kpriPyramidLayerUpGetSize_16u_C3R(KprSize dstRoi, Kpr32f rate, int kernelSize, int* stateSize);
KprStatus kpriPyramidLayerUpGetSize_32f_C1R(KprSize dstRoi, Kpr32f rate, int kernelSize, int* stateSize);
KprStatus kpriPyramidLayerUpGetSize_32f_C3R(KprSize dstRoi, Kpr32f rate, int kernelSize, int* stateSize);

KprStatus kpriPyramidLayerUpInit_8u_C1R(KprPyramidUpState** statePtr, KprSize dstRoi, Kpr32f rate, const Kpr16s* kernel,
                                        int kernelSize, int mode, Kpr8u* stateBuffer, Kpr8u* buffer);
KprStatus kpriPyramidLayerUpInit_8u_C3R(KprPyramidUpState** statePtr, KprSize dstRoi, Kpr32f rate, const Kpr16s* kernel,
                                        int kernelSize, int mode, Kpr8u* stateBuffer, Kpr8u* buffer);
KprStatus kpriPyramidLayerUpInit_16u_C1R(KprPyramidUpState** statePtr, KprSize dstRoi, Kpr32f rate,
                                         const Kpr16s* kernel, int kernelSize, int mode, Kpr8u* stateBuffer,
                                         Kpr8u* buffer);
KprStatus kpriPyramidLayerUpInit_16u_C3R(KprPyramidUpState** statePtr, KprSize dstRoi, Kpr32f rate,
                                         const Kpr16s* kernel, int kernelSize, int mode, Kpr8u* stateBuffer,
                                         Kpr8u* buffer);
KprStatus kpriPyramidLayerUpInit_32f_C1R(KprPyramidUpState** statePtr, KprSize dstRoi, Kpr32f rate,
                                         const Kpr32f* kernel, int kernelSize, int mode, Kpr8u* stateBuffer,
                                         Kpr8u* buffer);
KprStatus kpriPyramidLayerUpInit_32f_C3R(KprPyramidUpState** statePtr, KprSize dstRoi, Kpr32f rate,
                                         const Kpr32f* kernel, int kernelSize, int mode, Kpr8u* stateBuffer,
                                         Kpr8u* buffer);

KprStatus kpriPyramidLayerUp_8u_C1R(const Kpr8u* src, int srcStep, KprSize srcRoi, Kpr8u* dst, int dstStep,
                                    KprSize dstRoi, KprPyramidUpState* state);
KprStatus kpriPyramidLayerUp_8u_C3R(const Kpr8u* src, int srcStep, KprSize srcRoi, Kpr8u* dst, int dstStep,
                                    KprSize dstRoi, KprPyramidUpState* state);
KprStatus kpriPyramidLayerUp_16u_C1R(const Kpr16u* src, int srcStep, KprSize srcRoi, Kpr16u* dst, int dstStep,
                                     KprSize dstRoi, KprPyramidUpState* state);
KprStatus kpriPyramidLayerUp_16u_C3R(const Kpr16u* src, int srcStep, KprSize srcRoi, Kpr16u* dst, int dstStep,
                                     KprSize dstRoi, KprPyramidUpState* state);
KprStatus kpriPyramidLayerUp_32f_C1R(const Kpr32f* src, int srcStep, KprSize srcRoi, Kpr32f* dst, int dstStep,
                                     KprSize dstRoi, KprPyramidUpState* state);
KprStatus kpriPyramidLayerUp_32f_C3R(const Kpr32f* src, int srcStep, KprSize srcRoi, Kpr32f* dst, int dstStep,
                                     KprSize dstRoi, KprPyramidUpState* state);

#ifdef __cplusplus
}
#endif

#endif
