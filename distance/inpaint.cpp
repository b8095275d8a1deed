// The filling of a hole, pixel by pixel in the order that the state has. With w(dx, dy) the disc's weights, (gx, gy)
// the gradient at a known pixel, c = |dy * gx - dx * gy| and s = 1 (method 0) or dx^2 + dy^2 (method 1):
//
//     weight = w * (c / sqrt((gx^2 + gy^2) * s)), 1e-6 standing for the quotient where c = 0
//     pixel = sum of weight * known / sum of weight
//
// A row of the disc is a vector or a few. Each lane adds in single precision, row by row; the lanes are then added by
// halves. Gradients are formed where the disc of any pixel reaches, and nowhere else.
#include "distance/inpaint_state.h"
#include "frame/checks.h"
#include "primitives/kit.h"

namespace n0::distance {
namespace {

constexpr Kpr32f kLeastWeight = 1e-4F, kAlongGradient = 1e-6F;

// One channel of the image that is filled.
struct Plane {
    Rows<Kpr8u> pixels;
    Rows<Kpr16s> gx, gy;
};

class Filling {
  public:
    Filling(const KprInpaintState& state, Rows<const Kpr8u> unknown)
        : unknown_(unknown),
          width_(state.roi.width),
          height_(state.roi.height),
          disc_(state.roi, state.radius),
          table_(tableOf(&state)),
          byLength_(state.method == 1) {}

    // At 16 pixels from column x on. Of unknown pixels anything.
    void gradients(const Plane& plane, Kpr64s x, Kpr64s y) const {
        const First part(std::min(width_ - x, kTile));
        const auto here = loadAs<Kpr32s>(plane.pixels[y] + x, part);
        const auto slope = [&](Kpr64s dx, Kpr64s dy) {
            const auto rise = [&](Kpr64s sign) __attribute__((always_inline)) {
                const Kpr64s column = x + sign * dx, row = y + sign * dy;
                const Lanes inside = row < 0 || row >= height_ ? Lanes{0} : insideRow(column, part);
                // Of a row outside no lane is loaded, from anywhere.
                const auto blank = loadMask<Kpr32s>(unknown_[row] + column, inside);
                const auto known = static_cast<Mask<Kpr32s>>(inside.bits & ~Bits64{blank});
                const auto there = loadAs<Kpr32s>(plane.pixels[row] + column, inside);
                return Rise{keep(known, sign > 0 ? there - here : here - there), known};
            };
            const Rise after = rise(1), before = rise(-1);
            const auto sum = after.value + before.value;
            const auto both = static_cast<Mask<Kpr32s>>(after.known & before.known);
            return select(both, sum, sum + sum);
        };
        storeLow(plane.gx[y] + x, slope(1, 0), part);
        storeLow(plane.gy[y] + x, slope(0, 1), part);
    }

    // The same at one pixel.
    void gradient(const Plane& plane, Kpr64s x, Kpr64s y) const {
        const auto slope = [&](Kpr64s dx, Kpr64s dy) {
            const bool after = known(x + dx, y + dy), before = known(x - dx, y - dy);
            const int here = plane.pixels[y][x];
            const int sum =
                (after ? plane.pixels[y + dy][x + dx] - here : 0) + (before ? here - plane.pixels[y - dy][x - dx] : 0);
            return static_cast<Kpr16s>(after && before ? sum : 2 * sum);
        };
        plane.gx[y][x] = slope(1, 0);
        plane.gy[y][x] = slope(0, 1);
    }

    [[nodiscard]] Kpr8u value(const Plane& plane, Kpr64s x, Kpr64s y) const {
        auto weights = zero<Kpr32f>(), weighted = zero<Kpr32f>();
        const Kpr64s first = std::max<Kpr64s>(y - disc_.reachY, 0), last = std::min(y + disc_.reachY, height_ - 1);
        for (Kpr64s row = first; row <= last; ++row) {
            const Kpr32f* const table = table_ + (row - y + disc_.reachY) * disc_.stride();
            for (Kpr64s i = 0; i < disc_.columns(); i += kLanes<Kpr32f>)
                addUp(plane, x, y, row, i, table, weights, weighted);
        }
        const auto add = [](auto a, auto b) { return a + b; };
        Kpr32f weight = firstLane(fold(weights, add)), sum = firstLane(fold(weighted, add));
        if (weight < kLeastWeight) fallBack(plane, x, y, weight, sum);
        const Kpr32f mean = sum / (weight + 1e-30F) + 0.5F;
        return static_cast<Kpr8u>(std::min(mean, 255.0F));
    }

  private:
    struct Rise {
        Vec<Kpr32s> value;
        Mask<Kpr32s> known;
    };

    [[nodiscard]] bool known(Kpr64s x, Kpr64s y) const {
        return x >= 0 && x < width_ && y >= 0 && y < height_ && unknown_[y][x] == 0;
    }

    // The lanes of a part that begins at `column` which lie in the image.
    [[nodiscard]] Lanes insideRow(Kpr64s column, Lanes part) const {
        if (column < 0) part.bits &= column > -kTile ? ~Bits64{0} << -column : 0;
        return part & First(std::clamp<Kpr64s>(width_ - column, 0, kTile));
    }

    // 16 places of a row of the disc around (x, y), from its i-th on.
    KPR_INLINE void addUp(const Plane& plane, Kpr64s x, Kpr64s y, Kpr64s row, Kpr64s i, const Kpr32f* table,
                          Vec<Kpr32f>& weights, Vec<Kpr32f>& weighted) const {
        const Kpr64s column = x - disc_.reachX + i;
        const Lanes inside = insideRow(column, First(std::min(disc_.columns() - i, kTile)));
        const auto known =
            static_cast<Mask<Kpr32f>>(inside.bits & ~Bits64{loadMask<Kpr32f>(unknown_[row] + column, inside)});
        if (known == 0) return;
        const Lanes some{known};
        const auto gx = loadAs<Kpr32f>(plane.gx[row] + column, some), gy = loadAs<Kpr32f>(plane.gy[row] + column, some);
        const auto dx =
            toFloat(broadcast(static_cast<Kpr32s>(column - x)) + laneConstant<Kpr32s>([](int k) { return k; }));
        const auto dy = broadcast(static_cast<Kpr32f>(row - y));
        const auto across = abs(dy * gx - dx * gy);
        auto squared = gx * gx + gy * gy;
        if (byLength_) squared = squared * (dx * dx + dy * dy);
        const auto alongGradient = equal(across, zero<Kpr32f>());
        const auto direction = select(alongGradient, broadcast(kAlongGradient), across / sqrt(squared));
        const auto weight = keep(known, load(table + i, All{}) * direction);
        weights = weights + weight;
        weighted = weighted + weight * loadAs<Kpr32f>(plane.pixels[row] + column, some);
    }

    void fallBack(const Plane& plane, Kpr64s x, Kpr64s y, Kpr32f& weight, Kpr32f& sum) const {
        int count = 0, total = 0;
        for (const Place side : {Place{1, 0}, Place{-1, 0}, Place{0, 1}, Place{0, -1}}) {
            if (!known(x + side.x, y + side.y)) continue;
            ++count;
            total += plane.pixels[y + side.y][x + side.x];
        }
        if (count == 0) return;
        weight = static_cast<Kpr32f>(count);
        sum = static_cast<Kpr32f>(total);
    }

    Rows<const Kpr8u> unknown_;
    Kpr64s width_, height_;
    Disc disc_;
    const Kpr32f* table_;
    bool byLength_;
};

// Calls visit(x, y) for each tile that gradients are needed of.
template <typename Visit>
void eachTile(Rows<const Kpr8u> near, KprSize roi, Visit visit) {
    const Kpr64s tiles = InpaintWork::tiles(roi);
    for (Kpr64s y = 0; y < roi.height; ++y) {
        walkColumns<kLanes<Kpr8u>>(tiles, [&](auto part, Kpr64s t) {
            for (Bits64 bits = loadMask<Kpr8u>(near[y] + t, part); bits != 0; bits &= bits - 1)
                visit((t + std::countr_zero(bits)) * kTile, y);
        });
    }
}

template <int channels>
KprStatus fill(Rows<Kpr8u> dst, const KprInpaintState& state, Kpr8u* buffer) {
    if (state.count == 0) return kprStatusOk;
    const InpaintWork work(buffer, state.roi, state.count, channels);
    for (Kpr64s i = 0; i < state.count; ++i) work.unknown[work.order[i].y][work.order[i].x] = 1;

    Plane planes[channels];
    for (int c = 0; c < channels; ++c) planes[c] = {channels == 1 ? dst : work.planes[c], work.gx[c], work.gy[c]};
    if constexpr (channels > 1) {
        eachTile({work.near.first, work.near.step}, state.roi, [&](Kpr64s x, Kpr64s y) {
            const Kpr64s end = std::min<Kpr64s>(x + kTile, state.roi.width);
            for (Kpr64s i = x; i < end; ++i) {
                for (int c = 0; c < channels; ++c) planes[c].pixels[y][i] = dst[y][i * channels + c];
            }
        });
    }
    const Filling filling(state, {work.unknown.first, work.unknown.step});
    eachTile({work.near.first, work.near.step}, state.roi, [&](Kpr64s x, Kpr64s y) {
        for (const Plane& plane : planes) filling.gradients(plane, x, y);
    });
    for (Kpr64s i = 0; i < state.count; ++i) {
        const Place p = work.order[i];
        for (int c = 0; c < channels; ++c) {
            const Kpr8u value = filling.value(planes[c], p.x, p.y);
            planes[c].pixels[p.y][p.x] = value;
            if (channels > 1) dst[p.y][p.x * channels + c] = value;
        }
        work.unknown[p.y][p.x] = 0;
        for (const Plane& plane : planes) filling.gradient(plane, p.x, p.y);
    }
    return kprStatusOk;
}

template <int channels>
KprStatus fillServes(const Kpr8u* src, int srcStep, const Kpr8u* dst, int dstStep, KprSize roi,
                     const KprInpaintState* state, const Kpr8u* buffer) {
    return firstFailure(notNull(src, dst, state), roiHolds(roi))
               ?: failIf(roi.width != state->roi.width || roi.height != state->roi.height, kprStatusBadSize)
               ?: firstFailure(rowsFit<Kpr8u>(Kpr64s{roi.width} * channels, srcStep, dstStep),
                               failIf(state->count > 0 && buffer == nullptr, kprStatusNullPtr),
                               failIf(state->channels != channels, kprStatusBadContext));
}

}  // namespace
}  // namespace n0::distance

using namespace n0;
using namespace n0::distance;

KprStatus kpriInpaint_8u_C1R(const Kpr8u* src, int srcStep, Kpr8u* dst, int dstStep, KprSize roiSize,
                             const KprInpaintState* state, Kpr8u* buffer) {
    return fillServes<1>(src, srcStep, dst, dstStep, roiSize, state, buffer)
               ?: kpriCopy_8u_C1R(src, srcStep, dst, dstStep, roiSize)
               ?: fill<1>({dst, dstStep}, *state, buffer);
}

KprStatus kpriInpaint_8u_C3R(const Kpr8u* src, int srcStep, Kpr8u* dst, int dstStep, KprSize roiSize,
                             const KprInpaintState* state, Kpr8u* buffer) {
    return fillServes<3>(src, srcStep, dst, dstStep, roiSize, state, buffer)
               ?: kpriCopy_8u_C3R(src, srcStep, dst, dstStep, roiSize)
               ?: fill<3>({dst, dstStep}, *state, buffer);
}
