// What a pixel beyond an image reads as, an index at a time.
#pragma once

#include <kprcv.h>

#include <algorithm>
#include <optional>

namespace reference {

enum class Border { Constant, Replicate, Mirror, RepeatEdge };

// The index that index i of n reads as; nothing where it reads as the value. A side whose flag is set is memory.
inline std::optional<int> borderIndex(Border border, int i, int n, bool lowInMemory = false,
                                      bool highInMemory = false) {
    while ((i < 0 && !lowInMemory) || (i >= n && !highInMemory)) {
        if (border == Border::Constant) return std::nullopt;
        if (border == Border::Replicate || (n == 1 && !lowInMemory && !highInMemory)) {
            i = std::clamp(i, 0, n - 1);
        } else {
            const int repeated = border == Border::RepeatEdge ? 1 : 0;
            i = i < 0 ? -i - repeated : 2 * (n - 1) - i + repeated;
        }
    }
    return i;
}

}  // namespace reference
