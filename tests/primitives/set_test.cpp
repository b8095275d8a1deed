#include "primitives/kit.h"
#include "tests/support/guarded_image.h"
#include "tests/support/ladder.h"

namespace {

using test::GuardedImage;
using test::Random;

template <typename T>
void checkImage(KprStatus (*set)(T, T*, int, KprSize)) {
    Random random;
    for (KprSize size : test::allSizes()) {
        GuardedImage<T> dst(size, random);
        const T value = random.pixel<T>();
        ASSERT_EQ(set(value, dst.data(), dst.step(), size), kprStatusOk);
        test::expectImage(dst, [&](int, int, int) { return value; });
        if (testing::Test::HasFailure()) return;
    }
}

template <typename T>
void checkTuple(KprStatus (*set)(const T*, T*, int, KprSize), int channels) {
    Random random;
    for (KprSize size : test::allSizes()) {
        GuardedImage<T> dst(size, random, channels), value({1, 1}, random, channels);
        value.fill(random);
        ASSERT_EQ(set(value.data(), dst.data(), dst.step(), size), kprStatusOk);
        test::expectImage(
            dst, [&](int, int, int c) { return value.at(0, 0, c); }, channels);
        if (testing::Test::HasFailure()) return;
    }
}

// Some lengths are those of long rows, which begin at a line's boundary.
template <typename T>
void checkArray(KprStatus (*set)(T, T*, int), KprStatus (*clear)(T*, int)) {
    Random random;
    for (int len : {1, 2, 17, 63, 64, 65, 200, 1023, 1024, 1100, 5000}) {
        GuardedImage<T> dst({len, 1}, random);
        const T value = random.pixel<T>(true);
        ASSERT_EQ(set(value, dst.data(), len), kprStatusOk);
        test::expectImage(dst, [&](int, int, int) { return value; });
        ASSERT_EQ(clear(dst.data(), len), kprStatusOk);
        test::expectImage(dst, [&](int, int, int) { return T{0}; });
        if (testing::Test::HasFailure()) return;
    }
}

TEST(Set, Images) {
    checkImage(kpriSet_8u_C1R);
    checkImage(kpriSet_16s_C1R);
}

TEST(Set, ImagesOfSeveralChannels) {
    checkTuple(kpriSet_16s_C3R, 3);
    checkTuple(kpriSet_16s_C4R, 4);
    checkTuple(kpriSet_32s_C3R, 3);
}

TEST(Set, Arrays) {
    checkArray(kprsSet_8u, kprsZero_8u);
    checkArray(kprsSet_16s, kprsZero_16s);
    checkArray(kprsSet_32s, kprsZero_32s);
    checkArray(kprsSet_32f, kprsZero_32f);
}

TEST(Set, StatusLadders) {
    LADDER(kpriSet_8u_C1R).nulls().sizes().run();
    LADDER(kpriSet_16s_C1R).nulls().sizes().run();
    LADDER(kpriSet_16s_C3R).channels({3, 3, 3}).nulls().sizes().run();
    LADDER(kpriSet_16s_C4R).channels({4, 4, 4}).nulls().sizes().run();
    LADDER(kpriSet_32s_C3R).channels({3, 3, 3}).nulls().sizes().run();
    const auto set = [](auto ladder) {
        ladder.template with<2>(7).nulls().template refuses<2>(0, kprStatusBadSize).run();
    };
    set(LADDER(kprsSet_8u));
    set(LADDER(kprsSet_16s));
    set(LADDER(kprsSet_32s));
    set(LADDER(kprsSet_32f));
    const auto clear = [](auto ladder) {
        ladder.template with<1>(7).nulls().template refuses<1>(-1, kprStatusBadSize).run();
    };
    clear(LADDER(kprsZero_8u));
    clear(LADDER(kprsZero_16s));
    clear(LADDER(kprsZero_32s));
    clear(LADDER(kprsZero_32f));
}

}  // namespace
