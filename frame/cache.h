// The size of the largest cache, where a sibling library can tell it. It chooses between ways of writing and of
// ordering work, never a result.
#pragma once

#include "frame/api.h"

extern "C" {
KprStatus kprGetMaxCacheSizeB(Kpr32s* size) __attribute__((weak));

// What the query wrote, whether it succeeded or not; 0 where it wrote nothing.
Kpr32s owncvGetCacheSize() KPR_TAGGED(owncvGetCacheSize);

// The number of threads among which a family may divide a buffer.
int owncvGetMaxNumThreads() KPR_TAGGED(owncvGetMaxNumThreads);
}

namespace n0 {

// The size in bytes, or `unknown` where nobody can tell.
inline Kpr32s cacheSizeOr(Kpr32s unknown) {
    Kpr32s size = 0;
    return kprGetMaxCacheSizeB != nullptr && kprGetMaxCacheSizeB(&size) == kprStatusOk ? size : unknown;
}

// Large outputs bypass the cache when they would not stay in it anyway. The size is asked for only above `askAbove`
// bytes; where it is unknown, nothing bypasses the cache.
inline bool exceedsCache(Kpr64s bytes, Kpr64s askAbove) {
    if (bytes <= askAbove) return false;
    const Kpr64s size = cacheSizeOr(0);
    return size > 0 && bytes >= size;
}

}  // namespace n0
