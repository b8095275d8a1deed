#include <gtest/gtest.h>

#include "tests/reference/geometry.h"
#include "tests/support/guarded_image.h"
#include "tests/support/ladder.h"

namespace {

using test::GuardedBytes;
using test::GuardedImage;
using test::Random;

reference::Camera camera(Random& random, KprSize size) {
    const auto about = [&](float v) { return v * static_cast<float>(random.range(50, 150)) / 100.0F; };
    const auto small = [&] { return static_cast<float>(random.range(-400, 400)) / 1000.0F; };
    const auto w = static_cast<float>(size.width), h = static_cast<float>(size.height);
    if (random.oneIn(6)) return {about(w), about(h), about(w / 2), about(h / 2), 0, 0};  // no distortion
    if (random.oneIn(6)) return {1e-3F, -1e-30F, 1e20F, about(h), small(), small(), small(), small()};
    return {about(w), (random.oneIn(4) ? -1 : 1) * about(h), about(w / 2), about(h / 2), small(), small(), small(),
            small()};
}

GuardedBytes bufferFor(KprSize size) {
    int bytes = 0;
    EXPECT_EQ(kpriUndistortGetSize(size, &bytes), kprStatusOk);
    EXPECT_TRUE(bytes > 0 && bytes <= 64 * size.width + 1024);
    return GuardedBytes(static_cast<std::size_t>(bytes), test::Guard::After);
}

template <typename T, typename Function>
void checkRadial(Function function, int channels) {
    Random random;
    const auto check = [&](KprSize size) {
        GuardedImage<T> src(size, random, channels), dst(size, random, channels);
        src.fill(random, true);
        const reference::Camera c = camera(random, size);
        const GuardedBytes buffer = bufferFor(size);
        ASSERT_EQ(function(src.data(), src.step(), dst.data(), dst.step(), size, c.fx, c.fy, c.cx, c.cy, c.k1, c.k2,
                           reinterpret_cast<Kpr8u*>(buffer.data())),
                  kprStatusOk);
        test::expectImage(
            dst,
            [&](int x, int y, int channel) {
                const auto [sx, sy] = reference::distorted(c, x, y, false);
                const auto pixel = [&](std::int64_t px, std::int64_t py) {
                    return src.at(static_cast<int>(px), static_cast<int>(py), channel);
                };
                return reference::bilinear<T>(pixel, size, sx, sy);
            },
            channels);
    };
    for (int round = 0; round < 4; ++round) {
        for (KprSize size : test::awkwardSizes()) {
            check(size);
            if (testing::Test::HasFailure()) return;
        }
    }
    for (KprSize size : {KprSize{5, 300}, {67, 131}, {640, 3}, {641, 479}}) check(size);
}

TEST(UndistortRadial, Bytes) { checkRadial<Kpr8u>(kpriUndistortRadial_8u_C1R, 1); }
TEST(UndistortRadial, BytesOfThreeChannels) { checkRadial<Kpr8u>(kpriUndistortRadial_8u_C3R, 3); }
TEST(UndistortRadial, Words) { checkRadial<Kpr16u>(kpriUndistortRadial_16u_C1R, 1); }
TEST(UndistortRadial, WordsOfThreeChannels) { checkRadial<Kpr16u>(kpriUndistortRadial_16u_C3R, 3); }
TEST(UndistortRadial, Floats) { checkRadial<Kpr32f>(kpriUndistortRadial_32f_C1R, 1); }
TEST(UndistortRadial, FloatsOfThreeChannels) { checkRadial<Kpr32f>(kpriUndistortRadial_32f_C3R, 3); }

TEST(CreateMapCameraUndistort, Positions) {
    Random random;
    for (KprSize size : test::awkwardSizes()) {
        GuardedImage<Kpr32f> xMap(size, random), yMap(size, random);
        const reference::Camera c = camera(random, size);
        const GuardedBytes buffer = bufferFor(size);
        ASSERT_EQ(kpriCreateMapCameraUndistort_32f_C1R(xMap.data(), xMap.step(), yMap.data(), yMap.step(), size, c.fx,
                                                       c.fy, c.cx, c.cy, c.k1, c.k2, c.p1, c.p2,
                                                       reinterpret_cast<Kpr8u*>(buffer.data())),
                  kprStatusOk);
        test::expectImage(xMap, [&](int x, int y, int) { return reference::distorted(c, x, y, true).first; });
        test::expectImage(yMap, [&](int x, int y, int) { return reference::distorted(c, x, y, true).second; });
        ASSERT_FALSE(HasFailure());
    }
}

// Rows so far apart that offsets need more than 32 bits: memory that is never touched between them.
TEST(UndistortRadial, RowsBeyond2To31Bytes) {
    constexpr int step = 0x7f000000, width = 40;
    GuardedBytes memory(std::size_t{step} * 2 + width, test::Guard::After);
    auto* const src = reinterpret_cast<Kpr8u*>(memory.data());
    Kpr8u dst[3][width], buffer[64];
    for (int y = 0; y < 3; ++y) {
        for (int x = 0; x < width; ++x) src[std::size_t{step} * y + x] = static_cast<Kpr8u>(x * 5 + y * 50);
    }
    ASSERT_EQ(kpriUndistortRadial_8u_C1R(src, step, dst[0], width, {width, 3}, 8, 8, 3, 1, 0, 0, buffer), kprStatusOk);
    for (int y = 0; y < 3; ++y) {
        for (int x = 0; x < width; ++x) EXPECT_EQ(dst[y][x], src[std::size_t{step} * y + x]) << x << ", " << y;
    }
}

// Columns are exact in single precision up to 2^24.
template <typename Ladder>
auto& withSides(Ladder&& ladder) {
    constexpr int beyond = (1 << 24) + 1;
    return ladder.nulls()
        .sizes()
        .template refuses<4>({beyond, 1}, kprStatusBadSize)
        .template refuses<4>({1, beyond}, kprStatusBadSize);
}

template <int count, typename Ladder>
void runWithParameters(Ladder& ladder) {
    constexpr int first = 5;
    [&]<int... i>(std::integer_sequence<int, i...>) {
        (ladder.template with<first + i>(1.0F), ...);
        for (float bad : {NAN, INFINITY, -INFINITY}) (ladder.template refuses<first + i>(bad, kprStatusBadArg), ...);
    }
    (std::make_integer_sequence<int, count>{});
    ladder.template refuses<first>(0.0F, kprStatusBadArg).template refuses<first + 1>(-0.0F, kprStatusBadArg);
    ladder.run();
}

TEST(UndistortRadial, Ladders) {
    runWithParameters<6>(withSides(LADDER(kpriUndistortRadial_8u_C1R)).lengths({0, 1}));
    runWithParameters<6>(withSides(LADDER(kpriUndistortRadial_8u_C3R).channels({3, 3})).lengths({0, 1}));
    runWithParameters<6>(withSides(LADDER(kpriUndistortRadial_16u_C1R)).lengths({0, 1}).multiples({0, 1}));
    runWithParameters<6>(
        withSides(LADDER(kpriUndistortRadial_16u_C3R).channels({3, 3})).lengths({0, 1}).multiples({0, 1}));
    runWithParameters<6>(withSides(LADDER(kpriUndistortRadial_32f_C1R)).lengths({0, 1}).multiples({0, 1}));
    runWithParameters<6>(
        withSides(LADDER(kpriUndistortRadial_32f_C3R).channels({3, 3})).lengths({0, 1}).multiples({0, 1}));
    runWithParameters<8>(withSides(LADDER(kpriCreateMapCameraUndistort_32f_C1R)).lengths({0, 1}).multiples({0, 1}));
    LADDER(kpriUndistortGetSize).nulls().sizes().refuses<0>({(1 << 24) + 1, 1}, kprStatusBadSize).run();
}

}  // namespace
