// What each border word makes of the pixels outside a ROI, in one picture: docs/borders.png is made here.
#include <algorithm>
#include <cstdlib>

#include "examples/tour/structuring.h"

namespace tour {
namespace {

struct Word {
    KprBorderType word;
    bool erode;   // in which kprBorderDefault has another value
    KprRect roi;  // of the photograph
};

constexpr Kpr8u kOutside = 128;  // the value of kprBorderConstant
constexpr int kTile = 160;       // width and height of a tile
constexpr int kGap = 8;

// A structuring element with a single tap moves the image, and so brings what lies outside the ROI into sight.
void moved(const Gray& photo, const Word& word, int dx, int dy, Kpr8u* dst, int dstStep) {
    const KprRect& roi = word.roi;
    const int reachX = std::abs(dx);
    const int reachY = std::abs(dy);
    Gray tap(2 * reachX + 1, 2 * reachY + 1);
    tap.at(reachX + dx, reachY + dy) = 1;
    const KprSize size = {roi.width, roi.height};
    Structuring<KprMorphState> structuring(size, tap);
    const auto operation = word.erode ? kpriErodeBorder_8u_C1R : kpriDilateBorder_8u_C1R;
    Tour::requireOk("DilateBorder", operation(photo.from(roi.x, roi.y), photo.step(), dst, dstStep, size, word.word,
                                              kOutside, structuring.spec(), structuring.buffer()));
}

// The ROI and what is read around it, tiled from moved images that may overlap; the ROI is framed.
void drawTile(const Gray& photo, const Word& word, Gray& picture, int left, int top) {
    const int marginX = (kTile - word.roi.width) / 2;
    const int marginY = (kTile - word.roi.height) / 2;
    for (int y = 0; y < kTile; y += word.roi.height) {
        const int row = std::min(y, kTile - word.roi.height);
        for (int x = 0; x < kTile; x += word.roi.width) {
            const int column = std::min(x, kTile - word.roi.width);
            moved(photo, word, column - marginX, row - marginY, &picture.at(left + column, top + row), picture.step());
        }
    }
    const auto dot = [&](int x, int y) {  // dashes of white and black are seen on any ground
        picture.at(left + marginX + x, top + marginY + y) = (x + y) / 4 % 2 == 0 ? 255 : 0;
    };
    for (int x = -1; x <= word.roi.width; ++x) {
        dot(x, -1);
        dot(x, word.roi.height);
    }
    for (int y = -1; y <= word.roi.height; ++y) {
        dot(-1, y);
        dot(word.roi.width, y);
    }
}

}  // namespace

void tourBorderWords(Tour& tour) {
    const Gray photo = tour.example("camera.png");
    const KprRect roi = {196, 74, 80, 80};
    const KprRect small = {232, 120, 36, 36};
    const Word words[] = {
        {kprBorderConstant, false, roi}, {kprBorderReplicate, false, roi},
        {kprBorderMirror, false, roi},   {kprBorderMirror, false, small},
        {kprBorderDefault, false, roi},  {kprBorderDefault, true, roi},
        {kprBorderInMem, false, roi},    {kprBorderReplicate | kprBorderInMemTop | kprBorderInMemLeft, false, roi},
    };
    Gray picture(4 * kTile + 3 * kGap, 2 * kTile + kGap);
    std::fill(picture.pixels.begin(), picture.pixels.end(), Kpr8u{255});
    for (int i = 0; i < 8; ++i) {
        drawTile(photo, words[i], picture, i % 4 * (kTile + kGap), i / 4 * (kTile + kGap));
    }
    tour.show("border words",
              "A ROI, framed, and what functions read around it. Above: constant, replicated, mirrored, and mirrored "
              "around a small ROI. Below: neutral for dilation and for erosion, memory on all sides, and replicated "
              "with memory above and on the left.",
              picture);
}

}  // namespace tour
