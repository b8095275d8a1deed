#include <gtest/gtest.h>

#include "tests/reference/detect.h"
#include "tests/support/guarded_image.h"
#include "tests/support/ladder.h"

namespace {

using test::GuardedImage;
using test::Random;

enum class Shape { Upright, Tilted };

// The offsets of a, b, c and d, and the number of pixels.
struct Corners {
    KprPoint at[4];
    double area;
};

Corners cornersOf(KprRect r, Shape shape) {
    const auto [x, y, w, h] = r;
    if (shape == Shape::Upright) return {{{x, y}, {x + w, y}, {x, y + h}, {x + w, y + h}}, double(w) * h};
    return {{{x - y, x + y}, {x - y - h, x + y + h}, {x - y + w, x + y + w}, {x - y + w - h, x + y + w + h}},
            2.0 * w * h};
}

// Tables that begin and end where the windows do; `first` is the column of position 0. A tilted table's rows may have
// to be longer, as the step check has it.
struct Extent {
    int first = 0;
    KprSize size = {0, 0};

    Extent(const Corners& corners, KprSize roi, KprRect r, Shape shape) {
        int last = 0, bottom = 0;
        for (KprPoint p : corners.at) {
            first = std::max(first, -p.x);
            last = std::max(last, p.x);
            bottom = std::max(bottom, p.y);
        }
        const int reach = roi.width + r.x + r.width + (shape == Shape::Tilted ? r.y + r.height - 1 : 0);
        size = {std::max(first + last + roi.width, reach), bottom + roi.height};
    }
};

const KprRect kRects[] = {{0, 0, 1, 1}, {3, 1, 24, 24}, {0, 5, 2, 7}, {1, 0, 33, 3}};

// Tables as they come from images, or any numbers.
template <typename T>
void fillTable(GuardedImage<T>& table, Random& random, bool wild) {
    table.fill(random, wild);
    if (wild || random.oneIn(3)) return;
    T sum = 0;
    table.forEach([&](T& element) { element = sum += static_cast<T>(random.range(0, 50)); });
}

template <typename T, typename S, typename D, typename Call, typename Expected>
void checkDeviations(Shape shape, Call call, Expected expected) {
    Random random;
    for (KprSize roi : test::awkwardSizes()) {
        const KprRect rect = kRects[random.range(0, 3)];
        const Corners corners = cornersOf(rect, shape);
        const Extent extent(corners, roi, rect, shape);
        GuardedImage<T> src(extent.size, random);
        GuardedImage<S> sqr(extent.size, random);
        GuardedImage<D> dst(roi, random);
        const bool wild = random.oneIn(3);
        fillTable(src, random, wild);
        fillTable(sqr, random, wild);
        const auto sources = std::pair(src.snapshot(), sqr.snapshot());
        ASSERT_EQ(call(src.data() + extent.first, src.step(), sqr.data() + extent.first, sqr.step(), dst.data(),
                       dst.step(), roi, rect),
                  kprStatusOk);
        EXPECT_EQ(sources, std::pair(src.snapshot(), sqr.snapshot()));
        test::expectImage(dst, [&](int x, int y, int) {
            T s[4];
            S q[4];
            for (int i = 0; i < 4; ++i) {
                s[i] = src.at(extent.first + x + corners.at[i].x, y + corners.at[i].y);
                q[i] = sqr.at(extent.first + x + corners.at[i].x, y + corners.at[i].y);
            }
            return expected(s, q, corners.area);
        });
        if (testing::Test::HasFailure()) return;
    }
}

template <typename T, typename Function>
void checkFloats(Function function, Shape shape) {
    checkDeviations<T, Kpr64f, Kpr32f>(shape, function, [](const T(&s)[4], const Kpr64f(&q)[4], double area) {
        return reference::deviation(s, q, area);
    });
}

template <typename Function>
void checkIntegers(Function function, Shape shape) {
    for (int scale : {0, 1, -9, 7, 140, -140, -30}) {
        checkDeviations<Kpr32s, Kpr32s, Kpr32s>(
            shape, [=](auto... arguments) { return function(arguments..., scale); },
            [=](const Kpr32s(&s)[4], const Kpr32s(&q)[4], double area) {
                return reference::deviation(s, q, area, scale);
            });
    }
}

TEST(RectStdDev, Floats) { checkFloats<Kpr32f>(kpriRectStdDev_32f_C1R, Shape::Upright); }
TEST(RectStdDev, IntegersToFloats) { checkFloats<Kpr32s>(kpriRectStdDev_32s32f_C1R, Shape::Upright); }
TEST(RectStdDev, Integers) { checkIntegers(kpriRectStdDev_32s_C1RSfs, Shape::Upright); }
TEST(RectStdDev, TiltedFloats) { checkFloats<Kpr32f>(kpriTiltedRectStdDev_32f_C1R, Shape::Tilted); }
TEST(RectStdDev, TiltedIntegersToFloats) { checkFloats<Kpr32s>(kpriTiltedRectStdDev_32s32f_C1R, Shape::Tilted); }
TEST(RectStdDev, TiltedIntegers) { checkIntegers(kpriTiltedRectStdDev_32s_C1RSfs, Shape::Tilted); }

// Deviations of an image against the definition, through both kinds of tables.
TEST(RectStdDev, OfAnImage) {
    Random random;
    const KprSize size = {37, 29};
    const KprRect rect = {1, 2, 12, 9};
    const KprSize roi = {size.width - rect.x - rect.width + 1, size.height - rect.y - rect.height + 1};
    GuardedImage<Kpr8u> image(size, random);
    image.fill(random);
    GuardedImage<Kpr32s> sum({38, 30}, random);
    GuardedImage<Kpr64f> sqr({38, 30}, random);
    ASSERT_EQ(kpriSqrIntegral_8u32s64f_C1R(image.data(), image.step(), sum.data(), sum.step(), sqr.data(), sqr.step(),
                                           size, -5, 100.5),
              kprStatusOk);
    GuardedImage<Kpr32f> dst(roi, random);
    ASSERT_EQ(
        kpriRectStdDev_32s32f_C1R(sum.data(), sum.step(), sqr.data(), sqr.step(), dst.data(), dst.step(), roi, rect),
        kprStatusOk);
    for (int y = 0; y < roi.height; ++y) {
        for (int x = 0; x < roi.width; ++x) {
            double total = 0, squares = 0;
            for (int j = 0; j < rect.height; ++j) {
                for (int i = 0; i < rect.width; ++i) {
                    const double pixel = image.at(x + rect.x + i, y + rect.y + j);
                    total += pixel;
                    squares += pixel * pixel;
                }
            }
            const double n = double(rect.width) * rect.height, mean = total / n;
            EXPECT_NEAR(dst.at(x, y), std::sqrt(squares / n - mean * mean), 1e-4);
        }
    }
}

template <typename T, typename S, typename... Rest>
void ladderOf(const char* name, KprStatus (*function)(const T*, int, const S*, int, Rest...), Shape shape) {
    const KprRect rect = shape == Shape::Tilted ? KprRect{1, 0, 2, 1} : KprRect{1, 0, 2, 2};
    const int row = 7 + 3 + (shape == Shape::Tilted ? 1 - 1 : 0);
    const int srcRow = 4 * row, sqrRow = static_cast<int>(sizeof(S)) * row;
    auto ladder = test::Ladder(name, function);
    ladder.channels({4, 4, 1}).template with<1>(srcRow).template with<3>(sqrRow).template with<7>(rect);
    ladder.nulls().sizes();
    for (int step : {srcRow - 1, 0}) ladder.template refuses<1>(step, kprStatusBadStep);
    ladder.lengths({2});
    for (int step : {sqrRow - 1, 0}) ladder.template refuses<3>(step, kprStatusBadStep);
    ladder.template refuses<1>(srcRow + 2, kprStatusStepNotMultiple).multiples({2});
    ladder.template refuses<3>(sqrRow + static_cast<int>(sizeof(S)) / 2, kprStatusStepNotMultiple);
    // As wide as the good one, so that a step which is too short for that is too short for these.
    const int flat = shape == Shape::Tilted ? 2 : 1;
    const KprRect bad[] = {{-1, 0, 4, 1}, {1, -1, 2, 2}, {3, 0, 0, 1}, {flat, 0, 2, 0}};
    for (KprRect r : bad) ladder.template refuses<7>(r, kprStatusBadSize);
    ladder.run();
}

#define DEVIATION_LADDER(function, shape) ladderOf(#function, function, shape)

TEST(RectStdDev, StatusLadders) {
    DEVIATION_LADDER(kpriRectStdDev_32f_C1R, Shape::Upright);
    DEVIATION_LADDER(kpriRectStdDev_32s32f_C1R, Shape::Upright);
    DEVIATION_LADDER(kpriRectStdDev_32s_C1RSfs, Shape::Upright);
    DEVIATION_LADDER(kpriTiltedRectStdDev_32f_C1R, Shape::Tilted);
    DEVIATION_LADDER(kpriTiltedRectStdDev_32s32f_C1R, Shape::Tilted);
    DEVIATION_LADDER(kpriTiltedRectStdDev_32s_C1RSfs, Shape::Tilted);
}

// Reaches are formed in 64 bits, and a rectangle far away is refused for the step and not read.
TEST(RectStdDev, ReachDoesNotWrap) {
    Kpr32s table[64] = {}, out[4] = {};
    const int far = INT32_MAX;
    EXPECT_EQ(kpriRectStdDev_32s_C1RSfs(table, 128, table, 128, out, 16, {2, 1}, {far, 0, far, 1}, 0),
              kprStatusBadStep);
    EXPECT_EQ(kpriTiltedRectStdDev_32s_C1RSfs(table, 128, table, 128, out, 16, {2, 1}, {far, far, far, far}, 0),
              kprStatusBadStep);
}

}  // namespace
