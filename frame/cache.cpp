#include "frame/cache.h"

Kpr32s owncvGetCacheSize() {
    Kpr32s size = 0;
    if (kprGetMaxCacheSizeB != nullptr) static_cast<void>(kprGetMaxCacheSizeB(&size));
    return size;
}

int owncvGetMaxNumThreads() { return 1; }
