// The sibling library that knows the size of the largest cache, as the tests play it.
#pragma once

#include <kprcv/types.h>

namespace test {

struct CacheQuery {
    KprStatus status = kprStatusFail;
    Kpr32s size = 0;
    int asked = 0;
};

extern CacheQuery cacheQuery;

}  // namespace test
