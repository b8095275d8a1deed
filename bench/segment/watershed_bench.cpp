// Watersheds of the gradient of a picture from 80 markers, by the queue and by sweeps; and of a serpentine, whose only
// way turns back against the sweeps at every other row.
#include <cstring>
#include <vector>

#include "bench/segment/ground.h"

namespace {

using bench::Image;

template <typename T, typename Label, typename Draw, typename Run>
void add(const std::string& name, Draw draw, Run run, int norm, int flag) {
    bench::add(name, [=](benchmark::State& state, KprSize size) {
        const Image<Kpr8u> relief(size);
        draw(relief, size);
        const Image<T> src(size);
        for (int y = 0; y < size.height; ++y) {
            T* row = reinterpret_cast<T*>(reinterpret_cast<char*>(src.data()) + std::ptrdiff_t{y} * src.step());
            for (int x = 0; x < size.width; ++x) row[x] = relief.data()[std::ptrdiff_t{y} * relief.step() + x];
        }
        const Image<Label> markers(size), result(size);
        bench::drawMarkers(markers, size);
        int bytes = 0;
        kpriSegmentWatershedGetBufferSize_8u16u_C1R(size, &bytes);  // the largest of the three
        std::vector<Kpr8u> buffer(static_cast<std::size_t>(bytes));
        bench::measure(state, size, {sizeof(T) + sizeof(Label), sizeof(Label), true}, [&] {
            std::memcpy(result.data(), markers.data(),
                        static_cast<std::size_t>(markers.step()) * static_cast<std::size_t>(size.height));
            run(src.data(), src.step(), result.data(), result.step(), size, norm, flag, buffer.data());
        });
    });
}

void drawSerpentine(const Image<Kpr8u>& image, KprSize size) {
    for (int y = 0; y < size.height; ++y) {
        for (int x = 0; x < size.width; ++x) {
            const bool wall = y % 2 == 1 && x != (y % 4 == 1 ? size.width - 1 : 0);
            image.data()[std::ptrdiff_t{y} * image.step() + x] = wall ? 200 : 10;
        }
    }
}

const bool registered = [] {
    const std::string name = "SegmentWatershed_8u_C1IR/";
    for (int norm : {0, 1}) {
        const std::string neighbours = norm == 0 ? "/neighbours_8" : "/neighbours_4";
        add<Kpr8u, Kpr8u>(name + "queue" + neighbours, bench::drawRelief, kpriSegmentWatershed_8u_C1IR, norm,
                          kprSegQueue);
        add<Kpr8u, Kpr8u>(name + "queue_walls" + neighbours, bench::drawRelief, kpriSegmentWatershed_8u_C1IR, norm,
                          kprSegQueue | kprSegWall8);
    }
    const char* norms[] = {"chess", "city", "euclid", "march"};
    for (int norm = 0; norm < 4; ++norm) {
        add<Kpr8u, Kpr8u>(name + "sweeps/" + norms[norm], bench::drawRelief, kpriSegmentWatershed_8u_C1IR, norm,
                          kprSegIterative);
    }
    add<Kpr8u, Kpr8u>(name + "sweeps_walls/chess", bench::drawRelief, kpriSegmentWatershed_8u_C1IR, 0,
                      kprSegIterative | kprSegWall8);
    add<Kpr8u, Kpr8u>(name + "sweeps/city/serpentine", drawSerpentine, kpriSegmentWatershed_8u_C1IR, 1,
                      kprSegIterative);
    add<Kpr8u, Kpr8u>(name + "queue/neighbours_4/serpentine", drawSerpentine, kpriSegmentWatershed_8u_C1IR, 1,
                      kprSegQueue);
    add<Kpr8u, Kpr16u>("SegmentWatershed_8u16u_C1IR/queue/neighbours_8", bench::drawRelief,
                       kpriSegmentWatershed_8u16u_C1IR, 0, kprSegQueue);
    add<Kpr8u, Kpr16u>("SegmentWatershed_8u16u_C1IR/sweeps/chess", bench::drawRelief, kpriSegmentWatershed_8u16u_C1IR,
                       0, kprSegIterative);
    add<Kpr32f, Kpr16u>("SegmentWatershed_32f16u_C1IR/sweeps/chess", bench::drawRelief,
                        kpriSegmentWatershed_32f16u_C1IR, 0, kprSegIterative);
    return true;
}();

}  // namespace
