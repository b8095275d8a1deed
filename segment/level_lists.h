// Pixels that wait in one list for each of 256 levels, first in, first out. A pixel waits at one level; when it is told
// to wait at a lower one it leaves the other.
#pragma once

#include <bit>

#include "primitives/rows.h"
#include "primitives/workspace.h"

namespace n0::segment {

inline constexpr int kLevels = 256;

// A set of levels.
class LevelSet {
  public:
    KPR_INLINE void add(int level) { words_[level / 64] |= Bits64{1} << level % 64; }
    KPR_INLINE void remove(int level) { words_[level / 64] &= ~(Bits64{1} << level % 64); }
    [[nodiscard]] KPR_INLINE int lowest() const {
        for (int word = 0; word < kLevels / 64; ++word) {
            if (words_[word] != 0) return word * 64 + std::countr_zero(words_[word]);
        }
        return -1;
    }

  private:
    Bits64 words_[kLevels / 64] = {};
};

// The elements of pairs.
KPR_INLINE All twice(All part) { return part; }
KPR_INLINE First twice(First part) { return First{Kpr64s{2} * std::popcount(part.bits)}; }

// For small images: pixels by number, doubly linked; the list of level l begins and ends at the place behind all pixels
// and l others.
class LinkedLists {
  public:
    LinkedLists(Workspace space, Kpr64s pixels, const Kpr8u* /*levels*/)
        : links_(space.take<Link>(pixels + kLevels)), heads_(links_ + pixels), firstHead_(static_cast<Kpr32s>(pixels)) {
        // Every place is linked to itself: the ends of empty lists, and pixels that are in none.
        walkColumns<kLanes<Kpr32s> / 2>(pixels + kLevels, [&](auto part, Kpr64s place) {
            const auto places = laneConstant<Kpr32s>([](int i) { return i / 2; });
            store(reinterpret_cast<Kpr32s*>(links_ + place), places + broadcast(static_cast<Kpr32s>(place)),
                  twice(part));
        });
    }

    KPR_INLINE void append(Kpr32s pixel, int level) {
        const Kpr32s last = heads_[level].before;
        links_[pixel] = {last, firstHead_ + level};
        links_[last].behind = pixel;
        heads_[level].before = pixel;
        filled_.add(level);
    }

    // Of a pixel that is in no list nothing happens: that costs less than to find it out.
    KPR_INLINE void leave(Kpr32s pixel) {
        const Link link = links_[pixel];
        links_[link.before].behind = link.behind;
        links_[link.behind].before = link.before;
    }

    // The first pixel of the lowest level, taken out; -1 where there is none.
    KPR_INLINE Kpr32s takeFirst() {
        for (int level = filled_.lowest(); level >= 0; level = filled_.lowest()) {
            const Kpr32s pixel = heads_[level].behind;
            if (pixel != firstHead_ + level) {
                leave(pixel);
                return pixel;
            }
            filled_.remove(level);
        }
        return -1;
    }

  private:
    struct Link {
        Kpr32s before, behind;
    };
    Link* links_;
    Link* heads_;
    Kpr32s firstHead_;
    LevelSet filled_;  // levels whose lists may hold something
};

// For large images, where links would lie far apart: a list is a chain of blocks of 15 pixels, read and written from
// end to end. A pixel that leaves is left where it is and passed over when its turn comes: `levels` tells where it
// waits now. When no block is left, pixels that have left are cleared away; those that wait need one place each, and
// every level two blocks that are not full.
class BlockLists {
  public:
    static constexpr Kpr64s kFewest = 16384;  // pixels of an image that 12 bytes each are enough for

    BlockLists(Workspace space, Kpr64s pixels, const Kpr8u* levels) : levels_(levels) {
        mustHold(pixels >= kFewest);
        auto* const roots = space.take<Block>(kLevels, 64);
        for (int level = 0; level < kLevels; ++level) read_[level] = write_[level] = &roots[level].next;
        blockCount_ = static_cast<Kpr32s>(space.left<Block>(64));
        blocks_ = space.take<Block>(blockCount_, 64);
    }

    KPR_INLINE void append(Kpr32s pixel, int level) {
        if (atLink(write_[level])) [[unlikely]]
            addBlock(level);
        *write_[level]++ = pixel;
        filled_.add(level);
    }

    KPR_INLINE void leave(Kpr32s /*pixel*/) {}

    // The first pixel of the lowest level, taken out; -1 where there is none.
    KPR_INLINE Kpr32s takeFirst() {
        for (int level = filled_.lowest(); level >= 0; level = filled_.lowest()) {
            while (read_[level] != write_[level]) {
                if (atLink(read_[level])) [[unlikely]]
                    dropBlock(level);
                const Kpr32s pixel = *read_[level]++;
                if (levels_[pixel] == level) return pixel;
            }
            filled_.remove(level);
        }
        return -1;
    }

  private:
    struct Block {
        Kpr32s pixels[15];
        Kpr32s next;  // of a chain
    };

    // Behind the last pixel of a block, which lies on a boundary of 64 bytes.
    KPR_INLINE static bool atLink(const Kpr32s* place) { return (reinterpret_cast<uintptr_t>(place) & 63) == 60; }
    static Block* blockOf(Kpr32s* place) {
        return reinterpret_cast<Block*>(reinterpret_cast<char*>(place) - (reinterpret_cast<uintptr_t>(place) & 63));
    }

    [[gnu::noinline]] void addBlock(int level) {
        if (free_ < 0 && used_ == blockCount_) {
            clearAway();
            if (!atLink(write_[level])) return;
        }
        Kpr32s block = free_;
        if (block >= 0)
            free_ = blocks_[block].next;
        else
            block = used_++;
        mustHold(block < blockCount_);
        *write_[level] = block;
        write_[level] = blocks_[block].pixels;
    }

    [[gnu::noinline]] void dropBlock(int level) {
        Block* const old = blockOf(read_[level]);
        read_[level] = blocks_[old->next].pixels;
        release(old);
    }

    void release(Block* block) {
        if (block < blocks_) return;  // where a list begins
        block->next = free_;
        free_ = static_cast<Kpr32s>(block - blocks_);
    }

    // Closes up every list and releases the blocks behind its end.
    void clearAway() {
        for (int level = 0; level < kLevels; ++level) {
            Kpr32s* to = read_[level];
            for (Kpr32s* from = to; from != write_[level];) {
                if (atLink(from)) from = blocks_[*from].pixels;
                const Kpr32s pixel = *from++;
                if (levels_[pixel] != level) continue;
                if (atLink(to)) to = blocks_[*to].pixels;
                *to++ = pixel;
            }
            Block* last = blockOf(to);
            const Block* const end = blockOf(write_[level]);
            for (Kpr32s next = last->next; last != end;) {
                last = &blocks_[next];
                next = last->next;
                release(last);
            }
            write_[level] = to;
        }
    }

    const Kpr8u* levels_;
    Block* blocks_;
    Kpr32s blockCount_;
    Kpr32s used_ = 0, free_ = -1;  // blocks taken so far, and those of them that have been released, in a chain
    Kpr32s* read_[kLevels];
    Kpr32s* write_[kLevels];
    LevelSet filled_;
};

}  // namespace n0::segment
