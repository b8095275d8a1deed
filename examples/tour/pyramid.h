// The pyramid of an image, with the images of its levels.
#pragma once

#include <vector>

#include "examples/tour/tour.h"

namespace tour {

class Pyramid {
  public:
    Pyramid(const Gray& image, float rate, int levels) {
        int recordBytes = 0, bufferBytes = 0;
        Tour::requireOk("PyramidGetSize", kpriPyramidGetSize(&recordBytes, &bufferBytes, levels, image.size(), rate));
        record_.resize(recordBytes);
        std::vector<Kpr8u> buffer(bufferBytes);
        Tour::requireOk("PyramidInit",
                        kpriPyramidInit(&pyramid_, levels, image.size(), record_.data(), buffer.data(), rate));
        levels_.push_back(image);
        for (int k = 1; k <= pyramid_->level; ++k) levels_.push_back(below(levels_.back(), pyramid_->pRoi[k], rate));
        for (int k = 0; k <= pyramid_->level; ++k) {
            pyramid_->pImage[k] = levels_[k].data();
            pyramid_->pStep[k] = levels_[k].step();
        }
    }

    const KprPyramid* record() const { return pyramid_; }
    const std::vector<Gray>& levels() const { return levels_; }

    static constexpr int kTaps = 5;
    static constexpr Kpr16s kKernel[kTaps] = {1, 4, 6, 4, 1};

  private:
    static Gray below(const Gray& image, KprSize size, float rate) {
        int stateBytes = 0, bufferBytes = 0;
        Tour::requireOk("PyramidLayerDownGetSize",
                        kpriPyramidLayerDownGetSize_8u_C1R(image.size(), rate, kTaps, &stateBytes, &bufferBytes));
        std::vector<Kpr8u> memory(stateBytes), buffer(bufferBytes);
        KprPyramidDownState* state = nullptr;
        Tour::requireOk("PyramidLayerDownInit",
                        kpriPyramidLayerDownInit_8u_C1R(&state, image.size(), rate, kKernel, kTaps, 2, memory.data(),
                                                        buffer.data()));
        Gray out(size.width, size.height);
        Tour::requireOk("PyramidLayerDown", kpriPyramidLayerDown_8u_C1R(image.data(), image.step(), image.size(),
                                                                        out.data(), out.step(), size, state));
        return out;
    }

    std::vector<Kpr8u> record_;
    KprPyramid* pyramid_ = nullptr;
    std::vector<Gray> levels_;
};

}  // namespace tour
