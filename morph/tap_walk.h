// The extremum over any set of taps, by vectors of pixels over a list of loads. Rows of the source are copied with
// their borders into a ring before results are written, so that the destination may be the source.
//
// Where runs of taps are long, a second ring holds for each pixel the extremum of `span` pixels from it on, and a run
// of n taps is read as n / span of those, the last one overlapping. The span is chosen that makes the fewest loads.
//
// Signalling NaN become quiet on their way into the ring, so that this serves any source.
#pragma once

#include "morph/along_lines.h"
#include "primitives/simd_status.h"

namespace n0::morph {

// One vector load for each vector of results: which line of a ring, and where in it.
struct TapLoad {
    Kpr64s row;      // of the window, or of the second ring if negative: -1 - row
    Kpr64s element;  // from the line's first
};

struct TapList {
    static constexpr Kpr64s kMost = 512;
    TapLoad loads[kMost];
};

// Writes the loads from number `skip` on, as many as the list holds, and returns how many there are in all.
Kpr64s listLoads(const Taps& taps, Window window, Kpr64s span, int channels, Kpr64s skip, TapList& list);

// The rows of the source around a row of results, with their borders.
template <typename T>
class TapRing {
  public:
    // The window is as high above the pixel as below it and as wide to both sides: what an edge mirrors is then in the
    // ring and in the line.
    TapRing(const Job<T>& job, const MaskPlan& plan)
        : job_(job),
          window_(symmetric(plan.window)),
          left_(window_.left * job.channels),
          length_(left_ + (job.width + window_.right) * job.channels),
          span_(job.work.template left<T>() < 2 * window_.rows() * length_ ? 1 : plan.span),
          lines_(job.work, window_.rows() * (span_ > 1 ? 2 : 1), length_, left_),
          pattern_(job.fill, job.channels) {}

    [[nodiscard]] Window window() const { return window_; }
    [[nodiscard]] Kpr64s length() const { return length_; }
    [[nodiscard]] Kpr64s span() const { return span_; }  // that the work buffer has room for

    // The line of image row y, and that of its spans.
    [[nodiscard]] T* line(Kpr64s y) const { return lines_[(y + window_.top) % window_.rows()]; }
    [[nodiscard]] T* spans(Kpr64s y) const { return lines_[(y + window_.top) % window_.rows() + window_.rows()]; }

    // Takes row y into the ring.
    void enter(Kpr64s y) {
        const Kpr64s from = job_.rows()(y);
        T* to = line(y);
        if (from == kConstant) {
            pattern_.write(to, length_);
        } else if (y >= job_.height && from != y) {  // its source may be overwritten by now
            copy(to, line(from), length_);
        } else {
            extend(to, job_.src[from]);
        }
    }

  private:
    static Window symmetric(Window w) {
        w.left = w.right = std::max(w.left, w.right);
        w.top = w.bottom = std::max(w.top, w.bottom);
        return w;
    }

    static void copy(T* to, const T* from, Kpr64s count) {
        walkRow<kLanes<T>>(
            count, [](auto part, T* l, const T* s) { store(l, quiet(load(s, part)), part); }, to, from);
    }

    // A line from a row of the source: what lies in memory, then what the border makes of it.
    void extend(T* to, const T* src) {
        const Border border = job_.border;
        const int channels = job_.channels;
        const Kpr64s width = job_.width, left = window_.left, right = window_.right;
        T* body = to + left_;
        const Kpr64s begin = border.left ? -left_ : 0;
        const Kpr64s end = (width + (border.right ? right : 0)) * channels;
        copy(body + begin, src + begin, end - begin);
        const auto make = [&](Kpr64s x) {
            const Kpr64s from = job_.columns()(x);
            for (int c = 0; c < channels; ++c) body[x * channels + c] = body[from * channels + c];
        };
        if (border.base == kprBorderConstant) {
            if (!border.left) pattern_.write(to, left_);
            if (!border.right) pattern_.write(body + width * channels, right * channels);
            return;
        }
        for (Kpr64s x = 1; x <= left && !border.left; ++x) make(-x);
        for (Kpr64s x = width; x < width + right && !border.right; ++x) make(x);
    }

    const Job<T>& job_;
    Window window_;
    Kpr64s left_, length_;
    Kpr64s span_;
    Lines<T> lines_;
    Pattern<T> pattern_;
};

template <typename Rule, typename T>
class TapWalk {
  public:
    TapWalk(const Job<T>& job, const Taps& taps) : job_(job), taps_(taps), ring_(job, taps.plan) {}

    void run() {
        const Window window = ring_.window();
        const Output output = job_.output;
        for (Kpr64s y = -window.top; y < window.bottom; ++y) enter(y);
        const Kpr64s total = list(0);
        for (Kpr64s y = 0; y < job_.height; ++y) {
            enter(y + window.bottom);
            T* dst = job_.dst[y];
            const T* other = job_.other[y];
            if (total <= TapList::kMost) resolve(y, total);
            walkStretches<kLanes<T>, 4>(job_.width * job_.channels, [&]<int vectors>(auto part, Kpr64s x) {
                Vec<T> v[vectors];
                if (total > TapList::kMost) {
                    list(0);
                    resolve(y, TapList::kMost);
                }
                for (int i = 0; i < vectors; ++i) v[i] = load(at_[0] + x + i * Kpr64s{kLanes<T>}, part);
                join<vectors>(v, x, 1, std::min(total, TapList::kMost), part);
                for (Kpr64s done = TapList::kMost; done < total; done += TapList::kMost) {
                    const Kpr64s count = std::min(total - done, TapList::kMost);
                    list(done);
                    resolve(y, count);
                    join<vectors>(v, x, 0, count, part);
                }
                for (int i = 0; i < vectors; ++i) {
                    const Kpr64s at = x + i * Kpr64s{kLanes<T>};
                    put(output, dst + at, other + at, v[i], part);
                }
            });
        }
    }

  private:
    template <int vectors>
    KPR_INLINE void join(Vec<T>* v, Kpr64s x, Kpr64s from, Kpr64s to, auto part) {
        for (Kpr64s k = from; k < to; ++k) {
            const T* tap = at_[k] + x;
            for (int i = 0; i < vectors; ++i) v[i] = Rule::join(v[i], load(tap + i * Kpr64s{kLanes<T>}, part));
        }
    }

    Kpr64s list(Kpr64s skip) { return listLoads(taps_, ring_.window(), ring_.span(), job_.channels, skip, list_); }

    // Where the first `count` loads of the list begin for row y.
    void resolve(Kpr64s y, Kpr64s count) {
        const Kpr64s top = ring_.window().top;
        for (Kpr64s k = 0; k < count; ++k) {
            const TapLoad load = list_.loads[k];
            at_[k] =
                load.element + (load.row < 0 ? ring_.spans(y - top - 1 - load.row) : ring_.line(y - top + load.row));
        }
    }

    void enter(Kpr64s y) {
        ring_.enter(y);
        if (ring_.span() > 1) makeSpans(ring_.line(y), ring_.spans(y));
    }

    void makeSpans(const T* from, T* to) {
        const Kpr64s length = ring_.length(), span = ring_.span();
        walkRow<kLanes<T>>(
            length, [](auto part, T* l, const T* s) { store(l, load(s, part), part); }, to, from);
        const Kpr64s count = length - (span - 1) * job_.channels;
        alongLines<Rule>(Lines<T>(to), 1, length, 1, span, job_.channels, [&]<int taps>(Kpr64s step, Kpr64s last) {
            walkRow<kLanes<T>>(
                count, [=](auto part, T* l) { store(l, joinTaps<Rule, taps>(l, step, last, part), part); }, to);
        });
    }

    const Job<T>& job_;
    const Taps& taps_;
    TapRing<T> ring_;
    TapList list_;
    const T* at_[TapList::kMost];
};

}  // namespace n0::morph
