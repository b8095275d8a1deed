#include "bench/support/bench.h"

namespace {

using bench::Image;

struct Results {
    Kpr64f a, b;
};

template <typename T>
struct Inputs {
    Image<T> first, second;
    Image<Kpr8u> mask;

    Inputs(KprSize size, int channels, bool solid) : first(size, channels), second(size, channels), mask(size) {
        std::mt19937 engine(5);
        for (int i = 0; i < second.step() / static_cast<int>(sizeof(T)) * size.height; ++i) {
            second.data()[i] = static_cast<T>(engine() % 253);
        }
        for (int i = 0; i < mask.step() * size.height; ++i) mask.data()[i] = solid ? 255 : engine() & 1;
    }
};

// `call(inputs, size, results)` reads `bytes` a pixel; with a mask of random bits, and with a solid one.
template <typename T, typename Call>
void add(const std::string& name, std::size_t bytes, int channels, bool masked, Call call) {
    for (bool solid : {false, true}) {
        if (!masked && solid) continue;
        bench::add(name + (!masked ? ""
                           : solid ? "/solid"
                                   : "/random"),
                   [=](benchmark::State& state, KprSize size) {
                       const Inputs<T> in(size, channels, solid);
                       Results out;
                       bench::measure(state, size, {bytes, 0}, [&] {
                           call(in, size, out);
                           benchmark::DoNotOptimize(out);
                       });
                   });
    }
}

template <typename T, typename F>
void addMean(const std::string& name, F f) {
    add<T>(name, sizeof(T) + 1, 1, true, [=](const Inputs<T>& in, KprSize size, Results& out) {
        f(in.first.data(), in.first.step(), in.mask.data(), in.mask.step(), size, &out.a);
    });
}
template <typename T, typename F>
void addMeanOfThree(const std::string& name, F f) {
    add<T>(name, 3 * sizeof(T) + 1, 3, true, [=](const Inputs<T>& in, KprSize size, Results& out) {
        f(in.first.data(), in.first.step(), in.mask.data(), in.mask.step(), size, 2, &out.a);
    });
}
template <typename T, typename F>
void addMoments(const std::string& name, F f) {
    add<T>(name, sizeof(T), 1, false, [=](const Inputs<T>& in, KprSize size, Results& out) {
        f(in.first.data(), in.first.step(), size, &out.a, &out.b);
    });
}
template <typename T, typename F>
void addMomentsOfThree(const std::string& name, F f) {
    add<T>(name, 3 * sizeof(T), 3, false, [=](const Inputs<T>& in, KprSize size, Results& out) {
        f(in.first.data(), in.first.step(), size, 2, &out.a, &out.b);
    });
}
template <typename T, typename F>
void addMeanAlone(const std::string& name, F f) {
    add<T>(name, sizeof(T), 1, false, [=](const Inputs<T>& in, KprSize size, Results& out) {
        f(in.first.data(), in.first.step(), size, &out.a, nullptr);
    });
}
template <typename T, typename F>
void addPairOfThree(const std::string& name, F f) {
    add<T>(name, 6 * sizeof(T) + 1, 3, true, [=](const Inputs<T>& in, KprSize size, Results& out) {
        f(in.first.data(), in.first.step(), in.second.data(), in.second.step(), in.mask.data(), in.mask.step(), size, 2,
          &out.a);
    });
}
template <typename T, typename F>
void addPair(const std::string& name, F f) {
    add<T>(name, 2 * sizeof(T) + 1, 1, true, [=](const Inputs<T>& in, KprSize size, Results& out) {
        f(in.first.data(), in.first.step(), in.second.data(), in.second.step(), in.mask.data(), in.mask.step(), size,
          &out.a);
    });
}

struct Extrema {
    Kpr32f low, high;
    KprPoint lowAt, highAt;
};

template <typename T, typename F>
void addExtrema(const std::string& name, F f) {
    add<T>(name, sizeof(T), 1, false, [=](const Inputs<T>& in, KprSize size, Results&) {
        Extrema out;
        f(in.first.data(), in.first.step(), size, &out.low, &out.high, &out.lowAt, &out.highAt);
        benchmark::DoNotOptimize(out);
    });
}
template <typename T, typename F>
void addExtremaOfThree(const std::string& name, F f) {
    add<T>(name, 3 * sizeof(T), 3, false, [=](const Inputs<T>& in, KprSize size, Results&) {
        Extrema out;
        f(in.first.data(), in.first.step(), size, 2, &out.low, &out.high, &out.lowAt, &out.highAt);
        benchmark::DoNotOptimize(out);
    });
}
template <typename T, typename F>
void addMaskedExtrema(const std::string& name, F f) {
    add<T>(name, sizeof(T) + 1, 1, true, [=](const Inputs<T>& in, KprSize size, Results&) {
        Extrema out;
        f(in.first.data(), in.first.step(), in.mask.data(), in.mask.step(), size, &out.low, &out.high, &out.lowAt,
          &out.highAt);
        benchmark::DoNotOptimize(out);
    });
}

const bool registered = [] {
    addExtrema<Kpr8u>("MinMaxIndx_8u_C1R", kpriMinMaxIndx_8u_C1R);
    addExtrema<Kpr16u>("MinMaxIndx_16u_C1R", kpriMinMaxIndx_16u_C1R);
    addExtrema<Kpr32f>("MinMaxIndx_32f_C1R", kpriMinMaxIndx_32f_C1R);
    addExtremaOfThree<Kpr8u>("MinMaxIndx_8u_C3CR", kpriMinMaxIndx_8u_C3CR);
    addExtremaOfThree<Kpr32f>("MinMaxIndx_32f_C3CR", kpriMinMaxIndx_32f_C3CR);
    addMaskedExtrema<Kpr8u>("MinMaxIndx_8u_C1MR", kpriMinMaxIndx_8u_C1MR);
    addMaskedExtrema<Kpr32f>("MinMaxIndx_32f_C1MR", kpriMinMaxIndx_32f_C1MR);
    addMean<Kpr8u>("Mean_8u_C1MR", kpriMean_8u_C1MR);
    addMean<Kpr16u>("Mean_16u_C1MR", kpriMean_16u_C1MR);
    addMean<Kpr32f>("Mean_32f_C1MR", kpriMean_32f_C1MR);
    addMeanOfThree<Kpr8u>("Mean_8u_C3CMR", kpriMean_8u_C3CMR);
    addMeanOfThree<Kpr32f>("Mean_32f_C3CMR", kpriMean_32f_C3CMR);
    addMoments<Kpr8u>("Mean_StdDev_8u_C1R", kpriMean_StdDev_8u_C1R);
    addMoments<Kpr16u>("Mean_StdDev_16u_C1R", kpriMean_StdDev_16u_C1R);
    addMoments<Kpr32f>("Mean_StdDev_32f_C1R", kpriMean_StdDev_32f_C1R);
    addMeanAlone<Kpr8u>("Mean_StdDev_8u_C1R/mean_alone", kpriMean_StdDev_8u_C1R);
    addMeanAlone<Kpr32f>("Mean_StdDev_32f_C1R/mean_alone", kpriMean_StdDev_32f_C1R);
    addMomentsOfThree<Kpr8u>("Mean_StdDev_8u_C3CR", kpriMean_StdDev_8u_C3CR);
    addMomentsOfThree<Kpr32f>("Mean_StdDev_32f_C3CR", kpriMean_StdDev_32f_C3CR);
    addMeanOfThree<Kpr8u>("Norm_L2_8u_C3CMR", kpriNorm_L2_8u_C3CMR);
    addPairOfThree<Kpr8u>("NormDiff_L2_8u_C3CMR", kpriNormDiff_L2_8u_C3CMR);
    addPairOfThree<Kpr32f>("NormRel_L2_32f_C3CMR", kpriNormRel_L2_32f_C3CMR);
    addMean<Kpr8u>("Norm_Inf_8u_C1MR", kpriNorm_Inf_8u_C1MR);
    addMean<Kpr8u>("Norm_L1_8u_C1MR", kpriNorm_L1_8u_C1MR);
    addMean<Kpr8u>("Norm_L2_8u_C1MR", kpriNorm_L2_8u_C1MR);
    addMean<Kpr16u>("Norm_L2_16u_C1MR", kpriNorm_L2_16u_C1MR);
    addMean<Kpr32f>("Norm_Inf_32f_C1MR", kpriNorm_Inf_32f_C1MR);
    addMean<Kpr32f>("Norm_L1_32f_C1MR", kpriNorm_L1_32f_C1MR);
    addMean<Kpr32f>("Norm_L2_32f_C1MR", kpriNorm_L2_32f_C1MR);
    addPair<Kpr8u>("NormDiff_Inf_8u_C1MR", kpriNormDiff_Inf_8u_C1MR);
    addPair<Kpr8u>("NormDiff_L1_8u_C1MR", kpriNormDiff_L1_8u_C1MR);
    addPair<Kpr8u>("NormDiff_L2_8u_C1MR", kpriNormDiff_L2_8u_C1MR);
    addPair<Kpr32f>("NormDiff_L2_32f_C1MR", kpriNormDiff_L2_32f_C1MR);
    addPair<Kpr8u>("NormRel_L2_8u_C1MR", kpriNormRel_L2_8u_C1MR);
    addPair<Kpr32f>("NormRel_L2_32f_C1MR", kpriNormRel_L2_32f_C1MR);
    return true;
}();

}  // namespace
