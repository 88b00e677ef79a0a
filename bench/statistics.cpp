// Reductions: sums, deviations, extremes, norms, dot products; integers without a scale factor.
#include "vectors.h"

#include <string>

namespace bench {
namespace {

template <class Call>
void alone(const std::string& function, Call call) {
    contend_vectors("statistics", function.c_str(), ours, call);
}

/// A result and what follows it are not part of the work: nothing but the sources is counted.
template <class A, class R, class... Values>
void of_one(const std::string& function, KelStatus (*call)(const A*, int, R*, Values...)) {
    alone(function, [=](const A* a, int n) {
        R result;
        call(a, n, &result, Values{}...);
    });
}

template <class A, class B, class R, class... Values>
void of_two(const std::string& function, KelStatus (*call)(const A*, const B*, int, R*, Values...)) {
    alone(function, [=](const A* a, const B* b, int n) {
        R result;
        call(a, b, n, &result, Values{}...);
    });
}

template <class A>
void with_place(const std::string& function, KelStatus (*call)(const A*, int, A*, int*)) {
    alone(function, [=](const A* a, int n) {
        A result;
        int place;
        call(a, n, &result, &place);
    });
}

const Registration statistics([] {
    of_one("kelsSum_16s32s_Sfs", kelsSum_16s32s_Sfs);
    of_one("kelsSum_32f", kelsSum_32f);
    of_one("kelsSum_64f", kelsSum_64f);
    of_one("kelsMean_16s_Sfs", kelsMean_16s_Sfs);
    of_one("kelsMean_32f", kelsMean_32f);
    of_one("kelsStdDev_16s32s_Sfs", kelsStdDev_16s32s_Sfs);
    of_one("kelsStdDev_32f", kelsStdDev_32f);
    of_one("kelsStdDev_64f", kelsStdDev_64f);
    of_one("kelsMax_16s", kelsMax_16s);
    of_one("kelsMax_32f", kelsMax_32f);
    of_one("kelsMax_64f", kelsMax_64f);
    with_place("kelsMaxIndx_16s", kelsMaxIndx_16s);
    with_place("kelsMaxIndx_32f", kelsMaxIndx_32f);
    with_place("kelsMinIndx_32f", kelsMinIndx_32f);
    with_place("kelsMaxIndx_64f", kelsMaxIndx_64f);
    alone("kelsMaxEvery_32f_I", kelsMaxEvery_32f_I);
    of_one("kelsMaxOrder_32f", kelsMaxOrder_32f);
    of_one("kelsNorm_Inf_32f", kelsNorm_Inf_32f);
    of_one("kelsNorm_L1_16s32s_Sfs", kelsNorm_L1_16s32s_Sfs);
    of_one("kelsNorm_L1_32f", kelsNorm_L1_32f);
    of_one("kelsNorm_L1_64f", kelsNorm_L1_64f);
    of_one("kelsNorm_L2_16s32s_Sfs", kelsNorm_L2_16s32s_Sfs);
    of_one("kelsNorm_L2_32f", kelsNorm_L2_32f);
    of_one("kelsNorm_L2_64f", kelsNorm_L2_64f);
    of_two("kelsNormDiff_L2_16s32f", kelsNormDiff_L2_16s32f);
    of_two("kelsNormDiff_L2_32f", kelsNormDiff_L2_32f);
    of_two("kelsDotProd_32f", kelsDotProd_32f);
    of_two("kelsDotProd_32f64f", kelsDotProd_32f64f);
    of_two("kelsDotProd_64f", kelsDotProd_64f);
    of_two("kelsDotProd_32fc", kelsDotProd_32fc);
    of_two("kelsDotProd_64fc", kelsDotProd_64fc);
    of_two("kelsDotProd_32f32fc", kelsDotProd_32f32fc);
    of_two("kelsDotProd_16s32s_Sfs", kelsDotProd_16s32s_Sfs);
    of_two("kelsDotProd_16s_Sfs", kelsDotProd_16s_Sfs);
    of_two("kelsDotProd_16sc32sc_Sfs", kelsDotProd_16sc32sc_Sfs);
    of_two("kelsDotProd_32s_Sfs", kelsDotProd_32s_Sfs);
});

} // namespace
} // namespace bench
