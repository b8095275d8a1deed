/* kprcv: computer-vision primitives on image buffers that the caller owns.
 *
 * What holds for every function, unless its own comment says otherwise:
 *
 *   Images    A pixel pointer addresses the first pixel of the ROI. Rows lie `step` bytes apart; a step may be any
 *             value that holds the row. Nothing but the element's own alignment is assumed, of pointers and steps.
 *             Exactly the pixels of the ROI are read and written; bytes between rows are never touched.
 *   Memory    The library allocates nothing and keeps nothing between calls. Working memory is the caller's.
 *   Threads   Calls on different data may run at once without restriction.
 *   Statuses  Arguments are checked before anything is read or written, in this order, and the first failure is
 *             returned: null pointers (kprStatusNullPtr), ROI sizes below 1 (kprStatusBadSize), steps smaller than a
 *             row (kprStatusBadStep), steps that are no multiple of an element of 2, 4 or 8 bytes
 *             (kprStatusStepNotMultiple), then what is particular to the function.
 *   Floats    IEEE 754, rounded to nearest even. Results are the same bits at any alignment, step and column; of a
 *             NaN result, only that it is a NaN. Subnormals are kept, and floating-point flags carry no meaning.
 */
#ifndef KPRCV_H
#define KPRCV_H

#include <kprcv/detect.h>
#include <kprcv/distance.h>
#include <kprcv/feature.h>
#include <kprcv/filter.h>
#include <kprcv/frame.h>
#include <kprcv/geometry.h>
#include <kprcv/morph.h>
#include <kprcv/motion.h>
#include <kprcv/pyramid.h>
#include <kprcv/segment.h>
#include <kprcv/stats.h>
#include <kprcv/types.h>

#endif
