#include "primitives/kit.h"
#include "tests/support/guarded_image.h"
#include "tests/support/ladder.h"

namespace {

using test::GuardedImage;
using test::Random;

// `beyond(pixel, threshold)` says which pixels become `value`.
template <typename T, typename Call, typename Beyond>
void check(Call call, Beyond beyond) {
    Random random;
    for (KprSize size : test::allSizes()) {
        GuardedImage<T> src(size, random), dst(size, random);
        src.fill(random, true);
        const T threshold = random.pixel<T>(true);
        const T value = random.pixel<T>();
        const T replacement = call(src, dst, threshold, value);
        const auto rule = [&](int x, int y, int) {
            const T pixel = src.at(x, y);
            return beyond(pixel, threshold) ? replacement : pixel;
        };
        test::expectImage(dst, rule);
        call(src, src, threshold, value);
        test::expectImage(src, [&](int x, int y, int) { return dst.at(x, y); });
        if (testing::Test::HasFailure()) return;
    }
}

template <typename T>
void checkBelow(KprStatus (*function)(const T*, int, T*, int, KprSize, T)) {
    check<T>(
        [=](auto& src, auto& dst, T threshold, T) {
            EXPECT_EQ(function(src.data(), src.step(), dst.data(), dst.step(), src.size(), threshold), kprStatusOk);
            return threshold;
        },
        [](T pixel, T threshold) { return pixel < threshold; });
}

template <typename T>
void checkAbove(KprStatus (*function)(const T*, int, T*, int, KprSize, T, T)) {
    check<T>(
        [=](auto& src, auto& dst, T threshold, T value) {
            EXPECT_EQ(function(src.data(), src.step(), dst.data(), dst.step(), src.size(), threshold, value),
                      kprStatusOk);
            return value;
        },
        [](T pixel, T threshold) { return pixel > threshold; });
}

TEST(Threshold, RaisesWhatIsBelow) {
    checkBelow(kpriThreshold_LT_16s_C1R);
    checkBelow(kpriThreshold_LT_32f_C1R);
}

TEST(Threshold, ReplacesWhatIsAbove) {
    checkAbove(kpriThreshold_GTVal_8u_C1R);
    checkAbove(kpriThreshold_GTVal_16u_C1R);
}

TEST(Threshold, CopiesNanAndZerosOfTheOtherSign) {
    // quiet, and signalling of both signs
    const unsigned src[] = {0x7fc12345, 0x7f812345, 0xff812345, 0x80000000, 0xbf800000, 0x3f800000};
    unsigned dst[6];
    const auto raise = [&](float threshold) {
        return kprsThreshold_LT_32f(reinterpret_cast<const float*>(src), reinterpret_cast<float*>(dst), 6, threshold);
    };
    ASSERT_EQ(raise(0.0F), kprStatusOk);
    EXPECT_EQ(dst[4], 0U);
    dst[4] = src[4];
    EXPECT_EQ(std::memcmp(src, dst, sizeof src), 0);
    for (unsigned nan : {0x7fc12345U, 0x7f812345U}) {
        ASSERT_EQ(raise(std::bit_cast<float>(nan)), kprStatusOk);
        EXPECT_EQ(std::memcmp(src, dst, sizeof src), 0);
    }
}

TEST(Threshold, StatusLadders) {
    LADDER(kpriThreshold_LT_16s_C1R).nulls().sizes().run();
    LADDER(kpriThreshold_LT_32f_C1R).nulls().sizes().run();
    LADDER(kpriThreshold_GTVal_8u_C1R).nulls().sizes().run();
    LADDER(kpriThreshold_GTVal_16u_C1R).nulls().sizes().run();
    LADDER(kprsThreshold_LT_32f).with<2>(7).nulls().refuses<2>(0, kprStatusBadSize).run();
}

}  // namespace
