#include <gtest/gtest.h>

#include "tests/reference/statistics.h"
#include "tests/stats/selected.h"

namespace {

using test::Selected;

enum Kind { Inf, L1, L2 };

// The norm of what `at` says of each pixel, which is not negative; pixels that are not selected say 0.
template <typename T>
double expectedNorm(Kind kind, KprSize size, const reference::PixelAt<T>& at) {
    if (kind == Inf) {
        T largest = 0;
        for (int y = 0; y < size.height; ++y) {
            for (int x = 0; x < size.width; ++x) largest = std::max(largest, at(x, y));
        }
        return static_cast<double>(largest);
    }
    double sum = 0;
    if constexpr (std::is_floating_point_v<T>) {
        sum = reference::sumOfFloats(
            size, kind == L1 ? at : [&](int x, int y) { return at(x, y) * at(x, y); });
    } else {
        sum = reference::sumOfIntegers(size, [&](int x, int y) {
            return kind == L1 ? static_cast<long long>(at(x, y)) : static_cast<long long>(at(x, y)) * at(x, y);
        });
    }
    return kind == L1 ? sum : std::sqrt(sum);
}

template <typename T>
T magnitude(T a, T b) {
    if constexpr (std::is_floating_point_v<T>) return std::fabs(a - b);
    return static_cast<T>(std::abs(int(a) - int(b)));
}

template <typename T, typename C1M, typename C3CM>
void checkNorm(Kind kind, C1M c1m, C3CM c3cm) {
    test::sweepSelected<T>([&](Selected<T>& s, test::Random&) {
        const double expected =
            expectedNorm<T>(kind, s.size, [&](int x, int y) { return magnitude<T>(s.at(x, y), T{0}); });
        double value = -1;
        EXPECT_EQ(s.coi == 0 ? c1m(s.src(), s.srcStep(), s.mask(), s.maskStep(), s.size, &value)
                             : c3cm(s.src(), s.srcStep(), s.mask(), s.maskStep(), s.size, s.coi, &value),
                  kprStatusOk);
        EXPECT_TRUE(test::same(value, expected)) << value << ", expected " << expected << s;
    });
}

// Of two images: the norm of the difference, and that norm relative to the second's.
template <typename T, typename C1M, typename C3CM>
void checkPair(Kind kind, bool relative, C1M c1m, C3CM c3cm) {
    test::sweepSelected<T>([&](Selected<T>& s, test::Random& random) {
        if (random.oneIn(8)) s.images[1].forEach([](T& pixel) { pixel = 0; });
        double expected = expectedNorm<T>(kind, s.size, [&](int x, int y) {
            return s.selects(x, y) ? magnitude<T>(s.pixel(0, x, y), s.pixel(1, x, y)) : T{0};
        });
        KprStatus status = kprStatusOk;
        if (relative) {
            const double divisor = expectedNorm<T>(kind, s.size, [&](int x, int y) {
                return s.selects(x, y) ? magnitude<T>(s.pixel(1, x, y), T{0}) : T{0};
            });
            if (divisor == 0) status = kprStatusZeroDivisor;
            const bool aboveZero = !std::isnan(expected);
            expected /= divisor;
            if (divisor == 0 && !aboveZero) expected = -std::numeric_limits<double>::infinity();
        }
        double value = -1;
        EXPECT_EQ(
            s.coi == 0
                ? c1m(s.src(0), s.srcStep(0), s.src(1), s.srcStep(1), s.mask(), s.maskStep(), s.size, &value)
                : c3cm(s.src(0), s.srcStep(0), s.src(1), s.srcStep(1), s.mask(), s.maskStep(), s.size, s.coi, &value),
            status);
        EXPECT_TRUE(test::same(value, expected)) << value << ", expected " << expected << s;
    });
}

TEST(Norm, OfSelectedPixels) {
    checkNorm<Kpr8u>(Inf, kpriNorm_Inf_8u_C1MR, kpriNorm_Inf_8u_C3CMR);
    checkNorm<Kpr16u>(Inf, kpriNorm_Inf_16u_C1MR, kpriNorm_Inf_16u_C3CMR);
    checkNorm<Kpr32f>(Inf, kpriNorm_Inf_32f_C1MR, kpriNorm_Inf_32f_C3CMR);
    checkNorm<Kpr8u>(L1, kpriNorm_L1_8u_C1MR, kpriNorm_L1_8u_C3CMR);
    checkNorm<Kpr16u>(L1, kpriNorm_L1_16u_C1MR, kpriNorm_L1_16u_C3CMR);
    checkNorm<Kpr32f>(L1, kpriNorm_L1_32f_C1MR, kpriNorm_L1_32f_C3CMR);
    checkNorm<Kpr8u>(L2, kpriNorm_L2_8u_C1MR, kpriNorm_L2_8u_C3CMR);
    checkNorm<Kpr16u>(L2, kpriNorm_L2_16u_C1MR, kpriNorm_L2_16u_C3CMR);
    checkNorm<Kpr32f>(L2, kpriNorm_L2_32f_C1MR, kpriNorm_L2_32f_C3CMR);
}

TEST(Norm, OfDifferences) {
    checkPair<Kpr8u>(Inf, false, kpriNormDiff_Inf_8u_C1MR, kpriNormDiff_Inf_8u_C3CMR);
    checkPair<Kpr16u>(Inf, false, kpriNormDiff_Inf_16u_C1MR, kpriNormDiff_Inf_16u_C3CMR);
    checkPair<Kpr32f>(Inf, false, kpriNormDiff_Inf_32f_C1MR, kpriNormDiff_Inf_32f_C3CMR);
    checkPair<Kpr8u>(L1, false, kpriNormDiff_L1_8u_C1MR, kpriNormDiff_L1_8u_C3CMR);
    checkPair<Kpr16u>(L1, false, kpriNormDiff_L1_16u_C1MR, kpriNormDiff_L1_16u_C3CMR);
    checkPair<Kpr32f>(L1, false, kpriNormDiff_L1_32f_C1MR, kpriNormDiff_L1_32f_C3CMR);
    checkPair<Kpr8u>(L2, false, kpriNormDiff_L2_8u_C1MR, kpriNormDiff_L2_8u_C3CMR);
    checkPair<Kpr16u>(L2, false, kpriNormDiff_L2_16u_C1MR, kpriNormDiff_L2_16u_C3CMR);
    checkPair<Kpr32f>(L2, false, kpriNormDiff_L2_32f_C1MR, kpriNormDiff_L2_32f_C3CMR);
}

TEST(Norm, OfDifferencesRelativeToTheSecondImage) {
    checkPair<Kpr8u>(Inf, true, kpriNormRel_Inf_8u_C1MR, kpriNormRel_Inf_8u_C3CMR);
    checkPair<Kpr16u>(Inf, true, kpriNormRel_Inf_16u_C1MR, kpriNormRel_Inf_16u_C3CMR);
    checkPair<Kpr32f>(Inf, true, kpriNormRel_Inf_32f_C1MR, kpriNormRel_Inf_32f_C3CMR);
    checkPair<Kpr8u>(L1, true, kpriNormRel_L1_8u_C1MR, kpriNormRel_L1_8u_C3CMR);
    checkPair<Kpr16u>(L1, true, kpriNormRel_L1_16u_C1MR, kpriNormRel_L1_16u_C3CMR);
    checkPair<Kpr32f>(L1, true, kpriNormRel_L1_32f_C1MR, kpriNormRel_L1_32f_C3CMR);
    checkPair<Kpr8u>(L2, true, kpriNormRel_L2_8u_C1MR, kpriNormRel_L2_8u_C3CMR);
    checkPair<Kpr16u>(L2, true, kpriNormRel_L2_16u_C1MR, kpriNormRel_L2_16u_C3CMR);
    checkPair<Kpr32f>(L2, true, kpriNormRel_L2_32f_C1MR, kpriNormRel_L2_32f_C3CMR);
}

TEST(Norm, RootOfSquares) {
    const Kpr8u src[] = {3, 4, 100};
    const Kpr8u mask[] = {1, 255, 0};
    double value = 0;
    ASSERT_EQ(kpriNorm_L2_8u_C1MR(src, 3, mask, 3, {3, 1}, &value), kprStatusOk);
    EXPECT_EQ(value, 5.0);
}

TEST(Norm, ZeroDivisor) {
    const Kpr8u a[] = {7}, b[] = {0}, none[] = {0}, all[] = {1};
    double value = 0;
    EXPECT_EQ(kpriNormRel_Inf_8u_C1MR(a, 1, b, 1, all, 1, {1, 1}, &value), kprStatusZeroDivisor);
    EXPECT_EQ(value, std::numeric_limits<double>::infinity());
    EXPECT_EQ(kpriNormRel_L1_8u_C1MR(a, 1, b, 1, none, 1, {1, 1}, &value), kprStatusZeroDivisor);
    EXPECT_TRUE(std::isnan(value));
    const Kpr32f nan[] = {std::numeric_limits<float>::quiet_NaN()}, zero[] = {0};
    EXPECT_EQ(kpriNormRel_L2_32f_C1MR(nan, 4, zero, 4, all, 1, {1, 1}, &value), kprStatusZeroDivisor);
    EXPECT_EQ(value, -std::numeric_limits<double>::infinity());
    EXPECT_EQ(kpriNormRel_Inf_32f_C1MR(nan, 4, zero, 4, all, 1, {1, 1}, &value), kprStatusZeroDivisor);
    EXPECT_TRUE(std::isnan(value)) << "the largest passes a NaN over: 0 by 0";
}

// Of one float source the multiple is tested before the mask's length.
template <typename... A>
void floatNormLadder(test::Ladder<A...> ladder, int channels) {
    ladder.channels({channels}).nulls().sizes().lengths({0}).multiples({0}).lengths({1});
    if (channels == 3) ladder.coi();
    ladder.run();
}

TEST(Norm, StatusLadders) {
    test::statisticLadder<Kpr8u>(LADDER(kpriNorm_Inf_8u_C1MR), {.masked = true});
    test::statisticLadder<Kpr8u>(LADDER(kpriNorm_Inf_8u_C3CMR), {.masked = true, .channels = 3});
    test::statisticLadder<Kpr16u>(LADDER(kpriNorm_Inf_16u_C1MR), {.masked = true});
    test::statisticLadder<Kpr16u>(LADDER(kpriNorm_Inf_16u_C3CMR), {.masked = true, .channels = 3});
    floatNormLadder(LADDER(kpriNorm_Inf_32f_C1MR), 1);
    floatNormLadder(LADDER(kpriNorm_Inf_32f_C3CMR), 3);
    test::statisticLadder<Kpr8u>(LADDER(kpriNorm_L1_8u_C1MR), {.masked = true});
    test::statisticLadder<Kpr8u>(LADDER(kpriNorm_L1_8u_C3CMR), {.masked = true, .channels = 3});
    test::statisticLadder<Kpr16u>(LADDER(kpriNorm_L1_16u_C1MR), {.masked = true});
    test::statisticLadder<Kpr16u>(LADDER(kpriNorm_L1_16u_C3CMR), {.masked = true, .channels = 3});
    floatNormLadder(LADDER(kpriNorm_L1_32f_C1MR), 1);
    floatNormLadder(LADDER(kpriNorm_L1_32f_C3CMR), 3);
    test::statisticLadder<Kpr8u>(LADDER(kpriNorm_L2_8u_C1MR), {.masked = true});
    test::statisticLadder<Kpr8u>(LADDER(kpriNorm_L2_8u_C3CMR), {.masked = true, .channels = 3});
    test::statisticLadder<Kpr16u>(LADDER(kpriNorm_L2_16u_C1MR), {.masked = true});
    test::statisticLadder<Kpr16u>(LADDER(kpriNorm_L2_16u_C3CMR), {.masked = true, .channels = 3});
    floatNormLadder(LADDER(kpriNorm_L2_32f_C1MR), 1);
    floatNormLadder(LADDER(kpriNorm_L2_32f_C3CMR), 3);
}

TEST(Norm, StatusLaddersOfTwoSources) {
    const test::StatisticForm one = {.sources = 2, .masked = true};
    const test::StatisticForm three = {.sources = 2, .masked = true, .channels = 3};
    test::statisticLadder<Kpr8u>(LADDER(kpriNormDiff_Inf_8u_C1MR), one);
    test::statisticLadder<Kpr8u>(LADDER(kpriNormDiff_Inf_8u_C3CMR), three);
    test::statisticLadder<Kpr16u>(LADDER(kpriNormDiff_Inf_16u_C1MR), one);
    test::statisticLadder<Kpr16u>(LADDER(kpriNormDiff_Inf_16u_C3CMR), three);
    test::statisticLadder<Kpr32f>(LADDER(kpriNormDiff_Inf_32f_C1MR), one);
    test::statisticLadder<Kpr32f>(LADDER(kpriNormDiff_Inf_32f_C3CMR), three);
    test::statisticLadder<Kpr8u>(LADDER(kpriNormDiff_L1_8u_C1MR), one);
    test::statisticLadder<Kpr8u>(LADDER(kpriNormDiff_L1_8u_C3CMR), three);
    test::statisticLadder<Kpr16u>(LADDER(kpriNormDiff_L1_16u_C1MR), one);
    test::statisticLadder<Kpr16u>(LADDER(kpriNormDiff_L1_16u_C3CMR), three);
    test::statisticLadder<Kpr32f>(LADDER(kpriNormDiff_L1_32f_C1MR), one);
    test::statisticLadder<Kpr32f>(LADDER(kpriNormDiff_L1_32f_C3CMR), three);
    test::statisticLadder<Kpr8u>(LADDER(kpriNormDiff_L2_8u_C1MR), one);
    test::statisticLadder<Kpr8u>(LADDER(kpriNormDiff_L2_8u_C3CMR), three);
    test::statisticLadder<Kpr16u>(LADDER(kpriNormDiff_L2_16u_C1MR), one);
    test::statisticLadder<Kpr16u>(LADDER(kpriNormDiff_L2_16u_C3CMR), three);
    test::statisticLadder<Kpr32f>(LADDER(kpriNormDiff_L2_32f_C1MR), one);
    test::statisticLadder<Kpr32f>(LADDER(kpriNormDiff_L2_32f_C3CMR), three);
    test::statisticLadder<Kpr8u>(LADDER(kpriNormRel_Inf_8u_C1MR), one);
    test::statisticLadder<Kpr8u>(LADDER(kpriNormRel_Inf_8u_C3CMR), three);
    test::statisticLadder<Kpr16u>(LADDER(kpriNormRel_Inf_16u_C1MR), one);
    test::statisticLadder<Kpr16u>(LADDER(kpriNormRel_Inf_16u_C3CMR), three);
    test::statisticLadder<Kpr32f>(LADDER(kpriNormRel_Inf_32f_C1MR), one);
    test::statisticLadder<Kpr32f>(LADDER(kpriNormRel_Inf_32f_C3CMR), three);
    test::statisticLadder<Kpr8u>(LADDER(kpriNormRel_L1_8u_C1MR), one);
    test::statisticLadder<Kpr8u>(LADDER(kpriNormRel_L1_8u_C3CMR), three);
    test::statisticLadder<Kpr16u>(LADDER(kpriNormRel_L1_16u_C1MR), one);
    test::statisticLadder<Kpr16u>(LADDER(kpriNormRel_L1_16u_C3CMR), three);
    test::statisticLadder<Kpr32f>(LADDER(kpriNormRel_L1_32f_C1MR), one);
    test::statisticLadder<Kpr32f>(LADDER(kpriNormRel_L1_32f_C3CMR), three);
    test::statisticLadder<Kpr8u>(LADDER(kpriNormRel_L2_8u_C1MR), one);
    test::statisticLadder<Kpr8u>(LADDER(kpriNormRel_L2_8u_C3CMR), three);
    test::statisticLadder<Kpr16u>(LADDER(kpriNormRel_L2_16u_C1MR), one);
    test::statisticLadder<Kpr16u>(LADDER(kpriNormRel_L2_16u_C3CMR), three);
    test::statisticLadder<Kpr32f>(LADDER(kpriNormRel_L2_32f_C1MR), one);
    test::statisticLadder<Kpr32f>(LADDER(kpriNormRel_L2_32f_C3CMR), three);
}

}  // namespace
