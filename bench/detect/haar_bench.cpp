// A cascade of the usual shape: 25 stages of together 2913 stumps of two and three rectangles in a window of 24 x 24,
// made for a photograph so that about half of the windows that come to a stage pass it. It runs at one scale over every
// second pixel of every second row, as detectors do. Times are for a pixel of the image, the mask's renewal included.
#include <algorithm>
#include <cmath>
#include <vector>

#include "bench/support/bench.h"
#include "examples/tour/image.h"

namespace {

using bench::Image;

constexpr int kWindow = 24;
constexpr int kStages[] = {9,   16,  27,  32,  52,  53,  62,  72,  83,  91,  112, 119, 126,
                           133, 140, 147, 154, 161, 168, 175, 182, 189, 196, 203, 211};

struct Stage {
    std::vector<int> features, counts;
    std::vector<float> weights, thresholds, below, above;
    float threshold = 0;
    std::vector<Kpr8u> block;

    KprHaarClassifier* state() { return reinterpret_cast<KprHaarClassifier*>(block.data()); }
};

// A part of the photograph, brought to a size.
Image<Kpr8u> photoOf(KprSize size) {
    static const tour::Gray photo = tour::readGray(KPRCV_PHOTOS_DIR "/camera.png");
    Image<Kpr8u> out(size);
    for (int y = 0; y < size.height; ++y) {
        for (int x = 0; x < size.width; ++x) {
            const float u = float(x) * float(photo.width - 2) / float(size.width);
            const float v = float(y) * float(photo.height - 2) / float(size.height);
            const int i = int(u), j = int(v);
            const float fu = u - float(i), fv = v - float(j);
            const auto across = [&](int row) { return (1 - fu) * photo.at(i, row) + fu * photo.at(i + 1, row); };
            out.data()[y * out.step() + x] = static_cast<Kpr8u>((1 - fv) * across(j) + fv * across(j + 1) + 0.5F);
        }
    }
    return out;
}

class Cascade {
  public:
    explicit Cascade(KprSize size)
        : windows_{size.width - kWindow + 1, size.height - kWindow + 1},
          sums_({size.width + 1, size.height + 1}),
          floatSums_({size.width + 1, size.height + 1}),
          norm_(windows_),
          fresh_(windows_),
          mask_(windows_) {
        const Image<Kpr8u> photo = photoOf(size);
        const Image<Kpr64f> squares({size.width + 1, size.height + 1});
        kpriSqrIntegral_8u32s64f_C1R(photo.data(), photo.step(), sums_.data(), sums_.step(), squares.data(),
                                     squares.step(), size, 0, 0);
        kpriIntegral_8u32f_C1R(photo.data(), photo.step(), floatSums_.data(), floatSums_.step(), size, 0);
        kpriRectStdDev_32s32f_C1R(sums_.data(), sums_.step(), squares.data(), squares.step(), norm_.data(),
                                  norm_.step(), windows_, {0, 0, kWindow, kWindow});
        std::vector<KprPoint> left;
        for (int y = 0; y < windows_.height; ++y) {
            for (int x = 0; x < windows_.width; ++x) {
                const bool first = x % 2 == 0 && y % 2 == 0;
                fresh_.data()[y * fresh_.step() + x] = first;
                if (first) left.push_back({x, y});
            }
        }
        for (int count : kStages) stages_.push_back(make(count, left));
    }

    // The number of windows that are left.
    int run() {
        int left = windows_.width * windows_.height;
        for (Stage& stage : stages_) {
            kpriApplyHaarClassifier_32s32f_C1R(sums_.data(), sums_.step(), norm_.data(), norm_.step(), mask_.data(),
                                               mask_.step(), windows_, &left, stage.threshold, stage.state());
        }
        return left;
    }
    int runFloats() {
        int left = windows_.width * windows_.height;
        for (Stage& stage : stages_) {
            kpriApplyHaarClassifier_32f_C1R(floatSums_.data(), floatSums_.step(), norm_.data(), norm_.step(),
                                            mask_.data(), mask_.step(), windows_, &left, stage.threshold,
                                            stage.state());
        }
        return left;
    }
    void renewMask() { std::copy_n(fresh_.data(), std::size_t(mask_.step()) * windows_.height, mask_.data()); }

  private:
    // Halves, a third in the middle, or two quarters of a rectangle against the whole.
    void addStump(Stage& stage) {
        const int kind = random(4), columns = kind == 0 ? 2 : kind == 1 ? 1 : kind == 2 ? 3 : 2;
        const int rows = kind == 1 || kind == 3 ? 2 : 1;
        const int w = columns * (2 + random(kWindow / columns - 2)), h = rows * (2 + random(kWindow / rows - 2));
        const int x = random(kWindow - w + 1), y = random(kWindow - h + 1);
        const auto add = [&](int left, int top, int width, int height, float weight) {
            for (int v : {left, top, width, height}) stage.features.push_back(v);
            stage.weights.push_back(weight);
        };
        add(x, y, w, h, -1);
        if (kind == 0) add(x, y, w / 2, h, 2);
        if (kind == 1) add(x, y + h / 2, w, h / 2, 2);
        if (kind == 2) add(x + w / 3, y, w / 3, h, 3);
        if (kind == 3) {
            add(x, y, w / 2, h / 2, 2);
            add(x + w / 2, y + h / 2, w / 2, h / 2, 2);
        }
        stage.counts.push_back(kind == 3 ? 3 : 2);
    }

    Stage make(int count, std::vector<KprPoint>& left) {
        Stage stage;
        std::vector<float> totals(left.size());
        for (int i = 0; i < count; ++i) {
            const std::size_t first = stage.weights.size();
            addStump(stage);
            std::vector<float> values(left.size());
            for (std::size_t k = 0; k < left.size(); ++k) values[k] = valueAt(stage, first, left[k]);
            std::vector<float> sorted = values;
            const auto middle = sorted.begin() + std::ptrdiff_t(sorted.size() / 2);
            if (!sorted.empty()) std::nth_element(sorted.begin(), middle, sorted.end());
            stage.thresholds.push_back(sorted.empty() ? 0 : *middle);
            stage.below.push_back(0.01F * float(random(100)));
            stage.above.push_back(0.01F * float(-random(100)));
            for (std::size_t k = 0; k < left.size(); ++k)
                totals[k] += values[k] < stage.thresholds.back() ? stage.below.back() : stage.above.back();
        }
        std::vector<float> sorted = totals;
        const auto middle = sorted.begin() + std::ptrdiff_t(sorted.size() / 2);
        if (!sorted.empty()) std::nth_element(sorted.begin(), middle, sorted.end());
        stage.threshold = sorted.empty() ? 0 : *middle;
        std::vector<KprPoint> passed;
        for (std::size_t k = 0; k < left.size(); ++k) {
            if (totals[k] >= stage.threshold) passed.push_back(left[k]);
        }
        left = passed;

        int size = 0;
        kpriHaarClassifierGetSize(kpr32f, windows_, stage.counts.data(), count, &size);
        stage.block.resize(std::size_t(size));
        kpriHaarClassifierInit_32f(stage.state(), stage.features.data(), stage.weights.data(), stage.thresholds.data(),
                                   stage.below.data(), stage.above.data(), stage.counts.data(), count);
        return stage;
    }

    float valueAt(const Stage& stage, std::size_t first, KprPoint at) const {
        float sum = 0;
        for (std::size_t i = first; i < stage.weights.size(); ++i) {
            const int* r = &stage.features[4 * i];
            const auto s = [&](int x, int y) { return sums_.data()[(at.y + y) * (sums_.step() / 4) + at.x + x]; };
            sum += stage.weights[i] *
                   float(s(r[0], r[1]) - s(r[0] + r[2], r[1]) - s(r[0], r[1] + r[3]) + s(r[0] + r[2], r[1] + r[3]));
        }
        return sum / std::max(norm_.data()[at.y * (norm_.step() / 4) + at.x], 0.1F);
    }

    int random(int limit) { return static_cast<int>(engine_() % static_cast<unsigned>(limit)); }

    KprSize windows_;
    Image<Kpr32s> sums_;
    Image<Kpr32f> floatSums_, norm_;
    Image<Kpr8u> fresh_, mask_;
    std::vector<Stage> stages_;
    std::mt19937 engine_{5};
};

template <typename Run>
auto cascade(Run run) {
    return [=](benchmark::State& state, KprSize size) {
        Cascade cascade(size);
        bench::measure(state, size, {4, 1}, [&] {
            cascade.renewMask();
            run(cascade);
        });
    };
}

const bool registered = [] {
    bench::add("ApplyHaarClassifier_32s32f_C1R/cascade", cascade([](Cascade& c) { return c.run(); }));
    bench::add("ApplyHaarClassifier_32f_C1R/cascade", cascade([](Cascade& c) { return c.runFloats(); }));
    return true;
}();

}  // namespace
