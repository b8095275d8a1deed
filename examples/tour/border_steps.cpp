// Bordered copies, which the library keeps to itself: the filters read beyond the image through them. This chapter is
// linked with the library's objects for their sake; programs of your own have no need to.
#include "examples/tour/tour.h"
#include "primitives/border.h"

namespace tour {

void tourBorders(Tour& tour) {
    const Gray& photo = tour.photo();
    // A corner of the photograph, so that the border is seen.
    const KprSize size = {photo.width / 3, photo.height / 3};
    const Kpr8u* corner = photo.from(photo.width / 3, photo.height / 6);
    const int border = size.width / 3;
    const KprSize bordered = {size.width + 2 * border, size.height + 2 * border};
    const double pixels = double(bordered.width) * bordered.height;
    Gray out(bordered.width, bordered.height);
    tour.chapter("Borders",
                 "What a neighbourhood operation reads beyond the image: a part of the photograph with a border.");

    double time = tour.time("CopyConstBorder", [&] {
        return kpriCopyConstBorder_8u_C1R(corner, photo.step(), size, out.data(), out.step(), bordered, border, border,
                                          128);
    });
    tour.show("constant border", "every pixel outside has one value, here 128", out, time, pixels);
    time = tour.time("CopyReplicateBorder", [&] {
        return kpriCopyReplicateBorder_8u_C1R(corner, photo.step(), size, out.data(), out.step(), bordered, border,
                                              border);
    });
    tour.show("replicated border", "a pixel outside reads as the nearest edge pixel", out, time, pixels);
    time = tour.time("CopyMirrorBorder", [&] {
        return kpriCopyMirrorBorder_8u_C1R(corner, photo.step(), size, out.data(), out.step(), bordered, border,
                                           border);
    });
    tour.show("mirrored border", "the image is reflected, its edge pixel not repeated", out, time, pixels);
}

}  // namespace tour
