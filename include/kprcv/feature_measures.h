/* Corner measures: eigenvalues of the structure tensor, the response of Harris. */
#ifndef KPRCV_FEATURE_MEASURES_H
#define KPRCV_FEATURE_MEASURES_H

#include <kprcv/types.h>

#ifdef __cplusplus
extern "C" {
#endif

KprStatus kpriMinEigenVal_8u32f_C1R(const Kpr8u* src, int srcStep, Kpr32f* dst, int dstStep, KprSize roiSize,
                                    int kernelType, int apertureSize, int avgWindow, Kpr8u* buffer);
KprStatus kpriMinEigenVal_32f_C1R(const Kpr32f* src, int srcStep, Kpr32f* dst, int dstStep, KprSize roiSize,
                                  int kernelType, int apertureSize, int avgWindow, Kpr8u* buffer);
KprStatus kpriMinEigenValBorder_8u32f_C1R(const Kpr8u* src, int srcStep, Kpr32f* dst, int dstStep, KprSize roiSize,
                                          int kernelType, int apertureSize, int avgWindow, KprBorderType borderType,
                                          Kpr8u borderValue, Kpr8u* buffer);
KprStatus kpriMinEigenValBorder_32f_C1R(const Kpr32f* src, int srcStep, Kpr32f* dst, int dstStep, KprSize roiSize,
                                        int kernelType, int apertureSize, int avgWindow, KprBorderType borderType,
                                        Kpr32f borderValue, Kpr8u* buffer);
KprStatus kpriMinEigenValGetBufferSize_8u32f_C1R(KprSize roiSize, int apertureSize, int avgWindow, int* result);
KprStatus kpriMinEigenValGetBufferSize_32f_C1R(KprSize roiSize, int apertureSize, int avgWindow, int* result);
KprStatus kpriEigenValsVecs_8u32f_C1R(const Kpr8u* src, int srcStep, Kpr32f* dst, int dstStep, KprSize roiSize,
                                      int kernelType, int apertureSize, int avgWindow, Kpr8u* buffer);
KprStatus kpriEigenValsVecs_32f_C1R(const Kpr32f* src, int srcStep, Kpr32f* dst, int dstStep, KprSize roiSize,
                                    int kernelType, int apertureSize, int avgWindow, Kpr8u* buffer);
KprStatus kpriEigenValsVecsBorder_8u32f_C1R(const Kpr8u* src, int srcStep, Kpr32f* dst, int dstStep, KprSize roiSize,
                                            int kernelType, int apertureSize, int avgWindow, KprBorderType borderType,
                                            Kpr8u borderValue, Kpr8u* buffer);
KprStatus kpriEigenValsVecsBorder_32f_C1R(const Kpr32f* src, int srcStep, Kpr32f* dst, int dstStep, KprSize roiSize,
                                          int kernelType, int apertureSize, int avgWindow, KprBorderType borderType,
                                          Kpr32f borderValue, Kpr8u* buffer);
KprStatus kpriEigenValsVecsGetBufferSize_8u32f_C1R(KprSize roiSize, int apertureSize, int avgWindow, int* result);
KprStatus kpriEigenValsVecsGetBufferSize_32f_C1R(KprSize roiSize, int apertureSize, int avgWindow, int* result);
KprStatus kpriHarrisCorner_8u32f_C1R(const Kpr8u* src, int srcStep, Kpr32f* dst, int dstStep, KprSize roiSize,
                                     int filterType, KprMaskSize filterMask, int avgWindow, Kpr32f k, Kpr32f scale,
                                     KprBorderType borderType, Kpr8u borderValue, Kpr8u* buffer);
KprStatus kpriHarrisCorner_32f_C1R(const Kpr32f* src, int srcStep, Kpr32f* dst, int dstStep, KprSize roiSize,
                                   int filterType, KprMaskSize filterMask, int avgWindow, Kpr32f k, Kpr32f scale,
                                   KprBorderType borderType, Kpr32f borderValue, Kpr8u* buffer);
KprStatus kpriHarrisCornerGetBufferSize(KprSize roiSize, KprMaskSize filterMask, int avgWindow, KprDataType dataType,
                                        int numChannels, int* result);

#ifdef __cplusplus
}
#endif

#endif
