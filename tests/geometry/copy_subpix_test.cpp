#include <gtest/gtest.h>

#include "tests/reference/geometry.h"
#include "tests/support/guarded_image.h"
#include "tests/support/ladder.h"

namespace {

using test::GuardedImage;
using test::Random;

// Fractions that are negative, at the ends of a weight's range and of a byte's two digits, and no numbers.
float fraction(Random& random) {
    constexpr float special[] = {0.0F,      -0.0F, 0.5F,          -0.5F,   0.25F,    1.0F / 16384, 0.99999F,
                                 1.0F,      -1.0F, 7.25F,         -3.75F,  1e-9F,    -1e-9F,       64.0F / 16384,
                                 0x1.8p23F, 1e30F, 0x1.ffffep-1F, 0.0039F, 0.00391F, 0.00195F};
    if (random.oneIn(2)) return special[random.range(0, static_cast<int>(std::size(special)) - 1)];
    return static_cast<float>(random.range(-40000, 40000)) / 16384.0F;
}

template <typename Src>
reference::PixelAt<Src> pixelsOf(GuardedImage<Src>& image) {
    return [&](std::int64_t x, std::int64_t y) { return image.at(static_cast<int>(x), static_cast<int>(y)); };
}

template <typename Src, typename Dst, typename Function>
void checkCopy(Function function, bool scales = false) {
    Random random;
    const auto check = [&](KprSize size, float dx, float dy) {
        GuardedImage<Src> src({size.width + 1, size.height + 1}, random);
        GuardedImage<Dst> dst(size, random);
        src.fill(random, true);
        const int scale =
            scales ? (random.oneIn(8) ? (random.oneIn(2) ? INT32_MAX : INT32_MIN) : random.range(-33, 12)) : 0;
        ASSERT_EQ(function(src.data(), src.step(), dst.data(), dst.step(), size, scale, dx, dy), kprStatusOk);
        test::expectImage(dst, [&](int x, int y, int) {
            return reference::copySubpix<Src, Dst>(pixelsOf(src), x, y, dx, dy, scale);
        });
        if (testing::Test::HasFailure()) ADD_FAILURE() << "displaced by " << dx << ", " << dy << ", scale " << scale;
    };
    for (int round = 0; round < 6; ++round) {
        for (KprSize size : test::awkwardSizes()) {
            check(size, fraction(random), fraction(random));
            if (testing::Test::HasFailure()) return;
        }
    }
    for (KprSize size : {KprSize{5, 300}, {67, 131}, {640, 3}, {641, 479}})
        check(size, fraction(random), fraction(random));
    if constexpr (std::is_integral_v<Dst>) {
        check({17, 3}, NAN, 0.5F);
        check({17, 3}, 0.5F, INFINITY);
    }
}

template <auto function>
constexpr auto unscaled = [](auto src, int srcStep, auto dst, int dstStep, KprSize size, int, float dx, float dy) {
    return function(src, srcStep, dst, dstStep, size, dx, dy);
};

TEST(CopySubpix, Bytes) { checkCopy<Kpr8u, Kpr8u>(unscaled<kpriCopySubpix_8u_C1R>); }
TEST(CopySubpix, Words) { checkCopy<Kpr16u, Kpr16u>(unscaled<kpriCopySubpix_16u_C1R>); }
TEST(CopySubpix, Floats) { checkCopy<Kpr32f, Kpr32f>(unscaled<kpriCopySubpix_32f_C1R>); }
TEST(CopySubpix, BytesToFloats) { checkCopy<Kpr8u, Kpr32f>(unscaled<kpriCopySubpix_8u32f_C1R>); }
TEST(CopySubpix, WordsToFloats) { checkCopy<Kpr16u, Kpr32f>(unscaled<kpriCopySubpix_16u32f_C1R>); }
TEST(CopySubpix, Scaled) { checkCopy<Kpr8u, Kpr16u>(kpriCopySubpix_8u16u_C1R_Sfs, true); }

// All weights of one axis against all pixels at the ends of their range: where 16-bit sums could overflow.
TEST(CopySubpix, EveryWeightOfBytes) {
    GuardedImage<Kpr8u> src({17, 2}, 1, 0, test::Guard::After), dst({16, 1}, 1, 0, test::Guard::After);
    for (int q = 0; q <= 16384; q += 7) {
        const float dx = static_cast<float>(q) / 16384.0F, dy = static_cast<float>((q * 37) % 16384) / 16384.0F;
        for (int i = 0; i < 17; ++i) {
            src.at(i, 0) = (i & 1) != 0 ? 255 : 0;
            src.at(i, 1) = (i & 2) != 0 ? 255 : 0;
        }
        ASSERT_EQ(kpriCopySubpix_8u_C1R(src.data(), src.step(), dst.data(), dst.step(), {16, 1}, dx, dy), kprStatusOk);
        test::expectImage(dst, [&](int x, int y, int) {
            return reference::copySubpix<Kpr8u, Kpr8u>(pixelsOf(src), x, y, dx, dy, 0);
        });
        ASSERT_FALSE(HasFailure()) << dx << ", " << dy;
    }
}

template <typename Src, typename Dst, typename Function>
void checkPatch(Function function, bool scales = false) {
    Random random;
    const auto check = [&](KprSize size, KprSize patch, KprPoint32f centre) {
        GuardedImage<Src> src(size, random);
        GuardedImage<Dst> dst(patch, random);
        src.fill(random, true);
        KprPoint pMin, pMax;
        const int scale = scales ? random.range(-16, 3) : 0;
        ASSERT_EQ(function(src.data(), src.step(), size, dst.data(), dst.step(), patch, centre, &pMin, &pMax, scale),
                  kprStatusOk);
        const reference::PatchAxis x(centre.x, patch.width, size.width), y(centre.y, patch.height, size.height);
        EXPECT_EQ(std::pair(pMin.x, pMin.y), std::pair(static_cast<int>(x.min), static_cast<int>(y.min)));
        EXPECT_EQ(std::pair(pMax.x, pMax.y), std::pair(static_cast<int>(x.max), static_cast<int>(y.max)));
        test::expectImage(dst, [&](int i, int j, int) {
            return reference::patchPixel<Src, Dst>(pixelsOf(src), size, x, y, i, j, scale);
        });
        if (testing::Test::HasFailure())
            ADD_FAILURE() << size.width << " x " << size.height << " around " << centre.x << ", " << centre.y;
    };
    for (int round = 0; round < 600; ++round) {
        const KprSize size = {random.range(1, 90), random.range(1, 30)},
                      patch = {random.range(1, 80), random.range(1, 12)};
        const KprPoint32f centre = {static_cast<float>(random.range(-300, 500)) / 4.0F + fraction(random) / 16,
                                    static_cast<float>(random.range(-60, 160)) / 4.0F + fraction(random) / 16};
        check(size, patch, centre);
        if (testing::Test::HasFailure()) return;
    }
    check({641, 479}, {21, 21}, {320.3F, 200.7F});
    check({641, 479}, {641, 479}, {320.0F, 239.0F});
    for (float far : {1e9F, -1e9F, 1e30F, -1e30F, INFINITY, -INFINITY, NAN}) {
        check({20, 10}, {5, 4}, {far, 5.25F});
        check({20, 10}, {5, 4}, {3.5F, far});
    }
}

template <auto function>
constexpr auto unscaledPatch = [](auto src, int srcStep, KprSize srcSize, auto dst, int dstStep, KprSize dstSize,
                                  KprPoint32f centre, KprPoint* pMin, KprPoint* pMax, int) {
    return function(src, srcStep, srcSize, dst, dstStep, dstSize, centre, pMin, pMax);
};

TEST(CopySubpixIntersect, Bytes) { checkPatch<Kpr8u, Kpr8u>(unscaledPatch<kpriCopySubpixIntersect_8u_C1R>); }
TEST(CopySubpixIntersect, Words) { checkPatch<Kpr16u, Kpr16u>(unscaledPatch<kpriCopySubpixIntersect_16u_C1R>); }
TEST(CopySubpixIntersect, Floats) { checkPatch<Kpr32f, Kpr32f>(unscaledPatch<kpriCopySubpixIntersect_32f_C1R>); }
TEST(CopySubpixIntersect, BytesToFloats) {
    checkPatch<Kpr8u, Kpr32f>(unscaledPatch<kpriCopySubpixIntersect_8u32f_C1R>);
}
TEST(CopySubpixIntersect, WordsToFloats) {
    checkPatch<Kpr16u, Kpr32f>(unscaledPatch<kpriCopySubpixIntersect_16u32f_C1R>);
}
TEST(CopySubpixIntersect, Scaled) { checkPatch<Kpr8u, Kpr16u>(kpriCopySubpixIntersect_8u16u_C1R_Sfs, true); }

// The four neighbours of the ladder's pixels reach beyond its images: hence a larger source.
TEST(CopySubpix, Ladders) {
    alignas(8) static Kpr8u large[1024];
    const auto of = [&]<typename T>(T) { return reinterpret_cast<const T*>(large); };
    LADDER(kpriCopySubpix_8u_C1R).with<0>(large).nulls().sizes().lengths({0, 1}).run();
    LADDER(kpriCopySubpix_8u16u_C1R_Sfs).with<0>(large).nulls().sizes().lengths({0, 1}).multiples({1}).run();
    LADDER(kpriCopySubpix_8u32f_C1R).with<0>(large).nulls().sizes().lengths({0, 1}).multiples({1}).run();
    LADDER(kpriCopySubpix_16u_C1R).with<0>(of(Kpr16u{})).nulls().sizes().lengths({0, 1}).multiples({0, 1}).run();
    LADDER(kpriCopySubpix_32f_C1R).with<0>(of(Kpr32f{})).nulls().sizes().lengths({0, 1}).multiples({0, 1}).run();
    LADDER(kpriCopySubpix_16u32f_C1R)
        .with<0>(of(Kpr16u{}))
        .nulls()
        .sizes()
        .lengths({0})
        .multiples({0})
        .lengths({1})
        .multiples({1})
        .run();
    LADDER(kpriCopySubpixIntersect_8u_C1R).nulls().sizes().lengths({0, 1}).run();
    LADDER(kpriCopySubpixIntersect_8u16u_C1R_Sfs).nulls().sizes().lengths({0, 1}).multiples({1}).run();
    LADDER(kpriCopySubpixIntersect_8u32f_C1R).nulls().sizes().lengths({0, 1}).multiples({1}).run();
    LADDER(kpriCopySubpixIntersect_16u_C1R).nulls().sizes().lengths({0, 1}).multiples({0, 1}).run();
    LADDER(kpriCopySubpixIntersect_32f_C1R).nulls().sizes().lengths({0, 1}).multiples({0, 1}).run();
    LADDER(kpriCopySubpixIntersect_16u32f_C1R)
        .nulls()
        .sizes()
        .lengths({0})
        .multiples({0})
        .lengths({1})
        .multiples({1})
        .run();
}

}  // namespace
