/* Counts the coins of a photograph:  count_coins examples/photos/coins.png
 *
 * A top-hat evens out the ground, a threshold finds what is bright, small regions are swept away as speckles, and what
 * is left is labelled: one label for each coin. */
#include <kprcv.h>
#include <png.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

enum { coinWidth = 71, bright = 70, dirt = 300, eightNeighbours = 0, fourNeighbours = 1 };

static void require(KprStatus status, const char* what) {
    if (status == kprStatusOk) return;
    fprintf(stderr, "count_coins: %s returned %d\n", what, status);
    exit(1);
}

static void* room(int bytes) {
    void* memory = malloc((size_t)bytes);
    if (memory == NULL) exit(1);
    return memory;
}

/* What is brighter than its surroundings and narrower than a square that holds any coin, in place. */
static void evenGround(Kpr8u* image, KprSize roi) {
    const KprSize maskSize = {coinWidth, coinWidth};
    int specSize, bufferSize;
    require(kpriMorphAdvGetSize_8u_C1R(roi, maskSize, &specSize, &bufferSize), "MorphAdvGetSize");
    Kpr8u* mask = memset(room(coinWidth * coinWidth), 1, coinWidth * coinWidth);
    Kpr8u* source = memcpy(room(roi.width * roi.height), image, (size_t)roi.width * roi.height);
    KprMorphAdvState* spec = room(specSize);
    Kpr8u* buffer = room(bufferSize);
    require(kpriMorphAdvInit_8u_C1R(roi, mask, maskSize, spec, buffer), "MorphAdvInit");
    require(kpriMorphTophatBorder_8u_C1R(source, roi.width, image, roi.width, roi, kprBorderDefault, 0, spec, buffer),
            "MorphTophatBorder");
    free(buffer);
    free(spec);
    free(source);
    free(mask);
}

int main(int argc, char** argv) {
    png_image photo;
    memset(&photo, 0, sizeof photo);
    photo.version = PNG_IMAGE_VERSION;
    if (argc != 2 || !png_image_begin_read_from_file(&photo, argv[1])) {
        fprintf(stderr, "usage: count_coins PHOTO.png\n");
        return 2;
    }
    photo.format = PNG_FORMAT_GRAY;
    const KprSize roi = {(int)photo.width, (int)photo.height};
    Kpr8u* image = room(roi.width * roi.height);
    if (!png_image_finish_read(&photo, NULL, image, roi.width, NULL)) return 1;

    evenGround(image, roi);
    for (int i = 0; i < roi.width * roi.height; ++i) image[i] = image[i] > bright ? 255 : 0;

    int speckleSize, labelSize, coins;
    require(kpriMarkSpecklesGetBufferSize(roi, kpr8u, 1, &speckleSize), "MarkSpecklesGetBufferSize");
    require(kpriLabelMarkersGetBufferSize_8u_C1R(roi, &labelSize), "LabelMarkersGetBufferSize");
    Kpr8u* buffer = room(speckleSize > labelSize ? speckleSize : labelSize);
    require(kpriMarkSpeckles_8u_C1IR(image, roi.width, roi, 0, dirt, 0, fourNeighbours, buffer), "MarkSpeckles");
    require(kpriLabelMarkers_8u_C1IR(image, roi.width, roi, 1, 254, eightNeighbours, &coins, buffer), "LabelMarkers");
    printf("%d\n", coins);
    free(buffer);
    free(image);
    return 0;
}
