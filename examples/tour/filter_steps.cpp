// Filters with fixed kernels: averages, first, second and cross derivatives. The first derivatives are not exported;
// the families that look for edges and corners call them, and this chapter through the library's objects.
#include "examples/tour/tour.h"
#include "filter/sobel.h"

namespace tour {
namespace {

// All these filters take the same arguments.
using Sizing = KprStatus (*)(KprSize roi, KprMaskSize mask, int* bufferSize);
using Derivative = KprStatus (*)(const Kpr8u* src, int srcStep, Kpr16s* dst, int dstStep, KprSize roi, KprMaskSize mask,
                                 KprBorderType border, Kpr8u outside, Kpr8u* buffer);

std::vector<Kpr8u> workFor(Sizing sizing, KprSize roi, KprMaskSize mask) {
    int size = 0;
    Tour::requireOk("GetBufferSize", sizing(roi, mask, &size));
    return std::vector<Kpr8u>(size);
}

KprStatus sizeOfSobel(KprSize roi, KprMaskSize mask, int* bufferSize) {
    return kpriFilterSobelVertBorderGetBufferSize(roi, mask, kpr8u, kpr16s, 1, bufferSize);
}

void showLowpass(Tour& tour) {
    const Gray& photo = tour.photo();
    Gray out(photo.width, photo.height);
    for (const KprMaskSize mask : {kprMaskSize3x3, kprMaskSize5x5}) {
        const bool small = mask == kprMaskSize3x3;
        std::vector<Kpr8u> buffer = workFor(kpriFilterLowpassGetBufferSize_8u_C1R, photo.size(), mask);
        const double time = tour.time("FilterLowpassBorder", [&] {
            return kpriFilterLowpassBorder_8u_C1R(photo.data(), photo.step(), out.data(), out.step(), photo.size(),
                                                  mask, kprBorderReplicate, 0, buffer.data());
        });
        tour.show(small ? "low-pass 3 x 3" : "low-pass 5 x 5", small ? "the mean of 9 pixels" : "the mean of 25 pixels",
                  out, time, double(photo.width) * photo.height);
    }
}

void showDerivatives(Tour& tour) {
    struct Step {
        const char* name;
        const char* caption;
        Sizing sizing;
        Derivative filter;
        KprMaskSize mask;
        float range;  // shown from its negative in black to itself in white
    };
    const Step steps[] = {
        {"Sobel across", "right minus left, 3 x 3", sizeOfSobel, kpriFilterSobelNegVertBorder_8u16s_C1R, kprMaskSize3x3,
         400},
        {"Sobel down", "below minus above, 3 x 3", sizeOfSobel, kpriFilterSobelHorizBorder_8u16s_C1R, kprMaskSize3x3,
         400},
        {"Sobel across, 5 x 5", "right minus left: broader, less noise", sizeOfSobel,
         kpriFilterSobelNegVertBorder_8u16s_C1R, kprMaskSize5x5, 6000},
        {"Scharr across", "right minus left, with the weights 3, 10, 3", sizeOfSobel,
         kpriFilterScharrVertMaskBorder_8u16s_C1R, kprMaskSize3x3, 1600},
        {"Scharr down", "below minus above, with the weights 3, 10, 3", sizeOfSobel,
         kpriFilterScharrHorizMaskBorder_8u16s_C1R, kprMaskSize3x3, 1600},
        {"cross derivative", "d2 / dx dy, 5 x 5: strong at corners and slanting edges",
         kpriFilterSobelCrossGetBufferSize_8u16s_C1R, kpriFilterSobelCrossBorder_8u16s_C1R, kprMaskSize5x5, 800},
        {"Laplacian 3 x 3", "second derivatives: light on the dark side of an edge, dark on the light side",
         kpriFilterLaplacianGetBufferSize_8u16s_C1R, kpriFilterLaplacianBorder_8u16s_C1R, kprMaskSize3x3, 250},
        {"Laplacian 5 x 5", "the same, broader", kpriFilterLaplacianGetBufferSize_8u16s_C1R,
         kpriFilterLaplacianBorder_8u16s_C1R, kprMaskSize5x5, 3000},
    };
    const Gray& photo = tour.photo();
    Image<Kpr16s> out(photo.width, photo.height);
    for (const Step& step : steps) {
        std::vector<Kpr8u> buffer = workFor(step.sizing, photo.size(), step.mask);
        const double time = tour.time(step.name, [&] {
            return step.filter(photo.data(), photo.step(), out.data(), out.step(), photo.size(), step.mask,
                               kprBorderReplicate, 0, buffer.data());
        });
        tour.show(step.name, std::string(step.caption) + ". Middle gray is 0.", shown(out, -step.range, step.range),
                  time, double(photo.width) * photo.height);
    }
}

// A derivative sees the frame of the picture as an edge when something else lies beyond it.
void showBorders(Tour& tour) {
    const Gray& photo = tour.photo();
    const KprRect part = {photo.width / 3, photo.height / 6, photo.width / 6, photo.height / 6};
    const KprSize size = {part.width, part.height};
    const Kpr8u* src = photo.from(part.x, part.y);
    struct Word {
        KprBorderType word;
        const char* name;
        const char* caption;
    };
    const Word words[] = {
        {kprBorderConstant, "Laplacian, constant border",
         "a part of the photograph, enlarged: black outside makes an edge of its frame."},
        {kprBorderMirror, "Laplacian, mirrored border", "the same part: its own reflection makes none."},
        {kprBorderInMem, "Laplacian, surroundings in memory", "as if the whole photograph had been filtered."},
    };
    Image<Kpr16s> out(size.width, size.height);
    std::vector<Kpr8u> buffer = workFor(kpriFilterLaplacianGetBufferSize_8u16s_C1R, size, kprMaskSize5x5);
    for (const Word& border : words) {
        const double time = tour.time(border.name, [&] {
            return kpriFilterLaplacianBorder_8u16s_C1R(src, photo.step(), out.data(), out.step(), size, kprMaskSize5x5,
                                                       border.word, 0, buffer.data());
        });
        tour.show(border.name, std::string(border.caption) + " Middle gray is 0.",
                  enlarged(shown(out, -3000, 3000), {0, 0, size.width, size.height}, 4), time,
                  double(size.width) * size.height);
    }
}

}  // namespace

void tourFilters(Tour& tour) {
    tour.chapter("Filters with fixed kernels",
                 "Averages, and derivatives in 16 bits with their sign: they are shown around middle gray, positive "
                 "values lighter and negative ones darker.");
    showLowpass(tour);
    showDerivatives(tour);
    showBorders(tour);
}

}  // namespace tour
