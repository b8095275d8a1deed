#include <gtest/gtest.h>

#include <array>
#include <cfenv>
#include <thread>
#include <tuple>

#include "tests/morph/morph_ground.h"

namespace {

using test::exactly;
using test::GuardedBytes;
using test::GuardedImage;
using test::ImageInMemory;
using test::Random;

KprMorphState* block(const GuardedBytes& bytes) { return reinterpret_cast<KprMorphState*>(bytes.data()); }
Kpr8u* buffer(const GuardedBytes& bytes) { return reinterpret_cast<Kpr8u*>(bytes.data()); }

// One call of `run(image, dst, step, size, element, sizing, word, values)` against the oracle. A call in place is made
// by a second image, on what the first call gave: the same pixels must come out.
template <typename T, int channels, typename Run>
void checkOne(KprSize size, bool dilation, bool inPlaceServed, Random& random, Run run) {
    const auto element = test::elementFor(size, random);
    const KprBorderType word = test::randomBorder(random);
    ImageInMemory<T> src(size, word, element, channels, random);
    GuardedImage<T> dst(size, random, channels);
    const test::BorderValues<T> values(channels, random);
    const auto before = src.snapshot();
    ASSERT_EQ(run(src, dst.data(), dst.step(), size, element, test::sizedFor(size, random), word, values.data()),
              kprStatusOk);
    EXPECT_EQ(before, src.snapshot()) << "the source was written";
    const auto expected = [&](int x, int y, int c) {
        return reference::Stage<T>{dilation,  element, word,
                                   values[c], size,    [&](int i, int j) { return src.at(i, j, c); }}(x, y);
    };
    SCOPED_TRACE("mask " + std::to_string(element.width) + " x " + std::to_string(element.height) + ", border " +
                 std::to_string(word));
    test::expectImage(dst, expected, channels);
    if (!inPlaceServed || testing::Test::HasFailure()) return;
    ASSERT_EQ(run(src, src.data(), src.step(), size, element, size, word, values.data()), kprStatusOk);
    for (int y = 0; y < size.height; ++y) {
        for (int x = 0; x < size.width * channels; ++x) {
            ASSERT_TRUE(test::same(src.at(x / channels, y, x % channels), dst.row(y)[x])) << "in place, row " << y;
        }
    }
}

template <typename T, int channels, typename Size, typename Init, typename Process>
void checkBorder(Size getSize, Init init, Process process, bool dilation, bool inPlaceServed) {
    Random random;
    for (KprSize size : test::sizesUpTo(channels == 1 ? 400000 : 40000)) {
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

// A block for a mask of bytes, and a work buffer.
struct Prepared {
    GuardedBytes spec, work;

    Prepared(KprSize roi, KprSize maskSize, const std::vector<Kpr8u>& mask, bool floats = false)
        : Prepared(sizesOf(roi, maskSize, floats)) {
        const auto init = floats ? kpriMorphologyBorderInit_32f_C1R : kpriMorphologyBorderInit_8u_C1R;
        EXPECT_EQ(init(roi, mask.data(), maskSize, block(spec), buffer(work)), kprStatusOk);
    }

  private:
    explicit Prepared(std::pair<int, int> sizes) : spec(exactly(sizes.first)), work(exactly(sizes.second)) {}
    static std::pair<int, int> sizesOf(KprSize roi, KprSize maskSize, bool floats) {
        const auto getSize = floats ? kpriMorphologyBorderGetSize_32f_C1R : kpriMorphologyBorderGetSize_8u_C1R;
        int specSize = 0, bufferSize = 0;
        EXPECT_EQ(getSize(roi, maskSize, &specSize, &bufferSize), kprStatusOk);
        return {specSize, bufferSize};
    }
};

// A number counts before any NaN; and what the caller has in the floating-point status stays as it is, whatever the
// library asks of it.
TEST(Morphology, SignallingNanTakesNoNumberWithIt) {
    const float signalling = std::numeric_limits<float>::signaling_NaN(),
                quiet = std::numeric_limits<float>::quiet_NaN();
    for (const KprSize maskSize : {KprSize{3, 1}, {3, 3}, {5, 5}, {15, 15}, {4, 3}}) {
        for (const float nan : {signalling, quiet, -signalling}) {
            for (const int way : {0, 1, 2, 3}) {
                const bool inPlace = way % 2 == 0;
                const KprBorderType border = way < 2 ? kprBorderReplicate : kprBorderConstant;
                const float src[] = {9, nan, 1, nan, nan, nan, nan, 4};
                const KprSize size = {8, 1};
                const std::vector<Kpr8u> mask(static_cast<std::size_t>(maskSize.width * maskSize.height), 1);
                const Prepared prepared(size, maskSize, mask, true);
                for (const bool dilation : {true, false}) {
                    float dst[8];
                    std::memcpy(dst, src, sizeof src);
                    const auto process = dilation ? kpriDilateBorder_32f_C1R : kpriErodeBorder_32f_C1R;
                    std::feclearexcept(FE_ALL_EXCEPT);
                    feenableexcept(FE_INVALID);
                    const KprStatus status = process(inPlace ? dst : src, 32, dst, 32, size, border, nan,
                                                     block(prepared.spec), buffer(prepared.work));
                    const bool traps = fegetexcept() == FE_INVALID, raised = std::fetestexcept(FE_INVALID) != 0;
                    fedisableexcept(FE_INVALID);
                    ASSERT_EQ(status, kprStatusOk);
                    EXPECT_TRUE(traps && !raised);
                    const reference::StructuringElement element{maskSize.width, maskSize.height, mask};
                    for (int x = 0; x < 8; ++x) {
                        const float expected = reference::Stage<float>{
                            dilation, element, border, nan, size, [&](int i, int) { return src[i]; }}(x, 0);
                        ASSERT_TRUE(test::same(dst[x], expected)) << "at " << x << ": " << dst[x];
                    }
                }
            }
        }
    }
}

// The layout of a block is told to callers; a mask that is even gets its zeros in front.
TEST(Morphology, BlockLayout) {
    const std::vector<Kpr8u> even = {1, 0, 7, 0, 0, 2}, odd = {0, 1, 0, 255, 0, 1};
    const Prepared small({20, 20}, {2, 3}, even), other({20, 20}, {3, 2}, odd);
    test::expectBlock<Kpr32s>(small.spec.data(), {2, 3}, {0, 255, 0, 0, 255, 0, 0, 0, 255}, true);
    test::expectBlock<Kpr32s>(other.spec.data(), {3, 2}, {0, 0, 0, 0, 255, 0, 255, 0, 255}, true);
    Kpr64s specSize = 0;
    ASSERT_EQ(kpriErodeGetSpecSize_L(20, 20, 2, 3, &specSize), kprStatusOk);
    const GuardedBytes spec = exactly(specSize);
    ASSERT_EQ(kpriErodeInit_L(20, 20, even.data(), 2, 3, block(spec)), kprStatusOk);
    test::expectBlock<Kpr64s>(spec.data(), {2, 3}, {0, 255, 0, 0, 255, 0, 0, 0, 255}, true);
    int bitSpec = 0, bitWork = 0;
    ASSERT_EQ(kpriMorphologyBorderGetSize_1u_C1R({20, 20}, {2, 3}, &bitSpec, &bitWork), kprStatusOk);
    const GuardedBytes bits = exactly(bitSpec), work = exactly(bitWork);
    ASSERT_EQ(kpriMorphologyBorderInit_1u_C1R({20, 20}, even.data(), {2, 3}, block(bits), buffer(work)), kprStatusOk);
    test::expectBlock<Kpr32s>(bits.data(), {2, 3}, {0, 255, 0, 0, 255, 0, 0, 0, 255}, false);

    // Wider than a list's 16-bit columns can say: there is none, and the mask works all the same.
    const int width = 65536;
    std::vector<Kpr8u> wide(width, 0);
    wide[width / 2 - 1] = wide[width / 2 + 3] = 1;
    const Prepared prepared({40, 1}, {width, 1}, wide);
    std::vector<Kpr8u> kept(width + 1, 0);
    kept[width / 2] = kept[width / 2 + 4] = 255;
    test::expectBlock<Kpr32s>(prepared.spec.data(), {width, 1}, kept, false);
    Kpr8u src[40] = {}, dst[40] = {};
    src[20] = 9;
    ASSERT_EQ(kpriDilateBorder_8u_C1R(src, 40, dst, 40, {40, 1}, kprBorderReplicate, 0, block(prepared.spec),
                                      buffer(prepared.work)),
              kprStatusOk);
    for (int x = 0; x < 40; ++x) EXPECT_EQ(dst[x], x == 20 || x == 16 ? 9 : 0) << x;
}

// Masks whose rows are runs around the middle column, of every length above and below, longer away from the middle ones
// too: only some of them are the small plan's.
TEST(Morphology, MasksOfCentredRuns) {
    Random random;
    const KprSize size = {70, 9};
    for (int masks = 0; masks < 16; ++masks) {
        const int reaches[] = {2, masks % 4 - 1, masks / 4 - 1};
        reference::StructuringElement element{5, 5, {}};
        for (int y = -2; y <= 2; ++y) {
            for (int x = -2; x <= 2; ++x) element.bytes.push_back(std::abs(x) <= reaches[std::abs(y)] ? 1 : 0);
        }
        const Prepared prepared(size, {5, 5}, element.bytes);
        for (const KprBorderType border : {kprBorderReplicate, kprBorderMirror, kprBorderConstant}) {
            for (const bool dilation : {true, false}) {
                GuardedImage<Kpr8u> src(size, random), dst(size, random);
                src.fill(random);
                const auto process = dilation ? kpriDilateBorder_8u_C1R : kpriErodeBorder_8u_C1R;
                ASSERT_EQ(process(src.data(), src.step(), dst.data(), dst.step(), size, border, 77,
                                  block(prepared.spec), buffer(prepared.work)),
                          kprStatusOk);
                const reference::Stage<Kpr8u> stage{dilation, element, border,
                                                    77,       size,    [&](int x, int y) { return src.at(x, y); }};
                test::expectImage(dst, [&](int x, int y, int) { return stage(x, y); });
                ASSERT_FALSE(HasFailure()) << "reaches " << reaches[1] << ", " << reaches[2] << ", border " << border;
            }
        }
    }
}

// Two threads with a buffer each share one block, which is read-only by then.
TEST(Morphology, ThreadsShareABlock) {
    Random random;
    const KprSize size = {333, 97}, maskSize = {9, 7};
    std::vector<Kpr8u> mask;
    for (int i = 0; i < 63; ++i) mask.push_back(random.oneIn(3) ? 1 : 0);
    const Prepared prepared(size, maskSize, mask);
    const auto page = reinterpret_cast<std::uintptr_t>(prepared.spec.data()) / 4096 * 4096;
    ASSERT_EQ(mprotect(reinterpret_cast<void*>(page), 4096, PROT_READ), 0);
    GuardedImage<Kpr8u> src(size, random), once(size, random);
    src.fill(random);
    const auto run = [&](GuardedImage<Kpr8u>& dst, const GuardedBytes& work) {
        return kpriErodeBorder_8u_C1R(src.data(), src.step(), dst.data(), dst.step(), size, kprBorderMirror, 0,
                                      block(prepared.spec), buffer(work));
    };
    ASSERT_EQ(run(once, prepared.work), kprStatusOk);
    int specSize = 0, workSize = 0;
    kpriMorphologyBorderGetSize_8u_C1R(size, maskSize, &specSize, &workSize);
    std::vector<std::thread> threads;
    for (int t = 0; t < 2; ++t) {
        threads.emplace_back([&] {
            Random own;
            GuardedImage<Kpr8u> dst(size, own);
            const GuardedBytes work = exactly(workSize);
            for (int i = 0; i < 50; ++i) {
                dst.forEach([](Kpr8u& p) { p = 0; });
                ASSERT_EQ(run(dst, work), kprStatusOk);
                for (int y = 0; y < size.height; ++y) ASSERT_EQ(std::memcmp(dst.row(y), once.row(y), 333), 0);
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
}

// Rows beyond 2^31 bytes from the first, of the source and of the destination.
TEST(Morphology, RowsBeyond2To31Bytes) {
    constexpr Kpr64s step = Kpr64s{1} << 30;
    const KprSize size = {70, 4};
    const test::SparseBytes src(3 * step + 4096), dst(3 * step + 4096);
    const auto at = [&](const test::SparseBytes& image, int x, int y) -> Kpr8u& {
        return reinterpret_cast<Kpr8u&>(image.data()[y * step + x]);
    };
    Random random;
    for (int y = 0; y < size.height; ++y) {
        for (int x = 0; x < size.width; ++x) at(src, x, y) = random.pixel<Kpr8u>();
    }
    for (const int side : {3, 5, 9}) {
        for (const bool full : {true, false}) {
            reference::StructuringElement element{side, side, {}};
            for (int i = 0; i < side * side; ++i) element.bytes.push_back(full || i % 3 == 0 ? 1 : 0);
            const Prepared prepared(size, {side, side}, element.bytes);
            Kpr8u* const from = &at(src, 0, 0);
            Kpr8u* const to = &at(dst, 0, 0);
            const reference::Stage<Kpr8u> stage{true, element, kprBorderReplicate,
                                                0,    size,    [&](int x, int y) { return at(src, x, y); }};
            const auto check = [&] {
                for (int y = 0; y < size.height; ++y) {
                    for (int x = 0; x < size.width; ++x) ASSERT_EQ(at(dst, x, y), stage(x, y)) << x << ", " << y;
                }
            };
            ASSERT_EQ(kpriDilateBorder_8u_C1R(from, int{step}, to, int{step}, size, kprBorderReplicate, 0,
                                              block(prepared.spec), buffer(prepared.work)),
                      kprStatusOk);
            check();
            Kpr64s specSize = 0, workSize = 0;
            kpriDilateGetSpecSize_L(size.width, size.height, side, side, &specSize);
            kpriDilateGetBufferSize_L(size.width, size.height, side, side, kpr8u, 1, &workSize);
            const GuardedBytes spec = exactly(specSize), work = exactly(workSize);
            ASSERT_EQ(kpriDilateInit_L(size.width, size.height, element.bytes.data(), side, side, block(spec)),
                      kprStatusOk);
            ASSERT_EQ(kpriDilate_8u_C1R_L(from, step, to, step, size.width, size.height, kprBorderReplicate, nullptr,
                                          block(spec), buffer(work)),
                      kprStatusOk);
            check();
        }
    }
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

// The work buffer's stated size, from the formula written anew.
Kpr64s workSize(KprSize roi, KprSize mask, int pixelBytes, int slack) {
    const auto up = [](Kpr64s v) { return (v + 31) / 32 * 32; };
    const Kpr64s w = roi.width, h = roi.height, W = mask.width | 1, H = mask.height | 1;
    Kpr64s t = (W + w - 1) * (H + h - 1);
    if (W < w && H < h) {
        const Kpr64s rows = H - mask.height / 2 - 1 > 0 ? (W + w - 1) * (2 * H - mask.height / 2 - 2) : 0;
        const Kpr64s columns = W - mask.width / 2 - 1 > 0 ? (H + h - 1) * (2 * W - mask.width / 2 - 2) : 0;
        t = std::max(rows, columns);
    }
    return up(t * pixelBytes) + up(w * pixelBytes) * H + up(W * pixelBytes) + slack + 64;
}

// Both interfaces' sizes of a type, of masks as wide or as tall as the ROI and with a side of 1 among others.
template <typename Size>
void checkSizes(Size getSize, KprDataType type, int channels, int elementBytes) {
    static const std::pair<KprSize, KprSize> cases[] = {
        {{640, 480}, {5, 4}}, {{31, 40}, {31, 3}}, {{40, 6}, {3, 8}}, {{99, 50}, {1, 7}}, {{99, 50}, {6, 1}}};
    for (const auto& [roi, mask] : cases) {
        const Kpr64s W = mask.width | 1, H = mask.height | 1;
        const Kpr64s expected = workSize(roi, mask, elementBytes * channels, 16 * elementBytes);
        int spec = 0, work = 0;
        ASSERT_EQ(getSize(roi, mask, &spec, &work), kprStatusOk);
        EXPECT_EQ(spec, H * (3 * W + 2) + 104);
        EXPECT_EQ(work, expected);
        for (auto large : {kpriDilateGetBufferSize_L, kpriErodeGetBufferSize_L}) {
            Kpr64s bytes = 0;
            ASSERT_EQ(large(roi.width, roi.height, mask.width, mask.height, type, channels, &bytes), kprStatusOk);
            EXPECT_EQ(bytes, expected);
        }
    }
}

TEST(Morphology, SizesOfEachType) {
    checkSizes(kpriMorphologyBorderGetSize_8u_C1R, kpr8u, 1, 1);
    checkSizes(kpriMorphologyBorderGetSize_8u_C3R, kpr8u, 3, 1);
    checkSizes(kpriMorphologyBorderGetSize_8u_C4R, kpr8u, 4, 1);
    checkSizes(kpriMorphologyBorderGetSize_16u_C1R, kpr16u, 1, 2);
    checkSizes(kpriMorphologyBorderGetSize_16s_C1R, kpr16s, 1, 2);
    checkSizes(kpriMorphologyBorderGetSize_32f_C1R, kpr32f, 1, 4);
    checkSizes(kpriMorphologyBorderGetSize_32f_C3R, kpr32f, 3, 4);
    checkSizes(kpriMorphologyBorderGetSize_32f_C4R, kpr32f, 4, 4);
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
