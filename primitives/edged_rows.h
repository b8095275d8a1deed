// Rows of an image with what the border word puts at their ends.
#pragma once

#include <algorithm>

#include "primitives/axis.h"
#include "primitives/rows.h"

namespace n0 {

// A part of a row that is filtered at one go: columns x to x + count - 1, `src` being the first pixel that column x
// needs. `atEdge` says that some of them are made by the base mode.
template <typename T>
struct RowPart {
    const T* src;
    Kpr64s step;  // bytes to the next row's
    Kpr64s x, count;
    bool atEdge;
};

template <typename T>
struct RowParts {
    RowPart<T> part[3];
    int count = 0;

    [[nodiscard]] const RowPart<T>* begin() const { return part; }
    [[nodiscard]] const RowPart<T>* end() const { return part + count; }
};

// Pixels `first` to `last - 1` of `count` rows as `axis` extends them, each into a row of `out`. What the pixels are
// does not matter here, so that kernels of many types and lengths share this.
template <int pixelBytes>
[[gnu::noinline]] void extendRows(Rows<const Kpr8u> src, Kpr64s count, Axis axis, Kpr64s first, Kpr64s last,
                                  const Kpr8u* value, Rows<Kpr8u> out) {
    const auto make = [&](Kpr64s x) {
        const Kpr64s from = axis(x);
        for (Kpr64s i = 0; i < count; ++i) {
            const Kpr8u* pixel = from == kConstant ? value : src[i] + from * pixelBytes;
            __builtin_memcpy(out[i] + (x - first) * pixelBytes, pixel, pixelBytes);
        }
    };
    const Kpr64s begin = axis.lowInMemory ? first : std::max<Kpr64s>(first, 0);
    const Kpr64s end = axis.highInMemory ? last : std::min(last, axis.size);
    for (Kpr64s x = first; x < begin; ++x) make(x);
    walkStretches<kLanes<Kpr8u>, 1>((end - begin) * pixelBytes, [&]<int>(auto part, Kpr64s x) {
        for (Kpr64s i = 0; i < count; ++i)
            store(out[i] + (begin - first) * pixelBytes + x, load(src[i] + begin * pixelBytes + x, part), part);
    });
    for (Kpr64s x = end; x < last; ++x) make(x);
}

// Rows of an image that are filtered along, a result needing `before` pixels on its left and `after` on its right.
//
// Columns that read a pixel of the base mode are filtered from strips: copies of the row's ends with their border. A
// vector load that overlaps several recent stores cannot be forwarded from the store buffer, but waits until they have
// reached the cache; the strips of several rows are therefore made at once, well before they are read. Strips take
// whole groups of `lanes` columns, so that they cost no extra step; with one lane they hold exactly the columns that
// read such a pixel.
template <typename T, int channels, int lanes>
class EdgedRows {
  public:
    // Rows up to `end` exist. `value` has one element a channel and is read only where the axis asks for it. `strip` is
    // for long kernels: room for three times before + after pixels, or for the extended row if that is shorter and
    // there is more than one lane.
    EdgedRows(Rows<const T> src, Kpr64s end, Axis axis, int before, int after, const T* value, T* strip)
        : src_(src), end_(end), axis_(axis), before_(before), after_(after), value_(value), strip_(strip) {
        cut(lanes);
        held_ = stride_ * kMostRows <= kOwnStrips ? kMostRows : stride_ <= kOwnStrips ? kOwnStrips / stride_ : 0;
        if (held_ == 0) {
            cut(1);
            if (lanes > 1 && axis.size <= 2 * (Kpr64s{before} + after)) left_ = right_ = axis.size;
        }
    }

    RowParts<T> row(Kpr64s y) {
        if (held_ == 0) {
            fill(y, 1, strip_);
            return parts(y, strip_);
        }
        if (y < first_ || y >= first_ + held_) {
            first_ = y;
            fill(y, std::min(held_, end_ - y), own_);
        }
        return parts(y, own_ + (y - first_) * stride_);
    }

    // The parts of `count` rows from y on: at most mostRows(), which is not zero for short kernels.
    RowParts<T> band(Kpr64s y, Kpr64s count) {
        fill(y, count, own_);
        return parts(y, own_);
    }
    [[nodiscard]] Kpr64s mostRows() const { return held_; }

  private:
    static constexpr Kpr64s kOwnStrips = 16384 / sizeof(T), kMostRows = 48;

    RowParts<T> parts(Kpr64s y, const T* strips) const {
        const Kpr64s step = stride_ * Kpr64s{sizeof(T)};
        RowParts<T> all;
        if (left_ > 0) all.part[all.count++] = {strips, step, 0, left_, true};
        if (right_ > left_)
            all.part[all.count++] = {src_[y] + (left_ - before_) * channels, src_.step, left_, right_ - left_, false};
        if (axis_.size > right_) all.part[all.count++] = {rightOf(strips), step, right_, axis_.size - right_, true};
        return all;
    }

    // Strips of columns before left_ and from right_ on, in whole groups.
    void cut(Kpr64s group) {
        left_ = axis_.lowInMemory ? 0 : std::min((before_ + group - 1) & -group, axis_.size);
        right_ = axis_.highInMemory ? axis_.size : (axis_.size - after_) & -group;
        if (right_ < left_) {
            if (group > 1) left_ = axis_.size;
            right_ = left_;
        }
        stride_ = (left_ + axis_.size - right_ + 2 * (Kpr64s{before_} + after_)) * channels;
    }

    template <typename Strip>
    Strip* rightOf(Strip* left) const {
        return left_ > 0 ? left + (left_ + before_ + after_) * channels : left;
    }

    // The strips of `count` rows.
    [[gnu::noinline]] void fill(Kpr64s y, Kpr64s count, T* strips) const {
        if (left_ > 0) extend(y, count, -before_, left_ + after_, strips);
        if (axis_.size > right_) extend(y, count, right_ - before_, axis_.size + after_, rightOf(strips));
    }

    // Pixels `first` to `last - 1` of extended rows.
    void extend(Kpr64s y, Kpr64s count, Kpr64s first, Kpr64s last, T* out) const {
        extendRows<sizeof(T) * channels>({reinterpret_cast<const Kpr8u*>(src_[y]), src_.step}, count, axis_, first,
                                         last, reinterpret_cast<const Kpr8u*>(value_),
                                         {reinterpret_cast<Kpr8u*>(out), stride_ * Kpr64s{sizeof(T)}});
    }

    Rows<const T> src_;
    Kpr64s end_;
    Axis axis_;
    int before_, after_;
    const T* value_;
    T* strip_;
    Kpr64s left_ = 0, right_ = 0;
    Kpr64s stride_ = 0;         // elements of a row's strips
    Kpr64s first_ = INT64_MAX;  // the first of the rows whose strips are held
    Kpr64s held_;               // how many are; none where strips are longer than the memory for them
    T own_[kOwnStrips];
};

}  // namespace n0
