// Layers of a pyramid: one level made from the one above or below it. The rule of a pixel stands in layer_state.cpp, as
// weights, and in resample.h, as sums.
#include "pyramid/byte_layers.h"
#include "pyramid/resample.h"

namespace n0::pyramid {
namespace {

template <typename T>
constexpr KprDataType kElement = sizeof(T) == 1   ? kpr8u
                                 : sizeof(T) == 2 ? kpr16u
                                                  : kpr32f;

template <typename T, int channels>
struct Form {
    Direction direction;

    [[nodiscard]] constexpr LayerForm form() const { return {direction, kElement<T>, channels}; }

    KprStatus size(LayerShape shape, int* stateSize) const {
        return firstFailure(notNull(stateSize), shapeHolds(shape)) ?: putLayerSize(form(), shape, stateSize);
    }
    KprStatus sizes(LayerShape shape, int* stateSize, int* bufferSize) const {
        const KprStatus status = notNull(stateSize, bufferSize) ?: size(shape, stateSize);
        if (status == kprStatusOk) *bufferSize = kUnusedBytes;
        return status;
    }

    template <typename Tap, typename State>
    KprStatus init(State** state, LayerShape shape, const Tap* kernel, int mode, Kpr8u* memory,
                   const Kpr8u* buffer) const {
        return firstFailure(failIf(mode != kRepeatEdge, kprStatusBadArg), notNull(state, kernel, memory, buffer),
                            shapeHolds(shape))
                   ?: makeLayer(form(), shape, kernel, memory, reinterpret_cast<Layer**>(state));
    }

    KprStatus make(Rows<const T> src, KprSize srcRoi, Rows<T> dst, KprSize dstRoi, void* state) const {
        return firstFailure(notNull(src.first, dst.first, static_cast<const char*>(state)), roiHolds(srcRoi),
                            roiHolds(dstRoi), rowsFit<T>({srcRoi.width, channels}, src.step),
                            rowsFit<T>({dstRoi.width, channels}, dst.step), stepsAlign<T>(src.step, dst.step))
                   ?: makeAs(*static_cast<const Layer*>(state), src, srcRoi, dst, dstRoi);
    }

  private:
    static constexpr int kUnusedBytes = 64;  // a buffer of none could not be allocated

    static KprStatus shapeHolds(LayerShape shape) {
        return firstFailure(roiHolds(shape.roi),
                            failIf(!rateHolds(shape.rate) || shape.kernelSize < 1, kprStatusBadArg));
    }

    KprStatus makeAs(const Layer& layer, Rows<const T> src, KprSize srcRoi, Rows<T> dst, KprSize dstRoi) const {
        const auto differ = [](KprSize a, KprSize b) { return a.width != b.width || a.height != b.height; };
        if (differ(dstRoi, layer.dst)) return kprStatusBadSize;
        if (layer.kind != form().kind() || differ(srcRoi, layer.src)) return kprStatusBadArg;
        if constexpr (std::is_same_v<T, Kpr8u>) {
            if (direction == Direction::Down && Halving<channels>::serves(layer)) {
                Halving<channels>(layer, src, dst).makeRows();
                return kprStatusOk;
            }
            if (direction == Direction::Up && Doubling<channels>::serves(layer)) {
                Doubling<channels>(layer, src, dst).makeRows();
                return kprStatusOk;
            }
        }
        Resampler<T, channels>(layer, src, dst).makeRows(0, dstRoi.height);
        return kprStatusOk;
    }
};

constexpr Form<Kpr8u, 1> kDown8uC1{Direction::Down}, kUp8uC1{Direction::Up};
constexpr Form<Kpr8u, 3> kDown8uC3{Direction::Down}, kUp8uC3{Direction::Up};
constexpr Form<Kpr16u, 1> kDown16uC1{Direction::Down}, kUp16uC1{Direction::Up};
constexpr Form<Kpr16u, 3> kDown16uC3{Direction::Down}, kUp16uC3{Direction::Up};
constexpr Form<Kpr32f, 1> kDown32fC1{Direction::Down}, kUp32fC1{Direction::Up};
constexpr Form<Kpr32f, 3> kDown32fC3{Direction::Down}, kUp32fC3{Direction::Up};

}  // namespace
}  // namespace n0::pyramid

using namespace n0;
using namespace n0::pyramid;

KprStatus kpriPyramidLayerDownGetSize_8u_C1R(KprSize srcRoi, Kpr32f rate, int kernelSize, int* stateSize,
                                             int* bufferSize) {
    return kDown8uC1.sizes({srcRoi, rate, kernelSize}, stateSize, bufferSize);
}

KprStatus kpriPyramidLayerDownGetSize_8u_C3R(KprSize srcRoi, Kpr32f rate, int kernelSize, int* stateSize,
                                             int* bufferSize) {
    return kDown8uC3.sizes({srcRoi, rate, kernelSize}, stateSize, bufferSize);
}

KprStatus kpriPyramidLayerDownGetSize_16u_C1R(KprSize srcRoi, Kpr32f rate, int kernelSize, int* stateSize,
                                              int* bufferSize) {
    return kDown16uC1.sizes({srcRoi, rate, kernelSize}, stateSize, bufferSize);
}

KprStatus kpriPyramidLayerDownGetSize_16u_C3R(KprSize srcRoi, Kpr32f rate, int kernelSize, int* stateSize,
                                              int* bufferSize) {
    return kDown16uC3.sizes({srcRoi, rate, kernelSize}, stateSize, bufferSize);
}

KprStatus kpriPyramidLayerDownGetSize_32f_C1R(KprSize srcRoi, Kpr32f rate, int kernelSize, int* stateSize,
                                              int* bufferSize) {
    return kDown32fC1.sizes({srcRoi, rate, kernelSize}, stateSize, bufferSize);
}

KprStatus kpriPyramidLayerDownGetSize_32f_C3R(KprSize srcRoi, Kpr32f rate, int kernelSize, int* stateSize,
                                              int* bufferSize) {
    return kDown32fC3.sizes({srcRoi, rate, kernelSize}, stateSize, bufferSize);
}

KprStatus kpriPyramidLayerDownInit_8u_C1R(KprPyramidDownState** statePtr, KprSize srcRoi, Kpr32f rate,
                                          const Kpr16s* kernel, int kernelSize, int mode, Kpr8u* stateBuffer,
                                          Kpr8u* buffer) {
    return kDown8uC1.init(statePtr, {srcRoi, rate, kernelSize}, kernel, mode, stateBuffer, buffer);
}

KprStatus kpriPyramidLayerDownInit_8u_C3R(KprPyramidDownState** statePtr, KprSize srcRoi, Kpr32f rate,
                                          const Kpr16s* kernel, int kernelSize, int mode, Kpr8u* stateBuffer,
                                          Kpr8u* buffer) {
    return kDown8uC3.init(statePtr, {srcRoi, rate, kernelSize}, kernel, mode, stateBuffer, buffer);
}

KprStatus kpriPyramidLayerDownInit_16u_C1R(KprPyramidDownState** statePtr, KprSize srcRoi, Kpr32f rate,
                                           const Kpr16s* kernel, int kernelSize, int mode, Kpr8u* stateBuffer,
                                           Kpr8u* buffer) {
    return kDown16uC1.init(statePtr, {srcRoi, rate, kernelSize}, kernel, mode, stateBuffer, buffer);
}

KprStatus kpriPyramidLayerDownInit_16u_C3R(KprPyramidDownState** statePtr, KprSize srcRoi, Kpr32f rate,
                                           const Kpr16s* kernel, int kernelSize, int mode, Kpr8u* stateBuffer,
                                           Kpr8u* buffer) {
    return kDown16uC3.init(statePtr, {srcRoi, rate, kernelSize}, kernel, mode, stateBuffer, buffer);
}

KprStatus kpriPyramidLayerDownInit_32f_C1R(KprPyramidDownState** statePtr, KprSize srcRoi, Kpr32f rate,
                                           const Kpr32f* kernel, int kernelSize, int mode, Kpr8u* stateBuffer,
                                           Kpr8u* buffer) {
    return kDown32fC1.init(statePtr, {srcRoi, rate, kernelSize}, kernel, mode, stateBuffer, buffer);
}

KprStatus kpriPyramidLayerDownInit_32f_C3R(KprPyramidDownState** statePtr, KprSize srcRoi, Kpr32f rate,
                                           const Kpr32f* kernel, int kernelSize, int mode, Kpr8u* stateBuffer,
                                           Kpr8u* buffer) {
    return kDown32fC3.init(statePtr, {srcRoi, rate, kernelSize}, kernel, mode, stateBuffer, buffer);
}

KprStatus kpriPyramidLayerDown_8u_C1R(const Kpr8u* src, int srcStep, KprSize srcRoi, Kpr8u* dst, int dstStep,
                                      KprSize dstRoi, KprPyramidDownState* state) {
    return kDown8uC1.make({src, srcStep}, srcRoi, {dst, dstStep}, dstRoi, state);
}

KprStatus kpriPyramidLayerDown_8u_C3R(const Kpr8u* src, int srcStep, KprSize srcRoi, Kpr8u* dst, int dstStep,
                                      KprSize dstRoi, KprPyramidDownState* state) {
    return kDown8uC3.make({src, srcStep}, srcRoi, {dst, dstStep}, dstRoi, state);
}

KprStatus kpriPyramidLayerDown_16u_C1R(const Kpr16u* src, int srcStep, KprSize srcRoi, Kpr16u* dst, int dstStep,
                                       KprSize dstRoi, KprPyramidDownState* state) {
    return kDown16uC1.make({src, srcStep}, srcRoi, {dst, dstStep}, dstRoi, state);
}

KprStatus kpriPyramidLayerDown_16u_C3R(const Kpr16u* src, int srcStep, KprSize srcRoi, Kpr16u* dst, int dstStep,
                                       KprSize dstRoi, KprPyramidDownState* state) {
    return kDown16uC3.make({src, srcStep}, srcRoi, {dst, dstStep}, dstRoi, state);
}

KprStatus kpriPyramidLayerDown_32f_C1R(const Kpr32f* src, int srcStep, KprSize srcRoi, Kpr32f* dst, int dstStep,
                                       KprSize dstRoi, KprPyramidDownState* state) {
    return kDown32fC1.make({src, srcStep}, srcRoi, {dst, dstStep}, dstRoi, state);
}

KprStatus kpriPyramidLayerDown_32f_C3R(const Kpr32f* src, int srcStep, KprSize srcRoi, Kpr32f* dst, int dstStep,
                                       KprSize dstRoi, KprPyramidDownState* state) {
    return kDown32fC3.make({src, srcStep}, srcRoi, {dst, dstStep}, dstRoi, state);
}

KprStatus kpriPyramidLayerUpGetSize_8u_C1R(KprSize dstRoi, Kpr32f rate, int kernelSize, int* stateSize) {
    return kUp8uC1.size({dstRoi, rate, kernelSize}, stateSize);
}

KprStatus kpriPyramidLayerUpGetSize_8u_C3R(KprSize dstRoi, Kpr32f rate, int kernelSize, int* stateSize) {
    return kUp8uC3.size({dstRoi, rate, kernelSize}, stateSize);
}

KprStatus kpriPyramidLayerUpGetSize_16u_C1R(KprSize dstRoi, Kpr32f rate, int kernelSize, int* stateSize) {
    return kUp16uC1.size({dstRoi, rate, kernelSize}, stateSize);
}

KprStatus kpriPyramidLayerUpGetSize_16u_C3R(KprSize dstRoi, Kpr32f rate, int kernelSize, int* stateSize) {
    return kUp16uC3.size({dstRoi, rate, kernelSize}, stateSize);
}

KprStatus kpriPyramidLayerUpGetSize_32f_C1R(KprSize dstRoi, Kpr32f rate, int kernelSize, int* stateSize) {
    return kUp32fC1.size({dstRoi, rate, kernelSize}, stateSize);
}

KprStatus kpriPyramidLayerUpGetSize_32f_C3R(KprSize dstRoi, Kpr32f rate, int kernelSize, int* stateSize) {
    return kUp32fC3.size({dstRoi, rate, kernelSize}, stateSize);
}

KprStatus kpriPyramidLayerUpInit_8u_C1R(KprPyramidUpState** statePtr, KprSize dstRoi, Kpr32f rate, const Kpr16s* kernel,
                                        int kernelSize, int mode, Kpr8u* stateBuffer, Kpr8u* /*buffer*/) {
    return kUp8uC1.init(statePtr, {dstRoi, rate, kernelSize}, kernel, mode, stateBuffer, stateBuffer);
}

KprStatus kpriPyramidLayerUpInit_8u_C3R(KprPyramidUpState** statePtr, KprSize dstRoi, Kpr32f rate, const Kpr16s* kernel,
                                        int kernelSize, int mode, Kpr8u* stateBuffer, Kpr8u* /*buffer*/) {
    return kUp8uC3.init(statePtr, {dstRoi, rate, kernelSize}, kernel, mode, stateBuffer, stateBuffer);
}

KprStatus kpriPyramidLayerUpInit_16u_C1R(KprPyramidUpState** statePtr, KprSize dstRoi, Kpr32f rate,
                                         const Kpr16s* kernel, int kernelSize, int mode, Kpr8u* stateBuffer,
                                         Kpr8u* /*buffer*/) {
    return kUp16uC1.init(statePtr, {dstRoi, rate, kernelSize}, kernel, mode, stateBuffer, stateBuffer);
}

KprStatus kpriPyramidLayerUpInit_16u_C3R(KprPyramidUpState** statePtr, KprSize dstRoi, Kpr32f rate,
                                         const Kpr16s* kernel, int kernelSize, int mode, Kpr8u* stateBuffer,
                                         Kpr8u* /*buffer*/) {
    return kUp16uC3.init(statePtr, {dstRoi, rate, kernelSize}, kernel, mode, stateBuffer, stateBuffer);
}

KprStatus kpriPyramidLayerUpInit_32f_C1R(KprPyramidUpState** statePtr, KprSize dstRoi, Kpr32f rate,
                                         const Kpr32f* kernel, int kernelSize, int mode, Kpr8u* stateBuffer,
                                         Kpr8u* /*buffer*/) {
    return kUp32fC1.init(statePtr, {dstRoi, rate, kernelSize}, kernel, mode, stateBuffer, stateBuffer);
}

KprStatus kpriPyramidLayerUpInit_32f_C3R(KprPyramidUpState** statePtr, KprSize dstRoi, Kpr32f rate,
                                         const Kpr32f* kernel, int kernelSize, int mode, Kpr8u* stateBuffer,
                                         Kpr8u* /*buffer*/) {
    return kUp32fC3.init(statePtr, {dstRoi, rate, kernelSize}, kernel, mode, stateBuffer, stateBuffer);
}

KprStatus kpriPyramidLayerUp_8u_C1R(const Kpr8u* src, int srcStep, KprSize srcRoi, Kpr8u* dst, int dstStep,
                                    KprSize dstRoi, KprPyramidUpState* state) {
    return kUp8uC1.make({src, srcStep}, srcRoi, {dst, dstStep}, dstRoi, state);
}

KprStatus kpriPyramidLayerUp_8u_C3R(const Kpr8u* src, int srcStep, KprSize srcRoi, Kpr8u* dst, int dstStep,
                                    KprSize dstRoi, KprPyramidUpState* state) {
    return kUp8uC3.make({src, srcStep}, srcRoi, {dst, dstStep}, dstRoi, state);
}

KprStatus kpriPyramidLayerUp_16u_C1R(const Kpr16u* src, int srcStep, KprSize srcRoi, Kpr16u* dst, int dstStep,
                                     KprSize dstRoi, KprPyramidUpState* state) {
    return kUp16uC1.make({src, srcStep}, srcRoi, {dst, dstStep}, dstRoi, state);
}

KprStatus kpriPyramidLayerUp_16u_C3R(const Kpr16u* src, int srcStep, KprSize srcRoi, Kpr16u* dst, int dstStep,
                                     KprSize dstRoi, KprPyramidUpState* state) {
    return kUp16uC3.make({src, srcStep}, srcRoi, {dst, dstStep}, dstRoi, state);
}

KprStatus kpriPyramidLayerUp_32f_C1R(const Kpr32f* src, int srcStep, KprSize srcRoi, Kpr32f* dst, int dstStep,
                                     KprSize dstRoi, KprPyramidUpState* state) {
    return kUp32fC1.make({src, srcStep}, srcRoi, {dst, dstStep}, dstRoi, state);
}

KprStatus kpriPyramidLayerUp_32f_C3R(const Kpr32f* src, int srcStep, KprSize srcRoi, Kpr32f* dst, int dstStep,
                                     KprSize dstRoi, KprPyramidUpState* state) {
    return kUp32fC3.make({src, srcStep}, srcRoi, {dst, dstStep}, dstRoi, state);
}
