// What the plans of dilation and erosion share: the images of a call and what lies around them, how values are joined,
// what is stored of the results, and lines in the work buffer.
#pragma once

#include <algorithm>
#include <bit>
#include <limits>

#include "morph/structure.h"
#include "primitives/axis.h"
#include "primitives/rows.h"
#include "primitives/workspace.h"

namespace n0::morph {

// What is made of a result v: it is the pixel, or the pixel is a difference with that of another image. Negative
// differences, which only borders can bring, are cut to zero where the rule says so.
enum class Output {
    Result,
    OtherLess,        // max(other - v, 0)
    LessOther,        // max(v - other, 0)
    LessOtherSigned,  // v - other
};

// What is known of a source of floats.
enum class Source {
    Quiet,       // no signalling NaN has been met
    Signalling,  // one may have been
};

template <typename T>
struct Job {
    Rows<const T> src;
    Rows<T> dst;
    Kpr64s width, height;  // pixels
    int channels;
    Border border;
    T fill[4];  // of the constant border, one element a channel
    Workspace work;
    Source source;
    Output output;
    Rows<const T> other;  // the image of the differences, row by row the ROI's

    [[nodiscard]] Axis rows() const { return rowsOf(height, border, LonePixel::Reflects); }
    [[nodiscard]] Axis columns() const { return columnsOf(width, border, LonePixel::Reflects); }
    [[nodiscard]] bool inPlace() const { return src.first == dst.first; }
};

// How values are joined, and the value that never wins.
template <typename T>
struct Dilation {
    using Element = T;
    static constexpr T kWeakest = std::numeric_limits<T>::lowest();
    KPR_INLINE static Vec<T> join(Vec<T> a, Vec<T> b) { return larger(a, b); }
};

template <typename T>
struct Erosion {
    using Element = T;
    static constexpr T kWeakest = std::numeric_limits<T>::max();
    KPR_INLINE static Vec<T> join(Vec<T> a, Vec<T> b) { return smaller(a, b); }
};

// A NaN as a quiet one, without an operation that a signalling one would trap in.
template <typename T>
constexpr T quiet(T value) {
    if constexpr (std::is_floating_point_v<T>) {
        const bool isNan = (std::bit_cast<unsigned>(value) & 0x7fffffff) > 0x7f800000;
        return isNan ? std::numeric_limits<T>::quiet_NaN() : value;
    }
    return value;
}

// A value that disappears when it is joined to any other.
template <typename Rule, typename T = typename Rule::Element>
constexpr T neutral() {
    return std::is_floating_point_v<T> ? std::numeric_limits<T>::quiet_NaN() : Rule::kWeakest;
}

// Stores what the output is to be of results v. One kernel serves all outputs: the branch costs less than what a kernel
// for each would add to the library.
template <typename T>
KPR_INLINE void put(Output output, T* dst, const T* other, Vec<T> v, auto part) {
    if (output != Output::Result) {
        const Vec<T> o = load(other, part);
        v = output == Output::OtherLess ? subtractSaturated(o, v) : subtractSaturated(v, o);
        if constexpr (std::is_signed_v<T>) {
            if (output != Output::LessOtherSigned) v = max(zero<T>(), v);
        }
    }
    store(dst, v, part);
}

// Lines of `length` elements in a workspace. Where there is room for it, element `lead` of each lies at a multiple of
// 64 bytes.
template <typename T>
struct Lines {
    T* first;
    Kpr64s stride;
    Kpr64s before = 0;  // elements of the workspace in front of the first line, in the same 64 bytes as its first

    explicit Lines(T* line) : first(line), stride(0) {}
    Lines(Workspace work, Kpr64s count, Kpr64s length, Kpr64s lead) : stride(roundUp(length, kLanes<T>)) {
        before = -lead & (kLanes<T> - 1);
        first = work.takeIfHeld<T>(before + count * stride, 64);
        if (first == nullptr) {
            before = 0;
            stride = length;
            first = work.take<T>(count * length);
        }
        first += before;
    }
    KPR_INLINE T* operator[](Kpr64s i) const { return first + i * stride; }

    // How many lines of that length a workspace holds, aligned.
    static Kpr64s heldBy(const Workspace& work, Kpr64s length) {
        return (work.left<T>(64) - kLanes<T>) / roundUp(length, kLanes<T>);
    }
};

// One value a channel, repeated over `count` elements; also as vectors that begin at any channel.
template <typename T>
class Pattern {
  public:
    Pattern(const T* values, int channels) : channels_(channels), period_(kLanes<T> - kLanes<T> % channels) {
        for (int i = 0; i < kLanes<T> + 4; ++i) elements_[i] = values[i % channels];
    }
    [[nodiscard]] KPR_INLINE Vec<T> from(Kpr64s element) const { return fromChannel(element % channels_); }
    [[nodiscard]] KPR_INLINE Vec<T> fromChannel(Kpr64s channel) const { return load(elements_ + channel, All{}); }

    void write(T* dst, Kpr64s count) const {
        for (Kpr64s i = 0; i < count; i += period_) store(dst + i, fromChannel(0), First{std::min(period_, count - i)});
    }
    [[nodiscard]] KPR_INLINE Kpr64s period() const { return period_; }  // elements of the whole pixels in a vector

  private:
    T elements_[kLanes<T> + 4];
    int channels_;
    Kpr64s period_;
};

}  // namespace n0::morph
