// Structure tensors: sums of the products dx * dx, dy * dy and dx * dy of derivatives over the windows of an image,
// made for strips of columns in one pass over the rows. A row of products lives until it is summed across; the sums
// across live in a ring as long as a window looks at them.
//
// Products are those of the plane: the ROI, or the ROI and what its windows find in memory beyond it. Beyond the plane
// they are extended by the base mode, in both directions separately; they are not products of an extended image.
// Sums go in the order of the columns, then of the rows.
#pragma once

#include "feature/gradient_rows.h"
#include "primitives/simd_edges.h"
#include "primitives/sizes.h"

namespace n0::feature {

// Three planes at equal distances.
struct Planes3 {
    Kpr32f* first;
    Kpr64s distance;

    KPR_INLINE Kpr32f* operator[](int which) const { return first + which * distance; }
};

// Sums over windows at one column: of dx * dx, dy * dy and dx * dy.
struct Tensor {
    Vec<Kpr32f> xx, yy, xy;
};

// What a measure makes of a row of tensors: `rows` rows of sums across, each with three planes, are to be added up.
struct Measure {
    // dst is the row's first pixel; further pixels are `pixelFloats` apart.
    void (*put)(const Measure&, const Kpr32f* const* rows, Kpr64s distance, Kpr32f* dst, Kpr64s count);
    int pixelFloats;
    Kpr32f factor, k, area;  // of the measure
};

// A window of `before + 1 + after` columns and rows.
struct Window {
    int before, after;
    [[nodiscard]] constexpr int size() const { return before + 1 + after; }
};

// Where the ROI lies in the plane, and how products continue beyond it.
struct Plane {
    Kpr64s width, height;  // of the plane
    KprPoint roiAt;
    KprBorderType mode;
    Kpr32f value;  // of products beyond, in constant mode
};

// A strip's columns stay in the first cache with all that is kept of them.
inline constexpr Kpr64s kStripColumns = 512;

constexpr Kpr64s stripOf(Kpr64s width) {
    const Kpr64s strips = (width + kStripColumns - 1) / kStripColumns;
    return ((width + strips - 1) / strips + 31) / 32 * 32;
}

// The rows of one strip.
class StructureRows {
  public:
    // Columns `first` to `first + count - 1` of the ROI.
    StructureRows(Workspace& space, const Plane& plane, Window window, const Measure& measure, Kpr64s first,
                  Kpr64s count, Kpr64s roiHeight, Rows<Kpr32f> dst);

    // Columns of the plane whose products are wanted, and where those of the next row go.
    [[nodiscard]] Kpr64s begin() const { return begin_; }
    [[nodiscard]] Kpr64s end() const { return end_; }
    [[nodiscard]] Planes3 products() const { return {products_.first + (begin_ - from_), products_.distance}; }
    // They have been made, from the plane's first row on.
    void made();

    // An upper bound of the bytes of a workspace.
    static constexpr Bytes bytes(Kpr64s strip, Window window, Kpr64s planeHeight) {
        return productBytes(strip, window) + sumBytes(strip) * (ringRows(window, planeHeight) + 1) + 64;
    }

  private:
    static constexpr Bytes productBytes(Kpr64s strip, Window window) {
        return Bytes{12} * (roundUp(Bytes{strip} + window.size(), 16) + 32);
    }
    static constexpr Bytes sumBytes(Kpr64s strip) { return Bytes{12} * roundUp(Bytes{strip}, 16); }
    static constexpr Kpr64s ringRows(Window window, Kpr64s planeHeight) {
        return std::min<Kpr64s>(window.size(), planeHeight);
    }

    void extendProducts();
    void sumAcross(Kpr32f* out);
    [[nodiscard]] const Kpr32f* sumsOf(Kpr64s row) const;  // of any row, existing or not
    void put(Kpr64s y);

    Plane plane_;
    Window window_;
    Measure measure_;
    Kpr64s count_, from_, begin_, end_;  // from_: the plane's column under the first window's first
    Kpr64s roiHeight_;
    Rows<Kpr32f> dst_;
    Planes3 products_;
    Kpr32f* sums_;  // a ring of rows of three planes, and a row of the constant
    Kpr64s distance_, ringRows_, made_ = 0, written_ = 0;
};

KPR_INLINE void storeProducts(Planes3 out, Kpr64s x, Vec<Kpr32f> dx, Vec<Kpr32f> dy) {
    store(out[0] + x, dx * dx, All{});
    store(out[1] + x, dy * dy, All{});
    store(out[2] + x, dx * dy, All{});
}

// Whole vectors: up to 31 products beyond the row are written.
template <typename Rule>
[[gnu::noinline]] void putProducts(const typename Rule::Middle* const* window, Kpr64s distance, Planes3 out,
                                   Kpr64s width) {
    using Middle = typename Rule::Middle;
    const Middle* rows[2 * Rule::kRadius + 1];  // a copy: a store could change the window, for all a compiler knows
    for (int i = 0; i <= 2 * Rule::kRadius; ++i) rows[i] = window[i];
    walkColumns<kLanes<Middle>>(width, [=](auto part, Kpr64s x) {
        const Vec<Middle> dx = Rule::dx(part, [=](int i) { return rows[i] + x; });
        const Vec<Middle> dy = Rule::dy(part, [=](int i) { return rows[i] + distance + x; });
        if constexpr (sizeof(Middle) == 2) {
            storeProducts(out, x, toFloat(widened<0>(dx)), toFloat(widened<0>(dy)));
            storeProducts(out, x + 16, toFloat(widened<1>(dx)), toFloat(widened<1>(dy)));
        } else {
            storeProducts(out, x, dx, dy);
        }
    });
}

// The rows of all strips, from a source whose derivatives reach `radius` pixels.
template <typename Rule, typename Src>
void walkStructures(Workspace space, Axis columns, Axis rows, Rows<const Src> src, Src value, const Plane& plane,
                    Window window, const Measure& measure, KprSize roi, Rows<Kpr32f> dst) {
    using Middle = typename Rule::Middle;
    const Kpr64s strip = stripOf(roi.width);
    for (Kpr64s x = 0; x < roi.width;) {
        Kpr64s count = std::min(strip, roi.width - x);
        if (roi.width - x == strip + 1) --count;  // a last strip of one column would not show where to reflect
        Workspace own = space;
        StructureRows out(own, plane, window, measure, x, count, roi.height,
                          {dst.first + x * measure.pixelFloats, dst.step});
        const Kpr64s begin = out.begin(), width = out.end() - begin, distance = roundUp(width, 32);
        const Axis part = {width, columns.mode, begin > 0 || columns.lowInMemory,
                           out.end() < columns.size || columns.highInMemory};
        auto* const ring = own.take<Middle>((2 * Rule::kRadius + 1) * Rule::kPlanes * distance, 64);
        filter::walkFixed<Rule>(part, rows, Rows<const Src>{src.first + begin, src.step}, value, ring, distance,
                                [&](const Middle* const* derivatives, Kpr64s) {
                                    putProducts<Rule>(derivatives, distance, out.products(), width);
                                    out.made();
                                });
        x += count;
    }
}

// Bytes for the strips of a ROI: those of derivatives too.
constexpr Bytes structureBytes(Kpr64s width, Kpr64s planeHeight, int radius, Window window) {
    const Kpr64s strip = stripOf(width);
    return StructureRows::bytes(strip, window, planeHeight) +
           Bytes{8} * (2 * radius + 1) * roundUp(Bytes{strip} + window.size(), 32) + 63;
}

// The sums over rows at column x.
template <int rows, typename Part>
KPR_INLINE Tensor tensorAt(const Kpr32f* const* row, Kpr64s distance, Kpr64s x, Part part) {
    const auto sum = [=](int plane) {
        Vec<Kpr32f> total = load(row[0] + plane * distance + x, part);
        for (int i = 1; i < rows; ++i) total = total + load(row[i] + plane * distance + x, part);
        return total;
    };
    return {sum(0), sum(1), sum(2)};
}

}  // namespace n0::feature
