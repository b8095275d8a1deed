/* Linear filters: separable pipelines. */
#ifndef KPRCV_FILTER_H
#define KPRCV_FILTER_H

#include <kprcv/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/* The row stage of a separable filter: filters the rows of an image across and writes each to where its pointer says.
 *
 *     dst[y][x] = sum over i from 0 to kernelSize - 1 of kernel[i] * src(x - xAnchor + i, y)
 *
 * The kernel is used as given, index 0 over the lowest column; xAnchor is the tap over the result's own column. Pixels
 * left and right of the ROI are those of the border word: its base mode on a side whose flag is clear, real memory on
 * a side whose flag is set. The rows above and below take no part.
 *
 * 8u16s, 16s, 16u    The sum is exact in signed 32 bits, where it wraps; a 16u kernel whose taps add up to more than
 * 32768 can get there. It is rounded to float, multiplied by 1.0f / divisor, rounded to the nearest integer, ties to
 * even, and brought into the destination's range. 8u16s              In columns that read a synthesised pixel the
 * product is instead truncated toward zero, after it was brought into the range: up to xAnchor columns on the left and
 * kernelSize - 1 - xAnchor on the right, of a side whose flag is clear. 32f                kernel[0] * src is rounded,
 * each further tap is one fused step, in order. Low_16s            As 16s.
 *
 * src           pixels; rows srcStep bytes apart
 * dst           roiSize.height row pointers, none null; each row takes roiSize.width pixels and may be any memory that
 *               is neither source nor buffer
 * roiSize       pixels; at least 1 x 1
 * kernel        kernelSize taps, at least 1
 * xAnchor       0 to kernelSize - 1
 * borderType    kprBorderConstant, kprBorderReplicate or kprBorderMirror with any flags, or kprBorderInMem
 * borderValue   of kprBorderConstant; in the C3R forms three elements, one a channel, not read under other modes
 * divisor       not 0; 32f has none
 * buffer        working memory of the size that the sizing call tells for this ROI and kernel, at any address
 *
 * Returns kprStatusOk or the first failure: kprStatusNullPtr for src, dst, kernel or buffer; kprStatusBadSize for the
 * ROI; kprStatusNullPtr for one of the row pointers; kprStatusBadSize for kernelSize; kprStatusBadAnchor;
 * kprStatusBadStep and kprStatusStepNotMultiple for srcStep; kprStatusBadBorder; kprStatusBadArg for a divisor of 0. */
KprStatus kpriFilterRowBorderPipeline_8u16s_C1R(const Kpr8u* src, int srcStep, Kpr16s* const* dst, KprSize roiSize,
                                                const Kpr16s* kernel, int kernelSize, int xAnchor,
                                                KprBorderType borderType, Kpr8u borderValue, int divisor,
                                                Kpr8u* buffer);
KprStatus kpriFilterRowBorderPipeline_8u16s_C3R(const Kpr8u* src, int srcStep, Kpr16s* const* dst, KprSize roiSize,
                                                const Kpr16s* kernel, int kernelSize, int xAnchor,
                                                KprBorderType borderType, const Kpr8u* borderValue, int divisor,
                                                Kpr8u* buffer);
KprStatus kpriFilterRowBorderPipeline_16s_C1R(const Kpr16s* src, int srcStep, Kpr16s* const* dst, KprSize roiSize,
                                              const Kpr16s* kernel, int kernelSize, int xAnchor,
                                              KprBorderType borderType, Kpr16s borderValue, int divisor, Kpr8u* buffer);
KprStatus kpriFilterRowBorderPipeline_16s_C3R(const Kpr16s* src, int srcStep, Kpr16s* const* dst, KprSize roiSize,
                                              const Kpr16s* kernel, int kernelSize, int xAnchor,
                                              KprBorderType borderType, const Kpr16s* borderValue, int divisor,
                                              Kpr8u* buffer);
KprStatus kpriFilterRowBorderPipeline_16u_C1R(const Kpr16u* src, int srcStep, Kpr16u* const* dst, KprSize roiSize,
                                              const Kpr16s* kernel, int kernelSize, int xAnchor,
                                              KprBorderType borderType, Kpr16u borderValue, int divisor, Kpr8u* buffer);
KprStatus kpriFilterRowBorderPipeline_16u_C3R(const Kpr16u* src, int srcStep, Kpr16u* const* dst, KprSize roiSize,
                                              const Kpr16s* kernel, int kernelSize, int xAnchor,
                                              KprBorderType borderType, const Kpr16u* borderValue, int divisor,
                                              Kpr8u* buffer);
KprStatus kpriFilterRowBorderPipeline_Low_16s_C1R(const Kpr16s* src, int srcStep, Kpr16s* const* dst, KprSize roiSize,
                                                  const Kpr16s* kernel, int kernelSize, int xAnchor,
                                                  KprBorderType borderType, Kpr16s borderValue, int divisor,
                                                  Kpr8u* buffer);
KprStatus kpriFilterRowBorderPipeline_Low_16s_C3R(const Kpr16s* src, int srcStep, Kpr16s* const* dst, KprSize roiSize,
                                                  const Kpr16s* kernel, int kernelSize, int xAnchor,
                                                  KprBorderType borderType, const Kpr16s* borderValue, int divisor,
                                                  Kpr8u* buffer);
KprStatus kpriFilterRowBorderPipeline_32f_C1R(const Kpr32f* src, int srcStep, Kpr32f* const* dst, KprSize roiSize,
                                              const Kpr32f* kernel, int kernelSize, int xAnchor,
                                              KprBorderType borderType, Kpr32f borderValue, Kpr8u* buffer);
KprStatus kpriFilterRowBorderPipeline_32f_C3R(const Kpr32f* src, int srcStep, Kpr32f* const* dst, KprSize roiSize,
                                              const Kpr32f* kernel, int kernelSize, int xAnchor,
                                              KprBorderType borderType, const Kpr32f* borderValue, Kpr8u* buffer);

/* The bytes of working memory that the row stage needs for a ROI and a kernel, stored to *bufferSize.
 *
 * Returns kprStatusOk, kprStatusNullPtr, or kprStatusBadSize for a width, height or kernelSize below 1. */
KprStatus kpriFilterRowBorderPipelineGetBufferSize_8u16s_C1R(KprSize roiSize, int kernelSize, int* bufferSize);
KprStatus kpriFilterRowBorderPipelineGetBufferSize_8u16s_C3R(KprSize roiSize, int kernelSize, int* bufferSize);
KprStatus kpriFilterRowBorderPipelineGetBufferSize_16s_C1R(KprSize roiSize, int kernelSize, int* bufferSize);
KprStatus kpriFilterRowBorderPipelineGetBufferSize_16s_C3R(KprSize roiSize, int kernelSize, int* bufferSize);
KprStatus kpriFilterRowBorderPipelineGetBufferSize_16u_C1R(KprSize roiSize, int kernelSize, int* bufferSize);
KprStatus kpriFilterRowBorderPipelineGetBufferSize_16u_C3R(KprSize roiSize, int kernelSize, int* bufferSize);
KprStatus kpriFilterRowBorderPipelineGetBufferSize_Low_16s_C1R(KprSize roiSize, int kernelSize, int* bufferSize);
KprStatus kpriFilterRowBorderPipelineGetBufferSize_Low_16s_C3R(KprSize roiSize, int kernelSize, int* bufferSize);
KprStatus kpriFilterRowBorderPipelineGetBufferSize_32f_C1R(KprSize roiSize, int kernelSize, int* bufferSize);
KprStatus kpriFilterRowBorderPipelineGetBufferSize_32f_C3R(KprSize roiSize, int kernelSize, int* bufferSize);

/* The column stage of a separable filter: filters rows that stand wherever their pointers say downward into an image.
 *
 *     dst(x, y) = sum over i from 0 to kernelSize - 1 of kernel[i] * src[y + i][x]
 *
 * There is no anchor and no border: the caller lays out the rows, a row that stands for several by its pointer more
 * than once. Sums, scaling and rounding are those of the row stage (to nearest in all columns); 16s8u and 16s8s
 * saturate to 8 bits.
 *
 * src           roiSize.height + kernelSize - 1 row pointers, none null, of roiSize.width pixels each
 * dst           pixels, rows dstStep bytes apart; must not overlap the rows
 * roiSize       of the destination, in pixels; at least 1 x 1
 * kernel        kernelSize taps, at least 1
 * divisor       not 0; 32f has none
 * buffer        working memory of the size that the sizing call tells
 *
 * Returns kprStatusOk or the first failure: kprStatusNullPtr for src, dst or kernel; kprStatusBadSize for the ROI;
 * kprStatusNullPtr for one of the row pointers; kprStatusBadSize for kernelSize; kprStatusBadStep and
 * kprStatusStepNotMultiple for dstStep; kprStatusNullPtr for buffer; kprStatusBadArg for a divisor of 0. */
KprStatus kpriFilterColumnPipeline_16s_C1R(const Kpr16s* const* src, Kpr16s* dst, int dstStep, KprSize roiSize,
                                           const Kpr16s* kernel, int kernelSize, int divisor, Kpr8u* buffer);
KprStatus kpriFilterColumnPipeline_16s_C3R(const Kpr16s* const* src, Kpr16s* dst, int dstStep, KprSize roiSize,
                                           const Kpr16s* kernel, int kernelSize, int divisor, Kpr8u* buffer);
KprStatus kpriFilterColumnPipeline_16s8s_C1R(const Kpr16s* const* src, Kpr8s* dst, int dstStep, KprSize roiSize,
                                             const Kpr16s* kernel, int kernelSize, int divisor, Kpr8u* buffer);
KprStatus kpriFilterColumnPipeline_16s8s_C3R(const Kpr16s* const* src, Kpr8s* dst, int dstStep, KprSize roiSize,
                                             const Kpr16s* kernel, int kernelSize, int divisor, Kpr8u* buffer);
KprStatus kpriFilterColumnPipeline_16s8u_C1R(const Kpr16s* const* src, Kpr8u* dst, int dstStep, KprSize roiSize,
                                             const Kpr16s* kernel, int kernelSize, int divisor, Kpr8u* buffer);
KprStatus kpriFilterColumnPipeline_16s8u_C3R(const Kpr16s* const* src, Kpr8u* dst, int dstStep, KprSize roiSize,
                                             const Kpr16s* kernel, int kernelSize, int divisor, Kpr8u* buffer);
KprStatus kpriFilterColumnPipeline_16u_C1R(const Kpr16u* const* src, Kpr16u* dst, int dstStep, KprSize roiSize,
                                           const Kpr16s* kernel, int kernelSize, int divisor, Kpr8u* buffer);
KprStatus kpriFilterColumnPipeline_16u_C3R(const Kpr16u* const* src, Kpr16u* dst, int dstStep, KprSize roiSize,
                                           const Kpr16s* kernel, int kernelSize, int divisor, Kpr8u* buffer);
KprStatus kpriFilterColumnPipeline_Low_16s_C1R(const Kpr16s* const* src, Kpr16s* dst, int dstStep, KprSize roiSize,
                                               const Kpr16s* kernel, int kernelSize, int divisor, Kpr8u* buffer);
KprStatus kpriFilterColumnPipeline_Low_16s_C3R(const Kpr16s* const* src, Kpr16s* dst, int dstStep, KprSize roiSize,
                                               const Kpr16s* kernel, int kernelSize, int divisor, Kpr8u* buffer);
KprStatus kpriFilterColumnPipeline_32f_C1R(const Kpr32f* const* src, Kpr32f* dst, int dstStep, KprSize roiSize,
                                           const Kpr32f* kernel, int kernelSize, Kpr8u* buffer);
KprStatus kpriFilterColumnPipeline_32f_C3R(const Kpr32f* const* src, Kpr32f* dst, int dstStep, KprSize roiSize,
                                           const Kpr32f* kernel, int kernelSize, Kpr8u* buffer);

/* The bytes of working memory that the column stage needs, as of the row stage. */
KprStatus kpriFilterColumnPipelineGetBufferSize_16s_C1R(KprSize roiSize, int kernelSize, int* bufferSize);
KprStatus kpriFilterColumnPipelineGetBufferSize_16s_C3R(KprSize roiSize, int kernelSize, int* bufferSize);
KprStatus kpriFilterColumnPipelineGetBufferSize_16s8s_C1R(KprSize roiSize, int kernelSize, int* bufferSize);
KprStatus kpriFilterColumnPipelineGetBufferSize_16s8s_C3R(KprSize roiSize, int kernelSize, int* bufferSize);
KprStatus kpriFilterColumnPipelineGetBufferSize_16s8u_C1R(KprSize roiSize, int kernelSize, int* bufferSize);
KprStatus kpriFilterColumnPipelineGetBufferSize_16s8u_C3R(KprSize roiSize, int kernelSize, int* bufferSize);
KprStatus kpriFilterColumnPipelineGetBufferSize_16u_C1R(KprSize roiSize, int kernelSize, int* bufferSize);
KprStatus kpriFilterColumnPipelineGetBufferSize_16u_C3R(KprSize roiSize, int kernelSize, int* bufferSize);
KprStatus kpriFilterColumnPipelineGetBufferSize_Low_16s_C1R(KprSize roiSize, int kernelSize, int* bufferSize);
KprStatus kpriFilterColumnPipelineGetBufferSize_Low_16s_C3R(KprSize roiSize, int kernelSize, int* bufferSize);
KprStatus kpriFilterColumnPipelineGetBufferSize_32f_C1R(KprSize roiSize, int kernelSize, int* bufferSize);
KprStatus kpriFilterColumnPipelineGetBufferSize_32f_C3R(KprSize roiSize, int kernelSize, int* bufferSize);

#ifdef __cplusplus
}
#endif

#endif
