#include <gtest/gtest.h>

#include "tests/filter/ground.h"
#include "tests/support/ladder.h"

namespace {

using test::BorderedImage;
using test::Guard;
using test::GuardedBytes;
using test::GuardedImage;
using test::Random;

__extension__ typedef __int128 Wide;

struct Kernels {
    int filter;
    KprMaskSize mask;
    std::vector<int> slope, smooth;
};
const Kernels kKernels[] = {{kprFilterSobel, 33, {-1, 0, 1}, {1, 2, 1}},
                            {kprFilterSobel, 55, {-1, -2, 0, 2, 1}, {1, 4, 6, 4, 1}},
                            {kprFilterScharr, 33, {-1, 0, 1}, {3, 10, 3}}};

// The sum over the mask around (x, y).
template <typename Image>
int derivative(Image& src, const std::vector<int>& across, const std::vector<int>& down, int x, int y) {
    const int size = static_cast<int>(across.size());
    int sum = 0;
    for (int j = 0; j < size; ++j) {
        for (int i = 0; i < size; ++i)
            sum += across[static_cast<std::size_t>(i)] * down[static_cast<std::size_t>(j)] *
                   src.at(x + i - size / 2, y + j - size / 2, 0);
    }
    return sum;
}

void check(KprSize roi, const Kernels& kernels, int window, float threshold, KprBorderType word, int density,
           Random& random) {
    SCOPED_TRACE(testing::Message() << roi.width << " x " << roi.height << ", filter " << kernels.filter << ", mask "
                                    << kernels.mask << ", window " << window << ", threshold " << threshold << ", word "
                                    << word << ", density " << density);
    const int r = static_cast<int>(kernels.slope.size()) / 2;
    BorderedImage<Kpr8u> src(roi, {r, r, r, r}, word, random);
    const int kind = random.range(0, 4);
    if (kind == 1) src.image().forEach([&](Kpr8u& p) { p = random.oneIn(2) ? 255 : 0; });
    const int period = random.range(2, 7);
    for (int y = 0; y < src.image().size().height && kind >= 2; ++y) {
        for (int x = 0; x < src.image().size().width; ++x) {
            Kpr8u& p = src.image().at(x, y);
            // Slanting edges, whose determinants are nothing, or little; quadrants, where sums are largest.
            if (kind < 4) p = static_cast<Kpr8u>((x + y) / 7 % 2 * 246 + (kind == 3 && random.oneIn(5) ? 9 : 0));
            if (kind == 4) p = (x / period + y / period) % 2 != 0 ? 255 : 0;
        }
    }
    GuardedImage<Kpr8u> feature(roi, random), out(roi, random);
    feature.forEach([&](Kpr8u& p) { p = random.oneIn(density) ? random.pixel<Kpr8u>() : 0; });
    std::vector<int> dx, dy;
    for (int y = 0; y < roi.height; ++y) {
        for (int x = 0; x < roi.width; ++x) {
            dx.push_back(derivative(src, kernels.slope, kernels.smooth, x, y));
            dy.push_back(derivative(src, kernels.smooth, kernels.slope, x, y));
        }
    }
    const auto expected = [&](int x, int y) -> Kpr8u {
        Wide a = 0, b = 0, c = 0;
        for (int j = std::max(0, y - window / 2); j <= std::min(roi.height - 1, y + window / 2); ++j) {
            for (int i = std::max(0, x - window / 2); i <= std::min(roi.width - 1, x + window / 2); ++i) {
                const auto at = static_cast<std::size_t>(j) * roi.width + i;
                a += Wide{dx[at]} * dx[at];
                b += Wide{dy[at]} * dy[at];
                c += Wide{dx[at]} * dy[at];
            }
        }
        const auto t = static_cast<double>(a + b), det = static_cast<double>(a * b - c * c), q = double{threshold};
        return (t * t) * q < ((q + 1) * (q + 1)) * det ? feature.at(x, y) : 0;
    };
    std::vector<Kpr8u> wanted;
    for (int y = 0; y < roi.height; ++y) {
        for (int x = 0; x < roi.width; ++x) wanted.push_back(expected(x, y));
    }
    int bytes = 0;
    ASSERT_EQ(kpriLineSuppressionGetBufferSize(roi, window, &bytes), kprStatusOk);
    ASSERT_LE(bytes, 64 * roi.width + 4096);
    const GuardedBytes buffer(static_cast<std::size_t>(bytes), random.oneIn(2) ? Guard::After : Guard::Before);
    const auto run = [&](GuardedImage<Kpr8u>& dst) {
        ASSERT_EQ(kpriLineSuppression_8u_C1R(src.data(), src.step(), feature.data(), feature.step(), dst.data(),
                                             dst.step(), roi, kernels.filter, kernels.mask, window, threshold, word,
                                             *src.value(), reinterpret_cast<Kpr8u*>(buffer.data())),
                  kprStatusOk);
        expectImage(dst, [&](int x, int y, int) { return wanted[static_cast<std::size_t>(y) * roi.width + x]; });
    };
    run(out);
    run(feature);
}

TEST(LineSuppression, EverySize) {
    Random random;
    std::vector<KprSize> sizes = test::awkwardSizes();
    for (KprSize size : {KprSize{67, 131}, {5, 300}, {641, 79}, {1025, 40}, {3, 13}, {2, 7}, {1, 14}})
        sizes.push_back(size);
    for (KprSize size : sizes) {
        const float thresholds[] = {1, 1.5F, 10, 3e38F};
        check(size, kKernels[random.range(0, 2)], 3 + 2 * random.range(0, 1), thresholds[random.range(0, 3)],
              test::anyFilterWord(random), random.oneIn(2) ? 1 : random.range(2, 200), random);
        if (HasFailure()) return;
    }
}

TEST(LineSuppression, EveryWord) {
    Random random;
    for (KprBorderType word : test::filterWords()) {
        for (const Kernels& kernels : kKernels) {
            for (int height : {1, 2, 3, 5, 6, 7, 8, 13, 14, 15})
                check({random.range(1, 40), height}, kernels, 3 + 2 * random.range(0, 1), 10, word,
                      1 + 40 * (height % 2), random);
            if (HasFailure()) return;
        }
    }
}

std::vector<Kpr8u> scratch(8192);

TEST(LineSuppression, Ladders) {
    auto sizing = test::Ladder("kpriLineSuppressionGetBufferSize", kpriLineSuppressionGetBufferSize);
    sizing.with<1>(5).nulls().sizes();
    for (int window : {0, 1, 4, 7, -3}) sizing.refuses<1>(window, kprStatusBadArg);
    sizing.run();

    test::Ladder ladder("kpriLineSuppression_8u_C1R", kpriLineSuppression_8u_C1R);
    const GuardedBytes both(21, Guard::After);
    auto* const image = reinterpret_cast<Kpr8u*>(both.data());
    ladder.with<0>(image).with<7>(kprFilterScharr).with<8>(33).with<9>(3).with<10>(1).with<11>(kprBorderMirror);
    ladder.with<13>(scratch.data()).nulls().refuses<4>(image, kprStatusInPlaceUnsupported).sizes().lengths({0, 1, 2});
    for (int filter : {0, 1, 3, 6}) ladder.refuses<7>(filter, kprStatusBadAlgorithm);
    for (int mask : {0, 35, 55, 77}) ladder.refuses<8>(mask, kprStatusBadMaskSize);
    for (KprBorderType word : {0, 2, 5, 245, 256, 257}) ladder.refuses<11>(word, kprStatusBadBorder);
    for (int window : {0, 1, 4, 7}) ladder.refuses<9>(window, kprStatusBadArg);
    for (float bad : {0.999F, -1.0F, HUGE_VALF, std::nanf("")}) ladder.refuses<10>(bad, kprStatusBadArg);
    ladder.run();
}

}  // namespace
