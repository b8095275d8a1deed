// Runs the library on a photograph and shows what it made:  tour PHOTO.png OUT_DIR PHOTOS_DIR
// PHOTOS_DIR holds the photographs that come with the library.
#include "examples/tour/tour.h"

#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <stdexcept>

namespace tour {
namespace {

std::string escaped(const std::string& text) {
    std::string out;
    for (char c : text) {
        if (c == '&')
            out += "&amp;";
        else if (c == '<')
            out += "&lt;";
        else if (c == '>')
            out += "&gt;";
        else if (c == '"')
            out += "&quot;";
        else
            out += c;
    }
    return out;
}

}  // namespace

Tour::Tour(std::string photo, std::string outDir, std::string photosDir)
    : photoPath_(std::move(photo)),
      outDir_(std::move(outDir)),
      photosDir_(std::move(photosDir)),
      photo_(readGray(photoPath_)),
      colour_(readColour(photoPath_)) {
    std::filesystem::create_directories(outDir_);
}

void Tour::chapter(const std::string& title, const std::string& text) {
    std::cout << '\n' << title << '\n';
    page_ += "</div><h2>" + escaped(title) + "</h2><p>" + escaped(text) + "</p><div class=\"row\">\n";
}

void Tour::show(const std::string& name, const std::string& caption, const Image<Kpr8u>& picture, double nanoseconds,
                double pixels) {
    char number[16];
    std::snprintf(number, sizeof number, "%02d", ++pictures_);
    std::string file = std::string(number) + "-";
    for (char c : name) file += std::isalnum(static_cast<unsigned char>(c)) != 0 ? c : '-';
    file += ".png";
    writePng(outDir_ + "/" + file, picture);

    std::string timing;
    if (pixels > 0) {
        char text[64];
        std::snprintf(text, sizeof text, "%.3f ns per pixel", nanoseconds / pixels);
        timing = text;
    }
    std::printf("  %-34s %-20s %s\n", name.c_str(), timing.c_str(), file.c_str());
    page_ += "<figure><a href=\"" + file + "\"><img src=\"" + file + "\" alt=\"" + escaped(name) +
             "\"></a><figcaption><b>" + escaped(name) + "</b><br>" + escaped(caption) +
             (timing.empty() ? "" : "<br><i>" + timing + "</i>") + "</figcaption></figure>\n";
}

void Tour::finish() const {
    std::ofstream page(outDir_ + "/index.html");
    page << "<!doctype html>\n<html lang=\"en\"><meta charset=\"utf-8\">\n<title>A tour of kprcv</title>\n<style>\n"
            "body { font: 16px/1.5 sans-serif; margin: 2rem; color: #222 }\n"
            ".row { display: flex; flex-wrap: wrap; gap: 1.5rem }\n"
            "figure { margin: 0; max-width: 400px }\n"
            "img { max-width: 100%; border: 1px solid #ccc }\n"
            "figcaption { font-size: 14px }\n"
            "</style>\n<h1>A tour of kprcv</h1>\n<p>"
         << escaped(kprcvGetLibVersion()->libraryName) << ", run on "
         << escaped(std::filesystem::path(photoPath_).filename().string()) << ", " << photo_.width << " x "
         << photo_.height << " pixels. Times are the best of 20 calls on one core.</p>\n<div>\n"
         << page_ << "</div></html>\n";
    std::cout << "\nThe page: " << outDir_ << "/index.html\n";
    if (!page.flush()) throw std::runtime_error("cannot write to " + outDir_);
}

void Tour::requireOk(const std::string& name, KprStatus status) {
    if (status < kprStatusOk) throw std::runtime_error(name + " returned " + std::to_string(status));
}

}  // namespace tour

int main(int argc, char** argv) {
    if (argc != 4) {
        std::cerr << "usage: tour PHOTO.png OUT_DIR PHOTOS_DIR\n";
        return 2;
    }
    try {
        tour::Tour tour(argv[1], argv[2], argv[3]);
        tour.chapter("The photograph", "What every step starts from.");
        tour.show("photograph", "as read, in gray", tour.photo());
        tour::tourStats(tour);
        tour::tourStatistics(tour);
        tour::tourBorders(tour);
        tour::tourBorderWords(tour);
        tour::tourGaussian(tour);
        tour::tourFilters(tour);
        tour::tourMorphology(tour);
        tour::tourEdges(tour);
        tour::tourCoins(tour);
        tour::tourCorners(tour);
        tour::tourLines(tour);
        tour::tourSegments(tour);
        tour::tourDistances(tour);
        tour::tourDetection(tour);
        tour::tourPyramids(tour);
        tour::tourMotion(tour);
        tour::tourGeometry(tour);
        tour::tourFlow(tour);
        tour.finish();
    } catch (const std::exception& error) {
        std::cerr << "tour: " << error.what() << '\n';
        return 1;
    }
    return 0;
}
