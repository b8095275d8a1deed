// The extremum over any set of taps, by vectors of pixels over a list of loads. Rows of the source are copied with
// their borders into a ring before results are written, so that the destination may be the source.
//
// Where runs of taps are long, a second ring holds for each pixel the extremum of `span` pixels from it on, and a run
// of n taps is read as n / span of those, the last one overlapping. The span is chosen that makes the fewest loads.
#pragma once

#include "morph/job.h"
#include "morph/rectangle.h"

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
Kpr64s listLoads(Taps taps, Window window, Kpr64s span, int channels, Kpr64s skip, TapList& list);

// The span with which loads are fewest, its own making included; 1 for none.
Kpr64s bestSpan(Taps taps, Window window);

template <typename Rule, typename Put, typename T>
class TapWalk {
  public:
    // The window is as high above the pixel as below it and as wide to both sides: what an edge mirrors is then in the
    // ring and in the line.
    TapWalk(const Job<T>& job, Window window, Taps taps, Rows<const T> other)
        : job_(job),
          window_(symmetric(window)),
          taps_(taps),
          other_(other),
          left_(window_.left * job.channels),
          length_(left_ + (job.width + window_.right) * job.channels),
          span_(bestSpan(taps, window_)),
          ring_(job.work, window_.rows() * (span_ > 1 ? 2 : 1), length_, left_),
          pattern_(job.fill, job.channels) {
        if (span_ > 1 && 2 * window_.rows() * length_ * Kpr64s{sizeof(T)} + Kpr64s{sizeof(T)} > job.work.bytes) {
            span_ = 1;
            ring_ = Lines<T>(job.work, window_.rows(), length_, left_);
        }
    }

    void run() {
        for (Kpr64s y = -window_.top; y < window_.bottom; ++y) enter(y);
        const Kpr64s total = listLoads(taps_, window_, span_, job_.channels, 0, list_);
        for (Kpr64s y = 0; y < job_.height; ++y) {
            enter(y + window_.bottom);
            T* dst = job_.dst[y];
            const T* other = other_[y];
            if (total <= TapList::kMost) resolve(y, total);
            walkStretches<kLanes<T>, 4>(job_.width * job_.channels, [&]<int vectors>(auto part, Kpr64s x) {
                Vec<T> v[vectors];
                if (total > TapList::kMost) {
                    listLoads(taps_, window_, span_, job_.channels, 0, list_);
                    resolve(y, TapList::kMost);
                }
                for (int i = 0; i < vectors; ++i) v[i] = load(at_[0] + x + i * Kpr64s{kLanes<T>}, part);
                join<vectors>(v, x, 1, std::min(total, TapList::kMost), part);
                for (Kpr64s done = TapList::kMost; done < total; done += TapList::kMost) {
                    const Kpr64s count = std::min(total - done, TapList::kMost);
                    listLoads(taps_, window_, span_, job_.channels, done, list_);
                    resolve(y, count);
                    join<vectors>(v, x, 0, count, part);
                }
                for (int i = 0; i < vectors; ++i) {
                    const Kpr64s at = x + i * Kpr64s{kLanes<T>};
                    Put::put(dst + at, other + at, v[i], part);
                }
            });
        }
    }

  private:
    static Window symmetric(Window w) {
        w.left = w.right = std::max(w.left, w.right);
        w.top = w.bottom = std::max(w.top, w.bottom);
        return w;
    }

    // The line of image row y, and that of its spans.
    [[nodiscard]] T* line(Kpr64s y) const { return ring_[(y + window_.top) % window_.rows()]; }
    [[nodiscard]] T* spans(Kpr64s y) const { return ring_[(y + window_.top) % window_.rows() + window_.rows()]; }

    template <int vectors>
    KPR_INLINE void join(Vec<T>* v, Kpr64s x, Kpr64s from, Kpr64s to, auto part) {
        for (Kpr64s k = from; k < to; ++k) {
            const T* tap = at_[k] + x;
            for (int i = 0; i < vectors; ++i) v[i] = Rule::join(v[i], load(tap + i * Kpr64s{kLanes<T>}, part));
        }
    }

    // Where the first `count` loads of the list begin for row y.
    void resolve(Kpr64s y, Kpr64s count) {
        for (Kpr64s k = 0; k < count; ++k) {
            const TapLoad load = list_.loads[k];
            at_[k] = load.element +
                     (load.row < 0 ? spans(y - window_.top - 1 - load.row) : line(y - window_.top + load.row));
        }
    }

    // Takes row y into the ring.
    void enter(Kpr64s y) {
        const Kpr64s from = job_.rows()(y);
        T* to = line(y);
        if (from == kConstant) {
            pattern_.write(to, length_);
        } else if (y >= job_.height && from != y) {  // its source may be overwritten by now
            walkRow<kLanes<T>>(
                length_, [](auto part, T* l, const T* s) { store(l, load(s, part), part); }, to,
                static_cast<const T*>(line(from)));
        } else {
            extend(to, job_.src[from]);
        }
        if (span_ > 1) makeSpans(to, spans(y));
    }

    // A line from a row of the source: what lies in memory, then what the border makes of it.
    void extend(T* to, const T* src) {
        const Border border = job_.border;
        const int channels = job_.channels;
        const Kpr64s width = job_.width, left = window_.left, right = window_.right;
        T* body = to + left_;
        const Kpr64s begin = border.left ? -left_ : 0;
        const Kpr64s end = (width + (border.right ? right : 0)) * channels;
        walkRow<kLanes<T>>(
            end - begin, [](auto part, T* l, const T* s) { store(l, load(s, part), part); }, body + begin, src + begin);
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

    void makeSpans(const T* from, T* to) {
        walkRow<kLanes<T>>(
            length_, [](auto part, T* l, const T* s) { store(l, load(s, part), part); }, to, from);
        const Kpr64s count = length_ - (span_ - 1) * job_.channels;
        alongLines<Rule>(Lines<T>(to), 1, length_, 1, span_, job_.channels, [&]<int taps>(Kpr64s step, Kpr64s last) {
            walkRow<kLanes<T>>(
                count, [=](auto part, T* l) { store(l, joinTaps<Rule, taps>(l, step, last, part), part); }, to);
        });
    }

    const Job<T>& job_;
    Window window_;
    Taps taps_;
    Rows<const T> other_;
    Kpr64s left_, length_;
    Kpr64s span_;
    Lines<T> ring_;
    Pattern<T> pattern_;
    TapList list_;
    const T* at_[TapList::kMost];
};

}  // namespace n0::morph
