// The size of the largest cache, where a sibling library can tell it. It chooses between ways of writing, never a
// result.
#pragma once

#include <kprcv/types.h>

extern "C" {
KprStatus kprGetMaxCacheSizeB(Kpr32s* size) __attribute__((weak));
}

namespace n0 {

// The size in bytes, or `unknown` where nobody can tell.
inline Kpr32s cacheSizeOr(Kpr32s unknown) {
    Kpr32s size = 0;
    return kprGetMaxCacheSizeB != nullptr && kprGetMaxCacheSizeB(&size) == kprStatusOk ? size : unknown;
}

// Large outputs bypass the cache when they would not stay in it anyway; where the size is unknown, none does.
inline bool exceedsCache(Kpr64s bytes) { return bytes >= Kpr64s{cacheSizeOr(0x7fffffff)}; }

}  // namespace n0
