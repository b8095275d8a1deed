// The index rule along an axis, and the ring of rows that follows it, against the oracle of borders.
#include "primitives/axis.h"

#include <gtest/gtest.h>

#include <vector>

#include "primitives/ring.h"
#include "tests/reference/border.h"
#include "tests/support/guarded_image.h"

namespace {

using reference::Border;

// Every axis up to `longest`: modes, memory on either side, and what a lone pixel is to its neighbours.
template <typename Check>
void eachAxis(int longest, Check check) {
    constexpr std::pair<Border, KprBorderType> modes[] = {{Border::Constant, kprBorderConstant},
                                                          {Border::Replicate, kprBorderReplicate},
                                                          {Border::Mirror, kprBorderMirror},
                                                          {Border::RepeatEdge, n0::kRepeatEdge}};
    for (const auto& [border, mode] : modes) {
        for (int size = 1; size <= longest; ++size) {
            for (int flags = 0; flags < 8; ++flags) {
                const bool low = (flags & 1) != 0, high = (flags & 2) != 0, reflects = (flags & 4) != 0;
                const n0::Axis axis{size, mode, low, high, reflects ? n0::LonePixel::Reflects : n0::LonePixel::Repeats};
                const auto lone = reflects ? reference::LonePixel::Reflects : reference::LonePixel::Repeats;
                check(axis, [border = border, size, low, high, lone](Kpr64s i) {
                    return reference::borderIndex(border, i, size, low, high, lone);
                });
                if (testing::Test::HasFailure()) return;
            }
        }
    }
}

TEST(Axis, ReadsWhatTheOracleReads) {
    eachAxis(9, [](n0::Axis axis, auto oracle) {
        for (Kpr64s i = -70; i < 80; ++i) {
            const Kpr64s wanted = oracle(i).value_or(n0::kConstant);
            EXPECT_EQ(axis(i), wanted) << i << " of " << axis.size << ", mode " << axis.mode;
            EXPECT_EQ(axis.isReal(i), wanted == i) << i;
        }
        EXPECT_EQ(n0::endOf(axis, 5), axis.size + (axis.highInMemory ? 5 : 0));
    });
}

// A filtered row is its index here, which the constant's is not. Windows of up to 64 rows move along in the ring's own
// pointers, taller ones are found anew for every row.
TEST(Ring, WindowsHoldTheRowsThatTheAxisNames) {
    constexpr Kpr64s constant = 1 << 20;
    for (int radius : {1, 2, 3, 7, 31, 32, 40}) {
        const auto size = static_cast<std::size_t>(2 * radius + 1);
        const auto check = [&](n0::Axis axis, auto oracle) {
            test::GuardedBytes memory(size * sizeof(Kpr64s), test::Guard::After);
            std::vector<const Kpr64s*> pointers(size);
            std::vector<int> filtered(4 * size + 400);
            n0::walkRing(
                axis, radius, n0::Ring<Kpr64s>{reinterpret_cast<Kpr64s*>(memory.data()), 1, pointers.data()},
                [&](Kpr64s y, Kpr64s* out) {
                    *out = y;
                    ++filtered[static_cast<std::size_t>(y + radius)];
                },
                [&](Kpr64s* out) { *out = constant; },
                [&](const Kpr64s* const* window, Kpr64s y) {
                    for (int i = 0; i <= 2 * radius; ++i) {
                        ASSERT_EQ(*window[i], oracle(y - radius + i).value_or(constant))
                            << "row " << y << " of " << axis.size << ", place " << i << " of radius " << radius;
                    }
                });
            for (int times : filtered) EXPECT_LE(times, 1) << "a row is filtered once";
        };
        eachAxis(5, check);
        for (int height : {64, 65, 300}) {
            for (const auto& [border, mode] : {std::pair{Border::Mirror, KprBorderType{kprBorderMirror}},
                                               {Border::Constant, KprBorderType{kprBorderConstant}}}) {
                check(n0::Axis{height, mode},
                      [border = border, height](Kpr64s i) { return reference::borderIndex(border, i, height); });
            }
        }
    }
}

}  // namespace
