#include <vector>

#include "bench/support/bench.h"
#include "filter/sobel.h"

namespace {

using bench::Image;

template <typename Src, typename Dst, typename Function>
auto filter(Function function, KprMaskSize mask, bool odd = false) {
    return [=](benchmark::State& state, KprSize size) {
        const Image<Src> src(size, 1, odd ? Image<Src>::Odd : Image<Src>::Aligned);
        const Image<Dst> dst(size, 1, odd ? Image<Dst>::Odd : Image<Dst>::Aligned);
        std::vector<Kpr8u> buffer(1 << 20);
        bench::measure(state, size, {sizeof(Src), sizeof(Dst)}, [&] {
            function(src.data(), src.step(), dst.data(), dst.step(), size, mask, kprBorderReplicate, Src{},
                     buffer.data());
        });
    };
}

const bool registered = [] {
    for (KprMaskSize mask : {33, 55}) {
        const std::string ending = "/mask" + std::to_string(mask);
        bench::add("FilterLaplacian_8u16s_C1R" + ending,
                   filter<Kpr8u, Kpr16s>(kpriFilterLaplacianBorder_8u16s_C1R, mask));
        bench::add("FilterLaplacian_32f_C1R" + ending, filter<Kpr32f, Kpr32f>(kpriFilterLaplacianBorder_32f_C1R, mask));
        bench::add("FilterLowpass_8u_C1R" + ending, filter<Kpr8u, Kpr8u>(kpriFilterLowpassBorder_8u_C1R, mask));
        bench::add("FilterLowpass_32f_C1R" + ending, filter<Kpr32f, Kpr32f>(kpriFilterLowpassBorder_32f_C1R, mask));
        bench::add("FilterSobelCross_8u16s_C1R" + ending,
                   filter<Kpr8u, Kpr16s>(kpriFilterSobelCrossBorder_8u16s_C1R, mask));
        bench::add("FilterSobelCross_32f_C1R" + ending,
                   filter<Kpr32f, Kpr32f>(kpriFilterSobelCrossBorder_32f_C1R, mask));
        bench::add("FilterSobelVert_8u16s_C1R" + ending,
                   filter<Kpr8u, Kpr16s>(kpriFilterSobelVertBorder_8u16s_C1R, mask));
        bench::add("FilterSobelHoriz_8u16s_C1R" + ending,
                   filter<Kpr8u, Kpr16s>(kpriFilterSobelHorizBorder_8u16s_C1R, mask));
        bench::add("FilterSobelVert_32f_C1R" + ending, filter<Kpr32f, Kpr32f>(kpriFilterSobelVertBorder_32f_C1R, mask));
    }
    bench::add("FilterLowpass_8u_C1R/mask33/odd",
               filter<Kpr8u, Kpr8u>(kpriFilterLowpassBorder_8u_C1R, kprMaskSize3x3, true));
    bench::add("FilterLaplacian_8u16s_C1R/mask33/odd",
               filter<Kpr8u, Kpr16s>(kpriFilterLaplacianBorder_8u16s_C1R, kprMaskSize3x3, true));
    bench::add("FilterScharrVert_8u16s_C1R/mask33",
               filter<Kpr8u, Kpr16s>(kpriFilterScharrVertMaskBorder_8u16s_C1R, kprMaskSize3x3));
    return true;
}();

}  // namespace
