// Images of the tour: rows without padding, read from and written to PNG.
#pragma once

#include <kprcv.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

namespace tour {

template <typename T>
struct Image {
    int width = 0;
    int height = 0;
    int channels = 1;
    std::vector<T> pixels;

    Image() = default;
    Image(int w, int h, int c = 1) : width(w), height(h), channels(c), pixels(static_cast<std::size_t>(w) * h * c) {}

    T* data() { return pixels.data(); }
    const T* data() const { return pixels.data(); }
    // Where a ROI starts.
    const T* from(int x, int y) const { return &pixels[static_cast<std::size_t>(y) * width + x]; }
    int step() const { return width * channels * static_cast<int>(sizeof(T)); }
    KprSize size() const { return {width, height}; }
    T& at(int x, int y) { return pixels[static_cast<std::size_t>(y) * width + x]; }
    T at(int x, int y) const { return pixels[static_cast<std::size_t>(y) * width + x]; }
};

using Gray = Image<Kpr8u>;
using Floats = Image<Kpr32f>;

// Any PNG, as one channel of gray or three of colour.
Gray readGray(const std::string& path);
Image<Kpr8u> readColour(const std::string& path);
void writePng(const std::string& path, const Image<Kpr8u>& image);

// Any values as gray: `low` becomes black, `high` white.
template <typename T>
Gray shown(const Image<T>& image, float low, float high) {
    Gray out(image.width, image.height);
    std::transform(image.pixels.begin(), image.pixels.end(), out.pixels.begin(), [=](T value) {
        return static_cast<Kpr8u>(std::lround(std::clamp((value - low) / (high - low), 0.0F, 1.0F) * 255.0F));
    });
    return out;
}

// A part of an image, each pixel as a square of `factor` x `factor`.
Gray enlarged(const Gray& image, KprRect part, int factor);

}  // namespace tour
