#include <gtest/gtest.h>

#include <array>
#include <deque>

#include "examples/tour/image.h"
#include "tests/reference/optical_flow.h"
#include "tests/support/guarded_image.h"
#include "tests/support/ladder.h"

struct KprOpticalFlowPyrLK {  // whatever the library makes of it: the ladder takes the size of every type
    char any;
};

namespace {

using test::GuardedBytes;
using test::GuardedImage;
using test::Random;

// The members of a type.
template <typename T>
struct Members;
template <>
struct Members<Kpr8u> {
    static constexpr KprDataType type = kpr8u;
    static constexpr auto init = kpriOpticalFlowPyrLKInit_8u_C1R;
    static constexpr auto track = kpriOpticalFlowPyrLK_8u_C1R;
};
template <>
struct Members<Kpr16u> {
    static constexpr KprDataType type = kpr16u;
    static constexpr auto init = kpriOpticalFlowPyrLKInit_16u_C1R;
    static constexpr auto track = kpriOpticalFlowPyrLK_16u_C1R;
};
template <>
struct Members<Kpr32f> {
    static constexpr KprDataType type = kpr32f;
    static constexpr auto init = kpriOpticalFlowPyrLKInit_32f_C1R;
    static constexpr auto track = kpriOpticalFlowPyrLK_32f_C1R;
};

// A state in exactly its bytes, against an inaccessible page.
template <typename T>
class State {
  public:
    State(int winSize, KprSize roi) : memory_(bytes(winSize, roi), test::Guard::After) {
        EXPECT_EQ(Members<T>::init(&pointer_, roi, winSize, 0, reinterpret_cast<Kpr8u*>(memory_.data())), kprStatusOk);
        EXPECT_EQ(reinterpret_cast<char*>(pointer_), memory_.data());
    }
    KprOpticalFlowPyrLK* get() { return pointer_; }

  private:
    static std::size_t bytes(int winSize, KprSize roi) {
        int size = 0;
        EXPECT_EQ(kpriOpticalFlowPyrLKGetSize(winSize, roi, Members<T>::type, 0, &size), kprStatusOk);
        return static_cast<std::size_t>(size);
    }
    GuardedBytes memory_;
    KprOpticalFlowPyrLK* pointer_ = nullptr;
};

// A record over guarded levels, each made by `value(level, x, y)`.
template <typename T>
class Pyramid {
  public:
    template <typename Value>
    Pyramid(const std::vector<KprSize>& sizes, std::vector<double> rates, Random& random, Value value)
        : sizes_(sizes), rates_(std::move(rates)) {
        for (std::size_t level = 0; level < sizes.size(); ++level) {
            GuardedImage<T>& image = images_.emplace_back(sizes[level], random);
            for (int y = 0; y < image.size().height; ++y) {
                for (int x = 0; x < image.size().width; ++x)
                    image.at(x, y) = static_cast<T>(value(static_cast<int>(level), x, y));
            }
            pixels_.push_back(image.data());
            steps_.push_back(image.step());
        }
        record = {pixels_.data(), sizes_.data(), rates_.data(),
                  steps_.data(),  nullptr,       static_cast<int>(sizes.size()) - 1};
    }

    std::vector<reference::FlowLevel<T>> levels() {
        std::vector<reference::FlowLevel<T>> all;
        for (std::size_t i = 0; i < images_.size(); ++i) {
            GuardedImage<T>& image = images_[i];
            all.push_back({[&image](std::int64_t x, std::int64_t y) {
                               return image.at(static_cast<int>(x), static_cast<int>(y));
                           },
                           sizes_[i], rates_[i]});
        }
        return all;
    }

    KprPyramid record;

  private:
    std::deque<GuardedImage<T>> images_;
    std::vector<KprSize> sizes_;
    std::vector<double> rates_;
    std::vector<void*> pixels_;
    std::vector<int> steps_;
};

// What a call says of its points.
struct Tracks {
    std::vector<KprPoint32f> next;
    std::vector<Kpr8u> status;
    std::vector<Kpr32f> error;

    explicit Tracks(std::vector<KprPoint32f> guesses) : next(std::move(guesses)), status(next.size(), 77) {
        error.resize(next.size(), -5.0F);
    }
    int count() const { return static_cast<int>(next.size()); }

    template <typename T>
    KprStatus call(const KprPyramid& first, const KprPyramid& second, const std::vector<KprPoint32f>& from, int winSize,
                   int maxLevel, int maxIter, float threshold, KprOpticalFlowPyrLK* state) {
        return Members<T>::track(&first, &second, from.data(), next.data(), status.data(), error.data(), count(),
                                 winSize, maxLevel, maxIter, threshold, state);
    }
};

// A smooth scene with a flat part to its left.
double scene(double x, double y) {
    if (x < 14) return 100;
    return 128 + 50 * std::sin(x * 0.31 + 0.1 * y) + 40 * std::cos(y * 0.23 - 0.02 * x) +
           25 * std::sin(x * 0.9) * std::sin(y);
}

float anywhere(Random& random, int size) {
    constexpr float far[] = {NAN, INFINITY, -INFINITY, 1e9F, -1e9F, 3e38F, -1e-9F};
    if (random.oneIn(40)) return far[random.range(0, 6)];
    if (random.oneIn(4)) return static_cast<float>(random.range(-5, size + 4));
    return static_cast<float>(random.range(-40, 8 * size + 40)) / 8.0F +
           static_cast<float>(random.range(0, 999)) * 1e-4F;
}

template <typename T>
void checkAgainstOracle(double scale) {
    Random random;
    reference::FlowEnds ends;
    for (int round = 0; round < 40; ++round) {
        const int winSize = random.oneIn(3) ? random.range(29, 42) : random.range(1, 26);
        const int maxLevel = random.range(0, 2), maxIter = random.range(1, 7);
        const float threshold = random.oneIn(3) ? 0.0F : static_cast<float>(random.range(1, 400)) * 1e-4F;
        const double rate = random.oneIn(2) ? 0.5 : random.range(20, 100) * 0.01, movedX = random.range(-20, 20) * 0.1;
        const double movedY = random.range(-20, 20) * 0.1;
        std::vector<KprSize> sizes1, sizes2;
        std::vector<double> rates;
        for (int level = 0; level <= maxLevel + random.range(0, 1); ++level) {
            rates.push_back(std::pow(rate, level));
            sizes1.push_back({std::max(2, int(random.range(40, 75) * rates.back())),
                              std::max(2, int(random.range(35, 60) * rates.back()))});
            sizes2.push_back({sizes1.back().width + random.range(-1, 4), sizes1.back().height + random.range(-1, 4)});
        }
        const auto noise = [&] { return random.range(-300, 300) * 0.01; };
        Pyramid<T> first(sizes1, rates, random, [&](int level, int x, int y) {
            const double r = rates[static_cast<std::size_t>(level)];
            return scale * std::clamp(scene(x / r, y / r) + (x > 14 ? noise() : 0), 0.0, 255.0);
        });
        Pyramid<T> second(sizes2, rates, random, [&](int level, int x, int y) {
            const double r = rates[static_cast<std::size_t>(level)];
            return scale * std::clamp(scene(x / r - movedX, y / r - movedY) + noise(), 0.0, 255.0);
        });
        std::vector<KprPoint32f> from, guesses;
        for (int i = 0; i < 12; ++i) {
            from.push_back({anywhere(random, sizes1[0].width), anywhere(random, sizes1[0].height)});
            guesses.push_back(from.back());
            if (random.oneIn(3)) guesses.back().x += static_cast<float>(random.range(-40, 40)) * 0.1F;
            if (random.oneIn(12)) guesses.back() = {anywhere(random, 60), anywhere(random, 50)};
        }
        // Windows are all that a state has room for: any image will do.
        State<T> state(winSize, random.oneIn(2) ? sizes1[0] : KprSize{1, 1});
        Tracks tracks(guesses);
        ASSERT_EQ(tracks.call<T>(first.record, second.record, from, winSize, maxLevel, maxIter, threshold, state.get()),
                  kprStatusOk);
        reference::Flow<T> oracle(winSize, maxIter, threshold);
        for (std::size_t i = 0; i < from.size(); ++i) {
            const auto wanted = oracle.track(first.levels(), second.levels(), maxLevel, from[i], guesses[i]);
            EXPECT_EQ(tracks.status[i], wanted.status);
            EXPECT_TRUE(test::same(tracks.next[i].x, wanted.next.x) && test::same(tracks.next[i].y, wanted.next.y))
                << tracks.next[i].x << ", " << tracks.next[i].y << " expected " << wanted.next.x << ", "
                << wanted.next.y;
            EXPECT_TRUE(test::same(tracks.error[i], wanted.error)) << tracks.error[i] << " expected " << wanted.error;
            ASSERT_FALSE(testing::Test::HasFailure())
                << "round " << round << ", window " << winSize << " around " << from[i].x << ", " << from[i].y;
        }
        ends.shortStep += oracle.ends.shortStep;
        ends.oscillation += oracle.ends.oscillation;
        ends.allIterations += oracle.ends.allIterations;
        ends.noWindow += oracle.ends.noWindow;
        ends.flat += oracle.ends.flat;
        ends.missed += oracle.ends.missed;
    }
    for (int count : {ends.shortStep, ends.oscillation, ends.allIterations, ends.noWindow, ends.flat, ends.missed})
        EXPECT_GT(count, 0) << "an end that no point has come to";
}

TEST(OpticalFlow, Bytes) { checkAgainstOracle<Kpr8u>(1); }
TEST(OpticalFlow, Words) { checkAgainstOracle<Kpr16u>(200); }
TEST(OpticalFlow, Floats) { checkAgainstOracle<Kpr32f>(1.0 / 255); }

// ---- sizes, the block, checks

template <typename T>
void checkSizes() {
    const auto stated = [](long long w, KprSize roi) {
        const long long width = roi.width + 5, height = roi.height + 5, area = width * height;
        const long long p = (4 * w + 12) * (w + 3), ring = (width + 15) / 16 * 16 * 12 + 32;
        if (sizeof(T) == 1) return (32 * w + 96) * (w + 3) + 2 * (p + 32 + 2 * area) + 130;
        return 4 * (ring + (sizeof(T) == 2 ? 3 : 2) * area + p + (8 * w + 24) * (w + 3)) + 124;
    };
    for (int winSize : {1, 2, 3, 5, 21, 64, 500, 1000000}) {
        for (KprSize roi : {KprSize{1, 1},
                            {11, 3},
                            {12, 1},
                            {640, 480},
                            {1920, 1080},
                            {20000, 20000},
                            {178956970, 1},
                            {INT32_MAX, INT32_MAX},
                            {1, INT32_MAX - 5}}) {
            int size = -7;
            const KprStatus status = kpriOpticalFlowPyrLKGetSize(winSize, roi, Members<T>::type, 3, &size);
            const long long wanted = roi.width > 100000000 || roi.height > 100000000 ? 1LL << 40 : stated(winSize, roi);
            EXPECT_EQ(status, wanted > INT32_MAX ? kprStatusSizeOverflow : kprStatusOk) << winSize << " " << roi.width;
            EXPECT_EQ(size, wanted > INT32_MAX ? -7 : wanted) << winSize << " " << roi.width << " x " << roi.height;
        }
    }
}

TEST(OpticalFlow, Sizes) {
    checkSizes<Kpr8u>();
    checkSizes<Kpr16u>();
    checkSizes<Kpr32f>();
}

// The fields in their order; and any address will do.
TEST(OpticalFlow, Block) {
    int size = 0;
    ASSERT_EQ(kpriOpticalFlowPyrLKGetSize(7, {30, 20}, kpr8u, 0, &size), kprStatusOk);
    for (int offset = 0; offset < 17; ++offset) {
        GuardedBytes memory(static_cast<std::size_t>(size + offset), test::Guard::After);
        char* const at = memory.data() + offset;
        KprOpticalFlowPyrLK* state = nullptr;
        ASSERT_EQ(kpriOpticalFlowPyrLKInit_8u_C1R(&state, {30, 20}, 7, 9, reinterpret_cast<Kpr8u*>(at)), kprStatusOk);
        Kpr32s fields[7];
        char* work = nullptr;
        std::memcpy(fields, at, sizeof fields);
        std::memcpy(&work, at + 32, sizeof work);
        EXPECT_EQ(std::vector<int>({fields[0], fields[1], fields[2], fields[3], fields[5], fields[6]}),
                  std::vector<int>({30, 20, 1, 1, 9, 7}));
        EXPECT_EQ(fields[4], at + size - work);
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(work) % 16, 0U);
        EXPECT_TRUE(work >= at + 40 && work < at + 56);
    }
}

// A window of every size in the room of the smallest state: of 8u, for an image of one pixel.
template <typename T>
void checkRoom() {
    Random random;
    Pyramid<T> image({{110, 100}}, {1.0}, random, [&](int, int, int) { return random.range(0, 200); });
    for (int winSize = 1; winSize <= 80; ++winSize) {
        State<Kpr8u> state(winSize, {1, 1});
        Tracks tracks({{54.5F, 50.25F}, {12, 11}});
        const std::vector<KprPoint32f> from = {{55.0F, 50.0F}, {11.5F, 11}};
        ASSERT_EQ(tracks.call<T>(image.record, image.record, from, winSize, 0, 2, 0.01F, state.get()), kprStatusOk);
    }
}

TEST(OpticalFlow, Room) {
    checkRoom<Kpr8u>();
    checkRoom<Kpr16u>();
    checkRoom<Kpr32f>();
}

template <typename T>
void checkLadders() {
    Random random;
    Pyramid<T> image({{40, 30}, {20, 15}}, {1.0, 0.5}, random, [&](int, int x, int y) { return x * y % 200; });
    State<T> state(5, {40, 30});
    KprPyramid noImages = image.record, noSizes = image.record, noRates = image.record, noSteps = image.record;
    KprPyramid shallow = image.record;
    shallow.level = 0;
    noImages.pImage = nullptr;
    noSizes.pRoi = nullptr;
    noRates.pRate = nullptr;
    noSteps.pStep = nullptr;
    auto ladder = LADDER(Members<T>::track);
    ladder.template with<0>(&image.record).template with<1>(&image.record).template with<6>(3).template with<7>(5);
    ladder.template with<8>(1).template with<9>(3).template with<10>(0.1F).template with<11>(state.get());
    ladder.nulls().template refuses<6>(0, kprStatusBadSize).template refuses<6>(-1, kprStatusBadSize);
    for (int winSize : {0, -5, 4, 6}) ladder.template refuses<7>(winSize, kprStatusBadSize);
    ladder.template refuses<8>(-1, kprStatusBadArg).template refuses<9>(0, kprStatusBadArg);
    ladder.template refuses<10>(-0.1F, kprStatusBadArg);
    for (const KprPyramid* record : {&noImages, &noSizes, &noRates, &noSteps})
        ladder.template refuses<0>(record, kprStatusNullPtr).template refuses<1>(record, kprStatusNullPtr);
    ladder.template refuses<8>(2, kprStatusBadArg);
    ladder.template refuses<0>(&shallow, kprStatusBadArg).template refuses<1>(&shallow, kprStatusBadArg).run();
    std::vector<Kpr8u> buffer(64);
    LADDER(Members<T>::init)
        .template with<2>(5)
        .template with<4>(buffer.data())
        .template refuses<2>(0, kprStatusBadSize)
        .template refuses<2>(-3, kprStatusBadSize)
        .sizes()
        .nulls()
        .run();
}

TEST(OpticalFlow, Ladders) {
    checkLadders<Kpr8u>();
    checkLadders<Kpr16u>();
    checkLadders<Kpr32f>();
    LADDER(kpriOpticalFlowPyrLKGetSize)
        .with<0>(5)
        .with<2>(kpr8u)
        .refuses<0>(0, kprStatusBadSize)
        .sizes()
        .refuses<2>(kpr16s, kprStatusBadDataType)
        .refuses<2>(kpr64f, kprStatusBadDataType)
        .nulls()
        .run();
}

// A record of rates near 1 has more levels than a byte can tell apart.
TEST(OpticalFlow, MostLevels) {
    Random random;
    const std::vector<KprSize> sizes(260, {12, 12});
    Pyramid<Kpr8u> image(sizes, std::vector<double>(260, 1.0), random, [](int, int x, int y) { return 9 * x + y * y; });
    State<Kpr8u> state(5, {12, 12});
    for (int maxLevel : {254, 255}) {
        Tracks tracks({{6, 6}, {NAN, 6}});
        const auto from = tracks.next;
        const KprStatus status =
            tracks.call<Kpr8u>(image.record, image.record, from, 5, maxLevel, 2, 0.1F, state.get());
        EXPECT_EQ(status, maxLevel == 254 ? kprStatusOk : kprStatusBadArg);
        EXPECT_EQ(tracks.status, maxLevel == 254 ? std::vector<Kpr8u>({0, 255}) : std::vector<Kpr8u>({77, 77}));
    }
}

// ---- levels that cannot be read

TEST(OpticalFlow, UnusableLevels) {
    Random random;
    const auto value = [](int, int x, int y) {
        return 100 + 60 * std::sin(x * 0.7) + 50 * std::cos(y * 0.6 + x * 0.1);
    };
    const std::vector<KprSize> sizes = {{60, 50}, {30, 25}, {15, 13}};
    const std::vector<double> rates = {1.0, 0.5, 0.25};
    const std::vector<KprPoint32f> from = {{30, 25}, {26, 28}};
    State<Kpr8u> state(7, sizes[0]);
    struct Case {
        const char* what;
        int image;
        void (*spoil)(KprPyramid&);
        KprStatus status;
    };
    for (const Case& c : {Case{"no first image", 0, [](KprPyramid& p) { p.pImage[1] = nullptr; }, kprStatusNullPtr},
                          {"no width", 0, [](KprPyramid& p) { p.pRoi[1].width = 0; }, kprStatusBadSize},
                          {"a short step", 0, [](KprPyramid& p) { p.pStep[1] = 29; }, kprStatusOk},
                          {"no second image", 1, [](KprPyramid& p) { p.pImage[1] = nullptr; }, kprStatusOk},
                          {"no height", 1, [](KprPyramid& p) { p.pRoi[1].height = -1; }, kprStatusOk},
                          {"a negative step", 1, [](KprPyramid& p) { p.pStep[1] = -64; }, kprStatusOk}}) {
        Pyramid<Kpr8u> first(sizes, rates, random, value), second(sizes, rates, random, value);
        Tracks tracks(from);
        c.spoil((c.image == 0 ? first : second).record);
        EXPECT_EQ(tracks.call<Kpr8u>(first.record, second.record, from, 7, 2, 5, 0.01F, state.get()), c.status)
            << c.what;
        EXPECT_EQ(tracks.status, std::vector<Kpr8u>(2, 2)) << c.what;
        const bool stopped = c.status != kprStatusOk;
        for (float error : tracks.error) EXPECT_EQ(error, stopped ? -5.0F : 0.0F) << c.what;
        for (std::size_t i = 0; i < 2; ++i) {
            EXPECT_NEAR(tracks.next[i].x, from[i].x, 1e-3) << c.what;
            EXPECT_NEAR(tracks.next[i].y, from[i].y, 1e-3) << c.what;
        }
    }
}

// ---- what is told of edge cases

TEST(OpticalFlow, FlatWindow) {
    Random random;
    const auto value = [](int level, int x, int) { return level == 1 && x > 9 ? 20 * x % 256 : 90; };
    Pyramid<Kpr8u> image({{40, 40}, {20, 20}}, {1.0, 0.5}, random, value);
    State<Kpr8u> state(5, {40, 40});
    Tracks tracks({{10, 20}});
    ASSERT_EQ(tracks.call<Kpr8u>(image.record, image.record, {{10.5F, 20}}, 5, 1, 5, 0.01F, state.get()), kprStatusOk);
    EXPECT_EQ(tracks.status[0], 2);
    EXPECT_EQ(tracks.error[0], 0.0F);
    EXPECT_EQ(tracks.next[0].x, 10.0F);
}

TEST(OpticalFlow, OtherPointsDoNotMatter) {
    Random random;
    const auto value = [](int, int x, int y) {
        return 100 + 60 * std::sin(x * 0.7) + 50 * std::cos(y * 0.6 + x * 0.1);
    };
    Pyramid<Kpr32f> first({{60, 50}}, {1.0}, random, value), second({{60, 50}}, {1.0}, random, [&](int, int x, int y) {
        return x > 45 ? NAN : 100 + 60 * std::sin((x - 1) * 0.7) + 50 * std::cos(y * 0.6 + (x - 1) * 0.1);
    });
    State<Kpr32f> state(9, {60, 50});
    const std::vector<KprPoint32f> alone = {{20.3F, 24}};
    Tracks one(alone);
    ASSERT_EQ(one.call<Kpr32f>(first.record, second.record, alone, 9, 0, 20, 0.001F, state.get()), kprStatusOk);
    EXPECT_EQ(one.status[0], 0);
    EXPECT_NEAR(one.next[0].x, 21.3F, 0.02);
    const std::vector<KprPoint32f> strange = {{NAN, 24}, {1e30F, -INFINITY}, {46, 20}, {20.3F, 24}, {-400, 3}};
    Tracks many(strange);
    ASSERT_EQ(many.call<Kpr32f>(first.record, second.record, strange, 9, 0, 20, 0.001F, state.get()), kprStatusOk);
    EXPECT_EQ(many.status, std::vector<Kpr8u>({1, 1, 1, 0, 1}));
    EXPECT_TRUE(test::same(many.next[3].x, one.next[0].x) && test::same(many.next[3].y, one.next[0].y));
    // A first step that is no number is no last one.
    const std::vector<KprPoint32f> beside = {{43, 20}};
    Tracks lost(beside);
    ASSERT_EQ(lost.call<Kpr32f>(first.record, second.record, beside, 9, 0, 1, 0.001F, state.get()), kprStatusOk);
    EXPECT_EQ(lost.status[0], 1);
    EXPECT_EQ(lost.next[0].x, 43.0F);
}

// ---- a photograph

using Photo = std::function<double(double x, double y)>;

Photo photograph(const char* file) {
    const tour::Gray gray = tour::readGray(std::string(KPRCV_PHOTOS_DIR) + "/" + file);
    return [gray](double x, double y) {  // cubic convolution, so that fractions blur little
        const int ix = static_cast<int>(std::floor(x)), iy = static_cast<int>(std::floor(y));
        const auto weights = [](double f) {
            return std::array{f * (-0.5 + f * (1 - 0.5 * f)), 1 + f * f * (-2.5 + 1.5 * f),
                              f * (0.5 + f * (2 - 1.5 * f)), f * f * (-0.5 + 0.5 * f)};
        };
        const auto wx = weights(x - ix), wy = weights(y - iy);
        double sum = 0;
        for (int j = 0; j < 4; ++j) {
            for (int i = 0; i < 4; ++i)
                sum += wx[static_cast<std::size_t>(i)] * wy[static_cast<std::size_t>(j)] *
                       gray.at(std::clamp(ix + i - 1, 0, gray.width - 1), std::clamp(iy + j - 1, 0, gray.height - 1));
        }
        return sum;
    };
}

// A part of a photograph, its levels made of means of 2 x 2.
template <typename T>
Pyramid<T> levelsOf(const Photo& photo, double scale, double noise, Random& random) {
    const KprSize size = {320, 256};
    std::vector<std::vector<double>> levels(3);
    std::vector<KprSize> sizes;
    for (int level = 0; level < 3; ++level) {
        sizes.push_back({size.width >> level, size.height >> level});
        for (int y = 0; y < sizes.back().height; ++y) {
            for (int x = 0; x < sizes.back().width; ++x) {
                const auto above = [&](int i, int j) {
                    const std::size_t n =
                        static_cast<std::size_t>(2 * y + j) * sizes[static_cast<std::size_t>(level) - 1].width;
                    return levels[static_cast<std::size_t>(level) - 1][n + static_cast<std::size_t>(2 * x + i)];
                };
                const double value = level == 0 ? photo(x, y) + noise * random.range(-100, 100) / 100.0
                                                : (above(0, 0) + above(1, 0) + above(0, 1) + above(1, 1)) / 4;
                levels[static_cast<std::size_t>(level)].push_back(std::clamp(value, 0.0, 255.0));
            }
        }
    }
    return Pyramid<T>(sizes, {1.0, 0.5, 0.25}, random, [&](int level, int x, int y) {
        const auto n = static_cast<std::size_t>(level);
        const double value = levels[n][static_cast<std::size_t>(y * sizes[n].width + x)] * scale;
        return std::is_floating_point_v<T> ? value : std::floor(value + 0.5);
    });
}

// Points with texture around them, on a grid.
std::vector<KprPoint32f> texturedPoints(const Photo& photo) {
    std::vector<KprPoint32f> points;
    for (int y = 24; y < 232; y += 16) {
        for (int x = 24; x < 296; x += 16) {
            double xx = 0, yy = 0, xy = 0;
            for (int j = -8; j <= 8; j += 2) {
                for (int i = -8; i <= 8; i += 2) {
                    const double dx = photo(x + i + 1, y + j) - photo(x + i - 1, y + j);
                    const double dy = photo(x + i, y + j + 1) - photo(x + i, y + j - 1);
                    xx += dx * dx, yy += dy * dy, xy += dx * dy;
                }
            }
            const double smaller = (xx + yy - std::hypot(xx - yy, 2 * xy)) / 2;
            if (smaller > 16000) points.push_back({static_cast<float>(x) + 0.37F, static_cast<float>(y) - 0.21F});
        }
    }
    return points;
}

struct Motion {
    double x, y, degrees = 0, scale = 1;

    // From the first image to the second, and back, around the middle.
    KprPoint32f moved(KprPoint32f p) const {
        const double c = scale * std::cos(degrees * M_PI / 180), s = scale * std::sin(degrees * M_PI / 180);
        const double u = p.x - 160, v = p.y - 128;
        return {static_cast<float>(160 + x + c * u - s * v), static_cast<float>(128 + y + s * u + c * v)};
    }
    Photo of(const Photo& photo) const {
        return [*this, photo](double px, double py) {
            const double c = std::cos(degrees * M_PI / 180) / scale, s = std::sin(degrees * M_PI / 180) / scale;
            const double u = px - 160 - x, v = py - 128 - y;
            return photo(160 + c * u + s * v, 128 - s * u + c * v);
        };
    }
};

// Share of the points that are tracked, and the median of their errors in pixels.
template <typename T>
void checkPhotograph(const Motion& motion, double noise, double scale, double leastShare, double mostError) {
    Random random;
    const Photo photo = [whole = photograph("astronaut.png")](double x, double y) { return whole(x + 110, y + 60); };
    Pyramid<T> first = levelsOf<T>(photo, scale, noise, random),
               second = levelsOf<T>(motion.of(photo), scale, noise, random);
    const std::vector<KprPoint32f> points = texturedPoints(photo);
    ASSERT_GT(points.size(), 50U);
    State<T> state(21, {320, 256});
    Tracks tracks(points);
    ASSERT_EQ(tracks.call<T>(first.record, second.record, points, 21, 2, 20, 0.01F, state.get()), kprStatusOk);
    std::vector<double> errors;
    for (std::size_t i = 0; i < points.size(); ++i) {
        const KprPoint32f wanted = motion.moved(points[i]);
        if (tracks.status[i] == 0)
            errors.push_back(std::hypot(tracks.next[i].x - wanted.x, tracks.next[i].y - wanted.y));
    }
    std::sort(errors.begin(), errors.end());
    ASSERT_GE(errors.size(), leastShare * points.size());
    EXPECT_LT(errors[errors.size() / 2], mostError);
}

// What bilinear interpolation takes off a sharp picture is most of the error: least of it at whole pixels.
TEST(OpticalFlow, MovedPhotograph) {
    checkPhotograph<Kpr8u>({5, -3}, 0, 1, 0.99, 0.005);
    checkPhotograph<Kpr8u>({3.3, -2.6}, 0, 1, 0.99, 0.05);
    checkPhotograph<Kpr8u>({3.3, -2.6}, 4, 1, 0.99, 0.05);
    checkPhotograph<Kpr8u>({-7.75, 5.5}, 4, 1, 0.98, 0.05);
    checkPhotograph<Kpr16u>({3.3, -2.6}, 4, 257, 0.99, 0.05);
    checkPhotograph<Kpr32f>({3.3, -2.6}, 4, 1.0 / 255, 0.99, 0.05);
}

// The middle of a window's texture is not the window's: where it turns, that is an error.
TEST(OpticalFlow, TurnedPhotograph) {
    checkPhotograph<Kpr8u>({2.2, 1.4, 3}, 2, 1, 0.95, 0.35);
    checkPhotograph<Kpr8u>({-1.5, 2.5, -2, 1.04}, 2, 1, 0.95, 0.35);
}

// Points of which the second image has nothing are lost, and said to be.
TEST(OpticalFlow, PointsThatLeave) {
    Random random;
    const Photo photo = [whole = photograph("astronaut.png")](double x, double y) { return whole(x + 110, y + 60); };
    Pyramid<Kpr8u> first = levelsOf<Kpr8u>(photo, 1, 2, random);
    Pyramid<Kpr8u> second = levelsOf<Kpr8u>(Motion{60, 0}.of(photo), 1, 2, random);
    State<Kpr8u> state(21, {320, 256});
    std::vector<KprPoint32f> from, guesses;
    for (const KprPoint32f& p : texturedPoints(photo)) {
        from.push_back(p);
        guesses.push_back({p.x + 58, p.y + 1});
    }
    Tracks tracks(guesses);
    ASSERT_EQ(tracks.call<Kpr8u>(first.record, second.record, from, 21, 2, 20, 0.01F, state.get()), kprStatusOk);
    int left = 0;
    for (std::size_t i = 0; i < from.size(); ++i) {
        if (from[i].x + 60 > 320 + 12) {
            EXPECT_NE(tracks.status[i], 0) << from[i].x << " -> " << tracks.next[i].x;
            ++left;
        } else if (from[i].x + 60 < 300) {
            EXPECT_EQ(tracks.status[i], 0);
            EXPECT_NEAR(tracks.next[i].x, from[i].x + 60, 0.6);
        }
    }
    EXPECT_GT(left, 0);
}

}  // namespace
