#include <gtest/gtest.h>

#include "tests/distance/ground.h"

namespace {

using test::GuardedBytes;
using test::GuardedImage;
using test::Random;

GuardedBytes bufferFor(KprSize size) {
    int bytes = 0;
    EXPECT_EQ(kpriTrueDistanceTransformGetBufferSize_8u32f_C1R(size, &bytes), kprStatusOk);
    EXPECT_LE(bytes, 16LL * (size.width + size.height) + 4LL * size.width * size.height + 64);
    return test::exactly(bytes);
}

void transform(GuardedImage<Kpr8u>& src, GuardedImage<Kpr32f>& dst) {
    const GuardedBytes buffer = bufferFor(src.size());
    ASSERT_EQ(kpriTrueDistanceTransform_8u32f_C1R(src.data(), src.step(), dst.data(), dst.step(), src.size(),
                                                  test::bufferOf(buffer)),
              kprStatusOk);
}

TEST(ExactDistance, Scenes) {
    Random random;
    for (KprSize size : test::distanceSizes()) {
        for (int round = 0; round < 4; ++round) {
            GuardedImage<Kpr8u> src(size, random);
            GuardedImage<Kpr32f> dst(size, random);
            test::drawScene(src, random);
            const auto before = src.snapshot();
            transform(src, dst);
            EXPECT_EQ(before, src.snapshot());
            test::expectField(dst, reference::exactDistance(test::fieldOf(src)));
            if (testing::Test::HasFailure()) return;
        }
    }
}

// Rows on which each thinning of the points finds a point or two, and walls of parabolas that hide one another late.
TEST(ExactDistance, PointsThatHideOneByOne) {
    Random random;
    for (int round = 0; round < 12; ++round) {
        const KprSize size = {round < 6 ? 300 : 700, 90};
        GuardedImage<Kpr8u> src(size, random);
        GuardedImage<Kpr32f> dst(size, random);
        src.forEach([](Kpr8u& pixel) { pixel = 1; });
        for (int x = 0; x < size.width; ++x) {
            const double away = round % 3 == 0 ? std::sqrt(x * 11.0) : round % 3 == 1 ? x * x / 6000.0 : x / 8.0;
            src.at(x, std::clamp(89 - static_cast<int>(away) - random.range(0, round % 2), 0, 89)) = 0;
        }
        transform(src, dst);
        test::expectField(dst, reference::exactDistance(test::fieldOf(src)));
        if (testing::Test::HasFailure()) return;
    }
}

// Squares that single precision does not hold, where the stretches of the corners begin.
TEST(ExactDistance, WideImage) {
    Random random;
    const KprSize size = {7001, 3};
    GuardedImage<Kpr8u> src(size, random);
    GuardedImage<Kpr32f> dst(size, random);
    src.forEach([&](Kpr8u& pixel) { pixel = random.oneIn(200) ? 0 : 1; });
    transform(src, dst);
    test::expectField(dst, reference::exactDistance(test::fieldOf(src)));
}

// Around the sides from which rows are no more taken by vectors, and the squares that single precision does not hold.
TEST(ExactDistance, LongImages) {
    Random random;
    for (KprSize size : {KprSize{32767, 2}, {32768, 2}, {40000, 1}, {2, 32768}, {1, 32767}, {5000, 7}}) {
        GuardedImage<Kpr8u> src(size, random);
        GuardedImage<Kpr32f> dst(size, random);
        src.forEach([](Kpr8u& pixel) { pixel = 9; });
        src.at(size.width / 3, size.height / 3) = src.at(size.width - 1, 0) = 0;
        transform(src, dst);
        test::expectImage(dst, [&](int x, int y, int) {
            const auto to = [&](double i, double j) { return (x - i) * (x - i) + (y - j) * (y - j); };
            return static_cast<float>(std::sqrt(std::min(to(size.width / 3, size.height / 3), to(size.width - 1, 0))));
        });
        if (testing::Test::HasFailure()) return;
    }
}

TEST(ExactDistance, Statuses) {
    LADDER(kpriTrueDistanceTransformGetBufferSize_8u32f_C1R).nulls().sizes().run();
    int bytes = 77;
    for (KprSize size : {KprSize{0x7fffffff, 0x7fffffff}, {30000, 30000}, {0x7fffffff, 1}}) {
        EXPECT_EQ(kpriTrueDistanceTransformGetBufferSize_8u32f_C1R(size, &bytes), kprStatusSizeOverflow);
    }
    EXPECT_EQ(bytes, 77);
    EXPECT_EQ(kpriTrueDistanceTransformGetBufferSize_8u32f_C1R({20000, 20000}, &bytes), kprStatusOk);
    std::vector<Kpr8u> buffer(4000);
    LADDER(kpriTrueDistanceTransform_8u32f_C1R)
        .with<5>(buffer.data())
        .nulls()
        .sizes()
        .lengths({0, 1})
        .multiples({1})
        .run();
}

}  // namespace
