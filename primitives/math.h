// Mathematics without a mathematical library: of single numbers, of arrays, and the sorting of an array.
//
// The array forms return kprStatusNullPtr for a null pointer, then kprStatusBadSize for a length below 1. They may work
// in place; an element's result does not depend on its place.
#pragma once

#include <kprcv/types.h>  // before the functions are hidden: the types are not

#include "frame/api.h"

extern "C" {

// ---- of one number

Kpr64f kprsSqrtOne(Kpr64f x) KPR_TAGGED(kprsSqrtOne);    // correctly rounded; NaN below zero
Kpr32f kprsSqrtOneF(Kpr32f x) KPR_TAGGED(kprsSqrtOneF);  // correctly rounded; NaN below zero
Kpr64f kprsFabsOne(Kpr64f x) KPR_TAGGED(kprsFabsOne);    // clears the sign, that of a NaN too

// The sine and the cosine of x radians, within 1 ulp for |x| up to 2^40. Beyond, a period counts as the double nearest
// to 2 pi: a result is still the sine of an angle, which is off by no more than about |x| * 2^-53. NaN for infinities.
Kpr64f kprsSinOne(Kpr64f x) KPR_TAGGED(kprsSinOne);
Kpr64f kprsCosOne(Kpr64f x) KPR_TAGGED(kprsCosOne);

// e to the power of x, correctly rounded.
Kpr32f kprsExpOneF(Kpr32f x) KPR_TAGGED(kprsExpOneF);

// The angle of the point (x, y) from -pi to pi, within 1 ulp. Zeros and infinities as IEEE 754 has them: a zero's sign
// says on which side of the axis it lies, and two infinities stand at 45 degrees.
Kpr64f kprsAtan2One(Kpr64f y, Kpr64f x) KPR_TAGGED(kprsAtan2One);

// ---- of arrays

KprStatus kprsSqrt_32f(const Kpr32f* src, Kpr32f* dst, int len) KPR_TAGGED(kprsSqrt_32f);
KprStatus kprsSqrt_32f_I(Kpr32f* srcDst, int len) KPR_TAGGED(kprsSqrt_32f_I);

// dst = atan2(src1, src2): y first. The relative error is below 2^-21 (a subnormal result: half a unit more or less);
// zeros, infinities and NaN as in kprsAtan2One.
KprStatus kprsAtan2_32f_A21(const Kpr32f* src1, const Kpr32f* src2, Kpr32f* dst, int len) KPR_TAGGED(kprsAtan2_32f_A21);

// dst = sqrt(fma(re, re, im * im)), each of the three operations rounded once in single precision.
KprStatus kprsMagnitude_32f(const Kpr32f* re, const Kpr32f* im, Kpr32f* dst, int len) KPR_TAGGED(kprsMagnitude_32f);

// dst = sqrt(re * re + im * im) * 2^-scaleFactor, exact before it is rounded to the nearest integer, ties to even, and
// saturated to 32767.
KprStatus kprsMagnitude_16s_Sfs(const Kpr16s* re, const Kpr16s* im, Kpr16s* dst, int len, int scaleFactor)
    KPR_TAGGED(kprsMagnitude_16s_Sfs);

// Ascending order, NaN last. A length below 2 is a success at once.
KprStatus kprsSortAscend_64f_I(Kpr64f* srcDst, int len) KPR_TAGGED(kprsSortAscend_64f_I);
}

namespace n0 {

// a * b + c, rounded once.
inline Kpr64f fma(Kpr64f a, Kpr64f b, Kpr64f c) { return __builtin_fma(a, b, c); }
inline Kpr32f fma(Kpr32f a, Kpr32f b, Kpr32f c) { return __builtin_fmaf(a, b, c); }

}  // namespace n0
