#include <gtest/gtest.h>

#include "tests/filter/masks.h"
#include "tests/reference/measures.h"
#include "tests/support/ladder.h"

namespace {

using reference::Tensor;
using test::GuardedBytes;
using test::GuardedImage;
using test::Random;

std::vector<KprSize> measureSizes() {
    std::vector<KprSize> sizes;
    for (int height : {1, 2, 3, 6}) {
        for (int width : {1, 2, 3, 4, 5, 15, 16, 17, 31, 32, 33, 47, 64, 65}) sizes.push_back({width, height});
    }
    for (KprSize size : {KprSize{512, 2}, {513, 3}, {514, 2}, {545, 3}, {1025, 2}, {1031, 5}, {5, 60}, {67, 31}})
        sizes.push_back(size);
    return sizes;
}

struct Derivatives {
    std::vector<int> smooth, derive;
};
const Derivatives kSobel3 = {{1, 2, 1}, {-1, 0, 1}}, kSobel5 = {{1, 4, 6, 4, 1}, {-1, -2, 0, 2, 1}},
                  kScharr = {{3, 10, 3}, {-1, 0, 1}}, kCentral = {{0, 1, 0}, {-1, 0, 1}};

// One derivative: sums across, then down, zeros taking no part; exact for bytes.
template <typename Src>
float derivative(test::BorderedImage<Src>& src, int x, int y, const std::vector<int>& across,
                 const std::vector<int>& down) {
    using Sum = std::conditional_t<sizeof(Src) == 1, Kpr16s, float>;
    const int r = static_cast<int>(across.size()) / 2;
    return static_cast<float>(test::tapsOver<Sum>(down, [&](int j) {
        return test::tapsOver<Sum>(across, [&](int i) { return src.at(x + i - r, y + j - r, 0); });
    }));
}

// The products at a place of the plane.
template <typename Src>
Tensor productsAt(test::BorderedImage<Src>& src, int x, int y, const Derivatives& kernels, bool leftward) {
    std::vector<int> across = kernels.derive;
    if (leftward) std::reverse(across.begin(), across.end());
    float dx = derivative(src, x, y, across, kernels.smooth), dy = 0;
    if (&kernels == &kCentral) {
        using Sum = std::conditional_t<sizeof(Src) == 1, int, float>;
        dx = static_cast<float>(Sum{src.at(x + 1, y, 0)} - Sum{src.at(x - 1, y, 0)});
        dy = static_cast<float>(Sum{src.at(x, y + 1, 0)} - Sum{src.at(x, y - 1, 0)});
    } else {
        dy = derivative(src, x, y, kernels.smooth, kernels.derive);
    }
    return {dx * dx, dy * dy, dx * dy};
}

// The sum over a window: across, then down.
template <typename At>
Tensor windowSum(At at, int x, int y, int before, int size) {
    const auto sum = [&](auto member) {
        float total = 0;
        for (int j = 0; j < size; ++j) {
            float row = 0;
            for (int i = 0; i < size; ++i) {
                const float v = member(at(x - before + i, y - before + j));
                row = i == 0 ? v : row + v;
            }
            total = j == 0 ? row : total + row;
        }
        return total;
    };
    return {sum([](Tensor t) { return t.xx; }), sum([](Tensor t) { return t.yy; }), sum([](Tensor t) { return t.xy; })};
}

template <typename Src>
void drawImage(test::BorderedImage<Src>& src, Random& random, bool wild) {
    const int kind = random.range(0, 2);  // random pixels, few levels, large flat areas
    src.image().forEach([&](Src& pixel) {
        if (kind == 0)
            pixel = random.pixel<Src>(wild);
        else
            pixel = static_cast<Src>(kind == 1 ? random.range(0, 3) * 60 : random.oneIn(9) ? random.range(0, 255) : 77);
    });
}

struct Buffer {
    explicit Buffer(int size)
        : bytes(static_cast<std::size_t>(size), size % 2 == 0 ? test::Guard::After : test::Guard::Before) {
        std::memset(bytes.data(), 0xff, static_cast<std::size_t>(size));
    }
    Kpr8u* data() const { return reinterpret_cast<Kpr8u*>(bytes.data()); }
    GuardedBytes bytes;
};

// ---- eigenvalues

template <typename Src>
using EigenCall = KprStatus (*)(const Src*, int, Kpr32f*, int, KprSize, int, int, int, KprBorderType, Src, Kpr8u*);

// The unbordered forms as bordered ones.
template <typename Src, auto function>
KprStatus unbordered(const Src* src, int srcStep, Kpr32f* dst, int dstStep, KprSize roi, int kernel, int aperture,
                     int window, KprBorderType, Src, Kpr8u* buffer) {
    return function(src, srcStep, dst, dstStep, roi, kernel, aperture, window, buffer);
}

template <typename Src>
void checkEigen(EigenCall<Src> function, bool vectors, KprSize roi, KprBorderType word, Random& random) {
    const int kernel = random.range(0, 2), aperture = kernel == 1 ? 3 : random.range(1, 2) * 2 + 1;
    const int window = random.range(1, 2) * 2 + 1, r = aperture / 2;
    const Derivatives& kernels = kernel == 1 ? kScharr : aperture == 3 ? kSobel3 : kSobel5;
    const KprBorderType base = (word & 15) == kprBorderDefault ? KprBorderType{kprBorderReplicate} : word & 15;
    test::BorderedImage<Src> src(roi, {r, r, r, r}, base | (word & 240), random);
    drawImage(src, random, random.oneIn(3));
    GuardedImage<Kpr32f> dst(roi, random, vectors ? 6 : 1);
    int size = 0;
    const auto sizing =
        sizeof(Src) == 1 ? (vectors ? kpriEigenValsVecsGetBufferSize_8u32f_C1R : kpriMinEigenValGetBufferSize_8u32f_C1R)
                         : (vectors ? kpriEigenValsVecsGetBufferSize_32f_C1R : kpriMinEigenValGetBufferSize_32f_C1R);
    ASSERT_EQ(sizing(roi, aperture, window, &size), kprStatusOk);
    const Buffer buffer(size);
    ASSERT_EQ(function(src.data(), src.step(), dst.data(), dst.step(), roi, kernel, aperture, window, word,
                       *src.value(), buffer.data()),
              kprStatusOk);
    std::vector<Tensor> products;
    for (int y = 0; y < roi.height; ++y) {
        for (int x = 0; x < roi.width; ++x) products.push_back(productsAt(src, x, y, kernels, kernel == 0));
    }
    // Averages see the base mode on all sides, the reflection where all are in memory.
    const KprBorderType mode = (word & 240) == 240 ? KprBorderType{kprBorderMirror} : base;
    const auto at = [&](int x, int y) {
        const auto u = reference::borderIndex(reference::borderOf(mode), x, roi.width),
                   v = reference::borderIndex(reference::borderOf(mode), y, roi.height);
        const auto value = static_cast<float>(*src.value());
        return u && v ? products[static_cast<std::size_t>(*v * roi.width + *u)] : Tensor{value, value, value};
    };
    const float s = 1.0F / (aperture == 3 ? 4080.0F : 65280.0F) * (kernel == 1 ? 0.6125F : 1.0F);
    const float share = window == 3 ? 1.0F / 9.0F : 1.0F / 25.0F;
    SCOPED_TRACE(testing::Message() << "kernel " << kernel << ", aperture " << aperture << ", window " << window
                                    << ", word " << word);
    test::expectImage(
        dst,
        [&](int x, int y, int c) {
            const Tensor sum = windowSum(at, x, y, window / 2, window);
            const Tensor mean = {sum.xx * share, sum.yy * share, sum.xy * share};
            return vectors ? reference::eigenvectors(mean, s).values[c] : reference::smallerEigenvalue(mean, s);
        },
        vectors ? 6 : 1);
}

template <typename Src>
void checkEigenEverywhere(EigenCall<Src> plain, EigenCall<Src> bordered, bool vectors) {
    Random random;
    std::vector<KprBorderType> words = test::filterWords();
    for (KprBorderType word : {5U, 0x35U, 0xf2U, 0xf1U, 0x101U, 0xf03U, 0xff6U}) words.push_back(word);
    for (KprSize roi : measureSizes()) {
        checkEigen(plain, vectors, roi, kprBorderReplicate, random);
        checkEigen(bordered, vectors, roi,
                   words[static_cast<std::size_t>(random.range(0, static_cast<int>(words.size()) - 1))], random);
        if (testing::Test::HasFailure()) return;
    }
    for (KprBorderType word : words) {
        for (KprSize roi : {KprSize{1, 1}, {2, 3}, {9, 4}, {34, 6}}) {
            checkEigen(bordered, vectors, roi, word, random);
            if (testing::Test::HasFailure()) return;
        }
    }
}

TEST(CornerMeasures, SmallerEigenvalue) {
    checkEigenEverywhere<Kpr8u>(unbordered<Kpr8u, kpriMinEigenVal_8u32f_C1R>, kpriMinEigenValBorder_8u32f_C1R, false);
    checkEigenEverywhere<Kpr32f>(unbordered<Kpr32f, kpriMinEigenVal_32f_C1R>, kpriMinEigenValBorder_32f_C1R, false);
}

TEST(CornerMeasures, Eigenvectors) {
    checkEigenEverywhere<Kpr8u>(unbordered<Kpr8u, kpriEigenValsVecs_8u32f_C1R>, kpriEigenValsVecsBorder_8u32f_C1R,
                                true);
    checkEigenEverywhere<Kpr32f>(unbordered<Kpr32f, kpriEigenValsVecs_32f_C1R>, kpriEigenValsVecsBorder_32f_C1R, true);
}

// ---- Harris

template <typename Src, typename Function>
void checkHarris(Function function, KprSize roi, KprBorderType word, int window, Random& random) {
    const struct {
        int filter;
        KprMaskSize mask;
        const Derivatives& kernels;
    } filters[] = {{kprFilterSobel, 33, kSobel3},
                   {kprFilterSobel, 55, kSobel5},
                   {kprFilterScharr, 33, kScharr},
                   {kprFilterCentralDifference, 33, kCentral}};
    const auto& filter = filters[random.range(0, 3)];
    const int r = filter.mask / 22, before = (window - 1) / 2, after = window / 2;
    test::BorderedImage<Src> src(roi, {r + before, r + after, r + before, r + after}, word, random);
    drawImage(src, random, random.oneIn(3));
    GuardedImage<Kpr32f> dst(roi, random);
    int size = 0;
    ASSERT_EQ(kpriHarrisCornerGetBufferSize(roi, filter.mask, window, sizeof(Src) == 1 ? kpr8u : kpr32f, 1, &size),
              kprStatusOk);
    const Buffer buffer(size);
    const float k = 0.04F, scale = 0.37F;
    ASSERT_EQ(function(src.data(), src.step(), dst.data(), dst.step(), roi, filter.filter, filter.mask, window, k,
                       scale, word, *src.value(), buffer.data()),
              kprStatusOk);
    // The plane of products: with what the windows find in memory. Its derivatives are those of the plane's image.
    const int left = (word & kprBorderInMemLeft) != 0 ? before : 0,
              right = (word & kprBorderInMemRight) != 0 ? after : 0;
    const int top = (word & kprBorderInMemTop) != 0 ? before : 0,
              bottom = (word & kprBorderInMemBottom) != 0 ? after : 0;
    const int width = left + roi.width + right, height = top + roi.height + bottom;
    std::vector<Tensor> products;
    for (int y = -top; y < roi.height + bottom; ++y) {
        for (int x = -left; x < roi.width + right; ++x)
            products.push_back(productsAt(src, x, y, filter.kernels, false));
    }
    const KprBorderType mode = (word & 15) == 0 ? KprBorderType{kprBorderConstant} : word & 15;
    const auto at = [&](int x, int y) {
        const auto u = reference::borderIndex(reference::borderOf(mode), x + left, width);
        const auto v = reference::borderIndex(reference::borderOf(mode), y + top, height);
        return u && v ? products[static_cast<std::size_t>(*v * width + *u)] : Tensor{0, 0, 0};
    };
    const double area = double{1} * window * window;
    const auto factor = static_cast<float>(area * area * double{scale});
    const auto n = static_cast<float>(window * window);
    SCOPED_TRACE(testing::Message() << "filter " << filter.filter << ", mask " << filter.mask << ", window " << window
                                    << ", word " << word);
    test::expectImage(dst, [&](int x, int y, int) {
        const Tensor sum = windowSum(at, x, y, before, window);
        return reference::harris({sum.xx / n, sum.yy / n, sum.xy / n}, k, factor);
    });
}

template <typename Src, typename Function>
void checkHarrisEverywhere(Function function) {
    Random random;
    for (KprSize roi : measureSizes()) {
        // A mirrored side beside one in memory comes back to memory only with a ROI of some width.
        const bool small = roi.width < 4 || roi.height < 4;
        const auto word = test::anyFilterWord(random);
        const bool unclear = small && (word & 15) == kprBorderMirror && (word & 240) != 0;
        checkHarris<Src>(function, roi, unclear ? word & 15 : word, random.oneIn(2) ? 3 : 5, random);
        if (testing::Test::HasFailure()) return;
    }
    for (KprBorderType word : test::filterWords()) {
        for (int window : {1, 2, 3, 4, 5, 6, 9}) {
            checkHarris<Src>(function, {random.range(6, 40), random.range(6, 9)}, word, window, random);
            if (testing::Test::HasFailure()) return;
        }
    }
    for (KprSize roi : {KprSize{1, 1}, {2, 3}, {40, 4}}) checkHarris<Src>(function, roi, kprBorderMirror, 23, random);
}

TEST(CornerMeasures, Harris) {
    checkHarrisEverywhere<Kpr8u>(kpriHarrisCorner_8u32f_C1R);
    checkHarrisEverywhere<Kpr32f>(kpriHarrisCorner_32f_C1R);
}

// ---- sizes and checks

TEST(CornerMeasures, Sizes) {
    int size = -1;
    for (auto sizing : {kpriMinEigenValGetBufferSize_8u32f_C1R, kpriEigenValsVecsGetBufferSize_8u32f_C1R,
                        kpriMinEigenValGetBufferSize_32f_C1R, kpriEigenValsVecsGetBufferSize_32f_C1R}) {
        EXPECT_EQ(sizing({0, 1}, 4, 4, nullptr), kprStatusNullPtr);
        EXPECT_EQ(sizing({1, 0}, 3, 3, &size), kprStatusBadSize);
        EXPECT_EQ(sizing({1, 1}, 4, 3, &size), kprStatusBadSize);
        EXPECT_EQ(sizing({1, 1}, 3, 1, &size), kprStatusBadSize);
        EXPECT_EQ(sizing({20000, 20000}, 3, 3, &size), kprStatusSizeOverflow);
        EXPECT_EQ(size, -1);
        EXPECT_EQ(sizing({20, 9}, 5, 3, &size), kprStatusOk);
        EXPECT_EQ(size, 16 * 32 * 9 + (32 * 84 + 72 + 304 + 384 + 128) + 224);
        EXPECT_EQ(sizing({20, 9}, 3, 5, &size), kprStatusOk);
        EXPECT_EQ(size, 16 * 32 * 9 + (32 * 100 + 120 + 304 + 576 + 192) + 224);
        size = -1;
    }
    const auto harris = [&](KprSize roi, KprMaskSize mask, int window, KprDataType type, int channels) {
        return kpriHarrisCornerGetBufferSize(roi, mask, window, type, channels, &size);
    };
    EXPECT_EQ(kpriHarrisCornerGetBufferSize({0, 1}, 34, 0, 5, 2, nullptr), kprStatusNullPtr);
    EXPECT_EQ(harris({0, 1}, 34, 0, 5, 2), kprStatusBadSize);
    EXPECT_EQ(harris({1, 1}, 34, 0, 5, 2), kprStatusBadMaskSize);
    EXPECT_EQ(harris({1, 1}, 33, 0, 5, 2), kprStatusBadDataType);
    EXPECT_EQ(harris({1, 1}, 33, 0, kpr8u, 2), kprStatusBadChannel);
    EXPECT_EQ(harris({1, 1}, 33, 0, kpr8u, 1), kprStatusBadSize);
    EXPECT_EQ(harris({4000, 10}, 33, 1000000, kpr8u, 1), kprStatusSizeOverflow);
    EXPECT_EQ(size, -1);
}

Kpr8u scratch[1 << 16];
Kpr32f wide[6 * 21];

TEST(CornerMeasures, StatusLadders) {
    const auto eigen = [](auto ladder, bool floats, bool vectors, auto rest) {
        ladder.template with<6>(3).template with<7>(3);
        if (vectors) ladder.template with<2>(wide);
        ladder.nulls().sizes().lengths({0, 1}).multiples(floats ? std::vector<int>{0, 1} : std::vector<int>{1});
        for (int kernel : {-1, 3}) ladder.template refuses<5>(kernel, kprStatusBadArg);
        for (int side : {1, 4, 7}) {
            ladder.template refuses<6>(side, kprStatusBadSize);
            ladder.template refuses<7>(side, kprStatusBadSize);
        }
        rest(ladder);
        ladder.run();
    };
    const auto plain = [](auto& ladder) { ladder.template with<8>(scratch); };
    const auto bordered = [](auto& ladder) {
        ladder.template with<10>(scratch).template with<8>(kprBorderMirror);
        for (KprBorderType word : {0U, 2U, 0x70U, 0x1000U, 0x1001U})
            ladder.template refuses<8>(word, kprStatusBadBorder);
    };
    eigen(LADDER(kpriMinEigenVal_8u32f_C1R), false, false, plain);
    eigen(LADDER(kpriMinEigenVal_32f_C1R), true, false, plain);
    eigen(LADDER(kpriEigenValsVecs_8u32f_C1R), false, true, plain);
    eigen(LADDER(kpriEigenValsVecs_32f_C1R), true, true, plain);
    eigen(LADDER(kpriMinEigenValBorder_8u32f_C1R), false, false, bordered);
    eigen(LADDER(kpriMinEigenValBorder_32f_C1R), true, false, bordered);
    eigen(LADDER(kpriEigenValsVecsBorder_8u32f_C1R), false, true, bordered);
    eigen(LADDER(kpriEigenValsVecsBorder_32f_C1R), true, true, bordered);
    EXPECT_EQ(kpriMinEigenVal_8u32f_C1R(scratch, 7, wide, 28, {7, 3}, 1, 5, 3, scratch), kprStatusBadSize);

    const auto harris = [](auto ladder) {
        ladder.template with<5>(kprFilterSobel).template with<6>(33).template with<7>(3).template with<10>(1);
        ladder.template with<12>(scratch).nulls().sizes().multiples({1});
        for (int filter : {0, 3, 9}) ladder.template refuses<5>(filter, kprStatusBadAlgorithm);
        for (KprMaskSize mask : {0, 34}) ladder.template refuses<6>(mask, kprStatusBadMaskSize);
        for (KprBorderType word : {0U, 5U, 245U, 256U, 257U}) ladder.template refuses<10>(word, kprStatusBadBorder);
        for (int window : {0, -3}) ladder.template refuses<7>(window, kprStatusBadSize);
        ladder.template refuses<1>(-4, kprStatusBadStep).template refuses<3>(-4, kprStatusBadStep);
        ladder.run();
    };
    harris(LADDER(kpriHarrisCorner_8u32f_C1R));
    harris(LADDER(kpriHarrisCorner_32f_C1R));
    const auto harrisOf = [&](const float* src, KprSize roi, int filter) {
        return kpriHarrisCorner_32f_C1R(src, 28, wide, 28, roi, filter, 55, 3, 0, 0, 1, 0, scratch);
    };
    EXPECT_EQ(harrisOf(wide, {0, 0}, kprFilterSobel), kprStatusInPlaceUnsupported);
    for (int filter : {kprFilterScharr, kprFilterCentralDifference})
        EXPECT_EQ(harrisOf(wide + 1, {7, 3}, filter), kprStatusBadMaskSize);
}

}  // namespace
