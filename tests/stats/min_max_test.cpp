#include <gtest/gtest.h>

#include <optional>

#include "tests/stats/selected.h"

namespace {

using test::Selected;

struct Found {
    float value = 0;
    KprPoint at = {0, 0};
};

// The first selected pixel that no other beats, in row-major order; NaN beats nothing and is found only among its like.
template <typename T>
std::optional<Found> expected(Selected<T>& s, bool largest) {
    std::optional<Found> best;
    for (int y = 0; y < s.size.height; ++y) {
        for (int x = 0; x < s.size.width; ++x) {
            if (!s.selects(x, y)) continue;
            const auto value = static_cast<float>(s.pixel(0, x, y));
            const bool wins = !best || (std::isnan(best->value) && !std::isnan(value)) ||
                              (largest ? value > best->value : value < best->value);
            if (wins) best = Found{value, {x, y}};
        }
    }
    return best;
}

struct Outputs {
    float min = -7, max = -7;
    KprPoint minAt = {-7, -7}, maxAt = {-7, -7};
};

void expectFound(const std::optional<Found>& found, bool valueAsked, float value, bool indexAsked, KprPoint at,
                 const std::string& what) {
    const Found wanted = found.value_or(Found{});
    if (valueAsked) {
        EXPECT_TRUE(test::same(value, wanted.value)) << what << value << ", expected " << wanted.value;
    }
    if (indexAsked) {
        EXPECT_EQ(std::pair(at.x, at.y), std::pair(wanted.at.x, wanted.at.y)) << what;
    }
}

// What the masked forms say of their mask, from their outputs.
template <typename T>
KprStatus expectedWarning(Selected<T>& s, const Outputs& out, bool min, bool max, bool minAt, bool maxAt) {
    const bool empty = s.count() == 0;
    const bool firstMasked = !s.selects(0, 0);
    bool warns = empty;
    if (minAt)
        warns = out.minAt.x == 0 && firstMasked;
    else if (maxAt)
        warns = out.maxAt.x == 0 && firstMasked;
    else if (min)
        warns = out.min == 0 && !(max && out.max != 0) && empty;
    else if (max)
        warns = true;
    return warns ? kprStatusNoMaskedPixels : kprStatusOk;
}

template <typename T, typename C1, typename C3C, typename C1M, typename C3CM>
void check(C1 c1, C3C c3c, C1M c1m, C3CM c3cm) {
    test::sweepSelected<T>([&](Selected<T>& s, test::Random& random) {
        // Few values, so that extrema come more than once; sometimes the worst there is, or NaN all over.
        const int kind = random.range(0, 5);
        s.images[0].forEach([&](T& p) {
            if (kind < 3) p = static_cast<T>(random.range(0, 3 + 100 * kind));
            if (kind == 3) p = std::numeric_limits<T>::has_infinity ? std::numeric_limits<T>::infinity() : T(-1);
            if (kind == 4 && random.oneIn(3))
                p = random.oneIn(2) ? std::numeric_limits<T>::quiet_NaN() : std::numeric_limits<T>::signaling_NaN();
        });
        const int asked = random.range(0, 15);
        const bool min = asked & 1, max = asked & 2, minAt = asked & 4, maxAt = asked & 8;
        Outputs out;
        const auto call = [&](auto function, auto... arguments) {
            return function(arguments..., min ? &out.min : nullptr, max ? &out.max : nullptr,
                            minAt ? &out.minAt : nullptr, maxAt ? &out.maxAt : nullptr);
        };
        std::ostringstream what;
        what << "asked " << asked << s << ": ";
        KprStatus status = s.coi == 0 ? call(c1m, s.src(), s.srcStep(), s.mask(), s.maskStep(), s.size)
                                      : call(c3cm, s.src(), s.srcStep(), s.mask(), s.maskStep(), s.size, s.coi);
        expectFound(expected(s, false), min, out.min, minAt, out.minAt, what.str() + "smallest ");
        expectFound(expected(s, true), max, out.max, maxAt, out.maxAt, what.str() + "largest ");
        EXPECT_EQ(status, expectedWarning(s, out, min, max, minAt, maxAt)) << what.str();

        if (!min && !max) return;
        s.maskImage.forEach([](Kpr8u& m) { m = 1; });
        out = {};
        status = s.coi == 0 ? call(c1, s.src(), s.srcStep(), s.size) : call(c3c, s.src(), s.srcStep(), s.size, s.coi);
        EXPECT_EQ(status, kprStatusOk);
        expectFound(expected(s, false), min, out.min, min && minAt, out.minAt, what.str() + "unmasked smallest ");
        expectFound(expected(s, true), max, out.max, max && maxAt, out.maxAt, what.str() + "unmasked largest ");
        EXPECT_TRUE(min || out.minAt.x == -7) << "an index without its value is not written";
        EXPECT_TRUE(max || out.maxAt.x == -7) << "an index without its value is not written";
    });
}

TEST(MinMaxIndx, Bytes) {
    check<Kpr8u>(kpriMinMaxIndx_8u_C1R, kpriMinMaxIndx_8u_C3CR, kpriMinMaxIndx_8u_C1MR, kpriMinMaxIndx_8u_C3CMR);
}
TEST(MinMaxIndx, Words) {
    check<Kpr16u>(kpriMinMaxIndx_16u_C1R, kpriMinMaxIndx_16u_C3CR, kpriMinMaxIndx_16u_C1MR, kpriMinMaxIndx_16u_C3CMR);
}
TEST(MinMaxIndx, Floats) {
    check<Kpr32f>(kpriMinMaxIndx_32f_C1R, kpriMinMaxIndx_32f_C3CR, kpriMinMaxIndx_32f_C1MR, kpriMinMaxIndx_32f_C3CMR);
}

// One selected pixel beyond the columns that a byte counts, which is at the worst value there is, or NaN: nothing but
// the search for a selected pixel finds it.
TEST(MinMaxIndx, OnePixelFarOut) {
    for (int width : {65, 256, 257, 320, 640, 1100}) {
        for (int at = 0; at < width; at += 3) {
            const auto columns = static_cast<std::size_t>(width);
            const std::vector<Kpr8u> dark(columns, 0), bright(columns, 255);
            const std::vector<Kpr32f> nothing(columns, std::numeric_limits<float>::quiet_NaN());
            std::vector<Kpr8u> mask(columns, 0);
            mask[static_cast<std::size_t>(at)] = 1;
            float min = -1, max = -1;
            KprPoint minAt = {-1, -1}, maxAt = {-1, -1};
            const KprSize size = {width, 1};
            ASSERT_EQ(
                kpriMinMaxIndx_8u_C1MR(dark.data(), width, mask.data(), width, size, &min, nullptr, nullptr, nullptr),
                kprStatusOk)
                << at << " of " << width;
            EXPECT_EQ(min, 0.0F);
            ASSERT_EQ(
                kpriMinMaxIndx_8u_C1MR(bright.data(), width, mask.data(), width, size, &min, &max, &minAt, &maxAt),
                kprStatusOk);
            EXPECT_EQ(std::tuple(min, max, minAt.x, maxAt.x), std::tuple(255.0F, 255.0F, at, at));
            ASSERT_EQ(kpriMinMaxIndx_32f_C1MR(nothing.data(), 4 * width, mask.data(), width, size, &min, &max, &minAt,
                                              &maxAt),
                      kprStatusOk);
            EXPECT_TRUE(std::isnan(min) && std::isnan(max) && minAt.x == at && maxAt.x == at) << at << " of " << width;
            mask[static_cast<std::size_t>(at)] = 0;
            EXPECT_EQ(
                kpriMinMaxIndx_8u_C1MR(dark.data(), width, mask.data(), width, size, &min, nullptr, nullptr, nullptr),
                kprStatusNoMaskedPixels);
        }
    }
}

// The inference from column 0 is part of the contract.
TEST(MinMaxIndx, FalseAlarmInColumnZero) {
    const Kpr8u src[] = {9, 9, 9, 5, 9, 9};
    const Kpr8u mask[] = {0, 0, 0, 1, 0, 0};
    float min = 0, max = 0;
    KprPoint at = {7, 7};
    EXPECT_EQ(kpriMinMaxIndx_8u_C1MR(src, 3, mask, 3, {3, 2}, &min, &max, &at, nullptr), kprStatusNoMaskedPixels);
    EXPECT_EQ(std::tuple(min, max, at.x, at.y), std::tuple(5.0F, 5.0F, 0, 1));
}

TEST(MinMaxIndx, StatusLadders) {
    const test::StatisticForm plain = {.optional = {1, 2, 3, 4}};
    const test::StatisticForm plain3 = {.channels = 3, .optional = {1, 2, 3, 4}};
    const test::StatisticForm masked = {.masked = true, .optional = {2, 3, 4, 5}};
    const test::StatisticForm masked3 = {.masked = true, .channels = 3, .optional = {2, 3, 4, 5}};
    test::statisticLadder<Kpr8u>(LADDER(kpriMinMaxIndx_8u_C1R), plain);
    test::statisticLadder<Kpr16u>(LADDER(kpriMinMaxIndx_16u_C1R), plain);
    test::statisticLadder<Kpr32f>(LADDER(kpriMinMaxIndx_32f_C1R), plain);
    test::statisticLadder<Kpr8u>(LADDER(kpriMinMaxIndx_8u_C3CR), plain3);
    test::statisticLadder<Kpr16u>(LADDER(kpriMinMaxIndx_16u_C3CR), plain3);
    test::statisticLadder<Kpr32f>(LADDER(kpriMinMaxIndx_32f_C3CR), plain3);
    test::statisticLadder<Kpr8u>(LADDER(kpriMinMaxIndx_8u_C1MR), masked);
    test::statisticLadder<Kpr16u>(LADDER(kpriMinMaxIndx_16u_C1MR), masked);
    test::statisticLadder<Kpr32f>(LADDER(kpriMinMaxIndx_32f_C1MR), masked);
    test::statisticLadder<Kpr8u>(LADDER(kpriMinMaxIndx_8u_C3CMR), masked3);
    test::statisticLadder<Kpr16u>(LADDER(kpriMinMaxIndx_16u_C3CMR), masked3);
    test::statisticLadder<Kpr32f>(LADDER(kpriMinMaxIndx_32f_C3CMR), masked3);
}

}  // namespace
