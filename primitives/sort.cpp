// Sorting: quicksort about the median of three, insertion sort of what is short.
#include <utility>

#include "frame/checks.h"
#include "primitives/math.h"

namespace n0 {
namespace {

using std::swap;

struct Range {
    Kpr64f* first;
    Kpr64f* end;

    [[nodiscard]] Kpr64s length() const { return end - first; }
};

// The range without its NaN, which go behind it: among numbers alone, every scan below is stopped by an element.
Range withoutNan(Range range) {
    for (Kpr64f* p = range.first; p != range.end;) {
        if (__builtin_isnan(*p))
            swap(*p, *--range.end);
        else
            ++p;
    }
    return range;
}

void insertionSort(Range range) {
    for (Kpr64s i = 1; i < range.length(); ++i) {
        const Kpr64f value = range.first[i];
        Kpr64s hole = i;
        for (; hole > 0 && value < range.first[hole - 1]; --hole) range.first[hole] = range.first[hole - 1];
        range.first[hole] = value;
    }
}

// Puts the first, the middle and the last element in order: the median is then in the middle.
Kpr64f medianOfThree(Range range) {
    Kpr64f& first = range.first[0];
    Kpr64f& middle = range.first[range.length() / 2];
    Kpr64f& last = range.end[-1];
    if (middle < first) swap(middle, first);
    if (last < middle) swap(last, middle);
    if (middle < first) swap(middle, first);
    return middle;
}

// Splits the range in two, no element of the first above one of the second. An element equal to the pivot changes
// sides, so that a range of equals is halved. The ends, being on their sides already, stop the scans.
std::pair<Range, Range> split(Range range) {
    const Kpr64f pivot = medianOfThree(range);
    Kpr64f* up = range.first;
    Kpr64f* down = range.end - 1;
    for (;;) {
        do ++up;
        while (*up < pivot);
        do --down;
        while (pivot < *down);
        if (up >= down) break;
        swap(*up, *down);
    }
    return {{range.first, up}, {up, range.end}};
}

void quickSort(Range range) {
    constexpr Kpr64s kShort = 9;
    Range waiting[32];  // the longer part waits: what goes on is at most half as long as all before it
    int count = 0;
    for (;;) {
        while (range.length() > kShort) {
            auto [low, high] = split(range);
            if (low.length() > high.length()) swap(low, high);
            waiting[count++] = high;
            range = low;
        }
        insertionSort(range);
        if (count == 0) return;
        range = waiting[--count];
    }
}

}  // namespace
}  // namespace n0

using namespace n0;

KprStatus kprsSortAscend_64f_I(Kpr64f* srcDst, int len) {
    if (const KprStatus failure = notNull(srcDst)) return failure;
    if (len >= 2) quickSort(withoutNan({srcDst, srcDst + len}));
    return kprStatusOk;
}
