#include <gtest/gtest.h>

#include <limits>

#include "tests/reference/stats.h"
#include "tests/support/guarded_image.h"
#include "tests/support/ladder.h"
#include "tests/support/masks.h"

namespace {

using test::GuardedImage;
using test::Random;

// A source pixel, the accumulator's, and the mask's byte (null in the plain forms) to the accumulator's new value.
using Rule = std::function<float(float a, float b, float d, const Kpr8u* m)>;

const Rule kAdd = [](float a, float, float d, const Kpr8u* m) { return reference::add(a, d, m); };
const Rule kSquare = [](float a, float, float d, const Kpr8u* m) { return reference::addProduct(a, a, d, m); };
const Rule kProduct = [](float a, float b, float d, const Kpr8u* m) { return reference::addProduct(a, b, d, m); };

// `call(src1, src2, mask, srcDst, size)` runs the member under test.
template <typename T, typename Call>
void check(const Rule& rule, bool masked, Call call) {
    Random random;
    for (KprSize size : test::allSizes()) {
        GuardedImage<T> a(size, random), b(size, random);
        GuardedImage<Kpr8u> mask(size, random);
        GuardedImage<Kpr32f> sum(size, random);
        a.fill(random, true);
        b.fill(random, true);
        sum.fill(random, true);
        test::fillMask(mask, test::anyMaskKind(random), random);
        std::vector<float> expected;
        for (int y = 0; y < size.height; ++y) {
            for (int x = 0; x < size.width; ++x) {
                expected.push_back(rule(static_cast<float>(a.at(x, y)), static_cast<float>(b.at(x, y)), sum.at(x, y),
                                        masked ? &mask.at(x, y) : nullptr));
            }
        }
        const auto inputs = std::tuple(a.snapshot(), b.snapshot(), mask.snapshot());
        ASSERT_EQ(call(a, b, mask, sum, size), kprStatusOk);
        EXPECT_EQ(inputs, std::tuple(a.snapshot(), b.snapshot(), mask.snapshot()));
        test::expectImage(sum,
                          [&](int x, int y, int) { return expected[static_cast<std::size_t>(y * size.width + x)]; });
        if (testing::Test::HasFailure()) return;
    }
}

template <typename T, typename Function, typename... Extra>
void checkPlain(const Rule& rule, Function function, Extra... extra) {
    check<T>(rule, false, [=](auto& a, auto&, auto&, auto& sum, KprSize size) {
        return function(a.data(), a.step(), sum.data(), sum.step(), size, extra...);
    });
}
template <typename T, typename Function, typename... Extra>
void checkMasked(const Rule& rule, Function function, Extra... extra) {
    check<T>(rule, true, [=](auto& a, auto&, auto& mask, auto& sum, KprSize size) {
        return function(a.data(), a.step(), mask.data(), mask.step(), sum.data(), sum.step(), size, extra...);
    });
}

TEST(Accumulate, Add) {
    checkPlain<Kpr8u>(kAdd, kpriAdd_8u32f_C1IR);
    checkPlain<Kpr16u>(kAdd, kpriAdd_16u32f_C1IR);
    checkMasked<Kpr8u>(kAdd, kpriAdd_8u32f_C1IMR);
    checkMasked<Kpr16u>(kAdd, kpriAdd_16u32f_C1IMR);
    checkMasked<Kpr32f>(kAdd, kpriAdd_32f_C1IMR);
}

TEST(Accumulate, AddSquare) {
    checkPlain<Kpr8u>(kSquare, kpriAddSquare_8u32f_C1IR);
    checkPlain<Kpr16u>(kSquare, kpriAddSquare_16u32f_C1IR);
    checkPlain<Kpr32f>(kSquare, kpriAddSquare_32f_C1IR);
    checkMasked<Kpr8u>(kSquare, kpriAddSquare_8u32f_C1IMR);
    checkMasked<Kpr16u>(kSquare, kpriAddSquare_16u32f_C1IMR);
    checkMasked<Kpr32f>(kSquare, kpriAddSquare_32f_C1IMR);
}

TEST(Accumulate, AddProduct) {
    const auto plain = [](auto function) {
        return [=](auto& a, auto& b, auto&, auto& sum, KprSize size) {
            return function(a.data(), a.step(), b.data(), b.step(), sum.data(), sum.step(), size);
        };
    };
    const auto masked = [](auto function) {
        return [=](auto& a, auto& b, auto& mask, auto& sum, KprSize size) {
            return function(a.data(), a.step(), b.data(), b.step(), mask.data(), mask.step(), sum.data(), sum.step(),
                            size);
        };
    };
    check<Kpr8u>(kProduct, false, plain(kpriAddProduct_8u32f_C1IR));
    check<Kpr16u>(kProduct, false, plain(kpriAddProduct_16u32f_C1IR));
    check<Kpr32f>(kProduct, false, plain(kpriAddProduct_32f_C1IR));
    check<Kpr8u>(kProduct, true, masked(kpriAddProduct_8u32f_C1IMR));
    check<Kpr16u>(kProduct, true, masked(kpriAddProduct_16u32f_C1IMR));
    check<Kpr32f>(kProduct, true, masked(kpriAddProduct_32f_C1IMR));
}

TEST(Accumulate, AddWeighted) {
    for (float alpha : {0.0F, 1.0F, 0.05F, -2.5F, std::numeric_limits<float>::infinity()}) {
        const Rule rule = [=](float a, float, float d, const Kpr8u* m) {
            return reference::addWeighted(a, d, alpha, m);
        };
        checkPlain<Kpr8u>(rule, kpriAddWeighted_8u32f_C1IR, alpha);
        checkPlain<Kpr16u>(rule, kpriAddWeighted_16u32f_C1IR, alpha);
        checkPlain<Kpr32f>(rule, kpriAddWeighted_32f_C1IR, alpha);
        checkMasked<Kpr8u>(rule, kpriAddWeighted_8u32f_C1IMR, alpha);
        checkMasked<Kpr16u>(rule, kpriAddWeighted_16u32f_C1IMR, alpha);
        checkMasked<Kpr32f>(rule, kpriAddWeighted_32f_C1IMR, alpha);
    }
}

TEST(Accumulate, BlendToAThirdImageOrOverASource) {
    Random random;
    for (KprSize size : test::allSizes()) {
        GuardedImage<Kpr32f> a(size, random), b(size, random), dst(size, random);
        a.fill(random, true);
        b.fill(random, true);
        ASSERT_EQ(kpriAddWeighted_32f_C1R(a.data(), a.step(), b.data(), b.step(), dst.data(), dst.step(), size, 0.3F),
                  kprStatusOk);
        test::expectImage(
            dst, [&](int x, int y, int) { return reference::addWeighted(a.at(x, y), b.at(x, y), 0.3F, nullptr); });
        auto& over = random.oneIn(2) ? a : b;
        ASSERT_EQ(kpriAddWeighted_32f_C1R(a.data(), a.step(), b.data(), b.step(), over.data(), over.step(), size, 0.3F),
                  kprStatusOk);
        test::expectImage(over, [&](int x, int y, int) { return dst.at(x, y); });
        if (HasFailure()) return;
    }
}

TEST(Accumulate, StatusLadders) {
    LADDER(kpriAdd_8u32f_C1IR).nulls().sizes().lengths({0, 1}).multiples({1}).run();
    LADDER(kpriAdd_8u32f_C1IMR).nulls().sizes().lengths({0, 1, 2}).multiples({2}).run();
    LADDER(kpriAdd_16u32f_C1IR).nulls().sizes().lengths({0}).multiples({0}).lengths({1}).multiples({1}).run();
    LADDER(kpriAdd_16u32f_C1IMR).nulls().sizes().lengths({0}).multiples({0}).lengths({1, 2}).multiples({2}).run();
    LADDER(kpriAdd_32f_C1IMR).nulls().sizes().lengths({0, 1, 2}).multiples({0, 2}).run();
    LADDER(kpriAddSquare_8u32f_C1IR).nulls().sizes().lengths({0, 1}).multiples({1}).run();
    LADDER(kpriAddSquare_8u32f_C1IMR).nulls().sizes().lengths({0, 1, 2}).multiples({2}).run();
    LADDER(kpriAddSquare_16u32f_C1IR).nulls().sizes().lengths({0}).multiples({0}).lengths({1}).multiples({1}).run();
    LADDER(kpriAddSquare_16u32f_C1IMR).nulls().sizes().lengths({0}).multiples({0}).lengths({1, 2}).multiples({2}).run();
    LADDER(kpriAddSquare_32f_C1IR).nulls().sizes().lengths({0, 1}).multiples({0, 1}).run();
    LADDER(kpriAddSquare_32f_C1IMR).nulls().sizes().lengths({0, 1, 2}).multiples({0, 2}).run();
    LADDER(kpriAddProduct_8u32f_C1IR).nulls().sizes().lengths({0, 1, 2}).multiples({2}).run();
    LADDER(kpriAddProduct_8u32f_C1IMR).nulls().sizes().lengths({0, 1, 2, 3}).multiples({3}).run();
    LADDER(kpriAddProduct_16u32f_C1IR)
        .nulls()
        .sizes()
        .lengths({0, 1})
        .multiples({0, 1})
        .lengths({2})
        .multiples({2})
        .run();
    LADDER(kpriAddProduct_16u32f_C1IMR)
        .nulls()
        .sizes()
        .lengths({0, 1})
        .multiples({0, 1})
        .lengths({2, 3})
        .multiples({3})
        .run();
    LADDER(kpriAddProduct_32f_C1IR).nulls().sizes().lengths({0, 1, 2}).multiples({0, 1, 2}).run();
    LADDER(kpriAddProduct_32f_C1IMR).nulls().sizes().lengths({0, 1, 2, 3}).multiples({0, 1, 3}).run();
    LADDER(kpriAddWeighted_8u32f_C1IR).nulls().sizes().lengths({0, 1}).multiples({1}).run();
    LADDER(kpriAddWeighted_8u32f_C1IMR).nulls().sizes().lengths({0, 1, 2}).multiples({2}).run();
    LADDER(kpriAddWeighted_16u32f_C1IR).nulls().sizes().lengths({0}).multiples({0}).lengths({1}).multiples({1}).run();
    LADDER(kpriAddWeighted_16u32f_C1IMR)
        .nulls()
        .sizes()
        .lengths({0})
        .multiples({0})
        .lengths({1, 2})
        .multiples({2})
        .run();
    LADDER(kpriAddWeighted_32f_C1IR).nulls().sizes().lengths({0, 1}).multiples({0, 1}).run();
    LADDER(kpriAddWeighted_32f_C1IMR).nulls().sizes().lengths({0, 1, 2}).multiples({0, 2}).run();
    LADDER(kpriAddWeighted_32f_C1R).nulls().sizes().lengths({0, 1, 2}).multiples({0, 1, 2}).run();
}

}  // namespace
