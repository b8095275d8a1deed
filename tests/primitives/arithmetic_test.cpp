#include "primitives/kit.h"
#include "tests/reference/kit.h"
#include "tests/support/guarded_image.h"
#include "tests/support/ladder.h"

namespace {

using test::Guard;
using test::GuardedBytes;
using test::GuardedImage;
using test::Random;

// Around every change of rule: none, the widths of 8 and 16 bits, the last shift of a product, and far beyond.
const std::vector<int> kScaleFactors = {0,   1,   2,   3,   7,   8,   9,   14,  15,        16,
                                        17,  29,  30,  31,  64,  -1,  -2,  -7,  -8,        -9,
                                        -14, -15, -16, -17, -30, -31, -32, -64, INT32_MIN, INT32_MAX};

// Integer pixels of which some make small differences, and with them ties.
template <typename T>
void fillPair(GuardedImage<T>& a, GuardedImage<T>& b, int channels, Random& random) {
    a.fill(random, true);
    b.fill(random, true);
    for (int y = 0; y < a.size().height; ++y) {
        for (int i = 0; i < a.size().width * channels; ++i) {
            if (random.oneIn(2)) b.row(y)[i] = static_cast<T>(a.row(y)[i] + static_cast<T>(random.range(-3, 12)));
        }
    }
}

template <typename T, typename Step, typename Size>
void checkSub(KprStatus (*sub)(const T*, Step, const T*, Step, T*, Step, Size, int), int channels) {
    Random random;
    for (KprSize size : test::allSizes()) {
        const int scaleFactor =
            kScaleFactors.at(static_cast<std::size_t>(random.range(0, static_cast<int>(kScaleFactors.size()) - 1)));
        GuardedImage<T> a(size, random, channels), b(size, random, channels), dst(size, random, channels);
        fillPair(a, b, channels, random);
        const auto sources = std::pair(a.snapshot(), b.snapshot());
        ASSERT_EQ(
            sub(a.data(), a.step(), b.data(), b.step(), dst.data(), dst.step(), {size.width, size.height}, scaleFactor),
            kprStatusOk);
        EXPECT_EQ(sources, std::pair(a.snapshot(), b.snapshot()));
        SCOPED_TRACE(scaleFactor);
        test::expectImage(
            dst, [&](int x, int y, int c) { return reference::subtract(a.at(x, y, c), b.at(x, y, c), scaleFactor); },
            channels);
        auto& over = random.oneIn(2) ? a : b;
        ASSERT_EQ(sub(a.data(), a.step(), b.data(), b.step(), over.data(), over.step(), {size.width, size.height},
                      scaleFactor),
                  kprStatusOk);
        test::expectImage(
            over, [&](int x, int y, int c) { return dst.at(x, y, c); }, channels);
        if (testing::Test::HasFailure()) return;
    }
}

template <typename Step, typename Size>
void checkSub(KprStatus (*sub)(const Kpr32f*, Step, const Kpr32f*, Step, Kpr32f*, Step, Size), int channels) {
    Random random;
    for (KprSize size : test::allSizes()) {
        GuardedImage<Kpr32f> a(size, random, channels), b(size, random, channels), dst(size, random, channels);
        a.fill(random, true);
        b.fill(random, true);
        ASSERT_EQ(sub(a.data(), a.step(), b.data(), b.step(), dst.data(), dst.step(), {size.width, size.height}),
                  kprStatusOk);
        test::expectImage(
            dst, [&](int x, int y, int c) { return b.at(x, y, c) - a.at(x, y, c); }, channels);
        if (testing::Test::HasFailure()) return;
    }
}

TEST(Sub, Images) {
    checkSub(kpriSub_8u_C1RSfs, 1);
    checkSub(kpriSub_8u_C3RSfs, 3);
    checkSub(kpriSub_8u_C4RSfs, 4);
    checkSub(kpriSub_16s_C1RSfs, 1);
    checkSub(kpriSub_16u_C1RSfs, 1);
    checkSub(kpriSub_32f_C1R, 1);
    checkSub(kpriSub_32f_C3R, 3);
    checkSub(kpriSub_32f_C4R, 4);
}

TEST(Sub, LargeImages) {
    checkSub(kpriSub_8u_C1RSfs_L, 1);
    checkSub(kpriSub_8u_C3RSfs_L, 3);
    checkSub(kpriSub_8u_C4RSfs_L, 4);
    checkSub(kpriSub_16s_C1RSfs_L, 1);
    checkSub(kpriSub_16u_C1RSfs_L, 1);
    checkSub(kpriSub_32f_C1R_L, 1);
    checkSub(kpriSub_32f_C3R_L, 3);
    checkSub(kpriSub_32f_C4R_L, 4);
}

// Arrays of all differences that bytes can have, and as many of words, under every scale factor.
template <typename T>
void checkSubArray(KprStatus (*sub)(const T*, const T*, T*, int, int)) {
    Random random;
    constexpr int len = 256 * 256;
    std::vector<T> a(len), b(len), dst(len);
    for (int i = 0; i < len; ++i) {
        const auto at = static_cast<std::size_t>(i);
        a[at] = sizeof(T) == 1 ? static_cast<T>(i) : random.pixel<T>();
        b[at] = sizeof(T) == 1 ? static_cast<T>(i / 256) : static_cast<T>(a[at] + static_cast<T>(i));
    }
    for (int scaleFactor : kScaleFactors) {
        ASSERT_EQ(sub(a.data(), b.data(), dst.data(), len, scaleFactor), kprStatusOk);
        for (std::size_t i = 0; i < len; ++i) {
            ASSERT_EQ(dst[i], reference::subtract(a[i], b[i], scaleFactor))
                << +b[i] << " - " << +a[i] << ", " << scaleFactor;
        }
    }
}

TEST(Sub, EveryDifference) {
    checkSubArray(kprsSub_8u_Sfs);
    checkSubArray(kprsSub_16s_Sfs);
    checkSubArray(kprsSub_16u_Sfs);
}

TEST(Sub, FactorAboveTheWidthReadsNoSource) {
    GuardedBytes src(600, Guard::After);
    src.setAccessible(false);
    std::vector<char> dst(600, 1);
    const auto run = [&]<typename T>(KprStatus (*sub)(const T*, const T*, T*, int, int), int scaleFactor) {
        const auto* source = reinterpret_cast<const T*>(src.data());
        EXPECT_EQ(sub(source, source, reinterpret_cast<T*>(dst.data()), 600 / sizeof(T), scaleFactor), kprStatusOk);
        EXPECT_EQ(dst, std::vector<char>(600, 0));
        dst.assign(600, 1);
    };
    run(kprsSub_8u_Sfs, 9);
    run(kprsSub_16s_Sfs, 17);
    run(kprsSub_16u_Sfs, 17);
}

TEST(MulC, Words) {
    Random random;
    for (KprSize size : test::allSizes()) {
        GuardedImage<Kpr16s> src(size, random), dst(size, random);
        for (int scaleFactor : kScaleFactors) {
            if (size.width * size.height > 20000 && !random.oneIn(10)) continue;
            const Kpr16s values[] = {0, 1, -1, 4, -32768, 32767, random.pixel<Kpr16s>()};
            const Kpr16s value = values[random.range(0, 6)];
            src.fill(random);
            for (int x = 0; x < size.width; x += 3) src.at(x, 0) = static_cast<Kpr16s>(random.range(-2, 2));
            ASSERT_EQ(kpriMulC_16s_C1RSfs(src.data(), src.step(), value, dst.data(), dst.step(), size, scaleFactor),
                      kprStatusOk);
            SCOPED_TRACE(std::to_string(value) + ", " + std::to_string(scaleFactor));
            test::expectImage(dst, [&](int x, int y, int) {
                return reference::scaled<Kpr16s>(Kpr64s{src.at(x, y)} * value, scaleFactor);
            });
            if (testing::Test::HasFailure()) return;
        }
    }
}

TEST(MulC, FloatsAndTheirQuotients) {
    Random random;
    for (KprSize size : test::allSizes()) {
        GuardedImage<Kpr32f> src(size, random), dst(size, random);
        src.fill(random, true);
        const float value = random.pixel<float>();
        ASSERT_EQ(kpriMulC_32f_C1R(src.data(), src.step(), value, dst.data(), dst.step(), size), kprStatusOk);
        test::expectImage(dst, [&](int x, int y, int) { return src.at(x, y) * value; });
        if (value == 0) continue;
        const float reciprocal = 1.0F / value;
        ASSERT_EQ(kprsDivC_32f(src.row(0), value, dst.row(0), size.width), kprStatusOk);
        for (int x = 0; x < size.width; ++x) ASSERT_TRUE(test::same(dst.at(x, 0), src.at(x, 0) * reciprocal));
        ASSERT_EQ(kprsDivC_32f_I(src.row(0), size.width, value), kprStatusOk);
        for (int x = 0; x < size.width; ++x) ASSERT_TRUE(test::same(dst.at(x, 0), src.at(x, 0)));
        if (testing::Test::HasFailure()) return;
    }
}

TEST(Convert, WordsToFloats) {
    Random random;
    for (KprSize size : test::allSizes()) {
        GuardedImage<Kpr16u> src(size, random);
        GuardedImage<Kpr32f> dst(size, random);
        src.fill(random);
        ASSERT_EQ(kpriConvert_16u32f_C1R(src.data(), src.step(), dst.data(), dst.step(), size), kprStatusOk);
        test::expectImage(dst, [&](int x, int y, int) { return static_cast<float>(src.at(x, y)); });
        if (testing::Test::HasFailure()) return;
    }
}

template <typename T>
void checkConvert(KprStatus (*convert)(const Kpr32f*, T*, int, int, int)) {
    Random random;
    for (int roundMode : {kprRoundToZero, kprRoundToNearest}) {
        for (int scaleFactor : kScaleFactors) {
            const int len = random.range(1, 300);
            GuardedImage<Kpr32f> src({len, 1}, random);
            GuardedImage<T> dst({len, 1}, random);
            src.fill(random, true);
            // ties and their neighbours, after the scaling
            for (int x = 0; x < len; x += 2) {
                const float half = static_cast<float>(random.range(-5, 600)) / 2;
                src.at(x, 0) = std::ldexp(random.oneIn(2) ? half : std::nextafter(half, random.pixel<float>()),
                                          std::clamp(scaleFactor, -100, 100));
            }
            ASSERT_EQ(convert(src.data(), dst.data(), len, roundMode, scaleFactor), kprStatusOk);
            SCOPED_TRACE(std::to_string(roundMode) + ", " + std::to_string(scaleFactor));
            test::expectImage(dst, [&](int x, int, int) {
                return reference::convert<T>(src.at(x, 0), roundMode == kprRoundToZero, scaleFactor);
            });
            if (testing::Test::HasFailure()) return;
        }
    }
}

TEST(Convert, FloatsToIntegers) {
    checkConvert(kprsConvert_32f8u_Sfs);
    checkConvert(kprsConvert_32f16u_Sfs);
}

TEST(Arithmetic, StatusLadders) {
    LADDER(kpriSub_8u_C1RSfs).nulls().sizes().run();
    LADDER(kpriSub_8u_C3RSfs).channels({3, 3, 3}).nulls().sizes().run();
    LADDER(kpriSub_8u_C4RSfs).channels({4, 4, 4}).nulls().sizes().run();
    LADDER(kpriSub_16s_C1RSfs).nulls().sizes().run();
    LADDER(kpriSub_16u_C1RSfs).nulls().sizes().run();
    LADDER(kpriSub_8u_C1RSfs_L).nulls().sizes().run();
    LADDER(kpriSub_8u_C3RSfs_L).channels({3, 3, 3}).nulls().sizes().run();
    LADDER(kpriSub_8u_C4RSfs_L).channels({4, 4, 4}).nulls().sizes().run();
    LADDER(kpriSub_16s_C1RSfs_L).nulls().sizes().run();
    LADDER(kpriSub_16u_C1RSfs_L).nulls().sizes().run();
    LADDER(kpriSub_32f_C1R).nulls().sizes().run();
    LADDER(kpriSub_32f_C3R).channels({3, 3, 3}).nulls().sizes().run();
    LADDER(kpriSub_32f_C4R).channels({4, 4, 4}).nulls().sizes().run();
    LADDER(kpriSub_32f_C1R_L).nulls().sizes().run();
    LADDER(kpriSub_32f_C3R_L).channels({3, 3, 3}).nulls().sizes().run();
    LADDER(kpriSub_32f_C4R_L).channels({4, 4, 4}).nulls().sizes().run();
    LADDER(kprsSub_8u_Sfs).with<3>(7).nulls().refuses<3>(0, kprStatusBadSize).run();
    LADDER(kprsSub_16s_Sfs).with<3>(7).nulls().refuses<3>(0, kprStatusBadSize).run();
    LADDER(kprsSub_16u_Sfs).with<3>(7).nulls().refuses<3>(0, kprStatusBadSize).run();
    LADDER(kprsSub_32f).with<3>(7).nulls().refuses<3>(0, kprStatusBadSize).run();
    LADDER(kpriMulC_16s_C1RSfs).nulls().sizes().run();
    LADDER(kpriMulC_32f_C1R).nulls().sizes().run();
    LADDER(kprsMulC_32f).with<3>(7).nulls().refuses<3>(0, kprStatusBadSize).run();
    LADDER(kprsDivC_32f)
        .with<3>(7)
        .with<1>(2)
        .nulls()
        .refuses<3>(0, kprStatusBadSize)
        .refuses<1>(-0.0F, kprStatusDivByZero)
        .run();
    LADDER(kprsDivC_32f_I)
        .with<1>(7)
        .with<2>(2)
        .nulls()
        .refuses<1>(0, kprStatusBadSize)
        .refuses<2>(0, kprStatusDivByZero)
        .run();
    LADDER(kpriConvert_16u32f_C1R)
        .nulls()
        .sizes()
        .refuses<1>(0, kprStatusBadStep)
        .refuses<3>(-4, kprStatusBadStep)
        .run();
    LADDER(kprsConvert_32f8u_Sfs).with<2>(7).nulls().refuses<2>(0, kprStatusBadSize).run();
    LADDER(kprsConvert_32f16u_Sfs).with<2>(7).nulls().refuses<2>(0, kprStatusBadSize).run();
}

}  // namespace
