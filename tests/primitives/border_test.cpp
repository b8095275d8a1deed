#include "primitives/border.h"

#include <gtest/gtest.h>

#include "tests/reference/border.h"
#include "tests/support/guarded_image.h"
#include "tests/support/ladder.h"

namespace {

using reference::Border;
using test::GuardedImage;
using test::Random;

// Sizes about the vectors' lengths, and borders from none at all to many times the image.
struct Geometry {
    KprSize size;
    KprSize whole;
    int left, top;

    explicit Geometry(Random& random) {
        const int widths[] = {1, 2, 3, random.range(4, 12), random.range(13, 40), random.range(41, 150)};
        size = {widths[random.range(0, 5)], random.oneIn(3) ? random.range(1, 2) : random.range(3, 9)};
        if (random.oneIn(20)) size = test::photographSizes()[static_cast<std::size_t>(random.range(0, 5))];
        left = border(random, size.width);
        top = border(random, size.height);
        whole = {left + size.width + border(random, size.width), top + size.height + border(random, size.height)};
    }

    static int border(Random& random, int n) {
        const int widths[] = {0, random.range(1, 4), random.range(1, n), random.range(n, 5 * n + 1),
                              random.oneIn(8) ? 200 : 17};
        return widths[random.range(0, 4)];
    }

    template <typename Value>
    void describe(Value& message) const {
        message << size.width << " x " << size.height << " at " << left << ", " << top << " of " << whole.width << " x "
                << whole.height;
    }
};

constexpr int kCases = 40;

// Expects the bordered copy of what `pixel(x, y, channel)` was; `value` is the constant border's.
template <typename T, typename Pixel>
void expectBordered(GuardedImage<T>& dst, const Geometry& at, Border border, int channels, Pixel pixel,
                    const T* value = nullptr) {
    test::expectImage(
        dst,
        [&](int x, int y, int c) -> T {
            const auto column = reference::borderIndex(border, x - at.left, at.size.width);
            const auto row = reference::borderIndex(border, y - at.top, at.size.height);
            return column && row ? pixel(*column, *row, c) : value[c];
        },
        channels);
    testing::Message message;
    at.describe(message);
    EXPECT_FALSE(testing::Test::HasFailure()) << message;
}

template <typename Size>
Size sized(KprSize size) {
    return {size.width, size.height};
}

template <typename T, int channels, typename Size, typename Function>
void checkConst(const char* name, Function function) {
    SCOPED_TRACE(name);
    Random random;
    for (int i = 0; i < kCases && !testing::Test::HasFailure(); ++i) {
        const Geometry at(random);
        GuardedImage<T> src(at.size, random, channels), dst(at.whole, random, channels),
            value({1, 1}, random, channels);
        src.fill(random, true);
        value.fill(random, true);
        const auto argument = [&] {
            if constexpr (channels == 1) return *value.data();
            if constexpr (channels > 1) return value.data();
        }();
        const auto source = src.snapshot();
        ASSERT_EQ(function(src.data(), src.step(), sized<Size>(at.size), dst.data(), dst.step(), sized<Size>(at.whole),
                           at.top, at.left, argument),
                  kprStatusOk);
        EXPECT_EQ(source, src.snapshot());
        expectBordered(
            dst, at, Border::Constant, channels, [&](int x, int y, int c) { return src.at(x, y, c); }, value.data());
    }
}

template <typename T, int channels, typename Size, typename Function>
void checkCopy(const char* name, Border border, Function function) {
    SCOPED_TRACE(name);
    Random random;
    for (int i = 0; i < kCases && !testing::Test::HasFailure(); ++i) {
        const Geometry at(random);
        GuardedImage<T> src(at.size, random, channels), dst(at.whole, random, channels);
        src.fill(random, true);
        const auto source = src.snapshot();
        ASSERT_EQ(function(src.data(), src.step(), sized<Size>(at.size), dst.data(), dst.step(), sized<Size>(at.whole),
                           at.top, at.left),
                  kprStatusOk);
        EXPECT_EQ(source, src.snapshot());
        expectBordered(dst, at, border, channels, [&](int x, int y, int c) { return src.at(x, y, c); });
    }
}

// `call(srcDst, step, size, whole, top, left)`: the in-place form, or the copying one with src == dst.
template <typename T, int channels, typename Size, typename Call>
void checkInPlace(const char* name, Border border, Call call) {
    SCOPED_TRACE(name);
    Random random;
    for (int i = 0; i < kCases && !testing::Test::HasFailure(); ++i) {
        const Geometry at(random);
        GuardedImage<T> image(at.whole, random, channels), before(at.size, random, channels);
        image.fill(random, true);
        before.forEach([&, k = 0](T& pixel) mutable {
            const int row = at.size.width * channels;
            pixel = image.row(at.top + k / row)[at.left * channels + k % row];
            ++k;
        });
        ASSERT_EQ(call(&image.at(at.left, at.top), image.step(), sized<Size>(at.size), sized<Size>(at.whole), at.top,
                       at.left),
                  kprStatusOk);
        expectBordered(image, at, border, channels, [&](int x, int y, int c) { return before.at(x, y, c); });
    }
}

TEST(Border, Constant) {
#define KPR_CONST_BORDER(name, T, channels, Size) checkConst<T, channels, Size>(#name, name);
#include "primitives/border.inc"
}

TEST(Border, CopiedPixels) {
#define KPR_COPY_BORDER(name, rule, T, channels, Size, twin) checkCopy<T, channels, Size>(#name, Border::rule, name);
#include "primitives/border.inc"
}

TEST(Border, InPlace) {
#define KPR_INPLACE_BORDER(name, rule, T, channels, Size) checkInPlace<T, channels, Size>(#name, Border::rule, name);
#include "primitives/border.inc"
}

enum class Twin { None, InPlace };

// A copy from an image to itself is the in-place form, whose only step is the destination's. A form without that twin
// goes on to its checks.
template <typename T, int channels, typename Size, typename Function>
void checkForward(const char* name, Border border, Twin twin, Function function) {
    if (twin == Twin::InPlace) {
        checkInPlace<T, channels, Size>(name, border,
                                        [&](T* image, int step, Size size, Size whole, int top, int left) {
                                            return function(image, -1, size, image, step, whole, top, left);
                                        });
    } else {
        T pixel[channels] = {};
        const auto call = [&](int srcStep) {
            return function(pixel, srcStep, Size{1, 1}, pixel, sizeof pixel, Size{1, 1}, 0, 0);
        };
        EXPECT_EQ(call(-1), kprStatusBadStep) << name;
        EXPECT_EQ(call(sizeof pixel), kprStatusOk) << name;
    }
}

TEST(Border, SourceAsDestination) {
#define KPR_COPY_BORDER(name, rule, T, channels, Size, twin) \
    checkForward<T, channels, Size>(#name, Border::rule, Twin::twin, name);
#include "primitives/border.inc"
}

// Image rows of three whole pages, which may only be read, between pages that hold the border.
template <typename T, int channels, typename Size, typename Function>
void checkWritesNoImagePixel(Function function) {
    constexpr int page = 4096, rowBytes = 3 * page, step = rowBytes + 2 * page, height = 2, border = 7;
    constexpr int width = rowBytes / static_cast<int>(sizeof(T) * channels);
    test::GuardedBytes memory(static_cast<std::size_t>(step * (height + 2)), test::Guard::After);
    char* image = memory.data() + step + page;
    for (int y = 0; y < height; ++y) ASSERT_EQ(mprotect(image + std::ptrdiff_t{step} * y, rowBytes, PROT_READ), 0);
    EXPECT_EQ(function(reinterpret_cast<T*>(image), step, Size{width, height}, Size{width + 2 * border, height + 2}, 1,
                       border),
              kprStatusOk);
}

TEST(Border, InPlaceFormsWriteNoImagePixel) {
#define KPR_INPLACE_BORDER(name, rule, T, channels, Size) checkWritesNoImagePixel<T, channels, Size>(name);
#include "primitives/border.inc"
}

// The ladders. Arguments 1, 3 and so on are the places of steps, sizes and borders in the signatures.
template <int roi, int whole, int top, int left, typename... A>
void refuseSizes(test::Ladder<A...>& ladder) {
    using Size = std::tuple_element_t<roi, std::tuple<A...>>;
    using Extent = n0::Extent<Size>;
    constexpr Extent most = std::numeric_limits<Extent>::max(), least = std::numeric_limits<Extent>::min();
    ladder.sizes();
    for (Size size : {Size{8, 3}, Size{7, 4}, Size{most, 3}, Size{7, most}}) {
        ladder.template refuses<roi>(size, kprStatusBadSize);
    }
    for (Size size : {Size{6, 3}, Size{7, 2}}) ladder.template refuses<whole>(size, kprStatusBadSize);
    for (Extent border : {Extent{1}, Extent{-1}, most, least}) {
        ladder.template refuses<top>(border, kprStatusBadSize).template refuses<left>(border, kprStatusBadSize);
    }
}

template <typename... A>
void checkCopyLadder(const char* name, KprStatus (*function)(A...), int channels) {
    test::Ladder ladder(name, function);
    ladder.channels({channels, channels}).nulls({2});
    for (int step : {0, -1, -100}) {
        ladder.template refuses<1>(step, kprStatusBadStep).template refuses<4>(step, kprStatusBadStep);
    }
    refuseSizes<2, 5, 6, 7>(ladder);
    if constexpr (sizeof...(A) == 9) {
        if constexpr (std::is_pointer_v<std::tuple_element_t<8, std::tuple<A...>>>) {
            ladder.template refuses<8>(nullptr, kprStatusNullPtr);
        }
    }
    ladder.run();
}

template <typename... A>
void checkInPlaceLadder(const char* name, KprStatus (*function)(A...), int channels) {
    test::Ladder ladder(name, function);
    ladder.channels({channels}).nulls();
    for (int step : {0, -1, -100}) ladder.template refuses<1>(step, kprStatusBadStep);
    refuseSizes<2, 3, 4, 5>(ladder);
    ladder.run();
}

TEST(Border, StatusLadders) {
#define KPR_CONST_BORDER(name, T, channels, Size) checkCopyLadder(#name, name, channels);
#define KPR_COPY_BORDER(name, rule, T, channels, Size, twin) checkCopyLadder(#name, name, channels);
#define KPR_INPLACE_BORDER(name, rule, T, channels, Size) checkInPlaceLadder(#name, name, channels);
#include "primitives/border.inc"
}

template <typename T, int channels, typename Function>
void checkTight(Function function) {
    Random random;
    for (int i = 0; i < 4 * kCases && !testing::Test::HasFailure(); ++i) {
        const Geometry at(random);
        const int mode = random.oneIn(2) ? 3 : random.range(0, 7);
        GuardedImage<T> src(at.size, random, channels), dst(at.whole, channels, 0, test::Guard::After);
        src.fill(random, true);
        function(src.data(), src.step() / static_cast<int>(sizeof(T)), at.size, dst.data(), mode, at.left,
                 at.whole.width - at.size.width - at.left, at.top, at.whole.height - at.size.height - at.top);
        expectBordered(dst, at, mode == 3 ? Border::Mirror : Border::RepeatEdge, channels,
                       [&](int x, int y, int c) { return src.at(x, y, c); });
    }
}

TEST(Border, TightCopies) {
    checkTight<Kpr8u, 1>(ownCopyWithBorder_8u_C1R);
    checkTight<Kpr8u, 3>(ownCopyWithBorder_8u_C3R);
    checkTight<Kpr16u, 1>(ownCopyWithBorder_16u_C1R);
    checkTight<Kpr16u, 3>(ownCopyWithBorder_16u_C3R);
    checkTight<Kpr32f, 1>(ownCopyWithBorder_32f_C1R);
    checkTight<Kpr32f, 3>(ownCopyWithBorder_32f_C3R);
}

// Every word, the memory ending where the flags say.
template <typename T, typename Function>
void checkMargins(Function function) {
    Random random;
    for (int i = 0; i < 16 * kCases && !testing::Test::HasFailure(); ++i) {
        const KprSize size{random.range(1, 5), random.range(1, 5)}, margin{random.range(0, 7), random.range(0, 7)};
        const KprBorderType flags = static_cast<KprBorderType>(i % 16) << 4;
        const KprBorderType modes[] = {kprBorderConstant, kprBorderReplicate, kprBorderMirror};
        const int mode = random.range(0, 2);
        const bool top = (flags & 16) != 0, bottom = (flags & 32) != 0, left = (flags & 64) != 0,
                   right = (flags & 128) != 0;
        const int x0 = left ? margin.width : 0, y0 = top ? margin.height : 0;
        GuardedImage<T> src(
            {x0 + size.width + (right ? margin.width : 0), y0 + size.height + (bottom ? margin.height : 0)}, random);
        GuardedImage<T> dst({size.width + 2 * margin.width, size.height + 2 * margin.height}, random);
        src.fill(random, true);
        const T value = random.pixel<T>();
        const KprBorderType word = flags == kprBorderInMem ? flags + random.range(0, 15) : flags + modes[mode];
        ASSERT_EQ(function(&src.at(x0, y0), src.step(), size, word, value, margin, dst.data(), dst.step()),
                  kprStatusOk);
        test::expectImage(dst, [&](int x, int y, int) {
            const auto border = static_cast<Border>(mode);
            const auto column = reference::borderIndex(border, x - margin.width, size.width, left, right);
            const auto row = reference::borderIndex(border, y - margin.height, size.height, top, bottom);
            return column && row ? src.at(x0 + *column, y0 + *row) : value;
        });
        EXPECT_FALSE(testing::Test::HasFailure()) << "border word " << word;
    }
}

TEST(Border, MarginsInMemoryAndMade) {
    checkMargins<Kpr8u>(CopyWithBorder8u);
    checkMargins<Kpr32f>(CopyWithBorder32f);
}

TEST(Border, Words) {
    for (KprBorderType word = 0; word < 5000; ++word) {
        const bool filter = word % 16 == 1 || word % 16 == 3 || word % 16 == 6;
        const bool morphology = filter || word % 16 == 5;
        const auto status = [](bool good) { return good ? kprStatusOk : kprStatusBadBorder; };
        EXPECT_EQ(n0::borderServesFilter(word), status(word == 240 || (word < 256 && filter))) << word;
        EXPECT_EQ(n0::borderServesMorphology(word), status(word == 240 || (word < 4096 && morphology))) << word;

        KprBorderType mode = 77, inMemory = 77, firstStage = 77;
        const bool good = word < 4096 && (morphology || word / 16 == 15);
        EXPECT_EQ(CV_BORDER_CHECK_PARSE_FLAGS_NEW(word, 6, &mode, &inMemory, &firstStage), status(good)) << word;
        EXPECT_EQ(mode, good ? (morphology ? word % 16 : 6) : 77) << word;
        EXPECT_EQ(inMemory, good ? word / 16 % 16 * 16 : 77) << word;
        EXPECT_EQ(firstStage, good ? word / 256 * 256 : 77) << word;
    }
    EXPECT_EQ(n0::borderServesFilter(0x80000001), kprStatusBadBorder);
    EXPECT_EQ(n0::borderServesMorphology(0x80000001), kprStatusBadBorder);
}

}  // namespace
