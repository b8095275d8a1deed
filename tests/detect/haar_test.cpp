#include <gtest/gtest.h>

#include <algorithm>
#include <memory>

#include "tests/reference/detect.h"
#include "tests/support/guarded_image.h"
#include "tests/support/ladder.h"

struct KprHaarClassifier {
    Kpr8u bytes[8192];
};

namespace {

using reference::Sums;
using test::Guard;
using test::GuardedBytes;
using test::GuardedImage;
using test::Random;

template <typename V>
constexpr KprDataType kTypeOf = std::is_same_v<V, Kpr32f> ? kpr32f : kpr32s;

// ---- a stage as a caller holds it

template <typename V>
struct Stage {
    std::vector<int> features, counts;
    std::vector<V> weights, thresholds, below, above;

    int classifiers() const { return static_cast<int>(counts.size()); }
    KprRect rect(std::size_t i) const {
        return {features[4 * i], features[4 * i + 1], features[4 * i + 2], features[4 * i + 3]};
    }
};

template <typename V>
V number(Random& random, int largest) {
    const int value = random.range(-largest, largest);
    if constexpr (std::is_integral_v<V>)
        return value;
    else
        return static_cast<V>(value) / static_cast<V>(random.range(1, 9));
}

// Features of a window of 24 x 24, as many to a classifier as `counts` has.
template <typename V>
Stage<V> randomStage(Random& random, std::vector<int> counts, bool tilted = false) {
    Stage<V> stage;
    stage.counts = std::move(counts);
    for (int count : stage.counts) {
        for (int i = 0; i < count; ++i) {
            const int x = random.range(0, 12), y = random.range(0, 12);
            for (int v : {x, y, random.range(1, 12), random.range(1, tilted ? x + 1 : 12)}) stage.features.push_back(v);
            stage.weights.push_back(number<V>(random, 5));
        }
        stage.thresholds.push_back(number<V>(random, 200));
        stage.below.push_back(number<V>(random, 100));
        stage.above.push_back(number<V>(random, 100));
    }
    return stage;
}

// Counts of features in mixed order, of every kind.
std::vector<int> randomCounts(Random& random) {
    std::vector<int> counts(static_cast<std::size_t>(random.range(1, 12)));
    for (int& count : counts) count = random.oneIn(6) ? random.range(4, 40) : random.range(1, 3);
    return counts;
}

// The block, of exactly the stated size, at any address.
template <typename V>
class Block {
  public:
    Block(const Stage<V>& stage, KprSize roi, Random& random, bool tilted = false)
        : slack_(static_cast<std::size_t>(random.range(0, 3))), memory_(sizeOf(stage, roi) + slack_, Guard::After) {
        EXPECT_EQ(init(stage, tilted), kprStatusOk);
    }

    KprHaarClassifier* state() const { return reinterpret_cast<KprHaarClassifier*>(memory_.data()); }

  private:
    static std::size_t sizeOf(const Stage<V>& stage, KprSize roi) {
        int size = 0;
        EXPECT_EQ(kpriHaarClassifierGetSize(kTypeOf<V>, roi, stage.counts.data(), stage.classifiers(), &size),
                  kprStatusOk);
        return static_cast<std::size_t>(size);
    }

    KprStatus init(const Stage<V>& s, bool tilted) {
        const auto call = [&](auto function) {
            return function(state(), s.features.data(), s.weights.data(), s.thresholds.data(), s.below.data(),
                            s.above.data(), s.counts.data(), s.classifiers());
        };
        if constexpr (std::is_same_v<V, Kpr32f>)
            return call(tilted ? kpriTiltedHaarClassifierInit_32f : kpriHaarClassifierInit_32f);
        else
            return call(tilted ? kpriTiltedHaarClassifierInit_32s : kpriHaarClassifierInit_32s);
    }

    std::size_t slack_;  // a block that ends at the inaccessible page, or one at an odd address
    GuardedBytes memory_;
};

// ---- what it means

enum class Turn { None, Tilted, Back };

template <typename V>
reference::Rectangle<V> rectangleOf(KprRect r, V weight, Turn turn) {
    const auto [x, y, w, h] = r;
    if (turn == Turn::None) return {{{x + w, y + h}, {x, y + h}, {x + w, y}, {x, y}}, weight, false};
    if (turn == Turn::Tilted) return {{{x + w - h, y + w + h}, {x - h, y + h}, {x + w, y + w}, {x, y}}, weight, true};
    return {{{x, y + h}, {x - h, y}, {x + w, y + h - w}, {x + w - h, y - w}}, weight, true};
}

// In the order in which values are added: twos, threes, others where the stage is upright. `turns` has one for each
// classifier in the caller's order.
template <typename V>
std::vector<reference::Classifier<V>> meaningOf(const Stage<V>& stage, const std::vector<Turn>& turns, bool grouped) {
    std::vector<reference::Classifier<V>> all;
    std::size_t next = 0;
    for (std::size_t i = 0; i < stage.counts.size(); ++i) {
        reference::Classifier<V> c{{}, stage.thresholds[i], stage.below[i], stage.above[i]};
        for (int k = 0; k < stage.counts[i]; ++k, ++next) {
            c.rectangles.push_back(rectangleOf(stage.rect(next), stage.weights[next], turns[i]));
        }
        all.push_back(c);
    }
    const auto kind = [](const auto& c) { return c.rectangles.size() == 2 ? 0 : c.rectangles.size() == 3 ? 1 : 2; };
    if (grouped) std::stable_sort(all.begin(), all.end(), [&](auto& a, auto& b) { return kind(a) < kind(b); });
    return all;
}

// ---- windows

// How many columns and rows a stage reads before and behind a window.
struct Margin {
    int left = 0, top = 0, right = 0, bottom = 0;

    template <typename V>
    explicit Margin(const std::vector<reference::Classifier<V>>& stage) {
        for (const auto& c : stage) {
            for (const auto& r : c.rectangles) {
                for (KprPoint p : r.corner) {
                    left = std::max(left, -p.x);
                    top = std::max(top, -p.y);
                    right = std::max(right, p.x + int{r.tilted});  // a tilted table's windows begin at (1, 1)
                    bottom = std::max(bottom, p.y + int{r.tilted});
                }
            }
        }
    }
};

void fillMask(GuardedImage<Kpr8u>& mask, Random& random) {
    const int kind = random.range(0, 5);
    const KprSize size = mask.size();
    for (int y = 0; y < size.height; ++y) {
        for (int x = 0; x < size.width; ++x) {
            const bool set = kind == 0   ? true
                             : kind == 1 ? x % 2 == 0 && y % 2 == 0
                             : kind == 2 ? random.oneIn(20)
                             : kind == 3 ? random.oneIn(3)
                             : kind == 4 ? x == size.width / 2 && y == size.height / 2
                                         : x / 16 % 3 == 1;
            mask.at(x, y) = static_cast<Kpr8u>(set ? random.range(1, 255) : 0);
        }
    }
}

std::vector<KprSize> windowSizes() {
    std::vector<KprSize> sizes;
    for (int width : {1, 2, 3, 4, 5, 7, 15, 16, 17, 19, 31, 33, 63, 64, 65, 66, 67, 130, 203}) {
        sizes.push_back({width, 1});
        sizes.push_back({width, 6});
    }
    sizes.push_back({300, 30});
    return sizes;
}

template <typename T, typename N>
struct Scene {
    Margin margin;
    GuardedImage<T> src, tilt;
    GuardedImage<N> norm;
    GuardedImage<Kpr8u> mask;

    Scene(Margin m, KprSize roi, Random& random, bool wild)
        : margin(m), src(sizeOf(m, roi), random), tilt(sizeOf(m, roi), random), norm(roi, random), mask(roi, random) {
        src.fill(random, wild);
        tilt.fill(random, wild);
        norm.fill(random, wild);
        if constexpr (std::is_integral_v<N>) norm.forEach([&](N& n) { n = random.range(-30000000, 30000000); });
        fillMask(mask, random);
    }
    static KprSize sizeOf(Margin m, KprSize roi) {
        return {m.left + roi.width + m.right, m.top + roi.height + m.bottom};
    }
    T* srcOrigin() { return &src.at(margin.left, margin.top); }
    T* tiltOrigin() { return &tilt.at(margin.left, margin.top); }
};

// Runs a form and its oracle over the same windows; vote(classifier, x, y) is the oracle's.
template <typename V, typename T, typename N, typename Call, typename Vote>
void checkApply(Scene<T, N>& scene, KprSize roi, const std::vector<reference::Classifier<V>>& stage, V threshold,
                Call call, Vote vote) {
    reference::Table<Kpr8u> expected(roi.width, roi.height, 0);
    int left = 0;
    for (int y = 0; y < roi.height; ++y) {
        for (int x = 0; x < roi.width; ++x) {
            if (scene.mask.at(x, y) == 0) continue;
            V sum = 0;
            for (const auto& c : stage) sum = reference::added(sum, vote(c, x, y));
            if (threshold > sum) continue;
            expected(x, y) = scene.mask.at(x, y);
            ++left;
        }
    }
    int positive = -77;
    ASSERT_EQ(call(&positive), kprStatusOk);
    EXPECT_EQ(positive, left);
    test::expectImage(scene.mask, [&](int x, int y, int) { return expected(x, y); });
}

// About half of random windows pass.
template <typename V>
V someThreshold(const std::vector<reference::Classifier<V>>& stage, Random& random) {
    double sum = 0;
    for (const auto& c : stage) sum += (double(c.below) + double(c.above)) / 2;
    return static_cast<V>(sum) + number<V>(random, 10);
}

template <typename T, typename N>
T elementOf(Scene<T, N>& scene, const KprPoint& corner, int x, int y) {
    return scene.src.at(scene.margin.left + x + corner.x, scene.margin.top + y + corner.y);
}

template <typename T, typename Function>
void checkPlainFloats(Function function, Sums sums, bool pairsAtTheEnd) {
    Random random;
    for (KprSize roi : windowSizes()) {
        const bool tilted = random.oneIn(4);
        auto stage = randomStage<Kpr32f>(random, randomCounts(random), tilted);
        const std::vector<Turn> turns(stage.counts.size(), tilted ? Turn::Tilted : Turn::None);
        Scene<T, Kpr32f> scene(Margin(meaningOf(stage, turns, false)), roi, random, random.oneIn(4));
        // Half of the time every sum of one window is at its threshold, where the last bit of a sum decides.
        if (random.oneIn(2)) {
            const int x = random.oneIn(2) ? roi.width - 1 : random.range(0, roi.width - 1);
            const int y = random.range(0, roi.height - 1);
            scene.mask.at(x, y) = 1;
            scene.norm.at(x, y) = 1;
            const auto callers = meaningOf(stage, turns, false);
            for (std::size_t i = 0; i < callers.size(); ++i) {
                stage.thresholds[i] =
                    reference::floatSum(callers[i], sums, pairsAtTheEnd && x >= roi.width / 4 * 4,
                                        [&](const auto& r, int k) { return elementOf(scene, r.corner[k], x, y); });
                stage.above[i] = std::fabs(stage.above[i]) + 1;
                stage.below[i] = -stage.above[i];
            }
        }
        const auto meaning = meaningOf(stage, turns, !tilted);
        const Block<Kpr32f> block(stage, roi, random, tilted);
        float threshold = someThreshold(meaning, random);
        if (random.oneIn(2)) {  // nothing but valueAbove passes
            threshold = 0;
            for (const auto& c : meaning) threshold += c.above;
        }
        checkApply(
            scene, roi, meaning, threshold,
            [&](int* positive) {
                return function(scene.srcOrigin(), scene.src.step(), scene.norm.data(), scene.norm.step(),
                                scene.mask.data(), scene.mask.step(), roi, positive, threshold, block.state());
            },
            [&](const auto& c, int x, int y) {
                return reference::floatVote(c, scene.norm.at(x, y), sums, pairsAtTheEnd && x >= roi.width / 4 * 4,
                                            [&](const auto& r, int i) { return elementOf(scene, r.corner[i], x, y); });
            });
        if (testing::Test::HasFailure()) return;
    }
}

TEST(HaarClassifier, Floats) { checkPlainFloats<Kpr32f>(kpriApplyHaarClassifier_32f_C1R, Sums::Chained, true); }
TEST(HaarClassifier, IntegersToFloats) {
    checkPlainFloats<Kpr32s>(kpriApplyHaarClassifier_32s32f_C1R, Sums::Lanes, false);
}

TEST(HaarClassifier, Integers) {
    Random random;
    for (KprSize roi : windowSizes()) {
        const auto stage = randomStage<Kpr32s>(random, randomCounts(random));
        const auto meaning = meaningOf(stage, std::vector(stage.counts.size(), Turn::None), true);
        Scene<Kpr32s, Kpr32s> scene(Margin(meaning), roi, random, false);
        const Block<Kpr32s> block(stage, roi, random);
        const Kpr32s threshold = someThreshold(meaning, random);
        const int scales[] = {0, -1, -7, -31, -63, -64, -1000, INT32_MIN};
        const int scale = scales[random.range(0, 7)];
        checkApply(
            scene, roi, meaning, threshold,
            [&](int* positive) {
                return kpriApplyHaarClassifier_32s_C1RSfs(scene.srcOrigin(), scene.src.step(), scene.norm.data(),
                                                          scene.norm.step(), scene.mask.data(), scene.mask.step(), roi,
                                                          positive, threshold, block.state(), scale);
            },
            [&](const auto& c, int x, int y) {
                return reference::integerVote(
                    c, scene.norm.at(x, y), scale < -63 ? 64 : -scale,
                    [&](const auto& r, int i) { return elementOf(scene, r.corner[i], x, y); });
            });
        if (HasFailure()) return;
    }
}

// Some classifiers of an upright stage turned.
template <typename V>
std::vector<Turn> turnSome(const Block<V>& block, const Stage<V>& stage, Random& random) {
    const bool forward = random.oneIn(2);
    std::vector<Kpr8u> chosen(stage.counts.size());
    std::vector<Turn> turns(stage.counts.size(), Turn::None);
    for (std::size_t i = 0; i < chosen.size(); ++i) {
        if (!random.oneIn(2)) continue;
        chosen[i] = 7;
        turns[i] = forward ? Turn::Tilted : Turn::Back;
    }
    const auto tilt = [&](const Kpr8u* mask) {
        if constexpr (std::is_same_v<V, Kpr32f>)
            return kpriTiltHaarFeatures_32f(mask, forward ? 3 : 0, block.state());
        else
            return kpriTiltHaarFeatures_32s(mask, forward ? 3 : 0, block.state());
    };
    EXPECT_EQ(tilt(std::vector<Kpr8u>(stage.counts.size()).data()), kprStatusOk);  // none: it may still be turned
    EXPECT_EQ(tilt(chosen.data()), kprStatusOk);
    const bool any = std::count(chosen.begin(), chosen.end(), 7) > 0;
    EXPECT_EQ(tilt(chosen.data()), any ? kprStatusBadArg : kprStatusOk);
    return turns;
}

// The tilted table's own step, and its first row and column before the windows.
template <typename T, typename N>
T mixedElementOf(Scene<T, N>& scene, const auto& r, int i, int x, int y) {
    if (!r.tilted) return elementOf(scene, r.corner[i], x, y);
    return scene.tilt.at(scene.margin.left + x + r.corner[i].x + 1, scene.margin.top + y + r.corner[i].y + 1);
}

template <typename V, typename T, typename N, typename Call, typename Vote>
void checkMixed(Call call, Vote vote) {
    Random random;
    for (KprSize roi : windowSizes()) {
        const auto stage = randomStage<V>(random, randomCounts(random));
        const Block<V> block(stage, roi, random);
        const auto meaning = meaningOf(stage, turnSome(block, stage, random), true);
        Scene<T, N> scene(Margin(meaning), roi, random, std::is_same_v<T, Kpr32f> && random.oneIn(4));
        const V threshold = someThreshold(meaning, random);
        checkApply(
            scene, roi, meaning, threshold,
            [&](int* positive) {
                return call(scene.srcOrigin(), scene.src.step(), scene.tiltOrigin(), scene.tilt.step(),
                            scene.norm.data(), scene.norm.step(), scene.mask.data(), scene.mask.step(), roi, positive,
                            threshold, block.state());
            },
            [&](const auto& c, int x, int y) {
                return vote(c, scene.norm.at(x, y),
                            [&](const auto& r, int i) { return mixedElementOf(scene, r, i, x, y); });
            });
        if (testing::Test::HasFailure()) return;
    }
}

TEST(HaarClassifier, Mixed) {
    const auto lanes = [](const auto& c, float norm, auto element) {
        return reference::floatVote(c, norm, Sums::Lanes, false, element);
    };
    checkMixed<Kpr32f, Kpr32f, Kpr32f>(kpriApplyMixedHaarClassifier_32f_C1R, lanes);
    checkMixed<Kpr32f, Kpr32s, Kpr32f>(kpriApplyMixedHaarClassifier_32s32f_C1R, lanes);
    checkMixed<Kpr32s, Kpr32s, Kpr32s>(
        [](auto... arguments) { return kpriApplyMixedHaarClassifier_32s_C1RSfs(arguments..., -3); },
        [](const auto& c, Kpr32s norm, auto element) { return reference::integerVote(c, norm, 3, element); });
}

// Equality keeps: acc against the threshold, and the stage's sum.
TEST(HaarClassifier, TiesAndNan) {
    Random random;
    Stage<Kpr32f> stage{{0, 0, 1, 1}, {1}, {2.0F}, {3.0F}, {-1.0F}, {5.0F}};
    const Block<Kpr32f> block(stage, {8, 1}, random);
    const float nan = std::numeric_limits<float>::quiet_NaN();
    // The sum of a window's rectangle is the element right of and below it; it counts twice, against 3 times the norm.
    const float src[2][9] = {{}, {0, 3.0F, 0, 2.999F, 0, nan, 0, 3.0F, 0}};
    const float norm[8] = {2.0F, 0, 2.0F, 0, 2.0F, 0, nan, 0};
    for (float threshold : {5.0F, nan}) {
        Kpr8u mask[8] = {1, 0, 1, 0, 1, 0, 1, 0};
        int positive = 0;
        ASSERT_EQ(kpriApplyHaarClassifier_32f_C1R(src[0], sizeof src[0], norm, sizeof norm, mask, 8, {8, 1}, &positive,
                                                  threshold, block.state()),
                  kprStatusOk);
        EXPECT_EQ(positive, std::isnan(threshold) ? 4 : 3);
        EXPECT_EQ(mask[2], std::isnan(threshold) ? 1 : 0);
    }
}

// What no window needs is not there: the tables end where the last set pixel's features do, and with a mask of zeros
// nothing is there at all.
TEST(HaarClassifier, OnlyWindowsOfTheMaskAreRead) {
    Random random;
    const auto stage = randomStage<Kpr32f>(random, {2, 3, 2, 5});
    const KprSize roi = {90, 40};
    const Block<Kpr32f> block(stage, roi, random);
    KprSize reach = {0, 0};
    ASSERT_EQ(kpriGetHaarClassifierSize_32f(block.state(), &reach), kprStatusOk);
    GuardedImage<Kpr32s> src(roi, 1, 0, Guard::After), none(roi, 1, 0, Guard::After);
    GuardedImage<Kpr32f> norm(roi, 1, 0, Guard::After);
    src.fill(random);
    norm.fill(random);
    GuardedImage<Kpr8u> mask(roi, random);
    mask.forEach([](Kpr8u& pixel) { pixel = 0; });
    int positive = 5;
    EXPECT_EQ(kpriApplyHaarClassifier_32s32f_C1R(reinterpret_cast<Kpr32s*>(64), src.step(), norm.data(), norm.step(),
                                                 mask.data(), mask.step(), roi, &positive, 0.0F, block.state()),
              kprStatusOk);
    EXPECT_EQ(positive, 0);
    for (int x = 0; x + reach.width < roi.width; ++x) mask.at(x, roi.height - 1 - reach.height) = 1;
    EXPECT_EQ(kpriApplyHaarClassifier_32s32f_C1R(src.data(), src.step(), norm.data(), norm.step(), mask.data(),
                                                 mask.step(), roi, &positive, -1e6F, block.state()),
              kprStatusOk);
    EXPECT_EQ(positive, roi.width - reach.width);
}

// With a mask step of 0 all rows have the same windows: what a row clears, the next does not see.
TEST(HaarClassifier, RowsThatShareTheirMask) {
    Random random;
    const Stage<Kpr32s> stage{{0, 0, 1, 1}, {1}, {1}, {1}, {0}, {1}};
    const Block<Kpr32s> block(stage, {20, 2}, random);
    Kpr32s src[3][21] = {};
    const std::vector<Kpr32s> norm(40, 1);
    src[2][6] = 5;  // window 5 passes in the second row only, window 9 in both
    src[1][10] = 5;
    src[2][10] = 10;
    Kpr8u mask[20] = {};
    mask[5] = mask[9] = 1;
    int positive = 0;
    ASSERT_EQ(kpriApplyHaarClassifier_32s_C1RSfs(src[0], sizeof src[0], norm.data(), 80, mask, 0, {20, 2}, &positive, 1,
                                                 block.state(), 0),
              kprStatusOk);
    EXPECT_EQ(std::pair(mask[5], mask[9]), (std::pair<Kpr8u, Kpr8u>(0, 1)));
    EXPECT_EQ(positive, 2);
}

// ---- blocks

TEST(HaarClassifier, SizesAndReach) {
    const int counts[] = {2, 3, 5};
    int size = 0;
    ASSERT_EQ(kpriHaarClassifierGetSize(kpr32f, {33, 9}, counts, 3, &size), kprStatusOk);
    EXPECT_EQ(size, 32 * 3 + 36 * 10 + 64 + 176 + 2 * 144 + 64);
    ASSERT_EQ(kpriHaarClassifierGetSize(kpr32s, {33, 9}, counts, 3, &size), kprStatusOk);
    EXPECT_EQ(size, 32 * 3 + 36 * 10 + 64 + 160 + 64);

    Random random;
    Stage<Kpr32s> stage{{2, 3, 4, 5, 1, 0, 9, 2}, {1, 1}, {1, 1}, {0, 0}, {0, 0}, {0, 0}};
    KprSize reach = {-1, -1};
    ASSERT_EQ(kpriGetHaarClassifierSize_32s(Block<Kpr32s>(stage, {4, 4}, random).state(), &reach), kprStatusOk);
    EXPECT_EQ(std::pair(reach.width, reach.height), std::pair(10, 8));
    ASSERT_EQ(kpriGetHaarClassifierSize_32s(
                  Block<Kpr32s>({{2, 3, 4, 3}, {1}, {1}, {0}, {0}, {0}}, {4, 4}, random, true).state(), &reach),
              kprStatusOk);
    EXPECT_EQ(std::pair(reach.width, reach.height), std::pair(3, 10));
}

TEST(HaarClassifier, SizingLadder) {
    const int good[] = {2, 3}, zero[] = {2, 0}, negative[] = {-1, 3}, huge[] = {INT32_MAX, INT32_MAX};
    int size = -1;
    const auto call = [&](KprDataType type, KprSize roi, const int* counts, int n, int* out) {
        return kpriHaarClassifierGetSize(type, roi, counts, n, out);
    };
    EXPECT_EQ(call(0, {0, 1}, nullptr, 0, &size), kprStatusNullPtr);
    EXPECT_EQ(call(0, {0, 1}, good, 0, nullptr), kprStatusNullPtr);
    for (KprDataType type : {kpr32s, kpr8u}) {
        EXPECT_EQ(call(type, {5, 5}, good, 0, &size), kprStatusBadSize);
        EXPECT_EQ(call(type, {5, 5}, good, -1, &size), kprStatusBadSize);
        EXPECT_EQ(call(type, {0, 5}, good, 2, &size), kprStatusBadSize);
        EXPECT_EQ(call(type, {5, -5}, good, 2, &size), kprStatusBadSize);
        EXPECT_EQ(call(type, {5, 5}, zero, 2, &size), kprStatusBadSize);
        EXPECT_EQ(call(type, {5, 5}, negative, 2, &size), kprStatusBadSize);
    }
    for (KprDataType type : {KprDataType{kpr8u}, KprDataType{kpr16s}, KprDataType{kpr64f}, KprDataType{-1}}) {
        EXPECT_EQ(call(type, {5, 5}, good, 2, &size), kprStatusBadDataType);
        EXPECT_EQ(call(type, {5, 5}, huge, 2, &size), kprStatusBadDataType);
    }
    for (KprDataType type : {kpr32s, kpr32f}) EXPECT_EQ(call(type, {5, 5}, huge, 2, &size), kprStatusSizeOverflow);
    EXPECT_EQ(call(kpr32f, {INT32_MAX, 1}, good, 2, &size), kprStatusSizeOverflow);
    EXPECT_EQ(size, -1);
}

template <typename V, typename Init>
void checkInitLadder(Init init, bool tilted) {
    alignas(64) KprHaarClassifier state;
    const V one[] = {1, 1, 1};
    const int counts[] = {1, 2}, noCounts[] = {1, 0};
    const auto rects = [](std::vector<int> first) {
        first.insert(first.begin(), {1, 1, 2, 2, 1, 1, 2, 2});
        return first;
    };
    const auto call = [&](const std::vector<int>& features, const int* n = nullptr, int count = 2) {
        return init(&state, features.data(), one, one, one, one, n != nullptr ? n : counts, count);
    };
    EXPECT_EQ(call(rects({0, 0, 1, 1})), kprStatusOk);
    EXPECT_EQ(call(rects({0, 0, 5, 2})), tilted ? kprStatusBadArg : kprStatusOk);
    EXPECT_EQ(call(rects({0, INT32_MAX, INT32_MAX, 1})), kprStatusOk);  // sums wrap; nothing is read there yet
    EXPECT_EQ(call(rects({0, 0, 1, 1}), noCounts), kprStatusBadSize);
    EXPECT_EQ(call(rects({-1, 0, 1, 1}), noCounts), kprStatusBadSize);
    EXPECT_EQ(call(rects({-1, 0, 1, 1}), counts, 0), kprStatusBadSize);
    for (std::vector<int> bad : {std::vector{-1, 0, 1, 1}, {0, -1, 1, 1}, {0, 0, 0, 1}, {0, 0, 1, 0}, {0, 0, 1, -5}}) {
        EXPECT_EQ(call(rects(bad)), kprStatusBadArg);
    }
    const std::vector<int> f = rects({-1, 0, 1, 1});
    EXPECT_EQ(init(nullptr, f.data(), one, one, one, one, noCounts, 0), kprStatusNullPtr);
    EXPECT_EQ(init(&state, nullptr, one, one, one, one, noCounts, 0), kprStatusNullPtr);
    EXPECT_EQ(init(&state, f.data(), nullptr, one, one, one, noCounts, 0), kprStatusNullPtr);
    EXPECT_EQ(init(&state, f.data(), one, nullptr, one, one, noCounts, 0), kprStatusNullPtr);
    EXPECT_EQ(init(&state, f.data(), one, one, nullptr, one, noCounts, 0), kprStatusNullPtr);
    EXPECT_EQ(init(&state, f.data(), one, one, one, nullptr, noCounts, 0), kprStatusNullPtr);
    EXPECT_EQ(init(&state, f.data(), one, one, one, one, nullptr, 0), kprStatusNullPtr);
}

TEST(HaarClassifier, InitialisingLadders) {
    checkInitLadder<Kpr32f>(kpriHaarClassifierInit_32f, false);
    checkInitLadder<Kpr32s>(kpriHaarClassifierInit_32s, false);
    checkInitLadder<Kpr32f>(kpriTiltedHaarClassifierInit_32f, true);
    checkInitLadder<Kpr32s>(kpriTiltedHaarClassifierInit_32s, true);
}

TEST(HaarClassifier, BlockLadders) {
    Random random;
    const auto stage = randomStage<Kpr32f>(random, {1, 2}, true);
    const Block<Kpr32f> tilted(stage, {4, 4}, random, true);
    const Kpr8u all[] = {1, 1}, none[] = {0, 0};
    KprSize reach;
    for (auto tilt : {kpriTiltHaarFeatures_32f, kpriTiltHaarFeatures_32s}) {
        EXPECT_EQ(tilt(nullptr, 1, tilted.state()), kprStatusNullPtr);
        EXPECT_EQ(tilt(all, 1, nullptr), kprStatusNullPtr);
        EXPECT_EQ(tilt(all, 1, tilted.state()), kprStatusBadArg);
        EXPECT_EQ(tilt(none, 0, tilted.state()), kprStatusBadArg);
    }
    for (auto size : {kpriGetHaarClassifierSize_32f, kpriGetHaarClassifierSize_32s}) {
        EXPECT_EQ(size(nullptr, &reach), kprStatusNullPtr);
        EXPECT_EQ(size(tilted.state(), nullptr), kprStatusNullPtr);
    }
}

// A stage of one pixel's rectangle, and a block that bears zeros.
alignas(64) KprHaarClassifier goodBlock, emptyBlock;

template <typename... A>
void applyLadder(const char* name, KprStatus (*function)(A...), bool mixed) {
    constexpr int count = sizeof...(A);
    constexpr bool scaled = count == 11 || count == 13;
    constexpr int state = count - 1 - int{scaled};
    using V = std::conditional_t<scaled, Kpr32s, Kpr32f>;
    const V one = 1;
    const int rect[] = {0, 0, 1, 1}, features = 1;
    if constexpr (scaled)
        EXPECT_EQ(kpriHaarClassifierInit_32s(&goodBlock, rect, &one, &one, &one, &one, &features, 1), kprStatusOk);
    else
        EXPECT_EQ(kpriHaarClassifierInit_32f(&goodBlock, rect, &one, &one, &one, &one, &features, 1), kprStatusOk);
    test::Ladder<A...> ladder(name, function);
    // Room for the elements that the last window's rectangle reads.
    ladder.channels(mixed ? std::vector{4, 4, 4, 4} : std::vector{4, 4, 4});
    ladder.template with<state>(&goodBlock).template with<1>(28).template with<3>(28);
    if constexpr (count >= 12) ladder.template with<5>(28).template with<7>(7);
    if constexpr (scaled) ladder.template with<count - 1>(0);
    ladder.nulls().sizes();
    const auto steps = [&](int step, KprStatus status) {
        ladder.template refuses<1>(step, status).template refuses<3>(step, status);
        if constexpr (count >= 12) ladder.template refuses<5>(step, status);
    };
    for (int step : {4 * 7 - 1, 0, -28}) steps(step, kprStatusBadStep);
    if constexpr (count >= 12) {
        for (int step : {6, 0, -7}) ladder.template refuses<7>(step, kprStatusBadStep);
    }
    steps(4 * 7 + 2, kprStatusStepNotMultiple);
    if constexpr (scaled) {
        for (int scale : {1, 31, INT32_MAX}) ladder.template refuses<count - 1>(scale, kprStatusBadArg);
    }
    if (!mixed) ladder.template refuses<state>(&emptyBlock, kprStatusNullPtr);
    ladder.run();
}

#define APPLY_LADDER(function, mixed) applyLadder(#function, function, mixed)

TEST(HaarClassifier, ApplyLadders) {
    APPLY_LADDER(kpriApplyHaarClassifier_32f_C1R, false);
    APPLY_LADDER(kpriApplyHaarClassifier_32s32f_C1R, false);
    APPLY_LADDER(kpriApplyHaarClassifier_32s_C1RSfs, false);
    APPLY_LADDER(kpriApplyMixedHaarClassifier_32f_C1R, true);
    APPLY_LADDER(kpriApplyMixedHaarClassifier_32s32f_C1R, true);
    APPLY_LADDER(kpriApplyMixedHaarClassifier_32s_C1RSfs, true);
}

}  // namespace
