// Morphology of the photograph, with a rectangle and with a disc.
#include "examples/tour/structuring.h"

namespace tour {
namespace {

// Operations of the same kind take the same arguments.
template <typename State>
struct Step {
    const char* name;
    const char* caption;
    KprStatus (*operation)(const Kpr8u* src, int srcStep, Kpr8u* dst, int dstStep, KprSize roi, KprBorderType border,
                           Kpr8u outside, const State* spec, Kpr8u* buffer);
    float white = 255;  // the value that is shown in white
};

const Step<KprMorphState> kPlain[] = {
    {"dilation", "the brightest pixel under the element", kpriDilateBorder_8u_C1R},
    {"erosion", "the darkest pixel under the element", kpriErodeBorder_8u_C1R},
};

const Step<KprMorphAdvState> kComposed[] = {
    {"opening", "erosion, then dilation: bright details smaller than the element vanish", kpriMorphOpenBorder_8u_C1R},
    {"closing", "dilation, then erosion: dark details vanish", kpriMorphCloseBorder_8u_C1R},
    {"top-hat", "what the opening took away, shown twice as bright", kpriMorphTophatBorder_8u_C1R, 127.5F},
    {"black-hat", "what the closing filled in, shown twice as bright", kpriMorphBlackhatBorder_8u_C1R, 127.5F},
    {"gradient", "dilation minus erosion: edges", kpriMorphGradientBorder_8u_C1R},
};

// Under kprBorderDefault no pixel outside the image ever wins.
template <typename State, std::size_t n>
void showAll(Tour& tour, const Step<State> (&steps)[n], const Gray& element, const std::string& shape) {
    const Gray& photo = tour.photo();
    Gray out(photo.width, photo.height);
    Structuring<State> structuring(photo.size(), element);
    for (const Step<State>& step : steps) {
        const std::string name = std::string(step.name) + ", " + shape;
        const double time = tour.time(name, [&] {
            return step.operation(photo.data(), photo.step(), out.data(), out.step(), photo.size(), kprBorderDefault, 0,
                                  structuring.spec(), structuring.buffer());
        });
        tour.show(name, step.caption, shown(out, 0, step.white), time, double(photo.width) * photo.height);
    }
}

}  // namespace

void tourMorphology(Tour& tour) {
    tour.chapter("Morphology",
                 "Extrema under a structuring element, and what is composed from them: with a rectangle of 11 x 11 "
                 "pixels, which runs by rows and columns, and with a disc of the same width, which does not.");
    for (const bool round : {false, true}) {
        const Gray element = round ? disc(5) : rectangle(11, 11);
        showAll(tour, kPlain, element, round ? "disc" : "rectangle");
        showAll(tour, kComposed, element, round ? "disc" : "rectangle");
    }
}

}  // namespace tour
