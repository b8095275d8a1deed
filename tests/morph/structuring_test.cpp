#include <gtest/gtest.h>

#include "tests/morph/morph_ground.h"

namespace {

using test::GuardedBytes;
using test::GuardedImage;
using test::ImageInMemory;
using test::Random;

// Bytes of exactly the size told, at an address of no alignment.
GuardedBytes exactly(Kpr64s size) { return {static_cast<std::size_t>(size), test::Guard::After}; }

KprMorphState* block(const GuardedBytes& bytes) { return reinterpret_cast<KprMorphState*>(bytes.data()); }
Kpr8u* buffer(const GuardedBytes& bytes) { return reinterpret_cast<Kpr8u*>(bytes.data()); }

// One call of `run(image, dst, step, size, element, sizing, word, values)` against the oracle. A call in place is made
// by a second image, on what the first call gave: the same pixels must come out.
template <typename T, int channels, typename Run>
void checkOne(KprSize size, bool dilation, bool inPlaceServed, Random& random, Run run) {
    const auto element = test::randomElement(random);
    const KprBorderType word = test::randomBorder(random);
    ImageInMemory<T> src(size, word, element, channels, random);
    GuardedImage<T> dst(size, random, channels);
    T values[4];
    for (T& value : values) value = random.pixel<T>();
    const auto before = src.snapshot();
    ASSERT_EQ(run(src, dst.data(), dst.step(), size, element, test::sizedFor(size, random), word, values), kprStatusOk);
    EXPECT_EQ(before, src.snapshot()) << "the source was written";
    const auto expected = [&](int x, int y, int c) {
        return reference::Stage<T>{dilation,  element, word,
                                   values[c], size,    [&](int i, int j) { return src.at(i, j, c); }}(x, y);
    };
    SCOPED_TRACE("mask " + std::to_string(element.width) + " x " + std::to_string(element.height) + ", border " +
                 std::to_string(word));
    test::expectImage(dst, expected, channels);
    if (!inPlaceServed || testing::Test::HasFailure()) return;
    ASSERT_EQ(run(src, src.data(), src.step(), size, element, size, word, values), kprStatusOk);
    for (int y = 0; y < size.height; ++y) {
        for (int x = 0; x < size.width * channels; ++x) {
            ASSERT_TRUE(test::same(src.at(x / channels, y, x % channels), dst.row(y)[x])) << "in place, row " << y;
        }
    }
}

template <typename T, int channels, typename Size, typename Init, typename Process>
void checkBorder(Size getSize, Init init, Process process, bool dilation, bool inPlaceServed) {
    Random random;
    for (KprSize size : test::awkwardSizes()) {
        for (int i = 0; i < 3; ++i) {
            checkOne<T, channels>(size, dilation, inPlaceServed, random,
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
}

template <typename T, int channels, typename Process>
void checkLarge(KprDataType type, Process process, bool dilation, bool inPlaceServed) {
    Random random;
    const auto specSizeOf = dilation ? kpriDilateGetSpecSize_L : kpriErodeGetSpecSize_L;
    const auto bufferSizeOf = dilation ? kpriDilateGetBufferSize_L : kpriErodeGetBufferSize_L;
    const auto init = dilation ? kpriDilateInit_L : kpriErodeInit_L;
    for (KprSize size : test::awkwardSizes()) {
        checkOne<T, channels>(
            size, dilation, inPlaceServed, random,
            [&](auto& src, T* dst, int dstStep, KprSize roi, auto& element, KprSize sizing, KprBorderType word,
                const T* values) {
                Kpr64s specSize = 0, bufferSize = 0;
                const Kpr64s width = element.width, height = element.height;
                EXPECT_EQ(specSizeOf(sizing.width, sizing.height, width, height, &specSize), kprStatusOk);
                EXPECT_EQ(bufferSizeOf(sizing.width, sizing.height, width, height, type, channels, &bufferSize),
                          kprStatusOk);
                const GuardedBytes spec = exactly(specSize), work = exactly(bufferSize);
                EXPECT_EQ(init(sizing.width, sizing.height, element.bytes.data(), width, height, block(spec)),
                          kprStatusOk);
                return process(src.data(), src.step(), dst, dstStep, roi.width, roi.height, word, values, block(spec),
                               buffer(work));
            });
        if (testing::Test::HasFailure()) return;
    }
}

TEST(Morphology, BorderBytes) {
    checkBorder<Kpr8u, 1>(kpriMorphologyBorderGetSize_8u_C1R, kpriMorphologyBorderInit_8u_C1R, kpriDilateBorder_8u_C1R,
                          true, true);
    checkBorder<Kpr8u, 1>(kpriMorphologyBorderGetSize_8u_C1R, kpriMorphologyBorderInit_8u_C1R, kpriErodeBorder_8u_C1R,
                          false, true);
}
TEST(Morphology, BorderBytesOfThreeChannels) {
    checkBorder<Kpr8u, 3>(kpriMorphologyBorderGetSize_8u_C3R, kpriMorphologyBorderInit_8u_C3R, kpriDilateBorder_8u_C3R,
                          true, true);
    checkBorder<Kpr8u, 3>(kpriMorphologyBorderGetSize_8u_C3R, kpriMorphologyBorderInit_8u_C3R, kpriErodeBorder_8u_C3R,
                          false, true);
}
TEST(Morphology, BorderBytesOfFourChannels) {
    checkBorder<Kpr8u, 4>(kpriMorphologyBorderGetSize_8u_C4R, kpriMorphologyBorderInit_8u_C4R, kpriDilateBorder_8u_C4R,
                          true, true);
    checkBorder<Kpr8u, 4>(kpriMorphologyBorderGetSize_8u_C4R, kpriMorphologyBorderInit_8u_C4R, kpriErodeBorder_8u_C4R,
                          false, true);
}
TEST(Morphology, BorderWords) {
    checkBorder<Kpr16u, 1>(kpriMorphologyBorderGetSize_16u_C1R, kpriMorphologyBorderInit_16u_C1R,
                           kpriDilateBorder_16u_C1R, true, true);
    checkBorder<Kpr16u, 1>(kpriMorphologyBorderGetSize_16u_C1R, kpriMorphologyBorderInit_16u_C1R,
                           kpriErodeBorder_16u_C1R, false, false);
}
TEST(Morphology, BorderSignedWords) {
    checkBorder<Kpr16s, 1>(kpriMorphologyBorderGetSize_16s_C1R, kpriMorphologyBorderInit_16s_C1R,
                           kpriDilateBorder_16s_C1R, true, false);
    checkBorder<Kpr16s, 1>(kpriMorphologyBorderGetSize_16s_C1R, kpriMorphologyBorderInit_16s_C1R,
                           kpriErodeBorder_16s_C1R, false, false);
}
TEST(Morphology, BorderFloats) {
    checkBorder<Kpr32f, 1>(kpriMorphologyBorderGetSize_32f_C1R, kpriMorphologyBorderInit_32f_C1R,
                           kpriDilateBorder_32f_C1R, true, true);
    checkBorder<Kpr32f, 1>(kpriMorphologyBorderGetSize_32f_C1R, kpriMorphologyBorderInit_32f_C1R,
                           kpriErodeBorder_32f_C1R, false, true);
}
TEST(Morphology, BorderFloatsOfThreeChannels) {
    checkBorder<Kpr32f, 3>(kpriMorphologyBorderGetSize_32f_C3R, kpriMorphologyBorderInit_32f_C3R,
                           kpriDilateBorder_32f_C3R, true, true);
    checkBorder<Kpr32f, 3>(kpriMorphologyBorderGetSize_32f_C3R, kpriMorphologyBorderInit_32f_C3R,
                           kpriErodeBorder_32f_C3R, false, true);
}
TEST(Morphology, BorderFloatsOfFourChannels) {
    checkBorder<Kpr32f, 4>(kpriMorphologyBorderGetSize_32f_C4R, kpriMorphologyBorderInit_32f_C4R,
                           kpriDilateBorder_32f_C4R, true, true);
    checkBorder<Kpr32f, 4>(kpriMorphologyBorderGetSize_32f_C4R, kpriMorphologyBorderInit_32f_C4R,
                           kpriErodeBorder_32f_C4R, false, true);
}

TEST(Morphology, Large) {
    checkLarge<Kpr8u, 1>(kpr8u, kpriDilate_8u_C1R_L, true, true);
    checkLarge<Kpr8u, 3>(kpr8u, kpriDilate_8u_C3R_L, true, true);
    checkLarge<Kpr8u, 4>(kpr8u, kpriDilate_8u_C4R_L, true, true);
    checkLarge<Kpr16u, 1>(kpr16u, kpriDilate_16u_C1R_L, true, true);
    checkLarge<Kpr16s, 1>(kpr16s, kpriDilate_16s_C1R_L, true, false);
    checkLarge<Kpr32f, 1>(kpr32f, kpriDilate_32f_C1R_L, true, true);
    checkLarge<Kpr32f, 3>(kpr32f, kpriDilate_32f_C3R_L, true, true);
    checkLarge<Kpr32f, 4>(kpr32f, kpriDilate_32f_C4R_L, true, true);
    checkLarge<Kpr8u, 1>(kpr8u, kpriErode_8u_C1R_L, false, true);
    checkLarge<Kpr8u, 3>(kpr8u, kpriErode_8u_C3R_L, false, true);
    checkLarge<Kpr8u, 4>(kpr8u, kpriErode_8u_C4R_L, false, true);
    checkLarge<Kpr16u, 1>(kpr16u, kpriErode_16u_C1R_L, false, false);
    checkLarge<Kpr16s, 1>(kpr16s, kpriErode_16s_C1R_L, false, false);
    checkLarge<Kpr32f, 1>(kpr32f, kpriErode_32f_C1R_L, false, true);
    checkLarge<Kpr32f, 3>(kpr32f, kpriErode_32f_C3R_L, false, true);
    checkLarge<Kpr32f, 4>(kpr32f, kpriErode_32f_C4R_L, false, true);
}

// More loads than the list of them holds, which a mask of every other tap brings.
TEST(Morphology, MaskOfManyRuns) {
    Random random;
    const KprSize size = {333, 40}, maskSize = {45, 61};
    reference::StructuringElement element{maskSize.width, maskSize.height, {}};
    for (int i = 0; i < 45 * 61; ++i) element.bytes.push_back(random.oneIn(2) ? 1 : 0);
    GuardedImage<Kpr8u> src(size, random), dst(size, random);
    src.forEach([&](Kpr8u& pixel) { pixel = random.oneIn(800) ? static_cast<Kpr8u>(random.range(1, 255)) : 0; });
    int specSize = 0, bufferSize = 0;
    ASSERT_EQ(kpriMorphologyBorderGetSize_8u_C1R(size, maskSize, &specSize, &bufferSize), kprStatusOk);
    const GuardedBytes spec = exactly(specSize), work = exactly(bufferSize);
    ASSERT_EQ(kpriMorphologyBorderInit_8u_C1R(size, element.bytes.data(), maskSize, block(spec), buffer(work)),
              kprStatusOk);
    ASSERT_EQ(kpriDilateBorder_8u_C1R(src.data(), src.step(), dst.data(), dst.step(), size, kprBorderMirror, 0,
                                      block(spec), buffer(work)),
              kprStatusOk);
    test::expectImage(dst, [&](int x, int y, int) {
        return reference::Stage<Kpr8u>{true, element, kprBorderMirror,
                                       0,    size,    [&](int i, int j) { return src.at(i, j); }}(x, y);
    });
}

// Sizes worked out by hand from the stated formulas.
TEST(Morphology, Sizes) {
    int spec = 0, work = 0;
    ASSERT_EQ(kpriMorphologyBorderGetSize_8u_C1R({640, 480}, {3, 3}, &spec, &work), kprStatusOk);
    EXPECT_EQ(spec, 3 * (4 * 2 + 3) + 104);
    EXPECT_EQ(work, 1952 + (640 * 3 + 32 + 16) + 64);  // strips of 642 * 3 = 1926 and 482 * 3 = 1446
    ASSERT_EQ(kpriMorphologyBorderGetSize_32f_C3R({640, 480}, {4, 6}, &spec, &work), kprStatusOk);
    EXPECT_EQ(spec, 7 * (6 * 2 + 5) + 104);
    EXPECT_EQ(work, (644 * 9 * 12 + 31) / 32 * 32 + (7680 * 7 + 64 + 64) + 64);
    ASSERT_EQ(kpriMorphologyBorderGetSize_16s_C1R({10, 480}, {11, 5}, &spec, &work), kprStatusOk);
    EXPECT_EQ(work, (20 * 484 * 2 + 31) / 32 * 32 + (32 * 5 + 32 + 32) + 64);
    EXPECT_EQ(kpriMorphologyBorderGetSize_8u_C1R({0x7fffffff, 0x7fffffff}, {3, 3}, &spec, &work),
              kprStatusSizeOverflow);

    Kpr64s specL = 0, workL = 0;
    ASSERT_EQ(kpriErodeGetSpecSize_L(640, 480, 4, 3, &specL), kprStatusOk);
    EXPECT_EQ(specL, (5 * 3 + 2) * 3 + 128 + (16 * 3 + 112) + 16);
    ASSERT_EQ(kpriErodeGetBufferSize_L(640, 480, 3, 3, kpr8u, 1, &workL), kprStatusOk);
    EXPECT_EQ(workL, 1952 + (640 * 3 + 32 + 16) + 64);
    EXPECT_EQ(kpriDilateGetBufferSize_L(0x80000000, 1, 1, 1, kpr8u, 1, &workL), kprStatusSizeOverflow);
    EXPECT_EQ(kpriErodeGetBufferSize_L(1, 1, 1, 1, kpr32s, 1, &workL), kprStatusBadDataType);
    EXPECT_EQ(kpriErodeGetBufferSize_L(1, 1, 1, 1, kpr1u, 2, &workL), kprStatusBadChannelCount);
    EXPECT_EQ(kpriDilateGetSpecSize_L(1, 1, 0, 1, &specL), kprStatusBadSize);
}

// The statuses of the sizing and initialising calls of the 32-bit interface.
template <typename Size, typename Init>
void checkSizingLadder(Size getSize, Init init) {
    test::Ladder("GetSize", getSize)
        .template with<1>({3, 3})
        .nulls()
        .template refuses<0>({0, 3}, kprStatusBadSize)
        .template refuses<0>({3, -1}, kprStatusBadSize)
        .template refuses<1>({0, 3}, kprStatusBadSize)
        .template refuses<1>({3, -1}, kprStatusBadSize)
        .run();
    EXPECT_EQ(init({5, 5}, nullptr, {0, 0}, nullptr, nullptr), kprStatusNullPtr);
    alignas(8) Kpr8u spec[256] = {}, mask[9] = {}, work[1] = {};
    auto* state = reinterpret_cast<KprMorphState*>(spec);
    EXPECT_EQ(init({5, 5}, mask, {3, 3}, state, nullptr), kprStatusNullPtr);
    EXPECT_EQ(init({0, 5}, mask, {3, 3}, state, work), kprStatusBadSize);
    EXPECT_EQ(init({5, 5}, mask, {3, 0}, state, work), kprStatusBadSize);
}

TEST(Morphology, SizingLadders) {
    checkSizingLadder(kpriMorphologyBorderGetSize_8u_C1R, kpriMorphologyBorderInit_8u_C1R);
    checkSizingLadder(kpriMorphologyBorderGetSize_8u_C3R, kpriMorphologyBorderInit_8u_C3R);
    checkSizingLadder(kpriMorphologyBorderGetSize_8u_C4R, kpriMorphologyBorderInit_8u_C4R);
    checkSizingLadder(kpriMorphologyBorderGetSize_16u_C1R, kpriMorphologyBorderInit_16u_C1R);
    checkSizingLadder(kpriMorphologyBorderGetSize_16s_C1R, kpriMorphologyBorderInit_16s_C1R);
    checkSizingLadder(kpriMorphologyBorderGetSize_32f_C1R, kpriMorphologyBorderInit_32f_C1R);
    checkSizingLadder(kpriMorphologyBorderGetSize_32f_C3R, kpriMorphologyBorderInit_32f_C3R);
    checkSizingLadder(kpriMorphologyBorderGetSize_32f_C4R, kpriMorphologyBorderInit_32f_C4R);
}

// What a processing call refuses, in order, with the memory behind its pointers out of reach.
class Refusals {
  public:
    Refusals() {
        for (GuardedBytes* bytes : {&src_, &dst_, &spec_, &work_}) bytes->setAccessible(false);
    }

    template <typename T, int channels, typename Process>
    void border(Process process, bool inPlaceServed) {
        const T values[4] = {};
        const int row = 5 * channels * int{sizeof(T)};
        auto call = [&](auto* src, auto* dst, int srcStep, int dstStep, KprSize roi, KprBorderType word) {
            return process(src, srcStep, dst, dstStep, roi, word, test::borderValue<channels>(values), block(spec_),
                           buffer(work_));
        };
        T* const src = reinterpret_cast<T*>(src_.data());
        T* const dst = reinterpret_cast<T*>(dst_.data());
        const T* const none = nullptr;
        EXPECT_EQ(call(none, dst, 0, 0, {0, 0}, 0), kprStatusNullPtr);
        EXPECT_EQ(call(src, static_cast<T*>(nullptr), 0, 0, {0, 0}, 0), kprStatusNullPtr);
        EXPECT_EQ(call(src, src, 0, 0, {0, 0}, 0), inPlaceServed ? kprStatusBadSize : kprStatusInPlaceUnsupported);
        EXPECT_EQ(call(src, dst, 0, 0, {0, 5}, 0), kprStatusBadSize);
        EXPECT_EQ(call(src, dst, 0, 0, {5, -1}, 0), kprStatusBadSize);
        EXPECT_EQ(call(src, dst, row - 1, row, {5, 5}, 0), kprStatusBadStep);
        EXPECT_EQ(call(src, dst, row, row - 1, {5, 5}, 0), kprStatusBadStep);
        if (sizeof(T) > 1) {
            EXPECT_EQ(call(src, dst, row + 1, row, {5, 5}, 0), kprStatusStepNotMultiple);
            EXPECT_EQ(call(src, dst, row, row + 1, {5, 5}, 0), kprStatusStepNotMultiple);
        }
        for (KprBorderType word : badWords()) EXPECT_EQ(call(src, dst, row, row, {5, 5}, word), kprStatusBadBorder);
        if constexpr (channels > 1) {
            EXPECT_EQ(process(src, row, dst, row, {5, 5}, kprBorderConstant, nullptr, block(spec_), buffer(work_)),
                      kprStatusNullPtr);
        }
    }

    template <typename T, int channels, typename Process>
    void large(Process process, bool inPlaceServed) {
        const T values[4] = {};
        const Kpr64s row = 5 * channels * int{sizeof(T)};
        const Kpr64s wide = Kpr64s{0x7fffffff} * channels * Kpr64s{sizeof(T)};
        T* const src = reinterpret_cast<T*>(src_.data());
        T* const dst = reinterpret_cast<T*>(dst_.data());
        auto call = [&](T* to, Kpr64s srcStep, Kpr64s dstStep, Kpr64s width, Kpr64s height, KprBorderType word) {
            return process(src, srcStep, to, dstStep, width, height, word, values, block(spec_), buffer(work_));
        };
        EXPECT_EQ(call(nullptr, 0, 0, 0, 0, 0), kprStatusNullPtr);
        EXPECT_EQ(call(src, 0, 0, 0, 0, 0), inPlaceServed ? kprStatusBadSize : kprStatusInPlaceUnsupported);
        EXPECT_EQ(call(dst, 0, 0, 5, 0, 0), kprStatusBadSize);
        EXPECT_EQ(call(dst, 0, 0, 0x80000000, 5, 0), kprStatusSizeOverflow);
        EXPECT_EQ(call(dst, 0, 0, 5, 0x80000000, 0), kprStatusSizeOverflow);
        EXPECT_EQ(call(dst, row - 1, row, 5, 5, 0), kprStatusBadStep);
        EXPECT_EQ(call(dst, row, wide - 1, 0x7fffffff, 5, 0), kprStatusBadStep);
        if (sizeof(T) > 1) {
            EXPECT_EQ(call(dst, row, row + 1, 5, 5, 0), kprStatusStepNotMultiple);
        }
        for (KprBorderType word : badWords()) EXPECT_EQ(call(dst, row, row, 5, 5, word), kprStatusBadBorder);
        EXPECT_EQ(call(dst, wide, wide, 0x7fffffff, 5, kprBorderMirror), kprStatusBadSize);
        EXPECT_EQ(call(dst, row, row, 5, 0x7fffffff, kprBorderMirror), kprStatusBadSize);
        EXPECT_EQ(call(dst, row, 0x7ffffffc + 4LL, 5, 5, kprBorderMirror), kprStatusBadStep);
        EXPECT_EQ(process(src, row, dst, row, 5, 5, kprBorderConstant, nullptr, block(spec_), buffer(work_)),
                  kprStatusNullPtr);
    }

  private:
    static std::vector<KprBorderType> badWords() { return {0, 2, 4, 7, 16, 256, 0x1f0, 4096 + 1, 0xffffffff}; }

    GuardedBytes src_ = exactly(512), dst_ = exactly(512), spec_ = exactly(256), work_ = exactly(512);
};

TEST(Morphology, Refusals) {
    Refusals refusals;
    refusals.border<Kpr8u, 1>(kpriDilateBorder_8u_C1R, true);
    refusals.border<Kpr8u, 3>(kpriDilateBorder_8u_C3R, true);
    refusals.border<Kpr8u, 4>(kpriErodeBorder_8u_C4R, true);
    refusals.border<Kpr16u, 1>(kpriDilateBorder_16u_C1R, true);
    refusals.border<Kpr16u, 1>(kpriErodeBorder_16u_C1R, false);
    refusals.border<Kpr16s, 1>(kpriDilateBorder_16s_C1R, false);
    refusals.border<Kpr16s, 1>(kpriErodeBorder_16s_C1R, false);
    refusals.border<Kpr32f, 1>(kpriDilateBorder_32f_C1R, true);
    refusals.border<Kpr32f, 3>(kpriErodeBorder_32f_C3R, true);
    refusals.large<Kpr8u, 1>(kpriDilate_8u_C1R_L, true);
    refusals.large<Kpr8u, 3>(kpriErode_8u_C3R_L, true);
    refusals.large<Kpr16u, 1>(kpriDilate_16u_C1R_L, true);
    refusals.large<Kpr16u, 1>(kpriErode_16u_C1R_L, false);
    refusals.large<Kpr16s, 1>(kpriDilate_16s_C1R_L, false);
    refusals.large<Kpr16s, 1>(kpriErode_16s_C1R_L, false);
    refusals.large<Kpr32f, 4>(kpriErode_32f_C4R_L, true);
}

}  // namespace
