/* Dilation and erosion by structuring elements. */
#ifndef KPRCV_MORPH_STRUCTURING_H
#define KPRCV_MORPH_STRUCTURING_H

#include <kprcv/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Structuring elements
 *
 * A structuring element is a mask of bytes, row after row without gaps; every byte but 0 marks a tap. Its anchor, the
 * place that is laid on a pixel, is column width / 2 and row height / 2. In an even mask that is right of and below the
 * middle, of which one column or row less remains after it; but the mask is first given a column (row) of zeros in
 * front, so that a mask of width 2 covers columns x and x + 1 of a pixel at x.
 *
 * The mask is analysed once, into a state block of the caller's. The block holds pointers into itself: it must not be
 * moved or copied, but filled anew where it is to be. It is not written by processing calls and may be shared by
 * several at once, each with a work buffer of its own.
 *
 * The order of calls: GetSize, allocation of the block and the work buffer, Init, then any number of processing calls
 * with a ROI no larger than the one given to GetSize, in neither direction. The block and the buffer may lie at any
 * address. The buffer holds nothing between calls.
 */

/* A state block made from a structuring element. */
typedef struct KprMorphState KprMorphState;

/* Bytes that the state block and the work buffer need.
 *
 * roiSize      the largest ROI to be processed, pixels; at least 1 x 1
 * maskSize     the structuring element's size; at least 1 x 1
 * specSize, bufferSize   receive the sizes in bytes
 *
 * The names of type and channels are those of the processing call. No size wraps: where one is beyond 0x7fffffff,
 * nothing is written.
 *
 * Returns kprStatusOk, kprStatusNullPtr, kprStatusBadSize, kprStatusSizeOverflow (a size beyond 0x7fffffff). */
KprStatus kpriMorphologyBorderGetSize_8u_C1R(KprSize roiSize, KprSize maskSize, int* specSize, int* bufferSize);
KprStatus kpriMorphologyBorderGetSize_8u_C3R(KprSize roiSize, KprSize maskSize, int* specSize, int* bufferSize);
KprStatus kpriMorphologyBorderGetSize_8u_C4R(KprSize roiSize, KprSize maskSize, int* specSize, int* bufferSize);
KprStatus kpriMorphologyBorderGetSize_16u_C1R(KprSize roiSize, KprSize maskSize, int* specSize, int* bufferSize);
KprStatus kpriMorphologyBorderGetSize_16s_C1R(KprSize roiSize, KprSize maskSize, int* specSize, int* bufferSize);
KprStatus kpriMorphologyBorderGetSize_32f_C1R(KprSize roiSize, KprSize maskSize, int* specSize, int* bufferSize);
KprStatus kpriMorphologyBorderGetSize_32f_C3R(KprSize roiSize, KprSize maskSize, int* specSize, int* bufferSize);
KprStatus kpriMorphologyBorderGetSize_32f_C4R(KprSize roiSize, KprSize maskSize, int* specSize, int* bufferSize);

/* Fills a state block.
 *
 * roiSize      as given to GetSize
 * mask         maskSize.width * maskSize.height bytes; not needed any more after the call
 * spec         the block, of the size that GetSize told
 * buffer       the work buffer, which is not touched; must not be null
 *
 * Returns kprStatusOk, kprStatusNullPtr, kprStatusBadSize. */
KprStatus kpriMorphologyBorderInit_8u_C1R(KprSize roiSize, const Kpr8u* mask, KprSize maskSize, KprMorphState* spec,
                                          Kpr8u* buffer);
KprStatus kpriMorphologyBorderInit_8u_C3R(KprSize roiSize, const Kpr8u* mask, KprSize maskSize, KprMorphState* spec,
                                          Kpr8u* buffer);
KprStatus kpriMorphologyBorderInit_8u_C4R(KprSize roiSize, const Kpr8u* mask, KprSize maskSize, KprMorphState* spec,
                                          Kpr8u* buffer);
KprStatus kpriMorphologyBorderInit_16u_C1R(KprSize roiSize, const Kpr8u* mask, KprSize maskSize, KprMorphState* spec,
                                           Kpr8u* buffer);
KprStatus kpriMorphologyBorderInit_16s_C1R(KprSize roiSize, const Kpr8u* mask, KprSize maskSize, KprMorphState* spec,
                                           Kpr8u* buffer);
KprStatus kpriMorphologyBorderInit_32f_C1R(KprSize roiSize, const Kpr8u* mask, KprSize maskSize, KprMorphState* spec,
                                           Kpr8u* buffer);
KprStatus kpriMorphologyBorderInit_32f_C3R(KprSize roiSize, const Kpr8u* mask, KprSize maskSize, KprMorphState* spec,
                                           Kpr8u* buffer);
KprStatus kpriMorphologyBorderInit_32f_C4R(KprSize roiSize, const Kpr8u* mask, KprSize maskSize, KprMorphState* spec,
                                           Kpr8u* buffer);

/* Dilation: each pixel becomes the largest of the pixels under the taps, channel by channel.
 *
 * A mask without taps, and a mask of one pixel whatever its value, copies the source. In 32f a number counts before any
 * NaN, quiet or signalling: the result is NaN only where all pixels under the taps are. +0 is larger than -0. An image
 * with signalling NaN may take several times as long; nothing traps, and the caller's floating-point status is kept.
 *
 * src, dst         pixels. dst may be the same image as src, but in 16s; in any other way they must not overlap
 * srcStep, dstStep bytes from row to row
 * roiSize          pixels; at least 1 x 1
 * borderType       what lies outside the ROI: kprBorderReplicate, kprBorderMirror, kprBorderConstant, or
 *                  kprBorderDefault, a constant that never wins: the type's lowest value (in 32f the lowest finite
 *                  one). With kprBorderInMem flags, pixels on those sides are read from memory, as far as the mask
 *                  (made odd) reaches; kprBorderInMem alone says so of all sides. Bits 8 to 11 are taken and mean
 *                  nothing here
 * borderValue      of kprBorderConstant; in C3R and C4R forms one element for each channel, and null is taken with
 *                  any other border
 * spec, buffer     as the calls above left them
 *
 * Returns kprStatusOk, kprStatusNullPtr, kprStatusInPlaceUnsupported (16s), kprStatusBadSize, kprStatusBadStep,
 * kprStatusStepNotMultiple (16u, 16s, 32f), kprStatusBadBorder, and last kprStatusNullPtr for a null borderValue. */
KprStatus kpriDilateBorder_8u_C1R(const Kpr8u* src, int srcStep, Kpr8u* dst, int dstStep, KprSize roiSize,
                                  KprBorderType borderType, Kpr8u borderValue, const KprMorphState* spec,
                                  Kpr8u* buffer);
KprStatus kpriDilateBorder_8u_C3R(const Kpr8u* src, int srcStep, Kpr8u* dst, int dstStep, KprSize roiSize,
                                  KprBorderType borderType, const Kpr8u* borderValue, const KprMorphState* spec,
                                  Kpr8u* buffer);
KprStatus kpriDilateBorder_8u_C4R(const Kpr8u* src, int srcStep, Kpr8u* dst, int dstStep, KprSize roiSize,
                                  KprBorderType borderType, const Kpr8u* borderValue, const KprMorphState* spec,
                                  Kpr8u* buffer);
KprStatus kpriDilateBorder_16u_C1R(const Kpr16u* src, int srcStep, Kpr16u* dst, int dstStep, KprSize roiSize,
                                   KprBorderType borderType, Kpr16u borderValue, const KprMorphState* spec,
                                   Kpr8u* buffer);
KprStatus kpriDilateBorder_16s_C1R(const Kpr16s* src, int srcStep, Kpr16s* dst, int dstStep, KprSize roiSize,
                                   KprBorderType borderType, Kpr16s borderValue, const KprMorphState* spec,
                                   Kpr8u* buffer);
KprStatus kpriDilateBorder_32f_C1R(const Kpr32f* src, int srcStep, Kpr32f* dst, int dstStep, KprSize roiSize,
                                   KprBorderType borderType, Kpr32f borderValue, const KprMorphState* spec,
                                   Kpr8u* buffer);
KprStatus kpriDilateBorder_32f_C3R(const Kpr32f* src, int srcStep, Kpr32f* dst, int dstStep, KprSize roiSize,
                                   KprBorderType borderType, const Kpr32f* borderValue, const KprMorphState* spec,
                                   Kpr8u* buffer);
KprStatus kpriDilateBorder_32f_C4R(const Kpr32f* src, int srcStep, Kpr32f* dst, int dstStep, KprSize roiSize,
                                   KprBorderType borderType, const Kpr32f* borderValue, const KprMorphState* spec,
                                   Kpr8u* buffer);

/* Erosion: each pixel becomes the smallest of the pixels under the taps, channel by channel.
 *
 * As kpriDilateBorder, with the smallest in place of the largest: kprBorderDefault stands for the type's largest value
 * (in 32f the largest finite one), -0 is smaller than +0. In place is refused in 16u and 16s. */
KprStatus kpriErodeBorder_8u_C1R(const Kpr8u* src, int srcStep, Kpr8u* dst, int dstStep, KprSize roiSize,
                                 KprBorderType borderType, Kpr8u borderValue, const KprMorphState* spec, Kpr8u* buffer);
KprStatus kpriErodeBorder_8u_C3R(const Kpr8u* src, int srcStep, Kpr8u* dst, int dstStep, KprSize roiSize,
                                 KprBorderType borderType, const Kpr8u* borderValue, const KprMorphState* spec,
                                 Kpr8u* buffer);
KprStatus kpriErodeBorder_8u_C4R(const Kpr8u* src, int srcStep, Kpr8u* dst, int dstStep, KprSize roiSize,
                                 KprBorderType borderType, const Kpr8u* borderValue, const KprMorphState* spec,
                                 Kpr8u* buffer);
KprStatus kpriErodeBorder_16u_C1R(const Kpr16u* src, int srcStep, Kpr16u* dst, int dstStep, KprSize roiSize,
                                  KprBorderType borderType, Kpr16u borderValue, const KprMorphState* spec,
                                  Kpr8u* buffer);
KprStatus kpriErodeBorder_16s_C1R(const Kpr16s* src, int srcStep, Kpr16s* dst, int dstStep, KprSize roiSize,
                                  KprBorderType borderType, Kpr16s borderValue, const KprMorphState* spec,
                                  Kpr8u* buffer);
KprStatus kpriErodeBorder_32f_C1R(const Kpr32f* src, int srcStep, Kpr32f* dst, int dstStep, KprSize roiSize,
                                  KprBorderType borderType, Kpr32f borderValue, const KprMorphState* spec,
                                  Kpr8u* buffer);
KprStatus kpriErodeBorder_32f_C3R(const Kpr32f* src, int srcStep, Kpr32f* dst, int dstStep, KprSize roiSize,
                                  KprBorderType borderType, const Kpr32f* borderValue, const KprMorphState* spec,
                                  Kpr8u* buffer);
KprStatus kpriErodeBorder_32f_C4R(const Kpr32f* src, int srcStep, Kpr32f* dst, int dstStep, KprSize roiSize,
                                  KprBorderType borderType, const Kpr32f* borderValue, const KprMorphState* spec,
                                  Kpr8u* buffer);

/* ---- The same with 64-bit sizes and steps
 *
 * One state block serves all types; the buffer is sized for one. The blocks of the two interfaces are not
 * interchangeable. */

/* Bytes that the state block of a large dilation or erosion needs.
 *
 * Returns kprStatusOk, kprStatusNullPtr, kprStatusBadSize, kprStatusSizeOverflow (a side beyond 0x7fffffff, or a size
 * beyond 64 bits; nothing is written then). */
KprStatus kpriDilateGetSpecSize_L(Kpr64s roiWidth, Kpr64s roiHeight, Kpr64s maskWidth, Kpr64s maskHeight,
                                  Kpr64s* specSize);
KprStatus kpriErodeGetSpecSize_L(Kpr64s roiWidth, Kpr64s roiHeight, Kpr64s maskWidth, Kpr64s maskHeight,
                                 Kpr64s* specSize);

/* Bytes that the work buffer of a large dilation or erosion needs.
 *
 * dataType      kpr1u, kpr8u, kpr16u, kpr16s or kpr32f
 * numChannels   1, 3 or 4
 *
 * Returns as kpriDilateGetSpecSize_L, then kprStatusBadDataType, kprStatusBadChannelCount. */
KprStatus kpriDilateGetBufferSize_L(Kpr64s roiWidth, Kpr64s roiHeight, Kpr64s maskWidth, Kpr64s maskHeight,
                                    KprDataType dataType, int numChannels, Kpr64s* bufferSize);
KprStatus kpriErodeGetBufferSize_L(Kpr64s roiWidth, Kpr64s roiHeight, Kpr64s maskWidth, Kpr64s maskHeight,
                                   KprDataType dataType, int numChannels, Kpr64s* bufferSize);

/* Fills the state block of a large dilation or erosion; the two are the same. mask, and where the block may lie, as of
 * kpriMorphologyBorderInit.
 *
 * Returns kprStatusOk, kprStatusNullPtr, kprStatusBadSize, kprStatusSizeOverflow. */
KprStatus kpriDilateInit_L(Kpr64s roiWidth, Kpr64s roiHeight, const Kpr8u* mask, Kpr64s maskWidth, Kpr64s maskHeight,
                           KprMorphState* spec);
KprStatus kpriErodeInit_L(Kpr64s roiWidth, Kpr64s roiHeight, const Kpr8u* mask, Kpr64s maskWidth, Kpr64s maskHeight,
                          KprMorphState* spec);

/* Dilation and erosion as kpriDilateBorder and kpriErodeBorder, with the same refusals in place.
 *
 * borderValue is a pointer to one element for each channel in all forms; null is taken with any border but
 * kprBorderConstant.
 *
 * Returns as the 32-bit forms; but kprStatusSizeOverflow, after the sizes below 1, for a ROI beyond 0x7fffffff in
 * either direction, and after the border word kprStatusBadSize for a ROI of exactly 0x7fffffff, kprStatusBadStep for a
 * step of 0x7fffffff or more. */
KprStatus kpriDilate_8u_C1R_L(const Kpr8u* src, Kpr64s srcStep, Kpr8u* dst, Kpr64s dstStep, Kpr64s roiWidth,
                              Kpr64s roiHeight, KprBorderType borderType, const Kpr8u* borderValue,
                              const KprMorphState* spec, Kpr8u* buffer);
KprStatus kpriDilate_8u_C3R_L(const Kpr8u* src, Kpr64s srcStep, Kpr8u* dst, Kpr64s dstStep, Kpr64s roiWidth,
                              Kpr64s roiHeight, KprBorderType borderType, const Kpr8u* borderValue,
                              const KprMorphState* spec, Kpr8u* buffer);
KprStatus kpriDilate_8u_C4R_L(const Kpr8u* src, Kpr64s srcStep, Kpr8u* dst, Kpr64s dstStep, Kpr64s roiWidth,
                              Kpr64s roiHeight, KprBorderType borderType, const Kpr8u* borderValue,
                              const KprMorphState* spec, Kpr8u* buffer);
KprStatus kpriDilate_16u_C1R_L(const Kpr16u* src, Kpr64s srcStep, Kpr16u* dst, Kpr64s dstStep, Kpr64s roiWidth,
                               Kpr64s roiHeight, KprBorderType borderType, const Kpr16u* borderValue,
                               const KprMorphState* spec, Kpr8u* buffer);
KprStatus kpriDilate_16s_C1R_L(const Kpr16s* src, Kpr64s srcStep, Kpr16s* dst, Kpr64s dstStep, Kpr64s roiWidth,
                               Kpr64s roiHeight, KprBorderType borderType, const Kpr16s* borderValue,
                               const KprMorphState* spec, Kpr8u* buffer);
KprStatus kpriDilate_32f_C1R_L(const Kpr32f* src, Kpr64s srcStep, Kpr32f* dst, Kpr64s dstStep, Kpr64s roiWidth,
                               Kpr64s roiHeight, KprBorderType borderType, const Kpr32f* borderValue,
                               const KprMorphState* spec, Kpr8u* buffer);
KprStatus kpriDilate_32f_C3R_L(const Kpr32f* src, Kpr64s srcStep, Kpr32f* dst, Kpr64s dstStep, Kpr64s roiWidth,
                               Kpr64s roiHeight, KprBorderType borderType, const Kpr32f* borderValue,
                               const KprMorphState* spec, Kpr8u* buffer);
KprStatus kpriDilate_32f_C4R_L(const Kpr32f* src, Kpr64s srcStep, Kpr32f* dst, Kpr64s dstStep, Kpr64s roiWidth,
                               Kpr64s roiHeight, KprBorderType borderType, const Kpr32f* borderValue,
                               const KprMorphState* spec, Kpr8u* buffer);
KprStatus kpriErode_8u_C1R_L(const Kpr8u* src, Kpr64s srcStep, Kpr8u* dst, Kpr64s dstStep, Kpr64s roiWidth,
                             Kpr64s roiHeight, KprBorderType borderType, const Kpr8u* borderValue,
                             const KprMorphState* spec, Kpr8u* buffer);
KprStatus kpriErode_8u_C3R_L(const Kpr8u* src, Kpr64s srcStep, Kpr8u* dst, Kpr64s dstStep, Kpr64s roiWidth,
                             Kpr64s roiHeight, KprBorderType borderType, const Kpr8u* borderValue,
                             const KprMorphState* spec, Kpr8u* buffer);
KprStatus kpriErode_8u_C4R_L(const Kpr8u* src, Kpr64s srcStep, Kpr8u* dst, Kpr64s dstStep, Kpr64s roiWidth,
                             Kpr64s roiHeight, KprBorderType borderType, const Kpr8u* borderValue,
                             const KprMorphState* spec, Kpr8u* buffer);
KprStatus kpriErode_16u_C1R_L(const Kpr16u* src, Kpr64s srcStep, Kpr16u* dst, Kpr64s dstStep, Kpr64s roiWidth,
                              Kpr64s roiHeight, KprBorderType borderType, const Kpr16u* borderValue,
                              const KprMorphState* spec, Kpr8u* buffer);
KprStatus kpriErode_16s_C1R_L(const Kpr16s* src, Kpr64s srcStep, Kpr16s* dst, Kpr64s dstStep, Kpr64s roiWidth,
                              Kpr64s roiHeight, KprBorderType borderType, const Kpr16s* borderValue,
                              const KprMorphState* spec, Kpr8u* buffer);
KprStatus kpriErode_32f_C1R_L(const Kpr32f* src, Kpr64s srcStep, Kpr32f* dst, Kpr64s dstStep, Kpr64s roiWidth,
                              Kpr64s roiHeight, KprBorderType borderType, const Kpr32f* borderValue,
                              const KprMorphState* spec, Kpr8u* buffer);
KprStatus kpriErode_32f_C3R_L(const Kpr32f* src, Kpr64s srcStep, Kpr32f* dst, Kpr64s dstStep, Kpr64s roiWidth,
                              Kpr64s roiHeight, KprBorderType borderType, const Kpr32f* borderValue,
                              const KprMorphState* spec, Kpr8u* buffer);
KprStatus kpriErode_32f_C4R_L(const Kpr32f* src, Kpr64s srcStep, Kpr32f* dst, Kpr64s dstStep, Kpr64s roiWidth,
                              Kpr64s roiHeight, KprBorderType borderType, const Kpr32f* borderValue,
                              const KprMorphState* spec, Kpr8u* buffer);

#ifdef __cplusplus
}
#endif

#endif
