/* Flood fills: the region around a seed takes a new value. */
#ifndef KPRCV_SEGMENT_FILL_H
#define KPRCV_SEGMENT_FILL_H

#include <kprcv/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/* What a fill covered. */
typedef struct KprConnectedComp {
    Kpr64f area;     /* pixels filled */
    Kpr64f value[3]; /* the new value of each channel, 0 for channels that the image does not have */
    KprRect rect;    /* the smallest rectangle around them; x and y are relative to the ROI */
} KprConnectedComp;

/* Bytes that the work buffer of a plain or range fill needs: 6 * width * height + 32, of which the lower 32 bits are
 * stored. Returns kprStatusOk, kprStatusNullPtr, kprStatusBadSize. */
KprStatus kpriFloodFillGetSize(KprSize roiSize, int* bufferSize);

/* The same for gradient fills: (width + 2) * (height + 2) + 16 * width * height + 64. */
KprStatus kpriFloodFillGetSize_Grad(KprSize roiSize, int* bufferSize);

/* Fills, in place, the pixels that equal the seed pixel in every channel and are connected with it through such pixels.
 *
 * Where the seed pixel has the new value already nothing is done, and the record stays as it was. Floats are compared
 * as numbers: -0 equals +0, and a NaN seed fills itself alone.
 *
 * image       the pixels; imageStep bytes from row to row
 * roiSize     pixels; at least 1 x 1. Nothing outside the ROI is read or written
 * seed        column and row of a pixel of the ROI
 * newValue    one element, or a pointer to one for each of three channels
 * region      receives what was filled
 * buffer      of the size told by kpriFloodFillGetSize, at any address
 *
 * 4Con: a pixel's neighbours are those beside, above and below; 8Con: those at its corners too.
 *
 * Returns kprStatusOk, kprStatusNullPtr, kprStatusBadSize, kprStatusBadStep, kprStatusStepNotMultiple (16u, 32s, 32f),
 * kprStatusOutOfRange (a seed outside the ROI). */
KprStatus kpriFloodFill_4Con_8u_C1IR(Kpr8u* image, int imageStep, KprSize roiSize, KprPoint seed, Kpr8u newValue,
                                     KprConnectedComp* region, Kpr8u* buffer);
KprStatus kpriFloodFill_4Con_16u_C1IR(Kpr16u* image, int imageStep, KprSize roiSize, KprPoint seed, Kpr16u newValue,
                                      KprConnectedComp* region, Kpr8u* buffer);
KprStatus kpriFloodFill_4Con_32s_C1IR(Kpr32s* image, int imageStep, KprSize roiSize, KprPoint seed, Kpr32s newValue,
                                      KprConnectedComp* region, Kpr8u* buffer);
KprStatus kpriFloodFill_4Con_32f_C1IR(Kpr32f* image, int imageStep, KprSize roiSize, KprPoint seed, Kpr32f newValue,
                                      KprConnectedComp* region, Kpr8u* buffer);
KprStatus kpriFloodFill_4Con_8u_C3IR(Kpr8u* image, int imageStep, KprSize roiSize, KprPoint seed, const Kpr8u* newValue,
                                     KprConnectedComp* region, Kpr8u* buffer);
KprStatus kpriFloodFill_4Con_16u_C3IR(Kpr16u* image, int imageStep, KprSize roiSize, KprPoint seed,
                                      const Kpr16u* newValue, KprConnectedComp* region, Kpr8u* buffer);
KprStatus kpriFloodFill_4Con_32f_C3IR(Kpr32f* image, int imageStep, KprSize roiSize, KprPoint seed,
                                      const Kpr32f* newValue, KprConnectedComp* region, Kpr8u* buffer);
KprStatus kpriFloodFill_8Con_8u_C1IR(Kpr8u* image, int imageStep, KprSize roiSize, KprPoint seed, Kpr8u newValue,
                                     KprConnectedComp* region, Kpr8u* buffer);
KprStatus kpriFloodFill_8Con_16u_C1IR(Kpr16u* image, int imageStep, KprSize roiSize, KprPoint seed, Kpr16u newValue,
                                      KprConnectedComp* region, Kpr8u* buffer);
KprStatus kpriFloodFill_8Con_32s_C1IR(Kpr32s* image, int imageStep, KprSize roiSize, KprPoint seed, Kpr32s newValue,
                                      KprConnectedComp* region, Kpr8u* buffer);
KprStatus kpriFloodFill_8Con_32f_C1IR(Kpr32f* image, int imageStep, KprSize roiSize, KprPoint seed, Kpr32f newValue,
                                      KprConnectedComp* region, Kpr8u* buffer);
KprStatus kpriFloodFill_8Con_8u_C3IR(Kpr8u* image, int imageStep, KprSize roiSize, KprPoint seed, const Kpr8u* newValue,
                                     KprConnectedComp* region, Kpr8u* buffer);
KprStatus kpriFloodFill_8Con_16u_C3IR(Kpr16u* image, int imageStep, KprSize roiSize, KprPoint seed,
                                      const Kpr16u* newValue, KprConnectedComp* region, Kpr8u* buffer);
KprStatus kpriFloodFill_8Con_32f_C3IR(Kpr32f* image, int imageStep, KprSize roiSize, KprPoint seed,
                                      const Kpr32f* newValue, KprConnectedComp* region, Kpr8u* buffer);

/* Fills the pixels with values from the seed's value - lowerDelta to the seed's value + upperDelta, in every channel,
 * that are connected with the seed through such pixels. Integer bounds stop at the ends of the type's range; float
 * bounds are rounded once.
 *
 * As kpriFloodFill_4Con_8u_C1IR, but:
 *
 * lowerDelta, upperDelta   one element, or a pointer to one for each of three channels
 *
 * Spans of the region that wait are kept to a quarter of the ROI's pixels, n. When there are n, which takes tiny or
 * finely divided regions, all of them are forgotten: the fill is then incomplete, its record covers the rows and
 * columns of the spans that were looked at, and the status is kprStatusOk. With n = 1 (4 to 7 pixels) only the seed's
 * span along its row is filled; with fewer pixels the fill is complete.
 *
 * Returns kprStatusBadArg too, last, where the new value lies within the range in every channel. */
KprStatus kpriFloodFill_Range4Con_8u_C1IR(Kpr8u* image, int imageStep, KprSize roiSize, KprPoint seed, Kpr8u newValue,
                                          Kpr8u lowerDelta, Kpr8u upperDelta, KprConnectedComp* region, Kpr8u* buffer);
KprStatus kpriFloodFill_Range4Con_16u_C1IR(Kpr16u* image, int imageStep, KprSize roiSize, KprPoint seed,
                                           Kpr16u newValue, Kpr16u lowerDelta, Kpr16u upperDelta,
                                           KprConnectedComp* region, Kpr8u* buffer);
KprStatus kpriFloodFill_Range4Con_32f_C1IR(Kpr32f* image, int imageStep, KprSize roiSize, KprPoint seed,
                                           Kpr32f newValue, Kpr32f lowerDelta, Kpr32f upperDelta,
                                           KprConnectedComp* region, Kpr8u* buffer);
KprStatus kpriFloodFill_Range4Con_8u_C3IR(Kpr8u* image, int imageStep, KprSize roiSize, KprPoint seed,
                                          const Kpr8u* newValue, const Kpr8u* lowerDelta, const Kpr8u* upperDelta,
                                          KprConnectedComp* region, Kpr8u* buffer);
KprStatus kpriFloodFill_Range4Con_16u_C3IR(Kpr16u* image, int imageStep, KprSize roiSize, KprPoint seed,
                                           const Kpr16u* newValue, const Kpr16u* lowerDelta, const Kpr16u* upperDelta,
                                           KprConnectedComp* region, Kpr8u* buffer);
KprStatus kpriFloodFill_Range4Con_32f_C3IR(Kpr32f* image, int imageStep, KprSize roiSize, KprPoint seed,
                                           const Kpr32f* newValue, const Kpr32f* lowerDelta, const Kpr32f* upperDelta,
                                           KprConnectedComp* region, Kpr8u* buffer);
KprStatus kpriFloodFill_Range8Con_8u_C1IR(Kpr8u* image, int imageStep, KprSize roiSize, KprPoint seed, Kpr8u newValue,
                                          Kpr8u lowerDelta, Kpr8u upperDelta, KprConnectedComp* region, Kpr8u* buffer);
KprStatus kpriFloodFill_Range8Con_16u_C1IR(Kpr16u* image, int imageStep, KprSize roiSize, KprPoint seed,
                                           Kpr16u newValue, Kpr16u lowerDelta, Kpr16u upperDelta,
                                           KprConnectedComp* region, Kpr8u* buffer);
KprStatus kpriFloodFill_Range8Con_32f_C1IR(Kpr32f* image, int imageStep, KprSize roiSize, KprPoint seed,
                                           Kpr32f newValue, Kpr32f lowerDelta, Kpr32f upperDelta,
                                           KprConnectedComp* region, Kpr8u* buffer);
KprStatus kpriFloodFill_Range8Con_8u_C3IR(Kpr8u* image, int imageStep, KprSize roiSize, KprPoint seed,
                                          const Kpr8u* newValue, const Kpr8u* lowerDelta, const Kpr8u* upperDelta,
                                          KprConnectedComp* region, Kpr8u* buffer);
KprStatus kpriFloodFill_Range8Con_16u_C3IR(Kpr16u* image, int imageStep, KprSize roiSize, KprPoint seed,
                                           const Kpr16u* newValue, const Kpr16u* lowerDelta, const Kpr16u* upperDelta,
                                           KprConnectedComp* region, Kpr8u* buffer);
KprStatus kpriFloodFill_Range8Con_32f_C3IR(Kpr32f* image, int imageStep, KprSize roiSize, KprPoint seed,
                                           const Kpr32f* newValue, const Kpr32f* lowerDelta, const Kpr32f* upperDelta,
                                           KprConnectedComp* region, Kpr8u* buffer);

/* Fills what can be reached from the seed by small steps: a pixel joins when its value lies from v - lowerDelta to
 * v + upperDelta in every channel, v being the value that a neighbour in the region had before the fill. So a fill can
 * creep along a slope, in one direction only where the deltas differ. The seed pixel always belongs; a NaN never joins.
 *
 * As kpriFloodFill_4Con_8u_C1IR, but that the new value may be any, and:
 *
 * lowerDelta, upperDelta   one element, or a pointer to one for each of three channels; in 32f not negative
 * buffer                   of the size told by kpriFloodFillGetSize_Grad
 *
 * Returns kprStatusOutOfRange for a negative delta too. */
KprStatus kpriFloodFill_Grad4Con_8u_C1IR(Kpr8u* image, int imageStep, KprSize roiSize, KprPoint seed, Kpr8u newValue,
                                         Kpr8u lowerDelta, Kpr8u upperDelta, KprConnectedComp* region, Kpr8u* buffer);
KprStatus kpriFloodFill_Grad4Con_16u_C1IR(Kpr16u* image, int imageStep, KprSize roiSize, KprPoint seed, Kpr16u newValue,
                                          Kpr16u lowerDelta, Kpr16u upperDelta, KprConnectedComp* region,
                                          Kpr8u* buffer);
KprStatus kpriFloodFill_Grad4Con_32f_C1IR(Kpr32f* image, int imageStep, KprSize roiSize, KprPoint seed, Kpr32f newValue,
                                          Kpr32f lowerDelta, Kpr32f upperDelta, KprConnectedComp* region,
                                          Kpr8u* buffer);
KprStatus kpriFloodFill_Grad4Con_8u_C3IR(Kpr8u* image, int imageStep, KprSize roiSize, KprPoint seed,
                                         const Kpr8u* newValue, const Kpr8u* lowerDelta, const Kpr8u* upperDelta,
                                         KprConnectedComp* region, Kpr8u* buffer);
KprStatus kpriFloodFill_Grad4Con_16u_C3IR(Kpr16u* image, int imageStep, KprSize roiSize, KprPoint seed,
                                          const Kpr16u* newValue, const Kpr16u* lowerDelta, const Kpr16u* upperDelta,
                                          KprConnectedComp* region, Kpr8u* buffer);
KprStatus kpriFloodFill_Grad4Con_32f_C3IR(Kpr32f* image, int imageStep, KprSize roiSize, KprPoint seed,
                                          const Kpr32f* newValue, const Kpr32f* lowerDelta, const Kpr32f* upperDelta,
                                          KprConnectedComp* region, Kpr8u* buffer);
KprStatus kpriFloodFill_Grad8Con_8u_C1IR(Kpr8u* image, int imageStep, KprSize roiSize, KprPoint seed, Kpr8u newValue,
                                         Kpr8u lowerDelta, Kpr8u upperDelta, KprConnectedComp* region, Kpr8u* buffer);
KprStatus kpriFloodFill_Grad8Con_16u_C1IR(Kpr16u* image, int imageStep, KprSize roiSize, KprPoint seed, Kpr16u newValue,
                                          Kpr16u lowerDelta, Kpr16u upperDelta, KprConnectedComp* region,
                                          Kpr8u* buffer);
KprStatus kpriFloodFill_Grad8Con_32f_C1IR(Kpr32f* image, int imageStep, KprSize roiSize, KprPoint seed, Kpr32f newValue,
                                          Kpr32f lowerDelta, Kpr32f upperDelta, KprConnectedComp* region,
                                          Kpr8u* buffer);
KprStatus kpriFloodFill_Grad8Con_8u_C3IR(Kpr8u* image, int imageStep, KprSize roiSize, KprPoint seed,
                                         const Kpr8u* newValue, const Kpr8u* lowerDelta, const Kpr8u* upperDelta,
                                         KprConnectedComp* region, Kpr8u* buffer);
KprStatus kpriFloodFill_Grad8Con_16u_C3IR(Kpr16u* image, int imageStep, KprSize roiSize, KprPoint seed,
                                          const Kpr16u* newValue, const Kpr16u* lowerDelta, const Kpr16u* upperDelta,
                                          KprConnectedComp* region, Kpr8u* buffer);
KprStatus kpriFloodFill_Grad8Con_32f_C3IR(Kpr32f* image, int imageStep, KprSize roiSize, KprPoint seed,
                                          const Kpr32f* newValue, const Kpr32f* lowerDelta, const Kpr32f* upperDelta,
                                          KprConnectedComp* region, Kpr8u* buffer);

#ifdef __cplusplus
}
#endif

#endif
