#include <gtest/gtest.h>

#include "tests/support/ladder.h"

namespace {

using test::GuardedImage;

// The rules of one pixel.
template <typename T>
T joined(T a, T b, T c, int norm) {
    if constexpr (std::is_floating_point_v<T>) {
        const float x = std::fabs(a), y = std::fabs(b), z = std::fabs(c);
        if (norm == kprNormInf) {  // a number before a NaN, a signalling one too
            float most = NAN;
            for (float v : {x, y, z}) {
                if (!std::isnan(v) && !(most >= v)) most = v;
            }
            return most;
        }
        return norm == kprNormL1 ? (x + y + z) / 3.0F : std::sqrt(std::fma(c, c, std::fma(b, b, a * a)) / 3.0F);
    } else {
        const std::int64_t x = a, y = b, z = c, squares = x * x + y * y + z * z;
        if (norm == kprNormInf) return std::max({a, b, c});
        if (norm == kprNormL1) return static_cast<T>((x + y + z + 1) / 3);
        // The integer whose distance to the root is least: (r - 1/2)^2 <= squares / 3 < (r + 1/2)^2.
        auto r = static_cast<std::int64_t>(std::sqrt(static_cast<double>(squares) / 3.0));
        while (3 * (2 * r + 1) * (2 * r + 1) <= 4 * squares) ++r;
        while (r > 0 && 3 * (2 * r - 1) * (2 * r - 1) > 4 * squares) --r;
        return static_cast<T>(r);
    }
}

template <typename T, typename Function>
void check(Function function, KprSize roi, test::Random& random, bool wild) {
    GuardedImage<T> src(roi, random, 3);
    src.fill(random, wild);
    const int kind = random.range(0, 2);
    if constexpr (std::is_integral_v<T>) {
        if (kind == 0) src.forEach([&](T& pixel) { pixel = static_cast<T>(random.range(0, 9)); });
    }
    for (int norm : {kprNormInf, kprNormL1, kprNormL2}) {
        GuardedImage<T> dst(roi, random);
        ASSERT_EQ(function(src.data(), src.step(), dst.data(), dst.step(), roi, norm), kprStatusOk);
        SCOPED_TRACE(testing::Message() << "norm " << norm);
        test::expectImage(
            dst, [&](int x, int y, int) { return joined<T>(src.at(x, y, 0), src.at(x, y, 1), src.at(x, y, 2), norm); });
    }
}

TEST(GradientColorToGray, AgainstTheRule) {
    test::Random random;
    for (KprSize roi : test::awkwardSizes()) {
        check<Kpr8u>(kpriGradientColorToGray_8u_C3C1R, roi, random, false);
        check<Kpr16u>(kpriGradientColorToGray_16u_C3C1R, roi, random, false);
        check<Kpr32f>(kpriGradientColorToGray_32f_C3C1R, roi, random, random.oneIn(2));
        if (HasFailure()) return;
    }
}

// All sums of bytes, and as many sums of squares as three bytes have: in the one form the mean changes at every third
// sum, in the other a root at every few.
TEST(GradientColorToGray, EveryValueOfBytes) {
    test::Random random;
    for (int c = 0; c < 256; c += 5) {
        GuardedImage<Kpr8u> src({256, 256}, random, 3);
        GuardedImage<Kpr8u> dst({256, 256}, random);
        for (int y = 0; y < 256; ++y) {
            for (int x = 0; x < 256; ++x) {
                src.at(x, y, 0) = static_cast<Kpr8u>(x);
                src.at(x, y, 1) = static_cast<Kpr8u>(c);
                src.at(x, y, 2) = static_cast<Kpr8u>(y);
            }
        }
        for (int norm : {kprNormL1, kprNormL2}) {
            kpriGradientColorToGray_8u_C3C1R(src.data(), src.step(), dst.data(), dst.step(), {256, 256}, norm);
            test::expectImage(dst, [&](int x, int y, int) {
                return joined<Kpr8u>(static_cast<Kpr8u>(x), static_cast<Kpr8u>(c), static_cast<Kpr8u>(y), norm);
            });
        }
        if (HasFailure()) return;
    }
}

// Sums of three squares on either side of where the root passes an integer and a half, and the largest sums.
TEST(GradientColorToGray, NextToEveryKindOfHalf) {
    test::Random random;
    constexpr int count = 200;
    GuardedImage<Kpr16u> src({count, 1}, random, 3);
    GuardedImage<Kpr16u> dst({count, 1}, random);
    for (int x = 0; x < count; ++x) {
        const std::int64_t root = x < 100 ? x * x : random.range(10000, 37000);
        for (int tries = 0; tries < 300000; ++tries) {
            const std::int64_t sum = 3 * root * (root + 1) + random.range(0, 1);
            const std::int64_t a = random.range(0, static_cast<int>(root)), b = random.range(0, static_cast<int>(root));
            const auto c = static_cast<std::int64_t>(std::sqrt(static_cast<double>(sum - a * a - b * b)));
            if (c > 65535) continue;
            src.at(x, 0, 0) = static_cast<Kpr16u>(a);
            src.at(x, 0, 1) = static_cast<Kpr16u>(b);
            src.at(x, 0, 2) = static_cast<Kpr16u>(c);
            if (a * a + b * b + c * c == sum) break;
        }
        for (int channel = 0; channel < 3 && x % 16 == 0; ++channel)
            src.at(x, 0, channel) = static_cast<Kpr16u>(65535 - (x >> 4 >> channel & 1));
    }
    kpriGradientColorToGray_16u_C3C1R(src.data(), src.step(), dst.data(), dst.step(), {count, 1}, kprNormL2);
    test::expectImage(dst, [&](int x, int y, int) {
        return joined<Kpr16u>(src.at(x, y, 0), src.at(x, y, 1), src.at(x, y, 2), kprNormL2);
    });
}

TEST(GradientColorToGray, StatusLadders) {
    const auto run = [](auto ladder, bool bytes) {
        ladder.channels({3, 1}).template with<5>(kprNormL1).nulls().sizes().lengths({0, 1});
        if (!bytes) ladder.multiples({0, 1});
        for (int norm : {0, 3, 8}) ladder.template refuses<5>(norm, kprStatusBadNorm);
        ladder.run();
    };
    run(LADDER(kpriGradientColorToGray_8u_C3C1R), true);
    run(LADDER(kpriGradientColorToGray_16u_C3C1R), false);
    run(LADDER(kpriGradientColorToGray_32f_C3C1R), false);
}

}  // namespace
