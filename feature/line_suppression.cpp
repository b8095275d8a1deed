// Candidates for corners that lie on a line are taken out of a map. With A, B, C the sums of dx * dx, dy * dy, dx * dy
// over the window around a candidate, cut to the ROI, and det = A * B - C * C, a candidate stays where
//
//     (t * t) * r < ((r + 1) * (r + 1)) * det        t = A + B, in double precision
//
// The map is taken in bands of rows. The derivatives of a band are made where it has candidates, and only of rows that
// a candidate's window reaches; what two bands share is kept. A row's sums down the columns are made once, and then
// summed across where there are candidates.
//
// Ranges: derivatives are below 12240, so that A and B are below 2^32. Where |dx| and |dy| are large together their sum
// is below 17850, so that C is below 2^31.
#include <algorithm>
#include <bit>

#include "filter/sobel.h"
#include "frame/checks.h"
#include "primitives/border_word.h"
#include "primitives/rows.h"
#include "primitives/simd_corners.h"
#include "primitives/sizes.h"
#include "primitives/workspace.h"

namespace n0::feature {
namespace {

// A band and the rows around it that its windows reach; at either end of the image one row more, see hold().
constexpr Kpr64s kBand = 6, kMostRadius = 2, kHeld = kBand + 2 * kMostRadius + 2;

// Elements of a row of the buffer, and its bytes in all.
constexpr Kpr64s strideOf(Kpr64s width) { return (width + 2 * kMostRadius + 31) & -32; }
constexpr Bytes bufferBytes(int width) {
    return Bytes{strideOf(width)} * (2 * kHeld * Kpr64s{sizeof(Kpr16s)} + 3 * Kpr64s{sizeof(Kpr32s)}) + 64;
}

struct Derivation {
    Rows<const Kpr8u> src;
    KprSize roi;
    int filter;
    KprMaskSize mask;
    KprBorderType border;
    Kpr8u value;

    // Of rows begin to end - 1, which are a ROI with memory on the sides where rows of the image follow.
    void make(Kpr64s begin, Kpr64s end, Kpr16s* dx, Kpr16s* dy, Kpr64s stride) const {
        const KprSize size = {roi.width, static_cast<int>(end - begin)};
        // Rows that lie farther inside than the mask reaches need nothing of the border rule.
        const int reach = mask == kprMaskSize3x3 ? 1 : 2;
        KprBorderType word = border;
        if (begin >= reach) word |= kprBorderInMemTop;
        if (end <= roi.height - reach) word |= kprBorderInMemBottom;
        const auto step = static_cast<int>(src.step), to = static_cast<int>(stride * Kpr64s{sizeof(Kpr16s)});
        Kpr8u none = 0;  // derivatives of bytes need no memory
        const auto derive = [&](auto function, Kpr16s* dst) {
            function(src[begin], step, dst, to, size, mask, word, value, &none);
        };
        if (filter == kprFilterSobel) {
            derive(kpriFilterSobelVertBorder_8u16s_C1R, dx);
            derive(kpriFilterSobelHorizBorder_8u16s_C1R, dy);
        } else {
            derive(kpriFilterScharrVertMaskBorder_8u16s_C1R, dx);
            derive(kpriFilterScharrHorizMaskBorder_8u16s_C1R, dy);
        }
    }
};

class Suppression {
  public:
    Suppression(const Derivation& derivation, int window, Kpr32f threshold, Kpr8u* buffer)
        : derivation_(derivation),
          radius_(window / 2),
          ratio_(broadcast(Kpr64f{threshold})),
          bound_(broadcast((Kpr64f{threshold} + 1) * (Kpr64f{threshold} + 1))),
          stride_(strideOf(derivation.roi.width)) {
        Workspace memory(buffer, static_cast<Kpr64s>(bufferBytes(derivation.roi.width)));
        dx_ = memory.take<Kpr16s>(kHeld * stride_, 64);
        dy_ = memory.take<Kpr16s>(kHeld * stride_);
        sums_ = memory.take<Kpr32s>(3 * stride_);
        // Beside the ROI the sums are zero.
        const Kpr64s width = derivation.roi.width;
        for (int plane = 0; plane < 3; ++plane) {
            for (Kpr64s i = 0; i < kMostRadius; ++i)
                sums_[plane * stride_ + i] = sums_[plane * stride_ + kMostRadius + width + i] = 0;
        }
    }

    void run(Rows<const Kpr8u> feature, Rows<Kpr8u> dst) {
        const KprSize roi = derivation_.roi;
        for (Kpr64s y = 0; y < roi.height; y += kBand) {
            const Kpr64s end = std::min<Kpr64s>(y + kBand, roi.height);
            unsigned busy = 0;  // rows of the band with candidates
            for (Kpr64s row = y; row < end; ++row) {
                const bool any = searchRow<kLanes<Kpr8u>>(
                                     roi.width, [](auto part, const Kpr8u* f) __attribute__((always_inline)) {
                                         return loadMask<Kpr8u>(f, part);
                                     },
                                     feature[row]) >= 0;
                busy |= unsigned{any} << (row - y);
            }
            if (busy != 0) hold(y + std::countr_zero(busy) - radius_, y + std::bit_width(busy) + radius_);
            for (Kpr64s row = y; row < end; ++row) {
                if ((busy >> (row - y) & 1) != 0)
                    suppress(row, feature[row], dst[row]);
                else if (dst[row] != feature[row])
                    __builtin_memset(dst[row], 0, static_cast<std::size_t>(roi.width));
            }
        }
    }

  private:
    // Sees to it that the derivatives of rows begin to end - 1, as far as they are in the ROI, are held. They come in
    // ascending order. No single row at an end of the image is made by itself: a reflection needs its neighbour.
    void hold(Kpr64s begin, Kpr64s end) {
        const Kpr64s height = derivation_.roi.height;
        begin = begin <= 1 ? 0 : begin;
        end = end >= height - 1 ? height : end;
        const Kpr64s kept = std::clamp<Kpr64s>(end_ - begin, 0, end_ - begin_);
        if (kept > 0) {
            const Kpr64s from = (end_ - kept - begin_) * stride_;
            const std::size_t bytes = static_cast<std::size_t>(kept * stride_) * sizeof(Kpr16s);
            __builtin_memmove(dx_, dx_ + from, bytes);
            __builtin_memmove(dy_, dy_ + from, bytes);
        }
        begin_ = begin;
        end_ = end;
        if (begin + kept < end)
            derivation_.make(begin + kept, end, dx_ + kept * stride_, dy_ + kept * stride_, stride_);
    }

    void suppress(Kpr64s y, const Kpr8u* feature, Kpr8u* dst) {
        const Kpr64s first = std::max(y - radius_, Kpr64s{0});
        const auto rows = static_cast<int>(std::min<Kpr64s>(y + radius_ + 1, derivation_.roi.height) - first);
        sumDown((first - begin_) * stride_, rows);
        if (radius_ == 1)
            decide<1>(feature, dst);
        else
            decide<2>(feature, dst);
    }

    // Two rows at once: a pixel and the one below it are a pair.
    void sumDown(Kpr64s first, int rows) {
        using Words = Vec<Kpr16s>;
        const Kpr64s width = derivation_.roi.width;
        for (Kpr64s x = 0; x < width; x += kLanes<Kpr16s>) {
            Vec<Kpr32s> lower[3], upper[3];
            for (int plane = 0; plane < 3; ++plane) lower[plane] = upper[plane] = zero<Kpr32s>();
            for (int i = 0; i < rows; i += 2) {
                const Kpr64s at = first + i * stride_ + x;
                const auto pair = [&](const Kpr16s* d, auto interleave) __attribute__((always_inline)) {
                    return interleave(load(d + at, All{}),
                                      i + 1 < rows ? load(d + at + stride_, All{}) : zero<Kpr16s>());
                };
                const auto add = [&](Vec<Kpr32s> * sums, Words across, Words down) __attribute__((always_inline)) {
                    sums[0] = sums[0] + sumPairs(across, across);
                    sums[1] = sums[1] + sumPairs(down, down);
                    sums[2] = sums[2] + sumPairs(across, down);
                };
                add(lower, pair(dx_, interleaveLower<Kpr16s>), pair(dy_, interleaveLower<Kpr16s>));
                add(upper, pair(dx_, interleaveUpper<Kpr16s>), pair(dy_, interleaveUpper<Kpr16s>));
            }
            // Blocks of four columns went to the lower and the upper sums in turn.
            const auto from = [&](int half) {
                return half == 0
                           ? laneConstant<Kpr32s>([](int i) { return (i / 8 * 4) + i % 4 + (i / 4 % 2) * 16; })
                           : laneConstant<Kpr32s>([](int i) { return 8 + (i / 8 * 4) + i % 4 + (i / 4 % 2) * 16; });
            };
            for (int plane = 0; plane < 3; ++plane) {
                Kpr32s* const to = sums_ + plane * stride_ + kMostRadius + x;
                const Kpr64s half = kLanes<Kpr32s>, left = width - x;
                store(to, permute(lower[plane], upper[plane], from(0)), First{std::min(left, half)});
                if (left > half)
                    store(to + half, permute(lower[plane], upper[plane], from(1)), First{std::min(left - half, half)});
            }
        }
    }

    template <int radius>
    void decide(const Kpr8u* feature, Kpr8u* dst) const {
        walkColumns<kLanes<Kpr32s>>(
            derivation_.roi.width, [&](auto part, Kpr64s x) __attribute__((always_inline)) {
                const auto columns = part & Lanes{0xffff};
                const Bits64 candidates = loadMask<Kpr8u>(feature + x, columns);
                const auto across = [&](int plane) __attribute__((always_inline)) {
                    const Kpr32s* const sums = sums_ + plane * stride_ + kMostRadius + x;
                    Vec<Kpr32s> sum = load(sums, part);
                    takeTurns<radius>([&](auto i) __attribute__((always_inline)) {
                        sum = sum + (load(sums - i - 1, part) + load(sums + i + 1, part));
                    });
                    return sum;
                };
                Bits64 stay = 0;
                if (candidates != 0) {
                    const auto a = as<unsigned>(across(0)), b = as<unsigned>(across(1));
                    const Vec<Kpr32s> c = across(2);
                    stay =
                        candidates & (scatterBits(stays<0>(a, b, c), 0x5555) | scatterBits(stays<1>(a, b, c), 0xaaaa));
                }
                store(dst + x, load(feature + x, Lanes{stay}), columns);
            });
    }

    // Of the even columns, or of the odd ones.
    template <int odd>
    KPR_INLINE Bits64 stays(Vec<unsigned> a, Vec<unsigned> b, Vec<Kpr32s> c) const {
        const auto t = toDouble(everySecond<odd>(a) + everySecond<odd>(b));
        const auto det = toDouble(multiplyLong<odd>(a, b) - multiplyLong<odd>(c, c));
        return lessOf(t * t * ratio_, bound_ * det);
    }

    Derivation derivation_;
    Kpr64s radius_;
    Vec<Kpr64f> ratio_, bound_;
    Kpr64s stride_;
    Kpr16s *dx_, *dy_;
    Kpr32s* sums_;                // three planes, the first column at kMostRadius
    Kpr64s begin_ = 0, end_ = 0;  // the rows whose derivatives are held
};

KprStatus suppressLines(const Derivation& derivation, Rows<const Kpr8u> feature, Rows<Kpr8u> dst, int window,
                        Kpr32f threshold, Kpr8u* buffer) {
    Suppression(derivation, window, threshold, buffer).run(feature, dst);
    return kprStatusOk;
}

KprStatus windowHolds(int window) { return failIf(window != 3 && window != 5, kprStatusBadArg); }

}  // namespace
}  // namespace n0::feature

using namespace n0;
using namespace n0::feature;

KprStatus kpriLineSuppressionGetBufferSize(KprSize roiSize, int avgWindow, int* bufferSize) {
    return firstFailure(notNull(bufferSize), roiHolds(roiSize), windowHolds(avgWindow))
               ?: putSize(bufferBytes(roiSize.width), bufferSize);
}

KprStatus kpriLineSuppression_8u_C1R(const Kpr8u* src, int srcStep, const Kpr8u* feature, int featureStep, Kpr8u* dst,
                                     int dstStep, KprSize roiSize, int filter, KprMaskSize filterMask, int avgWindow,
                                     Kpr32f threshold, KprBorderType borderType, Kpr8u borderValue, Kpr8u* buffer) {
    const bool sobel = filter == kprFilterSobel;
    return firstFailure(
               notNull(src, feature, dst, buffer), failIf(dst == src, kprStatusInPlaceUnsupported), roiHolds(roiSize),
               rowsFit<Kpr8u>(roiSize.width, srcStep, featureStep, dstStep),
               failIf(!sobel && filter != kprFilterScharr, kprStatusBadAlgorithm),
               failIf(filterMask != kprMaskSize3x3 && !(sobel && filterMask == kprMaskSize5x5), kprStatusBadMaskSize),
               borderServesFilter(borderType), windowHolds(avgWindow),
               failIf(!(threshold >= 1 && threshold <= 0x1.fffffep127F), kprStatusBadArg))
               ?: suppressLines({{src, srcStep}, roiSize, filter, filterMask, borderType, borderValue},
                                {feature, featureStep}, {dst, dstStep}, avgWindow, threshold, buffer);
}
