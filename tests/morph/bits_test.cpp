#include <gtest/gtest.h>

#include "tests/morph/morph_ground.h"

namespace {

using test::exactly;
using test::GuardedBytes;
using test::GuardedImage;
using test::kAll;
using test::Operation;
using test::Random;

Kpr8u* buffer(const GuardedBytes& bytes) { return reinterpret_cast<Kpr8u*>(bytes.data()); }

// Bits around a ROI, on the sides that a border word says are memory.
struct Margins {
    int left = 0, right = 0, top = 0, bottom = 0;

    Margins() = default;
    Margins(KprBorderType word, const reference::StructuringElement& element, int reach)
        : left((word & kprBorderInMemLeft) != 0 ? reach * element.reachX() : 0),
          right((word & kprBorderInMemRight) != 0 ? reach * element.reachX() : 0),
          top((word & kprBorderInMemTop) != 0 ? reach * element.reachY() : 0),
          bottom((word & kprBorderInMemBottom) != 0 ? reach * element.reachY() : 0) {}
};

enum class Layout { Any, Gapless };  // rows from any bit on, with or without bytes between; whole bytes without

// A 1-bit image in the bytes that hold it and its margins and no others.
class BitImage {
  public:
    BitImage(KprSize size, Random& random, Margins margins = {}, Layout layout = Layout::Any)
        : size_(size),
          first_((layout == Layout::Gapless ? 0 : random.range(0, 7)) + margins.left),
          top_(margins.top),
          bytes_(inBytes({(first_ + size.width + margins.right + 7) / 8, margins.top + size.height + margins.bottom},
                         random, layout)) {
        const int density = random.range(1, 6);  // erosions want many set pixels, dilations few
        bytes_.forEach([&](Kpr8u& byte) {
            byte = 0;
            for (int i = 0; i < 8; ++i)
                byte = static_cast<Kpr8u>(byte << 1 | (random.oneIn(density * density) ? 1 : 0));
            if (density % 2 == 0) byte = static_cast<Kpr8u>(~byte);
        });
    }

    Kpr8u* data() { return bytes_.row(top_) + first_ / 8; }
    int step() const { return bytes_.step(); }
    int bitOffset() const { return first_ % 8; }
    KprSize size() const { return size_; }

    // A pixel as the byte oracles know it.
    Kpr8u at(int x, int y) { return (byteOf(x, y) >> (7 - (first_ + x) % 8) & 1) != 0 ? 255 : 0; }
    void set(int x, int y, Kpr8u value) {
        const int bit = 0x80 >> (first_ + x) % 8;
        byteOf(x, y) = static_cast<Kpr8u>((byteOf(x, y) & ~bit) | (value & bit));
    }
    std::vector<char> snapshot() const { return bytes_.snapshot(); }
    void restore(const std::vector<char>& bytes) { std::memcpy(bytes_.data(), bytes.data(), bytes.size()); }

  private:
    static GuardedImage<Kpr8u> inBytes(KprSize size, Random& random, Layout layout) {
        if (layout == Layout::Any) return {size, random};
        return {size, 1, 0, random.oneIn(4) ? test::Guard::Before : test::Guard::After};
    }
    Kpr8u& byteOf(int x, int y) { return bytes_.at((first_ + x) / 8, top_ + y); }

    KprSize size_;
    int first_, top_;
    GuardedImage<Kpr8u> bytes_;
};

// Runs `call()`, which is to make the pixels of `expected` in dst and to change no other bit of it.
template <typename Call>
void checkCall(BitImage& dst, const std::vector<Kpr8u>& expected, Call call) {
    const KprSize size = dst.size();
    const auto eachPixel = [&](auto visit) {
        std::size_t i = 0;
        for (int y = 0; y < size.height; ++y) {
            for (int x = 0; x < size.width; ++x) visit(x, y, expected[i++]);
        }
    };
    const auto before = dst.snapshot();
    eachPixel([&](int x, int y, Kpr8u value) { dst.set(x, y, value); });
    const auto wanted = dst.snapshot();
    dst.restore(before);
    ASSERT_EQ(call(), kprStatusOk);
    if (wanted == dst.snapshot()) return;
    eachPixel([&](int x, int y, Kpr8u value) {
        if (testing::Test::HasFailure()) return;
        EXPECT_EQ(dst.at(x, y), value) << "at x " << x << ", y " << y << " of " << size.width << " x " << size.height;
    });
    EXPECT_EQ(wanted, dst.snapshot()) << "bits outside the ROI were written";
}

std::vector<Kpr8u> stageOf(bool dilation, const reference::StructuringElement& element, KprBorderType word, Kpr8u value,
                           BitImage& src) {
    const reference::Stage<Kpr8u> stage{dilation, element,    word,
                                        value,    src.size(), [&](int x, int y) { return src.at(x, y); }};
    std::vector<Kpr8u> pixels;
    for (int y = 0; y < src.size().height; ++y) {
        for (int x = 0; x < src.size().width; ++x) pixels.push_back(stage(x, y));
    }
    return pixels;
}

// A mask of runs up to the whole width, more of them than a plan for few can hold.
reference::StructuringElement manyRuns(KprSize size, Random& random) {
    reference::StructuringElement element{size.width, size.height, {}};
    const int total = size.width * size.height;
    while (static_cast<int>(element.bytes.size()) < total) {
        const bool tap = random.oneIn(2);
        for (int n = random.range(1, 50); n > 0; --n) element.bytes.push_back(tap ? 1 : 0);
    }
    element.bytes.resize(static_cast<std::size_t>(total));
    return element;
}

// What a call is made of, whichever the interface.
struct Case {
    BitImage& src;
    BitImage& dst;
    KprSize sizing;
    const reference::StructuringElement& element;
    KprBorderType word;
    Kpr8u value;

    std::string text() const {
        return "mask " + std::to_string(element.width) + " x " + std::to_string(element.height) + ", border " +
               std::to_string(word) + ", value " + std::to_string(value) + ", bits " + std::to_string(src.bitOffset()) +
               " and " + std::to_string(dst.bitOffset());
    }
};

// run(case) for a stage of random images.
template <typename Run>
void checkStage(bool dilation, KprSize size, const reference::StructuringElement& element, KprBorderType word,
                Random& random, Run run, Layout layout = Layout::Any) {
    const Kpr8u value = random.oneIn(2) ? Kpr8u{0} : static_cast<Kpr8u>(random.range(1, 255));
    BitImage src(size, random, Margins(word, element, 1), layout), dst(size, random, {}, layout);
    const Case one{src, dst, test::sizedFor(size, random), element, word, value};
    SCOPED_TRACE(one.text());
    const auto before = src.snapshot();
    checkCall(dst, stageOf(dilation, element, word, value != 0 ? 255 : 0, src), [&] { return run(one); });
    EXPECT_EQ(before, src.snapshot()) << "the source was written";
}

// The same for random cases at all sizes.
template <typename Run>
void checkStages(bool dilation, int rounds, Run run) {
    Random random;
    for (KprSize size : test::allSizes()) {
        const bool small = size.width * size.height < 9000;
        for (int i = 0; i < (small ? rounds : 2); ++i) {
            const auto element = small && random.oneIn(12)
                                     ? manyRuns({random.range(1, 150), random.range(3, 20)}, random)
                                 : random.oneIn(3) ? reference::StructuringElement{3, 3, std::vector<Kpr8u>(9, 1)}
                                                   : test::elementFor(size, random);
            checkStage(dilation, size, element, test::randomBorder(random), random, run);
            if (testing::Test::HasFailure()) return;
        }
    }
}

template <typename Process>
auto borderCall(Process process) {
    return [process](const Case& c) {
        int specSize = 0, bufferSize = 0;
        const KprSize mask = {c.element.width, c.element.height};
        EXPECT_EQ(kpriMorphologyBorderGetSize_1u_C1R(c.sizing, mask, &specSize, &bufferSize), kprStatusOk);
        const GuardedBytes spec = exactly(specSize), work = exactly(bufferSize);
        auto* state = reinterpret_cast<KprMorphState*>(spec.data());
        EXPECT_EQ(kpriMorphologyBorderInit_1u_C1R(c.sizing, c.element.bytes.data(), mask, state, buffer(work)),
                  kprStatusOk);
        return process(c.src.data(), c.src.step(), c.src.bitOffset(), c.dst.data(), c.dst.step(), c.dst.bitOffset(),
                       c.src.size(), c.word, c.value, state, buffer(work));
    };
}

template <typename Process>
auto largeCall(Process process) {
    return [process](const Case& c) {
        Kpr64s specSize = 0, bufferSize = 0;
        const Kpr64s width = c.sizing.width, height = c.sizing.height, w = c.element.width, h = c.element.height;
        EXPECT_EQ(kpriDilateGetSpecSize_L(width, height, w, h, &specSize), kprStatusOk);
        EXPECT_EQ(kpriErodeGetBufferSize_L(width, height, w, h, kpr1u, 1, &bufferSize), kprStatusOk);
        const GuardedBytes spec = exactly(specSize), work = exactly(bufferSize);
        auto* state = reinterpret_cast<KprMorphState*>(spec.data());
        EXPECT_EQ(kpriDilateInit_L(width, height, c.element.bytes.data(), w, h, state), kprStatusOk);
        return process(c.src.data(), c.src.step(), c.src.bitOffset(), c.dst.data(), c.dst.step(), c.dst.bitOffset(),
                       c.src.size().width, c.src.size().height, c.word, &c.value, state, buffer(work));
    };
}

TEST(MorphologyOfBits, Dilation) {
    checkStages(true, 6, borderCall(kpriDilateBorder_1u_C1R));
    checkStages(true, 3, largeCall(kpriDilate_1u_C1R_L));
}

TEST(MorphologyOfBits, Erosion) {
    checkStages(false, 6, borderCall(kpriErodeBorder_1u_C1R));
    checkStages(false, 3, largeCall(kpriErode_1u_C1R_L));
}

// Rows of whole words that follow one another are one long row to the plan for a square.
TEST(MorphologyOfBits, RowsWithoutGaps) {
    Random random;
    const reference::StructuringElement square{3, 3, std::vector<Kpr8u>(9, 1)};
    static const KprBorderType bases[] = {kprBorderReplicate, kprBorderMirror, kprBorderDefault, kprBorderConstant};
    for (int width : {448, 512, 520, 576, 640, 1088}) {
        for (int height : {1, 2, 3, 4, 17, 300}) {
            for (KprBorderType base : bases) {
                const auto word = base | static_cast<KprBorderType>(random.range(0, 3) * kprBorderInMemTop);
                const bool dilation = random.oneIn(2);
                checkStage(dilation, {width, height}, square, word, random,
                           borderCall(dilation ? kpriDilateBorder_1u_C1R : kpriErodeBorder_1u_C1R), Layout::Gapless);
                if (HasFailure()) return;
            }
        }
    }
}

// As many runs as a plan of few different ones has places for, one less and more.
TEST(MorphologyOfBits, ManyPlacesOfFewRuns) {
    Random random;
    for (const int rows : {63, 64, 65, 70}) {
        for (const bool oneMore : {false, true}) {
            reference::StructuringElement element{7, rows, {}};
            for (int y = 0; y < rows; ++y) {
                for (int x = 0; x < 7; ++x) element.bytes.push_back(x % 2 == 0 && (x < 6 || y > 0 || oneMore) ? 1 : 0);
            }
            checkStage(true, {300, 40}, element, kprBorderReplicate, random, borderCall(kpriDilateBorder_1u_C1R));
            checkStage(false, {300, 40}, element, kprBorderMirror, random, borderCall(kpriErodeBorder_1u_C1R));
            if (HasFailure()) return;
        }
    }
}

// run(case) for random cases of an operation, then in place.
template <typename Run>
void checkOperation(Operation operation, bool mayShareMask, Run run) {
    Random random;
    for (KprSize size : test::sizesUpTo(40000)) {
        const bool turned = !mayShareMask || random.oneIn(2);
        const bool many = random.oneIn(12) && size.width * size.height < 9000;
        const auto element = many ? manyRuns({60, 9}, random) : test::elementFor(size, random);
        KprBorderType word = test::randomBorder(random);
        if (random.oneIn(8) && word != kprBorderInMem) word |= static_cast<KprBorderType>(random.range(1, 15) << 8);
        const bool twoStages = operation != Operation::Gradient;
        const bool wholeFirst = (word & 3840) != 0 && twoStages;
        const Kpr8u value = random.oneIn(2) ? 0 : 0x40;
        BitImage src(size, random, Margins(wholeFirst ? word | kprBorderInMem : word, element, twoStages ? 2 : 1));
        BitImage dst(size, random);
        const auto expected = test::expectedOf<Kpr8u>(operation, element, turned, word, value != 0 ? 255 : 0, size,
                                                      [&](int x, int y) { return src.at(x, y); });
        const Case one{src, dst, test::sizedFor(size, random), element, word, value};
        SCOPED_TRACE("operation " + std::to_string(static_cast<int>(operation)) + ", " + one.text());
        checkCall(dst, expected, [&] { return run(one, turned); });
        if (testing::Test::HasFailure()) return;
        if (twoStages)
            checkCall(src, expected, [&] { return run(Case{src, src, size, element, word, value}, turned); });
        if (testing::Test::HasFailure()) return;
    }
}

template <typename Process>
auto borderOperation(Process process) {
    return [process](const Case& c, bool) {
        int specSize = 0, bufferSize = 0;
        const KprSize mask = {c.element.width, c.element.height};
        EXPECT_EQ(kpriMorphAdvGetSize_1u_C1R(c.sizing, mask, &specSize, &bufferSize), kprStatusOk);
        const GuardedBytes spec = exactly(specSize), work = exactly(bufferSize);
        auto* state = reinterpret_cast<KprMorphAdvState*>(spec.data());
        EXPECT_EQ(kpriMorphAdvInit_1u_C1R(c.sizing, c.element.bytes.data(), mask, state, buffer(work)), kprStatusOk);
        return process(c.src.data(), c.src.step(), c.src.bitOffset(), c.dst.data(), c.dst.step(), c.dst.bitOffset(),
                       c.src.size(), c.word, c.value, state, buffer(work));
    };
}

template <typename Process>
auto largeOperation(Process process) {
    return [process](const Case& c, bool turned) {
        Kpr64s specSize = 0, bufferSize = 0;
        const Kpr64s width = c.sizing.width, height = c.sizing.height, w = c.element.width, h = c.element.height;
        EXPECT_EQ(kpriMorphGetSpecSize_L(width, height, w, h, kpr1u, 1, &specSize), kprStatusOk);
        EXPECT_EQ(kpriMorphGetBufferSize_L(width, height, w, h, kpr1u, 1, &bufferSize), kprStatusOk);
        const GuardedBytes spec = exactly(specSize), work = exactly(bufferSize);
        auto* state = reinterpret_cast<KprMorphAdvState*>(spec.data());
        EXPECT_EQ(kpriMorphInit_L(width, height, c.element.bytes.data(), w, h, kpr1u, 1, state), kprStatusOk);
        EXPECT_EQ(kpriMorphSetMode_L(turned ? 0 : 1, state), kprStatusOk);
        return process(c.src.data(), c.src.step(), c.src.bitOffset(), c.dst.data(), c.dst.step(), c.dst.bitOffset(),
                       c.src.size().width, c.src.size().height, c.word, &c.value, state, buffer(work));
    };
}

TEST(MorphologyOfBits, Operations) {
    const decltype(&kpriMorphOpenBorder_1u_C1R) border[] = {
        kpriMorphOpenBorder_1u_C1R, kpriMorphCloseBorder_1u_C1R, kpriMorphTophatBorder_1u_C1R,
        kpriMorphBlackhatBorder_1u_C1R, kpriMorphGradientBorder_1u_C1R};
    const decltype(&kpriMorphOpen_1u_C1R_L) large[] = {kpriMorphOpen_1u_C1R_L, kpriMorphClose_1u_C1R_L,
                                                       kpriMorphTophat_1u_C1R_L, kpriMorphBlackhat_1u_C1R_L,
                                                       kpriMorphGradient_1u_C1R_L};
    for (Operation operation : kAll) {
        checkOperation(operation, false, borderOperation(border[static_cast<int>(operation)]));
        checkOperation(operation, true, largeOperation(large[static_cast<int>(operation)]));
    }
}

// The stated formulas; and that the large interface's buffer, which is a byte image's, is no smaller.
TEST(MorphologyOfBits, Sizes) {
    int spec = 0, work = 0, specPair = 0, workPair = 0;
    ASSERT_EQ(kpriMorphologyBorderGetSize_1u_C1R({640, 480}, {5, 4}, &spec, &work), kprStatusOk);
    EXPECT_EQ(spec, 32 * 3 + 112);
    EXPECT_EQ(work, (644 + 32) * 5 + 48);
    ASSERT_EQ(kpriMorphAdvGetSize_1u_C1R({640, 480}, {5, 4}, &specPair, &workPair), kprStatusOk);
    EXPECT_EQ(specPair, 25 + 2 * spec + 32);
    EXPECT_EQ(workPair, 484 * 96 + 2 * work);
    for (int width : {1, 2, 31, 32, 33, 640}) {
        for (int mask : {1, 2, 31, 32, 33, 64, 101, 1000}) {
            for (int maskHeight : {1, 2, 3, 70}) {
                ASSERT_EQ(kpriMorphologyBorderGetSize_1u_C1R({width, 1}, {mask, maskHeight}, &spec, &work),
                          kprStatusOk);
                for (int height : {1, 2, 50}) {
                    Kpr64s bytes = 0;
                    kpriDilateGetBufferSize_L(width + height, height, mask, maskHeight, kpr1u, 1, &bytes);
                    EXPECT_LE(work, bytes) << width << " x " << height << ", " << mask << " x " << maskHeight;
                }
            }
        }
    }
}

// What a processing call refuses, in order, with the memory behind its pointers out of reach.
class RefusalsOfBits : public testing::Test {
  protected:
    RefusalsOfBits() {
        memory_.setAccessible(false);
        others_.setAccessible(false);
    }

    // call(src, dst, srcStep, srcBitOffset, dstStep, dstBitOffset, width, height, word)
    template <typename Call>
    void check(bool inPlaceServed, Call call) {
        const Kpr8u* const none = nullptr;
        EXPECT_EQ(call(none, dst(), 0, -1, 0, 8, 0, 0, 0), kprStatusNullPtr);
        EXPECT_EQ(call(src(), static_cast<Kpr8u*>(nullptr), 0, -1, 0, 8, 0, 0, 0), kprStatusNullPtr);
        EXPECT_EQ(call(dst(), dst(), 0, -1, 0, 8, 0, 0, 0),
                  inPlaceServed ? kprStatusBadSize : kprStatusInPlaceUnsupported);
        EXPECT_EQ(call(src(), dst(), 0, -1, 0, 8, 0, 5, 0), kprStatusBadSize);
        EXPECT_EQ(call(src(), dst(), 0, -1, 0, 8, 5, -5, 0), kprStatusBadSize);
        for (int bad : {-1, 8, 0x7fffffff}) {
            EXPECT_EQ(call(src(), dst(), 0, bad, 0, 0, 14, 5, 0), kprStatusBadArg);
            EXPECT_EQ(call(src(), dst(), 0, 0, 0, bad, 14, 5, 0), kprStatusBadArg);
        }
        EXPECT_EQ(call(src(), dst(), 1, 2, 3, 3, 14, 5, 0), kprStatusBadStep);  // 2 bytes are held
        EXPECT_EQ(call(src(), dst(), 2, 3, 3, 3, 14, 5, 0), kprStatusBadStep);  // 17 bits
        EXPECT_EQ(call(src(), dst(), 2, 2, 2, 3, 14, 5, 0), kprStatusBadStep);
        EXPECT_EQ(call(src(), dst(), -2, 2, 3, 3, 14, 5, 0), kprStatusBadStep);
        for (KprBorderType word : {0u, 2u, 4u, 7u, 16u, 256u, 0x1f0u, 4097u, 0xffffffffu}) {
            EXPECT_EQ(call(src(), dst(), 2, 2, 3, 3, 14, 5, word), kprStatusBadBorder);
        }
    }

    Kpr8u* src() const { return buffer(memory_); }
    Kpr8u* dst() const { return buffer(others_); }
    template <typename State>
    State* state() const {
        return reinterpret_cast<State*>(memory_.data());
    }

    GuardedBytes memory_ = exactly(512), others_ = exactly(512);
};

TEST_F(RefusalsOfBits, Border) {
    const auto bind = [&](auto process, auto* state) {
        return [=, this](const Kpr8u* from, Kpr8u* to, int srcStep, int srcBit, int dstStep, int dstBit, int width,
                         int height, KprBorderType word) {
            return process(from, srcStep, srcBit, to, dstStep, dstBit, {width, height}, word, 1, state, dst());
        };
    };
    for (auto process : {kpriDilateBorder_1u_C1R, kpriErodeBorder_1u_C1R}) {
        check(false, bind(process, state<KprMorphState>()));
    }
    for (auto process : {kpriMorphOpenBorder_1u_C1R, kpriMorphCloseBorder_1u_C1R, kpriMorphTophatBorder_1u_C1R,
                         kpriMorphBlackhatBorder_1u_C1R, kpriMorphGradientBorder_1u_C1R}) {
        check(process != kpriMorphGradientBorder_1u_C1R, bind(process, state<KprMorphAdvState>()));
    }
    int a = 0, b = 0;
    for (auto getSize : {kpriMorphologyBorderGetSize_1u_C1R, kpriMorphAdvGetSize_1u_C1R}) {
        EXPECT_EQ(getSize({0, 0}, {0, 0}, nullptr, &b), kprStatusNullPtr);
        EXPECT_EQ(getSize({0, 0}, {0, 0}, &a, nullptr), kprStatusNullPtr);
        EXPECT_EQ(getSize({5, 0}, {3, 3}, &a, &b), kprStatusBadSize);
        EXPECT_EQ(getSize({5, 5}, {3, 0}, &a, &b), kprStatusBadSize);
        EXPECT_EQ(getSize({0x7fffffff, 5}, {3, 3}, &a, &b), kprStatusSizeOverflow);
    }
    const auto refuses = [&](auto init, auto* state) {
        EXPECT_EQ(init({0, 0}, nullptr, {0, 0}, state, dst()), kprStatusNullPtr);
        EXPECT_EQ(init({0, 0}, src(), {0, 0}, nullptr, dst()), kprStatusNullPtr);
        EXPECT_EQ(init({0, 0}, src(), {0, 0}, state, nullptr), kprStatusNullPtr);
        EXPECT_EQ(init({0, 5}, src(), {3, 3}, state, dst()), kprStatusBadSize);
        EXPECT_EQ(init({5, 5}, src(), {3, -3}, state, dst()), kprStatusBadSize);
    };
    refuses(kpriMorphologyBorderInit_1u_C1R, state<KprMorphState>());
    refuses(kpriMorphAdvInit_1u_C1R, state<KprMorphAdvState>());
}

TEST_F(RefusalsOfBits, Large) {
    constexpr Kpr64s beyond = 0x7fffffff;
    const auto checkLarge = [&](auto process, auto* state, bool compound, bool inPlaceServed) {
        const Kpr8u value = 1;
        const auto call = [&](const Kpr8u* from, Kpr8u* to, Kpr64s srcStep, int srcBit, Kpr64s dstStep, int dstBit,
                              Kpr64s width, Kpr64s height, KprBorderType word, const Kpr8u* constant) {
            return process(from, srcStep, srcBit, to, dstStep, dstBit, width, height, word, constant, state, dst());
        };
        check(inPlaceServed, [&](auto... arguments) { return call(arguments..., &value); });
        EXPECT_EQ(call(src(), dst(), 0, 9, 0, 9, beyond + 1, 5, 0, &value), kprStatusSizeOverflow);
        EXPECT_EQ(call(src(), dst(), 0, 9, 0, 9, 5, beyond + 1, 0, &value), kprStatusSizeOverflow);
        const KprStatus atLimit = compound ? kprStatusSizeOverflow : kprStatusBadSize;
        EXPECT_EQ(call(src(), dst(), beyond, 0, beyond, 0, beyond, 5, kprBorderMirror, &value), atLimit);
        EXPECT_EQ(call(src(), dst(), 9, 0, 9, 0, 5, beyond, kprBorderMirror, &value), atLimit);
        EXPECT_EQ(call(src(), dst(), 9, 0, 9, 0, 5, 5, kprBorderConstant, nullptr), kprStatusNullPtr);
        if (compound) {
            EXPECT_EQ(call(src(), dst(), 0, 9, 0, 9, 0, 0, kprBorderConstant, nullptr), kprStatusNullPtr);
        } else {
            EXPECT_EQ(call(src(), dst(), beyond, 0, 9, 0, 5, 5, kprBorderConstant, nullptr), kprStatusBadStep);
        }
    };
    for (auto process : {kpriDilate_1u_C1R_L, kpriErode_1u_C1R_L}) {
        checkLarge(process, state<KprMorphState>(), false, false);
    }
    for (auto process :
         {kpriMorphOpen_1u_C1R_L, kpriMorphClose_1u_C1R_L, kpriMorphTophat_1u_C1R_L, kpriMorphBlackhat_1u_C1R_L}) {
        checkLarge(process, state<KprMorphAdvState>(), true, true);
    }
    checkLarge(kpriMorphGradient_1u_C1R_L, state<KprMorphAdvState>(), false, false);
}

}  // namespace
