// Sums, differences and products of two vectors, or of one and a constant; integers with scale factors of each kind.
#include "vectors.h"

#include <string>

namespace bench {
namespace {

template <class Call>
void alone(const std::string& function, Call call) {
    contend_vectors("arithmetic", function.c_str(), ours, call);
}

/// A table for each factor.
template <class T>
void scaled(const std::string& function, KelStatus (*call)(const T*, const T*, T*, int, int)) {
    for (const int factor : {0, 1, 5, -3})
        alone(function + " " + std::to_string(factor),
              [=](const T* a, const T* b, T* sum, int n) { call(a, b, sum, n, factor); });
}

template <class T>
void scaled(const std::string& function, KelStatus (*call)(const T*, T, T*, int, int), T constant) {
    for (const int factor : {0, 1, 5, -3})
        alone(function + " " + std::to_string(factor),
              [=](const T* a, T* result, int n) { call(a, constant, result, n, factor); });
}

template <class T>
void constant(const std::string& function, KelStatus (*call)(const T*, T, T*, int), T constant) {
    alone(function, [=](const T* a, T* result, int n) { call(a, constant, result, n); });
}

const Registration arithmetic([] {
    alone("kelsAdd_16s", kelsAdd_16s);
    alone("kelsAdd_32f", kelsAdd_32f);
    alone("kelsAdd_32f_I", kelsAdd_32f_I);
    alone("kelsAdd_64f", kelsAdd_64f);
    alone("kelsSub_32f", kelsSub_32f);
    alone("kelsMul_16s", kelsMul_16s);
    alone("kelsMul_32f", kelsMul_32f);
    alone("kelsMul_64f", kelsMul_64f);
    alone("kelsMul_32fc", kelsMul_32fc);
    alone("kelsMul_64fc", kelsMul_64fc);
    constant("kelsAddC_32f", kelsAddC_32f, 2.5F);
    constant("kelsMulC_32f", kelsMulC_32f, 2.5F);
    constant("kelsMulC_32fc", kelsMulC_32fc, Kel32fc{0.6F, -0.8F});
    scaled("kelsAdd_8u_Sfs", kelsAdd_8u_Sfs);
    scaled("kelsAdd_16s_Sfs", kelsAdd_16s_Sfs);
    scaled("kelsAdd_32s_Sfs", kelsAdd_32s_Sfs);
    scaled("kelsMul_8u_Sfs", kelsMul_8u_Sfs);
    scaled("kelsMul_16s_Sfs", kelsMul_16s_Sfs);
    scaled("kelsMul_32s_Sfs", kelsMul_32s_Sfs);
    scaled("kelsMul_16sc_Sfs", kelsMul_16sc_Sfs);
    scaled("kelsAddC_8u_Sfs", kelsAddC_8u_Sfs, Kel8u{77});
    scaled("kelsMulC_16s_Sfs", kelsMulC_16s_Sfs, Kel16s{-1234});
    alone("kelsAbs_32f", kelsAbs_32f);
});

} // namespace
} // namespace bench
