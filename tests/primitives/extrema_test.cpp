// The extrema of the primitives against a search pixel by pixel.
#include "primitives/extrema.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "tests/support/guarded_image.h"

namespace {

using test::GuardedImage;
using test::Random;
using test::same;

template <typename T>
using ValueForm = KprStatus (*)(const T*, int, KprSize, T*);
template <typename T>
using BothForm = KprStatus (*)(const T*, int, KprSize, T*, T*);
template <typename T>
using PositionForm = KprStatus (*)(const T*, int, KprSize, T*, int*, int*);

// The members for one element type and channel count.
template <typename T>
struct Members {
    int channels;
    ValueForm<T> min, max;
    BothForm<T> minMax;
    PositionForm<T> minIndx, maxIndx;
};

template <typename T>
struct Place {
    T value;
    int x, y;
};

template <typename T>
bool isNan(T value) {
    if constexpr (std::is_floating_point_v<T>) return std::isnan(value);
    return false;
}

// The first pixel in row-major order that none is better than; NaN are passed over.
template <typename T, typename Better>
Place<T> reference(GuardedImage<T>& image, int channel, Better better) {
    Place<T> place = {image.at(0, 0, channel), 0, 0};
    for (int y = 0; y < image.size().height; ++y) {
        for (int x = 0; x < image.size().width; ++x) {
            const T pixel = image.at(x, y, channel);
            if (isNan(pixel)) continue;
            if (isNan(place.value) || better(pixel, place.value)) place = {pixel, x, y};
        }
    }
    return place;
}

template <typename T>
void expectExtrema(const Members<T>& members, GuardedImage<T>& image) {
    const auto less = [](T a, T b) { return a < b; };
    const auto greater = [](T a, T b) { return a > b; };
    const int count = members.channels;
    T min[4], max[4], least[4], most[4], bothMin[4], bothMax[4];
    int minX[4], minY[4], maxX[4], maxY[4];
    ASSERT_EQ(members.min(image.data(), image.step(), image.size(), min), kprStatusOk);
    ASSERT_EQ(members.max(image.data(), image.step(), image.size(), max), kprStatusOk);
    ASSERT_EQ(members.minMax(image.data(), image.step(), image.size(), bothMin, bothMax), kprStatusOk);
    ASSERT_EQ(members.minIndx(image.data(), image.step(), image.size(), least, minX, minY), kprStatusOk);
    ASSERT_EQ(members.maxIndx(image.data(), image.step(), image.size(), most, maxX, maxY), kprStatusOk);
    for (int c = 0; c < count; ++c) {
        const auto low = reference(image, c, less), high = reference(image, c, greater);
        ASSERT_TRUE(same(least[c], low.value) && minX[c] == low.x && minY[c] == low.y)
            << "minimum " << +least[c] << " at " << minX[c] << ", " << minY[c] << ", expected " << +low.value << " at "
            << low.x << ", " << low.y << ", channel " << c << " of " << image.size().width << " x "
            << image.size().height;
        ASSERT_TRUE(same(most[c], high.value) && maxX[c] == high.x && maxY[c] == high.y)
            << "maximum " << +most[c] << " at " << maxX[c] << ", " << maxY[c] << ", expected " << +high.value << " at "
            << high.x << ", " << high.y << ", channel " << c << " of " << image.size().width << " x "
            << image.size().height;
        ASSERT_TRUE(same(min[c], low.value) && same(bothMin[c], low.value));
        ASSERT_TRUE(same(max[c], high.value) && same(bothMax[c], high.value));
    }
}

// Every size with pixels of several kinds: of any value, of few values so that extrema come back, of one value, and
// with one extremum of each kind at a random place.
template <typename T>
void checkMembers(const Members<T>& members) {
    Random random;
    for (KprSize size : test::allSizes()) {
        GuardedImage<T> image(size, random, members.channels);
        for (int round = 0; round < 4; ++round) {
            const T any = random.pixel<T>();
            const bool wild = random.oneIn(2);
            image.forEach([&](T& pixel) {
                if (round == 0) pixel = random.pixel<T>(wild);
                if (round == 1) pixel = static_cast<T>(random.range(7, 9));
                if (round >= 2) pixel = any;
            });
            if (round == 3) {
                for (int c = 0; c < members.channels; ++c) {
                    const int x = random.range(0, size.width - 1), y = random.range(0, size.height - 1);
                    image.at(x, y, c) = random.pixel<T>(wild);
                }
            }
            const auto before = image.snapshot();
            expectExtrema(members, image);
            EXPECT_EQ(before, image.snapshot());
            if (testing::Test::HasFailure()) return;
        }
    }
}

#define MEMBERS(type, channels)                                                      \
    Members<Kpr##type> {                                                             \
        channels, kpriMin_##type##_C##channels##R, kpriMax_##type##_C##channels##R,  \
            kpriMinMax_##type##_C##channels##R, kpriMinIndx_##type##_C##channels##R, \
            kpriMaxIndx_##type##_C##channels##R                                      \
    }

TEST(Extrema, Bytes) { checkMembers(MEMBERS(8u, 1)); }
TEST(Extrema, BytesOfThreeChannels) { checkMembers(MEMBERS(8u, 3)); }
TEST(Extrema, Words) { checkMembers(MEMBERS(16u, 1)); }
TEST(Extrema, WordsOfThreeChannels) { checkMembers(MEMBERS(16u, 3)); }
TEST(Extrema, Floats) { checkMembers(MEMBERS(32f, 1)); }
TEST(Extrema, FloatsOfThreeChannels) { checkMembers(MEMBERS(32f, 3)); }

// Rows of nothing but NaN, infinities and zeros of both signs, which tie, in every mixture.
TEST(Extrema, SpecialFloats) {
    constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
    constexpr float kSignalling = std::numeric_limits<float>::signaling_NaN();
    constexpr float kInf = std::numeric_limits<float>::infinity();
    const std::vector<float> mixtures[] = {{kNan},
                                           {kNan, kInf},
                                           {kNan, -kInf},
                                           {kSignalling},
                                           {kSignalling, kInf},
                                           {kNan, kInf, -kInf},
                                           {0.0F, -0.0F},
                                           {0.0F, -0.0F, kNan},
                                           {kNan, 3.0F},
                                           {kNan, -kNan, kSignalling, 3.0F},
                                           {-3.0F, kSignalling}};
    Random random;
    for (const auto& mixture : mixtures) {
        for (KprSize size : {KprSize{1, 1}, KprSize{3, 5}, KprSize{17, 3}, KprSize{70, 4}, KprSize{300, 2}}) {
            GuardedImage<float> one(size, random), three(size, random, 3);
            // Mostly the first kind: the others may be rows away.
            const auto draw = [&](float& pixel) {
                const int last = static_cast<int>(mixture.size()) - 1;
                pixel = mixture[static_cast<std::size_t>(random.oneIn(9) ? random.range(0, last) : 0)];
            };
            one.forEach(draw);
            three.forEach(draw);
            expectExtrema(MEMBERS(32f, 1), one);
            expectExtrema(MEMBERS(32f, 3), three);
            if (testing::Test::HasFailure()) return;
        }
    }
}

TEST(Extrema, OfAnArray) {
    Random random;
    for (KprSize size : test::allSizes()) {
        if (size.height != 1) continue;
        GuardedImage<float> array(size, random);
        array.fill(random, true);
        const auto wanted = reference(array, 0, [](float a, float b) { return a > b; });
        float max, most;
        int index;
        ASSERT_EQ(kprsMax_32f(array.data(), size.width, &max), kprStatusOk);
        ASSERT_EQ(kprsMaxIndx_32f(array.data(), size.width, &most, &index), kprStatusOk);
        EXPECT_TRUE(same(max, wanted.value) && same(most, wanted.value) && index == wanted.x) << size.width;
    }
}

template <typename T, typename Function, typename Rule>
void checkEvery(Function function, Rule rule) {
    Random random;
    for (KprSize size : test::allSizes()) {
        if (size.height != 1) continue;
        GuardedImage<T> a(size, random), b(size, random), dst(size, random);
        a.fill(random, true);
        b.fill(random, true);
        ASSERT_EQ(function(a.data(), b.data(), dst.data(), size.width), kprStatusOk);
        test::expectImage(dst, [&](int x, int, int) { return rule(a.at(x, 0), b.at(x, 0)); });
        GuardedImage<T>& inPlace = random.oneIn(2) ? a : b;
        ASSERT_EQ(function(a.data(), b.data(), inPlace.data(), size.width), kprStatusOk);
        test::expectImage(inPlace, [&](int x, int, int) { return dst.at(x, 0); });
        if (testing::Test::HasFailure()) return;
    }
    T value = 1;
    EXPECT_EQ(function(nullptr, &value, &value, 0), kprStatusNullPtr);
    EXPECT_EQ(function(&value, nullptr, &value, 1), kprStatusNullPtr);
    EXPECT_EQ(function(&value, &value, nullptr, 1), kprStatusNullPtr);
    EXPECT_EQ(function(&value, &value, &value, 0), kprStatusBadSize);
}

TEST(Extrema, OfEveryPairOfElements) {
    const auto lesser = [](auto a, auto b) { return a < b ? a : b; };
    const auto greater = [](auto a, auto b) { return a > b ? a : b; };
    checkEvery<Kpr8u>(kprsMinEvery_8u, lesser);
    checkEvery<Kpr16u>(kprsMinEvery_16u, lesser);
    checkEvery<Kpr32f>(kprsMinEvery_32f, lesser);
    checkEvery<Kpr64f>(kprsMinEvery_64f, lesser);
    checkEvery<Kpr8u>(kprsMaxEvery_8u, greater);
    checkEvery<Kpr16u>(kprsMaxEvery_16u, greater);
    checkEvery<Kpr32f>(kprsMaxEvery_32f, greater);
    checkEvery<Kpr64f>(kprsMaxEvery_64f, greater);
}

// Null pointers in every place, then an empty ROI; nothing is written.
template <typename T>
void checkStatuses(const Members<T>& members) {
    T pixels[12] = {}, value[3] = {7, 7, 7};
    int place[3] = {7, 7, 7};
    const int step = sizeof pixels;
    for (KprSize size : {KprSize{0, 1}, KprSize{1, 0}, KprSize{INT32_MIN, -1}, KprSize{1, 1}}) {
        const KprStatus bad = size.height < 1 || size.width < 1 ? kprStatusBadSize : kprStatusOk;
        for (auto form : {members.min, members.max}) {
            EXPECT_EQ(form(nullptr, step, size, value), kprStatusNullPtr);
            EXPECT_EQ(form(pixels, step, size, nullptr), kprStatusNullPtr);
            if (bad != kprStatusOk) {
                EXPECT_EQ(form(pixels, step, size, value), bad);
            }
        }
        EXPECT_EQ(members.minMax(nullptr, step, size, value, value), kprStatusNullPtr);
        EXPECT_EQ(members.minMax(pixels, step, size, nullptr, value), kprStatusNullPtr);
        EXPECT_EQ(members.minMax(pixels, step, size, value, nullptr), kprStatusNullPtr);
        if (bad != kprStatusOk) {
            EXPECT_EQ(members.minMax(pixels, step, size, value, value), bad);
        }
        for (auto form : {members.minIndx, members.maxIndx}) {
            EXPECT_EQ(form(nullptr, step, size, value, place, place), kprStatusNullPtr);
            EXPECT_EQ(form(pixels, step, size, nullptr, place, place), kprStatusNullPtr);
            EXPECT_EQ(form(pixels, step, size, value, nullptr, place), kprStatusNullPtr);
            EXPECT_EQ(form(pixels, step, size, value, place, nullptr), kprStatusNullPtr);
            if (bad != kprStatusOk) {
                EXPECT_EQ(form(pixels, step, size, value, place, place), bad);
            }
        }
    }
    for (int i = 0; i < 3; ++i) EXPECT_TRUE(value[i] == 7 && place[i] == 7);
}

TEST(Extrema, Statuses) {
    checkStatuses(MEMBERS(8u, 1));
    checkStatuses(MEMBERS(8u, 3));
    checkStatuses(MEMBERS(16u, 1));
    checkStatuses(MEMBERS(16u, 3));
    checkStatuses(MEMBERS(32f, 1));
    checkStatuses(MEMBERS(32f, 3));
    float value = 7;
    int index = 7;
    EXPECT_EQ(kprsMax_32f(nullptr, 0, &value), kprStatusNullPtr);
    EXPECT_EQ(kprsMax_32f(&value, 0, &value), kprStatusBadSize);
    EXPECT_EQ(kprsMaxIndx_32f(&value, 1, &value, nullptr), kprStatusNullPtr);
    EXPECT_EQ(kprsMaxIndx_32f(&value, -1, &value, &index), kprStatusBadSize);
    EXPECT_TRUE(value == 7 && index == 7);
}

}  // namespace
