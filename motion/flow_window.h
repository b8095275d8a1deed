// The window of a point: its samples I and their derivatives from the first image, in memory of the caller's, and sums
// of what they differ by from samples J of the second image.
//
// A patch, two pixels wider and higher than the window, is centred on the point (geometry/patch.h). The window is what
// lies one pixel inside of the part of it whose cells are in the image: a derivative reads the pixels around its own,
// and none of them is outside. So derivatives are made where they are read and nowhere else, and the border plays no
// part: those of a whole level would be the same and, where it is large, take as long as a thousand windows.
//
// Samples and derivatives are kept in double precision: a difference, two fused steps, and eight pixels are summed.
// Lanes beyond the window's columns hold zeros, which change no sum.
#pragma once

#include "filter/fixed_kernels.h"
#include "geometry/cells.h"
#include "geometry/patch.h"
#include "primitives/simd_flow.h"
#include "primitives/sizes.h"
#include "primitives/workspace.h"

namespace n0::motion {

template <typename Src>
struct LevelImage {
    Rows<const Src> pixels;
    KprSize size;
};

// How the pixels of a type are sampled, and the scale of the samples, which the derivatives share: Scharr's weights add
// up to 32 times the derivative.
template <typename Src>
struct Sampling {
    using Sample = Kpr32f;
    using Middle = Kpr32f;                // in which derivatives are summed
    static constexpr Kpr64f kUnit = 1.0;  // of samples, in pixels' values

    static auto cells(Kpr32f fx, Kpr32f fy) { return geometry::FloatCells<Src>(geometry::weightsOf(fx, fy)); }
    static geometry::Weights<Kpr32f> weights(Kpr32f fx, Kpr32f fy) { return geometry::weightsOf(fx, fy); }
    KPR_INLINE static Vec<Kpr32f> average(const Vec<Kpr32f> (&v)[3]) {
        return filter::Scharr3::sum<Kpr32f>([&](int i) { return v[i]; });
    }
    KPR_INLINE static Vec<Kpr32f> scaled(Vec<Kpr32f> v) { return v * broadcast(1.0F / 32.0F); }

    static void copy(const LevelImage<Src>& image, KprPoint32f centre, Kpr32f* patch, int side) {
        const auto* const src = image.pixels.first;
        const int srcStep = static_cast<int>(image.pixels.step), step = side * static_cast<int>(sizeof(Kpr32f));
        KprPoint first, last;
        if constexpr (std::is_same_v<Src, Kpr32f>) {
            kpriCopySubpixIntersect_32f_C1R(src, srcStep, image.size, patch, step, {side, side}, centre, &first, &last);
        } else {
            kpriCopySubpixIntersect_16u32f_C1R(src, srcStep, image.size, patch, step, {side, side}, centre, &first,
                                               &last);
        }
    }
};

template <>
struct Sampling<Kpr8u> {
    using Sample = Kpr16u;
    using Middle = Kpr16s;
    static constexpr Kpr64f kUnit = 1.0 / 128;
    static constexpr int kScale = -7;

    static auto cells(Kpr32f fx, Kpr32f fy) {
        const auto w = geometry::weightsOf(geometry::quantized(fx), geometry::quantized(fy));
        return geometry::PairCells<Kpr8u, Kpr16u>(w, geometry::Scale(kScale));
    }
    static geometry::Weights<Kpr32f> weights(Kpr32f fx, Kpr32f fy) {
        const Kpr32f rx = 1.0F - fx;
        return {fma(-rx, fy, rx), fma(-fx, fy, fx), rx * fy, fx * fy};
    }
    // The kernel's sum in fewer steps.
    KPR_INLINE static Vec<Kpr16s> average(const Vec<Kpr16s> (&v)[3]) {
        const auto three = broadcast<Kpr16s>(3);
        return (v[0] + v[2] + v[1] * three) * three + v[1];
    }
    // At most 4 * 16 * 255: no lane is too narrow.
    KPR_INLINE static Vec<Kpr16s> scaled(Vec<Kpr16s> v) { return shiftLeft<2>(v); }

    static void copy(const LevelImage<Kpr8u>& image, KprPoint32f centre, Kpr16u* patch, int side) {
        KprPoint first, last;
        kpriCopySubpixIntersect_8u16u_C1R_Sfs(image.pixels.first, static_cast<int>(image.pixels.step), image.size,
                                              patch, side * static_cast<int>(sizeof(Kpr16u)), {side, side}, centre,
                                              &first, &last, kScale);
    }
};

// Sums over a window of D = I - J.
struct Differences {
    Kpr64f withDx = 0.0, withDy = 0.0;  // of D * Ix and D * Iy
    Kpr64f squared = 0.0;               // of D * D
};

// body<eighths>(part, x) for the stretches of up to `lanes` columns, of which so many groups of eight are needed.
template <int lanes, typename Body>
KPR_INLINE void eachStretch(Kpr64s width, Body body) {
    for (Kpr64s x = 0; x < width; x += lanes) {
        const Kpr64s count = std::min<Kpr64s>(width - x, lanes);
        const First part(count);
        if (count <= 8) {
            body.template operator()<1>(part, x);
        } else if (count <= 16) {
            body.template operator()<2>(part, x);
        } else if constexpr (lanes > 16) {
            if (count <= 24) {
                body.template operator()<3>(part, x);
            } else {
                body.template operator()<4>(part, x);
            }
        }
    }
}

template <int count>
KPR_INLINE Kpr64f total(const Vec<Kpr64f> (&sums)[count]) {
    Vec<Kpr64f> all = sums[0];
    for (int k = 1; k < count; ++k) all = all + sums[k];
    return firstLane(fold(all, [](Vec<Kpr64f> a, Vec<Kpr64f> b) { return a + b; }));
}

template <typename Src>
class Window {
    using Form = Sampling<Src>;
    using Sample = typename Form::Sample;
    using Middle = typename Form::Middle;
    static constexpr int kSampleLanes = kLanes<Sample>;

  public:
    // Of side x side pixels. The caller has made sure that the workspace holds it.
    Window(int side, Workspace memory) : side_(side), pitch_(roundUp(Kpr64s{side}, 8)) {
        const Kpr64s plane = side_ * pitch_, derivatives = (side_ + 1) * (side_ + 1), patch = (side_ + 2) * (side_ + 2);
        first_ = memory.take<Kpr64f>(plane);
        dx_ = memory.take<Kpr64f>(plane);
        dy_ = memory.take<Kpr64f>(plane);
        derivatives_ = memory.take<Kpr32f>(std::max(2 * derivatives, patch));
    }

    // Takes samples and derivatives around a point. False where nothing is left of the window.
    bool take(const LevelImage<Src>& image, KprPoint32f centre) {
        const Patch patch(*this, image, centre);
        left_ = patch.x.min + 1;
        top_ = patch.y.min + 1;
        width_ = patch.x.max - left_;
        height_ = patch.y.max - top_;
        if (width_ < 1 || height_ < 1) return false;
        const Rows<const Src> pixels = patch.window(*this, image);
        eachStretch<kSampleLanes>(
            width_, [&]<int eighths>(First part, Kpr64s x) __attribute__((always_inline)) {
                eachRow(
                    patch, pixels, x, part, [&](Kpr64s y, Vec<Sample> v) __attribute__((always_inline)) {
                        takeTurns<eighths>([&](auto k) { store(first_ + at(x + 8 * k, y), raised<k>(v), All{}); });
                    });
            });
        derive(pixels);
        interpolate(Form::weights(patch.x.fraction, patch.y.fraction));
        return true;
    }

    [[nodiscard]] Kpr64f gxx() const { return gxx_; }
    [[nodiscard]] Kpr64f gyy() const { return gyy_; }
    [[nodiscard]] Kpr64f gxy() const { return gxy_; }
    [[nodiscard]] Kpr64f pixels() const { return static_cast<Kpr64f>(width_ * height_); }

    // Holds the window against a place in the second image. False where the patch there misses the image. The squares
    // are only summed where `measures` is set.
    template <bool measures>
    bool compare(const LevelImage<Src>& image, KprPoint32f place, Differences& sums) const {
        const Patch patch(*this, image, place);
        if (patch.x.max < patch.x.min || patch.y.max < patch.y.min) return false;
        if (patch.holds(*this)) {
            const Rows<const Src> pixels = patch.window(*this, image);
            sum<measures>(
                sums, [&](Kpr64s x, First part, auto add)
                          __attribute__((always_inline)) { eachRow(patch, pixels, x, part, add); });
        } else {
            auto* const filled = reinterpret_cast<Sample*>(derivatives_);  // they are in dx_ and dy_ by now
            const Kpr64s side = side_ + 2;
            Form::copy(image, place, filled, static_cast<int>(side));
            sum<measures>(
                sums, [&](Kpr64s x, First part, auto add) __attribute__((always_inline)) {
                    for (Kpr64s y = 0; y < height_; ++y) add(y, load(filled + (top_ + y) * side + left_ + x, part));
                });
        }
        return true;
    }

  private:
    struct Patch {
        geometry::Span x, y;

        Patch(const Window& window, const LevelImage<Src>& image, KprPoint32f centre)
            : x(centre.x, static_cast<Kpr32s>(window.side_ + 2), image.size.width),
              y(centre.y, static_cast<Kpr32s>(window.side_ + 2), image.size.height) {}

        // All cells of the window lie in the image.
        [[nodiscard]] bool holds(const Window& window) const {
            return x.min <= window.left_ && window.left_ + window.width_ - 1 <= x.max && y.min <= window.top_ &&
                   window.top_ + window.height_ - 1 <= y.max;
        }
        // The image from the window's first cell on.
        [[nodiscard]] Rows<const Src> window(const Window& window, const LevelImage<Src>& image) const {
            return {image.pixels[y.first + window.top_] + x.first + window.left_, image.pixels.step};
        }
    };

    [[nodiscard]] KPR_INLINE Kpr64s at(Kpr64s x, Kpr64s y) const { return y * pitch_ + x; }

    // visit(y, the samples of a row from column x on): walked down, so that a cell's lower pixels serve as the upper
    // ones of the next.
    KPR_INLINE void eachRow(const Patch& patch, Rows<const Src> pixels, Kpr64s x, First part, auto visit) const {
        const auto cells = Form::cells(patch.x.fraction, patch.y.fraction);
        auto upper = cells.row(pixels[0] + x, part);
        for (Kpr64s y = 0; y < height_; ++y) {
            const auto lower = cells.row(pixels[y + 1] + x, part);
            visit(y, cells.mean(upper, lower));
            upper = lower;
        }
    }

    // walk(x, part, add) has the samples J of a stretch, and adds those of each row.
    template <bool measures, typename Walk>
    KPR_INLINE void sum(Differences& sums, Walk walk) const {
        eachStretch<kSampleLanes>(
            width_, [&]<int eighths>(First part, Kpr64s x) __attribute__((always_inline)) {
                Vec<Kpr64f> withDx[eighths], withDy[eighths], squared[eighths];
                for (int k = 0; k < eighths; ++k) withDx[k] = withDy[k] = squared[k] = zero<Kpr64f>();
                const Kpr64f *first = first_ + x, *dx = dx_ + x, *dy = dy_ + x;
                const Kpr64s pitch = pitch_;
                walk(
                    x, part, [&](Kpr64s y, Vec<Sample> v) __attribute__((always_inline)) {
                        takeTurns<eighths>([&](auto k) __attribute__((always_inline)) {
                            const Kpr64s here = y * pitch + 8 * k;
                            const auto d = load(first + here, All{}) - raised<k>(v);
                            withDx[k] = fma(d, load(dx + here, All{}), withDx[k]);
                            withDy[k] = fma(d, load(dy + here, All{}), withDy[k]);
                            if constexpr (measures) squared[k] = fma(d, d, squared[k]);
                        });
                    });
                sums.withDx += total(withDx);
                sums.withDy += total(withDy);
                if constexpr (measures) sums.squared += total(squared);
            });
    }

    // Derivatives of the pixels of all cells, which are a column and a row more than the window's.
    void derive(Rows<const Src> pixels) {
        constexpr int lanes = kLanes<Middle>, floatLanes = kLanes<Kpr32f>;
        const Kpr64s pitch = side_ + 1;
        for (Kpr64s x = 0; x <= width_; x += lanes) {
            const First part(std::min<Kpr64s>(width_ + 1 - x, lanes));
            Vec<Middle> difference[3], average[3];
            const auto across = [&](Kpr64s y, int row) __attribute__((always_inline)) {
                const Src* const s = pixels[y] + x;
                const Vec<Middle> around[] = {loadAs<Middle>(s - 1, part), loadAs<Middle>(s, part),
                                              loadAs<Middle>(s + 1, part)};
                difference[row] = around[2] - around[0];
                average[row] = Form::average(around);
            };
            across(-1, 0);
            across(0, 1);
            for (Kpr64s y = 0; y <= height_; ++y) {
                across(y + 1, 2);
                const auto dx = Form::scaled(Form::average(difference)), dy = Form::scaled(average[2] - average[0]);
                Kpr32f* const to = derivatives_ + y * pitch + x;
                takeTurns<lanes / floatLanes>([&](auto k) __attribute__((always_inline)) {
                    const Lanes some = {part.bits >> (floatLanes * k)};
                    store(to + floatLanes * k, floats<k>(dx), some);
                    store(to + floatLanes * k + pitch * pitch, floats<k>(dy), some);
                });
                difference[0] = difference[1];
                difference[1] = difference[2];
                average[0] = average[1];
                average[1] = average[2];
            }
        }
    }

    // The derivatives at the samples' places, and the sums of their products. The first go through memory, in place: to
    // widen what comes from there is one operation, from a register two.
    void interpolate(geometry::Weights<Kpr32f> weights) {
        const geometry::FloatCells<Kpr32f> cells(weights);
        const Kpr64s pitch = side_ + 1;
        const Rows<Kpr32f> dx = {derivatives_, pitch * Kpr64s{sizeof(Kpr32f)}};
        const Rows<Kpr32f> dy = {derivatives_ + pitch * pitch, dx.step};
        for (const auto& plane : {dx, dy})
            makeCells(cells, Rows<const Kpr32f>{plane.first, plane.step}, plane, width_, height_);
        gxx_ = gyy_ = gxy_ = 0.0;
        eachStretch<32>(
            width_, [&]<int eighths>(First part, Kpr64s x) __attribute__((always_inline)) {
                Vec<Kpr64f> xx[eighths], yy[eighths], xy[eighths];
                for (int k = 0; k < eighths; ++k) xx[k] = yy[k] = xy[k] = zero<Kpr64f>();
                const Kpr32f *fromX = dx.first + x, *fromY = dy.first + x;
                Kpr64f *toX = dx_ + x, *toY = dy_ + x;
                const Kpr64s wide = pitch_, height = height_;
                for (Kpr64s y = 0; y < height; ++y, fromX += pitch, fromY += pitch, toX += wide, toY += wide) {
                    takeTurns<eighths>([&](auto k) __attribute__((always_inline)) {
                        const Lanes some = {part.bits >> (8 * k)};
                        const auto a = loadWidened(fromX + 8 * k, some), b = loadWidened(fromY + 8 * k, some);
                        store(toX + 8 * k, a, All{});
                        store(toY + 8 * k, b, All{});
                        xx[k] = fma(a, a, xx[k]);
                        yy[k] = fma(b, b, yy[k]);
                        xy[k] = fma(a, b, xy[k]);
                    });
                }
                gxx_ += total(xx);
                gyy_ += total(yy);
                gxy_ += total(xy);
            });
    }

    Kpr64s side_, pitch_;
    Kpr64f *first_, *dx_, *dy_;
    Kpr32f* derivatives_;                                 // those to x, then those to y
    Kpr64s left_ = 0, top_ = 0, width_ = 0, height_ = 0;  // of what is left of the window, from the patch's first pixel
    Kpr64f gxx_ = 0.0, gyy_ = 0.0, gxy_ = 0.0;
};

}  // namespace n0::motion
