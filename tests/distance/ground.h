// What the tests of distance fields share: scenes of zero and other pixels, and buffers of exactly the sizes told.
#pragma once

#include "tests/reference/distance.h"
#include "tests/support/guarded_image.h"
#include "tests/support/ladder.h"

namespace test {

inline GuardedBytes exactly(int size) { return {static_cast<std::size_t>(size), Guard::After}; }
inline Kpr8u* bufferOf(const GuardedBytes& bytes) { return reinterpret_cast<Kpr8u*>(bytes.data()); }

template <typename T>
reference::Field<T> fieldOf(GuardedImage<T>& image) {
    reference::Field<T> field(image.size());
    for (int y = 0; y < image.size().height; ++y) {
        for (int x = 0; x < image.size().width; ++x) field.at(x, y) = image.at(x, y);
    }
    return field;
}

template <typename T>
void expectField(GuardedImage<T>& image, const reference::Field<T>& expected) {
    expectImage(image, [&](int x, int y, int) { return expected.at(x, y); });
}

// The shared sizes and some at which bands of 16 rows, blocks of 64 columns and long paths begin and end.
inline std::vector<KprSize> distanceSizes() {
    auto sizes = awkwardSizes();
    for (KprSize size : {KprSize{67, 131}, {5, 300}, {640, 3}, {48, 16}, {80, 33}, {130, 47}}) sizes.push_back(size);
    return sizes;
}

// Zeros as one finds them: scattered, a few, a disc of them, all around a disc, stripes, all or none.
inline void drawScene(GuardedImage<Kpr8u>& image, Random& random) {
    const auto [width, height] = image.size();
    const int kind = random.range(0, 7), density = random.range(1, 1 << random.range(0, 10));
    const int cx = random.range(0, width - 1), cy = random.range(0, height - 1), r = random.range(1, width + height);
    const int slope = random.range(-3, 3);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const bool disc = (x - cx) * (x - cx) + (y - cy) * (y - cy) < r * r / 4;
            bool set = !random.oneIn(density);
            if (kind == 1) set = random.oneIn(density);
            if (kind == 2) set = disc;
            if (kind == 3) set = !disc;
            if (kind == 4) set = (x + slope * y) % 19 != 0;
            if (kind == 5) set = (x + slope * y) % 19 == 0;
            if (kind == 6) set = true;
            if (kind == 7) set = (x / 9 + y / 7) % 2 == 0 && !random.oneIn(density);
            image.at(x, y) = set ? static_cast<Kpr8u>(random.range(1, 255)) : Kpr8u{0};
        }
    }
    if (kind == 6 && !random.oneIn(3)) image.at(cx, cy) = 0;
}

}  // namespace test
