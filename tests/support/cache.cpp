#include "tests/support/cache.h"

namespace test {
CacheQuery cacheQuery;
}

extern "C" KprStatus kprGetMaxCacheSizeB(Kpr32s* size) {
    ++test::cacheQuery.asked;
    *size = test::cacheQuery.size;
    return test::cacheQuery.status;
}
