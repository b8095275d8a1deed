// Gaussian smoothing: three sizes, the two forms against each other, and what the border word does to a large kernel.
#include <algorithm>
#include <cstdio>

#include "examples/tour/gaussian.h"

namespace tour {
namespace {

template <typename T>
struct Comparison {
    Image<T> difference;
    int largest = 0;
    double share = 0;  // of the pixels that differ, in percent
};

KprStatus absDiff(const Gray& a, const Gray& b, Gray& out) {
    return kpriAbsDiff_8u_C1R(a.data(), a.step(), b.data(), b.step(), out.data(), out.step(), out.size());
}
KprStatus absDiff(const Image<Kpr16u>& a, const Image<Kpr16u>& b, Image<Kpr16u>& out) {
    return kpriAbsDiff_16u_C1R(a.data(), a.step(), b.data(), b.step(), out.data(), out.step(), out.size());
}

// The same image through both forms.
template <typename T>
Comparison<T> compareForms(const Image<T>& image, int taps) {
    Image<T> border(image.width, image.height);
    Image<T> large = border;
    GaussianBorder<T> inIntegers(image.size(), taps, sigmaOf(taps), kprBorderReplicate);
    GaussianLarge<T> inFloats({image.width, image.height}, taps, sigmaOf(taps), kprBorderReplicate);
    Tour::requireOk("FilterGaussianBorder", inIntegers(image.data(), image.step(), border));
    Tour::requireOk("FilterGaussian_L", inFloats(image.data(), image.step(), large));

    Comparison<T> out{border};
    Tour::requireOk("AbsDiff", absDiff(border, large, out.difference));
    const auto& pixels = out.difference.pixels;
    const auto equal = std::count(pixels.begin(), pixels.end(), T{0});
    out.largest = *std::max_element(pixels.begin(), pixels.end());
    out.share = 100 - 100.0 * static_cast<double>(equal) / static_cast<double>(pixels.size());
    return out;
}

template <typename T>
std::string inWords(const Comparison<T>& comparison, int taps) {
    char text[96];
    std::snprintf(text, sizeof text, "%d taps: at most %d, in %.2f %% of the pixels", taps, comparison.largest,
                  comparison.share);
    return text;
}

void showForms(Tour& tour) {
    std::string numbers;
    Comparison<Kpr8u> last;
    for (const int taps : {3, 5, 7, 15, 31}) {
        last = compareForms(tour.photo(), taps);
        numbers += inWords(last, taps) + (taps < 31 ? "; " : "");
    }
    const auto most8 = static_cast<float>(std::max(1, last.largest));
    tour.show("difference of the forms",
              "between the border form and the large form in 8 bits, shown for 31 taps: black for none, white for the "
              "largest. The border form rounds taps and rows to integers; near the left and right frame it truncates "
              "the rows. " +
                  numbers + ".",
              shown(last.difference, 0, most8));

    Image<Kpr16u> deep(tour.photo().width, tour.photo().height);
    std::transform(tour.photo().pixels.begin(), tour.photo().pixels.end(), deep.pixels.begin(),
                   [](Kpr8u value) { return static_cast<Kpr16u>(value * 257); });
    const Comparison<Kpr16u> five = compareForms(deep, 5);
    tour.show("difference in 16 bits",
              "the photograph times 257, from black for none to white for the largest. The border form's taps add up "
              "to 32767 of 32768, so that its result is darker by as much as there is light. " +
                  inWords(five, 5) + ".",
              shown(five.difference, 0, static_cast<float>(std::max(1, five.largest))));
}

// A part of the photograph is filtered as if it were all there is, and then with its surroundings.
void showBorders(Tour& tour) {
    const Gray& photo = tour.photo();
    const KprRect part = {photo.width / 3, photo.height / 6, photo.width / 3, photo.height / 3};
    const Kpr8u* src = photo.from(part.x, part.y);
    const int taps = std::min({31, part.width, part.height}) | 1;  // the surroundings hold as many as half of them
    Gray out(part.width, part.height);
    tour.show("a part", "of the photograph, enlarged; the next steps filter it", enlarged(photo, part, 2));

    struct Word {
        KprBorderType word;
        const char* name;
        const char* caption;
    };
    const Word words[] = {
        {kprBorderConstant, "Gaussian, constant border", "outside is black, which creeps in"},
        {kprBorderReplicate, "Gaussian, replicated border", "outside is the nearest edge pixel, which weighs more"},
        {kprBorderMirror, "Gaussian, mirrored border", "outside is the part's own reflection"},
        {kprBorderInMem, "Gaussian, surroundings in memory",
         "outside is what the photograph has there: as if the whole had been filtered"},
    };
    for (const Word& border : words) {
        GaussianBorder<Kpr8u> gaussian(out.size(), taps, sigmaOf(taps), border.word);
        const double time = tour.time(border.name, [&] { return gaussian(src, photo.step(), out, 0); });
        tour.show(border.name, border.caption, enlarged(out, {0, 0, out.width, out.height}, 2), time,
                  double(out.width) * out.height);
    }
}

}  // namespace

void tourGaussian(Tour& tour) {
    const Gray& photo = tour.photo();
    const double pixels = double(photo.width) * photo.height;
    Gray out(photo.width, photo.height);
    tour.chapter("Gaussian smoothing",
                 "Two forms: one computes in integers with 32-bit sizes, the large one in floats with 64-bit sizes. "
                 "They differ by a level here and there. Near the frame the border word decides what is averaged.");

    for (const int taps : {5, 15, 31}) {
        char about[96];
        std::snprintf(about, sizeof about, "%d x %d taps, sigma %.1f, replicated border", taps, taps, sigmaOf(taps));
        const std::string name = "Gaussian " + std::to_string(taps);
        GaussianBorder<Kpr8u> inIntegers(photo.size(), taps, sigmaOf(taps), kprBorderReplicate);
        double time = tour.time(name, [&] { return inIntegers(photo.data(), photo.step(), out); });
        tour.show(name, about, out, time, pixels);
        GaussianLarge<Kpr8u> inFloats({photo.width, photo.height}, taps, sigmaOf(taps), kprBorderReplicate);
        time = tour.time(name + ", large form", [&] { return inFloats(photo.data(), photo.step(), out); });
        tour.show(name + ", large form", about, out, time, pixels);
    }
    showForms(tour);
    showBorders(tour);
}

}  // namespace tour
