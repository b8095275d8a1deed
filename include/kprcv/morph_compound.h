/* Opening, closing, top-hat, black-hat and gradient. */
#ifndef KPRCV_MORPH_COMPOUND_H
#define KPRCV_MORPH_COMPOUND_H

#include <kprcv/morph_structuring.h>

#ifdef __cplusplus
extern "C" {
#endif

/* A state block of two structuring elements: a mask, and the same turned by 180 degrees. It holds pointers into itself:
 * it must not be moved or copied, but filled anew where it is to be. Processing calls do not write it, and several may
 * share it at once, each with a work buffer of its own; kpriMorphSetMode_L writes it. */
typedef struct KprMorphAdvState KprMorphAdvState;

/* Bytes that the state block and the work buffer of the operations below need. Arguments and statuses are those of
 * kpriMorphologyBorderGetSize. */
KprStatus kpriMorphAdvGetSize_8u_C1R(KprSize roiSize, KprSize maskSize, int* specSize, int* bufferSize);
KprStatus kpriMorphAdvGetSize_8u_C3R(KprSize roiSize, KprSize maskSize, int* specSize, int* bufferSize);
KprStatus kpriMorphAdvGetSize_8u_C4R(KprSize roiSize, KprSize maskSize, int* specSize, int* bufferSize);
KprStatus kpriMorphAdvGetSize_16u_C1R(KprSize roiSize, KprSize maskSize, int* specSize, int* bufferSize);
KprStatus kpriMorphAdvGetSize_16s_C1R(KprSize roiSize, KprSize maskSize, int* specSize, int* bufferSize);
KprStatus kpriMorphAdvGetSize_32f_C1R(KprSize roiSize, KprSize maskSize, int* specSize, int* bufferSize);
KprStatus kpriMorphAdvGetSize_32f_C3R(KprSize roiSize, KprSize maskSize, int* specSize, int* bufferSize);
KprStatus kpriMorphAdvGetSize_32f_C4R(KprSize roiSize, KprSize maskSize, int* specSize, int* bufferSize);

/* Fills a state block. Arguments and statuses are those of kpriMorphologyBorderInit. */
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
 *              its whole neighbourhood from memory on all sides
 * dst          may be the same image as src, in all types
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
 * when twice the mask's reach is added on each side, or for a size beyond 64 bits. Nothing wraps, and nothing is
 * written where a status is returned. */
KprStatus kpriMorphGetSpecSize_L(Kpr64s roiWidth, Kpr64s roiHeight, Kpr64s maskWidth, Kpr64s maskHeight,
                                 KprDataType dataType, int numChannels, Kpr64s* specSize);
KprStatus kpriMorphGetBufferSize_L(Kpr64s roiWidth, Kpr64s roiHeight, Kpr64s maskWidth, Kpr64s maskHeight,
                                   KprDataType dataType, int numChannels, Kpr64s* bufferSize);

/* Fills a state block, which serves the type and channels told. Its mode is 0.
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

#ifdef __cplusplus
}
#endif

#endif
