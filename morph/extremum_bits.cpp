// The plans of 1-bit dilation and erosion, and the choice between them.
#include "morph/bit_extremum.h"
#include "morph/bit_ribbon.h"
#include "morph/bit_square.h"
#include "morph/bit_walk.h"

namespace n0::morph {

void listRuns(const Taps& taps, int mostKinds, BitRuns& runs) {
    runs.kindCount = runs.placeCount = 0;
    bool holds = true;
    const auto kindOf = [&](TapRun run) {
        for (int k = 0; k < runs.kindCount; ++k) {
            if (runs.kinds[k].column == run.column && runs.kinds[k].length == run.length) return k;
        }
        return -1;
    };
    eachRun(taps, [&](TapRun run) {
        if (!holds || kindOf(run) >= 0) return;
        holds = runs.kindCount < mostKinds;
        if (!holds) return;
        int k = runs.kindCount++;
        for (; k > 0 && runs.kinds[k - 1].length > run.length; --k) runs.kinds[k] = runs.kinds[k - 1];
        runs.kinds[k] = {run.column, run.length};
    });
    eachRun(taps, [&](TapRun run) {
        holds = holds && runs.placeCount < BitRuns::kMostPlaces;
        if (holds) runs.places[runs.placeCount++] = {run.row, kindOf(run)};
    });
    if (!holds) runs.placeCount = 0;
}

namespace {

void copyBits(const BitJob& job) {
    withSink(job, [&](const auto& sink) {
        const BitReader read(job.src.bit - sink.before(), {job.src.bit, job.src.bit + job.width});
        for (Kpr64s y = 0; y < job.height; ++y) {
            walkColumns<64>(sink.bytes(), [&](auto part, Kpr64s x) {
                sink.put(y, x, sink.stretch(x), read(job.src.bytes[y], x), part);
            });
        }
    });
}

template <typename Rule, int reach>
void square(const BitJob& job) {
    withSink(job, [&](const auto& sink) { BitSquare<Rule, reach, std::decay_t<decltype(sink)>>(job, sink).run(); });
}

}  // namespace

template <typename Rule>
void makeBitExtremum(const BitJob& job, const Taps& taps) {
    const Window w = taps.plan.window;
    const bool full = taps.plan.kind == MaskPlan::Rectangle || taps.plan.kind == MaskPlan::Copy;
    const bool isSquare = full && w.right == w.left && w.top == w.left && w.bottom == w.left;
    if (isSquare && w.left == 0) {
        copyBits(job);
    } else if (isSquare && w.left == 1) {
        BitRibbon<Rule>::serves(job) ? BitRibbon<Rule>(job).run() : square<Rule, 1>(job);
    } else if (isSquare && w.left == 2) {
        square<Rule, 2>(job);
    } else {
        BitWalk<Rule>(job, taps).run();
    }
}

template void makeBitExtremum<BitDilation>(const BitJob&, const Taps&);
template void makeBitExtremum<BitErosion>(const BitJob&, const Taps&);

}  // namespace n0::morph
