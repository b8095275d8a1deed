#include <gtest/gtest.h>

#include "tests/reference/statistics.h"
#include "tests/stats/selected.h"

namespace {

using test::Selected;

template <typename T>
double expectedMean(Selected<T>& s) {
    if (s.count() == 0) return 0;
    const auto at = [&](int x, int y) { return s.at(x, y); };
    const double sum = std::is_floating_point_v<T> ? reference::sumOfFloatsInBatches(s.size, at)
                                                   : reference::sumOfIntegers(s.size, at);
    return sum / s.count();
}

template <typename T>
std::pair<double, double> expectedMoments(Selected<T>& s) {
    if (s.count() == 0) return {0, 0};
    const auto at = [&](int x, int y) { return s.at(x, y); };
    std::pair<double, double> sums;
    if constexpr (std::is_floating_point_v<T>) {
        sums = reference::momentsOfFloats(s.size, at);
    } else {
        sums = {reference::sumOfIntegers(s.size, at), reference::sumOfIntegers(s.size, [&](int x, int y) {
                    return static_cast<long long>(at(x, y)) * at(x, y);
                })};
    }
    const double mean = sums.first / s.count();
    return {mean, reference::deviation(mean, sums.second / s.count())};
}

template <typename T, typename C1M, typename C3CM>
void checkMean(C1M c1m, C3CM c3cm) {
    test::sweepSelected<T>([&](Selected<T>& s, test::Random&) {
        double mean = -1;
        const KprStatus status = s.coi == 0 ? c1m(s.src(), s.srcStep(), s.mask(), s.maskStep(), s.size, &mean)
                                            : c3cm(s.src(), s.srcStep(), s.mask(), s.maskStep(), s.size, s.coi, &mean);
        EXPECT_EQ(status, kprStatusOk);
        EXPECT_TRUE(test::same(mean, expectedMean(s))) << mean << " " << expectedMean(s) << s;
    });
}

template <typename T, typename C1, typename C3C, typename C1M, typename C3CM>
void checkMoments(C1 c1, C3C c3c, C1M c1m, C3CM c3cm) {
    test::sweepSelected<T>([&](Selected<T>& s, test::Random& random) {
        double mean = -1, dev = -1;
        KprStatus status = s.coi == 0 ? c1m(s.src(), s.srcStep(), s.mask(), s.maskStep(), s.size, &mean, &dev)
                                      : c3cm(s.src(), s.srcStep(), s.mask(), s.maskStep(), s.size, s.coi, &mean, &dev);
        EXPECT_EQ(status, kprStatusOk);
        const auto expected = expectedMoments(s);
        EXPECT_TRUE(test::same(mean, expected.first)) << mean << s;
        EXPECT_TRUE(test::same(dev, expected.second)) << dev << s;
        mean = -1;
        status = s.coi == 0 ? c1m(s.src(), s.srcStep(), s.mask(), s.maskStep(), s.size, &mean, nullptr)
                            : c3cm(s.src(), s.srcStep(), s.mask(), s.maskStep(), s.size, s.coi, &mean, nullptr);
        EXPECT_EQ(status, kprStatusOk);
        EXPECT_TRUE(test::same(mean, expected.first)) << mean << s << ", the mean alone";

        s.selectAll(random);
        status = s.coi == 0 ? c1(s.src(), s.srcStep(), s.size, &mean, nullptr)
                            : c3c(s.src(), s.srcStep(), s.size, s.coi, &mean, nullptr);
        EXPECT_EQ(status, kprStatusOk);
        status = s.coi == 0 ? c1(s.src(), s.srcStep(), s.size, nullptr, &dev)
                            : c3c(s.src(), s.srcStep(), s.size, s.coi, nullptr, &dev);
        EXPECT_EQ(status, kprStatusOk);
        const auto ofAll = expectedMoments(s);
        EXPECT_TRUE(test::same(mean, ofAll.first)) << mean << s;
        EXPECT_TRUE(test::same(dev, ofAll.second)) << dev << s;
    });
}

TEST(Mean, OfSelectedPixels) {
    checkMean<Kpr8u>(kpriMean_8u_C1MR, kpriMean_8u_C3CMR);
    checkMean<Kpr16u>(kpriMean_16u_C1MR, kpriMean_16u_C3CMR);
    checkMean<Kpr32f>(kpriMean_32f_C1MR, kpriMean_32f_C3CMR);
}

TEST(Mean, WithDeviation) {
    checkMoments<Kpr8u>(kpriMean_StdDev_8u_C1R, kpriMean_StdDev_8u_C3CR, kpriMean_StdDev_8u_C1MR,
                        kpriMean_StdDev_8u_C3CMR);
    checkMoments<Kpr16u>(kpriMean_StdDev_16u_C1R, kpriMean_StdDev_16u_C3CR, kpriMean_StdDev_16u_C1MR,
                         kpriMean_StdDev_16u_C3CMR);
    checkMoments<Kpr32f>(kpriMean_StdDev_32f_C1R, kpriMean_StdDev_32f_C3CR, kpriMean_StdDev_32f_C1MR,
                         kpriMean_StdDev_32f_C3CMR);
}

// Rows longer than the stretch after which narrow sums are widened, all at the type's largest value.
TEST(Mean, LongBrightRowsDoNotOverflow) {
    const KprSize size = {(1 << 20) + 100, 5};
    const std::vector<Kpr8u> bytes(static_cast<std::size_t>(size.width) * 5, 255);
    const std::vector<Kpr16u> words(static_cast<std::size_t>(size.width) * 5, 65535);
    double mean = -1, dev = -1;
    ASSERT_EQ(kpriMean_StdDev_8u_C1R(bytes.data(), size.width, size, &mean, &dev), kprStatusOk);
    EXPECT_EQ(mean, 255.0);
    EXPECT_EQ(dev, 0.0);
    ASSERT_EQ(kpriMean_StdDev_16u_C1R(words.data(), size.width * 2, size, &mean, &dev), kprStatusOk);
    EXPECT_EQ(mean, 65535.0);
    EXPECT_EQ(dev, 0.0);
    mean = -1;
    ASSERT_EQ(kpriMean_StdDev_8u_C1R(bytes.data(), size.width, size, &mean, nullptr), kprStatusOk);
    EXPECT_EQ(mean, 255.0);
    EXPECT_EQ(kpriMean_StdDev_8u_C1R(bytes.data(), size.width, size, nullptr, nullptr), kprStatusOk);
}

TEST(Mean, WhatIsNotSelectedIsNotSeen) {
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const float src[] = {1.0F, nan, 3.0F, std::numeric_limits<float>::infinity()};
    const Kpr8u mask[] = {1, 0, 128, 0};
    double mean = 0, dev = 0;
    ASSERT_EQ(kpriMean_32f_C1MR(src, sizeof src, mask, sizeof mask, {4, 1}, &mean), kprStatusOk);
    EXPECT_EQ(mean, 2.0);
    ASSERT_EQ(kpriMean_StdDev_32f_C1MR(src, sizeof src, mask, sizeof mask, {4, 1}, &mean, &dev), kprStatusOk);
    EXPECT_EQ(dev, 1.0);
    ASSERT_EQ(kpriMean_StdDev_32f_C1R(src, sizeof src, {4, 1}, &mean, &dev), kprStatusOk);
    EXPECT_TRUE(std::isnan(mean) && std::isnan(dev));
}

TEST(Mean, StatusLadders) {
    test::statisticLadder<Kpr8u>(LADDER(kpriMean_8u_C1MR), {.masked = true});
    test::statisticLadder<Kpr16u>(LADDER(kpriMean_16u_C1MR), {.masked = true});
    test::statisticLadder<Kpr32f>(LADDER(kpriMean_32f_C1MR), {.masked = true});
    test::statisticLadder<Kpr8u>(LADDER(kpriMean_8u_C3CMR), {.masked = true, .channels = 3});
    test::statisticLadder<Kpr16u>(LADDER(kpriMean_16u_C3CMR), {.masked = true, .channels = 3});
    test::statisticLadder<Kpr32f>(LADDER(kpriMean_32f_C3CMR), {.masked = true, .channels = 3});

    test::statisticLadder<Kpr8u>(LADDER(kpriMean_StdDev_8u_C1R), {.optional = {1, 2}});
    test::statisticLadder<Kpr16u>(LADDER(kpriMean_StdDev_16u_C1R), {.optional = {1, 2}});
    test::statisticLadder<Kpr32f>(LADDER(kpriMean_StdDev_32f_C1R), {.optional = {1, 2}});
    test::statisticLadder<Kpr8u>(LADDER(kpriMean_StdDev_8u_C3CR), {.channels = 3, .optional = {1, 2}});
    test::statisticLadder<Kpr16u>(LADDER(kpriMean_StdDev_16u_C3CR), {.channels = 3, .optional = {1, 2}});
    test::statisticLadder<Kpr32f>(LADDER(kpriMean_StdDev_32f_C3CR), {.channels = 3, .optional = {1, 2}});
    test::statisticLadder<Kpr8u>(LADDER(kpriMean_StdDev_8u_C1MR), {.masked = true, .optional = {2, 3}});
    test::statisticLadder<Kpr16u>(LADDER(kpriMean_StdDev_16u_C1MR), {.masked = true, .optional = {2, 3}});
    test::statisticLadder<Kpr32f>(LADDER(kpriMean_StdDev_32f_C1MR), {.masked = true, .optional = {2, 3}});
    test::statisticLadder<Kpr8u>(LADDER(kpriMean_StdDev_8u_C3CMR), {.masked = true, .channels = 3, .optional = {2, 3}});
    test::statisticLadder<Kpr16u>(LADDER(kpriMean_StdDev_16u_C3CMR),
                                  {.masked = true, .channels = 3, .optional = {2, 3}});
    test::statisticLadder<Kpr32f>(LADDER(kpriMean_StdDev_32f_C3CMR),
                                  {.masked = true, .channels = 3, .optional = {2, 3}});
}

}  // namespace
