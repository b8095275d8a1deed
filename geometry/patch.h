// A patch around a point of an image, along one axis. Of an image of n pixels, a patch of L and a centre c, in single
// precision:
//
//     p = c - (L - 1) * 0.5, one fused step        i = trunc(L + p) - L        f = p - i
//     min = i < 0 ? -i : 0, at most L              max = L - 1, or n - 2 - i where i + L - 1 is above n - 2
//     min = 0 and max = -1 where the first place, i or 0, is not below n
//
// The size is added before the number is truncated, so that i is a floor for every patch that meets the image. From min
// to max the cells lie in the image.
#pragma once

#include <algorithm>

#include "primitives/math.h"

namespace n0::geometry {

struct Span {
    Kpr64s first;  // the image's index at the patch's begin
    Kpr32f fraction;
    Kpr32s min, max;

    Span(Kpr32f centre, Kpr32s length, Kpr32s size) {
        const Kpr32f begin = fma(-static_cast<Kpr32f>(length - 1), 0.5F, centre);
        first = whole(static_cast<Kpr32f>(length) + begin) - length;
        fraction = begin - static_cast<Kpr32f>(first);
        if (std::max<Kpr64s>(first, 0) >= size) {
            min = 0;
            max = -1;
        } else {
            min = static_cast<Kpr32s>(std::clamp<Kpr64s>(-first, 0, length));
            max = static_cast<Kpr32s>(std::min<Kpr64s>(length - 1, size - 2 - first));
        }
    }

  private:
    // Toward zero; far beyond any image where no image is, and before it for a NaN.
    static Kpr64s whole(Kpr32f f) {
        constexpr Kpr32f far = 0x1p33F;
        if (!(f > -far)) return -static_cast<Kpr64s>(far);
        return static_cast<Kpr64s>(std::min(f, far));
    }
};

}  // namespace n0::geometry
