// A cascade of boosted stumps over rectangle features: its text file, its stages as the library takes them, and a
// detector that runs them over an image at many scales.
//
// The file is text. What follows a # is a comment.
//
//     cascade WIDTH HEIGHT                              the window, pixels
//     stage THRESHOLD COUNT                             then COUNT lines, one for each stump:
//     THRESHOLD BELOW ABOVE RECTANGLES                  and, on the same line, for each rectangle
//         X Y WIDTH HEIGHT WEIGHT                       its place in the window and its weight
//
// A stump gives BELOW where the weighted sum of its rectangles is below THRESHOLD times the standard deviation of the
// window, else ABOVE. A stage keeps a window whose stumps add up to its threshold or more.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "examples/tour/image.h"

namespace detect {

using tour::Gray;
using tour::Image;

// The stumps of a stage, laid out as kpriHaarClassifierInit_32f takes them.
struct Stage {
    float threshold = 0;
    std::vector<int> features, counts;
    std::vector<float> weights, thresholds, below, above;
};

struct Cascade {
    KprSize window = {0, 0};
    std::vector<Stage> stages;
};

Cascade readCascade(const std::string& path);
void writeCascade(const std::string& path, const Cascade& cascade, const std::string& comment);

// The stages prepared for images up to a size. A block holds addresses of its own and must stay where it is.
class Blocks {
  public:
    Blocks(const Cascade& cascade, KprSize windows);

    // Clears the mask wherever a stage rejects; returns what is left.
    int apply(const Image<Kpr32s>& sums, const Image<Kpr32f>& norm, Gray& mask);

  private:
    struct Block {
        std::vector<Kpr8u> memory;
        float threshold;
        KprHaarClassifier* state() { return reinterpret_cast<KprHaarClassifier*>(memory.data()); }
    };
    std::vector<Block> blocks_;
};

// Shrinks an image to a size, each pixel the mean of those that it covers.
Gray shrunk(const Gray& image, KprSize to);

// Every window that passes, at every scale.
struct Scan {
    float smallest = 32;   // side of the windows at the first scale, in pixels of the image
    float growth = 1.12F;  // from one scale to the next
};
struct Found {
    KprRect box;     // in pixels of the image
    KprPoint place;  // in pixels of the shrunk one
};
using Visit = std::function<void(const Gray& shrunkImage, const Found& found)>;
void scanImage(const Cascade& cascade, const Gray& image, const Scan& scan, const Visit& visit);

// Overlapping windows of like size joined: their mean, where there are at least `least` of them.
std::vector<KprRect> grouped(const std::vector<KprRect>& boxes, int least);

std::vector<KprRect> detect(const Cascade& cascade, const Gray& image, const Scan& scan = {}, int least = 2);

}  // namespace detect
