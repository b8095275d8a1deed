// A patch around a point of an image: displaced by a fraction of a pixel, and where it lies outside, made of what is
// nearest at the image's edge.
//
// From min to max of both axes the cells lie in the image: they are weighed as all cells are. Left and right of them a
// row repeats what its pixels at the image's edge give by the weights 1 - fy and fy; above and below, a column likewise
// by 1 - fx and fx; a corner repeats the image's own.
#include <limits>

#include "geometry/cells.h"
#include "geometry/patch.h"

namespace n0::geometry {
namespace {

// What a column repeats: of two pixels, one below the other, and of a corner's one.
template <typename Src, typename Dst>
class Edge {
  public:
    // `f` lies between the two pixels.
    Edge(Kpr32f f, int scaleFactor) : q_(static_cast<Kpr32s>(quantized(f))), scale_(scaleFactor) {}

    [[nodiscard]] Dst between(Src a, Src b) const { return scaled((static_cast<Kpr32s>(kOne) - q_) * a + q_ * b); }
    [[nodiscard]] Dst corner(Src a) const { return scaled(static_cast<Kpr32s>(kOne) * a); }

  private:
    [[nodiscard]] Dst scaled(Kpr32s sum) const {
        const Kpr64s pixel = Kpr64s{std::min((sum + scale_.half()) >> scale_.down, scale_.most())} << scale_.up;
        return static_cast<Dst>(std::min<Kpr64s>(pixel, std::numeric_limits<Dst>::max()));
    }

    Kpr32s q_;
    Scale scale_;
};

template <typename Src>
class Edge<Src, Kpr32f> {
  public:
    Edge(Kpr32f f, int) : f_(f) {}

    [[nodiscard]] Kpr32f between(Src a, Src b) const {
        return fma(f_, static_cast<Kpr32f>(b), (1.0F - f_) * static_cast<Kpr32f>(a));
    }
    [[nodiscard]] Kpr32f corner(Src a) const { return static_cast<Kpr32f>(a); }

  private:
    Kpr32f f_;
};

template <typename Src, typename Dst>
struct Call {
    Rows<const Src> src;
    KprSize srcSize;
    Rows<Dst> dst;
    KprSize dstSize;
    KprPoint32f centre;
    KprPoint* pMin;
    KprPoint* pMax;
    int scaleFactor = 0;

    [[nodiscard]] KprStatus run() const {
        return firstFailure(notNull(src.first, dst.first, pMin, pMax), roiHolds(srcSize), roiHolds(dstSize),
                            stepsHold<Src, Dst>(srcSize.width, src.step, dstSize.width, dst.step))
                   ?: cut();
    }

  private:
    [[nodiscard]] KprStatus cut() const {
        const Span x(centre.x, dstSize.width, srcSize.width), y(centre.y, dstSize.height, srcSize.height);
        *pMin = {x.min, y.min};
        *pMax = {x.max, y.max};
        const Kpr32s inside = std::max(x.max - x.min + 1, 0), rows = std::max(y.max - y.min + 1, 0);
        const Kpr64s left = x.first + x.min;
        const auto from = [&](const Src* row) { return row + (inside > 0 ? left : 0); };
        if (inside > 0 && rows > 0) {
            withCellsAt(x.fraction, y.fraction, [&](const auto& cells) {
                makeCells(cells, Rows<const Src>{from(src[y.first + y.min]), src.step},
                          Rows<Dst>{dst[y.min] + x.min, dst.step}, inside, rows);
            });
        }
        if (inside < dstSize.width) {
            const Edge<Src, Dst> edge(y.fraction, scaleFactor);
            for (Kpr32s j = y.min; j <= y.max; ++j) {
                const Src *const upper = src[y.first + j], *const lower = src[y.first + j + 1];
                repeatEnds(x, dst[j], [&](Kpr64s column) { return edge.between(upper[column], lower[column]); });
            }
        }
        if (rows == dstSize.height) return kprStatusOk;
        const Edge<Src, Dst> edge(0.0F, scaleFactor);
        withPairsAt(x.fraction, [&](const auto& pairs) {
            for (Kpr32s j = 0; j < dstSize.height; ++j) {
                if (j >= y.min && j <= y.max) continue;
                const Src* const row = src[j < y.min ? 0 : srcSize.height - 1];
                if (inside > 0)
                    makeCells(pairs, Rows<const Src>{from(row), 0}, Rows<Dst>{dst[j] + x.min, 0}, inside, 1);
                repeatEnds(x, dst[j], [&](Kpr64s column) { return edge.corner(row[column]); });
            }
        });
        return kprStatusOk;
    }

    // What the patch has left and right of its inside: `edgeAt` tells it for the image's first and last column.
    void repeatEnds(const Span& x, Dst* to, auto edgeAt) const {
        const Kpr32s right = std::max(x.min, x.max + 1);
        if (x.min > 0) repeat(to, x.min, edgeAt(0));
        if (right < dstSize.width) repeat(to + right, dstSize.width - right, edgeAt(srcSize.width - 1));
    }

    static void repeat(Dst* to, Kpr64s count, Dst value) {
        walkRow<kLanes<Dst>>(
            count, [v = broadcast(value)](auto part, Dst* d) { store(d, v, part); }, to);
    }

    void withCellsAt(Kpr32f fx, Kpr32f fy, auto make) const {
        if constexpr (std::is_same_v<Dst, Kpr32f>) {
            make(FloatCells<Src>(weightsOf(fx, fy)));
        } else {
            withCells<Src, Dst>(weightsOf(quantized(fx), quantized(fy)), scaleFactor, make);
        }
    }
    void withPairsAt(Kpr32f fx, auto make) const {
        if constexpr (std::is_same_v<Dst, Kpr32f>) {
            make(FloatPairs<Src>(fx));
        } else {
            const auto q = static_cast<Kpr32s>(quantized(fx));
            withCells<Src, Dst>({static_cast<Kpr32s>(kOne) - q, q, 0, 0}, scaleFactor, make);
        }
    }
};

}  // namespace
}  // namespace n0::geometry

using namespace n0;
using namespace n0::geometry;

KprStatus kpriCopySubpixIntersect_8u_C1R(const Kpr8u* src, int srcStep, KprSize srcSize, Kpr8u* dst, int dstStep,
                                         KprSize dstSize, KprPoint32f centre, KprPoint* pMin, KprPoint* pMax) {
    return Call<Kpr8u, Kpr8u>{{src, srcStep}, srcSize, {dst, dstStep}, dstSize, centre, pMin, pMax}.run();
}

KprStatus kpriCopySubpixIntersect_16u_C1R(const Kpr16u* src, int srcStep, KprSize srcSize, Kpr16u* dst, int dstStep,
                                          KprSize dstSize, KprPoint32f centre, KprPoint* pMin, KprPoint* pMax) {
    return Call<Kpr16u, Kpr16u>{{src, srcStep}, srcSize, {dst, dstStep}, dstSize, centre, pMin, pMax}.run();
}

KprStatus kpriCopySubpixIntersect_32f_C1R(const Kpr32f* src, int srcStep, KprSize srcSize, Kpr32f* dst, int dstStep,
                                          KprSize dstSize, KprPoint32f centre, KprPoint* pMin, KprPoint* pMax) {
    return Call<Kpr32f, Kpr32f>{{src, srcStep}, srcSize, {dst, dstStep}, dstSize, centre, pMin, pMax}.run();
}

KprStatus kpriCopySubpixIntersect_8u32f_C1R(const Kpr8u* src, int srcStep, KprSize srcSize, Kpr32f* dst, int dstStep,
                                            KprSize dstSize, KprPoint32f centre, KprPoint* pMin, KprPoint* pMax) {
    return Call<Kpr8u, Kpr32f>{{src, srcStep}, srcSize, {dst, dstStep}, dstSize, centre, pMin, pMax}.run();
}

KprStatus kpriCopySubpixIntersect_16u32f_C1R(const Kpr16u* src, int srcStep, KprSize srcSize, Kpr32f* dst, int dstStep,
                                             KprSize dstSize, KprPoint32f centre, KprPoint* pMin, KprPoint* pMax) {
    return Call<Kpr16u, Kpr32f>{{src, srcStep}, srcSize, {dst, dstStep}, dstSize, centre, pMin, pMax}.run();
}

KprStatus kpriCopySubpixIntersect_8u16u_C1R_Sfs(const Kpr8u* src, int srcStep, KprSize srcSize, Kpr16u* dst,
                                                int dstStep, KprSize dstSize, KprPoint32f centre, KprPoint* pMin,
                                                KprPoint* pMax, int scaleFactor) {
    return Call<Kpr8u, Kpr16u>{{src, srcStep}, srcSize, {dst, dstStep}, dstSize, centre, pMin, pMax, scaleFactor}.run();
}
