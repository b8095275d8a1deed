/* Labels, walls between labelled segments, and speckles. */
#ifndef KPRCV_SEGMENT_LABEL_H
#define KPRCV_SEGMENT_LABEL_H

#include <kprcv/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Bytes that the work buffer of kpriLabelMarkers needs: as kpriFloodFillGetSize. */
KprStatus kpriLabelMarkersGetBufferSize_8u_C1R(KprSize roiSize, int* bufferSize);
KprStatus kpriLabelMarkersGetBufferSize_16u_C1R(KprSize roiSize, int* bufferSize);
KprStatus kpriLabelMarkersGetBufferSize_8u32s_C1R(KprSize roiSize, int* bufferSize);

/* Gives each marker a label of its own. A marker is a set of connected pixels other than 0, whatever their values;
 * pixels that are 0 stay 0. Labels are given in the raster order of the markers' first pixels: minLabel, minLabel + 1
 * and so on up to maxLabel, then from minLabel again, so that markers beyond that number share labels.
 *
 * marker        the markers, and the result; markerStep bytes from row to row
 * roiSize       pixels; at least 1 x 1
 * minLabel      at least 1
 * maxLabel      at least minLabel; in 8u below 255, in 16u below 65535
 * norm          1: pixels have 4 neighbours; 0: they have 8
 * markerCount   receives the number of markers, which may exceed that of the labels
 * buffer        of the size told by kpriLabelMarkersGetBufferSize, at any address
 *
 * Returns kprStatusOk, kprStatusNullPtr, kprStatusBadSize, kprStatusBadStep, kprStatusStepNotMultiple (16u),
 * kprStatusBadArg (labels, norm). */
KprStatus kpriLabelMarkers_8u_C1IR(Kpr8u* marker, int markerStep, KprSize roiSize, int minLabel, int maxLabel, int norm,
                                   int* markerCount, Kpr8u* buffer);
KprStatus kpriLabelMarkers_16u_C1IR(Kpr16u* marker, int markerStep, KprSize roiSize, int minLabel, int maxLabel,
                                    int norm, int* markerCount, Kpr8u* buffer);

/* The same from the markers in `src`, which stay as they are, into `dst`, which must not overlap them. maxLabel is
 * below 2147483647. Returns kprStatusStepNotMultiple for dstStep. */
KprStatus kpriLabelMarkers_8u32s_C1R(const Kpr8u* src, int srcStep, Kpr32s* dst, int dstStep, KprSize roiSize,
                                     int minLabel, int maxLabel, int norm, int* markerCount, Kpr8u* buffer);

/* Draws a wall of one pixel between segments, in place and in raster order: a pixel becomes the wall value when its
 * left or upper neighbour is not a wall by then and has another value than it. So of two pixels that differ the later
 * one becomes the wall, and a wall makes no further wall.
 *
 * image       the segments; imageStep bytes from row to row
 * roiSize     pixels; at least 1 x 1
 * wallValue   what walls are; pixels that have it already are walls
 * norm        1: neighbours are left and above; 0: above to the left and right too
 *
 * Returns kprStatusOk, kprStatusNullPtr, kprStatusBadSize, kprStatusBadStep, kprStatusStepNotMultiple (16u),
 * kprStatusBadArg (norm). */
KprStatus kpriBoundSegments_8u_C1IR(Kpr8u* image, int imageStep, KprSize roiSize, Kpr8u wallValue, int norm);
KprStatus kpriBoundSegments_16u_C1IR(Kpr16u* image, int imageStep, KprSize roiSize, Kpr16u wallValue, int norm);

/* Bytes that the work buffer of kpriMarkSpeckles needs: 13 * width * height + 64, of which the lower 32 bits are
 * stored.
 *
 * dataType      kpr8u, kpr16u, kpr16s or kpr32f
 * numChannels   1
 *
 * Returns kprStatusOk, kprStatusNullPtr, kprStatusBadSize, kprStatusBadDataType, kprStatusBadChannel. */
KprStatus kpriMarkSpecklesGetBufferSize(KprSize roiSize, KprDataType dataType, int numChannels, int* bufferSize);

/* Overwrites small regions with one value, in place. Two pixels beside or above each other are of one region when
 * neither equals the value and they differ by no more than maxDifference, so that a slow ramp is one region.
 *
 * image            the pixels; imageStep bytes from row to row, which is not checked in 8u
 * roiSize          pixels; at least 1 x 1
 * speckleValue     what pixels of small regions become; pixels that equal it belong to no region
 * maxSpeckleSize   pixels: regions of so many or fewer are small; below 1 nothing is
 * maxDifference    between neighbours; if it is negative, or a NaN, every pixel is a region. A NaN pixel always is
 * norm             1: pixels have 4 neighbours; other values are refused
 * buffer           of the size told by kpriMarkSpecklesGetBufferSize, at any address
 *
 * Returns kprStatusOk, kprStatusNullPtr, kprStatusBadSize, kprStatusStepNotMultiple (16u, 16s, 32f),
 * kprStatusBadNorm. */
KprStatus kpriMarkSpeckles_8u_C1IR(Kpr8u* image, int imageStep, KprSize roiSize, Kpr8u speckleValue, int maxSpeckleSize,
                                   Kpr8u maxDifference, int norm, Kpr8u* buffer);
KprStatus kpriMarkSpeckles_16u_C1IR(Kpr16u* image, int imageStep, KprSize roiSize, Kpr16u speckleValue,
                                    int maxSpeckleSize, Kpr16u maxDifference, int norm, Kpr8u* buffer);
KprStatus kpriMarkSpeckles_16s_C1IR(Kpr16s* image, int imageStep, KprSize roiSize, Kpr16s speckleValue,
                                    int maxSpeckleSize, Kpr16s maxDifference, int norm, Kpr8u* buffer);
KprStatus kpriMarkSpeckles_32f_C1IR(Kpr32f* image, int imageStep, KprSize roiSize, Kpr32f speckleValue,
                                    int maxSpeckleSize, Kpr32f maxDifference, int norm, Kpr8u* buffer);

#ifdef __cplusplus
}
#endif

#endif
