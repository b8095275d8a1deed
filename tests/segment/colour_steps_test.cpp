#include <gtest/gtest.h>

#include "tests/reference/segment.h"
#include "tests/segment/scenes.h"
#include "tests/support/ladder.h"

namespace {

using test::Guard;
using test::GuardedBytes;
using test::GuardedImage;
using test::Random;

struct Form {
    int channels;
    decltype(kpriSegmentGradient_8u_C1IR)* run;
    decltype(kpriSegmentGradientGetBufferSize_8u_C1R)* size;
};
const Form kForms[] = {{1, kpriSegmentGradient_8u_C1IR, kpriSegmentGradientGetBufferSize_8u_C1R},
                       {3, kpriSegmentGradient_8u_C3IR, kpriSegmentGradientGetBufferSize_8u_C3R}};

// Images of few or many levels, steps of 0 and of 255 among them; markers sparse or dense, walls among them.
void check(const Form& form, KprSize size, Random& random) {
    GuardedImage<Kpr8u> src(size, random, form.channels), marker(size, random);
    const int levels = random.oneIn(3) ? 255 : random.range(0, 8), scale = random.oneIn(3) ? 255 / (levels + 1) : 1;
    src.forEach([&](Kpr8u& p) { p = static_cast<Kpr8u>(random.oneIn(20) ? 255 : random.range(0, levels) * scale); });
    const int sparse = random.oneIn(2) ? 5 : 200, walls = random.range(2, 9);
    marker.forEach([&](Kpr8u& p) {
        p = static_cast<Kpr8u>(random.oneIn(sparse) ? (random.oneIn(walls) ? 255 : random.range(1, 6)) : 0);
    });
    reference::Picture<Kpr8u> image{size, form.channels, {}};
    src.forEach([&](Kpr8u& p) { image.pixels.push_back(p); });
    std::vector<Kpr8u> expected;
    marker.forEach([&](Kpr8u& p) { expected.push_back(p); });
    const int norm = random.range(0, 1), flag = random.range(0, 3) * 64;
    reference::colourSteps(image, expected, norm == kprSegNormChess ? 8 : 4);
    if (flag != 0) reference::wallsBetween(size, expected, (flag & kprSegWall8) != 0);
    int bytes = 0;
    ASSERT_EQ(form.size(size, &bytes), kprStatusOk);
    ASSERT_LE(bytes, 14 * size.width * size.height + 4096);
    const GuardedBytes buffer(std::size_t(bytes), random.oneIn(4) ? Guard::Before : Guard::After);
    const auto before = src.snapshot();
    ASSERT_EQ(form.run(src.data(), src.step(), marker.data(), marker.step(), size, norm, flag,
                       reinterpret_cast<Kpr8u*>(buffer.data())),
              kprStatusOk);
    EXPECT_EQ(before, src.snapshot());
    test::expectImage(marker, [&](int x, int y, int) { return expected[std::size_t(y) * size.width + x]; });
}

TEST(ColourSteps, GrowInTheOrderOfOffers) {
    Random random;
    std::vector<KprSize> sizes = test::awkwardSizes();
    for (int w = 1; w <= 5; ++w) {
        for (int h = 1; h <= 5; ++h) sizes.push_back({w, h});
    }
    for (KprSize size : {KprSize{67, 131}, {5, 300}, {3, 2000}, {641, 479}}) sizes.push_back(size);
    for (const Form& form : kForms) {
        for (KprSize size : sizes) {
            for (int round = 0; round < 6; ++round) {
                check(form, size, random);
                if (testing::Test::HasFailure()) return;
            }
        }
    }
}

TEST(ColourSteps, Ladders) {
    Kpr8u buffer[5000];
    for (const Form& form : kForms) {
        test::Ladder ladder("SegmentGradient", form.run);
        ladder.channels({form.channels, 1}).with<7>(buffer).nulls().sizes().lengths({0, 1});
        for (int norm : {-1, 2, 3}) ladder.refuses<5>(norm, kprStatusBadArg);
        for (int flag : {1, 2, 32, 256, -1}) ladder.refuses<6>(flag, kprStatusBadMode);
        ladder.run();
        int bytes = 0;
        EXPECT_EQ(form.size({40000, 40000}, &bytes), kprStatusSizeOverflow);
        EXPECT_EQ(form.size({14000, 10000}, &bytes), kprStatusOk);
    }
    LADDER(kpriSegmentGradientGetBufferSize_8u_C1R).nulls().sizes().run();
    LADDER(kpriSegmentGradientGetBufferSize_8u_C3R).nulls().sizes().run();
}

}  // namespace
