#include <gtest/gtest.h>

#include "tests/reference/pyramid.h"
#include "tests/support/guarded_image.h"
#include "tests/support/ladder.h"

namespace {

using test::Guard;
using test::GuardedBytes;
using test::Random;

bool operator==(KprSize a, KprSize b) { return a.width == b.width && a.height == b.height; }

float anyRate(Random& random) {
    constexpr float usual[] = {2.0F, 1.5F, 10.0F, 3.0F, 1.25F, 1.0000001F, 1.001F, 1.4142135F};
    return random.oneIn(2) ? usual[random.range(0, 7)] : 1.0F + static_cast<float>(random.range(1, 9000)) / 1000.0F;
}

int anySide(Random& random) {
    return random.oneIn(3) ? random.range(1, 12) : random.oneIn(4) ? random.range(1, 1 << 20) : random.range(1, 5000);
}

TEST(PyramidSizes, FollowTheRule) {
    Random random;
    for (int round = 0; round < 20000; ++round) {
        const float rate = anyRate(random);
        const KprSize size = {anySide(random), anySide(random)};
        KprSize below{}, least{}, most{};
        ASSERT_EQ(kpriGetPyramidDownROI(size, &below, rate), kprStatusOk);
        ASSERT_TRUE(below == reference::sizeBelow(size, rate)) << size.width << ", " << size.height << " at " << rate;
        ASSERT_EQ(kpriGetPyramidUpROI(below, &least, &most, rate), kprStatusOk);
        const auto width = reference::sidesAbove(below.width, rate), height = reference::sidesAbove(below.height, rate);
        ASSERT_TRUE(least.width == width.least && most.width == width.most) << below.width << " at " << rate;
        ASSERT_TRUE(least.height == height.least && most.height == height.most) << below.height << " at " << rate;
        ASSERT_TRUE(least.width <= size.width && size.width <= most.width) << size.width << " at " << rate;
    }
}

TEST(PyramidSizes, KnownOnes) {
    KprSize size{}, most{};
    ASSERT_EQ(kpriGetPyramidDownROI({5, 1}, &size, 2.0F), kprStatusOk);
    EXPECT_TRUE(size == (KprSize{3, 1}));
    ASSERT_EQ(kpriGetPyramidUpROI({3, 1}, &size, &most, 2.0F), kprStatusOk);
    EXPECT_TRUE(size == (KprSize{5, 1}) && most == (KprSize{6, 2}));
    ASSERT_EQ(kpriGetPyramidDownROI({INT32_MAX, 1000}, &size, 10.0F), kprStatusOk);
    EXPECT_TRUE(size == reference::sizeBelow({INT32_MAX, 1000}, 10.0F)) << size.width;
    const KprSize untouched = size;
    EXPECT_EQ(kpriGetPyramidUpROI({INT32_MAX, 1}, &size, &most, 10.0F), kprStatusSizeOverflow);
    EXPECT_TRUE(size == untouched);
}

TEST(PyramidRecord, HasItsLevels) {
    Random random;
    for (int round = 0; round < 500; ++round) {
        const float rate = anyRate(random);
        const KprSize size = {random.range(1, 400), random.range(1, 400)};
        const int asked = random.oneIn(3) ? INT32_MAX : random.range(1, 12);
        std::vector<KprSize> sizes = {size};
        while (static_cast<int>(sizes.size()) <= asked && !(sizes.back() == (KprSize{1, 1})))
            sizes.push_back(reference::sizeBelow(sizes.back(), rate));
        const int last = static_cast<int>(sizes.size()) - 1;

        int recordBytes = 0, bufferBytes = 0;
        ASSERT_EQ(kpriPyramidGetSize(&recordBytes, &bufferBytes, asked, size, rate), kprStatusOk);
        ASSERT_EQ(recordBytes, 52 * last + 152) << size.width << " x " << size.height << " at " << rate;
        ASSERT_EQ(bufferBytes, 8 * std::max(size.width, size.height));

        // Both end at an inaccessible page, whatever that makes of their beginnings.
        const int odd = random.range(0, 7);
        GuardedBytes record(static_cast<std::size_t>(recordBytes), odd == 0 ? Guard::Before : Guard::After);
        GuardedBytes buffer(static_cast<std::size_t>(bufferBytes + odd), Guard::After);
        KprPyramid* pyramid = nullptr;
        ASSERT_EQ(kpriPyramidInit(&pyramid, asked, size, reinterpret_cast<Kpr8u*>(record.data()),
                                  reinterpret_cast<Kpr8u*>(buffer.data() + odd), rate),
                  kprStatusOk);
        buffer.setAccessible(false);
        ASSERT_EQ(pyramid->level, last);
        ASSERT_EQ(pyramid->pState, nullptr);
        double scale = 1;
        for (int k = 0; k <= last; ++k, scale *= 1.0 / double{rate}) {
            ASSERT_TRUE(pyramid->pRoi[k] == sizes[static_cast<std::size_t>(k)]) << k;
            ASSERT_EQ(pyramid->pRate[k], scale) << k;
            ASSERT_TRUE(pyramid->pImage[k] == nullptr && pyramid->pStep[k] == 0) << k;
            pyramid->pImage[k] = record.data();  // the caller's to fill in
            pyramid->pStep[k] = k;
        }
        for (void* array : {static_cast<void*>(pyramid), static_cast<void*>(pyramid->pImage),
                            static_cast<void*>(pyramid->pRoi), static_cast<void*>(pyramid->pStep)})
            ASSERT_EQ(reinterpret_cast<std::uintptr_t>(array) % 8, 0U);
        ASSERT_TRUE(pyramid->pRoi[0] == size && pyramid->level == last);  // the arrays do not overlap
    }
}

TEST(PyramidRecord, FieldsLieInTheirOrder) {
    EXPECT_EQ(offsetof(KprPyramid, pImage), 0U);
    EXPECT_EQ(offsetof(KprPyramid, pRoi), 8U);
    EXPECT_EQ(offsetof(KprPyramid, pRate), 16U);
    EXPECT_EQ(offsetof(KprPyramid, pStep), 24U);
    EXPECT_EQ(offsetof(KprPyramid, pState), 32U);
    EXPECT_EQ(offsetof(KprPyramid, level), 40U);
}

template <int index, typename Ladder>
Ladder& refusesRates(Ladder&& ladder) {
    ladder.template with<index>(2.0F);
    for (float bad : {1.0F, 0.0F, -2.0F, 10.000001F, INFINITY, NAN})
        ladder.template refuses<index>(bad, kprStatusBadArg);
    return ladder;
}

TEST(PyramidSizes, Ladders) {
    refusesRates<2>(LADDER(kpriGetPyramidDownROI).nulls().sizes()).run();
    refusesRates<3>(LADDER(kpriGetPyramidUpROI).nulls().sizes()).run();
    refusesRates<4>(LADDER(kpriPyramidGetSize)
                        .with<2>(3)
                        .nulls()
                        .sizes()
                        .refuses<2>(0, kprStatusBadArg)
                        .refuses<2>(INT32_MIN, kprStatusBadArg))
        .refuses<3>({1 << 28, 1}, kprStatusSizeOverflow)
        .run();
    std::vector<Kpr8u> record(1000), buffer(1000);
    refusesRates<5>(LADDER(kpriPyramidInit)
                        .with<1>(3)
                        .with<3>(record.data())
                        .with<4>(buffer.data())
                        .nulls()
                        .sizes()
                        .refuses<1>(0, kprStatusBadArg))
        .run();
    KprSize size{};
    EXPECT_EQ(kpriGetPyramidDownROI({7, 3}, &size, 10.0F), kprStatusOk);
}

}  // namespace
