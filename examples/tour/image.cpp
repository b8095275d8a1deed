#include "examples/tour/image.h"

#include <png.h>

#include <cstring>
#include <stdexcept>

namespace tour {
namespace {

Image<Kpr8u> read(const std::string& path, png_uint_32 format, int channels) {
    png_image png;
    std::memset(&png, 0, sizeof png);
    png.version = PNG_IMAGE_VERSION;
    if (png_image_begin_read_from_file(&png, path.c_str()) == 0) throw std::runtime_error(path + ": " + png.message);
    png.format = format;
    Image<Kpr8u> image(static_cast<int>(png.width), static_cast<int>(png.height), channels);
    const png_color black = {0, 0, 0};
    if (png_image_finish_read(&png, &black, image.data(), image.step(), nullptr) == 0) {
        throw std::runtime_error(path + ": " + png.message);
    }
    return image;
}

}  // namespace

Gray readGray(const std::string& path) { return read(path, PNG_FORMAT_GRAY, 1); }
Image<Kpr8u> readColour(const std::string& path) { return read(path, PNG_FORMAT_RGB, 3); }

void writePng(const std::string& path, const Image<Kpr8u>& image) {
    png_image png;
    std::memset(&png, 0, sizeof png);
    png.version = PNG_IMAGE_VERSION;
    png.width = static_cast<png_uint_32>(image.width);
    png.height = static_cast<png_uint_32>(image.height);
    png.format = image.channels == 3 ? PNG_FORMAT_RGB : PNG_FORMAT_GRAY;
    if (png_image_write_to_file(&png, path.c_str(), 0, image.data(), image.step(), nullptr) == 0) {
        throw std::runtime_error(path + ": " + png.message);
    }
}

Gray enlarged(const Gray& image, KprRect part, int factor) {
    Gray out(part.width * factor, part.height * factor);
    for (int y = 0; y < out.height; ++y) {
        for (int x = 0; x < out.width; ++x) out.at(x, y) = image.at(part.x + x / factor, part.y + y / factor);
    }
    return out;
}

}  // namespace tour
