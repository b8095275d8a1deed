#include <gtest/gtest.h>

#include "tests/filter/ground.h"
#include "tests/support/ladder.h"

namespace {

using test::GuardedBytes;
using test::GuardedImage;
using test::Random;

// Taps and divisors of every kind: small sums, sums that wrap, powers of two, negative divisors, none at all.
template <typename Tap>
std::vector<Tap> anyKernel(Random& random, int size) {
    std::vector<Tap> kernel(static_cast<std::size_t>(size));
    const int range = random.oneIn(3) ? 32767 : random.oneIn(2) ? 9 : 4096 / size;
    for (Tap& tap : kernel) tap = static_cast<Tap>(random.range(random.oneIn(2) ? 0 : -range, range));
    if (range == 32767 && random.oneIn(3)) std::fill(kernel.begin(), kernel.end(), static_cast<Tap>(-32768));
    return kernel;
}
int anyDivisor(Random& random) {
    const int kinds[] = {1, -1, 1 << random.range(1, 15), random.range(2, 50000), -random.range(2, 9), INT32_MIN};
    return kinds[random.range(0, 5)];
}

template <typename T>
std::unique_ptr<GuardedBytes> guardedCopy(const std::vector<T>& values) {
    auto bytes = std::make_unique<GuardedBytes>(values.size() * sizeof(T), test::Guard::After);
    std::memcpy(bytes->data(), values.data(), values.size() * sizeof(T));
    return bytes;
}

template <typename Src, typename Dst, int channels, typename Function, typename Sizing>
void checkRow(Function function, Sizing sizing, KprSize roi, KprBorderType word, int kernelSize, Random& random) {
    using Tap = std::conditional_t<std::is_floating_point_v<Src>, Kpr32f, Kpr16s>;
    const auto kernel = anyKernel<Tap>(random, kernelSize);
    const auto kernelBytes = guardedCopy(kernel);
    const int divisor = std::is_floating_point_v<Src> ? 1 : anyDivisor(random);
    const int anchor = random.range(0, kernelSize - 1);
    const int after = kernelSize - 1 - anchor;
    test::BorderedImage<Src> src(roi, {anchor, after, 0, 0}, word, random, channels, random.oneIn(2));
    GuardedImage<Dst> dst(roi, random, channels);
    std::vector<Dst*> rows;
    for (int y = 0; y < roi.height; ++y) rows.push_back(dst.row(y));
    const auto rowBytes = guardedCopy(rows);
    int size = 0;
    ASSERT_EQ(sizing(roi, kernelSize, &size), kprStatusOk);
    const GuardedBytes buffer(static_cast<std::size_t>(size),
                              random.oneIn(2) ? test::Guard::After : test::Guard::Before);
    const auto before = src.snapshot();

    auto* taps = reinterpret_cast<const Tap*>(kernelBytes->data());
    auto* pointers = reinterpret_cast<Dst* const*>(rowBytes->data());
    auto* scratch = reinterpret_cast<Kpr8u*>(buffer.data());
    const auto value = [&] {
        if constexpr (channels == 1)
            return *src.value();
        else
            return (word & 15) == kprBorderConstant ? src.value() : nullptr;
    }();
    if constexpr (std::is_floating_point_v<Src>)
        ASSERT_EQ(function(src.data(), src.step(), pointers, roi, taps, kernelSize, anchor, word, value, scratch),
                  kprStatusOk);
    else
        ASSERT_EQ(
            function(src.data(), src.step(), pointers, roi, taps, kernelSize, anchor, word, value, divisor, scratch),
            kprStatusOk);
    EXPECT_EQ(before, src.snapshot());
    SCOPED_TRACE(testing::Message() << "word " << word << ", " << kernelSize << " taps, anchor " << anchor
                                    << ", divisor " << divisor);
    test::expectImage(
        dst,
        [&](int x, int y, int c) {
            const bool synthesised = (x < anchor && (word & kprBorderInMemLeft) == 0) ||
                                     (x + after >= roi.width && (word & kprBorderInMemRight) == 0);
            return reference::tapSum<Dst>(kernel.data(), kernelSize, divisor, sizeof(Src) == 1 && synthesised,
                                          [&](int i) { return src.inRow(x - anchor + i, y, c); });
        },
        channels);
}

template <typename Src, typename Dst, int channels, typename Function, typename Sizing>
void checkRows(Function function, Sizing sizing) {
    Random random;
    for (KprSize roi : test::awkwardSizes()) {
        for (int kernelSize : {random.range(1, 4), 5, random.range(6, 31)}) {
            checkRow<Src, Dst, channels>(function, sizing, roi, test::anyFilterWord(random), kernelSize, random);
            if (testing::Test::HasFailure()) return;
        }
    }
    for (KprSize roi : test::photographSizes()) {
        checkRow<Src, Dst, channels>(function, sizing, roi, test::anyFilterWord(random), 2 * random.range(1, 4) + 1,
                                     random);
        if (testing::Test::HasFailure()) return;
    }
    for (KprBorderType word : test::filterWords()) {
        for (int width : {1, 2, 3, 4, 6, 11, 40}) {
            for (int kernelSize : {2, 3, 7, random.range(1, 31)}) {
                checkRow<Src, Dst, channels>(function, sizing, {width, 2}, word, kernelSize, random);
                if (testing::Test::HasFailure()) return;
            }
        }
    }
}

template <typename Src, typename Dst, int channels, typename Function, typename Sizing>
void checkColumns(Function function, Sizing sizing) {
    using Tap = std::conditional_t<std::is_floating_point_v<Src>, Kpr32f, Kpr16s>;
    Random random;
    for (KprSize roi : test::allSizes()) {
        const bool large = roi.width * roi.height > 4000;
        for (int kernelSize :
             large ? std::vector{random.range(2, 7)} : std::vector{random.range(1, 4), 5, 7, random.range(6, 31)}) {
            const auto kernel = anyKernel<Tap>(random, kernelSize);
            const auto kernelBytes = guardedCopy(kernel);
            const int divisor = std::is_floating_point_v<Src> ? 1 : anyDivisor(random);
            // Rows in any order, some more than once; the table of pointers ends where its last entry does.
            GuardedImage<Src> src({roi.width, roi.height + kernelSize}, random, channels);
            src.fill(random, std::is_floating_point_v<Src>);
            std::vector<const Src*> rows;
            for (int i = 0; i < roi.height + kernelSize - 1; ++i)
                rows.push_back(src.row(random.range(0, src.size().height - 1)));
            const auto rowBytes = guardedCopy(rows);
            GuardedImage<Dst> dst(roi, random, channels);
            int size = 0;
            ASSERT_EQ(sizing(roi, kernelSize, &size), kprStatusOk);
            const GuardedBytes buffer(static_cast<std::size_t>(size), test::Guard::After);

            auto* taps = reinterpret_cast<const Tap*>(kernelBytes->data());
            auto* pointers = reinterpret_cast<const Src* const*>(rowBytes->data());
            auto* scratch = reinterpret_cast<Kpr8u*>(buffer.data());
            if constexpr (std::is_floating_point_v<Src>)
                ASSERT_EQ(function(pointers, dst.data(), dst.step(), roi, taps, kernelSize, scratch), kprStatusOk);
            else
                ASSERT_EQ(function(pointers, dst.data(), dst.step(), roi, taps, kernelSize, divisor, scratch),
                          kprStatusOk);
            SCOPED_TRACE(testing::Message() << kernelSize << " taps, divisor " << divisor);
            test::expectImage(
                dst,
                [&](int x, int y, int c) {
                    return reference::tapSum<Dst>(kernel.data(), kernelSize, divisor, false, [&](int i) {
                        return rows[static_cast<std::size_t>(y + i)][x * channels + c];
                    });
                },
                channels);
            if (testing::Test::HasFailure()) return;
        }
    }
}

TEST(FilterRowStage, BytesToWords) {
    checkRows<Kpr8u, Kpr16s, 1>(kpriFilterRowBorderPipeline_8u16s_C1R,
                                kpriFilterRowBorderPipelineGetBufferSize_8u16s_C1R);
    checkRows<Kpr8u, Kpr16s, 3>(kpriFilterRowBorderPipeline_8u16s_C3R,
                                kpriFilterRowBorderPipelineGetBufferSize_8u16s_C3R);
}
TEST(FilterRowStage, SignedWords) {
    checkRows<Kpr16s, Kpr16s, 1>(kpriFilterRowBorderPipeline_16s_C1R, kpriFilterRowBorderPipelineGetBufferSize_16s_C1R);
    checkRows<Kpr16s, Kpr16s, 3>(kpriFilterRowBorderPipeline_16s_C3R, kpriFilterRowBorderPipelineGetBufferSize_16s_C3R);
}
TEST(FilterRowStage, UnsignedWords) {
    checkRows<Kpr16u, Kpr16u, 1>(kpriFilterRowBorderPipeline_16u_C1R, kpriFilterRowBorderPipelineGetBufferSize_16u_C1R);
    checkRows<Kpr16u, Kpr16u, 3>(kpriFilterRowBorderPipeline_16u_C3R, kpriFilterRowBorderPipelineGetBufferSize_16u_C3R);
}
TEST(FilterRowStage, SignedWordsNarrow) {
    checkRows<Kpr16s, Kpr16s, 1>(kpriFilterRowBorderPipeline_Low_16s_C1R,
                                 kpriFilterRowBorderPipelineGetBufferSize_Low_16s_C1R);
    checkRows<Kpr16s, Kpr16s, 3>(kpriFilterRowBorderPipeline_Low_16s_C3R,
                                 kpriFilterRowBorderPipelineGetBufferSize_Low_16s_C3R);
}
TEST(FilterRowStage, Floats) {
    checkRows<Kpr32f, Kpr32f, 1>(kpriFilterRowBorderPipeline_32f_C1R, kpriFilterRowBorderPipelineGetBufferSize_32f_C1R);
    checkRows<Kpr32f, Kpr32f, 3>(kpriFilterRowBorderPipeline_32f_C3R, kpriFilterRowBorderPipelineGetBufferSize_32f_C3R);
}
TEST(FilterColumnStage, SignedWords) {
    checkColumns<Kpr16s, Kpr16s, 1>(kpriFilterColumnPipeline_16s_C1R, kpriFilterColumnPipelineGetBufferSize_16s_C1R);
    checkColumns<Kpr16s, Kpr16s, 3>(kpriFilterColumnPipeline_16s_C3R, kpriFilterColumnPipelineGetBufferSize_16s_C3R);
}
TEST(FilterColumnStage, WordsToSignedBytes) {
    checkColumns<Kpr16s, Kpr8s, 1>(kpriFilterColumnPipeline_16s8s_C1R, kpriFilterColumnPipelineGetBufferSize_16s8s_C1R);
    checkColumns<Kpr16s, Kpr8s, 3>(kpriFilterColumnPipeline_16s8s_C3R, kpriFilterColumnPipelineGetBufferSize_16s8s_C3R);
}
TEST(FilterColumnStage, WordsToBytes) {
    checkColumns<Kpr16s, Kpr8u, 1>(kpriFilterColumnPipeline_16s8u_C1R, kpriFilterColumnPipelineGetBufferSize_16s8u_C1R);
    checkColumns<Kpr16s, Kpr8u, 3>(kpriFilterColumnPipeline_16s8u_C3R, kpriFilterColumnPipelineGetBufferSize_16s8u_C3R);
}
TEST(FilterColumnStage, UnsignedWords) {
    checkColumns<Kpr16u, Kpr16u, 1>(kpriFilterColumnPipeline_16u_C1R, kpriFilterColumnPipelineGetBufferSize_16u_C1R);
    checkColumns<Kpr16u, Kpr16u, 3>(kpriFilterColumnPipeline_16u_C3R, kpriFilterColumnPipelineGetBufferSize_16u_C3R);
}
TEST(FilterColumnStage, SignedWordsNarrow) {
    checkColumns<Kpr16s, Kpr16s, 1>(kpriFilterColumnPipeline_Low_16s_C1R,
                                    kpriFilterColumnPipelineGetBufferSize_Low_16s_C1R);
    checkColumns<Kpr16s, Kpr16s, 3>(kpriFilterColumnPipeline_Low_16s_C3R,
                                    kpriFilterColumnPipelineGetBufferSize_Low_16s_C3R);
}
TEST(FilterColumnStage, Floats) {
    checkColumns<Kpr32f, Kpr32f, 1>(kpriFilterColumnPipeline_32f_C1R, kpriFilterColumnPipelineGetBufferSize_32f_C1R);
    checkColumns<Kpr32f, Kpr32f, 3>(kpriFilterColumnPipeline_32f_C3R, kpriFilterColumnPipelineGetBufferSize_32f_C3R);
}

TEST(FilterStages, RowsFarApart) {
    const Kpr16s kernel[3] = {1, 2, 1};
    Kpr8u buffer[4096];
    test::checkRowsFarApart<Kpr16s, Kpr16s>(70, [&](const Kpr16s* src, int srcStep, Kpr16s* dst, int dstStep) {
        std::vector<Kpr16s> middle(280);
        Kpr16s* const out[4] = {middle.data(), middle.data() + 70, middle.data() + 140, middle.data() + 210};
        const Kpr16s* const in[6] = {out[1], out[0], out[1], out[2], out[3], out[2]};
        const KprStatus status = kpriFilterRowBorderPipeline_16s_C1R(src, srcStep, out, {70, 4}, kernel, 3, 1,
                                                                     kprBorderReplicate, 0, 4, buffer);
        if (status != kprStatusOk) return status;
        return kpriFilterColumnPipeline_16s_C1R(in, dst, dstStep, {70, 4}, kernel, 3, 4, buffer);
    });
}

// Values of the formulas, worked out by hand for a ROI 10 wide and 5 taps.
TEST(FilterStages, BufferSizes) {
    using Sizing = KprStatus (*)(KprSize, int, int*);
    const struct {
        Sizing function;
        int bytes;
    } sizings[] = {
        {kpriFilterRowBorderPipelineGetBufferSize_8u16s_C1R, 268},
        {kpriFilterRowBorderPipelineGetBufferSize_8u16s_C3R, 444},
        {kpriFilterRowBorderPipelineGetBufferSize_16s_C1R, 352},
        {kpriFilterRowBorderPipelineGetBufferSize_16s_C3R, 296},
        {kpriFilterRowBorderPipelineGetBufferSize_16u_C1R, 416},
        {kpriFilterRowBorderPipelineGetBufferSize_16u_C3R, 736},
        {kpriFilterRowBorderPipelineGetBufferSize_Low_16s_C1R, 216},
        {kpriFilterRowBorderPipelineGetBufferSize_Low_16s_C3R, 1136},
        {kpriFilterRowBorderPipelineGetBufferSize_32f_C1R, 576},
        {kpriFilterRowBorderPipelineGetBufferSize_32f_C3R, 1536},
        {kpriFilterColumnPipelineGetBufferSize_16s_C1R, 208},
        {kpriFilterColumnPipelineGetBufferSize_16s_C3R, 496},
        {kpriFilterColumnPipelineGetBufferSize_16s8s_C1R, 208},
        {kpriFilterColumnPipelineGetBufferSize_16s8s_C3R, 496},
        {kpriFilterColumnPipelineGetBufferSize_16s8u_C1R, 208},
        {kpriFilterColumnPipelineGetBufferSize_16s8u_C3R, 496},
        {kpriFilterColumnPipelineGetBufferSize_16u_C1R, 320},
        {kpriFilterColumnPipelineGetBufferSize_16u_C3R, 480},
        {kpriFilterColumnPipelineGetBufferSize_Low_16s_C1R, 256},
        {kpriFilterColumnPipelineGetBufferSize_Low_16s_C3R, 640},
        {kpriFilterColumnPipelineGetBufferSize_32f_C1R, 192},
        {kpriFilterColumnPipelineGetBufferSize_32f_C3R, 192},
    };
    for (const auto& sizing : sizings) {
        int bytes = -1;
        EXPECT_EQ(sizing.function({10, 3}, 5, nullptr), kprStatusNullPtr);
        EXPECT_EQ(sizing.function({0, 0}, 5, nullptr), kprStatusNullPtr);
        for (KprSize bad : {KprSize{0, 3}, KprSize{10, 0}, KprSize{-1, -1}})
            EXPECT_EQ(sizing.function(bad, 5, &bytes), kprStatusBadSize);
        EXPECT_EQ(sizing.function({10, 3}, 0, &bytes), kprStatusBadSize);
        EXPECT_EQ(bytes, -1);
        EXPECT_EQ(sizing.function({10, 3}, 5, &bytes), kprStatusOk);
        EXPECT_EQ(bytes, sizing.bytes);
    }
}

// Arguments of both stages that the ladder's driver cannot make itself.
constexpr int kTaps = 4;
Kpr8u scratch[4096];
template <typename T>
T pixels[64 * 8];
template <typename T>
T* goodRows[] = {pixels<T>, pixels<T> + 64, pixels<T> + 128, pixels<T> + 192, pixels<T> + 256, pixels<T> + 320};
template <typename T>
T* holedRows[] = {pixels<T>, pixels<T>, nullptr, pixels<T>, pixels<T>, pixels<T>};
template <typename T>
T* earlyHole[] = {nullptr, pixels<T>, pixels<T>, pixels<T>, pixels<T>, pixels<T>};
template <typename T>
T* lateHole[] = {pixels<T>, pixels<T>, pixels<T>, pixels<T>, pixels<T>, nullptr};

template <typename Src, typename Dst, int channels, typename... A>
void rowLadder(const char* name, KprStatus (*function)(A...)) {
    test::Ladder<A...> ladder(name, function);
    ladder.channels(std::vector<int>(sizeof...(A), channels));
    ladder.template with<2>(goodRows<Dst>)
        .template with<5>(kTaps)
        .template with<6>(1)
        .template with<7>(kprBorderMirror);
    constexpr bool hasDivisor = sizeof...(A) == 11;
    constexpr int buffer = static_cast<int>(sizeof...(A)) - 1;
    if constexpr (hasDivisor) ladder.template with<9>(16);
    ladder.template with<buffer>(scratch);
    ladder.template refuses<0>(nullptr, kprStatusNullPtr).template refuses<2>(nullptr, kprStatusNullPtr);
    ladder.template refuses<4>(nullptr, kprStatusNullPtr).template refuses<buffer>(nullptr, kprStatusNullPtr);
    ladder.sizes().template refuses<2>(holedRows<Dst>, kprStatusNullPtr);
    ladder.template refuses<5>(0, kprStatusBadSize).template refuses<5>(INT32_MIN, kprStatusBadSize);
    ladder.template refuses<6>(-1, kprStatusBadAnchor).template refuses<6>(INT32_MAX, kprStatusBadAnchor);
    ladder.lengths({0});
    if (sizeof(Src) > 1) ladder.multiples({0});
    for (KprBorderType word : {0U, 5U, 256U, 245U, 257U, 0xffffffffU})
        ladder.template refuses<7>(word, kprStatusBadBorder);
    if constexpr (hasDivisor) ladder.template refuses<9>(0, kprStatusBadArg);
    ladder.run();
}

template <typename Src, typename Dst, int channels, typename... A>
void columnLadder(const char* name, KprStatus (*function)(A...)) {
    test::Ladder<A...> ladder(name, function);
    ladder.channels(std::vector<int>(sizeof...(A), channels));
    constexpr bool hasDivisor = sizeof...(A) == 8;
    constexpr int buffer = static_cast<int>(sizeof...(A)) - 1;
    ladder.template with<0>(goodRows<Src>).template with<5>(kTaps).template with<buffer>(scratch);
    if constexpr (hasDivisor) ladder.template with<6>(16);
    ladder.template refuses<0>(nullptr, kprStatusNullPtr).template refuses<1>(nullptr, kprStatusNullPtr);
    ladder.template refuses<4>(nullptr, kprStatusNullPtr);
    ladder.sizes().template refuses<0>(earlyHole<Src>, kprStatusNullPtr);
    ladder.template refuses<5>(-1, kprStatusBadSize);  // one row is still looked at
    ladder.lengths({0});
    if (sizeof(Dst) > 1) ladder.multiples({0});
    ladder.template refuses<buffer>(nullptr, kprStatusNullPtr);
    if constexpr (hasDivisor) ladder.template refuses<6>(0, kprStatusBadArg);
    ladder.run();
}

#define ROW_LADDER(src, dst, channels, function) rowLadder<src, dst, channels>(#function, function)
#define COLUMN_LADDER(src, dst, channels, function) columnLadder<src, dst, channels>(#function, function)

TEST(FilterStages, StatusLadders) {
    ROW_LADDER(Kpr8u, Kpr16s, 1, kpriFilterRowBorderPipeline_8u16s_C1R);
    ROW_LADDER(Kpr8u, Kpr16s, 3, kpriFilterRowBorderPipeline_8u16s_C3R);
    ROW_LADDER(Kpr16s, Kpr16s, 1, kpriFilterRowBorderPipeline_16s_C1R);
    ROW_LADDER(Kpr16s, Kpr16s, 3, kpriFilterRowBorderPipeline_16s_C3R);
    ROW_LADDER(Kpr16u, Kpr16u, 1, kpriFilterRowBorderPipeline_16u_C1R);
    ROW_LADDER(Kpr16u, Kpr16u, 3, kpriFilterRowBorderPipeline_16u_C3R);
    ROW_LADDER(Kpr16s, Kpr16s, 1, kpriFilterRowBorderPipeline_Low_16s_C1R);
    ROW_LADDER(Kpr16s, Kpr16s, 3, kpriFilterRowBorderPipeline_Low_16s_C3R);
    ROW_LADDER(Kpr32f, Kpr32f, 1, kpriFilterRowBorderPipeline_32f_C1R);
    ROW_LADDER(Kpr32f, Kpr32f, 3, kpriFilterRowBorderPipeline_32f_C3R);
    COLUMN_LADDER(Kpr16s, Kpr16s, 1, kpriFilterColumnPipeline_16s_C1R);
    COLUMN_LADDER(Kpr16s, Kpr16s, 3, kpriFilterColumnPipeline_16s_C3R);
    COLUMN_LADDER(Kpr16s, Kpr8s, 1, kpriFilterColumnPipeline_16s8s_C1R);
    COLUMN_LADDER(Kpr16s, Kpr8s, 3, kpriFilterColumnPipeline_16s8s_C3R);
    COLUMN_LADDER(Kpr16s, Kpr8u, 1, kpriFilterColumnPipeline_16s8u_C1R);
    COLUMN_LADDER(Kpr16s, Kpr8u, 3, kpriFilterColumnPipeline_16s8u_C3R);
    COLUMN_LADDER(Kpr16u, Kpr16u, 1, kpriFilterColumnPipeline_16u_C1R);
    COLUMN_LADDER(Kpr16u, Kpr16u, 3, kpriFilterColumnPipeline_16u_C3R);
    COLUMN_LADDER(Kpr16s, Kpr16s, 1, kpriFilterColumnPipeline_Low_16s_C1R);
    COLUMN_LADDER(Kpr16s, Kpr16s, 3, kpriFilterColumnPipeline_Low_16s_C3R);
    COLUMN_LADDER(Kpr32f, Kpr32f, 1, kpriFilterColumnPipeline_32f_C1R);
    COLUMN_LADDER(Kpr32f, Kpr32f, 3, kpriFilterColumnPipeline_32f_C3R);
}

// As many rows as the taps reach are looked at, and when the number of taps is wrong, as many as that leaves.
TEST(FilterColumnStage, LooksAtTheRowsThatItNeeds) {
    const Kpr16s kernel[kTaps] = {1, 2, 3, 4};
    const auto run = [&](const Kpr16s* const* rows, int kernelSize) {
        return kpriFilterColumnPipeline_16s_C1R(rows, pixels<Kpr16s> + 384, 64, {7, 3}, kernel, kernelSize, 1, scratch);
    };
    EXPECT_EQ(run(lateHole<Kpr16s>, kTaps), kprStatusNullPtr);
    EXPECT_EQ(run(lateHole<Kpr16s>, kTaps - 1), kprStatusOk);
    EXPECT_EQ(run(lateHole<Kpr16s>, 0), kprStatusBadSize);
    EXPECT_EQ(run(earlyHole<Kpr16s>, 0), kprStatusNullPtr);
    EXPECT_EQ(run(earlyHole<Kpr16s>, -2), kprStatusBadSize);
    EXPECT_EQ(run(earlyHole<Kpr16s>, INT32_MIN), kprStatusBadSize);
}

}  // namespace
