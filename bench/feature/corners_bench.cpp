// Corners, peaks and lines of a photograph; the counter `found` says how many there were.
#include <vector>

#include "bench/feature/photo.h"

namespace {

constexpr float kDegree = 0.017453292F;

void measure(benchmark::State& state, KprSize size, bench::Traffic traffic, const int& found, auto call) {
    bench::measure(state, size, traffic, call);
    state.counters["found"] = found;
}

auto fastCorners(int radius, int arc, int option) {
    return [=](benchmark::State& state, KprSize size) {
        const tour::Gray src = bench::photo(size);
        const bench::Image<Kpr8u> corner(size), score(size);
        int bytes = 0, found = 0;
        kpriFastNGetSize(size, radius, arc, 16, option, kpr8u, 1, &bytes);
        std::vector<Kpr8u> block(bytes);
        auto* const spec = reinterpret_cast<KprFastNSpec*>(block.data());
        kpriFastNInit(size, radius, arc, 16, option, kpr8u, 1, 20, spec);
        kpriFastNGetBufferSize(spec, size, &bytes);
        std::vector<Kpr8u> buffer(bytes);
        const bool scored = (option & kprFastNScore) != 0;
        measure(state, size, {1, scored ? 2U : 1U}, found, [&] {
            kpriFastN_8u_C1R(src.data(), src.step(), corner.data(), corner.step(), score.data(), score.step(), &found,
                             {0, 0}, size, spec, buffer.data());
        });
    };
}

// Nothing above the threshold, the photograph's own peaks, or a peak at every fourth pixel.
enum class Ground { Below, Photo, Dense };

auto peaks(Ground ground, int most) {
    return [=](benchmark::State& state, KprSize size) {
        tour::Floats image(size.width, size.height);
        const tour::Gray photo = bench::photo(size);
        std::mt19937 engine(7);
        for (int y = 0; y < size.height; ++y) {
            for (int x = 0; x < size.width; ++x) {
                const bool peak = x % 2 == 0 && y % 2 == 0;
                image.at(x, y) = ground == Ground::Dense ? (peak ? float(engine() % 1000000 + 1) : 0) : photo.at(x, y);
            }
        }
        int bytes = 0, found = 0;
        kpriFindPeaks3x3GetBufferSize_32f_C1R(most, &bytes);
        std::vector<Kpr8u> buffer(bytes);
        std::vector<KprPoint> list(most);
        const float threshold = ground == Ground::Below ? 255 : 0;
        measure(state, size, {sizeof(float), 0}, found, [&] {
            kpriFindPeaks3x3_32f_C1R(image.data(), image.step(), size, threshold, list.data(), most, &found, kprNormInf,
                                     1, buffer.data());
        });
    };
}

// Every `every`-th pixel is a candidate; none with 0.
auto lineSuppression(KprMaskSize mask, int window, int every) {
    return [=](benchmark::State& state, KprSize size) {
        const tour::Gray src = bench::photo(size);
        tour::Gray map(size.width, size.height), dst(size.width, size.height);
        for (std::size_t i = 0; every > 0 && i < map.pixels.size(); i += every) map.pixels[i] = 255;
        int bytes = 0, found = 0;
        kpriLineSuppressionGetBufferSize(size, window, &bytes);
        std::vector<Kpr8u> buffer(bytes);
        measure(state, size, {2, 1}, found, [&] {
            kpriLineSuppression_8u_C1R(src.data(), src.step(), map.data(), map.step(), dst.data(), dst.step(), size,
                                       kprFilterSobel, mask, window, 10, kprBorderReplicate, 0, buffer.data());
        });
        state.counters["found"] = double(std::count(dst.pixels.begin(), dst.pixels.end(), 255));
    };
}

void lines(benchmark::State& state, KprSize size) {
    const tour::Gray map = bench::edges(bench::photo(size), 200);
    int bytes = 0, found = 0;
    const KprRhoTheta delta = {1, kDegree};
    std::vector<KprRhoTheta> list(100);
    kpriHoughLineGetSize_8u_C1R(size, delta, 100, &bytes);
    std::vector<Kpr8u> buffer(bytes);
    measure(state, size, {1, 0}, found, [&] {
        kpriHoughLine_8u32f_C1R(map.data(), map.step(), size, delta, 80, list.data(), 100, &found, buffer.data());
    });
    state.counters["points"] = double(std::count(map.pixels.begin(), map.pixels.end(), 255));
}

void segments(benchmark::State& state, KprSize size) {
    const tour::Gray map = bench::edges(bench::photo(size), 200);
    int blockBytes = 0, bytes = 0, found = 0;
    const KprRhoTheta delta = {1, kDegree};
    std::vector<KprLineSegment> list(1001);
    kpriHoughProbLineGetSize_8u_C1R(size, delta, &blockBytes, &bytes);
    std::vector<Kpr8u> block(blockBytes), buffer(bytes);
    auto* const spec = reinterpret_cast<KprHoughProbSpec*>(block.data());
    kpriHoughProbLineInit_8u32f_C1R(size, delta, 1000, spec);
    measure(state, size, {1, 0}, found, [&] {
        kpriHoughProbLine_8u32f_C1R(map.data(), map.step(), size, 50, 30, 5, list.data(), 1000, &found, buffer.data(),
                                    spec);
    });
    state.counters["points"] = double(std::count(map.pixels.begin(), map.pixels.end(), 255));
}

const bool registered = [] {
    bench::add("FastN_8u_C1R/radius3/arc9", fastCorners(3, 9, kprFastNCorner));
    bench::add("FastN_8u_C1R/radius3/arc9/score", fastCorners(3, 9, kprFastNCorner | kprFastNScore));
    bench::add("FastN_8u_C1R/radius3/arc9/suppressed",
               fastCorners(3, 9, kprFastNCorner | kprFastNScore | kprFastNSuppression));
    bench::add("FastN_8u_C1R/radius3/arc9/oriented", fastCorners(3, 9, kprFastNCorner | kprFastNOrientation));
    bench::add("FastN_8u_C1R/radius1/arc5", fastCorners(1, 5, kprFastNCorner));
    bench::add("FastN_8u_C1R/radius5/arc15", fastCorners(5, 15, kprFastNCorner));
    bench::add("FastN_8u_C1R/radius9/arc27", fastCorners(9, 27, kprFastNCorner));
    bench::add("FindPeaks3x3_32f_C1R/none", peaks(Ground::Below, 1000));
    bench::add("FindPeaks3x3_32f_C1R/photo", peaks(Ground::Photo, 1000));
    bench::add("FindPeaks3x3_32f_C1R/dense", peaks(Ground::Dense, 1000));
    for (int every : {1, 97, 0}) {
        const std::string ending = "/every" + std::to_string(every);
        bench::add("LineSuppression_8u_C1R/mask33/window3" + ending, lineSuppression(33, 3, every));
        bench::add("LineSuppression_8u_C1R/mask55/window5" + ending, lineSuppression(55, 5, every));
    }
    bench::add("HoughLine_8u32f_C1R", lines);
    bench::add("HoughProbLine_8u32f_C1R", segments);
    return true;
}();

}  // namespace
