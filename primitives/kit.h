// The kit of image and array primitives that every family stands on: filling, copying, arithmetic, thresholds.
//
// Image forms take steps in bytes and trust them: callers have checked theirs. Null pointers give kprStatusNullPtr,
// sizes and lengths below 1 kprStatusBadSize, in this order. Where the elements are of one type, the destination may be
// a source; no images overlap otherwise. Array forms count `len` elements.
#pragma once

#include "frame/api.h"

extern "C" {

// ---- filling

// Every pixel becomes `value`, or the tuple of one value for each channel.
KprStatus kpriSet_8u_C1R(Kpr8u value, Kpr8u* dst, int dstStep, KprSize roiSize) KPR_TAGGED(kpriSet_8u_C1R);
KprStatus kpriSet_16s_C1R(Kpr16s value, Kpr16s* dst, int dstStep, KprSize roiSize) KPR_TAGGED(kpriSet_16s_C1R);
KprStatus kpriSet_16s_C3R(const Kpr16s* value, Kpr16s* dst, int dstStep, KprSize roiSize) KPR_TAGGED(kpriSet_16s_C3R);
KprStatus kpriSet_16s_C4R(const Kpr16s* value, Kpr16s* dst, int dstStep, KprSize roiSize) KPR_TAGGED(kpriSet_16s_C4R);
KprStatus kpriSet_32s_C3R(const Kpr32s* value, Kpr32s* dst, int dstStep, KprSize roiSize) KPR_TAGGED(kpriSet_32s_C3R);

KprStatus kprsSet_8u(Kpr8u value, Kpr8u* dst, int len) KPR_TAGGED(kprsSet_8u);
KprStatus kprsSet_16s(Kpr16s value, Kpr16s* dst, int len) KPR_TAGGED(kprsSet_16s);
KprStatus kprsSet_32s(Kpr32s value, Kpr32s* dst, int len) KPR_TAGGED(kprsSet_32s);
KprStatus kprsSet_32f(Kpr32f value, Kpr32f* dst, int len) KPR_TAGGED(kprsSet_32f);

KprStatus kprsZero_8u(Kpr8u* dst, int len) KPR_TAGGED(kprsZero_8u);
KprStatus kprsZero_16s(Kpr16s* dst, int len) KPR_TAGGED(kprsZero_16s);
KprStatus kprsZero_32s(Kpr32s* dst, int len) KPR_TAGGED(kprsZero_32s);
KprStatus kprsZero_32f(Kpr32f* dst, int len) KPR_TAGGED(kprsZero_32f);

// ---- copying

KprStatus kpriCopy_8u_C1R(const Kpr8u* src, int srcStep, Kpr8u* dst, int dstStep, KprSize roiSize)
    KPR_TAGGED(kpriCopy_8u_C1R);
KprStatus kpriCopy_8u_C3R(const Kpr8u* src, int srcStep, Kpr8u* dst, int dstStep, KprSize roiSize)
    KPR_TAGGED(kpriCopy_8u_C3R);
KprStatus kpriCopy_8u_C4R(const Kpr8u* src, int srcStep, Kpr8u* dst, int dstStep, KprSize roiSize)
    KPR_TAGGED(kpriCopy_8u_C4R);
KprStatus kpriCopy_16s_C1R(const Kpr16s* src, int srcStep, Kpr16s* dst, int dstStep, KprSize roiSize)
    KPR_TAGGED(kpriCopy_16s_C1R);
KprStatus kpriCopy_16s_C3R(const Kpr16s* src, int srcStep, Kpr16s* dst, int dstStep, KprSize roiSize)
    KPR_TAGGED(kpriCopy_16s_C3R);
KprStatus kpriCopy_16s_C4R(const Kpr16s* src, int srcStep, Kpr16s* dst, int dstStep, KprSize roiSize)
    KPR_TAGGED(kpriCopy_16s_C4R);
KprStatus kpriCopy_16u_C1R(const Kpr16u* src, int srcStep, Kpr16u* dst, int dstStep, KprSize roiSize)
    KPR_TAGGED(kpriCopy_16u_C1R);
KprStatus kpriCopy_32f_C1R(const Kpr32f* src, int srcStep, Kpr32f* dst, int dstStep, KprSize roiSize)
    KPR_TAGGED(kpriCopy_32f_C1R);
KprStatus kpriCopy_32f_C3R(const Kpr32f* src, int srcStep, Kpr32f* dst, int dstStep, KprSize roiSize)
    KPR_TAGGED(kpriCopy_32f_C3R);
KprStatus kpriCopy_32f_C4R(const Kpr32f* src, int srcStep, Kpr32f* dst, int dstStep, KprSize roiSize)
    KPR_TAGGED(kpriCopy_32f_C4R);
KprStatus kpriCopy_8u_C1R_L(const Kpr8u* src, Kpr64s srcStep, Kpr8u* dst, Kpr64s dstStep, KprSizeL roiSize)
    KPR_TAGGED(kpriCopy_8u_C1R_L);

// The first three channels of four; the fourth one's bytes in the destination are not written.
KprStatus kpriCopy_8u_AC4R(const Kpr8u* src, int srcStep, Kpr8u* dst, int dstStep, KprSize roiSize)
    KPR_TAGGED(kpriCopy_8u_AC4R);
KprStatus kpriCopy_16s_AC4R(const Kpr16s* src, int srcStep, Kpr16s* dst, int dstStep, KprSize roiSize)
    KPR_TAGGED(kpriCopy_16s_AC4R);
KprStatus kpriCopy_32f_AC4R(const Kpr32f* src, int srcStep, Kpr32f* dst, int dstStep, KprSize roiSize)
    KPR_TAGGED(kpriCopy_32f_AC4R);

KprStatus kprsCopy_8u(const Kpr8u* src, Kpr8u* dst, int len) KPR_TAGGED(kprsCopy_8u);
KprStatus kprsCopy_16s(const Kpr16s* src, Kpr16s* dst, int len) KPR_TAGGED(kprsCopy_16s);
KprStatus kprsCopy_32f(const Kpr32f* src, Kpr32f* dst, int len) KPR_TAGGED(kprsCopy_32f);

// ---- differences: src2 - src1

// With d the exact difference, of unsigned elements 0 where it is negative:
//     scaleFactor from 1 to the element's width    d / 2^scaleFactor to the nearest integer, ties to even
//     0 or negative                                d * 2^-scaleFactor
//     above the width                              0, and the sources are not read
// each saturated to the element's range.
KprStatus kpriSub_8u_C1RSfs(const Kpr8u* src1, int src1Step, const Kpr8u* src2, int src2Step, Kpr8u* dst, int dstStep,
                            KprSize roiSize, int scaleFactor) KPR_TAGGED(kpriSub_8u_C1RSfs);
KprStatus kpriSub_8u_C3RSfs(const Kpr8u* src1, int src1Step, const Kpr8u* src2, int src2Step, Kpr8u* dst, int dstStep,
                            KprSize roiSize, int scaleFactor) KPR_TAGGED(kpriSub_8u_C3RSfs);
KprStatus kpriSub_8u_C4RSfs(const Kpr8u* src1, int src1Step, const Kpr8u* src2, int src2Step, Kpr8u* dst, int dstStep,
                            KprSize roiSize, int scaleFactor) KPR_TAGGED(kpriSub_8u_C4RSfs);
KprStatus kpriSub_16s_C1RSfs(const Kpr16s* src1, int src1Step, const Kpr16s* src2, int src2Step, Kpr16s* dst,
                             int dstStep, KprSize roiSize, int scaleFactor) KPR_TAGGED(kpriSub_16s_C1RSfs);
KprStatus kpriSub_16u_C1RSfs(const Kpr16u* src1, int src1Step, const Kpr16u* src2, int src2Step, Kpr16u* dst,
                             int dstStep, KprSize roiSize, int scaleFactor) KPR_TAGGED(kpriSub_16u_C1RSfs);

KprStatus kpriSub_8u_C1RSfs_L(const Kpr8u* src1, Kpr64s src1Step, const Kpr8u* src2, Kpr64s src2Step, Kpr8u* dst,
                              Kpr64s dstStep, KprSizeL roiSize, int scaleFactor) KPR_TAGGED(kpriSub_8u_C1RSfs_L);
KprStatus kpriSub_8u_C3RSfs_L(const Kpr8u* src1, Kpr64s src1Step, const Kpr8u* src2, Kpr64s src2Step, Kpr8u* dst,
                              Kpr64s dstStep, KprSizeL roiSize, int scaleFactor) KPR_TAGGED(kpriSub_8u_C3RSfs_L);
KprStatus kpriSub_8u_C4RSfs_L(const Kpr8u* src1, Kpr64s src1Step, const Kpr8u* src2, Kpr64s src2Step, Kpr8u* dst,
                              Kpr64s dstStep, KprSizeL roiSize, int scaleFactor) KPR_TAGGED(kpriSub_8u_C4RSfs_L);
KprStatus kpriSub_16s_C1RSfs_L(const Kpr16s* src1, Kpr64s src1Step, const Kpr16s* src2, Kpr64s src2Step, Kpr16s* dst,
                               Kpr64s dstStep, KprSizeL roiSize, int scaleFactor) KPR_TAGGED(kpriSub_16s_C1RSfs_L);
KprStatus kpriSub_16u_C1RSfs_L(const Kpr16u* src1, Kpr64s src1Step, const Kpr16u* src2, Kpr64s src2Step, Kpr16u* dst,
                               Kpr64s dstStep, KprSizeL roiSize, int scaleFactor) KPR_TAGGED(kpriSub_16u_C1RSfs_L);

KprStatus kprsSub_8u_Sfs(const Kpr8u* src1, const Kpr8u* src2, Kpr8u* dst, int len, int scaleFactor)
    KPR_TAGGED(kprsSub_8u_Sfs);
KprStatus kprsSub_16s_Sfs(const Kpr16s* src1, const Kpr16s* src2, Kpr16s* dst, int len, int scaleFactor)
    KPR_TAGGED(kprsSub_16s_Sfs);
KprStatus kprsSub_16u_Sfs(const Kpr16u* src1, const Kpr16u* src2, Kpr16u* dst, int len, int scaleFactor)
    KPR_TAGGED(kprsSub_16u_Sfs);

// Rounded once.
KprStatus kpriSub_32f_C1R(const Kpr32f* src1, int src1Step, const Kpr32f* src2, int src2Step, Kpr32f* dst, int dstStep,
                          KprSize roiSize) KPR_TAGGED(kpriSub_32f_C1R);
KprStatus kpriSub_32f_C3R(const Kpr32f* src1, int src1Step, const Kpr32f* src2, int src2Step, Kpr32f* dst, int dstStep,
                          KprSize roiSize) KPR_TAGGED(kpriSub_32f_C3R);
KprStatus kpriSub_32f_C4R(const Kpr32f* src1, int src1Step, const Kpr32f* src2, int src2Step, Kpr32f* dst, int dstStep,
                          KprSize roiSize) KPR_TAGGED(kpriSub_32f_C4R);

KprStatus kpriSub_32f_C1R_L(const Kpr32f* src1, Kpr64s src1Step, const Kpr32f* src2, Kpr64s src2Step, Kpr32f* dst,
                            Kpr64s dstStep, KprSizeL roiSize) KPR_TAGGED(kpriSub_32f_C1R_L);
KprStatus kpriSub_32f_C3R_L(const Kpr32f* src1, Kpr64s src1Step, const Kpr32f* src2, Kpr64s src2Step, Kpr32f* dst,
                            Kpr64s dstStep, KprSizeL roiSize) KPR_TAGGED(kpriSub_32f_C3R_L);
KprStatus kpriSub_32f_C4R_L(const Kpr32f* src1, Kpr64s src1Step, const Kpr32f* src2, Kpr64s src2Step, Kpr32f* dst,
                            Kpr64s dstStep, KprSizeL roiSize) KPR_TAGGED(kpriSub_32f_C4R_L);

KprStatus kprsSub_32f(const Kpr32f* src1, const Kpr32f* src2, Kpr32f* dst, int len) KPR_TAGGED(kprsSub_32f);

// ---- products and quotients with a constant

// The exact product, scaled as the differences are up to a scaleFactor of 30, and saturated; 0 from 31 on.
KprStatus kpriMulC_16s_C1RSfs(const Kpr16s* src, int srcStep, Kpr16s value, Kpr16s* dst, int dstStep, KprSize roiSize,
                              int scaleFactor) KPR_TAGGED(kpriMulC_16s_C1RSfs);

// Rounded once.
KprStatus kpriMulC_32f_C1R(const Kpr32f* src, int srcStep, Kpr32f value, Kpr32f* dst, int dstStep, KprSize roiSize)
    KPR_TAGGED(kpriMulC_32f_C1R);
KprStatus kprsMulC_32f(const Kpr32f* src, Kpr32f value, Kpr32f* dst, int len) KPR_TAGGED(kprsMulC_32f);

// src * (1 / value), each of the two operations rounded once: up to one rounding from the quotient. kprStatusDivByZero,
// after the other checks, where `value` is zero.
KprStatus kprsDivC_32f(const Kpr32f* src, Kpr32f value, Kpr32f* dst, int len) KPR_TAGGED(kprsDivC_32f);
KprStatus kprsDivC_32f_I(Kpr32f* srcDst, int len, Kpr32f value) KPR_TAGGED(kprsDivC_32f_I);

// ---- conversions

// Exact. kprStatusBadStep, after the other checks, where a step is below 1.
KprStatus kpriConvert_16u32f_C1R(const Kpr16u* src, int srcStep, Kpr32f* dst, int dstStep, KprSize roiSize)
    KPR_TAGGED(kpriConvert_16u32f_C1R);

enum { kprRoundToZero = 0, kprRoundToNearest = 1 };  // to the nearest integer: ties to even

// src * 2^-scaleFactor, rounded by `roundMode` and saturated; a NaN becomes 0.
KprStatus kprsConvert_32f8u_Sfs(const Kpr32f* src, Kpr8u* dst, int len, int roundMode, int scaleFactor)
    KPR_TAGGED(kprsConvert_32f8u_Sfs);
KprStatus kprsConvert_32f16u_Sfs(const Kpr32f* src, Kpr16u* dst, int len, int roundMode, int scaleFactor)
    KPR_TAGGED(kprsConvert_32f16u_Sfs);

// ---- thresholds: a NaN is on neither side of one

// What is below `threshold` becomes `threshold`.
KprStatus kpriThreshold_LT_16s_C1R(const Kpr16s* src, int srcStep, Kpr16s* dst, int dstStep, KprSize roiSize,
                                   Kpr16s threshold) KPR_TAGGED(kpriThreshold_LT_16s_C1R);
KprStatus kpriThreshold_LT_32f_C1R(const Kpr32f* src, int srcStep, Kpr32f* dst, int dstStep, KprSize roiSize,
                                   Kpr32f threshold) KPR_TAGGED(kpriThreshold_LT_32f_C1R);
KprStatus kprsThreshold_LT_32f(const Kpr32f* src, Kpr32f* dst, int len, Kpr32f threshold)
    KPR_TAGGED(kprsThreshold_LT_32f);

// What is above `threshold` becomes `value`.
KprStatus kpriThreshold_GTVal_8u_C1R(const Kpr8u* src, int srcStep, Kpr8u* dst, int dstStep, KprSize roiSize,
                                     Kpr8u threshold, Kpr8u value) KPR_TAGGED(kpriThreshold_GTVal_8u_C1R);
KprStatus kpriThreshold_GTVal_16u_C1R(const Kpr16u* src, int srcStep, Kpr16u* dst, int dstStep, KprSize roiSize,
                                      Kpr16u threshold, Kpr16u value) KPR_TAGGED(kpriThreshold_GTVal_16u_C1R);
}
