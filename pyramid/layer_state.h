// The state of a layer: for each pixel along a row and a column of the destination, which pixels of the source it is
// made of, and their weights. Borders, the last pixel that positions stop at, and the direction are all in the weights;
// what makes the pixels knows nothing of them.
#pragma once

#include "primitives/simd.h"
#include "primitives/sizes.h"
#include "pyramid/levels.h"

namespace n0::pyramid {

enum class Direction { Down, Up };

// The weights along one axis. Pixel i of the destination is made of the `taps` pixels of the source from first[i] on,
// all of which exist; the weight is 0 of those that the rule does not name.
struct AxisWeights {
    Kpr32s taps;
    Kpr32s* first;
    Kpr32s* base;  // the pixel at or before the position of i
    Kpr32f* weights;
    Kpr64s perTap, perPixel;  // elements from one weight to the next

    [[nodiscard]] KPR_INLINE Kpr32f* weight(Kpr64s tap, Kpr64s pixel) const {
        return weights + tap * perTap + pixel * perPixel;
    }
};

// Five taps, outer to middle to outer, whose sums of bytes fit into words.
struct SmallTaps {
    Kpr16u outer, inner, middle;
    Kpr16u sum;  // a power of 2 of at most 16; 0 where there are no such taps
};

// How far the pixels may lie apart that sixteen neighbours of the destination's row begin with.
enum class Spread { OneVector, TwoVectors, Any };

struct Layer {
    Kpr32s kind;
    KprSize src, dst;
    AxisWeights rows, columns;
    Spread spread;    // of the columns
    SmallTaps small;  // at rate 2
    Kpr32f* planes;   // working rows of the source's width, one for each channel
    Kpr64s stride;    // elements from one to the next
};

// What layers of one function share.
struct LayerForm {
    Direction direction;
    KprDataType element;
    int channels;

    [[nodiscard]] constexpr Kpr32s kind() const {  // tells apart the states of different functions
        return 0x50590000 + (direction == Direction::Up ? 0x1000 : 0) + element * 16 + channels;
    }
};

// Of the larger image the size, and what else an initialisation is told.
struct LayerShape {
    KprSize roi;
    Kpr32f rate;
    int kernelSize;
};

KprStatus putLayerSize(LayerForm form, LayerShape shape, int* bytes);

// Tap is 16s or 32f.
template <typename Tap>
KprStatus makeLayer(LayerForm form, LayerShape shape, const Tap* kernel, void* memory, Layer** layer);

}  // namespace n0::pyramid
