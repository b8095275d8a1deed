// The check that the filters with fixed kernels share: every border word, widths and heights around every step.
#pragma once

#include "tests/filter/ground.h"

namespace test {

// The sum of taps over pixels in order, by fused steps; a zero tap takes no part.
template <typename T, typename Pixel>
T tapsOver(const std::vector<int>& taps, Pixel pixel) {
    if constexpr (std::is_floating_point_v<T>) {
        float sum = static_cast<float>(taps[0]) * pixel(0);
        for (int i = 1; i < static_cast<int>(taps.size()); ++i) {
            if (taps[static_cast<std::size_t>(i)] != 0)
                sum = std::fma(static_cast<float>(taps[static_cast<std::size_t>(i)]), pixel(i), sum);
        }
        return sum;
    } else {
        int sum = 0;
        for (int i = 0; i < static_cast<int>(taps.size()); ++i) sum += taps[i] * pixel(i);
        return static_cast<T>(sum);
    }
}

// `expected(image, x, y)` at every pixel, for the filter called with `mask`.
template <typename Src, typename Dst, typename Function, typename Sizing, typename Expected>
void checkMask(Function function, Sizing sizing, KprMaskSize mask, Expected expected) {
    Random random;
    const int r = mask == kprMaskSize3x3 ? 1 : 2;
    const auto check = [&](KprSize roi, KprBorderType word) {
        BorderedImage<Src> src(roi, {r, r, r, r}, word, random, 1, random.oneIn(2));
        GuardedImage<Dst> dst(roi, random);
        int size = 0;
        ASSERT_EQ(sizing(roi, mask, &size), kprStatusOk);
        const GuardedBytes buffer(static_cast<std::size_t>(size), Guard::After);
        ASSERT_EQ(function(src.data(), src.step(), dst.data(), dst.step(), roi, mask, word, *src.value(),
                           reinterpret_cast<Kpr8u*>(buffer.data())),
                  kprStatusOk);
        SCOPED_TRACE(testing::Message() << "word " << word << ", mask " << mask);
        expectImage(dst, [&](int x, int y, int) { return static_cast<Dst>(expected(src, x, y)); });
    };
    for (KprSize roi : allSizes()) {
        check(roi, anyFilterWord(random));
        if (testing::Test::HasFailure()) return;
    }
    for (KprBorderType word : filterWords()) {
        for (KprSize roi : {KprSize{1, 1}, {2, 2}, {3, 1}, {4, 5}, {17, 4}, {1025, 2}, {1027, 3}}) {
            check(roi, word);
            if (testing::Test::HasFailure()) return;
        }
    }
}

// One kernel across and one down.
template <typename Src, typename Dst, typename Function, typename Sizing>
void checkSeparable(Function function, Sizing sizing, KprMaskSize mask, const std::vector<int>& across,
                    const std::vector<int>& down) {
    const int r = static_cast<int>(across.size()) / 2;
    checkMask<Src, Dst>(function, sizing, mask, [&](auto& src, int x, int y) {
        return tapsOver<Dst>(
            down, [&](int j) { return tapsOver<Dst>(across, [&](int i) { return src.at(x + i - r, y + j - r, 0); }); });
    });
}

}  // namespace test
