#include "primitives/kit.h"
#include "tests/support/guarded_image.h"
#include "tests/support/ladder.h"

namespace {

using test::GuardedImage;
using test::Random;

// Of `channels`, the first `copied`; the others keep their values.
template <typename T, typename Step, typename Size>
void checkImage(KprStatus (*copy)(const T*, Step, T*, Step, Size), int channels, int copied) {
    Random random;
    for (KprSize size : test::allSizes()) {
        GuardedImage<T> src(size, random, channels), dst(size, random, channels),
            before(size, channels, 0, test::Guard::After);
        src.fill(random, true);
        dst.fill(random, true);
        for (int y = 0; y < size.height; ++y) std::copy_n(dst.row(y), size.width * channels, before.row(y));
        const auto source = src.snapshot();
        ASSERT_EQ(copy(src.data(), src.step(), dst.data(), dst.step(), {size.width, size.height}), kprStatusOk);
        EXPECT_EQ(source, src.snapshot());
        test::expectImage(
            dst, [&](int x, int y, int c) { return (c < copied ? src : before).at(x, y, c); }, channels);
        if (testing::Test::HasFailure()) return;
    }
}

template <typename T>
void checkArray(KprStatus (*copy)(const T*, T*, int)) {
    Random random;
    for (int len : {1, 17, 63, 64, 65, 200, 1023, 1024, 1100, 5000}) {
        GuardedImage<T> src({len, 1}, random), dst({len, 1}, random);
        src.fill(random, true);
        ASSERT_EQ(copy(src.data(), dst.data(), len), kprStatusOk);
        test::expectImage(dst, [&](int x, int, int) { return src.at(x, 0); });
        if (testing::Test::HasFailure()) return;
    }
}

TEST(Copy, Images) {
    checkImage(kpriCopy_8u_C1R, 1, 1);
    checkImage(kpriCopy_8u_C3R, 3, 3);
    checkImage(kpriCopy_8u_C4R, 4, 4);
    checkImage(kpriCopy_16s_C1R, 1, 1);
    checkImage(kpriCopy_16s_C3R, 3, 3);
    checkImage(kpriCopy_16s_C4R, 4, 4);
    checkImage(kpriCopy_16u_C1R, 1, 1);
    checkImage(kpriCopy_32f_C1R, 1, 1);
    checkImage(kpriCopy_32f_C3R, 3, 3);
    checkImage(kpriCopy_32f_C4R, 4, 4);
    checkImage(kpriCopy_8u_C1R_L, 1, 1);
}

TEST(Copy, ThreeOfFourChannels) {
    checkImage(kpriCopy_8u_AC4R, 4, 3);
    checkImage(kpriCopy_16s_AC4R, 4, 3);
    checkImage(kpriCopy_32f_AC4R, 4, 3);
}

// Its fourth channel may be another thread's to write: here the last pixel's lies on an inaccessible page. The widths
// put that pixel into whole vectors and into a row's last part.
template <typename T>
void checkFourthIsNotTouched(KprStatus (*copy)(const T*, int, T*, int, KprSize)) {
    Random random;
    for (int width : {1, 4, 5, 16, 32, 37, 64}) {
        GuardedImage<T> src({width, 1}, random, 4);
        src.fill(random);
        test::GuardedBytes dst(sizeof(T) * static_cast<std::size_t>(4 * width - 1), test::Guard::After);
        auto* pixels = reinterpret_cast<T*>(dst.data());
        ASSERT_EQ(copy(src.data(), src.step(), pixels, src.step(), {width, 1}), kprStatusOk);
        for (int i = 0; i < 4 * width - 1; ++i) ASSERT_TRUE(test::same(pixels[i], i % 4 == 3 ? T{0} : src.row(0)[i]));
    }
}

TEST(Copy, TouchesNoFourthChannel) {
    checkFourthIsNotTouched(kpriCopy_8u_AC4R);
    checkFourthIsNotTouched(kpriCopy_16s_AC4R);
    checkFourthIsNotTouched(kpriCopy_32f_AC4R);
}

TEST(Copy, Arrays) {
    checkArray(kprsCopy_8u);
    checkArray(kprsCopy_16s);
    checkArray(kprsCopy_32f);
}

TEST(Copy, StatusLadders) {
    LADDER(kpriCopy_8u_C1R).nulls().sizes().run();
    LADDER(kpriCopy_8u_C3R).channels({3, 3, 3}).nulls().sizes().run();
    LADDER(kpriCopy_8u_C4R).channels({4, 4, 4}).nulls().sizes().run();
    LADDER(kpriCopy_16s_C1R).nulls().sizes().run();
    LADDER(kpriCopy_16s_C3R).channels({3, 3, 3}).nulls().sizes().run();
    LADDER(kpriCopy_16s_C4R).channels({4, 4, 4}).nulls().sizes().run();
    LADDER(kpriCopy_16u_C1R).nulls().sizes().run();
    LADDER(kpriCopy_32f_C1R).nulls().sizes().run();
    LADDER(kpriCopy_32f_C3R).channels({3, 3, 3}).nulls().sizes().run();
    LADDER(kpriCopy_32f_C4R).channels({4, 4, 4}).nulls().sizes().run();
    LADDER(kpriCopy_8u_C1R_L).nulls().sizes().run();
    LADDER(kpriCopy_8u_AC4R).channels({4, 4, 4}).nulls().sizes().run();
    LADDER(kpriCopy_16s_AC4R).channels({4, 4, 4}).nulls().sizes().run();
    LADDER(kpriCopy_32f_AC4R).channels({4, 4, 4}).nulls().sizes().run();
    LADDER(kprsCopy_8u).with<2>(7).nulls().refuses<2>(0, kprStatusBadSize).run();
    LADDER(kprsCopy_16s).with<2>(7).nulls().refuses<2>(0, kprStatusBadSize).run();
    LADDER(kprsCopy_32f).with<2>(7).nulls().refuses<2>(0, kprStatusBadSize).run();
}

}  // namespace
