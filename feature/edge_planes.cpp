#include "feature/edge_planes.h"

#include "primitives/bytes.h"
#include "primitives/simd_edges.h"

namespace n0::feature {
namespace {

void clear(void* memory, Kpr64s bytes) { fillPixels<1>(static_cast<Kpr8u*>(memory), zero<Kpr8u>(), bytes); }

// A chain of words through their links; those that are not in it have the link 0.
template <typename Link>
class Chain {
  public:
    explicit Chain(Link* links) : links_(links) {}

    [[nodiscard]] bool empty() const { return top_ == kEnd; }
    void push(Kpr64s word) {
        if (links_[word] != 0) return;
        links_[word] = top_;
        top_ = static_cast<Link>(word) + 2;
    }
    Kpr64s pop() {
        const auto word = static_cast<Kpr64s>(top_) - 2;
        top_ = links_[word];
        links_[word] = 0;
        return word;
    }

  private:
    static constexpr Link kEnd = 1;

    Link* links_;
    Link top_ = kEnd;
};

template <typename Word, typename Link>
class Growth {
  public:
    Growth(const Kpr8u* survivors, Kpr8u* edges, void* links, Kpr64s words, Kpr64s height)
        : survivors_(reinterpret_cast<const Word*>(survivors)),
          edges_(reinterpret_cast<Word*>(edges)),
          links_(static_cast<Link*>(links)),
          row_(words + 1),
          height_(height) {}

    // Looks at the words in their order, kAtOnce of them at a time. What grows there may reach words that were looked
    // at before: these are chained. Others will be met.
    void run() {
        const Kpr64s end = height_ * row_ - 1;
        for (seen_ = 0; seen_ < end;) {
            const Kpr64s first = seen_, count = std::min(kAtOnce, end - first);
            seen_ += count;
            for (Bits64 found = reachedOf(first, count); found != 0; found &= found - 1) {
                chain_.push(first + std::countr_zero(found));
                while (!chain_.empty()) grow(chain_.pop());
            }
        }
    }

  private:
    static constexpr int kBits = 8 * sizeof(Word);
    static constexpr Kpr64s kAtOnce = 64 / sizeof(Word);

    [[nodiscard]] Word left(Kpr64s at) const { return static_cast<Word>(survivors_[at] & ~edges_[at]); }

    // Of `count` words, those with survivors that touch an edge and are none yet: a bit each.
    [[nodiscard]] Bits64 reachedOf(Kpr64s first, Kpr64s count) const {
        const First part(count);
        const auto column = [&](Kpr64s at) {
            const Word* const word = edges_ + first + at;
            return load(word - row_, part) | load(word, part) | load(word + row_, part);
        };
        const Vec<Word> here = column(0), edges = load(edges_ + first, part);
        const Vec<Word> sides = shiftedUp<1>(here) | shiftedDown<1>(here) | shiftedDown<kBits - 1>(column(-1)) |
                                shiftedUp<kBits - 1>(column(1));
        return nonzero(andNot(load(survivors_ + first, part) & (here | sides), edges));
    }

    // The survivors of a word that touch an edge become edges, and those beside them in the word.
    void grow(Kpr64s at) {
        const auto column = [&](Kpr64s word) {
            return static_cast<Word>(edges_[word - row_] | edges_[word] | edges_[word + row_]);
        };
        const Word here = column(at);
        Word candidates = left(at), grown = 0;
        auto from = static_cast<Word>(here | here << 1 | here >> 1 | column(at - 1) >> (kBits - 1) |
                                      column(at + 1) << (kBits - 1));
        while (const auto found = static_cast<Word>(from & candidates)) {
            grown |= found;
            candidates &= static_cast<Word>(~found);
            from = static_cast<Word>(found << 1 | found >> 1);
        }
        edges_[at] |= grown;
        const auto touched = static_cast<Word>(grown | grown << 1 | grown >> 1);
        const auto chainIf = [&](Kpr64s word, Word which) {
            if ((left(word) & which) != 0 && word < seen_) chain_.push(word);
        };
        chainIf(at - row_, touched);
        chainIf(at + row_, touched);
        const auto sides = [&](Kpr64s middle, Word bit) {
            for (const Kpr64s row : {-row_, Kpr64s{0}, row_}) chainIf(middle + row, bit);
        };
        if ((grown & 1) != 0) sides(at - 1, static_cast<Word>(Word{1} << (kBits - 1)));
        if (grown >> (kBits - 1) != 0) sides(at + 1, 1);
    }

    const Word* survivors_;
    Word* edges_;
    Link* links_;
    Kpr64s row_, height_;
    Kpr64s seen_ = 0;
    Chain<Link> chain_{links_};
};

}  // namespace

EdgePlanes::EdgePlanes(Workspace& space, Kpr64s width, Kpr64s height)
    : width_(width), height_(height), rowBytes_((wordsOf(width) + 1) * wordBytes(width)) {
    const Kpr64s word = wordBytes(width), plane = (height + 2) * rowBytes_ + word;
    auto* const planes = space.take<Kpr8u>(2 * plane, static_cast<std::uintptr_t>(word));
    const Kpr64s linkBytes = height * (rowBytes_ / word) * EdgePlanes::linkBytes(width);
    links_ = space.take<Kpr8u>(linkBytes, static_cast<std::uintptr_t>(EdgePlanes::linkBytes(width)));
    clear(planes, 2 * plane);
    clear(links_, linkBytes);
    survivors_ = planes + word + rowBytes_;
    edges_ = survivors_ + plane;
}

void EdgePlanes::trace(Rows<Kpr8u> dst) {
    if (width_ <= kNarrow)
        Growth<Kpr8u, std::uint32_t>(survivors_, edges_, links_, wordsOf(width_), height_).run();
    else
        Growth<Bits64, Bits64>(survivors_, edges_, links_, wordsOf(width_), height_).run();
    for (Kpr64s y = 0; y < height_; ++y) {
        const Kpr8u* const row = strong(y);
        walkColumns<64>(width_, [&](auto part, Kpr64s x) {
            Bits64 edges = 0;
            __builtin_memcpy(&edges, row + x / 8, width_ <= kNarrow ? 1 : 8);
            store(dst[y] + x, keep(Mask<Kpr8u>{edges}, broadcast<Kpr8u>(255)), part);
        });
    }
}

}  // namespace n0::feature
