// Extrema of images and arrays, and of two arrays element by element.
//
// Every function returns kprStatusNullPtr for a null pointer, then kprStatusBadSize for an empty ROI (a length below
// 1). Results of C3R forms are arrays of three, one for each channel.
//
// The position of an extremum is the first in row-major order, and its value is the pixel there: of zeros of both signs
// the first one's. A NaN takes no part. Where there is nothing but NaN, the first pixel is the result.
#pragma once

#include <kprcv/types.h>  // before the functions are hidden: the types are not

#include "frame/api.h"

extern "C" {

KprStatus kpriMin_8u_C1R(const Kpr8u* src, int srcStep, KprSize roiSize, Kpr8u* min) KPR_TAGGED(kpriMin_8u_C1R);
KprStatus kpriMin_8u_C3R(const Kpr8u* src, int srcStep, KprSize roiSize, Kpr8u* min) KPR_TAGGED(kpriMin_8u_C3R);
KprStatus kpriMin_16u_C1R(const Kpr16u* src, int srcStep, KprSize roiSize, Kpr16u* min) KPR_TAGGED(kpriMin_16u_C1R);
KprStatus kpriMin_16u_C3R(const Kpr16u* src, int srcStep, KprSize roiSize, Kpr16u* min) KPR_TAGGED(kpriMin_16u_C3R);
KprStatus kpriMin_32f_C1R(const Kpr32f* src, int srcStep, KprSize roiSize, Kpr32f* min) KPR_TAGGED(kpriMin_32f_C1R);
KprStatus kpriMin_32f_C3R(const Kpr32f* src, int srcStep, KprSize roiSize, Kpr32f* min) KPR_TAGGED(kpriMin_32f_C3R);

KprStatus kpriMax_8u_C1R(const Kpr8u* src, int srcStep, KprSize roiSize, Kpr8u* max) KPR_TAGGED(kpriMax_8u_C1R);
KprStatus kpriMax_8u_C3R(const Kpr8u* src, int srcStep, KprSize roiSize, Kpr8u* max) KPR_TAGGED(kpriMax_8u_C3R);
KprStatus kpriMax_16u_C1R(const Kpr16u* src, int srcStep, KprSize roiSize, Kpr16u* max) KPR_TAGGED(kpriMax_16u_C1R);
KprStatus kpriMax_16u_C3R(const Kpr16u* src, int srcStep, KprSize roiSize, Kpr16u* max) KPR_TAGGED(kpriMax_16u_C3R);
KprStatus kpriMax_32f_C1R(const Kpr32f* src, int srcStep, KprSize roiSize, Kpr32f* max) KPR_TAGGED(kpriMax_32f_C1R);
KprStatus kpriMax_32f_C3R(const Kpr32f* src, int srcStep, KprSize roiSize, Kpr32f* max) KPR_TAGGED(kpriMax_32f_C3R);

KprStatus kpriMinMax_8u_C1R(const Kpr8u* src, int srcStep, KprSize roiSize, Kpr8u* min, Kpr8u* max)
    KPR_TAGGED(kpriMinMax_8u_C1R);
KprStatus kpriMinMax_8u_C3R(const Kpr8u* src, int srcStep, KprSize roiSize, Kpr8u* min, Kpr8u* max)
    KPR_TAGGED(kpriMinMax_8u_C3R);
KprStatus kpriMinMax_16u_C1R(const Kpr16u* src, int srcStep, KprSize roiSize, Kpr16u* min, Kpr16u* max)
    KPR_TAGGED(kpriMinMax_16u_C1R);
KprStatus kpriMinMax_16u_C3R(const Kpr16u* src, int srcStep, KprSize roiSize, Kpr16u* min, Kpr16u* max)
    KPR_TAGGED(kpriMinMax_16u_C3R);
KprStatus kpriMinMax_32f_C1R(const Kpr32f* src, int srcStep, KprSize roiSize, Kpr32f* min, Kpr32f* max)
    KPR_TAGGED(kpriMinMax_32f_C1R);
KprStatus kpriMinMax_32f_C3R(const Kpr32f* src, int srcStep, KprSize roiSize, Kpr32f* min, Kpr32f* max)
    KPR_TAGGED(kpriMinMax_32f_C3R);

KprStatus kpriMinIndx_8u_C1R(const Kpr8u* src, int srcStep, KprSize roiSize, Kpr8u* min, int* x, int* y)
    KPR_TAGGED(kpriMinIndx_8u_C1R);
KprStatus kpriMinIndx_8u_C3R(const Kpr8u* src, int srcStep, KprSize roiSize, Kpr8u* min, int* x, int* y)
    KPR_TAGGED(kpriMinIndx_8u_C3R);
KprStatus kpriMinIndx_16u_C1R(const Kpr16u* src, int srcStep, KprSize roiSize, Kpr16u* min, int* x, int* y)
    KPR_TAGGED(kpriMinIndx_16u_C1R);
KprStatus kpriMinIndx_16u_C3R(const Kpr16u* src, int srcStep, KprSize roiSize, Kpr16u* min, int* x, int* y)
    KPR_TAGGED(kpriMinIndx_16u_C3R);
KprStatus kpriMinIndx_32f_C1R(const Kpr32f* src, int srcStep, KprSize roiSize, Kpr32f* min, int* x, int* y)
    KPR_TAGGED(kpriMinIndx_32f_C1R);
KprStatus kpriMinIndx_32f_C3R(const Kpr32f* src, int srcStep, KprSize roiSize, Kpr32f* min, int* x, int* y)
    KPR_TAGGED(kpriMinIndx_32f_C3R);

KprStatus kpriMaxIndx_8u_C1R(const Kpr8u* src, int srcStep, KprSize roiSize, Kpr8u* max, int* x, int* y)
    KPR_TAGGED(kpriMaxIndx_8u_C1R);
KprStatus kpriMaxIndx_8u_C3R(const Kpr8u* src, int srcStep, KprSize roiSize, Kpr8u* max, int* x, int* y)
    KPR_TAGGED(kpriMaxIndx_8u_C3R);
KprStatus kpriMaxIndx_16u_C1R(const Kpr16u* src, int srcStep, KprSize roiSize, Kpr16u* max, int* x, int* y)
    KPR_TAGGED(kpriMaxIndx_16u_C1R);
KprStatus kpriMaxIndx_16u_C3R(const Kpr16u* src, int srcStep, KprSize roiSize, Kpr16u* max, int* x, int* y)
    KPR_TAGGED(kpriMaxIndx_16u_C3R);
KprStatus kpriMaxIndx_32f_C1R(const Kpr32f* src, int srcStep, KprSize roiSize, Kpr32f* max, int* x, int* y)
    KPR_TAGGED(kpriMaxIndx_32f_C1R);
KprStatus kpriMaxIndx_32f_C3R(const Kpr32f* src, int srcStep, KprSize roiSize, Kpr32f* max, int* x, int* y)
    KPR_TAGGED(kpriMaxIndx_32f_C3R);

KprStatus kprsMax_32f(const Kpr32f* src, int len, Kpr32f* max) KPR_TAGGED(kprsMax_32f);
KprStatus kprsMaxIndx_32f(const Kpr32f* src, int len, Kpr32f* max, int* index) KPR_TAGGED(kprsMaxIndx_32f);

// dst = src1 < src2 ? src1 : src2, and src1 > src2 ? src1 : src2: the second where one is a NaN or both are zeros. They
// may work in place.
KprStatus kprsMinEvery_8u(const Kpr8u* src1, const Kpr8u* src2, Kpr8u* dst, int len) KPR_TAGGED(kprsMinEvery_8u);
KprStatus kprsMinEvery_16u(const Kpr16u* src1, const Kpr16u* src2, Kpr16u* dst, int len) KPR_TAGGED(kprsMinEvery_16u);
KprStatus kprsMinEvery_32f(const Kpr32f* src1, const Kpr32f* src2, Kpr32f* dst, int len) KPR_TAGGED(kprsMinEvery_32f);
KprStatus kprsMinEvery_64f(const Kpr64f* src1, const Kpr64f* src2, Kpr64f* dst, int len) KPR_TAGGED(kprsMinEvery_64f);
KprStatus kprsMaxEvery_8u(const Kpr8u* src1, const Kpr8u* src2, Kpr8u* dst, int len) KPR_TAGGED(kprsMaxEvery_8u);
KprStatus kprsMaxEvery_16u(const Kpr16u* src1, const Kpr16u* src2, Kpr16u* dst, int len) KPR_TAGGED(kprsMaxEvery_16u);
KprStatus kprsMaxEvery_32f(const Kpr32f* src1, const Kpr32f* src2, Kpr32f* dst, int len) KPR_TAGGED(kprsMaxEvery_32f);
KprStatus kprsMaxEvery_64f(const Kpr64f* src1, const Kpr64f* src2, Kpr64f* dst, int len) KPR_TAGGED(kprsMaxEvery_64f);
}
