/* Markers that grow over an image: watersheds of a relief, and growing along colour steps.
 *
 * In the image of markers 0 is unlabelled and every other value a label; the greatest value of the type, 255 or 65535,
 * is the wall. Markers are flooded in place. */
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

/* Bytes that the work buffer of kpriSegmentWatershed needs; what does not fit into 32 bits wraps. With w x h the ROI
 * and s the bytes of a label, in 8u and 8u16u the larger of 16*w*h + s*(w+2)*(h+2) + 48 and 6*p*h + 2*p + h + 66, where
 * p is s*w rounded up to a multiple of 32; in 32f16u 9*q*h + h + 66, where q is w rounded up to a multiple of 4.
 *
 * Returns kprStatusOk, kprStatusNullPtr, kprStatusBadSize. */
KprStatus kpriSegmentWatershedGetBufferSize_8u_C1R(KprSize roiSize, int* bufferSize);
KprStatus kpriSegmentWatershedGetBufferSize_8u16u_C1R(KprSize roiSize, int* bufferSize);
KprStatus kpriSegmentWatershedGetBufferSize_32f16u_C1R(KprSize roiSize, int* bufferSize);

/* Floods a relief from markers: every pixel takes the label whose flood reaches it along the lowest way.
 *
 * With kprSegQueue markers flood in the order of levels. A pixel waits at the level of its relief, but not below the
 * level that the flood has reached; within a level in the order in which pixels were reached, markers in raster order.
 * With a wall flag, a marker that touches another label which is not the wall becomes a wall itself, in raster order
 * (with kprSegWall8 corners count), and a pixel that is reached becomes a wall where there are two labels, or none,
 * around it (with kprSegWall4 beside, above and below, whether kprSegWall8 is set or not). Walls flood on.
 *
 * With kprSegIterative the cost of a path is the highest relief on it, and of equal ones its length since the last
 * rise; sweeps down and up the image give each pixel the label of its cheapest path. With a wall flag, at the end, of
 * two neighbours with different labels the one of greater cost becomes a wall, of equal cost the right or lower one.
 * Where both flags are set the first rules, in 32f16u the second.
 *
 * A marker of the wall value floods like any other and counts as no segment. Without any marker nothing is labelled.
 *
 * src, srcStep        the relief, which stays as it is; bytes from row to row
 * marker, markerStep  the markers, and the result; not the same image
 * roiSize             pixels; at least 1 x 1
 * norm                kprSegNormChess to kprSegNormMarch; with kprSegQueue kprSegNormChess or kprSegNormCity
 * flag                kprSegQueue or kprSegIterative, and kprSegWall4, kprSegWall8 or neither; other bits are ignored
 * buffer              of the size told by kpriSegmentWatershedGetBufferSize, at any address
 *
 * Returns kprStatusOk, kprStatusNullPtr, kprStatusBadSize, kprStatusBadStep, kprStatusStepNotMultiple (8u16u, 32f16u),
 * kprStatusBadArg (norm, neither way asked for), kprStatusBadMode (32f16u: kprSegQueue). */
KprStatus kpriSegmentWatershed_8u_C1IR(const Kpr8u* src, int srcStep, Kpr8u* marker, int markerStep, KprSize roiSize,
                                       int norm, int flag, Kpr8u* buffer);
KprStatus kpriSegmentWatershed_8u16u_C1IR(const Kpr8u* src, int srcStep, Kpr16u* marker, int markerStep,
                                          KprSize roiSize, int norm, int flag, Kpr8u* buffer);
KprStatus kpriSegmentWatershed_32f16u_C1IR(const Kpr32f* src, int srcStep, Kpr16u* marker, int markerStep,
                                           KprSize roiSize, int norm, int flag, Kpr8u* buffer);

/* Bytes that the work buffer of kpriSegmentGradient needs, at most 14 for each pixel and 4096. Returns kprStatusOk,
 * kprStatusNullPtr, kprStatusBadSize, kprStatusSizeOverflow. */
KprStatus kpriSegmentGradientGetBufferSize_8u_C1R(KprSize roiSize, int* bufferSize);
KprStatus kpriSegmentGradientGetBufferSize_8u_C3R(KprSize roiSize, int* bufferSize);

/* Grows markers over an image in the order of the steps between neighbouring pixels, so that it needs no gradient. The
 * step between two pixels is the largest difference of a channel.
 *
 * A labelled pixel that is not a wall offers its label to each unlabelled neighbour, at the level of the step to it, in
 * the order left, right, above, below, upper left, upper right, lower left, lower right. A pixel keeps the offer of the
 * lowest level, of equals the earliest. First all markers make offers, in raster order; then, again and again, the
 * pixel with the lowest level, among equals the one whose offer was made earliest, takes its label and makes its own
 * offers. So each pixel gets a label from which it can be reached with the smallest possible largest step. What walls
 * enclose stays 0.
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
