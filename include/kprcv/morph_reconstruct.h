/* Morphological reconstruction. */
#ifndef KPRCV_MORPH_RECONSTRUCT_H
#define KPRCV_MORPH_RECONSTRUCT_H

#include <kprcv/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Bytes that the work buffer of a reconstruction needs.
 *
 * roiSize       pixels; at least 1 x 1
 * dataType      kpr8u, kpr16u, kpr32f or kpr64f
 * numChannels   1
 * bufferSize    receives the size in bytes
 *
 * Returns kprStatusOk, kprStatusNullPtr, kprStatusBadSize, kprStatusBadDataType, kprStatusBadCoi (channels other than
 * 1), kprStatusSizeOverflow. */
KprStatus kpriMorphReconstructGetBufferSize(KprSize roiSize, KprDataType dataType, int numChannels, int* bufferSize);

/* Reconstruction by dilation: the marker grows from pixel to neighbouring pixel, nowhere above the limit, until nothing
 * changes. Each pixel becomes the largest value v such that a path of neighbours leads to it from a marker pixel of at
 * least v, along which the limit is at least v.
 *
 * Opening by reconstruction takes an eroded image as marker and the image as limit. A marker above the limit is first
 * pulled down to it. In 32f and 64f a NaN in the marker stays and does not spread; a NaN in the limit does not limit.
 *
 * src              the limit; must not overlap srcDst
 * srcDst           the marker, and the result
 * srcStep, srcDstStep   bytes from row to row
 * roiSize          pixels; at least 1 x 1
 * buffer           of the size told by kpriMorphReconstructGetBufferSize, at any address
 * norm             1: pixels have 4 neighbours; 0: they have 8
 *
 * Returns kprStatusOk, kprStatusNullPtr, kprStatusBadSize, kprStatusBadStep, kprStatusStepNotMultiple (16u, 32f, 64f),
 * kprStatusBadArg (norm). */
KprStatus kpriMorphReconstructDilate_8u_C1IR(const Kpr8u* src, int srcStep, Kpr8u* srcDst, int srcDstStep,
                                             KprSize roiSize, Kpr8u* buffer, int norm);
KprStatus kpriMorphReconstructDilate_16u_C1IR(const Kpr16u* src, int srcStep, Kpr16u* srcDst, int srcDstStep,
                                              KprSize roiSize, Kpr8u* buffer, int norm);
KprStatus kpriMorphReconstructDilate_32f_C1IR(const Kpr32f* src, int srcStep, Kpr32f* srcDst, int srcDstStep,
                                              KprSize roiSize, Kpr8u* buffer, int norm);
KprStatus kpriMorphReconstructDilate_64f_C1IR(const Kpr64f* src, int srcStep, Kpr64f* srcDst, int srcDstStep,
                                              KprSize roiSize, Kpr8u* buffer, int norm);

/* Reconstruction by erosion: the marker shrinks, nowhere below the limit, until nothing changes.
 *
 * As kpriMorphReconstructDilate with smallest for largest and above for below. The holes of an image are filled by
 * taking the image as limit and, as marker, the image at its outermost pixels and the type's largest value inside. */
KprStatus kpriMorphReconstructErode_8u_C1IR(const Kpr8u* src, int srcStep, Kpr8u* srcDst, int srcDstStep,
                                            KprSize roiSize, Kpr8u* buffer, int norm);
KprStatus kpriMorphReconstructErode_16u_C1IR(const Kpr16u* src, int srcStep, Kpr16u* srcDst, int srcDstStep,
                                             KprSize roiSize, Kpr8u* buffer, int norm);
KprStatus kpriMorphReconstructErode_32f_C1IR(const Kpr32f* src, int srcStep, Kpr32f* srcDst, int srcDstStep,
                                             KprSize roiSize, Kpr8u* buffer, int norm);
KprStatus kpriMorphReconstructErode_64f_C1IR(const Kpr64f* src, int srcStep, Kpr64f* srcDst, int srcDstStep,
                                             KprSize roiSize, Kpr8u* buffer, int norm);

#ifdef __cplusplus
}
#endif

#endif
