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

// The functions of one type, in one direction. Only down, the sizing call gives a buffer's size too.
template <typename T, typename State>
struct Functions {
    static constexpr bool down = std::is_same_v<State, KprPyramidDownState>;
    std::conditional_t<down, KprStatus (*)(KprSize, Kpr32f, int, int*, int*), KprStatus (*)(KprSize, Kpr32f, int, int*)>
        size;
    KprStatus (*init)(State**, KprSize, Kpr32f, const TapOf<T>*, int, int, Kpr8u*, Kpr8u*);
    KprStatus (*make)(const T*, int, KprSize, T*, int, KprSize, State*);
    int channels;

    std::size_t bytes(KprSize larger, float rate, std::size_t taps) const {
        int state = 0, buffer = 1;
        if constexpr (down)
            EXPECT_EQ(size(larger, rate, static_cast<int>(taps), &state, &buffer), kprStatusOk);
        else
            EXPECT_EQ(size(larger, rate, static_cast<int>(taps), &state), kprStatusOk);
        EXPECT_GT(buffer, 0);
        return static_cast<std::size_t>(state);
    }
};

template <typename T>
using Down = Functions<T, KprPyramidDownState>;
template <typename T>
using Up = Functions<T, KprPyramidUpState>;

const Down<Kpr8u> kDown8uC1 = {kpriPyramidLayerDownGetSize_8u_C1R, kpriPyramidLayerDownInit_8u_C1R,
                               kpriPyramidLayerDown_8u_C1R, 1};
const Down<Kpr8u> kDown8uC3 = {kpriPyramidLayerDownGetSize_8u_C3R, kpriPyramidLayerDownInit_8u_C3R,
                               kpriPyramidLayerDown_8u_C3R, 3};
const Down<Kpr16u> kDown16uC1 = {kpriPyramidLayerDownGetSize_16u_C1R, kpriPyramidLayerDownInit_16u_C1R,
                                 kpriPyramidLayerDown_16u_C1R, 1};
const Down<Kpr16u> kDown16uC3 = {kpriPyramidLayerDownGetSize_16u_C3R, kpriPyramidLayerDownInit_16u_C3R,
                                 kpriPyramidLayerDown_16u_C3R, 3};
const Down<Kpr32f> kDown32fC1 = {kpriPyramidLayerDownGetSize_32f_C1R, kpriPyramidLayerDownInit_32f_C1R,
                                 kpriPyramidLayerDown_32f_C1R, 1};
const Down<Kpr32f> kDown32fC3 = {kpriPyramidLayerDownGetSize_32f_C3R, kpriPyramidLayerDownInit_32f_C3R,
                                 kpriPyramidLayerDown_32f_C3R, 3};
const Up<Kpr8u> kUp8uC1 = {kpriPyramidLayerUpGetSize_8u_C1R, kpriPyramidLayerUpInit_8u_C1R, kpriPyramidLayerUp_8u_C1R,
                           1};
const Up<Kpr8u> kUp8uC3 = {kpriPyramidLayerUpGetSize_8u_C3R, kpriPyramidLayerUpInit_8u_C3R, kpriPyramidLayerUp_8u_C3R,
                           3};
const Up<Kpr16u> kUp16uC1 = {kpriPyramidLayerUpGetSize_16u_C1R, kpriPyramidLayerUpInit_16u_C1R,
                             kpriPyramidLayerUp_16u_C1R, 1};
const Up<Kpr16u> kUp16uC3 = {kpriPyramidLayerUpGetSize_16u_C3R, kpriPyramidLayerUpInit_16u_C3R,
                             kpriPyramidLayerUp_16u_C3R, 3};
const Up<Kpr32f> kUp32fC1 = {kpriPyramidLayerUpGetSize_32f_C1R, kpriPyramidLayerUpInit_32f_C1R,
                             kpriPyramidLayerUp_32f_C1R, 1};
const Up<Kpr32f> kUp32fC3 = {kpriPyramidLayerUpGetSize_32f_C3R, kpriPyramidLayerUpInit_32f_C3R,
                             kpriPyramidLayerUp_32f_C3R, 3};

// A layer in exactly as many bytes as its sizing call asks for.
template <typename T, typename State>
class Layer {
  public:
    using Tap = TapOf<T>;

    Layer(const Functions<T, State>& functions, KprSize larger, float rate, const std::vector<Tap>& kernel, int odd)
        : functions_(functions),
          memory_(functions.bytes(larger, rate, kernel.size()) + static_cast<std::size_t>(odd), Guard::After) {
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

TEST(PyramidLayer, Bytes) { checkLayer(kDown8uC1), checkLayer(kUp8uC1); }
TEST(PyramidLayer, BytesOfThreeChannels) { checkLayer(kDown8uC3), checkLayer(kUp8uC3); }
TEST(PyramidLayer, Words) { checkLayer(kDown16uC1), checkLayer(kUp16uC1); }
TEST(PyramidLayer, WordsOfThreeChannels) { checkLayer(kDown16uC3), checkLayer(kUp16uC3); }
TEST(PyramidLayer, Floats) { checkLayer(kDown32fC1), checkLayer(kUp32fC1); }
TEST(PyramidLayer, FloatsOfThreeChannels) { checkLayer(kDown32fC3), checkLayer(kUp32fC3); }

// Where the taps are small integers the whole quotient is rounded, halves up: no sum on the way is.
TEST(PyramidLayer, HalvingIsExact) {
    Random random;
    constexpr int taps[] = {1, 4, 6, 4, 1};
    GuardedImage<Kpr8u> src({641, 95}, random), dst({321, 48}, random);
    src.forEach([&](Kpr8u& pixel) { pixel = static_cast<Kpr8u>(random.range(0, 3)); });  // halves are common
    Layer<Kpr8u, KprPyramidDownState> layer(kDown8uC1, src.size(), 2.0F, {1, 4, 6, 4, 1}, 0);
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
    checkEven(kDown8uC3), checkEven(kUp8uC1);
    checkEven(kDown16uC1), checkEven(kUp16uC3);
    checkEven(kDown32fC1), checkEven(kUp32fC3);
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

template <typename T, typename State>
void checkLadders(const Functions<T, State>& functions) {
    constexpr bool down = Functions<T, State>::down;
    auto sizing = test::Ladder("size", functions.size);
    withShape<1, 2>(sizing).nulls().sizes();
    refusesShapes<1, 2>(sizing).template refuses<0>({INT32_MAX, INT32_MAX}, kprStatusSizeOverflow).run();

    const std::vector<TapOf<T>> kernel = {1, 2, 1}, none = {1, -2, 1};
    std::vector<Kpr8u> memory(20000);
    auto init = test::Ladder("init", functions.init);
    withShape<2, 4>(init).template with<3>(kernel.data()).template with<5>(2).template with<6>(memory.data());
    init.template refuses<5>(1, kprStatusBadArg).template refuses<5>(0, kprStatusBadArg);
    init.nulls(down ? std::vector<int>{} : std::vector<int>{3}).sizes();
    refusesShapes<2, 4>(init).template refuses<3>(none.data(), kprStatusBadArg).run();

    const KprSize larger = {7, 3}, smaller = {4, 2};
    State* state = nullptr;
    Kpr8u buffer[64];
    ASSERT_EQ(functions.init(&state, larger, 2.0F, kernel.data(), 3, 2, memory.data(), buffer), kprStatusOk);
    auto make = test::Ladder("make", functions.make);
    make.channels({functions.channels, functions.channels})
        .template with<2>(down ? larger : smaller)
        .template with<5>(down ? smaller : larger)
        .template with<6>(state)
        .nulls()
        .sizes()
        .lengths({down ? 0 : 1});
    const int shortRow = 4 * functions.channels * static_cast<int>(sizeof(T)) - 1;
    make.template refuses<down ? 4 : 1>(shortRow, kprStatusBadStep);
    if (sizeof(T) > 1) make.multiples({0, 1});
    const auto lower = [](KprSize roi) { return KprSize{roi.width, 1}; };
    make.template refuses<5>(lower(down ? smaller : larger), kprStatusBadSize)
        .template refuses<2>(lower(down ? larger : smaller), kprStatusBadArg)
        .run();
}

TEST(PyramidLayer, Ladders) {
    checkLadders(kDown8uC1), checkLadders(kDown8uC3), checkLadders(kUp8uC1), checkLadders(kUp8uC3);
    checkLadders(kDown16uC1), checkLadders(kDown16uC3), checkLadders(kUp16uC1), checkLadders(kUp16uC3);
    checkLadders(kDown32fC1), checkLadders(kDown32fC3), checkLadders(kUp32fC1), checkLadders(kUp32fC3);
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
