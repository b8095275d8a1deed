#include <gtest/gtest.h>

#include <algorithm>
#include <tuple>

#include "tests/morph/morph_ground.h"

namespace {

using test::exactly;
using test::GuardedBytes;
using test::GuardedImage;
using test::ImageInMemory;
using test::kAll;
using test::Operation;
using test::Random;

KprMorphAdvState* block(const GuardedBytes& bytes) { return reinterpret_cast<KprMorphAdvState*>(bytes.data()); }
Kpr8u* buffer(const GuardedBytes& bytes) { return reinterpret_cast<Kpr8u*>(bytes.data()); }

// As in the test of single stages: a call from image to image, then one in place.
template <typename T, int channels, typename Run>
void checkOne(Operation operation, KprSize size, bool inPlaceServed, Random& random, bool sameMask, Run run) {
    const auto element = test::elementFor(size, random);
    KprBorderType word = test::randomBorder(random);
    if (random.oneIn(8) && word != kprBorderInMem) word |= static_cast<KprBorderType>(random.range(1, 15) << 8);
    const bool wholeFirst = (word & 3840) != 0 && operation != Operation::Gradient;
    ImageInMemory<T> src(size, wholeFirst ? word | kprBorderInMem : word, element, channels, random,
                         operation == Operation::Gradient ? 1 : 2);
    GuardedImage<T> dst(size, random, channels);
    const test::BorderValues<T> values(channels, random);
    std::vector<std::vector<T>> expected;
    for (int c = 0; c < channels; ++c) {
        expected.push_back(test::expectedOf<T>(operation, element, !sameMask, word, values[c], size,
                                               [&](int x, int y) { return src.at(x, y, c); }));
    }
    const auto before = src.snapshot();
    ASSERT_EQ(run(src, dst.data(), dst.step(), size, element, test::sizedFor(size, random), word, values.data()),
              kprStatusOk);
    EXPECT_EQ(before, src.snapshot()) << "the source was written";
    SCOPED_TRACE("operation " + std::to_string(static_cast<int>(operation)) + ", mask " +
                 std::to_string(element.width) + " x " + std::to_string(element.height) + ", border " +
                 std::to_string(word));
    test::expectImage(
        dst,
        [&](int x, int y, int c) {
            return expected[static_cast<std::size_t>(c)][static_cast<std::size_t>(y * size.width + x)];
        },
        channels);
    if (!inPlaceServed || testing::Test::HasFailure()) return;
    ASSERT_EQ(run(src, src.data(), src.step(), size, element, size, word, values.data()), kprStatusOk);
    for (int y = 0; y < size.height; ++y) {
        for (int x = 0; x < size.width * channels; ++x) {
            ASSERT_TRUE(test::same(src.at(x / channels, y, x % channels), dst.row(y)[x])) << "in place, row " << y;
        }
    }
}

// The functions in the order of the operations.
template <typename T, int channels, typename Size, typename Init, typename Process>
void checkBorder(Size getSize, Init init, const Process (&functions)[5]) {
    Random random;
    for (KprSize size : test::sizesUpTo(channels == 1 ? 40000 : 9000)) {
        const Operation one = kAll[random.range(0, 4)];
        for (Operation operation : kAll) {
            if (size.width * size.height >= 9000 && operation != one) continue;
            const bool refused = operation == Operation::Gradient && std::is_same_v<T, Kpr16s>;
            const auto process = functions[static_cast<int>(operation)];
            checkOne<T, channels>(operation, size, !refused, random, false,
                                  [&](auto& src, T* dst, int dstStep, KprSize roi, auto& element, KprSize sizing,
                                      KprBorderType word, const T* values) {
                                      int specSize = 0, bufferSize = 0;
                                      const KprSize maskSize = {element.width, element.height};
                                      EXPECT_EQ(getSize(sizing, maskSize, &specSize, &bufferSize), kprStatusOk);
                                      const GuardedBytes spec = exactly(specSize), work = exactly(bufferSize);
                                      EXPECT_EQ(init(sizing, element.bytes.data(), maskSize, block(spec), buffer(work)),
                                                kprStatusOk);
                                      return process(src.data(), src.step(), dst, dstStep, roi, word,
                                                     test::borderValue<channels>(values), block(spec), buffer(work));
                                  });
            if (testing::Test::HasFailure()) return;
        }
    }
    KprMorphAdvState* const none = nullptr;
    EXPECT_EQ(init({5, 5}, nullptr, {0, 0}, none, nullptr), kprStatusNullPtr);
    int a = 0, b = 0;
    EXPECT_EQ(getSize({5, 5}, {3, 3}, nullptr, &b), kprStatusNullPtr);
    EXPECT_EQ(getSize({5, 5}, {3, 0}, &a, &b), kprStatusBadSize);
    EXPECT_EQ(getSize({0x7fffffff, 5}, {3, 3}, &a, &b), kprStatusSizeOverflow);
}

template <typename T, int channels, typename Process>
void checkLarge(KprDataType type, const Process (&functions)[5]) {
    Random random;
    for (KprSize size : test::awkwardSizes()) {
        const Operation operation = kAll[random.range(0, 4)];
        const bool refused = operation == Operation::Gradient && std::is_same_v<T, Kpr16s>;
        const auto process = functions[static_cast<int>(operation)];
        const int mode = random.oneIn(3) ? 1 : random.oneIn(2) ? 4 : 0;
        checkOne<T, channels>(
            operation, size, !refused, random, mode == 1,
            [&](auto& src, T* dst, int dstStep, KprSize roi, auto& element, KprSize sizing, KprBorderType word,
                const T* values) {
                Kpr64s specSize = 0, bufferSize = 0;
                const Kpr64s w = element.width, h = element.height;
                EXPECT_EQ(kpriMorphGetSpecSize_L(sizing.width, sizing.height, w, h, type, channels, &specSize),
                          kprStatusOk);
                EXPECT_EQ(kpriMorphGetBufferSize_L(sizing.width, sizing.height, w, h, type, channels, &bufferSize),
                          kprStatusOk);
                const GuardedBytes spec = exactly(specSize), work = exactly(bufferSize);
                EXPECT_EQ(kpriMorphInit_L(sizing.width, sizing.height, element.bytes.data(), w, h, type, channels,
                                          block(spec)),
                          kprStatusOk);
                EXPECT_EQ(kpriMorphSetMode_L(1, block(spec)), kprStatusOk);
                EXPECT_EQ(kpriMorphSetMode_L(mode, block(spec)), kprStatusOk);
                return process(src.data(), src.step(), dst, dstStep, roi.width, roi.height, word, values, block(spec),
                               buffer(work));
            });
        if (testing::Test::HasFailure()) return;
    }
}

TEST(MorphCompound, Bytes) {
    checkBorder<Kpr8u, 1>(kpriMorphAdvGetSize_8u_C1R, kpriMorphAdvInit_8u_C1R,
                          {kpriMorphOpenBorder_8u_C1R, kpriMorphCloseBorder_8u_C1R, kpriMorphTophatBorder_8u_C1R,
                           kpriMorphBlackhatBorder_8u_C1R, kpriMorphGradientBorder_8u_C1R});
    checkLarge<Kpr8u, 1>(kpr8u, {kpriMorphOpen_8u_C1R_L, kpriMorphClose_8u_C1R_L, kpriMorphTophat_8u_C1R_L,
                                 kpriMorphBlackhat_8u_C1R_L, kpriMorphGradient_8u_C1R_L});
}

TEST(MorphCompound, BytesOfThreeChannels) {
    checkBorder<Kpr8u, 3>(kpriMorphAdvGetSize_8u_C3R, kpriMorphAdvInit_8u_C3R,
                          {kpriMorphOpenBorder_8u_C3R, kpriMorphCloseBorder_8u_C3R, kpriMorphTophatBorder_8u_C3R,
                           kpriMorphBlackhatBorder_8u_C3R, kpriMorphGradientBorder_8u_C3R});
    checkLarge<Kpr8u, 3>(kpr8u, {kpriMorphOpen_8u_C3R_L, kpriMorphClose_8u_C3R_L, kpriMorphTophat_8u_C3R_L,
                                 kpriMorphBlackhat_8u_C3R_L, kpriMorphGradient_8u_C3R_L});
}

TEST(MorphCompound, BytesOfFourChannels) {
    checkBorder<Kpr8u, 4>(kpriMorphAdvGetSize_8u_C4R, kpriMorphAdvInit_8u_C4R,
                          {kpriMorphOpenBorder_8u_C4R, kpriMorphCloseBorder_8u_C4R, kpriMorphTophatBorder_8u_C4R,
                           kpriMorphBlackhatBorder_8u_C4R, kpriMorphGradientBorder_8u_C4R});
    checkLarge<Kpr8u, 4>(kpr8u, {kpriMorphOpen_8u_C4R_L, kpriMorphClose_8u_C4R_L, kpriMorphTophat_8u_C4R_L,
                                 kpriMorphBlackhat_8u_C4R_L, kpriMorphGradient_8u_C4R_L});
}

TEST(MorphCompound, Words) {
    checkBorder<Kpr16u, 1>(kpriMorphAdvGetSize_16u_C1R, kpriMorphAdvInit_16u_C1R,
                           {kpriMorphOpenBorder_16u_C1R, kpriMorphCloseBorder_16u_C1R, kpriMorphTophatBorder_16u_C1R,
                            kpriMorphBlackhatBorder_16u_C1R, kpriMorphGradientBorder_16u_C1R});
    checkLarge<Kpr16u, 1>(kpr16u, {kpriMorphOpen_16u_C1R_L, kpriMorphClose_16u_C1R_L, kpriMorphTophat_16u_C1R_L,
                                   kpriMorphBlackhat_16u_C1R_L, kpriMorphGradient_16u_C1R_L});
}

TEST(MorphCompound, SignedWords) {
    checkBorder<Kpr16s, 1>(kpriMorphAdvGetSize_16s_C1R, kpriMorphAdvInit_16s_C1R,
                           {kpriMorphOpenBorder_16s_C1R, kpriMorphCloseBorder_16s_C1R, kpriMorphTophatBorder_16s_C1R,
                            kpriMorphBlackhatBorder_16s_C1R, kpriMorphGradientBorder_16s_C1R});
    checkLarge<Kpr16s, 1>(kpr16s, {kpriMorphOpen_16s_C1R_L, kpriMorphClose_16s_C1R_L, kpriMorphTophat_16s_C1R_L,
                                   kpriMorphBlackhat_16s_C1R_L, kpriMorphGradient_16s_C1R_L});
}

TEST(MorphCompound, Floats) {
    checkBorder<Kpr32f, 1>(kpriMorphAdvGetSize_32f_C1R, kpriMorphAdvInit_32f_C1R,
                           {kpriMorphOpenBorder_32f_C1R, kpriMorphCloseBorder_32f_C1R, kpriMorphTophatBorder_32f_C1R,
                            kpriMorphBlackhatBorder_32f_C1R, kpriMorphGradientBorder_32f_C1R});
    checkLarge<Kpr32f, 1>(kpr32f, {kpriMorphOpen_32f_C1R_L, kpriMorphClose_32f_C1R_L, kpriMorphTophat_32f_C1R_L,
                                   kpriMorphBlackhat_32f_C1R_L, kpriMorphGradient_32f_C1R_L});
}

TEST(MorphCompound, FloatsOfThreeChannels) {
    checkBorder<Kpr32f, 3>(kpriMorphAdvGetSize_32f_C3R, kpriMorphAdvInit_32f_C3R,
                           {kpriMorphOpenBorder_32f_C3R, kpriMorphCloseBorder_32f_C3R, kpriMorphTophatBorder_32f_C3R,
                            kpriMorphBlackhatBorder_32f_C3R, kpriMorphGradientBorder_32f_C3R});
    checkLarge<Kpr32f, 3>(kpr32f, {kpriMorphOpen_32f_C3R_L, kpriMorphClose_32f_C3R_L, kpriMorphTophat_32f_C3R_L,
                                   kpriMorphBlackhat_32f_C3R_L, kpriMorphGradient_32f_C3R_L});
}

TEST(MorphCompound, FloatsOfFourChannels) {
    checkBorder<Kpr32f, 4>(kpriMorphAdvGetSize_32f_C4R, kpriMorphAdvInit_32f_C4R,
                           {kpriMorphOpenBorder_32f_C4R, kpriMorphCloseBorder_32f_C4R, kpriMorphTophatBorder_32f_C4R,
                            kpriMorphBlackhatBorder_32f_C4R, kpriMorphGradientBorder_32f_C4R});
    checkLarge<Kpr32f, 4>(kpr32f, {kpriMorphOpen_32f_C4R_L, kpriMorphClose_32f_C4R_L, kpriMorphTophat_32f_C4R_L,
                                   kpriMorphBlackhat_32f_C4R_L, kpriMorphGradient_32f_C4R_L});
}

// Formulas worked out by hand.
TEST(MorphCompound, Sizes) {
    int spec = 0, work = 0, one = 0, oneWork = 0;
    kpriMorphologyBorderGetSize_32f_C3R({640, 480}, {4, 3}, &one, &oneWork);
    ASSERT_EQ(kpriMorphAdvGetSize_32f_C3R({640, 480}, {4, 3}, &spec, &work), kprStatusOk);
    EXPECT_EQ(spec, 15 + 2 * one + 32);
    EXPECT_EQ(work, 482 * ((644 * 12 + 31) / 32 * 32) + 2 * oneWork);

    Kpr64s specL = 0, workL = 0, oneL = 0, least = 0, most = 0;
    kpriErodeGetSpecSize_L(640, 480, 4, 3, &oneL);
    ASSERT_EQ(kpriMorphGetSpecSize_L(640, 480, 4, 3, kpr16u, 1, &specL), kprStatusOk);
    EXPECT_EQ(specL, 15 + 2 * oneL + 64);
    kpriErodeGetBufferSize_L(640, 480, 4, 3, kpr16u, 1, &least);
    kpriErodeGetBufferSize_L(648, 484, 4, 3, kpr16u, 1, &most);
    ASSERT_EQ(kpriMorphGetBufferSize_L(640, 480, 4, 3, kpr16u, 1, &workL), kprStatusOk);
    EXPECT_EQ(workL, 484 * 1312 + 2 * std::max(least, most));
    EXPECT_EQ(kpriMorphGetBufferSize_L(0x7ffffffe, 1, 9, 1, kpr8u, 1, &workL), kprStatusSizeOverflow);
}

// Two blocks and the pointers to them; a mode moves one of the pointers, and is noted.
TEST(MorphCompound, BlockLayout) {
    const std::vector<Kpr8u> mask = {1, 0, 7, 0, 0, 2};
    const std::vector<Kpr8u> given = {0, 255, 0, 0, 255, 0, 0, 0, 255}, turned = {255, 0, 0, 0, 255, 0, 0, 255, 0};
    const KprSize size = {2, 3};
    const auto header = [](const GuardedBytes& spec) {
        return reinterpret_cast<void**>((reinterpret_cast<std::uintptr_t>(spec.data()) + 7) / 8 * 8);
    };
    int specSize = 0, workSize = 0, bitSpec = 0;
    ASSERT_EQ(kpriMorphAdvGetSize_8u_C1R({20, 20}, size, &specSize, &workSize), kprStatusOk);
    const GuardedBytes spec = exactly(specSize), work = exactly(workSize);
    ASSERT_EQ(kpriMorphAdvInit_8u_C1R({20, 20}, mask.data(), size, block(spec), buffer(work)), kprStatusOk);
    test::expectBlock<Kpr32s>(header(spec)[0], size, given, true);
    test::expectBlock<Kpr32s>(header(spec)[1], size, turned, true);
    ASSERT_EQ(kpriMorphAdvGetSize_1u_C1R({20, 20}, size, &bitSpec, &workSize), kprStatusOk);
    const GuardedBytes bits = exactly(bitSpec);
    ASSERT_EQ(kpriMorphAdvInit_1u_C1R({20, 20}, mask.data(), size, block(bits), buffer(work)), kprStatusOk);
    test::expectBlock<Kpr32s>(header(bits)[0], size, given, false);
    test::expectBlock<Kpr32s>(header(bits)[1], size, turned, false);

    Kpr64s largeSize = 0;
    ASSERT_EQ(kpriMorphGetSpecSize_L(20, 20, 2, 3, kpr8u, 1, &largeSize), kprStatusOk);
    const GuardedBytes large = exactly(largeSize);
    ASSERT_EQ(kpriMorphInit_L(20, 20, mask.data(), 2, 3, kpr8u, 1, block(large)), kprStatusOk);
    void** const pair = header(large);
    const auto flag = [&] { return *reinterpret_cast<Kpr32s*>(pair + 3); };
    test::expectBlock<Kpr64s>(pair[0], size, given, true);
    test::expectBlock<Kpr64s>(pair[2], size, turned, true);
    EXPECT_EQ(pair[1], pair[2]);
    EXPECT_EQ(flag(), 0);
    for (const auto& [mode, same, noted] : {std::tuple{1, true, 0}, {4, false, 1}, {0, false, 0}}) {
        ASSERT_EQ(kpriMorphSetMode_L(mode, block(large)), kprStatusOk);
        EXPECT_EQ(pair[1], same ? pair[0] : pair[2]) << "mode " << mode;
        EXPECT_EQ(flag(), noted) << "mode " << mode;
    }
}

// Of each type one size.
TEST(MorphCompound, SizesOfEachType) {
    const KprSize roi = {99, 50}, mask = {6, 4};
    const auto check = [&](auto getSize, auto getOne, KprDataType type, int channels, int elementBytes) {
        int spec = 0, work = 0, one = 0, oneWork = 0;
        ASSERT_EQ(getSize(roi, mask, &spec, &work), kprStatusOk);
        ASSERT_EQ(getOne(roi, mask, &one, &oneWork), kprStatusOk);
        EXPECT_EQ(spec, 35 + 2 * one + 32);
        EXPECT_EQ(work, 54 * ((105 * channels * elementBytes + 31) / 32 * 32) + 2 * oneWork);
        Kpr64s most = 0, large = 0;
        for (int times = 0; times <= 2; ++times) {
            Kpr64s grown = 0;
            kpriErodeGetBufferSize_L(99 + 6 * times, 50 + 4 * times, 6, 4, type, channels, &grown);
            most = std::max(most, grown);
        }
        ASSERT_EQ(kpriMorphGetBufferSize_L(99, 50, 6, 4, type, channels, &large), kprStatusOk);
        EXPECT_EQ(large, 58 * ((111 * channels * elementBytes + 31) / 32 * 32) + 2 * most);
    };
    check(kpriMorphAdvGetSize_8u_C1R, kpriMorphologyBorderGetSize_8u_C1R, kpr8u, 1, 1);
    check(kpriMorphAdvGetSize_8u_C3R, kpriMorphologyBorderGetSize_8u_C3R, kpr8u, 3, 1);
    check(kpriMorphAdvGetSize_8u_C4R, kpriMorphologyBorderGetSize_8u_C4R, kpr8u, 4, 1);
    check(kpriMorphAdvGetSize_16u_C1R, kpriMorphologyBorderGetSize_16u_C1R, kpr16u, 1, 2);
    check(kpriMorphAdvGetSize_16s_C1R, kpriMorphologyBorderGetSize_16s_C1R, kpr16s, 1, 2);
    check(kpriMorphAdvGetSize_32f_C1R, kpriMorphologyBorderGetSize_32f_C1R, kpr32f, 1, 4);
    check(kpriMorphAdvGetSize_32f_C3R, kpriMorphologyBorderGetSize_32f_C3R, kpr32f, 3, 4);
    check(kpriMorphAdvGetSize_32f_C4R, kpriMorphologyBorderGetSize_32f_C4R, kpr32f, 4, 4);
}

TEST(MorphCompound, LargeSizingLadder) {
    Kpr64s size = 0;
    const auto both = [&](KprStatus status, Kpr64s width, Kpr64s height, Kpr64s mask, KprDataType type, int channels) {
        alignas(8) Kpr8u memory[8] = {};
        EXPECT_EQ(kpriMorphGetSpecSize_L(width, height, mask, 3, type, channels, &size), status);
        EXPECT_EQ(kpriMorphGetBufferSize_L(width, height, mask, 3, type, channels, &size), status);
        EXPECT_EQ(kpriMorphInit_L(width, height, memory, mask, 3, type, channels,
                                  reinterpret_cast<KprMorphAdvState*>(memory)),
                  status);
    };
    EXPECT_EQ(kpriMorphGetSpecSize_L(0, 0, 0, 0, 99, 9, nullptr), kprStatusNullPtr);
    EXPECT_EQ(kpriMorphGetBufferSize_L(0, 0, 0, 0, 99, 9, nullptr), kprStatusNullPtr);
    EXPECT_EQ(kpriMorphInit_L(0, 0, nullptr, 0, 0, 99, 9, nullptr), kprStatusNullPtr);
    both(kprStatusBadSize, 0, 0x80000000, 3, 99, 9);
    both(kprStatusBadSize, 5, 5, 0, 99, 9);
    both(kprStatusSizeOverflow, 5, 0x80000000, 3, 99, 9);
    both(kprStatusBadDataType, 5, 5, 3, kpr32s, 9);
    both(kprStatusBadChannelCount, 5, 5, 3, kpr1u, 2);
    EXPECT_EQ(kpriMorphSetMode_L(2, nullptr), kprStatusNullPtr);
    GuardedBytes state = exactly(64);
    state.setAccessible(false);
    for (int mode : {2, 3, 5, 8, -1}) EXPECT_EQ(kpriMorphSetMode_L(mode, block(state)), kprStatusBadMode);
}

// Where the two interfaces differ, and where the gradient differs from the operations of two stages.
TEST(MorphCompound, Refusals) {
    GuardedBytes memory = exactly(4096), others = exactly(4096);
    memory.setAccessible(false);
    others.setAccessible(false);
    auto* src = reinterpret_cast<Kpr16s*>(memory.data());
    auto* dst = reinterpret_cast<Kpr16s*>(others.data());
    const KprMorphAdvState* spec = block(others);
    Kpr8u* work = buffer(others);
    const Kpr16s value[3] = {};
    EXPECT_EQ(kpriMorphOpenBorder_16s_C1R(src, 10, src, 10, {0, 0}, 0, 0, spec, nullptr), kprStatusNullPtr);
    EXPECT_EQ(kpriMorphOpenBorder_16s_C1R(src, 10, src, 10, {0, 5}, 0, 0, spec, work), kprStatusBadSize);
    EXPECT_EQ(kpriMorphGradientBorder_16s_C1R(src, 10, src, 10, {0, 5}, 0, 0, spec, work), kprStatusInPlaceUnsupported);
    EXPECT_EQ(kpriMorphCloseBorder_16s_C1R(src, 9, dst, 10, {5, 5}, 0, 0, spec, work), kprStatusBadStep);
    EXPECT_EQ(kpriMorphTophatBorder_16s_C1R(src, 11, dst, 10, {5, 5}, 0, 0, spec, work), kprStatusStepNotMultiple);
    for (KprBorderType word : {0, 4, 256, 0x1f0, 4097}) {
        EXPECT_EQ(kpriMorphBlackhatBorder_16s_C1R(src, 10, dst, 10, {5, 5}, word, 0, spec, work), kprStatusBadBorder);
        EXPECT_EQ(kpriMorphOpen_16s_C1R_L(src, 10, dst, 10, 5, 5, word, value, spec, work), kprStatusBadBorder);
    }
    EXPECT_EQ(kpriMorphOpenBorder_8u_C3R(work, 15, work, 15, {5, 5}, kprBorderConstant, nullptr, spec, work),
              kprStatusNullPtr);

    // The large forms look at the constant's pointer with the others, and at 0x7fffffff last.
    EXPECT_EQ(kpriMorphOpen_16s_C1R_L(src, 0, dst, 0, 0, 0, kprBorderConstant, nullptr, spec, work), kprStatusNullPtr);
    EXPECT_EQ(kpriMorphGradient_16s_C1R_L(src, 0, dst, 0, 0, 0, kprBorderConstant, nullptr, spec, work),
              kprStatusBadSize);
    EXPECT_EQ(kpriMorphGradient_16s_C1R_L(src, 0, src, 0, 0, 0, 0, value, spec, work), kprStatusInPlaceUnsupported);
    EXPECT_EQ(kpriMorphTophat_16s_C1R_L(src, 0, src, 0, 5, 0x80000000, 0, value, spec, work), kprStatusSizeOverflow);
    EXPECT_EQ(kpriMorphClose_16s_C1R_L(src, 10, src, 10, 5, 0x7fffffff, 0, value, spec, work), kprStatusBadBorder);
    EXPECT_EQ(kpriMorphClose_16s_C1R_L(src, 10, src, 10, 5, 0x7fffffff, 1, value, spec, work), kprStatusSizeOverflow);
    EXPECT_EQ(kpriMorphGradient_16s_C1R_L(src, 10, dst, 10, 5, 0x7fffffff, 1, value, spec, work), kprStatusBadSize);
    EXPECT_EQ(kpriMorphBlackhat_16s_C1R_L(src, 10, src, 8, 5, 5, 1, value, spec, work), kprStatusBadStep);
    EXPECT_EQ(kpriMorphBlackhat_16s_C1R_L(src, 10, src, 11, 5, 5, 1, value, spec, work), kprStatusStepNotMultiple);
}

}  // namespace
