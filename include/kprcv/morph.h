/* Morphology: dilation and erosion by structuring elements and by masks with heights, what is composed from them, and
 * reconstruction. */
#ifndef KPRCV_MORPH_H
#define KPRCV_MORPH_H

#include <kprcv/morph_bits.h>
#include <kprcv/morph_compound.h>
#include <kprcv/morph_gray.h>
#include <kprcv/morph_reconstruct.h>
#include <kprcv/morph_structuring.h>

#endif
