// The extremum over any set of taps of 1-bit images. Each row of the mask is one run of taps or several, and masks have
// few different runs. So for each row of the source and each run the row's extremum over that run is made once, where
// the bytes of the destination will want it, and kept in a ring of rows: a byte of results then joins one byte for each
// run of the mask, without a shift.
//
// A mask of more different runs than the buffer has room for keeps, for each row, the extrema of 1, 2, 4 ... pixels
// from each pixel on. A run of n is then joined from two of the longest that are no longer than n, or from more if n is
// long, at the bit where they lie.
#pragma once

#include "morph/bits.h"

namespace n0::morph {

// The different runs of a mask, shortest first, and for each run of each row which of them it is.
struct BitRuns {
    static constexpr int kMost = 12;
    static constexpr int kMostPlaces = 256;
    struct Kind {
        Kpr64s column, length;
    };
    struct Place {
        Kpr64s row;
        int kind;
    };

    Kind kinds[kMost];
    Place places[kMostPlaces];
    int kindCount, placeCount;  // no places if there are more of either than is held
};
void listRuns(const Taps& taps, int mostKinds, BitRuns& runs);

template <typename Rule>
class BitWalk {
  public:
    BitWalk(const BitJob& job, const Taps& taps)
        : job_(job),
          window_(taps.plan.window),
          taps_(taps),
          sink_(job),
          lead_((window_.left + sink_.before() + 7) >> 3),
          length_(lead_ + sink_.bytes() + ((window_.right + 7) >> 3) + 1) {
        Workspace work = job.work;
        const Kpr64s lines = work.left<Kpr8u>() / length_, rows = window_.rows();
        lines_ = work.take<Kpr8u>(lines * length_);
        listRuns(taps, static_cast<int>(std::min<Kpr64s>((lines - 1) / rows, BitRuns::kMost)), runs_);
        if (runs_.placeCount > 0) {
            const Kpr64s kinds = runs_.kindCount;
            batch_ = std::min((lines - kinds * (rows - 1)) / (kinds + 1), kMostAtOnce);
        }
        slots_ = rows + batch_ - 1;
        ring_ = lines_ + batch_ * length_;
    }

    void run() {
        const bool listed = runs_.placeCount > 0;
        Kpr64s entered = -window_.top;
        for (Kpr64s y = 0; y < job_.height; y += batch_) {
            const Kpr64s end = std::min(y + batch_, job_.height);
            while (entered < end + window_.bottom) {
                const Kpr64s count = std::min(batch_, end + window_.bottom - entered);
                listed ? enterRuns(entered, count) : enterSpans(entered);
                entered += count;
            }
            withSink(job_, [&](const auto& sink) { listed ? joinRuns(sink, y, end) : joinSpans(sink, y); });
        }
    }

  private:
    // Rows are taken in several at a time: their lines follow one another and are worked on as one, and so much is
    // stored in between that a load at another alignment does not have to wait for the store before it.
    static constexpr Kpr64s kMostAtOnce = 24;

    // A line from `count` pixels on, a byte a lane.
    struct Ahead {
        Kpr64s byte;
        bool whole;
        PixelShift shift;

        explicit Ahead(Kpr64s count) : byte(count >> 3), whole((count & 7) == 0), shift(count & 7) {}
        KPR_INLINE Vec<Kpr8u> operator()(const Kpr8u* line, auto part) const {
            const Vec<Kpr8u> a = load(line + byte, part);
            return whole ? a : shift(a, load(line + byte + 1, part));
        }
    };

    // to = the join of the pixels from a and from b on in `from`; they may be the same.
    static void joinAhead(Kpr8u* to, const Kpr8u* from, Kpr64s a, Kpr64s b, Kpr64s bytes) {
        const Ahead atA(a), atB(b);
        if (a == b) {
            walkColumns<64>(bytes, [=](auto part, Kpr64s x) { store(to + x, atA(from + x, part), part); });
        } else {
            walkColumns<64>(bytes, [=](auto part, Kpr64s x) {
                store(to + x, Rule::join(atA(from + x, part), atB(from + x, part)), part);
            });
        }
    }

    // Of `count` lines, the extrema of 2 * span pixels from each pixel on, from those of `span` pixels. The last pixels
    // of a line, which meet those of the next one, are not looked at.
    void doubleSpans(Kpr8u* to, const Kpr8u* from, Kpr64s span, Kpr64s count) const {
        joinAhead(to, from, 0, span, count * length_ - (span >> 3) - 1);
    }

    [[nodiscard]] Kpr64s slot(Kpr64s y) const { return (y + window_.top) % slots_; }

    // ---- few different runs

    void enterRuns(Kpr64s y, Kpr64s count) {
        const auto line = [&](Kpr64s i) { return lines_ + i * length_; };
        takeRows(y, count, lines_);
        const Kpr64s first = slot(y), before = std::min(count, slots_ - first);  // then the ring begins again
        Kpr64s span = 1;
        for (int k = 0; k < runs_.kindCount; ++k) {
            const auto run = runs_.kinds[k];
            for (; span * 2 <= run.length; span *= 2) doubleSpans(lines_, lines_, span, count);
            const Kpr64s a = run.column - sink_.before(), b = a + run.length - span;
            const auto finish = [&](Kpr64s from, Kpr64s to, Kpr64s slot) {
                if (from == to) return;
                joinAhead(runLine(slot, k), line(from) + lead_, a, b, (to - from - 1) * length_ + sink_.bytes());
            };
            finish(0, before, first);
            finish(before, count, 0);
        }
    }

    [[nodiscard]] Kpr8u* runLine(Kpr64s slot, int kind) const { return ring_ + (kind * slots_ + slot) * length_; }

    template <typename Sink>
    void joinRuns(Sink sink, Kpr64s begin, Kpr64s end) const {
        const int count = runs_.placeCount;
        const Kpr64s wrap = slots_ * length_;
        const Kpr8u* past[BitRuns::kMostPlaces];  // of the ring, for each place
        const Kpr8u* at[BitRuns::kMostPlaces];
        for (int i = 0; i < count; ++i) {
            const auto [row, kind] = runs_.places[i];
            const Kpr64s from = slot(begin + row);
            at[i] = runLine(from, kind);
            past[i] = runLine(slots_, kind);
        }
        for (Kpr64s y = begin; y < end; ++y) {
            walkColumns<64>(sink.bytes(), [&](auto part, Kpr64s x) {
                Vec<Kpr8u> v = load(at[0] + x, part);
                int i = 1;
                for (; i + 1 < count; i += 2) v = Rule::join(v, load(at[i] + x, part), load(at[i + 1] + x, part));
                if (i < count) v = Rule::join(v, load(at[i] + x, part));
                sink.put(y, x, sink.stretch(x), v, part);
            });
            for (int i = 0; i < count; ++i) {
                at[i] += length_;
                if (at[i] == past[i]) at[i] -= wrap;
            }
        }
    }

    // ---- many different runs

    static constexpr int kSpans = 5;  // of 1, 2, 4, 8 and 16 pixels

    [[nodiscard]] Kpr8u* spanLine(Kpr64s y, int number) const { return ring_ + (slot(y) * kSpans + number) * length_; }

    void enterSpans(Kpr64s y) {
        takeRows(y, 1, spanLine(y, 0));
        for (int i = 1; i < kSpans; ++i) {
            doubleSpans(spanLine(y, i), spanLine(y, i - 1), Kpr64s{1} << (i - 1), 1);
        }
    }

    template <typename Sink>
    void joinSpans(Sink sink, Kpr64s y) {
        Kpr8u* sum = lines_;
        const Kpr64s bytes = sink.bytes();
        walkColumns<64>(bytes, [=](auto part, Kpr64s x) { store(sum + x, broadcast(Rule::kWeakest), part); });
        eachRun(taps_, [&](TapRun run) {
            int number = 0;
            while (number + 1 < kSpans && Kpr64s{2} << number <= run.length) ++number;
            const Kpr64s span = Kpr64s{1} << number, last = run.length - span;
            const Kpr8u* line = spanLine(y + run.row, number) + lead_;
            for (Kpr64s done = 0; done < last + span; done += span) {
                const Ahead at(run.column + std::min(done, last) - sink_.before());
                walkColumns<64>(bytes, [=](auto part, Kpr64s x) {
                    store(sum + x, Rule::join(load(sum + x, part), at(line + x, part)), part);
                });
            }
        });
        walkColumns<64>(bytes,
                        [&](auto part, Kpr64s x) { sink.put(y, x, sink.stretch(x), load(sum + x, part), part); });
    }

    // ---- lines: pixel 0 of the image is the first of byte `lead`, and the window's reach lies on both sides

    // The source's row for row y, or null if that is all constant.
    [[nodiscard]] const Kpr8u* source(Kpr64s y) const {
        const Kpr64s row = job_.rows()(y);
        return row == kConstant ? nullptr : job_.src.bytes[row];
    }

    // The columns that lie in memory.
    [[nodiscard]] Kpr64s begin() const { return job_.border.left ? -window_.left : 0; }
    [[nodiscard]] Kpr64s end() const { return job_.width + (job_.border.right ? window_.right : 0); }

    // Lines for rows of the image: first what lies in memory of them, or all of one that is constant.
    void takeRows(Kpr64s y, Kpr64s count, Kpr8u* to) const {
        const Kpr64s byte = begin() >> 3, bytes = ((end() + 7) >> 3) - byte, skipped = lead_ + byte, length = length_;
        const BitReader read(job_.src.bit + byte * 8, {job_.src.bit + begin(), job_.src.bit + end()});
        const auto value = broadcast(job_.fill);
        for (Kpr64s i = 0; i < count; ++i) {
            Kpr8u* line = to + i * length;
            if (const Kpr8u* src = source(y + i)) {
                line += skipped;
                walkColumns<64>(bytes, [=](auto part, Kpr64s x) { store(line + x, read(src, x), part); });
            } else {
                walkColumns<64>(length, [=](auto part, Kpr64s x) { store(line + x, value, part); });
            }
        }
        for (Kpr64s i = 0; i < count; ++i) extendRow(to + i * length, y + i);
    }

    // What the border makes beside it.
    void extendRow(Kpr8u* line, Kpr64s y) const {
        const Kpr8u* src = source(y);
        if (src == nullptr) return;
        const Border border = job_.border;
        const Kpr64s width = job_.width;
        const auto make = [&](Kpr64s from, Kpr64s to, Kpr64s nearest) {
            if (border.base == kprBorderMirror) {
                for (Kpr64s x = from; x < to; ++x) {
                    setPixels(line, x, x + 1, pixel(src, job_.columns()(x)));
                }
            } else {
                setPixels(line, from, to, border.base == kprBorderConstant ? job_.fill : pixel(src, nearest));
            }
        };
        if (!border.left) make(-window_.left, 0, 0);
        if (!border.right) make(width, width + window_.right, width - 1);
    }

    // A pixel of the source, eight times.
    [[nodiscard]] Kpr8u pixel(const Kpr8u* src, Kpr64s x) const {
        const Kpr64s bit = job_.src.bit + x;
        return static_cast<Kpr8u>(-(src[bit >> 3] >> (~bit & 7) & 1));  // a branch would be guessed wrong half the time
    }

    void setPixels(Kpr8u* line, Kpr64s from, Kpr64s to, Kpr8u value) const {
        while (from < to) {
            const Kpr64s end = std::min(to, (from | 7) + 1);
            const int mask = (0xff >> (from & 7)) & (0xff << (-end & 7));
            Kpr8u& byte = line[lead_ + (from >> 3)];
            byte = static_cast<Kpr8u>((byte & ~mask) | (value & mask));
            from = end;
        }
    }

    const BitJob& job_;
    Window window_;
    const Taps& taps_;
    BitSink sink_;
    Kpr64s lead_, length_;
    Kpr64s batch_ = 1, slots_;
    Kpr8u* lines_;  // of the rows that are being taken in, then the ring of finished ones
    Kpr8u* ring_;
    BitRuns runs_;
};

}  // namespace n0::morph
