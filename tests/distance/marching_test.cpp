#include <gtest/gtest.h>

#include "tests/distance/ground.h"

namespace {

using test::GuardedBytes;
using test::GuardedImage;
using test::Random;

int march(GuardedImage<Kpr8u>& mask, GuardedImage<Kpr32f>& dst, float radius) {
    int bytes = 0;
    EXPECT_EQ(kpriFastMarchingGetBufferSize_8u32f_C1R(mask.size(), &bytes), kprStatusOk);
    const GuardedBytes buffer = test::exactly(bytes);
    EXPECT_EQ(kpriFastMarching_8u32f_C1R(mask.data(), mask.step(), dst.data(), dst.step(), mask.size(), radius,
                                         test::bufferOf(buffer)),
              kprStatusOk);
    reference::FastMarching expected(test::fieldOf(mask), radius);
    test::expectField(dst, expected.run());
    return expected.sweeps;
}

TEST(FastMarching, Scenes) {
    Random random;
    int sweeps = 0;
    for (KprSize size : test::distanceSizes()) {
        for (int round = 0; round < 5; ++round) {
            GuardedImage<Kpr8u> mask(size, random);
            GuardedImage<Kpr32f> dst(size, random);
            test::drawScene(mask, random);
            const float radius = random.oneIn(3)    ? 0.0F
                                 : random.oneIn(12) ? std::numeric_limits<float>::infinity()
                                                    : static_cast<float>(random.range(1, 99)) / 8.0F;
            SCOPED_TRACE("radius " + std::to_string(radius));
            sweeps += march(mask, dst, radius);
            if (testing::Test::HasFailure()) return;
        }
    }
    EXPECT_GT(sweeps, 0) << "scenes that need no sweeps by flags test nothing of them";
}

TEST(FastMarching, EdgesOfTheMask) {
    const Kpr8u mask[] = {0, 0, 7, 0, 0, 0};
    float dst[6];
    Kpr8u buffer[2000];
    ASSERT_EQ(kpriFastMarching_8u32f_C1R(mask, 6, dst, 24, {6, 1}, 1.0F, buffer), kprStatusOk);
    const float inward[] = {-1, -1e-10F, 1, -1e-10F, -1, 0};  // -2 is beyond the radius
    for (int x = 0; x < 6; ++x) EXPECT_EQ(dst[x], inward[x]) << x;
    const Kpr8u full[] = {1, 1, 1, 1, 1, 1};
    ASSERT_EQ(kpriFastMarching_8u32f_C1R(full, 6, dst, 24, {6, 1}, 0.0F, buffer), kprStatusOk);
    EXPECT_EQ(dst[5], 1000004.0F);
}

TEST(FastMarching, Statuses) {
    int bytes = 0;
    ASSERT_EQ(kpriFastMarchingGetBufferSize_8u32f_C1R({33, 10}, &bytes), kprStatusOk);
    EXPECT_EQ(bytes, (10 + 34) * (64 + 5) + 40);
    EXPECT_EQ(kpriFastMarchingGetBufferSize_8u32f_C1R({0x7fffffff, 0x7fffffff}, &bytes), kprStatusSizeOverflow);
    LADDER(kpriFastMarchingGetBufferSize_8u32f_C1R).nulls().sizes().run();
    std::vector<Kpr8u> buffer(4000);
    LADDER(kpriFastMarching_8u32f_C1R)
        .with<5>(0)
        .with<6>(buffer.data())
        .nulls()
        .sizes()
        .lengths({0, 1})
        .multiples({1})
        .refuses<5>(-1e-30F, kprStatusBadArg)
        .refuses<5>(std::nanf(""), kprStatusBadArg)
        .run();
}

}  // namespace
