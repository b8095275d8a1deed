// The caller's memory in pieces: workspaces, and the stack that never leaves its own. Searches of a row.
#include <gtest/gtest.h>

#include <limits>
#include <vector>

#include "primitives/bounded.h"
#include "primitives/rows.h"
#include "primitives/workspace.h"
#include "tests/support/guarded_image.h"

namespace {

using test::Random;

TEST(Workspace, PiecesAreAlignedAndNeverMoreThanThereIs) {
    for (std::size_t offset : {0, 1, 7, 63}) {
        alignas(64) char memory[300];
        n0::Workspace work(memory + offset, 200);
        EXPECT_EQ(static_cast<void*>(work.take<char>(1)), memory + offset);
        auto* const words = work.take<Kpr16u>(3);
        EXPECT_EQ(static_cast<void*>(words), memory + (offset + 2) / 2 * 2);
        auto* const line = work.take<float>(2, 64);
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(line) % 64, 0U);
        const auto rest = static_cast<Kpr64s>(memory + offset + 200 - reinterpret_cast<char*>(line + 2));
        EXPECT_EQ(work.left<char>(), rest);
        EXPECT_EQ(work.left<float>(), rest / 4);
        for (Kpr64s count : {rest / 8 + 1, Kpr64s{1} << 61, std::numeric_limits<Kpr64s>::max(), Kpr64s{-1}}) {
            EXPECT_EQ(work.takeIfHeld<double>(count), nullptr) << count;
        }
        EXPECT_NE(work.takeIfHeld<char>(rest), nullptr);
        EXPECT_EQ(work.takeIfHeld<char>(1), nullptr);
        EXPECT_EQ(work.left<double>(), 0);
    }
}

// The same pushes and pops of a container without bounds.
TEST(BoundedStack, GivesBackTheLast) {
    Random random;
    for (int capacity : {1, 2, 5, 64}) {
        test::GuardedBytes memory(sizeof(int) * static_cast<std::size_t>(capacity), test::Guard::After);
        n0::BoundedStack<int> bounded(reinterpret_cast<int*>(memory.data()), capacity);
        std::vector<int> model;
        for (int step = 0; step < 2000; ++step) {
            if (random.range(0, 99) < (step / 100 % 2 == 0 ? 70 : 30)) {
                const bool fits = static_cast<int>(model.size()) < capacity;
                if (fits) model.push_back(step);
                ASSERT_EQ(bounded.push(step), fits);
            } else if (!model.empty()) {
                ASSERT_EQ(bounded.pop(), model.back());
                model.pop_back();
            }
            ASSERT_EQ(bounded.count(), static_cast<Kpr64s>(model.size()));
            ASSERT_EQ(bounded.empty(), model.empty());
        }
    }
}

// What lies in lanes beyond the row is zero, and must not be found.
TEST(Rows, SearchEndsWithTheRow) {
    for (int width = 1; width < 200; ++width) {
        test::GuardedImage<Kpr8u> row({width, 1}, 1, 0, test::Guard::After);
        const auto find = [&](Kpr8u value) {
            return n0::searchRow<64>(
                width, [&](auto part, const Kpr8u* s) { return n0::equal(load(s, part), n0::broadcast(value)); },
                static_cast<const Kpr8u*>(row.data()));
        };
        row.forEach([](Kpr8u& pixel) { pixel = 9; });
        ASSERT_EQ(find(0), -1) << width;
        ASSERT_EQ(find(9), 0) << width;
        row.at(width - 1, 0) = 0;
        ASSERT_EQ(find(0), width - 1);
    }
}

}  // namespace
