#include <gtest/gtest.h>

#include <numeric>

#include "tests/reference/segment.h"
#include "tests/segment/scenes.h"
#include "tests/support/ladder.h"

namespace {

using test::Guard;
using test::GuardedBytes;
using test::GuardedImage;
using test::Random;
using test::Scene;

std::vector<KprSize> sizes() {
    std::vector<KprSize> all = test::awkwardSizes();
    for (int w = 1; w <= 6; ++w) {
        for (int h = 1; h <= 6; ++h) all.push_back({w, h});
    }
    for (KprSize size : {KprSize{67, 131}, {5, 300}, {300, 1}, {129, 65}}) all.push_back(size);
    return all;
}

template <typename T>
reference::Picture<T> copied(GuardedImage<T>& image) {
    reference::Picture<T> copy{image.size(), 1, {}};
    image.forEach([&](T& p) { copy.pixels.push_back(p); });
    return copy;
}

template <typename T>
void expectPicture(GuardedImage<T>& image, const std::vector<T>& expected) {
    test::expectImage(image, [&](int x, int y, int) { return expected[std::size_t(y) * image.size().width + x]; });
}

template <typename Dst, typename Src, typename Call>
void checkLabels(KprSize size, Scene scene, Random& random, int limit, Call call) {
    const int norm = random.range(0, 1);
    GuardedImage<Src> src(size, random);
    GuardedImage<Dst> dst(size, random);
    const auto map = drawScene(scene, size, random);
    for (std::size_t i = 0; i < map.size(); ++i) {
        const int x = int(i) % size.width, y = int(i) / size.width;
        src.at(x, y) = static_cast<Src>(map[i] ? random.range(1, 255) : 0);
    }
    const auto numbers = reference::components(
        copied(src), norm == 0 ? 8 : 4, [](Src p) { return p != 0; }, [](Src, Src) { return true; });
    const int low = random.range(1, 30), high = random.oneIn(3) ? low : std::min(limit - 1, low + random.range(0, 300));
    std::vector<Dst> expected;
    for (int n : numbers) expected.push_back(static_cast<Dst>(n == 0 ? 0 : low + (n - 1) % (high - low + 1)));
    int bytes = 0, count = -1;
    ASSERT_EQ(kpriLabelMarkersGetBufferSize_8u_C1R(size, &bytes), kprStatusOk);
    const GuardedBytes buffer(std::size_t(bytes), random.oneIn(4) ? Guard::Before : Guard::After);
    ASSERT_EQ(call(src, dst, low, high, norm, &count, reinterpret_cast<Kpr8u*>(buffer.data())), kprStatusOk);
    EXPECT_EQ(count, numbers.empty() ? 0 : *std::max_element(numbers.begin(), numbers.end()));
    if constexpr (std::is_same_v<Src, Dst>)
        expectPicture(src, expected);
    else
        expectPicture(dst, expected);
}

TEST(LabelMarkers, NumbersMarkersInRasterOrder) {
    Random random;
    for (KprSize size : sizes()) {
        for (int scene = 0; scene < int(Scene::Count); ++scene) {
            checkLabels<Kpr8u, Kpr8u>(size, Scene(scene), random, 255, [](auto& image, auto&, auto... a) {
                return kpriLabelMarkers_8u_C1IR(image.data(), image.step(), image.size(), a...);
            });
            checkLabels<Kpr16u, Kpr16u>(size, Scene(scene), random, 65535, [](auto& image, auto&, auto... a) {
                return kpriLabelMarkers_16u_C1IR(image.data(), image.step(), image.size(), a...);
            });
            checkLabels<Kpr32s, Kpr8u>(size, Scene(scene), random, 0x7fffffff, [](auto& src, auto& dst, auto... a) {
                return kpriLabelMarkers_8u32s_C1R(src.data(), src.step(), dst.data(), dst.step(), src.size(), a...);
            });
            if (testing::Test::HasFailure()) FAIL() << "scene " << scene;
        }
    }
}

TEST(LabelMarkers, Ladders) {
    Kpr8u buffer[1000];
    int count = 0;
    const auto labels = [&](auto& ladder, auto position, int limit) {
        constexpr int first = decltype(position)::value;
        ladder.template with<first>(1).template with<first + 1>(limit - 1).template with<first + 2>(1);
        ladder.template with<first + 3>(&count).template with<first + 4>(buffer);
    };
    const auto refusals = [&](auto& ladder, auto position, int limit) {
        constexpr int first = decltype(position)::value;
        for (int low : {0, -1, INT32_MIN}) ladder.template refuses<first>(low, kprStatusBadArg);
        for (int high : {0, -5}) ladder.template refuses<first + 1>(high, kprStatusBadArg);
        ladder.template refuses<first + 1>(limit, kprStatusBadArg);
        for (int norm : {-1, 2}) ladder.template refuses<first + 2>(norm, kprStatusBadArg);
        ladder.run();
    };
    using At3 = std::integral_constant<int, 3>;
    using At5 = std::integral_constant<int, 5>;
    auto bytes = LADDER(kpriLabelMarkers_8u_C1IR);
    labels(bytes, At3{}, 255);
    refusals(bytes.nulls().sizes().lengths({0}), At3{}, 255);
    auto words = LADDER(kpriLabelMarkers_16u_C1IR);
    labels(words, At3{}, 65535);
    refusals(words.nulls().sizes().lengths({0}).multiples({0}), At3{}, 65535);
    auto wide = LADDER(kpriLabelMarkers_8u32s_C1R);
    labels(wide, At5{}, 0x7fffffff);
    refusals(wide.nulls().sizes().lengths({0, 1}).multiples({1}), At5{}, 0x7fffffff);
    LADDER(kpriLabelMarkersGetBufferSize_8u_C1R).nulls().sizes().run();
    LADDER(kpriLabelMarkersGetBufferSize_16u_C1R).nulls().sizes().run();
    LADDER(kpriLabelMarkersGetBufferSize_8u32s_C1R).nulls().sizes().run();
}

template <typename T, typename Function>
void checkBounds(Function function, T wall) {
    Random random;
    for (KprSize size : sizes()) {
        for (int round = 0; round < 6; ++round) {
            GuardedImage<T> image(size, random);
            const int labels = random.range(1, 6);
            const bool stripes = random.oneIn(2);  // long stretches in which each pixel differs from the one before
            int i = 0;
            image.forEach([&](T& p) {
                const T label = static_cast<T>(stripes && !random.oneIn(30) ? ++i % 3 : random.range(0, labels));
                p = random.oneIn(8) ? wall : label;
            });
            auto expected = copied(image);
            const int norm = round & 1;
            reference::boundSegments(expected, wall, norm == 0);
            ASSERT_EQ(function(image.data(), image.step(), size, wall, norm), kprStatusOk);
            expectPicture(image, expected.pixels);
            if (testing::Test::HasFailure()) return;
        }
    }
    test::Ladder ladder("BoundSegments", function);
    ladder.template with<4>(1).nulls().sizes().lengths({0});
    if (sizeof(T) > 1) ladder.multiples({0});
    ladder.template refuses<4>(2, kprStatusBadArg).template refuses<4>(-1, kprStatusBadArg).run();
}

TEST(BoundSegments, WallsInRasterOrder) {
    checkBounds<Kpr8u>(kpriBoundSegments_8u_C1IR, 255);
    checkBounds<Kpr8u>(kpriBoundSegments_8u_C1IR, 1);
    checkBounds<Kpr16u>(kpriBoundSegments_16u_C1IR, 65535);
    checkBounds<Kpr16u>(kpriBoundSegments_16u_C1IR, 0);
}

template <typename T, typename Function>
void markAndCompare(Function function, KprDataType type, GuardedImage<T>& image, T value, int most, T difference,
                    Random& random) {
    const auto before = copied(image);
    const auto numbers = reference::components(
        before, 4, [=](T p) { return !(p == value); },
        [=](T a, T b) {
            if constexpr (std::is_floating_point_v<T>) return std::abs(a - b) <= difference;
            return std::abs(int(a) - int(b)) <= int(difference);
        });
    std::vector<int> sizeOf(numbers.size() + 1, 0);
    for (int n : numbers) ++sizeOf[std::size_t(n)];
    std::vector<T> expected = before.pixels;
    for (std::size_t i = 0; i < expected.size(); ++i) {
        if (numbers[i] != 0 && sizeOf[std::size_t(numbers[i])] <= most) expected[i] = value;
    }
    int bytes = 0;
    ASSERT_EQ(kpriMarkSpecklesGetBufferSize(image.size(), type, 1, &bytes), kprStatusOk);
    const GuardedBytes buffer(std::size_t(bytes), random.oneIn(4) ? Guard::Before : Guard::After);
    ASSERT_EQ(function(image.data(), image.step(), image.size(), value, most, difference, 1,
                       reinterpret_cast<Kpr8u*>(buffer.data())),
              kprStatusOk);
    expectPicture(image, expected);
}

template <typename T, typename Function>
void checkSpeckles(Function function, KprDataType type) {
    Random random;
    for (KprSize size : sizes()) {
        for (int round = 0; round < 6; ++round) {
            GuardedImage<T> image(size, random);
            const int levels = random.range(1, 12), most = random.range(-1, 20);
            const bool wild = random.oneIn(3);
            T slope = 10;
            image.forEach([&](T& p) {
                slope = static_cast<T>(slope + random.range(0, 1));
                p = wild && random.oneIn(3) ? random.pixel<T>(true)
                    : round % 2 == 0        ? static_cast<T>(10 + random.range(0, levels))
                                            : slope;
            });
            const T value = wild && random.oneIn(4) ? random.pixel<T>(true) : static_cast<T>(10 + random.range(0, 3));
            const T difference = wild && random.oneIn(4) ? random.pixel<T>(true) : static_cast<T>(random.range(0, 3));
            markAndCompare(function, type, image, value, most, difference, random);
            if (testing::Test::HasFailure()) return;
        }
    }
    Kpr8u buffer[400];
    test::Ladder ladder("MarkSpeckles", function);
    ladder.template with<4>(5).template with<6>(1).template with<7>(buffer).nulls().sizes();
    if (sizeof(T) > 1) ladder.multiples({0});
    for (int norm : {0, 2, -1}) ladder.template refuses<6>(norm, kprStatusBadNorm);
    ladder.run();
}

TEST(MarkSpeckles, SmallRegionsTakeTheValue) {
    checkSpeckles<Kpr8u>(kpriMarkSpeckles_8u_C1IR, kpr8u);
    checkSpeckles<Kpr16u>(kpriMarkSpeckles_16u_C1IR, kpr16u);
    checkSpeckles<Kpr16s>(kpriMarkSpeckles_16s_C1IR, kpr16s);
    checkSpeckles<Kpr32f>(kpriMarkSpeckles_32f_C1IR, kpr32f);
}

// Zeros of either sign are no region beside the value 0, and stay what they are.
TEST(MarkSpeckles, ZerosKeepTheirSigns) {
    float image[] = {-0.0F, 5, 0.0F, 7, -0.0F};
    Kpr8u buffer[13 * 5 + 64];
    ASSERT_EQ(kpriMarkSpeckles_32f_C1IR(image, sizeof image, {5, 1}, 0, 3, 1, 1, buffer), kprStatusOk);
    EXPECT_TRUE(std::signbit(image[0]) && !std::signbit(image[1]) && !std::signbit(image[2]) && std::signbit(image[4]));
    EXPECT_EQ(image[1] + image[3], 0);
}

TEST(MarkSpeckles, BufferSizes) {
    int bytes = 0;
    ASSERT_EQ(kpriMarkSpecklesGetBufferSize({641, 479}, kpr32f, 1, &bytes), kprStatusOk);
    EXPECT_EQ(bytes, 13 * 641 * 479 + 64);
    LADDER(kpriMarkSpecklesGetBufferSize)
        .with<1>(kpr8u)
        .with<2>(1)
        .nulls()
        .sizes()
        .refuses<1>(kpr32s, kprStatusBadDataType)
        .refuses<1>(kpr1u, kprStatusBadDataType)
        .refuses<2>(3, kprStatusBadChannel)
        .run();
}

}  // namespace
