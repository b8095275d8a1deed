// What the plans of dilation and erosion share: the images of a call and what lies around them, the way in which values
// are joined, the way in which results are stored, and the carving of the work buffer.
#pragma once

#include <algorithm>
#include <limits>

#include "morph/structure.h"
#include "primitives/axis.h"
#include "primitives/rows.h"

namespace n0::morph {

// Memory of a call's own.
struct Workspace {
    char* first;
    Kpr64s bytes;
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

// A value that disappears when it is joined to any other.
template <typename Rule, typename T = typename Rule::Element>
constexpr T neutral() {
    return std::is_floating_point_v<T> ? std::numeric_limits<T>::quiet_NaN() : Rule::kWeakest;
}

template <typename T>
KPR_INLINE Vec<T> notNegative(Vec<T> v) {
    if constexpr (std::is_unsigned_v<T>) return v;
    return max(zero<T>(), v);
}

// How a result v becomes a pixel: as it is, or in a difference with another image's pixel. Negative differences, which
// only borders can bring, are cut to zero where the rule says so.
struct Plain {
    template <typename T>
    KPR_INLINE static void put(T* dst, const T*, Vec<T> v, auto part) {
        store(dst, v, part);
    }
};

struct FromOther {  // max(other - v, 0)
    template <typename T>
    KPR_INLINE static void put(T* dst, const T* other, Vec<T> v, auto part) {
        store(dst, notNegative(subtractSaturated(load(other, part), v)), part);
    }
};

struct LessOther {  // max(v - other, 0)
    template <typename T>
    KPR_INLINE static void put(T* dst, const T* other, Vec<T> v, auto part) {
        store(dst, notNegative(subtractSaturated(v, load(other, part))), part);
    }
};

struct LessOtherSigned {  // v - other
    template <typename T>
    KPR_INLINE static void put(T* dst, const T* other, Vec<T> v, auto part) {
        store(dst, subtractSaturated(v, load(other, part)), part);
    }
};

// What lines may need beside their own bytes to be aligned.
inline constexpr Kpr64s kLinesSlack = 190;

// Lines of `length` elements in a workspace. Where there is room for it, element `lead` of each lies at a multiple of
// 64 bytes.
template <typename T>
struct Lines {
    T* first;
    Kpr64s stride;
    Kpr64s before = 0;  // elements of the workspace in front of the first line, in the same 64 bytes as its first

    explicit Lines(T* line) : first(line), stride(0) {}
    Lines(Workspace work, Kpr64s count, Kpr64s length, Kpr64s lead)
        : first(reinterpret_cast<T*>(upTo(work.first, sizeof(T)))), stride(length) {
        constexpr Kpr64s lanes = kLanes<T>;
        const Kpr64s even = (length + lanes - 1) / lanes * lanes;
        const Kpr64s left = work.bytes - count * even * Kpr64s{sizeof(T)} - 126;
        if (left < 0) return;
        if (left >= 64) before = -lead & (lanes - 1);
        first = reinterpret_cast<T*>(upTo(reinterpret_cast<char*>(first + before + lead), 64)) - lead;
        stride = even;
    }
    KPR_INLINE T* operator[](Kpr64s i) const { return first + i * stride; }

    static char* upTo(char* p, uintptr_t multiple) {
        const auto address = reinterpret_cast<uintptr_t>(p);
        return p + (((address + multiple - 1) & ~(multiple - 1)) - address);
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
