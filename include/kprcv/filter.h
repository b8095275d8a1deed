/* Linear filters: separable pipelines, the Gaussian filter, and filters with fixed kernels. */
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
 * 8u16s, 16s, 16u   The sum is exact in signed 32 bits, where it wraps; a 16u kernel whose taps add up to more than
 *                   32768 can get there. It is rounded to float, multiplied by 1.0f / divisor, rounded to the nearest
 *                   integer, ties to even, and brought into the destination's range.
 * 8u16s             In columns that read a pixel of the base mode the product is truncated toward zero instead, and
 *                   brought into the range: the first xAnchor columns and the last kernelSize - 1 - xAnchor, each on
 *                   a side whose flag is clear.
 * 32f               kernel[0] * src is rounded; each further tap is one fused step, in order. A NaN under any tap
 *                   gives a NaN.
 * Low_16s           The result of 16s.
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

/* The bytes of working memory that the row stage needs for a ROI and a kernel, stored to *bufferSize. They are computed
 * in 32 bits, where they wrap: of a kernel of some 7 million taps and more (32f_C3R) they are of no use.
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

/* The bytes of working memory that the column stage needs for a ROI and a kernel, stored to *bufferSize. They are
 * computed in 32 bits, where they wrap: of rows of some 59 million pixels and more (C3R) they are of no use.
 *
 * Returns kprStatusOk, kprStatusNullPtr, or kprStatusBadSize for a width, height or kernelSize below 1. */
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

/* The Gaussian filter: a separable kernel of any odd size from 3 up, with
 *
 *     tap(x) = exp(-x * x / (2 * sigma * sigma)) / (sum of all taps),   x from -kernelSize / 2 to kernelSize / 2
 *
 * There are two forms, which differ in more than the width of their sizes:
 *
 *   kpriFilterGaussianBorder_...   32-bit sizes. Taps of integer images are integers (a tap of 1 counts 4096 for 8u and
 *                                  32768 for 16u and 16s, where a tap that reaches 32768 wraps to -32768), and the
 *                                  rows are rounded to integers between the two passes.
 *   kpriFilterGaussian_..._L       64-bit sizes. Taps and rows are floats; an integer image is rounded once, in the
 *                                  column pass.
 *
 * Their results differ by a level here and there on integer images, and in the last bits on float images. A block made
 * for one form must not be given to the other.
 *
 * Use: ask for the sizes, allocate, initialise the block, then filter any number of images. The block is only read from
 * then on and may serve several threads; the buffer belongs to one call at a time and keeps nothing. Blocks start at a
 * multiple of 4 bytes, buffers anywhere.
 *
 * A block must stay where it was initialised: the kernel in it begins at a multiple of 16 bytes (large form: 64), so
 * that the place depends on the block's address. A copy works only at an address that differs by such a multiple.
 *
 * kpriFilterGaussianGetBufferSize stores the bytes of the block and of the working buffer, the same buffer for
 * initialising and filtering.
 *
 * roiSize       pixels, at least 1 x 1; an image that is filtered later may be smaller
 * kernelSize    odd, at least 3
 * dataType      kpr8u, kpr16u, kpr16s or kpr32f
 * numChannels   1 or 3
 *
 * Returns kprStatusOk, kprStatusNullPtr, kprStatusBadSize, kprStatusBadArg for kernelSize, kprStatusBadDataType,
 * kprStatusBadChannelCount, in this order. The sizes are computed in 32 bits, where they wrap: ask for no image whose
 * buffer, about 12 * kernelSize bytes (8u, 16u, 16s: 6 * kernelSize) for each element of a row, exceeds 2 GB. */
typedef struct KprFilterGaussianSpec KprFilterGaussianSpec;

KprStatus kpriFilterGaussianGetBufferSize(KprSize roiSize, uint32_t kernelSize, KprDataType dataType, int numChannels,
                                          int* specSize, int* bufferSize);

/* Computes the kernel into the block, for images of this type and with these channels.
 *
 * roiSize       pixels, at least 1 x 1; the largest image to be filtered
 * kernelSize    odd, at least 3
 * borderType    for all later calls: kprBorderConstant, kprBorderReplicate or kprBorderMirror with any flags, or
 *               kprBorderInMem
 * spec          the block, written
 * buffer        the working buffer as sized
 * sigma         pixels, above zero; an infinite one gives equal taps
 *
 * Returns kprStatusOk or the first failure: kprStatusNullPtr for spec or buffer, kprStatusBadSize, kprStatusBadArg for
 * kernelSize, kprStatusBadDataType, kprStatusBadChannelCount, kprStatusBadArg for a sigma that is not above zero (a NaN
 * too), kprStatusBadBorder. */
KprStatus kpriFilterGaussianInit(KprSize roiSize, uint32_t kernelSize, KprBorderType borderType, KprDataType dataType,
                                 int numChannels, KprFilterGaussianSpec* spec, Kpr8u* buffer, Kpr32f sigma);

/* Filters an image: the row stage, then the column stage (kpriFilterRowBorderPipeline, kpriFilterColumnPipeline) with
 * the block's kernel and its scale (4096 or 32768, 32f has none) as divisor; an 8u image goes through 8u16s and 16s8u,
 * others stay in their type. An 8u row is truncated in the columns that read a pixel of the base mode, as in 8u16s.
 *
 * Pixels left and right of the ROI are those of the block's border word. Rows above and below are read and filtered
 * where the side's flag is set; elsewhere they are the filtered rows that the base mode names, and of kprBorderConstant
 * the value itself. On a side whose flag is set, kernelSize / 2 rows or columns of real memory are read.
 *
 * src, dst      pixels, rows srcStep and dstStep bytes apart; must not overlap
 * roiSize       pixels; at least 1 x 1
 * borderValue   of kprBorderConstant; in the C3R forms three elements, one a channel, not read under other modes
 * spec, buffer  as initialised and sized for this type, these channels and at least this ROI
 *
 * Returns kprStatusOk or the first failure: kprStatusNullPtr, kprStatusBadStep, kprStatusBadSize,
 * kprStatusStepNotMultiple (16u, 16s, 32f), kprStatusBadBorder for the block's word; then 32f returns kprStatusBadArg
 * for a bad kernel size in the block, while the integer forms return kprStatusOk and leave dst as it is. */
KprStatus kpriFilterGaussianBorder_8u_C1R(const Kpr8u* src, int srcStep, Kpr8u* dst, int dstStep, KprSize roiSize,
                                          Kpr8u borderValue, const KprFilterGaussianSpec* spec, Kpr8u* buffer);
KprStatus kpriFilterGaussianBorder_8u_C3R(const Kpr8u* src, int srcStep, Kpr8u* dst, int dstStep, KprSize roiSize,
                                          const Kpr8u* borderValue, const KprFilterGaussianSpec* spec, Kpr8u* buffer);
KprStatus kpriFilterGaussianBorder_16u_C1R(const Kpr16u* src, int srcStep, Kpr16u* dst, int dstStep, KprSize roiSize,
                                           Kpr16u borderValue, const KprFilterGaussianSpec* spec, Kpr8u* buffer);
KprStatus kpriFilterGaussianBorder_16u_C3R(const Kpr16u* src, int srcStep, Kpr16u* dst, int dstStep, KprSize roiSize,
                                           const Kpr16u* borderValue, const KprFilterGaussianSpec* spec, Kpr8u* buffer);
KprStatus kpriFilterGaussianBorder_16s_C1R(const Kpr16s* src, int srcStep, Kpr16s* dst, int dstStep, KprSize roiSize,
                                           Kpr16s borderValue, const KprFilterGaussianSpec* spec, Kpr8u* buffer);
KprStatus kpriFilterGaussianBorder_16s_C3R(const Kpr16s* src, int srcStep, Kpr16s* dst, int dstStep, KprSize roiSize,
                                           const Kpr16s* borderValue, const KprFilterGaussianSpec* spec, Kpr8u* buffer);
KprStatus kpriFilterGaussianBorder_32f_C1R(const Kpr32f* src, int srcStep, Kpr32f* dst, int dstStep, KprSize roiSize,
                                           Kpr32f borderValue, const KprFilterGaussianSpec* spec, Kpr8u* buffer);
KprStatus kpriFilterGaussianBorder_32f_C3R(const Kpr32f* src, int srcStep, Kpr32f* dst, int dstStep, KprSize roiSize,
                                           const Kpr32f* borderValue, const KprFilterGaussianSpec* spec, Kpr8u* buffer);

/* The large form. kpriFilterGaussianGetSpecSize_L stores the bytes of the block and of the initialisation's buffer,
 * kpriFilterGaussianGetBufferSize_L those of the working buffer (borderType makes no difference and is not checked).
 * Parameters as kpriFilterGaussianGetBufferSize; buffers beyond 64 bits wrap.
 *
 * Returns kprStatusOk, kprStatusNullPtr, kprStatusBadSize (where there is a ROI), kprStatusBadArg for kernelSize,
 * kprStatusBadDataType, kprStatusBadChannelCount, in this order. */
KprStatus kpriFilterGaussianGetSpecSize_L(int kernelSize, KprDataType dataType, int numChannels, int64_t* specSize,
                                          int64_t* initBufferSize);
KprStatus kpriFilterGaussianGetBufferSize_L(KprSizeL roiSize, int kernelSize, KprDataType dataType,
                                            KprBorderType borderType, int numChannels, int64_t* bufferSize);

/* As kpriFilterGaussianInit, but that a NaN sigma is taken (all taps are then NaN), and that every border word up to
 * 255 with all four flags counts as kprBorderInMem. Later calls bring their own ROI and border word. */
KprStatus kpriFilterGaussianInit_L(KprSizeL roiSize, int kernelSize, KprBorderType borderType, KprDataType dataType,
                                   int numChannels, KprFilterGaussianSpec* spec, Kpr8u* buffer, Kpr32f sigma);

/* Filters an image of any size with the border word of the call.
 *
 * Pairs of pixels at the same distance are added first (exactly, of integers), multiplied and summed by fused steps in
 * single precision: rows into floats, then columns of these. The result is rounded to the nearest integer, ties to
 * even, and saturated; 16s with five taps alone keeps the low 16 bits instead. Border pixels and rows as in
 * kpriFilterGaussianBorder.
 *
 * src, dst      pixels, rows srcStep and dstStep bytes apart; must not overlap
 * borderType    kprBorderConstant, kprBorderReplicate or kprBorderMirror with any flags, or kprBorderInMem, for which
 *               every word up to 255 with all four flags counts
 * borderValue   one element a channel; may be null unless the base mode is kprBorderConstant
 * spec          as initialised by kpriFilterGaussianInit_L for this type
 * buffer        sized for at least this ROI, this kernel and these channels
 *
 * Returns kprStatusOk or the first failure: kprStatusNullPtr, kprStatusBadStep, kprStatusBadSize,
 * kprStatusStepNotMultiple (16u, 16s, 32f), kprStatusBadBorder for a word above 255, kprStatusNullPtr for a missing
 * borderValue, kprStatusBadBorder, kprStatusBadArg for a bad kernel size in the block. */
KprStatus kpriFilterGaussian_8u_C1R_L(const Kpr8u* src, int64_t srcStep, Kpr8u* dst, int64_t dstStep, KprSizeL roiSize,
                                      KprBorderType borderType, const Kpr8u* borderValue,
                                      const KprFilterGaussianSpec* spec, Kpr8u* buffer);
KprStatus kpriFilterGaussian_8u_C3R_L(const Kpr8u* src, int64_t srcStep, Kpr8u* dst, int64_t dstStep, KprSizeL roiSize,
                                      KprBorderType borderType, const Kpr8u* borderValue,
                                      const KprFilterGaussianSpec* spec, Kpr8u* buffer);
KprStatus kpriFilterGaussian_16u_C1R_L(const Kpr16u* src, int64_t srcStep, Kpr16u* dst, int64_t dstStep,
                                       KprSizeL roiSize, KprBorderType borderType, const Kpr16u* borderValue,
                                       const KprFilterGaussianSpec* spec, Kpr8u* buffer);
KprStatus kpriFilterGaussian_16u_C3R_L(const Kpr16u* src, int64_t srcStep, Kpr16u* dst, int64_t dstStep,
                                       KprSizeL roiSize, KprBorderType borderType, const Kpr16u* borderValue,
                                       const KprFilterGaussianSpec* spec, Kpr8u* buffer);
KprStatus kpriFilterGaussian_16s_C1R_L(const Kpr16s* src, int64_t srcStep, Kpr16s* dst, int64_t dstStep,
                                       KprSizeL roiSize, KprBorderType borderType, const Kpr16s* borderValue,
                                       const KprFilterGaussianSpec* spec, Kpr8u* buffer);
KprStatus kpriFilterGaussian_16s_C3R_L(const Kpr16s* src, int64_t srcStep, Kpr16s* dst, int64_t dstStep,
                                       KprSizeL roiSize, KprBorderType borderType, const Kpr16s* borderValue,
                                       const KprFilterGaussianSpec* spec, Kpr8u* buffer);
KprStatus kpriFilterGaussian_32f_C1R_L(const Kpr32f* src, int64_t srcStep, Kpr32f* dst, int64_t dstStep,
                                       KprSizeL roiSize, KprBorderType borderType, const Kpr32f* borderValue,
                                       const KprFilterGaussianSpec* spec, Kpr8u* buffer);
KprStatus kpriFilterGaussian_32f_C3R_L(const Kpr32f* src, int64_t srcStep, Kpr32f* dst, int64_t dstStep,
                                       KprSizeL roiSize, KprBorderType borderType, const Kpr32f* borderValue,
                                       const KprFilterGaussianSpec* spec, Kpr8u* buffer);

/* The Laplacian: the sum of the second derivatives across and down, smoothed.
 *
 *     kprMaskSize3x3:  2  0  2        kprMaskSize5x5:  2  4   4   4  2
 *                      0 -8  0                         4  0  -8   0  4
 *                      2  0  2                         4 -8 -24  -8  4
 *                                                      4  0  -8   0  4
 *                                                      2  4   4   4  2
 *
 * 8u16s is exact. 32f adds the pixels in the corners as they stand in their rows, then these sums, t, and gives
 * -8 * src + (t + t), the last step fused; the large mask is summed row by row. What lies under a zero of the mask is
 * not looked at: a NaN there stays unseen.
 *
 * src, dst      pixels; must not overlap
 * roiSize       pixels; at least 1 x 1
 * maskSize      kprMaskSize3x3 or kprMaskSize5x5
 * borderType    kprBorderConstant, kprBorderReplicate or kprBorderMirror with any flags, or kprBorderInMem. On a side
 *               whose flag is set, one or two rows or columns of real memory outside the ROI are read.
 * borderValue   of kprBorderConstant
 * buffer        working memory of the size that the sizing call tells for this ROI and mask, at any address
 *
 * Returns kprStatusOk or the first failure: kprStatusNullPtr, kprStatusBadSize, kprStatusBadStep,
 * kprStatusStepNotMultiple (dstStep of 8u16s; both steps of 32f), kprStatusBadBorder, kprStatusBadMaskSize. */
KprStatus kpriFilterLaplacianBorder_8u16s_C1R(const Kpr8u* src, int srcStep, Kpr16s* dst, int dstStep, KprSize roiSize,
                                              KprMaskSize maskSize, KprBorderType borderType, Kpr8u borderValue,
                                              Kpr8u* buffer);
KprStatus kpriFilterLaplacianBorder_32f_C1R(const Kpr32f* src, int srcStep, Kpr32f* dst, int dstStep, KprSize roiSize,
                                            KprMaskSize maskSize, KprBorderType borderType, Kpr32f borderValue,
                                            Kpr8u* buffer);

/* The bytes of working memory of the Laplacian, stored to *bufferSize, for a ROI of this width or a smaller one. They
 * are computed in 32 bits, where they wrap: of rows of some 21 million pixels and more they are of no use.
 *
 * Returns kprStatusOk, kprStatusNullPtr, kprStatusBadSize or kprStatusBadMaskSize. */
KprStatus kpriFilterLaplacianGetBufferSize_8u16s_C1R(KprSize roiSize, KprMaskSize maskSize, int* bufferSize);
KprStatus kpriFilterLaplacianGetBufferSize_32f_C1R(KprSize roiSize, KprMaskSize maskSize, int* bufferSize);

/* The low-pass average of 9 or 25 pixels, of which s is the sum.
 *
 * 8u     ((s + 5) * 7280) >> 16 of 9 pixels; (s * 2621) >> 16 of 25, which has no rounding term: an image of 255
 *        gives 254 there.
 * 32f    s in single precision, first along the rows, from left to right, then down; times the float nearest to 1/9 or
 *        1/25.
 *
 * Parameters and statuses as kpriFilterLaplacianBorder; 8u steps may be odd. */
KprStatus kpriFilterLowpassBorder_8u_C1R(const Kpr8u* src, int srcStep, Kpr8u* dst, int dstStep, KprSize roiSize,
                                         KprMaskSize maskSize, KprBorderType borderType, Kpr8u borderValue,
                                         Kpr8u* buffer);
KprStatus kpriFilterLowpassBorder_32f_C1R(const Kpr32f* src, int srcStep, Kpr32f* dst, int dstStep, KprSize roiSize,
                                          KprMaskSize maskSize, KprBorderType borderType, Kpr32f borderValue,
                                          Kpr8u* buffer);

/* The bytes of working memory of the low-pass average, stored to *bufferSize, for a ROI of this width or a smaller one.
 * They are computed in 32 bits, where they wrap: of rows of some 21 million pixels and more they are of no use.
 *
 * Returns kprStatusOk, kprStatusNullPtr, kprStatusBadSize or kprStatusBadMaskSize. */
KprStatus kpriFilterLowpassGetBufferSize_8u_C1R(KprSize roiSize, KprMaskSize maskSize, int* bufferSize);
KprStatus kpriFilterLowpassGetBufferSize_32f_C1R(KprSize roiSize, KprMaskSize maskSize, int* bufferSize);

/* The cross derivative, d2 / dx dy: the kernel 1 0 -1 (or 1 2 0 -2 -1) across and -1 0 1 (or -1 -2 0 2 1) down.
 *
 * 8u16s is exact; 32f adds the taps in order by fused steps, first across, then down. What lies under a zero of the
 * mask is not looked at: a NaN there stays unseen. Parameters and statuses as kpriFilterLaplacianBorder. */
KprStatus kpriFilterSobelCrossBorder_8u16s_C1R(const Kpr8u* src, int srcStep, Kpr16s* dst, int dstStep, KprSize roiSize,
                                               KprMaskSize maskSize, KprBorderType borderType, Kpr8u borderValue,
                                               Kpr8u* buffer);
KprStatus kpriFilterSobelCrossBorder_32f_C1R(const Kpr32f* src, int srcStep, Kpr32f* dst, int dstStep, KprSize roiSize,
                                             KprMaskSize maskSize, KprBorderType borderType, Kpr32f borderValue,
                                             Kpr8u* buffer);

/* The bytes of working memory of the cross derivative, stored to *bufferSize, for a ROI of this width or a smaller one.
 * They are computed in 32 bits, where they wrap: of rows of some 21 million pixels and more they are of no use.
 *
 * Returns kprStatusOk, kprStatusNullPtr, kprStatusBadSize or kprStatusBadMaskSize. */
KprStatus kpriFilterSobelCrossGetBufferSize_8u16s_C1R(KprSize roiSize, KprMaskSize maskSize, int* bufferSize);
KprStatus kpriFilterSobelCrossGetBufferSize_32f_C1R(KprSize roiSize, KprMaskSize maskSize, int* bufferSize);

/* A Sobel kernel of any odd length: kernelSize - derivativeOrder - 1 times smoothed by 1 1 and derivativeOrder times
 * differenced by -1 1, the tap of the lowest coordinate first; negated if sign is below zero.
 *
 * A length of 5 gives 1 4 6 4 1, -1 -2 0 2 1 and 1 0 -2 0 1 for the orders 0, 1 and 2. The 16-bit form wraps.
 *
 * kernel            kernelSize elements, written
 * kernelSize        odd, at least 1
 * derivativeOrder   0 to kernelSize - 1
 *
 * Returns kprStatusOk, kprStatusNullPtr, or kprStatusBadArg for kernelSize or derivativeOrder. */
KprStatus kpriGenSobelKernel_16s(Kpr16s* kernel, int kernelSize, int derivativeOrder, int sign);
KprStatus kpriGenSobelKernel_32f(Kpr32f* kernel, int kernelSize, int derivativeOrder, int sign);

#ifdef __cplusplus
}
#endif

#endif
