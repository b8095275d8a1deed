// Images of one bit a pixel, set bits being the larger pixels: what the plans of dilation and erosion share. Eight
// pixels lie in a byte, the leftmost in its most significant bit, and kernels work on the pixels of 64 bytes at a time.
#pragma once

#include "morph/job.h"
#include "primitives/border.h"

namespace n0::morph {

// Rows of pixels. Pixel x of a row is bit `bit` + x from the row's address on.
template <typename Byte>
struct BitRows {
    Rows<Byte> bytes;
    Kpr64s bit;
};

// a where `where` is set, b elsewhere. The instruction overwrites its first operand: a is passed first because callers
// do not need it afterwards, which saves them a copy.
KPR_INLINE Vec<Kpr8u> selectBits(Vec<Kpr8u> where, Vec<Kpr8u> a, Vec<Kpr8u> b) { return combine<0xe4>(a, b, where); }

// How pixels are joined. A bit that never wins is the same in a whole byte.
struct BitDilation {
    static constexpr Kpr8u kWeakest = 0;
    KPR_INLINE static Vec<Kpr8u> join(Vec<Kpr8u> a, Vec<Kpr8u> b) { return a | b; }
    KPR_INLINE static Vec<Kpr8u> join(Vec<Kpr8u> a, Vec<Kpr8u> b, Vec<Kpr8u> c) { return combine<0xfe>(a, b, c); }
};

struct BitErosion {
    static constexpr Kpr8u kWeakest = 0xff;
    KPR_INLINE static Vec<Kpr8u> join(Vec<Kpr8u> a, Vec<Kpr8u> b) { return a & b; }
    KPR_INLINE static Vec<Kpr8u> join(Vec<Kpr8u> a, Vec<Kpr8u> b, Vec<Kpr8u> c) { return combine<0x80>(a, b, c); }
};

struct BitJob {
    BitRows<const Kpr8u> src;
    BitRows<Kpr8u> dst;
    Kpr64s width, height;  // pixels
    Border border;
    Kpr8u fill;  // eight pixels of the constant border
    Workspace work;
    Output output;               // no less than zero: neither is a bit
    BitRows<const Kpr8u> other;  // the image of the differences; its first pixel is the ROI's

    [[nodiscard]] Axis rows() const { return rowsOf(height, border, LonePixel::Reflects); }
    [[nodiscard]] Axis columns() const { return columnsOf(width, border, LonePixel::Reflects); }
};

// The 64 bytes from `byte` on as far as they are among bytes begin to end.
KPR_INLINE Lanes lanesOf(Kpr64s byte, Kpr64s begin, Kpr64s end) {
    const Kpr64s low = std::clamp(begin - byte, Kpr64s{0}, Kpr64s{64});
    const Kpr64s high = std::clamp(end - byte, low, Kpr64s{64});
    return {First{high}.bits & ~First{low}.bits};
}

// Bits begin to end of a row, and the bytes that hold them.
struct BitSpan {
    Kpr64s begin, end;

    [[nodiscard]] KPR_INLINE Kpr64s firstByte() const { return begin >> 3; }
    [[nodiscard]] KPR_INLINE Kpr64s endByte() const { return (end + 7) >> 3; }
    [[nodiscard]] KPR_INLINE bool wholeBytes() const { return ((begin | end) & 7) == 0; }
    [[nodiscard]] KPR_INLINE Lanes lanes(Kpr64s byte) const { return lanesOf(byte, firstByte(), endByte()); }

    // The bits of the 64 bytes from `byte` on that the span has.
    [[nodiscard]] KPR_INLINE Vec<Kpr8u> mask(Kpr64s byte) const {
        const auto ones = broadcast<Kpr8u>(0xff);
        const auto first = broadcast(static_cast<Kpr8u>(0xff >> (begin & 7)));
        const auto last = broadcast(static_cast<Kpr8u>(0xff << (-end & 7)));
        return keep<Kpr8u>(lanes(byte).bits, merge(lanesOf(byte, firstByte(), firstByte() + 1), first, ones) &
                                                 merge(lanesOf(byte, endByte() - 1, endByte()), last, ones));
    }
};

// Lane by lane the eight pixels from number `count` on, 0 to 8, of the sixteen in a's byte and then b's. There are no
// shifts of bytes: they are shifted as halves of 16-bit lanes, and the bits that come in from the other half are masked
// out.
struct PixelShift {
    Vec<Kpr16u> ahead, behind;
    Vec<Kpr8u> kept;

    PixelShift() = default;
    KPR_INLINE explicit PixelShift(Kpr64s count)
        : ahead(broadcast(static_cast<Kpr16u>(count))),
          behind(broadcast(static_cast<Kpr16u>(8 - count))),
          kept(broadcast(static_cast<Kpr8u>(0xff << count))) {}

    KPR_INLINE Vec<Kpr8u> operator()(Vec<Kpr8u> a, Vec<Kpr8u> b) const {
        return selectBits(kept, as<Kpr8u>(as<Kpr16u>(a) << ahead), as<Kpr8u>(as<Kpr16u>(b) >> behind));
    }
};

// Pixels of rows at any bit, eight a lane, from the bytes of a span. Other bytes count as zeros.
class BitReader {
  public:
    // Bit `first` of a row becomes the first pixel of lane 0.
    BitReader(Kpr64s first, BitSpan held)
        : byte_(first >> 3), shift_(first & 7), whole_((first & 7) == 0), held_(held) {}

    [[nodiscard]] KPR_INLINE Vec<Kpr8u> operator()(const Kpr8u* row, Kpr64s lane) const {
        const Kpr64s at = byte_ + lane;
        if (at >= held_.firstByte() && at + 65 <= held_.endByte()) {
            const Vec<Kpr8u> a = load(row + at, All{});
            return whole_ ? a : shift_(a, load(row + at + 1, All{}));
        }
        const Vec<Kpr8u> a = load(row + at, held_.lanes(at));
        return whole_ ? a : shift_(a, load(row + at + 1, held_.lanes(at + 1)));
    }

  private:
    Kpr64s byte_;
    PixelShift shift_;
    bool whole_;
    BitSpan held_;
};

// The rows of the destination, a byte of pixels a lane. Lane 0 is the byte that holds the first pixel; the pixels
// beside the ROI in it and in the last one keep their values.
class BitSink {
  public:
    static constexpr bool kReadsOther = false;

    explicit BitSink(const BitJob& job)
        : rows_(job.dst.bytes), before_(job.dst.bit & 7), span_{before_, before_ + job.width} {
        rows_.first += job.dst.bit >> 3;
    }

    [[nodiscard]] Kpr64s before() const { return before_; }  // pixels of lane 0 before the ROI
    [[nodiscard]] Kpr64s bytes() const { return span_.endByte(); }

    // What is to be known of the 64 bytes from `lane` on before they are put.
    struct Stretch {
        bool whole;
        Vec<Kpr8u> mask;
    };
    [[nodiscard]] KPR_INLINE Stretch stretch(Kpr64s lane) const {
        const bool whole = span_.wholeBytes() || (lane > 0 && lane + 64 < bytes());
        return {whole, whole ? zero<Kpr8u>() : span_.mask(lane)};
    }

    KPR_INLINE void put(Kpr64s y, Kpr64s lane, const Stretch& stretch, Vec<Kpr8u> v, auto part) const {
        Kpr8u* dst = rows_[y] + lane;
        if (!stretch.whole) v = selectBits(stretch.mask, v, load(dst, part));
        store(dst, v, part);
    }

  private:
    Rows<Kpr8u> rows_;
    Kpr64s before_;
    BitSpan span_;
};

// The same for differences with another image. It is a class of its own because reading that image takes more registers
// than vectors of results have to spare.
class BitDifferenceSink : public BitSink {
  public:
    static constexpr bool kReadsOther = true;

    explicit BitDifferenceSink(const BitJob& job)
        : BitSink(job),
          other_(job.other.bytes),
          byte_((job.other.bit - before()) >> 3),
          shift_((job.other.bit - before()) & 7),
          shifted_(((job.other.bit - before()) & 7) != 0),
          held_{job.other.bit, job.other.bit + job.width},
          otherLess_(job.output == Output::OtherLess) {}

    struct Stretch : BitSink::Stretch {
        Lanes here, next;  // of the other image's bytes, and one byte further
    };
    [[nodiscard]] KPR_INLINE Stretch stretch(Kpr64s lane) const {
        return {BitSink::stretch(lane), held_.lanes(byte_ + lane), held_.lanes(byte_ + lane + 1)};
    }

    KPR_INLINE void put(Kpr64s y, Kpr64s lane, const Stretch& stretch, Vec<Kpr8u> v, auto part) const {
        const Kpr8u* row = other_[y] + byte_ + lane;
        Vec<Kpr8u> other = load(row, stretch.here);
        if (shifted_) other = shift_(other, load(row + 1, stretch.next));
        BitSink::put(y, lane, stretch, otherLess_ ? less(other, v) : less(v, other), part);
    }

  private:
    KPR_INLINE static Vec<Kpr8u> less(Vec<Kpr8u> a, Vec<Kpr8u> b) { return combine<0x30>(a, b, b); }  // a & ~b

    Rows<const Kpr8u> other_;
    Kpr64s byte_;
    PixelShift shift_;
    bool shifted_;
    BitSpan held_;
    bool otherLess_;
};

// use(sink) with the one that the job's output wants.
template <typename Use>
KPR_INLINE void withSink(const BitJob& job, Use use) {
    job.output == Output::Result ? use(BitSink(job)) : use(BitDifferenceSink(job));
}

}  // namespace n0::morph
