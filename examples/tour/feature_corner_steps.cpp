// Fast corners with their directions, candidates before and after line suppression, peaks of a measure, and the lines
// of a pavement in both forms.
#include <cmath>

#include "examples/tour/canvas.h"
#include "examples/tour/tour.h"

namespace tour {
namespace {

constexpr Colour kBrightColour = {255, 210, 0}, kDarkColour = {0, 220, 255};
constexpr float kDegree = 0.017453292F;

// A search for corners of one image, with everything that it needs.
class FastSearch {
  public:
    FastSearch(const Gray& image, int radius, int arc, int option, float threshold)
        : image_(image), corners_(image.width, image.height), scores_(image.width, image.height) {
        int bytes = 0;
        Tour::requireOk("FastNGetSize", kpriFastNGetSize(image.size(), radius, arc, kBins, option, kpr8u, 1, &bytes));
        block_.resize(bytes);
        Tour::requireOk("FastNInit",
                        kpriFastNInit(image.size(), radius, arc, kBins, option, kpr8u, 1, threshold, spec()));
        Tour::requireOk("FastNGetBufferSize", kpriFastNGetBufferSize(spec(), image.size(), &bytes));
        buffer_.resize(bytes);
    }

    KprStatus run() {
        return kpriFastN_8u_C1R(image_.data(), image_.step(), corners_.data(), corners_.step(), scores_.data(),
                                scores_.step(), &count_, {0, 0}, image_.size(), spec(), buffer_.data());
    }
    std::vector<KprFastNCorner> list() {
        std::vector<KprFastNCorner> all(count_);
        int listed = 0;
        if (count_ > 0)
            Tour::requireOk("FastN2DToVec",
                            kpriFastN2DToVec_8u(corners_.data(), corners_.step(), scores_.data(), scores_.step(),
                                                all.data(), image_.size(), count_, &listed, spec()));
        return all;
    }
    const Gray& corners() const { return corners_; }
    const Gray& scores() const { return scores_; }
    int count() const { return count_; }

  private:
    static constexpr int kBins = 32;

    KprFastNSpec* spec() { return reinterpret_cast<KprFastNSpec*>(block_.data()); }

    const Gray& image_;
    Gray corners_, scores_;
    int count_ = 0;
    std::vector<Kpr8u> block_, buffer_;
};

constexpr int kEverything = kprFastNCorner | kprFastNScore | kprFastNSuppression | kprFastNOrientation;

void showDirections(Tour& tour) {
    const Gray& photo = tour.photo();
    struct Circle {
        int radius, arc;
        float threshold;
    };
    for (const Circle& c : {Circle{3, 9, 25}, {5, 16, 25}, {9, 30, 25}}) {
        FastSearch search(photo, c.radius, c.arc, kEverything, c.threshold);
        const double time = tour.time("FastN", [&] { return search.run(); });
        Canvas canvas(photo);
        for (const KprFastNCorner& corner : search.list()) {
            // An angle of 0 points to the left, one of 90 degrees straight down; the middle of the bin is drawn.
            const double angle = (corner.angle + 180.0 / 32) * kDegree, length = 4 + c.radius;
            const Colour colour = corner.cornerType == 0 ? kBrightColour : kDarkColour;
            canvas.line(corner.x, corner.y, corner.x + length * std::cos(angle + M_PI),
                        corner.y + length * std::sin(angle), colour);
        }
        const std::string radius = std::to_string(c.radius);
        tour.show(
            "fast corners, radius " + radius,
            std::to_string(search.count()) + " corners with " + std::to_string(c.arc) +
                " points in a row brighter (yellow) or darker (blue) than the centre by 25, each with the direction "
                "in which its circle is brightest.",
            canvas.image(), time, double(photo.width) * photo.height);
    }
}

void showSuppression(Tour& tour) {
    const Gray& photo = tour.photo();
    FastSearch search(photo, 3, 9, kprFastNCorner, 20);
    Tour::requireOk("FastN", search.run());
    Gray kept(photo.width, photo.height);
    int bytes = 0;
    Tour::requireOk("LineSuppressionGetBufferSize", kpriLineSuppressionGetBufferSize(photo.size(), 5, &bytes));
    std::vector<Kpr8u> buffer(bytes);
    const double time = tour.time("LineSuppression", [&] {
        return kpriLineSuppression_8u_C1R(photo.data(), photo.step(), search.corners().data(), search.corners().step(),
                                          kept.data(), kept.step(), photo.size(), kprFilterSobel, kprMaskSize3x3, 5, 6,
                                          kprBorderReplicate, 0, buffer.data());
    });
    const auto draw = [&](const Gray& map) {
        Canvas canvas(photo);
        for (int y = 0; y < map.height; ++y) {
            for (int x = 0; x < map.width; ++x) {
                if (map.at(x, y) != 0) canvas.dot(x, y, kBrightColour);
            }
        }
        return canvas.image();
    };
    tour.show("candidates", "fast corners of radius 3 without suppression: many lie along edges",
              draw(search.corners()));
    tour.show("candidates off the lines", "those around which the image changes in two directions", draw(kept), time,
              double(photo.width) * photo.height);
}

// The score of corners of a wide circle as a measure.
void showPeaks(Tour& tour) {
    const Gray& photo = tour.photo();
    constexpr int most = 200;
    FastSearch search(photo, 5, 16, kprFastNCorner | kprFastNScore, 5);
    Tour::requireOk("FastN", search.run());
    Image<Kpr32s> measure(photo.width, photo.height);
    std::copy(search.scores().pixels.begin(), search.scores().pixels.end(), measure.pixels.begin());
    int bytes = 0, count = 0;
    Tour::requireOk("FindPeaks3x3GetBufferSize", kpriFindPeaks3x3GetBufferSize_32s_C1R(most, &bytes));
    std::vector<Kpr8u> buffer(bytes);
    std::vector<KprPoint> peaks(most);
    const double time = tour.time("FindPeaks3x3", [&] {
        return kpriFindPeaks3x3_32s_C1R(measure.data(), measure.step(), photo.size(), 0, peaks.data(), most, &count,
                                        kprNormInf, 5, buffer.data());
    });
    tour.show("score", "of fast corners of radius 5 and threshold 5", shown(measure, 0, 100));
    Canvas canvas(photo);
    for (int i = 0; i < count; ++i) canvas.cross(peaks[i].x, peaks[i].y, i < 50 ? kBrightColour : kDarkColour);
    tour.show("the strongest peaks", "the " + std::to_string(count) + " highest local maxima, the first 50 in yellow",
              canvas.image(), time, double(photo.width) * photo.height);
}

// Where the step between neighbours two pixels apart is large, and largest along its stronger axis.
Gray edgesOf(const Gray& image, int threshold) {
    Gray map(image.width, image.height);
    const auto step = [&](int x, int y, bool down) {
        return down ? std::abs(image.at(x, y + 1) - image.at(x, y - 1))
                    : std::abs(image.at(x + 1, y) - image.at(x - 1, y));
    };
    for (int y = 2; y < image.height - 2; ++y) {
        for (int x = 2; x < image.width - 2; ++x) {
            const bool down = step(x, y, true) > step(x, y, false);
            const int here = step(x, y, down), i = down ? 0 : 1, j = 1 - i;
            const bool largest = here > step(x - i, y - j, down) && here >= step(x + i, y + j, down);
            if (here > threshold && largest) map.at(x, y) = 255;
        }
    }
    return map;
}

}  // namespace

void tourCorners(Tour& tour) {
    tour.chapter(
        "Corners",
        "A pixel is a fast corner if a long arc of a circle around it is all brighter or all darker. Scores say "
        "which of several neighbours is the best.");
    showDirections(tour);
    showSuppression(tour);
    showPeaks(tour);
}

void tourLines(Tour& tour) {
    const Gray paving = tour.example("brick.png");
    const KprSize size = paving.size();
    const double pixels = double(size.width) * size.height;
    tour.chapter(
        "The lines of the paving",
        "Every edge point votes for the lines through it. The standard form counts all votes; the probabilistic "
        "one draws points at random and follows the first line that has enough of them.");
    tour.show("paving", "the photograph that this chapter starts from", paving);
    const Gray map = edgesOf(paving, 45);
    tour.show("edge points", "steps of brightness that both forms start from", map);

    const KprRhoTheta delta = {1, kDegree};
    constexpr int most = 40;
    int bytes = 0, blockBytes = 0, count = 0;
    Tour::requireOk("HoughLineGetSize", kpriHoughLineGetSize_8u_C1R(size, delta, most, &bytes));
    std::vector<Kpr8u> buffer(bytes);
    std::vector<KprRhoTheta> lines(most);
    double time = tour.time("HoughLine", [&] {
        return kpriHoughLine_8u32f_C1R(map.data(), map.step(), size, delta, 70, lines.data(), most, &count,
                                       buffer.data());
    });
    Canvas whole(paving);
    for (int i = 0; i < count; ++i) {
        const double c = std::cos(lines[i].theta), s = std::sin(lines[i].theta), far = size.width + size.height;
        const double x = lines[i].rho * c, y = lines[i].rho * s;
        whole.line(x - far * s, y + far * c, x + far * s, y - far * c, kBrightColour);
    }
    tour.show("lines", "the " + std::to_string(count) + " lines with most votes, by steps of 1 degree and 1 pixel",
              whole.image(), time, pixels);

    Tour::requireOk("HoughProbLineGetSize", kpriHoughProbLineGetSize_8u_C1R(size, delta, &blockBytes, &bytes));
    std::vector<Kpr8u> block(blockBytes);
    buffer.resize(bytes);
    std::vector<KprLineSegment> segments(1001);
    auto* const spec = reinterpret_cast<KprHoughProbSpec*>(block.data());
    Tour::requireOk("HoughProbLineInit", kpriHoughProbLineInit_8u32f_C1R(size, delta, 1000, spec));
    time = tour.time("HoughProbLine", [&] {
        return kpriHoughProbLine_8u32f_C1R(map.data(), map.step(), size, 30, 25, 4, segments.data(), 1000, &count,
                                           buffer.data(), spec);
    });
    Canvas pieces(paving);
    for (int i = 0; i < count; ++i)
        pieces.line(segments[i].x1, segments[i].y1, segments[i].x2, segments[i].y2, kDarkColour);
    tour.show("segments", std::to_string(count) + " segments of 25 pixels or more, with gaps of up to 4",
              pieces.image(), time, pixels);
}

}  // namespace tour
