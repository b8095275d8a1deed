#include <gtest/gtest.h>

#include "tests/distance/ground.h"

namespace {

using test::GuardedImage;
using test::Random;

template <typename Weight>
std::vector<Weight> randomWeights(Random& random) {
    std::vector<Weight> weights(3);
    for (Weight& weight : weights) {
        if constexpr (std::is_integral_v<Weight>) {
            weight = random.oneIn(12) ? 0x7fffffff - random.range(0, 2) : 1 + random.range(0, 1 << random.range(0, 12));
        } else {
            weight = random.oneIn(12) ? std::numeric_limits<float>::infinity()
                     : random.oneIn(12)
                         ? 3e38F
                         : static_cast<float>(random.range(1, 100000)) / static_cast<float>(1 << random.range(0, 20));
        }
    }
    return weights;
}

template <typename T, typename Weight, typename Function, typename Standard>
void check(Function function, int kernel, Standard standard) {
    Random random;
    for (KprSize size : test::distanceSizes()) {
        for (int round = 0; round < 3; ++round) {
            auto weights = randomWeights<Weight>(random);
            if (round == 0) {
                ASSERT_EQ(standard(kernel, random.range(0, 2), weights.data()), kprStatusOk);
            }
            GuardedImage<Kpr8u> src(size, random);
            GuardedImage<T> dst(size, random);
            test::drawScene(src, random);
            const auto before = src.snapshot();
            ASSERT_EQ(function(src.data(), src.step(), dst.data(), dst.step(), size, weights.data()), kprStatusOk);
            EXPECT_EQ(before, src.snapshot());
            SCOPED_TRACE(testing::PrintToString(weights));
            const auto expected = reference::chamferDistance<T>(test::fieldOf(src), kernel, weights);
            test::expectField(dst, expected);
            if constexpr (sizeof(T) == 1) {
                const auto inPlace =
                    kernel == 3 ? kpriDistanceTransform_3x3_8u_C1IR : kpriDistanceTransform_5x5_8u_C1IR;
                ASSERT_EQ(inPlace(src.data(), src.step(), size, weights.data()), kprStatusOk);
                test::expectField(src, expected);
            }
            if (testing::Test::HasFailure()) return;
        }
    }
}

TEST(Chamfer, Bytes) {
    check<Kpr8u, Kpr32s>(kpriDistanceTransform_3x3_8u_C1R, 3, kpriGetDistanceTransformMask_32s);
    check<Kpr8u, Kpr32s>(kpriDistanceTransform_5x5_8u_C1R, 5, kpriGetDistanceTransformMask_32s);
}

TEST(Chamfer, Words) {
    check<Kpr16u, Kpr32s>(kpriDistanceTransform_3x3_8u16u_C1R, 3, kpriGetDistanceTransformMask_32s);
    check<Kpr16u, Kpr32s>(kpriDistanceTransform_5x5_8u16u_C1R, 5, kpriGetDistanceTransformMask_32s);
}

TEST(Chamfer, FloatsAddStepByStep) {
    check<Kpr32f, Kpr32f>(kpriDistanceTransform_3x3_8u32f_C1R, 3, kpriGetDistanceTransformMask_32f);
    check<Kpr32f, Kpr32f>(kpriDistanceTransform_5x5_8u32f_C1R, 5, kpriGetDistanceTransformMask_32f);
}

// A knight's step that weighs less than one along the column leads nowhere in a single column, nor beyond a row's end.
TEST(Chamfer, NothingComesFromBesideTheImage) {
    for (int width : {1, 2, 63, 65}) {
        Random random;
        const KprSize size = {width, 12};
        for (const std::vector<Kpr32s>& weights : {std::vector<Kpr32s>{17, 1, 9}, {17, 40, 1}, {9, 9, 2}}) {
            GuardedImage<Kpr8u> src(size, random), dst(size, random);
            src.forEach([](Kpr8u& pixel) { pixel = 1; });
            src.at(width - 1, 11) = 0;
            ASSERT_EQ(
                kpriDistanceTransform_5x5_8u_C1R(src.data(), src.step(), dst.data(), dst.step(), size, weights.data()),
                kprStatusOk);
            test::expectField(dst, reference::chamferDistance<Kpr8u>(test::fieldOf(src), 5, weights));
        }
    }
}

template <typename Weight>
void expectWeights(KprStatus status, const std::vector<Weight>& got, const std::vector<Weight>& expected) {
    EXPECT_EQ(status, kprStatusOk);
    EXPECT_EQ(got, expected);
}

TEST(Chamfer, StandardWeights) {
    std::vector<Kpr32s> whole(3, -1);
    std::vector<Kpr32f> real(3, -1);
    expectWeights(kpriGetDistanceTransformMask_32s(5, 2, whole.data()), whole, {5, 7, 11});
    expectWeights(kpriGetDistanceTransformMask_32s(3, 2, whole.data()), whole, {2, 3, 11});
    expectWeights(kpriGetDistanceTransformMask_32s(5, 1, whole.data()), whole, {1, 2, 3});
    expectWeights(kpriGetDistanceTransformMask_32s(5, 0, whole.data()), whole, {1, 1, 2});
    expectWeights(kpriGetDistanceTransformMask(52, real.data()), real, {1, 1.4F, 2.1969F});
    expectWeights(kpriGetDistanceTransformMask(32, real.data()), real, {0.955F, 1.3693F, 2.1969F});
    expectWeights(kpriGetDistanceTransformMask_32f(3, 1, real.data()), real, {1, 2, 2.1969F});
    EXPECT_EQ(kpriGetDistanceTransformMask(43, nullptr), kprStatusBadArg);
    EXPECT_EQ(kpriGetDistanceTransformMask(42, nullptr), kprStatusNullPtr);
    for (int code : {42, 0, -32, 502, 12}) EXPECT_EQ(kpriGetDistanceTransformMask(code, real.data()), kprStatusBadSize);
    LADDER(kpriGetDistanceTransformMask_32s)
        .with<0>(3)
        .with<1>(0)
        .nulls()
        .refuses<0>(4, kprStatusBadSize)
        .refuses<0>(-3, kprStatusBadSize)
        .refuses<1>(3, kprStatusBadArg)
        .refuses<1>(-1, kprStatusBadArg)
        .run();
}

template <typename Weight, typename Function>
void checkStatuses(Function function, int kernel, const std::vector<Weight>& bad) {
    test::Ladder ladder("DistanceTransform", function);
    const std::vector<Weight> good = {2, 3, 4};
    ladder.template with<5>(good.data()).nulls().sizes().lengths({0, 1});
    if constexpr (!std::is_same_v<Function, decltype(&kpriDistanceTransform_3x3_8u_C1R)>) ladder.multiples({1});
    std::vector<std::vector<Weight>> spoilt;
    for (Weight weight : bad) {
        for (int i = 0; i < kernel / 2 + 1; ++i) {
            spoilt.push_back(good);
            spoilt.back()[static_cast<std::size_t>(i)] = weight;
        }
    }
    for (const auto& weights : spoilt) ladder.template refuses<5>(weights.data(), kprStatusBadMetric);
    ladder.run();
}

TEST(Chamfer, Statuses) {
    const std::vector<Kpr32s> integers = {0, -1, INT32_MIN};
    const std::vector<Kpr32f> floats = {0.0F, -0.0F, -1.0F, std::nanf(""), -std::numeric_limits<float>::infinity()};
    checkStatuses(kpriDistanceTransform_3x3_8u_C1R, 3, integers);
    checkStatuses(kpriDistanceTransform_5x5_8u_C1R, 5, integers);
    checkStatuses(kpriDistanceTransform_3x3_8u16u_C1R, 3, integers);
    checkStatuses(kpriDistanceTransform_5x5_8u16u_C1R, 5, integers);
    checkStatuses(kpriDistanceTransform_3x3_8u32f_C1R, 3, floats);
    checkStatuses(kpriDistanceTransform_5x5_8u32f_C1R, 5, floats);
    const Kpr32s metric[] = {2, 3, 4};
    LADDER(kpriDistanceTransform_3x3_8u_C1IR).with<3>(metric).nulls().sizes().lengths({0}).run();
    LADDER(kpriDistanceTransform_5x5_8u_C1IR).with<3>(metric).nulls().sizes().lengths({0}).run();
}

}  // namespace
