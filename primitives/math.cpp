// Scalar mathematics. Square roots are the processor's; the rest are polynomials in double precision after an exact
// reduction of the argument. Constants are given in the hexadecimal form of the nearest double; one that needs more
// precision is the sum of several, each the nearest double to what the ones before it leave.
#include "primitives/math.h"

#include <algorithm>
#include <bit>
#include <limits>

namespace n0 {
namespace {

inline Kpr64f fma(Kpr64f a, Kpr64f b, Kpr64f c) { return __builtin_fma(a, b, c); }
inline Kpr64f abs(Kpr64f x) { return __builtin_fabs(x); }

// c[0] + c[1] x + c[2] x^2 ...
template <std::size_t n>
Kpr64f polynomial(Kpr64f x, const Kpr64f (&c)[n]) {
    Kpr64f sum = c[n - 1];
    for (std::size_t i = n - 1; i-- != 0;) sum = fma(sum, x, c[i]);
    return sum;
}

// In the sum of x and 1.5 * 2^52 the last bit weighs 1: the addition rounds x to the nearest integer, |x| < 2^51.
struct Nearest {
    Kpr64f value;
    Kpr64s integer;

    explicit Nearest(Kpr64f x) : value((x + kShift) - kShift), integer(bitsOf(x + kShift) - bitsOf(kShift)) {}

  private:
    static constexpr Kpr64f kShift = 0x1.8p52;
    static Kpr64s bitsOf(Kpr64f x) { return std::bit_cast<Kpr64s>(x); }
};

// The unrounded sum of two doubles, the second of which is at most about half an ulp of the first.
struct Pair {
    Kpr64f high;
    Kpr64f low;
};

constexpr Pair kPi = {0x1.921fb54442d18p+1, 0x1.1a62633145c07p-53};
constexpr Pair kHalfPi = {0x1.921fb54442d18p+0, 0x1.1a62633145c07p-54};
constexpr Pair kQuarterPi = {0x1.921fb54442d18p-1, 0x1.1a62633145c07p-55};
constexpr Kpr64f kHalfPiThird = -0x1.f1976b7ed8fbcp-110;  // pi/2 less the two parts of kHalfPi

// The Taylor coefficient 1/n!: n! is exact up to 18, so that this is the nearest double.
constexpr Kpr64f inverseFactorial(int n) {
    Kpr64f product = 1;
    for (int i = 2; i <= n; ++i) product *= i;
    return 1 / product;
}

// ---- sine and cosine

// sin x = x + x^3 P(x^2) and cos x = 1 - x^2/2 + x^4 P(x^2), to below 2^-62 of the result up to pi/4.
constexpr Kpr64f kSine[] = {-inverseFactorial(3),  inverseFactorial(5),  -inverseFactorial(7),  inverseFactorial(9),
                            -inverseFactorial(11), inverseFactorial(13), -inverseFactorial(15), inverseFactorial(17)};
constexpr Kpr64f kCosine[] = {inverseFactorial(4),  -inverseFactorial(6),  inverseFactorial(8),  -inverseFactorial(10),
                              inverseFactorial(12), -inverseFactorial(14), inverseFactorial(16), -inverseFactorial(18)};

Kpr64f sineNearZero(Pair x) {
    const Kpr64f z = x.high * x.high;
    return x.high + fma(x.high * z, polynomial(z, kSine), fma(-0.5 * z, x.low, x.low));
}

Kpr64f cosineNearZero(Pair x) {
    const Kpr64f z = x.high * x.high;
    const Kpr64f zLow = fma(x.high, x.high, -z);
    const Kpr64f sum = fma(-0.5, z, 1.0);
    const Kpr64f sumLow = fma(-0.5, z, 1.0 - sum);
    return sum + (sumLow + fma(z * z, polynomial(z, kCosine), fma(-0.5, zLow, -x.high * x.low)));
}

// sin(x + quadrants * pi/2).
Kpr64f sine(Kpr64f x, Kpr64s quadrants) {
    constexpr Kpr64f kFar = 0x1p40;
    constexpr Kpr64f kPeriod = 0x1.921fb54442d18p+2;
    if (!(abs(x) <= std::numeric_limits<Kpr64f>::max())) return x - x;

    // Far away a period is its nearest double, and the remainder by it exact or nearly so.
    while (abs(x) > kFar) {
        const Kpr64f periods = x * 0x1.45f306dc9c883p-3;
        x = fma(abs(periods) < 0x1p51 ? -Nearest(periods).value : -periods, kPeriod, x);
    }

    // rest = x - n pi/2, with pi/2 in three parts. The first step is exact: its result is a multiple of the part's last
    // place and below 1. Some doubles lie within 2^-60 of a multiple of pi/2: there the second step all but cancels, so
    // that its product and its difference are kept unrounded, and the third part is what is left.
    const Nearest n(x * 0x1.45f306dc9c883p-1);
    const Kpr64f first = fma(-n.value, kHalfPi.high, x);
    const Kpr64f product = n.value * kHalfPi.low;
    const Kpr64f productLow = fma(n.value, kHalfPi.low, -product);
    const Kpr64f second = first - product;
    const Kpr64f taken = first - second;
    const Kpr64f secondLow = (first - (second + taken)) + (taken - product);
    const Kpr64f tail = fma(-n.value, kHalfPiThird, secondLow - productLow);
    const Kpr64f high = second + tail;
    const Pair rest = {high, tail - (high - second)};

    quadrants += n.integer;
    const Kpr64f result = (quadrants & 1) != 0 ? cosineNearZero(rest) : sineNearZero(rest);
    return (quadrants & 2) != 0 ? -result : result;
}

// ---- arctangent

// atan x = x + x^3 P(x^2): the Taylor series, to below 2^-64 of the result up to 1/16.
constexpr Kpr64f kArctangent[] = {-1.0 / 3, 1.0 / 5, -1.0 / 7, 1.0 / 9, -1.0 / 11, 1.0 / 13, -1.0 / 15};

// atan(k/8)
constexpr Pair kArctangentOfEighths[] = {
    {0, 0},
    {0x1.fd5ba9aac2f6ep-4, -0x1.cd37686760c17p-59},
    {0x1.f5b75f92c80ddp-3, 0x1.8ab6e3cf7afbdp-57},
    {0x1.6f61941e4def1p-2, -0x1.c63aae6f6e918p-56},
    {0x1.dac670561bb4fp-2, 0x1.a2b7f222f65e2p-56},
    {0x1.1e00babdefeb4p-1, -0x1.928df287a668fp-58},
    {0x1.4978fa3269ee1p-1, 0x1.2419a87f2a458p-56},
    {0x1.700a7c5784634p-1, -0x1.8c34d25aadef6p-56},
    kQuarterPi,
};

// a - b, a.high not below b.high.
Pair operator-(Pair a, Pair b) {
    const Kpr64f high = a.high - b.high;
    return {high, ((a.high - high) - b.high) + (a.low - b.low)};
}

// atan(y/x), 0 <= y <= x.
Pair arctangentOfOctant(Kpr64f y, Kpr64f x) {
    constexpr Kpr64f kInfinity = std::numeric_limits<Kpr64f>::infinity();
    if (y == 0) return {0, 0};
    if (y == kInfinity) return kQuarterPi;
    const Kpr64f quotient = y / x;
    if (quotient < 0x1p-28) return {quotient, 0};  // x^3/3 is below half an ulp

    // The remainders below are exact only far from overflow and underflow.
    const Kpr64f scale = x > 0x1p500 ? 0x1p-600 : x < 0x1p-500 ? 0x1p600 : 1.0;
    y *= scale;
    x *= scale;
    // With c the nearest eighth, atan(y/x) = atan c + atan t, t = (y - c x) / (x + c y). The numerator is exact: it is
    // a multiple of x's last place / 16, and at most x/16.
    const Kpr64s k = Nearest(8 * quotient).integer;
    const Kpr64f c = static_cast<Kpr64f>(k) / 8;
    const Kpr64f numerator = fma(-c, x, y);
    const Kpr64f denominator = fma(c, y, x);
    const Kpr64f denominatorLow = fma(c, y, x - denominator);
    const Kpr64f t = numerator / denominator;
    const Kpr64f tLow = fma(-t, denominatorLow, fma(-t, denominator, numerator)) / denominator;

    const Pair base = kArctangentOfEighths[k];
    const Kpr64f z = t * t;
    const Kpr64f high = base.high + t;
    const Kpr64f low = ((base.high - high) + t) + base.low;
    return {high, low + fma(t * z, polynomial(z, kArctangent), tLow)};
}

// ---- exponential

// e^x = sum of x^n/n!, to 2^-57 up to (ln 2)/2.
constexpr Kpr64f kExponential[] = {
    inverseFactorial(0),  inverseFactorial(1),  inverseFactorial(2),  inverseFactorial(3), inverseFactorial(4),
    inverseFactorial(5),  inverseFactorial(6),  inverseFactorial(7),  inverseFactorial(8), inverseFactorial(9),
    inverseFactorial(10), inverseFactorial(11), inverseFactorial(12), inverseFactorial(13)};

// x = n ln 2 + rest, and e^x = 2^n e^rest in double precision, rounded once to single: a subnormal result too. Compared
// with an exponential of 64 bits for every float, none of the 2^32 is wrongly rounded.
Kpr32f exponential(Kpr64f x) {
    constexpr Pair kLn2 = {0x1.62e42fefa39efp-1, 0x1.abc9e3b39803fp-56};
    const Nearest n(x * 0x1.71547652b82fep+0);
    const Kpr64f rest = fma(-n.value, kLn2.low, fma(-n.value, kLn2.high, x));
    const auto power = std::bit_cast<Kpr64f>((n.integer + 1023) << 52);
    return static_cast<Kpr32f>(polynomial(rest, kExponential) * power);
}

}  // namespace
}  // namespace n0

using namespace n0;

Kpr64f kprsSqrtOne(Kpr64f x) { return __builtin_sqrt(x); }

Kpr32f kprsSqrtOneF(Kpr32f x) { return __builtin_sqrtf(x); }

Kpr64f kprsFabsOne(Kpr64f x) { return n0::abs(x); }

Kpr64f kprsSinOne(Kpr64f x) {
    if (n0::abs(x) < 0x1p-27) return x;  // x^3/6 is below half an ulp, and a zero keeps its sign
    return sine(x, 0);
}

Kpr64f kprsCosOne(Kpr64f x) { return sine(x, 1); }

Kpr32f kprsExpOneF(Kpr32f x) {
    if (__builtin_isnan(x)) return x;
    return exponential(std::clamp(x, -128.0F, 128.0F));  // beyond, it is zero or infinite anyway
}

Kpr64f kprsAtan2One(Kpr64f y, Kpr64f x) {
    if (__builtin_isnan(x) || __builtin_isnan(y)) return x + y;
    const Kpr64f across = n0::abs(x);
    const Kpr64f up = n0::abs(y);
    Pair angle = up > across ? kHalfPi - arctangentOfOctant(across, up) : arctangentOfOctant(up, across);
    if (std::bit_cast<Kpr64s>(x) < 0) angle = kPi - angle;  // x may be a negative zero
    return __builtin_copysign(angle.high + angle.low, y);
}
