// Quotients of two vectors, or of one and a constant.
#include "vectors.h"

#include <string>

namespace bench {
namespace {

template <class Call>
void alone(const std::string& function, Call call) {
    contend_vectors("division", function.c_str(), ours, call);
}

/// A table for a factor that divides the quotient and one that multiplies it.
template <class T>
void scaled(const std::string& function, KelStatus (*call)(const T*, const T*, T*, int, int)) {
    for (const int factor : {0, -3})
        alone(function + " " + std::to_string(factor),
              [=](const T* a, const T* b, T* quotient, int n) { call(a, b, quotient, n, factor); });
}

template <class T>
void scaled(const std::string& function, KelStatus (*call)(const T*, T, T*, int, int), T constant) {
    for (const int factor : {0, -3})
        alone(function + " " + std::to_string(factor),
              [=](const T* a, T* quotient, int n) { call(a, constant, quotient, n, factor); });
}

const Registration division([] {
    alone("kelsDiv_32f", kelsDiv_32f);
    alone("kelsDiv_64f", kelsDiv_64f);
    alone("kelsDiv_32fc", kelsDiv_32fc);
    alone("kelsDiv_64fc", kelsDiv_64fc);
    scaled("kelsDiv_8u_Sfs", kelsDiv_8u_Sfs);
    scaled("kelsDiv_16s_Sfs", kelsDiv_16s_Sfs);
    scaled("kelsDiv_16sc_Sfs", kelsDiv_16sc_Sfs);
    alone("kelsDivC_32f", [](const Kel32f* a, Kel32f* d, int n) { kelsDivC_32f(a, 0.3F, d, n); });
    alone("kelsDivC_32fc", [](const Kel32fc* a, Kel32fc* d, int n) { kelsDivC_32fc(a, {0.6F, -0.7F}, d, n); });
    scaled("kelsDivC_8u_Sfs", kelsDivC_8u_Sfs, Kel8u{7});
    scaled("kelsDivC_16s_Sfs", kelsDivC_16s_Sfs, Kel16s{-123});
    scaled("kelsDivC_16sc_Sfs", kelsDivC_16sc_Sfs, Kel16sc{12, -7});
    alone("kelsDivCRev_16u", [](const Kel16u* a, Kel16u* d, int n) { kelsDivCRev_16u(a, 54321, d, n); });
});

} // namespace
} // namespace bench
