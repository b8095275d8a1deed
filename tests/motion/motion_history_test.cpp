#include <gtest/gtest.h>

#include "tests/support/guarded_image.h"
#include "tests/support/ladder.h"

namespace {

using test::GuardedImage;
using test::Random;

template <typename T, typename Function>
void checkUpdate(Function function) {
    Random random;
    const auto check = [&](KprSize size) {
        GuardedImage<T> silhouette(size, random);
        GuardedImage<Kpr32f> history(size, random);
        silhouette.forEach([&](T& pixel) {
            pixel = random.oneIn(2) ? T{0} : random.pixel<T>(true);
            if (std::is_floating_point_v<T> && random.oneIn(8)) pixel = -pixel;
        });
        history.forEach([&](Kpr32f& pixel) {
            pixel = random.oneIn(8) ? random.pixel<Kpr32f>(true) : static_cast<Kpr32f>(random.range(-4, 40));
        });
        const auto now = static_cast<Kpr32f>(random.range(-3, 40));
        const Kpr32f duration = random.oneIn(10) ? NAN : static_cast<Kpr32f>(random.range(0, 30));
        const Kpr32f limit = now - duration;
        std::vector<Kpr32f> before;
        history.forEach([&](Kpr32f& pixel) { before.push_back(pixel); });
        ASSERT_EQ(function(silhouette.data(), silhouette.step(), history.data(), history.step(), size, now, duration),
                  kprStatusOk);
        test::expectImage(history, [&](int x, int y, int) {
            const Kpr32f old = before[static_cast<std::size_t>(y * size.width + x)];
            if (silhouette.at(x, y) != T{0}) return now;
            return old < limit ? 0.0F : old;
        });
    };
    for (KprSize size : test::awkwardSizes()) {
        check(size);
        ASSERT_FALSE(testing::Test::HasFailure());
    }
    for (KprSize size : {KprSize{5, 300}, {67, 131}, {640, 3}, {641, 479}}) check(size);
}

TEST(MotionHistory, Bytes) { checkUpdate<Kpr8u>(kpriUpdateMotionHistory_8u32f_C1IR); }
TEST(MotionHistory, Words) { checkUpdate<Kpr16u>(kpriUpdateMotionHistory_16u32f_C1IR); }
TEST(MotionHistory, Floats) { checkUpdate<Kpr32f>(kpriUpdateMotionHistory_32f_C1IR); }

TEST(MotionHistory, Ladders) {
    const auto run = [](auto& ladder) {
        ladder.template refuses<6>(-1.0F, kprStatusOutOfRange)
            .template refuses<6>(-INFINITY, kprStatusOutOfRange)
            .run();
    };
    run(LADDER(kpriUpdateMotionHistory_8u32f_C1IR).nulls().sizes().lengths({0, 1}).multiples({1}));
    run(LADDER(kpriUpdateMotionHistory_16u32f_C1IR).nulls().sizes().lengths({0, 1}).multiples({0, 1}));
    run(LADDER(kpriUpdateMotionHistory_32f_C1IR).nulls().sizes().lengths({0, 1}).multiples({0, 1}));
}

}  // namespace
