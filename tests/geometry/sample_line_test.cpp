#include <gtest/gtest.h>

#include "tests/support/guarded_image.h"
#include "tests/support/ladder.h"

namespace {

using test::GuardedImage;
using test::Random;

template <typename T, typename Function>
void checkLine(Function function, int channels) {
    Random random;
    for (int round = 0; round < 300; ++round) {
        const KprSize size = {random.range(1, 90), random.range(1, 60)};
        const auto point = [&] { return KprPoint{random.range(0, size.width - 1), random.range(0, size.height - 1)}; };
        const KprPoint start = point();
        KprPoint end = random.oneIn(8) ? start : point();
        if (random.oneIn(4)) {  // as far across as down
            const int d = std::min(size.width - 1 - start.x, size.height - 1 - start.y);
            end = {start.x + d, start.y + d};
        }
        const int dx = end.x - start.x, dy = end.y - start.y;
        const int n = std::max(std::abs(dx), std::abs(dy)) + 1;
        GuardedImage<T> src(size, random, channels), dst({n, 1}, random, channels);
        src.fill(random, true);
        ASSERT_EQ(function(src.data(), src.step(), size, dst.data(), start, end), kprStatusOk);
        // The k-th pixel is k steps along, and across as many times as 2 * k * minor has passed an odd multiple of the
        // major distance.
        const bool down = std::abs(dx) <= std::abs(dy);
        const std::int64_t major = n - 1, minor = down ? std::abs(dx) : std::abs(dy);
        test::expectImage(
            dst,
            [&](int k, int, int c) {
                const std::int64_t beside = major == 0 ? 0 : (2 * k * minor - major + 2 * major - 1) / (2 * major);
                const int along = k * (down ? (dy > 0) - (dy < 0) : (dx > 0) - (dx < 0));
                const int across = static_cast<int>(beside) * (down ? (dx > 0) - (dx < 0) : (dy > 0) - (dy < 0));
                return src.at(start.x + (down ? across : along), start.y + (down ? along : across), c);
            },
            channels);
        ASSERT_FALSE(testing::Test::HasFailure()) << start.x << ", " << start.y << " to " << end.x << ", " << end.y;
    }
}

TEST(SampleLine, AllForms) {
    checkLine<Kpr8u>(kpriSampleLine_8u_C1R, 1);
    checkLine<Kpr8u>(kpriSampleLine_8u_C3R, 3);
    checkLine<Kpr16u>(kpriSampleLine_16u_C1R, 1);
    checkLine<Kpr16u>(kpriSampleLine_16u_C3R, 3);
    checkLine<Kpr32f>(kpriSampleLine_32f_C1R, 1);
    checkLine<Kpr32f>(kpriSampleLine_32f_C3R, 3);
}

template <typename Ladder>
void runWithEnds(Ladder& ladder) {
    for (KprPoint outside : {KprPoint{-1, 0}, {0, -1}, {7, 0}, {0, 3}, {INT32_MIN, INT32_MAX}}) {
        ladder.template refuses<4>(outside, kprStatusOutOfRange).template refuses<5>(outside, kprStatusOutOfRange);
    }
    ladder.run();
}

TEST(SampleLine, Ladders) {
    runWithEnds(LADDER(kpriSampleLine_8u_C1R).nulls().sizes().lengths({0}));
    runWithEnds(LADDER(kpriSampleLine_8u_C3R).channels({3}).nulls().sizes().lengths({0}));
    runWithEnds(LADDER(kpriSampleLine_16u_C1R).nulls().sizes().lengths({0}).multiples({0}));
    runWithEnds(LADDER(kpriSampleLine_16u_C3R).channels({3}).nulls().sizes().lengths({0}).multiples({0}));
    runWithEnds(LADDER(kpriSampleLine_32f_C1R).nulls().sizes().lengths({0}).multiples({0}));
    runWithEnds(LADDER(kpriSampleLine_32f_C3R).channels({3}).nulls().sizes().lengths({0}).multiples({0}));
}

}  // namespace
