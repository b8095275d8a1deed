/* Morphology of images of one bit a pixel.
 *
 * Eight pixels lie in a byte, the leftmost in the most significant bit. A pixel pointer addresses the byte that holds
 * the first pixel of the ROI, and a bit offset from 0 to 7 says which pixel of that byte it is; the offset is the same
 * in all rows. Rows lie `step` bytes apart, and a step is no less than the bytes that a row touches:
 * (width + bit offset + 7) / 8. Masks are masks of bytes, as for the other types.
 *
 * Only bytes that hold pixels of the ROI are read and written; on sides with kprBorderInMem flags, those are read too
 * that hold the pixels outside it which the flag says are there. The pixels of a destination byte that are not the
 * ROI's keep their values.
 */
#ifndef KPRCV_MORPH_BITS_H
#define KPRCV_MORPH_BITS_H

#include <kprcv/morph_compound.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Bytes that the state block and the work buffer of a 1-bit dilation or erosion need. Arguments and statuses are those
 * of kpriMorphologyBorderGetSize_8u_C1R. */
KprStatus kpriMorphologyBorderGetSize_1u_C1R(KprSize roiSize, KprSize maskSize, int* specSize, int* bufferSize);

/* Fills a state block, which serves the 1-bit forms alone. Arguments and statuses are those of
 * kpriMorphologyBorderInit_8u_C1R; the block must stay where it was filled. */
KprStatus kpriMorphologyBorderInit_1u_C1R(KprSize roiSize, const Kpr8u* mask, KprSize maskSize, KprMorphState* spec,
                                          Kpr8u* buffer);

/* Dilation: a pixel becomes set where at least one of the pixels under the taps is set.
 *
 * A mask without taps, and a mask of one pixel whatever its value, copies the source.
 *
 * src, dst         bytes of pixels; they must not overlap
 * srcStep, dstStep bytes from row to row, of any value that holds the bytes of a row
 * srcBitOffset, dstBitOffset   0 to 7: the pixel of the first byte at which the ROI begins
 * roiSize          pixels; at least 1 x 1
 * borderType       as of kpriDilateBorder_8u_C1R: kprBorderDefault stands for clear pixels
 * borderValue      of kprBorderConstant: 0 for clear pixels, anything else for set ones
 * spec, buffer     as the calls above left them
 *
 * Returns kprStatusOk, kprStatusNullPtr, kprStatusInPlaceUnsupported (src and dst are the same pointer),
 * kprStatusBadSize, kprStatusBadArg (a bit offset), kprStatusBadStep, kprStatusBadBorder. */
KprStatus kpriDilateBorder_1u_C1R(const Kpr8u* src, int srcStep, int srcBitOffset, Kpr8u* dst, int dstStep,
                                  int dstBitOffset, KprSize roiSize, KprBorderType borderType, Kpr8u borderValue,
                                  const KprMorphState* spec, Kpr8u* buffer);

/* Erosion: a pixel becomes set where all pixels under the taps are set. As kpriDilateBorder_1u_C1R, but that
 * kprBorderDefault stands for set pixels. */
KprStatus kpriErodeBorder_1u_C1R(const Kpr8u* src, int srcStep, int srcBitOffset, Kpr8u* dst, int dstStep,
                                 int dstBitOffset, KprSize roiSize, KprBorderType borderType, Kpr8u borderValue,
                                 const KprMorphState* spec, Kpr8u* buffer);

/* The same with 64-bit sizes and steps. The state block is that of kpriDilateInit_L, which serves all types; the buffer
 * is sized by kpriDilateGetBufferSize_L or kpriErodeGetBufferSize_L for kpr1u.
 *
 * borderValue is a pointer to one byte, of which 0 is a clear pixel; null is taken with any border but
 * kprBorderConstant.
 *
 * Returns as the 32-bit forms; but kprStatusSizeOverflow, after the sizes below 1, for a ROI beyond 0x7fffffff in
 * either direction, and after the border word kprStatusBadSize for a ROI of exactly 0x7fffffff, kprStatusBadStep for a
 * step of 0x7fffffff or more, kprStatusNullPtr for a null borderValue of a constant border. */
KprStatus kpriDilate_1u_C1R_L(const Kpr8u* src, Kpr64s srcStep, int srcBitOffset, Kpr8u* dst, Kpr64s dstStep,
                              int dstBitOffset, Kpr64s roiWidth, Kpr64s roiHeight, KprBorderType borderType,
                              const Kpr8u* borderValue, const KprMorphState* spec, Kpr8u* buffer);
KprStatus kpriErode_1u_C1R_L(const Kpr8u* src, Kpr64s srcStep, int srcBitOffset, Kpr8u* dst, Kpr64s dstStep,
                             int dstBitOffset, Kpr64s roiWidth, Kpr64s roiHeight, KprBorderType borderType,
                             const Kpr8u* borderValue, const KprMorphState* spec, Kpr8u* buffer);

/* Bytes that the state block and the work buffer of the operations below need. Arguments and statuses are those of
 * kpriMorphologyBorderGetSize_8u_C1R. */
KprStatus kpriMorphAdvGetSize_1u_C1R(KprSize roiSize, KprSize maskSize, int* specSize, int* bufferSize);

/* Fills a state block, which serves the 1-bit forms alone. Arguments and statuses are those of
 * kpriMorphologyBorderInit_8u_C1R; the block must stay where it was filled. */
KprStatus kpriMorphAdvInit_1u_C1R(KprSize roiSize, const Kpr8u* mask, KprSize maskSize, KprMorphAdvState* spec,
                                  Kpr8u* buffer);

/* Opening, closing, top-hat, black-hat and gradient, as kpriMorphOpenBorder_8u_C1R and its siblings. Of what is a
 * difference there, a pixel is
 *
 *     top-hat     set where src is set and the opening is not
 *     black-hat   set where the closing is set and src is not
 *     gradient    set where the dilation is set and the erosion is not
 *
 * dst may be the same image as src, with the same step and bit offset, but in the gradient.
 *
 * Returns kprStatusOk, kprStatusNullPtr, kprStatusInPlaceUnsupported (gradient), kprStatusBadSize, kprStatusBadArg (a
 * bit offset), kprStatusBadStep, kprStatusBadBorder. */
KprStatus kpriMorphOpenBorder_1u_C1R(const Kpr8u* src, int srcStep, int srcBitOffset, Kpr8u* dst, int dstStep,
                                     int dstBitOffset, KprSize roiSize, KprBorderType borderType, Kpr8u borderValue,
                                     const KprMorphAdvState* spec, Kpr8u* buffer);
KprStatus kpriMorphCloseBorder_1u_C1R(const Kpr8u* src, int srcStep, int srcBitOffset, Kpr8u* dst, int dstStep,
                                      int dstBitOffset, KprSize roiSize, KprBorderType borderType, Kpr8u borderValue,
                                      const KprMorphAdvState* spec, Kpr8u* buffer);
KprStatus kpriMorphTophatBorder_1u_C1R(const Kpr8u* src, int srcStep, int srcBitOffset, Kpr8u* dst, int dstStep,
                                       int dstBitOffset, KprSize roiSize, KprBorderType borderType, Kpr8u borderValue,
                                       const KprMorphAdvState* spec, Kpr8u* buffer);
KprStatus kpriMorphBlackhatBorder_1u_C1R(const Kpr8u* src, int srcStep, int srcBitOffset, Kpr8u* dst, int dstStep,
                                         int dstBitOffset, KprSize roiSize, KprBorderType borderType, Kpr8u borderValue,
                                         const KprMorphAdvState* spec, Kpr8u* buffer);
KprStatus kpriMorphGradientBorder_1u_C1R(const Kpr8u* src, int srcStep, int srcBitOffset, Kpr8u* dst, int dstStep,
                                         int dstBitOffset, KprSize roiSize, KprBorderType borderType, Kpr8u borderValue,
                                         const KprMorphAdvState* spec, Kpr8u* buffer);

/* The same with 64-bit sizes and steps. The state block is that of kpriMorphInit_L for kpr1u and one channel; the
 * buffer is sized by kpriMorphGetBufferSize_L for these. borderValue is a pointer to one byte, as of
 * kpriDilate_1u_C1R_L.
 *
 * They return what kpriMorphOpen_8u_C1R_L returns, and kprStatusBadArg for a bit offset before kprStatusBadStep. The
 * gradient returns what kpriDilate_1u_C1R_L returns, kprStatusInPlaceUnsupported included. */
KprStatus kpriMorphOpen_1u_C1R_L(const Kpr8u* src, Kpr64s srcStep, int srcBitOffset, Kpr8u* dst, Kpr64s dstStep,
                                 int dstBitOffset, Kpr64s roiWidth, Kpr64s roiHeight, KprBorderType borderType,
                                 const Kpr8u* borderValue, const KprMorphAdvState* spec, Kpr8u* buffer);
KprStatus kpriMorphClose_1u_C1R_L(const Kpr8u* src, Kpr64s srcStep, int srcBitOffset, Kpr8u* dst, Kpr64s dstStep,
                                  int dstBitOffset, Kpr64s roiWidth, Kpr64s roiHeight, KprBorderType borderType,
                                  const Kpr8u* borderValue, const KprMorphAdvState* spec, Kpr8u* buffer);
KprStatus kpriMorphTophat_1u_C1R_L(const Kpr8u* src, Kpr64s srcStep, int srcBitOffset, Kpr8u* dst, Kpr64s dstStep,
                                   int dstBitOffset, Kpr64s roiWidth, Kpr64s roiHeight, KprBorderType borderType,
                                   const Kpr8u* borderValue, const KprMorphAdvState* spec, Kpr8u* buffer);
KprStatus kpriMorphBlackhat_1u_C1R_L(const Kpr8u* src, Kpr64s srcStep, int srcBitOffset, Kpr8u* dst, Kpr64s dstStep,
                                     int dstBitOffset, Kpr64s roiWidth, Kpr64s roiHeight, KprBorderType borderType,
                                     const Kpr8u* borderValue, const KprMorphAdvState* spec, Kpr8u* buffer);
KprStatus kpriMorphGradient_1u_C1R_L(const Kpr8u* src, Kpr64s srcStep, int srcBitOffset, Kpr8u* dst, Kpr64s dstStep,
                                     int dstBitOffset, Kpr64s roiWidth, Kpr64s roiHeight, KprBorderType borderType,
                                     const Kpr8u* borderValue, const KprMorphAdvState* spec, Kpr8u* buffer);

#ifdef __cplusplus
}
#endif

#endif
