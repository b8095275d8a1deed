// Weights of a layer. Along one axis, with w[t] the kernel's taps divided by their sum, n of them, r = n / 2 rounded
// down, and a reflection that repeats the edge for indices beyond a row:
//
//     down   x = i * rate, at most the source's last pixel; f = x - trunc(x)
//            for t = 0 .. n - 1: w[t] * (1 - f) to pixel trunc(x) + t - r, and w[t] * f to the one behind it
//     up     for t = 0 .. n - 1: x = (i + t - r) / rate, its index reflected in the destination, at most the source's
//            last pixel; w[t] * (1 - f) to pixel trunc(x), and w[t] * f to the one behind it
//
// in double precision; what goes to the same pixel is added up in this order and rounded to single precision at last.
// Nothing goes to the pixel behind where f is 0.
#include "pyramid/layer_state.h"

#include <numeric>

#include "primitives/axis.h"
#include "primitives/workspace.h"

namespace n0::pyramid {
namespace {

constexpr Kpr64s kAlignment = 64, kLanesOfRow = kLanes<Kpr32f>;

// Behind a working row: vectors are read from any of its pixels on, two at a time, and two rows of words with room
// around them take its place.
constexpr Kpr64s kBehindRow = 6 * kLanesOfRow;

struct Sizes {
    KprSize src, dst;
    int kernelSize;

    Sizes(Direction direction, LayerShape shape) : src(shape.roi), dst(shape.roi), kernelSize(shape.kernelSize) {
        (direction == Direction::Down ? dst : src) = sizeBelow(shape.roi, shape.rate);
    }

    // A kernel between two pixels reaches one more than it has taps.
    [[nodiscard]] Kpr64s mostTaps(Kpr32s srcSide) const { return std::min<Kpr64s>(Kpr64s{kernelSize} + 1, srcSide); }
    [[nodiscard]] Kpr64s sums() const { return std::max(mostTaps(src.width), mostTaps(src.height)); }
    [[nodiscard]] Kpr64s stride() const { return roundUp(Kpr64s{src.width}, kLanesOfRow) + kBehindRow; }
};

Bytes weightBytes(Kpr64s taps, Kpr32s dstSide) {
    return (4 * Bytes{taps} + 8) * roundUp(Kpr64s{dstSide}, kLanesOfRow) + 3 * Bytes{kAlignment};
}

Bytes layerBytes(int channels, const Sizes& sizes) {
    return 3 * Bytes{kAlignment} + sizeof(Layer) + weightBytes(sizes.mostTaps(sizes.src.width), sizes.dst.width) +
           weightBytes(sizes.mostTaps(sizes.src.height), sizes.dst.height) + Bytes{4} * channels * sizes.stride() +
           Bytes{8} * sizes.sums();
}

// A place in a row: a pixel, at most the last one, and how far behind it.
struct Place {
    Kpr64s pixel;
    Kpr64f fraction;

    Place(Kpr64f x, Kpr32s side) : pixel(static_cast<Kpr64s>(x)), fraction(x - static_cast<Kpr64f>(pixel)) {
        if (pixel < side - 1) return;
        pixel = side - 1;
        fraction = 0.0;
    }
};

template <typename Tap>
struct Kernel {
    const Tap* taps;
    int size;
    Kpr64f sum = 0.0;

    Kernel(const Tap* first, int count) : taps(first), size(count) {
        for (Kpr64s t = 0; t < size; ++t) sum += static_cast<Kpr64f>(taps[t]);
    }
    [[nodiscard]] bool holds() const { return sum > 0.0 || sum < 0.0; }
    [[nodiscard]] Kpr64f operator[](Kpr64s t) const { return static_cast<Kpr64f>(taps[t]) / sum; }
};

// The rule along one axis.
template <typename Tap>
struct Rule {
    Direction direction;
    Kpr64f rate;
    Kpr32s src, dst;
    const Kernel<Tap>& kernel;

    [[nodiscard]] Place placeOf(Kpr64s i) const {
        const auto x = static_cast<Kpr64f>(i);
        return {direction == Direction::Down ? x * rate : x / rate, src};
    }

    // Calls put(pixel, weight) for all that pixel i of the destination is made of.
    void eachWeight(Kpr64s i, auto put) const {
        const bool down = direction == Direction::Down;
        const Axis within{down ? src : dst, kRepeatEdge};
        for (Kpr64s t = 0; t < kernel.size; ++t) {
            const Kpr64s shift = t - kernel.size / 2;
            const Place at = placeOf(down ? i : within(i + shift));
            const auto pixel = [&](Kpr64s behind) {
                return down ? within(at.pixel + shift + behind) : at.pixel + behind;
            };
            put(pixel(0), kernel[t] * (1.0 - at.fraction));
            if (at.fraction > 0.0) put(pixel(1), kernel[t] * at.fraction);
        }
    }

    [[nodiscard]] Kpr32s putFirstPixels(Kpr32s* first) const {
        Kpr64s taps = 1;
        for (Kpr64s i = 0; i < dst; ++i) {
            Kpr64s least = src, most = 0;
            eachWeight(i, [&](Kpr64s pixel, Kpr64f) {
                least = std::min(least, pixel);
                most = std::max(most, pixel);
            });
            first[i] = static_cast<Kpr32s>(least);
            taps = std::max(taps, most - least + 1);
        }
        return static_cast<Kpr32s>(taps);
    }

    void fill(const AxisWeights& axis, Kpr64f* sums) const {
        for (Kpr64s i = 0; i < dst; ++i) {
            axis.first[i] = std::min(axis.first[i], src - axis.taps);
            axis.base[i] = static_cast<Kpr32s>(placeOf(i).pixel);
            for (Kpr64s m = 0; m < axis.taps; ++m) sums[m] = 0.0;
            eachWeight(i, [&](Kpr64s pixel, Kpr64f weight) { sums[pixel - axis.first[i]] += weight; });
            for (Kpr64s m = 0; m < axis.taps; ++m) *axis.weight(m, i) = static_cast<Kpr32f>(sums[m]);
        }
    }
};

// Rows are read a pixel at a time, columns sixteen at a time.
enum class Order { PixelByPixel, TapByTap };

template <typename Tap>
AxisWeights makeWeights(const Rule<Tap>& rule, Order order, Workspace& memory, Kpr64f* sums) {
    const Kpr64s padded = roundUp(Kpr64s{rule.dst}, kLanesOfRow);
    AxisWeights axis;
    axis.first = memory.take<Kpr32s>(padded, kAlignment);
    axis.base = memory.take<Kpr32s>(padded, kAlignment);
    axis.taps = rule.putFirstPixels(axis.first);
    axis.weights = memory.take<Kpr32f>(axis.taps * padded, kAlignment);
    axis.perTap = order == Order::TapByTap ? padded : 1;
    axis.perPixel = order == Order::TapByTap ? 1 : axis.taps;
    rule.fill(axis, sums);
    for (Kpr64s i = rule.dst; i < padded; ++i) {  // the last vector reads nothing of its own there
        axis.first[i] = axis.first[rule.dst - 1];
        axis.base[i] = axis.base[rule.dst - 1];
        for (Kpr64s m = 0; m < axis.taps; ++m) *axis.weight(m, i) = 0.0F;
    }
    return axis;
}

Spread spreadOf(const AxisWeights& columns, Kpr32s width) {
    Spread spread = Spread::OneVector;
    for (Kpr64s i = 0; i < width; ++i) {
        const Kpr64s group = i & -kLanesOfRow;
        for (const Kpr32s* pixels : {columns.first, columns.base}) {
            const Kpr64s distance = Kpr64s{pixels[i]} - pixels[group];
            if (distance < 0 || distance >= 2 * kLanesOfRow) return Spread::Any;
            if (distance >= kLanesOfRow) spread = Spread::TwoVectors;
        }
    }
    return spread;
}

// Three or five taps that are not negative and the same from both sides, by their greatest common divisor.
SmallTaps smallTapsOf(const Kpr16s* kernel, int size) {
    if (size != 3 && size != 5) return {};
    const Kpr16s* const middle = kernel + size / 2;
    const int taps[] = {middle[0], middle[1], size == 5 ? middle[2] : 0};
    if (middle[-1] != taps[1] || (size == 5 && middle[-2] != taps[2])) return {};
    if (std::min({taps[0], taps[1], taps[2]}) < 0 || taps[0] + taps[1] == 0) return {};
    const int divisor = std::gcd(std::gcd(taps[0], taps[1]), taps[2]);
    const auto reduced = [=](int tap) { return static_cast<Kpr16u>(tap / divisor); };
    const int sum = (taps[0] + 2 * (taps[1] + taps[2])) / divisor;
    if (sum > 16 || (sum & (sum - 1)) != 0) return {};
    return {reduced(taps[2]), reduced(taps[1]), reduced(taps[0]), static_cast<Kpr16u>(sum)};
}
SmallTaps smallTapsOf(const Kpr32f*, int) { return {}; }

}  // namespace

KprStatus putLayerSize(LayerForm form, LayerShape shape, int* bytes) {
    return putSize(layerBytes(form.channels, Sizes(form.direction, shape)), bytes);
}

template <typename Tap>
KprStatus makeLayer(LayerForm form, LayerShape shape, const Tap* kernel, void* memory, Layer** layer) {
    const Kernel<Tap> taps(kernel, shape.kernelSize);
    if (!taps.holds()) return kprStatusBadArg;
    const Sizes sizes(form.direction, shape);
    Workspace pieces(memory, static_cast<Kpr64s>(layerBytes(form.channels, sizes)));
    Layer& made = *pieces.take<Layer>(1, kAlignment);
    auto* const sums = pieces.take<Kpr64f>(sizes.sums());
    const auto along = [&](Kpr32s src, Kpr32s dst) {
        return Rule<Tap>{form.direction, Kpr64f{shape.rate}, src, dst, taps};
    };
    made.kind = form.kind();
    made.src = sizes.src;
    made.dst = sizes.dst;
    made.rows = makeWeights(along(sizes.src.height, sizes.dst.height), Order::PixelByPixel, pieces, sums);
    made.columns = makeWeights(along(sizes.src.width, sizes.dst.width), Order::TapByTap, pieces, sums);
    made.spread = spreadOf(made.columns, sizes.dst.width);
    made.small = shape.rate == 2.0F ? smallTapsOf(kernel, shape.kernelSize) : SmallTaps{};
    made.stride = sizes.stride();
    made.planes = pieces.take<Kpr32f>(form.channels * made.stride, kAlignment);
    *layer = &made;
    return kprStatusOk;
}

template KprStatus makeLayer(LayerForm, LayerShape, const Kpr16s*, void*, Layer**);
template KprStatus makeLayer(LayerForm, LayerShape, const Kpr32f*, void*, Layer**);

}  // namespace n0::pyramid
