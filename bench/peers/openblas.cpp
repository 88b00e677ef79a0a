// OpenBLAS on one thread: dot products, norms, sums, and the place of the largest magnitude, which is what it has for
// that of the largest element.
#include "vectors.h"

#include <cblas-openblas.h>

#include <complex>

namespace bench {
namespace {

template <class T>
void keep(T result) {
    benchmark::DoNotOptimize(result);
}

const Registration openblas(
    [] {
        openblas_set_num_threads(1);
        const auto vectors = [](const char* function, auto call) {
            contend_vectors("statistics", function, "openblas", call);
        };
        vectors("kelsSum_32f", [](const float* a, int n) { keep(cblas_ssum(n, a, 1)); });
        vectors("kelsSum_64f", [](const double* a, int n) { keep(cblas_dsum(n, a, 1)); });
        vectors("kelsNorm_L1_32f", [](const float* a, int n) { keep(cblas_sasum(n, a, 1)); });
        vectors("kelsNorm_L1_64f", [](const double* a, int n) { keep(cblas_dasum(n, a, 1)); });
        vectors("kelsNorm_L2_32f", [](const float* a, int n) { keep(cblas_snrm2(n, a, 1)); });
        vectors("kelsNorm_L2_64f", [](const double* a, int n) { keep(cblas_dnrm2(n, a, 1)); });
        vectors("kelsMaxIndx_32f", [](const float* a, int n) { keep(cblas_isamax(n, a, 1)); });
        vectors("kelsMaxIndx_64f", [](const double* a, int n) { keep(cblas_idamax(n, a, 1)); });
        vectors("kelsDotProd_32f", [](const float* a, const float* b, int n) { keep(cblas_sdot(n, a, 1, b, 1)); });
        vectors("kelsDotProd_32f64f", [](const float* a, const float* b, int n) { keep(cblas_dsdot(n, a, 1, b, 1)); });
        vectors("kelsDotProd_64f", [](const double* a, const double* b, int n) { keep(cblas_ddot(n, a, 1, b, 1)); });
        vectors("kelsDotProd_32fc", [](const std::complex<float>* a, const std::complex<float>* b, int n) {
            std::complex<float> sum;
            cblas_cdotu_sub(n, a, 1, b, 1, &sum);
        });
        vectors("kelsDotProd_64fc", [](const std::complex<double>* a, const std::complex<double>* b, int n) {
            std::complex<double> sum;
            cblas_zdotu_sub(n, a, 1, b, 1, &sum);
        });
    },
    "OpenBLAS");

} // namespace
} // namespace bench
