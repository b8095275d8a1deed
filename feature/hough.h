// What the searches for lines share: how many lines there are, and their angles.
#pragma once

#include "frame/checks.h"
#include "primitives/math.h"
#include "primitives/rows.h"
#include "primitives/simd_corners.h"
#include "primitives/sizes.h"
#include "primitives/workspace.h"

namespace n0::feature {

struct Lines {
    Kpr64s distances, angles;  // no more than kTooMany
    Kpr64s offset;             // the index of the distance 0

    static constexpr Kpr64s kTooMany = 0x7fffffff;

    constexpr Lines(KprSize roi, KprRhoTheta delta) {
        const Kpr32f across = static_cast<Kpr32f>(2 * (Kpr64s{roi.width} + roi.height) + 1) / delta.rho;
        const Kpr64f around =
            3.14159 / Kpr64f{delta.theta};  // short of pi, which decides whether there is a last angle
        distances = across < 0x1p31F ? static_cast<Kpr64s>(across) : kTooMany;
        angles = around < 0x1p31 ? static_cast<Kpr64s>(around) : kTooMany;
        offset = (distances - 1) / 2;
    }
};

constexpr KprStatus deltaHolds(KprRhoTheta delta) {
    return failIf(!(delta.rho > 0) || !(delta.theta > 0), kprStatusBadArg);
}

// visit(x, points) for 64 columns from x on that have edge points, one bit each.
template <typename Visit>
KPR_INLINE void visitPoints(const Kpr8u* row, Kpr64s width, Visit visit) {
    walkColumns<kLanes<Kpr8u>>(
        width, [&](auto part, Kpr64s x) __attribute__((always_inline)) {
            if (const Bits64 points = loadMask<Kpr8u>(row + x, part)) visit(x, points);
        });
}

// Stores x + i + tag for every bit i of `points`; how many they are.
KPR_INLINE Kpr64s storeColumns(unsigned* to, Kpr64s x, Bits64 points, unsigned tag) {
    const Vec<unsigned> columns = laneConstant<unsigned>([](int i) { return i; });
    Kpr64s count = 0;
    for (int i = 0; i < 64; i += kLanes<unsigned>) {
        const auto sixteen = static_cast<Mask<unsigned>>(points >> i);
        if (sixteen == 0) continue;
        count += storePacked(to + count, columns + broadcast(static_cast<unsigned>(x + i) + tag), sixteen);
    }
    return count;
}

}  // namespace n0::feature
