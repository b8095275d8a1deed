#include <gtest/gtest.h>

#include "tests/reference/hough.h"
#include "tests/support/ladder.h"

struct KprHoughProbSpec {  // whatever the library makes of it: the ladder takes the size of every type
    Kpr8u bytes[16];
};

namespace {

using test::Guard;
using test::GuardedBytes;
using test::GuardedImage;
using test::Random;

constexpr float kDegree = 0.017453292F;

// Some lines, broken, among noise.
void draw(GuardedImage<Kpr8u>& image, Random& random, int noise) {
    const KprSize size = image.size();
    image.forEach([&](Kpr8u& p) { p = random.oneIn(noise) ? random.pixel<Kpr8u>() : 0; });
    for (int i = random.range(0, 5); i > 0; --i) {
        const double angle = random.range(0, 359) * (random.oneIn(2) ? 0.01745 : 0.7853981),
                     x = random.range(0, size.width), y = random.range(0, size.height);
        for (int j = 0; j < 400; ++j) {
            const int px = static_cast<int>(x + j * std::cos(angle)), py = static_cast<int>(y + j * std::sin(angle));
            if (px < 0 || py < 0 || px >= size.width || py >= size.height) break;
            if (!random.oneIn(9)) image.at(px, py) = 1;
        }
    }
}

KprRhoTheta anyDelta(Random& random) {
    const float rho[] = {1, 1, 1, 0.5F, 2, 0.3F, 7.5F}, theta[] = {1, 1, 1, 0.5F, 3, 0.77F, 17, 100};
    return {rho[random.range(0, 6)], theta[random.range(0, 7)] * kDegree};
}

std::vector<KprSize> sizes() {
    std::vector<KprSize> all = {{1, 1}, {2, 1}, {1, 2}, {5, 300}, {67, 131}, {130, 97}, {300, 40}};
    for (KprSize size : test::awkwardSizes()) {
        if (size.height == 5) all.push_back(size);
    }
    return all;
}

template <typename Line>
void expectLines(const std::vector<Line>& expected, const Line* found, int count) {
    ASSERT_EQ(count, static_cast<int>(expected.size()));
    EXPECT_EQ(std::memcmp(expected.data(), found, expected.size() * sizeof(Line)), 0);
}

// The result goes to memory of just its size.
template <typename Line>
struct Room {
    explicit Room(std::size_t lines) : bytes(std::max<std::size_t>(lines, 1) * sizeof(Line), Guard::After) {}
    Line* data() { return reinterpret_cast<Line*>(bytes.data()); }
    GuardedBytes bytes;
};

void checkLines(KprSize size, KprRhoTheta delta, int threshold, int most, int noise, Random& random) {
    SCOPED_TRACE(testing::Message() << size.width << " x " << size.height << ", delta " << delta.rho << " "
                                    << delta.theta << ", threshold " << threshold << ", most " << most << ", noise "
                                    << noise);
    GuardedImage<Kpr8u> src(size, random);
    draw(src, random, noise);
    const reference::Edge edge = [&](int x, int y) { return src.at(x, y) != 0; };
    int bytes = 0, count = -1;
    ASSERT_EQ(kpriHoughLineGetSize_8u_C1R(size, delta, most, &bytes), kprStatusOk);
    const GuardedBytes buffer(static_cast<std::size_t>(bytes), random.oneIn(2) ? Guard::After : Guard::Before);
    auto* const memory = reinterpret_cast<Kpr8u*>(buffer.data());
    {
        const auto expected = reference::houghLines(size, edge, delta, threshold, static_cast<std::size_t>(most));
        Room<KprRhoTheta> lines(expected.lines.size());
        ASSERT_EQ(
            kpriHoughLine_8u32f_C1R(src.data(), src.step(), size, delta, threshold, lines.data(), most, &count, memory),
            expected.more ? kprStatusListFull : kprStatusOk);
        expectLines(expected.lines, lines.data(), count);
    }
    // A window whose bounds lie halfway between lines.
    const int numRho = static_cast<int>(static_cast<float>(2 * (size.width + size.height) + 1) / delta.rho);
    const int numAngle = static_cast<int>(3.14159 / double{delta.theta}), offset = (numRho - 1) / 2;
    const int r0 = random.range(0, numRho - 1), r1 = random.range(r0, numRho - 1);
    const int k0 = random.range(0, numAngle - 1), k1 = random.range(k0, numAngle - 1);
    const auto between = [](int index, double side, float step) { return static_cast<float>((index + side) * step); };
    KprRhoTheta window[2] = {{between(r0 - offset, -0.5, delta.rho), between(k0, -0.5, delta.theta)},
                             {between(r1 - offset, 0.5, delta.rho), between(k1, 0.5, delta.theta)}};
    const auto expected =
        reference::houghLines(size, edge, delta, threshold, static_cast<std::size_t>(most), r0, r1, k0, k1);
    Room<KprRhoTheta> lines(expected.lines.size());
    ASSERT_EQ(kpriHoughLine_Region_8u32f_C1R(src.data(), src.step(), size, lines.data(), window, most, &count, delta,
                                             threshold, memory),
              expected.more ? kprStatusListFull : kprStatusOk);
    expectLines(expected.lines, lines.data(), count);
    EXPECT_GE(window[0].theta, 0);
    EXPECT_LE(window[1].theta, static_cast<float>(numAngle - 1) * delta.theta);
    EXPECT_GE(window[0].rho, static_cast<float>(-offset) * delta.rho);
    EXPECT_LE(window[1].rho, static_cast<float>(numRho - 1 - offset) * delta.rho);
}

TEST(HoughLine, Lines) {
    Random random;
    for (KprSize size : sizes()) {
        for (int noise : {1, 3, 30, 1000}) {
            KprRhoTheta delta = anyDelta(random);
            if (2 * (size.width + size.height) + 1 < 3 * delta.rho) delta.rho = 1;
            checkLines(size, delta, random.range(1, 12), random.oneIn(2) ? random.range(1, 3) : random.range(1, 200),
                       noise, random);
            if (HasFailure()) return;
        }
    }
}

// More points than counters of 16 bits hold, all on one line at some angle; and so many that one angle votes at a time.
TEST(HoughLine, ManyPoints) {
    Random random;
    checkLines({70000, 1}, {1, 30 * kDegree}, 100, 20, 1, random);
    checkLines({300, 260}, {1, 10 * kDegree}, 100, 20, 1, random);
    checkLines({130, 97}, {3, 5 * kDegree}, 100, 40, 1, random);  // many in one tile for the same line
    checkLines({640, 3}, {0.01F, 10 * kDegree}, 100, 20, 1, random);
}

// Indices of 32 bits wrap, and miss.
TEST(HoughLine, FinestResolution) {
    Random random;
    checkLines({90, 40}, {0.00003F, 45 * kDegree}, 1, 50, 9, random);
}

TEST(HoughLine, WindowsAtTheEdge) {
    Random random;
    GuardedImage<Kpr8u> src({40, 30}, random);
    src.forEach([](Kpr8u& p) { p = 0; });
    for (int y = 0; y < 30; ++y) src.at(7, y) = 255;
    std::vector<Kpr8u> buffer(100000);
    KprRhoTheta lines[5];
    int count = -1;
    const auto run = [&](KprRhoTheta low, KprRhoTheta high) {
        KprRhoTheta window[2] = {low, high};
        return kpriHoughLine_Region_8u32f_C1R(src.data(), src.step(), {40, 30}, lines, window, 5, &count, {1, kDegree},
                                              20, buffer.data());
    };
    EXPECT_EQ(run({-1e30F, -HUGE_VALF}, {HUGE_VALF, 1e30F}), kprStatusOk);
    EXPECT_EQ(count, 1);
    EXPECT_EQ(run({7, 0}, {7, 0}), kprStatusOk);  // the line itself
    EXPECT_EQ(count, 1);
    EXPECT_EQ(lines[0].rho, 7);
    for (auto [low, high] :
         {std::pair<KprRhoTheta, KprRhoTheta>({7.1F, 0}, {7.9F, 0}), {{0, 3.2F}, {9, 4}}, {{1e9F, 0}, {2e9F, 1}}}) {
        EXPECT_EQ(run(low, high), kprStatusOk);
        EXPECT_EQ(count, 0);
    }
    const float nan = std::nanf("");
    for (auto [low, high] : {std::pair<KprRhoTheta, KprRhoTheta>({8, 0}, {7, 1}),
                             {{0, 1}, {9, 0.5F}},
                             {{nan, 0}, {9, 1}},
                             {{0, 0}, {9, nan}}}) {
        count = 5;
        EXPECT_EQ(run(low, high), kprStatusBadRange);
        EXPECT_EQ(count, 0);
    }
}

void checkSegments(KprSize size, KprRhoTheta delta, int threshold, int most, int noise, Random& random) {
    const int length = random.range(0, 20), gap = random.range(0, 5);
    SCOPED_TRACE(testing::Message() << size.width << " x " << size.height << ", delta " << delta.rho << " "
                                    << delta.theta << ", threshold " << threshold << ", length " << length << ", gap "
                                    << gap << ", most " << most << ", noise " << noise);
    GuardedImage<Kpr8u> src(size, random);
    draw(src, random, noise);
    const auto expected = reference::houghSegments(
        size, [&](int x, int y) { return src.at(x, y) != 0; }, delta, threshold, length, gap, most);
    int specBytes = 0, bytes = 0, count = -1;
    ASSERT_EQ(kpriHoughProbLineGetSize_8u_C1R(size, delta, &specBytes, &bytes), kprStatusOk);
    const Guard guard = random.oneIn(2) ? Guard::After : Guard::Before;
    GuardedBytes block(static_cast<std::size_t>(specBytes), guard), buffer(static_cast<std::size_t>(bytes), guard);
    auto* const spec = reinterpret_cast<KprHoughProbSpec*>(block.data());
    // The smaller limit rules, be it the block's or the call's.
    const bool inBlock = random.oneIn(2);
    ASSERT_EQ(kpriHoughProbLineInit_8u32f_C1R(size, delta, inBlock ? most : most + 5, spec), kprStatusOk);
    Room<KprLineSegment> lines(expected.size());
    ASSERT_EQ(
        kpriHoughProbLine_8u32f_C1R(src.data(), src.step(), size, threshold, length, gap, lines.data(),
                                    inBlock ? most + 9 : most, &count, reinterpret_cast<Kpr8u*>(buffer.data()), spec),
        kprStatusOk);
    expectLines(expected, lines.data(), count);
}

TEST(HoughProbLine, Segments) {
    Random random;
    for (KprSize size : sizes()) {
        for (int noise : {1, 3, 30, 1000}) {
            const KprRhoTheta delta = anyDelta(random);
            checkSegments(size, delta, random.range(1, 12),
                          random.oneIn(3) ? random.range(-1, 2) : random.range(1, 200), noise, random);
            if (HasFailure()) return;
        }
    }
}

// From 32767 points on the list is one longer.
TEST(HoughProbLine, LengthOfTheList) {
    const KprRhoTheta delta = {1, 45 * kDegree};
    for (int width : {32766, 32767}) {
        const std::vector<Kpr8u> row(width, 255);
        int blockBytes = 0, bytes = 0, count = -1;
        ASSERT_EQ(kpriHoughProbLineGetSize_8u_C1R({width, 1}, delta, &blockBytes, &bytes), kprStatusOk);
        std::vector<Kpr8u> block(blockBytes), buffer(bytes);
        auto* const spec = reinterpret_cast<KprHoughProbSpec*>(block.data());
        ASSERT_EQ(kpriHoughProbLineInit_8u32f_C1R({width, 1}, delta, 9, spec), kprStatusOk);
        for (int most : {0, 1, 3}) {  // each point by itself is a segment across the row
            Room<KprLineSegment> lines(most == 0 ? 0 : most + (width == 32767 ? 1 : 0));
            ASSERT_EQ(kpriHoughProbLine_8u32f_C1R(row.data(), width, {width, 1}, 1, 0, 0, lines.data(), most, &count,
                                                  buffer.data(), spec),
                      kprStatusOk);
            EXPECT_EQ(count, most == 0 ? 0 : most + (width == 32767 ? 1 : 0));
        }
    }
}

// Coordinates of more than 16 bits, and many points.
TEST(HoughProbLine, ManyPoints) {
    Random random;
    checkSegments({300, 260}, {1, 20 * kDegree}, 200, 3, 1, random);
    checkSegments({32766, 1}, {1, 45 * kDegree}, 3, 1, 1, random);
    checkSegments({70001, 2}, {1, 45 * kDegree}, 30, 50, 2, random);
    checkSegments({2, 70001}, {1, 45 * kDegree}, 30, 50, 2, random);
}

std::vector<Kpr8u> scratch(20000);

template <typename Ladder>
void linesLadder(Ladder& ladder, auto step, auto roi, auto most, auto delta, auto threshold) {
    constexpr float nan = std::numeric_limits<float>::quiet_NaN();
    ladder.nulls();
    for (int bad : {0, -7}) ladder.template refuses<step>(bad, kprStatusBadStep);
    for (KprSize bad : {KprSize{0, 3}, {7, 0}, {-7, 3}}) ladder.template refuses<roi>(bad, kprStatusBadSize);
    for (int bad : {0, -1}) ladder.template refuses<most>(bad, kprStatusBadSize);
    for (KprRhoTheta bad : {KprRhoTheta{0, 1},
                            {-1, 1},
                            {1, 0},
                            {1, -1},
                            {nan, 1},
                            {1, nan},
                            {22, 1},
                            {1, 3.15F},
                            {HUGE_VALF, 1},
                            {1, HUGE_VALF},
                            {1e-30F, 1},
                            {1, 1e-30F}})
        ladder.template refuses<delta>(bad, kprStatusBadArg);
    for (int bad : {0, -5}) ladder.template refuses<threshold>(bad, kprStatusBadArg);
}

template <int i>
using Index = std::integral_constant<int, i>;

TEST(HoughLine, Ladders) {
    {
        test::Ladder ladder("kpriHoughLine_8u32f_C1R", kpriHoughLine_8u32f_C1R);
        ladder.with<3>({1, 0.5F}).with<4>(3).with<5>(reinterpret_cast<KprRhoTheta*>(scratch.data() + 10000)).with<6>(4);
        ladder.with<8>(scratch.data());
        linesLadder(ladder, Index<1>{}, Index<2>{}, Index<6>{}, Index<3>{}, Index<4>{});
        ladder.run();
    }
    {
        test::Ladder ladder("kpriHoughLine_Region_8u32f_C1R", kpriHoughLine_Region_8u32f_C1R);
        KprRhoTheta window[2] = {{0, 0}, {5, 1}};
        ladder.with<3>(reinterpret_cast<KprRhoTheta*>(scratch.data() + 10000)).with<4>(window).with<5>(4);
        ladder.with<7>({1, 0.5F}).with<8>(3).with<9>(scratch.data());
        linesLadder(ladder, Index<1>{}, Index<2>{}, Index<5>{}, Index<7>{}, Index<8>{});
        ladder.run();
    }
    test::Ladder sizing("kpriHoughLineGetSize_8u_C1R", kpriHoughLineGetSize_8u_C1R);
    sizing.with<1>({1, kDegree}).with<2>(10).nulls().sizes();
    for (KprRhoTheta bad : {KprRhoTheta{0, 1}, {1, -1}, {std::nanf(""), 1}, {1, std::nanf("")}})
        sizing.refuses<1>(bad, kprStatusBadArg);
    sizing.run();
    int size = 0;
    EXPECT_EQ(kpriHoughLineGetSize_8u_C1R({20, 10}, {1, kDegree}, 7, &size), kprStatusOk);
    EXPECT_EQ(size, 10 * (80 + 64) + 16 * 7 + 32 + 8 * 179 + 8 + 16 * 61 + 256);
    EXPECT_EQ(kpriHoughLineGetSize_8u_C1R({50000, 20000}, {1, kDegree}, 7, &size), kprStatusSizeBeyond32Bit);
    EXPECT_EQ(kpriHoughLineGetSize_8u_C1R({5, 5}, {1e-38F, 1e-38F}, 7, &size), kprStatusSizeBeyond32Bit);
}

TEST(HoughProbLine, Ladders) {
    int size = 0, block = 0;
    EXPECT_EQ(kpriHoughProbLineGetSize_8u_C1R({20, 10}, {1, kDegree}, &block, &size), kprStatusOk);
    EXPECT_EQ(block, 8 * 179 + 24);
    EXPECT_EQ(size, 3 * 10 + 4 * 61 * 180 + 4 * 200);
    block = size = 5;
    EXPECT_EQ(kpriHoughProbLineGetSize_8u_C1R({50000, 20000}, {1, kDegree}, &block, &size), kprStatusSizeOverflow);
    EXPECT_EQ(block + size, 10);
    {
        test::Ladder ladder("kpriHoughProbLineGetSize_8u_C1R", kpriHoughProbLineGetSize_8u_C1R);
        ladder.with<1>({1, 1}).nulls().sizes();
        for (KprRhoTheta bad : {KprRhoTheta{0, 1}, {1, -1}, {std::nanf(""), 1}, {1, std::nanf("")}})
            ladder.refuses<1>(bad, kprStatusBadArg);
        ladder.run();
    }
    auto* const spec = reinterpret_cast<KprHoughProbSpec*>(scratch.data() + 1);
    {
        test::Ladder ladder("kpriHoughProbLineInit_8u32f_C1R", kpriHoughProbLineInit_8u32f_C1R);
        ladder.with<1>({1, 1}).with<3>(spec).sizes();
        for (KprRhoTheta bad : {KprRhoTheta{0, 1}, {1, -1}, {std::nanf(""), 1}, {1, std::nanf("")}})
            ladder.refuses<1>(bad, kprStatusBadArg);
        ladder.nulls().run();
    }
    ASSERT_EQ(kpriHoughProbLineInit_8u32f_C1R({7, 3}, {1, 1}, 4, spec), kprStatusOk);
    test::Ladder ladder("kpriHoughProbLine_8u32f_C1R", kpriHoughProbLine_8u32f_C1R);
    ladder.with<3>(1).with<6>(reinterpret_cast<KprLineSegment*>(scratch.data() + 10000)).with<7>(4);
    ladder.with<9>(scratch.data() + 1000).with<10>(spec).nulls().sizes().lengths({0});
    for (int bad : {0, -1}) ladder.refuses<3>(bad, kprStatusBadArg);
    ladder.refuses<4>(-1, kprStatusBadArg).refuses<5>(-1, kprStatusBadArg).run();
}

}  // namespace
