// What the tests of morphology share: random structuring elements and border words, images with the memory around them
// that a border word promises and no more, and buffers of exactly the sizes told.
#pragma once

#include <sys/mman.h>

#include <algorithm>
#include <vector>

#include "tests/reference/morph.h"
#include "tests/support/guarded_image.h"
#include "tests/support/ladder.h"

namespace test {

inline reference::StructuringElement randomElement(Random& random) {
    static const KprSize sizes[] = {{1, 1}, {2, 1}, {1, 2}, {3, 3},   {3, 1},  {1, 3},  {2, 2},  {5, 5},   {4, 3},
                                    {7, 5}, {9, 2}, {6, 9}, {13, 13}, {3, 17}, {31, 1}, {1, 12}, {21, 21}, {70, 3}};
    const KprSize size = sizes[random.range(0, std::size(sizes) - 1)];
    reference::StructuringElement element{size.width, size.height, {}};
    enum Kind { Full, Half, Sparse, Disc, Diamond, Hourglass, EmptyEdge, Empty };
    const int kind = random.oneIn(2) ? Full : random.range(Half, random.oneIn(4) ? Empty : EmptyEdge);
    for (int y = 0; y < size.height; ++y) {
        for (int x = 0; x < size.width; ++x) {
            const double u = (x + 0.5) / size.width * 2 - 1, v = (y + 0.5) / size.height * 2 - 1;
            const bool set = kind == Full || (kind == Half && random.oneIn(2)) || (kind == Sparse && random.oneIn(8)) ||
                             (kind == Disc && u * u + v * v <= 1) ||
                             (kind == Hourglass && (u * u <= v * v || y == size.height / 2)) ||
                             (kind == Diamond && u * u < (1 - v) * (1 - v) && u * u < (1 + v) * (1 + v)) ||
                             (kind == EmptyEdge && x + 1 < size.width && y + 1 < size.height);
            element.bytes.push_back(set ? static_cast<Kpr8u>(random.range(1, 255)) : Kpr8u{0});
        }
    }
    return element;
}

// One that an oracle can afford on a photograph: of each plan one, and more taps only where pixels are few.
inline reference::StructuringElement elementFor(KprSize size, Random& random) {
    if (Kpr64s{size.width} * size.height < 9000) return randomElement(random);
    static const KprSize sizes[] = {{3, 3}, {5, 5}, {3, 3}, {5, 5}, {4, 3}, {9, 2}, {1, 17}, {17, 1}, {7, 5}};
    const int kind = random.range(0, std::size(sizes) - 1);
    reference::StructuringElement element{sizes[kind].width, sizes[kind].height, {}};
    const bool diamond = kind >= 2 && kind < 4;
    for (int y = 0; y < element.height; ++y) {
        for (int x = 0; x < element.width; ++x) {
            const int distance = std::abs(x - element.width / 2) + std::abs(y - element.height / 2);
            const bool hole = kind == 8 && random.oneIn(4);
            element.bytes.push_back((diamond && distance > element.width / 2) || hole ? 0 : 1);
        }
    }
    return element;
}

// Sizes for tests that look at all of them, up to so many pixels.
inline std::vector<KprSize> sizesUpTo(Kpr64s pixels) {
    std::vector<KprSize> sizes = allSizes();
    std::erase_if(sizes, [=](KprSize size) { return Kpr64s{size.width} * size.height > pixels; });
    return sizes;
}

// Bytes of exactly the size told, at an address of no alignment. They come full of what a signalling NaN looks like.
inline GuardedBytes exactly(Kpr64s size) {
    GuardedBytes bytes(static_cast<std::size_t>(size), Guard::After);
    std::memset(bytes.data(), 0x7f, static_cast<std::size_t>(size));
    for (Kpr64s i = 2; i < size; i += 4) bytes.data()[i] = static_cast<char>(0x95);
    return bytes;
}

// The values of a border, one a channel and not one more.
template <typename T>
class BorderValues {
  public:
    BorderValues(int channels, Random& random) : bytes_(static_cast<std::size_t>(channels) * sizeof(T), Guard::After) {
        for (int c = 0; c < channels; ++c) data()[c] = random.pixel<T>(true);
    }
    T* data() const { return reinterpret_cast<T*>(bytes_.data()); }
    T operator[](int c) const { return data()[c]; }

  private:
    GuardedBytes bytes_;
};

inline KprBorderType randomBorder(Random& random) {
    if (random.oneIn(8)) return kprBorderInMem;
    static const KprBorderType bases[] = {kprBorderReplicate, kprBorderMirror, kprBorderDefault, kprBorderConstant};
    KprBorderType word = bases[random.range(0, 3)];
    if (!random.oneIn(3)) word |= static_cast<KprBorderType>(random.range(0, 15) << 4);
    return word;
}

// An image and, on the sides that the word says are memory, `reach` times the element's reach.
template <typename T>
class ImageInMemory {
  public:
    ImageInMemory(KprSize size, KprBorderType word, const reference::StructuringElement& element, int channels,
                  Random& random, int reach = 1)
        : left_((word & kprBorderInMemLeft) != 0 ? reach * element.reachX() : 0),
          top_((word & kprBorderInMemTop) != 0 ? reach * element.reachY() : 0),
          image_({left_ + size.width + ((word & kprBorderInMemRight) != 0 ? reach * element.reachX() : 0),
                  top_ + size.height + ((word & kprBorderInMemBottom) != 0 ? reach * element.reachY() : 0)},
                 random, channels) {
        // Signalling NaN change the way that floats go: half the images have none.
        image_.fill(random, !random.oneIn(4));
        if constexpr (std::is_floating_point_v<T>) {
            const bool quiet = random.oneIn(2);
            image_.forEach([&](T& pixel) {
                if (quiet && std::isnan(pixel)) pixel = std::numeric_limits<T>::quiet_NaN();
            });
        }
    }

    T* data() { return &image_.at(left_, top_); }
    int step() const { return image_.step(); }
    T& at(int x, int y, int c) { return image_.at(left_ + x, top_ + y, c); }
    std::vector<char> snapshot() const { return image_.snapshot(); }

  private:
    int left_, top_;
    GuardedImage<T> image_;
};

// What is composed of two stages.
enum class Operation { Open, Close, TopHat, BlackHat, Gradient };
inline constexpr Operation kAll[] = {Operation::Open, Operation::Close, Operation::TopHat, Operation::BlackHat,
                                     Operation::Gradient};

template <typename T>
T difference(T a, T b) {
    if constexpr (std::is_floating_point_v<T>) {
        return a - b;
    } else {
        using Limits = std::numeric_limits<T>;
        return static_cast<T>(std::clamp(int{a} - int{b}, int{Limits::min()}, int{Limits::max()}));
    }
}

template <typename T>
T notBelowZero(T v) {
    return v < 0 ? T{0} : v;
}

// One channel of the result, row by row. `at` reads the source.
template <typename T>
std::vector<T> expectedOf(Operation operation, const reference::StructuringElement& element, bool turn,
                          KprBorderType word, T value, KprSize size, const std::function<T(int, int)>& at) {
    std::vector<T> result;
    const auto eachPixel = [&](KprSize roi, auto put) {
        for (int y = 0; y < roi.height; ++y) {
            for (int x = 0; x < roi.width; ++x) put(x, y);
        }
    };
    if (operation == Operation::Gradient) {
        const reference::Stage<T> dilated{true, element, word, value, size, at},
            eroded{false, element, word, value, size, at};
        eachPixel(size, [&](int x, int y) { result.push_back(difference(dilated(x, y), eroded(x, y))); });
        return result;
    }
    const bool dilatesFirst = operation == Operation::Close || operation == Operation::BlackHat;
    auto turned = element;
    turned.turned = turn;
    const int left = (word & kprBorderInMemLeft) != 0 ? element.reachX() : 0;
    const int top = (word & kprBorderInMemTop) != 0 ? element.reachY() : 0;
    const KprSize between = {left + size.width + ((word & kprBorderInMemRight) != 0 ? element.reachX() : 0),
                             top + size.height + ((word & kprBorderInMemBottom) != 0 ? element.reachY() : 0)};
    const KprBorderType firstWord = (word & 3840) != 0 ? word | kprBorderInMem : word;
    const reference::Stage<T> first{dilatesFirst, element, firstWord,
                                    value,        between, [&](int x, int y) { return at(x - left, y - top); }};
    std::vector<T> middle;
    eachPixel(between, [&](int x, int y) { middle.push_back(first(x, y)); });
    const auto middleAt = [&](int x, int y) {
        return middle.at(static_cast<std::size_t>((y + top) * between.width + x + left));
    };
    const reference::Stage<T> second{!dilatesFirst, turned, word, value, size, middleAt};
    eachPixel(size, [&](int x, int y) {
        const T v = second(x, y);
        if (operation == Operation::TopHat) return result.push_back(notBelowZero(difference(at(x, y), v)));
        if (operation == Operation::BlackHat) return result.push_back(notBelowZero(difference(v, at(x, y))));
        result.push_back(v);
    });
    return result;
}

// A ROI as large as `size` or somewhat larger, for sizing.
inline KprSize sizedFor(KprSize size, Random& random) {
    if (random.oneIn(2)) return size;
    return {size.width + random.range(0, 40), size.height + random.range(0, 20)};
}

// Sparse memory of so many bytes, most of which stay untouched.
class SparseBytes {
  public:
    explicit SparseBytes(std::size_t size)
        : size_(size),
          data_(mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0)) {
        if (data_ == MAP_FAILED) throw std::bad_alloc();
    }
    SparseBytes(const SparseBytes&) = delete;
    SparseBytes& operator=(const SparseBytes&) = delete;
    ~SparseBytes() { munmap(data_, size_); }
    char* data() const { return static_cast<char*>(data_); }

  private:
    std::size_t size_;
    void* data_;
};

// A state block as it is laid out in memory; Extent is 32-bit or, in the large interface, 64-bit.
template <typename Extent>
struct BlockLayout {
    const Kpr8u* mask;
    Extent width, height;
    Kpr32s anchorX, anchorY;
    const Kpr16u* taps;
};

// Expects a block that holds the mask `kept`, made odd already, the anchor of the mask as it was given, and, if it has
// them, the right lists of taps.
template <typename Extent>
void expectBlock(const void* spec, KprSize given, const std::vector<Kpr8u>& kept, bool listed) {
    const auto address = (reinterpret_cast<std::uintptr_t>(spec) + 7) / 8 * 8;
    const auto& block = *reinterpret_cast<const BlockLayout<Extent>*>(address);
    const int width = given.width | 1, height = given.height | 1;
    ASSERT_EQ(block.mask, reinterpret_cast<const Kpr8u*>(&block + 1));
    EXPECT_EQ(block.width, width);
    EXPECT_EQ(block.height, height);
    EXPECT_EQ(block.anchorX, given.width / 2);
    EXPECT_EQ(block.anchorY, given.height / 2);
    EXPECT_EQ(std::vector<Kpr8u>(block.mask, block.mask + width * height), kept);
    ASSERT_EQ(block.taps != nullptr, listed);
    if (!listed) return;
    const Kpr16u* taps = block.taps;
    for (int y = 0; y < height; ++y) {
        std::vector<Kpr16u> columns;
        for (int x = 0; x < width; ++x) {
            if (kept[static_cast<std::size_t>(y * width + x)] != 0) columns.push_back(static_cast<Kpr16u>(x));
        }
        ASSERT_EQ(*taps, columns.size());
        EXPECT_EQ(std::vector<Kpr16u>(taps + 1, taps + 1 + *taps), columns);
        taps += 1 + *taps;
    }
}

// A border value as the 32-bit forms take it: one element by value, more by a pointer.
template <int channels, typename T>
auto borderValue(const T* values) {
    if constexpr (channels == 1) {
        return *values;
    } else {
        return values;
    }
}

}  // namespace test
