#include <gtest/gtest.h>

#include <algorithm>
#include <limits>

#include "tests/reference/stats.h"
#include "tests/support/guarded_image.h"
#include "tests/support/ladder.h"

namespace {

using test::GuardedImage;
using test::Random;

template <typename T, typename Function>
void checkAbsDiff(Function function, int channels = 1) {
    Random random;
    for (KprSize size : test::allSizes()) {
        GuardedImage<T> a(size, random, channels), b(size, random, channels), dst(size, random, channels);
        a.fill(random, true);
        b.fill(random, true);
        const auto sources = std::pair(a.snapshot(), b.snapshot());
        ASSERT_EQ(function(a.data(), a.step(), b.data(), b.step(), dst.data(), dst.step(), size), kprStatusOk);
        EXPECT_EQ(sources, std::pair(a.snapshot(), b.snapshot()));
        test::expectImage(
            dst, [&](int x, int y, int c) { return reference::absDiff(a.at(x, y, c), b.at(x, y, c)); }, channels);

        GuardedImage<T>& inPlace = random.oneIn(2) ? a : b;
        ASSERT_EQ(function(a.data(), a.step(), b.data(), b.step(), inPlace.data(), inPlace.step(), size), kprStatusOk);
        test::expectImage(
            inPlace, [&](int x, int y, int c) { return dst.at(x, y, c); }, channels);
        if (testing::Test::HasFailure()) return;
    }
}

// With each of `values`; `element` is what a value counts as.
template <typename T, typename Value, typename Function, typename Element>
void checkAbsDiffC(Function function, std::initializer_list<Value> values, Element element) {
    Random random;
    for (KprSize size : test::allSizes()) {
        for (Value value : values) {
            GuardedImage<T> src(size, random), dst(size, random);
            src.fill(random, true);
            ASSERT_EQ(function(src.data(), src.step(), dst.data(), dst.step(), size, value), kprStatusOk);
            test::expectImage(dst,
                              [&](int x, int y, int) { return reference::absDiff<T>(element(value), src.at(x, y)); });
            if (testing::Test::HasFailure()) return;
        }
    }
}

TEST(AbsDiff, Bytes) { checkAbsDiff<Kpr8u>(kpriAbsDiff_8u_C1R); }
TEST(AbsDiff, BytesOfThreeChannels) { checkAbsDiff<Kpr8u>(kpriAbsDiff_8u_C3R, 3); }
TEST(AbsDiff, Words) { checkAbsDiff<Kpr16u>(kpriAbsDiff_16u_C1R); }
TEST(AbsDiff, Floats) { checkAbsDiff<Kpr32f>(kpriAbsDiff_32f_C1R); }

TEST(AbsDiff, ConstantOutsideTheRangeCountsAsItsEnd) {
    checkAbsDiffC<Kpr8u, int>(kpriAbsDiffC_8u_C1R, {0, 1, 100, 255, 300, -7, INT32_MIN, INT32_MAX},
                              [](int value) { return static_cast<Kpr8u>(std::clamp(value, 0, 255)); });
    checkAbsDiffC<Kpr16u, int>(kpriAbsDiffC_16u_C1R, {0, 30000, 65535, 70000, -1, INT32_MIN, INT32_MAX},
                               [](int value) { return static_cast<Kpr16u>(std::clamp(value, 0, 65535)); });
    checkAbsDiffC<Kpr32f, float>(kpriAbsDiffC_32f_C1R, {0.0F, -1.5F, 3e38F, std::numeric_limits<float>::infinity()},
                                 [](float value) { return value; });
}

TEST(AbsDiff, NanResultHasAClearSign) {
    const float inf = std::numeric_limits<float>::infinity();
    const float a[] = {inf, -std::numeric_limits<float>::quiet_NaN(), -0.0F};
    const float b[] = {inf, 1.0F, 0.0F};
    float dst[3];
    ASSERT_EQ(kpriAbsDiff_32f_C1R(a, sizeof a, b, sizeof b, dst, sizeof dst, {3, 1}), kprStatusOk);
    for (float pixel : dst) EXPECT_FALSE(std::signbit(pixel));
    EXPECT_TRUE(std::isnan(dst[0]) && std::isnan(dst[1]));
}

TEST(AbsDiff, StatusLadders) {
    LADDER(kpriAbsDiff_8u_C1R).nulls().sizes().lengths({0, 1, 2}).run();
    LADDER(kpriAbsDiff_8u_C3R).channels({3, 3, 3}).nulls().sizes().lengths({0, 1, 2}).run();
    LADDER(kpriAbsDiff_16u_C1R).nulls().sizes().lengths({0, 1, 2}).multiples({0, 1, 2}).run();
    LADDER(kpriAbsDiff_32f_C1R).nulls().sizes().lengths({0, 1, 2}).multiples({0, 1, 2}).run();
    LADDER(kpriAbsDiffC_8u_C1R).nulls().sizes().lengths({0, 1}).run();
    LADDER(kpriAbsDiffC_16u_C1R).nulls().sizes().lengths({0, 1}).multiples({0, 1}).run();
    LADDER(kpriAbsDiffC_32f_C1R).nulls().sizes().lengths({0, 1}).multiples({0, 1}).run();
}

// A row of 3 * 0x60000000 bytes: no product may wrap on the way to the step's check.
TEST(AbsDiff, RowLengthDoesNotWrap) {
    Kpr8u pixel = 0;
    const int step = 0x20000000;
    EXPECT_EQ(kpriAbsDiff_8u_C3R(&pixel, step, &pixel, step, &pixel, step, {0x60000000, 1}), kprStatusBadStep);
    auto* words = reinterpret_cast<Kpr16u*>(&pixel);
    EXPECT_EQ(kpriAbsDiff_16u_C1R(words, 2, words, 2, words, 2, {INT32_MAX, 1}), kprStatusBadStep);
}

}  // namespace
