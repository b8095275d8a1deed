#include <gtest/gtest.h>

#include "tests/distance/ground.h"

// The ladder's driver makes memory for what a pointer points to; this block is made by its initialising call.
struct KprInpaintState {
    char byte;
};

namespace {

using test::GuardedBytes;
using test::GuardedImage;
using test::Random;

// A state with its memory, each piece of exactly the size told.
template <int channels>
class Restoration {
  public:
    Restoration(GuardedImage<Kpr8u>& mask, GuardedImage<Kpr32f>& distance, float radius, int method)
        : size_(mask.size()),
          sizes_(sizesOf(mask, radius, method)),
          memory_(test::exactly(sizes_.first)),
          buffer_(test::exactly(sizes_.second)) {
        const auto init = channels == 1 ? kpriInpaintInit_8u_C1R : kpriInpaintInit_8u_C3R;
        EXPECT_EQ(init(&state_, distance.data(), distance.step(), mask.data(), mask.step(), size_, radius, method,
                       test::bufferOf(memory_), test::bufferOf(buffer_)),
                  kprStatusOk);
    }

    KprStatus run(GuardedImage<Kpr8u>& src, GuardedImage<Kpr8u>& dst) const {
        const auto fill = channels == 1 ? kpriInpaint_8u_C1R : kpriInpaint_8u_C3R;
        return fill(src.data(), src.step(), dst.data(), dst.step(), size_, state_, test::bufferOf(buffer_));
    }

  private:
    static std::pair<int, int> sizesOf(GuardedImage<Kpr8u>& mask, float radius, int method) {
        std::pair<int, int> sizes;
        EXPECT_EQ(kpriInpaintGetSize(mask.data(), mask.step(), mask.size(), radius, method, channels, &sizes.first,
                                     &sizes.second),
                  kprStatusOk);
        return sizes;
    }

    KprSize size_;
    std::pair<int, int> sizes_;
    GuardedBytes memory_, buffer_;
    KprInpaintState* state_ = nullptr;
};

// Distances with ties, both zeros, subnormals, infinities and NaN.
void drawDistances(GuardedImage<Kpr32f>& distance, Random& random) {
    distance.forEach([&](Kpr32f& d) {
        d = random.oneIn(20) ? random.pixel<Kpr32f>(true) : static_cast<float>(random.range(-5, 20)) / 2.0F;
    });
}

// Photographs have flat parts and edges; noise has neither.
void drawImage(GuardedImage<Kpr8u>& image, Random& random) {
    const int kind = random.range(0, 2), slope = random.range(-3, 3);
    int i = 0;
    image.forEach([&](Kpr8u& p) {
        const int x = i % image.size().width, y = i / image.size().width;
        ++i;
        p = kind == 0   ? random.pixel<Kpr8u>()
            : kind == 1 ? Kpr8u{77}
                        : static_cast<Kpr8u>(x > slope * y ? 200 : 90 + x % 7);
    });
}

// Two images by one state: nothing of the first is left when the second is filled.
template <int channels>
void check(KprSize size, Random& random) {
    GuardedImage<Kpr8u> mask(size, random);
    GuardedImage<Kpr32f> distance(size, random);
    test::drawScene(mask, random);
    drawDistances(distance, random);
    const float radius = random.oneIn(10) ? std::numeric_limits<float>::infinity()
                                          : 1.0F + static_cast<float>(random.range(0, 80)) / 8.0F;
    const int method = random.range(0, 1);
    SCOPED_TRACE("radius " + std::to_string(radius) + ", method " + std::to_string(method));
    const Restoration<channels> restoration(mask, distance, radius, method);
    const auto maskField = test::fieldOf(mask);
    const auto distances = test::fieldOf(distance);
    distance.forEach([](Kpr32f& d) { d = 0; });
    mask.forEach([](Kpr8u& m) { m = 1; });
    for (int round = 0; round < 2; ++round) {
        GuardedImage<Kpr8u> src(size, random, channels), dst(size, random, channels);
        drawImage(src, random);
        const auto before = src.snapshot();
        ASSERT_EQ(restoration.run(src, dst), kprStatusOk);
        EXPECT_EQ(before, src.snapshot());
        std::vector<reference::Field<Kpr8u>> expected;
        for (int c = 0; c < channels; ++c) {
            reference::Field<Kpr8u> plane(size);
            for (int y = 0; y < size.height; ++y) {
                for (int x = 0; x < size.width; ++x) plane.at(x, y) = src.at(x, y, c);
            }
            expected.push_back(reference::inpaint(plane, maskField, distances, radius, method));
        }
        const auto pixel = [&](int x, int y, int c) { return expected[static_cast<std::size_t>(c)].at(x, y); };
        test::expectImage(dst, pixel, channels);
        ASSERT_EQ(restoration.run(src, src), kprStatusOk);
        test::expectImage(src, pixel, channels);
    }
}

TEST(Inpaint, Scenes) {
    Random random;
    for (KprSize size : {KprSize{1, 1}, {2, 1}, {1, 9}, {16, 5}, {17, 17}, {33, 20}, {64, 9}, {65, 30}, {90, 3}}) {
        for (int round = 0; round < 6; ++round) {
            check<1>(size, random);
            check<3>(size, random);
            if (testing::Test::HasFailure()) return;
        }
    }
}

// A mask that covers everything leaves nothing to start from; one that covers nothing copies.
TEST(Inpaint, EverythingAndNothing) {
    Random random;
    const KprSize size = {70, 9};
    for (int all : {0, 1}) {
        GuardedImage<Kpr8u> mask(size, random), src(size, random), dst(size, random);
        GuardedImage<Kpr32f> distance(size, random);
        mask.forEach([&](Kpr8u& m) { m = static_cast<Kpr8u>(all); });
        distance.fill(random, true);
        src.fill(random);
        ASSERT_EQ(Restoration<1>(mask, distance, 3, 0).run(src, dst), kprStatusOk);
        test::expectImage(dst, [&](int x, int y, int) { return all != 0 ? Kpr8u{0} : src.at(x, y); });
    }
}

TEST(Inpaint, Statuses) {
    const std::vector<Kpr8u> hole(21, 1), none(21, 0);
    const std::vector<float> distance(21, 0);
    std::vector<Kpr8u> memory(20000), buffer(20000);
    LADDER(kpriInpaintGetSize)
        .with<0>(none.data())
        .with<3>(1)
        .with<4>(0)
        .with<5>(3)
        .nulls()
        .sizes()
        .lengths({0})
        .refuses<3>(0.99F, kprStatusBadArg)
        .refuses<3>(std::nanf(""), kprStatusBadArg)
        .refuses<4>(2, kprStatusBadArg)
        .refuses<4>(-1, kprStatusBadArg)
        .refuses<5>(4, kprStatusBadChannelCount)
        .refuses<5>(0, kprStatusBadChannelCount)
        .run();
    int stateSize = 77, bufferSize = 77;
    EXPECT_EQ(kpriInpaintGetSize(hole.data(), 0x7fffffff, {0x7fffffff, 2}, 1, 0, 1, &stateSize, &bufferSize),
              kprStatusSizeOverflow);
    EXPECT_EQ(stateSize, 77);

    // The mask is looked at before the checks are through: no ladder with memory that must not be touched.
    const KprSize size = {7, 3};
    KprInpaintState* state = nullptr;
    const auto init = [&](const Kpr8u* mask, KprSize roi, int maskStep, KprInpaintState** to, const float* dist,
                          int distStep, Kpr8u* block, Kpr8u* work, float radius, int method) {
        return kpriInpaintInit_8u_C1R(to, dist, distStep, mask, maskStep, roi, radius, method, block, work);
    };
    Kpr8u *const block = memory.data() + 1, *const work = buffer.data() + 1;
    EXPECT_EQ(init(nullptr, {0, 3}, 0, nullptr, nullptr, 0, nullptr, nullptr, 0, 2), kprStatusNullPtr);
    EXPECT_EQ(init(hole.data(), {7, 0}, 0, nullptr, nullptr, 0, nullptr, nullptr, 0, 2), kprStatusBadSize);
    EXPECT_EQ(init(hole.data(), size, 6, nullptr, nullptr, 0, nullptr, nullptr, 0, 2), kprStatusBadStep);
    EXPECT_EQ(init(hole.data(), size, 7, nullptr, distance.data(), 0, nullptr, nullptr, 0, 2), kprStatusNullPtr);
    EXPECT_EQ(init(hole.data(), size, 7, &state, nullptr, 0, nullptr, nullptr, 0, 2), kprStatusNullPtr);
    EXPECT_EQ(init(hole.data(), size, 7, &state, distance.data(), 27, nullptr, nullptr, 0, 2), kprStatusBadStep);
    EXPECT_EQ(init(hole.data(), size, 7, &state, distance.data(), 29, nullptr, nullptr, 0, 2),
              kprStatusStepNotMultiple);
    EXPECT_EQ(init(hole.data(), size, 7, &state, distance.data(), 28, nullptr, work, 0, 2), kprStatusNullPtr);
    EXPECT_EQ(init(hole.data(), size, 7, &state, distance.data(), 28, block, nullptr, 0, 2), kprStatusNullPtr);
    EXPECT_EQ(init(hole.data(), size, 7, &state, distance.data(), 28, block, work, 0.5F, 0), kprStatusBadArg);
    EXPECT_EQ(init(none.data(), size, 7, &state, distance.data(), 28, block, nullptr, 1, 2), kprStatusBadArg);
    EXPECT_EQ(state, nullptr);
    ASSERT_EQ(init(hole.data(), size, 7, &state, distance.data(), 28, block, work, 1, 1), kprStatusOk);

    LADDER(kpriInpaint_8u_C1R)
        .with<5>(state)
        .with<6>(work)
        .nulls({3})
        .sizes()
        .refuses<4>({7, 2}, kprStatusBadSize)
        .refuses<4>({6, 3}, kprStatusBadSize)
        .lengths({0, 1})
        .refuses<6>(nullptr, kprStatusNullPtr)
        .run();
    std::vector<Kpr8u> image(63, 1);
    EXPECT_EQ(kpriInpaint_8u_C3R(image.data(), 21, image.data(), 21, size, state, work), kprStatusBadContext);
    ASSERT_EQ(init(none.data(), size, 7, &state, distance.data(), 28, block, nullptr, 1, 1), kprStatusOk);
    EXPECT_EQ(kpriInpaint_8u_C1R(image.data(), 7, image.data() + 21, 7, size, state, nullptr), kprStatusOk);
}

}  // namespace
