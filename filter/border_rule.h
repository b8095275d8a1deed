// What lies beyond a ROI, along one axis and along a row.
#pragma once

#include <algorithm>
#include <cstdint>

#include "primitives/border.h"
#include "primitives/rows.h"

namespace n0 {

// The first T of working memory, at a multiple of `alignment` bytes.
template <typename T>
T* alignedUp(void* memory, std::uintptr_t alignment) {
    return reinterpret_cast<T*>(static_cast<char*>(memory) +
                                (-reinterpret_cast<std::uintptr_t>(memory) & (alignment - 1)));
}

// Where along one axis a pixel is read from: its index, or kConstant for the border value.
inline constexpr Kpr64s kConstant = INT64_MIN;

struct Axis {
    Kpr64s size;
    KprBorderType mode;
    bool lowInMemory, highInMemory;

    [[nodiscard]] KPR_INLINE constexpr bool isReal(Kpr64s index) const {
        return index < 0 ? lowInMemory : index < size || highInMemory;
    }

    // A reflection may land beyond the other side: it goes on until it meets the ROI or real memory.
    KPR_INLINE constexpr Kpr64s operator()(Kpr64s index) const {
        for (;;) {
            if (isReal(index)) return index;
            if (mode == kprBorderConstant) return kConstant;
            if (mode == kprBorderReplicate) return index < 0 ? 0 : size - 1;
            if (size == 1) return 0;
            index = index < 0 ? -index : 2 * (size - 1) - index;
        }
    }
};

// The first row that does not exist below a ROI.
constexpr Kpr64s endOf(Axis rows, int radius) { return rows.size + (rows.highInMemory ? radius : 0); }

constexpr Axis columnsOf(Kpr64s width, KprBorderType word) {
    return {width, word & kBaseMode, (word & kprBorderInMemLeft) != 0, (word & kprBorderInMemRight) != 0};
}
constexpr Axis rowsOf(Kpr64s height, KprBorderType word) {
    return {height, word & kBaseMode, (word & kprBorderInMemTop) != 0, (word & kprBorderInMemBottom) != 0};
}

// Rows of an image that are filtered along, a result needing `before` pixels on its left and `after` on its right.
//
// Columns near a synthesised pixel are filtered from strips: copies of the row's ends with their border. The strips of
// several rows are made at once, since a strip that is read just after it was written waits until all that was stored
// before has left the processor. Strips take whole groups of `lanes` columns, so that they cost no extra step; with one
// lane they hold exactly the columns that read a synthesised pixel.
template <typename T, int channels, int lanes>
class EdgedRows {
  public:
    // Rows up to `end` exist. `value` has one element a channel and is read only where the axis asks for it; `strip`
    // has room for before + after pixels and as many as the border touches on either side, and serves where kernels are
    // long.
    EdgedRows(Rows<const T> src, Kpr64s end, Axis axis, int before, int after, const T* value, T* strip)
        : src_(src), end_(end), axis_(axis), before_(before), after_(after), value_(value), strip_(strip) {
        left_ = axis.lowInMemory ? 0 : std::min((before + Kpr64s{lanes - 1}) & -Kpr64s{lanes}, axis.size);
        right_ = axis.highInMemory ? axis.size : (axis.size - after) & -Kpr64s{lanes};
        if (right_ < left_) right_ = lanes == 1 ? left_ : left_ = axis.size;
        stride_ = (left_ + axis.size - right_ + 2 * (Kpr64s{before} + after)) * channels;
        held_ = stride_ * kMostRows <= kOwnStrips ? kMostRows : stride_ <= kOwnStrips ? kOwnStrips / stride_ : 0;
        if (held_ == 0) {
            left_ = axis.lowInMemory ? 0 : std::min<Kpr64s>(before, axis.size);
            right_ = axis.highInMemory ? axis.size : std::max<Kpr64s>(left_, axis.size - after);
        }
    }

    // Row y, by `edge` from strips and by `inner` where it lies. Both take the first pixel read, the first column
    // written, and the number of columns.
    template <typename Inner, typename Edge>
    KPR_INLINE void filter(Kpr64s y, Inner inner, Edge edge) {
        if (held_ > 0 && (y < first_ || y >= first_ + held_)) {
            first_ = y;
            for (Kpr64s i = 0; i < held_ && y + i < end_; ++i) {
                fillLeft(src_[y + i], own_ + i * stride_);
                fillRight(src_[y + i], rightOf(own_ + i * stride_));
            }
        }
        const T* row = src_[y];
        T* const left = held_ > 0 ? own_ + (y - first_) * stride_ : strip_;
        T* const right = held_ > 0 ? rightOf(left) : strip_;
        if (left_ > 0) {
            if (held_ == 0) fillLeft(row, left);
            edge(left, Kpr64s{0}, left_);
        }
        if (right_ > left_) inner(row + (left_ - before_) * channels, left_, right_ - left_);
        if (axis_.size > right_) {
            if (held_ == 0) fillRight(row, right);
            edge(right, right_, axis_.size - right_);
        }
    }

    template <typename Filter>
    KPR_INLINE void filter(Kpr64s y, Filter both) {
        filter(y, both, both);
    }

  private:
    static constexpr Kpr64s kOwnStrips = 2048, kMostRows = 8;

    T* rightOf(T* left) const { return left + (left_ + before_ + after_) * channels; }
    void fillLeft(const T* row, T* out) const {
        if (left_ > 0) fill(row, -before_, left_ + after_, out);
    }
    void fillRight(const T* row, T* out) const {
        if (axis_.size > right_) fill(row, right_ - before_, axis_.size + after_, out);
    }

    // Pixels `first` to `last - 1` of the extended row.
    void fill(const T* row, Kpr64s first, Kpr64s last, T* out) const {
        const auto make = [&](Kpr64s x) {
            const Kpr64s from = axis_(x);
            const T* pixel = from == kConstant ? value_ : row + from * channels;
            for (int c = 0; c < channels; ++c) out[(x - first) * channels + c] = pixel[c];
        };
        const Kpr64s begin = axis_.lowInMemory ? first : std::max<Kpr64s>(first, 0);
        const Kpr64s end = axis_.highInMemory ? last : std::min(last, axis_.size);
        for (Kpr64s x = first; x < begin; ++x) make(x);
        walkRow<kLanes<T>>((end - begin) * channels, [](auto part, T* o, const T* s) { store(o, load(s, part), part); },
                           out + (begin - first) * channels, row + begin * channels);
        for (Kpr64s x = end; x < last; ++x) make(x);
    }

    Rows<const T> src_;
    Kpr64s end_;
    Axis axis_;
    int before_, after_;
    const T* value_;
    T* strip_;
    Kpr64s left_, right_;       // columns before the one and from the other on are filtered from strips
    Kpr64s first_ = INT64_MAX;  // the first of the rows whose strips are held
    Kpr64s held_;               // how many are; none where strips are longer than the memory for them
    Kpr64s stride_;
    T own_[kOwnStrips];
};

}  // namespace n0
