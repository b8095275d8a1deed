#include <gtest/gtest.h>

#include "tests/reference/mixture.h"
#include "tests/support/guarded_image.h"
#include "tests/support/ladder.h"

namespace {

using test::Guard;
using test::GuardedBytes;
using test::GuardedImage;
using test::Random;

constexpr KprFGMMModel usual = {200, 5, 15.0F, 4.0F, 75.0F, 16.0F, 0.9F, 9.0F, 0.05F, 127, 1, 0.5F};

KprFGMMModel anyModel(Random& random, int maxModes) {
    KprFGMMModel model = usual;
    model.historyLength = random.oneIn(6) ? 0 : static_cast<uint32_t>(random.range(1, 40));
    model.modeCount = random.range(1, maxModes);
    model.varianceInit = static_cast<float>(random.range(1, 60));
    model.backgroundWeight = static_cast<float>(random.range(20, 110)) / 100.0F;
    model.weightDecay = static_cast<float>(random.range(0, 300)) / 100.0F;
    model.shadowEnabled = static_cast<Kpr8u>(random.range(0, 1));
    return model;
}

// A film of few colours with noise: pixels meet again what they have seen, and new things too.
void checkFilm(KprSize size, int maxModes, int frames) {
    Random random;
    int bytes = 0;
    ASSERT_EQ(kpriFGMMGetBufferSize_8u_C3R(size, maxModes, &bytes), kprStatusOk);
    const GuardedBytes memory(static_cast<std::size_t>(bytes), random.oneIn(2) ? Guard::After : Guard::Before);
    auto* const state = reinterpret_cast<KprFGMMState*>(memory.data());
    KprFGMMModel model = anyModel(random, maxModes);
    ASSERT_EQ(kpriFGMMInit_8u_C3R(size, maxModes, &model, state), kprStatusOk);
    model.modeCount = maxModes;
    std::vector<reference::MixturePixel> pixels(static_cast<std::size_t>(size.width * size.height),
                                                reference::MixturePixel(maxModes));
    const Kpr8u colours[5][3] = {{200, 180, 160}, {100, 90, 80}, {0, 0, 0}, {30, 160, 90}, {150, 140, 20}};
    GuardedImage<Kpr8u> frame(size, random, 3), mask(size, random), shown(size, random, 3);
    for (int n = 1; n <= frames; ++n) {
        for (int y = 0; y < size.height; ++y) {
            for (int x = 0; x < size.width; ++x) {
                const Kpr8u* const colour = colours[random.oneIn(3) ? random.range(0, 4) : (x / 5 + y) % 3];
                for (int c = 0; c < 3; ++c) {
                    frame.at(x, y, c) = static_cast<Kpr8u>(std::clamp(colour[c] + random.range(-6, 6), 0, 255));
                }
            }
        }
        const bool changes = random.oneIn(4);
        if (changes) model = anyModel(random, maxModes);
        const double rate = random.oneIn(3) ? -1.0 : random.oneIn(4) ? 0.0 : random.range(1, 900) / 1000.0;
        ASSERT_EQ(kpriFGMMForeground_8u_C3R(frame.data(), frame.step(), mask.data(), mask.step(), size, state,
                                            changes ? &model : nullptr, rate),
                  kprStatusOk);
        const auto counted = static_cast<uint32_t>(n);
        const double given = rate >= 0 && n > 1 ? rate : 1.0 / std::min(2 * counted, model.historyLength);
        const auto alpha = static_cast<float>(given);
        const auto decay = static_cast<float>(double{alpha} * model.weightDecay);
        const auto pixel = [&](int x, int y) -> reference::MixturePixel& {
            return pixels[static_cast<std::size_t>(y * size.width + x)];
        };
        test::expectImage(mask, [&](int x, int y, int) {
            const float colour[] = {float(frame.at(x, y, 0)), float(frame.at(x, y, 1)), float(frame.at(x, y, 2))};
            return pixel(x, y).update(model, alpha, decay, colour);
        });
        ASSERT_EQ(kpriFGMMBackground_8u_C3R(shown.data(), shown.step(), size, state), kprStatusOk);
        test::expectImage(
            shown, [&](int x, int y, int c) { return pixel(x, y).background(model, c); }, 3);
        ASSERT_FALSE(testing::Test::HasFailure()) << "frame " << n << " of " << size.width << " x " << size.height;
    }
}

TEST(Mixture, Films) {
    for (int modes : {1, 2, 5, 9}) {
        for (KprSize size : {KprSize{1, 1}, {15, 2}, {16, 2}, {17, 3}, {33, 5}, {5, 60}, {129, 3}})
            checkFilm(size, modes, 12);
    }
    checkFilm({67, 131}, 5, 5);
    checkFilm({641, 479}, 4, 3);
}

TEST(Mixture, BackgroundBeforeTheFirstFrameIsBlack) {
    int bytes = 0;
    ASSERT_EQ(kpriFGMMGetBufferSize_8u_C3R({20, 3}, 2, &bytes), kprStatusOk);
    EXPECT_EQ(bytes, 16 * 60 * 2 + 2 * 4 * 60 * 2 + 3 * 32 + 64 + 416);
    const GuardedBytes memory(static_cast<std::size_t>(bytes), Guard::After);
    auto* const state = reinterpret_cast<KprFGMMState*>(memory.data());
    ASSERT_EQ(kpriFGMMInit_8u_C3R({20, 3}, 2, &usual, state), kprStatusOk);
    GuardedImage<Kpr8u> shown({20, 3}, 3, 4, Guard::After);
    ASSERT_EQ(kpriFGMMBackground_8u_C3R(shown.data(), shown.step(), {20, 3}, state), kprStatusOk);
    test::expectImage(
        shown, [](int, int, int) { return Kpr8u{0}; }, 3);
}

// A refused record leaves the frames counted as they are: the next one is still the first, whose rate is its own.
TEST(Mixture, RefusedModelChangesNothing) {
    int bytes = 0;
    const KprSize size = {16, 1};
    ASSERT_EQ(kpriFGMMGetBufferSize_8u_C3R(size, 2, &bytes), kprStatusOk);
    const GuardedBytes memory(static_cast<std::size_t>(bytes), Guard::After);
    auto* const state = reinterpret_cast<KprFGMMState*>(memory.data());
    KprFGMMModel model = usual;
    ASSERT_EQ(kpriFGMMInit_8u_C3R(size, 2, &model, state), kprStatusOk);
    const std::vector<char> before(memory.data(), memory.data() + bytes);
    Kpr8u frame[48] = {}, mask[16];
    for (int modes : {3, 0, -1}) {
        model.modeCount = modes;
        EXPECT_EQ(kpriFGMMForeground_8u_C3R(frame, 48, mask, 16, size, state, &model, 0.5), kprStatusBadArg);
    }
    EXPECT_EQ(before, std::vector<char>(memory.data(), memory.data() + bytes));
}

TEST(Mixture, Ladders) {
    LADDER(kpriFGMMGetBufferSize_8u_C3R)
        .with<1>(3)
        .nulls()
        .sizes()
        .refuses<1>(0, kprStatusBadArg)
        .refuses<1>(-1, kprStatusBadArg)
        .refuses<0>({46341, 46341}, kprStatusSizeOverflow)
        .run();
    int bytes = 0;
    const KprSize size = {7, 3};
    ASSERT_EQ(kpriFGMMGetBufferSize_8u_C3R(size, 2, &bytes), kprStatusOk);
    const GuardedBytes memory(static_cast<std::size_t>(bytes), Guard::After);
    auto* const state = reinterpret_cast<KprFGMMState*>(memory.data());
    Kpr8u frame[7 * 3 * 3] = {}, mask[7 * 3];
    EXPECT_EQ(kpriFGMMInit_8u_C3R(size, 2, nullptr, state), kprStatusNullPtr);
    EXPECT_EQ(kpriFGMMInit_8u_C3R(size, 2, &usual, nullptr), kprStatusNullPtr);
    EXPECT_EQ(kpriFGMMInit_8u_C3R({0, 3}, 0, &usual, state), kprStatusBadSize);
    EXPECT_EQ(kpriFGMMInit_8u_C3R(size, 0, &usual, state), kprStatusBadArg);
    ASSERT_EQ(kpriFGMMInit_8u_C3R(size, 2, &usual, state), kprStatusOk);
    const auto foreground = [&](const Kpr8u* src, int srcStep, Kpr8u* dst, int dstStep, KprSize roi, KprFGMMState* s) {
        return kpriFGMMForeground_8u_C3R(src, srcStep, dst, dstStep, roi, s, nullptr, -1);
    };
    EXPECT_EQ(foreground(nullptr, 0, mask, 7, size, state), kprStatusNullPtr);
    EXPECT_EQ(foreground(frame, 21, nullptr, 0, size, state), kprStatusNullPtr);
    EXPECT_EQ(foreground(frame, 21, mask, 7, {0, 0}, nullptr), kprStatusNullPtr);
    EXPECT_EQ(foreground(frame, 0, mask, 7, {0, 3}, state), kprStatusBadStep);
    EXPECT_EQ(foreground(frame, 21, mask, -7, {0, 3}, state), kprStatusBadStep);
    EXPECT_EQ(foreground(frame, 21, mask, 7, {7, 0}, state), kprStatusBadSize);
    EXPECT_EQ(foreground(frame, 1, mask, 1, size, state), kprStatusOk);  // steps are trusted
    EXPECT_EQ(kpriFGMMBackground_8u_C3R(nullptr, 21, size, state), kprStatusNullPtr);
    EXPECT_EQ(kpriFGMMBackground_8u_C3R(frame, 21, size, nullptr), kprStatusNullPtr);
    EXPECT_EQ(kpriFGMMBackground_8u_C3R(frame, 0, {0, 1}, state), kprStatusBadStep);
    EXPECT_EQ(kpriFGMMBackground_8u_C3R(frame, 21, {0, 1}, state), kprStatusBadSize);
}

}  // namespace
