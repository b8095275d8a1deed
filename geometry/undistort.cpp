// The undistortion of a lens: each pixel of the result is fetched from where the lens has put it. All in single
// precision, with ifx = 1 / fx and ify = 1 / fy, for the result's pixel (u, v):
//
//     x = (u - cx) * ifx    y = (v - cy) * ify    r2 = fma(y, y, x * x)    d = fma(r2, fma(r2, k2, k1), 1)
//
//     radial    X = fma(fx, x * d, cx)
//               Y = fma(fy, y * d, cy)
//     map       X = fma(fx, fma(p2, fma(2 * x, x, r2), fma(2 * p1, x * y, x * d)), cx)
//               Y = fma(fy, fma(p1, fma(2 * y, y, r2), fma(2 * p2, x * y, y * d)), cy)
//
// A position outside of [0, width - 1] x [0, height - 1], or a NaN, gives 0. Any other lies in a cell of four pixels,
// those beyond the last column or row being the edge's own, and with ax, ay what it exceeds its upper left pixel by
//
//     top = fma(ax, s10 - s00, s00)    bottom = fma(ax, s11 - s01, s01)    value = fma(ay, bottom - top, top)
//
// to the nearest integer where pixels are integers.
#include "frame/checks.h"
#include "primitives/math.h"
#include "primitives/rows.h"
#include "primitives/simd_pixels.h"
#include "primitives/sizes.h"

namespace n0::geometry {
namespace {

constexpr int kLanesOfStep = kLanes<Kpr32f>;
using Floats = Vec<Kpr32f>;
using Integers = Vec<Kpr32s>;

struct Camera {
    Kpr32f fx, fy, cx, cy, k1, k2, p1, p2;

    [[nodiscard]] KprStatus holds() const {
        const auto finite = [](Kpr32f v) { return v - v == 0.0F; };
        return failIf(!finite(fx) || !finite(fy) || fx == 0.0F || fy == 0.0F || !finite(cx) || !finite(cy) ||
                          !finite(k1) || !finite(k2) || !finite(p1) || !finite(p2),
                      kprStatusBadArg);
    }
};

// Columns are exact in single precision up to here.
constexpr KprStatus sidesHold(KprSize roi) {
    constexpr int most = 1 << 24;
    return firstFailure(roiHolds(roi), failIf(roi.width > most || roi.height > most, kprStatusBadSize));
}

struct Position {
    Floats x, y;
};

enum class Lens { Radial, Tangential };

// The positions of the pixels of a row, sixteen at a time.
template <Lens lens>
class Lines {
  public:
    explicit Lines(const Camera& c) : c_(c), ifx_(1.0F / c.fx), ify_(1.0F / c.fy) {}

    void begin(Kpr64s v) {
        const Kpr32f y = (static_cast<Kpr32f>(v) - c_.cy) * ify_;
        y_ = broadcast(y);
        twiceY_ = broadcast(2.0F * y);
    }

    KPR_INLINE Position operator()(Kpr64s u) const {
        const auto column = laneConstant<Kpr32f>([](int i) { return i; }) + broadcast(static_cast<Kpr32f>(u));
        const Floats x = (column - broadcast(c_.cx)) * broadcast(ifx_), y = y_;
        const Floats r2 = fma(y, y, x * x);
        const Floats d = fma(r2, fma(r2, broadcast(c_.k2), broadcast(c_.k1)), broadcast(1.0F));
        const Floats fx = broadcast(c_.fx), fy = broadcast(c_.fy), cx = broadcast(c_.cx), cy = broadcast(c_.cy);
        if constexpr (lens == Lens::Radial) return {fma(fx, x * d, cx), fma(fy, y * d, cy)};
        const Floats p1 = broadcast(c_.p1), p2 = broadcast(c_.p2), xy = x * y;
        const Floats twice1 = broadcast(2.0F * c_.p1), twice2 = broadcast(2.0F * c_.p2);
        const Floats dx = fma(p2, fma(x + x, x, r2), fma(twice1, xy, x * d));
        const Floats dy = fma(p1, fma(twiceY_, y, r2), fma(twice2, xy, y * d));
        return {fma(fx, dx, cx), fma(fy, dy, cy)};
    }

  private:
    Camera c_;
    Kpr32f ifx_, ify_;
    Floats y_, twiceY_;
};

// ---- the two neighbours in a row

template <int channels>
struct Pair {
    Floats left[channels], right[channels];
};

// Where a pair of pixels lies: a row, a column and the one right of it, which is the same at the end of the row.
struct Place {
    Mask<Kpr32s> lanes;
    Integers row, x, right;
};

// Reads a pair by few gathers of four or eight bytes. None leaves its row: near the end they begin earlier.
template <typename T, int channels>
struct Gathers {
    static constexpr int kPixel = sizeof(T) * channels;
    static constexpr int kLeastWidth = kPixel == 1 ? 4 : kPixel == 3 ? 3 : kPixel < 6 ? 2 : 1;

    const T* src;
    Kpr32s step, width;

    // Offsets have 32 bits.
    static bool serves(KprSize roi, Kpr64s step) { return roi.width >= kLeastWidth && roi.height * step <= 0x7fffffff; }

    KPR_INLINE Pair<channels> operator()(const Place& p) const {
        const Integers row = p.row * broadcast(step);
        const auto at = [&](Integers x) { return row + x * broadcast<Kpr32s>(kPixel); };
        const auto elements = [&](Integers bytes, int shift) {
            return toFloat((bytes >> shift) & broadcast<Kpr32s>(sizeof(T) == 1 ? 0xff : 0xffff));
        };
        Pair<channels> pair;
        if constexpr (kPixel <= 2) {  // both pixels, and what is beside them, in four bytes
            const Integers begin = min(p.x, broadcast<Kpr32s>(width - 4 / kPixel));
            const Integers moved = (p.x - begin) << (kPixel == 2 ? 4 : 3);
            const Integers both = shiftRightLogical(gather(p.lanes, src, at(begin)), moved);
            pair.left[0] = elements(both, 0);
            pair.right[0] = elements(both, 8 * kPixel);  // 0 beyond the last column: it has no weight there
        } else if constexpr (kPixel == 3) {              // in eight
            const Integers wanted = p.x * broadcast<Kpr32s>(3), begin = min(wanted, broadcast<Kpr32s>(3 * width - 8));
            const Wide both = gatherWide(p.lanes, src, row + begin) >> ((wanted - begin) << 3);
            const Integers low = lowerHalves(both), high = upperHalves(both);
            for (int c = 0; c < 3; ++c) pair.left[c] = elements(low, 8 * c);
            pair.right[0] = elements(low, 24);
            for (int c = 1; c < 3; ++c) pair.right[c] = elements(high, 8 * (c - 1));
        } else if constexpr (kPixel == 4) {
            const Integers begin = min(p.x, broadcast<Kpr32s>(width - 2));
            const Wide both = gatherWide(p.lanes, src, at(begin));
            pair.right[0] = as<Kpr32f>(upperHalves(both));
            pair.left[0] = select(equal(begin, p.x), as<Kpr32f>(lowerHalves(both)), pair.right[0]);
        } else if constexpr (kPixel == 6) {  // elements 0 and 1, then 1 and 2
            const auto pixel = [&](Integers x, Floats* out) {
                const Integers offset = at(x), first = gather(p.lanes, src, offset);
                out[0] = elements(first, 0);
                out[1] = elements(first, 16);
                out[2] = elements(gather(p.lanes, src, offset + broadcast<Kpr32s>(2)), 16);
            };
            pixel(p.x, pair.left);
            pixel(p.right, pair.right);
        } else {
            const Integers left = at(p.x), right = at(p.right);
            for (int c = 0; c < channels; ++c) {
                pair.left[c] = as<Kpr32f>(gather(p.lanes, src, left + broadcast<Kpr32s>(4 * c)));
                pair.right[c] = as<Kpr32f>(gather(p.lanes, src, right + broadcast<Kpr32s>(4 * c)));
            }
        }
        return pair;
    }
};

// The same for images that are too narrow or too large for gathers.
template <typename T, int channels>
struct OneByOne {
    Rows<const T> src;

    Pair<channels> operator()(const Place& p) const {
        Kpr32s row[kLanesOfStep], x[kLanesOfStep], right[kLanesOfStep];
        Kpr32f pixels[2][channels][kLanesOfStep] = {};
        store(row, p.row, All{});
        store(x, p.x, All{});
        store(right, p.right, All{});
        for (unsigned lanes = p.lanes; lanes != 0; lanes &= lanes - 1) {
            const int i = std::countr_zero(lanes);
            for (int c = 0; c < channels; ++c) {
                pixels[0][c][i] = static_cast<Kpr32f>(src[row[i]][Kpr64s{channels} * x[i] + c]);
                pixels[1][c][i] = static_cast<Kpr32f>(src[row[i]][Kpr64s{channels} * right[i] + c]);
            }
        }
        Pair<channels> pair;
        for (int c = 0; c < channels; ++c) {
            pair.left[c] = load(pixels[0][c], All{});
            pair.right[c] = load(pixels[1][c], All{});
        }
        return pair;
    }
};

// ---- the images

template <typename T, int channels>
struct Call {
    Rows<const T> src;
    Rows<T> dst;
    KprSize roi;
    Camera camera;
    const Kpr8u* buffer;

    [[nodiscard]] KprStatus run() const {
        const Kpr64s width = Kpr64s{channels} * roi.width;
        const KprStatus status =
            firstFailure(notNull(src.first, dst.first, buffer), sidesHold(roi), rowsFit<T>(width, src.step, dst.step),
                         stepsAlign<T>(src.step, dst.step), camera.holds());
        if (status != kprStatusOk) return status;
        using Few = Gathers<T, channels>;
        if (Few::serves(roi, src.step)) return walk(Few{src.first, static_cast<Kpr32s>(src.step), roi.width});
        return walk(OneByOne<T, channels>{src});
    }

  private:
    template <typename Read>
    [[nodiscard]] KprStatus walk(const Read& read) const {
        Lines<Lens::Radial> lines(camera);
        for (Kpr64s v = 0; v < roi.height; ++v) {
            lines.begin(v);
            T* const out = dst[v];
            walkColumns<kLanesOfStep>(roi.width, [&](auto part, Kpr64s u) {
                Floats value[channels];
                fetch(lines(u), read, value);
                put(out + u * channels, value, part);
            });
        }
        return kprStatusOk;
    }

    KPR_INLINE void fetch(const Position& at, const auto& read, Floats* value) const {
        const auto lastX = broadcast<Kpr32s>(roi.width - 1), lastY = broadcast<Kpr32s>(roi.height - 1);
        const auto zeros = zero<Kpr32f>();
        const Mask<Kpr32f> lanes = within(at.x, zeros, toFloat(lastX)) & within(at.y, zeros, toFloat(lastY));
        const Floats floorX = floor(at.x), floorY = floor(at.y), ax = at.x - floorX, ay = at.y - floorY;
        const Integers x = truncate(floorX), y = truncate(floorY), one = broadcast<Kpr32s>(1);
        const Integers right = min(x + one, lastX);
        const Pair<channels> above = read(Place{lanes, y, x, right});
        const Pair<channels> below = read(Place{lanes, min(y + one, lastY), x, right});
        for (int c = 0; c < channels; ++c) {
            const Floats top = fma(ax, above.right[c] - above.left[c], above.left[c]);
            const Floats bottom = fma(ax, below.right[c] - below.left[c], below.left[c]);
            value[c] = keep(lanes, fma(ay, bottom - top, top));
        }
    }

    KPR_INLINE static void put(T* out, const Floats* value, auto part) {
        if constexpr (channels == 1) {
            putElements(out, value[0], part);
        } else {
            Floats turns[3];
            interleaveThree(value[0], value[1], value[2], turns);
            eachOfThree(part, kLanesOfStep,
                        [&](auto some, int k) { putElements(out + Kpr64s{kLanesOfStep} * k, turns[k], some); });
        }
    }
    KPR_INLINE static void putElements(T* out, Floats v, auto part) {
        if constexpr (std::is_floating_point_v<T>) store(out, v, part);
        if constexpr (std::is_integral_v<T>) storeAs(out, toInteger(v), part);
    }
};

KprStatus createMap(Rows<Kpr32f> xMap, Rows<Kpr32f> yMap, KprSize roi, const Camera& camera, const Kpr8u* buffer) {
    const KprStatus status = firstFailure(notNull(xMap.first, yMap.first, buffer), sidesHold(roi),
                                          rowsFit<Kpr32f>(roi.width, xMap.step, yMap.step),
                                          stepsAlign<Kpr32f>(xMap.step, yMap.step), camera.holds());
    if (status != kprStatusOk) return status;
    Lines<Lens::Tangential> lines(camera);
    for (Kpr64s v = 0; v < roi.height; ++v) {
        lines.begin(v);
        Kpr32f *const x = xMap[v], *const y = yMap[v];
        walkColumns<kLanesOfStep>(roi.width, [&](auto part, Kpr64s u) {
            const Position at = lines(u);
            store(x + u, at.x, part);
            store(y + u, at.y, part);
        });
    }
    return kprStatusOk;
}

}  // namespace
}  // namespace n0::geometry

using namespace n0;
using namespace n0::geometry;

// What a row needs is in registers: the buffer is there for the day when it is not.
KprStatus kpriUndistortGetSize(KprSize roiSize, int* bufferSize) {
    return firstFailure(notNull(bufferSize), sidesHold(roiSize)) ?: putSize(64, bufferSize);
}

KprStatus kpriUndistortRadial_8u_C1R(const Kpr8u* src, int srcStep, Kpr8u* dst, int dstStep, KprSize roiSize, Kpr32f fx,
                                     Kpr32f fy, Kpr32f cx, Kpr32f cy, Kpr32f k1, Kpr32f k2, Kpr8u* buffer) {
    return Call<Kpr8u, 1>{{src, srcStep}, {dst, dstStep}, roiSize, {fx, fy, cx, cy, k1, k2, 0, 0}, buffer}.run();
}

KprStatus kpriUndistortRadial_8u_C3R(const Kpr8u* src, int srcStep, Kpr8u* dst, int dstStep, KprSize roiSize, Kpr32f fx,
                                     Kpr32f fy, Kpr32f cx, Kpr32f cy, Kpr32f k1, Kpr32f k2, Kpr8u* buffer) {
    return Call<Kpr8u, 3>{{src, srcStep}, {dst, dstStep}, roiSize, {fx, fy, cx, cy, k1, k2, 0, 0}, buffer}.run();
}

KprStatus kpriUndistortRadial_16u_C1R(const Kpr16u* src, int srcStep, Kpr16u* dst, int dstStep, KprSize roiSize,
                                      Kpr32f fx, Kpr32f fy, Kpr32f cx, Kpr32f cy, Kpr32f k1, Kpr32f k2, Kpr8u* buffer) {
    return Call<Kpr16u, 1>{{src, srcStep}, {dst, dstStep}, roiSize, {fx, fy, cx, cy, k1, k2, 0, 0}, buffer}.run();
}

KprStatus kpriUndistortRadial_16u_C3R(const Kpr16u* src, int srcStep, Kpr16u* dst, int dstStep, KprSize roiSize,
                                      Kpr32f fx, Kpr32f fy, Kpr32f cx, Kpr32f cy, Kpr32f k1, Kpr32f k2, Kpr8u* buffer) {
    return Call<Kpr16u, 3>{{src, srcStep}, {dst, dstStep}, roiSize, {fx, fy, cx, cy, k1, k2, 0, 0}, buffer}.run();
}

KprStatus kpriUndistortRadial_32f_C1R(const Kpr32f* src, int srcStep, Kpr32f* dst, int dstStep, KprSize roiSize,
                                      Kpr32f fx, Kpr32f fy, Kpr32f cx, Kpr32f cy, Kpr32f k1, Kpr32f k2, Kpr8u* buffer) {
    return Call<Kpr32f, 1>{{src, srcStep}, {dst, dstStep}, roiSize, {fx, fy, cx, cy, k1, k2, 0, 0}, buffer}.run();
}

KprStatus kpriUndistortRadial_32f_C3R(const Kpr32f* src, int srcStep, Kpr32f* dst, int dstStep, KprSize roiSize,
                                      Kpr32f fx, Kpr32f fy, Kpr32f cx, Kpr32f cy, Kpr32f k1, Kpr32f k2, Kpr8u* buffer) {
    return Call<Kpr32f, 3>{{src, srcStep}, {dst, dstStep}, roiSize, {fx, fy, cx, cy, k1, k2, 0, 0}, buffer}.run();
}

KprStatus kpriCreateMapCameraUndistort_32f_C1R(Kpr32f* xMap, int xStep, Kpr32f* yMap, int yStep, KprSize roiSize,
                                               Kpr32f fx, Kpr32f fy, Kpr32f cx, Kpr32f cy, Kpr32f k1, Kpr32f k2,
                                               Kpr32f p1, Kpr32f p2, Kpr8u* buffer) {
    return createMap({xMap, xStep}, {yMap, yStep}, roiSize, {fx, fy, cx, cy, k1, k2, p1, p2}, buffer);
}
