// The extremum of 3 x 3 or 5 x 5 pixels, from the source itself: vectors walk down the image with the last rows'
// extrema in registers. Past the edge of an image that is clamped or mirrored the square sees nothing that it does not
// see inside, so that pixels outside are neutral; only a constant border has a value of its own.
#pragma once

#include "morph/bits.h"

namespace n0::morph {

template <typename Rule, int reach, typename Sink>
class BitSquare {
  public:
    BitSquare(const BitJob& job, const Sink& sink)
        : job_(job),
          sink_(sink),
          held_{job.src.bit - (job.border.left ? reach : 0), job.src.bit + job.width + (job.border.right ? reach : 0)},
          beginRow_(job.border.top ? -reach : 0),
          endRow_(job.height + (job.border.bottom ? reach : 0)),
          outside_(broadcast(job.border.base == kprBorderConstant ? job.fill : Rule::kWeakest)) {}

    void run() const {
        // In bands of rows that the first cache holds.
        const Kpr64s rowBytes = job_.src.bytes.step + job_.dst.bytes.step;
        const Kpr64s band = std::clamp(Kpr64s{32768} / rowBytes, Kpr64s{8}, Kpr64s{256});
        for (Kpr64s y = 0; y < job_.height; y += band) {
            const Kpr64s end = std::min(y + band, job_.height), bytes = sink_.bytes();
            for (Kpr64s lane = 0; lane < bytes; lane += 64) {
                // The last vector of a row overlaps the one before it, so that it is whole, unless what it writes
                // depends on what it reads there.
                const bool drawnBack = !Sink::kReadsOther && lane + 64 > bytes && bytes >= 64;
                stretch(drawnBack ? bytes - 64 : lane, y, end);
            }
        }
    }

  private:
    // Where the source pixels of a byte of results begin: in three bytes from `byte` on (for lane 0), at pixel `pixel`
    // of the first. That is `reach` pixels left of the byte's own first pixel; 8 + 2 * reach pixels are needed. Where
    // the bytes of the source and of the destination hold the same columns, the middle one of the three is the byte's
    // own.
    struct Place {
        Kpr64s byte;
        int pixel;
    };
    [[nodiscard]] Place place(Kpr64s lane) const {
        const Kpr64s first = job_.src.bit - sink_.before() - reach;
        return {(first >> 3) + lane, static_cast<int>(first & 7)};
    }

    // Which bytes may lie outside the image: none, the first of all, the last of all, or any.
    enum class Edge { None, First, Last, Any };

    void stretch(Kpr64s lane, Kpr64s y, Kpr64s end) const {
        const auto [byte, pixel] = place(lane);
        const bool whole = lane + 64 <= sink_.bytes(), wholeBytes = held_.wholeBytes();
        // Where the image ends within a byte, that byte counts as outside.
        const Kpr64s begin = (held_.begin + 7) >> 3, past = held_.end >> 3;
        const bool before = byte >= begin, after = byte + 66 <= past;
        const bool inside = whole && byte + 1 >= begin && byte + 65 <= past;
        const First part{std::min(Kpr64s{64}, sink_.bytes() - lane)};
        if (pixel != 8 - reach) {
            if (inside && before && after) return down<false, Edge::None>(byte, pixel, lane, y, end, All{});
            return down<false, Edge::Any>(byte, pixel, lane, y, end, part);
        }
        if (inside && before && after) return down<true, Edge::None>(byte, pixel, lane, y, end, All{});
        if (inside && after && wholeBytes) return down<true, Edge::First>(byte, pixel, lane, y, end, All{});
        if (inside && before && wholeBytes) return down<true, Edge::Last>(byte, pixel, lane, y, end, All{});
        down<true, Edge::Any>(byte, pixel, lane, y, end, part);
    }

    // The 64 bytes of pixels from `lane` of the destination on, rows y to end. `aligned` says that bytes of the source
    // are those of the destination.
    template <bool aligned, Edge edge>
    KPR_INLINE void down(Kpr64s byte, int pixel, Kpr64s lane, Kpr64s y, Kpr64s end, auto part) const {
        constexpr int side = 2 * reach + 1;
        // Copies: a store of bytes might change what is reached through `this`.
        const Sink sink = sink_;
        const auto rows = job_.src.bytes;
        const Kpr64s beginRow = beginRow_, endRow = endRow_;
        const auto outside = outside_;
        // The shifts that take from the first and the second byte, and those that take from the second and the third.
        const int early = 9 - pixel;
        PixelShift shift[side];
        takeTurns<side>([&](auto k) { shift[k] = PixelShift(((aligned ? 8 - reach : pixel) + k - 1) % 8 + 1); });
        Lanes lanes[3];
        Vec<Kpr8u> inside[3];
        for (int k = 0; k < 3 && edge != Edge::None; ++k) {
            lanes[k] = held_.lanes(byte + k);
            inside[k] = held_.mask(byte + k);
        }
        const auto bytes = [&](const Kpr8u* src, auto turn) __attribute__((always_inline)) {
            constexpr int k = turn;
            if constexpr (edge == Edge::Any)
                return selectBits(inside[k], load(src + k, lanes[k]), outside);
            else if constexpr ((edge == Edge::First && k == 0) || (edge == Edge::Last && k == 2))
                return load(src + k, lanes[k], outside);
            else
                return loadOnce(src + k, All{});
        };
        const auto alongRow = [&](const Kpr8u* src) __attribute__((always_inline)) {
            const Vec<Kpr8u> a = bytes(src, Turn<0>{}), b = bytes(src, Turn<1>{}), c = bytes(src, Turn<2>{});
            Vec<Kpr8u> v = aligned ? b : shift[0](a, b);
            takeTurns<aligned ? reach : 0>(
                [&](auto k) { v = Rule::join(v, shift[k](a, b), shift[side - 1 - k](b, c)); });
            takeTurns<aligned ? 0 : side - 1>([&](auto turn) {
                constexpr int k = turn + 1;
                v = Rule::join(v, k < early ? shift[k](a, b) : shift[k](b, c));
            });
            return v;
        };
        const auto stretch = sink.stretch(lane);
        Vec<Kpr8u> row[side + 1];
        const auto shared = [&]() __attribute__((always_inline)) {
            Vec<Kpr8u> v = row[1];
            takeTurns<reach - 1>([&](auto k) { v = Rule::join(v, row[2 * k + 2], row[2 * k + 3]); });
            return v;
        };
        // Row `at` of the source, which may lie outside, and the row of results that it completes.
        const auto takeRow = [&](Kpr64s at) __attribute__((always_inline)) {
            row[side - 1] = at < beginRow || at >= endRow ? outside : alongRow(rows[at] + byte);
            if (at - reach >= y) sink.put(at - reach, lane, stretch, Rule::join(row[0], shared(), row[side - 1]), part);
            takeTurns<side - 1>([&](auto k) { row[k] = row[k + 1]; });
        };
        takeTurns<side - 1>([&](auto k) { row[k] = outside; });
        const Kpr64s last = std::min(end + reach, endRow) - 1;
        for (Kpr64s at = y - reach; at < end + reach;) {
            takeRow(at++);
            if (at != y + reach) continue;
            // Two rows of results at a time share all source rows but two; fewer registers and pointers move, too.
            const Kpr8u* src = rows[at] + byte;
            for (; at < last; at += 2, src += 2 * rows.step) {
                row[side - 1] = alongRow(src);
                row[side] = alongRow(src + rows.step);
                const Vec<Kpr8u> middle = shared();
                sink.put(at - reach, lane, stretch, Rule::join(row[0], middle, row[side - 1]), part);
                sink.put(at - reach + 1, lane, stretch, Rule::join(middle, row[side - 1], row[side]), part);
                takeTurns<side - 1>([&](auto k) { row[k] = row[k + 2]; });
            }
        }
    }

    const BitJob& job_;
    Sink sink_;
    BitSpan held_;
    Kpr64s beginRow_, endRow_;
    Vec<Kpr8u> outside_;
};

}  // namespace n0::morph
