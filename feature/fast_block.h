// The block of the fast corner search: its circles, its fields, and the checks of both.
#pragma once

#include "frame/checks.h"
#include "primitives/workspace.h"

namespace n0::feature {

// Offsets of the points of a circle, from straight below the centre toward negative x and on.
// NOLINTBEGIN(readability-identifier-naming): a block shows them to debuggers under these names
inline constexpr KprPoint coordR1_[] = {{0, 1}, {-1, 1}, {-1, 0}, {-1, -1}, {0, -1}, {1, -1}, {1, 0}, {1, 1}};
inline constexpr KprPoint coordR2_[] = {{0, 2},  {-1, 2}, {-2, 1}, {-2, 0}, {-2, -1}, {-1, -2},
                                        {0, -2}, {1, -2}, {2, -1}, {2, 0},  {2, 1},   {1, 2}};
inline constexpr KprPoint coordR3_[] = {{0, 3},  {-1, 3}, {-2, 2}, {-3, 1}, {-3, 0}, {-3, -1}, {-2, -2}, {-1, -3},
                                        {0, -3}, {1, -3}, {2, -2}, {3, -1}, {3, 0},  {3, 1},   {2, 2},   {1, 3}};
inline constexpr KprPoint coordR5_[] = {{0, 5},  {-1, 5},  {-2, 5},  {-3, 4},  {-4, 3},  {-5, 2},  {-5, 1},
                                        {-5, 0}, {-5, -1}, {-5, -2}, {-4, -3}, {-3, -4}, {-2, -5}, {-1, -5},
                                        {0, -5}, {1, -5},  {2, -5},  {3, -4},  {4, -3},  {5, -2},  {5, -1},
                                        {5, 0},  {5, 1},   {5, 2},   {4, 3},   {3, 4},   {2, 5},   {1, 5}};
inline constexpr KprPoint coordR7_[] = {{0, 7},   {-1, 7},  {-2, 7},  {-3, 6},  {-4, 6},  {-5, 5},  {-6, 4},  {-6, 3},
                                        {-7, 2},  {-7, 1},  {-7, 0},  {-7, -1}, {-7, -2}, {-6, -3}, {-6, -4}, {-5, -5},
                                        {-4, -6}, {-3, -6}, {-2, -7}, {-1, -7}, {0, -7},  {1, -7},  {2, -7},  {3, -6},
                                        {4, -6},  {5, -5},  {6, -4},  {6, -3},  {7, -2},  {7, -1},  {7, 0},   {7, 1},
                                        {7, 2},   {6, 3},   {6, 4},   {5, 5},   {4, 6},   {3, 6},   {2, 7},   {1, 7}};
// The thirteenth point is the fifteenth once more, and (-9, 1) is on no circle: results depend on it by now.
inline constexpr KprPoint coordR9_[] = {
    {0, 9},   {-1, 9},  {-2, 9},  {-3, 9},  {-4, 8},  {-5, 8},  {-6, 7},  {-7, 6},  {-8, 5},  {-8, 4},  {-9, 3},
    {-9, 2},  {-9, -1}, {-9, 0},  {-9, -1}, {-9, -2}, {-9, -3}, {-8, -4}, {-8, -5}, {-7, -6}, {-6, -7}, {-5, -8},
    {-4, -8}, {-3, -9}, {-2, -9}, {-1, -9}, {0, -9},  {1, -9},  {2, -9},  {3, -9},  {4, -8},  {5, -8},  {6, -7},
    {7, -6},  {8, -5},  {8, -4},  {9, -3},  {9, -2},  {9, -1},  {9, 0},   {9, 1},   {9, 2},   {9, 3},   {8, 4},
    {8, 5},   {7, 6},   {6, 7},   {5, 8},   {4, 8},   {3, 9},   {2, 9},   {1, 9}};
// NOLINTEND(readability-identifier-naming)

inline constexpr int kMostPoints = 52;

struct Circle {
    const KprPoint* point;
    int points;  // 0 for a radius without a circle
};

constexpr Circle circleOf(int radius) {
    switch (radius) {
        case 1:
            return {coordR1_, 8};
        case 2:
            return {coordR2_, 12};
        case 3:
            return {coordR3_, 16};
        case 5:
            return {coordR5_, 28};
        case 7:
            return {coordR7_, 40};
        case 9:
            return {coordR9_, 52};
        default:
            return {nullptr, 0};
    }
}

inline constexpr unsigned kFastMagic = 0x4B617390;

// What a block begins with. With orientation follow the circle's sines and cosines, a point each, and the bin scale.
struct FastBlock {
    unsigned magic;
    KprDataType dataType;
    int channels;
    int width, height;
    int radius, arc, bins;
    int option;
    int unused;
    Kpr32f threshold;
    int limit;  // the threshold, truncated
    const KprPoint* circle;
};
static_assert(sizeof(FastBlock) == 56);

constexpr bool orients(const FastBlock& block) { return (block.option & kprFastNOrientation) != 0; }
constexpr bool suppresses(const FastBlock& block) { return (block.option & kprFastNSuppression) != 0; }
constexpr bool scores(const FastBlock& block) { return (block.option & kprFastNScore) != 0; }

// ---- checks

constexpr KprStatus kindHolds(KprDataType dataType, int channels) {
    return firstFailure(failIf(dataType != kpr8u, kprStatusBadDataType), failIf(channels != 1, kprStatusBadChannel));
}

constexpr KprStatus optionHolds(int option, int bins) {
    constexpr int all = kprFastNOrientation | kprFastNSuppression | kprFastNCorner | kprFastNScore;
    const bool known = (option & ~all) == 0 && (option & kprFastNCorner) != 0;
    const bool suppressesBlindly = (option & kprFastNSuppression) != 0 && (option & kprFastNScore) == 0;
    return firstFailure(failIf(!known || suppressesBlindly, kprStatusBadArg),
                        failIf((option & kprFastNOrientation) != 0 && (bins < 1 || bins > 64), kprStatusOutOfRange));
}

constexpr KprStatus circleHolds(int radius, int arc) {
    const int points = circleOf(radius).points;
    return firstFailure(failIf(points == 0, kprStatusBadArg),
                        failIf(arc <= points / 2 || arc > points, kprStatusOutOfRange));
}

// ---- the block in the caller's memory: its first byte says how far behind it the block begins

// Reads a block, wherever it was copied to. No more than its first bytes are looked at where they are not a block's.
inline KprStatus readBlock(const KprFastNSpec* spec, FastBlock* block) {
    const auto* const memory = reinterpret_cast<const Kpr8u*>(spec);
    if (memory[0] < 1 || memory[0] > 8) return kprStatusBadContext;
    __builtin_memcpy(&block->magic, memory + memory[0], sizeof block->magic);
    if (block->magic != kFastMagic) return kprStatusBadContext;
    __builtin_memcpy(block, memory + memory[0], sizeof *block);
    return kindHolds(block->dataType, block->channels)
               ?: failIf(block->width < 1 || block->height < 1, kprStatusBadSize);
}

// The tables of a block with orientation: sines, cosines, bin scale.
inline const Kpr8u* orientationOf(const KprFastNSpec* spec) {
    const auto* const memory = reinterpret_cast<const Kpr8u*>(spec);
    return memory + memory[0] + sizeof(FastBlock);
}

}  // namespace n0::feature
