#include <gtest/gtest.h>

#include "tests/reference/pyramid.h"
#include "tests/support/guarded_image.h"
#include "tests/support/ladder.h"

struct KprPyramidDownState {  // whatever the library makes of it: the ladder takes the size of every type
    char first;
};
struct KprPyramidUpState {
    char first;
};

namespace {

using test::Guard;
using test::GuardedBytes;
using test::GuardedImage;
using test::Random;

template <typename T>
using TapOf = std::conditional_t<std::is_same_v<T, Kpr32f>, Kpr32f, Kpr16s>;

// The functions of one type, in either direction. `Up` needs no buffer in its sizing call.
template <typename T, typename State>
struct Functions {
    using Tap = TapOf<T>;
    std::function<KprStatus(KprSize, Kpr32f, int, int*)> size;
    KprStatus (*init)(State**, KprSize, Kpr32f, const Tap*, int, int, Kpr8u*, Kpr8u*);
    KprStatus (*make)(const T*, int, KprSize, T*, int, KprSize, State*);
    int channels;
    static constexpr bool down = std::is_same_v<State, KprPyramidDownState>;
};

template <typename T>
Functions<T, KprPyramidDownState> downOf(auto size, auto init, auto make, int channels) {
    return {[size](KprSize roi, Kpr32f rate, int n, int* bytes) {
                int buffer = 0;
                const KprStatus status = size(roi, rate, n, bytes, &buffer);
                EXPECT_GT(buffer, 0);
                return status;
            },
            init, make, channels};
}
template <typename T>
Functions<T, KprPyramidUpState> upOf(auto size, auto init, auto make, int channels) {
    return {size, init, make, channels};
}

#define DOWN(type, form, channels)                                                                           \
    downOf<Kpr##type>(kpriPyramidLayerDownGetSize_##type##_##form, kpriPyramidLayerDownInit_##type##_##form, \
                      kpriPyramidLayerDown_##type##_##form, channels)
#define UP(type, form, channels)                                                                       \
    upOf<Kpr##type>(kpriPyramidLayerUpGetSize_##type##_##form, kpriPyramidLayerUpInit_##type##_##form, \
                    kpriPyramidLayerUp_##type##_##form, channels)

// A layer in exactly as many bytes as its sizing call asks for.
template <typename T, typename State>
class Layer {
  public:
    using Tap = TapOf<T>;

    Layer(const Functions<T, State>& functions, KprSize larger, float rate, const std::vector<Tap>& kernel, int odd)
        : functions_(functions),
          memory_(bytesOf(functions, larger, rate, kernel) + static_cast<std::size_t>(odd), Guard::After) {
        auto taps = kernel;
        Kpr8u buffer[64];
        EXPECT_EQ(functions.init(&state_, larger, rate, taps.data(), static_cast<int>(taps.size()), 2,
                                 reinterpret_cast<Kpr8u*>(memory_.data() + odd), buffer),
                  kprStatusOk);
        std::fill(taps.begin(), taps.end(), Tap{0});  // it was copied
    }

    KprStatus make(GuardedImage<T>& src, GuardedImage<T>& dst) {
        return functions_.make(src.data(), src.step(), src.size(), dst.data(), dst.step(), dst.size(), state_);
    }
    State* state() const { return state_; }

  private:
    static std::size_t bytesOf(const Functions<T, State>& functions, KprSize larger, float rate,
                               const std::vector<Tap>& kernel) {
        int bytes = 0;
        EXPECT_EQ(functions.size(larger, rate, static_cast<int>(kernel.size()), &bytes), kprStatusOk);
        return static_cast<std::size_t>(bytes);
    }

    const Functions<T, State>& functions_;
    GuardedBytes memory_;
    State* state_ = nullptr;
};

// Small ones that words serve, small ones that they do not, and others.
const std::vector<std::vector<int>> kUsualKernels = {
    {1, 4, 6, 4, 1}, {16, 64, 96, 64, 16}, {1, 2, 1},        {0, 4, 8, 4, 0}, {1},       {1, 1, 1},    {3, 10, 3},
    {1, 0, 0, 0, 1}, {3, 8, 10, 8, 3},     {1, 0, 14, 0, 1}, {4, 0, 8, 0, 4}, {2, 1, 2}, {1, 3, 3, 1}, {-1, 6, -1},
    {1, 4, 6, 4, 2}, {0, 8, 0, 8, 0},      {7, 1, 0, 1, 7}};

template <typename T>
std::vector<TapOf<T>> tapsOf(const std::vector<int>& kernel) {
    return {kernel.begin(), kernel.end()};
}

template <typename T>
std::vector<TapOf<T>> anyKernel(Random& random) {
    if (!random.oneIn(3)) {
        const int last = static_cast<int>(kUsualKernels.size()) - 1;
        return tapsOf<T>(kUsualKernels[static_cast<std::size_t>(random.oneIn(3) ? 0 : random.range(0, last))]);
    }
    std::vector<TapOf<T>> kernel;
    const int n = random.oneIn(3) ? random.range(9, 40) : random.range(2, 8);
    for (int i = 0; i < n; ++i) {
        const int tap = random.range(random.oneIn(4) ? -100 : 0, 300);
        kernel.push_back(std::is_same_v<T, Kpr32f> ? static_cast<TapOf<T>>(static_cast<float>(tap) / 700.0F)
                                                   : static_cast<TapOf<T>>(tap));
    }
    kernel[0] = static_cast<TapOf<T>>(kernel[0] + 200);  // not 0 all in all
    return kernel;
}

float anyRate(Random& random) {
    constexpr float usual[] = {1.5F, 10.0F, 3.0F, 1.25F, 1.0000001F, 4.0F};
    if (random.oneIn(2)) return 2.0F;
    return random.oneIn(2) ? usual[random.range(0, 5)] : 1.0F + static_cast<float>(random.range(1, 9000)) / 1000.0F;
}

template <typename T, typename State>
void checkLayer(const Functions<T, State>& functions) {
    Random random;
    const auto check = [&](KprSize larger, float rate, bool wild, const std::vector<TapOf<T>>& kernel) {
        const KprSize smaller = reference::sizeBelow(larger, rate);
        const KprSize srcSize = functions.down ? larger : smaller, dstSize = functions.down ? smaller : larger;
        GuardedImage<T> src(srcSize, random, functions.channels), dst(dstSize, random, functions.channels);
        src.fill(random, wild);
        if (wild && random.oneIn(2)) {  // few of them, so that most pixels have one neighbour that is not finite
            src.forEach([&](T& pixel) { pixel = random.oneIn(20) ? random.pixel<T>(true) : random.pixel<T>(); });
        }
        Layer<T, State> layer(functions, larger, rate, kernel, random.range(0, 9));
        ASSERT_EQ(layer.make(src, dst), kprStatusOk);
        const reference::PyramidLayer<T> rule(functions.down, rate, srcSize, dstSize, kernel);
        std::vector<std::vector<T>> row(static_cast<std::size_t>(functions.channels));
        int made = -1;
        test::expectImage(
            dst,
            [&](int x, int y, int c) {
                if (y != std::exchange(made, y)) {
                    for (int k = 0; k < functions.channels; ++k)
                        row[static_cast<std::size_t>(k)] = rule.row(y, [&](int i, int j) { return src.at(i, j, k); });
                }
                return row[static_cast<std::size_t>(c)][static_cast<std::size_t>(x)];
            },
            functions.channels);
        if (testing::Test::HasFailure()) {
            ADD_FAILURE() << larger.width << " x " << larger.height << " at " << rate << ", " << kernel.size()
                          << " taps";
        }
    };
    for (int round = 0; round < 3; ++round) {
        for (KprSize size : test::awkwardSizes()) {
            check(size, round == 0 ? 2.0F : anyRate(random), random.oneIn(3), anyKernel<T>(random));
            if (testing::Test::HasFailure()) return;
        }
    }
    for (KprSize size : {KprSize{5, 300}, {67, 131}, {1100, 7}, {321, 241}}) {
        check(size, 2.0F, false, anyKernel<T>(random));
        check(size, anyRate(random), false, anyKernel<T>(random));
    }
    for (const std::vector<int>& kernel : kUsualKernels) check({67, 19}, 2.0F, false, tapsOf<T>(kernel));
}

TEST(PyramidLayer, Bytes) { checkLayer(DOWN(8u, C1R, 1)), checkLayer(UP(8u, C1R, 1)); }
TEST(PyramidLayer, BytesOfThreeChannels) { checkLayer(DOWN(8u, C3R, 3)), checkLayer(UP(8u, C3R, 3)); }
TEST(PyramidLayer, Words) { checkLayer(DOWN(16u, C1R, 1)), checkLayer(UP(16u, C1R, 1)); }
TEST(PyramidLayer, WordsOfThreeChannels) { checkLayer(DOWN(16u, C3R, 3)), checkLayer(UP(16u, C3R, 3)); }
TEST(PyramidLayer, Floats) { checkLayer(DOWN(32f, C1R, 1)), checkLayer(UP(32f, C1R, 1)); }
TEST(PyramidLayer, FloatsOfThreeChannels) { checkLayer(DOWN(32f, C3R, 3)), checkLayer(UP(32f, C3R, 3)); }

// Where the taps are small integers the whole quotient is rounded, halves up: no sum on the way is.
TEST(PyramidLayer, HalvingIsExact) {
    Random random;
    const auto functions = DOWN(8u, C1R, 1);
    constexpr int taps[] = {1, 4, 6, 4, 1};
    GuardedImage<Kpr8u> src({641, 95}, random), dst({321, 48}, random);
    src.forEach([&](Kpr8u& pixel) { pixel = static_cast<Kpr8u>(random.range(0, 3)); });  // halves are common
    Layer<Kpr8u, KprPyramidDownState> layer(functions, src.size(), 2.0F, {1, 4, 6, 4, 1}, 0);
    ASSERT_EQ(layer.make(src, dst), kprStatusOk);
    const auto inside = [](int i, int n) { return i < 0 ? -1 - i : i >= n ? 2 * n - 1 - i : i; };
    test::expectImage(dst, [&](int x, int y, int) {
        int sum = 0;
        for (int j = 0; j < 5; ++j) {
            for (int i = 0; i < 5; ++i)
                sum += taps[i] * taps[j] * src.at(inside(2 * x + i - 2, 641), inside(2 * y + j - 2, 95));
        }
        return static_cast<Kpr8u>((sum + 128) >> 8);
    });
}

// Even areas stay what they are, whatever kernel and rate.
template <typename T, typename State>
void checkEven(const Functions<T, State>& functions) {
    Random random;
    for (int round = 0; round < 60; ++round) {
        const KprSize larger = {random.range(1, 90), random.range(1, 30)};
        const float rate = anyRate(random);
        const KprSize smaller = reference::sizeBelow(larger, rate);
        GuardedImage<T> src(functions.down ? larger : smaller, random, functions.channels),
            dst(functions.down ? smaller : larger, random, functions.channels);
        const T pixel = random.pixel<T>();
        src.forEach([&](T& p) { p = pixel; });
        Layer<T, State> layer(functions, larger, rate, anyKernel<T>(random), 0);
        ASSERT_EQ(layer.make(src, dst), kprStatusOk);
        test::expectImage(
            dst, [&](int, int, int) { return pixel; }, functions.channels);
        if (testing::Test::HasFailure()) return;
    }
}

TEST(PyramidLayer, EvenAreasStay) {
    checkEven(DOWN(8u, C3R, 3)), checkEven(UP(8u, C1R, 1));
    checkEven(DOWN(16u, C1R, 1)), checkEven(UP(16u, C3R, 3));
    checkEven(DOWN(32f, C1R, 1)), checkEven(UP(32f, C3R, 3));
}

template <int rate, int taps, typename Ladder>
Ladder& withShape(Ladder&& ladder) {
    ladder.template with<rate>(2.0F).template with<taps>(3);
    return ladder;
}
template <int rate, int taps, typename Ladder>
Ladder& refusesShapes(Ladder& ladder) {
    for (float bad : {1.0F, 10.5F, NAN}) ladder.template refuses<rate>(bad, kprStatusBadArg);
    return ladder.template refuses<taps>(0, kprStatusBadArg).template refuses<taps>(-3, kprStatusBadArg);
}

template <typename T>
void checkLadders(auto size, auto init, auto make, auto* state, int channels) {
    constexpr bool down = std::is_same_v<decltype(state), KprPyramidDownState*>;
    auto sizing = LADDER(size);
    withShape<1, 2>(sizing).nulls().sizes();
    refusesShapes<1, 2>(sizing).template refuses<0>({INT32_MAX, INT32_MAX}, kprStatusSizeOverflow).run();
    const std::vector<TapOf<T>> kernel = {1, 2, 1}, none = {1, -2, 1};
    std::vector<Kpr8u> memory(20000);
    auto ladder = LADDER(init);
    withShape<2, 4>(ladder).template with<3>(kernel.data()).template with<5>(2).template with<6>(memory.data());
    ladder.template refuses<5>(1, kprStatusBadArg).template refuses<5>(0, kprStatusBadArg);
    ladder.nulls(down ? std::vector<int>{} : std::vector<int>{3}).sizes();
    refusesShapes<2, 4>(ladder).template refuses<3>(none.data(), kprStatusBadArg).run();

    Kpr8u buffer[64];
    ASSERT_EQ(init(&state, KprSize{7, 3}, 2.0F, kernel.data(), 3, 2, memory.data(), buffer), kprStatusOk);
    const KprSize larger = {7, 3}, smaller = {4, 2};
    auto processing = LADDER(make);
    processing.channels({channels, channels})
        .template with<2>(down ? larger : smaller)
        .template with<5>(down ? smaller : larger)
        .template with<6>(state)
        .nulls()
        .sizes()
        .lengths({down ? 0 : 1});
    processing.template refuses<down ? 4 : 1>(4 * channels * static_cast<int>(sizeof(T)) - 1, kprStatusBadStep);
    if (sizeof(T) > 1) processing.multiples({0, 1});
    const auto lower = [](KprSize roi) { return KprSize{roi.width, 1}; };
    processing.template refuses<5>(lower(down ? smaller : larger), kprStatusBadSize)
        .template refuses<2>(lower(down ? larger : smaller), kprStatusBadArg)
        .run();
}

#define LADDERS(type, form, channels)                                                                              \
    checkLadders<Kpr##type>(kpriPyramidLayerDownGetSize_##type##_##form, kpriPyramidLayerDownInit_##type##_##form, \
                            kpriPyramidLayerDown_##type##_##form, static_cast<KprPyramidDownState*>(nullptr),      \
                            channels);                                                                             \
    checkLadders<Kpr##type>(kpriPyramidLayerUpGetSize_##type##_##form, kpriPyramidLayerUpInit_##type##_##form,     \
                            kpriPyramidLayerUp_##type##_##form, static_cast<KprPyramidUpState*>(nullptr), channels)

TEST(PyramidLayer, Ladders) {
    LADDERS(8u, C1R, 1);
    LADDERS(8u, C3R, 3);
    LADDERS(16u, C1R, 1);
    LADDERS(16u, C3R, 3);
    LADDERS(32f, C1R, 1);
    LADDERS(32f, C3R, 3);
}

// The state of another type or number of channels is refused, and so is a layer's in the other direction.
TEST(PyramidLayer, RefusesAnothersState) {
    std::vector<Kpr8u> memory(20000);
    Kpr8u buffer[64];
    const Kpr16s kernel[] = {1, 2, 1};
    KprPyramidDownState* state = nullptr;
    ASSERT_EQ(kpriPyramidLayerDownInit_8u_C1R(&state, {2, 1}, 2.0F, kernel, 3, 2, memory.data(), buffer), kprStatusOk);
    Kpr8u bytes[6] = {};
    Kpr16u words[2] = {};
    EXPECT_EQ(kpriPyramidLayerDown_8u_C1R(bytes, 6, {1, 1}, bytes, 6, {1, 1}, state), kprStatusBadArg);
    EXPECT_EQ(kpriPyramidLayerDown_8u_C1R(bytes, 6, {2, 1}, bytes, 6, {2, 1}, state), kprStatusBadSize);
    EXPECT_EQ(kpriPyramidLayerDown_16u_C1R(words, 4, {2, 1}, words, 4, {1, 1}, state), kprStatusBadArg);
    EXPECT_EQ(kpriPyramidLayerDown_8u_C3R(bytes, 6, {2, 1}, bytes, 6, {1, 1}, state), kprStatusBadArg);
    auto* const up = reinterpret_cast<KprPyramidUpState*>(state);
    EXPECT_EQ(kpriPyramidLayerUp_8u_C1R(bytes, 6, {2, 1}, bytes, 6, {1, 1}, up), kprStatusBadArg);
}

}  // namespace
