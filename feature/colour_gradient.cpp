// The gradients a, b, c of three channels, joined into one.
//
//     norm    8u, 16u                                                     32f
//     Inf     the largest                                                 the largest magnitude, a number before a NaN
//     L1      (a + b + c) / 3, exact, then to nearest                     ((|a| + |b|) + |c|) / 3
//     L2      the root of (a * a + b * b + c * c) / 3, exact, to nearest  sqrt(fma(c, c, fma(b, b, a * a)) / 3)
//
// No third of an integer lies half way between integers, and no root of a third.
#include <algorithm>
#include <bit>

#include "frame/checks.h"
#include "primitives/rows.h"
#include "primitives/simd_edges.h"

namespace n0::feature {
namespace {

// A norm of kLanes<T> pixels. Channels are alike: bytes of a pixel are joined where they lie, next to one another, and
// the results picked afterwards.
struct Largest {
    template <typename Part>
    KPR_INLINE static void join(Part part, Kpr8u* dst, const Kpr8u* src) {
        const Triple<Kpr8u> a = grouped(loadPixels(src, part)), b = furtherOn<1>(a), c = furtherOn<2>(a);
        store(dst,
              pixelBytes<false>({max(max(a.first, b.first), c.first), max(max(a.second, b.second), c.second),
                                 max(max(a.third, b.third), c.third)}),
              part);
    }
    static Vec<Kpr16u> of(Vec<Kpr16u> a, Vec<Kpr16u> b, Vec<Kpr16u> c) { return max(max(a, b), c); }
    // Magnitudes are in order as integers. A NaN of either kind is below all of them, and -1 is one.
    static Vec<Kpr32f> of(Vec<Kpr32f> a, Vec<Kpr32f> b, Vec<Kpr32f> c) {
        const auto magnitude = [](Vec<Kpr32f> v) {
            const auto bits = as<Kpr32s>(abs(v)), infinity = broadcast<Kpr32s>(0x7f800000);
            return select(less(infinity, bits), broadcast<Kpr32s>(-1), bits);
        };
        return as<Kpr32f>(max(max(magnitude(a), magnitude(b)), magnitude(c)));
    }
};

struct Mean {
    // The sum of a pixel that begins in the pair of bytes at x: two of the pair and one behind it, or one and two. The
    // weights say which; the pairs begin 16 * block bytes after a pixel did.
    template <int block>
    KPR_INLINE static Vec<Kpr8u> thirds(Vec<Kpr8u> here, Vec<Kpr8u> behind) {
        const auto first = laneConstant<Kpr8s>([](int i) {
            const int pair = 16 * block + i % 16 / 2 * 2;
            return i % 2 == 0 ? pair % 3 == 0 : pair % 3 != 1;
        });
        const auto second = laneConstant<Kpr8s>([](int i) {
            const int pair = 16 * block + i % 16 / 2 * 2;
            return i % 2 == 0 ? pair % 3 != 1 : pair % 3 == 2;
        });
        const Vec<Kpr16s> sum = sumPairs(here, first) + sumPairs(behind, second);
        return as<Kpr8u>(mulRounded(sum, broadcast<Kpr16s>(10923)));  // nearly 2^15 / 3
    }
    template <typename Part>
    KPR_INLINE static void join(Part part, Kpr8u* dst, const Kpr8u* src) {
        const Triple<Kpr8u> here = grouped(loadPixels(src, part)), behind = furtherOn<2>(here);
        store(dst,
              pixelBytes<true>({thirds<0>(here.first, behind.first), thirds<1>(here.second, behind.second),
                                thirds<2>(here.third, behind.third)}),
              part);
    }
    KPR_INLINE static Vec<Kpr16u> of(Vec<Kpr16u> a, Vec<Kpr16u> b, Vec<Kpr16u> c) {
        const auto part = [&](auto which) {
            constexpr int at = decltype(which)::value;
            const Vec<Kpr32f> sum = toFloat(widened<at>(a)) + toFloat(widened<at>(b)) + toFloat(widened<at>(c));
            return toInteger(sum * broadcast(1.0F / 3.0F));  // sums of up to 18 bits
        };
        return narrowed(part(Turn<0>{}), part(Turn<1>{}));
    }
    static Vec<Kpr32f> of(Vec<Kpr32f> a, Vec<Kpr32f> b, Vec<Kpr32f> c) {
        return ((abs(a) + abs(b)) + abs(c)) / broadcast(3.0F);
    }
};

struct RootMeanSquare {
    // Near the root of sum * third, where the sum is 0 or not below 1: off by less than 2e-7 of it, beside what `third`
    // is off. With v near the root, one correction squares how far the inverse root is off.
    KPR_INLINE static Vec<Kpr32f> nearRoot(Vec<Kpr32f> sum, Kpr32f third) {
        const Vec<Kpr32f> square = fma(sum, broadcast(third), broadcast(1e-12F));
        const Vec<Kpr32f> inverse = nearInverseRoot(square), v = square * inverse;
        return fma(minusProduct(v, v, square), inverse * broadcast(0.5F), v);
    }

    // Roots of up to 255 are farther from integers and a half than 1e-4.
    template <typename Part>
    KPR_INLINE static void join(Part part, Kpr8u* dst, const Kpr8u* src) {
        Vec<Kpr32s> roots[4];
        takeTurns<4>([&](auto i) __attribute__((always_inline)) {
            const Vec<Kpr8u> sixteen = load(src + 48 * i, elementsOf<i>(part));
            roots[i] = toInteger(nearRoot(toFloat(squaresOfPixels(sixteen)), 1.0F / 3.0F));
        });
        store(dst, narrowed(roots[0], roots[1], roots[2], roots[3]), part);
    }
    // What the part has of its sixteen pixels of the given turn.
    template <int turn>
    KPR_INLINE static First elementsOf(All) {
        return First{48};
    }
    template <int turn>
    KPR_INLINE static First elementsOf(First part) {
        return First{std::clamp<Kpr64s>(Kpr64s{3} * (std::popcount(part.bits) - 16 * turn), 0, 48)};
    }

    // Of sums that 32 bits may not hold. The third is so little that the integer is the root's or one less; which, says
    // what the sum has beyond three squares of it.
    KPR_INLINE static Vec<Kpr32s> root(Vec<unsigned> a, Vec<unsigned> b, Vec<unsigned> c) {
        const Vec<Kpr32s> near = toInteger(nearRoot(toFloat(a) + toFloat(b) + toFloat(c), 0.333333F));
        const Vec<Kpr32s> thrice = near + near + near, beyond = as<Kpr32s>(a + b + c) - thrice * near;
        return addOneWhere(less(thrice, beyond), near);
    }
    KPR_INLINE static Vec<Kpr16u> of(Vec<Kpr16u> a, Vec<Kpr16u> b, Vec<Kpr16u> c) {
        return n0::join<Kpr16u>(root(squares<0>(a), squares<0>(b), squares<0>(c)),
                                root(squares<1>(a), squares<1>(b), squares<1>(c)));
    }
    static Vec<Kpr32f> of(Vec<Kpr32f> a, Vec<Kpr32f> b, Vec<Kpr32f> c) {
        return sqrt(fma(c, c, fma(b, b, a * a)) / broadcast(3.0F));
    }
};

template <typename Norm, typename T>
KprStatus joinRows(Rows<const T> src, Rows<T> dst, KprSize roi) {
    for (Kpr64s y = 0; y < roi.height; ++y) {
        const T* const from = src[y];
        T* const to = dst[y];
        walkColumns<kLanes<T>>(roi.width, [=](auto part, Kpr64s x) {
            if constexpr (sizeof(T) == 1) {
                Norm::join(part, to + x, from + 3 * x);
            } else {
                const Triple<T> pixels = loadPixels(from + 3 * x, part);
                store(to + x, Norm::of(channelOf<0>(pixels), channelOf<1>(pixels), channelOf<2>(pixels)), part);
            }
        });
    }
    return kprStatusOk;
}

template <typename T>
KprStatus join(const T* src, int srcStep, T* dst, int dstStep, KprSize roi, int norm) {
    const KprStatus status =
        firstFailure(notNull(src, dst), roiHolds(roi), rowsFit<T>(3 * Kpr64s{roi.width}, srcStep),
                     rowsFit<T>(roi.width, dstStep), stepsAlign<T>(srcStep, dstStep),
                     failIf(norm != kprNormInf && norm != kprNormL1 && norm != kprNormL2, kprStatusBadNorm));
    if (status != kprStatusOk) return status;
    const Rows<const T> from = {src, srcStep};
    const Rows<T> to = {dst, dstStep};
    return norm == kprNormInf  ? joinRows<Largest>(from, to, roi)
           : norm == kprNormL1 ? joinRows<Mean>(from, to, roi)
                               : joinRows<RootMeanSquare>(from, to, roi);
}

}  // namespace
}  // namespace n0::feature

using namespace n0;
using namespace n0::feature;

KprStatus kpriGradientColorToGray_8u_C3C1R(const Kpr8u* src, int srcStep, Kpr8u* dst, int dstStep, KprSize roiSize,
                                           int norm) {
    return join(src, srcStep, dst, dstStep, roiSize, norm);
}

KprStatus kpriGradientColorToGray_16u_C3C1R(const Kpr16u* src, int srcStep, Kpr16u* dst, int dstStep, KprSize roiSize,
                                            int norm) {
    return join(src, srcStep, dst, dstStep, roiSize, norm);
}

KprStatus kpriGradientColorToGray_32f_C3C1R(const Kpr32f* src, int srcStep, Kpr32f* dst, int dstStep, KprSize roiSize,
                                            int norm) {
    return join(src, srcStep, dst, dstStep, roiSize, norm);
}
