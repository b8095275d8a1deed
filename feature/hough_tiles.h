// Votes of edge points, tile by tile of 8 x 8 pixels. The points of a tile vote for a few neighbouring lines of an
// angle only: their votes are counted in the bits of a lane first, sixteen numbers of four bits, and come to the
// counters together. Edges are long, so that a tile that has a point has several.
#pragma once

#include <algorithm>
#include <bit>

#include "feature/hough.h"

namespace n0::feature {

inline constexpr int kTile = 8;

struct Tile {
    Bits64 points;  // a byte for each row, the first row and column lowest
    int x, y;
};

struct Angles {
    const Kpr32s *sine, *cosine;
};

// Whether every tile's votes lie in sixteen neighbouring counters and in no row but their own: the angles of common
// resolutions in images that are not tiny.
inline bool tilesServe(KprSize roi, const Lines& lines, const Angles& angles) {
    const Kpr64s right = (roi.width + kTile - 1) & -kTile, bottom = (roi.height + kTile - 1) & -kTile;
    for (Kpr64s k = 0; k < lines.angles; ++k) {
        const Kpr64s across = angles.cosine[k], down = angles.sine[k], length = across < 0 ? -across : across;
        if (down < 0 || (kTile - 1) * (length + down) + 1023 >= Kpr64s{16} * 1024) return false;
        const Kpr64s least = across < 0 ? across * right : 0,
                     most = (across > 0 ? across * right : 0) + down * bottom + 512;
        if ((least >> 10) + lines.offset < 1 || (most >> 10) + lines.offset + 16 >= lines.distances) return false;
        if (most - least > 0x7fffffff) return false;
    }
    return true;
}

// The tiles that have a point, row after row; how many points there are. `tiles` has room for all.
struct Tiles {
    const Tile* begin;
    const Tile* end;
    Kpr64s points = 0;

    Tiles(Rows<const Kpr8u> src, KprSize roi, Tile* tiles) : begin(tiles) {
        for (int y = 0; y < roi.height; y += kTile) {
            const int rows = std::min(roi.height - y, kTile);
            for (int x = 0; x < roi.width; x += 64) {
                const First part(std::min<Kpr64s>(roi.width - x, 64));
                Bits64 row[kTile] = {}, any = 0;
                for (int i = 0; i < rows; ++i) any |= row[i] = loadMask<Kpr8u>(src[y + i] + x, part);
                while (any != 0) {
                    const int column = std::countr_zero(any) & -kTile;
                    any &= ~(Bits64{0xff} << column);
                    Tile tile = {0, x + column, y};
                    for (int i = 0; i < kTile; ++i) tile.points |= (row[i] >> column & 0xff) << (kTile * i);
                    points += std::popcount(tile.points);
                    *tiles++ = tile;
                }
            }
        }
        end = tiles;
    }
};

class TileVoters {
  public:
    TileVoters(const Tiles& tiles, const Angles& angles, const Lines& lines)
        : tiles_(tiles), angles_(angles), offset_(lines.offset) {}

    // Votes of `count` angles from `first` on. The counters of an angle begin `stride` behind those of the one before.
    [[gnu::noinline]] void vote(Kpr64s first, int count, Kpr16u* counters, Kpr64s stride, Kpr64s) const {
        const First part(count);
        const Vec<Kpr32s> sine = load(angles_.sine + first, part), cosine = load(angles_.cosine + first, part);
        // An angle's index rises along a tile from its left, or with a negative cosine from its right.
        const auto falls = less(cosine, zero<Kpr32s>());
        const Vec<Kpr32s> seven = broadcast(kTile - 1);
        const Vec<Kpr32s> start = select(falls, cosine * seven, zero<Kpr32s>()) + broadcast(512);
        const Vec<Kpr32s> rise = select(falls, zero<Kpr32s>() - cosine, cosine);
        alignas(64) Bits64 local[kTile * kTile][2][kLanes<Bits64>];  // how far the index is up from there
        for (int i = 0; i < kTile * kTile; ++i) {
            const Vec<Kpr32s> x = broadcast(i % kTile);
            const Vec<Kpr32s> up = select(falls, seven - x, x) * rise + broadcast(i / kTile) * sine;
            store(local[i][0], widenHalf<0>(up), All{});
            store(local[i][1], widenHalf<1>(up), All{});
        }
        const Vec<Kpr32s> base = broadcast(static_cast<Kpr32s>(offset_)) +
                                 laneConstant<Kpr32s>([](int i) { return i; }) * broadcast(static_cast<Kpr32s>(stride));
        for (const Tile* tile = tiles_.begin; tile != tiles_.end; ++tile) {
            const Vec<Kpr32s> corner = broadcast(tile->x) * cosine + broadcast(tile->y) * sine + start;
            const Spilled at((corner >> 10) + base);
            const Vec<Kpr32s> rest = corner & broadcast(1023);
            const Vec<Bits64> rest0 = widenHalf<0>(rest), rest1 = widenHalf<1>(rest);
            for (Bits64 points = tile->points; points != 0;) {
                Vec<Bits64> votes0 = zero<Bits64>(), votes1 = votes0;
                for (int left = 15; points != 0 && left > 0; points &= points - 1, --left) {
                    const auto& up = local[std::countr_zero(points)];
                    votes0 = votes0 + one(rest0 + load(up[0], All{}));
                    votes1 = votes1 + one(rest1 + load(up[1], All{}));
                }
                Kpr8u bytes[16][16];
                spread(votes0, bytes[0]);
                spread(votes1, bytes[8]);
                if (count == 16) {
                    takeTurns<16>([&](auto i) __attribute__((always_inline)) {
                        addSixteen(counters + at.lane[i], bytes[place(i)]);
                    });
                } else {
                    for (int i = 0; i < count; ++i) addSixteen(counters + at.lane[i], bytes[place(i)]);
                }
            }
        }
    }

  private:
    // A vote in four bits, the place of which is the index, in units of 1024.
    KPR_INLINE static Vec<Bits64> one(Vec<Bits64> up) {
        return shiftUp(broadcast(Bits64{1}), shiftRight<8>(up) & broadcast(Bits64{0x3c}));
    }

    // Four bits to a byte: even lanes first, then the odd ones.
    KPR_INLINE static void spread(Vec<Bits64> votes, Kpr8u* bytes) {
        const Vec<Kpr8u> mask = broadcast<Kpr8u>(15);
        const Vec<Kpr8u> even = as<Kpr8u>(votes) & mask, odd = as<Kpr8u>(shiftRight<4>(votes)) & mask;
        store(bytes, interleaveLower(even, odd), All{});
        store(bytes + 64, interleaveUpper(even, odd), All{});
    }
    static constexpr int place(int angle) { return (angle & 8) + (angle % 2) * 4 + angle % 8 / 2; }

    Tiles tiles_;
    Angles angles_;
    Kpr64s offset_;
};

}  // namespace n0::feature
