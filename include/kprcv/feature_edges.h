/* Edges: maps of them, and the joining of colour gradients. */
#ifndef KPRCV_FEATURE_EDGES_H
#define KPRCV_FEATURE_EDGES_H

#include <kprcv/types.h>

#ifdef __cplusplus
extern "C" {
#endif

KprStatus kpriCanny_16s8u_C1R(const Kpr16s* dx, int dxStep, const Kpr16s* dy, int dyStep, Kpr8u* dst, int dstStep,
                              KprSize roiSize, Kpr32f lowThreshold, Kpr32f highThreshold, Kpr8u* buffer);
KprStatus kpriCanny_32f8u_C1R(const Kpr32f* dx, int dxStep, const Kpr32f* dy, int dyStep, Kpr8u* dst, int dstStep,
                              KprSize roiSize, Kpr32f lowThreshold, Kpr32f highThreshold, Kpr8u* buffer);
KprStatus kpriCanny_16s8u_C1R_L(const Kpr16s* dx, Kpr64s dxStep, const Kpr16s* dy, Kpr64s dyStep, Kpr8u* dst,
                                Kpr64s dstStep, KprSizeL roiSize, Kpr32f lowThreshold, Kpr32f highThreshold, int norm,
                                Kpr8u* buffer);
KprStatus kpriCanny_32f8u_C1R_L(const Kpr32f* dx, Kpr64s dxStep, const Kpr32f* dy, Kpr64s dyStep, Kpr8u* dst,
                                Kpr64s dstStep, KprSizeL roiSize, Kpr32f lowThreshold, Kpr32f highThreshold, int norm,
                                Kpr8u* buffer);
KprStatus kpriCannyGetSize(KprSize roiSize, int* result);
KprStatus kpriCannyGetSize_L(Kpr64s width, Kpr64s height, Kpr64s* result);
KprStatus kpriCannyBorder_8u_C1R(const Kpr8u* src, int srcStep, Kpr8u* dst, int dstStep, KprSize roiSize,
                                 int filterType, KprMaskSize maskSize, KprBorderType borderType, Kpr8u borderValue,
                                 Kpr32f lowThreshold, Kpr32f highThreshold, int norm, Kpr8u* buffer);
KprStatus kpriCannyBorderGetSize(KprSize roiSize, int filterType, KprMaskSize maskSize, int norm, int* result);

KprStatus kpriGradientColorToGray_8u_C3C1R(const Kpr8u* src, int srcStep, Kpr8u* dst, int dstStep, KprSize roiSize,
                                           int norm);
KprStatus kpriGradientColorToGray_16u_C3C1R(const Kpr16u* src, int srcStep, Kpr16u* dst, int dstStep, KprSize roiSize,
                                            int norm);
KprStatus kpriGradientColorToGray_32f_C3C1R(const Kpr32f* src, int srcStep, Kpr32f* dst, int dstStep, KprSize roiSize,
                                            int norm);

#ifdef __cplusplus
}
#endif

#endif
