/* Morphology: dilation and erosion by structuring elements, what is composed from them, and reconstruction. */
#ifndef KPRCV_MORPH_H
#define KPRCV_MORPH_H

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
 * The mask is analysed once, into a state block of the caller's. The block holds pointers into itself: it must stay
 * where it was filled. It is not written by processing calls and may be shared by several at once.
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
 * The names of type and channels are those of the processing call.
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
 * A mask without taps, and a mask of one pixel whatever its value, copies the source. In 32f a NaN counts only where
 * all pixels under the taps are NaN, and +0 is larger than -0.
 *
 * src, dst         pixels. dst may be the same image as src, but in 16s; in any other way they must not overlap
 * srcStep, dstStep bytes from row to row
 * roiSize          pixels; at least 1 x 1
 * borderType       what lies outside the ROI: kprBorderReplicate, kprBorderMirror, kprBorderConstant, or
 *                  kprBorderDefault, a constant that never wins: the type's lowest value (in 32f the lowest finite
 * one). With kprBorderInMem flags, pixels on those sides are read from memory, as far as the mask (made odd) reaches;
 * kprBorderInMem alone says so of all sides. Bits 8 to 11 are taken and mean nothing here borderValue      of
 * kprBorderConstant; in C3R and C4R forms one element for each channel, and null is taken with any other border spec,
 * buffer     as the calls above left them
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
 * Returns kprStatusOk, kprStatusNullPtr, kprStatusBadSize, kprStatusSizeOverflow (a side beyond 0x7fffffff). */
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

/* Fills the state block of a large dilation or erosion; the two are the same.
 *
 * Returns kprStatusOk, kprStatusNullPtr, kprStatusBadSize, kprStatusSizeOverflow. */
KprStatus kpriDilateInit_L(Kpr64s roiWidth, Kpr64s roiHeight, const Kpr8u* mask, Kpr64s maskWidth, Kpr64s maskHeight,
                           KprMorphState* spec);
KprStatus kpriErodeInit_L(Kpr64s roiWidth, Kpr64s roiHeight, const Kpr8u* mask, Kpr64s maskWidth, Kpr64s maskHeight,
                          KprMorphState* spec);

/* Dilation and erosion as kpriDilateBorder and kpriErodeBorder, with the same refusals in place.
 *
 * borderValue is a pointer to one element for each channel in all forms.
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

/* ---- Opening, closing and differences */

/* A state block of two structuring elements: a mask, and the same turned by 180 degrees. */
typedef struct KprMorphAdvState KprMorphAdvState;

/* Bytes that the state block and the work buffer of the operations below need. As kpriMorphologyBorderGetSize. */
KprStatus kpriMorphAdvGetSize_8u_C1R(KprSize roiSize, KprSize maskSize, int* specSize, int* bufferSize);
KprStatus kpriMorphAdvGetSize_8u_C3R(KprSize roiSize, KprSize maskSize, int* specSize, int* bufferSize);
KprStatus kpriMorphAdvGetSize_8u_C4R(KprSize roiSize, KprSize maskSize, int* specSize, int* bufferSize);
KprStatus kpriMorphAdvGetSize_16u_C1R(KprSize roiSize, KprSize maskSize, int* specSize, int* bufferSize);
KprStatus kpriMorphAdvGetSize_16s_C1R(KprSize roiSize, KprSize maskSize, int* specSize, int* bufferSize);
KprStatus kpriMorphAdvGetSize_32f_C1R(KprSize roiSize, KprSize maskSize, int* specSize, int* bufferSize);
KprStatus kpriMorphAdvGetSize_32f_C3R(KprSize roiSize, KprSize maskSize, int* specSize, int* bufferSize);
KprStatus kpriMorphAdvGetSize_32f_C4R(KprSize roiSize, KprSize maskSize, int* specSize, int* bufferSize);

/* Fills a state block. As kpriMorphologyBorderInit. */
KprStatus kpriMorphAdvInit_8u_C1R(KprSize roiSize, const Kpr8u* mask, KprSize maskSize, KprMorphAdvState* spec,
                                  Kpr8u* buffer);
KprStatus kpriMorphAdvInit_8u_C3R(KprSize roiSize, const Kpr8u* mask, KprSize maskSize, KprMorphAdvState* spec,
                                  Kpr8u* buffer);
KprStatus kpriMorphAdvInit_8u_C4R(KprSize roiSize, const Kpr8u* mask, KprSize maskSize, KprMorphAdvState* spec,
                                  Kpr8u* buffer);
KprStatus kpriMorphAdvInit_16u_C1R(KprSize roiSize, const Kpr8u* mask, KprSize maskSize, KprMorphAdvState* spec,
                                   Kpr8u* buffer);
KprStatus kpriMorphAdvInit_16s_C1R(KprSize roiSize, const Kpr8u* mask, KprSize maskSize, KprMorphAdvState* spec,
                                   Kpr8u* buffer);
KprStatus kpriMorphAdvInit_32f_C1R(KprSize roiSize, const Kpr8u* mask, KprSize maskSize, KprMorphAdvState* spec,
                                   Kpr8u* buffer);
KprStatus kpriMorphAdvInit_32f_C3R(KprSize roiSize, const Kpr8u* mask, KprSize maskSize, KprMorphAdvState* spec,
                                   Kpr8u* buffer);
KprStatus kpriMorphAdvInit_32f_C4R(KprSize roiSize, const Kpr8u* mask, KprSize maskSize, KprMorphAdvState* spec,
                                   Kpr8u* buffer);

/* Opening: an erosion, then a dilation with the mask turned by 180 degrees. Bright details smaller than the mask
 * vanish.
 *
 * Parameters are those of kpriDilateBorder, and the differences are these:
 *
 * borderType   rules in both stages, each of which has its own neutral constant for kprBorderDefault. On the sides of
 *              kprBorderInMem flags the first stage is computed beyond the ROI as well, as far as the mask (made odd)
 *              reaches, so that memory is read twice as far out. Any of bits 8 to 11 says that the first stage reads
 * its whole neighbourhood from memory on all sides dst          may be the same image as src, in all types
 *
 * Returns kprStatusOk, kprStatusNullPtr, kprStatusBadSize, kprStatusBadStep, kprStatusStepNotMultiple (16u, 16s, 32f),
 * kprStatusBadBorder, and last kprStatusNullPtr for a null borderValue. */
KprStatus kpriMorphOpenBorder_8u_C1R(const Kpr8u* src, int srcStep, Kpr8u* dst, int dstStep, KprSize roiSize,
                                     KprBorderType borderType, Kpr8u borderValue, const KprMorphAdvState* spec,
                                     Kpr8u* buffer);
KprStatus kpriMorphOpenBorder_8u_C3R(const Kpr8u* src, int srcStep, Kpr8u* dst, int dstStep, KprSize roiSize,
                                     KprBorderType borderType, const Kpr8u* borderValue, const KprMorphAdvState* spec,
                                     Kpr8u* buffer);
KprStatus kpriMorphOpenBorder_8u_C4R(const Kpr8u* src, int srcStep, Kpr8u* dst, int dstStep, KprSize roiSize,
                                     KprBorderType borderType, const Kpr8u* borderValue, const KprMorphAdvState* spec,
                                     Kpr8u* buffer);
KprStatus kpriMorphOpenBorder_16u_C1R(const Kpr16u* src, int srcStep, Kpr16u* dst, int dstStep, KprSize roiSize,
                                      KprBorderType borderType, Kpr16u borderValue, const KprMorphAdvState* spec,
                                      Kpr8u* buffer);
KprStatus kpriMorphOpenBorder_16s_C1R(const Kpr16s* src, int srcStep, Kpr16s* dst, int dstStep, KprSize roiSize,
                                      KprBorderType borderType, Kpr16s borderValue, const KprMorphAdvState* spec,
                                      Kpr8u* buffer);
KprStatus kpriMorphOpenBorder_32f_C1R(const Kpr32f* src, int srcStep, Kpr32f* dst, int dstStep, KprSize roiSize,
                                      KprBorderType borderType, Kpr32f borderValue, const KprMorphAdvState* spec,
                                      Kpr8u* buffer);
KprStatus kpriMorphOpenBorder_32f_C3R(const Kpr32f* src, int srcStep, Kpr32f* dst, int dstStep, KprSize roiSize,
                                      KprBorderType borderType, const Kpr32f* borderValue, const KprMorphAdvState* spec,
                                      Kpr8u* buffer);
KprStatus kpriMorphOpenBorder_32f_C4R(const Kpr32f* src, int srcStep, Kpr32f* dst, int dstStep, KprSize roiSize,
                                      KprBorderType borderType, const Kpr32f* borderValue, const KprMorphAdvState* spec,
                                      Kpr8u* buffer);

/* Closing: a dilation, then an erosion with the mask turned by 180 degrees. Dark details smaller than the mask vanish.
 * As kpriMorphOpenBorder. */
KprStatus kpriMorphCloseBorder_8u_C1R(const Kpr8u* src, int srcStep, Kpr8u* dst, int dstStep, KprSize roiSize,
                                      KprBorderType borderType, Kpr8u borderValue, const KprMorphAdvState* spec,
                                      Kpr8u* buffer);
KprStatus kpriMorphCloseBorder_8u_C3R(const Kpr8u* src, int srcStep, Kpr8u* dst, int dstStep, KprSize roiSize,
                                      KprBorderType borderType, const Kpr8u* borderValue, const KprMorphAdvState* spec,
                                      Kpr8u* buffer);
KprStatus kpriMorphCloseBorder_8u_C4R(const Kpr8u* src, int srcStep, Kpr8u* dst, int dstStep, KprSize roiSize,
                                      KprBorderType borderType, const Kpr8u* borderValue, const KprMorphAdvState* spec,
                                      Kpr8u* buffer);
KprStatus kpriMorphCloseBorder_16u_C1R(const Kpr16u* src, int srcStep, Kpr16u* dst, int dstStep, KprSize roiSize,
                                       KprBorderType borderType, Kpr16u borderValue, const KprMorphAdvState* spec,
                                       Kpr8u* buffer);
KprStatus kpriMorphCloseBorder_16s_C1R(const Kpr16s* src, int srcStep, Kpr16s* dst, int dstStep, KprSize roiSize,
                                       KprBorderType borderType, Kpr16s borderValue, const KprMorphAdvState* spec,
                                       Kpr8u* buffer);
KprStatus kpriMorphCloseBorder_32f_C1R(const Kpr32f* src, int srcStep, Kpr32f* dst, int dstStep, KprSize roiSize,
                                       KprBorderType borderType, Kpr32f borderValue, const KprMorphAdvState* spec,
                                       Kpr8u* buffer);
KprStatus kpriMorphCloseBorder_32f_C3R(const Kpr32f* src, int srcStep, Kpr32f* dst, int dstStep, KprSize roiSize,
                                       KprBorderType borderType, const Kpr32f* borderValue,
                                       const KprMorphAdvState* spec, Kpr8u* buffer);
KprStatus kpriMorphCloseBorder_32f_C4R(const Kpr32f* src, int srcStep, Kpr32f* dst, int dstStep, KprSize roiSize,
                                       KprBorderType borderType, const Kpr32f* borderValue,
                                       const KprMorphAdvState* spec, Kpr8u* buffer);

/* Top-hat: src - opening, which leaves the bright details that the opening removes. Differences below 0, which only a
 * border can bring about, become 0. Of 32f the difference is rounded once. As kpriMorphOpenBorder. */
KprStatus kpriMorphTophatBorder_8u_C1R(const Kpr8u* src, int srcStep, Kpr8u* dst, int dstStep, KprSize roiSize,
                                       KprBorderType borderType, Kpr8u borderValue, const KprMorphAdvState* spec,
                                       Kpr8u* buffer);
KprStatus kpriMorphTophatBorder_8u_C3R(const Kpr8u* src, int srcStep, Kpr8u* dst, int dstStep, KprSize roiSize,
                                       KprBorderType borderType, const Kpr8u* borderValue, const KprMorphAdvState* spec,
                                       Kpr8u* buffer);
KprStatus kpriMorphTophatBorder_8u_C4R(const Kpr8u* src, int srcStep, Kpr8u* dst, int dstStep, KprSize roiSize,
                                       KprBorderType borderType, const Kpr8u* borderValue, const KprMorphAdvState* spec,
                                       Kpr8u* buffer);
KprStatus kpriMorphTophatBorder_16u_C1R(const Kpr16u* src, int srcStep, Kpr16u* dst, int dstStep, KprSize roiSize,
                                        KprBorderType borderType, Kpr16u borderValue, const KprMorphAdvState* spec,
                                        Kpr8u* buffer);
KprStatus kpriMorphTophatBorder_16s_C1R(const Kpr16s* src, int srcStep, Kpr16s* dst, int dstStep, KprSize roiSize,
                                        KprBorderType borderType, Kpr16s borderValue, const KprMorphAdvState* spec,
                                        Kpr8u* buffer);
KprStatus kpriMorphTophatBorder_32f_C1R(const Kpr32f* src, int srcStep, Kpr32f* dst, int dstStep, KprSize roiSize,
                                        KprBorderType borderType, Kpr32f borderValue, const KprMorphAdvState* spec,
                                        Kpr8u* buffer);
KprStatus kpriMorphTophatBorder_32f_C3R(const Kpr32f* src, int srcStep, Kpr32f* dst, int dstStep, KprSize roiSize,
                                        KprBorderType borderType, const Kpr32f* borderValue,
                                        const KprMorphAdvState* spec, Kpr8u* buffer);
KprStatus kpriMorphTophatBorder_32f_C4R(const Kpr32f* src, int srcStep, Kpr32f* dst, int dstStep, KprSize roiSize,
                                        KprBorderType borderType, const Kpr32f* borderValue,
                                        const KprMorphAdvState* spec, Kpr8u* buffer);

/* Black-hat: closing - src, which leaves the dark details. Otherwise as kpriMorphTophatBorder. */
KprStatus kpriMorphBlackhatBorder_8u_C1R(const Kpr8u* src, int srcStep, Kpr8u* dst, int dstStep, KprSize roiSize,
                                         KprBorderType borderType, Kpr8u borderValue, const KprMorphAdvState* spec,
                                         Kpr8u* buffer);
KprStatus kpriMorphBlackhatBorder_8u_C3R(const Kpr8u* src, int srcStep, Kpr8u* dst, int dstStep, KprSize roiSize,
                                         KprBorderType borderType, const Kpr8u* borderValue,
                                         const KprMorphAdvState* spec, Kpr8u* buffer);
KprStatus kpriMorphBlackhatBorder_8u_C4R(const Kpr8u* src, int srcStep, Kpr8u* dst, int dstStep, KprSize roiSize,
                                         KprBorderType borderType, const Kpr8u* borderValue,
                                         const KprMorphAdvState* spec, Kpr8u* buffer);
KprStatus kpriMorphBlackhatBorder_16u_C1R(const Kpr16u* src, int srcStep, Kpr16u* dst, int dstStep, KprSize roiSize,
                                          KprBorderType borderType, Kpr16u borderValue, const KprMorphAdvState* spec,
                                          Kpr8u* buffer);
KprStatus kpriMorphBlackhatBorder_16s_C1R(const Kpr16s* src, int srcStep, Kpr16s* dst, int dstStep, KprSize roiSize,
                                          KprBorderType borderType, Kpr16s borderValue, const KprMorphAdvState* spec,
                                          Kpr8u* buffer);
KprStatus kpriMorphBlackhatBorder_32f_C1R(const Kpr32f* src, int srcStep, Kpr32f* dst, int dstStep, KprSize roiSize,
                                          KprBorderType borderType, Kpr32f borderValue, const KprMorphAdvState* spec,
                                          Kpr8u* buffer);
KprStatus kpriMorphBlackhatBorder_32f_C3R(const Kpr32f* src, int srcStep, Kpr32f* dst, int dstStep, KprSize roiSize,
                                          KprBorderType borderType, const Kpr32f* borderValue,
                                          const KprMorphAdvState* spec, Kpr8u* buffer);
KprStatus kpriMorphBlackhatBorder_32f_C4R(const Kpr32f* src, int srcStep, Kpr32f* dst, int dstStep, KprSize roiSize,
                                          KprBorderType borderType, const Kpr32f* borderValue,
                                          const KprMorphAdvState* spec, Kpr8u* buffer);

/* Gradient: dilation - erosion, both with the mask as given; 16s saturates, 32f is rounded once. There is one stage
 * only: borderType is read as by kpriDilateBorder, and in place is refused in 16s (kprStatusInPlaceUnsupported). */
KprStatus kpriMorphGradientBorder_8u_C1R(const Kpr8u* src, int srcStep, Kpr8u* dst, int dstStep, KprSize roiSize,
                                         KprBorderType borderType, Kpr8u borderValue, const KprMorphAdvState* spec,
                                         Kpr8u* buffer);
KprStatus kpriMorphGradientBorder_8u_C3R(const Kpr8u* src, int srcStep, Kpr8u* dst, int dstStep, KprSize roiSize,
                                         KprBorderType borderType, const Kpr8u* borderValue,
                                         const KprMorphAdvState* spec, Kpr8u* buffer);
KprStatus kpriMorphGradientBorder_8u_C4R(const Kpr8u* src, int srcStep, Kpr8u* dst, int dstStep, KprSize roiSize,
                                         KprBorderType borderType, const Kpr8u* borderValue,
                                         const KprMorphAdvState* spec, Kpr8u* buffer);
KprStatus kpriMorphGradientBorder_16u_C1R(const Kpr16u* src, int srcStep, Kpr16u* dst, int dstStep, KprSize roiSize,
                                          KprBorderType borderType, Kpr16u borderValue, const KprMorphAdvState* spec,
                                          Kpr8u* buffer);
KprStatus kpriMorphGradientBorder_16s_C1R(const Kpr16s* src, int srcStep, Kpr16s* dst, int dstStep, KprSize roiSize,
                                          KprBorderType borderType, Kpr16s borderValue, const KprMorphAdvState* spec,
                                          Kpr8u* buffer);
KprStatus kpriMorphGradientBorder_32f_C1R(const Kpr32f* src, int srcStep, Kpr32f* dst, int dstStep, KprSize roiSize,
                                          KprBorderType borderType, Kpr32f borderValue, const KprMorphAdvState* spec,
                                          Kpr8u* buffer);
KprStatus kpriMorphGradientBorder_32f_C3R(const Kpr32f* src, int srcStep, Kpr32f* dst, int dstStep, KprSize roiSize,
                                          KprBorderType borderType, const Kpr32f* borderValue,
                                          const KprMorphAdvState* spec, Kpr8u* buffer);
KprStatus kpriMorphGradientBorder_32f_C4R(const Kpr32f* src, int srcStep, Kpr32f* dst, int dstStep, KprSize roiSize,
                                          KprBorderType borderType, const Kpr32f* borderValue,
                                          const KprMorphAdvState* spec, Kpr8u* buffer);

/* ---- The same with 64-bit sizes and steps */

/* Bytes that the state block and the work buffer need.
 *
 * dataType      kpr1u, kpr8u, kpr16u, kpr16s or kpr32f
 * numChannels   1, 3 or 4
 *
 * Returns kprStatusOk, kprStatusNullPtr, kprStatusBadSize, kprStatusSizeOverflow (a side beyond 0x7fffffff),
 * kprStatusBadDataType, kprStatusBadChannelCount; and last kprStatusSizeOverflow for a ROI that goes beyond 0x7fffffff
 * when twice the mask's reach is added on each side. */
KprStatus kpriMorphGetSpecSize_L(Kpr64s roiWidth, Kpr64s roiHeight, Kpr64s maskWidth, Kpr64s maskHeight,
                                 KprDataType dataType, int numChannels, Kpr64s* specSize);
KprStatus kpriMorphGetBufferSize_L(Kpr64s roiWidth, Kpr64s roiHeight, Kpr64s maskWidth, Kpr64s maskHeight,
                                   KprDataType dataType, int numChannels, Kpr64s* bufferSize);

/* Fills a state block. Its mode is 0.
 *
 * Returns kprStatusOk, kprStatusNullPtr, kprStatusBadSize, kprStatusSizeOverflow, kprStatusBadDataType,
 * kprStatusBadChannelCount. */
KprStatus kpriMorphInit_L(Kpr64s roiWidth, Kpr64s roiHeight, const Kpr8u* mask, Kpr64s maskWidth, Kpr64s maskHeight,
                          KprDataType dataType, int numChannels, KprMorphAdvState* spec);

/* Sets the mode of a state block, which stays in it: 0, the second stage uses the turned mask; 1, both stages use the
 * mask as given; 4, as 0 (it is noted in the block and changes no result).
 *
 * Returns kprStatusOk, kprStatusNullPtr, kprStatusBadMode. */
KprStatus kpriMorphSetMode_L(int mode, KprMorphAdvState* spec);

/* Operations as the forms above. borderValue is a pointer to one element for each channel in all forms.
 *
 * Return kprStatusNullPtr (a null borderValue of a constant border included), kprStatusBadSize, kprStatusSizeOverflow
 * (a ROI beyond 0x7fffffff), kprStatusBadStep, kprStatusStepNotMultiple, kprStatusBadBorder, and then
 * kprStatusSizeOverflow for a ROI of exactly 0x7fffffff. The gradient returns as kpriDilate_L does. */
KprStatus kpriMorphOpen_8u_C1R_L(const Kpr8u* src, Kpr64s srcStep, Kpr8u* dst, Kpr64s dstStep, Kpr64s roiWidth,
                                 Kpr64s roiHeight, KprBorderType borderType, const Kpr8u* borderValue,
                                 const KprMorphAdvState* spec, Kpr8u* buffer);
KprStatus kpriMorphOpen_8u_C3R_L(const Kpr8u* src, Kpr64s srcStep, Kpr8u* dst, Kpr64s dstStep, Kpr64s roiWidth,
                                 Kpr64s roiHeight, KprBorderType borderType, const Kpr8u* borderValue,
                                 const KprMorphAdvState* spec, Kpr8u* buffer);
KprStatus kpriMorphOpen_8u_C4R_L(const Kpr8u* src, Kpr64s srcStep, Kpr8u* dst, Kpr64s dstStep, Kpr64s roiWidth,
                                 Kpr64s roiHeight, KprBorderType borderType, const Kpr8u* borderValue,
                                 const KprMorphAdvState* spec, Kpr8u* buffer);
KprStatus kpriMorphOpen_16u_C1R_L(const Kpr16u* src, Kpr64s srcStep, Kpr16u* dst, Kpr64s dstStep, Kpr64s roiWidth,
                                  Kpr64s roiHeight, KprBorderType borderType, const Kpr16u* borderValue,
                                  const KprMorphAdvState* spec, Kpr8u* buffer);
KprStatus kpriMorphOpen_16s_C1R_L(const Kpr16s* src, Kpr64s srcStep, Kpr16s* dst, Kpr64s dstStep, Kpr64s roiWidth,
                                  Kpr64s roiHeight, KprBorderType borderType, const Kpr16s* borderValue,
                                  const KprMorphAdvState* spec, Kpr8u* buffer);
KprStatus kpriMorphOpen_32f_C1R_L(const Kpr32f* src, Kpr64s srcStep, Kpr32f* dst, Kpr64s dstStep, Kpr64s roiWidth,
                                  Kpr64s roiHeight, KprBorderType borderType, const Kpr32f* borderValue,
                                  const KprMorphAdvState* spec, Kpr8u* buffer);
KprStatus kpriMorphOpen_32f_C3R_L(const Kpr32f* src, Kpr64s srcStep, Kpr32f* dst, Kpr64s dstStep, Kpr64s roiWidth,
                                  Kpr64s roiHeight, KprBorderType borderType, const Kpr32f* borderValue,
                                  const KprMorphAdvState* spec, Kpr8u* buffer);
KprStatus kpriMorphOpen_32f_C4R_L(const Kpr32f* src, Kpr64s srcStep, Kpr32f* dst, Kpr64s dstStep, Kpr64s roiWidth,
                                  Kpr64s roiHeight, KprBorderType borderType, const Kpr32f* borderValue,
                                  const KprMorphAdvState* spec, Kpr8u* buffer);

KprStatus kpriMorphClose_8u_C1R_L(const Kpr8u* src, Kpr64s srcStep, Kpr8u* dst, Kpr64s dstStep, Kpr64s roiWidth,
                                  Kpr64s roiHeight, KprBorderType borderType, const Kpr8u* borderValue,
                                  const KprMorphAdvState* spec, Kpr8u* buffer);
KprStatus kpriMorphClose_8u_C3R_L(const Kpr8u* src, Kpr64s srcStep, Kpr8u* dst, Kpr64s dstStep, Kpr64s roiWidth,
                                  Kpr64s roiHeight, KprBorderType borderType, const Kpr8u* borderValue,
                                  const KprMorphAdvState* spec, Kpr8u* buffer);
KprStatus kpriMorphClose_8u_C4R_L(const Kpr8u* src, Kpr64s srcStep, Kpr8u* dst, Kpr64s dstStep, Kpr64s roiWidth,
                                  Kpr64s roiHeight, KprBorderType borderType, const Kpr8u* borderValue,
                                  const KprMorphAdvState* spec, Kpr8u* buffer);
KprStatus kpriMorphClose_16u_C1R_L(const Kpr16u* src, Kpr64s srcStep, Kpr16u* dst, Kpr64s dstStep, Kpr64s roiWidth,
                                   Kpr64s roiHeight, KprBorderType borderType, const Kpr16u* borderValue,
                                   const KprMorphAdvState* spec, Kpr8u* buffer);
KprStatus kpriMorphClose_16s_C1R_L(const Kpr16s* src, Kpr64s srcStep, Kpr16s* dst, Kpr64s dstStep, Kpr64s roiWidth,
                                   Kpr64s roiHeight, KprBorderType borderType, const Kpr16s* borderValue,
                                   const KprMorphAdvState* spec, Kpr8u* buffer);
KprStatus kpriMorphClose_32f_C1R_L(const Kpr32f* src, Kpr64s srcStep, Kpr32f* dst, Kpr64s dstStep, Kpr64s roiWidth,
                                   Kpr64s roiHeight, KprBorderType borderType, const Kpr32f* borderValue,
                                   const KprMorphAdvState* spec, Kpr8u* buffer);
KprStatus kpriMorphClose_32f_C3R_L(const Kpr32f* src, Kpr64s srcStep, Kpr32f* dst, Kpr64s dstStep, Kpr64s roiWidth,
                                   Kpr64s roiHeight, KprBorderType borderType, const Kpr32f* borderValue,
                                   const KprMorphAdvState* spec, Kpr8u* buffer);
KprStatus kpriMorphClose_32f_C4R_L(const Kpr32f* src, Kpr64s srcStep, Kpr32f* dst, Kpr64s dstStep, Kpr64s roiWidth,
                                   Kpr64s roiHeight, KprBorderType borderType, const Kpr32f* borderValue,
                                   const KprMorphAdvState* spec, Kpr8u* buffer);

KprStatus kpriMorphTophat_8u_C1R_L(const Kpr8u* src, Kpr64s srcStep, Kpr8u* dst, Kpr64s dstStep, Kpr64s roiWidth,
                                   Kpr64s roiHeight, KprBorderType borderType, const Kpr8u* borderValue,
                                   const KprMorphAdvState* spec, Kpr8u* buffer);
KprStatus kpriMorphTophat_8u_C3R_L(const Kpr8u* src, Kpr64s srcStep, Kpr8u* dst, Kpr64s dstStep, Kpr64s roiWidth,
                                   Kpr64s roiHeight, KprBorderType borderType, const Kpr8u* borderValue,
                                   const KprMorphAdvState* spec, Kpr8u* buffer);
KprStatus kpriMorphTophat_8u_C4R_L(const Kpr8u* src, Kpr64s srcStep, Kpr8u* dst, Kpr64s dstStep, Kpr64s roiWidth,
                                   Kpr64s roiHeight, KprBorderType borderType, const Kpr8u* borderValue,
                                   const KprMorphAdvState* spec, Kpr8u* buffer);
KprStatus kpriMorphTophat_16u_C1R_L(const Kpr16u* src, Kpr64s srcStep, Kpr16u* dst, Kpr64s dstStep, Kpr64s roiWidth,
                                    Kpr64s roiHeight, KprBorderType borderType, const Kpr16u* borderValue,
                                    const KprMorphAdvState* spec, Kpr8u* buffer);
KprStatus kpriMorphTophat_16s_C1R_L(const Kpr16s* src, Kpr64s srcStep, Kpr16s* dst, Kpr64s dstStep, Kpr64s roiWidth,
                                    Kpr64s roiHeight, KprBorderType borderType, const Kpr16s* borderValue,
                                    const KprMorphAdvState* spec, Kpr8u* buffer);
KprStatus kpriMorphTophat_32f_C1R_L(const Kpr32f* src, Kpr64s srcStep, Kpr32f* dst, Kpr64s dstStep, Kpr64s roiWidth,
                                    Kpr64s roiHeight, KprBorderType borderType, const Kpr32f* borderValue,
                                    const KprMorphAdvState* spec, Kpr8u* buffer);
KprStatus kpriMorphTophat_32f_C3R_L(const Kpr32f* src, Kpr64s srcStep, Kpr32f* dst, Kpr64s dstStep, Kpr64s roiWidth,
                                    Kpr64s roiHeight, KprBorderType borderType, const Kpr32f* borderValue,
                                    const KprMorphAdvState* spec, Kpr8u* buffer);
KprStatus kpriMorphTophat_32f_C4R_L(const Kpr32f* src, Kpr64s srcStep, Kpr32f* dst, Kpr64s dstStep, Kpr64s roiWidth,
                                    Kpr64s roiHeight, KprBorderType borderType, const Kpr32f* borderValue,
                                    const KprMorphAdvState* spec, Kpr8u* buffer);

KprStatus kpriMorphBlackhat_8u_C1R_L(const Kpr8u* src, Kpr64s srcStep, Kpr8u* dst, Kpr64s dstStep, Kpr64s roiWidth,
                                     Kpr64s roiHeight, KprBorderType borderType, const Kpr8u* borderValue,
                                     const KprMorphAdvState* spec, Kpr8u* buffer);
KprStatus kpriMorphBlackhat_8u_C3R_L(const Kpr8u* src, Kpr64s srcStep, Kpr8u* dst, Kpr64s dstStep, Kpr64s roiWidth,
                                     Kpr64s roiHeight, KprBorderType borderType, const Kpr8u* borderValue,
                                     const KprMorphAdvState* spec, Kpr8u* buffer);
KprStatus kpriMorphBlackhat_8u_C4R_L(const Kpr8u* src, Kpr64s srcStep, Kpr8u* dst, Kpr64s dstStep, Kpr64s roiWidth,
                                     Kpr64s roiHeight, KprBorderType borderType, const Kpr8u* borderValue,
                                     const KprMorphAdvState* spec, Kpr8u* buffer);
KprStatus kpriMorphBlackhat_16u_C1R_L(const Kpr16u* src, Kpr64s srcStep, Kpr16u* dst, Kpr64s dstStep, Kpr64s roiWidth,
                                      Kpr64s roiHeight, KprBorderType borderType, const Kpr16u* borderValue,
                                      const KprMorphAdvState* spec, Kpr8u* buffer);
KprStatus kpriMorphBlackhat_16s_C1R_L(const Kpr16s* src, Kpr64s srcStep, Kpr16s* dst, Kpr64s dstStep, Kpr64s roiWidth,
                                      Kpr64s roiHeight, KprBorderType borderType, const Kpr16s* borderValue,
                                      const KprMorphAdvState* spec, Kpr8u* buffer);
KprStatus kpriMorphBlackhat_32f_C1R_L(const Kpr32f* src, Kpr64s srcStep, Kpr32f* dst, Kpr64s dstStep, Kpr64s roiWidth,
                                      Kpr64s roiHeight, KprBorderType borderType, const Kpr32f* borderValue,
                                      const KprMorphAdvState* spec, Kpr8u* buffer);
KprStatus kpriMorphBlackhat_32f_C3R_L(const Kpr32f* src, Kpr64s srcStep, Kpr32f* dst, Kpr64s dstStep, Kpr64s roiWidth,
                                      Kpr64s roiHeight, KprBorderType borderType, const Kpr32f* borderValue,
                                      const KprMorphAdvState* spec, Kpr8u* buffer);
KprStatus kpriMorphBlackhat_32f_C4R_L(const Kpr32f* src, Kpr64s srcStep, Kpr32f* dst, Kpr64s dstStep, Kpr64s roiWidth,
                                      Kpr64s roiHeight, KprBorderType borderType, const Kpr32f* borderValue,
                                      const KprMorphAdvState* spec, Kpr8u* buffer);

KprStatus kpriMorphGradient_8u_C1R_L(const Kpr8u* src, Kpr64s srcStep, Kpr8u* dst, Kpr64s dstStep, Kpr64s roiWidth,
                                     Kpr64s roiHeight, KprBorderType borderType, const Kpr8u* borderValue,
                                     const KprMorphAdvState* spec, Kpr8u* buffer);
KprStatus kpriMorphGradient_8u_C3R_L(const Kpr8u* src, Kpr64s srcStep, Kpr8u* dst, Kpr64s dstStep, Kpr64s roiWidth,
                                     Kpr64s roiHeight, KprBorderType borderType, const Kpr8u* borderValue,
                                     const KprMorphAdvState* spec, Kpr8u* buffer);
KprStatus kpriMorphGradient_8u_C4R_L(const Kpr8u* src, Kpr64s srcStep, Kpr8u* dst, Kpr64s dstStep, Kpr64s roiWidth,
                                     Kpr64s roiHeight, KprBorderType borderType, const Kpr8u* borderValue,
                                     const KprMorphAdvState* spec, Kpr8u* buffer);
KprStatus kpriMorphGradient_16u_C1R_L(const Kpr16u* src, Kpr64s srcStep, Kpr16u* dst, Kpr64s dstStep, Kpr64s roiWidth,
                                      Kpr64s roiHeight, KprBorderType borderType, const Kpr16u* borderValue,
                                      const KprMorphAdvState* spec, Kpr8u* buffer);
KprStatus kpriMorphGradient_16s_C1R_L(const Kpr16s* src, Kpr64s srcStep, Kpr16s* dst, Kpr64s dstStep, Kpr64s roiWidth,
                                      Kpr64s roiHeight, KprBorderType borderType, const Kpr16s* borderValue,
                                      const KprMorphAdvState* spec, Kpr8u* buffer);
KprStatus kpriMorphGradient_32f_C1R_L(const Kpr32f* src, Kpr64s srcStep, Kpr32f* dst, Kpr64s dstStep, Kpr64s roiWidth,
                                      Kpr64s roiHeight, KprBorderType borderType, const Kpr32f* borderValue,
                                      const KprMorphAdvState* spec, Kpr8u* buffer);
KprStatus kpriMorphGradient_32f_C3R_L(const Kpr32f* src, Kpr64s srcStep, Kpr32f* dst, Kpr64s dstStep, Kpr64s roiWidth,
                                      Kpr64s roiHeight, KprBorderType borderType, const Kpr32f* borderValue,
                                      const KprMorphAdvState* spec, Kpr8u* buffer);
KprStatus kpriMorphGradient_32f_C4R_L(const Kpr32f* src, Kpr64s srcStep, Kpr32f* dst, Kpr64s dstStep, Kpr64s roiWidth,
                                      Kpr64s roiHeight, KprBorderType borderType, const Kpr32f* borderValue,
                                      const KprMorphAdvState* spec, Kpr8u* buffer);

/* ---- Reconstruction */

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
