/* Markers that grow over an image: watersheds of a relief, and growing along colour steps.
 *
 * In the image of markers 0 is unlabelled and every other value a label; the greatest value of the type, 255 or 65535, is
 * the wall. Markers are flooded in place. */
#ifndef KPRCV_SEGMENT_FLOOD_H
#define KPRCV_SEGMENT_FLOOD_H

#include <kprcv/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Norms of segmentation: which neighbours a pixel has, and what a step to them adds to a path. */
enum {
    kprSegNormChess = 0,  /* 8 neighbours, all equally far */
    kprSegNormCity = 1,   /* 4 neighbours */
    kprSegNormEuclid = 2, /* 8 neighbours, those at the corners 14/10 as far */
    kprSegNormMarch = 3   /* 4 neighbours, two at a time: lengths as the crow flies */
};

/* Flags of segmentation, joined by |. */
enum {
    kprSegQueue = 1,     /* flood in the order of levels, by a queue; wins over kprSegIterative */
    kprSegIterative = 2, /* sweep down and up until nothing changes */
    kprSegWall4 = 64,    /* leave walls between segments, which pixels beside, above or below decide */
    kprSegWall8 = 128    /* the same, pixels at the corners too */
};

/* Bytes that the work buffer of kpriSegmentGradient needs, at most 14 for each pixel and 4096. Returns kprStatusOk,
 * kprStatusNullPtr, kprStatusBadSize, kprStatusSizeOverflow. */
KprStatus kpriSegmentGradientGetBufferSize_8u_C1R(KprSize roiSize, int* bufferSize);
KprStatus kpriSegmentGradientGetBufferSize_8u_C3R(KprSize roiSize, int* bufferSize);

/* Grows markers over an image in the order of the steps between neighbouring pixels, so that it needs no gradient. The
 * step between two pixels is the largest difference of a channel.
 *
 * A labelled pixel that is not a wall offers its label to each unlabelled neighbour, at the level of the step to it, in the
 * order left, right, above, below, upper left, upper right, lower left, lower right. A pixel keeps the offer of the lowest
 * level, of equals the earliest. First all markers make offers, in raster order; then, again and again, the pixel with
 * the lowest level, among equals the one whose offer was made earliest, takes its label and makes its own offers. So each
 * pixel gets a label from which it can be reached with the smallest possible largest step. What walls enclose stays 0.
 *
 * src, srcStep        the image; bytes from row to row
 * marker, markerStep  the markers, and the result; not the same image
 * roiSize             pixels; at least 1 x 1
 * norm                kprSegNormChess or kprSegNormCity
 * flag                0, or kprSegWall4, kprSegWall8 or both: at the end every labelled pixel with a right or lower
 *                     neighbour - with kprSegWall8 one to either side below, too - of another label, which is not the
 *                     wall, becomes a wall; all are decided before any is drawn
 * buffer              of the size told by kpriSegmentGradientGetBufferSize, at any address
 *
 * Returns kprStatusOk, kprStatusNullPtr, kprStatusBadSize, kprStatusBadStep, kprStatusBadArg (norm),
 * kprStatusBadMode (other flags). */
KprStatus kpriSegmentGradient_8u_C1IR(const Kpr8u* src, int srcStep, Kpr8u* marker, int markerStep, KprSize roiSize,
                                      int norm, int flag, Kpr8u* buffer);
KprStatus kpriSegmentGradient_8u_C3IR(const Kpr8u* src, int srcStep, Kpr8u* marker, int markerStep, KprSize roiSize,
                                      int norm, int flag, Kpr8u* buffer);

#ifdef __cplusplus
}
#endif

#endif
