// GSL: statistics of arrays.
#include "vectors.h"

#include <gsl/gsl_statistics_double.h>
#include <gsl/gsl_statistics_float.h>
#include <gsl/gsl_statistics_short.h>
#include <gsl/gsl_version.h>

namespace bench {
namespace {

template <class T>
void keep(T result) {
    benchmark::DoNotOptimize(result);
}

const Registration gsl(
    [] {
        const auto vectors = [](const char* function, auto call) {
            contend_vectors("statistics", function, "gsl", call);
        };
        vectors("kelsMean_32f", [](const float* a, int n) { keep(gsl_stats_float_mean(a, 1, n)); });
        vectors("kelsMean_16s_Sfs", [](const short* a, int n) { keep(gsl_stats_short_mean(a, 1, n)); });
        vectors("kelsStdDev_16s32s_Sfs", [](const short* a, int n) { keep(gsl_stats_short_sd(a, 1, n)); });
        vectors("kelsStdDev_32f", [](const float* a, int n) { keep(gsl_stats_float_sd(a, 1, n)); });
        vectors("kelsStdDev_64f", [](const double* a, int n) { keep(gsl_stats_sd(a, 1, n)); });
        vectors("kelsMax_16s", [](const short* a, int n) { keep(gsl_stats_short_max(a, 1, n)); });
        vectors("kelsMax_32f", [](const float* a, int n) { keep(gsl_stats_float_max(a, 1, n)); });
        vectors("kelsMax_64f", [](const double* a, int n) { keep(gsl_stats_max(a, 1, n)); });
        vectors("kelsMaxIndx_16s", [](const short* a, int n) { keep(gsl_stats_short_max_index(a, 1, n)); });
        vectors("kelsMaxIndx_32f", [](const float* a, int n) { keep(gsl_stats_float_max_index(a, 1, n)); });
        vectors("kelsMinIndx_32f", [](const float* a, int n) { keep(gsl_stats_float_min_index(a, 1, n)); });
        vectors("kelsMaxIndx_64f", [](const double* a, int n) { keep(gsl_stats_max_index(a, 1, n)); });
    },
    "GSL " GSL_VERSION);

} // namespace
} // namespace bench
