// Masks with heights: the state block, and the sizes of block and buffer.
#pragma once

#include <algorithm>
#include <limits>

#include "primitives/rows.h"
#include "primitives/sizes.h"

namespace n0::morph {

// A height as it is added to a pixel, in the type's own form; of bytes -255 to 255, beyond which nothing changes.
template <typename T>
using Height = std::conditional_t<std::is_same_v<T, Kpr8u>, Kpr32s, Kpr32f>;

template <typename T>
constexpr bool isTap(Height<T> height) {
    if constexpr (std::is_same_v<T, Kpr8u>) return height != std::numeric_limits<Kpr32s>::min();
    if constexpr (std::is_same_v<T, Kpr32f>) return height != -std::numeric_limits<Kpr32f>::infinity();
}

// Blocks lie at any address, whole: nothing in them is aligned.
template <typename T>
struct [[gnu::packed]] GrayTap {
    Kpr32s column;
    Height<T> height;
};

// A row of the mask: its taps from `first` on, those from `falling` on to the next row's first with heights below 0.
struct [[gnu::packed]] GrayRow {
    Kpr32s first, falling;
};

struct [[gnu::packed]] GrayHeader {
    Kpr32s magic;
    Kpr32s width, height;
    Kpr32s anchorX, anchorY;
    Kpr32s taps;
    Kpr32s flat;       // all taps have the height of the first
    Kpr32s hasFiller;  // there is a value for what lies outside under which it takes no part: see GrayWalk
};

template <typename T>
inline constexpr Kpr32s kGrayMagic = std::is_same_v<T, Kpr8u> ? 0x6d477238 : 0x6d477266;

// The block's parts: header, one GrayRow for each row and one behind, taps.
template <typename T>
struct GrayMask {
    const GrayHeader* header;
    const GrayRow* rows;
    const GrayTap<T>* taps;

    explicit GrayMask(const void* block)
        : header(static_cast<const GrayHeader*>(block)),
          rows(reinterpret_cast<const GrayRow*>(header + 1)),
          taps(reinterpret_cast<const GrayTap<T>*>(rows + header->height + 1)) {}

    // Columns and rows that are read on either side of a pixel.
    [[nodiscard]] Kpr64s left() const { return header->anchorX; }
    [[nodiscard]] Kpr64s right() const { return header->width - 1 - header->anchorX; }
    [[nodiscard]] Kpr64s above() const { return header->anchorY; }
    [[nodiscard]] Kpr64s below() const { return header->height - 1 - header->anchorY; }
};

template <typename T>
constexpr Bytes grayBlockBytes(KprSize mask) {
    return Bytes{sizeof(GrayHeader)} + (Bytes{mask.height} + 1) * Bytes{sizeof(GrayRow)} +
           Bytes{mask.width} * mask.height * Bytes{sizeof(GrayTap<T>)};
}

// Masks up to so many times as wide as the image work on rows with their borders; others look up each column.
constexpr Kpr64s kWidestMask = 6;

constexpr bool extendsRows(Kpr64s width, Kpr64s maskWidth) { return maskWidth - 1 <= kWidestMask * width; }

// The pieces of the work buffer: a ring of source rows, which reaches from a row as far up and down as the mask does in
// either direction, so that it holds what a reflection reads; one row of the border value; a pointer for each row of
// the mask.
constexpr Kpr64s grayStride(Kpr64s width, Kpr64s maskWidth) {
    return extendsRows(width, maskWidth) ? width + maskWidth - 1 : width;
}

template <typename T>
constexpr Bytes grayBufferBytes(KprSize roi, KprSize mask) {
    // The anchor, which is not known yet, may lie at the mask's edge.
    return 2 * Bytes{mask.height} * grayStride(roi.width, mask.width) * Bytes{sizeof(T)} +
           Bytes{mask.height} * Bytes{sizeof(void*)} + 2 * Bytes{alignof(void*)};
}

}  // namespace n0::morph
