#include "frame/checks.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

// Widths and steps at both ends and around every product that 64 or 32 bits just hold, by a product that is wider.
template <typename T>
void checkRowsFit() {
    constexpr Kpr64s most = std::numeric_limits<Kpr64s>::max(), least = std::numeric_limits<Kpr64s>::min();
    std::vector<Kpr64s> numbers = {most, least, 0, 7, -7};
    for (Kpr64s divisor : {1, 2, 3, 4, 6, 8, 12}) {
        for (Kpr64s limit : {most, least, Kpr64s{INT32_MAX}, Kpr64s{INT32_MIN}, Kpr64s{1} << 32}) {
            for (Kpr64s beside : {-1, 0, 1}) {
                Kpr64s number = 0;
                if (!__builtin_add_overflow(limit / divisor, beside, &number)) numbers.push_back(number);
            }
        }
    }
    for (int channels : {1, 3, 4}) {
        for (Kpr64s width : numbers) {
            for (Kpr64s step : numbers) {
                const auto bytes = static_cast<__int128>(width) * channels * static_cast<int>(sizeof(T));
                EXPECT_EQ(n0::rowsFit<T>({width, channels}, most, step),
                          step < bytes || most < bytes ? kprStatusBadStep : kprStatusOk)
                    << width << " pixels of " << channels << " times " << sizeof(T) << " bytes in " << step;
            }
        }
    }
}

TEST(Checks, RowLengthsDoNotWrap) {
    checkRowsFit<Kpr8u>();
    checkRowsFit<Kpr16u>();
    checkRowsFit<Kpr32f>();
    checkRowsFit<Kpr64f>();
}

TEST(Checks, TheFirstFailureCounts) {
    EXPECT_EQ(n0::firstFailure(kprStatusOk, kprStatusBadStep, kprStatusBadSize), kprStatusBadStep);
    EXPECT_EQ(n0::firstFailure(kprStatusOk, kprStatusOk), kprStatusOk);
    EXPECT_EQ(n0::roiHolds(KprSizeL{Kpr64s{1} << 40, std::numeric_limits<Kpr64s>::min()}), kprStatusBadSize);
}

}  // namespace
