#include <gtest/gtest.h>

#include <limits>

#include "tests/reference/border.h"
#include "tests/reference/morph.h"
#include "tests/support/guarded_image.h"
#include "tests/support/ladder.h"

// The ladder's driver makes memory for what a pointer points to; this block is made by its initialising call.
struct KprMorphGrayState {
    char byte;
};

namespace {

using test::GuardedBytes;
using test::GuardedImage;
using test::Random;

template <typename T>
using Height = std::conditional_t<sizeof(T) == 1, Kpr32s, Kpr32f>;

template <typename T>
constexpr Height<T> kNoTap = sizeof(T) == 1 ? static_cast<Height<T>>(std::numeric_limits<Kpr32s>::min())
                                            : -std::numeric_limits<Kpr32f>::infinity();

template <typename T>
struct Mask {
    KprSize size;
    KprPoint anchor;
    std::vector<Height<T>> heights;

    bool hasTaps() const {
        return std::any_of(heights.begin(), heights.end(), [](auto height) { return height != kNoTap<T>; });
    }
};

template <typename T>
Mask<T> randomMask(Random& random) {
    static const KprSize sizes[] = {{1, 1}, {3, 3}, {5, 5}, {2, 4}, {7, 1}, {1, 9}, {13, 6}, {3, 3}, {90, 2}, {66, 3}};
    Mask<T> mask{sizes[random.range(0, std::size(sizes) - 1)], {}, {}};
    mask.anchor = {random.range(0, mask.size.width - 1), random.range(0, mask.size.height - 1)};
    if (random.oneIn(2)) mask.anchor = {mask.size.width / 2, mask.size.height / 2};
    enum Kind { Flat, Low, Steep, Wild, Empty };
    const int kind = random.oneIn(3) ? Flat : random.range(Low, random.oneIn(4) ? Empty : Wild);
    const int level = random.range(-20, 20), holes = random.oneIn(2) ? 1000000 : 4;
    for (int i = 0; i < mask.size.width * mask.size.height; ++i) {
        Height<T> height = static_cast<Height<T>>(level);
        if (kind == Low) height = static_cast<Height<T>>(random.range(-30, 30));
        if (kind == Steep) height = static_cast<Height<T>>(random.range(-600, 600));
        if (kind == Wild) height = random.pixel<Height<T>>(true);
        mask.heights.push_back(kind == Empty || random.oneIn(holes) ? kNoTap<T> : height);
    }
    return mask;
}

// One call against the rule, then the same in place.
template <typename T, typename GetSize, typename Init, typename Process>
void checkOne(KprSize size, GetSize getSize, Init init, Process process, bool dilation, Random& random) {
    const auto mask = randomMask<T>(random);
    static const KprBorderType bases[] = {kprBorderReplicate, kprBorderMirror, kprBorderDefault, kprBorderConstant};
    const KprBorderType base = bases[random.range(0, 3)];
    KprBorderType word = base;
    const bool wide = size.width > mask.size.width && size.height > mask.size.height;
    if (!random.oneIn(3) && (base != kprBorderMirror || wide))
        word |= static_cast<KprBorderType>(random.range(0, 15)) << 4;
    if (random.oneIn(5)) word |= 256;
    const bool top = (word & kprBorderInMemTop) != 0, bottom = (word & kprBorderInMemBottom) != 0;
    const bool before = (word & kprBorderInMemLeft) != 0, after = (word & kprBorderInMemRight) != 0;
    const int left = before && mask.hasTaps() ? mask.anchor.x : 0, above = top && mask.hasTaps() ? mask.anchor.y : 0;
    const int right = after && mask.hasTaps() ? mask.size.width - 1 - mask.anchor.x : 0;
    const int below = bottom && mask.hasTaps() ? mask.size.height - 1 - mask.anchor.y : 0;
    GuardedImage<T> src({left + size.width + right, above + size.height + below}, random), dst(size, random);
    src.fill(random, true);
    const T value = random.pixel<T>();

    int specSize = 0, bufferSize = 0;
    const KprSize sized = {size.width + random.range(0, 1) * 30, size.height + random.range(0, 1) * 20};
    ASSERT_EQ(getSize(sized, mask.size, &specSize, &bufferSize), kprStatusOk);
    EXPECT_LE(specSize, 16 * mask.size.width * mask.size.height + 4096);
    EXPECT_LE(bufferSize, 64 * sized.width * mask.size.height + 4096);
    const GuardedBytes spec(static_cast<std::size_t>(specSize), test::Guard::After),
        buffer(static_cast<std::size_t>(bufferSize), test::Guard::After);
    std::vector<char> moved(static_cast<std::size_t>(specSize) + 1);
    auto* const work = reinterpret_cast<Kpr8u*>(buffer.data());
    ASSERT_EQ(init(sized, mask.heights.data(), mask.size, mask.anchor,
                   reinterpret_cast<KprMorphGrayState*>(spec.data()), work),
              kprStatusOk);
    std::memcpy(moved.data() + 1, spec.data(), static_cast<std::size_t>(specSize));
    const auto* const block = reinterpret_cast<const KprMorphGrayState*>(moved.data() + 1);

    const auto source = src.snapshot();
    const auto expected = [&](int x, int y, int) -> T {
        if (!mask.hasTaps()) return src.at(left + x, above + y);
        using Sum = std::conditional_t<sizeof(T) == 1, Kpr64s, Kpr32f>;
        std::optional<Sum> best;
        for (int j = 0; j < mask.size.height; ++j) {
            for (int i = 0; i < mask.size.width; ++i) {
                const auto height = mask.heights[static_cast<std::size_t>(j * mask.size.width + i)];
                if (height == kNoTap<T>) continue;
                const auto fromX =
                    reference::borderIndex(reference::borderOf(base), x + i - mask.anchor.x, size.width, before, after);
                const auto fromY =
                    reference::borderIndex(reference::borderOf(base), y + j - mask.anchor.y, size.height, top, bottom);
                if (base == kprBorderDefault && (!fromX || !fromY)) continue;
                const Sum pixel = fromX && fromY ? src.at(left + *fromX, above + *fromY) : value;
                const Sum sum = dilation ? pixel + static_cast<Sum>(height) : pixel - static_cast<Sum>(height);
                if (best) best = dilation ? reference::greater(*best, sum) : reference::lesser(*best, sum);
                if (!best) best = sum;
            }
        }
        if (!best) return dilation ? std::numeric_limits<T>::lowest() : std::numeric_limits<T>::max();
        if constexpr (sizeof(T) == 1) best = std::clamp<Sum>(*best, 0, 255);
        return static_cast<T>(*best);
    };
    SCOPED_TRACE("mask " + std::to_string(mask.size.width) + " x " + std::to_string(mask.size.height) + ", anchor " +
                 std::to_string(mask.anchor.x) + ", " + std::to_string(mask.anchor.y) + ", border " +
                 std::to_string(word));
    T* const first = &src.at(left, above);
    ASSERT_EQ(process(first, src.step(), dst.data(), dst.step(), size, word, value, block, work), kprStatusOk);
    EXPECT_EQ(source, src.snapshot());
    test::expectImage(dst, expected);
    if (testing::Test::HasFailure()) return;
    ASSERT_EQ(process(first, src.step(), first, src.step(), size, word, value, block, work), kprStatusOk);
    for (int y = 0; y < size.height; ++y) {
        for (int x = 0; x < size.width; ++x)
            ASSERT_TRUE(test::same(src.at(left + x, above + y), dst.at(x, y))) << "in place, " << x << ", " << y;
    }
}

template <typename T, typename GetSize, typename Init, typename Process>
void check(GetSize getSize, Init init, Process process, bool dilation) {
    Random random;
    auto sizes = test::awkwardSizes();
    for (KprSize size : {KprSize{67, 131}, {5, 200}, {640, 3}}) sizes.push_back(size);
    for (KprSize size : sizes) {
        for (int round = 0; round < 8; ++round) {
            checkOne<T>(size, getSize, init, process, dilation, random);
            if (testing::Test::HasFailure()) return;
        }
    }
}

TEST(GrayMorphology, Dilation) {
    check<Kpr8u>(kpriMorphGrayGetSize_8u_C1R, kpriMorphGrayInit_8u_C1R, kpriGrayDilateBorder_8u_C1R, true);
    check<Kpr32f>(kpriMorphGrayGetSize_32f_C1R, kpriMorphGrayInit_32f_C1R, kpriGrayDilateBorder_32f_C1R, true);
}

TEST(GrayMorphology, Erosion) {
    check<Kpr8u>(kpriMorphGrayGetSize_8u_C1R, kpriMorphGrayInit_8u_C1R, kpriGrayErodeBorder_8u_C1R, false);
    check<Kpr32f>(kpriMorphGrayGetSize_32f_C1R, kpriMorphGrayInit_32f_C1R, kpriGrayErodeBorder_32f_C1R, false);
}

template <typename T, typename GetSize, typename Init, typename Process, typename OtherInit>
void checkStatuses(GetSize getSize, Init init, Process dilate, Process erode, OtherInit otherInit) {
    test::Ladder("MorphGrayGetSize", getSize).nulls().sizes().run();
    int specSize = 77, bufferSize = 77;
    EXPECT_EQ(getSize({0x7fffffff, 3}, {3, 100}, &specSize, &bufferSize), kprStatusSizeOverflow);
    EXPECT_EQ(getSize({3, 3}, {100000, 100000}, &specSize, &bufferSize), kprStatusSizeOverflow);
    EXPECT_EQ(specSize, 77);
    EXPECT_EQ(bufferSize, 77);

    std::vector<Kpr8u> block(8192), other(8192), buffer(8192);
    auto* const spec = reinterpret_cast<KprMorphGrayState*>(block.data());
    test::Ladder("MorphGrayInit", init)
        .template with<2>({3, 2})
        .template with<3>({1, 1})
        .template with<4>(spec)
        .template with<5>(buffer.data())
        .nulls()
        .sizes()
        .template refuses<3>({3, 1}, kprStatusBadAnchor)
        .template refuses<3>({1, 2}, kprStatusBadAnchor)
        .template refuses<3>({-1, 0}, kprStatusBadAnchor)
        .template refuses<3>({0, -1}, kprStatusBadAnchor)
        .run();
    const KprSize size = {7, 3}, maskSize = {3, 3};
    const std::vector<Height<T>> heights(9, 1);
    ASSERT_EQ(init(size, heights.data(), maskSize, {1, 1}, spec, buffer.data()), kprStatusOk);
    auto* const otherSpec = reinterpret_cast<KprMorphGrayState*>(other.data());
    ASSERT_EQ(
        otherInit(size,
                  reinterpret_cast<const Height<std::conditional_t<sizeof(T) == 1, Kpr32f, Kpr8u>>*>(heights.data()),
                  maskSize, {1, 1}, otherSpec, buffer.data()),
        kprStatusOk);
    const std::vector<Kpr8u> empty(64, 0);
    for (Process process : {dilate, erode}) {
        test::Ladder ladder("GrayBorder", process);
        ladder.template with<5>(kprBorderReplicate)
            .template with<7>(spec)
            .template with<8>(buffer.data())
            .nulls()
            .sizes()
            .lengths({0, 1});
        if (sizeof(T) > 1) ladder.multiples({0, 1});
        for (KprBorderType word : {0, 2, 4, 7, 16, 4097}) ladder.template refuses<5>(word, kprStatusBadBorder);
        ladder.template refuses<7>(otherSpec, kprStatusBadContext)
            .template refuses<7>(reinterpret_cast<const KprMorphGrayState*>(empty.data()), kprStatusBadContext)
            .run();
    }
}

TEST(GrayMorphology, Statuses) {
    checkStatuses<Kpr8u>(kpriMorphGrayGetSize_8u_C1R, kpriMorphGrayInit_8u_C1R, kpriGrayDilateBorder_8u_C1R,
                         kpriGrayErodeBorder_8u_C1R, kpriMorphGrayInit_32f_C1R);
    checkStatuses<Kpr32f>(kpriMorphGrayGetSize_32f_C1R, kpriMorphGrayInit_32f_C1R, kpriGrayDilateBorder_32f_C1R,
                          kpriGrayErodeBorder_32f_C1R, kpriMorphGrayInit_8u_C1R);
}

}  // namespace
