// The mathematics of the primitives against the wider types of the C library.
#include "primitives/math.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include "tests/support/guarded_image.h"

namespace {

using test::GuardedImage;
using test::Random;
using test::same;

constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr float kInfF = std::numeric_limits<float>::infinity();

// Lengths of arrays, as images of one row.
std::vector<KprSize> lengths() {
    std::vector<KprSize> rows;
    for (KprSize size : test::awkwardSizes()) {
        if (size.height == 1) rows.push_back(size);
    }
    return rows;
}

// How far `got` is from `exact`, in units of the last place of the double nearest to `exact`.
double ulps(double got, long double exact) {
    const double nearest = std::fabs(static_cast<double>(exact));
    const double ulp =
        nearest == 0 ? std::numeric_limits<double>::denorm_min() : std::nextafter(nearest, kInf) - nearest;
    return static_cast<double>(std::fabs(got - exact) / ulp);
}

// A number of any size up to 2^highest, sign and all.
double anySize(Random& random, int lowest, int highest) {
    const double mantissa = 1.0 + random.range(0, INT32_MAX) * 0x1p-31 + random.range(0, INT32_MAX) * 0x1p-52;
    return std::ldexp(random.oneIn(2) ? mantissa : -mantissa, random.range(lowest, highest - 1));
}

TEST(Math, SquareRootsAreCorrectlyRounded) {
    Random random;
    for (int i = 0; i < 100000; ++i) {
        const double x = std::fabs(anySize(random, -1070, 1023));
        ASSERT_EQ(kprsSqrtOne(x), std::sqrt(x));
        const auto f = static_cast<float>(std::fabs(anySize(random, -148, 127)));
        ASSERT_EQ(kprsSqrtOneF(f), static_cast<float>(std::sqrt(double{f})));
    }
    EXPECT_TRUE(same(kprsSqrtOne(-0.0), -0.0) && same(kprsSqrtOneF(-0.0F), -0.0F));
    EXPECT_TRUE(std::isnan(kprsSqrtOne(-1.0)) && std::isnan(kprsSqrtOneF(-1.0F)));
    EXPECT_TRUE(same(kprsFabsOne(-0.0), 0.0) && same(kprsFabsOne(-kInf), kInf) && !std::signbit(kprsFabsOne(-kNan)));
}

TEST(Math, SineAndCosineAreWithinOneUlp) {
    Random random;
    double worst = 0;
    const auto check = [&](double x) {
        worst = std::max({worst, ulps(kprsSinOne(x), sinl(x)), ulps(kprsCosOne(x), cosl(x))});
        ASSERT_LT(worst, 0.8) << x;
    };
    for (int i = 0; i < 300000; ++i) check(anySize(random, i % 2 == 0 ? -30 : -2, i % 4 == 1 ? 40 : 20));
    // Next to the zeros, where the reduction cancels the most.
    for (int i = 0; i < 100000; ++i) {
        const auto zero = static_cast<double>(random.range(-700000, 700000) * (std::acos(-1.0L) / 2));
        check(zero);
        check(std::nextafter(zero, random.oneIn(2) ? kInf : -kInf));
    }
    RecordProperty("worst", std::to_string(worst));
}

TEST(Math, SineAndCosineAtTheEnds) {
    EXPECT_TRUE(same(kprsSinOne(-0.0), -0.0) && same(kprsSinOne(0.0), 0.0));
    EXPECT_EQ(kprsCosOne(0.0), 1.0);
    EXPECT_EQ(kprsSinOne(5e-324), 5e-324);
    EXPECT_EQ(kprsCosOne(0x1p-40), 1.0);
    for (double x : {kInf, -kInf, kNan}) EXPECT_TRUE(std::isnan(kprsSinOne(x)) && std::isnan(kprsCosOne(x)));
    // Angles that have no meaning any more still lie on the circle.
    for (double x : {0x1.8p40, 1e15, 1e16, 1e22, 1e100, std::numeric_limits<double>::max()}) {
        EXPECT_NEAR(std::hypot(kprsSinOne(x), kprsCosOne(x)), 1.0, 1e-15) << x;
        EXPECT_EQ(kprsSinOne(-x), -kprsSinOne(x));
        EXPECT_EQ(kprsCosOne(-x), kprsCosOne(x));
    }
    EXPECT_NEAR(kprsSinOne(0x1.8p40), std::sin(0x1.8p40), 0x1.8p-13);
}

// The floats with the bits from `first` on, every `stride`th, whose exponential is not the nearest float.
Kpr64s wrongExponentials(Kpr64s first, Kpr64s stride) {
    Kpr64s wrong = 0;
    for (Kpr64s bits = first; bits < Kpr64s{1} << 32; bits += stride) {
        const auto x = std::bit_cast<float>(static_cast<std::uint32_t>(bits));
        if (!same(kprsExpOneF(x), static_cast<float>(expl(x)))) ++wrong;
    }
    return wrong;
}

TEST(Math, ExponentialIsCorrectlyRounded) {
    Random random;
    EXPECT_EQ(wrongExponentials(random.range(0, 6000), 6007), 0);
    EXPECT_EQ(kprsExpOneF(0.0F), 1.0F);
    EXPECT_EQ(kprsExpOneF(kInfF), kInfF);
    EXPECT_TRUE(same(kprsExpOneF(-kInfF), 0.0F));
    EXPECT_TRUE(std::isnan(kprsExpOneF(std::numeric_limits<float>::quiet_NaN())));
}

// Takes ten minutes.
TEST(Math, DISABLED_ExponentialOfEveryFloat) { EXPECT_EQ(wrongExponentials(0, 1), 0); }

TEST(Math, ArctangentIsWithinOneUlp) {
    Random random;
    double worst = 0;
    for (int i = 0; i < 300000; ++i) {
        const double x = anySize(random, -1074, 1024);
        const int exponent = std::ilogb(x);
        const double y = random.oneIn(8) ? anySize(random, -1074, 1024)
                                         : anySize(random, std::max(exponent - 9, -1074), std::min(exponent + 9, 1024));
        const long double exact = atan2l(y, x);
        if (std::fabs(exact) < std::numeric_limits<double>::min()) {
            ASSERT_LE(std::fabs(kprsAtan2One(y, x) - exact), 0x1p-1074L) << y << ", " << x;
        } else {
            worst = std::max(worst, ulps(kprsAtan2One(y, x), exact));
            ASSERT_LT(worst, 0.6) << y << ", " << x;
        }
    }
    RecordProperty("worst", std::to_string(worst));
}

// All pairs of zeros, infinities and numbers of both signs, NaN, and the ends of the range.
TEST(Math, ArctangentOfSpecialPairs) {
    const double values[] = {0.0, 1.0, 2.5, kInf, kNan, 5e-324, 1e-310, std::numeric_limits<double>::max()};
    for (double y : values) {
        for (double x : values) {
            for (double signedY : {y, -y}) {
                for (double signedX : {x, -x}) {
                    const double exact = std::atan2(signedY, signedX);
                    EXPECT_TRUE(same(kprsAtan2One(signedY, signedX), exact)) << signedY << ", " << signedX;

                    const auto fy = static_cast<float>(signedY), fx = static_cast<float>(signedX);
                    float result;
                    ASSERT_EQ(kprsAtan2_32f_A21(&fy, &fx, &result, 1), kprStatusOk);
                    const auto wanted = static_cast<float>(std::atan2(double{fy}, double{fx}));
                    EXPECT_TRUE(same(result, wanted) || std::fabs(result - wanted) < std::fabs(wanted) * 0x1p-21F)
                        << fy << ", " << fx;
                    EXPECT_TRUE(std::isnan(wanted) || std::signbit(result) == std::signbit(wanted));
                }
            }
        }
    }
}

TEST(Math, ArctangentOfArraysHolds21Bits) {
    Random random;
    double worst = 0;
    std::vector<float> y(1 << 16), x(y.size()), angle(y.size());
    for (int round = 0; round < 8; ++round) {
        for (std::size_t i = 0; i < y.size(); ++i) {
            const int exponent = random.range(-125, 120);
            y[i] = static_cast<float>(anySize(random, exponent, exponent + random.range(1, 7)));
            x[i] = static_cast<float>(anySize(random, exponent, exponent + random.range(1, 7)));
        }
        ASSERT_EQ(kprsAtan2_32f_A21(y.data(), x.data(), angle.data(), static_cast<int>(y.size())), kprStatusOk);
        for (std::size_t i = 0; i < y.size(); ++i) {
            const double exact = std::atan2(double{y[i]}, double{x[i]});
            worst = std::max(worst, std::fabs(angle[i] / exact - 1));
            ASSERT_LT(worst, 0x1p-21) << y[i] << ", " << x[i];
        }
    }
    RecordProperty("worst", std::to_string(std::log2(worst)));
}

// Every length, guarded, also in place; `function` over arrays of T, `expected` an element of the result.
template <typename T, typename Function, typename Expected>
void checkArrays(Function function, Expected expected) {
    Random random;
    for (KprSize size : lengths()) {
        GuardedImage<T> a(size, random), b(size, random), dst(size, random);
        a.fill(random, true);
        b.fill(random, true);
        ASSERT_EQ(function(a.data(), b.data(), dst.data(), size.width), kprStatusOk);
        test::expectImage(dst, [&](int x, int, int) { return expected(a.at(x, 0), b.at(x, 0)); });
        ASSERT_EQ(function(a.data(), b.data(), b.data(), size.width), kprStatusOk);
        test::expectImage(b, [&](int x, int, int) { return dst.at(x, 0); });
        if (testing::Test::HasFailure()) return;
    }
}

TEST(Math, SquareRootsOfArrays) {
    checkArrays<float>([](const float* a, const float*, float* dst, int len) { return kprsSqrt_32f(a, dst, len); },
                       [](float a, float) { return std::sqrt(a); });
    float values[] = {4.0F, -0.0F, 2.0F};
    ASSERT_EQ(kprsSqrt_32f_I(values, 3), kprStatusOk);
    EXPECT_TRUE(values[0] == 2.0F && same(values[1], -0.0F) && values[2] == std::sqrt(2.0F));
}

TEST(Math, MagnitudeOfFloats) {
    checkArrays<float>(kprsMagnitude_32f, [](float re, float im) { return std::sqrt(std::fma(re, re, im * im)); });
}

TEST(Math, ArctangentDoesNotDependOnThePlace) {
    checkArrays<float>(kprsAtan2_32f_A21, [](float y, float x) {
        float result;
        EXPECT_EQ(kprsAtan2_32f_A21(&y, &x, &result, 1), kprStatusOk);
        return result;
    });
}

// The nearest integer to sqrt(n) * 2^-scale, ties to even, from integers alone.
Kpr16s scaledRoot(Kpr64s n, int scale) {
    if (scale < 0) {
        const int shift = std::min(-scale, 15);
        const Kpr64s square = n << (2 * shift);
        Kpr64s root = 0;
        while (root < 32767 && root * root + root < square) ++root;  // (root + 1/2)^2 < square
        return static_cast<Kpr16s>(root);
    }
    // (2 q + 1)^2 4^scale against 4 n
    const int shift = std::min(scale, 18);
    const auto upper = [=](Kpr64s q) { return (2 * q + 1) * (2 * q + 1) << (2 * shift); };
    auto q = static_cast<Kpr64s>(std::sqrt(static_cast<double>(n)) / static_cast<double>(1 << shift));
    while (q > 0 && upper(q - 1) > 4 * n) --q;
    while (upper(q) < 4 * n || (upper(q) == 4 * n && q % 2 != 0)) ++q;
    return static_cast<Kpr16s>(std::min<Kpr64s>(q, 32767));
}

TEST(Math, MagnitudeOfIntegers) {
    for (int scale : {0, 1, 2, 3, 7, 13, 14, 15, 16, 17, 18, 40, INT32_MAX}) {
        checkArrays<Kpr16s>([=](const Kpr16s* re, const Kpr16s* im, Kpr16s* dst,
                                int len) { return kprsMagnitude_16s_Sfs(re, im, dst, len, scale); },
                            [=](int re, int im) { return scaledRoot(Kpr64s{re} * re + Kpr64s{im} * im, scale); });
    }
    for (int scale : {-1, -2, -7, -14, -15, -16, INT32_MIN}) {
        for (int n = 0; n < 60; ++n) {
            const auto re = static_cast<Kpr16s>(n * n - 900), im = static_cast<Kpr16s>(n % 8);
            Kpr16s result;
            ASSERT_EQ(kprsMagnitude_16s_Sfs(&re, &im, &result, 1, scale), kprStatusOk);
            EXPECT_EQ(result, scaledRoot(re * re + im * im, std::max(scale, -20))) << re << ", " << im << ", " << scale;
        }
    }
}

// Sums of squares on both sides of (r + 1/2)^2 and of r^2, where a root in single precision goes astray.
TEST(Math, MagnitudeNextToTies) {
    Random random;
    std::vector<Kpr16s> re, im, dst;
    for (int i = 0; i < 200000; ++i) {
        const Kpr64s root = random.range(1, 32767);
        const Kpr64s target = root * root + (random.oneIn(2) ? 0 : root) + random.range(-1, 1);
        const Kpr64s a = random.range(0, static_cast<int>(root));
        re.push_back(static_cast<Kpr16s>(a));
        im.push_back(
            static_cast<Kpr16s>(std::min(32767.0, std::round(std::sqrt(double(std::max(target - a * a, Kpr64s{0})))))));
    }
    // Whole roots: (3, 4, 5) and (5, 12, 13) enlarged.
    for (int k = 1; k < 2500; ++k) {
        re.insert(re.end(), {static_cast<Kpr16s>(3 * k), static_cast<Kpr16s>(-5 * k), static_cast<Kpr16s>(k)});
        im.insert(im.end(), {static_cast<Kpr16s>(-4 * k), static_cast<Kpr16s>(12 * k), 0});
    }
    re.push_back(-32768);
    im.push_back(-32768);
    dst.resize(re.size());
    for (int scale : {0, 1, 2, 5, 9, 16}) {
        ASSERT_EQ(kprsMagnitude_16s_Sfs(re.data(), im.data(), dst.data(), static_cast<int>(re.size()), scale),
                  kprStatusOk);
        for (std::size_t i = 0; i < re.size(); ++i) {
            ASSERT_EQ(dst[i], scaledRoot(Kpr64s{re[i]} * re[i] + Kpr64s{im[i]} * im[i], scale))
                << re[i] << ", " << im[i] << ", scale " << scale;
        }
    }
}

// Ascending, NaN last, and what went in.
void checkSort(std::vector<double> data) {
    test::GuardedBytes memory(data.size() * sizeof(double),
                              data.size() % 2 == 0 ? test::Guard::After : test::Guard::Before);
    std::copy(data.begin(), data.end(), reinterpret_cast<double*>(memory.data()));
    ASSERT_EQ(kprsSortAscend_64f_I(reinterpret_cast<double*>(memory.data()), static_cast<int>(data.size())),
              kprStatusOk);
    std::sort(data.begin(), data.end(), [](double a, double b) { return std::isnan(b) ? !std::isnan(a) : a < b; });
    for (std::size_t i = 0; i < data.size(); ++i) {
        const double got = reinterpret_cast<double*>(memory.data())[i];
        ASSERT_TRUE(got == data[i] || same(got, data[i])) << "at " << i << " of " << data.size();
    }
}

TEST(Math, SortAscending) {
    Random random;
    for (int round = 0; round < 3000; ++round) {
        const int length = random.oneIn(50) ? random.range(1000, 20000) : random.range(2, 60);
        const int kinds = random.oneIn(2) ? INT32_MAX : random.range(1, 8);
        const bool wild = random.oneIn(3);
        std::vector<double> data(static_cast<std::size_t>(length));
        for (double& element : data) element = wild ? random.pixel<double>(true) : random.range(1, kinds);
        checkSort(data);
        if (testing::Test::HasFatalFailure()) return;
    }
    for (int length : {9, 10, 11, 1000, 100001}) {
        std::vector<double> rising, falling, organ;
        for (int i = 0; i < length; ++i) {
            rising.push_back(i);
            falling.push_back(-i);
            organ.push_back(std::min(i, length - i));
        }
        checkSort(rising);
        checkSort(falling);
        checkSort(organ);
        checkSort(std::vector<double>(static_cast<std::size_t>(length), 7.0));
        checkSort(std::vector<double>(static_cast<std::size_t>(length), kNan));
    }
}

TEST(Math, Statuses) {
    float f = 4.0F;
    double d = 4.0;
    Kpr16s s = 4;
    EXPECT_EQ(kprsSqrt_32f(nullptr, &f, 0), kprStatusNullPtr);
    EXPECT_EQ(kprsSqrt_32f(&f, nullptr, 1), kprStatusNullPtr);
    EXPECT_EQ(kprsSqrt_32f(&f, &f, 0), kprStatusBadSize);
    EXPECT_EQ(kprsSqrt_32f_I(nullptr, 1), kprStatusNullPtr);
    EXPECT_EQ(kprsSqrt_32f_I(&f, -1), kprStatusBadSize);
    for (auto* function : {kprsAtan2_32f_A21, kprsMagnitude_32f}) {
        EXPECT_EQ(function(nullptr, &f, &f, 0), kprStatusNullPtr);
        EXPECT_EQ(function(&f, nullptr, &f, 1), kprStatusNullPtr);
        EXPECT_EQ(function(&f, &f, nullptr, 1), kprStatusNullPtr);
        EXPECT_EQ(function(&f, &f, &f, 0), kprStatusBadSize);
    }
    EXPECT_EQ(kprsMagnitude_16s_Sfs(nullptr, &s, &s, 0, 0), kprStatusNullPtr);
    EXPECT_EQ(kprsMagnitude_16s_Sfs(&s, nullptr, &s, 1, 0), kprStatusNullPtr);
    EXPECT_EQ(kprsMagnitude_16s_Sfs(&s, &s, nullptr, 1, 0), kprStatusNullPtr);
    EXPECT_EQ(kprsMagnitude_16s_Sfs(&s, &s, &s, INT32_MIN, 0), kprStatusBadSize);
    EXPECT_EQ(kprsSortAscend_64f_I(nullptr, 0), kprStatusNullPtr);
    for (int len : {1, 0, -1, INT32_MIN}) EXPECT_EQ(kprsSortAscend_64f_I(&d, len), kprStatusOk);
    EXPECT_TRUE(f == 4.0F && d == 4.0 && s == 4);
}

}  // namespace
