#include <gtest/gtest.h>

#include <functional>
#include <limits>

#include "tests/filter/ground.h"
#include "tests/reference/edges.h"
#include "tests/support/ladder.h"

namespace {

using reference::EdgePixel;
using test::GuardedBytes;
using test::GuardedImage;
using test::Random;

constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
constexpr float kInfinity = std::numeric_limits<float>::infinity();

// Sizes around the steps of rows and of words of bits, and those at which memory is short or long.
std::vector<KprSize> edgeSizes() {
    std::vector<KprSize> sizes = test::awkwardSizes();
    for (int height = 1; height <= 7; ++height) {
        for (int width = 1; width <= 9; ++width) sizes.push_back({width, height});
    }
    for (KprSize size : {KprSize{1, 500},
                         {8, 300},
                         {9, 300},
                         {5, 300},
                         {67, 131},
                         {1024, 3},
                         {1025, 1},
                         {1025, 4},
                         {1056, 2},
                         {2049, 1},
                         {2050, 5},
                         {130, 90}}) {
        sizes.push_back(size);
    }
    return sizes;
}

// A buffer of exactly the stated size at an odd address, against a guard page.
struct Buffer {
    explicit Buffer(Kpr64s size, Random& random)
        : bytes(static_cast<std::size_t>(size), random.oneIn(2) ? test::Guard::After : test::Guard::Before) {
        std::memset(bytes.data(), random.range(0, 255), static_cast<std::size_t>(size));
    }
    Kpr8u* data() const { return reinterpret_cast<Kpr8u*>(bytes.data()); }
    GuardedBytes bytes;
};

void expectMap(GuardedImage<Kpr8u>& dst, const std::vector<Kpr8u>& map) {
    test::expectImage(dst, [&](int x, int y, int) { return map[static_cast<std::size_t>(y) * dst.size().width + x]; });
}

// ---- from derivatives

struct Thresholds {
    float low, high;
};

template <typename T>
struct Form {
    const char* name;
    int norm;  // 0: no _L form
    // The magnitude before it is cut, and what it is held against.
    std::function<double(T, T)> magnitude;
    std::function<double(float)> threshold;
    bool keepsEqual = false;
};

template <typename T>
KprStatus detect(const Form<T>& form, GuardedImage<T>& dx, GuardedImage<T>& dy, GuardedImage<Kpr8u>& dst, Thresholds t,
                 Kpr8u* buffer) {
    const KprSize roi = dst.size();
    const KprSizeL roiL = {roi.width, roi.height};
    if constexpr (std::is_same_v<T, Kpr16s>) {
        return form.norm == 0 ? kpriCanny_16s8u_C1R(dx.data(), dx.step(), dy.data(), dy.step(), dst.data(), dst.step(),
                                                    roi, t.low, t.high, buffer)
                              : kpriCanny_16s8u_C1R_L(dx.data(), dx.step(), dy.data(), dy.step(), dst.data(),
                                                      dst.step(), roiL, t.low, t.high, form.norm, buffer);
    } else {
        return form.norm == 0 ? kpriCanny_32f8u_C1R(dx.data(), dx.step(), dy.data(), dy.step(), dst.data(), dst.step(),
                                                    roi, t.low, t.high, buffer)
                              : kpriCanny_32f8u_C1R_L(dx.data(), dx.step(), dy.data(), dy.step(), dst.data(),
                                                      dst.step(), roiL, t.low, t.high, form.norm, buffer);
    }
}

template <typename T>
void check(const Form<T>& form, GuardedImage<T>& dx, GuardedImage<T>& dy, Thresholds t, Random& random) {
    const KprSize roi = dx.size();
    GuardedImage<Kpr8u> dst(roi, random);
    int size = 0;
    ASSERT_EQ(kpriCannyGetSize(roi, &size), kprStatusOk);
    const Buffer buffer(size, random);
    ASSERT_EQ(detect(form, dx, dy, dst, t, buffer.data()), kprStatusOk);
    const double low = form.threshold(t.low), high = form.threshold(t.high);
    SCOPED_TRACE(testing::Message() << form.name << ", thresholds " << t.low << " and " << t.high);
    expectMap(dst, reference::edgeMap(
                       roi.width, roi.height,
                       [&](int x, int y) -> EdgePixel {
                           const T h = dx.at(x, y), v = dy.at(x, y);
                           const double m = form.magnitude(h, v);
                           return {m > low || (form.keepsEqual && m == low) ? m : 0,
                                   reference::edgeCode(static_cast<float>(h), static_cast<float>(v))};
                       },
                       high));
}

double absolute(double v) { return std::fabs(v); }
double same(float t) { return t; }
double truncated(float t) { return std::trunc(t); }
double squared(float t) { return t * t; }

const std::vector<Form<Kpr16s>>& integerForms() {
    static const std::vector<Form<Kpr16s>> forms = {
        {"16s", 0, [](double h, double v) { return absolute(h) + absolute(v); }, truncated},
        {"16s_L L1", kprNormL1, [](double h, double v) { return std::min(absolute(h) + absolute(v), 65535.0); }, same},
        {"16s_L L2", kprNormL2,
         [](double h, double v) {
             h = std::max(h, -32767.0), v = std::max(v, -32767.0);
             return h * h + v * v;
         },
         [](float t) { return std::trunc(squared(t)); }},
    };
    return forms;
}
const std::vector<Form<Kpr32f>>& floatForms() {
    const auto sum = [](float h, float v) -> double { return std::fabs(h) + std::fabs(v); };
    static const std::vector<Form<Kpr32f>> forms = {
        {"32f", 0, sum, same, true},
        {"32f_L L1", kprNormL1, sum, same},
        {"32f_L L2", kprNormL2, [](float h, float v) -> double { return std::fma(h, h, v * v); }, squared},
    };
    return forms;
}

TEST(Canny, FromIntegerDerivatives) {
    Random random;
    for (KprSize roi : edgeSizes()) {
        // Few values make ties and plateaus; the largest make sums that 16 bits do not hold.
        const int reach = std::vector<int>{2, 9, 200, 1020, 12240, 20000, 32768}[random.range(0, 6)];
        GuardedImage<Kpr16s> dx(roi, random), dy(roi, random);
        const auto draw = [&](Kpr16s& pixel) {
            pixel = static_cast<Kpr16s>(std::clamp(random.range(-reach, reach), -32768, 32767));
            if (reach == 32768 && random.oneIn(6)) pixel = -32768;
        };
        dx.forEach(draw);
        dy.forEach(draw);
        const float low = static_cast<float>(random.range(0, reach)) * 0.9F;
        for (const auto& form : integerForms()) {
            const float high = random.oneIn(4) ? low : low + static_cast<float>(random.range(0, reach)) * 0.7F;
            check(form, dx, dy, {low, high}, random);
            check(form, dx, dy, {0, 0.5F}, random);
            if (HasFailure()) return;
        }
    }
}

TEST(Canny, FromFloatDerivatives) {
    Random random;
    for (KprSize roi : edgeSizes()) {
        GuardedImage<Kpr32f> dx(roi, random), dy(roi, random);
        const int kind = random.range(0, 2);
        const auto draw = [&](Kpr32f& pixel) {
            pixel = kind == 0 ? static_cast<float>(random.range(-3, 3)) : random.pixel<float>(kind == 2);
        };
        dx.forEach(draw);
        dy.forEach(draw);
        const float low = kind == 0 ? static_cast<float>(random.range(0, 3)) : std::fabs(random.pixel<float>());
        for (const auto& form : floatForms()) {
            check(form, dx, dy, {low, low * 1.5F}, random);
            check(form, dx, dy, {0, 0}, random);
            if (HasFailure()) return;
        }
    }
}

// Pairs of derivatives that come nearest to the tangents of 22.5 and 67.5 degrees, to either side of them.
TEST(Canny, DirectionsNextToTangents) {
    Random random;
    std::vector<std::pair<int, int>> pairs;
    for (int a = 1; a <= 32768; a += a < 13000 ? 1 : 7) {
        for (const double tangent : {0.41421356237, 2.41421356237}) {
            for (int b = static_cast<int>(a * tangent) - 1; b <= a * tangent + 2; ++b)
                if (b >= 0 && b <= 32768) pairs.emplace_back(a, b);
        }
    }
    // Each pair stands in a column of its own, above and below something larger on one side only.
    constexpr int width = 1000;
    const auto rows = static_cast<int>(pairs.size() / width) + 1;
    GuardedImage<Kpr16s> dx({2 * width, 2 * rows}, random), dy({2 * width, 2 * rows}, random);
    const auto negative = [](int v) { return static_cast<Kpr16s>(-v); };
    dx.forEach([](Kpr16s& pixel) { pixel = 0; });
    dy.forEach([](Kpr16s& pixel) { pixel = 0; });
    for (std::size_t i = 0; i < pairs.size(); ++i) {
        const auto [a, b] = pairs[i];
        const int x = static_cast<int>(i % width) * 2, y = static_cast<int>(i / width) * 2;
        dx.at(x, y) = negative(a);
        dy.at(x, y) = negative(b);
        dx.at(x + 1, y) = negative(std::min(a + b + 1, 32768));  // kills a level direction, and no other
    }
    for (const auto& form : integerForms()) check(form, dx, dy, {0, 0}, random);
    // Larger ones below kill upright directions instead.
    for (int y = 0; y + 1 < 2 * rows; y += 2) {
        for (int x = 0; x < 2 * width; x += 2) {
            dx.at(x + 1, y) = 0;
            dy.at(x, y + 1) = static_cast<Kpr16s>(std::max(dx.at(x, y) + dy.at(x, y) - 1, -32768));
        }
    }
    for (const auto& form : integerForms()) check(form, dx, dy, {0, 0}, random);
}

TEST(Canny, ThresholdsThatAreNoNumbers) {
    Random random;
    GuardedImage<Kpr16s> dx({70, 5}, random), dy({70, 5}, random);
    GuardedImage<Kpr32f> fx({70, 5}, random), fy({70, 5}, random);
    const auto draw = [&](auto& pixel) {
        pixel = static_cast<std::remove_reference_t<decltype(pixel)>>(random.range(-200, 200));
    };
    dx.forEach(draw), dy.forEach(draw), fx.forEach(draw), fy.forEach(draw);
    for (Thresholds t : {Thresholds{0, kInfinity},
                         {0, kNan},
                         {kNan, 100},
                         {kNan, kNan},
                         {kInfinity, kInfinity},
                         {0, 1e9F},
                         {0, 3e38F},
                         {-0.0F, 0.0F},
                         {0.0F, -0.0F},
                         {20.5F, 20.5F}}) {
        for (const auto& form : integerForms()) check(form, dx, dy, t, random);
        for (const auto& form : floatForms()) check(form, fx, fy, t, random);
    }
}

// Two derivatives of -32768: their sum is 65536 in one form and 65535 in the other.
TEST(Canny, SumsBeyond16Bits) {
    Random random;
    GuardedImage<Kpr16s> dx({70, 5}, random), dy({70, 5}, random);
    dx.forEach([](Kpr16s& pixel) { pixel = 0; });
    dy.forEach([](Kpr16s& pixel) { pixel = 0; });
    dx.at(40, 2) = dy.at(40, 2) = -32768;
    dx.at(41, 3) = -32768;
    dy.at(41, 3) = -32767;  // along the slanted direction of the first
    for (float high : {65534.0F, 65535.0F, 65535.5F, 65536.0F}) {
        for (const auto& form : integerForms()) check(form, dx, dy, {0, high}, random);
    }
}

// ---- growth

// One strong pixel, and all others reached over a path that winds through every other row: rows of upright directions,
// joined by weaker pixels of level ones.
TEST(Canny, Serpentines) {
    Random random;
    for (KprSize roi : {KprSize{7, 31}, {63, 31}, {64, 40}, {65, 40}, {200, 61}, {1100, 21}}) {
        for (const bool upwards : {false, true}) {
            GuardedImage<Kpr16s> dx(roi, random), dy(roi, random);
            GuardedImage<Kpr8u> dst(roi, random);
            int edges = 0;
            for (int y = 0; y < roi.height; ++y) {
                for (int x = 0; x < roi.width; ++x) {
                    const int row = upwards ? roi.height - 1 - y : y;
                    const bool joint = row % 2 == 1 && x == (row % 4 == 1 ? roi.width - 1 : 0);
                    dx.at(x, y) = joint ? 60 : 0;
                    dy.at(x, y) = row % 2 == 1 ? 0 : row == 0 && x == 0 ? 200 : 100;
                    edges += row % 2 == 0 || joint ? 1 : 0;
                }
            }
            int size = 0;
            ASSERT_EQ(kpriCannyGetSize(roi, &size), kprStatusOk);
            const Buffer buffer(size, random);
            ASSERT_EQ(detect(integerForms()[0], dx, dy, dst, {50, 150}, buffer.data()), kprStatusOk);
            dst.forEach([&](Kpr8u pixel) { edges -= pixel == 255 ? 1 : 0; });
            EXPECT_EQ(edges, 0) << roi.width << " x " << roi.height;
        }
    }
}

// Mazes just about at the point of falling apart, found from their last pixel.
TEST(Canny, GrowthUpwards) {
    Random random;
    for (int round = 0; round < 60; ++round) {
        const KprSize size = {random.range(1, 300), random.range(1, 60)};
        GuardedImage<Kpr16s> dx(size, random), dy(size, random);
        dx.forEach([](Kpr16s& pixel) { pixel = 0; });
        dy.forEach(
            [&](Kpr16s& pixel) { pixel = static_cast<Kpr16s>(random.range(0, 9) < 6 ? 0 : random.range(60, 90)); });
        dy.at(size.width - 1, size.height - 1) = 200;
        check(integerForms()[0], dx, dy, {50, 150}, random);
        if (HasFailure()) return;
    }
}

// Sides beyond 65533, at which sizes change.
TEST(Canny, LongSides) {
    Random random;
    for (KprSize roi : {KprSize{1, 65532}, {1, 65533}, {3, 66000}, {66000, 2}, {65533, 1}, {70001, 3}}) {
        GuardedImage<Kpr16s> dx(roi, random), dy(roi, random);
        const auto draw = [&](Kpr16s& pixel) { pixel = static_cast<Kpr16s>(random.range(-9, 9)); };
        dx.forEach(draw), dy.forEach(draw);
        for (const auto& form : integerForms()) check(form, dx, dy, {2, 12}, random);
    }
}

// ---- from an image

struct Kernel {
    int filter;
    KprMaskSize mask;
    std::vector<int> smooth, derive;
};
const std::vector<Kernel>& kernels() {
    static const std::vector<Kernel> all = {
        {kprFilterSobel, 33, {1, 2, 1}, {-1, 0, 1}},
        {kprFilterScharr, 33, {3, 10, 3}, {-1, 0, 1}},
        {kprFilterSobel, 55, {1, 4, 6, 4, 1}, {-1, -2, 0, 2, 1}},
    };
    return all;
}

void checkBorder(const Kernel& kernel, KprSize roi, KprBorderType word, int levels, Random& random) {
    const int r = kernel.mask == 33 ? 1 : 2;
    test::BorderedImage<Kpr8u> src(roi, {r, r, r, r}, word, random);
    src.image().forEach([&](Kpr8u& pixel) { pixel = static_cast<Kpr8u>(pixel % levels * (255 / (levels - 1))); });
    const int reach = (kernel.smooth[1] == 10 ? 2000 : r == 1 ? 500 : 3000);
    const float low = random.oneIn(5) ? 0 : static_cast<float>(random.range(0, reach)) + 0.3F;
    const float high = low + static_cast<float>(random.range(0, reach));
    for (int norm : {kprNormL1, kprNormL2}) {
        GuardedImage<Kpr8u> dst(roi, random);
        int size = 0;
        ASSERT_EQ(kpriCannyBorderGetSize(roi, kernel.filter, kernel.mask, norm, &size), kprStatusOk);
        const Buffer buffer(size, random);
        ASSERT_EQ(kpriCannyBorder_8u_C1R(src.data(), src.step(), dst.data(), dst.step(), roi, kernel.filter,
                                         kernel.mask, word, *src.value(), low, high, norm, buffer.data()),
                  kprStatusOk);
        const auto at = [&](int x, int y) { return static_cast<int>(src.at(x, y, 0)); };
        SCOPED_TRACE(testing::Message() << "filter " << kernel.filter << ", mask " << kernel.mask << ", word " << word
                                        << ", norm " << norm << ", " << low << " to " << high);
        expectMap(dst, reference::edgeMap(
                           roi.width, roi.height,
                           [&](int x, int y) -> EdgePixel {
                               const int dx = reference::derivative(at, x, y, true, kernel.smooth, kernel.derive);
                               const int dy = reference::derivative(at, x, y, false, kernel.smooth, kernel.derive);
                               const auto h = static_cast<float>(std::abs(dx)), v = static_cast<float>(std::abs(dy));
                               const float m = norm == kprNormL1 ? h + v : std::sqrt(std::fma(h, h, v * v));
                               return {m > low ? m : 0, roi.height > 3 ? reference::edgeCode(static_cast<float>(dx),
                                                                                             static_cast<float>(dy))
                                                                       : reference::edgeCodeByAngle(dx, dy)};
                           },
                           high));
    }
}

std::vector<KprBorderType> edgeWords() {
    std::vector<KprBorderType> words = test::filterWords();
    std::erase_if(words, [](KprBorderType word) { return (word & 15) == kprBorderMirror; });
    return words;
}

TEST(Canny, FromAnImage) {
    Random random;
    const auto words = edgeWords();
    for (const Kernel& kernel : kernels()) {
        for (KprSize roi : edgeSizes()) {
            const auto word = words[static_cast<std::size_t>(random.range(0, static_cast<int>(words.size()) - 1))];
            checkBorder(kernel, roi, word, std::vector<int>{2, 4, 256}[random.range(0, 2)], random);
            if (HasFailure()) return;
        }
        for (KprBorderType word : words) {
            for (KprSize roi : {KprSize{1, 1}, {2, 2}, {1, 4}, {4, 5}, {37, 3}, {70, 6}}) {
                checkBorder(kernel, roi, word, 256, random);
                if (HasFailure()) return;
            }
        }
    }
}

TEST(Canny, FromAPhotographsSize) {
    Random random;
    for (const Kernel& kernel : kernels()) checkBorder(kernel, {641, 479}, kprBorderReplicate, 6, random);
}

// ---- sizes and checks

TEST(Canny, Sizes) {
    int size = -1;
    Kpr64s sizeL = -1;
    EXPECT_EQ(kpriCannyGetSize({0, 5}, nullptr), kprStatusNullPtr);
    EXPECT_EQ(kpriCannyGetSize({0, 5}, &size), kprStatusBadSize);
    EXPECT_EQ(kpriCannyGetSize({40000, 40000}, &size), kprStatusSizeOverflow);
    EXPECT_EQ(kpriCannyGetSize_L(0, 0x80000000LL, nullptr), kprStatusNullPtr);
    EXPECT_EQ(kpriCannyGetSize_L(0, 0x80000000LL, &sizeL), kprStatusSizeOverflow);
    EXPECT_EQ(kpriCannyGetSize_L(0x80000000LL, -1, &sizeL), kprStatusSizeOverflow);
    EXPECT_EQ(kpriCannyGetSize_L(7, 0, &sizeL), kprStatusBadSize);
    EXPECT_EQ(kpriCannyBorderGetSize({0, 1}, 9, 34, 9, nullptr), kprStatusNullPtr);
    EXPECT_EQ(kpriCannyBorderGetSize({0, 1}, 9, 34, 9, &size), kprStatusBadSize);
    EXPECT_EQ(kpriCannyBorderGetSize({1, 1}, 9, 34, 9, &size), kprStatusBadMaskSize);
    EXPECT_EQ(size, -1);
    EXPECT_EQ(sizeL, -1);
    for (auto [w, h, factor] : {std::array{10, 20, 5}, {65532, 3, 5}, {3, 65532, 5}, {65533, 3, 9}, {3, 65533, 9}}) {
        EXPECT_EQ(kpriCannyGetSize({w, h}, &size), kprStatusOk);
        EXPECT_EQ(size, factor * (w + 2) * (h + 2) + 16 * w + 160);
        EXPECT_EQ(kpriCannyGetSize_L(w, h, &sizeL), kprStatusOk);
        EXPECT_EQ(sizeL, size);
    }
    EXPECT_EQ(kpriCannyGetSize_L(0x7fffffff, 0x7fffffff, &sizeL), kprStatusSizeOverflow);
    EXPECT_EQ(kpriCannyBorderGetSize({10, 20}, 2, 33, 2, &size), kprStatusOk);
    EXPECT_EQ(size, 192 + 288 + 1056 + 64);  // 12 x 22
    EXPECT_EQ(kpriCannyBorderGetSize({4, 20}, 2, 55, 2, &size), kprStatusOk);
    EXPECT_EQ(size, 128 + 192 + 768 + 64 + 192);  // 8 x 24, and the image again
}

Kpr8u scratch[4096];

TEST(Canny, StatusLadders) {
    const auto plain = [](auto ladder) {
        ladder.template with<9>(scratch).template with<8>(2);
        ladder.nulls().sizes().lengths({0, 1, 2}).multiples({0, 1});
        ladder.template refuses<7>(-1, kprStatusBadArg).template refuses<7>(2.5F, kprStatusBadArg).run();
    };
    plain(LADDER(kpriCanny_16s8u_C1R));
    plain(LADDER(kpriCanny_32f8u_C1R));
    const auto large = [](auto ladder, int goodNorm, float badLow) {
        constexpr Kpr64s beyond = 0x80000000LL;
        ladder.template with<10>(scratch).template with<8>(2).template with<9>(goodNorm);
        ladder.nulls();
        for (KprSizeL size : {KprSizeL{beyond, 3}, {7, beyond}, {beyond, -1}})
            ladder.template refuses<6>(size, kprStatusSizeOverflow);
        ladder.template refuses<1>(beyond, kprStatusSizeOverflow).template refuses<3>(beyond, kprStatusSizeOverflow);
        ladder.template refuses<5>(beyond, kprStatusSizeOverflow);
        ladder.sizes().lengths({0, 1, 2}).multiples({0, 1}).template refuses<7>(badLow, kprStatusBadArg);
        ladder.template refuses<7>(2.5F, kprStatusBadArg);
        for (int norm : {0, 1, 3, 8}) ladder.template refuses<9>(norm, kprStatusBadNorm);
        ladder.run();
    };
    large(LADDER(kpriCanny_16s8u_C1R_L), kprNormL1, -1);
    large(LADDER(kpriCanny_32f8u_C1R_L), kprNormL1, -1);
    large(LADDER(kpriCanny_32f8u_C1R_L), kprNormL2, -1);  // before it is squared

    // Squared thresholds are those of the check in one form: a negative one may pass.
    Kpr16s d[21] = {};
    Kpr8u dst[21];
    const auto squares = [&](float low, float high) {
        return kpriCanny_16s8u_C1R_L(d, 14, d, 14, dst, 7, {7, 3}, low, high, kprNormL2, scratch);
    };
    EXPECT_EQ(squares(-1, 2), kprStatusOk);
    EXPECT_EQ(squares(1, -2), kprStatusOk);
    EXPECT_EQ(squares(-3, 2), kprStatusBadArg);

    test::Ladder border("kpriCannyBorder_8u_C1R", kpriCannyBorder_8u_C1R);
    border.with<5>(kprFilterSobel).with<6>(33).with<7>(kprBorderReplicate).with<10>(2).with<11>(2).with<12>(scratch);
    for (KprMaskSize mask : {0, 34, 53}) border.refuses<6>(mask, kprStatusBadMaskSize);
    border.nulls().sizes();
    for (int filter : {0, 3, 8}) border.refuses<5>(filter, kprStatusBadArg);
    for (int norm : {0, 1, 3}) border.refuses<11>(norm, kprStatusBadArg);
    border.refuses<9>(-1, kprStatusBadArg).refuses<9>(2.5F, kprStatusBadArg);
    for (KprBorderType word : {0U, 3U, 5U, 19U, 243U, 256U, 257U, 496U}) border.refuses<7>(word, kprStatusBadBorder);
    border.run();
    EXPECT_EQ(kpriCannyBorder_8u_C1R(nullptr, 0, nullptr, 0, {0, 0}, kprFilterScharr, 55, 0, 0, 0, 0, 0, nullptr),
              kprStatusBadMaskSize);
}

}  // namespace
