#include "frame/cache.h"

#include <cstring>

#include "primitives/kit.h"
#include "tests/support/cache.h"
#include "tests/support/guarded_image.h"

namespace {

using test::cacheQuery;
using test::CacheQuery;
using test::Random;

// With a cache that is smaller than the data, and with one whose size is not to be had.
const CacheQuery kAnswers[] = {{kprStatusOk, 0x10000}, {kprStatusFail, 0x10000}, {kprStatusOk, 0}};

class PastTheCache : public testing::Test {
  protected:
    ~PastTheCache() override { cacheQuery = {}; }

    // Calls `run` under every answer, and expects it to ask.
    template <typename Run>
    void eachAnswer(Run run) {
        for (const CacheQuery& answer : kAnswers) {
            cacheQuery = answer;
            run();
            EXPECT_GT(cacheQuery.asked, 0);
        }
    }

    Random random;
};

// Sizes are those from which on the question is asked.
TEST_F(PastTheCache, Arrays) {
    constexpr int filled = 0x200000 / sizeof(Kpr16s);
    constexpr int copied = 4194304;
    eachAnswer([&] {
        test::GuardedImage<Kpr16s> words({filled + 1, 1}, random);
        ASSERT_EQ(kprsSet_16s(-77, words.data(), filled + 1), kprStatusOk);
        test::expectImage(words, [](int, int, int) { return Kpr16s{-77}; });
        test::GuardedImage<Kpr8u> src({copied + 1, 1}, random), dst({copied + 1, 1}, random);
        src.fill(random);
        ASSERT_EQ(kprsCopy_8u(src.data(), dst.data(), copied + 1), kprStatusOk);
        EXPECT_EQ(std::memcmp(src.data(), dst.data(), copied + 1), 0);

        cacheQuery.asked = 0;
        kprsSet_16s(0, words.data(), filled);
        kprsCopy_8u(src.data(), dst.data(), copied);
        EXPECT_EQ(cacheQuery.asked, 0);
        cacheQuery.asked = 1;
    });
}

TEST_F(PastTheCache, Images) {
    eachAnswer([&] {
        test::GuardedImage<Kpr8u> set({3001, 2101}, 1, 9, test::Guard::After);
        ASSERT_EQ(kpriSet_8u_C1R(9, set.data(), set.step(), set.size()), kprStatusOk);
        test::expectImage(set, [](int, int, int) { return Kpr8u{9}; });
    });
    // narrow rows too, which may end before the first boundary
    for (KprSize size : {KprSize{1999, 801}, KprSize{19, 90001}}) {
        eachAnswer([&] {
            test::GuardedImage<Kpr16s> src(size, random), dst(size, random);
            src.fill(random);
            ASSERT_EQ(kpriCopy_16s_C1R(src.data(), src.step(), dst.data(), dst.step(), size), kprStatusOk);
            test::expectImage(dst, [&](int x, int y, int) { return src.at(x, y); });
            test::GuardedImage<Kpr32f> floats(size, random);
            const auto* words = reinterpret_cast<const Kpr16u*>(src.data());
            ASSERT_EQ(kpriConvert_16u32f_C1R(words, src.step(), floats.data(), floats.step(), size), kprStatusOk);
            test::expectImage(floats,
                              [&](int x, int y, int) { return static_cast<float>(static_cast<Kpr16u>(src.at(x, y))); });
        });
    }
}

// The most that is written without a question, in pixels or bytes as each has it, and one more.
TEST_F(PastTheCache, ImagesAreAskedAboutAboveTheirLimits) {
    test::GuardedBytes memory(2 * 6291457, test::Guard::After);
    const auto asks = [&](auto call) {
        cacheQuery = {kprStatusOk, INT32_MAX};
        EXPECT_EQ(call(), kprStatusOk);
        return cacheQuery.asked != 0;
    };
    auto* const bytes = reinterpret_cast<Kpr8u*>(memory.data());
    auto* const words = reinterpret_cast<Kpr16s*>(memory.data());
    for (int beyond : {0, 1}) {
        const KprSize filled = {6291456 + beyond, 1}, copied = {0x300000 + beyond, 1};
        EXPECT_EQ(asks([&] { return kpriSet_8u_C1R(1, bytes, 1, filled); }), beyond == 1);
        EXPECT_EQ(asks([&] { return kpriSet_16s_C1R(1, words, 1, filled); }), beyond == 1);
        EXPECT_EQ(asks([&] { return kpriCopy_8u_C1R(bytes, 1, bytes, 1, copied); }), beyond == 1);
        const KprSize converted = {87381 + beyond, 1};  // 6 bytes a pixel
        std::vector<Kpr32f> floats(87382);
        const auto* const src = reinterpret_cast<const Kpr16u*>(words);
        EXPECT_EQ(asks([&] { return kpriConvert_16u32f_C1R(src, 1, floats.data(), 1, converted); }), beyond == 1);
    }
}

// A conversion takes any step from 1 on, so that rows may begin between the multiples of an element's size.
TEST_F(PastTheCache, RowsThatLieOddly) {
    constexpr KprSize size = {1999, 801};
    struct Place {
        int first, gap;
    };
    for (Place at : {Place{0, 1}, Place{0, 2}, Place{1, 0}, Place{3, 4}}) {
        eachAnswer([&] {
            test::GuardedImage<Kpr16u> src(size, random);
            src.fill(random);
            const int step = size.width * 4 + at.gap;
            const test::GuardedBytes memory(static_cast<std::size_t>(at.first + step * size.height - at.gap),
                                            test::Guard::After);
            char* dst = memory.data() + at.first;
            ASSERT_EQ(kpriConvert_16u32f_C1R(src.data(), src.step(), reinterpret_cast<Kpr32f*>(dst), step, size),
                      kprStatusOk);
            for (int y = 0; y < size.height; ++y) {
                for (int x = 0; x < size.width; ++x) {
                    Kpr32f pixel;
                    std::memcpy(&pixel, dst + std::ptrdiff_t{y} * step + 4 * x, sizeof pixel);
                    ASSERT_EQ(pixel, static_cast<float>(src.at(x, y))) << x << ", " << y << ", gap " << at.gap;
                }
            }
        });
    }
}

TEST_F(PastTheCache, SizeIsWhatTheQueryWrote) {
    for (const CacheQuery& answer : kAnswers) {
        cacheQuery = answer;
        EXPECT_EQ(owncvGetCacheSize(), answer.size);
    }
    EXPECT_EQ(owncvGetMaxNumThreads(), 1);
}

}  // namespace
