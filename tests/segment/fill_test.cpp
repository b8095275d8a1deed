#include <gtest/gtest.h>

#include "tests/reference/segment.h"
#include "tests/segment/scenes.h"
#include "tests/support/ladder.h"

namespace {

using test::GuardedBytes;
using test::GuardedImage;
using test::Random;
using test::Scene;

enum class Kind { Plain, Range, Gradient };

// What a call is made with: one value a channel, of which a form of one channel takes the first.
template <typename T>
struct Call {
    KprPoint seed;
    T value[3], lower[3], upper[3];
};

template <typename T>
struct Function {
    Kind kind;
    int neighbours, channels;
    std::function<KprStatus(T*, int, KprSize, const Call<T>&, KprConnectedComp*, Kpr8u*)> run;
};

template <typename Visit>
void everyFill(Visit visit) {
    visit(Kind::Plain, 4, kpriFloodFill_4Con_8u_C1IR);
    visit(Kind::Plain, 4, kpriFloodFill_4Con_8u_C3IR);
    visit(Kind::Plain, 4, kpriFloodFill_4Con_16u_C1IR);
    visit(Kind::Plain, 4, kpriFloodFill_4Con_16u_C3IR);
    visit(Kind::Plain, 4, kpriFloodFill_4Con_32s_C1IR);
    visit(Kind::Plain, 4, kpriFloodFill_4Con_32f_C1IR);
    visit(Kind::Plain, 4, kpriFloodFill_4Con_32f_C3IR);
    visit(Kind::Plain, 8, kpriFloodFill_8Con_8u_C1IR);
    visit(Kind::Plain, 8, kpriFloodFill_8Con_8u_C3IR);
    visit(Kind::Plain, 8, kpriFloodFill_8Con_16u_C1IR);
    visit(Kind::Plain, 8, kpriFloodFill_8Con_16u_C3IR);
    visit(Kind::Plain, 8, kpriFloodFill_8Con_32s_C1IR);
    visit(Kind::Plain, 8, kpriFloodFill_8Con_32f_C1IR);
    visit(Kind::Plain, 8, kpriFloodFill_8Con_32f_C3IR);
    visit(Kind::Range, 4, kpriFloodFill_Range4Con_8u_C1IR);
    visit(Kind::Range, 4, kpriFloodFill_Range4Con_8u_C3IR);
    visit(Kind::Range, 4, kpriFloodFill_Range4Con_16u_C1IR);
    visit(Kind::Range, 4, kpriFloodFill_Range4Con_16u_C3IR);
    visit(Kind::Range, 4, kpriFloodFill_Range4Con_32f_C1IR);
    visit(Kind::Range, 4, kpriFloodFill_Range4Con_32f_C3IR);
    visit(Kind::Range, 8, kpriFloodFill_Range8Con_8u_C1IR);
    visit(Kind::Range, 8, kpriFloodFill_Range8Con_8u_C3IR);
    visit(Kind::Range, 8, kpriFloodFill_Range8Con_16u_C1IR);
    visit(Kind::Range, 8, kpriFloodFill_Range8Con_16u_C3IR);
    visit(Kind::Range, 8, kpriFloodFill_Range8Con_32f_C1IR);
    visit(Kind::Range, 8, kpriFloodFill_Range8Con_32f_C3IR);
    visit(Kind::Gradient, 4, kpriFloodFill_Grad4Con_8u_C1IR);
    visit(Kind::Gradient, 4, kpriFloodFill_Grad4Con_8u_C3IR);
    visit(Kind::Gradient, 4, kpriFloodFill_Grad4Con_16u_C1IR);
    visit(Kind::Gradient, 4, kpriFloodFill_Grad4Con_16u_C3IR);
    visit(Kind::Gradient, 4, kpriFloodFill_Grad4Con_32f_C1IR);
    visit(Kind::Gradient, 4, kpriFloodFill_Grad4Con_32f_C3IR);
    visit(Kind::Gradient, 8, kpriFloodFill_Grad8Con_8u_C1IR);
    visit(Kind::Gradient, 8, kpriFloodFill_Grad8Con_8u_C3IR);
    visit(Kind::Gradient, 8, kpriFloodFill_Grad8Con_16u_C1IR);
    visit(Kind::Gradient, 8, kpriFloodFill_Grad8Con_16u_C3IR);
    visit(Kind::Gradient, 8, kpriFloodFill_Grad8Con_32f_C1IR);
    visit(Kind::Gradient, 8, kpriFloodFill_Grad8Con_32f_C3IR);
}

// A value and deltas as a form takes them: elements, or pointers to three.
template <typename A, typename T>
A argument(const T (&values)[3]) {
    if constexpr (std::is_pointer_v<A>)
        return values;
    else
        return values[0];
}

template <typename T, typename A>
Function<T> functionOf(Kind kind, int neighbours,
                       KprStatus (*fill)(T*, int, KprSize, KprPoint, A, KprConnectedComp*, Kpr8u*)) {
    return {kind, neighbours, std::is_pointer_v<A> ? 3 : 1,
            [=](T* image, int step, KprSize size, const Call<T>& c, auto* record, auto* buffer) {
                return fill(image, step, size, c.seed, argument<A>(c.value), record, buffer);
            }};
}
template <typename T, typename A>
Function<T> functionOf(Kind kind, int neighbours,
                       KprStatus (*fill)(T*, int, KprSize, KprPoint, A, A, A, KprConnectedComp*, Kpr8u*)) {
    return {kind, neighbours, std::is_pointer_v<A> ? 3 : 1,
            [=](T* image, int step, KprSize size, const Call<T>& c, auto* record, auto* buffer) {
                return fill(image, step, size, c.seed, argument<A>(c.value), argument<A>(c.lower), argument<A>(c.upper),
                            record, buffer);
            }};
}

template <typename T>
std::vector<Function<T>> functions() {
    std::vector<Function<T>> all;
    everyFill([&]<typename... A>(Kind kind, int neighbours, KprStatus (*fill)(A...)) {
        if constexpr (std::is_same_v<std::tuple_element_t<0, std::tuple<A...>>, T*>)
            all.push_back(functionOf(kind, neighbours, fill));
    });
    return all;
}

// Bounds around a value: wide integers stopped at the type's ends, floats rounded once.
template <typename T>
bool within(T value, T reference, T lower, T upper) {
    if constexpr (std::is_floating_point_v<T>) {
        const T low = reference - lower, high = reference + upper;
        return low <= value && value <= high;
    } else {
        return std::int64_t{reference} - lower <= value && value <= std::int64_t{reference} + upper;
    }
}

template <typename T>
reference::Filled expectedFill(const Function<T>& f, const reference::Picture<T>& image, const Call<T>& call) {
    const auto all = [&](auto test) {
        bool holds = true;
        for (int c = 0; c < f.channels; ++c) holds = holds && test(c);
        return holds;
    };
    const T* seed = image.at(call.seed.x, call.seed.y);
    if (f.kind == Kind::Gradient) {
        return reference::reach(image, call.seed, f.neighbours, [&](const T* from, const T* to) {
            return all([&](int c) { return within(to[c], from[c], call.lower[c], call.upper[c]); });
        });
    }
    const auto passes = [&](const T* p) {
        return all([&](int c) {
            return f.kind == Kind::Plain ? p[c] == seed[c] : within(p[c], seed[c], call.lower[c], call.upper[c]);
        });
    };
    if (f.kind == Kind::Plain) {
        return reference::reach(image, call.seed, f.neighbours, [&](const T*, const T* to) { return passes(to); });
    }
    std::vector<char> map;
    for (int y = 0; y < image.size.height; ++y) {
        for (int x = 0; x < image.size.width; ++x) map.push_back(passes(image.at(x, y)));
    }
    return reference::fillInOrder(image.size, map, call.seed, f.neighbours,
                                  long(image.size.width) * image.size.height / 4);
}

template <typename T>
void runAndCompare(const Function<T>& f, GuardedImage<T>& image, const Call<T>& call, Random& random) {
    const KprSize size = image.size();
    reference::Picture<T> before{size, f.channels, {}};
    image.forEach([&](T& p) { before.pixels.push_back(p); });
    const auto expected = expectedFill(f, before, call);
    int bytes = 0;
    ASSERT_EQ((f.kind == Kind::Gradient ? kpriFloodFillGetSize_Grad : kpriFloodFillGetSize)(size, &bytes), kprStatusOk);
    const GuardedBytes buffer(std::size_t(bytes), random.oneIn(4) ? test::Guard::Before : test::Guard::After);
    KprConnectedComp record = {-1, {-1, -1, -1}, {-1, -1, -1, -1}};
    ASSERT_EQ(f.run(image.data(), image.step(), size, call, &record, reinterpret_cast<Kpr8u*>(buffer.data())),
              kprStatusOk);
    test::expectImage(
        image,
        [&](int x, int y, int c) {
            return expected.map[std::size_t(y) * size.width + x] ? call.value[c] : before.at(x, y)[c];
        },
        f.channels);
    EXPECT_EQ(record.area, expected.area);
    EXPECT_EQ(record.rect.x, expected.rect.x);
    EXPECT_EQ(record.rect.y, expected.rect.y);
    EXPECT_EQ(record.rect.width, expected.rect.width);
    EXPECT_EQ(record.rect.height, expected.rect.height);
    for (int c = 0; c < 3; ++c) EXPECT_EQ(record.value[c], c < f.channels ? double(call.value[c]) : 0.0);
}

template <typename T>
class Fill : public testing::Test {};
using Types = testing::Types<Kpr8u, Kpr16u, Kpr32s, Kpr32f>;
TYPED_TEST_SUITE(Fill, Types);

// Regions of values 100 to 103 among walls near them; the new value is far away, or in gradients any.
template <typename T>
void draw(const Function<T>& f, Scene scene, KprSize size, Random& random) {
    GuardedImage<T> image(size, random, f.channels);
    const auto map = drawScene(scene, size, random);
    Call<T> call{{random.range(0, size.width - 1), random.range(0, size.height - 1)}, {}, {}, {}};
    const int spread = f.kind == Kind::Plain ? 0 : 3;
    for (int y = 0; y < size.height; ++y) {
        for (int x = 0; x < size.width; ++x) {
            const int wall = random.range(0, f.channels - 1);  // the channel that stops the fill
            for (int c = 0; c < f.channels; ++c) {
                const bool open = map[std::size_t(y) * size.width + x] != 0 || c != wall;
                image.at(x, y, c) = static_cast<T>(open ? 100 + random.range(0, spread) : random.range(108, 110));
            }
        }
    }
    for (int c = 0; c < 3; ++c) {
        call.value[c] = static_cast<T>(random.range(180, 250));
        call.lower[c] = static_cast<T>(random.range(1, 3));
        call.upper[c] = static_cast<T>(random.range(1, 3));
    }
    if (f.kind == Kind::Gradient && random.oneIn(3)) call.value[0] = static_cast<T>(101);
    runAndCompare(f, image, call, random);
}

TYPED_TEST(Fill, RegionsOfEveryShape) {
    Random random;
    std::vector<KprSize> sizes = test::awkwardSizes();
    for (int w = 1; w <= 9; ++w) {
        for (int h = 1; h <= 9; ++h) sizes.push_back({w, h});
    }
    for (KprSize size : {KprSize{67, 131}, {5, 300}, {129, 65}}) sizes.push_back(size);
    for (const auto& f : functions<TypeParam>()) {
        for (KprSize size : sizes) {
            const int rounds = size.width * size.height < 100 ? 12 : 3;
            for (int i = 0; i < rounds; ++i) {
                draw(f, Scene(random.range(0, int(Scene::Count) - 1)), size, random);
                if (testing::Test::HasFailure()) FAIL() << "kind " << int(f.kind) << ", " << f.neighbours;
            }
        }
        for (int scene = 0; scene < int(Scene::Count); ++scene) draw(f, Scene(scene), {641, 479}, random);
    }
}

// Values of the whole range: bounds stop at its ends; NaN, infinities and zeros of both signs.
TYPED_TEST(Fill, WildValues) {
    using T = TypeParam;
    Random random;
    for (const auto& f : functions<T>()) {
        for (int round = 0; round < 400; ++round) {
            const KprSize size = {random.range(1, 70), random.range(2, 9)};
            GuardedImage<T> image(size, random, f.channels);
            T few[5];
            for (T& value : few) value = random.pixel<T>(true);
            image.forEach([&](T& p) { p = few[random.oneIn(8) ? random.range(0, 4) : round % 2]; });
            Call<T> call{{random.range(0, size.width - 1), random.range(0, size.height - 1)}, {}, {}, {}};
            bool inside = true, equal = true;
            for (int c = 0; c < f.channels; ++c) {
                call.value[c] = random.pixel<T>(true);
                call.lower[c] = random.pixel<T>(true);
                call.upper[c] = random.pixel<T>(true);
                if constexpr (std::is_floating_point_v<T>) {
                    call.lower[c] = std::abs(call.lower[c]);
                    call.upper[c] = std::abs(call.upper[c]);
                }
                const T seed = image.at(call.seed.x, call.seed.y, c);
                inside = inside && within(call.value[c], seed, call.lower[c], call.upper[c]);
                equal = equal && call.value[c] == seed;
            }
            if ((f.kind == Kind::Range && inside) || (f.kind == Kind::Plain && equal)) {
                const auto before = image.snapshot();
                std::vector<Kpr8u> buffer(6 * 70 * 9 + 32);
                KprConnectedComp record = {-7, {}, {}};
                EXPECT_EQ(f.run(image.data(), image.step(), size, call, &record, buffer.data()),
                          f.kind == Kind::Range ? kprStatusBadArg : kprStatusOk);
                EXPECT_EQ(before, image.snapshot());
                EXPECT_EQ(record.area, -7);
                continue;
            }
            if constexpr (std::is_floating_point_v<T>) {
                bool nan = false;
                for (int c = 0; c < f.channels; ++c) nan = nan || std::isnan(call.value[c]);
                if (nan) continue;  // a record of NaN does not compare
            }
            runAndCompare(f, image, call, random);
            if (testing::Test::HasFailure()) FAIL() << "kind " << int(f.kind) << ", " << f.neighbours;
        }
    }
}

template <typename T, typename... A>
void checkLadder(KprStatus (*function)(T*, A...)) {
    constexpr int buffer = sizeof...(A);
    constexpr bool three = std::is_pointer_v<std::tuple_element_t<4, std::tuple<T*, A...>>>;
    static Kpr8u memory[2000];
    static T value[3] = {1, 1, 1}, none[3] = {};
    test::Ladder ladder("FloodFill", function);
    ladder.channels({three ? 3 : 1}).template with<buffer>(memory);
    if constexpr (three) ladder.template with<4>(value);
    if constexpr (three && buffer == 8) ladder.template with<5>(none).template with<6>(none);
    ladder.nulls().sizes().lengths({0});
    if (sizeof(T) > 1) ladder.multiples({0});
    for (KprPoint seed : {KprPoint{-1, 0}, {0, -1}, {7, 0}, {0, 3}, {INT32_MIN, INT32_MAX}}) {
        ladder.template refuses<3>(seed, kprStatusOutOfRange);
    }
    ladder.run();
}

TEST(FillLadders, RefuseInOrder) {
    everyFill([](Kind, int, auto* fill) { checkLadder(fill); });
    LADDER(kpriFloodFillGetSize).nulls().sizes().run();
    LADDER(kpriFloodFillGetSize_Grad).nulls().sizes().run();
}

TEST(FillLadders, NegativeFloatDeltasOfGradientsOnly) {
    float image[] = {5, 5}, value[] = {1, 1, 1}, good[] = {1, 1, 1}, bad[] = {1, 1, -0.5F};
    Kpr8u buffer[200];
    KprConnectedComp record;
    const KprSize size = {2, 1};
    EXPECT_EQ(kpriFloodFill_Grad4Con_32f_C1IR(image, 8, size, {0, 0}, 1, -1, 1, &record, buffer), kprStatusOutOfRange);
    EXPECT_EQ(kpriFloodFill_Grad8Con_32f_C1IR(image, 8, size, {0, 0}, 1, 1, -1, &record, buffer), kprStatusOutOfRange);
    float three[6] = {};
    for (auto* f : {kpriFloodFill_Grad4Con_32f_C3IR, kpriFloodFill_Grad8Con_32f_C3IR}) {
        EXPECT_EQ(f(three, 24, size, {0, 0}, value, bad, good, &record, buffer), kprStatusOutOfRange);
        EXPECT_EQ(f(three, 24, size, {0, 0}, value, good, bad, &record, buffer), kprStatusOutOfRange);
    }
    EXPECT_EQ(kpriFloodFill_Range4Con_32f_C1IR(image, 8, size, {0, 0}, 1, 1, -1, &record, buffer), kprStatusOk);
    EXPECT_EQ(record.area, 1);
}

TEST(FillLadders, BufferSizes) {
    int bytes = 0;
    ASSERT_EQ(kpriFloodFillGetSize({641, 479}, &bytes), kprStatusOk);
    EXPECT_EQ(bytes, 24 * 641 * 479 / 4 + 32);
    ASSERT_EQ(kpriFloodFillGetSize_Grad({641, 479}, &bytes), kprStatusOk);
    EXPECT_EQ(bytes, 643 * 481 + 16 * 641 * 479 + 64);
}

}  // namespace
