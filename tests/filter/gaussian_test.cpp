#include <gtest/gtest.h>
#include <unistd.h>

#include <future>
#include <map>

#include "tests/filter/ground.h"
#include "tests/support/ladder.h"

// The block as the tests see it: five words, then the kernel.
struct KprFilterGaussianSpec {
    Kpr32s words[512];
};

namespace {

using test::GuardedBytes;
using test::GuardedImage;
using test::Random;

template <typename T>
constexpr KprDataType kTypeOf = std::is_same_v<T, Kpr8u>    ? kpr8u
                                : std::is_same_v<T, Kpr16u> ? kpr16u
                                : std::is_same_v<T, Kpr16s> ? kpr16s
                                                            : kpr32f;
template <typename T>
constexpr int kScale = sizeof(T) == 1 ? 4096 : 32768;

// Memory of exactly the sizes told, the end of each against an inaccessible page.
struct Block {
    GuardedBytes spec, buffer;

    Block(std::int64_t specSize, std::int64_t bufferSize)
        : spec(static_cast<std::size_t>(specSize), test::Guard::After),
          buffer(static_cast<std::size_t>(bufferSize), test::Guard::After) {}
    auto* block() const { return reinterpret_cast<KprFilterGaussianSpec*>(spec.data()); }
    auto* scratch() const { return reinterpret_cast<Kpr8u*>(buffer.data()); }
    // The first multiple of `alignment` behind the five words.
    template <typename T>
    const T* kernel(std::uintptr_t alignment) const {
        const auto from = reinterpret_cast<std::uintptr_t>(spec.data()) + 20;
        return reinterpret_cast<const T*>((from + alignment - 1) / alignment * alignment);
    }
};

template <typename T>
Block borderBlock(KprSize roi, int kernelSize, KprBorderType word, int channels, float sigma) {
    int specSize = 0, bufferSize = 0;
    EXPECT_EQ(kpriFilterGaussianGetBufferSize(roi, static_cast<unsigned>(kernelSize), kTypeOf<T>, channels, &specSize,
                                              &bufferSize),
              kprStatusOk);
    Block block(specSize, bufferSize);
    EXPECT_EQ(kpriFilterGaussianInit(roi, static_cast<unsigned>(kernelSize), word, kTypeOf<T>, channels, block.block(),
                                     block.scratch(), sigma),
              kprStatusOk);
    return block;
}

template <typename T>
Block largeBlock(KprSizeL roi, int kernelSize, KprBorderType word, int channels, float sigma) {
    std::int64_t specSize = 0, initSize = 0, bufferSize = 0;
    EXPECT_EQ(kpriFilterGaussianGetSpecSize_L(kernelSize, kTypeOf<T>, channels, &specSize, &initSize), kprStatusOk);
    EXPECT_EQ(kpriFilterGaussianGetBufferSize_L(roi, kernelSize, kTypeOf<T>, word, channels, &bufferSize), kprStatusOk);
    Block block(specSize, bufferSize);
    const GuardedBytes init(static_cast<std::size_t>(initSize), test::Guard::After);
    EXPECT_EQ(kpriFilterGaussianInit_L(roi, kernelSize, word, kTypeOf<T>, channels, block.block(),
                                       reinterpret_cast<Kpr8u*>(init.data()), sigma),
              kprStatusOk);
    return block;
}

// Filtered rows, each made when first asked for.
template <typename T, typename Make>
auto rowsMadeBy(int elements, Make make) {
    return [=, rows = std::map<std::int64_t, std::vector<T>>()](std::int64_t y) mutable -> const std::vector<T>& {
        auto& row = rows[y];
        for (int i = static_cast<int>(row.size()); i < elements; ++i) row.push_back(make(i, y));
        return row;
    };
}

template <typename T, int channels, typename Function>
void checkBorderForm(Function function, KprSize roi, int kernelSize, KprBorderType word, float sigma, Random& random) {
    using Middle = std::conditional_t<sizeof(T) == 1, Kpr16s, T>;
    const int r = kernelSize / 2;
    test::BorderedImage<T> src(roi, {r, r, r, r}, word, random, channels, random.oneIn(2));
    GuardedImage<T> dst(roi, random, channels);
    const Block block = borderBlock<T>(roi, kernelSize, word, channels, sigma);
    const auto before = std::pair(src.snapshot(), std::vector<char>(block.spec.data(), block.spec.data() + 20));
    const auto value = [&] {
        if constexpr (channels == 1)
            return *src.value();
        else
            return (word & 15) == kprBorderConstant ? src.value() : nullptr;
    }();
    ASSERT_EQ(function(src.data(), src.step(), dst.data(), dst.step(), roi, value, block.block(), block.scratch()),
              kprStatusOk);
    EXPECT_EQ(before, std::pair(src.snapshot(), std::vector<char>(block.spec.data(), block.spec.data() + 20)));

    const auto kernel = [&] {
        if constexpr (std::is_floating_point_v<T>)
            return reference::gaussian(kernelSize, sigma);
        else
            return reference::integerGaussian(kernelSize, sigma, kScale<T>);
    }();
    auto rows = rowsMadeBy<Middle>(channels * roi.width, [&](int i, std::int64_t y) {
        const int x = i / channels, c = i % channels;
        const bool synthesised =
            (x < r && (word & kprBorderInMemLeft) == 0) || (x + r >= roi.width && (word & kprBorderInMemRight) == 0);
        return reference::tapSum<Middle>(kernel.data(), kernelSize, kScale<T>, sizeof(T) == 1 && synthesised,
                                         [&](int tap) { return src.inRow(x - r + tap, static_cast<int>(y), c); });
    });
    SCOPED_TRACE(testing::Message() << "word " << word << ", " << kernelSize << " taps, sigma " << sigma);
    test::expectImage(
        dst,
        [&](int x, int y, int c) {
            return reference::tapSum<T>(kernel.data(), kernelSize, kScale<T>, false, [&](int tap) -> Middle {
                const auto from = test::rowOf(y - r + tap, roi.height, word);
                return from ? rows(*from)[static_cast<std::size_t>(x * channels + c)] : Middle(src.value()[c]);
            });
        },
        channels);
}

template <typename T, int channels, typename Function>
void checkLargeForm(Function function, KprSize roi, int kernelSize, KprBorderType word, float sigma, Random& random) {
    const int r = kernelSize / 2;
    test::BorderedImage<T> src(roi, {r, r, r, r}, word, random, channels, random.oneIn(2));
    GuardedImage<T> dst(roi, random, channels);
    const KprSizeL size = {roi.width, roi.height};
    const Block block = largeBlock<T>(size, kernelSize, word, channels, sigma);
    const T* value = (word & 15) == kprBorderConstant ? src.value() : nullptr;
    ASSERT_EQ(
        function(src.data(), src.step(), dst.data(), dst.step(), size, word, value, block.block(), block.scratch()),
        kprStatusOk);

    const auto half = reference::halfGaussian(kernelSize, sigma);
    auto rows = rowsMadeBy<float>(channels * roi.width, [&](int i, std::int64_t y) {
        return reference::halfTapSum(
            half, [&](int tap) { return src.inRow(i / channels - r + tap, static_cast<int>(y), i % channels); });
    });
    SCOPED_TRACE(testing::Message() << "word " << word << ", " << kernelSize << " taps, sigma " << sigma);
    test::expectImage(
        dst,
        [&](int x, int y, int c) {
            const float sum = reference::halfTapSum(half, [&](int tap) -> float {
                const auto from = test::rowOf(y - r + tap, roi.height, word);
                return from ? rows(*from)[static_cast<std::size_t>(x * channels + c)] : float(src.value()[c]);
            });
            return reference::largeResult<T>(sum, half.size());
        },
        channels);
}

int oddSize(Random& random) { return 2 * random.range(1, 15) + 1; }
float anySigma(Random& random) { return static_cast<float>(random.range(1, 400)) / 100.0F; }

// `check(roi, kernelSize, word, sigma, random)` over widths, heights, kernels and all border words.
template <typename Check>
void sweep(Check check) {
    Random random;
    for (KprSize roi : test::awkwardSizes()) {
        for (int kernelSize : {3, 5, oddSize(random)}) {
            check(roi, kernelSize, test::anyFilterWord(random), anySigma(random), random);
            if (testing::Test::HasFailure()) return;
        }
    }
    for (KprSize roi : test::photographSizes()) {
        check(roi, random.oneIn(2) ? 3 : oddSize(random), test::anyFilterWord(random), anySigma(random), random);
        if (testing::Test::HasFailure()) return;
    }
    for (KprBorderType word : test::filterWords()) {
        for (KprSize roi : {KprSize{1, 1}, {2, 3}, {5, 2}, {4, 9}, {random.range(1, 40), random.range(1, 40)}}) {
            for (int kernelSize : {3, 7, oddSize(random)}) {
                check(roi, kernelSize, word, anySigma(random), random);
                if (testing::Test::HasFailure()) return;
            }
        }
    }
}

template <typename T, int channels, typename Function>
void sweepBorderForm(Function function) {
    sweep([&](KprSize roi, int kernelSize, KprBorderType word, float sigma, Random& random) {
        checkBorderForm<T, channels>(function, roi, kernelSize, word, sigma, random);
    });
}
template <typename T, int channels, typename Function>
void sweepLargeForm(Function function) {
    sweep([&](KprSize roi, int kernelSize, KprBorderType word, float sigma, Random& random) {
        checkLargeForm<T, channels>(function, roi, kernelSize, word, sigma, random);
    });
}

TEST(FilterGaussian, BorderFormOfBytes) {
    sweepBorderForm<Kpr8u, 1>(kpriFilterGaussianBorder_8u_C1R);
    sweepBorderForm<Kpr8u, 3>(kpriFilterGaussianBorder_8u_C3R);
}
// Enough pixels for sums half way between two results, which one in 4096 is; kernels of every kind of taps.
TEST(FilterGaussian, BorderFormOfManyBytes) {
    Random random;
    const KprSize roi = {203, 59};
    for (int i = 0; i < 24; ++i)
        checkBorderForm<Kpr8u, 1>(kpriFilterGaussianBorder_8u_C1R, roi, 3, kprBorderMirror,
                                  0.4F + 0.05F * static_cast<float>(i), random);
    for (int kernelSize = 5; kernelSize <= 65 && !HasFailure(); kernelSize += 2) {
        for (float sigma : {0.15F * static_cast<float>(kernelSize), 50.0F})
            checkBorderForm<Kpr8u, 1>(kpriFilterGaussianBorder_8u_C1R, roi, kernelSize, test::anyFilterWord(random),
                                      sigma, random);
    }
    checkBorderForm<Kpr8u, 3>(kpriFilterGaussianBorder_8u_C3R, roi, 15, kprBorderReplicate, 2.5F, random);
}
TEST(FilterGaussian, BorderFormOfWords) {
    sweepBorderForm<Kpr16u, 1>(kpriFilterGaussianBorder_16u_C1R);
    sweepBorderForm<Kpr16u, 3>(kpriFilterGaussianBorder_16u_C3R);
    sweepBorderForm<Kpr16s, 1>(kpriFilterGaussianBorder_16s_C1R);
    sweepBorderForm<Kpr16s, 3>(kpriFilterGaussianBorder_16s_C3R);
}
TEST(FilterGaussian, BorderFormOfFloats) {
    sweepBorderForm<Kpr32f, 1>(kpriFilterGaussianBorder_32f_C1R);
    sweepBorderForm<Kpr32f, 3>(kpriFilterGaussianBorder_32f_C3R);
}
// Strips of edges that are too long to be held for several rows, and windows that are too tall for the stack.
TEST(FilterGaussian, LongKernels) {
    Random random;
    const auto check = [&](KprSize roi, KprBorderType word) {
        checkBorderForm<Kpr32f, 3>(kpriFilterGaussianBorder_32f_C3R, roi, 501, word, 60.0F, random);
        checkBorderForm<Kpr16s, 1>(kpriFilterGaussianBorder_16s_C1R, roi, 1601, word, 200.0F, random);
        checkBorderForm<Kpr8u, 3>(kpriFilterGaussianBorder_8u_C3R, roi, 65, word, 9.0F, random);
        checkLargeForm<Kpr32f, 3>(kpriFilterGaussian_32f_C3R_L, roi, 501, word, 60.0F, random);
    };
    check({1, 1}, test::anyFilterWord(random));
    for (int width : {40, 601, 1210}) check({width, 2}, kprBorderMirror | (random.range(0, 3) << 6));
}
TEST(FilterGaussian, LargeFormOfBytes) {
    sweepLargeForm<Kpr8u, 1>(kpriFilterGaussian_8u_C1R_L);
    sweepLargeForm<Kpr8u, 3>(kpriFilterGaussian_8u_C3R_L);
}
TEST(FilterGaussian, LargeFormOfWords) {
    sweepLargeForm<Kpr16u, 1>(kpriFilterGaussian_16u_C1R_L);
    sweepLargeForm<Kpr16u, 3>(kpriFilterGaussian_16u_C3R_L);
    sweepLargeForm<Kpr16s, 1>(kpriFilterGaussian_16s_C1R_L);
    sweepLargeForm<Kpr16s, 3>(kpriFilterGaussian_16s_C3R_L);
}
TEST(FilterGaussian, LargeFormOfFloats) {
    sweepLargeForm<Kpr32f, 1>(kpriFilterGaussian_32f_C1R_L);
    sweepLargeForm<Kpr32f, 3>(kpriFilterGaussian_32f_C3R_L);
}

// All three sigmas at which a tap of three comes out as it should not be missed: ties, a sum beside 4096, the wrap.
TEST(FilterGaussian, EverySigmaOfThreeTaps) {
    Random random;
    for (int i = 1; i <= 300; ++i) {
        checkBorderForm<Kpr8u, 1>(kpriFilterGaussianBorder_8u_C1R, {67, 4}, 3, kprBorderMirror,
                                  static_cast<float>(i) / 60.0F, random);
        if (testing::Test::HasFailure()) return;
    }
    for (float sigma : {1e-3F, 1e-10F, 30.0F, std::numeric_limits<float>::infinity()}) {
        checkBorderForm<Kpr8u, 1>(kpriFilterGaussianBorder_8u_C1R, {67, 4}, 5, kprBorderMirror, sigma, random);
        checkBorderForm<Kpr16s, 1>(kpriFilterGaussianBorder_16s_C1R, {67, 4}, 5, kprBorderMirror, sigma, random);
        checkBorderForm<Kpr16u, 1>(kpriFilterGaussianBorder_16u_C1R, {67, 4}, 9, kprBorderMirror, sigma, random);
        checkLargeForm<Kpr16s, 1>(kpriFilterGaussian_16s_C1R_L, {67, 4}, 5, kprBorderMirror, sigma, random);
    }
}

// Every triple of bytes whose outer ones matter by their sum: along the rows, and with all rows constant down the
// columns. Taps k, 4096 + d - 2k, k of all kinds: odd ones and powers of two, sums beside 4096, 1 2 1.
template <int channels, typename Function>
void checkEveryTriple(Function function, int k, int d) {
    const Kpr16s taps[3] = {static_cast<Kpr16s>(k), static_cast<Kpr16s>(4096 + d - 2 * k), static_cast<Kpr16s>(k)};
    alignas(16) KprFilterGaussianSpec spec = {{3, 20, kpr8u, kprBorderMirror, 12}};
    std::memcpy(reinterpret_cast<char*>(&spec) + 32, taps, sizeof taps);
    const auto run = [&](KprSize roi, auto pixel) {
        std::vector<Kpr8u> src, dst(static_cast<std::size_t>(roi.width * roi.height * channels));
        for (int y = 0; y < roi.height; ++y) {
            for (int x = 0; x < roi.width; ++x) src.insert(src.end(), channels, static_cast<Kpr8u>(pixel(x, y)));
        }
        std::vector<Kpr8u> buffer(1 << 20);
        const int step = roi.width * channels;
        const auto value = [] {
            if constexpr (channels == 1)
                return Kpr8u{0};
            else
                return static_cast<const Kpr8u*>(nullptr);
        }();
        ASSERT_EQ(function(src.data(), step, dst.data(), step, roi, value, &spec, buffer.data()), kprStatusOk);
        const auto sum = [&](int a, int b, int c) { return taps[0] * a + taps[1] * b + taps[2] * c; };
        const auto nearestEven = [](int s) { return (s + 2047 + ((s >> 12) & 1)) >> 12; };
        const auto mirrored = [](int i, int n) { return i < 0 ? -i : i < n ? i : 2 * n - 2 - i; };
        std::vector<int> rows;
        for (int y = 0; y < roi.height; ++y) {
            for (int x = 0; x < roi.width; ++x) {
                const int s =
                    sum(pixel(mirrored(x - 1, roi.width), y), pixel(x, y), pixel(mirrored(x + 1, roi.width), y));
                rows.push_back(x == 0 || x == roi.width - 1 ? s >> 12 : nearestEven(s));
            }
        }
        const auto row = [&](int x, int y) {
            return rows[static_cast<std::size_t>(mirrored(y, roi.height) * roi.width + x)];
        };
        for (int y = 0; y < roi.height; ++y) {
            for (int x = 0; x < roi.width; ++x) {
                const int wanted = nearestEven(sum(row(x, y - 1), row(x, y), row(x, y + 1)));
                for (int c = 0; c < channels; ++c) {
                    const int got = dst[static_cast<std::size_t>((y * roi.width + x) * channels + c)];
                    ASSERT_EQ(got, wanted) << "k " << k << ", d " << d << ", at " << x << ", " << y;
                }
            }
        }
    };
    run({1024, 256}, [](int x, int y) { return x % 2 == 0 ? x / 4 : y; });
    const int middles[] = {0, 1, 2, 97, 128, 255};
    run({70, 6 * 1024}, [&](int, int y) { return y % 2 == 0 ? y % 1024 / 4 : middles[y / 1024]; });
}
TEST(FilterGaussian, EveryTripleOfBytes) {
    for (int k : {0, 1, 8, 165, 511, 512, 979, 1000, 1024, 1025, 1307, 1365, 2047}) {
        for (int d : {-1, 0, 1}) {
            checkEveryTriple<1>(kpriFilterGaussianBorder_8u_C1R, k, d);
            if (k % 512 == 0 || k == 979) checkEveryTriple<3>(kpriFilterGaussianBorder_8u_C3R, k, d);
            if (HasFatalFailure()) return;
        }
    }
}

// Kernels that no sigma makes: two-sided and lopsided ones, sums far from 4096, a tap below zero.
TEST(FilterGaussian, KernelsOfAnyKind) {
    Random random;
    const KprSize roi = {150, 9};
    for (const std::vector<Kpr16s>& taps : {std::vector<Kpr16s>{1000, 2096, 1001},
                                            {1024, 2100, 1024},
                                            {500, 1000, 500},
                                            {-100, 4296, -100},
                                            {0, 4100, 0},
                                            {100, 900, 2000, 900, 196},
                                            {1, 2, 3, 4, 5, 6, 4096},
                                            {4064, 0, 16, 0, 16, 0, 0, 0, 0}}) {
        alignas(16)
            KprFilterGaussianSpec spec = {{static_cast<Kpr32s>(taps.size()), 20, kpr8u, kprBorderReplicate, 12}};
        std::memcpy(reinterpret_cast<char*>(&spec) + 32, taps.data(), taps.size() * 2);
        const int size = static_cast<int>(taps.size()), r = size / 2;
        test::BorderedImage<Kpr8u> src(roi, {r, r, r, r}, kprBorderReplicate, random);
        GuardedImage<Kpr8u> dst(roi, random);
        std::vector<Kpr8u> buffer(1 << 16);
        ASSERT_EQ(kpriFilterGaussianBorder_8u_C1R(src.data(), src.step(), dst.data(), dst.step(), roi, 0, &spec,
                                                  buffer.data()),
                  kprStatusOk);
        auto rows = rowsMadeBy<Kpr16s>(roi.width, [&](int x, std::int64_t y) {
            return reference::tapSum<Kpr16s>(taps.data(), size, 4096, x < r || x + r >= roi.width,
                                             [&](int tap) { return src.inRow(x - r + tap, static_cast<int>(y), 0); });
        });
        test::expectImage(dst, [&](int x, int y, int) {
            return reference::tapSum<Kpr8u>(taps.data(), size, 4096, false, [&](int tap) {
                return rows(std::clamp(y - r + tap, 0, roi.height - 1))[static_cast<std::size_t>(x)];
            });
        });
    }
}

TEST(FilterGaussian, BlocksHoldTheirKernels) {
    Random random;
    for (int kernelSize : {3, 5, 7, 31, 1531}) {
        const float sigma = anySigma(random);
        const auto words = [](const Block& block) {
            return std::vector<Kpr32s>(block.block()->words, block.block()->words + 5);
        };
        const auto integers = [&]<typename T>(KprBorderType word, int channels) {
            const Block block = borderBlock<T>({9, 9}, kernelSize, word, channels, sigma);
            EXPECT_EQ(words(block), (std::vector<Kpr32s>{kernelSize, 20, kTypeOf<T>, static_cast<Kpr32s>(word),
                                                         sizeof(T) == 1 ? 12 : 15}));
            const auto* taps = block.kernel<Kpr16s>(16);
            EXPECT_EQ(std::vector<Kpr16s>(taps, taps + kernelSize),
                      reference::integerGaussian(kernelSize, sigma, kScale<T>));
        };
        integers.operator()<Kpr8u>(kprBorderMirror, 1);
        integers.operator()<Kpr16u>(kprBorderConstant | kprBorderInMemTop, 3);
        integers.operator()<Kpr16s>(kprBorderInMem, 1);

        const Block floats = borderBlock<Kpr32f>({9, 9}, kernelSize, 240, 3, sigma);
        EXPECT_EQ(std::vector<Kpr32s>(floats.block()->words, floats.block()->words + 4),
                  (std::vector<Kpr32s>{kernelSize, 20, kpr32f, 240}));
        const auto taps = reference::gaussian(kernelSize, sigma);
        for (int i = 0; i < 8 * kernelSize; ++i) ASSERT_EQ(floats.kernel<float>(16)[i], taps[std::size_t(i / 8)]);

        const auto large = [&]<typename T>(KprBorderType word, int channels) {
            const Block block = largeBlock<T>({9, 9}, kernelSize, word, channels, sigma);
            EXPECT_EQ(words(block), (std::vector<Kpr32s>{kernelSize, 64, kTypeOf<T>, static_cast<Kpr32s>(word), 0}));
            const auto* half = block.kernel<float>(64);
            EXPECT_EQ(std::vector<float>(half, half + kernelSize / 2 + 1), reference::halfGaussian(kernelSize, sigma));
        };
        large.operator()<Kpr8u>(kprBorderReplicate, 3);
        large.operator()<Kpr16u>(246, 1);
        large.operator()<Kpr16s>(255, 1);
        large.operator()<Kpr32f>(kprBorderInMem, 3);
    }
}

// A block serves several calls at once, each with a buffer of its own.
TEST(FilterGaussian, ThreadsShareABlock) {
    Random random;
    const KprSize roi = {333, 61};
    GuardedImage<Kpr8u> src(roi, random);
    src.fill(random);
    const Block border = borderBlock<Kpr8u>(roi, 7, kprBorderMirror, 1, 1.4F);
    const Block large = largeBlock<Kpr8u>({roi.width, roi.height}, 7, kprBorderMirror, 1, 1.4F);
    const auto filtered = [&] {
        std::vector<Kpr8u> dst(static_cast<std::size_t>(2 * roi.width * roi.height));
        std::vector<Kpr8u> scratch(std::size_t{1} << 17);
        const auto half = dst.size() / 2;
        EXPECT_EQ(kpriFilterGaussianBorder_8u_C1R(src.data(), src.step(), dst.data(), roi.width, roi, 0, border.block(),
                                                  scratch.data()),
                  kprStatusOk);
        EXPECT_EQ(
            kpriFilterGaussian_8u_C1R_L(src.data(), src.step(), dst.data() + half, roi.width, {roi.width, roi.height},
                                        kprBorderMirror, nullptr, large.block(), scratch.data()),
            kprStatusOk);
        return dst;
    };
    const auto expected = filtered();
    std::vector<std::future<bool>> threads;
    for (int i = 0; i < 4; ++i) {
        threads.push_back(std::async(std::launch::async, [&] {
            for (int round = 0; round < 20; ++round) {
                if (filtered() != expected) return false;
            }
            return true;
        }));
    }
    for (auto& thread : threads) EXPECT_TRUE(thread.get());
}

// Sizes worked out by hand: 9 taps on rows of 10 pixels.
TEST(FilterGaussian, Sizes) {
    const auto border = [](KprSize roi, KprDataType type, int channels) {
        int spec = 0, buffer = 0;
        EXPECT_EQ(kpriFilterGaussianGetBufferSize(roi, 9, type, channels, &spec, &buffer), kprStatusOk);
        return std::pair(spec, buffer);
    };
    // w8 = 24: rows 2*18*24, 64, strips 2*(2*4*24 + 16), row stage 436, 32, column stage 208, 32, pointers 29*8, 32.
    EXPECT_EQ(border({10, 20}, kpr8u, 1), std::pair(180, 864 + 64 + 416 + 436 + 32 + 208 + 32 + 232 + 32));
    // m = 4, w8 = 64 of three channels: row stage 128*9 + 96, column stage 8*32 + 32*9 + 64.
    EXPECT_EQ(border({10, 4}, kpr16u, 3), std::pair(180, 1664 + 64 + 1056 + 1248 + 32 + 608 + 32 + 104 + 32));
    // w8 = 64: row stage 40*9 + 96, column stage 36*12 + 64.
    EXPECT_EQ(border({10, 4}, kpr16s, 3), std::pair(180, 1664 + 64 + 1056 + 456 + 32 + 496 + 32 + 104 + 32));
    EXPECT_EQ(border({10, 4}, kpr32f, 1), std::pair(320, 864 + 32 + 1248 + 64 + 960 + 32 + 320 + 32 + 104 + 32));

    std::int64_t spec = 0, init = 0, buffer = 0;
    EXPECT_EQ(kpriFilterGaussianGetSpecSize_L(9, kpr8u, 1, &spec, &init), kprStatusOk);
    EXPECT_EQ(std::pair(spec, init), (std::pair<std::int64_t, std::int64_t>(148, 64)));
    const std::int64_t wide = std::int64_t{1} << 40;
    EXPECT_EQ(kpriFilterGaussianGetBufferSize_L({wide, 3}, 9, kpr8u, 1, 3, &buffer), kprStatusOk);
    EXPECT_EQ(buffer, 10 * (wide * 12) + 108 + 64);
}

// ---- statuses

KprFilterGaussianSpec goodSpec;
Kpr8u scratch[16384];

TEST(FilterGaussian, SizingLadders) {
    LADDER(kpriFilterGaussianGetBufferSize)
        .with<1>(5)
        .with<2>(kpr16s)
        .with<3>(3)
        .nulls()
        .sizes()
        .refuses<1>(4, kprStatusBadArg)
        .refuses<1>(1, kprStatusBadArg)
        .refuses<1>(0, kprStatusBadArg)
        .refuses<2>(kpr32s, kprStatusBadDataType)
        .refuses<2>(-1, kprStatusBadDataType)
        .refuses<3>(2, kprStatusBadChannelCount)
        .refuses<3>(4, kprStatusBadChannelCount)
        .run();
    LADDER(kpriFilterGaussianGetSpecSize_L)
        .with<0>(5)
        .with<1>(kpr16s)
        .with<2>(1)
        .nulls()
        .refuses<0>(4, kprStatusBadArg)
        .refuses<0>(1, kprStatusBadArg)
        .refuses<0>(-3, kprStatusBadArg)
        .refuses<1>(kpr64f, kprStatusBadDataType)
        .refuses<2>(0, kprStatusBadChannelCount)
        .run();
    LADDER(kpriFilterGaussianGetBufferSize_L)
        .with<1>(5)
        .with<2>(kpr8u)
        .with<4>(1)
        .nulls()
        .sizes()
        .refuses<1>(6, kprStatusBadArg)
        .refuses<1>(-3, kprStatusBadArg)
        .refuses<2>(kpr1u, kprStatusBadDataType)
        .refuses<4>(2, kprStatusBadChannelCount)
        .run();
}

TEST(FilterGaussian, InitialisingLadders) {
    const float nan = std::numeric_limits<float>::quiet_NaN();
    LADDER(kpriFilterGaussianInit)
        .with<1>(5)
        .with<2>(1)
        .with<3>(kpr8u)
        .with<4>(1)
        .with<5>(&goodSpec)
        .with<6>(scratch)
        .with<7>(1.0F)
        .nulls()
        .sizes()
        .refuses<1>(4, kprStatusBadArg)
        .refuses<1>(1, kprStatusBadArg)
        .refuses<3>(2, kprStatusBadDataType)
        .refuses<4>(2, kprStatusBadChannelCount)
        .refuses<7>(0.0F, kprStatusBadArg)
        .refuses<7>(-1.0F, kprStatusBadArg)
        .refuses<7>(nan, kprStatusBadArg)
        .refuses<2>(0, kprStatusBadBorder)
        .refuses<2>(246 + 256, kprStatusBadBorder)
        .refuses<2>(245, kprStatusBadBorder)
        .run();
    LADDER(kpriFilterGaussianInit_L)
        .with<1>(5)
        .with<2>(245)
        .with<3>(kpr8u)
        .with<4>(1)
        .with<5>(&goodSpec)
        .with<6>(scratch)
        .with<7>(nan)
        .nulls()
        .sizes()
        .refuses<1>(4, kprStatusBadArg)
        .refuses<1>(-1, kprStatusBadArg)
        .refuses<3>(2, kprStatusBadDataType)
        .refuses<4>(2, kprStatusBadChannelCount)
        .refuses<7>(0.0F, kprStatusBadArg)
        .refuses<7>(-1.0F, kprStatusBadArg)
        .refuses<2>(0, kprStatusBadBorder)
        .refuses<2>(240 + 256, kprStatusBadBorder)
        .refuses<2>(5, kprStatusBadBorder)
        .run();
}

template <typename T>
KprFilterGaussianSpec specWith(int kernelSize, KprBorderType word) {
    KprFilterGaussianSpec spec;
    EXPECT_EQ(kpriFilterGaussianInit({7, 3}, 5, 1, kTypeOf<T>, 1, &spec, scratch, 1.0F), kprStatusOk);
    spec.words[0] = kernelSize;
    spec.words[3] = static_cast<Kpr32s>(word);
    return spec;
}

// A size below 1 counts after the steps, and a width below 1 makes any step long enough.
template <typename T, typename... A>
void borderLadder(const char* name, KprStatus (*function)(A...), int channels) {
    alignas(16) static KprFilterGaussianSpec good, badWord, even, small;
    good = specWith<T>(5, kprBorderMirror);
    badWord = specWith<T>(5, 245);
    even = specWith<T>(4, kprBorderMirror);
    small = specWith<T>(1, kprBorderMirror);
    test::Ladder<A...> ladder(name, function);
    ladder.channels(std::vector<int>(sizeof...(A), channels));
    ladder.template with<6>(&good).template with<7>(scratch);
    ladder.template refuses<0>(nullptr, kprStatusNullPtr).template refuses<2>(nullptr, kprStatusNullPtr);
    ladder.template refuses<6>(nullptr, kprStatusNullPtr).template refuses<7>(nullptr, kprStatusNullPtr);
    ladder.lengths({0, 1});
    ladder.template refuses<4>({7, 0}, kprStatusBadSize).template refuses<4>({7, -3}, kprStatusBadSize);
    if (sizeof(T) > 1) ladder.multiples({0, 1});
    ladder.template refuses<6>(&badWord, kprStatusBadBorder);
    if constexpr (std::is_same_v<T, Kpr32f>)
        ladder.template refuses<6>(&even, kprStatusBadArg).template refuses<6>(&small, kprStatusBadArg);
    ladder.run();
}

template <typename T, typename... A>
void largeLadder(const char* name, KprStatus (*function)(A...), int channels) {
    alignas(64) static KprFilterGaussianSpec good, even, negative;
    EXPECT_EQ(kpriFilterGaussianInit_L({7, 3}, 5, 1, kTypeOf<T>, 1, &good, scratch, 1.0F), kprStatusOk);
    even = negative = good;
    even.words[0] = 4;
    negative.words[0] = -5;
    test::Ladder<A...> ladder(name, function);
    ladder.channels(std::vector<int>(sizeof...(A), channels));
    ladder.template with<5>(kprBorderMirror).template with<7>(&good).template with<8>(scratch).nulls({2});
    ladder.lengths({0, 1});
    ladder.template refuses<4>({7, 0}, kprStatusBadSize).template refuses<4>({7, -3}, kprStatusBadSize);
    if (sizeof(T) > 1) ladder.multiples({0, 1});
    for (KprBorderType word : {256U, 496U, 0U, 5U, 4U + 64U}) ladder.template refuses<5>(word, kprStatusBadBorder);
    ladder.template refuses<7>(&even, kprStatusBadArg).template refuses<7>(&negative, kprStatusBadArg);
    ladder.run();
}

#define BORDER_LADDER(type, channels, function) borderLadder<type>(#function, function, channels)
#define LARGE_LADDER(type, channels, function) largeLadder<type>(#function, function, channels)

TEST(FilterGaussian, ProcessingLadders) {
    BORDER_LADDER(Kpr8u, 1, kpriFilterGaussianBorder_8u_C1R);
    BORDER_LADDER(Kpr8u, 3, kpriFilterGaussianBorder_8u_C3R);
    BORDER_LADDER(Kpr16u, 1, kpriFilterGaussianBorder_16u_C1R);
    BORDER_LADDER(Kpr16u, 3, kpriFilterGaussianBorder_16u_C3R);
    BORDER_LADDER(Kpr16s, 1, kpriFilterGaussianBorder_16s_C1R);
    BORDER_LADDER(Kpr16s, 3, kpriFilterGaussianBorder_16s_C3R);
    BORDER_LADDER(Kpr32f, 1, kpriFilterGaussianBorder_32f_C1R);
    BORDER_LADDER(Kpr32f, 3, kpriFilterGaussianBorder_32f_C3R);
    LARGE_LADDER(Kpr8u, 1, kpriFilterGaussian_8u_C1R_L);
    LARGE_LADDER(Kpr8u, 3, kpriFilterGaussian_8u_C3R_L);
    LARGE_LADDER(Kpr16u, 1, kpriFilterGaussian_16u_C1R_L);
    LARGE_LADDER(Kpr16u, 3, kpriFilterGaussian_16u_C3R_L);
    LARGE_LADDER(Kpr16s, 1, kpriFilterGaussian_16s_C1R_L);
    LARGE_LADDER(Kpr16s, 3, kpriFilterGaussian_16s_C3R_L);
    LARGE_LADDER(Kpr32f, 1, kpriFilterGaussian_32f_C1R_L);
    LARGE_LADDER(Kpr32f, 3, kpriFilterGaussian_32f_C3R_L);
}

TEST(FilterGaussian, IntegerFormsLeaveTheImageWithABlockTheyCannotUse) {
    for (int kernelSize : {4, 1, -3}) {
        Kpr8u bytes[4] = {1, 2, 3, 4};
        Kpr16s words[4] = {1, 2, 3, 4};
        const auto spec = specWith<Kpr8u>(kernelSize, kprBorderMirror);
        EXPECT_EQ(kpriFilterGaussianBorder_8u_C1R(bytes, 2, bytes + 2, 2, {2, 1}, 0, &spec, scratch), kprStatusOk);
        EXPECT_EQ(kpriFilterGaussianBorder_16s_C1R(words, 4, words + 2, 4, {2, 1}, 0, &spec, scratch), kprStatusOk);
        EXPECT_EQ(bytes[2] + words[2], 6);
    }
}

TEST(FilterGaussian, LargeFormWantsAConstant) {
    KprFilterGaussianSpec spec;
    ASSERT_EQ(kpriFilterGaussianInit_L({7, 3}, 3, 6, kpr8u, 1, &spec, scratch, 1.0F), kprStatusOk);
    Kpr8u image[64] = {}, dst[4];
    const auto run = [&](KprBorderType word, const Kpr8u* value) {
        return kpriFilterGaussian_8u_C1R_L(image + 20, 4, dst, 4, {4, 1}, word, value, &spec, scratch);
    };
    EXPECT_EQ(run(kprBorderConstant, nullptr), kprStatusNullPtr);
    EXPECT_EQ(run(kprBorderConstant | kprBorderInMemTop, nullptr), kprStatusNullPtr);
    EXPECT_EQ(run(kprBorderConstant | 512, nullptr), kprStatusBadBorder);
    EXPECT_EQ(run(kprBorderConstant | kprBorderInMem, nullptr), kprStatusOk);
    EXPECT_EQ(run(kprBorderInMem | 5, nullptr), kprStatusOk);
    EXPECT_EQ(run(255, nullptr), kprStatusOk);
    EXPECT_EQ(run(256 | 240, nullptr), kprStatusBadBorder);
}

// Steps of which no 32-bit product knows, on memory that is only touched where there are pixels.
TEST(FilterGaussian, ImagesPastTwoGigabytes) {
    const std::int64_t step = (std::int64_t{1} << 31) + 48;
    const KprSizeL roi = {40, 4};
    const auto bytes = static_cast<std::size_t>(step) * 4;
    const auto map = [&] {
        void* memory = mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
        return memory == MAP_FAILED ? nullptr : static_cast<Kpr16u*>(memory);
    };
    Kpr16u* const src = map();
    Kpr16u* const dst = map();
    if (src == nullptr || dst == nullptr) GTEST_SKIP() << "no address space";
    Random random;
    GuardedImage<Kpr16u> small({40, 4}, random), expected({40, 4}, random);
    small.fill(random);
    const auto at = [&](Kpr16u* image, int y) { return image + y * (step / 2); };
    for (int y = 0; y < 4; ++y) std::memcpy(at(src, y), small.row(y), 80);
    const Block block = largeBlock<Kpr16u>(roi, 5, kprBorderMirror, 1, 1.0F);
    ASSERT_EQ(kpriFilterGaussian_16u_C1R_L(src, step, dst, step, roi, kprBorderMirror, nullptr, block.block(),
                                           block.scratch()),
              kprStatusOk);
    ASSERT_EQ(kpriFilterGaussian_16u_C1R_L(small.data(), small.step(), expected.data(), expected.step(), roi,
                                           kprBorderMirror, nullptr, block.block(), block.scratch()),
              kprStatusOk);
    for (int y = 0; y < 4; ++y) EXPECT_EQ(std::memcmp(at(dst, y), expected.row(y), 80), 0) << "row " << y;
    munmap(src, bytes);
    munmap(dst, bytes);
}

TEST(FilterGaussian, BorderFormOfRowsFarApart) {
    const KprSize roi = {70, 4};
    const Block bytes = borderBlock<Kpr8u>(roi, 3, kprBorderMirror, 1, 0.849F);
    const Block words = borderBlock<Kpr16u>(roi, 5, kprBorderMirror, 1, 1.0F);
    test::checkRowsFarApart<Kpr8u, Kpr8u>(70, [&](const Kpr8u* src, int srcStep, Kpr8u* dst, int dstStep) {
        return kpriFilterGaussianBorder_8u_C1R(src, srcStep, dst, dstStep, roi, 0, bytes.block(), bytes.scratch());
    });
    test::checkRowsFarApart<Kpr16u, Kpr16u>(70, [&](const Kpr16u* src, int srcStep, Kpr16u* dst, int dstStep) {
        return kpriFilterGaussianBorder_16u_C1R(src, srcStep, dst, dstStep, roi, 0, words.block(), words.scratch());
    });
}

// A range of addresses of which the first part stands on one small piece of memory over and over: what is written there
// must be the same everywhere.
class Repeated {
  public:
    Repeated(std::size_t repeated, std::size_t size) : size_((size + kPiece - 1) / kPiece * kPiece) {
        const int file = memfd_create("repeated", 0);
        base_ = static_cast<char*>(
            mmap(nullptr, size_, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0));
        good_ = base_ != MAP_FAILED && ftruncate(file, kPiece) == 0;
        for (std::size_t at = 0; good_ && at + kPiece <= repeated; at += kPiece)
            good_ = mmap(base_ + at, kPiece, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_FIXED, file, 0) != MAP_FAILED;
        close(file);
    }
    Repeated(const Repeated&) = delete;
    Repeated& operator=(const Repeated&) = delete;
    ~Repeated() { munmap(base_, size_); }
    bool good() const { return good_; }
    Kpr8u* data() const { return reinterpret_cast<Kpr8u*>(base_); }

    static constexpr std::size_t kPiece = std::size_t{1} << 26;

  private:
    std::size_t size_;
    char* base_;
    bool good_;
};

// A row of 2^31 and some pixels, all of one value, through a buffer of 34 GB of addresses. Takes seconds.
TEST(FilterGaussian, DISABLED_RowsPastTwoToThe31) {
    const KprSizeL roi = {(std::int64_t{1} << 31) + 333, 1};
    std::int64_t bufferSize = 0;
    ASSERT_EQ(kpriFilterGaussianGetBufferSize_L(roi, 3, kpr8u, kprBorderReplicate, 1, &bufferSize), kprStatusOk);
    const auto width = static_cast<std::size_t>(roi.width);
    const Repeated src(width, width), dst(width, width);
    const Repeated buffer(3 * 4 * width, static_cast<std::size_t>(bufferSize));  // the ring, not what lies behind it
    if (!src.good() || !dst.good() || !buffer.good()) GTEST_SKIP() << "no address space";
    std::memset(src.data(), 77, Repeated::kPiece);
    std::memset(src.data() + width - 400, 77, 400);
    KprFilterGaussianSpec spec;
    ASSERT_EQ(kpriFilterGaussianInit_L(roi, 3, kprBorderReplicate, kpr8u, 1, &spec, scratch, 1.0F), kprStatusOk);
    ASSERT_EQ(kpriFilterGaussian_8u_C1R_L(src.data(), roi.width, dst.data(), roi.width, roi, kprBorderReplicate,
                                          nullptr, &spec, buffer.data()),
              kprStatusOk);
    EXPECT_EQ(std::count(dst.data(), dst.data() + Repeated::kPiece, 77), std::ptrdiff_t{Repeated::kPiece});
}

}  // namespace
