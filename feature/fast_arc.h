// The segment test, 64 centres at a time: which of them see an arc of brighter points, which one of darker points, and
// with what score. A comparison gives a word, one bit for each centre, and arcs are sought in circles of words. Arcs
// are longer than half a circle, so that
//   - of any two opposite points an arc has at least one, which rejects most centres by four points;
//   - no centre has both a bright and a dark arc.
#pragma once

#include <bit>

#include "feature/fast_block.h"
#include "primitives/rows.h"
#include "primitives/simd_corners.h"

namespace n0::feature {

using Bytes64 = Vec<Kpr8u>;

// Where points are looked for, and what an arc is. Behind the last point the first ones follow, up to a whole vector of
// words.
struct Ring {
    Kpr64s offset[kMostPoints + 4];  // bytes from the centre
    int points;
    int arc;
    Kpr8u limit;

    Ring(const FastBlock& block, Kpr64s step) : points(circleOf(block.radius).points), arc(block.arc) {
        const Circle circle = circleOf(block.radius);
        for (int i = 0; i < wholeVectors(); ++i) {
            const KprPoint point = circle.point[i % points];
            offset[i] = point.y * step + point.x;
        }
        limit = static_cast<Kpr8u>(block.limit < 0 ? 0 : block.limit < 255 ? block.limit : 255);
    }

    [[nodiscard]] int wholeVectors() const { return (points + 7) & -8; }
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
    KPR_INLINE static Bits64 beyond(Bits64 some, Bytes64 point, Bytes64 end) { return lessOf(some, end, point); }
    KPR_INLINE static Bytes64 excess(Bytes64 point, Bytes64 centre) { return subtractSaturated(point, centre); }
};
struct Dark {
    KPR_INLINE static Bytes64 inner(Bytes64 a, Bytes64 b) { return max(a, b); }
    KPR_INLINE static Bytes64 outer(Bytes64 a, Bytes64 b) { return min(a, b); }
    KPR_INLINE static Bits64 beyond(Bytes64 point, Bytes64 end) { return less(point, end); }
    KPR_INLINE static Bits64 beyond(Bits64 some, Bytes64 point, Bytes64 end) { return lessOf(some, point, end); }
    KPR_INLINE static Bytes64 excess(Bytes64 point, Bytes64 centre) { return subtractSaturated(centre, point); }
};

// Those of `some` centres that see a point beyond `end` in either pair of opposite points.
template <typename Kind>
KPR_INLINE Bits64 beyondInPairs(Bits64 some, Bytes64 a0, Bytes64 a1, Bytes64 b0, Bytes64 b1, Bytes64 end) {
    return Kind::beyond(Kind::beyond(some, Kind::outer(a0, a1), end), Kind::outer(b0, b1), end);
}

// The words of a circle of `n` points, one bit for each of 64 centres, eight words to a vector.
template <int n>
class Circle64 {
    static_assert(n % 4 == 0);

  public:
    static constexpr int kWords = kLanes<Bits64>, kVectors = (n + kWords - 1) / kWords;

    // The words fill vectors: behind those of the last point those of the first ones are repeated.
    KPR_INLINE explicit Circle64(const Bits64* words) {
        takeTurns<kVectors>([&](auto i) __attribute__((always_inline)) { word_[i] = load(words + i * kWords, All{}); });
    }

    // From points to stretches of so many that begin there: doubled as far as they go, then grown by the powers of two
    // that are left.
    KPR_INLINE void stretch(int points) {
        takeTurns<kSteps>([&](auto i) __attribute__((always_inline)) {
            if (2 << i <= points) join<1 << i>();
        });
        const auto rest = static_cast<unsigned>(points) - std::bit_floor(static_cast<unsigned>(points));
        takeTurns<kSteps>([&](auto i) __attribute__((always_inline)) {
            if ((rest >> i & 1) != 0) join<1 << i>();
        });
    }

    KPR_INLINE void meet(const Circle64& other) {
        takeTurns<kVectors>([&](auto i) __attribute__((always_inline)) { word_[i] = word_[i] & other.word_[i]; });
    }

    // The centres that any word has.
    KPR_INLINE Bits64 any() const {
        Words all = word_[0];
        takeTurns<kVectors - 1>([&](auto i) __attribute__((always_inline)) { all = all | word_[i + 1]; });
        return firstLane(fold(all, [](Words a, Words b) { return a | b; }));
    }

  private:
    using Words = Vec<Bits64>;
    static constexpr int kSteps = std::bit_width(static_cast<unsigned>(n)) - 1;  // powers of two that may be joined

    // Eight words from the point kWords * i on, which may lie beyond the circle's end.
    template <int i>
    KPR_INLINE Words from() const {
        if constexpr (i < kVectors)
            return word_[i];
        else if constexpr (n % kWords == 0)
            return from<i - kVectors>();
        else
            return ahead<32>(from<i - kVectors>(), from<i - kVectors + 1>());
    }
    template <int at>
    KPR_INLINE Words wordsAt() const {
        return ahead<at % kWords * 8>(from<at / kWords>(), from<at / kWords + 1>());
    }

    // Every stretch, and the one that begins so many points behind it.
    template <int apart>
    KPR_INLINE void join() {
        Words joined[kVectors];
        takeTurns<kVectors>([&](auto i) __attribute__((always_inline)) {
            joined[i] = word_[i] & wordsAt<kWords * i + apart>();
        });
        takeTurns<kVectors>([&](auto i) __attribute__((always_inline)) { word_[i] = joined[i]; });
    }

    Words word_[kVectors];
};

// Any circle and arc.
class AnyArc {
  public:
    explicit AnyArc(const Ring& ring) : ring_(ring) {}

    // Which of the candidates are corners.
    template <bool scored, typename Part>
    [[gnu::noinline]] Found find(Part part, const Kpr8u* c, Bits64 bright, Bits64 dark) const {
        const Bytes64 centre = loadOnce(c, part), limit = broadcast(ring_.limit);
        const Bytes64 high = addSaturated(centre, limit), low = subtractSaturated(centre, limit);
        // Two pairs of points between the compass points; of a wide circle four more between those.
        const int n = ring_.points;
        const auto narrowDown = [&](int i, int j) __attribute__((always_inline)) {
            const auto at = [&](int k) __attribute__((always_inline)) { return loadOnce(c + ring_.offset[k], part); };
            const Bytes64 a0 = at(i), a1 = at(i + n / 2), b0 = at(j), b1 = at(j + n / 2);
            bright = beyondInPairs<Bright>(bright, a0, a1, b0, b1, high);
            dark = beyondInPairs<Dark>(dark, a0, a1, b0, b1, low);
        };
        narrowDown(n / 8, 3 * n / 8);
        Found found = {0, 0, zero<Kpr8u>()};
        if ((bright | dark) == 0) return found;
        if (n > 16) {
            narrowDown(n / 16, 5 * n / 16);
            narrowDown(3 * n / 16, 7 * n / 16);
            if ((bright | dark) == 0) return found;
        }
        found = arcs(part, c, high, low, bright, dark);
        if constexpr (scored) {
            if (found.bright != 0) found.score = keep<Kpr8u>(found.bright, score<Bright>(part, c, centre));
            if (found.dark != 0) found.score = found.score | keep<Kpr8u>(found.dark, score<Dark>(part, c, centre));
        }
        return found;
    }

  private:
    static constexpr int kMostWords = kMostPoints + 4;

    // Those of the candidates that have an arc: each point gives a word of either kind.
    template <typename Part>
    [[gnu::noinline]] Found arcs(Part part, const Kpr8u* c, Bytes64 high, Bytes64 low, Bits64 bright,
                                 Bits64 dark) const {
        alignas(64) Bits64 brights[kMostWords], darks[kMostWords];
        for (int i = 0; i < ring_.wholeVectors(); i += 8) {
            takeTurns<8>([&](auto turn) __attribute__((always_inline)) {
                const Bytes64 point = loadOnce(c + ring_.offset[i + turn], part);
                brights[i + turn] = Bright::beyond(point, high);
                darks[i + turn] = Dark::beyond(point, low);
            });
        }
        Found found = {0, 0, zero<Kpr8u>()};
        if (bright != 0) found.bright = bright & stretchesIn(brights);
        if (dark != 0) found.dark = dark & stretchesIn(darks);
        return found;
    }

    [[gnu::noinline]] Bits64 stretchesIn(const Bits64* words) const {
        switch (ring_.points) {
            case 8:
                return stretchesOf<8>(words);
            case 12:
                return stretchesOf<12>(words);
            case 16:
                return stretchesOf<16>(words);
            case 28:
                return stretchesOf<28>(words);
            case 40:
                return stretchesOf<40>(words);
            default:
                return stretchesOf<kMostPoints>(words);
        }
    }
    template <int n>
    KPR_INLINE Bits64 stretchesOf(const Bits64* words) const {
        Circle64<n> circle(words);
        circle.stretch(ring_.arc);
        return circle.any();
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

    // Which of the candidates are corners. Where there is one of either kind, there are most often others of the other
    // kind: both are looked for without asking.
    template <bool scored, typename Part>
    [[gnu::noinline]] Found find(Part part, const Kpr8u* c, Bits64 bright, Bits64 dark) const {
        const Bytes64 centre = loadOnce(c, part), limit = broadcast(ring_.limit);
        const Bytes64 high = addSaturated(centre, limit), low = subtractSaturated(centre, limit);
        Bytes64 p[16];
        takeTurns<16>([&](auto i) __attribute__((always_inline)) { p[i] = loadOnce(c + ring_.offset[i], part); });
        const ArcWords brights = words<Bright>(p, high), darks = words<Dark>(p, low);
        Found found = {bright & arcs(brights), dark & arcs(darks), zero<Kpr8u>()};
        if constexpr (scored) {
            if (found.bright != 0) found.score = keep<Kpr8u>(found.bright, Bright::excess(reach<Bright>(p), centre));
            if (found.dark != 0)
                found.score = found.score | keep<Kpr8u>(found.dark, Dark::excess(reach<Dark>(p), centre));
        }
        return found;
    }

  private:
    // Arcs share the eight points between their ends two and two: one has the point behind those, the other the point
    // before. The eight are four pairs in a row, and pairs make a circle of eight.
    struct ArcWords {
        alignas(64) Bits64 pair[8];  // both points of a pair
        alignas(64) Bits64 end[8];   // either point next to the four pairs from there on
    };
    template <typename Kind>
    KPR_INLINE static ArcWords words(const Bytes64 (&p)[16], Bytes64 end) {
        ArcWords words;
        takeTurns<8>([&](auto i) __attribute__((always_inline)) {
            words.pair[i] = Kind::beyond(Kind::inner(p[2 * i], p[2 * i + 1]), end);
            words.end[i] = Kind::beyond(Kind::outer(p[(2 * i + 8) % 16], p[(2 * i + 15) % 16]), end);
        });
        stayInMemory(words.pair);
        stayInMemory(words.end);
        return words;
    }

    // The centres that have an arc.
    KPR_INLINE static Bits64 arcs(const ArcWords& words) {
        Circle64<8> eight(words.pair);
        eight.stretch(4);
        eight.meet(Circle64<8>(words.end));
        return eight.any();
    }

    // What the best arc reaches.
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
            const Bytes64 high = addSaturated(centre, limit), low = subtractSaturated(centre, limit);
            const Bits64 bright = beyondInPairs<Bright>(~Bits64{0}, p0, p2, p1, p3, high);
            const Bits64 dark = beyondInPairs<Dark>(~Bits64{0}, p0, p2, p1, p3, low);
            if ((bright | dark) == 0) [[likely]]
                put(part, x, Found{0, 0, zero<Kpr8u>()});
            else
                put(part, x, arc.template find<scored>(part, c, bright, dark));
        });
}

}  // namespace n0::feature
