// Exponentials, logarithms, angles and magnitudes.
#include "elementary.h"

#include <string>

namespace bench {
namespace {

/// A table for each kind of factor.
template <class T, class R>
void scaled(const std::string& function, KelStatus (*call)(const T*, R*, int, int), Range range) {
    for (const int factor : {0, 2, -3})
        contend_function<T, R>(function + " " + std::to_string(factor), ours, range,
                               [=](const T* x, R* d, int n) { call(x, d, n, factor); });
}

template <class Call>
void vectors(const char* function, Call call) {
    contend_vectors("elementary", function, ours, call);
}

const Registration elementary([] {
    contend_function<float>("kelsExp_32f", ours, exponents, kelsExp_32f);
    contend_function<double>("kelsExp_64f", ours, exponents, kelsExp_64f);
    contend_function<float>("kelsLn_32f", ours, positive, kelsLn_32f);
    contend_function<double>("kelsLn_64f", ours, positive, kelsLn_64f);
    contend_function<float>("kelsArctan_32f", ours, angles, kelsArctan_32f);
    contend_function<double>("kelsArctan_64f", ours, angles, kelsArctan_64f);
    vectors("kelsPhase_32fc", kelsPhase_32fc);
    vectors("kelsPhase_64fc", kelsPhase_64fc);
    vectors("kelsMagnitude_32fc", kelsMagnitude_32fc);
    vectors("kelsMagnitude_64fc", kelsMagnitude_64fc);
    vectors("kelsMagnitude_16sc_Sfs 0", [](const Kel16sc* z, Kel16s* d, int n) { kelsMagnitude_16sc_Sfs(z, d, n, 0); });
    vectors("kelsPowerSpectr_32fc", kelsPowerSpectr_32fc);
    vectors("kelsPowerSpectr_16sc_Sfs 2",
            [](const Kel16sc* z, Kel16s* d, int n) { kelsPowerSpectr_16sc_Sfs(z, d, n, 2); });
    contend_cartesian<float>("kelsPolarToCart_32fc", ours, [](const float* r, const float* a, float* d, int n) {
        kelsPolarToCart_32fc(r, a, reinterpret_cast<Kel32fc*>(d), n);
    });
    contend_cartesian<double>("kelsPolarToCart_64fc", ours, [](const double* r, const double* a, double* d, int n) {
        kelsPolarToCart_64fc(r, a, reinterpret_cast<Kel64fc*>(d), n);
    });
    scaled("kelsExp_16s_Sfs", kelsExp_16s_Sfs, {-20, 30});
    scaled("kelsExp_32s_Sfs", kelsExp_32s_Sfs, {-20, 50});
    scaled("kelsExp_64s_Sfs", kelsExp_64s_Sfs, {-20, 50});
    scaled("kelsLn_16s_Sfs", kelsLn_16s_Sfs, {1, 32767});
    scaled("kelsLn_32s16s_Sfs", kelsLn_32s16s_Sfs, {1, 2147483647});
    contend_function<float>("kelsSumLn_32f", ours, positive,
                            [](const float* x, float* d, int n) { kelsSumLn_32f(x, n, d); });
    contend_function<double>("kelsSumLn_64f", ours, positive,
                             [](const double* x, double* d, int n) { kelsSumLn_64f(x, n, d); });
});

} // namespace
} // namespace bench
