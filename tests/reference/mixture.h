// The foreground mixture model, a pixel at a time.
#pragma once

#include <kprcv.h>

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

namespace reference {

class MixturePixel {
  public:
    explicit MixturePixel(int maxModes) : weight_(maxModes), index_(maxModes), mean_(maxModes) {
        for (int m = 0; m < maxModes; ++m) index_[m] = m;
    }

    Kpr8u update(const KprFGMMModel& model, float alpha, float c, const float* x) {
        bool background = false, matched = false;
        float total = 0;
        count_ = std::min(count_, model.modeCount);
        for (int m = 0; m < count_; ++m) {
            float w = std::fma(1.0F - alpha, weight_[m], -c);
            if (!matched) {
                Mode& mode = mean_[index_[m]];
                const float d[3] = {mode.mean[0] - x[0], mode.mean[1] - x[1], mode.mean[2] - x[2]};
                const float d2 = d[0] * d[0] + d[1] * d[1] + d[2] * d[2], v = mode.variance;
                if (total < model.backgroundWeight && model.backgroundFactor * v > d2) background = true;
                if (model.matchFactor * v > d2) {
                    w += alpha;
                    weight_[m] = w;
                    const float k = alpha / w;
                    for (int i = 0; i < 3; ++i) mode.mean[i] -= k * d[i];
                    mode.variance = std::clamp(v + k * (d2 - v), model.varianceMin, model.varianceMax);
                    matched = true;
                    for (int i = m; i > 0 && w >= weight_[i - 1]; --i) exchange(i);
                    if (c > w) {
                        w = 0;
                        --count_;
                    }
                    total += w;
                    continue;
                }
            }
            if (c > w) {
                w = 0;
                --count_;
            }
            weight_[m] = w;
            total += w;
        }
        for (int m = 0; m < count_ && total != 0; ++m) weight_[m] /= total;
        if (!matched) add(model, alpha, x);
        if (background) return 0;
        return model.shadowEnabled != 0 && isShadow(model, x) ? model.shadowLabel : 255;
    }

    Kpr8u background(const KprFGMMModel& model, int channel) const {
        float sum = 0, colour = 0;
        for (int m = 0; m < std::min(count_, model.modeCount); ++m) {
            sum += weight_[m];
            colour = std::fma(weight_[m], mean_[index_[m]].mean[channel], colour);
            if (sum > model.backgroundWeight) break;
        }
        const float value = colour / sum;
        return std::isnan(value) ? 0 : static_cast<Kpr8u>(std::clamp(std::nearbyint(value), 0.0F, 255.0F));
    }

    int count() const { return count_; }

  private:
    struct Mode {
        float mean[3], variance;
    };

    void exchange(int m) {
        std::swap(weight_[m], weight_[m - 1]);
        std::swap(index_[m], index_[m - 1]);
    }

    void add(const KprFGMMModel& model, float alpha, const float* x) {
        const int slot = count_ < model.modeCount ? count_++ : model.modeCount - 1;
        weight_[slot] = count_ == 1 ? 1.0F : alpha;
        for (int m = 0; m < slot; ++m) weight_[m] *= 1.0F - alpha;
        mean_[index_[slot]] = {{x[0], x[1], x[2]}, model.varianceInit};
        for (int m = slot; m > 0; --m) {
            if (!(weight_[m - 1] > alpha)) exchange(m);
        }
    }

    bool isShadow(const KprFGMMModel& model, const float* x) const {
        float total = 0;
        for (int m = 0; m < count_; ++m) {
            const Mode& mode = mean_[index_[m]];
            const float* const p = mode.mean;
            const float numerator = p[0] * x[0] + p[1] * x[1] + p[2] * x[2];
            const float denominator = p[0] * p[0] + p[1] * p[1] + p[2] * p[2];
            if (denominator == 0) return false;
            if (denominator >= numerator && numerator >= model.shadowRatioMin * denominator) {
                const float a = numerator / denominator;
                float e[3];
                for (int i = 0; i < 3; ++i) e[i] = a * p[i] - x[i];
                if (model.backgroundFactor * mode.variance * a * a > e[0] * e[0] + e[1] * e[1] + e[2] * e[2])
                    return true;
            }
            total += weight_[m];
            if (total > model.backgroundWeight) return false;
        }
        return false;
    }

    int count_ = 0;
    std::vector<float> weight_;
    std::vector<int> index_;
    std::vector<Mode> mean_;
};

}  // namespace reference
