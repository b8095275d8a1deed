// What the initialising and the filling call of inpainting share: the state block and the carving of the work buffer.
#pragma once

#include <algorithm>

#include "primitives/rows.h"
#include "primitives/sizes.h"
#include "primitives/workspace.h"

// The block is followed by the weights of the disc.
struct KprInpaintState {
    KprSize roi;
    Kpr64s count;  // pixels to fill
    Kpr32f radius;
    int method;
    int channels;
};

namespace n0::distance {

constexpr Kpr64s kTile = 16;  // columns of which gradients are formed at once

// The disc as a table of rows of whole vectors: for each offset its weight before the gradient is looked at, 0 outside
// of the disc. It reaches no farther than the image.
struct Disc {
    Kpr64s reachX, reachY;

    Disc(KprSize roi, Kpr32f radius)
        : reachX(std::min<Kpr64s>(truncated(radius, roi), roi.width - 1)),
          reachY(std::min<Kpr64s>(truncated(radius, roi), roi.height - 1)) {}

    [[nodiscard]] Kpr64s rows() const { return 2 * reachY + 1; }
    [[nodiscard]] Kpr64s columns() const { return 2 * reachX + 1; }
    [[nodiscard]] Kpr64s stride() const { return roundUp(columns(), kLanes<Kpr32f>); }

  private:
    static Kpr64s truncated(Kpr32f radius, KprSize roi) {
        const Kpr64s most = std::max(roi.width, roi.height);
        return radius < static_cast<Kpr32f>(most) ? static_cast<Kpr64s>(radius) : most;
    }
};

inline Bytes stateBytes(KprSize roi, Kpr32f radius) {
    const Disc disc(roi, radius);
    return Bytes{sizeof(KprInpaintState)} + Bytes{disc.rows()} * disc.stride() * 4 + alignof(KprInpaintState);
}

template <typename State>
auto* tableOf(State* state) {
    using Weight = std::conditional_t<std::is_const_v<State>, const Kpr32f, Kpr32f>;
    return reinterpret_cast<Weight*>(state + 1);
}

struct Place {
    Kpr32s x, y;
};

// The pieces of the work buffer.
struct InpaintWork {
    Place* order;         // of the pixels to fill
    Rows<Kpr8u> unknown;  // not zero where a pixel is still to be filled
    Rows<Kpr8u> near;     // by tiles: not zero where gradients are needed
    Rows<Kpr16s> gx[3], gy[3];
    Rows<Kpr8u> planes[3];  // of three channels, the pixels of such tiles apart

    static Kpr64s tiles(KprSize roi) { return (roi.width + kTile - 1) / kTile; }
    static Bytes bytes(KprSize roi, Kpr64s count, int channels) {
        const Bytes pixels = Bytes{roi.width} * roi.height;
        return Bytes{count} * Bytes{sizeof(Place)} + 8 + pixels + Bytes{tiles(roi)} * roi.height +
               channels * (4 * pixels + 2) + (channels == 3 ? 3 * pixels : 0);
    }

    InpaintWork(Kpr8u* buffer, KprSize roi, Kpr64s count, int channels) {
        Workspace work(buffer, static_cast<Kpr64s>(bytes(roi, count, channels)));
        const Kpr64s w = roi.width, pixels = w * roi.height;
        order = work.take<Place>(count, alignof(Kpr64f));  // where the keys are sorted that become places
        for (int c = 0; c < channels; ++c) {
            gx[c] = {work.take<Kpr16s>(pixels), 2 * w};
            gy[c] = {work.take<Kpr16s>(pixels), 2 * w};
        }
        unknown = {work.take<Kpr8u>(pixels), w};
        near = {work.take<Kpr8u>(tiles(roi) * roi.height), tiles(roi)};
        for (int c = 0; c < channels && channels == 3; ++c) planes[c] = {work.take<Kpr8u>(pixels), w};
    }
};

}  // namespace n0::distance
