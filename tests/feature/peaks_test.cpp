#include <gtest/gtest.h>

#include <algorithm>

#include "tests/support/ladder.h"

namespace {

using test::Guard;
using test::GuardedBytes;
using test::GuardedImage;
using test::Random;

template <typename T>
bool isPeak(GuardedImage<T>& image, int x, int y, T threshold, int norm) {
    const T c = image.at(x, y);
    if (!(c > threshold)) return false;
    for (int dy = -1; dy <= 1; ++dy) {
        for (int dx = -1; dx <= 1; ++dx) {
            const int nx = x + dx, ny = y + dy;
            if ((dx == 0 && dy == 0) || (norm == kprNormL1 && dx != 0 && dy != 0)) continue;
            if (nx < 0 || ny < 0 || nx >= image.size().width || ny >= image.size().height) continue;
            const T n = image.at(nx, ny);
            const bool earlier = dy < 0 || (dy == 0 && dx < 0);
            if (earlier ? n >= c : n > c) return false;
        }
    }
    return true;
}

template <typename T, typename Function>
void check(Function function, KprSize size, int kind, int wanted, int border, Random& random) {
    GuardedImage<T> image(size, random);
    image.fill(random, kind == 0);
    const int range = kind == 2 ? 3 : 40;
    if (kind >= 2) image.forEach([&](T& p) { p = static_cast<T>(random.range(-range, range)); });
    if (kind == 3) image.forEach([&](T& p) { p = random.oneIn(40) ? p : T{}; });
    const T thresholds[] = {T{0}, T{-1}, std::numeric_limits<T>::lowest(), T{30}, std::numeric_limits<T>::quiet_NaN()};
    const T threshold = thresholds[random.range(0, 4)];
    const int norm = random.oneIn(2) ? kprNormInf : kprNormL1;
    SCOPED_TRACE(testing::Message() << size.width << " x " << size.height << ", kind " << kind << ", wanted " << wanted
                                    << ", border " << border << ", threshold " << +threshold << ", norm " << norm);
    std::vector<KprPoint> expected;
    for (int y = border; y < size.height - border; ++y) {
        for (int x = border; x < size.width - border; ++x) {
            if (isPeak(image, x, y, threshold, norm)) expected.push_back({x, y});
        }
    }
    std::stable_sort(expected.begin(), expected.end(),
                     [&](KprPoint a, KprPoint b) { return image.at(a.x, a.y) > image.at(b.x, b.y); });
    const bool more = static_cast<int>(expected.size()) > wanted;
    if (more) expected.resize(static_cast<std::size_t>(wanted));

    int bytes = 0, count = -1;
    ASSERT_EQ(kpriFindPeaks3x3GetBufferSize_32s_C1R(wanted, &bytes), kprStatusOk);
    ASSERT_LE(bytes, 16 * wanted + 64);
    const Guard guard = random.oneIn(2) ? Guard::Before : Guard::After;
    GuardedBytes buffer(static_cast<std::size_t>(bytes), guard);
    GuardedBytes peaks(std::max<std::size_t>(expected.size() * sizeof(KprPoint), 8), Guard::After);
    auto* const found = reinterpret_cast<KprPoint*>(peaks.data());
    ASSERT_EQ(function(image.data(), image.step(), size, threshold, found, wanted, &count, norm, border,
                       reinterpret_cast<Kpr8u*>(buffer.data())),
              more ? kprStatusListFull : kprStatusOk);
    ASSERT_EQ(count, static_cast<int>(expected.size()));
    for (int i = 0; i < count; ++i)
        ASSERT_EQ(std::pair(found[i].x, found[i].y), std::pair(expected[i].x, expected[i].y)) << "peak " << i;
}

template <typename T, typename Function>
void sweep(Function function) {
    Random random;
    std::vector<KprSize> sizes = test::awkwardSizes();
    for (KprSize size : {KprSize{67, 131}, {5, 300}, {641, 79}}) sizes.push_back(size);
    for (KprSize size : sizes) {
        for (int kind = 0; kind < 4; ++kind) {
            const int wanted = random.oneIn(3) ? random.range(1, 3) : random.range(1, 100 + 900 * (kind == 1));
            check<T>(function, size, kind, wanted, random.oneIn(2) ? 0 : random.range(1, 20), random);
            if (testing::Test::HasFailure()) return;
        }
    }
}

TEST(FindPeaks, OfIntegers) { sweep<Kpr32s>(kpriFindPeaks3x3_32s_C1R); }

TEST(FindPeaks, OfFloats) { sweep<Kpr32f>(kpriFindPeaks3x3_32f_C1R); }

// Zeros of both signs are equal, and keep the raster's order.
TEST(FindPeaks, Zeros) {
    const float image[] = {-0.0F, -1, 0.0F, -1, -0.0F, -1, 0.0F};
    KprPoint peaks[4];
    Kpr8u buffer[128];
    int count = 0;
    EXPECT_EQ(kpriFindPeaks3x3_32f_C1R(image, 28, {7, 1}, -2, peaks, 4, &count, kprNormL1, 0, buffer), kprStatusOk);
    ASSERT_EQ(count, 4);
    for (int i = 0; i < 4; ++i) EXPECT_EQ(peaks[i].x, 2 * i);
}

template <typename... A>
void peaksLadder(const char* name, KprStatus (*function)(A...)) {
    test::Ladder<A...> ladder(name, function);
    std::vector<Kpr8u> buffer(1000);
    ladder.template with<5>(2).template with<7>(kprNormInf).template with<9>(buffer.data());
    ladder.nulls().sizes().lengths({0}).multiples({0});
    ladder.template refuses<5>(0, kprStatusBadArg).template refuses<5>(-1, kprStatusBadArg);
    ladder.template refuses<8>(-1, kprStatusBadArg);
    for (int norm : {0, 3, 4}) ladder.template refuses<7>(norm, kprStatusBadNorm);
    ladder.run();
}

TEST(FindPeaks, Ladders) {
    peaksLadder("kpriFindPeaks3x3_32s_C1R", kpriFindPeaks3x3_32s_C1R);
    peaksLadder("kpriFindPeaks3x3_32f_C1R", kpriFindPeaks3x3_32f_C1R);
    for (auto function : {kpriFindPeaks3x3GetBufferSize_32s_C1R, kpriFindPeaks3x3GetBufferSize_32f_C1R})
        LADDER(function)
            .with<0>(5)
            .nulls()
            .refuses<0>(0, kprStatusBadArg)
            .refuses<0>(INT32_MIN, kprStatusBadArg)
            .refuses<0>(INT32_MAX, kprStatusSizeOverflow)
            .run();
}

}  // namespace
