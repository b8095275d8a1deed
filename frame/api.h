// The public header as the library's own sources see it: a function keeps its plain name in the source and bears the
// target's tag in the symbol table (n0_kpriAbsDiff_8u_C1R), hidden behind the exported entry of the plain name.
#pragma once

#define KPR_PRAGMA(text) _Pragma(#text)
#define KPR_EXPORT(name) KPR_PRAGMA(redefine_extname name n0_##name)
#include "frame/exports.inc"
#undef KPR_EXPORT

#pragma GCC visibility push(hidden)
#include "kprcv.h"
#pragma GCC visibility pop

// A primitive that the library keeps to itself but names like an exported function bears the tag as well:
//     KprStatus kpriSet_8u_C1R(Kpr8u value, Kpr8u* dst, int dstStep, KprSize roiSize) KPR_TAGGED(kpriSet_8u_C1R);
#define KPR_TAGGED(name) __asm__("n0_" #name) __attribute__((visibility("hidden")))
