// What the tests of the masked statistics share: an image or two with a mask and a channel of interest, and the ladder.
#pragma once

#include <gtest/gtest.h>

#include <numeric>
#include <ostream>

#include "tests/support/guarded_image.h"
#include "tests/support/ladder.h"
#include "tests/support/masks.h"

namespace test {

// Pixels that are not selected, and the channels beside the chosen one, hold NaN and infinities where the type has
// them; so do, one time in four, the selected ones.
template <typename T>
struct Selected {
    KprSize size;
    int coi;  // 0: the image has one channel
    GuardedImage<T> images[2];
    GuardedImage<Kpr8u> maskImage;

    Selected(KprSize roi, int channelOfInterest, MaskKind kind, Random& random)
        : size(roi),
          coi(channelOfInterest),
          images{{roi, random, coi == 0 ? 1 : 3}, {roi, random, coi == 0 ? 1 : 3}},
          maskImage(roi, random),
          tame_(!random.oneIn(4)) {
        for (auto& image : images) image.fill(random, true);
        fillMask(maskImage, kind, random);
        tame(random);
    }

    T pixel(int image, int x, int y) { return images[image].at(x, y, coi == 0 ? 0 : coi - 1); }
    bool selects(int x, int y) { return maskImage.at(x, y) != 0; }
    T at(int x, int y) { return selects(x, y) ? pixel(0, x, y) : T{0}; }
    double count() {
        int selected = 0;
        maskImage.forEach([&](Kpr8u m) { selected += m != 0; });
        return selected;
    }

    // Every pixel of the channel takes part from now on.
    void selectAll(Random& random) {
        maskImage.forEach([](Kpr8u& m) { m = 255; });
        tame(random);
    }

    T* src(int image = 0) { return images[image].data(); }
    int srcStep(int image = 0) { return images[image].step(); }
    Kpr8u* mask() { return maskImage.data(); }
    int maskStep() { return maskImage.step(); }

    friend std::ostream& operator<<(std::ostream& out, const Selected& s) {
        return out << " of " << s.size.width << " x " << s.size.height << ", channel of interest " << s.coi;
    }

  private:
    void tame(Random& random) {
        if (!tame_) return;
        for (auto& image : images) {
            for (int y = 0; y < size.height; ++y) {
                for (int x = 0; x < size.width; ++x) {
                    if (selects(x, y)) image.at(x, y, coi == 0 ? 0 : coi - 1) = random.pixel<T>();
                }
            }
        }
    }

    bool tame_;
};

// Runs `check(selected, random)` over sizes, channels of interest and masks; over large images once, with one of each.
template <typename T, typename Check>
void sweepSelected(Check check) {
    Random random;
    const auto run = [&](KprSize size, int coi, MaskKind kind) {
        Selected<T> selected(size, coi, kind, random);
        check(selected, random);
        return !testing::Test::HasFailure();
    };
    for (KprSize size : allSizes()) {
        if (size.width * size.height > 20000) {
            if (!run(size, random.range(0, 3), anyMaskKind(random))) return;
            continue;
        }
        for (int coi : {0, random.range(1, 3)}) {
            for (MaskKind kind : kMaskKinds) {
                if (!run(size, coi, kind)) return;
            }
        }
    }
}

struct StatisticForm {
    int sources = 1;
    bool masked = false;
    int channels = 1;
    std::vector<int> optional = {};  // pointers that may be null
};

// The general order: all lengths, then all multiples, then the channel of interest.
template <typename T, typename... A>
void statisticLadder(Ladder<A...> ladder, const StatisticForm& form) {
    std::vector<int> channels(static_cast<std::size_t>(form.sources), form.channels);
    std::vector<int> sources(channels.size());
    std::iota(sources.begin(), sources.end(), 0);
    std::vector<int> images = sources;
    if (form.masked) images.push_back(form.sources);
    ladder.channels(channels).nulls(form.optional).sizes().lengths(images);
    if (sizeof(T) > 1) ladder.multiples(sources);
    if (form.channels == 3) ladder.coi();
    ladder.run();
}

}  // namespace test
