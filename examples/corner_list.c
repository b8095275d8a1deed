/* From a photograph to a list of corners: smooth, measure, take the strongest peaks.  corner_list PHOTO.png */
#include <kprcv.h>
#include <png.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

enum { most = 20 };

/* As many bytes as a sizing call has told. */
static void* memory(KprStatus status, const int* bytes) {
    void* p = status == kprStatusOk ? malloc((size_t)*bytes) : NULL;
    if (p == NULL) exit(1);
    return p;
}

int main(int argc, char** argv) {
    png_image png;
    memset(&png, 0, sizeof png);
    png.version = PNG_IMAGE_VERSION;
    if (argc != 2 || !png_image_begin_read_from_file(&png, argv[1])) return 2;
    png.format = PNG_FORMAT_GRAY;
    const KprSize size = {(int)png.width, (int)png.height};
    const int step = size.width, pixels = size.width * size.height, words = 4 * pixels;
    Kpr8u *photo = memory(0, &pixels), *smooth = memory(0, &pixels);
    Kpr8u *corners = memory(0, &pixels), *score = memory(0, &pixels);
    Kpr32s* measure = memory(0, &words);
    if (!png_image_finish_read(&png, NULL, photo, step, NULL)) return 2;
    int bytes = 0, count = 0;

    /* Smooth: the mean of nine pixels takes out the noise of the camera. */
    Kpr8u* buffer = memory(kpriFilterLowpassGetBufferSize_8u_C1R(size, kprMaskSize3x3, &bytes), &bytes);
    KprStatus status =
        kpriFilterLowpassBorder_8u_C1R(photo, step, smooth, step, size, kprMaskSize3x3, kprBorderReplicate, 0, buffer);

    /* Measure: the score of fast corners, 9 of 16 points of a circle being brighter or darker by more than 12. */
    const int option = kprFastNCorner | kprFastNScore;
    const KprPoint origin = {0, 0};
    KprFastNSpec* spec = memory(kpriFastNGetSize(size, 3, 9, 1, option, kpr8u, 1, &bytes), &bytes);
    if (status == kprStatusOk) status = kpriFastNInit(size, 3, 9, 1, option, kpr8u, 1, 12, spec);
    buffer = memory(kpriFastNGetBufferSize(spec, size, &bytes), &bytes);
    if (status == kprStatusOk)
        status = kpriFastN_8u_C1R(smooth, step, corners, step, score, step, &count, origin, size, spec, buffer);
    for (int i = 0; i < pixels; ++i) measure[i] = score[i];

    /* Peaks: the highest scores among their neighbours. kprStatusListFull, a warning, says that there are more. */
    KprPoint peaks[most];
    buffer = memory(kpriFindPeaks3x3GetBufferSize_32s_C1R(most, &bytes), &bytes);
    if (status == kprStatusOk)
        status = kpriFindPeaks3x3_32s_C1R(measure, 4 * step, size, 0, peaks, most, &count, kprNormInf, 0, buffer);
    if (status < kprStatusOk) return 1;
    for (int i = 0; i < count; ++i)
        printf("%4d %4d  score %d\n", peaks[i].x, peaks[i].y, (int)measure[peaks[i].y * step + peaks[i].x]);
    return 0;
}
