// What the filters' tests share: border words, and images whose memory is exactly what a border word lets be read.
#pragma once

#include "tests/reference/border.h"
#include "tests/reference/filter.h"
#include "tests/support/guarded_image.h"

namespace test {

// Every accepted word: three modes with all combinations of flags, and the word for memory on all sides.
inline std::vector<KprBorderType> filterWords() {
    std::vector<KprBorderType> words = {kprBorderInMem};
    for (KprBorderType mode : {kprBorderConstant, kprBorderReplicate, kprBorderMirror}) {
        for (KprBorderType flags = 0; flags < 256; flags += 16) words.push_back(mode | flags);
    }
    return words;
}
inline KprBorderType anyFilterWord(Random& random) {
    static const auto words = filterWords();
    return words[static_cast<std::size_t>(random.range(0, static_cast<int>(words.size()) - 1))];
}

struct Reach {
    int left, right, top, bottom;
};

// The row that row y of a ROI reads under a word, and the column that column x does; nothing for the border value.
inline std::optional<std::int64_t> rowOf(std::int64_t y, std::int64_t height, KprBorderType word) {
    return reference::rowIndex(word, y, height, reference::LonePixel::Repeats);
}
inline std::optional<std::int64_t> columnOf(std::int64_t x, std::int64_t width, KprBorderType word) {
    return reference::columnIndex(word, x, width, reference::LonePixel::Repeats);
}

// A ROI inside an image that extends beyond it on the sides of the word's flags, by what a filter may read there: its
// reach, and what a reflection from the opposite side may come to. The border value lies in memory of its own that ends
// with its last channel. Floats may be wild.
template <typename T>
class BorderedImage {
  public:
    BorderedImage(KprSize roi, Reach reach, KprBorderType word, Random& random, int channels = 1, bool wild = false)
        : roi_(roi),
          word_(word),
          channels_(channels),
          left_((word & kprBorderInMemLeft) != 0 ? std::max(reach.left, reach.right - roi.width + 1) : 0),
          top_((word & kprBorderInMemTop) != 0 ? std::max(reach.top, reach.bottom - roi.height + 1) : 0),
          image_({left_ + roi.width +
                      ((word & kprBorderInMemRight) != 0 ? std::max(reach.right, reach.left - roi.width + 1) : 0),
                  top_ + roi.height +
                      ((word & kprBorderInMemBottom) != 0 ? std::max(reach.bottom, reach.top - roi.height + 1) : 0)},
                 random, channels),
          value_(sizeof(T) * static_cast<std::size_t>(channels), Guard::After) {
        image_.fill(random, wild);
        for (int c = 0; c < channels; ++c) reinterpret_cast<T*>(value_.data())[c] = random.pixel<T>(wild);
    }

    const T* data() { return &image_.at(left_, top_); }
    int step() const { return image_.step(); }
    const T* value() const { return reinterpret_cast<const T*>(value_.data()); }
    auto snapshot() const { return image_.snapshot(); }
    GuardedImage<T>& image() { return image_; }

    // The pixel that the word gives for any place.
    T at(std::int64_t x, std::int64_t y, int c) {
        const auto fromX = columnOf(x, roi_.width, word_);
        const auto fromY = rowOf(y, roi_.height, word_);
        if (!fromX || !fromY) return value()[c];
        return image_.at(static_cast<int>(*fromX) + left_, static_cast<int>(*fromY) + top_, c);
    }
    // Column x of the extension of row y itself.
    T inRow(std::int64_t x, int y, int c) {
        const auto fromX = columnOf(x, roi_.width, word_);
        return fromX ? image_.at(static_cast<int>(*fromX) + left_, y + top_, c) : value()[c];
    }

  private:
    KprSize roi_;
    KprBorderType word_;
    int channels_, left_, top_;
    GuardedImage<T> image_;
    GuardedBytes value_;
};

// Four rows so far apart that the last ones begin beyond 2^31 bytes: addresses of which memory is taken only where
// there are pixels.
template <typename T>
class SparseRows {
  public:
    static constexpr int kStep = (1 << 30) + 64, kRows = 4;

    SparseRows()
        : base_(mmap(nullptr, kBytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0)) {}
    SparseRows(const SparseRows&) = delete;
    SparseRows& operator=(const SparseRows&) = delete;
    ~SparseRows() { munmap(base_, kBytes); }

    bool good() const { return base_ != MAP_FAILED; }
    T* row(std::ptrdiff_t y) const { return reinterpret_cast<T*>(static_cast<char*>(base_) + y * kStep); }

  private:
    static constexpr std::size_t kBytes = std::size_t{kRows} * kStep;
    void* base_;
};

// `run(src, srcStep, dst, dstStep)` gives the same on rows that lie so as on rows that lie close.
template <typename Src, typename Dst, typename Run>
void checkRowsFarApart(int width, Run run) {
    const SparseRows<Src> src;
    const SparseRows<Dst> dst;
    if (!src.good() || !dst.good()) GTEST_SKIP() << "no address space";
    Random random;
    GuardedImage<Src> close({width, SparseRows<Src>::kRows}, random);
    GuardedImage<Dst> expected({width, SparseRows<Dst>::kRows}, random);
    close.fill(random);
    const auto bytes = static_cast<std::size_t>(width);
    for (int y = 0; y < src.kRows; ++y) std::memcpy(src.row(y), close.row(y), bytes * sizeof(Src));
    ASSERT_EQ(run(src.row(0), src.kStep, dst.row(0), dst.kStep), kprStatusOk);
    ASSERT_EQ(run(close.data(), close.step(), expected.data(), expected.step()), kprStatusOk);
    for (int y = 0; y < dst.kRows; ++y)
        EXPECT_EQ(std::memcmp(dst.row(y), expected.row(y), bytes * sizeof(Dst)), 0) << "row " << y;
}

}  // namespace test
