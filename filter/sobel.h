// First derivatives for the families that look for edges, corners and motion. They are called like exported filters.
//
//     SobelVert        1 0 -1 across, 1 2 1 down       1 2 0 -2 -1 across, 1 4 6 4 1 down        left minus right
//     SobelNegVert     -1 0 1 across, 1 2 1 down       -1 -2 0 2 1 across, 1 4 6 4 1 down        right minus left
//     SobelHoriz       1 2 1 across, -1 0 1 down       1 4 6 4 1 across, -1 -2 0 2 1 down        below minus above
//     ScharrVertMask   -1 0 1 across, 3 10 3 down      none                                      right minus left
//     ScharrHorizMask  3 10 3 across, -1 0 1 down      none                                      below minus above
//
// 8u16s is exact. 32f sums across, then down, in the order of the taps by fused steps.
//
// Checks, in order: null pointers, the ROI, dstStep for being a multiple, the mask, the border word. Steps are not
// checked for holding their rows.
//
// The buffer is that of the sizing call; 8u16s works without one.
#pragma once

#include <kprcv/types.h>  // before the functions are hidden: the types are not

#include "frame/api.h"

extern "C" {

KprStatus kpriFilterSobelVertBorder_8u16s_C1R(const Kpr8u* src, int srcStep, Kpr16s* dst, int dstStep, KprSize roiSize,
                                              KprMaskSize maskSize, KprBorderType borderType, Kpr8u borderValue,
                                              Kpr8u* buffer) KPR_TAGGED(kpriFilterSobelVertBorder_8u16s_C1R);
KprStatus kpriFilterSobelVertBorder_32f_C1R(const Kpr32f* src, int srcStep, Kpr32f* dst, int dstStep, KprSize roiSize,
                                            KprMaskSize maskSize, KprBorderType borderType, Kpr32f borderValue,
                                            Kpr8u* buffer) KPR_TAGGED(kpriFilterSobelVertBorder_32f_C1R);
KprStatus kpriFilterSobelHorizBorder_8u16s_C1R(const Kpr8u* src, int srcStep, Kpr16s* dst, int dstStep, KprSize roiSize,
                                               KprMaskSize maskSize, KprBorderType borderType, Kpr8u borderValue,
                                               Kpr8u* buffer) KPR_TAGGED(kpriFilterSobelHorizBorder_8u16s_C1R);
KprStatus kpriFilterSobelHorizBorder_32f_C1R(const Kpr32f* src, int srcStep, Kpr32f* dst, int dstStep, KprSize roiSize,
                                             KprMaskSize maskSize, KprBorderType borderType, Kpr32f borderValue,
                                             Kpr8u* buffer) KPR_TAGGED(kpriFilterSobelHorizBorder_32f_C1R);
KprStatus kpriFilterSobelNegVertBorder_8u16s_C1R(const Kpr8u* src, int srcStep, Kpr16s* dst, int dstStep,
                                                 KprSize roiSize, KprMaskSize maskSize, KprBorderType borderType,
                                                 Kpr8u borderValue, Kpr8u* buffer)
    KPR_TAGGED(kpriFilterSobelNegVertBorder_8u16s_C1R);
KprStatus kpriFilterSobelNegVertBorder_32f_C1R(const Kpr32f* src, int srcStep, Kpr32f* dst, int dstStep,
                                               KprSize roiSize, KprMaskSize maskSize, KprBorderType borderType,
                                               Kpr32f borderValue, Kpr8u* buffer)
    KPR_TAGGED(kpriFilterSobelNegVertBorder_32f_C1R);
KprStatus kpriFilterScharrVertMaskBorder_8u16s_C1R(const Kpr8u* src, int srcStep, Kpr16s* dst, int dstStep,
                                                   KprSize roiSize, KprMaskSize maskSize, KprBorderType borderType,
                                                   Kpr8u borderValue, Kpr8u* buffer)
    KPR_TAGGED(kpriFilterScharrVertMaskBorder_8u16s_C1R);
KprStatus kpriFilterScharrVertMaskBorder_32f_C1R(const Kpr32f* src, int srcStep, Kpr32f* dst, int dstStep,
                                                 KprSize roiSize, KprMaskSize maskSize, KprBorderType borderType,
                                                 Kpr32f borderValue, Kpr8u* buffer)
    KPR_TAGGED(kpriFilterScharrVertMaskBorder_32f_C1R);
KprStatus kpriFilterScharrHorizMaskBorder_8u16s_C1R(const Kpr8u* src, int srcStep, Kpr16s* dst, int dstStep,
                                                    KprSize roiSize, KprMaskSize maskSize, KprBorderType borderType,
                                                    Kpr8u borderValue, Kpr8u* buffer)
    KPR_TAGGED(kpriFilterScharrHorizMaskBorder_8u16s_C1R);
KprStatus kpriFilterScharrHorizMaskBorder_32f_C1R(const Kpr32f* src, int srcStep, Kpr32f* dst, int dstStep,
                                                  KprSize roiSize, KprMaskSize maskSize, KprBorderType borderType,
                                                  Kpr32f borderValue, Kpr8u* buffer)
    KPR_TAGGED(kpriFilterScharrHorizMaskBorder_32f_C1R);

// The buffer's bytes: 32 from kpr8u to kpr16s, else the rows of a ring. Null, ROI, mask (33 or 55, for all filters),
// the pair of types (kprStatusBadDataType) and a number of channels other than 1 (kprStatusBadCoi), in this order.
KprStatus kpriFilterSobelVertBorderGetBufferSize(KprSize roiSize, KprMaskSize maskSize, KprDataType srcType,
                                                 KprDataType dstType, int numChannels, int* bufferSize)
    KPR_TAGGED(kpriFilterSobelVertBorderGetBufferSize);
KprStatus kpriFilterSobelHorizBorderGetBufferSize(KprSize roiSize, KprMaskSize maskSize, KprDataType srcType,
                                                  KprDataType dstType, int numChannels, int* bufferSize)
    KPR_TAGGED(kpriFilterSobelHorizBorderGetBufferSize);
KprStatus kpriFilterSobelNegVertBorderGetBufferSize(KprSize roiSize, KprMaskSize maskSize, KprDataType srcType,
                                                    KprDataType dstType, int numChannels, int* bufferSize)
    KPR_TAGGED(kpriFilterSobelNegVertBorderGetBufferSize);
KprStatus kpriFilterScharrVertMaskBorderGetBufferSize(KprSize roiSize, KprMaskSize maskSize, KprDataType srcType,
                                                      KprDataType dstType, int numChannels, int* bufferSize)
    KPR_TAGGED(kpriFilterScharrVertMaskBorderGetBufferSize);
KprStatus kpriFilterScharrHorizMaskBorderGetBufferSize(KprSize roiSize, KprMaskSize maskSize, KprDataType srcType,
                                                       KprDataType dstType, int numChannels, int* bufferSize)
    KPR_TAGGED(kpriFilterScharrHorizMaskBorderGetBufferSize);
}
