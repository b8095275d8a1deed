// A structuring element and the memory of the operations that use it.
#pragma once

#include <vector>

#include "examples/tour/tour.h"

namespace tour {

// State block and work buffer of operations with one element on images up to one size. An element is an image of bytes
// of which every one but 0 is a tap. KprMorphState serves dilation and erosion, KprMorphAdvState what is composed.
template <typename State>
class Structuring {
  public:
    Structuring(KprSize largest, const Gray& element) {
        const bool composed = std::is_same_v<State, KprMorphAdvState>;
        const auto getSize = composed ? kpriMorphAdvGetSize_8u_C1R : kpriMorphologyBorderGetSize_8u_C1R;
        int specSize = 0;
        int bufferSize = 0;
        Tour::requireOk("GetSize", getSize(largest, element.size(), &specSize, &bufferSize));
        spec_.resize(specSize);
        buffer_.resize(bufferSize);
        auto* spec = reinterpret_cast<State*>(spec_.data());
        if constexpr (composed) {
            Tour::requireOk("MorphAdvInit",
                            kpriMorphAdvInit_8u_C1R(largest, element.data(), element.size(), spec, buffer_.data()));
        } else {
            Tour::requireOk("MorphologyBorderInit", kpriMorphologyBorderInit_8u_C1R(
                                                        largest, element.data(), element.size(), spec, buffer_.data()));
        }
    }
    Structuring(const Structuring&) = delete;  // the block holds pointers into itself

    const State* spec() const { return reinterpret_cast<const State*>(spec_.data()); }
    Kpr8u* buffer() { return buffer_.data(); }

  private:
    std::vector<Kpr8u> spec_;
    std::vector<Kpr8u> buffer_;
};

inline Gray rectangle(int width, int height) {
    Gray element(width, height);
    std::fill(element.pixels.begin(), element.pixels.end(), Kpr8u{1});
    return element;
}

inline Gray disc(int radius) {
    Gray element(2 * radius + 1, 2 * radius + 1);
    for (int y = -radius; y <= radius; ++y) {
        for (int x = -radius; x <= radius; ++x) {
            element.at(x + radius, y + radius) = static_cast<Kpr8u>(x * x + y * y <= radius * (radius + 1));
        }
    }
    return element;
}

}  // namespace tour
