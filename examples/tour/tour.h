// The tour's own ground: steps that are timed, shown as pictures and listed on one page.
#pragma once

#include <chrono>
#include <string>
#include <vector>

#include "examples/tour/image.h"

namespace tour {

class Tour {
  public:
    Tour(std::string photo, std::string outDir, std::string photosDir);

    const Gray& photo() const { return photo_; }            // the photograph in gray
    const Image<Kpr8u>& colour() const { return colour_; }  // and in colour
    // One of the photographs that come with the library, for steps that want a scene of their own.
    Gray example(const std::string& file) const { return readGray(pathOf(file)); }
    Image<Kpr8u> exampleInColour(const std::string& file) const { return readColour(pathOf(file)); }
    std::string pathOf(const std::string& file) const { return photosDir_ + "/" + file; }

    // A heading on the page, one for each family.
    void chapter(const std::string& title, const std::string& text);

    // Runs `call`, which gives a status, repeatedly and returns its best time in nanoseconds; ends the tour when the
    // status is an error. What is called must give the same result each time.
    template <typename Call>
    double time(const std::string& name, Call call) {
        double best = 0;
        for (int round = 0; round < 20; ++round) {
            const auto start = std::chrono::steady_clock::now();
            const KprStatus status = call();
            const std::chrono::duration<double, std::nano> taken = std::chrono::steady_clock::now() - start;
            requireOk(name, status);
            if (round == 0 || taken.count() < best) best = taken.count();
        }
        return best;
    }

    // One step: its picture, and a line on the terminal and a caption on the page with the time per pixel.
    void show(const std::string& name, const std::string& caption, const Image<Kpr8u>& picture, double nanoseconds = 0,
              double pixels = 0);

    // Writes the page.
    void finish() const;

    static void requireOk(const std::string& name, KprStatus status);

  private:
    std::string photoPath_;
    std::string outDir_;
    std::string photosDir_;
    Gray photo_;
    Image<Kpr8u> colour_;
    std::string page_;
    int pictures_ = 0;
};

// The chapters, in their order.
void tourStats(Tour& tour);
void tourStatistics(Tour& tour);
void tourBorders(Tour& tour);
void tourBorderWords(Tour& tour);
void tourGaussian(Tour& tour);
void tourFilters(Tour& tour);
void tourMorphology(Tour& tour);
void tourEdges(Tour& tour);
void tourCoins(Tour& tour);
void tourCorners(Tour& tour);
void tourLines(Tour& tour);
void tourSegments(Tour& tour);
void tourDistances(Tour& tour);
void tourDetection(Tour& tour);
void tourPyramids(Tour& tour);
void tourMotion(Tour& tour);
void tourGeometry(Tour& tour);
void tourFlow(Tour& tour);

}  // namespace tour
