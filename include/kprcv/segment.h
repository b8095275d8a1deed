/* Segmentation: fills, labels, watersheds, growing along colour steps. */
#ifndef KPRCV_SEGMENT_H
#define KPRCV_SEGMENT_H

#include <kprcv/segment_fill.h>
#include <kprcv/segment_flood.h>
#include <kprcv/segment_label.h>

#endif
