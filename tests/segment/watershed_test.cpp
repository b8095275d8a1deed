#include <gtest/gtest.h>

#include "tests/reference/watershed.h"
#include "tests/segment/scenes.h"
#include "tests/support/ladder.h"

namespace {

using test::Guard;
using test::GuardedBytes;
using test::GuardedImage;
using test::Random;

template <typename T, typename Label>
using Run = KprStatus (*)(const T*, int, Label*, int, KprSize, int, int, Kpr8u*);
using GetSize = KprStatus (*)(KprSize, int*);

template <typename T, typename Label>
void runAndCompare(Run<T, Label> run, GetSize getSize, GuardedImage<T>& src, GuardedImage<Label>& marker, int norm,
                   int flag, Random& random) {
    const KprSize size = src.size();
    reference::Flood<T, Label> expected{size, {}, {}};
    src.forEach([&](T& p) { expected.relief.push_back(p); });
    marker.forEach([&](Label& p) { expected.labels.push_back(p); });
    if constexpr (std::is_same_v<T, Kpr8u>) {
        if ((flag & kprSegQueue) != 0)
            reference::queueWatershed(expected, norm, flag);
        else
            reference::sweptWatershed(expected, norm, flag);
    } else {
        reference::sweptWatershed(expected, norm, flag);
    }
    int bytes = 0;
    ASSERT_EQ(getSize(size, &bytes), kprStatusOk);
    const GuardedBytes buffer(std::size_t(bytes), random.oneIn(4) ? Guard::Before : Guard::After);
    const auto before = src.snapshot();
    ASSERT_EQ(run(src.data(), src.step(), marker.data(), marker.step(), size, norm, flag,
                  reinterpret_cast<Kpr8u*>(buffer.data())),
              kprStatusOk);
    EXPECT_EQ(before, src.snapshot());
    test::expectImage(marker, [&](int x, int y, int) { return expected.labels[expected.index(x, y)]; });
    if (testing::Test::HasFailure()) FAIL() << "norm " << norm << ", flag " << flag;
}

// A serpentine relief, plateaus, noise, or heights of every kind; few markers or many, walls among them.
template <typename T, typename Label>
void check(Run<T, Label> run, GetSize getSize, KprSize size, int norm, int flag, Random& random) {
    GuardedImage<T> src(size, random);
    GuardedImage<Label> marker(size, random);
    const auto scene = drawScene(test::Scene(random.range(0, int(test::Scene::Count) - 1)), size, random);
    const int levels = random.oneIn(2) ? 255 : random.range(0, 6);
    const bool drawn = random.oneIn(2);
    int i = 0;
    src.forEach([&](T& p) {
        p = static_cast<T>(drawn && !random.oneIn(40) ? scene[std::size_t(i)] * 40 : random.range(0, levels));
        ++i;
    });
    const int sparse = random.oneIn(2) ? 6 : 150, walls = random.range(2, 9);
    marker.forEach([&](Label& p) {
        const Label label = static_cast<Label>(random.oneIn(walls) ? -1 : random.range(1, 6));
        p = static_cast<Label>(random.oneIn(sparse) ? label : 0);
    });
    runAndCompare(run, getSize, src, marker, norm, flag, random);
}

std::vector<KprSize> sizes() {
    std::vector<KprSize> all;
    for (KprSize size : test::awkwardSizes()) {
        if (size.width * size.height < 1500) all.push_back(size);
    }
    for (int w = 1; w <= 5; ++w) {
        for (int h = 1; h <= 5; ++h) all.push_back({w, h});
    }
    for (KprSize size : {KprSize{67, 131}, {5, 300}, {64, 20}, {128, 30}, {129, 65}, {1, 500}}) all.push_back(size);
    return all;
}

template <typename T, typename Label>
void checkAll(Run<T, Label> run, GetSize getSize, int way, int norms) {
    Random random;
    for (KprSize size : sizes()) {
        for (int norm = 0; norm < norms; ++norm) {
            for (int round = 0; round < 6; ++round) {
                check(run, getSize, size, norm, way | random.range(0, 3) * 64, random);
                if (testing::Test::HasFailure()) return;
            }
        }
    }
    for (int norm = 0; norm < norms; ++norm) check(run, getSize, {641, 479}, norm, way | norm * 64, random);
}

TEST(Watershed, ByQueue) {
    checkAll(kpriSegmentWatershed_8u_C1IR, kpriSegmentWatershedGetBufferSize_8u_C1R, kprSegQueue, 2);
    checkAll(kpriSegmentWatershed_8u_C1IR, kpriSegmentWatershedGetBufferSize_8u_C1R, kprSegQueue | kprSegIterative, 2);
    checkAll(kpriSegmentWatershed_8u16u_C1IR, kpriSegmentWatershedGetBufferSize_8u16u_C1R, kprSegQueue, 2);
}

TEST(Watershed, BySweeps) {
    checkAll(kpriSegmentWatershed_8u_C1IR, kpriSegmentWatershedGetBufferSize_8u_C1R, kprSegIterative, 4);
    checkAll(kpriSegmentWatershed_8u16u_C1IR, kpriSegmentWatershedGetBufferSize_8u16u_C1R, kprSegIterative, 4);
}

TEST(Watershed, OfFloats) {
    checkAll(kpriSegmentWatershed_32f16u_C1IR, kpriSegmentWatershedGetBufferSize_32f16u_C1R, kprSegIterative, 4);
}

// So far from every marker that costs are worked out pixel by pixel.
TEST(Watershed, OfRowsTooLongForLanes) {
    Random random;
    for (int norm = 0; norm < 3; ++norm) {
        check(kpriSegmentWatershed_8u_C1IR, kpriSegmentWatershedGetBufferSize_8u_C1R, {262200, 2}, norm,
              kprSegIterative | 0, random);
    }
}

// The path of a serpentine turns back against the sweeps at every other row.
TEST(Watershed, SerpentineIsFloodedToItsEnd) {
    Random random;
    const KprSize size = {60, 61};
    for (int way : {kprSegQueue | 0, kprSegIterative | 0}) {
        GuardedImage<Kpr8u> src(size, random), marker(size, random);
        for (int y = 0; y < size.height; ++y) {
            for (int x = 0; x < size.width; ++x) {
                const bool wall = y % 2 == 1 && x != (y % 4 == 1 ? size.width - 1 : 0);
                src.at(x, y) = wall ? 200 : 10;
                marker.at(x, y) = 0;
            }
        }
        marker.at(0, 0) = 1;
        marker.at(30, 59) = 2;  // on the last wall
        runAndCompare(kpriSegmentWatershed_8u_C1IR, kpriSegmentWatershedGetBufferSize_8u_C1R, src, marker, 1, way,
                      random);
        EXPECT_EQ(marker.at(59, 60), 1);
    }
}

template <typename T, typename Label>
void checkLadder(Run<T, Label> run, bool floats) {
    std::vector<Kpr8u> buffer(5000);
    test::Ladder ladder("SegmentWatershed", run);
    ladder.template with<6>(kprSegIterative).template with<7>(buffer.data()).nulls().sizes().lengths({0, 1});
    if (sizeof(Label) > 1) ladder.multiples({1});
    if (floats) ladder.multiples({0});
    if (floats) ladder.template refuses<6>(kprSegQueue, kprStatusBadMode);
    for (int flag : {0, 64 + 128, 4}) ladder.template refuses<6>(flag, kprStatusBadArg);
    for (int norm : {-1, 4}) ladder.template refuses<5>(norm, kprStatusBadArg);
    ladder.run();
    if (floats) return;
    test::Ladder queue("SegmentWatershed", run);
    queue.template with<6>(kprSegQueue).template with<7>(buffer.data());
    for (int norm : {-1, 2, 3}) queue.template refuses<5>(norm, kprStatusBadArg);
    queue.run();
}

TEST(Watershed, Ladders) {
    checkLadder(kpriSegmentWatershed_8u_C1IR, false);
    checkLadder(kpriSegmentWatershed_8u16u_C1IR, false);
    checkLadder(kpriSegmentWatershed_32f16u_C1IR, true);
    int bytes = 0;
    for (GetSize size : {kpriSegmentWatershedGetBufferSize_8u_C1R, kpriSegmentWatershedGetBufferSize_8u16u_C1R,
                         kpriSegmentWatershedGetBufferSize_32f16u_C1R}) {
        test::Ladder("SegmentWatershedGetBufferSize", size).nulls().sizes().run();
    }
    kpriSegmentWatershedGetBufferSize_8u_C1R({640, 480}, &bytes);
    EXPECT_EQ(bytes, 16 * 640 * 480 + 642 * 482 + 48);
    kpriSegmentWatershedGetBufferSize_8u_C1R({1, 480}, &bytes);
    EXPECT_EQ(bytes, 6 * 32 * 480 + 64 + 480 + 66);
    kpriSegmentWatershedGetBufferSize_8u16u_C1R({17, 480}, &bytes);
    EXPECT_EQ(bytes, 6 * 64 * 480 + 128 + 480 + 66);
    kpriSegmentWatershedGetBufferSize_32f16u_C1R({641, 480}, &bytes);
    EXPECT_EQ(bytes, 9 * 644 * 480 + 480 + 66);
}

}  // namespace
