// The segment test, 64 centres at a time: which of them see an arc of brighter points, which one of darker points, and
// with what score. Arcs are longer than half a circle, so that
//   - of any two opposite points an arc has at least one, which rejects most centres by four points;
//   - no centre has both a bright and a dark arc.
#pragma once

#include "feature/fast_block.h"
#include "primitives/rows.h"
#include "primitives/simd_corners.h"

namespace n0::feature {

using Bytes64 = Vec<Kpr8u>;

// Where points are looked for, and what an arc is.
struct Ring {
    Kpr64s offset[kMostPoints];  // bytes from the centre
    int points;
    int arc;
    Kpr8u limit;

    Ring(const FastBlock& block, Kpr64s step) : points(circleOf(block.radius).points), arc(block.arc) {
        const Circle circle = circleOf(block.radius);
        for (int i = 0; i < points; ++i) offset[i] = circle.point[i].y * step + circle.point[i].x;
        limit = static_cast<Kpr8u>(block.limit < 0 ? 0 : block.limit < 255 ? block.limit : 255);
    }
};

struct Found {
    Bits64 bright, dark;
    Bytes64 score;  // 0 where there is no corner
};

// The two kinds of arcs differ in their direction only. `inner` is what a point adds to an arc's smallest excess.
struct Bright {
    KPR_INLINE static Bytes64 inner(Bytes64 a, Bytes64 b) { return min(a, b); }
    KPR_INLINE static Bytes64 outer(Bytes64 a, Bytes64 b) { return max(a, b); }
    KPR_INLINE static Bits64 beyond(Bytes64 point, Bytes64 end) { return less(end, point); }
    KPR_INLINE static Bytes64 excess(Bytes64 point, Bytes64 centre) { return subtractSaturated(point, centre); }
};
struct Dark {
    KPR_INLINE static Bytes64 inner(Bytes64 a, Bytes64 b) { return max(a, b); }
    KPR_INLINE static Bytes64 outer(Bytes64 a, Bytes64 b) { return min(a, b); }
    KPR_INLINE static Bits64 beyond(Bytes64 point, Bytes64 end) { return less(point, end); }
    KPR_INLINE static Bytes64 excess(Bytes64 point, Bytes64 centre) { return subtractSaturated(centre, point); }
};

// Of two pairs of opposite points, the one that both pairs reach: no arc reaches farther.
template <typename Kind>
KPR_INLINE Bytes64 reachOfPairs(Bytes64 a0, Bytes64 a1, Bytes64 b0, Bytes64 b1) {
    return Kind::inner(Kind::outer(a0, a1), Kind::outer(b0, b1));
}

// Any circle and arc.
class AnyArc {
  public:
    explicit AnyArc(const Ring& ring) : ring_(ring) {}

    // Which of the candidates are corners.
    template <bool scored, typename Part>
    [[gnu::noinline]] Found find(Part part, const Kpr8u* c, Bits64 bright, Bits64 dark) const {
        const Bytes64 centre = loadOnce(c, part), limit = broadcast(ring_.limit);
        const Bytes64 high = addSaturated(centre, limit), low = subtractSaturated(centre, limit);
        const int n = ring_.points;
        // Two pairs of points between the compass points.
        const auto at = [&](int i) __attribute__((always_inline)) { return loadOnce(c + ring_.offset[i], part); };
        const Bytes64 a0 = at(n / 8), a1 = at(n / 8 + n / 2), b0 = at(3 * n / 8), b1 = at(3 * n / 8 + n / 2);
        bright &= Bright::beyond(reachOfPairs<Bright>(a0, a1, b0, b1), high);
        dark &= Dark::beyond(reachOfPairs<Dark>(a0, a1, b0, b1), low);
        Found found = {0, 0, zero<Kpr8u>()};
        if ((bright | dark) == 0) return found;
        found = arcs(part, c, high, low, bright, dark);
        if constexpr (scored) {
            if (found.bright != 0) found.score = keep<Kpr8u>(found.bright, score<Bright>(part, c, centre));
            if (found.dark != 0) found.score = found.score | keep<Kpr8u>(found.dark, score<Dark>(part, c, centre));
        }
        return found;
    }

  private:
    // Words of 64 centres, eight to a vector; vectors may reach past a circle's end.
    static constexpr int kWords = kLanes<Kpr64s>;
    static constexpr int kRoom = kMostPoints + kMostPoints / 2 + 2 * kWords;

    // Those of the candidates that have an arc: each point gives a word of either kind, and words are joined as a
    // circle. Stretches of powers of two are doubled as far as they go, and two of them make an arc.
    template <typename Part>
    [[gnu::noinline]] Found arcs(Part part, const Kpr8u* c, Bytes64 high, Bytes64 low, Bits64 bright,
                                 Bits64 dark) const {
        alignas(64) Kpr64s brights[kRoom], darks[kRoom];
        for (int i = 0; i < ring_.points; ++i) {
            const Bytes64 point = loadOnce(c + ring_.offset[i], part);
            brights[i] = static_cast<Kpr64s>(Bright::beyond(point, high));
            darks[i] = static_cast<Kpr64s>(Dark::beyond(point, low));
        }
        Found found = {0, 0, zero<Kpr8u>()};
        if (bright != 0) found.bright = bright & runsIn(brights);
        if (dark != 0) found.dark = dark & runsIn(darks);
        return found;
    }

    KPR_INLINE Bits64 runsIn(Kpr64s* circle) const {
        using Words = Vec<Kpr64s>;
        const int n = ring_.points;
        const auto close = [&](int past) __attribute__((always_inline)) {
            for (int i = 0; i < past; i += kWords) store(circle + n + i, load(circle + i, All{}), All{});
        };
        const auto both = [&](int i, int apart) __attribute__((always_inline)) {
            return load(circle + i, All{}) & load(circle + i + apart, All{});
        };
        int length = 1;
        for (; 2 * length <= ring_.arc; length *= 2) {
            close(length);
            for (int i = 0; i < n; i += kWords) store(circle + i, both(i, length), All{});
        }
        const int rest = ring_.arc - length;
        close(rest);
        Words joined = zero<Kpr64s>();
        int i = 0;
        for (; i + kWords <= n; i += kWords) joined = joined | both(i, rest);
        if (i < n) joined = joined | merge(First{n - i}, both(i, rest), zero<Kpr64s>());
        return static_cast<Bits64>(firstLane(fold(joined, [](Words a, Words b) { return a | b; })));
    }

    // Extrema over every stretch of `arc` points, joined likewise.
    template <typename Kind, typename Part>
    [[gnu::noinline]] Bytes64 score(Part part, const Kpr8u* c, Bytes64 centre) const {
        const int n = ring_.points;
        Bytes64 circle[kMostPoints + kMostPoints / 2];
        for (int i = 0; i < n; ++i) circle[i] = load(c + ring_.offset[i], part);
        const auto close = [&](int past) __attribute__((always_inline)) {
            for (int i = 0; i < past; ++i) circle[n + i] = circle[i];
        };
        int length = 1;
        for (; 2 * length <= ring_.arc; length *= 2) {
            close(length);
            for (int i = 0; i < n; ++i) circle[i] = Kind::inner(circle[i], circle[i + length]);
        }
        const int rest = ring_.arc - length;
        close(rest);
        Bytes64 best = Kind::inner(circle[0], circle[rest]);
        for (int i = 1; i < n; ++i) best = Kind::outer(best, Kind::inner(circle[i], circle[i + rest]));
        return Kind::excess(best, centre);
    }

    Ring ring_;
};

// Nine of the sixteen points of radius 3, in registers.
class Arc9Of16 {
  public:
    explicit Arc9Of16(const Ring& ring) : ring_(ring) {}

    // Which of the candidates are corners.
    template <bool scored, typename Part>
    [[gnu::noinline]] Found find(Part part, const Kpr8u* c, Bits64 bright, Bits64 dark) const {
        const Bytes64 centre = loadOnce(c, part), limit = broadcast(ring_.limit);
        const Bytes64 high = addSaturated(centre, limit), low = subtractSaturated(centre, limit);
        Bytes64 p[16];
        takeTurns<16>([&](auto i) __attribute__((always_inline)) { p[i] = loadOnce(c + ring_.offset[i], part); });
        bright &= Bright::beyond(reachOfPairs<Bright>(p[2], p[10], p[6], p[14]), high);
        dark &= Dark::beyond(reachOfPairs<Dark>(p[2], p[10], p[6], p[14]), low);
        Found found = {0, 0, zero<Kpr8u>()};
        if (bright != 0) {
            const Bytes64 best = reach<Bright>(p);
            found.bright = bright & Bright::beyond(best, high);
            if constexpr (scored) found.score = keep<Kpr8u>(found.bright, Bright::excess(best, centre));
        }
        if (dark != 0) {
            const Bytes64 best = reach<Dark>(p);
            found.dark = dark & Dark::beyond(best, low);
            if constexpr (scored) found.score = found.score | keep<Kpr8u>(found.dark, Dark::excess(best, centre));
        }
        return found;
    }

  private:
    // What the best arc reaches. Arcs share the eight points between their ends two and two: one has the point behind
    // those, the other the point before.
    template <typename Kind>
    KPR_INLINE static Bytes64 reach(const Bytes64 (&p)[16]) {
        Bytes64 two[8], four[8], best;
        takeTurns<8>([&](auto i) __attribute__((always_inline)) { two[i] = Kind::inner(p[2 * i], p[2 * i + 1]); });
        takeTurns<8>([&](auto i) __attribute__((always_inline)) { four[i] = Kind::inner(two[i], two[(i + 1) % 8]); });
        takeTurns<8>([&](auto i) __attribute__((always_inline)) {
            const Bytes64 end = Kind::outer(p[(2 * i + 8) % 16], p[(2 * i + 15) % 16]);
            const Bytes64 nine = Kind::inner(Kind::inner(four[i], four[(i + 2) % 8]), end);
            best = i == 0 ? nine : Kind::outer(best, nine);
        });
        return best;
    }

    Ring ring_;
};

// put(part, x, found) for every step of `count` centres from `row` on. Nearly all steps find nothing, by few loads.
template <bool scored, typename Arc, typename Put>
KPR_INLINE void findInRow(const Arc& arc, const Ring& ring, const Kpr8u* row, Kpr64s count, Put put) {
    const int n = ring.points;
    const Kpr64s below = ring.offset[0], left = ring.offset[n / 4], above = ring.offset[n / 2],
                 right = ring.offset[3 * n / 4];
    const Bytes64 limit = broadcast(ring.limit);
    walkColumns<kLanes<Kpr8u>>(
        count, [&](auto part, Kpr64s x) __attribute__((always_inline)) {
            const Kpr8u* const c = row + x;
            const Bytes64 p0 = loadOnce(c + below, part), p1 = loadOnce(c + left, part);
            const Bytes64 p2 = loadOnce(c + above, part), p3 = loadOnce(c + right, part);
            const Bytes64 centre = loadOnce(c, part);
            const Bits64 bright = Bright::beyond(reachOfPairs<Bright>(p0, p2, p1, p3), addSaturated(centre, limit));
            const Bits64 dark = Dark::beyond(reachOfPairs<Dark>(p0, p2, p1, p3), subtractSaturated(centre, limit));
            if ((bright | dark) == 0) [[likely]]
                put(part, x, Found{0, 0, zero<Kpr8u>()});
            else
                put(part, x, arc.template find<scored>(part, c, bright, dark));
        });
}

}  // namespace n0::feature
