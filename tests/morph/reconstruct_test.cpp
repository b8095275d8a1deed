#include <gtest/gtest.h>

#include "tests/reference/morph.h"
#include "tests/support/guarded_image.h"
#include "tests/support/ladder.h"

namespace {

using test::GuardedBytes;
using test::GuardedImage;
using test::Random;

template <typename T>
std::vector<T> pixels(GuardedImage<T>& image) {
    std::vector<T> all;
    image.forEach([&](T& pixel) { all.push_back(pixel); });
    return all;
}

template <typename T, typename Function>
void runAndCompare(Function function, KprDataType type, bool dilation, int norm, GuardedImage<T>& limit,
                   GuardedImage<T>& marker) {
    const KprSize size = limit.size();
    auto expected = pixels(marker);
    reference::reconstruct(dilation, norm == 0, size, pixels(limit), expected);
    int bufferSize = 0;
    ASSERT_EQ(kpriMorphReconstructGetBufferSize(size, type, 1, &bufferSize), kprStatusOk);
    const GuardedBytes buffer(static_cast<std::size_t>(bufferSize), test::Guard::After);
    const auto before = limit.snapshot();
    ASSERT_EQ(function(limit.data(), limit.step(), marker.data(), marker.step(), size,
                       reinterpret_cast<Kpr8u*>(buffer.data()), norm),
              kprStatusOk);
    EXPECT_EQ(before, limit.snapshot());
    test::expectImage(marker, [&](int x, int y, int) {
        const T wanted = expected[static_cast<std::size_t>(y * size.width + x)];
        return wanted == marker.at(x, y) ? marker.at(x, y) : wanted;  // either zero
    });
}

// Few levels, so that plateaus are large and paths long; some markers lie beyond the limit.
template <typename T, typename Function>
void check(Function function, KprDataType type, bool dilation) {
    Random random;
    for (KprSize size : test::allSizes()) {
        const bool small = size.width * size.height < 9000;
        for (int norm = small ? 0 : random.range(0, 1); norm <= 1; ++norm) {
            GuardedImage<T> limit(size, random), marker(size, random);
            const bool wild = random.oneIn(2);
            const int walls = random.range(2, 6);
            limit.forEach([&](T& p) {
                const int level = random.range(100, 104);
                p = static_cast<T>(random.oneIn(walls) ? (dilation ? 3 : 201) : level);
                if (wild && random.oneIn(20)) p = random.pixel<T>(true);
            });
            marker.forEach([&](T& p) {
                const int seed = random.range(98, 106);
                p = static_cast<T>(random.oneIn(30) ? seed : dilation ? 0 : 250);
                if (wild && random.oneIn(40)) p = random.pixel<T>(true);
            });
            runAndCompare(function, type, dilation, norm, limit, marker);
            if (testing::Test::HasFailure()) return;
        }
    }
}

TEST(Reconstruct, Dilation) {
    check<Kpr8u>(kpriMorphReconstructDilate_8u_C1IR, kpr8u, true);
    check<Kpr16u>(kpriMorphReconstructDilate_16u_C1IR, kpr16u, true);
    check<Kpr32f>(kpriMorphReconstructDilate_32f_C1IR, kpr32f, true);
    check<Kpr64f>(kpriMorphReconstructDilate_64f_C1IR, kpr64f, true);
}

TEST(Reconstruct, Erosion) {
    check<Kpr8u>(kpriMorphReconstructErode_8u_C1IR, kpr8u, false);
    check<Kpr16u>(kpriMorphReconstructErode_16u_C1IR, kpr16u, false);
    check<Kpr32f>(kpriMorphReconstructErode_32f_C1IR, kpr32f, false);
    check<Kpr64f>(kpriMorphReconstructErode_64f_C1IR, kpr64f, false);
}

// A square spiral of one-pixel paths turns back against the sweeps once a lap.
TEST(Reconstruct, SpiralIsFilledToItsEnd) {
    Random random;
    constexpr int side = 129;
    GuardedImage<Kpr8u> limit({side, side}, random), marker({side, side}, random);
    limit.forEach([](Kpr8u& p) { p = 0; });
    marker.forEach([](Kpr8u& p) { p = 0; });
    int x = 0, y = 0, dx = 1, dy = 0, length = 0;
    const auto open = [&](int i, int j) { return i >= 0 && j >= 0 && i < side && j < side && limit.at(i, j) == 0; };
    limit.at(0, 0) = 200;
    for (int turns = 0; turns < 2; ++length) {
        const bool ahead =
            open(x + dx, y + dy) && (!(x + 2 * dx >= 0 && y + 2 * dy >= 0 && x + 2 * dx < side && y + 2 * dy < side) ||
                                     open(x + 2 * dx, y + 2 * dy));
        if (!ahead) {
            const int turned = dx;
            dx = -dy;
            dy = turned;
            ++turns;
            continue;
        }
        turns = 0;
        x += dx;
        y += dy;
        limit.at(x, y) = 200;
    }
    ASSERT_GT(length, side * side / 3);
    marker.at(0, 0) = 255;
    runAndCompare(kpriMorphReconstructDilate_8u_C1IR, kpr8u, true, 1, limit, marker);
    EXPECT_EQ(marker.at(x, y), 200);
}

TEST(Reconstruct, CornersJoinOnlyWithEightNeighbours) {
    for (int norm : {0, 1}) {
        const Kpr16u limit[] = {9, 0, 0, 9};
        Kpr16u marker[] = {7, 0, 0, 0};
        Kpr8u buffer[512];
        ASSERT_EQ(kpriMorphReconstructDilate_16u_C1IR(limit, 4, marker, 4, {2, 2}, buffer, norm), kprStatusOk);
        EXPECT_EQ(marker[3], norm == 0 ? 7 : 0);
    }
}

TEST(Reconstruct, NanStaysAndDoesNotSpread) {
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const float limit[] = {5, 5, nan, 5, 5};
    float marker[] = {1, 2, 0, nan, 0};
    Kpr8u buffer[512];
    ASSERT_EQ(kpriMorphReconstructDilate_32f_C1IR(limit, sizeof limit, marker, sizeof marker, {5, 1}, buffer, 1),
              kprStatusOk);
    EXPECT_EQ(marker[0], 2);
    EXPECT_EQ(marker[2], 2);
    EXPECT_TRUE(std::isnan(marker[3]));
    EXPECT_EQ(marker[4], 0);
}

// Three numbers above, of which any but the middle one may be hidden.
TEST(Reconstruct, NanHidesNoNumberBesideIt) {
    for (const float nan : {std::numeric_limits<float>::quiet_NaN(), std::numeric_limits<float>::signaling_NaN()}) {
        for (const bool dilation : {true, false}) {
            const float seed = dilation ? 7.f : 1.f, rest = dilation ? 0.f : 9.f, wall = dilation ? 0.f : 9.f;
            const float limit[2][5] = {{wall, 5, wall, wall, wall}, {wall, wall, 5, 5, wall}};
            float marker[2][5] = {{rest, seed, nan, rest, rest}, {rest, rest, rest, rest, rest}};
            Kpr8u buffer[512];
            const auto function = dilation ? kpriMorphReconstructDilate_32f_C1IR : kpriMorphReconstructErode_32f_C1IR;
            ASSERT_EQ(function(limit[0], 20, marker[0], 20, {5, 2}, buffer, 0), kprStatusOk);
            EXPECT_TRUE(std::isnan(marker[0][2]));
            EXPECT_EQ(marker[0][1], 5);
            EXPECT_EQ(marker[1][2], 5);
            EXPECT_EQ(marker[1][3], 5);
            EXPECT_EQ(marker[1][4], wall);
        }
    }
}

// The largest ROIs whose buffers are told, and what is one more.
TEST(Reconstruct, LargestBuffers) {
    struct Limit {
        KprDataType type;
        KprSize roi;
        int bytes;
    };
    static const Limit limits[] = {{kpr8u, {536870871, 2}, 0x7fffffff},
                                   {kpr16u, {268435415, 2}, 0x7ffffffe},
                                   {kpr32f, {134217717, 11}, 0x7fffffff},
                                   {kpr64f, {67108858, 23}, 0x7fffffff}};
    for (const Limit& limit : limits) {
        int size = 0;
        ASSERT_EQ(kpriMorphReconstructGetBufferSize(limit.roi, limit.type, 1, &size), kprStatusOk) << limit.type;
        EXPECT_EQ(size, limit.bytes);
        size = -1;
        const KprSize more = {limit.roi.width, limit.roi.height + 1};
        EXPECT_EQ(kpriMorphReconstructGetBufferSize(more, limit.type, 1, &size), kprStatusSizeOverflow) << limit.type;
        EXPECT_EQ(size, -1);
    }
}

TEST(Reconstruct, BufferSizes) {
    int size = 0;
    const std::pair<KprDataType, int> expected[] = {{kpr8u, 48 + 4 * 64 + 161},
                                                    {kpr16u, 2 * (48 + 4 * 64) + 322},
                                                    {kpr32f, 16 * 64 + 48 + 164},
                                                    {kpr64f, 32 * 64 + 48 + 168}};
    for (auto [type, bytes] : expected) {
        ASSERT_EQ(kpriMorphReconstructGetBufferSize({64, 48}, type, 1, &size), kprStatusOk);
        EXPECT_EQ(size, bytes);
    }
    EXPECT_EQ(kpriMorphReconstructGetBufferSize({0x7fffffff, 1}, kpr64f, 1, &size), kprStatusSizeOverflow);
    LADDER(kpriMorphReconstructGetBufferSize)
        .with<1>(kpr8u)
        .with<2>(1)
        .nulls()
        .sizes()
        .refuses<1>(kpr16s, kprStatusBadDataType)
        .refuses<1>(kpr1u, kprStatusBadDataType)
        .refuses<2>(3, kprStatusBadCoi)
        .refuses<2>(0, kprStatusBadCoi)
        .run();
}

template <typename Function>
void checkLadder(Function function, bool aligned) {
    std::vector<Kpr8u> buffer(2000);
    test::Ladder ladder("MorphReconstruct", function);
    ladder.template with<5>(buffer.data()).template with<6>(1).nulls().sizes().lengths({0, 1});
    if (aligned) ladder.multiples({0, 1});
    ladder.template refuses<6>(2, kprStatusBadArg).template refuses<6>(-1, kprStatusBadArg).run();
}

TEST(Reconstruct, StatusLadders) {
    checkLadder(kpriMorphReconstructDilate_8u_C1IR, false);
    checkLadder(kpriMorphReconstructDilate_16u_C1IR, true);
    checkLadder(kpriMorphReconstructDilate_32f_C1IR, true);
    checkLadder(kpriMorphReconstructDilate_64f_C1IR, true);
    checkLadder(kpriMorphReconstructErode_8u_C1IR, false);
    checkLadder(kpriMorphReconstructErode_16u_C1IR, true);
    checkLadder(kpriMorphReconstructErode_32f_C1IR, true);
    checkLadder(kpriMorphReconstructErode_64f_C1IR, true);
}

}  // namespace
