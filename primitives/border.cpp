// Copies of an image with a border around it. The rules of the modes stand in the header. The image and its left and
// right stretches are made row by row; the rows above and below are then copies of finished rows, or set to the value.
#include "primitives/border.h"

#include "primitives/axis.h"
#include "primitives/bytes.h"

namespace n0 {
namespace {

// The image, and where it lies in the destination: both address its first pixel, which are the same in place.
struct Layout {
    Rows<const Kpr8u> src;
    Rows<Kpr8u> image;
    Kpr64s width, height;
    Kpr64s left, right, top, bottom;
};

// What is copied beside the image's own rows: one function for all sizes of pixels.
[[gnu::noinline]] void copyStretch(Kpr8u* dst, const Kpr8u* src, Kpr64s bytes) { copyBytes(dst, src, bytes); }

// A rule makes the stretches on both sides of a row, whose pixels stand at `src`, around `image`; rows outside
// the image are those that its `mode` names.
template <int pixelBytes>
struct Constant {
    Vec<Kpr8u> value;

    void makeSides(const Layout& at, const Kpr8u*, Kpr8u* image) const {
        fillPixels<pixelBytes>(image - at.left * pixelBytes, value, at.left);
        fillPixels<pixelBytes>(image + at.width * pixelBytes, value, at.right);
    }
};

template <int pixelBytes>
struct Replicate {
    void makeSides(const Layout& at, const Kpr8u* src, Kpr8u* image) const {
        const Kpr8u* last = src + (at.width - 1) * pixelBytes;
        fillPixels<pixelBytes>(image - at.left * pixelBytes, repeatPixel<pixelBytes>(src), at.left);
        fillPixels<pixelBytes>(image + at.width * pixelBytes, repeatPixel<pixelBytes>(last), at.right);
    }

    [[nodiscard]] KprBorderType mode() const { return kprBorderReplicate; }
};

template <int pixelBytes>
struct Mirror {
    Kpr64s edge = 1;  // how many pixels a reflection leaves out at a turn: 1, or 0 where it repeats the edge

    void makeSides(const Layout& at, const Kpr8u* src, Kpr8u* image) const {
        const Kpr64s skipped = at.width == 1 ? 0 : edge;
        const Kpr64s stretch = at.width - skipped;  // as far as a reflection goes in one direction
        const Kpr64s left = std::min(stretch, at.left);
        const Kpr64s right = std::min(stretch, at.right);
        reversePixels<pixelBytes>(image - left * pixelBytes, src + skipped * pixelBytes, left);
        reversePixels<pixelBytes>(image + at.width * pixelBytes, src + (stretch - right) * pixelBytes, right);
        // Beyond one reflection the row repeats what is finished, of which each turn doubles the length.
        for (Kpr64s done = left, period = 2 * stretch; done < at.left; period *= 2) {
            const Kpr64s count = std::min(period, at.left - done);
            done += count;
            copyStretch(image - done * pixelBytes, image + (period - done) * pixelBytes, count * pixelBytes);
        }
        for (Kpr64s done = right, period = 2 * stretch; done < at.right; period *= 2) {
            const Kpr64s count = std::min(period, at.right - done);
            Kpr8u* dst = image + (at.width + done) * pixelBytes;
            copyStretch(dst, dst - period * pixelBytes, count * pixelBytes);
            done += count;
        }
    }

    [[nodiscard]] KprBorderType mode() const { return edge == 1 ? KprBorderType{kprBorderMirror} : kRepeatEdge; }
};

template <template <int> typename Rule, int pixelBytes>
KprStatus extend(Layout at, Rule<pixelBytes> rule) {
    for (Kpr64s y = 0; y < at.height; ++y) {
        if (at.image[y] != at.src[y]) copyBytes(at.image[y], at.src[y], at.width * pixelBytes);
        rule.makeSides(at, at.src[y], at.image[y]);
    }
    const Rows whole{at.image.first - at.left * pixelBytes, at.image.step};
    const Kpr64s width = at.left + at.width + at.right;
    const auto makeRow = [&](Kpr64s y) {
        if constexpr (std::is_same_v<Rule<pixelBytes>, Constant<pixelBytes>>)
            fillPixels<pixelBytes>(whole[y], rule.value, width);
        else
            copyStretch(whole[y], whole[Axis{at.height, rule.mode()}(y)], width * pixelBytes);
    };
    for (Kpr64s y = -at.top; y < 0; ++y) makeRow(y);
    for (Kpr64s y = at.height; y < at.height + at.bottom; ++y) makeRow(y);
    return kprStatusOk;
}

const Kpr8u* bytes(const void* pixels) { return static_cast<const Kpr8u*>(pixels); }
Kpr8u* bytes(void* pixels) { return static_cast<Kpr8u*>(pixels); }

template <typename Size>
constexpr KprSizeL wide(Size size) {
    return {size.width, size.height};
}

// The arguments that all kinds of bordered copy have. `dst` is the image's place in the in-place forms.
struct Request {
    const void* src;
    Kpr64s srcStep;
    KprSizeL size;
    void* dst;
    Kpr64s dstStep;
    KprSizeL whole;
    Kpr64s top;
    Kpr64s left;
};

// Image and border fit into the destination. What is compared is what the border leaves over: a sum might wrap.
constexpr KprStatus borderFits(KprSizeL size, KprSizeL whole, Kpr64s top, Kpr64s left) {
    const auto fits = [](Kpr64s image, Kpr64s border, Kpr64s room) {
        return border >= 0 && room >= border && room - border >= image;
    };
    return failIf(!fits(size.width, left, whole.width) || !fits(size.height, top, whole.height), kprStatusBadSize);
}

[[gnu::noinline]] KprStatus check(const Request& call) {
    return firstFailure(notNull(call.src, call.dst), failIf(call.srcStep < 1 || call.dstStep < 1, kprStatusBadStep),
                        roiHolds(call.size), roiHolds(call.whole),
                        borderFits(call.size, call.whole, call.top, call.left));
}

Layout inPlaceLayout(const Request& call) {
    return {{bytes(call.src), call.srcStep},
            {bytes(call.dst), call.dstStep},
            call.size.width,
            call.size.height,
            call.left,
            call.whole.width - call.left - call.size.width,
            call.top,
            call.whole.height - call.top - call.size.height};
}

template <int pixelBytes>
Layout copyLayout(const Request& call) {
    Layout at = inPlaceLayout(call);
    at.image.first = at.image[call.top] + call.left * pixelBytes;
    return at;
}

// ---- the three kinds of copy, which the forms of all element types, steps and sizes share

template <int pixelBytes>
[[gnu::noinline]] KprStatus copyConst(const Request& call, const void* value) {
    if (const KprStatus failed = firstFailure(check(call), notNull(value))) return failed;
    return extend(copyLayout<pixelBytes>(call), Constant<pixelBytes>{repeatPixel<pixelBytes>(bytes(value))});
}

template <template <int> typename Rule, int pixelBytes>
[[gnu::noinline]] KprStatus extendInPlace(const Request& call) {
    if (const KprStatus failed = check(call)) return failed;
    return extend(inPlaceLayout(call), Rule<pixelBytes>{});
}

enum class Twin { None, InPlace };

template <template <int> typename Rule, int pixelBytes, Twin twin>
[[gnu::noinline]] KprStatus copy(const Request& call) {
    if (twin == Twin::InPlace && call.src == call.dst) {
        Request inPlace = call;
        inPlace.srcStep = call.dstStep;
        return extendInPlace<Rule, pixelBytes>(inPlace);
    }
    if (const KprStatus failed = check(call)) return failed;
    return extend(copyLayout<pixelBytes>(call), Rule<pixelBytes>{});
}

// Of a value that is an element, its own address.
template <typename T>
const void* addressOf(const T& value) {
    return &value;
}
template <typename T>
const void* addressOf(const T* const& value) {
    return value;
}

template <int channels, typename T>
void copyTight(const T* src, Kpr64s srcStep, KprSize size, T* dst, int mode, Kpr64s left, Kpr64s right, Kpr64s top,
               Kpr64s bottom) {
    constexpr int pixelBytes = sizeof(T) * channels;
    const Rows whole{bytes(dst), (left + size.width + right) * pixelBytes};
    extend(Layout{{bytes(src), srcStep * Kpr64s{sizeof(T)}},
                  {whole[top] + left * pixelBytes, whole.step},
                  size.width,
                  size.height,
                  left,
                  right,
                  top,
                  bottom},
           Mirror<pixelBytes>{.edge = mode == kprBorderMirror ? 1 : 0});
}

// The sides in memory count as image, and only the others are made.
template <typename T>
KprStatus copyWithMargins(const T* src, Kpr64s srcStep, KprSize size, KprBorderType borderType, T value, KprSize margin,
                          T* dst, Kpr64s dstStep) {
    const auto inMemory = [=](KprBorderType flag, Kpr64s extent) { return (borderType & flag) != 0 ? extent : 0; };
    const Kpr64s above = inMemory(kprBorderInMemTop, margin.height);
    const Kpr64s before = inMemory(kprBorderInMemLeft, margin.width);
    const KprSizeL grown{before + size.width + inMemory(kprBorderInMemRight, margin.width),
                         above + size.height + inMemory(kprBorderInMemBottom, margin.height)};
    const KprSizeL whole{size.width + Kpr64s{2} * margin.width, size.height + Kpr64s{2} * margin.height};
    const Request call{Rows{src, srcStep}[-above] - before,
                       srcStep,
                       grown,
                       dst,
                       dstStep,
                       whole,
                       margin.height - above,
                       margin.width - before};
    switch (baseOf(borderType)) {
        case kprBorderReplicate:
            return copy<Replicate, sizeof(T), Twin::None>(call);
        case kprBorderMirror:
            return copy<Mirror, sizeof(T), Twin::None>(call);
        default:
            return copyConst<sizeof(T)>(call, &value);
    }
}

}  // namespace
}  // namespace n0

using namespace n0;

KprStatus CV_BORDER_CHECK_PARSE_FLAGS_NEW(KprBorderType word, KprBorderType defaultMode, KprBorderType* baseMode,
                                          KprBorderType* inMemory, KprBorderType* firstStage) {
    const KprBorderType mode = baseOf(word);
    const bool known = oneOf(mode, kprBorderConstant, kprBorderReplicate, kprBorderMirror, kprBorderDefault);
    const bool memoryAlone = (word & ~kBaseMode) == kprBorderInMem;
    if ((word & ~kMorphologyWord) != 0 || !(known || memoryAlone)) return kprStatusBadBorder;
    *baseMode = known ? mode : defaultMode;
    *inMemory = word & kprBorderInMem;
    *firstStage = word & kFirstStage;
    return kprStatusOk;
}

// NOLINTBEGIN(bugprone-macro-parentheses): T is a type
#define KPR_CONST_BORDER(name, T, channels, Size)                                                                      \
    KprStatus name(const T* src, Extent<Size> srcStep, Size srcRoiSize, T* dst, Extent<Size> dstStep, Size dstRoiSize, \
                   Extent<Size> topBorderHeight, Extent<Size> leftBorderWidth, BorderValue<T, channels> value) {       \
        return copyConst<sizeof(T) * (channels)>(                                                                      \
            {src, srcStep, wide(srcRoiSize), dst, dstStep, wide(dstRoiSize), topBorderHeight, leftBorderWidth},        \
            addressOf(value));                                                                                         \
    }
#define KPR_COPY_BORDER(name, Rule, T, channels, Size, twin)                                                           \
    KprStatus name(const T* src, Extent<Size> srcStep, Size srcRoiSize, T* dst, Extent<Size> dstStep, Size dstRoiSize, \
                   Extent<Size> topBorderHeight, Extent<Size> leftBorderWidth) {                                       \
        return copy<Rule, sizeof(T) * (channels), Twin::twin>(                                                         \
            {src, srcStep, wide(srcRoiSize), dst, dstStep, wide(dstRoiSize), topBorderHeight, leftBorderWidth});       \
    }
#define KPR_INPLACE_BORDER(name, Rule, T, channels, Size)                                                              \
    KprStatus name(T* srcDst, Extent<Size> srcDstStep, Size srcRoiSize, Size dstRoiSize, Extent<Size> topBorderHeight, \
                   Extent<Size> leftBorderWidth) {                                                                     \
        return extendInPlace<Rule, sizeof(T) * (channels)>({srcDst, srcDstStep, wide(srcRoiSize), srcDst, srcDstStep,  \
                                                            wide(dstRoiSize), topBorderHeight, leftBorderWidth});      \
    }
#include "primitives/border.inc"
// NOLINTEND(bugprone-macro-parentheses)

void ownCopyWithBorder_8u_C1R(const Kpr8u* src, int srcStep, KprSize roiSize, Kpr8u* dst, int mode, int left, int right,
                              int top, int bottom) {
    copyTight<1>(src, srcStep, roiSize, dst, mode, left, right, top, bottom);
}

void ownCopyWithBorder_8u_C3R(const Kpr8u* src, int srcStep, KprSize roiSize, Kpr8u* dst, int mode, int left, int right,
                              int top, int bottom) {
    copyTight<3>(src, srcStep, roiSize, dst, mode, left, right, top, bottom);
}

void ownCopyWithBorder_16u_C1R(const Kpr16u* src, int srcStep, KprSize roiSize, Kpr16u* dst, int mode, int left,
                               int right, int top, int bottom) {
    copyTight<1>(src, srcStep, roiSize, dst, mode, left, right, top, bottom);
}

void ownCopyWithBorder_16u_C3R(const Kpr16u* src, int srcStep, KprSize roiSize, Kpr16u* dst, int mode, int left,
                               int right, int top, int bottom) {
    copyTight<3>(src, srcStep, roiSize, dst, mode, left, right, top, bottom);
}

void ownCopyWithBorder_32f_C1R(const Kpr32f* src, int srcStep, KprSize roiSize, Kpr32f* dst, int mode, int left,
                               int right, int top, int bottom) {
    copyTight<1>(src, srcStep, roiSize, dst, mode, left, right, top, bottom);
}

void ownCopyWithBorder_32f_C3R(const Kpr32f* src, int srcStep, KprSize roiSize, Kpr32f* dst, int mode, int left,
                               int right, int top, int bottom) {
    copyTight<3>(src, srcStep, roiSize, dst, mode, left, right, top, bottom);
}

KprStatus CopyWithBorder8u(const Kpr8u* src, int srcStep, KprSize roiSize, KprBorderType borderType, Kpr8u value,
                           KprSize margin, Kpr8u* dst, int dstStep) {
    return copyWithMargins(src, srcStep, roiSize, borderType, value, margin, dst, dstStep);
}

KprStatus CopyWithBorder32f(const Kpr32f* src, int srcStep, KprSize roiSize, KprBorderType borderType, Kpr32f value,
                            KprSize margin, Kpr32f* dst, int dstStep) {
    return copyWithMargins(src, srcStep, roiSize, borderType, value, margin, dst, dstStep);
}
