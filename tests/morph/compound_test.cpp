#include <gtest/gtest.h>

#include <algorithm>

#include "tests/morph/morph_ground.h"

namespace {

using test::GuardedBytes;
using test::GuardedImage;
using test::ImageInMemory;
using test::kAll;
using test::Operation;
using test::Random;

GuardedBytes exactly(Kpr64s size) { return {static_cast<std::size_t>(size), test::Guard::After}; }
KprMorphAdvState* block(const GuardedBytes& bytes) { return reinterpret_cast<KprMorphAdvState*>(bytes.data()); }
Kpr8u* buffer(const GuardedBytes& bytes) { return reinterpret_cast<Kpr8u*>(bytes.data()); }

// As in the test of single stages: a call from image to image, then one in place.
template <typename T, int channels, typename Run>
void checkOne(Operation operation, KprSize size, bool inPlaceServed, Random& random, bool sameMask, Run run) {
    const auto element = test::randomElement(random);
    KprBorderType word = test::randomBorder(random);
    if (random.oneIn(8) && word != kprBorderInMem) word |= static_cast<KprBorderType>(random.range(1, 15) << 8);
    const bool wholeFirst = (word & 3840) != 0 && operation != Operation::Gradient;
    ImageInMemory<T> src(size, wholeFirst ? word | kprBorderInMem : word, element, channels, random,
                         operation == Operation::Gradient ? 1 : 2);
    GuardedImage<T> dst(size, random, channels);
    T values[4];
    for (T& value : values) value = random.pixel<T>();
    std::vector<std::vector<T>> expected;
    for (int c = 0; c < channels; ++c) {
        expected.push_back(test::expectedOf<T>(operation, element, !sameMask, word, values[c], size,
                                               [&](int x, int y) { return src.at(x, y, c); }));
    }
    const auto before = src.snapshot();
    ASSERT_EQ(run(src, dst.data(), dst.step(), size, element, test::sizedFor(size, random), word, values), kprStatusOk);
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
    ASSERT_EQ(run(src, src.data(), src.step(), size, element, size, word, values), kprStatusOk);
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
    for (KprSize size : test::awkwardSizes()) {
        for (Operation operation : kAll) {
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
