#include <gtest/gtest.h>

#include "tests/filter/masks.h"
#include "tests/support/ladder.h"

namespace {

const std::vector<int> kLaplacian3 = {2, 0, 2, 0, -8, 0, 2, 0, 2};
const std::vector<int> kLaplacian5 = {2, 4, 4, 4, 2, 4, 0, -8, 0, 4, 4, -8, -24, -8, 4, 4, 0, -8, 0, 4, 2, 4, 4, 4, 2};

// The sum of a whole mask, in integers.
int maskSum(const std::vector<int>& mask, auto& src, int x, int y) {
    const int size = mask.size() == 9 ? 3 : 5;
    int sum = 0;
    for (int i = 0; i < size * size; ++i)
        sum += mask[static_cast<std::size_t>(i)] * src.at(x + i % size - size / 2, y + i / size - size / 2, 0);
    return sum;
}

TEST(FilterFixed, CrossDerivative) {
    test::checkSeparable<Kpr8u, Kpr16s>(kpriFilterSobelCrossBorder_8u16s_C1R,
                                        kpriFilterSobelCrossGetBufferSize_8u16s_C1R, 33, {1, 0, -1}, {-1, 0, 1});
    test::checkSeparable<Kpr8u, Kpr16s>(kpriFilterSobelCrossBorder_8u16s_C1R,
                                        kpriFilterSobelCrossGetBufferSize_8u16s_C1R, 55, {1, 2, 0, -2, -1},
                                        {-1, -2, 0, 2, 1});
    test::checkSeparable<Kpr32f, Kpr32f>(kpriFilterSobelCrossBorder_32f_C1R, kpriFilterSobelCrossGetBufferSize_32f_C1R,
                                         33, {1, 0, -1}, {-1, 0, 1});
    test::checkSeparable<Kpr32f, Kpr32f>(kpriFilterSobelCrossBorder_32f_C1R, kpriFilterSobelCrossGetBufferSize_32f_C1R,
                                         55, {1, 2, 0, -2, -1}, {-1, -2, 0, 2, 1});
}

TEST(FilterFixed, LowpassOfBytes) {
    const auto run = [](KprMaskSize mask, auto result) {
        const std::vector<int> ones(mask == 33 ? 9 : 25, 1);
        test::checkMask<Kpr8u, Kpr8u>(
            kpriFilterLowpassBorder_8u_C1R, kpriFilterLowpassGetBufferSize_8u_C1R, mask,
            [&](auto& src, int x, int y) { return std::min(result(maskSum(ones, src, x, y)), 255); });
    };
    run(33, [](int s) { return ((s + 5) * 7280) >> 16; });
    run(55, [](int s) { return (s * 2621) >> 16; });
}

TEST(FilterFixed, LowpassOfAWhiteImage) {
    const std::vector<Kpr8u> white(64, 255);
    std::vector<Kpr8u> buffer(8192);
    Kpr8u dst[64];
    for (auto [mask, level] : {std::pair(33, 255), std::pair(55, 254)}) {
        ASSERT_EQ(
            kpriFilterLowpassBorder_8u_C1R(white.data(), 8, dst, 8, {8, 8}, mask, kprBorderReplicate, 0, buffer.data()),
            kprStatusOk);
        for (Kpr8u pixel : dst) EXPECT_EQ(pixel, level);
    }
}

TEST(FilterFixed, LowpassOfFloats) {
    for (int size : {3, 5}) {
        const std::vector<int> ones(static_cast<std::size_t>(size), 1);
        test::checkMask<Kpr32f, Kpr32f>(kpriFilterLowpassBorder_32f_C1R, kpriFilterLowpassGetBufferSize_32f_C1R,
                                        11 * size, [&](auto& src, int x, int y) {
                                            const float s = test::tapsOver<float>(ones, [&](int j) {
                                                return test::tapsOver<float>(ones, [&](int i) {
                                                    return src.at(x + i - size / 2, y + j - size / 2, 0);
                                                });
                                            });
                                            return s * (size == 3 ? 1.0F / 9.0F : 1.0F / 25.0F);
                                        });
    }
}

TEST(FilterFixed, LaplacianOfBytes) {
    for (KprMaskSize mask : {33, 55}) {
        test::checkMask<Kpr8u, Kpr16s>(
            kpriFilterLaplacianBorder_8u16s_C1R, kpriFilterLaplacianGetBufferSize_8u16s_C1R, mask,
            [&](auto& src, int x, int y) { return maskSum(mask == 33 ? kLaplacian3 : kLaplacian5, src, x, y); });
    }
}

TEST(FilterFixed, LaplacianOfFloats) {
    test::checkMask<Kpr32f, Kpr32f>(
        kpriFilterLaplacianBorder_32f_C1R, kpriFilterLaplacianGetBufferSize_32f_C1R, 33, [&](auto& src, int x, int y) {
            const auto beside = [&](int row) { return src.at(x - 1, row, 0) + src.at(x + 1, row, 0); };
            const float t = beside(y - 1) + beside(y + 1);
            return std::fma(-8.0F, src.at(x, y, 0), t + t);
        });
    // The large mask's rows, each by fused steps after its sums.
    test::checkMask<Kpr32f, Kpr32f>(
        kpriFilterLaplacianBorder_32f_C1R, kpriFilterLaplacianGetBufferSize_32f_C1R, 55, [&](auto& src, int x, int y) {
            const auto pair = [&](int d, int row) { return src.at(x - d, row, 0) + src.at(x + d, row, 0); };
            const auto edge = [&](int row) {
                return std::fma(2.0F, pair(2, row), 4.0F * (pair(1, row) + src.at(x, row, 0)));
            };
            const auto inner = [&](int row) { return std::fma(-8.0F, src.at(x, row, 0), 4.0F * pair(2, row)); };
            const float middle = std::fma(-24.0F, src.at(x, y, 0), std::fma(-8.0F, pair(1, y), 4.0F * pair(2, y)));
            return edge(y - 2) + edge(y + 2) + (inner(y - 1) + inner(y + 1)) + middle;
        });
}

// What lies under a zero of a mask is not seen.
TEST(FilterFixed, NanUnderAZero) {
    float image[25], dst[25];
    std::vector<Kpr8u> buffer(8192);
    const auto nanAt = [&](int i) {
        std::fill(std::begin(image), std::end(image), 1.0F);
        image[i] = std::numeric_limits<float>::quiet_NaN();
    };
    for (int i : {6, 8, 16, 18}) {
        nanAt(i);
        kpriFilterLaplacianBorder_32f_C1R(image, 20, dst, 20, {5, 5}, 55, kprBorderReplicate, 0, buffer.data());
        EXPECT_EQ(dst[12], 0.0F);
    }
    nanAt(12);
    kpriFilterSobelCrossBorder_32f_C1R(image, 20, dst, 20, {5, 5}, 33, kprBorderReplicate, 0, buffer.data());
    EXPECT_EQ(dst[12] + dst[11] + dst[7], 0.0F);
}

TEST(FilterFixed, RowsFarApart) {
    const auto check = [&]<typename Src, typename Dst>(auto function, KprMaskSize mask) {
        test::checkRowsFarApart<Src, Dst>(70, [&](const Src* src, int srcStep, Dst* dst, int dstStep) {
            std::vector<Kpr8u> buffer(1 << 16);
            return function(src, srcStep, dst, dstStep, KprSize{70, 4}, mask, kprBorderMirror, Src{}, buffer.data());
        });
    };
    check.operator()<Kpr8u, Kpr8u>(kpriFilterLowpassBorder_8u_C1R, 33);
    check.operator()<Kpr8u, Kpr16s>(kpriFilterLaplacianBorder_8u16s_C1R, 55);
    check.operator()<Kpr32f, Kpr32f>(kpriFilterSobelCrossBorder_32f_C1R, 33);
}

// Worked out by hand for a ROI of 20 x 9: rows of 32.
TEST(FilterFixed, Sizes) {
    using Sizing = KprStatus (*)(KprSize, KprMaskSize, int*);
    const int bytes3 = 32 * 84 + 144 + 576 + 168 + 304, bytes5 = 32 * 100 + 240 + 576 + 268 + 304;
    const struct {
        Sizing function;
        int three, five;
    } sizings[] = {
        {kpriFilterLaplacianGetBufferSize_8u16s_C1R, bytes3, bytes5},
        {kpriFilterLowpassGetBufferSize_8u_C1R, bytes3, bytes5},
        {kpriFilterSobelCrossGetBufferSize_8u16s_C1R, bytes3, bytes5},
        {kpriFilterLowpassGetBufferSize_32f_C1R, 2688 + 72 + 304 + 384 + 128, 3200 + 120 + 304 + 576 + 192},
        {kpriFilterSobelCrossGetBufferSize_32f_C1R, 2688 + 72 + 368 + 384 + 128, 3200 + 120 + 368 + 576 + 192},
        {kpriFilterLaplacianGetBufferSize_32f_C1R, 6 * 128 + 64, 15 * 128 + 64},
    };
    for (const auto& sizing : sizings) {
        int size = -1;
        EXPECT_EQ(sizing.function({0, 0}, 34, nullptr), kprStatusNullPtr);
        EXPECT_EQ(sizing.function({0, 9}, 34, &size), kprStatusBadSize);
        EXPECT_EQ(sizing.function({20, -9}, 33, &size), kprStatusBadSize);
        for (KprMaskSize bad : {0, 34, 35, 53, 77})
            EXPECT_EQ(sizing.function({20, 9}, bad, &size), kprStatusBadMaskSize);
        EXPECT_EQ(size, -1);
        EXPECT_EQ(sizing.function({20, 9}, 33, &size), kprStatusOk);
        EXPECT_EQ(size, sizing.three);
        EXPECT_EQ(sizing.function({20, 9}, 55, &size), kprStatusOk);
        EXPECT_EQ(size, sizing.five);
    }
}

Kpr8u scratch[16384];

template <typename... A>
void fixedLadder(const char* name, KprStatus (*function)(A...), const std::vector<int>& multiples) {
    test::Ladder<A...> ladder(name, function);
    ladder.template with<5>(33).template with<6>(kprBorderMirror).template with<8>(scratch);
    ladder.nulls().sizes().lengths({0, 1}).multiples(multiples);
    for (KprBorderType word : {0U, 5U, 245U, 256U, 257U}) ladder.template refuses<6>(word, kprStatusBadBorder);
    for (KprMaskSize mask : {0, 3, 34, 35, 53}) ladder.template refuses<5>(mask, kprStatusBadMaskSize);
    ladder.run();
}
#define FIXED_LADDER(function, ...) fixedLadder(#function, function, {__VA_ARGS__})

TEST(FilterFixed, StatusLadders) {
    FIXED_LADDER(kpriFilterLaplacianBorder_8u16s_C1R, 1);
    FIXED_LADDER(kpriFilterSobelCrossBorder_8u16s_C1R, 1);
    FIXED_LADDER(kpriFilterLowpassBorder_8u_C1R);
    FIXED_LADDER(kpriFilterLaplacianBorder_32f_C1R, 0, 1);
    FIXED_LADDER(kpriFilterSobelCrossBorder_32f_C1R, 0, 1);
    FIXED_LADDER(kpriFilterLowpassBorder_32f_C1R, 0, 1);
}

template <typename T, typename Function>
void checkSobelKernel(Function make) {
    const auto kernel = [&](int size, int order, int sign) {
        std::vector<T> taps(static_cast<std::size_t>(size), T{99});
        EXPECT_EQ(make(taps.data(), size, order, sign), kprStatusOk);
        return taps;
    };
    EXPECT_EQ(kernel(1, 0, 1), (std::vector<T>{1}));
    EXPECT_EQ(kernel(3, 0, 0), (std::vector<T>{1, 2, 1}));
    EXPECT_EQ(kernel(3, 1, 1), (std::vector<T>{-1, 0, 1}));
    EXPECT_EQ(kernel(3, 2, 1), (std::vector<T>{1, -2, 1}));
    EXPECT_EQ(kernel(5, 0, 1), (std::vector<T>{1, 4, 6, 4, 1}));
    EXPECT_EQ(kernel(5, 1, -1), (std::vector<T>{1, 2, 0, -2, -1}));
    EXPECT_EQ(kernel(5, 2, 1), (std::vector<T>{1, 0, -2, 0, 1}));
    EXPECT_EQ(kernel(7, 6, 1), (std::vector<T>{1, -6, 15, -20, 15, -6, 1}));
    EXPECT_EQ(kernel(19, 0, 1)[9], static_cast<T>(std::is_integral_v<T> ? 48620 - 65536 : 48620));
    T tap = 5;
    EXPECT_EQ(make(nullptr, 2, -1, 1), kprStatusNullPtr);
    for (auto [size, order] : {std::pair(0, 0), {-1, 0}, {2, 0}, {1, 1}, {1, -1}})
        EXPECT_EQ(make(&tap, size, order, 1), kprStatusBadArg);
    EXPECT_EQ(tap, 5);
}

TEST(FilterFixed, SobelKernels) {
    checkSobelKernel<Kpr16s>(kpriGenSobelKernel_16s);
    checkSobelKernel<Kpr32f>(kpriGenSobelKernel_32f);
}

}  // namespace
