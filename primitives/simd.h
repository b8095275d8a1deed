// The vector layer: 64-byte vectors of every element type under plain names. No file but simd*.h knows the instruction
// set.
//
// A kernel is written once, over a `part` that says which lanes of a step take part: All of them, the First few of a
// row's last step, or any Lanes. Loads and stores touch no byte of other lanes; lanes that were not loaded hold zero.
// Integer lanes wrap, float lanes round to nearest even.
#pragma once

#include "primitives/simd_arithmetic.h"
#include "primitives/simd_convert.h"
#include "primitives/simd_lanes.h"
#include "primitives/simd_masks.h"
#include "primitives/simd_vector.h"
