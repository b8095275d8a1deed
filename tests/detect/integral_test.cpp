#include <gtest/gtest.h>

#include "tests/reference/detect.h"
#include "tests/support/guarded_image.h"
#include "tests/support/ladder.h"

namespace {

using reference::TiltedOrder;
using test::GuardedImage;
using test::Random;

std::vector<KprSize> tableSizes() {
    std::vector<KprSize> sizes = test::awkwardSizes();
    for (KprSize size : {KprSize{5, 300}, {67, 131}, {640, 3}, {641, 47}, {143, 9}, {144, 4}}) sizes.push_back(size);
    return sizes;
}

template <typename T>
void expectTable(GuardedImage<T>& image, reference::Table<T> table) {
    test::expectImage(image, [&](int x, int y, int) { return table(x, y); });
}

// White and black areas, or noise.
void fillPhoto(GuardedImage<Kpr8u>& image, Random& random) {
    image.fill(random);
    if (random.oneIn(3)) image.forEach([](Kpr8u& pixel) { pixel = static_cast<Kpr8u>(pixel < 40 ? 0 : 255); });
}

// Where the table's first element is; fractions and large numbers show where 64f and 32f round.
template <typename T>
T startValue(Random& random) {
    if constexpr (std::is_integral_v<T>)
        return random.oneIn(3) ? 0 : random.pixel<T>();
    else
        return random.oneIn(3)
                   ? T{0}
                   : static_cast<T>(random.range(-1000000, 1000000)) / T{3} * (random.oneIn(3) ? T{0x1p40} : T{1});
}

template <typename T, typename S>
using SqrFunction = KprStatus (*)(const Kpr8u*, int, T*, int, S*, int, KprSize, T, S);

template <typename T, typename Function>
void checkIntegral(Function function, KprSize size) {
    Random random;
    GuardedImage<Kpr8u> src(size, random);
    fillPhoto(src, random);
    GuardedImage<T> dst({size.width + 1, size.height + 1}, random);
    const T value = startValue<T>(random);
    const auto source = src.snapshot();
    ASSERT_EQ(function(src.data(), src.step(), dst.data(), dst.step(), size, value), kprStatusOk);
    EXPECT_EQ(source, src.snapshot());
    expectTable(dst, reference::integral<T>(size, value, [&](int y) {
                    return reference::rowSums<T>(size.width, [&](int x) { return int{src.at(x, y)}; });
                }));
}

template <typename T, typename S>
void checkSqrIntegral(SqrFunction<T, S> function, KprSize size) {
    Random random;
    GuardedImage<Kpr8u> src(size, random);
    fillPhoto(src, random);
    GuardedImage<T> dst({size.width + 1, size.height + 1}, random);
    GuardedImage<S> sqr({size.width + 1, size.height + 1}, random);
    const T value = startValue<T>(random);
    const S valueSqr = startValue<S>(random);
    ASSERT_EQ(function(src.data(), src.step(), dst.data(), dst.step(), sqr.data(), sqr.step(), size, value, valueSqr),
              kprStatusOk);
    const auto sums = [&]<typename U>(U start, auto power) {
        return reference::integral<U>(size, start, [&](int y) {
            return reference::rowSums<U>(size.width, [&](int x) { return power(int{src.at(x, y)}); });
        });
    };
    expectTable(dst, sums(value, [](int p) { return p; }));
    expectTable(sqr, sums(valueSqr, [](int p) { return p * p; }));
}

template <typename T, typename Function>
void checkTilted(Function function, KprSize size, TiltedOrder order) {
    Random random;
    GuardedImage<Kpr8u> src(size, random);
    fillPhoto(src, random);
    GuardedImage<T> dst({size.width + 2, size.height + 2}, random);
    const T value = startValue<T>(random);
    ASSERT_EQ(function(src.data(), src.step(), dst.data(), dst.step(), size, value), kprStatusOk);
    expectTable(dst, reference::tiltedIntegral(size, value, order, [&](int x, int y) { return int{src.at(x, y)}; }));
}

template <typename T, typename S>
void checkTiltedSqr(SqrFunction<T, S> function, KprSize size, TiltedOrder order) {
    Random random;
    GuardedImage<Kpr8u> src(size, random);
    fillPhoto(src, random);
    GuardedImage<T> dst({size.width + 2, size.height + 2}, random);
    GuardedImage<S> sqr({size.width + 2, size.height + 2}, random);
    const T value = startValue<T>(random);
    const S valueSqr = startValue<S>(random);
    ASSERT_EQ(function(src.data(), src.step(), dst.data(), dst.step(), sqr.data(), sqr.step(), size, value, valueSqr),
              kprStatusOk);
    expectTable(dst, reference::tiltedIntegral(size, value, order, [&](int x, int y) { return int{src.at(x, y)}; }));
    expectTable(sqr, reference::tiltedIntegral(size, valueSqr, order,
                                               [&](int x, int y) { return src.at(x, y) * src.at(x, y); }));
}

TEST(Integral, Upright) {
    for (KprSize size : tableSizes()) {
        checkIntegral<Kpr32s>(kpriIntegral_8u32s_C1R, size);
        checkIntegral<Kpr32f>(kpriIntegral_8u32f_C1R, size);
        checkSqrIntegral<Kpr32s, Kpr32s>(kpriSqrIntegral_8u32s_C1R, size);
        checkSqrIntegral<Kpr32s, Kpr64f>(kpriSqrIntegral_8u32s64f_C1R, size);
        checkSqrIntegral<Kpr32f, Kpr64f>(kpriSqrIntegral_8u32f64f_C1R, size);
        if (HasFailure()) return;
    }
}

TEST(Integral, Tilted) {
    for (KprSize size : tableSizes()) {
        checkTilted<Kpr32s>(kpriTiltedIntegral_8u32s_C1R, size, TiltedOrder::PixelsLast);
        checkTilted<Kpr32f>(kpriTiltedIntegral_8u32f_C1R, size, TiltedOrder::AboveSecond);
        checkTiltedSqr<Kpr32s, Kpr32s>(kpriTiltedSqrIntegral_8u32s_C1R, size, TiltedOrder::PixelsLast);
        checkTiltedSqr<Kpr32s, Kpr64f>(kpriTiltedSqrIntegral_8u32s64f_C1R, size, TiltedOrder::PixelsLast);
        checkTiltedSqr<Kpr32f, Kpr64f>(kpriTiltedSqrIntegral_8u32f64f_C1R, size, TiltedOrder::PixelsFirst);
        if (HasFailure()) return;
    }
}

TEST(Integral, OfFloatsAddsInBlocksOfEight) {
    Random random;
    for (KprSize size : tableSizes()) {
        for (bool wild : {false, true}) {
            GuardedImage<Kpr32f> src(size, random), dst({size.width + 1, size.height + 1}, random);
            src.fill(random, wild);
            const float value = startValue<Kpr32f>(random);
            ASSERT_EQ(kpriIntegral_32f_C1R(src.data(), src.step(), dst.data(), dst.step(), size, value), kprStatusOk);
            expectTable(dst, reference::integral<Kpr32f>(
                                 size, value, [&](int y) { return reference::floatRowSums(src.row(y), size.width); }));
            if (HasFailure()) return;
        }
    }
}

// Row sums of bytes beyond 2^24, and of squares beyond 32 bits.
TEST(Integral, WideRows) {
    for (int width : {65536, 65537, 70007, 140001}) {
        checkIntegral<Kpr32f>(kpriIntegral_8u32f_C1R, {width, 2});
        checkSqrIntegral<Kpr32s, Kpr64f>(kpriSqrIntegral_8u32s64f_C1R, {width, 2});
        checkSqrIntegral<Kpr32f, Kpr64f>(kpriSqrIntegral_8u32f64f_C1R, {width, 2});
        if (HasFailure()) return;
    }
}

// Rows of tables are longer than the driver takes them for: their steps are told one by one.
template <int index, typename Ladder>
void refuseShort(Ladder& ladder, int row) {
    for (int step : {row - 1, 0, -row}) ladder.template refuses<index>(step, kprStatusBadStep);
}

template <typename... A>
void ladderOfOne(const char* name, KprStatus (*function)(A...), int more) {
    const int row = 4 * (7 + more);
    test::Ladder<A...> ladder(name, function);
    ladder.channels({1, 3}).template with<3>(row).nulls().sizes().lengths({0});
    refuseShort<3>(ladder, row);
    if (std::string(name) == "kpriIntegral_32f_C1R") ladder.multiples({0});
    ladder.template refuses<3>(row + 2, kprStatusStepNotMultiple).run();
}

template <typename T, typename S>
void ladderOfTwo(const char* name, SqrFunction<T, S> function, int more) {
    const int row = 4 * (7 + more), sqrRow = static_cast<int>(sizeof(S)) * (7 + more);
    auto ladder = test::Ladder(name, function);
    ladder.channels({1, 3, 3}).template with<3>(row).template with<5>(sqrRow).nulls().sizes().lengths({0});
    refuseShort<3>(ladder, row);
    refuseShort<5>(ladder, sqrRow);
    ladder.template refuses<3>(row + 2, kprStatusStepNotMultiple);
    ladder.template refuses<5>(sqrRow + static_cast<int>(sizeof(S)) / 2, kprStatusStepNotMultiple).run();
}

#define LADDER_OF_ONE(function, more) ladderOfOne(#function, function, more)
#define LADDER_OF_TWO(function, more) ladderOfTwo(#function, function, more)

TEST(Integral, StatusLadders) {
    LADDER_OF_ONE(kpriIntegral_8u32s_C1R, 1);
    LADDER_OF_ONE(kpriIntegral_8u32f_C1R, 1);
    LADDER_OF_ONE(kpriIntegral_32f_C1R, 1);
    LADDER_OF_ONE(kpriTiltedIntegral_8u32s_C1R, 2);
    LADDER_OF_ONE(kpriTiltedIntegral_8u32f_C1R, 2);
    LADDER_OF_TWO(kpriSqrIntegral_8u32s_C1R, 1);
    LADDER_OF_TWO(kpriSqrIntegral_8u32s64f_C1R, 1);
    LADDER_OF_TWO(kpriSqrIntegral_8u32f64f_C1R, 1);
    LADDER_OF_TWO(kpriTiltedSqrIntegral_8u32s_C1R, 2);
    LADDER_OF_TWO(kpriTiltedSqrIntegral_8u32s64f_C1R, 2);
    LADDER_OF_TWO(kpriTiltedSqrIntegral_8u32f64f_C1R, 2);
}

}  // namespace
