#include <gtest/gtest.h>

#include "tests/reference/fast.h"
#include "tests/support/ladder.h"

struct KprFastNSpec {  // whatever the library makes of it: the ladder takes the size of every type
    Kpr8u bytes[1];
};

namespace {

using reference::Fast;
using reference::FastPixel;
using test::Guard;
using test::GuardedBytes;
using test::GuardedImage;
using test::Random;

constexpr int kRadii[] = {1, 2, 3, 5, 7, 9};
constexpr int kPoints[] = {8, 12, 16, 28, 40, 52};

// A block in memory of its exact size, at any address.
class Block {
  public:
    Block(const Fast& fast, KprSize image, Guard guard = Guard::After) : bytes_(sizeOf(fast, image), guard) {
        EXPECT_EQ(kpriFastNInit(image, fast.radius, fast.arc, fast.bins, fast.option, kpr8u, 1, fast.threshold, spec()),
                  kprStatusOk);
    }
    KprFastNSpec* spec() { return reinterpret_cast<KprFastNSpec*>(bytes_.data()); }
    // A field, counted in words from the magic.
    Kpr32s* word(int index) { return reinterpret_cast<Kpr32s*>(bytes_.data() + *bytes_.data()) + index; }

    static std::size_t sizeOf(const Fast& fast, KprSize image) {
        int size = 0;
        EXPECT_EQ(kpriFastNGetSize(image, fast.radius, fast.arc, fast.bins, fast.option, kpr8u, 1, &size), kprStatusOk);
        return static_cast<std::size_t>(size);
    }

  private:
    GuardedBytes bytes_;
};

// Flat ground with spots and blocks: circles with long arcs of either kind, and ties.
void draw(GuardedImage<Kpr8u>& image, int radius, Random& random) {
    const int kind = random.range(0, 3), cell = random.range(1, radius + 2), levels = random.range(2, 4);
    const auto level = [&] { return static_cast<Kpr8u>(random.range(0, levels - 1) * 255 / (levels - 1)); };
    std::vector<Kpr8u> cells(20000);
    for (Kpr8u& c : cells) c = level();
    for (int y = 0; y < image.size().height; ++y) {
        for (int x = 0; x < image.size().width; ++x) {
            Kpr8u& p = image.at(x, y);
            if (kind == 0) p = random.oneIn(4 * radius * radius) ? level() : 128;
            if (kind == 1) p = cells[static_cast<std::size_t>(y / cell * 131 + x / cell) % cells.size()];
            if (kind == 2) p = random.pixel<Kpr8u>();
            if (kind == 3) p = static_cast<Kpr8u>(100 + x / 3 - y / 5 + (random.oneIn(30) ? random.range(-90, 90) : 0));
        }
    }
}

// What a search has to write, in coordinates of its ROI.
struct Expected {
    std::vector<FastPixel> pixels;
    int count = 0;
    bool clipped = false, outside = false;

    Expected(const Fast& fast, GuardedImage<Kpr8u>& image, KprPoint offset, KprSize roi) {
        const KprSize size = image.size();
        pixels.resize(static_cast<std::size_t>(roi.width) * roi.height);
        clipped =
            offset.x < 0 || offset.y < 0 || offset.x + roi.width > size.width || offset.y + roi.height > size.height;
        outside = offset.x >= size.width || offset.y >= size.height || offset.x + roi.width <= 0 ||
                  offset.y + roi.height <= 0;
        const auto at = [&](int x, int y) -> FastPixel& { return pixels[static_cast<std::size_t>(y) * roi.width + x]; };
        const int r = fast.radius;
        for (int y = 0; y < roi.height; ++y) {
            for (int x = 0; x < roi.width; ++x) {
                const int cx = x + offset.x, cy = y + offset.y;
                if (cx < r || cy < r || cx >= size.width - r || cy >= size.height - r) continue;
                at(x, y) = fastPixel(fast, [&](int dx, int dy) { return int{image.at(cx + dx, cy + dy)}; });
            }
        }
        if ((fast.option & kprFastNSuppression) != 0) {
            const std::vector<FastPixel> all = pixels;
            for (int y = 0; y < roi.height; ++y) {
                for (int x = 0; x < roi.width; ++x) {
                    for (int i = 0; i < 9; ++i) {
                        const int nx = x + i % 3 - 1, ny = y + i / 3 - 1;
                        if (nx < 0 || ny < 0 || nx >= roi.width || ny >= roi.height) continue;
                        if (all[static_cast<std::size_t>(ny) * roi.width + nx].score > at(x, y).score) at(x, y) = {};
                    }
                }
            }
        }
        for (const FastPixel& pixel : pixels) count += pixel.byte != 0;
    }
};

void checkSearch(const Fast& fast, KprSize size, KprPoint offset, KprSize roi, Random& random) {
    SCOPED_TRACE(testing::Message() << "radius " << fast.radius << " arc " << fast.arc << " bins " << fast.bins
                                    << " option " << fast.option << " t " << fast.threshold << ", image " << size.width
                                    << " x " << size.height << ", ROI " << offset.x << " " << offset.y << " "
                                    << roi.width << " x " << roi.height);
    GuardedImage<Kpr8u> src(size, random), corner(roi, random), score(roi, random);
    draw(src, fast.radius, random);
    const auto before = src.snapshot(), cornersBefore = corner.snapshot();
    const Guard guard = random.oneIn(2) ? Guard::After : Guard::Before;
    Block block(fast, size, guard);
    int bytes = 0, count = -7;
    ASSERT_EQ(kpriFastNGetBufferSize(block.spec(), roi, &bytes), kprStatusOk);
    GuardedBytes buffer(static_cast<std::size_t>(bytes), guard);
    const bool scored = (fast.option & kprFastNScore) != 0;
    const KprStatus status =
        kpriFastN_8u_C1R(src.data(), src.step(), corner.data(), corner.step(), scored ? score.data() : nullptr,
                         score.step(), &count, offset, roi, block.spec(), reinterpret_cast<Kpr8u*>(buffer.data()));
    const Expected expected(fast, src, offset, roi);
    EXPECT_EQ(status, expected.clipped ? kprStatusRoiClipped : kprStatusOk);
    EXPECT_EQ(src.snapshot(), before);
    if (expected.outside) {
        EXPECT_EQ(count, -7);
        EXPECT_EQ(corner.snapshot(), cornersBefore);
        return;
    }
    EXPECT_EQ(count, expected.count);
    const auto pixel = [&](int x, int y) { return expected.pixels[static_cast<std::size_t>(y) * roi.width + x]; };
    expectImage(corner, [&](int x, int y, int) { return static_cast<Kpr8u>(pixel(x, y).byte); });
    if (!scored) return;
    expectImage(score, [&](int x, int y, int) { return static_cast<Kpr8u>(pixel(x, y).score); });

    // The list of them, cut at any length.
    const int most = random.oneIn(3) ? random.range(0, 2) : random.range(0, expected.count + 2);
    std::vector<KprFastNCorner> list;
    for (int y = 0; y < roi.height; ++y) {
        for (int x = 0; x < roi.width; ++x) {
            const FastPixel p = pixel(x, y);
            if (p.byte == 0 || static_cast<int>(list.size()) == most) continue;
            const bool oriented = (fast.option & kprFastNOrientation) != 0;
            const int bin = p.byte & 0x3f;
            list.push_back({x, y, p.byte >> 7, oriented ? bin : -1,
                            oriented ? static_cast<float>(bin * (360.0 / fast.bins)) : -1.0F,
                            static_cast<float>(p.score)});
        }
    }
    GuardedBytes memory(sizeof(KprFastNCorner) * (list.size() + (list.empty() ? 1 : 0)), Guard::After);
    auto* const records = reinterpret_cast<KprFastNCorner*>(memory.data());
    ASSERT_EQ(kpriFastN2DToVec_8u(corner.data(), corner.step(), score.data(), score.step(), records, roi, most, &count,
                                  block.spec()),
              kprStatusOk);
    ASSERT_EQ(count, static_cast<int>(list.size()));
    EXPECT_TRUE(list.empty() || std::memcmp(records, list.data(), sizeof(KprFastNCorner) * list.size()) == 0);
}

Fast anyFast(int i, Random& random) {
    const float thresholds[] = {0, 1, 10, 19.7F, 40, 127, 254, 255, 1e30F};
    const int options[] = {4, 5, 0x24, 0x25, 0x26, 0x27};
    const int n = kPoints[i];
    return {kRadii[i], random.oneIn(3) ? n / 2 + 1 : random.range(n / 2 + 1, n), random.range(1, 64),
            options[random.range(0, 5)], thresholds[random.range(0, random.oneIn(4) ? 8 : 4)]};
}

TEST(FastN, WholeImages) {
    Random random;
    for (int round = 0; round < 25; ++round) {
        for (int i = 0; i < 6; ++i) {
            const KprSize size = {random.oneIn(4) ? random.range(1, 20) : random.range(20, 150), random.range(1, 40)};
            checkSearch(anyFast(i, random), size, {0, 0}, size, random);
            if (HasFailure()) return;
        }
    }
    for (const Fast& fast : {Fast{3, 9, 16, 0x27, 20}, {3, 9, 1, 4, 0}, {9, 27, 64, 0x27, 5}, {2, 7, 8, 0x25, 30}}) {
        for (KprSize size : {KprSize{5, 300}, {67, 131}, {1031, 33}, {641, 79}})
            checkSearch(fast, size, {0, 0}, size, random);
    }
}

TEST(FastN, Regions) {
    Random random;
    for (int round = 0; round < 150; ++round) {
        const KprSize size = {random.range(1, 90), random.range(1, 40)};
        const KprPoint offset = {random.range(-30, size.width + 5), random.range(-20, size.height + 3)};
        checkSearch(anyFast(random.range(0, 5), random), size, offset, {random.range(1, 120), random.range(1, 50)},
                    random);
        if (HasFailure()) return;
    }
}

// The largest coordinates must not wrap.
TEST(FastN, RegionsFarAway) {
    Block block({3, 9, 1, 4, 0}, {9, 9});
    Kpr8u src[81] = {}, corner[4] = {7, 7, 7, 7}, buffer[700];
    for (KprPoint offset : {KprPoint{INT32_MAX, 0}, {0, INT32_MAX}, {INT32_MIN, 0}, {0, INT32_MIN}, {-2, 0}}) {
        int count = 5;
        EXPECT_EQ(kpriFastN_8u_C1R(src, 9, corner, 2, nullptr, 0, &count, offset, {2, 2}, block.spec(), buffer),
                  kprStatusRoiClipped);
        EXPECT_EQ(count, 5);
        EXPECT_EQ(corner[0], 7);
    }
}

// A flat image is full of ties, and no corner; and a block serves from wherever it was copied to.
TEST(FastN, FlatImageAndMovedBlock) {
    std::vector<Kpr8u> src(64 * 64, 9), corner(64 * 64, 1), buffer(2000), moved(1000);
    for (int i = 0; i < 6; ++i) {
        const Fast fast = {kRadii[i], kPoints[i], 5, 5, 0};
        Block block(fast, {64, 64});
        for (int shift = 0; shift < 9; ++shift) {
            std::memcpy(&moved[shift], block.spec(), Block::sizeOf(fast, {64, 64}));
            for (Kpr8u spot : {9, 10}) {
                src[2080] = spot;
                int count = -1;
                EXPECT_EQ(kpriFastN_8u_C1R(src.data(), 64, corner.data(), 64, nullptr, 0, &count, {0, 0}, {64, 64},
                                           reinterpret_cast<KprFastNSpec*>(&moved[shift]), buffer.data()),
                          kprStatusOk);
                EXPECT_EQ(count, spot == 9 ? 0 : 1);
            }
        }
    }
}

template <typename... A>
test::Ladder<A...> parameters(const char* name, KprStatus (*function)(A...)) {
    test::Ladder<A...> ladder(name, function);
    ladder.template with<1>(3).template with<2>(9).template with<3>(8).template with<4>(0x27);
    ladder.template with<5>(kpr8u).template with<6>(1).nulls().sizes();
    return ladder;
}

template <typename Ladder>
void runParameters(Ladder& ladder) {
    for (int type : {0, 5, 13, -1}) ladder.template refuses<5>(type, kprStatusBadDataType);
    for (int channels : {0, 3}) ladder.template refuses<6>(channels, kprStatusBadChannel);
    for (int option : {0, 0x23, 0x2f, 0x46, 6, -1}) ladder.template refuses<4>(option, kprStatusBadArg);
    for (int bins : {0, 65, -1}) ladder.template refuses<3>(bins, kprStatusOutOfRange);
    for (int radius : {0, 4, 6, 8, 10, -3}) ladder.template refuses<1>(radius, kprStatusBadArg);
    for (int arc : {8, 17, -9}) ladder.template refuses<2>(arc, kprStatusOutOfRange);
    ladder.run();
}

TEST(FastN, ParameterLadders) {
    auto sizing = parameters("kpriFastNGetSize", kpriFastNGetSize);
    runParameters(sizing);

    GuardedBytes memory(8 * 16 + 68, Guard::After);
    auto init = parameters("kpriFastNInit", kpriFastNInit);
    init.with<8>(reinterpret_cast<KprFastNSpec*>(memory.data())).with<7>(0.0F);
    for (float bad : {-1.0F, -1e-30F, std::nanf("")}) init.refuses<7>(bad, kprStatusBadThreshold);
    runParameters(init);

    LADDER(kpriFastNGetBufferSize).nulls().sizes().refuses<1>({400000000, 1}, kprStatusSizeOverflow).run();
    int size = 0;
    EXPECT_EQ(kpriFastNGetBufferSize(reinterpret_cast<KprFastNSpec*>(&size), {100, 1}, &size), kprStatusOk);
    EXPECT_EQ(size, 1236);
    EXPECT_EQ(kpriFastNGetSize({9, 9}, 9, 52, 0, 4, kpr8u, 1, &size), kprStatusOk);
    EXPECT_EQ(size, 8 * 52 + 68);
}

Kpr8u scratch[1000];

TEST(FastN, SearchLadder) {
    const Fast fast = {1, 5, 8, 0x27, 0};
    Block good(fast, {7, 3}), notABlock(fast, {7, 3}), otherType(fast, {7, 3}), otherChannels(fast, {7, 3}),
        empty(fast, {7, 3}), option(fast, {7, 3}), bins(fast, {7, 3}), radius(fast, {7, 3}), arc(fast, {7, 3});
    *notABlock.word(0) = 0x4B617391;
    *otherType.word(1) = kpr16u;
    *otherChannels.word(2) = 3;
    *empty.word(4) = 0;
    *option.word(8) = 0x22;
    *bins.word(7) = 65;
    *radius.word(5) = 4;
    *arc.word(6) = 4;
    const auto blocks = [&]<int index>(auto& ladder) {
        ladder.template with<index>(good.spec());
        for (auto [block, status] : {std::pair(&notABlock, kprStatusBadContext),
                                     {&otherType, kprStatusBadDataType},
                                     {&otherChannels, kprStatusBadChannel},
                                     {&empty, kprStatusBadSize}})
            ladder.template refuses<index>(block->spec(), status);
    };
    const auto contents = [&]<int index>(auto& ladder) {
        for (auto [block, status] : {std::pair(&option, kprStatusBadArg), {&bins, kprStatusOutOfRange}})
            ladder.template refuses<index>(block->spec(), status);
    };
    const auto circles = [&]<int index>(auto& ladder) {
        for (auto [block, status] : {std::pair(&radius, kprStatusBadArg), {&arc, kprStatusOutOfRange}})
            ladder.template refuses<index>(block->spec(), status);
    };
    {
        auto ladder = LADDER(kpriFastN_8u_C1R);
        ladder.with<8>({7, 3}).with<10>(scratch).nulls({2}).sizes();
        blocks.operator()<9>(ladder);
        ladder.lengths({0, 1, 2});
        contents.operator()<9>(ladder);
        ladder.refuses<4>(nullptr, kprStatusNullPtr);
        circles.operator()<9>(ladder);
        ladder.run();
    }
    {
        auto ladder = LADDER(kpriFastN2DToVec_8u);
        ladder.with<6>(3).nulls({1}).sizes().refuses<6>(-1, kprStatusBadSize);
        blocks.operator()<8>(ladder);
        ladder.lengths({0, 1});
        contents.operator()<8>(ladder);
        ladder.refuses<2>(nullptr, kprStatusNullPtr);
        circles.operator()<8>(ladder);
        ladder.run();
    }
}

// What was never a block is told by its first bytes; no more are looked at.
TEST(FastN, NeverInitialised) {
    GuardedBytes memory(12, Guard::After);
    for (int first = 0; first < 256; ++first) {
        std::memset(memory.data(), first, 12);
        memory.data()[0] = static_cast<char>(first);
        int count = 3;
        auto* const spec = reinterpret_cast<KprFastNSpec*>(memory.data());
        EXPECT_EQ(kpriFastN_8u_C1R(scratch, 9, scratch, 9, scratch, 9, &count, {0, 0}, {1, 1}, spec, scratch),
                  kprStatusBadContext);
        EXPECT_EQ(count, 3);
    }
}

}  // namespace
