// What lies beyond an image, and copies of an image with a border around it.
//
// Of n pixels in a row or column, the base modes read outside of them:
//
//     index                    -3  -2  -1 |  0   1  ...  n-2  n-1 |  n    n+1  n+2
//     kprBorderReplicate        0   0   0                           n-1   n-1  n-1
//     kprBorderMirror           3   2   1                           n-2   n-3  n-4
//     kprBorderConstant           value                                 value
//     repeating the edge        2   1   0                           n-1   n-2  n-3
//
// No base mode repeats the edge; ownCopyWithBorder does.
//
// A border wider than the image keeps on reflecting, with a period of 2n - 2 (repeating the edge: 2n); the reflection
// of one row or column is that row or column. In a corner the row and the column follow their rules separately.
#pragma once

#include <kprcv/types.h>  // before the functions are hidden: the types are not

#include <type_traits>

#include "primitives/border_word.h"

namespace n0 {

// ---- the bordered copies

// The type of a width, a height or a step that goes with a size.
template <typename Size>
using Extent = decltype(Size::width);

// The value around an image: of one channel an element, of more a pointer to one element for each.
template <typename T, int channels>
using BorderValue = std::conditional_t<channels == 1, T, const T*>;

}  // namespace n0

extern "C" {

// Splits the word of a compound operation of morphology into base mode, in-memory flags and first-stage flags. A word
// without a base mode is taken if it says that all sides are in memory and has no first-stage flag: `defaultMode` is
// its base mode then. Any other word is kprStatusBadBorder, and nothing is written.
KprStatus CV_BORDER_CHECK_PARSE_FLAGS_NEW(KprBorderType word, KprBorderType defaultMode, KprBorderType* baseMode,
                                          KprBorderType* inMemory, KprBorderType* firstStage)
    KPR_TAGGED(CV_BORDER_CHECK_PARSE_FLAGS_NEW);

// kpriCopyConstBorder, kpriCopyReplicateBorder, kpriCopyMirrorBorder: `dst` addresses the corner of the bordered
// destination; in the in-place forms `srcDst` addresses the image's own first pixel inside a larger buffer, and its
// pixels are read but not written. What the top and left borders leave over of `dstRoiSize` is the bottom and right
// border; any border may be empty. Steps are in bytes, at least 1 and not checked further. All 115 stand in border.inc.
//
//     kprStatusNullPtr   a null image, first of all; in the constant forms a null `value`, last of all
//     kprStatusBadStep   a step below 1
//     kprStatusBadSize   a size below 1, a border below 0, or a destination that is too small for image and border
// NOLINTBEGIN(bugprone-macro-parentheses): T is a type
#define KPR_CONST_BORDER(name, T, channels, Size)                                                             \
    KprStatus name(const T* src, n0::Extent<Size> srcStep, Size srcRoiSize, T* dst, n0::Extent<Size> dstStep, \
                   Size dstRoiSize, n0::Extent<Size> topBorderHeight, n0::Extent<Size> leftBorderWidth,       \
                   n0::BorderValue<T, channels> value) KPR_TAGGED(name);
#define KPR_COPY_BORDER(name, Rule, T, channels, Size, twin)                                                  \
    KprStatus name(const T* src, n0::Extent<Size> srcStep, Size srcRoiSize, T* dst, n0::Extent<Size> dstStep, \
                   Size dstRoiSize, n0::Extent<Size> topBorderHeight, n0::Extent<Size> leftBorderWidth)       \
        KPR_TAGGED(name);
#define KPR_INPLACE_BORDER(name, Rule, T, channels, Size)                                    \
    KprStatus name(T* srcDst, n0::Extent<Size> srcDstStep, Size srcRoiSize, Size dstRoiSize, \
                   n0::Extent<Size> topBorderHeight, n0::Extent<Size> leftBorderWidth) KPR_TAGGED(name);
#include "primitives/border.inc"
// NOLINTEND(bugprone-macro-parentheses)

// A tight copy, its rows left + width + right pixels long with nothing between them, under mode 3 (kprBorderMirror) or
// any other, which repeats the edge pixel. `srcStep` counts elements. Nothing is checked.
void ownCopyWithBorder_8u_C1R(const Kpr8u* src, int srcStep, KprSize roiSize, Kpr8u* dst, int mode, int left, int right,
                              int top, int bottom) KPR_TAGGED(ownCopyWithBorder_8u_C1R);
void ownCopyWithBorder_8u_C3R(const Kpr8u* src, int srcStep, KprSize roiSize, Kpr8u* dst, int mode, int left, int right,
                              int top, int bottom) KPR_TAGGED(ownCopyWithBorder_8u_C3R);
void ownCopyWithBorder_16u_C1R(const Kpr16u* src, int srcStep, KprSize roiSize, Kpr16u* dst, int mode, int left,
                               int right, int top, int bottom) KPR_TAGGED(ownCopyWithBorder_16u_C1R);
void ownCopyWithBorder_16u_C3R(const Kpr16u* src, int srcStep, KprSize roiSize, Kpr16u* dst, int mode, int left,
                               int right, int top, int bottom) KPR_TAGGED(ownCopyWithBorder_16u_C3R);
void ownCopyWithBorder_32f_C1R(const Kpr32f* src, int srcStep, KprSize roiSize, Kpr32f* dst, int mode, int left,
                               int right, int top, int bottom) KPR_TAGGED(ownCopyWithBorder_32f_C1R);
void ownCopyWithBorder_32f_C3R(const Kpr32f* src, int srcStep, KprSize roiSize, Kpr32f* dst, int mode, int left,
                               int right, int top, int bottom) KPR_TAGGED(ownCopyWithBorder_32f_C3R);

// A copy with `margin.width` columns on the left and on the right and `margin.height` rows above and below. A side
// whose flag is set is copied from the memory beyond the image. The base mode makes the other sides: replicated,
// mirrored, and of any other mode `value`. Steps are in bytes; `dst` addresses the copy's corner, which has (width + 2
// * margin.width) x (height + 2 * margin.height) pixels. A margin is at least 0. The word is not checked.
//
// A reflection turns at the image's edge on the side whose flag is clear, and reads on into the memory of a flagged
// side.
KprStatus CopyWithBorder8u(const Kpr8u* src, int srcStep, KprSize roiSize, KprBorderType borderType, Kpr8u value,
                           KprSize margin, Kpr8u* dst, int dstStep) KPR_TAGGED(CopyWithBorder8u);
KprStatus CopyWithBorder32f(const Kpr32f* src, int srcStep, KprSize roiSize, KprBorderType borderType, Kpr32f value,
                            KprSize margin, Kpr32f* dst, int dstStep) KPR_TAGGED(CopyWithBorder32f);

}  // extern "C"
