// Mathematics of arrays, sixteen elements a step.
#include <algorithm>
#include <limits>

#include "frame/checks.h"
#include "primitives/math.h"
#include "primitives/rows.h"

namespace n0 {
namespace {

using Floats = Vec<Kpr32f>;
using Integers = Vec<Kpr32s>;

// dst = rule(sources...) for every element, each converted to T for the rule and from T for dst.
template <typename T, typename Rule, typename Dst, typename... Src>
KprStatus mapElements(int len, Rule rule, Dst* dst, const Src*... src) {
    walkRow<kLanes<T>>(
        len, [=](auto part, Dst* d, const Src*... s) { storeAs(d, rule(loadAs<T>(s, part)...), part); }, dst, src...);
    return kprStatusOk;
}

template <typename... Pointer>
KprStatus arraysHold(int len, const Pointer*... arrays) {
    return firstFailure(notNull(arrays...), failIf(len < 1, kprStatusBadSize));
}

constexpr auto squareRoot = [](Floats v) { return sqrt(v); };
constexpr auto magnitude = [](Floats re, Floats im) { return sqrt(fma(re, re, im * im)); };

// atan q = q + q^3 P(q^2) for q up to 1. P is the minimax polynomial of the relative error (2^-25.8), found by exchange
// of its extrema in multiple precision; with its coefficients rounded to single precision the error is 2^-25. What the
// roundings of the formula add, all in all, keeps below 2^-22.
constexpr Kpr32f kArctangent[] = {-0x1.5554dcp-2F, 0x1.9978f4p-3F, -0x1.230ad8p-3F, 0x1.b4e116p-4F,
                                  -0x1.35568ep-4F, 0x1.61fd7ep-5F, -0x1.0c2ba6p-6F, 0x1.7ed15cp-9F};

Floats arctangent(Floats y, Floats x) {
    const Floats up = abs(y);
    const Floats across = abs(x);
    const auto steep = less(across, up);
    const Floats small = select(steep, across, up);
    const Floats large = select(steep, up, across);
    // Two zeros count as a quotient of 0, two infinities as one of 1.
    const Floats ofEquals = keep(less(zero<Kpr32f>(), small), broadcast(1.0F));
    const Floats q = select(equal(small, large), ofEquals, small / large);

    const Floats z = q * q;
    Floats sum = broadcast(kArctangent[7]);
    for (int i = 6; i >= 0; --i) sum = fma(sum, z, broadcast(kArctangent[i]));
    Floats angle = fma(q * z, sum, q);
    angle = select(steep, broadcast(0x1.921fb6p+0F) - angle, angle);
    angle = select(signs(x), broadcast(0x1.921fb6p+1F) - angle, angle);
    return angle | (y & broadcast(-0.0F));
}

// The magnitude of 16-bit numbers. With N = re^2 + im^2, at most 2^31, the root in single precision gives an integer R
// that is the nearest to sqrt(N) or a neighbour of the nearest; D = N - R^2, which is small, decides exactly:
// (R + 1/2)^2 lies between R^2 + R and the next integer.

// By 2^-scale of 0 or less: sqrt(N * 4^-scale). The product is held below 2^30, whose root saturates, and a scale
// beyond -15 saturates the root of 1.
auto enlargedMagnitude(int scale) {
    const int shift = -2 * std::max(scale, -15);
    return [=, limit = broadcast((1U << 30) >> shift)](Integers re, Integers im) {
        const Vec<unsigned> n = min(as<unsigned>(re * re + im * im), limit) << shift;
        const Integers root = toInteger(sqrt(toFloat(n)));
        const Integers over = as<Kpr32s>(n) - root * root;
        const Integers one = broadcast(1);
        return root + keep(less(root, over), one) - keep(less(over, one - max(root, one)), one);
    };
}

// By 2^-scale below 1: sqrt(N) lies on R's side of every other integer, so that 2R with D's sign added is on the right
// side of every tie, or on it, when it is rounded half to even at bit scale + 1. From 17 on all is 0.
auto reducedMagnitude(int scale) {
    const int shift = std::min(scale, 17) + 1;
    return [=, half = broadcast((1 << (shift - 1)) - 1)](Integers re, Integers im) {
        const Vec<unsigned> n = as<unsigned>(re * re + im * im);
        const Integers root = toInteger(sqrt(toFloat(n)));
        const Integers over = as<Kpr32s>(n) - root * root;
        const Integers one = broadcast(1);
        const Integers doubled = root + root + max(min(over, one), broadcast(-1));
        return (doubled + half + ((doubled >> shift) & one)) >> shift;
    };
}

KprStatus scaledMagnitude(int len, const Kpr16s* re, const Kpr16s* im, Kpr16s* dst, int scale) {
    if (scale <= 0) return mapElements<Kpr32s>(len, enlargedMagnitude(scale), dst, re, im);
    return mapElements<Kpr32s>(len, reducedMagnitude(scale), dst, re, im);
}

}  // namespace
}  // namespace n0

using namespace n0;

KprStatus kprsSqrt_32f(const Kpr32f* src, Kpr32f* dst, int len) {
    return arraysHold(len, src, dst) ?: mapElements<Kpr32f>(len, squareRoot, dst, src);
}

KprStatus kprsSqrt_32f_I(Kpr32f* srcDst, int len) { return kprsSqrt_32f(srcDst, srcDst, len); }

KprStatus kprsAtan2_32f_A21(const Kpr32f* src1, const Kpr32f* src2, Kpr32f* dst, int len) {
    return arraysHold(len, src1, src2, dst) ?: mapElements<Kpr32f>(len, arctangent, dst, src1, src2);
}

KprStatus kprsMagnitude_32f(const Kpr32f* re, const Kpr32f* im, Kpr32f* dst, int len) {
    return arraysHold(len, re, im, dst) ?: mapElements<Kpr32f>(len, magnitude, dst, re, im);
}

KprStatus kprsMagnitude_16s_Sfs(const Kpr16s* re, const Kpr16s* im, Kpr16s* dst, int len, int scaleFactor) {
    return arraysHold(len, re, im, dst) ?: scaledMagnitude(len, re, im, dst, scaleFactor);
}
