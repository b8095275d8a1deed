// What the library brings in place of the C library's functions, under names of its own: no test could tell otherwise
// whose it calls.
#include <gtest/gtest.h>

#include <cstring>

#include "tests/support/guarded_image.h"

#define memcpy libraryMemcpy
#define memmove libraryMemmove
#define memset libraryMemset
#define memcmp libraryMemcmp
#include "frame/memory.cpp"
#undef memcpy
#undef memmove
#undef memset
#undef memcmp

namespace {

using test::Guard;
using test::GuardedBytes;
using test::Random;

TEST(Memory, CopiesFillsAndCompares) {
    Random random;
    for (std::size_t size : {0, 1, 7, 8, 64, 1000}) {
        const GuardedBytes a(size, Guard::After), b(size, Guard::Before);
        for (std::size_t i = 0; i < size; ++i) a.data()[i] = random.pixel<char>();
        EXPECT_EQ(libraryMemcpy(b.data(), a.data(), size), b.data());
        EXPECT_EQ(libraryMemcmp(a.data(), b.data(), size), 0);
        for (std::size_t at : {std::size_t{0}, size / 2, size - 1}) {
            if (size == 0) continue;
            a.data()[at] = 1;
            b.data()[at] = static_cast<char>(0x80);  // the larger as a byte, not as a signed char
            EXPECT_LT(libraryMemcmp(a.data(), b.data(), size), 0);
            EXPECT_GT(libraryMemcmp(b.data(), a.data(), size), 0);
            b.data()[at] = 1;
        }
        EXPECT_EQ(std::memcmp(a.data(), b.data(), size), 0);
        EXPECT_EQ(libraryMemset(a.data(), 0x1a5, size), a.data());
        for (std::size_t i = 0; i < size; ++i) ASSERT_EQ(a.data()[i], static_cast<char>(0xa5));
    }
}

TEST(Memory, MovesOverItself) {
    for (int distance = -20; distance <= 20; ++distance) {
        char bytes[60], expected[60];
        for (int i = 0; i < 60; ++i) bytes[i] = expected[i] = static_cast<char>(i);
        for (int i = 0; i < 20; ++i) expected[20 + distance + i] = static_cast<char>(20 + i);
        EXPECT_EQ(libraryMemmove(bytes + 20 + distance, bytes + 20, 20), bytes + 20 + distance);
        EXPECT_EQ(std::memcmp(bytes, expected, sizeof bytes), 0) << distance;
    }
}

}  // namespace
