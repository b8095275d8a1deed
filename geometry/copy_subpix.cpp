// A rectangle of an image, displaced by a fraction of a pixel to the right and down. Whole pixels of a displacement are
// left out. A negative fraction counts from the pixel before, but in the weights alone: the cells stay where they are.
#include "geometry/cells.h"

namespace n0::geometry {
namespace {

// What is behind the point, its sign kept; +0 of a whole number, -0 too.
Kpr32f fractionOf(Kpr32f f) {
    return f > -0x1p23F && f < 0x1p23F ? f - static_cast<Kpr32f>(truncated(f)) + 0.0F : f - f;
}

// 16384 more for a negative one, in one sum with the half.
unsigned quantizedFraction(Kpr32f f) {
    const Kpr32f fraction = fractionOf(f);
    return quantized(fraction, fraction < 0.0F ? 16384.5F : 0.5F);
}

Kpr32f wrappedFraction(Kpr32f f) {
    const Kpr32f fraction = fractionOf(f);
    return fraction < 0.0F ? fraction + 1.0F : fraction;
}

template <typename Src, typename Dst>
struct Call {
    Rows<const Src> src;
    Rows<Dst> dst;
    KprSize roi;
    Kpr32f dx, dy;
    int scaleFactor = 0;

    [[nodiscard]] KprStatus run() const {
        return firstFailure(notNull(src.first, dst.first), roiHolds(roi),
                            stepsHold<Src, Dst>(roi.width, src.step, roi.width, dst.step))
                   ?: copy();
    }

  private:
    [[nodiscard]] KprStatus copy() const {
        if constexpr (std::is_same_v<Dst, Kpr32f>) {
            return walk(FloatCells<Src>(weightsOf(wrappedFraction(dx), wrappedFraction(dy))));
        } else {
            return withCells<Src, Dst>(weightsOf(quantizedFraction(dx), quantizedFraction(dy)), scaleFactor,
                                       [this](const auto& cells) { return this->walk(cells); });
        }
    }

    // The cells have a column and a row more than the ROI.
    [[nodiscard]] KprStatus walk(const auto& cells) const {
        makeCells(cells, src, dst, roi.width, roi.height);
        return kprStatusOk;
    }
};

}  // namespace
}  // namespace n0::geometry

using namespace n0;
using namespace n0::geometry;

KprStatus kpriCopySubpix_8u_C1R(const Kpr8u* src, int srcStep, Kpr8u* dst, int dstStep, KprSize roiSize, Kpr32f dx,
                                Kpr32f dy) {
    return Call<Kpr8u, Kpr8u>{{src, srcStep}, {dst, dstStep}, roiSize, dx, dy}.run();
}

KprStatus kpriCopySubpix_16u_C1R(const Kpr16u* src, int srcStep, Kpr16u* dst, int dstStep, KprSize roiSize, Kpr32f dx,
                                 Kpr32f dy) {
    return Call<Kpr16u, Kpr16u>{{src, srcStep}, {dst, dstStep}, roiSize, dx, dy}.run();
}

KprStatus kpriCopySubpix_32f_C1R(const Kpr32f* src, int srcStep, Kpr32f* dst, int dstStep, KprSize roiSize, Kpr32f dx,
                                 Kpr32f dy) {
    return Call<Kpr32f, Kpr32f>{{src, srcStep}, {dst, dstStep}, roiSize, dx, dy}.run();
}

KprStatus kpriCopySubpix_8u32f_C1R(const Kpr8u* src, int srcStep, Kpr32f* dst, int dstStep, KprSize roiSize, Kpr32f dx,
                                   Kpr32f dy) {
    return Call<Kpr8u, Kpr32f>{{src, srcStep}, {dst, dstStep}, roiSize, dx, dy}.run();
}

KprStatus kpriCopySubpix_16u32f_C1R(const Kpr16u* src, int srcStep, Kpr32f* dst, int dstStep, KprSize roiSize,
                                    Kpr32f dx, Kpr32f dy) {
    return Call<Kpr16u, Kpr32f>{{src, srcStep}, {dst, dstStep}, roiSize, dx, dy}.run();
}

KprStatus kpriCopySubpix_8u16u_C1R_Sfs(const Kpr8u* src, int srcStep, Kpr16u* dst, int dstStep, KprSize roiSize,
                                       int scaleFactor, Kpr32f dx, Kpr32f dy) {
    return Call<Kpr8u, Kpr16u>{{src, srcStep}, {dst, dstStep}, roiSize, dx, dy, scaleFactor}.run();
}
