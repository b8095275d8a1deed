/* Corner measures: eigenvalues of the structure tensor, the response of Harris. */
#ifndef KPRCV_FEATURE_MEASURES_H
#define KPRCV_FEATURE_MEASURES_H

#include <kprcv/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/* The smaller eigenvalue of the structure tensor: large at corners, small on edges, 0 in flat areas.
 *
 * A, B and C are the means of dx * dx, dy * dy and dx * dy over a window: the sum, across and then down, times the
 * float nearest to 1/9 or 1/25. With s = 1.0f / 4080 for aperture 3 and 1.0f / 65280 for aperture 5, times 0.6125f for
 * kernel 1:
 *     dst = (0.5f * s) * ((A + B) - sqrt(fma(A - B, A - B, 4 * (C * C))))
 *
 * kernelType      0  Sobel, dx left minus right        apertures 3 and 5
 *                 1  Scharr                            aperture 3
 *                 2  Sobel, dx right minus left        apertures 3 and 5
 * apertureSize    side of the derivatives' kernels: sums of 32f go across and then down by fused steps; 8u is exact
 * avgWindow       side of the window: 3 or 5
 * borderType      for the derivatives: kprBorderReplicate (the forms without it), kprBorderMirror or kprBorderConstant
 *                 with any flags, kprBorderDefault, which is as kprBorderReplicate, or any word with all four flags;
 *                 bits 8 to 11 mean nothing. Products beyond the ROI are made by the base mode on all sides, flagged or
 *                 not, with borderValue for kprBorderConstant and by kprBorderMirror for a word with all four flags
 * dst             one float a pixel; not the source
 * buffer          working memory of the size that the sizing call tells, at any address
 *
 * kprStatusNullPtr; kprStatusBadSize; kprStatusBadStep; kprStatusStepNotMultiple; kprStatusBadArg for kernelType;
 * kprStatusBadSize for apertureSize or avgWindow; kprStatusBadBorder. */
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

/* The bytes of the buffer: kprStatusNullPtr; kprStatusBadSize for the ROI, the aperture or the window;
 * kprStatusSizeOverflow. */
KprStatus kpriMinEigenValGetBufferSize_8u32f_C1R(KprSize roiSize, int apertureSize, int avgWindow, int* result);
KprStatus kpriMinEigenValGetBufferSize_32f_C1R(KprSize roiSize, int apertureSize, int avgWindow, int* result);

/* Both eigenvalues and their vectors: six floats a pixel, l1, l2, x1, y1, x2, y2, the larger eigenvalue first.
 * Arguments as above.
 *
 * With a = A * s, b = B * s, c = C * s, t = c * c, m = 0.001f * max(a, b), every operation rounded once:
 *
 *     all six are 0           where m > a * b - t or m > min(a, b): no corner
 *     l1, l2                  0.5f * ((a + b) + q), 0.5f * ((a + b) - q), with q = sqrt((a - b) * (a - b) + 4 * t)
 *     the vectors             (0, 1) and (1, 0) where m > |c|; else (c * n, u * n) with u = l - a and
 *                             n = 1 / max(sqrt(t + u * u), 1.1920929e-7f)
 *
 * dstStep is checked against 4 bytes a pixel, though a row has 24. */
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

/* As those above. */
KprStatus kpriEigenValsVecsGetBufferSize_8u32f_C1R(KprSize roiSize, int apertureSize, int avgWindow, int* result);
KprStatus kpriEigenValsVecsGetBufferSize_32f_C1R(KprSize roiSize, int apertureSize, int avgWindow, int* result);

/* The response of Harris: positive at corners, negative on edges.
 *
 * A, B and C are the means of dx * dx, dy * dy and dx * dy over a window: the sum, across and then down, divided by the
 * window's area. With t = A + B:
 *
 *     dst = S * fma(-t, k * t, fma(A, B, -(C * C)))        S the float of avgWindow^4 * scale, formed in doubles
 *
 * filterType     kprFilterSobel (masks 33 and 55), kprFilterScharr (33) or kprFilterCentralDifference (33)
 * avgWindow      side of the window, 1 or more; of an even one the larger half lies right and below
 * k, scale       any numbers
 * borderType     kprBorderReplicate, kprBorderMirror or kprBorderConstant with any flags, or kprBorderInMem. On a side
 *                whose flag is set, derivatives too are formed beyond the ROI: pixels are read up to 1 or 2 and the
 *                window's half beyond it. On other sides products continue by the base mode, with 0 for
 *                kprBorderConstant
 * borderValue    of pixels, for kprBorderConstant
 * dst            not the source
 * buffer         working memory of the size that the sizing call tells, at any address
 *
 * kprStatusNullPtr; kprStatusInPlaceUnsupported where src is dst; kprStatusBadSize; kprStatusStepNotMultiple for
 * dstStep; kprStatusBadAlgorithm for filterType; kprStatusBadMaskSize; kprStatusBadBorder; kprStatusBadSize for
 * avgWindow; kprStatusBadStep for a negative step. Steps are not checked for holding their rows. */
KprStatus kpriHarrisCorner_8u32f_C1R(const Kpr8u* src, int srcStep, Kpr32f* dst, int dstStep, KprSize roiSize,
                                     int filterType, KprMaskSize filterMask, int avgWindow, Kpr32f k, Kpr32f scale,
                                     KprBorderType borderType, Kpr8u borderValue, Kpr8u* buffer);
KprStatus kpriHarrisCorner_32f_C1R(const Kpr32f* src, int srcStep, Kpr32f* dst, int dstStep, KprSize roiSize,
                                   int filterType, KprMaskSize filterMask, int avgWindow, Kpr32f k, Kpr32f scale,
                                   KprBorderType borderType, Kpr32f borderValue, Kpr8u* buffer);

/* The bytes of its buffer; dataType is kpr8u or kpr32f, numChannels 1. kprStatusNullPtr; kprStatusBadSize;
 * kprStatusBadMaskSize; kprStatusBadDataType; kprStatusBadChannel; kprStatusBadSize for avgWindow;
 * kprStatusSizeOverflow. */
KprStatus kpriHarrisCornerGetBufferSize(KprSize roiSize, KprMaskSize filterMask, int avgWindow, KprDataType dataType,
                                        int numChannels, int* result);

#ifdef __cplusplus
}
#endif

#endif
