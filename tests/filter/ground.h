// What the filters' tests share: border words, and images whose memory is exactly what a border word lets be read.
#pragma once

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

// A ROI inside an image that extends beyond it on the sides of the word's flags, by what a filter may read there: its
// reach, and what a reflection from the opposite side may come to.
template <typename T>
class BorderedImage {
  public:
    BorderedImage(KprSize roi, Reach reach, KprBorderType word, Random& random, int channels = 1)
        : roi_(roi),
          word_(word),
          channels_(channels),
          left_((word & kprBorderInMemLeft) != 0 ? std::max(reach.left, reach.right - roi.width + 1) : 0),
          top_((word & kprBorderInMemTop) != 0 ? std::max(reach.top, reach.bottom - roi.height + 1) : 0),
          image_({left_ + roi.width +
                      ((word & kprBorderInMemRight) != 0 ? std::max(reach.right, reach.left - roi.width + 1) : 0),
                  top_ + roi.height +
                      ((word & kprBorderInMemBottom) != 0 ? std::max(reach.bottom, reach.top - roi.height + 1) : 0)},
                 random, channels) {
        image_.fill(random);
        for (T& element : value_) element = random.pixel<T>();
    }

    const T* data() { return &image_.at(left_, top_); }
    int step() const { return image_.step(); }
    const T* value() const { return value_; }
    auto snapshot() const { return image_.snapshot(); }
    GuardedImage<T>& image() { return image_; }

    // The pixel that the word gives for any place.
    T at(std::int64_t x, std::int64_t y, int c) {
        const auto fromX = reference::extendedX(x, roi_.width, word_);
        const auto fromY = reference::extendedY(y, roi_.height, word_);
        if (!fromX || !fromY) return value_[c];
        return image_.at(static_cast<int>(*fromX) + left_, static_cast<int>(*fromY) + top_, c);
    }
    // Column x of the extension of row y itself.
    T inRow(std::int64_t x, int y, int c) {
        const auto fromX = reference::extendedX(x, roi_.width, word_);
        return fromX ? image_.at(static_cast<int>(*fromX) + left_, y + top_, c) : value_[c];
    }

  private:
    KprSize roi_;
    KprBorderType word_;
    int channels_, left_, top_;
    GuardedImage<T> image_;
    T value_[3];
};

}  // namespace test
